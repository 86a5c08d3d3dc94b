#include "quadrel/linalg/direct.h"

#include <cmath>

#include <gtest/gtest.h>

#include "quadrel/functions/constructors.h"
#include "quadrel/functions/rearrange.h"
#include "quadrel/matrix/internal/contract.h"
#include "quadrel/matrix/operators.h"
#include "quadrel/testing/alloc_counter.h"
#include "quadrel/testing/test_util.h"

namespace {

TEST(Lu, PivotsOnTheLargestMagnitudeWithoutMovingRows) {
  CMatrix L, U, P;
  Lu(MakeMatrix(3, 3, {1, 2, 3, 4, 5, 6, 7, 8, 10}), L, U, P);
  EXPECT_TRUE(SameBits(P, MakeMatrix(3, 3, {0, 0, 1, 1, 0, 0, 0, 1, 0})));
  EXPECT_TRUE(Near(L, MakeMatrix(3, 3, {1, 0, 0, 1.0 / 7, 1, 0, 4.0 / 7, 0.5, 1}), 1e-15));
  EXPECT_TRUE(Near(U, MakeMatrix(3, 3, {7, 8, 10, 0, 6.0 / 7, 11.0 / 7, 0, 0, -0.5}), 1e-14));
  Lu(MakeMatrix(2, 2, {2, 1, 4, 3}), L, U, P);
  EXPECT_TRUE(SameBits(ColCat(ColCat(P, L), U),
                       MakeMatrix(2, 6, {0, 1, 1, 0, 4, 3, 1, 0, 0.5, 1, 0, -0.5})));
  // Equal magnitudes keep the upper row; a zero last pivot is never divided by.
  Lu(MakeMatrix(2, 2, {1, 2, 1, 3}), L, U, P);
  EXPECT_TRUE(SameBits(P, Eye(2)));
  Lu(MakeMatrix(2, 2, {1, 2, 2, 4}), L, U, P);
  EXPECT_TRUE(SameBits(ColCat(L, U), MakeMatrix(2, 4, {1, 0, 2, 4, 0.5, 1, 0, 0})));
  // A zero column above the last pivot is divided by.
  Lu(MakeMatrix(3, 3, {0, 1, 2, 0, 3, 4, 0, 5, 7}), L, U, P);
  EXPECT_TRUE(std::isnan(L(1, 0) + L(2, 0)));
  // The two-output form folds the permutation into L.
  Lu(MakeMatrix(2, 2, {0, 1, 1, 0}), L, U);
  EXPECT_TRUE(SameBits(ColCat(L, U), MakeMatrix(2, 4, {0, 1, 1, 0, 1, 0, 0, 1})));
}

TEST(Lu, FactorsEveryShape) {
  TestRandom random(17);
  // Square, tall, wide, a single row, and fewer than m - 1 columns, where only
  // the existing columns are eliminated.
  const int shapes[][2] = {{2, 2}, {4, 4}, {7, 7}, {3, 2}, {2, 3}, {1, 3}, {5, 2}, {6, 1}};
  for (const auto &shape : shapes) {
    SCOPED_TRACE(testing::Message() << shape[0] << " x " << shape[1]);
    const CMatrix A = random.Matrix(shape[0], shape[1], -5.0, 5.0);
    CMatrix L, U, P;
    Lu(A, L, U, P);
    ASSERT_EQ(QuadrelDims(L) + ", " + QuadrelDims(U), QuadrelDims(P) + ", " + QuadrelDims(A));
    for (int i = 0; i < L.GetRows(); ++i) {
      EXPECT_EQ(L(i, i), 1.0);
      for (int j = 0; j < L.GetCols(); ++j)
        EXPECT_TRUE(j <= i || L(i, j) == 0.0) << i << ", " << j;
      for (int j = 0; j < i && j < U.GetCols(); ++j)
        EXPECT_NEAR(U(i, j), 0.0, 1e-14) << i << ", " << j;
    }
    EXPECT_TRUE(Near(P * A, L * U, 1e-13));
    EXPECT_TRUE(SameBits(Transpose(P) * P, Eye(shape[0])));
  }
  CMatrix L, U, P;
  Lu(MakeMatrix(3, 2, {1, 2, 3, 4, 5, 6}), L, U, P);
  EXPECT_TRUE(Near(U, MakeMatrix(3, 2, {5, 6, 0, 0.8, 0, 0}), 1e-15));
}

TEST(Det, ExpandsAlongTheRowWithMostZeros) {
  EXPECT_EQ(Det(MakeMatrix(2, 2, {1, 2, 3, 4})), -2.0);
  EXPECT_NEAR(Det(MakeMatrix(3, 3, {1, 2, 3, 4, 5, 6, 7, 8, 10})), -3.0, 1e-14);
  EXPECT_EQ(Det(MakeMatrix(3, 3, {1, 2, 3, 4, 5, 6, 0, 0, 2})), -6.0);   // row 2, sign + first
  EXPECT_EQ(Det(MakeMatrix(3, 3, {0, 2, 0, 3, 0, 0, 0, 0, 4})), -24.0);  // row 0, sign - at 1
  EXPECT_EQ(Det(MakeMatrix(1, 1, {-7.5})), -7.5);
  EXPECT_EQ(Det(CMatrix(0, 0)), 1.0);  // the empty product
  const CMatrix A = TestRandom(23).Matrix(6, 6);
  CMatrix L, U, P;
  Lu(A, L, U, P);
  double product = Det(P);
  for (int i = 0; i < 6; ++i)
    product *= U(i, i);
  EXPECT_NEAR(Det(A), product, 1e-13);
  // A row of zeros ends the expansion before any minor is built.
  CMatrix Z = TestRandom(29).Matrix(5, 5);
  Z.SetRow(Zeros(1, 5), 3);
  AllocationScope scope;
  EXPECT_EQ(Det(Z), 0.0);
  EXPECT_EQ(scope.Count(), 0u);
}

TEST(Inv, InvertsACopyWithPartialPivoting) {
  EXPECT_TRUE(SameBits(Inv(MakeMatrix(2, 2, {2, 0, 0, 4})), MakeMatrix(2, 2, {0.5, 0, 0, 0.25})));
  EXPECT_TRUE(SameBits(Inv(MakeMatrix(1, 1, {4})), MakeMatrix(1, 1, {0.25})));
  const CMatrix perm = MakeMatrix(3, 3, {0, 0, 1, 1, 0, 0, 0, 1, 0});
  EXPECT_TRUE(SameBits(Inv(perm), Transpose(perm)));
  const CMatrix A = TestRandom(31).Matrix(6, 6), copy = A;
  EXPECT_TRUE(Near(A * Inv(A), Eye(6), 1e-12));
  EXPECT_TRUE(SameBits(A, copy));
  const CMatrix X = Inv(MakeMatrix(2, 2, {1, 2, 2, 4}));
  EXPECT_FALSE(std::isfinite(X(0) + X(1) + X(2) + X(3)));
}

}  // namespace
