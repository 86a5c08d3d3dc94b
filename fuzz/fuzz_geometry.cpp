// Vectors, spherical coordinates, rotations, transforms, distances and
// intersections on random and degenerate input (zero vectors, parallel and
// coincident planes, non-finite elements).
#include <cstdio>

#include "fuzz_input.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  FuzzInput in(data, size);
  // Degenerate vectors are common: a zero, or a copy of another argument.
  CMatrix v[4];
  for (CMatrix &m : v)
    m = in.Bool() ? Zeros(3, 1) : in.Matrix(3, 1);
  if (in.Bool()) v[3] = v[1];
  if (in.Bool()) v[2] = v[0];
  CMatrix out1, out2;
  switch (in.Byte() % 8) {
    case 0:
      (void)Norm2(v[0]), (void)Dot(v[0], v[1]), (void)Angle(v[0], v[1]);
      out1 = Cross(v[0], v[1]);
      break;
    case 1: {
      double x, y, z;
      Sph2Cart(x, y, z, in.Double(), in.Double(), in.Double());
      Cart2Sph(x, y, z, in.Double(), in.Double(), in.Double());
      std::fflush(stdout);
      break;
    }
    case 2: {
      const int n = in.Int(0, 12);
      out1 = Sph2Cart(in.Matrix(3, n)), out2 = Cart2Sph(in.Matrix(3, n));
      out1 = Sph2Cart(in.Matrix(1, 3)), out2 = Cart2Sph(in.Matrix(1, 3));
      break;
    }
    case 3: {
      const double a = in.Double(), b = in.Double(), c = in.Double();
      out1 = Rotation(a, b), out1 = Rotation(a, b, c);
      out1 = RotationAlpha(a, b, c), out1 = RotationBeta(a, b, c), out1 = RotationGamma(a, b, c);
      break;
    }
    case 4: {
      const CMatrix r = Rotation(in.Double(), in.Double(), in.Double());
      const int n = in.Int(0, 10);
      if (n == 1 && in.Bool()) {
        out1 = Transform(r, v[0], v[1]), out2 = UnTransform(r, v[0], v[1]);
      } else {
        const CMatrix x = in.Matrix(n, 3), t = in.Matrix(n, 3);
        out1 = Transform(r, x, t), out2 = UnTransform(r, x, t);
      }
      break;
    }
    case 5:
      (void)LinePointDist(v[0], v[1], v[2]), (void)PlanePointDist(v[0], v[1], v[2]);
      (void)PlaneLineDist(v[0], v[1], v[2], v[3]), (void)PlanePlaneDist(v[0], v[1], v[2], v[3]);
      break;
    default:
      (void)LinePointInt(v[0], v[1], v[2], out1), (void)PlanePointInt(v[0], v[1], v[2], out1);
      (void)PlaneLineInt(v[0], v[1], v[2], v[3], out1);
      (void)PlanePlaneInt(v[0], v[1], v[2], v[3], out1, out2);
      break;
  }
  return 0;
}
