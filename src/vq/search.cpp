// orvsVQ_*, orvsVQDist_*: the code vector of each of many vectors.

#include "vq/search.h"

#include <bit>
#include <cmath>

#include "orvsr/vq.h"
#include "vq/distance.h"
#include "vq/treesearch.h"

using namespace orv;
using namespace orv::cdbk;

namespace orv::cdbk {

namespace {

// The cell of a field, or -1 below its lower end; above its upper end the cell behind the last.
std::int32_t cellOf(float offset, float cellLength, std::int32_t cells) {
  const float c = offset / cellLength;
  if (c < 0) return -1;
  return c < static_cast<float>(cells) ? static_cast<std::int32_t>(c) : cells;
}

template <class T>
std::int32_t listOf(const CdbkLineField &field, const T *x) {
  return cellOf(static_cast<float>(load(x)) - field.low, field.cellWidth, field.cellCount) + 1;
}

template <class T>
std::int32_t listOf(const CdbkGridField &field, const T *x) {
  const std::int32_t column =
      cellOf(static_cast<float>(load(x)) - field.left, field.cellWidth, field.columns);
  const std::int32_t row = cellOf(field.top - static_cast<float>(load(x + 1)), field.cellHeight, field.rows);
  return (row + 1) * (field.columns + 2) + column + 1;
}

template <class T, class Field>
void searchField(const CodeRows<T> &rows, const Field &field, const T *x, std::ptrdiff_t step,
                 std::int32_t count, Nearest *nearest) {
  for (std::int32_t i = 0; i < count; ++i) {
    const std::int32_t list = listOf(field, x + i * step);
    nearest[i] = scanListed(rows, x + i * step, field.ppLists[list], field.pCounts[list]);
  }
}

// The distance is taken anew, with the weights, whatever the scores of the search were.
template <class T, class Scores>
OrvStatus searchTrees(const CdbkState &cdbk, const Scores &scores, const T *x, std::ptrdiff_t step,
                      std::int32_t count, Nearest *nearest) {
  const CodeRows<T> rows(cdbk);
  for (std::int32_t i = 0; i < count; ++i) {
    const T *vector = x + i * step;
    const OrvStatus status = searchTree(scores, cdbk.pRoot, vector, &nearest[i].index);
    if (status != orvStsNoErr) return status;
    nearest[i].distance = distanceTo(vector, rows.row(nearest[i].index), rows.weights, rows.width);
  }
  return orvStsNoErr;
}

}  // namespace

template <class T>
OrvStatus search(const CdbkState &cdbk, const T *x, std::ptrdiff_t step, std::int32_t count,
                 Nearest *nearest) {
  if (cdbk.method != CDBK_DIRECT)
    return isWeighted(cdbk) ? searchTrees(cdbk, LogScores<T>(cdbk), x, step, count, nearest)
                            : searchTrees(cdbk, PlainScores<T>(cdbk), x, step, count, nearest);
  const CodeRows<T> rows(cdbk);
  if ((cdbk.flags & kFieldInUse) == 0) {
    scanMany(rows, x, step, count, nearest);
  } else if (const CdbkLineField *line = lineFieldOf(cdbk)) {
    searchField(rows, *line, x, step, count, nearest);
  } else if (const CdbkGridField *grid = gridFieldOf(cdbk)) {
    searchField(rows, *grid, x, step, count, nearest);
  }
  return orvStsNoErr;
}

template OrvStatus search(const CdbkState &, const float *, std::ptrdiff_t, std::int32_t, Nearest *);
template OrvStatus search(const CdbkState &, const std::int16_t *, std::ptrdiff_t, std::int32_t, Nearest *);

}  // namespace orv::cdbk

namespace {

template <class T>
OrvStatus quantise(const T *src, std::int32_t step, std::int32_t *index, std::int32_t height,
                   const CdbkState *codebook) {
  if (src == nullptr || index == nullptr || codebook == nullptr) return orvStsNullPtrErr;
  const CdbkState &cdbk = *codebookIn(codebook);
  if (step < 1 || height < 1 || step < cdbk.width) return orvStsSizeErr;
  return searchEach(cdbk, src, step, height,
                    [=](std::int32_t i, Nearest nearest) { store(index + i, nearest.index); });
}

// Distances are stored in single precision, whatever type the elements of `distance` have.
template <class T, class D>
OrvStatus quantiseWithDistance(const T *src, std::int32_t step, std::int32_t *index, D *distance,
                               std::int32_t height, const CdbkState *codebook) {
  if (src == nullptr || index == nullptr || distance == nullptr || codebook == nullptr)
    return orvStsNullPtrErr;
  const CdbkState &cdbk = *codebookIn(codebook);
  if (step < 1 || height < 1 || step < cdbk.width) return orvStsSizeErr;
  return searchEach(cdbk, src, step, height, [=](std::int32_t i, Nearest nearest) {
    store(index + i, nearest.index);
    store(distance + i, std::bit_cast<D>(std::sqrt(nearest.distance)));
  });
}

}  // namespace

OrvStatus orvsVQ_32f(const float *pSrc, int32_t step, int32_t *pIndx, int32_t height,
                     const CdbkState *pCdbk) {
  return quantise(pSrc, step, pIndx, height, pCdbk);
}

OrvStatus orvsVQ_16s(const int16_t *pSrc, int32_t step, int32_t *pIndx, int32_t height,
                     const CdbkState *pCdbk) {
  return quantise(pSrc, step, pIndx, height, pCdbk);
}

OrvStatus orvsVQDist_32f(const float *pSrc, int32_t step, int32_t *pIndx, float *pDist, int32_t height,
                         const CdbkState *pCdbk) {
  return quantiseWithDistance(pSrc, step, pIndx, pDist, height, pCdbk);
}

OrvStatus orvsVQDist_16s32s_Sfs(const int16_t *pSrc, int32_t step, int32_t *pIndx, int32_t *pDist,
                                int32_t height, const CdbkState *pCdbk, int32_t scaleFactor) {
  const OrvStatus status = quantiseWithDistance(pSrc, step, pIndx, pDist, height, pCdbk);
  if (status != orvStsNoErr) return status;
  convertInPlace(pDist, height, scaleFactor);
  return orvStsNoErr;
}
