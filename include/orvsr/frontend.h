/**
 * @file frontend.h
 * From samples to feature vectors: filter banks, cepstra, delta features, frame measures, linear prediction and
 * correlation.
 */
#ifndef ORVSR_FRONTEND_H
#define ORVSR_FRONTEND_H

#include "orvsr/types.h"

#ifdef __cplusplus
extern "C" {
#endif

/* ---------------------------------------------------------------- filter banks and mel conversions */

/* ---------------------------------------------------------------- cosine transform and lifter */

/* ---------------------------------------------------------------- delta and acceleration features */

/* ---------------------------------------------------------------- frame measures and normalisation */

/* ---------------------------------------------------------------- linear prediction */

/* ---------------------------------------------------------------- conversions of prediction parameters */

/* ---------------------------------------------------------------- correlation and pitch candidates */

#ifdef __cplusplus
}
#endif
#endif
