#include <functional>
#include <numeric>

#include "orvsr/matrix.h"
#include "support/matrix.h"

namespace orv::test {
namespace {

using std::int16_t;
using std::int32_t;
using std::int64_t;

// Shapes round the groups of four columns and of eight rows, the stripes and the blocks.
template <class F>
void forShapes(F f) {
  for (int32_t width = 1; width <= 20; ++width)
    for (int32_t height = 1; height <= 17; height += 1 + height / 10)
      f(height, width, width % 3 * height % 7, static_cast<std::size_t>((5 * width + height) % 16));
  for (const int32_t width : {39, 52, 131})
    for (const int32_t height : {31, 33, 64, 70}) f(height, width, 1, static_cast<std::size_t>(width % 16));
  for (const int32_t width : {1023, 1025, 1030}) f(17, width, 1, 4);
}

// Random bits of an integer type, and numbers of very different sizes of a floating one: in sums of them
// every other order shows.
template <class T>
std::vector<T> draw(Random &random, std::size_t len) {
  std::vector<T> values(len);
  for (T &v : values) {
    if constexpr (std::is_integral_v<T>) {
      v = static_cast<T>(random());
    } else {
      v = std::ldexp(T(std::uniform_real_distribution<T>(-1, 1)(random)), static_cast<int>(random() % 20));
    }
  }
  return values;
}
template <class T>
Matrix<T> drawMatrix(Random &random, int32_t h, int32_t w, int32_t gap, std::size_t offset) {
  return {draw<T>(random, Matrix<T>::len(h, w, gap)), h, w, gap, offset};
}

// The exact sum shifted to the right with floor, or to the left modulo 2^64; then limited.
template <class Out>
Out scaled(int64_t v, int32_t factor) {
  const auto count = static_cast<int>(std::abs(int64_t{factor}) % 64);
  int64_t shifted = static_cast<int64_t>(static_cast<std::uint64_t>(v) << count);
  if (factor > 0) shifted = static_cast<int64_t>(std::floor(std::ldexp(static_cast<long double>(v), -count)));
  return static_cast<Out>(
      std::clamp<int64_t>(shifted, std::numeric_limits<Out>::min(), std::numeric_limits<Out>::max()));
}

// Sum, in Sum and in order, of term(k) for k below count.
template <class Sum, class Term>
Sum inOrder(int32_t count, Term term) {
  Sum sum{};
  for (int32_t k = 0; k < count; ++k) sum += static_cast<Sum>(term(k));
  return sum;
}

template <class In, class Sum, class Out, class Finish>
void testSums(Finish finish, std::function<OrvStatus(Matrix<In> &, Out *, bool, bool)> call) {
  Random random(1);
  forShapes([&](int32_t h, int32_t w, int32_t gap, std::size_t offset) {
    auto x = drawMatrix<In>(random, h, w, gap, offset);
    for (const bool strided : {false, true}) {
      Guarded<Out> columns(static_cast<std::size_t>(w), offset), rows(static_cast<std::size_t>(h), 3);
      ASSERT_EQ(call(x, columns.data(), true, strided), orvStsNoErr);
      ASSERT_EQ(call(x, rows.data(), false, strided), orvStsNoErr);
      expectAll(columns,
                [&](int32_t c) { return finish(inOrder<Sum>(h, [&](int32_t r) { return x.at(r, c); })); });
      expectAll(rows,
                [&](int32_t r) { return finish(inOrder<Sum>(w, [&](int32_t c) { return x.at(r, c); })); });
    }
  });
}

template <class In, class Sum, class Out, class C, class CL, class R, class RL>
void testPlainSums(C column, CL columnL, R row, RL rowL) {
  testSums<In, Sum, Out>([](Sum s) { return static_cast<Out>(s); },
                         [=](Matrix<In> &x, Out *dst, bool columns, bool strided) {
                           return strided ? (columns ? column : row)(x.data(), x.step, x.height, dst, x.width)
                                          : (columns ? columnL : rowL)(x.rows.data(), x.height, dst, x.width);
                         });
}

TEST(Sums, OfColumnsAndRows) {
  testPlainSums<float, double, float>(orvsSumColumn_32f_D2, orvsSumColumn_32f_D2L, orvsSumRow_32f_D2,
                                      orvsSumRow_32f_D2L);
  testPlainSums<double, double, double>(orvsSumColumn_64f_D2, orvsSumColumn_64f_D2L, orvsSumRow_64f_D2,
                                        orvsSumRow_64f_D2L);
  testPlainSums<int16_t, int64_t, float>(orvsSumColumn_16s32f_D2, orvsSumColumn_16s32f_D2L,
                                         orvsSumRow_16s32f_D2, orvsSumRow_16s32f_D2L);
  for (const int32_t f : {0, 1, 3, 17, 63, 64, 66, -1, -16, -40, -63, -64, INT32_MAX, INT32_MIN})
    testSums<int16_t, int64_t, int32_t>(
        [=](int64_t s) { return scaled<int32_t>(s, f); },
        [=](Matrix<int16_t> &x, int32_t *dst, bool columns, bool strided) {
          return strided ? (columns ? orvsSumColumn_16s32s_D2Sfs : orvsSumRow_16s32s_D2Sfs)(
                               x.data(), x.step, x.height, dst, x.width, f)
                         : (columns ? orvsSumColumn_16s32s_D2LSfs : orvsSumRow_16s32s_D2LSfs)(
                               x.rows.data(), x.height, dst, x.width, f);
        });
}

// Beyond what 32 bits can hold on the way.
TEST(Sums, OfLongRowsAndColumnsAreExact) {
  constexpr int32_t len = 200000;
  const std::vector<int16_t> least(len, INT16_MIN);
  int32_t sum = 0;
  EXPECT_EQ(orvsSumRow_16s32s_D2Sfs(least.data(), len, 1, &sum, len, 3), orvStsNoErr);
  EXPECT_EQ(sum, -32768 / 8 * len);
  EXPECT_EQ(orvsSumColumn_16s32s_D2Sfs(least.data(), 1, len, &sum, 1, 3), orvStsNoErr);
  EXPECT_EQ(sum, -32768 / 8 * len);
}

TEST(Rows, AreSummedIntoAVectorAndSubtracted) {
  Random random(2);
  forShapes([&](int32_t h, int32_t w, int32_t gap, std::size_t offset) {
    const auto n = static_cast<std::size_t>(w);
    auto x = drawMatrix<float>(random, h, w, gap, offset);
    const Guarded<float> old(draw<float>(random, n), 7);
    Guarded<float> sum(old.values(), 3), sumL(old.values(), 5);
    ASSERT_EQ(orvsAddAllRowSum_32f_D2(x.data(), x.step, h, sum.data(), w), orvStsNoErr);
    ASSERT_EQ(orvsAddAllRowSum_32f_D2L(x.rows.data(), h, sumL.data(), w), orvStsNoErr);
    const auto added = [&](int32_t c) {
      return old.at(static_cast<std::size_t>(c)) + inOrder<float>(h, [&](int32_t r) { return x.at(r, c); });
    };
    expectAll(sum, added);
    expectAll(sumL, added);

    Matrix<float> xL(x.values, h, w, gap, offset / 2);
    ASSERT_EQ(orvsSubRow_32f_D2(old.data(), x.data(), x.step, h, w), orvStsNoErr);
    ASSERT_EQ(orvsSubRow_32f_D2L(old.data(), xL.rows.data(), w, h), orvStsNoErr);
    for (const auto *m : {&x, &xL})
      m->expect([&](int32_t r, int32_t c) { return x.at(r, c) - old.at(static_cast<std::size_t>(c)); });
    auto y = drawMatrix<int16_t>(random, h, w, gap, offset);
    Matrix<int16_t> yL(y.values, h, w, gap, offset / 2);
    const Guarded<int16_t> vec(draw<int16_t>(random, n), 1);
    ASSERT_EQ(orvsSubRow_16s_D2(vec.data(), y.data(), y.step, h, w), orvStsNoErr);
    ASSERT_EQ(orvsSubRow_16s_D2L(vec.data(), yL.rows.data(), w, h), orvStsNoErr);
    for (const auto *m : {&y, &yL})
      m->expect([&](int32_t r, int32_t c) {  // wraps
        return static_cast<int16_t>(y.at(r, c) - vec.at(static_cast<std::size_t>(c)));
      });
  });
}

template <class T, class Strided, class Rows>
void testGather(Strided strided, Rows rows) {
  Random random(3);
  auto src = drawMatrix<T>(random, 3, 5, 2, 3);
  const Guarded<int32_t> index(std::vector<int32_t>{4, 0, 4, 2, 2, 1, 3}, 1);
  for (int32_t w = 1; w <= 7; ++w) {
    auto dst = drawMatrix<T>(random, 3, w, 8 - w, 5);
    Matrix<T> dstL(dst.values, 3, w, 8 - w, 2);
    ASSERT_EQ(strided(src.data(), 5, src.step, dst.data(), index.data(), w, dst.step, 3), orvStsNoErr);
    ASSERT_EQ(rows(src.rows.data(), 5, dstL.rows.data(), index.data(), w, 3), orvStsNoErr);
    for (const auto *m : {&dst, &dstL})
      m->expect([&](int32_t r, int32_t j) { return src.at(r, index.at(static_cast<std::size_t>(j))); });
  }
  // A bad index shows when its column is reached in the first row: what comes before it is written.
  for (const int32_t bad : {-1, 5, INT32_MIN, INT32_MAX}) {
    const std::vector<int32_t> list{1, 2, bad, 0};
    auto dst = drawMatrix<T>(random, 3, 4, 1, 0);
    Matrix<T> dstL(dst.values, 3, 4, 1);
    EXPECT_EQ(strided(src.data(), 5, src.step, dst.data(), list.data(), 4, dst.step, 3), orvStsSizeErr);
    EXPECT_EQ(rows(src.rows.data(), 5, dstL.rows.data(), list.data(), 4, 3), orvStsSizeErr);
    for (const auto *m : {&dst, &dstL})
      m->expect([&](int32_t r, int32_t j) {
        return r == 0 && j < 2 ? src.at(0, list[static_cast<std::size_t>(j)]) : dst.at(r, j);
      });
  }
  // Each matrix has its width tested, then its step; the height comes last.
  struct Case {
    int32_t srcWidth, srcStep, dstWidth, dstStep, height;
    OrvStatus status;
  };
  for (const Case &c : {Case{0, -1, 0, -1, 0, orvStsSizeErr}, Case{5, 4, 0, -1, 0, orvStsStrideErr},
                        Case{5, 5, 0, -1, 0, orvStsSizeErr}, Case{5, 5, 3, 2, 0, orvStsStrideErr},
                        Case{5, 5, 3, 3, 0, orvStsSizeErr}}) {
    Guarded<T> out(9);
    EXPECT_EQ(
        strided(src.data(), c.srcWidth, c.srcStep, out.data(), index.data(), c.dstWidth, c.dstStep, c.height),
        c.status);
    for (int hole = 0; hole < 3; ++hole) {
      const Pointers p{out.data(), hole};
      EXPECT_EQ(strided(p[0], c.srcWidth, c.srcStep, p[1], p[2], c.dstWidth, c.dstStep, c.height),
                orvStsNullPtrErr);
      EXPECT_EQ(rows(p[0], c.srcWidth, p[1], p[2], c.dstWidth, c.height), orvStsNullPtrErr);
    }
    const Pointers p{out.data(), -1};
    if (c.srcStep <= c.srcWidth && c.dstStep <= c.dstWidth) {
      EXPECT_EQ(rows(p[0], c.srcWidth, p[1], p[2], c.dstWidth, c.height), orvStsSizeErr);
    }
    EXPECT_TRUE(out.untouched());
  }
}

TEST(Columns, AreGathered) {
  testGather<int16_t>(orvsCopyColumn_Indirect_16s_D2, orvsCopyColumn_Indirect_16s_D2L);
  testGather<float>(orvsCopyColumn_Indirect_32f_D2, orvsCopyColumn_Indirect_32f_D2L);
  testGather<double>(orvsCopyColumn_Indirect_64f_D2, orvsCopyColumn_Indirect_64f_D2L);
}

template <class T, class W, class Api>
void testMix(Api sum, Api half) {
  Random random(4);
  constexpr W inf = std::numeric_limits<W>::infinity();
  const W pairs[][2] = {{3, 1}, {W(0.3), W(-0.1)}, {-2, W(2.001)}, {W(1e-30), W(1e-30)}, {1, -1},
                        {0, 0}, {inf, -inf},       {inf, 1}};
  for (const auto &pair : pairs)
    for (std::size_t len = 1; len <= 20; ++len) {
      const W w1 = pair[0], w2 = pair[1];
      const std::size_t offset = (len * 5) % 16;
      auto some = draw<T>(random, len), other = draw<T>(random, len);
      if (len % 3 == 0) other[0] = some[0];  // a sum of 0 where the weights cancel
      const Guarded<T> a(some, offset), b(other, 3);
      Guarded<T> out(len, 5), inPlace(some, 7), outHalf(len, offset);
      const W s = w1 + w2;
      const OrvStatus status = s == 0 ? orvStsDivByZeroWrn : orvStsNoErr;
      ASSERT_EQ(sum(a.data(), b.data(), out.data(), a.len(), w1, w2), status);
      ASSERT_EQ(sum(inPlace.data(), b.data(), inPlace.data(), a.len(), w1, w2), status);
      ASSERT_EQ(half(a.data(), b.data(), outHalf.data(), a.len(), w1, w2), status);
      const auto mixed = [&](int32_t k, bool whole) {
        const auto i = static_cast<std::size_t>(k);
        const W x = a.at(i), y = b.at(i), r = 1 / s;
        W t = x * (whole ? w1 * r : r) + y * (w2 * r);
        if (s == 0) {
          t = x * w1 + y * w2;
          t = t > 0 ? inf : t < 0 ? -inf : -std::numeric_limits<W>::quiet_NaN();
        }
        if constexpr (std::is_integral_v<T>) {
          return static_cast<T>(std::isnan(t) ? 0 : std::clamp<W>(t, INT16_MIN, INT16_MAX));
        } else {
          return t;
        }
      };
      expectAll(out, [&](int32_t i) { return mixed(i, true); });
      expectAll(inPlace, [&](int32_t i) { return mixed(i, true); });
      expectAll(outHalf, [&](int32_t i) { return mixed(i, false); });
      if (s == 0 && std::isnan(static_cast<double>(out.at(0)))) {
        EXPECT_TRUE(std::signbit(static_cast<double>(out.at(0))));
      }
    }
  for (const auto f : {sum, half})
    expectOrder(kNullSize, 3, 1, [=](Pointers p, int32_t w, int32_t, int32_t h) {
      return f(p[0], p[1], p[2], h < 1 ? h : w, 1, -1);
    });
}

TEST(WeightedSum, NormalisesOrMarksTheSign) {
  testMix<int16_t, float>(orvsWeightedSum_16s, orvsWeightedSumHalf_16s);
  testMix<float, float>(orvsWeightedSum_32f, orvsWeightedSumHalf_32f);
  testMix<double, double>(orvsWeightedSum_64f, orvsWeightedSumHalf_64f);
}

TEST(Products, OfSingles) {
  Random random(5);
  forShapes([&](int32_t h, int32_t w, int32_t gap, std::size_t offset) {
    auto m = drawMatrix<float>(random, h, w, gap, offset);
    const Guarded<float> left(draw<float>(random, static_cast<std::size_t>(h)), 3);
    const Guarded<float> right(draw<float>(random, static_cast<std::size_t>(w)), 5);
    const auto l = [&](int32_t r) { return left.at(static_cast<std::size_t>(r)); };
    const auto rt = [&](int32_t c) { return right.at(static_cast<std::size_t>(c)); };
    Guarded<float> columns(static_cast<std::size_t>(w), 7), columnsL(static_cast<std::size_t>(w), 9);
    Guarded<float> rows(static_cast<std::size_t>(h), 11), rowsL(static_cast<std::size_t>(h), 13);
    ASSERT_EQ(orvsVecMatMul_32f_D2(left.data(), m.data(), m.step, h, columns.data(), w), orvStsNoErr);
    ASSERT_EQ(orvsVecMatMul_32f_D2L(left.data(), m.rows.data(), h, columnsL.data(), w), orvStsNoErr);
    ASSERT_EQ(orvsMatVecMul_32f_D2(m.data(), m.step, right.data(), w, rows.data(), h), orvStsNoErr);
    ASSERT_EQ(orvsMatVecMul_32f_D2L(m.rows.data(), right.data(), w, rowsL.data(), h), orvStsNoErr);
    for (const auto *v : {&columns, &columnsL})
      expectAll(*v,
                [&](int32_t c) { return inOrder<float>(h, [&](int32_t r) { return l(r) * m.at(r, c); }); });
    // Four lanes, added 0 + 2, 1 + 3 and those two; the rest of a row goes to the last lanes.
    for (const auto *v : {&rows, &rowsL})
      expectAll(*v, [&](int32_t r) {
        float lane[4] = {};
        const int32_t body = w < 4 ? 0 : w / 4 * 4;
        for (int32_t c = 0; c < w; ++c) lane[w < 4 ? 0 : c < body ? c % 4 : c + 4 - w] += m.at(r, c) * rt(c);
        return (lane[0] + lane[2]) + (lane[1] + lane[3]);
      });
  });
}

// An infinity is not multiplied by what does not belong to it.
TEST(Products, KeepInfinitiesInTheirPlaces) {
  constexpr float inf = std::numeric_limits<float>::infinity();
  std::vector<float> m(7 * 6, 1), vec(7, 1), out(6);
  m[2] = inf;
  vec[4] = inf;
  ASSERT_EQ(orvsMatVecMul_32f_D2(m.data(), 7, vec.data(), 7, out.data(), 6), orvStsNoErr);
  for (const float v : out) EXPECT_EQ(v, inf);
}

template <class In, class Out, class Vec, class VecL, class Mat, class MatL>
void testScaledProducts(Vec vecMat, VecL vecMatL, Mat matVec, MatL matVecL) {
  Random random(6);
  int32_t f = -70;
  forShapes([&](int32_t h, int32_t w, int32_t gap, std::size_t offset) {
    f = f > 70 ? -70 : f + 1;
    auto values = draw<In>(random, Matrix<In>::len(h, w, gap));
    auto l = draw<In>(random, static_cast<std::size_t>(h)), r = draw<In>(random, static_cast<std::size_t>(w));
    if (f % 3 == 0)  // the greatest products there are
      for (auto *v : {&values, &l, &r}) v->assign(v->size(), std::numeric_limits<In>::min());
    Matrix<In> m(values, h, w, gap, offset);
    const Guarded<In> left(l, 3), right(r, 5);
    Guarded<Out> columns(r.size(), 7), columnsL(r.size(), 9), rows(l.size(), 11), rowsL(l.size(), 13);
    ASSERT_EQ(vecMat(left.data(), m.data(), m.step, h, columns.data(), w, f), orvStsNoErr);
    ASSERT_EQ(vecMatL(left.data(), m.rows.data(), h, columnsL.data(), w, f), orvStsNoErr);
    ASSERT_EQ(matVec(m.data(), m.step, right.data(), w, rows.data(), h, f), orvStsNoErr);
    ASSERT_EQ(matVecL(m.rows.data(), right.data(), w, rowsL.data(), h, f), orvStsNoErr);
    // Modulo 2^64, which only sums of 32-bit products reach.
    const auto finish = [&](std::uint64_t sum) { return scaled<Out>(static_cast<int64_t>(sum), f); };
    const auto product = [&](In a, In b) { return static_cast<std::uint64_t>(int64_t{a} * b); };
    for (const auto *v : {&columns, &columnsL})
      expectAll(*v, [&](int32_t c) {
        return finish(inOrder<std::uint64_t>(
            h, [&](int32_t k) { return product(l[static_cast<std::size_t>(k)], m.at(k, c)); }));
      });
    for (const auto *v : {&rows, &rowsL})
      expectAll(*v, [&](int32_t k) {
        return finish(inOrder<std::uint64_t>(
            w, [&](int32_t c) { return product(m.at(k, c), r[static_cast<std::size_t>(c)]); }));
      });
  });
}

TEST(Products, OfIntegers) {
  testScaledProducts<int16_t, int16_t>(orvsVecMatMul_16s_D2Sfs, orvsVecMatMul_16s_D2LSfs,
                                       orvsMatVecMul_16s_D2Sfs, orvsMatVecMul_16s_D2LSfs);
  testScaledProducts<int16_t, int32_t>(orvsVecMatMul_16s32s_D2Sfs, orvsVecMatMul_16s32s_D2LSfs,
                                       orvsMatVecMul_16s32s_D2Sfs, orvsMatVecMul_16s32s_D2LSfs);
  testScaledProducts<int32_t, int32_t>(orvsVecMatMul_32s_D2Sfs, orvsVecMatMul_32s_D2LSfs,
                                       orvsMatVecMul_32s_D2Sfs, orvsMatVecMul_32s_D2LSfs);
}

TEST(RowsAndColumns, OrdersOfChecks) {
  using P = Pointers;
  using I = int32_t;
  const auto sums = [](auto f, auto fL, auto... scale) {
    expectOrder(kNullSizeStride, 2, 1, [=](P p, I w, I s, I h) { return f(p[0], s, h, p[1], w, scale...); });
    expectOrder(kNullSize, 2, 1, [=](P p, I w, I, I h) { return fL(p[0], h, p[1], w, scale...); });
  };
  sums(orvsSumColumn_32f_D2, orvsSumColumn_32f_D2L);
  sums(orvsSumColumn_64f_D2, orvsSumColumn_64f_D2L);
  sums(orvsSumColumn_16s32f_D2, orvsSumColumn_16s32f_D2L);
  sums(orvsSumColumn_16s32s_D2Sfs, orvsSumColumn_16s32s_D2LSfs, 0);
  sums(orvsSumRow_32f_D2, orvsSumRow_32f_D2L);
  sums(orvsSumRow_64f_D2, orvsSumRow_64f_D2L);
  sums(orvsSumRow_16s32f_D2, orvsSumRow_16s32f_D2L);
  sums(orvsSumRow_16s32s_D2Sfs, orvsSumRow_16s32s_D2LSfs, 0);
  sums(orvsAddAllRowSum_32f_D2, orvsAddAllRowSum_32f_D2L);
  const auto subRow = [](auto f, auto fL) {
    expectOrder(kNullSizeStride, 2, 1, [=](P p, I w, I s, I h) { return f(p[0], p[1], s, h, w); });
    expectOrder(kNullSize, 2, 1, [=](P p, I w, I, I h) { return fL(p[0], p[1], w, h); });
  };
  subRow(orvsSubRow_32f_D2, orvsSubRow_32f_D2L);
  subRow(orvsSubRow_16s_D2, orvsSubRow_16s_D2L);
  const auto products = [](auto f, auto fL, auto g, auto gL, auto... scale) {
    expectOrder(kNullSizeStride, 3, 1,
                [=](P p, I w, I s, I h) { return f(p[0], p[1], s, h, p[2], w, scale...); });
    expectOrder(kNullSize, 3, 1, [=](P p, I w, I, I h) { return fL(p[0], p[1], h, p[2], w, scale...); });
    expectOrder(kNullSizeStride, 3, 1,
                [=](P p, I w, I s, I h) { return g(p[0], s, p[1], w, p[2], h, scale...); });
    expectOrder(kNullSize, 3, 1, [=](P p, I w, I, I h) { return gL(p[0], p[1], w, p[2], h, scale...); });
  };
  products(orvsVecMatMul_32f_D2, orvsVecMatMul_32f_D2L, orvsMatVecMul_32f_D2, orvsMatVecMul_32f_D2L);
  products(orvsVecMatMul_16s_D2Sfs, orvsVecMatMul_16s_D2LSfs, orvsMatVecMul_16s_D2Sfs,
           orvsMatVecMul_16s_D2LSfs, 0);
  products(orvsVecMatMul_16s32s_D2Sfs, orvsVecMatMul_16s32s_D2LSfs, orvsMatVecMul_16s32s_D2Sfs,
           orvsMatVecMul_16s32s_D2LSfs, 0);
  products(orvsVecMatMul_32s_D2Sfs, orvsVecMatMul_32s_D2LSfs, orvsMatVecMul_32s_D2Sfs,
           orvsMatVecMul_32s_D2LSfs, 0);
}

}  // namespace
}  // namespace orv::test
