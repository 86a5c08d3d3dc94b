#include "bindings.h"

namespace quadrel_python {

void BindSegments(pybind11::module_ &) {}

}  // namespace quadrel_python
