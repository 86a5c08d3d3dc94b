// The sample-consensus loop: see consensus_search.h.
//
// Hypotheses are drawn one after another, hypothesis i from the i-th sample of
// the search's stream, and compared in that order, so everything the loop
// decides is fixed by the seed alone. The threads only share out the blocks of
// one score.
#include "quadrel/robust/internal/consensus_search.h"

#include <algorithm>
#include <cmath>

#include "quadrel/robust/internal/counter_random.h"

namespace {

// A cloud at least this large is previewed: each hypothesis is first scored on
// kPreviewSize points drawn from it, and one that is clearly worse there than
// the best model so far is dropped without a full score.
constexpr std::int64_t kPreviewSize = 1024;
constexpr std::int64_t kPreviewFrom = 16 * kPreviewSize;

// A hypothesis whose preview count lies this many standard deviations (of the
// binomial count that the best model's inlier ratio gives) below the best
// model's expected count is dropped: one as good as the best is dropped with a
// probability of about 2e-4.
constexpr double kPreviewSigmas = 3.5;

// Rounds of local optimisation after a new best hypothesis, and of the final
// refit until the inlier set stops changing.
constexpr int kRefineRounds = 8;

// Local optimisation fits at most this many of the inliers, spread evenly over
// them, and works on this many points spread evenly over a cloud that has
// more than twice as many: enough to find the inlier set, while the final
// model is fitted to every inlier of the whole cloud.
constexpr std::size_t kLocalFitPoints = 32768;
constexpr std::int64_t kLocalPoints = 32768;

double RatioOf(std::int64_t count, std::int64_t n) {
  return static_cast<double>(count) / static_cast<double>(n);
}

// Whether the model's radius lies within the caller's limits (always for a
// line or plane).
bool InRange(ConsensusShape shape, const Hypothesis &model, const ConsensusOptions &options) {
  if (shape == ConsensusShape::kLine || shape == ConsensusShape::kPlane) return true;
  return model.r >= options.minRadius && model.r <= options.maxRadius;
}

// Least squares on the inliers of model among points (a spread of the cloud
// or the cloud itself), repeated while the refit lowers the score there, the
// inlier count grows and the radius stays within the limits. score is the
// model's score over points, before and after.
void LocalOptimise(ConsensusShape shape, const PointColumns &points, double t2,
                   const ConsensusOptions &options, BlockPool &pool, Hypothesis &model,
                   RangeScore &score) {
  std::vector<std::int64_t> slots, inliers, next;
  score = CollectCloud(shape, model, points, t2, pool, slots, inliers);
  for (int round = 0; round < kRefineRounds; ++round) {
    Hypothesis refit = model;
    if (!RefitInliers(shape, points, inliers, refit, kLocalFitPoints)) return;
    if (!InRange(shape, refit, options)) return;
    const RangeScore refitScore = CollectCloud(shape, refit, points, t2, pool, slots, next);
    if (!(refitScore.sum < score.sum)) return;
    const bool grew = refitScore.count > score.count;
    model = refit;
    score = refitScore;
    inliers.swap(next);
    if (!grew) return;
  }
}

// The sum of the squared distances of the listed points from the model, in
// list order.
double SumOfSquares(ConsensusShape shape, const Hypothesis &model, const PointColumns &cloud,
                    const std::vector<std::int64_t> &list) {
  double sum = 0.0;
  for (std::int64_t i : list)
    sum += SquaredDistance(shape, model, cloud.x[i], cloud.y[i], cloud.z[i]);
  return sum;
}

}  // namespace

std::int64_t IterationsNeeded(double inlierRatio, int sampleSize, double confidence,
                              std::int64_t cap) {
  if (!(inlierRatio > 0.0)) return cap;
  double q = 1.0;
  for (int k = 0; k < sampleSize; ++k)
    q *= inlierRatio;
  if (q >= 1.0) return 1;
  const double miss = 1.0 - q;
  const double target = 1.0 - confidence;
  if (miss >= 1.0) return cap;
  // miss^count by repeated squaring.
  const auto power = [miss](std::int64_t count) {
    double result = 1.0;
    double base = miss;
    for (; count > 0; count >>= 1) {
      if (count & 1) result *= base;
      base *= base;
    }
    return result;
  };
  if (power(cap) > target) return cap;
  std::int64_t low = 1;
  std::int64_t high = cap;
  while (low < high) {
    const std::int64_t middle = low + (high - low) / 2;
    if (power(middle) <= target) {
      high = middle;
    } else {
      low = middle + 1;
    }
  }
  return low;
}

RangeScore ScoreCloud(ConsensusShape shape, const Hypothesis &model, const PointColumns &cloud,
                      double t2, BlockPool &pool) {
  const std::int64_t blocks = (cloud.n + kScoreBlock - 1) / kScoreBlock;
  if (blocks <= 1) return ScoreRange(shape, model, cloud, 0, cloud.n, t2);
  std::vector<RangeScore> parts(static_cast<std::size_t>(blocks));
  pool.Run(blocks, [&](std::int64_t b) {
    const std::int64_t begin = b * kScoreBlock;
    const std::int64_t end = begin + kScoreBlock < cloud.n ? begin + kScoreBlock : cloud.n;
    parts[static_cast<std::size_t>(b)] = ScoreRange(shape, model, cloud, begin, end, t2);
  });
  RangeScore total;
  for (const RangeScore &part : parts) {
    total.sum += part.sum;
    total.count += part.count;
  }
  return total;
}

RangeScore CollectCloud(ConsensusShape shape, const Hypothesis &model, const PointColumns &cloud,
                        double t2, BlockPool &pool, std::vector<std::int64_t> &slots,
                        std::vector<std::int64_t> &inliers) {
  // Each block writes its inliers into slots from its own first slot; they
  // are then joined in block order.
  const std::int64_t blocks = (cloud.n + kScoreBlock - 1) / kScoreBlock;
  if (slots.size() < static_cast<std::size_t>(cloud.n))
    slots.resize(static_cast<std::size_t>(cloud.n));
  std::vector<RangeScore> parts(static_cast<std::size_t>(blocks));
  pool.Run(blocks, [&](std::int64_t b) {
    const std::int64_t begin = b * kScoreBlock;
    const std::int64_t end = begin + kScoreBlock < cloud.n ? begin + kScoreBlock : cloud.n;
    parts[static_cast<std::size_t>(b)] =
        CollectRange(shape, model, cloud, begin, end, t2, slots.data() + begin);
  });
  RangeScore total;
  inliers.clear();
  for (std::int64_t b = 0; b < blocks; ++b) {
    const RangeScore &part = parts[static_cast<std::size_t>(b)];
    const auto first = slots.begin() + b * kScoreBlock;
    inliers.insert(inliers.end(), first, first + part.count);
    total.sum += part.sum;
    total.count += part.count;
  }
  return total;
}

SearchOutcome SearchConsensus(ConsensusShape shape, const PointColumns &cloud,
                              const ConsensusOptions &options, std::uint64_t stream,
                              BlockPool &pool) {
  SearchOutcome out;
  const int s = SampleSize(shape);
  const std::int64_t n = cloud.n;
  const double t2 = options.inlierThreshold * options.inlierThreshold;

  // The preview points, drawn with replacement from their own stream.
  std::vector<double> preview;
  PointColumns previewCloud;
  if (n >= kPreviewFrom) {
    CounterRandom draw(options.seed, 2 * stream + 1);
    preview.resize(3 * kPreviewSize);
    for (std::int64_t k = 0; k < kPreviewSize; ++k) {
      const std::uint64_t i = draw.Below(static_cast<std::uint64_t>(n));
      preview[k] = cloud.x[i];
      preview[kPreviewSize + k] = cloud.y[i];
      preview[2 * kPreviewSize + k] = cloud.z[i];
    }
    previewCloud = {preview.data(), preview.data() + kPreviewSize,
                    preview.data() + 2 * kPreviewSize, kPreviewSize};
  }

  CounterRandom sampler(options.seed, 2 * stream);
  std::int64_t chosen[8];
  double coordinates[3][8];
  const PointColumns sample = {coordinates[0], coordinates[1], coordinates[2], s};

  // The points of local optimisation: every (n / kLocalPoints)-th point, in
  // effect, of a large cloud.
  std::vector<double> spread;
  PointColumns local = cloud;
  if (n > 2 * kLocalPoints) {
    spread.resize(3 * kLocalPoints);
    for (std::int64_t k = 0; k < kLocalPoints; ++k) {
      const std::int64_t i = k * n / kLocalPoints;
      spread[k] = cloud.x[i];
      spread[kLocalPoints + k] = cloud.y[i];
      spread[2 * kLocalPoints + k] = cloud.z[i];
    }
    local = {spread.data(), spread.data() + kLocalPoints, spread.data() + 2 * kLocalPoints,
             kLocalPoints};
  }

  bool found = false;
  Hypothesis best;
  RangeScore bestScore;
  std::int64_t needed = options.maxIterations;
  std::int64_t iterations = 0;
  std::int64_t degenerateRun = 0;
  bool outOfRange = false;
  while (iterations < needed) {
    ++iterations;
    sampler.Distinct(n, s, chosen);
    for (int k = 0; k < s; ++k) {
      coordinates[0][k] = cloud.x[chosen[k]];
      coordinates[1][k] = cloud.y[chosen[k]];
      coordinates[2][k] = cloud.z[chosen[k]];
    }
    Hypothesis h;
    if (!SolveSample(shape, sample, h)) {
      if (++degenerateRun >= kDegenerateRun) break;
      continue;
    }
    degenerateRun = 0;
    if (!InRange(shape, h, options)) {
      outOfRange = true;
      continue;
    }
    if (found && previewCloud.n > 0) {
      const double w = RatioOf(bestScore.count, n);
      const double expected = static_cast<double>(kPreviewSize) * w;
      const RangeScore glimpse = ScoreRange(shape, h, previewCloud, 0, kPreviewSize, t2);
      if (static_cast<double>(glimpse.count) + kPreviewSigmas * std::sqrt(expected * (1.0 - w)) +
              1.0 <
          expected)
        continue;
    }
    const RangeScore score = ScoreCloud(shape, h, cloud, t2, pool);
    if (found && !(score.sum < bestScore.sum)) continue;
    found = true;
    best = h;
    bestScore = score;
    Hypothesis refined = h;
    RangeScore refinedScore;
    LocalOptimise(shape, local, t2, options, pool, refined, refinedScore);
    if (local.n != n) refinedScore = ScoreCloud(shape, refined, cloud, t2, pool);
    if (refinedScore.sum < bestScore.sum) {
      best = refined;
      bestScore = refinedScore;
    }
    needed =
        IterationsNeeded(RatioOf(bestScore.count, n), s, options.confidence, options.maxIterations);
  }
  out.iterations = iterations;
  if (!found) {
    out.status =
        outOfRange ? ConsensusStatus::kNoModelInRange : ConsensusStatus::kDegenerateSamples;
    return out;
  }

  // The model returned is the least-squares fit of its inliers. Fits of at
  // most kLocalFitPoints of them are repeated until the inlier set no longer
  // changes; the last fit then takes every inlier when there are more, unless
  // the caller fits them itself.
  std::vector<std::int64_t> slots, next;
  CollectCloud(shape, best, cloud, t2, pool, slots, out.inliers);
  bool settled = false;
  for (int round = 0; round < kRefineRounds && !settled; ++round) {
    Hypothesis refit = best;
    if (!RefitInliers(shape, cloud, out.inliers, refit, kLocalFitPoints)) break;
    if (!InRange(shape, refit, options)) break;
    CollectCloud(shape, refit, cloud, t2, pool, slots, next);
    if (next.size() < static_cast<std::size_t>(s)) break;
    best = refit;
    settled = next == out.inliers;
    out.inliers.swap(next);
  }
  if (options.fitAllInliers && (!settled || out.inliers.size() > kLocalFitPoints)) {
    Hypothesis all = best;
    if (RefitInliers(shape, cloud, out.inliers, all) && InRange(shape, all, options)) best = all;
  }
  const double sumSquares = SumOfSquares(shape, best, cloud, out.inliers);
  out.model = best;
  const std::int64_t count = static_cast<std::int64_t>(out.inliers.size());
  out.rms = count > 0 ? std::sqrt(sumSquares / static_cast<double>(count)) : 0.0;
  const std::int64_t least = options.minInliers > 0 ? options.minInliers : s;
  out.status = count >= least ? ConsensusStatus::kFound : ConsensusStatus::kTooFewInliers;
  return out;
}
