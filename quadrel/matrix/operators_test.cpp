#include "quadrel/matrix/operators.h"

#include <cmath>

#include <gtest/gtest.h>

#include "quadrel/testing/test_util.h"

// Order, signed zeros, spare rows and permuted operands of the product are
// held to the literal product in operators_fast_test.cpp.
TEST(Operators, StarIsTheMatrixProductAndSkipsNoTerm) {
  const CMatrix A = MakeMatrix(2, 3, {1, 2, 3, 4, 5, 6});
  const CMatrix B = MakeMatrix(3, 4, {1, 0, 2, -1, 0, 1, 3, 2, 1, 1, 0, 4});
  EXPECT_TRUE(SameBits(A * B, MakeMatrix(2, 4, {4, 5, 8, 15, 10, 11, 23, 30})));
  // No term is skipped for a zero factor (inf * 0 is NaN), on either route:
  // fewer than four rows, or the kernel's blocks of four.
  for (const int rows : {2, 4}) {
    CMatrix Z(rows, 2), expected(rows, 2);
    for (int i = 0; i < rows; ++i) {
      Z.SetRow(i % 2 ? MakeRow({2, INFINITY}) : MakeRow({0, 1}), i);
      expected.SetRow(i % 2 ? MakeRow({INFINITY, NAN}) : MakeRow({NAN, 0}), i);
    }
    EXPECT_TRUE(SameValues(Z * MakeMatrix(2, 2, {INFINITY, 1, 1, 0}), expected)) << rows;
  }
}

TEST(Operators, OneByOneIsNoScalar) {
  const CMatrix one = MakeRow({2});
  const CMatrix B = MakeMatrix(3, 3, {1, 2, 3, 4, 5, 6, 7, 8, 9});
  EXPECT_TRUE(SameBits(one * B, MakeRow({2, 4, 6})));
  EXPECT_TRUE(SameBits(one + B, MakeRow({3})));
  // A larger right operand is cut to the left operand's shape.
  EXPECT_TRUE(SameBits(MakeMatrix(2, 2, {1, 1, 1, 1}) - B, MakeMatrix(2, 2, {0, -1, -3, -4})));
}

TEST(Operators, ScalarForms) {
  const CMatrix A = MakeRow({1, -2, 0});
  EXPECT_TRUE(SameBits(2.0 - A, MakeRow({1, 4, 2})));
  EXPECT_TRUE(SameBits(A - 2.0, MakeRow({-1, -4, -2})));
  EXPECT_TRUE(SameBits(2.0 + A * 3.0, MakeRow({5, -4, 2})));
  EXPECT_TRUE(SameBits(A / 4.0, MakeRow({0.25, -0.5, 0})));
  EXPECT_TRUE(SameBits(-A, MakeRow({-1, 2, -0.0})));
  EXPECT_EQ(&(+A), &A);
}

TEST(Operators, InPlaceFormsWorkWhereElementsStand) {
  CMatrix A = MakeMatrix(2, 2, {1, 2, 3, 4});
  A += A;
  A += 1.0;
  A -= 0.5;
  A *= 2.0;
  A /= 4.0;
  EXPECT_TRUE(SameBits(A, MakeMatrix(2, 2, {1.25, 2.25, 3.25, 4.25})));
  A += MakeMatrix(3, 3, {1, 1, 9, 1, 1, 9, 9, 9, 9});
  A -= MakeMatrix(2, 3, {0.25, 0.25, 9, 0.25, 0.25, 9});
  EXPECT_TRUE(SameBits(A, MakeMatrix(2, 2, {2, 3, 4, 5})));
  EXPECT_EQ(&(A -= A), &A);
  EXPECT_TRUE(SameBits(A, CMatrix(0.0, 2, 2)));
  // The product may change the shape and may take itself.
  CMatrix D = MakeMatrix(3, 3, {1, 0, 0, 0, 2, 0, 0, 0, 3});
  D *= MakeCol({1, 1, 1});
  EXPECT_TRUE(SameBits(D, MakeCol({1, 2, 3})));
  CMatrix S = MakeMatrix(2, 2, {1, 1, 0, 1});
  S *= S;
  EXPECT_TRUE(SameBits(S, MakeMatrix(2, 2, {1, 2, 0, 1})));
}

TEST(Operators, ComparisonsAndLogicGiveMasks) {
  const CMatrix A = MakeRow({1, 2, 3, NAN});
  EXPECT_TRUE(SameBits(A > 2.0, MakeRow({0, 0, 1, 0})));
  EXPECT_TRUE(SameBits(A >= 2.0, MakeRow({0, 1, 1, 0})));
  EXPECT_TRUE(SameBits(A == 2.0, MakeRow({0, 1, 0, 0})));
  EXPECT_TRUE(SameBits(A != 2.0, MakeRow({1, 0, 1, 1})));
  EXPECT_TRUE(SameBits(A < 2.0, MakeRow({1, 0, 0, 0})));
  EXPECT_TRUE(SameBits(A <= 2.0, MakeRow({1, 1, 0, 0})));
  // -0.0 is false; NaN is non-zero and so true.
  const CMatrix P = MakeRow({0.0, -0.0, 3, 0, NAN});
  const CMatrix Q = MakeRow({-0.0, 5, -1, 2, 0});
  EXPECT_TRUE(SameBits(P && Q, MakeRow({0, 0, 1, 0, 0})));
  EXPECT_TRUE(SameBits(P || Q, MakeRow({0, 1, 1, 1, 1})));
}

TEST(Operators, EmptyShapesPassThrough) {
  for (const int rows : {0, 4}) {
    const CMatrix E(rows, 4 - rows);
    const CMatrix results[] = {E + E, E ^ E, E + 1.0, 2.0 - E, E / 0.0, -E, E > 1.0, E || E};
    for (const CMatrix &R : results)
      EXPECT_TRUE(SameBits(R, E));
  }
}
