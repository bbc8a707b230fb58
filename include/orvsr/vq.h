/**
 * @file vq.h
 * Vector quantisation and template matching.
 */
#ifndef ORVSR_VQ_H
#define ORVSR_VQ_H

#include "orvsr/types.h"

#ifdef __cplusplus
extern "C" {
#endif

/* ---------------------------------------------------------------- codebooks */

/** A codebook: code vectors with a search structure, of 32f or of 16s elements. */
typedef struct CdbkState CdbkState;

/** How a codebook is built. */
enum {
  CDBK_DIRECT = 1,       /**< every input row is a code vector, in input order */
  CDBK_SPLIT_SPREAD = 2, /**< a tree grown by splitting the cluster of largest spread */
  CDBK_SPLIT_COUNT = 3   /**< a tree grown by splitting the most populous cluster whose spread is above zero */
};

/**
 * @defgroup codebook Building a codebook
 *
 * The distance of two vectors is the weighted squared one,
 *
 *     d(x, y) = sum over k of (x[k] - y[k])^2 w[k]
 *
 * in single precision for both element types. Comparisons of distances are tolerant by a factor of 1.000001,
 * so that the same data always give the same codebook.
 *
 * CDBK_DIRECT copies all height rows. If 11 rows or more have one or two elements, a field of cells over
 * their range is built where it makes searches cheaper. The tree methods begin with one cluster of all rows.
 * Up to cdbkSize - 1 times they choose a cluster by spread (twice the largest distance of a member to the
 * centroid) or by count, move the half of its members that is nearest to its centroid into a new cluster, and
 * reassign all rows to their nearest centroids in at most 20 rounds; no cluster ever empties. Two new
 * centroids that coincide (32f: a distance of at most 1e-6; 16s: of 0) are first told apart by pushing one of
 * them towards rows of the cluster. Code vectors are the centroids, means of their rows, which the 16s form
 * rounds to nearest (ties to even). Every leaf knows its nearest neighbours.
 *
 * The 32f form takes distances to the centroid of all rows for 0 if they are at most the larger of 1e-6 times
 * the largest and -1e-6 times the smallest element of it: rows that differ by rounding only are not split.
 *
 * Arguments:
 * - ppCdbk: receives the object, on success and with a warning only. Not tested for null.
 * - pSrc: height rows of width elements, step elements apart.
 * - pWeights: width weights, none negative; copied. Without them all weights are one.
 * - width, step, height: 1 or more, width <= step.
 * - cdbkSize: code vectors asked for, 1 to 16383 and at most height.
 * - method: CDBK_DIRECT, CDBK_SPLIT_SPREAD or CDBK_SPLIT_COUNT.
 *
 * Statuses of InitAlloc: of the form without weights first orvStsSizeErr (width below 1) and
 * orvStsMemAllocErr (its weights); then orvStsNullPtrErr (pSrc or pWeights null), orvStsSizeErr (a size out
 * of its range), orvStsBadArgErr (a negative weight), orvStsMemAllocErr, orvStsCdbkMethodErr (a method that
 * is not known; tested after the object was allocated), and while growing orvStsBadArgErr (the halves of a
 * cluster cannot be told apart: 1000 attempts to move their centroids apart were in vain) and
 * orvStsMemAllocErr; orvStsCdbkShortWrn (the codebook does not have cdbkSize rows: CDBK_DIRECT holds height
 * of them, and a tree stops growing where no cluster has a spread); orvStsNoErr. Nothing is held after an
 * error.
 *
 * A codebook is not changed once it is built, except for scratch memory that the exhaustive searches write.
 *
 * Source of the method: Y. Linde, A. Buzo, R. M. Gray, An algorithm for vector quantizer design, IEEE Trans.
 * COM 28 (1980); A. Gersho, R. M. Gray, Vector Quantization and Signal Compression (1992), section 11.4 and
 * chapter 12.
 * @{
 */

/** Builds a codebook of 32f vectors, all weights one. */
ORV_API OrvStatus orvsCdbkInitAlloc_L2_32f(CdbkState **ppCdbk, const float *pSrc, int32_t width, int32_t step,
                                           int32_t height, int32_t cdbkSize, int32_t method);

/** Builds a codebook of 16s vectors, all weights one. */
ORV_API OrvStatus orvsCdbkInitAlloc_L2_16s(CdbkState **ppCdbk, const int16_t *pSrc, int32_t width,
                                           int32_t step, int32_t height, int32_t cdbkSize, int32_t method);

/** Builds a codebook of 32f vectors with weights. */
ORV_API OrvStatus orvsCdbkInitAlloc_WgtL2_32f(CdbkState **ppCdbk, const float *pSrc, const float *pWeights,
                                              int32_t width, int32_t step, int32_t height, int32_t cdbkSize,
                                              int32_t method);

/** Builds a codebook of 16s vectors with weights. */
ORV_API OrvStatus orvsCdbkInitAlloc_WgtL2_16s(CdbkState **ppCdbk, const int16_t *pSrc,
                                              const int16_t *pWeights, int32_t width, int32_t step,
                                              int32_t height, int32_t cdbkSize, int32_t method);

/**
 * Builds a codebook of 32f vectors in caller memory: every row is a code vector, all weights are one, and
 * there is no field.
 *
 * @param pCdbk    memory of the size that orvsCdbkGetSize_32f() reports, at any address
 * @param cdbkSize equal to height
 * @param method   stored as it is; anything but the two tree methods
 *
 * orvStsCdbkMethodErr (a tree method), orvStsNullPtrErr (pCdbk or pSrc null), orvStsSizeErr (width, step,
 * height or cdbkSize below 1, width above step, cdbkSize above 16383 or not equal to height, or a size that
 * orvsCdbkGetSize_32f() refuses), orvStsNoErr.
 */
ORV_API OrvStatus orvsCdbkInit_L2_32f(CdbkState *pCdbk, const float *pSrc, int32_t width, int32_t step,
                                      int32_t height, int32_t cdbkSize, int32_t method);

/** The same for 16s vectors and orvsCdbkGetSize_16s(). */
ORV_API OrvStatus orvsCdbkInit_L2_16s(CdbkState *pCdbk, const int16_t *pSrc, int32_t width, int32_t step,
                                      int32_t height, int32_t cdbkSize, int32_t method);

/**
 * Bytes of memory for orvsCdbkInit_L2_32f():
 *
 *     (width + cdbkSize + s cdbkSize) 4 + 176
 *
 * with s the step rounded up to a multiple of 8, or the width if that is 1, 2 or 4. Objects that the library
 * allocates itself have strides of their own.
 *
 * orvStsCdbkMethodErr (a tree method), orvStsNullPtrErr (pSize null), orvStsSizeErr (as
 * orvsCdbkInit_L2_32f(), or more bytes than pSize can hold), orvStsNoErr.
 */
ORV_API OrvStatus orvsCdbkGetSize_32f(int32_t width, int32_t step, int32_t height, int32_t cdbkSize,
                                      int32_t method, int32_t *pSize);

/** Bytes of memory for orvsCdbkInit_L2_16s(): cdbkSize 4 + 208 + (width + s cdbkSize) 2. Statuses as above.
 */
ORV_API OrvStatus orvsCdbkGetSize_16s(int32_t width, int32_t step, int32_t height, int32_t cdbkSize,
                                      int32_t method, int32_t *pSize);

/**
 * Releases a codebook that an InitAlloc function of the same type built.
 * orvStsNullPtrErr (pCdbk or the rows in it null), orvStsCdbkKindErr (the method in it is none of the three:
 * nothing is released), orvStsNoErr.
 */
ORV_API OrvStatus orvsCdbkFree_32f(CdbkState *pCdbk);

/** The same for 16s vectors. */
ORV_API OrvStatus orvsCdbkFree_16s(CdbkState *pCdbk);

/** The number of code vectors. orvStsNullPtrErr, orvStsNoErr. */
ORV_API OrvStatus orvsGetCdbkSize_32f(const CdbkState *pCdbk, int32_t *pSize);

/** The number of code vectors. orvStsNullPtrErr, orvStsNoErr. */
ORV_API OrvStatus orvsGetCdbkSize_16s(const CdbkState *pCdbk, int32_t *pSize);

/**
 * Copies the code vectors in the order of their indices to rows of pDst, step elements apart.
 * orvStsNullPtrErr, orvStsSizeErr (step below 1 or below the width of the codebook), orvStsNoErr.
 */
ORV_API OrvStatus orvsGetCodebook_32f(const CdbkState *pCdbk, float *pDst, int32_t step);

/** The same for 16s vectors. */
ORV_API OrvStatus orvsGetCodebook_16s(const CdbkState *pCdbk, int16_t *pDst, int32_t step);

/** @} */

/* ---------------------------------------------------------------- template matching */

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
 * @defgroup vq Searching a codebook
 *
 * The code vector of a vector x is found by the structure that the codebook was built with.
 * - CDBK_DIRECT scans all rows, or those in the cell of its field that x falls into (a point outside falls
 * into the border; a cell without rows gives the index -1). A row takes over from the best before it if best
 * > distance * 1.000001: of rows that are equal but for a relative 1e-6 the first one wins.
 * - A tree is descended two levels at a time, to the side of the better pair of grandchildren, then left for
 * the leaf's neighbours as long as one is better by more than a relative 1e-4. The answer is good, and not
 * always the best. With weights, the scores compared are those of orvsLogGauss_32f_D2L() and
 * orvsLogGauss_16s32s_D2LSfs() with the weights as inverse variances and, for integers, the scale factor
 * trunc(log2 width) + 1.
 *
 * A distance reported is the Euclidean one, the root of the weighted squared distance to the code vector
 * found; for an index of -1, the root of 3.4028235e38. The integer forms round it, times 2^-scaleFactor, to
 * nearest (ties to even) and saturate it.
 *
 * An object in caller memory whose method is none of the three is not searched: nothing is written, the
 * status is orvStsNoErr, and the distances of the integer forms are converted as they lie.
 *
 * Arguments:
 * - pSrc, step: height vectors as wide as the codebook, step elements apart.
 * - pIndx: height indices, written.
 * - pDist: height distances, written.
 * - scaleFactor: of the integer forms, as above; any value.
 * - pCdbk: a codebook of the type of pSrc. It is only read: threads may search it at once.
 *
 * Statuses: orvStsNullPtrErr (any pointer null), orvStsSizeErr (step or height below 1, step below the width
 * of the codebook), orvStsErr (an inner call failed), orvStsNoErr.
 *
 * Source of the method: A. Gersho and R. M. Gray, Vector Quantization and Signal Compression, 1992, chapters
 * 10 and 12.
 * @{
 */

/** Code vectors of 32f vectors. */
ORV_API OrvStatus orvsVQ_32f(const float *pSrc, int32_t step, int32_t *pIndx, int32_t height,
                             const CdbkState *pCdbk);

/** Code vectors of 16s vectors. */
ORV_API OrvStatus orvsVQ_16s(const int16_t *pSrc, int32_t step, int32_t *pIndx, int32_t height,
                             const CdbkState *pCdbk);

/** Code vectors of 32f vectors, and the distances to them. */
ORV_API OrvStatus orvsVQDist_32f(const float *pSrc, int32_t step, int32_t *pIndx, float *pDist,
                                 int32_t height, const CdbkState *pCdbk);

/** Code vectors of 16s vectors, and the scaled distances to them. */
ORV_API OrvStatus orvsVQDist_16s32s_Sfs(const int16_t *pSrc, int32_t step, int32_t *pIndx, int32_t *pDist,
                                        int32_t height, const CdbkState *pCdbk, int32_t scaleFactor);

/** @} */

/**
 * @defgroup vqsort The nearest code vectors of one vector
 *
 * The count nearest of all rows, nearest first and of equal ones the lower index first, by an exhaustive scan
 * whatever the codebook was built with.
 *
 * Arguments:
 * - pSrc: a vector as wide as the codebook.
 * - pIndx, pDist, scaleFactor: count indices and distances as of @ref vq, written.
 * - pCdbk: a codebook of the type of pSrc. Its scratch memory is written: one call at a time.
 * - count: rows wanted, 1 to the size of the codebook.
 *
 * Statuses: orvStsNullPtrErr (any pointer null), orvStsSizeErr (count out of its range), orvStsNoErr.
 *
 * Source of the method: as of @ref vq, chapter 10.
 * @{
 */

/** The nearest rows of a 32f vector. */
ORV_API OrvStatus orvsVQSingle_Sort_32f(const float *pSrc, int32_t *pIndx, CdbkState *pCdbk, int32_t count);

/** The nearest rows of a 16s vector. */
ORV_API OrvStatus orvsVQSingle_Sort_16s(const int16_t *pSrc, int32_t *pIndx, CdbkState *pCdbk, int32_t count);

/** The nearest rows of a 32f vector and their distances. */
ORV_API OrvStatus orvsVQDistSingle_Sort_32f(const float *pSrc, int32_t *pIndx, float *pDist, CdbkState *pCdbk,
                                            int32_t count);

/** The nearest rows of a 16s vector and their scaled distances. */
ORV_API OrvStatus orvsVQDistSingle_Sort_16s32s_Sfs(const int16_t *pSrc, int32_t *pIndx, int32_t *pDist,
                                                   CdbkState *pCdbk, int32_t count, int32_t scaleFactor);

/** @} */

/**
 * @defgroup vqthresh The code vectors within a factor of the nearest
 *
 * All rows whose distance is at most threshold times the distance of the row that @ref vq finds, which in a
 * tree need not be the nearest of all; nearest first, of equal ones the lower index first. Squared distances
 * are compared, tolerant by a factor of 1.000001. Where the search finds no row, every row is listed.
 *
 * The integer form works on scaled distances. The rounded distance of the row found, times 2^scaleFactor,
 * times threshold, truncated, is the limit that the rounded and scaled distances must not exceed: rows close
 * to the edge that the 32f form lists may be missing, and unless scaleFactor is 0 the limit and the distances
 * have different units.
 *
 * Arguments:
 * - pSrc: a vector as wide as the codebook.
 * - pIndx, pDist, scaleFactor: indices and distances as of @ref vq, with room for as many as the codebook has
 * rows; *pCount of them are written.
 * - pCdbk: a codebook of the type of pSrc. Its scratch memory is written: one call at a time.
 * - pCount: the number of rows listed, written.
 * - threshold: 1 or more, a factor of distances and not of their squares.
 *
 * Statuses: orvStsNullPtrErr (any pointer null), orvStsBadArgErr (threshold below 1), orvStsErr (an inner
 * call failed), orvStsNoErr.
 *
 * Source of the method: as of @ref vq, chapter 10.
 * @{
 */

/** Rows near a 32f vector. */
ORV_API OrvStatus orvsVQSingle_Thresh_32f(const float *pSrc, int32_t *pIndx, CdbkState *pCdbk,
                                          int32_t *pCount, float threshold);

/** Rows near a 16s vector. */
ORV_API OrvStatus orvsVQSingle_Thresh_16s(const int16_t *pSrc, int32_t *pIndx, CdbkState *pCdbk,
                                          int32_t *pCount, float threshold);

/** Rows near a 32f vector and their distances. */
ORV_API OrvStatus orvsVQDistSingle_Thresh_32f(const float *pSrc, int32_t *pIndx, float *pDist,
                                              CdbkState *pCdbk, int32_t *pCount, float threshold);

/** Rows near a 16s vector and their scaled distances. */
ORV_API OrvStatus orvsVQDistSingle_Thresh_16s32s_Sfs(const int16_t *pSrc, int32_t *pIndx, int32_t *pDist,
                                                     CdbkState *pCdbk, int32_t *pCount, int32_t scaleFactor,
                                                     float threshold);

/** @} */

/**
 * @defgroup splitvq Vectors quantised in pieces
 *
 * A vector is cut into nStreams consecutive pieces, the i-th as wide as codebook i, in which it is searched
 * as of @ref vq; the rest of a row is not looked at.
 *
 * Arguments:
 * - pSrc, srcStep: height vectors, srcStep elements apart.
 * - pDst, dstStep: nStreams indices for each vector, vectors dstStep elements apart; the 8u forms keep the
 * low byte. In the 1u forms a stream of bits, cleared first, a vector every dstStep bits: the indices follow
 * one another without gaps, each with as many bits as the largest index of its codebook needs, the highest
 * bit first and into the most significant bit of a byte.
 * - height, nStreams: 1 or more.
 * - ppCdbks: nStreams codebooks of the type of pSrc.
 *
 * A codebook that is not searched takes no piece and gives no index: those behind it move up, in all rows,
 * and every further row begins that much earlier.
 *
 * Statuses: orvStsNullPtrErr (ppCdbks, pSrc or pDst null), orvStsSizeErr (srcStep, dstStep, height or
 * nStreams below 1; nStreams above dstStep, not tested in the 1u forms), orvStsNullPtrErr (a codebook null),
 * orvStsSizeErr (the widths together above srcStep; in the 1u forms the bits together above dstStep),
 * orvStsErr (an inner call failed), orvStsNoErr.
 *
 * Source of the method: K. K. Paliwal and B. S. Atal, Efficient vector quantization of LPC parameters at 24
 * bits/frame, IEEE Trans. Speech and Audio Processing 1 (1993).
 * @{
 */

/** Pieces of 32f vectors to 16-bit indices. */
ORV_API OrvStatus orvsSplitVQ_32f16s(const float *pSrc, int32_t srcStep, int16_t *pDst, int32_t dstStep,
                                     int32_t height, const CdbkState *const *ppCdbks, int32_t nStreams);

/** Pieces of 32f vectors to the low bytes of indices. */
ORV_API OrvStatus orvsSplitVQ_32f8u(const float *pSrc, int32_t srcStep, uint8_t *pDst, int32_t dstStep,
                                    int32_t height, const CdbkState *const *ppCdbks, int32_t nStreams);

/** Pieces of 32f vectors to indices packed into bits. */
ORV_API OrvStatus orvsSplitVQ_32f1u(const float *pSrc, int32_t srcStep, uint8_t *pDst, int32_t dstStep,
                                    int32_t height, const CdbkState *const *ppCdbks, int32_t nStreams);

/** Pieces of 16s vectors to 16-bit indices. */
ORV_API OrvStatus orvsSplitVQ_16s16s(const int16_t *pSrc, int32_t srcStep, int16_t *pDst, int32_t dstStep,
                                     int32_t height, const CdbkState *const *ppCdbks, int32_t nStreams);

/** Pieces of 16s vectors to the low bytes of indices. */
ORV_API OrvStatus orvsSplitVQ_16s8u(const int16_t *pSrc, int32_t srcStep, uint8_t *pDst, int32_t dstStep,
                                    int32_t height, const CdbkState *const *ppCdbks, int32_t nStreams);

/** Pieces of 16s vectors to indices packed into bits. */
ORV_API OrvStatus orvsSplitVQ_16s1u(const int16_t *pSrc, int32_t srcStep, uint8_t *pDst, int32_t dstStep,
                                    int32_t height, const CdbkState *const *ppCdbks, int32_t nStreams);

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

/**
 * @defgroup formvectorvq Vectors from indices into codebooks
 *
 * Undoes @ref splitvq: a vector is the code vectors of its nStreams indices, one after the other.
 *
 * Arguments:
 * - pInds, srcStep: nStreams indices for each vector, vectors srcStep elements apart. They are not tested. In
 * the 1u forms pBits, a stream of bits as of @ref splitvq, with a vector every srcStep bits.
 * - pDst, dstStep: height vectors, dstStep elements apart, written; what is left of the step behind the
 * widths of all codebooks is not.
 * - height, nStreams: 1 or more.
 * - ppCdbks: nStreams codebooks of the type of pDst.
 *
 * Statuses: orvStsNullPtrErr (ppCdbks, the indices or pDst null), orvStsSizeErr (nStreams, srcStep, dstStep
 * or height below 1; nStreams above srcStep, not tested in the 1u forms), orvStsNullPtrErr (a codebook null),
 * orvStsSizeErr (the widths together above dstStep; in the 1u forms the bits together above srcStep),
 * orvStsNoErr.
 *
 * Source of the method: as of @ref splitvq.
 * @{
 */

/** 16s vectors from 16s indices. */
ORV_API OrvStatus orvsFormVectorVQ_16s16s(const int16_t *pInds, int32_t srcStep, int16_t *pDst,
                                          int32_t dstStep, int32_t height, const CdbkState *const *ppCdbks,
                                          int32_t nStreams);

/** 16s vectors from 8u indices. */
ORV_API OrvStatus orvsFormVectorVQ_8u16s(const uint8_t *pInds, int32_t srcStep, int16_t *pDst,
                                         int32_t dstStep, int32_t height, const CdbkState *const *ppCdbks,
                                         int32_t nStreams);

/** 32f vectors from 16s indices. */
ORV_API OrvStatus orvsFormVectorVQ_16s32f(const int16_t *pInds, int32_t srcStep, float *pDst, int32_t dstStep,
                                          int32_t height, const CdbkState *const *ppCdbks, int32_t nStreams);

/** 32f vectors from 8u indices. */
ORV_API OrvStatus orvsFormVectorVQ_8u32f(const uint8_t *pInds, int32_t srcStep, float *pDst, int32_t dstStep,
                                         int32_t height, const CdbkState *const *ppCdbks, int32_t nStreams);

/** 16s vectors from indices packed into bits. */
ORV_API OrvStatus orvsFormVectorVQ_1u16s(const uint8_t *pBits, int32_t srcStep, int16_t *pDst,
                                         int32_t dstStep, int32_t height, const CdbkState *const *ppCdbks,
                                         int32_t nStreams);

/** 32f vectors from indices packed into bits. */
ORV_API OrvStatus orvsFormVectorVQ_1u32f(const uint8_t *pBits, int32_t srcStep, float *pDst, int32_t dstStep,
                                         int32_t height, const CdbkState *const *ppCdbks, int32_t nStreams);

/** @} */

#ifdef __cplusplus
}
#endif
#endif
