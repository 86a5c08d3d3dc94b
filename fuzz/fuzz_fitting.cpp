// Every fit on random and degenerate point sets: coincident, collinear and
// coplanar points, huge and tiny coordinates, non-finite elements.
#include "fuzz_input.h"

namespace {

CMatrix Points(FuzzInput &in, int least) {
  const int n = in.Int(least, least + 40);
  CMatrix p = in.Numeric(3, n);
  switch (in.Byte() % 5) {
    case 0:  // all coincident
      for (int k = 1; k < n; ++k)
        p.SetCol(Col(p, 0), k);
      break;
    case 1:  // collinear
      for (int k = 0; k < n; ++k)
        p(1, k) = 2.0 * p(0, k), p(2, k) = -p(0, k);
      break;
    case 2:  // coplanar
      for (int k = 0; k < n; ++k)
        p(2, k) = 0.5 * p(0, k) - p(1, k);
      break;
    default:
      break;
  }
  return p;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  FuzzInput in(data, size);
  CMatrix c, n, r, foci, vertex;
  double radius, sum, a, b, sign;
  switch (in.Byte() % 6) {
    case 0:
      LineFit(Points(in, 2), c, n, r);
      break;
    case 1:
      PlaneFit(Points(in, 2), c, n, r);
      break;
    case 2:
      CircleFit(Points(in, 3), c, n, radius, r);
      break;
    case 3:
      SphereFit(Points(in, 4), c, radius, r);
      break;
    case 4:
      EllipseFit(Points(in, 5), foci, n, sum, r);
      break;
    default:
      ParaboloidFit(Points(in, 5), vertex, a, b, sign, r);
      break;
  }
  return 0;
}
