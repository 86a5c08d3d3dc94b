#include "quadrel/linalg/svd_core.h"

#include <cmath>
#include <cstddef>
#include <new>

#include "quadrel/matrix/scalar.h"

double StableHypot(double a, double b) {
  const double p = std::fabs(a);
  const double q = std::fabs(b);
  if (p > q) {
    const double t = q / p;
    return std::sqrt(t * t + 1.0) * p;
  }
  if (q == 0.0) return 0.0;
  const double t = p / q;
  return std::sqrt(t * t + 1.0) * q;
}

double TransferSign(double a, double b) {
  return b >= 0 ? AbsRef(a) : -AbsRef(a);
}

double MaxDouble(double a, double b) {
  return a > b ? a : b;
}

double SvdCore(double **a, int m, int n, double *w, double **v) {
  // The algorithm is written with indices that count from 1; these accessors
  // map them onto the arrays, which count from 0. Entry 0 of e is never used,
  // so e is addressed directly.
  auto A = [a](int r, int c) -> double & { return a[r - 1][c - 1]; };
  auto V = [v](int r, int c) -> double & { return v[r - 1][c - 1]; };
  auto W = [w](int i) -> double & { return w[i - 1]; };
  double *e =
      static_cast<double *>(::operator new(sizeof(double) * static_cast<std::size_t>(n + 1)));

  // B bounds the norm of the bidiagonal form and is the scale of every
  // convergence test: t counts as zero when adding it to B changes nothing. A
  // NaN on either side counts as negligible too (neither < nor > holds), so the
  // split search always ends at l = 1 at the latest, where e[1] is kept at 0,
  // even when B itself has become NaN.
  double B = 0.0;
  auto negligible = [&B](double t) {
    const double sum = std::fabs(t) + B;
    return !(sum < B) && !(sum > B);
  };

  double g = 0.0, s = 0.0, f = 0.0, h = 0.0, scale = 0.0;
  double cs = 0.0, sn = 0.0, x = 0.0, y = 0.0, z = 0.0, p = 0.0, q = 0.0;
  int l = 0;

  // Householder reduction to upper bidiagonal form. g and scale carry over from
  // the row transform of one pass into e[i] of the next.
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
        // Scratch use of e: each of these entries is overwritten by a later pass.
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

  // Accumulate the right-hand transformations into v, with the g and l that
  // the reduction left behind.
  for (int i = n; i >= 1; --i) {
    if (i < n) {
      if (g != 0.0) {
        // Two divisions in this order, to avoid an underflow of the product.
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

  // Accumulate the left-hand transformations in place in a.
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

  // Diagonalise the bidiagonal form, finishing the values from the last to the
  // first. A value gets at most 30 sweeps; after the 30th the loop simply moves
  // on to the next value.
  for (int k = n; k >= 1; --k) {
    for (int iteration = 1; iteration <= 30; ++iteration) {
      // Split search: find the top l of the unreduced block that ends at k.
      bool cancel = true;
      for (l = k; l >= 1; --l) {
        if (negligible(e[l])) {
          cancel = false;
          break;
        }
        if (negligible(W(l - 1))) break;
      }
      // w[l - 1] is negligible: chase e[l] out of the block by rotations that
      // act on columns l - 1 and i of a.
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
        // Converged. Singular values are made non-negative by flipping the
        // matching column of v; a stays as it is.
        if (z < 0.0) {
          W(k) = -z;
          for (int j = 1; j <= n; ++j)
            V(j, k) = -V(j, k);
        }
        break;
      }
      // Shift from the bottom 2 x 2 of the block.
      x = W(l);
      y = W(k - 1);
      g = e[k - 1];
      h = e[k];
      f = ((y - z) * (y + z) + (g - h) * (g + h)) / (2.0 * h * y);
      g = StableHypot(f, 1.0);
      f = ((x - z) * (x + z) + h * (y / (f + TransferSign(g, f)) - h)) / x;
      // QR sweep over the block.
      cs = 1.0;
      sn = 1.0;
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
          // f and h are both zero: there is nothing to rotate, so the rotation
          // is the identity instead of 0 / 0.
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
        // With z = 0 the rotation angle is arbitrary; cs and sn keep the values
        // from above.
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
  ::operator delete(e);

  // The start values take part: a value of 1e25 or more never becomes the
  // smallest, one of 1e-25 or less never the largest.
  double lo = 1e25;
  double hi = 1e-25;
  for (int i = 1; i <= n; ++i) {
    if (std::fabs(W(i)) > hi) hi = W(i);
    if (std::fabs(W(i)) < lo) lo = W(i);
  }
  return lo / hi;
}
