#include "quadrel/functions/rearrange.h"

#include <gtest/gtest.h>

#include "quadrel/testing/test_util.h"

namespace {

const CMatrix k3x2 = MakeMatrix(3, 2, {1, 2, 3, 4, 5, 6});

TEST(Rearrange, CutsAndJoinsKeepOrientation) {
  EXPECT_TRUE(SameBits(Col(k3x2, 1), MakeCol({2, 4, 6})));
  EXPECT_TRUE(SameBits(Row(k3x2, 2), MakeRow({5, 6})));
  // The first operand sets the shape; surplus rows or columns of B are ignored.
  EXPECT_TRUE(
      SameBits(ColCat(MakeCol({1, 2}), MakeCol({3, 4, 5})), MakeMatrix(2, 2, {1, 3, 2, 4})));
  EXPECT_TRUE(SameBits(RowCat(MakeRow({1}), k3x2), MakeCol({1, 1, 3, 5})));
  EXPECT_TRUE(SameBits(RowCat(CMatrix(0, 3), MakeRow({1, 2, 3})), MakeRow({1, 2, 3})));
}

TEST(Rearrange, ExcludeDropsExactlyOneRowOrColumn) {
  EXPECT_TRUE(SameBits(ExcludeRow(k3x2, 2), MakeMatrix(2, 2, {1, 2, 3, 4})));
  EXPECT_TRUE(SameBits(ExcludeCol(k3x2, 0), MakeCol({2, 4, 6})));
  EXPECT_TRUE(SameBits(ExcludeRow(MakeRow({1, 2, 3}), 0), CMatrix(0, 3)));
  const CMatrix square = MakeMatrix(3, 3, {1, 2, 3, 4, 5, 6, 7, 8, 9});
  EXPECT_TRUE(SameBits(Exclude(square, 1, 1), MakeMatrix(2, 2, {1, 3, 7, 9})));
  EXPECT_TRUE(SameBits(Exclude(square, 0, 2), MakeMatrix(2, 2, {4, 5, 7, 8})));
}

TEST(Rearrange, FlipsAndTransposeLeaveTheArgumentAlone) {
  EXPECT_TRUE(SameBits(Flipud(k3x2), MakeMatrix(3, 2, {5, 6, 3, 4, 1, 2})));
  EXPECT_TRUE(SameBits(Fliplr(MakeMatrix(2, 5, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10})),
                       MakeMatrix(2, 5, {5, 4, 3, 2, 1, 10, 9, 8, 7, 6})));
  EXPECT_TRUE(SameBits(Transpose(k3x2), MakeMatrix(2, 3, {1, 3, 5, 2, 4, 6})));
  EXPECT_TRUE(SameBits(k3x2, MakeMatrix(3, 2, {1, 2, 3, 4, 5, 6})));
}

TEST(Sort, SortsARowAlongItsLengthAndAMatrixByColumns) {
  CMatrix index(7.0, 4, 4);
  const CMatrix row = MakeRow({3, 1, 2});
  EXPECT_TRUE(SameBits(Sort(row, index), MakeRow({1, 2, 3})));
  EXPECT_TRUE(SameBits(index, MakeRow({1, 2, 0})));
  EXPECT_TRUE(SameBits(row, MakeRow({3, 1, 2})));
  EXPECT_TRUE(SameBits(Sort(MakeCol({3, 1, 2}), index), MakeCol({1, 2, 3})));
  // Rows are not kept together.
  EXPECT_TRUE(
      SameBits(Sort(MakeMatrix(2, 2, {2, 1, 1, 2}), index), MakeMatrix(2, 2, {1, 1, 2, 2})));
  EXPECT_TRUE(SameBits(index, MakeMatrix(2, 2, {1, 0, 0, 1})));
}

}  // namespace
