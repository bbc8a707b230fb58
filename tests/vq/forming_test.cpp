#include <gtest/gtest.h>

#include "orvsr/vq.h"
#include "support/arrays.h"

using namespace orv::test;

namespace {

// The forms of one pair of types.
template <class Index, class T>
struct Forms {
  OrvStatus (*plain)(const Index *, const T *const *, const std::int32_t *, const std::int32_t *,
                     const std::int32_t *, std::int32_t, T *);
  OrvStatus (*pairs)(const Index *, const T *const *, const std::int32_t *, T *, std::int32_t);
  OrvStatus (*fours)(const Index *, const T *const *, const std::int32_t *, T *, std::int32_t);
};
constexpr Forms<std::int16_t, std::int16_t> k16s16s{orvsFormVector_16s16s, orvsFormVector_2i_16s16s,
                                                    orvsFormVector_4i_16s16s};
constexpr Forms<std::uint8_t, std::int16_t> k8u16s{orvsFormVector_8u16s, orvsFormVector_2i_8u16s,
                                                   orvsFormVector_4i_8u16s};
constexpr Forms<std::int16_t, float> k16s32f{orvsFormVector_16s32f, orvsFormVector_2i_16s32f,
                                             orvsFormVector_4i_16s32f};
constexpr Forms<std::uint8_t, float> k8u32f{orvsFormVector_8u32f, orvsFormVector_2i_8u32f,
                                            orvsFormVector_4i_8u32f};

template <class F>
void forEachPairOfTypes(F &&f) {
  f(k16s16s);
  f(k8u16s);
  f(k16s32f);
  f(k8u32f);
}

TEST(FormVector, PutsRowsOfTablesTogether) {
  Random random(3);
  const auto pick = [&](int low, int high) { return std::uniform_int_distribution<int>(low, high)(random); };
  forEachPairOfTypes([&]<class Index, class T>(const Forms<Index, T> &forms) {
    for (int round = 0; round < 200; ++round) {
      // Uniform widths of 2 and 4 serve the pair and quad forms with the same tables.
      const int streams = pick(1, 9), uniformWidth = round % 3 * 2, spare = pick(0, 3);
      const auto offset = static_cast<std::size_t>(pick(0, 3));
      std::vector<Index> indices;
      std::vector<std::int32_t> sizes, widths, steps;
      std::vector<std::vector<T>> tables;
      std::vector<const T *> pointers;
      std::vector<T> expected;
      for (int i = 0; i < streams; ++i) {
        sizes.push_back(pick(1, 200));
        widths.push_back(uniformWidth ? uniformWidth : pick(1, 9));
        steps.push_back(widths.back() + (uniformWidth ? 0 : pick(0, 3)));
        indices.push_back(static_cast<Index>(pick(0, 1) ? sizes.back() - 1 : pick(0, sizes.back() - 1)));
        tables.push_back(
            wholeNumbers<T>(random, static_cast<std::size_t>(sizes.back() * steps.back()), 30000));
        const auto row = tables.back().begin() + indices.back() * steps.back();
        expected.insert(expected.end(), row, row + widths.back());
      }
      for (const auto &table : tables) pointers.push_back(table.data());
      const Guarded<Index> inds(indices, offset);
      Guarded<T> dst(expected.size(), 3 - offset);
      ASSERT_EQ(forms.plain(inds.data(), pointers.data(), sizes.data(), widths.data(), steps.data(), streams,
                            dst.data()),
                orvStsNoErr);
      ASSERT_EQ(dst.values(), expected);
      if (uniformWidth == 0) continue;
      // Values beyond the last whole stream are not written, and their index is not looked at.
      const int len = streams * uniformWidth - std::min(spare, uniformWidth - 1);
      const int whole = len / uniformWidth;
      if (whole < streams) sizes.back() = 0;
      expected.resize(static_cast<std::size_t>(whole * uniformWidth));
      Guarded<T> formed(expected.size(), offset);
      ASSERT_EQ((uniformWidth == 2 ? forms.pairs : forms.fours)(inds.data(), pointers.data(), sizes.data(),
                                                                formed.data(), len),
                orvStsNoErr);
      ASSERT_EQ(formed.values(), expected);
    }
  });
}

TEST(FormVector, TestsAllStreamsBeforeItWrites) {
  forEachPairOfTypes([]<class Index, class T>(const Forms<Index, T> &forms) {
    const std::vector<T> table(40);
    const T *const tables[] = {table.data(), table.data(), table.data()};
    const Index good[] = {1, 2, 4}, atSize[] = {1, 2, 5}, negative[] = {1, 2, static_cast<Index>(-1)};
    const std::int32_t sizes[] = {5, 5, 5}, widths[] = {2, 2, 2}, zero[] = {2, 2, 0}, nulls[] = {0, 0, 0};
    Guarded<T> dst(12);
    T *const d = dst.data();
    EXPECT_EQ(forms.plain(nullptr, tables, sizes, widths, widths, 0, d), orvStsNullPtrErr);
    EXPECT_EQ(forms.plain(good, nullptr, sizes, widths, widths, 0, d), orvStsNullPtrErr);
    EXPECT_EQ(forms.plain(good, tables, nullptr, widths, widths, 0, d), orvStsNullPtrErr);
    EXPECT_EQ(forms.plain(good, tables, sizes, nullptr, widths, 0, d), orvStsNullPtrErr);
    EXPECT_EQ(forms.plain(good, tables, sizes, widths, nullptr, 0, d), orvStsNullPtrErr);
    EXPECT_EQ(forms.plain(good, tables, sizes, widths, widths, 0, nullptr), orvStsNullPtrErr);
    EXPECT_EQ(forms.plain(good, tables, sizes, widths, widths, 0, d), orvStsSizeErr);
    EXPECT_EQ(forms.plain(good, tables, sizes, zero, widths, 3, d), orvStsSizeErr);
    EXPECT_EQ(forms.plain(good, tables, sizes, widths, zero, 3, d), orvStsSizeErr);
    EXPECT_EQ(forms.plain(atSize, tables, sizes, widths, widths, 3, d), orvStsSizeErr);
    EXPECT_EQ(forms.plain(negative, tables, sizes, widths, widths, 3, d), orvStsSizeErr);
    for (const auto form : {forms.pairs, forms.fours}) {
      const std::int32_t width = form == forms.pairs ? 2 : 4;
      EXPECT_EQ(form(nullptr, tables, sizes, d, 0), orvStsNullPtrErr);
      EXPECT_EQ(form(good, nullptr, sizes, d, 0), orvStsNullPtrErr);
      EXPECT_EQ(form(good, tables, nullptr, d, 0), orvStsNullPtrErr);
      EXPECT_EQ(form(good, tables, sizes, nullptr, 0), orvStsNullPtrErr);
      EXPECT_EQ(form(good, tables, sizes, d, 0), orvStsSizeErr);
      EXPECT_EQ(form(atSize, tables, sizes, d, 3 * width), orvStsSizeErr);
      EXPECT_EQ(form(negative, tables, sizes, d, 3 * width), orvStsSizeErr);
      EXPECT_EQ(form(good, tables, nulls, d, width - 1), orvStsNoErr);  // no stream, nothing to test
    }
    EXPECT_TRUE(dst.untouched());
  });
}

}  // namespace
