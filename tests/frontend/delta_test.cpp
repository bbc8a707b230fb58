// Delta features against their definition over a whole utterance, however the utterance is cut into calls.

#include <algorithm>
#include <functional>
#include <string>
#include <type_traits>

#include "orvsr/frontend.h"
#include "support/arrays.h"

namespace orv::test {
namespace {

// --- the definition, in plain numbers

struct Arithmetic {
  std::int32_t scaleFactor = 0;
  bool wraps = false;  // single differences to 16 bits

  static std::int16_t saturated(std::int64_t v) {
    return static_cast<std::int16_t>(std::clamp<std::int64_t>(v, -32768, 32767));
  }
  float difference(float a, float b) const { return a - b; }
  std::int32_t difference(std::int16_t a, std::int16_t b) const {
    return wraps ? static_cast<std::int16_t>(a - b) : a - b;
  }
  float scaled(float v, float gain) const { return v * gain; }
  std::int16_t scaled(std::int64_t v, std::int16_t gain) const {
    const auto product = static_cast<std::int32_t>(v * gain);
    const std::int64_t count = std::abs(std::int64_t{scaleFactor}) % 32;
    return saturated(scaleFactor > 0
                         ? product >> count
                         : static_cast<std::int32_t>(static_cast<std::uint32_t>(product) << count));
  }
};

// One streaming member. val: gains of the static values, the deltas and the accelerations, a width each; a
// member with one gain for a stage takes the first of it.
template <class T>
struct Member {
  int reach, stages;
  bool aurora, perColumn;
  std::function<OrvStatus(const T *src, const T *val, int width, T *dst, int step, int height, int mode)>
      call;

  int lead() const { return aurora ? 8 : reach * (stages + 1); }
  int parts() const { return stages + 1; }
  int sourceWidth(int width) const { return aurora ? 14 : width; }
  // For messages.
  std::string name() const {
    return (aurora ? "Aurora " : "Win") + std::to_string(reach) + " stages " + std::to_string(stages) +
           (perColumn ? " Mul" : "");
  }
  // How many rows behind the last one a part is final.
  int lag(int part) const { return aurora ? (part > 0 ? 4 : 0) : part * reach; }
};

template <class T>
struct Utterance {
  int frames, width;
  std::vector<T> src, val;
  std::vector<T> rows;  // what must come out: parts * width values a row
};

template <class T>
T window(const Member<T> &m, const Arithmetic &a, const std::function<T(int)> &x, T gain) {
  const auto inner = a.difference(x(1), x(-1));
  if (m.reach == 1) return a.scaled(inner, gain);
  const auto outer = a.difference(x(2), x(-2));
  return a.scaled(inner + outer + outer, gain);
}

float toInteger(const Arithmetic &, float v, float) { return v; }
std::int16_t toInteger(const Arithmetic &a, float v, std::int16_t) {
  const bool fits = v >= -2147483648.0F && v < 2147483648.0F;
  const std::int32_t truncated = fits ? static_cast<std::int32_t>(v) : INT32_MIN;
  return Arithmetic::saturated(truncated >> (static_cast<std::uint32_t>(a.scaleFactor) % 32));
}

float auroraStatic(const Arithmetic &, float x, float gain) { return x * gain; }
std::int16_t auroraStatic(const Arithmetic &a, std::int16_t x, std::int16_t gain) {
  return Arithmetic::saturated((x * gain) >> (static_cast<std::uint32_t>(a.scaleFactor) % 32));
}

float auroraDelta(const Arithmetic &, const std::function<float(int)> &x, float gain) {
  float sum = 0;
  for (int k = -4; k <= 4; ++k) {
    const float term = static_cast<float>(std::abs(k)) * 0.25F * x(k);
    sum = k < 0 ? sum - term : k > 0 ? sum + term : sum;
  }
  return sum * gain;
}
std::int16_t auroraDelta(const Arithmetic &a, const std::function<std::int16_t(int)> &x, std::int16_t gain) {
  std::int64_t sum = 0;
  for (int k = -4; k <= 4; ++k) sum += k * x(k);
  return Arithmetic::saturated(static_cast<std::int32_t>(sum * gain) >>
                               ((static_cast<std::uint32_t>(a.scaleFactor) + 2) % 32));
}

template <class T>
T auroraValue(const Arithmetic &a, int part, const std::function<T(int)> &x, T gain) {
  if (part == 1) return auroraDelta(a, x, gain);
  const float c[] = {-0.714286F, -0.607143F, -0.285714F, 0.25F, 1};
  float sum = static_cast<float>(x(-4));
  for (int k = -3; k <= 4; ++k) sum += c[std::abs(k)] * static_cast<float>(x(k));
  return toInteger(a, sum * static_cast<float>(gain), T{});
}

template <class T>
Utterance<T> makeUtterance(const Member<T> &m, const Arithmetic &a, int frames, int width, std::vector<T> src,
                           std::vector<T> val) {
  Utterance<T> u{frames, width, std::move(src), std::move(val), {}};
  const int rowLen = m.parts() * width;
  u.rows.resize(static_cast<std::size_t>(frames * rowLen));
  const auto cell = [&](int t, int column) -> T & {
    return u.rows[static_cast<std::size_t>(std::clamp(t, 0, frames - 1) * rowLen + column)];
  };
  for (int part = 0; part < m.parts(); ++part)
    for (int t = 0; t < frames; ++t)
      for (int j = 0; j < width; ++j) {
        const T gain = m.perColumn ? u.val[static_cast<std::size_t>(part * width + j)]
                       : m.aurora  ? T{1}
                                   : u.val[static_cast<std::size_t>(part * width)];
        const T *x = u.src.data() + t * m.sourceWidth(width) + j;
        const auto near = [&](int from) -> std::function<T(int)> {
          return [&, from](int k) { return cell(t + k, from * width + j); };
        };
        T &value = cell(t, part * width + j);
        if (part > 0)
          value = m.aurora ? auroraValue<T>(a, part, near(0), gain) : window<T>(m, a, near(part - 1), gain);
        else if (m.aurora && j == 12)
          value = toInteger(a,
                            (static_cast<float>(x[0]) * 0.6F / 23 + static_cast<float>(x[1]) * 0.4F) *
                                static_cast<float>(gain),
                            T{});
        else if (m.aurora)
          value = auroraStatic(a, *x, gain);
        else
          value = m.perColumn ? a.scaled(*x, gain) : *x;
      }
  return u;
}

// Gives the utterance in calls of the heights named, the first with orvDeltaBegin and the last with
// orvDeltaEnd, carrying rows over as a caller does, and checks every cell after each call.
template <class T>
void expectStream(const Member<T> &m, const Utterance<T> &u, const std::vector<int> &heights,
                  std::size_t offset) {
  const int rowLen = m.parts() * u.width, step = rowLen + 3;
  const Guarded<T> src(u.src, offset), val(u.val, offset / 2);
  const Guarded<T> mark(1);
  std::vector<T> carried(static_cast<std::size_t>(m.lead() * step));
  int given = 0;
  for (std::size_t call = 0; call < heights.size(); ++call) {
    const int height = heights[call], lead = call == 0 ? 0 : m.lead();
    const bool end = call + 1 == heights.size();
    Guarded<T> dst(static_cast<std::size_t>((lead + height + 1) * step), offset);
    if (lead != 0) std::memcpy(static_cast<void *>(dst.data()), carried.data(), carried.size() * sizeof(T));
    const int mode = (lead == 0 ? orvDeltaBegin : 0) | (end ? orvDeltaEnd : 0) | 64;
    ASSERT_EQ(m.call(src.data() + given * m.sourceWidth(u.width), val.data(), u.width, dst.data(), step,
                     height, mode),
              orvStsNoErr);
    given += height;
    for (int row = 0; row <= lead + height; ++row)
      for (int column = 0; column < step; ++column) {
        const int t = given - lead - height + row, part = column / u.width;
        const bool written = t < given && column < rowLen && (end || t + m.lag(part) < given);
        const T want = written ? u.rows[static_cast<std::size_t>(t * rowLen + column)] : mark.at(0);
        const T is = dst.at(static_cast<std::size_t>(row * step + column));
        ASSERT_TRUE(sameBits(is, want)) << m.name() << " call " << call << " frame " << t << " column "
                                        << column << " width " << u.width << " of " << u.frames;
      }
    const std::vector<T> filled = dst.values();
    std::copy_n(filled.begin() + (lead + height - m.lead()) * step, carried.size(), carried.begin());
  }
}

template <class T>
void expectEveryCut(const Member<T> &m, const Utterance<T> &u, std::size_t offset) {
  expectStream(m, u, {u.frames}, offset);
  for (int cut = m.lead(); cut <= u.frames; ++cut) expectStream(m, u, {cut, u.frames - cut}, offset);
  std::vector<int> single(static_cast<std::size_t>(u.frames - m.lead()) + 2, 1);
  single.front() = m.lead();
  single.back() = 0;
  expectStream(m, u, single, offset);
}

// The gain at an index, from any address.
template <class T>
T gainAt(const T *val, std::int64_t i) {
  T gain = 0;
  if (val != nullptr)
    std::memcpy(&gain, reinterpret_cast<const char *>(val) + sizeof(T) * static_cast<std::size_t>(i),
                sizeof gain);
  return gain;
}

// Which kind of member f is shows in the arguments that it takes. `scale` is a scale factor or nothing.
template <class T, class F, class... Scale>
Member<T> member(F f, int reach, int stages, Scale... scale) {
  using S = const T *;
  constexpr bool perColumn = std::is_invocable_v<F, S, S, int, T *, int, int, int, Scale...>;
  constexpr bool aurora = std::is_invocable_v<F, S, T *, int, int, int, Scale...>;
  constexpr bool auroraMul = std::is_invocable_v<F, S, S, T *, int, int, int, Scale...>;
  constexpr bool oneGain = std::is_invocable_v<F, S, int, T *, int, int, T, int, Scale...>;
  return {reach, stages, aurora || auroraMul, perColumn || auroraMul,
          [=](S s, S v, int w, T *d, int step, int h, int mode) {
            if constexpr (perColumn)
              return f(s, v, w, d, step, h, mode, scale...);
            else if constexpr (aurora)
              return f(s, d, step, h, mode, scale...);
            else if constexpr (auroraMul)
              return f(s, v, d, step, h, mode, scale...);
            else if constexpr (oneGain)
              return f(s, w, d, step, h, gainAt(v, w), mode, scale...);
            else
              return f(s, w, d, step, h, gainAt(v, w), gainAt(v, 2 * std::int64_t{w}), mode, scale...);
          }};
}

std::vector<Member<float>> singleMembers() {
  return {member<float>(orvsDelta_Win1_32f_D2, 1, 1),
          member<float>(orvsDelta_Win2_32f_D2, 2, 1),
          member<float>(orvsDeltaMul_Win1_32f_D2, 1, 1),
          member<float>(orvsDeltaMul_Win2_32f_D2, 2, 1),
          member<float>(orvsDeltaDelta_Win1_32f_D2, 1, 2),
          member<float>(orvsDeltaDelta_Win2_32f_D2, 2, 2),
          member<float>(orvsDeltaDeltaMul_Win1_32f_D2, 1, 2),
          member<float>(orvsDeltaDeltaMul_Win2_32f_D2, 2, 2),
          member<float>(orvsDeltaDelta_Aurora_32f_D2, 4, 2),
          member<float>(orvsDeltaDeltaMul_Aurora_32f_D2, 4, 2)};
}

std::vector<Member<std::int16_t>> integerMembers(std::int32_t f) {
  return {member<std::int16_t>(orvsDelta_Win1_16s_D2Sfs, 1, 1, f),
          member<std::int16_t>(orvsDelta_Win2_16s_D2Sfs, 2, 1, f),
          member<std::int16_t>(orvsDeltaMul_Win1_16s_D2Sfs, 1, 1, f),
          member<std::int16_t>(orvsDeltaMul_Win2_16s_D2Sfs, 2, 1, f),
          member<std::int16_t>(orvsDeltaDelta_Win1_16s_D2Sfs, 1, 2, f),
          member<std::int16_t>(orvsDeltaDelta_Win2_16s_D2Sfs, 2, 2, f),
          member<std::int16_t>(orvsDeltaDeltaMul_Win1_16s_D2Sfs, 1, 2, f),
          member<std::int16_t>(orvsDeltaDeltaMul_Win2_16s_D2Sfs, 2, 2, f),
          member<std::int16_t>(orvsDeltaDelta_Aurora_16s_D2Sfs, 4, 2, f),
          member<std::int16_t>(orvsDeltaDeltaMul_Aurora_16s_D2Sfs, 4, 2, f)};
}

template <class T, class Draw>
void expectMembers(const std::vector<Member<T>> &members, std::int32_t scaleFactor,
                   const std::vector<int> &widths, Draw draw) {
  std::size_t offset = 0;
  for (const Member<T> &m : members)
    for (const int width : m.aurora ? std::vector<int>{13} : widths)
      for (const int more : {0, 1, 2, 5}) {
        const int frames = m.lead() + more;
        const auto u = makeUtterance(m, {scaleFactor, m.perColumn}, frames, width,
                                     draw(frames * m.sourceWidth(width)), draw(3 * width));
        expectEveryCut(m, u, offset++ % 64);
      }
}

TEST(Delta, SingleFormsForEveryCut) {
  Random random(1);
  expectMembers<float>(singleMembers(), 0, {1, 2, 3, 4, 5, 8, 13, 26},
                       [&](int len) { return uniform<float>(random, static_cast<std::size_t>(len), -3, 3); });
}

TEST(Delta, IntegerFormsForEveryCutAndScale) {
  Random random(2);
  for (const std::int32_t f :
       {0, 1, 7, 14, 29, 30, 31, 32, 33, 100, INT32_MAX, -1, -5, -31, -32, -33, INT32_MIN}) {
    const bool usual = f == 7 || f == -1;
    expectMembers<std::int16_t>(
        integerMembers(f), f, usual ? std::vector<int>{1, 7, 8, 9, 13, 16, 26} : std::vector<int>{9},
        [&](int len) { return anyIntegers<std::int16_t>(random, static_cast<std::size_t>(len)); });
  }
  // Values small enough that nothing saturates.
  expectMembers<std::int16_t>(integerMembers(1), 1, {3, 13}, [&](int len) {
    return wholeNumbers<std::int16_t>(random, static_cast<std::size_t>(len), 9);
  });
}

TEST(Delta, OneGainSaturatesWhereColumnGainsWrap) {
  const std::int16_t src[] = {-32768, 32767}, gains[] = {1, 1};
  std::int16_t dst[4];
  ASSERT_EQ(orvsDelta_Win1_16s_D2Sfs(src, 1, dst, 2, 2, 1, orvDeltaBegin | orvDeltaEnd, 0), orvStsNoErr);
  EXPECT_EQ(dst[1], 32767);
  EXPECT_EQ(dst[3], 32767);
  ASSERT_EQ(orvsDeltaMul_Win1_16s_D2Sfs(src, gains, 1, dst, 2, 2, orvDeltaBegin | orvDeltaEnd, 0),
            orvStsNoErr);
  EXPECT_EQ(dst[1], -1);
  EXPECT_EQ(dst[3], -1);
}

template <class T>
void expectChecks(const std::vector<Member<T>> &members) {
  const std::vector<T> ones(64 * 14, T{1});
  Guarded<T> dst(64 * 40);
  const T *src = ones.data(), *val = ones.data();
  constexpr int both = orvDeltaBegin | orvDeltaEnd;
  for (const Member<T> &m : members) {
    const int width = m.aurora ? 13 : 5, least = m.parts() * width, lead = m.lead();
    SCOPED_TRACE(m.name());
    EXPECT_EQ(m.call(nullptr, val, 0, dst.data(), 0, -1, 0), orvStsNullPtrErr);
    EXPECT_EQ(m.call(src, val, 0, nullptr, 0, -1, 0), orvStsNullPtrErr);
    if (m.perColumn) {
      EXPECT_EQ(m.call(src, nullptr, 0, dst.data(), 0, -1, 0), orvStsNullPtrErr);
    }
    if (!m.aurora) {
      EXPECT_EQ(m.call(src, val, 0, dst.data(), 99, 20, both), orvStsSizeErr);
    }
    EXPECT_EQ(m.call(src, val, width, dst.data(), 0, -1, both), orvStsSizeErr);
    EXPECT_EQ(m.call(src, val, width, dst.data(), 0, 0, orvDeltaBegin), orvStsSizeErr);
    EXPECT_EQ(m.call(src, val, width, dst.data(), 0, 0, both), orvStsStrideErr);
    EXPECT_EQ(m.call(src, val, width, dst.data(), least - 1, 1, orvDeltaBegin), orvStsStrideErr);
    EXPECT_EQ(m.call(src, val, width, dst.data(), least, lead - 1, orvDeltaBegin), orvStsSizeErr);
    EXPECT_EQ(m.call(src, val, width, dst.data(), least, 0, both), orvStsSizeErr);
    if (!m.aurora) {
      // A width whose parts do not fit 32 bits. The one-gain members would read their gains behind the array.
      const T *gains = m.perColumn ? val : nullptr;
      EXPECT_EQ(m.call(src, gains, INT32_MAX / 2 + 1, dst.data(), INT32_MAX, 8, 0), orvStsStrideErr);
    }
    EXPECT_TRUE(dst.untouched());
    EXPECT_EQ(m.call(src, val, width, dst.data(), least, lead, orvDeltaBegin), orvStsNoErr);
    std::memset(static_cast<void *>(dst.data()), 0x5C, 64 * 40 * sizeof(T));
  }
}

TEST(Delta, Checks) {
  expectChecks(singleMembers());
  expectChecks(integerMembers(0));
}

// --- blocks in place

template <class T>
struct BlockMembers {
  std::function<OrvStatus(T *srcDst, int height, int step, int width, int offset, int wndSize, T val)> one;
  std::function<OrvStatus(T *srcDst, int height, int step, const T *val, int width, int offset, int wndSize)>
      each;
};

const BlockMembers<float> kSingleBlock{orvsEvalDelta_32f_D2, orvsEvalDeltaMul_32f_D2};

BlockMembers<std::int16_t> integerBlock(std::int32_t f) {
  return {[f](auto... args) { return orvsEvalDelta_16s_D2Sfs(args..., f); },
          [f](auto... args) { return orvsEvalDeltaMul_16s_D2Sfs(args..., f); }};
}

template <class T, class Draw>
void expectBlocks(const BlockMembers<T> &members, std::int32_t scaleFactor, Draw draw) {
  const Arithmetic a{scaleFactor, true};
  for (const int width : {1, 3, 4, 7, 8, 13})
    for (const int window : {1, 2, 3})
      for (const int height : {2 * window, 2 * window + 1, 2 * window + 4})
        for (const bool perColumn : {false, true}) {
          const int offset = width % 3, step = offset + 2 * width + 1;
          const std::vector<T> before = draw(height * step), gains = draw(2 * width);
          Guarded<T> block(before, static_cast<std::size_t>(width * window) % 64);
          const Guarded<T> val(gains, 3);
          ASSERT_EQ(perColumn ? members.each(block.data(), height, step, val.data(), width, offset, window)
                              : members.one(block.data(), height, step, width, offset, window, gains[0]),
                    orvStsNoErr);
          const auto x = [&](int t, int j) {
            return before[static_cast<std::size_t>(t * step + offset + j)];
          };
          for (int t = 0; t < height; ++t)
            for (int column = 0; column < step; ++column) {
              const auto index = static_cast<std::size_t>(t * step + column);
              const int j = column - offset - width;
              T want = before[index];
              if (j >= 0 && j < width) {
                decltype(a.difference(T{}, T{})) sum = 0;
                for (int k = 1; k <= window; ++k) {
                  const T next = x(t >= height - window ? height - 1 : t + k, j);
                  const T previous = x(t < window ? 0 : t - k, j);
                  sum += static_cast<decltype(sum)>(k) * a.difference(next, previous);
                }
                want = a.scaled(sum, gains[static_cast<std::size_t>(perColumn ? width + j : 0)]);
              }
              ASSERT_TRUE(sameBits(block.at(index), want))
                  << width << ' ' << window << ' ' << height << ' ' << t << ' ' << column;
            }
        }
}

TEST(EvalDelta, BlocksInPlace) {
  Random random(3);
  expectBlocks<float>(kSingleBlock, 0,
                      [&](int len) { return uniform<float>(random, static_cast<std::size_t>(len), -3, 3); });
  for (const std::int32_t f : {0, 3, 16, 33, -1, -33, INT32_MIN, INT32_MAX})
    expectBlocks<std::int16_t>(integerBlock(f), f, [&](int len) {
      return anyIntegers<std::int16_t>(random, static_cast<std::size_t>(len));
    });
}

template <class T>
void expectBlockChecks(const BlockMembers<T> &members) {
  Guarded<T> block(64);
  const std::vector<T> val(64);
  const auto expect = [&](OrvStatus status, int height, int step, int width, int offset, int window) {
    EXPECT_EQ(members.one(block.data(), height, step, width, offset, window, 1), status);
    EXPECT_EQ(members.each(block.data(), height, step, val.data(), width, offset, window), status);
    EXPECT_EQ(members.one(nullptr, height, step, width, offset, window, 1), orvStsNullPtrErr);
    EXPECT_EQ(members.each(nullptr, height, step, val.data(), width, offset, window), orvStsNullPtrErr);
    EXPECT_EQ(members.each(block.data(), height, step, nullptr, width, offset, window), orvStsNullPtrErr);
  };
  expect(orvStsSizeErr, 0, 0, 3, 1, 1);
  expect(orvStsSizeErr, 4, 0, 0, 1, 1);
  expect(orvStsSizeErr, 4, 0, 3, -1, 1);
  expect(orvStsSizeErr, 4, 0, 3, 1, 0);
  expect(orvStsSizeErr, 3, 0, 3, 1, 2);
  expect(orvStsSizeErr, 4, 0, 3, 1, INT32_MAX);
  expect(orvStsStrideErr, 4, 6, 3, 1, 2);
  expect(orvStsStrideErr, 4, INT32_MAX, INT32_MAX, INT32_MAX, 1);
  EXPECT_TRUE(block.untouched());
}

TEST(EvalDelta, Checks) {
  expectBlockChecks(kSingleBlock);
  expectBlockChecks(integerBlock(0));
}

template <class T>
void expectCopy(OrvStatus (*copy)(const T *, int32_t, T *, int32_t, int32_t)) {
  Random random(4);
  const Guarded<T> src(anyIntegers<T>(random, 15), 2);
  Guarded<T> dst(14 + 5, 6);
  EXPECT_EQ(copy(nullptr, 0, dst.data(), 0, 0), orvStsNullPtrErr);
  EXPECT_EQ(copy(src.data(), 0, nullptr, 0, 0), orvStsNullPtrErr);
  EXPECT_EQ(copy(src.data(), 5, dst.data(), 4, 0), orvStsSizeErr);
  EXPECT_EQ(copy(src.data(), 0, dst.data(), -1, 3), orvStsSizeErr);
  EXPECT_EQ(copy(src.data(), 5, dst.data(), 4, 3), orvStsStrideErr);
  EXPECT_TRUE(dst.untouched());
  const Guarded<T> mark(1);
  ASSERT_EQ(copy(src.data(), 5, dst.data(), 7, 3), orvStsNoErr);
  for (std::size_t i = 0; i < 19; ++i)
    EXPECT_TRUE(sameBits(dst.at(i), i % 7 < 5 ? src.at(i / 7 * 5 + i % 7) : mark.at(0))) << i;
}

TEST(CopyColumn, CopiesAndChecks) {
  expectCopy(orvsCopyColumn_32f_D2);
  expectCopy(orvsCopyColumn_16s_D2);
}

}  // namespace
}  // namespace orv::test
