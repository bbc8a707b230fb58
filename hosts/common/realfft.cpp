#include "common/realfft.h"

#include <kiss_fftr.h>

#include <vector>

#include "common/error.h"

namespace orv {

struct RealFft::Plans {
  struct Release {
    void operator()(kiss_fftr_state *plan) const { kiss_fftr_free(plan); }
  };
  std::unique_ptr<kiss_fftr_state, Release> forward, inverse;
  std::vector<kiss_fft_cpx> bins;
  std::size_t half() const { return bins.size() - 1; }
};

RealFft::~RealFft() = default;
RealFft::RealFft(RealFft &&) noexcept = default;
RealFft &RealFft::operator=(RealFft &&) noexcept = default;

RealFft::RealFft(std::size_t size) : plans_(std::make_unique<Plans>()) {
  plans_->forward.reset(kiss_fftr_alloc(static_cast<int>(size), 0, nullptr, nullptr));
  plans_->inverse.reset(kiss_fftr_alloc(static_cast<int>(size), 1, nullptr, nullptr));
  if (!plans_->forward || !plans_->inverse) throw Error("out of memory");
  plans_->bins.resize(size / 2 + 1);
}

void RealFft::forward(const float *samples, float *packed) {
  Plans &plans = *plans_;
  kiss_fftr(plans.forward.get(), samples, plans.bins.data());
  packed[0] = plans.bins[0].r;
  packed[1] = plans.bins[plans.half()].r;
  for (std::size_t k = 1; k < plans.half(); ++k) {
    packed[2 * k] = plans.bins[k].r;
    packed[2 * k + 1] = plans.bins[k].i;
  }
}

void RealFft::inverse(const float *packed, float *samples) {
  Plans &plans = *plans_;
  const float scale = 0.5f / static_cast<float>(plans.half());
  plans.bins[0] = {scale * packed[0], 0};
  plans.bins[plans.half()] = {scale * packed[1], 0};
  for (std::size_t k = 1; k < plans.half(); ++k)
    plans.bins[k] = {scale * packed[2 * k], scale * packed[2 * k + 1]};
  kiss_fftri(plans.inverse.get(), plans.bins.data(), samples);
}

}  // namespace orv
