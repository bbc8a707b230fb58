// Input for benchmarks: arrays on cache lines, and numbers that are the same in every run.

#ifndef ORV_BENCH_DATA_H
#define ORV_BENCH_DATA_H

#include <cstddef>
#include <new>
#include <random>
#include <vector>

namespace orv::bench {

template <class T>
struct CacheLineAllocator {
  using value_type = T;
  CacheLineAllocator() = default;
  template <class U>
  CacheLineAllocator(const CacheLineAllocator<U> &) {}
  T *allocate(std::size_t n) {
    return static_cast<T *>(::operator new (n * sizeof(T), std::align_val_t{64}));
  }
  void deallocate(T *p, std::size_t) { ::operator delete (p, std::align_val_t{64}); }
  bool operator==(const CacheLineAllocator &) const { return true; }
};

template <class T>
using Array = std::vector<T, CacheLineAllocator<T>>;

// Evenly distributed between the limits.
template <class T>
Array<T> uniform(std::size_t len, double low, double high, unsigned seed) {
  std::mt19937 random(seed);
  std::uniform_real_distribution<double> values(low, high);
  Array<T> out(len);
  for (T &v : out) v = static_cast<T>(values(random));
  return out;
}

// Of a std::unique_ptr to an object of a C interface.
template <auto release>
struct Releaser {
  template <class T>
  void operator()(T *object) const {
    release(object);
  }
};

}  // namespace orv::bench

#endif
