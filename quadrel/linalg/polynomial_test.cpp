#include "quadrel/linalg/polynomial.h"

#include <gtest/gtest.h>

#include "quadrel/functions/constructors.h"
#include "quadrel/functions/rearrange.h"
#include "quadrel/linalg/direct.h"
#include "quadrel/matrix/operators.h"
#include "quadrel/testing/test_util.h"

namespace {

TEST(Polyfit, RecoversExactPolynomialsConstantFirst) {
  EXPECT_TRUE(
      Near(Polyfit(MakeCol({0, 1, 2, 3}), MakeCol({1, 3, 7, 13}), 2), MakeCol({1, 1, 1}), 1e-13));
  EXPECT_TRUE(Near(Polyfit(MakeRow({5, 6, 7, 8}), MakeCol({1, 2, 4, 9}), 0), MakeCol({4}), 1e-14));
  // Two cubics on the same 12 abscissae at once; x may be a row or a column.
  const CMatrix x = TestRandom(53).Matrix(12, 1, -2.0, 2.0);
  const CMatrix p = MakeMatrix(4, 2, {0.5, -1, -2, 0, 1.5, 3, 0.25, -0.75});
  const CMatrix y = ColCat(Polyval(Col(p, 0), x), Polyval(Col(p, 1), x));
  const CMatrix fit = Polyfit(x, y, 3);
  EXPECT_TRUE(Near(fit, p, 1e-12));
  EXPECT_TRUE(SameBits(Polyfit(Transpose(x), y, 3), fit));
  // Fewer points than coefficients: the fit of least norm through them.
  const CMatrix x2 = MakeCol({1, 2}), y2 = MakeCol({1, -1});
  const CMatrix D = MakeMatrix(2, 3, {1, 1, 1, 1, 2, 4});
  EXPECT_TRUE(Near(Polyfit(x2, y2, 2), Transpose(D) * (Inv(D * Transpose(D)) * y2), 1e-13));
}

TEST(Polyval, SumsPowersTermByTerm) {
  const CMatrix points = MakeMatrix(2, 3, {0, 1, 2, -1, 0.5, 3});
  const CMatrix expected = MakeMatrix(2, 3, {1, 2, 5, 2, 1.25, 10});
  EXPECT_TRUE(SameBits(Polyval(MakeCol({1, 0, 1}), points), expected));
  EXPECT_TRUE(SameBits(Polyval(MakeRow({1, 0, 1}), points), expected));
  // pow(0, 0) is 1, so at zero the constant remains; no coefficients give zeros.
  EXPECT_TRUE(SameBits(Polyval(MakeRow({-4, 7, 9}), Zeros(2, 2)), CMatrix(-4.0, 2, 2)));
  EXPECT_TRUE(SameBits(Polyval(CMatrix(0, 0), points), Zeros(2, 3)));
}

}  // namespace
