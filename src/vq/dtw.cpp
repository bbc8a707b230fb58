// orvsDTW_L2_*: the distance of two sequences of vectors by dynamic time warping.

#include <cfloat>
#include <cmath>
#include <cstddef>
#include <cstdint>

#include "core/alloc.h"
#include "orvsr/vq.h"
#include "primitives/arithmetic.h"
#include "primitives/convert.h"
#include "primitives/memory.h"
#include "primitives/reduce.h"
#include "primitives/simd.h"

using namespace orv;
using simd::f32x4;
using simd::f64x4;

namespace {

// Working memory up to this many single-precision elements, and row tables up to this many bytes, live on the
// stack.
constexpr std::int64_t kStackElements = 512;
constexpr std::int64_t kStackTableBytes = 2048;

// Distances: differences and squares in single precision, their sum and its root in double, rounded once.
// Elements that fill no lanes at the end are taken together with those before them, whose squares are masked
// out.
struct LastLanes {
  explicit LastLanes(std::int32_t width)
      : start(width - 4), mask(simd::pack4(0, 1, 2, 3) >= simd::splat4(static_cast<float>(4 - width % 4))) {}
  std::int32_t start;
  f32x4 mask;
};

f64x4 squares(f32x4 a, const float *b) {
  const f32x4 difference = a - simd::load4(b);
  return simd::widen(difference * difference);
}
f64x4 squares(f32x4 a, const float *b, f32x4 mask) {
  const f32x4 difference = a - simd::load4(b);
  return simd::widen(mask & (difference * difference));
}

float localDistance(const float *a, const float *b, std::int32_t width) {
  double sum = 0;
  if (width < 4) {
    for (std::int32_t k = 0; k < width; ++k) {
      const float difference = load(a + k) - load(b + k);
      const float square = difference * difference;
      sum += static_cast<double>(square);
    }
  } else {
    f64x4 lanes{};
    for (std::int32_t k = 0; width - k >= 4; k += 4) lanes = lanes + squares(simd::load4(a + k), b + k);
    if (const LastLanes last(width); width % 4 != 0)
      lanes = lanes + squares(simd::load4(a + last.start), b + last.start, last.mask);
    sum = simd::sumLanes(lanes);
  }
  return static_cast<float>(std::sqrt(sum));
}

// Of one frame, of 4 elements or more, to four others; the same to the last bit. What is loaded of the one
// frame serves all four, and roots are taken two at a time.
void localDistances(const float *a, const float *const *b, std::int32_t width, float *distances) {
  f64x4 lanes[4] = {};
  for (std::int32_t k = 0; width - k >= 4; k += 4) {
    const f32x4 from = simd::load4(a + k);
    for (int r = 0; r < 4; ++r) lanes[r] = lanes[r] + squares(from, b[r] + k);
  }
  if (const LastLanes last(width); width % 4 != 0) {
    const f32x4 from = simd::load4(a + last.start);
    for (int r = 0; r < 4; ++r) lanes[r] = lanes[r] + squares(from, b[r] + last.start, last.mask);
  }
  const f64x4 sums = simd::sumLanesOfFour(lanes[0].low + lanes[0].high, lanes[1].low + lanes[1].high,
                                          lanes[2].low + lanes[2].high, lanes[3].low + lanes[3].high);
  simd::store4(distances, simd::narrow(simd::sqrt(sums.low), simd::sqrt(sums.high)));
}

// Which frames of the short sequence, of shortLen, may meet frame j of the long one, of longLen: a
// parallelogram of slopes 1/2 and 2, widened by d. All in 64 bits, so that no length overflows.
struct Band {
  std::int64_t longLen, shortLen, d;

  std::int32_t upper(std::int64_t j) const {
    const std::int64_t u =
        3 * j < 2 * shortLen - longLen ? d + 2 * j : shortLen + d + ((j - longLen - 1) >> 1);
    return static_cast<std::int32_t>(u < shortLen ? u : shortLen - 1);
  }
  std::int32_t lower(std::int64_t j) const {
    const std::int64_t v =
        3 * j > 4 * longLen - 2 * shortLen - 2 ? 2 * j + shortLen - 2 * longLen - d + 1 : j / 2 - d;
    return static_cast<std::int32_t>(v < 0 ? 0 : v);
  }
};

struct Sequence {
  const float *const *rows;
  std::int32_t len;
};

// The recursion. Rows i0 .. i0 + n - 1 of the short sequence are alive.
class Warp {
 public:
  Warp(Sequence longer, Sequence shorter, std::int32_t width, float *memory, std::int64_t rowLen,
       std::int64_t columnLen)
      : longer_(longer),
        shorter_(shorter),
        width_(width),
        cost_(memory),
        local_(memory + rowLen),
        same_(memory + 2 * rowLen),
        below_(memory + 3 * rowLen),
        twoBelow_(memory + 4 * rowLen),
        upper_(reinterpret_cast<std::int32_t *>(memory + 5 * rowLen)),
        lower_(upper_ + columnLen) {
    ownsZero_8u(reinterpret_cast<std::uint8_t *>(memory),
                static_cast<std::size_t>(5 * rowLen) * sizeof(float));
  }

  float run(std::int32_t d, float beam) {
    const Band band{longer_.len, shorter_.len, d};
    for (std::int32_t j = 0; j < longer_.len; ++j) {
      store(upper_ + j, band.upper(j));
      store(lower_ + j, band.lower(j));
    }
    formDistances(0, 0, d + 1, cost_);
    // A single column is not reduced to a result; callers know this value as "no path".
    if (longer_.len == 1) return FLT_MAX;
    beam += 1.1920929e-7F;

    float smallest = FLT_MAX;
    std::int32_t i0 = 0, n = d + 1;
    for (std::int32_t j = 1; j < longer_.len; ++j) {
      const std::int32_t room = load(upper_ + j) - i0 + 1;
      const std::int32_t next = room < n + 2 ? room : n + 2;
      formDistances(j, i0, i0 + next, local_);
      step(i0, n, next);
      n = next;
      if (const std::int32_t lowest = load(lower_ + j); i0 < lowest) {
        n -= lowest - i0;
        i0 = lowest;
      }
      // An empty band leaves the last minimum standing: the reduction refuses the length, and that is meant.
      orvsMin_32f(cost_ + i0, n, &smallest);
      if (smallest >= FLT_MAX) break;
      while (n > 1 && cost_[i0 + n - 1] > smallest + beam) --n;
      while (n > 1 && cost_[i0] > smallest + beam) {
        ++i0;
        --n;
      }
    }
    return smallest;
  }

 private:
  void formDistances(std::int32_t j, std::int32_t i, std::int32_t end, float *distances) const {
    for (; width_ >= 4 && end - i >= 4; i += 4)
      localDistances(longer_.rows[j], shorter_.rows + i, width_, distances + i);
    for (; i < end; ++i) distances[i] = localDistance(longer_.rows[j], shorter_.rows[i], width_);
  }

  // cost'(i) = local(i) + min(cost(i), cost(i - 1), cost(i - 2)), for `next` rows from i0. Where a place has
  // no predecessor the candidate is the largest value itself, without the local distance.
  void step(std::int32_t i0, std::int32_t n, std::int32_t next) {
    candidates(same_, 0, i0, n, next);
    candidates(below_, 1, i0, n, next);
    candidates(twoBelow_, 2, i0, n, next);
    orvsMinEvery_32f_I(same_ + i0, below_ + i0, next);
    orvsMinEvery_32f_I(below_ + i0, twoBelow_ + i0, next);
    for (std::int32_t i = i0; i < i0 + next; ++i) cost_[i] = twoBelow_[i];
  }

  void candidates(float *dst, std::int32_t rise, std::int32_t i0, std::int32_t n, std::int32_t next) const {
    const std::int32_t end = i0 + next;
    const std::int32_t first = i0 + rise;
    const std::int32_t last = first + n < end ? first + n : end;
    std::int32_t i = i0;
    for (; i < end && i < first; ++i) dst[i] = FLT_MAX;
    for (; i < last; ++i) dst[i] = cost_[i - rise] + local_[i];
    for (; i < end; ++i) dst[i] = FLT_MAX;
  }

  Sequence longer_, shorter_;
  std::int32_t width_;
  float *cost_, *local_, *same_, *below_, *twoBelow_;
  std::int32_t *upper_, *lower_;
};

// All counts in 64 bits: what a 32-bit length cannot express cannot be allocated.
template <class T>
T *allocateElements(std::int64_t count) {
  return count > INT32_MAX ? nullptr : allocate<T>(static_cast<std::int32_t>(count));
}

OrvStatus warp(Sequence a, Sequence b, std::int32_t width, float *dist, std::int32_t delta, float beta) {
  // Sequences of equal length keep the order of the arguments: the first is the long one.
  const bool swapped = a.len < b.len;
  const Sequence &longer = swapped ? b : a;
  const Sequence &shorter = swapped ? a : b;
  const bool narrow = static_cast<std::uint32_t>(delta) < static_cast<std::uint32_t>(shorter.len);
  const std::int32_t d = narrow ? delta : shorter.len - 1;
  const float beam = beta < 0 ? 0 : beta;

  const std::int64_t rowLen = (std::int64_t{shorter.len} + 8) / 4 * 4;
  const std::int64_t columnLen = (std::int64_t{longer.len} + 3) / 4 * 4;
  const std::int64_t elements = 5 * rowLen + 2 * columnLen;
  alignas(16) float local[kStackElements];
  float *memory = local;
  if (elements > kStackElements) {
    memory = allocateElements<float>(elements);
    if (memory == nullptr) return orvStsMemAllocErr;
  }
  *dist = Warp(longer, shorter, width, memory, rowLen, columnLen).run(d, beam);
  if (memory != local) orvsFree(memory);
  return orvStsNoErr;
}

// The integer forms: both sequences as packed floats under one table of row pointers, three blocks, released
// together.
template <class Rows, class Convert>
OrvStatus warpConverted(const Rows &first, std::int32_t len1, const Rows &second, std::int32_t len2,
                        std::int32_t width, std::int32_t *dist, std::int32_t delta, std::int32_t beta,
                        std::int32_t scaleFactor, Convert convert) {
  const float **table = allocateElements<const float *>(std::int64_t{len1} + len2);
  if (table == nullptr) return orvStsMemAllocErr;
  OrvStatus status = orvStsMemAllocErr;
  if (float *floats1 = allocateElements<float>(std::int64_t{len1} * width)) {
    if (float *floats2 = allocateElements<float>(std::int64_t{len2} * width)) {
      const auto fill = [&](const Rows &rows, std::int32_t len, float *floats, const float **pointers) {
        for (std::int32_t r = 0; r < len; ++r) {
          float *row = floats + static_cast<std::ptrdiff_t>(r) * width;
          convert(rows(r), row, width);
          pointers[r] = row;
        }
      };
      fill(first, len1, floats1, table);
      fill(second, len2, floats2, table + len1);
      // The status of the recursion is not looked at; if it could not run, the distance is that of no path.
      float result = FLT_MAX;
      warp({table, len1}, {table + len1, len2}, width, &result, delta, static_cast<float>(beta));
      orvsConvert_32f32s_Sfs(&result, dist, 1, kRoundNearestEven, scaleFactor);
      status = orvStsNoErr;
      orvsFree(floats2);
    }
    orvsFree(floats1);
  }
  orvsFree(table);
  return status;
}

const auto kFrom8u = [](const std::uint8_t *src, float *dst, std::int32_t len) {
  orvsConvert_8u32f(src, dst, len);
};
const auto kFrom16s = [](const std::int16_t *src, float *dst, std::int32_t len) {
  orvsConvert_16s32f_Sfs(src, dst, len, 0);
};

template <class T>
struct Pointers {
  const T *const *rows;
  const T *operator()(std::int32_t r) const { return rows[r]; }
};
template <class T>
struct Strided {
  const T *base;
  std::int32_t step;
  const T *operator()(std::int32_t r) const { return base + static_cast<std::ptrdiff_t>(r) * step; }
};

OrvStatus check(const void *src1, const void *src2, const void *dist, std::int32_t height1,
                std::int32_t height2, std::int32_t width, std::int32_t step) {
  if (src1 == nullptr || src2 == nullptr || dist == nullptr) return orvStsNullPtrErr;
  if (height1 < 1 || height2 < 1 || width < 1 || step < width) return orvStsSizeErr;
  return orvStsNoErr;
}

}  // namespace

OrvStatus orvsDTW_L2_32f_D2L(const float *const *ppSrc1, int32_t height1, const float *const *ppSrc2,
                             int32_t height2, int32_t width, float *pDist, int32_t delta, float beta) {
  const OrvStatus status = check(ppSrc1, ppSrc2, pDist, height1, height2, width, width);
  if (status != orvStsNoErr) return status;
  return warp({ppSrc1, height1}, {ppSrc2, height2}, width, pDist, delta, beta);
}

OrvStatus orvsDTW_L2_32f_D2(const float *pSrc1, int32_t height1, const float *pSrc2, int32_t height2,
                            int32_t width, int32_t step, float *pDist, int32_t delta, float beta) {
  const OrvStatus status = check(pSrc1, pSrc2, pDist, height1, height2, width, step);
  if (status != orvStsNoErr) return status;
  const std::int64_t count = std::int64_t{height1} + height2;
  const float *local[kStackTableBytes / sizeof(float *)];
  const float **table = local;
  if (count * static_cast<std::int64_t>(sizeof(float *)) > kStackTableBytes) {
    table = allocateElements<const float *>(count);
    if (table == nullptr) return orvStsMemAllocErr;
  }
  for (std::int32_t r = 0; r < height1; ++r) table[r] = Strided<float>{pSrc1, step}(r);
  for (std::int32_t r = 0; r < height2; ++r) table[height1 + r] = Strided<float>{pSrc2, step}(r);
  // The status of the recursion is not passed on; callers of this form see success. pDist then stays as it
  // was.
  warp({table, height1}, {table + height1, height2}, width, pDist, delta, beta);
  if (table != local) orvsFree(table);
  return orvStsNoErr;
}

OrvStatus orvsDTW_L2_8u32s_D2LSfs(const uint8_t *const *ppSrc1, int32_t height1, const uint8_t *const *ppSrc2,
                                  int32_t height2, int32_t width, int32_t *pDist, int32_t delta, int32_t beta,
                                  int32_t scaleFactor) {
  const OrvStatus status = check(ppSrc1, ppSrc2, pDist, height1, height2, width, width);
  if (status != orvStsNoErr) return status;
  return warpConverted(Pointers<std::uint8_t>{ppSrc1}, height1, Pointers<std::uint8_t>{ppSrc2}, height2,
                       width, pDist, delta, beta, scaleFactor, kFrom8u);
}

OrvStatus orvsDTW_L2_8u32s_D2Sfs(const uint8_t *pSrc1, int32_t height1, const uint8_t *pSrc2, int32_t height2,
                                 int32_t width, int32_t step, int32_t *pDist, int32_t delta, int32_t beta,
                                 int32_t scaleFactor) {
  const OrvStatus status = check(pSrc1, pSrc2, pDist, height1, height2, width, step);
  if (status != orvStsNoErr) return status;
  return warpConverted(Strided<std::uint8_t>{pSrc1, step}, height1, Strided<std::uint8_t>{pSrc2, step},
                       height2, width, pDist, delta, beta, scaleFactor, kFrom8u);
}

OrvStatus orvsDTW_L2Low_16s32s_D2LSfs(const int16_t *const *ppSrc1, int32_t height1,
                                      const int16_t *const *ppSrc2, int32_t height2, int32_t width,
                                      int32_t *pDist, int32_t delta, int32_t beta, int32_t scaleFactor) {
  const OrvStatus status = check(ppSrc1, ppSrc2, pDist, height1, height2, width, width);
  if (status != orvStsNoErr) return status;
  return warpConverted(Pointers<std::int16_t>{ppSrc1}, height1, Pointers<std::int16_t>{ppSrc2}, height2,
                       width, pDist, delta, beta, scaleFactor, kFrom16s);
}

OrvStatus orvsDTW_L2Low_16s32s_D2Sfs(const int16_t *pSrc1, int32_t height1, const int16_t *pSrc2,
                                     int32_t height2, int32_t width, int32_t step, int32_t *pDist,
                                     int32_t delta, int32_t beta, int32_t scaleFactor) {
  const OrvStatus status = check(pSrc1, pSrc2, pDist, height1, height2, width, step);
  if (status != orvStsNoErr) return status;
  return warpConverted(Strided<std::int16_t>{pSrc1, step}, height1, Strided<std::int16_t>{pSrc2, step},
                       height2, width, pDist, delta, beta, scaleFactor, kFrom16s);
}
