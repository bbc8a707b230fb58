// Speech in noise: the noise tracker and its gains, the filters, wave processing.

#include "orvsr/robust.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <type_traits>
#include <vector>

#include "bench/data.h"
#include "bench/ratio.h"

namespace orv::bench {
namespace {

// --- tracker: 257 bins, 64 different frames in turn, with bursts in some of them

constexpr std::int32_t kLen = 512;
constexpr std::size_t kBins = 257, kFrames = 64;

template <class T>
struct Frames {
  std::vector<Array<T>> powers;
  std::size_t next = 0;
  Array<T> noise = Array<T>(kBins);

  Frames() {
    for (unsigned f = 0; f < kFrames; ++f) {
      powers.push_back(uniform<T>(kBins, 0.0, 1e6, f));
      for (std::size_t k = f % 7; k < kBins; k += 7) powers.back()[k] *= 50;
    }
  }
  const Array<T> &frame() { return powers[next++ % kFrames]; }
};

template <class T>
struct Tracked : Frames<T> {
  Array<std::uint8_t> memory = Array<std::uint8_t>(104 + 16 * kLen / 2);
  McraState *state() { return reinterpret_cast<McraState *>(memory.data()); }
};

template <class T>
struct Plain : Frames<T> {
  std::int32_t window = 125, pos = 0;
  T alphaD, alphaP, alphaS;
  Array<T> s = Array<T>(kBins), least = Array<T>(kBins), next = Array<T>(kBins), p = Array<T>(kBins);
};

template <class T, class Bin>
inline void plainBins(Plain<T> &in, Bin bin) {
  const bool ends = in.pos == in.window;
  const Array<T> &power = in.frame();
  for (std::size_t k = 0; k < kBins; ++k) bin(ends, power[k], k);
  in.pos = ends ? 1 : in.pos + 1;
}

[[gnu::noinline]] void plainUpdate(Plain<float> &in) {
  plainBins(in, [&in](bool ends, float power, std::size_t k) {
    const float s = in.s[k] = in.alphaS * in.s[k] + (1 - in.alphaS) * power;
    in.least[k] = std::min(s, ends ? in.next[k] : in.least[k]);
    in.next[k] = ends ? s : std::min(s, in.next[k]);
    float p = in.alphaP * in.p[k];
    if (s > 5 * in.least[k]) p += 1 - in.alphaP;
    in.p[k] = p;
    const float a = in.alphaD + (1 - in.alphaD) * p;
    in.noise[k] = a * in.noise[k] + (1 - a) * power;
  });
}

[[gnu::noinline]] void plainUpdate(Plain<std::int32_t> &in) {
  constexpr std::int64_t one = 2147483647;
  plainBins(in, [&in](bool ends, std::int32_t power, std::size_t k) {
    const auto s = in.s[k] =
        static_cast<std::int32_t>((std::int64_t{in.alphaS} * in.s[k] + power * (one - in.alphaS)) >> 31);
    in.least[k] = std::min(s, ends ? in.next[k] : in.least[k]);
    in.next[k] = ends ? s : std::min(s, in.next[k]);
    auto p = static_cast<std::int32_t>(static_cast<double>(in.p[k]) * in.alphaP * 0x1p-31);
    if (s > std::min(2147483647.0, in.least[k] * 5.0)) p += static_cast<std::int32_t>(one - in.alphaP);
    in.p[k] = p;
    const double a = in.alphaD + p * static_cast<double>(one - in.alphaD) * 0x1p-31;
    in.noise[k] = static_cast<std::int32_t>((in.noise[k] * a + (2147483647.0 - a) * power) * 0x1p-31);
  });
}

// --- gains: 257 bins

[[gnu::noinline]] void plainWiener(const Array<float> &x, Array<float> &gains) {
  for (std::size_t k = 0; k < x.size(); ++k) gains[k] = std::max(x[k], 0.0F) / (1 + std::max(x[k], 0.0F));
}

// The formula with its special functions.
[[gnu::noinline]] void plainAmplitude(const Array<float> &wiener, const Array<float> &snr,
                                      Array<float> &gains) {
  for (std::size_t k = 0; k < wiener.size(); ++k) {
    const double v = std::max(1e-4, static_cast<double>(wiener[k] * snr[k]));
    gains[k] =
        static_cast<float>(wiener[k] * 0.886226925452758 / std::sqrt(v) * std::exp(-v / 2) *
                           ((1 + v) * std::cyl_bessel_i(0.0, v / 2) + v * std::cyl_bessel_i(1.0, v / 2)));
  }
}

void addNoiseTracking() {
  Case("robust/UpdateNoisePSDMCRA_32f/257")
      .ours([] {
        auto in = std::make_shared<Tracked<float>>();
        orvsInitMCRA_32f(16000, kLen, in->state());
        return [in] { orvsUpdateNoisePSDMCRA_32f_I(in->frame().data(), in->state(), in->noise.data()); };
      })
      .peer("plain scalar", 3.0, [] {
        Plain<float> in;
        in.alphaD = 0.49F, in.alphaP = 0.04F, in.alphaS = 0.64F;
        return [in]() mutable { plainUpdate(in); };
      });
  Case("robust/UpdateNoisePSDMCRA_32s/257")
      .ours([] {
        auto in = std::make_shared<Tracked<std::int32_t>>();
        orvsInitMCRA_32s(16000, kLen, in->state());
        return [in] { orvsUpdateNoisePSDMCRA_32s_I(in->frame().data(), in->state(), in->noise.data()); };
      })
      .peer("plain scalar", 3.0, [] {
        Plain<std::int32_t> in;
        in.alphaD = 1052266987, in.alphaP = 85899346, in.alphaS = 1374389534;
        return [in]() mutable { plainUpdate(in); };
      });
  Case("robust/FilterUpdateWiener_32f/257")
      .ours([] {
        return [x = uniform<float>(kBins, 0.0, 30.0, 1), gains = Array<float>(kBins)]() mutable {
          orvsFilterUpdateWiener_32f(x.data(), gains.data(), static_cast<std::int32_t>(kBins));
        };
      })
      .peer("plain scalar", 1.0, [] {
        return [x = uniform<float>(kBins, 0.0, 30.0, 1), gains = Array<float>(kBins)]() mutable {
          plainWiener(x, gains);
        };
      });
  Case("robust/FilterUpdateEMNS_32f/257")
      .ours([] {
        return [h = uniform<float>(kBins, 0.0, 1.0, 1), snr = uniform<float>(kBins, 0.0, 20.0, 2),
                gains = Array<float>(kBins)]() mutable {
          orvsFilterUpdateEMNS_32f(h.data(), snr.data(), gains.data(), static_cast<std::int32_t>(kBins));
        };
      })
      .peer("the formula", 10.0, [] {
        return [h = uniform<float>(kBins, 0.0, 1.0, 1), snr = uniform<float>(kBins, 0.0, 20.0, 2),
                gains = Array<float>(kBins)]() mutable { plainAmplitude(h, snr, gains); };
      });
}

// --- residual filter: a frame of 80 samples, 17 taps

template <class T>
struct Frame {
  Array<T> src, dst = Array<T>(80), taps;
  Frame() : src(uniform<T>(96, -3000.0, 3000.0, 1)), taps(uniform<T>(17, -900.0, 900.0, 2)) {}
};

[[gnu::noinline]] void plainFilter(Frame<float> &in) {
  for (std::size_t n = 0; n < 80; ++n) {
    float sum = 0.0F;
    for (std::size_t k = 0; k < 17; ++k) sum += in.src[n + k] * in.taps[k];
    in.dst[n] = sum;
  }
}

constexpr std::int32_t kFilterScale = 12;

std::int16_t scaled(std::int64_t sum) {
  return static_cast<std::int16_t>(std::clamp<std::int64_t>(sum >> kFilterScale, INT16_MIN, INT16_MAX));
}

[[gnu::noinline]] void plainFilter(Frame<std::int16_t> &in) {
  for (std::size_t n = 0; n < 80; ++n) {
    std::int64_t sum = 0;
    for (std::size_t k = 0; k < 17; ++k) sum += in.src[n + k] * in.taps[k];
    in.dst[n] = scaled(sum);
  }
}

// --- band split: a frame shift of 160 samples, 118 taps

template <class T>
struct Bands {
  static constexpr std::int32_t len = 160, tapLen = 118;
  Array<T> src, taps, low = Array<T>(len / 2), high = Array<T>(len / 2);
  Bands() : src(uniform<T>(len + tapLen, -3000.0, 3000.0, 1)), taps(uniform<T>(tapLen, -900.0, 900.0, 2)) {}
};

template <class Sum, class T, class Finish>
inline void plainSplit(Bands<T> &in, std::size_t tapLen, Finish finish) {
  for (std::size_t i = 0; i < in.low.size(); ++i) {
    Sum low = 0, high = 0, sign = i % 2 != 0 ? 1 : -1;
    for (std::size_t k = 0; k < tapLen; ++k, sign = -sign) {
      low += Sum{in.src[2 * i + k]} * in.taps[k];
      high += Sum{in.src[2 * i + k]} * in.taps[k] * sign;
    }
    in.low[i] = finish(low);
    in.high[i] = finish(high);
  }
}

[[gnu::noinline]] void plainSplit32f(Bands<float> &in, std::size_t tapLen) {
  plainSplit<float>(in, tapLen, [](float sum) { return sum; });
}
[[gnu::noinline]] void plainSplit16s(Bands<std::int16_t> &in, std::size_t tapLen) {
  plainSplit<std::int64_t>(in, tapLen, scaled);
}

// --- wave processing: 200 samples, 32 different voiced frames in turn

template <class T>
struct Waves {
  std::vector<Array<T>> frames;
  std::size_t next = 0;
  Array<T> dst = Array<T>(200);

  Waves() {
    for (unsigned f = 0; f < 32; ++f) {
      frames.push_back(uniform<T>(200, -100.0, 100.0, f));
      for (std::size_t i = 0; i < 200; ++i)
        frames.back()[i] += static_cast<T>(3000 * std::exp(-0.1 * static_cast<double>((i + f) % (30 + f))) *
                                           std::cos(0.9 * static_cast<double>(i)));
    }
  }
  const Array<T> &frame() { return frames[next++ % frames.size()]; }
};

template <class E>
std::size_t plainLargest(const E *s, std::size_t from, std::size_t len) {
  std::size_t best = from;
  for (std::size_t i = from + 1; i < from + len; ++i)
    if (s[i] > s[best]) best = i;
  return best;
}

// Energies are of type E, sums of them too; part(d) of a period is raised.
template <class E, class T, class Part, class Weigh>
inline void plainWave(Waves<T> &in, std::array<std::type_identity_t<T>, 3> weights, Part part, Weigh weigh) {
  const Array<T> &x = in.frame();
  E e[200], s[200];
  e[0] = std::abs(E{x[0]} * (x[0] - x[1]));
  for (std::size_t i = 1; i < 199; ++i) e[i] = std::abs(E{x[i]} * x[i] - E{x[i - 1]} * x[i + 1]);
  e[199] = std::abs(E{x[199]} * (x[199] - x[198]));
  const auto at = [&e](int i) { return e[std::clamp(i, 0, 199)]; };
  E sum = 0;
  for (int i = -4; i <= 4; ++i) sum += at(i);
  s[0] = sum;
  for (int i = 1; i < 200; ++i) {
    sum += at(i + 4) - at(i - 5);
    s[i] = sum;
  }
  std::size_t peaks[16], count = 8, first = 8;
  peaks[8] = plainLargest(s, 0, 200);
  for (std::size_t c = peaks[8]; c < 175; peaks[++count] = c)
    c = plainLargest(s, c + 25, std::min<std::size_t>(55, 175 - c));
  for (std::size_t c = peaks[8]; c > 25; peaks[--first] = c) {
    const std::size_t w = std::min<std::size_t>(c, 79) - 24;
    c = plainLargest(s, c - w - 24, w);
  }
  T w[200];
  std::fill(w, w + 200, weights[0]);
  for (std::size_t i = first; i <= count; ++i) {
    const std::size_t period = i < count ? peaks[i + 1] - peaks[i] : peaks[i] - peaks[i - 1];
    const std::size_t a = peaks[i] < 4 ? 0 : peaks[i] - 4;
    const std::size_t z = std::min<std::size_t>(peaks[i] + part(period) - 4, 200);
    for (std::size_t k = a; k < z; ++k) w[k] = weights[2];
    if (a > 0) w[a - 1] = w[a] = weights[1];
    if (z < 200) w[z - 1] = w[z] = weights[1];
  }
  for (std::size_t i = 0; i < 200; ++i) in.dst[i] = weigh(x[i], w[i]);
}

[[gnu::noinline]] void plainWaves(Waves<float> &in) {
  plainWave<float>(
      in, {0.8F, 1.0F, 1.2F},
      [](std::size_t d) { return static_cast<std::size_t>(static_cast<float>(d) * 0.8F); },
      [](float x, float w) { return x * w; });
}

[[gnu::noinline]] void plainWaves(Waves<std::int16_t> &in) {
  plainWave<std::int32_t>(
      in, {27, 32, 38}, [](std::size_t d) { return d * 27 >> 5; },
      [](int x, int w) {
        const int p = x * w;
        return static_cast<std::int16_t>(std::clamp((p + 15 + (p >> 5 & 1)) >> 5, INT16_MIN, INT16_MAX));
      });
}

template <class Data, class Work>
auto on(Work work) {
  return [work] { return [work, in = Data()]() mutable { work(in); }; };
}

void addFilters() {
  Case("robust/ResidualFilter_Aurora_32f")
      .ours(on<Frame<float>>([](Frame<float> &in) {
        orvsResidualFilter_Aurora_32f(in.src.data(), in.dst.data(), in.taps.data());
      }))
      .peer("plain scalar", 4.0, on<Frame<float>>([](Frame<float> &in) { plainFilter(in); }));
  Case("robust/ResidualFilter_Aurora_16s_Sfs")
      .ours(on<Frame<std::int16_t>>([](Frame<std::int16_t> &in) {
        orvsResidualFilter_Aurora_16s_Sfs(in.src.data(), in.dst.data(), in.taps.data(), kFilterScale);
      }))
      .peer("plain scalar", 4.0, on<Frame<std::int16_t>>([](Frame<std::int16_t> &in) { plainFilter(in); }));
  Case("robust/LowHighFilter_Aurora_32f/160/118")
      .ours(on<Bands<float>>([](Bands<float> &in) {
        orvsLowHighFilter_Aurora_32f(in.src.data(), in.low.data(), in.high.data(), in.len, in.taps.data(),
                                     in.tapLen);
      }))
      .peer("plain scalar", 3.0,
            on<Bands<float>>([](Bands<float> &in) { plainSplit32f(in, in.taps.size()); }));
  Case("robust/LowHighFilter_Aurora_16s_Sfs/160/118")
      .ours(on<Bands<std::int16_t>>([](Bands<std::int16_t> &in) {
        orvsLowHighFilter_Aurora_16s_Sfs(in.src.data(), in.low.data(), in.high.data(), in.len, in.taps.data(),
                                         in.tapLen, kFilterScale);
      }))
      .peer("plain scalar", 3.0,
            on<Bands<std::int16_t>>([](Bands<std::int16_t> &in) { plainSplit16s(in, in.taps.size()); }));
  Case("robust/WaveProcessing_Aurora_32f")
      .ours(on<Waves<float>>(
          [](Waves<float> &in) { orvsWaveProcessing_Aurora_32f(in.frame().data(), in.dst.data()); }))
      .peer("plain scalar", 2.0, on<Waves<float>>([](Waves<float> &in) { plainWaves(in); }));
  Case("robust/WaveProcessing_Aurora_16s")
      .ours(on<Waves<std::int16_t>>(
          [](Waves<std::int16_t> &in) { orvsWaveProcessing_Aurora_16s(in.frame().data(), in.dst.data()); }))
      .peer("plain scalar", 2.0, on<Waves<std::int16_t>>([](Waves<std::int16_t> &in) { plainWaves(in); }));
}

}  // namespace

void addRobustCases() {
  addNoiseTracking();
  addFilters();
}

}  // namespace orv::bench
