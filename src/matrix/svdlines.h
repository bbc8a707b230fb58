// What the decomposition does to whole columns of U and V: reflections and rotations of the rows ("lines") of
// transposed copies. Each element sees the same operations in the same order as column by column; which
// element comes first is chosen so that data is worked on while it is near.

#ifndef ORV_MATRIX_SVDLINES_H
#define ORV_MATRIX_SVDLINES_H

#include <cstddef>
#include <cstdint>

#include "matrix/lines.h"

namespace orv::matrix {

// A dense matrix whose rows are columns of the caller's. Lines begin on cache lines and have room for whole
// strips; the room behind their ends holds zeros.
struct Lines {
  static constexpr std::int32_t kStrip = 8;

  double *base;
  std::ptrdiff_t stride;
  std::int32_t len;

  double *operator[](std::int32_t i) const { return base + i * stride; }

  // Not a multiple of 512 bytes, which would crowd the lines into a few sets of the cache.
  static std::int64_t strideOf(std::int32_t len) {
    const std::int64_t whole = (std::int64_t{len} + kStrip - 1) / kStrip * kStrip;
    return whole % 64 == 0 ? whole + kStrip : whole;
  }
  void clear(std::int32_t count, std::int32_t from) const {
    for (std::int32_t i = 0; i < count; ++i)
      for (std::ptrdiff_t k = from; k < stride; ++k) (*this)[i][k] = 0;
  }
};

// --- reflections

// Four lines from some element on.
struct FourLines {
  double *x[4];

  FourLines(const Lines &lines, std::int32_t j, std::int32_t first)
      : x{lines[j] + first, lines[j + 1] + first, lines[j + 2] + first, lines[j + 3] + first} {}

  // x[i] += f[i] * v.
  void addMul(const double *v, const double *f, std::int32_t len) const {
    double *const a = x[0], *const b = x[1], *const c = x[2], *const d = x[3];
    const f64x2 fa = simd::splat2(f[0]), fb = simd::splat2(f[1]), fc = simd::splat2(f[2]),
                fd = simd::splat2(f[3]);
    std::int32_t k = 0;
    for (; len - k >= 2; k += 2) {
      const f64x2 w = simd::load2(v + k);
      simd::store2(a + k, simd::load2(a + k) + w * fa);
      simd::store2(b + k, simd::load2(b + k) + w * fb);
      simd::store2(c + k, simd::load2(c + k) + w * fc);
      simd::store2(d + k, simd::load2(d + k) + w * fd);
    }
    if (k < len)
      for (int i = 0; i < 4; ++i) x[i][k] += f[i] * v[k];
  }

  // t[i] = dot product of u and x[i].
  void dot(const double *u, double *t, std::int32_t len) const {
    const double *const a = x[0], *const b = x[1], *const c = x[2], *const d = x[3];
    const f64x4 zero{};
    f64x4 sa = zero, sb = zero, sc = zero, sd = zero;
    std::int32_t k = 0;
    for (; len - k >= 4; k += 4) {
      const f64x4 w = loadFour(u + k);
      sa = sa + w * loadFour(a + k);
      sb = sb + w * loadFour(b + k);
      sc = sc + w * loadFour(c + k);
      sd = sd + w * loadFour(d + k);
    }
    finish(u, t, k, len, sa, sb, sc, sd);
  }

  // One after the other, in one walk.
  [[gnu::noinline]] void addMulAndDot(const double *v, const double *f, const double *u, double *t,
                                      std::int32_t len) const {
    double *const a = x[0], *const b = x[1], *const c = x[2], *const d = x[3];
    const f64x2 factors[4] = {simd::splat2(f[0]), simd::splat2(f[1]), simd::splat2(f[2]), simd::splat2(f[3])};
    const f64x4 zero{};
    f64x4 sa = zero, sb = zero, sc = zero, sd = zero;
    const auto step = [](double *p, f64x2 w, f64x2 factor, f64x2 other, f64x2 &sum) {
      const f64x2 y = simd::load2(p) + w * factor;
      simd::store2(p, y);
      sum = sum + y * other;
    };
    std::int32_t k = 0;
    for (; len - k >= 4; k += 4) {
      const f64x2 w = simd::load2(v + k), o = simd::load2(u + k);
      step(a + k, w, factors[0], o, sa.low);
      step(b + k, w, factors[1], o, sb.low);
      step(c + k, w, factors[2], o, sc.low);
      step(d + k, w, factors[3], o, sd.low);
      const f64x2 w2 = simd::load2(v + k + 2), o2 = simd::load2(u + k + 2);
      step(a + k + 2, w2, factors[0], o2, sa.high);
      step(b + k + 2, w2, factors[1], o2, sb.high);
      step(c + k + 2, w2, factors[2], o2, sc.high);
      step(d + k + 2, w2, factors[3], o2, sd.high);
    }
    for (std::int32_t rest = k; rest < len; ++rest)
      for (int i = 0; i < 4; ++i) x[i][rest] += f[i] * v[rest];
    finish(u, t, k, len, sa, sb, sc, sd);
  }

 private:
  void finish(const double *u, double *t, std::int32_t from, std::int32_t len, f64x4 sa, f64x4 sb, f64x4 sc,
              f64x4 sd) const {
    t[0] = simd::sumLanes(sa);
    t[1] = simd::sumLanes(sb);
    t[2] = simd::sumLanes(sc);
    t[3] = simd::sumLanes(sd);
    for (; from < len; ++from)
      for (int i = 0; i < 4; ++i) t[i] += u[from] * x[i][from];
  }
};

// Of elements from `first` on of a line x: x += f v, where f is the dot product of u and x, over the pivot,
// times g. The element before them, which v has at -1, is replaced: by its product with f, if the pivot takes
// part, or by zero.
struct Reflection {
  const double *u, *v;
  std::int32_t first, len;
  double pivot, g;
  bool withPivot, empty;

  double factor(double t) const { return (t / pivot) * g; }
  double before(double f) const { return withPivot && !empty ? 0 + f * v[-1] : 0; }
};

inline void reflectOne(const Reflection &r, double *line) {
  double *const x = line + r.first;
  const double f = r.empty ? 0 : r.factor(dot(r.u, x, r.len));
  x[-1] = r.before(f);
  if (!r.empty) addMul(r.v, x, r.len, f);
}

// Reflections of line numbers high, high - 1, ... low of four lines beyond. What one adds and the dot product
// of the next are one walk, unless the zero before the elements would become a NaN on the way.
inline void reflectFour(const Lines &lines, std::int32_t j, const Reflection *r, std::int32_t count) {
  double f[4] = {}, t[4];
  bool known = false;
  for (std::int32_t i = 0; i < count; ++i) {
    const FourLines x(lines, j, r[i].first);
    if (!r[i].empty) {
      if (!known) x.dot(r[i].u, t, r[i].len);
      for (int k = 0; k < 4; ++k) f[k] = r[i].factor(t[k]);
    }
    bool finite = true;
    for (int k = 0; k < 4; ++k) finite = finite && f[k] * 0 == 0;
    known = i + 1 < count && !r[i].empty && !r[i + 1].empty && finite;
    if (known) {
      for (double *p : x.x) p[-1] = 0;
      FourLines(lines, j, r[i].first - 1).addMulAndDot(r[i].v - 1, f, r[i + 1].u, t, r[i].len + 1);
      continue;
    }
    for (int k = 0; k < 4; ++k) x.x[k][-1] = r[i].before(f[k]);
    if (!r[i].empty) x.addMul(r[i].v, f, r[i].len);
  }
}

// Reflections of line numbers high, high - 1, ... low, in this order, given at r[0], r[1], ...; each reflects
// all lines beyond its number. Four lines meet all of them while they are near.
inline void reflectLines(const Lines &lines, std::int32_t count, const Reflection *r, std::int32_t high,
                         std::int32_t low) {
  std::int32_t j = low + 1;
  for (; j <= high; ++j)
    for (std::int32_t i = j - 1; i >= low; --i) reflectOne(r[high - i], lines[j]);
  for (; count - j >= 4; j += 4) reflectFour(lines, j, r, high - low + 1);
  for (; j < count; ++j)
    for (std::int32_t i = high; i >= low; --i) reflectOne(r[high - i], lines[j]);
}

// --- rotations

inline void rotate(f64x2 &p, f64x2 &q, f64x2 c, f64x2 s) {
  const f64x2 x = p, y = q;
  p = x * c + y * s;
  q = y * c - x * s;
}

inline void rotatePair(double *x, double *y, std::int32_t len, double cosine, double sine) {
  const f64x2 c = simd::splat2(cosine), s = simd::splat2(sine);
  for (std::int32_t k = 0; k < len; k += 2) {
    f64x2 a = simd::load2(x + k), b = simd::load2(y + k);
    rotate(a, b, c, s);
    simd::store2(x + k, a);
    simd::store2(y + k, b);
  }
}

// A rotation in all lanes: the factors stand twice.
struct RotationLanes {
  double c[2], s[2];
};

// Rotations of lines (first, first + 1), (first + 1, first + 2), ... (end - 1, end), in this order.
struct Sweep {
  std::int32_t first, end;
  const RotationLanes *rotations;

  const RotationLanes *at(std::int32_t line) const { return rotations + (line - first); }
};

// One strip of a line in registers.
struct StripLanes {
  static constexpr int kVectors = Lines::kStrip / 2;
  f64x2 v[kVectors];

  explicit StripLanes(const double *x) {
    for (int i = 0; i < kVectors; ++i) v[i] = simd::load2(x + 2 * i);
  }
  void put(double *x) const {
    for (int i = 0; i < kVectors; ++i) simd::store2(x + 2 * i, v[i]);
  }
};

// Rotations of lines from `from` to before `to` within one strip. The line that the next rotation needs stays
// in registers.
inline void rotateStrip(double *strip, std::ptrdiff_t stride, const Sweep &sweep, std::int32_t from,
                        std::int32_t to) {
  if (from >= to) return;
  double *x = strip + from * stride;
  StripLanes kept(x);
  for (const RotationLanes *r = sweep.at(from), *const end = sweep.at(to); r < end; ++r, x += stride) {
    const f64x2 c = simd::load2(r->c), s = simd::load2(r->s);
    for (int i = 0; i < StripLanes::kVectors; ++i) {
      f64x2 next = simd::load2(x + stride + 2 * i);
      rotate(kept.v[i], next, c, s);
      simd::store2(x + 2 * i, kept.v[i]);
      kept.v[i] = next;
    }
  }
  kept.put(x);
}

// Two sweeps at once, the second one line behind the first: rotations from + 1 to `to` of the first, and from
// `from` to before `to` of the second.
[[gnu::noinline]] inline void rotateStripTwice(double *strip, std::ptrdiff_t stride, const Sweep &one,
                                               const Sweep &two, std::int32_t from, std::int32_t to) {
  double *x = strip + from * stride;
  StripLanes behind(x), ahead(x + stride);
  const RotationLanes *q = one.at(from + 1);
  for (const RotationLanes *r = two.at(from), *const end = two.at(to); r < end; ++r, ++q, x += stride) {
    const f64x2 qc = simd::load2(q->c), qs = simd::load2(q->s), rc = simd::load2(r->c),
                rs = simd::load2(r->s);
    for (int i = 0; i < StripLanes::kVectors; ++i) {
      f64x2 next = simd::load2(x + 2 * stride + 2 * i);
      rotate(ahead.v[i], next, qc, qs);
      rotate(behind.v[i], ahead.v[i], rc, rs);
      simd::store2(x + 2 * i, behind.v[i]);
      behind.v[i] = ahead.v[i];
      ahead.v[i] = next;
    }
  }
  behind.put(x);
  ahead.put(x + stride);
}

inline void rotateLines(const Lines &lines, const Sweep *sweeps, int count) {
  for (std::int32_t k = 0; k < lines.len; k += Lines::kStrip) {
    double *const strip = lines.base + k;
    int i = 0;
    for (; count - i >= 2; i += 2) {
      const Sweep &one = sweeps[i], &two = sweeps[i + 1];
      const std::int32_t from = one.first - 1 > two.first ? one.first - 1 : two.first;
      const std::int32_t to = one.end - 1 < two.end ? one.end - 1 : two.end;
      if (from >= to) {
        rotateStrip(strip, lines.stride, one, one.first, one.end);
        rotateStrip(strip, lines.stride, two, two.first, two.end);
        continue;
      }
      rotateStrip(strip, lines.stride, one, one.first, from + 1);
      rotateStrip(strip, lines.stride, two, two.first, from);
      rotateStripTwice(strip, lines.stride, one, two, from, to);
      rotateStrip(strip, lines.stride, one, to + 1, one.end);
      rotateStrip(strip, lines.stride, two, to, two.end);
    }
    if (i < count) rotateStrip(strip, lines.stride, sweeps[i], sweeps[i].first, sweeps[i].end);
  }
}

}  // namespace orv::matrix

#endif
