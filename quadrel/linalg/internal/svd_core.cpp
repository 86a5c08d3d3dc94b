#include "quadrel/linalg/internal/svd_core.h"

#include <cmath>
#include <cstddef>

#include "quadrel/linalg/internal/svd_steps.h"
#include "quadrel/linalg/internal/work_arrays.h"
#include "quadrel/matrix/internal/access.h"
#include "quadrel/matrix/internal/double_pair.h"
#include "quadrel/matrix/internal/scalar.h"

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

namespace {

// The plane rotations that the diagonalisation applies to a. a is only written
// there, never read, so its rotations are collected and applied later: every
// element still goes through the same rotations in the same order, but a tall
// a is walked once per batch instead of once per rotation. A batch goes over
// blocks of kBlock rows, copied column by column into a small buffer where each
// rotation turns two rows at once.
class RotationQueue {
 public:
  static constexpr int kBlock = 16;

  // buffer holds kBlock * n doubles.
  RotationQueue(double **a, int m, double *buffer)
      : a_(a), m_(m), buffer_(buffer), count_(0), low_(0), high_(0) {}

  // Columns first and second (counted from 1) become
  // (first * cs + second * sn, second * cs - first * sn).
  void Add(int first, int second, double cs, double sn) {
    if (count_ == kCapacity) Flush();
    PlaneRotation &r = queue_[count_++];
    r.first = first - 1;
    r.second = second - 1;
    r.cs = cs;
    r.sn = sn;
    const int lo = r.first < r.second ? r.first : r.second;
    const int hi = r.first < r.second ? r.second : r.first;
    if (count_ == 1 || lo < low_) low_ = lo;
    if (count_ == 1 || hi > high_) high_ = hi;
  }

  void Flush() {
    if (count_ == 0) return;
    int row = 0;
    for (; row + kBlock <= m_; row += kBlock) {
      // Only the columns that the batch touches, low_ .. high_.
      for (int r = 0; r < kBlock; ++r) {
        const double *x = a_[row + r];
        for (int c = low_; c <= high_; ++c)
          buffer_[(c - low_) * kBlock + r] = x[c];
      }
      for (int t = 0; t < count_; ++t) {
        const PlaneRotation &rotation = queue_[t];
        RotateBlock<kBlock>(buffer_ + (rotation.first - low_) * kBlock,
                            buffer_ + (rotation.second - low_) * kBlock, rotation);
      }
      for (int r = 0; r < kBlock; ++r) {
        double *x = a_[row + r];
        for (int c = low_; c <= high_; ++c)
          x[c] = buffer_[(c - low_) * kBlock + r];
      }
    }
    for (; row < m_; ++row) {
      double *x = a_[row];
      for (int t = 0; t < count_; ++t) {
        const PlaneRotation &rotation = queue_[t];
        const double p = x[rotation.first];
        const double q = x[rotation.second];
        x[rotation.first] = p * rotation.cs + q * rotation.sn;
        x[rotation.second] = q * rotation.cs - p * rotation.sn;
      }
    }
    count_ = 0;
  }

 private:
  static constexpr int kCapacity = 64;

  double **a_;
  int m_;
  double *buffer_;
  int count_;
  int low_;
  int high_;
  PlaneRotation queue_[kCapacity];
};

// sums[j] = sum of a[k][i] * a[k][j] over k = first..last, from 0.0 in rising
// k, for the kCount columns j = j0 .. j0 + kCount - 1 (all counted from 1), in
// one walk down the rows with the sums held in registers.
template <int kCount>
void ColumnDots(double **a, int first, int last, int i, int j0, double *sums) {
  double s[kCount];
  for (int t = 0; t < kCount; ++t)
    s[t] = 0.0;
  for (int k = first; k <= last; ++k) {
    const double *ak = a[k - 1];
    const double aki = ak[i - 1];
    for (int t = 0; t < kCount; ++t)
      s[t] += aki * ak[j0 - 1 + t];
  }
  for (int t = 0; t < kCount; ++t)
    sums[j0 + t] = s[t];
}

// The same for every column j = l..n, four columns per walk.
void ColumnDots(double **a, int first, int last, int i, int l, int n, double *sums) {
  int j0 = l;
  for (; j0 + 3 <= n; j0 += 4)
    ColumnDots<4>(a, first, last, i, j0, sums);
  switch (n - j0 + 1) {
    case 3:
      ColumnDots<3>(a, first, last, i, j0, sums);
      break;
    case 2:
      ColumnDots<2>(a, first, last, i, j0, sums);
      break;
    case 1:
      ColumnDots<1>(a, first, last, i, j0, sums);
      break;
    default:
      break;
  }
}

// a[k][i] = a[k][i] / scale for k = first..last (counted from 1), and the sum
// of the squares of the new values from 0.0 in rising k. Two rows share one
// division instruction; the sum still takes its terms one by one.
double NormaliseColumn(double **a, int first, int last, int i, double scale) {
  const DoublePair divisor = SplatPair(scale);
  double s = 0.0;
  int k = first;
  for (; k < last; k += 2) {
    double &x0 = a[k - 1][i - 1];
    double &x1 = a[k][i - 1];
    const DoublePair quotient = MakePair(x0, x1) / divisor;
    const DoublePair square = quotient * quotient;
    x0 = Lane0(quotient);
    x1 = Lane1(quotient);
    s += Lane0(square);
    s += Lane1(square);
  }
  if (k == last) {
    double &x = a[k - 1][i - 1];
    x = x / scale;
    s += x * x;
  }
  return s;
}

// The walk over rows l..m of one Householder pass (counted from 1, l = i + 1):
// the column update a[j][c] += factors[c] * a[j][i] for c = l..n with the
// rescaling of a[j][i] (if column), then the row transform with row i and e (if
// row): t = sum of a[j][c] * a[i][c], a[j][c] += t * e[c]; and the sum of
// |a[j][l]| (if sumNext), returned. kCount is n - l + 1 when known, else 0.
template <int kCount>
double HouseholderRows(double **a, int i, int m, int n, bool column, const double *factors,
                       double columnScale, bool row, const double *e, bool sumNext) {
  const int l = i + 1;
  const int count = kCount > 0 ? kCount : n - l + 1;
  // Fixed counts keep the factors, row i and e in registers.
  double f[kCount > 0 ? kCount : 1];
  double ri[kCount > 0 ? kCount : 1];
  double ek[kCount > 0 ? kCount : 1];
  const double *ai = a[i - 1] + (l - 1);
  if (kCount > 0) {
    for (int t = 0; t < kCount; ++t) {
      f[t] = column ? factors[l + t] : 0.0;
      ri[t] = row ? ai[t] : 0.0;
      ek[t] = row ? e[l + t] : 0.0;
    }
  }
  auto factor = [&](int t) { return kCount > 0 ? f[t] : factors[l + t]; };
  auto rowI = [&](int t) { return kCount > 0 ? ri[t] : ai[t]; };
  auto eAt = [&](int t) { return kCount > 0 ? ek[t] : e[l + t]; };
  double next = 0.0;
  for (int j = l; j <= m; ++j) {
    double *aj = a[j - 1];
    double *tail = aj + (l - 1);
    if (column) {
      const double aji = aj[i - 1];
      for (int t = 0; t < count; ++t)
        tail[t] += factor(t) * aji;
      aj[i - 1] = columnScale * aji;
    }
    if (row) {
      double s = 0.0;
      for (int t = 0; t < count; ++t)
        s += tail[t] * rowI(t);
      for (int t = 0; t < count; ++t)
        tail[t] += s * eAt(t);
    }
    if (sumNext) next += std::fabs(tail[0]);
  }
  return next;
}

// The walk over rows i..m (counted from 1) of one pass of the left-hand
// accumulation. With update: a[k][j] += factors[j] * a[k][i] for j = i + 1..n,
// then a[k][i] = g * a[k][i]; without: a[k][i] = 0. Then a[i][i] += 1 once row
// i is done. With dotsNext the walk also forms the sums of the next pass (for
// column i - 1, over the same rows, whose elements are final once their row is
// done): sums[j] = sum of a[k][i - 1] * a[k][j] for j = i..n, from 0.0 in
// rising k. kCount is n - i when fixed, or -1.
template <int kCount>
void AccumulateRows(double **a, int i, int m, int n, bool update, const double *factors, double g,
                    bool dotsNext, double *sums) {
  constexpr bool kFixed = kCount >= 0;
  constexpr int kSize = kFixed ? kCount + 1 : 1;
  const int l = i + 1;
  const int count = kFixed ? kCount : n - i;
  // Fixed counts keep the factors and the sums in registers.
  double f[kSize];
  double s[kSize];
  if (kFixed) {
    for (int t = 0; t < kSize; ++t) {
      f[t] = update && t < count ? factors[l + t] : 0.0;
      s[t] = 0.0;
    }
  } else if (dotsNext) {
    for (int t = 0; t <= count; ++t)
      sums[i + t] = 0.0;
  }
  auto walk = [&](double *ak) {
    if (update) {
      double *tail = ak + (l - 1);
      const double aki = ak[i - 1];
      for (int t = 0; t < count; ++t)
        tail[t] += (kFixed ? f[t] : factors[l + t]) * aki;
      ak[i - 1] = g * aki;
    } else {
      ak[i - 1] = 0.0;
    }
  };
  auto dots = [&](const double *ak) {
    const double left = ak[i - 2];
    const double *from = ak + (i - 1);
    for (int t = 0; t <= count; ++t) {
      if (kFixed)
        s[t] += left * from[t];
      else
        sums[i + t] += left * from[t];
    }
  };
  double *ai = a[i - 1];
  walk(ai);
  ai[i - 1] = ai[i - 1] + 1.0;
  if (dotsNext) dots(ai);
  if (dotsNext) {
    for (int k = i + 1; k <= m; ++k) {
      double *ak = a[k - 1];
      walk(ak);
      dots(ak);
    }
  } else {
    for (int k = i + 1; k <= m; ++k)
      walk(a[k - 1]);
  }
  if (kFixed && dotsNext) {
    for (int t = 0; t <= count; ++t)
      sums[i + t] = s[t];
  }
}

}  // namespace

// The passes over the rows of a are fused where the steps allow it: loops over
// different columns j that each run k upward become one walk down the rows in
// which every column keeps its own sum or update, and a sum that the next pass
// needs is taken in the walk that leaves its elements final. Each sum still
// adds its terms in rising k from 0.0, and every element sees the same
// operations in the same order as in one loop per column; only operations on
// different elements change places. The m rows are then walked a few times per
// column instead of a few times per pair of columns, and the rotations of the
// diagonalisation once per batch (RotationQueue).
double SvdCore(double **a, int m, int n, double *w, double **v) {
  // The algorithm is written with indices that count from 1; these accessors
  // map them onto the arrays, which count from 0. Entry 0 of e is never used,
  // so e is addressed directly. The fused loops take a row pointer once per
  // row: row(k)[c - 1] is element (k, c).
  auto A = [a](int r, int c) -> double & { return a[r - 1][c - 1]; };
  auto V = [v](int r, int c) -> double & { return v[r - 1][c - 1]; };
  auto W = [w](int i) -> double & { return w[i - 1]; };
  auto row = [a](int r) { return a[r - 1]; };

  // e, then the per-column sums and factors of the fused passes, indexed like e.
  // The rotation queue's block buffer follows them.
  const std::size_t entries = static_cast<std::size_t>(n) + 1;
  Scratch<double, 160> scratch(3 * entries + RotationQueue::kBlock * static_cast<std::size_t>(n));
  double *e = scratch.Data();
  double *sums = e + entries;
  double *factors = sums + entries;
  double *block = factors + entries;

  // B bounds the norm of the bidiagonal form and is the scale of every
  // convergence test (see Negligible).
  double B = 0.0;

  double g = 0.0, s = 0.0, f = 0.0, h = 0.0, scale = 0.0;
  int l = 0;

  // Householder reduction to upper bidiagonal form. g and scale carry over from
  // the row transform of one pass into e[i] of the next. The scale sum of
  // column i is taken, when it can be, in the walk of pass i - 1 that leaves
  // the column final (nextScale).
  bool haveNextScale = false;
  double nextScale = 0.0;
  for (int i = 1; i <= n; ++i) {
    l = i + 1;
    e[i] = scale * g;
    g = s = scale = 0.0;
    bool columnDone = false;
    double columnScale = 0.0;
    if (i <= m) {
      if (haveNextScale) {
        scale = nextScale;
      } else {
        for (int k = i; k <= m; ++k)
          scale += std::fabs(A(k, i));
      }
      if (scale != 0.0) {
        s = NormaliseColumn(a, i, m, i, scale);
        f = A(i, i);
        g = -TransferSign(std::sqrt(s), f);
        h = f * g - s;
        A(i, i) = f - g;
        // s = sum of a[k][i] * a[k][j] over k = i..m, for every j = l..n.
        ColumnDots(a, i, m, i, l, n, sums);
        for (int j = l; j <= n; ++j)
          factors[j] = sums[j] / h;
        columnDone = true;
        columnScale = scale;
      }
    }
    haveNextScale = false;
    W(i) = scale * g;
    g = s = scale = 0.0;
    const bool rowTransform = i <= m && i != n;
    if (columnDone || rowTransform) {
      // One walk over rows i..m: the column update a[k][j] += f_j * a[k][i] and
      // the rescaling of a[k][i]; for row i then the set-up of the row
      // transform, and for every later row its update and the scale sum of the
      // next column, whose elements are final once their row is done.
      double *ai = row(i);
      if (columnDone) {
        const double aii = ai[i - 1];
        for (int j = l; j <= n; ++j)
          ai[j - 1] += factors[j] * aii;
        ai[i - 1] = columnScale * aii;
      }
      bool rowActive = false;
      if (rowTransform) {
        for (int k = l; k <= n; ++k)
          scale += std::fabs(ai[k - 1]);
        if (scale != 0.0) {
          for (int k = l; k <= n; ++k) {
            ai[k - 1] = ai[k - 1] / scale;
            s += ai[k - 1] * ai[k - 1];
          }
          f = ai[l - 1];
          g = -TransferSign(std::sqrt(s), f);
          h = f * g - s;
          ai[l - 1] = f - g;
          // Scratch use of e: each of these entries is overwritten by a later
          // pass.
          for (int k = l; k <= n; ++k)
            e[k] = ai[k - 1] / h;
          rowActive = true;
        }
      }
      const bool sumNext = l <= n && l <= m;
      double next = 0.0;
      switch (n - l + 1) {
        case 1:
          next = HouseholderRows<1>(a, i, m, n, columnDone, factors, columnScale, rowActive, e,
                                    sumNext);
          break;
        case 2:
          next = HouseholderRows<2>(a, i, m, n, columnDone, factors, columnScale, rowActive, e,
                                    sumNext);
          break;
        case 3:
          next = HouseholderRows<3>(a, i, m, n, columnDone, factors, columnScale, rowActive, e,
                                    sumNext);
          break;
        case 4:
          next = HouseholderRows<4>(a, i, m, n, columnDone, factors, columnScale, rowActive, e,
                                    sumNext);
          break;
        default:
          next = HouseholderRows<0>(a, i, m, n, columnDone, factors, columnScale, rowActive, e,
                                    sumNext);
          break;
      }
      if (rowActive) {
        for (int k = l; k <= n; ++k)
          ai[k - 1] = scale * ai[k - 1];
      }
      if (sumNext) {
        haveNextScale = true;
        nextScale = next;
      }
    }
    B = MaxDouble(B, std::fabs(W(i)) + std::fabs(e[i]));
  }
  // Accumulate the right-hand transformations into v.
  AccumulateRight(n, e, A, V);

  // Accumulate the left-hand transformations in place in a. Each pass is one
  // walk down the rows: the updates of all columns j = l..n together with the
  // scaling of column i, and the sums that the next pass needs, taken from each
  // row as soon as this pass is done with it.
  bool haveSums = false;
  for (int i = MinInt(m, n); i >= 1; --i) {
    l = i + 1;
    g = W(i);
    for (int j = l; j <= n; ++j)
      A(i, j) = 0.0;
    const bool update = g != 0.0;
    if (update) {
      g = 1.0 / g;
      if (!haveSums) ColumnDots(a, l, m, i, l, n, sums);
      const double aii = A(i, i);
      for (int j = l; j <= n; ++j)
        factors[j] = (sums[j] / aii) * g;
    }
    const bool dotsNext = i > 1 && W(i - 1) != 0.0;
    switch (n - i) {
      case 0:
        AccumulateRows<0>(a, i, m, n, update, factors, g, dotsNext, sums);
        break;
      case 1:
        AccumulateRows<1>(a, i, m, n, update, factors, g, dotsNext, sums);
        break;
      case 2:
        AccumulateRows<2>(a, i, m, n, update, factors, g, dotsNext, sums);
        break;
      case 3:
        AccumulateRows<3>(a, i, m, n, update, factors, g, dotsNext, sums);
        break;
      case 4:
        AccumulateRows<4>(a, i, m, n, update, factors, g, dotsNext, sums);
        break;
      default:
        AccumulateRows<-1>(a, i, m, n, update, factors, g, dotsNext, sums);
        break;
    }
    haveSums = dotsNext;
  }

  // Diagonalise the bidiagonal form. The rotations of a wait in a queue (see
  // RotationQueue); those of the small v are applied at once.
  RotationQueue rotations(a, m, block);
  Diagonalise(n, B, e, W, V, [&rotations](int first, int second, double cs, double sn) {
    rotations.Add(first, second, cs, sn);
  });
  rotations.Flush();
  return SingularRatio(n, W);
}
