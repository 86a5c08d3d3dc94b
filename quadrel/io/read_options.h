// Choices the caller makes about how a point file is read.
#ifndef QUADREL_IO_READ_OPTIONS_H
#define QUADREL_IO_READ_OPTIONS_H

namespace quadrel_io {

// columnNames says what the three numbers of a point stand for, as messages
// name them ("expected 3 numbers (x y quality), found 2").
struct ReadOptions {
  const char *columnNames = "x y z";
};

// Points in space, and samples of a quality over a plane.
constexpr ReadOptions kPointColumns{"x y z"};
constexpr ReadOptions kSampleColumns{"x y quality"};

}  // namespace quadrel_io

#endif  // QUADREL_IO_READ_OPTIONS_H
