// Feature matrices as NumPy files.

#ifndef ORV_HOSTS_COMMON_NPY_H
#define ORV_HOSTS_COMMON_NPY_H

#include <string>

#include "common/frames.h"

namespace orv {

// The contents of a .npy file: rows x width values in single precision.
std::string npy(const Frames &frames);

}  // namespace orv

#endif
