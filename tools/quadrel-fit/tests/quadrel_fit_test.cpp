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

// A number or vector of the output against the expected one; with upToSign,
// the negated vector counts as well.
void ExpectVector(const Json &actual, const Json &expected, double tolerance,
                  bool upToSign = false) {
  const Json a = actual.is_array() ? actual : Json::array({actual});
  const Json e = expected.is_array() ? expected : Json::array({expected});
  ASSERT_EQ(a.size(), e.size()) << actual;
  const double sign = upToSign && a[0].get<double>() * e[0].get<double>() < 0.0 ? -1.0 : 1.0;
  for (size_t i = 0; i < e.size(); ++i)
    EXPECT_NEAR(a[i].get<double>(), sign * e[i].get<double>(), tolerance) << i << " of " << a;
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

// One point as a line of a point file, to full precision.
std::string PointLine(double x, double y, double z) {
  char line[80];
  std::snprintf(line, sizeof line, "%.17g %.17g %.17g\n", x, y, z);
  return line;
}

// Every command that reads points, and its arguments on the exact samples.
const char *const kShapes[] = {"line",    "plane",      "circle",    "sphere",
                               "ellipse", "paraboloid", "trihedral", "peak"};
std::vector<std::string> SampleArgs(const std::string &shape) {
  if (shape != "trihedral") return {shape, Sample(shape + ".txt")};
  return {shape, Sample("trihedral-1.txt"), Sample("trihedral-2.txt"), Sample("trihedral-3.txt")};
}

TEST(ShapeCommands, RecoverTheParametersOfExactSamplesInJsonAndText) {
  // The parameters each sample was made with; directions and normals count up
  // to their sign. The text shows the numbers of the JSON.
  const double r3 = 1.0 / std::sqrt(3.0);
  const Json expected = {
      {"line",
       {{"centroid", {1, 2, 3}}, {"direction", {1 / 3.0, 2 / 3.0, 2 / 3.0}}, {"points", 21}}},
      {"plane", {{"centroid", {0.5, -1, 2}}, {"normal", {2 / 3.0, -1 / 3.0, 2 / 3.0}}}},
      {"circle", {{"centre", {1, -2, 3}}, {"normal", {r3, r3, r3}}, {"radius", 2.5}}},
      {"sphere", {{"centre", {-1, 0.5, 2}}, {"radius", 4}}},
      {"ellipse",
       {{"centre", {2, -1, 0.5}},
        {"focal_sum", 6},
        {"semi_major", 3},
        {"semi_minor", 2},
        {"centre_to_focus", std::sqrt(5.0)}}},
      {"paraboloid", {{"vertex", {0.3, -0.2, 0.8}}, {"a", 1.7}, {"b", 0.9}, {"sign", 1}}},
      {"trihedral",
       {{"angles_rad", {0.3, -0.2, 0.4}},
        {"code", 0},
        {"status", "converged"},
        {"points", {16, 16, 16}}}},
      {"peak",
       {{"peak", {0.4, -0.7}},
        {"code", 0},
        {"method", "maximum of the fitted surface"},
        {"samples", 49}}}};
  for (const auto &shape : expected.items()) {
    Json fit = RunJson(SampleArgs(shape.key()));
    SCOPED_TRACE(shape.key());
    for (const auto &field : shape.value().items()) {
      SCOPED_TRACE(field.key());
      if (field.value().is_string())
        EXPECT_EQ(fit[field.key()], field.value());
      else
        ExpectVector(fit[field.key()], field.value(), 1e-9,
                     field.key() == "direction" || field.key() == "normal");
    }
    const Json &residuals = fit.contains("residuals") ? fit["residuals"] : fit;
    EXPECT_LT(residuals.value("rms", 0.0), 1e-12) << shape.key();
    EXPECT_FALSE(residuals.contains("values"));
    const ToolRun text = RunTool(SampleArgs(shape.key()));
    ASSERT_EQ(text.status, 0) << text.err;
    EXPECT_EQ(text.out.rfind("# quadrel-fit ", 0), 0u) << text.out;
    ExpectTextMatchesJson(fit, text.out);
  }
  // The foci come in either order.
  Json ellipse = RunJson(SampleArgs("ellipse"));
  const bool lowFirst = ellipse["focus_1"][0].get<double>() < 2.0;
  ExpectVector(ellipse[lowFirst ? "focus_1" : "focus_2"], {0, -2, 0.5}, 1e-9);
  ExpectVector(ellipse[lowFirst ? "focus_2" : "focus_1"], {4, 0, 0.5}, 1e-9);
  // A cyclic exchange of the faces gives the same apex; a wrong edge angle
  // still ends in a spelled-out status and finite numbers.
  std::vector<std::string> faces = SampleArgs("trihedral");
  Json fit = RunJson(faces);
  std::rotate(faces.begin() + 1, faces.begin() + 2, faces.end());
  ExpectVector(RunJson(faces)["apex"], fit["apex"], 1e-9);
  faces.insert(faces.begin() + 1, {"--edge-angle", "60"});
  fit = RunJson(faces);
  EXPECT_TRUE(fit["status"] == "converged" || fit["status"] == "step limit reached") << fit;
  EXPECT_GT(fit["rms"].get<double>(), 0.01);
}

TEST(ShapeCommands, ReportsResidualsWithTheWorstPointAndItsLine) {
  // A byte order mark, comments, blank lines, a header, commas and tabs; the
  // outlier is the third point, on line 7.
  const std::string file = WriteScratchFile(
      "outlier.csv",
      "\xEF\xBB\xBF# a plane z = 1 with one point off it\n\nx, y, z\n0, 0, 1\n1,0,1\n"
      "# the outlier\n0\t1\t1.5\n1 1 1\n2 0 1\n0 2 1\n");
  const Json plane = RunJson({"plane", "--residuals", file});
  EXPECT_EQ(plane["points"], 6);
  EXPECT_EQ(plane["residuals"]["max_point"], 3);
  EXPECT_EQ(plane["residuals"]["max_line"], 7);
  EXPECT_EQ(plane["residuals"]["values"].size(), 6u);
  EXPECT_GT(std::fabs(plane["residuals"]["values"][2].get<double>()), 0.3);
  const ToolRun text = RunTool({"plane", "--residuals", file});
  EXPECT_NE(text.out.find("\n         3          7  "), std::string::npos) << text.out;
}

TEST(ShapeCommands, WarnsWhenTheEllipseSearchRunsAway) {
  // Axes of 8 to 1 are beyond what the search reaches from its circle.
  std::string points;
  for (int k = 0; k < 40; ++k) {
    const double t = 2 * M_PI * std::pow(k / 40.0, 1.5);
    points += PointLine(8 * std::cos(t), std::sin(t), 0);
  }
  const ToolRun run = RunTool({"ellipse", "--json", WriteScratchFile("long.txt", points)});
  EXPECT_NE(run.err.find("warning: the ellipse search ran away"), std::string::npos) << run.err;
  EXPECT_TRUE(ParseJson(run).contains("warning"));
}

TEST(CommandLine, RefusesBadInputWithAMessageAndStatus2) {
  // One case for each way a refusal reaches the user: a file that cannot be
  // read, each command's fit outcome, the edge-angle check and the command
  // line; the readers' and checks' own tests hold every message word for word.
  // Arguments and message name the trihedral samples F1, F2, F3 and, where a
  // case has text, the file written with it FILE.
  const struct {
    const char *args, *text;
    std::string message;
  } cases[] = {
      {"circle FILE", "x y z\n1 2 3\n4 five 6\n", "FILE:3: 'five' is not a number"},
      {"line /no/such/file.txt", nullptr, "cannot open /no/such/file.txt: No such file"},
      {"sphere", nullptr, "a sphere fit needs at least 4 points; <stdin> has 0"},
      {"peak FILE", "0 0 1\n1 0 2\n0 1 3\n1 1 4\n2 2 5\n", "peak search needs at least 6 samples"},
      {"line FILE", "1 2 3\n1 2 3\n1 2 3\n", "are the same point"},
      {"trihedral F1 F3 F2", nullptr,
       "come in the wrong order: with their normals turned away from the origin they must form "
       "a right-handed triple; give them as F1 F2 F3"},
      {"cube F1", nullptr, "unknown shape or command 'cube'"},
      {"line --frobnicate F1", nullptr, "--frobnicate"},
      {"demo --noise -1", nullptr, "--noise"},
      {"", nullptr, ""},
      {"trihedral F1 F2 F3 --edge-angle 120", nullptr, "strictly between 0 and 120 degrees"},
  };
  int count = 0;
  for (const auto &c : cases) {
    const std::string file =
        c.text ? WriteScratchFile("bad" + std::to_string(++count) + ".txt", c.text) : "";
    const std::pair<std::string, std::string> names[] = {{"F1", Sample("trihedral-1.txt")},
                                                         {"F2", Sample("trihedral-2.txt")},
                                                         {"F3", Sample("trihedral-3.txt")},
                                                         {"FILE", file}};
    auto expand = [&names](std::string text) {
      for (const auto &[name, value] : names)
        for (size_t at; (at = text.find(name)) != std::string::npos;)
          text.replace(at, name.size(), value);
      return text;
    };
    std::vector<std::string> args;
    std::istringstream words(expand(c.args));
    for (std::string word; words >> word;)
      args.push_back(word);
    SCOPED_TRACE(c.args);
    ExpectRefused(args, expand(c.message));
    // Coincident points leave no NaN in any message.
    if (c.message == "are the same point") {
      for (const char *shape : {"plane", "circle", "sphere", "ellipse"})
        EXPECT_EQ(RunTool({shape, file}).err.find("nan"), std::string::npos) << shape;
    }
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

TEST(Peak, SpellsOutHowThePeakWasFound) {
  const char *const methods[] = {"maximum of the fitted surface",
                                 "climb stopped: heading turned more than 70 degrees",
                                 "maximum beyond reach: climbed six steps",
                                 "surface has no maximum: climbed six steps",
                                 "surface does not fit the data: best sample",
                                 "climb stopped: left the quality band"};
  // Quality f(x, y, s) on a 7 x 7 grid from -3 to 3, where s = +-1 as x + y is
  // even or odd, for the codes 5, 2, 3, 1 and 4 in turn. The first maximum lies
  // so far out that with no noise the first tested step leaves the band round
  // the best quality; on the last surface the best sample stands in.
  double (*const qualities[])(double, double, double) = {
      [](double x, double y, double) { return 100 - (x - 6) * (x - 6) - (y - 1) * (y - 1); },
      [](double x, double y, double s) {
        return 100 - 0.01 * ((x - 6) * (x - 6) + (y - 1) * (y - 1)) + 0.1 * s;
      },
      [](double x, double y, double s) { return 100 + 0.005 * (x * x - y * y) + 0.3 * s; },
      [](double x, double y, double s) {
        return 100 + 0.02 * ((x - 0.02) * (x - 0.02) - (y - 1) * (y - 1)) + 0.6 * s +
               (x == 0 && y == 0 ? 0.35 : 0.0);
      },
      [](double x, double y, double) { return 100 * std::cos(3 * x) * std::cos(3 * y); }};
  const int codes[] = {5, 2, 3, 1, 4};
  for (int k = 0; k < 5; ++k) {
    std::string text = "x y quality\n";
    for (int i = -3; i <= 3; ++i)
      for (int j = -3; j <= 3; ++j) {
        char line[100];
        std::snprintf(line, sizeof line, "%d %d %.17g\n", i, j,
                      qualities[k](i, j, (i + j) % 2 ? -1.0 : 1.0));
        text += line;
      }
    const Json peak = RunJson({"peak", WriteScratchFile("grid.txt", text)});
    EXPECT_EQ(peak["code"], codes[k]);
    EXPECT_EQ(peak["method"], methods[codes[k]]);
    EXPECT_TRUE(codes[k] != 4 || peak["peak"] == peak["best_sample"]["position"]);
  }
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
  ExpectVector(plane["normal"], {1.0 / 3, 2.0 / 3, 2.0 / 3}, 1e-6, true);
  EXPECT_NEAR(plane["residuals"]["rms"].get<double>(), 1e-4 * 2.0 / 3, 1e-6);
}

}  // namespace
