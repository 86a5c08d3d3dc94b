// Robust fits by sample consensus: a shape found among outliers and clutter.
//
// Hypotheses come from minimal samples of the points, drawn by a counter-based
// generator from the caller's seed (no global state: the same seed gives the
// same samples, and the same bits, on every platform and for any number of
// threads). Each hypothesis is scored by the truncated squared distance of
// every point (MSAC): min(d^2, t^2) for threshold t. The best hypothesis is
// refined by local optimisation, a least-squares fit of its inliers repeated
// while the inlier set grows, and the number of iterations adapts to the best
// inlier ratio seen so far, for the confidence the caller asks, up to a cap.
// The model returned is the least-squares fit of its final inliers.
#ifndef QUADREL_ROBUST_SAMPLE_CONSENSUS_H
#define QUADREL_ROBUST_SAMPLE_CONSENSUS_H

#include <cstdint>
#include <limits>
#include <vector>

#include "quadrel/matrix/matrix.h"
#include "quadrel/robust/export.h"

// The shapes that sample consensus finds, and the points of a minimal sample:
// line 2, plane 3, circle in space 3, sphere 4, cylinder (see the source).
enum class ConsensusShape : int { kLine = 0, kPlane = 1, kCircle = 2, kSphere = 3, kCylinder = 4 };

enum class ConsensusStatus : int {
  kFound = 0,              // a model with at least the minimum number of inliers
  kTooFewInliers = 1,      // the best model has fewer inliers than asked for
  kDegenerateSamples = 2,  // every sample drawn was degenerate: no hypothesis at all
  kTooFewPoints = 3,       // fewer points than a minimal sample
  kBadArgument = 4,        // points not 3 x n or not finite, an option out of range
  kNoModelInRange = 5,     // every model had a radius outside the caller's limits
};

// A fixed English sentence for the status, e.g. "every sample was degenerate".
// Never null; the text is static.
QUADREL_ROBUST_API const char *ConsensusStatusMessage(ConsensusStatus status);

// What the caller sets. inlierThreshold has no default: it must be positive
// and finite, in the units of the points. confidence is in (0, 1).
// maxIterations (>= 1) caps the hypotheses drawn whatever the confidence.
// threads is the number of threads that score (0: one per core); the result
// does not depend on it. minInliers is the fewest inliers a model must have to
// be found (0: the size of a minimal sample). fitAllInliers false skips the
// final least-squares fit of every inlier, for callers that fit the inliers
// themselves: model and rms are then those of the last local fit (of at most
// 32,768 inliers); the inliers, status and iterations are the same either way.
// minRadius and maxRadius (0 <= minRadius <= maxRadius, minRadius finite)
// bound the radius of a circle, sphere or cylinder: samples and refits outside
// them are passed over, so a huge sphere along a floor does not take the place
// of a ball. Lines and planes ignore them.
struct ConsensusOptions {
  double inlierThreshold = 0.0;
  std::uint64_t seed = 0;
  double confidence = 0.999;
  std::int64_t maxIterations = 100000;
  int threads = 0;
  std::int64_t minInliers = 0;
  bool fitAllInliers = true;
  double minRadius = 0.0;
  double maxRadius = std::numeric_limits<double>::infinity();
};

// A model: point is the centroid (line, plane), the centre (circle, sphere) or
// a point of the axis (cylinder), 3 x 1. direction is the unit direction (line,
// cylinder axis) or unit normal (plane, circle), 3 x 1, and 0 x 0 for a
// sphere. radius is that of the circle, sphere or cylinder, 0 otherwise.
struct ConsensusModel {
  CMatrix point;
  CMatrix direction;
  double radius = 0.0;
};

// The outcome of one search. model, inliers, inlierCount and rms are meaningful
// when status is kFound or kTooFewInliers (the best model found, with too few
// inliers); otherwise model holds NaN and inliers is empty. inliers holds the
// column numbers of the inliers in ascending order; rms is the root mean
// square of their distances from the model; iterations counts the hypotheses
// drawn.
struct ConsensusResult {
  ConsensusStatus status = ConsensusStatus::kBadArgument;
  ConsensusModel model;
  std::vector<std::int64_t> inliers;
  std::int64_t inlierCount = 0;
  double rms = 0.0;
  std::int64_t iterations = 0;
};

// Finds the shape in points (3 x n, one point per column) with the options.
// Never throws for bad data: a status says what went wrong.
QUADREL_ROBUST_API ConsensusResult FindConsensus(ConsensusShape shape, const CMatrix &points,
                                                 const ConsensusOptions &options);

// Several models of one shape in one cloud. models holds one result per model
// found, best first; labels holds one entry per point: the index into models
// of the model that took it, or -1. status is kFound when at least one model
// was found, otherwise the status of the first, failed search. On
// kBadArgument (points not 3 x n or not finite, options out of range,
// maxModels < 1) models and labels are both empty.
struct ConsensusExtraction {
  ConsensusStatus status = ConsensusStatus::kBadArgument;
  std::vector<ConsensusResult> models;
  std::vector<std::int64_t> labels;
};

// Finds the best model, takes its inliers out of the cloud and repeats on the
// points left, until maxModels (>= 1) models are found or a search finds no
// model with options.minInliers inliers (which is not kept). Each search draws
// from its own stream of the seed. The inliers of each model are column
// numbers of the original points.
QUADREL_ROBUST_API ConsensusExtraction ExtractConsensus(ConsensusShape shape, const CMatrix &points,
                                                        const ConsensusOptions &options,
                                                        int maxModels);

#endif  // QUADREL_ROBUST_SAMPLE_CONSENSUS_H
