#include "quadrel/frontend/trihedral_fit.h"

#include <cmath>

#include <quadrel/quadrel.h>

#include "quadrel/frontend/checks.h"
#include "quadrel/frontend/format.h"
#include "quadrel/frontend/point_matrix.h"

namespace quadrel_frontend {

using quadrel_io::PointSet;

namespace {

Vec3 Column(const CMatrix &m, int j) {
  return {m(0, j), m(1, j), m(2, j)};
}

TrihedralFit Refused(std::string reason) {
  TrihedralFit fit;
  fit.outcome = Outcome::Refused(Status::kDegenerate, std::move(reason));
  return fit;
}

}  // namespace

Outcome CheckEdgeAngle(double degrees) {
  if (!(degrees > 0.0 && degrees < 120.0)) {
    return Outcome::Refused(
        Status::kDegenerate,
        "the edge angle must lie strictly between 0 and 120 degrees; got " + FormatNumber(degrees));
  }
  return {};
}

double EdgeAngleRadians(double degrees) {
  return degrees * (kPi / 180.0);
}

TrihedralFit FitTrihedral(const std::array<const PointSet *, 3> &faces, double edgeAngle) {
  TrihedralFit result;
  result.edgeAngle = edgeAngle;
  std::array<Vec3, 3> normals{};
  for (size_t i = 0; i < 3; ++i) {
    Outcome outcome = RequirePoints(*faces[i], 3, "a trihedral fit", "points per face");
    if (outcome.ok()) outcome = RequireNotOnOneLine(*faces[i], "a face of a trihedral");
    if (!outcome.ok()) {
      TrihedralFit refused;
      refused.outcome = std::move(outcome);
      return refused;
    }
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
    return Refused("the faces " + names +
                   " do not meet in one point: two of them are parallel or all three share a "
                   "line");
  }
  if (triple < 0.0) {
    return Refused("the faces " + names +
                   " come in the wrong order: with their normals turned away from the origin "
                   "they must form a right-handed triple; give them as " +
                   faces[0]->name() + " " + faces[2]->name() + " " + faces[1]->name());
  }
  CMatrix pose;
  result.code = IdealTrihedralFit(PointMatrix(*faces[0]), PointMatrix(*faces[1]),
                                  PointMatrix(*faces[2]), pose, edgeAngle);
  if (result.code != 0 && result.code != 4) {
    return Refused("the trihedral fit of " + names + " stopped: " + TrihedralStatus(result.code) +
                   " (code " + std::to_string(result.code) +
                   "); the faces must be three planes that meet in one point");
  }
  result.apex = Column(pose, 0);
  result.angles = Column(pose, 1);
  result.rms = pose(0, 2);
  result.translationStep = pose(1, 2);
  result.rotationStep = pose(2, 2);
  if (!Finite(result.apex) || !Finite(result.angles) || !std::isfinite(result.rms)) {
    return Refused("the trihedral fit of " + names +
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

}  // namespace quadrel_frontend
