#include "vq/scan.h"

#include <algorithm>

#include "primitives/reduce.h"
#include "vq/distance.h"
#include "vq/rowfilter.h"

namespace orv::cdbk {

template <class T>
Nearest scan(const CodeRows<T> &rows, const T *x) {
  Nearest nearest;
  for (std::int32_t i = 0; i < rows.size; i += 4) offerFour(rows, i, x, nearest);
  return nearest;
}

template <class T>
Nearest scanListed(const CodeRows<T> &rows, const T *x, const std::int32_t *list, std::int32_t count) {
  Nearest nearest;
  for (std::int32_t i = 0; i < count; ++i) {
    const std::int32_t row = load(list + i);
    nearest.offer(distanceTo(x, rows.row(row), rows.weights, rows.width), row);
  }
  return nearest;
}

template <class T>
void distancesToAll(const CodeRows<T> &rows, const T *x, float *distances) {
  for (std::int32_t i = 0; i < rows.size; i += 4) {
    const T *four[4];
    rows.four(i, four);
    float each[4];
    simd::store4(each, distancesToFour(x, four, rows.weights, rows.width));
    for (std::int32_t r = 0; r < 4 && i + r < rows.size; ++r) store(distances + i + r, each[r]);
  }
}

Nearest drawNearest(float *distances, std::int32_t size) {
  Nearest drawn;
  orvsMinIndx_32f(distances, size, &drawn.distance, &drawn.index);
  store(distances + drawn.index, kFarthest);
  return drawn;
}

template <class T>
void scanMany(const CodeRows<T> &rows, const T *x, std::ptrdiff_t step, std::int32_t count,
              Nearest *nearest) {
  constexpr std::int32_t kWorthwhile = 12;  // fewer vectors do not pay for the integers of the rows
  if (count >= kWorthwhile && rows.width <= RowFilter<T>::kMaxWidth) {
    RowFilter<T> filter(rows);
    if (filter.chooseScale()) return filter.scan(x, step, count, nearest);
  }
  for (std::int32_t i = 0; i < count; ++i) nearest[i] = scan(rows, x + i * step);
}

template Nearest scan(const CodeRows<float> &, const float *);
template Nearest scan(const CodeRows<std::int16_t> &, const std::int16_t *);
template Nearest scanListed(const CodeRows<float> &, const float *, const std::int32_t *, std::int32_t);
template Nearest scanListed(const CodeRows<std::int16_t> &, const std::int16_t *, const std::int32_t *,
                            std::int32_t);
template void scanMany(const CodeRows<float> &, const float *, std::ptrdiff_t, std::int32_t, Nearest *);
template void scanMany(const CodeRows<std::int16_t> &, const std::int16_t *, std::ptrdiff_t, std::int32_t,
                       Nearest *);
template void distancesToAll(const CodeRows<float> &, const float *, float *);
template void distancesToAll(const CodeRows<std::int16_t> &, const std::int16_t *, float *);

}  // namespace orv::cdbk
