// orvsZeroMean_16s, orvsCompensateOffset*: removing what a microphone adds.

#include <cstdint>

#include "core/integer.h"
#include "orvsr/frontend.h"
#include "primitives/memory.h"

using namespace orv;

namespace {

// Each form reads a sample before it writes the result, so that source and destination may be one array.

void compensate(const float *src, float *dst, std::int32_t len, float *srcLast, float dstLast, float val) {
  float last = load(src);
  float y = dstLast * val + last - load(srcLast);
  store(srcLast, load(src + len - 1));
  store(dst, y);
  for (std::int32_t i = 1; i < len; ++i) {
    const float x = load(src + i);
    y = x - last + y * val;
    store(dst + i, y);
    last = x;
  }
}

// Away from zero at the halves, in single precision.
std::int16_t roundSaturated(float v) {
  if (v >= 32767.0F) return INT16_MAX;
  if (v <= -32768.0F) return INT16_MIN;
  return static_cast<std::int16_t>(truncate32(v >= 0 ? v + 0.5F : v - 0.5F));
}

void compensate(const std::int16_t *src, std::int16_t *dst, std::int32_t len, std::int16_t *srcLast,
                std::int16_t dstLast, float val) {
  std::int32_t last = load(src);
  // The first sample truncates, whatever the others do, and that is meant.
  std::int16_t y = saturateTruncated<std::int16_t>(
      static_cast<float>(last) + static_cast<float>(dstLast) * val - static_cast<float>(load(srcLast)));
  store(srcLast, load(src + len - 1));
  store(dst, y);
  if (val >= -1 && val <= 1) {
    // The others run in integers with a factor of twelve fractional bits ...
    const std::int32_t factor = truncate32(val * 1024 * 4);
    for (std::int32_t i = 1; i < len; ++i) {
      const std::int32_t x = load(src + i);
      y = sat16(x - last + ((y * factor) >> 12));
      store(dst + i, y);
      last = x;
    }
  } else {
    // ... or in single precision with rounding: the two ranges of val differ in the last bit, and that is
    // meant.
    for (std::int32_t i = 1; i < len; ++i) {
      const std::int32_t x = load(src + i);
      y = roundSaturated(static_cast<float>(x - last) + static_cast<float>(y) * val);
      store(dst + i, y);
      last = x;
    }
  }
}

void compensateQ15(const std::int16_t *src, std::int16_t *dst, std::int32_t len, std::int16_t *srcLast,
                   std::int16_t dstLast, std::int16_t val) {
  std::int32_t last = load(srcLast);
  store(srcLast, load(src + len - 1));
  std::int16_t y = dstLast;
  for (std::int32_t i = 0; i < len; ++i) {
    const std::int32_t x = load(src + i);
    // Division by 32768 rounds toward zero. A saturated result is what the next step sees.
    y = sat16((std::int64_t{x - last} * 32768 + std::int64_t{y} * val) / 32768);
    store(dst + i, y);
    last = x;
  }
}

// The factor is tested as the 16-bit number that it is.
OrvStatus checkQ15(std::int32_t len, std::int16_t val) {
  if (len < 1 || len > 65535) return orvStsSizeErr;
  return val < 0 ? orvStsBadArgErr : orvStsNoErr;
}

}  // namespace

OrvStatus orvsZeroMean_16s(int16_t *pSrcDst, int32_t len) {
  // Alone in its family this tests the length first; callers rely on it.
  if (len < 1) return orvStsSizeErr;
  if (pSrcDst == nullptr) return orvStsNullPtrErr;
  std::int64_t sum = 0;
  for (std::int32_t i = 0; i < len; ++i) sum += load(pSrcDst + i);
  const auto mean = static_cast<std::int32_t>(4 * sum / len);  // two fractional bits
  constexpr std::int32_t most = 4 * 32767;
  for (std::int32_t i = 0; i < len; ++i) {
    const std::int32_t difference = 4 * load(pSrcDst + i) - mean;
    const std::int32_t v = difference > most ? most : difference < -most ? -most : difference;
    // Halves round away from zero on both sides, so that a frame without sound becomes zeros.
    store(pSrcDst + i, static_cast<std::int16_t>((v > 0 ? v + 2 : v - 2) / 4));
  }
  return orvStsNoErr;
}

OrvStatus orvsCompensateOffset_32f(const float *pSrc, float *pDst, int32_t len, float *pSrcLast,
                                   float dstLast, float val) {
  if (pSrc == nullptr || pDst == nullptr || pSrcLast == nullptr) return orvStsNullPtrErr;
  if (len < 1) return orvStsSizeErr;
  compensate(pSrc, pDst, len, pSrcLast, dstLast, val);
  return orvStsNoErr;
}

OrvStatus orvsCompensateOffset_32f_I(float *pSrcDst, int32_t len, float *pSrcLast, float dstLast, float val) {
  if (pSrcDst == nullptr || pSrcLast == nullptr) return orvStsNullPtrErr;
  if (len < 1) return orvStsSizeErr;
  compensate(pSrcDst, pSrcDst, len, pSrcLast, dstLast, val);
  return orvStsNoErr;
}

OrvStatus orvsCompensateOffset_16s(const int16_t *pSrc, int16_t *pDst, int32_t len, int16_t *pSrcLast,
                                   int16_t dstLast, float val) {
  if (pSrc == nullptr || pDst == nullptr || pSrcLast == nullptr) return orvStsNullPtrErr;
  if (len < 1) return orvStsSizeErr;
  compensate(pSrc, pDst, len, pSrcLast, dstLast, val);
  return orvStsNoErr;
}

OrvStatus orvsCompensateOffset_16s_I(int16_t *pSrcDst, int32_t len, int16_t *pSrcLast, int16_t dstLast,
                                     float val) {
  if (pSrcDst == nullptr || pSrcLast == nullptr) return orvStsNullPtrErr;
  if (len < 1) return orvStsSizeErr;
  compensate(pSrcDst, pSrcDst, len, pSrcLast, dstLast, val);
  return orvStsNoErr;
}

OrvStatus orvsCompensateOffsetQ15_16s(const int16_t *pSrc, int16_t *pDst, int32_t len, int16_t *pSrcLast,
                                      int16_t dstLast, int16_t val) {
  if (pSrc == nullptr || pDst == nullptr || pSrcLast == nullptr) return orvStsNullPtrErr;
  const OrvStatus status = checkQ15(len, val);
  if (status != orvStsNoErr) return status;
  compensateQ15(pSrc, pDst, len, pSrcLast, dstLast, val);
  return orvStsNoErr;
}

OrvStatus orvsCompensateOffsetQ15_16s_I(int16_t *pSrcDst, int32_t len, int16_t *pSrcLast, int16_t dstLast,
                                        int16_t val) {
  if (pSrcDst == nullptr || pSrcLast == nullptr) return orvStsNullPtrErr;
  const OrvStatus status = checkQ15(len, val);
  if (status != orvStsNoErr) return status;
  compensateQ15(pSrcDst, pSrcDst, len, pSrcLast, dstLast, val);
  return orvStsNoErr;
}
