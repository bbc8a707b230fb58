// The all-integer mel bank: orvsMelFBankGetSize_32s, orvsMelFBankInit_32s, orvsEvalFBank_32s_Sfs.
//
// Its bands are those of a 32f bank with bin weights: the same centres, from the same arithmetic, and weights
// in Q30. A product with a 32-bit sample has 61 bits; the shift by 8 makes room for the sum of thousands of
// them, and leaves the 22 fractional bits that evaluation rounds off.

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "core/integer.h"
#include "frontend/fbank.h"
#include "frontend/fbank_design.h"
#include "orvsr/robust.h"
#include "primitives/memory.h"

struct OrvsFBankState_32s {
  std::int32_t *centers;       // bin numbers, numFilters + 2 of them
  std::int32_t **leftCoeffs;   // [i - 1][j]: weight of bin centers[i - 1] + j in band i
  std::int32_t **rightCoeffs;  // [i - 1][j]: weight of bin centers[i] + 1 + j in band i
  std::int32_t mode;
  std::int32_t numFilters;
  std::int32_t numBins;  // of a spectrum: half the FFT length, plus 1
};

namespace orv {
namespace {

using fbank::alignUp;
using fbank::bankIn;
using fbank::Shape;

constexpr int kProductShift = 8;
constexpr int kFractionBits = 22;
constexpr int kWeightBits = kProductShift + kFractionBits;

// The mel constants. Their limits are the powers of two next to the usual M = 2595 and D = 700.
constexpr float kMelUnit = 1.0F / (1 << 18);
constexpr std::int32_t kLeastMel = (2 << 18) + 1;
constexpr std::int32_t kEndOfMelMul = 4096 << 18;
constexpr std::int32_t kEndOfMelDiv = 1024 << 18;

bool isFftLen(std::int32_t fftLen) { return fftLen >= 32 && fftLen <= 8192; }

// Both row blocks have room for rows of `half` weights on 32-byte boundaries. The rows lie end to end in it.
std::int64_t reportedBytes(const Shape &shape) {
  const std::int64_t n = shape.filters;
  const std::int64_t rows = (n + 2) * shape.half() * 4;
  const std::int64_t pointers = (5 * n + 10) * 8;
  return (4 * n + 112) + 2 * (pointers + rows + 32);
}

std::int32_t weight(std::int64_t numerator, std::int64_t denominator) {
  return static_cast<std::int32_t>(((numerator << kWeightBits) + denominator / 2) / denominator);
}

// The 32f bank's centres; frequencies above half the sample rate, which that one refuses, count as the last
// bin. The scratch holds two singles for each centre.
void setCenters(OrvsFBankState_32s &bank, const fbank::Scale &scale, std::int32_t lowFreq,
                std::int32_t highFreq, float *scratch) {
  const std::int32_t edges = bank.numFilters + 2;
  const fbank::Scratch arrays{scratch, scratch + edges};
  fbank::melSteps(scale, static_cast<float>(lowFreq), static_cast<float>(highFreq), edges - 1, edges, arrays);
  fbank::roundToCenters(arrays.bins, bank);
  for (std::int32_t i = 0; i < edges; ++i)
    bank.centers[i] = std::clamp(bank.centers[i], i > 0 ? bank.centers[i - 1] : 0, bank.numBins - 1);
}

// A row of count weights for each band, lain out behind the pointers to them; value(i, j) is weight j of band
// i. Returns the end of the rows.
template <class Count, class Value>
std::int32_t *setRows(std::int32_t **pointers, std::int32_t n, Count count, Value value) {
  auto *row = reinterpret_cast<std::int32_t *>(pointers + n);
  for (std::int32_t i = 1; i <= n; ++i) {
    pointers[i - 1] = row;
    for (std::int32_t j = 0; j < count(i); ++j) *row++ = value(i, j);
  }
  return row;
}

std::int64_t weightedSum(const std::int32_t *weights, const std::int32_t *src, std::int32_t from,
                         std::int32_t last) {
  std::int64_t sum = 0;
  for (std::int32_t k = from; k <= last; ++k)
    sum = addWrap64(sum, (std::int64_t{weights[k - from]} * load(src + k)) >> kProductShift);
  return sum;
}

}  // namespace
}  // namespace orv

using namespace orv;

OrvStatus orvsMelFBankGetSize_32s(int32_t fftLen, int32_t nFilter, int32_t flags, int32_t *pSize) {
  if (pSize == nullptr) return orvStsNullPtrErr;
  if (nFilter < 1 || !isFftLen(fftLen)) return orvStsSizeErr;
  if (flags != orvFBankBinWeights) return orvStsFBankFlagErr;
  const Shape shape(fftLen, nFilter, flags);
  if (nFilter > shape.half()) return orvStsSizeErr;
  store(pSize, static_cast<std::int32_t>(reportedBytes(shape)));
  return orvStsNoErr;
}

OrvStatus orvsMelFBankInit_32s(OrvsFBankState_32s *pFBank, int32_t *pFFTOrder, int32_t fftLen,
                               int32_t sampleRate, int32_t lowFreq, int32_t highFreq, int32_t nFilter,
                               int32_t melMul, int32_t melDiv, int32_t flags) {
  if (pFBank == nullptr || pFFTOrder == nullptr) return orvStsNullPtrErr;
  if (nFilter < 1 || highFreq < 1 || !isFftLen(fftLen)) return orvStsSizeErr;
  if (flags != orvFBankBinWeights) return orvStsFBankFlagErr;
  if (sampleRate < 1 || sampleRate > 48000 || lowFreq < 0) return orvStsSizeErr;
  if (highFreq <= lowFreq || highFreq > 24000) return orvStsFBankFreqErr;
  if (melDiv < kLeastMel || melDiv >= kEndOfMelDiv || melMul < kLeastMel || melMul >= kEndOfMelMul)
    return orvStsBadArgErr;
  const Shape shape(fftLen, nFilter, flags);
  store(pFFTOrder, shape.order);
  // One band more than the size query takes: hosts that size their buffers themselves rely on it.
  if (nFilter > shape.half() + 1) return orvStsSizeErr;

  OrvsFBankState_32s &bank = *bankIn(pFBank);
  bank.mode = flags;
  bank.numFilters = nFilter;
  bank.numBins = static_cast<std::int32_t>(shape.half()) + 1;
  bank.centers = reinterpret_cast<std::int32_t *>(&bank + 1);
  const std::int32_t *c = bank.centers;
  bank.leftCoeffs = alignUp(reinterpret_cast<std::int32_t **>(bank.centers + nFilter + 2));
  const fbank::Scale scale{fbank::whole(shape.fftLen), static_cast<float>(sampleRate),
                           static_cast<float>(melMul) * kMelUnit, static_cast<float>(melDiv) * kMelUnit};
  setCenters(bank, scale, lowFreq, highFreq, reinterpret_cast<float *>(bank.leftCoeffs));
  std::int32_t *end = setRows(
      bank.leftCoeffs, nFilter, [c](std::int32_t i) { return c[i] - c[i - 1] + 1; },
      [c](std::int32_t i, std::int32_t j) { return weight(j + 1, c[i] - c[i - 1] + 1); });
  bank.rightCoeffs = alignUp(reinterpret_cast<std::int32_t **>(end));
  setRows(
      bank.rightCoeffs, nFilter, [c](std::int32_t i) { return c[i + 1] - c[i]; },
      [c](std::int32_t i, std::int32_t j) { return weight(c[i + 1] - c[i] - j, c[i + 1] - c[i] + 1); });
  return orvStsNoErr;
}

OrvStatus orvsEvalFBank_32s_Sfs(const int32_t *pSrc, int32_t *pDst, const OrvsFBankState_32s *pFBank,
                                int32_t scaleFactor) {
  if (pSrc == nullptr || pDst == nullptr || pFBank == nullptr) return orvStsNullPtrErr;
  if (scaleFactor < -31 || scaleFactor > 31) return orvStsBadArgErr;
  const OrvsFBankState_32s &bank = *bankIn(pFBank);
  const std::int32_t *c = bank.centers;
  for (std::int32_t i = 1; i <= bank.numFilters; ++i) {
    const std::int64_t rising = weightedSum(bank.leftCoeffs[i - 1], pSrc, c[i - 1], c[i]);
    const std::int64_t falling = weightedSum(bank.rightCoeffs[i - 1], pSrc, c[i] + 1, c[i + 1]);
    const std::int64_t v = shiftSum(addWrap64(rising, falling), scaleFactor);
    const std::int64_t energy = (v >> kFractionBits) + ((v >> (kFractionBits - 1)) & 1);
    // Energies are not negative, and only the upper limit is kept: what lies below 32 bits wraps.
    store(pDst + i - 1, wrap32(std::min<std::int64_t>(energy, INT32_MAX)));
  }
  return orvStsNoErr;
}
