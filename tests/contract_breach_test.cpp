// Every exported family stops a checked build on a breach of its contract,
// with a message that names the function and the breach. Built only when the
// library is built with its checks.
#include <sstream>

#include <gtest/gtest.h>

#include "quadrel/quadrel.h"

namespace {

CMatrix Col3(double x, double y, double z) {
  CMatrix c(3, 1);
  c(0) = x;
  c(1) = y;
  c(2) = z;
  return c;
}

CMatrix Row3(double x, double y, double z) {
  CMatrix r(1, 3);
  r(0) = x;
  r(1) = y;
  r(2) = z;
  return r;
}

double Identity(double x) {
  return x;
}

}  // namespace

TEST(ContractBreach, StorageAndAccess) {
  EXPECT_DEATH(CMatrix(-1, 2), "quadrel: Alloc: -1 x 2 is no legal matrix shape");
  EXPECT_DEATH(CMatrix(0, 10), "quadrel: Alloc: 0 x 10 is no legal matrix shape");
  EXPECT_DEATH(CMatrix(70000, 70000), "quadrel: Alloc: 70000 x 70000 is no legal matrix shape");
  CMatrix a(0.0, 2, 3);
  const CMatrix &c = a;
  EXPECT_DEATH(a(0, 3), "quadrel: operator\\(\\): index \\(0, 3\\) is outside a 2 x 3 matrix");
  EXPECT_DEATH(c(-1, 0), "quadrel: operator\\(\\): index \\(-1, 0\\) is outside a 2 x 3 matrix");
  EXPECT_DEATH(a(6), "quadrel: operator\\(\\): linear index 6 is outside a 2 x 3 matrix");
  EXPECT_DEATH(CMatrix(3, 0)(0),
               "quadrel: operator\\(\\): linear index 0 is outside a 3 x 0 matrix");
}

TEST(ContractBreach, SelectionAndEdits) {
  CMatrix a(0.0, 2, 3);
  EXPECT_DEATH(a(Row3(0, 5, 6)),
               "quadrel: operator\\(\\): index element \\(0, 2\\) = 6 is outside 0 .. 5");
  // A NaN index is no index at all.
  EXPECT_DEATH(a(CMatrix(0.0 / 0.0, 1, 1)),
               "quadrel: operator\\(\\): index element \\(0, 0\\) = -?nan is outside");
  EXPECT_DEATH(a(Row3(0, 1, 2), 0),
               "quadrel: operator\\(\\): row list element 2 is no row of a 2 x 3 matrix");
  EXPECT_DEATH(a(0, Row3(0, 3, 1)), "quadrel: operator\\(\\): column list element 1 is no column");
  EXPECT_DEATH(a(Row3(0, 2, 1), CMatrix(0.0, 1, 1)),
               "quadrel: operator\\(\\): row list element 1 is no row");
  EXPECT_DEATH(a.SetCol(CMatrix(0.0, 1, 1), 0),
               "quadrel: SetCol: source 1 x 1 has no column of 2 rows");
  EXPECT_DEATH(a.SetCol(Col3(1, 2, 3), 3), "quadrel: SetCol: column 3 is outside a 2 x 3 matrix");
  EXPECT_DEATH(a.SetRow(CMatrix(0.0, 1, 2), 0),
               "quadrel: SetRow: source 1 x 2 has no row of 3 columns");
  EXPECT_DEATH(a.SetRow(Row3(1, 2, 3), -1), "quadrel: SetRow: row -1 is outside a 2 x 3 matrix");
  EXPECT_DEATH(a.Resize(-2, 2), "quadrel: Resize: -2 x 2 is no legal matrix shape");
  EXPECT_DEATH(a.SwapRows(0, 2), "quadrel: SwapRows: rows 0 and 2 are not both in a 2 x 3 matrix");
  EXPECT_DEATH(a.SwapCols(-1, 1), "quadrel: SwapCols: columns -1 and 1 are not both in a 2 x 3");
  EXPECT_DEATH(CMatrix(10, 0).Transpose(),
               "quadrel: Transpose: the transpose 0 x 10 would be no legal");
}

TEST(ContractBreach, Operators) {
  const CMatrix A(1.0, 3, 3);
  const CMatrix small(1.0, 3, 2);
  const char *smaller = "right operand is 3 x 2, smaller than the left operand's 3 x 3";
  EXPECT_DEATH(A + small, std::string("quadrel: operator\\+: ") + smaller);
  EXPECT_DEATH(A - small, std::string("quadrel: operator-: ") + smaller);
  EXPECT_DEATH(A ^ small, std::string("quadrel: operator\\^: ") + smaller);
  EXPECT_DEATH(A && small, std::string("quadrel: operator&&: ") + smaller);
  EXPECT_DEATH(A || small, std::string("quadrel: operator\\|\\|: ") + smaller);
  CMatrix B = A;
  EXPECT_DEATH(B += small, std::string("quadrel: operator\\+=: ") + smaller);
  EXPECT_DEATH(B -= small, std::string("quadrel: operator-=: ") + smaller);
  EXPECT_DEATH(
      small * CMatrix(1.0, 1, 3),
      "quadrel: operator\\*: right operand has 1 rows, fewer than the left operand's 2 columns");
  EXPECT_DEATH(B *= small * Transpose(small) * CMatrix(1.0, 2, 2),
               "quadrel: operator\\*: right operand has 2 rows, fewer than the left operand's 3");
  EXPECT_DEATH(B *= CMatrix(1.0, 2, 3), "quadrel: operator\\*=: right operand has 2 rows");
}

TEST(ContractBreach, TextOutputAndSort) {
  std::ostringstream out;
  EXPECT_DEATH(out << CMatrix(0, 1), "quadrel: operator<<: a 0 x 1 matrix has no element to write");
  CMatrix a(1.0, 3, 2);
  EXPECT_DEATH(a.Sort(a), "quadrel: Sort: index must be another matrix than the one sorted");
  EXPECT_DEATH(Sort(a, a), "quadrel: Sort: index must be another matrix than the one sorted");
}

TEST(ContractBreach, PatternConstructors) {
  // Shapes are passed on to the matrix, which names its own check.
  EXPECT_DEATH(Zeros(-1), "quadrel: Alloc: -1 x -1 is no legal matrix shape");
  EXPECT_DEATH(Ones(2, -3), "quadrel: Alloc: 2 x -3 is no legal matrix shape");
  EXPECT_DEATH(Eye(0, 12), "quadrel: Alloc: 0 x 12 is no legal matrix shape");
  EXPECT_DEATH(Seq(0.0, 1e12, 1.0),
               "quadrel: Seq: 0 to 1000000000000 in steps of 1 has too many elements");
}

TEST(ContractBreach, Rearrangement) {
  const CMatrix a(1.0, 3, 2);
  EXPECT_DEATH(Col(a, -1), "quadrel: Col: column -1 is outside a 3 x 2 matrix");
  EXPECT_DEATH(Row(a, 3), "quadrel: Row: row 3 is outside a 3 x 2 matrix");
  EXPECT_DEATH(ColCat(a, CMatrix(1.0, 2, 5)),
               "quadrel: ColCat: right operand is 2 x 5, fewer rows than the left operand's 3 x 2");
  EXPECT_DEATH(
      RowCat(a, CMatrix(1.0, 4, 1)),
      "quadrel: RowCat: bottom operand is 4 x 1, fewer columns than the top operand's 3 x 2");
  EXPECT_DEATH(ExcludeRow(CMatrix(0, 2), 0),
               "quadrel: ExcludeRow: row 0 is outside a 0 x 2 matrix");
  EXPECT_DEATH(ExcludeCol(a, 2), "quadrel: ExcludeCol: column 2 is outside a 3 x 2 matrix");
  EXPECT_DEATH(Exclude(a, 3, 0), "quadrel: Exclude: row 3 or column 0 is outside a 3 x 2 matrix");
  EXPECT_DEATH(Transpose(CMatrix(10, 0)), "quadrel: Transpose: the transpose 0 x 10");
}

TEST(ContractBreach, Reductions) {
  CMatrix a(1.0, 3, 2);
  EXPECT_DEATH(Min(CMatrix(1, 0)), "quadrel: Min: no element to compare in a 1 x 0 matrix");
  EXPECT_DEATH(Max(CMatrix(0, 3)), "quadrel: Max: no element to compare in a 0 x 3 matrix");
  EXPECT_DEATH(Min(a, a), "quadrel: Min: index must be another matrix than A");
  EXPECT_DEATH(Max(a, a), "quadrel: Max: index must be another matrix than A");
  EXPECT_DEATH(Std(a, a), "quadrel: Std: mean must be another matrix than A");
  EXPECT_DEATH(Find(a, a), "quadrel: Find: index must be another matrix than A");
  EXPECT_DEATH(Eval(a, nullptr), "quadrel: Eval: the function to apply is null");
  EXPECT_EQ(Eval(a, Identity)(0), 1.0);
}

TEST(ContractBreach, LuDetInv) {
  CMatrix L, U;
  EXPECT_DEATH(Lu(Eye(2), L, U, L), "quadrel: Lu: L, U and P must be three different matrices");
  EXPECT_DEATH(Lu(Eye(2), U, U), "quadrel: Lu: L and U must be two different matrices");
  EXPECT_DEATH(Det(CMatrix(1.0, 3, 2)), "quadrel: Det: needs a square matrix, got 3 x 2");
  EXPECT_DEATH(Inv(CMatrix(1.0, 1, 4)), "quadrel: Inv: needs a square matrix, got 1 x 4");
}

TEST(ContractBreach, SvdAndCond) {
  // Every shape is legal; only outputs that overlap break the contract.
  CMatrix A = Eye(3), U, S;
  EXPECT_DEATH(Svd(A, U, S, A), "quadrel: Svd: S and V must not be the input matrix");
  EXPECT_DEATH(Svd(A, S, S, U), "quadrel: Svd: U, S and V must be three different matrices");
  EXPECT_GT(Cond(CMatrix(1.0, 2, 5)), 1e15);
}

TEST(ContractBreach, LeastSquaresAndPolynomials) {
  CMatrix x;
  EXPECT_DEATH(Lsq(CMatrix(1.0, 4, 2), CMatrix(1.0, 3, 1), x),
               "quadrel: Lsq: right-hand side has 3 x 1, needs the 4 rows of the system 4 x 2");
  EXPECT_DEATH(Polyfit(Col3(0, 1, 2), Col3(1, 2, 3), -2),
               "quadrel: Polyfit: degree -2 is negative");
  EXPECT_DEATH(Polyfit(CMatrix(1.0, 2, 2), CMatrix(1.0, 2, 1), 1),
               "quadrel: Polyfit: abscissae must be a vector, got 2 x 2");
  EXPECT_DEATH(Polyfit(Col3(0, 1, 2), CMatrix(1.0, 4, 1), 1),
               "quadrel: Polyfit: ordinates are 4 x 1, need one row per abscissa \\(3\\)");
  EXPECT_DEATH(Polyval(CMatrix(1.0, 2, 3), Col3(0, 1, 2)),
               "quadrel: Polyval: coefficients must be a vector, got 2 x 3");
}

TEST(ContractBreach, VectorsAndSphericalCoordinates) {
  EXPECT_DEATH(Norm2(CMatrix(0, 4)),
               "quadrel: Norm2: vector is 0 x 4: it has a length but no elements");
  EXPECT_DEATH(Dot(Col3(1, 2, 3), CMatrix(1.0, 1, 2)),
               "quadrel: Dot: second vector is 1 x 2, shorter than the first's 3 x 1");
  EXPECT_DEATH(Angle(Row3(1, 2, 3), CMatrix(1.0, 2, 1)),
               "quadrel: Angle: second vector is 2 x 1, shorter than the first's 1 x 3");
  EXPECT_DEATH(Cross(Col3(1, 2, 3), CMatrix(1.0, 2, 1)),
               "quadrel: Cross: second vector is 2 x 1, it needs three elements");
  EXPECT_DEATH(Sph2Cart(CMatrix(1.0, 1, 2)),
               "quadrel: Sph2Cart: triples are 1 x 2, not 1 x 3 or 3 x n");
  EXPECT_DEATH(Cart2Sph(CMatrix(1.0, 4, 3)),
               "quadrel: Cart2Sph: points are 4 x 3, not 1 x 3 or 3 x n");
}

TEST(ContractBreach, RotationsAndTransforms) {
  const CMatrix R = Rotation(0.1, 0.2, 0.3);
  EXPECT_DEATH(Transform(CMatrix(1.0, 2, 3), Col3(1, 2, 3), Col3(0, 0, 0)),
               "quadrel: Transform: rotation is 2 x 3, not 3 x 3");
  EXPECT_DEATH(Transform(R, CMatrix(1.0, 3, 2), Col3(0, 0, 0)),
               "quadrel: Transform: points are 3 x 2, not 3 x 1 or n x 3");
  EXPECT_DEATH(UnTransform(R, CMatrix(1.0, 5, 3), CMatrix(0.0, 4, 3)),
               "quadrel: UnTransform: translation is 4 x 3, smaller than the points' 5 x 3");
}

TEST(ContractBreach, DistancesAndIntersections) {
  const CMatrix p = Col3(0, 0, 0), n = Col3(0, 0, 1), row = Row3(0, 0, 1);
  CMatrix out1, out2;
  EXPECT_DEATH(LinePointDist(p, CMatrix(1.0, 2, 1), p),
               "quadrel: LinePointDist: direction is 2 x 1, not 3 x 1 or 1 x 3");
  EXPECT_DEATH(PlanePointDist(p, n, row),
               "quadrel: PlanePointDist: point is 1 x 3, not a 3 x 1 column");
  EXPECT_DEATH(PlaneLineDist(p, n, p, row),
               "quadrel: PlaneLineDist: direction is 1 x 3, not a 3 x 1 column");
  EXPECT_DEATH(PlanePlaneDist(row, n, p, n),
               "quadrel: PlanePlaneDist: point1 is 1 x 3, not a 3 x 1 column");
  EXPECT_DEATH(LinePointInt(p, row, p, out1),
               "quadrel: LinePointInt: incompatible matrix dimensions: 3 x 1 and 1 x 3");
  EXPECT_DEATH(PlanePointInt(p, row, p, out1), "quadrel: PlanePointInt: normal is 1 x 3");
  EXPECT_DEATH(PlaneLineInt(p, n, row, n, out1), "quadrel: PlaneLineInt: linePoint is 1 x 3");
  EXPECT_DEATH(PlanePlaneInt(p, n, p, CMatrix(1.0, 4, 1), out1, out2),
               "quadrel: PlanePlaneInt: normal2 is 4 x 1, not a 3 x 1 column");
}

TEST(ContractBreach, Fits) {
  CMatrix points(1.0, 3, 6), m1, m2, m3;
  double d1 = 0.0, d2 = 0.0, d3 = 0.0;
  EXPECT_DEATH(LineFit(CMatrix(1.0, 3, 1), m1, m2, m3),
               "quadrel: LineFit: a line needs at least 2 points, got 1");
  EXPECT_DEATH(LineFit(points, m1, points, m3), "quadrel: LineFit: an output is the points object");
  EXPECT_DEATH(PlaneFit(CMatrix(1.0, 2, 6), m1, m2, m3),
               "quadrel: PlaneFit: points is 2 x 6; a point set has 3 rows");
  EXPECT_DEATH(PlaneFit(CMatrix(1.0, 3, 1), m1, m2, m3),
               "quadrel: PlaneFit: a plane needs at least 2 points, got 1");
  EXPECT_DEATH(CircleFit(CMatrix(1.0, 4, 6), m1, m2, d1, m3),
               "quadrel: CircleFit: points is 4 x 6; a point set has 3 rows");
  EXPECT_DEATH(CircleFit(CMatrix(1.0, 3, 2), m1, m2, d1, m3),
               "quadrel: CircleFit: a circle needs at least 3 points, got 2");
  EXPECT_DEATH(SphereFit(CMatrix(1.0, 3, 3), m1, d1, m3),
               "quadrel: SphereFit: a sphere needs at least 4 points, got 3");
  EXPECT_DEATH(SphereFit(CMatrix(1.0, 2, 5), m1, d1, m3),
               "quadrel: SphereFit: points is 2 x 5; a point set has 3 rows");
  EXPECT_DEATH(EllipseFit(CMatrix(1.0, 3, 4), m1, m2, d1, m3),
               "quadrel: EllipseFit: an ellipse needs at least 5 points, got 4");
  EXPECT_DEATH(EllipseFit(CMatrix(1.0, 2, 5), m1, m2, d1, m3),
               "quadrel: EllipseFit: points is 2 x 5; a point set has 3 rows");
  EXPECT_DEATH(ParaboloidFit(CMatrix(1.0, 3, 4), m1, d1, d2, d3, m3),
               "quadrel: ParaboloidFit: a paraboloid needs at least 5 points, got 4");
  EXPECT_DEATH(ParaboloidFit(CMatrix(1.0, 2, 5), m1, d1, d2, d3, m3),
               "quadrel: ParaboloidFit: points is 2 x 5; a point set has 3 rows");
}

TEST(ContractBreach, Estimators) {
  const CMatrix good(1.0, 3, 4);
  CMatrix result, peak;
  EXPECT_DEATH(IdealTrihedralFit(CMatrix(1.0, 2, 4), good, good, result, 1.0),
               "quadrel: IdealTrihedralFit: set1 is 2 x 4; a point set has 3 rows");
  CMatrix alias = good;
  EXPECT_DEATH(IdealTrihedralFit(good, good, alias, alias, 1.0),
               "quadrel: IdealTrihedralFit: result is one of the point sets");
  EXPECT_DEATH(FindQualityPeak(CMatrix(1.0, 3, 2), CMatrix(0.0, 2, 3), peak),
               "quadrel: FindQualityPeak: quality is 3 x 2; it must be an n x 1 column");
  EXPECT_DEATH(FindQualityPeak(CMatrix(1.0, 3, 1), CMatrix(0.0, 3, 3), peak),
               "quadrel: FindQualityPeak: positions is 3 x 3; it must be 2 x 3");
}
