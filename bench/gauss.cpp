// Gaussian scoring.

#include "orvsr/gauss.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <functional>

#include "bench/data.h"
#include "bench/ratio.h"

#if ORV_BENCH_EIGEN
#include <Eigen/Core>
#endif

namespace orv::bench {
namespace {

float plainScore(const float *x, const float *mean, const float *var, std::int32_t len, float gconst) {
  float sum = gconst + gconst;
  for (std::int32_t j = 0; j < len; ++j) {
    const float d = x[j] - mean[j];
    sum -= d * d * var[j];
  }
  return sum * 0.5F;
}

// --- many frames, one Gaussian

struct Frames {
  static constexpr std::int32_t count = 1000;
  std::int32_t len;
  Array<float> x, mean, var, scores;

  explicit Frames(std::int32_t featLen)
      : len(featLen),
        x(uniform<float>(static_cast<std::size_t>(count * len), -2.0, 2.0, 1)),
        mean(uniform<float>(static_cast<std::size_t>(len), -1.0, 1.0, 2)),
        var(uniform<float>(static_cast<std::size_t>(len), 0.5, 2.0, 3)),
        scores(count) {}
};

[[gnu::noinline]] void plainLogGauss(Frames &in) {
  for (std::int32_t f = 0; f < in.count; ++f)
    in.scores[static_cast<std::size_t>(f)] = plainScore(&in.x[static_cast<std::size_t>(f * in.len)],
                                                        in.mean.data(), in.var.data(), in.len, -30.0F);
}

#if ORV_BENCH_EIGEN
[[gnu::noinline]] void eigenLogGauss(Frames &in) {
  using Row = Eigen::Array<float, 1, Eigen::Dynamic>;
  const Eigen::Map<const Eigen::Array<float, Eigen::Dynamic, Eigen::Dynamic, Eigen::RowMajor>> x(
      in.x.data(), in.count, in.len);
  const Eigen::Map<const Row> mean(in.mean.data(), in.len);
  const Eigen::Map<const Row> var(in.var.data(), in.len);
  Eigen::Map<Eigen::ArrayXf> scores(in.scores.data(), in.count);
  for (std::int32_t f = 0; f < in.count; ++f)
    scores[f] = -30.0F - 0.5F * ((x.row(f) - mean).square() * var).sum();
}
#endif

// Dependent additions of one cycle each: a known number of cycles, whatever the clock.
[[gnu::noinline]] void waitCycles(std::int64_t cycles) {
  std::int64_t sum = 0;
  const std::int64_t one = 1;
  for (std::int64_t i = 0; i < cycles; i += 16)
    asm volatile(
        "add %1, %0\n add %1, %0\n add %1, %0\n add %1, %0\n"
        "add %1, %0\n add %1, %0\n add %1, %0\n add %1, %0\n"
        "add %1, %0\n add %1, %0\n add %1, %0\n add %1, %0\n"
        "add %1, %0\n add %1, %0\n add %1, %0\n add %1, %0\n"
        : "+r"(sum)
        : "r"(one));
}

template <class Score>
auto frames(std::int32_t len, Score score) {
  return [len, score] { return [score, in = Frames(len)]() mutable { score(in); }; };
}

void addFrameBlocks() {
  const auto ours = [](Frames &in) {
    orvsLogGauss_32f_D2(in.x.data(), in.len, in.mean.data(), in.var.data(), in.len, in.scores.data(),
                        in.count, -30.0F);
  };
  // Two subtractions and two multiplications for four values on three ports: a third of a cycle each.
  Case("gauss/LogGauss_32f_D2/40")
      .ours(frames(40, ours))
      .peer("arithmetic limit", 1.0 / 1.15, frames(40, [](Frames &in) { waitCycles(in.count * in.len / 3); }))
      .peer("plain scalar", 0.0, frames(40, plainLogGauss));
  Case odd("gauss/LogGauss_32f_D2/39");
  odd.ours(frames(39, ours)).peer("plain scalar", 4.0, frames(39, plainLogGauss));
#if ORV_BENCH_EIGEN
  odd.peer("Eigen", 1.3, frames(39, eigenLogGauss));
#else
  odd.absentPeer("Eigen");
#endif
}

// --- one vector, a mixture

struct Components {
  static constexpr std::int32_t count = 32;
  std::int32_t len = 39;
  Array<float> x = uniform<float>(39, -2.0, 2.0, 1);
  Array<float> mean = uniform<float>(count * 39, -1.0, 1.0, 2);
  Array<float> var = uniform<float>(count * 39, 0.5, 2.0, 3);
  Array<float> gconst;
  float score = 0.0F;

  // Scores of the components lie evenly round -50.
  explicit Components(double spread) : gconst(uniform<float>(count, -50.0 - spread, -50.0 + spread, 4)) {
    for (std::int32_t m = 0; m < count; ++m) gconst[static_cast<std::size_t>(m)] -= component(m, 0.0F);
  }

  float component(std::int32_t m, float constant) const {
    const auto row = static_cast<std::size_t>(m * len);
    return plainScore(x.data(), &mean[row], &var[row], len, constant);
  }
};

// dropping: without a logarithm where a term would not count, as ours. Otherwise for every term.
template <bool dropping>
[[gnu::noinline]] void plainMixture(Components &in) {
  float sum = in.component(0, in.gconst[0]);
  for (std::int32_t m = 1; m < in.count; ++m) {
    const float score = in.component(m, in.gconst[static_cast<std::size_t>(m)]);
    const double larger = sum > score ? sum : score;
    const double d = sum > score ? score - sum : sum - score;
    const bool counts = !dropping || d >= -15.3195879547406;
    sum = static_cast<float>(counts ? larger + std::log1p(std::exp(d)) : larger);
  }
  in.score = sum;
}

template <class Score>
auto components(double spread, Score score) {
  return [spread, score] { return [score, in = Components(spread)]() mutable { score(in); }; };
}

void addMixtures() {
  const auto ours = [](Components &in) {
    orvsLogGaussMixture_32f_D2(in.x.data(), in.mean.data(), in.var.data(), in.count, in.len, in.len,
                               in.gconst.data(), &in.score);
  };
  // Scores spread over 400, so that all but a few lie below the best by more than the drop threshold; and
  // over 10, so that none does.
  Case("gauss/LogGaussMixture_32f_D2/most")
      .ours(components(200.0, ours))
      .peer("plain scalar", 4.0, components(200.0, plainMixture<false>))
      .peer("scalar, dropping", 0.0, components(200.0, plainMixture<true>));
  Case("gauss/LogGaussMixture_32f_D2/none")
      .ours(components(5.0, ours))
      .peer("plain scalar", 2.0, components(5.0, plainMixture<false>));
}

// --- ranks, row sums, sign tables, language model scores

struct Values {
  Array<float> src = uniform<float>(std::size_t{1024} * 39, -50.0, 0.0, 5);
  Array<float> dst = Array<float>(1024);
  Array<std::int16_t> integers = uniform<std::int16_t>(1024, -3000.0, 0.0, 6);
  Array<std::int32_t> scaled = Array<std::int32_t>(1024);
  Array<std::int32_t> rows = uniform<std::int32_t>(32, 0.0, 1023.0, 7);
  Array<std::uint16_t> noOffset = Array<std::uint16_t>(32);
  std::size_t place = 0;
  const float *next64() { return &src[place = (place + 64) % src.size()]; }
};

// Tables of 256 rows of 1024 bits, of which one in 32 is set.
struct SignTable {
  static constexpr std::int32_t height = 256, bits = 1024, perRow = 4, count = 64;
  Array<std::uint8_t> table = uniform<std::uint8_t>(height * bits / 8, 0.0, 4.0, 8);
  Array<std::uint8_t> lists = uniform<std::uint8_t>(count * perRow, 0.0, 255.0, 9);
  Array<std::uint8_t> unions = Array<std::uint8_t>(count * bits / 8);
  Array<const std::uint8_t *> rows;
  SignTable() {
    for (std::size_t r = 0; r < height; ++r) rows.push_back(&table[r * bits / 8]);
  }
};

template <class Data, class Work>
auto on(Work work) {
  return [work] { return [work, in = Data()]() mutable { work(in); }; };
}

[[gnu::noinline]] void plainAddNRows(Values &in) {
  for (std::size_t c = 0; c < 39; ++c) {
    float sum = 0;
    for (const std::int32_t r : in.rows) sum += in.src[static_cast<std::size_t>(r) * 39 + c];
    in.dst[c] = sum;
  }
}
[[gnu::noinline]] void plainScaleLM(Values &in) {
  for (std::size_t i = 0; i < 1024; ++i) in.dst[i] = std::max(in.src[i], -40.0F) * 12.5F + 3.0F;
}
[[gnu::noinline]] void plainScaleLMInteger(Values &in) {
  for (std::size_t i = 0; i < 1024; ++i)
    in.scaled[i] = std::max<std::int16_t>(in.integers[i], -2500) * 125 + 30000;
}
[[gnu::noinline]] void plainSignTable(SignTable &in) {
  std::fill(in.unions.begin(), in.unions.end(), std::uint8_t{0});
  for (std::size_t r = 0; r < in.count; ++r)
    for (std::size_t b = 0; b < in.bits; ++b)
      for (std::size_t i = 0; i < in.perRow; ++i) {
        const std::uint8_t *const row = in.rows[in.lists[r * in.perRow + i]];
        if ((row[b / 8] & 128 >> b % 8) == 0) continue;
        std::uint8_t &out = in.unions[r * in.bits / 8 + b / 8];
        out = static_cast<std::uint8_t>(out | 128 >> b % 8);
      }
}

void addTools() {
  // Other values each time, or a processor knows the order by heart.
  Case("gauss/NthMaxElement_32f/8 of 64")
      .ours(on<Values>([](Values &in) { orvsNthMaxElement_32f(in.next64(), 64, 7, in.dst.data()); }))
      .peer("std::nth_element", 0.0, on<Values>([](Values &in) {
              const float *const src = in.next64();
              Array<float> copy(src, src + 64);
              std::nth_element(copy.begin(), copy.begin() + 7, copy.end(), std::greater<>());
              in.dst[0] = copy[7];
            }));
  Case("gauss/AddNRows_32f_D2/39x32")
      .ours(on<Values>([](Values &in) {
        orvsAddNRows_32f_D2(in.src.data(), 1024, 0, 39, in.rows.data(), in.noOffset.data(), 32, in.dst.data(),
                            39, 0.0F);
      }))
      .peer("plain scalar", 0.0, on<Values>(plainAddNRows));
  Case("gauss/BuildSignTable_8u1u/64x1024")
      .ours(on<SignTable>([](SignTable &in) {
        orvsBuildSignTable_8u1u(in.lists.data(), in.perRow, in.rows.data(), in.height, in.bits / 8, 0,
                                in.unions.data(), in.count, in.bits);
      }))
      .peer("plain scalar", 0.0, on<SignTable>(plainSignTable));
  Case("gauss/ScaleLM_32f/1024")
      .ours(on<Values>(
          [](Values &in) { orvsScaleLM_32f(in.src.data(), in.dst.data(), 1024, -40.0F, 12.5F, 3.0F); }))
      .peer("plain scalar", 0.0, on<Values>(plainScaleLM));
  Case("gauss/ScaleLM_16s32s/1024")
      .ours(on<Values>([](Values &in) {
        orvsScaleLM_16s32s(in.integers.data(), in.scaled.data(), 1024, -2500, 125, 30000);
      }))
      .peer("plain scalar", 0.0, on<Values>(plainScaleLMInteger));
}

}  // namespace

void addGaussFrameCases();
void addGaussComponentCases();
void addGaussSingleCases();
void addMatrixFormCases();

void addGaussCases() {
  addFrameBlocks();
  addMixtures();
  addTools();
  addGaussFrameCases();
  addGaussComponentCases();
  addGaussSingleCases();
  addMatrixFormCases();
}

}  // namespace orv::bench
