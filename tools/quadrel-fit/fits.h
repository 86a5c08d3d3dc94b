// The fits and estimators of the tool: each checks its input, calls the
// library and hands back plain numbers. Degenerate data ends in an InputError,
// so a result that comes back is finite throughout.
#ifndef QUADREL_FIT_FITS_H
#define QUADREL_FIT_FITS_H

#include <array>
#include <string>
#include <vector>

#include "checks.h"
#include "point_input.h"

namespace quadrel_fit {

// The six shapes of the SHAPE command.
enum class Shape { kLine, kPlane, kCircle, kSphere, kEllipse, kParaboloid };
constexpr Shape kAllShapes[] = {Shape::kLine,   Shape::kPlane,   Shape::kCircle,
                                Shape::kSphere, Shape::kEllipse, Shape::kParaboloid};

// "line", "plane", ...; and back (false if name is none of them).
const char *ShapeName(Shape shape);
bool ShapeFromName(const std::string &name, Shape &shape);
// The fewest points a fit of the shape takes: 2 for a line, 3 for a plane and a
// circle, 4 for a sphere, 5 for an ellipse and a paraboloid.
int MinimumPoints(Shape shape);

// The result of any of the six shape fits. Which members are set depends on
// the shape; residuals has one value per point in every case, in file order.
struct ShapeResult {
  Shape shape = Shape::kLine;
  int points = 0;
  Vec3 centroid{};    // line, plane
  Vec3 direction{};   // line
  Vec3 normal{};      // plane, circle, ellipse
  Vec3 centre{};      // circle, sphere, ellipse (the mean of the foci)
  double radius = 0;  // circle, sphere
  // ellipse: the two foci, the whole major axis (focal sum), the semi-axes and
  // half the distance of the foci.
  std::array<Vec3, 2> foci{};
  double focalSum = 0;
  double semiMajor = 0;
  double semiMinor = 0;
  double focalHalfDistance = 0;
  // paraboloid: z = z0 + sign ((x - x0) / a)^2 +- ((y - y0) / b)^2
  Vec3 vertex{};
  double a = 0;
  double b = 0;
  double sign = 0;
  std::vector<double> residuals;
  // Set when the numbers are finite but not to be trusted.
  std::string warning;
};

ShapeResult FitShape(Shape shape, const PointSet &table);

// The ideal trihedral fit: apex, the angles alpha, beta, gamma of its rotation
// (radians), and the symmetry axis, the rotated +Y.
struct TrihedralResult {
  std::array<int, 3> points{};
  double edgeAngle = 0;  // radians
  Vec3 apex{};
  Vec3 angles{};
  Vec3 axis{};
  double rms = 0;
  double translationStep = 0;
  double rotationStep = 0;
  int code = 0;
};
// faces are the three sets in the order the fit takes them.
TrihedralResult FitTrihedral(const std::array<const PointSet *, 3> &faces, double edgeAngle);
// The status of the trihedral fit in words: "converged", "step limit reached",
// "degenerate input", ...
std::string TrihedralStatus(int code);

// The quality peak of samples (x, y, quality).
struct PeakResult {
  int samples = 0;
  std::array<double, 2> peak{};
  int code = 0;
  int bestSample = 0;  // index of the first sample of highest quality
};
PeakResult FindPeak(const PointSet &samples);
// How the peak was found, in words, for every code FindQualityPeak gives.
std::string PeakMethod(int code);

}  // namespace quadrel_fit

#endif  // QUADREL_FIT_FITS_H
