#include "quadrel/geometry/vectors.h"

#include <cmath>
#include <cstdio>

#include "quadrel/functions/rearrange.h"
#include "quadrel/geometry/internal/clamp.h"
#include "quadrel/matrix/internal/contract.h"

namespace {

// True if m can be read by linear index at 0 .. count - 1.
bool HoldsElements(const CMatrix &m, int count) {
  return count == 0 || static_cast<long long>(m.GetRows()) * m.GetCols() >= count;
}

// The two layouts that the matrix forms of the conversions take.
bool IsTripleLayout(const CMatrix &m) {
  return (m.GetRows() == 1 && m.GetCols() == 3) || m.GetRows() == 3;
}

}  // namespace

double Clamp(const double &value, const double &low, const double &high) {
  if (value < low || std::isnan(value)) return low;
  if (value > high) return high;
  return value;
}

double Norm2(const CMatrix &a) {
  const int length = a.GetLength();
  QUADREL_EXPECTS(HoldsElements(a, length),
                  "vector is " + QuadrelDims(a) + ": it has a length but no elements");
  double sum = 0.0;
  for (int k = 0; k < length; ++k)
    sum += a(k) * a(k);
  return std::sqrt(sum);
}

double Dot(const CMatrix &a, const CMatrix &b) {
  const int length = a.GetLength();
  QUADREL_EXPECTS(HoldsElements(a, length),
                  "first vector is " + QuadrelDims(a) + ": it has a length but no elements");
  QUADREL_EXPECTS(HoldsElements(b, length), "second vector is " + QuadrelDims(b) +
                                                ", shorter than the first's " + QuadrelDims(a));
  double sum = 0.0;
  for (int k = 0; k < length; ++k)
    sum += a(k) * b(k);
  return sum;
}

double Angle(const CMatrix &a, const CMatrix &b) {
  // Checked here as well, so that a breach names Angle rather than Dot.
  QUADREL_EXPECTS(HoldsElements(a, a.GetLength()),
                  "first vector is " + QuadrelDims(a) + ": it has a length but no elements");
  QUADREL_EXPECTS(
      HoldsElements(b, a.GetLength()),
      "second vector is " + QuadrelDims(b) + ", shorter than the first's " + QuadrelDims(a));
  double c = Dot(a, b) / (Norm2(a) * Norm2(b));
  // Rounding can push the quotient of parallel vectors past +-1, and a zero
  // vector makes it NaN; both must still give an angle.
  c = Clamp(c, -1.0, 1.0);
  return std::acos(c);
}

CMatrix Cross(const CMatrix &a, const CMatrix &b) {
  QUADREL_EXPECTS(HoldsElements(a, 3),
                  "first vector is " + QuadrelDims(a) + ", it needs three elements");
  QUADREL_EXPECTS(HoldsElements(b, 3),
                  "second vector is " + QuadrelDims(b) + ", it needs three elements");
  CMatrix c(3, 1);
  c(0) = a(1) * b(2) - b(1) * a(2);
  c(1) = -(a(0) * b(2) - b(0) * a(2));
  c(2) = a(0) * b(1) - b(0) * a(1);
  return c;
}

void Sph2Cart(double &x, double &y, double &z, double range, double azimuth, double elevation) {
  x = -range * std::cos(elevation) * std::sin(azimuth);
  y = range * std::sin(elevation);
  z = range * std::cos(elevation) * std::cos(azimuth);
}

void Cart2Sph(double &range, double &azimuth, double &elevation, double x, double y, double z) {
  const double h = std::hypot(x, z);
  range = std::sqrt(x * x + y * y + z * z);
  // On the Y axis and at the origin atan2 has no meaningful answer; the caller
  // hears about it on the console and gets 0.
  if (z == 0 && x == 0) {
    std::printf("\a\a\a\a\aX and Z both 0 in Cart2Sph()");
    azimuth = 0;
  } else {
    azimuth = std::atan2(-x, z);
  }
  if (y == 0 && h == 0) {
    std::printf("\a\a\a\a\bRange is 0 in Cart2Sph()");
    elevation = 0;
  } else {
    elevation = std::atan2(y, h);
  }
}

CMatrix Sph2Cart(const CMatrix &triples) {
  QUADREL_EXPECTS(IsTripleLayout(triples),
                  "triples are " + QuadrelDims(triples) + ", not 1 x 3 or 3 x n");
  if (triples.GetRows() == 1) {
    CMatrix point(1, 3);
    Sph2Cart(point(0), point(1), point(2), triples(0), triples(1), triples(2));
    return point;
  }
  const int cols = triples.GetCols();
  CMatrix points(3, cols);
  for (int j = 0; j < cols; ++j)
    Sph2Cart(points(0, j), points(1, j), points(2, j), triples(0, j), triples(1, j), triples(2, j));
  return points;
}

CMatrix Cart2Sph(const CMatrix &points) {
  QUADREL_EXPECTS(IsTripleLayout(points),
                  "points are " + QuadrelDims(points) + ", not 1 x 3 or 3 x n");
  if (points.GetRows() == 1) {
    const double x = points(0), y = points(1), z = points(2);
    CMatrix triple(1, 3);
    triple(0) = Norm2(points);
    triple(1) = -std::atan2(x, z);
    triple(2) = std::atan2(y, std::sqrt(z * z + x * x));
    return triple;
  }
  const int cols = points.GetCols();
  CMatrix triples(3, cols);
  for (int k = 0; k < cols; ++k) {
    const double x = points(0, k), y = points(1, k), z = points(2, k);
    triples(0, k) = Norm2(Col(points, k));
    triples(1, k) = -std::atan2(x, z);
    triples(2, k) = std::atan2(y, std::sqrt(z * z + x * x));
  }
  return triples;
}
