// The error every point reader reports a fault of its input with.
#ifndef QUADREL_IO_READ_ERROR_H
#define QUADREL_IO_READ_ERROR_H

#include <cstdint>
#include <stdexcept>
#include <string>

namespace quadrel_io {

// A file that cannot be read, or content that is not a valid point file.
// what() is the whole message as a person reads it ("points.txt:4: 'five' is
// not a number"); file() is the name as the message shows it, position() the
// line (text) or record (binary formats) the fault lies in, from 1, or 0 when
// the fault concerns the file as a whole; fault() is the message without the
// "file:position: " prefix.
class ReadError : public std::runtime_error {
 public:
  ReadError(std::string file, std::int64_t position, std::string fault);

  const std::string &file() const { return file_; }
  std::int64_t position() const { return position_; }
  const std::string &fault() const { return fault_; }

 private:
  std::string file_;
  std::int64_t position_;
  std::string fault_;
};

}  // namespace quadrel_io

#endif  // QUADREL_IO_READ_ERROR_H
