#include "primitives/fft/engine.h"

#include <cstring>
#include <utility>

#include "primitives/fft/sine.h"
#include "primitives/memory.h"

namespace orv::fft {
namespace {

struct Bin {
  float re, im;
};

Bin loadBin(const float *p) { return {load(p), load(p + 1)}; }
void storeBin(float *p, Bin v) {
  store(p, v.re);
  store(p + 1, v.im);
}
Bin operator+(Bin a, Bin b) { return {a.re + b.re, a.im + b.im}; }
Bin operator-(Bin a, Bin b) { return {a.re - b.re, a.im - b.im}; }
Bin operator*(Bin a, Bin b) { return {a.re * b.re - a.im * b.im, a.re * b.im + a.im * b.re}; }

// In place over `points` complex values; sign -1 forward, 1 inverse.
void complexTransform(float *data, std::size_t points, const float *twiddles, float sign) {
  for (std::size_t i = 0, j = 0; i < points; ++i) {
    if (i < j) {
      const Bin a = loadBin(data + 2 * i);
      storeBin(data + 2 * i, loadBin(data + 2 * j));
      storeBin(data + 2 * j, a);
    }
    std::size_t bit = points / 2;
    for (; bit > 0 && (j & bit) != 0; bit /= 2) j ^= bit;
    j |= bit;
  }
  for (std::size_t half = 1; half < points; half *= 2)
    for (std::size_t k = 0; k < half; ++k) {
      const float *t = twiddles + 2 * k * (points / (2 * half));
      const Bin w = {t[0], -sign * t[1]};
      for (std::size_t i = k; i < points; i += 2 * half) {
        float *low = data + 2 * i;
        float *high = low + 2 * half;
        const Bin a = loadBin(low);
        const Bin b = loadBin(high) * w;
        storeBin(low, a + b);
        storeBin(high, a - b);
      }
    }
}

void scale(float *data, std::size_t len, float factor) {
  for (std::size_t i = 0; i < len; ++i) store(data + i, load(data + i) * factor);
}

void directForward(const float *src, float *dst, std::size_t len) {
  float x[32];
  std::memcpy(x, src, len * sizeof(float));
  const UnitCircle circle(fft_fix_twiddle_table_32f, kMaxTableOrder);
  for (std::size_t k = 0; k <= len / 2; ++k) {
    Bin sum = {0, 0};
    for (std::size_t n = 0; n < len; ++n) {
      const Twiddle w = circle.at(static_cast<std::int64_t>(n * k * (1024 / len)), kMaxTableOrder);
      sum = sum + Bin{x[n] * w.re, x[n] * w.im};
    }
    if (k == 0)
      store(dst, sum.re);
    else if (k == len / 2)
      store(dst + 1, sum.re);
    else
      storeBin(dst + 2 * k, sum);
  }
}

void directInverse(float *dst, std::size_t len) {
  float x[32];
  std::memcpy(x, dst, len * sizeof(float));
  const UnitCircle circle(fft_fix_twiddle_table_32f, kMaxTableOrder);
  for (std::size_t n = 0; n < len; ++n) {
    float sum = x[0];
    if (len > 1) sum += n % 2 == 0 ? x[1] : -x[1];
    for (std::size_t k = 1; k < len / 2; ++k) {
      const Twiddle w = circle.at(static_cast<std::int64_t>(n * k * (1024 / len)), kMaxTableOrder);
      sum += 2 * (x[2 * k] * w.re + x[2 * k + 1] * w.im);
    }
    store(dst + n, sum);
  }
}

}  // namespace

void buildTables(OrvRealFftState32f &spec, const float *sine, std::int32_t sineOrder) {
  const UnitCircle circle(sine, sineOrder);
  const std::int64_t points = std::int64_t{1} << (spec.order - 1);
  auto *tables = reinterpret_cast<float *>(reinterpret_cast<std::uint8_t *>(&spec) + kTablesOffset);
  spec.radix4Twiddles = tables;
  spec.realRecTwiddles = tables + points;
  for (std::int64_t k = 0; k < points / 2; ++k) {
    const Twiddle w = circle.at(k, spec.order - 1);
    storeBin(spec.radix4Twiddles + 2 * k, {w.re, w.im});
    const Twiddle r = circle.at(k, spec.order);
    storeBin(spec.realRecTwiddles + 2 * k, {0.5F * r.re, static_cast<float>(0.5 + 0.5 * r.im)});
  }
}

void forward(const OrvRealFftState32f &spec, const float *src, float *dst, Layout layout, std::uint8_t *) {
  const std::size_t len = std::size_t{1} << spec.order;
  if (spec.order <= kMaxSmallOrder) {
    directForward(src, dst, len);
  } else {
    std::memmove(dst, src, len * sizeof(float));
    const std::size_t points = len / 2;
    complexTransform(dst, points, spec.radix4Twiddles, -1);
    const Bin z = loadBin(dst);
    storeBin(dst, {z.re + z.im, z.re - z.im});
    for (std::size_t k = 1; k < points / 2; ++k) {
      const Bin a = loadBin(dst + 2 * k);
      const Bin b = loadBin(dst + 2 * (points - k));
      const Bin t = loadBin(spec.realRecTwiddles + 2 * k);
      const float d = a.re - b.re;
      const float s = a.im + b.im;
      const float u = t.im * d + t.re * s;
      const float v = t.im * s - t.re * d;
      storeBin(dst + 2 * k, {b.re + u, v - b.im});
      storeBin(dst + 2 * (points - k), {a.re - u, v - a.im});
    }
    store(dst + points + 1, -load(dst + points + 1));
  }
  if (spec.scaleFwd != 0) scale(dst, len, spec.normFactor);
  if (layout == Layout::pack && len > 2) {
    const float last = load(dst + 1);
    std::memmove(dst + 1, dst + 2, (len - 2) * sizeof(float));
    store(dst + len - 1, last);
  } else if (layout == Layout::ccs) {
    if (len > 1) {
      store(dst + len, load(dst + 1));
      store(dst + len + 1, 0.0F);
    }
    store(dst + 1, 0.0F);
  }
}

void inverse(const OrvRealFftState32f &spec, const float *packed, float *dst, std::uint8_t *) {
  const std::size_t len = std::size_t{1} << spec.order;
  const float first = load(packed);
  const float last = load(packed + len - 1);
  if (len > 2) std::memmove(dst + 2, packed + 1, (len - 2) * sizeof(float));
  store(dst, first);
  if (len > 1) store(dst + 1, last);
  if (spec.order <= kMaxSmallOrder) {
    directInverse(dst, len);
  } else {
    const std::size_t points = len / 2;
    storeBin(dst, {first + last, first - last});
    for (std::size_t k = 1; k < points / 2; ++k) {
      const Bin a = loadBin(dst + 2 * k);
      const Bin b = loadBin(dst + 2 * (points - k));
      const Bin t = loadBin(spec.realRecTwiddles + 2 * k);
      const float d = a.re - b.re;
      const float s = a.im + b.im;
      const float u = t.im * d - t.re * s;
      const float v = t.im * s + t.re * d;
      storeBin(dst + 2 * k, {2 * (b.re + u), 2 * (v - b.im)});
      storeBin(dst + 2 * (points - k), {2 * (a.re - u), 2 * (v - a.im)});
    }
    const Bin mid = loadBin(dst + points);
    storeBin(dst + points, {2 * mid.re, -2 * mid.im});
    complexTransform(dst, points, spec.radix4Twiddles, 1);
  }
  if (spec.scaleInv != 0) scale(dst, len, spec.normFactor);
}

}  // namespace orv::fft
