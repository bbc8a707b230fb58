// The functions of codebooks by element type.

#ifndef ORV_TESTS_VQ_API_H
#define ORV_TESTS_VQ_API_H

#include <gtest/gtest.h>

#include "orvsr/vq.h"

namespace orv::test {

template <class T>
struct Api;
template <>
struct Api<float> {
  static constexpr auto build = orvsCdbkInitAlloc_L2_32f;
  static constexpr auto buildWeighted = orvsCdbkInitAlloc_WgtL2_32f;
  static constexpr auto init = orvsCdbkInit_L2_32f;
  static constexpr auto getSize = orvsCdbkGetSize_32f;
  static constexpr auto release = orvsCdbkFree_32f;
  static constexpr auto rows = orvsGetCdbkSize_32f;
  static constexpr auto read = orvsGetCodebook_32f;
};
template <>
struct Api<std::int16_t> {
  static constexpr auto build = orvsCdbkInitAlloc_L2_16s;
  static constexpr auto buildWeighted = orvsCdbkInitAlloc_WgtL2_16s;
  static constexpr auto init = orvsCdbkInit_L2_16s;
  static constexpr auto getSize = orvsCdbkGetSize_16s;
  static constexpr auto release = orvsCdbkFree_16s;
  static constexpr auto rows = orvsGetCdbkSize_16s;
  static constexpr auto read = orvsGetCodebook_16s;
};

using Elements = ::testing::Types<float, std::int16_t>;

}  // namespace orv::test

#endif
