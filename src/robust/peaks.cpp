// orvsFindPeaks_*: the local maxima of a smoothed curve.

#include <cmath>
#include <cstdint>
#include <type_traits>

#include "orvsr/robust.h"
#include "primitives/memory.h"

using namespace orv;

namespace {

// The mean of the samples from i - reach to i + reach that exist. Single samples are added in double and the
// quotient is rounded; integers are added exactly and the quotient is truncated.
template <class T>
T localMean(const T *src, std::int32_t len, std::int32_t reach, std::int32_t i) {
  using Sum = std::conditional_t<std::is_same_v<T, float>, double, std::int64_t>;
  const std::int32_t first = i > reach ? i - reach : 0;
  const std::int32_t last = len - 1 - i > reach ? i + reach : len - 1;
  Sum sum = 0;
  for (std::int32_t k = first; k <= last; ++k) sum += load(src + k);
  return static_cast<T>(sum / (last - first + 1));
}

// The walk over the curve, which sees a position and its two neighbours. Without smoothing the curve is the
// input.
template <class T>
class Walk {
 public:
  Walk(const T *src, std::uint8_t *dst, std::int32_t len, std::int32_t searchSize, std::int32_t reach)
      : src_(src),
        dst_(dst),
        len_(len),
        search_(searchSize),
        reach_(reach),
        here_(value(0)),
        next_(value(1)) {}

  void run() {
    if (!firstFall()) return;
    // Every phase moves on, so the walk ends.
    while (rise() && fall()) {
    }
  }

 private:
  // The fall from the left edge; true if the walk goes on.
  bool firstFall() {
    std::int32_t steps = 0;
    for (; !atEnd() && next_ < here_; ++steps) pass();
    if (atEnd()) {
      mark(last(), false);
      mark(0, true);  // a curve that only falls has its peak at the edge, whatever the search size
      return false;
    }
    const bool edge = steps >= search_;
    pass();
    mark(0, edge);
    if (!atEnd()) return true;
    // Only the last step was left. The raw samples decide here even on a smoothed curve; callers rely on it.
    mark(last(), search_ == 1 && load(src_ + last()) > load(src_ + last() - 1));
    return false;
  }

  // False if the rise ends at the last element, which it then marks or not.
  bool rise() {
    up_ = equal(here_, before_) ? 0 : 1;
    for (; !atEnd() && here_ < next_; ++up_) pass();
    if (!atEnd()) return true;
    mark(last(), up_ >= smaller(last(), search_));
    return false;
  }

  // False if the fall takes in the last element, which is then no peak.
  bool fall() {
    if (!equal(here_, next_)) {
      const std::int32_t top = i_;
      std::int32_t down = 1;
      pass();
      for (; !atEnd() && next_ < here_; ++down) pass();
      mark(top, up_ >= smaller(top, search_) && down >= smaller(last() - top, search_));
    }
    if (atEnd()) {
      mark(last(), false);
      return false;
    }
    pass();
    return true;
  }

  T value(std::int32_t i) const { return reach_ == 0 ? load(src_ + i) : localMean(src_, len_, reach_, i); }

  // Smoothed single values are equal within a relative 1e-6; everything else exactly.
  bool equal(T a, T b) const {
    if constexpr (std::is_same_v<T, float>) {
      const float most = a > b ? a : b;
      if (reach_ != 0) return std::fabs(a - b) <= std::fabs(static_cast<double>(most) * 1e-6);
    }
    return a == b;
  }

  bool atEnd() const { return i_ >= last(); }
  std::int32_t last() const { return len_ - 1; }
  void mark(std::int32_t i, bool peak) { dst_[i] = peak ? 1 : 0; }
  static std::int32_t smaller(std::int32_t a, std::int32_t b) { return a < b ? a : b; }

  // On to the next position; the one left behind is no peak unless it is marked later.
  void pass() {
    mark(i_, false);
    ++i_;
    before_ = here_;
    here_ = next_;
    if (i_ < last()) next_ = value(i_ + 1);
  }

  const T *src_;
  std::uint8_t *dst_;
  std::int32_t len_, search_, reach_;
  std::int32_t i_ = 0, up_ = 0;
  T before_{}, here_, next_;
};

template <class T>
OrvStatus findPeaks(const T *src, std::uint8_t *dst, std::int32_t len, std::int32_t searchSize,
                    std::int32_t movingAvgSize) {
  if (src == nullptr || dst == nullptr) return orvStsNullPtrErr;
  if (len < 1 || len > 65535) return orvStsLenRangeErr;
  if (searchSize < 1 || searchSize > 127 || movingAvgSize < 0 || movingAvgSize > 127) return orvStsBadArgErr;
  if (len == 1) {
    dst[0] = 1;
  } else if (movingAvgSize >= len - 1) {
    ownsZero_8u(dst,
                static_cast<std::size_t>(len));  // a mean over everything has no peaks, not even at its edges
  } else {
    Walk<T>(src, dst, len, searchSize, movingAvgSize).run();
  }
  return orvStsNoErr;
}

}  // namespace

OrvStatus orvsFindPeaks_32f8u(const float *pSrc, uint8_t *pDst, int32_t len, int32_t searchSize,
                              int32_t movingAvgSize) {
  return findPeaks(pSrc, pDst, len, searchSize, movingAvgSize);
}

OrvStatus orvsFindPeaks_32s8u(const int32_t *pSrc, uint8_t *pDst, int32_t len, int32_t searchSize,
                              int32_t movingAvgSize) {
  return findPeaks(pSrc, pDst, len, searchSize, movingAvgSize);
}
