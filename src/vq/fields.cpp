// Fields of codebooks of width 1 and 2.

#include "vq/fields.h"

#include <algorithm>
#include <cfloat>
#include <cmath>

#include "core/alloc.h"
#include "primitives/simd.h"

using orv::simd::f32x4;

namespace orv::cdbk {
namespace {

constexpr std::int32_t kLeastRows = 11;
constexpr std::int32_t kFirstCells = 4;
constexpr float kWorthwhile = 0.05F;  // the part of its cost that a finer field has to save

// The range of one element over all rows, and limits a little wider than that.
struct Range {
  float least, most;

  float low() const { return least * (least > 0.0F ? 0.9F : 1.1F); }
  float high() const { return most * (most > 0.0F ? 1.1F : 0.9F); }
  float extent() const { return std::abs(most - least); }
  float cell(std::int32_t cells) const { return extent() * 1.1F / static_cast<float>(cells); }
};

Range rangeOf(const float *values, std::int32_t n) {
  Range range{values[0], values[0]};
  for (std::int32_t r = 1; r < n; ++r) {
    range.least = std::min(range.least, values[r]);
    range.most = std::max(range.most, values[r]);
  }
  return range;
}

bool isAtMost(float a, float b) { return Own_Correct_Less_32f(a, b) || Own_Correct_Equ_32f(a, b); }

template <class T>
void copyElements(const CdbkState &cdbk, std::int32_t k, float *values) {
  for (std::int32_t r = 0; r < cdbk.size; ++r) values[r] = static_cast<float>(rowOf<T>(cdbk, r)[k]);
}

// A field, its tables and its lists in one block; null if that cannot be had.
template <class Field>
Field *allocateField(std::int64_t lists, std::int64_t entries, std::int32_t **firstEntry) {
  const std::int64_t bytes = std::int64_t{sizeof(Field)} + lists * std::int64_t{sizeof(std::int32_t *)} +
                             (lists + entries) * std::int64_t{sizeof(std::int32_t)};
  auto *field = reinterpret_cast<Field *>(allocateBytes(bytes));
  if (field == nullptr) return nullptr;
  *field = Field{};
  field->ppLists = reinterpret_cast<std::int32_t **>(field + 1);
  field->pCounts = reinterpret_cast<std::int32_t *>(field->ppLists + lists);
  *firstEntry = field->pCounts + lists;
  return field;
}

// --- width 1

class Line {
 public:
  Line(const float *values, std::int32_t height)
      : values_(values), height_(height), range_(rangeOf(values, height)) {}

  // The number of cells, or 0 where a search of all rows is no worse.
  std::int32_t chooseCells() const {
    std::int32_t n = kFirstCells;
    float cost = costOf(n);
    for (float finer = costOf(n + 1); cost - finer > kWorthwhile * cost; finer = costOf(n + 1)) {
      cost = finer;
      ++n;
    }
    return isAtMost(cost, static_cast<float>(height_) / 5.0F) ? n : 0;
  }

  CdbkLineField *build(std::int32_t cells) const {
    std::int32_t *entry = nullptr;
    auto *field =
        allocateField<CdbkLineField>(std::int64_t{cells} + 2, std::int64_t{height_} + 2 * cells, &entry);
    if (field == nullptr) return nullptr;
    field->cellCount = cells;
    field->cellWidth = range_.cell(cells);
    field->low = range_.low();
    field->high = range_.high();
    for (std::int32_t j = 0; j < cells; ++j) {
      std::int32_t *const list = entry;
      for (std::int32_t r = 0; r < height_; ++r)
        if (cellOf(r, cells) == j) *entry++ = r;
      if (j > 0) entry = addNearest(entry, static_cast<float>(j), 0, j - 1, cells);
      if (j < cells - 1) entry = addNearest(entry, static_cast<float>(j + 1), j + 1, cells - 1, cells);
      field->ppLists[j + 1] = list;
      field->pCounts[j + 1] = static_cast<std::int32_t>(entry - list);
    }
    for (const auto &[to, from] : {std::pair{0, 1}, std::pair{cells + 1, cells}}) {
      field->ppLists[to] = field->ppLists[from];
      field->pCounts[to] = field->pCounts[from];
    }
    return field;
  }

 private:
  // Cells are laid from `low` over a little more than the range of the rows, which need not reach the last
  // rows where `low` is far below the first: what lies behind the last cell belongs to it, as it does in a
  // search.
  std::int32_t cellOf(std::int32_t r, std::int32_t cells) const {
    const float c = placeOf(r, cells);
    return c > 0.0F ? static_cast<std::int32_t>(std::min(c, static_cast<float>(cells - 1))) : 0;
  }
  float placeOf(std::int32_t r, std::int32_t cells) const {
    return (values_[r] - range_.low()) / range_.cell(cells);
  }

  // Rows that a search looks at if rows and searches are spread evenly; without bounds where a cell is empty.
  float costOf(std::int32_t cells) const {
    if (range_.extent() < 1e-5F) return FLT_MAX;
    std::uint64_t marks = 0;  // more than 64 cells never pay
    for (std::int32_t r = 0; r < height_; ++r) {
      const float c = placeOf(r, cells);
      if (c < static_cast<float>(cells))
        marks |= std::uint64_t{1} << static_cast<std::uint32_t>(std::max(c, 0.0F));
    }
    if (marks != (std::uint64_t{1} << cells) - 1) return FLT_MAX;
    return 2.0F * static_cast<float>(height_) / static_cast<float>(cells);
  }

  // Of the rows in cells first to last the nearest to an edge; the first of equals.
  std::int32_t *addNearest(std::int32_t *entry, float edge, std::int32_t first, std::int32_t last,
                           std::int32_t cells) const {
    std::int32_t nearest = -1;
    float least = kFarthest;
    for (std::int32_t r = 0; r < height_; ++r) {
      if (const std::int32_t cell = cellOf(r, cells); cell < first || cell > last) continue;
      const float d = std::abs(values_[r] - range_.low() - edge * range_.cell(cells));
      if (d < least) {
        least = d;
        nearest = r;
      }
    }
    if (nearest >= 0) *entry++ = nearest;
    return entry;
  }

  const float *values_;
  std::int32_t height_;
  Range range_;
};

// --- width 2

class Grid {
 public:
  Grid(const float *xs, const float *ys, float weightX, float weightY, float *near, float *far,
       std::uint8_t *borders, std::int32_t height)
      : xs_(xs),
        ys_(ys),
        weightX_(weightX),
        weightY_(weightY),
        near_(near),
        far_(far),
        borders_(borders),
        height_(height),
        rangeX_(rangeOf(xs, height)),
        rangeY_(rangeOf(ys, height)) {}

  // False where a search of all rows is hardly worse.
  bool chooseCells() {
    float cost = costOf(kFirstCells, kFirstCells);
    columns_ = rows_ = kFirstCells;
    for (;;) {
      const float taller = costOf(columns_, rows_ + 1), wider = costOf(columns_ + 1, rows_);
      const bool isTaller = Own_Correct_Less_32f(taller, wider);
      const float finer = isTaller ? taller : wider;
      if (!(cost - finer > kWorthwhile * cost)) break;
      cost = finer;
      ++(isTaller ? rows_ : columns_);
    }
    return isAtMost(cost, static_cast<float>(height_) / 10.0F);
  }

  CdbkGridField *build() {
    std::int64_t entries = 0;
    std::fill_n(borders_, height_, std::uint8_t{0});
    for (std::int32_t j = 0; j < rows_; ++j)
      for (std::int32_t i = 0; i < columns_; ++i) {
        const std::uint8_t bits = bordersOf(i, j);
        entries += forEachCandidate({columns_, rows_, i, j}, [&](std::int32_t r) { borders_[r] |= bits; });
      }
    for (std::int32_t r = 0; r < height_; ++r)
      if (isOutside(r)) borders_[r] = kAllBorders;
    for (const std::uint8_t bits : kBorderLists)
      for (std::int32_t r = 0; r < height_; ++r) entries += (borders_[r] & bits) != 0;

    std::int32_t *entry = nullptr;
    const std::int64_t lists = (std::int64_t{columns_} + 2) * (std::int64_t{rows_} + 2);
    auto *field = allocateField<CdbkGridField>(lists, entries, &entry);
    if (field == nullptr) return nullptr;
    field->columns = columns_;
    field->rows = rows_;
    field->cellWidth = rangeX_.cell(columns_);
    field->cellHeight = rangeY_.cell(rows_);
    field->left = rangeX_.low();
    field->right = rangeX_.high();
    field->bottom = rangeY_.low();
    field->top = rangeY_.high();
    const auto setList = [field, this](std::int32_t i, std::int32_t j, std::int32_t *list, std::int64_t n) {
      const std::int64_t at = std::int64_t{j + 1} * (columns_ + 2) + i + 1;
      field->ppLists[at] = list;
      field->pCounts[at] = static_cast<std::int32_t>(n);
    };
    for (std::int32_t j = 0; j < rows_; ++j)
      for (std::int32_t i = 0; i < columns_; ++i) {
        std::int32_t *const list = entry;
        forEachCandidate({columns_, rows_, i, j}, [&](std::int32_t r) { *entry++ = r; });
        setList(i, j, list, entry - list);
      }
    for (const std::uint8_t bits : kBorderLists) {
      std::int32_t *const list = entry;
      for (std::int32_t r = 0; r < height_; ++r)
        if ((borders_[r] & bits) != 0) *entry++ = r;
      for (std::int32_t j = -1; j <= rows_; ++j)
        for (std::int32_t i = -1; i <= columns_; ++i)
          if (borderAt(i, j) == bits) setList(i, j, list, entry - list);
    }
    return field;
  }

 private:
  struct Cell {
    std::int32_t columns, rows, i, j;
  };

  // Lines of cells along the border. The cells of a side of the border hold the candidates of the whole line
  // along it, those of a corner the candidates of both lines: the way from a point outside to its nearest row
  // enters the grid through one of these lines, and where it does the same row is nearest. Rows outside the
  // grid, which need not cover all of them, are in all border lists.
  static constexpr std::uint8_t kTop = 1, kBottom = 2, kLeft = 4, kRight = 8, kAllBorders = 15;
  static constexpr std::uint8_t kBorderLists[] = {
      kTop, kBottom, kLeft, kRight, kTop | kLeft, kTop | kRight, kBottom | kLeft, kBottom | kRight};

  std::uint8_t bordersOf(std::int32_t i, std::int32_t j) const {
    return static_cast<std::uint8_t>((j == 0 ? kTop : 0) | (j == rows_ - 1 ? kBottom : 0) |
                                     (i == 0 ? kLeft : 0) | (i == columns_ - 1 ? kRight : 0));
  }
  std::uint8_t borderAt(std::int32_t i, std::int32_t j) const {
    return static_cast<std::uint8_t>((j < 0 ? kTop : 0) | (j == rows_ ? kBottom : 0) | (i < 0 ? kLeft : 0) |
                                     (i == columns_ ? kRight : 0));
  }
  bool isOutside(std::int32_t r) const {
    const float column = (xs_[r] - rangeX_.low()) / rangeX_.cell(columns_);
    const float row = (rangeY_.high() - ys_[r]) / rangeY_.cell(rows_);
    return !(column >= 0.0F && column < static_cast<float>(columns_) && row >= 0.0F &&
             row < static_cast<float>(rows_));
  }

  // The mean number of candidates of a cell.
  float costOf(std::int32_t columns, std::int32_t rows) {
    if (Own_Correct_Equ_32f(rangeX_.extent(), 0.0F) || Own_Correct_Equ_32f(rangeY_.extent(), 0.0F))
      return FLT_MAX;
    std::int64_t candidates = 0;
    for (std::int32_t j = 0; j < rows; ++j)
      for (std::int32_t i = 0; i < columns; ++i)
        candidates += forEachCandidate({columns, rows, i, j}, [](auto) {});
    return static_cast<float>(candidates) / (static_cast<float>(columns) * static_cast<float>(rows));
  }

  struct Rectangle {
    float left, right, bottom, top;
  };
  Rectangle rectangleOf(const Cell &cell) const {
    const float width = rangeX_.cell(cell.columns), height = rangeY_.cell(cell.rows);
    const auto i = static_cast<float>(cell.i), j = static_cast<float>(cell.j);
    return {rangeX_.low() + i * width, rangeX_.low() + (i + 1.0F) * width,
            rangeY_.high() - (j + 1.0F) * height, rangeY_.high() - j * height};
  }

  // Calls use(row) for every row that may be nearest to some point of a cell, in row order, and returns how
  // many these are: rows whose smallest distance to the rectangle is not above the least of all largest
  // distances.
  template <class Use>
  std::int64_t forEachCandidate(const Cell &cell, Use use) {
    const Rectangle box = rectangleOf(cell);
    const float leastFar = boundDistances(box);
    // The tolerant extremes are within 1.000001 of the plain ones: only rows close to the limits need them.
    float minimax = FLT_MAX, near = 0.0F, far = 0.0F;
    for (std::int32_t r = 0; r < height_; ++r) {
      if (far_[r] > leastFar * 1.00001F) continue;
      OwnFindMinMaxDist(r, box, &near, &far);
      minimax = std::min(minimax, far);
    }
    std::int64_t count = 0;
    for (std::int32_t r = 0; r < height_; ++r) {
      if (near_[r] > minimax * 1.001F) continue;
      OwnFindMinMaxDist(r, box, &near, &far);
      if (!isAtMost(near, minimax)) continue;
      use(r);
      ++count;
    }
    return count;
  }

  // The smallest and the largest distance of every row to corners and edges, compared plainly; returns the
  // least of the largest. The last four rows are filled up with copies of the first.
  float boundDistances(const Rectangle &box) {
    const f32x4 left = simd::splat4(box.left), right = simd::splat4(box.right),
                bottom = simd::splat4(box.bottom), top = simd::splat4(box.top), wx = simd::splat4(weightX_),
                wy = simd::splat4(weightY_);
    const f32x4 none = simd::splat4(FLT_MAX);
    f32x4 least = none;
    for (std::int32_t r = 0; r < height_; r += 4) {
      const f32x4 x = simd::load4(xs_ + r), y = simd::load4(ys_ + r);
      const f32x4 toLeft = (x - left) * (x - left) * wx, toRight = (x - right) * (x - right) * wx;
      const f32x4 toBottom = (y - bottom) * (y - bottom) * wy, toTop = (y - top) * (y - top) * wy;
      const f32x4 nearX = simd::min(toLeft, toRight), nearY = simd::min(toBottom, toTop);
      const f32x4 alongY = simd::select((x >= left) & (x <= right), nearY, none);
      const f32x4 alongX = simd::select((y >= bottom) & (y <= top), nearX, none);
      const f32x4 far = simd::max(toLeft, toRight) + simd::max(toBottom, toTop);
      simd::store4(near_ + r, simd::min(nearX + nearY, simd::min(alongX, alongY)));
      simd::store4(far_ + r, far);
      least = simd::min(least, far);
    }
    float lanes[4];
    simd::store4(lanes, least);
    return std::min(std::min(lanes[0], lanes[1]), std::min(lanes[2], lanes[3]));
  }

  // Distances to the four corners, and along one axis to the edges that the row stands opposite to. A row
  // within the rectangle has a smallest distance above zero.
  void OwnFindMinMaxDist(std::int32_t r, const Rectangle &box, float *near, float *far) const {
    const float x = xs_[r], y = ys_[r];
    const float toLeft = (x - box.left) * (x - box.left) * weightX_;
    const float toRight = (x - box.right) * (x - box.right) * weightX_;
    const float toBottom = (y - box.bottom) * (y - box.bottom) * weightY_;
    const float toTop = (y - box.top) * (y - box.top) * weightY_;
    *near = FLT_MAX;
    *far = 0.0F;
    const auto add = [near, far](float d) {
      if (Own_Correct_Less_32f(d, *near)) *near = d;
      if (Own_Correct_Greater_32f(d, *far)) *far = d;
    };
    add(toLeft + toTop);
    add(toRight + toTop);
    add(toLeft + toBottom);
    add(toRight + toBottom);
    if (x >= box.left && x <= box.right) {
      add(toTop);
      add(toBottom);
    }
    if (y >= box.bottom && y <= box.top) {
      add(toLeft);
      add(toRight);
    }
  }

  const float *xs_, *ys_;  // padded to a multiple of four
  float weightX_, weightY_;
  float *near_, *far_;
  std::uint8_t *borders_;  // of each row the lines along the border where it is a candidate
  std::int32_t height_;
  Range rangeX_, rangeY_;
  std::int32_t columns_ = 0, rows_ = 0;
};

template <class T>
OrvStatus buildLine(CdbkState &cdbk) {
  const WorkArray<float> values(cdbk.size);
  if (!values) return orvStsMemAllocErr;
  copyElements<T>(cdbk, 0, values.get());
  const Line line(values.get(), cdbk.size);
  const std::int32_t cells = line.chooseCells();
  if (cells == 0) return orvStsNoErr;
  cdbk.pField = line.build(cells);
  return cdbk.pField == nullptr ? orvStsMemAllocErr : orvStsNoErr;
}

template <class T>
OrvStatus buildGrid(CdbkState &cdbk) {
  const std::int64_t padded = (std::int64_t{cdbk.size} + 3) / 4 * 4;
  const WorkArray<float> memory(lengthOf(4 * padded));
  const WorkArray<std::uint8_t> borders(cdbk.size);
  if (!memory || !borders) return orvStsMemAllocErr;
  float *const xs = memory.get(), *const ys = xs + padded;
  copyElements<T>(cdbk, 0, xs);
  copyElements<T>(cdbk, 1, ys);
  std::fill(xs + cdbk.size, xs + padded, xs[0]);
  std::fill(ys + cdbk.size, ys + padded, ys[0]);
  const T *w = weightsOf<T>(cdbk);
  Grid grid(xs, ys, static_cast<float>(w[0]), static_cast<float>(w[1]), ys + padded, ys + 2 * padded,
            borders.get(), cdbk.size);
  if (!grid.chooseCells()) return orvStsNoErr;
  cdbk.pField = grid.build();
  return cdbk.pField == nullptr ? orvStsMemAllocErr : orvStsNoErr;
}

}  // namespace

template <class T>
OrvStatus buildField(CdbkState &cdbk) {
  if (cdbk.size < kLeastRows || cdbk.width > 2) return orvStsNoErr;
  const OrvStatus status = cdbk.width == 1 ? buildLine<T>(cdbk) : buildGrid<T>(cdbk);
  if (cdbk.pField != nullptr) cdbk.flags ^= kFieldInUse;
  return status;
}

template OrvStatus buildField<float>(CdbkState &);
template OrvStatus buildField<std::int16_t>(CdbkState &);

}  // namespace orv::cdbk
