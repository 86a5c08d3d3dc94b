// Ideal trihedral fit: a seed from three plane fits, then refinement steps.
#include "quadrel/estimators/trihedral.h"

#include <cmath>

#include "quadrel/estimators/internal/trihedral_step.h"
#include "quadrel/fitting/line_plane.h"
#include "quadrel/functions/constructors.h"
#include "quadrel/functions/rearrange.h"
#include "quadrel/geometry/vectors.h"
#include "quadrel/linalg/least_squares.h"
#include "quadrel/matrix/internal/contract.h"
#include "quadrel/matrix/operators.h"

namespace {

constexpr double kPi = 3.141592653589793;
// Edges that meet at 2*pi/3 or more lie in one plane: no trihedral is left.
constexpr double kMaxEdgeAngle = 2.0 * kPi / 3.0;
// Both step lengths must fall to this to end the iteration (point units for
// the apex, radians for the angles).
constexpr double kStepLimit = 1e-7;
// Step lengths written before the first step, so that the first test passes.
constexpr double kStartStep = 10000.0;
// The counter is tested after each step, so at most kMaxSteps + 1 steps run.
constexpr int kMaxSteps = 20;

constexpr int kConverged = 0;
constexpr int kNoConvergence = 4;
constexpr int kDegenerate = 5;

}  // namespace

int IdealTrihedralFit(const CMatrix &set1, const CMatrix &set2, const CMatrix &set3,
                      CMatrix &result, double edgeAngle) {
  QUADREL_EXPECTS(set1.GetRows() == 3, "set1 is " + QuadrelDims(set1) + "; a point set has 3 rows");
  QUADREL_EXPECTS(set2.GetRows() == 3, "set2 is " + QuadrelDims(set2) + "; a point set has 3 rows");
  QUADREL_EXPECTS(set3.GetRows() == 3, "set3 is " + QuadrelDims(set3) + "; a point set has 3 rows");
  QUADREL_EXPECTS(&result != &set1 && &result != &set2 && &result != &set3,
                  "result is one of the point sets");

  int status = kConverged;
  result = Zeros(3, 3);

  // Short sets are reported before anything else, the first one winning, so
  // that codes 1 to 3 mean the same whatever else is wrong with the input.
  const CMatrix *const sets[3] = {&set1, &set2, &set3};
  for (int i = 0; i < 3; ++i)
    if (sets[i]->GetCols() < 3) return i + 1;

  // Checked before any work: outside this range the model normals are not
  // numbers, and a value that is not finite in a set would make the plane fits
  // so. Either would end the iteration at once with a pose that means nothing.
  if (!(edgeAngle > 0.0 && edgeAngle < kMaxEdgeAngle)) return kDegenerate;
  for (int i = 0; i < 3; ++i)
    if (!QuadrelAllFinite(*sets[i])) return kDegenerate;

  // One plane per face, its normal turned away from the origin as seen from
  // the plane's centroid (at exactly 0 it keeps the sign the fit gave).
  CMatrix centroid[3];
  CMatrix normal[3];
  for (int i = 0; i < 3; ++i) {
    CMatrix residuals;
    PlaneFit(*sets[i], centroid[i], normal[i], residuals);
    if (Dot(centroid[i], normal[i]) < 0) normal[i] = -normal[i];
  }

  // Seed frame: Y along the sum of the normals (the symmetry axis), X normal
  // to n1 and Y, so that n1 lies in the YZ plane on the -Z side, as the first
  // model normal does. Parallel normals, or normals that cancel, give a length
  // of 0 and no frame.
  const CMatrix axisSum = normal[0] + normal[1] + normal[2];
  const double axisLength = Norm2(axisSum);
  if (!(axisLength > 0.0)) return kDegenerate;
  const CMatrix Y = axisSum / axisLength;
  const CMatrix side = Cross(normal[0], Y);
  const double sideLength = Norm2(side);
  if (!(sideLength > 0.0)) return kDegenerate;
  const CMatrix X = side / sideLength;
  const CMatrix Z = Cross(X, Y);

  // Seed apex: the point common to the three planes n_i . p = c_i . n_i.
  const CMatrix A = Transpose(ColCat(ColCat(normal[0], normal[1]), normal[2]));
  CMatrix d(3, 1);
  for (int i = 0; i < 3; ++i)
    d(i) = Dot(centroid[i], normal[i]);
  CMatrix apex;
  Lsq(A, d, apex);
  result.SetCol(apex, 0);

  // The matrix E with columns X, Y, Z is the seed rotation; its angles are
  // read off as Rotation(alpha, beta, gamma) builds them.
  result(0, 1) = std::atan2(Z(1), Z(2));
  result(1, 1) = std::atan2(-Z(0), std::sqrt(X(0) * X(0) + Y(0) * Y(0)));
  result(2, 1) = std::atan2(Y(0), X(0));

  result(1, 2) = kStartStep;
  result(2, 2) = kStartStep;

  int steps = 0;
  while (result(1, 2) > kStepLimit || result(2, 2) > kStepLimit) {
    IdealTrihedralStep(set1, set2, set3, result, edgeAngle);
    ++steps;
    if (steps > kMaxSteps) {
      status = kNoConvergence;
      break;
    }
  }
  return status;
}
