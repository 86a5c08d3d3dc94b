// NaN and infinite elements in vectors, spherical coordinates, rotations,
// transforms, distances and intersections.
#include <cmath>
#include <limits>

#include <gtest/gtest.h>

#include "quadrel/functions/constructors.h"
#include "quadrel/functions/rearrange.h"
#include "quadrel/functions/reductions.h"
#include "quadrel/geometry/distances.h"
#include "quadrel/geometry/rotations.h"
#include "quadrel/geometry/vectors.h"
#include "quadrel/testing/test_util.h"

namespace {

const double kNaN = std::numeric_limits<double>::quiet_NaN();
const double kInf = std::numeric_limits<double>::infinity();
const double kPi = 3.141592653589793;

const CMatrix kNaN3(kNaN, 3, 1);
const CMatrix kOrigin = MakeCol({0, 0, 0});

}  // namespace

TEST(GeometryNonFinite, VectorFunctionsSpreadNaNAndAngleFoldsItToPi) {
  const CMatrix withNaN = MakeCol({1.0, kNaN, 0.0}), withInf = MakeCol({kInf, 0.0, 0.0}),
                finite = MakeCol({1.0, 2.0, 3.0});
  EXPECT_TRUE(std::isnan(Norm2(withNaN)) && std::isnan(Dot(withNaN, finite)));
  EXPECT_TRUE(Norm2(withInf) == kInf && Dot(withInf, finite) == kInf);
  // The cosine is NaN (NaN, or inf / inf), which the clamp sends to -1.
  EXPECT_TRUE(Angle(withNaN, finite) == kPi && Angle(withInf, finite) == kPi);
  // Each element of the cross product reads two elements of each argument.
  EXPECT_TRUE(SameValues(Cross(withNaN, finite), MakeCol({kNaN, -3.0, kNaN})));
  EXPECT_TRUE(SameValues(Cross(withInf, finite), MakeCol({0.0, -kInf, kInf})));
}

TEST(GeometryNonFinite, SphericalConversionsKeepTheirShapes) {
  double x = 0.0, y = 0.0, z = 0.0;
  // sin and cos of an infinite angle are NaN; y = 1 * sin(0) stays 0.
  Sph2Cart(x, y, z, 1.0, kInf, 0.0);
  EXPECT_TRUE(std::isnan(x) && std::isnan(z) && y == 0.0);

  double r = 0.0, a = 0.0, e = 0.0;
  Cart2Sph(r, a, e, kNaN, 0.0, 0.0);
  EXPECT_TRUE(std::isnan(r) && std::isnan(a) && std::isnan(e));
  // atan2 sends an infinite coordinate to its axis.
  Cart2Sph(r, a, e, kInf, 0.0, 0.0);
  EXPECT_TRUE(r == kInf && a == -kPi / 2 && e == 0.0);

  // Matrix forms: a bad triple or point spoils only its own column.
  const CMatrix p = Sph2Cart(MakeMatrix(3, 2, {1, kNaN, 0, 0, 0, 0}));
  EXPECT_TRUE(SameValues(p, MakeMatrix(3, 2, {-0.0, kNaN, 0, kNaN, 1, kNaN})));
  const CMatrix s = Cart2Sph(MakeMatrix(3, 2, {1, kNaN, 0, kInf, 0, 0}));
  EXPECT_TRUE(SameValues(s, MakeMatrix(3, 2, {1, kNaN, -kPi / 2, kNaN, 0, kNaN})));
}

TEST(GeometryNonFinite, RotationsAndTransformsSpreadNaN) {
  // A NaN angle reaches the elements that use its sine or cosine.
  const CMatrix R = Rotation(kNaN, 0.0);
  EXPECT_TRUE(std::isnan(R(0, 0)) && std::isnan(R(2, 2)) && R(1, 1) == -1.0);
  EXPECT_TRUE(SameValues(Rotation(0.0, kInf, 0.0), CMatrix(kNaN, 3, 3)));
  const CMatrix Ra = RotationAlpha(kNaN, 0.0, 0.0);
  EXPECT_TRUE(SameBits(Row(Ra, 0), MakeRow({0.0, 0.0, 0.0})) && std::isnan(Ra(1, 1) + Ra(2, 2)));

  const CMatrix turn = Rotation(0.1, 0.2, 0.3);
  EXPECT_TRUE(SameValues(Transform(turn, MakeCol({1.0, kNaN, 0.0}), kOrigin), kNaN3));
  // n x 3 points: a bad point spoils its own row only.
  const CMatrix moved = UnTransform(turn, MakeMatrix(2, 3, {1, 2, 3, kNaN, 5, 6}),
                                    MakeMatrix(2, 3, {0, 0, 0, 0, 0, 0}));
  EXPECT_TRUE(std::isfinite(Sum(Row(moved, 0))(0)) &&
              SameValues(Row(moved, 1), CMatrix(kNaN, 1, 3)));
  // 0 * inf in the product: the infinity stays where it was, NaN elsewhere.
  EXPECT_TRUE(
      SameValues(Transform(Eye(3), MakeCol({kInf, 0, 0}), kOrigin), MakeCol({kInf, kNaN, kNaN})));
}

TEST(GeometryNonFinite, DistancesAndIntersectionsReturnNaNOrZero) {
  const CMatrix origin = kOrigin, up = MakeCol({0, 0, 1}), bad = MakeCol({kNaN, 0, 0});
  // A bad point gives a NaN distance.
  EXPECT_TRUE(std::isnan(LinePointDist(origin, up, bad)) &&
              std::isnan(PlanePointDist(origin, up, bad)));
  EXPECT_EQ(PlanePointDist(origin, up, MakeCol({0, 0, -kInf})), -kInf);
  // A NaN direction or normal makes Angle pi, as a zero one does: the line
  // distance folds that to an angle of 0 and gives 0.0, the parallel tests fail
  // and give 0.0, and the plane distance divides by a NaN norm.
  EXPECT_TRUE(std::isnan(PlanePointDist(origin, bad, up)));
  for (double distance : {LinePointDist(origin, bad, up), PlaneLineDist(origin, bad, up, up),
                          PlanePlaneDist(origin, bad, up, up)})
    EXPECT_EQ(distance, 0.0);

  CMatrix foot;
  EXPECT_TRUE(std::isnan(LinePointInt(origin, up, bad, foot)) && std::isnan(foot(0)));
  EXPECT_TRUE(std::isnan(PlanePointInt(origin, up, bad, foot)) && SameValues(foot, kNaN3));

  // Where the Dist twin gives 0.0 the outputs are written, with NaN.
  CMatrix crossing = MakeCol({7, 7, 7}), linePoint = crossing, direction = crossing;
  EXPECT_EQ(PlaneLineInt(origin, bad, up, MakeCol({0, 1, 0}), crossing), 0.0);
  EXPECT_EQ(PlanePlaneInt(origin, bad, origin, up, linePoint, direction), 0.0);
  EXPECT_TRUE(SameValues(crossing, kNaN3) && SameValues(linePoint, kNaN3) &&
              SameValues(direction, kNaN3));
  // A bad point on otherwise good planes spoils the line's point, not its
  // direction.
  EXPECT_EQ(
      PlanePlaneInt(MakeCol({kNaN, 0, 0}), MakeCol({1, 0, 0}), origin, up, linePoint, direction),
      0.0);
  EXPECT_TRUE(SameValues(direction, MakeCol({0, -1, 0})) && std::isnan(linePoint(0)));
}
