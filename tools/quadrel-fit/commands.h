// The commands of quadrel-fit, from reading the input to writing the results.
// Each writes its results to out only when it has all of them; a problem ends
// it with a ToolError before anything is written.
#ifndef QUADREL_FIT_COMMANDS_H
#define QUADREL_FIT_COMMANDS_H

#include <array>
#include <ostream>
#include <string>

#include "quadrel/frontend/outcome.h"
#include "quadrel/frontend/report.h"
#include "quadrel/frontend/shape_fit.h"
#include "quadrel/io/point_set.h"
#include "robust_command.h"

namespace quadrel_fit {

struct OutputOptions {
  bool json = false;
  bool csv = false;        // a table with a header (shape fits)
  bool residuals = false;  // one residual per point as well (shape fits)
  std::string svgPath;     // a picture as well, when set
  std::string segmentBy;   // fit every segment of this column on its own, when set
};

// Throws an InputError with the reason when the outcome is a refusal.
void Require(const quadrel_frontend::Outcome &outcome);

// Draws the fit of the points into the SVG file the options name, if any, and
// prints the fit's warning, if any, on standard error.
void DrawAndWarn(const quadrel_frontend::ShapeFit &fit, const quadrel_io::PointSet &points,
                 const OutputOptions &options);
// A report as the options ask: text, JSON or CSV.
void Write(const quadrel_frontend::Report &report, const OutputOptions &options, std::ostream &out);
// A report with rows (one per segment or model) as the options ask: a text
// table, JSON Lines or CSV.
void WriteTable(const quadrel_frontend::Report &report, const OutputOptions &options,
                std::ostream &out);

// quadrel-fit SHAPE [FILE], through outliers when robust.on; gives the exit
// status: kExitOk, or with --segment-by or --extract kExitSomeSegments when a
// segment or model could not be fitted.
int RunShapeCommand(const quadrel_frontend::ShapeEntry &shape, const std::string &path,
                    const OutputOptions &options, const RobustOptions &robust, std::ostream &out);
// quadrel-fit trihedral FILE1 FILE2 FILE3; the edge angle in degrees, strictly
// between 0 and 120.
void RunTrihedralCommand(const std::array<std::string, 3> &paths, double edgeAngleDegrees,
                         const OutputOptions &options, std::ostream &out);
// quadrel-fit peak FILE
void RunPeakCommand(const std::string &path, const OutputOptions &options, std::ostream &out);

}  // namespace quadrel_fit

#endif  // QUADREL_FIT_COMMANDS_H
