// Fitting one shape to every segment of a point set: the points that share a
// value in one column (a label, a class, a segment number) fit on their own.
#ifndef QUADREL_FRONTEND_SEGMENT_FIT_H
#define QUADREL_FRONTEND_SEGMENT_FIT_H

#include <string>
#include <vector>

#include "quadrel/frontend/outcome.h"
#include "quadrel/frontend/report.h"
#include "quadrel/frontend/shape_fit.h"
#include "quadrel/io/point_set.h"

namespace quadrel_frontend {

// One segment: its key, its number of points and its fit (a refusal when it
// has too few points or degenerate ones); rms and maxAbs summarize the
// residuals of a fit that is ok.
struct SegmentFit {
  double key = 0;
  int points = 0;
  ShapeFit fit;
  double rms = 0;
  double maxAbs = 0;
};

// Every segment in the order of its first point. outcome is a refusal (and
// segments empty) when the column does not exist, a key is not a finite
// number, or there are no points.
struct SegmentFits {
  Outcome outcome;
  std::string column;
  std::vector<SegmentFit> segments;
  // Every segment fitted (and there is at least one).
  bool AllFitted() const;
};

// Splits the points by the values of `column` (an extra column, or x, y or
// z) and fits the shape to each part. Never throws for bad data.
SegmentFits FitSegments(const ShapeEntry &shape, const quadrel_io::PointSet &points,
                        const std::string &column);

// A key as text: the shortest form that reads back to the same double ("3",
// "0.25"), with -0 as 0.
std::string FormatKey(double key);

// The report of a run per segment: command, file, segment_by, points,
// skipped_points (for files that can hold points without a return), segments
// and fitted; then one row per segment: the key under the column's name,
// points, skipped_in_file (the file's skipped_points, where it has them), status, the fields, rms and max_abs of a fit, its warning or the
// reason of a refusal.
Report SegmentReport(const ShapeEntry &shape, const SegmentFits &fits,
                     const quadrel_io::PointSet &points);

}  // namespace quadrel_frontend

#endif  // QUADREL_FRONTEND_SEGMENT_FIT_H
