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

/**
 * @defgroup svd Singular value decomposition
 *
 *     A = U diag(W) V^T
 *
 * of a height x width matrix, by Householder reduction to bidiagonal form and implicitly shifted QR
 * iteration. U is height x width and takes the place of A in the in-place forms, W has width values, none
 * negative, V is width x width and not transposed. Where the height is below the width the values beyond it
 * are 0. The plain forms leave the values in no special order; the Sort forms order them descending, and the
 * columns of U and V with them, by selection: the largest value, the first of equals, changes places with the
 * next.
 *
 * Arguments:
 * - pSrc, pDstU, pDstV with step: matrices in one array each, all with a row every step elements (step >=
 * width); or ppSrc, ppDstU, ppDstV: arrays of row pointers. pSrcDstU, ppSrcDstU: A, replaced by U.
 * - height, width: 1 or more.
 * - iterations: the most QR sweeps that a single value may take, and one more: with 1, only a matrix whose
 * bidiagonal form is diagonal converges. 30 is usual.
 *
 * A value whose magnitude is lost in the largest sum of a row of the bidiagonal form counts as zero. NaNs in
 * A stay in the results.
 *
 * Statuses: orvStsNullPtrErr, orvStsSizeErr (height, width or iterations below 1, step below width),
 * orvStsMemAllocErr (two copies of the matrices are worked on), orvStsSvdConvergeErr (U, W and V hold what
 * was reached), orvStsNoErr.
 *
 * Source of the method: G. Golub and C. Reinsch, Singular value decomposition and least squares solutions,
 * Numerische Mathematik 14 (1970).
 * @{
 */

/** Decomposition of a matrix with a row step. */
ORV_API OrvStatus orvsSVD_64f_D2(const double *pSrc, double *pDstU, int32_t height, double *pDstW,
                                 double *pDstV, int32_t width, int32_t step, int32_t iterations);
/** Decomposition of a matrix with a row step, in place. */
ORV_API OrvStatus orvsSVD_64f_D2_I(double *pSrcDstU, int32_t height, double *pDstW, double *pDstV,
                                   int32_t width, int32_t step, int32_t iterations);
/** Decomposition of a matrix of row pointers. */
ORV_API OrvStatus orvsSVD_64f_D2L(const double *const *ppSrc, double *const *ppDstU, int32_t height,
                                  double *pDstW, double *const *ppDstV, int32_t width, int32_t iterations);
/** Decomposition of a matrix of row pointers, in place. */
ORV_API OrvStatus orvsSVD_64f_D2L_I(double *const *ppSrcDstU, int32_t height, double *pDstW,
                                    double *const *ppDstV, int32_t width, int32_t iterations);
/** Decomposition of a matrix with a row step, values descending. */
ORV_API OrvStatus orvsSVDSort_64f_D2(const double *pSrc, double *pDstU, int32_t height, double *pDstW,
                                     double *pDstV, int32_t width, int32_t step, int32_t iterations);
/** Decomposition of a matrix with a row step, in place, values descending. */
ORV_API OrvStatus orvsSVDSort_64f_D2_I(double *pSrcDstU, int32_t height, double *pDstW, double *pDstV,
                                       int32_t width, int32_t step, int32_t iterations);
/** Decomposition of a matrix of row pointers, values descending. */
ORV_API OrvStatus orvsSVDSort_64f_D2L(const double *const *ppSrc, double *const *ppDstU, int32_t height,
                                      double *pDstW, double *const *ppDstV, int32_t width,
                                      int32_t iterations);
/** Decomposition of a matrix of row pointers, in place, values descending. */
ORV_API OrvStatus orvsSVDSort_64f_D2L_I(double *const *ppSrcDstU, int32_t height, double *pDstW,
                                        double *const *ppDstV, int32_t width, int32_t iterations);
/** @} */

/**
 * @defgroup columnroutines Single columns and rows
 *
 * The operations that the decomposition consists of. Matrices are arrays of `rows` pointers to rows of
 * `columns` values; a column is named by its index, and taken from firstRow on.
 *
 * Statuses: orvStsNullPtrErr, orvStsSizeErr (columns, rows or len below 1; a column or firstRow that the
 * matrix has not), orvStsNoErr.
 * @{
 */

/** *pSum = sum of |a[r][column]|. */
ORV_API OrvStatus orvsSumColumnAbs_64f_D2L(const double *const *ppSrc, int32_t columns, int32_t rows,
                                           double *pSum, int32_t column, int32_t firstRow);
/** a[r][column] *= factor, and *pSum = sum of the squares of what results. */
ORV_API OrvStatus orvsSumColumnSqr_64f_D2L(double *const *ppSrcDst, int32_t columns, int32_t rows,
                                           double *pSum, int32_t column, int32_t firstRow, double factor);
/** *pSum = sum of a[r][column1] a[r][column2]. */
ORV_API OrvStatus orvsDotProdColumn_64f_D2L(const double *const *ppSrc, int32_t columns, int32_t rows,
                                            double *pSum, int32_t column1, int32_t column2, int32_t firstRow);
/** a[r][dstColumn] += factor a[r][srcColumn]. */
ORV_API OrvStatus orvsAddMulColumn_64f_D2L(double *const *ppSrcDst, int32_t columns, int32_t rows,
                                           int32_t srcColumn, int32_t dstColumn, int32_t firstRow,
                                           double factor);
/** a[r][column] *= factor. */
ORV_API OrvStatus orvsMulColumn_64f_D2L(double *const *ppSrcDst, int32_t columns, int32_t rows,
                                        int32_t column, int32_t firstRow, double factor);
/** Over all rows, with x = a[r][column2] and y = a[r][column1]: a[r][column2] = c x + s y, a[r][column1] = c
 * y - s x. */
ORV_API OrvStatus orvsQRTransColumn_64f_D2L(double *const *ppSrcDst, int32_t columns, int32_t rows,
                                            int32_t column1, int32_t column2, double c, double s);
/** *pSum = sum of |pSrc[i]| over len values. */
ORV_API OrvStatus orvsSumRowAbs_64f(const double *pSrc, int32_t len, double *pSum);
/** pSrcDst[i] *= factor over len values, and *pSum = sum of the squares of what results. */
ORV_API OrvStatus orvsSumRowSqr_64f(double *pSrcDst, int32_t len, double *pSum, double factor);
/** pSrcDst[i] += factor pSrc[i] over len values. */
ORV_API OrvStatus orvsAddMulRow_64f(const double *pSrc, double *pSrcDst, int32_t len, double factor);
/** @} */

#ifdef __cplusplus
}
#endif
#endif
