// orvsMahDist*: plain weighted sums, in the groups of the scores.

#include <gtest/gtest.h>

#include "gauss/frames.h"

namespace orv::test {
namespace {

template <class T>
FrameFamily<T, T> distances() {
  return {true, [](const FrameCase<T, T> &, Random &) { return T{77}; },
          [](const FrameCase<T, T> &c, T) {
            const std::vector<T> terms = termsOf<T>(c.frame, c.mean, c.var);
            return groupedSum(T{0}, T{1}, terms, headOf(c.deciding, terms.size()), c.accumulators);
          }};
}

template <class T>
void checkManyFrames(const std::vector<FrameMember<T, T>> &members) {
  sweepFrames(members, distances<T>());
  checkOrderOfFrames(members);
}

TEST(MahDist, ManyFrames) {
  checkManyFrames<float>(
      {frameMember("32f_D2", orvsMahDist_32f_D2), frameMember("32f_D2L", orvsMahDist_32f_D2L)});
  checkManyFrames<double>(
      {frameMember("64f_D2", orvsMahDist_64f_D2), frameMember("64f_D2L", orvsMahDist_64f_D2L)});
}

// As a call over frames whose rows are means; the fourth row of weights of a group, or the row's own,
// decides.
template <class T, class Strided, class Pointers>
void checkManyMeans(Strided strided, Pointers withPointers) {
  Random random(3);
  for (const Layout layout : {Layout::strided, Layout::pointers})
    for (std::size_t len = 1; len <= 40; ++len)
      for (const std::size_t rows : {1U, 2U, 3U, 4U, 5U, 8U})
        for (std::size_t offset = (len / 2 + rows) % 2; offset < 16; offset += 2) {
          std::vector<std::vector<T>> means(rows), vars(rows);
          for (auto &mean : means) mean = draw<T>(random, len, Data::random);
          for (auto &var : vars) var = draw<T>(random, len, Data::random, 0);
          const std::vector<T> src = draw<T>(random, len, Data::random);
          const auto step = static_cast<std::int32_t>(len + random() % 4);
          const Matrix<T> mean(layout, means, step, offset);
          const Matrix<T> var(layout, vars, step, (7 * offset + len) % 16);
          const Guarded<T> vector(src, (11 * offset + 3 * len) % 16);
          Guarded<T> results(rows, (3 * offset + 1) % 16);
          const auto featLen = static_cast<std::int32_t>(len);
          const auto count = static_cast<std::int32_t>(rows);
          ASSERT_EQ(layout == Layout::strided ? strided(mean.base(), var.base(), step, vector.data(), featLen,
                                                        results.data(), count)
                                              : withPointers(mean.pointers(), var.pointers(), vector.data(),
                                                             featLen, results.data(), count),
                    orvStsNoErr);
          for (std::size_t r = 0; r < rows; ++r) {
            const bool inFour = r < rows / 4 * 4;
            const std::size_t head = headOf(var.row(inFour ? r / 4 * 4 + 3 : r), len);
            ASSERT_TRUE(sameBits(results.at(r), groupedSum(T{0}, T{1}, termsOf<T>(means[r], src, vars[r]),
                                                           head, inFour ? 1 : 2)))
                << "row " << r << " of " << rows << ", length " << len << ", offset " << offset;
          }
        }
}

template <class T, class Strided, class Pointers>
void checkOrderOfMeans(Strided strided, Pointers withPointers) {
  enum : unsigned { stride = 1, src = 2, mean = 4, var = 8, result = 16, length = 32, count = 64 };
  const T row[4] = {};
  const T *const rows[1] = {row};
  Guarded<T> results(1);
  std::vector<Fault> order{{src, orvStsNullPtrErr},    {mean, orvStsNullPtrErr}, {var, orvStsNullPtrErr},
                           {result, orvStsNullPtrErr}, {length, orvStsSizeErr},  {count, orvStsSizeErr}};
  const auto call = [&](unsigned faults, bool pointers) {
    const auto given = [faults](unsigned bit, auto *p) { return (faults & bit) != 0 ? nullptr : p; };
    const std::int32_t featLen = (faults & length) != 0 ? 0 : 4;
    const std::int32_t n = (faults & count) != 0 ? 0 : 1;
    T *out = given(result, results.data());
    return pointers
               ? withPointers(given(mean, rows), given(var, rows), given(src, row), featLen, out, n)
               : strided(given(mean, row), given(var, row), (faults & stride) != 0 ? featLen - 1 : featLen,
                         given(src, row), featLen, out, n);
  };
  expectOrderOfChecks(order, [&](unsigned faults) { return call(faults, true); });
  order.insert(order.begin(), {stride, orvStsStrideErr});
  expectOrderOfChecks(order, [&](unsigned faults) { return call(faults, false); });
  EXPECT_TRUE(results.untouched());
}

TEST(MahDist, ManyMeans) {
  checkManyMeans<float>(orvsMahDistMultiMix_32f_D2, orvsMahDistMultiMix_32f_D2L);
  checkManyMeans<double>(orvsMahDistMultiMix_64f_D2, orvsMahDistMultiMix_64f_D2L);
  checkOrderOfMeans<float>(orvsMahDistMultiMix_32f_D2, orvsMahDistMultiMix_32f_D2L);
  checkOrderOfMeans<double>(orvsMahDistMultiMix_64f_D2, orvsMahDistMultiMix_64f_D2L);
}

template <class T, class R, class... Tail>
void checkSingle(OrvStatus (*distance)(const T *, const T *, const T *, int32_t, R *, Tail...),
                 Tail... tail) {
  Random random(4);
  const auto call = [&](const T *src, const T *mean, const T *var, std::int32_t len, R *result) {
    return distance(src, mean, var, len, result, tail...);
  };
  for (std::size_t len = 1; len <= 40; ++len)
    for (std::size_t offset = 0; offset < 16; ++offset) {
      const std::vector<T> src = draw<T>(random, len, Data::random);
      const std::vector<T> mean = random() % 8 == 0 ? src : draw<T>(random, len, Data::random);
      const std::vector<T> var = draw<T>(random, len, Data::random, 0);
      const Guarded<T> x(src, (5 * offset + 3 * len) % 16);
      const Guarded<T> y(mean, (offset + 1) % 16);
      const Guarded<T> w(var, offset);
      Guarded<R> result(1, (3 * offset + 1) % 16);
      ASSERT_EQ(call(x.data(), y.data(), w.data(), x.len(), result.data()), orvStsNoErr);
      if constexpr (std::is_same_v<R, std::int32_t>) {
        // No 1/2 here: the shift is the scale factor itself.
        std::int64_t sum = 0;
        for (const std::int64_t t : termsOf<std::int64_t>(src, mean, var)) sum += t;
        ASSERT_EQ(result.at(0), saturated(shifted(sum, (tail + ...)))) << "scale factor " << (tail + ...);
      } else {
        const std::size_t head = std::is_same_v<T, R> ? headOf(w.data(), len) : 0;
        ASSERT_TRUE(sameBits(result.at(0), groupedSum(R{0}, R{1}, termsOf<R>(src, mean, var), head, 2)))
            << "length " << len << ", offset " << offset;
      }
    }
  enum : unsigned { src = 1, mean = 2, var = 4, result = 8, length = 16 };
  const T value[1] = {};
  Guarded<R> results(1);
  expectOrderOfChecks({{src, orvStsNullPtrErr},
                       {mean, orvStsNullPtrErr},
                       {var, orvStsNullPtrErr},
                       {result, orvStsNullPtrErr},
                       {length, orvStsSizeErr}},
                      [&](unsigned faults) {
                        const auto given = [faults](unsigned bit, auto *p) {
                          return (faults & bit) != 0 ? nullptr : p;
                        };
                        return call(given(src, value), given(mean, value), given(var, value),
                                    (faults & length) != 0 ? 0 : 1, given(result, results.data()));
                      });
  EXPECT_TRUE(results.untouched());
}

TEST(MahDist, OneVector) {
  checkSingle(orvsMahDistSingle_32f);
  checkSingle(orvsMahDistSingle_64f);
  checkSingle(orvsMahDistSingle_32f64f);
  checkSingle(orvsMahDistSingle_16s32f);
  for (const std::int32_t scaleFactor : scaleFactors())
    checkSingle(orvsMahDistSingle_16s32s_Sfs, scaleFactor);
}

}  // namespace
}  // namespace orv::test
