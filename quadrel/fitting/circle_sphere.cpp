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
#include "quadrel/linalg/internal/tall_lsq.h"
#include "quadrel/matrix/internal/access.h"
#include "quadrel/matrix/internal/prefetch.h"
#include "quadrel/matrix/internal/contract.h"
#include "quadrel/matrix/operators.h"
#include "quadrel/matrix/internal/scalar.h"

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

  // R carries the normal onto +Z, so rows 0 and 1 of Q = R * points are
  // coordinates in the plane and row 2 the height along the normal. The points
  // are not centred. Q is not stored: its column i is formed where it is
  // needed, as the product forms it (acc = R(r, k) * point(k) + acc in rising k
  // from 0.0), which gives the same numbers both times.
  const CMatrix t = Cart2Sph(normal);
  const CMatrix R = Rotation(t(1), t(2));
  double r[3][3];
  for (int i = 0; i < 3; ++i)
    for (int k = 0; k < 3; ++k)
      r[i][k] = R(i, k);
  const double *const *p = CMatrixAccess::Table(points);
  auto turn = [&r, p](int i, double q[3]) {
    const double *point = p[i];
    for (int row = 0; row < 3; ++row) {
      double acc = r[row][0] * point[0] + 0.0;
      acc = r[row][1] * point[1] + acc;
      q[row] = r[row][2] * point[2] + acc;
    }
  };

  // The design matrix D, rows (1, 2 q0, 2 q1), and the right-hand side
  // q0*q0 + q1*q1, as columns that TallLsq may work on in place; it gives what
  // Lsq(D, b, a) gives.
  const int n = points.GetCols();
  TallColumns D(n, 4);
  double *d0 = D[0];
  double *d1 = D[1];
  double *d2 = D[2];
  double *rhs = D[3];
  double zmean = 0.0;
  for (int i = 0; i < n; ++i) {
    AheadPoints(p, i, n, {d0, d1, d2, rhs});
    double q[3];
    turn(i, q);
    d0[i] = 1.0;
    d1[i] = 2.0 * q[0];
    d2[i] = 2.0 * q[1];
    rhs[i] = q[0] * q[0] + q[1] * q[1];
    zmean += q[2];
  }
  zmean /= n;

  double a[3];
  TallLsq(D.Table(), n, 3, rhs, a);
  // The absolute value keeps a sum that rounding pushed below 0 from the root.
  radius = std::sqrt(AbsRef(a[0] + a[1] * a[1] + a[2] * a[2]));

  // The centre in the turned frame sits at the mean height of the points, so it
  // lies in the fitted plane.
  const double centreAt[3] = {a[1], a[2], zmean};
  CMatrix c(3, 1);
  for (int k = 0; k < 3; ++k)
    c(k) = centreAt[k];
  centre = Transpose(R) * c;

  double *residual = CMatrixAccess::Col(residuals, 0);
  for (int i = 0; i < n; ++i) {
    AheadPoints(p, i, n, {residual});
    const double plane = residual[i];
    double q[3];
    turn(i, q);
    // d = Norm2(Col(Q, i) - c): a sum of squares from 0.0 in rising index.
    double sum = 0.0;
    for (int k = 0; k < 3; ++k) {
      const double difference = q[k] - centreAt[k];
      sum += difference * difference;
    }
    const double d = std::sqrt(sum);
    // sqrt(d*d - plane*plane) is the distance to the centre within the plane;
    // on the axis of the circle it can round below 0 and give NaN.
    const double e = radius - std::sqrt(d * d - plane * plane);
    residual[i] = std::sqrt(plane * plane + e * e);
  }
}

void SphereFit(const CMatrix &points, CMatrix &centre, double &radius, CMatrix &residuals) {
  QUADREL_EXPECTS(points.GetRows() == 3,
                  "points is " + QuadrelDims(points) + "; a point set has 3 rows");
  QUADREL_EXPECTS(points.GetCols() >= 4,
                  QuadrelFormat("a sphere needs at least 4 points, got %d", points.GetCols()));
  QUADREL_EXPECTS(&centre != &points && &residuals != &points, "an output is the points object");

  // The design matrix D, rows (1, 2x, 2y, 2z), and the right-hand side
  // x*x + y*y + z*z, as columns that TallLsq may work on in place; it gives
  // what Lsq(D, b, a) gives.
  const int n = points.GetCols();
  TallColumns D(n, 5);
  double *d0 = D[0];
  double *d1 = D[1];
  double *d2 = D[2];
  double *d3 = D[3];
  double *rhs = D[4];
  const double *const *p = CMatrixAccess::Table(points);
  for (int i = 0; i < n; ++i) {
    AheadPoints(p, i, n, {d0, d1, d2, d3, rhs});
    const double *point = p[i];
    const double x = point[0];
    const double y = point[1];
    const double z = point[2];
    d0[i] = 1.0;
    d1[i] = 2.0 * x;
    d2[i] = 2.0 * y;
    d3[i] = 2.0 * z;
    rhs[i] = x * x + y * y + z * z;
  }

  double a[4];
  TallLsq(D.Table(), n, 4, rhs, a);
  radius = std::sqrt(AbsRef(a[0] + a[1] * a[1] + a[2] * a[2] + a[3] * a[3]));

  const double centreAt[3] = {a[1], a[2], a[3]};
  CMatrixAccess::Reshape(centre, 3, 1);
  for (int k = 0; k < 3; ++k)
    centre(k) = centreAt[k];

  // residuals(i) = Norm2(Col(points, i) - centre) - radius, with the norm's sum
  // of squares from 0.0 in rising index.
  // Reshape leaves the identity column table: element i is Data()[i].
  CMatrixAccess::Reshape(residuals, 1, n);
  double *residual = CMatrixAccess::Data(residuals);
  for (int i = 0; i < n; ++i) {
    AheadPoints(p, i, n, {residual});
    double sum = 0.0;
    for (int k = 0; k < 3; ++k) {
      const double difference = p[i][k] - centreAt[k];
      sum += difference * difference;
    }
    residual[i] = std::sqrt(sum) - radius;
  }
}
