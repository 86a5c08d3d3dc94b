// The storage rules of CMatrix that more than one file needs: the in-object
// limit, which shapes can exist, and when an assignment keeps its storage.
#ifndef QUADREL_MATRIX_INTERNAL_STORAGE_H
#define QUADREL_MATRIX_INTERNAL_STORAGE_H

// Largest element count that a matrix keeps inside the object, in its
// in-object column table and data block; larger ones live on the heap.
constexpr int kInObject = 9;

// True if rows x cols can exist: neither negative, the element count fits an
// int, and a matrix with no rows has at most kInObject columns (its column
// table is the in-object one).
inline bool LegalShape(int rows, int cols) {
  if (rows < 0 || cols < 0) return false;
  if (static_cast<long long>(rows) * cols > 0x7fffffffLL) return false;
  return rows > 0 || cols <= kInObject;
}

// True if a matrix that holds `held` elements must give up its storage and
// allocate anew to take `wanted` elements: when it holds too few, or when it
// holds a heap block and the new count fits inside the object. Otherwise the
// storage is kept: in the object for up to kInObject, both heap blocks above.
inline bool NeedsNewStorage(int wanted, int held) {
  return wanted > held || (held > kInObject && wanted <= kInObject);
}

#endif  // QUADREL_MATRIX_INTERNAL_STORAGE_H
