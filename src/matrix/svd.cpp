// orvsSVD_64f_*, orvsSVDSort_64f_*: singular value decomposition by Householder reduction to bidiagonal form
// and implicitly shifted QR iteration.
//
// Everything is done on transposed copies of U and V, whose rows are the columns that the method works on:
// the same operations as on the caller's matrices, at neighbouring addresses.

#include <cmath>
#include <cstddef>
#include <cstdint>

#include "core/alloc.h"
#include "matrix/lines.h"
#include "orvsr/matrix.h"
#include "primitives/memory.h"
#include "primitives/reduce.h"

using namespace orv;
using namespace orv::matrix;

namespace {

// sqrt(a^2 + b^2) without overflow or underflow of the squares; the factors are exact.
double _sqrSumSqrt(double a, double b) {
  constexpr double kBig = 0x1p510, kSmall = 0x1p-510;
  const double x = std::fabs(a), y = std::fabs(b), t = x > y ? x : y;
  if (t >= kBig) return kBig * std::sqrt((a * kSmall) * (a * kSmall) + (b * kSmall) * (b * kSmall));
  if (t > kSmall) return std::sqrt(a * a + b * b);
  return kSmall * std::sqrt((a * kBig) * (a * kBig) + (b * kBig) * (b * kBig));
}

// |x| with the sign of y, and with the opposite one; zero and a NaN count as positive.
double withSignOf(double x, double y) { return y < 0 ? -std::fabs(x) : std::fabs(x); }
double againstSignOf(double x, double y) { return y < 0 ? std::fabs(x) : -std::fabs(x); }

struct Rotation {
  double c, s;
};

// One rotation of two values. The lanes are made before a loop: what it stores might be a Rotation, for all
// that the compiler knows.
struct RotationLanes {
  f64x2 c, s;
  explicit RotationLanes(const Rotation &r) : c(simd::splat2(r.c)), s(simd::splat2(r.s)) {}
};
inline void rotate(f64x2 &p, f64x2 &q, const RotationLanes &r) {
  const f64x2 x = p, y = q;
  p = x * r.c + y * r.s;
  q = y * r.c - x * r.s;
}
inline void rotate(double &p, double &q, const Rotation &r) {
  const double x = p, y = q;
  p = r.c * x + r.s * y;
  q = r.c * y - r.s * x;
}

// A dense matrix whose rows are columns of the caller's.
struct Lines {
  double *base;
  std::ptrdiff_t stride;
  std::int32_t len;

  double *operator[](std::int32_t i) const { return base + i * stride; }

  void rotatePair(std::int32_t p, std::int32_t q, const Rotation &r) const {
    double *x = (*this)[p], *y = (*this)[q];
    const RotationLanes lanes(r);
    std::int32_t k = 0;
    for (; len - k >= 2; k += 2) {
      f64x2 a = simd::load2(x + k), b = simd::load2(y + k);
      rotate(a, b, lanes);
      simd::store2(x + k, a);
      simd::store2(y + k, b);
    }
    if (k < len) rotate(x[k], y[k], r);
  }

  // Rotations of lines (first, first + 1), (first + 1, first + 2), ... in this order. Each element sees the
  // same operations as line by line; four rotations at a time keep it in a register. Within a larger function
  // the compiler has no registers left for the rotations.
  [[gnu::noinline]] void rotateChain(std::int32_t first, const Rotation *r, std::int32_t count) const {
    std::int32_t j = 0;
    for (; count - j >= 4; j += 4) rotateFour(first + j, r + j);
    for (; j < count; ++j) rotatePair(first + j, first + j + 1, r[j]);
  }

  void rotateFour(std::int32_t first, const Rotation *r) const {
    double *x0 = (*this)[first], *x1 = x0 + stride, *x2 = x1 + stride, *x3 = x2 + stride, *x4 = x3 + stride;
    const RotationLanes ab(r[0]), bc(r[1]), cd(r[2]), de(r[3]);
    const std::int32_t n = len;
    std::int32_t k = 0;
    for (; n - k >= 2; k += 2) {
      f64x2 a = simd::load2(x0 + k), b = simd::load2(x1 + k), c = simd::load2(x2 + k),
            d = simd::load2(x3 + k), e = simd::load2(x4 + k);
      rotate(a, b, ab);
      rotate(b, c, bc);
      rotate(c, d, cd);
      rotate(d, e, de);
      simd::store2(x0 + k, a);
      simd::store2(x1 + k, b);
      simd::store2(x2 + k, c);
      simd::store2(x3 + k, d);
      simd::store2(x4 + k, e);
    }
    if (k < len) {
      rotate(x0[k], x1[k], r[0]);
      rotate(x1[k], x2[k], r[1]);
      rotate(x2[k], x3[k], r[2]);
      rotate(x3[k], x4[k], r[3]);
    }
  }

  // For each line j from first to last: line[j] += (dot of u and line[j]) * factor(dot) * v, from element
  // `from` of each on; u and v start there. Four lines at a time share the loads of u and v.
  template <class Factor>
  void reflect(std::int32_t first, std::int32_t last, std::int32_t from, const double *u, std::int32_t uFrom,
               const double *v, Factor factor) const {
    const std::int32_t n = len - from, skip = uFrom - from;
    std::int32_t j = first;
    for (; last - j >= 4; j += 4) {
      double *x[4] = {(*this)[j] + from, (*this)[j + 1] + from, (*this)[j + 2] + from, (*this)[j + 3] + from};
      f64x4 sums[4]{};
      std::int32_t k = skip;
      for (; n - k >= 4; k += 4) {
        const f64x4 w = loadFour(u + k);
        for (int i = 0; i < 4; ++i) sums[i] = sums[i] + w * loadFour(x[i] + k);
      }
      double f[4];
      for (int i = 0; i < 4; ++i) {
        double t = simd::sumLanes(sums[i]);
        for (std::int32_t rest = k; rest < n; ++rest) t += u[rest] * x[i][rest];
        f[i] = factor(t);
      }
      for (int i = 0; i < 4; ++i) addMul(v, x[i], n, f[i]);
    }
    for (; j < last; ++j) {
      double *x = (*this)[j] + from;
      addMul(v, x, n, factor(dot(u + skip, x + skip, n - skip)));
    }
  }
};

class Decomposition {
 public:
  // Transposed copies of an m x n matrix and room for V.
  Decomposition(std::int32_t m, std::int32_t n) : m_(m), n_(n) {
    const std::int64_t uStride = stride(m), vStride = stride(n);
    // Each matrix by itself first: the products are below 2^63, their sum need not be.
    if (uStride * n > INT32_MAX || vStride * n > INT32_MAX) return;
    const std::int64_t total = uStride * n + vStride * n + 6 * std::int64_t{n} + stride(m);
    if (total > INT32_MAX) return;
    block_ = orvsMalloc_64f(static_cast<std::int32_t>(total));
    if (block_ == nullptr) return;
    double *next = block_;
    const auto take = [&next](std::int64_t count) {
      double *p = next;
      next += count;
      return p;
    };
    u_ = {take(uStride * n), static_cast<std::ptrdiff_t>(uStride), m};
    v_ = {take(vStride * n), static_cast<std::ptrdiff_t>(vStride), n};
    superDiagonal_ = take(n);
    row_ = take(n);
    rotations_ = reinterpret_cast<Rotation *>(take(4 * std::int64_t{n}));
    sums_ = take(stride(m));
  }
  ~Decomposition() {
    if (block_ != nullptr) orvsFree(block_);
  }
  Decomposition(const Decomposition &) = delete;
  Decomposition &operator=(const Decomposition &) = delete;

  explicit operator bool() const { return block_ != nullptr; }
  const Lines &u() const { return u_; }
  const Lines &v() const { return v_; }

  // Leaves U and V in their copies and the singular values in w.
  OrvStatus run(double *w, std::int32_t iterations) {
    w_ = w;
    reduce();
    accumulateRight();
    accumulateLeft();
    for (std::int32_t k = n_ - 1; k >= 0; --k)
      if (!settle(k, iterations)) return orvStsSvdConvergeErr;
    return orvStsNoErr;
  }

 private:
  // Rows on 16-byte boundaries, and not a multiple of 512 bytes apart, which would crowd them into a few
  // cache sets.
  static std::int64_t stride(std::int32_t len) {
    const std::int64_t even = (std::int64_t{len} + 1) / 2 * 2;
    return even % 64 == 0 ? even + 2 : even;
  }

  double w(std::int32_t i) const { return load(w_ + i); }
  void setW(std::int32_t i, double value) { store(w_ + i, value); }

  // Householder reduction to bidiagonal form.
  void reduce() {
    double g = 0, scaleOf = 0;
    for (std::int32_t i = 0; i < n_; ++i) {
      superDiagonal_[i] = scaleOf * g;
      g = scaleOf = 0;
      if (i < m_) g = reduceColumn(i, &scaleOf);
      setW(i, scaleOf * g);
      g = scaleOf = 0;
      if (i < m_ && i != n_ - 1) g = reduceRow(i, &scaleOf);
      const double reach = std::fabs(w(i)) + std::fabs(superDiagonal_[i]);
      anorm_ = anorm_ > reach ? anorm_ : reach;
    }
    last_ = g;
  }

  double reduceColumn(std::int32_t i, double *scaleOf) {
    double *column = u_[i] + i;
    const std::int32_t len = m_ - i;
    const double sum = sumAbs(column, len);
    *scaleOf = sum;
    if (sum == 0) return 0;
    const double s = scaleAndSumSquares(column, len, 1 / sum);
    const double f = column[0];
    const double g = againstSignOf(std::sqrt(s), f);
    const double h = f * g - s;
    column[0] = f - g;
    u_.reflect(i + 1, n_, i, column, i, column, [h](double t) { return t / h; });
    scale(column, len, sum);
    return g;
  }

  // The row of A is a column here: it is gathered once. Its products with all the rows below are formed side
  // by side, each in the order of its elements.
  double reduceRow(std::int32_t i, double *scaleOf) {
    const std::int32_t l = i + 1, len = n_ - l;
    for (std::int32_t k = l; k < n_; ++k) row_[k] = u_[k][i];
    const double sum = sumAbs(row_ + l, len);
    *scaleOf = sum;
    if (sum == 0) return 0;
    const double s = scaleAndSumSquares(row_ + l, len, 1 / sum);
    const double f = row_[l];
    const double g = againstSignOf(std::sqrt(s), f);
    const double h = f * g - s;
    row_[l] = f - g;
    const double reciprocal = 1 / h;
    for (std::int32_t k = l; k < n_; ++k) superDiagonal_[k] = row_[k] * reciprocal;
    reflectRows(l);
    for (std::int32_t k = l; k < n_; ++k) u_[k][i] = row_[k] * sum;
    return g;
  }

  // Rows j of A from l on: row j += (row j . row_) superDiagonal_, over elements from l on.
  void reflectRows(std::int32_t l) {
    const std::int32_t len = m_ - l;
    if (len < 1) return;
    double *const sums = sums_;
    for (std::int32_t j = 0; j < len; ++j) sums[j] = 0;
    std::int32_t k = l;
    for (; n_ - k >= 4; k += 4) {
      const double *x0 = u_[k] + l, *x1 = u_[k + 1] + l, *x2 = u_[k + 2] + l, *x3 = u_[k + 3] + l;
      const f64x2 a = simd::splat2(row_[k]), b = simd::splat2(row_[k + 1]), c = simd::splat2(row_[k + 2]),
                  d = simd::splat2(row_[k + 3]);
      std::int32_t j = 0;
      for (; len - j >= 2; j += 2) {
        f64x2 sum = simd::load2(sums + j) + simd::load2(x0 + j) * a;
        sum = sum + simd::load2(x1 + j) * b;
        sum = sum + simd::load2(x2 + j) * c;
        simd::store2(sums + j, sum + simd::load2(x3 + j) * d);
      }
      if (j < len)
        sums[j] = sums[j] + x0[j] * row_[k] + x1[j] * row_[k + 1] + x2[j] * row_[k + 2] + x3[j] * row_[k + 3];
    }
    for (; k < n_; ++k) addMul(u_[k] + l, sums, len, row_[k]);
    for (k = l; k < n_; ++k) addMul(sums, u_[k] + l, len, superDiagonal_[k]);
  }

  void accumulateRight() {
    double g = last_;
    for (std::int32_t i = n_ - 1; i >= 0; --i) {
      const std::int32_t l = i + 1;
      double *column = v_[i];
      if (i < n_ - 1) {
        if (g != 0) {
          for (std::int32_t j = l; j < n_; ++j) row_[j] = i < m_ ? u_[j][i] : 0;
          for (std::int32_t j = l; j < n_; ++j) column[j] = (row_[j] / row_[l]) / g;
          v_.reflect(l, n_, l, row_ + l, l, column + l, [](double t) { return t; });
        }
        for (std::int32_t j = l; j < n_; ++j) column[j] = v_[j][i] = 0;
      }
      column[i] = 1;
      g = superDiagonal_[i];
    }
  }

  void accumulateLeft() {
    for (std::int32_t i = (m_ < n_ ? m_ : n_) - 1; i >= 0; --i) {
      const std::int32_t l = i + 1;
      for (std::int32_t j = l; j < n_; ++j) u_[j][i] = 0;
      double *column = u_[i] + i;
      if (w(i) != 0) {
        const double g = 1 / w(i), pivot = column[0];
        u_.reflect(l, n_, i, column, l, column, [=](double t) { return (t / pivot) * g; });
        scale(column, m_ - i, g);
      } else {
        for (std::int32_t j = 0; j < m_ - i; ++j) column[j] = 0;
      }
      column[0] += 1;
    }
  }

  bool negligible(double x) const { return anorm_ == anorm_ + std::fabs(x); }

  // Singular value k; false if the limit was reached.
  bool settle(std::int32_t k, std::int32_t iterations) {
    for (std::int32_t iteration = 1;; ++iteration) {
      bool cancel = false;
      std::int32_t l = k;
      // With a NaN nothing is negligible, and the search ends at the first value, whose neighbour does not
      // exist.
      for (; l > 0 && !negligible(superDiagonal_[l]); --l)
        if (negligible(w(l - 1))) {
          cancel = true;
          break;
        }
      if (cancel) cancelFrom(l, k);
      const double z = w(k);
      if (l == k) {
        if (z < 0) {
          setW(k, -z);
          scale(v_[k], n_, -1.0);
        }
        return true;
      }
      if (iteration == iterations) return false;
      sweep(l, k);
    }
  }

  void cancelFrom(std::int32_t l, std::int32_t k) {
    double c = 0, s = 1;
    for (std::int32_t i = l; i <= k; ++i) {
      const double f = s * superDiagonal_[i];
      superDiagonal_[i] = c * superDiagonal_[i];
      if (negligible(f)) return;
      const double g = w(i);
      const double h = _sqrSumSqrt(f, g);
      setW(i, h);
      c = g / h;
      s = f / -h;
      u_.rotatePair(l - 1, i, {c, s});
    }
  }

  // The start of a sweep. Its products are formed of values that are brought down where they are very large;
  // the factor is a power of two, so that this rounds nothing.
  double shift(std::int32_t l, std::int32_t k) const {
    const double unit = anorm_ > 0x1p300 ? 0x1p-700 : 1;
    const double x = w(l) * unit, y = w(k - 1) * unit, z = w(k) * unit;
    const double g = superDiagonal_[k - 1] * unit, h = superDiagonal_[k] * unit;
    const double f = ((y - z) * (y + z) + (g - h) * (g + h)) / (2 * h * y);
    return ((x - z) * (x + z) + h * (y / (f + withSignOf(_sqrSumSqrt(f, 1), f)) - h)) / x / unit;
  }

  // One QR sweep over l .. k with the shift from the bottom 2 x 2 minor. The rotations of U and V are applied
  // at its end, in their order: the sweep itself looks at neither.
  void sweep(std::int32_t l, std::int32_t k) {
    double x = w(l), y, z, g, h, f = shift(l, k);
    Rotation *right = rotations_, *left = rotations_ + n_;
    double c = 1, s = 1;
    for (std::int32_t j = l; j < k; ++j) {
      const std::int32_t i = j + 1;
      g = superDiagonal_[i];
      y = w(i);
      h = s * g;
      g = c * g;
      z = _sqrSumSqrt(f, h);
      superDiagonal_[j] = z;
      if (z != 0) {
        c = f / z;
        s = h / z;
      }
      f = x * c + g * s;
      g = g * c - x * s;
      h = y * s;
      y = y * c;
      right[j - l] = {c, s};
      z = _sqrSumSqrt(f, h);
      setW(j, z);
      if (z != 0) {
        z = 1 / z;
        c = f * z;
        s = h * z;
      }
      f = c * g + s * y;
      x = c * y - s * g;
      left[j - l] = {c, s};
    }
    v_.rotateChain(l, right, k - l);
    u_.rotateChain(l, left, k - l);
    superDiagonal_[l] = 0;
    superDiagonal_[k] = f;
    setW(k, x);
  }

  std::int32_t m_, n_;
  double *block_ = nullptr;
  Lines u_{}, v_{};
  double *superDiagonal_ = nullptr, *row_ = nullptr, *sums_ = nullptr, *w_ = nullptr;
  Rotation *rotations_ = nullptr;
  double anorm_ = 0, last_ = 0;
};

// The caller's matrices, in either layout.
struct Strided {
  double *base;
  std::int32_t step;
  double *row(std::int32_t r) const { return base + static_cast<std::ptrdiff_t>(r) * step; }
};
struct Pointers {
  double *const *rows;
  double *row(std::int32_t r) const { return rows[r]; }
};

// Blocks of columns, so that neither side is walked with a stride for long.
template <class Matrix, class Move>
void transpose(const Matrix &matrix, std::int32_t height, std::int32_t width, Move move) {
  constexpr std::int32_t kBlock = 8;
  for (std::int32_t c = 0; c < width; c += kBlock)
    for (std::int32_t r = 0; r < height; ++r)
      for (std::int32_t k = c; k < width && k < c + kBlock; ++k) move(matrix.row(r) + k, r, k);
}

// Descending by selection, the first of equals changing places with the next: order[i] is the place that the
// value at i comes from.
bool sortValues(double *w, std::int32_t n, const WorkArray<double> &copy,
                const WorkArray<std::int32_t> &order) {
  if (!copy || !order) return false;
  double *values = copy.get();
  std::int32_t *index = order.get();
  for (std::int32_t i = 0; i < n; ++i) {
    values[i] = std::fabs(load(w + i));
    index[i] = i;
  }
  const auto swap = [](auto *p, std::int32_t a, std::int32_t b) {
    const auto x = load(p + a), y = load(p + b);
    store(p + a, y);
    store(p + b, x);
  };
  for (std::int32_t i = 0; i < n; ++i) {
    double largest;
    std::int32_t at = 0;
    orvsMaxIndx_64f(values + i, n - i, &largest, &at);
    swap(values, i, i + at);
    swap(w, i, i + at);
    swap(index, i, i + at);
  }
  return true;
}

// The power of two that brings a matrix of very small values, whose squares and reciprocals would leave the
// range, to about 1, and one of very large values as far down as its sums and shifts need; otherwise 1. Up it
// is exact, and down it is so for all but the values that are nothing beside the largest.
template <class Matrix>
double balance(const Matrix &matrix, std::int32_t height, std::int32_t width) {
  double most = 0;
  for (std::int32_t r = 0; r < height; ++r)
    for (std::int32_t c = 0; c < width; ++c) {
      const double x = std::fabs(load(matrix.row(r) + c));
      most = x > most ? x : most;
    }
  if (most == 0 || std::isinf(most) || (most < 0x1p900 && most > 0x1p-300)) return 1;
  if (most >= 0x1p900) return 0x1p-124;
  int exponent;
  std::frexp(most, &exponent);
  return std::ldexp(1.0, exponent < -1000 ? 1000 : -exponent);
}

template <class Matrix>
OrvStatus decompose(const Matrix &u, std::int32_t height, double *w, const Matrix &v, std::int32_t width,
                    std::int32_t iterations, bool sorted) {
  Decomposition d(height, width);
  if (!d) return orvStsMemAllocErr;
  const WorkArray<double> copy(sorted ? width : 0);
  const WorkArray<std::int32_t> order(sorted ? width : 0);
  if (sorted && (!copy || !order)) return orvStsMemAllocErr;
  const double factor = balance(u, height, width);
  transpose(u, height, width,
            [&](const double *x, std::int32_t r, std::int32_t c) { d.u()[c][r] = load(x) * factor; });
  const OrvStatus status = d.run(w, iterations);
  for (std::int32_t i = 0; i < width; ++i) store(w + i, load(w + i) / factor);
  const bool permute = sorted && status == orvStsNoErr && sortValues(w, width, copy, order);
  const auto from = [&](std::int32_t c) { return permute ? order.get()[c] : c; };
  transpose(u, height, width,
            [&](double *x, std::int32_t r, std::int32_t c) { store(x, d.u()[from(c)][r]); });
  transpose(v, width, width, [&](double *x, std::int32_t r, std::int32_t c) { store(x, d.v()[from(c)][r]); });
  return status;
}

OrvStatus check(const void *src, const void *u, const void *w, const void *v, std::int32_t height,
                std::int32_t width, std::int32_t step, std::int32_t iterations) {
  if (src == nullptr || u == nullptr || w == nullptr || v == nullptr) return orvStsNullPtrErr;
  return height < 1 || width < 1 || iterations < 1 || step < width ? orvStsSizeErr : orvStsNoErr;
}

void copyRows(const double *src, double *dst, std::int32_t height, std::int32_t width, std::int32_t step) {
  for (std::ptrdiff_t r = 0; r < height; ++r) orvsCopy_64f(src + r * step, dst + r * step, width);
}
void copyRows(const double *const *src, double *const *dst, std::int32_t height, std::int32_t width) {
  for (std::int32_t r = 0; r < height; ++r) orvsCopy_64f(src[r], dst[r], width);
}

}  // namespace

OrvStatus orvsSVD_64f_D2(const double *pSrc, double *pDstU, int32_t height, double *pDstW, double *pDstV,
                         int32_t width, int32_t step, int32_t iterations) {
  if (const OrvStatus status = check(pSrc, pDstU, pDstW, pDstV, height, width, step, iterations);
      status != orvStsNoErr)
    return status;
  copyRows(pSrc, pDstU, height, width, step);
  return orvsSVD_64f_D2_I(pDstU, height, pDstW, pDstV, width, step, iterations);
}

OrvStatus orvsSVD_64f_D2_I(double *pSrcDstU, int32_t height, double *pDstW, double *pDstV, int32_t width,
                           int32_t step, int32_t iterations) {
  if (const OrvStatus status = check(pSrcDstU, pSrcDstU, pDstW, pDstV, height, width, step, iterations);
      status != orvStsNoErr)
    return status;
  return decompose(Strided{pSrcDstU, step}, height, pDstW, Strided{pDstV, step}, width, iterations, false);
}

OrvStatus orvsSVD_64f_D2L(const double *const *ppSrc, double *const *ppDstU, int32_t height, double *pDstW,
                          double *const *ppDstV, int32_t width, int32_t iterations) {
  if (const OrvStatus status = check(ppSrc, ppDstU, pDstW, ppDstV, height, width, width, iterations);
      status != orvStsNoErr)
    return status;
  copyRows(ppSrc, ppDstU, height, width);
  return orvsSVD_64f_D2L_I(ppDstU, height, pDstW, ppDstV, width, iterations);
}

OrvStatus orvsSVD_64f_D2L_I(double *const *ppSrcDstU, int32_t height, double *pDstW, double *const *ppDstV,
                            int32_t width, int32_t iterations) {
  if (const OrvStatus status = check(ppSrcDstU, ppSrcDstU, pDstW, ppDstV, height, width, width, iterations);
      status != orvStsNoErr)
    return status;
  return decompose(Pointers{ppSrcDstU}, height, pDstW, Pointers{ppDstV}, width, iterations, false);
}

OrvStatus orvsSVDSort_64f_D2(const double *pSrc, double *pDstU, int32_t height, double *pDstW, double *pDstV,
                             int32_t width, int32_t step, int32_t iterations) {
  if (const OrvStatus status = check(pSrc, pDstU, pDstW, pDstV, height, width, step, iterations);
      status != orvStsNoErr)
    return status;
  copyRows(pSrc, pDstU, height, width, step);
  return orvsSVDSort_64f_D2_I(pDstU, height, pDstW, pDstV, width, step, iterations);
}

OrvStatus orvsSVDSort_64f_D2_I(double *pSrcDstU, int32_t height, double *pDstW, double *pDstV, int32_t width,
                               int32_t step, int32_t iterations) {
  if (const OrvStatus status = check(pSrcDstU, pSrcDstU, pDstW, pDstV, height, width, step, iterations);
      status != orvStsNoErr)
    return status;
  return decompose(Strided{pSrcDstU, step}, height, pDstW, Strided{pDstV, step}, width, iterations, true);
}

OrvStatus orvsSVDSort_64f_D2L(const double *const *ppSrc, double *const *ppDstU, int32_t height,
                              double *pDstW, double *const *ppDstV, int32_t width, int32_t iterations) {
  if (const OrvStatus status = check(ppSrc, ppDstU, pDstW, ppDstV, height, width, width, iterations);
      status != orvStsNoErr)
    return status;
  copyRows(ppSrc, ppDstU, height, width);
  return orvsSVDSort_64f_D2L_I(ppDstU, height, pDstW, ppDstV, width, iterations);
}

OrvStatus orvsSVDSort_64f_D2L_I(double *const *ppSrcDstU, int32_t height, double *pDstW,
                                double *const *ppDstV, int32_t width, int32_t iterations) {
  if (const OrvStatus status = check(ppSrcDstU, ppSrcDstU, pDstW, ppDstV, height, width, width, iterations);
      status != orvStsNoErr)
    return status;
  return decompose(Pointers{ppSrcDstU}, height, pDstW, Pointers{ppDstV}, width, iterations, true);
}
