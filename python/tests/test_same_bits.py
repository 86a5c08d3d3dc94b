"""Every function gives from Python the same bits as the C++ library gives on
the same input: the program reference_calls (built beside the tests) makes
one call of each in C++ and prints the bits of its outputs, metrology_reference
one flatness or cylinder evaluation of the points it reads, and quadrel-fit
a fit through outliers; these tests make the same calls through the package."""

import json
import math
import os
import subprocess

import numpy as np
import pytest

import quadrel as q
from conftest import CLUTTERED, cylinder_points, plane_points


def data(rows, cols, seed):
    """The program's Data(): x_k = sin(k * 12.9898 + seed), k along the rows."""
    k = np.arange(rows * cols, dtype=np.float64)
    return np.array([math.sin(v * 12.9898 + seed) for v in k]).reshape(rows, cols)


def hexes(*outputs):
    """Bits of every number, matrices row by row: the program's line format."""
    words = []
    for out in outputs:
        if out is None:
            continue
        for x in np.ravel(np.asarray(out, dtype=np.float64)):
            words.append("%016x" % np.float64(x).view(np.uint64))
    return words


def python_calls():
    p = (data(3, 30, 4.1) * 0.2 + data(3, 30, 0.7)).T  # (n, 3) points
    out = {}

    def call(name, *args):
        """Records the bits of q.<name>(*args), a tuple's items in order."""
        result = getattr(q, name)(*args)
        out[name] = hexes(*result) if isinstance(result, tuple) else hexes(result)

    for name, fields in (("fit_line", "centroid direction residuals"), ("fit_plane", "centroid normal residuals"),
                         ("fit_circle", "centre normal radius residuals"), ("fit_sphere", "centre radius residuals"),
                         ("fit_paraboloid", "vertex a b sign residuals")):  # fmt: skip
        f = getattr(q, name)(p)
        out[name] = hexes(*(getattr(f, field) for field in fields.split()))
    f = q.fit_ellipse(p)
    out["fit_ellipse"] = hexes(f.foci.T, f.normal, f.focal_sum, f.residuals)

    faces = [np.zeros((3, 9)) for _ in range(3)]
    for s in range(3):
        for k in range(9):
            faces[s][s, k] = 1.0 + s + 1e-3 * math.sin(k + 3.0 * s)
            faces[s][(s + 1) % 3, k] = 1.5 + (s + 1) % 3 + 0.4 * (k % 3)
            faces[s][(s + 2) % 3, k] = 1.5 + (s + 2) % 3 + 0.3 * (k // 3)
    t = q.fit_trihedral(*(face.T for face in faces), edge_angle=1.5707963267948966)
    pose = np.c_[t.apex, t.angles, [t.rms, t.apex_step, t.angle_step]]
    out["fit_trihedral"] = hexes(int(t.status), pose)
    positions = data(2, 30, 5.1) * 3.0
    quality = np.array([
        10.0 - positions[0, k] * positions[0, k] - 2.0 * positions[1, k] + 0.1 * math.sin(3.0 * k)
        for k in range(30)
    ])  # fmt: skip
    peak = q.find_quality_peak(positions.T, quality)
    out["find_quality_peak"] = hexes(int(peak.status), peak.position)

    a, square = data(7, 4, 2.1), data(4, 4, 2.4)
    out["svd"] = hexes(*q.svd(a))
    out["cond"] = hexes(q.cond(data(3, 5, 2.2)))
    out["lsq"] = hexes(*q.lsq(a, data(7, 2, 2.3)))
    coefficients = q.polyfit(data(9, 1, 2.5)[:, 0], data(9, 1, 2.6)[:, 0], 3)
    out["polyfit"] = hexes(coefficients)
    out["polyval"] = hexes(q.polyval(coefficients, data(2, 3, 2.7)))
    out["lu"] = hexes(*q.lu(square))
    out["lu_permuted"] = hexes(*q.lu(square, permute_l=True))
    out["det"] = hexes(q.det(square))
    out["inv"] = hexes(q.inv(square))

    a, b, c, d = (data(3, 1, s)[:, 0] for s in (3.1, 3.2, 3.3, 3.4))
    call("norm2", a)
    for name in ("dot", "angle", "cross"):
        call(name, a, b)
    out["sph2cart"] = hexes(q.sph2cart(2.0, 0.3, -0.4))
    out["cart2sph"] = hexes(q.cart2sph(0.3, -1.2, 2.5))
    out["sph2cart_array"] = hexes(q.sph2cart_array(data(3, 4, 3.5).T).T)
    out["cart2sph_array"] = hexes(q.cart2sph_array(data(3, 4, 3.6).T).T)
    out["rotation_to_z"] = hexes(q.rotation_to_z(0.3, -0.2))
    for name in ("rotation", "rotation_alpha", "rotation_beta", "rotation_gamma"):
        call(name, 0.1, 0.2, 0.3)
    r, pts, shift = q.rotation(0.4, 0.5, 0.6), data(5, 3, 3.8), data(5, 3, 3.9)
    out["transform"] = hexes(q.transform(r, pts, shift), q.transform(r, a, b))
    out["untransform"] = hexes(q.untransform(r, pts, shift), q.untransform(r, a, b))
    for name in ("line_point_dist", "plane_point_dist", "line_point_int", "plane_point_int"):
        call(name, a, b, c)
    for name in ("plane_line_dist", "plane_plane_dist", "plane_line_int", "plane_plane_int"):
        call(name, a, b, c, d)
    out["plane_plane_int_parallel"] = hexes(*q.plane_plane_int(a, a, b, 2.0 * a))
    return out


def reference(*args, stdin=None):
    """What the C++ reference program prints, or the program args[0] beside
    it run with args[1:]."""
    program = os.environ.get("QUADREL_REFERENCE")
    if not program:
        pytest.skip("QUADREL_REFERENCE (the reference_calls program) is not set; run through ctest")
    if args:
        program = os.path.join(os.path.dirname(program), args[0])
    return subprocess.run([program, *args[1:]], input=stdin, check=True, capture_output=True, text=True).stdout


def test_every_function_gives_the_bits_of_the_cpp_call():
    expected = {line.split()[0]: line.split()[1:] for line in reference().splitlines()}
    got = python_calls()
    assert sorted(got) == sorted(expected)
    for name in expected:
        assert got[name] == expected[name], name


@pytest.mark.parametrize("what, func, points, fields", [
    ("flatness", q.minimum_zone_flatness, plane_points(), "point normal status iterations width deviations contacts sides"),
    ("cylinder", q.gaussian_fit_cylinder, cylinder_points(), "axis_point direction radius status iterations rms residuals covariance uncertainties"),
])  # fmt: skip
def test_metrology_gives_the_bits_of_the_cpp_call(what, func, points, fields):
    text = "\n".join(" ".join(hexes(row)) for row in points)
    result = func(points)
    got = hexes(*(getattr(result, field) for field in fields.split()))
    assert got == reference("quadrel_python_metrology_reference", what, stdin=text).split()


@pytest.mark.parametrize("shape, vector", [("plane", "normal"), ("sphere", "centre")])
def test_fits_through_outliers_give_the_bits_of_the_tool(shape, vector):
    tool = os.environ.get("QUADREL_FIT")
    if not tool:
        pytest.skip("QUADREL_FIT names no quadrel-fit")
    out = subprocess.run([tool, shape, CLUTTERED, "--inlier-threshold", "0.02", "--seed", "3", "--json"],
                         check=True, capture_output=True, text=True).stdout  # fmt: skip
    report = json.loads(out)
    mine = getattr(q, "fit_" + shape)(q.read_points(CLUTTERED).points, inlier_threshold=0.02, seed=3, threads=3)
    assert report["inliers"] == mine.inlier_count and report["inlier_rms"] == mine.rms
    assert report["consensus_iterations"] == mine.consensus_iterations
    assert hexes(report[vector]) == hexes(getattr(mine, vector))
