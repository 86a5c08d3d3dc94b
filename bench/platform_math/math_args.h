// The arguments on which the platform's elementary functions are compared: a
// fixed stream of doubles from integer arithmetic alone, so that every target
// draws the same bits.
#ifndef QUADREL_TESTS_PLATFORM_MATH_ARGS_H
#define QUADREL_TESTS_PLATFORM_MATH_ARGS_H

#include <cmath>
#include <cstdint>

// The functions compared, in the order of the dump.
enum MathFunction { kSin, kCos, kAsin, kAcos, kAtan2, kPow, kSqrt, kHypot, kFunctionCount };
inline const char *const kFunctionNames[kFunctionCount] = {"sin",   "cos", "asin", "acos",
                                                           "atan2", "pow", "sqrt", "hypot"};

// xorshift64*: a uniform double in [0, 1) from the top 53 bits.
class ArgumentStream {
 public:
  explicit ArgumentStream(std::uint64_t seed) : state_(seed) {}
  double Uniform() {
    state_ ^= state_ >> 12, state_ ^= state_ << 25, state_ ^= state_ >> 27;
    return static_cast<double>((state_ * 2685821657736338717ULL) >> 11) * 0x1p-53;
  }
  // Uniform in [lo, hi): one multiply and one add, exact on every IEEE target.
  double In(double lo, double hi) { return lo + (hi - lo) * Uniform(); }

 private:
  std::uint64_t state_;
};

// Argument k (one or two) for function f, over the ranges that the library's
// calls meet: angles within a few turns, cosines in [-1, 1], coordinates of
// points, powers of moderate size.
inline void Arguments(MathFunction f, ArgumentStream &s, double &x, double &y) {
  y = 0.0;
  switch (f) {
    case kSin:
    case kCos:
      x = s.In(-20.0, 20.0);
      break;
    case kAsin:
    case kAcos:
      x = s.In(-1.0, 1.0);
      break;
    case kAtan2:
    case kHypot:
      x = s.In(-10.0, 10.0), y = s.In(-10.0, 10.0);
      break;
    case kPow:
      x = s.In(0.0, 10.0), y = s.In(-3.0, 3.0);
      break;
    case kSqrt:
      x = s.In(0.0, 1000.0);
      break;
    default:
      x = 0.0;
  }
}

inline double Evaluate(MathFunction f, double x, double y) {
  switch (f) {
    case kSin:
      return std::sin(x);
    case kCos:
      return std::cos(x);
    case kAsin:
      return std::asin(x);
    case kAcos:
      return std::acos(x);
    case kAtan2:
      return std::atan2(y, x);
    case kPow:
      return std::pow(x, y);
    case kSqrt:
      return std::sqrt(x);
    case kHypot:
      return std::hypot(x, y);
    default:
      return 0.0;
  }
}

#endif  // QUADREL_TESTS_PLATFORM_MATH_ARGS_H
