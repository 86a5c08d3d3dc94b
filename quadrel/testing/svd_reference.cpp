#include "quadrel/testing/svd_reference.h"

#include <cmath>
#include <new>

#include "quadrel/testing/test_util.h"

namespace {

// The scalar helpers, written again so that nothing here comes from the engine
// under test.

// x if x >= 0, else -x: -0.0 stays -0.0.
double RefAbs(const double &x) {
  return x >= 0 ? x : -x;
}

// |a| if b >= 0 (so also for b = -0.0), else -|a|.
double RefSign(double a, double b) {
  return b >= 0 ? RefAbs(a) : -RefAbs(a);
}

double RefMax(double a, double b) {
  return a > b ? a : b;
}

// sqrt(a^2 + b^2) with the smaller magnitude divided by the larger; 0 for 0, 0.
double RefHypot(double a, double b) {
  const double p = std::fabs(a);
  const double q = std::fabs(b);
  if (p > q) return std::sqrt((q / p) * (q / p) + 1.0) * p;
  if (q == 0.0) return 0.0;
  return std::sqrt((p / q) * (p / q) + 1.0) * q;
}

// t is negligible beside the norm bound B when adding it changes nothing; a
// NaN on either side counts as negligible.
bool RefNegligible(double t, double B) {
  const double sum = std::fabs(t) + B;
  return sum == B || std::isnan(sum) || std::isnan(B);
}

}  // namespace

double ReferenceSvdCore(double **a, int m, int n, double *w, double **v) {
  // Indices count from 1: A(1, 1) is a[0][0], W(1) is w[0], e[1] the first
  // superdiagonal entry (e[0] is never touched).
  auto A = [a](int r, int c) -> double & { return a[r - 1][c - 1]; };
  auto V = [v](int r, int c) -> double & { return v[r - 1][c - 1]; };
  auto W = [w](int i) -> double & { return w[i - 1]; };
  double *e = static_cast<double *>(::operator new(sizeof(double) * (n + 1)));

  double g = 0.0, s = 0.0, f = 0.0, h = 0.0, scale = 0.0;
  double cs = 0.0, sn = 0.0, x = 0.0, y = 0.0, z = 0.0, p = 0.0, q = 0.0;
  int l = 0;
  double B = 0.0;

  // Step 1: Householder reduction to upper bidiagonal form.
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
        g = -RefSign(std::sqrt(s), f);
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
        g = -RefSign(std::sqrt(s), f);
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
    B = RefMax(B, std::fabs(W(i)) + std::fabs(e[i]));
  }

  // Step 2: accumulate the right-hand transformations into v.
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
      for (int j = l; j <= n; ++j) {
        V(j, i) = 0.0;
        V(i, j) = 0.0;
      }
    }
    V(i, i) = 1.0;
    g = e[i];
    l = i;
  }

  // Step 3: accumulate the left-hand transformations in place in a.
  for (int i = (m < n ? m : n); i >= 1; --i) {
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

  // Step 4: diagonalise the bidiagonal form, values from the last to the first,
  // with at most 30 iterations each.
  for (int k = n; k >= 1; --k) {
    for (int iteration = 1; iteration <= 30; ++iteration) {
      bool cancel = false;
      for (l = k; l >= 1; --l) {
        if (RefNegligible(e[l], B)) break;
        if (RefNegligible(W(l - 1), B)) {
          cancel = true;
          break;
        }
      }
      if (cancel) {
        cs = 0.0;
        sn = 1.0;
        for (int i = l; i <= k; ++i) {
          f = sn * e[i];
          e[i] = cs * e[i];
          if (RefNegligible(f, B)) break;
          g = W(i);
          h = RefHypot(f, g);
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
      g = RefHypot(f, 1.0);
      f = ((x - z) * (x + z) + h * (y / (f + RefSign(g, f)) - h)) / x;
      cs = 1.0;
      sn = 1.0;
      for (int j = l; j <= k - 1; ++j) {
        const int i = j + 1;
        g = e[i];
        y = W(i);
        h = sn * g;
        g = cs * g;
        z = RefHypot(f, h);
        e[j] = z;
        // Both f and h zero: the rotation is the identity rather than 0 / 0.
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
        z = RefHypot(f, h);
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

  // Step 5: the extremes, by magnitude, beside the start values.
  ::operator delete(e);
  double lo = 1e25;
  double hi = 1e-25;
  for (int i = 1; i <= n; ++i) {
    if (std::fabs(W(i)) > hi) hi = W(i);
    if (std::fabs(W(i)) < lo) lo = W(i);
  }
  return lo / hi;
}

double ReferenceSvd(const CMatrix &A, CMatrix &U, CMatrix &S, CMatrix &V) {
  const int m = A.GetRows();
  const int n = A.GetCols();
  const int rows = m < n ? n : m;
  CMatrix padded(0.0, rows, n);
  for (int i = 0; i < m; ++i)
    for (int j = 0; j < n; ++j)
      padded(i, j) = A(i, j);

  double **a = padded.GetBuffer2D();
  double **v = padded.GetBuffer2D();
  double *w = static_cast<double *>(::operator new(sizeof(double) * n));
  const double r = ReferenceSvdCore(a, rows, n, w, v);
  // Eye(n) with w on its diagonal.
  S = CMatrix(0.0, n, n);
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
  ::operator delete(w);
  return 1.0 / r;
}

double ReferenceLsq(const CMatrix &A, const CMatrix &b, CMatrix &x) {
  const int m = A.GetRows();
  const int n = A.GetCols();
  CMatrix U, S, V;
  const double cond = ReferenceSvd(A, U, S, V);
  if (n == 0) {
    x = CMatrix(0.0, 0, b.GetCols());
    return cond;
  }
  // Max(Diag(S)): the first of equal values wins.
  double largest = S(0, 0);
  for (int i = 1; i < n; ++i)
    if (S(i, i) > largest) largest = S(i, i);
  const double tol = static_cast<double>(m < n ? n : m) * largest * 2.220446049250313e-16;
  for (int i = 0; i < n; ++i)
    if (S(i, i) < tol) S(i, i) = 0.0;
  CMatrix T = S;
  for (int i = 0; i < n; ++i)
    if (T(i, i) != 0.0) T(i, i) = 1.0 / T(i, i);
  CMatrix Ut(U.GetCols(), U.GetRows());
  for (int i = 0; i < U.GetRows(); ++i)
    for (int j = 0; j < U.GetCols(); ++j)
      Ut(j, i) = U(i, j);
  const CMatrix P = LiteralProduct(LiteralProduct(V, T), Ut);
  x = LiteralProduct(P, b);
  return cond;
}
