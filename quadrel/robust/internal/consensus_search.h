// One sample-consensus search over a point set held as coordinate arrays: the
// loop that FindConsensus and each step of ExtractConsensus run.
#ifndef QUADREL_ROBUST_INTERNAL_CONSENSUS_SEARCH_H
#define QUADREL_ROBUST_INTERNAL_CONSENSUS_SEARCH_H

#include <cstdint>
#include <vector>

#include "quadrel/robust/internal/block_pool.h"
#include "quadrel/robust/internal/consensus_models.h"
#include "quadrel/robust/sample_consensus.h"

// Points scored together as one block: the unit of work of the threads. The
// partial sums of the blocks are added in block order, so the score does not
// depend on how many threads there are.
constexpr std::int64_t kScoreBlock = 8192;

// Samples drawn in a row that may all be degenerate before a search gives up.
constexpr std::int64_t kDegenerateRun = 1000;

// The smallest N >= 1 with (1 - w^s)^N <= 1 - confidence, at most cap: the
// hypotheses needed to draw one all-inlier sample with that confidence when a
// fraction w of the points are inliers. Uses + and * only, so it gives the same
// N on every platform.
std::int64_t IterationsNeeded(double inlierRatio, int sampleSize, double confidence,
                              std::int64_t cap);

// The MSAC score of the model over every point of cloud, summed block by block.
RangeScore ScoreCloud(ConsensusShape shape, const Hypothesis &model, const PointColumns &cloud,
                      double t2, BlockPool &pool);

// ScoreCloud, and the column numbers of the inliers, ascending, in inliers.
// slots is room for one index per point, kept by the caller between calls.
RangeScore CollectCloud(ConsensusShape shape, const Hypothesis &model, const PointColumns &cloud,
                        double t2, BlockPool &pool, std::vector<std::int64_t> &slots,
                        std::vector<std::int64_t> &inliers);

// What a search found; inliers are column numbers of its cloud.
struct SearchOutcome {
  ConsensusStatus status = ConsensusStatus::kBadArgument;
  Hypothesis model;
  std::vector<std::int64_t> inliers;
  double rms = 0.0;
  std::int64_t iterations = 0;
};

// Searches cloud for the shape. options must have been checked; stream keeps
// the draws of different searches with one seed apart.
SearchOutcome SearchConsensus(ConsensusShape shape, const PointColumns &cloud,
                              const ConsensusOptions &options, std::uint64_t stream,
                              BlockPool &pool);

#endif  // QUADREL_ROBUST_INTERNAL_CONSENSUS_SEARCH_H
