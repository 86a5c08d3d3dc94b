// The error every point reader reports a fault of its input with.
#ifndef QUADREL_IO_READ_ERROR_H
#define QUADREL_IO_READ_ERROR_H

#include <cstdint>
#include <stdexcept>
#include <string>

namespace quadrel_io {

// What the position of a fault counts: a line of a text file or of a header
// (from 1), or a byte of a binary file (from 0).
enum class PositionKind { kLine, kByte };

// A file that cannot be read, or content that is not a valid point file.
// what() is the whole message as a person reads it ("points.txt:4: 'five' is
// not a number", "scan.ply: at byte 1048: ..."); file() is the name as the
// message shows it; position() the line (from 1) or byte (from 0) the fault
// lies at, or 0 with kLine when the fault concerns the file as a whole (the
// fault then names the file itself); fault() is the message without the
// "file:position: " prefix.
class ReadError : public std::runtime_error {
 public:
  ReadError(std::string file, std::int64_t position, std::string fault,
            PositionKind kind = PositionKind::kLine);

  const std::string &file() const { return file_; }
  std::int64_t position() const { return position_; }
  PositionKind positionKind() const { return kind_; }
  const std::string &fault() const { return fault_; }

 private:
  std::string file_;
  std::int64_t position_;
  PositionKind kind_;
  std::string fault_;
};

}  // namespace quadrel_io

#endif  // QUADREL_IO_READ_ERROR_H
