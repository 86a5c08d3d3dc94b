// Built-in sample data: exact shapes with known parameters, optionally with
// normally distributed noise from a fixed seed. The demo fits them, and
// `demo --save` writes them as point files.
#ifndef QUADREL_FIT_SAMPLES_H
#define QUADREL_FIT_SAMPLES_H

#include <array>
#include <string>
#include <vector>

#include "point_input.h"
#include "quadrel/frontend/trihedral_fit.h"
#include "quadrel/frontend/vec3.h"

namespace quadrel_fit {

// One point file's worth of samples.
struct SampleFile {
  std::string file;         // file name when saved: "circle.txt"
  std::string description;  // the true shape, in words, for the file's comment
  std::string columns;      // header line: "x y z" or "x y quality"
  PointSet table;
};

using quadrel_frontend::Vec3;

// The true parameters of a sample shape, by the names of the fit's fields.
// Which members are set depends on the shape.
struct ShapeTruth {
  std::string shape;           // "line", "plane", ...
  Vec3 centroid{};             // line, plane
  Vec3 direction{};            // line
  Vec3 normal{};               // plane, circle, ellipse
  Vec3 centre{};               // circle, sphere, ellipse
  double radius = 0;           // circle, sphere
  std::array<Vec3, 2> foci{};  // ellipse, with the focal sum, semi-axes and
  double focalSum = 0;         // half the distance of the foci
  double semiMajor = 0;
  double semiMinor = 0;
  double focalHalfDistance = 0;
  Vec3 vertex{};  // paraboloid
  double a = 0;
  double b = 0;
  double sign = 0;
};

struct SampleShape {
  ShapeTruth truth;
  SampleFile sample;
};

struct DemoData {
  double noise = 0.0;
  unsigned seed = 0;
  std::vector<SampleShape> shapes;  // line, plane, circle, sphere, ellipse, paraboloid
  quadrel_frontend::TrihedralFit trihedralTruth;  // apex, angles, edge angle
  std::array<SampleFile, 3> faces;
  std::array<double, 2> peakTruth{};
  SampleFile peak;
};

// The samples with noise of standard deviation `noise` on every number, drawn
// from a generator seeded with `seed`. With noise 0 the points lie on their
// shapes to rounding.
DemoData MakeDemoData(double noise, unsigned seed);

// Writes every sample file into directory (made if missing). Numbers are
// written with 17 significant digits, so they read back exactly.
void SaveSamples(const DemoData &data, const std::string &directory);

}  // namespace quadrel_fit

#endif  // QUADREL_FIT_SAMPLES_H
