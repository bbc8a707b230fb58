// Filter banks: construction against the formulas written out once more in extended precision, evaluation
// against plain sums, life cycle, memory, checks; mel conversions and padding.

#include <gtest/gtest.h>

#include <algorithm>
#include <complex>
#include <functional>
#include <limits>
#include <memory>
#include <numbers>

#include "orvsr/frontend.h"
#include "support/allocation.h"
#include "support/arrays.h"

namespace {

using namespace orv::test;
using Ext = long double;

std::size_t size(int n) { return static_cast<std::size_t>(n); }

// Sizes and indices are signed here, as in the interface.
template <class T>
struct Array : std::vector<T> {
  using std::vector<T>::vector;
  Array(const std::vector<T> &values) : std::vector<T>(values) {}
  explicit Array(int n, T value = T{}) : std::vector<T>(size(n), value) {}
  T &operator[](int i) { return this->data()[i]; }
  const T &operator[](int i) const { return this->data()[i]; }
};

constexpr int kMel = orvFBankMelWeights, kBin = orvFBankBinWeights, kSamples = orvFBankFromSamples;
constexpr float kNan = std::numeric_limits<float>::quiet_NaN(), kInf = std::numeric_limits<float>::infinity();

// The functions of both types of bank; integer ones are evaluated to 32 bits, unscaled.
struct Single {
  using State = OrvsFBankState_32f;
  using Sample = float;
  using Result = float;
  static constexpr bool q14 = false;
  static constexpr int lowSize = 15768, highSize = 3184;
  static constexpr auto getSize = orvsMelFBankGetSize_32f;
  static constexpr auto init = orvsMelFBankInit_32f;
  static constexpr auto initAlloc = orvsMelFBankInitAlloc_32f;
  static constexpr auto sizeLow = orvsMelFBankGetSizeLow_Aurora_32f;
  static constexpr auto sizeHigh = orvsMelFBankGetSizeHigh_Aurora_32f;
  static constexpr auto initLow = orvsMelFBankInitLow_Aurora_32f;
  static constexpr auto initHigh = orvsMelFBankInitHigh_Aurora_32f;
  static constexpr auto allocLow = orvsMelFBankInitAllocLow_Aurora_32f;
  static constexpr auto allocHigh = orvsMelFBankInitAllocHigh_Aurora_32f;
  static constexpr auto mixed = orvsMelLinFBankInitAlloc_32f;
  static constexpr auto empty = orvsEmptyFBankInitAlloc_32f;
  static constexpr auto free = orvsFBankFree_32f;
  static constexpr auto getCenters = orvsFBankGetCenters_32f;
  static constexpr auto setCenters = orvsFBankSetCenters_32f;
  static constexpr auto getCoeffs = orvsFBankGetCoeffs_32f;
  static constexpr auto setCoeffs = orvsFBankSetCoeffs_32f;
  static constexpr auto eval = orvsEvalFBank_32f;
};
struct Q14 {
  using State = OrvsFBankState_16s;
  using Sample = int16_t;
  using Result = int32_t;
  static constexpr bool q14 = true;
  static constexpr int lowSize = 15776, highSize = 3192;
  static constexpr auto getSize = orvsMelFBankGetSize_16s;
  static constexpr auto init = orvsMelFBankInit_16s;
  static constexpr auto initAlloc = orvsMelFBankInitAlloc_16s;
  static constexpr auto sizeLow = orvsMelFBankGetSizeLow_Aurora_16s;
  static constexpr auto sizeHigh = orvsMelFBankGetSizeHigh_Aurora_16s;
  static constexpr auto initLow = orvsMelFBankInitLow_Aurora_16s;
  static constexpr auto initHigh = orvsMelFBankInitHigh_Aurora_16s;
  static constexpr auto allocLow = orvsMelFBankInitAllocLow_Aurora_16s;
  static constexpr auto allocHigh = orvsMelFBankInitAllocHigh_Aurora_16s;
  static constexpr auto mixed = orvsMelLinFBankInitAlloc_16s;
  static constexpr auto empty = orvsEmptyFBankInitAlloc_16s;
  static constexpr auto free = orvsFBankFree_16s;
  static constexpr auto getCenters = orvsFBankGetCenters_16s;
  static constexpr auto setCenters = orvsFBankSetCenters_16s;
  static constexpr auto getCoeffs = orvsFBankGetCoeffs_16s;
  static constexpr auto setCoeffs = orvsFBankSetCoeffs_16s;
  static OrvStatus eval(const int16_t *x, int32_t *y, State *b) {
    return orvsEvalFBank_16s32s_Sfs(x, y, b, 0);
  }
};

struct Mel {
  int fftLen = 200, n = 23, flags = kMel;
  float rate = 8000, low = 64, high = 4000, mul = 1127, div = 700, linHigh = 1000;
  int linear = 10;

  template <class T>
  OrvStatus init(typename T::State *bank, int *order) const {
    return T::init(bank, order, fftLen, rate, low, high, n, mul, div, flags);
  }
  template <class T>
  OrvStatus make(typename T::State **bank, int *order) const {
    return T::initAlloc(bank, order, fftLen, rate, low, high, n, mul, div, flags);
  }
  template <class T>
  OrvStatus makeMixed(typename T::State **bank, int *order) const {
    return T::mixed(bank, order, fftLen, rate, low, high, n, linHigh, linear, mul, div, flags);
  }
};

template <class T>
auto hold(const std::function<OrvStatus(typename T::State **)> &make) {
  typename T::State *bank = nullptr;
  EXPECT_EQ(make(&bank), orvStsNoErr);
  return std::unique_ptr<typename T::State, OrvStatus (*)(typename T::State *)>(bank, T::free);
}
template <class T>
auto melBank(const Mel &m) {
  int order = 0;
  return hold<T>([&](auto **p) { return m.make<T>(p, &order); });
}
template <class T>
auto mixedBank(const Mel &m) {
  int order = 0;
  return hold<T>([&](auto **p) { return m.makeMixed<T>(p, &order); });
}

// --- construction, written out once more

float f32(Ext v) { return static_cast<float>(v); }
double f64(Ext v) { return static_cast<double>(v); }

struct Reference {
  Array<int> c;
  Array<Array<float>> bands;  // rising weights, then falling ones, as GetCoeffs gives them
};

struct Formulas {
  Mel a;
  bool q14;
  Ext S = a.rate, M = a.mul, D = a.div, L = 2;

  Formulas(const Mel &m, bool integers) : a(m), q14(integers) {
    while (L < a.fftLen) L *= 2;
  }
  Ext ln(Ext ratio) const { return std::log(f64(1 + ratio)); }
  Ext h(int k) const { return M * ln(k * (S / L) / D); }
  Ext mel(float f) const { return f32(M * ln(f / D)); }
  Ext g(float f) const { return f32(M * f32(ln(f / D))); }
  int center(float bin) const { return static_cast<int>((a.flags & kBin) != 0 ? std::nearbyint(bin) : bin); }
  int melCenter(float m) const { return center(f32(L / S * D * f32(Ext{std::exp(f64(m / M))} - 1))); }
  // A weight as the quotient of two distances. In Q14 it is rounded to double or single, then truncated.
  float weight(Ext over, Ext under, bool floored, bool inDouble) const {
    const Ext scaled = over * 16384 / under;
    const float w =
        q14 ? f32(std::trunc(inDouble ? f64(scaled) : f32(scaled)) / 16384 + 0.0L) : f32(over / under);
    return floored && w < 0 ? 0.0F : w;
  }
  Array<float> binBand(const Reference &r, int i) const {
    const int d = r.c[i] - r.c[i - 1] + 1, e = r.c[i + 1] - r.c[i] + 1;
    const auto w = [&](int k, int of) { return q14 ? f32(k * 16384 / of) / 16384 : f32(Ext(k) / of); };
    Array<float> band;
    for (int j = 1; j <= d; ++j) band.push_back(w(j, d));
    for (int j = 1; j < e; ++j) band.push_back(w(e - j, e));
    return band;
  }

  Reference melBank() const {
    Reference r;
    Array<Ext> m;
    for (int i = 0; i < a.n + 2; ++i) {
      m.push_back(f32(i * Ext{f32(mel(a.high) - mel(a.low))} / (a.n + 1) + mel(a.low)));
      r.c.push_back(melCenter(f32(m.back())));
    }
    for (int i = 1; i <= a.n; ++i) {
      Array<float> w{0};
      for (int k = r.c[i - 1] + 1; k <= r.c[i]; ++k)
        w.push_back(weight(f32(h(k)) - m[i - 1], f32(m[i] - m[i - 1]), false, false));
      for (int k = r.c[i] + 1; k <= r.c[i + 1]; ++k)
        w.push_back(weight(m[i + 1] - f32(h(k)), f32(m[i + 1] - m[i]), false, false));
      r.bands.push_back((a.flags & kBin) != 0 ? binBand(r, i) : w);
    }
    return r;
  }

  Reference mixedBank() const {
    Reference r;
    const bool allLinear = a.linear == a.n;
    const int steps = allLinear ? a.n + 1 : a.linear, rest = a.n - a.linear + 1;
    Array<float> f;
    for (int i = 0; i <= steps; ++i) {
      f.push_back(f32(i * (Ext{a.linHigh} - a.low) / steps + a.low));
      if (i < steps || allLinear) r.c.push_back(center(f32(f.back() * (L / S))));
    }
    const Ext range = f32(mel(a.high) - mel(a.linHigh));
    for (int j = 0; j <= rest && !allLinear; ++j)
      r.c.push_back(melCenter(f32(j * range / rest + mel(a.linHigh))));
    for (int i = 1; i <= a.n; ++i) {
      Array<float> w;
      if ((a.flags & kBin) != 0 || i > a.linear) {
        r.bands.push_back(binBand(r, i));
        continue;
      }
      for (int k = r.c[i - 1]; k <= r.c[i]; ++k)
        w.push_back(weight(h(k) - g(f[i - 1]), f32(g(f[i]) - g(f[i - 1])), true, true));
      for (int k = r.c[i] + 1; k <= r.c[i + 1]; ++k)
        w.push_back(i < a.linear || allLinear
                        ? weight(g(f[i + 1]) - h(k), f32(g(f[i + 1]) - g(f[i])), true, true)
                        : weight(f32(r.c[i + 1] - h(k)), r.c[i + 1] - r.c[i], true, false));
      r.bands.push_back(w);
    }
    return r;
  }
};

template <class T>
void expectBank(typename T::State *bank, const Reference &r) {
  Guarded<int32_t> c(r.c.size());
  ASSERT_EQ(T::getCenters(bank, c.data()), orvStsNoErr);
  EXPECT_EQ(c.values(), r.c);
  for (int i = 1; size(i) <= r.bands.size(); ++i) {
    const Array<float> &band = r.bands[i - 1];
    Guarded<float> w(band.size());
    ASSERT_EQ(T::getCoeffs(bank, i, w.data()), orvStsNoErr);
    for (int j = 0; j < w.len(); ++j)
      EXPECT_TRUE(sameBits(w.at(size(j)), band[j])) << "band " << i << " weight " << j;
  }
}

template <class T>
class FBank : public testing::Test {};
using Types = testing::Types<Single, Q14>;
TYPED_TEST_SUITE(FBank, Types);

TYPED_TEST(FBank, MelBankFollowsItsFormulas) {
  using T = TypeParam;
  for (const int flags : {kMel, kBin})
    for (Mel m :
         {Mel{}, Mel{.fftLen = 1024, .n = 40, .rate = 16000, .high = 7600.5F, .mul = 2595},
          Mel{.fftLen = 1, .n = 1, .low = 300}, Mel{.fftLen = 33, .n = 30, .low = 1e-3F},
          Mel{.n = 5, .low = 1234, .high = 1234}, Mel{.fftLen = 129, .rate = 11025, .high = 5512.5F}}) {
      m.flags = flags;
      expectBank<T>(melBank<T>(m).get(), Formulas(m, T::q14).melBank());
    }
}

TYPED_TEST(FBank, MixedBankFollowsItsFormulas) {
  using T = TypeParam;
  // A small mul keeps the junction's mel values below its bin numbers: its falling side is then not all zero.
  // Edges that fall on bins give weights next to 0 and 1, where every rounding on the way shows.
  for (const auto &[flags, onBins] :
       {std::pair{kMel, false}, {kMel, true}, {kBin, true}, {kMel | kSamples, false}})
    for (const int linear : {1, 7, 22, 23})
      for (const float mul : {1127.0F, 3.0F}) {
        Mel m{.fftLen = 512, .flags = flags, .mul = mul, .linHigh = 1500, .linear = linear};
        if (onBins) {
          m.low = 62.5F;
          m.linHigh = 62.5F * static_cast<float>(1 + linear + (linear == m.n));
        }
        const Reference r = Formulas(m, T::q14).mixedBank();
        expectBank<T>(mixedBank<T>(m).get(), r);
        if ((flags & kMel) == 0 || linear == 23) continue;
        const Array<float> &band = r.bands[linear - 1];
        const auto fall = band.begin() + (r.c[linear] - r.c[linear - 1] + 1);
        EXPECT_EQ(std::all_of(fall, band.end(), [](float w) { return w == 0; }), mul > 100);
      }
}

TYPED_TEST(FBank, AuroraBanksAreTheSettledOnes) {
  using T = TypeParam;
  for (const bool low : {true, false}) {
    Reference r{{1, 8, 19, 37, 64}, {}};
    if (low)
      r.c = {0,  0,  1,  2,  3,  4,  5,  7,  8,  10, 12, 14, 16, 18,
             20, 23, 26, 29, 32, 36, 39, 44, 48, 53, 58, 64, 64};
    for (int i = 1; size(i + 1) < r.c.size(); ++i) {
      const int a = r.c[i - 1], m = r.c[i], z = r.c[i + 1];
      const auto w = [](int k, int of) { return T::q14 ? Ext(k * 16384 / of) : f32(Ext(k) / of); };
      const auto less = [](int k, int of) {
        return T::q14 ? Ext(16384 - k * 16384 / of) : f32(1 - Ext(k) / of);
      };
      Array<Ext> band{low && i == 1 ? w(1, 1) : 0};
      for (int k = a + 1; k <= m; ++k) band.push_back(w(k - a, m - a));
      for (int k = m + 1; k <= z; ++k) band.push_back(less(k - m, z - m));
      Ext sum = 0;
      for (const Ext v : band) sum = f32(sum + v);  // integers of this size stay whole
      r.bands.emplace_back();
      for (const Ext v : band) {
        const Ext unit = T::q14 ? 16384 : 1, scaled = !low     ? v
                                                      : T::q14 ? std::trunc(v * unit / sum)
                                                               : v / sum;
        r.bands.back().push_back(f32(scaled / unit));
      }
    }
    expectBank<T>(hold<T>(low ? T::allocLow : T::allocHigh).get(), r);
    int bytes = 0;
    EXPECT_EQ((low ? T::sizeLow : T::sizeHigh)(&bytes), orvStsNoErr);
    EXPECT_EQ(bytes, low ? T::lowSize : T::highSize);
    for (std::size_t offset = 0; offset < 64; ++offset) {
      Guarded<uint8_t> buffer(size(bytes), offset);
      auto *bank = reinterpret_cast<typename T::State *>(buffer.data());
      ASSERT_EQ((low ? T::initLow : T::initHigh)(bank), orvStsNoErr);
      expectBank<T>(bank, r);
    }
  }
}

// --- memory

TYPED_TEST(FBank, LivesInABufferOfTheReportedSizeAtAnyAddress) {
  using T = TypeParam;
  int bytes = 0, order = 0;
  EXPECT_EQ(T::getSize(20, 3, kMel | kSamples, &bytes), orvStsNoErr);
  EXPECT_EQ(bytes, T::q14 ? 1272 + 232 + 168 + 96 + 320 : 1264 + 168 + 96 + 320);
  Random random(1);
  const auto frame = wholeNumbers<typename T::Sample>(random, 1 << 15, 1000);
  for (const Mel &m :
       {Mel{.fftLen = 1, .n = 1, .flags = kMel | kSamples}, Mel{.fftLen = 64, .n = 3, .flags = kBin},
        Mel{.fftLen = 8, .n = 2, .flags = kBin | kSamples}, Mel{.fftLen = 250, .flags = kMel | kSamples},
        Mel{.fftLen = 1 << 15, .n = 4, .flags = kMel | kSamples}}) {
    Array<typename T::Result> expected(m.n), actual(m.n);
    ASSERT_EQ(T::eval(frame.data(), expected.data(), melBank<T>(m).get()), orvStsNoErr);
    ASSERT_EQ(T::getSize(m.fftLen, m.n, m.flags, &bytes), orvStsNoErr);
    const std::size_t step = m.fftLen > 1000 ? 13 : 1;
    for (std::size_t offset = 0; offset < 64; offset += step) {
      Guarded<uint8_t> buffer(size(bytes), offset);
      auto *bank = reinterpret_cast<typename T::State *>(buffer.data());
      Allocations allocations;
      ASSERT_EQ(m.init<T>(bank, &order), orvStsNoErr);
      ASSERT_EQ(T::eval(frame.data(), actual.data(), bank), orvStsNoErr);
      EXPECT_EQ(allocations.calls(), 0);
      EXPECT_EQ(actual, expected);
    }
  }
}

TYPED_TEST(FBank, ReleasesEverythingWhenAnAllocationFails) {
  using T = TypeParam;
  const Mel m{.flags = kMel | kSamples};
  int order = 0;
  const std::function<OrvStatus(typename T::State **)> makers[] = {
      [&](auto **p) { return m.make<T>(p, &order); }, [&](auto **p) { return m.makeMixed<T>(p, &order); },
      [&](auto **p) { return T::empty(p, &order, 200, 23, m.flags); }, T::allocLow, T::allocHigh};
  const Array<typename T::Sample> frame(256);
  Array<typename T::Result> bands(25);
  for (const auto &make : makers) {
    int refused = 0, withoutFft = 0;
    failEachAllocation([&](int) {
      typename T::State *bank = nullptr;
      order = -1;
      const OrvStatus status = make(&bank);
      if (status == orvStsNoErr) {
        withoutFft += T::eval(frame.data(), bands.data(), bank) == orvStsNullPtrErr;
        EXPECT_EQ(T::free(bank), orvStsNoErr);
        return;
      }
      ++refused;
      EXPECT_EQ(status, orvStsMemAllocErr);
      EXPECT_EQ(bank, nullptr);
      EXPECT_TRUE(order == 8 || &make >= makers + 3);
    });
    EXPECT_GE(refused, 4);
    EXPECT_EQ(withoutFft > 0, &make < makers + 2);  // such a bank is made, and evaluation reports it
  }
  Allocations allocations;
  allocations.alignTo(16);
  for (const auto &make : makers) T::eval(frame.data(), bands.data(), hold<T>(make).get());
}

TYPED_TEST(FBank, RefusesSizesThatCannotBeHad) {
  using T = TypeParam;
  constexpr int most = INT32_MAX;
  for (const auto &[fftLen, n, order] : {std::tuple{most, 1, 31},
                                         {1, most, 1},
                                         {most, most, 31},
                                         {1 << 30, 3, 30},
                                         {(1 << 30) + 1, 3, 31},
                                         {4096, 1 << 20, 12}})
    for (const int flags : {kMel, kBin | kSamples}) {
      const Mel m{.fftLen = fftLen, .n = n, .flags = flags, .linear = 1};
      Guarded<int32_t> out(1);
      EXPECT_EQ(T::getSize(fftLen, n, flags, out.data()), orvStsSizeErr);
      Guarded<uint8_t> buffer(64);
      EXPECT_EQ(m.init<T>(reinterpret_cast<typename T::State *>(buffer.data()), out.data()), orvStsSizeErr);
      EXPECT_TRUE(buffer.untouched() && out.untouched());
      Allocations allocations;
      typename T::State *bank = nullptr;
      EXPECT_EQ(m.make<T>(&bank, out.data()), orvStsMemAllocErr);
      EXPECT_EQ(out.at(0), order);
      EXPECT_EQ(m.makeMixed<T>(&bank, out.data()), orvStsMemAllocErr);
      EXPECT_EQ(T::empty(&bank, out.data(), fftLen, n, flags), orvStsMemAllocErr);
    }
}

// Whatever the centres come out as, nothing is read behind a spectrum of exactly L/2 + 1 values.
TYPED_TEST(FBank, StaysWithinItsRowsWhateverTheCentres) {
  using T = TypeParam;
  const Guarded<typename T::Sample> spectrum(Array<typename T::Sample>(33, 1));
  const auto use = [&](const auto &bank) {
    Array<typename T::Result> bands(5);
    EXPECT_EQ(T::eval(spectrum.data(), bands.data(), bank.get()), orvStsNoErr);
    for (int i = 1; i <= 6; ++i) {
      Guarded<float> w(Array<float>(33 + 32, 1.0F));
      EXPECT_EQ(T::getCoeffs(bank.get(), i, w.data()), orvStsNoErr);
      EXPECT_EQ(T::setCoeffs(bank.get(), std::min(i, 5), w.data()), orvStsNoErr);
    }
  };
  for (const float mul : {0.0F, 1127.0F, -1127.0F, kNan, kInf})
    for (const float div : {0.0F, 700.0F, -700.0F, -1e-3F, kNan, kInf})
      for (const float rate : {8000.0F, kNan, 1e-30F, kInf})
        for (const float high : {4000.0F, kNan, 1e30F}) {
          if (rate * 0.5F < high) continue;
          Mel m{.fftLen = 64,
                .n = 5,
                .rate = rate,
                .high = high,
                .mul = mul,
                .div = div,
                .linHigh = kNan,
                .linear = 3};
          for (m.flags = kMel; m.flags <= kBin; ++m.flags) {
            use(melBank<T>(m));
            use(mixedBank<T>(m));
          }
        }
  const auto bank = melBank<T>({.fftLen = 64, .n = 5});
  const int most = INT32_MAX;
  for (const Array<int> &c : {Array<int>{0, 1, 2, 3, 4, most, 0},
                              {0, 1, 2, 3, 40, 50, INT32_MIN},
                              {most, most, most, most, most, most, 32}}) {
    ASSERT_EQ(T::setCenters(bank.get(), c.data()), orvStsNoErr);
    use(bank);
  }
}

// --- life cycle, centres and weights

TYPED_TEST(FBank, EmptyBankWaitsForCentresAndTakesSpectra) {
  using T = TypeParam;
  int order = 0;
  const auto held = hold<T>([&](auto **p) { return T::empty(p, &order, 9, 2, kSamples | 64); });
  auto *bank = held.get();
  EXPECT_EQ(order, 4);
  const Array<typename T::Sample> x = {1, 2, 3, 4, 5, 6, 7, 8, 9};
  Array<typename T::Result> y(2);
  Guarded<int32_t> centers(4);
  const Array<float> weights = {1, 2, 3, -4, 5, 6};
  const auto set = [&](const Array<int> &c) { return T::setCenters(bank, c.data()); };
  EXPECT_EQ(T::eval(x.data(), y.data(), bank), orvStsFBankErr);
  EXPECT_EQ(T::getCenters(bank, centers.data()), orvStsFBankErr);
  EXPECT_EQ(T::setCoeffs(bank, 9, weights.data()), orvStsFBankErr);
  for (const Array<int> &c : {Array<int>{-1, 0, 1, 2}, {3, 2, 4, 8}, {0, 5, 4, 8}, {0, 2, 4, 9}})
    EXPECT_EQ(set(c), orvStsFBankErr);
  EXPECT_EQ(T::eval(x.data(), y.data(), bank), orvStsFBankErr);

  const Array<int> good = {1, 3, 6, 4};  // the last pair may fall
  ASSERT_EQ(set(good), orvStsNoErr);
  ASSERT_EQ(T::eval(x.data(), y.data(), bank), orvStsNoErr);
  EXPECT_EQ(y, (Array<typename T::Result>{0, 0}));
  for (const int index : {0, 3}) EXPECT_EQ(T::setCoeffs(bank, index, weights.data()), orvStsSizeErr);
  for (const int index : {1, 2}) EXPECT_EQ(T::setCoeffs(bank, index, weights.data()), orvStsNoErr);
  Guarded<float> read(6);
  for (const int index : {0, 4}) EXPECT_EQ(T::getCoeffs(bank, index, read.data()), orvStsSizeErr);
  for (const int index : {3, 1})
    EXPECT_EQ(T::getCoeffs(bank, index, read.data()), orvStsNoErr);  // one more than Set
  EXPECT_EQ(read.values(), weights);
  ASSERT_EQ(T::eval(x.data(), y.data(), bank), orvStsNoErr);
  EXPECT_EQ(y[0], 1 * 2 + 2 * 3 + 3 * 4 - 4 * 5 + 5 * 6 + 6 * 7);
  EXPECT_EQ(y[1], 1 * 4 + 2 * 5 + 3 * 6 - 4 * 7);
  EXPECT_EQ(set({0, 1, 2, 9}), orvStsFBankErr);
  EXPECT_EQ(T::getCenters(bank, centers.data()), orvStsNoErr);
  EXPECT_EQ(centers.values(), good);
}

TEST(FBankWeights, OfSixteenBitBanksOverflowToTheMostNegative) {
  const auto bank = hold<Q14>(orvsMelFBankInitAllocHigh_Aurora_16s);
  const int centers[5] = {0, 5, 5, 5, 5};
  ASSERT_EQ(orvsFBankSetCenters_16s(bank.get(), centers), orvStsNoErr);
  const Array<float> set = {1.0F, -0.00010F, 131071.0F, 131072.0F, 1e30F, -1e30F};
  const Array<float> expected = {1.0F, -1.0F / 16384, 131071.0F, -131072.0F, -131072.0F, -131072.0F};
  Guarded<float> read(6);
  ASSERT_EQ(orvsFBankSetCoeffs_16s(bank.get(), 1, set.data()), orvStsNoErr);
  ASSERT_EQ(orvsFBankGetCoeffs_16s(bank.get(), 1, read.data()), orvStsNoErr);
  EXPECT_EQ(read.values(), expected);
}

// --- evaluation

// The plain sums of the two sides of each band, from what a caller can read of a bank.
template <class T, class X, class Sum>
Array<std::pair<Sum, Sum>> plainSums(typename T::State *bank, int n, const Array<X> &x) {
  Array<int32_t> c(n + 2);
  EXPECT_EQ(T::getCenters(bank, c.data()), orvStsNoErr);
  Array<std::pair<Sum, Sum>> sums(n);
  for (int i = 1; i <= n; ++i) {
    Array<float> w(c[i + 1] - c[i - 1] + 2);
    EXPECT_EQ(T::getCoeffs(bank, i, w.data()), orvStsNoErr);
    for (int k = c[i - 1]; k <= c[i + 1]; ++k)
      (k <= c[i] ? sums[i - 1].first : sums[i - 1].second) +=
          static_cast<Sum>(w[k - c[i - 1]] * (std::is_integral_v<Sum> ? 16384 : 1)) * static_cast<Sum>(x[k]);
  }
  return sums;
}

TEST(FBankEvaluation, SumsEachSideInSinglePrecisionInOrder) {
  Random random(2);
  for (const Mel &m : {Mel{}, Mel{.flags = kBin}, Mel{.fftLen = 16, .n = 40, .flags = kBin}})
    for (std::size_t offset = 0; offset < 16; ++offset) {
      const auto bank = melBank<Single>(m);
      const auto x = uniform<float>(random, 129, -1.0, 1.0);
      Guarded<float> src(x, offset), dst(size(m.n), 15 - offset);
      ASSERT_EQ(orvsEvalFBank_32f(src.data(), dst.data(), bank.get()), orvStsNoErr);
      const auto sums = plainSums<Single, float, float>(bank.get(), m.n, x);
      for (int i = 0; i < m.n; ++i) EXPECT_TRUE(sameBits(dst.at(size(i)), sums[i].first + sums[i].second));
    }
}

TEST(FBankEvaluation, ShiftsAndSaturatesIntegerSums) {
  Random random(3);
  const auto bank = melBank<Q14>({.flags = kBin});
  const auto x = anyIntegers<int16_t>(random, 129);
  const auto sums = plainSums<Q14, int16_t, int64_t>(bank.get(), 23, x);
  const Guarded<int16_t> src(x, 1);
  for (const int factor : {-14, 0, 3, -13, -15, -20, -60, -78, 17, 50, INT32_MAX, INT32_MIN}) {
    Guarded<int16_t> narrow(23, 1);
    Guarded<int32_t> wide(23, 2);
    ASSERT_EQ(orvsEvalFBank_16s_Sfs(src.data(), narrow.data(), bank.get(), factor), orvStsNoErr);
    ASSERT_EQ(orvsEvalFBank_16s32s_Sfs(src.data(), wide.data(), bank.get(), factor), orvStsNoErr);
    const int64_t s = int64_t{14} + factor;
    for (int i = 0; i < 23; ++i) {
      const int64_t sum = sums[i].first + sums[i].second;
      const int64_t v =
          s > 0 ? sum >> (s % 64) : static_cast<int64_t>(static_cast<uint64_t>(sum) << (-s % 64));
      EXPECT_EQ(narrow.at(size(i)), std::clamp<int64_t>(v, INT16_MIN, INT16_MAX)) << factor;
      EXPECT_EQ(wide.at(size(i)), std::clamp<int64_t>(v, INT32_MIN, INT32_MAX)) << factor;
    }
  }
}

// The transform in single precision errs by some rounding units of its norm; its integers by half a unit (an
// eighth) in each part and the magnitude by half of a 64th more; the final shift rounds down.
TYPED_TEST(FBank, TakesMagnitudesOfFramesOfSamples) {
  using T = TypeParam;
  Random random(4);
  for (const int len : {2, 8, 64, 256, 1024}) {
    const Mel m{.fftLen = len, .flags = kBin | kSamples};
    const auto bank = melBank<T>(m);
    const Array<typename T::Sample> x = wholeNumbers<typename T::Sample>(random, size(len), 300);
    Array<double> spectrum;
    for (int k = 0; k <= len / 2; ++k) {
      std::complex<double> sum;
      for (int i = 0; i < len; ++i)
        sum += std::polar(1.0 * x[i], -2 * std::numbers::pi * (i * k % len) / len);
      spectrum.push_back(std::abs(sum));
    }
    Guarded<typename T::Sample> src(x, 2);
    Guarded<typename T::Result> dst(size(m.n));
    ASSERT_EQ(T::eval(src.data(), dst.data(), bank.get()), orvStsNoErr);
    const auto sums = plainSums<T, double, double>(bank.get(), m.n, spectrum);
    const auto weights = plainSums<T, double, double>(bank.get(), m.n, Array<double>(spectrum.size(), 1.0));
    for (int i = 0; i < m.n; ++i) {
      const double each = 300.0 * len * 1e-6 + (T::q14 ? 0.75 / 8 + 0.5 / 64 : 0.0);
      const double sum = sums[i].first + sums[i].second,
                   bound = (weights[i].first + weights[i].second) * each;
      EXPECT_LE(dst.at(size(i)), sum + bound);
      EXPECT_GE(dst.at(size(i)), sum - bound - (T::q14 ? 1 : 0));
    }
  }
}

TEST(FBankEvaluation, WrapsNarrowProductsOfFramesOfSamples) {
  const auto bank = melBank<Q14>({.fftLen = 128, .n = 1, .flags = kMel | kSamples});
  const int centers[3] = {0, 0, 0};
  const float one = 1.0F;
  ASSERT_EQ(orvsFBankSetCenters_16s(bank.get(), centers), orvStsNoErr);
  ASSERT_EQ(orvsFBankSetCoeffs_16s(bank.get(), 1, &one), orvStsNoErr);
  const Array<int16_t> frame(128, 1000);  // bin 0 holds 128000, with six more bits 8192000
  int16_t narrow = 0;
  int32_t wide = 0;
  ASSERT_EQ(orvsEvalFBank_16s32s_Sfs(frame.data(), &wide, bank.get(), 0), orvStsNoErr);
  EXPECT_EQ(wide, 128000);
  ASSERT_EQ(orvsEvalFBank_16s_Sfs(frame.data(), &narrow, bank.get(), 0), orvStsNoErr);
  EXPECT_EQ(narrow, 1024);  // the low 32 bits of 8192000 * 16384 are 2^30
}

// --- checks

TYPED_TEST(FBank, ChecksArgumentsInOrder) {
  using T = TypeParam;
  using Faults = Array<std::pair<OrvStatus, std::function<void(Mel &)>>>;
  Guarded<typename T::State *> bank(1);
  Guarded<int32_t> order(1);
  Guarded<uint8_t> buffer(1);
  auto *inBuffer = reinterpret_cast<typename T::State *>(buffer.data());
  // Each fault hides those before it.
  Mel m;
  for (const auto &[status, spoil] : Faults{{orvStsFBankFlagErr, [](Mel &a) { a.flags = 3; }},
                                            {orvStsFBankFreqErr, [](Mel &a) { a.high = 4000.001F; }},
                                            {orvStsFBankFreqErr, [](Mel &a) { a.low = 5000; }},
                                            {orvStsSizeErr, [](Mel &a) { a.low = 0; }},
                                            {orvStsSizeErr, [](Mel &a) { a.rate = -1; }},
                                            {orvStsSizeErr, [](Mel &a) { a.n = 0; }},
                                            {orvStsSizeErr, [](Mel &a) { a.fftLen = 0; }}}) {
    spoil(m);
    EXPECT_EQ(m.make<T>(bank.data(), order.data()), status);
    EXPECT_EQ(m.init<T>(inBuffer, order.data()), status);
    EXPECT_EQ(m.makeMixed<T>(bank.data(), order.data()), status);
    EXPECT_EQ(m.make<T>(nullptr, order.data()), orvStsNullPtrErr);
    EXPECT_EQ(m.init<T>(inBuffer, nullptr), orvStsNullPtrErr);
  }
  m = Mel{};
  for (const auto &[status, spoil] : Faults{{orvStsFBankFlagErr, [](Mel &a) { a.flags = 7; }},
                                            {orvStsFBankFreqErr, [](Mel &a) { a.linHigh = 4001; }},
                                            {orvStsFBankFreqErr, [](Mel &a) { a.linHigh = 1; }},
                                            {orvStsSizeErr, [](Mel &a) { a.linear = 24; }},
                                            {orvStsSizeErr, [](Mel &a) { a.linear = 0; }}}) {
    spoil(m);
    EXPECT_EQ(m.makeMixed<T>(bank.data(), order.data()), status);
  }
  for (const int flags : {0, 3, 4, 7, 9, -1}) {
    EXPECT_EQ(T::getSize(200, 23, flags, order.data()), orvStsFBankFlagErr);
    EXPECT_EQ(T::getSize(200, 0, flags, order.data()), orvStsSizeErr);
    EXPECT_EQ(T::getSize(0, 23, flags, nullptr), orvStsNullPtrErr);
  }
  for (const int fftLen : {0, 1})
    EXPECT_EQ(T::empty(bank.data(), order.data(), fftLen, 1 - fftLen, 0), orvStsSizeErr);
  EXPECT_TRUE(bank.untouched() && order.untouched() && buffer.untouched());
  for (const auto getSize : {T::sizeLow, T::sizeHigh}) EXPECT_EQ(getSize(nullptr), orvStsNullPtrErr);
  for (const auto init : {T::initLow, T::initHigh, T::free}) EXPECT_EQ(init(nullptr), orvStsNullPtrErr);
  for (const auto make : {T::allocLow, T::allocHigh}) EXPECT_EQ(make(nullptr), orvStsNullPtrErr);
  melBank<T>({.rate = kNan, .low = kNan, .high = kNan});  // a NaN passes

  const auto good = melBank<T>({});
  typename T::Sample x{};
  typename T::Result y{};
  float w = 0;
  EXPECT_EQ(T::eval(nullptr, &y, good.get()), orvStsNullPtrErr);
  EXPECT_EQ(T::eval(&x, nullptr, good.get()), orvStsNullPtrErr);
  EXPECT_EQ(T::eval(&x, &y, nullptr), orvStsNullPtrErr);
  EXPECT_EQ(T::getCenters(good.get(), nullptr), orvStsNullPtrErr);
  EXPECT_EQ(T::setCenters(good.get(), nullptr), orvStsNullPtrErr);
  EXPECT_EQ(T::getCoeffs(nullptr, 0, &w), orvStsNullPtrErr);
  EXPECT_EQ(T::setCoeffs(good.get(), 0, nullptr), orvStsNullPtrErr);
}

// --- conversions and padding

TEST(MelScale, ConvertsToTheLastBit) {
  Random random(5);
  for (const auto &[mul, div] : {std::pair{1127.0F, 700.0F}, {2595.0F, 700.0F}, {0.3F, 1e-3F}}) {
    auto x = uniform<float>(random, 1001, -0.9, 1000.0);
    for (float &v : x) v *= div;
    x[0] = -div;  // 1 - div * (1 / div) is not 0 in extended precision
    Guarded<float> mel(x, 1), back(x, 2);
    ASSERT_EQ(orvsLinearToMel_32f(mel.data(), mel.data(), 1001, mul, div), orvStsNoErr);
    ASSERT_EQ(orvsMelToLinear_32f(mel.data(), back.data(), 1001, mul, div), orvStsNoErr);
    const Ext overDiv = f64(1 / Ext{div}), overMul = f64(1 / Ext{mul});
    for (std::size_t i = 0; i < x.size(); ++i) {
      const float m = f32(Ext{mul} * std::log(f64(1 + x[i] * overDiv)));
      EXPECT_TRUE(sameBits(mel.at(i), m));
      EXPECT_TRUE(sameBits(back.at(i), f32(div * (Ext{std::exp(f64(m * overMul))} - 1))));
    }
  }
  const float x = 1;
  for (const auto convert : {orvsLinearToMel_32f, orvsMelToLinear_32f}) {
    Guarded<float> out(1);
    EXPECT_EQ(convert(nullptr, out.data(), 0, 1, 1), orvStsNullPtrErr);
    EXPECT_EQ(convert(&x, nullptr, 0, 1, 1), orvStsNullPtrErr);
    EXPECT_EQ(convert(&x, out.data(), 0, 1, 1), orvStsSizeErr);
    EXPECT_EQ(convert(&x, out.data(), 1, 0, 1), orvStsSizeErr);
    EXPECT_EQ(convert(&x, out.data(), 1, 1, -1), orvStsSizeErr);
    EXPECT_TRUE(out.untouched());
    EXPECT_EQ(convert(&x, out.data(), 1, kNan, kNan), orvStsNoErr);
  }
}

template <class T>
void expectPadding(OrvStatus (*copy)(const T *, int32_t, T *, int32_t)) {
  for (const int len : {1, 5, 8, 33})
    for (const int total : {len, len + 1, len + 40}) {
      Array<T> x(len, T{7});
      const Guarded<T> src(x, 1);
      Guarded<T> dst(size(total), 3);
      ASSERT_EQ(copy(src.data(), len, dst.data(), total), orvStsNoErr);
      x.resize(size(total));
      EXPECT_EQ(dst.values(), x);
    }
  Array<T> overlapping = {1, 2, 3, 4, 5};
  EXPECT_EQ(copy(overlapping.data(), 3, overlapping.data() + 1, 4), orvStsNoErr);
  EXPECT_EQ(overlapping, (Array<T>{1, 1, 1, 1, 0}));
  Guarded<T> dst(4);
  EXPECT_EQ(copy(nullptr, 0, dst.data(), 4), orvStsNullPtrErr);
  EXPECT_EQ(copy(overlapping.data(), 0, nullptr, 4), orvStsNullPtrErr);
  EXPECT_EQ(copy(overlapping.data(), 0, dst.data(), 4), orvStsSizeErr);
  EXPECT_EQ(copy(overlapping.data(), 4, dst.data(), 3), orvStsSizeErr);
  EXPECT_TRUE(dst.untouched());
}

TEST(CopyWithPadding, CopiesFromTheFirstAndFillsWithZeros) {
  expectPadding(orvsCopyWithPadding_32f);
  expectPadding(orvsCopyWithPadding_16s);
}

}  // namespace
