#include "quadrel/geometry/distances.h"

#include <cmath>
#include <limits>
#include <string>

#include "quadrel/functions/rearrange.h"
#include "quadrel/functions/reductions.h"
#include "quadrel/geometry/vectors.h"
#include "quadrel/linalg/direct.h"
#include "quadrel/matrix/internal/contract.h"
#include "quadrel/matrix/operators.h"
#include "quadrel/matrix/internal/scalar.h"

namespace {

bool IsColumn3(const CMatrix &m) {
  return m.GetRows() == 3 && m.GetCols() == 1;
}

bool IsVector3(const CMatrix &m) {
  return (m.GetRows() == 3 && m.GetCols() == 1) || (m.GetRows() == 1 && m.GetCols() == 3);
}

bool SameShape(const CMatrix &a, const CMatrix &b) {
  return a.GetRows() == b.GetRows() && a.GetCols() == b.GetCols();
}

std::string NotColumn3(const char *name, const CMatrix &m) {
  return std::string(name) + " is " + QuadrelDims(m) + ", not a 3 x 1 column";
}

std::string NotVector3(const char *name, const CMatrix &m) {
  return std::string(name) + " is " + QuadrelDims(m) + ", not 3 x 1 or 1 x 3";
}

}  // namespace

double LinePointDist(const CMatrix &linePoint, const CMatrix &direction, const CMatrix &point) {
  QUADREL_EXPECTS(IsVector3(point), NotVector3("point", point));
  QUADREL_EXPECTS(SameShape(linePoint, point), QuadrelSizeMismatch(point, linePoint));
  QUADREL_EXPECTS(IsVector3(direction), NotVector3("direction", direction));
  const CMatrix v = point - linePoint;
  const double length = Norm2(v);
  if (length == 0) return 0.0;
  // The angle to the line, folded into [0, pi/2] so that either sign of the
  // direction gives the same distance.
  double t = Angle(direction, v);
  if (t > 1.5707963267948966) t = 3.141592653589793 - t;
  return std::sin(t) * length;
}

double PlanePointDist(const CMatrix &planePoint, const CMatrix &normal, const CMatrix &point) {
  QUADREL_EXPECTS(IsColumn3(planePoint), NotColumn3("planePoint", planePoint));
  QUADREL_EXPECTS(IsColumn3(normal), NotColumn3("normal", normal));
  QUADREL_EXPECTS(IsColumn3(point), NotColumn3("point", point));
  const CMatrix u = normal / Norm2(normal);
  return (Transpose(point - planePoint) * u)(0);
}

double PlaneLineDist(const CMatrix &planePoint, const CMatrix &normal, const CMatrix &linePoint,
                     const CMatrix &direction) {
  QUADREL_EXPECTS(IsColumn3(planePoint), NotColumn3("planePoint", planePoint));
  QUADREL_EXPECTS(IsColumn3(normal), NotColumn3("normal", normal));
  QUADREL_EXPECTS(IsColumn3(linePoint), NotColumn3("linePoint", linePoint));
  QUADREL_EXPECTS(IsColumn3(direction), NotColumn3("direction", direction));
  // Exact test: the line is parallel only when the angle is the very double
  // that acos(0) gives.
  if (Angle(normal, direction) == 1.5707963267948966)
    return PlanePointDist(planePoint, normal, linePoint);
  return 0.0;
}

double PlanePlaneDist(const CMatrix &point1, const CMatrix &normal1, const CMatrix &point2,
                      const CMatrix &normal2) {
  QUADREL_EXPECTS(IsColumn3(point1), NotColumn3("point1", point1));
  QUADREL_EXPECTS(IsColumn3(normal1), NotColumn3("normal1", normal1));
  QUADREL_EXPECTS(IsColumn3(point2), NotColumn3("point2", point2));
  QUADREL_EXPECTS(IsColumn3(normal2), NotColumn3("normal2", normal2));
  // Exact test, and only for normals of one direction: opposite normals have an
  // angle of pi and count as meeting planes.
  if (Angle(normal1, normal2) == 0.0) return PlanePointDist(point1, normal1, point2);
  return 0.0;
}

double LinePointInt(const CMatrix &linePoint, const CMatrix &direction, const CMatrix &point,
                    CMatrix &foot) {
  QUADREL_EXPECTS(IsVector3(point), NotVector3("point", point));
  QUADREL_EXPECTS(SameShape(linePoint, point), QuadrelSizeMismatch(point, linePoint));
  QUADREL_EXPECTS(SameShape(direction, point), QuadrelSizeMismatch(point, direction));
  const double d = LinePointDist(linePoint, direction, point);
  const CMatrix u = direction / Norm2(direction);
  const double s = Dot(u, point - linePoint);
  foot = linePoint + s * u;
  return d;
}

double PlanePointInt(const CMatrix &planePoint, const CMatrix &normal, const CMatrix &point,
                     CMatrix &foot) {
  QUADREL_EXPECTS(IsColumn3(planePoint), NotColumn3("planePoint", planePoint));
  QUADREL_EXPECTS(IsColumn3(normal), NotColumn3("normal", normal));
  QUADREL_EXPECTS(IsColumn3(point), NotColumn3("point", point));
  const double d = PlanePointDist(planePoint, normal, point);
  foot = point - d * (normal / Norm2(normal));
  return d;
}

double PlaneLineInt(const CMatrix &planePoint, const CMatrix &normal, const CMatrix &linePoint,
                    const CMatrix &direction, CMatrix &crossing) {
  QUADREL_EXPECTS(IsColumn3(planePoint), NotColumn3("planePoint", planePoint));
  QUADREL_EXPECTS(IsColumn3(normal), NotColumn3("normal", normal));
  QUADREL_EXPECTS(IsColumn3(linePoint), NotColumn3("linePoint", linePoint));
  QUADREL_EXPECTS(IsColumn3(direction), NotColumn3("direction", direction));
  const double d = PlaneLineDist(planePoint, normal, linePoint, direction);
  // A parallel line off the plane has no crossing.
  if (d != 0) return d;
  const CMatrix n = normal / Norm2(normal);
  const CMatrix u = direction / Norm2(direction);
  const double s = Dot(n, planePoint - linePoint) / Dot(n, u);
  crossing = linePoint + s * u;
  return d;
}

double PlanePlaneInt(const CMatrix &point1, const CMatrix &normal1, const CMatrix &point2,
                     const CMatrix &normal2, CMatrix &linePoint, CMatrix &lineDirection) {
  QUADREL_EXPECTS(IsColumn3(point1), NotColumn3("point1", point1));
  QUADREL_EXPECTS(IsColumn3(normal1), NotColumn3("normal1", normal1));
  QUADREL_EXPECTS(IsColumn3(point2), NotColumn3("point2", point2));
  QUADREL_EXPECTS(IsColumn3(normal2), NotColumn3("normal2", normal2));
  const double d = PlanePlaneDist(point1, normal1, point2, normal2);
  // Parallel planes apart from each other do not meet.
  if (d != 0) return d;

  CMatrix direction = Cross(normal1, normal2);
  direction = direction / Norm2(direction);

  // Drop the axis along which the line runs most steeply, so that the 2 x 2
  // system left over is as well conditioned as the geometry allows. The tests
  // are exact against the maximum itself; on a tie the lower axis wins.
  const double m = Max(Abs(direction))(0);
  int k, i, j;
  if (AbsRef(direction(0)) == m) {
    k = 0, i = 1, j = 2;
  } else if (AbsRef(direction(1)) == m) {
    k = 1, i = 0, j = 2;
  } else if (AbsRef(direction(2)) == m) {
    k = 2, i = 0, j = 1;
  } else {
    // Only a NaN direction gets here (parallel normals): there is no line to
    // place.
    const double nan = std::numeric_limits<double>::quiet_NaN();
    linePoint = CMatrix(nan, 3, 1);
    lineDirection = direction;
    return d;
  }

  CMatrix M(2, 2);
  M(0, 0) = normal1(i);
  M(0, 1) = normal1(j);
  M(1, 0) = normal2(i);
  M(1, 1) = normal2(j);
  CMatrix b(2, 1);
  b(0) = Dot(normal1, point1);
  b(1) = Dot(normal2, point2);
  const CMatrix x = Inv(M) * b;

  linePoint.Resize(3, 1);
  linePoint(k) = 0.0;
  linePoint(i) = x(0);
  linePoint(j) = x(1);
  lineDirection = direction;
  return d;
}
