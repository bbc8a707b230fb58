// How a filter bank is laid out, allocated and released.

#ifndef ORV_FRONTEND_FBANK_MEMORY_H
#define ORV_FRONTEND_FBANK_MEMORY_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "core/alloc.h"
#include "frontend/fbank.h"
#include "frontend/fbank_design.h"
#include "primitives/memory.h"

namespace orv::fbank {

// --- the FFT of each kind of bank

template <class State>
struct Fft;

template <>
struct Fft<OrvsFBankState_32f> {
  static constexpr auto getSize = orvsFFTGetSize_R_32f;
  static constexpr auto init = orvsFFTInit_R_32f;
  static constexpr auto initAlloc = orvsFFTInitAlloc_R_32f;
  static constexpr auto release = orvsFFTFree_R_32f;
};

template <>
struct Fft<OrvsFBankState_16s> {
  static constexpr auto getSize = orvsFFTGetSize_R_16s32s;
  static constexpr auto init = orvsFFTInit_R_16s32s;
  static constexpr auto initAlloc = orvsFFTInitAlloc_R_16s32s;
  static constexpr auto release = orvsFFTFree_R_16s32s;
};

constexpr std::int32_t kFftFlag = kFftNoDivision;
constexpr std::int32_t kFftHint = 0;

struct FftSizes {
  std::int32_t spec = 0, init = 0, work = 0;
};

// All zero where no such FFT exists.
template <class State>
FftSizes fftSizes(const Shape &shape) {
  FftSizes sizes;
  if (!shape.ownsFft || Fft<State>::getSize(shape.order, kFftFlag, kFftHint, &sizes.spec, &sizes.init,
                                            &sizes.work) != orvStsNoErr)
    return {};
  return sizes;
}

// --- sizes

constexpr std::int64_t kTooLarge = std::int64_t{1} << 40;

constexpr std::int64_t rowStride(std::int64_t width) { return (width + 7) / 8 * 8; }

// The row pointers, then the rows from the next 32-byte boundary.
inline std::int64_t rowBlockBytes(std::int64_t rows, std::int64_t width) {
  const std::int64_t elements = rowStride(width) * rows;  // below 2^61
  return std::min(elements, kTooLarge) * 4 + 7 * 4 + rows * 8;
}
inline std::int64_t leftBlockBytes(const Shape &s) { return rowBlockBytes(s.rows(), s.half() + kLeftMove); }
inline std::int64_t rightBlockBytes(const Shape &s) { return rowBlockBytes(s.rows(), s.half()); }

// What GetSize reports; above INT32_MAX for a bank that no buffer can hold.
template <class State>
std::int64_t reportedBytes(const Shape &shape) {
  std::int64_t bytes = State::reportedBytes + (shape.edges() + 1) * 4 + 32 + shape.edges() * 4 + 32 +
                       leftBlockBytes(shape) + 32 + rightBlockBytes(shape) + 32 + shape.edges() * 4 + 32;
  if (shape.ownsFft) {
    const FftSizes fft = fftSizes<State>(shape);
    bytes += std::int64_t{fft.spec} + fft.init + fft.work + 96 + (shape.fftLen + 2) * 8 + 48;
  }
  return bytes;
}

template <class State>
OrvStatus reportSize(const Shape &shape, std::int32_t *pSize) {
  const std::int64_t bytes = reportedBytes<State>(shape);
  if (bytes > INT32_MAX) return orvStsSizeErr;
  store(pSize, static_cast<std::int32_t>(bytes));
  return orvStsNoErr;
}

// --- memory

template <class Weight>
Weight **setRows(void *block, std::int64_t rows, std::int64_t width, std::int32_t move) {
  auto **pointers = static_cast<Weight **>(block);
  Weight *row = alignUp(reinterpret_cast<Weight *>(pointers + rows));
  const std::int64_t stride = rowStride(width);
  ownsZero_8u(reinterpret_cast<std::uint8_t *>(row),
              static_cast<std::size_t>(rows * stride) * sizeof(Weight));
  for (std::int64_t r = 0; r < rows; ++r) pointers[r] = row + r * stride + move;
  return pointers;
}

template <class State>
void setUp(State &bank, const Shape &shape, void *centers, void *left, void *right) {
  using Weight = typename State::Weight;
  bank.centers = static_cast<std::int32_t *>(centers);
  std::fill_n(bank.centers, shape.edges() + 1, 0);
  bank.leftCoeffs = setRows<Weight>(left, shape.rows(), shape.half() + kLeftMove, kLeftMove);
  bank.rightCoeffs = setRows<Weight>(right, shape.rows(), shape.half(), 0);
  bank.fftLen = static_cast<std::int32_t>(shape.fftLen);
  bank.fftOrder = shape.order;
  bank.numFilters = shape.filters;
  bank.numLinear = shape.filters;
  if constexpr (requires { bank.coeffShift; }) bank.coeffShift = kWeightBits;
}

inline void freeIfHeld(void *block) {
  if (block != nullptr) orvsFree(block);
}

template <class State>
void freeBank(State *pFBank) {
  State &bank = *bankIn(pFBank);
  freeIfHeld(bank.centers);
  freeIfHeld(bank.leftCoeffs);
  freeIfHeld(bank.rightCoeffs);
  bank.centers = nullptr;
  bank.leftCoeffs = bank.rightCoeffs = nullptr;
  bank.ready = 0;
  freeIfHeld(bank.workBuf);
  freeIfHeld(bank.fftWork);
  if (bank.fftSpec != nullptr) Fft<State>::release(bank.fftSpec);
  bank.workBuf = nullptr;
  bank.fftWork = nullptr;
  bank.fftSpec = nullptr;
  orvsFree(pFBank);
}

template <class State>
OrvStatus discard(State **ppFBank) {
  freeBank(load(ppFBank));
  store(ppFBank, static_cast<State *>(nullptr));
  return orvStsMemAllocErr;
}

// A bank of blocks of its own. Where one of them cannot be had, everything is released and *ppFBank is null.
template <class State>
OrvStatus allocateBank(State **ppFBank, const Shape &shape) {
  auto *pFBank = reinterpret_cast<State *>(allocateBytes(sizeof(State) + kBankAlignment - 1));
  store(ppFBank, pFBank);
  if (pFBank == nullptr) return orvStsMemAllocErr;
  State &bank = *bankIn(pFBank);
  bank = State{};
  // What was taken is kept in the record at once, so that freeBank finds it.
  const auto take = [](auto *&kept, std::int64_t bytes) {
    std::uint8_t *block = allocateBytes(bytes);
    kept = reinterpret_cast<std::remove_reference_t<decltype(kept)>>(block);
    return block != nullptr;
  };
  if (!take(bank.centers, (shape.edges() + 1) * 4) || !take(bank.leftCoeffs, leftBlockBytes(shape)) ||
      !take(bank.rightCoeffs, rightBlockBytes(shape)))
    return discard(ppFBank);
  if (shape.ownsFft) {
    const std::int32_t workBytes = fftSizes<State>(shape).work;
    if (!take(bank.workBuf, shape.workLen() * 4) || (workBytes > 0 && !take(bank.fftWork, workBytes)))
      return discard(ppFBank);
    // A bank without its FFT is no failure here: it has centres and weights, and evaluation reports what is
    // missing.
    Fft<State>::initAlloc(&bank.fftSpec, shape.order, kFftFlag, kFftHint);
  }
  setUp(bank, shape, bank.centers, bank.leftCoeffs, bank.rightCoeffs);
  return orvStsNoErr;
}

// A buffer of the reported size, cut into parts that each start on a 32-byte boundary.
class Buffer {
 public:
  explicit Buffer(void *start) : next_(static_cast<std::uint8_t *>(start)) {}

  template <class T>
  T *take(std::int64_t bytes) {
    std::uint8_t *part = alignUp(next_);
    next_ = part + bytes;
    return reinterpret_cast<T *>(part);
  }

 private:
  std::uint8_t *next_;
};

template <class State>
Scratch layOutBank(State *pFBank, const Shape &shape) {
  Buffer buffer(pFBank);
  State &bank = *buffer.take<State>(sizeof(State));
  bank = State{};
  if (shape.ownsFft) {
    const FftSizes fft = fftSizes<State>(shape);
    auto *spec = buffer.take<std::uint8_t>(fft.spec);
    auto *init = buffer.take<std::uint8_t>(fft.init);
    bank.workBuf = buffer.take<typename State::Weight>(shape.workLen() * 4);
    bank.fftWork = buffer.take<std::uint8_t>(fft.work);
    Fft<State>::init(&bank.fftSpec, shape.order, kFftFlag, kFftHint, spec, init);  // as in allocateBank()
  }
  void *centers = buffer.take<void>((shape.edges() + 1) * 4);
  auto *steps = buffer.take<float>(shape.edges() * 4);
  void *left = buffer.take<void>(leftBlockBytes(shape));
  void *right = buffer.take<void>(rightBlockBytes(shape));
  auto *bins = buffer.take<float>(shape.edges() * 4);
  setUp(bank, shape, centers, left, right);
  return {steps, bins};
}

}  // namespace orv::fbank

#endif
