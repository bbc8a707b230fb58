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

namespace orv::resample {

constexpr std::int64_t kAlignment = 64;

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

// Stands at the first 64-byte boundary of the caller's block; the rows of the filter and the buffer of inputs
// follow it.
struct alignas(kAlignment) Converter {
  std::int32_t tag;  // one of the four kinds while it lives
  std::int32_t perSample;
  std::int32_t rows;
  std::int32_t taps;
  Clock clock;
  std::int32_t capacity;  // of the buffer
  std::int32_t filled;    // its samples
  std::int32_t first;     // where the window of the next output begins
  std::int32_t tail;      // zeros to come behind the last input; kNoInputEnd while that is not known
  // Of any ratio:
  double ratio;
  double minRatio;
  double rowsPerPart;
  std::uint64_t outputPeriod;  // in parts
  std::uint64_t made;          // outputs

  float *filter() { return reinterpret_cast<float *>(this + 1); }
  float *samples() { return filter() + std::ptrdiff_t{rows} * taps; }
  // Outputs that the buffer allows with a step of one sample.
  std::int32_t windows() const { return filled - first - taps + 1; }
};

// The object in a caller's block.
template <class State>
Converter *converterIn(State *block) {
  auto *bytes = reinterpret_cast<std::uint8_t *>(block);
  return reinterpret_cast<Converter *>(bytes + (0 - reinterpret_cast<std::uintptr_t>(bytes)) % kAlignment);
}

// An object at its start: the window of the first output, half of it ahead of the signal. Its clock is yet to
// be set.
void build(Converter &c, std::int32_t tag, const Settings &settings, const Shape &shape);

// Sets the steps of the clock to those of a ratio, and leaves the next output where it is.
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

inline void append(Converter &c, const float *src, std::int32_t len) {
  ownsCopy_8u(reinterpret_cast<const std::uint8_t *>(src),
              reinterpret_cast<std::uint8_t *>(c.samples() + c.filled), static_cast<std::size_t>(len) * 4);
}
inline void append(Converter &c, const std::int16_t *src, std::int32_t len) {
  orvsConvert_16s32f(src, c.samples() + c.filled, len);
}

// Free places in the buffer, wanted >= 1 of them being asked for; at least one if no output can be made.
std::int32_t makeRoom(Converter &c, std::int32_t wanted);

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

template <class T>
void convert(Converter &c, Produce &produce, Call<T> &call, std::int32_t flags) {
  for (;;) {
    const std::int32_t room = call.dstLen - call.produced;
    const std::int32_t left = call.srcLen - call.consumed;
    if (room > 0) call.produced += produceInto(c, produce, call.dst + call.produced, room, left > 0);
    const bool full = call.produced == call.dstLen;
    if (left > 0) {
      if (full) return;
      const std::int32_t len = std::min(left, makeRoom(c, left));
      append(c, call.src + call.consumed, len);
      c.filled += len;
      call.consumed += len;
      continue;
    }
    if (flags == orvResampleEnd && c.tail == kNoInputEnd) c.tail = c.taps / 2;
    if (full || c.tail <= 0) return;
    const std::int32_t zeros = std::min(c.tail, makeRoom(c, c.tail));
    std::fill_n(c.samples() + c.filled, zeros, 0.0F);
    c.filled += zeros;
    c.tail -= zeros;
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
