// Arrays at chosen addresses between guard bytes, and the data that tests put into them.

#ifndef ORV_TESTS_SUPPORT_ARRAYS_H
#define ORV_TESTS_SUPPORT_ARRAYS_H

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <random>
#include <type_traits>
#include <vector>

// The address sanitizer's, where the program is linked with it: tests are compiled without.
extern "C" {
[[gnu::weak]] void __asan_poison_memory_region(const volatile void *start, std::size_t bytes);
[[gnu::weak]] void __asan_unpoison_memory_region(const volatile void *start, std::size_t bytes);
}

namespace orv::test {

// An array that starts `offset` bytes behind a 64-byte boundary, with guard bytes on both sides: a write into
// them fails the test, a read behind the end is caught by the address sanitizer. Elements may lie at odd
// addresses; at() and set() reach them.
template <class T>
class Guarded {
 public:
  explicit Guarded(std::size_t len, std::size_t offset = 0)
      : len_(len), memory_(new (std::align_val_t{64}) std::uint8_t[kGuard + offset + bytes() + kGuard]) {
    start_ = memory_.get() + kGuard + offset;
    std::memset(memory_.get(), kFill, total());
    if (__asan_poison_memory_region) __asan_poison_memory_region(start_ + bytes(), kGuard);
  }
  Guarded(const std::vector<T> &values, std::size_t offset = 0) : Guarded(values.size(), offset) {
    if (!values.empty()) std::memcpy(start_, values.data(), bytes());
  }
  ~Guarded() {
    if (__asan_unpoison_memory_region) __asan_unpoison_memory_region(start_ + bytes(), kGuard);
    EXPECT_TRUE(intact()) << "something was written outside an array";
  }
  Guarded(const Guarded &) = delete;
  Guarded &operator=(const Guarded &) = delete;

  T *data() { return reinterpret_cast<T *>(start_); }
  const T *data() const { return reinterpret_cast<const T *>(start_); }
  std::int32_t len() const { return static_cast<std::int32_t>(len_); }
  T at(std::size_t i) const {
    T value;
    std::memcpy(&value, start_ + i * sizeof(T), sizeof value);
    return value;
  }
  void set(std::size_t i, T value) { std::memcpy(start_ + i * sizeof(T), &value, sizeof value); }
  std::vector<T> values() const {
    std::vector<T> copy(len_);
    if (len_ != 0) std::memcpy(copy.data(), start_, bytes());
    return copy;
  }
  // Nothing was written since construction: every byte is still the fill.
  bool untouched() const {
    for (std::size_t i = 0; i < bytes(); ++i)
      if (start_[i] != kFill) return false;
    return true;
  }

 private:
  static constexpr std::size_t kGuard = 128;
  static constexpr std::uint8_t kFill = 0x5C;
  struct Release {
    void operator()(std::uint8_t *p) const { ::operator delete[](p, std::align_val_t{64}); }
  };
  std::size_t bytes() const { return len_ * sizeof(T); }
  std::size_t total() const { return static_cast<std::size_t>(start_ - memory_.get()) + bytes() + kGuard; }
  bool intact() const {
    for (const std::uint8_t *p = memory_.get(); p != start_; ++p)
      if (*p != kFill) return false;
    for (const std::uint8_t *p = start_ + bytes(); p != start_ + bytes() + kGuard; ++p)
      if (*p != kFill) return false;
    return true;
  }

  std::size_t len_;
  std::unique_ptr<std::uint8_t[], Release> memory_;
  std::uint8_t *start_;
};

using Random = std::mt19937;

// Whole numbers between -limit and limit, as any element type: sums and products of a few of them are exact
// in every order.
template <class T>
std::vector<T> wholeNumbers(Random &random, std::size_t len, int limit) {
  std::uniform_int_distribution<int> draw(-limit, limit);
  std::vector<T> values(len);
  for (T &v : values) v = static_cast<T>(draw(random));
  return values;
}

template <class T>
std::vector<T> uniform(Random &random, std::size_t len, double low, double high) {
  std::uniform_real_distribution<double> draw(low, high);
  std::vector<T> values(len);
  for (T &v : values) v = static_cast<T>(draw(random));
  return values;
}

// Any bit pattern of an integer type.
template <class T>
std::vector<T> anyIntegers(Random &random, std::size_t len) {
  std::vector<T> values(len);
  for (T &v : values) v = static_cast<T>(random());
  return values;
}

// Row pointers into a matrix of rows `step` elements apart.
template <class T>
std::vector<T *> rowPointers(T *base, std::size_t rows, std::ptrdiff_t step) {
  std::vector<T *> pointers(rows);
  for (std::size_t r = 0; r < rows; ++r) pointers[r] = base + static_cast<std::ptrdiff_t>(r) * step;
  return pointers;
}

// Equal to the last bit; any NaN equals any NaN unless the sign matters to the caller.
template <class T>
::testing::AssertionResult sameBits(T actual, T expected) {
  if constexpr (std::is_floating_point_v<T>) {
    if (std::isnan(actual) && std::isnan(expected)) return ::testing::AssertionSuccess();
  }
  if (std::memcmp(&actual, &expected, sizeof(T)) == 0) return ::testing::AssertionSuccess();
  return ::testing::AssertionFailure() << std::hexfloat << +actual << " is not " << +expected
                                       << std::defaultfloat << " (" << +actual << ", " << +expected << ")";
}

}  // namespace orv::test

#endif
