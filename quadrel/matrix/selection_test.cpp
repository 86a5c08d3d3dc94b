#include <gtest/gtest.h>

#include "quadrel/matrix/internal/access.h"
#include "quadrel/matrix/matrix.h"
#include "quadrel/testing/alloc_counter.h"
#include "quadrel/testing/test_util.h"

namespace {

// 3 x 4 with element (i, j) = 10 i + j.
CMatrix Grid() {
  return MakeMatrix(3, 4, {0, 1, 2, 3, 10, 11, 12, 13, 20, 21, 22, 23});
}

bool TableIsIdentity(CMatrix &m) {
  for (int j = 0; j < m.GetCols(); ++j)
    if (CMatrixAccess::Table(m)[j] != CMatrixAccess::Data(m) + j * m.GetRows()) return false;
  return true;
}

}  // namespace

TEST(Selection, LinearIndexTruncatesAndListsFollowTheColumnTable) {
  CMatrix A = Grid();
  EXPECT_TRUE(SameBits(A(MakeRow({1, 5})), MakeRow({1, 11})));
  EXPECT_TRUE(SameBits(A(MakeCol({1, 5})), MakeCol({1, 11})));
  // Towards zero: 2.9 is 2, -0.5 is 0, 11.99 is 11.
  EXPECT_TRUE(
      SameBits(A(MakeMatrix(2, 2, {2.9, -0.5, 11.99, 4})), MakeMatrix(2, 2, {2, 0, 23, 10})));
  EXPECT_EQ(A(CMatrix(0, 3)).GetCols(), 3);
  EXPECT_TRUE(SameBits(A(MakeRow({2.9, 0.1}), 1), MakeCol({21, 1})));
  EXPECT_TRUE(SameBits(A(1, MakeCol({0, 0})), MakeRow({10, 10})));
  // A 2 x 2 list has length 2 and is read along its first row.
  const CMatrix square = MakeMatrix(2, 2, {2, 1, 0, 3});
  EXPECT_TRUE(SameBits(A(square, square), MakeMatrix(2, 2, {22, 21, 12, 11})));
  // Empty lists give empty results of the matching orientation.
  const CMatrix none(0, 0);
  EXPECT_EQ(A(none, 1).GetCols() * 10 + A(none, 1).GetRows(), 10);
  EXPECT_EQ(A(MakeRow({0, 1, 2}), none).GetRows(), 3);
  A.SwapCols(0, 3);
  EXPECT_TRUE(SameBits(A(MakeRow({0, 5})), MakeRow({3, 11})));
  EXPECT_TRUE(SameBits(A(MakeRow({0}), MakeRow({3, 0})), MakeRow({0, 3})));
}

TEST(Edit, SetColAndSetRowReadTheFirstColumnOrRow) {
  CMatrix A(0.0, 3, 5);
  A.SetCol(MakeMatrix(3, 2, {1, 9, 2, 9, 3, 9}), 4);
  A.SetRow(MakeMatrix(2, 6, {-1, -2, -3, -4, -5, -6, 9, 9, 9, 9, 9, 9}), 1);
  // Through the table: column 0 as seen after a swap is what changes.
  A.SwapCols(0, 4);
  A.SetCol(MakeCol({7, 7, 7, 7}), 0);
  A.SetRow(MakeRow({1, 2, 3, 4, 5}), 2);
  EXPECT_TRUE(SameBits(A, MakeMatrix(3, 5, {7, 0, 0, 0, 0, 7, -2, -3, -4, -1, 1, 2, 3, 4, 5})));
}

TEST(Edit, SwapsExchangeTableEntriesAndRows) {
  CMatrix A = Grid();
  A.SwapRows(0, 2);
  A.SwapRows(1, 1);
  double *data = CMatrixAccess::Data(A);
  const double first = data[0];
  A.SwapCols(1, 3);
  A.SwapCols(2, 2);
  EXPECT_TRUE(SameBits(A, MakeMatrix(3, 4, {20, 23, 22, 21, 10, 13, 12, 11, 0, 3, 2, 1})));
  // Only the table changed; SwapRows walks the columns as the table gives them.
  EXPECT_EQ(data[0], first);
  A.SwapRows(0, 1);
  EXPECT_TRUE(SameBits(A, MakeMatrix(3, 4, {10, 13, 12, 11, 20, 23, 22, 21, 0, 3, 2, 1})));
}

TEST(Edit, ResizeAndTransposeKeepPositionsAndResetTheTable) {
  CMatrix A = MakeMatrix(3, 3, {1, 2, 3, 4, 5, 6, 7, 8, 9});
  A.Resize(2, 2);
  A.Resize(3, 3);
  EXPECT_TRUE(SameBits(A, MakeMatrix(3, 3, {1, 2, 0, 4, 5, 0, 0, 0, 0})));
  // No reshape: nothing reflows into the new shape.
  CMatrix B = MakeMatrix(2, 3, {1, 2, 3, 4, 5, 6});
  B.SwapCols(0, 2);
  B.Resize(3, 2);
  EXPECT_TRUE(SameBits(B, MakeMatrix(3, 2, {3, 2, 6, 5, 0, 0})));
  EXPECT_TRUE(TableIsIdentity(B));
  CMatrix C = MakeMatrix(2, 3, {1, 2, 3, 4, 5, 6});
  C.SwapCols(0, 1);
  C.Transpose();
  EXPECT_TRUE(SameBits(C, MakeMatrix(3, 2, {2, 5, 1, 4, 3, 6})));
  EXPECT_TRUE(TableIsIdentity(C));
}

TEST(Edit, ResizeAndTransposeFollowTheStorageRules) {
  CMatrix A(1.0, 3, 3);
  A.Resize(2, 5);
  double *data = CMatrixAccess::Data(A);
  A.Resize(5, 2);
  EXPECT_EQ(CMatrixAccess::Data(A), data);
  A.Resize(3, 3);
  EXPECT_FALSE(CMatrixAccess::OnHeap(A));
  {
    AllocationScope scope;
    A.Transpose();
    EXPECT_EQ(scope.Count(), 0u);
  }
  // The table made for 8 x 2 serves the 8 columns of the transpose.
  CMatrix tall = TestRandom(11).Matrix(8, 2);
  const CMatrix before(tall);
  data = CMatrixAccess::Data(tall);
  tall.Transpose();
  EXPECT_EQ(CMatrixAccess::Data(tall), data);
  ASSERT_EQ(tall.GetCols(), 8);
  for (int j = 0; j < 8; ++j)
    EXPECT_EQ(tall(1, j), before(j, 1));
}
