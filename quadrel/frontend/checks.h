// Checks of the input that come before a fit: enough points, and points that
// determine the shape at all. The library answers degenerate data with values
// that are no numbers or with arbitrary ones; the front ends refuse such data
// instead, with a message that says what is missing.
#ifndef QUADREL_FRONTEND_CHECKS_H
#define QUADREL_FRONTEND_CHECKS_H

#include <array>
#include <string>

#include "quadrel/frontend/outcome.h"
#include "quadrel/frontend/vec3.h"
#include "quadrel/io/point_set.h"

namespace quadrel_frontend {

using quadrel_io::PointSet;

// Spread of a point set about its centroid along its principal axes: rms[k] is
// the root mean square distance from the centroid along axes[k]; rms[0] is the
// largest, rms[2] the smallest.
struct Spread {
  Vec3 centroid{};
  Vec3 rms{};
  std::array<Vec3, 3> axes{};
};
// The set must hold at least one point.
Spread PrincipalSpread(const PointSet &table);

// A principal spread at or below this fraction of the largest counts as none:
// the points are then taken to lie on a line (second spread) or in a plane
// (third spread). Exactly flat data comes out near 1e-8 here, from the
// rounding of the scatter matrix, so the bound leaves a wide margin.
constexpr double kFlatRatio = 1e-6;

// Each gives a refusal when its condition fails, and ok otherwise. what
// names the fit in messages, e.g. "a sphere fit".
Outcome RequirePoints(const PointSet &table, int needed, const std::string &what,
                      const char *unit = "points");
// Not every point (in the first `rows` numbers of each line) is the same.
Outcome RequireDistinct(const PointSet &table, const std::string &what, int rows = 3);
Outcome RequireNotOnOneLine(const PointSet &table, const std::string &what);
Outcome RequireNotInOnePlane(const PointSet &table, const std::string &what);
// The five terms x^2, x, y^2, y, 1 of the paraboloid can be told apart.
Outcome RequireParaboloidTermsApart(const PointSet &table);
// Not every third number (the quality of a sample) is the same.
Outcome RequireQualityVaries(const PointSet &table);

}  // namespace quadrel_frontend

#endif  // QUADREL_FRONTEND_CHECKS_H
