// Growing a codebook by splitting clusters. Not there yet.

#include "vq/growth.h"

namespace orv::cdbk {

template <class T>
OrvStatus growTree(CdbkState &, const T *, std::int32_t, std::int32_t, std::int32_t, CdbkCluster **) {
  return orvStsErr;
}

template OrvStatus growTree<float>(CdbkState &, const float *, std::int32_t, std::int32_t, std::int32_t,
                                   CdbkCluster **);
template OrvStatus growTree<std::int16_t>(CdbkState &, const std::int16_t *, std::int32_t, std::int32_t,
                                          std::int32_t, CdbkCluster **);

}  // namespace orv::cdbk
