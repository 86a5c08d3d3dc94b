#include "quadrel/frontend/format.h"

#include <cstdio>

namespace quadrel_frontend {

std::string FormatNumber(double value) {
  if (value == 0.0) value = 0.0;  // no "-0" for a person
  char text[40];
  std::snprintf(text, sizeof text, "%.*g", kTextDigits, value);
  return text;
}

std::string FormatVector(const double *values, int count) {
  std::string joined;
  for (int i = 0; i < count; ++i) {
    if (i > 0) joined += ' ';
    joined += FormatNumber(values[i]);
  }
  return joined;
}

}  // namespace quadrel_frontend
