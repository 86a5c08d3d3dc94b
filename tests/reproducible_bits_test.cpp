// The exact bits of a fixed battery of calls, across every family, hash to the
// value stored in reproducible_bits.txt. Every compiler and build type that CI
// uses (g++ and clang++, Release and Debug) must give the stored value: the
// order of floating-point operations is part of the interface. The same
// battery runs on several threads at once.
//
// After a deliberate change of results, store the new value printed by the
// failing test, and say why in the commit.
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include <quadrel/quadrel.h>

#include "quadrel/testing/bit_hash.h"

namespace {

// Deterministic test data without any library call: x_k = sin(k * 12.9898 + s).
CMatrix Data(int rows, int cols, double seed, double scale = 1.0) {
  CMatrix m(rows, cols);
  int k = 0;
  for (int i = 0; i < rows; ++i)
    for (int j = 0; j < cols; ++j, ++k)
      m(i, j) = scale * std::sin(k * 12.9898 + seed);
  return m;
}

CMatrix OnEllipse(int n) {
  CMatrix p(3, n);
  for (int k = 0; k < n; ++k) {
    const double t = 6.283185307179586 * std::pow(k / static_cast<double>(n), 1.5);
    const double x = 3.0 * std::cos(t), y = 2.0 * std::sin(t);
    p(0, k) = 1.0 + 0.8 * x;
    p(1, k) = -2.0 + y;
    p(2, k) = 0.5 + 0.6 * x;
  }
  return p;
}

std::uint64_t MatrixFamily(double shift) {
  BitHash h;
  CMatrix a = Data(4, 3, 0.1 + shift), b = Data(4, 3, 0.2 + shift), c = Data(3, 5, 0.3 + shift);
  h.Add(a + b), h.Add(a - b), h.Add(a ^ b), h.Add(a * c), h.Add(2.5 - a), h.Add(a / 3.0);
  h.Add((a > 0.0) && (b < 0.5)), h.Add((a == 0.0) || (b != 0.0));
  CMatrix d = a;
  d += b, d -= 0.25, d *= 1.5, d /= 7.0, d *= c;
  h.Add(d);
  CMatrix e = Data(12, 2, 0.4 + shift), index;
  e.SwapCols(0, 1);
  e.Sort(index);
  h.Add(e), h.Add(index);
  CMatrix f = Data(3, 4, 0.5 + shift);
  f.Resize(4, 3);
  f.Transpose();
  h.Add(f);
  return h.Value();
}

std::uint64_t FunctionsFamily(double shift) {
  BitHash h;
  CMatrix a = Data(6, 3, 1.1 + shift);
  h.Add(Seq(0.0, 1.0, 0.1)), h.Add(Linspace(-1.0, 2.0, 7)), h.Add(Eye(3, 4)), h.Add(Diag(a));
  h.Add(Sum(a)), h.Add(Mean(a)), h.Add(Std(a)), h.Add(Min(a)), h.Add(Max(a)), h.Add(Abs(a));
  CMatrix mean, index;
  h.Add(Std(Data(1, 9, 1.2 + shift), mean)), h.Add(mean);
  h.Add(Max(a, index)), h.Add(index);
  h.Add(Sort(Data(1, 11, 1.3 + shift), index)), h.Add(index);
  h.Add(Find(a > 0.0, index)), h.Add(index);
  return h.Value();
}

std::uint64_t LinalgFamily(double shift) {
  BitHash h;
  CMatrix a = Data(7, 4, 2.1 + shift), u, s, v, x;
  h.Add(Svd(a, u, s, v)), h.Add(u), h.Add(s), h.Add(v);
  h.Add(Cond(Data(5, 5, 2.2 + shift)));
  h.Add(Lsq(a, Data(7, 2, 2.3 + shift), x)), h.Add(x);
  CMatrix square = Data(4, 4, 2.4 + shift), l, up, perm;
  Lu(square, l, up, perm);
  h.Add(l), h.Add(up), h.Add(perm);
  Lu(square, l, up);
  h.Add(l), h.Add(up);
  h.Add(Det(square)), h.Add(Inv(square));
  CMatrix xs = Linspace(-1.0, 2.0, 9), ys = (xs ^ xs) * 0.5 + xs;
  CMatrix p = Polyfit(xs, ys + Data(9, 1, 2.5 + shift, 1e-3), 2);
  h.Add(p), h.Add(Polyval(p, Data(2, 3, 2.6 + shift)));
  return h.Value();
}

std::uint64_t GeometryFamily(double shift) {
  BitHash h;
  CMatrix a = Data(3, 1, 3.1 + shift), b = Data(3, 1, 3.2 + shift), c = Data(3, 1, 3.3 + shift),
          d = Data(3, 1, 3.4 + shift);
  h.Add(Norm2(a)), h.Add(Dot(a, b)), h.Add(Angle(a, b)), h.Add(Cross(a, b));
  double x = 0, y = 0, z = 0;
  Sph2Cart(x, y, z, 2.0, 0.3, -0.4);
  h.Add(x), h.Add(y), h.Add(z);
  Cart2Sph(x, y, z, 0.3, -1.2, 2.5);
  h.Add(x), h.Add(y), h.Add(z);
  CMatrix triples = Abs(Data(3, 4, 3.5 + shift));
  h.Add(Sph2Cart(triples)), h.Add(Cart2Sph(Data(3, 4, 3.6 + shift))),
      h.Add(Cart2Sph(Data(1, 3, 3.7 + shift)));
  h.Add(Rotation(0.3, -0.2)), h.Add(Rotation(0.1, 0.2, 0.3));
  h.Add(RotationAlpha(0.1, 0.2, 0.3)), h.Add(RotationBeta(0.1, 0.2, 0.3));
  h.Add(RotationGamma(0.1, 0.2, 0.3));
  CMatrix r = Rotation(0.4, 0.5, 0.6), pts = Data(5, 3, 3.8 + shift),
          offset = Data(5, 3, 3.9 + shift);
  h.Add(Transform(r, pts, offset)), h.Add(UnTransform(r, pts, offset));
  h.Add(Transform(r, a, b)), h.Add(UnTransform(r, a, b));
  CMatrix out1, out2;
  h.Add(LinePointDist(a, b, c)), h.Add(PlanePointDist(a, b, c));
  h.Add(PlaneLineDist(a, b, c, d)), h.Add(PlanePlaneDist(a, b, c, d));
  h.Add(LinePointInt(a, b, c, out1)), h.Add(out1);
  h.Add(PlanePointInt(a, b, c, out1)), h.Add(out1);
  h.Add(PlaneLineInt(a, b, c, d, out1)), h.Add(out1);
  h.Add(PlanePlaneInt(a, b, c, d, out1, out2)), h.Add(out1), h.Add(out2);
  return h.Value();
}

std::uint64_t FittingFamily(double shift) {
  BitHash h;
  CMatrix points = OnEllipse(30) + Data(3, 30, 4.1 + shift, 1e-3);
  CMatrix c, n, r, foci, vertex;
  double radius = 0, sum = 0, pa = 0, pb = 0, sign = 0;
  LineFit(points, c, n, r), h.Add(c), h.Add(n), h.Add(r);
  PlaneFit(points, c, n, r), h.Add(c), h.Add(n), h.Add(r);
  CircleFit(points, c, n, radius, r), h.Add(c), h.Add(n), h.Add(radius), h.Add(r);
  SphereFit(points + Data(3, 30, 4.2 + shift, 0.5), c, radius, r), h.Add(c), h.Add(radius),
      h.Add(r);
  EllipseFit(points, foci, n, sum, r), h.Add(foci), h.Add(n), h.Add(sum), h.Add(r);
  CMatrix bowl = Data(3, 40, 4.3 + shift, 2.0);
  for (int k = 0; k < 40; ++k) {
    const double px = bowl(0, k) - 0.3, py = bowl(1, k) + 0.2;
    bowl(2, k) = px * px / 2.89 + py * py / 0.81 + 0.8 + 1e-3 * std::cos(k);
  }
  ParaboloidFit(bowl, vertex, pa, pb, sign, r);
  h.Add(vertex), h.Add(pa), h.Add(pb), h.Add(sign), h.Add(r);
  return h.Value();
}

std::uint64_t EstimatorsFamily(double shift) {
  BitHash h;
  CMatrix faces[3] = {CMatrix(3, 9), CMatrix(3, 9), CMatrix(3, 9)};
  for (int f = 0; f < 3; ++f)
    for (int k = 0; k < 9; ++k) {
      faces[f](f, k) = 1.0 + f + 1e-3 * std::sin(k + 3.0 * f + shift);
      faces[f]((f + 1) % 3, k) = 1.0 + (f + 1) % 3 + 0.5 + 0.4 * (k % 3);
      faces[f]((f + 2) % 3, k) = 1.0 + (f + 2) % 3 + 0.5 + 0.3 * (k / 3);
    }
  CMatrix pose;
  h.Add(IdealTrihedralFit(faces[0], faces[1], faces[2], pose, 1.5707963267948966));
  h.Add(pose);
  CMatrix quality(49, 1), positions(2, 49), peak;
  for (int k = 0; k < 49; ++k) {
    const double gx = k / 7 - 3.0, gy = k % 7 - 3.0;
    positions(0, k) = gx, positions(1, k) = gy;
    quality(k) = 100 - 2 * (gx - 0.4) * (gx - 0.4) - 3 * (gy + 0.7) * (gy + 0.7) +
                 0.5 * (gx - 0.4) * (gy + 0.7) + 0.05 * std::sin(3.0 * k + shift);
  }
  h.Add(FindQualityPeak(quality, positions, peak)), h.Add(peak);
  return h.Value();
}

std::string Hex(std::uint64_t value) {
  char text[17];
  std::snprintf(text, sizeof text, "%016llx", static_cast<unsigned long long>(value));
  return text;
}

// The hash of the whole battery on data moved by shift; shift 0 gives the
// stored value. perFamily receives each family's hash.
std::uint64_t Battery(double shift, std::string &perFamily) {
  BitHash all;
  const std::uint64_t families[] = {MatrixFamily(shift),  FunctionsFamily(shift),
                                    LinalgFamily(shift),  GeometryFamily(shift),
                                    FittingFamily(shift), EstimatorsFamily(shift)};
  for (std::uint64_t value : families) {
    all.Add(CMatrix(static_cast<double>(value >> 32), 1, 1));
    all.Add(CMatrix(static_cast<double>(value & 0xffffffffULL), 1, 1));
    perFamily += " " + Hex(value);
  }
  return all.Value();
}

TEST(ReproducibleBits, BatteryHashesToTheStoredValue) {
  std::string perFamily;
  const std::uint64_t value = Battery(0.0, perFamily);
  std::ifstream stored(QUADREL_BITS_FILE);
  std::string expected;
  ASSERT_TRUE(std::getline(stored, expected)) << "cannot read " << QUADREL_BITS_FILE;
  EXPECT_EQ(Hex(value), expected)
      << "per family (matrix, functions, linalg, geometry, fitting, estimators):" << perFamily;
}

// Calls on distinct matrices are independent: the battery on data of its own
// on each of several threads at once gives, bit for bit, what it gives on one
// thread. The ThreadSanitizer build runs this test as well.
TEST(Concurrency, DistinctMatricesOnManyThreadsGiveTheSingleThreadBits) {
  constexpr int kThreads = 4, kRounds = 3;
  std::vector<std::uint64_t> expected(kThreads), got(kThreads * kRounds);
  std::string unused;
  for (int t = 0; t < kThreads; ++t)
    expected[t] = Battery(0.1 * t, unused);
  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t)
    threads.emplace_back([t, &got] {
      std::string perFamily;
      for (int round = 0; round < kRounds; ++round)
        got[t * kRounds + round] = Battery(0.1 * t, perFamily);
    });
  for (std::thread &thread : threads)
    thread.join();
  for (int k = 0; k < kThreads * kRounds; ++k)
    EXPECT_EQ(got[k], expected[k / kRounds])
        << "thread " << k / kRounds << ", round " << k % kRounds;
}

}  // namespace
