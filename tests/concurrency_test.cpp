// Calls on distinct matrices are independent: the same fits, decompositions
// and estimators run at once on several threads give, bit for bit, what they
// give on one thread. The ThreadSanitizer build runs this test as well.
#include <cmath>
#include <cstdint>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include <quadrel/quadrel.h>

#include "quadrel/testing/bit_hash.h"

namespace {

// One thread's work: every heavy family on matrices of its own, seeded apart.
std::uint64_t Work(int seed) {
  BitHash hash;
  auto add = [&hash](const auto &...values) { (hash.Add(values), ...); };
  // Points on a tilted circle of radius 2 with a small deterministic wobble.
  const int n = 200 + seed;
  CMatrix points(3, n), c, d, r, normal, u, s, v, x, pose, peak;
  for (int k = 0; k < n; ++k) {
    const double t = 6.283185307179586 * k / n + 0.1 * seed, w = 1e-3 * std::sin(7.0 * t);
    points(0, k) = 1.0 + 2.0 * std::cos(t) + w;
    points(1, k) = -0.5 + 2.0 * std::sin(t) * 0.8;
    points(2, k) = 0.3 + 2.0 * std::sin(t) * 0.6 - w;
  }
  double radius = 0;
  LineFit(points, c, d, r);
  add(c, d, r);
  PlaneFit(points, c, normal, r);
  add(c, normal, r);
  CircleFit(points, c, normal, radius, r);
  add(c, normal, radius, r);
  SphereFit(points, c, radius, r);
  add(c, radius, r);

  CMatrix a(5, 4);
  for (int k = 0; k < 20; ++k)
    a(k / 4, k % 4) = std::cos(1.0 + k + 0.1 * seed);
  add(Svd(a, u, s, v), u, s, v, Lsq(a, Ones(5, 1), x), x);
  const CMatrix square = Transpose(a) * a;
  add(Inv(square), Det(square));

  // A cube corner at (1, 2, 3): points on the planes x = 1, y = 2, z = 3; and
  // a quality surface on a 7 x 7 grid.
  CMatrix faces[3] = {CMatrix(3, 12), CMatrix(3, 12), CMatrix(3, 12)};
  for (int f = 0; f < 3; ++f)
    for (int k = 0; k < 12; ++k) {
      faces[f](f, k) = 1.0 + f;
      faces[f]((f + 1) % 3, k) = 1.0 + (f + 1) % 3 + 0.5 + 0.25 * (k % 4) + 0.01 * seed;
      faces[f]((f + 2) % 3, k) = 1.0 + (f + 2) % 3 + 0.5 + 0.3 * (k / 4);
    }
  CMatrix quality(49, 1), positions(2, 49);
  for (int k = 0; k < 49; ++k) {
    const double gx = positions(0, k) = k / 7 - 3.0, gy = positions(1, k) = k % 7 - 3.0;
    quality(k) = 100 - 2 * (gx - 0.4) * (gx - 0.4) - 3 * (gy + 0.7) * (gy + 0.7) + 0.01 * seed;
  }
  add(IdealTrihedralFit(faces[0], faces[1], faces[2], pose, 1.5707963267948966), pose);
  add(FindQualityPeak(quality, positions, peak), peak);
  return hash.Value();
}

TEST(Concurrency, DistinctMatricesOnManyThreadsGiveTheSingleThreadBits) {
  constexpr int kThreads = 4, kRounds = 3;
  std::vector<std::uint64_t> expected(kThreads), got(kThreads * kRounds);
  for (int t = 0; t < kThreads; ++t)
    expected[t] = Work(t);
  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t)
    threads.emplace_back([t, &got] {
      for (int round = 0; round < kRounds; ++round)
        got[t * kRounds + round] = Work(t);
    });
  for (std::thread &thread : threads)
    thread.join();
  for (int k = 0; k < kThreads * kRounds; ++k)
    EXPECT_EQ(got[k], expected[k / kRounds])
        << "thread " << k / kRounds << ", round " << k % kRounds;
}

}  // namespace
