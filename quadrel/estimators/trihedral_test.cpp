#include "quadrel/estimators/trihedral.h"

#include <cmath>

#include <gtest/gtest.h>

#include "quadrel/functions/rearrange.h"
#include "quadrel/geometry/rotations.h"
#include "quadrel/geometry/vectors.h"
#include "quadrel/matrix/operators.h"
#include "quadrel/testing/test_util.h"

namespace {

const double kPi = 3.141592653589793;

// An ideal trihedral built from its edges: three unit edges leaning equally
// from +Y at azimuths pi, 5 pi / 3 and pi / 3, pairwise at edgeAngle, moved
// by angles and an apex on the turned symmetry axis. Face i lies opposite
// edge i; the origin is behind every face.
struct Trihedral {
  CMatrix edges, normals, R, apex;

  Trihedral(double edgeAngle, const CMatrix &angles, double axisDistance)
      : edges(3, 3), normals(3, 3), R(Rotation(angles(0), angles(1), angles(2))) {
    const double sinTheta = std::sqrt((1.0 - std::cos(edgeAngle)) / 1.5);
    for (int k = 0; k < 3; ++k) {
      const double azimuth = kPi * (1.0 + 2.0 * k / 3.0);
      edges.SetCol(MakeCol({sinTheta * std::sin(azimuth), std::sqrt(1.0 - sinTheta * sinTheta),
                            sinTheta * std::cos(azimuth)}),
                   k);
    }
    for (int i = 0; i < 3; ++i) {
      const CMatrix n = Cross(Col(edges, (i + 1) % 3), Col(edges, (i + 2) % 3));
      normals.SetCol(n / std::copysign(Norm2(n), n(1)), i);
    }
    apex = Col(R, 1) * axisDistance + MakeCol({0.5, -0.3, 0.2});
  }

  // Fits 120, 80 and 150 points of the faces, moved along the face normals by
  // noise times a normal deviate.
  int Fit(double edgeAngle, double noise, CMatrix &result) const {
    TestRandom random(2024);
    CMatrix sets[3];
    const int counts[3] = {120, 80, 150};
    for (int i = 0; i < 3; ++i) {
      sets[i] = CMatrix(3, counts[i]);
      for (int j = 0; j < counts[i]; ++j) {
        const double s = random.Uniform(0.3, 3.0), t = random.Uniform(0.3, 3.0);
        const CMatrix p = Col(edges, (i + 1) % 3) * s + Col(edges, (i + 2) % 3) * t +
                          Col(normals, i) * (noise * random.Normal());
        sets[i].SetCol(R * p + apex, j);
      }
    }
    return IdealTrihedralFit(sets[0], sets[1], sets[2], result, edgeAngle);
  }
};

// Sets on the planes x = 1, y = 2, z = 3.
const CMatrix kOnX = MakeMatrix(3, 4, {1, 1, 1, 1, 3, 4, 3, 5, 4, 4, 6, 7});
const CMatrix kOnY = MakeMatrix(3, 4, {2, 3, 2, 5, 2, 2, 2, 2, 4, 4, 6, 7});
const CMatrix kOnZ = MakeMatrix(3, 4, {2, 3, 2, 5, 3, 4, 6, 5, 3, 3, 3, 3});

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
  }
}

TEST(IdealTrihedralFit, ShortSetsAndDegenerateInputGiveTheirCodeAndZeros) {
  const CMatrix two = MakeMatrix(3, 2, {1, 1, 3, 4, 4, 4});
  // Three parallel planes give no seed frame.
  const CMatrix onZ1 = MakeMatrix(3, 4, {0, 1, 0, 2, 0, 0, 1, 3, 1, 1, 1, 1});
  const CMatrix onZ2 = MakeMatrix(3, 4, {0, 1, 0, 2, 0, 0, 1, 3, 2, 2, 2, 2});
  CMatrix infinite = kOnZ;
  infinite(0, 0) = -INFINITY;
  const struct {
    const CMatrix *sets[3];
    double edgeAngle;
    int code;
  } cases[] = {// The first short set wins, and counts come before anything giving 5.
               {{&two, &kOnY, &kOnZ}, kPi / 2, 1},
               {{&kOnX, &two, &two}, kPi / 2, 2},
               {{&kOnX, &kOnY, &two}, kPi / 2, 3},
               {{&two, &two, &two}, NAN, 1},
               {{&kOnX, &kOnY, &kOnZ}, 0.0, 5},
               {{&kOnX, &kOnY, &kOnZ}, 2 * kPi / 3, 5},
               {{&kOnX, &kOnY, &kOnZ}, NAN, 5},
               {{&onZ1, &onZ2, &kOnZ}, kPi / 2, 5},
               // A non-finite point is degenerate input, but a short set comes first.
               {{&kOnX, &kOnY, &infinite}, kPi / 2, 5},
               {{&kOnX, &two, &infinite}, kPi / 2, 2},
               {{&kOnX, &kOnY, &kOnZ}, INFINITY, 5}};
  for (const auto &c : cases) {
    CMatrix result(7.0, 4, 2);
    EXPECT_EQ(IdealTrihedralFit(*c.sets[0], *c.sets[1], *c.sets[2], result, c.edgeAngle), c.code);
    EXPECT_TRUE(SameBits(result, CMatrix(0.0, 3, 3))) << c.code << " at " << c.edgeAngle;
  }
  // Three points per set are enough, and just inside the angle range the fit
  // runs although the model is nearly flat.
  CMatrix result;
  const CMatrix three = MakeMatrix(3, 3, {1, 1, 1, 3, 4, 3, 4, 4, 6});
  EXPECT_EQ(IdealTrihedralFit(three, kOnY, kOnZ, result, kPi / 2), 0);
  EXPECT_NE(IdealTrihedralFit(kOnX, kOnY, kOnZ, result, std::nextafter(2.0 * kPi / 3.0, 0.0)), 5);
}

TEST(IdealTrihedralFit, RecoversPoseWithAndWithoutNoiseOrStopsAtTheStepLimit) {
  const CMatrix angles = MakeCol({0.4, -0.7, 2.0});
  for (double edgeAngle : {kPi / 3, 1.2, kPi / 2, 1.9}) {
    const Trihedral trihedral(edgeAngle, angles, 10.0);
    CMatrix result;
    EXPECT_EQ(trihedral.Fit(edgeAngle, 0.0, result), 0) << edgeAngle;
    EXPECT_TRUE(Near(Col(result, 0), trihedral.apex, 1e-9)) << edgeAngle;
    EXPECT_TRUE(Near(Col(result, 1), angles, 1e-9)) << edgeAngle;
    EXPECT_LT(result(0, 2), 1e-9) << edgeAngle;
  }
  const double sigma = 0.01;
  const Trihedral trihedral(kPi / 3, angles, 6.0);
  CMatrix result;
  EXPECT_EQ(trihedral.Fit(kPi / 3, sigma, result), 0);
  EXPECT_NEAR(result(0, 2), sigma, 0.15 * sigma);
  EXPECT_TRUE(Near(Col(result, 0), trihedral.apex, 5 * sigma));
  EXPECT_TRUE(Near(Col(result, 1), angles, 5 * sigma));
  // The step tolerance is absolute. Near 1e11 doubles lie some 1e-5 apart, so
  // every step tries to move the apex further than 1e-7 until the step limit.
  const Trihedral far(kPi / 3, angles, 1e11);
  EXPECT_EQ(far.Fit(kPi / 3, 0.0, result), 4);
  EXPECT_GT(result(1, 2), 1e-7);
  EXPECT_TRUE(Near(Col(result, 0), far.apex, 1e-3));
  EXPECT_TRUE(Near(Col(result, 1), angles, 1e-4));
}

}  // namespace
