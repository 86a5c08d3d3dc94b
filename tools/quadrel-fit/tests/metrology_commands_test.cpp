// quadrel-fit's cylinder and cone commands and its --criterion option.
#include <cmath>
#include <sstream>
#include <string>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "tool_runner.h"

namespace {

using Json = nlohmann::json;

// Points on the surface of revolution of radius r(t) = r0 + t tan(alpha)
// about the z axis through (1, 2, 3), for t in [-5, 5].
std::string Revolution(double r0, double alpha) {
  std::ostringstream text;
  text.precision(17);
  for (int i = 0; i < 60; ++i) {
    const double t = -5.0 + 10.0 * (i % 10) / 9.0, phi = 0.7 * i;
    const double r = r0 + t * std::tan(alpha);
    text << 1.0 + r * std::cos(phi) << ' ' << 2.0 + r * std::sin(phi) << ' ' << 3.0 + t << '\n';
  }
  return text.str();
}

}  // namespace

TEST(MetrologyCommands, CylinderAndConeRecoverExactSurfaces) {
  const Json cylinder = ParseJson(
      RunTool({"cylinder", WriteScratchFile("cylinder.txt", Revolution(4.0, 0.0)), "--json"}));
  EXPECT_NEAR(cylinder["radius"].get<double>(), 4.0, 1e-9);
  EXPECT_NEAR(cylinder["direction"][2].get<double>(), 1.0, 1e-12);
  EXPECT_NEAR(cylinder["axis_point"][0].get<double>(), 1.0, 1e-9);
  EXPECT_NEAR(cylinder["rms"].get<double>(), 0.0, 1e-9);
  const Json cone =
      ParseJson(RunTool({"cone", WriteScratchFile("cone.txt", Revolution(4.0, 0.25)), "--json"}));
  EXPECT_NEAR(cone["half_angle_degrees"].get<double>(), 0.25 * 57.29577951308232, 1e-8);
  EXPECT_NEAR(cone["direction"][2].get<double>(), 1.0, 1e-12);  // towards the wider end
}

TEST(MetrologyCommands, CriterionChoosesGaussianOrMinimumZone) {
  // A slab of half-width 0.01: two crossing edges on its faces, points inside.
  std::ostringstream text;
  text << "-10 0 0.01\n10 0 0.01\n0 -10 -0.01\n0 10 -0.01\n";
  for (int i = 0; i < 30; ++i)
    text << 7.0 * std::sin(i) << ' ' << 7.0 * std::cos(1.3 * i) << ' ' << 0.009 * std::sin(2.1 * i)
         << '\n';
  const std::string plate = WriteScratchFile("plate.txt", text.str());
  const Json zone = ParseJson(RunTool({"plane", plate, "--criterion", "minimum-zone", "--json"}));
  EXPECT_NEAR(zone["flatness"].get<double>(), 0.02, 1e-12);
  const Json gaussian = ParseJson(RunTool({"plane", plate, "--criterion", "gaussian", "--json"}));
  EXPECT_TRUE(gaussian.contains("rms") && !gaussian.contains("flatness"));
  const Json algebraic = ParseJson(RunTool({"plane", plate, "--json"}));
  EXPECT_FALSE(algebraic.contains("rms"));

  ExpectRefused({"sphere", plate, "--criterion", "best"}, "unknown criterion 'best'");
  ExpectRefused({"cylinder", plate, "--criterion", "minimum-zone"},
                "a cylinder has no minimum-zone fit");
}
