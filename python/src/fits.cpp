// The six shape fits. Each takes the 3 x n view (points.T) of (n, 3) points and
// gives back the library's outputs as arrays and floats, in the order of its
// C++ arguments.
#include <quadrel/fitting/circle_sphere.h>
#include <quadrel/fitting/ellipse.h>
#include <quadrel/fitting/line_plane.h>
#include <quadrel/fitting/paraboloid.h>

#include "bindings.h"
#include "convert.h"

namespace quadrel_python {

void BindFits(py::module_ &m) {
  m.def(
      "line_fit",
      [](const Array &points) {
        const Source source = Describe(points);
        Matrix centroid, direction;
        OutputMatrix residuals(source.cols, 1);
        WithoutGil([&] { LineFit(InputMatrix(source), centroid, direction, residuals); });
        return py::make_tuple(ToArray(centroid), ToArray(direction), residuals.Take());
      },
      py::arg("points"));
  m.def(
      "plane_fit",
      [](const Array &points) {
        const Source source = Describe(points);
        Matrix centroid, normal;
        OutputMatrix residuals(source.cols, 1);
        WithoutGil([&] { PlaneFit(InputMatrix(source), centroid, normal, residuals); });
        return py::make_tuple(ToArray(centroid), ToArray(normal), residuals.Take());
      },
      py::arg("points"));
  m.def(
      "circle_fit",
      [](const Array &points) {
        const Source source = Describe(points);
        Matrix centre, normal;
        OutputMatrix residuals(source.cols, 1);
        double radius = 0;
        WithoutGil([&] { CircleFit(InputMatrix(source), centre, normal, radius, residuals); });
        return py::make_tuple(ToArray(centre), ToArray(normal), radius, residuals.Take());
      },
      py::arg("points"));
  m.def(
      "sphere_fit",
      [](const Array &points) {
        const Source source = Describe(points);
        Matrix centre;
        OutputMatrix residuals(1, source.cols);
        double radius = 0;
        WithoutGil([&] { SphereFit(InputMatrix(source), centre, radius, residuals); });
        return py::make_tuple(ToArray(centre), radius, residuals.Take());
      },
      py::arg("points"));
  m.def(
      "ellipse_fit",
      [](const Array &points) {
        const Source source = Describe(points);
        Matrix foci, normal;
        OutputMatrix residuals(source.cols, 1);
        double focalSum = 0;
        WithoutGil([&] { EllipseFit(InputMatrix(source), foci, normal, focalSum, residuals); });
        return py::make_tuple(ToArray(foci), ToArray(normal), focalSum, residuals.Take());
      },
      py::arg("points"));
  m.def(
      "paraboloid_fit",
      [](const Array &points) {
        const Source source = Describe(points);
        Matrix vertex;
        OutputMatrix residuals(1, source.cols);
        double a = 0, b = 0, sign = 0;
        WithoutGil([&] { ParaboloidFit(InputMatrix(source), vertex, a, b, sign, residuals); });
        return py::make_tuple(ToArray(vertex), a, b, sign, residuals.Take());
      },
      py::arg("points"));
}

}  // namespace quadrel_python
