// Point files written in memory, in every variant the readers take: for the
// tests, the fuzzers' seed corpus and the reading benchmark. Not a general
// writer: it writes what those need and nothing more.
#ifndef QUADREL_IO_SAMPLES_SAMPLE_FILES_H
#define QUADREL_IO_SAMPLES_SAMPLE_FILES_H

#include <cstdint>
#include <string>
#include <vector>

#include "quadrel/io/scalar_column.h"

namespace quadrel_io_samples {

using quadrel_io::ScalarType;

// A column beside x, y and z, stored with its type.
struct SampleColumn {
  std::string name;
  ScalarType type = ScalarType::kInt32;
  std::vector<double> values;
};

// The points to write: x, y and z of equal length, columns of that length
// too, and for an organized cloud width x height = the number of points.
struct SampleCloud {
  std::vector<double> x, y, z;
  std::vector<SampleColumn> columns;
  std::int64_t width = 0, height = 0;
  std::size_t size() const { return x.size(); }
};

enum class PlyEncoding { kAscii, kLittle, kBig };
enum class PcdData { kAscii, kBinary, kCompressed };

// A PLY file: a "face" element with a list property before the vertices when
// withFaceFirst, comment and obj_info lines, x y z of coordType (a PLY type).
// ASCII numbers are written to 17 significant digits.
std::string WritePly(const SampleCloud &cloud, PlyEncoding encoding, ScalarType coordType,
                     bool withFaceFirst = true);
// A PCD 0.7 file with fields x y z of coordType (float32 or float64) and the
// columns, and a padding field "_" of COUNT 3 at the end.
std::string WritePcd(const SampleCloud &cloud, PcdData data, ScalarType coordType);
// A LAS 1.minor file of point data format `format` (0..10) with the given
// scale and offset: the stored integers are the coordinates minus the offset
// divided by the scale, rounded. Columns named like the LAS fields
// (classification, intensity, user_data, point_source_id) are stored in them.
std::string WriteLas(const SampleCloud &cloud, int format, int minor, const double scale[3],
                     const double offset[3]);

// LZF: a greedy compressor whose output any LZF decompressor reads.
std::string LzfCompress(const std::string &input);

}  // namespace quadrel_io_samples

#endif  // QUADREL_IO_SAMPLES_SAMPLE_FILES_H
