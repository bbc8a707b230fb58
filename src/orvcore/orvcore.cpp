#include "orvcore.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace {

constexpr std::size_t kAlignment = 64;

}

// A boundary within a larger block, which stands right before it: the C library takes three times as long to
// align a small block itself.
void *orvMalloc(std::size_t bytes) {
  if (bytes > SIZE_MAX - kAlignment) return nullptr;
  char *const block = static_cast<char *>(std::malloc(bytes + kAlignment));
  if (block == nullptr) return nullptr;
  char *const aligned = block + (kAlignment - reinterpret_cast<std::uintptr_t>(block) % kAlignment);
  std::memcpy(aligned - sizeof block, &block, sizeof block);
  return aligned;
}

void orvFree(void *aligned) {
  if (aligned == nullptr) return;
  char *block = nullptr;
  std::memcpy(&block, static_cast<char *>(aligned) - sizeof block, sizeof block);
  std::free(block);
}
