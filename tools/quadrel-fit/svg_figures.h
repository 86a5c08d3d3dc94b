// Pictures of fit results as SVG documents: what a person checks at a glance.
#ifndef QUADREL_FIT_SVG_FIGURES_H
#define QUADREL_FIT_SVG_FIGURES_H

#include <string>

#include "point_input.h"
#include "quadrel/frontend/peak_fit.h"
#include "quadrel/frontend/shape_fit.h"

namespace quadrel_fit {

// The points seen in the fitted plane with the fitted circle or ellipse (its
// foci marked), for a circle or an ellipse result.
std::string CurveFigure(const quadrel_frontend::ShapeFit &result, const PointSet &table);
// The signed distance of each point from the fitted plane as a bar.
std::string PlaneResidualFigure(const quadrel_frontend::ShapeFit &result, const PointSet &table);
// The sample positions shaded by quality, the best sample ringed and the peak
// marked.
std::string PeakFigure(const quadrel_frontend::PeakFit &result, const PointSet &samples);

// Writes a document to a file; throws an OutputError if that fails.
void WriteSvgFile(const std::string &path, const std::string &document);

}  // namespace quadrel_fit

#endif  // QUADREL_FIT_SVG_FIGURES_H
