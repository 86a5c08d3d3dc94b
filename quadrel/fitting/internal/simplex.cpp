// Nelder-Mead downhill simplex search.
#include "quadrel/fitting/internal/simplex.h"

#include "quadrel/functions/constructors.h"
#include "quadrel/functions/rearrange.h"
#include "quadrel/matrix/internal/contract.h"
#include "quadrel/matrix/operators.h"
#include "quadrel/matrix/internal/scalar.h"

namespace {

// Coefficients of reflection, expansion, contraction and shrink.
constexpr double kRho = 1.0;
constexpr double kChi = 2.0;
constexpr double kPsi = 0.5;
constexpr double kSigma = 0.5;

// Start simplex: a non-zero coordinate moves by this fraction of itself, away
// from zero; a coordinate that is exactly 0 moves by the absolute step.
constexpr double kRelativeStep = 0.1;
constexpr double kAbsoluteStep = 0.005;

// The largest |V(i, j) - V(i, 0)| over all rows and over the columns 1 to n:
// the extent of the simplex around its best vertex. Each column is reduced
// first, then the column results, every time keeping the first of equal values.
double SimplexSize(const CMatrix &V) {
  const int n = V.GetRows();
  double size = 0.0;
  for (int j = 1; j <= n; ++j) {
    double colMax = AbsRef(V(0, j) - V(0, 0));
    for (int i = 1; i < n; ++i) {
      const double d = AbsRef(V(i, j) - V(i, 0));
      if (d > colMax) colMax = d;
    }
    if (j == 1 || colMax > size) size = colMax;
  }
  return size;
}

// The largest fv(j) - fv(0) over j from 1 to n. After the sort no difference is
// negative, so no absolute value is needed.
double SimplexSpread(const CMatrix &fv, int n) {
  double spread = fv(1) - fv(0);
  for (int j = 2; j <= n; ++j) {
    const double d = fv(j) - fv(0);
    if (d > spread) spread = d;
  }
  return spread;
}

}  // namespace

double SimplexMin(double (*objective)(const CMatrix &x, const CMatrix &data), CMatrix &x,
                  const CMatrix &data, double &tolX, double &tolF, int &maxIter) {
  QUADREL_EXPECTS(objective != nullptr, "objective is null");
  QUADREL_EXPECTS(x.GetCols() == 1 && x.GetRows() >= 1,
                  "x is " + QuadrelDims(x) + "; the start must be an n x 1 column, n >= 1");
  QUADREL_EXPECTS(maxIter >= 1,
                  QuadrelFormat("maxIter is %d; at least one iteration is needed", maxIter));

  const int n = x.GetRows();

  // Start simplex: x and one neighbour per coordinate.
  CMatrix V = Zeros(n, n + 1);
  CMatrix fv = Zeros(n + 1, 1);
  V.SetCol(x, 0);
  fv(0) = objective(x, data);
  for (int j = 0; j < n; ++j) {
    CMatrix y(x);
    if (y(j) == 0.0) {
      y(j) = kAbsoluteStep;
    } else {
      y(j) = (1 + kRelativeStep) * y(j);
    }
    V.SetCol(y, j + 1);
    fv(j + 1) = objective(y, data);
  }

  // Working storage reused by every iteration, so that the loop allocates only
  // what its n x 1 temporaries need.
  CMatrix index;
  CMatrix sorted(n, n + 1);
  CMatrix xbar(n, 1);
  CMatrix w(n, 1);
  CMatrix xr;
  CMatrix xe;
  CMatrix xc;
  double size = 0.0;
  double spread = 0.0;
  int iter = 0;

  while (iter < maxIter) {
    // Best vertex to column 0, worst to column n. The sort happens only here,
    // so a vertex placed by the last iteration is not sorted in.
    fv = Sort(fv, index);
    for (int j = 0; j <= n; ++j) {
      const int from = static_cast<int>(index(j));
      for (int i = 0; i < n; ++i)
        sorted(i, j) = V(i, from);
    }
    V = sorted;

    size = SimplexSize(V);
    spread = SimplexSpread(fv, n);
    if (size < tolX && spread < tolF) break;

    // Centroid of all vertices but the worst.
    for (int i = 0; i < n; ++i) {
      double s = 0.0;
      for (int j = 0; j < n; ++j)
        s += V(i, j);
      xbar(i) = s / n;
    }
    for (int i = 0; i < n; ++i)
      w(i) = V(i, n);

    xr = (1 + kRho) * xbar - kRho * w;
    const double fr = objective(xr, data);

    bool shrink = false;
    if (fr < fv(0)) {
      // Expansion is judged against the reflected point, not the best vertex.
      xe = (1 + kRho * kChi) * xbar - kRho * kChi * w;
      const double fe = objective(xe, data);
      if (fe < fr) {
        V.SetCol(xe, n);
        fv(n) = fe;
      } else {
        V.SetCol(xr, n);
        fv(n) = fr;
      }
    } else if (fr < fv(n - 1)) {
      V.SetCol(xr, n);
      fv(n) = fr;
    } else if (fr < fv(n)) {
      // Outside contraction; a tie with the reflected value is accepted.
      xc = (1 + kPsi * kRho) * xbar - kPsi * kRho * w;
      const double fc = objective(xc, data);
      if (fc <= fr) {
        V.SetCol(xc, n);
        fv(n) = fc;
      } else {
        shrink = true;
      }
    } else {
      // Inside contraction; a tie with the worst value is not accepted.
      xc = (1 - kPsi) * xbar + kPsi * w;
      const double fc = objective(xc, data);
      if (fc < fv(n)) {
        V.SetCol(xc, n);
        fv(n) = fc;
      } else {
        shrink = true;
      }
    }

    if (shrink) {
      // Every vertex halves its distance to the best one, which stays.
      const CMatrix best = Col(V, 0);
      for (int j = 1; j <= n; ++j) {
        const CMatrix v = best + kSigma * (Col(V, j) - best);
        V.SetCol(v, j);
        fv(j) = objective(v, data);
      }
    }

    ++iter;
  }

  x = Col(V, 0);
  maxIter = iter;
  tolX = size;
  tolF = spread;
  return fv(0);
}
