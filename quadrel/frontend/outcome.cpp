#include "quadrel/frontend/outcome.h"

namespace quadrel_frontend {

const char *StatusName(Status status) {
  switch (status) {
    case Status::kOk:
      return "ok";
    case Status::kTooFewPoints:
      return "too few points";
    case Status::kDegenerate:
      return "degenerate";
    case Status::kBadInput:
      return "bad input";
  }
  return "unknown";
}

}  // namespace quadrel_frontend
