// log(1 + exp(d)) for d <= 0 by polynomials in three segments, and the log-additions built on it.
//
// The value at d is c0 + H(u) * u: u is the distance of d from the upper end of its segment, c0 the constant
// term of the segment's polynomial and H the Horner value of its other coefficients.

#ifndef ORV_CORE_LOGADD_H
#define ORV_CORE_LOGADD_H

#include <cmath>
#include <cstdint>

namespace orv {

// Coefficients, highest power first. The single-precision forms use the tables of degree 10, the
// double-precision forms those of degree 21.
extern const double P1_F[11];
extern const double P2_F[11];
extern const double P3_F[11];
extern const double P1[22];
extern const double P2[22];
extern const double P3[22];

// The same coefficients for two differences at once, each in its own segment: row i serves the pair of which
// bits 0 and 1 of i tell whether the first and the second lie in the first segment, and bits 2 and 3 whether
// they lie in the first or the second.
template <int degree>
struct SegmentPairs {
  struct alignas(16) Row {
    double ends[2];  // upper ends of the segments
    double coefficients[degree + 1][2];
  };
  Row rows[16];
};
extern const SegmentPairs<10> pairs32f;
extern const SegmentPairs<21> pairs64f;

// Quadratics a, b, c over cells of equal width, for the fast path. Row 0 is never read.
alignas(16) extern const float QIP1_F1[65][4];

void GetLogAddConst(const double *&p1, const double *&p2, const double *&p3);
void GetLogAddConst_F(const double *&p1, const double *&p2, const double *&p3);

// The log domain of the 32f and integer forms.
struct LogDomain32f {
  using Value = float;
  static constexpr int degree = 10;
  static constexpr double dropBelow = -15.3195879547406;  // -ln(4.5e6)
  static constexpr double firstEnd = -2.55;
  static constexpr double secondEnd = -6.8;
  static constexpr double zero = -4.5e6;

  static const SegmentPairs<degree> &pairs() { return pairs32f; }

  const double *segments[3];
  LogDomain32f() {
    const double *p1, *p2, *p3;
    GetLogAddConst_F(p1, p2, p3);
    segments[0] = p1;  // through locals, so that the object itself can stay in registers
    segments[1] = p2;
    segments[2] = p3;
  }

  // Raises what lies below log-zero. A NaN passes.
  template <class T>
  static T floored(T m) {
    return m < static_cast<T>(zero) ? static_cast<T>(zero) : m;
  }
};

// The log domain of the 64f forms.
struct LogDomain64f {
  using Value = double;
  static constexpr int degree = 21;
  static constexpr double dropBelow = -23.0258509299405;  // -ln(1e10)
  static constexpr double firstEnd = -3.5;
  static constexpr double secondEnd = -9.0;
  static constexpr double zero = -1e10;

  static const SegmentPairs<degree> &pairs() { return pairs64f; }

  const double *segments[3];
  LogDomain64f() {
    const double *p1, *p2, *p3;
    GetLogAddConst(p1, p2, p3);
    segments[0] = p1;
    segments[1] = p2;
    segments[2] = p3;
  }

  // The limit and the value differ: everything below -9e9 becomes -1e10.
  static double floored(double m) { return -9e9 > m ? zero : m; }
};

// The segment of a difference and its place in it. A NaN falls into the last one.
struct LogSegment {
  const double *coefficients;
  double u;

  template <class Domain>
  LogSegment(const Domain &domain, double d) {
    if (d > Domain::firstEnd) {
      coefficients = domain.segments[0];
      u = d;
    } else if (d > Domain::secondEnd) {
      coefficients = domain.segments[1];
      u = d - Domain::firstEnd;
    } else {
      coefficients = domain.segments[2];
      u = d - Domain::secondEnd;
    }
  }
};

// All coefficients but the constant term.
template <int degree>
inline double horner(const double *coefficients, double u) {
  double h = coefficients[0];
  for (int i = 1; i < degree; ++i) h = h * u + coefficients[i];
  return h;
}

// How the three terms of a sum in the log domain are put together. The two families differ on purpose; the
// difference is one of last bits.
enum class Grouping {
  constantFirst,  // (m + c0) + H u: log-addition of vectors, log-sums, running log-sums
  constantLast,   // (m + H u) + c0: mixtures
};

template <Grouping grouping, class T>
inline T logTerms(T m, T c0, T hu) {
  return grouping == Grouping::constantFirst ? (m + c0) + hu : (m + hu) + c0;
}

// The sum for a difference that is not dropped, in double precision.
template <Grouping grouping, class Domain>
inline double logTail(const Domain &domain, double m, double d) {
  const LogSegment s(domain, d);
  return logTerms<grouping>(m, s.coefficients[Domain::degree],
                            horner<Domain::degree>(s.coefficients, s.u) * s.u);
}

// m plus the polynomial of degree 10, with its terms taken in pairs: the same value up to rounding, from a
// third of the latency.
inline double pairedSum(double m, const double *c, double u) {
  const double u2 = u * u;
  const double u4 = u2 * u2;
  const double low = (m + (c[10] + c[9] * u)) + (c[8] + c[7] * u) * u2;
  const double middle = (c[6] + c[5] * u) + (c[4] + c[3] * u) * u2;
  const double high = (c[2] + c[1] * u) + c[0] * u2;
  return (low + high * (u4 * u4)) + middle * u4;  // middle is the last to be ready
}

// As logTail, rounded to single: the result of a running sum whose next step waits for it. Horner's chain
// would be most of that wait, so the paired form is taken wherever both must round to the same single value.
// On the segments the sum of |c_k u^k| stays below 3.5, so that either form is within 22 * 2^-53 * 3.5 <
// 9e-15 of the polynomial; the additions to m put at most 6 * 2^-53 (|m| + 4) between them. If everything
// within slack of the quick value rounds to one single value, that is the value; otherwise (about once in 1e7
// steps, and for a NaN) Horner decides.
template <Grouping grouping>
inline float logTailRounded(const LogDomain32f &domain, double m, double d) {
  const LogSegment s(domain, d);
  const double quick = pairedSum(m, s.coefficients, s.u);
  const double slack = std::fabs(m) * 0x1p-49 + 4e-14;
  const auto rounded = static_cast<float>(quick);
  if (static_cast<float>(quick - slack) == static_cast<float>(quick + slack)) [[likely]]
    return rounded;
  const double c0 = s.coefficients[LogDomain32f::degree];
  return static_cast<float>(
      logTerms<grouping>(m, c0, horner<LogDomain32f::degree>(s.coefficients, s.u) * s.u));
}

// One step of a running log-sum: the larger value and the difference, formed in the type of the values, then
// the drop with its floor or the polynomial.
template <Grouping grouping>
inline float logAddStep(const LogDomain32f &domain, float running, float score) {
  const float m = running > score ? running : score;
  const double d = -std::fabs(running - score);
  if (LogDomain32f::dropBelow > d) return LogDomain32f::floored(m);
  return logTailRounded<grouping>(domain, m, d);
}

template <Grouping grouping>
inline double logAddStep(const LogDomain64f &domain, double running, double score) {
  const double m = running > score ? running : score;
  const double d = -std::fabs(running - score);
  if (LogDomain64f::dropBelow > d) return LogDomain64f::floored(m);
  return logTail<grouping>(domain, m, d);
}

// A running sum after a step for each value in turn.
template <Grouping grouping>
inline float addInTurn(const LogDomain32f &domain, float running, const float *values, std::int32_t count) {
  for (std::int32_t i = 0; i < count; ++i) running = logAddStep<grouping>(domain, running, values[i]);
  return running;
}
template <Grouping grouping>
double addInTurn(const LogDomain64f &domain, double running, const double *values, std::int32_t count);

}  // namespace orv

#endif
