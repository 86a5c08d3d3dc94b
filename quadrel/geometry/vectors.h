// Vectors and spherical coordinates: norm, dot product, angle and cross product
// of vectors held in CMatrix values, and conversion between Cartesian points
// and the library's spherical triple.
//
// A vector is a matrix with one row or one column. The vector functions read it
// by linear index, so rows and columns of equal length may be mixed in one call.
//
// The spherical triple is (range, azimuth, elevation), angles in radians. Y is
// the polar axis: elevation 0 is the XZ plane and positive elevation turns
// towards +Y. Azimuth 0 is +Z, and positive azimuth turns from +Z towards -X:
//   x = -r cos(e) sin(a),  y = r sin(e),  z = r cos(e) cos(a).
//
// NaN and infinities travel through the arithmetic: Norm2, Dot and Cross give
// NaN where a NaN is read or inf - inf or 0 * inf occurs. Angle clamps a NaN
// cosine to -1, so a NaN or infinite element on either side gives pi, as a zero
// vector does. The conversions give NaN for a NaN input and for an infinite
// angle; atan2 sends an infinite coordinate to its axis. In the matrix forms a
// bad column spoils only itself.
#ifndef QUADREL_GEOMETRY_VECTORS_H
#define QUADREL_GEOMETRY_VECTORS_H

#include "quadrel/export.h"
#include "quadrel/matrix/matrix.h"

// The square root of the sum of a(k)^2 over k = 0 .. a.GetLength() - 1, summed
// from 0.0 in rising k: the Euclidean norm of a vector. On a matrix with several
// rows and columns only its first max(rows, cols) elements in row order count
// (of a 2 x 2 matrix, its first row). A 0 x 0 matrix gives 0.0.
QUADREL_API double Norm2(const CMatrix &a);

// The sum of a(k) * b(k) over k = 0 .. a.GetLength() - 1, from 0.0 in rising k.
// Only a's length sets the loop: b must hold at least that many elements.
QUADREL_API double Dot(const CMatrix &a, const CMatrix &b);

// The angle between two vectors in radians, in [0, pi]: acos of
// Dot(a, b) / (Norm2(a) * Norm2(b)) clamped to [-1, 1]. Parallel vectors give 0
// only when that quotient rounds to 1: (1, 1, 0) with itself gives about 2.1e-8.
// A zero vector on either side gives 0/0, which clamps to -1: the result is pi.
QUADREL_API double Angle(const CMatrix &a, const CMatrix &b);

// The right-handed cross product of elements 0, 1 and 2 of a and b, always as a
// new 3 x 1 column whatever the orientation of the arguments. Each argument
// must hold at least three elements.
QUADREL_API CMatrix Cross(const CMatrix &a, const CMatrix &b);

// Cartesian point of a spherical triple, written to x, y, z in that order. The
// inputs are taken by value, so the same variables may serve as outputs.
QUADREL_API void Sph2Cart(double &x, double &y, double &z, double range, double azimuth,
                          double elevation);

// Spherical triple of a Cartesian point: range >= 0, azimuth = atan2(-x, z) in
// [-pi, pi], elevation = atan2(y, hypot(x, z)) in [-pi/2, pi/2]. Where x and z
// are both 0 the azimuth is 0, and where y is 0 as well the elevation is 0; each
// of these two cases prints a message to standard output (bells and text, no
// line end), the azimuth one first. All three outputs are always written. The
// inputs are taken by value, so the same variables may serve as outputs.
QUADREL_API void Cart2Sph(double &range, double &azimuth, double &elevation, double x, double y,
                          double z);

// Points of spherical triples. A matrix with exactly one row is one 1 x 3 triple
// and gives a 1 x 3 point; any other matrix must be 3 x n, one triple (range,
// azimuth, elevation) per column, and gives 3 x n points (x, y, z per column).
// A 3 x 0 matrix gives 3 x 0.
QUADREL_API CMatrix Sph2Cart(const CMatrix &triples);

// Spherical triples of points, in the layout of the matrix Sph2Cart: a 1 x 3 row
// gives a 1 x 3 triple, a 3 x n matrix gives 3 x n triples. Range is the Norm2
// of the point, azimuth -atan2(x, z), elevation atan2(y, sqrt(z*z + x*x)).
// Unlike the scalar form it prints nothing and has no special cases: the origin
// gives (0, 0, 0), a point on the Y axis an elevation of +-pi/2.
QUADREL_API CMatrix Cart2Sph(const CMatrix &points);

#endif  // QUADREL_GEOMETRY_VECTORS_H
