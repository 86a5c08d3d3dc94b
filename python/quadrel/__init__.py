"""quadrel: dense double-precision numerics for point sets in space.

Shape fits (line, plane, circle, sphere, ellipse, paraboloid), the ideal
trihedral fit, the quality peak, linear algebra (SVD, least squares, LU,
determinant, inverse, polynomials) and 3-D geometry (spherical coordinates,
rotations, frame transforms, distances, intersections), computed by the C++
library libquadrel: the same binary, and so the same bits, that C++ callers get.
Also: ``fit_segments`` (every labelled segment of a cloud, on every core),
``read_points`` (text, PLY, PCD and LAS files), the metrology functions
(``gaussian_fit_*``, ``minimum_zone_*``, circumscribed and inscribed circles
and spheres) and, when Dask is installed, ``quadrel.dask`` for clusters.

Conventions
-----------
* Points are ``(n, 3)`` arrays, one point per row, columns x, y, z: the layout
  numpy, pandas and Open3D users hold. (The C++ library keeps them as 3 x n.)
* Points, vectors and matrices may be any array-like of a float or int dtype,
  in C or Fortran order with any strides; they are read as float64. bool,
  complex, object and string dtypes are refused with TypeError.
* Vectors (centres, normals, directions, apexes) are arrays of shape ``(3,)``;
  residuals are ``(n,)`` arrays, one per point in input order; matrices are 2-D
  float64 arrays. numpy arrays are the matrices here: the C++ matrix type is
  not exposed.
* Angles are radians. The spherical triple is (range, azimuth, elevation) with
  Y the polar axis and azimuth 0 at +Z, turning towards -X:
  ``x = -r cos(e) sin(a), y = r sin(e), z = r cos(e) cos(a)``.
* Unit vectors that a fit returns (directions, normals) have the sign the SVD
  gave them; nothing orients them.
* Wrong shapes, too few points and bad scalars raise ValueError or TypeError
  with a message that names the function; NaN and infinities in the data are
  legal and give what the library documents (mostly NaN results).
* Every call releases the GIL while the library computes, so fits on
  different arrays run in parallel from Python threads.
"""

from __future__ import annotations

import functools
import math
import os
from typing import Any, Callable, Dict, Optional, Tuple, Union

import numpy as np

from . import _args
from . import _metrology
from . import _quadrel
from . import _robust
from ._results import (
    Circle,
    Crossing,
    Ellipse,
    Foot,
    Line,
    Lsq,
    Lu,
    Meeting,
    Paraboloid,
    Peak,
    PeakStatus,
    Plane,
    SegmentStatus,
    Segments,
    Sphere,
    Svd,
    Trihedral,
    TrihedralStatus,
)

__all__ = [
    "fit_line", "fit_plane", "fit_circle", "fit_sphere", "fit_ellipse", "fit_paraboloid",
    "fit_trihedral", "find_quality_peak", "fit_segments", "shape_fields", "SEGMENT_SHAPES",
    "svd", "cond", "lsq", "polyfit", "polyval", "lu", "det", "inv",
    "norm2", "dot", "angle", "cross", "sph2cart", "cart2sph", "sph2cart_array", "cart2sph_array",
    "rotation", "rotation_alpha", "rotation_beta", "rotation_gamma", "rotation_to_z",
    "transform", "untransform",
    "line_point_dist", "plane_point_dist", "plane_line_dist", "plane_plane_dist",
    "line_point_int", "plane_point_int", "plane_line_int", "plane_plane_int",
    "Line", "Plane", "Circle", "Sphere", "Ellipse", "Paraboloid", "Trihedral",
    "TrihedralStatus", "Peak", "PeakStatus", "Svd", "Lsq", "Lu", "Foot", "Crossing", "Meeting",
    "Segments", "SegmentStatus",
]  # fmt: skip

from ._io import PointFile, ReadError, read_points  # noqa: E402
from ._metrology import *  # noqa: E402,F401,F403
from ._metrology import __all__ as _metrology_names  # noqa: E402
from ._robust import (  # noqa: E402
    ROBUST_SHAPES,
    Extraction,
    RobustCircle,
    RobustCylinder,
    RobustLine,
    RobustPlane,
    RobustSphere,
)

__all__ += ["read_points", "PointFile", "ReadError", *_metrology_names]
__all__ += ["extract", "ROBUST_SHAPES", "Extraction", "RobustLine", "RobustPlane", "RobustCircle",
            "RobustSphere", "RobustCylinder"]  # fmt: skip

__version__ = "0.2.0"


def _flat(array: np.ndarray) -> np.ndarray:
    """A 3 x 1 column or a 1 x n row as a 1-D array."""
    return array.reshape(-1)


def _column(vector: np.ndarray) -> np.ndarray:
    """A 1-D array as the library's column; an empty one as 0 x 0, the empty
    vector the library reads no element of."""
    return vector[:, None] if vector.shape[0] else np.zeros((0, 0))


# ---------------------------------------------------------------- shape fits


def _line(p: np.ndarray) -> Line:
    centroid, direction, residuals = _quadrel.line_fit(p.T)
    return Line(_flat(centroid), _flat(direction), _flat(residuals))


def _plane(p: np.ndarray) -> Plane:
    centroid, normal, residuals = _quadrel.plane_fit(p.T)
    return Plane(_flat(centroid), _flat(normal), _flat(residuals))


def _circle(p: np.ndarray) -> Circle:
    centre, normal, radius, residuals = _quadrel.circle_fit(p.T)
    return Circle(_flat(centre), _flat(normal), radius, _flat(residuals))


def _sphere(p: np.ndarray) -> Sphere:
    centre, radius, residuals = _quadrel.sphere_fit(p.T)
    return Sphere(_flat(centre), radius, _flat(residuals))


# The plain fit of each shape that a fit through outliers finds.
_PLAIN_FITS: Dict[str, Callable[[np.ndarray], Any]] = {
    "line": _line, "plane": _plane, "circle": _circle, "sphere": _sphere,
    "cylinder": _metrology._cylinder,
}  # fmt: skip


def fit_line(
    points: Any, *, inlier_threshold: Optional[float] = None, seed: Optional[int] = None,
    confidence: Optional[float] = None, max_iterations: Optional[int] = None,
    threads: Optional[int] = None, min_inliers: Optional[int] = None,
) -> Line:  # fmt: skip
    """Straight line through points (n, 3), n >= 2, by orthogonal regression.

    Returns Line(centroid (3,), direction (3,), residuals (n,)). Coincident
    points give direction (1, 0, 0) and zero residuals; so does data with NaN
    or infinities, which show in the centroid.

    With inlier_threshold (and optionally seed, confidence, max_iterations,
    threads, min_inliers): the line through outliers, a RobustLine (see
    ``extract`` for the options).
    """
    search = _robust.search(seed, confidence, max_iterations, threads, min_inliers)
    return _robust.dispatch("fit_line", "line", points, 2, _line, inlier_threshold, **search)


def fit_plane(
    points: Any, *, inlier_threshold: Optional[float] = None, seed: Optional[int] = None,
    confidence: Optional[float] = None, max_iterations: Optional[int] = None,
    threads: Optional[int] = None, min_inliers: Optional[int] = None,
) -> Plane:  # fmt: skip
    """Plane through points (n, 3), n >= 2 (not all on one line for a
    meaningful plane), by orthogonal regression.

    Returns Plane(centroid (3,), normal (3,), residuals (n,)), the residuals
    signed distances, positive on the side the normal points to.

    With inlier_threshold (and optionally seed, confidence, max_iterations,
    threads, min_inliers): the plane through outliers, a RobustPlane.
    """
    search = _robust.search(seed, confidence, max_iterations, threads, min_inliers)
    return _robust.dispatch("fit_plane", "plane", points, 2, _plane, inlier_threshold, **search)


def fit_circle(
    points: Any, *, inlier_threshold: Optional[float] = None, seed: Optional[int] = None,
    confidence: Optional[float] = None, max_iterations: Optional[int] = None,
    threads: Optional[int] = None, min_inliers: Optional[int] = None,
    min_radius: Optional[float] = None, max_radius: Optional[float] = None,
) -> Circle:  # fmt: skip
    """Circle in space through points (n, 3), n >= 3: the plane of the points,
    then the algebraic circle in it.

    Returns Circle(centre (3,), normal (3,), radius, residuals (n,)). With
    inlier_threshold and the options of the search (min_radius and max_radius
    among them): a RobustCircle.
    """
    search = _robust.search(seed, confidence, max_iterations, threads, min_inliers, min_radius, max_radius)
    return _robust.dispatch("fit_circle", "circle", points, 3, _circle, inlier_threshold, **search)


def fit_sphere(
    points: Any, *, inlier_threshold: Optional[float] = None, seed: Optional[int] = None,
    confidence: Optional[float] = None, max_iterations: Optional[int] = None,
    threads: Optional[int] = None, min_inliers: Optional[int] = None,
    min_radius: Optional[float] = None, max_radius: Optional[float] = None,
) -> Sphere:  # fmt: skip
    """Sphere through points (n, 3), n >= 4, by linear least squares on the
    algebraic distance.

    Returns Sphere(centre (3,), radius, residuals (n,)). Coplanar points give
    the minimum-norm solution; NaN or infinities give NaN throughout. With
    inlier_threshold and the options of the search (min_radius and max_radius
    among them): a RobustSphere.
    """
    search = _robust.search(seed, confidence, max_iterations, threads, min_inliers, min_radius, max_radius)
    return _robust.dispatch("fit_sphere", "sphere", points, 4, _sphere, inlier_threshold, **search)


def extract(
    points: Any, shape: str, inlier_threshold: float, *, max_models: int = 10,
    seed: int = 0, min_inliers: Optional[int] = None, confidence: float = 0.999,
    max_iterations: int = 100000, threads: Optional[int] = None,
    min_radius: Optional[float] = None, max_radius: Optional[float] = None,
) -> Extraction:  # fmt: skip
    """Several models of one shape in one cloud, found through outliers.

    points is (n, 3); shape one of ROBUST_SHAPES (line, plane, circle, sphere,
    cylinder). The best model is found, its inliers (the points within
    inlier_threshold of it, in the units of the points) are taken out, and the
    search repeats on the rest until max_models models are found or a search
    finds none with min_inliers inliers (default: the points of one sample).
    Returns Extraction(labels (n,) int64: the model that took each point or
    -1; models: one robust result per model, best first, as fit_plane(...,
    inlier_threshold=...) gives it, its inliers (n,) over all points).

    The search: samples drawn from seed (an integer in [0, 2**64)); the same
    seed gives the same bits on every platform and for any number of threads
    (default: every core) and the same bits as quadrel-fit. It stops once a
    better model would be missed with probability below 1 - confidence, or
    after max_iterations samples. For a circle, sphere or cylinder, models
    with a radius below min_radius or above max_radius are passed over: a
    search for a ball takes no huge sphere along the floor it rests on. Bad
    options raise ValueError or TypeError; no model at all gives labels of -1
    and no models.
    """
    func = "extract"
    if not isinstance(shape, str) or shape not in ROBUST_SHAPES:
        raise ValueError(f"{func}: shape must be one of {', '.join(ROBUST_SHAPES)}, got {shape!r}")
    if shape not in _robust.ROUND_SHAPES and (min_radius is not None or max_radius is not None):
        raise ValueError(f"{func}: min_radius and max_radius serve the {', '.join(_robust.ROUND_SHAPES)}, not a {shape}")
    p = _args.points(func, points, _robust.MINIMUM_POINTS[shape])
    opts = _robust.options(func, inlier_threshold, seed, confidence, max_iterations, threads, min_inliers,
                           min_radius, max_radius)  # fmt: skip
    count = _args.integer(func, "max_models", max_models, 1, 2**31 - 1)
    return _robust.extract(func, shape, p, _PLAIN_FITS[shape], opts, count)


def fit_ellipse(points: Any) -> Ellipse:
    """Ellipse in space through points (n, 3), n >= 5: a simplex search over
    the foci and the focal sum, started from the algebraic circle.

    Returns Ellipse(foci (2, 3), normal (3,), focal_sum, residuals (n,)).
    Elongated ellipses (axes of 3 to 1 and beyond) are not reached.
    """
    p = _args.points("fit_ellipse", points, 5)
    foci, normal, focal_sum, residuals = _quadrel.ellipse_fit(p.T)
    return Ellipse(foci.T, _flat(normal), focal_sum, _flat(residuals))


def fit_paraboloid(points: Any) -> Paraboloid:
    """Elliptic paraboloid with its axis along Z and its section axes along X
    and Y, through points (n, 3), n >= 5, by one linear least-squares solve.

    Returns Paraboloid(vertex (3,), a, b, sign, residuals (n,)). A flat
    direction gives an infinite a or b and a non-finite vertex.
    """
    p = _args.points("fit_paraboloid", points, 5)
    vertex, a, b, sign, residuals = _quadrel.paraboloid_fit(p.T)
    return Paraboloid(_flat(vertex), a, b, sign, _flat(residuals))


# ---------------------------------------------------------------- many segments

#: The shapes fit_segments takes.
SEGMENT_SHAPES = tuple(_quadrel.segment_shapes())


# Small exact samples that every shape fits: an ellipse in the plane z = 0,
# then a grid on a paraboloid (which no plane or flat ellipse holds).
_FIELD_SAMPLES = (
    np.c_[3.0 * np.cos(np.arange(12) * np.pi / 6), 2.0 * np.sin(np.arange(12) * np.pi / 6), np.zeros(12)],
    np.array([[x, y, x * x / 4.0 + y * y / 9.0] for x in (-2.0, -1.0, 0.0, 1.0, 2.0) for y in (-2.0, 0.0, 2.0)]),
)


def _check_shape(func: str, shape: Any) -> str:
    if not isinstance(shape, str) or shape not in SEGMENT_SHAPES:
        raise ValueError(f"{func}: shape must be one of {', '.join(SEGMENT_SHAPES)}, got {shape!r}")
    return shape


@functools.lru_cache(maxsize=None)
def shape_fields(shape: str) -> Tuple[str, ...]:
    """The field columns that fit_segments gives for shape, in order: a vector
    field as name_x, name_y, name_z, a scalar as its name (rms and
    max_residual follow them in every result). Learnt once per shape from the
    fit of a small exact sample, so they are known before any data is seen."""
    _check_shape("shape_fields", shape)
    for sample in _FIELD_SAMPLES:
        out = _quadrel.fit_segments(sample, np.zeros(len(sample), np.int64), ["sample"], shape, 1)
        if out["columns"]:
            return tuple(out["columns"])
    raise RuntimeError(f"shape_fields: no built-in sample fits the shape {shape!r}")


def _segment_columns(p: np.ndarray, raw: np.ndarray, shape: str, threads: int,
                     order: Optional[np.ndarray] = None) -> Dict[str, np.ndarray]:  # fmt: skip
    """The columns of fit_segments for checked points p (n, 3) and labels raw
    (n,). Integer labels are grouped in the extension; others by np.unique.
    Given order (n,) int64, the points of each segment go in ascending order
    of it instead of input order."""
    rank = None if order is None else np.ascontiguousarray(order, dtype=np.int64)
    beyond_int64 = raw.dtype == np.uint64 and raw.size > 0 and raw.max() > np.iinfo(np.int64).max
    if raw.dtype.kind in "iu" and not beyond_int64:
        out = _quadrel.fit_segments(p, raw.astype(np.int64, copy=False), None, shape, threads, rank)
        uniques = out["keys"].astype(raw.dtype, copy=False)
    else:
        uniques, codes = np.unique(raw, return_inverse=True)
        names = [str(u) for u in uniques]
        out = _quadrel.fit_segments(p, codes.astype(np.int64, copy=False), names, shape, threads, rank)
    columns: Dict[str, np.ndarray] = {
        "label": uniques, "points": out["points"], "status": out["status"],
        "reason": np.array(out["reason"], dtype=object),
    }  # fmt: skip
    # When no segment fits, the fields still get their columns, all NaN.
    fields = out["columns"] or shape_fields(shape)
    values = out["values"] if out["columns"] else np.full((len(uniques), len(fields)), np.nan)
    for k, column in enumerate(fields):
        columns[column] = values[:, k]
    columns["rms"] = out["rms"]
    columns["max_residual"] = out["max_residual"]
    return columns


def fit_segments(points: Any, labels: Any, shape: str, *, threads: Optional[int] = None) -> Segments:
    """Fits one shape to every labelled segment of a point cloud.

    points is (n, 3); labels (n,) gives each point's segment (integers, or any
    values numpy can sort). shape is one of SEGMENT_SHAPES. Returns Segments,
    one row per distinct label in ascending order; within a segment the points
    keep their input order, so each row has the same bits as a fit of that
    segment alone. Unlike the single fits, segments are screened as the
    command-line tool screens its input: too few points or degenerate data
    give the row a status and a reason and NaN numbers, never an exception for
    the whole call. The columns are label, points, status, reason,
    shape_fields(shape), rms and max_residual (the summary quadrel-fit prints:
    rms squares the residuals, so residuals beyond about 1e154 give inf).
    threads (default: every core this process may use) fit segments in
    parallel with the GIL released.
    """
    name = "fit_segments"
    p = _args.points(name, points, 0)
    raw = np.asarray(labels)
    if raw.ndim != 1 or raw.shape[0] != p.shape[0]:
        raise ValueError(f"{name}: labels must have shape ({p.shape[0]},), one per point, got {raw.shape}")
    if raw.dtype.kind not in "biufUSM":
        raise TypeError(f"{name}: labels must be numbers or strings, got dtype {raw.dtype}")
    _check_shape(name, shape)
    count = len(os.sched_getaffinity(0)) if threads is None else _args.integer(name, "threads", threads, 1, 1024)
    columns = _segment_columns(p, raw, shape, count)
    return Segments(shape, columns)


# ---------------------------------------------------------------- estimators


def fit_trihedral(face1: Any, face2: Any, face3: Any, edge_angle: float = math.pi / 2) -> Trihedral:
    """Pose of an ideal trihedral (three planes through one apex whose edges
    make edge_angle with each other; pi/2 for the corner of a cube) from points
    (n_i, 3) on its three faces.

    edge_angle is in radians and must lie strictly between 0 and 2*pi/3. The
    faces go in the order that makes their normals, turned away from the
    origin, a right-handed triple, and the origin must lie behind every face.
    A face with fewer than 3 points is no error: the status says which.
    Returns Trihedral(status, apex, angles, rms, apex_step, angle_step).
    """
    name = "fit_trihedral"
    faces = [_args.points(name, f, 0, name=f"face{k + 1}") for k, f in enumerate((face1, face2, face3))]
    angle = _args.real(name, "edge_angle", edge_angle)
    if not 0.0 < angle < 2.0 * math.pi / 3.0:
        raise ValueError(
            f"{name}: edge_angle must lie strictly between 0 and 2*pi/3 (radians), got {angle!r}"
        )
    code, result = _quadrel.trihedral_fit(faces[0].T, faces[1].T, faces[2].T, angle)
    return Trihedral(
        TrihedralStatus(code), result[:, 0].copy(), result[:, 1].copy(),
        float(result[0, 2]), float(result[1, 2]), float(result[2, 2]),
    )  # fmt: skip


def find_quality_peak(positions: Any, quality: Any) -> Peak:
    """Where a quality sampled at scattered 2-D positions is highest.

    positions is (n, 2), n >= 1, quality (n,). A quadratic surface is fitted to
    all samples (a useful fit needs n >= 6); the status says whether its
    maximum, a short climb from the best sample, or the best sample itself gave
    the position (2,). The two coordinates must be comparable lengths.
    """
    name = "find_quality_peak"
    xy = _args.points(name, positions, 1, name="positions", width=2)
    q = _args.vector(name, "quality", quality, length=None)
    if q.shape[0] != xy.shape[0]:
        raise ValueError(
            f"{name}: quality must have one value per position, got {q.shape[0]} for {xy.shape[0]}"
        )
    code, peak = _quadrel.quality_peak(q[:, None], xy.T)
    return Peak(PeakStatus(code), _flat(peak))


# ---------------------------------------------------------------- linear algebra


def _square_fits(func: str, n: int) -> None:
    """A matrix with fewer rows than columns n is solved as n x n."""
    _args.check_size(func, "the padded n x n system", n, n)


def svd(a: Any) -> Svd:
    """Singular value decomposition a = u @ s @ v.T of a 2-D array (m, n).

    Returns Svd(u (m, n), s (n, n) diagonal, v (n, n), cond). The singular
    values are NOT sorted. With m < n, a is factored as if padded with zero
    rows. cond is the largest over the smallest singular value.
    """
    m = _args.matrix("svd", "a", a)
    _square_fits("svd", m.shape[1])
    u, s, v, c = _quadrel.svd(m)
    return Svd(u, s, v, c)


def cond(a: Any) -> float:
    """The condition number that svd gives for a (m, n), bit for bit."""
    m = _args.matrix("cond", "a", a)
    _square_fits("cond", m.shape[1])
    return _quadrel.cond(m)


def lsq(a: Any, b: Any) -> Lsq:
    """Minimum-norm least-squares solution of a @ x = b.

    a is (m, n); b is (m,) or (m, k), giving x of (n,) or (n, k). Singular
    values below m * largest * 2**-52 count as 0. Returns Lsq(x, cond).
    """
    m = _args.matrix("lsq", "a", a)
    rhs = _args.real_array("lsq", "b", b)
    if rhs.ndim not in (1, 2) or rhs.shape[0] != m.shape[0]:
        raise ValueError(f"lsq: b must have shape ({m.shape[0]},) or ({m.shape[0]}, k), got {rhs.shape}")
    _square_fits("lsq", m.shape[1])
    x, c = _quadrel.lsq(m, rhs[:, None] if rhs.ndim == 1 else rhs)
    return Lsq(_flat(x) if rhs.ndim == 1 else x, c)


def polyfit(x: Any, y: Any, degree: int) -> np.ndarray:
    """Least-squares polynomial of the given degree through (x[i], y[i]).

    x is (N,); y is (N,) or (N, k) for k fits on the same x. Returns the
    coefficients, constant term FIRST: (degree + 1,) or (degree + 1, k).
    """
    xs = _args.vector("polyfit", "x", x, length=None)
    ys = _args.real_array("polyfit", "y", y)
    if ys.ndim not in (1, 2) or ys.shape[0] != xs.shape[0]:
        raise ValueError(f"polyfit: y must have shape ({xs.shape[0]},) or ({xs.shape[0]}, k), got {ys.shape}")
    d = _args.integer("polyfit", "degree", degree, 0, 2**31 - 2)
    _args.check_size("polyfit", "the system", max(xs.shape[0], d + 1), d + 1)
    p = _quadrel.polyfit(_column(xs), ys[:, None] if ys.ndim == 1 else ys, d)
    return _flat(p) if ys.ndim == 1 else p


def polyval(p: Any, x: Any) -> Union[np.ndarray, float]:
    """The polynomial with coefficients p (constant first, as polyfit gives
    them) at every element of x (a number, or a 1-D or 2-D array); the result
    has the shape of x. An empty p gives zeros."""
    coefficients = _args.vector("polyval", "p", p, length=None)
    xs = _args.real_array("polyval", "x", x)
    if xs.ndim > 2:
        raise ValueError(f"polyval: x must be a number or a 1-D or 2-D array, got shape {xs.shape}")
    grid = xs.reshape(1, -1) if xs.ndim < 2 else xs
    _args.check_size("polyval", "x", *grid.shape)
    values = _quadrel.polyval(_column(coefficients), grid)
    return float(values[0, 0]) if xs.ndim == 0 else values.reshape(xs.shape)


def lu(a: Any, *, permute_l: bool = False) -> Lu:
    """LU factorisation with partial pivoting of a (m, n): p @ a = l @ u with
    l (m, m) unit lower triangular, u (m, n), p (m, m) a permutation. With
    permute_l=True, l absorbs the permutation (a = l @ u) and p is None."""
    m = _args.matrix("lu", "a", a)
    if permute_l:
        lower, upper = _quadrel.lu_permuted(m)
        return Lu(lower, upper, None)
    return Lu(*_quadrel.lu(m))


def det(a: Any) -> float:
    """Determinant of a square matrix by cofactor expansion. The cost grows
    factorially with the size (less with exact zeros): meant for small
    matrices. A 0 x 0 matrix gives 1.0."""
    return _quadrel.det(_args.matrix("det", "a", a, square=True))


def inv(a: Any) -> np.ndarray:
    """Inverse of a square matrix by Gauss-Jordan elimination with partial
    pivoting; a singular matrix gives infinite or NaN elements."""
    return _quadrel.inv(_args.matrix("inv", "a", a, square=True))


# ---------------------------------------------------------------- vectors and spherical coordinates


def _pair(func: str, a: Any, b: Any, length: Optional[int] = None) -> Tuple[np.ndarray, np.ndarray]:
    u = _args.vector(func, "a", a, length)
    v = _args.vector(func, "b", b, length)
    if v.shape != u.shape:
        raise ValueError(f"{func}: a and b must have one length, got {u.shape} and {v.shape}")
    return _column(u), _column(v)


def norm2(a: Any) -> float:
    """Euclidean norm of a 1-D vector, summed in rising index."""
    return _quadrel.norm2(_column(_args.vector("norm2", "a", a, length=None)))


def dot(a: Any, b: Any) -> float:
    """Dot product of two 1-D vectors of one length, summed in rising index."""
    return _quadrel.dot(*_pair("dot", a, b))


def angle(a: Any, b: Any) -> float:
    """Angle between two 1-D vectors of one length, in [0, pi] radians; a zero
    or non-finite vector gives pi."""
    return _quadrel.angle(*_pair("angle", a, b))


def cross(a: Any, b: Any) -> np.ndarray:
    """Right-handed cross product of two (3,) vectors, (3,)."""
    return _flat(_quadrel.cross(*_pair("cross", a, b, 3)))


def sph2cart(range: float, azimuth: float, elevation: float) -> Tuple[float, float, float]:  # noqa: A002
    """Cartesian (x, y, z) of one spherical triple (see the package
    conventions)."""
    name = "sph2cart"
    return _quadrel.sph2cart(
        _args.real(name, "range", range), _args.real(name, "azimuth", azimuth),
        _args.real(name, "elevation", elevation),
    )  # fmt: skip


def cart2sph(x: float, y: float, z: float) -> Tuple[float, float, float]:
    """Spherical (range, azimuth, elevation) of one point. Where x and z are
    both 0, and again where y is 0 as well, the library prints a short message
    to standard output, as C++ callers see it; cart2sph_array prints nothing."""
    name = "cart2sph"
    return _quadrel.cart2sph(_args.real(name, "x", x), _args.real(name, "y", y), _args.real(name, "z", z))


def _triples(func: str, name: str, value: Any) -> np.ndarray:
    array = _args.real_array(func, name, value)
    if array.shape != (3,) and (array.ndim != 2 or array.shape[1] != 3):
        raise ValueError(f"{func}: {name} must have shape (3,) or (n, 3), got {array.shape}")
    _args.check_size(func, name, 3, array.size // 3)
    return array


def sph2cart_array(triples: Any) -> np.ndarray:
    """Points of spherical triples: (n, 3) triples (range, azimuth, elevation)
    give (n, 3) points; one (3,) triple gives a (3,) point."""
    t = _triples("sph2cart_array", "triples", triples)
    if t.ndim == 1:
        return _flat(_quadrel.sph2cart_matrix(t[None, :]))
    return _quadrel.sph2cart_matrix(t.T).T


def cart2sph_array(points: Any) -> np.ndarray:
    """Spherical triples of points, in the layout of sph2cart_array. Prints
    nothing: the origin gives (0, 0, 0)."""
    p = _triples("cart2sph_array", "points", points)
    if p.ndim == 1:
        return _flat(_quadrel.cart2sph_matrix(p[None, :]))
    return _quadrel.cart2sph_matrix(p.T).T


# ---------------------------------------------------------------- rotations and frames


def _angles(func: str, **angles: Any) -> Tuple[float, ...]:
    return tuple(_args.real(func, key, value) for key, value in angles.items())


def rotation(alpha: float, beta: float, gamma: float) -> np.ndarray:
    """Rx(alpha) @ Ry(beta) @ Rz(gamma), 3 x 3, with
    Rx(t) = [[1, 0, 0], [0, cos t, sin t], [0, -sin t, cos t]],
    Ry(t) = [[cos t, 0, -sin t], [0, 1, 0], [sin t, 0, cos t]],
    Rz(t) = [[cos t, sin t, 0], [-sin t, cos t, 0], [0, 0, 1]]."""
    return _quadrel.rotation(*_angles("rotation", alpha=alpha, beta=beta, gamma=gamma))


def rotation_alpha(alpha: float, beta: float, gamma: float) -> np.ndarray:
    """Element-wise derivative of rotation() by alpha, 3 x 3."""
    return _quadrel.rotation_alpha(*_angles("rotation_alpha", alpha=alpha, beta=beta, gamma=gamma))


def rotation_beta(alpha: float, beta: float, gamma: float) -> np.ndarray:
    """Element-wise derivative of rotation() by beta, 3 x 3."""
    return _quadrel.rotation_beta(*_angles("rotation_beta", alpha=alpha, beta=beta, gamma=gamma))


def rotation_gamma(alpha: float, beta: float, gamma: float) -> np.ndarray:
    """Element-wise derivative of rotation() by gamma, 3 x 3."""
    return _quadrel.rotation_gamma(*_angles("rotation_gamma", alpha=alpha, beta=beta, gamma=gamma))


def rotation_to_z(azimuth: float, elevation: float) -> np.ndarray:
    """The rotation (3 x 3, determinant +1) that carries the unit direction of
    azimuth and elevation onto +Z; its row 2 is that direction.
    rotation_to_z(0, 0) is diag(-1, -1, 1)."""
    return _quadrel.rotation_to_z(*_angles("rotation_to_z", azimuth=azimuth, elevation=elevation))


def _frame_args(func: str, r: Any, x: Any, t: Any) -> Tuple[np.ndarray, np.ndarray, np.ndarray, bool]:
    rot = _args.matrix(func, "r", r)
    if rot.shape != (3, 3):
        raise ValueError(f"{func}: r must have shape (3, 3), got {rot.shape}")
    pts = _args.real_array(func, "x", x)
    shift = _args.real_array(func, "t", t)
    if pts.shape == (3,):
        if shift.shape != (3,):
            raise ValueError(f"{func}: t must have shape (3,) for one point x, got {shift.shape}")
        return rot, pts[:, None], shift[:, None], True
    if pts.ndim != 2 or pts.shape[1] != 3:
        raise ValueError(f"{func}: x must have shape (3,) or (n, 3), got {pts.shape}")
    if shift.shape != (3,) and shift.shape != pts.shape:
        raise ValueError(f"{func}: t must have shape (3,) or {pts.shape}, got {shift.shape}")
    _args.check_size(func, "x", *pts.shape)
    return rot, pts, np.broadcast_to(shift, pts.shape), False


def transform(r: Any, x: Any, t: Any) -> np.ndarray:
    """Points moved to another frame: r @ x + t for one point x (3,), and
    x @ r.T + t for points x (n, 3), t being (3,) or one row per point."""
    rot, pts, shift, single = _frame_args("transform", r, x, t)
    out = _quadrel.transform(rot, pts, shift)
    return _flat(out) if single else out


def untransform(r: Any, x: Any, t: Any) -> np.ndarray:
    """The inverse of transform for an orthogonal r: r.T @ (x - t) for one
    point, (x - t) @ r for points (n, 3)."""
    rot, pts, shift, single = _frame_args("untransform", r, x, t)
    out = _quadrel.untransform(rot, pts, shift)
    return _flat(out) if single else out


# ---------------------------------------------------------------- distances and intersections


def _points3(func: str, **vectors: Any) -> Tuple[np.ndarray, ...]:
    return tuple(_args.vector(func, key, value)[:, None] for key, value in vectors.items())


def line_point_dist(line_point: Any, direction: Any, point: Any) -> float:
    """Distance of point from the line, never negative (0.0 for a zero
    direction). All arguments are (3,)."""
    return _quadrel.line_point_dist(
        *_points3("line_point_dist", line_point=line_point, direction=direction, point=point)
    )


def plane_point_dist(plane_point: Any, normal: Any, point: Any) -> float:
    """Signed distance of point from the plane, positive on the side the
    normal points to (NaN for a zero normal)."""
    return _quadrel.plane_point_dist(
        *_points3("plane_point_dist", plane_point=plane_point, normal=normal, point=point)
    )


def plane_line_dist(plane_point: Any, normal: Any, line_point: Any, direction: Any) -> float:
    """If the line is parallel to the plane (their angle exactly the double
    nearest pi/2), the signed distance of line_point from the plane; else 0.0."""
    return _quadrel.plane_line_dist(*_points3(
        "plane_line_dist", plane_point=plane_point, normal=normal, line_point=line_point,
        direction=direction,
    ))  # fmt: skip


def plane_plane_dist(point1: Any, normal1: Any, point2: Any, normal2: Any) -> float:
    """If the normals have an angle of exactly 0.0, the signed distance of
    point2 from plane 1; else 0.0 (opposite normals count as not parallel)."""
    return _quadrel.plane_plane_dist(*_points3(
        "plane_plane_dist", point1=point1, normal1=normal1, point2=point2, normal2=normal2,
    ))  # fmt: skip


def line_point_int(line_point: Any, direction: Any, point: Any) -> Foot:
    """line_point_dist and the foot of the perpendicular from point to the line."""
    d, foot = _quadrel.line_point_int(
        *_points3("line_point_int", line_point=line_point, direction=direction, point=point)
    )
    return Foot(d, _flat(foot))


def plane_point_int(plane_point: Any, normal: Any, point: Any) -> Foot:
    """plane_point_dist and the foot of the perpendicular from point to the plane."""
    d, foot = _quadrel.plane_point_int(
        *_points3("plane_point_int", plane_point=plane_point, normal=normal, point=point)
    )
    return Foot(d, _flat(foot))


def plane_line_int(plane_point: Any, normal: Any, line_point: Any, direction: Any) -> Crossing:
    """plane_line_dist and, when it is exactly 0, the point where the line
    crosses the plane (else None)."""
    d, point = _quadrel.plane_line_int(*_points3(
        "plane_line_int", plane_point=plane_point, normal=normal, line_point=line_point,
        direction=direction,
    ))  # fmt: skip
    return Crossing(d, None if point is None else _flat(point))


def plane_plane_int(point1: Any, normal1: Any, point2: Any, normal2: Any) -> Meeting:
    """plane_plane_dist and, when it is exactly 0, a point of the line where
    the planes meet and its unit direction along cross(normal1, normal2)."""
    d, point, direction = _quadrel.plane_plane_int(*_points3(
        "plane_plane_int", point1=point1, normal1=normal1, point2=point2, normal2=normal2,
    ))  # fmt: skip
    return Meeting(
        d, None if point is None else _flat(point), None if direction is None else _flat(direction)
    )
