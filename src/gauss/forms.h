// The number forms of a scoring loop: how elements are read, and in which type differences, products and sums
// are formed. Each form works on one element, on a vector of neighbouring elements, and on the same element
// of four rows.

#ifndef ORV_GAUSS_FORMS_H
#define ORV_GAUSS_FORMS_H

#include <cstdint>

#include "primitives/memory.h"
#include "primitives/simd.h"

namespace orv::gauss {

// Single precision throughout.
struct Single {
  using Elem = float;
  using Sum = float;
  using Lanes = simd::f32x4;
  using Four = simd::f32x4;
  using Aligned = struct SingleAligned;
  static constexpr bool alignable = true;
  static constexpr bool peels = true;  // sums are grouped by the alignment of an argument

  static Sum value(const Elem *p) { return load(p); }
  static Lanes values(const Elem *p) { return simd::load4(p); }
  static Lanes weights(const Elem *p) { return values(p); }
  static Lanes differences(const Elem *a, const Elem *b) { return values(a) - values(b); }
  static Lanes firstLane(Sum v) { return simd::firstLane4(v); }
  static void storeLanes(Sum *p, Lanes v) { simd::store4(p, v); }
  static Four four(Sum a, Sum b, Sum c, Sum d) { return simd::pack4(a, b, c, d); }
  static Four splat(Sum v) { return simd::splat4(v); }
  static Four loadFour(const Sum *p) { return simd::load4(p); }
  static void storeFour(Sum *p, Four v) { simd::store4(p, v); }
  static void firstLanes(Four v, Lanes (&first)[4]) { simd::firstLanes4(v, first); }
  [[gnu::always_inline]] static void transpose(const Lanes (&rows)[4], Four (&columns)[4]) {
    for (int r = 0; r < 4; ++r) columns[r] = rows[r];
    simd::transpose(columns);
  }
};

// The same where the rows of a stand on 16-byte boundaries. Squares do not tell a - b from b - a, and the
// latter takes a row straight from memory.
struct SingleAligned : Single {
  static Lanes differences(const Elem *a, const Elem *b) { return values(b) - simd::loadAligned4(a); }
  static Lanes weights(const Elem *p) { return simd::loadAligned4(p); }
};

// Double precision throughout.
struct Double {
  using Elem = double;
  using Sum = double;
  using Lanes = simd::f64x2;
  using Four = simd::f64x4;
  static constexpr bool peels = true;
  using Aligned = struct DoubleAligned;
  static constexpr bool alignable = true;

  static Sum value(const Elem *p) { return load(p); }
  static Lanes values(const Elem *p) { return simd::load2(p); }
  static Lanes weights(const Elem *p) { return values(p); }
  static Lanes differences(const Elem *a, const Elem *b) { return values(a) - values(b); }
  static Lanes firstLane(Sum v) { return simd::firstLane2(v); }
  static void storeLanes(Sum *p, Lanes v) { simd::store2(p, v); }
  static Four four(Sum a, Sum b, Sum c, Sum d) { return {simd::pack2(a, b), simd::pack2(c, d)}; }
  static Four splat(Sum v) { return {simd::splat2(v), simd::splat2(v)}; }
  static Four loadFour(const Sum *p) { return {simd::load2(p), simd::load2(p + 2)}; }
  static void storeFour(Sum *p, Four v) {
    simd::store2(p, v.low);
    simd::store2(p + 2, v.high);
  }
  static void firstLanes(Four v, Lanes (&first)[4]) { simd::firstLanes2(v, first); }
  [[gnu::always_inline]] static void transpose(const Lanes (&rows)[4], Four (&columns)[2]) {
    simd::transpose(rows, columns);
  }
};

struct DoubleAligned : Double {
  static Lanes differences(const Elem *a, const Elem *b) { return values(b) - simd::loadAligned2(a); }
  static Lanes weights(const Elem *p) { return simd::loadAligned2(p); }
};

// 16-bit integers, converted exactly; then single precision. The difference of two of them is exact in either
// type.
struct Converted : Single {
  using Elem = std::int16_t;
  static constexpr bool peels = false;  // groups start at the first element
  using Aligned = Converted;
  static constexpr bool alignable = false;

  static Sum value(const Elem *p) { return static_cast<Sum>(load(p)); }
  static Lanes values(const Elem *p) { return simd::toSingle(simd::loadWidened4(p)); }
  static Lanes weights(const Elem *p) { return values(p); }
  static Lanes differences(const Elem *a, const Elem *b) { return simd::toSingle(simd::difference4(a, b)); }
};

// Single-precision elements, widened one by one; then double precision.
struct Widened : Double {
  using Elem = float;
  static constexpr bool peels = false;
  using Aligned = Widened;
  static constexpr bool alignable = false;

  static Sum value(const Elem *p) { return static_cast<Sum>(load(p)); }
  static Lanes values(const Elem *p) { return simd::loadWidened2(p); }
  static Lanes weights(const Elem *p) { return values(p); }
  static Lanes differences(const Elem *a, const Elem *b) { return values(a) - values(b); }
};

}  // namespace orv::gauss

#endif
