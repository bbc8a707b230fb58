// The discrete Fourier transform of real samples.

#ifndef ORV_HOSTS_COMMON_REALFFT_H
#define ORV_HOSTS_COMMON_REALFFT_H

#include <cstddef>
#include <memory>

namespace orv {

// A spectrum is packed into as many values as there are samples: the real parts of bin 0 and of the bin at
// half the sampling rate, then real and imaginary part of bin 1, of bin 2 and so on, unscaled.
//
// A transform reuses its buffers; a thread needs one of its own.
class RealFft {
 public:
  // size is even. Throws Error if memory runs out.
  explicit RealFft(std::size_t size);
  ~RealFft();
  RealFft(RealFft &&) noexcept;
  RealFft &operator=(RealFft &&) noexcept;

  void forward(const float *samples, float *packed);
  // The samples that forward() takes to this spectrum.
  void inverse(const float *packed, float *samples);

 private:
  struct Plans;
  std::unique_ptr<Plans> plans_;
};

}  // namespace orv

#endif
