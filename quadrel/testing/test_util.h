// Helpers shared by the test programs.
#ifndef QUADREL_TESTING_TEST_UTIL_H
#define QUADREL_TESTING_TEST_UTIL_H

#include <cstdint>
#include <initializer_list>
#include <string>

#include <gtest/gtest.h>

#include "quadrel/matrix/matrix.h"

// A rows x cols matrix from values listed row by row.
CMatrix MakeMatrix(int rows, int cols, std::initializer_list<double> rowMajor);
// A column vector of the listed values.
CMatrix MakeCol(std::initializer_list<double> values);
// A row vector of the listed values.
CMatrix MakeRow(std::initializer_list<double> values);

// The matrix in a readable form for failure messages: "2 x 2 [1 2; 3 4]".
std::string Describe(const CMatrix &m);

// Success if a and b have one shape and every element is equal bit for bit
// (NaN equals NaN of the same bits; -0.0 differs from 0.0). A failure names the
// first differing element, and shows both matrices when they are small.
::testing::AssertionResult SameBits(const CMatrix &a, const CMatrix &b);
// As SameBits, except that any NaN equals any other NaN: for results whose
// NaN comes from the arithmetic, whose sign bit depends on the operation.
::testing::AssertionResult SameValues(const CMatrix &a, const CMatrix &b);
// Success if a and b have one shape and every element differs by at most tol.
::testing::AssertionResult Near(const CMatrix &a, const CMatrix &b, double tol);

// The matrix product written literally through public element access, one
// dot product per element: acc = A(i, k) * B(k, j) + acc in rising k from 0.0.
// Fast routes of the library are compared with it bit for bit.
CMatrix LiteralProduct(const CMatrix &A, const CMatrix &B);

// A small deterministic generator for test data (xorshift64*).
class TestRandom {
 public:
  explicit TestRandom(std::uint64_t seed) : state_(seed ? seed : 1) {}
  // Uniform in [lo, hi).
  double Uniform(double lo, double hi);
  // Standard normal (Box-Muller).
  double Normal();
  // A rows x cols matrix of Uniform(lo, hi) elements.
  CMatrix Matrix(int rows, int cols, double lo = -1.0, double hi = 1.0);

 private:
  std::uint64_t Next();
  std::uint64_t state_;
};

#endif  // QUADREL_TESTING_TEST_UTIL_H
