// The two estimators, timed alone: no reference library offers them.
//
// IdealTrihedralFit on the three faces of a cube corner with 1e4 points on
// each face, FindQualityPeak on 1e4 samples of a concave quadratic. Each run
// also reports the status that the estimator returned.
#include <cstdint>

#include "bench_util.h"

namespace {

struct TrihedralCase {
  CMatrix set1, set2, set3;
};

struct QualityCase {
  CMatrix quality, positions;
};

void IdealTrihedralFitQuadrel(benchmark::State &state) {
  const std::int64_t n = state.range(0);
  const TrihedralCase &data = Cached<TrihedralCase>(n, [n] {
    const int count = static_cast<int>(n);
    return TrihedralCase{ToQuadrel(TrihedralFace(0, count)), ToQuadrel(TrihedralFace(1, count)),
                         ToQuadrel(TrihedralFace(2, count))};
  });
  CMatrix result;
  int status = -1;
  const double rightAngle = 1.5707963267948966;
  TimeQuadrel(state, 3 * n, [&] {
    status = IdealTrihedralFit(data.set1, data.set2, data.set3, result, rightAngle);
    benchmark::DoNotOptimize(status);
    benchmark::DoNotOptimize(result);
  });
  state.counters["status"] = status;
}

void FindQualityPeakQuadrel(benchmark::State &state) {
  const std::int64_t n = state.range(0);
  const QualityCase &data = Cached<QualityCase>(n, [n] {
    Block quality, positions;
    QualitySamples(static_cast<int>(n), quality, positions);
    return QualityCase{ToQuadrel(quality), ToQuadrel(positions)};
  });
  CMatrix peak;
  int status = -1;
  TimeQuadrel(state, n, [&] {
    status = FindQualityPeak(data.quality, data.positions, peak);
    benchmark::DoNotOptimize(status);
    benchmark::DoNotOptimize(peak);
  });
  state.counters["status"] = status;
}

[[maybe_unused]] const bool registered = [] {
  RegisterAlone("BM_IdealTrihedralFit", IdealTrihedralFitQuadrel, {10000}, benchmark::kMicrosecond);
  RegisterAlone("BM_FindQualityPeak", FindQualityPeakQuadrel, {10000}, benchmark::kMicrosecond);
  return true;
}();

}  // namespace
