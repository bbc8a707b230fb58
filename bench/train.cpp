// Model estimation.

#include "orvsr/train.h"

#include <cstddef>
#include <cstdint>

#include "bench/data.h"
#include "bench/ratio.h"

#if ORV_BENCH_EIGEN
#include <Eigen/Core>
#endif

namespace orv::bench {
namespace {

// --- column statistics

struct Features {
  static constexpr std::int32_t height = 10000;
  static constexpr std::int32_t width = 39;
  Array<float> x = uniform<float>(std::size_t{height} * width, -2.0, 2.0, 1);
  Array<float> mean = uniform<float>(width, -0.1, 0.1, 2);
  Array<float> var = Array<float>(width);
  Array<double> covariance = Array<double>(std::size_t{width} * width);
};

template <class Work>
auto features(Work work) {
  return [work] { return [work, in = Features()]() mutable { work(in); }; };
}

struct Moments {
  float sum, squares;
};

template <bool sums, bool squares>
Moments plainColumn(const Features &in, std::int32_t c) {
  Moments m{0.0F, 0.0F};
  for (std::int32_t r = 0; r < in.height; ++r) {
    const float x = in.x[static_cast<std::size_t>(r * in.width + c)];
    if constexpr (sums) m.sum += x;
    if constexpr (squares) m.squares += x * x;
  }
  return m;
}

[[gnu::noinline]] void plainMean(Features &in) {
  for (std::int32_t c = 0; c < in.width; ++c)
    in.mean[static_cast<std::size_t>(c)] = plainColumn<true, false>(in, c).sum / in.height;
}

[[gnu::noinline]] void plainVar(Features &in) {
  for (std::int32_t c = 0; c < in.width; ++c) {
    const auto i = static_cast<std::size_t>(c);
    const float squares = plainColumn<false, true>(in, c).squares;
    in.var[i] = (squares - in.height * in.mean[i] * in.mean[i]) / (in.height - 1);
  }
}

[[gnu::noinline]] void plainMeanVar(Features &in) {
  for (std::int32_t c = 0; c < in.width; ++c) {
    const auto i = static_cast<std::size_t>(c);
    const Moments m = plainColumn<true, true>(in, c);
    in.mean[i] = m.sum / in.height;
    in.var[i] = (m.squares - m.sum * in.mean[i]) / (in.height - 1);
  }
}

[[gnu::noinline]] void plainSums(Features &in) {
  for (std::int32_t c = 0; c < in.width; ++c) {
    const auto i = static_cast<std::size_t>(c);
    const Moments m = plainColumn<true, true>(in, c);
    in.mean[i] = m.sum;
    in.var[i] = m.squares;
  }
}

// One product at a time.
#ifndef __clang__
[[gnu::optimize("no-tree-vectorize")]]
#endif
[[gnu::noinline]] void
scalarCovariance(Features &in) {
  const auto width = static_cast<std::size_t>(in.width);
  double *const out = in.covariance.data();
  double d[Features::width];
  for (std::size_t r = 0; r < static_cast<std::size_t>(in.height); ++r) {
    for (std::size_t c = 0; c < width; ++c) d[c] = static_cast<double>(in.x[r * width + c] - in.mean[c]);
    for (std::size_t i = 0; i < width; ++i)
#ifdef __clang__
#pragma clang loop vectorize(disable) interleave(disable)
#endif
      for (std::size_t j = 0; j <= i; ++j) out[i * width + j] += d[i] * d[j];
  }
  for (std::size_t i = 0; i < width; ++i)
    for (std::size_t j = 0; j <= i; ++j) out[j * width + i] = out[i * width + j] = out[i * width + j] * 0.5;
}

// The same as the compiler makes it, in lanes.
[[gnu::noinline]] void plainCovariance(Features &in) {
  const auto width = static_cast<std::size_t>(in.width);
  double *const out = in.covariance.data();
  double d[Features::width];
  for (std::size_t r = 0; r < static_cast<std::size_t>(in.height); ++r) {
    for (std::size_t c = 0; c < width; ++c) d[c] = static_cast<double>(in.x[r * width + c] - in.mean[c]);
    for (std::size_t i = 0; i < width; ++i)
      for (std::size_t j = 0; j <= i; ++j) out[i * width + j] += d[i] * d[j];
  }
  for (std::size_t i = 0; i < width; ++i)
    for (std::size_t j = 0; j <= i; ++j) out[j * width + i] = out[i * width + j] = out[i * width + j] * 0.5;
}

#if ORV_BENCH_EIGEN
using Row = Eigen::Array<float, 1, Eigen::Dynamic>;

Eigen::Map<const Eigen::Array<float, Eigen::Dynamic, Eigen::Dynamic, Eigen::RowMajor>> rowsOf(
    const Features &in) {
  return {in.x.data(), in.height, in.width};
}
Eigen::Map<Row> rowOf(Array<float> &v) { return {v.data(), static_cast<Eigen::Index>(v.size())}; }

[[gnu::noinline]] void eigenMean(Features &in) {
  rowOf(in.mean) = rowsOf(in).colwise().sum() * (1.0F / Features::height);
}
[[gnu::noinline]] void eigenVar(Features &in) {
  const auto mean = rowOf(in.mean);
  rowOf(in.var) = (rowsOf(in).square().colwise().sum() - mean.square() * float{Features::height}) *
                  (1.0F / (Features::height - 1));
}
[[gnu::noinline]] void eigenMeanVar(Features &in) {
  eigenMean(in);
  eigenVar(in);
}
[[gnu::noinline]] void eigenSums(Features &in) {
  rowOf(in.mean) = rowsOf(in).colwise().sum();
  rowOf(in.var) = rowsOf(in).square().colwise().sum();
}
[[gnu::noinline]] void eigenCovariance(Features &in) {
  using Matrix = Eigen::Matrix<double, Eigen::Dynamic, Eigen::Dynamic, Eigen::RowMajor>;
  const Matrix d = (rowsOf(in).rowwise() - rowOf(in.mean)).matrix().cast<double>();
  Eigen::Map<Matrix> dst(in.covariance.data(), in.width, in.width);
  dst.selfadjointView<Eigen::Lower>().rankUpdate(d.transpose());
  dst.triangularView<Eigen::Lower>() = (dst * 0.5).eval();
  dst.triangularView<Eigen::StrictlyUpper>() = dst.transpose();
}
#endif

void addColumnStatistics() {
  Case mean("train/MeanColumn_32f_D2");
  mean.ours(features([](Features &in) {
        orvsMeanColumn_32f_D2(in.x.data(), in.height, in.width, in.mean.data(), in.width);
      }))
      .peer("plain scalar", 3.0, features(plainMean));
  Case var("train/VarColumn_32f_D2");
  var.ours(features([](Features &in) {
       orvsVarColumn_32f_D2(in.x.data(), in.height, in.width, in.mean.data(), in.var.data(), in.width);
     }))
      .peer("plain scalar", 3.0, features(plainVar));
  Case both("train/MeanVarColumn_32f_D2");
  both.ours(features([](Features &in) {
        orvsMeanVarColumn_32f_D2(in.x.data(), in.height, in.width, in.mean.data(), in.var.data(), in.width);
      }))
      .peer("plain scalar", 3.0, features(plainMeanVar));
  Case sums("train/SumMeanVar_32f");
  sums.ours(features([](Features &in) {
        orvsSumMeanVar_32f(in.x.data(), in.width, in.height, in.mean.data(), in.var.data(), in.width);
      }))
      .peer("plain scalar", 3.0, features(plainSums));
#if ORV_BENCH_EIGEN
  mean.peer("Eigen", 1.0, features(eigenMean));
  var.peer("Eigen", 1.0, features(eigenVar));
  both.peer("Eigen", 1.0, features(eigenMeanVar));
  sums.peer("Eigen", 1.0, features(eigenSums));
#else
  for (Case *c : {&mean, &var, &both, &sums}) c->absentPeer("Eigen");
#endif
}

void addCovariance() {
  Case covariance("train/AccCovariance_32f64f_D2");
  covariance
      .ours(features([](Features &in) {
        orvsAccCovarianceMatrix_32f64f_D2(in.x.data(), in.height, in.width, in.mean.data(),
                                          in.covariance.data(), in.width, in.width, 0.5);
      }))
      .peer("plain scalar", 3.0, features(scalarCovariance))
      .peer("plain in lanes", 0.0, features(plainCovariance));
#if ORV_BENCH_EIGEN
  covariance.peer("Eigen", 0.0, features(eigenCovariance));
#else
  covariance.absentPeer("Eigen");
#endif
}

}  // namespace

void addTrainCases() {
  addColumnStatistics();
  addCovariance();
}

}  // namespace orv::bench
