// Speech in noise: the noise tracker and its gains.

#include "orvsr/robust.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <memory>
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

}  // namespace

void addRobustCases() { addNoiseTracking(); }

}  // namespace orv::bench
