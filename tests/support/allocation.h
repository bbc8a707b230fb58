// The allocator of every test program: it counts, poisons, misaligns and fails.

#ifndef ORV_TESTS_SUPPORT_ALLOCATION_H
#define ORV_TESTS_SUPPORT_ALLOCATION_H

#include <cstddef>
#include <vector>

namespace orv::test {

// Watches the allocations between its construction and its end. One at a time.
class Allocations {
 public:
  Allocations();
  // Fails the test if a block taken meanwhile is still held, unless expectLeak() was called.
  ~Allocations();
  Allocations(const Allocations &) = delete;
  Allocations &operator=(const Allocations &) = delete;

  // The call with this number (0 is the next) returns null; -1 lets all succeed.
  void failAt(int call);
  // Blocks start at this alignment and no better one (8, 16, 32 or 64; 64 at first).
  void alignTo(std::size_t bytes);

  int calls() const;                      // of orvMalloc, failed ones included
  int held() const;                       // blocks not yet released
  std::vector<std::size_t> sizes() const; // bytes asked for, call by call
  // Releases what is still held and lets the test pass: for the few calls that are meant to keep a block.
  void expectLeak(int blocks);
};

// Calls f(allocations) with the first, second, ... allocation failing until one run makes no failing call, and
// checks that nothing is held after each. Returns how many failing runs there were.
template <class F>
int failEachAllocation(F &&f) {
  for (int n = 0;; ++n) {
    Allocations allocations;
    allocations.failAt(n);
    f(n);
    if (allocations.calls() <= n) return n;
  }
}

}  // namespace orv::test

#endif
