#include "quadrel/matrix/matrix.h"

#include <gtest/gtest.h>

#include "quadrel/matrix/internal/access.h"
#include "quadrel/testing/alloc_counter.h"
#include "quadrel/testing/test_util.h"

namespace {

bool TableIsIdentity(CMatrix &m) {
  for (int j = 0; j < m.GetCols(); ++j)
    if (CMatrixAccess::Table(m)[j] != CMatrixAccess::Data(m) + j * m.GetRows()) return false;
  return true;
}

}  // namespace

TEST(Matrix, ShapeAndIndexing) {
  const CMatrix one;
  EXPECT_EQ(one.GetRows() * 10 + one.GetCols(), 11);
  // The longer side, never the element count.
  EXPECT_EQ(CMatrix(3, 7).GetLength(), 7);
  EXPECT_EQ(CMatrix(7, 3).GetLength(), 7);
  const double flat[] = {1, 2, 3, 4, 5, 6};
  const CMatrix A(flat, 2, 3);
  EXPECT_EQ(A(0, 2), 3.0);
  EXPECT_EQ(A(1, 0), 4.0);
  // The linear index runs along the rows although storage runs down columns.
  EXPECT_EQ(A(4), 5.0);
  const double *rows[] = {flat, flat + 3};
  EXPECT_TRUE(SameBits(CMatrix(rows, 2, 3), A));
}

TEST(Matrix, KeepsUpToNineElementsInTheObject) {
  const int shapes[][3] = {{3, 3, 0},  {1, 9, 0}, {9, 1, 0}, {0, 0, 0},
                           {12, 0, 0}, {2, 5, 1}, {1, 10, 1}};
  for (const auto &shape : shapes) {
    AllocationScope scope;
    CMatrix m(shape[0], shape[1]);
    CMatrix copy(m);
    copy = m;
    // A column table and a data block for the matrix and again for its copy;
    // the assignment reuses them.
    EXPECT_EQ(scope.Count(), 4u * shape[2]) << shape[0] << " x " << shape[1];
    EXPECT_EQ(CMatrixAccess::OnHeap(m), shape[2] > 0) << shape[0] << " x " << shape[1];
  }
}

TEST(Matrix, AssignmentReusesBlocksWhileTheCountAllows) {
  TestRandom random(7);
  CMatrix target = random.Matrix(5, 5), big = random.Matrix(5, 5);
  double *data = CMatrixAccess::Data(target);
  const CMatrix row = random.Matrix(1, 25), small = random.Matrix(2, 2);
  const CMatrix twelve = random.Matrix(4, 3), sixteen = random.Matrix(4, 4);
  AllocationScope scope;
  // A 1 x 25 shape needs 25 column pointers from a table made for 5 x 5.
  target = row;
  EXPECT_EQ(scope.Count(), 0u);
  EXPECT_EQ(CMatrixAccess::Data(target), data);
  EXPECT_TRUE(SameBits(target, row));
  // Four elements go back into the object and free the blocks.
  target = small;
  EXPECT_FALSE(CMatrixAccess::OnHeap(target));
  target = twelve;
  EXPECT_EQ(scope.Count(), 2u);
  // 16 > 12: the decision looks at the current count only, not at the block.
  big = twelve;
  EXPECT_EQ(scope.Count(), 2u);
  big = sixteen;
  EXPECT_EQ(scope.Count(), 4u);
  EXPECT_TRUE(SameBits(big, sixteen));
}

TEST(Matrix, CopiesCarryTheColumnOrder) {
  // In the object and on the heap.
  for (const int rows : {2, 4}) {
    CMatrix m = MakeMatrix(rows, 3, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12});
    const CMatrix original(m);
    m.SwapCols(0, 1);
    const CMatrix before(m);
    CMatrix &alias = m;
    m = alias;
    EXPECT_TRUE(SameBits(m, before));
    CMatrix copy(m), assigned(5, 5);
    assigned = m;
    for (int i = 0; i < rows; ++i)
      EXPECT_TRUE(copy(i, 0) == original(i, 1) && copy(i, 1) == original(i, 0)) << i;
    EXPECT_TRUE(SameBits(assigned, copy));
    EXPECT_FALSE(TableIsIdentity(copy));

    double **buffer = m.GetBuffer2D();
    CMatrix rebuilt(buffer, rows, 3);
    for (int i = 0; i < rows; ++i)
      ::operator delete(buffer[i]);
    ::operator delete(buffer);
    EXPECT_TRUE(SameBits(rebuilt, m));
    EXPECT_TRUE(TableIsIdentity(rebuilt));
  }
  ::operator delete(CMatrix(0, 0).GetBuffer2D());
}
