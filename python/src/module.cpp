// The extension module _quadrel: thin calls into libquadrel for the package
// quadrel, which checks arguments and names the results. Every function here
// takes float64 arrays of the shapes its C++ counterpart needs and releases
// the GIL while the library computes.
#include <pybind11/pybind11.h>

#include "bindings.h"

PYBIND11_MODULE(_quadrel, m) {
  m.doc() = "Low-level calls into libquadrel; use the package quadrel instead.";
  quadrel_python::BindFits(m);
  quadrel_python::BindEstimators(m);
  quadrel_python::BindLinalg(m);
  quadrel_python::BindGeometry(m);
  quadrel_python::BindSegments(m);
  quadrel_python::BindTiming(m);
  quadrel_python::BindIo(m);
  quadrel_python::BindMetrology(m);
  quadrel_python::BindRobust(m);
}
