// SvdCore walks the rows in fused passes and queues the rotations of its
// diagonalisation, Svd keeps small working arrays on the stack, and Lsq forms
// the pseudo-inverse column by column straight into the solution. These tests
// hold each of them to the plain statement of its algorithm, bit for bit.
#include <cmath>
#include <vector>

#include <gtest/gtest.h>

#include "quadrel/functions/constructors.h"
#include "quadrel/functions/rearrange.h"
#include "quadrel/functions/reductions.h"
#include "quadrel/linalg/least_squares.h"
#include "quadrel/linalg/svd.h"
#include "quadrel/linalg/svd_core.h"
#include "quadrel/matrix/operators.h"
#include "quadrel/matrix/scalar.h"
#include "quadrel/testing/alloc_counter.h"
#include "quadrel/testing/test_util.h"

namespace {

// The engine as its steps read, one loop per column and every rotation applied
// where it arises; indices count from 1.
double LiteralSvdCore(double **a, int m, int n, double *w, double **v) {
  auto A = [a](int r, int c) -> double & { return a[r - 1][c - 1]; };
  auto V = [v](int r, int c) -> double & { return v[r - 1][c - 1]; };
  auto W = [w](int i) -> double & { return w[i - 1]; };
  std::vector<double> e(static_cast<std::size_t>(n) + 1);
  double B = 0.0;
  auto negligible = [&B](double t) {
    const double sum = std::fabs(t) + B;
    return !(sum < B) && !(sum > B);
  };
  double g = 0.0, s = 0.0, f = 0.0, h = 0.0, scale = 0.0, cs, sn, x, y, z, p, q;
  int l = 0;
  for (int i = 1; i <= n; ++i) {
    l = i + 1;
    e[i] = scale * g;
    g = s = scale = 0.0;
    if (i <= m) {
      for (int k = i; k <= m; ++k)
        scale += std::fabs(A(k, i));
      if (scale != 0.0) {
        for (int k = i; k <= m; ++k) {
          A(k, i) = A(k, i) / scale;
          s += A(k, i) * A(k, i);
        }
        f = A(i, i);
        g = -TransferSign(std::sqrt(s), f);
        h = f * g - s;
        A(i, i) = f - g;
        for (int j = l; j <= n; ++j) {
          s = 0.0;
          for (int k = i; k <= m; ++k)
            s += A(k, i) * A(k, j);
          f = s / h;
          for (int k = i; k <= m; ++k)
            A(k, j) += f * A(k, i);
        }
        for (int k = i; k <= m; ++k)
          A(k, i) = scale * A(k, i);
      }
    }
    W(i) = scale * g;
    g = s = scale = 0.0;
    if (i <= m && i != n) {
      for (int k = l; k <= n; ++k)
        scale += std::fabs(A(i, k));
      if (scale != 0.0) {
        for (int k = l; k <= n; ++k) {
          A(i, k) = A(i, k) / scale;
          s += A(i, k) * A(i, k);
        }
        f = A(i, l);
        g = -TransferSign(std::sqrt(s), f);
        h = f * g - s;
        A(i, l) = f - g;
        for (int k = l; k <= n; ++k)
          e[k] = A(i, k) / h;
        for (int j = l; j <= m; ++j) {
          s = 0.0;
          for (int k = l; k <= n; ++k)
            s += A(j, k) * A(i, k);
          for (int k = l; k <= n; ++k)
            A(j, k) += s * e[k];
        }
        for (int k = l; k <= n; ++k)
          A(i, k) = scale * A(i, k);
      }
    }
    B = MaxDouble(B, std::fabs(W(i)) + std::fabs(e[i]));
  }
  for (int i = n; i >= 1; --i) {
    if (i < n) {
      if (g != 0.0) {
        for (int j = l; j <= n; ++j)
          V(j, i) = (A(i, j) / A(i, l)) / g;
        for (int j = l; j <= n; ++j) {
          s = 0.0;
          for (int k = l; k <= n; ++k)
            s += A(i, k) * V(k, j);
          for (int k = l; k <= n; ++k)
            V(k, j) += s * V(k, i);
        }
      }
      for (int j = l; j <= n; ++j)
        V(j, i) = V(i, j) = 0.0;
    }
    V(i, i) = 1.0;
    g = e[i];
    l = i;
  }
  for (int i = MinInt(m, n); i >= 1; --i) {
    l = i + 1;
    g = W(i);
    for (int j = l; j <= n; ++j)
      A(i, j) = 0.0;
    if (g != 0.0) {
      g = 1.0 / g;
      for (int j = l; j <= n; ++j) {
        s = 0.0;
        for (int k = l; k <= m; ++k)
          s += A(k, i) * A(k, j);
        f = (s / A(i, i)) * g;
        for (int k = i; k <= m; ++k)
          A(k, j) += f * A(k, i);
      }
      for (int j = i; j <= m; ++j)
        A(j, i) = g * A(j, i);
    } else {
      for (int j = i; j <= m; ++j)
        A(j, i) = 0.0;
    }
    A(i, i) = A(i, i) + 1.0;
  }
  for (int k = n; k >= 1; --k) {
    for (int iteration = 1; iteration <= 30; ++iteration) {
      bool cancel = true;
      for (l = k; l >= 1; --l) {
        if (negligible(e[l])) {
          cancel = false;
          break;
        }
        if (negligible(W(l - 1))) break;
      }
      if (cancel) {
        cs = 0.0;
        sn = 1.0;
        for (int i = l; i <= k; ++i) {
          f = sn * e[i];
          e[i] = cs * e[i];
          if (negligible(f)) break;
          g = W(i);
          h = StableHypot(f, g);
          W(i) = h;
          h = 1.0 / h;
          cs = g * h;
          sn = -f * h;
          for (int j = 1; j <= m; ++j) {
            y = A(j, l - 1);
            z = A(j, i);
            A(j, l - 1) = y * cs + z * sn;
            A(j, i) = z * cs - y * sn;
          }
        }
      }
      z = W(k);
      if (l == k) {
        if (z < 0.0) {
          W(k) = -z;
          for (int j = 1; j <= n; ++j)
            V(j, k) = -V(j, k);
        }
        break;
      }
      x = W(l);
      y = W(k - 1);
      g = e[k - 1];
      h = e[k];
      f = ((y - z) * (y + z) + (g - h) * (g + h)) / (2.0 * h * y);
      g = StableHypot(f, 1.0);
      f = ((x - z) * (x + z) + h * (y / (f + TransferSign(g, f)) - h)) / x;
      cs = sn = 1.0;
      for (int j = l; j <= k - 1; ++j) {
        const int i = j + 1;
        g = e[i];
        y = W(i);
        h = sn * g;
        g = cs * g;
        z = StableHypot(f, h);
        e[j] = z;
        if (z != 0.0) {
          cs = f / z;
          sn = h / z;
        } else {
          cs = 1.0;
          sn = 0.0;
        }
        f = x * cs + g * sn;
        g = g * cs - x * sn;
        h = y * sn;
        y = y * cs;
        for (int r = 1; r <= n; ++r) {
          p = V(r, j);
          q = V(r, i);
          V(r, j) = p * cs + q * sn;
          V(r, i) = q * cs - p * sn;
        }
        z = StableHypot(f, h);
        W(j) = z;
        if (z != 0.0) {
          z = 1.0 / z;
          cs = f * z;
          sn = h * z;
        }
        f = cs * g + sn * y;
        x = cs * y - sn * g;
        for (int r = 1; r <= m; ++r) {
          p = A(r, j);
          q = A(r, i);
          A(r, j) = p * cs + q * sn;
          A(r, i) = q * cs - p * sn;
        }
      }
      e[l] = 0.0;
      e[k] = f;
      W(k) = x;
    }
  }
  double lo = 1e25, hi = 1e-25;
  for (int i = 1; i <= n; ++i) {
    if (std::fabs(W(i)) > hi) hi = W(i);
    if (std::fabs(W(i)) < lo) lo = W(i);
  }
  return lo / hi;
}

// Svd as its steps read: separate row arrays from GetBuffer2D, the engine
// above, and the factors built from the arrays. A wide matrix is padded with
// zero rows, as Svd does.
double LiteralSvd(const CMatrix &A, CMatrix &U, CMatrix &S, CMatrix &V) {
  const int m = A.GetRows();
  const int n = A.GetCols();
  const int rows = m < n ? n : m;
  const CMatrix padded = rows == m ? A : RowCat(A, Zeros(rows - m, n));
  double **a = padded.GetBuffer2D();
  double **v = padded.GetBuffer2D();
  std::vector<double> w(static_cast<std::size_t>(n) + 1);
  const double r = LiteralSvdCore(a, rows, n, w.data(), v);
  S = Eye(n);
  for (int i = 0; i < n; ++i)
    S(i, i) = w[i];
  V = CMatrix(v, n, n);
  U = CMatrix(a, m, n);
  for (int i = 0; i < rows; ++i) {
    ::operator delete(a[i]);
    ::operator delete(v[i]);
  }
  ::operator delete(a);
  ::operator delete(v);
  return 1.0 / r;
}

// Lsq as its steps read, with the full pseudo-inverse.
double LiteralLsq(const CMatrix &A, const CMatrix &b, CMatrix &x) {
  CMatrix U, S, V;
  const double cond = LiteralSvd(A, U, S, V);
  const int m = A.GetRows();
  const int n = A.GetCols();
  const double largest = Max(Diag(S))(0);
  const double tol = static_cast<double>(m < n ? n : m) * largest * 2.220446049250313e-16;
  for (int i = 0; i < n; ++i)
    if (S(i, i) < tol) S(i, i) = 0.0;
  CMatrix T = S;
  for (int i = 0; i < n; ++i)
    if (T(i, i) != 0.0) T(i, i) = 1.0 / T(i, i);
  const CMatrix P = LiteralProduct(LiteralProduct(V, T), Transpose(U));
  x = LiteralProduct(P, b);
  return cond;
}

// Test systems: random, with duplicated columns (rank-deficient), a zero
// column, signed zeros, tiny and huge scales, and columns permuted in the
// table.
std::vector<CMatrix> Systems(TestRandom &random) {
  std::vector<CMatrix> systems;
  const int shapes[][2] = {{1, 1}, {2, 2},  {3, 3},   {3, 2},  {4, 4},    {5, 3},   {7, 7},
                           {9, 4}, {12, 5}, {30, 20}, {40, 9}, {2000, 4}, {3000, 5}};
  for (const auto &shape : shapes) {
    const int m = shape[0];
    const int n = shape[1];
    CMatrix A = random.Matrix(m, n, -3.0, 3.0);
    systems.push_back(A);
    if (n > 1) {
      CMatrix deficient = A;
      deficient.SetCol(Col(A, 0), n - 1);
      systems.push_back(deficient);
      CMatrix permuted = A;
      permuted.SwapCols(0, n - 1);
      systems.push_back(permuted);
    }
    CMatrix zeros = A;
    for (int i = 0; i < m; ++i) {
      zeros(i, 0) = i % 2 ? -0.0 : 0.0;
      if (n > 2) zeros(i, 1) = 1e-150 * A(i, 1);
    }
    systems.push_back(zeros);
    systems.push_back(1e120 * A);
  }
  systems.push_back(CMatrix(0.0, 6, 3));
  systems.push_back(Eye(4));
  systems.push_back(MakeMatrix(3, 3, {1, 2, 3, 4, 5, 6, 7, 8, 9}));
  return systems;
}

TEST(SvdFast, CoreMatchesItsPlainSteps) {
  TestRandom random(31337);
  for (const CMatrix &A : Systems(random)) {
    const int m = A.GetRows();
    const int n = A.GetCols();
    double **fastA = A.GetBuffer2D();
    double **fastV = A.GetBuffer2D();
    double **plainA = A.GetBuffer2D();
    double **plainV = A.GetBuffer2D();
    std::vector<double> fastW(n), plainW(n);
    const double fast = SvdCore(fastA, m, n, fastW.data(), fastV);
    const double plain = LiteralSvdCore(plainA, m, n, plainW.data(), plainV);
    EXPECT_TRUE(SameBits(CMatrix(fast, 1, 1), CMatrix(plain, 1, 1))) << Describe(A);
    EXPECT_TRUE(SameBits(CMatrix(fastW.data(), 1, n), CMatrix(plainW.data(), 1, n)));
    EXPECT_TRUE(SameBits(CMatrix(fastA, m, n), CMatrix(plainA, m, n))) << m << " x " << n;
    EXPECT_TRUE(SameBits(CMatrix(fastV, n, n), CMatrix(plainV, n, n))) << m << " x " << n;
    for (double **rows : {fastA, fastV, plainA, plainV}) {
      for (int i = 0; i < m; ++i)
        ::operator delete(rows[i]);
      ::operator delete(rows);
    }
  }
}

TEST(SvdFast, FactorsAndSolutionsMatchPlainSteps) {
  TestRandom random(4242);
  std::vector<CMatrix> systems = Systems(random);
  // Wide systems go through the zero-row padding.
  systems.push_back(random.Matrix(2, 5));
  systems.push_back(CMatrix(0.0, 1, 3));
  for (const CMatrix &A : systems) {
    CMatrix U, S, V, plainU, plainS, plainV;
    const double fast = Svd(A, U, S, V);
    const double plain = LiteralSvd(A, plainU, plainS, plainV);
    EXPECT_TRUE(SameBits(CMatrix(fast, 1, 1), CMatrix(plain, 1, 1))) << Describe(A);
    EXPECT_TRUE(SameBits(U, plainU));
    EXPECT_TRUE(SameBits(S, plainS));
    EXPECT_TRUE(SameBits(V, plainV));

    const int m = A.GetRows();
    for (int k : {1, 3}) {
      CMatrix b = random.Matrix(m, k, -5.0, 5.0);
      if (m > 1) b(1, 0) = -0.0;
      CMatrix x, plainX;
      const double cond = Lsq(A, b, x);
      const double plainCond = LiteralLsq(A, b, plainX);
      EXPECT_TRUE(SameBits(CMatrix(cond, 1, 1), CMatrix(plainCond, 1, 1)));
      EXPECT_TRUE(SameBits(x, plainX)) << Describe(A);
      // The solution may overwrite the right-hand side.
      Lsq(A, b, b);
      EXPECT_TRUE(SameBits(b, plainX));
    }
  }
}

TEST(SvdFast, SmallDecompositionsStayOffTheHeap) {
  TestRandom random(9);
  const CMatrix A = random.Matrix(3, 3);
  CMatrix U, S, V;
  Svd(A, U, S, V);
  AllocationScope scope;
  Svd(A, U, S, V);
  EXPECT_EQ(scope.Count(), 0u);
}

}  // namespace
