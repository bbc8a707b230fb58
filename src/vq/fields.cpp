// Fields of codebooks of width 1 and 2. Not there yet: searches scan all rows.

#include "vq/fields.h"

namespace orv::cdbk {

template <class T>
OrvStatus buildField(CdbkState &) {
  return orvStsNoErr;
}

template OrvStatus buildField<float>(CdbkState &);
template OrvStatus buildField<std::int16_t>(CdbkState &);

}  // namespace orv::cdbk
