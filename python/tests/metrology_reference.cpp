// A flatness or a cylinder evaluation made in C++, for the Python test that
// compares bits: `metrology_reference flatness|cylinder` reads points from
// standard input, one per line as the 16 hex digits of the bits of x, y and z,
// and prints the bits of every output on one line, in the order of the C++
// arguments, the report's fields after them.
#include <cinttypes>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include <quadrel/metrology/metrology.h>

namespace {

void Put(double x) {
  std::uint64_t bits;
  std::memcpy(&bits, &x, sizeof bits);
  std::printf(" %016" PRIx64, bits);
}

void Put(const CMatrix &m) {
  for (int i = 0; i < m.GetRows(); ++i)
    for (int j = 0; j < m.GetCols(); ++j)
      Put(m(i, j));
}

}  // namespace

int main(int argc, char **argv) {
  const std::string what = argc == 2 ? argv[1] : "";
  std::vector<double> xyz;
  std::uint64_t bits;
  while (std::scanf("%" SCNx64, &bits) == 1) {
    double x;
    std::memcpy(&x, &bits, sizeof x);
    xyz.push_back(x);
  }
  const int n = static_cast<int>(xyz.size() / 3);
  CMatrix points(3, n);
  for (int k = 0; k < n; ++k)
    for (int r = 0; r < 3; ++r)
      points(r, k) = xyz[3 * k + r];

  CMatrix a, b;
  if (what == "flatness") {
    ZoneInfo info;
    MinimumZoneFlatness(points, a, b, info);
    Put(a), Put(b), Put(static_cast<int>(info.status)), Put(info.iterations), Put(info.width);
    Put(info.deviations), Put(info.contacts), Put(info.sides);
  } else if (what == "cylinder") {
    GaussianFitInfo info;
    double radius = 0;
    GaussianCylinderFit(points, a, b, radius, info);
    Put(a), Put(b), Put(radius), Put(static_cast<int>(info.status)), Put(info.iterations);
    Put(info.rms), Put(info.residuals), Put(info.covariance), Put(info.uncertainties);
  } else {
    std::fprintf(stderr, "usage: metrology_reference flatness|cylinder < points\n");
    return 2;
  }
  std::printf("\n");
  return 0;
}
