// orvsFillShortlist_* and orvsBuildSignTable_*: bit by bit, at every offset across byte edges.

#include <gtest/gtest.h>

#include <utility>

#include "gauss/reference.h"

namespace orv::test {
namespace {

using Bytes = std::vector<std::uint8_t>;

bool bitOf(const Bytes &row, std::size_t bit) { return (row[bit / 8] >> (7 - bit % 8) & 1) != 0; }
void flip(Bytes &row, std::size_t bit) { row[bit / 8] ^= static_cast<std::uint8_t>(1U << (7 - bit % 8)); }

// Rows of bytes, each between guards of its own.
struct Rows {
  explicit Rows(const std::vector<Bytes> &values) {
    for (const Bytes &row : values) {
      arrays.push_back(std::make_unique<Guarded<std::uint8_t>>(row));
      pointers.push_back(arrays.back()->data());
    }
  }
  std::vector<Bytes> values() const {
    std::vector<Bytes> all;
    for (const auto &array : arrays) all.push_back(array->values());
    return all;
  }
  const std::uint8_t *const *readOnly() const { return pointers.data(); }
  std::vector<std::unique_ptr<Guarded<std::uint8_t>>> arrays;
  std::vector<std::uint8_t *> pointers;
};

std::vector<Bytes> randomRows(Random &random, std::size_t rows, std::size_t bytes) {
  std::vector<Bytes> all(rows);
  for (Bytes &row : all) row = anyIntegers<std::uint8_t>(random, bytes);
  return all;
}

// Lists of the same length or of their own; by row they name bits, by column rows.
struct Fill {
  bool byRow, var;
  OrvStatus call(const std::int32_t *indices, const std::int32_t *counts, std::int32_t perList,
                 std::uint8_t *const *dst, std::int32_t rows, std::int32_t rowBytes, std::int32_t bitOffset,
                 std::int32_t width) const {
    if (byRow)
      return var ? orvsFillShortlist_RowVar_1u(indices, counts, width, dst, rows, rowBytes, bitOffset)
                 : orvsFillShortlist_Row_1u(indices, width, perList, dst, rows, rowBytes, bitOffset);
    return var ? orvsFillShortlist_ColumnVar_1u(indices, counts, dst, rows, rowBytes, bitOffset, width)
               : orvsFillShortlist_Column_1u(indices, perList, dst, rows, rowBytes, bitOffset, width);
  }
};
constexpr Fill kFills[] = {{true, false}, {true, true}, {false, false}, {false, true}};

TEST(Shortlist, TogglesWhatIsListed) {
  Random random(7);
  for (const Fill &fill : kFills)
    for (std::size_t width = 1; width <= 20; ++width)
      for (std::size_t bitOffset = 0; bitOffset <= 9; ++bitOffset) {
        const std::size_t rows = 1 + random() % 4, rowBytes = (bitOffset + width + 7) / 8;
        const std::size_t lists = fill.byRow ? rows : width, limit = fill.byRow ? width : rows;
        const auto perList = static_cast<std::int32_t>(1 + random() % 5);
        std::vector<std::int32_t> counts(lists, perList), indices;
        std::vector<Bytes> expected = randomRows(random, rows, rowBytes);
        Rows dst(expected);
        const std::vector<Bytes> before = expected;
        for (std::size_t l = 0; l < lists; ++l) {
          if (fill.var) counts[l] = static_cast<std::int32_t>(1 + random() % 5);
          for (std::int32_t i = 0; i < counts[l]; ++i) {
            const std::size_t index = random() % limit;
            indices.push_back(static_cast<std::int32_t>(index));
            fill.byRow ? flip(expected[l], bitOffset + index) : flip(expected[index], bitOffset + l);
          }
        }
        const auto call = [&](std::size_t bytes) {
          return fill.call(indices.data(), counts.data(), perList, dst.pointers.data(),
                           static_cast<std::int32_t>(rows), static_cast<std::int32_t>(bytes),
                           static_cast<std::int32_t>(bitOffset), static_cast<std::int32_t>(width));
        };
        ASSERT_EQ(call(rowBytes), orvStsNoErr);
        ASSERT_EQ(dst.values(), expected) << "width " << width << ", offset " << bitOffset;
        ASSERT_EQ(call(rowBytes), orvStsNoErr);
        ASSERT_EQ(dst.values(), before) << "listed twice";
        ASSERT_EQ(call(rowBytes - 1), rowBytes > 1 ? orvStsStrideErr : orvStsSizeErr);
        if (fill.var) {
          const std::int32_t count = std::exchange(counts[bitOffset % lists], 0);
          ASSERT_EQ(call(rowBytes), orvStsSizeErr);
          counts[bitOffset % lists] = count;
        }
        for (const auto wrong : {static_cast<std::int32_t>(limit), -1, INT32_MIN}) {
          indices[bitOffset % indices.size()] = wrong;
          ASSERT_EQ(call(rowBytes), orvStsBadArgErr);
          ASSERT_EQ(dst.values(), before) << "written before all indices were tested";
        }
      }
}

// What the order tests of both families share: which fault is where.
enum : unsigned {
  indices = 1,
  dst = 2,
  counts = 4,
  rows = 8,
  width = 16,
  bytes = 32,
  offset = 64,
  list = 128,  // a list without an entry
  stride = 256,
  index = 512,
  table = 1024,
  tableRows = 2048
};

// Counts are tested before the stride by row, and after it by column.
TEST(Shortlist, OrderOfChecks) {
  for (const Fill &fill : kFills) {
    std::vector<Fault> order{{indices, orvStsNullPtrErr}, {dst, orvStsNullPtrErr}};
    if (fill.var) order.push_back({counts, orvStsNullPtrErr});
    for (const unsigned size : {rows, width, bytes, offset}) order.push_back({size, orvStsSizeErr});
    order.push_back({stride, orvStsStrideErr});
    const bool countsLast = fill.var && !fill.byRow;
    order.insert(countsLast ? order.end() : order.end() - 1, {list, orvStsSizeErr});
    order.push_back({index, orvStsBadArgErr});
    Rows untouched({Bytes{1, 2}, Bytes{3, 4}});
    expectOrderOfChecks(order, [&](unsigned faults) {
      const auto has = [faults](unsigned bit) { return (faults & bit) != 0; };
      const std::int32_t last = has(index) ? 2 : 1, perList = has(list) ? 0 : 2;
      const std::int32_t given[] = {0, 1, 1, last}, lists[] = {2, perList};
      const std::int32_t bitOffset = has(offset) ? -1 : has(stride) ? INT32_MAX : 14;
      return fill.call(has(indices) ? nullptr : given, has(counts) ? nullptr : lists, perList,
                       has(dst) ? nullptr : untouched.pointers.data(), has(rows) ? 0 : 2,
                       has(bytes)    ? 0
                       : has(stride) ? 1
                                     : 2,
                       bitOffset, has(width) ? 0 : 2);
    });
    EXPECT_EQ(untouched.values(), (std::vector<Bytes>{{1, 2}, {3, 4}}));
  }
}

// Rows of a sign table: unions of bits; with counts a single flag, from lists that all start at the first
// entry.
TEST(SignTable, UnitesTableRows) {
  Random random(8);
  for (const bool var : {false, true})
    for (std::size_t bits = 1; bits <= 27; ++bits)
      for (std::size_t bitOffset = 0; bitOffset <= 9; ++bitOffset) {
        const std::size_t height = 1 + random() % 5, rows = 1 + random() % 4, dstBytes = (bits + 7) / 8;
        std::vector<Bytes> table = randomRows(random, height, (bitOffset + bits + 7) / 8);
        for (Bytes &row : table)  // mostly clear, but for what lies outside
          for (std::size_t b = 0; b < bits; ++b)
            if (bitOf(row, bitOffset + b) && random() % 8 != 0) flip(row, bitOffset + b);
        const std::size_t perRow = 1 + random() % 3;
        std::vector<std::int32_t> counts(rows, static_cast<std::int32_t>(perRow));
        std::vector<std::uint8_t> entries;
        for (std::int32_t &count : counts) {
          if (var) count = static_cast<std::int32_t>(1 + random() % 4);
          for (std::int32_t i = 0; i < count; ++i)
            entries.push_back(static_cast<std::uint8_t>(random() % height));
        }
        std::vector<Bytes> expected(rows, Bytes(dstBytes));
        Rows source(table);
        std::vector<std::uint8_t *> read(height);  // what no output row reads may be missing
        for (std::size_t r = 0; r < rows; ++r)
          for (std::size_t i = 0; i < static_cast<std::size_t>(counts[r]); ++i) {
            const std::size_t entry = entries[var ? i : perRow * r + i];
            read[entry] = source.pointers[entry];
            for (std::size_t b = 0; b < bits; ++b) {
              if (!bitOf(table[entry], bitOffset + b)) continue;
              const std::size_t bit = var ? 0 : b;
              if (!bitOf(expected[r], bit)) flip(expected[r], bit);
            }
          }
        source.pointers = read;
        Guarded<std::uint8_t> result(rows * dstBytes);
        const auto n = [](std::size_t v) { return static_cast<std::int32_t>(v); };
        ASSERT_EQ(
            var ? orvsBuildSignTable_Var_8u1u(entries.data(), counts.data(), source.readOnly(), n(height),
                                              n(table[0].size()), n(bitOffset), result.data(), n(rows),
                                              n(bits))
                : orvsBuildSignTable_8u1u(entries.data(), n(perRow), source.readOnly(), n(height),
                                          n(table[0].size()), n(bitOffset), result.data(), n(rows), n(bits)),
            orvStsNoErr);
        for (std::size_t r = 0; r < rows; ++r)
          for (std::size_t k = 0; k < dstBytes; ++k)
            ASSERT_EQ(result.at(r * dstBytes + k), expected[r][k]) << "row " << r << ", bits " << bits;
      }
}

TEST(SignTable, OrderOfChecks) {
  const Bytes row(2);
  const std::uint8_t *const tables[] = {row.data(), row.data()};
  for (const bool var : {false, true}) {
    std::vector<Fault> order{{indices, orvStsNullPtrErr}, {table, orvStsNullPtrErr}, {dst, orvStsNullPtrErr}};
    if (var) order.push_back({counts, orvStsNullPtrErr});
    for (const unsigned size : {tableRows, bytes, width, rows, offset, list})
      order.push_back({size, orvStsSizeErr});
    order.push_back({stride, orvStsStrideErr});
    order.push_back({index, orvStsBadArgErr});
    Guarded<std::uint8_t> result(2);
    expectOrderOfChecks(order, [&](unsigned faults) {
      const auto has = [faults](unsigned bit) { return (faults & bit) != 0; };
      const auto size = [&](unsigned bit) { return has(bit) ? 0 : 2; };
      const std::uint8_t given[] = {0, 1, 1, static_cast<std::uint8_t>(size(index) == 0 ? 2 : 1)};
      const std::int32_t lists[] = {2, size(list)};
      const std::int32_t bitOffset = has(offset) ? -1 : has(stride) ? INT32_MAX : 14;
      const std::uint8_t *const entries = has(indices) ? nullptr : given;
      const std::uint8_t *const *const tableRow = has(table) ? nullptr : tables;
      std::uint8_t *const out = has(dst) ? nullptr : result.data();
      const std::int32_t rowBytes = has(bytes) ? 0 : has(stride) ? 1 : 2;
      return var ? orvsBuildSignTable_Var_8u1u(entries, has(counts) ? nullptr : lists, tableRow,
                                               size(tableRows), rowBytes, bitOffset, out, size(rows),
                                               size(width))
                 : orvsBuildSignTable_8u1u(entries, size(list), tableRow, size(tableRows), rowBytes,
                                           bitOffset, out, size(rows), size(width));
    });
    EXPECT_TRUE(result.untouched());
  }
}

}  // namespace
}  // namespace orv::test
