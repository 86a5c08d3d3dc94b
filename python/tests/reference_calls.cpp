// One call of every function the Python package reaches, made in C++ on data
// that the Python test rebuilds bit for bit. Prints a line per call: its name,
// then the bits of every output number as 16 hex digits (matrices row by row,
// outputs in the order of the C++ arguments). test_same_bits.py makes the same
// calls through the package and compares.
#include <cinttypes>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <initializer_list>
#include <string>
#include <vector>

#include <quadrel/quadrel.h>

namespace {

// x_k = sin(k * 12.9898 + seed), k counting along the rows.
CMatrix Data(int rows, int cols, double seed) {
  CMatrix m(rows, cols);
  for (int i = 0, k = 0; i < rows; ++i)
    for (int j = 0; j < cols; ++j, ++k)
      m(i, j) = std::sin(k * 12.9898 + seed);
  return m;
}

class Line {
 public:
  explicit Line(const char *name) : text_(name) {}
  Line &operator<<(double x) {
    std::uint64_t bits;
    std::memcpy(&bits, &x, sizeof bits);
    char hex[20];
    std::snprintf(hex, sizeof hex, " %016" PRIx64, bits);
    text_ += hex;
    return *this;
  }
  Line &operator<<(const CMatrix &m) {
    for (int i = 0; i < m.GetRows(); ++i)
      for (int j = 0; j < m.GetCols(); ++j)
        *this << m(i, j);
    return *this;
  }
  ~Line() { std::printf("%s\n", text_.c_str()); }

 private:
  std::string text_;
};

void Fits() {
  const CMatrix p = Data(3, 30, 4.1) * 0.2 + Data(3, 30, 0.7);
  CMatrix a, b, r;
  double x = 0, y = 0, z = 0;
  LineFit(p, a, b, r), Line("fit_line") << a << b << r;
  PlaneFit(p, a, b, r), Line("fit_plane") << a << b << r;
  CircleFit(p, a, b, x, r), Line("fit_circle") << a << b << x << r;
  SphereFit(p, a, x, r), Line("fit_sphere") << a << x << r;
  EllipseFit(p, a, b, x, r), Line("fit_ellipse") << a << b << x << r;
  ParaboloidFit(p, a, x, y, z, r), Line("fit_paraboloid") << a << x << y << z << r;
}

void Estimators() {
  CMatrix faces[3] = {CMatrix(3, 9), CMatrix(3, 9), CMatrix(3, 9)};
  for (int f = 0; f < 3; ++f)
    for (int k = 0; k < 9; ++k) {
      faces[f](f, k) = 1.0 + f + 1e-3 * std::sin(k + 3.0 * f);
      faces[f]((f + 1) % 3, k) = 1.5 + (f + 1) % 3 + 0.4 * (k % 3);
      faces[f]((f + 2) % 3, k) = 1.5 + (f + 2) % 3 + 0.3 * (k / 3);
    }
  CMatrix pose, peak;
  const int code = IdealTrihedralFit(faces[0], faces[1], faces[2], pose, 1.5707963267948966);
  Line("fit_trihedral") << code << pose;
  const CMatrix positions = Data(2, 30, 5.1) * 3.0;
  CMatrix quality(30, 1);
  for (int k = 0; k < 30; ++k)
    quality(k, 0) =
        10.0 - positions(0, k) * positions(0, k) - 2.0 * positions(1, k) + 0.1 * std::sin(3.0 * k);
  Line("find_quality_peak") << FindQualityPeak(quality, positions, peak) << peak;
}

void Linalg() {
  const CMatrix a = Data(7, 4, 2.1), square = Data(4, 4, 2.4);
  CMatrix u, s, v, x, l, up, perm;
  const double c = Svd(a, u, s, v);
  Line("svd") << u << s << v << c;
  Line("cond") << Cond(Data(3, 5, 2.2));
  const double lc = Lsq(a, Data(7, 2, 2.3), x);
  Line("lsq") << x << lc;
  const CMatrix xs = Data(9, 1, 2.5), p = Polyfit(xs, Data(9, 1, 2.6), 3);
  Line("polyfit") << p;
  Line("polyval") << Polyval(p, Data(2, 3, 2.7));
  Lu(square, l, up, perm), Line("lu") << l << up << perm;
  Lu(square, l, up), Line("lu_permuted") << l << up;
  Line("det") << Det(square);
  Line("inv") << Inv(square);
}

void Geometry() {
  const CMatrix a = Data(3, 1, 3.1), b = Data(3, 1, 3.2), c = Data(3, 1, 3.3), d = Data(3, 1, 3.4);
  Line("norm2") << Norm2(a);
  Line("dot") << Dot(a, b);
  Line("angle") << Angle(a, b);
  Line("cross") << Cross(a, b);
  double x = 0, y = 0, z = 0;
  Sph2Cart(x, y, z, 2.0, 0.3, -0.4), Line("sph2cart") << x << y << z;
  Cart2Sph(x, y, z, 0.3, -1.2, 2.5), Line("cart2sph") << x << y << z;
  Line("sph2cart_array") << Sph2Cart(Data(3, 4, 3.5));
  Line("cart2sph_array") << Cart2Sph(Data(3, 4, 3.6));
  Line("rotation_to_z") << Rotation(0.3, -0.2);
  Line("rotation") << Rotation(0.1, 0.2, 0.3);
  Line("rotation_alpha") << RotationAlpha(0.1, 0.2, 0.3);
  Line("rotation_beta") << RotationBeta(0.1, 0.2, 0.3);
  Line("rotation_gamma") << RotationGamma(0.1, 0.2, 0.3);
  const CMatrix r = Rotation(0.4, 0.5, 0.6), pts = Data(5, 3, 3.8), shift = Data(5, 3, 3.9);
  Line("transform") << Transform(r, pts, shift) << Transform(r, a, b);
  Line("untransform") << UnTransform(r, pts, shift) << UnTransform(r, a, b);
  Line("line_point_dist") << LinePointDist(a, b, c);
  Line("plane_point_dist") << PlanePointDist(a, b, c);
  Line("plane_line_dist") << PlaneLineDist(a, b, c, d);
  Line("plane_plane_dist") << PlanePlaneDist(a, b, c, d);
  CMatrix out1;
  const double d1 = LinePointInt(a, b, c, out1);
  Line("line_point_int") << d1 << out1;
  const double d2 = PlanePointInt(a, b, c, out1);
  Line("plane_point_int") << d2 << out1;
  // Outputs that may stay untouched start empty, as None in Python.
  CMatrix crossing(0, 0), point(0, 0), direction(0, 0);
  const double d3 = PlaneLineInt(a, b, c, d, crossing);
  Line("plane_line_int") << d3 << crossing;
  const double d4 = PlanePlaneInt(a, b, c, d, point, direction);
  Line("plane_plane_int") << d4 << point << direction;
  const CMatrix n = Data(3, 1, 3.1) * 2.0;
  CMatrix untouched1(0, 0), untouched2(0, 0);
  const double d5 = PlanePlaneInt(a, a, b, n, untouched1, untouched2);
  Line("plane_plane_int_parallel") << d5 << untouched1 << untouched2;
}

}  // namespace

int main() {
  Fits();
  Estimators();
  Linalg();
  Geometry();
  return 0;
}
