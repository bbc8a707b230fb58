// Codebooks for tests, and the functions of their element type under one name.

#ifndef ORV_TESTS_VQ_BOOKS_H
#define ORV_TESTS_VQ_BOOKS_H

#include <cmath>
#include <memory>
#include <type_traits>

#include "api.h"
#include "support/arrays.h"

namespace orv::test {

struct FreeBook {
  OrvStatus (*release)(CdbkState *);
  void operator()(CdbkState *book) const { release(book); }
};
using Book = std::unique_ptr<CdbkState, FreeBook>;

template <class T>
Book buildBook(const std::vector<T> &rows, const std::vector<T> &weights, int size, int method) {
  CdbkState *book = nullptr;
  const int width = static_cast<int>(weights.size()), height = static_cast<int>(rows.size()) / width;
  EXPECT_GE(Api<T>::buildWeighted(&book, rows.data(), weights.data(), width, width, height, size, method), 0);
  return Book(book, {Api<T>::release});
}

// A codebook in memory of its own, of any method but those of trees, without fields.
template <class T>
class PlainBook {
 public:
  PlainBook(const std::vector<T> &rows, int width, int method = CDBK_DIRECT) {
    const int height = static_cast<int>(rows.size()) / width;
    std::int32_t bytes = 0;
    Api<T>::getSize(width, width, height, height, method, &bytes);
    memory_.resize(static_cast<std::size_t>(bytes) / 8 + 1);
    EXPECT_EQ(Api<T>::init(get(), rows.data(), width, width, height, height, method), orvStsNoErr);
  }
  CdbkState *get() { return reinterpret_cast<CdbkState *>(memory_.data()); }

 private:
  std::vector<std::uint64_t> memory_;
};

// --- the searches of both types

template <class T>
constexpr auto vqOf = orvsVQ_32f;
template <>
constexpr auto vqOf<std::int16_t> = orvsVQ_16s;
template <class T>
constexpr auto vqSortOf = orvsVQSingle_Sort_32f;
template <>
constexpr auto vqSortOf<std::int16_t> = orvsVQSingle_Sort_16s;
template <class T>
constexpr auto vqThreshOf = orvsVQSingle_Thresh_32f;
template <>
constexpr auto vqThreshOf<std::int16_t> = orvsVQSingle_Thresh_16s;

using Distance16s = std::int32_t;

inline OrvStatus vqDist(const float *x, int step, std::int32_t *index, float *distance, int height,
                        const CdbkState *book, int) {
  return orvsVQDist_32f(x, step, index, distance, height, book);
}
inline OrvStatus vqDist(const std::int16_t *x, int step, std::int32_t *index, Distance16s *distance,
                        int height, const CdbkState *book, int scale) {
  return orvsVQDist_16s32s_Sfs(x, step, index, distance, height, book, scale);
}
inline OrvStatus vqDistSort(const float *x, std::int32_t *index, float *distance, CdbkState *book, int count,
                            int) {
  return orvsVQDistSingle_Sort_32f(x, index, distance, book, count);
}
inline OrvStatus vqDistSort(const std::int16_t *x, std::int32_t *index, Distance16s *distance,
                            CdbkState *book, int count, int scale) {
  return orvsVQDistSingle_Sort_16s32s_Sfs(x, index, distance, book, count, scale);
}
inline OrvStatus vqDistThresh(const float *x, std::int32_t *index, float *distance, CdbkState *book,
                              std::int32_t *count, int, float t) {
  return orvsVQDistSingle_Thresh_32f(x, index, distance, book, count, t);
}
inline OrvStatus vqDistThresh(const std::int16_t *x, std::int32_t *index, Distance16s *distance,
                              CdbkState *book, std::int32_t *count, int scale, float t) {
  return orvsVQDistSingle_Thresh_16s32s_Sfs(x, index, distance, book, count, scale, t);
}

template <class T>
using DistanceOf = std::conditional_t<std::is_same_v<T, float>, float, Distance16s>;

// How a root is reported.
template <class T>
DistanceOf<T> reported(double squared, int scale) {
  const float root = std::sqrt(static_cast<float>(squared));
  if constexpr (std::is_same_v<T, float>) return root;
  const double scaled = std::nearbyint(std::ldexp(static_cast<double>(root), -scale));
  return static_cast<DistanceOf<T>>(std::min(scaled, 2147483647.0));
}

// The weighted squared distance; exact for small whole numbers.
template <class T>
double squaredDistance(const T *x, const T *y, const std::vector<T> &weights) {
  double sum = 0;
  for (std::size_t k = 0; k < weights.size(); ++k) {
    const double d = static_cast<double>(x[k]) - static_cast<double>(y[k]);
    sum += d * d * static_cast<double>(weights[k]);
  }
  return sum;
}

}  // namespace orv::test

#endif
