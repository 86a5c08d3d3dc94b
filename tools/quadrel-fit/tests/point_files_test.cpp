// quadrel-fit on point-cloud files and per segment: the same fit bits from a
// binary file as from text, points without a return counted, one row per
// segment in text, JSON Lines and CSV with an exit status of its own, and
// status 2 with a message for a bad segment column or options.
#include <cmath>
#include <limits>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "quadrel/io/samples/sample_files.h"
#include "tool_runner.h"

namespace {

using Json = nlohmann::json;
using namespace quadrel_io_samples;
using quadrel_io::ScalarType;

// Three spheres labelled 4, 1 and 7 (in the order of their first points),
// the last with three points only, and every fifth point without a return.
SampleCloud Targets(bool withMissing) {
  SampleCloud cloud;
  std::vector<double> labels;
  const double keys[] = {4, 1, 7};
  for (int k = 0; k < 60; ++k) {
    const double key = keys[k % 3];
    if (key == 7 && k > 8) continue;
    const double t = 0.9 * k, u = 0.37 * k, r = 1 + key / 8;
    const bool none = withMissing && k % 5 == 4;
    const double nan = std::numeric_limits<double>::quiet_NaN();
    cloud.x.push_back(none ? nan : key + r * std::cos(t) * std::cos(u));
    cloud.y.push_back(none ? nan : r * std::sin(t) * std::cos(u));
    cloud.z.push_back(none ? nan : 0.5 + r * std::sin(u));
    labels.push_back(key);
  }
  cloud.columns = {{"label", ScalarType::kUint8, labels}};
  return cloud;
}

std::string AsText(const SampleCloud &cloud) {
  std::string text = "x y z label\n";
  char line[128];
  for (std::size_t k = 0; k < cloud.size(); ++k) {
    if (std::isnan(cloud.x[k])) continue;
    std::snprintf(line, sizeof line, "%.17g %.17g %.17g %g\n", cloud.x[k], cloud.y[k], cloud.z[k],
                  cloud.columns[0].values[k]);
    text += line;
  }
  return text;
}

std::vector<std::string> Lines(const std::string &out) {
  std::vector<std::string> lines;
  std::istringstream in(out);
  for (std::string line; std::getline(in, line);)
    lines.push_back(line);
  return lines;
}

TEST(PointFiles, BinaryFilesGiveTheFitBitsOfTheTextFile) {
  const SampleCloud cloud = Targets(true);
  const std::string text = WriteScratchFile("targets.txt", AsText(cloud));
  const double scale[3] = {1e-9, 1e-9, 1e-9}, offset[3] = {0, 0, 0};
  const Json expected = ParseJson(RunTool({"sphere", "--json", text}));
  EXPECT_EQ(expected["points"], 35);
  EXPECT_FALSE(expected.contains("skipped_points"));
  // The readers' own tests hold every variant; one binary file, on standard input.
  const Json fit =
      ParseJson(RunTool({"sphere", "--json", "-"},
                        WriteScratchFile("targets.pcd", WritePcd(cloud, PcdData::kCompressed,
                                                                 ScalarType::kFloat64))));
  EXPECT_EQ(fit["skipped_points"], 8);
  EXPECT_EQ(fit["centre"], expected["centre"]);  // the same doubles, as JSON writes them exactly
  EXPECT_EQ(fit["radius"], expected["radius"]);
  EXPECT_EQ(fit["residuals"]["rms"], expected["residuals"]["rms"]);
  EXPECT_TRUE(fit["residuals"].contains("max_record"));
  // LAS holds integers: the points at a scale of 1e-9 fit within rounding.
  SampleCloud finite = Targets(false);
  const ToolRun las = RunTool(
      {"plane", "--residuals", WriteScratchFile("t.las", WriteLas(finite, 6, 4, scale, offset))});
  ASSERT_EQ(las.status, 0) << las.err;
  EXPECT_NE(las.out.find("skipped points       0\n"), std::string::npos) << las.out;
  EXPECT_NE(las.out.find("     point     record  residual\n"), std::string::npos);
}

TEST(Segments, OneRowPerSegmentInTextJsonLinesAndCsvWithStatus3) {
  const std::string file = WriteScratchFile(
      "labelled.pcd", WritePcd(Targets(true), PcdData::kBinary, ScalarType::kFloat64));
  const ToolRun json = RunTool({"sphere", "--segment-by", "label", "--json", file});
  EXPECT_EQ(json.status, 3) << json.err;
  EXPECT_EQ(json.err, "");
  const std::vector<std::string> lines = Lines(json.out);
  ASSERT_EQ(lines.size(), 3u);
  std::vector<Json> rows;
  const int keys[] = {4, 1, 7};
  for (int s = 0; s < 3; ++s) {
    EXPECT_EQ(lines[s].rfind("{\"label\":" + std::to_string(keys[s]) + ",", 0), 0u);
    rows.push_back(Json::parse(lines[s]));
    EXPECT_EQ(rows[s]["skipped_in_file"], 8);
  }
  EXPECT_FALSE(rows[2].contains("radius"));  // a row holds its own fields only

  const ToolRun csv = RunTool({"sphere", "--segment-by", "label", "--csv", file});
  EXPECT_EQ(csv.status, 3);
  const std::vector<std::string> csvRows = Lines(csv.out);
  ASSERT_EQ(csvRows.size(), 4u);
  EXPECT_EQ(csvRows[0],
            "label,points,skipped_in_file,status,centre_x,centre_y,centre_z,radius,rms,max_abs,"
            "reason");
  EXPECT_EQ(csvRows[1].rfind("4,", 0), 0u);
  EXPECT_EQ(std::stod(csvRows[1].substr(csvRows[1].find(",ok,") + 4)),
            rows[0]["centre"][0].get<double>());
  EXPECT_EQ(
      csvRows[3].rfind("7,3,8,too few points,,,,,,,a sphere fit needs at least 4 points; ", 0), 0u)
      << csvRows[3];

  const ToolRun text = RunTool({"sphere", "--segment-by", "label", file});
  EXPECT_EQ(text.status, 3);
  EXPECT_NE(text.out.find("skipped points       8\nsegments             3\nfitted               2\n"
                          "label  points  status          centre_x"),
            std::string::npos)
      << text.out;
  // Every segment fitted: status 0.
  EXPECT_EQ(RunTool({"plane", "--segment-by", "label", file}).status, 0);
}

TEST(PointFiles, BadSegmentColumnsAndOptionsEndWithStatus2AndAMessage) {
  // The readers' own tests hold every bad file.
  const std::string file = WriteScratchFile(
      "cloud.ply", WritePly(Targets(false), PlyEncoding::kLittle, ScalarType::kFloat32));
  const std::pair<std::vector<std::string>, std::string> cases[] = {
      {{"plane", "--segment-by", "class", file},
       file + " has no column 'class' to segment by; its columns besides x, y and z are: label"},
      {{"plane", "--json", "--csv", file}, "--json and --csv exclude each other"},
      {{"plane", "--segment-by", "label", "--residuals", file}, "--segment-by takes neither"},
  };
  for (const auto &[args, message] : cases)
    ExpectRefused(args, message);
}

}  // namespace
