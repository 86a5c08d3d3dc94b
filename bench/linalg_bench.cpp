// Linear algebra kernels: quadrel against Eigen's dynamic-size equivalents.
//
// Svd of n x 3 against JacobiSVD<MatrixXd> with thin U and V, Lsq of n x 5
// against the SVD solve of the same system, and the product of two n x n
// matrices into a fresh result on both sides.
#include <Eigen/Dense>
#include <cstdint>

#include "bench_util.h"

namespace {

using Eigen::MatrixXd;
using Eigen::VectorXd;

struct MatrixCase {
  CMatrix quadrel;
  MatrixXd eigen;
};

template <unsigned seed, int cols>
const MatrixCase &RandomMatrix(std::int64_t rows) {
  return Cached<MatrixCase>(rows, [rows] {
    const Block block = RandomBlock(static_cast<int>(rows), cols, seed);
    return MatrixCase{ToQuadrel(block), ToEigen(block)};
  });
}

// Svd: n x 3, n from the benchmark's argument.
void SvdQuadrel(benchmark::State &state) {
  const CMatrix &a = RandomMatrix<11, 3>(state.range(0)).quadrel;
  CMatrix u, s, v;
  TimeQuadrel(state, state.range(0), [&] {
    benchmark::DoNotOptimize(Svd(a, u, s, v));
    benchmark::DoNotOptimize(u);
    benchmark::DoNotOptimize(v);
  });
}

void SvdEigen(benchmark::State &state) {
  const MatrixXd &a = RandomMatrix<11, 3>(state.range(0)).eigen;
  TimeEigen(state, state.range(0), [&] {
    Eigen::JacobiSVD<MatrixXd> svd(a, Eigen::ComputeThinU | Eigen::ComputeThinV);
    benchmark::DoNotOptimize(svd);
  });
}

// Lsq: n x 5 system with one right-hand side.
void LsqQuadrel(benchmark::State &state) {
  const CMatrix &a = RandomMatrix<22, 5>(state.range(0)).quadrel;
  const CMatrix &b = RandomMatrix<33, 1>(state.range(0)).quadrel;
  CMatrix x;
  TimeQuadrel(state, state.range(0), [&] {
    benchmark::DoNotOptimize(Lsq(a, b, x));
    benchmark::DoNotOptimize(x);
  });
}

void LsqEigen(benchmark::State &state) {
  const MatrixXd &a = RandomMatrix<22, 5>(state.range(0)).eigen;
  const MatrixXd &b = RandomMatrix<33, 1>(state.range(0)).eigen;
  TimeEigen(state, state.range(0), [&] {
    MatrixXd x = a.jacobiSvd(Eigen::ComputeThinU | Eigen::ComputeThinV).solve(b);
    benchmark::DoNotOptimize(x.data());
  });
}

// Product of two n x n matrices, each call into a new result.
void ProductQuadrel(benchmark::State &state) {
  const std::int64_t n = state.range(0);
  const CMatrix &a = Cached<CMatrix>(
      n, [n] { return ToQuadrel(RandomBlock(static_cast<int>(n), static_cast<int>(n), 44)); });
  const CMatrix &b = Cached<CMatrix>(
      -n, [n] { return ToQuadrel(RandomBlock(static_cast<int>(n), static_cast<int>(n), 55)); });
  TimeQuadrel(state, n * n * n, [&] {
    CMatrix c = a * b;
    benchmark::DoNotOptimize(c);
  });
}

void ProductEigen(benchmark::State &state) {
  const std::int64_t n = state.range(0);
  const MatrixXd &a = Cached<MatrixXd>(
      n, [n] { return ToEigen(RandomBlock(static_cast<int>(n), static_cast<int>(n), 44)); });
  const MatrixXd &b = Cached<MatrixXd>(
      -n, [n] { return ToEigen(RandomBlock(static_cast<int>(n), static_cast<int>(n), 55)); });
  TimeEigen(state, n * n * n, [&] {
    MatrixXd c = a * b;
    benchmark::DoNotOptimize(c.data());
  });
}

[[maybe_unused]] const bool registered = [] {
  RegisterPair("BM_Svd", SvdQuadrel, SvdEigen, {3, 1000}, benchmark::kNanosecond);
  RegisterPair("BM_Lsq", LsqQuadrel, LsqEigen, {1000}, benchmark::kMicrosecond);
  RegisterPair("BM_Product", ProductQuadrel, ProductEigen, {3, 100}, benchmark::kNanosecond);
  return true;
}();

}  // namespace
