// quadrel-fit run as a user runs it: sample files in, text or JSON out, and a
// message on standard error with exit status 2 for every kind of bad input.
#include <cmath>
#include <cstdio>
#include <map>
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

Json ParseJson(const ToolRun &run) {
  Json parsed = Json::parse(run.out, nullptr, false);
  EXPECT_FALSE(parsed.is_discarded()) << run.out;
  return parsed;
}

// A vector in the output against the expected one; with upToSign, the negated
// vector counts as well.
void ExpectVector(const Json &actual, std::vector<double> expected, double tolerance,
                  bool upToSign = false) {
  ASSERT_TRUE(actual.is_array()) << actual;
  ASSERT_EQ(actual.size(), expected.size()) << actual;
  if (upToSign && actual[0].get<double>() * expected[0] < 0.0) {
    for (double &e : expected)
      e = -e;
  }
  for (size_t i = 0; i < expected.size(); ++i) {
    EXPECT_NEAR(actual[i].get<double>(), expected[i], tolerance)
        << "element " << i << " of " << actual;
  }
}

// Every run that refuses its input: status 2, nothing on standard output, and
// a message on standard error that holds `message`.
void ExpectRefused(const ToolRun &run, const std::string &message) {
  EXPECT_EQ(run.status, 2) << run.err;
  EXPECT_EQ(run.out, "");
  EXPECT_NE(run.err.find(message), std::string::npos) << "stderr: " << run.err;
  EXPECT_EQ(run.err.rfind("quadrel-fit: ", 0), 0u) << run.err;
}

// Text output as a map from "section.name" (or "name") to the value column.
std::map<std::string, std::string> ParseText(const std::string &text) {
  std::map<std::string, std::string> fields;
  std::istringstream lines(text);
  std::string line;
  std::string section;
  while (std::getline(lines, line)) {
    if (line.empty() || line[0] == '#') continue;
    const bool nested = line.rfind("  ", 0) == 0;
    std::string key = line.substr(0, std::min<size_t>(20, line.size()));
    key = key.substr(key.find_first_not_of(' '));
    key = key.substr(0, key.find_last_not_of(' ') + 1);
    if (line.size() <= 20) {
      section = key;
      continue;
    }
    fields[nested ? section + "." + key : key] = line.substr(21);
  }
  return fields;
}

// Each value of the JSON object agrees with the text, to the six digits the
// text shows.
void ExpectTextMatchesJson(const Json &object, const std::map<std::string, std::string> &text,
                           const std::string &prefix = "") {
  for (const auto &item : object.items()) {
    if (item.key() == "command" || item.key() == "file" || item.key() == "files") continue;
    std::string key = item.key();
    for (char &c : key)
      c = c == '_' ? ' ' : c;
    key = prefix + key;
    if (item.value().is_object()) {
      ExpectTextMatchesJson(item.value(), text, key + ".");
      continue;
    }
    auto found = text.find(key);
    ASSERT_NE(found, text.end()) << "text lacks " << key;
    const Json values = item.value().is_array() ? item.value() : Json::array({item.value()});
    if (values[0].is_string()) {
      EXPECT_EQ(found->second, values[0].get<std::string>()) << key;
      continue;
    }
    std::istringstream shown(found->second);
    for (const Json &value : values) {
      double number = 0.0;
      ASSERT_TRUE(shown >> number) << key << ": " << found->second;
      const double expected = value.get<double>();
      EXPECT_LE(std::fabs(number - expected), 5e-6 * std::fabs(expected)) << key;
    }
  }
}

std::string Points(const std::vector<std::vector<double>> &points) {
  std::string text;
  char line[120];
  for (const auto &p : points) {
    std::snprintf(line, sizeof line, "%.17g %.17g %.17g\n", p[0], p[1], p[2]);
    text += line;
  }
  return text;
}

// The numbers of a point file, skipping comments and the header.
std::vector<double> NumbersOf(const std::string &text) {
  std::vector<double> numbers;
  std::istringstream lines(text);
  std::string line;
  while (std::getline(lines, line)) {
    std::istringstream fields(line);
    for (double value = 0.0; fields >> value;)
      numbers.push_back(value);
  }
  return numbers;
}

TEST(ShapeCommands, RecoverTheParametersOfExactSamples) {
  const double tol = 1e-9;
  Json line = ParseJson(RunTool({"line", "--json", Sample("line.txt")}));
  ExpectVector(line["centroid"], {1, 2, 3}, tol);
  ExpectVector(line["direction"], {1.0 / 3, 2.0 / 3, 2.0 / 3}, tol, true);
  EXPECT_EQ(line["points"], 21);

  Json plane = ParseJson(RunTool({"plane", "--json", Sample("plane.txt")}));
  ExpectVector(plane["centroid"], {0.5, -1, 2}, tol);
  ExpectVector(plane["normal"], {2.0 / 3, -1.0 / 3, 2.0 / 3}, tol, true);

  Json circle = ParseJson(RunTool({"circle", "--json", Sample("circle.txt")}));
  ExpectVector(circle["centre"], {1, -2, 3}, tol);
  const double third = 1.0 / std::sqrt(3.0);
  ExpectVector(circle["normal"], {third, third, third}, tol, true);
  EXPECT_NEAR(circle["radius"].get<double>(), 2.5, tol);

  Json sphere = ParseJson(RunTool({"sphere", "--json", Sample("sphere.txt")}));
  ExpectVector(sphere["centre"], {-1, 0.5, 2}, tol);
  EXPECT_NEAR(sphere["radius"].get<double>(), 4.0, tol);

  Json ellipse = ParseJson(RunTool({"ellipse", "--json", Sample("ellipse.txt")}));
  ExpectVector(ellipse["centre"], {2, -1, 0.5}, tol);
  EXPECT_NEAR(ellipse["focal_sum"].get<double>(), 6.0, tol);
  EXPECT_NEAR(ellipse["semi_major"].get<double>(), 3.0, tol);
  EXPECT_NEAR(ellipse["semi_minor"].get<double>(), 2.0, tol);
  EXPECT_NEAR(ellipse["centre_to_focus"].get<double>(), std::sqrt(5.0), tol);
  const bool firstIsLow = ellipse["focus_1"][0].get<double>() < 2.0;
  ExpectVector(ellipse[firstIsLow ? "focus_1" : "focus_2"], {0, -2, 0.5}, tol);
  ExpectVector(ellipse[firstIsLow ? "focus_2" : "focus_1"], {4, 0, 0.5}, tol);

  Json paraboloid = ParseJson(RunTool({"paraboloid", "--json", Sample("paraboloid.txt")}));
  ExpectVector(paraboloid["vertex"], {0.3, -0.2, 0.8}, tol);
  EXPECT_NEAR(paraboloid["a"].get<double>(), 1.7, tol);
  EXPECT_NEAR(paraboloid["b"].get<double>(), 0.9, tol);
  EXPECT_EQ(paraboloid["sign"].get<double>(), 1.0);

  for (const Json *fit : {&line, &plane, &circle, &sphere, &ellipse, &paraboloid}) {
    EXPECT_LT((*fit)["residuals"]["rms"].get<double>(), 1e-12) << *fit;
    EXPECT_FALSE((*fit)["residuals"].contains("values"));
  }
}

TEST(ShapeCommands, TextShowsTheNumbersOfTheJson) {
  for (const char *shape : {"line", "plane", "circle", "sphere", "ellipse", "paraboloid"}) {
    SCOPED_TRACE(shape);
    const std::string file = Sample(std::string(shape) + ".txt");
    const ToolRun text = RunTool({shape, file});
    ASSERT_EQ(text.status, 0) << text.err;
    EXPECT_NE(text.out.find("# quadrel-fit "), std::string::npos);
    EXPECT_NE(text.out.find("6 significant digits"), std::string::npos);
    ExpectTextMatchesJson(ParseJson(RunTool({shape, "--json", file})), ParseText(text.out));
  }
  const std::string faces[] = {Sample("trihedral-1.txt"), Sample("trihedral-2.txt"),
                               Sample("trihedral-3.txt")};
  ExpectTextMatchesJson(ParseJson(RunTool({"trihedral", "--json", faces[0], faces[1], faces[2]})),
                        ParseText(RunTool({"trihedral", faces[0], faces[1], faces[2]}).out));
  ExpectTextMatchesJson(ParseJson(RunTool({"peak", "--json", Sample("peak.txt")})),
                        ParseText(RunTool({"peak", Sample("peak.txt")}).out));
}

TEST(ShapeCommands, ReportsTheLargestResidualWithItsPointAndLine) {
  // A byte order mark, comments, blank lines, a header, commas and tabs; the
  // outlier is the third point, on line 7.
  const std::string file = WriteScratchFile(
      "outlier.csv",
      "\xEF\xBB\xBF# a plane z = 1 with one point off it\n\nx, y, z\n0, 0, 1\n1,0,1\n"
      "# the outlier\n0\t1\t1.5\n1 1 1\n2 0 1\n0 2 1\n");
  Json plane = ParseJson(RunTool({"plane", "--json", "--residuals", file}));
  EXPECT_EQ(plane["points"], 6);
  EXPECT_EQ(plane["residuals"]["max_point"], 3);
  EXPECT_EQ(plane["residuals"]["max_line"], 7);
  ASSERT_EQ(plane["residuals"]["values"].size(), 6u);
  const Json &values = plane["residuals"]["values"];
  EXPECT_GT(std::fabs(values[2].get<double>()), std::fabs(values[0].get<double>()));

  const ToolRun text = RunTool({"plane", "--residuals", file});
  ASSERT_EQ(text.status, 0) << text.err;
  EXPECT_NE(text.out.find("residual per point"), std::string::npos);
  EXPECT_NE(text.out.find("\n         3          7  "), std::string::npos) << text.out;
}

TEST(ShapeCommands, ListResidualsWithTheirSignsAndMeaning) {
  // The sphere and the paraboloid give their residuals as a row, the others as
  // a column; every list has one signed value per point in file order.
  std::vector<std::vector<double>> ball;
  for (int k = 0; k < 12; ++k) {
    const double t = 0.5 * k;
    ball.push_back({5 * std::cos(t) * std::cos(0.3 * k), 5 * std::sin(t) * std::cos(0.3 * k),
                    5 * std::sin(0.3 * k)});
  }
  ball.push_back({0, 0, 4.9});  // inside
  ball.push_back({0, 5.1, 0});  // outside
  Json sphere = ParseJson(
      RunTool({"sphere", "--json", "--residuals", WriteScratchFile("ball.txt", Points(ball))}));
  const Json &values = sphere["residuals"]["values"];
  ASSERT_EQ(values.size(), ball.size());
  EXPECT_LT(values[12].get<double>(), 0.0);
  EXPECT_GT(values[13].get<double>(), 0.0);

  // Upside down: z = 0.8 - ((x - 0.3) / 1.7)^2 - ((y + 0.2) / 0.9)^2, one point
  // 0.5 above it.
  std::vector<std::vector<double>> cap;
  for (int i = -2; i <= 2; ++i) {
    for (int j = -2; j <= 2; ++j) {
      const double dx = (i - 0.3) / 1.7, dy = (j + 0.2) / 0.9;
      cap.push_back({double(i), double(j), 0.8 - dx * dx - dy * dy + (i == 1 && j == 1 ? 0.5 : 0)});
    }
  }
  Json paraboloid = ParseJson(
      RunTool({"paraboloid", "--json", "--residuals", WriteScratchFile("cap.txt", Points(cap))}));
  EXPECT_EQ(paraboloid["sign"].get<double>(), -1.0);
  EXPECT_EQ(paraboloid["residuals"]["max_point"], 19);
  EXPECT_GT(paraboloid["residuals"]["values"][18].get<double>(), 0.0);
  EXPECT_EQ(paraboloid["residuals"]["values"].size(), 25u);

  // On the axis the in-plane distance to the centre is 0, which rounding makes
  // negative under a root for these points; the tool must still report the
  // point's distance from the circle.
  const double cx = 0.1 * 6, cy = -0.3 * 3, cz = 0.2 * 1, height = 1 + 0.37 * 2;
  std::vector<std::vector<double>> points;
  for (int k = 0; k < 10; ++k) {
    const double t = 2 * M_PI * k / 10;
    points.push_back({cx + std::cos(t), cy + std::sin(t), cz});
  }
  points.push_back({cx, cy, cz + height});
  Json circle = ParseJson(
      RunTool({"circle", "--json", "--residuals", WriteScratchFile("axis.txt", Points(points))}));
  const double radius = circle["radius"].get<double>();
  const double above = cz + height - circle["centre"][2].get<double>();
  ASSERT_EQ(circle["residuals"]["values"].size(), 11u);
  EXPECT_NEAR(circle["residuals"]["values"][10].get<double>(),
              std::sqrt(above * above + radius * radius), 1e-9);
}

TEST(ShapeCommands, WarnsWhenTheEllipseSearchRunsAway) {
  // Axes of 8 to 1 are beyond what the search reaches from its circle.
  std::vector<std::vector<double>> points;
  for (int k = 0; k < 40; ++k) {
    const double t = 2 * M_PI * std::pow(k / 40.0, 1.5);
    points.push_back({8 * std::cos(t), std::sin(t), 0});
  }
  const ToolRun run = RunTool({"ellipse", "--json", WriteScratchFile("long.txt", Points(points))});
  EXPECT_EQ(run.status, 0);
  EXPECT_NE(run.err.find("warning: the ellipse search ran away"), std::string::npos) << run.err;
  EXPECT_TRUE(ParseJson(run).contains("warning"));
}

TEST(PointInput, ReadsStandardInputWithoutFileOrWithDash) {
  const std::string file = WriteScratchFile(
      "sphere-stdin.txt", Points({{5, 0, 0}, {-5, 0, 0}, {0, 5, 0}, {0, -5, 0}, {0, 0, 5}}));
  for (const std::vector<std::string> &args :
       {std::vector<std::string>{"sphere", "--json"}, {"sphere", "--json", "-"}}) {
    const ToolRun run = RunTool(args, file);
    ASSERT_EQ(run.status, 0) << run.err;
    Json sphere = ParseJson(run);
    EXPECT_EQ(sphere["file"], "<stdin>");
    EXPECT_NEAR(sphere["radius"].get<double>(), 5.0, 1e-12);
  }
  ExpectRefused(RunTool({"sphere"}, WriteScratchFile("empty.txt", "")),
                "a sphere fit needs at least 4 points; <stdin> has 0");
}

TEST(CommandLine, RefusesBadInputWithAMessageAndStatus2) {
  auto file = [](const char *name, const std::string &text) {
    return WriteScratchFile(name, text);
  };
  const std::string f1 = Sample("trihedral-1.txt"), f2 = Sample("trihedral-2.txt"),
                    f3 = Sample("trihedral-3.txt");
  const std::string missing = ScratchDirectory() + "/no-such-file.txt";
  const std::string b1 = file("b1.txt", "1 2 3\n4 5\n"), b2 = file("b2.txt", "1 2 3\n4 5 6 7\n"),
                    b3 = file("b3.txt", "x y z\n1 2 3\n4 five 6\n"),
                    b4 = file("b4.txt", "1 2 3\nx y z\n"), b5 = file("b5.txt", "1 2 nan\n"),
                    b6 = file("b6.txt", "# c\n1 -inf 3\n"), b7 = file("b7.txt", "1 2 1e999\n"),
                    b8 = file("b8.txt", "1,,2,3\n"), b9 = file("b9.txt", "1 2 3x\n");
  const std::string same = file("same.txt", Points({{1, 2, 3}, {1, 2, 3}, {1, 2, 3}}));
  const std::string onLine = file("on-line.txt", "0 0 0\n1 1 1\n2 2 2\n3 3 3\n4 4 4\n5 5 5\n");
  const std::string flat = file("flat.txt", "0 0 1\n1 0 1\n0 1 1\n1 1 1\n2 3 1\n");
  const std::string twoX = file("two-x.txt", "0 0 1\n1 0 2\n0 1 3\n1 1 4\n0 2 5\n1 2 6\n");
  const std::string level = file("level.txt", "0 0 5\n1 0 5\n2 0 5\n0 1 5\n1 1 5\n2 1 5\n0 2 5\n");
  const std::string short2 = file("short.txt", "0 0 0\n1 0 0\n");
  const std::string angle = "the edge angle must lie strictly between 0 and 120 degrees";
  const struct {
    std::vector<std::string> args;
    std::string message;
  } cases[] = {
      {{"circle", b1}, b1 + ":2: expected 3 numbers (x y z), found 2"},
      {{"circle", b2}, b2 + ":2: expected 3 numbers (x y z), found 4"},
      {{"circle", b3}, b3 + ":3: 'five' is not a number"},
      {{"circle", b4}, b4 + ":2: 'x' is not a number"},  // a header only at the top
      {{"circle", b5}, b5 + ":1: 'nan' is not a finite number"},
      {{"circle", b6}, b6 + ":2: '-inf' is not a finite number"},
      {{"circle", b7}, b7 + ":1: '1e999' is too large"},
      {{"circle", b8}, b8 + ":1: empty field"},
      {{"circle", b9}, b9 + ":1: '3x' is not a number"},
      {{"peak", b1}, "expected 3 numbers (x y quality), found 2"},
      {{"line", missing}, "cannot open " + missing + ": No such file"},
      {{"line", ScratchDirectory()}, "it is a directory"},
      {{"line", same}, "are the same point"},
      {{"plane", onLine}, "lie on one line"},
      {{"circle", onLine}, "lie on one line"},
      {{"ellipse", onLine}, "lie on one line"},
      {{"sphere", flat}, "lie in one plane"},
      {{"paraboloid", twoX}, "do not determine a paraboloid"},
      {{"peak", level}, "there is no peak to find"},
      {{"peak", file("five.txt", "0 0 1\n1 0 2\n0 1 3\n1 1 4\n2 2 5\n")},
       "a quality peak search needs at least 6 samples"},
      {{"cube", Sample("line.txt")}, "unknown shape or command 'cube'"},
      {{"line", "--frobnicate", Sample("line.txt")}, "--frobnicate"},
      {{"sphere", "--svg", "x.svg", Sample("sphere.txt")}, "--svg"},
      {{"demo", "--noise", "-1"}, "--noise"},
      {{}, ""},
      {{"trihedral", f1, f2}, ""},
      {{"trihedral", f1, f2, f3, "--edge-angle", "0"}, angle},
      {{"trihedral", f1, f2, f3, "--edge-angle", "120"}, angle},
      {{"trihedral", f1, f2, f3, "--edge-angle", "-5"}, angle},
      {{"trihedral", f1, f2, f3, "--edge-angle", "right"}, "right"},
      {{"trihedral", f1, short2, f3},
       "a trihedral fit needs at least 3 points per face; " + short2 + " has 2"},
      {{"trihedral", f1, f1, f3}, "do not meet in one point"},
      {{"trihedral", f1, f3, f2},
       "come in the wrong order: with their normals turned away from the origin they must form "
       "a right-handed triple; give them as " +
           f1 + " " + f2 + " " + f3},
  };
  for (const auto &c : cases) {
    SCOPED_TRACE(c.message);
    ExpectRefused(RunTool(c.args), c.message);
  }
  // Too few points for each shape, with the count needed and the count given.
  const std::vector<std::vector<double>> few = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
  const std::pair<const char *, int> needs[] = {{"line", 2},   {"plane", 3},   {"circle", 3},
                                                {"sphere", 4}, {"ellipse", 5}, {"paraboloid", 5}};
  for (const auto &[shape, needed] : needs) {
    const std::string path = file("few.txt", Points({few.begin(), few.begin() + needed - 1}));
    ExpectRefused(RunTool({shape, path}), (shape == std::string("ellipse") ? "an " : "a ") +
                                              std::string(shape) + " fit needs at least " +
                                              std::to_string(needed) + " points; " + path +
                                              " has " + std::to_string(needed - 1));
  }
  for (const char *shape : {"plane", "circle", "sphere", "ellipse"})
    EXPECT_EQ(RunTool({shape, same}).err.find("nan"), std::string::npos);
}

TEST(CommandLine, PrintsHelpForEveryCommandAndTheVersion) {
  EXPECT_EQ(RunTool({"--version"}).out.rfind("quadrel-fit ", 0), 0u);
  EXPECT_NE(RunTool({"--help"}).out.find("trihedral"), std::string::npos);
  for (const char *command : {"line", "plane", "circle", "sphere", "ellipse", "paraboloid",
                              "trihedral", "peak", "demo"}) {
    const ToolRun help = RunTool({command, "--help"});
    EXPECT_TRUE(help.status == 0 && help.out.find("--json") != std::string::npos) << command;
  }
}

TEST(Trihedral, FitsThreeFacesAndSpellsOutItsStatus) {
  const std::string f1 = Sample("trihedral-1.txt");
  const std::string f2 = Sample("trihedral-2.txt");
  const std::string f3 = Sample("trihedral-3.txt");
  Json fit = ParseJson(RunTool({"trihedral", "--json", f1, f2, f3}));
  ExpectVector(fit["angles_rad"], {0.3, -0.2, 0.4}, 1e-9);
  EXPECT_LT(fit["rms"].get<double>(), 1e-12);
  EXPECT_EQ(fit["code"], 0);
  EXPECT_EQ(fit["status"], "converged");
  EXPECT_EQ(fit["points"], Json::array({16, 16, 16}));

  // A cyclic exchange of the faces gives the same apex.
  Json turned = ParseJson(RunTool({"trihedral", "--json", f2, f3, f1}));
  ExpectVector(turned["apex"], fit["apex"].get<std::vector<double>>(), 1e-9);

  // A wrong edge angle still ends in a spelled-out status and finite numbers.
  Json wrong = ParseJson(RunTool({"trihedral", "--json", "--edge-angle", "60", f1, f2, f3}));
  EXPECT_TRUE(wrong["status"] == "converged" || wrong["status"] == "step limit reached") << wrong;
  EXPECT_GT(wrong["rms"].get<double>(), 0.01);
}

TEST(Peak, SpellsOutHowThePeakWasFound) {
  // The samples of a 7 x 7 grid from -3 to 3 with quality f(x, y, s), where
  // s = +-1 as x + y is even or odd.
  auto grid = [](const char *name, double (*f)(double, double, double)) {
    std::string text = "x y quality\n";
    char line[100];
    for (int i = -3; i <= 3; ++i) {
      for (int j = -3; j <= 3; ++j) {
        std::snprintf(line, sizeof line, "%d %d %.17g\n", i, j, f(i, j, (i + j) % 2 ? -1.0 : 1.0));
        text += line;
      }
    }
    return ParseJson(RunTool({"peak", "--json", WriteScratchFile(name, text)}));
  };
  Json inside = ParseJson(RunTool({"peak", "--json", Sample("peak.txt")}));
  ExpectVector(inside["peak"], {0.4, -0.7}, 1e-9);
  EXPECT_EQ(inside["method"], "maximum of the fitted surface");
  EXPECT_EQ(inside["samples"], 49);
  // The maximum lies far outside; with no noise the first tested step leaves
  // the band round the best quality.
  Json far = grid("far.txt", [](double x, double y, double) {
    return 100 - (x - 6) * (x - 6) - (y - 1) * (y - 1);
  });
  EXPECT_EQ(far["code"], 5);
  EXPECT_EQ(far["method"], "climb stopped: left the quality band");
  ExpectVector(far["peak"], {3.8, 1.0}, 1e-9);
  Json beyond = grid("beyond.txt", [](double x, double y, double s) {
    return 100 - 0.01 * ((x - 6) * (x - 6) + (y - 1) * (y - 1)) + 0.1 * s;
  });
  EXPECT_EQ(beyond["method"], "maximum beyond reach: climbed six steps");
  ExpectVector(beyond["peak"], {5.40, 1.10}, 0.01);
  Json saddle = grid("saddle.txt", [](double x, double y, double s) {
    return 100 + 0.005 * (x * x - y * y) + 0.3 * s;
  });
  EXPECT_EQ(saddle["method"], "surface has no maximum: climbed six steps");
  Json turn = grid("turn.txt", [](double x, double y, double s) {
    return 100 + 0.02 * ((x - 0.02) * (x - 0.02) - (y - 1) * (y - 1)) + 0.6 * s +
           (x == 0 && y == 0 ? 0.35 : 0.0);
  });
  EXPECT_EQ(turn["method"], "climb stopped: heading turned more than 70 degrees");
  ExpectVector(turn["peak"], {-0.71, 1.44}, 0.01);
  Json rough = grid("rough.txt", [](double x, double y, double) {
    return 100 * std::cos(3 * x) * std::cos(3 * y);
  });
  EXPECT_EQ(rough["code"], 4);
  EXPECT_EQ(rough["method"], "surface does not fit the data: best sample");
  EXPECT_EQ(rough["peak"], rough["best_sample"]["position"]);
}

TEST(Svg, DrawsCircleEllipsePlaneAndPeakPictures) {
  const std::pair<std::string, size_t> pictures[] = {
      {"circle", 24}, {"ellipse", 30}, {"plane", 25}, {"peak", 49}};
  for (const auto &[command, points] : pictures) {
    SCOPED_TRACE(command);
    const std::string svg = ScratchDirectory() + "/" + command + ".svg";
    ASSERT_EQ(RunTool({command, "--svg", svg, Sample(command + ".txt")}).status, 0);
    const std::string picture = ReadWholeFile(svg);
    EXPECT_EQ(picture.rfind("<?xml", 0), 0u);
    EXPECT_NE(picture.find(Sample(command + ".txt")), std::string::npos);
    EXPECT_NE(picture.find("</svg>\n"), std::string::npos);
    EXPECT_EQ(picture.find("nan"), std::string::npos);
    // One mark per point.
    const std::string mark = command == "plane" ? "<rect x=" : "<circle ";
    size_t marks = 0;
    for (size_t at = picture.find(mark); at != std::string::npos; at = picture.find(mark, at + 1))
      ++marks;
    EXPECT_GE(marks, points);
  }
  const ToolRun unwritable =
      RunTool({"circle", "--svg", ScratchDirectory() + "/no/such/dir/c.svg", Sample("circle.txt")});
  EXPECT_TRUE(unwritable.status == 1 && unwritable.out.empty());
  EXPECT_NE(unwritable.err.find("cannot write"), std::string::npos);
}

TEST(Demo, FitsEverySampleAndSavesThem) {
  const ToolRun text = RunTool({"demo"});
  ASSERT_EQ(text.status, 0) << text.err;
  for (const char *name :
       {"line", "plane", "circle", "sphere", "ellipse", "paraboloid", "trihedral", "peak"}) {
    EXPECT_NE(text.out.find(std::string("\n") + name + " "), std::string::npos) << name;
  }
  Json demo = ParseJson(RunTool({"demo", "--json"}));
  ASSERT_GE(demo["rows"].size(), 20u);
  for (const Json &row : demo["rows"]) {
    if (row.contains("error")) {
      EXPECT_LT(row["error"].get<double>(), 0.05) << row;
    } else {
      EXPECT_EQ(row["true"], row["fitted"]) << row;
    }
  }
  // Exact samples, saved, give the files shipped as examples to about the last
  // digit (another maths library may round a sine differently).
  const std::string saved = ScratchDirectory() + "/samples";
  ASSERT_EQ(RunTool({"demo", "--noise", "0", "--save", saved}).status, 0);
  for (const char *name : {"ellipse.txt", "trihedral-2.txt", "peak.txt"}) {
    const std::vector<double> made = NumbersOf(ReadWholeFile(saved + "/" + name));
    const std::vector<double> shipped = NumbersOf(ReadWholeFile(Sample(name)));
    ASSERT_TRUE(made.size() == shipped.size() && !made.empty()) << name;
    for (size_t i = 0; i < made.size(); ++i)
      EXPECT_NEAR(made[i], shipped[i], 1e-13) << name;
  }
}

TEST(LargeInput, FitsAMillionPointPlaneInOnePass) {
  const std::string path = ScratchDirectory() + "/million.txt";
  {
    std::FILE *file = std::fopen(path.c_str(), "w");
    ASSERT_NE(file, nullptr);
    // The plane x + 2y + 2z = 3 over a 1000 x 1000 grid, with a small ripple
    // that leaves its normal alone.
    for (int i = 0; i < 1000; ++i) {
      for (int j = 0; j < 1000; ++j) {
        const double x = i * 0.01;
        const double y = j * 0.01;
        const double ripple = ((i + j) % 2 == 0 ? 1e-4 : -1e-4);
        std::fprintf(file, "%.10g,%.10g,%.10g\n", x, y, (3 - x - 2 * y) / 2 + ripple);
      }
    }
    std::fclose(file);
  }
  Json plane = ParseJson(RunTool({"plane", "--json", path}));
  std::remove(path.c_str());
  EXPECT_EQ(plane["points"], 1000000);
  ExpectVector(plane["normal"], {1.0 / 3, 2.0 / 3, 2.0 / 3}, 1e-6, true);
  EXPECT_NEAR(plane["residuals"]["rms"].get<double>(), 1e-4 * 2.0 / 3, 1e-6);
}

}  // namespace
