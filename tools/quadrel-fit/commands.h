// The commands of quadrel-fit, from reading the input to writing the results.
// Each writes its results to out only when it has all of them; a problem ends
// it with a ToolError before anything is written.
#ifndef QUADREL_FIT_COMMANDS_H
#define QUADREL_FIT_COMMANDS_H

#include <array>
#include <ostream>
#include <string>

#include "quadrel/frontend/outcome.h"
#include "quadrel/frontend/shape_fit.h"

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

// quadrel-fit SHAPE [FILE]; gives the exit status: kExitOk, or with
// --segment-by kExitSomeSegments when a segment could not be fitted.
int RunShapeCommand(const quadrel_frontend::ShapeEntry &shape, const std::string &path,
                    const OutputOptions &options, std::ostream &out);
// quadrel-fit trihedral FILE1 FILE2 FILE3; the edge angle in degrees, strictly
// between 0 and 120.
void RunTrihedralCommand(const std::array<std::string, 3> &paths, double edgeAngleDegrees,
                         const OutputOptions &options, std::ostream &out);
// quadrel-fit peak FILE
void RunPeakCommand(const std::string &path, const OutputOptions &options, std::ostream &out);

}  // namespace quadrel_fit

#endif  // QUADREL_FIT_COMMANDS_H
