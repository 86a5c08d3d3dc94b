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

TEST(FunctionsNonFinite, ConstructorsWithoutACountAreEmpty) {
  // A NaN or infinite quotient has no element count: an empty column.
  const double bad[][3] = {
      {0.0, kNaN, 1.0}, {kNaN, 1.0, 1.0}, {0.0, 1.0, kNaN}, {0.0, kInf, 1.0}, {-kInf, 0.0, 1.0}};
  for (const auto &q : bad)
    EXPECT_TRUE(SameBits(Seq(q[0], q[1], q[2]), CMatrix(0, 1)));
  // An infinite step over a finite range: one element, start + 0 * step = NaN.
  EXPECT_TRUE(SameValues(Seq(2.0, 5.0, kInf), MakeCol({kNaN})));
  // Linspace computes every element from i, so a non-finite end spreads.
  EXPECT_TRUE(SameValues(Linspace(0.0, kNaN, 3), MakeCol({kNaN, kNaN, kNaN})));
  EXPECT_TRUE(SameValues(Linspace(0.0, kInf, 3), MakeCol({kNaN, kInf, kInf})));
  EXPECT_TRUE(SameBits(Diag(MakeMatrix(2, 2, {kNaN, 1.0, 2.0, -kInf})), MakeCol({kNaN, -kInf})));
}

TEST(FunctionsNonFinite, RearrangementMovesValuesUntouched) {
  const CMatrix a = MakeMatrix(2, 2, {kNaN, kInf, -kInf, -0.0});
  EXPECT_TRUE(SameBits(Transpose(a), MakeMatrix(2, 2, {kNaN, -kInf, kInf, -0.0})));
  EXPECT_TRUE(SameBits(Flipud(a), MakeMatrix(2, 2, {-kInf, -0.0, kNaN, kInf})));
  EXPECT_TRUE(SameBits(ColCat(Col(a, 1), Col(a, 0)), Fliplr(a)));
  EXPECT_TRUE(SameBits(Exclude(a, 0, 1), MakeCol({-kInf})));
  // Sort puts NaN after every number, infinities included; index follows.
  CMatrix index;
  EXPECT_TRUE(SameBits(Sort(MakeRow({3.0, kNaN, 1.0, kInf, -kInf}), index),
                       MakeRow({-kInf, 1.0, 3.0, kInf, kNaN})));
  EXPECT_TRUE(SameBits(index, MakeRow({4, 2, 0, 3, 1})));
}

TEST(FunctionsNonFinite, ReductionsCarryNaNAndInfinities) {
  // Column 0 is finite, column 1 holds a NaN, column 2 infinities of both signs.
  const CMatrix a = MakeMatrix(3, 3, {1.0, kNaN, kInf, 2.0, 1.0, kInf, 3.0, 2.0, -kInf});
  EXPECT_TRUE(SameValues(Sum(a), MakeRow({6.0, kNaN, kNaN})));
  CMatrix mean, index;
  const CMatrix s = Std(a, mean);
  EXPECT_TRUE(SameValues(mean, MakeRow({2.0, kNaN, kNaN})));
  EXPECT_TRUE(!std::isnan(s(0)) && std::isnan(s(1)) && std::isnan(s(2)));
  // One infinity: the mean is infinite, and the deviation inf - inf is NaN.
  EXPECT_TRUE(std::isnan(Std(MakeRow({1.0, kInf}), mean)(0)) && mean(0) == kInf);
  EXPECT_TRUE(SameBits(Abs(MakeRow({-kInf, kNaN, -0.0})), MakeRow({kInf, kNaN, -0.0})));
  EXPECT_TRUE(SameValues(Eval(MakeRow({kInf, -1.0}), std::sqrt), MakeRow({kInf, kNaN})));
  // A NaN never wins a comparison, and nothing wins against a leading NaN.
  EXPECT_TRUE(SameBits(Min(MakeCol({2.0, kNaN, -kInf}), index), MakeRow({-kInf})));
  EXPECT_TRUE(SameBits(index, MakeRow({2.0})));
  EXPECT_TRUE(
      SameBits(Max(MakeMatrix(2, 2, {kNaN, kInf, 5.0, 1.0}), index), MakeRow({kNaN, kInf})));
  EXPECT_TRUE(SameBits(index, MakeRow({0.0, 0.0})));
  // NaN counts as non-zero.
  EXPECT_EQ(Any(MakeRow({0.0, kNaN})), 1);
  EXPECT_EQ(All(MakeRow({kNaN, -0.0})), 0);
  EXPECT_EQ(Find(MakeMatrix(2, 2, {0.0, kNaN, -kInf, -0.0}), index), 2);
  EXPECT_TRUE(SameBits(index, MakeCol({1.0, 2.0})));
}
