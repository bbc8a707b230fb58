/**
 * @file types.h
 * What every header of the library shares: status values, flags, hints and opaque state objects.
 *
 * Element types. A function name ends in the tags of its element types: `8u` is uint8_t, `16s` int16_t,
 * `32s` int32_t, `64s` int64_t, `32f` float, `64f` double, and `1u` a row of bits in which bit i lies in byte
 * i / 8 under the mask 128 >> (i % 8). Two tags name input, then output.
 *
 * Layouts. `_D2` is a matrix in one array, whose row r starts at element r * step; a row may be shorter than
 * the step. `_D2L` is a matrix given as an array of row pointers, which may lie anywhere. `_I` works in place.
 * `Sfs` means that the integer result is scaled by 2^-scaleFactor and saturated.
 *
 * Lengths, steps, counts and scale factors are signed 32-bit numbers and count elements, not bytes.
 *
 * Alignment. Arrays may start at any address; no result depends on it but for the last bits of
 * single-precision and double-precision sums, whose grouping may follow the alignment of one argument.
 *
 * Checks. A function tests its arguments before it writes or allocates, in the order in which its docstring
 * lists the statuses; the first failed test decides. An error means that nothing was written unless the
 * docstring says otherwise.
 *
 * Threads. Every function is reentrant. An object that a call writes belongs to that call; docstrings name
 * the objects that are written while they are used.
 */
#ifndef ORVSR_TYPES_H
#define ORVSR_TYPES_H

#include <stdint.h>

#define ORV_API __attribute__((visibility("default")))

#ifdef __cplusplus
extern "C" {
#endif

/** Result of every function: 0 is success, a negative value an error, a positive value a warning. */
typedef int32_t OrvStatus;

/** Status values. After a warning the outputs are valid as the function's docstring defines them. */
enum {
  orvStsCdbkShortWrn = 31,      /**< the codebook holds fewer or other rows than asked for; it is usable */
  orvStsZeroOccupancyWrn = 16,  /**< the occupancy was zero or not a normal number; nothing re-estimated */
  orvStsAllFlooredWrn = 11,     /**< every element of the update was replaced by its floor */
  orvStsNegVarWrn = 8,          /**< a value that must not be negative was; a scalar result is NaN */
  orvStsInfResultWrn = 7,       /**< a value that must be positive was zero; the result is plus infinity */
  orvStsDivByZeroWrn = 6,       /**< a divisor was zero; the result follows the function's rule */
  orvStsDegenerateDataWrn = 4,  /**< the whole input was flat or under the floor; the output is written */
  orvStsNegSqrtWrn = 3,         /**< a negative element met a square root; it became NaN */
  orvStsNoErr = 0,              /**< success */
  orvStsErr = -2,               /**< an inner call failed in a way that is not passed on */
  orvStsBadArgErr = -5,         /**< an argument other than a length is invalid */
  orvStsSizeErr = -6,           /**< a length or count is below its minimum or does not match the object */
  orvStsRangeErr = -7,          /**< a data value lies outside what the operation can take */
  orvStsNullPtrErr = -8,        /**< a required pointer is null */
  orvStsMemAllocErr = -9,       /**< an allocation failed */
  orvStsDivByZeroErr = -10,     /**< a divisor constant is exactly zero */
  orvStsFftOrderErr = -15,      /**< the FFT order is out of range */
  orvStsFftFlagErr = -16,       /**< the FFT flag is not known */
  orvStsContextMatchErr = -17,  /**< the object given is not a live object of the expected kind */
  orvStsStrideErr = -37,        /**< a row does not fit in the step or row width given */
  orvStsSvdConvergeErr = -65,   /**< the decomposition stopped without converging */
  orvStsCdbkMethodErr = -66,    /**< the codebook method is not one that this call takes */
  orvStsNegOccupancyErr = -67,  /**< an occupancy argument is negative */
  orvStsFBankErr = -69,         /**< the filter bank is not ready for this call */
  orvStsFBankFlagErr = -70,     /**< the flags of a filter bank are a bad combination */
  orvStsFBankFreqErr = -71,     /**< the frequency limits of a filter bank are out of range */
  orvStsLspRootsErr = -114,     /**< the search did not find all the line spectrum roots */
  orvStsLspOrderErr = -115,     /**< line spectrum values are out of range or out of order */
  orvStsLpUnstableErr = -116,   /**< a reflection coefficient came out exactly 1 or -1 */
  orvStsDurbinErr = -117,       /**< the prediction error of the recursion became non-positive */
  orvStsLenRangeErr = -119,     /**< a length is outside the family's limits */
  orvStsCdbkKindErr = -9999     /**< the codebook object carries an unknown kind */
};

/** Algorithm hints of the log-addition functions. */
enum {
  orvAlgHintNone = 0,    /**< the accurate path */
  orvAlgHintFast = 1,    /**< the table path, where the element type has one */
  orvAlgHintAccurate = 2 /**< the accurate path */
};

/** Mode flags of filter banks: one of the first two, with or without the third. */
enum {
  orvFBankMelWeights = 1, /**< weights on the mel scale; centres truncated to bins */
  orvFBankBinWeights = 2, /**< weights from bin distances; centres rounded to the nearest bin */
  orvFBankFromSamples = 4 /**< the bank owns an FFT and takes frames of samples */
};

/** Mode flags of the streaming delta functions. */
enum {
  orvDeltaBegin = 1, /**< the first source row is the first frame of the utterance */
  orvDeltaEnd = 2    /**< the last source row is the last frame of the utterance */
};

/** What follows the samples of a call to a resampling function. */
enum {
  orvResampleMore = 0, /**< more of the signal, in a later call */
  orvResampleEnd = 1   /**< nothing: the signal ends with the samples of this call */
};

/** A block-diagonal matrix of 16-bit elements; read-only once built. */
typedef struct OrvBlockDMatrix_16s OrvBlockDMatrix_16s;
/** A block-diagonal matrix of single-precision elements; read-only once built. */
typedef struct OrvBlockDMatrix_32f OrvBlockDMatrix_32f;
/** A block-diagonal matrix of double-precision elements; read-only once built. */
typedef struct OrvBlockDMatrix_64f OrvBlockDMatrix_64f;
/** A filter bank with single-precision weights. */
typedef struct OrvsFBankState_32f OrvsFBankState_32f;
/** A filter bank with Q14 integer weights. */
typedef struct OrvsFBankState_16s OrvsFBankState_16s;
/** A cosine transform with lifter, for single-precision data. */
typedef struct OrvsDCTLifterState_32f OrvsDCTLifterState_32f;
/** A cosine transform with lifter, for integer data; written by every transform call. */
typedef struct OrvsDCTLifterState_16s OrvsDCTLifterState_16s;
/** A sample-rate converter of any ratio for 16-bit samples; written by every conversion. */
typedef struct OrvsResampleState_16s OrvsResampleState_16s;
/** A sample-rate converter of any ratio for single-precision samples; written by every conversion. */
typedef struct OrvsResampleState_32f OrvsResampleState_32f;
/** A sample-rate converter between two integer rates for 16-bit samples; written by every conversion. */
typedef struct OrvsResampleFixedState_16s OrvsResampleFixedState_16s;
/** A sample-rate converter between two integer rates for single-precision samples; written by every conversion. */
typedef struct OrvsResampleFixedState_32f OrvsResampleFixedState_32f;

#ifdef __cplusplus
}
#endif
#endif
