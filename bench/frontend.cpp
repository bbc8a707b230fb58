// The stages of the feature chain that are not transforms.

#include "orvsr/frontend.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <numbers>
#include <vector>

#include "bench/data.h"
#include "bench/ratio.h"

namespace orv::bench {
namespace {

// --- filter bank: 24 bands over the 129 bins of a frame at 8 kHz

struct FilterBank {
  static constexpr std::int32_t bands = 24, bins = 129;
  std::unique_ptr<OrvsFBankState_32f, Releaser<orvsFBankFree_32f>> bank;
  std::vector<std::int32_t> centers = std::vector<std::int32_t>(bands + 2);
  std::vector<std::vector<float>> weights = std::vector<std::vector<float>>(bands);
  Array<float> spectrum = uniform<float>(bins, 0.0, 1.0, 1);
  Array<float> energies = Array<float>(bands);

  FilterBank() {
    OrvsFBankState_32f *built = nullptr;
    std::int32_t order = 0;
    orvsMelFBankInitAlloc_32f(&built, &order, 200, 8000.0F, 64.0F, 4000.0F, bands, 1127.0F, 700.0F,
                              orvFBankMelWeights);
    bank.reset(built);
    orvsFBankGetCenters_32f(built, centers.data());
    for (std::size_t b = 0; b < weights.size(); ++b) {
      weights[b].resize(static_cast<std::size_t>(centers[b + 2] - centers[b] + 1));
      orvsFBankGetCoeffs_32f(built, static_cast<std::int32_t>(b + 1), weights[b].data());
    }
  }
};

[[gnu::noinline]] void plainFilterBank(FilterBank &in) {
  for (std::size_t b = 0; b < in.weights.size(); ++b) {
    float sum = 0.0F;
    for (std::size_t k = 0; k < in.weights[b].size(); ++k)
      sum += in.weights[b][k] * in.spectrum[static_cast<std::size_t>(in.centers[b]) + k];
    in.energies[b] = sum;
  }
}

// --- cosine transform: 24 bands to C0 and 12 cepstra

struct Cepstrum {
  static constexpr std::int32_t bands = 24, cepstra = 12;
  std::unique_ptr<OrvsDCTLifterState_32f, Releaser<orvsDCTLifterFree_32f>> lifter;
  Array<float> matrix = Array<float>(bands * (cepstra + 1));
  Array<float> energies = uniform<float>(bands, 0.0, 20.0, 1);
  Array<float> values = Array<float>(cepstra + 1);

  Cepstrum() {
    OrvsDCTLifterState_32f *built = nullptr;
    orvsDCTLifterInitAlloc_C0_32f(&built, bands, cepstra, 22, 1.0F, 1.0F);
    lifter.reset(built);
    for (int i = 0; i <= cepstra; ++i)
      for (int k = 0; k < bands; ++k)
        matrix[static_cast<std::size_t>(i * bands + k)] =
            static_cast<float>(std::cos(std::numbers::pi * i * (k + 0.5) / bands) *
                               (1 + 11 * std::sin(std::numbers::pi * i / 22)));
  }
};

[[gnu::noinline]] void plainCepstrum(Cepstrum &in, std::size_t bands) {
  for (std::size_t i = 0; i < in.values.size(); ++i) {
    float sum = 0.0F;
    for (std::size_t k = 0; k < bands; ++k) sum += in.matrix[i * bands + k] * in.energies[k];
    in.values[i] = sum;
  }
}

// --- delta and acceleration: 100 frames of 13 values

struct Deltas {
  static constexpr std::int32_t width = 13, height = 100, step = 40;
  Array<float> statics = uniform<float>(width * height, -10.0, 10.0, 1);
  Array<float> rows = Array<float>(step * height);
};

void deltaColumn(float *to, const float *from, std::int32_t step, std::int32_t height, std::int32_t t) {
  const auto at = [&](std::int32_t r) { return from[step * (r < 0 ? 0 : r >= height ? height - 1 : r)]; };
  *to = (at(t + 1) - at(t - 1) + 2 * (at(t + 2) - at(t - 2))) * 0.1F;
}

[[gnu::noinline]] void plainDeltas(Deltas &in, std::int32_t width, std::int32_t step) {
  for (std::int32_t t = 0; t < in.height; ++t)
    for (std::int32_t j = 0; j < width; ++j)
      in.rows[static_cast<std::size_t>(t * step + j)] = in.statics[static_cast<std::size_t>(t * width + j)];
  for (std::int32_t from = 0; from < 2 * width; from += width)
    for (std::int32_t t = 0; t < in.height; ++t)
      for (std::int32_t j = from; j < from + width; ++j)
        deltaColumn(&in.rows[static_cast<std::size_t>(t * step + width + j)],
                    &in.rows[static_cast<std::size_t>(j)], step, in.height, t);
}

template <class Data, class Work>
auto on(Work work) {
  return [work] { return [work, in = Data()]() mutable { work(in); }; };
}

}  // namespace

void addFrontendCases() {
  Case("frontend/EvalFBank_32f/24")
      .ours(on<FilterBank>(
          [](FilterBank &in) { orvsEvalFBank_32f(in.spectrum.data(), in.energies.data(), in.bank.get()); }))
      .peer("plain scalar", 0.0, on<FilterBank>(plainFilterBank));
  Case("frontend/DCTLifter_32f/24x13")
      .ours(on<Cepstrum>(
          [](Cepstrum &in) { orvsDCTLifter_32f(in.energies.data(), in.values.data(), in.lifter.get()); }))
      .peer("plain scalar", 0.0, on<Cepstrum>([](Cepstrum &in) { plainCepstrum(in, in.energies.size()); }));
  Case("frontend/DeltaDelta_Win2_32f_D2/13")
      .ours(on<Deltas>([](Deltas &in) {
        orvsDeltaDelta_Win2_32f_D2(in.statics.data(), in.width, in.rows.data(), in.step, in.height, 0.1F,
                                   0.1F, orvDeltaBegin | orvDeltaEnd);
      }))
      .peer("plain scalar", 0.0, on<Deltas>([](Deltas &in) { plainDeltas(in, in.width, in.step); }));
}

}  // namespace orv::bench
