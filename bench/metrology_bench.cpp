// Metrology fits against the algebraic SphereFit on the same number of points.
//
// The goal: a Gaussian sphere and a Gaussian cylinder on 1e5 points take at
// most five times as long as SphereFit on the 1e5 sphere points. The sphere
// cases share one data set; the cylinder has its own, made alike.
#include <cmath>
#include <cstdint>

#include <quadrel/metrology/metrology.h>

#include "bench_util.h"

namespace {

// On the cylinder of axis through (1, -2, 0.5) along (2, 3, 6) / 7, radius 3,
// length 12, radial noise 0.01.
Block CylinderPoints(int n) {
  const Block noise = RandomBlock(3, n, 11u);
  const double w[3] = {2.0 / 7.0, 3.0 / 7.0, 6.0 / 7.0};
  const double u[3] = {3.0 / std::sqrt(13.0), -2.0 / std::sqrt(13.0), 0.0};
  const double v[3] = {w[1] * u[2] - w[2] * u[1], w[2] * u[0] - w[0] * u[2],
                       w[0] * u[1] - w[1] * u[0]};
  const double a[3] = {1.0, -2.0, 0.5};
  Block block{3, n, std::vector<double>(static_cast<size_t>(3) * n)};
  for (int i = 0; i < n; ++i) {
    const double phi = 3.141592653589793 * noise.values[i];
    const double t = 6.0 * noise.values[n + i];
    const double r = 3.0 + 0.01 * noise.values[2 * n + i];
    for (int k = 0; k < 3; ++k)
      block.values[static_cast<size_t>(k) * n + i] =
          a[k] + t * w[k] + r * (std::cos(phi) * u[k] + std::sin(phi) * v[k]);
  }
  return block;
}

template <Block (*make)(int)>
const CMatrix &Points(std::int64_t n) {
  return Cached<CMatrix>(n, [n] { return ToQuadrel(make(static_cast<int>(n))); });
}

void AlgebraicSphere(benchmark::State &state) {
  const CMatrix &points = Points<SpherePoints>(state.range(0));
  CMatrix centre, residuals;
  double radius = 0.0;
  TimeQuadrel(state, state.range(0), [&] {
    SphereFit(points, centre, radius, residuals);
    benchmark::DoNotOptimize(radius);
  });
}

void GaussianSphere(benchmark::State &state) {
  const CMatrix &points = Points<SpherePoints>(state.range(0));
  CMatrix centre;
  double radius = 0.0;
  GaussianFitInfo info;
  TimeQuadrel(state, state.range(0), [&] {
    GaussianSphereFit(points, centre, radius, info);
    benchmark::DoNotOptimize(radius);
  });
  state.counters["iterations"] = info.iterations;
}

void GaussianCylinder(benchmark::State &state) {
  const CMatrix &points = Points<CylinderPoints>(state.range(0));
  CMatrix point, direction;
  double radius = 0.0;
  GaussianFitInfo info;
  TimeQuadrel(state, state.range(0), [&] {
    GaussianCylinderFit(points, point, direction, radius, info);
    benchmark::DoNotOptimize(radius);
  });
  state.counters["iterations"] = info.iterations;
}

void MinimumZoneSphere(benchmark::State &state) {
  const CMatrix &points = Points<SpherePoints>(state.range(0));
  CMatrix centre;
  double radius = 0.0;
  ZoneInfo info;
  TimeQuadrel(state, state.range(0), [&] {
    MinimumZoneSphericity(points, centre, radius, info);
    benchmark::DoNotOptimize(radius);
  });
  state.counters["iterations"] = info.iterations;
}

[[maybe_unused]] const bool registered = [] {
  RegisterAlone("BM_Metrology_AlgebraicSphere", AlgebraicSphere, {100000}, benchmark::kMillisecond);
  RegisterAlone("BM_Metrology_GaussianSphere", GaussianSphere, {100000}, benchmark::kMillisecond);
  RegisterAlone("BM_Metrology_GaussianCylinder", GaussianCylinder, {100000},
                benchmark::kMillisecond);
  RegisterAlone("BM_Metrology_MinimumZoneSphere", MinimumZoneSphere, {100000},
                benchmark::kMillisecond);
  return true;
}();

}  // namespace
