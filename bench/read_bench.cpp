// How fast point files are read, and what a whole fit costs beside it: a
// binary PLY, a compressed PCD, a LAS file and a text file of the same points
// are made in memory, each is parsed (best of five runs) and reported in
// MB/s, then read and fitted with a plane and a sphere, as quadrel-fit does
// between its input and its output. Given a folder, it also writes the four
// files there (points.ply, points.pcd, points.las, points.txt), reports how
// fast they are read from there (file MB/s: reading the file included), and
// leaves them to time quadrel-fit on.
//
//   quadrel_read_bench [POINTS [FOLDER]]   (10000000 points unless given)
#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "quadrel/frontend/shape_fit.h"
#include "quadrel/io/read_points.h"
#include "quadrel/io/samples/sample_files.h"

namespace {

using namespace quadrel_io_samples;
using Clock = std::chrono::steady_clock;

double Seconds(Clock::time_point since) {
  return std::chrono::duration<double>(Clock::now() - since).count();
}

// Points on a sphere of radius 2 about (1, -2, 0.5), with a label per
// thousand points and a little noise from a fixed generator.
SampleCloud Sphere(std::size_t n) {
  SampleCloud cloud;
  cloud.x.reserve(n);
  cloud.y.reserve(n);
  cloud.z.reserve(n);
  std::vector<double> labels;
  unsigned long long state = 88172645463325252ull;
  auto noise = [&state] {
    state ^= state << 13, state ^= state >> 7, state ^= state << 17;
    return (static_cast<double>(state >> 11) / 9007199254740992.0 - 0.5) * 1e-3;
  };
  for (std::size_t k = 0; k < n; ++k) {
    const double t = 2.399963 * static_cast<double>(k);
    const double z = 1.0 - 2.0 * (static_cast<double>(k) + 0.5) / static_cast<double>(n);
    const double r = std::sqrt(1.0 - z * z);
    cloud.x.push_back(1.0 + 2.0 * r * std::cos(t) + noise());
    cloud.y.push_back(-2.0 + 2.0 * r * std::sin(t) + noise());
    cloud.z.push_back(0.5 + 2.0 * z + noise());
    labels.push_back(static_cast<double>(k / 1000 % 200));
  }
  cloud.columns = {{"label", ScalarType::kUint8, std::move(labels)}};
  return cloud;
}

std::string Text(const SampleCloud &cloud) {
  std::string text;
  text.reserve(cloud.size() * 40);
  char line[96];
  for (std::size_t k = 0; k < cloud.size(); ++k) {
    const int length =
        std::snprintf(line, sizeof line, "%.9g %.9g %.9g\n", cloud.x[k], cloud.y[k], cloud.z[k]);
    text.append(line, static_cast<std::size_t>(length));
  }
  return text;
}

}  // namespace

int main(int argc, char **argv) {
  const std::size_t n = argc > 1 ? std::strtoull(argv[1], nullptr, 10) : 10000000;
  std::printf("making %zu points in every format...\n", n);
  const SampleCloud cloud = Sphere(n);
  const double scale[3] = {1e-6, 1e-6, 1e-6}, offset[3] = {1, -2, 0.5};
  const std::pair<const char *, std::string> files[] = {
      {"binary PLY (float64 x y z, uchar label)",
       WritePly(cloud, PlyEncoding::kLittle, ScalarType::kFloat64, false)},
      {"compressed PCD (float32 x y z, uchar label)",
       WritePcd(cloud, PcdData::kCompressed, ScalarType::kFloat32)},
      {"LAS 1.2, point format 1", WriteLas(cloud, 1, 2, scale, offset)},
      {"text (x y z, 9 digits)", Text(cloud)}};
  const char *const names[] = {"points.ply", "points.pcd", "points.las", "points.txt"};
  std::string paths[4];
  if (argc > 2) {
    for (int f = 0; f < 4; ++f) {
      const std::string &path = paths[f] = std::string(argv[2]) + "/" + names[f];
      std::FILE *file = std::fopen(path.c_str(), "wb");
      const std::string &content = files[f].second;
      const bool written =
          file != nullptr && std::fwrite(content.data(), 1, content.size(), file) == content.size();
      if (file == nullptr || std::fclose(file) != 0 || !written) {
        std::perror(path.c_str());
        return 1;
      }
    }
  }
  std::printf("%-44s %8s %8s %12s %10s %10s\n", "file", "MB", "MB/s", "file MB/s", "plane s",
              "sphere s");
  for (int f = 0; f < 4; ++f) {
    const auto &[what, content] = files[f];
    double best = 1e300, bestFromFile = 1e300;
    for (int run = 0; run < 5; ++run) {
      auto start = Clock::now();
      const quadrel_io::PointSet set = quadrel_io::ParsePoints(content, "bench");
      best = std::min(best, Seconds(start));
      if (set.count() != static_cast<int>(n)) std::abort();
      if (paths[f].empty()) continue;
      start = Clock::now();
      const quadrel_io::PointSet read = quadrel_io::ReadPoints(paths[f]);
      bestFromFile = std::min(bestFromFile, Seconds(start));
      if (read.count() != static_cast<int>(n)) std::abort();
    }
    double fit[2];
    const char *shapes[] = {"plane", "sphere"};
    for (int s = 0; s < 2; ++s) {
      const auto start = Clock::now();
      const quadrel_io::PointSet set = quadrel_io::ParsePoints(content, "bench");
      const quadrel_frontend::ShapeFit result =
          quadrel_frontend::FitShape(*quadrel_frontend::FindShape(shapes[s]), set);
      fit[s] = Seconds(start);
      if (!result.outcome.ok()) std::abort();
    }
    const double megabytes = static_cast<double>(content.size()) / 1e6;
    const std::string fromFile =
        paths[f].empty() ? "-" : std::to_string(std::lround(megabytes / bestFromFile));
    std::printf("%-44s %8.1f %8.0f %12s %10.2f %10.2f\n", what, megabytes, megabytes / best,
                fromFile.c_str(), fit[0], fit[1]);
  }
  return 0;
}
