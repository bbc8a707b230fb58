// orvs*MCRA*: the noise power of each bin, followed where its recent minimum says that there is no speech.

#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "core/integer.h"
#include "orvsr/robust.h"
#include "primitives/memory.h"
#include "primitives/simd.h"

using namespace orv;

namespace {

using simd::f32x4;
using simd::f64x4;
using simd::i32x4;

// The head of the object. Four arrays of fftLen / 2 + 1 elements follow it, in the order of their pointers.
template <class Value>
struct Head {
  std::int32_t sampleRate, fftLen, halfLenBits, hop;
  std::int32_t minWindow;  // frames
  std::int32_t windowPos, firstFrame;
  Value alphaD, alphaP, alphaS, delta;
  Value *pProb, *pSmooth, *pMin, *pTmpMin;
  std::uint64_t reserved;

  std::int32_t bins() const { return fftLen / 2 + 1; }
};
static_assert(sizeof(Head<float>) == 88 && sizeof(Head<std::int32_t>) == 88);

bool isLen(std::int32_t len) { return len >= 8 && len <= 8192; }
bool isRate(std::int32_t sampleRate) { return sampleRate >= 8000 && sampleRate <= 48000; }

OrvStatus getSize(std::int32_t len, std::int32_t *size) {
  if (size == nullptr) return orvStsNullPtrErr;
  if (!isLen(len)) return orvStsSizeErr;
  store(size, static_cast<std::int32_t>(sizeof(Head<float>)) + 16 * (len / 2 + 1));
  return orvStsNoErr;
}

OrvStatus checkInit(std::int32_t sampleRate, std::int32_t len, const McraState *state) {
  if (state == nullptr) return orvStsNullPtrErr;
  if (!isRate(sampleRate)) return orvStsRangeErr;
  if (!isLen(len)) return orvStsSizeErr;
  return orvStsNoErr;
}

// The hop is tested before the length that it is tested against.
OrvStatus checkAltInit(std::int32_t sampleRate, std::int32_t len, std::int32_t hop, const McraState *state) {
  if (state == nullptr) return orvStsNullPtrErr;
  if (!isRate(sampleRate) || hop < 1 || hop > len / 2) return orvStsRangeErr;
  if (!isLen(len)) return orvStsSizeErr;
  return orvStsNoErr;
}

// The published constants hold for frames 8 ms apart; a power adapts them to this hop.
void setRates(Head<float> &h) {
  const float exponent = static_cast<float>(h.hop) * 125.0F / static_cast<float>(h.sampleRate);
  h.alphaD = static_cast<float>(std::pow(0.7, static_cast<double>(exponent)));
  h.alphaS = static_cast<float>(std::pow(0.8, static_cast<double>(exponent)));
  h.alphaP = static_cast<float>(std::pow(0.2, static_cast<double>(exponent)));
  h.delta = 5.0F;
}

// exp(exponent * logBase) in Q31 by a series of the third order, with logBase in Q31 and the exponent in Q15.
// It fails for exponents far above 1, where the values wrap; tuned hosts rely on what it gives.
std::int32_t seriesPower(std::int64_t exponent, std::int64_t logBase) {
  const std::int64_t x = (exponent * logBase) >> 31;
  const std::int64_t q = ((x * x) >> 15) >> 1;
  const std::int64_t r = (((q * x) >> 15) * 715827883) >> 31;
  return shiftLeft32(wrap32(q + x + r + 32768), 16);
}

constexpr std::int32_t kDeltaQ15 = 163840;

void setRates(Head<std::int32_t> &h) {
  const std::int64_t exponent = std::int64_t{h.hop} * 4096000 / h.sampleRate;
  h.alphaD = seriesPower(exponent, -765953610);
  h.alphaS = seriesPower(exponent, -479197128);
  // ln 0.2 is too far from 0 for the series: an eighth of it, and three squares.
  std::int32_t y = seriesPower(exponent, -432030200);
  for (int i = 0; i < 3; ++i) y = wrap32((std::int64_t{y} * y) >> 31);
  h.alphaP = y;
  h.delta = kDeltaQ15;
}

// Frames in one second. The plain form takes the largest power of two in len / 2 for the hop, which is not
// the hop of its rates if len / 2 is no power of two: meant.
void setWindow(Head<float> &h) {
  const double block = h.sampleRate * 0.008 / (1 << (h.halfLenBits - 1));
  h.minWindow = truncate32(static_cast<double>(static_cast<float>(block) * 125.0F));
}
void setWindowByHop(Head<float> &h) {
  const float block = static_cast<float>(h.sampleRate * 0.008) / static_cast<float>(h.hop);
  h.minWindow = truncate32(static_cast<double>(block * 125.0F));
}

constexpr std::int64_t kBlockQ31 = 17179869;  // 0.008
std::int32_t wholeFrames(std::int32_t blocksQ15) {
  return wrap32((std::int64_t{blocksQ15} * 125 + 125) >> 15);
}
void setWindow(Head<std::int32_t> &h) {
  h.minWindow = wholeFrames(wrap32((h.sampleRate * kBlockQ31) >> 16) >> (h.halfLenBits - 1));
}
void setWindowByHop(Head<std::int32_t> &h) {
  h.minWindow = wholeFrames(wrap32((h.sampleRate * kBlockQ31 / h.hop) >> 16));
}

template <class Value>
Head<Value> startedHead(std::int32_t sampleRate, std::int32_t len, std::int32_t hop, McraState *state) {
  Head<Value> h{};
  h.sampleRate = sampleRate;
  h.fftLen = len;
  h.halfLenBits = static_cast<std::int32_t>(std::bit_width(static_cast<std::uint32_t>(len / 2)));
  h.hop = hop;
  h.firstFrame = 1;
  auto *arrays = reinterpret_cast<Value *>(reinterpret_cast<std::uint8_t *>(state) + sizeof h);
  h.pProb = arrays;
  h.pSmooth = arrays + h.bins();
  h.pMin = arrays + 2 * h.bins();
  h.pTmpMin = arrays + 3 * h.bins();
  setRates(h);
  return h;
}

template <class Value>
void storeHead(const Head<Value> &h, McraState *state) {
  std::memcpy(static_cast<void *>(state), &h, sizeof h);
}

template <class Value>
OrvStatus init(std::int32_t sampleRate, std::int32_t len, McraState *state) {
  if (const OrvStatus status = checkInit(sampleRate, len, state); status != orvStsNoErr) return status;
  Head<Value> h = startedHead<Value>(sampleRate, len, len / 2, state);
  setWindow(h);
  storeHead(h, state);
  return orvStsNoErr;
}

template <class Value>
OrvStatus altInit(std::int32_t sampleRate, std::int32_t len, std::int32_t hop, McraState *state) {
  if (const OrvStatus status = checkAltInit(sampleRate, len, hop, state); status != orvStsNoErr)
    return status;
  Head<Value> h = startedHead<Value>(sampleRate, len, hop, state);
  setWindowByHop(h);
  storeHead(h, state);
  return orvStsNoErr;
}

// Four bins, or one: the same arithmetic on the first lane.
struct FourBins {
  static f32x4 load(const float *p) { return simd::load4(p); }
  static i32x4 load(const std::int32_t *p) { return simd::load4(p); }
  static void store(float *p, f32x4 v) { simd::store4(p, v); }
  static void store(std::int32_t *p, i32x4 v) { simd::store4(p, v); }
};
struct OneBin {
  static f32x4 load(const float *p) { return simd::firstLane4(orv::load(p)); }
  static i32x4 load(const std::int32_t *p) { return simd::firstLane4(orv::load(p)); }
  static void store(float *p, f32x4 v) { orv::store(p, simd::firstOf(v)); }
  static void store(std::int32_t *p, i32x4 v) { orv::store(p, simd::firstOf(v)); }
};

struct SingleTracker {
  using Lanes = f32x4;
  f32x4 alphaS, restS, alphaP, restP, alphaD, restD, delta, one = simd::splat4(1.0F);

  explicit SingleTracker(const Head<float> &h)
      : alphaS(simd::splat4(h.alphaS)),
        restS(simd::splat4(1.0F - h.alphaS)),
        alphaP(simd::splat4(h.alphaP)),
        restP(simd::splat4(1.0F - h.alphaP)),
        alphaD(simd::splat4(h.alphaD)),
        restD(simd::splat4(1.0F - h.alphaD)),
        delta(simd::splat4(h.delta)) {}

  f32x4 smooth(f32x4 s, f32x4 power) const { return alphaS * s + restS * power; }
  f32x4 probability(f32x4 p, f32x4 s, f32x4 least) const {
    p = alphaP * p;
    return select(s > delta * least, p + restP, p);
  }
  f32x4 noise(f32x4 noise, f32x4 p, f32x4 power) const {
    const f32x4 a = alphaD + restD * p;
    return a * noise + (one - a) * power;
  }
};

// Q31: the smoothed power in 64-bit integers, the rest in double on whole numbers, cut back to them.
struct FixedTracker {
  using Lanes = i32x4;
  static constexpr std::int32_t kOne = 2147483647;
  static constexpr double kUnit = 0x1p-31;

  // Powers of two are taken into the constants, which leaves every rounding as it is.
  std::int32_t alphaS;
  i32x4 twiceAlphaS, twiceRestS, restP;
  double alphaP, alphaD, restD;

  explicit FixedTracker(const Head<std::int32_t> &h)
      : alphaS(h.alphaS),
        twiceAlphaS(simd::splat4(shiftLeft32(h.alphaS, 1))),
        twiceRestS(simd::splat4(shiftLeft32(subWrap32(kOne, h.alphaS), 1))),
        restP(simd::splat4(subWrap32(kOne, h.alphaP))),
        alphaP(h.alphaP * kUnit),
        alphaD(h.alphaD * kUnit),
        restD((static_cast<double>(kOne) - h.alphaD) * kUnit * kUnit) {}

  // (alphaS s + (2^31 - 1 - alphaS) power) >> 31, cut to 32 bits. Where nothing is negative, these are the
  // upper halves of the sums of twice the products.
  i32x4 smooth(i32x4 s, i32x4 power) const {
    if (alphaS >= 0 && signs(s | power) == 0)
      return upperHalves(unsignedProducts(s, twiceAlphaS) + unsignedProducts(power, twiceRestS));
    std::int32_t a[4], b[4];
    store4(a, s);
    store4(b, power);
    for (int i = 0; i < 4; ++i)
      a[i] = wrap32(addWrap64(std::int64_t{alphaS} * a[i], b[i] * (std::int64_t{kOne} - alphaS)) >> 31);
    return simd::load4(a);
  }
  // Raised where s > 5 least, told without a product that could overflow: s >= least, so s - least > 4 least
  // may be divided by 4, and below 0 it always holds. An upper limit of the threshold would change nothing.
  i32x4 probability(i32x4 p, i32x4 s, i32x4 least) const {
    static_assert(kDeltaQ15 == 5 << 15);
    const i32x4 quarter = (s - least - simd::splat4(1)) >> 2;
    const i32x4 isNoise = andNot(least >> 31, quarter < least);
    return truncate(toDouble(p) * alphaP) + andNot(isNoise, restP);
  }
  i32x4 noise(i32x4 noise, i32x4 p, i32x4 power) const {
    const f64x4 a = simd::splat4(alphaD) + toDouble(p) * restD;
    const f64x4 rest = simd::splat4(kOne * kUnit) - a;
    return truncate(toDouble(noise) * a + rest * toDouble(power));
  }
};

// One bin after another, since no bin looks at a neighbour. Where a window ends, the minimum is that of the
// window and this frame, and the next window begins with this frame.
template <class Access, class Tracker, class Value>
void trackBins(const Tracker &tracker, const Head<Value> &h, bool windowEnds, const Value *power,
               Value *noise, std::int32_t k) {
  using Lanes = typename Tracker::Lanes;
  const Lanes now = Access::load(power + k);
  const Lanes s = tracker.smooth(Access::load(h.pSmooth + k), now);
  Access::store(h.pSmooth + k, s);
  const Lanes running = min(s, Access::load(h.pTmpMin + k));
  const Lanes least = windowEnds ? running : min(s, Access::load(h.pMin + k));
  Access::store(h.pMin + k, least);
  Access::store(h.pTmpMin + k, windowEnds ? s : running);
  const Lanes p = tracker.probability(Access::load(h.pProb + k), s, least);
  Access::store(h.pProb + k, p);
  Access::store(noise + k, tracker.noise(Access::load(noise + k), p, now));
}

template <class Tracker, class Value>
OrvStatus update(const Value *src, McraState *state, Value *noise) {
  if (src == nullptr || state == nullptr || noise == nullptr) return orvStsNullPtrErr;
  Head<Value> h;
  std::memcpy(&h, static_cast<const void *>(state), sizeof h);
  const std::int32_t bins = h.bins();
  if (h.firstFrame != 0) {
    const std::size_t bytes = static_cast<std::size_t>(bins) * sizeof(Value);
    for (Value *array : {h.pSmooth, h.pMin, h.pTmpMin, noise}) std::memmove(array, src, bytes);
    std::memset(h.pProb, 0, bytes);
  } else {
    const Tracker tracker(h);
    const bool windowEnds = h.windowPos == h.minWindow;
    if (windowEnds) h.windowPos = 0;
    std::int32_t k = 0;
    for (; bins - k >= 4; k += 4) trackBins<FourBins>(tracker, h, windowEnds, src, noise, k);
    for (; k < bins; ++k) trackBins<OneBin>(tracker, h, windowEnds, src, noise, k);
  }
  ++h.windowPos;
  h.firstFrame = 0;
  storeHead(h, state);
  return orvStsNoErr;
}

}  // namespace

OrvStatus orvsGetSizeMCRA_32s(int32_t len, int32_t *pSize) { return getSize(len, pSize); }
OrvStatus orvsGetSizeMCRA_32f(int32_t len, int32_t *pSize) { return getSize(len, pSize); }

OrvStatus orvsInitMCRA_32s(int32_t sampleRate, int32_t len, McraState *pState) {
  return init<std::int32_t>(sampleRate, len, pState);
}
OrvStatus orvsInitMCRA_32f(int32_t sampleRate, int32_t len, McraState *pState) {
  return init<float>(sampleRate, len, pState);
}
OrvStatus orvsAltInitMCRA_32s(int32_t sampleRate, int32_t len, int32_t hop, McraState *pState) {
  return altInit<std::int32_t>(sampleRate, len, hop, pState);
}
OrvStatus orvsAltInitMCRA_32f(int32_t sampleRate, int32_t len, int32_t hop, McraState *pState) {
  return altInit<float>(sampleRate, len, hop, pState);
}

OrvStatus orvsUpdateNoisePSDMCRA_32s_I(const int32_t *pSrc, McraState *pState, int32_t *pNoise) {
  return update<FixedTracker>(pSrc, pState, pNoise);
}
OrvStatus orvsUpdateNoisePSDMCRA_32f_I(const float *pSrc, McraState *pState, float *pNoise) {
  return update<SingleTracker>(pSrc, pState, pNoise);
}
