// Steps of the singular value decomposition that work on the small n x n part
// only, shared by the engine on row arrays (SvdCore) and the one on columns
// (TallLsq). Indices count from 1, as in the algorithm: W(i) is singular value
// i, e[i] the superdiagonal element next to it (e[0] unused), A(r, c) and
// V(r, c) elements of the working matrix and of V.
#ifndef QUADREL_LINALG_SVD_STEPS_H
#define QUADREL_LINALG_SVD_STEPS_H

#include <cmath>

#include "quadrel/linalg/internal/svd_core.h"
#include "quadrel/matrix/internal/access.h"
#include "quadrel/matrix/internal/double_pair.h"

// A plane rotation of the left-hand factor, recorded to be applied later to the
// columns first and second, counted from 0.
struct PlaneRotation {
  int first;
  int second;
  double cs;
  double sn;
};

// Applies a rotation to two columns of a block of kRows rows (kRows even):
// element by element, (first, second) become (first * cs + second * sn,
// second * cs - first * sn), two rows per instruction.
template <int kRows>
inline void RotateBlock(double *first, double *second, const PlaneRotation &rotation) {
  const DoublePair cs = SplatPair(rotation.cs);
  const DoublePair sn = SplatPair(rotation.sn);
  for (int r = 0; r < kRows; r += 2) {
    const DoublePair p = LoadPair(first + r);
    const DoublePair q = LoadPair(second + r);
    StorePair(first + r, p * cs + q * sn);
    StorePair(second + r, q * cs - p * sn);
  }
}

// Accumulates the right-hand transformations of the bidiagonalisation into V,
// from rows 1..n - 1 of A. Pass i works with l = i + 1 and g = e[i + 1], the
// values the pass before it leaves behind.
template <class AAt, class VAt>
void AccumulateRight(int n, const double *e, AAt A, VAt V) {
  for (int i = n; i >= 1; --i) {
    if (i < n) {
      const int l = i + 1;
      const double g = e[l];
      if (g != 0.0) {
        // Two divisions in this order, to avoid an underflow of the product.
        for (int j = l; j <= n; ++j)
          V(j, i) = (A(i, j) / A(i, l)) / g;
        for (int j = l; j <= n; ++j) {
          double s = 0.0;
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
  }
}

// Diagonalises the bidiagonal form (W, e) by implicitly shifted QR sweeps,
// finishing the values from the last to the first, and applies every rotation
// to V at once. The rotations that belong to the left-hand factor go to
// rotate(first, second, cs, sn) in the order they arise, each to act on
// columns first and second (counted from 1) as (first * cs + second * sn,
// second * cs - first * sn). A value gets at most kSvdMaxSweeps sweeps; after
// the last the loop simply moves on to the next value. Values come out
// non-negative, by flipping the matching column of V.
template <class WAt, class VAt, class Rotate>
void Diagonalise(int n, double B, double *e, WAt W, VAt V, Rotate rotate) {
  double g = 0.0, f = 0.0, h = 0.0, cs = 0.0, sn = 0.0, x = 0.0, y = 0.0, z = 0.0;
  int l = 0;
  for (int k = n; k >= 1; --k) {
    for (int iteration = 1; iteration <= kSvdMaxSweeps; ++iteration) {
      // Split search: find the top l of the unreduced block that ends at k.
      bool cancel = true;
      for (l = k; l >= 1; --l) {
        if (Negligible(e[l], B)) {
          cancel = false;
          break;
        }
        if (Negligible(W(l - 1), B)) break;
      }
      // w[l - 1] is negligible: chase e[l] out of the block by rotations that
      // act on columns l - 1 and i.
      if (cancel) {
        cs = 0.0;
        sn = 1.0;
        for (int i = l; i <= k; ++i) {
          f = sn * e[i];
          e[i] = cs * e[i];
          if (Negligible(f, B)) break;
          g = W(i);
          h = StableHypot(f, g);
          W(i) = h;
          h = 1.0 / h;
          cs = g * h;
          sn = -f * h;
          rotate(l - 1, i, cs, sn);
        }
      }
      z = W(k);
      if (l == k) {
        // Converged.
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
          const double p = V(r, j);
          const double q = V(r, i);
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
        rotate(j, i, cs, sn);
      }
      e[l] = 0.0;
      e[k] = f;
      W(k) = x;
    }
  }
}

// The smallest singular value over the largest, both found by magnitude among
// the start values 1e25 (smallest) and 1e-25 (largest): a value of 1e25 or
// more never becomes the smallest, one of 1e-25 or less never the largest.
template <class WAt>
double SingularRatio(int n, WAt W) {
  double lo = 1e25;
  double hi = 1e-25;
  for (int i = 1; i <= n; ++i) {
    if (std::fabs(W(i)) > hi) hi = W(i);
    if (std::fabs(W(i)) < lo) lo = W(i);
  }
  return lo / hi;
}

// The rank threshold of the pseudo-inverse is rows * largest * kRankEpsilon,
// with kRankEpsilon = 2^-52, the spacing of doubles at 1.
constexpr double kRankEpsilon = 2.220446049250313e-16;

// The middle of the pseudo-inverse, for singular values sv[0..n - 1] (unsorted)
// of a matrix of rows rows (counting zero rows it was padded with) and its V:
// the largest value is searched for (the first of equal values wins), values
// strictly below rows * largest * kRankEpsilon are dropped to 0 and every other
// non-zero value is inverted, in place; then VT(i, c) = V * T with T the
// diagonal matrix of those inverses, each element a sum from 0.0 in rising k
// of V(i, k) * T(k, c) + acc, the zero terms of T taking part as in the
// product. V and VT count from 0.
template <class VAt, class VTAt>
void InvertedValuesTimesV(int n, int rows, double *sv, VAt V, VTAt VT) {
  int best = 0;
  for (int i = 1; i < n; ++i)
    if (sv[i] > sv[best]) best = i;
  const double tol = static_cast<double>(rows) * sv[best] * kRankEpsilon;
  for (int i = 0; i < n; ++i) {
    if (sv[i] < tol) sv[i] = 0.0;
    if (sv[i] != 0.0) sv[i] = 1.0 / sv[i];
  }
  for (int i = 0; i < n; ++i)
    for (int c = 0; c < n; ++c) {
      double acc = 0.0;
      for (int k = 0; k < n; ++k)
        acc = V(i, k) * (k == c ? sv[c] : 0.0) + acc;
      VT(i, c) = acc;
    }
}

#endif  // QUADREL_LINALG_SVD_STEPS_H
