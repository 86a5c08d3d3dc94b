// The operators walk the storage directly and the product groups its elements
// into blocks; these tests hold them to the plain element-by-element loops,
// bit for bit.
#include <cmath>
#include <vector>

#include <gtest/gtest.h>

#include "quadrel/matrix/operators.h"
#include "quadrel/testing/test_util.h"

namespace {

// Random elements with exact zeros of both signs mixed in, and the columns
// permuted through the column table when permute is set.
CMatrix Operand(TestRandom &random, int rows, int cols, bool permute) {
  CMatrix M = random.Matrix(rows, cols, -4.0, 4.0);
  for (int i = 0; i < rows; ++i)
    for (int j = 0; j < cols; ++j) {
      const double pick = random.Uniform(0.0, 1.0);
      if (pick < 0.08) M(i, j) = -0.0;
      if (pick > 0.92) M(i, j) = 0.0;
    }
  if (permute && cols > 1) {
    M.SwapCols(0, cols - 1);
    if (cols > 2) M.SwapCols(1, cols / 2);
  }
  return M;
}

struct Shape {
  int rows, inner, cols;
};

TEST(OperatorsFast, ProductMatchesElementByElementSums) {
  TestRandom random(20240611);
  // Row counts around the kernel's blocks of four, column counts around its
  // groups of four, empty and long inner sums.
  const std::vector<Shape> shapes = {{1, 1, 1},       {3, 3, 3},    {4, 4, 4},   {5, 3, 7},
                                     {8, 2, 9},       {2, 0, 3},    {0, 3, 2},   {3, 2, 0},
                                     {1, 17, 6},      {11, 5, 1},   {9, 13, 5},  {33, 31, 35},
                                     {100, 100, 100}, {3, 2000, 3}, {2000, 3, 1}};
  for (const Shape &s : shapes)
    for (bool permute : {false, true}) {
      const CMatrix A = Operand(random, s.rows, s.inner, permute);
      const CMatrix B = Operand(random, s.inner, s.cols, permute);
      EXPECT_TRUE(SameBits(A * B, LiteralProduct(A, B)))
          << s.rows << " x " << s.inner << " x " << s.cols << (permute ? " permuted" : "");
      CMatrix C = A;
      C *= B;
      EXPECT_TRUE(SameBits(C, LiteralProduct(A, B)));
    }
  // A right operand with spare rows: only the first A.cols rows count.
  const CMatrix A = Operand(random, 6, 3, false);
  const CMatrix B = Operand(random, 5, 4, true);
  EXPECT_TRUE(SameBits(A * B, LiteralProduct(A, B)));
  // Every term -0.0: the sum stays at +0.0 from its start, in every lane.
  const CMatrix negative(-0.0, 6, 5);
  const CMatrix positive(1.0, 5, 6);
  EXPECT_TRUE(SameBits(negative * positive, CMatrix(0.0, 6, 6)));
}

TEST(OperatorsFast, ElementWiseFormsMatchPlainLoops) {
  TestRandom random(77);
  for (int rows : {0, 1, 3, 7})
    for (int cols : {1, 4, 12}) {
      if (rows == 0 && cols > 9) continue;  // no such shape
      const CMatrix A = Operand(random, rows, cols, true);
      const CMatrix B = Operand(random, rows + 1, cols + 2, true);
      CMatrix sum(rows, cols), difference(rows, cols), product(rows, cols), negated(rows, cols),
          quotient(rows, cols), less(rows, cols), both(rows, cols);
      for (int i = 0; i < rows; ++i)
        for (int j = 0; j < cols; ++j) {
          sum(i, j) = A(i, j) + B(i, j);
          difference(i, j) = A(i, j) - B(i, j);
          product(i, j) = A(i, j) * B(i, j);
          negated(i, j) = -A(i, j);
          quotient(i, j) = A(i, j) / 3.0;
          less(i, j) = A(i, j) < 0.5 ? 1.0 : 0.0;
          both(i, j) = A(i, j) != 0.0 && B(i, j) != 0.0 ? 1.0 : 0.0;
        }
      EXPECT_TRUE(SameBits(A + B, sum));
      EXPECT_TRUE(SameBits(A - B, difference));
      EXPECT_TRUE(SameBits(A ^ B, product));
      EXPECT_TRUE(SameBits(-A, negated));
      EXPECT_TRUE(SameBits(A / 3.0, quotient));
      EXPECT_TRUE(SameBits(A < 0.5, less));
      EXPECT_TRUE(SameBits(A && B, both));
      CMatrix C = A;
      C -= B;
      EXPECT_TRUE(SameBits(C, difference));
      // B is A itself: each element is read just before it is written.
      C = A;
      C += C;
      EXPECT_TRUE(SameBits(C, A + A));
    }
}

}  // namespace
