#include "quadrel/estimators/trihedral.h"

#include <cmath>
#include <limits>

#include <gtest/gtest.h>

#include "quadrel/functions/rearrange.h"
#include "quadrel/geometry/rotations.h"
#include "quadrel/testing/test_util.h"

namespace {

const double kPi = 3.141592653589793;
const double kNan = std::numeric_limits<double>::quiet_NaN();

// Points on the faces of an ideal trihedral built from its edges, not from its
// face normals: three unit edges leaning equally from +Y, at azimuths 180, 300
// and 60 degrees (x = sin, z = cos), pairwise at edgeAngle. Face i lies opposite
// edge i. The apex sits on the symmetry axis, so the origin is behind every face.
struct Trihedral {
  double edge[3][3], normal[3][3], apex[3];
  CMatrix R;

  Trihedral(double edgeAngle, const CMatrix &angles, double axisDistance)
      : R(Rotation(angles(0), angles(1), angles(2))) {
    const double sinTheta = std::sqrt((1.0 - std::cos(edgeAngle)) / 1.5);
    const double azimuths[3] = {kPi, 5.0 * kPi / 3.0, kPi / 3.0};
    for (int k = 0; k < 3; ++k) {
      edge[k][0] = sinTheta * std::sin(azimuths[k]);
      edge[k][1] = std::sqrt(1.0 - sinTheta * sinTheta);
      edge[k][2] = sinTheta * std::cos(azimuths[k]);
    }
    for (int i = 0; i < 3; ++i) {
      const double *a = edge[(i + 1) % 3], *b = edge[(i + 2) % 3];
      const double n[3] = {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2],
                           a[0] * b[1] - a[1] * b[0]};
      const double length = std::copysign(std::sqrt(n[0] * n[0] + n[1] * n[1] + n[2] * n[2]), n[1]);
      for (int k = 0; k < 3; ++k)
        normal[i][k] = n[k] / length;
    }
    const double offset[3] = {0.5, -0.3, 0.2};
    for (int k = 0; k < 3; ++k)
      apex[k] = axisDistance * R(k, 1) + offset[k];
  }

  CMatrix Apex() const { return MakeCol({apex[0], apex[1], apex[2]}); }

  // m points on face i, moved along its normal by noise times a normal deviate.
  CMatrix Face(int i, int m, double noise, TestRandom &random) const {
    CMatrix points(3, m);
    for (int j = 0; j < m; ++j) {
      const double s = random.Uniform(0.3, 3.0), t = random.Uniform(0.3, 3.0);
      const double h = noise * random.Normal();
      double p[3];
      for (int k = 0; k < 3; ++k)
        p[k] = s * edge[(i + 1) % 3][k] + t * edge[(i + 2) % 3][k] + h * normal[i][k];
      for (int k = 0; k < 3; ++k)
        points(k, j) = apex[k] + R(k, 0) * p[0] + R(k, 1) * p[1] + R(k, 2) * p[2];
    }
    return points;
  }
};

// Fits 120, 80 and 150 points of the faces of trihedral.
int FitTrihedral(const Trihedral &trihedral, double edgeAngle, double noise, CMatrix &result) {
  TestRandom random(2024);
  const CMatrix set1 = trihedral.Face(0, 120, noise, random);
  const CMatrix set2 = trihedral.Face(1, 80, noise, random);
  const CMatrix set3 = trihedral.Face(2, 150, noise, random);
  return IdealTrihedralFit(set1, set2, set3, result, edgeAngle);
}

// Sets on the planes x = 1, y = 2, z = 3.
const CMatrix kOnX = MakeMatrix(3, 4, {1, 1, 1, 1, 3, 4, 3, 5, 4, 4, 6, 7});
const CMatrix kOnY = MakeMatrix(3, 4, {2, 3, 2, 5, 2, 2, 2, 2, 4, 4, 6, 7});
const CMatrix kOnZ = MakeMatrix(3, 4, {2, 3, 2, 5, 3, 4, 6, 5, 3, 3, 3, 3});
const CMatrix kZeros(0.0, 3, 3);

TEST(IdealTrihedralFit, FindsCubeCornerOfCoordinatePlanesInAnyCyclicOrder) {
  CMatrix result(7.0, 4, 2);
  EXPECT_EQ(IdealTrihedralFit(kOnX, kOnY, kOnZ, result, kPi / 2), 0);
  EXPECT_TRUE(Near(
      result, MakeMatrix(3, 3, {1, kPi / 4, 0, 2, std::atan(std::sqrt(2.0)), 0, 3, kPi / 2, 0}),
      1e-12));

  // Same apex and symmetry axis (column 1 of the rotation); the frame turns
  // about the axis.
  const CMatrix *orders[2][3] = {{&kOnY, &kOnZ, &kOnX}, {&kOnZ, &kOnX, &kOnY}};
  for (const auto &order : orders) {
    CMatrix turned;
    EXPECT_EQ(IdealTrihedralFit(*order[0], *order[1], *order[2], turned, kPi / 2), 0);
    EXPECT_TRUE(Near(Col(turned, 0), MakeCol({1, 2, 3}), 1e-12));
    EXPECT_GT(std::fabs(turned(2, 1) - result(2, 1)), 0.1);
    const CMatrix R = Rotation(turned(0, 1), turned(1, 1), turned(2, 1));
    EXPECT_TRUE(Near(Col(R, 1), CMatrix(1.0 / std::sqrt(3.0), 3, 1), 1e-12));
    EXPECT_LT(turned(0, 2), 1e-12);
  }
}

TEST(IdealTrihedralFit, ShortSetGivesItsCodeAndZeros) {
  const CMatrix two = MakeMatrix(3, 2, {1, 1, 3, 4, 4, 4});
  const struct {
    const CMatrix *sets[3];
    double edgeAngle;
    int code;
  } cases[] = {{{&two, &kOnY, &kOnZ}, kPi / 2, 1}, {{&kOnX, &two, &kOnZ}, kPi / 2, 2},
               {{&kOnX, &kOnY, &two}, kPi / 2, 3}, {{&kOnX, &two, &two}, kPi / 2, 2},
               {{&two, &two, &two}, kNan, 1},      {{&kOnX, &kOnY, &two}, 3.0, 3}};
  for (const auto &c : cases) {
    CMatrix result(7.0, 4, 2);
    EXPECT_EQ(IdealTrihedralFit(*c.sets[0], *c.sets[1], *c.sets[2], result, c.edgeAngle), c.code);
    EXPECT_TRUE(SameBits(result, kZeros)) << c.code;
  }
  // Three points per set are enough.
  CMatrix result;
  const CMatrix three = MakeMatrix(3, 3, {1, 1, 1, 3, 4, 3, 4, 4, 6});
  EXPECT_EQ(IdealTrihedralFit(three, kOnY, kOnZ, result, kPi / 2), 0);
}

TEST(IdealTrihedralFit, RecoversPoseWithAndWithoutNoise) {
  const CMatrix angles = MakeCol({0.4, -0.7, 2.0});
  for (double edgeAngle : {kPi / 3, 1.2, kPi / 2, 1.9}) {
    const Trihedral trihedral(edgeAngle, angles, 10.0);
    CMatrix result;
    EXPECT_EQ(FitTrihedral(trihedral, edgeAngle, 0.0, result), 0) << edgeAngle;
    EXPECT_TRUE(Near(Col(result, 0), trihedral.Apex(), 1e-9)) << edgeAngle;
    EXPECT_TRUE(Near(Col(result, 1), angles, 1e-9)) << edgeAngle;
    EXPECT_LT(result(0, 2), 1e-9) << edgeAngle;
  }
  const double sigma = 0.01;
  const Trihedral trihedral(kPi / 3, angles, 6.0);
  CMatrix result;
  EXPECT_EQ(FitTrihedral(trihedral, kPi / 3, sigma, result), 0);
  EXPECT_NEAR(result(0, 2), sigma, 0.15 * sigma);
  EXPECT_TRUE(Near(Col(result, 0), trihedral.Apex(), 5 * sigma));
  EXPECT_TRUE(Near(Col(result, 1), angles, 5 * sigma));
}

TEST(IdealTrihedralFit, DegenerateInputGivesFiveAndZeros) {
  for (double edgeAngle : {0.0, -1.0, 2.0 * kPi / 3.0, 3.0, kNan}) {
    CMatrix result(7.0, 4, 2);
    EXPECT_EQ(IdealTrihedralFit(kOnX, kOnY, kOnZ, result, edgeAngle), 5) << edgeAngle;
    EXPECT_TRUE(SameBits(result, kZeros)) << edgeAngle;
  }
  // Just inside the range the model is nearly flat, but the fit runs.
  CMatrix result;
  EXPECT_NE(IdealTrihedralFit(kOnX, kOnY, kOnZ, result, std::nextafter(2.0 * kPi / 3.0, 0.0)), 5);

  // Three parallel planes give no seed frame.
  const CMatrix onZ1 = MakeMatrix(3, 4, {0, 1, 0, 2, 0, 0, 1, 3, 1, 1, 1, 1});
  const CMatrix onZ2 = MakeMatrix(3, 4, {0, 1, 0, 2, 0, 0, 1, 3, 2, 2, 2, 2});
  EXPECT_EQ(IdealTrihedralFit(onZ1, onZ2, kOnZ, result, kPi / 2), 5);
  EXPECT_TRUE(SameBits(result, kZeros));
}

TEST(IdealTrihedralFit, StopsAfterStepLimitWhenStepsStayAboveTolerance) {
  // The tolerance is absolute. Near 1e11, doubles lie some 1e-5 apart: the best
  // apex falls between two of them and every step tries to move it further
  // than 1e-7.
  const CMatrix angles = MakeCol({0.4, -0.7, 2.0});
  const Trihedral trihedral(kPi / 3, angles, 1e11);
  CMatrix result;
  EXPECT_EQ(FitTrihedral(trihedral, kPi / 3, 0.0, result), 4);
  EXPECT_GT(result(1, 2), 1e-7);
  // The pose is as good as the rounding of the points allows.
  EXPECT_TRUE(Near(Col(result, 0), trihedral.Apex(), 1e-3));
  EXPECT_TRUE(Near(Col(result, 1), angles, 1e-4));
}

}  // namespace
