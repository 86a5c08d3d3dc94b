// The outcome of every metrology function, and the result records they share.
//
// No metrology function throws: each returns a MetrologyStatus, and the result
// fields are meaningful exactly when the status is kConverged or kStepLimit.
// For any other status the outputs keep the shapes stated below but hold NaN.
#ifndef QUADREL_METROLOGY_STATUS_H
#define QUADREL_METROLOGY_STATUS_H

#include "quadrel/matrix/matrix.h"
#include "quadrel/metrology/export.h"

enum class MetrologyStatus : int {
  kConverged = 0,     // the optimality test passed
  kStepLimit = 1,     // the iteration limit ran out first: the best result found so far
  kTooFewPoints = 2,  // fewer points than the feature needs
  kNonFinite = 3,     // a coordinate is NaN or infinite
  kDegenerate = 4,    // the points do not determine the feature (e.g. collinear for a cylinder)
  kBadShape = 5,      // the point set is not 3 x n (or an argument is out of range)
};

// A fixed English sentence for the status, e.g. "the points do not determine
// the feature". Never null; the text is static.
QUADREL_METROLOGY_API const char *MetrologyStatusMessage(MetrologyStatus status);

// What a Gaussian (least-squares orthogonal-distance) fit reports beside the
// feature. residuals is n x 1, one signed orthogonal distance per point (the
// sign convention is the feature's). covariance is q x q and uncertainties
// q x 1 (the square roots of its diagonal) in the feature's natural parameters,
// listed with each fit; both scale the inverse normal matrix by the residual
// variance sum(r^2) / (m - p), m residuals and p degrees of freedom.
struct GaussianFitInfo {
  MetrologyStatus status = MetrologyStatus::kBadShape;
  int iterations = 0;
  double rms = 0.0;  // root mean square of the orthogonal distances
  CMatrix residuals;
  CMatrix covariance;
  CMatrix uncertainties;
};

// What a Chebyshev (minimum-zone, circumscribed or inscribed) evaluation
// reports. width is the form error: the zone width for minimum zone, or the
// spread max - min of the deviations from the reference feature otherwise.
// deviations is n x 1, each point's signed deviation from the reference
// feature. contacts (k x 1) holds the column numbers of the points that bound
// the result and sides (k x 1) +1 for the outer or upper bound, -1 for the
// inner or lower one.
struct ZoneInfo {
  MetrologyStatus status = MetrologyStatus::kBadShape;
  int iterations = 0;
  double width = 0.0;
  CMatrix deviations;
  CMatrix contacts;
  CMatrix sides;
};

#endif  // QUADREL_METROLOGY_STATUS_H
