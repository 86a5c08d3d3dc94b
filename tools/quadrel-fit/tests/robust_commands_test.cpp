// quadrel-fit through outliers: the floor and the ball of the cluttered
// sample, models as rows with their labels written out, and status 2 with a
// message for every option out of range.
#include <cmath>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "tool_runner.h"

namespace {

using Json = nlohmann::json;

const std::string kCluttered = std::string(QUADREL_FIT_SAMPLES) + "/cluttered.ply";

// The lines of a labels file with the given label, header kept: a point file
// of that model's points.
std::string PointsLabelled(const std::string &labelsPath, const std::string &label, int &count) {
  std::ifstream in(labelsPath);
  std::string line, kept;
  std::getline(in, line);
  EXPECT_EQ(line, "x y z label");
  kept = line + "\n";
  count = 0;
  while (std::getline(in, line)) {
    if (line.substr(line.rfind(' ') + 1) != label) continue;
    kept += line + "\n";
    ++count;
  }
  return kept;
}

TEST(RobustCommands, FindTheFloorAndThenTheBallAmongClutter) {
  const std::string labels = ScratchDirectory() + "/floor.txt";
  const Json floor = ParseJson(RunTool(
      {"plane", kCluttered, "--inlier-threshold", "0.02", "--json", "--labels-out", labels}));
  EXPECT_EQ(floor["points"], 5000);
  EXPECT_GT(floor["inliers"].get<int>(), 2300);
  EXPECT_LT(floor["inliers"].get<int>(), 2500);
  EXPECT_NEAR(std::fabs(floor["normal"][2].get<double>()), 1.0, 1e-5);
  EXPECT_NEAR(floor["centroid"][2].get<double>(), 0.0, 1e-3);
  EXPECT_EQ(floor["inlier_rms"], floor["residuals"]["rms"]);
  EXPECT_GE(floor["consensus_iterations"].get<int>(), 1);
  int inliers = 0;
  PointsLabelled(labels, "0", inliers);
  EXPECT_EQ(inliers, floor["inliers"].get<int>());

  // The rest holds the ball; the same seed gives the same bits, the text and
  // CSV carry the same counts.
  int rest = 0;
  const std::string others = WriteScratchFile("rest.txt", PointsLabelled(labels, "-1", rest));
  EXPECT_EQ(rest, 5000 - inliers);
  const std::vector<std::string> ball = {"sphere", others,  "--inlier-threshold", "0.02", "--seed",
                                         "7",      "--json"};
  const Json sphere = ParseJson(RunTool(ball));
  EXPECT_NEAR(sphere["radius"].get<double>(), 0.25, 2e-3);
  const double centre[] = {0.3, -0.2, 0.25};
  for (int i = 0; i < 3; ++i)
    EXPECT_NEAR(sphere["centre"][i].get<double>(), centre[i], 2e-3) << i;
  EXPECT_EQ(RunTool(ball).out, RunTool(ball).out);
  const ToolRun text = RunTool({"sphere", others, "--inlier-threshold", "0.02", "--seed", "7"});
  EXPECT_NE(text.out.find("\ninliers              " + sphere["inliers"].dump() + "\n"),
            std::string::npos)
      << text.out;
  const ToolRun csv =
      RunTool({"sphere", others, "--inlier-threshold", "0.02", "--seed", "7", "--csv"});
  EXPECT_EQ(csv.out.rfind("file,points,inlier_threshold,inliers,inlier_rms,consensus_iterations,"
                          "centre_x",
                          0),
            0u)
      << csv.out;

  // Over the whole cloud a sphere search takes a huge sphere along the floor;
  // bounding the radius finds the ball.
  const Json bounded = ParseJson(
      RunTool({"sphere", kCluttered, "--inlier-threshold", "0.02", "--max-radius", "1", "--json"}));
  EXPECT_NEAR(bounded["radius"].get<double>(), 0.25, 2e-3);
  EXPECT_NEAR(bounded["centre"][2].get<double>(), 0.25, 5e-3);
  EXPECT_GT(
      ParseJson(RunTool({"sphere", kCluttered, "--inlier-threshold", "0.02", "--json"}))["radius"]
          .get<double>(),
      1.0);
}

TEST(RobustCommands, ExtractsOneRowPerModelWithItsLabels) {
  // Two planes, z = 0 (200 points) and x = 2 (100), and a little clutter.
  std::ostringstream text;
  text.precision(17);
  for (int k = 0; k < 200; ++k) {
    const double u = std::fmod(0.618 * k, 1.0), v = std::fmod(0.382 * k + 0.1, 1.0);
    text << 4 * u << ' ' << 4 * v << ' ' << 0.001 * std::sin(k) << '\n';
    if (k % 2 == 0) text << 2 + 0.001 * std::cos(k) << ' ' << 4 * v << ' ' << 3 * u << '\n';
    if (k % 10 == 0) text << 4 * v << ' ' << 4 * u << ' ' << 1 + 2 * v << '\n';
  }
  const std::string file = WriteScratchFile("two_planes.txt", text.str());
  const std::string labels = ScratchDirectory() + "/labels.txt";
  const ToolRun run = RunTool({"plane", file, "--inlier-threshold", "0.01", "--extract", "3",
                               "--min-inliers", "50", "--json", "--labels-out", labels});
  ASSERT_EQ(run.status, 0) << run.err;
  std::istringstream lines(run.out);
  std::vector<Json> rows;
  for (std::string line; std::getline(lines, line);)
    rows.push_back(Json::parse(line));
  ASSERT_EQ(rows.size(), 2u) << run.out;
  for (int m = 0; m < 2; ++m) {
    EXPECT_EQ(rows[m]["model"], m);
    EXPECT_EQ(rows[m]["status"], "ok");
    int labelled = 0;
    PointsLabelled(labels, std::to_string(m), labelled);
    EXPECT_EQ(rows[m]["inliers"], labelled);
  }
  EXPECT_NEAR(std::fabs(rows[1]["normal"][0].get<double>()), 1.0, 1e-6);
  const ToolRun table = RunTool(
      {"plane", file, "--inlier-threshold", "0.01", "--extract", "3", "--min-inliers", "50"});
  EXPECT_NE(table.out.find("\nmodels               2\n"), std::string::npos) << table.out;
}

TEST(RobustCommands, RefusesOptionsOutOfRangeOrApart) {
  const struct {
    std::vector<std::string> args;
    const char *message;
  } cases[] = {
      {{"ellipse", "--inlier-threshold", "0.1"},
       "an ellipse has no fit through outliers; --inlier-threshold serves the line, plane, "
       "circle, sphere and cylinder"},
      {{"plane", "--inlier-threshold", "0"}, "--inlier-threshold must be a positive finite"},
      {{"plane", "--inlier-threshold", "inf"}, "--inlier-threshold must be a positive finite"},
      {{"sphere", "--inlier-threshold", "0.1", "--confidence", "1"},
       "--confidence must lie strictly between 0 and 1, got 1"},
      {{"line", "--inlier-threshold", "0.1", "--max-iterations", "0"},
       "--max-iterations must be at least 1, got 0"},
      {{"plane", "--inlier-threshold", "0.1", "--extract", "0"}, "--extract must be at least 1"},
      {{"plane", "--extract", "2"}, "--extract takes --inlier-threshold"},
      {{"circle", "--inlier-threshold", "0.1", "--segment-by", "label"},
       "--segment-by takes no --inlier-threshold"},
      {{"plane", "--inlier-threshold", "0.1", "--extract", "2", "--residuals"},
       "--extract takes neither --residuals nor --svg"},
      {{"sphere", "--inlier-threshold", "0.1", "--min-radius", "-1"},
       "--min-radius must be a finite number of at least 0, got -1"},
      {{"cylinder", "--inlier-threshold", "0.1", "--min-radius", "2", "--max-radius", "1"},
       "--max-radius must be at least --min-radius (2), got 1"},
      {{"circle", "--max-radius", "1"}, "--max-radius takes --inlier-threshold"},
      {{"sphere", "--inlier-threshold", "0.02", "--min-radius", "0.6", "--max-radius", "0.6"},
       "found no sphere with a radius from 0.6 to 0.6"},
  };
  for (const auto &c : cases) {
    std::vector<std::string> args = c.args;
    args.insert(args.begin() + 1, kCluttered);
    SCOPED_TRACE(c.args[0] + " " + c.args[1]);
    ExpectRefused(args, c.message);
  }
  // Points that hold no plane: every sample is degenerate, and the search
  // ends with a message, never a hang.
  ExpectRefused({"plane", WriteScratchFile("on_a_line.txt", "0 0 0\n1 1 1\n2 2 2\n3 3 3\n"),
                 "--inlier-threshold", "0.1"},
                "a plane fit of ");
  ExpectRefused({"sphere", WriteScratchFile("three.txt", "0 0 0\n1 0 0\n0 1 0\n"),
                 "--inlier-threshold", "0.1"},
                "a sphere fit needs at least 4 points");
}

}  // namespace
