// The two layouts of a matrix, and the orders in which a matrix, or a vector, is checked.

#ifndef ORV_PRIMITIVES_ROWS_H
#define ORV_PRIMITIVES_ROWS_H

#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "orvsr/types.h"

namespace orv {

// One array, a row every step elements.
template <class T>
struct StridedRows {
  using Elem = std::remove_const_t<T>;
  static constexpr bool strided = true;
  T *base;
  std::int32_t step;
  T *row(std::int32_t r) const { return base + static_cast<std::ptrdiff_t>(r) * step; }
};
template <class T>
StridedRows(T *, std::int32_t) -> StridedRows<T>;

// An array of row pointers.
template <class T>
struct RowPointers {
  using Elem = std::remove_const_t<T>;
  static constexpr bool strided = false;
  T *const *rows;
  T *row(std::int32_t r) const { return rows[r]; }
};
template <class T>
RowPointers(T *const *) -> RowPointers<T>;

template <class... Pointers>
inline bool anyNull(const Pointers *...pointers) {
  return (... || (pointers == nullptr));
}

// Pointers, length: vectors.
template <class... Pointers>
inline OrvStatus checkNullLength(std::int32_t len, const Pointers *...pointers) {
  if (anyNull(pointers...)) return orvStsNullPtrErr;
  return len < 1 ? orvStsSizeErr : orvStsNoErr;
}

// Pointers, sizes: matrices of row pointers. The row pointers themselves are not looked at.
template <class... Pointers>
inline OrvStatus checkNullSize(std::int32_t width, std::int32_t height, const Pointers *...pointers) {
  if (anyNull(pointers...)) return orvStsNullPtrErr;
  return width < 1 || height < 1 ? orvStsSizeErr : orvStsNoErr;
}

// Strided matrices, in the three orders there are. A null pointer hides a row that does not fit, or is hidden
// by it, as the name says.
template <class... Pointers>
inline OrvStatus checkStrideNullSize(std::int32_t width, std::int32_t step, std::int32_t height,
                                     const Pointers *...pointers) {
  return width > step ? orvStsStrideErr : checkNullSize(width, height, pointers...);
}

template <class... Pointers>
inline OrvStatus checkNullStrideSize(std::int32_t width, std::int32_t step, std::int32_t height,
                                     const Pointers *...pointers) {
  if (anyNull(pointers...)) return orvStsNullPtrErr;
  if (width > step) return orvStsStrideErr;
  return width < 1 || height < 1 ? orvStsSizeErr : orvStsNoErr;
}

template <class... Pointers>
inline OrvStatus checkNullSizeStride(std::int32_t width, std::int32_t step, std::int32_t height,
                                     const Pointers *...pointers) {
  const OrvStatus status = checkNullSize(width, height, pointers...);
  return status == orvStsNoErr && width > step ? orvStsStrideErr : status;
}

}  // namespace orv

#endif
