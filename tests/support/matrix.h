// Matrices in both layouts, and the orders in which their functions check their arguments.

#ifndef ORV_TESTS_SUPPORT_MATRIX_H
#define ORV_TESTS_SUPPORT_MATRIX_H

#include "orvsr/types.h"
#include "support/arrays.h"

namespace orv::test {

// height rows of width elements, `gap` elements apart, from one array and by row pointers.
template <class T>
struct Matrix {
  std::int32_t height, width, step;
  std::vector<T> values;
  Guarded<T> array;
  std::vector<T *> rows;

  Matrix(std::vector<T> all, std::int32_t h, std::int32_t w, std::int32_t gap, std::size_t offset = 0)
      : height(h),
        width(w),
        step(w + gap),
        values(std::move(all)),
        array(values, offset),
        rows(rowPointers(array.data(), static_cast<std::size_t>(h), step)) {}
  static std::size_t len(std::int32_t h, std::int32_t w, std::int32_t gap) {
    return static_cast<std::size_t>((h - 1) * (w + gap) + w);
  }

  T *data() { return array.data(); }
  std::size_t index(std::int32_t r, std::int32_t c) const { return static_cast<std::size_t>(r * step + c); }
  T at(std::int32_t r, std::int32_t c) const { return values[index(r, c)]; }
  // What stands there now has the bits of expected(r, c) in the rows, and the old ones between them.
  template <class Expected>
  void expect(Expected expected) const {
    for (std::int32_t r = 0; r < height; ++r)
      for (std::int32_t c = 0; c < step && index(r, c) < values.size(); ++c)
        ASSERT_TRUE(sameBits<T>(array.at(index(r, c)), c < width ? expected(r, c) : at(r, c)))
            << height << 'x' << width << " at " << r << ',' << c;
  }
};

// The bits of expected(i) for each element.
template <class T, class Expected>
void expectAll(const Guarded<T> &array, Expected expected) {
  for (std::int32_t i = 0; i < array.len(); ++i)
    ASSERT_TRUE(sameBits<T>(array.at(static_cast<std::size_t>(i)), expected(i)))
        << i << " of " << array.len();
}

// Pointer arguments of a call that is to fail: one of them null, if hole is its number, the others valid.
struct Pointers {
  struct Any {
    void *address;
    template <class T>
    operator T *() const {
      return static_cast<T *>(address);
    }
  };
  void *valid;
  int hole;
  Any operator[](int i) const { return {i == hole ? nullptr : valid}; }
};

using Order = std::vector<OrvStatus>;
inline const Order kStrideNullSize = {orvStsStrideErr, orvStsNullPtrErr, orvStsSizeErr};
inline const Order kNullStrideSize = {orvStsNullPtrErr, orvStsStrideErr, orvStsSizeErr};
inline const Order kNullSizeStride = {orvStsNullPtrErr, orvStsSizeErr, orvStsStrideErr};
inline const Order kNullSize = {orvStsNullPtrErr, orvStsSizeErr};

// Violates every combination of the three checks and expects the status of the first violated one, in the
// order given, and nothing written. call(pointers, width, step, height) has so many pointers.
template <class Call>
void expectOrder(const Order &order, int pointers, std::int32_t leastHeight, Call call) {
  Guarded<double> memory(64);
  bool hasStride = false;
  for (const OrvStatus check : order) hasStride = hasStride || check == orvStsStrideErr;
  for (int hole = -1; hole < pointers; ++hole)
    for (int badSize = 0; badSize < 3; ++badSize)
      for (int badStride = 0; badStride < (hasStride ? 2 : 1); ++badStride) {
        OrvStatus expected = orvStsNoErr;
        for (const OrvStatus check : order)
          if (expected == orvStsNoErr &&
              ((check == orvStsNullPtrErr && hole >= 0) || (check == orvStsSizeErr && badSize != 0) ||
               (check == orvStsStrideErr && badStride != 0)))
            expected = check;
        if (expected == orvStsNoErr) continue;
        const std::int32_t width = badSize == 1 ? 0 : 3, height = leastHeight - (badSize == 2);
        EXPECT_EQ(call(Pointers{memory.data(), hole}, width, width - badStride, height), expected)
            << "pointer " << hole << " null, width " << width << ", height " << height << ", stride "
            << (badStride ? "bad" : "good");
      }
  EXPECT_TRUE(memory.untouched());
}

}  // namespace orv::test

#endif
