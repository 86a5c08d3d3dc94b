// One refinement step of the ideal trihedral fit, and its rotation helper.
//
// An ideal trihedral is three planes through one apex whose edges meet at one
// known angle. Its pose is six numbers: the apex t and three angles giving
// R = Rotation(alpha, beta, gamma), which maps the trihedral frame (apex at the
// origin, symmetry axis along +Y) to the frame of the points. The step improves
// a pose by one Gauss-Newton iteration in the angles, coupled exactly to the
// translation, on the sum of squared point-to-plane distances.
#ifndef QUADREL_ESTIMATORS_TRIHEDRAL_STEP_H
#define QUADREL_ESTIMATORS_TRIHEDRAL_STEP_H

#include "quadrel/matrix/matrix.h"

// Performs one step on the pose held in result (3 x 3): column 0 the apex,
// column 1 (alpha, beta, gamma). Both are replaced by the corrected pose;
// column 2 becomes (rms distance of all points at the pose on entry, length of
// the apex change, length of the angle change). Column 2 on entry is ignored.
// Each set is 3 x m (m >= 1) and holds points of one face, in the face order
// of the model normals; edgeAngle lies strictly between 0 and 2*pi/3.
void IdealTrihedralStep(const CMatrix &set1, const CMatrix &set2, const CMatrix &set3,
                        CMatrix &result, double edgeAngle);

// R * v for a 3 x 3 matrix R and a 3 x 1 column v, as a new 3 x 1 column.
CMatrix ApplyRotation(const CMatrix &R, const CMatrix &v);

#endif  // QUADREL_ESTIMATORS_TRIHEDRAL_STEP_H
