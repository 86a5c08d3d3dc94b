#include "quadrel/estimators/internal/trihedral_step.h"

#include <cmath>

#include <gtest/gtest.h>

#include "quadrel/functions/constructors.h"
#include "quadrel/functions/rearrange.h"
#include "quadrel/functions/reductions.h"
#include "quadrel/geometry/vectors.h"
#include "quadrel/matrix/operators.h"
#include "quadrel/testing/test_util.h"

namespace {

const double kPi = 3.141592653589793;

// Points on the planes x = 1, y = 2, z = 3 (sets of different size). At the
// pose below the cube-corner model normals are the coordinate axes.
const CMatrix kOnX = MakeMatrix(3, 4, {1, 1, 1, 1, 3, 4, 3, 5, 4, 4, 6, 7});
const CMatrix kOnY = MakeMatrix(3, 5, {2, 3, 2, 5, 9, 2, 2, 2, 2, 2, 4, 4, 6, 7, 5});
const CMatrix kOnZ = MakeMatrix(3, 3, {2, 3, 2, 3, 4, 6, 3, 3, 3});
const CMatrix kTruePose =
    MakeMatrix(3, 3, {1, kPi / 4, 0, 2, std::atan(std::sqrt(2.0)), 0, 3, kPi / 2, 0});

TEST(IdealTrihedralStep, KeepsExactPoseWhateverColumnTwoHeld) {
  CMatrix clean = kTruePose, dirty = kTruePose;
  dirty.SetCol(MakeCol({-3.0, NAN, 1e300}), 2);
  IdealTrihedralStep(kOnX, kOnY, kOnZ, clean, kPi / 2);
  IdealTrihedralStep(kOnX, kOnY, kOnZ, dirty, kPi / 2);
  EXPECT_TRUE(SameBits(clean, dirty));
  EXPECT_TRUE(Near(clean, kTruePose, 1e-13));  // rms and both steps 0 as well
}

TEST(IdealTrihedralStep, ConvergesQuadraticallyFromNearbyPose) {
  // An error of either sign in each of the six numbers: a wrong sign in the
  // update of either block makes the error grow.
  const CMatrix offsets = MakeMatrix(3, 2, {2e-3, -2e-3, -1.5e-3, 1.2e-3, 1e-3, 1.8e-3});
  CMatrix result = kTruePose + ColCat(offsets, Zeros(3, 1));
  auto error = [](const CMatrix &pose) {
    return Max(Max(Abs(ExcludeCol(pose, 2) - ExcludeCol(kTruePose, 2))))(0);
  };
  double previous = error(result);
  for (int step = 0; step < 3; ++step) {
    const CMatrix before = result;
    IdealTrihedralStep(kOnX, kOnY, kOnZ, result, kPi / 2);
    EXPECT_LT(error(result), 50.0 * previous * previous + 1e-14) << "step " << step;
    // Column 2 holds the rms before the step and the lengths of the changes.
    EXPECT_GT(result(0, 2), step == 0 ? 1e-4 : 1e-12) << "step " << step;
    for (int col = 0; col < 2; ++col)
      EXPECT_NEAR(result(1 + col, 2), Norm2(Col(result, col) - Col(before, col)), 1e-12);
    previous = error(result);
  }
  EXPECT_LT(previous, 1e-13);
}

}  // namespace
