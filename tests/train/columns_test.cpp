#include <cstdlib>

#include "orvsr/train.h"
#include "support/allocation.h"
#include "support/matrix.h"

namespace orv::test {
namespace {

using std::int16_t;
using std::int32_t;
using std::int64_t;

// Shapes round the groups of four columns, the stripes and the blocks of rows; f(height, width, gap, offset).
template <class F>
void forShapes(F f) {
  for (int32_t width = 1; width <= 20; ++width)
    for (int32_t height = 1; height <= 9; ++height)
      f(height, width, width % 3 * height % 7, static_cast<std::size_t>((5 * width + height) % 16));
  for (const int32_t width : {39, 47, 48, 49, 61, 97, 131})
    for (const int32_t height : {3, 33, 64, 65, 97})
      f(height, width, width % 2, static_cast<std::size_t>(width % 16));
  for (const int32_t width : {1023, 1025, 1030}) f(17, width, 1, 4);
}

template <class T>
T draw(Random &random) {
  if constexpr (std::is_integral_v<T>) {
    return static_cast<T>(random());
  } else {
    return std::uniform_real_distribution<T>(T(-3), T(5))(random);
  }
}

template <class T>
std::vector<T> drawAll(Random &random, std::size_t len) {
  std::vector<T> values(len);
  for (T &v : values) v = draw<T>(random);
  return values;
}

template <class T>
Matrix<T> drawMatrix(Random &random, int32_t h, int32_t w, int32_t gap, std::size_t offset) {
  return {drawAll<T>(random, Matrix<T>::len(h, w, gap)), h, w, gap, offset};
}

// One column in the order of its rows: start, then what term(start, r) makes of it, row by row.
template <class T, class Term>
T overRows(int32_t height, T start, Term term) {
  for (int32_t r = 0; r < height; ++r) start = term(start, r);
  return start;
}

// The shift by a scale factor as a division with floor, or a multiplication modulo 2^64.
int64_t scaled(int64_t v, int32_t factor) {
  const int count = std::abs(factor) % 64;
  if (factor <= 0) return static_cast<int64_t>(static_cast<std::uint64_t>(v) * (std::uint64_t{1} << count));
  return static_cast<int64_t>(std::floor(std::ldexp(static_cast<long double>(v), -count)));
}
template <class Out>
Out clamped(int64_t v) {
  return static_cast<Out>(std::min<int64_t>(std::max<int64_t>(v, std::numeric_limits<Out>::min()),
                                            std::numeric_limits<Out>::max()));
}

TEST(ColumnStatistics, Singles) {
  Random random(1);
  forShapes([&](int32_t h, int32_t w, int32_t gap, std::size_t offset) {
    auto x = drawMatrix<float>(random, h, w, gap, offset);
    const auto n = static_cast<std::size_t>(w);
    const Guarded<float> given(drawAll<float>(random, n), offset), old(drawAll<float>(random, n));
    Guarded<float> mean(n, 3), meanL(n, 4), var(n, offset), varL(n, 2);
    const auto size = static_cast<float>(h);
    const auto meanOf = [&](int32_t c) {
      return overRows(h, 0.0F, [&](float s, int32_t r) { return s + x.at(r, c); }) * (1.0F / size);
    };
    const auto squaresFrom = [&](float start, int32_t c) {
      return overRows(h, start, [&](float s, int32_t r) { return s + x.at(r, c) * x.at(r, c); });
    };
    ASSERT_EQ(orvsMeanColumn_32f_D2(x.data(), h, x.step, mean.data(), w), orvStsNoErr);
    ASSERT_EQ(orvsMeanColumn_32f_D2L(x.rows.data(), h, meanL.data(), w), orvStsNoErr);
    expectAll(mean, meanOf);
    expectAll(meanL, meanOf);
    Guarded<float> sum(n, 5), sqr(n, 6), sumI(old.values(), 7), sqrI(old.values(), 8);
    ASSERT_EQ(orvsSumMeanVar_32f(x.data(), x.step, h, sum.data(), sqr.data(), w), orvStsNoErr);
    ASSERT_EQ(orvsSumMeanVar_32f_I(x.data(), x.step, h, sumI.data(), sqrI.data(), w), orvStsNoErr);
    const auto sumFrom = [&](float start, int32_t c) {
      return overRows(h, start, [&](float s, int32_t r) { return s + x.at(r, c); });
    };
    expectAll(sum, [&](int32_t c) { return sumFrom(0.0F, c); });
    expectAll(sqr, [&](int32_t c) { return squaresFrom(0.0F, c); });
    expectAll(sumI, [&](int32_t c) { return sumFrom(old.at(static_cast<std::size_t>(c)), c); });
    expectAll(sqrI, [&](int32_t c) { return squaresFrom(old.at(static_cast<std::size_t>(c)), c); });
    if (h < 2) return;
    ASSERT_EQ(orvsVarColumn_32f_D2(x.data(), h, x.step, given.data(), var.data(), w), orvStsNoErr);
    ASSERT_EQ(orvsVarColumn_32f_D2L(x.rows.data(), h, given.data(), varL.data(), w), orvStsNoErr);
    const auto varOf = [&](int32_t c) {
      const float m = given.at(static_cast<std::size_t>(c));
      return squaresFrom(-size * (m * m), c) * (1.0F / (size - 1.0F));
    };
    expectAll(var, varOf);
    expectAll(varL, varOf);
    ASSERT_EQ(orvsMeanVarColumn_32f_D2(x.data(), h, x.step, mean.data(), var.data(), w), orvStsNoErr);
    ASSERT_EQ(orvsMeanVarColumn_32f_D2L(x.rows.data(), h, meanL.data(), varL.data(), w), orvStsNoErr);
    const auto ownVarOf = [&](int32_t c) {
      return (squaresFrom(0.0F, c) - size * (meanOf(c) * meanOf(c))) * (1.0F / (size - 1.0F));
    };
    expectAll(mean, meanOf);
    expectAll(meanL, meanOf);
    expectAll(var, ownVarOf);
    expectAll(varL, ownVarOf);
    x.expect([&](int32_t r, int32_t c) { return x.at(r, c); });
  });
}

TEST(ColumnStatistics, ShortIntegers) {
  Random random(2);
  int32_t factor = -70;
  forShapes([&](int32_t h, int32_t w, int32_t gap, std::size_t offset) {
    factor = factor > 70 ? -70 : factor + 3;
    const int32_t f = h % 2 != 0 ? factor : factor % 20;
    auto x = drawMatrix<int16_t>(random, h, w, gap, offset);
    const auto n = static_cast<std::size_t>(w);
    const auto at = [](const auto &array, int32_t c) { return array.at(static_cast<std::size_t>(c)); };
    const auto exact = [&](int64_t start, int power, int32_t c) {
      return overRows(h, start, [&](int64_t s, int32_t r) {
        return s + (power == 2 ? int64_t{x.at(r, c)} * x.at(r, c) : x.at(r, c));
      });
    };
    const auto single = [&](float start, int power, int32_t c) {  // each term rounded, then added
      return overRows(h, start, [&](float s, int32_t r) {
        return s + static_cast<float>(power == 2 ? int64_t{x.at(r, c)} * x.at(r, c) : x.at(r, c));
      });
    };
    const auto size = static_cast<float>(h);
    const auto m = [&](int32_t c) { return static_cast<float>(exact(0, 1, c)) * (1.0F / size); };
    const auto variance = [&](int32_t c, float about, int32_t by) {
      const float v = (single(0.0F, 2, c) - about * about * size) * (1.0F / (size - 1.0F));
      return scaled(static_cast<int64_t>(v), by);
    };
    Guarded<int16_t> mean(n, 3), meanL(n, 4), var(n, 5), varL(n, 6);
    const auto meanOf = [&](int32_t c) { return static_cast<int16_t>(m(c)); };
    ASSERT_EQ(orvsMeanColumn_16s_D2(x.data(), h, x.step, mean.data(), w), orvStsNoErr);
    ASSERT_EQ(orvsMeanColumn_16s_D2L(x.rows.data(), h, meanL.data(), w), orvStsNoErr);
    expectAll(mean, meanOf);
    expectAll(meanL, meanOf);

    const Guarded<float> old(drawAll<float>(random, n));
    Guarded<float> sum(n, 1), sqr(n, 2), sumI(old.values(), 3), sqrI(old.values(), 4);
    ASSERT_EQ(orvsSumMeanVar_16s32f(x.data(), x.step, h, sum.data(), sqr.data(), w), orvStsNoErr);
    ASSERT_EQ(orvsSumMeanVar_16s32f_I(x.data(), x.step, h, sumI.data(), sqrI.data(), w), orvStsNoErr);
    expectAll(sum, [&](int32_t c) { return single(0.0F, 1, c); });
    expectAll(sqr, [&](int32_t c) { return single(0.0F, 2, c); });
    expectAll(sumI, [&](int32_t c) { return single(at(old, c), 1, c); });
    expectAll(sqrI, [&](int32_t c) { return single(at(old, c), 2, c); });

    // What stood there is part of what is shifted.
    const Guarded<int32_t> was(anyIntegers<int32_t>(random, n));
    Guarded<int32_t> isum(n, 1), isqr(n, 2), isumI(was.values(), 3), isqrI(was.values(), 4);
    ASSERT_EQ(orvsSumMeanVar_16s32s_Sfs(x.data(), x.step, h, isum.data(), isqr.data(), w, f), orvStsNoErr);
    ASSERT_EQ(orvsSumMeanVar_16s32s_ISfs(x.data(), x.step, h, isumI.data(), isqrI.data(), w, f), orvStsNoErr);
    expectAll(isum, [&](int32_t c) { return clamped<int32_t>(scaled(exact(0, 1, c), f)); });
    expectAll(isqr, [&](int32_t c) { return clamped<int32_t>(scaled(exact(0, 2, c), f)); });
    expectAll(isumI, [&](int32_t c) { return clamped<int32_t>(scaled(exact(at(was, c), 1, c), f)); });
    expectAll(isqrI, [&](int32_t c) { return clamped<int32_t>(scaled(exact(at(was, c), 2, c), f)); });

    if (h < 2) return;
    const Guarded<int16_t> given(drawAll<int16_t>(random, n), offset);
    ASSERT_EQ(orvsVarColumn_16s_D2Sfs(x.data(), h, x.step, given.data(), var.data(), w, f), orvStsNoErr);
    ASSERT_EQ(orvsVarColumn_16s_D2LSfs(x.rows.data(), h, given.data(), varL.data(), w, f), orvStsNoErr);
    const auto varOf = [&](int32_t c) { return clamped<int16_t>(variance(c, at(given, c), f)); };
    expectAll(var, varOf);
    expectAll(varL, varOf);
    ASSERT_EQ(orvsMeanVarColumn_16s_D2Sfs(x.data(), h, x.step, mean.data(), var.data(), w, f), orvStsNoErr);
    ASSERT_EQ(orvsMeanVarColumn_16s_D2LSfs(x.rows.data(), h, meanL.data(), varL.data(), w, f), orvStsNoErr);
    const auto ownVarOf = [&](int32_t c) { return clamped<int16_t>(variance(c, m(c), f)); };
    expectAll(mean, meanOf);
    expectAll(meanL, meanOf);
    expectAll(var, ownVarOf);
    expectAll(varL, ownVarOf);
    ASSERT_EQ(orvsMeanVarColumn_16s32s_D2Sfs(x.data(), h, x.step, isum.data(), isqr.data(), w, f),
              orvStsNoErr);
    ASSERT_EQ(orvsMeanVarColumn_16s32s_D2LSfs(x.rows.data(), h, isumI.data(), isqrI.data(), w, f),
              orvStsNoErr);
    const auto wideVarOf = [&](int32_t c) { return clamped<int32_t>(variance(c, m(c), f)); };
    expectAll(isum, meanOf);
    expectAll(isumI, meanOf);
    expectAll(isqr, wideVarOf);
    expectAll(isqrI, wideVarOf);
    const auto unscaledVarOf = [&](int32_t c) { return clamped<int32_t>(variance(c, m(c), 0)); };
    ASSERT_EQ(orvsMeanVarColumn_16s16s32s_D2(x.data(), h, x.step, mean.data(), isqr.data(), w), orvStsNoErr);
    ASSERT_EQ(orvsMeanVarColumn_16s16s32s_D2L(x.rows.data(), h, meanL.data(), isqrI.data(), w), orvStsNoErr);
    expectAll(mean, meanOf);
    expectAll(meanL, meanOf);
    expectAll(isqr, unscaledVarOf);
    expectAll(isqrI, unscaledVarOf);
  });
}

template <class T, class Mean, class MeanL, class Var, class VarL, class Both, class BothL>
void testWeighted(Mean mean, MeanL meanL, Var var, VarL varL, Both both, BothL bothL) {
  Random random(3);
  forShapes([&](int32_t h, int32_t w, int32_t gap, std::size_t offset) {
    auto x = drawMatrix<T>(random, h, w, gap, offset);
    const auto n = static_cast<std::size_t>(w);
    const Guarded<T> weights(drawAll<T>(random, static_cast<std::size_t>(h)), offset);
    const auto sum = [&](int power, int32_t c) {
      return overRows(h, T{0}, [&](T s, int32_t r) {
        const T v = x.at(r, c);
        return s + weights.at(static_cast<std::size_t>(r)) * (power == 2 ? v * v : v);
      });
    };
    const auto first = [&](int32_t c) { return sum(1, c); };
    const auto second = [&](int32_t c) { return sum(2, c) - sum(1, c) * sum(1, c); };
    Guarded<T> m(n, 1), mL(n, 2), v(n, 3), vL(n, 4), m2(n, 5), mL2(n, 6), v2(n, 7), vL2(n, 8);
    ASSERT_EQ(mean(x.data(), x.step, weights.data(), h, m.data(), w), orvStsNoErr);
    ASSERT_EQ(meanL(x.rows.data(), weights.data(), h, mL.data(), w), orvStsNoErr);
    ASSERT_EQ(var(x.data(), x.step, weights.data(), h, m.data(), v.data(), w), orvStsNoErr);
    ASSERT_EQ(varL(x.rows.data(), weights.data(), h, m.data(), vL.data(), w), orvStsNoErr);
    ASSERT_EQ(both(x.data(), x.step, weights.data(), h, m2.data(), v2.data(), w), orvStsNoErr);
    ASSERT_EQ(bothL(x.rows.data(), weights.data(), h, mL2.data(), vL2.data(), w), orvStsNoErr);
    for (const auto *a : {&m, &mL, &m2, &mL2}) expectAll(*a, first);
    for (const auto *a : {&v, &vL, &v2, &vL2}) expectAll(*a, second);
  });
}

TEST(ColumnStatistics, Weighted) {
  testWeighted<float>(orvsWeightedMeanColumn_32f_D2, orvsWeightedMeanColumn_32f_D2L,
                      orvsWeightedVarColumn_32f_D2, orvsWeightedVarColumn_32f_D2L,
                      orvsWeightedMeanVarColumn_32f_D2, orvsWeightedMeanVarColumn_32f_D2L);
  testWeighted<double>(orvsWeightedMeanColumn_64f_D2, orvsWeightedMeanColumn_64f_D2L,
                       orvsWeightedVarColumn_64f_D2, orvsWeightedVarColumn_64f_D2L,
                       orvsWeightedMeanVarColumn_64f_D2, orvsWeightedMeanVarColumn_64f_D2L);
}

// 2^24 + 1 is no single: where the factor is formed in single it becomes 2^-24, in double the number below
// it. Two rows are not zero, so that the mean is 0 and the sum of squares 2^25.
TEST(ColumnStatistics, FactorsOfLongColumnsAreFormedInTwoWays) {
  constexpr int32_t height = (1 << 24) + 2;
  const auto column = [](auto zero) {
    using T = decltype(zero);
    auto *x = static_cast<T *>(std::calloc(static_cast<std::size_t>(height), sizeof(T)));
    x[0] = 4096;
    x[height - 1] = -4096;
    return std::unique_ptr<T, void (*)(void *)>(x, std::free);
  };
  const auto x = column(0.0F);
  const float zero = 0;
  float mean = 1, plain = 0, both = 0;
  ASSERT_EQ(orvsVarColumn_32f_D2(x.get(), height, 1, &zero, &plain, 1), orvStsNoErr);
  ASSERT_EQ(orvsMeanVarColumn_32f_D2(x.get(), height, 1, &mean, &both, 1), orvStsNoErr);
  EXPECT_EQ(plain, 2.0F);
  EXPECT_EQ(both, std::nextafter(2.0F, 0.0F));
  EXPECT_EQ(mean, 0.0F);
  const auto y = column(int16_t{0});
  int16_t shortMean = 1;
  int32_t shortVar = 0;
  ASSERT_EQ(orvsMeanVarColumn_16s16s32s_D2(y.get(), height, 1, &shortMean, &shortVar, 1), orvStsNoErr);
  EXPECT_EQ(shortVar, 2);
}

TEST(ColumnStatistics, IntegerMeansAreTruncated) {
  const int16_t row0 = -1, row1 = -2;
  const int16_t *const rows[] = {&row0, &row1};
  int16_t mean = 5;
  ASSERT_EQ(orvsMeanColumn_16s_D2L(rows, 2, &mean, 1), orvStsNoErr);
  EXPECT_EQ(mean, -1);
  // 41 times the single nearest to 1/41 is below 1: the mean of ones is 0.
  const std::vector<int16_t> ones(41, 1);
  ASSERT_EQ(orvsMeanColumn_16s_D2(ones.data(), 41, 1, &mean, 1), orvStsNoErr);
  EXPECT_EQ(mean, 0);
}

TEST(ColumnScaling, NewVariances) {
  Random random(4);
  int differs = 0;
  for (std::size_t len = 1; len < 20; ++len) {
    const Guarded<float> a(drawAll<float>(random, len), len % 16), b(drawAll<float>(random, len), len % 5);
    const float c1 = draw<float>(random), c2 = draw<float>(random);
    Guarded<float> out(len, 3), inPlace(b.values(), 7);
    ASSERT_EQ(orvsNewVar_32f(a.data(), b.data(), out.data(), out.len(), c1, c2), orvStsNoErr);
    ASSERT_EQ(orvsNewVar_32f_I(a.data(), inPlace.data(), out.len(), c1, c2), orvStsNoErr);
    const auto expected = [&](int32_t k) {
      const auto i = static_cast<std::size_t>(k);
      const float square = a.at(i) * a.at(i);
      const double x = a.at(i);
      const float single = (b.at(i) - square * c1) * c2;
      const auto wide = static_cast<float>((b.at(i) - x * x * c1) * c2);
      const auto mixed = static_cast<float>((b.at(i) - static_cast<double>(square) * c1) * c2);
      differs |= (mixed != single) + 2 * (mixed != wide);
      return mixed;
    };
    expectAll(out, expected);
    expectAll(inPlace, expected);

    const Guarded<int32_t> ia(wholeNumbers<int32_t>(random, len, 40000), len % 4);
    const Guarded<int32_t> ib(anyIntegers<int32_t>(random, len));
    Guarded<int32_t> iout(len, 1), iinPlace(ib.values(), 2);
    const auto f = static_cast<int32_t>(len) - 5;
    ASSERT_EQ(orvsNewVar_32s_Sfs(ia.data(), ib.data(), iout.data(), iout.len(), f, c1, c2), orvStsNoErr);
    ASSERT_EQ(orvsNewVar_32s_ISfs(ia.data(), iinPlace.data(), iout.len(), f, c1, c2), orvStsNoErr);
    const auto integer = [&](int32_t k) {
      const auto i = static_cast<std::size_t>(k);
      const auto x = static_cast<float>(ia.at(i)), y = static_cast<float>(ib.at(i));
      const float v = std::ldexp((y - x * x * c1) * c2, -f);
      return v >= 2147483648.0F ? INT32_MAX : v <= -2147483648.0F ? INT32_MIN : static_cast<int32_t>(v);
    };
    expectAll(iout, integer);
    expectAll(iinPlace, integer);
  }
  EXPECT_EQ(differs, 3) << "the data do not tell the mixture of precisions from a plain one";
}

TEST(ColumnScaling, Normalize) {
  Random random(5);
  int32_t factor = -37;
  forShapes([&](int32_t h, int32_t w, int32_t gap, std::size_t offset) {
    factor = factor > 37 ? -37 : factor + 1;
    const auto n = static_cast<std::size_t>(w);
    const Guarded<float> mean(drawAll<float>(random, n), 3), scale(drawAll<float>(random, n), 5);
    auto x = drawMatrix<float>(random, h, w, gap, offset);
    Matrix<float> xL(x.values, h, w, gap, offset / 2);
    ASSERT_EQ(orvsNormalizeColumn_32f_D2(x.data(), x.step, h, mean.data(), scale.data(), w), orvStsNoErr);
    ASSERT_EQ(orvsNormalizeColumn_32f_D2L(xL.rows.data(), h, mean.data(), scale.data(), w), orvStsNoErr);
    const auto single = [&](int32_t r, int32_t c) {
      return (x.at(r, c) - mean.at(static_cast<std::size_t>(c))) * scale.at(static_cast<std::size_t>(c));
    };
    x.expect(single);
    xL.expect(single);

    auto means = drawAll<int16_t>(random, n), scales = drawAll<int16_t>(random, n);
    auto y = drawMatrix<int16_t>(random, h, w, gap, offset);
    means[0] = INT16_MAX;  // the greatest product there is: 65535 * 32768
    scales[0] = INT16_MIN;
    y.array.set(0, y.values[0] = INT16_MIN);
    for (std::size_t c = 1; c < n; ++c)
      if (c % 2 != 0) scales[c] = static_cast<int16_t>(scales[c] % 7);
    Matrix<int16_t> yL(y.values, h, w, gap, offset / 2);
    const Guarded<int16_t> gm(means, 1), gs(scales, 3);
    ASSERT_EQ(orvsNormalizeColumn_16s_D2Sfs(y.data(), y.step, h, gm.data(), gs.data(), w, factor),
              orvStsNoErr);
    ASSERT_EQ(orvsNormalizeColumn_16s_D2LSfs(yL.rows.data(), h, gm.data(), gs.data(), w, factor),
              orvStsNoErr);
    // The product is shifted in 32 bits: what leaves them on the left is lost before the result is saturated.
    const auto integer = [&](int32_t r, int32_t c) {
      const auto i = static_cast<std::size_t>(c);
      const int64_t product = int64_t{y.at(r, c) - means[i]} * scales[i];
      const int count = std::abs(factor) % 32;
      const int64_t v = factor > 0 ? scaled(product, count) : static_cast<int32_t>(scaled(product, -count));
      return clamped<int16_t>(v);
    };
    y.expect(integer);
    yL.expect(integer);
  });
}

template <class T, class Strided, class Rows>
void testCovariance(Strided strided, Rows rows) {
  Random random(6);
  const auto check = [&](int32_t h, int32_t w, int32_t gap, std::size_t offset) {
    auto x = drawMatrix<T>(random, h, w, gap, offset);
    const auto n = static_cast<std::size_t>(w);
    const Guarded<T> mean(drawAll<T>(random, n), 3);
    // The upper triangle holds what must not be read; the lower one counts.
    auto old = drawMatrix<double>(random, w, w, gap, offset);
    for (int32_t i = 0; i < w; ++i)
      for (int32_t j = i + 1; j < w; ++j) old.values[old.index(i, j)] = std::nan("");
    Matrix<double> d(old.values, w, w, gap, offset), dL(old.values, w, w, gap, offset / 2);
    ASSERT_EQ(strided(x.data(), h, x.step, mean.data(), d.data(), d.step, w, 0.7), orvStsNoErr);
    ASSERT_EQ(rows(x.rows.data(), h, mean.data(), dL.rows.data(), w, 0.7), orvStsNoErr);
    const auto expected = [&](int32_t i, int32_t j) {
      if (i < j) std::swap(i, j);
      const auto centred = [&](int32_t r, int32_t c) {
        return static_cast<double>(x.at(r, c) - mean.at(static_cast<std::size_t>(c)));
      };
      return overRows(h, old.at(i, j),
                      [&](double s, int32_t r) { return s + centred(r, i) * centred(r, j); }) *
             0.7;
    };
    d.expect(expected);
    dL.expect(expected);
  };
  for (int32_t w = 1; w <= 20; ++w)
    for (int32_t h = 1; h <= 9; ++h) check(h, w, w % 3, static_cast<std::size_t>((3 * w + h) % 16));
  check(211, 39, 0, 0);
  check(19, 130, 1, 8);
  for (const int32_t w : {512, 513}) {
    Allocations allocations;
    check(9, w, 0, 0);
    EXPECT_EQ(allocations.calls(), w == 512 ? 0 : 2);
  }
}

TEST(Covariance, GrowsRowByRowAndIsScaledWithWhatItHeld) {
  testCovariance<float>(orvsAccCovarianceMatrix_32f64f_D2, orvsAccCovarianceMatrix_32f64f_D2L);
  testCovariance<int16_t>(orvsAccCovarianceMatrix_16s64f_D2, orvsAccCovarianceMatrix_16s64f_D2L);
}

TEST(Covariance, WithoutMemoryNothingIsWritten) {
  const std::vector<float> x(513, 1), mean(513, 0);
  Guarded<double> d(513 * 513);
  const int failures = failEachAllocation([&](int) {
    const OrvStatus status =
        orvsAccCovarianceMatrix_32f64f_D2(x.data(), 1, 513, mean.data(), d.data(), 513, 513, 0);
    EXPECT_EQ(status == orvStsMemAllocErr, d.untouched());
  });
  EXPECT_EQ(failures, 1);
}

TEST(ColumnStatistics, OrdersOfChecks) {
  using P = Pointers;
  using I = int32_t;
  const auto &d2 = kStrideNullSize;
  const auto &d2l = kNullSize;
  expectOrder(d2, 2, 1, [](P p, I w, I s, I h) { return orvsMeanColumn_32f_D2(p[0], h, s, p[1], w); });
  expectOrder(d2, 2, 1, [](P p, I w, I s, I h) { return orvsMeanColumn_16s_D2(p[0], h, s, p[1], w); });
  expectOrder(d2l, 2, 1, [](P p, I w, I, I h) { return orvsMeanColumn_32f_D2L(p[0], h, p[1], w); });
  expectOrder(d2l, 2, 1, [](P p, I w, I, I h) { return orvsMeanColumn_16s_D2L(p[0], h, p[1], w); });
  expectOrder(d2, 3, 2, [](P p, I w, I s, I h) { return orvsVarColumn_32f_D2(p[0], h, s, p[1], p[2], w); });
  expectOrder(d2, 3, 2,
              [](P p, I w, I s, I h) { return orvsVarColumn_16s_D2Sfs(p[0], h, s, p[1], p[2], w, 0); });
  expectOrder(d2l, 3, 2, [](P p, I w, I, I h) { return orvsVarColumn_32f_D2L(p[0], h, p[1], p[2], w); });
  expectOrder(d2l, 3, 2,
              [](P p, I w, I, I h) { return orvsVarColumn_16s_D2LSfs(p[0], h, p[1], p[2], w, 0); });
  const auto strided = [&](auto f, auto... scale) {
    expectOrder(d2, 3, 2, [=](P p, I w, I s, I h) { return f(p[0], h, s, p[1], p[2], w, scale...); });
  };
  const auto rows = [&](auto f, auto... scale) {
    expectOrder(d2l, 3, 2, [=](P p, I w, I, I h) { return f(p[0], h, p[1], p[2], w, scale...); });
  };
  strided(orvsMeanVarColumn_32f_D2);
  strided(orvsMeanVarColumn_16s_D2Sfs, 0);
  strided(orvsMeanVarColumn_16s32s_D2Sfs, 0);
  strided(orvsMeanVarColumn_16s16s32s_D2);
  rows(orvsMeanVarColumn_32f_D2L);
  rows(orvsMeanVarColumn_16s_D2LSfs, 0);
  rows(orvsMeanVarColumn_16s32s_D2LSfs, 0);
  rows(orvsMeanVarColumn_16s16s32s_D2L);
  const auto sums = [&](auto f, auto... scale) {
    expectOrder(d2, 3, 1, [=](P p, I w, I s, I h) { return f(p[0], s, h, p[1], p[2], w, scale...); });
  };
  sums(orvsSumMeanVar_32f);
  sums(orvsSumMeanVar_32f_I);
  sums(orvsSumMeanVar_16s32f);
  sums(orvsSumMeanVar_16s32f_I);
  sums(orvsSumMeanVar_16s32s_Sfs, 0);
  sums(orvsSumMeanVar_16s32s_ISfs, 0);

  const auto weighted = [&](auto mean, auto meanL, auto var, auto varL, auto both, auto bothL) {
    const auto &order = kNullStrideSize;  // unlike the members above
    expectOrder(order, 3, 1, [=](P p, I w, I s, I h) { return mean(p[0], s, p[1], h, p[2], w); });
    expectOrder(order, 4, 1, [=](P p, I w, I s, I h) { return var(p[0], s, p[1], h, p[2], p[3], w); });
    expectOrder(order, 4, 1, [=](P p, I w, I s, I h) { return both(p[0], s, p[1], h, p[2], p[3], w); });
    expectOrder(d2l, 3, 1, [=](P p, I w, I, I h) { return meanL(p[0], p[1], h, p[2], w); });
    expectOrder(d2l, 4, 1, [=](P p, I w, I, I h) { return varL(p[0], p[1], h, p[2], p[3], w); });
    expectOrder(d2l, 4, 1, [=](P p, I w, I, I h) { return bothL(p[0], p[1], h, p[2], p[3], w); });
  };
  weighted(orvsWeightedMeanColumn_32f_D2, orvsWeightedMeanColumn_32f_D2L, orvsWeightedVarColumn_32f_D2,
           orvsWeightedVarColumn_32f_D2L, orvsWeightedMeanVarColumn_32f_D2,
           orvsWeightedMeanVarColumn_32f_D2L);
  weighted(orvsWeightedMeanColumn_64f_D2, orvsWeightedMeanColumn_64f_D2L, orvsWeightedVarColumn_64f_D2,
           orvsWeightedVarColumn_64f_D2L, orvsWeightedMeanVarColumn_64f_D2,
           orvsWeightedMeanVarColumn_64f_D2L);

  const auto &late = kNullSizeStride;
  expectOrder(late, 3, 1,
              [](P p, I w, I s, I h) { return orvsNormalizeColumn_32f_D2(p[0], s, h, p[1], p[2], w); });
  expectOrder(late, 3, 1,
              [](P p, I w, I s, I h) { return orvsNormalizeColumn_16s_D2Sfs(p[0], s, h, p[1], p[2], w, 0); });
  expectOrder(d2l, 3, 1,
              [](P p, I w, I, I h) { return orvsNormalizeColumn_32f_D2L(p[0], h, p[1], p[2], w); });
  expectOrder(d2l, 3, 1,
              [](P p, I w, I, I h) { return orvsNormalizeColumn_16s_D2LSfs(p[0], h, p[1], p[2], w, 0); });
  const auto covariance = [&](auto f, auto fL) {
    expectOrder(late, 3, 1, [=](P p, I w, I s, I h) { return f(p[0], h, s, p[1], p[2], 9, w, 1); });
    expectOrder(late, 3, 1, [=](P p, I w, I s, I h) { return f(p[0], h, 9, p[1], p[2], s, w, 1); });
    expectOrder(d2l, 3, 1, [=](P p, I w, I, I h) { return fL(p[0], h, p[1], p[2], w, 1); });
  };
  covariance(orvsAccCovarianceMatrix_32f64f_D2, orvsAccCovarianceMatrix_32f64f_D2L);
  covariance(orvsAccCovarianceMatrix_16s64f_D2, orvsAccCovarianceMatrix_16s64f_D2L);
  const auto newVar = [&](int pointers, auto f) {  // sizes are the length only
    expectOrder(d2l, pointers, 1, [=](P p, I w, I, I h) { return f(p, h < 1 ? h : w); });
  };
  newVar(3, [](P p, I n) { return orvsNewVar_32f(p[0], p[1], p[2], n, 1, 1); });
  newVar(2, [](P p, I n) { return orvsNewVar_32f_I(p[0], p[1], n, 1, 1); });
  newVar(3, [](P p, I n) { return orvsNewVar_32s_Sfs(p[0], p[1], p[2], n, 0, 1, 1); });
  newVar(2, [](P p, I n) { return orvsNewVar_32s_ISfs(p[0], p[1], n, 0, 1, 1); });
}

}  // namespace
}  // namespace orv::test
