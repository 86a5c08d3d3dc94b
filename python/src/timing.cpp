// Timing of the library's own fits on a ready matrix, without the binding's
// conversions: the reference that the benchmark sets the package against.
#include <chrono>
#include <stdexcept>
#include <string>
#include <vector>

#include <quadrel/fitting/circle_sphere.h>
#include <quadrel/fitting/line_plane.h>

#include <pybind11/stl.h>

#include "bindings.h"
#include "convert.h"

namespace quadrel_python {

void BindTiming(py::module_ &m) {
  m.def(
      "time_library_fit",
      [](const std::string &shape, const Array &points, int repeats) {
        if (shape != "plane" && shape != "sphere")
          throw py::value_error("time_library_fit: shape must be 'plane' or 'sphere'");
        const InputMatrix p(Describe(points));
        return WithoutGil([&] {
          std::vector<double> seconds;
          Matrix a, b, residuals;
          double radius = 0;
          for (int k = 0; k < repeats; ++k) {
            const auto start = std::chrono::steady_clock::now();
            if (shape == "plane")
              PlaneFit(p, a, b, residuals);
            else
              SphereFit(p, a, radius, residuals);
            const std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;
            seconds.push_back(took.count());
          }
          return seconds;
        });
      },
      py::arg("shape"), py::arg("points"), py::arg("repeats"),
      "Seconds of each of `repeats` calls of the C++ fit on the ready 3 x n matrix of points.");
}

}  // namespace quadrel_python
