// Three-vectors as plain arrays for the inner loops of the metrology fits.
#ifndef QUADREL_METROLOGY_INTERNAL_VEC3_H
#define QUADREL_METROLOGY_INTERNAL_VEC3_H

#include <cmath>

struct Vec3 {
  double x = 0.0, y = 0.0, z = 0.0;
};

inline Vec3 operator+(const Vec3 &a, const Vec3 &b) {
  return {a.x + b.x, a.y + b.y, a.z + b.z};
}
inline Vec3 operator-(const Vec3 &a, const Vec3 &b) {
  return {a.x - b.x, a.y - b.y, a.z - b.z};
}
inline Vec3 operator*(double s, const Vec3 &a) {
  return {s * a.x, s * a.y, s * a.z};
}
inline double Dot(const Vec3 &a, const Vec3 &b) {
  return a.x * b.x + a.y * b.y + a.z * b.z;
}
inline Vec3 Cross(const Vec3 &a, const Vec3 &b) {
  return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}
inline double Norm(const Vec3 &a) {
  return std::sqrt(Dot(a, a));
}
inline Vec3 Normalised(const Vec3 &a) {
  return (1.0 / Norm(a)) * a;
}

// Two unit vectors u, v that make (u, v, w) a right-handed orthonormal frame
// for the unit vector w. The helper axis is the coordinate axis least aligned
// with w, so the frame never degenerates.
void Complement(const Vec3 &w, Vec3 &u, Vec3 &v);

// Cylindrical coordinates of p about the axis through a along w, in the frame
// (u, v, w): height t along w, distance rho from the axis and the unit radial
// direction (nu, nv), which is (0, 0) for a point on the axis.
inline void AxialCoordinates(const Vec3 &a, const Vec3 &u, const Vec3 &v, const Vec3 &w,
                             const Vec3 &p, double &t, double &rho, double &nu, double &nv) {
  const Vec3 q = p - a;
  t = Dot(q, w);
  const double qu = Dot(q, u), qv = Dot(q, v);
  rho = std::sqrt(qu * qu + qv * qv);
  nu = rho > 0.0 ? qu / rho : 0.0;
  nv = rho > 0.0 ? qv / rho : 0.0;
}

// The unit vector with the sign that makes its component of largest magnitude
// positive: the orientation rule of every undirected axis and normal.
Vec3 Oriented(const Vec3 &w);

// Eigenvalues (ascending) and unit eigenvectors of the symmetric 3 x 3 matrix
// a (row-major), by cyclic Jacobi rotations.
void SymmetricEigen3(const double a[9], double values[3], Vec3 vectors[3]);

#endif  // QUADREL_METROLOGY_INTERNAL_VEC3_H
