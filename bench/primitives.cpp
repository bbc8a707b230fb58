// Internal array routines.

#include "bench/data.h"
#include "bench/ratio.h"
#include "primitives/fft/fft.h"

#if ORV_BENCH_FFTW
#include <fftw3.h>
#endif
#if ORV_BENCH_KISSFFT
#include <kiss_fftr.h>
#endif

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>

#if ORV_BENCH_FFTW
extern "C" int fftwf_have_simd_avx(void);
#endif

namespace orv::bench {
namespace {

// A real signal, and its spectrum: real and imaginary parts in turn, bins 0 to N / 2.
struct Spectrum {
  Array<float> signal, bins;
  explicit Spectrum(int order)
      : signal(uniform<float>(std::size_t{1} << order, -1.0, 1.0, 1)), bins(signal.size() + 2) {}
};

auto oursForward(int order) {
  return [order] {
    OrvRealFftState32f *spec = nullptr;
    std::int32_t size = 0;
    orvsFFTInitAlloc_R_32f(&spec, order, kFftNoDivision, 0);
    orvsFFTGetBufSize_R_32f(spec, &size);
    return [in = Spectrum(order), work = Array<std::uint8_t>(static_cast<std::size_t>(size)),
            state = std::unique_ptr<OrvRealFftState32f, Releaser<orvsFFTFree_R_32f>>(spec)]() mutable {
      orvsFFTFwd_RToCCS_32f(in.signal.data(), in.bins.data(), state.get(), work.data());
    };
  };
}

#if ORV_BENCH_FFTW
bool fftwIsWide = true;

// wide: with the instructions that the processor has; otherwise with those that the library confines itself
// to. Planners know the instructions they were made with, so each kind has a planner and wisdom of its own.
auto fftwForward(int order, bool wide) {
  return [order, wide] {
    static std::string wisdom[2];
    fftwf_cleanup();
    fftwIsWide = wide;
    fftwf_import_wisdom_from_string(wisdom[wide].c_str());
    Spectrum in(order);
    auto *const bins = reinterpret_cast<fftwf_complex *>(in.bins.data());
    fftwf_plan plan = fftwf_plan_dft_r2c_1d(1 << order, in.signal.data(), bins, FFTW_MEASURE);
    char *const learnt = fftwf_export_wisdom_to_string();
    wisdom[wide] = learnt;
    fftwf_free(learnt);
    using Plan = std::unique_ptr<fftwf_plan_s, Releaser<fftwf_destroy_plan>>;
    return [data = std::move(in), owned = Plan(plan)] { fftwf_execute(owned.get()); };
  };
}
#endif

#if ORV_BENCH_KISSFFT
auto kissForward(int order) {
  return [order] {
    using State = std::unique_ptr<kiss_fftr_state, Releaser<free>>;
    return [in = Spectrum(order), state = State(kiss_fftr_alloc(1 << order, 0, nullptr, nullptr))]() mutable {
      kiss_fftr(state.get(), in.signal.data(), reinterpret_cast<kiss_fft_cpx *>(in.bins.data()));
    };
  };
}
#endif

void addForward(int order, [[maybe_unused]] double fftwTarget, [[maybe_unused]] double kissTarget) {
  Case forward("primitives/FFTFwd_RToCCS_32f/" + std::to_string(1 << order));
  forward.ours(oursForward(order));
#if ORV_BENCH_FFTW
  forward.peer("FFTW", fftwTarget, fftwForward(order, true));
  forward.peer("FFTW, SSE2", fftwTarget, fftwForward(order, false));
#else
  forward.absentPeer("FFTW");
#endif
#if ORV_BENCH_KISSFFT
  forward.peer("KISS FFT", kissTarget, kissForward(order));
#else
  forward.absentPeer("KISS FFT");
#endif
}

}  // namespace

void addPrimitiveCases() {
  for (const int order : {8, 9, 10, 12}) addForward(order, 1.0, 4.0);
  addForward(20, 0.6, 0.0);
}

}  // namespace orv::bench

#if ORV_BENCH_FFTW
// Stands in for FFTW's own question to the processor.
int fftwf_have_simd_avx(void) { return orv::bench::fftwIsWide && __builtin_cpu_supports("avx"); }
#endif
