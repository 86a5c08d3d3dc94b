#include "quadrel/metrology/internal/chebyshev_lp.h"

#include <cmath>

namespace {

constexpr double kTolerance = 1e-12;

// The dual in standard form: columns j < n are the rows of A (scaled by the
// row signs s that make the right-hand side -c non-negative); columns n .. n+k-1
// are the artificial unit columns of phase one.
class DualSimplex {
 public:
  DualSimplex(const std::vector<double> &a, const std::vector<double> &b, const double *c, int k)
      : a_(a), b_(b), k_(k), n_(static_cast<int>(b.size())) {
    for (int r = 0; r < k_; ++r) {
      sign_[r] = -c[r] < 0.0 ? -1.0 : 1.0;
      rhs_[r] = sign_[r] * -c[r];
      basis_[r] = n_ + r;
    }
  }

  bool Solve(LpResult &result) {
    Refactor();
    if (!Run(true)) return false;
    double infeasibility = 0.0;
    for (int r = 0; r < k_; ++r)
      if (basis_[r] >= n_) infeasibility += xb_[r];
    if (infeasibility > 1e-9) return false;  // the primal is unbounded
    DriveOutArtificials();
    if (!Run(false)) return false;
    double y[kMaxLpUnknowns];
    Multipliers(false, y);
    result.value = 0.0;
    for (int r = 0; r < k_; ++r)
      result.x[r] = sign_[r] * y[r];
    for (int r = 0; r < k_; ++r) {
      if (basis_[r] < n_ && xb_[r] > kTolerance) {
        result.active.push_back(basis_[r]);
        result.weight.push_back(xb_[r]);
      }
    }
    result.solved = true;
    return true;
  }

 private:
  // Entry r of column j of the scaled dual matrix.
  double Entry(int j, int r) const {
    if (j >= n_) return j - n_ == r ? 1.0 : 0.0;
    return sign_[r] * a_[static_cast<size_t>(j) * k_ + r];
  }
  double Cost(int j, bool phaseOne) const {
    if (j >= n_) return phaseOne ? 1.0 : 0.0;
    return phaseOne ? 0.0 : b_[j];
  }
  // y' = c_B' B^-1.
  void Multipliers(bool phaseOne, double *y) const {
    for (int r = 0; r < k_; ++r) {
      double s = 0.0;
      for (int i = 0; i < k_; ++i)
        s += Cost(basis_[i], phaseOne) * inv_[i][r];
      y[r] = s;
    }
  }
  // Recomputes B^-1 and the basic values by Gauss-Jordan elimination with
  // partial pivoting, which clears the drift of the product-form updates.
  void Refactor() {
    double m[kMaxLpUnknowns][2 * kMaxLpUnknowns];
    for (int r = 0; r < k_; ++r)
      for (int i = 0; i < k_; ++i) {
        m[r][i] = Entry(basis_[i], r);
        m[r][k_ + i] = r == i ? 1.0 : 0.0;
      }
    for (int col = 0; col < k_; ++col) {
      int pivot = col;
      for (int r = col + 1; r < k_; ++r)
        if (std::fabs(m[r][col]) > std::fabs(m[pivot][col])) pivot = r;
      for (int i = 0; i < 2 * k_; ++i)
        std::swap(m[col][i], m[pivot][i]);
      const double p = m[col][col];
      for (int i = 0; i < 2 * k_; ++i)
        m[col][i] /= p;
      for (int r = 0; r < k_; ++r) {
        if (r == col || m[r][col] == 0.0) continue;
        const double f = m[r][col];
        for (int i = 0; i < 2 * k_; ++i)
          m[r][i] -= f * m[col][i];
      }
    }
    for (int r = 0; r < k_; ++r) {
      double s = 0.0;
      for (int i = 0; i < k_; ++i) {
        inv_[r][i] = m[r][k_ + i];
        s += inv_[r][i] * rhs_[i];
      }
      xb_[r] = s < 0.0 && s > -1e-13 ? 0.0 : s;
    }
  }
  // alpha = B^-1 column j.
  void Column(int j, double *alpha) const {
    for (int r = 0; r < k_; ++r) {
      double s = 0.0;
      for (int i = 0; i < k_; ++i)
        s += inv_[r][i] * Entry(j, i);
      alpha[r] = s;
    }
  }
  void Pivot(int row, int j, const double *alpha) {
    const double p = alpha[row];
    for (int i = 0; i < k_; ++i)
      inv_[row][i] /= p;
    xb_[row] /= p;
    for (int r = 0; r < k_; ++r) {
      if (r == row || alpha[r] == 0.0) continue;
      for (int i = 0; i < k_; ++i)
        inv_[r][i] -= alpha[r] * inv_[row][i];
      xb_[r] -= alpha[r] * xb_[row];
      if (xb_[r] < 0.0 && xb_[r] > -1e-13) xb_[r] = 0.0;
    }
    basis_[row] = j;
  }
  bool InBasis(int j) const {
    for (int r = 0; r < k_; ++r)
      if (basis_[r] == j) return true;
    return false;
  }
  // An artificial still basic at level zero leaves for any row of A with a
  // usable entry in its place; if none has one, its equation is redundant and
  // it stays, at zero, for good.
  void DriveOutArtificials() {
    for (int row = 0; row < k_; ++row) {
      if (basis_[row] < n_) continue;
      for (int j = 0; j < n_; ++j) {
        if (InBasis(j)) continue;
        double alpha[kMaxLpUnknowns];
        Column(j, alpha);
        if (std::fabs(alpha[row]) > 1e-9) {
          Pivot(row, j, alpha);
          break;
        }
      }
    }
    Refactor();
  }
  bool Run(bool phaseOne) {
    int degenerate = 0;
    const int limit = 50 * (n_ + k_) + 1000;
    for (int step = 0; step < limit; ++step) {
      if (step % 32 == 31) Refactor();
      double y[kMaxLpUnknowns];
      Multipliers(phaseOne, y);
      const bool bland = degenerate > 2 * k_ + 10;
      int entering = -1;
      double best = -kTolerance;
      for (int j = 0; j < n_; ++j) {
        double d = Cost(j, phaseOne);
        for (int r = 0; r < k_; ++r)
          d -= y[r] * Entry(j, r);
        if (d < best && !InBasis(j)) {
          entering = j;
          if (bland) break;
          best = d;
        }
      }
      if (entering < 0) return true;
      double alpha[kMaxLpUnknowns];
      Column(entering, alpha);
      int leaving = -1;
      double ratio = 0.0;
      for (int r = 0; r < k_; ++r) {
        if (alpha[r] <= 1e-11) continue;
        const double t = xb_[r] / alpha[r];
        if (leaving < 0 || t < ratio - kTolerance ||
            (t <= ratio + kTolerance &&
             (bland ? basis_[r] < basis_[leaving] : alpha[r] > alpha[leaving]))) {
          leaving = r;
          ratio = t;
        }
      }
      if (leaving < 0) return false;  // the dual is unbounded: the primal has no point
      degenerate = ratio <= kTolerance ? degenerate + 1 : 0;
      Pivot(leaving, entering, alpha);
    }
    return false;
  }

  const std::vector<double> &a_;
  const std::vector<double> &b_;
  int k_, n_;
  // Whole arrays are zeroed, though only k entries are used: vectorised loops
  // may read the rest.
  double sign_[kMaxLpUnknowns] = {}, rhs_[kMaxLpUnknowns] = {}, xb_[kMaxLpUnknowns] = {};
  double inv_[kMaxLpUnknowns][kMaxLpUnknowns] = {};
  int basis_[kMaxLpUnknowns] = {};
};

}  // namespace

LpResult SolveSmallLp(const std::vector<double> &a, const std::vector<double> &b, const double *c,
                      int k) {
  LpResult result;
  DualSimplex simplex(a, b, c, k);
  if (!simplex.Solve(result)) result = LpResult();
  if (result.solved)
    for (int r = 0; r < k; ++r)
      result.value += c[r] * result.x[r];
  return result;
}
