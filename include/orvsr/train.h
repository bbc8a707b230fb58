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
 * the occupation (relative error about 2^-22); and the rest divided again. Everything is divided otherwise.
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
 * that is len * ln(2 pi) + ln of the determinant of the covariance. The product and each logarithm are taken
 * in double and rounded to 32f; the sum is 32f, in the order of the index. The constant is ln(2 pi) cut to 14
 * digits, and kept so.
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

/* ---------------------------------------------------------------- distance, merge and split of Gaussians */

/**
 * @defgroup gaussianmerge Merging two Gaussians
 *
 * Of Gaussians with means pMean1, pMean2 and variances (not inverses) pVar1, pVar2 of len values, and
 * occupations weight1, weight2 with W = weight1 + weight2:
 *
 *     m[i] = (weight1 pMean1[i] + weight2 pMean2[i]) / W
 *     v[i] = ((pMean1[i]^2 + pVar1[i]) weight1 + (pMean2[i]^2 + pVar2[i]) weight2) / W - m[i]^2
 *     C    = len * 1.8378770664093 - sum of ln v[i]
 *
 * Merge writes m, v and C; the sign of the logarithms is not that of a score's constant. Dist is what the
 * merge costs, with gconst1 and gconst2 the constants of the parts in the form of C:
 *
 *     *pDist = weight1 gconst1 + weight2 gconst2 - W C
 *
 * The 32f members compute in double and round once, but W and weight1 gconst1 + weight2 gconst2 are formed in
 * single.
 *
 * Statuses: orvStsSizeErr (len below 1; tested first), orvStsNullPtrErr, orvStsInfResultWrn (a v[i] is 0: the
 * scalar result is plus infinity), orvStsNegVarWrn (a v[i] is negative: the scalar result is NaN),
 * orvStsNoErr. A warning ends the work at its element: m and v are written up to it.
 *
 * Source of the method: S. Young and P. Woodland, State clustering in hidden Markov model-based continuous
 * speech recognition, Computer Speech and Language 8 (1994).
 * @{
 */

/** Cost of a merge, 32f. */
ORV_API OrvStatus orvsGaussianDist_32f(const float *pMean1, const float *pVar1, const float *pMean2,
                                       const float *pVar2, int32_t len, float *pDist, float weight1,
                                       float gconst1, float weight2, float gconst2);
/** Cost of a merge, 64f. */
ORV_API OrvStatus orvsGaussianDist_64f(const double *pMean1, const double *pVar1, const double *pMean2,
                                       const double *pVar2, int32_t len, double *pDist, double weight1,
                                       double gconst1, double weight2, double gconst2);
/** Merge, 32f. The outputs may be the inputs. */
ORV_API OrvStatus orvsGaussianMerge_32f(const float *pMean1, const float *pVar1, const float *pMean2,
                                        const float *pVar2, float *pDstMean, float *pDstVar, int32_t len,
                                        float *pGConst, float weight1, float weight2);
/** Merge, 64f. The outputs may be the inputs. */
ORV_API OrvStatus orvsGaussianMerge_64f(const double *pMean1, const double *pVar1, const double *pMean2,
                                        const double *pVar2, double *pDstMean, double *pDstVar, int32_t len,
                                        double *pGConst, double weight1, double weight2);
/** @} */

/**
 * @defgroup gaussiansplit Splitting a Gaussian
 *
 *     s = sqrt(pVar1[i]) * factor;  pMean2[i] = pMean1[i] - s;  pMean1[i] += s;  pVar2[i] = pVar1[i]
 *
 * for len values; s is formed in double and rounded to the type of the data. A negative variance gives NaN
 * means.
 *
 * Statuses of the 32f member: orvStsSizeErr (len below 1), orvStsNullPtrErr, orvStsNoErr; of the 64f member:
 * orvStsNullPtrErr, orvStsSizeErr, orvStsNoErr.
 *
 * Source of the method: Y. Linde, A. Buzo and R. Gray, An algorithm for vector quantizer design, IEEE Trans.
 * COM 28 (1980); S. Young et al., The HTK Book, 2006, section 8.6.
 * @{
 */

/** Split, 32f. */
ORV_API OrvStatus orvsGaussianSplit_32f(float *pMean1, const float *pVar1, float *pMean2, float *pVar2,
                                        int32_t len, float factor);
/** Split, 64f. */
ORV_API OrvStatus orvsGaussianSplit_64f(double *pMean1, const double *pVar1, double *pMean2, double *pVar2,
                                        int32_t len, double factor);
/** @} */

/**
 * @defgroup bhatdist Bhattacharyya distance of two Gaussians
 *
 *     A = sum of (pMean1[i] - pMean2[i])^2 / (pVar1[i] + pVar2[i])
 *     B = sum of ln((pVar1[i] + pVar2[i]) / 2) - (ln pVar1[i] + ln pVar2[i]) / 2
 *     *pDist = A / 4 + B / 2
 *
 * over len values of direct variances. The SLog forms take the sums of the logarithms of the variances from
 * the caller, who compares one Gaussian with many. Members ending in 32f compute in single, with every
 * logarithm formed in double and rounded; members ending in 64f compute in double, but sumLogVar1 +
 * sumLogVar2 is added in single.
 *
 * Statuses: orvStsNullPtrErr, orvStsSizeErr (len below 1), then for each element in turn orvStsNegVarWrn (a
 * mean or a variance is negative: *pDist is NaN) and orvStsInfResultWrn (a mean or a variance is below 1e-6
 * in magnitude: *pDist is plus infinity), orvStsNoErr. The means are tested with the variances: the distance
 * is for positive features.
 *
 * Source of the method: A. Bhattacharyya, On a measure of divergence between two statistical populations,
 * 1943; K. Fukunaga, Introduction to Statistical Pattern Recognition, 1990, section 3.4.
 * @{
 */

/** Distance in single. */
ORV_API OrvStatus orvsBhatDist_32f(const float *pMean1, const float *pVar1, const float *pMean2,
                                   const float *pVar2, int32_t len, float *pDist);
/** Distance in double. */
ORV_API OrvStatus orvsBhatDist_32f64f(const float *pMean1, const float *pVar1, const float *pMean2,
                                      const float *pVar2, int32_t len, double *pDist);
/** Distance in single, logarithms of the variances summed by the caller. */
ORV_API OrvStatus orvsBhatDistSLog_32f(const float *pMean1, const float *pVar1, const float *pMean2,
                                       const float *pVar2, int32_t len, float *pDist, float sumLogVar1,
                                       float sumLogVar2);
/** Distance in double, logarithms of the variances summed by the caller. */
ORV_API OrvStatus orvsBhatDistSLog_32f64f(const float *pMean1, const float *pVar1, const float *pMean2,
                                          const float *pVar2, int32_t len, double *pDist, float sumLogVar1,
                                          float sumLogVar2);
/** @} */

/* ---------------------------------------------------------------- cluster likelihoods */

/**
 * @defgroup dcsclust Likelihood of a cluster
 *
 * The log-likelihood of the data behind a set of Gaussians under one Gaussian fitted to all of it, without
 * the data. Accumulate forms the contribution of one member with occupation o to two vectors, which the
 * caller adds up over the cluster (the function stores, it does not add):
 *
 *     pFirst[i]  = mean[i] * o
 *     pSecond[i] = (mean[i]^2 + variance[i]) * o             i = 0 .. len - 1
 *
 * in the type of the data. Compute takes the sums and the whole occupation:
 *
 *     d[i] = pSecond[i] o - pFirst[i]^2
 *     *pLikelihood = 0.5 o (len (ln o - 1 - 1.8378770664093456 + ln o) - sum of ln d[i])
 *
 * in double: -o/2 (len (1 + ln 2 pi) + sum of ln of the variances).
 *
 * Statuses of Accumulate: orvStsNullPtrErr, orvStsSizeErr (len below 1), orvStsNoErr. A zero inverse variance
 * gives an infinity and no status. Statuses of Compute: orvStsNullPtrErr, orvStsSizeErr,
 * orvStsNegOccupancyErr (occupation below 0), orvStsZeroOccupancyWrn (occupation exactly 0: *pLikelihood is
 * -1e10), orvStsNegVarWrn (a d[i] is negative: NaN), orvStsInfResultWrn (a d[i] is 0 and none is negative:
 * minus infinity), orvStsNoErr.
 *
 * Source of the method: J. Odell, The Use of Context in Large Vocabulary Speech Recognition, 1995,
 * section 3.4.
 * @{
 */

/** Contribution of a Gaussian with inverse variances pVar, 32f. */
ORV_API OrvStatus orvsDcsClustLAccumulate_32f(const float *pMean, const float *pVar, float *pFirst,
                                              float *pSecond, int32_t len, float occupation);
/** Contribution of a Gaussian with inverse variances pVar, 64f. */
ORV_API OrvStatus orvsDcsClustLAccumulate_64f(const double *pMean, const double *pVar, double *pFirst,
                                              double *pSecond, int32_t len, double occupation);
/** Contribution of a Gaussian with variances pVar, 32f. */
ORV_API OrvStatus orvsDcsClustLAccumulate_DirectVar_32f(const float *pMean, const float *pVar, float *pFirst,
                                                        float *pSecond, int32_t len, float occupation);
/** Contribution of a Gaussian with variances pVar, 64f. */
ORV_API OrvStatus orvsDcsClustLAccumulate_DirectVar_64f(const double *pMean, const double *pVar,
                                                        double *pFirst, double *pSecond, int32_t len,
                                                        double occupation);
/** Log-likelihood from 64f sums. */
ORV_API OrvStatus orvsDcsClustLCompute_64f(const double *pFirst, const double *pSecond, int32_t len,
                                           double *pLikelihood, double occupation);
/** Log-likelihood from 32f sums. */
ORV_API OrvStatus orvsDcsClustLCompute_32f64f(const float *pFirst, const float *pSecond, int32_t len,
                                              double *pLikelihood, float occupation);
/** @} */

/* ---------------------------------------------------------------- column statistics */

/**
 * @defgroup meancolumn Column means
 *
 *     pMean[c] = r * sum over k of x[k][c]        r = 1 / height,  c = 0 .. width - 1
 *
 * of a feature matrix x with a frame in each row. The 32f members add and multiply in single. The 16s members
 * add exactly, convert the sum to single, multiply by r in single and truncate toward zero: nothing is
 * rounded, and the mean of equal values may come out one smaller in magnitude than they are.
 *
 * Arguments:
 * - pSrc or ppSrc: the matrix, height rows of width values.
 * - height: rows, 1 or more.
 * - step: elements from one row of pSrc to the next, width or more.
 * - pMean: width means, written on success only.
 * - width: columns, 1 or more.
 *
 * Every column is added from row 0 downward.
 *
 * Statuses of the members that take one array: orvStsStrideErr (width above step; tested first),
 * orvStsNullPtrErr, orvStsSizeErr (width or height below 1), orvStsNoErr; of those that take row pointers:
 * orvStsNullPtrErr, orvStsSizeErr, orvStsNoErr.
 *
 * Source of the method: L. Rabiner and B.-H. Juang, Fundamentals of Speech Recognition, 1993, section 6.6.
 * @{
 */

/** 32f, one array. */
ORV_API OrvStatus orvsMeanColumn_32f_D2(const float *pSrc, int32_t height, int32_t step, float *pMean,
                                        int32_t width);
/** 32f, row pointers. */
ORV_API OrvStatus orvsMeanColumn_32f_D2L(const float *const *ppSrc, int32_t height, float *pMean,
                                         int32_t width);
/** 16s, one array. */
ORV_API OrvStatus orvsMeanColumn_16s_D2(const int16_t *pSrc, int32_t height, int32_t step, int16_t *pMean,
                                        int32_t width);
/** 16s, row pointers. */
ORV_API OrvStatus orvsMeanColumn_16s_D2L(const int16_t *const *ppSrc, int32_t height, int16_t *pMean,
                                         int32_t width);
/** @} */

/**
 * @defgroup varcolumn Column variances about given means
 *
 *     pVar[c] = (sum over k of x[k][c]^2 - height pMean[c]^2) / (height - 1)
 *
 * The 32f members begin each sum at -height pMean[c]^2, add the squares in single, and multiply by
 * 1.0f / (float)(height - 1). The 16s members round each square to single and add in single; the difference
 * to pMean[c]^2 height, times the same factor, is truncated, shifted by scaleFactor (to the right, downward,
 * where it is positive, and to the left where it is negative) and saturated.
 *
 * Arguments:
 * - pSrc or ppSrc: the matrix, height rows of width values.
 * - height: rows, 2 or more.
 * - step: elements from one row of pSrc to the next, width or more.
 * - pMean: width means; they are taken as given.
 * - pVar: width variances, written on success only.
 * - width: columns, 1 or more.
 * - scaleFactor: 2^-scaleFactor scales the result; the count of the shift is taken modulo 64.
 *
 * Statuses of the members that take one array: orvStsStrideErr (width above step; tested first),
 * orvStsNullPtrErr, orvStsSizeErr (width below 1 or height below 2), orvStsNoErr; of those that take row
 * pointers: orvStsNullPtrErr, orvStsSizeErr, orvStsNoErr.
 *
 * Source of the method: L. Rabiner and B.-H. Juang, Fundamentals of Speech Recognition, 1993, section 6.6.
 * @{
 */

/** 32f, one array. */
ORV_API OrvStatus orvsVarColumn_32f_D2(const float *pSrc, int32_t height, int32_t step, const float *pMean,
                                       float *pVar, int32_t width);
/** 32f, row pointers. */
ORV_API OrvStatus orvsVarColumn_32f_D2L(const float *const *ppSrc, int32_t height, const float *pMean,
                                        float *pVar, int32_t width);
/** 16s, one array. */
ORV_API OrvStatus orvsVarColumn_16s_D2Sfs(const int16_t *pSrc, int32_t height, int32_t step,
                                          const int16_t *pMean, int16_t *pVar, int32_t width,
                                          int32_t scaleFactor);
/** 16s, row pointers. */
ORV_API OrvStatus orvsVarColumn_16s_D2LSfs(const int16_t *const *ppSrc, int32_t height, const int16_t *pMean,
                                           int16_t *pVar, int32_t width, int32_t scaleFactor);
/** @} */

/**
 * @defgroup meanvarcolumn Column means and variances in one pass
 *
 *     m[c] = r * sum over k of x[k][c],   v[c] = (sum over k of x[k][c]^2 - height m[c]^2) q
 *
 * with r = 1 / height formed in single. The 32f members work in single, with q = (float)(1.0 /
 * (double)(height - 1)); the factor of @ref varcolumn is formed in single, and the two differ in the last bit
 * for heights beyond 2^24. The integer members add exactly, but each square is rounded to single and added in
 * single; m = (float)sum * r is not rounded or truncated before it enters v, and q = 1.0f / (float)(height -
 * 1). They write m truncated toward zero, never scaled, and v truncated, shifted by scaleFactor as in @ref
 * varcolumn, and saturated.
 *
 * Arguments:
 * - pSrc or ppSrc: the matrix, height rows of width values.
 * - height: rows, 2 or more.
 * - step: elements from one row of pSrc to the next, width or more.
 * - pMean, pVar: width means and variances, written on success only.
 * - width: columns, 1 or more.
 * - scaleFactor: 2^-scaleFactor scales the variances only.
 *
 * Statuses of the members that take one array: orvStsStrideErr (width above step; tested first),
 * orvStsNullPtrErr, orvStsSizeErr (width below 1 or height below 2), orvStsNoErr; of those that take row
 * pointers: orvStsNullPtrErr, orvStsSizeErr, orvStsNoErr.
 *
 * Source of the method: L. Rabiner and B.-H. Juang, Fundamentals of Speech Recognition, 1993, section 6.6.
 * @{
 */

/** 32f, one array. */
ORV_API OrvStatus orvsMeanVarColumn_32f_D2(const float *pSrc, int32_t height, int32_t step, float *pMean,
                                           float *pVar, int32_t width);
/** 32f, row pointers. */
ORV_API OrvStatus orvsMeanVarColumn_32f_D2L(const float *const *ppSrc, int32_t height, float *pMean,
                                            float *pVar, int32_t width);
/** 16s, one array. */
ORV_API OrvStatus orvsMeanVarColumn_16s_D2Sfs(const int16_t *pSrc, int32_t height, int32_t step,
                                              int16_t *pMean, int16_t *pVar, int32_t width,
                                              int32_t scaleFactor);
/** 16s, row pointers. */
ORV_API OrvStatus orvsMeanVarColumn_16s_D2LSfs(const int16_t *const *ppSrc, int32_t height, int16_t *pMean,
                                               int16_t *pVar, int32_t width, int32_t scaleFactor);
/** 16s to 32s, one array. */
ORV_API OrvStatus orvsMeanVarColumn_16s32s_D2Sfs(const int16_t *pSrc, int32_t height, int32_t step,
                                                 int32_t *pMean, int32_t *pVar, int32_t width,
                                                 int32_t scaleFactor);
/** 16s to 32s, row pointers. */
ORV_API OrvStatus orvsMeanVarColumn_16s32s_D2LSfs(const int16_t *const *ppSrc, int32_t height, int32_t *pMean,
                                                  int32_t *pVar, int32_t width, int32_t scaleFactor);
/** 16s, with 16s means and 32s variances, one array. */
ORV_API OrvStatus orvsMeanVarColumn_16s16s32s_D2(const int16_t *pSrc, int32_t height, int32_t step,
                                                 int16_t *pMean, int32_t *pVar, int32_t width);
/** 16s, with 16s means and 32s variances, row pointers. */
ORV_API OrvStatus orvsMeanVarColumn_16s16s32s_D2L(const int16_t *const *ppSrc, int32_t height, int16_t *pMean,
                                                  int32_t *pVar, int32_t width);
/** @} */

/**
 * @defgroup weightedcolumn Weighted column means and variances
 *
 *     m[c] = sum over k of pWeights[k] x[k][c]
 *     v[c] = sum over k of pWeights[k] x[k][c]^2 - m[c]^2
 *
 * in the type of the data. The weights are taken to add up to 1, such as posteriors over their sum; nothing
 * normalises them. The Var members take m from the caller, the MeanVar members write both.
 *
 * Arguments:
 * - pSrc or ppSrc: the matrix, height rows of width values.
 * - step: elements from one row of pSrc to the next, width or more.
 * - pWeights: height weights.
 * - height: rows, 1 or more.
 * - pMean, pVar: width means and variances; outputs are written on success only.
 * - width: columns, 1 or more.
 *
 * Statuses of the members that take one array: orvStsNullPtrErr, orvStsStrideErr (width above step),
 * orvStsSizeErr (width or height below 1), orvStsNoErr: unlike the unweighted members they test pointers
 * first. Of those that take row pointers: orvStsNullPtrErr, orvStsSizeErr, orvStsNoErr.
 *
 * Source of the method: L. Rabiner and B.-H. Juang, Fundamentals of Speech Recognition, 1993, section 6.6.
 * @{
 */

/** 32f, one array. */
ORV_API OrvStatus orvsWeightedMeanColumn_32f_D2(const float *pSrc, int32_t step, const float *pWeights,
                                                int32_t height, float *pMean, int32_t width);
/** 32f, row pointers. */
ORV_API OrvStatus orvsWeightedMeanColumn_32f_D2L(const float *const *ppSrc, const float *pWeights,
                                                 int32_t height, float *pMean, int32_t width);
/** 32f, one array. */
ORV_API OrvStatus orvsWeightedVarColumn_32f_D2(const float *pSrc, int32_t step, const float *pWeights,
                                               int32_t height, const float *pMean, float *pVar,
                                               int32_t width);
/** 32f, row pointers. */
ORV_API OrvStatus orvsWeightedVarColumn_32f_D2L(const float *const *ppSrc, const float *pWeights,
                                                int32_t height, const float *pMean, float *pVar,
                                                int32_t width);
/** 32f, one array. */
ORV_API OrvStatus orvsWeightedMeanVarColumn_32f_D2(const float *pSrc, int32_t step, const float *pWeights,
                                                   int32_t height, float *pMean, float *pVar, int32_t width);
/** 32f, row pointers. */
ORV_API OrvStatus orvsWeightedMeanVarColumn_32f_D2L(const float *const *ppSrc, const float *pWeights,
                                                    int32_t height, float *pMean, float *pVar, int32_t width);
/** 64f, one array. */
ORV_API OrvStatus orvsWeightedMeanColumn_64f_D2(const double *pSrc, int32_t step, const double *pWeights,
                                                int32_t height, double *pMean, int32_t width);
/** 64f, row pointers. */
ORV_API OrvStatus orvsWeightedMeanColumn_64f_D2L(const double *const *ppSrc, const double *pWeights,
                                                 int32_t height, double *pMean, int32_t width);
/** 64f, one array. */
ORV_API OrvStatus orvsWeightedVarColumn_64f_D2(const double *pSrc, int32_t step, const double *pWeights,
                                               int32_t height, const double *pMean, double *pVar,
                                               int32_t width);
/** 64f, row pointers. */
ORV_API OrvStatus orvsWeightedVarColumn_64f_D2L(const double *const *ppSrc, const double *pWeights,
                                                int32_t height, const double *pMean, double *pVar,
                                                int32_t width);
/** 64f, one array. */
ORV_API OrvStatus orvsWeightedMeanVarColumn_64f_D2(const double *pSrc, int32_t step, const double *pWeights,
                                                   int32_t height, double *pMean, double *pVar,
                                                   int32_t width);
/** 64f, row pointers. */
ORV_API OrvStatus orvsWeightedMeanVarColumn_64f_D2L(const double *const *ppSrc, const double *pWeights,
                                                    int32_t height, double *pMean, double *pVar,
                                                    int32_t width);
/** @} */

/**
 * @defgroup summeanvar Sums of columns and of their squares
 *
 *     pSum[c] = sum over k of x[k][c],   pSumSqr[c] = sum over k of x[k][c]^2
 *
 * for means and variances over data that comes in parts. The in-place members begin at what the outputs hold.
 * The 32f and 16s to 32f members add in single, the latter after each value was converted. The 16s to 32s
 * members add in 64 bits, shift by scaleFactor without rounding, and saturate; in place, what the outputs
 * held is part of the sum that is shifted, so it is scaled again with each call.
 *
 * Arguments:
 * - pSrc: the matrix, height rows of width values.
 * - step: elements from one row to the next, width or more.
 * - height: rows, 1 or more.
 * - pSum, pSumSqr: width sums each, written on success only.
 * - width: columns, 1 or more.
 * - scaleFactor: 2^-scaleFactor scales both sums; the count of the shift is taken modulo 64.
 *
 * Statuses: orvStsStrideErr (width above step; tested first), orvStsNullPtrErr, orvStsSizeErr (width or
 * height below 1), orvStsNoErr.
 *
 * Source of the method: L. Rabiner and B.-H. Juang, Fundamentals of Speech Recognition, 1993, section 6.6.
 * @{
 */

/** 32f. */
ORV_API OrvStatus orvsSumMeanVar_32f(const float *pSrc, int32_t step, int32_t height, float *pSum,
                                     float *pSumSqr, int32_t width);
/** 32f, added to what the outputs hold. */
ORV_API OrvStatus orvsSumMeanVar_32f_I(const float *pSrc, int32_t step, int32_t height, float *pSum,
                                       float *pSumSqr, int32_t width);
/** 16s to 32f. */
ORV_API OrvStatus orvsSumMeanVar_16s32f(const int16_t *pSrc, int32_t step, int32_t height, float *pSum,
                                        float *pSumSqr, int32_t width);
/** 16s to 32f, added to what the outputs hold. */
ORV_API OrvStatus orvsSumMeanVar_16s32f_I(const int16_t *pSrc, int32_t step, int32_t height, float *pSum,
                                          float *pSumSqr, int32_t width);
/** 16s to 32s. */
ORV_API OrvStatus orvsSumMeanVar_16s32s_Sfs(const int16_t *pSrc, int32_t step, int32_t height, int32_t *pSum,
                                            int32_t *pSumSqr, int32_t width, int32_t scaleFactor);
/** 16s to 32s, added to what the outputs hold. */
ORV_API OrvStatus orvsSumMeanVar_16s32s_ISfs(const int16_t *pSrc, int32_t step, int32_t height, int32_t *pSum,
                                             int32_t *pSumSqr, int32_t width, int32_t scaleFactor);
/** @} */

/**
 * @defgroup newvar Variances from sums
 *
 *     pDst[i] = (pSqr[i] - pMean[i]^2 c1) c2              i = 0 .. len - 1
 *
 * With sums S and Q of n values, c1 = 1 / n and c2 = 1 / (n - 1) give the variance Q / (n - 1) - S^2 / (n (n
 * - 1)). The 32f members form the square in single and all else in double, and round once. The 32s members
 * compute in single, multiply by 2^-scaleFactor, saturate at 2147483647 and -2147483648 and truncate toward
 * zero.
 *
 * Arguments:
 * - pMean: len sums or means.
 * - pSqr: len sums or means of squares; the in-place members write where these stand.
 * - pDst: len results.
 * - len: values, 1 or more.
 * - scaleFactor: any value.
 * - c1, c2: factors.
 *
 * Statuses: orvStsNullPtrErr, orvStsSizeErr (len below 1), orvStsNoErr.
 *
 * Source of the method: L. Rabiner and B.-H. Juang, Fundamentals of Speech Recognition, 1993, section 6.6.
 * @{
 */

/** 32f. */
ORV_API OrvStatus orvsNewVar_32f(const float *pMean, const float *pSqr, float *pDst, int32_t len, float c1,
                                 float c2);
/** 32f in place. */
ORV_API OrvStatus orvsNewVar_32f_I(const float *pMean, float *pSqrDst, int32_t len, float c1, float c2);
/** 32s. */
ORV_API OrvStatus orvsNewVar_32s_Sfs(const int32_t *pMean, const int32_t *pSqr, int32_t *pDst, int32_t len,
                                     int32_t scaleFactor, float c1, float c2);
/** 32s in place. */
ORV_API OrvStatus orvsNewVar_32s_ISfs(const int32_t *pMean, int32_t *pSqrDst, int32_t len,
                                      int32_t scaleFactor, float c1, float c2);
/** @} */

/**
 * @defgroup normalizecolumn Columns brought to a common mean and scale
 *
 *     x[k][c] = (x[k][c] - pMean[c]) pScale[c]
 *
 * in place, for all height rows and width columns. The 32f members work in single. The 16s members form the
 * product in 32 bits, which always hold it, and shift it there: to the right, downward, by a positive
 * scaleFactor, to the left by a negative one; what leaves 32 bits on the left is lost, and the count is taken
 * modulo 32. The result is then saturated to 16 bits.
 *
 * Arguments:
 * - pSrcDst or ppSrcDst: the matrix, height rows of width values.
 * - step: elements from one row of pSrcDst to the next, width or more; what lies between rows is not touched.
 * - height: rows, 1 or more.
 * - pMean, pScale: width means and scales (inverse standard deviations, say).
 * - width: columns, 1 or more.
 *
 * Statuses: orvStsNullPtrErr, orvStsSizeErr (width or height below 1), orvStsStrideErr (width above step;
 * members that take one array), orvStsNoErr.
 *
 * Source of the method: B. S. Atal, Effectiveness of linear prediction characteristics of the speech wave for
 * automatic speaker identification and verification, 1974; O. Viikki and K. Laurila, Cepstral domain
 * segmental feature vector normalization for noise robust speech recognition, 1998.
 * @{
 */

/** 32f, one array. */
ORV_API OrvStatus orvsNormalizeColumn_32f_D2(float *pSrcDst, int32_t step, int32_t height, const float *pMean,
                                             const float *pScale, int32_t width);
/** 32f, row pointers. */
ORV_API OrvStatus orvsNormalizeColumn_32f_D2L(float *const *ppSrcDst, int32_t height, const float *pMean,
                                              const float *pScale, int32_t width);
/** 16s, one array. */
ORV_API OrvStatus orvsNormalizeColumn_16s_D2Sfs(int16_t *pSrcDst, int32_t step, int32_t height,
                                                const int16_t *pMean, const int16_t *pScale, int32_t width,
                                                int32_t scaleFactor);
/** 16s, row pointers. */
ORV_API OrvStatus orvsNormalizeColumn_16s_D2LSfs(int16_t *const *ppSrcDst, int32_t height,
                                                 const int16_t *pMean, const int16_t *pScale, int32_t width,
                                                 int32_t scaleFactor);
/** @} */

/**
 * @defgroup acccovariance Accumulation of a covariance matrix
 *
 *     d[k][c] = x[k][c] - pMean[c]
 *     D[i][j] = (D[i][j] + sum over k of d[k][i] d[k][j]) factor,   D[j][i] = D[i][j]          j <= i
 *
 * in double, rows added from row 0 downward to what D held. In the 32f member the differences are formed in
 * single and widened. factor scales what the lower triangle held before as well; the upper triangle is never
 * read, and becomes its mirror image. So calls with factor 1 accumulate, and the last call of a pass may
 * carry 1 / n.
 *
 * Arguments:
 * - pSrc or ppSrc: the matrix of features, height rows of width values.
 * - height: rows, 1 or more.
 * - srcStep, dstStep: elements from one row to the next, width or more.
 * - pMean: width means.
 * - pDst or ppDst: width rows of width values, read and written.
 * - width: columns, 1 or more.
 * - factor: any value.
 *
 * Up to width 512 the working memory lies on the stack, beyond it is allocated.
 *
 * Statuses: orvStsNullPtrErr, orvStsSizeErr (width or height below 1), orvStsStrideErr (width above either
 * step; members that take one array), orvStsMemAllocErr, orvStsNoErr.
 *
 * Source of the method: K. Fukunaga, Introduction to Statistical Pattern Recognition, 1990, section 2.1.
 * @{
 */

/** 32f features, 64f matrix, one array. */
ORV_API OrvStatus orvsAccCovarianceMatrix_32f64f_D2(const float *pSrc, int32_t height, int32_t srcStep,
                                                    const float *pMean, double *pDst, int32_t dstStep,
                                                    int32_t width, double factor);
/** 32f features, 64f matrix, row pointers. */
ORV_API OrvStatus orvsAccCovarianceMatrix_32f64f_D2L(const float *const *ppSrc, int32_t height,
                                                     const float *pMean, double *const *ppDst, int32_t width,
                                                     double factor);
/** 16s features, 64f matrix, one array. */
ORV_API OrvStatus orvsAccCovarianceMatrix_16s64f_D2(const int16_t *pSrc, int32_t height, int32_t srcStep,
                                                    const int16_t *pMean, double *pDst, int32_t dstStep,
                                                    int32_t width, double factor);
/** 16s features, 64f matrix, row pointers. */
ORV_API OrvStatus orvsAccCovarianceMatrix_16s64f_D2L(const int16_t *const *ppSrc, int32_t height,
                                                     const int16_t *pMean, double *const *ppDst,
                                                     int32_t width, double factor);
/** @} */

#ifdef __cplusplus
}
#endif
#endif
