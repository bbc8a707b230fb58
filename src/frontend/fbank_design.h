// Centres and weights of filter banks.
//
// Tables are computed in 80-bit extended precision around the double-precision logarithm and exponential, and
// rounded to single precision wherever a value has a name. Hosts compare features across machines, so every
// rounding below is part of the result.

#ifndef ORV_FRONTEND_FBANK_DESIGN_H
#define ORV_FRONTEND_FBANK_DESIGN_H

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <type_traits>

#include "core/integer.h"
#include "frontend/fbank.h"
#include "primitives/convert.h"

namespace orv::fbank {

using Extended = long double;

// The scratch arrays of construction: mel values or frequencies, and bins, one for each centre.
struct Scratch {
  float *steps, *bins;
};

// --- the frequency scale

inline float single(Extended v) { return static_cast<float>(v); }
inline Extended whole(std::int64_t i) { return static_cast<float>(i); }  // integers enter as singles
// In double, argument and result.
inline Extended logOf(Extended v) { return std::log(static_cast<double>(v)); }
inline Extended expOf(Extended v) { return std::exp(static_cast<double>(v)); }

// Step i of count equal ones of a range that begins at low.
inline float stepOf(std::int64_t i, Extended range, std::int64_t count, float low) {
  return single(whole(i) * range / whole(count) + low);
}

// mel(f) = M ln(1 + f / D), the logarithm being natural whatever M and D are: the fixed banks too take it
// with M = 2595, D = 700. Centres and weights do not depend on M. Neither M nor D is tested; what comes of
// zeros is infinite or NaN, and bounded where it is used as an index.
struct Scale {
  Extended fftLen, sampleRate, mul, div;

  Extended melExtended(Extended f) const { return mul * logOf(1 + f / div); }
  float mel(Extended f) const { return single(melExtended(f)); }
  // The mixed bank rounds the logarithm before the product.
  float melOfRoundedLog(Extended f) const { return single(mul * single(logOf(1 + f / div))); }
  Extended frequency(std::int64_t bin) const { return whole(bin) * (sampleRate / fftLen); }

  float binOfMel(float mel) const {
    const float x = single(expOf(mel / mul) - 1);
    return single(fftLen / sampleRate * div * x);
  }
  float binOfFrequency(float f) const { return single(f * (fftLen / sampleRate)); }
};

template <class State>
Scale scaleOf(const State &bank, float sampleRate) {
  return {whole(bank.fftLen), sampleRate, bank.melMul, bank.melDiv};
}

// Equal steps of the mel scale and their bins: `count` steps from low to high, `edges` values written.
inline void melSteps(const Scale &scale, float low, float high, std::int64_t count, std::int64_t edges,
                     const Scratch &out) {
  const float melLow = scale.mel(low);
  const float melRange = single(Extended{scale.mel(high)} - melLow);
  for (std::int64_t i = 0; i < edges; ++i) {
    out.steps[i] = stepOf(i, melRange, count, melLow);
    out.bins[i] = scale.binOfMel(out.steps[i]);
  }
}

template <class State>
void roundToCenters(const float *bins, State &bank) {
  const bool nearest = (bank.mode & orvFBankBinWeights) != 0;
  orvsConvert_32f32s_Sfs(bins, bank.centers, bank.numFilters + 2,
                         nearest ? kRoundNearestEven : kRoundTowardZero, 0);
}

// --- weights

// Single-precision weights.
struct SingleForm {
  using Sum = float;
  static float onMelScale(Extended distance, float width) { return single(distance / width); }
  static float ofMixedBank(Extended distance, float width) {
    const float w = onMelScale(distance, width);
    return w < 0.0F ? 0.0F : w;
  }
  static float ofJunction(float distance, float width) { return ofMixedBank(distance, width); }
  static float ofBins(std::int64_t k, std::int64_t width) { return single(whole(k) / whole(width)); }
  static float oneLess(std::int64_t k, std::int64_t width) { return single(1 - whole(k) / whole(width)); }
  static void add(Sum &sum, float w) { sum += w; }
  static float normalised(float w, Sum sum) { return w / sum; }
};

// Q14 weights. They are no rounded copies of the others: each path truncates in its own place.
struct Q14Form {
  using Sum = std::int64_t;
  static std::int32_t onMelScale(Extended distance, float width) {
    return truncate32(static_cast<double>(single(distance * kWeightOne / width)));
  }
  static std::int32_t ofMixedBank(Extended distance, float width) {
    return std::max(truncate32(static_cast<double>(distance * kWeightOne / width)), 0);
  }
  static std::int32_t ofJunction(float distance, float width) {
    return std::max(onMelScale(distance, width), 0);
  }
  // The numerators wrap in 32 bits.
  static std::int32_t ofBins(std::int64_t k, std::int64_t width) {
    return static_cast<std::int32_t>(wrap32(k * kWeightOne) / width);
  }
  static std::int32_t oneLess(std::int64_t k, std::int64_t width) { return kWeightOne - ofBins(k, width); }
  static void add(Sum &sum, std::int32_t w) { sum += w; }
  static std::int32_t normalised(std::int32_t w, Sum sum) {
    return static_cast<std::int32_t>(std::int64_t{w} * kWeightOne / sum);
  }
};

template <class State>
using Form = std::conditional_t<std::is_same_v<typename State::Weight, float>, SingleForm, Q14Form>;

// One band with its rows and edges.
template <class State>
struct Band {
  Band(State &bank, std::int32_t i)
      : from(bank.centers[i - 1]),
        center(bank.centers[i]),
        to(bank.centers[i + 1]),
        risingLen(fbank::risingLen(bank, from, center)),
        fallingLen(fbank::fallingLen(bank, center, to)),
        left(bank.leftCoeffs[i - 1]),
        right(bank.rightCoeffs[i - 1]) {}

  std::int64_t from, center, to;
  std::int32_t risingLen, fallingLen;
  typename State::Weight *left, *right;
};

// The triangle of bin distances. It is wider than the usual one by a bin on either side: the first bin
// already weighs 1 / (d + 1) and the last one still 1 / (e + 1).
template <class State>
void setBinWeights(const Band<State> &band) {
  const std::int64_t d = band.center - band.from;
  const std::int64_t e = band.to - band.center;
  for (std::int32_t j = 0; j < band.risingLen; ++j) band.left[j] = Form<State>::ofBins(j + 1, d + 1);
  for (std::int32_t j = 0; j < band.fallingLen; ++j) band.right[j] = Form<State>::ofBins(e - j, e + 1);
}

// The triangle on the mel scale between the exact mel values of the edges, mel[0] to mel[2], rather than
// those of their bins: a weight may come out below 0 or above 1, and stays so.
template <class State>
void setMelWeights(const Band<State> &band, const Scale &scale, const float *mel) {
  const float rise = single(Extended{mel[1]} - mel[0]);
  const float fall = single(Extended{mel[2]} - mel[1]);
  const auto melOfBin = [&](std::int64_t k) -> Extended { return scale.mel(scale.frequency(k)); };
  for (std::int32_t j = 1; j < band.risingLen; ++j)
    band.left[j] = Form<State>::onMelScale(melOfBin(band.from + j) - mel[0], rise);
  for (std::int32_t j = 0; j < band.fallingLen; ++j)
    band.right[j] = Form<State>::onMelScale(mel[2] - melOfBin(band.center + 1 + j), fall);
}

template <class State>
void designMelBank(State &bank, float sampleRate, float lowFreq, float highFreq, const Scratch &scratch) {
  const Scale scale = scaleOf(bank, sampleRate);
  const std::int32_t n = bank.numFilters;
  melSteps(scale, lowFreq, highFreq, std::int64_t{n} + 1, std::int64_t{n} + 2, scratch);
  roundToCenters(scratch.bins, bank);
  for (std::int32_t i = 1; i <= n; ++i) {
    const Band<State> band(bank, i);
    if ((bank.mode & orvFBankBinWeights) != 0) {
      setBinWeights(band);
    } else {
      setMelWeights(band, scale, scratch.steps + i - 1);
    }
  }
  bank.ready = 1;
}

// --- the mixed bank

// A linear band on the mel scale between the frequencies of its edges, f[0] to f[2].
template <class State>
void setLinearRise(const Band<State> &band, const Scale &scale, const float *f) {
  const Extended low = scale.melOfRoundedLog(f[0]);
  const float width = single(scale.melOfRoundedLog(f[1]) - low);
  for (std::int32_t j = 0; j < band.risingLen; ++j)
    band.left[j] = Form<State>::ofMixedBank(scale.melExtended(scale.frequency(band.from + j)) - low, width);
}
template <class State>
void setLinearFall(const Band<State> &band, const Scale &scale, const float *f) {
  const Extended high = scale.melOfRoundedLog(f[2]);
  const float width = single(high - scale.melOfRoundedLog(f[1]));
  for (std::int32_t j = 0; j < band.fallingLen; ++j)
    band.right[j] =
        Form<State>::ofMixedBank(high - scale.melExtended(scale.frequency(band.center + 1 + j)), width);
}

// The falling side at the junction of the scales is measured from the bin number of its end, not from a mel
// value. For any usual melMul all of it comes out zero. This is meant: models were trained on such features.
template <class State>
void setJunctionFall(const Band<State> &band, const Scale &scale) {
  const float width = single(whole(band.to - band.center));
  for (std::int32_t j = 0; j < band.fallingLen; ++j) {
    const Extended mel = scale.melExtended(scale.frequency(band.center + 1 + j));
    band.right[j] = Form<State>::ofJunction(single(whole(band.to) - mel), width);
  }
}

struct MixedLimits {
  float low, linHigh, high;
};

template <class State>
void designMixedBank(State &bank, float sampleRate, const MixedLimits &limits, const Scratch &scratch) {
  const Scale scale = scaleOf(bank, sampleRate);
  const std::int32_t n = bank.numFilters;
  const std::int32_t linear = bank.numLinear;
  const Extended range = Extended{limits.linHigh} - limits.low;
  const std::int64_t steps = linear == n ? std::int64_t{n} + 1 : linear;
  // The mel part goes first: its steps are not needed afterwards, while the frequencies of the linear part
  // are. Centre `linear` belongs to both, and its bin is that of the mel part.
  if (linear < n)
    melSteps(scale, limits.linHigh, limits.high, std::int64_t{n} - linear + 1, std::int64_t{n} - linear + 2,
             {scratch.steps + linear, scratch.bins + linear});
  for (std::int64_t i = 0; i <= steps; ++i) {
    scratch.steps[i] = stepOf(i, range, steps, limits.low);
    if (i < linear || linear == n) scratch.bins[i] = scale.binOfFrequency(scratch.steps[i]);
  }
  roundToCenters(scratch.bins, bank);
  for (std::int32_t i = 1; i <= n; ++i) {
    const Band<State> band(bank, i);
    if (i > linear || (bank.mode & orvFBankBinWeights) != 0) {
      setBinWeights(band);
      continue;
    }
    const float *f = scratch.steps + i - 1;
    setLinearRise(band, scale, f);
    if (i < linear || linear == n) {
      setLinearFall(band, scale, f);
    } else {
      setJunctionFall(band, scale);
    }
  }
  bank.ready = 1;
}

// --- the fixed banks of the Aurora advanced front end

constexpr std::int32_t kAuroraFftLen = 65;
constexpr std::int32_t kAuroraLowBands = 25;
constexpr std::int32_t kAuroraHighBands = 3;
constexpr float kAuroraSampleRate = 8000.0F;
constexpr float kAuroraMelMul = 2595.0F;
constexpr float kAuroraMelDiv = 700.0F;

inline Shape auroraShape(std::int32_t bands) { return {kAuroraFftLen, bands, 0}; }

template <class State>
void setAuroraCenters(State &bank, float lowFreq, std::int32_t steps, const Scratch &scratch) {
  bank.mode = orvFBankBinWeights;
  bank.melMul = kAuroraMelMul;
  bank.melDiv = kAuroraMelDiv;
  const std::int32_t edges = bank.numFilters + 2;
  melSteps(scaleOf(bank, kAuroraSampleRate), lowFreq, 4000.0F, steps, edges, scratch);
  const float last = static_cast<float>(bank.fftLen) * 0.5F;
  for (std::int32_t i = 0; i < edges; ++i) scratch.bins[i] = std::min(scratch.bins[i], last);
  roundToCenters(scratch.bins, bank);
}

// A triangle of height 1 that reaches zero at both edges. Returns the sum of its weights.
template <class State>
typename Form<State>::Sum setAuroraTriangle(const Band<State> &band) {
  typename Form<State>::Sum sum{};
  for (std::int32_t j = 1; j < band.risingLen; ++j) {
    band.left[j] = Form<State>::ofBins(j, band.center - band.from);
    Form<State>::add(sum, band.left[j]);
  }
  for (std::int32_t j = 0; j < band.fallingLen - 1; ++j) {
    band.right[j] = Form<State>::oneLess(j + 1, band.to - band.center);
    Form<State>::add(sum, band.right[j]);
  }
  return sum;
}

// Steps of 1/24 of the range, not of 1/26: centre 24 lands on 4000 Hz, and what lies behind it is bin 64 too.
// The centres then move up a place, so that band 1 is a half triangle at bin 0 alone, band b + 1 lies between
// the centres b - 1 and b + 1 of the steps, and band 25 is a half triangle that ends at bin 64. The weights
// of a band add up to 1.
template <class State>
void designLowAuroraBank(State &bank, const Scratch &scratch) {
  setAuroraCenters(bank, 1.0F, 24, scratch);
  const std::int32_t edges = bank.numFilters + 2;
  std::copy_backward(bank.centers, bank.centers + edges, bank.centers + edges + 1);
  bank.centers[0] = 0;
  bank.leftCoeffs[0][0] = Form<State>::ofBins(1, 1);
  // One row more than is evaluated: it can be read.
  for (std::int32_t i = 2; i <= bank.numFilters + 1; ++i) {
    const Band<State> band(bank, i);
    const auto sum = setAuroraTriangle(band);
    for (std::int32_t j = 1; j < band.risingLen; ++j)
      band.left[j] = Form<State>::normalised(band.left[j], sum);
    for (std::int32_t j = 0; j < band.fallingLen - 1; ++j)
      band.right[j] = Form<State>::normalised(band.right[j], sum);
  }
  bank.ready = 1;
}

template <class State>
void designHighAuroraBank(State &bank, const Scratch &scratch) {
  setAuroraCenters(bank, 80.0F, 4, scratch);
  for (std::int32_t i = 1; i <= bank.numFilters; ++i) setAuroraTriangle(Band<State>(bank, i));
  bank.ready = 1;
}

}  // namespace orv::fbank

#endif
