/**
 * @file train.h
 * What a trainer needs between passes over the data.
 */
#ifndef ORVSR_TRAIN_H
#define ORVSR_TRAIN_H

#include "orvsr/types.h"

#ifdef __cplusplus
extern "C" {
#endif

/* ---------------------------------------------------------------- model parameter updates */

/**
 * @defgroup updates Model parameter updates
 *
 * From the accumulators that a pass over the data leaves to new means, variances, mixture weights and
 * additive constants. With c(t) the share of frame x(t) that falls to a Gaussian (its posterior), the
 * occupation is the sum of c(t), the mean accumulator the sum of c(t) x(t), and the variance accumulator the
 * sum of c(t) x(t)^2.
 *
 * The 32f forms work in single precision, the 64f forms in double. An occupation counts as zero up to and
 * including the smallest normal number of its type (1.1754944e-38 and 2.2250738585072014e-308).
 *
 * Source of the method: L. Rabiner and B.-H. Juang, Fundamentals of Speech Recognition, 1993, section 6.6
 * (the re-estimation formulas of Gaussian mixtures); for the floors D. A. Reynolds and R. C. Rose, Robust
 * text-independent speaker identification using Gaussian mixture speaker models, IEEE Transactions on Speech
 * and Audio Processing 3, 1995, section III.
 * @{
 */

/**
 * Adds the quotient of an accumulator and its occupation to a mean:
 *
 *     pMean[i] = pAcc[i] / occupation + pMean[i]              i = 0 .. len - 1
 *
 * The plain re-estimated mean comes from a pMean that was cleared before.
 *
 * Where the arrays do not overlap and pMean lies on a multiple of 4 bytes, elements are divided one by one
 * until pMean stands on a 16-byte boundary; then, eight at a time, multiplied by an approximate reciprocal of
 * the occupation (relative error below 2^-22); and the rest divided again. Everything is divided otherwise.
 * So the last bits of an element may depend on its place.
 *
 * @param pAcc        mean accumulator, len values
 * @param pMean       means, len values, read and written
 * @param len         number of values, 1 or more
 * @param occupation  occupation of the accumulator, 0 or more
 * @return orvStsNullPtrErr (pAcc or pMean null), orvStsSizeErr (len below 1), orvStsNegOccupancyErr
 * (occupation below 0), orvStsZeroOccupancyWrn (occupation zero or not a normal number; nothing written),
 * orvStsNoErr
 */
ORV_API OrvStatus orvsUpdateMean_32f(const float *pAcc, float *pMean, int32_t len, float occupation);

/**
 * As orvsUpdateMean_32f() for 64f values; every element is divided.
 *
 * @param pAcc        mean accumulator, len values
 * @param pMean       means, len values, read and written
 * @param len         number of values, 1 or more
 * @param occupation  occupation of the accumulator, 0 or more
 * @return orvStsNullPtrErr (pAcc or pMean null), orvStsSizeErr (len below 1), orvStsNegOccupancyErr
 * (occupation below 0), orvStsZeroOccupancyWrn (occupation zero or not a normal number; nothing written),
 * orvStsNoErr
 */
ORV_API OrvStatus orvsUpdateMean_64f(const double *pAcc, double *pMean, int32_t len, double occupation);

/**
 * Re-estimates variances, not letting them fall to a floor:
 *
 *     v = pVarAcc[i] / varOccupation - (pMeanAcc[i] / meanOccupation)^2
 *     pDst[i] = v > pVarFloor[i] ? v : pVarFloor[i]           i = 0 .. len - 1
 *
 * A v equal to its floor counts as floored, and so does a NaN.
 *
 * @param pMeanAcc        mean accumulator, len values
 * @param pVarAcc         variance accumulator, len values
 * @param pVarFloor       least variances, len values
 * @param pDst            variances, len values, written; may be one of the inputs
 * @param len             number of values, 1 or more
 * @param meanOccupation  occupation of pMeanAcc, 0 or more
 * @param varOccupation   occupation of pVarAcc, 0 or more
 * @return orvStsNullPtrErr (an array null), orvStsSizeErr (len below 1), orvStsNegOccupancyErr (either
 * occupation below 0), orvStsZeroOccupancyWrn (either occupation zero or not a normal number; nothing
 * written), orvStsAllFlooredWrn (every element was floored; the floors are written), orvStsNoErr
 */
ORV_API OrvStatus orvsUpdateVar_32f(const float *pMeanAcc, const float *pVarAcc, const float *pVarFloor,
                                    float *pDst, int32_t len, float meanOccupation, float varOccupation);

/**
 * As orvsUpdateVar_32f() for 64f values.
 *
 * @param pMeanAcc        mean accumulator, len values
 * @param pVarAcc         variance accumulator, len values
 * @param pVarFloor       least variances, len values
 * @param pDst            variances, len values, written; may be one of the inputs
 * @param len             number of values, 1 or more
 * @param meanOccupation  occupation of pMeanAcc, 0 or more
 * @param varOccupation   occupation of pVarAcc, 0 or more
 * @return orvStsNullPtrErr (an array null), orvStsSizeErr (len below 1), orvStsNegOccupancyErr (either
 * occupation below 0), orvStsZeroOccupancyWrn (either occupation zero or not a normal number; nothing
 * written), orvStsAllFlooredWrn (every element was floored; the floors are written), orvStsNoErr
 */
ORV_API OrvStatus orvsUpdateVar_64f(const double *pMeanAcc, const double *pVarAcc, const double *pVarFloor,
                                    double *pDst, int32_t len, double meanOccupation, double varOccupation);

/**
 * Re-estimates mixture weights, not letting them fall below a floor:
 *
 *     w = pAcc[i] / occupation
 *     pDst[i] = weightFloor >= w ? weightFloor : w            i = 0 .. len - 1
 *     *pSum = pDst[0] + ... + pDst[len - 1]
 *
 * A w equal to the floor counts as floored, but a NaN does not: it is stored. The weights are not brought
 * back to a sum of 1; *pSum, added up in the order of the index in the type of the data, is there for that.
 *
 * @param pAcc         occupations of the components, len values
 * @param pDst         weights, len values, written; may be pAcc
 * @param len          number of components, 1 or more
 * @param pSum         sum of the weights written, one value, written
 * @param occupation   occupation of the mixture, 0 or more
 * @param weightFloor  least weight
 * @return orvStsNullPtrErr (pAcc, pDst or pSum null), orvStsSizeErr (len below 1), orvStsNegOccupancyErr
 * (occupation below 0), orvStsZeroOccupancyWrn (occupation zero or not a normal number; nothing written,
 * *pSum included), orvStsAllFlooredWrn (every weight was floored; floors and their sum are written),
 * orvStsNoErr
 */
ORV_API OrvStatus orvsUpdateWeight_32f(const float *pAcc, float *pDst, int32_t len, float *pSum,
                                       float occupation, float weightFloor);

/**
 * As orvsUpdateWeight_32f() for 64f values.
 *
 * @param pAcc         occupations of the components, len values
 * @param pDst         weights, len values, written; may be pAcc
 * @param len          number of components, 1 or more
 * @param pSum         sum of the weights written, one value, written
 * @param occupation   occupation of the mixture, 0 or more
 * @param weightFloor  least weight
 * @return orvStsNullPtrErr (pAcc, pDst or pSum null), orvStsSizeErr (len below 1), orvStsNegOccupancyErr
 * (occupation below 0), orvStsZeroOccupancyWrn (occupation zero or not a normal number; nothing written,
 * *pSum included), orvStsAllFlooredWrn (every weight was floored; floors and their sum are written),
 * orvStsNoErr
 */
ORV_API OrvStatus orvsUpdateWeight_64f(const double *pAcc, double *pDst, int32_t len, double *pSum,
                                       double occupation, double weightFloor);

/**
 * The normalising constant of a Gaussian from its inverse variances:
 *
 *     *pGConst = len * 1.8378770664093 - sum over i of ln(pInvVar[i])     i = 0 .. len - 1
 *
 * that is len * ln(2 pi) + ln of the determinant of the covariance. Each logarithm is taken in double and
 * rounded to 32f; the rest is 32f, in the order of the index. The constant is ln(2 pi) cut to 14 digits, and
 * kept so.
 *
 * The elements are tested in order before: the first one that is not above the smallest normal number
 * decides. Zero or not normal makes the result plus infinity; negative makes it NaN. A NaN among the elements
 * passes the tests and makes the result NaN.
 *
 * @param pInvVar  inverse variances, len values, above 0
 * @param len      number of values, 1 or more
 * @param pGConst  the constant, one value, written
 * @return orvStsNullPtrErr (pInvVar or pGConst null), orvStsSizeErr (len below 1), orvStsInfResultWrn (zero
 * or not normal; plus infinity written), orvStsNegVarWrn (negative; NaN written), orvStsNoErr
 */
ORV_API OrvStatus orvsUpdateGConst_32f(const float *pInvVar, int32_t len, float *pGConst);

/**
 * As orvsUpdateGConst_32f() for 64f values, all of it in double.
 *
 * @param pInvVar  inverse variances, len values, above 0
 * @param len      number of values, 1 or more
 * @param pGConst  the constant, one value, written
 * @return orvStsNullPtrErr (pInvVar or pGConst null), orvStsSizeErr (len below 1), orvStsInfResultWrn (zero
 * or not normal; plus infinity written), orvStsNegVarWrn (negative; NaN written), orvStsNoErr
 */
ORV_API OrvStatus orvsUpdateGConst_64f(const double *pInvVar, int32_t len, double *pGConst);

/**
 * The normalising constant of a Gaussian from its variances:
 *
 *     *pGConst = len * 1.8378770664093 + sum over i of ln(pVar[i])        i = 0 .. len - 1
 *
 * Precision and tests as in orvsUpdateGConst_32f(): a zero variance makes the result plus infinity here too.
 *
 * @param pVar     variances, len values, above 0
 * @param len      number of values, 1 or more
 * @param pGConst  the constant, one value, written
 * @return orvStsNullPtrErr (pVar or pGConst null), orvStsSizeErr (len below 1), orvStsInfResultWrn (zero or
 * not normal; plus infinity written), orvStsNegVarWrn (negative; NaN written), orvStsNoErr
 */
ORV_API OrvStatus orvsUpdateGConst_DirectVar_32f(const float *pVar, int32_t len, float *pGConst);

/**
 * As orvsUpdateGConst_DirectVar_32f() for 64f values, all of it in double.
 *
 * @param pVar     variances, len values, above 0
 * @param len      number of values, 1 or more
 * @param pGConst  the constant, one value, written
 * @return orvStsNullPtrErr (pVar or pGConst null), orvStsSizeErr (len below 1), orvStsInfResultWrn (zero or
 * not normal; plus infinity written), orvStsNegVarWrn (negative; NaN written), orvStsNoErr
 */
ORV_API OrvStatus orvsUpdateGConst_DirectVar_64f(const double *pVar, int32_t len, double *pGConst);

/**
 * The additive terms of log output probabilities:
 *
 *     pDst[i] = pSrc1[i] - 0.5 * pSrc2[i]                     i = 0 .. len - 1
 *
 * With log mixture weights and the constants of orvsUpdateGConst_32f() it gives the gconst that the scores
 * take. The arrays are worked through in the order of the index, so any overlap has the meaning of a plain
 * loop.
 *
 * @param pSrc1  log weights, len values
 * @param pSrc2  normalising constants, len values
 * @param pDst   additive terms, len values, written
 * @param len    number of values, 1 or more
 * @return orvStsNullPtrErr (pSrc1, pSrc2 or pDst null), orvStsSizeErr (len below 1), orvStsNoErr
 */
ORV_API OrvStatus orvsOutProbPreCalc_32f(const float *pSrc1, const float *pSrc2, float *pDst, int32_t len);

/**
 * As orvsOutProbPreCalc_32f() for 64f values.
 *
 * @param pSrc1  log weights, len values
 * @param pSrc2  normalising constants, len values
 * @param pDst   additive terms, len values, written
 * @param len    number of values, 1 or more
 * @return orvStsNullPtrErr (pSrc1, pSrc2 or pDst null), orvStsSizeErr (len below 1), orvStsNoErr
 */
ORV_API OrvStatus orvsOutProbPreCalc_64f(const double *pSrc1, const double *pSrc2, double *pDst, int32_t len);

/**
 * As orvsOutProbPreCalc_32f() for 32s values, half of pSrc2 rounded up:
 *
 *     pDst[i] = pSrc1[i] - ((pSrc2[i] + 1) >> 1)              i = 0 .. len - 1
 *
 * Both the increment and the difference wrap in 32 bits.
 *
 * @param pSrc1  log weights, len values
 * @param pSrc2  normalising constants, len values
 * @param pDst   additive terms, len values, written
 * @param len    number of values, 1 or more
 * @return orvStsNullPtrErr (pSrc1, pSrc2 or pDst null), orvStsSizeErr (len below 1), orvStsNoErr
 */
ORV_API OrvStatus orvsOutProbPreCalc_32s(const int32_t *pSrc1, const int32_t *pSrc2, int32_t *pDst,
                                         int32_t len);

/**
 * orvsOutProbPreCalc_32f() in place: pSrcDst[i] = pSrc[i] - 0.5 * pSrcDst[i].
 *
 * @param pSrc     log weights, len values
 * @param pSrcDst  normalising constants, len values, overwritten by the additive terms
 * @param len      number of values, 1 or more
 * @return orvStsNullPtrErr (pSrc or pSrcDst null), orvStsSizeErr (len below 1), orvStsNoErr
 */
ORV_API OrvStatus orvsOutProbPreCalc_32f_I(const float *pSrc, float *pSrcDst, int32_t len);

/**
 * orvsOutProbPreCalc_64f() in place: pSrcDst[i] = pSrc[i] - 0.5 * pSrcDst[i].
 *
 * @param pSrc     log weights, len values
 * @param pSrcDst  normalising constants, len values, overwritten by the additive terms
 * @param len      number of values, 1 or more
 * @return orvStsNullPtrErr (pSrc or pSrcDst null), orvStsSizeErr (len below 1), orvStsNoErr
 */
ORV_API OrvStatus orvsOutProbPreCalc_64f_I(const double *pSrc, double *pSrcDst, int32_t len);

/**
 * orvsOutProbPreCalc_32s() in place: pSrcDst[i] = pSrc[i] - ((pSrcDst[i] + 1) >> 1).
 *
 * @param pSrc     log weights, len values
 * @param pSrcDst  normalising constants, len values, overwritten by the additive terms
 * @param len      number of values, 1 or more
 * @return orvStsNullPtrErr (pSrc or pSrcDst null), orvStsSizeErr (len below 1), orvStsNoErr
 */
ORV_API OrvStatus orvsOutProbPreCalc_32s_I(const int32_t *pSrc, int32_t *pSrcDst, int32_t len);
/** @} */

/* ---------------------------------------------------------------- distance, merging and splitting of
 * Gaussians */

/* ---------------------------------------------------------------- cluster likelihoods */

/* ---------------------------------------------------------------- column statistics */

#ifdef __cplusplus
}
#endif
#endif
