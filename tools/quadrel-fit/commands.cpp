#include "commands.h"

#include <iostream>

#include "errors.h"
#include "point_input.h"
#include "quadrel/frontend/peak_fit.h"
#include "quadrel/frontend/report.h"
#include "quadrel/frontend/trihedral_fit.h"
#include "report.h"
#include "svg_figures.h"

namespace quadrel_fit {

namespace fe = quadrel_frontend;

namespace {

void Write(const fe::Report &report, const OutputOptions &options, std::ostream &out) {
  if (options.json) {
    WriteJson(ToJson(report), out);
  } else {
    WriteText(report, out);
  }
}

}  // namespace

void Require(const fe::Outcome &outcome) {
  if (!outcome.ok()) throw InputError(outcome.reason);
}

void RunShapeCommand(const fe::ShapeEntry &shape, const std::string &path,
                     const OutputOptions &options, std::ostream &out) {
  const PointSet points = ReadPointFile(path);
  const fe::ShapeFit fit = fe::FitShape(shape, points);
  Require(fit.outcome);
  if (!options.svgPath.empty()) {
    WriteSvgFile(options.svgPath, std::string(shape.name) == "plane"
                                      ? PlaneResidualFigure(fit, points)
                                      : CurveFigure(fit, points));
  }
  if (!fit.warning.empty()) std::cerr << "quadrel-fit: warning: " << fit.warning << '\n';
  Write(fe::ShapeReport(fit, points, options.residuals), options, out);
}

void RunTrihedralCommand(const std::array<std::string, 3> &paths, double edgeAngleDegrees,
                         const OutputOptions &options, std::ostream &out) {
  Require(fe::CheckEdgeAngle(edgeAngleDegrees));
  const std::array<PointSet, 3> faces = {ReadPointFile(paths[0]), ReadPointFile(paths[1]),
                                         ReadPointFile(paths[2])};
  const std::array<const PointSet *, 3> order = {&faces[0], &faces[1], &faces[2]};
  const fe::TrihedralFit fit = fe::FitTrihedral(order, fe::EdgeAngleRadians(edgeAngleDegrees));
  Require(fit.outcome);
  Write(fe::TrihedralReport(fit, order), options, out);
}

void RunPeakCommand(const std::string &path, const OutputOptions &options, std::ostream &out) {
  const PointSet samples = ReadPointFile(path, quadrel_io::kSampleColumns);
  const fe::PeakFit fit = fe::FindPeak(samples);
  Require(fit.outcome);
  if (!options.svgPath.empty()) WriteSvgFile(options.svgPath, PeakFigure(fit, samples));
  Write(fe::PeakReport(fit, samples), options, out);
}

}  // namespace quadrel_fit
