// orvsVAD*_Aurora_*: which frames are speech, by the votes of three adaptive trackers and two hangovers.

#include <cstdint>
#include <cstring>

#include "core/integer.h"
#include "orvsr/robust.h"
#include "primitives/memory.h"
#include "primitives/reduce.h"

using namespace orv;

namespace {

constexpr std::int32_t kSpeech = 1, kNoSpeech = 2, kNoDecision = 4;
constexpr std::int32_t kBands = 25, kSpectrum = 64, kHistory = 7;
constexpr std::int32_t kFirstReload = 23, kLaterReload = 40;

// What becomes of the votes: whole numbers, and the same in both forms.
struct Hangover {
  std::int32_t historyPos, flushStart, longHangReload, longHang, shortHang;
  std::uint8_t history[kHistory];
  std::int32_t frameCount;

  // Stops at the end of its range, which a stream reaches after months.
  void countFrame() {
    if (frameCount != INT32_MAX) ++frameCount;
  }

  void advance() {
    if (++historyPos == kHistory) historyPos = 0;
  }

  std::int32_t longestRun() const {
    std::int32_t longest = 0, run = 0;
    for (std::int32_t i = 1; i <= kHistory; ++i) {
      run = history[(historyPos + i) % kHistory] != 0 ? run + 1 : 0;
      if (run > longest) longest = run;
    }
    return longest;
  }

  // The reload that holds now. Only a long run among the first 35 frames raises it, for the next time.
  std::int32_t takeReload() {
    const std::int32_t reload = longHangReload;
    if (frameCount < 36) longHangReload = kLaterReload;
    return reload;
  }

  std::int32_t decide(bool vote) {
    if (frameCount < 11) return kNoDecision;
    advance();
    history[historyPos] = vote ? 1 : 0;
    const std::int32_t run = longestRun();
    if (run >= 4) {
      longHang = takeReload();
    } else if (longHang != 0 && run < 3) {
      --longHang;
    }
    if (run >= 3) {
      shortHang = 5;
    } else if (shortHang != 0) {
      --shortHang;
    }
    return shortHang == 0 && longHang == 0 && run < 3 ? kNoSpeech : kSpeech;
  }

  // Differs from decide() on purpose: the counters go down whatever they are, so they may become negative,
  // and only their sign counts.
  std::int32_t flush() {
    countFrame();
    if (flushStart == -1) flushStart = historyPos;
    advance();
    if (historyPos == flushStart || frameCount <= 10) return kNoDecision;
    const std::int32_t run = longestRun();
    longHang = subWrap32(run >= 4 ? takeReload() : longHang, 1);
    shortHang = run >= 3 ? 4 : subWrap32(shortHang, 1);
    return shortHang <= 0 && longHang <= 0 && run < 3 ? kNoSpeech : kSpeech;
  }
};

template <class Value>
struct State {
  std::int16_t energyFlag, bandFlag, varianceFlag, energyFrozen;
  Value meanEnergy, bandTrack, energyTrack, varianceTrack, prevBandMean, lastBandMean;
  Hangover hangover;
};
static_assert(sizeof(State<float>) == 64 && sizeof(State<std::int32_t>) == 64);

// How a tracker follows its measure.
template <class Weight>
struct Pace {
  Weight upper, lower, keep, take;   // between the gates, it blends
  Weight lowGate, lowKeep, lowTake;  // below the low gate, it blends slowly
  Weight vote;                       // above this, the frame is active
  bool lowGateIncluded;
};

struct SingleForm {
  using Value = float;
  using Measure = float;
  using Sample = float;
  using Weight = float;
  static float times(float weight, float v) { return weight * v; }

  static constexpr Pace<Weight> variance{1.5F, 0.85F, 0.8F, 0.2F, 0.25F, 0.97F, 0.03F, 1.65F, false};
  static constexpr Pace<Weight> energy{1.5F, 0.75F, 0.8F, 0.2F, 0.5F, 0.97F, 0.03F, 1.65F, true};
  static constexpr Pace<Weight> band{1.5F, 0.75F, 0.8F, 0.2F, 0.5F, 0.97F, 0.03F, 3.25F, true};

  static float store(float v) { return v; }
  static float varianceOf(const float *spectrum) {
    float sum = 0, squares = 0;
    orvsSum_32f(spectrum, kSpectrum, &sum);
    orvsDotProd_32f(spectrum, spectrum, kSpectrum, &squares);
    return squares * 0.015625F - sum * sum * 0.00024414063F;
  }
  static float energyOf(const float *bands) {
    float sum = 0;
    orvsSum_32f(bands, kBands, &sum);
    return sum * sum - 3.0F;
  }
  static float bandMean(const float *bands) {
    return (load(bands + 1) + load(bands + 2) + load(bands + 3)) / 3.0F;
  }
  static float smoothed(float mean, float previous) { return 0.75F * mean + 0.25F * previous; }
  static float runningMean(std::int32_t frame, float mean, float x) {
    return (static_cast<float>(frame - 1) * mean + x) * 1.1F / static_cast<float>(frame);
  }
  static bool farAbove(float x, float mean) { return x / mean > 2.5F; }
};

// Not the scaled copy of the other form: the weights are ratios near its own, every product with a tracker
// wraps in 32 bits, and what a tracker is set to keeps its low 32 bits. Decisions depend on all of it.
struct FixedForm {
  using Value = std::int32_t;
  using Measure = std::int64_t;
  using Sample = std::int16_t;
  struct Weight {
    std::int32_t factor;
    int shift;
  };
  static std::int64_t times(Weight w, std::int32_t tracker) {
    return mulWrap32(w.factor, tracker) >> w.shift;
  }
  static std::int64_t times(Weight w, std::int64_t measure) { return (w.factor * measure) >> w.shift; }

  // The variance is blended in with weight one, so that after a quiet frame the tracker jumps: meant.
  static constexpr Pace<Weight> variance{{48, 5}, {27, 5}, {26, 5}, {6, 5}, {8, 5},
                                         {31, 5}, {1, 0},  {53, 5}, false};
  static constexpr Pace<Weight> energy{{192, 7}, {96, 7}, {102, 7}, {26, 7}, {64, 7},
                                       {124, 7}, {4, 7},  {211, 7}, true};
  static constexpr Pace<Weight> band{{48, 5},  {24, 5}, {102, 7}, {26, 7}, {16, 5},
                                     {124, 7}, {4, 7},  {416, 7}, true};

  static std::int32_t store(std::int64_t v) { return wrap32(v); }
  // 4096 times the variance.
  static std::int64_t varianceOf(const std::int16_t *spectrum) {
    std::int32_t sum = 0;
    std::int64_t squares = 0;
    orvsSum_16s32s_Sfs(spectrum, kSpectrum, &sum, 0);
    orvsDotProd_16s64s(spectrum, spectrum, kSpectrum, &squares);
    return 64 * squares - std::int64_t{sum} * sum;
  }
  static std::int64_t energyOf(const std::int16_t *bands) {
    std::int32_t sum = 0;
    orvsSum_16s32s_Sfs(bands, kBands, &sum, 0);
    return std::int64_t{sum} * sum - 3;
  }
  // 1024 times the mean.
  static std::int32_t bandMean(const std::int16_t *bands) {
    return (std::int32_t{load(bands + 1)} + load(bands + 2) + load(bands + 3)) * 341;
  }
  static std::int64_t smoothed(std::int32_t mean, std::int32_t previous) {
    return ((24 * mean) >> 5) + ((8 * previous) >> 5);
  }
  static std::int32_t runningMean(std::int32_t frame, std::int32_t mean, std::int64_t x) {
    return wrap32(((mulWrap32(frame - 1, mean) + x) * 141 / frame) >> 7);
  }
  // Near silence the mean comes out as 0; then the sign decides, as it does for the quotient of the other
  // form.
  static bool farAbove(std::int64_t x, std::int32_t mean) { return mean == 0 ? x > 0 : x * 128 / mean > 320; }
};

// Moves the tracker towards the measure and returns the vote.
template <class Form>
bool follow(const Pace<typename Form::Weight> &pace, typename Form::Value &track, typename Form::Measure v) {
  const auto blend = [&](typename Form::Weight keep, typename Form::Weight take) {
    track = Form::store(Form::times(keep, track) + Form::times(take, v));
  };
  if (Form::times(pace.upper, track) > v && v > Form::times(pace.lower, track)) blend(pace.keep, pace.take);
  const auto low = Form::times(pace.lowGate, track);
  if (low > v || (pace.lowGateIncluded && low == v)) blend(pace.lowKeep, pace.lowTake);
  return v > Form::times(pace.vote, track);
}

template <class Form>
void rise(typename Form::Value &track, typename Form::Measure v) {
  if (v > track) track = Form::store(v);
}

template <class Form>
std::int32_t decide(State<typename Form::Value> &s, const typename Form::Sample *bands,
                    const typename Form::Sample *spectrum, std::int32_t activity) {
  s.hangover.countFrame();
  const std::int32_t frame = s.hangover.frameCount;
  const bool early = frame < 15;

  const auto variance = Form::varianceOf(spectrum);
  if (early) rise<Form>(s.varianceTrack, variance);
  s.varianceFlag = follow<Form>(Form::variance, s.varianceTrack, variance);

  const auto energy = Form::energyOf(bands);
  if (frame == 1) s.energyTrack = Form::store(energy);
  if (early) {
    s.meanEnergy = Form::runningMean(frame, s.meanEnergy, energy);
    if (Form::farAbove(energy, s.meanEnergy)) s.energyFrozen = 1;
    if (s.energyFrozen == 0) rise<Form>(s.energyTrack, energy);
  }
  s.energyFlag = follow<Form>(Form::energy, s.energyTrack, energy);

  // Smoothed over two raw means: what is kept for the next frame is not the smoothed one.
  const auto mean = Form::bandMean(bands);
  const typename Form::Measure band = Form::smoothed(mean, s.prevBandMean);
  s.prevBandMean = s.lastBandMean = mean;
  if (early) rise<Form>(s.bandTrack, band);
  s.bandFlag = follow<Form>(Form::band, s.bandTrack, band);

  return s.hangover.decide(s.energyFlag != 0 || s.bandFlag != 0 || s.varianceFlag != 0 || activity >= 5);
}

// The object may lie at any address, so every call works on a copy.
template <class Value, class Work>
void withState(VADState_Aurora *state, Work work) {
  State<Value> s;
  std::memcpy(&s, state, sizeof s);
  work(s);
  std::memcpy(static_cast<void *>(state), &s, sizeof s);
}

OrvStatus getBufSize(std::int32_t *size) {
  if (size == nullptr) return orvStsNullPtrErr;
  store(size, static_cast<std::int32_t>(sizeof(State<float>)));
  return orvStsNoErr;
}

template <class Value>
OrvStatus init(VADState_Aurora *state) {
  if (state == nullptr) return orvStsNullPtrErr;
  State<Value> s{};
  s.hangover.flushStart = -1;
  s.hangover.longHangReload = kFirstReload;
  std::memcpy(static_cast<void *>(state), &s, sizeof s);
  return orvStsNoErr;
}

template <class Form, class Sample>
OrvStatus decision(const Sample *bands, const Sample *spectrum, std::int32_t activity, std::int32_t *result,
                   VADState_Aurora *state) {
  if (bands == nullptr || spectrum == nullptr || result == nullptr || state == nullptr)
    return orvStsNullPtrErr;
  withState<typename Form::Value>(
      state, [&](auto &s) { store(result, decide<Form>(s, bands, spectrum, activity)); });
  return orvStsNoErr;
}

template <class Value>
OrvStatus flush(std::int32_t *result, VADState_Aurora *state) {
  if (result == nullptr || state == nullptr) return orvStsNullPtrErr;
  withState<Value>(state, [&](auto &s) { store(result, s.hangover.flush()); });
  return orvStsNoErr;
}

}  // namespace

OrvStatus orvsVADGetBufSize_Aurora_16s(int32_t *pSize) { return getBufSize(pSize); }
OrvStatus orvsVADGetBufSize_Aurora_32f(int32_t *pSize) { return getBufSize(pSize); }

OrvStatus orvsVADInit_Aurora_16s(VADState_Aurora *pState) { return init<std::int32_t>(pState); }
OrvStatus orvsVADInit_Aurora_32f(VADState_Aurora *pState) { return init<float>(pState); }

OrvStatus orvsVADDecision_Aurora_16s(const int16_t *pBands, const int16_t *pSpectrum, int32_t activity,
                                     int32_t *pResult, VADState_Aurora *pState) {
  return decision<FixedForm>(pBands, pSpectrum, activity, pResult, pState);
}
OrvStatus orvsVADDecision_Aurora_32f(const float *pBands, const float *pSpectrum, int32_t activity,
                                     int32_t *pResult, VADState_Aurora *pState) {
  return decision<SingleForm>(pBands, pSpectrum, activity, pResult, pState);
}

OrvStatus orvsVADFlush_Aurora_16s(int32_t *pResult, VADState_Aurora *pState) {
  return flush<std::int32_t>(pResult, pState);
}
OrvStatus orvsVADFlush_Aurora_32f(int32_t *pResult, VADState_Aurora *pState) {
  return flush<float>(pResult, pState);
}
