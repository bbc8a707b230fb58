#include "resample/grid.h"

#include <algorithm>
#include <cstring>

#include "primitives/fft/engine.h"
#include "primitives/fft/lanes.h"
#include "primitives/simd.h"

namespace orv::resample {
namespace {

using namespace simd;
using fft::Complex4;

// Transforms up to this length need no working memory.
constexpr std::int32_t kMostOrder = 12;
constexpr std::int32_t kLeastOrder = 9, kUsualOrder = 11;

constexpr std::int64_t roundUp64(std::int64_t bytes) { return (bytes + 63) / 64 * 64; }

// Every `branches`-th value, from each of the first on, to an array of its own.
void separate(const float *src, std::size_t branches, std::size_t len, float *dst) {
  if (branches == 2) {
    for (std::size_t q = 0; q < len; q += 4) {
      const Complex4 pairs = fft::loadInterleaved(src + 2 * q);
      store4(dst + q, pairs.re);
      store4(dst + len + q, pairs.im);
    }
    return;
  }
  for (std::size_t first = 0; first < branches; first += 4) {
    const std::size_t columns = std::min<std::size_t>(4, branches - first);
    for (std::size_t q = 0; q < len; q += 4) {
      const float *from = src + q * branches + first;
      f32x4 rows[4];
      for (std::size_t i = 0; i < 4; ++i) rows[i] = load4(from + i * branches);
      transpose(rows);
      for (std::size_t i = 0; i < columns; ++i) store4(dst + (first + i) * len + q, rows[i]);
    }
  }
}

// The sum of the products of `branches` spectra (or as many as the template says) with those of their
// filters, as the values whose Hartley transform is the sum of the convolutions.
template <std::size_t fixedBranches>
void multiply(const float *spectra, std::size_t anyBranches, const float *filters, std::size_t len,
              float *values) {
  const std::size_t branches = fixedBranches > 0 ? fixedBranches : anyBranches;
  float zero = 0.0F, last = 0.0F;
  for (std::size_t i = 0; i < branches; ++i) {
    zero += spectra[i * len] * filters[8 * i];
    last += spectra[i * len + 1] * filters[8 * i + 4];
  }
  const float *h = filters;
  for (std::size_t k = 0; k < len / 2; k += 4, h += 8 * branches) {
    Complex4 sum = fft::loadInterleaved(spectra + 2 * k) * fft::loadLanes(h);
    for (std::size_t i = 1; i < branches; ++i)
      sum = sum + fft::loadInterleaved(spectra + i * len + 2 * k) * fft::loadLanes(h + 8 * i);
    const f32x4 above = sum.re + sum.im;
    store4(values + k, sum.re - sum.im);
    store4(values + len - k - 3, shuffle<3, 2, 1, 0>(above, above));
  }
  values[0] = zero;
  values[len / 2] = last;
}

// Value n of array r to dst[arrays n + r].
void interleave(const float *src, std::size_t arrays, std::size_t apart, std::size_t len, float *dst) {
  if (arrays == 2) {
    for (std::size_t n = 0; n < len; n += 4) {
      const f32x4 a = load4(src + n), b = load4(src + apart + n);
      store4(dst + 2 * n, interleaveLow(a, b));
      store4(dst + 2 * n + 4, interleaveHigh(a, b));
    }
    return;
  }
  for (std::size_t r = 0; r < arrays; ++r)
    for (std::size_t n = 0; n < len; ++n) dst[arrays * n + r] = src[r * apart + n];
}

}  // namespace

// Long enough that the ends, which are spoilt, do not count for much, but not so long that outputs are long
// in coming.
std::int32_t GridShape::order() const {
  const std::int64_t ends = branchTaps();
  std::int32_t order = kLeastOrder;
  while (order < kMostOrder && std::int64_t{1} << order < (order < kUsualOrder ? 5 : 3) * ends) ++order;
  return std::int64_t{1} << order < 2 * ends ? 0 : order;
}

std::int64_t GridShape::bytes() const {
  std::int32_t transform = 0, building = 0, working = 0;
  orvsFFTGetSize_R_32f(order(), kFftNoDivision, 0, &transform, &building, &working);
  const std::int64_t floats = (up * down + 2 * down + 1 + up) * len() + 32;
  return std::int64_t{sizeof(Grid)} + 4 * floats + roundUp64(transform);
}

void Grid::makeBlock(float *dst) {
  const auto size = static_cast<std::size_t>(len), branches = static_cast<std::size_t>(down);
  const float *branch = inputs();
  if (branches > 1) {
    separate(inputs(), branches, size, spectra());
    branch = spectra();
  }
  for (std::size_t i = 0; i < branches; ++i)
    fft::forward(*transform, branch + i * size, spectra() + i * size, fft::Layout::perm, nullptr);
  const auto places = static_cast<std::size_t>(up), made = static_cast<std::size_t>(steps);
  for (std::size_t r = 0; r < places; ++r) {
    const float *filter = filters() + r * branches * size;
    switch (branches) {
      case 1:
        multiply<1>(spectra(), branches, filter, size, values());
        break;
      case 2:
        multiply<2>(spectra(), branches, filter, size, values());
        break;
      case 3:
        multiply<3>(spectra(), branches, filter, size, values());
        break;
      default:
        multiply<0>(spectra(), branches, filter, size, values());
    }
    fft::hartley(*transform, values(), results() + r * size, 1.0F);
  }
  if (places == 1)
    std::memcpy(dst, results(), made * sizeof(float));
  else
    interleave(results(), places, size, made, dst);
  filled -= down * steps;
  std::memmove(inputs(), inputs() + std::ptrdiff_t{down} * steps, static_cast<std::size_t>(filled) * 4);
}

void placeGrid(Grid &grid, const GridShape &shape, std::int64_t before) {
  grid.len = static_cast<std::int32_t>(shape.len());
  grid.up = static_cast<std::int32_t>(shape.up);
  grid.down = static_cast<std::int32_t>(shape.down);
  grid.steps = static_cast<std::int32_t>(shape.steps());
  grid.half = static_cast<std::int32_t>(shape.taps / 2 - 1);
  grid.filled = static_cast<std::int32_t>(before) + grid.half;
  auto *memory = reinterpret_cast<std::uint8_t *>(grid.results() + std::ptrdiff_t{grid.up} * grid.len);
  orvsFFTInit_R_32f(&grid.transform, shape.order(), kFftNoDivision, 0, memory,
                    reinterpret_cast<std::uint8_t *>(grid.results()));
}

void setFilters(Grid &grid, const GridShape &shape, const float *rows) {
  const std::int64_t len = grid.len;
  const f32x4 factor = splat4(1.0F / static_cast<float>(len));
  float *values = grid.values(), *spectrum = grid.spectra();
  for (std::int64_t r = 0; r < shape.up; ++r) {
    const float *row = rows + r * shape.down % shape.up * shape.taps;
    const std::int64_t behind = r * shape.down / shape.up;
    for (std::int64_t i = 0; i < shape.down; ++i) {
      std::fill_n(values, len, 0.0F);
      for (std::int64_t q = 0; q < shape.branchTaps(); ++q)
        if (const std::int64_t k = q * shape.down + i - behind; k >= 0 && k < shape.taps) values[q] = row[k];
      fft::forward(*grid.transform, values, spectrum, fft::Layout::perm, nullptr);
      // Conjugate, as taps meet inputs in the order of both.
      float *first = grid.filters() + r * shape.down * len + 8 * i, *to = first;
      for (std::int64_t k = 0; k < len / 2; k += 4, to += 8 * shape.down) {
        const Complex4 h = fft::loadInterleaved(spectrum + 2 * k) * factor;
        fft::storeLanes(to, {h.re, h.im ^ signBits4()});
      }
      first[4] = -first[4];  // bin N/2, real, which stands beside bin 0
    }
  }
  std::fill_n(grid.inputs(), grid.filled, 0.0F);
}

}  // namespace orv::resample
