// Writes the seed corpus of the reader harnesses: small valid files in every
// variant (PLY ascii and both binary orders, PCD ascii, binary and
// binary_compressed with an organized cloud among them, LAS in every point
// format), one file per seed in corpus/<harness>/.
//
//   make_reader_seeds CORPUS_DIR
#include <cmath>
#include <cstdio>
#include <fstream>
#include <limits>
#include <string>

#include "quadrel/io/samples/sample_files.h"

using namespace quadrel_io_samples;

namespace {

void Save(const std::string &dir, const std::string &name, const std::string &bytes) {
  std::ofstream(dir + "/" + name, std::ios::binary) << bytes;
}

}  // namespace

int main(int argc, char **argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: make_reader_seeds CORPUS_DIR\n");
    return 2;
  }
  const std::string root = argv[1];
  SampleCloud cloud;
  cloud.width = 3;
  cloud.height = 2;
  for (int k = 0; k < 6; ++k) {
    const double none = k == 4 ? std::numeric_limits<double>::quiet_NaN() : 0.0;
    cloud.x.push_back(k % 3 + none);
    cloud.y.push_back(0.5 * k);
    cloud.z.push_back(std::sqrt(k + 1.0));
  }
  cloud.columns = {{"label", ScalarType::kUint8, {1, 1, 2, 2, 3, 3}},
                   {"intensity", ScalarType::kInt16, {-5, 4, 3, 2, 1, 0}}};
  SampleCloud flat = cloud;
  flat.height = 0;
  const char *encodings[] = {"ascii", "le", "be"};
  for (int e = 0; e < 3; ++e)
    for (ScalarType type : {ScalarType::kFloat32, ScalarType::kFloat64})
      for (bool face : {false, true})
        for (const std::string dir : {"reader", "reader_ply"})
          Save(root + "/" + dir,
               std::string("ply-") + encodings[e] + (type == ScalarType::kFloat32 ? "-f" : "-d") +
                   (face ? "-face" : ""),
               WritePly(flat, static_cast<PlyEncoding>(e), type, face));
  const char *forms[] = {"ascii", "binary", "compressed"};
  for (int d = 0; d < 3; ++d)
    for (ScalarType type : {ScalarType::kFloat32, ScalarType::kFloat64})
      for (bool organized : {false, true})
        for (const std::string dir : {"reader", "reader_pcd"})
          Save(root + "/" + dir,
               std::string("pcd-") + forms[d] + (type == ScalarType::kFloat32 ? "-f" : "-d") +
                   (organized ? "-organized" : ""),
               WritePcd(organized ? cloud : flat, static_cast<PcdData>(d), type));
  flat.x[4] = 1.0;
  flat.columns = {{"classification", ScalarType::kUint8, {2, 2, 6, 6, 9, 9}}};
  const double scale[3] = {0.01, 0.01, 0.001}, offset[3] = {100, -200, 0.5};
  for (int format = 0; format <= 10; ++format)
    for (const std::string dir : {"reader", "reader_las"})
      Save(root + "/" + dir, "las-" + std::to_string(format),
           WriteLas(flat, format, format > 5 ? 4 : 2, scale, offset));
  return 0;
}
