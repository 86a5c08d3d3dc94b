#include "convert.h"

#include <climits>
#include <cstring>
#include <stdexcept>
#include <string>
#include <vector>

namespace quadrel_python {

namespace {

// Matrices of up to this many elements keep their storage inside the object;
// only larger ones own heap blocks that can be lent or handed over.
constexpr long long kInObject = 9;

bool FortranOrder(const Source &s) {
  return (s.rowStride == 1 || s.rows == 1) && (s.colStride == s.rows || s.cols == 1);
}

bool Borrowable(const Source &s) {
  return static_cast<long long>(s.rows) * s.cols > kInObject && FortranOrder(s);
}

// Column tables kept by the thread for the next call: a fresh table of a
// million entries would cost more in page faults than a plane fit itself.
// Tables are handed out as a stack, one to each matrix alive at a time.
class ThreadTables {
 public:
  static double **Acquire(std::size_t entries) {
    Stack &stack = Mine();
    if (stack.inUse == stack.tables.size()) stack.tables.emplace_back();
    std::vector<double *> &table = stack.tables[stack.inUse++];
    if (table.size() < entries) table.resize(entries);
    return table.data();
  }
  static void Release() { --Mine().inUse; }

 private:
  struct Stack {
    std::vector<std::vector<double *>> tables;
    std::size_t inUse = 0;
  };
  static Stack &Mine() {
    thread_local Stack stack;
    return stack;
  }
};

}  // namespace

// True when column j starts rows * j elements into the data block, for every j.
static bool IdentityTable(const double *const *table, const double *data, int rows, int cols) {
  for (int j = 0; j < cols; ++j)
    if (table[j] != data + static_cast<std::ptrdiff_t>(j) * rows) return false;
  return true;
}

bool Matrix::Contiguous() const {
  return IdentityTable(m_ppCol, m_pData, GetRows(), GetCols());
}

double *Matrix::Detach() {
  if (static_cast<long long>(GetRows()) * GetCols() <= kInObject || !Contiguous()) return nullptr;
  double *data = m_pData;
  // The state of an empty matrix in the object: the destructor frees nothing.
  ::operator delete(m_ppCol);
  m_ppCol = m_apCol;
  m_pData = m_adData;
  m_nRows = 0;
  m_nCols = 0;
  return data;
}

Source Describe(const Array &a) {
  if (a.ndim() != 2) throw py::value_error("expected a 2-D float64 array");
  const py::ssize_t rows = a.shape(0), cols = a.shape(1);
  // The shapes a CMatrix can take: an element count that fits an int, and no
  // more than 9 columns without rows.
  if (rows > INT_MAX || cols > INT_MAX || (rows > 0 && cols > INT_MAX / rows) ||
      (rows == 0 && cols > 9))
    throw py::value_error("array of shape (" + std::to_string(rows) + ", " + std::to_string(cols) +
                          ") is too large for a matrix");
  Source source;
  source.data = a.data();
  source.rows = static_cast<int>(rows);
  source.cols = static_cast<int>(cols);
  source.rowStride = a.strides(0) / static_cast<py::ssize_t>(sizeof(double));
  source.colStride = a.strides(1) / static_cast<py::ssize_t>(sizeof(double));
  return source;
}

InputMatrix::InputMatrix(const Source &source)
    : CMatrix(Borrowable(source) ? 0 : source.rows, Borrowable(source) ? 0 : source.cols) {
  if (Borrowable(source)) {
    // A column table over the caller's block; the library only reads a matrix
    // it takes as const.
    m_ppCol = ThreadTables::Acquire(static_cast<std::size_t>(source.cols));
    m_pData = const_cast<double *>(source.data);
    m_nRows = source.rows;
    m_nCols = source.cols;
    for (int j = 0; j < source.cols; ++j)
      m_ppCol[j] = m_pData + static_cast<std::ptrdiff_t>(j) * source.rows;
    borrowed_ = true;
    return;
  }
  for (int j = 0; j < source.cols; ++j) {
    double *column = m_ppCol[j];
    const double *from = source.data + j * source.colStride;
    for (int i = 0; i < source.rows; ++i)
      column[i] = from[i * source.rowStride];
  }
}

InputMatrix::~InputMatrix() {
  if (!borrowed_) return;
  // Back to an empty matrix in the object, so that the base frees neither the
  // caller's block nor the thread's table.
  ThreadTables::Release();
  m_ppCol = m_apCol;
  m_pData = m_adData;
  m_nRows = 0;
  m_nCols = 0;
}

OutputMatrix::OutputMatrix(int rows, int cols) : CMatrix(0, 0) {
  const long long count = static_cast<long long>(rows) * cols;
  if (count <= kInObject) {
    CMatrix::operator=(CMatrix(rows, cols));
    return;
  }
  // The table holds one entry per element, as the library's own tables do: a
  // matrix of this storage may take any shape of up to count elements.
  array_ = py::array_t<double, py::array::f_style>({rows, cols});
  m_ppCol = table_ = ThreadTables::Acquire(static_cast<std::size_t>(count));
  m_pData = static_cast<double *>(array_.mutable_data());
  m_nRows = rows;
  m_nCols = cols;
  for (int j = 0; j < cols; ++j)
    m_ppCol[j] = m_pData + static_cast<std::ptrdiff_t>(j) * rows;
}

OutputMatrix::~OutputMatrix() {
  if (!table_) return;
  ThreadTables::Release();
  m_ppCol = m_apCol;
  m_pData = m_adData;
  m_nRows = 0;
  m_nCols = 0;
}

py::array OutputMatrix::Take() {
  if (!table_) {
    Matrix copy(*this);
    return ToArray(copy);
  }
  if (m_pData != array_.data() || m_ppCol != table_)
    throw std::logic_error("quadrel: a fit moved its output off the array given to it");
  if (m_nRows == array_.shape(0) && m_nCols == array_.shape(1) &&
      IdentityTable(m_ppCol, m_pData, m_nRows, m_nCols))
    return array_;
  Matrix copy(*this);  // another shape or column order within the same block
  return ToArray(copy);
}

py::array ToArray(Matrix &m) {
  const py::ssize_t rows = m.GetRows(), cols = m.GetCols();
  const std::vector<py::ssize_t> shape{rows, cols};
  const std::vector<py::ssize_t> strides{static_cast<py::ssize_t>(sizeof(double)),
                                         static_cast<py::ssize_t>(sizeof(double)) * rows};
  if (double *data = m.Detach()) {
    py::capsule owner(data, [](void *block) { ::operator delete(block); });
    return py::array_t<double>(shape, strides, data, owner);
  }
  py::array_t<double, py::array::f_style> out(shape);
  double *to = out.mutable_data();
  for (py::ssize_t j = 0; j < cols; ++j)
    for (py::ssize_t i = 0; i < rows; ++i)
      to[j * rows + i] = m.Column(static_cast<int>(j))[i];
  return std::move(out);
}

py::array ToArray(Matrix &&m) {
  return ToArray(m);
}

}  // namespace quadrel_python
