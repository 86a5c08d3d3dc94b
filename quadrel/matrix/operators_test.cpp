#include "quadrel/matrix/operators.h"

#include <cmath>

#include <gtest/gtest.h>

#include "quadrel/testing/test_util.h"

TEST(Operators, StarIsTheProductAndCaretElementWise) {
  EXPECT_TRUE(SameBits(MakeRow({2, 3}) ^ MakeRow({4, 5}), MakeRow({8, 15})));
  const CMatrix A = MakeMatrix(2, 3, {1, 2, 3, 4, 5, 6});
  const CMatrix B = MakeMatrix(3, 4, {1, 0, 2, -1, 0, 1, 3, 2, 1, 1, 0, 4});
  EXPECT_TRUE(SameBits(A * B, MakeMatrix(2, 4, {4, 5, 8, 15, 10, 11, 23, 30})));
  // Rows of B beyond A's columns are ignored; an empty inner dimension gives zeros.
  EXPECT_TRUE(SameBits(A * MakeMatrix(4, 2, {1, 2, 3, 4, 5, 6, 100, 100}),
                       MakeMatrix(2, 2, {22, 28, 49, 64})));
  EXPECT_TRUE(SameBits(CMatrix(2, 0) * CMatrix(0, 3), CMatrix(0.0, 2, 3)));
  // A plain running sum in rising k from +0.0: 1e16 + 1 loses the 1, and a
  // -0.0 term gives +0.0.
  const CMatrix ones = MakeCol({1, 1, 1});
  EXPECT_EQ((MakeRow({1e16, 1, -1e16}) * ones)(0), 0.0);
  EXPECT_EQ((MakeRow({1e16, -1e16, 1}) * ones)(0), 1.0);
  EXPECT_FALSE(std::signbit((MakeRow({-0.0}) * MakeCol({1.0}))(0)));
  // No term is skipped for a zero factor (inf * 0 is NaN), on either route:
  // fewer than four rows, or the kernel's blocks of four.
  for (const int rows : {2, 4}) {
    CMatrix A(rows, 2), expected(rows, 2);
    for (int i = 0; i < rows; ++i) {
      A.SetRow(i % 2 ? MakeRow({2, INFINITY}) : MakeRow({0, 1}), i);
      expected.SetRow(i % 2 ? MakeRow({INFINITY, NAN}) : MakeRow({NAN, 0}), i);
    }
    EXPECT_TRUE(SameValues(A * MakeMatrix(2, 2, {INFINITY, 1, 1, 0}), expected)) << rows;
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

TEST(Operators, ReadOperandsThroughTheColumnTable) {
  CMatrix A = MakeMatrix(2, 3, {1, 2, 3, 4, 5, 6});
  A.SwapCols(0, 2);
  const CMatrix seen = MakeMatrix(2, 3, {3, 2, 1, 6, 5, 4});
  EXPECT_TRUE(SameBits(A + 0.0, seen));
  EXPECT_TRUE(SameBits(MakeRow({1, 0}) * A, MakeRow({3, 2, 1})));
  A += 1.0;
  EXPECT_TRUE(SameBits(A, seen + 1.0));
}
