// The damped Gauss-Newton (Levenberg-Marquardt) driver of the Gaussian fits,
// and the normal equations it works on.
//
// A problem supplies a State (the feature, with whatever local frame its
// parameterisation needs) and four members:
//   int Params() const;                       // p, at most kMaxParams
//   double Scale() const;                     // a length: the size of the data
//   bool Evaluate(const State &, NormalEquations &) const;  // false if not finite
//   State Step(const State &, const double *delta) const;
//   double StepLength(const double *delta) const;            // in length units
// Evaluate forms J'J, J'r and sum(r^2) in the local parameters of the state it
// is given; Step moves to a new state and sets up that state's own frame, so
// no parameterisation ever meets a singularity.
#ifndef QUADREL_METROLOGY_INTERNAL_GAUSS_NEWTON_H
#define QUADREL_METROLOGY_INTERNAL_GAUSS_NEWTON_H

#include <cmath>
#include <limits>
#include <vector>

#include "quadrel/metrology/status.h"

constexpr int kMaxParams = 8;
constexpr int kMaxGaussNewtonIterations = 100;

struct NormalEquations {
  int p = 0;
  int m = 0;  // number of residuals
  double cost = 0.0;
  double jtj[kMaxParams * kMaxParams];
  double jtr[kMaxParams];

  void Clear(int params) {
    p = params;
    m = 0;
    cost = 0.0;
    for (int k = 0; k < p * p; ++k)
      jtj[k] = 0.0;
    for (int k = 0; k < p; ++k)
      jtr[k] = 0.0;
  }
  // Adds one residual r with Jacobian row j (P entries): the upper triangle of
  // J'J only; Symmetrise fills the rest.
  template <int P>
  void Add(const double *j, double r) {
    for (int a = 0; a < P; ++a) {
      for (int b = a; b < P; ++b)
        jtj[a * P + b] += j[a] * j[b];
      jtr[a] += j[a] * r;
    }
    cost += r * r;
    ++m;
  }
  void Symmetrise() {
    for (int a = 0; a < p; ++a)
      for (int b = 0; b < a; ++b)
        jtj[a * p + b] = jtj[b * p + a];
  }
  bool Finite() const {
    double s = cost;
    for (int k = 0; k < p * p; ++k)
      s += jtj[k];
    for (int k = 0; k < p; ++k)
      s += jtr[k];
    return std::isfinite(s);
  }
};

// Solves a x = b for a symmetric positive definite p x p matrix (row-major) by
// Cholesky. Returns false when a pivot falls below 1e-14 of its diagonal
// element: the matrix is singular to working precision.
bool CholeskySolve(const double *a, int p, const double *b, double *x);

// The covariance of the natural parameters, T C T' with C = s2 (J'J)^-1 and
// s2 = cost / (m - p), where T (q x p, row-major) maps local steps to natural
// parameters; written into info with the uncertainties. NaN when J'J is
// singular or m <= p.
void FillCovariance(const NormalEquations &eq, const double *t, int q, GaussianFitInfo &info);

// Minimises the sum of squared residuals from state, which ends at the best
// point found; eq holds the normal equations there and iterations the number of
// steps tried. Returns kConverged when the steps left add up to less than
// 1e-13 of the scale, or stall at the rounding level below 1e-10 of it; kDegenerate when J'J is
// singular at the start or the model stops being finite; kStepLimit otherwise.
template <class Problem>
MetrologyStatus Minimise(const Problem &problem, typename Problem::State &state,
                         NormalEquations &eq, int &iterations) {
  const int p = problem.Params();
  const double scale = problem.Scale();
  iterations = 0;
  if (!problem.Evaluate(state, eq)) return MetrologyStatus::kDegenerate;
  double lambda = 0.0;
  double previous = std::numeric_limits<double>::infinity();
  NormalEquations trial;
  while (iterations < kMaxGaussNewtonIterations) {
    ++iterations;
    double a[kMaxParams * kMaxParams], rhs[kMaxParams], delta[kMaxParams];
    for (int k = 0; k < p * p; ++k)
      a[k] = eq.jtj[k];
    for (int k = 0; k < p; ++k) {
      a[k * p + k] += lambda * eq.jtj[k * p + k];
      rhs[k] = -eq.jtr[k];
    }
    if (!CholeskySolve(a, p, rhs, delta)) {
      if (lambda == 0.0) return MetrologyStatus::kDegenerate;
      lambda *= 10.0;
      continue;
    }
    const double step = problem.StepLength(delta);
    typename Problem::State next = problem.Step(state, delta);
    const bool finite = problem.Evaluate(next, trial);
    // Near the solution the change of the cost drowns in its rounding: a step
    // whose predicted gain 2 d'J'r + d'J'J d is that small is taken on the word
    // of the normal equations.
    double gain = 0.0;
    for (int r = 0; r < p; ++r) {
      double row = 2.0 * eq.jtr[r];
      for (int c = 0; c < p; ++c)
        row += eq.jtj[r * p + c] * delta[c];
      gain -= delta[r] * row;
    }
    const bool small = gain <= 1e-10 * eq.cost;
    if (finite && (trial.cost <= eq.cost || (small && trial.cost <= eq.cost * (1.0 + 1e-9)))) {
      state = next;
      eq = trial;
      lambda = lambda < 1e-9 ? 0.0 : 0.1 * lambda;
      // Steps that shrink at a steady rate leave about step * rate / (1 - rate)
      // to go; steps that stop shrinking below 1e-10 of the scale are rounding.
      const double rate = step / previous;
      const double remaining = rate < 1.0 && rate > 0.0 ? step * rate / (1.0 - rate) : step;
      if (step <= 1e-13 * scale || remaining <= 1e-13 * scale ||
          (rate >= 1.0 && step <= 1e-10 * scale))
        return MetrologyStatus::kConverged;
      previous = step;
    } else {
      if (step <= 1e-12 * scale) return MetrologyStatus::kConverged;
      lambda = lambda == 0.0 ? 1e-4 : 10.0 * lambda;
      if (lambda > 1e20) return MetrologyStatus::kStepLimit;
    }
  }
  return MetrologyStatus::kStepLimit;
}

// Fills info for a finished fit: status, iterations, the residuals (one per
// point) and their rms, and the covariance through FillCovariance.
void FinishInfo(MetrologyStatus status, int iterations, const NormalEquations &eq,
                const std::vector<double> &residuals, const double *t, int q,
                GaussianFitInfo &info);

// Fills info for a fit that could not run: NaN residuals (n x 1), covariance
// (q x q) and uncertainties (q x 1), zero iterations.
void FailInfo(MetrologyStatus status, int n, int q, GaussianFitInfo &info);

#endif  // QUADREL_METROLOGY_INTERNAL_GAUSS_NEWTON_H
