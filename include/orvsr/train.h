#ifndef ORVSR_X_train
#define ORVSR_X_train
#include "orvsr/types.h"
#endif
