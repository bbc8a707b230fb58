// orvsSplitVQ_*: pieces of vectors, each quantised with a codebook of its own.

#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "orvsr/vq.h"
#include "vq/bits.h"
#include "vq/search.h"

using namespace orv;
using namespace orv::cdbk;

namespace {

struct Sums {
  std::int64_t widths = 0, bits = 0;  // of all codebooks
  std::int64_t unsearched = 0;        // widths of those that have no search
  std::int32_t searched = 0;          // codebooks that have one
};

OrvStatus addUp(const CdbkState *const *codebooks, std::int32_t streams, Sums *sums) {
  for (std::int32_t i = 0; i < streams; ++i) {
    if (codebooks[i] == nullptr) return orvStsNullPtrErr;
    const CdbkState &cdbk = *codebookIn(codebooks[i]);
    sums->widths += cdbk.width;
    sums->bits += cdbk.sizeBits;
    if (isSearchable(cdbk)) {
      ++sums->searched;
    } else {
      sums->unsearched += cdbk.width;
    }
  }
  return orvStsNoErr;
}

// Where the index of a codebook stands among those of a row.
struct Place {
  std::int32_t index = 0;
  std::int64_t bit = 0;
  std::int32_t bits = 0;
};

// Stream by stream. A codebook without a search takes nothing from the source and writes nothing, while the
// end of a row still moves on by what is left of the step behind all widths: from the second row on,
// everything stands that much further ahead. sink(row, place, index) takes the result.
template <class T, class Sink>
OrvStatus searchPieces(const T *src, std::int32_t srcStep, std::int32_t height,
                       const CdbkState *const *codebooks, std::int32_t streams, const Sums &sums, Sink sink) {
  const auto step = static_cast<std::ptrdiff_t>(srcStep - sums.unsearched);
  Place place;
  for (std::int32_t i = 0; i < streams; ++i) {
    const CdbkState &cdbk = *codebookIn(codebooks[i]);
    if (!isSearchable(cdbk)) continue;
    place.bits = cdbk.sizeBits;
    const OrvStatus status = searchEach(
        cdbk, src, step, height, [&](std::int32_t row, Nearest nearest) { sink(row, place, nearest.index); });
    if (status != orvStsNoErr) return status;
    src += cdbk.width;
    ++place.index;
    place.bit += place.bits;
  }
  return orvStsNoErr;
}

template <class T, class Index>
OrvStatus splitToIndices(const T *src, std::int32_t srcStep, Index *dst, std::int32_t dstStep,
                         std::int32_t height, const CdbkState *const *codebooks, std::int32_t streams) {
  if (codebooks == nullptr || src == nullptr || dst == nullptr) return orvStsNullPtrErr;
  if (srcStep < 1 || dstStep < 1 || height < 1 || streams < 1 || streams > dstStep) return orvStsSizeErr;
  Sums sums;
  if (const OrvStatus status = addUp(codebooks, streams, &sums); status != orvStsNoErr) return status;
  if (sums.widths > srcStep) return orvStsSizeErr;
  const std::ptrdiff_t step = dstStep - (streams - sums.searched);
  return searchPieces(src, srcStep, height, codebooks, streams, sums,
                      [=](std::int32_t row, const Place &place, std::int32_t index) {
                        store(dst + row * step + place.index, static_cast<Index>(index));
                      });
}

template <class T>
OrvStatus splitToBits(const T *src, std::int32_t srcStep, std::uint8_t *dst, std::int32_t dstStep,
                      std::int32_t height, const CdbkState *const *codebooks, std::int32_t streams) {
  if (codebooks == nullptr || src == nullptr || dst == nullptr) return orvStsNullPtrErr;
  if (srcStep < 1 || dstStep < 1 || height < 1 || streams < 1) return orvStsSizeErr;
  Sums sums;
  if (const OrvStatus status = addUp(codebooks, streams, &sums); status != orvStsNoErr) return status;
  if (sums.widths > srcStep || sums.bits > dstStep) return orvStsSizeErr;
  ownsZero_8u(dst, static_cast<std::size_t>((std::int64_t{dstStep} * height + 7) / 8));
  return searchPieces(src, srcStep, height, codebooks, streams, sums,
                      [=](std::int32_t row, const Place &place, std::int32_t index) {
                        putBits(dst, std::int64_t{dstStep} * row + place.bit, place.bits, index);
                      });
}

}  // namespace

OrvStatus orvsSplitVQ_32f16s(const float *pSrc, int32_t srcStep, int16_t *pDst, int32_t dstStep,
                             int32_t height, const CdbkState *const *ppCdbks, int32_t nStreams) {
  return splitToIndices(pSrc, srcStep, pDst, dstStep, height, ppCdbks, nStreams);
}

OrvStatus orvsSplitVQ_32f8u(const float *pSrc, int32_t srcStep, uint8_t *pDst, int32_t dstStep,
                            int32_t height, const CdbkState *const *ppCdbks, int32_t nStreams) {
  return splitToIndices(pSrc, srcStep, pDst, dstStep, height, ppCdbks, nStreams);
}

OrvStatus orvsSplitVQ_32f1u(const float *pSrc, int32_t srcStep, uint8_t *pDst, int32_t dstStep,
                            int32_t height, const CdbkState *const *ppCdbks, int32_t nStreams) {
  return splitToBits(pSrc, srcStep, pDst, dstStep, height, ppCdbks, nStreams);
}

OrvStatus orvsSplitVQ_16s16s(const int16_t *pSrc, int32_t srcStep, int16_t *pDst, int32_t dstStep,
                             int32_t height, const CdbkState *const *ppCdbks, int32_t nStreams) {
  return splitToIndices(pSrc, srcStep, pDst, dstStep, height, ppCdbks, nStreams);
}

OrvStatus orvsSplitVQ_16s8u(const int16_t *pSrc, int32_t srcStep, uint8_t *pDst, int32_t dstStep,
                            int32_t height, const CdbkState *const *ppCdbks, int32_t nStreams) {
  return splitToIndices(pSrc, srcStep, pDst, dstStep, height, ppCdbks, nStreams);
}

OrvStatus orvsSplitVQ_16s1u(const int16_t *pSrc, int32_t srcStep, uint8_t *pDst, int32_t dstStep,
                            int32_t height, const CdbkState *const *ppCdbks, int32_t nStreams) {
  return splitToBits(pSrc, srcStep, pDst, dstStep, height, ppCdbks, nStreams);
}
