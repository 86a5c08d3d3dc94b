// A pair of doubles for kernels that advance two independent sums at once.
#ifndef QUADREL_MATRIX_INTERNAL_DOUBLE_PAIR_H
#define QUADREL_MATRIX_INTERNAL_DOUBLE_PAIR_H

// Two doubles side by side, for the library's own kernels that advance two
// independent sums or elements at once. Each lane is an ordinary IEEE double
// operation (the build never contracts into fused multiply-add), so a lane
// gives exactly the bits of the same scalar code.
#if defined(__GNUC__)
typedef double DoublePair __attribute__((vector_size(16)));
inline DoublePair MakePair(double lo, double hi) {
  return DoublePair{lo, hi};
}
inline double Lane0(DoublePair v) {
  return v[0];
}
inline double Lane1(DoublePair v) {
  return v[1];
}
#else
struct DoublePair {
  double lo, hi;
};
inline DoublePair MakePair(double lo, double hi) {
  return DoublePair{lo, hi};
}
inline double Lane0(DoublePair v) {
  return v.lo;
}
inline double Lane1(DoublePair v) {
  return v.hi;
}
inline DoublePair operator+(DoublePair a, DoublePair b) {
  return DoublePair{a.lo + b.lo, a.hi + b.hi};
}
inline DoublePair operator-(DoublePair a, DoublePair b) {
  return DoublePair{a.lo - b.lo, a.hi - b.hi};
}
inline DoublePair operator*(DoublePair a, DoublePair b) {
  return DoublePair{a.lo * b.lo, a.hi * b.hi};
}
inline DoublePair operator/(DoublePair a, DoublePair b) {
  return DoublePair{a.lo / b.lo, a.hi / b.hi};
}
#endif
inline DoublePair SplatPair(double x) {
  return MakePair(x, x);
}
inline DoublePair LoadPair(const double *p) {
  return MakePair(p[0], p[1]);
}
inline void StorePair(double *p, DoublePair v) {
  p[0] = Lane0(v);
  p[1] = Lane1(v);
}

#endif  // QUADREL_MATRIX_INTERNAL_DOUBLE_PAIR_H
