// orvsSVD_64f_*, orvsSVDSort_64f_*: singular value decomposition by Householder reduction to bidiagonal form
// and implicitly shifted QR iteration.
//
// Everything is done on transposed copies of U and V, whose rows are the columns that the method works on:
// the same operations as on the caller's matrices, at neighbouring addresses and while they are near.

#include <cmath>
#include <cstddef>
#include <cstdint>

#include "core/alloc.h"
#include "matrix/lines.h"
#include "matrix/svdlines.h"
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

class Decomposition {
 public:
  // Transposed copies of an m x n matrix and room for V.
  Decomposition(std::int32_t m, std::int32_t n) : m_(m), n_(n) {
    const std::int64_t uStride = Lines::strideOf(m), vStride = Lines::strideOf(n);
    // Each matrix by itself first: the products are below 2^63, their sum need not be.
    if (uStride * n > INT32_MAX || vStride * n > INT32_MAX) return;
    // Reflections are done before the first rotation is.
    const std::int64_t reflected =
        (n < kReflections ? n : kReflections) * (uStride > 2 * vStride ? uStride : 2 * vStride);
    const std::int64_t rotated = kSweeps * std::int64_t{n} * kRotation;
    const std::int64_t room = reflected > 2 * rotated ? reflected : 2 * rotated;
    const std::int64_t total = kAlign + uStride * n + vStride * n + room + 3 * vStride + uStride;
    if (total > INT32_MAX) return;
    block_ = orvsMalloc_64f(static_cast<std::int32_t>(total));
    if (block_ == nullptr) return;
    const auto misaligned = reinterpret_cast<std::uintptr_t>(block_) / sizeof(double) % kAlign;
    double *next = block_ + (kAlign - misaligned) % kAlign;
    const auto take = [&next](std::int64_t count) {
      double *p = next;
      next += count;
      return p;
    };
    u_ = {take(uStride * n), static_cast<std::ptrdiff_t>(uStride), m};
    v_ = {take(vStride * n), static_cast<std::ptrdiff_t>(vStride), n};
    room_ = take(room);
    superDiagonal_ = take(vStride);
    row_ = take(vStride);
    factors_ = take(vStride);
    sums_ = take(uStride);
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
    u_.clear(n_, m_);
    reduce();
    accumulateRight();
    accumulateLeft();
    return diagonalise(iterations) ? orvStsNoErr : orvStsSvdConvergeErr;
  }

 private:
  static constexpr std::int32_t kAlign = 8;         // doubles in a cache line
  static constexpr std::int32_t kReflections = 16;  // that are applied together
  static constexpr std::int32_t kSweeps = 16;       // that are applied together, if they are of full length
  static constexpr std::int32_t kMostSweeps = 64;   // even if they are short
  static constexpr std::int32_t kRotation = sizeof(RotationLanes) / sizeof(double);

  double w(std::int32_t i) const { return load(w_ + i); }
  void setW(std::int32_t i, double value) { store(w_ + i, value); }

  // Householder reduction to bidiagonal form. What a row does to the rows below it waits for the next column,
  // so that the lines are walked twice for both.
  void reduce() {
    double g = 0, scaleOf = 0;
    for (std::int32_t i = 0; i < n_; ++i) {
      superDiagonal_[i] = scaleOf * g;
      g = scaleOf = 0;
      if (i < m_)
        g = reduceColumn(i, &scaleOf);
      else if (i == m_)
        takeRow(i, i, n_);
      rowScale_ = 0;
      setW(i, scaleOf * g);
      g = scaleOf = 0;
      if (i < m_ && i != n_ - 1) g = reduceRow(i, &scaleOf);
      const double reach = std::fabs(w(i)) + std::fabs(superDiagonal_[i]);
      anorm_ = anorm_ > reach ? anorm_ : reach;
    }
  }

  double reduceColumn(std::int32_t i, double *scaleOf) {
    takeRow(i, i, i + 1);
    double *column = u_[i] + i;
    const std::int32_t len = m_ - i;
    const double sum = sumAbs(column, len);
    *scaleOf = sum;
    if (sum == 0) {
      takeRow(i, i + 1, n_);
      return 0;
    }
    const double s = scaleAndSumSquares(column, len, 1 / sum);
    const double f = column[0];
    const double g = againstSignOf(std::sqrt(s), f);
    const double h = f * g - s;
    column[0] = f - g;
    // Downward, since the next walk goes upward and begins with what is still near.
    std::int32_t j = n_;
    for (; j - i > 4; j -= 4) {
      const FourLines x(u_, j - 4, i);
      double t[4];
      if (rowScale_ != 0) {
        for (int k = 0; k < 4; ++k) x.x[k][-1] = row_[j - 4 + k] * rowScale_;
        x.addMulAndDot(sums_, factors_ + j - 4, column, t, len);
      } else {
        x.dot(column, t, len);
      }
      for (double &v : t) v = v / h;
      x.addMul(column, t, len);
      for (int k = 0; k < 4; ++k) row_[j - 4 + k] = x.x[k][0];
    }
    takeRow(i, i + 1, j);
    for (std::int32_t k = i + 1; k < j; ++k) {
      addMul(column, u_[k] + i, len, dot(column, u_[k] + i, len) / h);
      row_[k] = u_[k][i];
    }
    scale(column, len, sum);
    return g;
  }

  // What the row before row i still has to do to lines from `first` to before `last`. Their elements of row i
  // are row_ then.
  void takeRow(std::int32_t i, std::int32_t first, std::int32_t last) {
    const std::int32_t len = m_ - i;
    for (std::int32_t j = first; j < last; ++j) {
      double *const x = u_[j] + i;
      if (rowScale_ != 0) {
        x[-1] = row_[j] * rowScale_;
        addMul(sums_, x, len, factors_[j]);
      }
      if (len > 0) row_[j] = *x;
    }
  }

  // The products of the row with all the rows below are formed side by side, each in the order of its
  // elements.
  double reduceRow(std::int32_t i, double *scaleOf) {
    const std::int32_t l = i + 1, len = n_ - l;
    const double sum = sumAbs(row_ + l, len);
    *scaleOf = sum;
    if (sum == 0) return 0;
    const double s = scaleAndSumSquares(row_ + l, len, 1 / sum);
    const double f = row_[l];
    const double g = againstSignOf(std::sqrt(s), f);
    const double h = f * g - s;
    row_[l] = f - g;
    const double reciprocal = 1 / h;
    for (std::int32_t k = l; k < n_; ++k) factors_[k] = row_[k] * reciprocal;
    reflectRows(l);
    rowScale_ = sum;
    return g;
  }

  // Rows j of A from l on: row j += (row j . row_) factors_, over elements from l on.
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
  }

  // Reflections `last`, ... 0 of lines, each as `make` describes it, with room for it.
  template <class Make>
  void accumulate(const Lines &lines, std::int32_t last, std::int64_t roomForOne, Make make) {
    for (std::int32_t high = last; high >= 0; high -= kReflections) {
      const std::int32_t low = high < kReflections ? 0 : high - kReflections + 1;
      Reflection reflections[kReflections];
      for (std::int32_t i = high; i >= low; --i)
        reflections[high - i] = make(i, room_ + (high - i) * roomForOne);
      reflectLines(lines, n_, reflections, high, low);
    }
  }

  void accumulateRight() {
    v_.clear(n_, 0);
    for (std::int32_t i = 0; i < n_; ++i) v_[i][i] = 1;
    accumulate(v_, n_ - 2, 2 * v_.stride, [this](std::int32_t i, double *room) {
      const std::int32_t l = i + 1, len = n_ - l;
      double *const u = room, *const v = room + v_.stride + 1;
      const double g = superDiagonal_[l];
      if (g != 0) {
        for (std::int32_t j = 0; j < len; ++j) u[j] = i < m_ ? u_[l + j][i] : 0;
        for (std::int32_t j = 0; j < len; ++j) v[j] = (u[j] / u[0]) / g;
      }
      v[-1] = 0;
      return Reflection{u, v, l, len, 1, 1, false, g == 0};
    });
  }

  void accumulateLeft() {
    accumulate(u_, (m_ < n_ ? m_ : n_) - 1, u_.stride, [this](std::int32_t i, double *room) {
      double *const column = u_[i] + i;
      const std::int32_t len = m_ - i;
      for (std::int32_t k = 0; k < len; ++k) room[k] = column[k];
      const bool empty = w(i) == 0;
      const double g = 1 / w(i);
      for (std::int32_t k = 0; k < len; ++k) column[k] = empty ? 0 : column[k] * g;
      column[0] += 1;
      return Reflection{room + 1, room + 1, i + 1, len - 1, room[0], g, true, empty};
    });
  }

  bool negligible(double x) const { return anorm_ == anorm_ + std::fabs(x); }

  bool diagonalise(std::int32_t iterations) {
    for (std::int32_t k = 0; k < n_; ++k) row_[k] = 1;
    bool settled = true;
    for (std::int32_t k = n_ - 1; k >= 0 && settled; --k) settled = settle(k, iterations);
    rotateAll();
    for (std::int32_t k = 0; k < n_; ++k)
      if (row_[k] < 0) scale(v_[k], n_, -1.0);
    return settled;
  }

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
          row_[k] = -1;  // column k of V is left alone from now on, and changes its sign at the end
        }
        return true;
      }
      if (iteration == iterations) return false;
      sweep(l, k);
    }
  }

  void cancelFrom(std::int32_t l, std::int32_t k) {
    rotateAll();
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
      rotatePair(u_[l - 1], u_[i], m_, c, s);
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

  // The rotations of the sweeps so far that U and V have not seen yet.
  void rotateAll() {
    rotateLines(v_, right_, sweeps_);
    rotateLines(u_, left_, sweeps_);
    sweeps_ = 0;
    rotations_ = 0;
  }

  // One QR sweep over l .. k with the shift from the bottom 2 x 2 minor. It looks at neither U nor V, so that
  // their rotations can wait until there are many.
  void sweep(std::int32_t l, std::int32_t k) {
    if (sweeps_ == kMostSweeps || rotations_ + (k - l) > kSweeps * n_) rotateAll();
    auto *const right = reinterpret_cast<RotationLanes *>(room_) + rotations_, *const left =
                                                                                   right + kSweeps * n_;
    rotations_ += k - l;
    right_[sweeps_] = {l, k, right};
    left_[sweeps_] = {l, k, left};
    ++sweeps_;
    double x = w(l), y, z, g, h, f = shift(l, k);
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
      right[j - l] = {{c, c}, {s, s}};
      z = _sqrSumSqrt(f, h);
      setW(j, z);
      if (z != 0) {
        z = 1 / z;
        c = f * z;
        s = h * z;
      }
      f = c * g + s * y;
      x = c * y - s * g;
      left[j - l] = {{c, c}, {s, s}};
    }
    superDiagonal_[l] = 0;
    superDiagonal_[k] = f;
    setW(k, x);
  }

  std::int32_t m_, n_;
  double *block_ = nullptr;
  Lines u_{}, v_{};
  double *superDiagonal_ = nullptr, *row_ = nullptr, *factors_ = nullptr, *sums_ = nullptr, *w_ = nullptr;
  double *room_ = nullptr;  // for reflections, later for rotations
  Sweep right_[kMostSweeps], left_[kMostSweeps];
  std::int32_t sweeps_ = 0, rotations_ = 0;
  double anorm_ = 0, rowScale_ = 0;
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
