#include "samples.h"

#include <cerrno>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <random>
#include <system_error>

#include <quadrel/quadrel.h>

#include "errors.h"
#include "quadrel/frontend/format.h"

namespace quadrel_fit {

namespace {

using quadrel_frontend::Cross;
using quadrel_frontend::FormatNumber;
using quadrel_frontend::kPi;
using quadrel_frontend::Unit;

// A saved file holds two comment lines and a header before its first point.
constexpr int kFirstPointLine = 4;

// Normally distributed noise by the Box-Muller transform on a Mersenne
// twister, whose sequence the standard fixes, so a seed gives the same data on
// every platform.
class Noise {
 public:
  Noise(double deviation, unsigned seed) : deviation_(deviation), engine_(seed) {}
  double operator()() {
    if (deviation_ == 0.0) return 0.0;
    const double u1 = (static_cast<double>(engine_() >> 11) + 0.5) * 0x1p-53;
    const double u2 = static_cast<double>(engine_() >> 11) * 0x1p-53;
    return deviation_ * std::sqrt(-2.0 * std::log(u1)) * std::cos(2.0 * kPi * u2);
  }

 private:
  double deviation_;
  std::mt19937_64 engine_;
};

class TableBuilder {
 public:
  explicit TableBuilder(Noise &noise) : noise_(noise) {}
  void Add(double a, double b, double c) {
    x_.push_back(a + noise_());
    y_.push_back(b + noise_());
    z_.push_back(c + noise_());
    lines_.push_back(kFirstPointLine + static_cast<int>(lines_.size()));
  }
  void Add(const Vec3 &p) { Add(p[0], p[1], p[2]); }
  PointSet Build(const std::string &name) {
    return PointSet(name, std::move(x_), std::move(y_), std::move(z_), std::move(lines_));
  }

 private:
  Noise &noise_;
  std::vector<double> x_, y_, z_;
  std::vector<std::int64_t> lines_;
};

// p + s * u + t * v
Vec3 Along(const Vec3 &p, double s, const Vec3 &u, double t, const Vec3 &v) {
  return {p[0] + s * u[0] + t * v[0], p[1] + s * u[1] + t * v[1], p[2] + s * u[2] + t * v[2]};
}

std::string Text(const Vec3 &v) {
  return "(" + FormatNumber(v[0]) + ", " + FormatNumber(v[1]) + ", " + FormatNumber(v[2]) + ")";
}

SampleFile Sample(const std::string &shape, const std::string &description, TableBuilder &points,
                  const char *columns = "x y z") {
  return {shape + ".txt", description, columns, points.Build("built-in " + shape)};
}

// Unit normals of the faces of an ideal trihedral in its own frame, symmetric
// about +Y, for the angle between its edges.
std::array<Vec3, 3> TrihedralNormals(double edgeAngle) {
  const double c = std::cos(kPi - 2.0 * std::asin(1.0 / (2.0 * std::cos(edgeAngle / 2.0))));
  const double up = std::sqrt((2.0 * c + 1.0) / 3.0);
  const double side = std::sqrt((1.0 - c) / 2.0);
  return {Vec3{0.0, up, -std::sqrt(2.0 * (1.0 - c) / 3.0)},
          Vec3{-side, up, std::sqrt((1.0 - c) / 6.0)}, Vec3{side, up, std::sqrt((1.0 - c) / 6.0)}};
}

}  // namespace

DemoData MakeDemoData(double noise, unsigned seed) {
  DemoData data;
  data.noise = noise;
  data.seed = seed;
  Noise draw(noise, seed);

  {  // A line through (1, 2, 3), 21 evenly spaced points centred on it.
    SampleShape s;
    s.truth.shape = "line";
    s.truth.centroid = {1.0, 2.0, 3.0};
    s.truth.direction = {1.0 / 3.0, 2.0 / 3.0, 2.0 / 3.0};
    TableBuilder points(draw);
    for (int k = -10; k <= 10; ++k) {
      points.Add(Along(s.truth.centroid, 0.5 * k, s.truth.direction, 0.0, s.truth.direction));
    }
    s.sample = Sample(
        "line",
        "line through " + Text(s.truth.centroid) + " with direction " + Text(s.truth.direction),
        points);
    data.shapes.push_back(std::move(s));
  }
  {  // A plane: a 5 x 5 grid centred on (0.5, -1, 2).
    SampleShape s;
    s.truth.shape = "plane";
    s.truth.centroid = {0.5, -1.0, 2.0};
    s.truth.normal = {2.0 / 3.0, -1.0 / 3.0, 2.0 / 3.0};
    const Vec3 u = Unit(Cross(s.truth.normal, {0.0, 0.0, 1.0}));
    const Vec3 v = Cross(s.truth.normal, u);
    TableBuilder points(draw);
    for (int i = -2; i <= 2; ++i) {
      for (int j = -2; j <= 2; ++j)
        points.Add(Along(s.truth.centroid, 1.5 * i, u, 0.8 * j, v));
    }
    s.sample = Sample(
        "plane", "plane through " + Text(s.truth.centroid) + " with normal " + Text(s.truth.normal),
        points);
    data.shapes.push_back(std::move(s));
  }
  {  // A circle in a tilted plane, 24 unevenly spaced points.
    SampleShape s;
    s.truth.shape = "circle";
    s.truth.centre = {1.0, -2.0, 3.0};
    s.truth.normal = Unit({1.0, 1.0, 1.0});
    s.truth.radius = 2.5;
    const Vec3 u = Unit(Cross(s.truth.normal, {0.0, 0.0, 1.0}));
    const Vec3 v = Cross(s.truth.normal, u);
    TableBuilder points(draw);
    for (int k = 0; k < 24; ++k) {
      const double t = 2.0 * kPi * std::pow(k / 24.0, 1.3);
      points.Add(
          Along(s.truth.centre, s.truth.radius * std::cos(t), u, s.truth.radius * std::sin(t), v));
    }
    s.sample = Sample("circle",
                      "circle with centre " + Text(s.truth.centre) + ", normal " +
                          Text(s.truth.normal) + ", radius 2.5",
                      points);
    data.shapes.push_back(std::move(s));
  }
  {  // A sphere: 40 points spread evenly by a spiral.
    SampleShape s;
    s.truth.shape = "sphere";
    s.truth.centre = {-1.0, 0.5, 2.0};
    s.truth.radius = 4.0;
    TableBuilder points(draw);
    const double golden = kPi * (3.0 - std::sqrt(5.0));
    for (int k = 0; k < 40; ++k) {
      const double height = 1.0 - (k + 0.5) / 20.0;
      const double ring = std::sqrt(1.0 - height * height);
      const Vec3 d = {ring * std::cos(golden * k), height, ring * std::sin(golden * k)};
      points.Add(Along(s.truth.centre, s.truth.radius, d, 0.0, d));
    }
    s.sample =
        Sample("sphere", "sphere with centre " + Text(s.truth.centre) + ", radius 4", points);
    data.shapes.push_back(std::move(s));
  }
  {  // An ellipse with semi-axes 3 and 2 in a tilted, shifted plane, 30 points
     // bunched towards one end of the parameter.
    SampleShape s;
    s.truth.shape = "ellipse";
    s.truth.centre = {2.0, -1.0, 0.5};
    s.truth.normal = {1.0 / 3.0, -2.0 / 3.0, 2.0 / 3.0};
    s.truth.semiMajor = 3.0;
    s.truth.semiMinor = 2.0;
    s.truth.focalSum = 6.0;
    s.truth.focalHalfDistance = std::sqrt(5.0);
    const Vec3 major = Unit({2.0, 1.0, 0.0});
    const Vec3 minor = Cross(s.truth.normal, major);
    s.truth.foci = {Along(s.truth.centre, -s.truth.focalHalfDistance, major, 0.0, minor),
                    Along(s.truth.centre, s.truth.focalHalfDistance, major, 0.0, minor)};
    TableBuilder points(draw);
    for (int k = 0; k < 30; ++k) {
      const double t = 2.0 * kPi * std::pow(k / 30.0, 1.5);
      points.Add(Along(s.truth.centre, 3.0 * std::cos(t), major, 2.0 * std::sin(t), minor));
    }
    s.sample =
        Sample("ellipse",
               "ellipse with centre " + Text(s.truth.centre) + ", normal " + Text(s.truth.normal) +
                   ", semi-axes 3 and 2, major axis along " + Text(major),
               points);
    data.shapes.push_back(std::move(s));
  }
  {  // z = ((x - 0.3) / 1.7)^2 + ((y + 0.2) / 0.9)^2 + 0.8 on a 9 x 9 grid.
    SampleShape s;
    s.truth.shape = "paraboloid";
    s.truth.vertex = {0.3, -0.2, 0.8};
    s.truth.a = 1.7;
    s.truth.b = 0.9;
    s.truth.sign = 1.0;
    TableBuilder points(draw);
    for (int i = -4; i <= 4; ++i) {
      for (int j = -4; j <= 4; ++j) {
        const double x = 0.5 * i;
        const double y = 0.5 * j;
        const double dx = (x - 0.3) / 1.7;
        const double dy = (y + 0.2) / 0.9;
        points.Add(x, y, dx * dx + dy * dy + 0.8);
      }
    }
    s.sample = Sample("paraboloid",
                      "paraboloid z = ((x - 0.3) / 1.7)^2 + ((y + 0.2) / 0.9)^2 + 0.8, vertex "
                      "(0.3, -0.2, 0.8)",
                      points);
    data.shapes.push_back(std::move(s));
  }
  {  // The corner of a cube, turned and moved; 16 points on each face.
    quadrel_frontend::TrihedralFit &truth = data.trihedralTruth;
    truth.edgeAngle = kPi / 2.0;
    truth.angles = {0.3, -0.2, 0.4};
    const CMatrix rotation = Rotation(truth.angles[0], truth.angles[1], truth.angles[2]);
    auto turn = [&rotation](const Vec3 &v) {
      Vec3 turned{};
      for (int i = 0; i < 3; ++i) {
        turned[i] = rotation(i, 0) * v[0] + rotation(i, 1) * v[1] + rotation(i, 2) * v[2];
      }
      return turned;
    };
    truth.axis = turn({0.0, 1.0, 0.0});
    // Far enough along the axis that the origin lies behind all three faces.
    truth.apex = Along({0.5, -0.3, 0.2}, 6.0, truth.axis, 0.0, truth.axis);
    const std::array<Vec3, 3> normals = TrihedralNormals(truth.edgeAngle);
    // The edge shared by faces i and j, running away from the apex towards -Y.
    auto edge = [&normals](int i, int j) {
      Vec3 e = Unit(Cross(normals[static_cast<size_t>(i)], normals[static_cast<size_t>(j)]));
      if (e[1] > 0.0) e = {-e[0], -e[1], -e[2]};
      return e;
    };
    const int bounds[3][2] = {{1, 2}, {0, 2}, {0, 1}};
    for (int face = 0; face < 3; ++face) {
      const Vec3 e1 = turn(edge(face, bounds[face][0]));
      const Vec3 e2 = turn(edge(face, bounds[face][1]));
      TableBuilder points(draw);
      for (int i = 0; i < 4; ++i) {
        for (int j = 0; j < 4; ++j)
          points.Add(Along(truth.apex, 0.5 + 0.5 * i, e1, 0.5 + 0.5 * j, e2));
      }
      const std::string name = "trihedral-" + std::to_string(face + 1);
      data.faces[static_cast<size_t>(face)] = Sample(
          name,
          "face " + std::to_string(face + 1) + " of 3 of a cube corner (edge angle 90 degrees) " +
              "with apex " + Text(truth.apex) + ", angles (0.3, -0.2, 0.4) rad",
          points);
    }
  }
  {  // Quality on a 7 x 7 grid with its maximum between the samples.
    data.peakTruth = {0.4, -0.7};
    TableBuilder samples(draw);
    for (int i = -3; i <= 3; ++i) {
      for (int j = -3; j <= 3; ++j) {
        const double dx = i - 0.4;
        const double dy = j + 0.7;
        samples.Add(i, j, 100.0 - 2.0 * dx * dx - 3.0 * dy * dy + 0.5 * dx * dy);
      }
    }
    data.peak = Sample("peak",
                       "quality 100 - 2 (x - 0.4)^2 - 3 (y + 0.7)^2 + 0.5 (x - 0.4) (y + 0.7), "
                       "peak at (0.4, -0.7)",
                       samples, "x y quality");
  }
  return data;
}

void SaveSamples(const DemoData &data, const std::string &directory) {
  std::error_code error;
  std::filesystem::create_directories(directory, error);
  if (error) throw OutputError("cannot make directory " + directory + ": " + error.message());
  std::vector<const SampleFile *> files;
  for (const SampleShape &s : data.shapes)
    files.push_back(&s.sample);
  for (const SampleFile &f : data.faces)
    files.push_back(&f);
  files.push_back(&data.peak);
  char noise[64];
  std::snprintf(noise, sizeof noise, "%.17g", data.noise);
  for (const SampleFile *f : files) {
    const std::string path = (std::filesystem::path(directory) / f->file).string();
    std::string text = "# " + f->description + "\n";
    text += "# written by quadrel-fit demo --save, noise " + std::string(noise) + ", seed " +
            std::to_string(data.seed) + "\n";
    text += f->columns + "\n";
    char line[100];
    for (int k = 0; k < f->table.count(); ++k) {
      std::snprintf(line, sizeof line, "%.17g %.17g %.17g\n", f->table.at(0, k), f->table.at(1, k),
                    f->table.at(2, k));
      text += line;
    }
    std::FILE *file = std::fopen(path.c_str(), "wb");
    if (file == nullptr) throw OutputError("cannot write " + path + ": " + std::strerror(errno));
    const bool written = std::fwrite(text.data(), 1, text.size(), file) == text.size();
    if (std::fclose(file) != 0 || !written) throw OutputError("cannot write " + path);
  }
}

}  // namespace quadrel_fit
