/**
 * @file vq.h
 * Template matching: dynamic time warping.
 */
#ifndef ORVSR_VQ_H
#define ORVSR_VQ_H

#include "orvsr/types.h"

#ifdef __cplusplus
extern "C" {
#endif

/**
 * @defgroup dtw Distance of two sequences by dynamic time warping
 *
 *     D(0, i) = d(0, i)                                                    i = 0 .. delta
 *     D(j, i) = d(j, i) + min(D(j-1, i), D(j-1, i-1), D(j-1, i-2))         j = 1 .. L - 1
 *     *pDist  = the smallest D of the last column reached
 *
 * d(j, i) being the Euclidean distance of frame j of the longer sequence, of L frames, and frame i of the shorter
 * one, of S frames (the first argument is the longer one when both have the same length). A path may begin at any of the
 * first delta + 1 frames of the shorter sequence and need not end at its last. It stays within a parallelogram of
 * slopes 1/2 and 2 widened by delta, and at both ends of a column within beta of the column's smallest cost. All
 * three moves have the same weight, and the cost is not divided by the length.
 *
 * Differences and squares are formed in single precision, their sum and its root in double, rounded once.
 *
 * Arguments:
 * - ppSrc1, ppSrc2: height1 and height2 pointers to rows of width values, not tested for null; or pSrc1, pSrc2: the
 *   rows in one array each, a row every step elements (step >= width).
 * - height1, height2, width: 1 or more.
 * - pDist: the distance, written. 3.4028235e38 where no path is left, and where the longer sequence has a single
 *   frame. If the band runs empty, the smallest cost of the last column that was not empty.
 * - delta: half width of the band in frames; a value that is negative or at least S opens the whole of it.
 * - beta: width of the beam in units of distance, taken as 0 if negative; of the integer forms in units of the data.
 * - scaleFactor: of the integer forms; the distance times 2^-scaleFactor, rounded to nearest (ties to even) and saturated.
 *
 * Statuses: orvStsNullPtrErr (a sequence or pDist null), orvStsSizeErr (a height or width below 1, step below
 * width), orvStsMemAllocErr, orvStsNoErr. Working memory is 5 ((S + 8) / 4 * 4) + 2 ((L + 3) / 4 * 4) single-precision
 * elements, on the stack up to 512 of them. The orvsDTW_L2_32f_D2 form takes a table of pointers on the stack up to
 * 2048 bytes. It and the integer forms report success when this inner working memory cannot be had: the former leaves
 * pDist as it was, the latter store the distance of no path.
 *
 * Source of the method: H. Sakoe and S. Chiba, Dynamic programming algorithm optimization for spoken word
 * recognition, IEEE Trans. ASSP 26 (1978); F. Itakura, Minimum prediction residual principle applied to speech
 * recognition, IEEE Trans. ASSP 23 (1975), for the slopes of the band.
 * @{
 */

/** Distance of two sequences of 32f frames in row pointers. */
ORV_API OrvStatus orvsDTW_L2_32f_D2L(const float *const *ppSrc1, int32_t height1, const float *const *ppSrc2,
                                     int32_t height2, int32_t width, float *pDist, int32_t delta, float beta);

/** Distance of two sequences of 32f frames in one array each. */
ORV_API OrvStatus orvsDTW_L2_32f_D2(const float *pSrc1, int32_t height1, const float *pSrc2, int32_t height2,
                                    int32_t width, int32_t step, float *pDist, int32_t delta, float beta);

/** Distance of two sequences of 8u frames in row pointers. */
ORV_API OrvStatus orvsDTW_L2_8u32s_D2LSfs(const uint8_t *const *ppSrc1, int32_t height1,
                                          const uint8_t *const *ppSrc2, int32_t height2, int32_t width,
                                          int32_t *pDist, int32_t delta, int32_t beta, int32_t scaleFactor);

/** Distance of two sequences of 8u frames in one array each. */
ORV_API OrvStatus orvsDTW_L2_8u32s_D2Sfs(const uint8_t *pSrc1, int32_t height1, const uint8_t *pSrc2, int32_t height2,
                                         int32_t width, int32_t step, int32_t *pDist, int32_t delta, int32_t beta,
                                         int32_t scaleFactor);

/** Distance of two sequences of 16s frames in row pointers. */
ORV_API OrvStatus orvsDTW_L2Low_16s32s_D2LSfs(const int16_t *const *ppSrc1, int32_t height1,
                                              const int16_t *const *ppSrc2, int32_t height2, int32_t width,
                                              int32_t *pDist, int32_t delta, int32_t beta, int32_t scaleFactor);

/** Distance of two sequences of 16s frames in one array each. */
ORV_API OrvStatus orvsDTW_L2Low_16s32s_D2Sfs(const int16_t *pSrc1, int32_t height1, const int16_t *pSrc2,
                                             int32_t height2, int32_t width, int32_t step, int32_t *pDist,
                                             int32_t delta, int32_t beta, int32_t scaleFactor);

/** @} */

/**
 * @defgroup formvector Vectors from indices of code vectors
 *
 *     pDst = row pInds[0] of ppTables[0], row pInds[1] of ppTables[1], ...
 *
 * a vector put together from streams, each of which is a row of a table of its own: what a front end receives
 * that gets indices instead of features.
 *
 * Arguments:
 * - pInds: one index for each stream.
 * - ppTables: one table for each stream; its entries are not tested for null.
 * - pSizes: rows of each table.
 * - pWidths, pSteps: values of a row, and values from one row to the next, of each table. The 2i forms have
 * tables of pairs and the 4i forms tables of fours, without gaps, and no such arguments.
 * - nStreams: number of streams, 1 or more.
 * - pDst: the vector, written: as many values as all widths together, or len / 2 * 2, or len / 4 * 4.
 * - len: values of the vector, 1 or more. It is divided by 2 or 4, truncating, for the number of streams; 1
 * value of the 2i forms, or fewer than 4 of the 4i forms, are no stream, and nothing is read or written.
 *
 * Statuses: orvStsNullPtrErr (any pointer null), orvStsSizeErr (nStreams or len below 1; a width or step
 * below 1; an index below 0, or not below its size), orvStsNoErr. All streams are tested before anything is
 * written.
 *
 * Source of the method: A. Gersho and R. M. Gray, Vector Quantization and Signal Compression, 1992, chapter
 * 12 (product codes).
 * @{
 */

/** 16s vectors from 16s indices. */
ORV_API OrvStatus orvsFormVector_16s16s(const int16_t *pInds, const int16_t *const *ppTables,
                                        const int32_t *pSizes, const int32_t *pWidths, const int32_t *pSteps,
                                        int32_t nStreams, int16_t *pDst);

/** 16s vectors from 8u indices. */
ORV_API OrvStatus orvsFormVector_8u16s(const uint8_t *pInds, const int16_t *const *ppTables,
                                       const int32_t *pSizes, const int32_t *pWidths, const int32_t *pSteps,
                                       int32_t nStreams, int16_t *pDst);

/** 32f vectors from 16s indices. */
ORV_API OrvStatus orvsFormVector_16s32f(const int16_t *pInds, const float *const *ppTables,
                                        const int32_t *pSizes, const int32_t *pWidths, const int32_t *pSteps,
                                        int32_t nStreams, float *pDst);

/** 32f vectors from 8u indices. */
ORV_API OrvStatus orvsFormVector_8u32f(const uint8_t *pInds, const float *const *ppTables,
                                       const int32_t *pSizes, const int32_t *pWidths, const int32_t *pSteps,
                                       int32_t nStreams, float *pDst);

/** Pairs of 16s values from 16s indices. */
ORV_API OrvStatus orvsFormVector_2i_16s16s(const int16_t *pInds, const int16_t *const *ppTables,
                                           const int32_t *pSizes, int16_t *pDst, int32_t len);

/** Pairs of 16s values from 8u indices. */
ORV_API OrvStatus orvsFormVector_2i_8u16s(const uint8_t *pInds, const int16_t *const *ppTables,
                                          const int32_t *pSizes, int16_t *pDst, int32_t len);

/** Pairs of 32f values from 16s indices. */
ORV_API OrvStatus orvsFormVector_2i_16s32f(const int16_t *pInds, const float *const *ppTables,
                                           const int32_t *pSizes, float *pDst, int32_t len);

/** Pairs of 32f values from 8u indices. */
ORV_API OrvStatus orvsFormVector_2i_8u32f(const uint8_t *pInds, const float *const *ppTables,
                                          const int32_t *pSizes, float *pDst, int32_t len);

/** Fours of 16s values from 16s indices. */
ORV_API OrvStatus orvsFormVector_4i_16s16s(const int16_t *pInds, const int16_t *const *ppTables,
                                           const int32_t *pSizes, int16_t *pDst, int32_t len);

/** Fours of 16s values from 8u indices. */
ORV_API OrvStatus orvsFormVector_4i_8u16s(const uint8_t *pInds, const int16_t *const *ppTables,
                                          const int32_t *pSizes, int16_t *pDst, int32_t len);

/** Fours of 32f values from 16s indices. */
ORV_API OrvStatus orvsFormVector_4i_16s32f(const int16_t *pInds, const float *const *ppTables,
                                           const int32_t *pSizes, float *pDst, int32_t len);

/** Fours of 32f values from 8u indices. */
ORV_API OrvStatus orvsFormVector_4i_8u32f(const uint8_t *pInds, const float *const *ppTables,
                                          const int32_t *pSizes, float *pDst, int32_t len);

/** @} */

#ifdef __cplusplus
}
#endif
#endif
