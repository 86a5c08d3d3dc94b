// Small vectors in space as plain arrays, for the front ends' own geometry
// (checks, derived results, pictures, sample data): no heap, no CMatrix.
#ifndef QUADREL_FRONTEND_VEC3_H
#define QUADREL_FRONTEND_VEC3_H

#include <array>
#include <cmath>

namespace quadrel_frontend {

using Vec3 = std::array<double, 3>;

constexpr double kPi = 3.14159265358979323846;
// Degrees in one radian.
constexpr double kDegrees = 180.0 / kPi;

inline double Dot(const Vec3 &a, const Vec3 &b) {
  return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

inline Vec3 Cross(const Vec3 &a, const Vec3 &b) {
  return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

// v divided by its length; a zero v gives NaN.
inline Vec3 Unit(const Vec3 &v) {
  const double length = std::sqrt(Dot(v, v));
  return {v[0] / length, v[1] / length, v[2] / length};
}

inline double Distance(const Vec3 &a, const Vec3 &b) {
  const double dx = a[0] - b[0];
  const double dy = a[1] - b[1];
  const double dz = a[2] - b[2];
  return std::sqrt(dx * dx + dy * dy + dz * dz);
}

inline bool Finite(const Vec3 &v) {
  return std::isfinite(v[0]) && std::isfinite(v[1]) && std::isfinite(v[2]);
}

}  // namespace quadrel_frontend

#endif  // QUADREL_FRONTEND_VEC3_H
