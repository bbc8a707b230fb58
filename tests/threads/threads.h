// Two threads that make the same calls on shared arguments, each into outputs of its own.

#ifndef ORV_TESTS_THREADS_THREADS_H
#define ORV_TESTS_THREADS_THREADS_H

#include <gtest/gtest.h>

#include <thread>

namespace orv::test {

// f() returns the outputs of its calls. Both threads must get what one alone gets; that neither writes what
// the other reads is for the thread sanitizer to see.
template <class F>
void expectSameInTwoThreads(F &&f) {
  const auto alone = f();
  const auto work = [&] {
    for (int n = 0; n < 20; ++n) EXPECT_EQ(f(), alone);
  };
  std::thread other(work);
  work();
  other.join();
}

}  // namespace orv::test

#endif
