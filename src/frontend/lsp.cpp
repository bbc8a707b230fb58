// orvsLPToLSP_*, orvsLSPToLP_*: line spectrum values, as cosines of the line frequencies from near 1 down to
// near -1.

#include <cstdint>

#include "core/alloc.h"
#include "core/integer.h"
#include "core/scale.h"
#include "frontend/lpfixed.h"
#include "orvsr/frontend.h"
#include "primitives/convert.h"
#include "primitives/memory.h"

using namespace orv;

namespace {

// Up to these sizes working memory is on the stack: singles of a search, and orders of a predictor.
constexpr std::int32_t kStackElements = 256;
constexpr std::int32_t kStackOrder = 58;

// The symmetric and the antisymmetric polynomial share the roots in turn, and the first one has the odd one.
std::int32_t sizeOfP(std::int32_t order) { return order / 2 + order % 2; }
std::int32_t sizeOfQ(std::int32_t order) { return order / 2; }

// A polynomial in Chebyshev form, with coefficients p[1] .. p[size].
struct Polynomial {
  const float *p;
  std::int32_t size;

  float operator()(float x) const {
    if (size == 0) return 0;
    if (size == 1) return x + x + p[1];
    const float t = x + x;
    float b1 = 1, b0 = p[1] + t;
    for (std::int32_t k = 2; k < size; ++k) {
      const float b = t * b0 - b1 + p[k];
      b1 = b0;
      b0 = b;
    }
    return 0.5F * p[size] - b1 + b0 * x;
  }
};

void polynomials(const float *a, std::int32_t order, float *p, float *q) {
  const std::int32_t nP = sizeOfP(order), nQ = sizeOfQ(order);
  const auto at = [a](std::int32_t i) { return load(a + i); };
  p[0] = q[0] = 1;
  p[1] = q[1] = 0;
  if (order % 2 == 0) {
    for (std::int32_t j = 1; j <= nP; ++j) {
      p[j] = at(j - 1) - p[j - 1] + at(order - j);
      q[j] = at(j - 1) + q[j - 1] - at(order - j);
    }
    return;
  }
  // Odd orders carry the opposite sign, here and on the way back.
  if (nQ != 0) q[1] = at(order - 1) - at(0);
  for (std::int32_t j = 2; j <= nQ; ++j) q[j] = q[j - 2] + at(order - j) - at(j - 1);
  for (std::int32_t j = 1; j < nP; ++j) p[j] = 0 - at(j - 1) - at(order - j);
  p[nP] = -2 * at(nP - 1);
}

// A walk along the grid that changes polynomials at each root, since their roots interlace. Returns how many
// it found.
std::int32_t search(Polynomial p, Polynomial q, const float *grid, std::int32_t intervals,
                    std::int32_t bisections, float *dst, std::int32_t order) {
  std::int32_t found = 0, i = 0;
  const Polynomial *current = &p, *other = &q;
  float x = grid[0], f = (*current)(x);
  while (found < order && i < intervals) {
    float xl = x, fl = f;
    x = grid[++i];
    f = (*current)(x);
    if (f * fl > 0) continue;
    --i;  // the same cell again, with the other polynomial
    for (std::int32_t n = 0; n < bisections; ++n) {
      const float xm = (x + xl) * 0.5F;
      const float fm = (*current)(xm);
      if (f * fm <= 0) {
        fl = fm;
        xl = xm;
      } else {
        f = fm;
        x = xm;
      }
    }
    x = x - (xl - x) * f / (fl - f);
    store(dst + found++, x);
    const Polynomial *last = current;
    current = other;
    other = last;
    f = (*current)(x);
  }
  return found;
}

OrvStatus toLines(const float *src, float *dst, std::int32_t order, std::int32_t *count,
                  std::int32_t intervals, std::int32_t bisections) {
  const std::int64_t gridLen = (std::int64_t{intervals} + 7) / 4 * 4;
  const std::int64_t pLen = (std::int64_t{sizeOfP(order)} + 4) / 4 * 4;
  const std::int64_t qLen = (std::int64_t{sizeOfQ(order)} + 4) / 4 * 4;
  StackArray<float, kStackElements> work(gridLen + pLen + qLen + 15);
  if (!work) return orvStsMemAllocErr;
  float *grid = work.get(), *p = grid + gridLen, *q = p + pLen;
  // One step, subtracted again and again: its rounding builds up along the grid, and callers' results carry
  // it.
  const float step = 2 / static_cast<float>(intervals);
  grid[0] = 1;
  for (std::int32_t i = 1; i <= intervals; ++i) grid[i] = grid[i - 1] - step;
  polynomials(src, order, p, q);
  const std::int32_t found =
      search({p, sizeOfP(order)}, {q, sizeOfQ(order)}, grid, intervals, bisections, dst, order);
  store(count, found);
  return found < order ? orvStsLspRootsErr : orvStsNoErr;
}

// One polynomial from every other line, line(i) being -2 times its i-th.
template <class Line>
void multiply(float *p, std::int32_t size, Line line) {
  p[0] = 1;
  p[1] = 0;
  if (size == 0) return;
  p[1] = line(0);
  for (std::int32_t i = 2; i <= size; ++i) {
    const float c = line(i - 1);
    p[i] = p[i - 1] * c + p[i - 2] * 2;
    for (std::int32_t j = i - 1; j >= 2; --j) p[j] = p[j - 1] * c + p[j] + p[j - 2];
    p[1] = p[1] + c;
  }
}

void predictorFrom(float *p, float *q, std::int32_t order, float *dst) {
  const std::int32_t nP = sizeOfP(order), nQ = sizeOfQ(order);
  if (order % 2 == 0) {
    for (std::int32_t k = nP; k >= 1; --k) {
      p[k] = p[k] + p[k - 1];
      q[k] = q[k] - q[k - 1];
    }
    for (std::int32_t i = 0; i < nP; ++i) {
      store(dst + i, (p[i + 1] + q[i + 1]) * 0.5F);
      store(dst + order - 1 - i, (p[i + 1] - q[i + 1]) * 0.5F);
    }
    return;
  }
  store(dst, (p[1] + q[1]) * -0.5F);
  if (order == 1) return;
  for (std::int32_t i = 1; i <= nP - 2; ++i) store(dst + i, (p[i + 1] + q[i + 1] - q[i - 1]) * -0.5F);
  store(dst + nP - 1, p[nP] * -0.5F);
  for (std::int32_t t = 0; t <= nQ - 3; ++t)
    store(dst + order - 3 - t, (p[t + 3] - q[t + 3] + q[t + 1]) * -0.5F);
  store(dst + order - 1, (p[1] - q[1]) * -0.5F);
  if (order > 3) store(dst + order - 2, (p[2] + 1 - q[2]) * -0.5F);
}

// Two polynomials of half the order each.
class Halves {
 public:
  explicit Halves(std::int32_t order)
      : p_(std::int64_t{order / 2} + 3, order <= kStackOrder),
        q_(std::int64_t{order / 2} + 3, order <= kStackOrder) {}
  explicit operator bool() const { return p_ && q_; }

  // value(i) is the i-th line.
  template <class Value>
  void run(std::int32_t order, Value value, float *dst) {
    multiply(p_.get(), sizeOfP(order), [&](std::int32_t i) { return value(2 * i) * -2; });
    multiply(q_.get(), sizeOfQ(order), [&](std::int32_t i) { return value(2 * i + 1) * -2; });
    predictorFrom(p_.get(), q_.get(), order, dst);
  }

 private:
  StackArray<float, kStackOrder / 2 + 3> p_, q_;
};

}  // namespace

OrvStatus orvsLPToLSP_32f(const float *pSrc, float *pDst, int32_t order, int32_t *pFound, int32_t nIntervals,
                          int32_t nBisect) {
  if (pSrc == nullptr || pDst == nullptr || pFound == nullptr) return orvStsNullPtrErr;
  if (order < 1 || nIntervals < 1 || nBisect < 1 || order > nIntervals) return orvStsSizeErr;
  return toLines(pSrc, pDst, order, pFound, nIntervals, nBisect);
}

OrvStatus orvsLPToLSP_16s_Sfs(const int16_t *pSrc, int32_t srcShift, int16_t *pDst, int32_t order,
                              int32_t *pFound, int32_t nIntervals, int32_t nBisect, int32_t scaleFactor) {
  if (pSrc == nullptr || pDst == nullptr || pFound == nullptr) return orvStsNullPtrErr;
  if (nBisect < 1 || order < 1 || order > nIntervals) return orvStsSizeErr;
  StackArray<float, kStackElements> work(2 * std::int64_t{order});
  if (!work) return orvStsMemAllocErr;
  float *a = work.get(), *lines = a + order;
  readFixed(pSrc, a, order, GetScale_32s32f(srcShift));
  std::int32_t found = 0;
  const OrvStatus status = toLines(a, lines, order, &found, nIntervals, nBisect);
  store(pFound, found);
  writeWrapped(lines, pDst, found, GetScale_32s32f(scaleFactor));
  return status;
}

OrvStatus orvsLSPToLP_32f(const float *pSrc, float *pDst, int32_t order) {
  if (pSrc == nullptr || pDst == nullptr) return orvStsNullPtrErr;
  if (order < 1) return orvStsSizeErr;
  if (load(pSrc) >= 1) return orvStsLspOrderErr;
  for (std::int32_t i = 1; i < order; ++i)
    if (load(pSrc + i) > load(pSrc + i - 1)) return orvStsLspOrderErr;
  if (load(pSrc + order - 1) <= -1) return orvStsLspOrderErr;
  Halves halves(order);
  if (!halves) return orvStsMemAllocErr;
  halves.run(
      order, [pSrc](std::int32_t i) { return load(pSrc + i); }, pDst);
  return orvStsNoErr;
}

OrvStatus orvsLSPToLP_16s_Sfs(const int16_t *pSrc, int32_t srcShift, int16_t *pDst, int32_t order,
                              int32_t scaleFactor) {
  if (pSrc == nullptr || pDst == nullptr) return orvStsNullPtrErr;
  if (order < 1 || srcShift < 1) return orvStsSizeErr;
  // Unlike in the single form the two ends themselves pass.
  const std::int64_t one = shiftLeft32(1, static_cast<unsigned>(srcShift));
  if (load(pSrc) > one) return orvStsLspOrderErr;
  for (std::int32_t i = 1; i < order; ++i)
    if (load(pSrc + i) > load(pSrc + i - 1)) return orvStsLspOrderErr;
  if (load(pSrc + order - 1) < -one) return orvStsLspOrderErr;
  Halves halves(order);
  if (!halves) return orvStsMemAllocErr;
  StackArray<float, kStackOrder> result(order);
  if (!result) return orvStsMemAllocErr;
  const float unit = GetScale_32s32f(srcShift);
  halves.run(
      order, [pSrc, unit](std::int32_t i) { return static_cast<float>(load(pSrc + i)) * unit; },
      result.get());
  return orvsConvert_32f16s_Sfs(result.get(), pDst, order, kRoundNearestEven, scaleFactor);
}
