// The exported constructors and destructors of filter banks.

#include "frontend/fbank.h"

#include "core/alloc.h"
#include "frontend/fbank_design.h"
#include "frontend/fbank_memory.h"
#include "orvsr/frontend.h"
#include "primitives/memory.h"

namespace orv::fbank {
namespace {

// --- checks

bool areFlagsKnown(std::int32_t flags) {
  const std::int32_t weights = flags & ~orvFBankFromSamples;
  return weights == orvFBankMelWeights || weights == orvFBankBinWeights;
}

// Every comparison is one that a NaN passes.
bool isAboveHalf(float highFreq, float sampleRate) { return sampleRate * 0.5F < highFreq; }

// --- the exported functions of both types

template <class State>
OrvStatus getSize(std::int32_t fftLen, std::int32_t nFilter, std::int32_t flags, std::int32_t *pSize) {
  if (pSize == nullptr) return orvStsNullPtrErr;
  if (fftLen < 1 || nFilter < 1) return orvStsSizeErr;
  if (!areFlagsKnown(flags)) return orvStsFBankFlagErr;
  return reportSize<State>(Shape(fftLen, nFilter, flags), pSize);
}

template <class State>
OrvStatus getAuroraSize(std::int32_t bands, std::int32_t *pSize) {
  if (pSize == nullptr) return orvStsNullPtrErr;
  return reportSize<State>(auroraShape(bands), pSize);
}

struct MelArguments {
  std::int32_t fftLen;
  float sampleRate, lowFreq, highFreq;
  std::int32_t nFilter;
  float melMul, melDiv;
  std::int32_t flags;

  OrvStatus check(const void *pFBank, const std::int32_t *pFFTOrder) const {
    if (pFBank == nullptr || pFFTOrder == nullptr) return orvStsNullPtrErr;
    if (fftLen <= 0 || nFilter <= 0) return orvStsSizeErr;
    if (sampleRate <= 0.0F || lowFreq <= 0.0F) return orvStsSizeErr;
    if (highFreq < lowFreq || isAboveHalf(highFreq, sampleRate)) return orvStsFBankFreqErr;
    if (!areFlagsKnown(flags)) return orvStsFBankFlagErr;
    return orvStsNoErr;
  }
};

template <class State>
void designMelBank(State &bank, const MelArguments &a, const Scratch &scratch) {
  bank.mode = a.flags;
  bank.melMul = a.melMul;
  bank.melDiv = a.melDiv;
  designMelBank(bank, a.sampleRate, a.lowFreq, a.highFreq, scratch);
}

template <class State>
OrvStatus initMelBank(State *pFBank, std::int32_t *pFFTOrder, const MelArguments &a) {
  if (const OrvStatus status = a.check(pFBank, pFFTOrder); status != orvStsNoErr) return status;
  const Shape shape(a.fftLen, a.nFilter, a.flags);
  if (reportedBytes<State>(shape) > INT32_MAX) return orvStsSizeErr;
  store(pFFTOrder, shape.order);
  const Scratch scratch = layOutBank(pFBank, shape);
  designMelBank(*bankIn(pFBank), a, scratch);
  return orvStsNoErr;
}

// Allocates a bank and its scratch, and lets `design` fill it.
template <class State, class Design>
OrvStatus createBank(State **ppFBank, const Shape &shape, const Design &design) {
  if (const OrvStatus status = allocateBank(ppFBank, shape); status != orvStsNoErr) return status;
  const auto edges = static_cast<std::int32_t>(shape.edges());
  const WorkArray<float> steps(edges);
  const WorkArray<float> bins(edges);
  if (!steps || !bins) return discard(ppFBank);
  design(*bankIn(load(ppFBank)), Scratch{steps.get(), bins.get()});
  return orvStsNoErr;
}

template <class State>
OrvStatus createMelBank(State **ppFBank, std::int32_t *pFFTOrder, const MelArguments &a) {
  if (const OrvStatus status = a.check(ppFBank, pFFTOrder); status != orvStsNoErr) return status;
  const Shape shape(a.fftLen, a.nFilter, a.flags);
  store(pFFTOrder, shape.order);
  return createBank(ppFBank, shape,
                    [&](State &bank, const Scratch &scratch) { designMelBank(bank, a, scratch); });
}

template <class State>
OrvStatus initAuroraBank(State *pFBank, std::int32_t bands, void (*design)(State &, const Scratch &)) {
  if (pFBank == nullptr) return orvStsNullPtrErr;
  const Scratch scratch = layOutBank(pFBank, auroraShape(bands));
  design(*bankIn(pFBank), scratch);
  return orvStsNoErr;
}

template <class State>
OrvStatus createAuroraBank(State **ppFBank, std::int32_t bands, void (*design)(State &, const Scratch &)) {
  if (ppFBank == nullptr) return orvStsNullPtrErr;
  return createBank(ppFBank, auroraShape(bands), design);
}

struct MixedArguments {
  std::int32_t fftLen;
  float sampleRate;
  MixedLimits limits;
  std::int32_t nFilter, nLinear;
  float melMul, melDiv;
  std::int32_t flags;

  OrvStatus check() const {
    if (fftLen <= 0 || nFilter <= 0 || sampleRate <= 0.0F || limits.low <= 0.0F) return orvStsSizeErr;
    if (nLinear <= 0 || nLinear > nFilter) return orvStsSizeErr;
    if (limits.linHigh < limits.low || limits.high < limits.linHigh) return orvStsFBankFreqErr;
    if (isAboveHalf(limits.high, sampleRate)) return orvStsFBankFreqErr;
    if (!areFlagsKnown(flags)) return orvStsFBankFlagErr;
    return orvStsNoErr;
  }
};

// No pointer is tested: this is how these constructors have always behaved.
template <class State>
OrvStatus createMixedBank(State **ppFBank, std::int32_t *pFFTOrder, const MixedArguments &a) {
  if (const OrvStatus status = a.check(); status != orvStsNoErr) return status;
  const Shape shape(a.fftLen, a.nFilter, a.flags);
  store(pFFTOrder, shape.order);
  return createBank(ppFBank, shape, [&](State &bank, const Scratch &scratch) {
    bank.mode = a.flags;
    bank.melMul = a.melMul;
    bank.melDiv = a.melDiv;
    bank.numLinear = a.nLinear;
    designMixedBank(bank, a.sampleRate, a.limits, scratch);
  });
}

// No pointer is tested here either. The mode stays that of a spectrum, so an FFT would never run; none is
// made.
template <class State>
OrvStatus createEmptyBank(State **ppFBank, std::int32_t *pFFTOrder, std::int32_t fftLen,
                          std::int32_t nFilter) {
  if (fftLen <= 0 || nFilter <= 0) return orvStsSizeErr;
  const Shape shape(fftLen, nFilter, 0);
  store(pFFTOrder, shape.order);
  if (const OrvStatus status = allocateBank(ppFBank, shape); status != orvStsNoErr) return status;
  State &bank = *bankIn(load(ppFBank));
  bank.mode = orvFBankMelWeights;
  bank.melMul = 0.0F;
  bank.melDiv = 1.0F;
  return orvStsNoErr;
}

}  // namespace
}  // namespace orv::fbank

using namespace orv::fbank;

OrvStatus orvsMelFBankGetSize_32f(int32_t fftLen, int32_t nFilter, int32_t flags, int32_t *pSize) {
  return getSize<OrvsFBankState_32f>(fftLen, nFilter, flags, pSize);
}
OrvStatus orvsMelFBankGetSize_16s(int32_t fftLen, int32_t nFilter, int32_t flags, int32_t *pSize) {
  return getSize<OrvsFBankState_16s>(fftLen, nFilter, flags, pSize);
}

OrvStatus orvsMelFBankInit_32f(OrvsFBankState_32f *pFBank, int32_t *pFFTOrder, int32_t fftLen,
                               float sampleRate, float lowFreq, float highFreq, int32_t nFilter, float melMul,
                               float melDiv, int32_t flags) {
  return initMelBank(pFBank, pFFTOrder,
                     {fftLen, sampleRate, lowFreq, highFreq, nFilter, melMul, melDiv, flags});
}
OrvStatus orvsMelFBankInit_16s(OrvsFBankState_16s *pFBank, int32_t *pFFTOrder, int32_t fftLen,
                               float sampleRate, float lowFreq, float highFreq, int32_t nFilter, float melMul,
                               float melDiv, int32_t flags) {
  return initMelBank(pFBank, pFFTOrder,
                     {fftLen, sampleRate, lowFreq, highFreq, nFilter, melMul, melDiv, flags});
}

OrvStatus orvsMelFBankInitAlloc_32f(OrvsFBankState_32f **ppFBank, int32_t *pFFTOrder, int32_t fftLen,
                                    float sampleRate, float lowFreq, float highFreq, int32_t nFilter,
                                    float melMul, float melDiv, int32_t flags) {
  return createMelBank(ppFBank, pFFTOrder,
                       {fftLen, sampleRate, lowFreq, highFreq, nFilter, melMul, melDiv, flags});
}
OrvStatus orvsMelFBankInitAlloc_16s(OrvsFBankState_16s **ppFBank, int32_t *pFFTOrder, int32_t fftLen,
                                    float sampleRate, float lowFreq, float highFreq, int32_t nFilter,
                                    float melMul, float melDiv, int32_t flags) {
  return createMelBank(ppFBank, pFFTOrder,
                       {fftLen, sampleRate, lowFreq, highFreq, nFilter, melMul, melDiv, flags});
}

OrvStatus orvsMelFBankGetSizeLow_Aurora_32f(int32_t *pSize) {
  return getAuroraSize<OrvsFBankState_32f>(kAuroraLowBands, pSize);
}
OrvStatus orvsMelFBankGetSizeLow_Aurora_16s(int32_t *pSize) {
  return getAuroraSize<OrvsFBankState_16s>(kAuroraLowBands, pSize);
}
OrvStatus orvsMelFBankInitLow_Aurora_32f(OrvsFBankState_32f *pFBank) {
  return initAuroraBank(pFBank, kAuroraLowBands, designLowAuroraBank<OrvsFBankState_32f>);
}
OrvStatus orvsMelFBankInitLow_Aurora_16s(OrvsFBankState_16s *pFBank) {
  return initAuroraBank(pFBank, kAuroraLowBands, designLowAuroraBank<OrvsFBankState_16s>);
}
OrvStatus orvsMelFBankInitAllocLow_Aurora_32f(OrvsFBankState_32f **ppFBank) {
  return createAuroraBank(ppFBank, kAuroraLowBands, designLowAuroraBank<OrvsFBankState_32f>);
}
OrvStatus orvsMelFBankInitAllocLow_Aurora_16s(OrvsFBankState_16s **ppFBank) {
  return createAuroraBank(ppFBank, kAuroraLowBands, designLowAuroraBank<OrvsFBankState_16s>);
}

OrvStatus orvsMelFBankGetSizeHigh_Aurora_32f(int32_t *pSize) {
  return getAuroraSize<OrvsFBankState_32f>(kAuroraHighBands, pSize);
}
OrvStatus orvsMelFBankGetSizeHigh_Aurora_16s(int32_t *pSize) {
  return getAuroraSize<OrvsFBankState_16s>(kAuroraHighBands, pSize);
}
OrvStatus orvsMelFBankInitHigh_Aurora_32f(OrvsFBankState_32f *pFBank) {
  return initAuroraBank(pFBank, kAuroraHighBands, designHighAuroraBank<OrvsFBankState_32f>);
}
OrvStatus orvsMelFBankInitHigh_Aurora_16s(OrvsFBankState_16s *pFBank) {
  return initAuroraBank(pFBank, kAuroraHighBands, designHighAuroraBank<OrvsFBankState_16s>);
}
OrvStatus orvsMelFBankInitAllocHigh_Aurora_32f(OrvsFBankState_32f **ppFBank) {
  return createAuroraBank(ppFBank, kAuroraHighBands, designHighAuroraBank<OrvsFBankState_32f>);
}
OrvStatus orvsMelFBankInitAllocHigh_Aurora_16s(OrvsFBankState_16s **ppFBank) {
  return createAuroraBank(ppFBank, kAuroraHighBands, designHighAuroraBank<OrvsFBankState_16s>);
}

OrvStatus orvsMelLinFBankInitAlloc_32f(OrvsFBankState_32f **ppFBank, int32_t *pFFTOrder, int32_t fftLen,
                                       float sampleRate, float lowFreq, float highFreq, int32_t nFilter,
                                       float linHighFreq, int32_t nLinear, float melMul, float melDiv,
                                       int32_t flags) {
  return createMixedBank(
      ppFBank, pFFTOrder,
      {fftLen, sampleRate, {lowFreq, linHighFreq, highFreq}, nFilter, nLinear, melMul, melDiv, flags});
}
OrvStatus orvsMelLinFBankInitAlloc_16s(OrvsFBankState_16s **ppFBank, int32_t *pFFTOrder, int32_t fftLen,
                                       float sampleRate, float lowFreq, float highFreq, int32_t nFilter,
                                       float linHighFreq, int32_t nLinear, float melMul, float melDiv,
                                       int32_t flags) {
  return createMixedBank(
      ppFBank, pFFTOrder,
      {fftLen, sampleRate, {lowFreq, linHighFreq, highFreq}, nFilter, nLinear, melMul, melDiv, flags});
}

OrvStatus orvsEmptyFBankInitAlloc_32f(OrvsFBankState_32f **ppFBank, int32_t *pFFTOrder, int32_t fftLen,
                                      int32_t nFilter, int32_t) {
  return createEmptyBank(ppFBank, pFFTOrder, fftLen, nFilter);
}
OrvStatus orvsEmptyFBankInitAlloc_16s(OrvsFBankState_16s **ppFBank, int32_t *pFFTOrder, int32_t fftLen,
                                      int32_t nFilter, int32_t) {
  return createEmptyBank(ppFBank, pFFTOrder, fftLen, nFilter);
}

OrvStatus orvsFBankFree_32f(OrvsFBankState_32f *pFBank) {
  if (pFBank == nullptr) return orvStsNullPtrErr;
  freeBank(pFBank);
  return orvStsNoErr;
}
OrvStatus orvsFBankFree_16s(OrvsFBankState_16s *pFBank) {
  if (pFBank == nullptr) return orvStsNullPtrErr;
  freeBank(pFBank);
  return orvStsNoErr;
}
