// Errors of quadrel-fit and the exit status each one ends the program with.
#ifndef QUADREL_FIT_ERRORS_H
#define QUADREL_FIT_ERRORS_H

#include <stdexcept>
#include <string>

namespace quadrel_fit {

// Exit statuses of the program.
constexpr int kExitOk = 0;
constexpr int kExitFailure = 1;       // an output file could not be written
constexpr int kExitUsage = 2;         // bad command line, bad input or degenerate data
constexpr int kExitSomeSegments = 3;  // --segment-by: a segment could not be fitted

// A problem that ends the run: main prints "quadrel-fit: <what()>" on standard
// error and exits with exitStatus(). Nothing has been written to standard
// output when one is thrown.
class ToolError : public std::runtime_error {
 public:
  ToolError(const std::string &message, int exitStatus)
      : std::runtime_error(message), exitStatus_(exitStatus) {}
  int exitStatus() const { return exitStatus_; }

 private:
  int exitStatus_;
};

// A bad command line, an unreadable or malformed input file, too few points,
// or data that determines no shape.
class InputError : public ToolError {
 public:
  explicit InputError(const std::string &message) : ToolError(message, kExitUsage) {}
};

// Writing an output file failed.
class OutputError : public ToolError {
 public:
  explicit OutputError(const std::string &message) : ToolError(message, kExitFailure) {}
};

}  // namespace quadrel_fit

#endif  // QUADREL_FIT_ERRORS_H
