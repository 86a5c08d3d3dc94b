#include "quadrel/metrology/status.h"

const char *MetrologyStatusMessage(MetrologyStatus status) {
  switch (status) {
    case MetrologyStatus::kConverged:
      return "converged";
    case MetrologyStatus::kStepLimit:
      return "stopped at the iteration limit before convergence";
    case MetrologyStatus::kTooFewPoints:
      return "too few points for the feature";
    case MetrologyStatus::kNonFinite:
      return "a coordinate is NaN or infinite";
    case MetrologyStatus::kDegenerate:
      return "the points do not determine the feature";
    case MetrologyStatus::kBadShape:
      return "the point set must be 3 x n";
  }
  return "unknown status";
}
