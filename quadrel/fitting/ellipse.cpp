// Ellipse fit: plane, algebraic circle as start, simplex search over the foci.
#include "quadrel/fitting/ellipse.h"

#include <cmath>

#include "quadrel/fitting/internal/ellipse_cost.h"
#include "quadrel/fitting/line_plane.h"
#include "quadrel/fitting/internal/simplex.h"
#include "quadrel/functions/rearrange.h"
#include "quadrel/geometry/rotations.h"
#include "quadrel/geometry/vectors.h"
#include "quadrel/linalg/least_squares.h"
#include "quadrel/matrix/internal/access.h"
#include "quadrel/matrix/internal/contract.h"
#include "quadrel/matrix/operators.h"
#include "quadrel/matrix/internal/scalar.h"

namespace {

// 2^-52, the spacing of doubles at 1.
constexpr double kEpsilon = 2.220446049250313e-16;
// The search gets ample room; it is used as it ends, also at the limit.
constexpr int kMaxIterations = 10000;

}  // namespace

double EllipseCost(const CMatrix &parameters, const CMatrix &planePoints) {
  QUADREL_EXPECTS(parameters.GetRows() * parameters.GetCols() >= 5,
                  "parameters is " + QuadrelDims(parameters) + "; 5 are needed");
  QUADREL_EXPECTS(planePoints.GetRows() >= 2,
                  "planePoints is " + QuadrelDims(planePoints) + "; x and y need 2 rows");

  const double f1x = parameters(0);
  const double f1y = parameters(1);
  const double f2x = parameters(2);
  const double f2y = parameters(3);
  const double s = parameters(4);

  const int n = planePoints.GetCols();
  double total = 0.0;
  for (int i = 0; i < n; ++i) {
    const double px = CMatrixAccess::At(planePoints, 0, i);
    const double py = CMatrixAccess::At(planePoints, 1, i);
    const double d1 = std::sqrt((f1x - px) * (f1x - px) + (f1y - py) * (f1y - py));
    const double d2 = std::sqrt((f2x - px) * (f2x - px) + (f2y - py) * (f2y - py));
    const double m = s - d1 - d2;
    total += m * m;
  }
  return total / n;
}

void EllipseFit(const CMatrix &points, CMatrix &foci, CMatrix &normal, double &focalSum,
                CMatrix &residuals) {
  QUADREL_EXPECTS(points.GetRows() == 3,
                  "points is " + QuadrelDims(points) + "; a point set has 3 rows");
  QUADREL_EXPECTS(points.GetCols() >= 5,
                  QuadrelFormat("an ellipse needs at least 5 points, got %d", points.GetCols()));
  QUADREL_EXPECTS(&foci != &points && &normal != &points && &residuals != &points,
                  "an output is the points object");

  // residuals holds the signed plane residuals until the last loop.
  CMatrix c0;
  PlaneFit(points, c0, normal, residuals);

  // Unlike the circle fit, the points are centred on their centroid before they
  // are turned into the plane.
  const int n = points.GetCols();
  CMatrix C(points);
  for (int i = 0; i < 3; ++i) {
    const double c = c0(i);
    for (int j = 0; j < n; ++j)
      CMatrixAccess::At(C, i, j) = CMatrixAccess::At(C, i, j) - c;
  }

  const CMatrix t = Cart2Sph(normal);
  const CMatrix R = Rotation(t(1), t(2));
  const CMatrix Q = R * C;

  // The algebraic circle in the plane, as in CircleFit.
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
  const double r = std::sqrt(AbsRef(a(0) + a(1) * a(1) + a(2) * a(2)));

  // Both foci start at the centre of the circle, the focal sum at its diameter.
  CMatrix p(5, 1);
  p(0) = a(1);
  p(1) = a(2);
  p(2) = a(1);
  p(3) = a(2);
  p(4) = 2.0 * r;

  int maxIter = kMaxIterations;
  double tolX = p.GetRows() * kEpsilon;
  double tolF = tolX;
  SimplexMin(EllipseCost, p, Q, tolX, tolF, maxIter);

  foci.Resize(3, 2);
  foci(0, 0) = p(0);
  foci(1, 0) = p(1);
  foci(2, 0) = zmean;
  foci(0, 1) = p(2);
  foci(1, 1) = p(3);
  foci(2, 1) = zmean;
  foci = Transpose(R) * foci + ColCat(c0, c0);
  focalSum = p(4);

  for (int i = 0; i < n; ++i) {
    const double e = residuals(i);
    // The cost of one point alone is its m*m, so the in-plane term under the
    // root is m^4.
    const double c = EllipseCost(p, Col(Q, i));
    residuals(i) = std::sqrt(e * e + c * c);
  }
}
