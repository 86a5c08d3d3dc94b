#include "quadrel/fitting/internal/simplex.h"

#include <cmath>
#include <vector>

#include <gtest/gtest.h>

#include "quadrel/testing/test_util.h"

namespace {

// Every vertex the objectives below are called with, in call order.
std::vector<CMatrix> calls;

double Bowl(const CMatrix &x, const CMatrix &data) {
  calls.push_back(x);
  const double a = x(0) - data(0);
  const double b = x(1) - data(1);
  return a * a + 2.0 * b * b;
}

double Flat(const CMatrix &x, const CMatrix &) {
  calls.push_back(x);
  return 1.0;
}

TEST(SimplexMin, OneIterationKeepsTheBestOfTheStartSimplex) {
  // Start (0, -2): the zero coordinate steps by 0.005, the negative one by
  // 10 % away from zero.
  calls.clear();
  CMatrix x = MakeCol({0, -2});
  double tolX = 0.0, tolF = 0.0;
  int maxIter = 1;
  const double f = SimplexMin(Bowl, x, MakeCol({0, 0}), tolX, tolF, maxIter);
  ASSERT_EQ(calls.size(), 5u);  // start simplex, reflection, accepted expansion
  const double y = (1 + 0.1) * -2.0;
  EXPECT_TRUE(SameBits(calls[0], MakeCol({0, -2})));
  EXPECT_TRUE(SameBits(calls[1], MakeCol({0.005, -2})));
  EXPECT_TRUE(SameBits(calls[2], MakeCol({0, y})));
  EXPECT_TRUE(SameBits(calls[3], MakeCol({0.005, 2.0 * -2.0 - y})));  // reflection
  // The expansion (0.0075, -1.6) is better, but the iteration that placed it
  // was the last one, so it is not sorted in.
  EXPECT_TRUE(Near(calls[4], MakeCol({0.0075, -1.6}), 1e-15));
  EXPECT_EQ(maxIter, 1);
  EXPECT_TRUE(SameBits(x, MakeCol({0, -2})));
  EXPECT_EQ(f, 8.0);
  // Measures taken at the top of that iteration.
  EXPECT_EQ(tolX, -(y - -2.0));
  EXPECT_EQ(tolF, 2.0 * y * y - 8.0);
}

TEST(SimplexMin, ConstantObjectiveShrinksUntilSmall) {
  // Spread is 0 from the start; every iteration reflects, contracts inside
  // (no tie accepted) and shrinks, halving the size 0.1 of the start simplex.
  calls.clear();
  CMatrix x = MakeCol({1, 1});
  double tolX = 1e-3, tolF = 1e-3;
  int maxIter = 100;
  EXPECT_EQ(SimplexMin(Flat, x, CMatrix(), tolX, tolF, maxIter), 1.0);
  EXPECT_EQ(maxIter, 7);
  EXPECT_NEAR(tolX, 0.1 / 128, 1e-15);
  EXPECT_EQ(tolF, 0.0);
  EXPECT_EQ(calls.size(), 3u + 7u * 4u);
}

TEST(SimplexMin, NaNCostsRunToTheIterationLimit) {
  // No comparison holds on NaN, so no test can end the search early; maxIter
  // stays at the limit.
  CMatrix x = MakeCol({1.0, 2.0});
  double tolX = 1e-8, tolF = 1e-8;
  int maxIter = 50;
  SimplexMin([](const CMatrix &, const CMatrix &) { return std::nan(""); }, x, CMatrix(), tolX,
             tolF, maxIter);
  EXPECT_EQ(maxIter, 50);
  EXPECT_EQ(x.GetRows() * 10 + x.GetCols(), 21);
}

}  // namespace
