// The engine of the delta families: which rows a streaming call fills and which it derives, the windows, the
// number forms and the gains.

#ifndef ORV_FRONTEND_DELTA_H
#define ORV_FRONTEND_DELTA_H

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "core/integer.h"
#include "orvsr/types.h"
#include "primitives/memory.h"
#include "primitives/simd.h"

namespace orv::delta {

// --- columns of a row in lanes

inline constexpr std::int32_t lanesOf(const float *) { return 4; }
inline constexpr std::int32_t lanesOf(const std::int16_t *) { return 8; }
inline simd::f32x4 loadLanes(const float *p) { return simd::load4(p); }
inline simd::i32x8 loadLanes(const std::int16_t *p) { return simd::loadWidened8(p); }
inline void storeLanes(float *p, simd::f32x4 v) { simd::store4(p, v); }
inline void storeLanes(std::int16_t *p, simd::i32x8 v) { simd::storeSaturated8(p, v); }

struct WholeLanes {
  template <class T>
  static auto load(const T *p) {
    return loadLanes(p);
  }
  template <class T, class V>
  static void store(T *p, V v) {
    storeLanes(p, v);
  }
};

// Fewer columns than lanes: through a copy.
struct SomeLanes {
  std::size_t columns;

  template <class T>
  auto load(const T *p) const {
    T copy[lanesOf(static_cast<const T *>(nullptr))] = {};
    std::memcpy(copy, p, columns * sizeof(T));
    return loadLanes(copy);
  }
  template <class T, class V>
  void store(T *p, V v) const {
    T copy[lanesOf(static_cast<const T *>(nullptr))];
    storeLanes(copy, v);
    std::memcpy(p, copy, columns * sizeof(T));
  }
};

// f(access, j) for lanes of columns from j on. The last lanes of a row are moved back so that they end with
// it: they cover some columns twice, which changes nothing, as no column of a row is derived from another one
// that the same pass writes.
template <class T, class F>
inline void forColumns(std::int64_t width, F &&f) {
  constexpr std::int32_t lanes = lanesOf(static_cast<const T *>(nullptr));
  if (width < lanes) return f(SomeLanes{static_cast<std::size_t>(width)}, std::int64_t{0});
  std::int64_t j = 0;
  for (; width - j >= lanes; j += lanes) f(WholeLanes{}, j);
  if (j < width) f(WholeLanes{}, width - lanes);
}

// --- which rows

template <class T>
struct FeatureRows {
  T *base;
  std::int64_t step;
  T *operator[](std::int64_t row) const { return base + row * step; }
};

// What a form takes from the rows around the one it derives: reach rows on both sides, for each of its stages
// (delta, then acceleration).
struct Span {
  std::int32_t reach;
  std::int32_t stages;
};

// Rows by which a stage stays further behind than it must: the lanes of a row may overlap, and a load that
// needs two stores waits until both have left the store buffer.
inline constexpr std::int32_t kDrain = 2;

// Static row t arrives by keep(source row, t). Behind it follow the stages, by derive(s, row, rows that are
// filled). Without orvDeltaBegin the first `lead` rows are the last ones of the call before. A row can be
// derived when the reach * s rows behind it stand; with orvDeltaEnd every row can, as the last row stands for
// all behind it.
template <class Keep, class Derive>
inline void stream(Span span, std::int32_t lead, std::int32_t height, std::int32_t mode, Keep &&keep,
                   Derive &&derive) {
  const bool begin = (mode & orvDeltaBegin) != 0;
  const bool end = (mode & orvDeltaEnd) != 0;
  const std::int64_t first = begin ? 0 : lead;
  const std::int64_t filled = first + height;
  const std::int32_t delay = span.reach + kDrain;
  for (std::int64_t t = first; t < filled + delay * span.stages; ++t) {
    if (t < filled) keep(t - first, t);
    for (std::int32_t s = 1; s <= span.stages; ++s) {
      const std::int64_t row = t - delay * s;
      const std::int64_t from = begin ? 0 : lead - span.reach * s;
      const std::int64_t to = end ? filled : filled - span.reach * s;
      if (row >= from && row < to) derive(s, row, filled);
    }
  }
}

// The nearest row that exists: beyond an edge of the utterance the edge row repeats.
inline std::int64_t clampRow(std::int64_t row, std::int64_t filled) {
  return std::clamp<std::int64_t>(row, 0, filled - 1);
}

// --- number forms: a difference, a gain upon a sum of differences or a static value

struct Single {
  using T = float;
  static simd::f32x4 difference(simd::f32x4 a, simd::f32x4 b) { return a - b; }
  static simd::f32x4 scaled(simd::f32x4 v, simd::f32x4 gain) { return v * gain; }
};

// The shifts that stand for a scale factor, one of them 0. Counts are taken modulo 32, as the processor does.
struct Shift {
  int right;
  int left;

  explicit Shift(std::int32_t scaleFactor)
      : right(scaleFactor > 0 ? scaleFactor % 32 : 0),
        left(scaleFactor < 0 ? static_cast<int>(-std::int64_t{scaleFactor} % 32) : 0) {}
};

// 32-bit integers; products wrap. The store saturates.
struct Wide {
  using T = std::int16_t;
  Shift shift;

  static simd::i32x8 difference(simd::i32x8 a, simd::i32x8 b) { return a - b; }
  simd::i32x8 scaled(simd::i32x8 v, simd::i32x8 gain) const {
    return ((v * gain) << shift.left) >> shift.right;
  }
};

// As Wide, but every single difference first wraps to 16 bits. Callers of these forms rely on it: it is no
// fault to be levelled out with the forms that have one gain.
struct Wrapped : Wide {
  static simd::i32x8 difference(simd::i32x8 a, simd::i32x8 b) { return ((a - b) << 16) >> 16; }
};

// --- gains

inline simd::f32x4 splatLanes(float v) { return simd::splat4(v); }
inline simd::i32x8 splatLanes(std::int16_t v) {
  return {simd::splat4(std::int32_t{v}), simd::splat4(std::int32_t{v})};
}

// One gain for each stage. Static values are copied.
template <class T>
struct StageGains {
  T gain[2];

  template <class Number, class Access, class V>
  V onStatic(const Number &, Access, std::int64_t, V x) const {
    return x;
  }
  template <class Access>
  auto of(std::int32_t stage, Access, std::int64_t) const {
    return splatLanes(gain[stage - 1]);
  }
};

// A gain for each column: width of them for the static values, then width for each stage.
template <class T>
struct ColumnGains {
  const T *gains;
  std::int64_t width;

  template <class Number, class Access, class V>
  V onStatic(const Number &number, Access access, std::int64_t j, V x) const {
    return number.scaled(x, access.load(gains + j));
  }
  template <class Access>
  auto of(std::int32_t stage, Access access, std::int64_t j) const {
    return access.load(gains + stage * width + j);
  }
};

// --- windows: the weighted differences around a row; at(k) is the row k later

struct Win1 {
  static constexpr std::int32_t reach = 1;
  template <class Number, class At>
  static auto sum(const Number &number, At &&at) {
    return number.difference(at(1), at(-1));
  }
};

struct Win2 {
  static constexpr std::int32_t reach = 2;
  template <class Number, class At>
  static auto sum(const Number &number, At &&at) {
    const auto outer = number.difference(at(2), at(-2));
    return number.difference(at(1), at(-1)) + outer + outer;
  }
};

// --- the streaming forms of those windows

// Where the values of a call lie.
template <class T>
struct Block {
  const T *src;
  std::int64_t width;
  T *dst;
  std::int64_t step;
};

// Stage s is derived from the columns of stage s - 1, one width to their right. The first stage needs rows
// that lie two reaches back, each further one another reach: that is the lead.
template <class Window, class T, class Number, class Gains>
inline void extend(const Block<T> &block, std::int32_t height, std::int32_t mode, std::int32_t stages,
                   const Number &number, const Gains &gains) {
  const FeatureRows<T> rows{block.dst, block.step};
  const std::int64_t width = block.width;
  const auto keep = [&](std::int64_t from, std::int64_t t) {
    const T *src = block.src + from * width;
    forColumns<T>(width, [&](auto access, std::int64_t j) {
      access.store(rows[t] + j, gains.onStatic(number, access, j, access.load(src + j)));
    });
  };
  const auto derive = [&](std::int32_t stage, std::int64_t t, std::int64_t filled) {
    constexpr std::int32_t reach = Window::reach;
    const T *near[2 * reach + 1];
    for (std::int32_t k = -reach; k <= reach; ++k)
      near[reach + k] = rows[clampRow(t + k, filled)] + (stage - 1) * width;
    T *dst = rows[t] + stage * width;
    forColumns<T>(width, [&](auto access, std::int64_t j) {
      const auto at = [&](std::int32_t k) { return access.load(near[reach + k] + j); };
      access.store(dst + j, number.scaled(Window::sum(number, at), gains.of(stage, access, j)));
    });
  };
  stream({Window::reach, stages}, (stages + 1) * Window::reach, height, mode, keep, derive);
}

// --- the nine-point window

inline constexpr std::int32_t kAuroraSource = 14;
inline constexpr std::int32_t kAuroraWidth = 13;
inline constexpr std::int32_t kAuroraReach = 4;
inline constexpr std::int32_t kAuroraLead = 8;

// Added from left to right. The coefficients are these literals, not the fractions -2/7, -17/28 and -5/7.
template <class At>
inline auto auroraAcceleration(At &&at) {
  return at(-4) + at(-3) * 0.25F - at(-2) * 0.285714F - at(-1) * 0.607143F - at(0) * 0.714286F -
         at(1) * 0.607143F - at(2) * 0.285714F + at(3) * 0.25F + at(4);
}

// The static value of the last column: the zeroth coefficient and the log energy.
inline float auroraEnergy(float c0, float logEnergy) { return c0 * 0.6F / 23.0F + logEnergy * 0.4F; }

struct AuroraSingle {
  using T = float;
  static simd::f32x4 keep(simd::f32x4 x) { return x; }
  static float keepEnergy(float x) { return x; }
  template <class At>
  static simd::f32x4 delta(At &&at) {
    return simd::splat4(0.0F) - at(-4) - at(-3) * 0.75F - at(-2) * 0.5F - at(-1) * 0.25F + at(1) * 0.25F +
           at(2) * 0.5F + at(3) * 0.75F + at(4);
  }
  static simd::f32x4 keepDelta(simd::f32x4 sum) { return sum; }
  template <class At>
  static simd::f32x4 acceleration(At &&at) {
    return auroraAcceleration(at);
  }
  static simd::f32x4 keepAcceleration(simd::f32x4 sum) { return sum; }
};

// The shift counts are the scale factor, and the scale factor plus 2, modulo 32; a negative factor is no
// shift to the left here. The stored values are shifted already when the window runs over them, so the factor
// acts twice on delta and acceleration: that is the format that callers have.
struct AuroraShifted {
  using T = std::int16_t;
  int shift;
  int deltaShift;

  explicit AuroraShifted(std::int32_t scaleFactor)
      : shift(static_cast<int>(static_cast<std::uint32_t>(scaleFactor) % 32)), deltaShift((shift + 2) % 32) {}

  simd::i32x8 keep(simd::i32x8 x) const { return x >> shift; }
  std::int16_t keepEnergy(float x) const { return sat16(truncate32(static_cast<double>(x)) >> shift); }
  // Four times the single-precision window.
  template <class At>
  static simd::i32x8 delta(At &&at) {
    const simd::i32x8 odd = at(1) - at(-1) + (at(3) - at(-3));
    const simd::i32x8 even = at(2) - at(-2) + (at(3) - at(-3));
    return odd + (even << 1) + ((at(4) - at(-4)) << 2);
  }
  simd::i32x8 keepDelta(simd::i32x8 sum) const { return sum >> deltaShift; }
  template <class At>
  static simd::f32x8 acceleration(At &&at) {
    return auroraAcceleration([&](std::int32_t k) { return simd::toSingle(at(k)); });
  }
  simd::i32x8 keepAcceleration(simd::f32x8 sum) const { return simd::truncate(sum) >> shift; }
};

// A lane gain in the type of what it multiplies.
inline simd::f32x4 convertTo(simd::f32x4, simd::f32x4 gain) { return gain; }
inline simd::i32x8 convertTo(simd::i32x8, simd::i32x8 gain) { return gain; }
inline simd::f32x8 convertTo(simd::f32x8, simd::i32x8 gain) { return simd::toSingle(gain); }

struct NoGains {
  template <class Access, class V>
  V times(V v, std::int32_t, Access, std::int64_t) const {
    return v;
  }
  float timesEnergy(float v) const { return v; }
};

template <class T>
struct AuroraGains {
  const T *gains;

  template <class Access, class V>
  V times(V v, std::int32_t stage, Access access, std::int64_t j) const {
    return v * convertTo(v, access.load(gains + stage * kAuroraWidth + j));
  }
  float timesEnergy(float v) const { return v * static_cast<float>(load(gains + kAuroraWidth - 1)); }
};

template <class Number, class Gains, class T = typename Number::T>
inline void extendAurora(const T *src, T *dst, std::int64_t step, std::int32_t height, std::int32_t mode,
                         const Number &number, const Gains &gains) {
  const FeatureRows<T> rows{dst, step};
  const auto keep = [&](std::int64_t from, std::int64_t t) {
    const T *row = src + from * kAuroraSource;
    forColumns<T>(kAuroraWidth - 1, [&](auto access, std::int64_t j) {
      access.store(rows[t] + j, number.keep(gains.times(access.load(row + j), 0, access, j)));
    });
    const float energy = auroraEnergy(static_cast<float>(load(row + 12)), static_cast<float>(load(row + 13)));
    store(rows[t] + 12, number.keepEnergy(gains.timesEnergy(energy)));
  };
  const auto derive = [&](std::int32_t, std::int64_t t, std::int64_t filled) {
    const T *near[2 * kAuroraReach + 1];
    for (std::int32_t k = -kAuroraReach; k <= kAuroraReach; ++k)
      near[kAuroraReach + k] = rows[clampRow(t + k, filled)];
    forColumns<T>(kAuroraWidth, [&](auto access, std::int64_t j) {
      const auto at = [&](std::int32_t k) { return access.load(near[kAuroraReach + k] + j); };
      access.store(rows[t] + kAuroraWidth + j, number.keepDelta(gains.times(number.delta(at), 1, access, j)));
      access.store(rows[t] + 2 * kAuroraWidth + j,
                   number.keepAcceleration(gains.times(number.acceleration(at), 2, access, j)));
    });
  };
  stream({kAuroraReach, 1}, kAuroraLead, height, mode, keep, derive);
}

// --- the delta of a whole block in place

inline simd::f32x4 weighted(std::int32_t k, simd::f32x4 v) { return simd::splat4(static_cast<float>(k)) * v; }
inline simd::i32x8 weighted(std::int32_t k, simd::i32x8 v) {
  return simd::i32x8{simd::splat4(k), simd::splat4(k)} * v;
}
inline simd::f32x4 zeroLanes(const float *) { return simd::splat4(0.0F); }
inline simd::i32x8 zeroLanes(const std::int16_t *) { return {simd::splat4(0), simd::splat4(0)}; }

// Near the edges the whole far side of the window is the edge row: the first window rows take row 0 for every
// row before them, the last ones the last row for every row after them, even where those rows exist. This is
// not the clamped window of the streaming forms, and callers rely on the difference.
template <class T, class Number, class Gains>
inline void deriveBlock(const FeatureRows<T> &rows, std::int64_t height, std::int64_t width,
                        std::int32_t window, const Number &number, const Gains &gains) {
  for (std::int64_t t = 0; t < height; ++t) {
    const bool early = t < window;
    const bool late = t >= height - window;
    forColumns<T>(width, [&](auto access, std::int64_t j) {
      auto sum = zeroLanes(rows.base);
      for (std::int32_t k = 1; k <= window; ++k) {
        const T *next = rows[late ? height - 1 : t + k];
        const T *previous = rows[early ? 0 : t - k];
        sum = sum + weighted(k, number.difference(access.load(next + j), access.load(previous + j)));
      }
      access.store(rows[t] + width + j, number.scaled(sum, gains.of(1, access, j)));
    });
  }
}

}  // namespace orv::delta

#endif
