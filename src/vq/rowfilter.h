// Which code vectors may be the nearest: a comparison in 16-bit integers that never errs on the wrong side.
//
// Vectors and rows are scaled to integers X and Y, each element off by at most one unit, a vector outside the
// range of the rows being moved to its edge, which brings it nearer to all of them. Then |X - Y| exceeds the
// true distance by at most 2 sqrt(width) units, and a row with
//
//     |X - Y|^2 = |X|^2 + |Y|^2 - 2 X Y >= (|best| (1 + margin) + 2.1 sqrt(width))^2
//
// cannot be nearer than the best so far, whatever the rounding of its single-precision distance. Only the
// other rows, a few in a thousand, have that distance computed, in their order. |Y|^2 and 2 X Y are exact,
// two products an instruction and lane, of four rows at a time.

#ifndef ORV_VQ_ROWFILTER_H
#define ORV_VQ_ROWFILTER_H

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>

#include "vq/distance.h"
#include "vq/scan.h"

namespace orv::cdbk {

template <class T>
class RowFilter {
 public:
  static constexpr std::int32_t kMaxWidth = 128;

  explicit RowFilter(const CodeRows<T> &rows) : rows_(rows) {}

  // False if the numbers are too large or too small for it.
  //
  // The largest element becomes `most`, which keeps all sums within 32 bits, at most 5 most^2 an element.
  bool chooseScale() {
    float largest = 0;
    for (std::int32_t k = 0; k < paddedWidth(); ++k) multipliers_[k] = 0;
    for (std::int32_t k = 0; k < rows_.width; ++k) {
      const float weight = rows_.weights == nullptr ? 1 : static_cast<float>(load(rows_.weights + k));
      // Beyond these limits, which no model comes near, squares may leave the range of normal numbers.
      if (weight != 0 && !(weight >= 1e-6F && weight <= 1e6F)) return false;
      multipliers_[k] = std::sqrt(weight);
    }
    for (std::int32_t r = 0; r < rows_.size; ++r) largest = std::max(largest, largestOf(rows_.row(r)));
    if (!(largest >= 1e-9F && largest <= 1e15F)) return false;
    most_ = std::min(8191.0F, std::floor(std::sqrt(4.294967e8F / static_cast<float>(paddedWidth()))) - 1);
    unitsPerOne_ = most_ / largest;
    for (std::int32_t k = 0; k < rows_.width; ++k) multipliers_[k] *= unitsPerOne_;
    slack_ = 2.1 * std::sqrt(static_cast<double>(rows_.width));
    return true;
  }

  void scan(const T *x, std::ptrdiff_t step, std::int32_t count, Nearest *nearest) {
    const std::int32_t block = std::min(kMaxVectors, kVectorElements / paddedWidth());
    const std::int32_t chunk = kRowElements / paddedWidth() / kGroup * kGroup;
    for (std::int32_t begin = 0; begin < count; begin += block) {
      const std::int32_t n = std::min(block, count - begin);
      for (std::int32_t i = 0; i < n; ++i) {
        takeVector(i, x + (begin + i) * step);
        nearest[begin + i] = Nearest();
      }
      for (std::int32_t first = 0; first < rows_.size; first += chunk) {
        packRows(first, std::min(chunk, rows_.size - first));
        for (std::int32_t i = 0; i < n; ++i) scanPacked(i, x + (begin + i) * step, nearest[begin + i]);
      }
    }
  }

 private:
  static constexpr std::int32_t kMaxVectors = 256;
  static constexpr std::int32_t kVectorElements = 10240;
  static constexpr std::int32_t kRowElements = 10240;
  static constexpr std::int32_t kGroup = 16;  // rows that are decided together

  std::int32_t paddedWidth() const { return (rows_.width + 7) / 8 * 8; }
  std::int32_t pairs() const { return (rows_.width + 1) / 2; }

  float largestOf(const T *row) const {
    simd::f32x4 lanes{};
    std::int32_t k = 0;
    for (; rows_.width - k >= 4; k += 4)
      lanes = simd::max(simd::andNot(simd::signBits4(), singles4(row + k) * simd::load4(multipliers_ + k)),
                        lanes);
    float each[4];
    simd::store4(each, lanes);
    float largest = std::max(std::max(each[0], each[1]), std::max(each[2], each[3]));
    for (; k < rows_.width; ++k)
      largest = std::max(largest, std::abs(static_cast<float>(load(row + k)) * multipliers_[k]));
    return largest;
  }

  // Elements k to k + 7 in units, those behind the last as 0.
  simd::i16x8 inUnits(const T *p, std::int32_t k, float limit) const {
    T rest[8] = {};
    const T *from = p + k;
    if (rows_.width - k < 8) {
      for (std::int32_t i = 0; i < rows_.width - k; ++i) rest[i] = load(from + i);
      from = rest;
    }
    const simd::f32x4 high = simd::splat4(limit), low = simd::splat4(-limit);
    const auto four = [&](std::int32_t i) {
      const simd::f32x4 v = singles4(from + i) * simd::load4(multipliers_ + k + i);
      return simd::roundToInteger(simd::max(simd::min(v, high), low));
    };
    return simd::narrowSaturated(four(0), four(4));
  }

  void takeVector(std::int32_t i, const T *x) {
    simd::i32x4 squares{};
    std::int16_t *doubled = vectors_ + i * paddedWidth();
    for (std::int32_t k = 0; k < paddedWidth(); k += 8) {
      const simd::i16x8 units = inUnits(x, k, 2 * most_);
      squares = squares + simd::sumsOfPairProducts(units, units);
      simd::store8(doubled + k, units + units);
    }
    std::int32_t each[4];
    simd::store4(each, squares);
    squares_[i] = each[0] + each[1] + each[2] + each[3];
    bounds_[i] = boundOf(i, FLT_MAX);
  }

  // A row may be nearer than `best` only if 2 X Y - |Y|^2 is above this.
  std::int32_t boundOf(std::int32_t i, float best) const {
    const double root = std::sqrt(static_cast<double>(best)) * 1.0001 * unitsPerOne_ + slack_;
    const double bound = squares_[i] - root * root - 1;
    return bound > INT32_MIN ? static_cast<std::int32_t>(bound) : INT32_MIN;
  }

  // Four rows side by side, a pair of elements a lane; the last row stands in for those that fill up a group.
  void packRows(std::int32_t first, std::int32_t count) {
    if (first == packedFirst_ && count == packedCount_) return;
    packedFirst_ = first;
    packedCount_ = count;
    for (std::int32_t r = 0; r < (count + kGroup - 1) / kGroup * kGroup; r += 4) {
      std::int16_t *group = packed_ + r / kGroup * kGroup * 2 * pairs() + r % kGroup * 2;
      simd::i32x4 squares{};
      for (std::int32_t k = 0; k < rows_.width; k += 8) {
        simd::i16x8 four[4];
        for (std::int32_t i = 0; i < 4; ++i)
          four[i] = inUnits(rows_.row(std::min(first + r + i, rows_.size - 1)), k, most_);
        simd::transposePairs(four);
        for (std::int32_t i = 0; i < 4 && k / 2 + i < pairs(); ++i) {
          squares = squares + simd::sumsOfPairProducts(four[i], four[i]);
          simd::store8(group + (k / 2 + i) * 2 * kGroup, four[i]);
        }
      }
      simd::store4(negativeSquares_ + r, simd::i32x4{} - squares);
    }
  }

  void scanPacked(std::int32_t i, const T *x, Nearest &nearest) {
    alignas(16) std::int16_t splat[kMaxWidth / 2][8];
    const std::int16_t *doubled = vectors_ + i * paddedWidth();
    for (std::int32_t k = 0; k < pairs(); k += 4) {
      const simd::i16x8 units = simd::load8(doubled + 2 * k);
      simd::store8(splat[k], simd::splatPair<0>(units));
      simd::store8(splat[k + 1], simd::splatPair<1>(units));
      simd::store8(splat[k + 2], simd::splatPair<2>(units));
      simd::store8(splat[k + 3], simd::splatPair<3>(units));
    }
    for (std::int32_t r = 0; r < packedCount_; r += kGroup) {
      const std::int16_t *group = packed_ + r * 2 * pairs();
      simd::i32x4 sums[4];
      for (int g = 0; g < 4; ++g) sums[g] = simd::load4(negativeSquares_ + r + 4 * g);
      for (std::int32_t k = 0; k < pairs(); ++k, group += 2 * kGroup) {
        const simd::i16x8 pair = simd::load8(splat[k]);
        for (int g = 0; g < 4; ++g)
          sums[g] = sums[g] + simd::sumsOfPairProducts(simd::load8(group + 8 * g), pair);
      }
      const simd::i32x4 bound = simd::splat4(bounds_[i]);
      const simd::i32x4 above[4] = {sums[0] > bound, sums[1] > bound, sums[2] > bound, sums[3] > bound};
      if (simd::signs((above[0] | above[1]) | (above[2] | above[3])) == 0) continue;
      for (std::int32_t g = 0; g < 4; ++g)
        if (simd::signs(above[g]) != 0) offerFour(rows_, packedFirst_ + r + 4 * g, x, nearest);
      bounds_[i] = boundOf(i, nearest.distance);
    }
  }

  CodeRows<T> rows_;
  float most_, unitsPerOne_;
  double slack_;
  std::int32_t packedFirst_ = -1, packedCount_ = 0;
  float multipliers_[kMaxWidth];
  std::int32_t squares_[kMaxVectors], bounds_[kMaxVectors];
  alignas(16) std::int32_t negativeSquares_[kRowElements / 8];
  alignas(16) std::int16_t vectors_[kVectorElements];
  alignas(16) std::int16_t packed_[kRowElements];
};

}  // namespace orv::cdbk

#endif
