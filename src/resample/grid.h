// Long filters by fast Fourier transforms: the filtered signal on a grid of places, a block at a time.
//
// The grid has `up` places in every `down` input periods, the first of them on an input. Place r + up j is a
// filter of its own, of the inputs down j, down j + 1, ...; every down-th of these, from the i-th on, and the
// taps that meet them are a convolution at one rate. So each block takes `down` transforms of inputs, `up`
// transforms back, and the products of spectra between them.

#ifndef ORV_RESAMPLE_GRID_H
#define ORV_RESAMPLE_GRID_H

#include <cstddef>
#include <cstdint>

#include "primitives/fft/fft.h"

namespace orv::resample {

struct GridShape {
  std::int64_t up, down;  // 0: there is no grid
  std::int64_t taps;      // of each filter

  bool exists() const { return up != 0; }
  // Taps that one transform of every down-th input meets.
  std::int64_t branchTaps() const { return (taps + (up - 1) * down / up + down - 1) / down; }
  // Of the transforms; 0 if the taps are too many.
  std::int32_t order() const;
  std::int64_t len() const { return std::int64_t{1} << order(); }
  // How often `up` places are had from a block, without those that the ends of a transform spoil.
  std::int64_t steps() const { return (len() - branchTaps() + 1) / 8 * 8; }
  std::int64_t bytes() const;
};

// Stands at a 64-byte boundary; the arrays follow. It is not moved.
struct alignas(64) Grid {
  OrvRealFftState32f *transform;
  std::int32_t len;
  std::int32_t up, down;
  std::int32_t steps;
  std::int32_t half;    // inputs before the one that place 0 of a block stands on
  std::int32_t filled;  // inputs of the block that has not been made yet

  float *filters() { return reinterpret_cast<float *>(this + 1); }  // their spectra
  float *inputs() { return filters() + std::ptrdiff_t{up} * down * len; }
  float *spectra() { return inputs() + std::ptrdiff_t{down} * len + 16; }
  float *values() { return spectra() + std::ptrdiff_t{down} * len; }
  float *results() { return values() + len + 16; }

  std::int32_t room() const { return down * len - filled; }
  std::int32_t outputs() const { return up * steps; }
  // Makes the places of a full block, and keeps the inputs that the next block begins with.
  void makeBlock(float *dst);
};

// A grid with `before` inputs of silence before the first, and the filters of its places. Row p of `rows`
// holds the taps of the places p / up input periods behind an input; the rows may lie in the inputs of the
// grid.
void placeGrid(Grid &grid, const GridShape &shape, std::int64_t before);
void setFilters(Grid &grid, const GridShape &shape, const float *rows);

}  // namespace orv::resample

#endif
