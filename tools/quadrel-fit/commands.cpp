#include "commands.h"

#include <iostream>

#include "errors.h"
#include "point_input.h"
#include "quadrel/frontend/peak_fit.h"
#include "quadrel/frontend/report.h"
#include "quadrel/frontend/segment_fit.h"
#include "quadrel/frontend/trihedral_fit.h"
#include "report.h"
#include "svg_figures.h"
#include "table_output.h"

namespace quadrel_fit {

namespace fe = quadrel_frontend;

void Write(const fe::Report &report, const OutputOptions &options, std::ostream &out) {
  if (options.csv) {
    WriteCsv(report, out);
  } else if (options.json) {
    WriteJson(ToJson(report), out);
  } else {
    WriteText(report, out);
  }
}

void WriteTable(const fe::Report &report, const OutputOptions &options, std::ostream &out) {
  if (options.csv) {
    WriteCsv(report, out);
  } else if (options.json) {
    WriteJsonLines(report, out);
  } else {
    WriteTextTable(report, out);
  }
}

void Require(const fe::Outcome &outcome) {
  if (!outcome.ok()) throw InputError(outcome.reason);
}

void DrawAndWarn(const fe::ShapeFit &fit, const PointSet &points, const OutputOptions &options) {
  if (!options.svgPath.empty()) {
    WriteSvgFile(options.svgPath, std::string(fit.shape->name) == "plane"
                                      ? PlaneResidualFigure(fit, points)
                                      : CurveFigure(fit, points));
  }
  if (!fit.warning.empty()) std::cerr << "quadrel-fit: warning: " << fit.warning << '\n';
}

namespace {

// The options that do not go together, refused before any file is read.
void CheckOptions(const OutputOptions &options) {
  if (options.json && options.csv) throw InputError("--json and --csv exclude each other");
  if (options.csv && options.residuals)
    throw InputError("--csv does not list residuals; drop --residuals");
  if (!options.segmentBy.empty() && (options.residuals || !options.svgPath.empty())) {
    throw InputError("--segment-by takes neither --residuals nor --svg");
  }
}

int RunSegments(const fe::ShapeEntry &shape, const PointSet &points, const OutputOptions &options,
                std::ostream &out) {
  const fe::SegmentFits fits = fe::FitSegments(shape, points, options.segmentBy);
  Require(fits.outcome);
  WriteTable(fe::SegmentReport(shape, fits, points), options, out);
  return fits.AllFitted() ? kExitOk : kExitSomeSegments;
}

}  // namespace

int RunShapeCommand(const fe::ShapeEntry &shape, const std::string &path,
                    const OutputOptions &options, const RobustOptions &robust, std::ostream &out) {
  CheckOptions(options);
  CheckRobustOptions(shape, robust, options);
  const PointSet points = ReadPointFile(path);
  if (robust.on) return RunRobust(shape, points, options, robust, out);
  if (!options.segmentBy.empty()) return RunSegments(shape, points, options, out);
  const fe::ShapeFit fit = fe::FitShape(shape, points);
  Require(fit.outcome);
  DrawAndWarn(fit, points, options);
  Write(fe::ShapeReport(fit, points, options.residuals), options, out);
  return kExitOk;
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
