#include "quadrel/geometry/rotations.h"

#include <cmath>

#include <gtest/gtest.h>

#include "quadrel/functions/constructors.h"
#include "quadrel/functions/rearrange.h"
#include "quadrel/geometry/vectors.h"
#include "quadrel/matrix/operators.h"
#include "quadrel/testing/test_util.h"

namespace {

const CMatrix kFlipXY = MakeMatrix(3, 3, {-1, 0, 0, 0, -1, 0, 0, 0, 1});

TEST(Rotation, TwoAngleFormCarriesItsDirectionOntoZ) {
  // At zero it reverses X and Y; the three-angle form does not.
  EXPECT_TRUE(Near(Rotation(0.0, 0.0), kFlipXY, 0.0));
  EXPECT_TRUE(Near(Rotation(0.0, 0.0, 0.0), Eye(3), 0.0));
  TestRandom random(3);
  for (int n = 0; n < 40; ++n) {
    const double a = random.Uniform(-3.1, 3.1), b = random.Uniform(-1.5, 1.5);
    SCOPED_TRACE(testing::Message() << "azimuth " << a << ", elevation " << b);
    const CMatrix R = Rotation(a, b);
    EXPECT_TRUE(Near(R * Sph2Cart(MakeCol({1.0, a, b})), MakeCol({0, 0, 1}), 1e-15));
    EXPECT_NEAR(Dot(Cross(Row(R, 0), Row(R, 1)), Row(R, 2)), 1.0, 1e-15);  // the determinant
    EXPECT_TRUE(Near(R * Transpose(R), Eye(3), 1e-15));
  }
}

TEST(Rotation, ThreeAngleFormIsAProductOfElementaryTurns) {
  const double alpha = 0.3, beta = -1.1, gamma = 2.4;
  const double ca = std::cos(alpha), sa = std::sin(alpha);
  const double cb = std::cos(beta), sb = std::sin(beta);
  const double cg = std::cos(gamma), sg = std::sin(gamma);
  const CMatrix Rx = MakeMatrix(3, 3, {1, 0, 0, 0, ca, sa, 0, -sa, ca});
  const CMatrix Ry = MakeMatrix(3, 3, {cb, 0, -sb, 0, 1, 0, sb, 0, cb});
  const CMatrix Rz = MakeMatrix(3, 3, {cg, sg, 0, -sg, cg, 0, 0, 0, 1});
  EXPECT_TRUE(Near(Rotation(alpha, beta, gamma), Rx * Ry * Rz, 1e-15));
  // The two conventions are tied by a reflection of X and Y.
  EXPECT_TRUE(Near(Rotation(0.8, -0.4), kFlipXY * Rotation(0.4, -0.8, 0.0), 1e-15));
}

TEST(Rotation, DerivativesMatchCentralDifferences) {
  const double h = 1e-6;
  CMatrix (*const derivatives[3])(double, double, double) = {RotationAlpha, RotationBeta,
                                                             RotationGamma};
  TestRandom random(11);
  for (int n = 0; n < 10; ++n) {
    const double angles[3] = {random.Uniform(-3, 3), random.Uniform(-3, 3), random.Uniform(-3, 3)};
    for (int k = 0; k < 3; ++k) {
      double up[3] = {angles[0], angles[1], angles[2]}, down[3] = {up[0], up[1], up[2]};
      up[k] += h;
      down[k] -= h;
      const CMatrix difference =
          (Rotation(up[0], up[1], up[2]) - Rotation(down[0], down[1], down[2])) / (2 * h);
      EXPECT_TRUE(Near(derivatives[k](angles[0], angles[1], angles[2]), difference, 1e-9))
          << "angle " << k << " at " << angles[0] << ", " << angles[1] << ", " << angles[2];
    }
  }
}

TEST(Transform, UnTransformUndoesItInEveryLayout) {
  TestRandom random(5);
  const CMatrix R = Rotation(0.4, -0.9, 1.7);
  const CMatrix x = random.Matrix(3, 1, -5, 5), t = random.Matrix(3, 1, -5, 5);
  const CMatrix y = Transform(R, x, t);
  EXPECT_TRUE(SameBits(y, R * x + t));
  EXPECT_TRUE(Near(UnTransform(R, y, t), x, 1e-14));
  const CMatrix X = random.Matrix(6, 3, -5, 5), T = random.Matrix(6, 3, -5, 5);
  const CMatrix Y = Transform(R, X, T);
  EXPECT_TRUE(SameBits(Y, X * Transpose(R) + T));
  EXPECT_TRUE(Near(UnTransform(R, Y, T), X, 1e-14));
  // One point as a 1 x 3 row is a list of one point: the transposed layout.
  const CMatrix row = Transform(R, Transpose(x), Transpose(t));
  EXPECT_TRUE(Near(row, Transpose(y), 1e-14));
  EXPECT_TRUE(Near(UnTransform(R, row, Transpose(t)), Transpose(x), 1e-14));
}

}  // namespace
