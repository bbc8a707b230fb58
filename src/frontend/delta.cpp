// orvsDelta*, orvsDeltaDelta*, orvsEvalDelta* and orvsCopyColumn_*: time derivatives of feature streams.

#include "frontend/delta.h"

#include "orvsr/frontend.h"

using namespace orv;
using namespace orv::delta;

namespace {

// What a streaming call does without any row of its own is the end of an utterance alone.
bool badHeight(std::int32_t height, std::int32_t mode) {
  return height < 0 || (height == 0 && (mode & orvDeltaEnd) == 0);
}

// The order of the streaming forms. A row holds stages + 1 parts of width values, and an utterance begins
// with at least as many rows as the lead.
template <class Window>
OrvStatus checkStream(bool anyNull, std::int32_t width, std::int32_t dstStep, std::int32_t height,
                      std::int32_t mode, std::int32_t stages) {
  const std::int64_t parts = stages + 1;
  if (anyNull) return orvStsNullPtrErr;
  if (width < 1 || badHeight(height, mode)) return orvStsSizeErr;
  if (dstStep < parts * width) return orvStsStrideErr;
  if ((mode & orvDeltaBegin) != 0 && height < parts * Window::reach) return orvStsSizeErr;
  return orvStsNoErr;
}

OrvStatus checkAurora(bool anyNull, std::int32_t dstStep, std::int32_t height, std::int32_t mode) {
  if (anyNull) return orvStsNullPtrErr;
  if (badHeight(height, mode)) return orvStsSizeErr;
  if (dstStep < 3 * kAuroraWidth) return orvStsStrideErr;
  if ((mode & orvDeltaBegin) != 0 && height < kAuroraLead) return orvStsSizeErr;
  return orvStsNoErr;
}

OrvStatus checkBlock(bool anyNull, std::int32_t height, std::int32_t step, std::int32_t width,
                     std::int32_t offset, std::int32_t wndSize) {
  if (anyNull) return orvStsNullPtrErr;
  if (height < 1 || width < 1 || wndSize < 1 || offset < 0 || height < std::int64_t{2} * wndSize)
    return orvStsSizeErr;
  if (step < offset + std::int64_t{2} * width) return orvStsStrideErr;
  return orvStsNoErr;
}

template <class T>
OrvStatus copyColumn(const T *src, std::int32_t width, T *dst, std::int32_t dstStep, std::int32_t height) {
  if (src == nullptr || dst == nullptr) return orvStsNullPtrErr;
  if (height < 1 || width < 1) return orvStsSizeErr;
  if (dstStep < width) return orvStsStrideErr;
  const FeatureRows<const T> from{src, width};
  const FeatureRows<T> to{dst, dstStep};
  for (std::int64_t row = 0; row < height; ++row)
    std::memcpy(to[row], from[row], static_cast<std::size_t>(width) * sizeof(T));
  return orvStsNoErr;
}

}  // namespace

OrvStatus orvsDelta_Win1_32f_D2(const float *pSrc, int32_t width, float *pDst, int32_t dstStep,
                                int32_t height, float val, int32_t mode) {
  const bool anyNull = pSrc == nullptr || pDst == nullptr;
  const OrvStatus status = checkStream<Win1>(anyNull, width, dstStep, height, mode, 1);
  if (status != orvStsNoErr) return status;
  const Block<float> block{pSrc, width, pDst, dstStep};
  extend<Win1>(block, height, mode, 1, Single{}, StageGains<float>{{val}});
  return orvStsNoErr;
}

OrvStatus orvsDelta_Win2_32f_D2(const float *pSrc, int32_t width, float *pDst, int32_t dstStep,
                                int32_t height, float val, int32_t mode) {
  const bool anyNull = pSrc == nullptr || pDst == nullptr;
  const OrvStatus status = checkStream<Win2>(anyNull, width, dstStep, height, mode, 1);
  if (status != orvStsNoErr) return status;
  const Block<float> block{pSrc, width, pDst, dstStep};
  extend<Win2>(block, height, mode, 1, Single{}, StageGains<float>{{val}});
  return orvStsNoErr;
}

OrvStatus orvsDelta_Win1_16s_D2Sfs(const int16_t *pSrc, int32_t width, int16_t *pDst, int32_t dstStep,
                                   int32_t height, int16_t val, int32_t mode, int32_t scaleFactor) {
  const bool anyNull = pSrc == nullptr || pDst == nullptr;
  const OrvStatus status = checkStream<Win1>(anyNull, width, dstStep, height, mode, 1);
  if (status != orvStsNoErr) return status;
  const Block<std::int16_t> block{pSrc, width, pDst, dstStep};
  extend<Win1>(block, height, mode, 1, Wide{Shift(scaleFactor)}, StageGains<std::int16_t>{{val}});
  return orvStsNoErr;
}

OrvStatus orvsDelta_Win2_16s_D2Sfs(const int16_t *pSrc, int32_t width, int16_t *pDst, int32_t dstStep,
                                   int32_t height, int16_t val, int32_t mode, int32_t scaleFactor) {
  const bool anyNull = pSrc == nullptr || pDst == nullptr;
  const OrvStatus status = checkStream<Win2>(anyNull, width, dstStep, height, mode, 1);
  if (status != orvStsNoErr) return status;
  const Block<std::int16_t> block{pSrc, width, pDst, dstStep};
  extend<Win2>(block, height, mode, 1, Wide{Shift(scaleFactor)}, StageGains<std::int16_t>{{val}});
  return orvStsNoErr;
}

OrvStatus orvsDeltaMul_Win1_32f_D2(const float *pSrc, const float *pVal, int32_t width, float *pDst,
                                   int32_t dstStep, int32_t height, int32_t mode) {
  const bool anyNull = pSrc == nullptr || pVal == nullptr || pDst == nullptr;
  const OrvStatus status = checkStream<Win1>(anyNull, width, dstStep, height, mode, 1);
  if (status != orvStsNoErr) return status;
  const Block<float> block{pSrc, width, pDst, dstStep};
  extend<Win1>(block, height, mode, 1, Single{}, ColumnGains<float>{pVal, width});
  return orvStsNoErr;
}

OrvStatus orvsDeltaMul_Win2_32f_D2(const float *pSrc, const float *pVal, int32_t width, float *pDst,
                                   int32_t dstStep, int32_t height, int32_t mode) {
  const bool anyNull = pSrc == nullptr || pVal == nullptr || pDst == nullptr;
  const OrvStatus status = checkStream<Win2>(anyNull, width, dstStep, height, mode, 1);
  if (status != orvStsNoErr) return status;
  const Block<float> block{pSrc, width, pDst, dstStep};
  extend<Win2>(block, height, mode, 1, Single{}, ColumnGains<float>{pVal, width});
  return orvStsNoErr;
}

OrvStatus orvsDeltaMul_Win1_16s_D2Sfs(const int16_t *pSrc, const int16_t *pVal, int32_t width, int16_t *pDst,
                                      int32_t dstStep, int32_t height, int32_t mode, int32_t scaleFactor) {
  const bool anyNull = pSrc == nullptr || pVal == nullptr || pDst == nullptr;
  const OrvStatus status = checkStream<Win1>(anyNull, width, dstStep, height, mode, 1);
  if (status != orvStsNoErr) return status;
  const Block<std::int16_t> block{pSrc, width, pDst, dstStep};
  extend<Win1>(block, height, mode, 1, Wrapped{{Shift(scaleFactor)}}, ColumnGains<std::int16_t>{pVal, width});
  return orvStsNoErr;
}

OrvStatus orvsDeltaMul_Win2_16s_D2Sfs(const int16_t *pSrc, const int16_t *pVal, int32_t width, int16_t *pDst,
                                      int32_t dstStep, int32_t height, int32_t mode, int32_t scaleFactor) {
  const bool anyNull = pSrc == nullptr || pVal == nullptr || pDst == nullptr;
  const OrvStatus status = checkStream<Win2>(anyNull, width, dstStep, height, mode, 1);
  if (status != orvStsNoErr) return status;
  const Block<std::int16_t> block{pSrc, width, pDst, dstStep};
  extend<Win2>(block, height, mode, 1, Wrapped{{Shift(scaleFactor)}}, ColumnGains<std::int16_t>{pVal, width});
  return orvStsNoErr;
}

OrvStatus orvsDeltaDelta_Win1_32f_D2(const float *pSrc, int32_t width, float *pDst, int32_t dstStep,
                                     int32_t height, float val1, float val2, int32_t mode) {
  const bool anyNull = pSrc == nullptr || pDst == nullptr;
  const OrvStatus status = checkStream<Win1>(anyNull, width, dstStep, height, mode, 2);
  if (status != orvStsNoErr) return status;
  const Block<float> block{pSrc, width, pDst, dstStep};
  extend<Win1>(block, height, mode, 2, Single{}, StageGains<float>{{val1, val2}});
  return orvStsNoErr;
}

OrvStatus orvsDeltaDelta_Win2_32f_D2(const float *pSrc, int32_t width, float *pDst, int32_t dstStep,
                                     int32_t height, float val1, float val2, int32_t mode) {
  const bool anyNull = pSrc == nullptr || pDst == nullptr;
  const OrvStatus status = checkStream<Win2>(anyNull, width, dstStep, height, mode, 2);
  if (status != orvStsNoErr) return status;
  const Block<float> block{pSrc, width, pDst, dstStep};
  extend<Win2>(block, height, mode, 2, Single{}, StageGains<float>{{val1, val2}});
  return orvStsNoErr;
}

OrvStatus orvsDeltaDelta_Win1_16s_D2Sfs(const int16_t *pSrc, int32_t width, int16_t *pDst, int32_t dstStep,
                                        int32_t height, int16_t val1, int16_t val2, int32_t mode,
                                        int32_t scaleFactor) {
  const bool anyNull = pSrc == nullptr || pDst == nullptr;
  const OrvStatus status = checkStream<Win1>(anyNull, width, dstStep, height, mode, 2);
  if (status != orvStsNoErr) return status;
  const Block<std::int16_t> block{pSrc, width, pDst, dstStep};
  extend<Win1>(block, height, mode, 2, Wide{Shift(scaleFactor)}, StageGains<std::int16_t>{{val1, val2}});
  return orvStsNoErr;
}

OrvStatus orvsDeltaDelta_Win2_16s_D2Sfs(const int16_t *pSrc, int32_t width, int16_t *pDst, int32_t dstStep,
                                        int32_t height, int16_t val1, int16_t val2, int32_t mode,
                                        int32_t scaleFactor) {
  const bool anyNull = pSrc == nullptr || pDst == nullptr;
  const OrvStatus status = checkStream<Win2>(anyNull, width, dstStep, height, mode, 2);
  if (status != orvStsNoErr) return status;
  const Block<std::int16_t> block{pSrc, width, pDst, dstStep};
  extend<Win2>(block, height, mode, 2, Wide{Shift(scaleFactor)}, StageGains<std::int16_t>{{val1, val2}});
  return orvStsNoErr;
}

OrvStatus orvsDeltaDeltaMul_Win1_32f_D2(const float *pSrc, const float *pVal, int32_t width, float *pDst,
                                        int32_t dstStep, int32_t height, int32_t mode) {
  const bool anyNull = pSrc == nullptr || pVal == nullptr || pDst == nullptr;
  const OrvStatus status = checkStream<Win1>(anyNull, width, dstStep, height, mode, 2);
  if (status != orvStsNoErr) return status;
  const Block<float> block{pSrc, width, pDst, dstStep};
  extend<Win1>(block, height, mode, 2, Single{}, ColumnGains<float>{pVal, width});
  return orvStsNoErr;
}

OrvStatus orvsDeltaDeltaMul_Win2_32f_D2(const float *pSrc, const float *pVal, int32_t width, float *pDst,
                                        int32_t dstStep, int32_t height, int32_t mode) {
  const bool anyNull = pSrc == nullptr || pVal == nullptr || pDst == nullptr;
  const OrvStatus status = checkStream<Win2>(anyNull, width, dstStep, height, mode, 2);
  if (status != orvStsNoErr) return status;
  const Block<float> block{pSrc, width, pDst, dstStep};
  extend<Win2>(block, height, mode, 2, Single{}, ColumnGains<float>{pVal, width});
  return orvStsNoErr;
}

OrvStatus orvsDeltaDeltaMul_Win1_16s_D2Sfs(const int16_t *pSrc, const int16_t *pVal, int32_t width,
                                           int16_t *pDst, int32_t dstStep, int32_t height, int32_t mode,
                                           int32_t scaleFactor) {
  const bool anyNull = pSrc == nullptr || pVal == nullptr || pDst == nullptr;
  const OrvStatus status = checkStream<Win1>(anyNull, width, dstStep, height, mode, 2);
  if (status != orvStsNoErr) return status;
  const Block<std::int16_t> block{pSrc, width, pDst, dstStep};
  extend<Win1>(block, height, mode, 2, Wrapped{{Shift(scaleFactor)}}, ColumnGains<std::int16_t>{pVal, width});
  return orvStsNoErr;
}

OrvStatus orvsDeltaDeltaMul_Win2_16s_D2Sfs(const int16_t *pSrc, const int16_t *pVal, int32_t width,
                                           int16_t *pDst, int32_t dstStep, int32_t height, int32_t mode,
                                           int32_t scaleFactor) {
  const bool anyNull = pSrc == nullptr || pVal == nullptr || pDst == nullptr;
  const OrvStatus status = checkStream<Win2>(anyNull, width, dstStep, height, mode, 2);
  if (status != orvStsNoErr) return status;
  const Block<std::int16_t> block{pSrc, width, pDst, dstStep};
  extend<Win2>(block, height, mode, 2, Wrapped{{Shift(scaleFactor)}}, ColumnGains<std::int16_t>{pVal, width});
  return orvStsNoErr;
}

OrvStatus orvsDeltaDelta_Aurora_32f_D2(const float *pSrc, float *pDst, int32_t dstStep, int32_t height,
                                       int32_t mode) {
  const bool anyNull = pSrc == nullptr || pDst == nullptr;
  const OrvStatus status = checkAurora(anyNull, dstStep, height, mode);
  if (status != orvStsNoErr) return status;
  extendAurora(pSrc, pDst, dstStep, height, mode, AuroraSingle{}, NoGains{});
  return orvStsNoErr;
}

OrvStatus orvsDeltaDelta_Aurora_16s_D2Sfs(const int16_t *pSrc, int16_t *pDst, int32_t dstStep, int32_t height,
                                          int32_t mode, int32_t scaleFactor) {
  const bool anyNull = pSrc == nullptr || pDst == nullptr;
  const OrvStatus status = checkAurora(anyNull, dstStep, height, mode);
  if (status != orvStsNoErr) return status;
  extendAurora(pSrc, pDst, dstStep, height, mode, AuroraShifted(scaleFactor), NoGains{});
  return orvStsNoErr;
}

OrvStatus orvsDeltaDeltaMul_Aurora_32f_D2(const float *pSrc, const float *pVal, float *pDst, int32_t dstStep,
                                          int32_t height, int32_t mode) {
  const bool anyNull = pSrc == nullptr || pVal == nullptr || pDst == nullptr;
  const OrvStatus status = checkAurora(anyNull, dstStep, height, mode);
  if (status != orvStsNoErr) return status;
  extendAurora(pSrc, pDst, dstStep, height, mode, AuroraSingle{}, AuroraGains<float>{pVal});
  return orvStsNoErr;
}

OrvStatus orvsDeltaDeltaMul_Aurora_16s_D2Sfs(const int16_t *pSrc, const int16_t *pVal, int16_t *pDst,
                                             int32_t dstStep, int32_t height, int32_t mode,
                                             int32_t scaleFactor) {
  const bool anyNull = pSrc == nullptr || pVal == nullptr || pDst == nullptr;
  const OrvStatus status = checkAurora(anyNull, dstStep, height, mode);
  if (status != orvStsNoErr) return status;
  extendAurora(pSrc, pDst, dstStep, height, mode, AuroraShifted(scaleFactor),
               AuroraGains<std::int16_t>{pVal});
  return orvStsNoErr;
}

OrvStatus orvsEvalDelta_32f_D2(float *pSrcDst, int32_t height, int32_t step, int32_t width, int32_t offset,
                               int32_t wndSize, float val) {
  const OrvStatus status = checkBlock(pSrcDst == nullptr, height, step, width, offset, wndSize);
  if (status != orvStsNoErr) return status;
  const FeatureRows<float> rows{pSrcDst + offset, step};
  deriveBlock(rows, height, width, wndSize, Single{}, StageGains<float>{{val}});
  return orvStsNoErr;
}

// The differences wrap to 16 bits with one gain too, unlike those of the streaming forms with one gain.
OrvStatus orvsEvalDelta_16s_D2Sfs(int16_t *pSrcDst, int32_t height, int32_t step, int32_t width,
                                  int32_t offset, int32_t wndSize, int16_t val, int32_t scaleFactor) {
  const OrvStatus status = checkBlock(pSrcDst == nullptr, height, step, width, offset, wndSize);
  if (status != orvStsNoErr) return status;
  const FeatureRows<std::int16_t> rows{pSrcDst + offset, step};
  deriveBlock(rows, height, width, wndSize, Wrapped{{Shift(scaleFactor)}}, StageGains<std::int16_t>{{val}});
  return orvStsNoErr;
}

OrvStatus orvsEvalDeltaMul_32f_D2(float *pSrcDst, int32_t height, int32_t step, const float *pVal,
                                  int32_t width, int32_t offset, int32_t wndSize) {
  const OrvStatus status =
      checkBlock(pSrcDst == nullptr || pVal == nullptr, height, step, width, offset, wndSize);
  if (status != orvStsNoErr) return status;
  const FeatureRows<float> rows{pSrcDst + offset, step};
  deriveBlock(rows, height, width, wndSize, Single{}, ColumnGains<float>{pVal, width});
  return orvStsNoErr;
}

OrvStatus orvsEvalDeltaMul_16s_D2Sfs(int16_t *pSrcDst, int32_t height, int32_t step, const int16_t *pVal,
                                     int32_t width, int32_t offset, int32_t wndSize, int32_t scaleFactor) {
  const OrvStatus status =
      checkBlock(pSrcDst == nullptr || pVal == nullptr, height, step, width, offset, wndSize);
  if (status != orvStsNoErr) return status;
  const FeatureRows<std::int16_t> rows{pSrcDst + offset, step};
  deriveBlock(rows, height, width, wndSize, Wrapped{{Shift(scaleFactor)}},
              ColumnGains<std::int16_t>{pVal, width});
  return orvStsNoErr;
}

OrvStatus orvsCopyColumn_32f_D2(const float *pSrc, int32_t width, float *pDst, int32_t dstStep,
                                int32_t height) {
  return copyColumn(pSrc, width, pDst, dstStep, height);
}

OrvStatus orvsCopyColumn_16s_D2(const int16_t *pSrc, int32_t width, int16_t *pDst, int32_t dstStep,
                                int32_t height) {
  return copyColumn(pSrc, width, pDst, dstStep, height);
}
