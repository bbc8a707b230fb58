// Evaluation of filter banks, and access to their centres and weights.

#include <algorithm>
#include <cstring>

#include "core/integer.h"
#include "frontend/fbank.h"
#include "orvsr/frontend.h"
#include "primitives/arithmetic.h"
#include "primitives/memory.h"

namespace orv::fbank {
namespace {

// --- sums over the bands

// Both sides of a band are summed in single precision, the product rounded before it is added.
struct SingleSums {
  using Sum = float;
  static void add(Sum &sum, float w, float x) { sum += w * x; }
  static float finish(Sum rising, Sum falling) { return rising + falling; }
};

template <class Out>
struct WideSums {
  using Sum = std::int64_t;
  std::int64_t shift;
  static void add(Sum &sum, std::int32_t w, std::int64_t x) { sum = addWrap64(sum, w * x); }
  Out finish(Sum rising, Sum falling) const {
    return saturate<Out>(shiftSum(addWrap64(rising, falling), shift));
  }
};

// Only the low 32 bits of each product are added, so large spectra wrap. The 16-bit results of frames of
// samples have always been formed like this, the 32-bit ones never.
struct NarrowProductSums : WideSums<std::int16_t> {
  static void add(Sum &sum, std::int32_t w, std::int32_t x) { sum = addWrap64(sum, mulWrap32(w, x)); }
};

// The bins between two centres are the falling side of one band and the rising side of the next: both are
// summed side by side, as two chains that do not wait for each other, each in rising order of the bins. Bins
// outside the spectrum and weights outside their rows, which only meaningless centres ask for, are left out.
template <class Sums, class State, class Sample, class Out>
void sumBands(const Sums &sums, const State &bank, const Sample *spectrum, Out *dst) {
  const std::int64_t half = bank.fftLen / 2;
  typename Sums::Sum rising{};
  for (std::int32_t i = 0; i <= bank.numFilters; ++i) {
    const std::int64_t from = bank.centers[i];
    const std::int64_t last = std::min<std::int64_t>({bank.centers[i + 1], half, from + half});
    const auto *left = bank.leftCoeffs[i];                     // of band i + 1
    const auto *right = bank.rightCoeffs[std::max(i - 1, 0)];  // of band i; there is none before the first
    typename Sums::Sum falling{}, nextRising{};
    if (from >= 0 && from <= last) Sums::add(nextRising, left[0], load(spectrum + from));
    for (std::int64_t k = std::max<std::int64_t>(from + 1, 0); k <= last; ++k) {
      const Sample x = load(spectrum + k);
      Sums::add(nextRising, left[k - from], x);
      Sums::add(falling, right[k - from - 1], x);
    }
    if (i > 0) store(dst + i - 1, sums.finish(rising, falling));
    rising = nextRising;
  }
}

// --- spectra of frames

template <class State>
bool takesSamples(const State &bank) {
  return (bank.mode & orvFBankFromSamples) != 0;
}

// The magnitudes stand behind the spectrum, from the next 16-byte boundary.
template <class Weight>
Weight *magnitudesIn(Weight *workBuf, std::int32_t fftLen) {
  const auto address = reinterpret_cast<std::uintptr_t>(workBuf + fftLen + 2);
  return reinterpret_cast<Weight *>((address + 15) & ~std::uintptr_t{15});
}

// The magnitude spectrum of a frame, in the bank's own memory.
OrvStatus magnitudes(const float *frame, const OrvsFBankState_32f &bank, const float *&spectrum) {
  if (const OrvStatus status = orvsFFTFwd_RToCCS_32f(frame, bank.workBuf, bank.fftSpec, bank.fftWork);
      status != orvStsNoErr)
    return status;
  float *out = magnitudesIn(bank.workBuf, bank.fftLen);
  spectrum = out;
  return orvsMagnitude_32fc(reinterpret_cast<const Complex32f *>(bank.workBuf), out, bank.fftLen / 2 + 1);
}

// Transform and magnitude each enlarge by 2^3.
constexpr std::int32_t kSpectrumScale = -3;
constexpr std::int32_t kSpectrumBits = 6;

OrvStatus magnitudes(const std::int16_t *frame, const OrvsFBankState_16s &bank,
                     const std::int32_t *&spectrum) {
  if (const OrvStatus status =
          orvsFFTFwd_RToCCS_16s32s_Sfs(frame, bank.workBuf, bank.fftSpec, kSpectrumScale, bank.fftWork);
      status != orvStsNoErr)
    return status;
  std::int32_t *out = magnitudesIn(bank.workBuf, bank.fftLen);
  spectrum = out;
  return orvsMagnitude_32sc_Sfs(reinterpret_cast<const Complex32s *>(bank.workBuf), out, bank.fftLen / 2 + 1,
                                kSpectrumScale);
}

template <class State>
OrvStatus checkReady(const State *pFBank, const void *pSrc, const void *pDst) {
  if (pSrc == nullptr || pDst == nullptr || pFBank == nullptr) return orvStsNullPtrErr;
  const State &bank = *bankIn(pFBank);
  if (bank.centers == nullptr) return orvStsNullPtrErr;
  return bank.ready != 0 ? orvStsNoErr : orvStsFBankErr;
}

// FrameSums is the form of the sums over the spectra of frames of samples.
template <class FrameSums, class Out>
OrvStatus evaluateIntegers(const std::int16_t *pSrc, Out *pDst, const OrvsFBankState_16s *pFBank,
                           std::int32_t scaleFactor) {
  if (const OrvStatus status = checkReady(pFBank, pSrc, pDst); status != orvStsNoErr) return status;
  const OrvsFBankState_16s &bank = *bankIn(pFBank);
  const std::int64_t shift = std::int64_t{bank.coeffShift} + scaleFactor;
  if (!takesSamples(bank)) {
    sumBands(WideSums<Out>{shift}, bank, pSrc, pDst);
    return orvStsNoErr;
  }
  const std::int32_t *spectrum = nullptr;
  if (const OrvStatus status = magnitudes(pSrc, bank, spectrum); status != orvStsNoErr) return status;
  sumBands(FrameSums{{shift + kSpectrumBits}}, bank, spectrum, pDst);
  return orvStsNoErr;
}

// --- centres and weights

// The last pair is never compared: the last band may fall at once, or not at all.
bool areCentersInOrder(const std::int32_t *c, std::int32_t numFilters, std::int32_t fftLen) {
  if (load(c) < 0) return false;
  for (std::int32_t i = 1; i < numFilters; ++i)
    if (load(c + i - 1) > load(c + i) || load(c + i) > load(c + i + 1)) return false;
  return load(c + numFilters + 1) <= fftLen / 2;
}

template <class State>
OrvStatus getCenters(const State *pFBank, std::int32_t *pCenters) {
  if (pCenters == nullptr || pFBank == nullptr) return orvStsNullPtrErr;
  const State &bank = *bankIn(pFBank);
  if (bank.ready == 0 || !areCentersInOrder(bank.centers, bank.numFilters, bank.fftLen))
    return orvStsFBankErr;
  return orvsCopy_32s(bank.centers, pCenters, bank.numFilters + 2);
}

template <class State>
OrvStatus setCenters(State *pFBank, const std::int32_t *pCenters) {
  if (pCenters == nullptr || pFBank == nullptr) return orvStsNullPtrErr;
  State &bank = *bankIn(pFBank);
  if (!areCentersInOrder(pCenters, bank.numFilters, bank.fftLen)) return orvStsFBankErr;
  bank.ready = 1;
  return orvsCopy_32s(pCenters, bank.centers, bank.numFilters + 2);
}

// Calls f(weight, i) for each weight of a band, i being its place in the caller's array: the rising side, and
// the falling side behind it.
template <class State, class Function>
void forEachWeight(const State &bank, std::int32_t index, Function f) {
  const std::int32_t *c = bank.centers + index;
  const std::int32_t rising = risingLen(bank, c[-1], c[0]);
  const std::int32_t falling = fallingLen(bank, c[0], c[1]);
  for (std::int32_t j = 0; j < rising; ++j) f(bank.leftCoeffs[index - 1][j], j);
  for (std::int32_t j = 0; j < falling; ++j) f(bank.rightCoeffs[index - 1][j], rising + j);
}

float toSingle(float w) { return w; }
float toSingle(std::int32_t w) { return static_cast<float>(static_cast<double>(w) * (1.0 / kWeightOne)); }

void fromSingle(float v, float &w) { w = v; }
// Beyond 32 bits the weight sticks at the limits, but +2^31 is no 32-bit number: it is stored as the bit
// pattern of the most negative one, and so is a NaN.
void fromSingle(float v, std::int32_t &w) {
  constexpr float limit = 2147483648.0F;
  float scaled = v * static_cast<float>(kWeightOne);
  if (scaled > limit) scaled = limit;
  if (scaled < -limit) scaled = -limit;
  w = truncate32(static_cast<double>(scaled));
}

template <class State>
OrvStatus checkIndex(const State *pFBank, const float *pCoeffs, std::int32_t index, std::int32_t behindLast) {
  if (pCoeffs == nullptr || pFBank == nullptr) return orvStsNullPtrErr;
  const State &bank = *bankIn(pFBank);
  if (bank.ready == 0) return orvStsFBankErr;
  if (index < 1 || index > bank.numFilters + behindLast) return orvStsSizeErr;
  return orvStsNoErr;
}

// Reading admits one band more than writing: hosts read the row behind the last band of the fixed banks.
template <class State>
OrvStatus getCoeffs(const State *pFBank, std::int32_t index, float *pCoeffs) {
  if (const OrvStatus status = checkIndex(pFBank, pCoeffs, index, 1); status != orvStsNoErr) return status;
  forEachWeight(*bankIn(pFBank), index, [&](auto w, std::int32_t i) { store(pCoeffs + i, toSingle(w)); });
  return orvStsNoErr;
}

template <class State>
OrvStatus setCoeffs(State *pFBank, std::int32_t index, const float *pCoeffs) {
  if (const OrvStatus status = checkIndex(pFBank, pCoeffs, index, 0); status != orvStsNoErr) return status;
  forEachWeight(*bankIn(pFBank), index, [&](auto &w, std::int32_t i) { fromSingle(load(pCoeffs + i), w); });
  return orvStsNoErr;
}

}  // namespace
}  // namespace orv::fbank

using namespace orv::fbank;

OrvStatus orvsEvalFBank_32f(const float *pSrc, float *pDst, OrvsFBankState_32f *pFBank) {
  if (const OrvStatus status = checkReady(pFBank, pSrc, pDst); status != orvStsNoErr) return status;
  const OrvsFBankState_32f &bank = *bankIn(pFBank);
  const float *spectrum = pSrc;
  if (takesSamples(bank))
    if (const OrvStatus status = magnitudes(pSrc, bank, spectrum); status != orvStsNoErr) return status;
  sumBands(SingleSums(), bank, spectrum, pDst);
  return orvStsNoErr;
}

OrvStatus orvsEvalFBank_16s_Sfs(const int16_t *pSrc, int16_t *pDst, OrvsFBankState_16s *pFBank,
                                int32_t scaleFactor) {
  return evaluateIntegers<NarrowProductSums>(pSrc, pDst, pFBank, scaleFactor);
}

OrvStatus orvsEvalFBank_16s32s_Sfs(const int16_t *pSrc, int32_t *pDst, OrvsFBankState_16s *pFBank,
                                   int32_t scaleFactor) {
  return evaluateIntegers<WideSums<std::int32_t>>(pSrc, pDst, pFBank, scaleFactor);
}

OrvStatus orvsFBankGetCenters_32f(const OrvsFBankState_32f *pFBank, int32_t *pCenters) {
  return getCenters(pFBank, pCenters);
}
OrvStatus orvsFBankGetCenters_16s(const OrvsFBankState_16s *pFBank, int32_t *pCenters) {
  return getCenters(pFBank, pCenters);
}

OrvStatus orvsFBankSetCenters_32f(OrvsFBankState_32f *pFBank, const int32_t *pCenters) {
  return setCenters(pFBank, pCenters);
}
OrvStatus orvsFBankSetCenters_16s(OrvsFBankState_16s *pFBank, const int32_t *pCenters) {
  return setCenters(pFBank, pCenters);
}

OrvStatus orvsFBankGetCoeffs_32f(const OrvsFBankState_32f *pFBank, int32_t index, float *pCoeffs) {
  return getCoeffs(pFBank, index, pCoeffs);
}
OrvStatus orvsFBankGetCoeffs_16s(const OrvsFBankState_16s *pFBank, int32_t index, float *pCoeffs) {
  return getCoeffs(pFBank, index, pCoeffs);
}

OrvStatus orvsFBankSetCoeffs_32f(OrvsFBankState_32f *pFBank, int32_t index, const float *pCoeffs) {
  return setCoeffs(pFBank, index, pCoeffs);
}
OrvStatus orvsFBankSetCoeffs_16s(OrvsFBankState_16s *pFBank, int32_t index, const float *pCoeffs) {
  return setCoeffs(pFBank, index, pCoeffs);
}
