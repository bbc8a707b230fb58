// orvsLogGauss_*: every member against one reference that sums in the promised groups.

#include <gtest/gtest.h>

#include "gauss/frames.h"

namespace orv::test {
namespace {

template <class T, class R>
std::vector<FrameMember<T, R>> members() {
  if constexpr (std::is_same_v<T, float>) {
    return {frameMember("32f_D2", orvsLogGauss_32f_D2), frameMember("32f_D2L", orvsLogGauss_32f_D2L),
            frameMember("IdVar_32f_D2", orvsLogGauss_IdVar_32f_D2),
            frameMember("IdVar_32f_D2L", orvsLogGauss_IdVar_32f_D2L)};
  } else if constexpr (std::is_same_v<T, double>) {
    return {frameMember("64f_D2", orvsLogGauss_64f_D2), frameMember("64f_D2L", orvsLogGauss_64f_D2L),
            frameMember("IdVar_64f_D2", orvsLogGauss_IdVar_64f_D2),
            frameMember("IdVar_64f_D2L", orvsLogGauss_IdVar_64f_D2L)};
  } else if constexpr (std::is_same_v<R, std::int32_t>) {
    return {frameMember("D2Sfs", orvsLogGauss_16s32s_D2Sfs),
            frameMember("D2LSfs", orvsLogGauss_16s32s_D2LSfs),
            frameMember("Low D2Sfs", orvsLogGauss_Low_16s32s_D2Sfs, true),
            frameMember("Low D2LSfs", orvsLogGauss_Low_16s32s_D2LSfs, true),
            frameMember("IdVar D2Sfs", orvsLogGauss_IdVar_16s32s_D2Sfs),
            frameMember("IdVar D2LSfs", orvsLogGauss_IdVar_16s32s_D2LSfs),
            frameMember("IdVarLow D2Sfs", orvsLogGauss_IdVarLow_16s32s_D2Sfs, true),
            frameMember("IdVarLow D2LSfs", orvsLogGauss_IdVarLow_16s32s_D2LSfs, true)};
  } else {
    return {frameMember("Scaled D2", orvsLogGauss_Scaled_16s32f_D2),
            frameMember("Scaled D2L", orvsLogGauss_Scaled_16s32f_D2L),
            frameMember("LowScaled D2", orvsLogGauss_LowScaled_16s32f_D2, true),
            frameMember("LowScaled D2L", orvsLogGauss_LowScaled_16s32f_D2L, true),
            frameMember("IdVarScaled D2", orvsLogGauss_IdVarScaled_16s32f_D2),
            frameMember("IdVarScaled D2L", orvsLogGauss_IdVarScaled_16s32f_D2L),
            frameMember("IdVarLowScaled D2", orvsLogGauss_IdVarLowScaled_16s32f_D2, true),
            frameMember("IdVarLowScaled D2L", orvsLogGauss_IdVarLowScaled_16s32f_D2L, true)};
  }
}

template <class Types>
class FrameBlockTest : public ::testing::Test {};
TYPED_TEST_SUITE(FrameBlockTest, ScoreTypes);

TYPED_TEST(FrameBlockTest, SumsInGroupsAtEveryLengthAndAlignment) {
  using T = typename TypeParam::Elem;
  using R = typename TypeParam::Result;
  sweepFrames(members<T, R>(), scoreFamily<T, R>());
}

TEST(FrameBlock, ScaleFactorsToBothEnds) {
  sweepScaleFactors(members<std::int16_t, std::int32_t>(), scoreFamily<std::int16_t, std::int32_t>());
  sweepScaleFactors(members<std::int16_t, float>(), scoreFamily<std::int16_t, float>());
}

TYPED_TEST(FrameBlockTest, ChecksStridePointersSizes) {
  checkOrderOfFrames(members<typename TypeParam::Elem, typename TypeParam::Result>());
}

// The constant is doubled before the sum and the sum halved after it, so a constant beyond half of the range
// is lost.
TEST(FrameBlock, ScoreAtTheMeanIsTheConstantUntilItsDoubleOverflows) {
  const float frames[5] = {0.1F, 0.1F, 0.1F, 0.1F, 0.1F};
  const float weight = 7;
  for (const float gconst : {-83.7F, 1.7e38F, 1.8e38F}) {
    float scores[5];
    ASSERT_EQ(orvsLogGauss_32f_D2(frames, 1, frames, &weight, 1, scores, 5, gconst), orvStsNoErr);
    for (const float score : scores)
      EXPECT_EQ(score, gconst < 1.75e38F ? gconst : std::numeric_limits<float>::infinity());
  }
}

// Four rows of the largest terms: the sums of 64 bits are not cut to 53 or fewer on the way.
TEST(FrameBlock, IntegerSumsAreExact) {
  const std::vector<std::int16_t> frames(4099, INT16_MIN);
  std::vector<std::int16_t> mean(4099, INT16_MAX);
  std::vector<std::int16_t> var(4099, INT16_MAX);
  mean.back() = INT16_MIN + 1;
  var.back() = 2;
  std::int32_t score = 0;
  const std::int64_t sum = 4098 * (std::int64_t{65535} * 65535 * 32767) + 2;
  for (const std::int32_t scaleFactor : {-1, 0, 28}) {
    ASSERT_EQ(orvsLogGauss_Low_16s32s_D2Sfs(frames.data(), 4099, mean.data(), var.data(), 4099, &score, 1, 5,
                                            scaleFactor),
              orvStsNoErr);
    EXPECT_EQ(score, static_cast<std::int32_t>(5 - (sum >> (scaleFactor + 1))));
  }
}

}  // namespace
}  // namespace orv::test
