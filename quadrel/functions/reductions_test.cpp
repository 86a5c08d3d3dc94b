#include "quadrel/functions/reductions.h"

#include <cmath>
#include <vector>

#include <gtest/gtest.h>

#include "quadrel/testing/test_util.h"

namespace {

const CMatrix k2x3 = MakeMatrix(2, 3, {1, 2, 3, 4, 5, 6});

TEST(Reductions, OneRowOrColumnReducesToScalarOtherwiseEachColumn) {
  EXPECT_TRUE(SameBits(Sum(MakeRow({1, 2, 3})), MakeRow({6})));
  EXPECT_TRUE(SameBits(Sum(MakeCol({1, 2, 3})), MakeRow({6})));
  EXPECT_TRUE(SameBits(Mean(k2x3), MakeRow({2.5, 3.5, 4.5})));
  // Sums run in rising index: from the front 1e16 + 1 rounds back to 1e16.
  EXPECT_EQ(Sum(MakeRow({1e16, 1, -1e16}))(0), 0.0);
  EXPECT_EQ(Mean(MakeCol({1e16, 1, -1e16, 0}))(0), 0.0);
  // Empty paths: the sum is 0.0, the mean 0 / 0.
  EXPECT_TRUE(SameBits(Sum(CMatrix(1, 0)), MakeRow({0.0})));
  EXPECT_TRUE(SameBits(Sum(CMatrix(3, 0)), CMatrix(1, 0)));
  EXPECT_TRUE(std::isnan(Mean(CMatrix(1, 0))(0)));
  EXPECT_TRUE(SameBits(Min(CMatrix(0, 0)), CMatrix(1, 0)));
}

TEST(Std, IsThePopulationDeviationWithItsMean) {
  CMatrix mean(9.0, 4, 4);
  EXPECT_EQ(Std(MakeRow({1, 2, 3, 4}), mean)(0), std::sqrt(1.25));
  EXPECT_TRUE(SameBits(mean, MakeRow({2.5})));
  EXPECT_EQ(Std(MakeCol({1, 2, 3, 4}))(0), std::sqrt(1.25));
  EXPECT_TRUE(SameBits(Std(k2x3, mean), MakeRow({1.5, 1.5, 1.5})));
  EXPECT_TRUE(SameBits(mean, MakeRow({2.5, 3.5, 4.5})));
  // One-pass rounding may leave a tiny value, never the root of a negative.
  const CMatrix flat = Std(CMatrix(0.1, 7, 3));
  EXPECT_TRUE(flat(0) < 1e-8 && flat(1) < 1e-8 && flat(2) < 1e-8);
}

TEST(MinMax, FirstOfEqualElementsWinsAndNaNOnlyInFirstPlace) {
  CMatrix index(5.0, 3, 3);
  EXPECT_TRUE(SameBits(Min(MakeRow({3, 1, 2, 1}), index), MakeRow({1})));
  EXPECT_TRUE(SameBits(index, MakeRow({1})));
  EXPECT_TRUE(SameBits(Max(MakeRow({2, 7, 7}), index), MakeRow({7})));
  EXPECT_TRUE(SameBits(index, MakeRow({1})));
  const CMatrix square = MakeMatrix(2, 2, {1, 4, 3, 2});
  EXPECT_TRUE(SameBits(Max(square, index), MakeRow({3, 4})));
  EXPECT_TRUE(SameBits(index, MakeRow({1, 0})));
  EXPECT_TRUE(SameBits(Min(square, index), MakeRow({1, 2})));
  EXPECT_TRUE(SameBits(index, MakeRow({0, 1})));
  EXPECT_TRUE(SameBits(Max(MakeCol({2, NAN, 1}), index), MakeRow({2})));
  EXPECT_TRUE(SameBits(index, MakeRow({0})));
  EXPECT_TRUE(std::isnan(Min(MakeRow({NAN, -5}), index)(0)));
}

TEST(Reductions, AbsAnyAllTestElementsBitForBit) {
  // -0.0 keeps its sign and NaN gains none.
  EXPECT_TRUE(SameBits(Abs(MakeRow({-2.5, 3, -0.0, NAN})), MakeRow({2.5, 3, -0.0, NAN})));
  EXPECT_EQ(Any(CMatrix(0, 0)) * 10 + All(CMatrix(0, 0)), 1);
  EXPECT_EQ(Any(MakeRow({-0.0, 0.0})), 0);
  EXPECT_EQ(All(MakeRow({1, -0.0})), 0);
  EXPECT_EQ(Any(MakeRow({0, NAN})), 1);
  EXPECT_EQ(All(MakeRow({NAN, 2})), 1);
}

TEST(Find, GivesLinearIndicesAlongTheRowsOrLeavesIndexAlone) {
  CMatrix index;
  const CMatrix a = MakeMatrix(2, 3, {0, 5, NAN, -0.0, 0, 7});
  EXPECT_EQ(Find(a, index), 3);
  EXPECT_TRUE(SameBits(index, MakeCol({1, 2, 5})));
  EXPECT_EQ(Find(MakeMatrix(2, 2, {0, -0.0, 0, 0}), index), 0);
  EXPECT_TRUE(SameBits(index, MakeCol({1, 2, 5})));
}

std::vector<double> g_seen;
double Record(double x) {
  g_seen.push_back(x);
  return 2 * x;
}

TEST(Eval, CallsTheFunctionRowByRow) {
  EXPECT_TRUE(SameBits(Eval(k2x3, Record), MakeMatrix(2, 3, {2, 4, 6, 8, 10, 12})));
  EXPECT_EQ(g_seen, (std::vector<double>{1, 2, 3, 4, 5, 6}));
}

}  // namespace
