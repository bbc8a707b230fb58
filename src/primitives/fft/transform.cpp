// The transforms: checks, working memory, and the integer form.

#include "core/alloc.h"
#include "primitives/convert.h"
#include "primitives/fft/engine.h"
#include "primitives/memory.h"

namespace orv {
namespace {

using namespace fft;

OrvStatus check(const void *src, const void *dst, const OrvRealFftState32f *spec) {
  if (spec == nullptr) return orvStsNullPtrErr;
  if (spec->tag != kRealFftTag) return orvStsContextMatchErr;
  if (src == nullptr || dst == nullptr) return orvStsNullPtrErr;
  return orvStsNoErr;
}

// Calls transform(work) with the caller's buffer from its first 32-byte boundary or, if there is none and one
// is needed, with memory taken for this call. A buffer that is not needed may be of any size and is not
// touched.
template <class Transform>
OrvStatus withWork(std::int32_t bytes, std::uint8_t *work, Transform transform) {
  if (bytes < 1 || work != nullptr) {
    transform(bytes < 1 ? nullptr : align32(work));
    return orvStsNoErr;
  }
  const WorkArray<std::uint8_t> own(bytes);
  if (!own) return orvStsMemAllocErr;
  transform(own.get());
  return orvStsNoErr;
}

OrvStatus forwardChecked(const float *src, float *dst, const OrvRealFftState32f *spec, Layout layout,
                         std::uint8_t *work) {
  if (const OrvStatus status = check(src, dst, spec); status != orvStsNoErr) return status;
  return withWork(spec->workBufSize, work,
                  [&](std::uint8_t *area) { forward(*spec, src, dst, layout, area); });
}

}  // namespace

OrvStatus orvsFFTFwd_RToPerm_32f(const float *src, float *dst, const OrvRealFftState32f *spec,
                                 std::uint8_t *work) {
  return forwardChecked(src, dst, spec, Layout::perm, work);
}

OrvStatus orvsFFTFwd_RToPack_32f(const float *src, float *dst, const OrvRealFftState32f *spec,
                                 std::uint8_t *work) {
  return forwardChecked(src, dst, spec, Layout::pack, work);
}

OrvStatus orvsFFTFwd_RToCCS_32f(const float *src, float *dst, const OrvRealFftState32f *spec,
                                std::uint8_t *work) {
  return forwardChecked(src, dst, spec, Layout::ccs, work);
}

OrvStatus orvsFFTInv_PackToR_32f(const float *src, float *dst, const OrvRealFftState32f *spec,
                                 std::uint8_t *work) {
  if (const OrvStatus status = check(src, dst, spec); status != orvStsNoErr) return status;
  return withWork(spec->workBufSize, work, [&](std::uint8_t *area) { inverse(*spec, src, dst, area); });
}

OrvStatus orvsFFTFwd_RToCCS_16s32s_Sfs(const std::int16_t *src, std::int32_t *dst,
                                       const OrvRealFftState16s32s *spec, std::int32_t scaleFactor,
                                       std::uint8_t *work) {
  if (spec == nullptr) return orvStsNullPtrErr;
  if (spec->tag != kIntegerFftTag) return orvStsContextMatchErr;
  if (src == nullptr || dst == nullptr) return orvStsNullPtrErr;
  const std::int32_t len = std::int32_t{1} << spec->order;
  OrvStatus status = orvStsNoErr;
  const OrvStatus taken = withWork(spec->workBufSize, work, [&](std::uint8_t *area) {
    auto *values = reinterpret_cast<float *>(area);
    orvsConvert_16s32f(src, values, len);
    status =
        orvsFFTFwd_RToPerm_32f(values, values, spec->inner, reinterpret_cast<std::uint8_t *>(values + len));
    if (status == orvStsNoErr) orvsConvert_32f32s_Sfs(values, dst, len, kRoundNearestEven, scaleFactor);
  });
  if (taken != orvStsNoErr) return taken;
  if (status != orvStsNoErr) return status;
  if (len >= 2) {
    store(dst + len, load(dst + 1));
    store(dst + len + 1, 0);
  }
  store(dst + 1, 0);
  return orvStsNoErr;
}

}  // namespace orv
