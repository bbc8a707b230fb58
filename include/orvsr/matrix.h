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

/**
 * @defgroup sumcolumn Sums of columns and of rows
 *
 *     SumColumn:  pDst[c] = sum over r of M[r][c]        c = 0 .. width - 1
 *     SumRow:     pDst[r] = sum over c of M[r][c]        r = 0 .. height - 1
 *
 * The 32f members add in double and round once; the 64f members add in double; both from index 0 upward. The
 * 16s members add exactly: to 32f they round once; to 32s they shift the 64-bit sum by scaleFactor, to the
 * right without rounding where it is positive and to the left where it is negative, and saturate.
 *
 * Arguments:
 * - pSrc or ppSrc: the matrix, height rows of width values.
 * - step: elements from one row of pSrc to the next, width or more.
 * - height, width: 1 or more.
 * - pDst: the sums, width (SumColumn) or height (SumRow) values, written on success only.
 * - scaleFactor: 2^-scaleFactor scales the sums; the count of the shift is taken modulo 64.
 *
 * Statuses: orvStsNullPtrErr, orvStsSizeErr (width or height below 1), orvStsStrideErr (width above step;
 * members that take one array), orvStsNoErr.
 *
 * Source of the method: G. H. Golub and C. F. Van Loan, Matrix Computations, section 1.1.
 * @{
 */

/** 32f, one array. */
ORV_API OrvStatus orvsSumColumn_32f_D2(const float *pSrc, int32_t step, int32_t height, float *pDst,
                                       int32_t width);
/** 32f, row pointers. */
ORV_API OrvStatus orvsSumColumn_32f_D2L(const float *const *ppSrc, int32_t height, float *pDst,
                                        int32_t width);
/** 64f, one array. */
ORV_API OrvStatus orvsSumColumn_64f_D2(const double *pSrc, int32_t step, int32_t height, double *pDst,
                                       int32_t width);
/** 64f, row pointers. */
ORV_API OrvStatus orvsSumColumn_64f_D2L(const double *const *ppSrc, int32_t height, double *pDst,
                                        int32_t width);
/** 16s to 32f, one array. */
ORV_API OrvStatus orvsSumColumn_16s32f_D2(const int16_t *pSrc, int32_t step, int32_t height, float *pDst,
                                          int32_t width);
/** 16s to 32f, row pointers. */
ORV_API OrvStatus orvsSumColumn_16s32f_D2L(const int16_t *const *ppSrc, int32_t height, float *pDst,
                                           int32_t width);
/** 16s to 32s, one array. */
ORV_API OrvStatus orvsSumColumn_16s32s_D2Sfs(const int16_t *pSrc, int32_t step, int32_t height, int32_t *pDst,
                                             int32_t width, int32_t scaleFactor);
/** 16s to 32s, row pointers. */
ORV_API OrvStatus orvsSumColumn_16s32s_D2LSfs(const int16_t *const *ppSrc, int32_t height, int32_t *pDst,
                                              int32_t width, int32_t scaleFactor);
/** 32f, one array. */
ORV_API OrvStatus orvsSumRow_32f_D2(const float *pSrc, int32_t step, int32_t height, float *pDst,
                                    int32_t width);
/** 32f, row pointers. */
ORV_API OrvStatus orvsSumRow_32f_D2L(const float *const *ppSrc, int32_t height, float *pDst, int32_t width);
/** 64f, one array. */
ORV_API OrvStatus orvsSumRow_64f_D2(const double *pSrc, int32_t step, int32_t height, double *pDst,
                                    int32_t width);
/** 64f, row pointers. */
ORV_API OrvStatus orvsSumRow_64f_D2L(const double *const *ppSrc, int32_t height, double *pDst, int32_t width);
/** 16s to 32f, one array. */
ORV_API OrvStatus orvsSumRow_16s32f_D2(const int16_t *pSrc, int32_t step, int32_t height, float *pDst,
                                       int32_t width);
/** 16s to 32f, row pointers. */
ORV_API OrvStatus orvsSumRow_16s32f_D2L(const int16_t *const *ppSrc, int32_t height, float *pDst,
                                        int32_t width);
/** 16s to 32s, one array. */
ORV_API OrvStatus orvsSumRow_16s32s_D2Sfs(const int16_t *pSrc, int32_t step, int32_t height, int32_t *pDst,
                                          int32_t width, int32_t scaleFactor);
/** 16s to 32s, row pointers. */
ORV_API OrvStatus orvsSumRow_16s32s_D2LSfs(const int16_t *const *ppSrc, int32_t height, int32_t *pDst,
                                           int32_t width, int32_t scaleFactor);
/** @} */

/**
 * @defgroup subrow A row taken from every row
 *
 *     M[r][c] = M[r][c] - pVec[c]
 *
 * in place, such as the mean of all frames from each. The 16s members wrap in 16 bits and do not saturate.
 *
 * Arguments:
 * - pVec: width values.
 * - pSrcDst or ppSrcDst: the matrix, height rows of width values; what lies between rows is not touched.
 * - step: elements from one row of pSrcDst to the next, width or more.
 * - height, width: 1 or more; note their order, which is not the same in all members.
 *
 * Statuses: orvStsNullPtrErr, orvStsSizeErr (width or height below 1), orvStsStrideErr (width above step;
 * members that take one array), orvStsNoErr.
 *
 * Source of the method: G. H. Golub and C. F. Van Loan, Matrix Computations, section 1.1.
 * @{
 */

/** 32f, one array. */
ORV_API OrvStatus orvsSubRow_32f_D2(const float *pVec, float *pSrcDst, int32_t step, int32_t height,
                                    int32_t width);
/** 32f, row pointers. */
ORV_API OrvStatus orvsSubRow_32f_D2L(const float *pVec, float *const *ppSrcDst, int32_t width,
                                     int32_t height);
/** 16s, one array. */
ORV_API OrvStatus orvsSubRow_16s_D2(const int16_t *pVec, int16_t *pSrcDst, int32_t step, int32_t height,
                                    int32_t width);
/** 16s, row pointers. */
ORV_API OrvStatus orvsSubRow_16s_D2L(const int16_t *pVec, int16_t *const *ppSrcDst, int32_t width,
                                     int32_t height);
/** @} */

/**
 * @defgroup addallrowsum The sum of all rows added to a vector
 *
 *     pSrcDst[c] = pSrcDst[c] + sum over r of M[r][c]
 *
 * in single; the rows are added from row 0 downward, and their sum to pSrcDst.
 *
 * Arguments:
 * - pSrc or ppSrc: the matrix, height rows of width values.
 * - step: elements from one row of pSrc to the next, width or more.
 * - height, width: 1 or more.
 * - pSrcDst: width values, read and written.
 *
 * Statuses: orvStsNullPtrErr, orvStsSizeErr (width or height below 1), orvStsStrideErr (width above step;
 * members that take one array), orvStsNoErr.
 *
 * Source of the method: G. H. Golub and C. F. Van Loan, Matrix Computations, section 1.1.
 * @{
 */

/** 32f, one array. */
ORV_API OrvStatus orvsAddAllRowSum_32f_D2(const float *pSrc, int32_t step, int32_t height, float *pSrcDst,
                                          int32_t width);
/** 32f, row pointers. */
ORV_API OrvStatus orvsAddAllRowSum_32f_D2L(const float *const *ppSrc, int32_t height, float *pSrcDst,
                                           int32_t width);
/** @} */

/**
 * @defgroup copycolumn Columns gathered by an index list
 *
 *     D[r][j] = S[r][pIndex[j]]              j = 0 .. dstWidth - 1,  r = 0 .. height - 1
 *
 * Arguments:
 * - pSrc or ppSrc: height rows of srcWidth values.
 * - pDst or ppDst: height rows of dstWidth values; the matrices do not overlap.
 * - pIndex: dstWidth column numbers from 0 to srcWidth - 1, in any order, any of them repeated.
 * - srcStep, dstStep: elements from one row to the next, at least the width of the row.
 * - srcWidth, dstWidth, height: 1 or more.
 *
 * Statuses: orvStsNullPtrErr, orvStsSizeErr (srcWidth below 1), orvStsStrideErr (srcWidth above srcStep),
 * orvStsSizeErr (dstWidth below 1), orvStsStrideErr (dstWidth above dstStep), orvStsSizeErr (height below 1),
 * orvStsSizeErr (an index out of range: it is met while the first row is copied, so the elements of that row
 * before it are written, and nothing else), orvStsNoErr. Members that take row pointers have no steps to
 * test.
 *
 * Source of the method: G. H. Golub and C. F. Van Loan, Matrix Computations, section 1.1.
 * @{
 */

/** 16s, one array. */
ORV_API OrvStatus orvsCopyColumn_Indirect_16s_D2(const int16_t *pSrc, int32_t srcWidth, int32_t srcStep,
                                                 int16_t *pDst, const int32_t *pIndex, int32_t dstWidth,
                                                 int32_t dstStep, int32_t height);
/** 16s, row pointers. */
ORV_API OrvStatus orvsCopyColumn_Indirect_16s_D2L(const int16_t *const *ppSrc, int32_t srcWidth,
                                                  int16_t *const *ppDst, const int32_t *pIndex,
                                                  int32_t dstWidth, int32_t height);
/** 32f, one array. */
ORV_API OrvStatus orvsCopyColumn_Indirect_32f_D2(const float *pSrc, int32_t srcWidth, int32_t srcStep,
                                                 float *pDst, const int32_t *pIndex, int32_t dstWidth,
                                                 int32_t dstStep, int32_t height);
/** 32f, row pointers. */
ORV_API OrvStatus orvsCopyColumn_Indirect_32f_D2L(const float *const *ppSrc, int32_t srcWidth,
                                                  float *const *ppDst, const int32_t *pIndex,
                                                  int32_t dstWidth, int32_t height);
/** 64f, one array. */
ORV_API OrvStatus orvsCopyColumn_Indirect_64f_D2(const double *pSrc, int32_t srcWidth, int32_t srcStep,
                                                 double *pDst, const int32_t *pIndex, int32_t dstWidth,
                                                 int32_t dstStep, int32_t height);
/** 64f, row pointers. */
ORV_API OrvStatus orvsCopyColumn_Indirect_64f_D2L(const double *const *ppSrc, int32_t srcWidth,
                                                  double *const *ppDst, const int32_t *pIndex,
                                                  int32_t dstWidth, int32_t height);
/** @} */

/**
 * @defgroup weightedsum Two vectors mixed with normalised weights
 *
 *     WeightedSum:      pDst[i] = pSrc1[i] (weight1 r) + pSrc2[i] (weight2 r)
 *     WeightedSumHalf:  pDst[i] = pSrc1[i] r + pSrc2[i] (weight2 r)             r = 1 / (weight1 + weight2)
 *
 * for len values, in the type of the weights. In the Half form the first weight enters through the sum only.
 * 16s results are limited to -32768 .. 32767 and truncated toward zero; a NaN gives 0.
 *
 * Where the weights add up to exactly 0, pDst[i] gets the sign of t = pSrc1[i] weight1 + pSrc2[i] weight2:
 * plus infinity for t above 0, minus infinity below, and a NaN otherwise; 32767, -32768 and 0 in the 16s
 * members. All elements are written, and the status is a warning.
 *
 * Arguments:
 * - pSrc1, pSrc2: len values each.
 * - pDst: len values, written; may be one of the inputs.
 * - len: 1 or more.
 * - weight1, weight2: any values. A sum that is a NaN is not 0.
 *
 * Statuses: orvStsNullPtrErr, orvStsSizeErr (len below 1), orvStsDivByZeroWrn (weight1 + weight2 is 0),
 * orvStsNoErr.
 *
 * Source of the method: F. Jelinek and R. L. Mercer, Interpolated estimation of Markov source parameters from
 * sparse data, 1980.
 * @{
 */

/** Mixed with both weights, 16s. */
ORV_API OrvStatus orvsWeightedSum_16s(const int16_t *pSrc1, const int16_t *pSrc2, int16_t *pDst, int32_t len,
                                      float weight1, float weight2);
/** Mixed with both weights, 32f. */
ORV_API OrvStatus orvsWeightedSum_32f(const float *pSrc1, const float *pSrc2, float *pDst, int32_t len,
                                      float weight1, float weight2);
/** Mixed with both weights, 64f. */
ORV_API OrvStatus orvsWeightedSum_64f(const double *pSrc1, const double *pSrc2, double *pDst, int32_t len,
                                      double weight1, double weight2);
/** The first factor is 1 / (weight1 + weight2), 16s. */
ORV_API OrvStatus orvsWeightedSumHalf_16s(const int16_t *pSrc1, const int16_t *pSrc2, int16_t *pDst,
                                          int32_t len, float weight1, float weight2);
/** The first factor is 1 / (weight1 + weight2), 32f. */
ORV_API OrvStatus orvsWeightedSumHalf_32f(const float *pSrc1, const float *pSrc2, float *pDst, int32_t len,
                                          float weight1, float weight2);
/** The first factor is 1 / (weight1 + weight2), 64f. */
ORV_API OrvStatus orvsWeightedSumHalf_64f(const double *pSrc1, const double *pSrc2, double *pDst, int32_t len,
                                          double weight1, double weight2);
/** @} */

/**
 * @defgroup vecmatmul Products of a vector and a matrix
 *
 *     VecMatMul:  pDst[c] = sum over r of pVec[r] M[r][c]        c = 0 .. width - 1,  height values in pVec
 *     MatVecMul:  pDst[r] = sum over c of M[r][c] pVec[c]        r = 0 .. height - 1,  width values in pVec
 *
 * The 32f members add in single: VecMatMul from row 0 downward, MatVecMul in four lanes of which the last
 * step adds 0 + 2 and 1 + 3 and then those two (below width 4 from column 0 upward). The integer members add
 * in 64 bits (beyond which a sum of 32s products wraps), shift by scaleFactor, to the right without rounding
 * where it is positive and to the left where it is negative, and saturate to the destination.
 *
 * Arguments:
 * - pVec: the vector.
 * - pMat or ppMat: the matrix, height rows of width values.
 * - step: elements from one row of pMat to the next, width or more.
 * - height, width: 1 or more.
 * - pDst: the product, written on success only; it overlaps neither pVec nor the matrix.
 * - scaleFactor: 2^-scaleFactor scales the product; the count of the shift is taken modulo 64.
 *
 * Statuses: orvStsNullPtrErr, orvStsSizeErr (width or height below 1), orvStsStrideErr (width above step;
 * members that take one array), orvStsNoErr.
 *
 * Source of the method: G. H. Golub and C. F. Van Loan, Matrix Computations, section 1.1.
 * @{
 */

/** 32f, one array. */
ORV_API OrvStatus orvsVecMatMul_32f_D2(const float *pVec, const float *pMat, int32_t step, int32_t height,
                                       float *pDst, int32_t width);
/** 32f, row pointers. */
ORV_API OrvStatus orvsVecMatMul_32f_D2L(const float *pVec, const float *const *ppMat, int32_t height,
                                        float *pDst, int32_t width);
/** 16s, one array. */
ORV_API OrvStatus orvsVecMatMul_16s_D2Sfs(const int16_t *pVec, const int16_t *pMat, int32_t step,
                                          int32_t height, int16_t *pDst, int32_t width, int32_t scaleFactor);
/** 16s, row pointers. */
ORV_API OrvStatus orvsVecMatMul_16s_D2LSfs(const int16_t *pVec, const int16_t *const *ppMat, int32_t height,
                                           int16_t *pDst, int32_t width, int32_t scaleFactor);
/** 16s to 32s, one array. */
ORV_API OrvStatus orvsVecMatMul_16s32s_D2Sfs(const int16_t *pVec, const int16_t *pMat, int32_t step,
                                             int32_t height, int32_t *pDst, int32_t width,
                                             int32_t scaleFactor);
/** 16s to 32s, row pointers. */
ORV_API OrvStatus orvsVecMatMul_16s32s_D2LSfs(const int16_t *pVec, const int16_t *const *ppMat,
                                              int32_t height, int32_t *pDst, int32_t width,
                                              int32_t scaleFactor);
/** 32s, one array. */
ORV_API OrvStatus orvsVecMatMul_32s_D2Sfs(const int32_t *pVec, const int32_t *pMat, int32_t step,
                                          int32_t height, int32_t *pDst, int32_t width, int32_t scaleFactor);
/** 32s, row pointers. */
ORV_API OrvStatus orvsVecMatMul_32s_D2LSfs(const int32_t *pVec, const int32_t *const *ppMat, int32_t height,
                                           int32_t *pDst, int32_t width, int32_t scaleFactor);
/** 32f, one array. */
ORV_API OrvStatus orvsMatVecMul_32f_D2(const float *pMat, int32_t step, const float *pVec, int32_t width,
                                       float *pDst, int32_t height);
/** 32f, row pointers. */
ORV_API OrvStatus orvsMatVecMul_32f_D2L(const float *const *ppMat, const float *pVec, int32_t width,
                                        float *pDst, int32_t height);
/** 16s, one array. */
ORV_API OrvStatus orvsMatVecMul_16s_D2Sfs(const int16_t *pMat, int32_t step, const int16_t *pVec,
                                          int32_t width, int16_t *pDst, int32_t height, int32_t scaleFactor);
/** 16s, row pointers. */
ORV_API OrvStatus orvsMatVecMul_16s_D2LSfs(const int16_t *const *ppMat, const int16_t *pVec, int32_t width,
                                           int16_t *pDst, int32_t height, int32_t scaleFactor);
/** 16s to 32s, one array. */
ORV_API OrvStatus orvsMatVecMul_16s32s_D2Sfs(const int16_t *pMat, int32_t step, const int16_t *pVec,
                                             int32_t width, int32_t *pDst, int32_t height,
                                             int32_t scaleFactor);
/** 16s to 32s, row pointers. */
ORV_API OrvStatus orvsMatVecMul_16s32s_D2LSfs(const int16_t *const *ppMat, const int16_t *pVec, int32_t width,
                                              int32_t *pDst, int32_t height, int32_t scaleFactor);
/** 32s, one array. */
ORV_API OrvStatus orvsMatVecMul_32s_D2Sfs(const int32_t *pMat, int32_t step, const int32_t *pVec,
                                          int32_t width, int32_t *pDst, int32_t height, int32_t scaleFactor);
/** 32s, row pointers. */
ORV_API OrvStatus orvsMatVecMul_32s_D2LSfs(const int32_t *const *ppMat, const int32_t *pVec, int32_t width,
                                           int32_t *pDst, int32_t height, int32_t scaleFactor);
/** @} */

/* ---------------------------------------------------------------- singular value decomposition */

/**
 * @defgroup svd Singular value decomposition
 *
 *     A = U diag(W) V^T
 *
 * of a height x width matrix, by Householder reduction to bidiagonal form and implicitly shifted QR
 * iteration. U is height x width and takes the place of A in the in-place forms, W has width values, none
 * negative, V is width x width and not transposed. Where the height is below the width, width - height of the
 * values are 0 up to rounding, and the columns of U that belong to them are no part of an orthonormal set.
 * The plain forms leave the values in no special order; the Sort forms order them descending, and the columns
 * of U and V with them, by selection: the largest value, the first of equals, changes places with the next.
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
 * orvStsMemAllocErr (copies of U and V are worked on; the forms that are not in place have copied A to U by
 * then), orvStsSvdConvergeErr (U, W and V hold what was reached), orvStsNoErr.
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
