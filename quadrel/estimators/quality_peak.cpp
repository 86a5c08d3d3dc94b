// Peak of a quality surface: quadratic fit, analytic maximum, or a climb.
#include "quadrel/estimators/quality_peak.h"

#include <cmath>

#include "quadrel/estimators/internal/gradient_step.h"
#include "quadrel/functions/constructors.h"
#include "quadrel/functions/rearrange.h"
#include "quadrel/functions/reductions.h"
#include "quadrel/linalg/least_squares.h"
#include "quadrel/matrix/internal/contract.h"
#include "quadrel/matrix/operators.h"

namespace {

// Largest residual standard deviation, in quality units, at which the fitted
// surface is trusted.
constexpr double kMaxSigma = 5.0;
// Steps of the climb after its first one. The step length is reach / 10, so
// the climb covers at most 0.6 * reach.
constexpr int kClimbSteps = 5;
constexpr double kStepDivisor = 10.0;
// Largest turn of the heading against the first step: 70 degrees.
constexpr double kMaxTurn = 1.2217304763960306;
// 3*pi/2 and 2*pi: a difference of headings beyond 3*pi/2 is a small turn
// across the cut of atan2 at +-pi.
constexpr double kWrapTurn = 4.71238898038469;
constexpr double kFullTurn = 6.283185307179586;

constexpr int kAnalyticMaximum = 0;
constexpr int kTurned = 1;
constexpr int kOutOfReach = 2;
constexpr int kNotConcave = 3;
constexpr int kPoorFit = 4;
constexpr int kLeftBand = 5;

double MeanOf(const CMatrix &u) {
  return Mean(u)(0);
}

}  // namespace

int FindQualityPeak(const CMatrix &quality, const CMatrix &positions, CMatrix &peak) {
  QUADREL_EXPECTS(quality.GetCols() == 1 && quality.GetRows() >= 1,
                  "quality is " + QuadrelDims(quality) + "; it must be an n x 1 column, n >= 1");
  QUADREL_EXPECTS(
      positions.GetRows() == 2 && positions.GetCols() == quality.GetRows(),
      "positions is " + QuadrelDims(positions) +
          QuadrelFormat("; it must be 2 x %d, one column per quality value", quality.GetRows()));
  QUADREL_EXPECTS(&peak != &quality && &peak != &positions, "peak is one of the inputs");

  const int n = quality.GetLength();
  int status = kNotConcave;
  peak = Zeros(2, 1);

  const CMatrix X = Transpose(Row(positions, 0));
  const CMatrix Y = Transpose(Row(positions, 1));

  // The best sample; of equal values the first one.
  CMatrix index;
  Max(quality, index);
  const int k = static_cast<int>(index(0));
  const double qmax = quality(k);

  // One sample leaves no residual freedom (the deviation below would divide by
  // 0), and values that are not finite would reach the solver: in both cases
  // there is no surface to judge, only the best sample.
  if (n < 2 || !QuadrelAllFinite(quality) || !QuadrelAllFinite(positions)) {
    peak(0) = positions(0, k);
    peak(1) = positions(1, k);
    return kPoorFit;
  }

  const double mx = MeanOf(X);
  const CMatrix x = X - mx;
  const double xk = x(k);
  const double my = MeanOf(Y);
  const CMatrix y = Y - my;
  const double yk = y(k);

  const CMatrix x2 = x ^ x;
  const CMatrix x3 = x2 ^ x;
  const CMatrix y2 = y ^ y;
  const CMatrix y3 = y2 ^ y;
  const CMatrix xy = x ^ y;
  const CMatrix &q = quality;

  const double Ex2 = MeanOf(x2);
  const double Ex3 = MeanOf(x3);
  const double Ex4 = MeanOf(x2 ^ x2);
  const double Ey2 = MeanOf(y2);
  const double Ey3 = MeanOf(y3);
  const double Ey4 = MeanOf(y2 ^ y2);
  const double Exy = MeanOf(xy);
  const double Ex2y = MeanOf(x2 ^ y);
  const double Exy2 = MeanOf(x ^ y2);
  const double Ex2y2 = MeanOf(x2 ^ y2);
  const double Ex3y = MeanOf(x3 ^ y);
  const double Exy3 = MeanOf(x ^ y3);
  const double Eq = MeanOf(q);
  const double Eqx = MeanOf(q ^ x);
  const double Eqx2 = MeanOf(q ^ x2);
  const double Eqy = MeanOf(q ^ y);
  const double Eqy2 = MeanOf(q ^ y2);
  const double Eqxy = MeanOf(q ^ xy);

  // Normal system of the fit with the constant term eliminated: covariances of
  // the terms x^2, x, y^2, y, xy and of each with q. Centring makes E[x] and
  // E[y] zero, so products of means appear only where neither term is x or y.
  CMatrix M(5, 5);
  CMatrix b(5, 1);
  M(0, 0) = Ex4 - Ex2 * Ex2;
  M(0, 1) = Ex3;
  M(0, 2) = Ex2y2 - Ex2 * Ey2;
  M(0, 3) = Ex2y;
  M(0, 4) = Ex3y - Ex2 * Exy;
  b(0) = Eqx2 - Ex2 * Eq;
  M(1, 1) = Ex2;
  M(1, 2) = Exy2;
  M(1, 3) = Exy;
  M(1, 4) = Ex2y;
  b(1) = Eqx;
  M(2, 2) = Ey4 - Ey2 * Ey2;
  M(2, 3) = Ey3;
  M(2, 4) = Exy3 - Ey2 * Exy;
  b(2) = Eqy2 - Ey2 * Eq;
  M(3, 3) = Ey2;
  M(3, 4) = Exy2;
  b(3) = Eqy;
  M(4, 4) = Ex2y2 - Exy * Exy;
  b(4) = Eqxy - Exy * Eq;
  for (int row = 1; row < 5; ++row)
    for (int col = 0; col < row; ++col)
      M(row, col) = M(col, row);

  // A rank-deficient system (samples on one line, say) gets the coefficients
  // of least norm.
  CMatrix a;
  Lsq(M, b, a);
  const double a0 = a(0);
  const double a1 = a(1);
  const double a2 = a(2);
  const double a3 = a(3);
  const double a4 = a(4);
  // The terms of a1 and a3 vanish by the centring.
  const double a5 = Eq - a0 * Ex2 - a2 * Ey2 - a4 * Exy;

  // Residual deviation with divisor n - 1, whatever the coefficients took.
  const CMatrix e = a5 + a0 * x2 + a1 * x + a2 * y2 + a3 * y + a4 * xy - q;
  const double sigma = std::sqrt(Sum(e ^ e)(0) / static_cast<double>(n - 1));
  if (sigma > kMaxSigma) {
    peak(0) = xk + mx;
    peak(1) = yk + my;
    return kPoorFit;
  }

  // D is the determinant of the Hessian; reach is sqrt(2) times the rms
  // distance of the samples from their centroid.
  const double D = 4.0 * a0 * a2 - a4 * a4;
  const double reach = std::sqrt(2.0 * Ex2 + 2.0 * Ey2);
  if (D > 0.0 && a0 < 0.0 && a2 < 0.0) {
    const double xp = (a3 * a4 - 2.0 * a1 * a2) / D;
    const double yp = (a1 * a4 - 2.0 * a3 * a0) / D;
    // Distance from the centroid of the samples, not from the best sample.
    if (std::sqrt(xp * xp + yp * yp) < reach) {
      peak(0) = xp + mx;
      peak(1) = yp + my;
      return kAnalyticMaximum;
    }
    status = kOutOfReach;
  }

  // Climb from the best sample. The first step sets the reference heading and
  // is not tested; every later heading is compared with it, not with the step
  // before. The step that stops the climb is kept.
  const double stepLength = reach / kStepDivisor;
  double px = xk;
  double py = yk;
  double h0 = 0.0;
  double value = 0.0;
  GradientStep(px, py, h0, stepLength, a, a5, value);
  for (int step = 0; step < kClimbSteps; ++step) {
    double h = 0.0;
    GradientStep(px, py, h, stepLength, a, a5, value);
    double turn = std::fabs(h - h0);
    if (turn > kWrapTurn) turn = kFullTurn - turn;
    if (turn > kMaxTurn) {
      status = kTurned;
      break;
    }
    // Written so that a value that is not a number also leaves the band.
    if (!(2.0 * sigma >= std::fabs(value - qmax))) {
      status = kLeftBand;
      break;
    }
  }
  peak(0) = px + mx;
  peak(1) = py + my;
  return status;
}
