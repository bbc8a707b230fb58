// The special values that the library writes. Both NaNs carry the sign bit, and every NaN that the library
// writes as a constant is one of these.

#ifndef ORV_PRIMITIVES_SPECIAL_H
#define ORV_PRIMITIVES_SPECIAL_H

namespace orv {

extern const double orvConstantOfNAN_64f;
extern const double orvConstantOfINF_64f;
extern const double orvConstantOfINF_NEG_64f;
extern const float orvConstantOfNAN_32f;
extern const float orvConstantOfINF_32f;
extern const float orvConstantOfINF_NEG_32f;

// The same by type, for templates.
template <class T>
struct Special;

template <>
struct Special<float> {
  static float nan() { return orvConstantOfNAN_32f; }
  static float infinity() { return orvConstantOfINF_32f; }
  static float minusInfinity() { return orvConstantOfINF_NEG_32f; }
};

template <>
struct Special<double> {
  static double nan() { return orvConstantOfNAN_64f; }
  static double infinity() { return orvConstantOfINF_64f; }
  static double minusInfinity() { return orvConstantOfINF_NEG_64f; }
};

}  // namespace orv

#endif
