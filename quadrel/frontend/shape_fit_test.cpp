// The table of shapes in process: fields in order on exact samples, the
// refusals with their status and message, the circle repair, the ellipse
// warning, and the report built from a fit.
#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "quadrel/frontend/report.h"
#include "quadrel/frontend/shape_fit.h"
#include "quadrel/io/read_points.h"
#include "quadrel/io/text_reader.h"

namespace {

namespace fe = quadrel_frontend;
using quadrel_io::ParsePointText;
using quadrel_io::PointSet;

PointSet Sample(const std::string &shape) {
  return quadrel_io::ReadPoints(std::string(QUADREL_SAMPLES) + "/" + shape + ".txt");
}

std::string Lines(const std::vector<fe::Vec3> &points) {
  std::string text;
  char line[96];
  for (const fe::Vec3 &p : points) {
    std::snprintf(line, sizeof line, "%.17g %.17g %.17g\n", p[0], p[1], p[2]);
    text += line;
  }
  return text;
}

TEST(ShapeTable, EveryShapeGivesItsFieldsInOrderOnItsExactSample) {
  const std::vector<std::vector<std::string>> fields = {
      {"centroid", "direction"},
      {"centroid", "normal"},
      {"centre", "normal", "radius"},
      {"centre", "radius"},
      {"focus_1", "focus_2", "normal", "focal_sum", "centre", "semi_major", "semi_minor",
       "centre_to_focus"},
      {"vertex", "a", "b", "sign"},
      {"axis_point", "direction", "radius", "u_radius", "rms", "iterations"},
      {"axis_point", "direction", "half_angle_degrees", "radius", "u_half_angle_degrees",
       "u_radius", "rms", "iterations"}};
  // The values the samples were made with, field by field (none: not checked);
  // directions and normals count up to their sign.
  const double r3 = 1 / std::sqrt(3.0);
  const std::vector<std::vector<std::vector<double>>> made = {
      {{1, 2, 3}, {1 / 3.0, 2 / 3.0, 2 / 3.0}},
      {{0.5, -1, 2}, {2 / 3.0, -1 / 3.0, 2 / 3.0}},
      {{1, -2, 3}, {r3, r3, r3}, {2.5}},
      {{-1, 0.5, 2}, {4}},
      {{}, {}, {}, {6}, {2, -1, 0.5}, {3}, {2}, {std::sqrt(5.0)}},
      {{0.3, -0.2, 0.8}, {1.7}, {0.9}, {1}}};
  ASSERT_EQ(fe::Shapes().size(), fields.size());
  for (size_t s = 0; s < fields.size(); ++s) {
    const fe::ShapeEntry &shape = fe::Shapes()[s];
    SCOPED_TRACE(shape.name);
    EXPECT_EQ(fe::FindShape(shape.name), &shape);
    const PointSet points = Sample(shape.name);
    const fe::ShapeFit fit = fe::FitShape(shape, points);
    ASSERT_TRUE(fit.outcome.ok()) << fit.outcome.reason;
    EXPECT_EQ(fit.points, points.count());
    std::vector<std::string> names;
    for (const fe::ResultField &field : fit.fields) {
      names.push_back(field.name);
      EXPECT_EQ(
          field.values.size(),
          field.kind == fe::FieldKind::kPoint || field.kind == fe::FieldKind::kDirection ? 3u : 1u);
      if (s >= made.size() || names.size() > made[s].size()) continue;
      const std::vector<double> &expected = made[s][names.size() - 1];
      const double sign = field.kind == fe::FieldKind::kDirection && !expected.empty() &&
                                  field.values[0] * expected[0] < 0
                              ? -1.0
                              : 1.0;
      for (size_t i = 0; i < expected.size(); ++i)
        EXPECT_NEAR(field.values[i], sign * expected[i], 1e-9) << field.name << " " << i;
    }
    EXPECT_EQ(names, fields[s]);
    ASSERT_EQ(fit.residuals.size(), static_cast<size_t>(points.count()));
    EXPECT_LT(fe::SummarizeResiduals(fit.residuals).rms, 1e-12);
    EXPECT_TRUE(fit.warning.empty());
  }
  EXPECT_EQ(fe::FindShape("cube"), nullptr);
  EXPECT_EQ(fe::FitName(*fe::FindShape("ellipse")), "an ellipse fit");
}

TEST(ShapeTable, RefusesTooFewAndDegeneratePointsWithoutThrowing) {
  const struct {
    const char *shape, *text;
    fe::Status status;
    std::string reason;
  } cases[] = {
      {"sphere", "0 0 0\n1 0 0\n0 1 0\n", fe::Status::kTooFewPoints,
       "a sphere fit needs at least 4 points; f has 3"},
      {"line", "", fe::Status::kTooFewPoints, "a line fit needs at least 2 points; f has 0"},
      {"line", "1 2 3\n1 2 3\n1 2 3\n", fe::Status::kDegenerate,
       "all 3 points of f are the same point; a line fit needs points that differ"},
      {"circle", "0 0 0\n1 1 1\n2 2 2\n3 3 3\n", fe::Status::kDegenerate,
       "the points of f lie on one line; a circle fit needs points that span a plane"},
      {"sphere", "0 0 1\n1 0 1\n0 1 1\n1 1 1\n2 3 1\n", fe::Status::kDegenerate,
       "the points of f lie in one plane; a sphere fit needs points that span space"},
      {"paraboloid", "0 0 1\n1 0 2\n0 1 3\n1 1 4\n0 2 5\n1 2 6\n", fe::Status::kDegenerate,
       "the points of f do not determine a paraboloid: it needs at least three different x values "
       "and three different y values, and points that do not all lie over one line"},
  };
  for (const auto &c : cases) {
    SCOPED_TRACE(c.text);
    const fe::ShapeFit fit = fe::FitShape(*fe::FindShape(c.shape), ParsePointText(c.text, "f"));
    EXPECT_EQ(fit.outcome.status, c.status);
    EXPECT_EQ(fit.outcome.reason, c.reason);
    EXPECT_TRUE(fit.fields.empty() && fit.residuals.empty());
  }
  // Ten coincident points: every shape refuses them, with no NaN in the reason.
  std::string same;
  for (int k = 0; k < 10; ++k)
    same += "1 2 3\n";
  for (const fe::ShapeEntry &shape : fe::Shapes()) {
    const fe::ShapeFit fit = fe::FitShape(shape, ParsePointText(same, "f"));
    EXPECT_FALSE(fit.outcome.ok()) << shape.name;
    EXPECT_EQ(fit.outcome.reason.find("nan"), std::string::npos) << fit.outcome.reason;
  }
  EXPECT_STREQ(fe::StatusName(fe::Status::kTooFewPoints), "too few points");
}

TEST(ShapeTable, RepairsTheCircleResidualOnItsAxisAndWarnsOfARunawayEllipse) {
  // A point on the circle's axis, where rounding makes the square of its
  // in-plane distance negative: its residual is its distance from the circle.
  std::vector<fe::Vec3> ring;
  for (int k = 0; k < 10; ++k)
    ring.push_back({0.6 + std::cos(0.2 * fe::kPi * k), -0.9 + std::sin(0.2 * fe::kPi * k), 0.2});
  ring.push_back({0.6, -0.9, 0.2 + 1.74});
  const fe::ShapeFit circle =
      fe::FitShape(*fe::FindShape("circle"), ParsePointText(Lines(ring), "axis"));
  ASSERT_TRUE(circle.outcome.ok()) << circle.outcome.reason;
  const double above = 0.2 + 1.74 - circle.Vector("centre")[2];
  EXPECT_NEAR(circle.residuals.back(), std::hypot(above, circle.Scalar("radius")), 1e-9);

  // Axes of 8 to 1 are beyond what the ellipse search reaches from its circle.
  std::vector<fe::Vec3> ellipse;
  for (int k = 0; k < 40; ++k) {
    const double t = 2 * fe::kPi * std::pow(k / 40.0, 1.5);
    ellipse.push_back({8 * std::cos(t), std::sin(t), 0});
  }
  const fe::ShapeFit runaway =
      fe::FitShape(*fe::FindShape("ellipse"), ParsePointText(Lines(ellipse), "long"));
  EXPECT_TRUE(runaway.outcome.ok());
  EXPECT_EQ(runaway.warning.rfind("the ellipse search ran away", 0), 0u) << runaway.warning;
}

TEST(Report, HoldsTheFieldsAndTheWorstResidualWithItsLine) {
  // The outlier is the third point, on line 5.
  const PointSet points =
      ParsePointText("x y z\n0 0 1\n1 0 1\n# out\n0 1 1.5\n1 1 1\n2 0 1\n0 2 1\n", "p");
  const fe::ShapeFit fit = fe::FitShape(*fe::FindShape("plane"), points);
  const fe::Report report = fe::ShapeReport(fit, points, true);
  EXPECT_EQ(report.title, "plane fit of p");
  std::vector<std::string> keys;
  for (const fe::ReportEntry &entry : report.entries)
    keys.push_back(entry.key);
  EXPECT_EQ(keys, (std::vector<std::string>{"command", "file", "points", "centroid", "normal",
                                            "residuals"}));
  const fe::ReportEntries &residuals = report.entries.back().entries;
  ASSERT_EQ(residuals.size(), 5u);
  EXPECT_EQ(residuals[2].integers, std::vector<std::int64_t>{3});  // max_point
  EXPECT_EQ(residuals[3].integers, std::vector<std::int64_t>{5});  // max_line
  EXPECT_EQ(residuals[4].numbers, fit.residuals);
  EXPECT_EQ(report.residualOrigins, (std::vector<std::int64_t>{2, 3, 5, 6, 7, 8}));
}

}  // namespace
