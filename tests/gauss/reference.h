// What the tests of Gaussian scoring share: matrices in both layouts, plain sums in the groupings that the
// scores promise, and every combination of argument faults.

#ifndef ORV_TESTS_GAUSS_REFERENCE_H
#define ORV_TESTS_GAUSS_REFERENCE_H

#include <array>
#include <cmath>
#include <limits>
#include <memory>
#include <tuple>
#include <vector>

#include "orvsr/gauss.h"
#include "support/arrays.h"

namespace orv::test {

enum class Layout { strided, pointers };

// Rows in one array, with what lies between them poisoned, or each row in an array of its own: at a distance
// of its own from a 16-byte boundary or, but for one in so many, at the same. Rows end where their memory
// ends.
template <class T>
class Matrix {
 public:
  Matrix(Layout layout, const std::vector<std::vector<T>> &rows, std::int32_t step, std::size_t offset,
         std::size_t stray = 1) {
    if (layout == Layout::strided) {
      const auto stride = static_cast<std::size_t>(step);
      std::vector<T> all((rows.size() - 1) * stride + rows[0].size(), poison());
      for (std::size_t r = 0; r < rows.size(); ++r)
        std::copy(rows[r].begin(), rows[r].end(), all.data() + r * stride);
      arrays_.push_back(std::make_unique<Guarded<T>>(all, offset));
      for (std::size_t r = 0; r < rows.size(); ++r) pointers_.push_back(arrays_[0]->data() + r * stride);
    } else {
      for (std::size_t r = 0; r < rows.size(); ++r) {
        arrays_.push_back(std::make_unique<Guarded<T>>(rows[r], (offset + (stray == 1             ? 5 * r
                                                                           : (r + 1) % stray == 0 ? 4
                                                                                                  : 0)) %
                                                                    16));
        pointers_.push_back(arrays_[r]->data());
      }
    }
  }
  const T *base() const { return pointers_[0]; }
  const T *const *pointers() const { return pointers_.data(); }
  const T *row(std::size_t r) const { return pointers_[r]; }

 private:
  static T poison() {
    return std::numeric_limits<T>::has_quiet_NaN ? std::numeric_limits<T>::quiet_NaN() : T{12345};
  }
  std::vector<std::unique_ptr<Guarded<T>>> arrays_;
  std::vector<const T *> pointers_;
};

// One in how many: none, or one of the second four.
inline std::size_t strayOf(Random &random, std::size_t rows) {
  return random() % 2 == 0 ? rows + 1 : 5 + random() % 4;
}

// What the argument types of a member say of it.
template <class F>
struct Signature;
template <class... Arguments>
struct Signature<OrvStatus (*)(Arguments...)> {
  static constexpr int pointers = (0 + ... + int{std::is_pointer_v<Arguments>});
  static constexpr bool strided = !(... || std::is_pointer_v<std::remove_pointer_t<Arguments>>);
  static constexpr Layout layout = strided ? Layout::strided : Layout::pointers;
};

// Any integers, or one end of the range in all places.
template <class T>
std::vector<T> integersOrAnEnd(Random &random, std::size_t len) {
  if (random() % 4 > 0) return anyIntegers<T>(random, len);
  using Limits = std::numeric_limits<T>;
  return std::vector<T>(len, random() % 2 == 0 ? Limits::min() : Limits::max());
}

// How many elements are taken one by one before p stands on a 16-byte boundary.
template <class T>
std::size_t headOf(const T *p, std::size_t len) {
  const auto address = reinterpret_cast<std::uintptr_t>(p);
  if (address % sizeof(T) != 0) return len;
  std::size_t head = 0;
  while (head < len && (address + head * sizeof(T)) % 16 != 0) ++head;
  return head;
}

// (a - b)^2 w, or without w if it is empty.
template <class S, class T>
std::vector<S> termsOf(const std::vector<T> &a, const std::vector<T> &b, const std::vector<T> &w) {
  std::vector<S> terms(a.size());
  for (std::size_t j = 0; j < a.size(); ++j) {
    const S d = static_cast<S>(a[j]) - static_cast<S>(b[j]);
    terms[j] = w.empty() ? d * d : (d * d) * static_cast<S>(w[j]);
  }
  return terms;
}

// The head one by one; groups of one accumulator's 16 bytes, or of eight elements in two such accumulators in
// turn; the rest one by one. Lane 0 of the first accumulator carries the sum so far.
template <class S>
S groupedSum(S sum, S sign, const std::vector<S> &terms, std::size_t head, std::size_t accumulators) {
  constexpr std::size_t lanes = 16 / sizeof(S);
  const std::size_t group = accumulators == 1 ? lanes : 8;
  const std::size_t len = terms.size();
  std::size_t j = 0;
  for (; j < head; ++j) sum += sign * terms[j];
  if (len - j >= group) {
    std::array<S, 8> lane{sum};
    for (; len - j >= group; j += group)
      for (std::size_t e = 0; e < group; ++e) lane[e % (accumulators * lanes)] += sign * terms[j + e];
    if (accumulators == 2)
      for (std::size_t i = 0; i < lanes; ++i) lane[i] += lane[i + lanes];
    sum = lanes == 4 ? (lane[0] + lane[2]) + (lane[1] + lane[3]) : lane[0] + lane[1];
  }
  for (; j < len; ++j) sum += sign * terms[j];
  return sum;
}

// 2^-factor in single precision, infinite and zero at the ends.
inline float scaleOf(std::int64_t factor) {
  if (factor <= -128) return std::numeric_limits<float>::infinity();
  return factor >= 150 ? 0.0F : std::ldexp(1.0F, -static_cast<int>(factor));
}

// The scale factors at which something changes.
inline const std::vector<std::int32_t> &scaleFactors() {
  static const std::vector<std::int32_t> factors{INT32_MIN, -200, -129, -128, -127, -66, -65, -64,      -63,
                                                 -33,       -32,  -2,   -1,   0,    1,   2,   30,       31,
                                                 62,        63,   64,   65,   148,  149, 150, INT32_MAX};
  return factors;
}

// v / 2^n, rounded down; the low six bits of n count.
inline std::int64_t shifted(std::int64_t v, std::int64_t n) {
  return n > 0 ? v >> (n & 63) : static_cast<std::int64_t>(static_cast<std::uint64_t>(v) << (-n & 63));
}
inline std::int64_t wrappedSum(std::int64_t a, std::int64_t b) {
  return static_cast<std::int64_t>(static_cast<std::uint64_t>(a) + static_cast<std::uint64_t>(b));
}
inline std::int32_t saturated(std::int64_t v) {
  if (v >= INT32_MAX) return INT32_MAX;
  return v <= INT32_MIN ? INT32_MIN : static_cast<std::int32_t>(v);
}

// gconst - sum / 2^(scaleFactor + 1) by shifts, saturated or wrapped.
inline std::int32_t exactScore(std::int64_t sum, std::int32_t gconst, std::int64_t scaleFactor, bool wraps) {
  // Without an overflow at the least value: -v = ~v + 1.
  const std::int64_t score = wrappedSum(wrappedSum(~shifted(sum, scaleFactor + 1), 1), gconst);
  return wraps ? static_cast<std::int32_t>(static_cast<std::uint32_t>(score)) : saturated(score);
}

// An argument that only some members have.
template <bool present, class V>
auto onlyIf(V value) {
  if constexpr (present)
    return std::tuple(value);
  else
    return std::tuple<>();
}

// One fault that an argument list may have, and the status it gives.
struct Fault {
  unsigned bit;
  OrvStatus status;
};

// Calls f(faults) with every set of them and expects the status of the first one in order; returns how often.
template <class F>
void expectOrderOfChecks(const std::vector<Fault> &order, F &&f) {
  unsigned all = 0;
  for (const Fault &fault : order) all |= fault.bit;
  for (unsigned faults = 1; faults <= all; ++faults) {
    if ((faults & ~all) != 0) continue;
    OrvStatus expected = orvStsNoErr;
    for (auto fault = order.rbegin(); fault != order.rend(); ++fault)
      if ((faults & fault->bit) != 0) expected = fault->status;
    EXPECT_EQ(f(faults), expected) << "faults " << std::hex << faults;
  }
}

}  // namespace orv::test

#endif
