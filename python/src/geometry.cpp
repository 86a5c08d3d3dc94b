// Vectors, spherical coordinates, rotations, frame transforms, distances and
// intersections. Vectors and points come as 2-D arrays: 3 x 1 columns unless
// a function says otherwise.
#include <quadrel/geometry/distances.h>
#include <quadrel/geometry/rotations.h>
#include <quadrel/geometry/vectors.h>

#include "bindings.h"
#include "convert.h"

namespace quadrel_python {

namespace {

// An output that the library may leave untouched: 0 x 0 until it is written,
// None in Python if it stays so.
py::object Written(Matrix &m) {
  if (m.GetRows() == 0 && m.GetCols() == 0) return py::none();
  return ToArray(m);
}

using Rotation3 = CMatrix (*)(double, double, double);

void BindRotation3(py::module_ &m, const char *name, Rotation3 rotation) {
  m.def(
      name,
      [rotation](double alpha, double beta, double gamma) {
        return ToArray(WithoutGil([&] { return Matrix(rotation(alpha, beta, gamma)); }));
      },
      py::arg("alpha"), py::arg("beta"), py::arg("gamma"));
}

using FrameMove = CMatrix (*)(const CMatrix &, const CMatrix &, const CMatrix &);

void BindFrameMove(py::module_ &m, const char *name, FrameMove move) {
  m.def(
      name,
      [move](const Array &r, const Array &x, const Array &t) {
        const InputMatrix R(Describe(r)), X(Describe(x)), T(Describe(t));
        return ToArray(WithoutGil([&] { return Matrix(move(R, X, T)); }));
      },
      py::arg("r"), py::arg("x"), py::arg("t"));
}

}  // namespace

void BindGeometry(py::module_ &m) {
  m.def("norm2", [](const Array &a) {
    const InputMatrix A(Describe(a));
    return WithoutGil([&] { return Norm2(A); });
  });
  m.def("dot", [](const Array &a, const Array &b) {
    const InputMatrix A(Describe(a)), B(Describe(b));
    return WithoutGil([&] { return Dot(A, B); });
  });
  m.def("angle", [](const Array &a, const Array &b) {
    const InputMatrix A(Describe(a)), B(Describe(b));
    return WithoutGil([&] { return Angle(A, B); });
  });
  m.def("cross", [](const Array &a, const Array &b) {
    const InputMatrix A(Describe(a)), B(Describe(b));
    return ToArray(WithoutGil([&] { return Matrix(Cross(A, B)); }));
  });

  m.def("sph2cart", [](double range, double azimuth, double elevation) {
    double x = 0, y = 0, z = 0;
    WithoutGil([&] { Sph2Cart(x, y, z, range, azimuth, elevation); });
    return py::make_tuple(x, y, z);
  });
  m.def("cart2sph", [](double x, double y, double z) {
    double range = 0, azimuth = 0, elevation = 0;
    WithoutGil([&] { Cart2Sph(range, azimuth, elevation, x, y, z); });
    return py::make_tuple(range, azimuth, elevation);
  });
  m.def("sph2cart_matrix", [](const Array &triples) {
    const InputMatrix T(Describe(triples));
    return ToArray(WithoutGil([&] { return Matrix(Sph2Cart(T)); }));
  });
  m.def("cart2sph_matrix", [](const Array &points) {
    const InputMatrix P(Describe(points));
    return ToArray(WithoutGil([&] { return Matrix(Cart2Sph(P)); }));
  });

  m.def(
      "rotation_to_z",
      [](double azimuth, double elevation) {
        return ToArray(WithoutGil([&] { return Matrix(Rotation(azimuth, elevation)); }));
      },
      py::arg("azimuth"), py::arg("elevation"));
  BindRotation3(m, "rotation", [](double a, double b, double g) { return Rotation(a, b, g); });
  BindRotation3(m, "rotation_alpha", RotationAlpha);
  BindRotation3(m, "rotation_beta", RotationBeta);
  BindRotation3(m, "rotation_gamma", RotationGamma);
  BindFrameMove(m, "transform", Transform);
  BindFrameMove(m, "untransform", UnTransform);

  m.def("line_point_dist", [](const Array &p, const Array &d, const Array &q) {
    const InputMatrix P(Describe(p)), D(Describe(d)), Q(Describe(q));
    return WithoutGil([&] { return LinePointDist(P, D, Q); });
  });
  m.def("plane_point_dist", [](const Array &p, const Array &n, const Array &q) {
    const InputMatrix P(Describe(p)), N(Describe(n)), Q(Describe(q));
    return WithoutGil([&] { return PlanePointDist(P, N, Q); });
  });
  m.def("plane_line_dist", [](const Array &p, const Array &n, const Array &q, const Array &d) {
    const InputMatrix P(Describe(p)), N(Describe(n)), Q(Describe(q)), D(Describe(d));
    return WithoutGil([&] { return PlaneLineDist(P, N, Q, D); });
  });
  m.def("plane_plane_dist", [](const Array &p1, const Array &n1, const Array &p2, const Array &n2) {
    const InputMatrix P1(Describe(p1)), N1(Describe(n1)), P2(Describe(p2)), N2(Describe(n2));
    return WithoutGil([&] { return PlanePlaneDist(P1, N1, P2, N2); });
  });
  m.def("line_point_int", [](const Array &p, const Array &d, const Array &q) {
    const InputMatrix P(Describe(p)), D(Describe(d)), Q(Describe(q));
    Matrix foot;
    const double dist = WithoutGil([&] { return LinePointInt(P, D, Q, foot); });
    return py::make_tuple(dist, ToArray(foot));
  });
  m.def("plane_point_int", [](const Array &p, const Array &n, const Array &q) {
    const InputMatrix P(Describe(p)), N(Describe(n)), Q(Describe(q));
    Matrix foot;
    const double dist = WithoutGil([&] { return PlanePointInt(P, N, Q, foot); });
    return py::make_tuple(dist, ToArray(foot));
  });
  m.def("plane_line_int", [](const Array &p, const Array &n, const Array &q, const Array &d) {
    const InputMatrix P(Describe(p)), N(Describe(n)), Q(Describe(q)), D(Describe(d));
    Matrix crossing(0, 0);
    const double dist = WithoutGil([&] { return PlaneLineInt(P, N, Q, D, crossing); });
    return py::make_tuple(dist, Written(crossing));
  });
  m.def("plane_plane_int", [](const Array &p1, const Array &n1, const Array &p2, const Array &n2) {
    const InputMatrix P1(Describe(p1)), N1(Describe(n1)), P2(Describe(p2)), N2(Describe(n2));
    Matrix point(0, 0), direction(0, 0);
    const double dist = WithoutGil([&] { return PlanePlaneInt(P1, N1, P2, N2, point, direction); });
    return py::make_tuple(dist, Written(point), Written(direction));
  });
}

}  // namespace quadrel_python
