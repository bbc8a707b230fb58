// orvsLogGaussMax_* and orvsLogGaussAdd_*: scores folded into what a result held before.

#include <gtest/gtest.h>

#include "gauss/frames.h"

namespace orv::test {
namespace {

template <class T, class R>
std::vector<FrameMember<T, R>> maxMembers() {
  if constexpr (std::is_same_v<T, float>) {
    return {frameMember("32f_D2", orvsLogGaussMax_32f_D2), frameMember("32f_D2L", orvsLogGaussMax_32f_D2L),
            frameMember("IdVar_32f_D2", orvsLogGaussMax_IdVar_32f_D2),
            frameMember("IdVar_32f_D2L", orvsLogGaussMax_IdVar_32f_D2L)};
  } else if constexpr (std::is_same_v<T, double>) {
    return {frameMember("64f_D2", orvsLogGaussMax_64f_D2), frameMember("64f_D2L", orvsLogGaussMax_64f_D2L),
            frameMember("IdVar_64f_D2", orvsLogGaussMax_IdVar_64f_D2),
            frameMember("IdVar_64f_D2L", orvsLogGaussMax_IdVar_64f_D2L)};
  } else if constexpr (std::is_same_v<R, std::int32_t>) {
    return {frameMember("D2Sfs", orvsLogGaussMax_16s32s_D2Sfs),
            frameMember("D2LSfs", orvsLogGaussMax_16s32s_D2LSfs),
            frameMember("Low D2Sfs", orvsLogGaussMax_Low_16s32s_D2Sfs, true),
            frameMember("Low D2LSfs", orvsLogGaussMax_Low_16s32s_D2LSfs, true),
            frameMember("IdVar D2Sfs", orvsLogGaussMax_IdVar_16s32s_D2Sfs),
            frameMember("IdVar D2LSfs", orvsLogGaussMax_IdVar_16s32s_D2LSfs),
            frameMember("IdVarLow D2Sfs", orvsLogGaussMax_IdVarLow_16s32s_D2Sfs, true),
            frameMember("IdVarLow D2LSfs", orvsLogGaussMax_IdVarLow_16s32s_D2LSfs, true)};
  } else {
    return {frameMember("Scaled D2", orvsLogGaussMax_Scaled_16s32f_D2),
            frameMember("Scaled D2L", orvsLogGaussMax_Scaled_16s32f_D2L),
            frameMember("LowScaled D2", orvsLogGaussMax_LowScaled_16s32f_D2, true),
            frameMember("LowScaled D2L", orvsLogGaussMax_LowScaled_16s32f_D2L, true),
            frameMember("IdVarScaled D2", orvsLogGaussMax_IdVarScaled_16s32f_D2),
            frameMember("IdVarScaled D2L", orvsLogGaussMax_IdVarScaled_16s32f_D2L),
            frameMember("IdVarLowScaled D2", orvsLogGaussMax_IdVarLowScaled_16s32f_D2, true),
            frameMember("IdVarLowScaled D2L", orvsLogGaussMax_IdVarLowScaled_16s32f_D2L, true)};
  }
}

template <class T, class R>
std::vector<FrameMember<T, R>> addMembers() {
  if constexpr (std::is_same_v<T, float>) {
    return {frameMember("32f_D2", orvsLogGaussAdd_32f_D2), frameMember("32f_D2L", orvsLogGaussAdd_32f_D2L),
            frameMember("IdVar_32f_D2", orvsLogGaussAdd_IdVar_32f_D2),
            frameMember("IdVar_32f_D2L", orvsLogGaussAdd_IdVar_32f_D2L)};
  } else if constexpr (std::is_same_v<T, double>) {
    return {frameMember("64f_D2", orvsLogGaussAdd_64f_D2), frameMember("64f_D2L", orvsLogGaussAdd_64f_D2L),
            frameMember("IdVar_64f_D2", orvsLogGaussAdd_IdVar_64f_D2),
            frameMember("IdVar_64f_D2L", orvsLogGaussAdd_IdVar_64f_D2L)};
  } else {
    return {frameMember("Scaled D2", orvsLogGaussAdd_Scaled_16s32f_D2),
            frameMember("Scaled D2L", orvsLogGaussAdd_Scaled_16s32f_D2L),
            frameMember("LowScaled D2", orvsLogGaussAdd_LowScaled_16s32f_D2),
            frameMember("LowScaled D2L", orvsLogGaussAdd_LowScaled_16s32f_D2L),
            frameMember("IdVarScaled D2", orvsLogGaussAdd_IdVarScaled_16s32f_D2),
            frameMember("IdVarScaled D2L", orvsLogGaussAdd_IdVarScaled_16s32f_D2L),
            frameMember("IdVarLowScaled D2", orvsLogGaussAdd_IdVarLowScaled_16s32f_D2),
            frameMember("IdVarLowScaled D2L", orvsLogGaussAdd_IdVarLowScaled_16s32f_D2L)};
  }
}

template <class Types>
class RunningTest : public ::testing::Test {};
TYPED_TEST_SUITE(RunningTest, ScoreTypes);

TYPED_TEST(RunningTest, KeepsTheMaximum) {
  using T = typename TypeParam::Elem;
  using R = typename TypeParam::Result;
  sweepFrames(maxMembers<T, R>(), maxFamily<T, R>());
  checkOrderOfFrames(maxMembers<T, R>());
  if constexpr (std::is_integral_v<T>) sweepScaleFactors(maxMembers<T, R>(), maxFamily<T, R>());
}

TYPED_TEST(RunningTest, AddsInTheLogDomain) {
  using T = typename TypeParam::Elem;
  using R = typename TypeParam::Result;
  if constexpr (std::is_floating_point_v<R>) {
    sweepFrames(addMembers<T, R>(), addFamily<T, R>(LowFactor::ofScaled));
    checkOrderOfFrames(addMembers<T, R>());
    if constexpr (std::is_integral_v<T>)
      sweepScaleFactors(addMembers<T, R>(), addFamily<T, R>(LowFactor::ofScaled));
  }
}

// The running maximum rounds a score down, the plain score up; callers rely on either.
TEST(RunningMaximum, RoundsTheOtherWayThanThePlainScore) {
  const std::int16_t frames[5] = {1, 2, 3, 4, 5};
  const std::int16_t mean = 0;
  std::int32_t plain[5];
  std::int32_t best[5] = {INT32_MIN, INT32_MIN, INT32_MIN, INT32_MIN, INT32_MIN};
  ASSERT_EQ(orvsLogGauss_IdVar_16s32s_D2Sfs(frames, 1, &mean, 1, plain, 5, 100, 0), orvStsNoErr);
  ASSERT_EQ(orvsLogGaussMax_IdVar_16s32s_D2Sfs(frames, 1, &mean, 1, best, 5, 100, 0), orvStsNoErr);
  for (int f = 0; f < 5; ++f) EXPECT_EQ(plain[f] - best[f], f % 2 == 0 ? 1 : 0);
}

// The low form compares in 64 bits and stores 32 of them: a score above the range wins and wraps.
TEST(RunningMaximum, LowFormWrapsAfterTheComparison) {
  const std::int16_t frame = 100;
  const std::int16_t mean = 0;
  const std::int16_t weight = -32768;
  const std::int64_t score = std::int64_t{INT32_MAX} + 10000 * 32768 / 2;
  std::int32_t best = INT32_MAX;
  ASSERT_EQ(orvsLogGaussMax_Low_16s32s_D2Sfs(&frame, 1, &mean, &weight, 1, &best, 1, INT32_MAX, 0),
            orvStsNoErr);
  EXPECT_EQ(best, static_cast<std::int32_t>(score));
  best = 5;
  ASSERT_EQ(orvsLogGaussMax_16s32s_D2Sfs(&frame, 1, &mean, &weight, 1, &best, 1, INT32_MAX, 0), orvStsNoErr);
  EXPECT_EQ(best, INT32_MAX);
}

template <class R, class F>
void checkNaN(F max) {
  const R nan = std::numeric_limits<R>::quiet_NaN();
  const R frames[5] = {nan, nan, 0, nan, nan};
  const R mean = 0;
  R best[5] = {1, nan, nan, -3, 2};
  ASSERT_EQ(max(frames, 1, &mean, 1, best, 5, R{7}), orvStsNoErr);
  EXPECT_EQ(best[0], 1);
  EXPECT_TRUE(std::isnan(best[1]));
  EXPECT_TRUE(std::isnan(best[2]));
  EXPECT_EQ(best[3], -3);
  EXPECT_EQ(best[4], 2);
  // Nor is a zero greater than a negative one.
  const R zeros[5] = {};
  R negative[5] = {-R{0}, -R{0}, -R{0}, -R{0}, -R{0}};
  ASSERT_EQ(max(zeros, 1, &mean, 1, negative, 5, R{0}), orvStsNoErr);
  for (const R value : negative) EXPECT_TRUE(std::signbit(value));
}

TEST(RunningMaximum, NoNumberIsGreater) {
  checkNaN<float>(orvsLogGaussMax_IdVar_32f_D2);
  checkNaN<double>(orvsLogGaussMax_IdVar_64f_D2);
}

template <class R, class F>
R sumOf(F add, R running, R score) {
  const R zero = 0;
  EXPECT_EQ(add(&zero, 1, &zero, 1, &running, 1, score), orvStsNoErr);
  return running;
}

TEST(RunningLogSum, RaisesToTheFloorWhereATermIsDropped) {
  const auto of = [](float a, float b) { return sumOf(orvsLogGaussAdd_IdVar_32f_D2, a, b); };
  EXPECT_EQ(of(-4.5e6F, -4.5e6F), -4.5e6F + 0.5F);
  EXPECT_EQ(of(-1e7F, -1e7F), -1e7F + 1);
  EXPECT_EQ(of(-1e7F, -2e7F), -4.5e6F);
  EXPECT_EQ(of(-2e7F, -1e7F), -4.5e6F);
  EXPECT_EQ(of(-1e7F, 3), 3);
  const auto ofWide = [](double a, double b) { return sumOf(orvsLogGaussAdd_IdVar_64f_D2, a, b); };
  EXPECT_EQ(ofWide(-9e9, -3e10), -9e9);
  EXPECT_EQ(ofWide(-9.1e9, -3e10), -1e10);
  EXPECT_GT(ofWide(-23.0258509299405, 0), 0);
  EXPECT_EQ(ofWide(0, std::nextafter(-23.0258509299405, -24)), 0);
}

}  // namespace
}  // namespace orv::test
