/**
 * @file gauss.h
 * Log-likelihoods of feature vectors under Gaussians and Gaussian mixtures.
 */
#ifndef ORVSR_GAUSS_H
#define ORVSR_GAUSS_H

#include "orvsr/types.h"

#ifdef __cplusplus
extern "C" {
#endif

/**
 * @defgroup loggausssingle Score of one vector under one Gaussian
 *
 *     *pResult = gconst - 1/2 * sum over j of (pSrc[j] - pMean[j])^2 * w[j]               j = 0 .. len - 1
 *
 * the log-likelihood of the vector, with w[j] = pVar[j], an inverse variance; w[j] = 1 in the IdVar forms;
 * and w[j] = 1 / pVar[j], pVar[j] being a variance, in the DirectVar forms. In the BlockDVar forms the sum is
 * the quadratic form d' M d of the differences d, with M a block-diagonal inverse covariance (see
 * @ref blockdmatrix).
 *
 * Arguments:
 * - pSrc, pMean: the vector and the mean, len values each.
 * - pVar: len inverse variances, or variances in the DirectVar forms. Only a zero variance is looked for:
 *   negative values and NaNs flow through.
 * - pBlockDMatrix: inverse covariance with len rows in all; read only.
 * - len: values in a vector, 1 or more.
 * - pResult: one value, written on success only.
 * - gconst: additive constant of the Gaussian: the log of its mixture weight less half of the constant that
 *   orvsUpdateGConst_32f() computes.
 * - scaleFactor: of the 16s forms, any value: 2^-scaleFactor scales the sum. It stands behind gconst in the
 *   Sfs forms and before it in the Scaled forms, which is meant. The count of a shift is taken modulo 64; a
 *   power of two is infinite from 2^128 on, and zero below 2^-149.
 *
 * Half of the sum is subtracted from gconst at the very end, so these scores may differ in their last bits
 * from those of @ref loggauss, whose constant enters the sum. The 32f and 64f sums are grouped by the
 * alignment of pVar (pMean in the IdVar forms). The DirectVar forms add strictly from first to last.
 * Saturation is silent.
 *
 * The BlockDVar forms form the differences of a block, the dot product of each of its rows with them, and add
 * the products of those with the differences. From len 112 on they allocate the differences.
 *
 * Source of the method: L. Rabiner and B.-H. Juang, Fundamentals of Speech Recognition, 1993, section 6.6.
 * @{
 */

/**
 * Score of a 32f vector, inverse variances, in 32f.
 * orvStsNullPtrErr, orvStsSizeErr (len below 1), orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGaussSingle_32f(const float *pSrc, const float *pMean, const float *pVar,
                                         int32_t len, float *pResult, float gconst);

/**
 * Score of a 32f vector, inverse variances; every value is widened and all work done in 64f.
 * orvStsNullPtrErr, orvStsSizeErr (len below 1), orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGaussSingle_32f64f(const float *pSrc, const float *pMean, const float *pVar,
                                            int32_t len, double *pResult, double gconst);

/**
 * Score of a 64f vector, inverse variances, in 64f.
 * orvStsNullPtrErr, orvStsSizeErr (len below 1), orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGaussSingle_64f(const double *pSrc, const double *pMean, const double *pVar,
                                         int32_t len, double *pResult, double gconst);

/**
 * Score of a 16s vector, inverse variances: an exact 64-bit sum S, and gconst - (S >> (scaleFactor + 1)),
 * saturated to 32 bits. The shift rounds S down, and so the score up; orvsLogGaussMax_16s32s_D2Sfs() rounds
 * it down.
 * orvStsNullPtrErr, orvStsSizeErr (len below 1), orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGaussSingle_16s32s_Sfs(const int16_t *pSrc, const int16_t *pMean,
                                                const int16_t *pVar, int32_t len, int32_t *pResult,
                                                int32_t gconst, int32_t scaleFactor);

/**
 * Score of a 16s vector, inverse variances: an exact 64-bit sum S, and gconst - (S >> (scaleFactor + 1)), of
 * which the low 32 bits are stored: beyond 32 bits the score wraps.
 * orvStsNullPtrErr, orvStsSizeErr (len below 1), orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGaussSingle_Low_16s32s_Sfs(const int16_t *pSrc, const int16_t *pMean,
                                                    const int16_t *pVar, int32_t len, int32_t *pResult,
                                                    int32_t gconst, int32_t scaleFactor);

/**
 * Score of a 16s vector, inverse variances: a 32f sum S, and gconst - S * 2^-(scaleFactor + 1).
 * orvStsNullPtrErr, orvStsSizeErr (len below 1), orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGaussSingle_Scaled_16s32f(const int16_t *pSrc, const int16_t *pMean,
                                                   const int16_t *pVar, int32_t len, float *pResult,
                                                   int32_t scaleFactor, float gconst);

/**
 * Score of a 16s vector, inverse variances: a 32f sum S, and gconst - (S * 0.5) * 2^-scaleFactor.
 * orvStsNullPtrErr, orvStsSizeErr (len below 1), orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGaussSingle_LowScaled_16s32f(const int16_t *pSrc, const int16_t *pMean,
                                                      const int16_t *pVar, int32_t len, float *pResult,
                                                      int32_t scaleFactor, float gconst);

/**
 * Score of a 32f vector, unit variances, in 32f.
 * orvStsNullPtrErr, orvStsSizeErr (len below 1), orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGaussSingle_IdVar_32f(const float *pSrc, const float *pMean, int32_t len,
                                               float *pResult, float gconst);

/**
 * Score of a 32f vector, unit variances; every value is widened and all work done in 64f.
 * orvStsNullPtrErr, orvStsSizeErr (len below 1), orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGaussSingle_IdVar_32f64f(const float *pSrc, const float *pMean, int32_t len,
                                                  double *pResult, double gconst);

/**
 * Score of a 64f vector, unit variances, in 64f.
 * orvStsNullPtrErr, orvStsSizeErr (len below 1), orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGaussSingle_IdVar_64f(const double *pSrc, const double *pMean, int32_t len,
                                               double *pResult, double gconst);

/**
 * Score of a 16s vector, unit variances: an exact 64-bit sum S, and gconst - (S >> (scaleFactor + 1)),
 * saturated to 32 bits. The shift rounds S down, and so the score up; orvsLogGaussMax_16s32s_D2Sfs() rounds
 * it down.
 * orvStsNullPtrErr, orvStsSizeErr (len below 1), orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGaussSingle_IdVar_16s32s_Sfs(const int16_t *pSrc, const int16_t *pMean, int32_t len,
                                                      int32_t *pResult, int32_t gconst, int32_t scaleFactor);

/**
 * Score of a 16s vector, unit variances: an exact 64-bit sum S, and gconst - (S >> (scaleFactor + 1)), of
 * which the low 32 bits are stored: beyond 32 bits the score wraps.
 * orvStsNullPtrErr, orvStsSizeErr (len below 1), orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGaussSingle_IdVarLow_16s32s_Sfs(const int16_t *pSrc, const int16_t *pMean,
                                                         int32_t len, int32_t *pResult, int32_t gconst,
                                                         int32_t scaleFactor);

/**
 * Score of a 16s vector, unit variances: a 32f sum S, and gconst - S * 2^-(scaleFactor + 1).
 * orvStsNullPtrErr, orvStsSizeErr (len below 1), orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGaussSingle_IdVarScaled_16s32f(const int16_t *pSrc, const int16_t *pMean,
                                                        int32_t len, float *pResult, int32_t scaleFactor,
                                                        float gconst);

/**
 * Score of a 16s vector, unit variances: a 32f sum S, and gconst - (S * 0.5) * 2^-scaleFactor.
 * orvStsNullPtrErr, orvStsSizeErr (len below 1), orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGaussSingle_IdVarLowScaled_16s32f(const int16_t *pSrc, const int16_t *pMean,
                                                           int32_t len, float *pResult, int32_t scaleFactor,
                                                           float gconst);

/**
 * Score of a 32f vector, variances; all work in 64f, rounded once.
 * orvStsNullPtrErr, orvStsSizeErr (len below 1), orvStsDivByZeroWrn (a variance is zero; nothing written),
 * orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGaussSingle_DirectVar_32f(const float *pSrc, const float *pMean, const float *pVar,
                                                   int32_t len, float *pResult, float gconst);

/**
 * Score of a 32f vector, variances; every value is widened and all work done in 64f.
 * orvStsNullPtrErr, orvStsSizeErr (len below 1), orvStsDivByZeroWrn (a variance is zero; nothing written),
 * orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGaussSingle_DirectVar_32f64f(const float *pSrc, const float *pMean,
                                                      const float *pVar, int32_t len, double *pResult,
                                                      double gconst);

/**
 * Score of a 64f vector, variances, in 64f.
 * orvStsNullPtrErr, orvStsSizeErr (len below 1), orvStsDivByZeroWrn (a variance is zero; nothing written),
 * orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGaussSingle_DirectVar_64f(const double *pSrc, const double *pMean,
                                                   const double *pVar, int32_t len, double *pResult,
                                                   double gconst);

/**
 * Score of a 16s vector, variances, in integers. The squares of (pSrc[j] - pMean[j]) * 256 are divided by
 * pVar[j], truncated towards zero and added in 64 bits; the sum is divided by 2^n, n = scaleFactor + 17,
 * rounded half up by a shift right with 2^(n-1) added before (n above 0; for scaleFactor above 14 the term
 * added is 1 shifted in 32 bits by n - 1 modulo 32, as a signed number), or shifted left (n below 0); gconst
 * less that is saturated to 32 bits.
 * orvStsNullPtrErr, orvStsSizeErr (len below 1), orvStsDivByZeroWrn (a variance is zero; nothing written),
 * orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGaussSingle_DirectVar_16s32s_Sfs(const int16_t *pSrc, const int16_t *pMean,
                                                          const int16_t *pVar, int32_t len, int32_t *pResult,
                                                          int32_t gconst, int32_t scaleFactor);

/**
 * Score of a 16s vector, variances: squares, quotients and their sum S in 32f, and gconst - S *
 * (2^-scaleFactor * 0.5).
 * orvStsNullPtrErr, orvStsSizeErr (len below 1), orvStsDivByZeroWrn (a variance is zero; nothing written),
 * orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGaussSingle_DirectVarScaled_16s32f(const int16_t *pSrc, const int16_t *pMean,
                                                            const int16_t *pVar, int32_t len, float *pResult,
                                                            int32_t scaleFactor, float gconst);

/**
 * Score of a 32f vector, block-diagonal inverse covariance; the sum in 32f, the last step in 64f, rounded
 * once.
 * orvStsNullPtrErr, orvStsSizeErr (len below 1, or not the number of rows), orvStsMemAllocErr, orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGaussSingle_BlockDVar_32f(const float *pSrc, const float *pMean,
                                                   const OrvBlockDMatrix_32f *pBlockDMatrix, int32_t len,
                                                   float *pResult, float gconst);

/**
 * Score of a 32f vector, block-diagonal inverse covariance; differences in 32f, all else in 64f.
 * orvStsNullPtrErr, orvStsSizeErr (len below 1, or not the number of rows), orvStsMemAllocErr, orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGaussSingle_BlockDVar_32f64f(const float *pSrc, const float *pMean,
                                                      const OrvBlockDMatrix_32f *pBlockDMatrix, int32_t len,
                                                      double *pResult, double gconst);

/**
 * Score of a 64f vector, block-diagonal inverse covariance, in 64f.
 * orvStsNullPtrErr, orvStsSizeErr (len below 1, or not the number of rows), orvStsMemAllocErr, orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGaussSingle_BlockDVar_64f(const double *pSrc, const double *pMean,
                                                   const OrvBlockDMatrix_64f *pBlockDMatrix, int32_t len,
                                                   double *pResult, double gconst);

/**
 * Score of a 16s vector, block-diagonal inverse covariance. A difference enters the dot products saturated
 * to 16 bits; as their multiplier it is exact, in 32f, times 2^-scaleFactor. gconst less half of the sum, in
 * 32f, is saturated to 32 bits and truncated towards zero. From len 112 on the call keeps the len + 1
 * elements that it allocates: they are never released.
 * orvStsNullPtrErr, orvStsSizeErr (len below 1, or not the number of rows), orvStsMemAllocErr, orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGaussSingle_BlockDVar_16s32s_Sfs(const int16_t *pSrc, const int16_t *pMean,
                                                          const OrvBlockDMatrix_16s *pBlockDMatrix,
                                                          int32_t len, int32_t *pResult, int32_t gconst,
                                                          int32_t scaleFactor);

/**
 * Score of a 16s vector, block-diagonal inverse covariance. A difference enters the dot products saturated
 * to 16 bits; as their multiplier it is exact, in 32f. With S the 32f sum, gconst - (S * 0.5) *
 * 2^-scaleFactor.
 * orvStsNullPtrErr, orvStsSizeErr (len below 1, or not the number of rows), orvStsMemAllocErr, orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGaussSingle_BlockDVarScaled_16s32f(const int16_t *pSrc, const int16_t *pMean,
                                                            const OrvBlockDMatrix_16s *pBlockDMatrix,
                                                            int32_t len, float *pResult, int32_t scaleFactor,
                                                            float gconst);

/** @} */

/**
 * @defgroup loggauss Scores of a block of frames under one Gaussian
 *
 *     pResult[f] = gconst - 1/2 * sum over j of (x[f][j] - pMean[j])^2 * pVar[j]
 *                                            f = 0 .. frames - 1,  j = 0 .. featLen - 1
 *
 * the log-likelihood of each frame under a Gaussian with diagonal covariance.
 *
 * Arguments:
 * - pSrc, step: frames rows of featLen values, a row every step elements (step >= featLen); or ppSrc: frames
 *   pointers to rows of featLen values, which are not tested for null.
 * - pMean: featLen means.
 * - pVar: featLen inverse variances; they are not tested, and a negative one or a NaN flows through. The
 *   IdVar forms take all variances as 1 and have no such argument.
 * - featLen: values in a frame, 1 or more.
 * - pResult: frames scores, written.
 * - frames: number of frames, 1 or more.
 * - gconst: additive constant of the Gaussian: the log of its mixture weight less half of the constant that
 *   orvsUpdateGConst_32f() computes.
 * - scaleFactor: of the 16s forms, any value: 2^-scaleFactor scales the sum. It stands behind gconst in the
 *   Sfs forms and before it in the Scaled forms, which is meant. The count of a shift is taken modulo 64; a
 *   power of two is infinite from 2^128 on, and zero below 2^-149.
 *
 * The 32f and 64f forms double gconst, subtract the terms from it and halve the result, all in their own
 * type. Frames are taken in groups of four, then one by one; the grouping of a sum depends on the alignment
 * of the group's fourth row (_D2) or of pVar (_D2L, and frames left over; pMean in the IdVar forms), so the
 * score of a frame may differ in its last bits by its place in the block. Saturation is silent.
 *
 * Source of the method: L. Rabiner and B.-H. Juang, Fundamentals of Speech Recognition, 1993, section 6.6.
 * @{
 */

/**
 * Scores of 32f frames in one array with a row step, inverse variances.
 * orvStsStrideErr (featLen above step), orvStsNullPtrErr, orvStsSizeErr (featLen or frames below 1),
 * orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGauss_32f_D2(const float *pSrc, int32_t step, const float *pMean, const float *pVar,
                                      int32_t featLen, float *pResult, int32_t frames, float gconst);

/**
 * Scores of 32f frames in row pointers, inverse variances.
 * orvStsNullPtrErr, orvStsSizeErr (featLen or frames below 1), orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGauss_32f_D2L(const float *const *ppSrc, const float *pMean, const float *pVar,
                                       int32_t featLen, float *pResult, int32_t frames, float gconst);

/**
 * Scores of 64f frames in one array with a row step, inverse variances.
 * orvStsStrideErr (featLen above step), orvStsNullPtrErr, orvStsSizeErr (featLen or frames below 1),
 * orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGauss_64f_D2(const double *pSrc, int32_t step, const double *pMean,
                                      const double *pVar, int32_t featLen, double *pResult, int32_t frames,
                                      double gconst);

/**
 * Scores of 64f frames in row pointers, inverse variances.
 * orvStsNullPtrErr, orvStsSizeErr (featLen or frames below 1), orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGauss_64f_D2L(const double *const *ppSrc, const double *pMean, const double *pVar,
                                       int32_t featLen, double *pResult, int32_t frames, double gconst);

/**
 * Scores of 16s frames in one array with a row step, inverse variances: an exact 64-bit sum S, and gconst -
 * (S >> (scaleFactor + 1)), saturated to 32 bits. The shift rounds S down.
 * orvStsStrideErr (featLen above step), orvStsNullPtrErr, orvStsSizeErr (featLen or frames below 1),
 * orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGauss_16s32s_D2Sfs(const int16_t *pSrc, int32_t step, const int16_t *pMean,
                                            const int16_t *pVar, int32_t featLen, int32_t *pResult,
                                            int32_t frames, int32_t gconst, int32_t scaleFactor);

/**
 * Scores of 16s frames in row pointers, inverse variances: an exact 64-bit sum S, and gconst - (S >>
 * (scaleFactor + 1)), saturated to 32 bits. The shift rounds S down.
 * orvStsNullPtrErr, orvStsSizeErr (featLen or frames below 1), orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGauss_16s32s_D2LSfs(const int16_t *const *ppSrc, const int16_t *pMean,
                                             const int16_t *pVar, int32_t featLen, int32_t *pResult,
                                             int32_t frames, int32_t gconst, int32_t scaleFactor);

/**
 * Scores of 16s frames in one array with a row step, inverse variances: an exact 64-bit sum S, and gconst -
 * (S >> (scaleFactor + 1)), of which the low 32 bits are stored: beyond 32 bits the score wraps.
 * orvStsStrideErr (featLen above step), orvStsNullPtrErr, orvStsSizeErr (featLen or frames below 1),
 * orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGauss_Low_16s32s_D2Sfs(const int16_t *pSrc, int32_t step, const int16_t *pMean,
                                                const int16_t *pVar, int32_t featLen, int32_t *pResult,
                                                int32_t frames, int32_t gconst, int32_t scaleFactor);

/**
 * Scores of 16s frames in row pointers, inverse variances: an exact 64-bit sum S, and gconst - (S >>
 * (scaleFactor + 1)), of which the low 32 bits are stored: beyond 32 bits the score wraps.
 * orvStsNullPtrErr, orvStsSizeErr (featLen or frames below 1), orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGauss_Low_16s32s_D2LSfs(const int16_t *const *ppSrc, const int16_t *pMean,
                                                 const int16_t *pVar, int32_t featLen, int32_t *pResult,
                                                 int32_t frames, int32_t gconst, int32_t scaleFactor);

/**
 * Scores of 16s frames in one array with a row step, inverse variances: a 32f sum S, and gconst - S * factor
 * with factor = 2^-(scaleFactor + 1).
 * orvStsStrideErr (featLen above step), orvStsNullPtrErr, orvStsSizeErr (featLen or frames below 1),
 * orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGauss_Scaled_16s32f_D2(const int16_t *pSrc, int32_t step, const int16_t *pMean,
                                                const int16_t *pVar, int32_t featLen, float *pResult,
                                                int32_t frames, int32_t scaleFactor, float gconst);

/**
 * Scores of 16s frames in row pointers, inverse variances: a 32f sum S, and gconst - S * factor with factor =
 * 2^-(scaleFactor + 1).
 * orvStsNullPtrErr, orvStsSizeErr (featLen or frames below 1), orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGauss_Scaled_16s32f_D2L(const int16_t *const *ppSrc, const int16_t *pMean,
                                                 const int16_t *pVar, int32_t featLen, float *pResult,
                                                 int32_t frames, int32_t scaleFactor, float gconst);

/**
 * Scores of 16s frames in one array with a row step, inverse variances: a 32f sum S, and gconst - S * factor
 * with factor = 2^-scaleFactor * 0.5, formed once.
 * orvStsStrideErr (featLen above step), orvStsNullPtrErr, orvStsSizeErr (featLen or frames below 1),
 * orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGauss_LowScaled_16s32f_D2(const int16_t *pSrc, int32_t step, const int16_t *pMean,
                                                   const int16_t *pVar, int32_t featLen, float *pResult,
                                                   int32_t frames, int32_t scaleFactor, float gconst);

/**
 * Scores of 16s frames in row pointers, inverse variances: a 32f sum S, and gconst - S * factor with factor =
 * 2^-scaleFactor * 0.5, formed once.
 * orvStsNullPtrErr, orvStsSizeErr (featLen or frames below 1), orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGauss_LowScaled_16s32f_D2L(const int16_t *const *ppSrc, const int16_t *pMean,
                                                    const int16_t *pVar, int32_t featLen, float *pResult,
                                                    int32_t frames, int32_t scaleFactor, float gconst);

/**
 * Scores of 32f frames in one array with a row step, unit variances.
 * orvStsStrideErr (featLen above step), orvStsNullPtrErr, orvStsSizeErr (featLen or frames below 1),
 * orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGauss_IdVar_32f_D2(const float *pSrc, int32_t step, const float *pMean,
                                            int32_t featLen, float *pResult, int32_t frames, float gconst);

/**
 * Scores of 32f frames in row pointers, unit variances.
 * orvStsNullPtrErr, orvStsSizeErr (featLen or frames below 1), orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGauss_IdVar_32f_D2L(const float *const *ppSrc, const float *pMean, int32_t featLen,
                                             float *pResult, int32_t frames, float gconst);

/**
 * Scores of 64f frames in one array with a row step, unit variances.
 * orvStsStrideErr (featLen above step), orvStsNullPtrErr, orvStsSizeErr (featLen or frames below 1),
 * orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGauss_IdVar_64f_D2(const double *pSrc, int32_t step, const double *pMean,
                                            int32_t featLen, double *pResult, int32_t frames, double gconst);

/**
 * Scores of 64f frames in row pointers, unit variances.
 * orvStsNullPtrErr, orvStsSizeErr (featLen or frames below 1), orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGauss_IdVar_64f_D2L(const double *const *ppSrc, const double *pMean, int32_t featLen,
                                             double *pResult, int32_t frames, double gconst);

/**
 * Scores of 16s frames in one array with a row step, unit variances: an exact 64-bit sum S, and gconst - (S
 * >> (scaleFactor + 1)), saturated to 32 bits. The shift rounds S down.
 * orvStsStrideErr (featLen above step), orvStsNullPtrErr, orvStsSizeErr (featLen or frames below 1),
 * orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGauss_IdVar_16s32s_D2Sfs(const int16_t *pSrc, int32_t step, const int16_t *pMean,
                                                  int32_t featLen, int32_t *pResult, int32_t frames,
                                                  int32_t gconst, int32_t scaleFactor);

/**
 * Scores of 16s frames in row pointers, unit variances: an exact 64-bit sum S, and gconst - (S >>
 * (scaleFactor + 1)), saturated to 32 bits. The shift rounds S down.
 * orvStsNullPtrErr, orvStsSizeErr (featLen or frames below 1), orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGauss_IdVar_16s32s_D2LSfs(const int16_t *const *ppSrc, const int16_t *pMean,
                                                   int32_t featLen, int32_t *pResult, int32_t frames,
                                                   int32_t gconst, int32_t scaleFactor);

/**
 * Scores of 16s frames in one array with a row step, unit variances: an exact 64-bit sum S, and gconst - (S
 * >> (scaleFactor + 1)), of which the low 32 bits are stored: beyond 32 bits the score wraps.
 * orvStsStrideErr (featLen above step), orvStsNullPtrErr, orvStsSizeErr (featLen or frames below 1),
 * orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGauss_IdVarLow_16s32s_D2Sfs(const int16_t *pSrc, int32_t step, const int16_t *pMean,
                                                     int32_t featLen, int32_t *pResult, int32_t frames,
                                                     int32_t gconst, int32_t scaleFactor);

/**
 * Scores of 16s frames in row pointers, unit variances: an exact 64-bit sum S, and gconst - (S >>
 * (scaleFactor + 1)), of which the low 32 bits are stored: beyond 32 bits the score wraps.
 * orvStsNullPtrErr, orvStsSizeErr (featLen or frames below 1), orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGauss_IdVarLow_16s32s_D2LSfs(const int16_t *const *ppSrc, const int16_t *pMean,
                                                      int32_t featLen, int32_t *pResult, int32_t frames,
                                                      int32_t gconst, int32_t scaleFactor);

/**
 * Scores of 16s frames in one array with a row step, unit variances: a 32f sum S, and gconst - S * factor
 * with factor = 2^-(scaleFactor + 1).
 * orvStsStrideErr (featLen above step), orvStsNullPtrErr, orvStsSizeErr (featLen or frames below 1),
 * orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGauss_IdVarScaled_16s32f_D2(const int16_t *pSrc, int32_t step, const int16_t *pMean,
                                                     int32_t featLen, float *pResult, int32_t frames,
                                                     int32_t scaleFactor, float gconst);

/**
 * Scores of 16s frames in row pointers, unit variances: a 32f sum S, and gconst - S * factor with factor =
 * 2^-(scaleFactor + 1).
 * orvStsNullPtrErr, orvStsSizeErr (featLen or frames below 1), orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGauss_IdVarScaled_16s32f_D2L(const int16_t *const *ppSrc, const int16_t *pMean,
                                                      int32_t featLen, float *pResult, int32_t frames,
                                                      int32_t scaleFactor, float gconst);

/**
 * Scores of 16s frames in one array with a row step, unit variances: a 32f sum S, and gconst - S * factor
 * with factor = 2^-scaleFactor * 0.5, formed once.
 * orvStsStrideErr (featLen above step), orvStsNullPtrErr, orvStsSizeErr (featLen or frames below 1),
 * orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGauss_IdVarLowScaled_16s32f_D2(const int16_t *pSrc, int32_t step,
                                                        const int16_t *pMean, int32_t featLen, float *pResult,
                                                        int32_t frames, int32_t scaleFactor, float gconst);

/**
 * Scores of 16s frames in row pointers, unit variances: a 32f sum S, and gconst - S * factor with factor =
 * 2^-scaleFactor * 0.5, formed once.
 * orvStsNullPtrErr, orvStsSizeErr (featLen or frames below 1), orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGauss_IdVarLowScaled_16s32f_D2L(const int16_t *const *ppSrc, const int16_t *pMean,
                                                         int32_t featLen, float *pResult, int32_t frames,
                                                         int32_t scaleFactor, float gconst);

/** @} */

/**
 * @defgroup loggaussmax Running maximum of the scores of frames
 *
 *     pResult[f] = max(pResult[f], score[f])                                  f = 0 .. frames - 1
 *
 * with score[f] the score of frame f under one more Gaussian, as in @ref loggauss and from the same
 * arguments. pResult holds the running scores on entry and is changed in place; the caller sets what it
 * starts from. A score that is a NaN leaves pResult[f] as it is.
 *
 * The integer members negate the sum S before they shift it, so that the score gconst + (-S >> (scaleFactor +
 * 1)) is rounded down: it may be 1 below that of the same frame in @ref loggauss, which is rounded up.
 *
 * Source of the method: L. Rabiner and B.-H. Juang, Fundamentals of Speech Recognition, 1993, section 6.6.
 * @{
 */

/**
 * Running maximum over scores of 32f frames in one array with a row step, inverse variances.
 * orvStsStrideErr (featLen above step), orvStsNullPtrErr, orvStsSizeErr (featLen or frames below 1),
 * orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGaussMax_32f_D2(const float *pSrc, int32_t step, const float *pMean,
                                         const float *pVar, int32_t featLen, float *pResult, int32_t frames,
                                         float gconst);

/**
 * Running maximum over scores of 32f frames in row pointers, inverse variances.
 * orvStsNullPtrErr, orvStsSizeErr (featLen or frames below 1), orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGaussMax_32f_D2L(const float *const *ppSrc, const float *pMean, const float *pVar,
                                          int32_t featLen, float *pResult, int32_t frames, float gconst);

/**
 * Running maximum over scores of 64f frames in one array with a row step, inverse variances.
 * orvStsStrideErr (featLen above step), orvStsNullPtrErr, orvStsSizeErr (featLen or frames below 1),
 * orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGaussMax_64f_D2(const double *pSrc, int32_t step, const double *pMean,
                                         const double *pVar, int32_t featLen, double *pResult, int32_t frames,
                                         double gconst);

/**
 * Running maximum over scores of 64f frames in row pointers, inverse variances.
 * orvStsNullPtrErr, orvStsSizeErr (featLen or frames below 1), orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGaussMax_64f_D2L(const double *const *ppSrc, const double *pMean, const double *pVar,
                                          int32_t featLen, double *pResult, int32_t frames, double gconst);

/**
 * Running maximum over scores of 16s frames in one array with a row step, inverse variances: with an exact
 * 64-bit sum S, gconst + (-S >> (scaleFactor + 1)), saturated to 32 bits.
 * orvStsStrideErr (featLen above step), orvStsNullPtrErr, orvStsSizeErr (featLen or frames below 1),
 * orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGaussMax_16s32s_D2Sfs(const int16_t *pSrc, int32_t step, const int16_t *pMean,
                                               const int16_t *pVar, int32_t featLen, int32_t *pResult,
                                               int32_t frames, int32_t gconst, int32_t scaleFactor);

/**
 * Running maximum over scores of 16s frames in row pointers, inverse variances: with an exact 64-bit sum S,
 * gconst + (-S >> (scaleFactor + 1)), saturated to 32 bits.
 * orvStsNullPtrErr, orvStsSizeErr (featLen or frames below 1), orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGaussMax_16s32s_D2LSfs(const int16_t *const *ppSrc, const int16_t *pMean,
                                                const int16_t *pVar, int32_t featLen, int32_t *pResult,
                                                int32_t frames, int32_t gconst, int32_t scaleFactor);

/**
 * Running maximum over scores of 16s frames in one array with a row step, inverse variances: with an exact
 * 64-bit sum S, gconst + (-S >> (scaleFactor + 1)), compared with pResult[f] in 64 bits; if it is not less,
 * its low 32 bits are stored. So a score above the 32-bit range wins and wraps.
 * orvStsStrideErr (featLen above step), orvStsNullPtrErr, orvStsSizeErr (featLen or frames below 1),
 * orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGaussMax_Low_16s32s_D2Sfs(const int16_t *pSrc, int32_t step, const int16_t *pMean,
                                                   const int16_t *pVar, int32_t featLen, int32_t *pResult,
                                                   int32_t frames, int32_t gconst, int32_t scaleFactor);

/**
 * Running maximum over scores of 16s frames in row pointers, inverse variances: with an exact 64-bit sum S,
 * gconst + (-S >> (scaleFactor + 1)), compared with pResult[f] in 64 bits; if it is not less, its low 32
 * bits are stored. So a score above the 32-bit range wins and wraps.
 * orvStsNullPtrErr, orvStsSizeErr (featLen or frames below 1), orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGaussMax_Low_16s32s_D2LSfs(const int16_t *const *ppSrc, const int16_t *pMean,
                                                    const int16_t *pVar, int32_t featLen, int32_t *pResult,
                                                    int32_t frames, int32_t gconst, int32_t scaleFactor);

/**
 * Running maximum over scores of 16s frames in one array with a row step, inverse variances: with a 32f sum
 * S, gconst - S * factor with factor = 2^-(scaleFactor + 1).
 * orvStsStrideErr (featLen above step), orvStsNullPtrErr, orvStsSizeErr (featLen or frames below 1),
 * orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGaussMax_Scaled_16s32f_D2(const int16_t *pSrc, int32_t step, const int16_t *pMean,
                                                   const int16_t *pVar, int32_t featLen, float *pResult,
                                                   int32_t frames, int32_t scaleFactor, float gconst);

/**
 * Running maximum over scores of 16s frames in row pointers, inverse variances: with a 32f sum S, gconst - S
 * * factor with factor = 2^-(scaleFactor + 1).
 * orvStsNullPtrErr, orvStsSizeErr (featLen or frames below 1), orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGaussMax_Scaled_16s32f_D2L(const int16_t *const *ppSrc, const int16_t *pMean,
                                                    const int16_t *pVar, int32_t featLen, float *pResult,
                                                    int32_t frames, int32_t scaleFactor, float gconst);

/**
 * Running maximum over scores of 16s frames in one array with a row step, inverse variances: with a 32f sum
 * S, gconst - S * factor with factor = 2^-scaleFactor * 0.5, formed once.
 * orvStsStrideErr (featLen above step), orvStsNullPtrErr, orvStsSizeErr (featLen or frames below 1),
 * orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGaussMax_LowScaled_16s32f_D2(const int16_t *pSrc, int32_t step, const int16_t *pMean,
                                                      const int16_t *pVar, int32_t featLen, float *pResult,
                                                      int32_t frames, int32_t scaleFactor, float gconst);

/**
 * Running maximum over scores of 16s frames in row pointers, inverse variances: with a 32f sum S, gconst - S
 * * factor with factor = 2^-scaleFactor * 0.5, formed once.
 * orvStsNullPtrErr, orvStsSizeErr (featLen or frames below 1), orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGaussMax_LowScaled_16s32f_D2L(const int16_t *const *ppSrc, const int16_t *pMean,
                                                       const int16_t *pVar, int32_t featLen, float *pResult,
                                                       int32_t frames, int32_t scaleFactor, float gconst);

/**
 * Running maximum over scores of 32f frames in one array with a row step, unit variances.
 * orvStsStrideErr (featLen above step), orvStsNullPtrErr, orvStsSizeErr (featLen or frames below 1),
 * orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGaussMax_IdVar_32f_D2(const float *pSrc, int32_t step, const float *pMean,
                                               int32_t featLen, float *pResult, int32_t frames, float gconst);

/**
 * Running maximum over scores of 32f frames in row pointers, unit variances.
 * orvStsNullPtrErr, orvStsSizeErr (featLen or frames below 1), orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGaussMax_IdVar_32f_D2L(const float *const *ppSrc, const float *pMean,
                                                int32_t featLen, float *pResult, int32_t frames,
                                                float gconst);

/**
 * Running maximum over scores of 64f frames in one array with a row step, unit variances.
 * orvStsStrideErr (featLen above step), orvStsNullPtrErr, orvStsSizeErr (featLen or frames below 1),
 * orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGaussMax_IdVar_64f_D2(const double *pSrc, int32_t step, const double *pMean,
                                               int32_t featLen, double *pResult, int32_t frames,
                                               double gconst);

/**
 * Running maximum over scores of 64f frames in row pointers, unit variances.
 * orvStsNullPtrErr, orvStsSizeErr (featLen or frames below 1), orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGaussMax_IdVar_64f_D2L(const double *const *ppSrc, const double *pMean,
                                                int32_t featLen, double *pResult, int32_t frames,
                                                double gconst);

/**
 * Running maximum over scores of 16s frames in one array with a row step, unit variances: with an exact
 * 64-bit sum S, gconst + (-S >> (scaleFactor + 1)), saturated to 32 bits.
 * orvStsStrideErr (featLen above step), orvStsNullPtrErr, orvStsSizeErr (featLen or frames below 1),
 * orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGaussMax_IdVar_16s32s_D2Sfs(const int16_t *pSrc, int32_t step, const int16_t *pMean,
                                                     int32_t featLen, int32_t *pResult, int32_t frames,
                                                     int32_t gconst, int32_t scaleFactor);

/**
 * Running maximum over scores of 16s frames in row pointers, unit variances: with an exact 64-bit sum S,
 * gconst + (-S >> (scaleFactor + 1)), saturated to 32 bits.
 * orvStsNullPtrErr, orvStsSizeErr (featLen or frames below 1), orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGaussMax_IdVar_16s32s_D2LSfs(const int16_t *const *ppSrc, const int16_t *pMean,
                                                      int32_t featLen, int32_t *pResult, int32_t frames,
                                                      int32_t gconst, int32_t scaleFactor);

/**
 * Running maximum over scores of 16s frames in one array with a row step, unit variances: with an exact
 * 64-bit sum S, gconst + (-S >> (scaleFactor + 1)), compared with pResult[f] in 64 bits; if it is not less,
 * its low 32 bits are stored. So a score above the 32-bit range wins and wraps.
 * orvStsStrideErr (featLen above step), orvStsNullPtrErr, orvStsSizeErr (featLen or frames below 1),
 * orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGaussMax_IdVarLow_16s32s_D2Sfs(const int16_t *pSrc, int32_t step,
                                                        const int16_t *pMean, int32_t featLen,
                                                        int32_t *pResult, int32_t frames, int32_t gconst,
                                                        int32_t scaleFactor);

/**
 * Running maximum over scores of 16s frames in row pointers, unit variances: with an exact 64-bit sum S,
 * gconst + (-S >> (scaleFactor + 1)), compared with pResult[f] in 64 bits; if it is not less, its low 32
 * bits are stored. So a score above the 32-bit range wins and wraps.
 * orvStsNullPtrErr, orvStsSizeErr (featLen or frames below 1), orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGaussMax_IdVarLow_16s32s_D2LSfs(const int16_t *const *ppSrc, const int16_t *pMean,
                                                         int32_t featLen, int32_t *pResult, int32_t frames,
                                                         int32_t gconst, int32_t scaleFactor);

/**
 * Running maximum over scores of 16s frames in one array with a row step, unit variances: with a 32f sum S,
 * gconst - S * factor with factor = 2^-(scaleFactor + 1).
 * orvStsStrideErr (featLen above step), orvStsNullPtrErr, orvStsSizeErr (featLen or frames below 1),
 * orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGaussMax_IdVarScaled_16s32f_D2(const int16_t *pSrc, int32_t step,
                                                        const int16_t *pMean, int32_t featLen, float *pResult,
                                                        int32_t frames, int32_t scaleFactor, float gconst);

/**
 * Running maximum over scores of 16s frames in row pointers, unit variances: with a 32f sum S, gconst - S *
 * factor with factor = 2^-(scaleFactor + 1).
 * orvStsNullPtrErr, orvStsSizeErr (featLen or frames below 1), orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGaussMax_IdVarScaled_16s32f_D2L(const int16_t *const *ppSrc, const int16_t *pMean,
                                                         int32_t featLen, float *pResult, int32_t frames,
                                                         int32_t scaleFactor, float gconst);

/**
 * Running maximum over scores of 16s frames in one array with a row step, unit variances: with a 32f sum S,
 * gconst - S * factor with factor = 2^-scaleFactor * 0.5, formed once.
 * orvStsStrideErr (featLen above step), orvStsNullPtrErr, orvStsSizeErr (featLen or frames below 1),
 * orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGaussMax_IdVarLowScaled_16s32f_D2(const int16_t *pSrc, int32_t step,
                                                           const int16_t *pMean, int32_t featLen,
                                                           float *pResult, int32_t frames,
                                                           int32_t scaleFactor, float gconst);

/**
 * Running maximum over scores of 16s frames in row pointers, unit variances: with a 32f sum S, gconst - S *
 * factor with factor = 2^-scaleFactor * 0.5, formed once.
 * orvStsNullPtrErr, orvStsSizeErr (featLen or frames below 1), orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGaussMax_IdVarLowScaled_16s32f_D2L(const int16_t *const *ppSrc, const int16_t *pMean,
                                                            int32_t featLen, float *pResult, int32_t frames,
                                                            int32_t scaleFactor, float gconst);

/** @} */

/**
 * @defgroup loggaussadd Running log-sum of the scores of frames
 *
 *     pResult[f] = log(exp(pResult[f]) + exp(score[f]))                       f = 0 .. frames - 1
 *
 * with score[f] the score of frame f under one more Gaussian, as in @ref loggauss and from the same
 * arguments, rounded to the type of the result. pResult holds the running log-sums on entry and is changed in
 * place; the caller sets what it starts from.
 *
 * The addition is that of @ref logadd by its accurate path. A term that lies further below the other than the
 * drop threshold is left out, and only then is the result raised to the floor (-4.5e6; for 64f, -1e10 below
 * -9e9).
 *
 * Frames are taken one by one; every sum is grouped by the alignment of pVar (pMean in the IdVar forms).
 *
 * Source of the method: L. Rabiner and B.-H. Juang, Fundamentals of Speech Recognition, 1993, section 6.6.
 * @{
 */

/**
 * Running log-sum over scores of 32f frames in one array with a row step, inverse variances.
 * orvStsStrideErr (featLen above step), orvStsNullPtrErr, orvStsSizeErr (featLen or frames below 1),
 * orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGaussAdd_32f_D2(const float *pSrc, int32_t step, const float *pMean,
                                         const float *pVar, int32_t featLen, float *pResult, int32_t frames,
                                         float gconst);

/**
 * Running log-sum over scores of 32f frames in row pointers, inverse variances.
 * orvStsNullPtrErr, orvStsSizeErr (featLen or frames below 1), orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGaussAdd_32f_D2L(const float *const *ppSrc, const float *pMean, const float *pVar,
                                          int32_t featLen, float *pResult, int32_t frames, float gconst);

/**
 * Running log-sum over scores of 64f frames in one array with a row step, inverse variances.
 * orvStsStrideErr (featLen above step), orvStsNullPtrErr, orvStsSizeErr (featLen or frames below 1),
 * orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGaussAdd_64f_D2(const double *pSrc, int32_t step, const double *pMean,
                                         const double *pVar, int32_t featLen, double *pResult, int32_t frames,
                                         double gconst);

/**
 * Running log-sum over scores of 64f frames in row pointers, inverse variances.
 * orvStsNullPtrErr, orvStsSizeErr (featLen or frames below 1), orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGaussAdd_64f_D2L(const double *const *ppSrc, const double *pMean, const double *pVar,
                                          int32_t featLen, double *pResult, int32_t frames, double gconst);

/**
 * Running log-sum over scores of 16s frames in one array with a row step, inverse variances: with a 32f sum
 * S, gconst - S * 2^-(scaleFactor + 1).
 * orvStsStrideErr (featLen above step), orvStsNullPtrErr, orvStsSizeErr (featLen or frames below 1),
 * orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGaussAdd_Scaled_16s32f_D2(const int16_t *pSrc, int32_t step, const int16_t *pMean,
                                                   const int16_t *pVar, int32_t featLen, float *pResult,
                                                   int32_t frames, int32_t scaleFactor, float gconst);

/**
 * Running log-sum over scores of 16s frames in row pointers, inverse variances: with a 32f sum S, gconst - S
 * * 2^-(scaleFactor + 1).
 * orvStsNullPtrErr, orvStsSizeErr (featLen or frames below 1), orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGaussAdd_Scaled_16s32f_D2L(const int16_t *const *ppSrc, const int16_t *pMean,
                                                    const int16_t *pVar, int32_t featLen, float *pResult,
                                                    int32_t frames, int32_t scaleFactor, float gconst);

/**
 * Running log-sum over scores of 16s frames in one array with a row step, inverse variances: with a 32f sum
 * S, gconst - S * 2^-(scaleFactor + 1). The same as orvsLogGaussAdd_Scaled_16s32f_D2(): in this family, and
 * in no other, the two factors are equal over the whole range.
 * orvStsStrideErr (featLen above step), orvStsNullPtrErr, orvStsSizeErr (featLen or frames below 1),
 * orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGaussAdd_LowScaled_16s32f_D2(const int16_t *pSrc, int32_t step, const int16_t *pMean,
                                                      const int16_t *pVar, int32_t featLen, float *pResult,
                                                      int32_t frames, int32_t scaleFactor, float gconst);

/**
 * Running log-sum over scores of 16s frames in row pointers, inverse variances: with a 32f sum S, gconst - S
 * * 2^-(scaleFactor + 1). The same as orvsLogGaussAdd_Scaled_16s32f_D2L(): in this family, and in no other,
 * the two factors are equal over the whole range.
 * orvStsNullPtrErr, orvStsSizeErr (featLen or frames below 1), orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGaussAdd_LowScaled_16s32f_D2L(const int16_t *const *ppSrc, const int16_t *pMean,
                                                       const int16_t *pVar, int32_t featLen, float *pResult,
                                                       int32_t frames, int32_t scaleFactor, float gconst);

/**
 * Running log-sum over scores of 32f frames in one array with a row step, unit variances.
 * orvStsStrideErr (featLen above step), orvStsNullPtrErr, orvStsSizeErr (featLen or frames below 1),
 * orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGaussAdd_IdVar_32f_D2(const float *pSrc, int32_t step, const float *pMean,
                                               int32_t featLen, float *pResult, int32_t frames, float gconst);

/**
 * Running log-sum over scores of 32f frames in row pointers, unit variances.
 * orvStsNullPtrErr, orvStsSizeErr (featLen or frames below 1), orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGaussAdd_IdVar_32f_D2L(const float *const *ppSrc, const float *pMean,
                                                int32_t featLen, float *pResult, int32_t frames,
                                                float gconst);

/**
 * Running log-sum over scores of 64f frames in one array with a row step, unit variances.
 * orvStsStrideErr (featLen above step), orvStsNullPtrErr, orvStsSizeErr (featLen or frames below 1),
 * orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGaussAdd_IdVar_64f_D2(const double *pSrc, int32_t step, const double *pMean,
                                               int32_t featLen, double *pResult, int32_t frames,
                                               double gconst);

/**
 * Running log-sum over scores of 64f frames in row pointers, unit variances.
 * orvStsNullPtrErr, orvStsSizeErr (featLen or frames below 1), orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGaussAdd_IdVar_64f_D2L(const double *const *ppSrc, const double *pMean,
                                                int32_t featLen, double *pResult, int32_t frames,
                                                double gconst);

/**
 * Running log-sum over scores of 16s frames in one array with a row step, unit variances: with a 32f sum S,
 * gconst - S * 2^-(scaleFactor + 1).
 * orvStsStrideErr (featLen above step), orvStsNullPtrErr, orvStsSizeErr (featLen or frames below 1),
 * orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGaussAdd_IdVarScaled_16s32f_D2(const int16_t *pSrc, int32_t step,
                                                        const int16_t *pMean, int32_t featLen, float *pResult,
                                                        int32_t frames, int32_t scaleFactor, float gconst);

/**
 * Running log-sum over scores of 16s frames in row pointers, unit variances: with a 32f sum S, gconst - S *
 * 2^-(scaleFactor + 1).
 * orvStsNullPtrErr, orvStsSizeErr (featLen or frames below 1), orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGaussAdd_IdVarScaled_16s32f_D2L(const int16_t *const *ppSrc, const int16_t *pMean,
                                                         int32_t featLen, float *pResult, int32_t frames,
                                                         int32_t scaleFactor, float gconst);

/**
 * Running log-sum over scores of 16s frames in one array with a row step, unit variances: with a 32f sum S,
 * gconst - S * 2^-(scaleFactor + 1). The same as orvsLogGaussAdd_IdVarScaled_16s32f_D2(): in this family,
 * and in no other, the two factors are equal over the whole range.
 * orvStsStrideErr (featLen above step), orvStsNullPtrErr, orvStsSizeErr (featLen or frames below 1),
 * orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGaussAdd_IdVarLowScaled_16s32f_D2(const int16_t *pSrc, int32_t step,
                                                           const int16_t *pMean, int32_t featLen,
                                                           float *pResult, int32_t frames,
                                                           int32_t scaleFactor, float gconst);

/**
 * Running log-sum over scores of 16s frames in row pointers, unit variances: with a 32f sum S, gconst - S *
 * 2^-(scaleFactor + 1). The same as orvsLogGaussAdd_IdVarScaled_16s32f_D2L(): in this family, and in no
 * other, the two factors are equal over the whole range.
 * orvStsNullPtrErr, orvStsSizeErr (featLen or frames below 1), orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGaussAdd_IdVarLowScaled_16s32f_D2L(const int16_t *const *ppSrc, const int16_t *pMean,
                                                            int32_t featLen, float *pResult, int32_t frames,
                                                            int32_t scaleFactor, float gconst);

/** @} */

/**
 * @defgroup mahdist Mahalanobis distance
 *
 *     distance = sum over j of (x[j] - mean[j])^2 * var[j]                    j = 0 .. featLen - 1
 *
 * the squared distance of a vector from a mean, weighted by inverse variances: neither halved nor rooted, and
 * without a constant. The MahDistSingle functions take one vector and one mean, the MahDist functions many
 * vectors (frames) and one mean, the MahDistMultiMix functions one vector and many means, each with its own
 * inverse variances.
 *
 * Arguments:
 * - pSrc: the vector; or, with step, frames rows of featLen values, a row every step elements
 *   (step >= featLen); or ppSrc: frames pointers to rows of featLen values.
 * - pMean, pVar: the mean and the inverse variances; or, with step, count rows of either; or ppMean, ppVar:
 *   count pointers each to rows of featLen values. Inverse variances are not tested: with negative ones a
 *   distance may be negative. Row pointers are not tested for null.
 * - len, featLen: values in a vector, 1 or more.
 * - pResult: one distance, or one for each row, written.
 * - frames, count: number of rows, 1 or more.
 * - scaleFactor: of the integer form, any value: 2^-scaleFactor scales the sum; the count of the shift is
 *   taken modulo 64.
 *
 * The 32f and 64f sums are grouped as in @ref loggausssingle and @ref loggauss. The deciding pointer of the
 * MahDistMultiMix functions is the fourth row of inverse variances of a group of four, and the row's own in
 * rows left over.
 *
 * Source of the method: P. C. Mahalanobis, On the generalised distance in statistics, Proceedings of the
 * National Institute of Sciences of India 2, 1936, pages 49-55.
 * @{
 */

/**
 * Distance of a 32f vector, in 32f.
 * orvStsNullPtrErr, orvStsSizeErr (len below 1), orvStsNoErr.
 */
ORV_API OrvStatus orvsMahDistSingle_32f(const float *pSrc, const float *pMean, const float *pVar, int32_t len,
                                        float *pResult);

/**
 * Distance of a 64f vector, in 64f.
 * orvStsNullPtrErr, orvStsSizeErr (len below 1), orvStsNoErr.
 */
ORV_API OrvStatus orvsMahDistSingle_64f(const double *pSrc, const double *pMean, const double *pVar,
                                        int32_t len, double *pResult);

/**
 * Distance of a 32f vector; every value is widened and all work done in 64f.
 * orvStsNullPtrErr, orvStsSizeErr (len below 1), orvStsNoErr.
 */
ORV_API OrvStatus orvsMahDistSingle_32f64f(const float *pSrc, const float *pMean, const float *pVar,
                                           int32_t len, double *pResult);

/**
 * Distance of a 16s vector; every value is converted and all work done in 32f.
 * orvStsNullPtrErr, orvStsSizeErr (len below 1), orvStsNoErr.
 */
ORV_API OrvStatus orvsMahDistSingle_16s32f(const int16_t *pSrc, const int16_t *pMean, const int16_t *pVar,
                                           int32_t len, float *pResult);

/**
 * Distance of a 16s vector: an exact 64-bit sum, shifted right by scaleFactor (rounded down) and saturated
 * to 32 bits. There is no 1/2 that would be one more bit of shift.
 * orvStsNullPtrErr, orvStsSizeErr (len below 1), orvStsNoErr.
 */
ORV_API OrvStatus orvsMahDistSingle_16s32s_Sfs(const int16_t *pSrc, const int16_t *pMean, const int16_t *pVar,
                                               int32_t len, int32_t *pResult, int32_t scaleFactor);

/**
 * Distances of 32f frames in one array with a row step.
 * orvStsStrideErr (featLen above step), orvStsNullPtrErr, orvStsSizeErr (featLen or frames below 1),
 * orvStsNoErr.
 */
ORV_API OrvStatus orvsMahDist_32f_D2(const float *pSrc, int32_t step, const float *pMean, const float *pVar,
                                     int32_t featLen, float *pResult, int32_t frames);

/**
 * Distances of 32f frames in row pointers.
 * orvStsNullPtrErr, orvStsSizeErr (featLen or frames below 1), orvStsNoErr.
 */
ORV_API OrvStatus orvsMahDist_32f_D2L(const float *const *ppSrc, const float *pMean, const float *pVar,
                                      int32_t featLen, float *pResult, int32_t frames);

/**
 * Distances of 64f frames in one array with a row step.
 * orvStsStrideErr (featLen above step), orvStsNullPtrErr, orvStsSizeErr (featLen or frames below 1),
 * orvStsNoErr.
 */
ORV_API OrvStatus orvsMahDist_64f_D2(const double *pSrc, int32_t step, const double *pMean,
                                     const double *pVar, int32_t featLen, double *pResult, int32_t frames);

/**
 * Distances of 64f frames in row pointers.
 * orvStsNullPtrErr, orvStsSizeErr (featLen or frames below 1), orvStsNoErr.
 */
ORV_API OrvStatus orvsMahDist_64f_D2L(const double *const *ppSrc, const double *pMean, const double *pVar,
                                      int32_t featLen, double *pResult, int32_t frames);

/**
 * Distances of a 32f vector from means in matrices with a row step.
 * orvStsStrideErr (featLen above step), orvStsNullPtrErr, orvStsSizeErr (featLen or count below 1),
 * orvStsNoErr.
 */
ORV_API OrvStatus orvsMahDistMultiMix_32f_D2(const float *pMean, const float *pVar, int32_t step,
                                             const float *pSrc, int32_t featLen, float *pResult,
                                             int32_t count);

/**
 * Distances of a 32f vector from means in row pointers.
 * orvStsNullPtrErr, orvStsSizeErr (featLen or count below 1), orvStsNoErr.
 */
ORV_API OrvStatus orvsMahDistMultiMix_32f_D2L(const float *const *ppMean, const float *const *ppVar,
                                              const float *pSrc, int32_t featLen, float *pResult,
                                              int32_t count);

/**
 * Distances of a 64f vector from means in matrices with a row step.
 * orvStsStrideErr (featLen above step), orvStsNullPtrErr, orvStsSizeErr (featLen or count below 1),
 * orvStsNoErr.
 */
ORV_API OrvStatus orvsMahDistMultiMix_64f_D2(const double *pMean, const double *pVar, int32_t step,
                                             const double *pSrc, int32_t featLen, double *pResult,
                                             int32_t count);

/**
 * Distances of a 64f vector from means in row pointers.
 * orvStsNullPtrErr, orvStsSizeErr (featLen or count below 1), orvStsNoErr.
 */
ORV_API OrvStatus orvsMahDistMultiMix_64f_D2L(const double *const *ppMean, const double *const *ppVar,
                                              const double *pSrc, int32_t featLen, double *pResult,
                                              int32_t count);

/** @} */

/**
 * @defgroup loggaussmixture Score of a vector under a mixture of Gaussians
 *
 *     *pResult = log(sum over m of exp(score[m]))                                  m = 0 .. nMix - 1
 *     score[m] = pGConst[m] - 1/2 * sum over j of (pSrc[j] - mean[m][j])^2 * var[m][j]
 *
 * The components are taken strictly in order. The score of component 0 starts the running value; each further
 * score is folded in by accurate log-addition (see @ref logadd), in the type of the result: a term that lies
 * further below the other than the drop threshold is left out, and only then is the running value raised to
 * the floor (-4.5e6; for 64f, -1e10 below -9e9). So a mixture of one component is never floored.
 *
 * Arguments:
 * - pSrc: the vector, featLen values.
 * - pMean, pVar, step: nMix rows of means and of inverse variances, a row of either every step elements
 *   (step >= featLen); or ppMean, ppVar: nMix pointers each to rows of featLen values, not tested for null.
 *   Inverse variances are not tested. The IdVar forms take all variances as 1 and have no such argument.
 * - nMix: number of components, 1 or more.
 * - featLen: values in a vector, 1 or more.
 * - pGConst: nMix additive constants, each the log of the component's weight less half of the constant that
 *   orvsUpdateGConst_32f() computes; orvsOutProbPreCalc_32f() forms them.
 * - pResult: one value, written; it is never read, and overlaps no argument.
 * - scaleFactor: of the 16s forms, any value.
 *
 * A component's sum is formed as in @ref loggauss, in groups of four components; the deciding pointer is the
 * fourth variance row of a group and the own variance row of a component left over (mean rows in the IdVar
 * forms), or pSrc with row pointers.
 *
 * Source of the method: L. Rabiner and B.-H. Juang, Fundamentals of Speech Recognition, 1993, section 6.6.
 * @{
 */

/**
 * Mixture score of a 32f vector; components in matrices with a row step, inverse variances.
 * orvStsNullPtrErr, orvStsStrideErr (featLen above step), orvStsSizeErr (featLen or nMix below 1),
 * orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGaussMixture_32f_D2(const float *pSrc, const float *pMean, const float *pVar,
                                             int32_t nMix, int32_t step, int32_t featLen,
                                             const float *pGConst, float *pResult);

/**
 * Mixture score of a 32f vector; components in row pointers, inverse variances.
 * orvStsNullPtrErr, orvStsSizeErr (featLen or nMix below 1), orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGaussMixture_32f_D2L(const float *pSrc, const float *const *ppMean,
                                              const float *const *ppVar, int32_t nMix, int32_t featLen,
                                              const float *pGConst, float *pResult);

/**
 * Mixture score of a 64f vector; components in matrices with a row step, inverse variances.
 * orvStsNullPtrErr, orvStsStrideErr (featLen above step), orvStsSizeErr (featLen or nMix below 1),
 * orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGaussMixture_64f_D2(const double *pSrc, const double *pMean, const double *pVar,
                                             int32_t nMix, int32_t step, int32_t featLen,
                                             const double *pGConst, double *pResult);

/**
 * Mixture score of a 64f vector; components in row pointers, inverse variances.
 * orvStsNullPtrErr, orvStsSizeErr (featLen or nMix below 1), orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGaussMixture_64f_D2L(const double *pSrc, const double *const *ppMean,
                                              const double *const *ppVar, int32_t nMix, int32_t featLen,
                                              const double *pGConst, double *pResult);

/**
 * Mixture score of a 16s vector; components in matrices with a row step, inverse variances. With S the 32f
 * sum of a component, its score is pGConst[m] - S * 2^-(scaleFactor + 1).
 * orvStsStrideErr (featLen above step), orvStsNullPtrErr, orvStsSizeErr (featLen or nMix below 1),
 * orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGaussMixture_Scaled_16s32f_D2(const int16_t *pSrc, const int16_t *pMean,
                                                       const int16_t *pVar, int32_t nMix, int32_t step,
                                                       int32_t featLen, const float *pGConst, float *pResult,
                                                       int32_t scaleFactor);

/**
 * Mixture score of a 16s vector; components in row pointers, inverse variances. With S the 32f sum of a
 * component, its score is pGConst[m] - S * 2^-(scaleFactor + 1).
 * orvStsNullPtrErr, orvStsSizeErr (featLen or nMix below 1), orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGaussMixture_Scaled_16s32f_D2L(const int16_t *pSrc, const int16_t *const *ppMean,
                                                        const int16_t *const *ppVar, int32_t nMix,
                                                        int32_t featLen, const float *pGConst, float *pResult,
                                                        int32_t scaleFactor);

/**
 * Mixture score of a 16s vector; components in matrices with a row step, inverse variances. With S the 32f
 * sum of a component, its score is pGConst[m] - (S * 0.5) * 2^-scaleFactor.
 * orvStsStrideErr (featLen above step), orvStsNullPtrErr, orvStsSizeErr (featLen or nMix below 1),
 * orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGaussMixture_LowScaled_16s32f_D2(const int16_t *pSrc, const int16_t *pMean,
                                                          const int16_t *pVar, int32_t nMix, int32_t step,
                                                          int32_t featLen, const float *pGConst,
                                                          float *pResult, int32_t scaleFactor);

/**
 * Mixture score of a 16s vector; components in row pointers, inverse variances. With S the 32f sum of a
 * component, its score is pGConst[m] - (S * 0.5) * 2^-scaleFactor.
 * orvStsNullPtrErr, orvStsSizeErr (featLen or nMix below 1), orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGaussMixture_LowScaled_16s32f_D2L(const int16_t *pSrc, const int16_t *const *ppMean,
                                                           const int16_t *const *ppVar, int32_t nMix,
                                                           int32_t featLen, const float *pGConst,
                                                           float *pResult, int32_t scaleFactor);

/**
 * Mixture score of a 32f vector; components in matrices with a row step, unit variances.
 * orvStsNullPtrErr, orvStsStrideErr (featLen above step), orvStsSizeErr (featLen or nMix below 1),
 * orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGaussMixture_IdVar_32f_D2(const float *pSrc, const float *pMean, int32_t nMix,
                                                   int32_t step, int32_t featLen, const float *pGConst,
                                                   float *pResult);

/**
 * Mixture score of a 32f vector; components in row pointers, unit variances.
 * orvStsNullPtrErr, orvStsSizeErr (featLen or nMix below 1), orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGaussMixture_IdVar_32f_D2L(const float *pSrc, const float *const *ppMean,
                                                    int32_t nMix, int32_t featLen, const float *pGConst,
                                                    float *pResult);

/**
 * Mixture score of a 64f vector; components in matrices with a row step, unit variances.
 * orvStsNullPtrErr, orvStsStrideErr (featLen above step), orvStsSizeErr (featLen or nMix below 1),
 * orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGaussMixture_IdVar_64f_D2(const double *pSrc, const double *pMean, int32_t nMix,
                                                   int32_t step, int32_t featLen, const double *pGConst,
                                                   double *pResult);

/**
 * Mixture score of a 64f vector; components in row pointers, unit variances.
 * orvStsNullPtrErr, orvStsSizeErr (featLen or nMix below 1), orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGaussMixture_IdVar_64f_D2L(const double *pSrc, const double *const *ppMean,
                                                    int32_t nMix, int32_t featLen, const double *pGConst,
                                                    double *pResult);

/**
 * Mixture score of a 16s vector; components in matrices with a row step, unit variances. With S the 32f sum
 * of a component, its score is pGConst[m] - S * 2^-(scaleFactor + 1).
 * orvStsStrideErr (featLen above step), orvStsNullPtrErr, orvStsSizeErr (featLen or nMix below 1),
 * orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGaussMixture_IdVarScaled_16s32f_D2(const int16_t *pSrc, const int16_t *pMean,
                                                            int32_t nMix, int32_t step, int32_t featLen,
                                                            const float *pGConst, float *pResult,
                                                            int32_t scaleFactor);

/**
 * Mixture score of a 16s vector; components in row pointers, unit variances. With S the 32f sum of a
 * component, its score is pGConst[m] - S * 2^-(scaleFactor + 1).
 * orvStsNullPtrErr, orvStsSizeErr (featLen or nMix below 1), orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGaussMixture_IdVarScaled_16s32f_D2L(const int16_t *pSrc,
                                                             const int16_t *const *ppMean, int32_t nMix,
                                                             int32_t featLen, const float *pGConst,
                                                             float *pResult, int32_t scaleFactor);

/**
 * Mixture score of a 16s vector; components in matrices with a row step, unit variances. With S the 32f sum
 * of a component, its score is pGConst[m] - S * factor with factor = 2^-scaleFactor * 0.5, formed once.
 * orvStsStrideErr (featLen above step), orvStsNullPtrErr, orvStsSizeErr (featLen or nMix below 1),
 * orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGaussMixture_IdVarLowScaled_16s32f_D2(const int16_t *pSrc, const int16_t *pMean,
                                                               int32_t nMix, int32_t step, int32_t featLen,
                                                               const float *pGConst, float *pResult,
                                                               int32_t scaleFactor);

/**
 * Mixture score of a 16s vector; components in row pointers, unit variances. With S the 32f sum of a
 * component, its score is pGConst[m] - S * factor with factor = 2^-scaleFactor * 0.5, formed once.
 * orvStsNullPtrErr, orvStsSizeErr (featLen or nMix below 1), orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGaussMixture_IdVarLowScaled_16s32f_D2L(const int16_t *pSrc,
                                                                const int16_t *const *ppMean, int32_t nMix,
                                                                int32_t featLen, const float *pGConst,
                                                                float *pResult, int32_t scaleFactor);

/** @} */

/**
 * @defgroup loggaussmultimix Scores of one vector under many Gaussians
 *
 *     score[m] = gconst[m] - 1/2 * sum over j of (pSrc[j] - mean[m][j])^2 * var[m][j]
 *                                            m = 0 .. count - 1,  j = 0 .. featLen - 1
 *
 * pSrcDst[m] is gconst[m] on entry and score[m] on return.
 *
 * Arguments:
 * - pMean, pVar, step: count rows of means and of inverse variances, a row of either every step elements
 *   (step >= featLen); or ppMean, ppVar: count pointers each to rows of featLen values, not tested for null.
 *   Inverse variances are not tested: a negative one or a NaN flows through.
 * - pSrc: the vector, featLen values.
 * - featLen: values in a vector, 1 or more.
 * - pSrcDst: count values, read and written: the additive constant of each Gaussian (the log of its mixture
 *   weight less half of the constant that orvsUpdateGConst_32f() computes), replaced by its score.
 * - count: number of Gaussians, 1 or more.
 * - scaleFactor: of the 16s forms, any value: 2^-scaleFactor scales the sum, as in @ref loggauss.
 *
 * Gaussians are taken in groups of four, then one by one, and sums are formed as in @ref loggauss; the
 * deciding pointer is the fourth variance row of a group (pSrc with row pointers), and the own variance row
 * of a Gaussian left over. Saturation is silent.
 *
 * Source of the method: L. Rabiner and B.-H. Juang, Fundamentals of Speech Recognition, 1993, section 6.6.
 * @{
 */

/**
 * Scores of a 32f vector; Gaussians in matrices with a row step, in 32f.
 * orvStsStrideErr (featLen above step), orvStsNullPtrErr, orvStsSizeErr (featLen or count below 1),
 * orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGaussMultiMix_32f_D2(const float *pMean, const float *pVar, int32_t step,
                                              const float *pSrc, int32_t featLen, float *pSrcDst,
                                              int32_t count);

/**
 * Scores of a 32f vector; Gaussians in row pointers, in 32f.
 * orvStsNullPtrErr, orvStsSizeErr (featLen or count below 1), orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGaussMultiMix_32f_D2L(const float *const *ppMean, const float *const *ppVar,
                                               const float *pSrc, int32_t featLen, float *pSrcDst,
                                               int32_t count);

/**
 * Scores of a 64f vector; Gaussians in matrices with a row step, in 64f.
 * orvStsStrideErr (featLen above step), orvStsNullPtrErr, orvStsSizeErr (featLen or count below 1),
 * orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGaussMultiMix_64f_D2(const double *pMean, const double *pVar, int32_t step,
                                              const double *pSrc, int32_t featLen, double *pSrcDst,
                                              int32_t count);

/**
 * Scores of a 64f vector; Gaussians in row pointers, in 64f.
 * orvStsNullPtrErr, orvStsSizeErr (featLen or count below 1), orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGaussMultiMix_64f_D2L(const double *const *ppMean, const double *const *ppVar,
                                               const double *pSrc, int32_t featLen, double *pSrcDst,
                                               int32_t count);

/**
 * Scores of a 16s vector; Gaussians in matrices with a row step. With S the exact 64-bit sum of a Gaussian,
 * pSrcDst[m] - (S >> (scaleFactor + 1)), saturated to 32 bits.
 * orvStsStrideErr (featLen above step), orvStsNullPtrErr, orvStsSizeErr (featLen or count below 1),
 * orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGaussMultiMix_16s32s_D2Sfs(const int16_t *pMean, const int16_t *pVar, int32_t step,
                                                    const int16_t *pSrc, int32_t featLen, int32_t *pSrcDst,
                                                    int32_t count, int32_t scaleFactor);

/**
 * Scores of a 16s vector; Gaussians in row pointers. With S the exact 64-bit sum of a Gaussian, pSrcDst[m] -
 * (S >> (scaleFactor + 1)), saturated to 32 bits.
 * orvStsNullPtrErr, orvStsSizeErr (featLen or count below 1), orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGaussMultiMix_16s32s_D2LSfs(const int16_t *const *ppMean,
                                                     const int16_t *const *ppVar, const int16_t *pSrc,
                                                     int32_t featLen, int32_t *pSrcDst, int32_t count,
                                                     int32_t scaleFactor);

/**
 * Scores of a 16s vector; Gaussians in matrices with a row step. With S the exact 64-bit sum of a Gaussian,
 * pSrcDst[m] - (S >> (scaleFactor + 1)), of which the low 32 bits are stored: beyond 32 bits the score
 * wraps.
 * orvStsStrideErr (featLen above step), orvStsNullPtrErr, orvStsSizeErr (featLen or count below 1),
 * orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGaussMultiMix_Low_16s32s_D2Sfs(const int16_t *pMean, const int16_t *pVar,
                                                        int32_t step, const int16_t *pSrc, int32_t featLen,
                                                        int32_t *pSrcDst, int32_t count, int32_t scaleFactor);

/**
 * Scores of a 16s vector; Gaussians in row pointers. With S the exact 64-bit sum of a Gaussian, pSrcDst[m] -
 * (S >> (scaleFactor + 1)), of which the low 32 bits are stored: beyond 32 bits the score wraps.
 * orvStsNullPtrErr, orvStsSizeErr (featLen or count below 1), orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGaussMultiMix_Low_16s32s_D2LSfs(const int16_t *const *ppMean,
                                                         const int16_t *const *ppVar, const int16_t *pSrc,
                                                         int32_t featLen, int32_t *pSrcDst, int32_t count,
                                                         int32_t scaleFactor);

/**
 * Scores of a 16s vector; Gaussians in matrices with a row step. With S the 32f sum of a Gaussian, its score
 * is pSrcDst[m] - S * 2^-(scaleFactor + 1).
 * orvStsStrideErr (featLen above step), orvStsNullPtrErr, orvStsSizeErr (featLen or count below 1),
 * orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGaussMultiMix_Scaled_16s32f_D2(const int16_t *pMean, const int16_t *pVar,
                                                        int32_t step, const int16_t *pSrc, int32_t featLen,
                                                        float *pSrcDst, int32_t count, int32_t scaleFactor);

/**
 * Scores of a 16s vector; Gaussians in row pointers. With S the 32f sum of a Gaussian, its score is
 * pSrcDst[m] - S * 2^-(scaleFactor + 1).
 * orvStsNullPtrErr, orvStsSizeErr (featLen or count below 1), orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGaussMultiMix_Scaled_16s32f_D2L(const int16_t *const *ppMean,
                                                         const int16_t *const *ppVar, const int16_t *pSrc,
                                                         int32_t featLen, float *pSrcDst, int32_t count,
                                                         int32_t scaleFactor);

/**
 * Scores of a 16s vector; Gaussians in matrices with a row step. With S the 32f sum of a Gaussian, its score
 * is pSrcDst[m] - S * factor with factor = 2^-scaleFactor * 0.5, formed once.
 * orvStsStrideErr (featLen above step), orvStsNullPtrErr, orvStsSizeErr (featLen or count below 1),
 * orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGaussMultiMix_LowScaled_16s32f_D2(const int16_t *pMean, const int16_t *pVar,
                                                           int32_t step, const int16_t *pSrc, int32_t featLen,
                                                           float *pSrcDst, int32_t count,
                                                           int32_t scaleFactor);

/**
 * Scores of a 16s vector; Gaussians in row pointers. With S the 32f sum of a Gaussian, its score is
 * pSrcDst[m] - S * factor with factor = 2^-scaleFactor * 0.5, formed once.
 * orvStsNullPtrErr, orvStsSizeErr (featLen or count below 1), orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGaussMultiMix_LowScaled_16s32f_D2L(const int16_t *const *ppMean,
                                                            const int16_t *const *ppVar, const int16_t *pSrc,
                                                            int32_t featLen, float *pSrcDst, int32_t count,
                                                            int32_t scaleFactor);

/** @} */

/**
 * @defgroup loggaussmaxmultimix Running maxima of the scores of one vector under many Gaussians
 *
 *     pSrcDst[m] = max(pSrcDst[m], score[m])                                       m = 0 .. count - 1
 *
 * with the scores of @ref loggaussmultimix and the additive constants in an array of their own. A NaN score
 * leaves pSrcDst[m] as it is. The integer members shift the negated sum, which rounds the score down, where
 * those of @ref loggaussmultimix round it up.
 *
 * Arguments:
 * - pMean, pVar, step: count rows of means and of inverse variances, a row of either every step elements
 *   (step >= featLen); or ppMean, ppVar: count pointers each to rows of featLen values, not tested for null.
 *   Inverse variances are not tested: a negative one or a NaN flows through.
 * - pSrc: the vector, featLen values.
 * - featLen: values in a vector, 1 or more.
 * - pGConst: count additive constants.
 * - pSrcDst: count running maxima, read and written.
 * - count: number of Gaussians, 1 or more.
 * - scaleFactor: of the 16s forms, any value: 2^-scaleFactor scales the sum, as in @ref loggauss.
 *
 * The Scaled and LowScaled members with a row step test the stride last, all others with a row step test it
 * first.
 *
 * Source of the method: L. Rabiner and B.-H. Juang, Fundamentals of Speech Recognition, 1993, section 6.6.
 * @{
 */

/**
 * Running maxima of the scores of a 32f vector; Gaussians in matrices with a row step, in 32f.
 * orvStsStrideErr (featLen above step), orvStsNullPtrErr, orvStsSizeErr (featLen or count below 1),
 * orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGaussMaxMultiMix_32f_D2(const float *pMean, const float *pVar, int32_t step,
                                                 const float *pSrc, int32_t featLen, const float *pGConst,
                                                 float *pSrcDst, int32_t count);

/**
 * Running maxima of the scores of a 32f vector; Gaussians in row pointers, in 32f.
 * orvStsNullPtrErr, orvStsSizeErr (featLen or count below 1), orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGaussMaxMultiMix_32f_D2L(const float *const *ppMean, const float *const *ppVar,
                                                  const float *pSrc, int32_t featLen, const float *pGConst,
                                                  float *pSrcDst, int32_t count);

/**
 * Running maxima of the scores of a 64f vector; Gaussians in matrices with a row step, in 64f.
 * orvStsStrideErr (featLen above step), orvStsNullPtrErr, orvStsSizeErr (featLen or count below 1),
 * orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGaussMaxMultiMix_64f_D2(const double *pMean, const double *pVar, int32_t step,
                                                 const double *pSrc, int32_t featLen, const double *pGConst,
                                                 double *pSrcDst, int32_t count);

/**
 * Running maxima of the scores of a 64f vector; Gaussians in row pointers, in 64f.
 * orvStsNullPtrErr, orvStsSizeErr (featLen or count below 1), orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGaussMaxMultiMix_64f_D2L(const double *const *ppMean, const double *const *ppVar,
                                                  const double *pSrc, int32_t featLen, const double *pGConst,
                                                  double *pSrcDst, int32_t count);

/**
 * Running maxima of the scores of a 16s vector; Gaussians in matrices with a row step. With S the exact
 * 64-bit sum of a Gaussian, its score is pGConst[m] + (-S >> (scaleFactor + 1)), saturated to 32 bits.
 * orvStsStrideErr (featLen above step), orvStsNullPtrErr, orvStsSizeErr (featLen or count below 1),
 * orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGaussMaxMultiMix_16s32s_D2Sfs(const int16_t *pMean, const int16_t *pVar,
                                                       int32_t step, const int16_t *pSrc, int32_t featLen,
                                                       const int32_t *pGConst, int32_t *pSrcDst,
                                                       int32_t count, int32_t scaleFactor);

/**
 * Running maxima of the scores of a 16s vector; Gaussians in row pointers. With S the exact 64-bit sum of a
 * Gaussian, its score is pGConst[m] + (-S >> (scaleFactor + 1)), saturated to 32 bits.
 * orvStsNullPtrErr, orvStsSizeErr (featLen or count below 1), orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGaussMaxMultiMix_16s32s_D2LSfs(const int16_t *const *ppMean,
                                                        const int16_t *const *ppVar, const int16_t *pSrc,
                                                        int32_t featLen, const int32_t *pGConst,
                                                        int32_t *pSrcDst, int32_t count, int32_t scaleFactor);

/**
 * Running maxima of the scores of a 16s vector; Gaussians in matrices with a row step. With S the exact
 * 64-bit sum of a Gaussian, its score is pGConst[m] + (-S >> (scaleFactor + 1)), compared in 64 bits and,
 * where it is not less, stored in its low 32 bits, which wrap.
 * orvStsStrideErr (featLen above step), orvStsNullPtrErr, orvStsSizeErr (featLen or count below 1),
 * orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGaussMaxMultiMix_Low_16s32s_D2Sfs(const int16_t *pMean, const int16_t *pVar,
                                                           int32_t step, const int16_t *pSrc, int32_t featLen,
                                                           const int32_t *pGConst, int32_t *pSrcDst,
                                                           int32_t count, int32_t scaleFactor);

/**
 * Running maxima of the scores of a 16s vector; Gaussians in row pointers. With S the exact 64-bit sum of a
 * Gaussian, its score is pGConst[m] + (-S >> (scaleFactor + 1)), compared in 64 bits and, where it is not
 * less, stored in its low 32 bits, which wrap.
 * orvStsNullPtrErr, orvStsSizeErr (featLen or count below 1), orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGaussMaxMultiMix_Low_16s32s_D2LSfs(const int16_t *const *ppMean,
                                                            const int16_t *const *ppVar, const int16_t *pSrc,
                                                            int32_t featLen, const int32_t *pGConst,
                                                            int32_t *pSrcDst, int32_t count,
                                                            int32_t scaleFactor);

/**
 * Running maxima of the scores of a 16s vector; Gaussians in matrices with a row step. With S the 32f sum of
 * a Gaussian, its score is pGConst[m] - S * 2^-(scaleFactor + 1). The stride is tested last here.
 * orvStsNullPtrErr, orvStsSizeErr (featLen or count below 1), orvStsStrideErr (featLen above step),
 * orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGaussMaxMultiMix_Scaled_16s32f_D2(const int16_t *pMean, const int16_t *pVar,
                                                           int32_t step, const int16_t *pSrc, int32_t featLen,
                                                           const float *pGConst, float *pSrcDst,
                                                           int32_t count, int32_t scaleFactor);

/**
 * Running maxima of the scores of a 16s vector; Gaussians in row pointers. With S the 32f sum of a Gaussian,
 * its score is pGConst[m] - S * 2^-(scaleFactor + 1).
 * orvStsNullPtrErr, orvStsSizeErr (featLen or count below 1), orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGaussMaxMultiMix_Scaled_16s32f_D2L(const int16_t *const *ppMean,
                                                            const int16_t *const *ppVar, const int16_t *pSrc,
                                                            int32_t featLen, const float *pGConst,
                                                            float *pSrcDst, int32_t count,
                                                            int32_t scaleFactor);

/**
 * Running maxima of the scores of a 16s vector; Gaussians in matrices with a row step. With S the 32f sum of
 * a Gaussian, its score is pGConst[m] - S * factor with factor = 2^-scaleFactor * 0.5, formed once. The
 * stride is tested last here.
 * orvStsNullPtrErr, orvStsSizeErr (featLen or count below 1), orvStsStrideErr (featLen above step),
 * orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGaussMaxMultiMix_LowScaled_16s32f_D2(const int16_t *pMean, const int16_t *pVar,
                                                              int32_t step, const int16_t *pSrc,
                                                              int32_t featLen, const float *pGConst,
                                                              float *pSrcDst, int32_t count,
                                                              int32_t scaleFactor);

/**
 * Running maxima of the scores of a 16s vector; Gaussians in row pointers. With S the 32f sum of a Gaussian,
 * its score is pGConst[m] - S * factor with factor = 2^-scaleFactor * 0.5, formed once.
 * orvStsNullPtrErr, orvStsSizeErr (featLen or count below 1), orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGaussMaxMultiMix_LowScaled_16s32f_D2L(const int16_t *const *ppMean,
                                                               const int16_t *const *ppVar,
                                                               const int16_t *pSrc, int32_t featLen,
                                                               const float *pGConst, float *pSrcDst,
                                                               int32_t count, int32_t scaleFactor);

/** @} */

/**
 * @defgroup loggaussaddmultimix Running log-sums of the scores of one vector under many Gaussians
 *
 *     pSrcDst[m] = log(exp(pSrcDst[m]) + exp(score[m]))                            m = 0 .. count - 1
 *
 * with the scores of @ref loggaussmultimix, added by accurate log-addition (see @ref logadd) in the type of
 * the result: the smaller term is dropped where it lies further below than the drop threshold, and only then
 * is the result raised to the floor (-4.5e6; for 64f, -1e10 below -9e9).
 *
 * Arguments:
 * - pMean, pVar, step: count rows of means and of inverse variances, a row of either every step elements
 *   (step >= featLen); or ppMean, ppVar: count pointers each to rows of featLen values, not tested for null.
 *   Inverse variances are not tested: a negative one or a NaN flows through.
 * - pSrc: the vector, featLen values.
 * - featLen: values in a vector, 1 or more.
 * - pGConst: count additive constants.
 * - pSrcDst: count running log-sums, read and written.
 * - count: number of Gaussians, 1 or more.
 * - scaleFactor: of the 16s forms, any value: 2^-scaleFactor scales the sum.
 *
 * Gaussians are taken one by one; the deciding pointer of a sum is the own variance row.
 *
 * Source of the method: L. Rabiner and B.-H. Juang, Fundamentals of Speech Recognition, 1993, section 6.6.
 * @{
 */

/**
 * Running log-sums of the scores of a 32f vector; Gaussians in matrices with a row step, in 32f.
 * orvStsStrideErr (featLen above step), orvStsNullPtrErr, orvStsSizeErr (featLen or count below 1),
 * orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGaussAddMultiMix_32f_D2(const float *pMean, const float *pVar, int32_t step,
                                                 const float *pSrc, int32_t featLen, const float *pGConst,
                                                 float *pSrcDst, int32_t count);

/**
 * Running log-sums of the scores of a 32f vector; Gaussians in row pointers, in 32f.
 * orvStsNullPtrErr, orvStsSizeErr (featLen or count below 1), orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGaussAddMultiMix_32f_D2L(const float *const *ppMean, const float *const *ppVar,
                                                  const float *pSrc, int32_t featLen, const float *pGConst,
                                                  float *pSrcDst, int32_t count);

/**
 * Running log-sums of the scores of a 64f vector; Gaussians in matrices with a row step, in 64f.
 * orvStsStrideErr (featLen above step), orvStsNullPtrErr, orvStsSizeErr (featLen or count below 1),
 * orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGaussAddMultiMix_64f_D2(const double *pMean, const double *pVar, int32_t step,
                                                 const double *pSrc, int32_t featLen, const double *pGConst,
                                                 double *pSrcDst, int32_t count);

/**
 * Running log-sums of the scores of a 64f vector; Gaussians in row pointers, in 64f.
 * orvStsNullPtrErr, orvStsSizeErr (featLen or count below 1), orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGaussAddMultiMix_64f_D2L(const double *const *ppMean, const double *const *ppVar,
                                                  const double *pSrc, int32_t featLen, const double *pGConst,
                                                  double *pSrcDst, int32_t count);

/**
 * Running log-sums of the scores of a 16s vector; Gaussians in matrices with a row step. With S the 32f sum
 * of a Gaussian, its score is pGConst[m] - S * 2^-(scaleFactor + 1).
 * orvStsStrideErr (featLen above step), orvStsNullPtrErr, orvStsSizeErr (featLen or count below 1),
 * orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGaussAddMultiMix_Scaled_16s32f_D2(const int16_t *pMean, const int16_t *pVar,
                                                           int32_t step, const int16_t *pSrc, int32_t featLen,
                                                           const float *pGConst, float *pSrcDst,
                                                           int32_t count, int32_t scaleFactor);

/**
 * Running log-sums of the scores of a 16s vector; Gaussians in row pointers. With S the 32f sum of a
 * Gaussian, its score is pGConst[m] - S * 2^-(scaleFactor + 1).
 * orvStsNullPtrErr, orvStsSizeErr (featLen or count below 1), orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGaussAddMultiMix_Scaled_16s32f_D2L(const int16_t *const *ppMean,
                                                            const int16_t *const *ppVar, const int16_t *pSrc,
                                                            int32_t featLen, const float *pGConst,
                                                            float *pSrcDst, int32_t count,
                                                            int32_t scaleFactor);

/**
 * Running log-sums of the scores of a 16s vector; Gaussians in matrices with a row step. With S the 32f sum
 * of a Gaussian, its score is pGConst[m] - S * factor with factor = 2^-scaleFactor * 0.5, formed once.
 * orvStsStrideErr (featLen above step), orvStsNullPtrErr, orvStsSizeErr (featLen or count below 1),
 * orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGaussAddMultiMix_LowScaled_16s32f_D2(const int16_t *pMean, const int16_t *pVar,
                                                              int32_t step, const int16_t *pSrc,
                                                              int32_t featLen, const float *pGConst,
                                                              float *pSrcDst, int32_t count,
                                                              int32_t scaleFactor);

/**
 * Running log-sums of the scores of a 16s vector; Gaussians in row pointers. With S the 32f sum of a
 * Gaussian, its score is pGConst[m] - S * factor with factor = 2^-scaleFactor * 0.5, formed once.
 * orvStsNullPtrErr, orvStsSizeErr (featLen or count below 1), orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGaussAddMultiMix_LowScaled_16s32f_D2L(const int16_t *const *ppMean,
                                                               const int16_t *const *ppVar,
                                                               const int16_t *pSrc, int32_t featLen,
                                                               const float *pGConst, float *pSrcDst,
                                                               int32_t count, int32_t scaleFactor);

/** @} */

/**
 * @defgroup loggaussselect Scores of frames under the selected Gaussians of a mixture
 *
 *     pResult[f] = log(sum over the selected m of exp(score[f][m]))                 f = 0 .. frames - 1
 *     score[f][m] = pGConst[m] - 1/2 * sum over j of (x[f][j] - mean[m][j])^2 * var[m][j]
 *
 * A shortlist says which Gaussians are worth scoring on each frame: m is selected on frame f if bit m of row
 * f is set. Scores are those of orvsLogGaussSingle_32f() and its kin. On each frame the selected Gaussians
 * enter in ascending order: the first as it is, each further one by orvsLogAdd_32f() on its accurate path,
 * with its drop threshold and floor. A frame with one bit set has that Gaussian's score, without a floor; a
 * frame with no bit set has defaultValue. A frame counts its Gaussians in 16 bits: the one after each 65536
 * starts the frame anew, and a frame with a multiple of 65536 bits set has defaultValue.
 *
 * Arguments:
 * - pSrc, pMean, pVar, step: frames rows of featLen values, and nMix rows of means and of inverse variances,
 *   a row of any of them every step elements (step >= featLen); or ppSrc, ppMean, ppVar: as many pointers to
 *   rows of featLen values, every one of which is tested for null. The IdVar forms take all variances as 1
 *   and have no such argument.
 * - featLen: values in a frame, 1 or more.
 * - pGConst: nMix additive constants.
 * - pBits: the shortlist: frames rows of (nMix + 7) / 8 bytes, one behind the other; Gaussian m is bit
 *   128 >> m % 8 of byte m / 8. Bits from nMix on do not matter.
 * - nMix: number of Gaussians, 1 or more.
 * - pResult: frames scores, written. Only orvsLogGaussMixture_Select_32f_D2() tests it for null.
 * - frames: number of frames, 1 or more.
 * - scaleFactor: of the 16s forms, any value.
 * - defaultValue: score of a frame without a selected Gaussian.
 *
 * Source of the method: E. Bocchieri, Vector quantization for the efficient computation of continuous density
 * likelihoods, ICASSP 1993, section 3.
 * @{
 */

/**
 * Scores of 32f frames; rows in matrices with a row step, inverse variances.
 * orvStsNullPtrErr (pSrc, pMean, pVar, pGConst, pBits, pResult), orvStsSizeErr (featLen, nMix or frames
 * below 1), orvStsStrideErr (featLen above step), orvStsMemAllocErr, orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGaussMixture_Select_32f_D2(const float *pSrc, const float *pMean, const float *pVar,
                                                    int32_t step, int32_t featLen, const float *pGConst,
                                                    const uint8_t *pBits, int32_t nMix, float *pResult,
                                                    int32_t frames, float defaultValue);

/**
 * Scores of 32f frames; rows in row pointers, inverse variances.
 * orvStsNullPtrErr (ppSrc, ppMean, ppVar, pGConst, pBits), orvStsSizeErr (featLen, nMix or frames below 1),
 * orvStsNullPtrErr (a row), orvStsMemAllocErr, orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGaussMixture_Select_32f_D2L(const float *const *ppSrc, const float *const *ppMean,
                                                     const float *const *ppVar, int32_t featLen,
                                                     const float *pGConst, const uint8_t *pBits, int32_t nMix,
                                                     float *pResult, int32_t frames, float defaultValue);

/**
 * Scores of 32f frames; rows in matrices with a row step, unit variances.
 * orvStsNullPtrErr (pSrc, pMean, pGConst, pBits), orvStsSizeErr (featLen, nMix or frames below 1),
 * orvStsStrideErr (featLen above step), orvStsMemAllocErr, orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGaussMixture_SelectIdVar_32f_D2(const float *pSrc, const float *pMean, int32_t step,
                                                         int32_t featLen, const float *pGConst,
                                                         const uint8_t *pBits, int32_t nMix, float *pResult,
                                                         int32_t frames, float defaultValue);

/**
 * Scores of 32f frames; rows in row pointers, unit variances.
 * orvStsNullPtrErr (ppSrc, ppMean, pGConst, pBits), orvStsSizeErr (featLen, nMix or frames below 1),
 * orvStsNullPtrErr (a row), orvStsMemAllocErr, orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGaussMixture_SelectIdVar_32f_D2L(const float *const *ppSrc,
                                                          const float *const *ppMean, int32_t featLen,
                                                          const float *pGConst, const uint8_t *pBits,
                                                          int32_t nMix, float *pResult, int32_t frames,
                                                          float defaultValue);

/**
 * Scores of 16s frames; rows in matrices with a row step, inverse variances. With S the 32f sum of a frame
 * under a Gaussian, its score is pGConst[m] - S * 2^-(scaleFactor + 1).
 * orvStsNullPtrErr (pSrc, pMean, pVar, pGConst, pBits), orvStsSizeErr (featLen, nMix or frames below 1),
 * orvStsStrideErr (featLen above step), orvStsMemAllocErr, orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGaussMixture_SelectScaled_16s32f_D2(const int16_t *pSrc, const int16_t *pMean,
                                                             const int16_t *pVar, int32_t step,
                                                             int32_t featLen, const float *pGConst,
                                                             const uint8_t *pBits, int32_t nMix,
                                                             float *pResult, int32_t frames,
                                                             int32_t scaleFactor, float defaultValue);

/**
 * Scores of 16s frames; rows in row pointers, inverse variances. With S the 32f sum of a frame under a
 * Gaussian, its score is pGConst[m] - S * 2^-(scaleFactor + 1).
 * orvStsNullPtrErr (ppSrc, ppMean, ppVar, pGConst, pBits), orvStsSizeErr (featLen, nMix or frames below 1),
 * orvStsNullPtrErr (a row), orvStsMemAllocErr, orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGaussMixture_SelectScaled_16s32f_D2L(const int16_t *const *ppSrc,
                                                              const int16_t *const *ppMean,
                                                              const int16_t *const *ppVar, int32_t featLen,
                                                              const float *pGConst, const uint8_t *pBits,
                                                              int32_t nMix, float *pResult, int32_t frames,
                                                              int32_t scaleFactor, float defaultValue);

/**
 * Scores of 16s frames; rows in matrices with a row step, unit variances. With S the 32f sum of a frame
 * under a Gaussian, its score is pGConst[m] - S * 2^-(scaleFactor + 1).
 * orvStsNullPtrErr (pSrc, pMean, pGConst, pBits), orvStsSizeErr (featLen, nMix or frames below 1),
 * orvStsStrideErr (featLen above step), orvStsMemAllocErr, orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGaussMixture_SelectIdVarScaled_16s32f_D2(const int16_t *pSrc, const int16_t *pMean,
                                                                  int32_t step, int32_t featLen,
                                                                  const float *pGConst, const uint8_t *pBits,
                                                                  int32_t nMix, float *pResult,
                                                                  int32_t frames, int32_t scaleFactor,
                                                                  float defaultValue);

/**
 * Scores of 16s frames; rows in row pointers, unit variances. With S the 32f sum of a frame under a
 * Gaussian, its score is pGConst[m] - S * 2^-(scaleFactor + 1).
 * orvStsNullPtrErr (ppSrc, ppMean, pGConst, pBits), orvStsSizeErr (featLen, nMix or frames below 1),
 * orvStsNullPtrErr (a row), orvStsMemAllocErr, orvStsNoErr.
 */
ORV_API OrvStatus orvsLogGaussMixture_SelectIdVarScaled_16s32f_D2L(const int16_t *const *ppSrc,
                                                                   const int16_t *const *ppMean,
                                                                   int32_t featLen, const float *pGConst,
                                                                   const uint8_t *pBits, int32_t nMix,
                                                                   float *pResult, int32_t frames,
                                                                   int32_t scaleFactor, float defaultValue);

/** @} */

/**
 * @defgroup shortlist Shortlists and sign tables
 *
 * Rows of bits in arrays of bytes; bit b of a row is bit 128 >> b % 8 of its byte b / 8.
 *
 * The orvsFillShortlist forms toggle the bits that lists of indices name: rows are not cleared first, and an
 * index listed twice cancels itself. A caller who wants the listed bits set clears the rows. All indices are
 * tested before a bit is changed.
 *
 * Arguments:
 * - pIndices: the lists of indices, one behind the other.
 * - perRow, perColumn: indices in each list, 1 or more; or pCounts: the count of each list, 1 or more each.
 * - ppDst: pointers to rows rows, not tested for null; read and written.
 * - width, columns: bits of a row that indices may name, or that have a list, 1 or more.
 * - rowBytes: bytes of a row, at least (bitOffset + width + 7) / 8, or the same of columns.
 * - bitOffset: where in a row the first of these bits stands, 0 or more.
 * @{
 */

/**
 * Toggles bit bitOffset + i of row r for each of the perRow indices i, 0 .. width - 1, at pIndices + r *
 * perRow. orvStsNullPtrErr, orvStsSizeErr (rows, width, rowBytes or perRow below 1, bitOffset below 0),
 * orvStsStrideErr (rowBytes too small), orvStsBadArgErr (an index out of range; nothing is changed),
 * orvStsNoErr.
 */
ORV_API OrvStatus orvsFillShortlist_Row_1u(const int32_t *pIndices, int32_t width, int32_t perRow,
                                           uint8_t *const *ppDst, int32_t rows, int32_t rowBytes,
                                           int32_t bitOffset);

/**
 * The same with pCounts[r] indices for row r.
 * orvStsNullPtrErr, orvStsSizeErr (rows, width or rowBytes below 1, bitOffset below 0, then a count below 1),
 * orvStsStrideErr (rowBytes too small), orvStsBadArgErr (an index out of range; nothing is changed),
 * orvStsNoErr.
 */
ORV_API OrvStatus orvsFillShortlist_RowVar_1u(const int32_t *pIndices, const int32_t *pCounts, int32_t width,
                                              uint8_t *const *ppDst, int32_t rows, int32_t rowBytes,
                                              int32_t bitOffset);

/**
 * Toggles bit bitOffset + c of row i for each of the perColumn indices i, 0 .. rows - 1, at
 * pIndices + c * perColumn.
 * orvStsNullPtrErr, orvStsSizeErr (rows, columns, rowBytes or perColumn below 1, bitOffset below 0),
 * orvStsStrideErr (rowBytes too small), orvStsBadArgErr (an index out of range; nothing is changed),
 * orvStsNoErr.
 */
ORV_API OrvStatus orvsFillShortlist_Column_1u(const int32_t *pIndices, int32_t perColumn,
                                              uint8_t *const *ppDst, int32_t rows, int32_t rowBytes,
                                              int32_t bitOffset, int32_t columns);

/**
 * The same with pCounts[c] indices for column c.
 * orvStsNullPtrErr, orvStsSizeErr (rows, columns or rowBytes below 1, bitOffset below 0), orvStsStrideErr
 * (rowBytes too small), orvStsSizeErr (a count below 1), orvStsBadArgErr (an index out of range; nothing is
 * changed), orvStsNoErr.
 */
ORV_API OrvStatus orvsFillShortlist_ColumnVar_1u(const int32_t *pIndices, const int32_t *pCounts,
                                                 uint8_t *const *ppDst, int32_t rows, int32_t rowBytes,
                                                 int32_t bitOffset, int32_t columns);

/**
 * Each output row is the union of table rows: bit b, 0 .. bits - 1, of row r is set if bit bitOffset + b is
 * set in any of the perRow table rows whose numbers, 0 .. tableRows - 1, stand at pIndices + r * perRow.
 * ppTable: tableRows pointers to rows of rowBytes bytes, not tested for null; rowBytes at least (bitOffset +
 * bits + 7) / 8. pDst: rows rows of (bits + 7) / 8 bytes, written; bits from bits on are 0. orvStsNullPtrErr,
 * orvStsSizeErr (perRow, tableRows, rowBytes, bits or rows below 1, bitOffset below 0), orvStsStrideErr
 * (rowBytes too small), orvStsBadArgErr (a row number out of range), orvStsNoErr.
 */
ORV_API OrvStatus orvsBuildSignTable_8u1u(const uint8_t *pIndices, int32_t perRow,
                                          const uint8_t *const *ppTable, int32_t tableRows, int32_t rowBytes,
                                          int32_t bitOffset, uint8_t *pDst, int32_t rows, int32_t bits);

/**
 * Each output row is one flag: the first bit of row r tells whether any of the bits bitOffset .. bitOffset +
 * bits - 1 is set in any of the table rows that the first pCounts[r] entries of pIndices number; all other
 * bits are 0. Every row reads the list from its first entry, though the row numbers of as many entries as all
 * counts together are tested; table rows that only entries beyond the greatest count number are not read.
 * Other arguments as in orvsBuildSignTable_8u1u(). orvStsNullPtrErr, orvStsSizeErr (tableRows, rowBytes, bits
 * or rows below 1, bitOffset below 0, then a count below 1), orvStsStrideErr (rowBytes too small),
 * orvStsBadArgErr (a row number out of range), orvStsNoErr.
 */
ORV_API OrvStatus orvsBuildSignTable_Var_8u1u(const uint8_t *pIndices, const int32_t *pCounts,
                                              const uint8_t *const *ppTable, int32_t tableRows,
                                              int32_t rowBytes, int32_t bitOffset, uint8_t *pDst,
                                              int32_t rows, int32_t bits);

/** @} */

/**
 * @defgroup scoretools Rank, row sums and language model scores
 * @{
 */

/**
 * Sum of chosen rows of a matrix, in 32f, from value through the rows in their order:
 *
 *     pDst[c] = value + sum over i of pSrc[(pIndex[i] + pIndexAdd[i]) * step + offset + c]
 *                                                          c = 0 .. len - 1,  i = 0 .. count - 1
 *
 * pSrc: height rows, one every step elements (step >= offset + len). pIndex, pIndexAdd: count values each,
 * whose sums are row numbers in 0 .. height - 1; a row may be chosen more than once. pDst: len values,
 * written. orvStsNullPtrErr, orvStsSizeErr (count, height or len below 1, offset below 0), orvStsStrideErr
 * (offset + len above step), orvStsSizeErr (a row number out of range; nothing is written), orvStsNoErr.
 */
ORV_API OrvStatus orvsAddNRows_32f_D2(const float *pSrc, int32_t height, int32_t offset, int32_t step,
                                      const int32_t *pIndex, const uint16_t *pIndexAdd, int32_t count,
                                      float *pDst, int32_t len, float value);

/**
 * The element of rank n of a vector in descending order: n = 0 gives the maximum, n = len - 1 the minimum,
 * and equal values count separately. pSrc: len values, left as they are. pResult: one value. Quickselect on a
 * copy, with the first element as the pivot: the time is proportional to len on values in no order, and to
 * its square on sorted ones. Source of the method: C. A. R. Hoare, Algorithm 65: Find, Communications of the
 * ACM 4 (7), 1961. orvStsNullPtrErr, orvStsSizeErr (len below 1), orvStsBadArgErr (n outside 0 .. len - 1),
 * orvStsMemAllocErr, orvStsNoErr.
 */
ORV_API OrvStatus orvsNthMaxElement_32f(const float *pSrc, int32_t len, int32_t n, float *pResult);

/**
 * The same of 32s values.
 * orvStsNullPtrErr, orvStsSizeErr (len below 1), orvStsBadArgErr (n outside 0 .. len - 1), orvStsMemAllocErr,
 * orvStsNoErr.
 */
ORV_API OrvStatus orvsNthMaxElement_32s(const int32_t *pSrc, int32_t len, int32_t n, int32_t *pResult);

/**
 * The same of 64f values.
 * orvStsNullPtrErr, orvStsSizeErr (len below 1), orvStsBadArgErr (n outside 0 .. len - 1), orvStsMemAllocErr,
 * orvStsNoErr.
 */
ORV_API OrvStatus orvsNthMaxElement_64f(const double *pSrc, int32_t len, int32_t n, double *pResult);

/**
 * Language model scores to the scale of acoustic ones: pDst[i] = max(pSrc[i], floor) * scale + offset for i
 * in 0 .. len - 1, in 32f; a NaN counts as the floor. pDst may be pSrc. orvStsNullPtrErr, orvStsSizeErr (len
 * below 1), orvStsNoErr.
 */
ORV_API OrvStatus orvsScaleLM_32f(const float *pSrc, float *pDst, int32_t len, float floor, float scale,
                                  float offset);

/**
 * The same of 16s values, in 32-bit integers that wrap: there is no saturation. pDst must not overlap pSrc.
 * orvStsNullPtrErr, orvStsSizeErr (len below 1), orvStsNoErr.
 */
ORV_API OrvStatus orvsScaleLM_16s32s(const int16_t *pSrc, int32_t *pDst, int32_t len, int16_t floor,
                                     int16_t scale, int32_t offset);

/** @} */

#ifdef __cplusplus
}
#endif
#endif
