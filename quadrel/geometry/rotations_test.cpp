#include "quadrel/geometry/rotations.h"

#include <cmath>

#include <gtest/gtest.h>

#include "quadrel/functions/rearrange.h"
#include "quadrel/geometry/vectors.h"
#include "quadrel/matrix/operators.h"
#include "quadrel/testing/test_util.h"

namespace {

double Det3(const CMatrix &R) {
  return R(0, 0) * (R(1, 1) * R(2, 2) - R(1, 2) * R(2, 1)) -
         R(0, 1) * (R(1, 0) * R(2, 2) - R(1, 2) * R(2, 0)) +
         R(0, 2) * (R(1, 0) * R(2, 1) - R(1, 1) * R(2, 0));
}

CMatrix Identity3() {
  return MakeMatrix(3, 3, {1, 0, 0, 0, 1, 0, 0, 0, 1});
}

TEST(Rotation, ZeroAnglesGiveFixedMatrices) {
  // The two-angle form reverses X and Y at zero; the three-angle form does not.
  EXPECT_TRUE(Near(Rotation(0.0, 0.0), MakeMatrix(3, 3, {-1, 0, 0, 0, -1, 0, 0, 0, 1}), 0.0));
  EXPECT_TRUE(Near(Rotation(0.0, 0.0, 0.0), Identity3(), 0.0));
}

TEST(Rotation, TwoAngleFormCarriesItsDirectionOntoZ) {
  TestRandom random(3);
  for (int n = 0; n < 40; ++n) {
    const double a = random.Uniform(-3.1, 3.1), b = random.Uniform(-1.5, 1.5);
    SCOPED_TRACE(testing::Message() << "azimuth " << a << ", elevation " << b);
    const CMatrix R = Rotation(a, b);
    const CMatrix d = Sph2Cart(MakeCol({1.0, a, b}));
    EXPECT_TRUE(Near(R * d, MakeCol({0, 0, 1}), 1e-15));
    // Row 2 is the direction itself, computed by the same products.
    EXPECT_TRUE(SameBits(Row(R, 2), Transpose(d)));
    EXPECT_EQ(R(0, 1), 0.0);
    EXPECT_NEAR(Det3(R), 1.0, 1e-15);
    EXPECT_TRUE(Near(R * Transpose(R), Identity3(), 1e-15));
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
  const CMatrix R = Rotation(alpha, beta, gamma);
  EXPECT_TRUE(Near(R, Rx * Ry * Rz, 1e-15));

  // The two conventions are tied by a reflection of X and Y.
  const double a = 0.8, b = -0.4;
  const CMatrix flip = MakeMatrix(3, 3, {-1, 0, 0, 0, -1, 0, 0, 0, 1});
  EXPECT_TRUE(Near(Rotation(a, b), flip * Rotation(-b, -a, 0.0), 1e-15));
}

TEST(Rotation, DerivativesMatchCentralDifferences) {
  const double h = 1e-6;
  TestRandom random(11);
  for (int n = 0; n < 10; ++n) {
    const double a = random.Uniform(-3, 3), b = random.Uniform(-3, 3), g = random.Uniform(-3, 3);
    SCOPED_TRACE(testing::Message() << "angles " << a << ", " << b << ", " << g);
    const CMatrix dA = (Rotation(a + h, b, g) - Rotation(a - h, b, g)) / (2 * h);
    const CMatrix dB = (Rotation(a, b + h, g) - Rotation(a, b - h, g)) / (2 * h);
    const CMatrix dG = (Rotation(a, b, g + h) - Rotation(a, b, g - h)) / (2 * h);
    EXPECT_TRUE(Near(RotationAlpha(a, b, g), dA, 1e-9));
    EXPECT_TRUE(Near(RotationBeta(a, b, g), dB, 1e-9));
    EXPECT_TRUE(Near(RotationGamma(a, b, g), dG, 1e-9));
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
