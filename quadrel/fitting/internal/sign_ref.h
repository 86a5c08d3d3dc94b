// The sign of a double as a factor.
#ifndef QUADREL_FITTING_SIGN_REF_H
#define QUADREL_FITTING_SIGN_REF_H

// -1.0 if value < 0.0, else +1.0: zero (of either sign) and NaN give +1.0.
inline double SignRef(const double &value) {
  return value < 0.0 ? -1.0 : 1.0;
}

#endif  // QUADREL_FITTING_SIGN_REF_H
