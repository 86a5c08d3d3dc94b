// A small linear programme with few unknowns and many constraints:
//
//   minimise c'x  subject to  A x <= b,  x free,
//
// with k <= kMaxLpUnknowns unknowns and N rows. It is solved through its dual,
// minimise b'y subject to A'y = -c, y >= 0, by a two-phase revised simplex
// method whose basis has only k columns, so each step costs O(N k). Dantzig's
// rule picks the entering row; after a run of degenerate steps Bland's rule
// takes over, so the method cannot cycle. The primal x comes out as the
// simplex multipliers of the dual's optimal basis, and the rows in that basis
// are the active constraints that fix x.
#ifndef QUADREL_METROLOGY_INTERNAL_CHEBYSHEV_LP_H
#define QUADREL_METROLOGY_INTERNAL_CHEBYSHEV_LP_H

#include <vector>

constexpr int kMaxLpUnknowns = 8;

struct LpResult {
  bool solved = false;         // false: no bounded optimum found within the step limit
  double x[kMaxLpUnknowns];    // the primal solution
  double value = 0.0;          // c'x
  std::vector<int> active;     // rows of A in the optimal dual basis with weight > 0
  std::vector<double> weight;  // their dual weights y
};

// a holds the N rows of A, k entries each (row-major); b has N entries. The
// caller scales the problem so that its entries are of order one: the
// tolerances are absolute (1e-12).
LpResult SolveSmallLp(const std::vector<double> &a, const std::vector<double> &b, const double *c,
                      int k);

#endif  // QUADREL_METROLOGY_INTERNAL_CHEBYSHEV_LP_H
