// Allocation wrappers: every block that the library takes comes through one of these.

#ifndef ORV_CORE_ALLOC_H
#define ORV_CORE_ALLOC_H

#include <cstddef>
#include <cstdint>

#include "orvcore.h"

namespace orv {

// A length below 1 gives null without asking for anything. The length is widened before it is multiplied, so
// the byte count cannot wrap. The block has whatever alignment orvMalloc gives; callers that want an aligned
// start ask for spare bytes and round up themselves.
template <class T>
inline T *allocate(std::int32_t len) {
  if (len < 1) return nullptr;
  return static_cast<T *>(orvMalloc(sizeof(T) * static_cast<std::size_t>(len)));
}

inline std::uint8_t *orvsMalloc_8u(std::int32_t len) { return allocate<std::uint8_t>(len); }
inline std::int16_t *orvsMalloc_16s(std::int32_t len) { return allocate<std::int16_t>(len); }
inline std::int32_t *orvsMalloc_32s(std::int32_t len) { return allocate<std::int32_t>(len); }
inline float *orvsMalloc_32f(std::int32_t len) { return allocate<float>(len); }
inline double *orvsMalloc_64f(std::int32_t len) { return allocate<double>(len); }

inline void orvsFree(void *block) { orvFree(block); }

// For blocks whose size is computed in 64 bits: a size that a 32-bit length cannot express is an allocation
// that fails.
inline std::uint8_t *allocateBytes(std::int64_t bytes) {
  return bytes > INT32_MAX ? nullptr : orvsMalloc_8u(static_cast<std::int32_t>(bytes));
}

// Working memory of one call, released when it goes out of scope.
template <class T>
class WorkArray {
 public:
  explicit WorkArray(std::int32_t len) : data_(allocate<T>(len)) {}
  ~WorkArray() {
    if (data_ != nullptr) orvsFree(data_);
  }
  WorkArray(const WorkArray &) = delete;
  WorkArray &operator=(const WorkArray &) = delete;

  T *get() const { return data_; }
  explicit operator bool() const { return data_ != nullptr; }

 private:
  T *data_;
};

// Working memory of one call that lies on the stack up to a bound which the family states, and is allocated
// beyond it.
template <class T, std::int32_t stackLen>
class StackArray {
 public:
  StackArray(std::int64_t len, bool onStack)
      : heap_(onStack           ? 0
              : len > INT32_MAX ? 0
                                : static_cast<std::int32_t>(len)),
        onStack_(onStack) {}
  explicit StackArray(std::int64_t len) : StackArray(len, len <= stackLen) {}

  T *get() { return onStack_ ? local_ : heap_.get(); }
  explicit operator bool() const { return onStack_ || static_cast<bool>(heap_); }

 private:
  WorkArray<T> heap_;
  bool onStack_;
  T local_[static_cast<std::size_t>(stackLen)];
};

}  // namespace orv

#endif
