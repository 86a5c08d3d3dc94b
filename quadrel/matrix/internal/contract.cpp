#include "quadrel/matrix/internal/contract.h"

#include <cmath>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include "quadrel/matrix/matrix.h"

void QuadrelContractBreach(const char *function, const std::string &message) {
  std::fprintf(stderr, "quadrel: %s: %s\n", function, message.c_str());
  std::fflush(stderr);
  std::abort();
}

std::string QuadrelFormat(const char *format, ...) {
  va_list args;
  va_start(args, format);
  va_list copy;
  va_copy(copy, args);
  const int length = std::vsnprintf(nullptr, 0, format, copy);
  va_end(copy);
  std::vector<char> text(length > 0 ? static_cast<size_t>(length) + 1 : 1, '\0');
  if (length > 0) std::vsnprintf(text.data(), text.size(), format, args);
  va_end(args);
  return std::string(text.data());
}

std::string QuadrelDims(const CMatrix &matrix) {
  return QuadrelFormat("%d x %d", matrix.GetRows(), matrix.GetCols());
}

std::string QuadrelSizeMismatch(const CMatrix &a, const CMatrix &b) {
  return "incompatible matrix dimensions: " + QuadrelDims(a) + " and " + QuadrelDims(b);
}

bool QuadrelAllFinite(const CMatrix &matrix) {
  for (int i = 0; i < matrix.GetRows(); ++i)
    for (int j = 0; j < matrix.GetCols(); ++j)
      if (!std::isfinite(matrix(i, j))) return false;
  return true;
}
