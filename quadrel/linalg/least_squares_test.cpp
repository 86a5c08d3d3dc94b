#include "quadrel/linalg/least_squares.h"

#include <cmath>

#include <gtest/gtest.h>

#include "quadrel/functions/constructors.h"
#include "quadrel/functions/rearrange.h"
#include "quadrel/linalg/direct.h"
#include "quadrel/linalg/svd.h"
#include "quadrel/matrix/operators.h"
#include "quadrel/testing/alloc_counter.h"
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

TEST(Lsq, AgreesWithTheNormalEquationsAndTheRowSpace) {
  TestRandom random(41);
  const int shapes[][3] = {{6, 3, 1}, {25, 4, 2}, {200, 6, 1}, {5, 5, 3}};
  for (const auto &shape : shapes) {
    SCOPED_TRACE(testing::Message() << shape[0] << " x " << shape[1]);
    const CMatrix A = random.Matrix(shape[0], shape[1]), b = random.Matrix(shape[0], shape[2]);
    CMatrix x;
    const double cond = Lsq(A, b, x);
    ASSERT_LT(cond, 100.0);
    EXPECT_EQ(cond, Cond(A));
    EXPECT_TRUE(Near(x, Inv(Transpose(A) * A) * (Transpose(A) * b), 1e-12));
  }
  // Under-determined: the exact solution of least norm, x = A' (A A')^-1 b.
  const CMatrix A = random.Matrix(2, 4), b = MakeCol({0.5, -1.5});
  EXPECT_TRUE(Near(Solve(A, b), Transpose(A) * (Inv(A * Transpose(A)) * b), 1e-13));
}

TEST(Lsq, AllocationsDoNotGrowWithRows) {
  TestRandom random(47);
  auto count = [&random](int rows) {
    const CMatrix A = random.Matrix(rows, 3), b = random.Matrix(rows, 1);
    CMatrix x;
    AllocationScope scope;
    Lsq(A, b, x);
    return scope.Count();
  };
  EXPECT_EQ(count(100), count(10000));
}

}  // namespace
