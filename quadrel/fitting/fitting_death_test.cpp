#include <gtest/gtest.h>

#include "quadrel/fitting/circle_sphere.h"
#include "quadrel/fitting/ellipse.h"
#include "quadrel/fitting/line_plane.h"
#include "quadrel/fitting/paraboloid.h"
#include "quadrel/fitting/simplex.h"

namespace {

double Zero(const CMatrix &, const CMatrix &) {
  return 0.0;
}

TEST(FittingDeath, WrongPointSetsAliasedOutputsOrNoIteration) {
  CMatrix points(1.0, 3, 6), m1, m2, x(0.0, 2, 1);
  double d1 = 0.0, d2 = 0.0, d3 = 0.0;
  int maxIter = 0;
  EXPECT_DEATH(LineFit(CMatrix(1.0, 2, 4), m1, m2, m2),
               "quadrel: LineFit: points is 2 x 4; a point set has 3 rows");
  EXPECT_DEATH(CircleFit(CMatrix(1.0, 3, 2), m1, m2, d1, m2),
               "quadrel: CircleFit: a circle needs at least 3 points, got 2");
  EXPECT_DEATH(EllipseFit(CMatrix(1.0, 3, 4), m1, m2, d1, m2),
               "quadrel: EllipseFit: an ellipse needs at least 5 points, got 4");
  EXPECT_DEATH(ParaboloidFit(points, m1, d1, d2, d3, points),
               "quadrel: ParaboloidFit: an output is the points object");
  EXPECT_DEATH(SphereFit(points, points, d1, m2),
               "quadrel: SphereFit: an output is the points object");
  EXPECT_DEATH(SimplexMin(Zero, x, x, d1, d2, maxIter),
               "quadrel: SimplexMin: maxIter is 0; at least one iteration is needed");
}

}  // namespace
