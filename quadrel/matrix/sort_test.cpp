#include <algorithm>
#include <cmath>
#include <vector>

#include <gtest/gtest.h>

#include "quadrel/matrix/internal/sort_engine.h"
#include "quadrel/matrix/matrix.h"
#include "quadrel/testing/alloc_counter.h"
#include "quadrel/testing/test_util.h"

namespace {

CMatrix ColumnOf(const std::vector<double> &values) {
  return CMatrix(values.data(), static_cast<int>(values.size()), 1);
}

}  // namespace

TEST(Sort, EqualKeysComeOutInTheQuicksortOrder) {
  const std::vector<double> cases[][2] = {
      {{3, 1, 2}, {1, 2, 0}},
      {{1, 1, 1}, {1, 2, 0}},
      {{2, 1, 2, 1}, {1, 3, 2, 0}},
      {{5, 5, 5, 5, 5}, {1, 2, 3, 4, 0}},
      {std::vector<double>(10, 4.0), {5, 1, 2, 3, 4, 0, 6, 7, 8, 9}},
      {{2, 2, 1, 1, 2, 2, 1, 1, 2, 2}, {6, 2, 3, 7, 0, 4, 1, 5, 8, 9}},
      {{9, 8, 7, 6, 5, 4, 3, 2, 1, 0}, {9, 8, 7, 6, 5, 4, 3, 2, 1, 0}},
      {{0, 1, 2, 3, 4, 5, 6, 7, 8, 9}, {0, 1, 2, 3, 4, 5, 6, 7, 8, 9}},
  };
  for (const auto &c : cases) {
    CMatrix keys = ColumnOf(c[0]), index;
    EXPECT_EQ(&keys.Sort(index), &keys);
    EXPECT_TRUE(SameBits(index, ColumnOf(c[1]))) << Describe(ColumnOf(c[0]));
    std::vector<double> sorted(c[0]);
    std::sort(sorted.begin(), sorted.end());
    EXPECT_TRUE(SameBits(keys, ColumnOf(sorted))) << Describe(ColumnOf(c[0]));
  }
}

TEST(Sort, IndexRecordsWhereEachKeyCameFromWithoutAllocating) {
  TestRandom random(42);
  CMatrix A = random.Matrix(200, 3);
  // Many ties in one column, NaN keys in another.
  for (int i = 0; i < 200; ++i) {
    A(i, 1) = std::floor(4.0 * A(i, 1));
    if (i % 7 == 3) A(i, 2) = NAN;
  }
  const CMatrix original(A);
  CMatrix index = MakeMatrix(2, 2, {9, 9, 9, 9});
  {
    AllocationScope scope;
    A.Sort(index);
    // Only index's storage, which Resize makes.
    EXPECT_LE(scope.Count(), 4u);
  }
  ASSERT_TRUE(index.GetRows() == 200 && index.GetCols() == 3);
  for (int j = 0; j < 3; ++j) {
    std::vector<bool> used(200, false);
    for (int i = 0; i < 200; ++i) {
      const int from = static_cast<int>(index(i, j));
      ASSERT_TRUE(from >= 0 && from < 200 && !used[from]);
      used[from] = true;
      EXPECT_TRUE(SameBits(MakeRow({A(i, j)}), MakeRow({original(from, j)})));
      EXPECT_TRUE(i == 0 || A(i - 1, j) <= A(i, j) || std::isnan(A(i, j))) << i << ", " << j;
    }
  }
  // NaN keys last.
  EXPECT_FALSE(std::isnan(A(170, 2)));
  EXPECT_TRUE(std::isnan(A(171, 2)));
}

TEST(Sort, ShortAndSwappedColumns) {
  CMatrix row = MakeRow({3, 1, 2}), index;
  row.Sort(index);
  EXPECT_TRUE(SameBits(row, MakeRow({3, 1, 2})));
  EXPECT_TRUE(SameBits(index, MakeRow({0, 0, 0})));
  CMatrix empty(0, 3);
  empty.Sort(index);
  EXPECT_EQ(index.GetRows() * 10 + index.GetCols(), 3);
  // Column j as seen through the table is what is sorted.
  CMatrix A = MakeMatrix(3, 2, {3, 10, 1, 30, 2, 20});
  A.SwapCols(0, 1);
  A.Sort(index);
  EXPECT_TRUE(SameBits(A, MakeMatrix(3, 2, {10, 1, 20, 2, 30, 3})));
  EXPECT_TRUE(SameBits(index, MakeMatrix(3, 2, {0, 1, 2, 2, 1, 0})));
}

TEST(SortEngine, CompareDoublePutsNaNLast) {
  const double nan = NAN, inf = INFINITY, zero = 0.0, negativeZero = -0.0;
  EXPECT_EQ(CompareDouble(&zero, &negativeZero), 0);
  EXPECT_EQ(CompareDouble(&nan, &inf), 1);
  EXPECT_EQ(CompareDouble(&inf, &nan), -1);
  EXPECT_EQ(CompareDouble(&nan, &nan), 0);
}
