// How fast sample consensus finds a plane or a sphere in a large cluttered
// cloud. The points come from a file of little-endian doubles, x y z per point
// (what numpy's tofile writes for an (n, 3) array), or are generated from a
// seed: n points, half on the shape with Gaussian noise of 0.01, half uniform
// in the cube around it. Prints one line per run and the median time.
//
//   quadrel_robust_bench plane|sphere [--points FILE] [--count N] [--seed S]
//                        [--threshold T] [--runs R] [--threads K]
#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "quadrel/robust/sample_consensus.h"

namespace {

// Half the points on a plane through (0.1, -0.2, 0.3) or a sphere of radius 0.8
// about it, half uniform in [-1.5, 1.5]^3.
CMatrix Generate(bool sphere, int n, std::uint64_t seed) {
  std::mt19937_64 rng(seed);
  std::uniform_real_distribution<double> unit(-1.0, 1.0);
  std::normal_distribution<double> noise(0.0, 0.01);
  CMatrix points(3, n);
  for (int i = 0; i < n; ++i) {
    double p[3];
    if (i % 2 == 1) {
      for (double &v : p)
        v = 1.5 * unit(rng);
    } else if (sphere) {
      double l = 0.0;
      for (double &v : p) {
        v = unit(rng);
        l += v * v;
      }
      l = std::sqrt(l);
      for (int k = 0; k < 3; ++k)
        p[k] = 0.8 * p[k] / l + noise(rng);
    } else {
      const double a = unit(rng), b = unit(rng);
      p[0] = a + noise(rng);
      p[1] = 0.6 * a + 0.8 * b + noise(rng);
      p[2] = 0.8 * a - 0.6 * b + noise(rng);
    }
    const double centre[3] = {0.1, -0.2, 0.3};
    for (int k = 0; k < 3; ++k)
      points(k, i) = p[k] + centre[k];
  }
  return points;
}

bool Load(const char *path, CMatrix &points) {
  std::FILE *f = std::fopen(path, "rb");
  if (f == nullptr) return false;
  std::vector<double> xyz;
  double buffer[3 * 4096];
  std::size_t got;
  while ((got = std::fread(buffer, sizeof(double), 3 * 4096, f)) > 0)
    xyz.insert(xyz.end(), buffer, buffer + got);
  std::fclose(f);
  const int n = static_cast<int>(xyz.size() / 3);
  if (n == 0 || xyz.size() % 3 != 0) return false;
  points = CMatrix(3, n);
  for (int i = 0; i < n; ++i)
    for (int k = 0; k < 3; ++k)
      points(k, i) = xyz[3 * static_cast<std::size_t>(i) + k];
  return true;
}

}  // namespace

int main(int argc, char **argv) {
  if (argc < 2 || (std::strcmp(argv[1], "plane") != 0 && std::strcmp(argv[1], "sphere") != 0)) {
    std::fprintf(stderr,
                 "usage: quadrel_robust_bench plane|sphere [--points FILE] [--count N] "
                 "[--seed S] [--threshold T] [--runs R] [--threads K]\n");
    return 2;
  }
  const bool sphere = std::strcmp(argv[1], "sphere") == 0;
  const char *path = nullptr;
  int count = 1000000, runs = 5;
  ConsensusOptions options;
  options.inlierThreshold = 0.03;
  for (int a = 2; a + 1 < argc; a += 2) {
    const std::string flag = argv[a];
    const char *value = argv[a + 1];
    if (flag == "--points") {
      path = value;
    } else if (flag == "--count") {
      count = std::atoi(value);
    } else if (flag == "--seed") {
      options.seed = std::strtoull(value, nullptr, 10);
    } else if (flag == "--threshold") {
      options.inlierThreshold = std::atof(value);
    } else if (flag == "--runs") {
      runs = std::max(1, std::atoi(value));
    } else if (flag == "--threads") {
      options.threads = std::atoi(value);
    } else {
      std::fprintf(stderr, "quadrel_robust_bench: unknown option %s\n", flag.c_str());
      return 2;
    }
  }
  CMatrix points;
  if (path != nullptr) {
    if (!Load(path, points)) {
      std::fprintf(stderr, "quadrel_robust_bench: cannot read points from %s\n", path);
      return 1;
    }
  } else {
    points = Generate(sphere, count, options.seed);
  }
  const ConsensusShape shape = sphere ? ConsensusShape::kSphere : ConsensusShape::kPlane;
  std::vector<double> times;
  ConsensusResult r;
  for (int run = 0; run < runs; ++run) {
    const auto start = std::chrono::steady_clock::now();
    r = FindConsensus(shape, points, options);
    times.push_back(
        std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start)
            .count());
  }
  std::sort(times.begin(), times.end());
  const CMatrix &p = r.model.point;
  std::printf("shape %s points %d status %d inliers %lld iterations %lld rms %.6g\n", argv[1],
              points.GetCols(), static_cast<int>(r.status), static_cast<long long>(r.inlierCount),
              static_cast<long long>(r.iterations), r.rms);
  std::printf("point %.17g %.17g %.17g", p(0, 0), p(1, 0), p(2, 0));
  if (r.model.direction.GetRows() == 3)
    std::printf(" direction %.17g %.17g %.17g", r.model.direction(0, 0), r.model.direction(1, 0),
                r.model.direction(2, 0));
  std::printf(" radius %.17g\n", r.model.radius);
  std::printf("median_ms %.3f min_ms %.3f runs %d\n", times[times.size() / 2], times.front(), runs);
  return r.status == ConsensusStatus::kFound ? 0 : 1;
}
