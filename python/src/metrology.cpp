// The metrology layer: Gaussian fits with their uncertainties, minimum-zone
// form and the circumscribed and inscribed features. Each call takes the
// 3 x n view (points.T) of (n, 3) points and gives back (info, outputs...):
// info the status and what it reports beside the feature, the outputs in the
// order of the C++ arguments.
#include <quadrel/metrology/metrology.h>

#include "bindings.h"
#include "convert.h"

namespace quadrel_python {

namespace {

py::array Copy(const CMatrix &m) {
  return ToArray(Matrix(m));
}

// (status, iterations, rms, residuals, covariance, uncertainties).
py::tuple Report(const GaussianFitInfo &info) {
  return py::make_tuple(static_cast<int>(info.status), info.iterations, info.rms,
                        Copy(info.residuals), Copy(info.covariance), Copy(info.uncertainties));
}

// (status, iterations, width, deviations, contacts, sides).
py::tuple Report(const ZoneInfo &info) {
  return py::make_tuple(static_cast<int>(info.status), info.iterations, info.width,
                        Copy(info.deviations), Copy(info.contacts), Copy(info.sides));
}

// Binds fit(points, vector, vector, info): the lines and planes, straightness
// and flatness.
template <class Info>
void TwoVectors(py::module_ &m, const char *name,
                MetrologyStatus (*fit)(const CMatrix &, CMatrix &, CMatrix &, Info &)) {
  m.def(
      name,
      [fit](const Array &points) {
        const Source source = Describe(points);
        Matrix a, b;
        Info info;
        WithoutGil([&] { fit(InputMatrix(source), a, b, info); });
        return py::make_tuple(Report(info), ToArray(a), ToArray(b));
      },
      py::arg("points"));
}

// Binds fit(points, vector, vector, radius, info): circles and cylinders.
template <class Info>
void TwoVectorsRadius(py::module_ &m, const char *name,
                      MetrologyStatus (*fit)(const CMatrix &, CMatrix &, CMatrix &, double &,
                                             Info &)) {
  m.def(
      name,
      [fit](const Array &points) {
        const Source source = Describe(points);
        Matrix a, b;
        double radius = 0;
        Info info;
        WithoutGil([&] { fit(InputMatrix(source), a, b, radius, info); });
        return py::make_tuple(Report(info), ToArray(a), ToArray(b), radius);
      },
      py::arg("points"));
}

// Binds fit(points, centre, radius, info): the spheres.
template <class Info>
void CentreRadius(py::module_ &m, const char *name,
                  MetrologyStatus (*fit)(const CMatrix &, CMatrix &, double &, Info &)) {
  m.def(
      name,
      [fit](const Array &points) {
        const Source source = Describe(points);
        Matrix centre;
        double radius = 0;
        Info info;
        WithoutGil([&] { fit(InputMatrix(source), centre, radius, info); });
        return py::make_tuple(Report(info), ToArray(centre), radius);
      },
      py::arg("points"));
}

// Binds fit(points, vector, vector, scalar, scalar, info): cones and tori.
void TwoVectorsTwoScalars(py::module_ &m, const char *name,
                          MetrologyStatus (*fit)(const CMatrix &, CMatrix &, CMatrix &, double &,
                                                 double &, GaussianFitInfo &)) {
  m.def(
      name,
      [fit](const Array &points) {
        const Source source = Describe(points);
        Matrix a, b;
        double s = 0, t = 0;
        GaussianFitInfo info;
        WithoutGil([&] { fit(InputMatrix(source), a, b, s, t, info); });
        return py::make_tuple(Report(info), ToArray(a), ToArray(b), s, t);
      },
      py::arg("points"));
}

}  // namespace

void BindMetrology(py::module_ &m) {
  m.def("metrology_status_message",
        [](int status) { return MetrologyStatusMessage(static_cast<MetrologyStatus>(status)); });
  TwoVectors(m, "gaussian_fit_line", GaussianLineFit);
  TwoVectors(m, "gaussian_fit_plane", GaussianPlaneFit);
  TwoVectorsRadius(m, "gaussian_fit_circle", GaussianCircleFit);
  CentreRadius(m, "gaussian_fit_sphere", GaussianSphereFit);
  TwoVectorsRadius(m, "gaussian_fit_cylinder", GaussianCylinderFit);
  TwoVectorsTwoScalars(m, "gaussian_fit_cone", GaussianConeFit);
  TwoVectorsTwoScalars(m, "gaussian_fit_torus", GaussianTorusFit);
  TwoVectors(m, "minimum_zone_straightness", MinimumZoneStraightness);
  TwoVectors(m, "minimum_zone_flatness", MinimumZoneFlatness);
  TwoVectorsRadius(m, "minimum_zone_roundness", MinimumZoneRoundness);
  CentreRadius(m, "minimum_zone_sphericity", MinimumZoneSphericity);
  TwoVectorsRadius(m, "minimum_circumscribed_circle", MinimumCircumscribedCircle);
  TwoVectorsRadius(m, "maximum_inscribed_circle", MaximumInscribedCircle);
  CentreRadius(m, "minimum_circumscribed_sphere", MinimumCircumscribedSphere);
  CentreRadius(m, "maximum_inscribed_sphere", MaximumInscribedSphere);
}

}  // namespace quadrel_python
