#include "quadrel/linalg/svd.h"

#include <cmath>
#include <utility>

#include <gtest/gtest.h>

#include "quadrel/functions/constructors.h"
#include "quadrel/functions/rearrange.h"
#include "quadrel/linalg/internal/svd_core.h"
#include "quadrel/linalg/least_squares.h"
#include "quadrel/matrix/internal/contract.h"
#include "quadrel/matrix/operators.h"
#include "quadrel/testing/alloc_counter.h"
#include "quadrel/testing/test_util.h"

namespace {

// The engine's other scalar helpers are held to the literal engine in
// svd_fast_test.cpp, whose results do not tell how MaxDouble treats NaN.
TEST(SvdCore, MaxDoublePicksTheFirstOnlyWhenGreater) {
  EXPECT_EQ(MaxDouble(NAN, 1.0), 1.0);
  EXPECT_TRUE(std::isnan(MaxDouble(1.0, NAN)));
}

TEST(Svd, LeavesSingularValuesUnsorted) {
  CMatrix U, S, V;
  EXPECT_NEAR(Svd(MakeMatrix(3, 2, {1, 2, 3, 4, 5, 6}), U, S, V), 18.52, 1e-2);
  EXPECT_TRUE(Near(S, MakeMatrix(2, 2, {0.5143, 0, 0, 9.5255}), 1e-4));
  EXPECT_NEAR(Svd(MakeMatrix(2, 2, {1, 2, 3, 4}), U, S, V), 14.93, 1e-2);
  EXPECT_TRUE(Near(S, MakeMatrix(2, 2, {0.3660, 0, 0, 5.4650}), 1e-4));
}

TEST(Svd, DiagonalMatricesGiveNegativeIdentityFactors) {
  CMatrix U, S, V;
  EXPECT_EQ(Svd(MakeMatrix(3, 3, {2, 0, 0, 0, 3, 0, 0, 0, 1}), U, S, V), 3.0);
  EXPECT_TRUE(SameBits(S, MakeMatrix(3, 3, {2, 0, 0, 0, 3, 0, 0, 0, 1})));
  // Equal in value; zeros off the diagonal may carry either sign.
  EXPECT_TRUE(Near(U, -Eye(3), 0.0) && Near(V, -Eye(3), 0.0));
  // A negative value is made positive by flipping V's column alone.
  Svd(MakeMatrix(1, 1, {-3}), U, S, V);
  EXPECT_TRUE(SameBits(ColCat(ColCat(U, S), V), MakeRow({-1, 3, 1})));
  EXPECT_DOUBLE_EQ(Svd(MakeCol({3, 4}), U, S, V), 1.0);
  EXPECT_TRUE(Near(U, MakeCol({-0.6, -0.8}), 1e-15) && Near(S, MakeRow({5}), 1e-15));
}

TEST(Svd, ConditionNumberOfSingularAndExtremeMatrices) {
  CMatrix U, S, V;
  // Nothing is transformed in a zero matrix: step by step a stays the identity.
  EXPECT_EQ(Svd(Zeros(3, 2), U, S, V), INFINITY);
  EXPECT_TRUE(SameBits(S, Zeros(2)) && SameBits(V, Eye(2)) && SameBits(U, Eye(3, 2)));
  EXPECT_EQ(Svd(Ones(2), U, S, V), INFINITY);
  // Rank decisions are left to the caller: a tiny value gives a finite result.
  const double r = Svd(MakeMatrix(3, 3, {1, 2, 3, 4, 5, 6, 7, 8, 9}), U, S, V);
  EXPECT_TRUE(Near(Diag(S), MakeCol({16.848, 1.0684, 0}), 1e-3));
  EXPECT_TRUE(r > 1e15 && r < INFINITY);
  // The extremes start at 1e25 (smallest) and 1e-25 (largest) and show through.
  EXPECT_NEAR(Svd(1e-30 * Eye(2), U, S, V), 1e5, 1e-10);
  EXPECT_NEAR(Svd(1e30 * Eye(2), U, S, V), 1e5, 1e-10);
  EXPECT_NEAR(Svd(Zeros(3, 0), U, S, V), 1e-50, 1e-60);
  EXPECT_EQ(QuadrelDims(U) + ", " + QuadrelDims(S) + ", " + QuadrelDims(V), "3 x 0, 0 x 0, 0 x 0");
}

TEST(Svd, SmallMatricesStayOffTheHeapAndAllocationsOfSvdAndLsqDoNotGrowWithRows) {
  TestRandom random(3);
  // Allocations of a second call, whose outputs have their shape already.
  auto count = [&random](int rows) {
    const CMatrix A = random.Matrix(rows, 3), b = random.Matrix(rows, 1);
    CMatrix U, S, V, x;
    Svd(A, U, S, V);
    Lsq(A, b, x);
    AllocationScope scope;
    Svd(A, U, S, V);
    const std::size_t svd = scope.Count();
    Lsq(A, b, x);
    return std::make_pair(svd, scope.Count() - svd);
  };
  EXPECT_EQ(count(3).first, 0u);
  EXPECT_EQ(count(100), count(10000));
}

}  // namespace
