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
 * - scaleFactor: of the integer forms, any value: 2^-scaleFactor scales the sum. It stands behind gconst in
 *   the Sfs forms and before it in the Scaled forms.
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
 * - pVar: featLen inverse variances; they are not tested, and a negative one or a NaN flows through. The IdVar forms
 *   take all variances as 1 and have no such argument.
 * - featLen: values in a frame, 1 or more.
 * - pResult: frames scores, written.
 * - frames: number of frames, 1 or more.
 * - gconst: additive constant of the Gaussian: the log of its mixture weight less half of the constant that
 *   orvsUpdateGConst_32f() computes.
 * - scaleFactor: of the integer forms, any value: 2^-scaleFactor scales the sum. It stands behind gconst in the Sfs
 *   forms and before it in the Scaled forms.
 *
 * The 32f and 64f forms double gconst, subtract the terms from it and halve the result, all in their own type.
 * Frames are taken in groups of four, then one by one; the grouping of a sum depends on the alignment of the
 * group's fourth row (_D2) or of pVar (_D2L, and frames left over; pMean in the IdVar forms), so the score of a frame
 * may differ in its last bits by its place in the block. Saturation is silent.
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
 * - scaleFactor: of the integer form, any value.
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
 * The components are taken strictly in order. The score of component 0 starts the running value; each further score is
 * folded in by accurate log-addition (see @ref logadd), in the type of the result: a term that lies further below
 * the other than the drop threshold is left out, and only then is the running value raised to the floor (-4.5e6; for
 * 64f, -1e10 below -9e9). So a mixture of one component is never floored.
 *
 * Arguments:
 * - pSrc: the vector, featLen values.
 * - pMean, pVar, step: nMix rows of means and of inverse variances, a row of either every step elements
 *   (step >= featLen); or ppMean, ppVar: nMix pointers each to rows of featLen values, not tested for null. Inverse
 *   variances are not tested. The IdVar forms take all variances as 1 and have no such argument.
 * - nMix: number of components, 1 or more.
 * - featLen: values in a vector, 1 or more.
 * - pGConst: nMix additive constants, each the log of the component's weight less half of the constant that
 *   orvsUpdateGConst_32f() computes; orvsOutProbPreCalc_32f() forms them.
 * - pResult: one value, written; it is never read, and overlaps no argument.
 * - scaleFactor: of the 16s forms, any value.
 *
 * A component's sum is formed as in @ref loggauss, in groups of four components; the deciding pointer is the
 * fourth variance row of a group and the own variance row of a component left over (mean rows in the IdVar forms), or
 * pSrc with row pointers.
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

#ifdef __cplusplus
}
#endif
#endif
