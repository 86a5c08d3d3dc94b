// The trihedral and peak front ends in process: the order of the faces, the
// best sample, the methods spelled out, and every refusal with its message
// instead of an exception.
#include <gtest/gtest.h>

#include <string>

#include "quadrel/frontend/peak_fit.h"
#include "quadrel/frontend/trihedral_fit.h"
#include "quadrel/io/read_points.h"
#include "quadrel/io/text_reader.h"

namespace {

namespace fe = quadrel_frontend;
using quadrel_io::PointSet;

PointSet Sample(const std::string &name) {
  return quadrel_io::ReadPoints(std::string(QUADREL_SAMPLES) + "/" + name,
                                quadrel_io::kSampleColumns);
}

TEST(Trihedral, FitsTheCubeCornerAndRefusesFacesThatDoNotMeetOrComeInTheWrongOrder) {
  const PointSet f1 = Sample("trihedral-1.txt"), f2 = Sample("trihedral-2.txt"),
                 f3 = Sample("trihedral-3.txt");
  const fe::TrihedralFit fit = fe::FitTrihedral({&f1, &f2, &f3}, fe::EdgeAngleRadians(90));
  ASSERT_TRUE(fit.outcome.ok()) << fit.outcome.reason;
  // The tool's tests check the fit's numbers on their way out. A cyclic
  // exchange of the faces gives the same apex; a wrong edge angle still
  // converges or stops, on finite numbers that fit worse.
  const fe::TrihedralFit cyclic = fe::FitTrihedral({&f2, &f3, &f1}, fe::EdgeAngleRadians(90));
  for (int i = 0; i < 3; ++i)
    EXPECT_NEAR(cyclic.apex[i], fit.apex[i], 1e-9);
  const fe::TrihedralFit wide = fe::FitTrihedral({&f1, &f2, &f3}, fe::EdgeAngleRadians(60));
  EXPECT_TRUE(wide.code == 0 || fe::TrihedralStatus(wide.code) == "step limit reached");
  EXPECT_GT(wide.rms, 0.01);

  const fe::TrihedralFit swapped = fe::FitTrihedral({&f1, &f3, &f2}, fe::EdgeAngleRadians(90));
  EXPECT_EQ(swapped.outcome.status, fe::Status::kDegenerate);
  EXPECT_EQ(swapped.outcome.reason,
            "the faces " + f1.name() + ", " + f3.name() + ", " + f2.name() +
                " come in the wrong order: with their normals turned away from the origin they "
                "must form a right-handed triple; give them as " +
                f1.name() + " " + f2.name() + " " + f3.name());
  const fe::TrihedralFit parallel = fe::FitTrihedral({&f1, &f1, &f3}, fe::EdgeAngleRadians(90));
  EXPECT_NE(parallel.outcome.reason.find("do not meet in one point"), std::string::npos);

  const PointSet two = quadrel_io::ParsePointText("0 0 0\n1 0 0\n", "two");
  EXPECT_EQ(fe::FitTrihedral({&f1, &two, &f3}, 1.0).outcome.reason,
            "a trihedral fit needs at least 3 points per face; two has 2");
  EXPECT_TRUE(fe::CheckEdgeAngle(90).ok());
  for (double bad : {0.0, 120.0, -5.0, 1e300 * 1e300})
    EXPECT_FALSE(fe::CheckEdgeAngle(bad).ok()) << bad;
  EXPECT_EQ(fe::CheckEdgeAngle(130).reason,
            "the edge angle must lie strictly between 0 and 120 degrees; got 130");
}

TEST(Peak, FindsThePeakOfTheSampleAndRefusesSamplesWithoutOne) {
  const PointSet samples = Sample("peak.txt");
  const fe::PeakFit fit = fe::FindPeak(samples);
  ASSERT_TRUE(fit.outcome.ok()) << fit.outcome.reason;
  EXPECT_EQ(samples.at(0, fit.bestSample), 0);  // the best sample, of quality 99.47
  EXPECT_EQ(samples.at(1, fit.bestSample), -1);
  const char *const methods[] = {"maximum of the fitted surface",
                                 "climb stopped: heading turned more than 70 degrees",
                                 "maximum beyond reach: climbed six steps",
                                 "surface has no maximum: climbed six steps",
                                 "surface does not fit the data: best sample",
                                 "climb stopped: left the quality band"};
  for (int code = 0; code < 6; ++code)
    EXPECT_EQ(fe::PeakMethod(code), methods[code]);

  const struct {
    const char *text;
    fe::Status status;
    const char *reason;
  } cases[] = {
      {"0 0 1\n1 0 2\n0 1 3\n1 1 4\n2 2 5\n", fe::Status::kTooFewPoints,
       "a quality peak search needs at least 6 samples; s has 5"},
      {"1 1 1\n1 1 2\n1 1 3\n1 1 4\n1 1 5\n1 1 6\n", fe::Status::kDegenerate,
       "all 6 points of s are the same point; a quality peak search needs points that differ"},
      {"0 0 5\n1 0 5\n2 0 5\n0 1 5\n1 1 5\n2 1 5\n", fe::Status::kDegenerate,
       "all 6 quality values of s are the same; there is no peak to find"},
  };
  for (const auto &c : cases) {
    const fe::PeakFit refused = fe::FindPeak(quadrel_io::ParsePointText(c.text, "s"));
    EXPECT_EQ(refused.outcome.status, c.status);
    EXPECT_EQ(refused.outcome.reason, c.reason);
  }
}

}  // namespace
