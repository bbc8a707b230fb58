#include "primitives/fft/engine.h"

#include <cstring>

#include "primitives/fft/plan.h"
#include "primitives/fft/small.h"
#include "primitives/memory.h"

namespace orv::fft {
namespace {

// The transforms that need no work buffer: bins 1 to N/2 - 1 to bin1[], times factor. src and bin1 may be the
// same array.
Ends shortForward(const OrvRealFftState32f &spec, const float *src, float *bin1, float factor) {
  if (spec.order > kMaxSmallOrder) {
    alignas(64) float buffer[kMaxRealLen];
    const RealTables tables[2] = {
        {spec.levelStepTwiddles[0], spec.radix4Twiddles, spec.bitRevTable},
        {spec.levelStepTwiddles[1], spec.blockTwiddles, spec.bitRevTable + realBlocks(spec.order)}};
    return realTransform(spec.order, tables, src, bin1, factor, buffer);
  }
  return smallBins(spec.order, src, bin1, factor);
}

// From bins 1 to N/2 - 1 and the two real ones to out[k] = Rk - Ik, out[N - k] = Rk + Ik, times factor. This
// turns a spectrum into real values whose transform, treated in the same way, is the inverse transform of the
// spectrum: the cosine and the sine parts of both add up to the same sums.
void differencesAndSums(Ends ends, const float *bin1, std::size_t len, float factor, float *out) {
  store(out, ends.zero * factor);
  if (len > 1) store(out + len / 2, ends.last * factor);
  std::size_t k = 1;
  if (len >= 16) {
    const simd::f32x4 f = simd::splat4(factor);
    const std::size_t lastFour = len / 2 - 4;
    for (;; k = k + 4 < lastFour ? k + 4 : lastFour) {
      const Complex4 bins = loadInterleaved(bin1 + 2 * (k - 1));
      const simd::f32x4 sum = (bins.re + bins.im) * f;
      simd::store4(out + k, (bins.re - bins.im) * f);
      simd::store4(out + len - k - 3, simd::shuffle<3, 2, 1, 0>(sum, sum));
      if (k == lastFour) return;
    }
  }
  for (; k < len / 2; ++k) {
    const float re = load(bin1 + 2 * (k - 1)), im = load(bin1 + 2 * (k - 1) + 1);
    store(out + k, (re - im) * factor);
    store(out + len - k, (re + im) * factor);
  }
}

}  // namespace

void buildTables(OrvRealFftState32f &spec, const float *sine, std::int32_t sineOrder) {
  const UnitCircle circle(sine, sineOrder);
  const Tables tables = tablesOf(spec.order);
  std::uint8_t *at = reinterpret_cast<std::uint8_t *>(&spec) + kTablesOffset;
  const auto take = [&](std::int64_t bytes) {
    std::uint8_t *table = at;
    at += up32(bytes);
    return table;
  };
  const auto takeFloats = [&](std::int64_t floats) { return reinterpret_cast<float *>(take(4 * floats)); };

  TablePointers to;
  to.indices[0] = reinterpret_cast<std::uint16_t *>(take(2 * (tables.indices[0] + tables.indices[1])));
  to.indices[1] = to.indices[0] + tables.indices[0];
  for (int i = 0; i < 2; ++i) {
    to.lanes[i] = takeFloats(tables.lanes[i]);
    to.steps[i] = takeFloats(tables.steps[i]);
  }
  to.bins = takeFloats(tables.bins);

  spec.bitRevTable = to.indices[0];
  spec.radix4Twiddles = to.lanes[0];
  spec.blockTwiddles = to.lanes[1];
  spec.realRecTwiddles = to.bins;
  spec.ccsRecTwiddles = to.bins;
  spec.levelStepTwiddles[0] = to.steps[0];
  spec.levelStepTwiddles[1] = to.steps[1];
  if (isLarge(spec.order)) return buildLargeTables(to, spec.order, circle);
  std::int32_t order = spec.order;
  for (int i = 0; order >= kMinRealOrder; ++i, order -= 4)
    spec.levelStepTwiddles[i] = buildRealTables(to.steps[i], to.lanes[i], to.indices[i], order, circle).steps;
}

void forward(const OrvRealFftState32f &spec, const float *src, float *dst, Layout layout,
             std::uint8_t *work) {
  const std::size_t len = std::size_t{1} << spec.order;
  const float factor = spec.scaleFwd != 0 ? spec.normFactor : 1.0F;
  float *bin1 = layout == Layout::pack ? dst + 1 : dst + 2;
  const Ends ends = isLarge(spec.order)
                        ? largeForward(spec, src, dst, bin1, factor, reinterpret_cast<float *>(work))
                        : shortForward(spec, src, bin1, factor);
  store(dst, ends.zero);
  if (layout == Layout::ccs) store(dst + 1, 0.0F);
  if (len == 1) return;
  if (layout == Layout::perm) {
    store(dst + 1, ends.last);
  } else if (layout == Layout::pack) {
    store(dst + len - 1, ends.last);
  } else {
    store(dst + len, ends.last);
    store(dst + len + 1, 0.0F);
  }
}

void inverse(const OrvRealFftState32f &spec, const float *packed, float *dst, std::uint8_t *work) {
  const float factor = spec.scaleInv != 0 ? spec.normFactor : 1.0F;
  if (isLarge(spec.order)) return largeInverse(spec, packed, dst, factor, reinterpret_cast<float *>(work));
  const std::size_t len = std::size_t{1} << spec.order;
  alignas(64) float values[kMaxRealLen];
  differencesAndSums({load(packed), load(packed + len - 1)}, packed + 1, len, 1.0F, values);
  hartley(spec, values, dst, factor);
}

void hartley(const OrvRealFftState32f &spec, const float *src, float *dst, float factor) {
  alignas(64) float bins[kMaxRealLen + 2];
  const Ends ends = shortForward(spec, src, bins + 2, 1.0F);
  differencesAndSums(ends, bins + 2, std::size_t{1} << spec.order, factor, dst);
}

}  // namespace orv::fft
