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

/* ---------------------------------------------------------------- element-wise maps */

/**
 * @defgroup expnegsqr exp(-x^2)
 *
 * pDst[i] = exp(-pSrc[i]^2) for len values, 1 or more. 32f sources are squared in single; the exponential is
 * formed in double and rounded to the type of the result.
 *
 * Statuses: orvStsNullPtrErr, orvStsSizeErr (len below 1), orvStsNoErr.
 * @{
 */

/** 32f values. */
ORV_API OrvStatus orvsExpNegSqr_32f(const float *pSrc, float *pDst, int32_t len);
/** 32f values in place. */
ORV_API OrvStatus orvsExpNegSqr_32f_I(float *pSrcDst, int32_t len);
/** 32f values to 64f. */
ORV_API OrvStatus orvsExpNegSqr_32f64f(const float *pSrc, double *pDst, int32_t len);
/** 64f values. */
ORV_API OrvStatus orvsExpNegSqr_64f(const double *pSrc, double *pDst, int32_t len);
/** 64f values in place. */
ORV_API OrvStatus orvsExpNegSqr_64f_I(double *pSrcDst, int32_t len);
/** @} */

/**
 * @defgroup sinc sin(x) / x
 *
 * pDst[i] = sin(pSrc[i]) / pSrc[i] for len values, 1 or more; exactly 1 at a zero of either sign. The sine is
 * formed in double; from 32f to 32f it is rounded to single and then divided in single.
 *
 * Statuses: orvStsNullPtrErr, orvStsSizeErr (len below 1), orvStsNoErr.
 * @{
 */

/** 32f values. */
ORV_API OrvStatus orvsSinC_32f(const float *pSrc, float *pDst, int32_t len);
/** 32f values in place. */
ORV_API OrvStatus orvsSinC_32f_I(float *pSrcDst, int32_t len);
/** 32f values to 64f. */
ORV_API OrvStatus orvsSinC_32f64f(const float *pSrc, double *pDst, int32_t len);
/** 64f values. */
ORV_API OrvStatus orvsSinC_64f(const double *pSrc, double *pDst, int32_t len);
/** 64f values in place. */
ORV_API OrvStatus orvsSinC_64f_I(double *pSrcDst, int32_t len);
/** @} */

/**
 * @defgroup recsqrt Floored reciprocal square root
 *
 * 1 / sqrt(x) in single precision for len values, 1 or more, such as the variances of which a trainer wants
 * standard deviations' inverses. An element below the floor becomes the floor itself, not its reciprocal
 * root. In the integer forms elements and floor are widened to single before they are compared, and the
 * result times 2^-scaleFactor is saturated and truncated toward zero.
 *
 * Statuses: orvStsNullPtrErr, orvStsSizeErr (len below 1), orvStsBadArgErr (floor 0 or below),
 * orvStsDegenerateDataWrn (every element was below the floor; all are written), orvStsNoErr.
 * @{
 */

/** 32f values in place. */
ORV_API OrvStatus orvsRecSqrt_32f(float *pSrcDst, int32_t len, float floor);
/** 32s values in place. */
ORV_API OrvStatus orvsRecSqrt_32s_Sfs(int32_t *pSrcDst, int32_t len, int32_t floor, int32_t scaleFactor);
/** 32s values to 16s. */
ORV_API OrvStatus orvsRecSqrt_32s16s_Sfs(const int32_t *pSrc, int16_t *pDst, int32_t len, int32_t floor,
                                         int32_t scaleFactor);
/** @} */

/* ---------------------------------------------------------------- row and column operations */

/* ---------------------------------------------------------------- singular value decomposition */

#ifdef __cplusplus
}
#endif
#endif
