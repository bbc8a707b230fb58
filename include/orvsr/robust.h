/**
 * @file robust.h
 * The noise-robust front end: noise reduction, voice activity detection, noise tracking, peaks and periodicity.
 */
#ifndef ORVSR_ROBUST_H
#define ORVSR_ROBUST_H

#include "orvsr/types.h"

#ifdef __cplusplus
extern "C" {
#endif

/* ---------------------------------------------------------------- noise spectrum and Wiener design */

/* ---------------------------------------------------------------- wave processing and blind equalisation */

/* ---------------------------------------------------------------- voice activity detection */

/* ---------------------------------------------------------------- band split and high-band coding */

/* ---------------------------------------------------------------- minima-controlled noise tracking and its gains */

/* ---------------------------------------------------------------- spectral peaks and periodicity */


#ifdef __cplusplus
}
#endif
#endif
