#include "quadrel/frontend/checks.h"

#include <cmath>

#include <quadrel/quadrel.h>

namespace quadrel_frontend {

namespace {

// Singular values of a symmetric positive semidefinite matrix, with the
// columns of V as their axes, sorted from the largest down.
void SortedSingularValues(const CMatrix &symmetric, double *values, Vec3 *axes) {
  CMatrix u;
  CMatrix w;
  CMatrix v;
  Svd(symmetric, u, w, v);
  const int n = symmetric.GetRows();
  // Largest first, by the insertion sort that std::sort runs on so few
  // elements (the same order also for ties and NaN), written out because some
  // compilers warn falsely on std::sort's branch for long arrays.
  const auto larger = [&w](int a, int b) { return std::fabs(w(a, a)) > std::fabs(w(b, b)); };
  int order[8];
  for (int k = 0; k < n; ++k) {
    int j = k;
    if (k > 0 && larger(k, order[0])) {
      for (; j > 0; --j)
        order[j] = order[j - 1];
    } else {
      for (; j > 0 && larger(k, order[j - 1]); --j)
        order[j] = order[j - 1];
    }
    order[j] = k;
  }
  for (int k = 0; k < n; ++k) {
    values[k] = std::fabs(w(order[k], order[k]));
    if (axes != nullptr) axes[k] = {v(0, order[k]), v(1, order[k]), v(2, order[k])};
  }
}

}  // namespace

Spread PrincipalSpread(const PointSet &table) {
  Spread spread;
  const int n = table.count();
  for (int r = 0; r < 3; ++r) {
    double sum = 0.0;
    for (int k = 0; k < n; ++k)
      sum += table.at(r, k);
    spread.centroid[r] = sum / n;
  }
  double scatter[9] = {0, 0, 0, 0, 0, 0, 0, 0, 0};
  for (int k = 0; k < n; ++k) {
    const double d[3] = {table.at(0, k) - spread.centroid[0], table.at(1, k) - spread.centroid[1],
                         table.at(2, k) - spread.centroid[2]};
    for (int i = 0; i < 3; ++i) {
      for (int j = 0; j < 3; ++j)
        scatter[i * 3 + j] += d[i] * d[j];
    }
  }
  double values[3];
  SortedSingularValues(CMatrix(scatter, 3, 3), values, spread.axes.data());
  for (int k = 0; k < 3; ++k)
    spread.rms[k] = std::sqrt(values[k] / n);
  return spread;
}

Outcome RequirePoints(const PointSet &table, int needed, const std::string &what,
                      const char *unit) {
  if (table.count() < needed) {
    return Outcome::Refused(Status::kTooFewPoints,
                            what + " needs at least " + std::to_string(needed) + " " + unit + "; " +
                                table.name() + " has " + std::to_string(table.count()));
  }
  return {};
}

Outcome RequireDistinct(const PointSet &table, const std::string &what, int rows) {
  for (int k = 1; k < table.count(); ++k) {
    for (int r = 0; r < rows; ++r) {
      if (table.at(r, k) != table.at(r, 0)) return {};
    }
  }
  return Outcome::Refused(Status::kDegenerate,
                          "all " + std::to_string(table.count()) + " points of " + table.name() +
                              " are the same point; " + what + " needs points that differ");
}

namespace {

// Refuses points that lie on one line and, when lineOnly is false, also points
// that lie in one plane.
Outcome RequireSpread(const PointSet &table, const std::string &what, bool lineOnly) {
  if (Outcome distinct = RequireDistinct(table, what); !distinct.ok()) return distinct;
  const Spread spread = PrincipalSpread(table);
  if (spread.rms[1] <= kFlatRatio * spread.rms[0]) {
    return Outcome::Refused(Status::kDegenerate, "the points of " + table.name() +
                                                     " lie on one line; " + what +
                                                     " needs points that span a plane");
  }
  if (!lineOnly && spread.rms[2] <= kFlatRatio * spread.rms[0]) {
    return Outcome::Refused(Status::kDegenerate, "the points of " + table.name() +
                                                     " lie in one plane; " + what +
                                                     " needs points that span space");
  }
  return {};
}

}  // namespace

Outcome RequireNotOnOneLine(const PointSet &table, const std::string &what) {
  return RequireSpread(table, what, true);
}

Outcome RequireNotInOnePlane(const PointSet &table, const std::string &what) {
  return RequireSpread(table, what, false);
}

Outcome RequireParaboloidTermsApart(const PointSet &table) {
  const int n = table.count();
  // Standardised coordinates give the same column space as x and y and keep the
  // test below independent of the data's unit and offset.
  double mean[2];
  double deviation[2];
  for (int r = 0; r < 2; ++r) {
    double sum = 0.0;
    for (int k = 0; k < n; ++k)
      sum += table.at(r, k);
    mean[r] = sum / n;
    double squares = 0.0;
    for (int k = 0; k < n; ++k) {
      const double d = table.at(r, k) - mean[r];
      squares += d * d;
    }
    deviation[r] = std::sqrt(squares / n);
  }
  bool apart = deviation[0] > 0.0 && deviation[1] > 0.0;
  if (apart) {
    // Gram matrix of the five terms 1, u, u^2, v, v^2 over the points; a
    // vanishing eigenvalue means one term is a combination of the others.
    double gram[25] = {};
    for (int k = 0; k < n; ++k) {
      const double u = (table.at(0, k) - mean[0]) / deviation[0];
      const double v = (table.at(1, k) - mean[1]) / deviation[1];
      const double terms[5] = {1.0, u, u * u, v, v * v};
      for (int i = 0; i < 5; ++i) {
        for (int j = 0; j < 5; ++j)
          gram[i * 5 + j] += terms[i] * terms[j];
      }
    }
    for (double &element : gram)
      element /= n;
    double values[5];
    SortedSingularValues(CMatrix(gram, 5, 5), values, nullptr);
    apart = values[4] > kFlatRatio * kFlatRatio * values[0];
  }
  if (!apart) {
    return Outcome::Refused(
        Status::kDegenerate,
        "the points of " + table.name() +
            " do not determine a paraboloid: it needs at least three different x "
            "values and three different y values, and points that do not all lie "
            "over one line");
  }
  return {};
}

Outcome RequireQualityVaries(const PointSet &table) {
  for (int k = 1; k < table.count(); ++k) {
    if (table.at(2, k) != table.at(2, 0)) return {};
  }
  return Outcome::Refused(Status::kDegenerate, "all " + std::to_string(table.count()) +
                                                   " quality values of " + table.name() +
                                                   " are the same; there is no peak to find");
}

}  // namespace quadrel_frontend
