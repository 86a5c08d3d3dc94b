#include "quadrel/metrology/internal/vec3.h"

#include <utility>

void Complement(const Vec3 &w, Vec3 &u, Vec3 &v) {
  const double ax = std::fabs(w.x), ay = std::fabs(w.y), az = std::fabs(w.z);
  Vec3 helper;
  if (ax <= ay && ax <= az) {
    helper.x = 1.0;
  } else if (ay <= az) {
    helper.y = 1.0;
  } else {
    helper.z = 1.0;
  }
  u = Normalised(Cross(helper, w));
  v = Cross(w, u);
}

Vec3 Oriented(const Vec3 &w) {
  const double ax = std::fabs(w.x), ay = std::fabs(w.y), az = std::fabs(w.z);
  const double lead = (ax >= ay && ax >= az) ? w.x : (ay >= az ? w.y : w.z);
  return lead < 0.0 ? -1.0 * w : w;
}

void SymmetricEigen3(const double a[9], double values[3], Vec3 vectors[3]) {
  double m[3][3] = {{a[0], a[1], a[2]}, {a[3], a[4], a[5]}, {a[6], a[7], a[8]}};
  double q[3][3] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
  for (int sweep = 0; sweep < 50; ++sweep) {
    const double off = m[0][1] * m[0][1] + m[0][2] * m[0][2] + m[1][2] * m[1][2];
    const double diag = m[0][0] * m[0][0] + m[1][1] * m[1][1] + m[2][2] * m[2][2];
    if (!(off > 1e-40 * diag)) break;
    for (int p = 0; p < 2; ++p) {
      for (int r = p + 1; r < 3; ++r) {
        if (m[p][r] == 0.0) continue;
        const double theta = (m[r][r] - m[p][p]) / (2.0 * m[p][r]);
        const double t =
            (theta >= 0.0 ? 1.0 : -1.0) / (std::fabs(theta) + std::sqrt(theta * theta + 1.0));
        const double c = 1.0 / std::sqrt(t * t + 1.0), s = t * c;
        for (int k = 0; k < 3; ++k) {
          const double mkp = m[k][p], mkr = m[k][r];
          m[k][p] = c * mkp - s * mkr;
          m[k][r] = s * mkp + c * mkr;
        }
        for (int k = 0; k < 3; ++k) {
          const double mpk = m[p][k], mrk = m[r][k];
          m[p][k] = c * mpk - s * mrk;
          m[r][k] = s * mpk + c * mrk;
        }
        for (int k = 0; k < 3; ++k) {
          const double qkp = q[k][p], qkr = q[k][r];
          q[k][p] = c * qkp - s * qkr;
          q[k][r] = s * qkp + c * qkr;
        }
      }
    }
  }
  int order[3] = {0, 1, 2};
  for (int i = 0; i < 3; ++i)
    for (int j = i + 1; j < 3; ++j)
      if (m[order[j]][order[j]] < m[order[i]][order[i]]) std::swap(order[i], order[j]);
  for (int i = 0; i < 3; ++i) {
    values[i] = m[order[i]][order[i]];
    vectors[i] = {q[0][order[i]], q[1][order[i]], q[2][order[i]]};
  }
}
