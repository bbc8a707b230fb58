// Mixtures scored by matrix products, as large recognisers do it, beside orvsLogGaussMixture_32f_D2.
//
// With the inverse variances v and the means m of a component, a score is
//
//     constant + sum over j of x[j] (m[j] v[j]) - sum over j of x[j]^2 (v[j] / 2),
//
// that is, for a batch of frames and all components, two products of matrices; a log-sum for each frame
// follows. OpenBLAS is asked for one thread, once with the kernels that suit the processor and once with
// those for SSE2, which is what the library confines itself to.

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "bench/data.h"
#include "bench/openblas.h"
#include "bench/ratio.h"
#include "orvsr/gauss.h"

namespace orv::bench {
namespace {

struct Batch {
  static constexpr std::int32_t len = 39;
  std::int32_t frames, components;
  Array<float> x, mean, var, gconst, result;

  Batch(std::int32_t frameCount, std::int32_t componentCount)
      : frames(frameCount),
        components(componentCount),
        x(uniform<float>(places(frames, len), -2.0, 2.0, 1)),
        mean(uniform<float>(places(components, len), -1.0, 1.0, 2)),
        var(uniform<float>(places(components, len), 0.5, 2.0, 3)),
        gconst(uniform<float>(places(components, 1), -35.0, -25.0, 4)),
        result(places(frames, 1)) {}

  static std::size_t places(std::int32_t a, std::int32_t b) {
    return static_cast<std::size_t>(a) * static_cast<std::size_t>(b);
  }
  void score() {
    for (std::int32_t f = 0; f < frames; ++f)
      orvsLogGaussMixture_32f_D2(&x[places(f, len)], mean.data(), var.data(), components, len, len,
                                 gconst.data(), &result[places(f, 1)]);
  }
};

#if ORV_BENCH_OPENBLAS
struct MatrixForm : Batch {
  Array<float> linear, quadratic, squares, scores;

  MatrixForm(std::int32_t frameCount, std::int32_t componentCount)
      : Batch(frameCount, componentCount),
        linear(mean),
        quadratic(var),
        squares(x.size()),
        scores(places(frames, components)) {
    for (std::int32_t m = 0; m < components; ++m)
      for (std::size_t j = places(m, len); j < places(m + 1, len); ++j) {
        linear[j] = mean[j] * var[j];
        quadratic[j] = -0.5F * var[j];
        gconst[places(m, 1)] -= 0.5F * mean[j] * mean[j] * var[j];
      }
  }

  // scores += frames x matrix', all of them row after row.
  void multiply(const float *frame, const float *matrix) {
    const int inner = len, one = 1;
    const float unchanged = 1;
    if (frames == 1)
      sgemv_("T", &inner, &components, &unchanged, matrix, &inner, frame, &one, &unchanged, scores.data(),
             &one);
    else
      sgemm_("T", "N", &components, &frames, &inner, &unchanged, matrix, &inner, frame, &inner, &unchanged,
             scores.data(), &components);
  }
  // Terms that would not change a sum of single precision are left out, as the library does.
  float logSum(const float *score) const {
    float largest = score[0];
    for (std::int32_t m = 1; m < components; ++m) largest = std::max(largest, score[m]);
    float sum = 0;
    for (std::int32_t m = 0; m < components; ++m)
      if (score[m] - largest >= -15.32F) sum += std::exp(score[m] - largest);
    return largest + std::log(sum);
  }
  void scoreByProducts() {
    for (std::size_t i = 0; i < x.size(); ++i) squares[i] = x[i] * x[i];
    for (std::int32_t f = 0; f < frames; ++f)
      std::copy(gconst.begin(), gconst.end(), &scores[places(f, components)]);
    multiply(x.data(), linear.data());
    multiply(squares.data(), quadratic.data());
    for (std::int32_t f = 0; f < frames; ++f) result[places(f, 1)] = logSum(&scores[places(f, components)]);
  }
};

auto byProducts(std::int32_t frames, std::int32_t components, const char *kernels) {
  return [=] {
    useKernels(kernels);
    return [in = MatrixForm(frames, components)]() mutable { in.scoreByProducts(); };
  };
}
#endif

}  // namespace

void addMatrixFormCases() {
  for (const std::int32_t components : {32, 1024})
    for (const std::int32_t frames : {1, 2, 4, 8, 16, 64, 256}) {
      Case batch("gauss/matrix form/39x" + std::to_string(components), "batch " + std::to_string(frames));
      batch.ours([=] { return [in = Batch(frames, components)]() mutable { in.score(); }; });
#if ORV_BENCH_OPENBLAS
      batch.peer(nameOfKernels("Prescott"), frames == 1 ? 1.0 : 0.0,
                 byProducts(frames, components, "Prescott"));
      batch.peer(nameOfKernels(nullptr), 0.0, byProducts(frames, components, nullptr));
#else
      batch.absentPeer("OpenBLAS");
#endif
    }
}

}  // namespace orv::bench
