#include "fits.h"

#include <cmath>

#include <quadrel/quadrel.h>

#include "errors.h"

namespace quadrel_fit {

namespace {

const char *const kShapeNames[] = {"line", "plane", "circle", "sphere", "ellipse", "paraboloid"};

// "a sphere fit", "an ellipse fit": the fit as messages name it.
std::string FitName(Shape shape) {
  const std::string name = ShapeName(shape);
  return (shape == Shape::kEllipse ? "an " : "a ") + name + " fit";
}

// All points as a 3 x n matrix, one point per column.
CMatrix AllPoints(const PointSet &set) {
  return CMatrix(set.coordinates(), 3, set.count());
}

Vec3 Column(const CMatrix &m, int j) {
  return {m(0, j), m(1, j), m(2, j)};
}

// Residuals by point; the library gives a row for some fits and a column for
// others, and the linear index reads both.
std::vector<double> Values(const CMatrix &m, int n) {
  std::vector<double> values(static_cast<size_t>(n));
  for (int k = 0; k < n; ++k)
    values[static_cast<size_t>(k)] = m(k);
  return values;
}

bool Finite(const Vec3 &v) {
  return std::isfinite(v[0]) && std::isfinite(v[1]) && std::isfinite(v[2]);
}

bool Finite(const std::vector<double> &values) {
  for (double v : values) {
    if (!std::isfinite(v)) return false;
  }
  return true;
}

double Distance(const Vec3 &a, const Vec3 &b) {
  const double dx = a[0] - b[0];
  const double dy = a[1] - b[1];
  const double dz = a[2] - b[2];
  return std::sqrt(dx * dx + dy * dy + dz * dz);
}

void RequireFinite(bool finite, Shape shape, const PointSet &table) {
  if (!finite) {
    throw InputError(FitName(shape) + " of " + table.name() +
                     " gave values that are not numbers; the points do not determine a " +
                     ShapeName(shape));
  }
}

ShapeResult FitEllipse(const PointSet &table, ShapeResult result) {
  const int n = table.count();
  CMatrix foci;
  CMatrix normal;
  CMatrix residuals;
  EllipseFit(AllPoints(table), foci, normal, result.focalSum, residuals);
  result.foci = {Column(foci, 0), Column(foci, 1)};
  result.normal = Column(normal, 0);
  result.residuals = Values(residuals, n);
  RequireFinite(Finite(result.foci[0]) && Finite(result.foci[1]) && Finite(result.normal) &&
                    std::isfinite(result.focalSum) && Finite(result.residuals),
                Shape::kEllipse, table);
  for (int i = 0; i < 3; ++i)
    result.centre[i] = (result.foci[0][i] + result.foci[1][i]) / 2.0;
  result.semiMajor = result.focalSum / 2.0;
  result.focalHalfDistance = Distance(result.foci[0], result.foci[1]) / 2.0;
  // The search has no constraint that keeps the focal sum above the distance
  // of the foci; below it the numbers describe no ellipse.
  if (!(result.semiMajor >= result.focalHalfDistance)) {
    throw InputError("an ellipse fit of " + table.name() +
                     " found no ellipse: its focal sum is shorter than the distance of its "
                     "foci; the points do not lie near an ellipse");
  }
  result.semiMinor = std::sqrt(result.semiMajor * result.semiMajor -
                               result.focalHalfDistance * result.focalHalfDistance);
  // On elongated ellipses the search can run away along a valley in which one
  // focus leaves the points and the focal sum grows without bound; the
  // ellipse then lies far beyond the extent of the points.
  Vec3 centroid{};
  for (int i = 0; i < 3; ++i) {
    for (int k = 0; k < n; ++k)
      centroid[i] += table.at(i, k);
    centroid[i] /= n;
  }
  double extent = 0.0;
  for (int k = 0; k < n; ++k) {
    extent =
        std::fmax(extent, Distance({table.at(0, k), table.at(1, k), table.at(2, k)}, centroid));
  }
  if (result.semiMajor > 100.0 * extent || Distance(result.centre, centroid) > 100.0 * extent) {
    result.warning =
        "the ellipse search ran away from the points (the ellipse lies far beyond their "
        "extent); the ellipse may be too elongated for this fit";
  }
  return result;
}

}  // namespace

const char *ShapeName(Shape shape) {
  return kShapeNames[static_cast<int>(shape)];
}

bool ShapeFromName(const std::string &name, Shape &shape) {
  for (Shape s : kAllShapes) {
    if (name == ShapeName(s)) {
      shape = s;
      return true;
    }
  }
  return false;
}

int MinimumPoints(Shape shape) {
  static const int kMinimum[] = {2, 3, 3, 4, 5, 5};
  return kMinimum[static_cast<int>(shape)];
}

ShapeResult FitShape(Shape shape, const PointSet &table) {
  const std::string what = FitName(shape);
  RequirePoints(table, MinimumPoints(shape), what);
  switch (shape) {
    case Shape::kLine:
      RequireDistinct(table, what);
      break;
    case Shape::kPlane:
    case Shape::kCircle:
    case Shape::kEllipse:
      RequireNotOnOneLine(table, what);
      break;
    case Shape::kSphere:
      RequireNotInOnePlane(table, what);
      break;
    case Shape::kParaboloid:
      RequireParaboloidTermsApart(table);
      break;
  }

  ShapeResult result;
  result.shape = shape;
  result.points = table.count();
  const int n = table.count();
  const CMatrix points = AllPoints(table);
  CMatrix centre;
  CMatrix axis;
  CMatrix residuals;
  bool finite = true;
  switch (shape) {
    case Shape::kLine:
      LineFit(points, centre, axis, residuals);
      result.centroid = Column(centre, 0);
      result.direction = Column(axis, 0);
      finite = Finite(result.centroid) && Finite(result.direction);
      break;
    case Shape::kPlane:
      PlaneFit(points, centre, axis, residuals);
      result.centroid = Column(centre, 0);
      result.normal = Column(axis, 0);
      finite = Finite(result.centroid) && Finite(result.normal);
      break;
    case Shape::kCircle:
      CircleFit(points, centre, axis, result.radius, residuals);
      result.centre = Column(centre, 0);
      result.normal = Column(axis, 0);
      finite = Finite(result.centre) && Finite(result.normal) && std::isfinite(result.radius);
      break;
    case Shape::kSphere:
      SphereFit(points, centre, result.radius, residuals);
      result.centre = Column(centre, 0);
      finite = Finite(result.centre) && std::isfinite(result.radius);
      break;
    case Shape::kEllipse:
      return FitEllipse(table, result);
    case Shape::kParaboloid:
      ParaboloidFit(points, centre, result.a, result.b, result.sign, residuals);
      result.vertex = Column(centre, 0);
      finite = Finite(result.vertex) && std::isfinite(result.a) && std::isfinite(result.b);
      break;
  }
  RequireFinite(finite, shape, table);
  result.residuals = Values(residuals, n);
  if (shape == Shape::kCircle) {
    // A point on the circle's axis has an in-plane distance of 0 that rounding
    // can push below 0, and the library's root of it is no number. Its true
    // distance from the circle is the hypotenuse of its height and the radius.
    for (int k = 0; k < n; ++k) {
      double &r = result.residuals[static_cast<size_t>(k)];
      if (std::isnan(r)) {
        double height = 0.0;
        for (int i = 0; i < 3; ++i)
          height += (table.at(i, k) - result.centre[i]) * result.normal[i];
        r = std::sqrt(height * height + result.radius * result.radius);
      }
    }
  }
  RequireFinite(Finite(result.residuals), shape, table);
  return result;
}

TrihedralResult FitTrihedral(const std::array<const PointSet *, 3> &faces, double edgeAngle) {
  TrihedralResult result;
  result.edgeAngle = edgeAngle;
  std::array<Vec3, 3> normals{};
  for (size_t i = 0; i < 3; ++i) {
    RequirePoints(*faces[i], 3, "a trihedral fit", "points per face");
    RequireNotOnOneLine(*faces[i], "a face of a trihedral");
    result.points[i] = faces[i]->count();
    // The face's normal turned away from the origin, as the fit turns it.
    const Spread spread = PrincipalSpread(*faces[i]);
    normals[i] = spread.axes[2];
    const double side = spread.centroid[0] * normals[i][0] + spread.centroid[1] * normals[i][1] +
                        spread.centroid[2] * normals[i][2];
    if (side < 0.0) normals[i] = {-normals[i][0], -normals[i][1], -normals[i][2]};
  }
  const std::string names = faces[0]->name() + ", " + faces[1]->name() + ", " + faces[2]->name();
  // The fit intersects the three planes and builds its first frame from their
  // normals: planes that do not meet in one point leave it without a start, and
  // a left-handed triple starts it from the mirror image of the trihedral.
  const Vec3 &n1 = normals[0];
  const Vec3 &n2 = normals[1];
  const Vec3 &n3 = normals[2];
  const double triple = n1[0] * (n2[1] * n3[2] - n2[2] * n3[1]) +
                        n1[1] * (n2[2] * n3[0] - n2[0] * n3[2]) +
                        n1[2] * (n2[0] * n3[1] - n2[1] * n3[0]);
  if (std::fabs(triple) <= kFlatRatio) {
    throw InputError("the faces " + names +
                     " do not meet in one point: two of them are parallel or all three share a "
                     "line");
  }
  if (triple < 0.0) {
    throw InputError("the faces " + names +
                     " come in the wrong order: with their normals turned away from the origin "
                     "they must form a right-handed triple; give them as " +
                     faces[0]->name() + " " + faces[2]->name() + " " + faces[1]->name());
  }
  CMatrix pose;
  result.code = IdealTrihedralFit(AllPoints(*faces[0]), AllPoints(*faces[1]), AllPoints(*faces[2]),
                                  pose, edgeAngle);
  if (result.code != 0 && result.code != 4) {
    throw InputError("the trihedral fit of " + names + " stopped: " + TrihedralStatus(result.code) +
                     " (code " + std::to_string(result.code) +
                     "); the faces must be three planes that meet in one point");
  }
  result.apex = Column(pose, 0);
  result.angles = Column(pose, 1);
  result.rms = pose(0, 2);
  result.translationStep = pose(1, 2);
  result.rotationStep = pose(2, 2);
  if (!Finite(result.apex) || !Finite(result.angles) || !std::isfinite(result.rms)) {
    throw InputError("the trihedral fit of " + names +
                     " gave values that are not numbers (degenerate input); the faces must be "
                     "three planes that meet in one point");
  }
  const CMatrix rotation = Rotation(result.angles[0], result.angles[1], result.angles[2]);
  result.axis = Column(rotation, 1);
  return result;
}

std::string TrihedralStatus(int code) {
  switch (code) {
    case 0:
      return "converged";
    case 1:
    case 2:
    case 3:
      return "too few points on face " + std::to_string(code);
    case 4:
      return "step limit reached";
    case 5:
      return "degenerate input";
    default:
      return "unknown status " + std::to_string(code);
  }
}

PeakResult FindPeak(const PointSet &samples) {
  RequirePoints(samples, 6, "a quality peak search", "samples");
  RequireDistinct(samples, "a quality peak search", 2);
  RequireQualityVaries(samples);
  PeakResult result;
  result.samples = samples.count();
  for (int k = 1; k < samples.count(); ++k) {
    if (samples.at(2, k) > samples.at(2, result.bestSample)) result.bestSample = k;
  }
  CMatrix peak;
  result.code = FindQualityPeak(CMatrix(samples.axis(2), samples.count(), 1),
                                CMatrix(samples.coordinates(), 2, samples.count()), peak);
  result.peak = {peak(0), peak(1)};
  if (!std::isfinite(result.peak[0]) || !std::isfinite(result.peak[1])) {
    throw InputError("the quality peak search of " + samples.name() +
                     " gave a position that is not a number (code " + std::to_string(result.code) +
                     "); the samples do not determine a surface");
  }
  return result;
}

std::string PeakMethod(int code) {
  switch (code) {
    case 0:
      return "maximum of the fitted surface";
    case 1:
      return "climb stopped: heading turned more than 70 degrees";
    case 2:
      return "maximum beyond reach: climbed six steps";
    case 3:
      return "surface has no maximum: climbed six steps";
    case 4:
      return "surface does not fit the data: best sample";
    case 5:
      return "climb stopped: left the quality band";
    default:
      return "unknown code " + std::to_string(code);
  }
}

}  // namespace quadrel_fit
