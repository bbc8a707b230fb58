// orvsHighBandCoding_Aurora_*: the energies of the high band, expressed by their distance from those of the
// low one.

#include <cmath>
#include <cstdint>

#include "core/integer.h"
#include "orvsr/robust.h"
#include "primitives/arithmetic.h"
#include "primitives/memory.h"
#include "primitives/reduce.h"

namespace orv {
namespace {

constexpr int kBands = 3;

struct Run {
  std::int32_t first, count;
};
constexpr Run kLowRuns[kBands] = {{33, 6}, {39, 10}, {49, 16}};
// Positions 77 and 97 belong to no run. This is meant.
constexpr Run kHighRuns[kBands] = {{66, 11}, {78, 19}, {98, 31}};

OrvStatus check(const void *pLow, const void *pBins, const void *pHigh, const void *pDst) {
  if (pLow == nullptr || pBins == nullptr || pHigh == nullptr || pDst == nullptr) return orvStsNullPtrErr;
  return orvStsNoErr;
}

// ln v, but -10 from exp(-10) down, and for a NaN. The comparison is made in double.
float flooredLog(float v) {
  const auto wide = static_cast<double>(v);
  return wide > 4.5399929762484854e-05 ? static_cast<float>(std::log(wide)) : -10.0F;
}

// The two short sums are added in single in the order of the bins, the long one in double as any other.
float lowSum(const float *bins, const Run &run) {
  float sum = 0.0F;
  if (run.count > 10) {
    orvsSum_32f(bins + run.first, run.count, &sum);
  } else {
    sum = load(bins + run.first);
    for (std::int32_t i = 1; i < run.count; ++i) sum += load(bins + run.first + i);
  }
  return sum;
}

constexpr std::int32_t kFloorQ7 = -1280;
constexpr std::int32_t kLogOf4Q7 = 177;

// The logarithm of an integer in Q7; `added` only where it is not floored.
std::int32_t flooredLogQ7(std::int32_t v, std::int32_t added = 0) {
  if (v <= 0) return kFloorQ7;
  orvsLn_32s_ISfs(&v, 1, -7);
  return v + added;
}

std::int32_t logOfSumQ7(const std::int32_t *src, const Run &run, std::int32_t scaleFactor,
                        std::int32_t added) {
  std::int32_t sum = 0;
  orvsSum_32s_Sfs(src + run.first, run.count, &sum, scaleFactor);
  return flooredLogQ7(sum, added);
}

}  // namespace
}  // namespace orv

using namespace orv;

OrvStatus orvsHighBandCoding_Aurora_32f(const float *pLow, const float *pBins, const float *pHigh,
                                        float *pDst) {
  if (const OrvStatus status = check(pLow, pBins, pHigh, pDst); status != orvStsNoErr) return status;
  float low[kBands], bins[kBands], high[kBands];
  for (int j = 0; j < kBands; ++j) {
    low[j] = flooredLog(load(pLow + j));
    bins[j] = flooredLog(lowSum(pBins, kLowRuns[j]));
    float sum = 0.0F;
    orvsSum_32f(pHigh + kHighRuns[j].first, kHighRuns[j].count, &sum);
    high[j] = flooredLog(0.5F * sum);
  }
  for (int j = 0; j < kBands; ++j)
    store(pDst + j, 0.1F * (high[0] - (bins[0] - low[j])) + 0.2F * (high[1] - (bins[1] - low[j])) +
                        0.7F * (high[2] - (bins[2] - low[j])));
  return orvStsNoErr;
}

// Logarithms in Q7 and weights in Q10. The sums of the high band are scaled by 1/8; the logarithm of 4 makes
// those of halved sums of them, but a floored one stays at the floor.
OrvStatus orvsHighBandCoding_Aurora_32s_Sfs(const int32_t *pLow, const int32_t *pBins, const int32_t *pHigh,
                                            int32_t *pDst, int32_t scaleFactor) {
  if (const OrvStatus status = check(pLow, pBins, pHigh, pDst); status != orvStsNoErr) return status;
  std::int32_t low[kBands], bins[kBands], high[kBands];
  for (int j = 0; j < kBands; ++j) {
    low[j] = flooredLogQ7(load(pLow + j));
    bins[j] = logOfSumQ7(pBins, kLowRuns[j], 0, 0);
    high[j] = logOfSumQ7(pHigh, kHighRuns[j], 3, kLogOf4Q7);
  }
  constexpr std::int32_t weightsQ10[kBands] = {102, 205, 717};
  for (int j = 0; j < kBands; ++j) {
    std::int32_t sum = 0;
    for (int i = 0; i < kBands; ++i) sum += (weightsQ10[i] * (high[i] - (bins[i] - low[j]))) >> 10;
    store(pDst + j, sat32(shiftSum(sum, std::int64_t{scaleFactor} + 7)));
  }
  return orvStsNoErr;
}
