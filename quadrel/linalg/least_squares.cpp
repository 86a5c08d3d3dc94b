#include "quadrel/linalg/least_squares.h"

#include <cstddef>
#include <new>

#include "quadrel/linalg/svd.h"
#include "quadrel/linalg/svd_core.h"
#include "quadrel/linalg/tall_lsq.h"
#include "quadrel/matrix/access.h"
#include "quadrel/matrix/contract.h"

namespace {

// count values of type T, on the stack when few are needed (and the caller
// allows it), on the heap otherwise; freed on every way out.
template <class T, std::size_t kLocal>
class Scratch {
 public:
  explicit Scratch(std::size_t count, bool local = true)
      : data_(local && count <= kLocal ? local_
                                       : static_cast<T *>(::operator new(sizeof(T) * count))) {}
  ~Scratch() {
    if (data_ != local_) ::operator delete(data_);
  }
  Scratch(const Scratch &) = delete;
  Scratch &operator=(const Scratch &) = delete;

  T *Data() { return data_; }

 private:
  T local_[kLocal];
  T *data_;
};

// Row arrays in one block plus a row table, as SvdCore takes them. Both are on
// the stack only for a few rows, so that the number of allocations is the same
// for every longer system.
class Rows {
 public:
  Rows(int rows, int cols)
      : data_(static_cast<std::size_t>(rows) * static_cast<std::size_t>(cols), rows <= kLocalRows),
        table_(static_cast<std::size_t>(rows)) {
    double **table = table_.Data();
    for (int i = 0; i < rows; ++i)
      table[i] = data_.Data() + static_cast<std::ptrdiff_t>(i) * cols;
  }
  double **Table() { return table_.Data(); }

 private:
  static constexpr int kLocalRows = 8;
  static constexpr std::size_t kLocalData = 64;
  Scratch<double, kLocalData> data_;
  Scratch<double *, kLocalRows> table_;
};

// x = P * b for one right-hand side b and N unknowns, P(i, k) = sum over c of
// vt(i, c) * u[k][c]: each P(i, k) and each x(i) is a sum from 0.0 in rising
// index, as the two products form them. x must hold N zeros. Rows i go in
// pairs, one lane each; an odd last row goes alone.
template <int N>
void SolveColumn(double *const *u, int m, const double *vt, const double *b, double *x) {
  constexpr int kPairs = N / 2;
  constexpr int kSlots = kPairs > 0 ? kPairs : 1;
  constexpr bool kOdd = N % 2 == 1;
  DoublePair coefficient[N][kSlots];
  double last[N];
  for (int c = 0; c < N; ++c) {
    for (int p = 0; p < kPairs; ++p)
      coefficient[c][p] = MakePair(vt[(2 * p) * N + c], vt[(2 * p + 1) * N + c]);
    last[c] = kOdd ? vt[(N - 1) * N + c] : 0.0;
  }
  DoublePair acc[kSlots];
  for (int p = 0; p < kPairs; ++p)
    acc[p] = LoadPair(x + 2 * p);
  double accLast = kOdd ? x[N - 1] : 0.0;
  for (int k = 0; k < m; ++k) {
    const double *uk = u[k];
    DoublePair column[kSlots];
    for (int p = 0; p < kPairs; ++p)
      column[p] = SplatPair(0.0);
    double columnLast = 0.0;
    for (int c = 0; c < N; ++c) {
      const DoublePair uc = SplatPair(uk[c]);
      for (int p = 0; p < kPairs; ++p)
        column[p] = coefficient[c][p] * uc + column[p];
      if (kOdd) columnLast = last[c] * uk[c] + columnLast;
    }
    const DoublePair bk = SplatPair(b[k]);
    for (int p = 0; p < kPairs; ++p)
      acc[p] = column[p] * bk + acc[p];
    if (kOdd) accLast = columnLast * b[k] + accLast;
  }
  for (int p = 0; p < kPairs; ++p)
    StorePair(x + 2 * p, acc[p]);
  if (kOdd) x[N - 1] = accLast;
}

// The solution goes to x last, when nothing reads A or b any more.
double Finish(const CMatrix &R, CMatrix &x, double cond) {
  x = R;
  return cond;
}

}  // namespace

// The result is the one of the plain formulation: Svd(A, U, S, V), the largest
// singular value by Max(Diag(S)), the rank threshold, T = S with its non-zero
// diagonal inverted, P = (V * T) * Transpose(U) and x = P * b. The work is
// done on SvdCore's own arrays, without the matrices U, S, V, Transpose(U) and
// P: every element of V * T and of P is formed as that product forms it (a sum
// from 0.0 in rising order of acc = left * right + acc), and each element of x
// takes acc = P(i, k) * b(k, j) + acc in rising k. P is formed one column at a
// time, as soon as its row of U is known, and goes straight into those sums.
double Lsq(const CMatrix &A, const CMatrix &b, CMatrix &x) {
  QUADREL_EXPECTS(b.GetRows() == A.GetRows(),
                  "right-hand side has " + QuadrelDims(b) + ", needs the " +
                      QuadrelFormat("%d", A.GetRows()) + " rows of the system " + QuadrelDims(A));
  const int m = A.GetRows();
  const int n = A.GetCols();
  if (n == 0) {
    // No unknowns: nothing to search and nothing to solve for.
    const double cond = Cond(A);
    x = CMatrix(0.0, 0, b.GetCols());
    return cond;
  }

  if (b.GetCols() == 1 && m >= n && n <= kTallLsqMaxUnknowns) {
    // The usual system of the fits: TallLsq on a copy of the columns, on the
    // stack for a few rows only, as in Rows.
    Scratch<double, 64> columns(static_cast<std::size_t>(m) * static_cast<std::size_t>(n), m <= 8);
    double *table[kTallLsqMaxUnknowns];
    for (int j = 0; j < n; ++j) {
      table[j] = columns.Data() + static_cast<std::ptrdiff_t>(j) * m;
      const double *from = CMatrixAccess::Col(A, j);
      for (int k = 0; k < m; ++k)
        table[j][k] = from[k];
    }
    CMatrix R(n, 1);
    const double cond = TallLsq(table, m, n, CMatrixAccess::Col(b, 0), CMatrixAccess::Col(R, 0));
    return Finish(R, x, cond);
  }

  // Svd works on a wide matrix as if padded with zero rows to n x n.
  const int rows = m < n ? n : m;
  Rows a(rows, n);
  {
    double **t = a.Table();
    const double *const *column = CMatrixAccess::Table(A);
    for (int i = 0; i < rows; ++i)
      for (int j = 0; j < n; ++j)
        t[i][j] = i < m ? column[j][i] : 0.0;
  }
  Rows v(n, n);
  Scratch<double, 16> w(static_cast<std::size_t>(n));
  const double cond = 1.0 / SvdCore(a.Table(), rows, n, w.Data(), v.Table());
  double *sv = w.Data();

  // The singular values are unsorted, so the largest is searched for; the
  // first of equal values wins, as in Max.
  int best = 0;
  for (int i = 1; i < n; ++i)
    if (sv[i] > sv[best]) best = i;
  const double largest = sv[best];
  // The row count of the padded matrix sets the threshold.
  const double tol = static_cast<double>(rows) * largest * 2.220446049250313e-16;
  // Dropped and zero values stay 0 in the inverse.
  for (int i = 0; i < n; ++i) {
    if (sv[i] < tol) sv[i] = 0.0;
    if (sv[i] != 0.0) sv[i] = 1.0 / sv[i];
  }

  // VT = V * T, with T the diagonal matrix of the inverted values and exact
  // zeros elsewhere; those zero terms take part in each sum as in the product.
  const std::size_t nn = static_cast<std::size_t>(n) * static_cast<std::size_t>(n);
  Scratch<double, 64> vt(nn);
  double **vr = v.Table();
  for (int i = 0; i < n; ++i)
    for (int c = 0; c < n; ++c) {
      double acc = 0.0;
      for (int k = 0; k < n; ++k)
        acc = vr[i][k] * (k == c ? sv[c] : 0.0) + acc;
      vt.Data()[static_cast<std::size_t>(i) * n + c] = acc;
    }

  // x = P * b with P(i, k) = sum over c of VT(i, c) * U(k, c); U is the first m
  // rows of a.
  const int cols = b.GetCols();
  CMatrix R(0.0, n, cols);
  double **ur = a.Table();
  const double *const *bc = CMatrixAccess::Table(b);
  double *const *rc = CMatrixAccess::Table(R);
  if (cols == 1) {
    // The usual case of one right-hand side and few unknowns, with every sum
    // held in a register.
    switch (n) {
      case 1:
        SolveColumn<1>(ur, m, vt.Data(), bc[0], rc[0]);
        return Finish(R, x, cond);
      case 2:
        SolveColumn<2>(ur, m, vt.Data(), bc[0], rc[0]);
        return Finish(R, x, cond);
      case 3:
        SolveColumn<3>(ur, m, vt.Data(), bc[0], rc[0]);
        return Finish(R, x, cond);
      case 4:
        SolveColumn<4>(ur, m, vt.Data(), bc[0], rc[0]);
        return Finish(R, x, cond);
      case 5:
        SolveColumn<5>(ur, m, vt.Data(), bc[0], rc[0]);
        return Finish(R, x, cond);
      case 6:
        SolveColumn<6>(ur, m, vt.Data(), bc[0], rc[0]);
        return Finish(R, x, cond);
      default:
        break;
    }
  }
  Scratch<double, 16> pk(static_cast<std::size_t>(n));
  for (int k = 0; k < m; ++k) {
    const double *u = ur[k];
    for (int i = 0; i < n; ++i) {
      const double *vti = vt.Data() + static_cast<std::size_t>(i) * n;
      double acc = 0.0;
      for (int c = 0; c < n; ++c)
        acc = vti[c] * u[c] + acc;
      pk.Data()[i] = acc;
    }
    for (int j = 0; j < cols; ++j) {
      const double bkj = bc[j][k];
      double *r = rc[j];
      for (int i = 0; i < n; ++i)
        r[i] = pk.Data()[i] * bkj + r[i];
    }
  }
  return Finish(R, x, cond);
}
