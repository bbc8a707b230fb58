// orvsLogGaussSingle_*: every member against one reference that sums in the promised groups.

#include <gtest/gtest.h>

#include <functional>
#include <numeric>

#include "gauss/reference.h"
#include "orvsr/matrix.h"
#include "support/allocation.h"

namespace orv::test {
namespace {

template <class T>
struct Blocks;
template <>
struct Blocks<std::int16_t> {
  using Matrix = OrvBlockDMatrix_16s;
  static constexpr auto init = orvsBlockDMatrixInitAlloc_16s;
  static constexpr auto free = orvsBlockDMatrixFree_16s;
};
template <>
struct Blocks<float> {
  using Matrix = OrvBlockDMatrix_32f;
  static constexpr auto init = orvsBlockDMatrixInitAlloc_32f;
  static constexpr auto free = orvsBlockDMatrixFree_32f;
};
template <>
struct Blocks<double> {
  using Matrix = OrvBlockDMatrix_64f;
  static constexpr auto init = orvsBlockDMatrixInitAlloc_64f;
  static constexpr auto free = orvsBlockDMatrixFree_64f;
};

template <class T, class R>
struct Arguments {
  const T *src, *mean, *var;
  const typename Blocks<T>::Matrix *matrix;
  std::int32_t len;
  R *result;
  R gconst;
  std::int32_t scaleFactor;
};

enum class Weight { inverse, none, direct, blocks };

template <class T, class R>
struct Member {
  const char *name;
  Weight weight;
  bool low;
  std::function<OrvStatus(const Arguments<T, R> &)> call;
};

// What follows the result: gconst alone; gconst and scale factor; or, of the Scaled forms, scale factor and
// gconst.
template <class R, class A, class F>
OrvStatus withTail(const A &a, F &&f) {
  if constexpr (std::is_invocable_v<F, R>)
    return f(a.gconst);
  else if constexpr (std::is_integral_v<R>)
    return f(a.gconst, a.scaleFactor);
  else
    return f(a.scaleFactor, a.gconst);
}
template <class T, class R, class W, class... Tail>
Member<T, R> member(const char *name, OrvStatus (*f)(const T *, const T *, const W *, int32_t, R *, Tail...),
                    Weight weight = Weight::inverse, bool low = false) {
  constexpr bool blocks = !std::is_same_v<W, T>;
  return {name, blocks ? Weight::blocks : weight, low, [f](const Arguments<T, R> &a) {
            const W *w;
            if constexpr (blocks)
              w = a.matrix;
            else
              w = a.var;
            return withTail<R>(a,
                               [&](Tail... tail) { return f(a.src, a.mean, w, a.len, a.result, tail...); });
          }};
}
template <class T, class R, class... Tail>
Member<T, R> member(const char *name, OrvStatus (*f)(const T *, const T *, int32_t, R *, Tail...),
                    Weight weight = Weight::none, bool low = false) {
  return {name, weight, low, [f](const Arguments<T, R> &a) {
            return withTail<R>(a, [&](Tail... tail) { return f(a.src, a.mean, a.len, a.result, tail...); });
          }};
}

template <class T, class R>
std::vector<Member<T, R>> members() {
  if constexpr (std::is_same_v<R, std::int32_t>) {
    return {member("plain", orvsLogGaussSingle_16s32s_Sfs),
            member("Low", orvsLogGaussSingle_Low_16s32s_Sfs, Weight::inverse, true),
            member("IdVar", orvsLogGaussSingle_IdVar_16s32s_Sfs),
            member("IdVarLow", orvsLogGaussSingle_IdVarLow_16s32s_Sfs, Weight::none, true),
            member("DirectVar", orvsLogGaussSingle_DirectVar_16s32s_Sfs, Weight::direct),
            member("BlockDVar", orvsLogGaussSingle_BlockDVar_16s32s_Sfs)};
  } else if constexpr (std::is_same_v<T, std::int16_t>) {
    return {member("Scaled", orvsLogGaussSingle_Scaled_16s32f),
            member("LowScaled", orvsLogGaussSingle_LowScaled_16s32f, Weight::inverse, true),
            member("IdVarScaled", orvsLogGaussSingle_IdVarScaled_16s32f),
            member("IdVarLowScaled", orvsLogGaussSingle_IdVarLowScaled_16s32f, Weight::none, true),
            member("DirectVarScaled", orvsLogGaussSingle_DirectVarScaled_16s32f, Weight::direct),
            member("BlockDVarScaled", orvsLogGaussSingle_BlockDVarScaled_16s32f)};
  } else if constexpr (std::is_same_v<R, float>) {
    return {member("32f", orvsLogGaussSingle_32f), member("IdVar_32f", orvsLogGaussSingle_IdVar_32f),
            member("DirectVar_32f", orvsLogGaussSingle_DirectVar_32f, Weight::direct),
            member("BlockDVar_32f", orvsLogGaussSingle_BlockDVar_32f)};
  } else if constexpr (std::is_same_v<T, float>) {
    return {member("32f64f", orvsLogGaussSingle_32f64f),
            member("IdVar_32f64f", orvsLogGaussSingle_IdVar_32f64f),
            member("DirectVar_32f64f", orvsLogGaussSingle_DirectVar_32f64f, Weight::direct),
            member("BlockDVar_32f64f", orvsLogGaussSingle_BlockDVar_32f64f)};
  } else {
    return {member("64f", orvsLogGaussSingle_64f), member("IdVar_64f", orvsLogGaussSingle_IdVar_64f),
            member("DirectVar_64f", orvsLogGaussSingle_DirectVar_64f, Weight::direct),
            member("BlockDVar_64f", orvsLogGaussSingle_BlockDVar_64f)};
  }
}

// A vector, a Gaussian in every form, and the score that a member owes.
template <class T, class R>
class Problem {
 public:
  Problem(Random &random, std::size_t len, bool whole, std::size_t offset)
      : src_(draw(random, len, whole)), mean_(draw(random, len, whole)), var_(draw(random, len, whole)) {
    for (T &v : var_)
      if (v == 0) v = 1;
    gconst_ = random() % 3 == 0 ? R{0} : std::is_integral_v<R> ? static_cast<R>(random()) : draw(random)[0];
    std::vector<const T *> pointers;
    for (std::size_t left = len; left > 0; left -= static_cast<std::size_t>(sizes_.back()))
      sizes_.push_back(static_cast<std::int32_t>(random() % 4 == 0 ? left : 1 + random() % left));
    for (const std::int32_t size : sizes_)
      for (std::int32_t i = 0; i < size; ++i)
        rows_.push_back(draw(random, static_cast<std::size_t>(size), whole));
    for (const auto &row : rows_) pointers.push_back(row.data());
    EXPECT_EQ(
        Blocks<T>::init(&matrix_, pointers.data(), sizes_.data(), static_cast<std::int32_t>(sizes_.size())),
        orvStsNoErr);
    srcArray_ = std::make_unique<Guarded<T>>(src_, (5 * offset + 3 * len) % 16);
    meanArray_ = std::make_unique<Guarded<T>>(mean_, offset);
    varArray_ = std::make_unique<Guarded<T>>(var_, (3 * offset + len) % 16);
  }
  ~Problem() { Blocks<T>::free(matrix_); }

  Arguments<T, R> arguments(R *result, std::int32_t scaleFactor) const {
    return {srcArray_->data(), meanArray_->data(), varArray_->data(), matrix_, srcArray_->len(), result,
            gconst_,           scaleFactor};
  }

  R expected(const Member<T, R> &member, std::int32_t scaleFactor) const {
    if (member.weight == Weight::direct) return expectedOfQuotients(scaleFactor);
    if (member.weight == Weight::blocks) return expectedOfBlocks(scaleFactor);
    const bool weighted = member.weight == Weight::inverse;
    const std::vector<T> &w = weighted ? var_ : std::vector<T>{};
    if constexpr (std::is_same_v<R, std::int32_t>) {
      std::uint64_t sum = 0;
      for (const std::int64_t t : termsOf<std::int64_t>(src_, mean_, w)) sum += static_cast<std::uint64_t>(t);
      return exactScore(static_cast<std::int64_t>(sum), gconst_, scaleFactor, member.low);
    } else {
      const T *deciding = weighted ? varArray_->data() : meanArray_->data();
      const std::size_t head = std::is_same_v<T, R> ? headOf(deciding, src_.size()) : 0;
      const R sum = groupedSum(R{0}, R{1}, termsOf<R>(src_, mean_, w), head, 2);
      if constexpr (!std::is_integral_v<T>) return gconst_ - sum * R{0.5};
      return member.low ? gconst_ - (sum * R{0.5}) * scaleOf(scaleFactor)
                        : gconst_ - sum * scaleOf(std::int64_t{scaleFactor} + 1);
    }
  }

 private:
  static std::vector<T> draw(Random &random, std::size_t len = 1, bool whole = false) {
    if (whole) return wholeNumbers<T>(random, len, 4);
    if constexpr (std::is_integral_v<T>)
      return integersOrAnEnd<T>(random, len);
    else
      return uniform<T>(random, len, -3, 3);
  }

  // One by one; a division each.
  R expectedOfQuotients(std::int32_t scaleFactor) const {
    if constexpr (std::is_same_v<R, std::int32_t>) {
      const std::int64_t n = std::int64_t{scaleFactor} + 17;
      std::int64_t sum = n > 0 ? static_cast<std::int32_t>(std::uint32_t{1} << ((n + 31) % 32)) : 0;
      for (std::size_t j = 0; j < src_.size(); ++j) {
        const std::int64_t d = std::int64_t{src_[j] - mean_[j]} * 256;
        sum += d * d / var_[j];
      }
      return exactScore(sum, gconst_, std::int64_t{scaleFactor} + 16, false);
    } else {
      using S = std::conditional_t<std::is_integral_v<T>, float, double>;
      S sum = 0;
      const std::vector<S> squares = termsOf<S>(src_, mean_, std::vector<T>{});
      for (std::size_t j = 0; j < src_.size(); ++j) sum += squares[j] / static_cast<S>(var_[j]);
      if constexpr (std::is_integral_v<T>) return gconst_ - sum * (scaleOf(scaleFactor) * S{0.5});
      return static_cast<R>(S{gconst_} - sum * S{0.5});
    }
  }

  // The difference enters the dot products in its own type, saturated if that is 16s, and multiplies them
  // anew, exact.
  R expectedOfBlocks(std::int32_t scaleFactor) const {
    constexpr bool integer = std::is_same_v<R, std::int32_t>;
    using S = std::conditional_t<integer, float, R>;
    using Dot = std::conditional_t<std::is_integral_v<T>, std::int64_t, R>;
    S sum = 0;
    std::size_t begin = 0;
    for (std::size_t b = 0; b < sizes_.size(); begin += static_cast<std::size_t>(sizes_[b++]))
      for (std::size_t i = begin; i < begin + static_cast<std::size_t>(sizes_[b]); ++i) {
        std::vector<Dot> terms;
        for (std::size_t j = 0; j < rows_[i].size(); ++j) {
          auto d = src_[begin + j] - mean_[begin + j];
          if (std::is_integral_v<T>) d = std::clamp<decltype(d)>(d, -32768, 32767);
          terms.push_back(static_cast<Dot>(rows_[i][j]) * static_cast<Dot>(d));
        }
        const Dot dot = groupedSum(Dot{0}, Dot{1}, terms, 0, 2);
        S multiplier = static_cast<S>(src_[i] - mean_[i]);
        if constexpr (integer) multiplier *= scaleOf(scaleFactor);
        sum += static_cast<S>(dot) * multiplier;
      }
    if constexpr (integer) {
      const float score = static_cast<float>(gconst_) - sum * 0.5F;
      if (score >= 2147483648.0F) return INT32_MAX;
      return score > -2147483648.0F ? static_cast<std::int32_t>(score) : INT32_MIN;
    } else if constexpr (std::is_integral_v<T>) {
      return gconst_ - (sum * 0.5F) * scaleOf(scaleFactor);
    } else {
      return static_cast<R>(double{gconst_} - double{sum} * 0.5);
    }
  }

  std::vector<T> src_, mean_, var_;
  R gconst_;
  std::vector<std::int32_t> sizes_;
  std::vector<std::vector<T>> rows_;
  typename Blocks<T>::Matrix *matrix_ = nullptr;
  std::unique_ptr<Guarded<T>> srcArray_, meanArray_, varArray_;
};

template <class Types>
class SingleVector : public ::testing::Test {
 protected:
  using T = typename Types::Elem;
  using R = typename Types::Result;

  void check(Random &random, std::size_t len, bool whole, std::size_t offset, std::int32_t scaleFactor) {
    const Problem<T, R> problem(random, len, whole, offset);
    for (const auto &member : members<T, R>()) {
      // This one keeps what it allocates, which has a test of its own.
      if (len >= 112 && std::is_same_v<R, std::int32_t> && member.weight == Weight::blocks) continue;
      Guarded<R> result(1, (3 * offset + 1) % 16);
      ASSERT_EQ(member.call(problem.arguments(result.data(), scaleFactor)), orvStsNoErr);
      ASSERT_TRUE(sameBits(result.at(0), problem.expected(member, scaleFactor)))
          << member.name << ", length " << len << ", offset " << offset << ", scale factor " << scaleFactor;
    }
  }
};
template <class T, class R>
struct Types {
  using Elem = T;
  using Result = R;
};
using All = ::testing::Types<Types<float, float>, Types<float, double>, Types<double, double>,
                             Types<std::int16_t, std::int32_t>, Types<std::int16_t, float>>;
TYPED_TEST_SUITE(SingleVector, All);

TYPED_TEST(SingleVector, SumsInGroupsAtEveryLengthAndAlignment) {
  Random random(1);
  for (std::size_t len = 1; len <= 40; ++len)
    for (std::size_t offset = 0; offset < 16; ++offset)
      for (const bool whole : {false, true}) {
        this->check(random, len, whole, offset, static_cast<std::int32_t>(random() % 48) - 8);
        if (this->HasFatalFailure()) return;
      }
  for (const std::size_t len : {111U, 112U, 113U, 500U})
    for (int i = 0; i < 8; ++i) this->check(random, len, true, 0, 3);
}

TYPED_TEST(SingleVector, ScaleFactorsToBothEnds) {
  if constexpr (std::is_integral_v<typename TypeParam::Elem>) {
    Random random(2);
    std::vector<std::int32_t> factors = scaleFactors();
    // Where the rounding of the DirectVar form changes.
    factors.insert(factors.end(), {-18, -17, -16, -15, 14, 15, 16, 47, 48});
    for (const std::int32_t scaleFactor : factors)
      for (std::size_t n = 0; n < 40; ++n) this->check(random, 1 + n % 9, n % 2 == 0, 0, scaleFactor);
  }
}

TYPED_TEST(SingleVector, ChecksPointersThenLength) {
  using T = typename TypeParam::Elem;
  using R = typename TypeParam::Result;
  enum : unsigned { src = 1, mean = 2, weight = 4, result = 8, length = 16 };
  Random random(3);
  const Problem<T, R> problem(random, 4, true, 0);
  for (const auto &member : members<T, R>()) {
    SCOPED_TRACE(member.name);
    std::vector<Fault> order{{src, orvStsNullPtrErr}, {mean, orvStsNullPtrErr}, {result, orvStsNullPtrErr}};
    if (member.weight != Weight::none) order.push_back({weight, orvStsNullPtrErr});
    order.push_back({length, orvStsSizeErr});
    Guarded<R> results(1);
    std::vector<std::int32_t> badLengths{0, -1, INT32_MIN};
    if (member.weight == Weight::blocks) badLengths.insert(badLengths.end(), {3, 5, 4 + 65536});
    for (const std::int32_t badLength : badLengths)
      expectOrderOfChecks(order, [&](unsigned faults) {
        Arguments<T, R> a = problem.arguments(results.data(), 0);
        if ((faults & src) != 0) a.src = nullptr;
        if ((faults & mean) != 0) a.mean = nullptr;
        if ((faults & weight) != 0) a.var = nullptr, a.matrix = nullptr;
        if ((faults & result) != 0) a.result = nullptr;
        if ((faults & length) != 0) a.len = badLength;
        return member.call(a);
      });
    EXPECT_TRUE(results.untouched());
  }
}

TYPED_TEST(SingleVector, ZeroVarianceIsAWarningThatWritesNothing) {
  using T = typename TypeParam::Elem;
  using R = typename TypeParam::Result;
  const std::vector<T> zeros(9);
  for (const auto &member : members<T, R>()) {
    if (member.weight != Weight::direct) continue;
    for (const std::size_t place : {0U, 3U, 4U, 8U})
      for (const T zero : {T{0}, static_cast<T>(-T{0})}) {
        std::vector<T> var(9, 1);
        var[place] = zero;
        Guarded<R> result(1);
        EXPECT_EQ(member.call({zeros.data(), zeros.data(), var.data(), nullptr, 9, result.data(), R{0}, 0}),
                  orvStsDivByZeroWrn);
        EXPECT_TRUE(result.untouched());
      }
  }
}

// Below 112 values the working vector needs no allocation. From there on one form keeps it, which is meant.
TYPED_TEST(SingleVector, BlockFormsAllocateFromLength112On) {
  using T = typename TypeParam::Elem;
  using R = typename TypeParam::Result;
  constexpr bool keeps = std::is_same_v<R, std::int32_t>;
  const Member<T, R> member = members<T, R>().back();
  ASSERT_EQ(member.weight, Weight::blocks);
  for (const std::size_t len : {111U, 112U}) {
    for (const unsigned run : {1U, 2U, 3U, 4U, 5U, 6U, 7U, 8U}) {
      const bool fails = run % 4 == 0;
      Allocations allocations;
      allocations.alignTo(8);
      Guarded<R> result(1);
      OrvStatus status;
      std::vector<std::size_t> expected;
      {
        Random random(run);
        const Problem<T, R> problem(random, len, true, 0);
        expected = allocations.sizes();
        if (fails) allocations.failAt(0);
        status = member.call(problem.arguments(result.data(), 0));
        EXPECT_TRUE(status != orvStsNoErr || sameBits(result.at(0), problem.expected(member, 0)));
      }
      if (len == 112) expected.push_back(sizeof(T) * (len + (keeps ? 1 : 0)));
      EXPECT_EQ(allocations.sizes(), expected);
      EXPECT_EQ(status, len == 112 && fails ? orvStsMemAllocErr : orvStsNoErr);
      EXPECT_EQ(result.untouched(), status != orvStsNoErr);
      if (keeps && len == 112 && !fails) allocations.expectLeak(1);
    }
  }
}

// The ends of the range in floating point: 2^31 itself saturates, and what is no number gives the least.
TEST(SingleVectorEnds, IntegerBlockForm) {
  const std::int16_t x[1] = {300};
  const std::int16_t y[1] = {299};
  const std::int16_t *const rows[1] = {x};
  const std::int32_t sizes[1] = {1};
  OrvBlockDMatrix_16s *matrix = nullptr;
  ASSERT_EQ(orvsBlockDMatrixInitAlloc_16s(&matrix, rows, sizes, 1), orvStsNoErr);
  const auto score = [&](const std::int16_t *mean, std::int32_t gconst, std::int32_t scaleFactor) {
    std::int32_t result = 1;
    EXPECT_EQ(orvsLogGaussSingle_BlockDVar_16s32s_Sfs(x, mean, matrix, 1, &result, gconst, scaleFactor),
              orvStsNoErr);
    return result;
  };
  EXPECT_EQ(score(x, INT32_MAX, 0), INT32_MAX);
  EXPECT_EQ(score(x, INT32_MAX - 64, 0), INT32_MAX - 127);
  EXPECT_EQ(score(x, 7, -128), INT32_MIN);
  EXPECT_EQ(score(y, 151, 0), 1);
  EXPECT_EQ(score(y, 0, 8), 0);
  EXPECT_EQ(score(y, INT32_MIN, -20), INT32_MIN);
  orvsBlockDMatrixFree_16s(matrix);
}

}  // namespace
}  // namespace orv::test
