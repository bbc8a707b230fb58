// The stages of two-pass noise reduction that work on spectra: orvsSmoothedPowerSpectrumAurora_*,
// orvsNoiseSpectrumUpdate_Aurora_*, orvsWienerFilterDesign_Aurora_*.
//
// The integer forms are no scaled copies of the others: their constants, truncations and guards are their
// own, and features computed on other machines depend on each of them.

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "core/integer.h"
#include "core/scale.h"
#include "orvsr/robust.h"
#include "primitives/memory.h"
#include "primitives/simd.h"
#include "robust/blocks.h"

namespace orv {
namespace {

// --- smoothed power spectrum

OrvStatus checkSpectrum(const void *pSrc, const void *pDst, std::int32_t len) {
  if (pSrc == nullptr || pDst == nullptr) return orvStsNullPtrErr;
  if (len < 1 || len % 4 != 0) return orvStsSizeErr;
  return orvStsNoErr;
}

float square(float x) { return x * x; }

// Each integer square loses its low bit before the addition.
struct HalvedSquares16s {
  static std::int32_t square(std::int32_t x) { return x * x; }
  static std::int32_t half(std::int32_t x) { return square(x) >> 1; }
  // Four times 2^29 wraps to the most negative number, and is stored as such.
  static std::int32_t add(std::int32_t a, std::int32_t b) { return addWrap32(a, b); }
  static std::int16_t finish(std::int32_t sum) { return sat16(sum); }
  static std::int32_t squareOfLast(std::int32_t x) { return square(x); }
};

template <class Out>
struct HalvedSquares32s {
  std::int64_t scaleFactor;

  static std::int64_t half(std::int64_t x) { return (x * x) >> 1; }
  static std::int64_t add(std::int64_t a, std::int64_t b) { return addWrap64(a, b); }
  Out finish(std::int64_t sum) const { return saturate<Out>(shiftSum(sum, scaleFactor)); }
  // The last bin alone is squared in 32 bits and wraps from 46341 on. This is meant.
  static std::int64_t squareOfLast(std::int32_t x) { return mulWrap32(x, x); }
};

template <class Squares, class In, class Out>
void smoothIntegers(const Squares &squares, const In *src, Out *dst, std::int32_t len) {
  const In nyquist = load(src + 1);
  const auto half = [&](std::int32_t i) { return Squares::half(load(src + i)); };
  store(dst, squares.finish(Squares::add(Squares::add(half(0), half(2)), half(3))));
  for (std::int32_t i = 4; i < len; i += 4) {
    const auto low = Squares::add(half(i), half(i + 1));
    const auto high = Squares::add(half(i + 2), half(i + 3));
    store(dst + i / 4, squares.finish(Squares::add(low, high)));
  }
  store(dst + len / 4, squares.finish(Squares::squareOfLast(nyquist)));
}

// --- noise spectrum update

OrvStatus checkUpdate(const void *pSpectrum, const void *pNoisePrev, const void *pNoise, std::int32_t len) {
  if (pSpectrum == nullptr || pNoisePrev == nullptr || pNoise == nullptr) return orvStsNullPtrErr;
  return len < 1 ? orvStsSizeErr : orvStsNoErr;
}

// b (a / (a + b) 0.1 (b / (0.1 a + b) + 1) + 0.9), the two divisors being given.
simd::f32x4 updatedNoise(simd::f32x4 a, simd::f32x4 b, simd::f32x4 sum, simd::f32x4 weightedSum) {
  using simd::splat4;
  return b * (a / sum * splat4(0.1F) * (b / weightedSum + splat4(1.0F)) + splat4(0.9F));
}

// Four spectrum values of 16 bits: zero where a + b is, or where 0.1 a + b truncates to zero. The limits are
// those of 16 bits, on either side.
simd::i32x4 updatedNoise16s(simd::i32x4 a, simd::i32x4 b, simd::f32x4 scale) {
  using namespace simd;
  const f32x4 zero = splat4(0.0F);
  const f32x4 x = toSingle(a);
  const f32x4 y = toSingle(b);
  const f32x4 sum = toSingle(a + b);
  const f32x4 weightedSum = splat4(0.1F) * x + y;
  const f32x4 dropped = (sum == zero) | (toSingle(truncate(weightedSum)) == zero);
  const f32x4 noise = updatedNoise(x, y, sum, weightedSum) * scale;
  return truncate(andNot(dropped, min(max(noise, splat4(-32768.0F)), splat4(32767.0F))));
}

// Here the divisors are wrapped integers, 0.1 a being truncated before b is added. What exceeds 32 bits
// becomes the most negative number, on the upper side too: this is how the processor truncates, and it is
// meant to differ from the 16-bit form.
simd::i32x4 updatedNoise32s(simd::i32x4 a, simd::i32x4 b, simd::f32x4 scale) {
  using namespace simd;
  const f32x4 zero = splat4(0.0F);
  const f32x4 x = toSingle(a);
  const f32x4 sum = toSingle(a + b);
  const f32x4 weightedSum = toSingle(truncate(splat4(0.1F) * x) + b);
  const f32x4 dropped = (sum == zero) | (weightedSum == zero);
  return truncate(andNot(dropped, updatedNoise(x, toSingle(b), sum, weightedSum) * scale));
}

// --- Wiener gain

OrvStatus checkDesign(const void *pSpectrum, const void *pNoise, const void *pDenoisedPrev, const void *pGain,
                      std::int32_t len) {
  if (pSpectrum == nullptr || pNoise == nullptr || pDenoisedPrev == nullptr || pGain == nullptr)
    return orvStsNullPtrErr;
  return len < 1 ? orvStsSizeErr : orvStsNoErr;
}

// Noise of zero is not tested: it makes the ratio a NaN, and the comparison with the floor resolves a NaN to
// the floor.
simd::f32x4 wienerGain(simd::f32x4 spectrum, simd::f32x4 noise, simd::f32x4 denoised) {
  using namespace simd;
  const f32x4 one = splat4(1.0F);
  const f32x4 r = one / noise;
  const f32x4 excess = max(spectrum - noise, splat4(0.0F));
  const f32x4 prior = (excess * splat4(0.02F) + denoised * splat4(0.98F)) * r;
  const f32x4 gain = prior / (one + prior);
  const f32x4 ratio = max(spectrum * gain * r, splat4(0.07943282F));
  return ratio / (one + ratio);
}

constexpr std::int64_t kFloorRatioQ14 = 1301;  // 0.07943282
constexpr std::int16_t kFloorGainQ14 = 1206;

// Every quotient truncates toward zero, the reciprocal included: noise above 16384 has none left, and the
// gain is that of the floor.
std::int16_t wienerGainQ14(std::int64_t spectrum, std::int32_t noise, std::int64_t denoised) {
  if (noise == 0) return kFloorGainQ14;
  const std::int32_t r = 16384 / noise;
  const std::int64_t excess = std::max<std::int64_t>(spectrum - noise, 0);
  const std::int64_t priorQ12 = ((4014 * denoised + 82 * excess) * r) >> 14;
  // Only negative input, which no spectrum has, can make this divisor zero.
  const std::int64_t divisor = priorQ12 + 4096;
  const std::int64_t gain = divisor == 0 ? 0 : priorQ12 * 16384 / divisor;
  const std::int64_t ratio = std::max(((spectrum * gain) >> 14) * r, kFloorRatioQ14);
  return wrap16(ratio * 128 / ((ratio >> 7) + 128));
}

}  // namespace
}  // namespace orv

using namespace orv;

OrvStatus orvsSmoothedPowerSpectrumAurora_32f(const float *pSrc, float *pDst, int32_t len) {
  using namespace simd;
  if (const OrvStatus status = checkSpectrum(pSrc, pDst, len); status != orvStsNoErr) return status;
  const float nyquist = load(pSrc + 1);
  const auto squareAt = [&](std::int32_t i) { return square(load(pSrc + i)); };
  store(pDst, (squareAt(0) + squareAt(2) + squareAt(3)) * 0.5F);
  std::int32_t i = 4;
  for (; len - i >= 16; i += 16) {
    f32x4 bins[4];
    for (int k = 0; k < 4; ++k) {
      const f32x4 four = load4(pSrc + i + 4 * k);
      bins[k] = four * four;
    }
    transpose(bins);
    store4(pDst + i / 4, (bins[0] + bins[1] + bins[2] + bins[3]) * 0.5F);
  }
  for (; i < len; i += 4)
    store(pDst + i / 4, (squareAt(i) + squareAt(i + 1) + squareAt(i + 2) + squareAt(i + 3)) * 0.5F);
  store(pDst + len / 4, square(nyquist));
  return orvStsNoErr;
}

OrvStatus orvsSmoothedPowerSpectrumAurora_16s(const int16_t *pSrc, int16_t *pDst, int32_t len) {
  if (const OrvStatus status = checkSpectrum(pSrc, pDst, len); status != orvStsNoErr) return status;
  smoothIntegers(HalvedSquares16s(), pSrc, pDst, len);
  return orvStsNoErr;
}

OrvStatus orvsSmoothedPowerSpectrumAurora_32s_Sfs(const int32_t *pSrc, int32_t *pDst, int32_t len,
                                                  int32_t scaleFactor) {
  if (const OrvStatus status = checkSpectrum(pSrc, pDst, len); status != orvStsNoErr) return status;
  smoothIntegers(HalvedSquares32s<std::int32_t>{scaleFactor}, pSrc, pDst, len);
  return orvStsNoErr;
}

OrvStatus orvsSmoothedPowerSpectrumAurora_32s64s_Sfs(const int32_t *pSrc, int64_t *pDst, int32_t len,
                                                     int32_t scaleFactor) {
  if (const OrvStatus status = checkSpectrum(pSrc, pDst, len); status != orvStsNoErr) return status;
  smoothIntegers(HalvedSquares32s<std::int64_t>{scaleFactor}, pSrc, pDst, len);
  return orvStsNoErr;
}

OrvStatus orvsNoiseSpectrumUpdate_Aurora_32f(const float *pSpectrum, const float *pNoisePrev, float *pNoise,
                                             int32_t len) {
  using namespace simd;
  if (const OrvStatus status = checkUpdate(pSpectrum, pNoisePrev, pNoise, len); status != orvStsNoErr)
    return status;
  const auto update = [](const float *spectrum, const float *previous, float *noise) {
    const f32x4 a = load4(spectrum);
    const f32x4 b = load4(previous);
    const f32x4 sum = a + b;
    const f32x4 weightedSum = splat4(0.1F) * a + b;
    const f32x4 least = splat4(1e-6F);
    store4(noise, andNot((sum < least) | (weightedSum < least), updatedNoise(a, b, sum, weightedSum)));
  };
  forBlocks<4>(len, update, pNoise, pSpectrum, pNoisePrev);
  return orvStsNoErr;
}

OrvStatus orvsNoiseSpectrumUpdate_Aurora_16s_Sfs(const int16_t *pSpectrum, const int16_t *pNoisePrev,
                                                 int16_t *pNoise, int32_t len, int32_t scaleFactor) {
  using namespace simd;
  if (const OrvStatus status = checkUpdate(pSpectrum, pNoisePrev, pNoise, len); status != orvStsNoErr)
    return status;
  const f32x4 scale = splat4(GetScale_32s32f(scaleFactor));
  const auto update = [scale](const std::int16_t *spectrum, const std::int16_t *previous,
                              std::int16_t *noise) {
    const i32x8 a = loadWidened8(spectrum);
    const i32x8 b = loadWidened8(previous);
    storeSaturated8(noise, {updatedNoise16s(a.low, b.low, scale), updatedNoise16s(a.high, b.high, scale)});
  };
  forBlocks<8>(len, update, pNoise, pSpectrum, pNoisePrev);
  return orvStsNoErr;
}

OrvStatus orvsNoiseSpectrumUpdate_Aurora_32s_Sfs(const int32_t *pSpectrum, const int32_t *pNoisePrev,
                                                 int32_t *pNoise, int32_t len, int32_t scaleFactor) {
  using namespace simd;
  if (const OrvStatus status = checkUpdate(pSpectrum, pNoisePrev, pNoise, len); status != orvStsNoErr)
    return status;
  const f32x4 scale = splat4(GetScale_32s32f(scaleFactor));
  const auto update = [scale](const std::int32_t *spectrum, const std::int32_t *previous,
                              std::int32_t *noise) {
    const i32x4 updated = updatedNoise32s(load4(spectrum), load4(previous), scale);
    std::memcpy(noise, &updated, sizeof updated);
  };
  forBlocks<4>(len, update, pNoise, pSpectrum, pNoisePrev);
  return orvStsNoErr;
}

OrvStatus orvsWienerFilterDesign_Aurora_32f(const float *pSpectrum, const float *pNoise,
                                            const float *pDenoisedPrev, float *pGain, int32_t len) {
  using namespace simd;
  if (const OrvStatus status = checkDesign(pSpectrum, pNoise, pDenoisedPrev, pGain, len);
      status != orvStsNoErr)
    return status;
  const auto design = [](const float *spectrum, const float *noise, const float *denoised, float *gain) {
    store4(gain, wienerGain(load4(spectrum), load4(noise), load4(denoised)));
  };
  forBlocks<4>(len, design, pGain, pSpectrum, pNoise, pDenoisedPrev);
  return orvStsNoErr;
}

OrvStatus orvsWienerFilterDesign_Aurora_16s(const int16_t *pSpectrum, const int16_t *pNoise,
                                            const int16_t *pDenoisedPrev, int16_t *pGain, int32_t len) {
  if (const OrvStatus status = checkDesign(pSpectrum, pNoise, pDenoisedPrev, pGain, len);
      status != orvStsNoErr)
    return status;
  for (std::int32_t i = 0; i < len; ++i)
    store(pGain + i, wienerGainQ14(load(pSpectrum + i), load(pNoise + i), load(pDenoisedPrev + i)));
  return orvStsNoErr;
}
