#include <gtest/gtest.h>

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <functional>

#include "orvsr/matrix.h"
#include "support/allocation.h"
#include "support/arrays.h"

#ifdef ORV_HAVE_LAPACK
extern "C" void dgesvd_(const char *, const char *, const int *, const int *, double *, const int *, double *,
                        double *, const int *, double *, const int *, double *, const int *, int *);
#endif

using namespace orv::test;

namespace {

using Doubles = std::vector<double>;

struct Result {
  Doubles u, w, v;
  OrvStatus status;
};

// All eight entry points on one matrix of m x n values; `form` counts layout, place and order in its bits.
Result decompose(const Doubles &a, std::size_t m, std::size_t n, int form, int iterations = 60) {
  const std::size_t step = n + (form & 1 ? 0 : 2), tall = std::max(m, n);
  const bool inPlace = form & 2, sorted = form & 4;
  const auto h = static_cast<std::int32_t>(m), width = static_cast<std::int32_t>(n),
             s = static_cast<std::int32_t>(step);
  const std::size_t offset = static_cast<std::size_t>(form) * 4;
  Guarded<double> src(tall * step, offset), u(tall * step), v(n * step, 8), w(n, 4);
  for (std::size_t r = 0; r < m; ++r)
    for (std::size_t c = 0; c < n; ++c) (inPlace ? u : src).set(r * step + c, a[r * n + c]);
  OrvStatus status;
  if (form & 1) {
    const auto pa = rowPointers(src.data(), m, s), pu = rowPointers(u.data(), m, s),
               pv = rowPointers(v.data(), n, s);
    if (inPlace)
      status = (sorted ? orvsSVDSort_64f_D2L_I : orvsSVD_64f_D2L_I)(pu.data(), h, w.data(), pv.data(), width,
                                                                    iterations);
    else
      status = (sorted ? orvsSVDSort_64f_D2L : orvsSVD_64f_D2L)(pa.data(), pu.data(), h, w.data(), pv.data(),
                                                                width, iterations);
  } else if (inPlace) {
    status = (sorted ? orvsSVDSort_64f_D2_I : orvsSVD_64f_D2_I)(u.data(), h, w.data(), v.data(), width, s,
                                                                iterations);
  } else {
    status = (sorted ? orvsSVDSort_64f_D2 : orvsSVD_64f_D2)(src.data(), u.data(), h, w.data(), v.data(),
                                                            width, s, iterations);
  }
  Result result{{}, w.values(), {}, status};
  for (std::size_t r = 0; r < m; ++r)
    for (std::size_t c = 0; c < step; ++c) {
      if (c < n)
        result.u.push_back(u.at(r * step + c));
      else
        EXPECT_NE(u.at(r * step + c), u.at(r * step + c) * 0) << "a gap was written";
    }
  for (std::size_t r = 0; r < n; ++r)
    for (std::size_t c = 0; c < n; ++c) result.v.push_back(v.at(r * step + c));
  return result;
}

// The columns of a matrix with `rows` rows of n values are orthonormal, those with w = 0 may be zero instead.
void expectOrthonormal(const Doubles &q, std::size_t rows, std::size_t n, const Doubles &w,
                       bool zerosAllowed) {
  for (std::size_t a = 0; a < n; ++a)
    for (std::size_t b = a; b < n; ++b) {
      double dot = 0;
      for (std::size_t r = 0; r < rows; ++r) dot += q[r * n + a] * q[r * n + b];
      if (zerosAllowed && (w[a] == 0 || w[b] == 0)) continue;
      ASSERT_NEAR(dot, a == b ? 1 : 0, 1e-13 * std::sqrt(static_cast<double>(n))) << a << ' ' << b;
    }
}

void expectDecomposition(const Doubles &a, std::size_t m, std::size_t n, int form) {
  const Result r = decompose(a, m, n, form);
  ASSERT_EQ(r.status, orvStsNoErr);
  const double largest = *std::max_element(r.w.begin(), r.w.end());
  const auto tiny = [&](double w) { return w <= largest * 1e-14 ? 0 : w; };
  Doubles w = r.w;
  std::ranges::transform(w, w.begin(), tiny);
  expectOrthonormal(r.v, n, n, w, false);
  expectOrthonormal(r.u, m, n, w, true);
  for (const double x : r.w) EXPECT_GE(x, 0);
  EXPECT_TRUE(!(form & 4) || std::ranges::is_sorted(r.w, std::greater<>()));
  for (std::size_t i = 0; i < m; ++i)
    for (std::size_t j = 0; j < n; ++j) {
      double sum = 0;
      for (std::size_t k = 0; k < n; ++k)
        sum += r.u[i * n + k] * (r.w[k] / std::max(largest, DBL_MIN)) * r.v[j * n + k];
      ASSERT_NEAR(sum, a[i * n + j] / std::max(largest, DBL_MIN), 1e-13) << m << 'x' << n << ' ' << form;
    }
#ifdef ORV_HAVE_LAPACK
  // A row-major matrix is its transpose there; the values are the same.
  Doubles copy = a, values(std::min(m, n)), work(10 * (m + n) + 64);
  const int rows = static_cast<int>(n), columns = static_cast<int>(m), one = 1,
            room = static_cast<int>(work.size());
  int info = 0;
  dgesvd_("N", "N", &rows, &columns, copy.data(), &rows, values.data(), nullptr, &one, nullptr, &one,
          work.data(), &room, &info);
  ASSERT_EQ(info, 0);
  Doubles mine = r.w;
  std::ranges::sort(mine, std::greater<>());
  for (std::size_t k = 0; k < values.size(); ++k) ASSERT_NEAR(mine[k], values[k], 1e-12 * largest);
#endif
}

TEST(SingularValues, RebuildEveryKindOfMatrix) {
  Random random(71);
  for (const auto &[m, n] : {std::pair<std::size_t, std::size_t>{1, 1},
                             {1, 5},
                             {5, 1},
                             {2, 2},
                             {3, 3},
                             {4, 7},
                             {7, 4},
                             {9, 9},
                             {20, 13},
                             {13, 20},
                             {39, 39},
                             {64, 64}})
    for (int form = 0; form < 8; ++form) {
      const Doubles a = uniform<double>(random, m * n, -1, 1);
      expectDecomposition(a, m, n, form);
      Doubles scaled = a, deficient = a;
      for (std::size_t i = 0; i < m * n; ++i) {
        scaled[i] *= form & 1 ? 1e300 : 1e-300;
        // Every other column repeats the one before, and the last row is zero.
        if (i % n % 2 == 1) deficient[i] = deficient[i - 1];
        if (m > 1 && i / n == m - 1) deficient[i] = 0;
      }
      expectDecomposition(scaled, m, n, form);
      expectDecomposition(deficient, m, n, form);
    }
}

// What is done against overflow leaves small values beside very large ones as they are.
TEST(SingularValues, KeepSmallValuesBesideLargeOnes) {
  for (int form = 0; form < 4; ++form) {
    EXPECT_EQ(decompose({1e300, 0, 0, 1e-200}, 2, 2, form, 1).w, (Doubles{1e300, 1e-200}));
    const Result huge = decompose({3e307, 4e307, 1e307, 2e307}, 2, 2, form);
    EXPECT_EQ(huge.status, orvStsNoErr);
    EXPECT_NEAR(std::hypot(huge.w[0] / 1e307, huge.w[1] / 1e307), std::sqrt(30.0), 1e-13);
  }
}

TEST(SingularValues, HaveTheirSigns) {
  for (int form = 0; form < 8; ++form) {
    const Result minus = decompose({-3}, 1, 1, form), plus = decompose({3}, 1, 1, form);
    EXPECT_TRUE(minus.w[0] == 3 && minus.u[0] == -1 && minus.v[0] == 1);
    EXPECT_TRUE(plus.w[0] == 3 && plus.u[0] == -1 && plus.v[0] == -1);
    const Result zero = decompose(Doubles(12), 4, 3, form);
    EXPECT_EQ(zero.w, Doubles(3));
    EXPECT_EQ(zero.v, (Doubles{1, 0, 0, 0, 1, 0, 0, 0, 1}));
    // A diagonal needs no sweep; the first of equals is taken, and what stood in its place goes where it was.
    const Result diagonal = decompose({2, 0, 0, 0, 0, 5, 0, 0, 0, 0, 2, 0, 0, 0, 0, 5}, 4, 4, form, 1);
    EXPECT_EQ(diagonal.status, orvStsNoErr);
    EXPECT_EQ(diagonal.w, form & 4 ? (Doubles{5, 5, 2, 2}) : (Doubles{2, 5, 2, 5}));
    for (std::size_t j = 0; j < 4; ++j) {
      const std::size_t from = form & 4 ? Doubles::size_type{std::vector<std::size_t>{1, 3, 2, 0}[j]} : j;
      EXPECT_EQ(std::fabs(diagonal.v[from * 4 + j]), 1);
    }
    EXPECT_EQ(decompose({1, 2, 3, 4}, 2, 2, form, 1).status, orvStsSvdConvergeErr);
    const Result nan = decompose({1, 2, NAN, 4, 5, 6}, 3, 2, form, 10);
    EXPECT_EQ(nan.status, orvStsSvdConvergeErr);
    EXPECT_TRUE(std::isnan(nan.w[0]) || std::isnan(nan.w[1]));
  }
}

TEST(SingularValues, CheckArgumentsAndMemory) {
  double a[4] = {1, 2, 3, 4}, u[4], w[2], v[4];
  double *rows[2] = {a, a + 2};
  for (const auto f : {orvsSVD_64f_D2, orvsSVDSort_64f_D2}) {
    EXPECT_EQ(f(a, u, 0, w, nullptr, 0, 0, 0), orvStsNullPtrErr);
    for (const auto &[h, n, s, it] : {std::tuple{0, 2, 2, 9}, {2, 0, 2, 9}, {2, 2, 1, 9}, {2, 2, 2, 0}})
      EXPECT_EQ(f(a, u, h, w, v, n, s, it), orvStsSizeErr);
    EXPECT_GE(failEachAllocation([&](int) {
                const OrvStatus status = f(a, u, 2, w, v, 2, 2, 30);
                EXPECT_TRUE(status == orvStsMemAllocErr || status == orvStsNoErr);
              }),
              1);
  }
  for (const auto f : {orvsSVD_64f_D2L_I, orvsSVDSort_64f_D2L_I}) {
    EXPECT_EQ(f(nullptr, 0, w, rows, 0, 0), orvStsNullPtrErr);
    EXPECT_EQ(f(rows, 2, w, rows, 2, 0), orvStsSizeErr);
    EXPECT_EQ(f(rows, INT32_MAX, w, rows, INT32_MAX, 9), orvStsMemAllocErr);
  }
}

TEST(ColumnRoutines, WorkOnTheirColumnFromTheFirstRowOn) {
  Doubles a{1, -2, 3, 4, 5, -6, 7, 8, 9, 10, -11, 12};
  const auto rows = rowPointers(a.data(), 4, 3);
  const auto p = rows.data();
  double sum = 0;
  EXPECT_EQ(orvsSumColumnAbs_64f_D2L(p, 3, 4, &sum, 2, 1), orvStsNoErr);
  EXPECT_EQ(sum, 6 + 9 + 12);
  EXPECT_EQ(orvsDotProdColumn_64f_D2L(p, 3, 4, &sum, 0, 1, 2), orvStsNoErr);
  EXPECT_EQ(sum, 7 * 8 - 10 * 11);
  EXPECT_EQ(orvsSumColumnSqr_64f_D2L(p, 3, 4, &sum, 0, 2, 0.5), orvStsNoErr);
  EXPECT_EQ(sum, 3.5 * 3.5 + 25);
  EXPECT_EQ(orvsAddMulColumn_64f_D2L(p, 3, 4, 2, 1, 3, 2), orvStsNoErr);
  EXPECT_EQ(orvsMulColumn_64f_D2L(p, 3, 4, 2, 3, -1), orvStsNoErr);
  EXPECT_EQ(a, (Doubles{1, -2, 3, 4, 5, -6, 3.5, 8, 9, 5, 13, -12}));
  EXPECT_EQ(orvsQRTransColumn_64f_D2L(p, 3, 4, 0, 2, 2, 3), orvStsNoErr);
  EXPECT_EQ(a, (Doubles{2 - 9, -2, 6 + 3, 8 + 18, 5, -12 + 12, 7 - 27, 8, 18 + 10.5, 10 + 36, 13, -24 + 15}));
  for (std::size_t n = 1; n <= 11; ++n) {
    Guarded<double> x(n, 8 * (n % 2)), y(n, 3);
    double abs = 0, squares = 0, wantedAbs = 0, wantedSquares = 0;
    for (std::size_t i = 0; i < n; ++i) {
      x.set(i, static_cast<double>(i) - 3);
      y.set(i, 1);
      wantedAbs += std::fabs(x.at(i));
      wantedSquares += 4 * x.at(i) * x.at(i);
    }
    const auto len = static_cast<std::int32_t>(n);
    EXPECT_EQ(orvsSumRowAbs_64f(x.data(), len, &abs), orvStsNoErr);
    EXPECT_EQ(orvsSumRowSqr_64f(x.data(), len, &squares, -2), orvStsNoErr);
    EXPECT_EQ(orvsAddMulRow_64f(x.data(), y.data(), len, 3), orvStsNoErr);
    EXPECT_EQ(abs, wantedAbs);
    EXPECT_EQ(squares, wantedSquares);
    for (std::size_t i = 0; i < n; ++i) EXPECT_EQ(y.at(i), 1 - 6 * (static_cast<double>(i) - 3));
  }
  for (const auto &[columns, count, column, first] :
       {std::tuple{0, 4, 0, 0}, {3, 0, 0, 0}, {3, 4, 3, 0}, {3, 4, -1, 0}, {3, 4, 0, 4}, {3, 4, 0, -1}}) {
    EXPECT_EQ(orvsSumColumnAbs_64f_D2L(p, columns, count, &sum, column, first), orvStsSizeErr);
    EXPECT_EQ(orvsSumColumnSqr_64f_D2L(p, columns, count, &sum, column, first, 1), orvStsSizeErr);
    EXPECT_EQ(orvsDotProdColumn_64f_D2L(p, columns, count, &sum, 0, column, first), orvStsSizeErr);
    EXPECT_EQ(orvsAddMulColumn_64f_D2L(p, columns, count, column, 0, first, 1), orvStsSizeErr);
    EXPECT_EQ(orvsMulColumn_64f_D2L(p, columns, count, column, first, 1), orvStsSizeErr);
    if (first == 0) {
      EXPECT_EQ(orvsQRTransColumn_64f_D2L(p, columns, count, column, 0, 1, 1), orvStsSizeErr);
    }
  }
  EXPECT_EQ(orvsSumColumnAbs_64f_D2L(nullptr, 0, 0, &sum, 9, 9), orvStsNullPtrErr);
  EXPECT_EQ(orvsMulColumn_64f_D2L(nullptr, 0, 0, 9, 9, 1), orvStsNullPtrErr);
  EXPECT_EQ(orvsSumRowAbs_64f(a.data(), 0, nullptr), orvStsNullPtrErr);
  EXPECT_EQ(orvsSumRowAbs_64f(a.data(), 0, &sum), orvStsSizeErr);
  EXPECT_EQ(orvsSumRowSqr_64f(a.data(), 0, &sum, 1), orvStsSizeErr);
  EXPECT_EQ(orvsAddMulRow_64f(a.data(), a.data(), 0, 1), orvStsSizeErr);
}

}  // namespace
