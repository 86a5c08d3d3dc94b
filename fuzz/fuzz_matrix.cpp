// The matrix type and its operators on random shapes, empty ones included, and
// on permuted column tables.
#include <sstream>

#include "fuzz_input.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  FuzzInput in(data, size);
  int rows, cols;
  in.Shape(12, 12, rows, cols);
  CMatrix a = in.Matrix(rows, cols);
  CMatrix b = in.Matrix(rows + in.Int(0, 2), cols + in.Int(0, 2));
  const double s = in.Double();
  while (!in.Empty()) {
    switch (in.Byte() % 24) {
      case 0:
        a = a + b;
        break;
      case 1:
        a = a - b;
        break;
      case 2:
        a = a ^ b;
        break;
      case 3: {
        CMatrix c = in.Matrix(cols, in.Int(0, 9));
        if (rows == 0 && c.GetCols() > 9) break;
        a = a * c;
        cols = a.GetCols();
        b = in.Matrix(rows, cols);
        break;
      }
      case 4:
        a = s - (a * s + s) / s;
        break;
      case 5:
        a += b, a -= s, a *= s, a /= s, a -= b, a += s;
        break;
      case 6:
        a = ((a == s) || (a != s)) && ((a < s) || (a >= s));
        break;
      case 7:
        a = (a > s) && (a <= s);
        break;
      case 8:
        a = -(+a);
        break;
      case 9:
        if (cols > 1) a.SwapCols(in.Int(0, cols - 1), in.Int(0, cols - 1));
        break;
      case 10:
        if (rows > 1) a.SwapRows(in.Int(0, rows - 1), in.Int(0, rows - 1));
        break;
      case 11: {
        int r, c;
        in.Shape(12, 12, r, c);
        a.Resize(r, c);
        rows = r, cols = c;
        b = in.Matrix(rows, cols);
        break;
      }
      case 12:
        if (cols > 0 || rows <= 9) {  // the transpose must be a legal shape
          a.Transpose();
          const int t = rows;
          rows = cols, cols = t;
          b = in.Matrix(rows, cols);
        }
        break;
      case 13: {
        CMatrix index;
        a.Sort(index);
        break;
      }
      case 14:
        if (rows > 0 && cols > 0) {
          CMatrix index(in.Int(0, 3), in.Int(1, 3));
          for (int k = 0; k < index.GetRows() * index.GetCols(); ++k)
            index(k) = in.Int(0, rows * cols - 1) + 0.5;
          CMatrix picked = a(index);
          (void)picked;
        }
        break;
      case 15:
        if (rows > 0 && cols > 0) {
          // A list is a vector with elements, or 0 x 0 for an empty list.
          const int nr = in.Int(0, 4), nc = in.Int(0, 4);
          CMatrix rowList(nr == 0 ? 0 : 1, nr), colList(nc, nc == 0 ? 0 : 1);
          for (int k = 0; k < rowList.GetCols(); ++k)
            rowList(k) = in.Int(0, rows - 1);
          for (int k = 0; k < colList.GetRows(); ++k)
            colList(k) = in.Int(0, cols - 1);
          CMatrix x = a(rowList, colList), y = a(rowList, in.Int(0, cols - 1));
          CMatrix z = a(in.Int(0, rows - 1), colList);
          (void)x, (void)y, (void)z;
        }
        break;
      case 16:
        if (cols > 0) a.SetCol(b, in.Int(0, cols - 1));
        break;
      case 17:
        if (rows > 0) a.SetRow(b, in.Int(0, rows - 1));
        break;
      case 18: {
        CMatrix copy(a);
        CMatrix &alias = copy;
        copy = alias;  // self-assignment changes nothing
        a = copy;
        break;
      }
      case 19:
        if (!((rows == 1 && cols == 0) || (rows == 0 && cols == 1))) {
          std::ostringstream out;
          out << a;
        }
        break;
      case 20: {
        double **buffer = a.GetBuffer2D();
        CMatrix back(buffer, rows, cols);
        for (int i = 0; i < rows; ++i)
          ::operator delete(buffer[i]);
        ::operator delete(buffer);
        a = back;
        break;
      }
      case 21:
        b = in.Matrix(rows + in.Int(0, 1), cols + in.Int(0, 1));
        break;
      case 22:
        a *= Eye(cols);
        break;
      default:
        if (rows > 0 && cols > 0) a(in.Int(0, rows - 1), in.Int(0, cols - 1)) = in.Double();
        break;
    }
  }
  return 0;
}
