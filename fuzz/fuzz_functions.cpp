// Pattern constructors, rearrangement, sorting and reductions, with NaN and
// infinite elements among the inputs.
#include <cmath>

#include "fuzz_input.h"

namespace {
double Twice(double x) {
  return x * 2.0;
}
}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  FuzzInput in(data, size);
  int rows, cols;
  in.Shape(10, 10, rows, cols);
  const CMatrix a = in.Matrix(rows, cols);
  CMatrix out, index;
  while (!in.Empty()) {
    switch (in.Byte() % 16) {
      case 0: {
        const int n = in.Int(0, 8);
        out = Zeros(n), out = Ones(n, in.Int(0, 8)), out = Eye(n, in.Int(0, 8)), out = Eye(n);
        out = Zeros(a), out = Ones(a), out = Diag(a);
        break;
      }
      case 1: {
        // Any start, stop and step, as long as the count stays small: an empty
        // or a degenerate range is legal input.
        const double start = in.Double(), step = in.Double();
        const double stop = start + step * in.Range(-3.0, 300.0);
        if (std::fabs((stop - start) / step) < 1000.0 || !(step == step))
          out = Seq(start, stop, step);
        out = Seq(start, in.Double(), 0.0);
        out = Linspace(in.Double(), in.Double(), in.Int(0, 50));
        break;
      }
      case 2:
        if (cols > 0) out = Col(a, in.Int(0, cols - 1)), out = ExcludeCol(a, in.Int(0, cols - 1));
        if (rows > 0) out = Row(a, in.Int(0, rows - 1));
        // Without a row, a matrix of more than 9 columns cannot exist.
        if (rows > 1 || (rows == 1 && cols <= 9)) out = ExcludeRow(a, in.Int(0, rows - 1));
        if ((rows > 1 || (rows == 1 && cols <= 9)) && cols > 0)
          out = Exclude(a, in.Int(0, rows - 1), in.Int(0, cols - 1));
        break;
      case 3: {
        const CMatrix b = in.Matrix(rows + in.Int(0, 2), in.Int(0, 9));
        if (rows > 0 || cols + b.GetCols() <= 9) out = ColCat(a, b);
        const CMatrix c = in.Matrix(in.Int(0, 4), cols + in.Int(0, 2));
        if (c.GetCols() >= cols) out = RowCat(a, c);
        break;
      }
      case 4:
        out = Flipud(a), out = Fliplr(a);
        if (cols > 0 || rows <= 9) out = Transpose(a);  // the transpose must be a legal shape
        break;
      case 5:
        out = Sort(a), out = Sort(a, index);
        break;
      case 6:
        out = Sum(a), out = Mean(a), out = Std(a), out = Std(a, index);
        break;
      case 7:
        // Min and Max need an element in every path.
        if (rows == 1 ? cols > 0 : rows > 0 || cols == 0)
          out = Min(a), out = Max(a, index), out = Max(a), out = Min(a, index);
        break;
      case 8:
        out = Abs(a), out = Eval(a, Twice), out = Eval(a, std::sqrt);
        break;
      case 9:
        (void)Any(a), (void)All(a), (void)Find(a, index);
        break;
      default:
        break;
    }
  }
  return 0;
}
