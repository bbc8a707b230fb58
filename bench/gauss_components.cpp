// Gaussian scoring: one vector against many Gaussians, and frames against those that a shortlist selects.

#include "bench/scoring.h"

namespace orv::bench {
namespace {

// --- a score, a maximum or a log-sum for each Gaussian

// What members take after their matrices: constants of their own, if not in the results, and a scale factor.

template <class T, class R>
auto others(Scoring<T, R> &in, List<R *, std::int32_t>) {
  return std::tuple(in.results.data(), in.size.rows);
}
template <class T, class R>
auto others(Scoring<T, R> &in, List<R *, std::int32_t, std::int32_t>) {
  return std::tuple(in.results.data(), in.size.rows, kScaleFactor);
}
template <class T, class R, class... Others>
auto others(Scoring<T, R> &in, List<const R *, R *, Others...>) {
  return std::tuple_cat(std::tuple(in.constants.data()), others(in, List<R *, Others...>{}));
}

template <class R, class... Others>
R resultOf(List<R *, std::int32_t, Others...>);
template <class R, class... Others>
R resultOf(List<const R *, R *, Others...>);

template <Then then, class T, class... Others>
void add(const char *name,
         OrvStatus (*strided)(const T *, const T *, std::int32_t, const T *, std::int32_t, Others...),
         OrvStatus (*pointers)(const T *const *, const T *const *, const T *, std::int32_t, Others...)) {
  using Rest = List<Others...>;
  using R = decltype(resultOf(Rest{}));
  addMember<Family{Weights::times, true, then}, T, R>(
      name,
      [strided](Scoring<T, R> &in) {
        call(strided,
             std::tuple(in.rows.data(), in.weights.data(), in.size.len, in.vectors.data(), in.size.len),
             others(in, Rest{}));
      },
      [pointers](Scoring<T, R> &in) {
        call(pointers, std::tuple(in.rowPointers(), in.weightPointers(), in.vectors.data(), in.size.len),
             others(in, Rest{}));
      });
}

// --- the log-sum of all of them

// After the matrices: the results, and a scale factor.
template <class T, class R>
auto ends(Scoring<T, R> &in, List<R *>) {
  return std::tuple(in.results.data());
}
template <class T, class R>
auto ends(Scoring<T, R> &in, List<R *, std::int32_t>) {
  return std::tuple(in.results.data(), kScaleFactor);
}

template <class T, class R, class... Others>
void addMixture(const char *name,
                OrvStatus (*strided)(const T *, const T *, const T *, std::int32_t, std::int32_t,
                                     std::int32_t, const R *, Others...),
                OrvStatus (*pointers)(const T *, const T *const *, const T *const *, std::int32_t,
                                      std::int32_t, const R *, Others...)) {
  addMember<Family{Weights::times, true, Then::mixture}, T, R>(
      name,
      [strided](Scoring<T, R> &in) {
        call(strided,
             std::tuple(in.vectors.data(), in.rows.data(), in.weights.data(), in.size.rows, in.size.len,
                        in.size.len, in.constants.data()),
             ends(in, List<Others...>{}));
      },
      [pointers](Scoring<T, R> &in) {
        call(pointers,
             std::tuple(in.vectors.data(), in.rowPointers(), in.weightPointers(), in.size.rows, in.size.len,
                        in.constants.data()),
             ends(in, List<Others...>{}));
      });
}
template <class T, class R, class... Others>
void addMixture(const char *name,
                OrvStatus (*strided)(const T *, const T *, std::int32_t, std::int32_t, std::int32_t,
                                     const R *, Others...),
                OrvStatus (*pointers)(const T *, const T *const *, std::int32_t, std::int32_t, const R *,
                                      Others...)) {
  addMember<Family{Weights::none, true, Then::mixture}, T, R>(
      name,
      [strided](Scoring<T, R> &in) {
        call(strided,
             std::tuple(in.vectors.data(), in.rows.data(), in.size.rows, in.size.len, in.size.len,
                        in.constants.data()),
             ends(in, List<Others...>{}));
      },
      [pointers](Scoring<T, R> &in) {
        call(pointers,
             std::tuple(in.vectors.data(), in.rowPointers(), in.size.rows, in.size.len, in.constants.data()),
             ends(in, List<Others...>{}));
      });
}

// --- the log-sum of those that are selected, a quarter of them, for eight frames

template <class T>
struct Selection : Scoring<T, float> {
  Array<std::uint8_t> bits;
  Array<const T *> framePointers;
  explicit Selection(Size s) : Scoring<T, float>(s), bits(static_cast<std::size_t>(kFrames * rowBytes())) {
    for (std::int32_t f = 0; f < kFrames; ++f)
      framePointers.push_back(&this->vectors[static_cast<std::size_t>(f * s.len)]);
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

template <Weights weights, class T, class Ours, class Pointers>
void addSelecting(const std::string &name, Ours ours, Pointers pointers) {
  for (const Size size : kSizes) {
    const auto on = [size](auto work) {
      return [size, work] {
        Selection<T> in(size);
        // Of the first frame no score is dropped so, and of the others about half.
        drawTogether<Family{weights, true, Then::mixture}, T, float>(in);
        return [work, data = std::move(in)]() mutable { work(data); };
      };
    };
    Case("gauss/" + name, size.text())
        .ours(on(ours))
        .peer("plain scalar", size.aim(2.0), on(selectPlainly<weights, T>))
        .peer("row pointers", 0.0, on(pointers));
  }
}

// What members take after their matrices.
template <class T>
auto selection(Selection<T> &in, List<float>) {
  return std::tuple(in.size.len, in.constants.data(), in.bits.data(), in.size.rows, in.results.data(),
                    kFrames, -1000.0F);
}
template <class T>
auto selection(Selection<T> &in, List<std::int32_t, float>) {
  return std::tuple(in.size.len, in.constants.data(), in.bits.data(), in.size.rows, in.results.data(),
                    kFrames, kScaleFactor, -1000.0F);
}

template <class T, class... Ends>
void addSelecting(const char *name,
                  OrvStatus (*strided)(const T *, const T *, const T *, std::int32_t, std::int32_t,
                                       const float *, const std::uint8_t *, std::int32_t, float *,
                                       std::int32_t, Ends...),
                  OrvStatus (*pointers)(const T *const *, const T *const *, const T *const *, std::int32_t,
                                        const float *, const std::uint8_t *, std::int32_t, float *,
                                        std::int32_t, Ends...)) {
  addSelecting<Weights::times, T>(
      name,
      [strided](Selection<T> &in) {
        call(strided, std::tuple(in.vectors.data(), in.rows.data(), in.weights.data(), in.size.len),
             selection(in, List<Ends...>{}));
      },
      [pointers](Selection<T> &in) {
        call(pointers, std::tuple(in.framePointers.data(), in.rowPointers(), in.weightPointers()),
             selection(in, List<Ends...>{}));
      });
}
template <class T, class... Ends>
void addSelecting(const char *name,
                  OrvStatus (*strided)(const T *, const T *, std::int32_t, std::int32_t, const float *,
                                       const std::uint8_t *, std::int32_t, float *, std::int32_t, Ends...),
                  OrvStatus (*pointers)(const T *const *, const T *const *, std::int32_t, const float *,
                                        const std::uint8_t *, std::int32_t, float *, std::int32_t, Ends...)) {
  addSelecting<Weights::none, T>(
      name,
      [strided](Selection<T> &in) {
        call(strided, std::tuple(in.vectors.data(), in.rows.data(), in.size.len),
             selection(in, List<Ends...>{}));
      },
      [pointers](Selection<T> &in) {
        call(pointers, std::tuple(in.framePointers.data(), in.rowPointers()), selection(in, List<Ends...>{}));
      });
}

}  // namespace

void addGaussComponentCases() {
  using enum Then;
  add<store>("MahDistMultiMix_32f_D2", orvsMahDistMultiMix_32f_D2, orvsMahDistMultiMix_32f_D2L);
  add<store>("MahDistMultiMix_64f_D2", orvsMahDistMultiMix_64f_D2, orvsMahDistMultiMix_64f_D2L);

  add<replaceConstant>("LogGaussMultiMix_32f_D2", orvsLogGaussMultiMix_32f_D2, orvsLogGaussMultiMix_32f_D2L);
  add<replaceConstant>("LogGaussMultiMix_64f_D2", orvsLogGaussMultiMix_64f_D2, orvsLogGaussMultiMix_64f_D2L);
  add<replaceConstant>("LogGaussMultiMix_16s32s_D2Sfs", orvsLogGaussMultiMix_16s32s_D2Sfs,
                       orvsLogGaussMultiMix_16s32s_D2LSfs);
  add<replaceConstant>("LogGaussMultiMix_Low_16s32s_D2Sfs", orvsLogGaussMultiMix_Low_16s32s_D2Sfs,
                       orvsLogGaussMultiMix_Low_16s32s_D2LSfs);
  add<replaceConstant>("LogGaussMultiMix_Scaled_16s32f_D2", orvsLogGaussMultiMix_Scaled_16s32f_D2,
                       orvsLogGaussMultiMix_Scaled_16s32f_D2L);
  add<replaceConstant>("LogGaussMultiMix_LowScaled_16s32f_D2", orvsLogGaussMultiMix_LowScaled_16s32f_D2,
                       orvsLogGaussMultiMix_LowScaled_16s32f_D2L);

  add<keepMaximum>("LogGaussMaxMultiMix_32f_D2", orvsLogGaussMaxMultiMix_32f_D2,
                   orvsLogGaussMaxMultiMix_32f_D2L);
  add<keepMaximum>("LogGaussMaxMultiMix_64f_D2", orvsLogGaussMaxMultiMix_64f_D2,
                   orvsLogGaussMaxMultiMix_64f_D2L);
  add<keepMaximum>("LogGaussMaxMultiMix_16s32s_D2Sfs", orvsLogGaussMaxMultiMix_16s32s_D2Sfs,
                   orvsLogGaussMaxMultiMix_16s32s_D2LSfs);
  add<keepMaximum>("LogGaussMaxMultiMix_Low_16s32s_D2Sfs", orvsLogGaussMaxMultiMix_Low_16s32s_D2Sfs,
                   orvsLogGaussMaxMultiMix_Low_16s32s_D2LSfs);
  add<keepMaximum>("LogGaussMaxMultiMix_Scaled_16s32f_D2", orvsLogGaussMaxMultiMix_Scaled_16s32f_D2,
                   orvsLogGaussMaxMultiMix_Scaled_16s32f_D2L);
  add<keepMaximum>("LogGaussMaxMultiMix_LowScaled_16s32f_D2", orvsLogGaussMaxMultiMix_LowScaled_16s32f_D2,
                   orvsLogGaussMaxMultiMix_LowScaled_16s32f_D2L);

  add<addLog>("LogGaussAddMultiMix_32f_D2", orvsLogGaussAddMultiMix_32f_D2, orvsLogGaussAddMultiMix_32f_D2L);
  add<addLog>("LogGaussAddMultiMix_64f_D2", orvsLogGaussAddMultiMix_64f_D2, orvsLogGaussAddMultiMix_64f_D2L);
  add<addLog>("LogGaussAddMultiMix_Scaled_16s32f_D2", orvsLogGaussAddMultiMix_Scaled_16s32f_D2,
              orvsLogGaussAddMultiMix_Scaled_16s32f_D2L);
  add<addLog>("LogGaussAddMultiMix_LowScaled_16s32f_D2", orvsLogGaussAddMultiMix_LowScaled_16s32f_D2,
              orvsLogGaussAddMultiMix_LowScaled_16s32f_D2L);

  addMixture("LogGaussMixture_32f_D2", orvsLogGaussMixture_32f_D2, orvsLogGaussMixture_32f_D2L);
  addMixture("LogGaussMixture_64f_D2", orvsLogGaussMixture_64f_D2, orvsLogGaussMixture_64f_D2L);
  addMixture("LogGaussMixture_Scaled_16s32f_D2", orvsLogGaussMixture_Scaled_16s32f_D2,
             orvsLogGaussMixture_Scaled_16s32f_D2L);
  addMixture("LogGaussMixture_LowScaled_16s32f_D2", orvsLogGaussMixture_LowScaled_16s32f_D2,
             orvsLogGaussMixture_LowScaled_16s32f_D2L);
  addMixture("LogGaussMixture_IdVar_32f_D2", orvsLogGaussMixture_IdVar_32f_D2,
             orvsLogGaussMixture_IdVar_32f_D2L);
  addMixture("LogGaussMixture_IdVar_64f_D2", orvsLogGaussMixture_IdVar_64f_D2,
             orvsLogGaussMixture_IdVar_64f_D2L);
  addMixture("LogGaussMixture_IdVarScaled_16s32f_D2", orvsLogGaussMixture_IdVarScaled_16s32f_D2,
             orvsLogGaussMixture_IdVarScaled_16s32f_D2L);
  addMixture("LogGaussMixture_IdVarLowScaled_16s32f_D2", orvsLogGaussMixture_IdVarLowScaled_16s32f_D2,
             orvsLogGaussMixture_IdVarLowScaled_16s32f_D2L);

  addSelecting("LogGaussMixture_Select_32f_D2", orvsLogGaussMixture_Select_32f_D2,
               orvsLogGaussMixture_Select_32f_D2L);
  addSelecting("LogGaussMixture_SelectIdVar_32f_D2", orvsLogGaussMixture_SelectIdVar_32f_D2,
               orvsLogGaussMixture_SelectIdVar_32f_D2L);
  addSelecting("LogGaussMixture_SelectScaled_16s32f_D2", orvsLogGaussMixture_SelectScaled_16s32f_D2,
               orvsLogGaussMixture_SelectScaled_16s32f_D2L);
  addSelecting("LogGaussMixture_SelectIdVarScaled_16s32f_D2", orvsLogGaussMixture_SelectIdVarScaled_16s32f_D2,
               orvsLogGaussMixture_SelectIdVarScaled_16s32f_D2L);
}

}  // namespace orv::bench
