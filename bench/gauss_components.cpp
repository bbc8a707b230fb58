// Gaussian scoring: one vector against many Gaussians, and frames against those that a shortlist selects.

#include "bench/scoring.h"

namespace orv::bench {
namespace {

// --- a score, a maximum or a log-sum for each Gaussian

template <Then then, class T>
void add(const char *name, OrvStatus (*member)(const T *, const T *, std::int32_t, const T *, std::int32_t,
                                               T *, std::int32_t)) {
  addMember<Family{Weights::times, true, then}, T, T>(name, [member](Scoring<T, T> &in) {
    member(in.rows.data(), in.weights.data(), in.size.len, in.vectors.data(), in.size.len, in.results.data(),
           in.size.rows);
  });
}
template <Then then, class T, class R>
void add(const char *name, OrvStatus (*member)(const T *, const T *, std::int32_t, const T *, std::int32_t,
                                               R *, std::int32_t, std::int32_t)) {
  addMember<Family{Weights::times, true, then}, T, R>(name, [member](Scoring<T, R> &in) {
    member(in.rows.data(), in.weights.data(), in.size.len, in.vectors.data(), in.size.len, in.results.data(),
           in.size.rows, kScaleFactor);
  });
}
// With constants of their own.
template <Then then, class T>
void add(const char *name, OrvStatus (*member)(const T *, const T *, std::int32_t, const T *, std::int32_t,
                                               const T *, T *, std::int32_t)) {
  addMember<Family{Weights::times, true, then}, T, T>(name, [member](Scoring<T, T> &in) {
    member(in.rows.data(), in.weights.data(), in.size.len, in.vectors.data(), in.size.len,
           in.constants.data(), in.results.data(), in.size.rows);
  });
}
template <Then then, class T, class R>
void add(const char *name, OrvStatus (*member)(const T *, const T *, std::int32_t, const T *, std::int32_t,
                                               const R *, R *, std::int32_t, std::int32_t)) {
  addMember<Family{Weights::times, true, then}, T, R>(name, [member](Scoring<T, R> &in) {
    member(in.rows.data(), in.weights.data(), in.size.len, in.vectors.data(), in.size.len,
           in.constants.data(), in.results.data(), in.size.rows, kScaleFactor);
  });
}

// --- the log-sum of all of them

template <class T>
void addMixture(const char *name, OrvStatus (*member)(const T *, const T *, const T *, std::int32_t,
                                                      std::int32_t, std::int32_t, const T *, T *)) {
  addMember<Family{Weights::times, true, Then::mixture}, T, T>(name, [member](Scoring<T, T> &in) {
    member(in.vectors.data(), in.rows.data(), in.weights.data(), in.size.rows, in.size.len, in.size.len,
           in.constants.data(), in.results.data());
  });
}
template <class T>
void addMixture(const char *name, OrvStatus (*member)(const T *, const T *, std::int32_t, std::int32_t,
                                                      std::int32_t, const T *, T *)) {
  addMember<Family{Weights::none, true, Then::mixture}, T, T>(name, [member](Scoring<T, T> &in) {
    member(in.vectors.data(), in.rows.data(), in.size.rows, in.size.len, in.size.len, in.constants.data(),
           in.results.data());
  });
}
template <class T>
void addMixture(const char *name,
                OrvStatus (*member)(const T *, const T *, const T *, std::int32_t, std::int32_t, std::int32_t,
                                    const float *, float *, std::int32_t)) {
  addMember<Family{Weights::times, true, Then::mixture}, T, float>(name, [member](Scoring<T, float> &in) {
    member(in.vectors.data(), in.rows.data(), in.weights.data(), in.size.rows, in.size.len, in.size.len,
           in.constants.data(), in.results.data(), kScaleFactor);
  });
}
template <class T>
void addMixture(const char *name, OrvStatus (*member)(const T *, const T *, std::int32_t, std::int32_t,
                                                      std::int32_t, const float *, float *, std::int32_t)) {
  addMember<Family{Weights::none, true, Then::mixture}, T, float>(name, [member](Scoring<T, float> &in) {
    member(in.vectors.data(), in.rows.data(), in.size.rows, in.size.len, in.size.len, in.constants.data(),
           in.results.data(), kScaleFactor);
  });
}

// --- the log-sum of those that are selected, a quarter of them, for eight frames

template <class T>
struct Selection : Scoring<T, float> {
  Array<std::uint8_t> bits;
  explicit Selection(Size s) : Scoring<T, float>(s), bits(static_cast<std::size_t>(kFrames * rowBytes())) {
    for (std::int32_t f = 0; f < kFrames; ++f)
      for (std::int32_t m = f % 4; m < s.rows; m += 4)
        bits[byteOf(f, m)] = static_cast<std::uint8_t>(bits[byteOf(f, m)] | 128 >> m % 8);
  }
  std::int32_t rowBytes() const { return (this->size.rows + 7) / 8; }
  std::size_t byteOf(std::int32_t f, std::int32_t m) const {
    return static_cast<std::size_t>(f * rowBytes() + m / 8);
  }
};

template <Weights weights, class T>
[[gnu::noinline]] void selectPlainly(Selection<T> &in) {
  const float factor = scoreFactor<T, float>();
  for (std::int32_t f = 0; f < kFrames; ++f) {
    bool any = false;
    float running = -1000;
    for (std::int32_t m = 0; m < in.size.rows; ++m) {
      if ((in.bits[in.byteOf(f, m)] & 128 >> m % 8) == 0) continue;
      const float sum = PlainSum::sum<float, weights>(&in.vectors[static_cast<std::size_t>(f * in.size.len)],
                                                      in.row(m), in.weightsOf(m), in.size.len);
      const float score = in.constants[static_cast<std::size_t>(m)] - sum * factor;
      running = any ? logSum(running, score) : score;
      any = true;
    }
    in.results[static_cast<std::size_t>(f)] = running;
  }
}

template <Weights weights, class T, class Ours>
void addSelecting(const std::string &name, Ours ours) {
  for (const Size size : kSizes) {
    const auto on = [size](auto work) {
      return [size, work] {
        Selection<T> in(size);
        drawTogether<Family{weights, true, Then::mixture}, T, float>(in);
        return [work, data = std::move(in)]() mutable { work(data); };
      };
    };
    Case("gauss/" + name, size.text())
        .ours(on(ours))
        .peer("plain scalar", size.aim(2.0), on(selectPlainly<weights, T>));
  }
}

void addSelections() {
  addSelecting<Weights::times, float>("LogGaussMixture_Select_32f_D2", [](Selection<float> &in) {
    orvsLogGaussMixture_Select_32f_D2(in.vectors.data(), in.rows.data(), in.weights.data(), in.size.len,
                                      in.size.len, in.constants.data(), in.bits.data(), in.size.rows,
                                      in.results.data(), kFrames, -1000);
  });
  addSelecting<Weights::none, float>("LogGaussMixture_SelectIdVar_32f_D2", [](Selection<float> &in) {
    orvsLogGaussMixture_SelectIdVar_32f_D2(in.vectors.data(), in.rows.data(), in.size.len, in.size.len,
                                           in.constants.data(), in.bits.data(), in.size.rows,
                                           in.results.data(), kFrames, -1000);
  });
  using Integer = std::int16_t;
  addSelecting<Weights::times, Integer>("LogGaussMixture_SelectScaled_16s32f_D2", [](Selection<Integer> &in) {
    orvsLogGaussMixture_SelectScaled_16s32f_D2(in.vectors.data(), in.rows.data(), in.weights.data(),
                                               in.size.len, in.size.len, in.constants.data(), in.bits.data(),
                                               in.size.rows, in.results.data(), kFrames, kScaleFactor, -1000);
  });
  addSelecting<Weights::none, Integer>(
      "LogGaussMixture_SelectIdVarScaled_16s32f_D2", [](Selection<Integer> &in) {
        orvsLogGaussMixture_SelectIdVarScaled_16s32f_D2(
            in.vectors.data(), in.rows.data(), in.size.len, in.size.len, in.constants.data(), in.bits.data(),
            in.size.rows, in.results.data(), kFrames, kScaleFactor, -1000);
      });
}

}  // namespace

void addGaussComponentCases() {
  using enum Then;
  add<store>("MahDistMultiMix_32f_D2", orvsMahDistMultiMix_32f_D2);
  add<store>("MahDistMultiMix_64f_D2", orvsMahDistMultiMix_64f_D2);

  add<replaceConstant>("LogGaussMultiMix_32f_D2", orvsLogGaussMultiMix_32f_D2);
  add<replaceConstant>("LogGaussMultiMix_64f_D2", orvsLogGaussMultiMix_64f_D2);
  add<replaceConstant>("LogGaussMultiMix_16s32s_D2Sfs", orvsLogGaussMultiMix_16s32s_D2Sfs);
  add<replaceConstant>("LogGaussMultiMix_Low_16s32s_D2Sfs", orvsLogGaussMultiMix_Low_16s32s_D2Sfs);
  add<replaceConstant>("LogGaussMultiMix_Scaled_16s32f_D2", orvsLogGaussMultiMix_Scaled_16s32f_D2);
  add<replaceConstant>("LogGaussMultiMix_LowScaled_16s32f_D2", orvsLogGaussMultiMix_LowScaled_16s32f_D2);

  add<keepMaximum>("LogGaussMaxMultiMix_32f_D2", orvsLogGaussMaxMultiMix_32f_D2);
  add<keepMaximum>("LogGaussMaxMultiMix_64f_D2", orvsLogGaussMaxMultiMix_64f_D2);
  add<keepMaximum>("LogGaussMaxMultiMix_16s32s_D2Sfs", orvsLogGaussMaxMultiMix_16s32s_D2Sfs);
  add<keepMaximum>("LogGaussMaxMultiMix_Low_16s32s_D2Sfs", orvsLogGaussMaxMultiMix_Low_16s32s_D2Sfs);
  add<keepMaximum>("LogGaussMaxMultiMix_Scaled_16s32f_D2", orvsLogGaussMaxMultiMix_Scaled_16s32f_D2);
  add<keepMaximum>("LogGaussMaxMultiMix_LowScaled_16s32f_D2", orvsLogGaussMaxMultiMix_LowScaled_16s32f_D2);

  add<addLog>("LogGaussAddMultiMix_32f_D2", orvsLogGaussAddMultiMix_32f_D2);
  add<addLog>("LogGaussAddMultiMix_64f_D2", orvsLogGaussAddMultiMix_64f_D2);
  add<addLog>("LogGaussAddMultiMix_Scaled_16s32f_D2", orvsLogGaussAddMultiMix_Scaled_16s32f_D2);
  add<addLog>("LogGaussAddMultiMix_LowScaled_16s32f_D2", orvsLogGaussAddMultiMix_LowScaled_16s32f_D2);

  addMixture("LogGaussMixture_32f_D2", orvsLogGaussMixture_32f_D2);
  addMixture("LogGaussMixture_64f_D2", orvsLogGaussMixture_64f_D2);
  addMixture("LogGaussMixture_Scaled_16s32f_D2", orvsLogGaussMixture_Scaled_16s32f_D2);
  addMixture("LogGaussMixture_LowScaled_16s32f_D2", orvsLogGaussMixture_LowScaled_16s32f_D2);
  addMixture("LogGaussMixture_IdVar_32f_D2", orvsLogGaussMixture_IdVar_32f_D2);
  addMixture("LogGaussMixture_IdVar_64f_D2", orvsLogGaussMixture_IdVar_64f_D2);
  addMixture("LogGaussMixture_IdVarScaled_16s32f_D2", orvsLogGaussMixture_IdVarScaled_16s32f_D2);
  addMixture("LogGaussMixture_IdVarLowScaled_16s32f_D2", orvsLogGaussMixture_IdVarLowScaled_16s32f_D2);

  addSelections();
}

}  // namespace orv::bench
