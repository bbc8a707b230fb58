// Gaussian scoring: many frames against one Gaussian.

#include "bench/scoring.h"

namespace orv::bench {
namespace {

using Integer = std::int16_t;

// What members take after their rows: of real numbers, of integers that are shifted, and of integers that are
// scaled.

template <class T>
auto others(Scoring<T, T> &in, List<const T *, const T *, std::int32_t, T *, std::int32_t, T>) {
  return std::tuple(in.vectors.data(), in.weights.data(), in.size.len, in.results.data(), in.size.rows,
                    in.constants[0]);
}
template <class T>
auto others(Scoring<T, T> &in, List<const T *, std::int32_t, T *, std::int32_t, T>) {
  return std::tuple(in.vectors.data(), in.size.len, in.results.data(), in.size.rows, in.constants[0]);
}
// Without a constant.
template <class T>
auto others(Scoring<T, T> &in, List<const T *, const T *, std::int32_t, T *, std::int32_t>) {
  return std::tuple(in.vectors.data(), in.weights.data(), in.size.len, in.results.data(), in.size.rows);
}

using Shifted = Scoring<Integer, std::int32_t>;
auto others(Shifted &in, List<const Integer *, const Integer *, std::int32_t, std::int32_t *, std::int32_t,
                              std::int32_t, std::int32_t>) {
  return std::tuple(in.vectors.data(), in.weights.data(), in.size.len, in.results.data(), in.size.rows,
                    in.constants[0], kScaleFactor);
}
auto others(Shifted &in,
            List<const Integer *, std::int32_t, std::int32_t *, std::int32_t, std::int32_t, std::int32_t>) {
  return std::tuple(in.vectors.data(), in.size.len, in.results.data(), in.size.rows, in.constants[0],
                    kScaleFactor);
}

using Scaled = Scoring<Integer, float>;
auto others(
    Scaled &in,
    List<const Integer *, const Integer *, std::int32_t, float *, std::int32_t, std::int32_t, float>) {
  return std::tuple(in.vectors.data(), in.weights.data(), in.size.len, in.results.data(), in.size.rows,
                    kScaleFactor, in.constants[0]);
}
auto others(Scaled &in, List<const Integer *, std::int32_t, float *, std::int32_t, std::int32_t, float>) {
  return std::tuple(in.vectors.data(), in.size.len, in.results.data(), in.size.rows, kScaleFactor,
                    in.constants[0]);
}

template <class T, class R, class... Others>
constexpr Weights weightsOf(List<const T *, const T *, std::int32_t, R *, Others...>) {
  return Weights::times;
}
template <class T, class R, class... Others>
constexpr Weights weightsOf(List<const T *, std::int32_t, R *, Others...>) {
  return Weights::none;
}
template <class T, class R, class... Others>
R resultOf(List<const T *, const T *, std::int32_t, R *, Others...>);
template <class T, class R, class... Others>
R resultOf(List<const T *, std::int32_t, R *, Others...>);

template <Then then, class T, class... Others>
void add(const char *name, OrvStatus (*strided)(const T *, std::int32_t, Others...),
         OrvStatus (*pointers)(const T *const *, Others...)) {
  using Rest = List<Others...>;
  using R = decltype(resultOf(Rest{}));
  addMember<Family{weightsOf(Rest{}), false, then}, T, R>(
      name,
      [strided](Scoring<T, R> &in) {
        call(strided, std::tuple(in.rows.data(), in.size.len), others(in, Rest{}));
      },
      [pointers](Scoring<T, R> &in) { call(pointers, std::tuple(in.rowPointers()), others(in, Rest{})); });
}

}  // namespace

void addGaussFrameCases() {
  using enum Then;
  add<store>("LogGauss_32f_D2", orvsLogGauss_32f_D2, orvsLogGauss_32f_D2L);
  add<store>("LogGauss_64f_D2", orvsLogGauss_64f_D2, orvsLogGauss_64f_D2L);
  add<store>("LogGauss_16s32s_D2Sfs", orvsLogGauss_16s32s_D2Sfs, orvsLogGauss_16s32s_D2LSfs);
  add<store>("LogGauss_Low_16s32s_D2Sfs", orvsLogGauss_Low_16s32s_D2Sfs, orvsLogGauss_Low_16s32s_D2LSfs);
  add<store>("LogGauss_Scaled_16s32f_D2", orvsLogGauss_Scaled_16s32f_D2, orvsLogGauss_Scaled_16s32f_D2L);
  add<store>("LogGauss_LowScaled_16s32f_D2", orvsLogGauss_LowScaled_16s32f_D2,
             orvsLogGauss_LowScaled_16s32f_D2L);
  add<store>("LogGauss_IdVar_32f_D2", orvsLogGauss_IdVar_32f_D2, orvsLogGauss_IdVar_32f_D2L);
  add<store>("LogGauss_IdVar_64f_D2", orvsLogGauss_IdVar_64f_D2, orvsLogGauss_IdVar_64f_D2L);
  add<store>("LogGauss_IdVar_16s32s_D2Sfs", orvsLogGauss_IdVar_16s32s_D2Sfs,
             orvsLogGauss_IdVar_16s32s_D2LSfs);
  add<store>("LogGauss_IdVarLow_16s32s_D2Sfs", orvsLogGauss_IdVarLow_16s32s_D2Sfs,
             orvsLogGauss_IdVarLow_16s32s_D2LSfs);
  add<store>("LogGauss_IdVarScaled_16s32f_D2", orvsLogGauss_IdVarScaled_16s32f_D2,
             orvsLogGauss_IdVarScaled_16s32f_D2L);
  add<store>("LogGauss_IdVarLowScaled_16s32f_D2", orvsLogGauss_IdVarLowScaled_16s32f_D2,
             orvsLogGauss_IdVarLowScaled_16s32f_D2L);

  add<keepMaximum>("LogGaussMax_32f_D2", orvsLogGaussMax_32f_D2, orvsLogGaussMax_32f_D2L);
  add<keepMaximum>("LogGaussMax_64f_D2", orvsLogGaussMax_64f_D2, orvsLogGaussMax_64f_D2L);
  add<keepMaximum>("LogGaussMax_16s32s_D2Sfs", orvsLogGaussMax_16s32s_D2Sfs, orvsLogGaussMax_16s32s_D2LSfs);
  add<keepMaximum>("LogGaussMax_Low_16s32s_D2Sfs", orvsLogGaussMax_Low_16s32s_D2Sfs,
                   orvsLogGaussMax_Low_16s32s_D2LSfs);
  add<keepMaximum>("LogGaussMax_Scaled_16s32f_D2", orvsLogGaussMax_Scaled_16s32f_D2,
                   orvsLogGaussMax_Scaled_16s32f_D2L);
  add<keepMaximum>("LogGaussMax_LowScaled_16s32f_D2", orvsLogGaussMax_LowScaled_16s32f_D2,
                   orvsLogGaussMax_LowScaled_16s32f_D2L);
  add<keepMaximum>("LogGaussMax_IdVar_32f_D2", orvsLogGaussMax_IdVar_32f_D2, orvsLogGaussMax_IdVar_32f_D2L);
  add<keepMaximum>("LogGaussMax_IdVar_64f_D2", orvsLogGaussMax_IdVar_64f_D2, orvsLogGaussMax_IdVar_64f_D2L);
  add<keepMaximum>("LogGaussMax_IdVar_16s32s_D2Sfs", orvsLogGaussMax_IdVar_16s32s_D2Sfs,
                   orvsLogGaussMax_IdVar_16s32s_D2LSfs);
  add<keepMaximum>("LogGaussMax_IdVarLow_16s32s_D2Sfs", orvsLogGaussMax_IdVarLow_16s32s_D2Sfs,
                   orvsLogGaussMax_IdVarLow_16s32s_D2LSfs);
  add<keepMaximum>("LogGaussMax_IdVarScaled_16s32f_D2", orvsLogGaussMax_IdVarScaled_16s32f_D2,
                   orvsLogGaussMax_IdVarScaled_16s32f_D2L);
  add<keepMaximum>("LogGaussMax_IdVarLowScaled_16s32f_D2", orvsLogGaussMax_IdVarLowScaled_16s32f_D2,
                   orvsLogGaussMax_IdVarLowScaled_16s32f_D2L);

  add<addLog>("LogGaussAdd_32f_D2", orvsLogGaussAdd_32f_D2, orvsLogGaussAdd_32f_D2L);
  add<addLog>("LogGaussAdd_64f_D2", orvsLogGaussAdd_64f_D2, orvsLogGaussAdd_64f_D2L);
  add<addLog>("LogGaussAdd_Scaled_16s32f_D2", orvsLogGaussAdd_Scaled_16s32f_D2,
              orvsLogGaussAdd_Scaled_16s32f_D2L);
  add<addLog>("LogGaussAdd_LowScaled_16s32f_D2", orvsLogGaussAdd_LowScaled_16s32f_D2,
              orvsLogGaussAdd_LowScaled_16s32f_D2L);
  add<addLog>("LogGaussAdd_IdVar_32f_D2", orvsLogGaussAdd_IdVar_32f_D2, orvsLogGaussAdd_IdVar_32f_D2L);
  add<addLog>("LogGaussAdd_IdVar_64f_D2", orvsLogGaussAdd_IdVar_64f_D2, orvsLogGaussAdd_IdVar_64f_D2L);
  add<addLog>("LogGaussAdd_IdVarScaled_16s32f_D2", orvsLogGaussAdd_IdVarScaled_16s32f_D2,
              orvsLogGaussAdd_IdVarScaled_16s32f_D2L);
  add<addLog>("LogGaussAdd_IdVarLowScaled_16s32f_D2", orvsLogGaussAdd_IdVarLowScaled_16s32f_D2,
              orvsLogGaussAdd_IdVarLowScaled_16s32f_D2L);

  add<store>("MahDist_32f_D2", orvsMahDist_32f_D2, orvsMahDist_32f_D2L);
  add<store>("MahDist_64f_D2", orvsMahDist_64f_D2, orvsMahDist_64f_D2L);
}

}  // namespace orv::bench
