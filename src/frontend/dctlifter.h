// The states of the cosine transform with lifter: how they lie in memory, how they are born, and the
// transform.

#ifndef ORV_FRONTEND_DCTLIFTER_H
#define ORV_FRONTEND_DCTLIFTER_H

#include <cmath>
#include <cstddef>
#include <cstdint>

#include "core/alloc.h"
#include "orvsr/frontend.h"
#include "primitives/memory.h"
#include "primitives/simd.h"

struct OrvsDCTLifterState_32f {
  std::int32_t lifterParam;  // -1 where the caller supplied the lifter
  std::int32_t dctLen;
  std::int32_t numCeps;
  std::int32_t withC0;
  float *lifter;    // numCeps + 1 gains, that of C0 first
  float **cosRows;  // numCeps + 1 rows of dctLen values, that of C0 first
};

struct OrvsDCTLifterState_16s {
  std::int32_t lifterParam;
  std::int32_t dctLen;
  std::int32_t numCeps;
  std::int32_t withC0;
  float *lifter;
  float *scratch;  // the results ahead of their conversion
  float **cosRows;
};

namespace orv::dctlifter {

// --- sizes

struct Shape {
  std::int32_t dctLen;
  std::int32_t numCeps;
  bool withC0;

  std::int64_t rows() const { return std::int64_t{numCeps} + 1; }
  std::int64_t results() const { return std::int64_t{numCeps} + withC0; }
  // Values from one row to the next: every row starts on a 32-byte boundary.
  std::int64_t rowStep() const { return (std::int64_t{dctLen} + 7) / 8 * 8; }
  // A matrix of so many values that its bytes are no 32-bit number. The product itself fits 64 bits.
  bool tooLarge() const { return rowStep() * rows() > INT32_MAX / 4; }
};

inline constexpr std::int64_t kNoSize = INT64_MAX;

template <class State>
inline constexpr bool hasScratch = requires(State state) {
  state.scratch;
};

// What the constructors need: record, arrays and the spare bytes that align them.
template <class State>
std::int64_t bytesOf(const Shape &s) {
  if (s.tooLarge()) return kNoSize;
  const std::int64_t n = s.numCeps;
  return s.rowStep() * s.rows() * 4 + n * 8 + 36 + (hasScratch<State> ? n * 8 + 144 : n * 4 + 100);
}

// The 16s form with a table and C0 counts the plain row length, without the rounding of the others. It is
// enough for the same layout, since the spare bytes of each row cover the rounding and the last row needs
// none.
inline std::int64_t bytesOfPlainRows(const Shape &s) {
  if (s.tooLarge()) return kNoSize;
  const std::int64_t n = s.numCeps;
  return (std::int64_t{s.dctLen} * 4 + 40) * s.rows() + n * 4 + 76 + n * 4 + 36 + 32;
}

inline OrvStatus reportSize(std::int64_t bytes, std::int32_t *pSize) {
  if (bytes > INT32_MAX) return orvStsSizeErr;
  store(pSize, static_cast<std::int32_t>(bytes));
  return orvStsNoErr;
}

// --- lifters

constexpr double kPi = 3.141592653589793;

// (1 + L/2 sin(pi i / L)) * gain, in double up to the product with the gain. There is no clamp where i passes
// L.
struct SinusoidalLifter {
  std::int32_t param;
  float gain;

  void fill(float *lifter, std::int32_t numCeps) const {
    const auto half = static_cast<double>(static_cast<float>(param) * 0.5F);
    for (std::int64_t i = 0; i <= numCeps; ++i) {
      const double sine = std::sin(static_cast<double>(i) * kPi / static_cast<double>(param));
      store(lifter + i, static_cast<float>(sine * half + 1.0) * gain);
    }
  }
};

// The sinusoidal lifter with a gain of its own for C0.
struct SinusoidalLifterC0 {
  SinusoidalLifter others;
  float gain0;
  std::int32_t param = others.param;

  void fill(float *lifter, std::int32_t numCeps) const {
    others.fill(lifter, numCeps);
    store(lifter, gain0);
  }
};

// The caller's gains. The last of them serves C0 too where there is one; this is meant.
template <class T>
struct TableLifter {
  const T *table;
  bool withC0;
  static constexpr std::int32_t param = -1;

  void fill(float *lifter, std::int32_t numCeps) const {
    const auto gain = [this](std::int32_t i) { return static_cast<float>(load(table + i)); };
    store(lifter, withC0 ? gain(numCeps - 1) : 0.0F);
    for (std::int32_t i = 0; i < numCeps; ++i) store(lifter + 1 + i, gain(i));
  }
};

// --- construction

inline std::uint8_t *alignUp(std::uint8_t *p) { return p + (0 - reinterpret_cast<std::uintptr_t>(p)) % 32; }

// A row block: the row pointers, then the rows.
inline std::int64_t rowPointerBytes(const Shape &s) {
  return s.rows() * static_cast<std::int64_t>(sizeof(float *));
}
inline std::int64_t rowBlockBytes(const Shape &s) {
  return s.tooLarge() ? kNoSize : rowPointerBytes(s) + 31 + s.rowStep() * s.rows() * 4;
}

// Row i is the cosine of (j - 1/2) pi i / dctLen over j = 1 .. dctLen, without any norm.
inline float **fillRowBlock(std::uint8_t *block, const Shape &s) {
  auto **cosRows = reinterpret_cast<float **>(block);
  auto *row = reinterpret_cast<float *>(alignUp(block + rowPointerBytes(s)));
  for (std::int64_t i = 0; i < s.rows(); ++i, row += s.rowStep()) {
    store(cosRows + i, row);
    for (std::int64_t j = 0; j < s.dctLen; ++j) {
      const float x = static_cast<float>(j + 1) - 0.5F;
      const double angle = static_cast<double>(x) * (static_cast<double>(i) * kPi) / s.dctLen;
      row[j] = static_cast<float>(std::cos(angle));
    }
  }
  return cosRows;
}

template <class State, class Lifter>
void build(State *pState, const Shape &s, const Lifter &lifter, float *gains, float *scratch,
           std::uint8_t *rowBlock) {
  lifter.fill(gains, s.numCeps);
  State state{};
  state.lifterParam = lifter.param;
  state.dctLen = s.dctLen;
  state.numCeps = s.numCeps;
  state.withC0 = s.withC0;
  state.lifter = gains;
  if constexpr (hasScratch<State>) state.scratch = scratch;
  state.cosRows = fillRowBlock(rowBlock, s);
  store(pState, state);
}

template <class State, class Lifter>
OrvStatus initAlloc(State **ppState, const Shape &s, const Lifter &lifter) {
  const std::int64_t blockBytes = rowBlockBytes(s);
  if (blockBytes > INT32_MAX) return orvStsMemAllocErr;
  auto *state = reinterpret_cast<State *>(allocateBytes(sizeof(State)));
  if (state == nullptr) return orvStsMemAllocErr;
  float *gains = orvsMalloc_32f(static_cast<std::int32_t>(s.rows()));
  if (gains == nullptr) {
    orvsFree(state);
    return orvStsMemAllocErr;
  }
  std::uint8_t *block = allocateBytes(blockBytes);
  if (block == nullptr) {
    orvsFree(gains);
    orvsFree(state);
    return orvStsMemAllocErr;
  }
  // A scratch that cannot be had is not reported here; callers rely on the state. The transform reports it.
  float *scratch = nullptr;
  if (hasScratch<State>) scratch = orvsMalloc_32f(static_cast<std::int32_t>(s.results()));
  build(state, s, lifter, gains, scratch, block);
  store(ppState, state);
  return orvStsNoErr;
}

// Null arrays are skipped. The array of row pointers is the start of the row block.
template <class State>
OrvStatus release(State *pState) {
  if (pState == nullptr) return orvStsNullPtrErr;
  const State state = load(pState);
  const auto drop = [](void *block) {
    if (block != nullptr) orvsFree(block);
  };
  drop(state.cosRows);
  drop(state.lifter);
  if constexpr (hasScratch<State>) drop(state.scratch);
  drop(pState);
  return orvStsNoErr;
}

// In a buffer of `bytes` bytes, which may start anywhere: the record first, each array on a 32-byte boundary.
// A buffer whose size no 32-bit number can state is refused.
template <class State, class Lifter>
OrvStatus init(State *pState, std::int64_t bytes, const Shape &s, const Lifter &lifter) {
  if (bytes > INT32_MAX) return orvStsSizeErr;
  std::uint8_t *free = reinterpret_cast<std::uint8_t *>(pState) + sizeof(State);
  const auto take = [&free](std::int64_t singles) {
    std::uint8_t *start = alignUp(free);
    free = start + singles * 4;
    return reinterpret_cast<float *>(start);
  };
  float *gains = take(s.rows());
  float *scratch = hasScratch<State> ? take(s.results()) : nullptr;
  build(pState, s, lifter, gains, scratch, alignUp(free));
  return orvStsNoErr;
}

// --- transform

inline simd::f32x4 loadAsSingle(const float *p) { return simd::load4(p); }
inline simd::f32x4 loadAsSingle(const std::int16_t *p) { return simd::toSingle(simd::loadWidened4(p)); }
inline simd::f32x4 loadAsSingle(const std::int32_t *p) { return simd::toSingle(simd::load4(p)); }

// The dot product of a source with a row: `head` elements one by one, then eight at a time in two
// accumulators of four lanes, then one by one.
template <class T>
inline float dotProduct(const T *src, std::int32_t len, std::int32_t head, const float *row) {
  using namespace simd;
  float sum = 0.0F;
  std::int32_t i = 0;
  for (; i < head; ++i) sum += row[i] * static_cast<float>(load(src + i));
  if (len - i >= 8) {
    f32x8 lanes{firstLane4(sum), splat4(0.0F)};
    for (; len - i >= 8; i += 8)
      lanes = lanes +
              f32x8{loadAsSingle(src + i) * load4(row + i), loadAsSingle(src + i + 4) * load4(row + i + 4)};
    sum = sumLanes(lanes);
  }
  for (; i < len; ++i) sum += row[i] * static_cast<float>(load(src + i));
  return sum;
}

// Those of four rows, each summed in the same order. What is taken one by one is summed with one row to a
// lane.
template <class T>
inline simd::f32x4 dotProducts(const T *src, std::int32_t len, std::int32_t head, const float *row0,
                               const float *row1, const float *row2, const float *row3) {
  using namespace simd;
  f32x4 sum = splat4(0.0F);
  std::int32_t i = 0;
  const auto oneByOne = [&](std::int32_t end) {
    for (; end - i >= 4; i += 4) {
      const f32x4 x = loadAsSingle(src + i);
      f32x4 products[4] = {x * load4(row0 + i), x * load4(row1 + i), x * load4(row2 + i),
                           x * load4(row3 + i)};
      transpose(products);
      sum = sum + products[0] + products[1] + products[2] + products[3];
    }
    for (; i < end; ++i)
      sum = sum + pack4(row0[i], row1[i], row2[i], row3[i]) * static_cast<float>(load(src + i));
  };
  oneByOne(head);
  if (len - i >= 8) {
    f32x4 low[4] = {sum, splat4(0.0F), splat4(0.0F), splat4(0.0F)};
    transpose(low);
    f32x4 high[4] = {splat4(0.0F), splat4(0.0F), splat4(0.0F), splat4(0.0F)};
    const float *const rows[4] = {row0, row1, row2, row3};
    for (; len - i >= 8; i += 8) {
      const f32x4 first = loadAsSingle(src + i);
      const f32x4 second = loadAsSingle(src + i + 4);
      for (int r = 0; r < 4; ++r) {
        low[r] = low[r] + first * load4(rows[r] + i);
        high[r] = high[r] + second * load4(rows[r] + i + 4);
      }
    }
    sum = sumLanesOfFour(low[0] + high[0], low[1] + high[1], low[2] + high[2], low[3] + high[3]);
  }
  oneByOne(len);
  return sum;
}

// All results in single precision: the coefficients 1 .. numCeps, then C0 where there is one.
template <class T, class State>
void transform(const T *src, std::int32_t head, const State &state, float *results) {
  const std::int32_t n = state.numCeps;
  const std::int32_t len = state.dctLen;
  const auto row = [&](std::int32_t i) -> const float * { return load(state.cosRows + i); };
  const auto one = [&](std::int32_t i, std::int32_t result) {
    store(results + result, dotProduct(src, len, head, row(i)) * load(state.lifter + i));
  };
  std::int32_t i = 1;
  for (; i + 3 <= n; i += 4) {
    const simd::f32x4 sums = dotProducts(src, len, head, row(i), row(i + 1), row(i + 2), row(i + 3));
    simd::store4(results + i - 1, sums * simd::load4(state.lifter + i));
  }
  for (; i <= n; ++i) one(i, i - 1);
  if (state.withC0) one(0, n);
}

}  // namespace orv::dctlifter

#endif
