#include "quadrel/frontend/robust_fit.h"

#include <string>
#include <string_view>
#include <utility>

#include "quadrel/frontend/checks.h"
#include "quadrel/frontend/point_matrix.h"
#include "quadrel/frontend/segment_fit.h"

namespace quadrel_frontend {

using quadrel_io::PointSet;

const char *ConsensusShapeList() {
  return "line, plane, circle, sphere and cylinder";
}

bool FindConsensusShape(const ShapeEntry &shape, ConsensusShape &consensus) {
  static const std::pair<std::string_view, ConsensusShape> kSearches[] = {
      {"line", ConsensusShape::kLine},
      {"plane", ConsensusShape::kPlane},
      {"circle", ConsensusShape::kCircle},
      {"sphere", ConsensusShape::kSphere},
      {"cylinder", ConsensusShape::kCylinder}};
  for (const auto &[name, search] : kSearches) {
    if (name == shape.name) {
      consensus = search;
      return true;
    }
  }
  return false;
}

namespace {

// Why the search found no model: status is not kFound; best is the inlier
// count of the best model for kTooFewInliers.
Outcome NoModel(const ShapeEntry &shape, const PointSet &points, const ConsensusOptions &options,
                ConsensusStatus status, std::int64_t best) {
  const std::string head = FitName(shape) + " of " + points.name() + " through outliers";
  const std::string within = " within " + FormatKey(options.inlierThreshold);
  switch (status) {
    case ConsensusStatus::kTooFewInliers:
      return Outcome::Refused(
          Status::kDegenerate,
          head + " found no " + shape.name +
              (options.minInliers > 0
                   ? " with at least " + std::to_string(options.minInliers) + " points"
                   : std::string(" with enough points")) +
              within + (best >= 0 ? "; the best has " + std::to_string(best) : std::string()));
    case ConsensusStatus::kDegenerateSamples:
      return Outcome::Refused(Status::kDegenerate, head + " found no " + shape.name + ": " +
                                                       ConsensusStatusMessage(status) +
                                                       "; the points do not determine a " +
                                                       shape.name);
    case ConsensusStatus::kNoModelInRange:
      return Outcome::Refused(Status::kDegenerate, head + " found no " + shape.name +
                                                       " with a radius from " +
                                                       FormatKey(options.minRadius) + " to " +
                                                       FormatKey(options.maxRadius));
    case ConsensusStatus::kTooFewPoints:
      return Outcome::Refused(Status::kTooFewPoints, head + ": " + ConsensusStatusMessage(status));
    default:
      return Outcome::Refused(Status::kBadInput, head + ": " + ConsensusStatusMessage(status));
  }
}

// The options for a search whose inliers FitInliers fits: the search's own
// final fit of them would be the same work done twice.
ConsensusOptions InliersOnly(ConsensusOptions options) {
  options.fitAllInliers = false;
  return options;
}

// The entry's fit of the model's inliers, taken from the points under name.
RobustFit FitInliers(const ShapeEntry &shape, const PointSet &points, const ConsensusResult &found,
                     std::string name) {
  RobustFit robust;
  robust.inliers = found.inliers;
  robust.iterations = found.iterations;
  // The inliers as a set of their own; the skipped records of the file stay counted.
  robust.inlierPoints = points.Select(found.inliers, std::move(name));
  robust.inlierPoints.setSkipped(points.skipped());
  robust.fit = FitShape(shape, robust.inlierPoints);
  if (robust.fit.outcome.ok()) robust.rms = SummarizeResiduals(robust.fit.residuals).rms;
  return robust;
}

}  // namespace

RobustFit FitShapeRobust(const ShapeEntry &shape, const PointSet &points,
                         const ConsensusOptions &options) {
  RobustFit robust;
  robust.fit.shape = &shape;
  robust.fit.points = points.count();
  ConsensusShape search = ConsensusShape::kLine;
  FindConsensusShape(shape, search);
  robust.fit.outcome = RequirePoints(points, shape.minimumPoints, FitName(shape));
  if (!robust.fit.outcome.ok()) return robust;
  const ConsensusResult found = FindConsensus(search, PointMatrix(points), InliersOnly(options));
  robust.iterations = found.iterations;
  if (found.status != ConsensusStatus::kFound) {
    const bool counted = found.status == ConsensusStatus::kTooFewInliers;
    robust.fit.outcome = NoModel(shape, points, options, found.status,
                                 counted ? found.inlierCount : std::int64_t{-1});
    return robust;
  }
  return FitInliers(shape, points, found, points.name() + " (inliers)");
}

bool RobustExtraction::AllFitted() const {
  if (!outcome.ok() || models.empty()) return false;
  for (const RobustFit &model : models)
    if (!model.fit.outcome.ok()) return false;
  return true;
}

RobustExtraction ExtractShapes(const ShapeEntry &shape, const PointSet &points,
                               const ConsensusOptions &options, int maxModels) {
  RobustExtraction extraction;
  ConsensusShape search = ConsensusShape::kLine;
  FindConsensusShape(shape, search);
  extraction.outcome = RequirePoints(points, shape.minimumPoints, FitName(shape));
  if (!extraction.outcome.ok()) return extraction;
  ConsensusExtraction found =
      ExtractConsensus(search, PointMatrix(points), InliersOnly(options), maxModels);
  if (found.status != ConsensusStatus::kFound || found.models.empty()) {
    extraction.outcome = NoModel(shape, points, options, found.status, -1);
    return extraction;
  }
  for (std::size_t m = 0; m < found.models.size(); ++m) {
    extraction.models.push_back(FitInliers(shape, points, found.models[m],
                                           points.name() + " (model " + std::to_string(m) + ")"));
  }
  extraction.labels = std::move(found.labels);
  return extraction;
}

Report RobustReport(const RobustFit &fit, const PointSet &points, double threshold,
                    bool withResiduals) {
  Report report = ShapeReport(fit.fit, fit.inlierPoints, withResiduals);
  report.title = std::string(fit.fit.shape->name) + " fit of " + points.name() +
                 " through outliers within " + FormatKey(threshold);
  ReportEntries &body = report.entries;
  std::size_t after = 0;
  for (std::size_t e = 0; e < body.size(); ++e) {
    ReportEntry &entry = body[e];
    if (entry.key == "file") entry.texts[0] = points.name();
    if (entry.key == "points") entry.integers[0] = points.count();
    if (entry.key == "points" || entry.key == "skipped_points") after = e + 1;
    if (entry.key == "residuals") {
      for (ReportEntry &inner : entry.entries)
        if (inner.key == "max_point")
          inner.integers[0] = fit.inliers[static_cast<std::size_t>(inner.integers[0] - 1)] + 1;
    }
  }
  const ReportEntries added = {
      NumberEntry("inlier_threshold", threshold),
      IntegerEntry("inliers", static_cast<std::int64_t>(fit.inliers.size())),
      NumberEntry("inlier_rms", fit.rms), IntegerEntry("consensus_iterations", fit.iterations)};
  body.insert(body.begin() + static_cast<std::ptrdiff_t>(after), added.begin(), added.end());
  return report;
}

Report ExtractionReport(const ShapeEntry &shape, const RobustExtraction &extraction,
                        const PointSet &points, double threshold) {
  Report report;
  report.title = std::string(shape.name) + " models of " + points.name() +
                 " through outliers within " + FormatKey(threshold);
  std::int64_t unlabelled = 0;
  for (std::int64_t label : extraction.labels)
    unlabelled += label < 0 ? 1 : 0;
  report.entries = {TextEntry("command", shape.name), TextEntry("file", points.name()),
                    IntegerEntry("points", points.count())};
  if (SkipsPoints(points))
    report.entries.push_back(IntegerEntry("skipped_points", points.skipped()));
  report.entries.push_back(NumberEntry("inlier_threshold", threshold));
  report.entries.push_back(
      IntegerEntry("models", static_cast<std::int64_t>(extraction.models.size())));
  report.entries.push_back(IntegerEntry("unlabelled", unlabelled));
  for (std::size_t m = 0; m < extraction.models.size(); ++m) {
    const RobustFit &model = extraction.models[m];
    ReportEntries row = {IntegerEntry("model", static_cast<std::int64_t>(m)),
                         IntegerEntry("inliers", static_cast<std::int64_t>(model.inliers.size())),
                         TextEntry("status", StatusName(model.fit.outcome.status))};
    if (model.fit.outcome.ok()) {
      for (const ResultField &field : model.fit.fields) {
        row.push_back(field.values.size() == 1 ? NumberEntry(field.name, field.values[0])
                                               : NumberListEntry(field.name, field.values));
      }
      const ResidualSummary summary = SummarizeResiduals(model.fit.residuals);
      row.push_back(NumberEntry("rms", summary.rms));
      row.push_back(NumberEntry("max_abs", summary.maxAbs));
    }
    row.push_back(IntegerEntry("consensus_iterations", model.iterations));
    if (!model.fit.outcome.ok()) {
      row.push_back(TextEntry("reason", model.fit.outcome.reason));
    } else if (!model.fit.warning.empty()) {
      row.push_back(TextEntry("warning", model.fit.warning));
    }
    report.rows.push_back(std::move(row));
  }
  return report;
}

}  // namespace quadrel_frontend
