// orvsLPToReflection_*, orvsReflectionToLP_*: the step-down and step-up recursions.

#include <cstdint>

#include "core/alloc.h"
#include "frontend/lpfixed.h"
#include "orvsr/frontend.h"
#include "primitives/convert.h"
#include "primitives/memory.h"

using namespace orv;

namespace {

// Below this length working memory is on the stack.
constexpr std::int32_t kStackLen = 16;

// One step from order m + 1 to order m.
void stepDown(const float *a, float *next, std::int32_t m, float k) {
  const float g = 1 / (1 - k * k);
  for (std::int32_t i = 0; i < m; ++i) next[i] = (a[m - 1 - i] * k + a[i]) * g;
}

// False at a coefficient of exactly 1 or -1; the elements of dst above it are written by then.
bool stepDownAll(float *a, float *next, float *dst, std::int32_t len) {
  for (std::int32_t m = len - 1; m >= 0; --m) {
    const float k = 0 - a[m];
    if (k == 1 || k == -1) return false;
    store(dst + m, k);
    stepDown(a, next, m, k);
    float *last = a;
    a = next;
    next = last;
  }
  return true;
}

OrvStatus toReflection(const float *src, float *dst, std::int32_t len) {
  float local[2 * kStackLen];
  float *a = local, *next = local + kStackLen;
  const bool onStack = len < kStackLen;
  if (!onStack) {
    if (len == INT32_MAX) return orvStsMemAllocErr;
    a = orvsMalloc_32f(len + 1);
    if (a == nullptr) return orvStsMemAllocErr;
    next = orvsMalloc_32f(len + 1);
    if (next == nullptr) {
      orvsFree(a);
      return orvStsMemAllocErr;
    }
  }
  orvsCopy_32f(src, a, len);
  // This return keeps its two blocks. It has always done so, and stays as it is until the interface can
  // change.
  if (!stepDownAll(a, next, dst, len)) return orvStsLpUnstableErr;
  if (!onStack) {
    orvsFree(a);
    orvsFree(next);
  }
  return orvStsNoErr;
}

OrvStatus toPredictor(const float *src, float *dst, std::int32_t len) {
  StackArray<float, kStackLen> first(std::int64_t{len} + 1, len < kStackLen);
  if (!first) return orvStsMemAllocErr;
  StackArray<float, kStackLen> second(std::int64_t{len} + 1, len < kStackLen);
  if (!second) return orvStsMemAllocErr;
  float *a = first.get(), *next = second.get();
  for (std::int32_t i = 0; i < len; ++i) {
    const float k = load(src + i);
    for (std::int32_t j = 0; j < i; ++j) next[j] = a[j] - a[i - 1 - j] * k;
    next[i] = 0 - k;
    float *last = a;
    a = next;
    next = last;
  }
  return orvsCopy_32f(a, dst, len);
}

OrvStatus check(const void *src, const void *dst, std::int32_t len) {
  if (src == nullptr || dst == nullptr) return orvStsNullPtrErr;
  return len < 1 ? orvStsSizeErr : orvStsNoErr;
}

}  // namespace

OrvStatus orvsLPToReflection_32f(const float *pSrc, float *pDst, int32_t len) {
  if (const OrvStatus status = check(pSrc, pDst, len); status != orvStsNoErr) return status;
  return toReflection(pSrc, pDst, len);
}

OrvStatus orvsLPToReflection_16s_Sfs(const int16_t *pSrc, int16_t *pDst, int32_t len, int32_t scaleFactor) {
  if (const OrvStatus status = check(pSrc, pDst, len); status != orvStsNoErr) return status;
  StackArray<float, kStackLen> a(len, len < kStackLen), k(len, len < kStackLen);
  if (!a || !k) return orvStsMemAllocErr;
  readFixed(pSrc, a.get(), len, scaleUp(scaleFactor));
  orvsZero_32f(k.get(), len);
  // A coefficient of exactly 1 is not reported here; the elements below it mean nothing then.
  toReflection(a.get(), k.get(), len);
  writeWrapped(k.get(), pDst, len, GetScale_32s32f(scaleFactor));
  return orvStsNoErr;
}

OrvStatus orvsReflectionToLP_32f(const float *pSrc, float *pDst, int32_t len) {
  if (const OrvStatus status = check(pSrc, pDst, len); status != orvStsNoErr) return status;
  return toPredictor(pSrc, pDst, len);
}

OrvStatus orvsReflectionToLP_16s_Sfs(const int16_t *pSrc, int16_t *pDst, int32_t len, int32_t scaleFactor) {
  if (const OrvStatus status = check(pSrc, pDst, len); status != orvStsNoErr) return status;
  StackArray<float, kStackLen> k(len, len < kStackLen), a(len, len < kStackLen);
  if (!k || !a) return orvStsMemAllocErr;
  readFixed(pSrc, k.get(), len, scaleUp(scaleFactor));
  if (const OrvStatus status = toPredictor(k.get(), a.get(), len); status != orvStsNoErr) return status;
  // Saturated, unlike the way there.
  return orvsConvert_32f16s_Sfs(a.get(), pDst, len, kRoundNearestEven, scaleFactor);
}
