#include <gtest/gtest.h>

#include <algorithm>
#include <bit>

#include "books.h"

using namespace orv::test;

namespace {

// The functions of one element type.
template <class T>
struct Split;
template <>
struct Split<float> {
  static constexpr auto to16s = orvsSplitVQ_32f16s;
  static constexpr auto to8u = orvsSplitVQ_32f8u;
  static constexpr auto toBits = orvsSplitVQ_32f1u;
  static constexpr auto from16s = orvsFormVectorVQ_16s32f;
  static constexpr auto from8u = orvsFormVectorVQ_8u32f;
  static constexpr auto fromBits = orvsFormVectorVQ_1u32f;
};
template <>
struct Split<std::int16_t> {
  static constexpr auto to16s = orvsSplitVQ_16s16s;
  static constexpr auto to8u = orvsSplitVQ_16s8u;
  static constexpr auto toBits = orvsSplitVQ_16s1u;
  static constexpr auto from16s = orvsFormVectorVQ_16s16s;
  static constexpr auto from8u = orvsFormVectorVQ_8u16s;
  static constexpr auto fromBits = orvsFormVectorVQ_1u16s;
};

template <class T>
class SplitQuantisation : public ::testing::Test {
 protected:
  int pick(int low, int high) { return std::uniform_int_distribution<int>(low, high)(random); }
  // Rows that are all different, so that each finds itself.
  std::vector<T> distinctRows(int size, int width) {
    std::vector<T> rows = wholeNumbers<T>(random, static_cast<std::size_t>(size * width), 50);
    for (int r = 0; r < size; ++r) rows[static_cast<std::size_t>(r * width)] = static_cast<T>(r * 3);
    return rows;
  }
  Random random{2};
};
TYPED_TEST_SUITE(SplitQuantisation, Elements);

bool bitAt(const std::vector<std::uint8_t> &bytes, std::size_t i) {
  return (bytes[i / 8] & (128 >> i % 8)) != 0;
}

TYPED_TEST(SplitQuantisation, FindsEveryPieceAndFormsItAgain) {
  using T = TypeParam;
  for (int round = 0; round < 60; ++round) {
    const int streams = this->pick(1, 6), height = round % 20 ? this->pick(1, 9) : 40;
    std::vector<PlainBook<T>> books;
    std::vector<std::vector<T>> rows;
    std::vector<int> widths, sizes, bits;
    int width = 0, bitsOfAll = 0;
    for (int i = 0; i < streams; ++i) {
      sizes.push_back(1 << this->pick(0, 8));
      if (this->pick(0, 2)) sizes.back() = this->pick(1, round % 2 ? 256 : 3000);
      widths.push_back(this->pick(1, 5));
      bits.push_back(static_cast<int>(std::bit_width(static_cast<unsigned>(sizes.back() - 1))));
      width += widths.back();
      bitsOfAll += bits.back();
      rows.push_back(this->distinctRows(sizes.back(), widths.back()));
      books.emplace_back(rows.back(), widths.back());
    }
    std::vector<CdbkState *> pointers;
    for (auto &book : books) pointers.push_back(book.get());

    // Vectors made of rows, with a gap behind them.
    const int step = width + this->pick(0, 3);
    const auto fill = static_cast<T>(77);
    std::vector<int> indices;
    std::vector<T> vectors;
    for (int r = 0; r < height; ++r) {
      for (int i = 0; i < streams; ++i) {
        const auto at = static_cast<std::size_t>(i);
        indices.push_back(this->pick(0, 3) ? this->pick(0, sizes[at] - 1) : sizes[at] - 1);
        const auto row = rows[at].begin() + indices.back() * widths[at];
        vectors.insert(vectors.end(), row, row + widths[at]);
      }
      vectors.insert(vectors.end(), static_cast<std::size_t>(step - width), fill);
    }
    const Guarded<T> src(vectors, static_cast<std::size_t>(round % 4));
    const auto formed = [&](auto form) {
      Guarded<T> dst(std::vector<T>(vectors.size(), fill), static_cast<std::size_t>(round % 3));
      EXPECT_EQ(form(dst.data()), orvStsNoErr);
      return dst.values();
    };

    const int gap = this->pick(0, 2), indexStep = streams + gap;
    const auto places = static_cast<std::size_t>(height * indexStep);
    Guarded<std::int16_t> words(std::vector<std::int16_t>(places, -7));
    ASSERT_EQ(Split<T>::to16s(src.data(), step, words.data(), indexStep, height, pointers.data(), streams),
              orvStsNoErr);
    Guarded<std::uint8_t> bytes(std::vector<std::uint8_t>(places, 200));
    ASSERT_EQ(Split<T>::to8u(src.data(), step, bytes.data(), indexStep, height, pointers.data(), streams),
              orvStsNoErr);
    for (std::size_t i = 0, next = 0; i < places; ++i) {
      const bool inGap = static_cast<int>(i) % indexStep >= streams;
      const int index = inGap ? 0 : indices[next++];
      ASSERT_EQ(words.at(i), inGap ? -7 : index);
      ASSERT_EQ(bytes.at(i), inGap ? 200 : index % 256);
    }
    ASSERT_EQ(formed([&](T *dst) {
                return Split<T>::from16s(words.data(), indexStep, dst, step, height, pointers.data(),
                                         streams);
              }),
              vectors);
    if (*std::max_element(indices.begin(), indices.end()) < 256) {
      ASSERT_EQ(formed([&](T *dst) {
                  return Split<T>::from8u(bytes.data(), indexStep, dst, step, height, pointers.data(),
                                          streams);
                }),
                vectors);
    }

    const int bitStep = std::max(bitsOfAll + this->pick(0, 9), 1);
    Guarded<std::uint8_t> packed(
        std::vector<std::uint8_t>(static_cast<std::size_t>((bitStep * height + 7) / 8), 0xA5));
    ASSERT_EQ(Split<T>::toBits(src.data(), step, packed.data(), bitStep, height, pointers.data(), streams),
              orvStsNoErr);
    std::vector<bool> expected(8 * static_cast<std::size_t>(packed.len()));
    for (int r = 0, next = 0; r < height; ++r) {
      auto position = static_cast<std::size_t>(r * bitStep);
      for (int i = 0; i < streams; ++i, ++next)
        for (int b = bits[static_cast<std::size_t>(i)] - 1; b >= 0; --b)
          expected[position++] = (indices[static_cast<std::size_t>(next)] >> b & 1) != 0;
    }
    const auto stream = packed.values();
    for (std::size_t i = 0; i < expected.size(); ++i) ASSERT_EQ(bitAt(stream, i), expected[i]) << "bit " << i;
    ASSERT_EQ(formed([&](T *dst) {
                return Split<T>::fromBits(packed.data(), bitStep, dst, step, height, pointers.data(),
                                          streams);
              }),
              vectors);
  }
}

// A codebook that copies its rows may hold more of them than can be asked for.
TYPED_TEST(SplitQuantisation, PacksIndicesBeyondSeventeenBits) {
  using T = TypeParam;
  constexpr int size = 140000;
  std::vector<T> rows;
  for (int r = 0; r < size; ++r)
    rows.insert(rows.end(), {static_cast<T>(r % 400), static_cast<T>(r / 400), T{0}});
  const auto large = buildBook(rows, std::vector<T>(3, T{1}), 16383, CDBK_DIRECT);
  PlainBook<T> small(this->distinctRows(128, 1), 1);  // seven bits before the eighteen
  CdbkState *const books[] = {small.get(), large.get()};
  const std::vector<T> src{3 * 85, 333, 349, 0};
  std::vector<std::uint8_t> bits(4, 255);
  ASSERT_EQ(Split<T>::toBits(src.data(), 4, bits.data(), 25, 1, books, 2), orvStsNoErr);
  // 1010101, and 139933 as 100010001010011101.
  EXPECT_EQ(bits, (std::vector<std::uint8_t>{0b10101011, 0b00010001, 0b01001110, 0b10000000}));
  std::vector<T> formed(4);
  ASSERT_EQ(Split<T>::fromBits(bits.data(), 25, formed.data(), 4, 1, books, 2), orvStsNoErr);
  EXPECT_EQ(formed, (std::vector<T>{3 * 85, 333, 349, 0}));
}

TYPED_TEST(SplitQuantisation, PassesOverACodebookWithoutSearch) {
  using T = TypeParam;
  const std::vector<T> rows{0, 10, 20, 30, 40};
  PlainBook<T> first(rows, 1), unknown(std::vector<T>(8), 2, 7), last(rows, 1);
  CdbkState *const books[] = {first.get(), unknown.get(), last.get()};
  // The second and third codebook meet the second value; the next row begins two values and one place early.
  const std::vector<T> src{10, 20, 30, 40, 0, 10, 20, 30, 40, 0};
  std::vector<std::int16_t> words(8, -7);
  EXPECT_EQ(Split<T>::to16s(src.data(), 5, words.data(), 4, 2, books, 3), orvStsNoErr);
  EXPECT_EQ(words, (std::vector<std::int16_t>{1, 2, -7, 4, 0, -7, -7, -7}));
  std::vector<std::uint8_t> bits(2, 255);
  EXPECT_EQ(Split<T>::toBits(src.data(), 5, bits.data(), 8, 2, books, 3), orvStsNoErr);
  EXPECT_EQ(bits, (std::vector<std::uint8_t>{0b00101000, 0b10000000}));
}

TYPED_TEST(SplitQuantisation, ChecksArgumentsInOrder) {
  using T = TypeParam;
  PlainBook<T> five(std::vector<T>(15), 3);  // three values, three bits
  CdbkState *const books[] = {five.get(), five.get()}, *const withNull[] = {five.get(), nullptr};
  const T x[6] = {};
  Guarded<std::int16_t> words(6);
  Guarded<std::uint8_t> bytes(6);
  Guarded<T> formed(6);
  const auto check = [&](auto split, auto form, auto *indices, bool packed) {
    const int indexStep = packed ? 6 : 2;
    EXPECT_EQ(split(x, 0, indices, 0, 0, nullptr, 0), orvStsNullPtrErr);
    EXPECT_EQ(split(nullptr, 0, indices, 0, 0, books, 0), orvStsNullPtrErr);
    EXPECT_EQ(split(x, 0, nullptr, 0, 0, books, 0), orvStsNullPtrErr);
    EXPECT_EQ(form(indices, 0, formed.data(), 0, 0, nullptr, 0), orvStsNullPtrErr);
    EXPECT_EQ(form(nullptr, 0, formed.data(), 0, 0, books, 0), orvStsNullPtrErr);
    EXPECT_EQ(form(indices, 0, nullptr, 0, 0, books, 0), orvStsNullPtrErr);
    struct Sizes {
      int width, indices, height, streams;
    };
    // Steps come before the codebooks are looked at, sums over the codebooks after.
    for (const Sizes s :
         {Sizes{0, indexStep, 1, 2}, {6, 0, 1, 2}, {6, indexStep, 0, 2}, {6, indexStep, 1, 0}}) {
      EXPECT_EQ(split(x, s.width, indices, s.indices, s.height, withNull, s.streams), orvStsSizeErr);
      EXPECT_EQ(form(indices, s.indices, formed.data(), s.width, s.height, withNull, s.streams),
                orvStsSizeErr);
    }
    const OrvStatus narrow =
        packed ? orvStsNullPtrErr : orvStsSizeErr;  // one bit for two indices is found later
    EXPECT_EQ(split(x, 6, indices, 1, 1, withNull, 2), narrow);
    EXPECT_EQ(form(indices, 1, formed.data(), 6, 1, withNull, 2), narrow);
    EXPECT_EQ(split(x, 5, indices, indexStep, 1, withNull, 2), orvStsNullPtrErr);
    EXPECT_EQ(form(indices, indexStep, formed.data(), 5, 1, withNull, 2), orvStsNullPtrErr);
    EXPECT_EQ(split(x, 5, indices, indexStep, 1, books, 2), orvStsSizeErr);
    EXPECT_EQ(form(indices, indexStep, formed.data(), 5, 1, books, 2), orvStsSizeErr);
    EXPECT_EQ(split(x, 6, indices, indexStep - 1, 1, books, 2), orvStsSizeErr);
    EXPECT_EQ(form(indices, indexStep - 1, formed.data(), 6, 1, books, 2), orvStsSizeErr);
  };
  check(Split<T>::to16s, Split<T>::from16s, words.data(), false);
  check(Split<T>::to8u, Split<T>::from8u, bytes.data(), false);
  check(Split<T>::toBits, Split<T>::fromBits, bytes.data(), true);
  EXPECT_TRUE(words.untouched() && bytes.untouched() && formed.untouched());
}

}  // namespace
