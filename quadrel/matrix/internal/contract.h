// Contract checks of checked builds.
//
// QUADREL_EXPECTS(condition, message) tests a requirement that a function puts
// on its caller. In a checked build (QUADREL_CHECKED=1) a failed condition
// prints "quadrel: <function>: <message>" to standard error and aborts. In other
// builds the line compiles to nothing and neither argument is evaluated.
//
// message is anything that converts to std::string, typically a call of
// QuadrelFormat; it is built only when the condition fails.
#ifndef QUADREL_MATRIX_CONTRACT_H
#define QUADREL_MATRIX_CONTRACT_H

#include <string>

class CMatrix;

#if QUADREL_CHECKED
#define QUADREL_EXPECTS(condition, message)                  \
  do {                                                       \
    if (!(condition)) QuadrelContractBreach(__func__, (message)); \
  } while (false)
#else
#define QUADREL_EXPECTS(condition, message) \
  do {                                      \
    if (false) {                            \
      (void)(condition);                    \
      (void)(message);                      \
    }                                       \
  } while (false)
#endif

// Prints "quadrel: <function>: <message>" and a line feed to standard error,
// then aborts.
[[noreturn]] void QuadrelContractBreach(const char *function, const std::string &message);

// printf-style formatting into a std::string.
std::string QuadrelFormat(const char *format, ...) __attribute__((format(printf, 1, 2)));

// "rows x cols" of a matrix, as in "3 x 4".
std::string QuadrelDims(const CMatrix &matrix);

// "incompatible matrix dimensions: 3 x 4 and 5 x 6".
std::string QuadrelSizeMismatch(const CMatrix &a, const CMatrix &b);

// True if every element is finite (no NaN, no infinity). Besides checks, the
// estimators' guards against non-finite input use it in every build.
bool QuadrelAllFinite(const CMatrix &matrix);

#endif  // QUADREL_MATRIX_CONTRACT_H
