// Point files as text: one point per line, three numbers each.
//
// Numbers are separated by spaces, tabs or commas; or, when the first line
// that holds anything has a semicolon, by semicolons, with decimal commas
// ("1,25;3,5;-0,75"). Empty lines and lines whose first visible character is
// '#' are skipped, a UTF-8 byte order mark at the start is skipped, and the
// first remaining line may be a header made only of words ("x y z"). Every
// other line must hold exactly three finite numbers, or as many as a header
// of more than three words names: x, y and z are then the columns of those
// names (or the first three) and every other column is kept under its name.
#ifndef QUADREL_IO_TEXT_READER_H
#define QUADREL_IO_TEXT_READER_H

#include <string>
#include <string_view>

#include "quadrel/io/point_set.h"
#include "quadrel/io/read_options.h"

namespace quadrel_io {

// Parses the text of a point file; name is the source as messages show it.
// The origin of each point is its line, from 1. Any fault stops the parse with
// a ReadError whose message names the file, the line and the fault.
PointSet ParsePointText(std::string_view text, const std::string &name,
                        const ReadOptions &options = kPointColumns);

}  // namespace quadrel_io

#endif  // QUADREL_IO_TEXT_READER_H
