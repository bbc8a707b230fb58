/**
 * @file vq.h
 * Codebooks, vectors formed from indices, and dynamic time warping.
 */
#ifndef ORVSR_VQ_H
#define ORVSR_VQ_H

#include "orvsr/types.h"

#ifdef __cplusplus
extern "C" {
#endif

/* ---------------------------------------------------------------- codebook training */

/* ---------------------------------------------------------------- codebook search */

/* ---------------------------------------------------------------- vectors from indices */

/* ---------------------------------------------------------------- dynamic time warping */


#ifdef __cplusplus
}
#endif
#endif
