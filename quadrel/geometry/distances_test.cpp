#include "quadrel/geometry/distances.h"

#include <cmath>

#include <gtest/gtest.h>

#include "quadrel/functions/rearrange.h"
#include "quadrel/testing/test_util.h"

namespace {

bool AllNaN(const CMatrix &m) {
  for (int i = 0; i < m.GetRows(); ++i)
    for (int j = 0; j < m.GetCols(); ++j)
      if (!std::isnan(m(i, j))) return false;
  return true;
}

const CMatrix kOrigin = MakeCol({0, 0, 0});

TEST(PointDistances, LineGoesThroughTheAngleAndPlaneIsSignedByTheNormalNotItsLength) {
  const CMatrix point = MakeCol({3, 4, 0}), abovePlane = MakeCol({1, 1, 3});
  EXPECT_DOUBLE_EQ(LinePointDist(kOrigin, MakeCol({-1, 0, 0}), point), 4.0);
  // The cosine rounds to 1 this close to the line; a zero direction gives an
  // angle of pi, which folds to 0.
  EXPECT_EQ(LinePointDist(kOrigin, MakeCol({1, 0, 0}), MakeCol({3, 1e-9, 0})), 0.0);
  EXPECT_EQ(LinePointDist(kOrigin, MakeCol({0, 0, 0}), point), 0.0);
  CMatrix foot;
  EXPECT_NEAR(LinePointInt(kOrigin, MakeCol({2, 0, 0}), point, foot), 4.0, 2e-15);
  EXPECT_TRUE(Near(foot, MakeCol({3, 0, 0}), 1e-15));
  EXPECT_NEAR(LinePointInt(MakeRow({1, 1, 1}), MakeRow({0, -3, 0}), MakeRow({2, 5, 1}), foot), 1.0,
              1e-14);
  EXPECT_TRUE(Near(foot, MakeRow({1, 5, 1}), 1e-15));
  for (double z : {2.0, -5.0}) {
    EXPECT_EQ(PlanePointInt(kOrigin, MakeCol({0, 0, z}), abovePlane, foot), std::copysign(3.0, z));
    EXPECT_TRUE(SameBits(foot, MakeCol({1, 1, 0})));
  }
  EXPECT_TRUE(std::isnan(PlanePointDist(kOrigin, MakeCol({0, 0, 0}), abovePlane)));
}

TEST(PlaneLineInt, FindsTheCrossingOrLeavesItAlone) {
  const CMatrix normal = MakeCol({0, 0, 1}), linePoint = MakeCol({0, 0, 5});
  CMatrix crossing;
  EXPECT_EQ(
      PlaneLineInt(MakeCol({0, 0, 1}), MakeCol({0, 0, 2}), kOrigin, MakeCol({1, 0, 1}), crossing),
      0.0);
  EXPECT_TRUE(Near(crossing, MakeCol({1, 0, 1}), 1e-15));
  // A parallel line off the plane has no crossing; the output keeps its value.
  const CMatrix sentinel = MakeMatrix(2, 2, {7, 8, 9, 10});
  crossing = sentinel;
  EXPECT_EQ(PlaneLineInt(kOrigin, normal, linePoint, MakeCol({1, 0, 0}), crossing), 5.0);
  EXPECT_TRUE(SameBits(crossing, sentinel));
  EXPECT_EQ(PlaneLineDist(kOrigin, MakeCol({0, 0, -2}), linePoint, MakeCol({1, 3, 0})), -5.0);
  // Off by one part in 1e14 it is not parallel, and crosses far away.
  EXPECT_EQ(PlaneLineInt(kOrigin, normal, linePoint, MakeCol({1, 0, 1e-14}), crossing), 0.0);
  EXPECT_NEAR(crossing(0), -5e14, 1e12);
  // A line lying in the plane gives 0 / 0.
  EXPECT_EQ(PlaneLineInt(kOrigin, normal, MakeCol({1, 2, 0}), MakeCol({1, 1, 0}), crossing), 0.0);
  EXPECT_TRUE(AllNaN(crossing));
}

TEST(PlanePlaneInt, PlacesTheLineInTheMostPerpendicularCoordinatePlaneOrGivesNone) {
  CMatrix linePoint, lineDirection;
  EXPECT_EQ(PlanePlaneInt(MakeCol({1, 2, 3}), MakeCol({1, 1, 0}), MakeCol({0, -1, 4}),
                          MakeCol({0, 2, 3}), linePoint, lineDirection),
            0.0);
  const double s = std::sqrt(22.0);
  EXPECT_TRUE(Near(lineDirection, MakeCol({3 / s, -3 / s, 2 / s}), 1e-15));
  // Axes 0 and 1 tie for the largest component: the lower one is dropped.
  EXPECT_TRUE(Near(linePoint, MakeCol({0, 3, 4.0 / 3}), 1e-15));
  EXPECT_EQ(linePoint(0), 0.0);
  // Planes x = 1 and y = 2 meet along Z: the line sits in z = 0.
  EXPECT_EQ(PlanePlaneInt(MakeCol({1, 7, 7}), MakeCol({2, 0, 0}), MakeCol({7, 2, 7}),
                          MakeCol({0, 1, 0}), linePoint, lineDirection),
            0.0);
  EXPECT_TRUE(SameBits(ColCat(lineDirection, linePoint), MakeMatrix(3, 2, {0, 1, -0.0, 2, 1, 0})));

  const CMatrix high = MakeCol({0, 0, 5}), up = MakeCol({0, 0, 1});
  const CMatrix sentinel = MakeRow({1, 2});
  linePoint = sentinel;
  lineDirection = sentinel;
  // Apart, with normals of one direction: the distance, and no line.
  EXPECT_EQ(PlanePlaneInt(kOrigin, up, high, MakeCol({0, 0, 2}), linePoint, lineDirection), 5.0);
  EXPECT_TRUE(SameBits(linePoint, sentinel) && SameBits(lineDirection, sentinel));
  EXPECT_EQ(PlanePlaneDist(high, up, kOrigin, MakeCol({0, 0, 2})), -5.0);
  // Opposite normals, coincident planes, or equal normals whose angle rounds
  // above 0: the result is 0.0 and the cross product is zero.
  const CMatrix cases[][3] = {{high, up, MakeCol({0, 0, -1})},
                              {MakeCol({4, 4, 0}), up, MakeCol({0, 0, 3})},
                              {MakeCol({3, 0, 0}), MakeCol({1, 1, 0}), MakeCol({1, 1, 0})}};
  for (const auto &c : cases) {
    SCOPED_TRACE(Describe(c[1]) + " and " + Describe(c[2]));
    EXPECT_EQ(PlanePlaneInt(kOrigin, c[1], c[0], c[2], linePoint, lineDirection), 0.0);
    EXPECT_TRUE(AllNaN(lineDirection) && lineDirection.GetRows() == 3);
    EXPECT_TRUE(AllNaN(linePoint) && linePoint.GetRows() == 3);
  }
}

TEST(Distances, NaNDirectionsAndNormalsCountAsZeroOnes) {
  // Angle gives pi for them, as for a zero vector: the line distance folds that
  // to 0, the parallel tests fail and give 0.0, and the intersections write NaN.
  const CMatrix up = MakeCol({0, 0, 1}), bad = MakeCol({NAN, 0, 0}), nan3(NAN, 3, 1);
  for (double distance : {LinePointDist(kOrigin, bad, up), PlaneLineDist(kOrigin, bad, up, up),
                          PlanePlaneDist(kOrigin, bad, up, up)})
    EXPECT_EQ(distance, 0.0);
  EXPECT_TRUE(std::isnan(PlanePointDist(kOrigin, bad, up)));
  CMatrix crossing, linePoint, direction;
  EXPECT_EQ(PlaneLineInt(kOrigin, bad, up, MakeCol({0, 1, 0}), crossing), 0.0);
  EXPECT_EQ(PlanePlaneInt(kOrigin, bad, kOrigin, up, linePoint, direction), 0.0);
  EXPECT_TRUE(SameValues(crossing, nan3) && SameValues(linePoint, nan3) &&
              SameValues(direction, nan3));
  // A NaN point on otherwise good planes spoils the line's point only.
  PlanePlaneInt(bad, MakeCol({1, 0, 0}), kOrigin, up, linePoint, direction);
  EXPECT_TRUE(SameValues(direction, MakeCol({0, -1, 0})) && std::isnan(linePoint(0)));
}

}  // namespace
