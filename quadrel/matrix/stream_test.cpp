#include "quadrel/matrix/stream.h"

#include <iomanip>
#include <sstream>

#include <gtest/gtest.h>

#include "quadrel/testing/test_util.h"

namespace {

std::string Written(const CMatrix &A) {
  std::ostringstream out;
  out << A;
  return out.str();
}

}  // namespace

TEST(Stream, WritesVectorsOnOneLine) {
  EXPECT_EQ(Written(MakeRow({1, 2, 3})), "[ 1 2 3 ];");
  EXPECT_EQ(Written(MakeCol({1, 2, 3})), "[ 1 2 3 ]';");
  EXPECT_EQ(Written(MakeRow({5})), "[ 5 ];");
  EXPECT_EQ(Written(MakeRow({-0.5, 1e20})), "[ -0.5 1e+20 ];");
}

TEST(Stream, WritesMatricesRowByRow) {
  EXPECT_EQ(Written(MakeMatrix(2, 2, {1, 2, 3, 4})), "[ 1 2; ...\n3 4 ];");
  EXPECT_EQ(Written(MakeMatrix(3, 2, {1, 2, 3, 4, 5, 6})), "[ 1 2; ...\n3 4; ...\n5 6 ];");
  CMatrix swapped = MakeMatrix(2, 3, {1, 2, 3, 4, 5, 6});
  swapped.SwapCols(0, 2);
  EXPECT_EQ(Written(swapped), "[ 3 2 1; ...\n6 5 4 ];");
}

TEST(Stream, EmptyShapes) {
  // With no row nothing closes the bracket.
  EXPECT_EQ(Written(CMatrix(0, 0)), "[ ");
  EXPECT_EQ(Written(CMatrix(0, 4)), "[ ");
  EXPECT_EQ(Written(CMatrix(3, 0)), "[ ; ...\n; ...\n ];");
  EXPECT_EQ(Written(CMatrix(2, 0)), "[ ; ...\n ];");
}

TEST(Stream, UsesTheStreamSettingsAndReturnsTheStream) {
  std::ostringstream out;
  out << std::fixed << std::setprecision(2);
  std::ostream &result = out << MakeRow({1.0 / 3, 2}) << "|";
  EXPECT_EQ(&result, &out);
  EXPECT_EQ(out.str(), "[ 0.33 2.00 ];|");
}
