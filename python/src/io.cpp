// Reading point files: the readers of quadrel_io behind one call that gives
// the points as an (n, 3) array and everything else the file told by name.
#include <cstdint>
#include <cstring>
#include <string>
#include <utility>

#include "bindings.h"
#include "convert.h"
#include "quadrel/io/point_set.h"
#include "quadrel/io/read_error.h"
#include "quadrel/io/read_points.h"

namespace quadrel_python {

namespace {

// The coordinates as a C-ordered (n, 3) array: one point per row.
py::array PointRows(const quadrel_io::PointSet &set) {
  const py::ssize_t n = set.count();
  py::array_t<double> points({n, py::ssize_t{3}});
  double *out = points.mutable_data();
  const double *axes[3] = {set.axis(0), set.axis(1), set.axis(2)};
  for (py::ssize_t k = 0; k < n; ++k)
    for (int r = 0; r < 3; ++r)
      out[3 * k + r] = axes[r][k];
  return std::move(points);
}

template <class T>
py::array VectorArray(const std::vector<T> &values) {
  py::array_t<T> array(static_cast<py::ssize_t>(values.size()));
  if (!values.empty()) std::memcpy(array.mutable_data(), values.data(), values.size() * sizeof(T));
  return std::move(array);
}

}  // namespace

void BindIo(py::module_ &m) {
  // The reader's fault, raised with (message, file, position, kind, fault);
  // the package turns it into quadrel.ReadError.
  py::exception<quadrel_io::ReadError>(m, "ReadFault", PyExc_ValueError);
  m.def(
      "read_points",
      [](const std::string &path) {
        quadrel_io::PointSet set;
        try {
          WithoutGil([&] { set = quadrel_io::ReadPoints(path); });
        } catch (const quadrel_io::ReadError &error) {
          const char *kind =
              error.positionKind() == quadrel_io::PositionKind::kByte ? "byte" : "line";
          const py::object fault = py::module_::import("quadrel._quadrel").attr("ReadFault");
          PyErr_SetObject(fault.ptr(), py::make_tuple(error.what(), error.file(), error.position(),
                                                      kind, error.fault())
                                           .ptr());
          throw py::error_already_set();
        }
        py::list columns;
        for (const auto &column : set.columns())
          columns.append(py::make_tuple(column.name, VectorArray(column.values)));
        const char *originKind =
            set.originKind() == quadrel_io::OriginKind::kRecord ? "record" : "line";
        return py::make_tuple(PointRows(set), columns, VectorArray(set.origins()), originKind,
                              set.skipped(), set.format(), set.name(), set.width(), set.height());
      },
      py::arg("path"));
}

}  // namespace quadrel_python
