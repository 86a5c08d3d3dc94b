// Pose of an ideal trihedral from points measured on its three faces.
//
// An ideal trihedral is three planes through one apex whose three edges make
// one known angle with each other (pi/2 for the corner of a cube). Its shape is
// fixed by that angle, so only its pose is estimated: the apex and the rotation
// R = Rotation(alpha, beta, gamma) that maps the trihedral frame (apex at the
// origin, symmetry axis along +Y) to the frame of the points. The fit seeds
// the pose from three independent plane fits and refines all six numbers
// together by least squares on the point-to-plane distances.
#ifndef QUADREL_ESTIMATORS_TRIHEDRAL_H
#define QUADREL_ESTIMATORS_TRIHEDRAL_H

#include "quadrel/export.h"
#include "quadrel/matrix/matrix.h"

// Fits the pose to set1, set2, set3 (3 x n_i each, one point per column) into
// result (3 x 3): column 0 the apex, column 1 (alpha, beta, gamma), column 2
// (rms, apex step, angle step) of the last step. Returns 0 when both steps fell
// to 1e-7, 4 after 21 steps without that, i if set i has fewer than 3 points
// (the first short set wins), and 5 on degenerate input: edgeAngle not strictly
// inside (0, 2*pi/3), a value in a set that is not finite, or seed normals that
// are parallel or cancel. Point counts are judged before anything that gives 5;
// with codes 1, 2, 3 and 5, result is 3 x 3 zeros. The caller keeps: 3 rows per
// set; result none of the sets; the normals, turned away from the origin, in
// right-handed order (cyclic exchanges are fine); the origin behind every face.
QUADREL_API int IdealTrihedralFit(const CMatrix &set1, const CMatrix &set2, const CMatrix &set3,
                                  CMatrix &result, double edgeAngle);

#endif  // QUADREL_ESTIMATORS_TRIHEDRAL_H
