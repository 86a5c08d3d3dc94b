// One Gauss-Newton step of the ideal trihedral fit.
#include "quadrel/estimators/internal/trihedral_step.h"

#include <cmath>

#include "quadrel/functions/rearrange.h"
#include "quadrel/functions/reductions.h"
#include "quadrel/geometry/rotations.h"
#include "quadrel/geometry/vectors.h"
#include "quadrel/linalg/least_squares.h"
#include "quadrel/matrix/internal/access.h"
#include "quadrel/matrix/operators.h"

namespace {

constexpr double kPi = 3.141592653589793;

// What one face contributes to the normal system. Index 0, 1, 2 of the
// derivative arrays stands for alpha, beta, gamma.
struct Face {
  double count;        // number of points, as a double
  CMatrix normal;      // n = R * u, 3 x 1
  CMatrix dNormal[3];  // dR/dangle * u, 3 x 1 each
  CMatrix dist;        // signed distances of the points from the plane, 1 x m
  CMatrix dDist[3];    // their derivatives by the angles, 1 x m each
  double sum;          // sum of dist
  double dSum[3];      // sums of dDist
};

// The three unit normals of the faces in the trihedral frame, as 3 x 1
// columns. c is the cosine of the angle between two of them, which follows
// from the edge angle through the dihedral angle between two faces.
void ModelNormals(double edgeAngle, CMatrix u[3]) {
  const double c = std::cos(kPi - 2.0 * std::asin(1.0 / (2.0 * std::cos(edgeAngle / 2.0))));
  const double up = std::sqrt((2.0 * c + 1.0) / 3.0);
  const double side = std::sqrt((1.0 - c) / 2.0);
  const double low = std::sqrt((1.0 - c) / 6.0);
  const double u1[3] = {0.0, up, -std::sqrt(2.0 * (1.0 - c) / 3.0)};
  const double u2[3] = {-side, up, low};
  const double u3[3] = {side, up, low};
  u[0] = CMatrix(u1, 3, 1);
  u[1] = CMatrix(u2, 3, 1);
  u[2] = CMatrix(u3, 3, 1);
}

// Fills face with the normal of model normal u at the rotation R (derivatives
// Rd[0..2]) and the distances of the points of set from the plane through the
// apex t.
void EvaluateFace(const CMatrix &set, const CMatrix &t, const CMatrix &R, const CMatrix Rd[3],
                  const CMatrix &u, Face &face) {
  // The points relative to the apex; the set itself stays as it is.
  CMatrix Q(set);
  const int m = Q.GetCols();
  for (int k = 0; k < 3; ++k) {
    const double tk = t(k);
    for (int j = 0; j < m; ++j)
      CMatrixAccess::At(Q, k, j) = CMatrixAccess::At(Q, k, j) - tk;
  }
  face.count = static_cast<double>(m);
  face.normal = ApplyRotation(R, u);
  for (int d = 0; d < 3; ++d)
    face.dNormal[d] = ApplyRotation(Rd[d], u);
  face.dist = Transpose(face.normal) * Q;
  for (int d = 0; d < 3; ++d)
    face.dDist[d] = Transpose(face.dNormal[d]) * Q;
  face.sum = Sum(face.dist)(0);
  for (int d = 0; d < 3; ++d)
    face.dSum[d] = Sum(face.dDist[d])(0);
}

}  // namespace

CMatrix ApplyRotation(const CMatrix &R, const CMatrix &v) {
  return R * v;
}

void IdealTrihedralStep(const CMatrix &set1, const CMatrix &set2, const CMatrix &set3,
                        CMatrix &result, double edgeAngle) {
  const CMatrix t = Col(result, 0);
  const double alpha = result(0, 1);
  const double beta = result(1, 1);
  const double gamma = result(2, 1);

  const CMatrix R = Rotation(alpha, beta, gamma);
  const CMatrix Rd[3] = {RotationAlpha(alpha, beta, gamma), RotationBeta(alpha, beta, gamma),
                         RotationGamma(alpha, beta, gamma)};
  CMatrix u[3];
  ModelNormals(edgeAngle, u);

  Face f[3];
  EvaluateFace(set1, t, R, Rd, u[0], f[0]);
  EvaluateFace(set2, t, R, Rd, u[1], f[1]);
  EvaluateFace(set3, t, R, Rd, u[2], f[2]);

  const int total = set1.GetCols() + set2.GetCols() + set3.GetCols();
  const double rms = std::sqrt(
      (Dot(f[0].dist, f[0].dist) + Dot(f[1].dist, f[1].dist) + Dot(f[2].dist, f[2].dist)) /
      static_cast<double>(total));

  // The normal system, rows and columns ordered alpha, beta, gamma, x, y, z.
  // Every sum adds face 1, then 2, then 3. Only the upper triangle is formed;
  // the lower one is its mirror image.
  CMatrix N(6, 6);
  CMatrix rhs(6, 1);
  for (int d = 0; d < 3; ++d) {
    for (int e = d; e < 3; ++e) {
      N(d, e) = Dot(f[0].dDist[d], f[0].dDist[e]) + Dot(f[1].dDist[d], f[1].dDist[e]) +
                Dot(f[2].dDist[d], f[2].dDist[e]);
    }
    for (int l = 0; l < 3; ++l) {
      double terms[3];
      for (int i = 0; i < 3; ++i)
        terms[i] = f[i].sum * f[i].dNormal[d](l) + f[i].dSum[d] * f[i].normal(l);
      N(d, 3 + l) = terms[0] + terms[1] + terms[2];
    }
    rhs(d) = Dot(f[0].dDist[d], f[0].dist) + Dot(f[1].dDist[d], f[1].dist) +
             Dot(f[2].dDist[d], f[2].dist);
  }
  for (int k = 0; k < 3; ++k) {
    for (int l = k; l < 3; ++l) {
      double terms[3];
      for (int i = 0; i < 3; ++i)
        terms[i] = f[i].count * f[i].normal(k) * f[i].normal(l);
      N(3 + k, 3 + l) = terms[0] + terms[1] + terms[2];
    }
    double terms[3];
    for (int i = 0; i < 3; ++i)
      terms[i] = f[i].sum * f[i].normal(k);
    rhs(3 + k) = terms[0] + terms[1] + terms[2];
  }
  for (int row = 1; row < 6; ++row)
    for (int col = 0; col < row; ++col)
      N(row, col) = N(col, row);

  // The solution is (-dalpha, -dbeta, -dgamma, dx, dy, dz): with the angle
  // changes negated the Newton system is symmetric.
  CMatrix w;
  Lsq(N, rhs, w);

  for (int k = 0; k < 3; ++k)
    result(k, 0) = result(k, 0) + w(3 + k);
  for (int d = 0; d < 3; ++d)
    result(d, 1) = result(d, 1) - w(d);
  result(0, 2) = rms;
  result(1, 2) = std::sqrt(w(3) * w(3) + w(4) * w(4) + w(5) * w(5));
  result(2, 2) = std::sqrt(w(0) * w(0) + w(1) * w(1) + w(2) * w(2));
}
