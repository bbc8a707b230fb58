// Scores in two threads under one model.

#include "orvsr/gauss.h"

#include "orvsr/core.h"
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

}  // namespace
}  // namespace orv::test
