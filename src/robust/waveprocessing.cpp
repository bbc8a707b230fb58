// orvsWaveProcessing_Aurora_*: raises the stretch behind each peak of the energy of a voiced frame, and
// lowers the rest of the period.
//
// The running sum is a chain in which each addition waits for the one before. Energies, differences and the
// running maximum are formed beside it, four at a time, in registers.

#include <emmintrin.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>

#include "core/integer.h"
#include "orvsr/robust.h"
#include "primitives/arithmetic.h"
#include "primitives/memory.h"
#include "primitives/simd.h"

namespace orv {
namespace {

constexpr std::int32_t kFrame = 200;
constexpr std::int32_t kLast = kFrame - 1;
constexpr std::int32_t kLeastPeriod = 25;
constexpr std::int32_t kMostPeriod = 79;
constexpr std::int32_t kWindow = kMostPeriod - kLeastPeriod + 1;  // in which the next peak is searched
constexpr std::int32_t kLead = 4;                                 // a raised stretch begins before its peak
constexpr std::int32_t kPad = 64;                                 // read beyond a frame by searches

// --- the two number forms: samples, and energies in four lanes

struct Wave32f {
  using Sample = float;
  using Energy = float;
  using Lanes = simd::f32x4;
  static constexpr float low = 0.8F, edge = 1.0F, high = 1.2F;
  static constexpr float least = -std::numeric_limits<float>::infinity();

  // trunc(0.8 period), which rounding never moves across an integer.
  static std::int32_t raised(std::int32_t period) { return period * 4 / 5; }
  static void weigh(const Sample *weights, const Sample *src, Sample *dst) {
    orvsMul_32f(weights, src, dst, kFrame);
  }

  static Energy endEnergy(Sample x, Sample inner) { return std::fabs((x - inner) * x); }
  // Of src[0] .. src[3], which have neighbours.
  static Lanes innerEnergies(const Sample *src) {
    using namespace simd;
    const f32x4 x = load4(src);
    return andNot(signBits4(), x * x - load4(src - 1) * load4(src + 1));
  }
  // sum + d0, sum + d0 + d1, ...; sum becomes the last.
  using Sum = float;
  static Lanes runningSums(Sum &sum, Lanes d) {
    using simd::shuffle;
    const float s0 = sum + firstOf(d);
    const float s1 = s0 + firstOf(shuffle<1, 1, 1, 1>(d, d));
    const float s2 = s1 + firstOf(shuffle<2, 2, 2, 2>(d, d));
    sum = s2 + firstOf(shuffle<3, 3, 3, 3>(d, d));
    return simd::pack4(s0, s1, s2, sum);
  }

  static Lanes splat(Energy e) { return simd::splat4(e); }
  static void put(Energy *to, Lanes a) { simd::store4(to, a); }
  static Lanes larger(Lanes a, Lanes b) { return simd::max(a, b); }
  // a3 b0 b1 b2, and a2 a3 b0 b1
  static Lanes lastAndFirst(Lanes a, Lanes b) {
    return simd::shuffle<0, 2, 1, 2>(simd::shuffle<3, 3, 0, 0>(a, b), b);
  }
  static Lanes halves(Lanes a, Lanes b) { return simd::shuffle<2, 3, 0, 1>(a, b); }
  static __m128i equal(Lanes a, Lanes b) { return _mm_castps_si128((a == b).v); }
};

// Weights in Q5. Neither they nor the share of the period are the rounded ones of the other form: 27 / 32 and
// 38 / 32 are meant.
struct Wave16s {
  using Sample = std::int16_t;
  using Energy = std::int32_t;
  using Lanes = simd::i32x4;
  static constexpr std::int16_t low = 27, edge = 32, high = 38;
  static constexpr std::int32_t least = INT32_MIN;

  static std::int32_t raised(std::int32_t period) { return (period * 27) >> 5; }
  static void weigh(const Sample *weights, const Sample *src, Sample *dst) {
    for (std::int32_t i = 0; i < kFrame; i += 8) {
      const __m128i w = simd::loadEight16(weights + i);
      const __m128i x = simd::loadEight16(src + i);
      const __m128i lowHalf = _mm_mullo_epi16(w, x);
      const __m128i highHalf = _mm_mulhi_epi16(w, x);
      simd::storeSaturated8(dst + i, {rounded({_mm_unpacklo_epi16(lowHalf, highHalf)}),
                                      rounded({_mm_unpackhi_epi16(lowHalf, highHalf)})});
    }
  }
  // A product over 32, ties to even.
  static Lanes rounded(Lanes product) {
    const Lanes odd{_mm_srli_epi32(_mm_slli_epi32(product.v, 26), 31)};
    return (product + splat(15) + odd) >> 5;
  }

  // No energy leaves 32 bits: the largest is 65535 * 32768. Sums of nine do, and wrap.
  static Energy endEnergy(Energy x, Energy inner) { return std::abs((x - inner) * x); }
  static Lanes innerEnergies(const Sample *src) {
    using namespace simd;
    const i16x4 x = load4(src);
    const i32x4 e = x * x - load4(src - 1) * load4(src + 1);
    const i32x4 sign = e >> 31;
    return i32x4{_mm_xor_si128(e.v, sign.v)} - sign;
  }
  // The sum in every lane.
  using Sum = Lanes;
  static Lanes runningSums(Sum &sum, Lanes d) {
    d = d + Lanes{_mm_slli_si128(d.v, 4)};
    d = d + Lanes{_mm_slli_si128(d.v, 8)} + sum;
    sum = {_mm_shuffle_epi32(d.v, _MM_SHUFFLE(3, 3, 3, 3))};
    return d;
  }

  static Lanes splat(Energy e) { return simd::splat4(e); }
  static void put(Energy *to, Lanes a) { std::memcpy(to, &a, sizeof a); }
  static Lanes larger(Lanes a, Lanes b) {
    const __m128i greater = _mm_cmpgt_epi32(a.v, b.v);
    return {_mm_or_si128(_mm_and_si128(greater, a.v), _mm_andnot_si128(greater, b.v))};
  }
  static Lanes lastAndFirst(Lanes a, Lanes b) {
    return {_mm_or_si128(_mm_srli_si128(a.v, 12), _mm_slli_si128(b.v, 4))};
  }
  static Lanes halves(Lanes a, Lanes b) {
    return {_mm_or_si128(_mm_srli_si128(a.v, 8), _mm_slli_si128(b.v, 8))};
  }
  static __m128i equal(Lanes a, Lanes b) { return _mm_cmpeq_epi32(a.v, b.v); }
};

// --- smoothed energies and their peaks

// Teager energies, smoothed over nine positions, the first and the last being repeated beyond the frame.
// Least values stand on both sides, so that searches have one length wherever they begin.
template <class Form>
class Smoothed {
  using Energy = typename Form::Energy;
  using Lanes = typename Form::Lanes;

 public:
  explicit Smoothed(const typename Form::Sample *src) {
    std::fill_n(memory_, kPad, Form::least);
    const Energy first = Form::endEnergy(load(src), load(src + 1));
    const Energy last = Form::endEnergy(load(src + kLast), load(src + kLast - 1));
    // Energies of the positions i - 8 .. i - 5, i - 4 .. i - 1, and so on.
    Lanes gone = Form::splat(first), behind = gone, here = Form::innerEnergies(src + 1);
    // The nine of position 0, in their order.
    typename Form::Sum sum{};
    Form::runningSums(sum, gone);
    Form::runningSums(sum, Form::lastAndFirst(gone, here));
    Lanes most = Form::runningSums(sum, Form::lastAndFirst(here, Form::splat(0)));
    Form::put(values(), most);
    // Four sums from the differences of the entering and the leaving energies.
    const auto step = [&](std::int32_t i, Lanes entering) {
      const Lanes difference = entering - Form::lastAndFirst(gone, behind);
      const Lanes sums = Form::runningSums(sum, difference);
      gone = behind;
      behind = here;
      here = entering;
      Form::put(values() + i, sums);
      return sums;
    };
    std::int32_t i = 1;
    for (; i < kFrame - 10; i += 4) most = Form::larger(most, step(i, Form::innerEnergies(src + i + 4)));
    most = Form::larger(most, step(i, Form::halves(Form::innerEnergies(src + i + 2), Form::splat(last))));
    // The last step ends one behind the frame.
    most_ = Form::larger(most, Form::lastAndFirst(most, step(i + 4, Form::splat(last))));
    std::fill_n(values() + kFrame, kPad, Form::least);
  }

  // The first position of the largest value. With NaNs it is any position.
  std::int32_t mainPeak() const {
    const Lanes most = largestLane(most_);
    for (std::int32_t i = 0; i < kFrame; i += 64)
      if (const std::uint64_t bits = equalBits64(values() + i, most); bits != 0)
        return std::min(i + std::countr_zero(bits), kLast);
    return kLast;
  }

  // The same from position `from` on, over kWindow positions, of which those beyond the frame do not count.
  std::int32_t peakFrom(std::int32_t from) const {
    const Energy *s = values() + from;
    Lanes a = simd::load4(s), b = simd::load4(s + 4);
    for (std::int32_t j = 8; j < kWindow - 8; j += 8) {
      a = Form::larger(a, simd::load4(s + j));
      b = Form::larger(b, simd::load4(s + j + 4));
    }
    a = Form::larger(a, simd::load4(s + kWindow - 7));
    b = Form::larger(b, simd::load4(s + kWindow - 4));
    const Lanes all = largestLane(Form::larger(a, b));
    return from + std::countr_zero(equalBits64(s, all) | std::uint64_t{1} << (kWindow - 1));
  }

 private:
  Energy *values() { return memory_ + kPad; }
  const Energy *values() const { return memory_ + kPad; }
  // One bit for each of 64 elements.
  static std::uint64_t equalBits64(const Energy *s, Lanes most) {
    std::uint64_t bits = 0;
    for (int j = 0; j < 64; j += 16) {
      const auto equal = [&](int k) { return Form::equal(simd::load4(s + j + k), most); };
      const __m128i first = _mm_packs_epi32(equal(0), equal(4));
      const __m128i second = _mm_packs_epi32(equal(8), equal(12));
      const int sixteen = _mm_movemask_epi8(_mm_packs_epi16(first, second));
      bits |= static_cast<std::uint64_t>(sixteen) << j;
    }
    return bits;
  }
  // In every lane.
  static Lanes largestLane(Lanes a) {
    a = Form::larger(a, Form::halves(a, a));
    return Form::larger(a, Form::lastAndFirst(a, a));
  }

  Energy memory_[kPad + kFrame + kPad];
  Lanes most_;
};

// The main peak, and from there one in each period to either side. Peaks are kLeastPeriod or more apart, so
// there are at most eight; and at least two, as there is room to one side of any main peak.
template <class Form>
class Peaks {
 public:
  // Each search waits for the one before it: both sides go on together, and a side that has come to its end
  // searches in vain.
  explicit Peaks(const Smoothed<Form> &energies) {
    std::int32_t right = at_[first_] = energies.mainPeak();
    std::int32_t left = right;
    for (;;) {
      const bool toRight = right < kFrame - kLeastPeriod;
      const bool toLeft = left > kLeastPeriod;
      if (!toRight && !toLeft) break;
      const std::int32_t nextRight = energies.peakFrom(std::min(right + kLeastPeriod, kLast));
      const std::int32_t nextLeft =
          energies.peakFrom(std::max(left - kMostPeriod, kLeastPeriod - kMostPeriod));
      right = toRight ? nextRight : right;
      left = toLeft ? nextLeft : left;
      // Only NaNs, or energies as low as what stands beyond the frame, lead there.
      at_[last_ + 1] = std::min(right, kLast);
      at_[first_ - 1] = std::max(left, 0);
      last_ += toRight;
      first_ -= toLeft;
    }
  }

  std::int32_t first() const { return at_[first_]; }
  // Calls f(peak, length of its period), in ascending order. The last has the period before it.
  template <class F>
  void forEach(F f) const {
    for (int i = first_; i < last_; ++i) f(at_[i], at_[i + 1] - at_[i]);
    f(at_[last_], at_[last_] - at_[last_ - 1]);
  }

 private:
  std::int32_t at_[17];
  int first_ = 8, last_ = 8;
};

// --- weights

// Raised stretches and the gaps between them are painted over each other from left to right, each with the
// greatest number of samples that the one before may have left wrong: a gap has 4 to 16, a stretch 16 or
// more, and what lies before the first one at most 21. What touches an end of the frame is moved beyond it,
// together with the edge that it does not have.
template <class Form>
class Weights {
  using Sample = typename Form::Sample;
  static constexpr std::int32_t kFront = 4, kStart = 24, kGap = 16, kOverlap = 12;

 public:
  explicit Weights(const Peaks<Form> &peaks) {
    Sample *w = values_ + kFront;
    std::fill_n(w, kFrame, Form::high);
    std::fill_n(w, kStart, Form::low);
    std::fill_n(w + beginAt(peaks.first()), kStart + kFront, Form::high);
    peaks.forEach([w](std::int32_t peak, std::int32_t period) {
      const std::int32_t begin = beginAt(peak);
      const std::int32_t z = peak + Form::raised(period) - kLead;
      const std::int32_t end = z < kFrame ? z : kFrame + 1;
      std::fill_n(w + begin, kOverlap, Form::high);
      std::fill_n(w + end, kGap, Form::low);
      w[begin - 1] = w[begin] = w[end - 1] = w[end] = Form::edge;
    });
  }
  const Sample *values() const { return values_ + kFront; }

 private:
  static std::int32_t beginAt(std::int32_t peak) { return peak > kLead ? peak - kLead : -2; }
  Sample values_[kFront + kFrame + kStart];
};

template <class Form>
OrvStatus processWave(const typename Form::Sample *pSrc, typename Form::Sample *pDst) {
  if (pSrc == nullptr || pDst == nullptr) return orvStsNullPtrErr;
  const Weights<Form> weights{Peaks<Form>(Smoothed<Form>(pSrc))};
  Form::weigh(weights.values(), pSrc, pDst);
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
