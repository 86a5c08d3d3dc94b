// Both estimators on random and degenerate input: short point sets, parallel
// faces, edge angles outside their range, NaN, flat and noisy qualities.
#include "fuzz_input.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  FuzzInput in(data, size);
  if (in.Bool()) {
    CMatrix sets[3];
    for (CMatrix &set : sets)
      set = in.Numeric(3, in.Int(0, 12));
    if (in.Bool()) sets[2] = sets[1];
    CMatrix result = in.Matrix(in.Int(0, 3), in.Int(0, 3));
    const double edgeAngle = in.Bool() ? in.Range(0.05, 2.05) : in.Double();
    (void)IdealTrihedralFit(sets[0], sets[1], sets[2], result, edgeAngle);
  } else {
    const int n = in.Int(1, 60);
    CMatrix quality = in.Numeric(n, 1), positions = in.Numeric(2, n), peak;
    if (in.Bool()) quality = Ones(n, 1);
    (void)FindQualityPeak(quality, positions, peak);
  }
  return 0;
}
