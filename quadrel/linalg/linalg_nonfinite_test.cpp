// NaN and infinite elements in the direct methods, Svd, Lsq and polynomials:
// every call returns, with the shapes of finite input.
#include <cmath>
#include <limits>

#include <gtest/gtest.h>

#include "quadrel/functions/constructors.h"
#include "quadrel/functions/rearrange.h"
#include "quadrel/linalg/direct.h"
#include "quadrel/linalg/least_squares.h"
#include "quadrel/linalg/polynomial.h"
#include "quadrel/linalg/svd.h"
#include "quadrel/testing/test_util.h"

namespace {

const double kNaN = std::numeric_limits<double>::quiet_NaN();
const double kInf = std::numeric_limits<double>::infinity();

bool Shape(const CMatrix &m, int rows, int cols) {
  return m.GetRows() == rows && m.GetCols() == cols;
}

// Every element NaN, in the given shape.
bool AllNaN(const CMatrix &m, int rows, int cols) {
  return SameValues(m, CMatrix(kNaN, rows, cols));
}

}  // namespace

TEST(LinalgNonFinite, DirectMethodsSpreadNaN) {
  const CMatrix withNaN = MakeMatrix(3, 3, {2.0, 1.0, 0.0, 1.0, kNaN, 1.0, 0.0, 1.0, 3.0});
  CMatrix L, U, P;
  Lu(withNaN, L, U, P);
  EXPECT_TRUE(Shape(L, 3, 3) && Shape(U, 3, 3) && SameBits(P, Eye(3)));
  EXPECT_TRUE(AllNaN(Col(L, 1), 3, 1) && std::isnan(U(2, 2)) && std::isnan(Det(withNaN)));
  EXPECT_TRUE(AllNaN(Inv(withNaN), 3, 3));

  // An infinite pivot: inf - inf and 0 * inf give NaN in its column, and the
  // determinant takes the infinity.
  const CMatrix withInf = MakeMatrix(3, 3, {2.0, 1.0, 0.0, 1.0, kInf, 1.0, 0.0, 1.0, 3.0});
  Lu(withInf, L, U, P);
  EXPECT_TRUE(SameBits(P, Eye(3)) && AllNaN(Col(U, 1), 3, 1) && Det(withInf) == kInf);
  const CMatrix inverse = Inv(withInf);
  EXPECT_TRUE(Shape(inverse, 3, 3) && AllNaN(Row(inverse, 0), 1, 3) &&
              AllNaN(Row(inverse, 1), 1, 3));
}

TEST(LinalgNonFinite, SvdReturnsInOrderWithNaNInTheFactors) {
  CMatrix U, S, V;
  // An all-NaN matrix: every factor it reaches is NaN, and no singular value
  // counts for the return, which keeps its start values 1e-25 / 1e25.
  EXPECT_NEAR(Svd(CMatrix(kNaN, 3, 3), U, S, V), 1e-50, 1e-60);
  EXPECT_TRUE(Shape(U, 3, 3) && Shape(S, 3, 3) && Shape(V, 3, 3));
  EXPECT_TRUE(std::isnan(S(0, 0) + S(1, 1) + S(2, 2)) && S(0, 1) == 0.0);

  // An infinity turns into NaN wherever it meets inf - inf or 0 * inf; the
  // return looks only at the values that stayed numbers.
  const double r = Svd(MakeMatrix(3, 3, {1, 2, 3, 4, kInf, 6, 7, 8, 10}), U, S, V);
  EXPECT_TRUE(!std::isnan(r) && std::isnan(S(0, 0) + S(1, 1) + S(2, 2)));
  EXPECT_EQ(Cond(MakeMatrix(3, 3, {1, 2, 3, 4, kInf, 6, 7, 8, 10})), r);

  // Values beyond the start values are still factored, but the return
  // compares them with 1e25: its smallest value stays 1e25.
  EXPECT_EQ(Svd(MakeMatrix(2, 2, {1e200, 0.0, 0.0, 1e180}), U, S, V), 1e175);
  EXPECT_TRUE(SameBits(S, MakeMatrix(2, 2, {1e200, 0.0, 0.0, 1e180})));
}

TEST(LinalgNonFinite, LsqGivesNaNSolutionsForNaNInput) {
  CMatrix x;
  const CMatrix A = MakeMatrix(3, 2, {1, 0, 0, 1, 1, 1});
  // A NaN in b reaches every element of x through the pseudo-inverse; a NaN
  // or an infinity in A spoils the decomposition and with it all of x.
  Lsq(A, MakeCol({1.0, kNaN, 2.0}), x);
  EXPECT_TRUE(AllNaN(x, 2, 1));
  for (double bad : {kNaN, kInf}) {
    Lsq(MakeMatrix(3, 2, {1, 0, 0, bad, 1, 1}), MakeCol({1, 2, 2}), x);
    EXPECT_TRUE(AllNaN(x, 2, 1)) << bad;
  }
  // An infinity in b gives infinite elements, or NaN where opposite infinite
  // terms meet.
  Lsq(A, MakeCol({1.0, kInf, 2.0}), x);
  EXPECT_TRUE(Shape(x, 2, 1) && std::isinf(x(0)) && std::isinf(x(1)));
}

TEST(LinalgNonFinite, PolynomialsSpreadNaNAndInfinities) {
  EXPECT_TRUE(AllNaN(Polyfit(MakeCol({0, 1, kNaN, 3}), MakeCol({1, 2, 3, 4}), 1), 2, 1));
  const CMatrix p = Polyfit(MakeCol({0, 1, 2, 3}), MakeCol({1, kInf, 3, 4}), 1);
  EXPECT_TRUE(Shape(p, 2, 1) && std::isinf(p(0)) && std::isinf(p(1)));

  // Polyval: 1 + 2x at NaN, +inf and -inf.
  EXPECT_TRUE(SameValues(Polyval(MakeCol({1, 2}), MakeRow({kNaN, kInf, -kInf})),
                         MakeRow({kNaN, kInf, -kInf})));
  // A NaN coefficient reaches every value; x^0 of an infinite x is 1.
  EXPECT_TRUE(SameBits(Polyval(MakeCol({5}), MakeRow({kInf, kNaN})), MakeRow({5, 5})));
}
