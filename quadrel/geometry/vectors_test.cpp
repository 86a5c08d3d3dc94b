#include "quadrel/geometry/vectors.h"

#include <cmath>
#include <cstdio>
#include <string>

#include <gtest/gtest.h>

#include "quadrel/geometry/internal/clamp.h"
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

TEST(Vectors, NormDotAndCrossRunOverTheFirstArgumentsLengthInRowOrder) {
  EXPECT_EQ(Norm2(MakeRow({3, 4})), 5.0);
  // Of a 2 x 2 matrix only the first row counts: not the Frobenius norm.
  EXPECT_EQ(Norm2(MakeMatrix(2, 2, {1, 2, 3, 4})), std::sqrt(5.0));
  EXPECT_EQ(Dot(MakeCol({1, 2}), MakeRow({3, 4, 100})), 11.0);
  // Always a column; the middle element is a negated difference, so a zero
  // there is -0.0.
  EXPECT_TRUE(SameBits(Cross(MakeRow({1, 0, 0}), MakeRow({0, 1, 0})), MakeCol({0, -0.0, 1})));
  EXPECT_TRUE(SameBits(Cross(MakeRow({1, 2, 3}), MakeCol({4, 5, 6})), MakeCol({-3, 6, -3})));
}

TEST(Angle, ClampsTheQuotientAndDependsOnItsRounding) {
  EXPECT_EQ(Angle(MakeCol({1, 0, 0}), MakeRow({0, 3, 0})), kHalfPi);
  // sqrt(2) * sqrt(2) rounds above 2, so the quotient lands just below 1.
  EXPECT_NEAR(Angle(MakeCol({1, 1, 0}), MakeCol({1, 1, 0})), 2.1e-8, 0.1e-8);
  // A zero vector makes the quotient NaN, which clamps to -1.
  EXPECT_EQ(Angle(MakeCol({0, 0, 0}), MakeCol({1, 2, 3})), kPi);
  EXPECT_EQ(Clamp(1.0000000000000002, -1.0, 1.0), 1.0);
}

TEST(Sph2Cart, FollowsTheAxisConvention) {
  const double cases[][5] = {
      {0, 0, 0, 0, 1},     {kHalfPi, 0, -1, 0, 0},  {-kHalfPi, 0, 1, 0, 0},     {kPi, 0, 0, 0, -1},
      {-kPi, 0, 0, 0, -1}, {0.7, kHalfPi, 0, 1, 0}, {-2.0, -kHalfPi, 0, -1, 0},
  };
  for (const auto &c : cases) {
    SCOPED_TRACE(testing::Message() << "azimuth " << c[0] << ", elevation " << c[1]);
    double x, y, z;
    Sph2Cart(x, y, z, 2.0, c[0], c[1]);
    EXPECT_TRUE(Near(MakeRow({x, y, z}), MakeRow({2 * c[2], 2 * c[3], 2 * c[4]}), 1e-15));
    EXPECT_TRUE(SameBits(Sph2Cart(MakeRow({2.0, c[0], c[1]})), MakeRow({x, y, z})));
  }
}

TEST(Cart2Sph, InvertsSph2CartInBothForms) {
  TestRandom random(41);
  CMatrix triples(3, 30);
  for (int j = 0; j < triples.GetCols(); ++j) {
    const double r = random.Uniform(0.1, 10), a = random.Uniform(-3.1, 3.1),
                 e = random.Uniform(-1.5, 1.5);
    triples.SetCol(MakeCol({r, a, e}), j);
    // The same variables may serve as inputs and outputs.
    double u = r, v = a, w = e;
    Sph2Cart(u, v, w, u, v, w);
    Cart2Sph(u, v, w, u, v, w);
    EXPECT_TRUE(Near(MakeCol({u, v, w}), MakeCol({r, a, e}), 1e-13)) << j;
  }
  EXPECT_TRUE(Near(Cart2Sph(Sph2Cart(triples)), triples, 1e-13));
  // One point as a row stays a row; no points stay 3 x 0.
  const CMatrix one = MakeRow({2, 0.5, -0.25});
  EXPECT_TRUE(Near(Cart2Sph(Sph2Cart(one)), one, 1e-15));
  EXPECT_TRUE(SameBits(Cart2Sph(Sph2Cart(CMatrix(3, 0))), CMatrix(3, 0)));
  // The sign of a zero x picks the end of the azimuth range.
  double r, a, e;
  Cart2Sph(r, a, e, -0.0, 0.0, -1.0);
  EXPECT_EQ(a, kPi);
  EXPECT_EQ(Cart2Sph(MakeRow({0.0, 0.0, -1.0}))(1), -kPi);
}

TEST(Cart2Sph, OnlyTheScalarFormReportsDegeneratePointsOnTheConsole) {
  const std::string noAzimuth = "\a\a\a\a\aX and Z both 0 in Cart2Sph()";
  const std::string noRange = "\a\a\a\a\bRange is 0 in Cart2Sph()";
  double r = -1, a = -1, e = -1;
  EXPECT_EQ(Printed([&] { Cart2Sph(r, a, e, 0, 0, 0); }), noAzimuth + noRange);
  EXPECT_TRUE(SameBits(MakeRow({r, a, e}), MakeRow({0, 0, 0})));
  EXPECT_EQ(Printed([&] { Cart2Sph(r, a, e, 0, 2, 0); }), noAzimuth);
  EXPECT_TRUE(SameBits(MakeRow({r, a, e}), MakeRow({2, 0, kHalfPi})));
  // The origin and two points on the Y axis, one per column.
  CMatrix triples;
  const CMatrix points = MakeMatrix(3, 3, {0, 0, 0, 0, 2, -3, 0, 0, 0});
  EXPECT_EQ(Printed([&] { triples = Cart2Sph(points); }), "");
  EXPECT_TRUE(Near(triples, MakeMatrix(3, 3, {0, 2, 3, 0, 0, 0, 0, kHalfPi, -kHalfPi}), 0.0));
}

}  // namespace
