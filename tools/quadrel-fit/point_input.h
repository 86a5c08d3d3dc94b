// Point files as the commands read them: a read error of the file becomes an
// InputError, which ends the run with status 2.
#ifndef QUADREL_FIT_POINT_INPUT_H
#define QUADREL_FIT_POINT_INPUT_H

#include <string>

#include "quadrel/io/point_set.h"
#include "quadrel/io/read_options.h"

namespace quadrel_fit {

using quadrel_io::PointSet;

// Reads the point file at path ("-" for standard input); throws an InputError
// with the reader's message when the file cannot be read or is malformed.
PointSet ReadPointFile(const std::string &path,
                       const quadrel_io::ReadOptions &options = quadrel_io::kPointColumns);

}  // namespace quadrel_fit

#endif  // QUADREL_FIT_POINT_INPUT_H
