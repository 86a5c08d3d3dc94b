// Point sets as the library's matrices.
#ifndef QUADREL_FRONTEND_POINT_MATRIX_H
#define QUADREL_FRONTEND_POINT_MATRIX_H

#include <quadrel/quadrel.h>

#include "quadrel/io/point_set.h"

namespace quadrel_frontend {

// All points as a 3 x n matrix, one point per column.
CMatrix PointMatrix(const quadrel_io::PointSet &set);
// x and y of every point as a 2 x n matrix.
CMatrix PlanarMatrix(const quadrel_io::PointSet &set);
// z of every point as an n x 1 column.
CMatrix HeightColumn(const quadrel_io::PointSet &set);

}  // namespace quadrel_frontend

#endif  // QUADREL_FRONTEND_POINT_MATRIX_H
