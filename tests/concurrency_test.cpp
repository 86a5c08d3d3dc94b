// Calls on distinct matrices are independent: the same fits, decompositions
// and estimators run at once on several threads give, bit for bit, what they
// give on one thread. The ThreadSanitizer build runs this test as well.
#include <cmath>
#include <cstdint>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include <quadrel/quadrel.h>

#include "bit_hash.h"

namespace {

// Points on a tilted circle of radius 2 with a small deterministic wobble.
CMatrix CirclePoints(int n, double phase) {
  CMatrix p(3, n);
  for (int k = 0; k < n; ++k) {
    const double t = 6.283185307179586 * k / n + phase;
    const double w = 1e-3 * std::sin(7.0 * t);
    p(0, k) = 1.0 + 2.0 * std::cos(t) + w;
    p(1, k) = -0.5 + 2.0 * std::sin(t) * 0.8;
    p(2, k) = 0.3 + 2.0 * std::sin(t) * 0.6 - w;
  }
  return p;
}

// One thread's work: every heavy family on matrices of its own.
std::uint64_t Work(int seed) {
  BitHash hash;
  const double phase = 0.1 * seed;
  const CMatrix points = CirclePoints(200 + seed, phase);
  CMatrix c, d, r, n;
  double radius = 0;
  LineFit(points, c, d, r);
  hash.Add(c), hash.Add(d), hash.Add(r);
  PlaneFit(points, c, n, r);
  hash.Add(c), hash.Add(n), hash.Add(r);
  CircleFit(points, c, n, radius, r);
  hash.Add(c), hash.Add(n), hash.Add(radius), hash.Add(r);
  SphereFit(points, c, radius, r);
  hash.Add(c), hash.Add(radius), hash.Add(r);

  CMatrix a(5, 4);
  for (int i = 0; i < 5; ++i)
    for (int j = 0; j < 4; ++j)
      a(i, j) = std::cos(1.0 + i * 4 + j + phase);
  CMatrix u, s, v, x;
  hash.Add(Svd(a, u, s, v));
  hash.Add(u), hash.Add(s), hash.Add(v);
  hash.Add(Lsq(a, Ones(5, 1), x));
  hash.Add(x);
  CMatrix square = Transpose(a) * a;
  hash.Add(Inv(square));
  hash.Add(Det(square));

  // A cube corner at (1, 2, 3): points on the planes x = 1, y = 2, z = 3.
  CMatrix faces[3] = {CMatrix(3, 12), CMatrix(3, 12), CMatrix(3, 12)};
  for (int f = 0; f < 3; ++f)
    for (int k = 0; k < 12; ++k) {
      const double p = 0.5 + 0.25 * (k % 4) + 0.01 * seed, q = 0.5 + 0.3 * (k / 4);
      faces[f](f, k) = 1.0 + f;
      faces[f]((f + 1) % 3, k) = 1.0 + (f + 1) % 3 + p;
      faces[f]((f + 2) % 3, k) = 1.0 + (f + 2) % 3 + q;
    }
  CMatrix pose;
  hash.Add(IdealTrihedralFit(faces[0], faces[1], faces[2], pose, 1.5707963267948966));
  hash.Add(pose);

  CMatrix quality(49, 1), positions(2, 49), peak;
  for (int k = 0; k < 49; ++k) {
    const double gx = k / 7 - 3.0, gy = k % 7 - 3.0;
    positions(0, k) = gx;
    positions(1, k) = gy;
    quality(k) = 100 - 2 * (gx - 0.4) * (gx - 0.4) - 3 * (gy + 0.7) * (gy + 0.7) + 0.01 * seed;
  }
  hash.Add(FindQualityPeak(quality, positions, peak));
  hash.Add(peak);
  return hash.Value();
}

TEST(Concurrency, DistinctMatricesOnManyThreadsGiveTheSingleThreadBits) {
  constexpr int kThreads = 4;
  constexpr int kRounds = 3;
  std::vector<std::uint64_t> expected(kThreads);
  for (int t = 0; t < kThreads; ++t)
    expected[t] = Work(t);

  std::vector<std::uint64_t> got(kThreads * kRounds);
  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t)
    threads.emplace_back([t, &got] {
      for (int round = 0; round < kRounds; ++round)
        got[t * kRounds + round] = Work(t);
    });
  for (std::thread &thread : threads)
    thread.join();
  for (int t = 0; t < kThreads; ++t)
    for (int round = 0; round < kRounds; ++round)
      EXPECT_EQ(got[t * kRounds + round], expected[t]) << "thread " << t << ", round " << round;
}

}  // namespace
