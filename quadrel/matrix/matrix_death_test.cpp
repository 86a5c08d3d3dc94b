#include <sstream>

#include <gtest/gtest.h>

#include "quadrel/matrix/matrix.h"
#include "quadrel/matrix/operators.h"
#include "quadrel/matrix/stream.h"

TEST(MatrixDeath, OperandTooSmall) {
  const CMatrix A(1.0, 3, 3);
  const CMatrix B(1.0, 2, 2);
  EXPECT_DEATH(A + B,
               "quadrel: operator\\+: right operand is 2 x 2, smaller than the left operand's "
               "3 x 3");
  EXPECT_DEATH(A * B,
               "quadrel: operator\\*: right operand has 2 rows, fewer than the left operand's 3 "
               "columns");
}

TEST(MatrixDeath, IndexOutOfRange) {
  CMatrix A(0.0, 2, 3);
  EXPECT_DEATH(A(2, 0), "quadrel: operator\\(\\): index \\(2, 0\\) is outside a 2 x 3 matrix");
  EXPECT_DEATH(A(CMatrix(6.0, 1, 1)), "quadrel: operator\\(\\): index element \\(0, 0\\) = 6");
  EXPECT_DEATH(A(CMatrix(2.0, 1, 1), 0),
               "quadrel: operator\\(\\): row list element 0 is no row of a 2 x 3 matrix");
  EXPECT_DEATH(A.SwapCols(0, 3), "quadrel: SwapCols: columns 0 and 3");
}

TEST(MatrixDeath, EditsKeepTheirSources) {
  CMatrix A(0.0, 3, 3);
  EXPECT_DEATH(A.SetCol(CMatrix(1.0, 2, 1), 0), "quadrel: SetCol: source 2 x 1");
  EXPECT_DEATH(A.Sort(A), "quadrel: Sort: index must be another matrix");
}

TEST(MatrixDeath, EmptyVectorCannotBeWritten) {
  std::ostringstream out;
  EXPECT_DEATH(out << CMatrix(1, 0), "quadrel: operator<<: a 1 x 0 matrix has no element");
}
