// FindConsensus and ExtractConsensus: checks, the point layout, and the
// results. The search itself is in internal/consensus_search.cpp.
#include "quadrel/robust/sample_consensus.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <thread>

#include "quadrel/robust/internal/consensus_search.h"

namespace {

// The points as three coordinate arrays, x, y and z, each contiguous: the
// layout the scoring loops stream through.
class CloudCopy {
 public:
  // The rows of points, a 3 x n matrix, as GetBuffer2D gives them.
  explicit CloudCopy(const CMatrix &points) : m_n(points.GetCols()) {
    if (m_n > 0) m_rows = points.GetBuffer2D();
  }
  // The points of cloud left when the marked ones are taken out, with the
  // original column number of each kept point in kept.
  CloudCopy(const PointColumns &cloud, const std::vector<bool> &taken,
            const std::vector<std::int64_t> &originals, std::vector<std::int64_t> &kept) {
    kept.clear();
    for (std::int64_t i = 0; i < cloud.n; ++i)
      if (!taken[static_cast<std::size_t>(i)]) kept.push_back(i);
    m_n = static_cast<std::int64_t>(kept.size());
    m_values.resize(3 * kept.size());
    for (std::size_t k = 0; k < kept.size(); ++k) {
      const std::int64_t i = kept[k];
      m_values[k] = cloud.x[i];
      m_values[kept.size() + k] = cloud.y[i];
      m_values[2 * kept.size() + k] = cloud.z[i];
      kept[k] = originals[static_cast<std::size_t>(i)];
    }
  }
  CloudCopy(const CloudCopy &) = delete;
  CloudCopy &operator=(const CloudCopy &) = delete;
  ~CloudCopy() {
    if (m_rows == nullptr) return;
    for (int i = 0; i < 3; ++i)
      ::operator delete(m_rows[i]);
    ::operator delete(m_rows);
  }
  PointColumns Columns() const {
    if (m_rows != nullptr) return {m_rows[0], m_rows[1], m_rows[2], m_n};
    const double *v = m_values.data();
    return {v, v + m_n, v + 2 * m_n, m_n};
  }
  bool AllFinite() const {
    const PointColumns c = Columns();
    for (std::int64_t i = 0; i < c.n; ++i)
      if (!std::isfinite(c.x[i]) || !std::isfinite(c.y[i]) || !std::isfinite(c.z[i])) return false;
    return true;
  }

 private:
  std::int64_t m_n = 0;
  double **m_rows = nullptr;
  std::vector<double> m_values;
};

bool OptionsValid(const ConsensusOptions &o) {
  return std::isfinite(o.inlierThreshold) && o.inlierThreshold > 0.0 && o.confidence > 0.0 &&
         o.confidence < 1.0 && o.maxIterations >= 1 && o.threads >= 0 && o.minInliers >= 0 &&
         std::isfinite(o.minRadius) && o.minRadius >= 0.0 && o.maxRadius >= o.minRadius;
}

bool ShapeValid(ConsensusShape shape) {
  return shape == ConsensusShape::kLine || shape == ConsensusShape::kPlane ||
         shape == ConsensusShape::kCircle || shape == ConsensusShape::kSphere ||
         shape == ConsensusShape::kCylinder;
}

// Threads for a cloud of n points: the caller's number (0: one per core), and
// never more than the blocks of the cloud.
int ThreadsFor(const ConsensusOptions &o, std::int64_t n) {
  std::int64_t threads = o.threads;
  if (threads == 0) threads = std::max(1u, std::thread::hardware_concurrency());
  const std::int64_t blocks = (n + kScoreBlock - 1) / kScoreBlock;
  return static_cast<int>(
      std::max<std::int64_t>(1, std::min<std::int64_t>({threads, blocks, 256})));
}

ConsensusResult Failed(ConsensusShape shape, ConsensusStatus status, std::int64_t iterations) {
  ConsensusResult r;
  r.status = status;
  r.model = ToConsensusModel(shape, Hypothesis(), false);
  r.iterations = iterations;
  return r;
}

// The public result of a search.
ConsensusResult ResultOf(ConsensusShape shape, SearchOutcome &&found) {
  if (found.status != ConsensusStatus::kFound && found.status != ConsensusStatus::kTooFewInliers)
    return Failed(shape, found.status, found.iterations);
  ConsensusResult r;
  r.status = found.status;
  r.model = ToConsensusModel(shape, found.model, true);
  r.inliers = std::move(found.inliers);
  r.inlierCount = static_cast<std::int64_t>(r.inliers.size());
  r.rms = found.rms;
  r.iterations = found.iterations;
  return r;
}

bool ArgumentsValid(ConsensusShape shape, const CMatrix &points, const ConsensusOptions &o) {
  return ShapeValid(shape) && OptionsValid(o) && points.GetRows() == 3;
}

}  // namespace

const char *ConsensusStatusMessage(ConsensusStatus status) {
  switch (status) {
    case ConsensusStatus::kFound:
      return "a model with enough inliers was found";
    case ConsensusStatus::kTooFewInliers:
      return "the best model has fewer inliers than asked for";
    case ConsensusStatus::kDegenerateSamples:
      return "every sample was degenerate";
    case ConsensusStatus::kTooFewPoints:
      return "there are fewer points than a minimal sample";
    case ConsensusStatus::kBadArgument:
      return "the points are not 3 x n and finite, or an option is out of range";
    case ConsensusStatus::kNoModelInRange:
      return "every model had a radius outside the limits";
  }
  return "unknown status";
}

ConsensusResult FindConsensus(ConsensusShape shape, const CMatrix &points,
                              const ConsensusOptions &options) {
  if (!ArgumentsValid(shape, points, options)) {
    return Failed(shape, ConsensusStatus::kBadArgument, 0);
  }
  const CloudCopy copy(points);
  if (!copy.AllFinite()) return Failed(shape, ConsensusStatus::kBadArgument, 0);
  const PointColumns cloud = copy.Columns();
  if (cloud.n < SampleSize(shape)) return Failed(shape, ConsensusStatus::kTooFewPoints, 0);
  BlockPool pool(ThreadsFor(options, cloud.n));
  return ResultOf(shape, SearchConsensus(shape, cloud, options, 0, pool));
}

ConsensusExtraction ExtractConsensus(ConsensusShape shape, const CMatrix &points,
                                     const ConsensusOptions &options, int maxModels) {
  ConsensusExtraction ex;
  if (!ArgumentsValid(shape, points, options) || maxModels < 1) return ex;
  auto current = std::make_unique<CloudCopy>(points);
  if (!current->AllFinite()) return ex;
  const std::int64_t n = points.GetCols();
  ex.labels.assign(static_cast<std::size_t>(n), -1);

  BlockPool pool(ThreadsFor(options, n));
  std::vector<std::int64_t> originals(static_cast<std::size_t>(n));
  for (std::int64_t i = 0; i < n; ++i)
    originals[static_cast<std::size_t>(i)] = i;
  for (int k = 0; k < maxModels; ++k) {
    const PointColumns cloud = current->Columns();
    ConsensusResult r = cloud.n < SampleSize(shape)
                            ? Failed(shape, ConsensusStatus::kTooFewPoints, 0)
                            : ResultOf(shape, SearchConsensus(shape, cloud, options,
                                                              static_cast<std::uint64_t>(k), pool));
    if (r.status != ConsensusStatus::kFound) {
      if (k == 0) ex.status = r.status;
      break;
    }
    std::vector<bool> taken(static_cast<std::size_t>(cloud.n), false);
    for (std::int64_t &i : r.inliers) {
      taken[static_cast<std::size_t>(i)] = true;
      i = originals[static_cast<std::size_t>(i)];
      ex.labels[static_cast<std::size_t>(i)] = k;
    }
    ex.models.push_back(std::move(r));
    std::vector<std::int64_t> kept;
    current = std::make_unique<CloudCopy>(cloud, taken, originals, kept);
    originals.swap(kept);
  }
  if (!ex.models.empty()) ex.status = ConsensusStatus::kFound;
  return ex;
}
