#include "quadrel/geometry/vectors.h"

#include <cmath>
#include <cstdio>
#include <limits>
#include <string>

#include <gtest/gtest.h>

#include "quadrel/functions/rearrange.h"
#include "quadrel/geometry/clamp.h"
#include "quadrel/testing/test_util.h"

namespace {

const double kPi = 3.141592653589793;
const double kHalfPi = 1.5707963267948966;

// Runs f with standard output captured and returns what it printed.
template <typename F>
std::string Printed(F f) {
  testing::internal::CaptureStdout();
  f();
  std::fflush(stdout);
  return testing::internal::GetCapturedStdout();
}

TEST(Norm2, AndDotRunOverTheFirstArgumentsLengthInRowOrder) {
  EXPECT_EQ(Norm2(MakeRow({3, 4})), 5.0);
  // Of a 2 x 2 matrix only the first row counts: not the Frobenius norm.
  EXPECT_EQ(Norm2(MakeMatrix(2, 2, {1, 2, 3, 4})), std::sqrt(5.0));
  EXPECT_EQ(Norm2(CMatrix(0, 0)), 0.0);
  EXPECT_EQ(Dot(MakeRow({1, 2, 3}), MakeCol({4, 5, 6})), 32.0);
  EXPECT_EQ(Dot(MakeCol({1, 2}), MakeCol({3, 4, 100})), 11.0);
}

TEST(Angle, ClampsTheQuotientAndDependsOnItsRounding) {
  EXPECT_EQ(Clamp(std::numeric_limits<double>::quiet_NaN(), -1.0, 1.0), -1.0);
  EXPECT_EQ(Clamp(1.0000000000000002, -1.0, 1.0), 1.0);
  EXPECT_EQ(Angle(MakeCol({1, 0, 0}), MakeCol({1, 0, 0})), 0.0);
  // sqrt(2) * sqrt(2) rounds above 2, so the quotient lands just below 1.
  EXPECT_NEAR(Angle(MakeCol({1, 1, 0}), MakeCol({1, 1, 0})), 2.1e-8, 0.1e-8);
  EXPECT_EQ(Angle(MakeCol({1, 0, 0}), MakeRow({0, 3, 0})), kHalfPi);
  // A zero vector makes the quotient NaN, which clamps to -1.
  EXPECT_EQ(Angle(MakeCol({0, 0, 0}), MakeCol({1, 2, 3})), kPi);
  EXPECT_EQ(Angle(MakeCol({1, 2, 3}), MakeCol({0, 0, 0})), kPi);
}

TEST(Cross, IsRightHandedAndAlwaysAColumn) {
  // The middle element is a negated difference, so a zero there is -0.0.
  EXPECT_TRUE(SameBits(Cross(MakeRow({1, 0, 0}), MakeRow({0, 1, 0})), MakeCol({0, -0.0, 1})));
  EXPECT_TRUE(SameBits(Cross(MakeRow({1, 2, 3}), MakeCol({4, 5, 6})), MakeCol({-3, 6, -3})));
}

TEST(Sph2Cart, FollowsTheAxisConvention) {
  struct Case {
    double azimuth, elevation, x, y, z;
  } cases[] = {
      {0, 0, 0, 0, 1},     {kHalfPi, 0, -1, 0, 0},  {-kHalfPi, 0, 1, 0, 0},     {kPi, 0, 0, 0, -1},
      {-kPi, 0, 0, 0, -1}, {0.7, kHalfPi, 0, 1, 0}, {-2.0, -kHalfPi, 0, -1, 0},
  };
  for (const Case &c : cases) {
    SCOPED_TRACE(testing::Message() << "azimuth " << c.azimuth << ", elevation " << c.elevation);
    double x, y, z;
    Sph2Cart(x, y, z, 2.0, c.azimuth, c.elevation);
    EXPECT_TRUE(Near(MakeRow({x, y, z}), MakeRow({2 * c.x, 2 * c.y, 2 * c.z}), 1e-15));
    EXPECT_TRUE(SameBits(Sph2Cart(MakeRow({2.0, c.azimuth, c.elevation})), MakeRow({x, y, z})));
  }
}

TEST(Cart2Sph, InvertsSph2CartInBothForms) {
  TestRandom random(41);
  CMatrix triples(3, 30);
  for (int j = 0; j < triples.GetCols(); ++j) {
    const double r = random.Uniform(0.1, 10), a = random.Uniform(-3.1, 3.1),
                 e = random.Uniform(-1.5, 1.5);
    triples(0, j) = r, triples(1, j) = a, triples(2, j) = e;
    SCOPED_TRACE(testing::Message() << "triple " << r << ", " << a << ", " << e);
    // The same variables may serve as inputs and outputs.
    double u = r, v = a, w = e;
    Sph2Cart(u, v, w, u, v, w);
    Cart2Sph(u, v, w, u, v, w);
    EXPECT_TRUE(Near(MakeCol({u, v, w}), MakeCol({r, a, e}), 1e-13));
  }
  EXPECT_TRUE(Near(Cart2Sph(Sph2Cart(triples)), triples, 1e-13));
  const CMatrix one = MakeCol({2, 0.5, -0.25});
  EXPECT_TRUE(Near(Cart2Sph(Sph2Cart(one)), one, 1e-15));
  EXPECT_TRUE(Near(Cart2Sph(Sph2Cart(Transpose(one))), Transpose(one), 1e-15));
  const CMatrix none = Cart2Sph(Sph2Cart(CMatrix(3, 0)));
  EXPECT_EQ(none.GetRows(), 3);
  EXPECT_EQ(none.GetCols(), 0);
}

TEST(Cart2Sph, SignOfZeroXPicksTheEndOfTheAzimuthRange) {
  double r, a, e;
  Cart2Sph(r, a, e, 0.0, 0.0, -1.0);
  EXPECT_EQ(a, -kPi);
  Cart2Sph(r, a, e, -0.0, 0.0, -1.0);
  EXPECT_EQ(a, kPi);
  EXPECT_EQ(Cart2Sph(MakeRow({0.0, 0.0, -1.0}))(1), -kPi);
  EXPECT_EQ(Cart2Sph(MakeRow({-0.0, 0.0, -1.0}))(1), kPi);
}

TEST(Cart2Sph, ScalarFormReportsDegeneratePointsOnTheConsole) {
  const std::string noAzimuth = "\a\a\a\a\aX and Z both 0 in Cart2Sph()";
  const std::string noRange = "\a\a\a\a\bRange is 0 in Cart2Sph()";
  double r = -1, a = -1, e = -1;
  EXPECT_EQ(Printed([&] { Cart2Sph(r, a, e, 0, 0, 0); }), noAzimuth + noRange);
  EXPECT_TRUE(SameBits(MakeRow({r, a, e}), MakeRow({0, 0, 0})));
  EXPECT_EQ(Printed([&] { Cart2Sph(r, a, e, 0, 2, 0); }), noAzimuth);
  EXPECT_TRUE(SameBits(MakeRow({r, a, e}), MakeRow({2, 0, kHalfPi})));
  EXPECT_EQ(Printed([&] { Cart2Sph(r, a, e, 1, 0, 0); }), "");
  EXPECT_TRUE(SameBits(MakeRow({r, a, e}), MakeRow({1, -kHalfPi, 0})));
}

TEST(Cart2Sph, MatrixFormIsSilentAtDegeneratePoints) {
  CMatrix triples;
  // The origin and two points on the Y axis, one per column.
  const CMatrix points = MakeMatrix(3, 3, {0, 0, 0, 0, 2, -3, 0, 0, 0});
  EXPECT_EQ(Printed([&] { triples = Cart2Sph(points); }), "");
  EXPECT_TRUE(Near(triples, MakeMatrix(3, 3, {0, 2, 3, 0, 0, 0, 0, kHalfPi, -kHalfPi}), 0.0));
}

}  // namespace
