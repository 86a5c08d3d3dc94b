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
CMatrix Odd() {
  return MakeMatrix(2, 3, {1.0, kNaN, kInf, -kInf, -0.0, 2.0});
}

}  // namespace

TEST(MatrixNonFinite, StorageAndEditsKeepTheBits) {
  const CMatrix a = Odd();
  CMatrix copy(a);
  EXPECT_TRUE(SameBits(copy, a));
  CMatrix big(0.0, 4, 4);
  big = a;
  EXPECT_TRUE(SameBits(big, a));

  CMatrix edited = a;
  edited.SetCol(MakeCol({kNaN, kInf}), 2);
  edited.SetRow(MakeRow({-kInf, kNaN, 5.0}), 0);
  EXPECT_TRUE(SameBits(edited, MakeMatrix(2, 3, {-kInf, kNaN, 5.0, -kInf, -0.0, kInf})));

  edited = a;
  edited.Resize(3, 2);
  EXPECT_TRUE(SameBits(edited, MakeMatrix(3, 2, {1.0, kNaN, -kInf, -0.0, 0.0, 0.0})));
  edited = a;
  edited.Transpose();
  EXPECT_TRUE(SameBits(edited, MakeMatrix(3, 2, {1.0, -kInf, kNaN, -0.0, kInf, 2.0})));
  edited = a;
  edited.SwapCols(0, 1);
  edited.SwapRows(0, 1);
  EXPECT_TRUE(SameBits(edited, MakeMatrix(2, 3, {-0.0, -kInf, 2.0, kNaN, 1.0, kInf})));
  // Selection copies whatever it finds.
  EXPECT_TRUE(
      SameBits(a(MakeRow({0, 1}), MakeRow({1, 2})), MakeMatrix(2, 2, {kNaN, kInf, -0.0, 2.0})));
}

TEST(MatrixNonFinite, ArithmeticCarriesNaNAndInfinities) {
  const CMatrix a = Odd();
  const CMatrix b = MakeMatrix(2, 3, {kInf, 1.0, -kInf, -kInf, 0.0, 0.0});
  EXPECT_TRUE(SameValues(a + b, MakeMatrix(2, 3, {kInf, kNaN, kNaN, -kInf, 0.0, 2.0})));
  const CMatrix d = a - b;
  EXPECT_TRUE(std::isnan(d(0, 1)) && d(0, 2) == kInf && std::isnan(d(1, 0)) && d(0, 0) == -kInf);
  const CMatrix e = a ^ b;
  EXPECT_TRUE(SameValues(e, MakeMatrix(2, 3, {kInf, kNaN, -kInf, kInf, -0.0, 0.0})));

  // Scalar forms, a zero divisor included: the elements take the IEEE result.
  const CMatrix q = a / 0.0;
  EXPECT_EQ(q(0, 0), kInf);
  EXPECT_TRUE(std::isnan(q(0, 1)) && std::isnan(q(1, 1)));
  EXPECT_EQ(q(0, 2), kInf);
  EXPECT_EQ(q(1, 0), -kInf);
  const CMatrix z = 0.0 * a;
  EXPECT_TRUE(std::isnan(z(0, 1)) && std::isnan(z(0, 2)) && std::isnan(z(1, 0)));
  EXPECT_EQ(z(0, 0), 0.0);
  CMatrix in = a;
  in += kNaN;
  for (int k = 0; k < 6; ++k)
    EXPECT_TRUE(std::isnan(in(k))) << k;

  // The product: a NaN or an infinity in row i of A or column j of B reaches
  // element (i, j) only; inf * 0 is NaN.
  const CMatrix p =
      MakeMatrix(2, 2, {1.0, kNaN, 2.0, 3.0}) * MakeMatrix(2, 2, {1.0, 0.0, kInf, 1.0});
  EXPECT_TRUE(std::isnan(p(0, 0)) && std::isnan(p(0, 1)));
  EXPECT_EQ(p(1, 0), kInf);
  EXPECT_EQ(p(1, 1), 3.0);
  EXPECT_TRUE(std::isnan((MakeRow({0.0}) * MakeCol({kInf}))(0)));
}

TEST(MatrixNonFinite, ComparisonsAndLogicGiveCleanMasks) {
  const CMatrix a = Odd();
  EXPECT_TRUE(SameBits(a == kInf, MakeMatrix(2, 3, {0, 0, 1, 0, 0, 0})));
  EXPECT_TRUE(SameBits(a != 1.0, MakeMatrix(2, 3, {0, 1, 1, 1, 1, 1})));
  EXPECT_TRUE(SameBits(a < kInf, MakeMatrix(2, 3, {1, 0, 0, 1, 1, 1})));
  EXPECT_TRUE(SameBits(a >= -kInf, MakeMatrix(2, 3, {1, 0, 1, 1, 1, 1})));
  // A NaN scalar holds under != only.
  EXPECT_TRUE(SameBits(a <= kNaN, CMatrix(0.0, 2, 3)));
  EXPECT_TRUE(SameBits(a > kNaN, CMatrix(0.0, 2, 3)));
  EXPECT_TRUE(SameBits(a != kNaN, CMatrix(1.0, 2, 3)));
  // NaN is true, -0.0 false.
  const CMatrix zeros(0.0, 2, 3);
  EXPECT_TRUE(SameBits(a && CMatrix(1.0, 2, 3), MakeMatrix(2, 3, {1, 1, 1, 1, 0, 1})));
  EXPECT_TRUE(SameBits(zeros || a, MakeMatrix(2, 3, {1, 1, 1, 1, 0, 1})));
}

TEST(MatrixNonFinite, TextOutputWritesWhatTheStreamWrites) {
  std::ostringstream out;
  out << MakeRow({kNaN, kInf});
  std::ostringstream expected;
  expected << "[ " << kNaN << " " << kInf << " ];";
  EXPECT_EQ(out.str(), expected.str());
}

TEST(MatrixNonFinite, SortPutsNaNLastAndInfinitiesAtTheEnds) {
  CMatrix a = MakeMatrix(5, 2, {kNaN, 3.0, 2.0, kNaN, kNaN, -kInf, -kInf, kInf, kInf, 1.0});
  CMatrix index;
  a.Sort(index);
  // Each column sorts by itself; NaN keys follow every number, infinities
  // included, and stay in their column.
  const CMatrix rows = MakeCol({0, 1, 2, 3, 4});
  EXPECT_TRUE(SameValues(a(rows, 0), MakeCol({-kInf, 2.0, kInf, kNaN, kNaN})));
  EXPECT_TRUE(SameValues(a(rows, 1), MakeCol({-kInf, 1.0, 3.0, kInf, kNaN})));
  // Every row number appears once per column.
  for (int j = 0; j < 2; ++j) {
    double sum = 0.0;
    for (int i = 0; i < 5; ++i)
      sum += index(i, j);
    EXPECT_EQ(sum, 10.0) << j;
  }
  EXPECT_EQ(index(0, 0), 3.0);
  EXPECT_EQ(index(2, 0), 4.0);
  EXPECT_EQ(index(4, 1), 1.0);
}
