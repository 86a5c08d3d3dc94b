#include <gtest/gtest.h>

#include "quadrel/geometry/distances.h"
#include "quadrel/geometry/rotations.h"
#include "quadrel/geometry/vectors.h"
#include "quadrel/testing/test_util.h"

namespace {

TEST(GeometryDeathTest, VectorsAndConversionsStopOnShortOrOddShapes) {
  EXPECT_DEATH(Cross(MakeRow({1, 2}), MakeCol({1, 2, 3})),
               "quadrel: Cross: first vector is 1 x 2, it needs three elements");
  EXPECT_DEATH(Dot(MakeCol({1, 2, 3}), MakeRow({1, 2})),
               "quadrel: Dot: second vector is 1 x 2, shorter than the first's 3 x 1");
  EXPECT_DEATH(Cart2Sph(CMatrix(0.0, 2, 2)),
               "quadrel: Cart2Sph: points are 2 x 2, not 1 x 3 or 3 x n");
}

TEST(GeometryDeathTest, TransformsAndPlanesStopOnWrongShapes) {
  const CMatrix p = MakeCol({0, 0, 0});
  EXPECT_DEATH(Transform(Rotation(0.0, 0.0), CMatrix(0.0, 4, 3), CMatrix(0.0, 1, 3)),
               "quadrel: Transform: translation is 1 x 3, smaller than the points' 4 x 3");
  EXPECT_DEATH(PlanePointDist(p, MakeRow({0, 0, 1}), p),
               "quadrel: PlanePointDist: normal is 1 x 3, not a 3 x 1 column");
  EXPECT_DEATH(LinePointDist(MakeRow({0, 0, 0}), p, p),
               "quadrel: LinePointDist: incompatible matrix dimensions: 3 x 1 and 1 x 3");
}

}  // namespace
