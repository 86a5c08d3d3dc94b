// The binary and header-bearing readers (PLY, PCD, LAS), the format detection
// in front of them and the LZF decompressor: every variant reads back the
// same doubles, points without a return are left out and counted, and every
// bad file gets a message that names it and the place of the fault.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "quadrel/io/lzf.h"
#include "quadrel/io/point_format.h"
#include "quadrel/io/read_error.h"
#include "quadrel/io/read_points.h"
#include "quadrel/io/samples/sample_files.h"

namespace {

using quadrel_io::ParsePoints;
using quadrel_io::PointSet;
using quadrel_io::ReadError;
using quadrel_io::ScalarType;
using namespace quadrel_io_samples;

const double kNaN = std::numeric_limits<double>::quiet_NaN();

SampleCloud Cloud() {
  SampleCloud cloud;
  cloud.x = {0.1, -1.0 / 3, 2.5e6 + 0.125, 7, -0.0};
  cloud.y = {1e-7, 2, -3.75, 1.0 / 7, 5};
  cloud.z = {-4, 0.3, 6, -1e3, 2.0 / 3};
  cloud.columns = {{"label", ScalarType::kInt32, {3, 3, -1, 7, 3}},
                   {"intensity", ScalarType::kUint16, {0, 65535, 12, 1, 2}}};
  return cloud;
}

// The coordinates as a file of that coordinate type holds them.
std::vector<double> Stored(const std::vector<double> &values, ScalarType type) {
  std::vector<double> stored;
  for (double v : values)
    stored.push_back(type == ScalarType::kFloat32 ? static_cast<float>(v) : v);
  return stored;
}

std::vector<double> Axis(const PointSet &set, int r) {
  return std::vector<double>(set.axis(r), set.axis(r) + set.count());
}

std::string Message(const std::string &content) {
  try {
    ParsePoints(content, "f");
  } catch (const ReadError &error) {
    return error.what();
  }
  return "no error";
}

TEST(PointFormats, EveryVariantReadsBackTheSameDoubles) {
  const SampleCloud cloud = Cloud();
  for (ScalarType type : {ScalarType::kFloat32, ScalarType::kFloat64}) {
    std::vector<std::pair<std::string, std::string>> files = {
        {"ply", WritePly(cloud, PlyEncoding::kAscii, type)},
        {"ply", WritePly(cloud, PlyEncoding::kLittle, type)},
        {"ply", WritePly(cloud, PlyEncoding::kBig, type)},
        {"ply", WritePly(cloud, PlyEncoding::kLittle, type, false)},
        {"pcd", WritePcd(cloud, PcdData::kAscii, type)},
        {"pcd", WritePcd(cloud, PcdData::kBinary, type)},
        {"pcd", WritePcd(cloud, PcdData::kCompressed, type)}};
    for (std::size_t v = 0; v < files.size(); ++v) {
      SCOPED_TRACE(files[v].first + " variant " + std::to_string(v) + " of type " +
                   std::to_string(static_cast<int>(type)));
      const PointSet set = ParsePoints(files[v].second, "cloud");
      EXPECT_EQ(set.format(), files[v].first);
      EXPECT_EQ(Axis(set, 0), Stored(cloud.x, type));
      EXPECT_EQ(Axis(set, 1), Stored(cloud.y, type));
      EXPECT_EQ(Axis(set, 2), Stored(cloud.z, type));
      EXPECT_TRUE(std::signbit(set.at(0, 4)));
      ASSERT_NE(set.FindColumn("label"), nullptr);
      EXPECT_EQ(set.FindColumn("label")->values, cloud.columns[0].values);
      EXPECT_EQ(set.FindColumn("intensity")->values, cloud.columns[1].values);
      EXPECT_EQ(set.FindColumn("_"), nullptr);
      EXPECT_EQ(set.originKind(), quadrel_io::OriginKind::kRecord);
      EXPECT_EQ(set.origins(), (std::vector<std::int64_t>{1, 2, 3, 4, 5}));
      EXPECT_EQ(set.skipped(), 0);
      EXPECT_FALSE(set.organized());
    }
  }
}

TEST(PointFormats, LeavesOutPointsWithoutAReturnAndKeepsTheirPixel) {
  // A 4 x 3 depth image with three pixels that had no return.
  SampleCloud grid;
  grid.width = 4;
  grid.height = 3;
  for (int k = 0; k < 12; ++k) {
    const bool none = k == 0 || k == 5 || k == 11;
    grid.x.push_back(none ? kNaN : k % 4);
    grid.y.push_back(none ? kNaN : k / 4);
    grid.z.push_back(none ? kNaN : 1.5 + k);
  }
  for (PcdData data : {PcdData::kAscii, PcdData::kBinary, PcdData::kCompressed}) {
    const PointSet set = ParsePoints(WritePcd(grid, data, ScalarType::kFloat32), "depth.pcd");
    ASSERT_EQ(set.count(), 9);
    EXPECT_EQ(set.skipped(), 3);
    ASSERT_TRUE(set.organized());
    EXPECT_EQ(set.width(), 4);
    EXPECT_EQ(set.height(), 3);
    for (int k = 0; k < set.count(); ++k) {
      EXPECT_EQ(set.at(0, k), set.columnOf(k));
      EXPECT_EQ(set.at(1, k), set.rowOf(k));
    }
    EXPECT_EQ(set.originOf(4), 7);  // records 1 and 6 are gone before it
  }
  // Infinities count alike in a cloud that is not organized.
  SampleCloud cloud = Cloud();
  cloud.y[1] = std::numeric_limits<double>::infinity();
  const PointSet set = ParsePoints(WritePly(cloud, PlyEncoding::kBig, ScalarType::kFloat64), "p");
  EXPECT_EQ(set.count(), 4);
  EXPECT_EQ(set.skipped(), 1);
  EXPECT_EQ(set.FindColumn("label")->values, (std::vector<double>{3, -1, 7, 3}));
  EXPECT_FALSE(set.organized());
  // Nothing finite at all is a fault of the file.
  SampleCloud empty = grid;
  empty.x.assign(12, kNaN);
  EXPECT_EQ(Message(WritePcd(empty, PcdData::kBinary, ScalarType::kFloat32)),
            "f holds no point with finite x, y and z: all 12 records are points without a "
            "return (NaN or infinite)");
}

TEST(Las, ReadsEveryPointFormatAsIntegersTimesScalePlusOffset) {
  SampleCloud cloud = Cloud();
  cloud.columns = {{"classification", ScalarType::kUint8, {2, 6, 2, 9, 31}},
                   {"point_source_id", ScalarType::kUint16, {1, 2, 3, 4, 65535}}};
  const double scale[3] = {0.001, 0.0025, 1e-4};
  const double offset[3] = {4.5e5, -1.25e6, 12.5};
  for (int format = 0; format <= 10; ++format) {
    for (int minor : {0, 2, 3, 4}) {
      if (format > 5 && minor < 4) continue;
      SCOPED_TRACE("format " + std::to_string(format) + ", LAS 1." + std::to_string(minor));
      // The set keeps the shared bytes of the file for its columns.
      PointSet set;
      {
        const auto file =
            std::make_shared<const std::string>(WriteLas(cloud, format, minor, scale, offset));
        set = ParsePoints(*file, "s.las", quadrel_io::kPointColumns, file);
      }
      ASSERT_EQ(set.count(), 5);
      EXPECT_EQ(set.format(), "las");
      const std::vector<double> *axes[3] = {&cloud.x, &cloud.y, &cloud.z};
      for (int r = 0; r < 3; ++r)
        for (int k = 0; k < 5; ++k) {
          const double stored = std::nearbyint(((*axes[r])[k] - offset[r]) / scale[r]);
          EXPECT_EQ(set.at(r, k), stored * scale[r] + offset[r]) << r << " " << k;
        }
      EXPECT_EQ(set.FindColumn("classification")->values, cloud.columns[0].values);
      EXPECT_EQ(set.FindColumn("point_source_id")->values, cloud.columns[1].values);
      EXPECT_EQ(set.FindColumn("return_number")->values, std::vector<double>(5, 1));
      EXPECT_EQ(set.FindColumn("number_of_returns")->values, std::vector<double>(5, 1));
      EXPECT_EQ(set.FindColumn("gps_time") != nullptr, format != 0 && format != 2);
      EXPECT_EQ(set.FindColumn("nir") != nullptr, format == 8 || format == 10);
    }
  }
  // A file of no points still has its columns, empty.
  const PointSet none = ParsePoints(WriteLas(SampleCloud(), 1, 2, scale, offset), "none.las");
  EXPECT_EQ(none.count(), 0);
  ASSERT_NE(none.FindColumn("intensity"), nullptr);
  EXPECT_TRUE(none.FindColumn("intensity")->values.empty());
}

TEST(PointFormats, RefuseBadFilesNamingTheLineOrByteAndTheFault) {
  const SampleCloud cloud = Cloud();
  const std::string ply = WritePly(cloud, PlyEncoding::kLittle, ScalarType::kFloat32, false);
  const std::string plyAscii = "ply\nformat ascii 1.0\n", plyHead = plyAscii + "element vertex 1\n";
  const std::string xyz = "property float x\nproperty float y\nproperty float z\n";
  const std::string pcd = WritePcd(cloud, PcdData::kCompressed, ScalarType::kFloat32);
  const std::string pcdBody = pcd.substr(pcd.find("binary_compressed\n") + 18);
  const std::string pcdHead = pcd.substr(0, pcd.size() - pcdBody.size());
  const double unit[3] = {1, 1, 1}, zero[3] = {0, 0, 0};
  const std::string las = WriteLas(cloud, 1, 2, unit, zero);
  const std::string laz = las.substr(0, 104) + "\x81" + las.substr(105);
  const std::string nanScale =
      las.substr(0, 139) + std::string("\0\0\0\0\0\0\xf8\x7f", 8) + las.substr(147);
  const std::pair<std::string, std::string> cases[] = {
      // PLY header and body
      {plyHead + "property bool x\nend_header\n",
       "f:4: 'bool' is not a PLY type (char, uchar, short, ushort, int, uint, float, double, or "
       "int8, uint8, int16, uint16, int32, uint32, float32, float64)"},
      {plyHead + "property float x\nproperty float y\nend_header\n1 2\n",
       "f:3: the vertex element has no property z (x, y and z are needed)"},
      {plyHead + xyz, "f: the PLY header ends without an end_header line"},
      {"ply\nformat binary_middle_endian 1.0\n",
       "f:2: 'binary_middle_endian' is not a PLY format (ascii, binary_little_endian or "
       "binary_big_endian)"},
      {plyAscii + "element face 1\nproperty list float int v\nend_header\n",
       "f:4: the count of a list must have an integer type, not 'float'"},
      {plyAscii + "property float x\n", "f:3: a property before any element"},
      {plyAscii + "element vertex 2\n" + xyz + "end_header\n1 2 3\n4 five 6\n",
       "f:9: 'five' is not a number"},
      {plyAscii + "element vertex 2\n" + xyz + "end_header\n1 2 3\n4 5\n",
       "f:9: the file ends inside vertex 2 of 2"},
      {plyAscii + "element vertex 6\n" + xyz + "property int a\nend_header\n0 0.5 2 2\nnan 2 2\n",
       "f:10: the file ends inside vertex 2 of 6"},
      {plyAscii + "element vertex 0\n" + xyz + "end_header\n", "no error"},
      {ply.substr(0, ply.size() - 30),
       "f: at byte 333: the file ends inside vertex 4 of 5 (each 18 bytes)"},
      // PCD header and body
      {pcdHead.substr(0, pcdHead.find("POINTS")) + "POINTS 6\nDATA binary\n",
       "f:10: WIDTH 5 times HEIGHT 1 is not POINTS 6"},
      {"VERSION 0.7\nFIELDS x y\nSIZE 4 4\nTYPE F F\nWIDTH 1\nDATA ascii\n1 2\n",
       "f:6: the PCD header has no field z (x, y and z are needed)"},
      {"VERSION 0.7\nFIELDS x y z\nSIZE 4 4 2\nTYPE F F F\nWIDTH 1\nDATA ascii\n1 2 3\n",
       "f:4: field z has TYPE 'F' and SIZE '2', which is no PCD type (F of 4 or 8 bytes, I or U "
       "of 1, 2, 4 or 8)"},
      {"VERSION 0.7\nFIELDS x y z\nSIZE 4 4 4\nTYPE F F F\nCOUNT 1 1\nWIDTH 1\nDATA ascii\n",
       "f:5: COUNT gives 2 values for 3 fields"},
      {"VERSION 0.9\n", "f:1: PCD version '0.9' is not one of 0.5, 0.6 and 0.7"},
      {"FIELDS x y z\nSIZE 4 4 4\nTYPE F F F\nWIDTH 2\nDATA ascii\n1 2 3\n4 5\n",
       "f:7: expected 3 values, found 2"},
      {"FIELDS x y z\nSIZE 4 4 4\nTYPE F F F\nWIDTH 2\nDATA ascii\n1 2 3\n\n",
       "f:7: the file ends after 1 of 2 points"},
      {pcdHead + pcdBody.substr(0, 6),
       "f: at byte 211: the file ends inside the sizes of the compressed block"},
      {pcdHead + pcdBody.substr(0, pcdBody.size() - 1),
       "f: at byte 211: the compressed block of " + std::to_string(pcdBody.size() - 8) +
           " bytes runs past the end of the file, which holds " +
           std::to_string(pcdBody.size() - 9) + " bytes after its sizes"},
      {pcdHead + pcdBody.substr(0, 4) + std::string("\x10\0\0\0", 4) + pcdBody.substr(8),
       "f: at byte 215: the compressed block expands to 16 bytes, but 5 points of 21 bytes "
       "take 105"},
      {pcdHead + pcdBody.substr(0, 8) + "\x40" + pcdBody.substr(9),
       "f: at byte 219: the compressed block is not valid LZF data"},
      // LAS
      {las.substr(0, 200),
       "f: at byte 200: the file ends inside the LAS header (200 of at least 227 bytes)"},
      {las.substr(0, las.size() - 1),
       "f: at byte 339: the file ends inside point 5 of 5 (each 28 bytes)"},
      {nanScale, "f: at byte 139: the y scale and offset must be finite, the scale not 0"},
      {laz,
       "f is a LAZ file (compressed LAS), which is not read here; decompress it to LAS "
       "first, e.g. with 'laszip -i in.laz -o out.las' (LAStools or LASzip) or 'pdal "
       "translate in.laz out.las' (PDAL)"},
      // Binary content of no format read here, shown escaped.
      {std::string("\x89PNG\r\n\x1a\n\0\0\0\rIHDR", 16),
       "f: the format is not recognized: the content is binary (it starts with "
       "'\\x89PNG\\x0d\\x0a\\x1a\\x0a\\x00\\x00\\x00\\x0dIHDR') but is not PLY, PCD or LAS; "
       "text files hold numbers as text"},
  };
  for (const auto &[content, message] : cases)
    EXPECT_EQ(Message(content), message);
}

TEST(Lzf, CopiesOverlappingReferencesAndRefusesBrokenInput) {
  std::string input = "abcabcabcabcabcabc" + std::string(300, 'z') + "tail";
  for (int k = 0; k < 2000; ++k)
    input += static_cast<char>(k * 7 % 251);
  const std::string packed = LzfCompress(input);
  ASSERT_LT(packed.size(), input.size());
  std::string output(input.size(), '\0');
  auto expand = [&output](const std::string &in, std::size_t room) {
    return quadrel_io::LzfDecompress(reinterpret_cast<const unsigned char *>(in.data()), in.size(),
                                     reinterpret_cast<unsigned char *>(&output[0]), room);
  };
  EXPECT_EQ(expand(packed, output.size()), static_cast<long long>(input.size()));
  EXPECT_EQ(output, input);
  // More output than room, a literal run cut short, a reference before the
  // start, a reference cut short, and "a" then three copies of it.
  const struct {
    std::string in;
    std::size_t room;
    long long expanded;
  } cases[] = {{packed, output.size() - 1, -1},
               {std::string("\5abc", 4), 10, -1},
               {std::string("\0a\40\1", 4), 10, -1},
               {std::string("\0a\340", 3), 10, -1},
               {std::string("\0a\40\0", 4), 10, 4}};
  for (const auto &c : cases)
    EXPECT_EQ(expand(c.in, c.room), c.expanded) << c.room;
  EXPECT_EQ(output.substr(0, 4), "aaaa");
}

}  // namespace
