// A first look at quadrel: build matrices, compute with them, fit a plane.
//
// Build and run:  cmake --preset default && cmake --build --preset default &&
//                 build/bin/quadrel-example
#include <cmath>
#include <iostream>

#include <quadrel/quadrel.h>

int main() {
  // Matrices are read row by row from a flat array; indices count from 0.
  const double values[] = {4, -2, 1, 3, 6, -4, 2, 1, 8};
  const CMatrix a(values, 3, 3);
  std::cout << "a =\n" << a << "\n\n";

  // Operators read like formulas: * is the matrix product, ^ the element-wise one.
  const CMatrix x = Ones(3, 1);
  std::cout << "a * x = " << a * x << "\n";
  std::cout << "a ^ a = " << (a ^ a) << "\n\n";

  // Reductions work column by column; a vector reduces to one number.
  std::cout << "column sums " << Sum(a) << ", mean of column 0 " << Mean(Col(a, 0)) << "\n";
  std::cout << "det(a) = " << Det(a) << ", inv(a) * a =\n" << Inv(a) * a << "\n\n";

  // A least-squares solve and a singular value decomposition.
  CMatrix solution;
  const double condition = Lsq(a, a * x, solution);
  std::cout << "Lsq recovers x = " << solution << " (condition number " << condition << ")\n";
  CMatrix u, s, v;
  Svd(a, u, s, v);
  std::cout << "singular values " << Transpose(Diag(s)) << "\n\n";

  // A point set is 3 x n, one point per column: twelve points on the plane
  // z = 0.5 x - 0.25 y + 2.
  CMatrix points(3, 12);
  for (int k = 0; k < 12; ++k) {
    const double px = std::cos(0.5 * k) * 3, py = std::sin(0.7 * k) * 2;
    points(0, k) = px;
    points(1, k) = py;
    points(2, k) = 0.5 * px - 0.25 * py + 2;
  }
  CMatrix centroid, normal, residuals;
  PlaneFit(points, centroid, normal, residuals);
  std::cout << "plane through " << centroid << " with unit normal " << normal << "\n";
  std::cout << "largest |residual| " << Max(Abs(residuals)) << "\n";
  return 0;
}
