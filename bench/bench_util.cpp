#include "bench_util.h"

#include <cmath>
#include <random>

namespace {
// Fills column i of a 3 x n block with (x, y, z).
void SetPoint(Block &block, int i, double x, double y, double z) {
  const std::size_t n = static_cast<std::size_t>(block.cols);
  const std::size_t k = static_cast<std::size_t>(i);
  block.values[k] = x;
  block.values[n + k] = y;
  block.values[2 * n + k] = z;
}

Block MakeBlock(int rows, int cols) {
  Block block;
  block.rows = rows;
  block.cols = cols;
  block.values.assign(static_cast<std::size_t>(rows) * static_cast<std::size_t>(cols), 0.0);
  return block;
}
}  // namespace

Block PlanePoints(int n) {
  std::mt19937_64 random(101);
  std::uniform_real_distribution<double> spread(-5.0, 5.0);
  std::normal_distribution<double> noise(0.0, 0.01);
  // normal (1, 2, 2) / 3 and two unit vectors in the plane, at right angles.
  const double nx = 1.0 / 3.0, ny = 2.0 / 3.0, nz = 2.0 / 3.0;
  const double r5 = std::sqrt(5.0);
  const double ux = 2.0 / r5, uy = -1.0 / r5, uz = 0.0;
  const double vx = 2.0 / (3.0 * r5), vy = 4.0 / (3.0 * r5), vz = -5.0 / (3.0 * r5);
  Block block = MakeBlock(3, n);
  for (int i = 0; i < n; ++i) {
    const double u = spread(random), v = spread(random), h = noise(random);
    SetPoint(block, i, 0.5 + u * ux + v * vx + h * nx, -1.2 + u * uy + v * vy + h * ny,
             2.0 + u * uz + v * vz + h * nz);
  }
  return block;
}

Block LinePoints(int n) {
  std::mt19937_64 random(202);
  std::uniform_real_distribution<double> spread(-10.0, 10.0);
  std::normal_distribution<double> noise(0.0, 0.01);
  Block block = MakeBlock(3, n);
  for (int i = 0; i < n; ++i) {
    const double t = spread(random);
    const double x = 1.0 + t * 2.0 / 7.0 + noise(random);
    const double y = 2.0 + t * 3.0 / 7.0 + noise(random);
    const double z = -1.0 + t * 6.0 / 7.0 + noise(random);
    SetPoint(block, i, x, y, z);
  }
  return block;
}

Block SpherePoints(int n) {
  std::mt19937_64 random(303);
  std::normal_distribution<double> gauss(0.0, 1.0);
  std::normal_distribution<double> noise(0.0, 0.01);
  Block block = MakeBlock(3, n);
  for (int i = 0; i < n; ++i) {
    // A normal triple has a uniformly distributed direction.
    double dx = 0.0, dy = 0.0, dz = 0.0, length = 0.0;
    while (length < 1e-6) {
      dx = gauss(random);
      dy = gauss(random);
      dz = gauss(random);
      length = std::sqrt(dx * dx + dy * dy + dz * dz);
    }
    const double r = 3.0 + noise(random);
    SetPoint(block, i, 1.0 + r * dx / length, -2.0 + r * dy / length, 0.5 + r * dz / length);
  }
  return block;
}

Block CirclePoints(int n) {
  std::mt19937_64 random(404);
  std::uniform_real_distribution<double> angle(0.0, 6.283185307179586);
  std::normal_distribution<double> noise(0.0, 0.01);
  const double r6 = std::sqrt(6.0), r2 = std::sqrt(2.0), r3 = std::sqrt(3.0);
  const double nx = 1.0 / r6, ny = 1.0 / r6, nz = 2.0 / r6;   // normal
  const double ux = 1.0 / r2, uy = -1.0 / r2, uz = 0.0;       // in the plane
  const double vx = 1.0 / r3, vy = 1.0 / r3, vz = -1.0 / r3;  // normal x u
  Block block = MakeBlock(3, n);
  for (int i = 0; i < n; ++i) {
    const double t = angle(random);
    const double r = 2.5 + noise(random);
    const double h = noise(random);
    const double c = r * std::cos(t), s = r * std::sin(t);
    SetPoint(block, i, 1.0 + c * ux + s * vx + h * nx, 2.0 + c * uy + s * vy + h * ny,
             3.0 + c * uz + s * vz + h * nz);
  }
  return block;
}

Block ParaboloidPoints(int n) {
  std::mt19937_64 random(505);
  std::uniform_real_distribution<double> spread(-2.0, 2.0);
  std::normal_distribution<double> noise(0.0, 0.01);
  Block block = MakeBlock(3, n);
  for (int i = 0; i < n; ++i) {
    const double x = spread(random), y = spread(random);
    const double sx = (x - 0.3) / 1.7, sy = (y + 0.2) / 0.9;
    SetPoint(block, i, x, y, sx * sx + sy * sy + 0.8 + noise(random));
  }
  return block;
}

Block TrihedralFace(int face, int n) {
  std::mt19937_64 random(606 + static_cast<unsigned>(face));
  std::uniform_real_distribution<double> spread(0.1, 3.0);
  std::normal_distribution<double> noise(0.0, 0.001);
  const double apex[3] = {1.0, 2.0, 3.0};
  Block block = MakeBlock(3, n);
  for (int i = 0; i < n; ++i) {
    // Coordinate `face` stays on its plane; the other two spread over the face.
    double p[3];
    for (int c = 0; c < 3; ++c)
      p[c] = apex[c] + (c == face ? noise(random) : spread(random));
    SetPoint(block, i, p[0], p[1], p[2]);
  }
  return block;
}

void QualitySamples(int n, Block &quality, Block &positions) {
  std::mt19937_64 random(707);
  std::uniform_real_distribution<double> spread(-3.0, 3.0);
  std::normal_distribution<double> noise(0.0, 0.1);
  quality = MakeBlock(n, 1);
  positions = MakeBlock(2, n);
  const std::size_t cols = static_cast<std::size_t>(n);
  for (std::size_t k = 0; k < cols; ++k) {
    const double x = spread(random), y = spread(random);
    const double dx = x - 0.4, dy = y + 0.7;
    positions.values[k] = x;
    positions.values[cols + k] = y;
    quality.values[k] = 100.0 - 2.0 * dx * dx - 3.0 * dy * dy + 0.5 * dx * dy + noise(random);
  }
}

Block RandomBlock(int rows, int cols, unsigned seed) {
  std::mt19937_64 random(seed);
  std::uniform_real_distribution<double> spread(-1.0, 1.0);
  Block block = MakeBlock(rows, cols);
  for (double &value : block.values)
    value = spread(random);
  return block;
}

CMatrix ToQuadrel(const Block &block) {
  return CMatrix(block.values.data(), block.rows, block.cols);
}

Eigen::MatrixXd ToEigen(const Block &block) {
  using RowMajor = Eigen::Matrix<double, Eigen::Dynamic, Eigen::Dynamic, Eigen::RowMajor>;
  return Eigen::Map<const RowMajor>(block.values.data(), block.rows, block.cols);
}

void RegisterAlone(const std::string &name, void (*quadrel)(benchmark::State &),
                   std::initializer_list<std::int64_t> sizes, benchmark::TimeUnit unit) {
  benchmark::internal::Benchmark *run =
      benchmark::RegisterBenchmark((name + "/quadrel").c_str(), quadrel);
  for (std::int64_t n : sizes)
    run->Arg(n);
  run->Unit(unit);
}

void RegisterPair(const std::string &name, void (*quadrel)(benchmark::State &),
                  void (*eigen)(benchmark::State &), std::initializer_list<std::int64_t> sizes,
                  benchmark::TimeUnit unit) {
  RegisterAlone(name, quadrel, sizes, unit);
  benchmark::internal::Benchmark *run =
      benchmark::RegisterBenchmark((name + "/eigen").c_str(), eigen);
  for (std::int64_t n : sizes)
    run->Arg(n);
  run->Unit(unit);
}
