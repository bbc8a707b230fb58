// orvsResamplePolyphase*: sample-rate conversion at a ratio that each call names.

#include "orvsr/resample.h"
#include "resample/engine.h"

using namespace orv;
using namespace orv::resample;

namespace {

// Written so that a NaN fails.
bool isRatio(double ratio, double least) { return ratio >= least && ratio <= kMaxRatio; }

OrvStatus check(const void *pointer, const Settings &settings, double minRatio) {
  if (pointer == nullptr) return orvStsNullPtrErr;
  if (const OrvStatus status = checkLength(settings); status != orvStsNoErr) return status;
  if (!isRatio(minRatio, kMinRatio)) return orvStsBadArgErr;
  return checkValues(settings);
}

OrvStatus getSize(const Settings &settings, double minRatio, std::int32_t *size) {
  if (const OrvStatus status = check(size, settings, minRatio); status != orvStsNoErr) return status;
  const std::int64_t bytes = freeShape(settings, minRatio).bytes();
  if (bytes > INT32_MAX) return orvStsSizeErr;
  store(size, static_cast<std::int32_t>(bytes));
  return orvStsNoErr;
}

void start(Converter &c, std::int32_t tag, const Settings &settings, double minRatio, const Shape &shape) {
  build(c, tag, settings, shape);
  c.minRatio = minRatio;
  setRatio(c, minRatio);
}

template <class State>
OrvStatus init(State *state, std::int32_t tag, const Settings &settings, double minRatio) {
  if (const OrvStatus status = check(state, settings, minRatio); status != orvStsNoErr) return status;
  const Shape shape = freeShape(settings, minRatio);
  if (shape.bytes() > INT32_MAX) return orvStsSizeErr;
  start(*converterIn(state), tag, settings, minRatio, shape);
  return orvStsNoErr;
}

template <class State>
OrvStatus initAlloc(State **state, std::int32_t tag, const Settings &settings, double minRatio) {
  if (const OrvStatus status = check(state, settings, minRatio); status != orvStsNoErr) return status;
  const Shape shape = freeShape(settings, minRatio);
  State *block = nullptr;
  if (const OrvStatus status = allocateBlock(shape.bytes(), &block); status != orvStsNoErr) return status;
  start(*converterIn(block), tag, settings, minRatio, shape);
  store(state, block);
  return orvStsNoErr;
}

template <class State, class T>
OrvStatus run(State *state, std::int32_t tag, Call<T> call, double ratio, std::int32_t *consumed,
              std::int32_t *produced, std::int32_t flags) {
  const OrvStatus status = checkCall(state, tag, call, consumed, produced, flags);
  if (status != orvStsNoErr) return status;
  Converter &c = *converterIn(state);
  if (!isRatio(ratio, c.minRatio)) return orvStsBadArgErr;
  if (ratio != c.ratio) setRatio(c, ratio);
  convert(c, produceFree, call, flags);
  store(consumed, call.consumed);
  store(produced, call.produced);
  return orvStsNoErr;
}

}  // namespace

OrvStatus orvsResamplePolyphaseGetSize_16s(int32_t halfLen, double rollOff, double attenuation,
                                           double minRatio, int32_t *pSize) {
  return getSize({halfLen, rollOff, attenuation}, minRatio, pSize);
}

OrvStatus orvsResamplePolyphaseInit_16s(OrvsResampleState_16s *pState, int32_t halfLen, double rollOff,
                                        double attenuation, double minRatio) {
  return init(pState, kFree16s, {halfLen, rollOff, attenuation}, minRatio);
}

OrvStatus orvsResamplePolyphaseInitAlloc_16s(OrvsResampleState_16s **ppState, int32_t halfLen, double rollOff,
                                             double attenuation, double minRatio) {
  return initAlloc(ppState, kFree16s, {halfLen, rollOff, attenuation}, minRatio);
}

OrvStatus orvsResamplePolyphaseFree_16s(OrvsResampleState_16s *pState) { return release(pState, kFree16s); }

OrvStatus orvsResamplePolyphase_16s(OrvsResampleState_16s *pState, const int16_t *pSrc, int32_t srcLen,
                                    int32_t *pConsumed, int16_t *pDst, int32_t dstLen, int32_t *pProduced,
                                    double ratio, int32_t flags) {
  return run(pState, kFree16s, Call<int16_t>{pSrc, srcLen, pDst, dstLen}, ratio, pConsumed, pProduced, flags);
}

OrvStatus orvsResamplePolyphaseGetSize_32f(int32_t halfLen, double rollOff, double attenuation,
                                           double minRatio, int32_t *pSize) {
  return getSize({halfLen, rollOff, attenuation}, minRatio, pSize);
}

OrvStatus orvsResamplePolyphaseInit_32f(OrvsResampleState_32f *pState, int32_t halfLen, double rollOff,
                                        double attenuation, double minRatio) {
  return init(pState, kFree32f, {halfLen, rollOff, attenuation}, minRatio);
}

OrvStatus orvsResamplePolyphaseInitAlloc_32f(OrvsResampleState_32f **ppState, int32_t halfLen, double rollOff,
                                             double attenuation, double minRatio) {
  return initAlloc(ppState, kFree32f, {halfLen, rollOff, attenuation}, minRatio);
}

OrvStatus orvsResamplePolyphaseFree_32f(OrvsResampleState_32f *pState) { return release(pState, kFree32f); }

OrvStatus orvsResamplePolyphase_32f(OrvsResampleState_32f *pState, const float *pSrc, int32_t srcLen,
                                    int32_t *pConsumed, float *pDst, int32_t dstLen, int32_t *pProduced,
                                    double ratio, int32_t flags) {
  return run(pState, kFree32f, Call<float>{pSrc, srcLen, pDst, dstLen}, ratio, pConsumed, pProduced, flags);
}
