// The orders of argument checks that scoring families share.

#ifndef ORV_GAUSS_CHECKS_H
#define ORV_GAUSS_CHECKS_H

#include <cstdint>

#include "orvsr/types.h"

namespace orv::gauss {

template <class... Pointers>
inline bool anyNull(const Pointers *...pointers) {
  return (... || (pointers == nullptr));
}

// Pointers, length: all members that take one vector and one Gaussian.
template <class... Pointers>
inline OrvStatus checkSingle(std::int32_t len, const Pointers *...pointers) {
  if (anyNull(pointers...)) return orvStsNullPtrErr;
  return len < 1 ? orvStsSizeErr : orvStsNoErr;
}

// Stride, pointers, sizes: most `_D2` members. A row that does not fit is reported even where a pointer is
// null.
template <class... Pointers>
inline OrvStatus checkStrideFirst(std::int32_t featLen, std::int32_t step, std::int32_t rows,
                                  const Pointers *...pointers) {
  if (featLen > step) return orvStsStrideErr;
  if (anyNull(pointers...)) return orvStsNullPtrErr;
  if (featLen < 1 || rows < 1) return orvStsSizeErr;
  return orvStsNoErr;
}

// Pointers, stride, sizes: the floating-point mixtures.
template <class... Pointers>
inline OrvStatus checkPointersFirst(std::int32_t featLen, std::int32_t step, std::int32_t rows,
                                    const Pointers *...pointers) {
  if (anyNull(pointers...)) return orvStsNullPtrErr;
  if (featLen > step) return orvStsStrideErr;
  if (featLen < 1 || rows < 1) return orvStsSizeErr;
  return orvStsNoErr;
}

// Pointers, sizes, stride: two running maxima over many Gaussians.
template <class... Pointers>
inline OrvStatus checkStrideLast(std::int32_t featLen, std::int32_t step, std::int32_t rows,
                                 const Pointers *...pointers) {
  if (anyNull(pointers...)) return orvStsNullPtrErr;
  if (featLen < 1 || rows < 1) return orvStsSizeErr;
  if (featLen > step) return orvStsStrideErr;
  return orvStsNoErr;
}

// Pointers, sizes: all `_D2L` members. The row pointers themselves are not looked at.
template <class... Pointers>
inline OrvStatus checkRowPointers(std::int32_t featLen, std::int32_t rows, const Pointers *...pointers) {
  if (anyNull(pointers...)) return orvStsNullPtrErr;
  if (featLen < 1 || rows < 1) return orvStsSizeErr;
  return orvStsNoErr;
}

}  // namespace orv::gauss

#endif
