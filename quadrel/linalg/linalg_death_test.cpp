#include <gtest/gtest.h>

#include "quadrel/functions/constructors.h"
#include "quadrel/linalg/direct.h"
#include "quadrel/linalg/least_squares.h"
#include "quadrel/linalg/polynomial.h"
#include "quadrel/linalg/svd.h"
#include "quadrel/testing/test_util.h"

namespace {

TEST(LinalgDeathTest, DirectMethodsNeedSquareMatricesAndDistinctOutputs) {
  EXPECT_DEATH(Det(Zeros(2, 3)), "quadrel: Det: needs a square matrix, got 2 x 3");
  EXPECT_DEATH(Inv(Zeros(3, 2)), "quadrel: Inv: needs a square matrix, got 3 x 2");
  CMatrix L, U;
  EXPECT_DEATH(Lu(Eye(2), L, L, U), "quadrel: Lu: L, U and P must be three different matrices");
}

TEST(LinalgDeathTest, SvdOutputsMustBeDistinct) {
  CMatrix A = Eye(2), U, V;
  EXPECT_DEATH(Svd(A, U, A, V), "quadrel: Svd: S and V must not be the input matrix");
  EXPECT_DEATH(Svd(Eye(2), U, V, V), "quadrel: Svd: U, S and V must be three different");
}

TEST(LinalgDeathTest, RightHandSidesNeedTheSystemsRowCount) {
  CMatrix x;
  EXPECT_DEATH(Lsq(Eye(3), MakeCol({1, 2}), x),
               "quadrel: Lsq: right-hand side has 2 x 1, needs the 3 rows of the system 3 x 3");
  EXPECT_DEATH(Polyfit(MakeCol({0, 1, 2}), MakeRow({1, 2, 3}), 1),
               "quadrel: Polyfit: ordinates are 1 x 3, need one row per abscissa \\(3\\)");
  EXPECT_DEATH(Polyfit(MakeCol({0, 1, 2}), MakeCol({1, 2, 3}), -1),
               "quadrel: Polyfit: degree -1 is negative");
  EXPECT_DEATH(Polyval(Zeros(2, 2), MakeCol({1})),
               "quadrel: Polyval: coefficients must be a vector, got 2 x 2");
}

}  // namespace
