#include "quadrel/io/read_error.h"

#include <utility>

namespace quadrel_io {

namespace {

std::string Message(const std::string &file, std::int64_t position, const std::string &fault) {
  if (position <= 0) return fault;
  return file + ":" + std::to_string(position) + ": " + fault;
}

}  // namespace

ReadError::ReadError(std::string file, std::int64_t position, std::string fault)
    : std::runtime_error(Message(file, position, fault)),
      file_(std::move(file)),
      position_(position),
      fault_(std::move(fault)) {}

}  // namespace quadrel_io
