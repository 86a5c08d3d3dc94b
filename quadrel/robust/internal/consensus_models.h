// The shapes of sample consensus: hypotheses from minimal samples, distances,
// scores over ranges of points, and least-squares refits of inliers.
#ifndef QUADREL_ROBUST_INTERNAL_CONSENSUS_MODELS_H
#define QUADREL_ROBUST_INTERNAL_CONSENSUS_MODELS_H

#include <cstdint>
#include <vector>

#include "quadrel/robust/sample_consensus.h"

// A point set as three coordinate arrays of n values each; the arrays stay
// their owner's.
struct PointColumns {
  const double *x = nullptr;
  const double *y = nullptr;
  const double *z = nullptr;
  std::int64_t n = 0;
};

// One model of any shape: p is the point (centroid, centre or axis point), u
// the unit direction or normal (unused for a sphere), r the radius (unused for
// a line or plane).
struct Hypothesis {
  double p[3] = {0.0, 0.0, 0.0};
  double u[3] = {0.0, 0.0, 0.0};
  double r = 0.0;
};

// What a range of points gives for one hypothesis: the sum of min(d^2, t^2) in
// rising index, and the number of points with d^2 <= t^2.
struct RangeScore {
  double sum = 0.0;
  std::int64_t count = 0;
};

// Points in a minimal sample of the shape: line 2, plane 3, circle 3, sphere 4,
// cylinder 5 (the Gaussian cylinder through five points).
int SampleSize(ConsensusShape shape);

// The hypothesis through the sample (SampleSize(shape) points, sample.n equal to
// it). Returns false, leaving model alone, for a degenerate sample: coincident
// points, collinear ones for a plane or circle, coplanar ones for a sphere, a
// cylinder that the sample does not determine, or a model that is not finite.
bool SolveSample(ConsensusShape shape, const PointColumns &sample, Hypothesis &model);

// The squared orthogonal distance of (x, y, z) from the model.
double SquaredDistance(ConsensusShape shape, const Hypothesis &model, double x, double y, double z);

// Scores points begin .. end - 1 of cloud against the model with squared
// threshold t2.
RangeScore ScoreRange(ConsensusShape shape, const Hypothesis &model, const PointColumns &cloud,
                      std::int64_t begin, std::int64_t end, double t2);

// ScoreRange, and the column numbers of the inliers (d^2 <= t2) among the
// points, ascending, in out[0 .. count - 1]; out has room for end - begin.
RangeScore CollectRange(ConsensusShape shape, const Hypothesis &model, const PointColumns &cloud,
                        std::int64_t begin, std::int64_t end, double t2, std::int64_t *out);

// The least-squares fit of the library (LineFit, PlaneFit, CircleFit, SphereFit,
// GaussianCylinderFit) to the listed points of cloud, or to limit of them
// spread evenly over the list when it is longer (limit 0: no limit). Returns
// false, leaving model alone, when there are too few points or the fit gives
// no finite model.
bool RefitInliers(ConsensusShape shape, const PointColumns &cloud,
                  const std::vector<std::int64_t> &inliers, Hypothesis &model,
                  std::size_t limit = 0);

// The model in the public form: see ConsensusModel. A NaN model when valid is
// false.
ConsensusModel ToConsensusModel(ConsensusShape shape, const Hypothesis &model, bool valid);

#endif  // QUADREL_ROBUST_INTERNAL_CONSENSUS_MODELS_H
