#include "quadrel/matrix/stream.h"

#include <iomanip>
#include <sstream>

#include <gtest/gtest.h>

#include "quadrel/testing/test_util.h"

TEST(Stream, WritesEveryShapeInItsOwnForm) {
  CMatrix swapped = MakeMatrix(2, 3, {1, 2, 3, 4, 5, 6});
  swapped.SwapCols(0, 2);
  const struct {
    CMatrix matrix;
    const char *text;
  } cases[] = {
      {MakeRow({1, 2, 3}), "[ 1 2 3 ];"},
      {MakeCol({1, 2, 3}), "[ 1 2 3 ]';"},
      {MakeRow({-0.5}), "[ -0.5 ];"},
      {MakeRow({5, 1e20}), "[ 5 1e+20 ];"},
      {MakeMatrix(3, 2, {1, 2, 3, 4, 5, 6}), "[ 1 2; ...\n3 4; ...\n5 6 ];"},
      {swapped, "[ 3 2 1; ...\n6 5 4 ];"},
      // With no row nothing closes the bracket.
      {CMatrix(0, 0), "[ "},
      {CMatrix(0, 4), "[ "},
      {CMatrix(2, 0), "[ ; ...\n ];"},
  };
  for (const auto &c : cases) {
    std::ostringstream out;
    out << c.matrix;
    EXPECT_EQ(out.str(), c.text) << Describe(c.matrix);
  }
}

TEST(Stream, UsesTheStreamSettingsAndReturnsTheStream) {
  std::ostringstream out;
  out << std::fixed << std::setprecision(2);
  std::ostream &result = out << MakeRow({1.0 / 3, 2}) << "|";
  EXPECT_EQ(&result, &out);
  EXPECT_EQ(out.str(), "[ 0.33 2.00 ];|");
}
