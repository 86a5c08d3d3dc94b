// The written form of a CMatrix on a text stream.
#ifndef QUADREL_MATRIX_STREAM_H
#define QUADREL_MATRIX_STREAM_H

#include <ostream>

#include "quadrel/export.h"
#include "quadrel/matrix/matrix.h"

// Writes A in brackets and returns stream. A vector (one row or one column,
// 1 x 1 included) goes on one line, "[ 1 2 3 ];", a column marked by a quote,
// "[ 1 2 3 ]';". Any other matrix writes its rows with "; ...\n" between them:
// "[ 1 2; ...\n3 4 ];". A matrix with no rows writes only "[ ". Elements use the
// stream's own settings; no line feed follows. A 1 x 0 or 0 x 1 matrix must not
// be passed: it takes the vector form but has no element to write.
// NaN and infinities are written as the stream writes those doubles.
QUADREL_API std::ostream &operator<<(std::ostream &stream, const CMatrix &A);

#endif  // QUADREL_MATRIX_STREAM_H
