// orvsNthMaxElement_*: an element by its rank in descending order.

#include "core/alloc.h"
#include "orvsr/gauss.h"
#include "primitives/memory.h"
#include "primitives/rows.h"

using namespace orv;

namespace {

// Quickselect. The first element of the range is the pivot; the elements at or above it move before it. The
// equal ones that end up right before the pivot share its place. Elements move without a branch.
template <class T>
T nthLargest(T *a, std::int32_t len, std::int32_t n) {
  std::ptrdiff_t first = 0;
  std::ptrdiff_t last = len - 1;
  for (;;) {
    const T pivot = a[first];
    std::ptrdiff_t place = first;
    for (std::ptrdiff_t i = first + 1; i <= last; ++i) {
      const T value = a[i];
      a[i] = a[place + 1];
      a[place + 1] = value;
      place += value >= pivot ? 1 : 0;
    }
    a[first] = a[place];
    a[place] = pivot;
    std::ptrdiff_t equal = place;
    while (equal > first && a[equal - 1] == pivot) --equal;
    if (n < equal)
      last = equal - 1;
    else if (n > place)
      first = place + 1;
    else
      return pivot;
  }
}

template <class T>
OrvStatus nthMaxElement(const T *src, std::int32_t len, std::int32_t n, T *result,
                        OrvStatus (*copy)(const T *, T *, std::int32_t)) {
  if (anyNull(src, result)) return orvStsNullPtrErr;
  if (len < 1) return orvStsSizeErr;
  if (n < 0 || n >= len) return orvStsBadArgErr;
  const WorkArray<T> work(len);
  if (!work) return orvStsMemAllocErr;
  copy(src, work.get(), len);
  store(result, nthLargest(work.get(), len, n));
  return orvStsNoErr;
}

}  // namespace

OrvStatus orvsNthMaxElement_32f(const float *pSrc, int32_t len, int32_t n, float *pResult) {
  return nthMaxElement(pSrc, len, n, pResult, orvsCopy_32f);
}

OrvStatus orvsNthMaxElement_32s(const int32_t *pSrc, int32_t len, int32_t n, int32_t *pResult) {
  return nthMaxElement(pSrc, len, n, pResult, orvsCopy_32s);
}

OrvStatus orvsNthMaxElement_64f(const double *pSrc, int32_t len, int32_t n, double *pResult) {
  return nthMaxElement(pSrc, len, n, pResult, orvsCopy_64f);
}
