// orvsWaveProcessing_Aurora_*: raises the stretch behind each peak of the energy of a voiced frame, and
// lowers the rest of the period.

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "core/integer.h"
#include "orvsr/robust.h"
#include "primitives/arithmetic.h"
#include "primitives/memory.h"
#include "primitives/reduce.h"
#include "primitives/simd.h"

namespace orv {
namespace {

constexpr std::int32_t kFrame = 200;
constexpr std::int32_t kLast = kFrame - 1;
constexpr std::int32_t kReach = 4;  // of the smoothing, to either side
constexpr std::int32_t kLeastPeriod = 25;
constexpr std::int32_t kMostPeriod = 79;  // 55 positions are searched for the next peak
constexpr std::int32_t kLead = 4;         // the raised stretch begins so far before its peak

// --- the two number forms

struct Wave32f {
  using Sample = float;
  using Energy = float;
  static constexpr float low = 0.8F, edge = 1.0F, high = 1.2F;

  // trunc(0.8 period), which rounding never moves across an integer.
  static std::int32_t raised(std::int32_t period) { return period * 4 / 5; }
  static Energy difference(Energy a, Energy b) { return a - b; }
  static Energy sum(Energy a, Energy b) { return a + b; }
  static std::int32_t largest(const Energy *s, std::int32_t len) {
    float most;
    std::int32_t at;
    orvsMaxIndx_32f(s, len, &most, &at);
    return at;
  }
  static void weigh(const Sample *weights, const Sample *src, Sample *dst) {
    orvsMul_32f(weights, src, dst, kFrame);
  }
  static Energy edgeEnergy(Sample x, Sample inner) { return std::fabs((x - inner) * x); }
  static void innerEnergies(const Sample *src, Energy *e) {
    using namespace simd;
    for (std::int32_t i = 1; i < kLast; i += 4) {
      i = std::min(i, kLast - 4);  // the last vector takes up what is left, and some of the one before
      const f32x4 x = load4(src + i);
      store4(e + i, andNot(signBits4(), x * x - load4(src + i - 1) * load4(src + i + 1)));
    }
  }
};

// Weights in Q5. Neither they nor the share of the period are the rounded ones of the other form: 27 / 32,
// 38 / 32 are meant.
struct Wave16s {
  using Sample = std::int16_t;
  using Energy = std::int32_t;
  static constexpr std::int16_t low = 27, edge = 32, high = 38;

  static std::int32_t raised(std::int32_t period) { return (period * 27) >> 5; }
  static Energy difference(Energy a, Energy b) { return subWrap32(a, b); }
  static Energy sum(Energy a, Energy b) { return addWrap32(a, b); }  // of nine energies: loud frames wrap
  static std::int32_t largest(const Energy *s, std::int32_t len) {
    Energy most = s[0];
    for (std::int32_t i = 1; i < len; ++i) most = std::max(most, s[i]);
    std::int32_t at = 0;
    while (s[at] != most) ++at;
    return at;
  }
  static void weigh(const Sample *weights, const Sample *src, Sample *dst) {
    orvsMul_16s_Sfs(weights, src, dst, kFrame, 5);
  }
  // No energy leaves 32 bits: the largest is 65535 * 32768.
  static Energy edgeEnergy(Energy x, Energy inner) { return std::abs((x - inner) * x); }
  static void innerEnergies(const Sample *src, Energy *e) {
    for (std::int32_t i = 1; i < kLast; ++i) {
      const std::int32_t x = load(src + i);
      e[i] = std::abs(x * x - load(src + i - 1) * load(src + i + 1));
    }
  }
};

// --- peaks of the smoothed energy

// Teager energies, smoothed over nine positions, the first and the last being repeated beyond the frame. The
// running sum takes the difference of the entering and the leaving energy.
template <class Form>
void smoothedEnergies(const typename Form::Sample *src, typename Form::Energy *smoothed) {
  using Energy = typename Form::Energy;
  Energy padded[kFrame + 2 * kReach];
  Energy *e = padded + kReach;
  e[0] = Form::edgeEnergy(load(src), load(src + 1));
  Form::innerEnergies(src, e);
  e[kLast] = Form::edgeEnergy(load(src + kLast), load(src + kLast - 1));
  std::fill_n(padded, kReach, e[0]);
  std::fill_n(e + kFrame, kReach, e[kLast]);
  Energy sum = padded[0];
  for (std::int32_t i = 1; i <= 2 * kReach; ++i) sum = Form::sum(sum, padded[i]);
  smoothed[0] = sum;
  for (std::int32_t i = 1; i < kFrame; ++i) {
    sum = Form::sum(sum, Form::difference(e[i + kReach], e[i - kReach - 1]));
    smoothed[i] = sum;
  }
}

// The main peak, and from there one in each period to either side. Peaks are kLeastPeriod or more apart, so
// there are at most eight; and at least two, as there is room to one side of any main peak.
template <class Form>
class Peaks {
 public:
  explicit Peaks(const typename Form::Energy *s) {
    const std::int32_t main = at_[first_] = Form::largest(s, kFrame);
    for (std::int32_t c = main; c < kFrame - kLeastPeriod; at_[++last_] = c) {
      const std::int32_t from = c + kLeastPeriod;
      c = from + Form::largest(s + from, std::min(kMostPeriod - kLeastPeriod + 1, kFrame - from));
    }
    for (std::int32_t c = main; c > kLeastPeriod; at_[--first_] = c) {
      const std::int32_t from = std::max(c - kMostPeriod, 0);
      c = from + Form::largest(s + from, c - kLeastPeriod + 1 - from);
    }
  }

  // Calls f(peak, length of its period), in ascending order. The last has the period before it.
  template <class F>
  void forEach(F f) const {
    for (int i = first_; i < last_; ++i) f(at_[i], at_[i + 1] - at_[i]);
    f(at_[last_], at_[last_] - at_[last_ - 1]);
  }

 private:
  std::int32_t at_[16];
  int first_ = 8, last_ = 8;
};

template <class Form>
OrvStatus processWave(const typename Form::Sample *pSrc, typename Form::Sample *pDst) {
  if (pSrc == nullptr || pDst == nullptr) return orvStsNullPtrErr;
  typename Form::Energy smoothed[kFrame];
  smoothedEnergies<Form>(pSrc, smoothed);
  typename Form::Sample weights[kFrame];
  std::fill_n(weights, kFrame, Form::low);
  Peaks<Form>(smoothed).forEach([&](std::int32_t peak, std::int32_t period) {
    const std::int32_t begin = std::max(peak - kLead, 0);
    const std::int32_t end = std::min(peak + Form::raised(period) - kLead, kFrame);
    std::fill(weights + begin, weights + end, Form::high);
    if (begin > 0) weights[begin - 1] = weights[begin] = Form::edge;
    if (end < kFrame) weights[end - 1] = weights[end] = Form::edge;
  });
  Form::weigh(weights, pSrc, pDst);
  return orvStsNoErr;
}

}  // namespace
}  // namespace orv

using namespace orv;

OrvStatus orvsWaveProcessing_Aurora_32f(const float *pSrc, float *pDst) {
  return processWave<Wave32f>(pSrc, pDst);
}
OrvStatus orvsWaveProcessing_Aurora_16s(const int16_t *pSrc, int16_t *pDst) {
  return processWave<Wave16s>(pSrc, pDst);
}
