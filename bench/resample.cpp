// Sample-rate converters: the library's beside three others, with what each does to tones.

#include "orvsr/resample.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <functional>
#include <map>
#include <memory>
#include <numbers>
#include <string>
#include <vector>

#include "bench/data.h"
#include "bench/ratio.h"

#if ORV_BENCH_SOXR
#include <soxr.h>
#endif
#if ORV_BENCH_SAMPLERATE
#include <samplerate.h>
#endif
#if ORV_BENCH_SPEEX
#include <speex/speex_resampler.h>
#endif

namespace orv::bench {
namespace {

struct Rates {
  std::int32_t from, to;
  double ratio() const { return static_cast<double>(to) / from; }
  double lower() const { return std::min(1.0, ratio()); }  // Nyquist frequency, of the input's
};

struct Step {
  const char *name;
  std::int32_t halfLen;
  double rollOff, attenuation;
  unsigned long soxr;  // the step of each peer that comes nearest
  int samplerate, speex;
};
constexpr Step kFast{"fast", 26, 0.85, 112, 1, 2, 3};
constexpr Step kMedium{"medium", 112, 0.9615, 132, 4, 1, 7};
constexpr Step kBest{"best", 160, 0.971, 140, 6, 0, 10};

// Converts the next samples of a stream, which it carries with it; the number of outputs.
using Stream = std::function<std::size_t(const float *, std::size_t, float *, std::size_t)>;
using Open = std::function<Stream()>;

std::int32_t length(std::size_t n) { return static_cast<std::int32_t>(n); }

Stream openFixed(const Step &step, const Rates &rates) {
  OrvsResampleFixedState_32f *state = nullptr;
  orvsResamplePolyphaseFixedInitAlloc_32f(&state, rates.from, rates.to, step.halfLen, step.rollOff,
                                          step.attenuation);
  const std::shared_ptr<OrvsResampleFixedState_32f> kept(state, orvsResamplePolyphaseFixedFree_32f);
  return [kept](const float *in, std::size_t n, float *out, std::size_t room) {
    std::int32_t consumed = 0, produced = 0;
    orvsResamplePolyphaseFixed_32f(kept.get(), in, length(n), &consumed, out, length(room), &produced,
                                   orvResampleMore);
    return static_cast<std::size_t>(produced);
  };
}

Stream openFree(const Step &step, const Rates &rates) {
  OrvsResampleState_32f *state = nullptr;
  orvsResamplePolyphaseInitAlloc_32f(&state, step.halfLen, step.rollOff, step.attenuation, rates.ratio());
  const std::shared_ptr<OrvsResampleState_32f> kept(state, orvsResamplePolyphaseFree_32f);
  return [kept, rates](const float *in, std::size_t n, float *out, std::size_t room) {
    std::int32_t consumed = 0, produced = 0;
    orvsResamplePolyphase_32f(kept.get(), in, length(n), &consumed, out, length(room), &produced,
                              rates.ratio(), orvResampleMore);
    return static_cast<std::size_t>(produced);
  };
}

// The same filter as a simple loop over buffered samples.
struct Plain {
  std::int32_t phases = 0, taps = 0;
  std::int64_t step = 0, at = 0;  // in phases
  std::vector<float> filter, samples;

  [[gnu::noinline]] std::size_t convert(const float *in, std::size_t n, float *out) {
    samples.insert(samples.end(), in, in + n);
    std::size_t made = 0;
    for (; at / phases + taps <= static_cast<std::int64_t>(samples.size()); at += step) {
      const float *x = samples.data() + at / phases, *h = filter.data() + at % phases * taps;
      float sum = 0.0F;
      for (std::int32_t k = 0; k < taps; ++k) sum += h[k] * x[k];
      out[made++] = sum;
    }
    samples.erase(samples.begin(), samples.begin() + static_cast<std::ptrdiff_t>(at / phases));
    at %= phases;
    return made;
  }
};

Stream openPlain(const Step &step, const Rates &rates) {
  auto plain = std::make_shared<Plain>();
  OrvsResampleFixedState_32f *state = nullptr;
  orvsResamplePolyphaseFixedInitAlloc_32f(&state, rates.from, rates.to, step.halfLen, step.rollOff,
                                          step.attenuation);
  orvsResamplePolyphaseFixedGetFilter_32f(state, nullptr, 0, &plain->phases, &plain->taps);
  plain->filter.resize(static_cast<std::size_t>(plain->phases) * static_cast<std::size_t>(plain->taps));
  orvsResamplePolyphaseFixedGetFilter_32f(state, plain->filter.data(), length(plain->filter.size()),
                                          &plain->phases, &plain->taps);
  orvsResamplePolyphaseFixedFree_32f(state);
  plain->step = std::int64_t{rates.from} * plain->phases / rates.to;
  return
      [plain](const float *in, std::size_t n, float *out, std::size_t) { return plain->convert(in, n, out); };
}

#if ORV_BENCH_SOXR
Stream openSoxr(const Step &step, const Rates &rates) {
  const soxr_io_spec_t io = soxr_io_spec(SOXR_FLOAT32_I, SOXR_FLOAT32_I);
  const soxr_quality_spec_t quality = soxr_quality_spec(step.soxr, 0);
  const std::shared_ptr<std::remove_pointer_t<soxr_t>> kept(
      soxr_create(rates.from, rates.to, 1, nullptr, &io, &quality, nullptr), soxr_delete);
  return [kept](const float *in, std::size_t n, float *out, std::size_t room) {
    std::size_t consumed = 0, produced = 0;
    soxr_process(kept.get(), in, n, &consumed, out, room, &produced);
    return produced;
  };
}
#endif

#if ORV_BENCH_SAMPLERATE
Stream openSamplerate(const Step &step, const Rates &rates) {
  int error = 0;
  const std::shared_ptr<SRC_STATE> kept(src_new(step.samplerate, 1, &error), src_delete);
  return [kept, rates](const float *in, std::size_t n, float *out, std::size_t room) {
    SRC_DATA data{};
    data.data_in = in;
    data.input_frames = static_cast<long>(n);
    data.data_out = out;
    data.output_frames = static_cast<long>(room);
    data.src_ratio = rates.ratio();
    src_process(kept.get(), &data);
    return static_cast<std::size_t>(data.output_frames_gen);
  };
}
#endif

#if ORV_BENCH_SPEEX
Stream openSpeex(const Step &step, const Rates &rates) {
  int error = 0;
  const std::shared_ptr<SpeexResamplerState> kept(
      speex_resampler_init(1, static_cast<spx_uint32_t>(rates.from), static_cast<spx_uint32_t>(rates.to),
                           step.speex, &error),
      speex_resampler_destroy);
  return [kept](const float *in, std::size_t n, float *out, std::size_t room) {
    auto consumed = static_cast<spx_uint32_t>(n), produced = static_cast<spx_uint32_t>(room);
    speex_resampler_process_float(kept.get(), 0, in, &consumed, out, &produced);
    return static_cast<std::size_t>(produced);
  };
}
#endif

// --- what a converter does to tones

std::vector<float> responseTo(const Open &open, const Rates &rates, double omega) {
  std::vector<float> in(static_cast<std::size_t>(3000 / rates.lower()));
  for (std::size_t n = 0; n < in.size(); ++n)
    in[n] = static_cast<float>(std::cos(omega * static_cast<double>(n)));
  std::vector<float> out(static_cast<std::size_t>(static_cast<double>(in.size()) * rates.ratio()) + 100);
  const Stream stream = open();
  std::size_t made = 0;
  for (std::size_t at = 0; at < in.size(); at += 500)
    made += stream(in.data() + at, std::min<std::size_t>(500, in.size() - at), out.data() + made,
                   out.size() - made);
  // Without what the beginning of the tone does.
  out.resize(made);
  out.erase(out.begin(), out.begin() + static_cast<std::ptrdiff_t>(made / 3));
  return out;
}

struct Response {
  double gain, rest;  // amplitudes of the tone, and of all that is not the tone
};

Response split(const std::vector<float> &out, double omega) {
  double cc = 0, cs = 0, ss = 0, yc = 0, ys = 0, yy = 0;
  for (std::size_t m = 0; m < out.size(); ++m) {
    const double c = std::cos(omega * static_cast<double>(m)), s = std::sin(omega * static_cast<double>(m)),
                 y = out[m];
    cc += c * c;
    cs += c * s;
    ss += s * s;
    yc += y * c;
    ys += y * s;
    yy += y * y;
  }
  const double det = cc * ss - cs * cs, a = (yc * ss - ys * cs) / det, b = (ys * cc - yc * cs) / det;
  double rest = 0;
  for (std::size_t m = 0; m < out.size(); ++m) {
    const double e =
        out[m] - a * std::cos(omega * static_cast<double>(m)) - b * std::sin(omega * static_cast<double>(m));
    rest += e * e;
  }
  return {std::hypot(a, b), std::sqrt(2 * rest / static_cast<double>(out.size()))};
}

double decibels(double amplitude) { return 20 * std::log10(amplitude); }

struct Quality {
  double passBand = 0;  // of the lower Nyquist frequency, within 0.01 dB
  double unwanted =
      0;  // the largest amplitude of what is not the tone, and lies within 0.9 of that frequency
};

Quality qualityOf(const Open &open, const Rates &rates) {
  Quality quality;
  bool flat = true;
  for (double f = 0.0313; f < 1; f += f < 0.6 ? 0.0537 : 0.01) {
    const double omega = f * rates.lower() * std::numbers::pi;
    const Response response = split(responseTo(open, rates, omega), omega / rates.ratio());
    flat = flat && std::fabs(decibels(response.gain)) < 0.01;
    if (flat) quality.passBand = f;
    if (f < 0.9) quality.unwanted = std::max(quality.unwanted, response.rest);
  }
  // Tones that a lower rate cannot hold, and that would come back below 0.9 of its Nyquist frequency.
  for (double f = 1.1; f * rates.lower() < 1; f += f < 1.5 ? 0.021 : 0.29) {
    const double folded = std::fabs(std::remainder(f, 2.0));
    if (folded > 0.9) continue;
    const Response response = split(responseTo(open, rates, f * rates.lower() * std::numbers::pi), 1.0);
    quality.unwanted = std::max(quality.unwanted, std::hypot(response.gain, response.rest));
  }
  return quality;
}

// --- cases

constexpr std::size_t kSamples = 8192;

struct Contender {
  std::string caseName, name;
  Rates rates;
  Open open;
};
std::vector<Contender> &contenders() {
  static std::vector<Contender> all;
  return all;
}
// Which contenders were run: the others are not measured either.
std::map<std::size_t, bool> &wereRun() {
  static std::map<std::size_t, bool> all;
  return all;
}

struct Work {
  Stream stream;
  Array<float> in = uniform<float>(kSamples, -1, 1, 1);
  Array<float> out = Array<float>(kSamples * 3);
};

auto converting(const std::string &caseName, const char *name, const Rates &rates, Open open) {
  contenders().push_back({caseName, name, rates, open});
  const std::size_t number = contenders().size() - 1;
  return [number, open] {
    wereRun()[number] = true;
    auto work = std::make_shared<Work>();
    work->stream = open();
    return [work] { work->stream(work->in.data(), kSamples, work->out.data(), work->out.size()); };
  };
}

void addCase(const std::string &name, const Step &step, const Rates &rates, bool free) {
  Case c("resample/" + name + "/" + step.name);
  const auto with = [&](const char *peer, auto open) {
    return converting("resample/" + name + "/" + step.name, peer, rates, [=] { return open(step, rates); });
  };
  c.ours(free ? with("ours", openFree) : with("ours", openFixed));
  if (!free) c.peer("plain scalar", 3.0, with("plain scalar", openPlain));
#if ORV_BENCH_SOXR
  c.peer("libsoxr", 1.0, with("libsoxr", openSoxr));
#else
  c.absentPeer("libsoxr");
#endif
#if ORV_BENCH_SAMPLERATE
  c.peer("libsamplerate", 1.0, with("libsamplerate", openSamplerate));
#else
  c.absentPeer("libsamplerate");
#endif
#if ORV_BENCH_SPEEX
  c.peer("speexdsp", 1.0, with("speexdsp", openSpeex));
#else
  c.absentPeer("speexdsp");
#endif
}

}  // namespace

void addResampleCases() {
  for (const Step &step : {kFast, kMedium, kBest}) addCase("44100-48000", step, {44100, 48000}, false);
  for (const Rates &rates : {Rates{48000, 16000}, {16000, 8000}, {8000, 16000}, {44100, 8000}})
    addCase(std::to_string(rates.from) + "-" + std::to_string(rates.to), kMedium, rates, false);
  for (const Step &step : {kFast, kMedium, kBest}) addCase("any, 0.9173", step, {10000, 9173}, true);
}

void printResampleQuality() {
  if (wereRun().empty()) return;
  std::printf("\n%-28s %-14s %12s  %20s  %22s\n", "case", "", "outputs/s", "flat to, of Nyquist",
              "images and aliases");
  for (const auto &[number, run] : wereRun()) {
    const Contender &c = contenders()[number];
    const Quality quality = qualityOf(c.open, c.rates);
    // The least of a few times: the table above compares, this tells the size.
    Work work;
    work.stream = c.open();
    double least = 1e9;
    for (int i = 0; i < 10; ++i) {
      const auto start = std::chrono::steady_clock::now();
      work.stream(work.in.data(), kSamples, work.out.data(), work.out.size());
      least =
          std::min(least, std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
    }
    std::printf("%-28s %-14s %10.2f M  %20.3f  %19.1f dB\n", c.caseName.c_str(), c.name.c_str(),
                static_cast<double>(kSamples) * c.rates.ratio() / least / 1e6, quality.passBand,
                decibels(quality.unwanted));
  }
}

}  // namespace orv::bench
