#include "quadrel/linalg/internal/tall_lsq.h"

#include <cmath>
#include <cstddef>

#include "quadrel/linalg/internal/svd_core.h"
#include "quadrel/linalg/internal/svd_steps.h"
#include "quadrel/matrix/internal/access.h"
#include "quadrel/matrix/internal/double_pair.h"
#include "quadrel/matrix/internal/prefetch.h"

// The loops over the few columns of a row are unrolled, so that their sums and
// values stay in registers; -O2 alone leaves many of them rolled.
#define QUADREL_UNROLL _Pragma("GCC unroll 8")

// The engine performs the operations of SvdCore on an m x N matrix followed by
// those of Lsq, element for element and in the same order; only operations on
// different elements change places:
// - Each pass of the bidiagonalisation and of the left-hand accumulation is one
//   walk down the rows, over the columns it touches. A sum that the next pass
//   needs is taken in the walk that leaves its terms final, as in SvdCore.
// - The last column's Householder pass and the first pass of the left-hand
//   accumulation (which touch only that column) are one walk.
// - The diagonalisation reads only w, e and V, so it runs before the last
//   accumulation pass; its rotations of the left-hand factor are recorded and
//   applied, row by row, in that pass, which also forms each row's column of
//   the pseudo-inverse and adds it into x. U itself is never stored.
// Rows go two at a time where their operations are independent; a sum over
// the rows still takes its terms one by one in rising row order.
namespace {

// Rows per block of the last pass.
constexpr int kBlock = 16;

// x in every lane of a Value, which is a double or a DoublePair.
template <class Value>
Value Splat(double x) {
  if constexpr (sizeof(Value) == sizeof(double))
    return x;
  else
    return SplatPair(x);
}

// The solver for N unknowns. Run goes through five phases, in this order:
//  1. Bidiagonalise<1..N>: the Householder passes, column I then row I. The
//     last one (FinishLastColumn) also does pass N of the left-hand
//     accumulation.
//  2. AccumulateRight: V from the row transforms kept in rows 1..N - 1.
//  3. Accumulate<N - 1..2>: the left-hand accumulation, in place in the
//     columns, down to pass 2; pass 1 waits for phase 5.
//  4. Diagonalise: the QR sweeps on w and e, rotating v at once and recording
//     the rotations of U; then the condition number from w.
//  5. Solve: the rank threshold and V * T, then per block of rows pass 1 of the
//     left-hand accumulation, the recorded rotations, and the block's terms of
//     x = P * b.
// The members are the state that passes between phases and between the
// passes of one phase; everything else is local to a pass.
template <int N>
struct Engine {
  // At most kSvdMaxSweeps sweeps per value, each with at most 2k - 1 rotations
  // for value k.
  static constexpr int kMaxRotations = kSvdMaxSweeps * N * N;

  // The system: col[j][k] is element (k + 1, j + 1) in the algorithm's terms,
  // m the number of rows. The columns hold A on entry; after phase 1 the
  // Householder vectors (of column I from the diagonal down, of row I from the
  // superdiagonal right), column N already through pass N of the left-hand
  // accumulation; after phase 3 columns 2..N through passes N..2, column 1
  // still its Householder vector. Phase 5 clears row 1 right of the diagonal
  // and otherwise only reads them: pass 1 and the rotations go to a copy of
  // each block of rows.
  double *const *col;
  int m;
  // W(i) = w[i], w[0] is never read: the diagonal of the bidiagonal form after
  // phase 1, the singular values after phase 4.
  double w[N + 1];
  // e[i]: the superdiagonal next to W(i), e[0] unused and e[1] kept at 0. In
  // pass I of phase 1, e[I + 1..N] hold the scratch row (row I) / h of the row
  // transform until later passes overwrite them; phase 2 reads the final
  // e[i + 1] as the g of its pass i.
  double e[N + 1];
  // V(r, c) = v[r][c], row and column 0 unused: written in phase 2, rotated in
  // phase 4, read in phase 5.
  double v[N + 1][N + 1];
  // The column sums that one left-hand accumulation pass takes for the next,
  // indexed like e: sums[j] = sum over rows k = i + 1..m of A(k, i) * A(k, j)
  // for pass i, j = i + 1..N. FinishLastColumn and Accumulate<I> write them
  // for pass N - 1 and I - 1; pass 1 reads them in Solve.
  double sums[N + 1];
  // The bound on the norm of the bidiagonal form, max over the passes of
  // |W(i)| + |e[i]|: built in phase 1, the scale of every convergence test of
  // phase 4 (Negligible).
  double B;
  // The scalars of the Householder passes of phase 1, in the algorithm's
  // names. In each transform, of a column or of a row: scale is the 1-norm of
  // the part being reflected, s the sum of squares of that part once divided
  // by scale, f its leading element, g = -sqrt(s) with the sign of f (the new
  // diagonal or superdiagonal element, before scaling back) and h = f * g - s,
  // the divisor of the reflection. The row transform of pass I leaves scale
  // and g for e[I + 1] = scale * g at the start of pass I + 1; nothing after
  // phase 1 reads them.
  double g, s, f, h, scale;
  // The 1-norm of column I + 1 over rows I + 1..m, summed in the walk of pass I
  // that leaves those elements final, so that pass I + 1 does not read the
  // column for it again. haveNextScale says that nextScale holds it.
  bool haveNextScale;
  double nextScale;
  // The rotations of U from phase 4, in the order they arose, for phase 5.
  PlaneRotation rotations[kMaxRotations];
  int rotationCount;
  // W(1) as phase 1 left it: pass 1 of the left-hand accumulation needs it,
  // and it runs in phase 5, after the sweeps have changed w[1].
  double w1;

  double &A(int r, int c) { return col[c - 1][r - 1]; }

  // a[k] = a[k] / divisor for k < count, and the sum of the squares of the new
  // values from 0.0 in rising k. Two rows share one division instruction.
  static double Normalise(double *a, int count, double divisor) {
    const DoublePair d = SplatPair(divisor);
    double sum = 0.0;
    int k = 0;
    for (; k + 1 < count; k += 2) {
      Ahead(a + k);
      const DoublePair q = LoadPair(a + k) / d;
      const DoublePair square = q * q;
      StorePair(a + k, q);
      sum += Lane0(square);
      sum += Lane1(square);
    }
    if (k < count) {
      a[k] = a[k] / divisor;
      sum += a[k] * a[k];
    }
    return sum;
  }

  // sums[c] = sum of col[i][k] * col[c][k] over rows k = from..m - 1, from 0.0
  // in rising k, for the kCount columns c = i + 1 .. i + kCount (counted from
  // 0); written to out[0..kCount - 1].
  template <int kCount>
  void Dots(int i, int from, double *out) const {
    const double *ci = col[i];
    const double *cc[kCount];
    double sum[kCount];
    QUADREL_UNROLL
    for (int t = 0; t < kCount; ++t) {
      cc[t] = col[i + 1 + t];
      sum[t] = 0.0;
    }
    for (int k = from; k < m; ++k) {
      Ahead(ci + k);
      QUADREL_UNROLL
      for (int t = 0; t < kCount; ++t)
        Ahead(cc[t] + k);
      const double aki = ci[k];
      QUADREL_UNROLL
      for (int t = 0; t < kCount; ++t)
        sum[t] += aki * cc[t][k];
    }
    QUADREL_UNROLL
    for (int t = 0; t < kCount; ++t)
      out[t] = sum[t];
  }

  // Householder pass I (counted from 1) of the bidiagonalisation: the column
  // transform of column I, then the row transform of row I, with one walk over
  // rows I + 1..m for both.
  template <int I>
  void Bidiagonalise() {
    constexpr int L = I + 1;
    constexpr int kTail = N - I;  // columns L..N
    constexpr int kTailSize = kTail > 0 ? kTail : 1;
    double *ci = col[I - 1];
    e[I] = scale * g;
    g = s = scale = 0.0;
    bool columnDone = false;
    double columnScale = 0.0;
    if (haveNextScale) {
      scale = nextScale;
    } else {
      for (int k = I - 1; k < m; ++k) {
        Ahead(ci + k);
        scale += std::fabs(ci[k]);
      }
    }
    double fac[kTailSize] = {};
    if (scale != 0.0) {
      s = Normalise(ci + (I - 1), m - (I - 1), scale);
      f = ci[I - 1];
      g = -TransferSign(std::sqrt(s), f);
      h = f * g - s;
      ci[I - 1] = f - g;
      if constexpr (kTail > 0) {
        double dots[kTail];
        Dots<kTail>(I - 1, I - 1, dots);
        QUADREL_UNROLL
        for (int t = 0; t < kTail; ++t)
          fac[t] = dots[t] / h;
      }
      columnDone = true;
      columnScale = scale;
    }
    haveNextScale = false;
    w[I] = scale * g;
    g = s = scale = 0.0;

    if constexpr (I == N) {
      FinishLastColumn(columnDone, columnScale);
    } else {
      double *tail[kTailSize];
      QUADREL_UNROLL
      for (int t = 0; t < kTail; ++t)
        tail[t] = col[L - 1 + t];
      // Row I: the column update, then the set-up of the row transform.
      const int r = I - 1;
      if (columnDone) {
        const double aii = ci[r];
        QUADREL_UNROLL
        for (int t = 0; t < kTail; ++t)
          tail[t][r] += fac[t] * aii;
        ci[r] = columnScale * aii;
      }
      bool rowActive = false;
      double rowI[kTailSize] = {};
      double ek[kTailSize] = {};
      QUADREL_UNROLL
      for (int t = 0; t < kTail; ++t)
        scale += std::fabs(tail[t][r]);
      if (scale != 0.0) {
        QUADREL_UNROLL
        for (int t = 0; t < kTail; ++t) {
          tail[t][r] = tail[t][r] / scale;
          s += tail[t][r] * tail[t][r];
        }
        f = tail[0][r];
        g = -TransferSign(std::sqrt(s), f);
        h = f * g - s;
        tail[0][r] = f - g;
        QUADREL_UNROLL
        for (int t = 0; t < kTail; ++t) {
          e[L + t] = tail[t][r] / h;  // scratch; a later pass overwrites it
          rowI[t] = tail[t][r];
          ek[t] = e[L + t];
        }
        rowActive = true;
      }
      // Rows L..m: column update and rescaling of column I, row transform, and
      // the scale sum of column L, whose elements are final once their row is.
      double next = 0.0;
      auto walk = [&](auto aji, auto at, auto store) {
        using Value = decltype(aji);
        Value x[kTail];
        QUADREL_UNROLL
        for (int t = 0; t < kTail; ++t)
          x[t] = at(t);
        if (columnDone) {
          QUADREL_UNROLL
          for (int t = 0; t < kTail; ++t)
            x[t] += Splat<Value>(fac[t]) * aji;
          aji = Splat<Value>(columnScale) * aji;
        }
        if (rowActive) {
          Value sum = Splat<Value>(0.0);
          QUADREL_UNROLL
          for (int t = 0; t < kTail; ++t)
            sum += x[t] * Splat<Value>(rowI[t]);
          QUADREL_UNROLL
          for (int t = 0; t < kTail; ++t)
            x[t] += sum * Splat<Value>(ek[t]);
        }
        store(aji, x);
      };
      int k = L - 1;
      for (; k + 1 < m; k += 2) {
        Ahead(ci + k);
        QUADREL_UNROLL
        for (int t = 0; t < kTail; ++t)
          Ahead(tail[t] + k);
        walk(
            LoadPair(ci + k), [&](int t) { return LoadPair(tail[t] + k); },
            [&](DoublePair aji, const DoublePair *x) {
              StorePair(ci + k, aji);
              QUADREL_UNROLL
              for (int t = 0; t < kTail; ++t)
                StorePair(tail[t] + k, x[t]);
              next += std::fabs(Lane0(x[0]));
              next += std::fabs(Lane1(x[0]));
            });
      }
      if (k < m) {
        walk(
            ci[k], [&](int t) { return tail[t][k]; },
            [&](double aji, const double *x) {
              ci[k] = aji;
              QUADREL_UNROLL
              for (int t = 0; t < kTail; ++t)
                tail[t][k] = x[t];
              next += std::fabs(x[0]);
            });
      }
      if (rowActive) {
        QUADREL_UNROLL
        for (int t = 0; t < kTail; ++t)
          tail[t][r] = scale * tail[t][r];
      }
      haveNextScale = true;
      nextScale = next;
    }
    B = MaxDouble(B, std::fabs(w[I]) + std::fabs(e[I]));
    if constexpr (I < N) Bidiagonalise<I + 1>();
  }

  // Column N: its Householder walk only rescales it (no columns lie to its
  // right and no row transform follows), and the first pass of the left-hand
  // accumulation only scales it by 1 / W(N) (or clears it) and adds 1 to its
  // diagonal element. Both go in one walk over rows N..m, which also takes the
  // sums of the next accumulation pass.
  void FinishLastColumn(bool columnDone, double columnScale) {
    double *cn = col[N - 1];
    double gn = w[N];
    const bool update = gn != 0.0;
    if (update) gn = 1.0 / gn;
    const bool dotsNext = N > 1 && w[N - 1] != 0.0;
    const double *left = col[N > 1 ? N - 2 : 0];
    double sum = 0.0;
    for (int k = N - 1; k < m; ++k) {
      Ahead(cn + k);
      Ahead(left + k);
      double x = cn[k];
      if (columnDone) x = columnScale * x;
      x = update ? gn * x : 0.0;
      if (k == N - 1) x = x + 1.0;
      cn[k] = x;
      if (dotsNext) sum += left[k] * x;
    }
    if (dotsNext) sums[N] = sum;
  }

  // Pass I (counted from 1, 1 < I < N) of the left-hand accumulation, one walk
  // over rows I..m that also takes the sums of pass I - 1 (those of pass I come
  // from pass I + 1).
  template <int I>
  void Accumulate() {
    constexpr int L = I + 1;
    constexpr int kTail = N - I;
    const int r = I - 1;
    double *ci = col[I - 1];
    double *tail[kTail];
    QUADREL_UNROLL
    for (int t = 0; t < kTail; ++t) {
      tail[t] = col[L - 1 + t];
      tail[t][r] = 0.0;
    }
    double gi = w[I];
    const bool update = gi != 0.0;
    double fac[kTail] = {};
    if (update) {
      gi = 1.0 / gi;
      const double aii = ci[r];
      QUADREL_UNROLL
      for (int t = 0; t < kTail; ++t)
        fac[t] = (sums[L + t] / aii) * gi;
    }
    const bool dotsNext = w[I - 1] != 0.0;
    const double *left = col[I - 2];
    double dot[kTail + 1];
    QUADREL_UNROLL
    for (int t = 0; t <= kTail; ++t)
      dot[t] = 0.0;
    // The row update, in one lane or two.
    auto walk = [&](auto aki, auto *x) {
      using Value = decltype(aki);
      if (update) {
        QUADREL_UNROLL
        for (int t = 0; t < kTail; ++t)
          x[t] += Splat<Value>(fac[t]) * aki;
        return Splat<Value>(gi) * aki;
      }
      return Splat<Value>(0.0);
    };
    {
      double x[kTail];
      QUADREL_UNROLL
      for (int t = 0; t < kTail; ++t)
        x[t] = tail[t][r];
      double aii = walk(ci[r], x);
      aii = aii + 1.0;
      ci[r] = aii;
      QUADREL_UNROLL
      for (int t = 0; t < kTail; ++t)
        tail[t][r] = x[t];
      if (dotsNext) {
        dot[0] += left[r] * aii;
        QUADREL_UNROLL
        for (int t = 0; t < kTail; ++t)
          dot[t + 1] += left[r] * x[t];
      }
    }
    int k = r + 1;
    for (; k + 1 < m; k += 2) {
      Ahead(ci + k);
      Ahead(left + k);
      QUADREL_UNROLL
      for (int t = 0; t < kTail; ++t)
        Ahead(tail[t] + k);
      DoublePair x[kTail];
      QUADREL_UNROLL
      for (int t = 0; t < kTail; ++t)
        x[t] = LoadPair(tail[t] + k);
      const DoublePair aki = walk(LoadPair(ci + k), x);
      StorePair(ci + k, aki);
      QUADREL_UNROLL
      for (int t = 0; t < kTail; ++t)
        StorePair(tail[t] + k, x[t]);
      if (dotsNext) {
        const DoublePair l = LoadPair(left + k);
        const DoublePair p0 = l * aki;
        DoublePair p[kTail];
        QUADREL_UNROLL
        for (int t = 0; t < kTail; ++t)
          p[t] = l * x[t];
        dot[0] += Lane0(p0);
        QUADREL_UNROLL
        for (int t = 0; t < kTail; ++t)
          dot[t + 1] += Lane0(p[t]);
        dot[0] += Lane1(p0);
        QUADREL_UNROLL
        for (int t = 0; t < kTail; ++t)
          dot[t + 1] += Lane1(p[t]);
      }
    }
    if (k < m) {
      double x[kTail];
      QUADREL_UNROLL
      for (int t = 0; t < kTail; ++t)
        x[t] = tail[t][k];
      const double aki = walk(ci[k], x);
      ci[k] = aki;
      QUADREL_UNROLL
      for (int t = 0; t < kTail; ++t)
        tail[t][k] = x[t];
      if (dotsNext) {
        dot[0] += left[k] * aki;
        QUADREL_UNROLL
        for (int t = 0; t < kTail; ++t)
          dot[t + 1] += left[k] * x[t];
      }
    }
    if (dotsNext) {
      QUADREL_UNROLL
      for (int t = 0; t <= kTail; ++t)
        sums[I + t] = dot[t];
    }
    if constexpr (I > 2) Accumulate<I - 1>();
  }

  // The last pass: for each block of rows, pass 1 of the left-hand accumulation
  // (for N > 1; for N = 1 it went with the last column), the recorded
  // rotations, and the block's terms of x = P * b, with P(i, k) = sum over c of
  // vt[i][c] * U(k, c) from 0.0 in rising c, and x[i] = P(i, k) * b[k] + x[i]
  // in rising k.
  void Solve(const double (&vt)[N][N], const double *b, double *x) {
    // Pass 1's set-up: row 1 right of the diagonal is cleared, and the factors
    // come from the sums that pass 2 took.
    double g1 = w1;
    const bool update = N > 1 && g1 != 0.0;
    double fac[N] = {};
    if (N > 1) {
      for (int j = 2; j <= N; ++j)
        A(1, j) = 0.0;
      if (update) {
        g1 = 1.0 / g1;
        const double a11 = A(1, 1);
        for (int j = 2; j <= N; ++j)
          fac[j - 1] = (sums[j] / a11) * g1;
      }
    }
    double acc[N];
    QUADREL_UNROLL
    for (int i = 0; i < N; ++i)
      acc[i] = 0.0;
    alignas(16) double block[N][kBlock];
    for (int k0 = 0; k0 < m; k0 += kBlock) {
      const int rows = m - k0 < kBlock ? m - k0 : kBlock;
      QUADREL_UNROLL
      for (int c = 0; c < N; ++c) {
        const double *from = col[c] + k0;
        Ahead(from);
        Ahead(from, 8);
        for (int r = 0; r < rows; ++r)
          block[c][r] = from[r];
        for (int r = rows; r < kBlock; ++r)
          block[c][r] = 0.0;
      }
      if (N > 1) {
        for (int r = 0; r < kBlock; r += 2) {
          const DoublePair a1 = LoadPair(&block[0][r]);
          if (update) {
            QUADREL_UNROLL
            for (int c = 1; c < N; ++c)
              StorePair(&block[c][r], LoadPair(&block[c][r]) + SplatPair(fac[c]) * a1);
            StorePair(&block[0][r], SplatPair(g1) * a1);
          } else {
            StorePair(&block[0][r], SplatPair(0.0));
          }
        }
        if (k0 == 0) block[0][0] = block[0][0] + 1.0;
      }
      for (int t = 0; t < rotationCount; ++t)
        RotateBlock<kBlock>(block[rotations[t].first], block[rotations[t].second], rotations[t]);
      Ahead(b + k0);
      Ahead(b + k0, 8);
      for (int r = 0; r < rows; ++r) {
        const double bk = b[k0 + r];
        QUADREL_UNROLL
        for (int i = 0; i < N; ++i) {
          double p = 0.0;
          QUADREL_UNROLL
          for (int c = 0; c < N; ++c)
            p = vt[i][c] * block[c][r] + p;
          acc[i] = p * bk + acc[i];
        }
      }
    }
    QUADREL_UNROLL
    for (int i = 0; i < N; ++i)
      x[i] = acc[i];
  }

  double Run(const double *b, double *x) {
    B = 0.0;
    g = s = f = h = scale = 0.0;
    w[0] = e[0] = 0.0;
    haveNextScale = false;
    nextScale = 0.0;
    rotationCount = 0;
    Bidiagonalise<1>();

    auto W = [this](int i) -> double & { return w[i]; };
    auto V = [this](int r, int c) -> double & { return v[r][c]; };
    auto At = [this](int r, int c) -> double & { return A(r, c); };
    AccumulateRight(N, e, At, V);
    if constexpr (N > 2) Accumulate<N - 1>();
    w1 = w[1];

    Diagonalise(N, B, e, W, V, [this](int first, int second, double cs, double sn) {
      rotations[rotationCount++] = PlaneRotation{first - 1, second - 1, cs, sn};
    });
    const double cond = 1.0 / SingularRatio(N, W);

    // As Lsq: the rank threshold, the inverted values and VT = V * T.
    double sv[N];
    for (int i = 0; i < N; ++i)
      sv[i] = w[i + 1];
    double vt[N][N];
    InvertedValuesTimesV(
        N, m, sv, [this](int i, int k) { return v[i + 1][k + 1]; },
        [&vt](int i, int c) -> double & { return vt[i][c]; });
    Solve(vt, b, x);
    return cond;
  }
};

template <int N>
double Solve(double *const *columns, int m, const double *b, double *x) {
  Engine<N> engine;
  engine.col = columns;
  engine.m = m;
  return engine.Run(b, x);
}

}  // namespace

TallColumns::TallColumns(int m, int count) {
  for (int j = 0; j < count; ++j) {
    data_[j].reset(new double[static_cast<std::size_t>(m)]);
    table_[j] = data_[j].get();
  }
}

double TallLsq(double *const *columns, int m, int n, const double *b, double *x) {
  switch (n) {
    case 1:
      return Solve<1>(columns, m, b, x);
    case 2:
      return Solve<2>(columns, m, b, x);
    case 3:
      return Solve<3>(columns, m, b, x);
    case 4:
      return Solve<4>(columns, m, b, x);
    case 5:
      return Solve<5>(columns, m, b, x);
    default:
      return Solve<6>(columns, m, b, x);
  }
}
