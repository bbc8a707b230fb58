#include "orvcore.h"

#include <cstdlib>

namespace {
constexpr std::size_t kAlignment = 64;
}

void *orvMalloc(std::size_t bytes) {
  void *block = nullptr;
  return posix_memalign(&block, kAlignment, bytes) == 0 ? block : nullptr;
}

void orvFree(void *block) { std::free(block); }
