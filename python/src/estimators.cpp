// The trihedral fit and the quality peak. Point sets come as 3 x n views of
// (n, 3) arrays, positions as the 2 x n view of (n, 2) ones.
#include <quadrel/estimators/quality_peak.h>
#include <quadrel/estimators/trihedral.h>

#include "bindings.h"
#include "convert.h"

namespace quadrel_python {

void BindEstimators(py::module_ &m) {
  m.def(
      "trihedral_fit",
      [](const Array &face1, const Array &face2, const Array &face3, double edgeAngle) {
        const Source s1 = Describe(face1), s2 = Describe(face2), s3 = Describe(face3);
        Matrix result;
        const int code = WithoutGil([&] {
          return IdealTrihedralFit(InputMatrix(s1), InputMatrix(s2), InputMatrix(s3), result,
                                   edgeAngle);
        });
        return py::make_tuple(code, ToArray(result));
      },
      py::arg("face1"), py::arg("face2"), py::arg("face3"), py::arg("edge_angle"));
  m.def(
      "quality_peak",
      [](const Array &quality, const Array &positions) {
        const Source q = Describe(quality), p = Describe(positions);
        Matrix peak;
        const int code =
            WithoutGil([&] { return FindQualityPeak(InputMatrix(q), InputMatrix(p), peak); });
        return py::make_tuple(code, ToArray(peak));
      },
      py::arg("quality"), py::arg("positions"));
}

}  // namespace quadrel_python
