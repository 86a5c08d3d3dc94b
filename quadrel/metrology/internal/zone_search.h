// Chebyshev fitting by sequential linear programming in a trust region.
//
// A model gives, for a state of the reference feature, every point's deviation
// e_i (a length) and its gradient g_i with respect to k local parameters in
// length units. One step linearises e_i + g_i d and solves, with SolveSmallLp,
//   minimum zone:   minimise U - L with L <= e_i + g_i d <= U,
//   circumscribed:  minimise U     with e_i + g_i d <= U,
//   inscribed:      maximise L     with e_i + g_i d >= L,
// inside the box |d_j| <= radius. Steps are taken when the true objective
// falls, and the box grows or shrinks with the agreement between predicted
// and true gain. At a point where the linearised problem can gain nothing, the
// first-order optimality conditions of the Chebyshev problem hold: the dual
// weights of the programme's active rows certify it, and those rows are the
// contact points.
//
// A model supplies: using State; int Params() const; double Scale() const;
// void Deviations(const State &, double *e, double *g) const (g is n x k,
// row-major); State Step(const State &, const double *d) const.
#ifndef QUADREL_METROLOGY_INTERNAL_ZONE_SEARCH_H
#define QUADREL_METROLOGY_INTERNAL_ZONE_SEARCH_H

#include <algorithm>
#include <cmath>
#include <vector>

#include "quadrel/matrix/matrix.h"
#include "quadrel/metrology/internal/chebyshev_lp.h"
#include "quadrel/metrology/status.h"

enum class ZoneKind { kMinimumZone, kCircumscribed, kInscribed };

constexpr int kMaxZoneIterations = 200;

struct ZoneOutcome {
  MetrologyStatus status = MetrologyStatus::kStepLimit;
  int iterations = 0;
  double lower = 0.0, upper = 0.0;  // least and greatest deviation at the end
  std::vector<double> e;            // the deviations at the end
  std::vector<int> contacts;        // points in the final programme's basis
  std::vector<int> sides;           // +1 upper bound, -1 lower bound
};

// Runs the search from state, which ends at the best state found.
template <class Model>
ZoneOutcome SearchZone(const Model &model, typename Model::State &state, ZoneKind kind, int n) {
  const int k = model.Params();
  const double scale = model.Scale();
  const bool hasUpper = kind != ZoneKind::kInscribed;
  const bool hasLower = kind != ZoneKind::kCircumscribed;
  const int unknowns = k + (hasUpper ? 1 : 0) + (hasLower ? 1 : 0);
  ZoneOutcome out;
  std::vector<double> e(static_cast<size_t>(n)), g(static_cast<size_t>(n) * k);
  std::vector<double> trialE(static_cast<size_t>(n)), trialG(static_cast<size_t>(n) * k);
  // The objective in units of the scale.
  auto objective = [&](const std::vector<double> &dev) {
    const auto range = std::minmax_element(dev.begin(), dev.end());
    const double hi = *range.second / scale, lo = *range.first / scale;
    return kind == ZoneKind::kMinimumZone ? hi - lo : (hasUpper ? hi : -lo);
  };
  model.Deviations(state, e.data(), g.data());
  double value = objective(e);
  double radius = 0.1;
  std::vector<double> a, b;
  double c[kMaxLpUnknowns] = {};
  if (hasUpper) c[k] = 1.0;
  if (hasLower) c[unknowns - 1] = -1.0;
  for (out.iterations = 1; out.iterations <= kMaxZoneIterations; ++out.iterations) {
    a.assign(static_cast<size_t>(unknowns) * (2 * n + 2 * k), 0.0);
    b.clear();
    std::vector<int> rowPoint, rowSide;
    size_t row = 0;
    auto addRow = [&](int point, int side) {
      rowPoint.push_back(point);
      rowSide.push_back(side);
      ++row;
    };
    for (int i = 0; i < n; ++i) {
      if (hasUpper) {  // e_i + g_i d - U <= 0
        for (int j = 0; j < k; ++j)
          a[row * unknowns + j] = g[i * k + j];
        a[row * unknowns + k] = -1.0;
        b.push_back(-e[i] / scale);
        addRow(i, 1);
      }
      if (hasLower) {  // L - e_i - g_i d <= 0
        for (int j = 0; j < k; ++j)
          a[row * unknowns + j] = -g[i * k + j];
        a[row * unknowns + unknowns - 1] = 1.0;
        b.push_back(e[i] / scale);
        addRow(i, -1);
      }
    }
    for (int j = 0; j < k; ++j) {
      a[row * unknowns + j] = 1.0;
      b.push_back(radius);
      addRow(-1, 0);
      a[row * unknowns + j] = -1.0;
      b.push_back(radius);
      addRow(-1, 0);
    }
    a.resize(row * unknowns);
    const LpResult lp = SolveSmallLp(a, b, c, unknowns);
    if (!lp.solved) {
      out.status = MetrologyStatus::kStepLimit;
      break;
    }
    out.contacts.clear();
    out.sides.clear();
    for (int r : lp.active) {
      if (rowPoint[r] < 0) continue;
      out.contacts.push_back(rowPoint[r]);
      out.sides.push_back(rowSide[r]);
    }
    const double predicted = value - lp.value;
    if (predicted <= 1e-13) {
      out.status = MetrologyStatus::kConverged;
      break;
    }
    double d[kMaxLpUnknowns], longest = 0.0;
    for (int j = 0; j < k; ++j) {
      d[j] = lp.x[j] * scale;
      longest = std::max(longest, std::fabs(lp.x[j]));
    }
    const typename Model::State trial = model.Step(state, d);
    model.Deviations(trial, trialE.data(), trialG.data());
    const double trialValue = objective(trialE);
    const double agreement = (value - trialValue) / predicted;
    if (agreement > 1e-4) {
      state = trial;
      e.swap(trialE);
      g.swap(trialG);
      value = trialValue;
    }
    if (agreement < 0.25) {
      radius = 0.25 * longest;
    } else if (agreement > 0.75 && longest > 0.9 * radius) {
      radius = std::min(2.0 * radius, 1.0);
    }
    if (radius < 1e-15) {
      // The linear model promises a gain that no step of this size delivers:
      // what is left is rounding.
      out.status = MetrologyStatus::kConverged;
      break;
    }
  }
  if (out.iterations > kMaxZoneIterations) out.iterations = kMaxZoneIterations;
  const auto range = std::minmax_element(e.begin(), e.end());
  out.lower = *range.first;
  out.upper = *range.second;
  out.e.swap(e);
  return out;
}

// Writes the shared fields of info from a search: status, iterations, the
// width and the deviations from reference (e_i - reference), the contacts.
void FillZoneInfo(const ZoneOutcome &out, double width, double reference, ZoneInfo &info);

// Fills info for an evaluation that could not run: NaN deviations (n x 1),
// no contacts.
void FailZoneInfo(MetrologyStatus status, int n, ZoneInfo &info);

// Circles (in the plane of the Gaussian circle) and spheres about a free
// centre: minimum zone, circumscribed or inscribed, by the kind. centre and
// normal (circle only) are 3 x 1; radius is the mid radius of the zone, or the
// circumscribed or inscribed radius.
MetrologyStatus CentreZone(const CMatrix &points, bool circle, ZoneKind kind, CMatrix &centre,
                           CMatrix *normal, double &radius, ZoneInfo &info);

#endif  // QUADREL_METROLOGY_INTERNAL_ZONE_SEARCH_H
