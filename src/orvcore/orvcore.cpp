#include "orvcore.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>

#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/asan_interface.h>
#else
#define ASAN_POISON_MEMORY_REGION(address, bytes) static_cast<void>(0)
#define ASAN_UNPOISON_MEMORY_REGION(address, bytes) static_cast<void>(0)
#endif

namespace {

constexpr std::size_t kAlignment = 64;

}  // namespace

// A boundary within a larger block, whose address stands right before it: the C library takes three times as
// long to align a small block itself. What of the larger block lies outside this one is poisoned where
// somebody looks.
void *orvMalloc(std::size_t bytes) {
  if (bytes > SIZE_MAX - kAlignment) return nullptr;
  char *const block = static_cast<char *>(std::malloc(bytes + kAlignment));
  if (block == nullptr) return nullptr;
  char *const aligned = block + (kAlignment - reinterpret_cast<std::uintptr_t>(block) % kAlignment);
  std::memcpy(aligned - sizeof block, &block, sizeof block);
  ASAN_POISON_MEMORY_REGION(block, static_cast<std::size_t>(aligned - block));
  ASAN_POISON_MEMORY_REGION(aligned + bytes, kAlignment - static_cast<std::size_t>(aligned - block));
  return aligned;
}

void orvFree(void *aligned) {
  if (aligned == nullptr) return;
  char *block = nullptr;
  ASAN_UNPOISON_MEMORY_REGION(static_cast<char *>(aligned) - sizeof block, sizeof block);
  std::memcpy(&block, static_cast<char *>(aligned) - sizeof block, sizeof block);
  std::free(block);
}
