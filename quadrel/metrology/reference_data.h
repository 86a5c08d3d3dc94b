// Reference data for testing Gaussian fitting software.
//
// MakeReferencePoints builds point sets whose least-squares orthogonal-distance
// solution is known exactly by construction: points are sampled on a nominal
// feature and displaced along the surface normals by deviations that are made
// orthogonal to every column of the Jacobian of the distances at the nominal
// parameters. The gradient of the sum of squares then vanishes there, so the
// nominal feature is the Gaussian solution (for deviations small against the
// feature's curvature radius), and the deviations are its residuals.
#ifndef QUADREL_METROLOGY_REFERENCE_DATA_H
#define QUADREL_METROLOGY_REFERENCE_DATA_H

#include <cstdint>

#include "quadrel/matrix/matrix.h"
#include "quadrel/metrology/export.h"
#include "quadrel/metrology/status.h"

enum class FeatureKind : int { kLine = 0, kPlane, kCircle, kSphere, kCylinder, kCone, kTorus };

// A nominal feature. position (3 x 1) is a point of a line or plane, the
// centre of a circle, sphere or torus, the point of a cylinder's or cone's axis about
// which the samples are centred. direction (3 x 1, unit) is the line's
// direction, the normal of a plane or circle, the axis of a cylinder or cone
// (for a cone towards its wider end), the axis of a torus and the centre of
// the sampled cap of a sphere. radius belongs to circle, sphere and cylinder,
// to a cone at position and to a torus from its axis to the middle of its
// tube; halfAngle (0 < halfAngle < pi / 2) only to a cone, minorRadius (the
// tube's, below radius) only to a torus.
struct NominalFeature {
  FeatureKind kind = FeatureKind::kSphere;
  CMatrix position = CMatrix(0.0, 3, 1);
  CMatrix direction = CMatrix(0.0, 3, 1);
  double radius = 1.0;
  double halfAngle = 0.0;
  double minorRadius = 0.0;
};

// How to sample it. arc is the angle (radians) covered around the axis of a
// circle, cylinder, cone or torus (whose tube is sampled all round), centred on the frame's first
// axis; cap the polar half-angle of the part of a sphere sampled around direction (pi: all of it);
// length the extent along a line or axis, or the side of the square patch of a
// plane. deviation is the largest displacement from the feature, in length
// units, and must stay well below the radius. seed makes the data repeatable.
struct ReferenceSampling {
  int count = 100;
  double arc = 6.283185307179586;
  double cap = 3.141592653589793;
  double length = 1.0;
  double deviation = 1e-3;
  std::uint64_t seed = 1;
};

// Makes count points (3 x count) of the nominal feature. deviations holds the
// displacements: count x 1 along the normal for plane, sphere, cylinder and
// cone; count x 2 for a line (along u and v of the line's frame) and a circle
// (along its normal, then radially outwards). Returns kBadShape when the
// nominal or the sampling is out of range (non-unit direction, radius <= 0,
// a cone that reaches its apex, too few points to leave the deviations a
// space orthogonal to the Jacobian), else kConverged.
QUADREL_METROLOGY_API MetrologyStatus MakeReferencePoints(const NominalFeature &nominal,
                                                          const ReferenceSampling &sampling,
                                                          CMatrix &points, CMatrix &deviations);

#endif  // QUADREL_METROLOGY_REFERENCE_DATA_H
