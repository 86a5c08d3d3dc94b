// Writes the bits of the platform's sin, cos, asin, acos, atan2, pow, sqrt and
// hypot on a fixed stream of arguments, for comparison across targets:
//   dump_math OUTPUT [COUNT]
// OUTPUT receives COUNT (default 1000000) little-endian doubles a function,
// the functions in the order of math_args.h.
#include <cstdio>
#include <cstdlib>
#include <vector>

#include "math_args.h"

int main(int argc, char **argv) {
  if (argc < 2) {
    std::fprintf(stderr, "usage: dump_math OUTPUT [COUNT]\n");
    return 2;
  }
  const long count = argc > 2 ? std::atol(argv[2]) : 1000000;
  std::FILE *out = std::fopen(argv[1], "wb");
  if (out == nullptr) {
    std::fprintf(stderr, "dump_math: cannot write %s\n", argv[1]);
    return 1;
  }
  std::vector<double> values(static_cast<size_t>(count));
  for (int f = 0; f < kFunctionCount; ++f) {
    ArgumentStream stream(0x9e3779b97f4a7c15ULL + static_cast<unsigned>(f));
    for (long k = 0; k < count; ++k) {
      double x, y;
      Arguments(static_cast<MathFunction>(f), stream, x, y);
      values[static_cast<size_t>(k)] = Evaluate(static_cast<MathFunction>(f), x, y);
    }
    std::fwrite(values.data(), sizeof(double), values.size(), out);
  }
  return std::fclose(out) == 0 ? 0 : 1;
}
