// NaN and infinite elements in storage, operators, text output and sorting.
#include <cmath>
#include <limits>
#include <sstream>

#include <gtest/gtest.h>

#include "quadrel/matrix/matrix.h"
#include "quadrel/matrix/operators.h"
#include "quadrel/matrix/stream.h"
#include "quadrel/testing/test_util.h"

namespace {

const double kNaN = std::numeric_limits<double>::quiet_NaN();
const double kInf = std::numeric_limits<double>::infinity();
// Elements with a NaN, both infinities and a -0.0.
const CMatrix kOdd = MakeMatrix(2, 3, {1.0, kNaN, kInf, -kInf, -0.0, 2.0});

}  // namespace

TEST(MatrixNonFinite, StorageAndEditsKeepTheBits) {
  CMatrix big(0.0, 4, 4);
  big = kOdd;
  EXPECT_TRUE(SameBits(big, kOdd));
  CMatrix edited = kOdd;
  edited.SetRow(MakeRow({-kInf, kNaN, 5.0}), 0);
  edited.Resize(3, 2);
  EXPECT_TRUE(SameBits(edited, MakeMatrix(3, 2, {-kInf, kNaN, -kInf, -0.0, 0.0, 0.0})));
  edited = kOdd;
  edited.Transpose();
  edited.SwapRows(0, 1);
  EXPECT_TRUE(SameBits(edited, MakeMatrix(3, 2, {kNaN, -0.0, 1.0, -kInf, kInf, 2.0})));
  EXPECT_TRUE(
      SameBits(kOdd(MakeRow({0, 1}), MakeRow({1, 2})), MakeMatrix(2, 2, {kNaN, kInf, -0.0, 2.0})));
}

TEST(MatrixNonFinite, OperatorsFollowIeee) {
  const CMatrix b = MakeMatrix(2, 3, {kInf, 1.0, -kInf, -kInf, 0.0, 0.0});
  EXPECT_TRUE(SameValues(kOdd + b, MakeMatrix(2, 3, {kInf, kNaN, kNaN, -kInf, 0.0, 2.0})));
  EXPECT_TRUE(SameValues(kOdd ^ b, MakeMatrix(2, 3, {kInf, kNaN, -kInf, kInf, -0.0, 0.0})));
  EXPECT_TRUE(SameValues(kOdd / 0.0, MakeMatrix(2, 3, {kInf, kNaN, kInf, -kInf, kNaN, kInf})));
  // In the product a NaN or an infinity in row i of A or column j of B
  // reaches element (i, j) only; inf * 0 is NaN.
  const CMatrix p =
      MakeMatrix(2, 2, {1.0, kNaN, 2.0, 3.0}) * MakeMatrix(2, 2, {1.0, 0.0, kInf, 1.0});
  EXPECT_TRUE(SameValues(p, MakeMatrix(2, 2, {kNaN, kNaN, kInf, 3.0})));
  // Masks are clean 0/1; a NaN scalar holds under != only; NaN is true, -0.0 false.
  EXPECT_TRUE(SameBits(kOdd < kInf, MakeMatrix(2, 3, {1, 0, 0, 1, 1, 1})));
  EXPECT_TRUE(SameBits(kOdd <= kNaN, CMatrix(0.0, 2, 3)));
  EXPECT_TRUE(SameBits(kOdd != kNaN, CMatrix(1.0, 2, 3)));
  EXPECT_TRUE(SameBits(CMatrix(0.0, 2, 3) || kOdd, MakeMatrix(2, 3, {1, 1, 1, 1, 0, 1})));
}

TEST(MatrixNonFinite, TextOutputWritesWhatTheStreamWrites) {
  std::ostringstream out, expected;
  out << MakeRow({kNaN, kInf});
  expected << "[ " << kNaN << " " << kInf << " ];";
  EXPECT_EQ(out.str(), expected.str());
}

TEST(MatrixNonFinite, SortPutsNaNLastAndInfinitiesAtTheEnds) {
  CMatrix a = MakeMatrix(5, 2, {kNaN, 3.0, 2.0, kNaN, kNaN, -kInf, -kInf, kInf, kInf, 1.0});
  CMatrix index;
  a.Sort(index);
  // Each column sorts by itself; NaN keys follow every number.
  EXPECT_TRUE(
      SameValues(a, MakeMatrix(5, 2, {-kInf, -kInf, 2.0, 1.0, kInf, 3.0, kNaN, kInf, kNaN, kNaN})));
  EXPECT_EQ(index(0, 0), 3.0);
  EXPECT_EQ(index(2, 0), 4.0);
  EXPECT_EQ(index(4, 1), 1.0);
}
