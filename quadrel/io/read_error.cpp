#include "quadrel/io/read_error.h"

#include <utility>

namespace quadrel_io {

namespace {

std::string Message(const std::string &file, std::int64_t position, const std::string &fault,
                    PositionKind kind) {
  if (kind == PositionKind::kByte)
    return file + ": at byte " + std::to_string(position) + ": " + fault;
  if (position <= 0) return fault;
  return file + ":" + std::to_string(position) + ": " + fault;
}

}  // namespace

ReadError::ReadError(std::string file, std::int64_t position, std::string fault, PositionKind kind)
    : std::runtime_error(Message(file, position, fault, kind)),
      file_(std::move(file)),
      position_(position),
      kind_(kind),
      fault_(std::move(fault)) {}

}  // namespace quadrel_io
