// Growing a codebook by splitting clusters.

#ifndef ORV_VQ_GROWTH_H
#define ORV_VQ_GROWTH_H

#include "vq/codebook.h"

namespace orv::cdbk {

// Grows the tree of a codebook from height rows, and fills in its rows, pRoot, size and maxDepth. `list` has
// room for cdbkSize clusters. The tree is one block, which begins with the root. A status that is not
// orvStsNoErr comes from a cluster that could not be split, or from memory that could not be had; the
// codebook is to be released then.
template <class T>
OrvStatus growTree(CdbkState &cdbk, const T *src, std::int32_t step, std::int32_t height,
                   std::int32_t cdbkSize, CdbkCluster **list);

}  // namespace orv::cdbk

#endif
