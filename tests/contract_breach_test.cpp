// Every exported family stops a checked build on a breach of its contract,
// with a message that names the function and the breach. Built only when the
// library is built with its checks.
#include <functional>
#include <sstream>

#include <gtest/gtest.h>

#include "quadrel/quadrel.h"

TEST(ContractBreach, EveryFamilyStopsWithItsMessage) {
  const CMatrix a(1.0, 3, 2), sq(1.0, 3, 3), col(1.0, 3, 1), row(1.0, 1, 3);
  CMatrix m1, m2, m3;
  double d1 = 0.0, d2 = 0.0, d3 = 0.0;
  const struct {
    std::function<void()> breach;
    const char *message;
  } cases[] = {
      {[] { CMatrix(0, 10); }, "Alloc: 0 x 10 is no legal matrix shape"},
      {[&] {
         m1 = a;
         m1(3, 0);
       },
       "operator\\(\\): index \\(3, 0\\) is outside a 3 x 2 matrix"},
      {[&] { a(CMatrix(6.0, 1, 1)); },
       "operator\\(\\): index element \\(0, 0\\) = 6 is outside 0 .. 5"},
      {[&] {
         m1 = a;
         m1.SetCol(row, 0);
       },
       "SetCol: source 1 x 3 has no column of 3 rows"},
      {[&] {
         m1 = a;
         m1.SwapRows(0, 3);
       },
       "SwapRows: rows 0 and 3 are not both in a 3 x 2 matrix"},
      {[&] { sq + a; },
       "operator\\+: right operand is 3 x 2, smaller than the left operand's 3 x 3"},
      {[&] { a *row; },
       "operator\\*: right operand has 1 rows, fewer than the left operand's 2 columns"},
      {[] {
         std::ostringstream out;
         out << CMatrix(0, 1);
       },
       "operator<<: a 0 x 1 matrix has no element to write"},
      {[&] {
         m1 = a;
         Sort(m1, m1);
       },
       "Sort: index must be another matrix than the one sorted"},
      {[] { Seq(0.0, 1e12, 1.0); }, "Seq: 0 to 1000000000000 in steps of 1 has too many elements"},
      {[&] { Col(a, -1); }, "Col: column -1 is outside a 3 x 2 matrix"},
      {[&] { RowCat(a, col); },
       "RowCat: bottom operand is 3 x 1, fewer columns than the top operand's 3 x 2"},
      {[] { Min(CMatrix(1, 0)); }, "Min: no element to compare in a 1 x 0 matrix"},
      {[] { Eval(Eye(2), nullptr); }, "Eval: the function to apply is null"},
      {[&] { Det(a); }, "Det: needs a square matrix, got 3 x 2"},
      {[&] { Lu(sq, m1, m1); }, "Lu: L and U must be two different matrices"},
      {[&] {
         m1 = sq;
         Svd(m1, m2, m3, m1);
       },
       "Svd: S and V must not be the input matrix"},
      {[&] { Lsq(CMatrix(1.0, 4, 2), col, m1); },
       "Lsq: right-hand side has 3 x 1, needs the 4 rows of the system 4 x 2"},
      {[&] { Polyfit(col, col, -2); }, "Polyfit: degree -2 is negative"},
      {[&] { Polyval(a, col); }, "Polyval: coefficients must be a vector, got 3 x 2"},
      {[&] { Dot(col, CMatrix(1.0, 1, 2)); },
       "Dot: second vector is 1 x 2, shorter than the first's 3 x 1"},
      {[&] { Cross(col, CMatrix(1.0, 2, 1)); },
       "Cross: second vector is 2 x 1, it needs three elements"},
      {[] { Cart2Sph(CMatrix(1.0, 4, 3)); }, "Cart2Sph: points are 4 x 3, not 1 x 3 or 3 x n"},
      {[&] { Transform(a, col, col); }, "Transform: rotation is 3 x 2, not 3 x 3"},
      {[&] { PlanePointDist(col, col, row); },
       "PlanePointDist: point is 1 x 3, not a 3 x 1 column"},
      {[&] { PlanePlaneInt(col, col, col, CMatrix(1.0, 4, 1), m1, m2); },
       "PlanePlaneInt: normal2 is 4 x 1, not a 3 x 1 column"},
      {[&] { LineFit(col, m1, m2, m3); }, "LineFit: a line needs at least 2 points, got 1"},
      {[&] { PlaneFit(CMatrix(1.0, 2, 6), m1, m2, m3); },
       "PlaneFit: points is 2 x 6; a point set has 3 rows"},
      {[&] { CircleFit(a, m1, m2, d1, m3); }, "CircleFit: a circle needs at least 3 points, got 2"},
      {[&] { SphereFit(sq, m1, d1, m3); }, "SphereFit: a sphere needs at least 4 points, got 3"},
      {[&] { EllipseFit(CMatrix(1.0, 3, 4), m1, m2, d1, m3); },
       "EllipseFit: an ellipse needs at least 5 points, got 4"},
      {[&] { ParaboloidFit(CMatrix(1.0, 2, 5), m1, d1, d2, d3, m3); },
       "ParaboloidFit: points is 2 x 5; a point set has 3 rows"},
      {[&] {
         m1 = sq;
         IdealTrihedralFit(sq, sq, m1, m1, 1.0);
       },
       "IdealTrihedralFit: result is one of the point sets"},
      {[&] { FindQualityPeak(a, CMatrix(0.0, 2, 3), m1); },
       "FindQualityPeak: quality is 3 x 2; it must be an n x 1 column"},
  };
  for (const auto &c : cases) {
    SCOPED_TRACE(c.message);
    EXPECT_DEATH(c.breach(), std::string("quadrel: ") + c.message);
  }
}
