#include "quadrel/geometry/rotations.h"

#include <cmath>

#include "quadrel/functions/rearrange.h"
#include "quadrel/matrix/internal/contract.h"
#include "quadrel/matrix/operators.h"

namespace {

// Sines and cosines of the three angles, shared by the rotation and its
// derivatives.
struct Trig {
  double ca, sa, cb, sb, cg, sg;
  Trig(double alpha, double beta, double gamma)
      : ca(std::cos(alpha)),
        sa(std::sin(alpha)),
        cb(std::cos(beta)),
        sb(std::sin(beta)),
        cg(std::cos(gamma)),
        sg(std::sin(gamma)) {}
};

// Shapes that Transform and UnTransform accept: R 3 x 3; X a 3 x 1 column or
// n x 3 rows; T at least as large as X, since X (or R * X) leads the sum.
bool IsRotationShape(const CMatrix &R) {
  return R.GetRows() == 3 && R.GetCols() == 3;
}

bool IsPointsShape(const CMatrix &X) {
  return X.GetCols() == 1 ? X.GetRows() == 3 : X.GetCols() == 3;
}

bool CoversPoints(const CMatrix &T, const CMatrix &X) {
  return T.GetRows() >= X.GetRows() && T.GetCols() >= X.GetCols();
}

}  // namespace

CMatrix Rotation(double azimuth, double elevation) {
  const double ca = std::cos(azimuth), sa = std::sin(azimuth);
  const double cb = std::cos(elevation), sb = std::sin(elevation);
  CMatrix R(3, 3);
  R(0, 0) = -ca;
  R(0, 1) = 0.0;
  R(0, 2) = -sa;
  R(1, 0) = -sa * sb;
  R(1, 1) = -cb;
  R(1, 2) = ca * sb;
  R(2, 0) = -sa * cb;
  R(2, 1) = sb;
  R(2, 2) = ca * cb;
  return R;
}

CMatrix Rotation(double alpha, double beta, double gamma) {
  const Trig t(alpha, beta, gamma);
  CMatrix R(3, 3);
  R(0, 0) = t.cb * t.cg;
  R(0, 1) = t.cb * t.sg;
  R(0, 2) = -t.sb;
  R(1, 0) = -t.ca * t.sg + t.sa * t.sb * t.cg;
  R(1, 1) = t.ca * t.cg + t.sa * t.sb * t.sg;
  R(1, 2) = t.sa * t.cb;
  R(2, 0) = t.sa * t.sg + t.ca * t.sb * t.cg;
  R(2, 1) = -t.sa * t.cg + t.ca * t.sb * t.sg;
  R(2, 2) = t.ca * t.cb;
  return R;
}

CMatrix RotationAlpha(double alpha, double beta, double gamma) {
  const Trig t(alpha, beta, gamma);
  CMatrix D(3, 3);
  D(0, 0) = 0.0;
  D(0, 1) = 0.0;
  D(0, 2) = 0.0;
  D(1, 0) = t.sa * t.sg + t.ca * t.sb * t.cg;
  D(1, 1) = -t.sa * t.cg + t.ca * t.sb * t.sg;
  D(1, 2) = t.ca * t.cb;
  D(2, 0) = t.ca * t.sg - t.sa * t.sb * t.cg;
  D(2, 1) = -t.ca * t.cg - t.sa * t.sb * t.sg;
  D(2, 2) = -t.sa * t.cb;
  return D;
}

CMatrix RotationBeta(double alpha, double beta, double gamma) {
  const Trig t(alpha, beta, gamma);
  CMatrix D(3, 3);
  D(0, 0) = -t.sb * t.cg;
  D(0, 1) = -t.sb * t.sg;
  D(0, 2) = -t.cb;
  D(1, 0) = t.sa * t.cb * t.cg;
  D(1, 1) = t.sa * t.cb * t.sg;
  D(1, 2) = -t.sa * t.sb;
  D(2, 0) = t.ca * t.cb * t.cg;
  D(2, 1) = t.ca * t.cb * t.sg;
  D(2, 2) = -t.ca * t.sb;
  return D;
}

CMatrix RotationGamma(double alpha, double beta, double gamma) {
  const Trig t(alpha, beta, gamma);
  CMatrix D(3, 3);
  D(0, 0) = -t.cb * t.sg;
  D(0, 1) = t.cb * t.cg;
  D(0, 2) = 0.0;
  D(1, 0) = -t.ca * t.cg - t.sa * t.sb * t.sg;
  D(1, 1) = -t.ca * t.sg + t.sa * t.sb * t.cg;
  D(1, 2) = 0.0;
  D(2, 0) = t.sa * t.cg - t.ca * t.sb * t.sg;
  D(2, 1) = t.sa * t.sg + t.ca * t.sb * t.cg;
  D(2, 2) = 0.0;
  return D;
}

CMatrix Transform(const CMatrix &R, const CMatrix &X, const CMatrix &T) {
  QUADREL_EXPECTS(IsRotationShape(R), "rotation is " + QuadrelDims(R) + ", not 3 x 3");
  QUADREL_EXPECTS(IsPointsShape(X), "points are " + QuadrelDims(X) + ", not 3 x 1 or n x 3");
  QUADREL_EXPECTS(CoversPoints(T, X), "translation is " + QuadrelDims(T) +
                                          ", smaller than the points' " + QuadrelDims(X));
  if (X.GetCols() == 1) return R * X + T;
  return X * Transpose(R) + T;
}

CMatrix UnTransform(const CMatrix &R, const CMatrix &X, const CMatrix &T) {
  QUADREL_EXPECTS(IsRotationShape(R), "rotation is " + QuadrelDims(R) + ", not 3 x 3");
  QUADREL_EXPECTS(IsPointsShape(X), "points are " + QuadrelDims(X) + ", not 3 x 1 or n x 3");
  QUADREL_EXPECTS(CoversPoints(T, X), "translation is " + QuadrelDims(T) +
                                          ", smaller than the points' " + QuadrelDims(X));
  if (X.GetCols() == 1) return Transpose(R) * (X - T);
  return (X - T) * R;
}
