#include "support/allocation.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <mutex>
#include <unordered_map>

#include "orvcore.h"

namespace {

struct Log {
  std::mutex lock;
  bool watching = false;
  int calls = 0;
  int failAt = -1;
  std::size_t alignment = 64;
  std::vector<std::size_t> sizes;
  std::unordered_map<void *, void *> held;  // block to what was allocated for it
};

Log &theLog() {
  static Log log;
  return log;
}

}  // namespace

extern "C" void *orvMalloc(std::size_t bytes) {
  Log &log = theLog();
  const std::lock_guard<std::mutex> guard(log.lock);
  if (log.watching) {
    const int call = log.calls++;
    log.sizes.push_back(bytes);
    if (call == log.failAt) return nullptr;
  }
  // A block ends where its memory ends, so that an overrun is seen; it starts at the alignment asked for and no
  // better one.
  const std::size_t shift = log.alignment < 64 ? log.alignment : 0;
  if (bytes > SIZE_MAX / 2) return nullptr;
  void *memory = nullptr;
  if (posix_memalign(&memory, 64, bytes + shift + (bytes + shift == 0)) != 0) return nullptr;
  void *block = static_cast<char *>(memory) + shift;
  std::memset(block, 0xA5, bytes < 1 << 20 ? bytes : 1 << 20);
  log.held[block] = memory;
  return block;
}

extern "C" void orvFree(void *block) {
  if (block == nullptr) return;
  Log &log = theLog();
  const std::lock_guard<std::mutex> guard(log.lock);
  const auto found = log.held.find(block);
  if (found == log.held.end()) {
    ADD_FAILURE() << "a pointer was released that is no block, or was released twice";
    return;
  }
  std::free(found->second);
  log.held.erase(found);
}

namespace orv::test {

namespace {
std::size_t heldAtStart = 0;
}

Allocations::Allocations() {
  Log &log = theLog();
  const std::lock_guard<std::mutex> guard(log.lock);
  log.watching = true;
  log.calls = 0;
  log.failAt = -1;
  log.alignment = 64;
  log.sizes.clear();
  heldAtStart = log.held.size();
}

Allocations::~Allocations() {
  EXPECT_EQ(held(), 0) << "blocks were not released";
  Log &log = theLog();
  const std::lock_guard<std::mutex> guard(log.lock);
  log.watching = false;
  log.alignment = 64;
}

void Allocations::failAt(int call) {
  Log &log = theLog();
  const std::lock_guard<std::mutex> guard(log.lock);
  log.failAt = call < 0 ? -1 : log.calls + call;
}

void Allocations::alignTo(std::size_t bytes) {
  Log &log = theLog();
  const std::lock_guard<std::mutex> guard(log.lock);
  log.alignment = bytes;
}

int Allocations::calls() const {
  Log &log = theLog();
  const std::lock_guard<std::mutex> guard(log.lock);
  return log.calls;
}

int Allocations::held() const {
  Log &log = theLog();
  const std::lock_guard<std::mutex> guard(log.lock);
  return static_cast<int>(log.held.size()) - static_cast<int>(heldAtStart);
}

std::vector<std::size_t> Allocations::sizes() const {
  Log &log = theLog();
  const std::lock_guard<std::mutex> guard(log.lock);
  return log.sizes;
}

void Allocations::expectLeak(int blocks) {
  EXPECT_EQ(held(), blocks);
  Log &log = theLog();
  const std::lock_guard<std::mutex> guard(log.lock);
  for (const auto &[block, memory] : log.held) std::free(memory);
  log.held.clear();
  heldAtStart = 0;
}

}  // namespace orv::test
