#include "point_input.h"

#include "errors.h"
#include "quadrel/io/read_error.h"
#include "quadrel/io/read_points.h"

namespace quadrel_fit {

PointSet ReadPointFile(const std::string &path, const quadrel_io::ReadOptions &options) {
  try {
    return quadrel_io::ReadPoints(path, options);
  } catch (const quadrel_io::ReadError &error) {
    throw InputError(error.what());
  }
}

}  // namespace quadrel_fit
