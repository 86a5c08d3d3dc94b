// Reference data sets with a known Gaussian solution, at sizes from 1 mm to
// 1 m and up to 1 m from the origin, full and partial: every fit must give the
// nominal position, orientation and size within 1e-9 of the feature's size.
#include <algorithm>
#include <cmath>
#include <initializer_list>
#include <string>

#include <gtest/gtest.h>

#include "quadrel/metrology/internal/vec3.h"
#include "quadrel/metrology/metrology.h"

namespace {

constexpr double kPi = 3.141592653589793;

Vec3 V(const CMatrix &m) {
  return {m(0, 0), m(1, 0), m(2, 0)};
}

// A fitted feature in one form for every kind: position, unit axis (or
// normal), radius and half-angle where they exist.
struct Fitted {
  MetrologyStatus status;
  Vec3 position, axis;
  double radius = 0.0, halfAngle = 0.0, minorRadius = 0.0;
  CMatrix residuals;
};

Fitted Fit(FeatureKind kind, const CMatrix &points) {
  using K = FeatureKind;
  Fitted f{};
  CMatrix p, d(0.0, 3, 1);  // a sphere has no axis
  GaussianFitInfo info;
  if (kind == K::kLine) f.status = GaussianLineFit(points, p, d, info);
  if (kind == K::kPlane) f.status = GaussianPlaneFit(points, p, d, info);
  if (kind == K::kCircle) f.status = GaussianCircleFit(points, p, d, f.radius, info);
  if (kind == K::kSphere) f.status = GaussianSphereFit(points, p, f.radius, info);
  if (kind == K::kCylinder) f.status = GaussianCylinderFit(points, p, d, f.radius, info);
  if (kind == K::kCone) f.status = GaussianConeFit(points, p, d, f.halfAngle, f.radius, info);
  if (kind == K::kTorus) f.status = GaussianTorusFit(points, p, d, f.radius, f.minorRadius, info);
  f.position = V(p);
  f.axis = V(d);
  f.residuals = info.residuals;
  return f;
}

// The largest of the position, orientation and size errors over the size.
double RelativeError(const NominalFeature &nominal, const Fitted &f, double size) {
  const Vec3 w = V(nominal.direction), offset = f.position - V(nominal.position);
  double position = Norm(offset), angle = 0.0;
  if (nominal.kind != FeatureKind::kSphere) {
    angle = Norm(Cross(f.axis, w));
    // Points of a line, plane or axis may slide within the feature.
    if (nominal.kind == FeatureKind::kPlane) position = std::fabs(Dot(offset, w));
    if (nominal.kind == FeatureKind::kLine || nominal.kind == FeatureKind::kCylinder ||
        nominal.kind == FeatureKind::kCone)
      position = Norm(Cross(offset, w));
  }
  double sizeError = 0.0;
  if (nominal.kind != FeatureKind::kLine && nominal.kind != FeatureKind::kPlane) {
    // A cone's radius is compared at the height of the fitted axis point.
    const double expected = nominal.radius + Dot(offset, w) * std::tan(nominal.halfAngle);
    sizeError = std::fabs(f.radius - expected);
  }
  const double halfAngleError = std::fabs(f.halfAngle - nominal.halfAngle) * size;
  const double minorError = std::fabs(f.minorRadius - nominal.minorRadius);
  return std::max({position, angle * size, sizeError, halfAngleError, minorError}) / size;
}

const char *Name(FeatureKind kind) {
  static const char *names[] = {"line", "plane", "circle", "sphere", "cylinder", "cone", "torus"};
  return names[static_cast<int>(kind)];
}

// How a feature is covered: the arc, the sphere cap and the length as a
// multiple of the size.
struct Coverage {
  double arc, cap, length;
};
const Coverage kFull = {2.0 * kPi, kPi, 1.0};

// Runs one feature kind over sizes, offsets and each coverage.
void CheckKind(FeatureKind kind, std::initializer_list<Coverage> coverages,
               double halfAngle = 0.0) {
  std::uint64_t seed = 11;
  for (double size : {1.0, 10.0, 100.0, 1000.0})
    for (double offset : {0.0, 1000.0}) {
      int variant = 0;
      for (const Coverage &coverage : coverages) {
        ++seed;
        ++variant;
        const double theta = 0.3 + 0.7 * static_cast<double>(seed % 5);
        const double phi = 0.2 + 1.1 * static_cast<double>(seed % 3);
        const double dir[3] = {std::sin(theta) * std::cos(phi), std::sin(theta) * std::sin(phi),
                               std::cos(theta)};
        const double pos[3] = {offset * 0.6, -offset * 0.48, offset * 0.64};
        const NominalFeature nominal{
            kind, CMatrix(pos, 3, 1), CMatrix(dir, 3, 1),
            size, halfAngle,          kind == FeatureKind::kTorus ? 0.3 * size : 0.0};
        const ReferenceSampling sampling{
            60, coverage.arc, coverage.cap, coverage.length * size, 1e-3 * size, seed};
        CMatrix points, deviations;
        ASSERT_EQ(MakeReferencePoints(nominal, sampling, points, deviations),
                  MetrologyStatus::kConverged);
        const Fitted f = Fit(kind, points);
        const std::string tag = std::string(Name(kind)) + " size " + std::to_string(size) +
                                " offset " + std::to_string(offset) + " coverage " +
                                std::to_string(variant);
        ASSERT_EQ(f.status, MetrologyStatus::kConverged) << tag;
        EXPECT_LE(RelativeError(nominal, f, size), 1e-9) << tag;
        // The residuals are the constructed deviations.
        double residualError = 0.0;
        for (int i = 0; i < points.GetCols(); ++i) {
          double expected = deviations(i, 0);
          if (deviations.GetCols() == 2) {
            expected = std::hypot(deviations(i, 0), deviations(i, 1));
            if (kind == FeatureKind::kCircle) expected = std::copysign(expected, deviations(i, 1));
          }
          // A plane's normal may come out opposite to the nominal one.
          if (kind == FeatureKind::kPlane && Dot(f.axis, V(nominal.direction)) < 0.0)
            expected = -expected;
          residualError = std::max(residualError, std::fabs(f.residuals(i, 0) - expected));
        }
        EXPECT_LE(residualError, 1e-9 * size) << tag;
      }
    }
}

}  // namespace

// A circle on a 30 degree arc; a sphere cap of polar half-angle acos(3/4),
// 1/8 of the sphere; cylinders long, short and of sqrt(6) radii, which spreads
// the points alike along and across the axis so that the principal directions
// of the scatter say nothing; cones and tori on half and quarter arcs.
TEST(GaussianReference, EveryKindReproducesTheNominalOnFullAndPartialCoverage) {
  CheckKind(FeatureKind::kLine, {kFull});
  CheckKind(FeatureKind::kPlane, {kFull});
  CheckKind(FeatureKind::kCircle, {kFull, {kPi / 6.0, kPi, 1.0}});
  CheckKind(FeatureKind::kSphere, {kFull, {2.0 * kPi, std::acos(0.75), 1.0}});
  CheckKind(FeatureKind::kCylinder, {{2.0 * kPi, kPi, 3.0},
                                     {2.0 * kPi, kPi, 0.2},
                                     {2.0 * kPi, kPi, std::sqrt(6.0)},
                                     {kPi / 2.0, kPi, 2.0}});
  CheckKind(FeatureKind::kCone, {kFull, {kPi, kPi, 1.0}, {2.0 * kPi, kPi, 2.4}}, 0.3);
  CheckKind(FeatureKind::kCone, {kFull}, 1.0);
  CheckKind(FeatureKind::kTorus, {kFull, {kPi, kPi, 1.0}});
}
