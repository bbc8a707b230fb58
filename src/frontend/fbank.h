// The state of a filter bank, and where its parts lie in memory.

#ifndef ORV_FRONTEND_FBANK_H
#define ORV_FRONTEND_FBANK_H

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "orvsr/types.h"
#include "primitives/fft/fft.h"

namespace orv::fbank {

// Integer weights are Q14.
constexpr std::int32_t kWeightBits = 14;
constexpr std::int32_t kWeightOne = 1 << kWeightBits;

// Weights and spectra have one type: single, or 32-bit integers.
template <class W, class Spec>
struct Fields {
  using Weight = W;
  using FftSpec = Spec;

  // Bin numbers. Band i, 1 to numFilters, rises from centers[i - 1] to centers[i] and falls to centers[i +
  // 1]. One entry more than that is held: coefficients may be asked for behind the last band.
  std::int32_t *centers;
  Weight **leftCoeffs;   // [i - 1][j]: weight of bin centers[i - 1] + j in band i
  Weight **rightCoeffs;  // [i - 1][j]: weight of bin centers[i] + 1 + j in band i
  std::int32_t mode;
  std::int32_t fftLen;
  std::int32_t fftOrder;
  std::int32_t numFilters;
  std::int32_t numLinear;
  float melMul;
  float melDiv;
  std::uint8_t ready;
  FftSpec *fftSpec;
  Weight *workBuf;  // the spectrum of a frame, then its magnitudes
};

}  // namespace orv::fbank

struct OrvsFBankState_32f : orv::fbank::Fields<float, orv::OrvRealFftState32f> {
  static constexpr std::int32_t reportedBytes = 104;
  std::uint8_t *fftWork;
};

struct OrvsFBankState_16s : orv::fbank::Fields<std::int32_t, orv::OrvRealFftState16s32s> {
  static constexpr std::int32_t reportedBytes = 112;
  std::int32_t coeffShift;
  std::uint8_t *fftWork;
};

namespace orv::fbank {

constexpr std::size_t kBankAlignment = 32;

// A record takes no more of a buffer than its share of the reported size, with what rounding up adds.
static_assert(sizeof(OrvsFBankState_32f) <= 96 && sizeof(OrvsFBankState_16s) <= 96);

template <class T>
inline T *alignUp(T *p) {
  const auto address = reinterpret_cast<std::uintptr_t>(p);
  return reinterpret_cast<T *>((address + kBankAlignment - 1) & ~std::uintptr_t{kBankAlignment - 1});
}

// A bank begins at the first 32-byte boundary of its memory, whoever provided that, so that nothing is asked
// of the alignment of a caller's buffer or of the allocator.
template <class State>
inline State *bankIn(State *pFBank) {
  return alignUp(pFBank);
}

// What decides the sizes of a bank. An fftLen argument above 2^30 has a power of two that no bank can store;
// such a shape exists only to be refused for its size.
struct Shape {
  Shape(std::int32_t fftLenArgument, std::int32_t numFilters, std::int32_t flags)
      : filters(numFilters), ownsFft((flags & orvFBankFromSamples) != 0) {
    while (fftLen < fftLenArgument) {
      fftLen *= 2;
      ++order;
    }
  }

  std::int64_t rows() const { return std::int64_t{filters} + 2; }
  std::int64_t edges() const { return rows(); }
  std::int64_t half() const { return fftLen / 2; }
  std::int64_t workLen() const { return 2 * fftLen + 20; }

  std::int64_t fftLen = 2;
  std::int32_t order = 1;
  std::int32_t filters;
  bool ownsFft;
};

// The stored pointers to left rows are moved by three elements, which puts element 1, the first that can be
// nonzero on the mel scale, on a 16-byte boundary.
constexpr std::int32_t kLeftMove = 3;

// Elements of a row that weigh some bin: a rising side reaches from bin 0 to bin fftLen / 2, a falling side
// starts one bin higher. Centres that a caller set, or that came of meaningless arguments, may be further
// apart than that, or not in order: every loop over a row stops where the row does.
template <class State>
inline std::int32_t risingLen(const State &bank, std::int64_t from, std::int64_t to) {
  const std::int64_t len = to - from + 1;
  return static_cast<std::int32_t>(std::clamp<std::int64_t>(len, 0, bank.fftLen / 2 + 1));
}
template <class State>
inline std::int32_t fallingLen(const State &bank, std::int64_t from, std::int64_t to) {
  const std::int64_t len = to - from;
  return static_cast<std::int32_t>(std::clamp<std::int64_t>(len, 0, bank.fftLen / 2));
}

}  // namespace orv::fbank

#endif
