// Singular value decomposition, beside the same method of GSL and the one of LAPACK.

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "bench/data.h"
#include "bench/openblas.h"
#include "bench/ratio.h"
#include "orvsr/matrix.h"

#if ORV_BENCH_GSL
#include <gsl/gsl_linalg.h>
#endif

namespace orv::bench {
namespace {

// A square matrix and what it is decomposed into. Every contender begins with a copy.
struct Decomposed {
  std::int32_t n;
  Array<double> a, u, v, w, work;

  explicit Decomposed(std::int32_t size)
      : n(size),
        a(uniform<double>(square(), -1.0, 1.0, 1)),
        u(square()),
        v(square()),
        w(static_cast<std::size_t>(n)),
        work(square() + 16 * static_cast<std::size_t>(n)) {}

  std::size_t square() const { return static_cast<std::size_t>(n) * static_cast<std::size_t>(n); }

  void ours() { orvsSVD_64f_D2(a.data(), u.data(), n, w.data(), v.data(), n, n, 30); }

#if ORV_BENCH_GSL
  void byGsl() {
    const auto size = static_cast<std::size_t>(n);
    u = a;
    auto left = gsl_matrix_view_array(u.data(), size, size);
    auto right = gsl_matrix_view_array(v.data(), size, size);
    auto values = gsl_vector_view_array(w.data(), size);
    auto room = gsl_vector_view_array(work.data(), size);
    gsl_linalg_SV_decomp(&left.matrix, &right.matrix, &values.vector, &room.vector);
  }
#endif
#if ORV_BENCH_OPENBLAS
  void byLapack() {
    Array<double> copy = a;
    const auto room = static_cast<int>(work.size());
    int status = 0;
    dgesvd_("S", "S", &n, &n, copy.data(), &n, w.data(), u.data(), &n, v.data(), &n, work.data(), &room,
            &status);
  }
#endif
};

template <class Work>
auto decomposed(std::int32_t n, Work work) {
  return [=] { return [work, in = Decomposed(n)]() mutable { work(in); }; };
}
#if ORV_BENCH_OPENBLAS
auto byLapack(std::int32_t n, const char *kernels) {
  return [=] {
    useKernels(kernels);
    return [in = Decomposed(n)]() mutable { in.byLapack(); };
  };
}
#endif

}  // namespace

void addSvdCases() {
  struct Aim {
    std::int32_t size;
    double gsl;
  };
  for (const auto &[n, gslTarget] : {Aim{39, 1.2}, Aim{128, 3.0}, Aim{384, 5.0}}) {
    Case svd("matrix/SVD_64f_D2/" + std::to_string(n));
    if (n > 128) svd.repetitions(9);
    svd.ours(decomposed(n, [](Decomposed &in) { in.ours(); }));
#if ORV_BENCH_GSL
    svd.peer("GSL", gslTarget, decomposed(n, [](Decomposed &in) { in.byGsl(); }));
#else
    svd.absentPeer("GSL");
#endif
#if ORV_BENCH_OPENBLAS
    svd.peer("dgesvd, " + nameOfKernels(kSse2Kernels), 1.0, byLapack(n, kSse2Kernels));
    svd.peer("dgesvd, " + nameOfKernels(kNativeKernels), 1.0, byLapack(n, kNativeKernels));
#else
    svd.absentPeer("dgesvd");
#endif
  }
}

}  // namespace orv::bench
