// Direct access to the storage of a CMatrix for the library's own hot loops.
//
// Element (i, j) is Col(m, j)[i], exactly what operator()(i, j) reads, without
// a call across the library boundary. Code that walks a matrix element by
// element uses this; the column table is always respected. Reshape lets a
// function fill an output where it stands, DoublePair lets a kernel carry two
// independent sums at once with the bits of the scalar code, and Ahead lets a
// long pass ask for its data before it needs it.
#ifndef QUADREL_MATRIX_ACCESS_H
#define QUADREL_MATRIX_ACCESS_H

#include <cstddef>
#include <cstdint>

#include "quadrel/matrix/matrix.h"

// How far ahead of its position, in elements, a pass over long arrays asks for
// them. The passes of the fits and of their solver do little work per element,
// and once a system outgrows the inner caches the hardware alone does not fetch
// their streams early enough.
constexpr std::size_t kAhead = 256;

// Asks for the cache line at p. A hint only: it never faults.
inline void Fetch(const void *p) {
#if defined(__GNUC__)
  __builtin_prefetch(p);
#else
  (void)p;
#endif
}

// Asks for the cache line kAhead + extra elements past p, also past the end of
// an array (the address is formed as an integer, and the hint never faults).
template <class T>
inline void Ahead(const T *p, std::size_t extra = 0) {
  Fetch(reinterpret_cast<const void *>(reinterpret_cast<std::uintptr_t>(p) +
                                       (kAhead + extra) * sizeof(T)));
}

// For a loop over the points (columns) 0..n - 1 of a point set with column
// table table, at point i, that also walks the arrays streams in step (one
// double per point): asks for the arrays and the point kAhead places on, and
// for the table twice as far ahead, so that its entry is there to be read.
template <int kCount>
inline void AheadPoints(const double *const *table, int i, int n,
                        const double *const (&streams)[kCount]) {
  Ahead(table + i, kAhead);
  for (int t = 0; t < kCount; ++t)
    Ahead(streams[t] + i);
  if (n - i > static_cast<int>(kAhead)) Fetch(table[i + kAhead]);
}

// Two doubles side by side, for the library's own kernels that advance two
// independent sums or elements at once. Each lane is an ordinary IEEE double
// operation (the build never contracts into fused multiply-add), so a lane
// gives exactly the bits of the same scalar code.
#if defined(__GNUC__)
typedef double DoublePair __attribute__((vector_size(16)));
inline DoublePair MakePair(double lo, double hi) {
  return DoublePair{lo, hi};
}
inline double Lane0(DoublePair v) {
  return v[0];
}
inline double Lane1(DoublePair v) {
  return v[1];
}
#else
struct DoublePair {
  double lo, hi;
};
inline DoublePair MakePair(double lo, double hi) {
  return DoublePair{lo, hi};
}
inline double Lane0(DoublePair v) {
  return v.lo;
}
inline double Lane1(DoublePair v) {
  return v.hi;
}
inline DoublePair operator+(DoublePair a, DoublePair b) {
  return DoublePair{a.lo + b.lo, a.hi + b.hi};
}
inline DoublePair operator-(DoublePair a, DoublePair b) {
  return DoublePair{a.lo - b.lo, a.hi - b.hi};
}
inline DoublePair operator*(DoublePair a, DoublePair b) {
  return DoublePair{a.lo * b.lo, a.hi * b.hi};
}
inline DoublePair operator/(DoublePair a, DoublePair b) {
  return DoublePair{a.lo / b.lo, a.hi / b.hi};
}
#endif
inline DoublePair SplatPair(double x) {
  return MakePair(x, x);
}
inline DoublePair LoadPair(const double *p) {
  return MakePair(p[0], p[1]);
}
inline void StorePair(double *p, DoublePair v) {
  p[0] = Lane0(v);
  p[1] = Lane1(v);
}

class CMatrixAccess {
 public:
  static double *Col(CMatrix &m, int j) { return m.m_ppCol[j]; }
  static const double *Col(const CMatrix &m, int j) { return m.m_ppCol[j]; }
  static double &At(CMatrix &m, int i, int j) { return m.m_ppCol[j][i]; }
  static const double &At(const CMatrix &m, int i, int j) { return m.m_ppCol[j][i]; }
  static int Rows(const CMatrix &m) { return m.m_nRows; }
  static int Cols(const CMatrix &m) { return m.m_nCols; }
  // True if the matrix stores its elements on the heap (more than 9 of them).
  static bool OnHeap(const CMatrix &m) { return m.m_pData != m.m_adData; }
  // The data block, for whole-block work only.
  static double *Data(CMatrix &m) { return m.m_pData; }
  static double **Table(CMatrix &m) { return m.m_ppCol; }
  static const double *const *Table(const CMatrix &m) { return m.m_ppCol; }

  // Gives m the shape rows x cols with the identity column table, exactly as
  // assigning a fresh matrix of that shape would (the storage is kept or
  // replaced by the same rule), but without building and copying one. Element
  // values are undefined afterwards; the caller writes every one of them.
  // Lets a function fill an output in place instead of through a temporary.
  static void Reshape(CMatrix &m, int rows, int cols) {
    const int s = rows * cols;
    const int t = m.m_nRows * m.m_nCols;
    if (s > t || (t > kInObject && s <= kInObject)) {
      m.Release();
      m.m_nRows = 0;
      m.m_nCols = 0;
      m.Alloc(rows, cols);
      return;
    }
    m.m_nRows = rows;
    m.m_nCols = cols;
    for (int j = 0; j < cols; ++j)
      m.m_ppCol[j] = m.m_pData + static_cast<std::ptrdiff_t>(j) * rows;
  }

 private:
  // Largest element count that a matrix keeps inside the object.
  static constexpr int kInObject = 9;
};

#endif  // QUADREL_MATRIX_ACCESS_H
