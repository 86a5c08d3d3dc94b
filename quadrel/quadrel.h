// quadrel: dense double-precision numerics for point sets in space.
//
// The umbrella header: it brings in the whole interface. Every header it names
// can also be included alone.
#ifndef QUADREL_QUADREL_H
#define QUADREL_QUADREL_H

#include "quadrel/matrix/matrix.h"
#include "quadrel/matrix/operators.h"
#include "quadrel/matrix/stream.h"

#include "quadrel/functions/constructors.h"
#include "quadrel/functions/rearrange.h"
#include "quadrel/functions/reductions.h"

#endif  // QUADREL_QUADREL_H
