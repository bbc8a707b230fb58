#include "common/transform.h"

#include <cmath>

#include "common/error.h"
#include "hosts/support.h"

namespace orv::test {
namespace {

constexpr std::int32_t kWidth = 7;

// Classes of their own means; values of a frame depend on one another, and the last is the same in all.
std::vector<Frames> correlatedClasses() {
  std::mt19937 random(5);
  const auto uniform = [&] { return static_cast<float>(random() >> 8) / 8388608.0f - 1; };
  std::vector<Frames> classes;
  for (const std::size_t rows : {300U, 1U, 80U, 500U, 40U, 90U}) {
    Frames frames;
    frames.resize(rows, kWidth);
    float mean[kWidth];
    for (float &value : mean) value = 2 * uniform();
    for (std::size_t r = 0; r < rows; ++r) {
      float *row = frames.row(r);
      const float common = uniform();
      for (std::int32_t j = 0; j + 1 < kWidth; ++j)
        row[j] = 20 + mean[j] + static_cast<float>(j) * common + uniform();
      row[kWidth - 1] = 0.125f;
    }
    classes.push_back(frames);
  }
  return classes;
}

std::vector<FrameSet> rowsOf(const std::vector<Frames> &classes) {
  std::vector<FrameSet> sets;
  for (const Frames &frames : classes) {
    sets.emplace_back();
    for (std::size_t r = 0; r < frames.rows; ++r) sets.back().push_back(frames.row(r));
  }
  return sets;
}

using Matrix = std::vector<std::vector<double>>;

std::vector<double> meanOf(const std::vector<const float *> &rows, std::size_t width) {
  std::vector<double> mean(width);
  for (const float *row : rows)
    for (std::size_t j = 0; j < width; ++j) mean[j] += row[j] / static_cast<double>(rows.size());
  return mean;
}

void addScatter(const std::vector<double> &d, double weight, Matrix &scatter) {
  for (std::size_t i = 0; i < d.size(); ++i)
    for (std::size_t j = 0; j < d.size(); ++j) scatter[i][j] += weight * d[i] * d[j];
}

// Covariances of the transformed frames about the means of their classes, and of these means.
std::pair<Matrix, Matrix> covariances(const std::vector<Frames> &classes) {
  const auto width = static_cast<std::size_t>(classes[0].width);
  Matrix within(width, std::vector<double>(width)), between = within;
  FrameSet all;
  for (const FrameSet &rows : rowsOf(classes)) all.insert(all.end(), rows.begin(), rows.end());
  const std::vector<double> mean = meanOf(all, width);
  const double share = 1 / static_cast<double>(all.size());
  for (const FrameSet &rows : rowsOf(classes)) {
    const std::vector<double> own = meanOf(rows, width);
    std::vector<double> d(width);
    for (const float *row : rows) {
      for (std::size_t j = 0; j < width; ++j) d[j] = row[j] - own[j];
      addScatter(d, share, within);
    }
    for (std::size_t j = 0; j < width; ++j) d[j] = own[j] - mean[j];
    addScatter(d, share * static_cast<double>(rows.size()), between);
  }
  return {within, between};
}

void expectDiagonalDescending(const Matrix &matrix, double tolerance) {
  for (std::size_t i = 0; i < matrix.size(); ++i) {
    for (std::size_t j = 0; j < i; ++j) EXPECT_NEAR(matrix[i][j], 0, tolerance) << i << " " << j;
    if (i > 0) {
      EXPECT_LE(matrix[i][i], matrix[i - 1][i - 1] + tolerance) << i;
    }
  }
}

TEST(Transform, OntoPrincipalComponentsLeavesNoCorrelationAndKeepsTheVariance) {
  std::vector<Frames> classes = correlatedClasses();
  const auto [withinBefore, betweenBefore] = covariances(classes);
  const Transform whole = principalComponents(rowsOf(classes), kWidth, kWidth);
  const Transform part = principalComponents(rowsOf(classes), kWidth, 3);
  std::vector<Frames> shorter = classes;
  for (Frames &frames : shorter) part.apply(frames);
  for (Frames &frames : classes) whole.apply(frames);
  const auto [within, between] = covariances(classes);
  Matrix total = within;
  double before = 0, after = 0;
  for (std::size_t i = 0; i < kWidth; ++i) {
    for (std::size_t j = 0; j < kWidth; ++j) total[i][j] += between[i][j];
    before += withinBefore[i][i] + betweenBefore[i][i];
    after += total[i][i];
  }
  expectDiagonalDescending(total, 1e-4);
  EXPECT_NEAR(after, before, 1e-4 * before);
  EXPECT_GT(total[0][0], 0.5 * after);  // what the values have in common
  ASSERT_EQ(shorter[0].width, 3);
  for (std::size_t r = 0; r < 80; ++r)
    for (std::size_t j = 0; j < 3; ++j) EXPECT_EQ(shorter[2].row(r)[j], classes[2].row(r)[j]);
}

TEST(Transform, OntoDiscriminantsWhitensTheClassesAndOrdersTheirMeans) {
  std::vector<Frames> classes = correlatedClasses();
  std::vector<FrameSet> sets = rowsOf(classes);
  sets.insert(sets.begin() + 2, FrameSet());
  const Transform transform = discriminants(sets, kWidth, 6);
  // The value without variance gets a direction of its own, and no infinity.
  for (const float value : discriminants(sets, kWidth, kWidth).matrix.values)
    EXPECT_TRUE(std::isfinite(value));
  for (Frames &frames : classes) transform.apply(frames);
  const auto [within, between] = covariances(classes);
  for (std::size_t i = 0; i < 6; ++i)
    for (std::size_t j = 0; j < 6; ++j) EXPECT_NEAR(within[i][j], i == j, 1e-3) << i << " " << j;
  expectDiagonalDescending(between, 1e-3);
  EXPECT_NEAR(between[5][5], 0, 1e-3);  // six classes lie in five directions
}

// In voices that mean normalisation has brought to the same mean, the classes are their sounds.
TEST(Transform, EstimatesDiscriminantsFromTheSoundsOfAVoice) {
  std::mt19937 random(6);
  std::vector<Frames> blocks(2);
  for (Frames &frames : blocks) {
    frames.resize(2000, 2);
    for (std::size_t r = 0; r < frames.rows; ++r) {
      frames.row(r)[0] = 9 * static_cast<float>(random() % 100) / 100;  // varies most
      frames.row(r)[1] = (r % 2 == 0 ? -4.0f : 4.0f) +                  // two sounds
                         static_cast<float>(random() % 100) / 1000;
    }
  }
  TransformOptions options;
  options.dims = 1;
  options.kind = TransformKind::lda;
  const Transform lda = estimateTransform(options, blocks);
  ASSERT_EQ(lda.matrix.rows, 1U);
  EXPECT_GT(std::abs(lda.matrix.row(0)[1]), 10 * std::abs(lda.matrix.row(0)[0]));
}

}  // namespace
}  // namespace orv::test
