// orvsResamplePolyphaseFixed*: sample-rate conversion between two integer rates.

#include <numeric>

#include "orvsr/resample.h"
#include "resample/engine.h"

using namespace orv;
using namespace orv::resample;

namespace {

struct Rates {
  std::int32_t src, dst;

  bool areConvertible() const {
    return src >= 1 && dst >= 1 && dst * std::int64_t{256} >= src && src * std::int64_t{256} >= dst;
  }
};

OrvStatus check(const void *pointer, const Rates &rates, const Settings &settings) {
  if (pointer == nullptr) return orvStsNullPtrErr;
  if (const OrvStatus status = checkLength(settings); status != orvStsNoErr) return status;
  if (!rates.areConvertible()) return orvStsBadArgErr;
  return checkValues(settings);
}

Shape shapeOf(const Rates &rates, const Settings &settings) {
  const std::int32_t divisor = std::gcd(rates.src, rates.dst);
  return fixedShape(settings, rates.dst / divisor, rates.src / divisor);
}

OrvStatus getSize(const Rates &rates, const Settings &settings, std::int32_t *size) {
  if (const OrvStatus status = check(size, rates, settings); status != orvStsNoErr) return status;
  const std::int64_t bytes = shapeOf(rates, settings).bytes();
  if (bytes > INT32_MAX) return orvStsSizeErr;
  store(size, static_cast<std::int32_t>(bytes));
  return orvStsNoErr;
}

void start(Converter &c, std::int32_t tag, const Rates &rates, const Settings &settings, const Shape &shape) {
  build(c, tag, settings, shape);
  // Of the samples that are summed, in which the rows lie as the rates do.
  const auto up = static_cast<std::uint64_t>(shape.sums.perSample);
  const std::uint64_t down = static_cast<std::uint64_t>(rates.src) * up *
                             static_cast<std::uint64_t>(c.gridUp) /
                             (static_cast<std::uint64_t>(rates.dst) * static_cast<std::uint64_t>(c.gridDown));
  c.clock = {up, 0, down / up, down % up};
}

template <class State>
OrvStatus init(State *state, std::int32_t tag, const Rates &rates, const Settings &settings) {
  if (const OrvStatus status = check(state, rates, settings); status != orvStsNoErr) return status;
  const Shape shape = shapeOf(rates, settings);
  if (shape.bytes() > INT32_MAX) return orvStsSizeErr;
  start(*converterIn(state), tag, rates, settings, shape);
  return orvStsNoErr;
}

template <class State>
OrvStatus initAlloc(State **state, std::int32_t tag, const Rates &rates, const Settings &settings) {
  if (const OrvStatus status = check(state, rates, settings); status != orvStsNoErr) return status;
  const Shape shape = shapeOf(rates, settings);
  State *block = nullptr;
  if (const OrvStatus status = allocateBlock(shape.bytes(), &block); status != orvStsNoErr) return status;
  start(*converterIn(block), tag, rates, settings, shape);
  store(state, block);
  return orvStsNoErr;
}

OrvStatus getFilter(const void *state, std::int32_t tag, float *filter, std::int32_t len,
                    std::int32_t *phases, std::int32_t *taps) {
  if (state == nullptr || phases == nullptr || taps == nullptr || (filter == nullptr && len != 0))
    return orvStsNullPtrErr;
  Converter &c = *converterIn(const_cast<void *>(state));
  if (c.tag != tag) return orvStsContextMatchErr;
  const std::int64_t all = c.designedFloats();
  if (len != 0 && len < all) return orvStsSizeErr;
  if (len != 0)
    ownsCopy_8u(reinterpret_cast<const std::uint8_t *>(c.designed()),
                reinterpret_cast<std::uint8_t *>(filter), static_cast<std::size_t>(all) * sizeof(float));
  store(phases, c.designedRows);
  store(taps, c.designedTaps);
  return orvStsNoErr;
}

template <class State, class T>
OrvStatus run(State *state, std::int32_t tag, Call<T> call, std::int32_t *consumed, std::int32_t *produced,
              std::int32_t flags) {
  const OrvStatus status = checkCall(state, tag, call, consumed, produced, flags);
  if (status != orvStsNoErr) return status;
  convert(*converterIn(state), produceFixed, call, flags);
  store(consumed, call.consumed);
  store(produced, call.produced);
  return orvStsNoErr;
}

}  // namespace

OrvStatus orvsResamplePolyphaseFixedGetSize_16s(int32_t srcRate, int32_t dstRate, int32_t halfLen,
                                                double rollOff, double attenuation, int32_t *pSize) {
  return getSize({srcRate, dstRate}, {halfLen, rollOff, attenuation}, pSize);
}

OrvStatus orvsResamplePolyphaseFixedInit_16s(OrvsResampleFixedState_16s *pState, int32_t srcRate,
                                             int32_t dstRate, int32_t halfLen, double rollOff,
                                             double attenuation) {
  return init(pState, kFixed16s, {srcRate, dstRate}, {halfLen, rollOff, attenuation});
}

OrvStatus orvsResamplePolyphaseFixedInitAlloc_16s(OrvsResampleFixedState_16s **ppState, int32_t srcRate,
                                                  int32_t dstRate, int32_t halfLen, double rollOff,
                                                  double attenuation) {
  return initAlloc(ppState, kFixed16s, {srcRate, dstRate}, {halfLen, rollOff, attenuation});
}

OrvStatus orvsResamplePolyphaseFixedFree_16s(OrvsResampleFixedState_16s *pState) {
  return release(pState, kFixed16s);
}

OrvStatus orvsResamplePolyphaseFixedGetFilter_16s(const OrvsResampleFixedState_16s *pState, float *pFilter,
                                                  int32_t len, int32_t *pPhases, int32_t *pTaps) {
  return getFilter(pState, kFixed16s, pFilter, len, pPhases, pTaps);
}

OrvStatus orvsResamplePolyphaseFixed_16s(OrvsResampleFixedState_16s *pState, const int16_t *pSrc,
                                         int32_t srcLen, int32_t *pConsumed, int16_t *pDst, int32_t dstLen,
                                         int32_t *pProduced, int32_t flags) {
  return run(pState, kFixed16s, Call<int16_t>{pSrc, srcLen, pDst, dstLen}, pConsumed, pProduced, flags);
}

OrvStatus orvsResamplePolyphaseFixedGetSize_32f(int32_t srcRate, int32_t dstRate, int32_t halfLen,
                                                double rollOff, double attenuation, int32_t *pSize) {
  return getSize({srcRate, dstRate}, {halfLen, rollOff, attenuation}, pSize);
}

OrvStatus orvsResamplePolyphaseFixedInit_32f(OrvsResampleFixedState_32f *pState, int32_t srcRate,
                                             int32_t dstRate, int32_t halfLen, double rollOff,
                                             double attenuation) {
  return init(pState, kFixed32f, {srcRate, dstRate}, {halfLen, rollOff, attenuation});
}

OrvStatus orvsResamplePolyphaseFixedInitAlloc_32f(OrvsResampleFixedState_32f **ppState, int32_t srcRate,
                                                  int32_t dstRate, int32_t halfLen, double rollOff,
                                                  double attenuation) {
  return initAlloc(ppState, kFixed32f, {srcRate, dstRate}, {halfLen, rollOff, attenuation});
}

OrvStatus orvsResamplePolyphaseFixedFree_32f(OrvsResampleFixedState_32f *pState) {
  return release(pState, kFixed32f);
}

OrvStatus orvsResamplePolyphaseFixedGetFilter_32f(const OrvsResampleFixedState_32f *pState, float *pFilter,
                                                  int32_t len, int32_t *pPhases, int32_t *pTaps) {
  return getFilter(pState, kFixed32f, pFilter, len, pPhases, pTaps);
}

OrvStatus orvsResamplePolyphaseFixed_32f(OrvsResampleFixedState_32f *pState, const float *pSrc,
                                         int32_t srcLen, int32_t *pConsumed, float *pDst, int32_t dstLen,
                                         int32_t *pProduced, int32_t flags) {
  return run(pState, kFixed32f, Call<float>{pSrc, srcLen, pDst, dstLen}, pConsumed, pProduced, flags);
}
