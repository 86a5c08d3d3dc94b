// Where a quality sampled at scattered 2-D positions is highest.
//
// A quadratic surface is fitted by least squares to all samples. Its analytic
// maximum is taken when the surface fits, is concave and peaks within reach of
// the samples; otherwise the function falls back on the best sample, or on a
// short climb up the surface from it. The return code tells which route gave
// the position.
//
// NaN and infinite input never reaches the fit: it gives code 4 and the best
// sample. Finite positions whose squares overflow reach it; the result is then
// not meaningful, but the call ends with a code and a 2 x 1 peak.
#ifndef QUADREL_ESTIMATORS_QUALITY_PEAK_H
#define QUADREL_ESTIMATORS_QUALITY_PEAK_H

#include "quadrel/export.h"
#include "quadrel/matrix/matrix.h"

// quality is n x 1, positions 2 x n (sample k in column k); peak becomes the
// 2 x 1 position found. Returns 0: the surface's maximum; 2 (concave, maximum
// out of reach) or 3 (not concave): the end of a six-step climb from the best
// sample; 1 or 5: a climb stopped by a turn of more than 70 degrees or by
// leaving the band of twice the residual deviation round the best quality;
// 4: the best sample, the fit being too poor (residual deviation above 5.0).
// A single sample, or a value that is not finite, also gives 4 with the best
// sample (as Max picks it): no surface can be judged from them. The caller
// keeps n >= 1 and peak distinct from the inputs; a useful fit needs n >= 6.
QUADREL_API int FindQualityPeak(const CMatrix &quality, const CMatrix &positions, CMatrix &peak);

#endif  // QUADREL_ESTIMATORS_QUALITY_PEAK_H
