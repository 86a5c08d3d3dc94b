"""Fits through outliers: sample consensus finds the shape among clutter,
then the package's ordinary fit of the inliers gives the numbers.

The search draws minimal samples from a counter-based generator seeded by
``seed``, scores every hypothesis by the truncated squared distance of every
point, refines the best by least squares on its inliers and stops when a
better model would be missed with probability below 1 - ``confidence`` (or
after ``max_iterations`` samples). The same seed gives the same bits on every
platform and for any number of threads, and the same bits as ``quadrel-fit
--inlier-threshold``.
"""

from __future__ import annotations

import math
from dataclasses import dataclass, fields
from typing import Any, Callable, Dict, NamedTuple, Optional, Tuple

import numpy as np

from . import _args
from . import _quadrel
from ._metrology import GaussianCylinder
from ._results import Circle, Line, Plane, Sphere

#: The shapes sample consensus finds, by their number in the library.
ROBUST_SHAPES: Dict[str, int] = {"line": 0, "plane": 1, "circle": 2, "sphere": 3, "cylinder": 4}
#: The fewest points each shape's search takes, as its plain fit does.
MINIMUM_POINTS: Dict[str, int] = {"line": 2, "plane": 3, "circle": 3, "sphere": 4, "cylinder": 5}

_FOUND = 0
_TOO_FEW_INLIERS = 1
_NO_MODEL_IN_RANGE = 5
#: The shapes with a radius, which min_radius and max_radius bound.
ROUND_SHAPES = ("circle", "sphere", "cylinder")


@dataclass(frozen=True, eq=False, repr=False)
class _Consensus:
    """The fields a fit through outliers adds to the fit of its inliers (whose
    residuals (k,) are the inliers' alone): inliers (n,) bool, one per point,
    inlier_count, rms of the inliers' residuals, and consensus_iterations, the
    samples drawn."""

    inliers: np.ndarray
    inlier_count: int
    rms: float
    consensus_iterations: int


@dataclass(frozen=True, eq=False, repr=False)
class RobustLine(_Consensus, Line):
    """A line through outliers: the line fit of the inliers and the fields of
    _Consensus."""


@dataclass(frozen=True, eq=False, repr=False)
class RobustPlane(_Consensus, Plane):
    """A plane through outliers: the plane fit of the inliers and the fields
    of _Consensus."""


@dataclass(frozen=True, eq=False, repr=False)
class RobustCircle(_Consensus, Circle):
    """A circle through outliers: the circle fit of the inliers and the
    fields of _Consensus."""


@dataclass(frozen=True, eq=False, repr=False)
class RobustSphere(_Consensus, Sphere):
    """A sphere through outliers: the sphere fit of the inliers and the fields
    of _Consensus."""


@dataclass(frozen=True, eq=False, repr=False)
class RobustCylinder(GaussianCylinder):
    """A cylinder through outliers: the Gaussian cylinder of the inliers (its
    rms and residuals are the inliers'; iterations are its Gauss-Newton
    steps), inliers (n,) bool, inlier_count and consensus_iterations."""

    inliers: np.ndarray
    inlier_count: int
    consensus_iterations: int


class Extraction(NamedTuple):
    """Several models of one shape: labels (n,) int64, the index into models
    of the model that took each point or -1, and models, one robust result
    per model, best first."""

    labels: np.ndarray
    models: Tuple[Any, ...]


_ROBUST_CLASSES: Dict[str, Any] = {
    "line": RobustLine, "plane": RobustPlane, "circle": RobustCircle, "sphere": RobustSphere,
    "cylinder": RobustCylinder,
}  # fmt: skip


def options(
    func: str,
    inlier_threshold: Any,
    seed: Any,
    confidence: Any,
    max_iterations: Any,
    threads: Any,
    min_inliers: Any,
    min_radius: Any = None,
    max_radius: Any = None,
) -> Tuple[float, int, float, int, int, int, float, float]:
    """The checked options in the order the extension takes them; None stands
    for a default (threads 0: every core; min_inliers 0: one sample's points;
    radius limits 0 and infinity)."""
    least = 0.0 if min_radius is None else _args.real(func, "min_radius", min_radius)
    if not (least >= 0.0 and math.isfinite(least)):
        raise ValueError(f"{func}: min_radius must be a finite number of at least 0, got {least!r}")
    most = math.inf if max_radius is None else _args.real(func, "max_radius", max_radius)
    if not most >= least:
        raise ValueError(f"{func}: max_radius must be at least min_radius ({least!r}), got {most!r}")
    threshold = _args.real(func, "inlier_threshold", inlier_threshold)
    if not (threshold > 0.0 and math.isfinite(threshold)):
        raise ValueError(f"{func}: inlier_threshold must be a positive finite number, got {threshold!r}")
    p = 0.999 if confidence is None else _args.real(func, "confidence", confidence)
    if not 0.0 < p < 1.0:
        raise ValueError(f"{func}: confidence must lie strictly between 0 and 1, got {p!r}")
    return (
        threshold,
        0 if seed is None else _args.integer(func, "seed", seed, 0, 2**64 - 1),
        p,
        100000 if max_iterations is None else _args.integer(func, "max_iterations", max_iterations, 1, 2**63 - 1),
        0 if threads is None else _args.integer(func, "threads", threads, 1, 1024),
        0 if min_inliers is None else _args.integer(func, "min_inliers", min_inliers, 1, 2**63 - 1),
        least,
        most,
    )  # fmt: skip


def search(seed: Any, confidence: Any, max_iterations: Any, threads: Any, min_inliers: Any,
           min_radius: Any = None, max_radius: Any = None) -> Dict[str, Any]:  # fmt: skip
    """The options of the search by name, as dispatch takes them."""
    return {"seed": seed, "confidence": confidence, "max_iterations": max_iterations,
            "threads": threads, "min_inliers": min_inliers, "min_radius": min_radius,
            "max_radius": max_radius}  # fmt: skip


def dispatch(
    func: str, shape: str, points: Any, minimum: int, plain: Callable[[np.ndarray], Any],
    inlier_threshold: Any, **given: Any,
) -> Any:  # fmt: skip
    """The plain fit of points (n, 3), n >= minimum, or with inlier_threshold
    the fit through outliers; given holds the options of the search (None
    where not given), which without inlier_threshold raise ValueError."""
    if inlier_threshold is None:
        for name, value in given.items():
            if value is not None:
                raise ValueError(f"{func}: {name} takes inlier_threshold (a fit through outliers)")
        return plain(_args.points(func, points, minimum))
    p = _args.points(func, points, MINIMUM_POINTS[shape])
    return fit(func, shape, p, plain, options(func, inlier_threshold, **given))


def _rms(residuals: np.ndarray) -> float:
    """Root mean square summed in rising index, as quadrel-fit sums it."""
    if residuals.shape[0] == 0:
        return math.nan
    return math.sqrt(float(np.cumsum(residuals * residuals)[-1]) / residuals.shape[0])


def _model(shape: str, points: np.ndarray, inliers: np.ndarray, iterations: int, fit: Callable[[np.ndarray], Any]) -> Any:
    """The robust result of the model whose inliers (ascending rows) are given."""
    base = fit(np.ascontiguousarray(points[inliers]))
    mask = np.zeros(points.shape[0], dtype=bool)
    mask[inliers] = True
    values = {f.name: getattr(base, f.name) for f in fields(base)}
    values.update(inliers=mask, inlier_count=int(inliers.shape[0]), consensus_iterations=int(iterations))
    if shape != "cylinder":
        values["rms"] = _rms(base.residuals)
    return _ROBUST_CLASSES[shape](**values)


def _no_model(func: str, shape: str, status: int, count: int, opts: Tuple[Any, ...]) -> ValueError:
    text = _quadrel.consensus_status_message(status)
    if status == _TOO_FEW_INLIERS:
        text += f" (the best {shape} has {count} within {opts[0]!r})"
    elif status == _NO_MODEL_IN_RANGE:
        text += f" (from {opts[6]!r} to {opts[7]!r})"
    return ValueError(f"{func}: found no {shape} through outliers: {text}")


def fit(func: str, shape: str, points: np.ndarray, fit: Callable[[np.ndarray], Any], opts: Tuple[Any, ...]) -> Any:
    """Finds the shape among points (n, 3) with the checked options, then
    fits its inliers with fit; raises ValueError when no model is found."""
    status, inliers, count, iterations = _quadrel.consensus(points.T, ROBUST_SHAPES[shape], *opts)
    if status != _FOUND:
        raise _no_model(func, shape, status, count, opts)
    return _model(shape, points, inliers, iterations, fit)


def extract(func: str, shape: str, points: np.ndarray, fit: Callable[[np.ndarray], Any], opts: Tuple[Any, ...], max_models: int) -> Extraction:
    """Up to max_models models, each fitted as fit() fits one. No model at all
    gives labels of -1 and no models, unless the search could not run at all
    (too few points, bad data), which raises ValueError."""
    status, labels, found = _quadrel.extract_consensus(points.T, ROBUST_SHAPES[shape], *opts, max_models)
    if status not in (_FOUND, _TOO_FEW_INLIERS) and not found:
        raise _no_model(func, shape, status, 0, opts)
    models = tuple(_model(shape, points, inliers, iterations, fit) for _, inliers, _, iterations in found)
    labels.flags.writeable = False
    return Extraction(labels, models)
