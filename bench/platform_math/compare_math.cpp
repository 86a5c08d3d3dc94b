// Compares dumps of dump_math from several targets with each other and with
// the correctly rounded values from MPFR:
//   compare_math COUNT REFERENCE.bin NAME=OTHER.bin...
// For each function it prints how many results of each target differ from
// the reference target's, the largest difference in units in the last place,
// and each target's largest distance from the correctly rounded result.
#include <mpfr.h>

#include <cinttypes>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "math_args.h"

namespace {

std::vector<double> Read(const char *path, long count) {
  std::vector<double> values(static_cast<size_t>(count) * kFunctionCount);
  std::FILE *in = std::fopen(path, "rb");
  if (in == nullptr ||
      std::fread(values.data(), sizeof(double), values.size(), in) != values.size()) {
    std::fprintf(stderr, "compare_math: cannot read %ld values a function from %s\n", count, path);
    std::exit(1);
  }
  std::fclose(in);
  return values;
}

// Distance in units in the last place: the doubles' bits mapped onto an
// ordered integer line.
std::int64_t Ulps(double a, double b) {
  auto ordered = [](double v) {
    std::int64_t i;
    std::memcpy(&i, &v, sizeof i);
    return i < 0 ? INT64_MIN - i : i;
  };
  const std::int64_t d = ordered(a) - ordered(b);
  return d < 0 ? -d : d;
}

double CorrectlyRounded(MathFunction f, double x, double y) {
  mpfr_t a, b, r;
  mpfr_inits2(256, a, b, r, static_cast<mpfr_ptr>(nullptr));
  mpfr_set_d(a, x, MPFR_RNDN), mpfr_set_d(b, y, MPFR_RNDN);
  switch (f) {
    case kSin:
      mpfr_sin(r, a, MPFR_RNDN);
      break;
    case kCos:
      mpfr_cos(r, a, MPFR_RNDN);
      break;
    case kAsin:
      mpfr_asin(r, a, MPFR_RNDN);
      break;
    case kAcos:
      mpfr_acos(r, a, MPFR_RNDN);
      break;
    case kAtan2:
      mpfr_atan2(r, b, a, MPFR_RNDN);
      break;
    case kPow:
      mpfr_pow(r, a, b, MPFR_RNDN);
      break;
    case kSqrt:
      mpfr_sqrt(r, a, MPFR_RNDN);
      break;
    case kHypot:
      mpfr_hypot(r, a, b, MPFR_RNDN);
      break;
    default:
      break;
  }
  const double value = mpfr_get_d(r, MPFR_RNDN);
  mpfr_clears(a, b, r, static_cast<mpfr_ptr>(nullptr));
  return value;
}

}  // namespace

int main(int argc, char **argv) {
  if (argc < 3) {
    std::fprintf(stderr, "usage: compare_math COUNT REFERENCE.bin [NAME=OTHER.bin...]\n");
    return 2;
  }
  const long count = std::atol(argv[1]);
  std::vector<std::string> names = {"reference"};
  std::vector<std::vector<double>> dumps = {Read(argv[2], count)};
  for (int a = 3; a < argc; ++a) {
    const char *eq = std::strchr(argv[a], '=');
    names.emplace_back(eq ? std::string(argv[a], static_cast<size_t>(eq - argv[a])) : argv[a]);
    dumps.push_back(Read(eq ? eq + 1 : argv[a], count));
  }
  std::printf("%-6s %-12s %10s %9s %12s\n", "func", "target", "differ", "max ulp", "ulp vs exact");
  for (int f = 0; f < kFunctionCount; ++f) {
    ArgumentStream stream(0x9e3779b97f4a7c15ULL + static_cast<unsigned>(f));
    std::vector<long> differ(dumps.size(), 0);
    std::vector<std::int64_t> maxUlp(dumps.size(), 0), maxExact(dumps.size(), 0);
    for (long k = 0; k < count; ++k) {
      double x, y;
      Arguments(static_cast<MathFunction>(f), stream, x, y);
      const double exact = CorrectlyRounded(static_cast<MathFunction>(f), x, y);
      const size_t at =
          static_cast<size_t>(f) * static_cast<size_t>(count) + static_cast<size_t>(k);
      for (size_t t = 0; t < dumps.size(); ++t) {
        const std::int64_t u = Ulps(dumps[t][at], dumps[0][at]);
        if (u != 0) ++differ[t];
        if (u > maxUlp[t]) maxUlp[t] = u;
        const std::int64_t e = Ulps(dumps[t][at], exact);
        if (e > maxExact[t]) maxExact[t] = e;
      }
    }
    for (size_t t = 0; t < dumps.size(); ++t)
      std::printf("%-6s %-12s %10ld %9" PRId64 " %12" PRId64 "\n", kFunctionNames[f],
                  names[t].c_str(), differ[t], maxUlp[t], maxExact[t]);
  }
  return 0;
}
