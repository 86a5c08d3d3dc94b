// The operators walk the storage directly and the product groups its elements
// into blocks; these tests hold them to the plain element-by-element loops,
// bit for bit.
#include <vector>

#include <gtest/gtest.h>

#include "quadrel/matrix/operators.h"
#include "quadrel/testing/test_util.h"

namespace {

// Random elements with exact zeros of both signs mixed in, and the columns
// permuted through the column table when permute is set.
CMatrix Operand(TestRandom &random, int rows, int cols, bool permute) {
  CMatrix M = random.Matrix(rows, cols, -4.0, 4.0);
  for (int k = 0; k < rows * cols; ++k) {
    const double pick = random.Uniform(0.0, 1.0);
    if (pick < 0.08 || pick > 0.92) M(k) = pick < 0.08 ? -0.0 : 0.0;
  }
  if (permute && cols > 1) M.SwapCols(0, cols - 1);
  if (permute && cols > 2) M.SwapCols(1, cols / 2);
  return M;
}

TEST(OperatorsFast, ProductMatchesElementByElementSums) {
  TestRandom random(20240611);
  // Row counts around the kernel's blocks of four, column counts around its
  // groups of four, empty and long inner sums.
  const int shapes[][3] = {{1, 1, 1},    {4, 4, 4},       {5, 3, 7},    {8, 2, 9},   {2, 0, 3},
                           {0, 3, 2},    {3, 2, 0},       {1, 17, 6},   {11, 5, 1},  {9, 13, 5},
                           {33, 31, 35}, {100, 100, 100}, {3, 2000, 3}, {2000, 3, 1}};
  for (const auto &s : shapes)
    for (bool permute : {false, true}) {
      // The permuted right operands have a spare row, which must not count.
      const CMatrix A = Operand(random, s[0], s[1], permute);
      const CMatrix B = Operand(random, s[1] + permute, s[2], permute);
      CMatrix C = A;
      C *= B;
      EXPECT_TRUE(SameBits(A * B, LiteralProduct(A, B))) << s[0] << " x " << s[1] << " x " << s[2];
      EXPECT_TRUE(SameBits(C, LiteralProduct(A, B)));
    }
  // Every term -0.0: the sum stays at +0.0 from its start, in every lane.
  EXPECT_TRUE(SameBits(CMatrix(-0.0, 6, 5) * CMatrix(1.0, 5, 6), CMatrix(0.0, 6, 6)));
}

TEST(OperatorsFast, ElementWiseFormsMatchPlainLoops) {
  TestRandom random(77);
  for (int rows : {0, 1, 3, 13})
    for (int cols : {1, 4, 9}) {
      const CMatrix A = Operand(random, rows, cols, true);
      const CMatrix B = Operand(random, rows + 1, cols + 2, true);  // spare rows and columns
      auto plain = [&](double (*f)(double, double)) {
        CMatrix R(rows, cols);
        for (int i = 0; i < rows; ++i)
          for (int j = 0; j < cols; ++j)
            R(i, j) = f(A(i, j), B(i, j));
        return R;
      };
      EXPECT_TRUE(SameBits(A + B, plain([](double a, double b) { return a + b; })));
      EXPECT_TRUE(SameBits(A - B, plain([](double a, double b) { return a - b; })));
      EXPECT_TRUE(SameBits(A ^ B, plain([](double a, double b) { return a * b; })));
      EXPECT_TRUE(SameBits(-A, plain([](double a, double) { return -a; })));
      EXPECT_TRUE(SameBits(A / 3.0, plain([](double a, double) { return a / 3.0; })));
      EXPECT_TRUE(SameBits(A < 0.5, plain([](double a, double) { return a < 0.5 ? 1.0 : 0.0; })));
      EXPECT_TRUE(SameBits(
          A && B, plain([](double a, double b) { return a != 0.0 && b != 0.0 ? 1.0 : 0.0; })));
      CMatrix C = A;
      C -= B;
      EXPECT_TRUE(SameBits(C, A - B));
      // B is A itself: each element is read just before it is written.
      C = A;
      C += C;
      EXPECT_TRUE(SameBits(C, A + A));
    }
}

}  // namespace
