// Decompositions, solvers and polynomials on 2-D float64 arrays.
#include <quadrel/linalg/direct.h>
#include <quadrel/linalg/least_squares.h>
#include <quadrel/linalg/polynomial.h>
#include <quadrel/linalg/svd.h>

#include "bindings.h"
#include "convert.h"

namespace quadrel_python {

void BindLinalg(py::module_ &m) {
  m.def(
      "svd",
      [](const Array &a) {
        const InputMatrix A(Describe(a));
        Matrix u, s, v;
        const double cond = WithoutGil([&] { return Svd(A, u, s, v); });
        return py::make_tuple(ToArray(u), ToArray(s), ToArray(v), cond);
      },
      py::arg("a"));
  m.def(
      "cond",
      [](const Array &a) {
        const InputMatrix A(Describe(a));
        return WithoutGil([&] { return Cond(A); });
      },
      py::arg("a"));
  m.def(
      "lsq",
      [](const Array &a, const Array &b) {
        const InputMatrix A(Describe(a)), B(Describe(b));
        Matrix x;
        const double cond = WithoutGil([&] { return Lsq(A, B, x); });
        return py::make_tuple(ToArray(x), cond);
      },
      py::arg("a"), py::arg("b"));
  m.def(
      "polyfit",
      [](const Array &x, const Array &y, int degree) {
        const InputMatrix X(Describe(x)), Y(Describe(y));
        return ToArray(WithoutGil([&] { return Matrix(Polyfit(X, Y, degree)); }));
      },
      py::arg("x"), py::arg("y"), py::arg("degree"));
  m.def(
      "polyval",
      [](const Array &p, const Array &x) {
        const InputMatrix P(Describe(p)), X(Describe(x));
        return ToArray(WithoutGil([&] { return Matrix(Polyval(P, X)); }));
      },
      py::arg("p"), py::arg("x"));
  m.def(
      "lu",
      [](const Array &a) {
        const InputMatrix A(Describe(a));
        Matrix l, u, p;
        WithoutGil([&] { Lu(A, l, u, p); });
        return py::make_tuple(ToArray(l), ToArray(u), ToArray(p));
      },
      py::arg("a"));
  m.def(
      "lu_permuted",
      [](const Array &a) {
        const InputMatrix A(Describe(a));
        Matrix l, u;
        WithoutGil([&] { Lu(A, l, u); });
        return py::make_tuple(ToArray(l), ToArray(u));
      },
      py::arg("a"));
  m.def(
      "det",
      [](const Array &a) {
        const InputMatrix A(Describe(a));
        return WithoutGil([&] { return Det(A); });
      },
      py::arg("a"));
  m.def(
      "inv",
      [](const Array &a) {
        const InputMatrix A(Describe(a));
        return ToArray(WithoutGil([&] { return Matrix(Inv(A)); }));
      },
      py::arg("a"));
}

}  // namespace quadrel_python
