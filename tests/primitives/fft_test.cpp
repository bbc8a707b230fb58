#include "primitives/fft/fft.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <complex>
#include <limits>
#include <numbers>
#include <thread>

#include "primitives/convert.h"
#include "primitives/fft/sine.h"
#include "primitives/fft/state.h"
#include "support/allocation.h"
#include "support/arrays.h"

namespace orv {
namespace {

using namespace orv::test;
using Bytes = std::uint8_t;
using Signal = std::vector<float>;
using Spectrum = std::vector<std::complex<double>>;
using Forward = OrvStatus (*)(const float *, float *, const OrvRealFftState32f *, std::uint8_t *);

constexpr std::array kFlags = {1, 2, 4, 8};
enum Layout { perm, pack, ccs };
constexpr std::array<Forward, 3> kForward = {orvsFFTFwd_RToPerm_32f, orvsFFTFwd_RToPack_32f,
                                             orvsFFTFwd_RToCCS_32f};

std::size_t lengthOf(int order) { return std::size_t{1} << order; }

// The definition by even and odd halves, in double precision.
Spectrum transformed(const Signal &signal) {
  const std::size_t len = signal.size();
  Spectrum roots(len / 2);
  for (std::size_t k = 0; k < len / 2; ++k)
    roots[k] = std::polar(1.0, -2 * std::numbers::pi * static_cast<double>(k) / static_cast<double>(len));
  const auto halves = [&](const auto &self, const float *x, std::complex<double> *bins, std::size_t stride) {
    const std::size_t half = len / stride / 2;
    if (half == 0) {
      *bins = *x;
      return;
    }
    self(self, x, bins, 2 * stride);
    self(self, x + stride, bins + half, 2 * stride);
    for (std::size_t k = 0; k < half; ++k) {
      const auto even = bins[k], odd = bins[k + half];
      const auto root = roots[k * stride];
      const std::complex<double> turned = {odd.real() * root.real() - odd.imag() * root.imag(),
                                           odd.real() * root.imag() + odd.imag() * root.real()};
      bins[k] = even + turned;
      bins[k + half] = even - turned;
    }
  };
  Spectrum bins(len);
  halves(halves, signal.data(), bins.data(), 1);
  return bins;
}

std::vector<double> laidOut(const Spectrum &bins, Layout layout) {
  const std::size_t len = bins.size();
  if (len == 1) return layout == ccs ? std::vector{bins[0].real(), 0.0} : std::vector{bins[0].real()};
  std::vector<double> values = {bins[0].real()};
  if (layout == ccs) values.push_back(0);
  if (layout == perm) values.push_back(bins[len / 2].real());
  for (std::size_t k = 1; k < len / 2; ++k) values.insert(values.end(), {bins[k].real(), bins[k].imag()});
  if (layout != perm) values.push_back(bins[len / 2].real());
  if (layout == ccs) values.push_back(0);
  return values;
}

double scaleOf(int flag, bool forward, std::size_t len) {
  const auto n = static_cast<double>(len);
  return flag == 4 ? 1 / std::sqrt(n) : flag == (forward ? 1 : 2) ? 1 / n : 1;
}

// Root mean square of the error over that of the values.
template <class Values>
double relativeError(const Guarded<float> &actual, const Values &expected, double scale) {
  double error = 0, power = 0;
  for (std::size_t i = 0; i < expected.size(); ++i) {
    error += std::pow(actual.at(i) - expected[i] * scale, 2);
    power += std::pow(expected[i] * scale, 2);
  }
  return std::sqrt(error / power);
}

double bound(int order) { return 6e-8 * std::sqrt(order + 1.0); }

// An object in memory of exactly the reported sizes, each block at its own offset from a boundary.
template <class State>
struct Built {
  static constexpr bool integer = std::is_same_v<State, OrvRealFftState16s32s>;
  static constexpr auto kGetSize = integer ? orvsFFTGetSize_R_16s32s : orvsFFTGetSize_R_32f;

  explicit Built(int order, int flag = 8, std::size_t offset = 0) {
    std::int32_t specSize = 0, initSize = 0, workSize = 0;
    EXPECT_EQ(kGetSize(order, flag, 0, &specSize, &initSize, &workSize), orvStsNoErr);
    memory = std::make_unique<Guarded<Bytes>>(specSize, offset);
    work = std::make_unique<Guarded<Bytes>>(workSize, 64 - offset);
    const Guarded<Bytes> init(static_cast<std::size_t>(initSize), (offset + 7) % 64);
    auto *initBuffer = initSize > 0 ? const_cast<Bytes *>(init.data()) : nullptr;
    if constexpr (integer)
      EXPECT_EQ(orvsFFTInit_R_16s32s(&spec, order, flag, 5, memory->data(), initBuffer), orvStsNoErr);
    else
      EXPECT_EQ(orvsFFTInit_R_32f(&spec, order, flag, 5, memory->data(), initBuffer), orvStsNoErr);
  }
  Bytes *workData() { return work->len() > 0 ? work->data() : nullptr; }

  State *spec = nullptr;
  std::unique_ptr<Guarded<Bytes>> memory, work;
};
using BuiltReal = Built<OrvRealFftState32f>;
using BuiltInteger = Built<OrvRealFftState16s32s>;

class FftOrder : public testing::TestWithParam<int> {};
INSTANTIATE_TEST_SUITE_P(Short, FftOrder, testing::Range(0, 17));
INSTANTIATE_TEST_SUITE_P(Long, FftOrder, testing::Values(17, 18, 20, 23));
class ShortFftOrder : public FftOrder {};
INSTANTIATE_TEST_SUITE_P(Each, ShortFftOrder, testing::Range(0, 16));

// Every flag and layout, in place and not, with the caller's and its own working memory, from odd addresses.
TEST_P(FftOrder, FollowsTheDefinition) {
  const int order = GetParam();
  const std::size_t len = lengthOf(order);
  Random random(static_cast<unsigned>(order));
  const Signal signal = uniform<float>(random, len, -1, 1);
  const Spectrum bins = transformed(signal);
  int turn = 0;
  for (const int flag : kFlags) {
    if (order > 16 && flag > (order > 20 ? 1 : 2)) break;
    BuiltReal fft(order, flag, static_cast<std::size_t>(flag));
    for (const Layout layout : {perm, pack, ccs}) {
      if (order > 16 && layout != turn % 3) continue;
      const std::vector<double> expected = laidOut(bins, layout);
      const double scale = scaleOf(flag, true, len);
      const Guarded<float> source(signal, static_cast<std::size_t>(turn % 5));
      Guarded<float> apart(expected.size(), static_cast<std::size_t>(turn * 3 % 16));
      Guarded<float> inPlace(expected.size(), static_cast<std::size_t>(turn % 4));
      std::memcpy(static_cast<void *>(inPlace.data()), signal.data(), len * sizeof(float));
      ASSERT_EQ(kForward[layout](source.data(), apart.data(), fft.spec, fft.workData()), orvStsNoErr);
      ASSERT_EQ(kForward[layout](inPlace.data(), inPlace.data(), fft.spec, nullptr), orvStsNoErr);
      EXPECT_LE(relativeError(apart, expected, scale), bound(order))
          << "flag " << flag << " layout " << layout;
      EXPECT_LE(relativeError(inPlace, expected, scale), bound(order))
          << "flag " << flag << " layout " << layout;
      EXPECT_EQ(apart.values(), inPlace.values());
      for (std::size_t i = 0; i < len; ++i) ASSERT_EQ(source.at(i), signal[i]);
      if (layout == ccs) {
        EXPECT_EQ(apart.at(1), 0.0F);
        EXPECT_EQ(apart.at(expected.size() - 1), 0.0F);
      }
      ++turn;
    }
    Signal packed;
    for (const double v : laidOut(bins, pack))
      packed.push_back(static_cast<float>(v / static_cast<double>(len)));
    const Guarded<float> source(packed, static_cast<std::size_t>(turn % 5));
    Guarded<float> apart(len, 3), inPlace(packed, 1);
    ASSERT_EQ(orvsFFTInv_PackToR_32f(source.data(), apart.data(), fft.spec, nullptr), orvStsNoErr);
    ASSERT_EQ(orvsFFTInv_PackToR_32f(inPlace.data(), inPlace.data(), fft.spec, fft.workData()), orvStsNoErr);
    EXPECT_EQ(apart.values(), inPlace.values());
    const double scale = scaleOf(flag, false, len);
    EXPECT_LE(relativeError(apart, signal, scale), bound(order)) << "inverse, flag " << flag;
    EXPECT_LE(relativeError(inPlace, signal, scale), bound(order)) << "inverse in place, flag " << flag;
  }
}

// A single line at every bin that can go wrong by itself: the ends, the middle and their neighbours.
TEST_P(ShortFftOrder, KeepsALineInItsBin) {
  const int order = GetParam();
  const std::size_t len = lengthOf(order);
  BuiltReal fft(order);
  for (std::size_t line = 0; line <= len / 2; line += len <= 256 || line % (len / 4) < 9 ? 1 : len / 64 - 1) {
    Signal signal(len), spectrum(len + 2), packed(len), back(len);
    for (std::size_t n = 0; n < len; ++n)
      signal[n] = static_cast<float>(
          std::cos(2 * std::numbers::pi * static_cast<double>(n * line % len) / static_cast<double>(len) -
                   0.5 * (line % (len / 2 + (len == 1)) != 0)));
    orvsFFTFwd_RToCCS_32f(signal.data(), spectrum.data(), fft.spec, fft.workData());
    for (std::size_t k = 0; k <= len / 2; ++k) {
      const double size = std::hypot(spectrum[2 * k], spectrum[2 * k + 1]) / static_cast<double>(len);
      ASSERT_NEAR(size,
                  k != line                         ? 0
                  : k % (len / 2 + (len == 1)) == 0 ? 1
                                                    : 0.5,
                  1e-6)
          << line << " in " << k;
    }
  }
}

TEST_P(ShortFftOrder, LetsNaNsThrough) {
  const int order = GetParam();
  const std::size_t len = lengthOf(order);
  BuiltReal fft(order, 1);
  for (const std::size_t place : {std::size_t{0}, len / 3, len - 1}) {
    Signal signal(len, 1.0F), spectrum(len + 2);
    signal[place] = std::numeric_limits<float>::quiet_NaN();
    orvsFFTFwd_RToCCS_32f(signal.data(), spectrum.data(), fft.spec, fft.workData());
    for (std::size_t k = 0; k <= len / 2; ++k)
      ASSERT_TRUE(std::isnan(spectrum[2 * k]) || std::isnan(spectrum[2 * k + 1])) << place << " in " << k;
    const Signal packed(len, signal[place]);
    orvsFFTInv_PackToR_32f(packed.data(), signal.data(), fft.spec, fft.workData());
    for (const float v : signal) ASSERT_TRUE(std::isnan(v));
  }
}

// A table from few angles is the one that asks for the sine of each.
TEST(Fft, TakesTheNearestSines) {
  for (int order = 11; order <= 18; ++order) {
    const std::size_t quarter = lengthOf(order) / 4;
    std::vector<float> sines(quarter + 1);
    fft::buildSine(sines.data(), order);
    const double step = 2 * std::numbers::pi / static_cast<double>(lengthOf(order));
    for (std::size_t i = 0; i <= quarter; ++i)
      ASSERT_EQ(sines[i],
                static_cast<float>(i <= quarter / 2 ? std::sin(static_cast<double>(i) * step)
                                                    : std::cos(static_cast<double>(quarter - i) * step)))
          << i << " of order " << order;
  }
}

TEST(Fft, ReportsItsSizes) {
  struct Sizes {
    std::int32_t order;
    std::array<std::int32_t, 3> real, integer;
  };
  for (const Sizes &sizes : {Sizes{0, {168, 0, 0}, {232, 0, 44}},
                             {5, {168, 0, 0}, {232, 0, 168}},
                             {6, {448, 0, 0}, {512, 0, 296}},
                             {7, {1344, 0, 0}, {1408, 0, 552}},
                             {10, {8960, 0, 0}, {9024, 0, 4136}},
                             {11, {17664, 2112, 0}, {17728, 2144, 8232}},
                             {12, {30976, 4160, 0}, {31040, 4192, 16424}},
                             {13, {53504, 8256, 0}, {53568, 8288, 32808}},
                             {14, {141856, 17536, 1056}, {141920, 17568, 66632}},
                             {15, {281376, 34976, 2080}, {281440, 35008, 133192}},
                             {20, {8925472, 1082464, 32800}, {8925536, 1082496, 4227144}},
                             {22, {35672352, 4228192, 32800}, {35672416, 4228224, 16810056}},
                             {24, {142873920, 16790016, 8224}, {142873984, 16790048, 67117128}},
                             {27, {1141387584, 134260096, 32800}, {1141387648, 134260128, 536903752}}}) {
    std::array<std::int32_t, 3> real{}, integer{};
    EXPECT_EQ(orvsFFTGetSize_R_32f(sizes.order, 8, 0, &real[0], &real[1], &real[2]), orvStsNoErr);
    EXPECT_EQ(orvsFFTGetSize_R_16s32s(sizes.order, 1, 9, &integer[0], &integer[1], &integer[2]), orvStsNoErr);
    EXPECT_EQ(real, sizes.real) << sizes.order;
    EXPECT_EQ(integer, sizes.integer) << sizes.order;
  }
  for (const int order : {0, 6, 13, 14, 17}) {
    BuiltReal fft(order);
    std::int32_t size = -1;
    EXPECT_EQ(orvsFFTGetBufSize_R_32f(fft.spec, &size), orvStsNoErr);
    EXPECT_EQ(size, fft.work->len());
    EXPECT_EQ(BuiltInteger(order).spec->workBufSize, size + (4 << order) + 8);
  }
}

// The object and its buffers end where the query says, wherever they start, and the start changes no bit.
TEST(Fft, FitsItsSizesAtEveryStart) {
  Random random(3);
  for (const int order : {2, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15}) {
    const std::size_t len = lengthOf(order);
    const auto samples = anyIntegers<std::int16_t>(random, len);
    const Signal signal = uniform<float>(random, len, -1, 1);
    Signal first;
    std::vector<std::int32_t> firstWhole;
    for (std::size_t offset = 0; offset<64; offset += order> 12 ? 7 : 1) {
      BuiltReal fft(order, 4, offset);
      EXPECT_EQ(reinterpret_cast<std::uintptr_t>(fft.spec) % 32, 0U);
      Signal result(len);
      ASSERT_EQ(orvsFFTFwd_RToPerm_32f(signal.data(), result.data(), fft.spec, fft.workData()), orvStsNoErr);
      BuiltInteger whole(order, 4, offset);
      EXPECT_EQ(reinterpret_cast<std::uintptr_t>(whole.spec) % 32, 0U);
      EXPECT_EQ(reinterpret_cast<std::uintptr_t>(whole.spec->inner) % 32, 0U);
      std::vector<std::int32_t> bins(len + 2);
      ASSERT_EQ(orvsFFTFwd_RToCCS_16s32s_Sfs(samples.data(), bins.data(), whole.spec, 0, whole.workData()),
                orvStsNoErr);
      if (offset == 0) first = result, firstWhole = bins;
      EXPECT_EQ(result, first);
      EXPECT_EQ(bins, firstWhole);
    }
    // The same from the heap, whatever alignment it has.
    for (const std::size_t alignment : {16U, 32U, 64U}) {
      Allocations allocations;
      allocations.alignTo(alignment);
      OrvRealFftState32f *fft = nullptr;
      OrvRealFftState16s32s *whole = nullptr;
      ASSERT_EQ(orvsFFTInitAlloc_R_32f(&fft, order, 4, 0), orvStsNoErr);
      ASSERT_EQ(orvsFFTInitAlloc_R_16s32s(&whole, order, 4, 0), orvStsNoErr);
      const std::vector<std::size_t> asked = allocations.sizes();
      EXPECT_EQ(asked.back() == asked.front() + 32 || order > 10, true);
      Signal result(len);
      std::vector<std::int32_t> bins(len + 2);
      ASSERT_EQ(orvsFFTFwd_RToPerm_32f(signal.data(), result.data(), fft, nullptr), orvStsNoErr);
      ASSERT_EQ(orvsFFTFwd_RToCCS_16s32s_Sfs(samples.data(), bins.data(), whole, 0, nullptr), orvStsNoErr);
      EXPECT_EQ(result, first);
      EXPECT_EQ(bins, firstWhole);
      EXPECT_EQ(orvsFFTFree_R_32f(fft), orvStsNoErr);
      EXPECT_EQ(orvsFFTFree_R_16s32s(whole), orvStsNoErr);
    }
  }
}

TEST(Fft, ChecksSizesAndBirthsInOrder) {
  std::int32_t a = 0, b = 0, c = 0;
  for (const auto getSize : {orvsFFTGetSize_R_32f, orvsFFTGetSize_R_16s32s}) {
    for (const int order : {-1, 31}) EXPECT_EQ(getSize(order, 0, 0, nullptr, &b, &c), orvStsFftOrderErr);
    for (const int order : {5, 28}) {
      EXPECT_EQ(getSize(order, 0, 0, nullptr, &b, &c), orvStsNullPtrErr);
      EXPECT_EQ(getSize(order, 0, 0, &a, nullptr, &c), orvStsNullPtrErr);
      EXPECT_EQ(getSize(order, 0, 0, &a, &b, nullptr), orvStsNullPtrErr);
      for (const int flag : {0, 3, 16, -1}) EXPECT_EQ(getSize(order, flag, 0, &a, &b, &c), orvStsFftFlagErr);
    }
    for (const int order : {28, 30}) EXPECT_EQ(getSize(order, 1, 0, &a, &b, &c), orvStsFftOrderErr);
    EXPECT_EQ(getSize(27, 1, 0, &a, &b, &c), orvStsNoErr);
  }

  Guarded<Bytes> memory(20000);
  OrvRealFftState32f *fft = nullptr;
  EXPECT_EQ(orvsFFTInit_R_32f(nullptr, 31, 0, 0, nullptr, nullptr), orvStsNullPtrErr);
  for (const int order : {-1, 28, 31})
    EXPECT_EQ(orvsFFTInit_R_32f(&fft, order, 0, 0, nullptr, nullptr), orvStsFftOrderErr);
  EXPECT_EQ(orvsFFTInit_R_32f(&fft, 6, 0, 0, nullptr, nullptr), orvStsNullPtrErr);
  EXPECT_TRUE(memory.untouched());
  const auto *real = reinterpret_cast<const OrvRealFftState32f *>(memory.data());
  EXPECT_EQ(orvsFFTInit_R_32f(&fft, 11, 3, 0, memory.data(), nullptr), orvStsFftFlagErr);
  EXPECT_EQ(real->tag, 0);
  EXPECT_EQ(orvsFFTInit_R_32f(&fft, 11, 1, 7, memory.data(), nullptr), orvStsNullPtrErr);
  EXPECT_EQ(real->tag, 6);  // meant: callers rely on nothing here
  EXPECT_EQ(real->hint, 7);
  EXPECT_EQ(fft, nullptr);

  OrvRealFftState16s32s *whole = nullptr;
  EXPECT_EQ(orvsFFTInit_R_16s32s(nullptr, 31, 0, 0, nullptr, nullptr), orvStsNullPtrErr);
  EXPECT_EQ(orvsFFTInit_R_16s32s(&whole, 31, 0, 0, nullptr, nullptr), orvStsFftOrderErr);
  EXPECT_EQ(orvsFFTInit_R_16s32s(&whole, 28, 0, 0, nullptr, nullptr), orvStsNullPtrErr);
  const auto *header = reinterpret_cast<const OrvRealFftState16s32s *>(memory.data());
  EXPECT_EQ(orvsFFTInit_R_16s32s(&whole, 28, 1, 0, memory.data(), nullptr), orvStsFftOrderErr);
  EXPECT_EQ(orvsFFTInit_R_16s32s(&whole, 6, 5, 0, memory.data(), nullptr), orvStsFftFlagErr);
  EXPECT_EQ(header->tag, 0);
  EXPECT_EQ(whole, nullptr);

  const Allocations allocations;
  EXPECT_EQ(orvsFFTInitAlloc_R_32f(nullptr, 31, 0, 0), orvStsNullPtrErr);
  EXPECT_EQ(orvsFFTInitAlloc_R_32f(&fft, 31, 0, 0), orvStsFftOrderErr);
  EXPECT_EQ(orvsFFTInitAlloc_R_32f(&fft, 28, 0, 0), orvStsFftFlagErr);
  EXPECT_EQ(orvsFFTInitAlloc_R_16s32s(nullptr, 31, 0, 0), orvStsNullPtrErr);
  EXPECT_EQ(orvsFFTInitAlloc_R_16s32s(&whole, 31, 0, 0), orvStsFftOrderErr);
  EXPECT_EQ(orvsFFTInitAlloc_R_16s32s(&whole, 28, 0, 0), orvStsFftFlagErr);
  EXPECT_EQ(allocations.calls(), 0);
}

TEST(Fft, RefusesWhatIsNoLiveObjectOfItsKind) {
  BuiltReal real(6);
  BuiltInteger integer(6);
  auto *asReal = reinterpret_cast<OrvRealFftState32f *>(integer.spec);
  auto *asInteger = reinterpret_cast<OrvRealFftState16s32s *>(real.spec);
  Signal data(66);
  std::vector<std::int16_t> samples(64);
  std::vector<std::int32_t> bins(66);
  std::int32_t size = 0;
  for (const Forward transform : {kForward[0], kForward[1], kForward[2], &orvsFFTInv_PackToR_32f}) {
    EXPECT_EQ(transform(nullptr, nullptr, nullptr, nullptr), orvStsNullPtrErr);
    EXPECT_EQ(transform(nullptr, nullptr, asReal, nullptr), orvStsContextMatchErr);
    EXPECT_EQ(transform(nullptr, data.data(), real.spec, nullptr), orvStsNullPtrErr);
    EXPECT_EQ(transform(data.data(), nullptr, real.spec, nullptr), orvStsNullPtrErr);
  }
  EXPECT_EQ(orvsFFTFwd_RToCCS_16s32s_Sfs(nullptr, nullptr, nullptr, 0, nullptr), orvStsNullPtrErr);
  EXPECT_EQ(orvsFFTFwd_RToCCS_16s32s_Sfs(nullptr, nullptr, asInteger, 0, nullptr), orvStsContextMatchErr);
  EXPECT_EQ(orvsFFTFwd_RToCCS_16s32s_Sfs(nullptr, bins.data(), integer.spec, 0, nullptr), orvStsNullPtrErr);
  EXPECT_EQ(orvsFFTFwd_RToCCS_16s32s_Sfs(samples.data(), nullptr, integer.spec, 0, nullptr),
            orvStsNullPtrErr);
  EXPECT_EQ(orvsFFTGetBufSize_R_32f(nullptr, &size), orvStsNullPtrErr);
  EXPECT_EQ(orvsFFTGetBufSize_R_32f(asReal, nullptr), orvStsNullPtrErr);
  EXPECT_EQ(orvsFFTGetBufSize_R_32f(asReal, &size), orvStsContextMatchErr);
  EXPECT_EQ(orvsFFTFree_R_32f(nullptr), orvStsNullPtrErr);
  EXPECT_EQ(orvsFFTFree_R_16s32s(nullptr), orvStsNullPtrErr);
  EXPECT_EQ(orvsFFTFree_R_32f(asReal), orvStsContextMatchErr);
  EXPECT_EQ(orvsFFTFree_R_16s32s(asInteger), orvStsContextMatchErr);
  // The end of an object in the caller's memory only marks it.
  EXPECT_EQ(orvsFFTFree_R_32f(real.spec), orvStsNoErr);
  EXPECT_EQ(orvsFFTFree_R_32f(real.spec), orvStsContextMatchErr);
  EXPECT_EQ(kForward[0](data.data(), data.data(), real.spec, nullptr), orvStsContextMatchErr);
  EXPECT_EQ(orvsFFTFree_R_16s32s(integer.spec), orvStsNoErr);
  EXPECT_EQ(orvsFFTFree_R_16s32s(integer.spec), orvStsContextMatchErr);
}

TEST(Fft, SurvivesEveryFailingAllocation) {
  OrvRealFftState32f *fft = nullptr;
  OrvRealFftState16s32s *whole = nullptr;
  const auto births = [&](int order) {
    return failEachAllocation([&](int) {
      if (orvsFFTInitAlloc_R_32f(&fft, order, 8, 0) != orvStsNoErr) {
        EXPECT_EQ(orvsFFTInitAlloc_R_16s32s(&whole, order, 8, 0), orvStsNoErr);
        orvsFFTFree_R_16s32s(whole);
        return;
      }
      if (const OrvStatus status = orvsFFTInitAlloc_R_16s32s(&whole, order, 8, 0); status == orvStsNoErr)
        orvsFFTFree_R_16s32s(whole);
      else
        EXPECT_EQ(status, orvStsMemAllocErr);
      orvsFFTFree_R_32f(fft);
    });
  };
  EXPECT_EQ(births(10), 2);
  EXPECT_EQ(births(11), 4);

  BuiltReal real(14);
  BuiltInteger integer(14);
  const Signal signal(lengthOf(14), 1.0F);
  const std::vector<std::int16_t> samples(lengthOf(14), 1);
  Guarded<float> dst(lengthOf(14) + 2);
  Guarded<std::int32_t> bins(lengthOf(14) + 2);
  Allocations allocations;
  for (const Forward transform : {kForward[0], kForward[1], kForward[2], &orvsFFTInv_PackToR_32f}) {
    allocations.failAt(0);
    EXPECT_EQ(transform(signal.data(), dst.data(), real.spec, nullptr), orvStsMemAllocErr);
  }
  allocations.failAt(0);
  EXPECT_EQ(orvsFFTFwd_RToCCS_16s32s_Sfs(samples.data(), bins.data(), integer.spec, 0, nullptr),
            orvStsMemAllocErr);
  EXPECT_TRUE(dst.untouched());
  EXPECT_TRUE(bins.untouched());
  EXPECT_EQ(allocations.sizes(), (std::vector<std::size_t>{1024, 1024, 1024, 1024, 1024 + 32 + 65536 + 8}));
  // With the caller's memory, or where none is needed, nothing is allocated.
  allocations.failAt(0);
  EXPECT_EQ(kForward[0](signal.data(), dst.data(), real.spec, real.workData()), orvStsNoErr);
  BuiltReal shorter(13);
  EXPECT_EQ(kForward[0](signal.data(), dst.data(), shorter.spec, nullptr), orvStsNoErr);
  EXPECT_EQ(orvsFFTFwd_RToCCS_16s32s_Sfs(samples.data(), bins.data(), integer.spec, 0, integer.workData()),
            orvStsNoErr);
  EXPECT_EQ(allocations.calls(), 5);
}

// The integer form is the floating one, rounded to even and saturated, in every order.
TEST_P(ShortFftOrder, TakesIntegers) {
  const int order = GetParam();
  const std::size_t len = lengthOf(order);
  Random random(1);
  const auto samples = anyIntegers<std::int16_t>(random, len);
  const Signal signal(samples.begin(), samples.end());
  BuiltReal real(order);
  BuiltInteger integer(order);
  Signal values(len);
  kForward[perm](signal.data(), values.data(), real.spec, nullptr);
  for (const std::int32_t factor : {0, 3, -2, -16}) {
    std::vector<std::int32_t> expected(len + (len > 1 ? 2 : 1));
    orvsConvert_32f32s_Sfs(values.data(), expected.data(), static_cast<std::int32_t>(len), 1, factor);
    if (len > 1) std::swap(expected[1], expected[len]);
    Guarded<std::int32_t> bins(len > 1 ? len + 2 : 2, 1);
    Bytes *work = factor == 0 ? nullptr : integer.workData();
    ASSERT_EQ(orvsFFTFwd_RToCCS_16s32s_Sfs(samples.data(), bins.data(), integer.spec, factor, work),
              orvStsNoErr);
    for (std::size_t i = 0; i < expected.size(); ++i) ASSERT_EQ(bins.at(i), expected[i]) << i;
    EXPECT_EQ(bins.at(1), 0);
  }
  // A saturated line at half the rate moves from its place behind bin 0 to the end.
  if (len > 1) {
    std::vector<std::int16_t> line(len);
    for (std::size_t n = 0; n < len; ++n) line[n] = n % 2 == 0 ? 32767 : -32767;
    std::vector<std::int32_t> bins(len + 2);
    orvsFFTFwd_RToCCS_16s32s_Sfs(line.data(), bins.data(), integer.spec, -31, nullptr);
    EXPECT_EQ(bins[len], INT32_MAX);
    EXPECT_EQ(bins[1], 0);
    EXPECT_EQ(bins[len + 1], 0);
  }
}

TEST(Fft, ThreadsShareAnObject) {
  for (const int order : {8, 14}) {
    BuiltReal fft(order);
    const std::size_t len = lengthOf(order);
    Random random(9);
    const Signal signal = uniform<float>(random, len, -1, 1);
    std::array<Signal, 2> spectra = {Signal(len), Signal(len)};
    const auto run = [&](Signal &spectrum) {
      for (int turn = 0; turn < 20; ++turn) {
        orvsFFTFwd_RToPack_32f(signal.data(), spectrum.data(), fft.spec, nullptr);
        orvsFFTInv_PackToR_32f(spectrum.data(), spectrum.data(), fft.spec, nullptr);
      }
    };
    std::thread other(run, std::ref(spectra[0]));
    run(spectra[1]);
    other.join();
    EXPECT_EQ(spectra[0], spectra[1]);
  }
}

}  // namespace
}  // namespace orv
