// Rotations and frame transforms: 3 x 3 rotation matrices from angles, the
// partial derivatives of the three-angle matrix, and the move of points between
// two frames given a rotation and a translation.
//
// A rotation is a plain 3 x 3 CMatrix; nothing checks that it is orthogonal.
// Angles are in radians. The two Rotation overloads follow different
// conventions: Rotation(a, b) equals diag(-1, -1, 1) * Rotation(-b, -a, 0).
//
// A NaN or infinite angle makes NaN every element that uses its sine or cosine;
// the constant elements (the zeros and ones of each factor) stay. Transform and
// UnTransform carry NaN and infinities through their products: an n x 3 point
// with a NaN gives a NaN row, the others stay finite.
#ifndef QUADREL_GEOMETRY_ROTATIONS_H
#define QUADREL_GEOMETRY_ROTATIONS_H

#include "quadrel/export.h"
#include "quadrel/matrix/matrix.h"

// The rotation that carries the unit direction of the given azimuth and
// elevation (see Sph2Cart) onto +Z. Its row 2 is that direction, row 0 a unit
// vector in the XZ plane, row 1 = row 2 x row 0; the determinant is +1.
// Rotation(0, 0) is diag(-1, -1, 1), not the identity.
QUADREL_API CMatrix Rotation(double azimuth, double elevation);

// The frame-turning product Rx(alpha) * Ry(beta) * Rz(gamma), where
// Rx(t) = [1 0 0; 0 cos t sin t; 0 -sin t cos t],
// Ry(t) = [cos t 0 -sin t; 0 1 0; sin t 0 cos t] and
// Rz(t) = [cos t sin t 0; -sin t cos t 0; 0 0 1]. All angles 0 give the identity.
QUADREL_API CMatrix Rotation(double alpha, double beta, double gamma);

// The element-wise partial derivatives of the three-angle Rotation by alpha,
// by beta and by gamma, each 3 x 3. Row 0 of the alpha derivative and column 2
// of the gamma derivative are zero.
QUADREL_API CMatrix RotationAlpha(double alpha, double beta, double gamma);
QUADREL_API CMatrix RotationBeta(double alpha, double beta, double gamma);
QUADREL_API CMatrix RotationGamma(double alpha, double beta, double gamma);

// Applies R, then adds T. R must be 3 x 3. The layout is chosen by the column
// count of X alone: a 3 x 1 column X gives R * X + T, with T a 3 x 1 column;
// any other X must be n x 3, one point per row, and gives X * Transpose(R) + T,
// where T must have X's shape (every row holding the translation: the sum does
// not broadcast one row). A single point as a 1 x 3 row thus needs a 1 x 3 T.
QUADREL_API CMatrix Transform(const CMatrix &R, const CMatrix &X, const CMatrix &T);

// The inverse of Transform for an orthogonal R, with the same layouts and
// requirements: Transpose(R) * (X - T) for a 3 x 1 column X, (X - T) * R
// for n x 3 points.
QUADREL_API CMatrix UnTransform(const CMatrix &R, const CMatrix &X, const CMatrix &T);

#endif  // QUADREL_GEOMETRY_ROTATIONS_H
