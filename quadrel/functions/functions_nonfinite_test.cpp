// NaN and infinite elements in the constructors, rearrangement and reductions.
#include <cmath>
#include <limits>

#include <gtest/gtest.h>

#include "quadrel/functions/constructors.h"
#include "quadrel/functions/rearrange.h"
#include "quadrel/functions/reductions.h"
#include "quadrel/testing/test_util.h"

namespace {

const double kNaN = std::numeric_limits<double>::quiet_NaN();
const double kInf = std::numeric_limits<double>::infinity();

}  // namespace

TEST(FunctionsNonFinite, SequencesWithoutACountAreEmpty) {
  // A NaN or infinite quotient has no element count: an empty column.
  EXPECT_TRUE(SameBits(Seq(0.0, kNaN, 1.0), CMatrix(0, 1)));
  EXPECT_TRUE(SameBits(Seq(kNaN, 1.0, 1.0), CMatrix(0, 1)));
  EXPECT_TRUE(SameBits(Seq(0.0, 1.0, kNaN), CMatrix(0, 1)));
  EXPECT_TRUE(SameBits(Seq(0.0, kInf, 1.0), CMatrix(0, 1)));
  EXPECT_TRUE(SameBits(Seq(-kInf, 0.0, 1.0), CMatrix(0, 1)));
  // An infinite step over a finite range has quotient 0 and one element,
  // start + 0 * step, which is NaN.
  const CMatrix one = Seq(2.0, 5.0, kInf);
  EXPECT_TRUE(one.GetRows() == 1 && one.GetCols() == 1 && std::isnan(one(0)));

  // Linspace computes every element from i, so a non-finite end spreads.
  const CMatrix n = Linspace(0.0, kNaN, 3);
  ASSERT_EQ(n.GetRows(), 3);
  for (int k = 0; k < 3; ++k)
    EXPECT_TRUE(std::isnan(n(k))) << k;
  // 0 * inf is NaN: the first element is lost, the others are infinite.
  EXPECT_TRUE(SameValues(Linspace(0.0, kInf, 3), MakeCol({kNaN, kInf, kInf})));

  EXPECT_TRUE(SameBits(Diag(MakeMatrix(2, 2, {kNaN, 1.0, 2.0, -kInf})), MakeCol({kNaN, -kInf})));
}

TEST(FunctionsNonFinite, RearrangementMovesValuesUntouched) {
  const CMatrix a = MakeMatrix(2, 2, {kNaN, kInf, -kInf, -0.0});
  EXPECT_TRUE(SameBits(Transpose(a), MakeMatrix(2, 2, {kNaN, -kInf, kInf, -0.0})));
  EXPECT_TRUE(SameBits(Flipud(a), MakeMatrix(2, 2, {-kInf, -0.0, kNaN, kInf})));
  EXPECT_TRUE(SameBits(Fliplr(a), MakeMatrix(2, 2, {kInf, kNaN, -0.0, -kInf})));
  EXPECT_TRUE(SameBits(ColCat(Col(a, 1), Col(a, 0)), Fliplr(a)));
  EXPECT_TRUE(SameBits(Exclude(a, 0, 1), MakeCol({-kInf})));

  // Sort puts NaN after every number, infinities included; index follows.
  CMatrix index;
  EXPECT_TRUE(SameBits(Sort(MakeRow({3.0, kNaN, 1.0, kInf, -kInf}), index),
                       MakeRow({-kInf, 1.0, 3.0, kInf, kNaN})));
  EXPECT_TRUE(SameBits(index, MakeRow({4, 2, 0, 3, 1})));
}

TEST(FunctionsNonFinite, SumsAndMomentsCarryNaNAndInfinities) {
  const CMatrix a = MakeMatrix(3, 3, {1.0, kNaN, kInf, 2.0, 1.0, kInf, 3.0, 2.0, -kInf});
  // Column 0 is finite, column 1 holds a NaN, column 2 infinities of both signs.
  EXPECT_TRUE(SameValues(Sum(a), MakeRow({6.0, kNaN, kNaN})));
  EXPECT_TRUE(SameValues(Mean(a), MakeRow({2.0, kNaN, kNaN})));
  CMatrix mean;
  const CMatrix s = Std(a, mean);
  EXPECT_TRUE(SameValues(mean, Mean(a)));
  EXPECT_FALSE(std::isnan(s(0)));
  EXPECT_TRUE(std::isnan(s(1)) && std::isnan(s(2)));
  // One infinity: the mean is infinite, and the deviation inf - inf is NaN.
  EXPECT_EQ(Mean(MakeRow({1.0, kInf}))(0), kInf);
  EXPECT_TRUE(std::isnan(Std(MakeRow({1.0, kInf}))(0)));

  EXPECT_TRUE(SameBits(Abs(MakeRow({-kInf, kNaN, -0.0})), MakeRow({kInf, kNaN, -0.0})));
  EXPECT_TRUE(SameValues(Eval(MakeRow({kInf, -1.0}), std::sqrt), MakeRow({kInf, kNaN})));
}

TEST(FunctionsNonFinite, ExtremesSkipNaNUnlessItLeads) {
  CMatrix index;
  // A NaN never wins a comparison...
  EXPECT_TRUE(SameBits(Max(MakeRow({1.0, kNaN, 3.0}), index), MakeRow({3.0})));
  EXPECT_TRUE(SameBits(index, MakeRow({2.0})));
  EXPECT_TRUE(SameBits(Min(MakeCol({2.0, kNaN, -kInf}), index), MakeRow({-kInf})));
  EXPECT_TRUE(SameBits(index, MakeRow({2.0})));
  // ...and nothing wins against a leading NaN.
  EXPECT_TRUE(SameBits(Min(MakeRow({kNaN, -1.0, -kInf}), index), MakeRow({kNaN})));
  EXPECT_TRUE(SameBits(index, MakeRow({0.0})));
  EXPECT_TRUE(
      SameBits(Max(MakeMatrix(2, 2, {kNaN, kInf, 5.0, 1.0}), index), MakeRow({kNaN, kInf})));
  EXPECT_TRUE(SameBits(index, MakeRow({0.0, 0.0})));
}

TEST(FunctionsNonFinite, NaNCountsAsNonZero) {
  EXPECT_EQ(Any(MakeRow({0.0, kNaN})), 1);
  EXPECT_EQ(All(MakeRow({kNaN, kInf, -kInf})), 1);
  EXPECT_EQ(All(MakeRow({kNaN, -0.0})), 0);
  CMatrix index;
  EXPECT_EQ(Find(MakeMatrix(2, 2, {0.0, kNaN, -kInf, -0.0}), index), 2);
  EXPECT_TRUE(SameBits(index, MakeCol({1.0, 2.0})));
}
