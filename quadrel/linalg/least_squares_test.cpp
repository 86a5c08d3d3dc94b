#include "quadrel/linalg/least_squares.h"

#include <cmath>

#include <gtest/gtest.h>

#include "quadrel/functions/constructors.h"
#include "quadrel/testing/test_util.h"

namespace {

// x of Lsq(A, b, x), for checks that need no return value.
CMatrix Solve(const CMatrix &A, const CMatrix &b) {
  CMatrix x;
  Lsq(A, b, x);
  return x;
}

TEST(Lsq, SolvesSmallSystemsColumnByColumn) {
  CMatrix x;
  const CMatrix A = MakeMatrix(3, 2, {1, 0, 0, 1, 1, 1});
  EXPECT_NEAR(Lsq(A, MakeCol({1, 2, 3}), x), std::sqrt(3.0), 1e-14);
  EXPECT_TRUE(Near(x, MakeCol({1, 2}), 1e-14));
  EXPECT_TRUE(
      Near(Solve(A, MakeMatrix(3, 2, {1, 2, 2, 0, 3, 2})), MakeMatrix(2, 2, {1, 2, 2, 0}), 1e-14));
  // x may be A or b.
  CMatrix inout = A;
  Lsq(inout, MakeCol({1, 2, 3}), inout);
  EXPECT_TRUE(SameBits(inout, x));
  inout = MakeCol({1, 2, 3});
  Lsq(A, inout, inout);
  EXPECT_TRUE(SameBits(inout, x));
}

TEST(Lsq, SingularSystemsGiveTheMinimumNormSolution) {
  CMatrix x;
  EXPECT_EQ(Lsq(Ones(2), MakeCol({2, 2}), x), INFINITY);
  EXPECT_TRUE(Near(x, MakeCol({1, 1}), 1e-15));
  EXPECT_EQ(Lsq(Zeros(2), MakeCol({3, -1}), x), INFINITY);
  EXPECT_TRUE(Near(x, MakeCol({0, 0}), 0.0));
  EXPECT_TRUE(Near(Solve(MakeMatrix(3, 3, {1, 2, 3, 4, 5, 6, 7, 8, 9}), MakeCol({1, 2, 3})),
                   MakeCol({-1.0 / 18, 1.0 / 9, 5.0 / 18}), 1e-12));
}

TEST(Lsq, RankThresholdGrowsWithTheRowCount) {
  CMatrix x;
  // 1e-20 is dropped, but the returned condition number still counts it.
  EXPECT_NEAR(Lsq(MakeMatrix(2, 2, {1, 0, 0, 1e-20}), MakeCol({1, 1}), x), 1e20, 1e6);
  EXPECT_TRUE(Near(x, MakeCol({1, 0}), 0.0));
  EXPECT_TRUE(
      Near(Solve(MakeMatrix(2, 2, {1, 0, 0, 1e-15}), MakeCol({1, 1})), MakeCol({1, 1e15}), 1));
  // 5e-16 survives beside two rows (tol 4.44e-16), not beside three (6.66e-16).
  EXPECT_TRUE(
      Near(Solve(MakeMatrix(2, 2, {1, 0, 0, 5e-16}), MakeCol({1, 1})), MakeCol({1, 2e15}), 1));
  EXPECT_TRUE(Near(Solve(MakeMatrix(3, 2, {1, 0, 0, 5e-16, 0, 0}), MakeCol({1, 1, 0})),
                   MakeCol({1, 0}), 0.0));
  // A wide system counts its padded rows: three here.
  EXPECT_TRUE(Near(Solve(MakeMatrix(2, 3, {1, 0, 0, 0, 5e-16, 0}), MakeCol({1, 1})),
                   MakeCol({1, 0, 0}), 0.0));
}

}  // namespace
