#include "quadrel/frontend/point_matrix.h"

namespace quadrel_frontend {

CMatrix PointMatrix(const quadrel_io::PointSet &set) {
  return CMatrix(set.coordinates(), 3, set.count());
}

CMatrix PlanarMatrix(const quadrel_io::PointSet &set) {
  return CMatrix(set.coordinates(), 2, set.count());
}

CMatrix HeightColumn(const quadrel_io::PointSet &set) {
  return CMatrix(set.axis(2), set.count(), 1);
}

}  // namespace quadrel_frontend
