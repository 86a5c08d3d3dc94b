#include "quadrel/testing/test_util.h"

#include <cmath>
#include <cstring>
#include <sstream>
#include <vector>

CMatrix MakeMatrix(int rows, int cols, std::initializer_list<double> rowMajor) {
  std::vector<double> values(rowMajor);
  values.resize(static_cast<size_t>(rows) * cols, 0.0);
  return CMatrix(values.data(), rows, cols);
}

CMatrix MakeCol(std::initializer_list<double> values) {
  return MakeMatrix(static_cast<int>(values.size()), 1, values);
}

CMatrix MakeRow(std::initializer_list<double> values) {
  return MakeMatrix(1, static_cast<int>(values.size()), values);
}

std::string Describe(const CMatrix &m) {
  std::ostringstream out;
  out.precision(17);
  out << m.GetRows() << " x " << m.GetCols() << " [";
  for (int i = 0; i < m.GetRows(); ++i) {
    if (i > 0) out << "; ";
    for (int j = 0; j < m.GetCols(); ++j)
      out << (j > 0 ? " " : "") << m(i, j);
  }
  out << "]";
  return out.str();
}

namespace {

// Both matrices in full when they are small enough to read.
std::string Both(const CMatrix &a, const CMatrix &b) {
  if (static_cast<long long>(a.GetRows()) * a.GetCols() + b.GetRows() * b.GetCols() > 200)
    return "";
  return ": " + Describe(a) + " vs " + Describe(b);
}

// The first element (in row order) where equal(a(i, j), b(i, j)) fails, or
// the differing shapes.
template <typename Equal>
::testing::AssertionResult Compare(const CMatrix &a, const CMatrix &b, Equal equal,
                                   const char *what) {
  if (a.GetRows() != b.GetRows() || a.GetCols() != b.GetCols())
    return ::testing::AssertionFailure()
           << "shapes differ: " << a.GetRows() << " x " << a.GetCols() << " vs " << b.GetRows()
           << " x " << b.GetCols() << Both(a, b);
  for (int i = 0; i < a.GetRows(); ++i)
    for (int j = 0; j < a.GetCols(); ++j)
      if (!equal(a(i, j), b(i, j))) {
        std::ostringstream out;
        out.precision(17);
        out << "element (" << i << ", " << j << ") " << what << ": " << a(i, j) << " vs " << b(i, j)
            << Both(a, b);
        return ::testing::AssertionFailure() << out.str();
      }
  return ::testing::AssertionSuccess();
}

bool SameBitsOf(double x, double y) {
  return std::memcmp(&x, &y, sizeof x) == 0;
}

}  // namespace

::testing::AssertionResult SameBits(const CMatrix &a, const CMatrix &b) {
  return Compare(a, b, SameBitsOf, "differs");
}

::testing::AssertionResult SameValues(const CMatrix &a, const CMatrix &b) {
  return Compare(
      a, b, [](double x, double y) { return (std::isnan(x) && std::isnan(y)) || SameBitsOf(x, y); },
      "differs");
}

::testing::AssertionResult Near(const CMatrix &a, const CMatrix &b, double tol) {
  std::ostringstream what;
  what << "differs by more than " << tol;
  return Compare(
      a, b, [tol](double x, double y) { return std::fabs(x - y) <= tol; }, what.str().c_str());
}

CMatrix LiteralProduct(const CMatrix &A, const CMatrix &B) {
  CMatrix R(A.GetRows(), B.GetCols());
  for (int i = 0; i < A.GetRows(); ++i)
    for (int j = 0; j < B.GetCols(); ++j) {
      double acc = 0.0;
      for (int k = 0; k < A.GetCols(); ++k)
        acc = A(i, k) * B(k, j) + acc;
      R(i, j) = acc;
    }
  return R;
}

std::uint64_t TestRandom::Next() {
  state_ ^= state_ >> 12;
  state_ ^= state_ << 25;
  state_ ^= state_ >> 27;
  return state_ * 2685821657736338717ULL;
}

double TestRandom::Uniform(double lo, double hi) {
  const double unit = static_cast<double>(Next() >> 11) * (1.0 / 9007199254740992.0);
  return lo + (hi - lo) * unit;
}

double TestRandom::Normal() {
  double u = Uniform(0.0, 1.0);
  while (u <= 0.0)
    u = Uniform(0.0, 1.0);
  const double v = Uniform(0.0, 1.0);
  return std::sqrt(-2.0 * std::log(u)) * std::cos(6.283185307179586 * v);
}

CMatrix TestRandom::Matrix(int rows, int cols, double lo, double hi) {
  CMatrix m(rows, cols);
  for (int i = 0; i < rows; ++i)
    for (int j = 0; j < cols; ++j)
      m(i, j) = Uniform(lo, hi);
  return m;
}
