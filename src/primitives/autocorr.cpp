#include "primitives/autocorr.h"

#include "core/alloc.h"
#include "primitives/fft/plan.h"
#include "primitives/memory.h"
#include "primitives/reduce.h"
#include "primitives/simd.h"

namespace orv {

namespace {

using simd::f32x4;

constexpr std::int32_t kTransformFrom = 600;

// Lags k .. k + 4 * groups - 1, each in one lane. Groups share the sample that all of their products have in
// common, and hide each other's latency.
template <int groups>
void lagGroups(const float *src, std::int32_t len, std::int32_t k, float *dst) {
  f32x4 sums[groups]{};
  std::int32_t i = 0;
  for (; i < len - k - (4 * groups - 1); ++i) {
    const f32x4 x = simd::splat4(load(src + i));
    for (int g = 0; g < groups; ++g) sums[g] = sums[g] + x * simd::load4(src + i + k + 4 * g);
  }
  for (int g = 0; g < groups; ++g) {
    const std::int32_t lag = k + 4 * g;
    std::int32_t j = i;
    for (; j < len - lag - 3; ++j)
      sums[g] = sums[g] + simd::splat4(load(src + j)) * simd::load4(src + j + lag);
    float lanes[4];
    simd::store4(lanes, sums[g]);
    // The products that the shorter lags have and the longest has not.
    for (int lane = 0; lane < 3; ++lane)
      for (std::int32_t n = j; n < len - lag - lane; ++n)
        lanes[lane] += load(src + n) * load(src + n + lag + lane);
    for (int lane = 0; lane < 4; ++lane) store(dst + 4 * g + lane, lanes[lane]);
  }
}

OrvStatus powerLags(OrvRealFftState32f *spec, const float *src, std::int32_t srcLen, float *dst,
                    std::int32_t count, std::int32_t len) {
  std::int32_t workSize = 0;
  if (const OrvStatus status = orvsFFTGetBufSize_R_32f(spec, &workSize); status != orvStsNoErr) return status;
  const WorkArray<std::uint8_t> work(workSize);
  if (workSize > 0 && !work) return orvStsMemAllocErr;
  const WorkArray<float> array(len);
  if (!array) return orvStsMemAllocErr;
  float *x = array.get();
  if (fft::isLarge(spec->order)) {
    // The steps below in one go, without the packed layout between them.
    fft::largeLags(*spec, src, static_cast<std::size_t>(srcLen), x, static_cast<std::size_t>(count),
                   workSize > 0 ? reinterpret_cast<float *>(fft::align32(work.get())) : nullptr);
    return orvsCopy_32f(x, dst, count);
  }
  ownsCopy_8u(reinterpret_cast<const std::uint8_t *>(src), reinterpret_cast<std::uint8_t *>(x),
              static_cast<std::size_t>(srcLen) * sizeof(float));
  ownsZero_8u(reinterpret_cast<std::uint8_t *>(x + srcLen),
              static_cast<std::size_t>(len - srcLen) * sizeof(float));
  if (const OrvStatus status = orvsFFTFwd_RToPack_32f(x, x, spec, work.get()); status != orvStsNoErr)
    return status;
  orvsMulPackConj_32f_I(x, x, len);
  if (const OrvStatus status = orvsFFTInv_PackToR_32f(x, x, spec, work.get()); status != orvStsNoErr)
    return status;
  return orvsCopy_32f(x, dst, count);
}

OrvStatus transformedLags(const float *src, std::int32_t srcLen, float *dst, std::int32_t count) {
  std::int32_t order = 1;
  while ((std::int64_t{1} << order) < 2 * std::int64_t{srcLen}) ++order;
  OrvRealFftState32f *spec = nullptr;
  OrvStatus status = orvsFFTInitAlloc_R_32f(&spec, order, kFftDivInvByN, 0);
  if (status != orvStsNoErr) return status;
  status = powerLags(spec, src, srcLen, dst, count, std::int32_t{1} << order);
  orvsFFTFree_R_32f(spec);
  return status;
}

}  // namespace

void ownsLagSums_32f(const float *src, std::int32_t len, std::int32_t firstLag, std::int32_t count,
                     float *dst) {
  std::int32_t done = 0;
  for (; count - done >= 16; done += 16) lagGroups<4>(src, len, firstLag + done, dst + done);
  for (; count - done >= 8; done += 8) lagGroups<2>(src, len, firstLag + done, dst + done);
  for (; count - done >= 4; done += 4) lagGroups<1>(src, len, firstLag + done, dst + done);
  for (; done < count; ++done) orvsDotProd_32f(src, src + firstLag + done, len - firstLag - done, dst + done);
}

OrvStatus orvsAutoCorr_32f(const float *src, std::int32_t srcLen, float *dst, std::int32_t dstLen) {
  if (src == nullptr || dst == nullptr) return orvStsNullPtrErr;
  if (srcLen < 1 || dstLen < 1) return orvStsSizeErr;
  const std::int32_t count = srcLen < dstLen ? srcLen : dstLen;
  if (count < kTransformFrom) {
    ownsLagSums_32f(src, srcLen, 0, count, dst);
  } else if (const OrvStatus status = transformedLags(src, srcLen, dst, count); status != orvStsNoErr) {
    return status;
  }
  if (dstLen > count)
    ownsZero_8u(reinterpret_cast<std::uint8_t *>(dst + count),
                static_cast<std::size_t>(dstLen - count) * sizeof(float));
  return orvStsNoErr;
}

OrvStatus orvsMulPackConj_32f_I(const float *src, float *srcDst, std::int32_t len) {
  if (src == nullptr || srcDst == nullptr) return orvStsNullPtrErr;
  if (len < 1) return orvStsSizeErr;
  store(srcDst, load(src) * load(srcDst));
  const f32x4 second = simd::pack4(0, 1, 0, 1) > simd::splat4(0.0F);
  std::int32_t i = 1;
  for (; len - i >= 4; i += 4) {  // a, b twice, and c, d
    const f32x4 ab = simd::load4(src + i), cd = simd::load4(srcDst + i);
    const f32x4 cc = simd::shuffle<0, 0, 2, 2>(cd, cd), dd = simd::shuffle<1, 1, 3, 3>(cd, cd);
    const f32x4 x = ab * cc, y = simd::shuffle<1, 0, 3, 2>(ab, ab) * dd;
    simd::store4(srcDst + i, simd::select(second, x - y, x + y));
  }
  for (; i + 1 < len; i += 2) {
    const float a = load(src + i), b = load(src + i + 1), c = load(srcDst + i), d = load(srcDst + i + 1);
    store(srcDst + i, a * c + b * d);
    store(srcDst + i + 1, b * c - a * d);
  }
  if (i < len) store(srcDst + i, load(src + i) * load(srcDst + i));
  return orvStsNoErr;
}

}  // namespace orv
