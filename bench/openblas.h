// OpenBLAS on one thread, with the kernels that suit the processor or with those of another: those for SSE2
// alone are what the library confines itself to.
//
// It is called by its Fortran names; those of its C interface belong to GSL here.

#ifndef ORV_BENCH_OPENBLAS_H
#define ORV_BENCH_OPENBLAS_H

#if ORV_BENCH_OPENBLAS
#include <cstdlib>
#include <string>

extern "C" {
void sgemm_(const char *, const char *, const int *, const int *, const int *, const float *, const float *,
            const int *, const float *, const int *, const float *, float *, const int *);
void sgemv_(const char *, const int *, const int *, const float *, const float *, const int *, const float *,
            const int *, const float *, float *, const int *);
void dgesvd_(const char *, const char *, const int *, const int *, double *, const int *, double *, double *,
             const int *, double *, const int *, double *, const int *, int *);
void openblas_set_num_threads(int);
char *openblas_get_corename(void);
// The kernels in use, and how OpenBLAS chooses them at its start.
extern void *gotoblas;
void gotoblas_dynamic_init(void);
}

namespace orv::bench {

inline constexpr const char *kNativeKernels = nullptr;
inline constexpr const char *kSse2Kernels = "Prescott";

inline void useKernels(const char *name) {
  if (name == nullptr)
    unsetenv("OPENBLAS_CORETYPE");
  else
    setenv("OPENBLAS_CORETYPE", name, 1);
  gotoblas = nullptr;
  gotoblas_dynamic_init();
  openblas_set_num_threads(1);
}

// As OpenBLAS itself names them.
inline std::string nameOfKernels(const char *name) {
  useKernels(name);
  return openblas_get_corename();
}

}  // namespace orv::bench
#endif

#endif
