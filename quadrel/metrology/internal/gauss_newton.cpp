#include "quadrel/metrology/internal/gauss_newton.h"

#include "quadrel/metrology/internal/point_block.h"

bool CholeskySolve(const double *a, int p, const double *b, double *x) {
  double l[kMaxParams * kMaxParams];
  for (int i = 0; i < p; ++i) {
    for (int j = 0; j <= i; ++j) {
      double s = a[i * p + j];
      for (int k = 0; k < j; ++k)
        s -= l[i * p + k] * l[j * p + k];
      if (i == j) {
        if (!(s > 1e-14 * a[i * p + i])) return false;
        l[i * p + i] = std::sqrt(s);
      } else {
        l[i * p + j] = s / l[j * p + j];
      }
    }
  }
  for (int i = 0; i < p; ++i) {
    double s = b[i];
    for (int k = 0; k < i; ++k)
      s -= l[i * p + k] * x[k];
    x[i] = s / l[i * p + i];
  }
  for (int i = p - 1; i >= 0; --i) {
    double s = x[i];
    for (int k = i + 1; k < p; ++k)
      s -= l[k * p + i] * x[k];
    x[i] = s / l[i * p + i];
  }
  return true;
}

void FillCovariance(const NormalEquations &eq, const double *t, int q, GaussianFitInfo &info) {
  const int p = eq.p;
  double inv[kMaxParams * kMaxParams];
  bool ok = eq.m > p;
  for (int c = 0; c < p && ok; ++c) {
    double e[kMaxParams] = {};
    e[c] = 1.0;
    double col[kMaxParams];
    ok = CholeskySolve(eq.jtj, p, e, col);
    for (int r = 0; r < p; ++r)
      inv[r * p + c] = col[r];
  }
  if (!ok) {
    info.covariance = NanMatrix(q, q);
    info.uncertainties = NanMatrix(q, 1);
    return;
  }
  const double s2 = eq.cost / (eq.m - p);
  info.covariance = CMatrix(q, q);
  info.uncertainties = CMatrix(q, 1);
  for (int i = 0; i < q; ++i) {
    for (int j = 0; j < q; ++j) {
      double s = 0.0;
      for (int a = 0; a < p; ++a)
        for (int b = 0; b < p; ++b)
          s += t[i * p + a] * inv[a * p + b] * t[j * p + b];
      info.covariance(i, j) = s2 * s;
    }
    info.uncertainties(i, 0) = std::sqrt(info.covariance(i, i));
  }
}

void FinishInfo(MetrologyStatus status, int iterations, const NormalEquations &eq,
                const std::vector<double> &residuals, const double *t, int q,
                GaussianFitInfo &info) {
  info.status = status;
  info.iterations = iterations;
  info.residuals = ColumnOf(residuals);
  double sum = 0.0;
  for (double r : residuals)
    sum += r * r;
  info.rms = residuals.empty() ? 0.0 : std::sqrt(sum / static_cast<double>(residuals.size()));
  FillCovariance(eq, t, q, info);
}

void FailInfo(MetrologyStatus status, int n, int q, GaussianFitInfo &info) {
  info.status = status;
  info.iterations = 0;
  info.rms = std::numeric_limits<double>::quiet_NaN();
  info.residuals = n > 0 ? NanMatrix(n, 1) : CMatrix(0, 1);
  info.covariance = NanMatrix(q, q);
  info.uncertainties = NanMatrix(q, 1);
}
