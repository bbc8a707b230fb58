// Gaussian scoring: many frames against one Gaussian.

#include "bench/scoring.h"

namespace orv::bench {
namespace {

// Members by their arguments: of real numbers, of integers that are shifted, and of integers that are scaled.

template <Then then, class T>
void add(const char *name, OrvStatus (*member)(const T *, std::int32_t, const T *, const T *, std::int32_t,
                                               T *, std::int32_t, T)) {
  addMember<Family{Weights::times, false, then}, T, T>(name, [member](Scoring<T, T> &in) {
    member(in.rows.data(), in.size.len, in.vectors.data(), in.weights.data(), in.size.len, in.results.data(),
           in.size.rows, in.constants[0]);
  });
}
template <Then then, class T>
void add(const char *name,
         OrvStatus (*member)(const T *, std::int32_t, const T *, std::int32_t, T *, std::int32_t, T)) {
  addMember<Family{Weights::none, false, then}, T, T>(name, [member](Scoring<T, T> &in) {
    member(in.rows.data(), in.size.len, in.vectors.data(), in.size.len, in.results.data(), in.size.rows,
           in.constants[0]);
  });
}
// Without a constant.
template <Then then, class T>
void add(const char *name, OrvStatus (*member)(const T *, std::int32_t, const T *, const T *, std::int32_t,
                                               T *, std::int32_t)) {
  addMember<Family{Weights::times, false, then}, T, T>(name, [member](Scoring<T, T> &in) {
    member(in.rows.data(), in.size.len, in.vectors.data(), in.weights.data(), in.size.len, in.results.data(),
           in.size.rows);
  });
}

using Integer = std::int16_t;

template <Then then>
void add(const char *name,
         OrvStatus (*member)(const Integer *, std::int32_t, const Integer *, const Integer *, std::int32_t,
                             std::int32_t *, std::int32_t, std::int32_t, std::int32_t)) {
  addMember<Family{Weights::times, false, then}, Integer, std::int32_t>(
      name, [member](Scoring<Integer, std::int32_t> &in) {
        member(in.rows.data(), in.size.len, in.vectors.data(), in.weights.data(), in.size.len,
               in.results.data(), in.size.rows, in.constants[0], kScaleFactor);
      });
}
template <Then then>
void add(const char *name, OrvStatus (*member)(const Integer *, std::int32_t, const Integer *, std::int32_t,
                                               std::int32_t *, std::int32_t, std::int32_t, std::int32_t)) {
  addMember<Family{Weights::none, false, then}, Integer, std::int32_t>(
      name, [member](Scoring<Integer, std::int32_t> &in) {
        member(in.rows.data(), in.size.len, in.vectors.data(), in.size.len, in.results.data(), in.size.rows,
               in.constants[0], kScaleFactor);
      });
}
template <Then then>
void add(const char *name,
         OrvStatus (*member)(const Integer *, std::int32_t, const Integer *, const Integer *, std::int32_t,
                             float *, std::int32_t, std::int32_t, float)) {
  addMember<Family{Weights::times, false, then}, Integer, float>(name, [member](Scoring<Integer, float> &in) {
    member(in.rows.data(), in.size.len, in.vectors.data(), in.weights.data(), in.size.len, in.results.data(),
           in.size.rows, kScaleFactor, in.constants[0]);
  });
}
template <Then then>
void add(const char *name, OrvStatus (*member)(const Integer *, std::int32_t, const Integer *, std::int32_t,
                                               float *, std::int32_t, std::int32_t, float)) {
  addMember<Family{Weights::none, false, then}, Integer, float>(name, [member](Scoring<Integer, float> &in) {
    member(in.rows.data(), in.size.len, in.vectors.data(), in.size.len, in.results.data(), in.size.rows,
           kScaleFactor, in.constants[0]);
  });
}

}  // namespace

void addGaussFrameCases() {
  using enum Then;
  add<store>("LogGauss_32f_D2", orvsLogGauss_32f_D2);
  add<store>("LogGauss_64f_D2", orvsLogGauss_64f_D2);
  add<store>("LogGauss_16s32s_D2Sfs", orvsLogGauss_16s32s_D2Sfs);
  add<store>("LogGauss_Low_16s32s_D2Sfs", orvsLogGauss_Low_16s32s_D2Sfs);
  add<store>("LogGauss_Scaled_16s32f_D2", orvsLogGauss_Scaled_16s32f_D2);
  add<store>("LogGauss_LowScaled_16s32f_D2", orvsLogGauss_LowScaled_16s32f_D2);
  add<store>("LogGauss_IdVar_32f_D2", orvsLogGauss_IdVar_32f_D2);
  add<store>("LogGauss_IdVar_64f_D2", orvsLogGauss_IdVar_64f_D2);
  add<store>("LogGauss_IdVar_16s32s_D2Sfs", orvsLogGauss_IdVar_16s32s_D2Sfs);
  add<store>("LogGauss_IdVarLow_16s32s_D2Sfs", orvsLogGauss_IdVarLow_16s32s_D2Sfs);
  add<store>("LogGauss_IdVarScaled_16s32f_D2", orvsLogGauss_IdVarScaled_16s32f_D2);
  add<store>("LogGauss_IdVarLowScaled_16s32f_D2", orvsLogGauss_IdVarLowScaled_16s32f_D2);

  add<keepMaximum>("LogGaussMax_32f_D2", orvsLogGaussMax_32f_D2);
  add<keepMaximum>("LogGaussMax_64f_D2", orvsLogGaussMax_64f_D2);
  add<keepMaximum>("LogGaussMax_16s32s_D2Sfs", orvsLogGaussMax_16s32s_D2Sfs);
  add<keepMaximum>("LogGaussMax_Low_16s32s_D2Sfs", orvsLogGaussMax_Low_16s32s_D2Sfs);
  add<keepMaximum>("LogGaussMax_Scaled_16s32f_D2", orvsLogGaussMax_Scaled_16s32f_D2);
  add<keepMaximum>("LogGaussMax_LowScaled_16s32f_D2", orvsLogGaussMax_LowScaled_16s32f_D2);
  add<keepMaximum>("LogGaussMax_IdVar_32f_D2", orvsLogGaussMax_IdVar_32f_D2);
  add<keepMaximum>("LogGaussMax_IdVar_64f_D2", orvsLogGaussMax_IdVar_64f_D2);
  add<keepMaximum>("LogGaussMax_IdVar_16s32s_D2Sfs", orvsLogGaussMax_IdVar_16s32s_D2Sfs);
  add<keepMaximum>("LogGaussMax_IdVarLow_16s32s_D2Sfs", orvsLogGaussMax_IdVarLow_16s32s_D2Sfs);
  add<keepMaximum>("LogGaussMax_IdVarScaled_16s32f_D2", orvsLogGaussMax_IdVarScaled_16s32f_D2);
  add<keepMaximum>("LogGaussMax_IdVarLowScaled_16s32f_D2", orvsLogGaussMax_IdVarLowScaled_16s32f_D2);

  add<addLog>("LogGaussAdd_32f_D2", orvsLogGaussAdd_32f_D2);
  add<addLog>("LogGaussAdd_64f_D2", orvsLogGaussAdd_64f_D2);
  add<addLog>("LogGaussAdd_Scaled_16s32f_D2", orvsLogGaussAdd_Scaled_16s32f_D2);
  add<addLog>("LogGaussAdd_LowScaled_16s32f_D2", orvsLogGaussAdd_LowScaled_16s32f_D2);
  add<addLog>("LogGaussAdd_IdVar_32f_D2", orvsLogGaussAdd_IdVar_32f_D2);
  add<addLog>("LogGaussAdd_IdVar_64f_D2", orvsLogGaussAdd_IdVar_64f_D2);
  add<addLog>("LogGaussAdd_IdVarScaled_16s32f_D2", orvsLogGaussAdd_IdVarScaled_16s32f_D2);
  add<addLog>("LogGaussAdd_IdVarLowScaled_16s32f_D2", orvsLogGaussAdd_IdVarLowScaled_16s32f_D2);

  add<store>("MahDist_32f_D2", orvsMahDist_32f_D2);
  add<store>("MahDist_64f_D2", orvsMahDist_64f_D2);
}

}  // namespace orv::bench
