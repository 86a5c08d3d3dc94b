#include "quadrel/functions/constructors.h"

#include <cmath>

#include <gtest/gtest.h>

#include "quadrel/testing/test_util.h"

namespace {

TEST(Constructors, FillTheGivenShape) {
  EXPECT_TRUE(SameBits(Zeros(3), CMatrix(0.0, 3, 3)));
  EXPECT_TRUE(SameBits(Ones(3, 1), MakeCol({1, 1, 1})));
  EXPECT_TRUE(SameBits(Zeros(CMatrix(NAN, 2, 5)), CMatrix(0.0, 2, 5)));
  EXPECT_TRUE(SameBits(Eye(2, 3), MakeMatrix(2, 3, {1, 0, 0, 0, 1, 0})));
  EXPECT_TRUE(SameBits(Eye(3, 2), MakeMatrix(3, 2, {1, 0, 0, 1, 0, 0})));
  CMatrix wide = MakeMatrix(2, 3, {1, 2, 3, 4, 5, 6});
  EXPECT_TRUE(SameBits(Diag(wide), MakeCol({1, 5})));
  EXPECT_TRUE(SameBits(Diag(MakeRow({7, 8, 9, 10})), MakeCol({7})));
  wide.SwapCols(0, 1);
  EXPECT_TRUE(SameBits(Diag(wide), MakeCol({2, 4})));
}

TEST(Seq, CountsByTruncatedQuotient) {
  EXPECT_TRUE(SameBits(Seq(0.0, 5.0, 1.0), MakeCol({0, 1, 2, 3, 4, 5})));
  // 1 / 0.4 = 2.5: three elements, stop not reached.
  EXPECT_TRUE(SameBits(Seq(1.0, 2.0, 0.4), MakeCol({1.0, 0.4 + 1.0, 2 * 0.4 + 1.0})));
  EXPECT_TRUE(SameBits(Seq(5.0, 1.0, -1.0), MakeCol({5, 4, 3, 2, 1})));
  // Truncation goes towards zero, not downwards.
  EXPECT_TRUE(SameBits(Seq(0.0, -0.5, 1.0), MakeCol({0.0})));
  EXPECT_TRUE(SameBits(Seq(0.0, -1.0, 1.0), CMatrix(0, 1)));
  // Each element comes from its index, not from a running sum.
  const CMatrix s = Seq(0.3, 100.0, 0.1);
  double running = 0.3;
  bool drifted = false;
  for (int i = 0; i < s.GetRows(); ++i, running = running + 0.1) {
    ASSERT_EQ(s(i), i * 0.1 + 0.3) << "element " << i;
    drifted = drifted || s(i) != running;
  }
  EXPECT_TRUE(drifted) << "a running sum gives the same values here; the test proves nothing";
}

TEST(SeqLinspace, DegenerateRangesAndCountsGiveAnEmptyColumn) {
  const double cases[][3] = {{0, 1, 0}, {0, 2, -1}, {NAN, 1, 1}, {0, 1, NAN}, {0, INFINITY, 1}};
  for (const auto &c : cases)
    EXPECT_TRUE(SameBits(Seq(c[0], c[1], c[2]), CMatrix(0, 1)))
        << c[0] << " " << c[1] << " " << c[2];
  // An infinite step over a finite range: one element, start + 0 * step = NaN.
  EXPECT_TRUE(SameValues(Seq(2.0, 5.0, INFINITY), MakeCol({NAN})));
  EXPECT_TRUE(SameBits(Linspace(2.0, 7.0, 0), CMatrix(0, 1)));
  EXPECT_TRUE(SameBits(Linspace(2.0, 7.0, -3), CMatrix(0, 1)));
  EXPECT_TRUE(SameBits(Linspace(2.0, 7.0, 1), MakeCol({7.0})));
}

TEST(Linspace, SpacesCountValuesFromTheFirst) {
  EXPECT_TRUE(SameBits(Linspace(0.0, 1.0, 5), MakeCol({0, 0.25, 0.5, 0.75, 1})));
  EXPECT_TRUE(SameBits(Linspace(1.0, 0.0, 3), MakeCol({1, 0.5, 0})));
  // The last element is computed, not copied from last.
  EXPECT_EQ(Linspace(0.1, 0.7, 4)(3), 3 * ((0.7 - 0.1) / 3.0) + 0.1);
}

}  // namespace
