// The nearest of all code vectors.
//
// A row takes over from the best before it only if best > distance * 1.000001: of rows that are equal but for
// a relative 1e-6 the first one stays, so the outcome depends on the order of the rows, and every scan keeps
// to it.

#ifndef ORV_VQ_SCAN_H
#define ORV_VQ_SCAN_H

#include <algorithm>
#include <cfloat>
#include <cstddef>
#include <cstdint>

#include "vq/codebook.h"
#include "vq/distance.h"

namespace orv::cdbk {

template <class T>
struct CodeRows {
  explicit CodeRows(const CdbkState &cdbk)
      : data(rowOf<T>(cdbk, 0)),
        stride(cdbk.stride),
        size(cdbk.size),
        width(cdbk.width),
        weights(isWeighted(cdbk) ? weightsOf<T>(cdbk) : nullptr) {}

  const T *row(std::int32_t i) const { return data + static_cast<std::ptrdiff_t>(i) * stride; }
  // Rows i to i + 3; the last row stands in for those behind it.
  void four(std::int32_t i, const T *(&rows)[4]) const {
    for (std::int32_t r = 0; r < 4; ++r) rows[r] = row(std::min(i + r, size - 1));
  }

  const T *data;
  std::int32_t stride, size, width;
  const T *weights;  // null where all are 1
};

struct Nearest {
  float distance = FLT_MAX;  // squared
  std::int32_t index = -1;

  void offer(float candidate, std::int32_t candidateIndex) {
    if (Own_Correct_Greater_32f(distance, candidate)) {
      distance = candidate;
      index = candidateIndex;
    }
  }
};

// Rows i to i + 3. A row that stands in for others is equal to itself and does not take over.
template <class T>
inline void offerFour(const CodeRows<T> &rows, std::int32_t i, const T *x, Nearest &nearest) {
  const T *four[4];
  rows.four(i, four);
  const simd::f32x4 distances = distancesToFour(x, four, rows.weights, rows.width);
  if (simd::signs(distances < simd::splat4(nearest.distance)) == 0) return;
  float each[4];
  simd::store4(each, distances);
  for (std::int32_t r = 0; r < 4; ++r) nearest.offer(each[r], std::min(i + r, rows.size - 1));
}

// Of one vector.
template <class T>
Nearest scan(const CodeRows<T> &rows, const T *x);

// Of one vector, among `count` rows that are listed by their numbers.
template <class T>
Nearest scanListed(const CodeRows<T> &rows, const T *x, const std::int32_t *list, std::int32_t count);

// Of `count` vectors, step elements apart. Many vectors are first compared in 16-bit integers with whole
// groups of rows; the outcome is that of scan().
template <class T>
void scanMany(const CodeRows<T> &rows, const T *x, std::ptrdiff_t step, std::int32_t count, Nearest *nearest);

// The distances of one vector to all rows.
template <class T>
void distancesToAll(const CodeRows<T> &rows, const T *x, float *distances);

// Takes the smallest distance out: the first one, whose place then holds the largest value there is.
Nearest drawNearest(float *distances, std::int32_t size);

}  // namespace orv::cdbk

#endif
