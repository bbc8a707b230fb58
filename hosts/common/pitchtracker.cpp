#include "common/pitchtracker.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <span>
#include <sstream>

#include "common/error.h"
#include "orvsr/frontend.h"

namespace orv {
namespace {

constexpr double kWindowSeconds = 0.02;
constexpr std::size_t kMostCandidates = 8;
constexpr float kLeastPeak = 0.3f;       // of the largest peak
constexpr double kSilenceDb = 50;        // a frame so far below the loudest one has no voice
constexpr double kLongPeriodCost = 0.1;  // of the longest period against the shortest
constexpr double kVoiceCost = 0.15;      // of a beginning or an end of voice
constexpr double kOctaveCost = 0.6;      // of a jump by an octave from frame to frame

struct Candidate {
  double f0 = 0;  // 0: no voice
  double strength = 0;
  double cost = 0;
};

// What a frame can be, and what the best path up to each candidate costs and comes from.
struct State {
  std::vector<Candidate> candidates;
  std::vector<double> total;
  std::vector<std::size_t> from;
};

class Correlator {
 public:
  Correlator(const Recording &recording, const PitchOptions &options) : rate_(recording.sampleRate) {
    const auto &x = recording.samples;
    float peak = 0;
    for (const float v : x) peak = std::max(peak, std::fabs(v));
    const float gain = peak > 0 ? 16000 / peak : 0;
    samples_.resize(x.size());
    std::ranges::transform(x, samples_.begin(),
                           [gain](float v) { return static_cast<std::int16_t>(std::lrint(v * gain)); });
    window_ = static_cast<std::int32_t>(std::lround(kWindowSeconds * rate_));
    // Two lags more on the short side, so that the highest pitch can be a peak.
    shortest_ = std::max(2, static_cast<std::int32_t>(rate_ / options.highHz) - 2);
    longest_ = static_cast<std::int32_t>(std::ceil(rate_ / options.lowHz)) + 1;
    correlation_.resize(static_cast<std::size_t>(longest_ - shortest_) + 1);
    for (std::size_t i = 0; i + static_cast<std::size_t>(window_) <= samples_.size();
         i += static_cast<std::size_t>(window_))
      loudest_ = std::max(loudest_, energy(i));
  }

  // Samples that one frame looks at.
  std::size_t span() const { return static_cast<std::size_t>(window_ + longest_) + 2; }

  // The candidates of the frame that starts at a sample; the first one is always "no voice".
  std::vector<Candidate> candidates(std::size_t start) {
    std::vector<Candidate> found(1);
    const std::int16_t *x = samples_.data() + start;
    const float own = energy(start);
    if (own == 0 || 10 * std::log10(loudest_ / own) > kSilenceDb) return found;
    float largest = 0;
    for (std::int32_t lag = shortest_; lag <= longest_; ++lag) {
      float &r = correlation_[static_cast<std::size_t>(lag - shortest_)];
      require(orvsCrossCorrCoeffPartial_16s32f(x, x + lag, window_, &r, own),
              "orvsCrossCorrCoeffPartial_16s32f");
      largest = std::max(largest, r);
    }
    found[0].strength = found[0].cost = largest;

    std::vector<float> periods;
    for (std::size_t i = 1; i + 1 < correlation_.size(); ++i) {
      const float before = correlation_[i - 1], r = correlation_[i], after = correlation_[i + 1];
      if (!(r > before && r >= after && r > kLeastPeak * largest)) continue;
      const auto [period, strength] = refine(x, shortest_ + static_cast<std::int32_t>(i), r, after > before);
      periods.push_back(period);
      Candidate candidate;
      candidate.strength = strength;
      candidate.cost = 1 - strength * (1 - kLongPeriodCost * period / static_cast<float>(longest_));
      found.push_back(candidate);
    }
    setFrequencies(periods, found);
    if (found.size() > kMostCandidates + 1) {
      std::partial_sort(found.begin() + 1, found.begin() + 1 + kMostCandidates, found.end(),
                        [](const Candidate &a, const Candidate &b) { return a.cost < b.cost; });
      found.resize(kMostCandidates + 1);
    }
    return found;
  }

 private:
  float energy(std::size_t start) const {
    std::int64_t sum = 0;
    for (const std::int32_t v : std::span(samples_).subspan(start, static_cast<std::size_t>(window_)))
      sum += v * v;
    return static_cast<float>(sum);
  }

  // A peak at an integer lag, placed between this lag and the higher one of its neighbours.
  std::pair<float, float> refine(const std::int16_t *x, std::int32_t lag, float r, bool later) const {
    const std::int32_t first = later ? lag : lag - 1;
    float beta = 0, value = r;
    const OrvStatus status = orvsCrossCorrCoeffInterpolation_16s32f(x, x + first, window_, &beta, &value);
    require(status, "orvsCrossCorrCoeffInterpolation_16s32f");
    if (status != orvStsNoErr || !(beta >= 0 && beta < 1)) return {static_cast<float>(lag), r};
    return {static_cast<float>(first) + beta, std::min(value, 1.0f)};
  }

  // Periods laid end to end are pitch marks, of which the library makes frequencies.
  void setFrequencies(const std::vector<float> &periods, std::vector<Candidate> &found) {
    if (periods.empty()) return;
    std::vector<float> marks(periods.size()), frequencies(periods.size());
    float mark = 0;
    for (std::size_t i = 0; i < periods.size(); ++i) marks[i] = mark += periods[i];
    require(
        orvsPitchmarkToF0Cand_32f(marks.data(), frequencies.data(), static_cast<std::int32_t>(marks.size())),
        "orvsPitchmarkToF0Cand_32f");
    for (std::size_t i = 0; i < periods.size(); ++i)
      found[i + 1].f0 = frequencies[i] * static_cast<float>(rate_);
  }

  int rate_;
  std::int32_t window_, shortest_, longest_;
  std::vector<std::int16_t> samples_;
  std::vector<float> correlation_;
  float loudest_ = 0;
};

double transition(const Candidate &a, const Candidate &b) {
  if ((a.f0 == 0) != (b.f0 == 0)) return kVoiceCost;
  return a.f0 == 0 ? 0 : kOctaveCost * std::fabs(std::log2(b.f0 / a.f0));
}

// The cheapest way through all frames, forward, then back along it.
std::vector<std::size_t> bestPath(std::vector<State> &states) {
  for (std::size_t t = 0; t < states.size(); ++t) {
    State &now = states[t];
    now.total.assign(now.candidates.size(), 0);
    now.from.assign(now.candidates.size(), 0);
    for (std::size_t c = 0; c < now.candidates.size(); ++c) {
      double best = t == 0 ? 0 : std::numeric_limits<double>::infinity();
      for (std::size_t p = 0; t != 0 && p < states[t - 1].candidates.size(); ++p) {
        const double total =
            states[t - 1].total[p] + transition(states[t - 1].candidates[p], now.candidates[c]);
        if (total < best) {
          best = total;
          now.from[c] = p;
        }
      }
      now.total[c] = best + now.candidates[c].cost;
    }
  }
  std::vector<std::size_t> path(states.size());
  const auto &last = states.back().total;
  std::size_t c = static_cast<std::size_t>(std::min_element(last.begin(), last.end()) - last.begin());
  for (std::size_t t = states.size(); t-- > 0; c = states[t].from[c]) path[t] = c;
  return path;
}

void checkOptions(const PitchOptions &o, int rate) {
  const auto need = [](bool holds, const auto &...parts) {
    std::ostringstream reason;
    (reason << ... << parts);
    if (!holds) throw Error(reason.str());
  };
  need(o.hopMs >= 1 && o.hopMs <= 1000, "a hop of ", o.hopMs, " ms is not within 1 to 1000 ms");
  need(o.lowHz >= 20 && o.lowHz < o.highHz && o.highHz <= rate / 8.0, "a range of ", o.lowHz, " to ",
       o.highHz, " Hz does not lie within 20 to ", rate / 8.0, " Hz");
}

}  // namespace

std::vector<PitchFrame> trackPitch(const Recording &recording, const PitchOptions &options) {
  checkOptions(options, recording.sampleRate);
  Correlator correlator(recording, options);
  if (recording.samples.size() < correlator.span())
    throw UnusableRecording(recording.file,
                            "is too short for a frame of " + std::to_string(correlator.span()) + " samples");
  const double hop = options.hopMs * recording.sampleRate / 1000;
  std::vector<State> states;
  std::vector<PitchFrame> track;
  for (std::size_t frame = 0;; ++frame) {
    const auto start = static_cast<std::size_t>(std::lround(static_cast<double>(frame) * hop));
    if (start + correlator.span() > recording.samples.size()) break;
    states.push_back({correlator.candidates(start), {}, {}});
    PitchFrame result;
    result.seconds =
        (static_cast<double>(start) + static_cast<double>(correlator.span()) / 2) / recording.sampleRate;
    track.push_back(result);
  }
  const auto path = bestPath(states);
  for (std::size_t t = 0; t < track.size(); ++t) {
    const Candidate &chosen = states[t].candidates[path[t]];
    track[t].f0 = chosen.f0;
    track[t].strength = chosen.strength;
  }
  return track;
}

}  // namespace orv
