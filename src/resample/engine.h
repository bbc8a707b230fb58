// The state of a converter, and the loops that make outputs out of buffered inputs.

#ifndef ORV_RESAMPLE_ENGINE_H
#define ORV_RESAMPLE_ENGINE_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "core/alloc.h"
#include "orvsr/types.h"
#include "primitives/convert.h"
#include "primitives/memory.h"
#include "resample/design.h"
#include "resample/grid.h"

namespace orv::resample {

constexpr std::int64_t kAlignment = 64;

constexpr std::ptrdiff_t roundUp16(std::ptrdiff_t floats) { return (floats + 15) / 16 * 16; }

// Where the next output lies behind an input sample, in whole parts of an input period, and how far it is
// from output to output. Whole numbers, so that no length of stream and no way of cutting it moves an output.
// Between integer rates the parts are the L phases; otherwise they are as small as the last place of the
// ratio.
struct Clock {
  std::uint64_t modulus;    // parts of an input period, below 2^53
  std::uint64_t rest;       // below modulus
  std::uint64_t wholeStep;  // input periods
  std::uint64_t restStep;   // parts, below modulus

  // The input periods that the next output moves on by.
  std::int32_t advance() {
    rest += restStep;
    const bool carry = rest >= modulus;
    rest -= carry ? modulus : 0;
    return static_cast<std::int32_t>(wholeStep) + static_cast<std::int32_t>(carry);
  }
  bool isSampleBySample() const { return wholeStep == 1 && restStep == 0 && rest == 0; }
};

enum : std::int32_t {
  kFree16s = 0x52464931,
  kFree32f = 0x52464932,
  kFixed16s = 0x52464933,
  kFixed32f = 0x52464934,
  kNoInputEnd = -1
};

// Stands at the first 64-byte boundary of the caller's block. Behind it lie the rows of the filter, those
// that are summed if they are others, the buffer of samples, that of inputs, and the grid.
struct alignas(kAlignment) Converter {
  std::int32_t tag;  // one of the four kinds while it lives
  // Of the sums:
  std::int32_t perSample;
  std::int32_t rows;
  std::int32_t taps;
  Clock clock;
  std::int32_t capacity;  // of the buffer of samples: inputs, or places of the grid
  std::int32_t filled;    // its samples
  std::int32_t first;     // where the window of the next output begins
  std::int32_t tail;      // samples to come behind the last input; kNoInputEnd while that is not known
  // The end of the inputs lies endPart / endParts sample periods behind the sample in the middle of the last
  // window, or a whole one: then both are 1.
  std::int32_t endPart, endParts;
  std::int32_t mostHeldBack;
  // Of the filter as it was designed:
  std::int32_t designedRows;
  std::int32_t designedTaps;
  std::int32_t ownRows;           // floats of rows that are summed and are not those of the design
  std::int32_t keptInputs;        // floats of the buffer of inputs
  std::int32_t gridUp, gridDown;  // the places of the grid in so many inputs; 1 and 1 if there is none
  bool hasGrid;
  // Of any ratio:
  double ratio;
  double minRatio;
  double rowsPerPart;
  std::uint64_t outputPeriod;  // in parts
  std::uint64_t made;          // outputs

  float *designed() { return reinterpret_cast<float *>(this + 1); }
  std::ptrdiff_t designedFloats() const { return std::ptrdiff_t{designedRows} * designedTaps; }
  float *filter() { return designed() + (hasGrid ? roundUp16(designedFloats()) : 0); }
  float *samples() {
    return designed() + (hasGrid ? roundUp16(designedFloats()) + ownRows : designedFloats());
  }
  // The inputs in the period of time of samples(), if they are kept.
  float *inputs() { return samples() + capacity; }
  Grid &grid() { return *reinterpret_cast<Grid *>(inputs() + keptInputs); }

  // Outputs that the buffer allows with a step of one sample.
  std::int32_t windows() const { return filled - first - taps + 1; }
};

// The object in a caller's block.
template <class State>
Converter *converterIn(State *block) {
  auto *bytes = reinterpret_cast<std::uint8_t *>(block);
  return reinterpret_cast<Converter *>(bytes + (0 - reinterpret_cast<std::uintptr_t>(bytes)) % kAlignment);
}

// An object at its start: the window of the first output, half of it ahead of the signal. Its clock, which
// counts samples, is yet to be set.
void build(Converter &c, std::int32_t tag, const Settings &settings, const Shape &shape);

// Sets the steps of the clock to those of a ratio of outputs to inputs, and leaves the next output where it
// is.
void setRatio(Converter &c, double ratio);

// As many outputs as the buffer and the room allow; their number. While more samples are to come in this
// call, some may be left for when these are in the buffer.
std::int32_t produceFixed(Converter &c, float *dst, std::int32_t room, bool moreToCome);
std::int32_t produceFree(Converter &c, float *dst, std::int32_t room, bool moreToCome);

using Produce = std::int32_t(Converter &, float *, std::int32_t, bool);

inline std::int32_t produceInto(Converter &c, Produce &produce, float *dst, std::int32_t room,
                                bool moreToCome) {
  return produce(c, dst, room, moreToCome);
}

// Rounded to nearest, ties to even, and saturated.
inline std::int32_t produceInto(Converter &c, Produce &produce, std::int16_t *dst, std::int32_t room,
                                bool moreToCome) {
  float scratch[2048];
  std::int32_t made = 0;
  while (made < room) {
    const std::int32_t now = produce(
        c, scratch, std::min<std::int32_t>(room - made, sizeof scratch / sizeof *scratch), moreToCome);
    if (now == 0) break;
    orvsConvert_32f16s_Sfs(scratch, dst + made, now, kRoundNearestEven, 0);
    made += now;
  }
  return made;
}

inline void copyInputs(const float *src, float *dst, std::int32_t len) {
  ownsCopy_8u(reinterpret_cast<const std::uint8_t *>(src), reinterpret_cast<std::uint8_t *>(dst),
              static_cast<std::size_t>(len) * 4);
}
inline void copyInputs(const std::int16_t *src, float *dst, std::int32_t len) {
  orvsConvert_16s32f(src, dst, len);
}

// Free places in the buffer of samples, wanted >= 1 of them being asked for; at least one if no output can be
// made.
std::int32_t makeRoom(Converter &c, std::int32_t wanted);

// Whether a block of the grid can be made, while the end of the inputs is not known.
inline bool isBlockFull(Converter &c) { return c.hasGrid && c.tail == kNoInputEnd && c.grid().room() == 0; }

// Moves a full block of the grid to the samples, or as many places of it as are wanted.
void takeBlock(Converter &c, std::int32_t wanted);

// Behind the last input: sets what is still to come, and lets some of it come.
void setEnd(Converter &c);
void takeTail(Converter &c);

// The source and the destination of one call, and how much of them is done.
template <class T>
struct Call {
  const T *src;
  std::int32_t srcLen;
  T *dst;
  std::int32_t dstLen;
  std::int32_t consumed = 0;
  std::int32_t produced = 0;
};

// As many of len inputs as there is room for; their number.
template <class T>
std::int32_t takeInputs(Converter &c, const T *src, std::int32_t len) {
  if (!c.hasGrid) {
    const std::int32_t now = std::min(len, makeRoom(c, len));
    copyInputs(src, c.samples() + c.filled, now);
    c.filled += now;
    return now;
  }
  Grid &grid = c.grid();
  const std::int32_t now = std::min(len, grid.room());
  copyInputs(src, grid.inputs() + grid.filled, now);
  grid.filled += now;
  return now;
}

template <class T>
void convert(Converter &c, Produce &produce, Call<T> &call, std::int32_t flags) {
  for (;;) {
    const std::int32_t room = call.dstLen - call.produced;
    const std::int32_t left = call.srcLen - call.consumed;
    if (room > 0) call.produced += produceInto(c, produce, call.dst + call.produced, room, left > 0);
    const bool full = call.produced == call.dstLen;
    if (!full && isBlockFull(c)) {
      takeBlock(c, c.grid().outputs());
      continue;
    }
    if (left > 0) {
      // What a block has given may be more than the room of one call: meanwhile the next one is filled.
      if (full && (call.dstLen == 0 || !c.hasGrid || isBlockFull(c))) return;
      call.consumed += takeInputs(c, call.src + call.consumed, left);
      continue;
    }
    if (flags == orvResampleEnd && c.tail == kNoInputEnd) setEnd(c);
    if (full || c.tail <= 0) return;
    takeTail(c);
  }
}

// The checks of a conversion, but for the ratio of a free one, which comes last.
template <class T>
OrvStatus checkCall(void *state, std::int32_t tag, const Call<T> &call, const std::int32_t *consumed,
                    const std::int32_t *produced, std::int32_t flags) {
  if (state == nullptr || consumed == nullptr || produced == nullptr) return orvStsNullPtrErr;
  if ((call.src == nullptr && call.srcLen != 0) || (call.dst == nullptr && call.dstLen != 0))
    return orvStsNullPtrErr;
  const Converter &c = *converterIn(state);
  if (c.tag != tag) return orvStsContextMatchErr;
  if (call.srcLen < 0 || call.dstLen < 0) return orvStsSizeErr;
  if (flags != orvResampleMore && flags != orvResampleEnd) return orvStsBadArgErr;
  if (call.srcLen > 0 && c.tail != kNoInputEnd) return orvStsBadArgErr;
  return orvStsNoErr;
}

// A block of bytes bytes into *ppState; nothing written where it cannot be had.
template <class State>
OrvStatus allocateBlock(std::int64_t bytes, State **block) {
  *block = reinterpret_cast<State *>(allocateBytes(bytes));
  return *block == nullptr ? orvStsMemAllocErr : orvStsNoErr;
}

template <class State>
OrvStatus release(State *block, std::int32_t tag) {
  if (block == nullptr) return orvStsNullPtrErr;
  Converter &c = *converterIn(block);
  if (c.tag != tag) return orvStsContextMatchErr;
  c.tag = 0;
  orvsFree(block);
  return orvStsNoErr;
}

}  // namespace orv::resample

#endif
