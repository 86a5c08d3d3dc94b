// Numbers as a person reads them in text output, captions and messages.
#ifndef QUADREL_FRONTEND_FORMAT_H
#define QUADREL_FRONTEND_FORMAT_H

#include <string>

namespace quadrel_frontend {

// Significant digits of the numbers in text output.
constexpr int kTextDigits = 6;

// A number to kTextDigits significant digits ("%.6g"); -0 shows as 0.
std::string FormatNumber(double value);
// The numbers of a vector, each formatted, separated by single blanks.
std::string FormatVector(const double *values, int count);

}  // namespace quadrel_frontend

#endif  // QUADREL_FRONTEND_FORMAT_H
