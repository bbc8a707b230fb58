// Gaussian scoring: one vector under one Gaussian. The rows of a case are that many calls.

#include <memory>
#include <utility>
#include <vector>

#include "bench/scoring.h"
#include "orvsr/matrix.h"

namespace orv::bench {
namespace {

// Calls of single(row, vector, weights, len, result), for each row.
template <class T, class R, class Single>
auto calls(Size size, Single single) {
  return [size, single] {
    return [single, in = Scoring<T, R>(size)]() mutable {
      for (std::int32_t r = 0; r < in.size.rows; ++r)
        single(in.row(r), in.vectors.data(), in.weightsOf(r), in.size.len,
               &in.results[static_cast<std::size_t>(r)]);
    };
  };
}

template <Weights weights, class T, class R>
[[gnu::noinline]] void singlePlainly(const T *x, const T *mean, const T *w, std::int32_t len, R *result) {
  if constexpr (weights == Weights::divided)
    for (std::int32_t j = 0; j < len; ++j)
      if (w[j] == 0) return;
  // Real quotients are formed in double.
  using S = std::conditional_t<weights == Weights::divided && std::is_floating_point_v<T>, double, SumOf<R>>;
  const S sum = PlainSum::sum<S, weights>(x, mean, w, len);
  *result = static_cast<R>(scoreOf<T, R>(static_cast<SumOf<R>>(sum), R{-30}, scoreFactor<T, R>()));
}

// No ratio is asked of these: a sum of 39 values is a chain of some twenty additions in a stated order.
template <Weights weights, class T, class R, class Ours>
void add(const char *name, Ours ours) {
  for (const Size size : kSizes)
    if (!std::is_same_v<R, double> || size.isMain())
      Case(std::string("gauss/") + name, size.text())
          .ours(calls<T, R>(size, ours))
          .peer("plain scalar", 0.0, calls<T, R>(size, singlePlainly<weights, T, R>));
}

// Members by their arguments.

template <Weights weights, class T, class R>
void addReal(const char *name, OrvStatus (*member)(const T *, const T *, const T *, std::int32_t, R *, R)) {
  add<weights, T, R>(name, [member](const T *x, const T *mean, const T *w, std::int32_t len, R *result) {
    member(x, mean, w, len, result, -30);
  });
}
template <class T, class R>
void addUnweighted(const char *name, OrvStatus (*member)(const T *, const T *, std::int32_t, R *, R)) {
  add<Weights::none, T, R>(name, [member](const T *x, const T *mean, const T *, std::int32_t len, R *result) {
    member(x, mean, len, result, -30);
  });
}

using Integer = std::int16_t;

template <Weights weights>
void addInteger(const char *name,
                OrvStatus (*member)(const Integer *, const Integer *, const Integer *, std::int32_t,
                                    std::int32_t *, std::int32_t, std::int32_t)) {
  add<weights, Integer, std::int32_t>(
      name, [member](const Integer *x, const Integer *mean, const Integer *w, std::int32_t len,
                     std::int32_t *result) { member(x, mean, w, len, result, -30, kScaleFactor); });
}
template <Weights weights>
void addInteger(const char *name, OrvStatus (*member)(const Integer *, const Integer *, const Integer *,
                                                      std::int32_t, float *, std::int32_t, float)) {
  add<weights, Integer, float>(
      name, [member](const Integer *x, const Integer *mean, const Integer *w, std::int32_t len,
                     float *result) { member(x, mean, w, len, result, kScaleFactor, -30); });
}
void addInteger(const char *name, OrvStatus (*member)(const Integer *, const Integer *, std::int32_t,
                                                      std::int32_t *, std::int32_t, std::int32_t)) {
  add<Weights::none, Integer, std::int32_t>(
      name, [member](const Integer *x, const Integer *mean, const Integer *, std::int32_t len,
                     std::int32_t *result) { member(x, mean, len, result, -30, kScaleFactor); });
}
void addInteger(const char *name, OrvStatus (*member)(const Integer *, const Integer *, std::int32_t, float *,
                                                      std::int32_t, float)) {
  add<Weights::none, Integer, float>(
      name, [member](const Integer *x, const Integer *mean, const Integer *, std::int32_t len,
                     float *result) { member(x, mean, len, result, kScaleFactor, -30); });
}

// --- block-diagonal inverse covariances: blocks of 13 or 20

template <class T, class Matrix>
struct Blocks {
  std::int32_t size;
  Array<T> values;
  std::shared_ptr<Matrix> matrix;

  template <class Make, class Release>
  Blocks(std::int32_t len, Make make, Release release)
      : size(len % 13 == 0 ? 13 : 20), values(uniform<T>(static_cast<std::size_t>(len * size), -2, 2, 5)) {
    std::vector<const T *> rows;
    for (std::int32_t r = 0; r < len; ++r) rows.push_back(&values[static_cast<std::size_t>(r * size)]);
    const std::vector<std::int32_t> sizes(static_cast<std::size_t>(len / size), size);
    Matrix *made = nullptr;
    make(&made, rows.data(), sizes.data(), static_cast<std::int32_t>(sizes.size()));
    matrix.reset(made, release);
  }

  template <class R>
  [[gnu::noinline]] void scorePlainly(const T *x, const T *mean, std::int32_t len, R *result) const {
    SumOf<R> sum = 0;
    for (std::int32_t first = 0; first < len; first += size)
      for (std::int32_t r = first; r < first + size; ++r) {
        SumOf<R> product = 0;
        for (std::int32_t c = 0; c < size; ++c)
          product += static_cast<SumOf<R>>(values[static_cast<std::size_t>(r * size + c)]) *
                     static_cast<SumOf<R>>(x[first + c] - mean[first + c]);
        sum += product * static_cast<SumOf<R>>(x[r] - mean[r]);
      }
    *result = scoreOf<T, R>(sum, -30, scoreFactor<T, R>());
  }
};

template <class T, class R, class Matrix, class Make, class Release, class Score>
void addBlocks(const char *name, Make make, Release release, Score score) {
  for (const Size size : kSizes) {
    if (std::is_same_v<R, double> && !size.isMain()) continue;
    const Blocks<T, Matrix> blocks(size.len, make, release);
    Case(std::string("gauss/") + name, size.text())
        .ours(calls<T, R>(size, [=](const T *x, const T *mean, const T *, std::int32_t len,
                                    R *result) { score(x, mean, blocks.matrix.get(), len, result); }))
        .peer("plain scalar", 0.0,
              calls<T, R>(size, [=](const T *x, const T *mean, const T *, std::int32_t len, R *result) {
                blocks.scorePlainly(x, mean, len, result);
              }));
  }
}

void addBlockDiagonal() {
  addBlocks<float, float, OrvBlockDMatrix_32f>(
      "LogGaussSingle_BlockDVar_32f", orvsBlockDMatrixInitAlloc_32f, orvsBlockDMatrixFree_32f,
      [](auto... arguments) { orvsLogGaussSingle_BlockDVar_32f(arguments..., -30); });
  addBlocks<float, double, OrvBlockDMatrix_32f>(
      "LogGaussSingle_BlockDVar_32f64f", orvsBlockDMatrixInitAlloc_32f, orvsBlockDMatrixFree_32f,
      [](auto... arguments) { orvsLogGaussSingle_BlockDVar_32f64f(arguments..., -30); });
  addBlocks<double, double, OrvBlockDMatrix_64f>(
      "LogGaussSingle_BlockDVar_64f", orvsBlockDMatrixInitAlloc_64f, orvsBlockDMatrixFree_64f,
      [](auto... arguments) { orvsLogGaussSingle_BlockDVar_64f(arguments..., -30); });
  addBlocks<Integer, std::int32_t, OrvBlockDMatrix_16s>(
      "LogGaussSingle_BlockDVar_16s32s_Sfs", orvsBlockDMatrixInitAlloc_16s, orvsBlockDMatrixFree_16s,
      [](auto... arguments) { orvsLogGaussSingle_BlockDVar_16s32s_Sfs(arguments..., -30, kScaleFactor); });
  addBlocks<Integer, float, OrvBlockDMatrix_16s>(
      "LogGaussSingle_BlockDVarScaled_16s32f", orvsBlockDMatrixInitAlloc_16s, orvsBlockDMatrixFree_16s,
      [](auto... arguments) { orvsLogGaussSingle_BlockDVarScaled_16s32f(arguments..., kScaleFactor, -30); });
}

void addDistances() {
  add<Weights::times, float, float>("MahDistSingle_32f",
                                    [](auto... arguments) { orvsMahDistSingle_32f(arguments...); });
  add<Weights::times, float, double>("MahDistSingle_32f64f",
                                     [](auto... arguments) { orvsMahDistSingle_32f64f(arguments...); });
  add<Weights::times, double, double>("MahDistSingle_64f",
                                      [](auto... arguments) { orvsMahDistSingle_64f(arguments...); });
  add<Weights::times, Integer, float>("MahDistSingle_16s32f",
                                      [](auto... arguments) { orvsMahDistSingle_16s32f(arguments...); });
  add<Weights::times, Integer, std::int32_t>("MahDistSingle_16s32s_Sfs", [](auto... arguments) {
    orvsMahDistSingle_16s32s_Sfs(arguments..., kScaleFactor);
  });
}

}  // namespace

void addGaussSingleCases() {
  constexpr Weights times = Weights::times, divided = Weights::divided;
  addReal<times>("LogGaussSingle_32f", orvsLogGaussSingle_32f);
  addReal<times>("LogGaussSingle_32f64f", orvsLogGaussSingle_32f64f);
  addReal<times>("LogGaussSingle_64f", orvsLogGaussSingle_64f);
  addInteger<times>("LogGaussSingle_16s32s_Sfs", orvsLogGaussSingle_16s32s_Sfs);
  addInteger<times>("LogGaussSingle_Low_16s32s_Sfs", orvsLogGaussSingle_Low_16s32s_Sfs);
  addInteger<times>("LogGaussSingle_Scaled_16s32f", orvsLogGaussSingle_Scaled_16s32f);
  addInteger<times>("LogGaussSingle_LowScaled_16s32f", orvsLogGaussSingle_LowScaled_16s32f);

  addUnweighted("LogGaussSingle_IdVar_32f", orvsLogGaussSingle_IdVar_32f);
  addUnweighted("LogGaussSingle_IdVar_32f64f", orvsLogGaussSingle_IdVar_32f64f);
  addUnweighted("LogGaussSingle_IdVar_64f", orvsLogGaussSingle_IdVar_64f);
  addInteger("LogGaussSingle_IdVar_16s32s_Sfs", orvsLogGaussSingle_IdVar_16s32s_Sfs);
  addInteger("LogGaussSingle_IdVarLow_16s32s_Sfs", orvsLogGaussSingle_IdVarLow_16s32s_Sfs);
  addInteger("LogGaussSingle_IdVarScaled_16s32f", orvsLogGaussSingle_IdVarScaled_16s32f);
  addInteger("LogGaussSingle_IdVarLowScaled_16s32f", orvsLogGaussSingle_IdVarLowScaled_16s32f);

  addReal<divided>("LogGaussSingle_DirectVar_32f", orvsLogGaussSingle_DirectVar_32f);
  addReal<divided>("LogGaussSingle_DirectVar_32f64f", orvsLogGaussSingle_DirectVar_32f64f);
  addReal<divided>("LogGaussSingle_DirectVar_64f", orvsLogGaussSingle_DirectVar_64f);
  addInteger<divided>("LogGaussSingle_DirectVar_16s32s_Sfs", orvsLogGaussSingle_DirectVar_16s32s_Sfs);
  addInteger<divided>("LogGaussSingle_DirectVarScaled_16s32f", orvsLogGaussSingle_DirectVarScaled_16s32f);

  addBlockDiagonal();
  addDistances();
}

}  // namespace orv::bench
