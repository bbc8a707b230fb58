// Matrices and vectors.

#include "orvsr/matrix.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string>

#include "bench/data.h"
#include "bench/ratio.h"
#include "primitives/arithmetic.h"

#if ORV_BENCH_EIGEN
#include <Eigen/Core>
#endif

namespace orv::bench {
namespace {

// A matrix, a vector for either side of it, and where the product goes.
struct Operands {
  std::int32_t height, width;
  Array<float> matrix, left, right, columns, rows;

  Operands(std::int32_t rowCount, std::int32_t columnCount)
      : height(rowCount),
        width(columnCount),
        matrix(uniform<float>(static_cast<std::size_t>(height) * static_cast<std::size_t>(width), -2, 2, 1)),
        left(uniform<float>(static_cast<std::size_t>(height), -1, 1, 2)),
        right(uniform<float>(static_cast<std::size_t>(width), -1, 1, 3)),
        columns(static_cast<std::size_t>(width)),
        rows(static_cast<std::size_t>(height)) {}
};

template <class Work>
auto operands(std::int32_t height, std::int32_t width, Work work) {
  return [=] { return [work, in = Operands(height, width)]() mutable { work(in); }; };
}

float element(const Operands &in, std::int32_t r, std::int32_t c) {
  return in
      .matrix[static_cast<std::size_t>(r) * static_cast<std::size_t>(in.width) + static_cast<std::size_t>(c)];
}

[[gnu::noinline]] void plainSumColumn(Operands &in) {
  for (std::int32_t c = 0; c < in.width; ++c) {
    double sum = 0.0;
    for (std::int32_t r = 0; r < in.height; ++r) sum += static_cast<double>(element(in, r, c));
    in.columns[static_cast<std::size_t>(c)] = static_cast<float>(sum);
  }
}

[[gnu::noinline]] void plainVecMat(Operands &in) {
  for (std::int32_t c = 0; c < in.width; ++c) {
    float sum = 0.0F;
    for (std::int32_t r = 0; r < in.height; ++r)
      sum += in.left[static_cast<std::size_t>(r)] * element(in, r, c);
    in.columns[static_cast<std::size_t>(c)] = sum;
  }
}

[[gnu::noinline]] void plainMatVec(Operands &in) {
  for (std::int32_t r = 0; r < in.height; ++r) {
    float sum = 0.0F;
    for (std::int32_t c = 0; c < in.width; ++c)
      sum += element(in, r, c) * in.right[static_cast<std::size_t>(c)];
    in.rows[static_cast<std::size_t>(r)] = sum;
  }
}

#if ORV_BENCH_EIGEN
using RowMajor = Eigen::Matrix<float, Eigen::Dynamic, Eigen::Dynamic, Eigen::RowMajor>;

Eigen::Map<const RowMajor> matrixOf(const Operands &in) { return {in.matrix.data(), in.height, in.width}; }
Eigen::Map<Eigen::VectorXf> vectorOf(Array<float> &v) {
  return {v.data(), static_cast<Eigen::Index>(v.size())};
}

[[gnu::noinline]] void eigenSumColumn(Operands &in) {
  vectorOf(in.columns) = matrixOf(in).cast<double>().colwise().sum().cast<float>();
}
[[gnu::noinline]] void eigenSumColumnSingle(Operands &in) {
  vectorOf(in.columns) = matrixOf(in).colwise().sum();
}
[[gnu::noinline]] void eigenVecMat(Operands &in) {
  vectorOf(in.columns).noalias() = matrixOf(in).transpose() * vectorOf(in.left);
}
[[gnu::noinline]] void eigenMatVec(Operands &in) {
  vectorOf(in.rows).noalias() = matrixOf(in) * vectorOf(in.right);
}
#endif

void addSums() {
  const auto ours = [](Operands &in) {
    orvsSumColumn_32f_D2(in.matrix.data(), in.width, in.height, in.columns.data(), in.width);
  };
  Case sums("matrix/SumColumn_32f_D2");
  sums.ours(operands(10000, 39, ours)).peer("plain scalar", 3.0, operands(10000, 39, plainSumColumn));
#if ORV_BENCH_EIGEN
  sums.peer("Eigen", 1.0, operands(10000, 39, eigenSumColumn))
      .peer("Eigen in single", 0.0, operands(10000, 39, eigenSumColumnSingle));
#else
  sums.absentPeer("Eigen");
#endif
}

void addProducts() {
  const auto vecMat = [](Operands &in) {
    orvsVecMatMul_32f_D2(in.left.data(), in.matrix.data(), in.width, in.height, in.columns.data(), in.width);
  };
  const auto matVec = [](Operands &in) {
    orvsMatVecMul_32f_D2(in.matrix.data(), in.width, in.right.data(), in.width, in.rows.data(), in.height);
  };
  struct Shape {
    std::int32_t height, width;
  };
  for (const auto [height, width] : {Shape{39, 39}, Shape{128, 128}, Shape{600, 600}, Shape{10000, 39}}) {
    const std::string shape = std::to_string(height) + "x" + std::to_string(width);
    Case left("matrix/VecMatMul_32f_D2/" + shape);
    Case right("matrix/MatVecMul_32f_D2/" + shape);
    left.ours(operands(height, width, vecMat))
        .peer("plain scalar", 0.0, operands(height, width, plainVecMat));
    right.ours(operands(height, width, matVec))
        .peer("plain scalar", 0.0, operands(height, width, plainMatVec));
#if ORV_BENCH_EIGEN
    left.peer("Eigen", 1.0, operands(height, width, eigenVecMat));
    right.peer("Eigen", 1.0, operands(height, width, eigenMatVec));
#else
    left.absentPeer("Eigen");
    right.absentPeer("Eigen");
#endif
  }
}

// --- maps of single elements, beside loops that call libm

template <class T>
struct Mapped {
  static constexpr std::int32_t len = 1024;
  Array<T> from, to = Array<T>(len);
  Mapped(double low, double high) : from(uniform<T>(len, low, high, 1)) {}
};

template <class T, class Work>
auto mapped(double low, double high, Work work) {
  return [=] { return [work, in = Mapped<T>(low, high)]() mutable { work(in); }; };
}

[[gnu::noinline]] void plainLn(Mapped<std::int32_t> &in) {
  for (std::size_t i = 0; i < in.from.size(); ++i) {
    const std::int32_t x = in.from[i];
    in.to[i] = x > 0 ? static_cast<std::int32_t>(std::log(static_cast<double>(x)) * 1024.0 + 0.5) : INT32_MIN;
  }
}
[[gnu::noinline]] void plainExpNegSqr(Mapped<float> &in) {
  for (std::size_t i = 0; i < in.from.size(); ++i)
    in.to[i] = static_cast<float>(std::exp(static_cast<double>(-(in.from[i] * in.from[i]))));
}
// In place, as ours: the numbers end at 1.
[[gnu::noinline]] void plainRecSqrt(Mapped<float> &in) {
  for (float &x : in.from) x = x < 0.01F ? 0.01F : 1.0F / std::sqrt(x);
}

void addMaps() {
  using Integers = Mapped<std::int32_t>;
  Case("matrix/Ln_32s_Sfs/1024")
      .ours(mapped<std::int32_t>(
          1, 2e9, [](Integers &in) { orvsLn_32s_Sfs(in.from.data(), in.to.data(), in.len, -10); }))
      .peer("libm", 1.0, mapped<std::int32_t>(1, 2e9, plainLn));
  using Reals = Mapped<float>;
  Case("matrix/ExpNegSqr_32f/1024")
      .ours(mapped<float>(-3, 3, [](Reals &in) { orvsExpNegSqr_32f(in.from.data(), in.to.data(), in.len); }))
      .peer("libm", 1.0, mapped<float>(-3, 3, plainExpNegSqr));
  Case("matrix/RecSqrt_32f/1024")
      .ours(mapped<float>(0.1, 10, [](Reals &in) { orvsRecSqrt_32f(in.from.data(), in.len, 0.01F); }))
      .peer("libm", 1.0, mapped<float>(0.1, 10, plainRecSqrt));
}

}  // namespace

void addSvdCases();

void addMatrixCases() {
  addSums();
  addProducts();
  addMaps();
  addSvdCases();
}

}  // namespace orv::bench
