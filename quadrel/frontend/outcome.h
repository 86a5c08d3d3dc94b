// How a fit ended: done, or refused with a reason. The front end never throws
// for bad data; callers that stop at the first refusal (the command-line
// tool) turn it into their own error, callers that fit many point sets (per
// segment, from Python) keep one outcome per set.
#ifndef QUADREL_FRONTEND_OUTCOME_H
#define QUADREL_FRONTEND_OUTCOME_H

#include <string>
#include <utility>

namespace quadrel_frontend {

enum class Status {
  kOk = 0,
  kTooFewPoints = 1,  // fewer points than the fit takes
  kDegenerate = 2,    // points that determine no result, or a result that is no numbers
  kBadInput = 3,      // input that cannot be split or read as asked (no such column, ...)
};

// "ok", "too few points", "degenerate", "bad input".
const char *StatusName(Status status);

// status kOk with an empty reason, or the refusal and a message for a person
// that names the data and the fault.
struct Outcome {
  Status status = Status::kOk;
  std::string reason;

  bool ok() const { return status == Status::kOk; }
  static Outcome Refused(Status status, std::string reason) { return {status, std::move(reason)}; }
};

}  // namespace quadrel_frontend

#endif  // QUADREL_FRONTEND_OUTCOME_H
