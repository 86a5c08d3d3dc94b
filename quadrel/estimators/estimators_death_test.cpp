#include <gtest/gtest.h>

#include "quadrel/estimators/quality_peak.h"
#include "quadrel/estimators/trihedral.h"
#include "quadrel/testing/test_util.h"

namespace {

TEST(EstimatorsDeathTest, TrihedralFitStopsOnSetsWithoutThreeRows) {
  const CMatrix good(1.0, 3, 4);
  CMatrix result;
  EXPECT_DEATH(IdealTrihedralFit(good, CMatrix(1.0, 2, 4), good, result, 1.0),
               "quadrel: IdealTrihedralFit: set2 is 2 x 4; a point set has 3 rows");
  // Rows are checked before the point count.
  EXPECT_DEATH(IdealTrihedralFit(good, good, CMatrix(1.0, 4, 2), result, 1.0), "set3 is 4 x 2");
  CMatrix alias(1.0, 3, 4);
  EXPECT_DEATH(IdealTrihedralFit(good, alias, good, alias, 1.0),
               "quadrel: IdealTrihedralFit: result is one of the point sets");
}

TEST(EstimatorsDeathTest, QualityPeakStopsOnMismatchedShapes) {
  CMatrix peak;
  EXPECT_DEATH(FindQualityPeak(MakeRow({1, 2, 3}), CMatrix(0.0, 2, 3), peak),
               "quadrel: FindQualityPeak: quality is 1 x 3; it must be an n x 1 column");
  EXPECT_DEATH(FindQualityPeak(MakeCol({1, 2, 3}), CMatrix(0.0, 2, 4), peak),
               "quadrel: FindQualityPeak: positions is 2 x 4; it must be 2 x 3");
  EXPECT_DEATH(FindQualityPeak(CMatrix(0, 1), CMatrix(0.0, 2, 0), peak),
               "quadrel: FindQualityPeak: quality is 0 x 1");
  CMatrix positions(0.0, 2, 3);
  EXPECT_DEATH(FindQualityPeak(MakeCol({1, 2, 3}), positions, positions),
               "quadrel: FindQualityPeak: peak is one of the inputs");
}

}  // namespace
