// quadrel-fit's fits through outliers: --inlier-threshold turns a shape
// command into a sample-consensus search followed by the fit of the inliers;
// --extract finds several models one after another; --labels-out writes every
// point with the model that took it.
#ifndef QUADREL_FIT_ROBUST_COMMAND_H
#define QUADREL_FIT_ROBUST_COMMAND_H

#include <cstdint>
#include <limits>
#include <ostream>
#include <string>
#include <vector>

#include "quadrel/frontend/shape_fit.h"
#include "quadrel/io/point_set.h"

namespace quadrel_fit {

struct OutputOptions;

// The options of a fit through outliers, as given on the command line. given
// names the options among --seed, --confidence, --max-iterations,
// --min-inliers, --extract, --labels-out, --min-radius and --max-radius that
// the command line holds.
struct RobustOptions {
  bool on = false;  // --inlier-threshold was given
  double threshold = 0.0;
  std::uint64_t seed = 0;
  double confidence = 0.999;
  std::int64_t maxIterations = 100000;
  std::int64_t minInliers = 0;  // 0: the points of one sample
  int extract = 0;              // --extract N; 0 for a single model
  std::string labelsPath;
  double minRadius = 0.0;
  double maxRadius = std::numeric_limits<double>::infinity();
  std::vector<std::string> given;
};

// Refuses, with an InputError, options that do not go together or values out
// of range: a shape without a search, a threshold that is not positive and
// finite, a confidence outside (0, 1), counts below 1, radius limits that are
// negative, not numbers or the wrong way round, the options of a
// search without --inlier-threshold, and --inlier-threshold with
// --segment-by, or --extract with --residuals or --svg.
void CheckRobustOptions(const quadrel_frontend::ShapeEntry &shape, const RobustOptions &robust,
                        const OutputOptions &output);

// Fits the shape through outliers (robust.on must be set and the options
// checked) and writes the report: one fit, or with --extract one row per
// model. Gives the exit status: kExitOk, or kExitSomeSegments when the inliers
// of a model could not be fitted.
int RunRobust(const quadrel_frontend::ShapeEntry &shape, const quadrel_io::PointSet &points,
              const OutputOptions &output, const RobustOptions &robust, std::ostream &out);

// Writes "x y z label" under a header line of those words, one line per
// point with its coordinates to 17 significant digits and its label; throws an
// OutputError when the file cannot be written.
void WriteLabelsFile(const std::string &path, const quadrel_io::PointSet &points,
                     const std::vector<std::int64_t> &labels);

}  // namespace quadrel_fit

#endif  // QUADREL_FIT_ROBUST_COMMAND_H
