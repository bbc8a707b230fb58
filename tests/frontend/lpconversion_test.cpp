#include <gtest/gtest.h>

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <complex>
#include <functional>

#include "orvsr/frontend.h"
#include "support/allocation.h"
#include "support/arrays.h"

using namespace orv::test;

namespace {

using Singles = std::vector<float>;
using Shorts = std::vector<std::int16_t>;

Singles stableReflections(Random &random, std::size_t order) {
  const double reach = 0.5 / std::sqrt(static_cast<double>(order)) + 0.2;
  return uniform<float>(random, order, -reach, reach);
}

// Step-up in double with the library's sign: a[i] = -k at the top.
std::vector<double> stepUp(const Singles &k) {
  std::vector<double> a;
  for (const float r : k) {
    std::vector<double> next = a;
    for (std::size_t i = 0; i < a.size(); ++i) next[i] -= a[a.size() - 1 - i] * r;
    next.push_back(-r);
    a = next;
  }
  return a;
}

template <class F>
void expectAll(std::size_t n, F &&f) {
  for (std::size_t i = 0; i < n; ++i) f(i);
}

TEST(LpConversions, GoThereAndBack) {
  Random random(51);
  for (std::size_t order = 1; order <= 40; ++order) {
    const auto n = static_cast<std::int32_t>(order);
    const Guarded<float> k(stableReflections(random, order), order % 5);
    const auto exact = stepUp(k.values());
    Guarded<float> a(order, order % 3), kBack(order), c(order, 4), aBack(order, 2);
    ASSERT_EQ(orvsReflectionToLP_32f(k.data(), a.data(), n), orvStsNoErr);
    ASSERT_EQ(orvsLPToReflection_32f(a.data(), kBack.data(), n), orvStsNoErr);
    ASSERT_EQ(orvsLPToCepstrum_32f(a.data(), c.data(), n), orvStsNoErr);
    ASSERT_EQ(orvsCepstrumToLP_32f(c.data(), aBack.data(), n), orvStsNoErr);
    std::vector<double> cepstrum(order);
    expectAll(order, [&](std::size_t i) {
      double sum = 0;
      for (std::size_t j = 0; j < i; ++j) sum += static_cast<double>(i - j) * exact[j] * cepstrum[i - j - 1];
      cepstrum[i] = -(exact[i] + sum / static_cast<double>(i + 1));
      EXPECT_NEAR(a.at(i), exact[i], 1e-5);
      EXPECT_NEAR(kBack.at(i), k.at(i), 2e-4);
      EXPECT_NEAR(c.at(i), cepstrum[i], 1e-5);
      EXPECT_NEAR(aBack.at(i), exact[i], 1e-5);
    });
    // Integers with 13 fractional bits, within what their rounding leaves.
    Shorts a16(order), c16(order), back(order), k16(order), kBack16(order);
    expectAll(order, [&](std::size_t i) { k16[i] = static_cast<std::int16_t>(std::lrint(k.at(i) * 8192)); });
    ASSERT_EQ(orvsReflectionToLP_16s_Sfs(k16.data(), a16.data(), n, -13), orvStsNoErr);
    ASSERT_EQ(orvsLPToCepstrum_16s_Sfs(a16.data(), c16.data(), n, -13), orvStsNoErr);
    ASSERT_EQ(orvsCepstrumToLP_16s_Sfs(c16.data(), back.data(), n, -13), orvStsNoErr);
    expectAll(order, [&](std::size_t i) {
      EXPECT_NEAR(a16[i], exact[i] * 8192, 8) << order;
      EXPECT_NEAR(c16[i], cepstrum[i] * 8192, 16);
      EXPECT_NEAR(back[i], a16[i], 2);
    });
    if (order <= 12) {
      ASSERT_EQ(orvsLPToReflection_16s_Sfs(a16.data(), kBack16.data(), n, -13), orvStsNoErr);
      expectAll(order, [&](std::size_t i) { EXPECT_NEAR(kBack16[i], k16[i], 12); });
    }
  }
}

TEST(LpConversions, AddInGroupsThatFollowTheDestination) {
  Random random(54);
  for (const std::size_t offset : {0U, 2U, 4U, 8U, 12U})
    for (const bool toCepstrum : {true, false}) {
      const Guarded<float> src(uniform<float>(random, 40, -1, 1), 4);
      Guarded<float> dst(40, offset);
      ASSERT_EQ((toCepstrum ? orvsLPToCepstrum_32f : orvsCepstrumToLP_32f)(src.data(), dst.data(), 40),
                orvStsNoErr);
      for (std::size_t i = 0; i < 40; ++i) {
        const std::size_t head = offset % 4 != 0 ? i : std::min(i, (16 - offset) % 16 / 4);
        const std::size_t tail = i - (i - head) % 8;
        float lanes[8] = {}, sum = 0;
        for (std::size_t m = 0; m < i; ++m) {
          const float product =
              static_cast<float>(toCepstrum ? m + 1 : i - m) * src.at(i - 1 - m) * dst.at(m);
          if (m == head && m < tail) lanes[0] = sum;
          if (m >= head && m < tail) {
            lanes[(m - head) % 8] += product;
            if (m + 1 == tail)
              sum = ((lanes[0] + lanes[4]) + (lanes[2] + lanes[6])) +
                    ((lanes[1] + lanes[5]) + (lanes[3] + lanes[7]));
          } else {
            sum += product;
          }
        }
        EXPECT_TRUE(sameBits(dst.at(i), 0 - (src.at(i) + sum / static_cast<float>(i + 1)))) << i;
      }
    }
}

TEST(LpConversions, WriteIntegersEachInItsOwnWay) {
  // c = -a: 1.5 units round away from zero and wrap on the way to the cepstrum, to even and saturated on the
  // way back.
  const std::int16_t odd = 5, low = -32768;
  std::int16_t out = 0;
  EXPECT_EQ(orvsLPToCepstrum_16s_Sfs(&odd, &out, 1, 0), orvStsNoErr);
  EXPECT_EQ(out, -5);
  EXPECT_EQ(orvsLPToCepstrum_16s_Sfs(&low, &out, 1, 0), orvStsNoErr);
  EXPECT_EQ(out, -32768);  // +32768 wraps
  EXPECT_EQ(orvsCepstrumToLP_16s_Sfs(&low, &out, 1, 0), orvStsNoErr);
  EXPECT_EQ(out, 32767);
  EXPECT_EQ(orvsReflectionToLP_16s_Sfs(&low, &out, 1, 0), orvStsNoErr);
  EXPECT_EQ(out, 32767);
  EXPECT_EQ(orvsLPToReflection_16s_Sfs(&low, &out, 1, 0), orvStsNoErr);
  EXPECT_EQ(out, -32768);
  // a1 = 1, a2 = 2: c1 = -1, c2 = -(2 + 1 * -1 / 2) = -1.5.
  const Shorts a{1, 2}, c{-1, 1};
  Shorts result(2);
  EXPECT_EQ(orvsLPToCepstrum_16s_Sfs(a.data(), result.data(), 2, 0), orvStsNoErr);
  EXPECT_EQ(result, (Shorts{-1, -2}));
  // c1 = -1, c2 = 1: a1 = 1, a2 = -(1 - 0.5) = -0.5: to even.
  EXPECT_EQ(orvsCepstrumToLP_16s_Sfs(c.data(), result.data(), 2, 0), orvStsNoErr);
  EXPECT_EQ(result, (Shorts{1, 0}));
  // A product or a true division: the last bit depends on the length.
  const Singles ones(22, 0.1F);
  Singles shorter(22), longer(22);
  EXPECT_EQ(orvsLPToCepstrum_32f(ones.data(), shorter.data(), 21), orvStsNoErr);
  EXPECT_EQ(orvsLPToCepstrum_32f(ones.data(), longer.data(), 22), orvStsNoErr);
  EXPECT_FALSE(std::equal(shorter.begin(), shorter.begin() + 21, longer.begin()));
}

TEST(LpConversions, StopsTheStepDownAtExactlyOne) {
  for (const float top : {1.0F, -1.0F}) {
    const float a[] = {0.5F, top};
    float k[] = {7, 7};
    EXPECT_EQ(orvsLPToReflection_32f(a, k, 2), orvStsLpUnstableErr);
    EXPECT_EQ(k[1], 7);
  }
  const float beyond[] = {0.5F, 2}, lower[] = {3, 0.5F, 0};
  float k[3] = {7, 7, 7};
  EXPECT_EQ(orvsLPToReflection_32f(beyond, k, 2), orvStsNoErr);
  EXPECT_EQ(k[1], -2);
  EXPECT_NEAR(k[0], -(0.5 - 1) / (1 - 4), 1e-6);
  const float inner[] = {1.5F, 0.5F, 0};  // 1.5 / (1 + 0.5) is 1, one order further down
  EXPECT_EQ(orvsLPToReflection_32f(lower, k, 3), orvStsNoErr);
  k[0] = 7;
  EXPECT_EQ(orvsLPToReflection_32f(inner, k, 3), orvStsLpUnstableErr);
  EXPECT_TRUE(k[0] == 7 && k[1] == -0.5F && k[2] == 0);
  // From length 16 on that return keeps two blocks of len + 1 singles; no other return keeps any.
  Singles a(16), reflections(16);
  a[15] = 1;
  {
    Allocations allocations;
    EXPECT_EQ(orvsLPToReflection_32f(a.data(), reflections.data(), 16), orvStsLpUnstableErr);
    EXPECT_EQ(allocations.sizes(), (std::vector<std::size_t>{68, 68}));
    allocations.expectLeak(2);
  }
  a[15] = 0.5F;
  EXPECT_EQ(failEachAllocation([&](int n) {
              EXPECT_EQ(orvsLPToReflection_32f(a.data(), reflections.data(), 16),
                        n < 2 ? orvStsMemAllocErr : orvStsNoErr);
            }),
            2);
  // The integer form reports nothing.
  const Shorts one{0, 4096};
  Shorts k16{7, 7};
  EXPECT_EQ(orvsLPToReflection_16s_Sfs(one.data(), k16.data(), 2, -12), orvStsNoErr);
}

TEST(LineSpectrum, FindsInterlacedRootsAndRebuildsThePredictor) {
  Random random(52);
  for (std::size_t order = 1; order <= 16; ++order)
    for (int round = 0; round < 20; ++round) {
      const auto n = static_cast<std::int32_t>(order);
      Singles a(order), lines(order), back(order);
      const auto exact = stepUp(stableReflections(random, order));
      // Odd orders search the predictor, so they take the filter with its signs flipped.
      expectAll(order, [&](std::size_t i) { a[i] = static_cast<float>(order % 2 ? -exact[i] : exact[i]); });
      std::int32_t found = -1;
      ASSERT_EQ(orvsLPToLSP_32f(a.data(), lines.data(), n, &found, 400, 12), orvStsNoErr) << order;
      EXPECT_EQ(found, n);
      EXPECT_TRUE(lines.front() < 1 && lines.back() > -1 && std::ranges::is_sorted(lines, std::greater<>()));
      ASSERT_EQ(orvsLSPToLP_32f(lines.data(), back.data(), n), orvStsNoErr);
      // The roots in turn are those of the sum and the difference polynomial.
      expectAll(order, [&](std::size_t i) {
        EXPECT_NEAR(back[i], a[i], 2e-3) << order;
        const double sign = i % 2 == 0 ? 1 : -1, own = order % 2 ? -1 : 1;
        const std::complex<double> z(lines[i], std::sqrt(1 - lines[i] * static_cast<double>(lines[i])));
        std::complex<double> sum = 1;
        for (std::size_t j = 0; j < order; ++j)
          sum += own * static_cast<double>(a[j] + sign * a[order - 1 - j]) *
                 std::pow(z, -static_cast<int>(j) - 1);
        sum += sign * std::pow(z, -n - 1);
        EXPECT_LT(std::abs(sum), 1e-3) << order << ' ' << i;
      });
      Shorts a16(order), lines16(order, 99), back16(order);
      expectAll(order, [&](std::size_t i) { a16[i] = static_cast<std::int16_t>(std::lrint(a[i] * 4096)); });
      ASSERT_EQ(orvsLPToLSP_16s_Sfs(a16.data(), 12, lines16.data(), n, &found, 400, 12, -14), orvStsNoErr);
      ASSERT_EQ(orvsLSPToLP_16s_Sfs(lines16.data(), 14, back16.data(), n, -12), orvStsNoErr);
      expectAll(order, [&](std::size_t i) { EXPECT_NEAR(back16[i], a16[i], 24) << order; });
    }
}

TEST(LineSpectrum, ReportsWhatACoarseGridFound) {
  // Three lines within 0.01, two of them of one polynomial: a fine grid tells them apart, a coarse one does
  // not.
  const Singles close{0.9F, 0.52F, 0.515F, 0.51F};
  Singles a(4), lines(4, 7);
  ASSERT_EQ(orvsLSPToLP_32f(close.data(), a.data(), 4), orvStsNoErr);
  std::int32_t found = -1;
  EXPECT_EQ(orvsLPToLSP_32f(a.data(), lines.data(), 4, &found, 1000, 4), orvStsNoErr);
  EXPECT_EQ(found, 4);
  lines.assign(4, 7);
  EXPECT_EQ(orvsLPToLSP_32f(a.data(), lines.data(), 4, &found, 4, 4), orvStsLspRootsErr);
  EXPECT_LT(found, 4);
  for (std::int32_t i = 0; i < 4; ++i) EXPECT_EQ(lines[static_cast<std::size_t>(i)] == 7, i >= found);
  const Shorts a16{8192, 0, 0, 0};  // -2 z^-1: nothing but real roots
  Shorts lines16(4, 7);
  EXPECT_EQ(orvsLPToLSP_16s_Sfs(a16.data(), 10, lines16.data(), 4, &found, 4, 4, -14), orvStsLspRootsErr);
  for (std::int32_t i = 0; i < 4; ++i) EXPECT_EQ(lines16[static_cast<std::size_t>(i)] == 7, i >= found);
  // Order 1: the one root is a[0].
  float line = 0, one = 0.25F;
  EXPECT_EQ(orvsLPToLSP_32f(&one, &line, 1, &found, 10, 20), orvStsNoErr);
  EXPECT_NEAR(line, 0.25, 1e-6);
  EXPECT_EQ(orvsLSPToLP_32f(&line, &one, 1), orvStsNoErr);
  EXPECT_EQ(one, line);
}

TEST(LineSpectrum, TestsOrderAndEnds) {
  float a[4];
  std::int16_t s[4];
  for (const Singles &bad : {Singles{1, 0, 0}, {0.5F, 0.6F, 0}, {0.5F, 0, -1}, {2, 3, -2}})
    EXPECT_EQ(orvsLSPToLP_32f(bad.data(), a, 3), orvStsLspOrderErr);
  EXPECT_EQ(orvsLSPToLP_32f(Singles{0.5F, 0.5F, 0}.data(), a, 3), orvStsNoErr);
  EXPECT_EQ(orvsLSPToLP_16s_Sfs(Shorts{4096, 0, -4096}.data(), 12, s, 3, -10), orvStsNoErr);
  for (const Shorts &bad : {Shorts{4097, 0, 0}, {5, 6, 0}, {5, 0, -4097}})
    EXPECT_EQ(orvsLSPToLP_16s_Sfs(bad.data(), 12, s, 3, -10), orvStsLspOrderErr);
  EXPECT_EQ(orvsLSPToLP_16s_Sfs(Shorts{5, 6, 0}.data(), 0, s, 3, 0), orvStsSizeErr);
  EXPECT_EQ(orvsLSPToLP_16s_Sfs(nullptr, 0, s, 0, 0), orvStsNullPtrErr);
  EXPECT_EQ(orvsLSPToLP_32f(a, nullptr, 0), orvStsNullPtrErr);
  EXPECT_EQ(orvsLSPToLP_32f(a, a, 0), orvStsSizeErr);
  std::int32_t found = 9;
  const float x[4] = {};
  EXPECT_EQ(orvsLPToLSP_32f(x, a, 0, nullptr, 0, 0), orvStsNullPtrErr);
  for (const auto &[order, intervals, halvings] : {std::tuple{0, 4, 1}, {1, 0, 1}, {1, 4, 0}, {4, 3, 1}}) {
    EXPECT_EQ(orvsLPToLSP_32f(x, a, order, &found, intervals, halvings), orvStsSizeErr);
    EXPECT_EQ(orvsLPToLSP_16s_Sfs(s, 0, s, order, &found, intervals, halvings, 0), orvStsSizeErr);
  }
  EXPECT_EQ(orvsLPToLSP_32f(x, a, 1, &found, INT32_MAX, 1), orvStsMemAllocErr);
  EXPECT_EQ(found, 9);
  // Bounds of the stack: 256 singles of search, order 58 of the way back.
  Singles lines(60), predictor(60);
  for (std::size_t i = 0; i < 60; ++i) lines[i] = 0.9F - 0.03F * static_cast<float>(i);
  const auto calls = [&](const std::function<void()> &f) {
    Allocations allocations;
    f();
    return allocations.calls();
  };
  // Order 2: 4 + 4 + 15 singles and 232 of the grid are 255; the next four intervals make 259.
  EXPECT_EQ(calls([&] { orvsLPToLSP_32f(x, a, 2, &found, 228, 1); }), 0);
  EXPECT_EQ(calls([&] { orvsLPToLSP_32f(x, a, 2, &found, 229, 1); }), 1);
  EXPECT_EQ(calls([&] { orvsLSPToLP_32f(lines.data(), predictor.data(), 58); }), 0);
  const Shorts zeros(60);
  Shorts result(60);
  EXPECT_EQ(calls([&] { orvsLSPToLP_16s_Sfs(zeros.data(), 14, result.data(), 58, 0); }), 0);
  EXPECT_EQ(failEachAllocation([&](int n) {
              EXPECT_EQ(orvsLSPToLP_32f(lines.data(), predictor.data(), 59),
                        n < 2 ? orvStsMemAllocErr : orvStsNoErr);
            }),
            2);
  EXPECT_EQ(failEachAllocation([&](int n) {
              EXPECT_EQ(orvsLSPToLP_16s_Sfs(zeros.data(), 14, result.data(), 59, 0),
                        n < 3 ? orvStsMemAllocErr : orvStsNoErr);
            }),
            3);
}

TEST(LpSpectrum, InvertsMagnitudesAndLeavesOutTheLastBin) {
  Random random(53);
  for (const int order : {0, 3, 6, 7, 9}) {
    const std::size_t bins = std::size_t{1} << order;
    const std::size_t len = std::min<std::size_t>(10, 2 * bins - 1);
    const Guarded<float> a(uniform<float>(random, len, -1, 1), 4);
    Guarded<float> spectrum(bins, 1);
    ASSERT_EQ(orvsLPToSpectrum_32f(a.data(), a.len(), spectrum.data(), order, 1.5F), orvStsNoErr);
    for (std::size_t k = 0; k < bins; ++k) {
      std::complex<double> x = k == 0 ? -1.5 : 0;
      for (std::size_t i = 0; i < len; ++i)
        x += static_cast<double>(a.at(i)) *
             std::polar(1.0, -M_PI * static_cast<double>(k * (i + 1)) / static_cast<double>(bins));
      EXPECT_NEAR(spectrum.at(k) * std::abs(x), 1, 1e-4);
    }
  }
  // A zero at bin 0: a number in one form, saturation in the other, and the rest goes on.
  const Singles a{2};
  const Shorts a16{2};
  Singles s(4);
  Shorts s16(4);
  EXPECT_EQ(orvsLPToSpectrum_32f(a.data(), 1, s.data(), 2, 2), orvStsDivByZeroWrn);
  EXPECT_EQ(s[0], 2139095040.0F);
  EXPECT_NEAR(s[1], 0.5, 1e-6);
  EXPECT_EQ(orvsLPToSpectrum_16s_Sfs(a16.data(), 1, s16.data(), 2, 2, -2), orvStsDivByZeroWrn);
  EXPECT_TRUE(s16[0] == 32767 && s16[1] == 2);
  EXPECT_EQ(orvsLPToSpectrum_16s_Sfs(a16.data(), 1, s16.data(), 2, 2, 120), orvStsDivByZeroWrn);
  EXPECT_EQ(s16[0], 256);  // 2^128 less one bit, times 2^-120
  EXPECT_EQ(orvsLPToSpectrum_32f(a.data(), 0, nullptr, 2, 2), orvStsNullPtrErr);
  EXPECT_EQ(orvsLPToSpectrum_32f(a.data(), 0, s.data(), 2, 2), orvStsSizeErr);
  EXPECT_EQ(orvsLPToSpectrum_32f(a.data(), 8, s.data(), 2, 2), orvStsSizeErr);
  EXPECT_EQ(orvsLPToSpectrum_32f(a.data(), 1, s.data(), -1, 2), orvStsSizeErr);
  EXPECT_EQ(orvsLPToSpectrum_32f(a.data(), 1, s.data(), 30, 2), orvStsSizeErr);
  for (const int order : {27, 32, -30, INT32_MIN})
    EXPECT_EQ(orvsLPToSpectrum_32f(a.data(), 1, s.data(), order, 2), orvStsFftOrderErr) << order;
  Singles large(128);
  EXPECT_GE(failEachAllocation([&](int) {
              const OrvStatus status = orvsLPToSpectrum_32f(a.data(), 1, large.data(), 7, 1);
              EXPECT_TRUE(status == orvStsMemAllocErr || status == orvStsNoErr);
            }),
            3);
}

TEST(Reflections, GiveAreasUpToTheirInfinities) {
  const Singles k{0, -1, 2, 0, 1, 0};
  Singles areas(6);
  EXPECT_EQ(orvsReflectionToTrueAR_32f(k.data(), areas.data(), 6), orvStsDivByZeroWrn);
  EXPECT_TRUE(areas[0] == 1 && areas[1] == INFINITY && areas[2] == -INFINITY && areas[3] == -INFINITY);
  EXPECT_TRUE(std::isnan(areas[4]) && std::signbit(areas[4]) && std::isnan(areas[5]));
  const Shorts k16{0, -8, 16, 0, 8, 0};
  Shorts areas16(6);
  EXPECT_EQ(orvsReflectionToTrueAR_16s_Sfs(k16.data(), 3, areas16.data(), 6, -4), orvStsDivByZeroWrn);
  EXPECT_EQ(areas16, (Shorts{16, 32767, -32768, -32768, 0, 0}));
  // An area of 0 counts as negative; a NaN goes the way of an inner coefficient; the sign changes back.
  const Singles odd{1, -1, NAN, -3, 0.5F};
  EXPECT_EQ(orvsReflectionToTrueAR_32f(odd.data(), areas.data(), 5), orvStsDivByZeroWrn);
  EXPECT_TRUE(areas[0] == 0 && areas[1] == -INFINITY && areas[2] == -INFINITY && areas[3] == INFINITY &&
              areas[4] == INFINITY);
  const Singles plain{0.5F, -0.25F};
  EXPECT_EQ(orvsReflectionToTrueAR_32f(plain.data(), areas.data(), 2), orvStsNoErr);
  EXPECT_EQ(areas[0], 0.5F / 1.5F);
  EXPECT_EQ(areas[1], (areas[0] * 1.25F) / 0.75F);

  EXPECT_EQ(orvsReflectionToAR_32f(odd.data(), areas.data(), 5), orvStsDivByZeroWrn);
  EXPECT_TRUE(areas[0] == 0 && areas[1] == INFINITY && std::isnan(areas[2]) && areas[3] == -2 &&
              areas[4] == 0.5F / 1.5F);
  EXPECT_EQ(orvsReflectionToAR_16s_Sfs(k16.data(), 3, areas16.data(), 6, -4), orvStsDivByZeroWrn);
  EXPECT_EQ(areas16, (Shorts{16, 32767, -5, 16, 0, 16}));
  EXPECT_EQ(orvsReflectionToAR_16s_Sfs(Shorts{-9, -7}.data(), 3, areas16.data(), 2, -12), orvStsNoErr);
  EXPECT_TRUE(areas16[0] == -32768 && areas16[1] == 32767);
}

TEST(Reflections, GiveClippedLogAreas) {
  const Singles k{0.9F, 1, -0.9F, -1, 0.3F, 0};
  Singles logs(6);
  ASSERT_EQ(orvsReflectionToLAR_32f(k.data(), logs.data(), 6, 0.9F), orvStsNoErr);
  const auto logOf = [](float x) { return static_cast<float>(std::log(static_cast<double>(x))); };
  const float low = logOf((1 - 0.9F) / (1 + 0.9F)), high = logOf((1 + 0.9F) / (1 - 0.9F));
  EXPECT_EQ(logs, (Singles{low, low, high, high, logOf((1 - 0.3F) / (1 + 0.3F)), 0}));
  const Shorts k16{8, -8, 2, -2};
  Shorts out(4);
  EXPECT_EQ(orvsReflectionToLAR_16s_Sfs(k16.data(), 3, out.data(), 4, -4, 0.9F), orvStsNoErr);
  EXPECT_EQ(out, (Shorts{-47, 47, -8, 8}));
  EXPECT_EQ(orvsReflectionToLAR_16s_Sfs(k16.data(), 3, out.data(), 4, -16, 0.9F), orvStsNoErr);
  EXPECT_EQ(out, (Shorts{-32768, 32767, -32768, 32767}));
  for (const float t : {0.0F, 1.0F, -0.5F, 2.0F}) {
    EXPECT_EQ(orvsReflectionToLAR_32f(k.data(), logs.data(), 6, t), orvStsRangeErr);
    EXPECT_EQ(orvsReflectionToLAR_16s_Sfs(k16.data(), 3, out.data(), 4, -4, t), orvStsRangeErr);
    EXPECT_EQ(orvsReflectionToLAR_32f(k.data(), logs.data(), 0, t), orvStsSizeErr);
  }
}

TEST(Reflections, GiveTiltsByTwoDivisors) {
  const Singles a{1, 3, -3, 0, INFINITY}, b{-1, 1, 1, -0.0F, -INFINITY};
  Singles t(5);
  EXPECT_EQ(orvsReflectionToTilt_32f(a.data(), b.data(), t.data(), 5), orvStsDivByZeroWrn);
  EXPECT_TRUE(std::isnan(t[0]) && std::signbit(t[0]) && t[1] == 0.5F && t[2] == -1 && std::isnan(t[3]));
  EXPECT_EQ(orvsReflectionToAbsTilt_32f(a.data(), b.data(), t.data(), 3), orvStsNoErr);
  EXPECT_TRUE(t[0] == 0 && t[1] == 0.5F && t[2] == 0.5F);
  EXPECT_EQ(orvsReflectionToAbsTilt_32f(a.data(), b.data(), t.data(), 4), orvStsDivByZeroWrn);
  EXPECT_TRUE(std::isnan(t[3]) && std::signbit(t[3]));
  EXPECT_EQ(orvsReflectionToTilt_32f(a.data() + 4, b.data() + 4, t.data(), 1), orvStsDivByZeroWrn);
  const Shorts a16{1, 3, -3, 0, -32768, 32767}, b16{-1, 1, 1, 0, -32768, -32766};
  Shorts t16(6, 9);
  EXPECT_EQ(orvsReflectionToTilt_16s_Sfs(a16.data(), b16.data(), t16.data(), 6, -3), orvStsDivByZeroWrn);
  EXPECT_EQ(t16, (Shorts{0, 4, -8, 0, 0, 8}));
  EXPECT_EQ(orvsReflectionToAbsTilt_16s_Sfs(a16.data(), b16.data(), t16.data(), 6, -3), orvStsDivByZeroWrn);
  EXPECT_EQ(t16, (Shorts{0, 4, 4, 0, 0, 0}));
  EXPECT_EQ(orvsReflectionToTilt_16s_Sfs(a16.data() + 1, b16.data() + 1, t16.data(), 2, -20), orvStsNoErr);
  EXPECT_TRUE(t16[0] == 32767 && t16[1] == -32768);
}

TEST(LpConversions, CheckPointersThenLengths) {
  float f = 0.5F;
  std::int16_t s = 1;
  const std::function<OrvStatus(bool, std::int32_t)> calls[] = {
      [&](bool ok, std::int32_t n) { return orvsLPToCepstrum_32f(ok ? &f : nullptr, &f, n); },
      [&](bool ok, std::int32_t n) { return orvsCepstrumToLP_32f(&f, ok ? &f : nullptr, n); },
      [&](bool ok, std::int32_t n) { return orvsLPToReflection_32f(ok ? &f : nullptr, &f, n); },
      [&](bool ok, std::int32_t n) { return orvsReflectionToLP_32f(&f, ok ? &f : nullptr, n); },
      [&](bool ok, std::int32_t n) { return orvsLPToCepstrum_16s_Sfs(ok ? &s : nullptr, &s, n, 0); },
      [&](bool ok, std::int32_t n) { return orvsCepstrumToLP_16s_Sfs(&s, ok ? &s : nullptr, n, 0); },
      [&](bool ok, std::int32_t n) { return orvsLPToReflection_16s_Sfs(ok ? &s : nullptr, &s, n, 0); },
      [&](bool ok, std::int32_t n) { return orvsReflectionToLP_16s_Sfs(&s, ok ? &s : nullptr, n, 0); },
      [&](bool ok, std::int32_t n) { return orvsReflectionToAR_32f(ok ? &f : nullptr, &f, n); },
      [&](bool ok, std::int32_t n) { return orvsReflectionToTrueAR_32f(&f, ok ? &f : nullptr, n); },
      [&](bool ok, std::int32_t n) { return orvsReflectionToAR_16s_Sfs(ok ? &s : nullptr, 0, &s, n, 0); },
      [&](bool ok, std::int32_t n) { return orvsReflectionToTrueAR_16s_Sfs(&s, 0, ok ? &s : nullptr, n, 0); },
      [&](bool ok, std::int32_t n) { return orvsReflectionToLAR_32f(ok ? &f : nullptr, &f, n, 2); },
      [&](bool ok, std::int32_t n) { return orvsReflectionToLAR_16s_Sfs(&s, 0, ok ? &s : nullptr, n, 0, 2); },
      [&](bool ok, std::int32_t n) { return orvsReflectionToTilt_32f(&f, ok ? &f : nullptr, &f, n); },
      [&](bool ok, std::int32_t n) { return orvsReflectionToAbsTilt_32f(ok ? &f : nullptr, &f, &f, n); },
      [&](bool ok, std::int32_t n) { return orvsReflectionToTilt_16s_Sfs(&s, &s, ok ? &s : nullptr, n, 0); },
      [&](bool ok, std::int32_t n) {
        return orvsReflectionToAbsTilt_16s_Sfs(&s, ok ? &s : nullptr, &s, n, 0);
      },
  };
  for (std::size_t i = 0; i < std::size(calls); ++i) {
    EXPECT_EQ(calls[i](false, 0), orvStsNullPtrErr) << i;
    EXPECT_EQ(calls[i](true, 0), orvStsSizeErr) << i;
  }
  Shorts x(22), y(22);
  for (const auto convert : {orvsLPToCepstrum_16s_Sfs, orvsCepstrumToLP_16s_Sfs}) {
    Allocations allocations;
    EXPECT_EQ(convert(x.data(), y.data(), 21, 0), orvStsNoErr);
    EXPECT_EQ(convert(x.data(), y.data(), 22, 0), orvStsNoErr);
    EXPECT_EQ(allocations.sizes(), std::vector<std::size_t>{26 * 4});
  }
}

}  // namespace
