// orvsLogGauss_*: every member against one reference that sums in the promised groups.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

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

// Differences and weights that make the greatest sums and parts of sums, at the magnitudes round which one
// way to a sum gives way to another, in all frames or in one of them. Between them, two shifts show all 64
// bits.
void checkGreatestSums(std::size_t len, int difference, std::size_t one,
                       const std::vector<std::int16_t> &var) {
  const std::vector<std::int16_t> mean(len, difference < 0 ? INT16_MAX : INT16_MIN);
  std::vector<std::vector<std::int16_t>> frames(one == 0 ? 3 : 21);
  for (std::size_t r = 0; r < frames.size(); ++r)
    frames[r].assign(
        len, static_cast<std::int16_t>(mean[0] + (one == 0 || r == one ? difference : difference % 7)));
  const Matrix<std::int16_t> matrix(Layout::pointers, frames, 0, 2);
  const auto count = static_cast<std::int32_t>(frames.size());
  std::vector<std::int32_t> scores(frames.size());
  for (const auto &member : members<std::int16_t, std::int32_t>()) {
    if (member.layout != Layout::pointers) continue;
    for (const std::int32_t scaleFactor : {-1, 31}) {
      ASSERT_EQ(member.call({nullptr, matrix.pointers(), 0, mean.data(), var.data(),
                             static_cast<std::int32_t>(len), scores.data(), count, 5, scaleFactor}),
                orvStsNoErr);
      for (std::size_t r = 0; r < frames.size(); ++r) {
        std::int64_t sum = 0;
        for (std::size_t j = 0; j < len; ++j) {
          const std::int64_t d = frames[r][j] - mean[j];
          sum += d * d * (member.weighted ? var[j] : 1);
        }
        ASSERT_EQ(scores[r], exactScore(sum, 5, scaleFactor, member.low))
            << member.name << ", frame " << r << ", length " << len << ", difference " << difference
            << ", weight " << var[0];
      }
    }
  }
}

TEST(FrameBlock, IntegerSumsAreExact) {
  for (const std::size_t len : {9U, 16U, 17U, 39U, 128U, 129U, 520U, 4099U}) {
    const auto root = static_cast<int>(std::sqrt(INT32_MAX / std::ceil(static_cast<double>(len) / 8)));
    for (const int weight : {INT16_MIN, INT16_MAX, 0x4000, 0x4001}) {
      const std::vector<std::int16_t> var(len, static_cast<std::int16_t>(weight));
      for (const int d :
           {65535, 32768, 32767, 32766, root + 1, root, root - 1, -root, -32766, -32768, -65535})
        checkGreatestSums(len, d, 0, var);
      for (const std::size_t one : {1U, 2U, 20U}) checkGreatestSums(len, 40000, one, var);
    }
  }
  const std::size_t most = 8 * 65540;  // of the greatest last 16 bits
  checkGreatestSums(most, 1, 0, std::vector<std::int16_t>(most, -1));
}

}  // namespace
}  // namespace orv::test
