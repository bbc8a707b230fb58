// What a scoring loop knows of its rows: the two ways in which rows, of either layout, and vectors meet. Each
// says which operands a row has, and which pointer's alignment decides how a sum is grouped.

#ifndef ORV_GAUSS_ROWS_H
#define ORV_GAUSS_ROWS_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "gauss/distance.h"
#include "primitives/memory.h"
#include "primitives/rows.h"
#include "primitives/simd.h"

namespace orv::gauss {

// Whether four rows from r on stand on 16-byte boundaries at the same elements as p.
template <class T>
inline bool alignedWith(const StridedRows<const T> &rows, std::int32_t, const T *p) {
  const std::uintptr_t stepBytes = static_cast<std::uintptr_t>(rows.step) * sizeof(T);
  return ((addressOf(rows.base) ^ addressOf(p)) | stepBytes) % 16 == 0;
}
template <class T>
inline bool alignedWith(const RowPointers<const T> &rows, std::int32_t r, const T *p) {
  std::uintptr_t apart = 0;
  for (int i = 0; i < 4; ++i) apart |= addressOf(rows.row(r + i)) ^ addressOf(p);
  return apart % 16 == 0;
}

// Distances from a row to the seven that follow it, which the compiler is to keep and not to form again.
class EightApart {
 public:
  explicit EightApart(std::ptrdiff_t step) {
    for (int r = 1; r < 8; ++r) apart_[r] = simd::opaque(r * step);
  }
  template <class T>
  RowsApart<T> from(const T *row) const {
    return {simd::opaque(row), apart_};
  }

 private:
  std::ptrdiff_t apart_[8] = {};
};

// Many frames against one Gaussian: the rows are frames, mean and weights are shared. Without weighting,
// weights is the mean as well, which is also the pointer that then decides.
template <class Rows>
struct FrameBlock {
  using Elem = typename Rows::Elem;
  static constexpr bool twoGroups = true;
  static constexpr bool oneByWeights = true, oneWeight = true;
  static constexpr bool oneHead = true;  // four rows further the alignment of what decides is the same
  Rows frames;
  const Elem *mean;
  const Elem *weights;

  Row<Elem> one(std::int32_t r) const { return {frames.row(r), mean, weights}; }
  FourRows<Elem> four(std::int32_t r, std::int32_t apart = 1) const {
    return {{frames.row(r), frames.row(r + apart), frames.row(r + 2 * apart), frames.row(r + 3 * apart)},
            {mean, mean, mean, mean},
            {weights, weights, weights, weights}};
  }
  Aligned aligned(std::int32_t r) const {
    return alignedWith(frames, r, weights) ? Aligned::allRows : Aligned::none;
  }
  Aligned alignedEight(std::int32_t r) const { return std::min(aligned(r), aligned(r + 4)); }
  auto eightRows() const {
    if constexpr (Rows::strided) {
      return [this, apart = EightApart(frames.step)](std::int32_t r) {
        return EightRowsApart<Elem, SharedRow<Elem>>{apart.from(frames.row(r)), {mean}, {weights}};
      };
    } else {
      return [this](std::int32_t r) {
        RowsOf<Elem, 8> rows;
        for (int i = 0; i < 8; ++i) {
          rows.a[i] = frames.row(r + i);
          rows.b[i] = mean;
          rows.w[i] = weights;
        }
        return rows;
      };
    }
  }
  const Elem *decidingOne(std::int32_t) const { return weights; }
  const Elem *decidingFour(std::int32_t r) const { return Rows::strided ? frames.row(r + 3) : weights; }
};

// One vector against many Gaussians: means and weights are rows, the vector is shared. Without weighting,
// weights are the means as well. With a row step the weights decide; with row pointers the families differ:
// the vector, the weights, or the weights of rows taken singly and the vector for groups.
enum class Deciding { vector, weights, weightsOfSingleRows };

template <class Rows, Deciding withPointers = Deciding::vector>
struct ComponentBlock {
  using Elem = typename Rows::Elem;
  static constexpr bool oneByWeights = Rows::strided || withPointers != Deciding::vector;
  static constexpr bool oneWeight = false;
  static constexpr bool fourByWeights = Rows::strided || withPointers == Deciding::weights;
  static constexpr bool twoGroups = Rows::strided && std::is_floating_point_v<Elem>;
  static constexpr bool oneHead = Rows::strided || !fourByWeights;
  Rows means;
  Rows weights;
  const Elem *vector;

  Row<Elem> one(std::int32_t r) const { return {means.row(r), vector, weights.row(r)}; }
  FourRows<Elem> four(std::int32_t r, std::int32_t apart = 1) const {
    return {{means.row(r), means.row(r + apart), means.row(r + 2 * apart), means.row(r + 3 * apart)},
            {vector, vector, vector, vector},
            {weights.row(r), weights.row(r + apart), weights.row(r + 2 * apart), weights.row(r + 3 * apart)}};
  }
  // With a row step the weights of a group's fourth row end its head at a boundary; means may have the same
  // alignment.
  Aligned aligned(std::int32_t r) const {
    if (alignedWith(means, r, vector) && alignedWith(weights, r, vector)) return Aligned::allRows;
    if constexpr (Rows::strided)
      if ((addressOf(means.base) ^ addressOf(weights.base)) % 16 == 0) return Aligned::someRows;
    return Aligned::none;
  }
  Aligned alignedEight(std::int32_t r) const { return aligned(r); }
  // Means and weights have the same step.
  auto eightRows() const {
    return [this, apart = EightApart(means.step)](std::int32_t r) {
      return EightRowsApart<Elem, RowsApart<Elem>>{
          apart.from(means.row(r)), {vector}, apart.from(weights.row(r))};
    };
  }
  const Elem *decidingOne(std::int32_t r) const { return oneByWeights ? weights.row(r) : vector; }
  const Elem *decidingFour(std::int32_t r) const { return fourByWeights ? weights.row(r + 3) : vector; }
};

// The gconst of a row: one for all, or one each.
template <class T>
struct OneConstant {
  T gconst;
  T one(std::int32_t) const { return gconst; }
  template <class Form>
  typename Form::Four four(std::int32_t) const {
    return Form::splat(gconst);
  }
};
template <class T>
OneConstant(T) -> OneConstant<T>;
template <class T>
struct RowConstants {
  const T *gconst;
  T one(std::int32_t r) const { return load(gconst + r); }
  template <class Form>
  typename Form::Four four(std::int32_t r) const {
    return Form::loadFour(gconst + r);
  }
};
template <class T>
RowConstants(const T *) -> RowConstants<T>;

}  // namespace orv::gauss

#endif
