// Linear prediction, correlation and frame measures of the front end.

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>

#include "bench/data.h"
#include "bench/ratio.h"
#include "orvsr/frontend.h"
#include "primitives/autocorr.h"

#if ORV_BENCH_FFTW
#include <fftw3.h>
#endif

namespace orv::bench {
namespace {

// --- linear prediction of a frame

struct Frame {
  std::int32_t len, order;
  Array<float> x, a, r;
  Frame(std::int32_t length, std::int32_t lpOrder)
      : len(length),
        order(lpOrder),
        x(uniform<float>(static_cast<std::size_t>(length), -1.0, 1.0, 1)),
        a(static_cast<std::size_t>(lpOrder)),
        r(static_cast<std::size_t>(lpOrder) + 1) {}
};

[[gnu::noinline]] void plainPrediction(Frame &in) {
  const auto at = [](std::int32_t i) { return static_cast<std::size_t>(i); };
  for (std::int32_t k = 0; k <= in.order; ++k) {
    float sum = 0;
    for (std::int32_t i = 0; i + k < in.len; ++i) sum += in.x[at(i)] * in.x[at(i + k)];
    in.r[at(k)] = sum;
  }
  float e = in.r[0];
  float last[64];
  for (std::int32_t m = 1; m <= in.order; ++m) {
    float s = in.r[at(m)];
    for (std::int32_t j = 1; j < m; ++j) s += in.r[at(m - j)] * in.a[at(j - 1)];
    const float k = s / e;
    e *= 1 - k * k;
    for (std::int32_t i = 0; i < m - 1; ++i) last[i] = in.a[at(i)];
    for (std::int32_t i = 0; i < m - 1; ++i) in.a[at(i)] = last[i] - last[m - 2 - i] * k;
    in.a[at(m - 1)] = -k;
  }
}

auto predicted(std::int32_t len, std::int32_t order, void (*work)(Frame &)) {
  return [=] { return [work, in = Frame(len, order)]() mutable { work(in); }; };
}

void oursPrediction(Frame &in) { orvsLinearPrediction_Auto_32f(in.x.data(), in.len, in.a.data(), in.order); }

// --- autocorrelation of a long signal

struct LongSignal {
  static constexpr std::int32_t len = 16384, lags = 1024;
  Array<float> x = uniform<float>(len, -1.0, 1.0, 1);
  Array<float> r = Array<float>(lags);
};

#if ORV_BENCH_FFTW
// The same through FFTW with measured plans, which are made before the measurement. Ours builds and releases
// its object within the call, so this peer has the advantage.
struct PlannedSignal : LongSignal {
  static constexpr int n = 2 * len;
  Array<float> padded = Array<float>(n), spectrum = Array<float>(n + 2);
  fftwf_plan forward, inverse;

  PlannedSignal() {
    auto *bins = reinterpret_cast<fftwf_complex *>(spectrum.data());
    forward = fftwf_plan_dft_r2c_1d(n, padded.data(), bins, FFTW_MEASURE);
    inverse = fftwf_plan_dft_c2r_1d(n, bins, padded.data(), FFTW_MEASURE);
  }
  void run() {
    for (std::size_t i = 0; i < x.size(); ++i) padded[i] = x[i];
    for (std::size_t i = x.size(); i < padded.size(); ++i) padded[i] = 0;
    fftwf_execute(forward);
    for (std::size_t k = 0; k + 1 < spectrum.size(); k += 2) {
      spectrum[k] = spectrum[k] * spectrum[k] + spectrum[k + 1] * spectrum[k + 1];
      spectrum[k + 1] = 0;
    }
    fftwf_execute(inverse);
    for (std::size_t k = 0; k < r.size(); ++k) r[k] = padded[k] * (1.0F / n);
  }
};
#endif

// --- two frames of 20 ms at 16 kHz

struct Pair {
  static constexpr std::int32_t len = 320;
  Array<std::int16_t> x = uniform<std::int16_t>(len, -20000.0, 20000.0, 1);
  Array<std::int16_t> y = uniform<std::int16_t>(len, -20000.0, 20000.0, 2);
  float result = 0;
};

[[gnu::noinline]] void plainCorrelation(Pair &in) {
  double xx = 0, yy = 0, xy = 0;
  for (std::size_t i = 0; i < in.x.size(); ++i) {
    xx += in.x[i] * in.x[i];
    yy += in.y[i] * in.y[i];
    xy += in.x[i] * in.y[i];
  }
  in.result = static_cast<float>(xy / (std::sqrt(xx) * std::sqrt(yy)));
}

// --- measures of a frame

struct Samples {
  static constexpr std::int32_t len = 400;
  Array<float> x = uniform<float>(len, -1.0, 3.0, 1), y = Array<float>(len);
  Array<std::int16_t> s = uniform<std::int16_t>(len, -20000.0, 20000.0, 2);
  float rate = 0;
  std::int32_t count = 0;
};

[[gnu::noinline]] void plainSignChanges(Samples &in) {
  float count = 0;
  for (std::size_t i = 0; i + 1 < in.x.size(); ++i)
    if (in.x[i + 1] * in.x[i] < 0) count += 1;
  in.rate = count;
}
[[gnu::noinline]] void plainHalves(Samples &in) {
  const auto sign = [](float v) { return v > 0 ? 1.0F : v < 0 ? -1.0F : 0.0F; };
  float sum = 0;
  for (std::size_t i = 0; i + 1 < in.x.size(); ++i) sum += std::fabs(sign(in.x[i + 1]) - sign(in.x[i]));
  in.rate = sum * 0.5F;
}
[[gnu::noinline]] void plainUnitCurve(Samples &in) {
  for (std::size_t i = 0; i < in.x.size(); ++i) {
    const float x = in.x[i];
    if (x < 0)
      in.y[i] = 0;
    else if (x < 1)
      in.y[i] = x * x;
    else if (x <= 2)
      in.y[i] = 2 - (2 - x) * (2 - x);
    else
      in.y[i] = 2;
  }
}
[[gnu::noinline]] void plainRange(Samples &in) {
  float least = in.x[0], most = in.x[0];
  for (const float x : in.x) {
    least = x < least ? x : least;
    most = x > most ? x : most;
  }
  const float width = most - least, low = least + 0.1F * width, high = 0.9F * width + least;
  const float scale = 100 / (0.9F * width - 0.1F * width);
  for (std::size_t i = 0; i < in.x.size(); ++i) {
    const float v = (in.x[i] < high ? in.x[i] : high) - low;
    in.y[i] = (v > 0 ? v : 0) * scale;
  }
}

template <class Data, class Work>
auto on(Work work) {
  return [work] { return [work, in = Data()]() mutable { work(in); }; };
}

}  // namespace

void addAnalysisCases() {
  for (const auto &[len, order] : {std::pair{240, 10}, {400, 16}})
    Case("frontend/LinearPrediction_Auto_32f/" + std::to_string(len) + "/" + std::to_string(order))
        .ours(predicted(len, order, oursPrediction))
        .peer("plain scalar", 4.0, predicted(len, order, plainPrediction));
  Case lags("primitives/AutoCorr_32f/16384/1024");
  lags.ours(
      on<LongSignal>([](LongSignal &in) { orvsAutoCorr_32f(in.x.data(), in.len, in.r.data(), in.lags); }));
#if ORV_BENCH_FFTW
  lags.peer("FFTW", 0.8, on<PlannedSignal>([](PlannedSignal &in) { in.run(); }));
#else
  lags.absentPeer("FFTW");
#endif
  Case("frontend/CrossCorrCoeff_16s32f/320")
      .ours(
          on<Pair>([](Pair &in) { orvsCrossCorrCoeff_16s32f(in.x.data(), in.y.data(), in.len, &in.result); }))
      .peer("plain scalar", 3.0, on<Pair>(plainCorrelation));
  Case("frontend/SignChangeRate_32f/400")
      .ours(on<Samples>([](Samples &in) { orvsSignChangeRate_32f(in.x.data(), in.len, &in.rate); }))
      .peer("plain scalar", 3.0, on<Samples>(plainSignChanges));
  Case("frontend/SignChangeRate_Count0_32f/400")
      .ours(on<Samples>([](Samples &in) { orvsSignChangeRate_Count0_32f(in.x.data(), in.len, &in.rate); }))
      .peer("plain scalar", 3.0, on<Samples>(plainHalves));
  Case("frontend/UnitCurve_32f/400")
      .ours(on<Samples>([](Samples &in) { orvsUnitCurve_32f(in.x.data(), in.y.data(), in.len); }))
      .peer("plain scalar", 3.0, on<Samples>(plainUnitCurve));
  Case("frontend/NormalizeInRange_32f/400")
      .ours(on<Samples>(
          [](Samples &in) { orvsNormalizeInRange_32f(in.x.data(), in.y.data(), in.len, 0.1F, 0.9F, 100); }))
      .peer("plain scalar", 3.0, on<Samples>(plainRange));
}

}  // namespace orv::bench
