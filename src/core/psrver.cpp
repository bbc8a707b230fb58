// The version record.

#include "orvsr/core.h"

namespace {

// The build number and the last number of the version text come from different counters and are not
// derived from one another.
constexpr OrvLibraryVersion psrver = {
    6, 1, 137, 818, {'m', 'x', '\0', '\0'}, "liborvsrmx.so.6.1", "6.1 build 137.56", "Mar 17 2010",
};

}  // namespace

const OrvLibraryVersion *orvsrGetLibVersion(void) { return &psrver; }
