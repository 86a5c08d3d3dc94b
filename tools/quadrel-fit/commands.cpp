#include "commands.h"

#include <iostream>

#include "errors.h"
#include "point_input.h"
#include "report.h"
#include "svg_figures.h"

namespace quadrel_fit {

namespace {

void Write(const Report &report, const OutputOptions &options, std::ostream &out) {
  if (options.json) {
    WriteJson(report.body, out);
  } else {
    WriteText(report, out);
  }
}

}  // namespace

void RunShapeCommand(Shape shape, const std::string &path, const OutputOptions &options,
                     std::ostream &out) {
  const PointSet table = ReadPointFile(path);
  const ShapeResult result = FitShape(shape, table);
  if (!options.svgPath.empty()) {
    WriteSvgFile(options.svgPath, shape == Shape::kPlane ? PlaneResidualFigure(result, table)
                                                         : CurveFigure(result, table));
  }
  if (!result.warning.empty()) std::cerr << "quadrel-fit: warning: " << result.warning << '\n';
  Write(ShapeReport(result, table, options.residuals), options, out);
}

void RunTrihedralCommand(const std::array<std::string, 3> &paths, double edgeAngleDegrees,
                         const OutputOptions &options, std::ostream &out) {
  if (!(edgeAngleDegrees > 0.0 && edgeAngleDegrees < 120.0)) {
    throw InputError("the edge angle must lie strictly between 0 and 120 degrees; got " +
                     FormatNumber(edgeAngleDegrees));
  }
  const std::array<PointSet, 3> faces = {ReadPointFile(paths[0]), ReadPointFile(paths[1]),
                                         ReadPointFile(paths[2])};
  const std::array<const PointSet *, 3> order = {&faces[0], &faces[1], &faces[2]};
  const double edgeAngle = edgeAngleDegrees * (3.14159265358979323846 / 180.0);
  Write(TrihedralReport(FitTrihedral(order, edgeAngle), order), options, out);
}

void RunPeakCommand(const std::string &path, const OutputOptions &options, std::ostream &out) {
  const PointSet samples = ReadPointFile(path, quadrel_io::kSampleColumns);
  const PeakResult result = FindPeak(samples);
  if (!options.svgPath.empty()) WriteSvgFile(options.svgPath, PeakFigure(result, samples));
  Write(PeakReport(result, samples), options, out);
}

}  // namespace quadrel_fit
