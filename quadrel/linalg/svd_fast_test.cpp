// SvdCore walks the rows in fused passes and queues the rotations of its
// diagonalisation, Svd keeps small working arrays on the stack, Lsq forms the
// pseudo-inverse column by column, and TallLsq solves tall systems on columns.
// These tests hold every one of them to the literal engine
// (quadrel/testing/svd_reference.h), run on the same inputs, bit for bit.
#include <cmath>
#include <cstdint>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "quadrel/functions/constructors.h"
#include "quadrel/functions/rearrange.h"
#include "quadrel/linalg/internal/svd_core.h"
#include "quadrel/linalg/internal/tall_lsq.h"
#include "quadrel/linalg/least_squares.h"
#include "quadrel/linalg/svd.h"
#include "quadrel/matrix/operators.h"
#include "quadrel/testing/bit_hash.h"
#include "quadrel/testing/svd_reference.h"
#include "quadrel/testing/test_util.h"

namespace {

struct Input {
  std::string name;
  CMatrix A;
};

bool HasNonFinite(const CMatrix &A) {
  for (int i = 0; i < A.GetRows(); ++i)
    for (int j = 0; j < A.GetCols(); ++j)
      if (!std::isfinite(A(i, j))) return true;
  return false;
}

// For each shape a random matrix, the same with its last column a copy of the
// first (rank-deficient), with its first and last columns exchanged in the
// column table, and scaled to 1e120 with a column of signed zeros and one
// 1e-150 times smaller, and with +infinity, a NaN or -infinity in turn; then
// special matrices and the empty shapes. Wide shapes are factored padded with
// zero rows.
std::vector<Input> Inputs() {
  TestRandom random(31337);
  std::vector<Input> inputs;
  const double nonFinite[] = {HUGE_VAL, std::nan(""), -HUGE_VAL};
  int spoilt = 0;
  const int shapes[][2] = {{1, 1},  {2, 2},  {3, 2},   {3, 3},  {4, 4},    {5, 3}, {7, 7}, {9, 4},
                           {12, 5}, {17, 6}, {30, 20}, {40, 9}, {3000, 5}, {2, 5}, {4, 9}};
  for (const auto &shape : shapes) {
    const int m = shape[0], n = shape[1];
    const CMatrix A = random.Matrix(m, n, -3.0, 3.0);
    CMatrix deficient = A, permuted = A, extreme = 1e120 * A, nonFiniteA = A;
    nonFiniteA(m / 2, n / 2) = nonFinite[spoilt++ % 3];
    deficient.SetCol(Col(A, 0), n - 1);
    permuted.SwapCols(0, n - 1);
    for (int i = 0; i < m; ++i) {
      extreme(i, 0) = i % 2 ? -0.0 : 0.0;
      if (n > 2) extreme(i, 1) = 1e-150 * extreme(i, 1);
    }
    const std::string at = " " + std::to_string(m) + " x " + std::to_string(n);
    inputs.insert(inputs.end(), {{"random" + at, A},
                                 {"rank-deficient" + at, deficient},
                                 {"permuted columns" + at, permuted},
                                 {"extreme scales" + at, extreme},
                                 {"non-finite" + at, nonFiniteA}});
  }
  inputs.insert(inputs.end(),
                {{"zeros 6 x 3", CMatrix(0.0, 6, 3)},
                 {"negative zeros 4 x 3", CMatrix(-0.0, 4, 3)},
                 {"identity 4", Eye(4)},
                 {"rank 2 3 x 3", MakeMatrix(3, 3, {1, 2, 3, 4, 5, 6, 7, 8, 9})},
                 {"empty 0 x 0", Zeros(0, 0)},
                 {"no columns 3 x 0", Zeros(3, 0)},
                 {"no rows 0 x 3", Zeros(0, 3)},
                 // A sweep meets a rotation of two exact zeros here.
                 {"zero rotation 4 x 3",
                  MakeMatrix(4, 3, {2, 0, 1e300, 0, 1e300, 2, 1e300, 1, 0, 1e300, 0, 1e-300})}});
  return inputs;
}

// Bit for bit, except that any NaN equals any other where anyNaN is set: for
// input with NaN or infinities, where the sign of a NaN depends on which
// operand of an operation the compiler put first.
::testing::AssertionResult Same(const CMatrix &got, const CMatrix &want, bool anyNaN) {
  return anyNaN ? SameValues(got, want) : SameBits(got, want);
}

::testing::AssertionResult Same(double got, double want, bool anyNaN) {
  return Same(CMatrix(got, 1, 1), CMatrix(want, 1, 1), anyNaN);
}

// Row arrays of m x n as SvdCore takes them (both the engine and the literal
// one), one block per row.
struct Rows {
  explicit Rows(const CMatrix &M) : rows(M.GetRows(), std::vector<double>(M.GetCols())) {
    for (int i = 0; i < M.GetRows(); ++i) {
      for (int j = 0; j < M.GetCols(); ++j)
        rows[i][j] = M(i, j);
      table.push_back(rows[i].data());
    }
  }
  double **Table() { return table.data(); }
  CMatrix Matrix(int m, int n) const { return CMatrix(table.data(), m, n); }
  std::vector<std::vector<double>> rows;
  std::vector<double *> table;
};

// The literal engine's results on the finite inputs, hashed in order (w, then
// v and a row by row, then the returned ratio). The live comparisons cannot see
// an edit that moves the engine and the literal engine alike; this value, taken
// when the literal engine reproduced every result recorded from the earlier
// plain engine, pins the literal engine itself.
constexpr std::uint64_t kLiteralEngineHash = 0xf6dd438d96cb0faau;

TEST(SvdFast, CoreSvdCondAndLsqMatchTheLiteralEngine) {
  BitHash pin;
  TestRandom random(4242);
  for (const Input &input : Inputs()) {
    const CMatrix &A = input.A;
    const int m = A.GetRows(), n = A.GetCols(), rows = m < n ? n : m;
    const bool anyNaN = HasNonFinite(A);
    const CMatrix padded = m < n ? RowCat(A, Zeros(n - m, n)) : A;

    Rows a(padded), v(Zeros(n, n)), literalA(padded), literalV(Zeros(n, n));
    std::vector<double> w(static_cast<std::size_t>(n)), literalW(w);
    const double r = SvdCore(a.Table(), rows, n, w.data(), v.Table());
    const double literalR =
        ReferenceSvdCore(literalA.Table(), rows, n, literalW.data(), literalV.Table());
    EXPECT_TRUE(Same(CMatrix(w.data(), n, 1), CMatrix(literalW.data(), n, 1), anyNaN))
        << "w of " << input.name;
    EXPECT_TRUE(Same(v.Matrix(n, n), literalV.Matrix(n, n), anyNaN)) << "v of " << input.name;
    EXPECT_TRUE(Same(a.Matrix(rows, n), literalA.Matrix(rows, n), anyNaN)) << "a of " << input.name;
    EXPECT_TRUE(Same(r, literalR, anyNaN)) << "ratio of " << input.name;
    if (!anyNaN) {
      pin.Add(literalW.data(), n);
      for (int i = 0; i < n; ++i)
        pin.Add(literalV.Table()[i], n);
      for (int i = 0; i < rows; ++i)
        pin.Add(literalA.Table()[i], n);
      pin.Add(literalR);
    }

    CMatrix U, S, V, literalU, literalS, literalV2;
    const double cond = Svd(A, U, S, V);
    const double literalCond = ReferenceSvd(A, literalU, literalS, literalV2);
    EXPECT_TRUE(Same(U, literalU, anyNaN)) << "U of " << input.name;
    EXPECT_TRUE(Same(S, literalS, anyNaN)) << "S of " << input.name;
    EXPECT_TRUE(Same(V, literalV2, anyNaN)) << "V of " << input.name;
    EXPECT_TRUE(Same(cond, literalCond, anyNaN)) << "Svd of " << input.name;
    EXPECT_TRUE(Same(Cond(A), literalCond, anyNaN)) << "Cond of " << input.name;

    // One right-hand side takes the column route for up to six unknowns.
    for (int k : {1, 3}) {
      CMatrix b = random.Matrix(m, k, -5.0, 5.0);
      if (m > 1) b(1, 0) = -0.0;
      CMatrix x, literalX;
      const double literalLsqCond = ReferenceLsq(A, b, literalX);
      EXPECT_TRUE(Same(Lsq(A, b, x), literalLsqCond, anyNaN)) << input.name << ", k = " << k;
      EXPECT_TRUE(Same(x, literalX, anyNaN)) << input.name << ", k = " << k;
      // The solution may overwrite the right-hand side.
      Lsq(A, b, b);
      EXPECT_TRUE(Same(b, literalX, anyNaN)) << input.name << " into b, k = " << k;
    }
  }
  EXPECT_EQ(pin.Value(), kLiteralEngineHash);
}

// TallLsq on a copy of A's columns and b.
double Tall(const CMatrix &A, const CMatrix &b, CMatrix &x) {
  const int m = A.GetRows(), n = A.GetCols();
  TallColumns columns(m, n);
  for (int j = 0; j < n; ++j)
    for (int i = 0; i < m; ++i)
      columns[j][i] = A(i, j);
  std::vector<double> rhs(static_cast<std::size_t>(m)), solution(static_cast<std::size_t>(n));
  for (int i = 0; i < m; ++i)
    rhs[i] = b(i);
  const double cond = TallLsq(columns.Table(), m, n, rhs.data(), solution.data());
  x = CMatrix(solution.data(), n, 1);
  return cond;
}

// Appends the systems of the fits that solve on columns, for points near a sphere, a
// circle in the plane z = 0 and a paraboloid: (1, 2x, 2y, 2z | x^2 + y^2 + z^2),
// (1, 2x, 2y | x^2 + y^2) and (x^2, 2x, y^2, 2y, 1 | z); with flat, collinear
// and straight point sets they are rank-deficient.
void AddFitSystems(TestRandom &random, int points, std::vector<Input> &systems) {
  for (bool degenerate : {false, true}) {
    CMatrix sphere(points, 5), circle(points, 4), paraboloid(points, 6);
    const auto put = [](CMatrix &system, int i, std::initializer_list<double> row) {
      int j = 0;
      for (double value : row)
        system(i, j++) = value;
    };
    for (int i = 0; i < points; ++i) {
      const double t = random.Uniform(0.0, 6.283185307179586);
      const double u = degenerate ? 0.0 : random.Uniform(-1.5, 1.5);
      const double x = 3.0 + 2.0 * std::cos(t) * std::cos(u) + 1e-3 * random.Normal();
      const double y = -1.0 + 2.0 * std::sin(t) * std::cos(u) + 1e-3 * random.Normal();
      const double z = 0.5 + 2.0 * std::sin(u);
      put(sphere, i, {1.0, 2.0 * x, 2.0 * y, 2.0 * z, x * x + y * y + z * z});
      const double cx = degenerate ? t : x, cy = degenerate ? 2.0 * t : y;
      put(circle, i, {1.0, 2.0 * cx, 2.0 * cy, cx * cx + cy * cy});
      const double px = random.Uniform(-2.0, 2.0), py = degenerate ? 1.0 : random.Uniform(-2, 2);
      put(paraboloid, i,
          {px * px, 2.0 * px, py * py, 2.0 * py, 1.0,
           0.3 * px * px - 0.2 * py * py + 1e-3 * random.Normal()});
    }
    const std::string how = degenerate ? " (degenerate)" : "";
    systems.push_back({"sphere system" + how, sphere});
    systems.push_back({"circle system" + how, circle});
    systems.push_back({"paraboloid system" + how, paraboloid});
  }
}

// Every number of unknowns TallLsq takes, row counts around its block of 16
// rows, on random, rank-deficient, badly scaled and non-finite systems, on ones
// with a zero column or a zero leading row, and on the systems of the fits.
TEST(SvdFast, TallLsqMatchesTheLiteralSolver) {
  TestRandom random(777);
  std::vector<Input> systems;  // the last column is the right-hand side
  for (int n = 1; n <= kTallLsqMaxUnknowns; ++n) {
    for (int m : {n, n + 1, 15, 16, 17, 33, 250}) {
      if (m < n) continue;
      const CMatrix A = random.Matrix(m, n + 1, -2.0, 2.0);
      CMatrix deficient = A, scaled = A, zeroColumn = A, zeroRow = A, nan = A, inf = A;
      deficient.SetCol(Col(A, 0), n - 1);
      scaled.SetCol(1e150 * Col(A, 0), 0);
      zeroColumn.SetCol(Zeros(m, 1), n - 1);
      for (int j = 0; j < n; ++j)
        zeroRow(0, j) = 0.0;
      nan(m / 2, n / 2) = std::nan("");
      inf(m - 1, 0) = HUGE_VAL;
      const std::string at = " " + std::to_string(m) + " x " + std::to_string(n);
      systems.insert(systems.end(), {{"random" + at, A},
                                     {"rank-deficient" + at, deficient},
                                     {"scaled" + at, scaled},
                                     {"zero column" + at, zeroColumn},
                                     {"zero row" + at, zeroRow},
                                     {"NaN" + at, nan},
                                     {"infinity" + at, inf}});
    }
  }
  AddFitSystems(random, 1000, systems);

  for (const Input &system : systems) {
    const int n = system.A.GetCols() - 1;
    const CMatrix A = system.A(Seq(0, system.A.GetRows() - 1, 1), Seq(0, n - 1, 1));
    const CMatrix b = Col(system.A, n);
    const bool anyNaN = HasNonFinite(A);
    CMatrix x, literalX;
    const double literalCond = ReferenceLsq(A, b, literalX);
    EXPECT_TRUE(Same(Tall(A, b, x), literalCond, anyNaN)) << system.name;
    EXPECT_TRUE(Same(x, literalX, anyNaN)) << system.name;
  }
}

}  // namespace
