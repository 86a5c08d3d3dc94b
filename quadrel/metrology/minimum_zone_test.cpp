// Minimum-zone, circumscribed and inscribed evaluations on data with a known
// answer: contact points placed on the bounding surfaces in a pattern that
// fixes the zone, the rest strictly inside, all in a tilted frame 1 m from the
// origin. The width must come out exact to rounding.
#include <cmath>
#include <set>
#include <vector>

#include <gtest/gtest.h>

#include "quadrel/metrology/circumscribed_inscribed.h"
#include "quadrel/metrology/gaussian_circle_sphere.h"
#include "quadrel/metrology/gaussian_line_plane.h"
#include "quadrel/metrology/internal/vec3.h"
#include "quadrel/metrology/minimum_zone.h"

namespace {

constexpr double kPi = 3.141592653589793;

// A tilted orthonormal frame (u, v, w) with its origin far from zero.
struct Frame {
  Vec3 origin{612.5, -407.25, 733.0}, u, v, w;
  Frame() {
    w = Normalised({0.3, -0.5, 0.8});
    Complement(w, u, v);
  }
  Vec3 At(double x, double y, double z) const { return origin + x * u + y * v + z * w; }
  // At radius r and angle a about w.
  Vec3 Ring(double r, double a, double z) const { return At(r * std::cos(a), r * std::sin(a), z); }
};

// Points collected one by one, as a 3 x n matrix.
struct PointList {
  std::vector<Vec3> points;
  void Add(const Vec3 &p) { points.push_back(p); }
  CMatrix Matrix() const {
    CMatrix m(3, static_cast<int>(points.size()));
    for (int i = 0; i < m.GetCols(); ++i)
      m(0, i) = points[i].x, m(1, i) = points[i].y, m(2, i) = points[i].z;
    return m;
  }
};

// Deterministic values in [-1, 1).
double Wobble(int i) {
  return std::sin(12.9898 * i + 78.233 * i * i) * 0.999;
}

// The contact indices as a set of (index, side) pairs.
std::set<std::pair<int, int>> Contacts(const ZoneInfo &info) {
  std::set<std::pair<int, int>> out;
  for (int i = 0; i < info.contacts.GetRows(); ++i)
    out.insert({static_cast<int>(info.contacts(i, 0)), static_cast<int>(info.sides(i, 0))});
  return out;
}

Vec3 V(const CMatrix &m) {
  return {m(0, 0), m(1, 0), m(2, 0)};
}

// Converged, with radius r about the frame's origin. centre and radius are
// references: the fit in the first argument sets them.
::testing::AssertionResult Nominal(MetrologyStatus status, const CMatrix &centre,
                                   const double &radius, const Frame &f, double r) {
  const double offset = Norm(V(centre) - f.origin);
  if (status == MetrologyStatus::kConverged && std::fabs(radius - r) <= 1e-12 * r &&
      offset <= 1e-12 * r)
    return ::testing::AssertionSuccess();
  return ::testing::AssertionFailure() << "status " << static_cast<int>(status) << ", radius "
                                       << radius << ", centre " << offset << " off";
}

}  // namespace

TEST(MinimumZone, FlatnessOfEdgeEdgeAndVertexFacePatterns) {
  const Frame f;
  const double h = 0.004, size = 50.0;
  for (int pattern = 0; pattern < 2; ++pattern) {
    PointList list;
    if (pattern == 0) {  // two edges that cross
      list.Add(f.At(-size, 0, h));
      list.Add(f.At(size, 0, h));
      list.Add(f.At(0, -size, -h));
      list.Add(f.At(0, size, -h));
    } else {  // a triangle above, a point below inside it
      for (int k = 0; k < 3; ++k)
        list.Add(f.Ring(size, 2 * kPi * k / 3, h));
      list.Add(f.At(1.0, -2.0, -h));
    }
    for (int i = 0; i < 200; ++i)
      list.Add(
          f.At(0.7 * size * Wobble(i), 0.7 * size * Wobble(i + 500), 0.9 * h * Wobble(i + 900)));
    CMatrix point, normal;
    ZoneInfo info;
    ASSERT_EQ(MinimumZoneFlatness(list.Matrix(), point, normal, info), MetrologyStatus::kConverged);
    EXPECT_NEAR(info.width, 2 * h, 1e-12 * size) << "pattern " << pattern;
    EXPECT_NEAR(std::fabs(Dot(V(normal), f.w)), 1.0, 1e-14);
    EXPECT_NEAR(Dot(V(point) - f.origin, f.w), 0.0, 1e-12 * size);
    // The four contacts, with the upper ones on the side the normal points to.
    const int up = Dot(V(normal), f.w) > 0 ? 1 : -1;
    const std::set<std::pair<int, int>> expected = {
        {0, up}, {1, up}, {2, pattern == 0 ? -up : up}, {3, -up}};
    EXPECT_EQ(Contacts(info), expected) << "pattern " << pattern;
    EXPECT_NEAR(info.deviations(0, 0), up * h, 1e-12 * size);
  }
}

TEST(MinimumZone, StraightnessIsTheThinnestCylinder) {
  const Frame f;
  const double radius = 0.002, length = 80.0;
  PointList list;
  // Three contacts at each end, turned by 60 degrees against each other.
  for (int k = 0; k < 3; ++k) {
    list.Add(f.Ring(radius, 2 * kPi * k / 3, -length / 2));
    list.Add(f.Ring(radius, 2 * kPi * k / 3 + kPi / 3, length / 2));
  }
  for (int i = 0; i < 100; ++i) {
    const double r = 0.9 * radius * std::fabs(Wobble(i)), a = kPi * Wobble(i + 300);
    list.Add(f.Ring(r, a, 0.5 * length * Wobble(i + 700)));
  }
  CMatrix point, direction;
  ZoneInfo info;
  ASSERT_EQ(MinimumZoneStraightness(list.Matrix(), point, direction, info),
            MetrologyStatus::kConverged);
  EXPECT_NEAR(info.width, 2 * radius, 1e-12 * length);
  EXPECT_NEAR(Norm(Cross(V(point) - f.origin, f.w)), 0.0, 1e-12 * length);
  // The dual weights are not unique here: a basis may hold the three
  // contacts of one end alone, which already balance.
  EXPECT_GE(Contacts(info).size(), 3u);
  for (const auto &contact : Contacts(info))
    EXPECT_TRUE(contact.first < 6 && contact.second == 1);
}

TEST(MinimumZone, RoundnessAndTheCircumscribedAndInscribedCircles) {
  const Frame f;
  const double r = 25.0, h = 0.003;
  PointList zone, outer, inner;
  // Alternating contacts: outside at 0 and 180 degrees, inside at 90 and 270.
  for (int k = 0; k < 4; ++k)
    zone.Add(f.Ring(k % 2 == 0 ? r + h : r - h, k * kPi / 2, 0));
  for (int k = 0; k < 3; ++k)
    outer.Add(f.Ring(r, 2 * kPi * k / 3 + 0.2, 0));
  inner = outer;
  for (int i = 0; i < 150; ++i) {
    const double a = kPi * Wobble(i), d = Wobble(i + 400);
    zone.Add(f.Ring(r + 0.9 * h * d, a, 0));
    outer.Add(f.Ring(r - 0.01 * (1.0 + d), a, 0));
    inner.Add(f.Ring(r + 0.01 * (1.0 + d), a, 0));
  }
  CMatrix centre, normal;
  double radius = 0.0;
  ZoneInfo info;
  EXPECT_TRUE(Nominal(MinimumZoneRoundness(zone.Matrix(), centre, normal, radius, info), centre,
                      radius, f, r));
  EXPECT_NEAR(info.width, 2 * h, 1e-12 * r);
  EXPECT_EQ(Contacts(info), (std::set<std::pair<int, int>>{{0, 1}, {1, -1}, {2, 1}, {3, -1}}));
  EXPECT_TRUE(Nominal(MinimumCircumscribedCircle(outer.Matrix(), centre, normal, radius, info),
                      centre, radius, f, r));
  EXPECT_EQ(Contacts(info), (std::set<std::pair<int, int>>{{0, 1}, {1, 1}, {2, 1}}));
  EXPECT_TRUE(Nominal(MaximumInscribedCircle(inner.Matrix(), centre, normal, radius, info), centre,
                      radius, f, r));
  EXPECT_EQ(Contacts(info), (std::set<std::pair<int, int>>{{0, -1}, {1, -1}, {2, -1}}));
}

TEST(MinimumZone, SphericityAndTheCircumscribedAndInscribedSpheres) {
  const Frame f;
  const double r = 40.0, h = 0.005;
  PointList zone, outer, inner;
  // Outside along the six axes, inside along the eight cube diagonals; those
  // diagonals with an even count of minus signs make a regular tetrahedron on
  // the sphere for the one-sided fits.
  const double s = 1.0 / std::sqrt(3.0);
  for (int k = 0; k < 6; ++k) {
    double c[3] = {0, 0, 0};
    c[k / 2] = k % 2 == 0 ? r + h : -(r + h);
    zone.Add(f.At(c[0], c[1], c[2]));
  }
  for (int k = 0; k < 8; ++k) {
    const double x = k & 1 ? s : -s, y = k & 2 ? s : -s, z = k & 4 ? s : -s;
    zone.Add(f.At(x * (r - h), y * (r - h), z * (r - h)));
    if (x * y * z > 0) outer.Add(f.At(r * x, r * y, r * z));
  }
  inner = outer;
  for (int i = 0; i < 200; ++i) {
    const double z = Wobble(i), a = kPi * Wobble(i + 300), d = Wobble(i + 600);
    const Vec3 dir{std::sqrt(1 - z * z) * std::cos(a), std::sqrt(1 - z * z) * std::sin(a), z};
    const double rz = r + 0.9 * h * d, below = r - 0.01 * (1.0 + d), above = r + 0.01 * (1.0 + d);
    zone.Add(f.At(rz * dir.x, rz * dir.y, rz * dir.z));
    outer.Add(f.At(below * dir.x, below * dir.y, below * dir.z));
    inner.Add(f.At(above * dir.x, above * dir.y, above * dir.z));
  }
  CMatrix centre;
  double radius = 0.0;
  ZoneInfo info;
  EXPECT_TRUE(
      Nominal(MinimumZoneSphericity(zone.Matrix(), centre, radius, info), centre, radius, f, r));
  EXPECT_NEAR(info.width, 2 * h, 1e-12 * r);
  for (const auto &contact : Contacts(info))
    EXPECT_EQ(contact.second, contact.first < 6 ? 1 : -1) << contact.first;
  EXPECT_TRUE(Nominal(MinimumCircumscribedSphere(outer.Matrix(), centre, radius, info), centre,
                      radius, f, r));
  EXPECT_EQ(Contacts(info).size(), 4u);
  EXPECT_TRUE(
      Nominal(MaximumInscribedSphere(inner.Matrix(), centre, radius, info), centre, radius, f, r));
  EXPECT_GE(info.deviations(10, 0), 0.0);
}

TEST(MinimumZone, BadInputGivesAStatus) {
  CMatrix point, normal;
  ZoneInfo info;
  CMatrix line(3, 5);
  for (int i = 0; i < 5; ++i)
    for (int r = 0; r < 3; ++r)
      line(r, i) = i * (r + 1.0);
  EXPECT_EQ(MinimumZoneFlatness(line, point, normal, info), MetrologyStatus::kDegenerate);
  EXPECT_TRUE(std::isnan(info.width) && std::isnan(info.deviations(4, 0)));
  line(1, 3) = std::nan("");
  EXPECT_EQ(MinimumZoneStraightness(line, point, normal, info), MetrologyStatus::kNonFinite);
  EXPECT_EQ(MinimumZoneFlatness(CMatrix(0.0, 3, 3), point, normal, info),
            MetrologyStatus::kTooFewPoints);
  double radius = 0.0;
  EXPECT_EQ(MinimumZoneSphericity(CMatrix(0.0, 4, 9), point, radius, info),
            MetrologyStatus::kBadShape);
  EXPECT_TRUE(std::isnan(radius));
}

// On rough random data: every point lies in the zone, the contacts on its
// bounds, and the zone is no wider than the spread about the Gaussian feature.
TEST(MinimumZone, RandomDataLiesInAZoneNoWiderThanTheGaussianSpread) {
  const Frame f;
  PointList plane, circle, sphere;
  for (int i = 0; i < 2000; ++i) {
    const double a = kPi * Wobble(i), z = Wobble(i + 3000);
    const double rough = 0.01 * Wobble(i + 6000) + 0.004 * std::cos(5 * a);
    plane.Add(f.At(30 * Wobble(i + 9000), 30 * Wobble(i + 12000), rough));
    circle.Add(f.Ring(20 + rough, a, 0.001 * z));
    sphere.Add(f.Ring((20 + rough) * std::sqrt(1 - z * z), a, (20 + rough) * z));
  }
  for (int kind = 0; kind < 3; ++kind) {
    CMatrix centre, normal;
    double radius = 0.0;
    ZoneInfo info;
    GaussianFitInfo gaussian;
    MetrologyStatus status;
    if (kind == 0) {
      status = MinimumZoneFlatness(plane.Matrix(), centre, normal, info);
      GaussianPlaneFit(plane.Matrix(), centre, normal, gaussian);
    } else if (kind == 1) {
      status = MinimumZoneRoundness(circle.Matrix(), centre, normal, radius, info);
      GaussianCircleFit(circle.Matrix(), centre, normal, radius, gaussian);
    } else {
      status = MinimumZoneSphericity(sphere.Matrix(), centre, radius, info);
      GaussianSphereFit(sphere.Matrix(), centre, radius, gaussian);
    }
    ASSERT_EQ(status, MetrologyStatus::kConverged) << kind;
    double lo = 0.0, hi = 0.0;
    for (int i = 0; i < gaussian.residuals.GetRows(); ++i) {
      lo = std::fmin(lo, gaussian.residuals(i, 0));
      hi = std::fmax(hi, gaussian.residuals(i, 0));
      EXPECT_LE(std::fabs(info.deviations(i, 0)), 0.5 * info.width * (1 + 1e-12)) << kind;
    }
    EXPECT_LE(info.width, hi - lo) << kind;
    EXPECT_GE(info.contacts.GetRows(), 3) << kind;
    for (int c = 0; c < info.contacts.GetRows(); ++c) {
      const int i = static_cast<int>(info.contacts(c, 0));
      EXPECT_NEAR(info.deviations(i, 0), 0.5 * info.sides(c, 0) * info.width, 1e-12 * 20) << kind;
    }
  }
}
