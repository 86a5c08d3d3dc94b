// Allocation failure: every call either succeeds or lets std::bad_alloc pass,
// and leaves no block behind either way.
#include <cmath>
#include <functional>
#include <new>

#include <gtest/gtest.h>

#include "quadrel/quadrel.h"
#include "quadrel/testing/alloc_counter.h"
#include "quadrel/testing/test_util.h"

TEST(AllocationFailure, EveryCallFreesWhatItTookOnTheWayOut) {
  // n points on a tilted ellipse with semi-axes 3 and 2, unevenly spaced, with
  // a little out-of-plane scatter.
  auto ellipse = [](int n) {
    CMatrix p(3, n);
    for (int k = 0; k < n; ++k) {
      const double t = 2.0 * M_PI * std::pow(static_cast<double>(k) / n, 1.5);
      p(0, k) = 3.0 * std::cos(t) + 1.0;
      p(1, k) = 0.6 * (2.0 * std::sin(t)) - 2.0;
      p(2, k) = 0.8 * (2.0 * std::sin(t)) + 0.5 + 0.001 * std::cos(5.0 * t);
    }
    return p;
  };
  const CMatrix big(1.5, 4, 5), bigger(2.5, 6, 6), points = ellipse(24), few = ellipse(12);
  TestRandom random(7);
  const CMatrix A = random.Matrix(12, 4), b = random.Matrix(12, 2);
  // Four points on each of the planes x = 1, y = 2, z = 3, and a quality
  // surface on a 5 x 5 grid.
  const CMatrix onX = MakeMatrix(3, 4, {1, 1, 1, 1, 3, 4, 5, 3, 4, 4, 5, 6});
  const CMatrix onY = MakeMatrix(3, 4, {2, 3, 4, 2, 2, 2, 2, 2, 4, 4, 5, 6});
  const CMatrix onZ = MakeMatrix(3, 4, {2, 3, 4, 2, 3, 4, 5, 3, 3, 3, 3, 3});
  CMatrix quality(25, 1), positions(2, 25);
  for (int k = 0; k < 25; ++k) {
    const double x = positions(0, k) = k / 5 - 2.0, y = positions(1, k) = k % 5 - 2.0;
    quality(k) = 10.0 - (x - 0.3) * (x - 0.3) - 2.0 * (y + 0.2) * (y + 0.2);
  }
  // Each call gets fresh outputs that are gone when it returns. Assignment
  // makes new blocks, then reuses them.
  using Out = CMatrix &;
  double d1 = 0.0, d2 = 0.0, d3 = 0.0;
  const std::pair<const char *, std::function<void(Out, Out, Out)>> calls[] = {
      {"copy", [&](Out, Out, Out) { EXPECT_TRUE(SameBits(CMatrix(big), big)); }},
      {"assignment",
       [&](Out m, Out t, Out) {
         m = big, t = bigger;
         EXPECT_TRUE(SameBits(t = big, big));
       }},
      {"Resize", [&](Out grown, Out, Out) { grown = big, grown.Resize(7, 8), grown.Resize(2, 2); }},
      {"GetBuffer2D",
       [&](Out, Out, Out) {
         double **rows = big.GetBuffer2D();
         for (int i = 0; i < big.GetRows(); ++i)
           ::operator delete(rows[i]);
         ::operator delete(rows);
       }},
      {"operator*", [&](Out p, Out, Out) { p = big * Transpose(big); }},
      {"Svd", [&](Out U, Out S, Out V) { Svd(A, U, S, V); }},
      {"Svd of a wide matrix", [&](Out U, Out S, Out V) { Svd(Transpose(A), U, S, V); }},
      {"Lsq", [&](Out x, Out, Out) { Lsq(A, b, x); }},
      {"PlaneFit", [&](Out c, Out n, Out r) { PlaneFit(points, c, n, r); }},
      {"CircleFit", [&](Out c, Out n, Out r) { CircleFit(points, c, n, d1, r); }},
      {"SphereFit", [&](Out c, Out, Out r) { SphereFit(points, c, d1, r); }},
      {"EllipseFit", [&](Out f, Out n, Out r) { EllipseFit(few, f, n, d1, r); }},
      {"ParaboloidFit", [&](Out v, Out, Out r) { ParaboloidFit(points, v, d1, d2, d3, r); }},
      {"IdealTrihedralFit",
       [&](Out r, Out, Out) { IdealTrihedralFit(onX, onY, onZ, r, M_PI / 2); }},
      {"FindQualityPeak", [&](Out p, Out, Out) { FindQualityPeak(quality, positions, p); }},
  };
  // Runs each call with the first, second, third ... allocation failing, until
  // a run sees no failure.
  for (const auto &[name, call] : calls) {
    bool fired = true;
    std::size_t k = 0;
    for (; fired && k <= 100000; ++k) {
      const long long before = LiveBlocks();
      bool threw = false;
      AllocationFailureAfter(k);
      try {
        CMatrix out1, out2, out3;
        call(out1, out2, out3);
      } catch (const std::bad_alloc &) {
        threw = true;
      }
      fired = AllocationFailureFired();
      AllocationFailureOff();
      EXPECT_EQ(LiveBlocks(), before)
          << name << ": blocks left with allocation " << k << " failing";
      EXPECT_EQ(threw, fired) << name << ", allocation " << k;
    }
    EXPECT_TRUE(k > 1 && !fired) << name << " made no allocation to fail or never got through";
  }
  // A failed assignment leaves a matrix that can still be assigned and freed.
  CMatrix survivor(0.0, 2, 2);
  AllocationFailureAfter(0);
  EXPECT_THROW(survivor = bigger, std::bad_alloc);
  AllocationFailureOff();
  EXPECT_TRUE(SameBits(survivor = big, big));
}
