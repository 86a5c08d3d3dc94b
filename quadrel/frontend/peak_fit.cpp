#include "quadrel/frontend/peak_fit.h"

#include <cmath>

#include <quadrel/quadrel.h>

#include "quadrel/frontend/checks.h"
#include "quadrel/frontend/point_matrix.h"

namespace quadrel_frontend {

using quadrel_io::PointSet;

PeakFit FindPeak(const PointSet &samples) {
  PeakFit result;
  const std::string what = "a quality peak search";
  Outcome outcome = RequirePoints(samples, 6, what, "samples");
  if (outcome.ok()) outcome = RequireDistinct(samples, what, 2);
  if (outcome.ok()) outcome = RequireQualityVaries(samples);
  if (!outcome.ok()) {
    result.outcome = std::move(outcome);
    return result;
  }
  result.samples = samples.count();
  for (int k = 1; k < samples.count(); ++k) {
    if (samples.at(2, k) > samples.at(2, result.bestSample)) result.bestSample = k;
  }
  CMatrix peak;
  result.code = FindQualityPeak(HeightColumn(samples), PlanarMatrix(samples), peak);
  result.peak = {peak(0), peak(1)};
  if (!std::isfinite(result.peak[0]) || !std::isfinite(result.peak[1])) {
    PeakFit refused;
    refused.outcome =
        Outcome::Refused(Status::kDegenerate, "the quality peak search of " + samples.name() +
                                                  " gave a position that is not a number (code " +
                                                  std::to_string(result.code) +
                                                  "); the samples do not determine a surface");
    return refused;
  }
  return result;
}

std::string PeakMethod(int code) {
  switch (code) {
    case 0:
      return "maximum of the fitted surface";
    case 1:
      return "climb stopped: heading turned more than 70 degrees";
    case 2:
      return "maximum beyond reach: climbed six steps";
    case 3:
      return "surface has no maximum: climbed six steps";
    case 4:
      return "surface does not fit the data: best sample";
    case 5:
      return "climb stopped: left the quality band";
    default:
      return "unknown code " + std::to_string(code);
  }
}

}  // namespace quadrel_frontend
