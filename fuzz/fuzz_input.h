// Turns the fuzzer's bytes into arguments that stay inside the library's
// contracts: shapes that exist, indices in range, operands large enough, and
// elements drawn from a palette that includes zeros of both signs, tiny and
// huge magnitudes, NaN and infinities.
#ifndef QUADREL_FUZZ_FUZZ_INPUT_H
#define QUADREL_FUZZ_FUZZ_INPUT_H

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>

#include "quadrel/quadrel.h"

class FuzzInput {
 public:
  FuzzInput(const std::uint8_t *data, std::size_t size) : data_(data), size_(size) {}

  bool Empty() const { return size_ == 0; }

  std::uint8_t Byte() {
    if (size_ == 0) return 0;
    --size_;
    return *data_++;
  }

  // An integer in [lo, hi].
  int Int(int lo, int hi) {
    const unsigned span = static_cast<unsigned>(hi - lo) + 1u;
    unsigned value = Byte();
    if (span > 256) value = value << 8 | Byte();
    return lo + static_cast<int>(value % span);
  }

  bool Bool() { return Byte() & 1; }

  // Any double: mostly ordinary values, sometimes a special one, sometimes raw
  // bits. finiteOnly leaves out NaN and the infinities.
  double Double(bool finiteOnly = false) {
    const std::uint8_t kind = Byte();
    double value = 0.0;
    switch (kind % 16) {
      case 0:
        value = 0.0;
        break;
      case 1:
        value = -0.0;
        break;
      case 2:
        value = 1.0;
        break;
      case 3:
        value = -1.0;
        break;
      case 4:
        value = 1e-300;
        break;
      case 5:
        value = 1e300;
        break;
      case 6:
        value = std::numeric_limits<double>::quiet_NaN();
        break;
      case 7:
        value = std::numeric_limits<double>::infinity();
        break;
      case 8:
        value = -std::numeric_limits<double>::infinity();
        break;
      case 9:
        value = std::numeric_limits<double>::denorm_min();
        break;
      case 10: {
        std::uint64_t bits = 0;
        for (int k = 0; k < 8; ++k)
          bits = bits << 8 | Byte();
        std::memcpy(&value, &bits, sizeof value);
        break;
      }
      default:
        value = (static_cast<int>(Byte()) - 128) / 16.0 + Byte() / 4096.0;
        break;
    }
    if (finiteOnly && !(value - value == 0.0)) value = 0.5;
    return value;
  }

  // A double in [lo, hi], finite.
  double Range(double lo, double hi) {
    const unsigned value = static_cast<unsigned>(Byte()) << 8 | Byte();
    return lo + (hi - lo) * (value / 65535.0);
  }

  // A legal shape with at most maxRows x maxCols; a matrix with no rows keeps
  // to 9 columns at most.
  void Shape(int maxRows, int maxCols, int &rows, int &cols) {
    rows = Int(0, maxRows);
    cols = Int(0, maxCols);
    if (rows == 0 && cols > 9) cols = 9;
  }

  CMatrix Matrix(int rows, int cols, bool finiteOnly = false) {
    if (rows == 0 && cols > 9) cols = 9;  // no such shape exists
    CMatrix m(rows, cols);
    for (int i = 0; i < rows; ++i)
      for (int j = 0; j < cols; ++j)
        m(i, j) = Double(finiteOnly);
    if (cols > 1 && Bool()) m.SwapCols(Int(0, cols - 1), Int(0, cols - 1));
    return m;
  }

  // A matrix of moderate finite values, optionally rank-deficient (a column
  // repeated), scaled tiny or huge.
  CMatrix Numeric(int rows, int cols) {
    CMatrix m(rows, cols);
    const int style = Byte() % 6;
    const double scale = style == 3 ? 1e-150 : style == 4 ? 1e150 : 1.0;
    for (int i = 0; i < rows; ++i)
      for (int j = 0; j < cols; ++j)
        m(i, j) = scale * Range(-10.0, 10.0);
    if (style == 1 && cols > 1) m.SetCol(Col(m, 0), cols - 1);
    if (style == 5) m = Matrix(rows, cols);
    return m;
  }

 private:
  const std::uint8_t *data_;
  std::size_t size_;
};

#endif  // QUADREL_FUZZ_FUZZ_INPUT_H
