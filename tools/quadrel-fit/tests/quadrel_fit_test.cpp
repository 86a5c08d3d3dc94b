// quadrel-fit run as a user runs it: sample files in, text or JSON out, and a
// message on standard error with exit status 2 for every kind of bad input.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "tool_runner.h"

namespace {

using Json = nlohmann::json;

std::string Sample(const std::string &name) {
  return std::string(QUADREL_FIT_SAMPLES) + "/" + name;
}

// The JSON output of the command with args (--json goes after the command).
Json RunJson(std::vector<std::string> args) {
  args.insert(args.begin() + 1, "--json");
  return ParseJson(RunTool(args));
}

// Each value of the JSON object stands in the text on a line of its own: the
// name padded to 21 columns (indented by two within a section), then the
// values to six significant digits.
void ExpectTextMatchesJson(const Json &object, const std::string &text,
                           const std::string &indent = "") {
  for (const auto &item : object.items()) {
    std::string line = indent + item.key();
    std::replace(line.begin(), line.end(), '_', ' ');
    if (item.value().is_object()) ExpectTextMatchesJson(item.value(), text, "  ");
    if (item.value().is_object() || line == "command" || line == "file" || line == "files")
      continue;
    line.resize(21, ' ');
    for (const Json &value : item.value().is_array() ? item.value() : Json::array({item.value()})) {
      char number[32];
      std::snprintf(number, sizeof number, "%.6g ", value.is_number() ? value.get<double>() : 0.0);
      line += value.is_string() ? value.get<std::string>() + " " : number;
    }
    line.back() = '\n';
    EXPECT_NE(text.find("\n" + line), std::string::npos) << line;
  }
}

// Every command that reads points, and its arguments on the exact samples.
const char *const kShapes[] = {"line",    "plane",      "circle",    "sphere",
                               "ellipse", "paraboloid", "trihedral", "peak"};
std::vector<std::string> SampleArgs(const std::string &shape) {
  if (shape != "trihedral") return {shape, Sample(shape + ".txt")};
  return {shape, Sample("trihedral-1.txt"), Sample("trihedral-2.txt"), Sample("trihedral-3.txt")};
}

TEST(ShapeCommands, WriteEveryFitAsJsonAndAsTextOfTheSameNumbers) {
  // The shapes' values are the front end's to check; here each command's JSON
  // and text must carry the same numbers, residual lists only when asked.
  for (const std::string shape : kShapes) {
    SCOPED_TRACE(shape);
    const Json fit = RunJson(SampleArgs(shape));
    EXPECT_FALSE((fit.contains("residuals") ? fit["residuals"] : fit).contains("values"));
    const ToolRun text = RunTool(SampleArgs(shape));
    ASSERT_EQ(text.status, 0) << text.err;
    EXPECT_EQ(text.out.rfind("# quadrel-fit ", 0), 0u) << text.out;
    ExpectTextMatchesJson(fit, text.out);
  }
  // JSON numbers keep every digit; the estimators' results on their samples.
  EXPECT_NEAR(std::fabs(RunJson(SampleArgs("line"))["direction"][0].get<double>()), 1 / 3.0, 1e-9);
  const Json trihedral = RunJson(SampleArgs("trihedral")), peak = RunJson(SampleArgs("peak"));
  const double angles[] = {0.3, -0.2, 0.4}, top[] = {0.4, -0.7};
  for (int i = 0; i < 3; ++i)
    EXPECT_NEAR(trihedral["angles_rad"][i].get<double>(), angles[i], 1e-9) << i;
  for (int i = 0; i < 2; ++i)
    EXPECT_NEAR(peak["peak"][i].get<double>(), top[i], 1e-9) << i;
  EXPECT_EQ(trihedral["points"], Json({16, 16, 16}));
  EXPECT_EQ(trihedral["status"], "converged");
  EXPECT_EQ(peak["samples"], 49);
  EXPECT_EQ(peak["method"], "maximum of the fitted surface");
}

TEST(ShapeCommands, ListsResidualsWithTheWorstPointAndItsLine) {
  // The outlier is the third point, on line 5.
  const std::string file =
      WriteScratchFile("outlier.txt", "x y z\n0 0 1\n1 0 1\n# out\n0 1 1.5\n1 1 1\n2 0 1\n0 2 1\n");
  const Json plane = RunJson({"plane", "--residuals", file});
  EXPECT_EQ(plane["residuals"]["values"].size(), 6u);
  const ToolRun text = RunTool({"plane", "--residuals", file});
  EXPECT_NE(text.out.find("\n         3          5  "), std::string::npos) << text.out;
}

TEST(ShapeCommands, WarnsWhenTheEllipseSearchRunsAway) {
  // Axes of 8 to 1 are beyond what the search reaches from its circle.
  std::ostringstream points;
  points.precision(17);
  for (int k = 0; k < 40; ++k) {
    const double t = 2 * M_PI * std::pow(k / 40.0, 1.5);
    points << 8 * std::cos(t) << ' ' << std::sin(t) << " 0\n";
  }
  const ToolRun run = RunTool({"ellipse", "--json", WriteScratchFile("long.txt", points.str())});
  EXPECT_NE(run.err.find("warning: the ellipse search ran away"), std::string::npos) << run.err;
  EXPECT_TRUE(ParseJson(run).contains("warning"));
}

TEST(CommandLine, RefusesBadInputWithAMessageAndStatus2) {
  // One case for each way a refusal reaches the user: a file that cannot be
  // read, each command's fit outcome (standard input is empty), the edge-angle
  // check and the command line; the readers' and checks' own tests hold every
  // message word for word.
  const std::string f1 = Sample("trihedral-1.txt"), f2 = Sample("trihedral-2.txt"),
                    f3 = Sample("trihedral-3.txt");
  const struct {
    std::vector<std::string> args;
    std::string message;
  } cases[] = {
      {{"line", "/no/such/file.txt"}, "cannot open /no/such/file.txt: No such file"},
      {{"sphere"}, "a sphere fit needs at least 4 points; <stdin> has 0"},
      {{"peak"}, "a quality peak search needs at least 6 samples; <stdin> has 0"},
      {{"trihedral", f1, f3, f2}, "come in the wrong order"},
      {{"cube", f1}, "unknown shape or command 'cube'"},
      {{"line", "--frobnicate", f1}, "--frobnicate"},
      {{"demo", "--noise", "-1"}, "--noise"},
      {{}, ""},
      {{"trihedral", f1, f2, f3, "--edge-angle", "120"}, "strictly between 0 and 120 degrees"},
  };
  for (const auto &c : cases) {
    SCOPED_TRACE(c.message);
    ExpectRefused(c.args, c.message);
  }
}

TEST(CommandLine, PrintsHelpForEveryCommandAndTheVersion) {
  EXPECT_EQ(RunTool({"--version"}).out.rfind("quadrel-fit ", 0), 0u);
  EXPECT_NE(RunTool({"--help"}).out.find("trihedral"), std::string::npos);
  for (const std::string command : kShapes) {
    const ToolRun help = RunTool({command, "--help"});
    EXPECT_TRUE(help.status == 0 && help.out.find("--json") != std::string::npos) << command;
  }
  EXPECT_NE(RunTool({"demo", "--help"}).out.find("--json"), std::string::npos);
}

TEST(Svg, DrawsCircleEllipsePlaneAndPeakPictures) {
  for (const std::string command : {"circle", "ellipse", "plane", "peak"}) {
    const std::string svg = ScratchDirectory() + "/" + command + ".svg";
    ASSERT_EQ(RunTool({command, "--svg", svg, Sample(command + ".txt")}).status, 0) << command;
    const std::string picture = ReadWholeFile(svg);
    EXPECT_EQ(picture.rfind("<?xml", 0), 0u) << command;
    EXPECT_NE(picture.find(Sample(command + ".txt")), std::string::npos) << command;
    EXPECT_NE(picture.find("</svg>\n"), std::string::npos) << command;
    EXPECT_EQ(picture.find("nan"), std::string::npos) << command;
  }
  const ToolRun unwritable =
      RunTool({"circle", "--svg", ScratchDirectory() + "/no/such/dir/c.svg", Sample("circle.txt")});
  EXPECT_TRUE(unwritable.status == 1 && unwritable.out.empty());
  EXPECT_NE(unwritable.err.find("cannot write"), std::string::npos);
}

TEST(Demo, FitsEverySampleWithinItsTolerance) {
  ASSERT_EQ(RunTool({"demo"}).status, 0);
  const Json demo = RunJson({"demo"});
  ASSERT_GE(demo["rows"].size(), 20u);
  for (const Json &row : demo["rows"]) {
    EXPECT_TRUE(row.contains("error") ? row["error"].get<double>() < 0.05
                                      : row["true"] == row["fitted"])
        << row;
  }
}

TEST(LargeInput, FitsAMillionPointPlaneInOnePass) {
  // The plane x + 2y + 2z = 3 over a 1000 x 1000 grid, with a small ripple
  // that leaves its normal alone.
  const std::string path = ScratchDirectory() + "/million.txt";
  std::FILE *file = std::fopen(path.c_str(), "w");
  ASSERT_NE(file, nullptr);
  for (int i = 0; i < 1000; ++i)
    for (int j = 0; j < 1000; ++j) {
      const double x = i * 0.01, y = j * 0.01, ripple = (i + j) % 2 == 0 ? 1e-4 : -1e-4;
      std::fprintf(file, "%.10g,%.10g,%.10g\n", x, y, (3 - x - 2 * y) / 2 + ripple);
    }
  std::fclose(file);
  const Json plane = RunJson({"plane", path});
  std::remove(path.c_str());
  EXPECT_EQ(plane["points"], 1000000);
  for (int i = 0; i < 3; ++i)
    EXPECT_NEAR(std::fabs(plane["normal"][i].get<double>()), (i ? 2.0 : 1.0) / 3, 1e-6) << i;
  EXPECT_NEAR(plane["residuals"]["rms"].get<double>(), 1e-4 * 2.0 / 3, 1e-6);
}

}  // namespace
