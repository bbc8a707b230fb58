/**
 * @file matrix.h
 * Matrices and vectors.
 */
#ifndef ORVSR_MATRIX_H
#define ORVSR_MATRIX_H

#include "orvsr/types.h"

#ifdef __cplusplus
extern "C" {
#endif

/**
 * @defgroup blockdmatrix Block-diagonal matrices
 *
 * A square matrix of square blocks along its diagonal, zero elsewhere: the inverse covariance of features
 * that are correlated within groups only. orvsLogGaussSingle_BlockDVar_32f() and its relatives score with
 * one. An object is complete when InitAlloc returns and is only read afterwards, so any number of threads may
 * use it at once.
 *
 * Arguments of InitAlloc:
 * - ppMatrix: receives the object; written on success only.
 * - ppSrc: one pointer for each row of the whole matrix, in order: the first pBlockSizes[0] of them to the
 *   rows of the first block, and so on. A row holds as many elements as its block is wide. The row pointers
 *   are not tested for null, and the rows are copied.
 * - pBlockSizes: blockCount widths (= heights) of blocks, each 1 or more.
 * - blockCount: number of blocks, 1 or more.
 *
 * Statuses of InitAlloc, in the order of the checks: orvStsNullPtrErr (an argument null), orvStsSizeErr
 * (blockCount below 1; a block size below 1; more than 65535 rows in all), orvStsMemAllocErr, orvStsNoErr.
 *
 * Statuses of Free: orvStsNullPtrErr, orvStsNoErr.
 * @{
 */

/**
 * Builds a block-diagonal matrix of 16s elements.
 * orvStsNullPtrErr, orvStsSizeErr, orvStsMemAllocErr, orvStsNoErr.
 */
ORV_API OrvStatus orvsBlockDMatrixInitAlloc_16s(OrvBlockDMatrix_16s **ppMatrix, const int16_t *const *ppSrc,
                                                const int32_t *pBlockSizes, int32_t blockCount);

/**
 * Builds a block-diagonal matrix of 32f elements.
 * orvStsNullPtrErr, orvStsSizeErr, orvStsMemAllocErr, orvStsNoErr.
 */
ORV_API OrvStatus orvsBlockDMatrixInitAlloc_32f(OrvBlockDMatrix_32f **ppMatrix, const float *const *ppSrc,
                                                const int32_t *pBlockSizes, int32_t blockCount);

/**
 * Builds a block-diagonal matrix of 64f elements.
 * orvStsNullPtrErr, orvStsSizeErr, orvStsMemAllocErr, orvStsNoErr.
 */
ORV_API OrvStatus orvsBlockDMatrixInitAlloc_64f(OrvBlockDMatrix_64f **ppMatrix, const double *const *ppSrc,
                                                const int32_t *pBlockSizes, int32_t blockCount);

/** Releases a block-diagonal matrix of 16s elements. orvStsNullPtrErr, orvStsNoErr. */
ORV_API OrvStatus orvsBlockDMatrixFree_16s(OrvBlockDMatrix_16s *pMatrix);

/** Releases a block-diagonal matrix of 32f elements. orvStsNullPtrErr, orvStsNoErr. */
ORV_API OrvStatus orvsBlockDMatrixFree_32f(OrvBlockDMatrix_32f *pMatrix);

/** Releases a block-diagonal matrix of 64f elements. orvStsNullPtrErr, orvStsNoErr. */
ORV_API OrvStatus orvsBlockDMatrixFree_64f(OrvBlockDMatrix_64f *pMatrix);

/** @} */

#ifdef __cplusplus
}
#endif
#endif
