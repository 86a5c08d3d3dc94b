"""Bad input raises ValueError or TypeError naming the function and the fault,
never reaches the library."""

import math

import numpy as np
import pytest

import quadrel as q

P = np.ones((10, 3))
V = np.ones(3)
M = np.ones((3, 3))

CASES = [
    (q.fit_sphere, (np.ones((3, 3)),), ValueError, r"fit_sphere: points must have shape \(n, 3\) with n >= 4, got \(3, 3\)"),
    (q.fit_line, (np.ones((5, 2)),), ValueError, r"fit_line: points must have shape \(n, 3\) with n >= 2, got \(5, 2\)"),
    (q.fit_ellipse, (np.ones(15),), ValueError, r"fit_ellipse: points must have shape \(n, 3\) with n >= 5, got \(15,\)"),
    (q.fit_plane, (np.ones((4, 3), dtype=bool),), TypeError, r"fit_plane: points must hold real numbers .* got dtype bool"),
    (q.fit_circle, (np.ones((4, 3), dtype=complex),), TypeError, r"dtype complex128"),
    (q.fit_paraboloid, ([[1, 2, "a"]] * 6,), TypeError, r"fit_paraboloid: points must hold real numbers"),
    (q.fit_sphere, ([[1, 2, 3], [1, 2]],), TypeError, r"fit_sphere: points must be an array of real numbers"),
    (q.fit_sphere, (None,), TypeError, r"got dtype object"),
    (q.fit_trihedral, (P, P, P, 2.1), ValueError, r"fit_trihedral: edge_angle must lie strictly between 0 and 2\*pi/3"),
    (q.fit_trihedral, (P, P, P, math.nan), ValueError, r"edge_angle must lie strictly"),
    (q.fit_trihedral, (P, P, P, "1.5"), TypeError, r"fit_trihedral: edge_angle must be a real number, got str"),
    (q.fit_trihedral, (P, np.ones((4, 2)), P), ValueError, r"fit_trihedral: face2 must have shape \(n, 3\)"),
    (q.find_quality_peak, (np.ones((0, 2)), []), ValueError, r"positions must have shape \(n, 2\) with n >= 1"),
    (q.find_quality_peak, (np.ones((3, 2)), [1, 2]), ValueError, r"quality must have one value per position, got 2 for 3"),
    (q.svd, (V,), ValueError, r"svd: a must be a 2-D array, got shape \(3,\)"),
    (q.svd, (np.ones((0, 10)),), ValueError, r"svd: a with no rows may have at most 9 columns"),
    (q.cond, (np.ones((1, 50000)),), ValueError, r"cond: the padded n x n system of 50000 x 50000 elements is too large"),
    (q.lsq, (M, np.ones(4)), ValueError, r"lsq: b must have shape \(3,\) or \(3, k\), got \(4,\)"),
    (q.polyfit, (V, V, -1), ValueError, r"polyfit: degree must lie in \[0, "),
    (q.polyfit, (V, V, 1.0), TypeError, r"polyfit: degree must be an integer, got float"),
    (q.polyfit, (V, np.ones(4), 1), ValueError, r"polyfit: y must have shape \(3,\) or \(3, k\)"),
    (q.polyval, (V, np.ones((2, 2, 2))), ValueError, r"polyval: x must be a number or a 1-D or 2-D array"),
    (q.det, (np.ones((2, 3)),), ValueError, r"det: a must be a square 2-D array, got shape \(2, 3\)"),
    (q.inv, ([[1, 2], [3]],), TypeError, r"inv: a must be an array of real numbers"),
    (q.dot, (V, np.ones(4)), ValueError, r"dot: a and b must have one length, got \(3,\) and \(4,\)"),
    (q.cross, (np.ones(2), np.ones(2)), ValueError, r"cross: a must have shape \(3,\), got \(2,\)"),
    (q.sph2cart, (1.0, True, 0.0), TypeError, r"sph2cart: azimuth must be a real number, got bool"),
    (q.cart2sph_array, (np.ones((2, 4)),), ValueError, r"cart2sph_array: points must have shape \(3,\) or \(n, 3\)"),
    (q.rotation, (0.0, 0.0, None), TypeError, r"rotation: gamma must be a real number, got NoneType"),
    (q.transform, (np.ones((2, 2)), V, V), ValueError, r"transform: r must have shape \(3, 3\), got \(2, 2\)"),
    (q.untransform, (M, P, np.ones((9, 3))), ValueError, r"untransform: t must have shape \(3,\) or \(10, 3\)"),
    (q.transform, (M, V, np.ones((1, 3))), ValueError, r"transform: t must have shape \(3,\) for one point x"),
    (q.plane_line_int, (V, V, V, np.ones(4)), ValueError, r"plane_line_int: direction must have shape \(3,\)"),
    (q.line_point_dist, (V, V, "abc"), TypeError, r"line_point_dist: point must hold real numbers"),
]  # fmt: skip


@pytest.mark.parametrize("func, args, error, message", CASES, ids=[f"{c[0].__name__}-{i}" for i, c in enumerate(CASES)])
def test_bad_input_raises_with_the_function_and_the_fault(func, args, error, message):
    with pytest.raises(error, match=message):
        func(*args)


def test_edge_cases_that_are_legal_give_documented_values():
    assert q.det(np.zeros((0, 0))) == 1.0
    assert q.norm2([]) == 0.0 and q.dot([], []) == 0.0 and q.angle([], []) == math.pi
    np.testing.assert_array_equal(q.polyval([], [[1.0, 2.0]]), [[0.0, 0.0]])
    assert q.polyval([2.0], math.inf) == 2.0  # pow(x, 0) is 1 for every x
    assert q.cart2sph_array(np.zeros((0, 3))).shape == (0, 3)
    assert q.fit_trihedral(np.ones((2, 3)), np.ones((5, 3)), np.ones((5, 3))).status == q.TrihedralStatus.FACE1_TOO_FEW_POINTS
    assert q.plane_line_int([0, 0, 0], [0, 0, 1], [0, 0, 1], [1, 0, 0]).point is None
    assert np.isinf(q.inv([[0.0, 0.0], [0.0, 0.0]])).any() or np.isnan(q.inv([[0.0, 0.0], [0.0, 0.0]])).any()
