// Decompositions and solvers on random, rank-deficient, huge, tiny, NaN and
// infinite elements: every call ends, with no memory fault.
#include "fuzz_input.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  FuzzInput in(data, size);
  const int cols = in.Int(0, 6);
  const int rows = in.Int(cols == 0 ? 1 : 0, 9);  // fewer rows than columns is legal too
  const CMatrix a = in.Numeric(rows, cols);
  CMatrix u, s, v, x, l, p;
  switch (in.Byte() % 6) {
    case 0:
      (void)Svd(a, u, s, v), (void)Cond(a);
      break;
    case 1:
      (void)Lsq(a, in.Numeric(rows, in.Int(1, 3)), x);
      break;
    case 2: {
      const int n = in.Int(1, 6);
      const CMatrix square = in.Numeric(n, n);
      (void)Det(square);
      x = Inv(square);
      Lu(square, l, u, p);
      Lu(square, l, u);
      break;
    }
    case 3:
      if (rows > 0 && cols + 1 >= rows - 1) Lu(a, l, u, p);
      break;
    case 4:
      if (rows > 0) {
        const int degree = in.Int(0, rows - 1 < 5 ? rows - 1 : 5);
        const CMatrix xs = in.Numeric(rows, 1), ys = in.Numeric(rows, in.Int(1, 2));
        x = Polyfit(xs, ys, degree);
        x = Polyval(Col(x, 0), in.Numeric(in.Int(0, 3), in.Int(0, 3)));
      }
      break;
    default: {
      // An empty coefficient list is 0 x 0; a 1 x 0 list would claim one.
      const int terms = in.Int(0, 5);
      x = Polyval(terms == 0 ? CMatrix(0, 0) : in.Numeric(1, terms), a);
      break;
    }
  }
  return 0;
}
