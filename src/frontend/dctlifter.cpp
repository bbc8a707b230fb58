// orvsDCTLifter*: cepstra from log band energies.

#include "frontend/dctlifter.h"

#include "primitives/convert.h"

using namespace orv;
using namespace orv::dctlifter;

namespace {

// The orders of checks: constructors with a lifter parameter, constructors with a table, sizes.
OrvStatus checkSinusoidal(const void *state, std::int32_t dctLen, std::int32_t numCeps, std::int32_t param) {
  if (state == nullptr) return orvStsNullPtrErr;
  if (dctLen < 1 || numCeps < 1 || param < 1 || dctLen < numCeps) return orvStsSizeErr;
  return orvStsNoErr;
}

OrvStatus checkTable(const void *state, std::int32_t dctLen, const void *table, std::int32_t numCeps) {
  if (state == nullptr || table == nullptr) return orvStsNullPtrErr;
  if (dctLen < 1 || numCeps < 1 || dctLen < numCeps) return orvStsSizeErr;
  return orvStsNoErr;
}

OrvStatus checkSize(std::int32_t dctLen, std::int32_t numCeps, const void *size) {
  if (size == nullptr) return orvStsNullPtrErr;
  if (dctLen < 1 || numCeps < 1 || dctLen < numCeps) return orvStsSizeErr;
  return orvStsNoErr;
}

OrvStatus checkTransform(const void *state, const void *src, const void *dst) {
  return state == nullptr || src == nullptr || dst == nullptr ? orvStsNullPtrErr : orvStsNoErr;
}

// The results of an integer transform, through the scratch of the state.
template <class T>
OrvStatus transformToIntegers(const T *src, std::int32_t head, std::int16_t *dst,
                              const OrvsDCTLifterState_16s &state, std::int32_t scaleFactor) {
  // The constructor lets a failed allocation of the scratch pass.
  if (state.scratch == nullptr) return orvStsMemAllocErr;
  transform(src, head, state, state.scratch);
  return orvsConvert_32f16s_Sfs(state.scratch, dst, state.numCeps + state.withC0, kRoundNearestEven,
                                scaleFactor);
}

}  // namespace

OrvStatus orvsDCTLifterInitAlloc_32f(OrvsDCTLifterState_32f **ppState, int32_t dctLen, int32_t numCeps,
                                     int32_t lifterParam, float val) {
  const OrvStatus status = checkSinusoidal(ppState, dctLen, numCeps, lifterParam);
  if (status != orvStsNoErr) return status;
  const Shape shape{dctLen, numCeps, false};
  return initAlloc(ppState, shape, SinusoidalLifter{lifterParam, val});
}

OrvStatus orvsDCTLifterInit_32f(OrvsDCTLifterState_32f *pState, int32_t dctLen, int32_t numCeps,
                                int32_t lifterParam, float val) {
  const OrvStatus status = checkSinusoidal(pState, dctLen, numCeps, lifterParam);
  if (status != orvStsNoErr) return status;
  const Shape shape{dctLen, numCeps, false};
  return init(pState, bytesOf<OrvsDCTLifterState_32f>(shape), shape, SinusoidalLifter{lifterParam, val});
}

OrvStatus orvsDCTLifterGetSize_32f(int32_t dctLen, int32_t numCeps, int32_t *pSize) {
  const OrvStatus status = checkSize(dctLen, numCeps, pSize);
  if (status != orvStsNoErr) return status;
  return reportSize(bytesOf<OrvsDCTLifterState_32f>({dctLen, numCeps, false}), pSize);
}

OrvStatus orvsDCTLifterInitAlloc_C0_32f(OrvsDCTLifterState_32f **ppState, int32_t dctLen, int32_t numCeps,
                                        int32_t lifterParam, float val, float val0) {
  const OrvStatus status = checkSinusoidal(ppState, dctLen, numCeps, lifterParam);
  if (status != orvStsNoErr) return status;
  const Shape shape{dctLen, numCeps, true};
  return initAlloc(ppState, shape, SinusoidalLifterC0{{lifterParam, val}, val0});
}

OrvStatus orvsDCTLifterInit_C0_32f(OrvsDCTLifterState_32f *pState, int32_t dctLen, int32_t numCeps,
                                   int32_t lifterParam, float val, float val0) {
  const OrvStatus status = checkSinusoidal(pState, dctLen, numCeps, lifterParam);
  if (status != orvStsNoErr) return status;
  const Shape shape{dctLen, numCeps, true};
  return init(pState, bytesOf<OrvsDCTLifterState_32f>(shape), shape,
              SinusoidalLifterC0{{lifterParam, val}, val0});
}

OrvStatus orvsDCTLifterGetSize_C0_32f(int32_t dctLen, int32_t numCeps, int32_t *pSize) {
  const OrvStatus status = checkSize(dctLen, numCeps, pSize);
  if (status != orvStsNoErr) return status;
  return reportSize(bytesOf<OrvsDCTLifterState_32f>({dctLen, numCeps, true}), pSize);
}

OrvStatus orvsDCTLifterInitAlloc_Mul_32f(OrvsDCTLifterState_32f **ppState, int32_t dctLen,
                                         const float *pLifter, int32_t numCeps) {
  const OrvStatus status = checkTable(ppState, dctLen, pLifter, numCeps);
  if (status != orvStsNoErr) return status;
  const Shape shape{dctLen, numCeps, false};
  return initAlloc(ppState, shape, TableLifter<float>{pLifter, false});
}

OrvStatus orvsDCTLifterInit_Mul_32f(OrvsDCTLifterState_32f *pState, int32_t dctLen, const float *pLifter,
                                    int32_t numCeps) {
  const OrvStatus status = checkTable(pState, dctLen, pLifter, numCeps);
  if (status != orvStsNoErr) return status;
  const Shape shape{dctLen, numCeps, false};
  return init(pState, bytesOf<OrvsDCTLifterState_32f>(shape), shape, TableLifter<float>{pLifter, false});
}

OrvStatus orvsDCTLifterGetSize_Mul_32f(int32_t dctLen, int32_t numCeps, int32_t *pSize) {
  const OrvStatus status = checkSize(dctLen, numCeps, pSize);
  if (status != orvStsNoErr) return status;
  return reportSize(bytesOf<OrvsDCTLifterState_32f>({dctLen, numCeps, false}), pSize);
}

OrvStatus orvsDCTLifterInitAlloc_MulC0_32f(OrvsDCTLifterState_32f **ppState, int32_t dctLen,
                                           const float *pLifter, int32_t numCeps) {
  const OrvStatus status = checkTable(ppState, dctLen, pLifter, numCeps);
  if (status != orvStsNoErr) return status;
  const Shape shape{dctLen, numCeps, true};
  return initAlloc(ppState, shape, TableLifter<float>{pLifter, true});
}

OrvStatus orvsDCTLifterInit_MulC0_32f(OrvsDCTLifterState_32f *pState, int32_t dctLen, const float *pLifter,
                                      int32_t numCeps) {
  const OrvStatus status = checkTable(pState, dctLen, pLifter, numCeps);
  if (status != orvStsNoErr) return status;
  const Shape shape{dctLen, numCeps, true};
  return init(pState, bytesOf<OrvsDCTLifterState_32f>(shape), shape, TableLifter<float>{pLifter, true});
}

OrvStatus orvsDCTLifterGetSize_MulC0_32f(int32_t dctLen, int32_t numCeps, int32_t *pSize) {
  const OrvStatus status = checkSize(dctLen, numCeps, pSize);
  if (status != orvStsNoErr) return status;
  return reportSize(bytesOf<OrvsDCTLifterState_32f>({dctLen, numCeps, true}), pSize);
}

OrvStatus orvsDCTLifterFree_32f(OrvsDCTLifterState_32f *pState) { return release(pState); }

OrvStatus orvsDCTLifterInitAlloc_16s(OrvsDCTLifterState_16s **ppState, int32_t dctLen, int32_t numCeps,
                                     int32_t lifterParam, float val) {
  const OrvStatus status = checkSinusoidal(ppState, dctLen, numCeps, lifterParam);
  if (status != orvStsNoErr) return status;
  const Shape shape{dctLen, numCeps, false};
  return initAlloc(ppState, shape, SinusoidalLifter{lifterParam, val});
}

OrvStatus orvsDCTLifterInit_16s(OrvsDCTLifterState_16s *pState, int32_t dctLen, int32_t numCeps,
                                int32_t lifterParam, float val) {
  const OrvStatus status = checkSinusoidal(pState, dctLen, numCeps, lifterParam);
  if (status != orvStsNoErr) return status;
  const Shape shape{dctLen, numCeps, false};
  return init(pState, bytesOf<OrvsDCTLifterState_16s>(shape), shape, SinusoidalLifter{lifterParam, val});
}

OrvStatus orvsDCTLifterGetSize_16s(int32_t dctLen, int32_t numCeps, int32_t *pSize) {
  const OrvStatus status = checkSize(dctLen, numCeps, pSize);
  if (status != orvStsNoErr) return status;
  return reportSize(bytesOf<OrvsDCTLifterState_16s>({dctLen, numCeps, false}), pSize);
}

OrvStatus orvsDCTLifterInitAlloc_C0_16s(OrvsDCTLifterState_16s **ppState, int32_t dctLen, int32_t numCeps,
                                        int32_t lifterParam, float val, float val0) {
  const OrvStatus status = checkSinusoidal(ppState, dctLen, numCeps, lifterParam);
  if (status != orvStsNoErr) return status;
  const Shape shape{dctLen, numCeps, true};
  return initAlloc(ppState, shape, SinusoidalLifterC0{{lifterParam, val}, val0});
}

OrvStatus orvsDCTLifterInit_C0_16s(OrvsDCTLifterState_16s *pState, int32_t dctLen, int32_t numCeps,
                                   int32_t lifterParam, float val, float val0) {
  const OrvStatus status = checkSinusoidal(pState, dctLen, numCeps, lifterParam);
  if (status != orvStsNoErr) return status;
  const Shape shape{dctLen, numCeps, true};
  return init(pState, bytesOf<OrvsDCTLifterState_16s>(shape), shape,
              SinusoidalLifterC0{{lifterParam, val}, val0});
}

OrvStatus orvsDCTLifterGetSize_C0_16s(int32_t dctLen, int32_t numCeps, int32_t *pSize) {
  const OrvStatus status = checkSize(dctLen, numCeps, pSize);
  if (status != orvStsNoErr) return status;
  return reportSize(bytesOf<OrvsDCTLifterState_16s>({dctLen, numCeps, true}), pSize);
}

OrvStatus orvsDCTLifterInitAlloc_Mul_16s(OrvsDCTLifterState_16s **ppState, int32_t dctLen,
                                         const float *pLifter, int32_t numCeps) {
  const OrvStatus status = checkTable(ppState, dctLen, pLifter, numCeps);
  if (status != orvStsNoErr) return status;
  const Shape shape{dctLen, numCeps, false};
  return initAlloc(ppState, shape, TableLifter<float>{pLifter, false});
}

OrvStatus orvsDCTLifterInit_Mul_16s(OrvsDCTLifterState_16s *pState, int32_t dctLen, const float *pLifter,
                                    int32_t numCeps) {
  const OrvStatus status = checkTable(pState, dctLen, pLifter, numCeps);
  if (status != orvStsNoErr) return status;
  const Shape shape{dctLen, numCeps, false};
  return init(pState, bytesOf<OrvsDCTLifterState_16s>(shape), shape, TableLifter<float>{pLifter, false});
}

OrvStatus orvsDCTLifterGetSize_Mul_16s(int32_t dctLen, int32_t numCeps, int32_t *pSize) {
  const OrvStatus status = checkSize(dctLen, numCeps, pSize);
  if (status != orvStsNoErr) return status;
  return reportSize(bytesOf<OrvsDCTLifterState_16s>({dctLen, numCeps, false}), pSize);
}

OrvStatus orvsDCTLifterInitAlloc_MulC0_16s(OrvsDCTLifterState_16s **ppState, int32_t dctLen,
                                           const float *pLifter, int32_t numCeps) {
  const OrvStatus status = checkTable(ppState, dctLen, pLifter, numCeps);
  if (status != orvStsNoErr) return status;
  const Shape shape{dctLen, numCeps, true};
  return initAlloc(ppState, shape, TableLifter<float>{pLifter, true});
}

// This form alone takes the table as integers; the allocating form takes singles. Callers rely on both.
OrvStatus orvsDCTLifterInit_MulC0_16s(OrvsDCTLifterState_16s *pState, int32_t dctLen, const int32_t *pLifter,
                                      int32_t numCeps) {
  const OrvStatus status = checkTable(pState, dctLen, pLifter, numCeps);
  if (status != orvStsNoErr) return status;
  const Shape shape{dctLen, numCeps, true};
  return init(pState, bytesOfPlainRows(shape), shape, TableLifter<std::int32_t>{pLifter, true});
}

OrvStatus orvsDCTLifterGetSize_MulC0_16s(int32_t dctLen, int32_t numCeps, int32_t *pSize) {
  const OrvStatus status = checkSize(dctLen, numCeps, pSize);
  if (status != orvStsNoErr) return status;
  // No other form has this limit, and the constructors have none.
  if (dctLen > 8192) return orvStsSizeErr;
  return reportSize(bytesOfPlainRows({dctLen, numCeps, true}), pSize);
}

OrvStatus orvsDCTLifterFree_16s(OrvsDCTLifterState_16s *pState) { return release(pState); }

OrvStatus orvsDCTLifter_32f(const float *pSrc, float *pDst, const OrvsDCTLifterState_32f *pState) {
  const OrvStatus status = checkTransform(pState, pSrc, pDst);
  if (status != orvStsNoErr) return status;
  const OrvsDCTLifterState_32f state = load(pState);
  transform(pSrc, alignedHead(pSrc, state.dctLen), state, pDst);
  return orvStsNoErr;
}

// The blocks of eight start with the first element, wherever the source lies: they follow the rows of the
// basis, which are all aligned.
OrvStatus orvsDCTLifter_16s_Sfs(const int16_t *pSrc, int16_t *pDst, OrvsDCTLifterState_16s *pState,
                                int32_t scaleFactor) {
  const OrvStatus status = checkTransform(pState, pSrc, pDst);
  if (status != orvStsNoErr) return status;
  return transformToIntegers(pSrc, 0, pDst, load(pState), scaleFactor);
}

OrvStatus orvsDCTLifter_32s16s_Sfs(const int32_t *pSrc, int16_t *pDst, OrvsDCTLifterState_16s *pState,
                                   int32_t scaleFactor) {
  const OrvStatus status = checkTransform(pState, pSrc, pDst);
  if (status != orvStsNoErr) return status;
  const OrvsDCTLifterState_16s state = load(pState);
  return transformToIntegers(pSrc, alignedHead(pSrc, state.dctLen), pDst, state, scaleFactor);
}
