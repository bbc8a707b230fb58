/**
 * @file core.h
 * Version query and arithmetic on values kept as natural logarithms.
 */
#ifndef ORVSR_CORE_H
#define ORVSR_CORE_H

#include "orvsr/types.h"

#ifdef __cplusplus
extern "C" {
#endif

/** What orvsrGetLibVersion() returns. */
typedef struct OrvLibraryVersion {
  int32_t major;         /**< 6 */
  int32_t minor;         /**< 1 */
  int32_t majorBuild;    /**< 137 */
  int32_t build;         /**< 818 */
  char targetCpu[4];     /**< "mx", zero padded */
  const char *name;      /**< "liborvsrmx.so.6.1" */
  const char *version;   /**< "6.1 build 137.56" */
  const char *buildDate; /**< "Mar 17 2010" */
} OrvLibraryVersion;

/**
 * Tells which library this is.
 *
 * @return the library's one constant record; it is neither written nor released. The call cannot fail.
 */
ORV_API const OrvLibraryVersion *orvsrGetLibVersion(void);

/**
 * @defgroup logadd Log-addition
 *
 *     pSrcDst[i] = log(exp(pSrc[i]) + exp(pSrcDst[i]))        i = 0 .. len - 1
 *
 * Computed as m + log(1 + exp(d)), m being the larger value and d <= 0 the difference of the two. The
 * correction log(1 + exp(d)) comes from polynomials in three segments, accurate to about 5e-9 (32f and integer
 * forms) or to about 1e-14 (64f), or, with orvAlgHintFast, from a table with quadratic interpolation, in
 * single precision. Where d lies below the drop threshold, the smaller term is left out and the result is m;
 * there, and only there, the 32f form raises a result below -4.5e6 to -4.5e6, and the 64f form sets a result
 * below -9e9 to -1e10. Two infinities of the same sign give NaN.
 *
 * Common arguments:
 * - pSrc, pSrcDst: len log values each; pSrcDst is overwritten.
 * - len: number of elements, 1 or more.
 * - hint: orvAlgHintNone, orvAlgHintFast or orvAlgHintAccurate. Any other hint leaves pSrcDst as it is and is
 *   no error.
 *
 * Statuses of all four, in the order of the checks: orvStsSizeErr (len below 1), orvStsNullPtrErr (pSrc or
 * pSrcDst null), orvStsNoErr.
 *
 * Source of the method: the Jacobian logarithm of sequential decoding; see S. Young et al., The HTK Book, 2006
 * (LAdd, with the same drop threshold for 64f), and P. Robertson, E. Villebrun and P. Hoeher, A comparison of
 * optimal and sub-optimal MAP decoding algorithms, ICC 1995, section 3.
 * @{
 */

/**
 * Log-addition of 32f values. Drop threshold -15.3195879547406 = -ln(4.5e6), floor -4.5e6. The fast path drops
 * from -15.319588F on, that value included.
 * orvStsSizeErr, orvStsNullPtrErr, orvStsNoErr.
 */
ORV_API OrvStatus orvsLogAdd_32f(const float *pSrc, float *pSrcDst, int32_t len, int32_t hint);

/**
 * Log-addition of 64f values. Drop threshold -23.0258509299405 = -ln(1e10); a dropped result below -9e9
 * becomes -1e10. Every known hint takes the accurate path.
 * orvStsSizeErr, orvStsNullPtrErr, orvStsNoErr.
 */
ORV_API OrvStatus orvsLogAdd_64f(const double *pSrc, double *pSrcDst, int32_t len, int32_t hint);

/**
 * Log-addition of 16-bit fixed-point values: an integer v stands for the log value v * 2^-scaleFactor. The
 * work is done in 64f; the result is divided by the same power, saturated to 16 bits and truncated towards
 * zero. Drop threshold -15.3195879547406, no floor.
 * orvStsSizeErr, orvStsNullPtrErr, orvStsNoErr.
 */
ORV_API OrvStatus orvsLogAdd_16s_Sfs(const int16_t *pSrc, int16_t *pSrcDst, int32_t len, int32_t scaleFactor,
                                     int32_t hint);

/**
 * Log-addition of 32-bit fixed-point values; as orvsLogAdd_16s_Sfs(), saturated to 32 bits.
 * orvStsSizeErr, orvStsNullPtrErr, orvStsNoErr.
 */
ORV_API OrvStatus orvsLogAdd_32s_Sfs(const int32_t *pSrc, int32_t *pSrcDst, int32_t len, int32_t scaleFactor,
                                     int32_t hint);
/** @} */

/**
 * @defgroup logsub Log-subtraction
 *
 *     pSrcDst[i] = log(exp(pSrc[i]) - exp(pSrcDst[i]))        i = 0 .. len - 1
 *
 * Every element of pSrc must be greater than its partner in pSrcDst; a first pass tests this for the whole
 * vectors before anything is written. With d = pSrcDst[i] - pSrc[i] < 0 the result is pSrc[i] + log(1 - exp(d)).
 * A d below the drop threshold leaves pSrc[i] (floored as in log-addition), and a 1 - exp(d) too small to take
 * the logarithm of gives the log-zero floor.
 *
 * Statuses of all four, in the order of the checks: orvStsSizeErr (len below 1), orvStsNullPtrErr (pSrc or
 * pSrcDst null), orvStsRangeErr (pSrcDst[i] - pSrc[i] >= 0 for some i; nothing written), orvStsNoErr.
 * @{
 */

/**
 * Log-subtraction of 32f values. Drop threshold -15.3195879547406, floor -4.5e6, least 1 - exp(d) 1.0057e-37.
 * orvStsSizeErr, orvStsNullPtrErr, orvStsRangeErr, orvStsNoErr.
 */
ORV_API OrvStatus orvsLogSub_32f(const float *pSrc, float *pSrcDst, int32_t len);

/**
 * Log-subtraction of 64f values. Drop threshold -23.0258509299405, floor -1e10 (below -9e9), least
 * 1 - exp(d) 2.45e-308.
 * orvStsSizeErr, orvStsNullPtrErr, orvStsRangeErr, orvStsNoErr.
 */
ORV_API OrvStatus orvsLogSub_64f(const double *pSrc, double *pSrcDst, int32_t len);

/**
 * Log-subtraction of 16-bit values. The scale acts on the difference only,
 * d = (pSrcDst[i] - pSrc[i]) * 2^-scaleFactor; the term log(1 - exp(d)) is added to the stored integer as it
 * is, not divided by the scale. The sum is truncated to 32 bits, of which the low 16 are stored without
 * saturation: the floor -4.5e6 is stored as 21984.
 * orvStsSizeErr, orvStsNullPtrErr, orvStsRangeErr, orvStsNoErr.
 */
ORV_API OrvStatus orvsLogSub_16s_Sfs(const int16_t *pSrc, int16_t *pSrcDst, int32_t len, int32_t scaleFactor);

/**
 * Log-subtraction of 32-bit values; as orvsLogSub_16s_Sfs(), with the 32-bit result stored. The first pass
 * tests a difference that wraps in 32 bits.
 * orvStsSizeErr, orvStsNullPtrErr, orvStsRangeErr, orvStsNoErr.
 */
ORV_API OrvStatus orvsLogSub_32s_Sfs(const int32_t *pSrc, int32_t *pSrcDst, int32_t len, int32_t scaleFactor);
/** @} */

/**
 * @defgroup logsum Log-sum of a vector
 *
 *     *pResult = log(sum over i of exp(pSrc[i]))              i = 0 .. len - 1
 *
 * The elements are folded in strictly from first to last by accurate log-addition. A vector of length 1 is
 * copied: no floor, no scaling, no saturation. The 32f and 64f forms write *pResult after every step; it is
 * never read.
 *
 * Statuses of all four, in the order of the checks: orvStsSizeErr (len below 1), orvStsNullPtrErr (pSrc or
 * pResult null), orvStsNoErr.
 * @{
 */

/**
 * Log-sum of 32f values; the running value is rounded to 32f at every step. Floor -4.5e6 where a term is
 * dropped.
 * orvStsSizeErr, orvStsNullPtrErr, orvStsNoErr.
 */
ORV_API OrvStatus orvsLogSum_32f(const float *pSrc, float *pResult, int32_t len);

/**
 * Log-sum of 64f values. A dropped result below -9e9 becomes -1e10.
 * orvStsSizeErr, orvStsNullPtrErr, orvStsNoErr.
 */
ORV_API OrvStatus orvsLogSum_64f(const double *pSrc, double *pResult, int32_t len);

/**
 * Log-sum of 16-bit fixed-point values, v standing for v * 2^-scaleFactor. The running value is rounded to 32f
 * at every step, and floored at -4.5e6 where a term is dropped. The result is divided by the scale, saturated
 * to 16 bits and truncated towards zero.
 * orvStsSizeErr, orvStsNullPtrErr, orvStsNoErr.
 */
ORV_API OrvStatus orvsLogSum_16s_Sfs(const int16_t *pSrc, int16_t *pResult, int32_t len, int32_t scaleFactor);

/**
 * Log-sum of 32-bit fixed-point values; as orvsLogSum_16s_Sfs(), saturated to 32 bits. The running value
 * carries 24 bits of precision in this form too.
 * orvStsSizeErr, orvStsNullPtrErr, orvStsNoErr.
 */
ORV_API OrvStatus orvsLogSum_32s_Sfs(const int32_t *pSrc, int32_t *pResult, int32_t len, int32_t scaleFactor);
/** @} */

#ifdef __cplusplus
}
#endif
#endif
