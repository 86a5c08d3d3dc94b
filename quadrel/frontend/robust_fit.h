// Fits through outliers: sample consensus finds the shape among clutter, and
// the ordinary fit of its inliers gives the numbers, so the fields, checks and
// warnings are exactly those of the table's fit of the inliers alone. Also
// the extraction of several models of one shape from one cloud, each point
// labelled with the model that took it.
#ifndef QUADREL_FRONTEND_ROBUST_FIT_H
#define QUADREL_FRONTEND_ROBUST_FIT_H

#include <cstdint>
#include <vector>

#include <quadrel/robust/sample_consensus.h>

#include "quadrel/frontend/outcome.h"
#include "quadrel/frontend/report.h"
#include "quadrel/frontend/shape_fit.h"
#include "quadrel/io/point_set.h"

namespace quadrel_frontend {

// The shapes that sample consensus finds, as messages list them: "line,
// plane, circle, sphere and cylinder".
const char *ConsensusShapeList();

// Sets consensus to the search for the shape of that entry (by its name, so a
// Gaussian or minimum-zone variant counts as its shape) and gives true, or
// gives false for a shape without one.
bool FindConsensusShape(const ShapeEntry &shape, ConsensusShape &consensus);

// One model found through outliers. fit is the entry's fit of the inliers; its
// outcome is a refusal when the search found no model (with the reason) or
// the inliers determine no shape. inlierPoints holds the inliers in the order
// of the points, with their origins and the name of the points; inliers their
// numbers among the points, ascending; rms the root mean square of the fit's
// residuals; iterations the hypotheses the search drew.
struct RobustFit {
  ShapeFit fit;
  quadrel_io::PointSet inlierPoints;
  std::vector<std::int64_t> inliers;
  double rms = 0;
  std::int64_t iterations = 0;
};

// Finds the shape among the points with the options (threshold, seed,
// confidence, cap, threads, fewest inliers), then fits its inliers. The shape
// must have a search (FindConsensusShape) and the options must be valid (the
// front ends check them with their own words). Never throws for bad data.
RobustFit FitShapeRobust(const ShapeEntry &shape, const quadrel_io::PointSet &points,
                         const ConsensusOptions &options);

// Up to maxModels (>= 1) models, best first, each fitted as FitShapeRobust
// fits one; labels holds one entry per point: the index of the model that
// took it, or -1. outcome is a refusal (and models empty) when not even one
// model was found.
struct RobustExtraction {
  Outcome outcome;
  std::vector<RobustFit> models;
  std::vector<std::int64_t> labels;
  // Every model's inliers fitted (and there is at least one model).
  bool AllFitted() const;
};
RobustExtraction ExtractShapes(const ShapeEntry &shape, const quadrel_io::PointSet &points,
                               const ConsensusOptions &options, int maxModels);

// The report of a fit that is ok: the ordinary report of the inliers' fit,
// with points counting every point, then inlier_threshold, inliers,
// inlier_rms and consensus_iterations; the residuals are the inliers', and
// max_point counts among all points.
Report RobustReport(const RobustFit &fit, const quadrel_io::PointSet &points, double threshold,
                    bool withResiduals);

// The report of an extraction: command, file, points, (skipped_points),
// inlier_threshold, models and unlabelled; then one row per model: model (its
// label), inliers, status, the fields, rms and max_abs of a fit that is ok,
// consensus_iterations, and its warning or the reason of a refusal.
Report ExtractionReport(const ShapeEntry &shape, const RobustExtraction &extraction,
                        const quadrel_io::PointSet &points, double threshold);

}  // namespace quadrel_frontend

#endif  // QUADREL_FRONTEND_ROBUST_FIT_H
