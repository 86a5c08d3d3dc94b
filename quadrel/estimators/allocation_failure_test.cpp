// Allocation failure: every call either succeeds or lets std::bad_alloc pass,
// and leaves no block behind either way.
#include <cmath>
#include <functional>
#include <new>
#include <string>

#include <gtest/gtest.h>

#include "quadrel/estimators/quality_peak.h"
#include "quadrel/estimators/trihedral.h"
#include "quadrel/fitting/circle_sphere.h"
#include "quadrel/fitting/ellipse.h"
#include "quadrel/fitting/line_plane.h"
#include "quadrel/fitting/paraboloid.h"
#include "quadrel/functions/rearrange.h"
#include "quadrel/linalg/least_squares.h"
#include "quadrel/linalg/svd.h"
#include "quadrel/matrix/operators.h"
#include "quadrel/testing/alloc_counter.h"
#include "quadrel/testing/test_util.h"

namespace {

const double kPi = 3.141592653589793;

// Runs call with the first, second, third ... allocation failing, until a run
// sees no failure. Each run must end in success or std::bad_alloc and give back
// every block it took. call makes its outputs itself, so that they are gone
// when it returns.
void ExpectSafeUnderAllocationFailure(const std::string &name, const std::function<void()> &call) {
  for (std::size_t k = 0;; ++k) {
    const long long before = LiveBlocks();
    bool threw = false;
    AllocationFailureAfter(k);
    try {
      call();
    } catch (const std::bad_alloc &) {
      threw = true;
    }
    const bool fired = AllocationFailureFired();
    AllocationFailureOff();
    EXPECT_EQ(LiveBlocks(), before)
        << name << ": blocks left behind with allocation " << k << " failing";
    EXPECT_EQ(threw, fired) << name << ", allocation " << k;
    if (!fired) {
      EXPECT_GT(k, 0u) << name << " made no allocation to fail";
      break;
    }
    if (k > 100000) {
      ADD_FAILURE() << name << " never got through";
      break;
    }
  }
}

// n points on an ellipse with semi-axes 3 and 2 in a tilted plane, unevenly
// spaced, with a little out-of-plane scatter.
CMatrix EllipsePoints(int n) {
  CMatrix p(3, n);
  for (int k = 0; k < n; ++k) {
    const double t = 2.0 * kPi * std::pow(static_cast<double>(k) / n, 1.5);
    const double u = 3.0 * std::cos(t), v = 2.0 * std::sin(t);
    p(0, k) = u + 1.0;
    p(1, k) = 0.6 * v - 2.0;
    p(2, k) = 0.8 * v + 0.5 + 0.001 * std::cos(5.0 * t);
  }
  return p;
}

}  // namespace

TEST(AllocationFailure, MatrixStorageStaysConsistent) {
  const CMatrix big(1.5, 4, 5);
  const CMatrix bigger(2.5, 6, 6);
  ExpectSafeUnderAllocationFailure("copy", [&] {
    CMatrix copy(big);
    EXPECT_TRUE(SameBits(copy, big));
  });
  ExpectSafeUnderAllocationFailure("assignment", [&] {
    CMatrix small(0.0, 2, 2);
    small = big;  // new blocks
    CMatrix target(bigger);
    target = big;  // blocks reused
    target = bigger;
    EXPECT_TRUE(SameBits(target, bigger));
  });
  // A failed assignment leaves a matrix that can still be assigned and freed.
  CMatrix survivor(0.0, 2, 2);
  AllocationFailureAfter(0);
  EXPECT_THROW(survivor = bigger, std::bad_alloc);
  AllocationFailureOff();
  survivor = big;
  EXPECT_TRUE(SameBits(survivor, big));

  ExpectSafeUnderAllocationFailure("Resize", [&] {
    CMatrix grown(big);
    grown.Resize(7, 8);
    grown.Resize(2, 2);
  });
  ExpectSafeUnderAllocationFailure("GetBuffer2D", [&] {
    double **rows = big.GetBuffer2D();
    for (int i = 0; i < big.GetRows(); ++i)
      ::operator delete(rows[i]);
    ::operator delete(rows);
  });
  ExpectSafeUnderAllocationFailure("operator*", [&] { CMatrix product = big * Transpose(big); });
}

TEST(AllocationFailure, SolversFreeTheirWorkingStorage) {
  TestRandom random(7);
  const CMatrix A = random.Matrix(12, 4);
  const CMatrix b = random.Matrix(12, 2);
  ExpectSafeUnderAllocationFailure("Svd", [&] {
    CMatrix U, S, V;
    Svd(A, U, S, V);
  });
  ExpectSafeUnderAllocationFailure("Svd of a wide matrix", [&] {
    CMatrix U, S, V;
    Svd(Transpose(A), U, S, V);
  });
  ExpectSafeUnderAllocationFailure("Lsq", [&] {
    CMatrix x;
    Lsq(A, b, x);
  });
}

TEST(AllocationFailure, FitsFreeEverythingOnTheWayOut) {
  const CMatrix points = EllipsePoints(24);
  ExpectSafeUnderAllocationFailure("PlaneFit", [&] {
    CMatrix centroid, normal, residuals;
    PlaneFit(points, centroid, normal, residuals);
  });
  ExpectSafeUnderAllocationFailure("CircleFit", [&] {
    CMatrix centre, normal, residuals;
    double radius = 0.0;
    CircleFit(points, centre, normal, radius, residuals);
  });
  ExpectSafeUnderAllocationFailure("SphereFit", [&] {
    CMatrix centre, residuals;
    double radius = 0.0;
    SphereFit(points, centre, radius, residuals);
  });
  ExpectSafeUnderAllocationFailure("EllipseFit", [&] {
    CMatrix foci, normal, residuals;
    double focalSum = 0.0;
    EllipseFit(EllipsePoints(12), foci, normal, focalSum, residuals);
  });
  ExpectSafeUnderAllocationFailure("ParaboloidFit", [&] {
    CMatrix vertex, residuals;
    double a = 0.0, b = 0.0, sign = 0.0;
    ParaboloidFit(points, vertex, a, b, sign, residuals);
  });
}

TEST(AllocationFailure, EstimatorsFreeEverythingOnTheWayOut) {
  // Four points on each of the planes x = 1, y = 2, z = 3.
  const CMatrix onX = MakeMatrix(3, 4, {1, 1, 1, 1, 3, 4, 5, 3, 4, 4, 5, 6});
  const CMatrix onY = MakeMatrix(3, 4, {2, 3, 4, 2, 2, 2, 2, 2, 4, 4, 5, 6});
  const CMatrix onZ = MakeMatrix(3, 4, {2, 3, 4, 2, 3, 4, 5, 3, 3, 3, 3, 3});
  ExpectSafeUnderAllocationFailure("IdealTrihedralFit", [&] {
    CMatrix result;
    IdealTrihedralFit(onX, onY, onZ, result, kPi / 2);
  });

  CMatrix quality(25, 1), positions(2, 25);
  for (int k = 0; k < 25; ++k) {
    const double x = k / 5 - 2.0, y = k % 5 - 2.0;
    positions(0, k) = x;
    positions(1, k) = y;
    quality(k) = 10.0 - (x - 0.3) * (x - 0.3) - 2.0 * (y + 0.2) * (y + 0.2);
  }
  ExpectSafeUnderAllocationFailure("FindQualityPeak", [&] {
    CMatrix peak;
    FindQualityPeak(quality, positions, peak);
  });
}
