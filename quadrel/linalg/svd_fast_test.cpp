// SvdCore walks the rows in fused passes and queues the rotations of its
// diagonalisation, Svd keeps small working arrays on the stack, and Lsq forms
// the pseudo-inverse column by column straight into the solution. These tests
// hold each of them to the plain statement of its algorithm, bit for bit.
#include <cmath>
#include <cstdint>
#include <cstring>
#include <vector>

#include <gtest/gtest.h>

#include "quadrel/functions/constructors.h"
#include "quadrel/functions/rearrange.h"
#include "quadrel/functions/reductions.h"
#include "quadrel/linalg/least_squares.h"
#include "quadrel/linalg/svd.h"
#include "quadrel/linalg/internal/svd_core.h"
#include "quadrel/linalg/internal/tall_lsq.h"
#include "quadrel/matrix/operators.h"
#include "quadrel/testing/alloc_counter.h"
#include "quadrel/testing/bit_hash.h"
#include "quadrel/testing/test_util.h"

namespace {

// Row arrays as GetBuffer2D gives them, freed at the end of the scope.
struct RowArrays {
  explicit RowArrays(const CMatrix &M) : rows(M.GetRows()), table(M.GetBuffer2D()) {}
  ~RowArrays() {
    for (int i = 0; i < rows; ++i)
      ::operator delete(table[i]);
    ::operator delete(table);
  }
  int rows;
  double **table;
};

// Test inputs: for each shape a random matrix, the same with its last column a
// copy of the first (rank-deficient), with its first and last columns exchanged
// in the column table, and scaled to 1e120 with a column of signed zeros and
// one 1e-150 times smaller; then a few special matrices and the empty shapes.
// Wide shapes reach the engine padded with zero rows, as Svd passes them.
std::vector<CMatrix> Inputs() {
  TestRandom random(31337);
  std::vector<CMatrix> inputs;
  const int shapes[][2] = {{1, 1},  {2, 2},  {3, 2},   {3, 3},  {4, 4},    {5, 3}, {7, 7}, {9, 4},
                           {12, 5}, {17, 6}, {30, 20}, {40, 9}, {3000, 5}, {2, 5}, {4, 9}};
  for (const auto &shape : shapes) {
    const int m = shape[0], n = shape[1];
    const CMatrix A = random.Matrix(m, n, -3.0, 3.0);
    CMatrix deficient = A, permuted = A, extreme = 1e120 * A;
    deficient.SetCol(Col(A, 0), n - 1);
    permuted.SwapCols(0, n - 1);
    for (int i = 0; i < m; ++i) {
      extreme(i, 0) = i % 2 ? -0.0 : 0.0;
      if (n > 2) extreme(i, 1) = 1e-150 * extreme(i, 1);
    }
    inputs.insert(inputs.end(), {A, deficient, permuted, extreme});
  }
  inputs.insert(inputs.end(), {CMatrix(0.0, 6, 3), CMatrix(-0.0, 4, 3), Eye(4),
                               MakeMatrix(3, 3, {1, 2, 3, 4, 5, 6, 7, 8, 9}), Zeros(0, 0),
                               Zeros(3, 0), Zeros(0, 3)});
  return inputs;
}

// The results of the engine written out exactly as the algorithm states it
// (one loop per column, every rotation applied where it arises) on Inputs(),
// one per input: FNV-1a of w, then v and a row by row, then the returned ratio.
const std::uint64_t kPlainEngineHashes[] = {
    0x97513a22dfe25081u, 0x97513a22dfe25081u, 0x97513a22dfe25081u, 0xbd6597a2ec0db705u,
    0x6253dc5058256d40u, 0x8f10b39d47ea2d8au, 0x68317d948ac045c7u, 0x463b32885dd29cadu,
    0xc4fbc99320b58e93u, 0x9bab3b271198dc64u, 0x3e5835c44e59148cu, 0xbfe296f8fdbd3902u,
    0xe554758921de691au, 0xe796a4a957fcd4dcu, 0x8aa4ff604a31339bu, 0x0a47e7bc4b155fe0u,
    0xd35843125341b12bu, 0x0e613d2dd8bf83a3u, 0xcbc496fac4440258u, 0xcd95cbb2bdab6bddu,
    0xd881d7521f25b606u, 0xcfb64d3c335bc39fu, 0xa98b36d99f7753aeu, 0x9bc3d7b3a609a45eu,
    0xfdc9bac44d33cc89u, 0x4b8b30878c5e0250u, 0xb52096cd4ed7a5d1u, 0xceb6684095fd7435u,
    0xf800cb2ba36df03fu, 0x1151799497c2dae3u, 0xeda2d7ea5bd6fc34u, 0x92558e696ec09ffdu,
    0xbdde63d2b78f9b3eu, 0x619279589ca9c51du, 0xbe151c02e89794e2u, 0xbcb65a4e72bd6af7u,
    0xdd74efe9172216b5u, 0x536562cc9861edd1u, 0x9354440a2bbc4c66u, 0x624228d29a8c44efu,
    0xd4895f6eec828bb3u, 0xfdf6e940a83f9308u, 0x77baf3608c771c92u, 0x714435428e428463u,
    0xb4e026732ffeddb6u, 0xd99724cee710247bu, 0xc261a7a1928a8c5eu, 0x546f904e3516d9e1u,
    0x775740c7bd42105du, 0x005d59a270e3554au, 0xa5bb54b1c4019987u, 0x71e12482f8182c15u,
    0x79e188ea1ea6bbb0u, 0x698a4a91cfd45aadu, 0x6079e749fedae071u, 0xcfaff127f08eedf8u,
    0x5343c23940e83fb2u, 0x1564b854d394ce43u, 0x816814ffd4e8900du, 0xb250d536661a07f9u,
    0x1503c5e095270ae5u, 0xf531fabdcaa95725u, 0x1b8edc83e25a88f8u, 0xf9c621b81c659970u,
    0x741d14d0ef05c6feu, 0x741d14d0ef05c6feu, 0xd4a9840ca9eb0b45u};

TEST(SvdFast, CoreAndFactorsMatchThePlainEngine) {
  const std::vector<CMatrix> inputs = Inputs();
  ASSERT_EQ(inputs.size(), sizeof kPlainEngineHashes / sizeof kPlainEngineHashes[0]);
  for (std::size_t t = 0; t < inputs.size(); ++t) {
    const CMatrix &A = inputs[t];
    const int m = A.GetRows(), n = A.GetCols(), rows = m < n ? n : m;
    RowArrays a(m < n ? RowCat(A, Zeros(n - m, n)) : A), v(Zeros(n, n));
    std::vector<double> w(static_cast<std::size_t>(n));
    const double r = SvdCore(a.table, rows, n, w.data(), v.table);
    BitHash hash;
    hash.Add(w.data(), n);
    for (int i = 0; i < n; ++i)
      hash.Add(v.table[i], n);
    for (int i = 0; i < rows; ++i)
      hash.Add(a.table[i], n);
    hash.Add(r);
    EXPECT_EQ(hash.Value(), kPlainEngineHashes[t]) << "input " << t << ", " << m << " x " << n;

    // Svd is the engine on a copy: U is the first m rows of a, S carries w on
    // its diagonal and +0.0 elsewhere, and the condition number is 1 / r.
    CMatrix U, S, V, plainS = Eye(n);
    for (int i = 0; i < n; ++i)
      plainS(i, i) = w[i];
    const double cond = Svd(A, U, S, V);
    EXPECT_TRUE(SameBits(U, CMatrix(a.table, m, n))) << "input " << t;
    EXPECT_TRUE(SameBits(S, plainS)) << "input " << t;
    EXPECT_TRUE(SameBits(V, CMatrix(v.table, n, n))) << "input " << t;
    EXPECT_TRUE(SameBits(CMatrix(cond, 1, 1), CMatrix(1.0 / r, 1, 1))) << "input " << t;
    EXPECT_TRUE(SameBits(CMatrix(Cond(A), 1, 1), CMatrix(cond, 1, 1))) << "input " << t;
  }
}

// The plain formulation of Lsq: the pseudo-inverse from Svd with the rank
// threshold, then P * b. Returns the condition number.
double PlainLsq(const CMatrix &A, const CMatrix &b, CMatrix &x) {
  const int m = A.GetRows(), n = A.GetCols();
  CMatrix U, T, V;
  const double cond = Svd(A, U, T, V);
  if (n == 0) {
    x = CMatrix(0.0, 0, b.GetCols());
    return cond;
  }
  const double tol = static_cast<double>(m < n ? n : m) * Max(Diag(T))(0) * 2.220446049250313e-16;
  for (int i = 0; i < n; ++i) {
    if (T(i, i) < tol) T(i, i) = 0.0;
    if (T(i, i) != 0.0) T(i, i) = 1.0 / T(i, i);
  }
  x = (V * T) * Transpose(U) * b;
  return cond;
}

TEST(SvdFast, LsqMatchesThePlainFormulation) {
  TestRandom random(4242);
  for (const CMatrix &A : Inputs()) {
    const int m = A.GetRows();
    for (int k : {1, 3}) {
      CMatrix b = random.Matrix(m, k, -5.0, 5.0);
      if (m > 1) b(1, 0) = -0.0;
      CMatrix plainX, x;
      const double cond = PlainLsq(A, b, plainX);
      EXPECT_TRUE(SameBits(CMatrix(Lsq(A, b, x), 1, 1), CMatrix(cond, 1, 1)));
      EXPECT_TRUE(SameBits(x, plainX)) << Describe(A);
      // The solution may overwrite the right-hand side.
      Lsq(A, b, b);
      EXPECT_TRUE(SameBits(b, plainX));
    }
  }
}

// TallLsq on columns, for every number of unknowns it takes and row counts
// around its block of 16 rows, on random, rank-deficient, badly scaled and
// non-finite systems and on ones with a zero column or a zero leading row.
TEST(SvdFast, TallLsqMatchesThePlainFormulation) {
  TestRandom random(777);
  for (int n = 1; n <= kTallLsqMaxUnknowns; ++n) {
    for (int m : {n, n + 1, 15, 16, 33, 250}) {
      if (m < n) continue;
      const CMatrix A = random.Matrix(m, n, -2.0, 2.0);
      CMatrix deficient = A, scaled = A, zeroColumn = A, zeroRow = A, nan = A;
      deficient.SetCol(Col(A, 0), n - 1);
      for (int i = 0; i < m; ++i) {
        scaled(i, 0) = 1e150 * A(i, 0);
        zeroColumn(i, n - 1) = 0.0;
      }
      for (int j = 0; j < n; ++j)
        zeroRow(0, j) = 0.0;
      nan(m / 2, n / 2) = std::nan("");
      for (const CMatrix &system : {A, deficient, scaled, zeroColumn, zeroRow, nan}) {
        const CMatrix b = random.Matrix(m, 1, -5.0, 5.0);
        CMatrix plainX;
        const double cond = PlainLsq(system, b, plainX);
        std::vector<double> work(static_cast<std::size_t>(m) * n), rhs(m), x(n);
        std::vector<double *> columns(n);
        for (int j = 0; j < n; ++j) {
          columns[j] = work.data() + static_cast<std::size_t>(j) * m;
          for (int i = 0; i < m; ++i)
            columns[j][i] = system(i, j);
        }
        for (int i = 0; i < m; ++i)
          rhs[i] = b(i);
        const double tallCond = TallLsq(columns.data(), m, n, rhs.data(), x.data());
        EXPECT_TRUE(SameBits(CMatrix(tallCond, 1, 1), CMatrix(cond, 1, 1))) << Describe(system);
        // A NaN's sign comes from the arithmetic that made it.
        EXPECT_TRUE(SameValues(CMatrix(x.data(), n, 1), plainX)) << Describe(system);
      }
    }
  }
}

TEST(SvdFast, SmallDecompositionsStayOffTheHeap) {
  const CMatrix A = TestRandom(9).Matrix(3, 3);
  CMatrix U, S, V;
  Svd(A, U, S, V);
  AllocationScope scope;
  Svd(A, U, S, V);
  EXPECT_EQ(scope.Count(), 0u);
}

}  // namespace
