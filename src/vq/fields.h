// Fields: for code vectors of one or two elements, which rows a search looks at in which cell of the plane.

#ifndef ORV_VQ_FIELDS_H
#define ORV_VQ_FIELDS_H

#include "vq/codebook.h"

namespace orv::cdbk {

// Gives a direct codebook of 11 or more rows of width 1 or 2 its field, where that makes searches cheaper.
// The field is one block. orvStsMemAllocErr, orvStsNoErr.
template <class T>
OrvStatus buildField(CdbkState &cdbk);

}  // namespace orv::cdbk

#endif
