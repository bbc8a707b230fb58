// orvsFilterUpdate*: what a noise suppressor multiplies a spectrum with.

#include <bit>
#include <cstdint>

#include "core/integer.h"
#include "orvsr/robust.h"
#include "primitives/memory.h"
#include "primitives/reduce.h"
#include "primitives/simd.h"

using namespace orv;

namespace {

// F(v) of the amplitude gain, as both forms read it. n is v in Q22.
//
// Entry n is F(n 2^-22), rounded; at 0, where F is infinite, it is the largest integer.
constexpr std::int32_t DIRECT_VALUE_Q0[129] = {
    2147483647, 1815, 1283, 1048, 907, 812, 741, 686, 642, 605, 574, 547, 524, 503, 485, 469, 454, 440, 428,
    416,        406,  396,  387,  378, 370, 363, 356, 349, 343, 337, 331, 326, 321, 316, 311, 307, 303, 298,
    294,        291,  287,  283,  280, 277, 274, 271, 268, 265, 262, 259, 257, 254, 252, 249, 247, 245, 243,
    240,        238,  236,  234,  232, 231, 229, 227, 225, 223, 222, 220, 219, 217, 215, 214, 212, 211, 210,
    208,        207,  206,  204,  203, 202, 200, 199, 198, 197, 196, 195, 193, 192, 191, 190, 189, 188, 187,
    186,        185,  184,  183,  182, 182, 181, 180, 179, 178, 177, 176, 175, 175, 174, 173, 172, 172, 171,
    170,        169,  169,  168,  167, 166, 166, 165, 164, 164, 163, 162, 162, 161, 160};
// Above it a quadratic in each octave from 2^(s + 7).
constexpr std::int32_t P0_2_32SQ22[24] = {669498645, 473414302, 334764744, 236728959, 167413213, 118408092,
                                          83768274,  59291231,  42007360,  29819668,  21249233,  15255427,
                                          11108711,  8299601,   6470760,   5361107,   4756698,   4463049,
                                          4325745,   4259445,   4226742,   4210491,   4202389,   4198345};
constexpr std::int32_t P1_2_32SQ5i[24] = {72453962, 51231813, 36225125, 25613282, 18108852, 12801395,
                                          9047010,  6390220,  4508716,  3174276,  2225121,  1546422,
                                          1056723,  698929,   435261,   245271,   121987,   56781,
                                          27183,    13368,    6635,     3306,     1650,     824};
constexpr std::int32_t P2_2_32SQi4[24] = {1576642499, 557423223, 197075987, 69674844, 24632335, 8707825,
                                          3077959,    1087711,   384201,    135577,   47749,    16748,
                                          5823,       1986,      648,       193,      49,       11,
                                          2,          0,         0,         0,        0,        0};

constexpr std::int32_t kLastDirect = 128;

// F in Q22, for n above the direct values. A sum that leaves 32 bits is cut.
std::int32_t amplitudeFactor(std::int32_t n) {
  const int top = static_cast<int>(std::bit_width(static_cast<std::uint32_t>(n))) - 1;
  const int s = top - 7;
  const std::int64_t d = n - (std::int64_t{1} << top);
  const std::int32_t slope = wrap32(((d * P2_2_32SQi4[s]) >> 13) - P1_2_32SQ5i[s]);
  return wrap32(((slope * d) >> (s + 5)) + P0_2_32SQ22[s]);
}

std::int32_t saturateAbove(std::int64_t v) { return v > INT32_MAX ? INT32_MAX : wrap32(v); }

std::int32_t amplitudeGain(std::int32_t wiener, std::int32_t postSnr) {
  constexpr std::int32_t most = 3276800;  // 100
  const std::int64_t gamma = postSnr < 1 ? 1 : postSnr > most ? most : postSnr;
  const std::int32_t n = wrap32((gamma * wiener) >> 24);
  // The direct values carry no fraction and are not shifted; the product saturates here, and only here.
  if (n <= kLastDirect) return saturateAbove(std::int64_t{wiener} * DIRECT_VALUE_Q0[n]);
  return saturateAbove((std::int64_t{amplitudeFactor(n)} * wiener) >> 22);
}

float amplitudeGain(float wiener, float postSnr) {
  const float gamma = postSnr > 100.0F ? 100.0F : postSnr > 3.1e-5F ? postSnr : 3.1e-5F;
  const std::int32_t n = truncate32(static_cast<double>(gamma * wiener) * 0x1p22);
  // No saturation, unlike the other form: a small product with a gain that is not 0 may give more than 1. A
  // gain that is not a number has an index below 0 and stays one.
  if (n <= kLastDirect) return static_cast<float>(DIRECT_VALUE_Q0[n < 0 ? 0 : n]) * wiener;
  return static_cast<float>(static_cast<double>(static_cast<float>(amplitudeFactor(n)) * wiener) * 0x1p-22);
}

OrvStatus checkGain(const void *a, const void *b, std::int32_t len) {
  if (a == nullptr || b == nullptr) return orvStsNullPtrErr;
  if (len < 1 || len > 65535) return orvStsLenRangeErr;
  return orvStsNoErr;
}

// inRange tells whether a Wiener gain may be used. All are looked at before anything is written.
template <class T, class InRange>
OrvStatus amplitudeGains(const T *wiener, const T *postSnr, T *dst, std::int32_t len, InRange inRange) {
  if (postSnr == nullptr) return orvStsNullPtrErr;
  if (const OrvStatus status = checkGain(wiener, dst, len); status != orvStsNoErr) return status;
  for (std::int32_t i = 0; i < len; ++i)
    if (!inRange(load(wiener + i))) return orvStsRangeErr;
  for (std::int32_t i = 0; i < len; ++i) store(dst + i, amplitudeGain(load(wiener + i), load(postSnr + i)));
  return orvStsNoErr;
}

// The steps of the integer Wiener gain: 64 of 1/16, then 15 of 4, 7 of 64 and one at 512, where segment g
// begins at 2^WienerSegmentBitOffset[g] in Q15 and its step is as wide. Segments overlap by their entry 0.
constexpr int WienerSegmentBitOffset[5] = {11, 17, 21, 24, 25};
constexpr std::int32_t kSegmentBase[4] = {0, 63, 78, 85};

struct WienerSteps {
  std::int32_t value[88] = {};
};
constexpr WienerSteps wienerSteps() {
  WienerSteps steps;
  for (int g = 0; g < 4; ++g) {
    const std::int64_t width = std::int64_t{1} << WienerSegmentBitOffset[g];
    const std::int64_t count = (std::int64_t{1} << WienerSegmentBitOffset[g + 1]) / width;
    for (std::int64_t j = g == 0 ? 0 : 1; j < count; ++j)
      steps.value[kSegmentBase[g] + j] = static_cast<std::int32_t>(((j * width) << 31) / (j * width + 32768));
  }
  return steps;
}
constexpr WienerSteps WienerTable = wienerSteps();

}  // namespace

OrvStatus orvsFilterUpdateEMNS_32s(const int32_t *pWiener, const int32_t *pPostSnr, int32_t *pDst,
                                   int32_t len) {
  return amplitudeGains(pWiener, pPostSnr, pDst, len, [](std::int32_t h) { return h >= 0; });
}

OrvStatus orvsFilterUpdateEMNS_32f(const float *pWiener, const float *pPostSnr, float *pDst, int32_t len) {
  return amplitudeGains(pWiener, pPostSnr, pDst, len, [](float h) { return !(h < 0.0F || h > 1.0F); });
}

OrvStatus orvsFilterUpdateWiener_32s(const int32_t *pSrc, int32_t *pDst, int32_t len) {
  if (const OrvStatus status = checkGain(pSrc, pDst, len); status != orvStsNoErr) return status;
  OrvStatus status = orvStsNoErr;
  for (std::int32_t i = 0; i < len; ++i) {
    const std::int32_t x = load(pSrc + i);
    std::int32_t gain = 0;
    if (x < 0) {
      status = orvStsBadArgErr;
    } else if (x >= 1 << WienerSegmentBitOffset[4]) {
      gain = INT32_MAX;
    } else {
      int g = 0;
      while (x >= 1 << WienerSegmentBitOffset[g + 1]) ++g;
      gain = WienerTable.value[kSegmentBase[g] + (x >> WienerSegmentBitOffset[g])];
    }
    store(pDst + i, gain);
  }
  return status;
}

// Needs no working memory, so it cannot fail for want of it.
OrvStatus orvsFilterUpdateWiener_32f(const float *pSrc, float *pDst, int32_t len) {
  using namespace simd;
  if (const OrvStatus status = checkGain(pSrc, pDst, len); status != orvStsNoErr) return status;
  float least = 0.0F;
  orvsMin_32f(pSrc, len, &least);
  const bool negative = least < 0.0F;
  // Raised to 0 only if some element is negative; a NaN becomes 0 then too, and stays one otherwise.
  const auto gain = [negative, zero = splat4(0.0F), one = splat4(1.0F)](f32x4 x) {
    if (negative) x = max(x, zero);
    return x / (x + one);
  };
  std::int32_t i = 0;
  for (; len - i >= 4; i += 4) store4(pDst + i, gain(load4(pSrc + i)));
  for (; i < len; ++i) store(pDst + i, firstOf(gain(firstLane4(load(pSrc + i)))));
  return negative ? orvStsBadArgErr : orvStsNoErr;
}
