// Circle and sphere fits through the linear model of squared radii.
//
// A point on a circle of centre (a1, a2) and radius r satisfies
// x*x + y*y = a0 + 2*a1*x + 2*a2*y with a0 = r*r - a1*a1 - a2*a2, which is linear
// in (a0, a1, a2); the sphere adds 2*a3*z. Least squares gives the a, and the
// radius follows as sqrt(a0 + a1*a1 + a2*a2 [+ a3*a3]).
#include "quadrel/fitting/circle_sphere.h"

#include <cmath>

#include "quadrel/fitting/line_plane.h"
#include "quadrel/functions/rearrange.h"
#include "quadrel/geometry/rotations.h"
#include "quadrel/geometry/vectors.h"
#include "quadrel/linalg/least_squares.h"
#include "quadrel/matrix/access.h"
#include "quadrel/matrix/contract.h"
#include "quadrel/matrix/operators.h"
#include "quadrel/matrix/scalar.h"

void CircleFit(const CMatrix &points, CMatrix &centre, CMatrix &normal, double &radius,
               CMatrix &residuals) {
  QUADREL_EXPECTS(points.GetRows() == 3,
                  "points is " + QuadrelDims(points) + "; a point set has 3 rows");
  QUADREL_EXPECTS(points.GetCols() >= 3,
                  QuadrelFormat("a circle needs at least 3 points, got %d", points.GetCols()));
  QUADREL_EXPECTS(&centre != &points && &normal != &points && &residuals != &points,
                  "an output is the points object");

  // residuals holds the signed plane residuals until the last loop.
  CMatrix c0;
  PlaneFit(points, c0, normal, residuals);

  // R carries the normal onto +Z, so rows 0 and 1 of Q are coordinates in the
  // plane and row 2 the height along the normal. The points are not centred.
  const CMatrix t = Cart2Sph(normal);
  const CMatrix R = Rotation(t(1), t(2));
  const CMatrix Q = R * points;

  const int n = points.GetCols();
  CMatrix D(0.0, n, 3);
  CMatrix b(0.0, n, 1);
  double zmean = 0.0;
  for (int i = 0; i < n; ++i) {
    const double x = CMatrixAccess::At(Q, 0, i);
    const double y = CMatrixAccess::At(Q, 1, i);
    const double z = CMatrixAccess::At(Q, 2, i);
    CMatrixAccess::At(D, i, 0) = 1.0;
    CMatrixAccess::At(D, i, 1) = 2.0 * x;
    CMatrixAccess::At(D, i, 2) = 2.0 * y;
    CMatrixAccess::At(b, i, 0) = x * x + y * y;
    zmean += z;
  }
  zmean /= n;

  CMatrix a;
  Lsq(D, b, a);
  // The absolute value keeps a sum that rounding pushed below 0 from the root.
  radius = std::sqrt(AbsRef(a(0) + a(1) * a(1) + a(2) * a(2)));

  // The centre in the turned frame sits at the mean height of the points, so it
  // lies in the fitted plane.
  CMatrix c(3, 1);
  c(0) = a(1);
  c(1) = a(2);
  c(2) = zmean;
  centre = Transpose(R) * c;

  for (int i = 0; i < n; ++i) {
    const double p = residuals(i);
    const double d = Norm2(Col(Q, i) - c);
    // sqrt(d*d - p*p) is the distance to the centre within the plane; on the
    // axis of the circle it can round below 0 and give NaN.
    const double e = radius - std::sqrt(d * d - p * p);
    residuals(i) = std::sqrt(p * p + e * e);
  }
}

void SphereFit(const CMatrix &points, CMatrix &centre, double &radius, CMatrix &residuals) {
  QUADREL_EXPECTS(points.GetRows() == 3,
                  "points is " + QuadrelDims(points) + "; a point set has 3 rows");
  QUADREL_EXPECTS(points.GetCols() >= 4,
                  QuadrelFormat("a sphere needs at least 4 points, got %d", points.GetCols()));
  QUADREL_EXPECTS(&centre != &points && &residuals != &points, "an output is the points object");

  const int n = points.GetCols();
  CMatrix D(n, 4);
  CMatrix b(n, 1);
  for (int i = 0; i < n; ++i) {
    const double x = CMatrixAccess::At(points, 0, i);
    const double y = CMatrixAccess::At(points, 1, i);
    const double z = CMatrixAccess::At(points, 2, i);
    CMatrixAccess::At(D, i, 0) = 1.0;
    CMatrixAccess::At(D, i, 1) = 2.0 * x;
    CMatrixAccess::At(D, i, 2) = 2.0 * y;
    CMatrixAccess::At(D, i, 3) = 2.0 * z;
    CMatrixAccess::At(b, i, 0) = x * x + y * y + z * z;
  }

  CMatrix a;
  Lsq(D, b, a);
  radius = std::sqrt(AbsRef(a(0) + a(1) * a(1) + a(2) * a(2) + a(3) * a(3)));

  centre.Resize(3, 1);
  centre(0) = a(1);
  centre(1) = a(2);
  centre(2) = a(3);

  residuals.Resize(1, n);
  for (int i = 0; i < n; ++i)
    residuals(i) = Norm2(Col(points, i) - centre) - radius;
}
