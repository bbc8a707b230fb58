#ifndef ORVSR_X_frontend
#define ORVSR_X_frontend
#include "orvsr/types.h"
#endif
