// Birth and end of the transform objects.

#include <cmath>
#include <cstring>

#include "core/alloc.h"
#include "primitives/fft/sine.h"
#include "primitives/fft/state.h"

namespace orv {
namespace {

using namespace fft;

bool outOfRange(std::int32_t order) { return order < 0 || order > 30; }

bool isFlag(std::int32_t flag) {
  return flag == kFftDivFwdByN || flag == kFftDivInvByN || flag == kFftDivBySqrtN || flag == kFftNoDivision;
}

void report(const Sizes &sizes, std::int32_t *specSize, std::int32_t *initSize, std::int32_t *workSize) {
  *specSize = static_cast<std::int32_t>(sizes.spec);
  *initSize = static_cast<std::int32_t>(sizes.init);
  *workSize = static_cast<std::int32_t>(sizes.work);
}

// The header of an integer object, whose inner object is yet to be built behind it.
OrvRealFftState16s32s *placeHeader(std::uint8_t *memory, std::int32_t order, std::int32_t hint,
                                   std::int32_t heapOwned) {
  std::uint8_t *start = align32(memory);
  auto *spec = reinterpret_cast<OrvRealFftState16s32s *>(start);
  std::memset(spec, 0, sizeof *spec);
  spec->tag = kIntegerFftTag;
  spec->order = order;
  spec->hint = hint;
  spec->heapOwned = heapOwned;
  return spec;
}

OrvStatus buildInner(OrvRealFftState16s32s *spec, std::int32_t flag, std::uint8_t *initBuffer) {
  auto *behind = reinterpret_cast<std::uint8_t *>(spec) + kInnerOffset;
  OrvStatus status = orvsFFTInit_R_32f(&spec->inner, spec->order, flag, 0, behind, initBuffer);
  if (status != orvStsNoErr) {
    spec->tag = 0;
    return status;
  }
  std::int32_t innerWork = 0;
  orvsFFTGetBufSize_R_32f(spec->inner, &innerWork);
  spec->workBufSize = innerWork + (std::int32_t{4} << spec->order) + 8;
  return orvStsNoErr;
}

}  // namespace

OrvStatus orvsFFTGetSize_R_32f(std::int32_t order, std::int32_t flag, std::int32_t /*hint*/,
                               std::int32_t *specSize, std::int32_t *initSize, std::int32_t *workSize) {
  if (outOfRange(order)) return orvStsFftOrderErr;
  if (specSize == nullptr || initSize == nullptr || workSize == nullptr) return orvStsNullPtrErr;
  if (!isFlag(flag)) return orvStsFftFlagErr;
  if (order > kMaxOrder) return orvStsFftOrderErr;
  report(reportedSizes(order), specSize, initSize, workSize);
  return orvStsNoErr;
}

OrvStatus orvsFFTInit_R_32f(OrvRealFftState32f **spec, std::int32_t order, std::int32_t flag,
                            std::int32_t hint, std::uint8_t *memory, std::uint8_t *initBuffer) {
  if (spec == nullptr) return orvStsNullPtrErr;
  if (outOfRange(order) || order > kMaxOrder) return orvStsFftOrderErr;
  if (memory == nullptr) return orvStsNullPtrErr;

  auto *built = reinterpret_cast<OrvRealFftState32f *>(align32(memory));
  std::memset(static_cast<void *>(built), 0, sizeof *built);
  built->order = order;
  built->hint = hint;
  built->tag = kRealFftTag;
  const auto len = static_cast<float>(std::int32_t{1} << order);
  switch (flag) {
    case kFftDivFwdByN:
      built->scaleFwd = 1;
      built->normFactor = 1.0F / len;
      break;
    case kFftDivInvByN:
      built->scaleInv = 1;
      built->normFactor = 1.0F / len;
      break;
    case kFftDivBySqrtN:
      built->scaleFwd = 1;
      built->scaleInv = 1;
      built->normFactor = static_cast<float>(1.0 / std::sqrt(static_cast<double>(len)));
      break;
    case kFftNoDivision:
      break;
    default:
      built->tag = 0;
      return orvStsFftFlagErr;
  }

  if (order > kMaxSmallOrder) {
    // The object stays marked valid if the buffer is missing; callers learn its size from the query, so they
    // do not meet this.
    if (order > kMaxTableOrder && initBuffer == nullptr) return orvStsNullPtrErr;
    if (order <= kMaxTableOrder) {
      buildTables(*built, fft_fix_twiddle_table_32f, kMaxTableOrder);
    } else {
      auto *sine = reinterpret_cast<float *>(align32(initBuffer));
      buildSine(sine, order);
      buildTables(*built, sine, order);
    }
    built->workBufSize = static_cast<std::int32_t>(tableSizes(order).work);
  }
  *spec = built;
  return orvStsNoErr;
}

OrvStatus orvsFFTInitAlloc_R_32f(OrvRealFftState32f **spec, std::int32_t order, std::int32_t flag,
                                 std::int32_t hint) {
  if (spec == nullptr) return orvStsNullPtrErr;
  std::int32_t specSize = 0;
  std::int32_t initSize = 0;
  std::int32_t workSize = 0;
  OrvStatus status = orvsFFTGetSize_R_32f(order, flag, hint, &specSize, &initSize, &workSize);
  if (status != orvStsNoErr) return status;
  std::uint8_t *block = orvsMalloc_8u(specSize);
  if (block == nullptr) return orvStsMemAllocErr;
  const WorkArray<std::uint8_t> initBuffer(initSize);
  if (initSize > 0 && !initBuffer) {
    orvsFree(block);
    return orvStsMemAllocErr;
  }
  OrvRealFftState32f *built = nullptr;
  status = orvsFFTInit_R_32f(&built, order, flag, hint, block, initBuffer.get());
  if (status != orvStsNoErr) {
    orvsFree(block);
    return status;
  }
  built->heapOwned = 1;
  built->block = block;
  *spec = built;
  return orvStsNoErr;
}

OrvStatus orvsFFTFree_R_32f(OrvRealFftState32f *spec) {
  if (spec == nullptr) return orvStsNullPtrErr;
  if (spec->tag != kRealFftTag) return orvStsContextMatchErr;
  spec->tag = 0;
  if (spec->heapOwned == 1) orvsFree(spec->block);
  return orvStsNoErr;
}

OrvStatus orvsFFTGetBufSize_R_32f(const OrvRealFftState32f *spec, std::int32_t *size) {
  if (spec == nullptr || size == nullptr) return orvStsNullPtrErr;
  if (spec->tag != kRealFftTag) return orvStsContextMatchErr;
  *size = spec->workBufSize < 1 ? 0 : spec->workBufSize + 32;
  return orvStsNoErr;
}

OrvStatus orvsFFTGetSize_R_16s32s(std::int32_t order, std::int32_t flag, std::int32_t hint,
                                  std::int32_t *specSize, std::int32_t *initSize, std::int32_t *workSize) {
  if (outOfRange(order)) return orvStsFftOrderErr;
  if (specSize == nullptr || initSize == nullptr || workSize == nullptr) return orvStsNullPtrErr;
  if (!isFlag(flag)) return orvStsFftFlagErr;
  const OrvStatus status = orvsFFTGetSize_R_32f(order, flag, hint, specSize, initSize, workSize);
  if (status != orvStsNoErr) return status;
  report(reportedIntegerSizes(order), specSize, initSize, workSize);
  return orvStsNoErr;
}

OrvStatus orvsFFTInit_R_16s32s(OrvRealFftState16s32s **spec, std::int32_t order, std::int32_t flag,
                               std::int32_t hint, std::uint8_t *memory, std::uint8_t *initBuffer) {
  if (spec == nullptr) return orvStsNullPtrErr;
  if (outOfRange(order)) return orvStsFftOrderErr;
  if (memory == nullptr) return orvStsNullPtrErr;
  OrvRealFftState16s32s *built = placeHeader(memory, order, hint, 0);
  const OrvStatus status = buildInner(built, flag, initBuffer);
  if (status != orvStsNoErr) return status;
  *spec = built;
  return orvStsNoErr;
}

OrvStatus orvsFFTInitAlloc_R_16s32s(OrvRealFftState16s32s **spec, std::int32_t order, std::int32_t flag,
                                    std::int32_t hint) {
  if (spec == nullptr) return orvStsNullPtrErr;
  if (outOfRange(order)) return orvStsFftOrderErr;
  std::int32_t specSize = 0;
  std::int32_t initSize = 0;
  std::int32_t workSize = 0;
  OrvStatus status = orvsFFTGetSize_R_32f(order, flag, hint, &specSize, &initSize, &workSize);
  if (status != orvStsNoErr) return status;
  // Less than the query tells a caller to provide, and enough from any start: see the assertions on the
  // sizes.
  std::uint8_t *block = orvsMalloc_8u(specSize + kIntegerHeapExtra);
  if (block == nullptr) return orvStsMemAllocErr;
  const WorkArray<std::uint8_t> initBuffer(initSize);
  if (initSize > 0 && !initBuffer) {
    orvsFree(block);
    return orvStsMemAllocErr;
  }
  OrvRealFftState16s32s *built = placeHeader(block, order, hint, 1);
  status = buildInner(built, flag, initBuffer.get());
  if (status != orvStsNoErr) {
    orvsFree(block);
    return status;
  }
  built->inner->block = block;
  *spec = built;
  return orvStsNoErr;
}

OrvStatus orvsFFTFree_R_16s32s(OrvRealFftState16s32s *spec) {
  if (spec == nullptr) return orvStsNullPtrErr;
  if (spec->tag != kIntegerFftTag) return orvStsContextMatchErr;
  spec->tag = 0;
  if (spec->heapOwned == 1) orvsFree(spec->inner->block);
  return orvStsNoErr;
}

}  // namespace orv
