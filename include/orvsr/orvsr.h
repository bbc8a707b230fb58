/**
 * @file orvsr.h
 * The whole public interface of liborvsrmx.so.6.1.
 */
#ifndef ORVSR_ORVSR_H
#define ORVSR_ORVSR_H

#include "orvsr/core.h"
#include "orvsr/frontend.h"
#include "orvsr/gauss.h"
#include "orvsr/matrix.h"
#include "orvsr/resample.h"
#include "orvsr/robust.h"
#include "orvsr/train.h"
#include "orvsr/types.h"
#include "orvsr/vq.h"

#endif
