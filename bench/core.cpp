// Log-domain arithmetic.

#include "orvsr/core.h"

#include <cmath>
#include <cstdint>
#include <cstring>

#include "bench/data.h"
#include "bench/ratio.h"

namespace orv::bench {
namespace {

// Two arrays of log values whose differences fall into all segments, none below the drop threshold. The sums
// go over the second one, so every iteration starts from a copy of it.
template <class T>
struct LogValues {
  static constexpr std::int32_t len = 1024;
  Array<T> x = uniform<T>(len, -10.0, 0.0, 1);
  Array<T> y = uniform<T>(len, -10.0, 0.0, 2);
  Array<T> sums = y;

  void restart() { std::memcpy(sums.data(), y.data(), len * sizeof(T)); }
};

template <class T>
[[gnu::noinline]] void plainLogAdd(const T *src, T *srcDst, std::int32_t len) {
  for (std::int32_t i = 0; i < len; ++i) {
    const T x = src[i];
    const T y = srcDst[i];
    const double m = y > x ? y : x;
    const double d = y > x ? x - y : y - x;
    srcDst[i] = static_cast<T>(m + std::log1p(std::exp(d)));
  }
}

[[gnu::noinline]] void plainLogAddSingle(const float *src, float *srcDst, std::int32_t len) {
  for (std::int32_t i = 0; i < len; ++i) {
    const float x = src[i];
    const float y = srcDst[i];
    const float m = y > x ? y : x;
    const float d = y > x ? x - y : y - x;
    srcDst[i] = m + std::log1p(std::exp(d));
  }
}

template <class T, class Add>
auto logAdd(Add add) {
  return [add] {
    return [add, v = LogValues<T>()]() mutable {
      v.restart();
      add(v.x.data(), v.sums.data(), v.len);
    };
  };
}

}  // namespace

void addCoreCases() {
  const auto accurate = [](const float *x, float *y, std::int32_t n) {
    orvsLogAdd_32f(x, y, n, orvAlgHintAccurate);
  };
  const auto fast = [](const float *x, float *y, std::int32_t n) { orvsLogAdd_32f(x, y, n, orvAlgHintFast); };
  const auto doubles = [](const double *x, double *y, std::int32_t n) {
    orvsLogAdd_64f(x, y, n, orvAlgHintAccurate);
  };
  Case("core/LogAdd_32f/accurate")
      .ours(logAdd<float>(accurate))
      .peer("log1p(exp())", 3.5, logAdd<float>(plainLogAdd<float>))
      .peer("log1pf(expf())", 0.0, logAdd<float>(plainLogAddSingle));
  Case("core/LogAdd_32f/fast")
      .ours(logAdd<float>(fast))
      .peer("log1p(exp())", 6.0, logAdd<float>(plainLogAdd<float>))
      .peer("log1pf(expf())", 0.0, logAdd<float>(plainLogAddSingle));
  Case("core/LogAdd_64f")
      .ours(logAdd<double>(doubles))
      .peer("log1p(exp())", 2.0, logAdd<double>(plainLogAdd<double>));
}

}  // namespace orv::bench
