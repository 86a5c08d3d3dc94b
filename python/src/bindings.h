// The families of the extension module, each bound by its own function.
#ifndef QUADREL_PYTHON_BINDINGS_H
#define QUADREL_PYTHON_BINDINGS_H

#include <pybind11/pybind11.h>

namespace quadrel_python {

void BindFits(pybind11::module_ &m);
void BindEstimators(pybind11::module_ &m);
void BindLinalg(pybind11::module_ &m);
void BindGeometry(pybind11::module_ &m);
void BindSegments(pybind11::module_ &m);
void BindTiming(pybind11::module_ &m);
void BindIo(pybind11::module_ &m);
void BindMetrology(pybind11::module_ &m);
void BindRobust(pybind11::module_ &m);

}  // namespace quadrel_python

#endif  // QUADREL_PYTHON_BINDINGS_H
