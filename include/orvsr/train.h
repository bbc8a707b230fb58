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

/* ---------------------------------------------------------------- distance, merging and splitting of Gaussians */

/* ---------------------------------------------------------------- cluster likelihoods */

/* ---------------------------------------------------------------- column statistics */

#ifdef __cplusplus
}
#endif
#endif
