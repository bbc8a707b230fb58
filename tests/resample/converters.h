// The two forms of converter and their element types under common names.

#ifndef ORV_TESTS_RESAMPLE_CONVERTERS_H
#define ORV_TESTS_RESAMPLE_CONVERTERS_H

#include <algorithm>
#include <functional>
#include <memory>
#include <numbers>
#include <type_traits>
#include <vector>

#include "orvsr/resample.h"
#include "support/arrays.h"

namespace orv::test {

struct Settings {
  std::int32_t halfLen = 112;  // the default that the header names
  double rollOff = 0.9615, attenuation = 132;
};

template <class T>
struct Fixed {
  using Type = T;
  static constexpr bool is32f = std::is_same_v<T, float>;
  using State = std::conditional_t<is32f, OrvsResampleFixedState_32f, OrvsResampleFixedState_16s>;
  std::int32_t srcRate, dstRate;

  double ratio() const { return static_cast<double>(dstRate) / srcRate; }
  std::int64_t outputs(std::int64_t inputs) const { return (inputs * dstRate + srcRate - 1) / srcRate; }
  OrvStatus getSize(const Settings &s, std::int32_t *size) const {
    return pick(orvsResamplePolyphaseFixedGetSize_32f, orvsResamplePolyphaseFixedGetSize_16s)(
        srcRate, dstRate, s.halfLen, s.rollOff, s.attenuation, size);
  }
  OrvStatus init(State *state, const Settings &s) const {
    return pick(orvsResamplePolyphaseFixedInit_32f, orvsResamplePolyphaseFixedInit_16s)(
        state, srcRate, dstRate, s.halfLen, s.rollOff, s.attenuation);
  }
  OrvStatus initAlloc(State **state, const Settings &s) const {
    return pick(orvsResamplePolyphaseFixedInitAlloc_32f, orvsResamplePolyphaseFixedInitAlloc_16s)(
        state, srcRate, dstRate, s.halfLen, s.rollOff, s.attenuation);
  }
  OrvStatus convert(State *state, const T *src, std::int32_t srcLen, std::int32_t *consumed, T *dst,
                    std::int32_t dstLen, std::int32_t *produced, std::int32_t flags) const {
    return pick(orvsResamplePolyphaseFixed_32f, orvsResamplePolyphaseFixed_16s)(state, src, srcLen, consumed,
                                                                                dst, dstLen, produced, flags);
  }
  static OrvStatus release(State *state) {
    return pick(orvsResamplePolyphaseFixedFree_32f, orvsResamplePolyphaseFixedFree_16s)(state);
  }
  template <class A, class B>
  static constexpr auto pick(A a, B b) {
    if constexpr (is32f)
      return a;
    else
      return b;
  }
};

template <class T>
struct Free {
  using Type = T;
  static constexpr bool is32f = std::is_same_v<T, float>;
  using State = std::conditional_t<is32f, OrvsResampleState_32f, OrvsResampleState_16s>;
  double callRatio, minRatio = callRatio;

  double ratio() const { return callRatio; }
  std::int64_t outputs(std::int64_t inputs) const {
    return static_cast<std::int64_t>(std::ceil(static_cast<double>(inputs) * callRatio));
  }
  OrvStatus getSize(const Settings &s, std::int32_t *size) const {
    return pick(orvsResamplePolyphaseGetSize_32f, orvsResamplePolyphaseGetSize_16s)(
        s.halfLen, s.rollOff, s.attenuation, minRatio, size);
  }
  OrvStatus init(State *state, const Settings &s) const {
    return pick(orvsResamplePolyphaseInit_32f, orvsResamplePolyphaseInit_16s)(state, s.halfLen, s.rollOff,
                                                                              s.attenuation, minRatio);
  }
  OrvStatus initAlloc(State **state, const Settings &s) const {
    return pick(orvsResamplePolyphaseInitAlloc_32f, orvsResamplePolyphaseInitAlloc_16s)(
        state, s.halfLen, s.rollOff, s.attenuation, minRatio);
  }
  OrvStatus convert(State *state, const T *src, std::int32_t srcLen, std::int32_t *consumed, T *dst,
                    std::int32_t dstLen, std::int32_t *produced, std::int32_t flags) const {
    return pick(orvsResamplePolyphase_32f, orvsResamplePolyphase_16s)(state, src, srcLen, consumed, dst,
                                                                      dstLen, produced, callRatio, flags);
  }
  static OrvStatus release(State *state) {
    return pick(orvsResamplePolyphaseFree_32f, orvsResamplePolyphaseFree_16s)(state);
  }
  template <class A, class B>
  static constexpr auto pick(A a, B b) {
    if constexpr (is32f)
      return a;
    else
      return b;
  }
};

template <class Form>
auto allocated(const Form &form, const Settings &settings) {
  typename Form::State *state = nullptr;
  EXPECT_EQ(form.initAlloc(&state, settings), orvStsNoErr);
  return std::unique_ptr<typename Form::State,
                         decltype([](auto *s) { EXPECT_EQ(Form::release(s), orvStsNoErr); })>(state);
}

// The whole signal converted by calls whose lengths and rooms come from the two functions.
template <class Form, class T = typename Form::Type>
std::vector<T> convertInCalls(const Form &form, typename Form::State *state, const std::vector<T> &signal,
                              const std::function<std::size_t()> &lengths,
                              const std::function<std::size_t()> &rooms) {
  std::vector<T> out;
  std::size_t at = 0;
  for (bool drained = false; !drained;) {
    const std::size_t len = std::min(lengths(), signal.size() - at);
    const bool end = at + len == signal.size();
    const Guarded<T> src({signal.begin() + static_cast<std::ptrdiff_t>(at),
                          signal.begin() + static_cast<std::ptrdiff_t>(at + len)},
                         at % 5);
    Guarded<T> dst(rooms(), out.size() % 7);
    std::int32_t consumed = -1, produced = -1;
    EXPECT_EQ(form.convert(state, src.data(), src.len(), &consumed, dst.data(), dst.len(), &produced,
                           end ? orvResampleEnd : orvResampleMore),
              orvStsNoErr);
    EXPECT_TRUE(0 <= consumed && consumed <= src.len() && 0 <= produced && produced <= dst.len());
    EXPECT_TRUE(consumed == src.len() || produced == dst.len()) << "stopped with input and room left";
    at += static_cast<std::size_t>(consumed);
    const std::vector<T> values = dst.values();
    out.insert(out.end(), values.begin(), values.begin() + produced);
    drained = at == signal.size() && end && produced < dst.len();
    if (::testing::Test::HasFailure()) break;
  }
  return out;
}

template <class Form, class T = typename Form::Type>
std::vector<T> converted(const Form &form, const Settings &settings, const std::vector<T> &signal) {
  const auto state = allocated(form, settings);
  return convertInCalls(
      form, state.get(), signal, [&] { return signal.size(); },
      [&] { return static_cast<std::size_t>(form.outputs(static_cast<std::int64_t>(signal.size()))) + 5; });
}

}  // namespace orv::test

#endif
