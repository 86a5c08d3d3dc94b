#include <gtest/gtest.h>

#include "quadrel/functions/constructors.h"
#include "quadrel/functions/rearrange.h"
#include "quadrel/functions/reductions.h"

namespace {

TEST(FunctionsDeath, IndexOutsideTheMatrix) {
  const CMatrix a(1.0, 3, 2);
  EXPECT_DEATH(Col(a, 2), "quadrel: Col: column 2 is outside a 3 x 2 matrix");
  EXPECT_DEATH(ExcludeRow(a, 3), "quadrel: ExcludeRow: row 3 is outside a 3 x 2 matrix");
  EXPECT_DEATH(Exclude(a, 0, 5), "quadrel: Exclude: row 0 or column 5 is outside");
}

TEST(FunctionsDeath, OperandTooSmallOrEmpty) {
  EXPECT_DEATH(ColCat(CMatrix(1.0, 3, 1), CMatrix(1.0, 2, 4)),
               "quadrel: ColCat: right operand is 2 x 4, fewer rows than the left operand's 3 x 1");
  EXPECT_DEATH(Min(CMatrix(0, 2)), "quadrel: Min: no element to compare in a 0 x 2 matrix");
}

TEST(FunctionsDeath, AliasedOutputNullFunctionOrHugeRange) {
  CMatrix a(1.0, 2, 2);
  EXPECT_DEATH(Find(a, a), "quadrel: Find: index must be another matrix");
  EXPECT_DEATH(Eval(a, nullptr), "quadrel: Eval: the function to apply is null");
  EXPECT_DEATH(Seq(0.0, 1e300, 1.0), "quadrel: Seq: .* has too many elements");
}

}  // namespace
