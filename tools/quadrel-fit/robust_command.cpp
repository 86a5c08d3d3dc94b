#include "robust_command.h"

#include <cerrno>
#include <cinttypes>
#include <cmath>
#include <cstdio>
#include <cstring>

#include "commands.h"
#include "errors.h"
#include "quadrel/frontend/format.h"
#include "quadrel/frontend/robust_fit.h"

namespace quadrel_fit {

namespace fe = quadrel_frontend;

void CheckRobustOptions(const fe::ShapeEntry &shape, const RobustOptions &robust,
                        const OutputOptions &output) {
  if (!robust.on) {
    if (!robust.given.empty()) throw InputError(robust.given[0] + " takes --inlier-threshold");
    return;
  }
  ConsensusShape search = ConsensusShape::kLine;
  if (!fe::FindConsensusShape(shape, search)) {
    throw InputError(std::string(shape.article) + " " + shape.name +
                     " has no fit through outliers; --inlier-threshold " + "serves the " +
                     fe::ConsensusShapeList());
  }
  if (!(robust.threshold > 0.0 && std::isfinite(robust.threshold))) {
    throw InputError("--inlier-threshold must be a positive finite number, got " +
                     fe::FormatNumber(robust.threshold));
  }
  if (!(robust.confidence > 0.0 && robust.confidence < 1.0)) {
    throw InputError("--confidence must lie strictly between 0 and 1, got " +
                     fe::FormatNumber(robust.confidence));
  }
  const std::pair<const char *, std::int64_t> counts[] = {
      {"--max-iterations", robust.maxIterations},
      {"--min-inliers", robust.minInliers},
      {"--extract", robust.extract}};
  for (const auto &[flag, value] : counts) {
    bool given = false;
    for (const std::string &name : robust.given)
      given = given || name == flag;
    if (given && value < 1) {
      throw InputError(std::string(flag) + " must be at least 1, got " + std::to_string(value));
    }
  }
  if (!(robust.minRadius >= 0.0 && std::isfinite(robust.minRadius))) {
    throw InputError("--min-radius must be a finite number of at least 0, got " +
                     fe::FormatNumber(robust.minRadius));
  }
  if (!(robust.maxRadius >= robust.minRadius)) {
    throw InputError("--max-radius must be at least --min-radius (" +
                     fe::FormatNumber(robust.minRadius) + "), got " +
                     fe::FormatNumber(robust.maxRadius));
  }
  if (!output.segmentBy.empty()) throw InputError("--segment-by takes no --inlier-threshold");
  if (robust.extract > 0 && (output.residuals || !output.svgPath.empty())) {
    throw InputError("--extract takes neither --residuals nor --svg");
  }
}

void WriteLabelsFile(const std::string &path, const quadrel_io::PointSet &points,
                     const std::vector<std::int64_t> &labels) {
  std::FILE *file = std::fopen(path.c_str(), "wb");
  if (file == nullptr) throw OutputError("cannot write " + path + ": " + std::strerror(errno));
  bool written = std::fputs("x y z label\n", file) >= 0;
  for (int k = 0; k < points.count() && written; ++k) {
    written =
        std::fprintf(file, "%.17g %.17g %.17g %" PRId64 "\n", points.at(0, k), points.at(1, k),
                     points.at(2, k), labels[static_cast<std::size_t>(k)]) > 0;
  }
  const int error = errno;
  if (std::fclose(file) != 0 || !written) {
    throw OutputError("cannot write " + path + ": " + std::strerror(error));
  }
}

int RunRobust(const fe::ShapeEntry &shape, const quadrel_io::PointSet &points,
              const OutputOptions &output, const RobustOptions &robust, std::ostream &out) {
  ConsensusOptions options;
  options.inlierThreshold = robust.threshold;
  options.seed = robust.seed;
  options.confidence = robust.confidence;
  options.maxIterations = robust.maxIterations;
  options.minInliers = robust.minInliers;
  options.minRadius = robust.minRadius;
  options.maxRadius = robust.maxRadius;
  if (robust.extract > 0) {
    const fe::RobustExtraction extraction =
        fe::ExtractShapes(shape, points, options, robust.extract);
    Require(extraction.outcome);
    if (!robust.labelsPath.empty()) WriteLabelsFile(robust.labelsPath, points, extraction.labels);
    WriteTable(fe::ExtractionReport(shape, extraction, points, robust.threshold), output, out);
    return extraction.AllFitted() ? kExitOk : kExitSomeSegments;
  }
  const fe::RobustFit fit = fe::FitShapeRobust(shape, points, options);
  Require(fit.fit.outcome);
  if (!robust.labelsPath.empty()) {
    std::vector<std::int64_t> labels(static_cast<std::size_t>(points.count()), -1);
    for (std::int64_t k : fit.inliers)
      labels[static_cast<std::size_t>(k)] = 0;
    WriteLabelsFile(robust.labelsPath, points, labels);
  }
  DrawAndWarn(fit.fit, fit.inlierPoints, output);
  Write(fe::RobustReport(fit, points, robust.threshold, output.residuals), output, out);
  return kExitOk;
}

}  // namespace quadrel_fit
