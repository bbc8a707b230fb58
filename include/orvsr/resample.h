/**
 * @file resample.h
 * Streaming sample-rate conversion.
 */
#ifndef ORVSR_RESAMPLE_H
#define ORVSR_RESAMPLE_H

#include "orvsr/types.h"

#ifdef __cplusplus
extern "C" {
#endif


#ifdef __cplusplus
}
#endif
#endif
