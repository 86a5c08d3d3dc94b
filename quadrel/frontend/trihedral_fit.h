// The ideal trihedral fit as the front ends run it: checks of the three faces
// and of the edge angle, the call, and its status in words.
#ifndef QUADREL_FRONTEND_TRIHEDRAL_FIT_H
#define QUADREL_FRONTEND_TRIHEDRAL_FIT_H

#include <array>
#include <string>

#include "quadrel/frontend/outcome.h"
#include "quadrel/frontend/vec3.h"
#include "quadrel/io/point_set.h"

namespace quadrel_frontend {

// Apex, the angles alpha, beta, gamma of the rotation (radians), the symmetry
// axis (the rotated +Y), the rms distance of the points and the last steps of
// the iteration; code is the library's status (see TrihedralStatus). Values
// are set only when outcome is ok.
struct TrihedralFit {
  Outcome outcome;
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

// Refuses an angle between two edges at the apex that does not lie strictly
// between 0 and 120 degrees.
Outcome CheckEdgeAngle(double degrees);
// The edge angle in radians, as the fit takes it.
double EdgeAngleRadians(double degrees);

// Fits an ideal trihedral to the points of its three faces, in the order that
// makes their normals, turned away from the origin, a right-handed triple;
// edgeAngle in radians. Never throws for bad data: faces with too few points,
// on one line, that do not meet in one point or come in the wrong order, and
// a fit that stops or gives no numbers come back as a refusal.
TrihedralFit FitTrihedral(const std::array<const quadrel_io::PointSet *, 3> &faces,
                          double edgeAngle);

// The status of the trihedral fit in words: "converged", "step limit reached",
// "degenerate input", ...
std::string TrihedralStatus(int code);

}  // namespace quadrel_frontend

#endif  // QUADREL_FRONTEND_TRIHEDRAL_FIT_H
