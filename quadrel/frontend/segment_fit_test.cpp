// Fits per segment: segments in the order of their first point, each fitted
// exactly as its points alone would be, refusals kept per segment, and the
// column faults that stop the whole run.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include "quadrel/frontend/segment_fit.h"
#include "quadrel/io/point_set.h"

namespace {

using quadrel_frontend::FindShape;
using quadrel_frontend::FitSegments;
using quadrel_frontend::FitShape;
using quadrel_frontend::SegmentFits;
using quadrel_frontend::Status;
using quadrel_io::PointSet;

// Points on spheres about (key, 0, 0) of radius 1 + key / 10, interleaved:
// label 5 first, then -0 (one segment with 0), then 2; label 9 has 3 points.
PointSet Labelled(std::vector<double> &labels) {
  std::vector<double> x, y, z;
  std::vector<std::int64_t> origins;
  const double keys[] = {5, -0.0, 2, 0, 9};
  for (int k = 0; k < 40; ++k) {
    const double key = keys[k % 5];
    if (key == 9 && k > 15) continue;
    const double radius = 1 + key / 10, t = 0.7 * k, u = 0.3 * k;
    x.push_back(key + radius * std::cos(t) * std::cos(u));
    y.push_back(radius * std::sin(t) * std::cos(u));
    z.push_back(radius * std::sin(u));
    labels.push_back(key);
    origins.push_back(k + 10);
  }
  return PointSet("cloud.ply", x, y, z, origins, quadrel_io::OriginKind::kRecord);
}

TEST(FitSegments, FitsEachSegmentAsItsPointsAloneInOrderOfFirstPoint) {
  std::vector<double> labels;
  PointSet cloud = Labelled(labels);
  ASSERT_TRUE(cloud.AddColumn("label", labels));
  const SegmentFits fits = FitSegments(*FindShape("sphere"), cloud, "label");
  ASSERT_TRUE(fits.outcome.ok()) << fits.outcome.reason;
  ASSERT_EQ(fits.segments.size(), 4u);
  const double keys[] = {5, 0, 2, 9};
  for (std::size_t s = 0; s < 4; ++s)
    EXPECT_EQ(fits.segments[s].key, keys[s]);
  EXPECT_FALSE(std::signbit(fits.segments[1].key));
  EXPECT_EQ(fits.segments[1].points, 16);
  EXPECT_FALSE(fits.AllFitted());
  EXPECT_EQ(fits.segments[3].fit.outcome.status, Status::kTooFewPoints);
  EXPECT_EQ(fits.segments[3].fit.outcome.reason,
            "a sphere fit needs at least 4 points; cloud.ply (label 9) has 3");

  // Segment 2 against a set of its points alone: the same bits.
  std::vector<double> x, y, z;
  std::vector<std::int64_t> origins;
  for (int k = 0; k < cloud.count(); ++k) {
    if (labels[static_cast<std::size_t>(k)] != 2) continue;
    x.push_back(cloud.at(0, k));
    y.push_back(cloud.at(1, k));
    z.push_back(cloud.at(2, k));
    origins.push_back(cloud.originOf(k));
  }
  const auto alone = FitShape(*FindShape("sphere"), PointSet("p", x, y, z, origins));
  const auto &fit = fits.segments[2].fit;
  ASSERT_TRUE(fit.outcome.ok());
  EXPECT_EQ(0, std::memcmp(fit.Find("centre")->values.data(), alone.Find("centre")->values.data(),
                           3 * sizeof(double)));
  EXPECT_EQ(fit.residuals, alone.residuals);
  EXPECT_NEAR(fit.Scalar("radius"), 1.2, 1e-12);
  EXPECT_LT(fits.segments[2].rms, 1e-12);
}

TEST(FitSegments, RefusesAMissingColumnAndKeysThatAreNoNumbers) {
  std::vector<double> labels;
  PointSet cloud = Labelled(labels);
  SegmentFits fits = FitSegments(*FindShape("plane"), cloud, "label");
  EXPECT_EQ(fits.outcome.status, Status::kBadInput);
  EXPECT_EQ(fits.outcome.reason,
            "cloud.ply has no column 'label' to segment by; it has no columns besides x, y and z");
  labels[3] = std::numeric_limits<double>::quiet_NaN();
  cloud.AddColumn("class", labels);
  cloud.AddColumn("intensity", labels);
  EXPECT_EQ(FitSegments(*FindShape("plane"), cloud, "label").outcome.reason,
            "cloud.ply has no column 'label' to segment by; its columns besides x, y and z are: "
            "class, intensity");
  fits = FitSegments(*FindShape("plane"), cloud, "class");
  EXPECT_EQ(
      fits.outcome.reason,
      "cloud.ply: the class of point 13 is not a finite number; segment keys must be numbers");
  EXPECT_TRUE(fits.segments.empty());
  // An axis serves as a key as well.
  EXPECT_EQ(FitSegments(*FindShape("plane"), cloud, "x").segments.size(),
            static_cast<std::size_t>(cloud.count()));
  EXPECT_EQ(quadrel_frontend::FormatKey(0.1), "0.1");
  EXPECT_EQ(quadrel_frontend::FormatKey(-0.0), "0");
}

}  // namespace
