// Scores in two threads under one model.

#include "orvsr/gauss.h"

#include "orvsr/core.h"
#include "orvsr/matrix.h"
#include "support/arrays.h"
#include "threads/threads.h"

namespace orv::test {
namespace {

TEST(Threads, ScoreUnderOneModel) {
  Random random(1);
  const int len = 39, rows = 7;
  const auto frames = uniform<float>(random, rows * len, -2, 2);
  const auto means = uniform<float>(random, rows * len, -2, 2);
  const auto weights = uniform<float>(random, rows * len, 0, 1);
  const auto gconst = uniform<float>(random, rows, -9, 0);
  expectSameInTwoThreads([&] {
    std::vector<float> scores(rows);
    EXPECT_EQ(
        orvsLogGauss_32f_D2(frames.data(), len, means.data(), weights.data(), len, scores.data(), rows, -1),
        0);
    for (std::size_t r = 0; r < rows; ++r) {
      float score;
      EXPECT_EQ(orvsLogGaussMixture_32f_D2(frames.data() + r * len, means.data(), weights.data(), rows, len,
                                           len, gconst.data(), &score),
                0);
      EXPECT_EQ(orvsLogAdd_32f(&score, &scores[r], 1, orvAlgHintFast), 0);
    }
    return scores;
  });
}

TEST(Threads, ScoreIntegersUnderOneModel) {
  Random random(2);
  const int len = 39, rows = 7;
  const auto frames = anyIntegers<std::int16_t>(random, rows * len);
  const auto mean = anyIntegers<std::int16_t>(random, len);
  const auto weights = anyIntegers<std::int16_t>(random, len);
  expectSameInTwoThreads([&] {
    std::vector<std::int32_t> scores(rows);
    EXPECT_EQ(orvsLogGauss_16s32s_D2Sfs(frames.data(), len, mean.data(), weights.data(), len, scores.data(),
                                        rows, 7, 20),
              0);
    std::int32_t sum;
    EXPECT_EQ(orvsLogSum_32s_Sfs(scores.data(), &sum, rows, 12), 0);
    scores.push_back(sum);
    return scores;
  });
}

// 120 values: more than a working vector on the stack holds, so both threads allocate.
TEST(Threads, ScoreUnderOneBlockDiagonalCovariance) {
  Random random(3);
  const int len = 120;
  const std::int32_t sizes[3] = {40, 40, 40};
  const auto elements = uniform<float>(random, 40 * len, -1, 1);
  const std::vector<const float *> rows = rowPointers(elements.data(), len, 40);
  const auto frame = uniform<float>(random, len, -1, 1);
  const auto mean = uniform<float>(random, len, -1, 1);
  OrvBlockDMatrix_32f *covariance = nullptr;
  ASSERT_EQ(orvsBlockDMatrixInitAlloc_32f(&covariance, rows.data(), sizes, 3), 0);
  expectSameInTwoThreads([&] {
    float score;
    EXPECT_EQ(orvsLogGaussSingle_BlockDVar_32f(frame.data(), mean.data(), covariance, len, &score, -1), 0);
    return score;
  });
  orvsBlockDMatrixFree_32f(covariance);
}

}  // namespace
}  // namespace orv::test
