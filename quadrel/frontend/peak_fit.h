// The quality peak search as the front ends run it: checks of the samples,
// the call, and how the peak was found in words.
#ifndef QUADREL_FRONTEND_PEAK_FIT_H
#define QUADREL_FRONTEND_PEAK_FIT_H

#include <array>
#include <string>

#include "quadrel/frontend/outcome.h"
#include "quadrel/io/point_set.h"

namespace quadrel_frontend {

// The position of highest quality, the library's code for how it was found
// (see PeakMethod) and the index of the first sample of highest quality.
// Values are set only when outcome is ok.
struct PeakFit {
  Outcome outcome;
  int samples = 0;
  std::array<double, 2> peak{};
  int code = 0;
  int bestSample = 0;
};

// Finds the quality peak of samples read as x, y, quality. Never throws for
// bad data: fewer than 6 samples, samples at one position, a quality that
// never changes, and a position that is no number come back as a refusal.
PeakFit FindPeak(const quadrel_io::PointSet &samples);

// How the peak was found, in words, for every code FindQualityPeak gives.
std::string PeakMethod(int code);

}  // namespace quadrel_frontend

#endif  // QUADREL_FRONTEND_PEAK_FIT_H
