// Sample consensus: the search for one model of a shape among outliers, and
// the extraction of several. Each takes the 3 x n view (points.T) of (n, 3)
// points, the shape's number and the options in the order of the C++ struct,
// and gives back the status, the inliers (or labels) and the iterations; the
// package fits the inliers itself.
#include <cstdint>
#include <vector>

#include <quadrel/robust/sample_consensus.h>

#include "bindings.h"
#include "convert.h"

namespace quadrel_python {

namespace {

using Int64Array = py::array_t<std::int64_t>;

ConsensusOptions Options(double threshold, std::uint64_t seed, double confidence,
                         std::int64_t maxIterations, int threads, std::int64_t minInliers,
                         double minRadius, double maxRadius) {
  ConsensusOptions options;
  options.inlierThreshold = threshold;
  options.seed = seed;
  options.confidence = confidence;
  options.maxIterations = maxIterations;
  options.threads = threads;
  options.minInliers = minInliers;
  options.minRadius = minRadius;
  options.maxRadius = maxRadius;
  // Python fits the inliers itself, as an ordinary fit of them.
  options.fitAllInliers = false;
  return options;
}

Int64Array ToArray(const std::vector<std::int64_t> &values) {
  Int64Array array(static_cast<py::ssize_t>(values.size()));
  std::int64_t *out = array.mutable_data();
  for (std::size_t k = 0; k < values.size(); ++k)
    out[k] = values[k];
  return array;
}

// (status, inliers (k,) int64, inlier count, iterations) of one search.
py::tuple Found(const ConsensusResult &result) {
  return py::make_tuple(static_cast<int>(result.status), ToArray(result.inliers),
                        result.inlierCount, result.iterations);
}

}  // namespace

void BindRobust(py::module_ &m) {
  m.def("consensus_status_message",
        [](int status) { return ConsensusStatusMessage(static_cast<ConsensusStatus>(status)); });
  m.def(
      "consensus",
      [](const Array &points, int shape, double threshold, std::uint64_t seed, double confidence,
         std::int64_t maxIterations, int threads, std::int64_t minInliers, double minRadius,
         double maxRadius) {
        const Source source = Describe(points);
        const ConsensusOptions options = Options(threshold, seed, confidence, maxIterations,
                                                 threads, minInliers, minRadius, maxRadius);
        const ConsensusResult result = WithoutGil([&] {
          return FindConsensus(static_cast<ConsensusShape>(shape), InputMatrix(source), options);
        });
        return Found(result);
      },
      py::arg("points"), py::arg("shape"), py::arg("threshold"), py::arg("seed"),
      py::arg("confidence"), py::arg("max_iterations"), py::arg("threads"), py::arg("min_inliers"),
      py::arg("min_radius"), py::arg("max_radius"));
  // (status, labels (n,) int64, [one search per model, as consensus gives it]).
  m.def(
      "extract_consensus",
      [](const Array &points, int shape, double threshold, std::uint64_t seed, double confidence,
         std::int64_t maxIterations, int threads, std::int64_t minInliers, double minRadius,
         double maxRadius, int maxModels) {
        const Source source = Describe(points);
        const ConsensusOptions options = Options(threshold, seed, confidence, maxIterations,
                                                 threads, minInliers, minRadius, maxRadius);
        const ConsensusExtraction extraction = WithoutGil([&] {
          return ExtractConsensus(static_cast<ConsensusShape>(shape), InputMatrix(source), options,
                                  maxModels);
        });
        py::list models;
        for (const ConsensusResult &model : extraction.models)
          models.append(Found(model));
        return py::make_tuple(static_cast<int>(extraction.status), ToArray(extraction.labels),
                              models);
      },
      py::arg("points"), py::arg("shape"), py::arg("threshold"), py::arg("seed"),
      py::arg("confidence"), py::arg("max_iterations"), py::arg("threads"), py::arg("min_inliers"),
      py::arg("min_radius"), py::arg("max_radius"), py::arg("max_models"));
}

}  // namespace quadrel_python
