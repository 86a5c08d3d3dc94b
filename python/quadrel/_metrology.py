"""Metrology: Gaussian (least-squares orthogonal-distance) fits with the
uncertainties of their parameters, minimum-zone (Chebyshev) form errors, and
the minimum circumscribed and maximum inscribed circles and spheres.

One function per feature and criterion, each with a result class of its own:
a Gaussian fit reports a covariance and residuals, a zone evaluation a width
and the points that bound it, so one function with a criterion argument would
return different things for different arguments.

Units are those of the points; angles are radians. Directions and normals are
unit vectors whose component of largest magnitude is positive (a cone's
direction points towards its wider end instead).

Arguments are checked as everywhere in the package: points must be (n, 3) with
at least as many points as the feature needs, else ValueError or TypeError
naming the function. What only the data can tell (NaN or infinite coordinates,
points that do not determine the feature) comes back as the result's
``status`` with NaN in its numbers; ``result.ok`` says whether the numbers mean
anything, and ``raise_for_status()`` turns a bad status into ValueError.
"""

from __future__ import annotations

import enum
from dataclasses import dataclass
from typing import Any, ClassVar, Optional, Tuple

import numpy as np

from . import _args
from . import _quadrel
from ._results import _Result


class MetrologyStatus(enum.IntEnum):
    """How a metrology evaluation ended; ``message`` is the library's sentence."""

    CONVERGED = 0  # the optimality test passed
    STEP_LIMIT = 1  # the iteration limit ran out first: the best result found
    TOO_FEW_POINTS = 2
    NON_FINITE = 3  # a coordinate is NaN or infinite
    DEGENERATE = 4  # the points do not determine the feature
    BAD_SHAPE = 5

    @property
    def message(self) -> str:
        return _quadrel.metrology_status_message(int(self))


class _Evaluated(_Result):
    status: MetrologyStatus

    @property
    def ok(self) -> bool:
        """True when the numbers are meaningful: converged, or the best found
        when the iteration limit ran out."""
        return self.status in (MetrologyStatus.CONVERGED, MetrologyStatus.STEP_LIMIT)

    def raise_for_status(self) -> Any:
        """Returns self when ok, else raises ValueError with the status's message."""
        if not self.ok:
            raise ValueError(f"{type(self).__name__}: {self.status.message}")
        return self


@dataclass(frozen=True, eq=False, repr=False)
class _Gaussian(_Evaluated):
    """Shared fields of a Gaussian fit: status, Gauss-Newton iterations, rms of
    the orthogonal distances, residuals (n,) (signed orthogonal distances, the
    sign the feature's), covariance (q, q) and uncertainties (q,) (standard
    uncertainties, the square roots of its diagonal) of the natural parameters
    named in ``PARAMETERS``, scaled by the residual variance."""

    PARAMETERS: ClassVar[Tuple[str, ...]] = ()
    status: MetrologyStatus
    iterations: int
    rms: float
    residuals: np.ndarray
    covariance: np.ndarray
    uncertainties: np.ndarray


@dataclass(frozen=True, eq=False, repr=False)
class _Zone(_Evaluated):
    """Shared fields of a zone evaluation: status, iterations, width (the form
    error: the zone's width for minimum zone, the spread max - min of the
    distances from the centre for circumscribed and inscribed features),
    deviations (n,) (each point's signed deviation from the reference
    feature), contacts (k,) int64 (rows of the points that bound the result)
    and sides (k,) int64 (+1 on the outer or upper bound, -1 on the inner or
    lower one)."""

    status: MetrologyStatus
    iterations: int
    width: float
    deviations: np.ndarray
    contacts: np.ndarray
    sides: np.ndarray


@dataclass(frozen=True, eq=False, repr=False)
class GaussianLine(_Gaussian):
    """point: the centroid (3,); direction (3,); residuals are distances, never negative."""

    PARAMETERS: ClassVar[Tuple[str, ...]] = ("point_x", "point_y", "point_z", "direction_x", "direction_y", "direction_z")  # fmt: skip
    point: np.ndarray
    direction: np.ndarray


@dataclass(frozen=True, eq=False, repr=False)
class GaussianPlane(_Gaussian):
    """point: the centroid (3,); normal (3,); residuals positive on the side the normal points to."""

    PARAMETERS: ClassVar[Tuple[str, ...]] = ("point_x", "point_y", "point_z", "normal_x", "normal_y", "normal_z")  # fmt: skip
    point: np.ndarray
    normal: np.ndarray


@dataclass(frozen=True, eq=False, repr=False)
class GaussianCircle(_Gaussian):
    """centre (3,), normal (3,), radius; a residual is sqrt(h^2 + (rho - r)^2)
    with h the height over the plane and rho the distance from the axis,
    carrying the sign of rho - r (positive outside)."""

    PARAMETERS: ClassVar[Tuple[str, ...]] = ("centre_x", "centre_y", "centre_z", "normal_x", "normal_y", "normal_z", "radius")  # fmt: skip
    centre: np.ndarray
    normal: np.ndarray
    radius: float


@dataclass(frozen=True, eq=False, repr=False)
class GaussianSphere(_Gaussian):
    """centre (3,), radius; residuals |p - centre| - radius, positive outside."""

    PARAMETERS: ClassVar[Tuple[str, ...]] = ("centre_x", "centre_y", "centre_z", "radius")
    centre: np.ndarray
    radius: float


@dataclass(frozen=True, eq=False, repr=False)
class GaussianCylinder(_Gaussian):
    """axis_point (3,): the foot of the points' centroid on the axis;
    direction (3,); radius; residuals distance from the axis minus radius."""

    PARAMETERS: ClassVar[Tuple[str, ...]] = ("axis_point_x", "axis_point_y", "axis_point_z", "direction_x", "direction_y", "direction_z", "radius")  # fmt: skip
    axis_point: np.ndarray
    direction: np.ndarray
    radius: float


@dataclass(frozen=True, eq=False, repr=False)
class GaussianCone(_Gaussian):
    """axis_point (3,): the foot of the points' centroid on the axis;
    direction (3,) towards the wider end; half_angle (radians, >= 0) between
    axis and surface lines; radius at axis_point, so the radius at height t
    along direction is radius + t tan(half_angle). Residuals positive outside."""

    PARAMETERS: ClassVar[Tuple[str, ...]] = ("axis_point_x", "axis_point_y", "axis_point_z", "direction_x", "direction_y", "direction_z", "half_angle", "radius")  # fmt: skip
    axis_point: np.ndarray
    direction: np.ndarray
    half_angle: float
    radius: float


@dataclass(frozen=True, eq=False, repr=False)
class GaussianTorus(_Gaussian):
    """centre (3,), axis (3,), major_radius (axis to the middle of the tube),
    minor_radius (of the tube); residuals distance from the tube's middle
    circle minus minor_radius, positive outside the tube."""

    PARAMETERS: ClassVar[Tuple[str, ...]] = ("centre_x", "centre_y", "centre_z", "axis_x", "axis_y", "axis_z", "major_radius", "minor_radius")  # fmt: skip
    centre: np.ndarray
    axis: np.ndarray
    major_radius: float
    minor_radius: float


@dataclass(frozen=True, eq=False, repr=False)
class Straightness(_Zone):
    """The thinnest cylinder holding the points: axis_point (3,), direction
    (3,); width is its diameter, deviations are distances from the axis."""

    axis_point: np.ndarray
    direction: np.ndarray


@dataclass(frozen=True, eq=False, repr=False)
class Flatness(_Zone):
    """The thinnest slab holding the points: its mid-plane's point (3,) and
    normal (3,); +1 contacts lie on the plane the normal points to."""

    point: np.ndarray
    normal: np.ndarray


@dataclass(frozen=True, eq=False, repr=False)
class ZoneCircle(_Zone):
    """A circle in the plane of the Gaussian circle: centre (3,), normal (3,),
    radius (the mid circle for roundness)."""

    centre: np.ndarray
    normal: np.ndarray
    radius: float


@dataclass(frozen=True, eq=False, repr=False)
class ZoneSphere(_Zone):
    """A sphere: centre (3,), radius (the mid sphere for sphericity)."""

    centre: np.ndarray
    radius: float


def _flat(array: np.ndarray) -> np.ndarray:
    return array.reshape(-1)


def _call(func: str, minimum: int, points: Any) -> Tuple[Any, ...]:
    p = _args.points(func, points, minimum)
    return getattr(_quadrel, func)(p.T)


def _gaussian(cls: Any, report: Tuple[Any, ...], **feature: Any) -> Any:
    status, iterations, rms, residuals, covariance, uncertainties = report
    return cls(MetrologyStatus(status), iterations, rms, _flat(residuals), covariance,
               _flat(uncertainties), **feature)  # fmt: skip


def _zone(cls: Any, report: Tuple[Any, ...], **feature: Any) -> Any:
    status, iterations, width, deviations, contacts, sides = report
    return cls(MetrologyStatus(status), iterations, width, _flat(deviations),
               _flat(contacts).astype(np.int64), _flat(sides).astype(np.int64), **feature)  # fmt: skip


def gaussian_fit_line(points: Any) -> GaussianLine:
    """Gaussian line through points (n, 3), n >= 2. Coincident points: DEGENERATE."""
    report, point, direction = _call("gaussian_fit_line", 2, points)
    return _gaussian(GaussianLine, report, point=_flat(point), direction=_flat(direction))


def gaussian_fit_plane(points: Any) -> GaussianPlane:
    """Gaussian plane through points (n, 3), n >= 3. Collinear points: DEGENERATE."""
    report, point, normal = _call("gaussian_fit_plane", 3, points)
    return _gaussian(GaussianPlane, report, point=_flat(point), normal=_flat(normal))


def gaussian_fit_circle(points: Any) -> GaussianCircle:
    """Gaussian circle in space through points (n, 3), n >= 3, not collinear;
    started from fit_circle."""
    report, centre, normal, radius = _call("gaussian_fit_circle", 3, points)
    return _gaussian(GaussianCircle, report, centre=_flat(centre), normal=_flat(normal), radius=radius)


def gaussian_fit_sphere(points: Any) -> GaussianSphere:
    """Gaussian sphere through points (n, 3), n >= 4, not coplanar; started
    from fit_sphere."""
    report, centre, radius = _call("gaussian_fit_sphere", 4, points)
    return _gaussian(GaussianSphere, report, centre=_flat(centre), radius=radius)


def _cylinder(points: Any) -> GaussianCylinder:
    report, axis_point, direction, radius = _call("gaussian_fit_cylinder", 5, points)
    return _gaussian(GaussianCylinder, report, axis_point=_flat(axis_point),
                     direction=_flat(direction), radius=radius)  # fmt: skip


def gaussian_fit_cylinder(
    points: Any, *, inlier_threshold: Optional[float] = None, seed: Optional[int] = None,
    confidence: Optional[float] = None, max_iterations: Optional[int] = None,
    threads: Optional[int] = None, min_inliers: Optional[int] = None,
    min_radius: Optional[float] = None, max_radius: Optional[float] = None,
) -> GaussianCylinder:  # fmt: skip
    """Gaussian cylinder through points (n, 3), n >= 5, not collinear; the
    start is the best of several trial axes across the scatter. With
    inlier_threshold (and the options of the search, as quadrel.extract takes
    them): the cylinder through outliers, a RobustCylinder."""
    from . import _robust

    search = _robust.search(seed, confidence, max_iterations, threads, min_inliers, min_radius, max_radius)
    return _robust.dispatch("gaussian_fit_cylinder", "cylinder", points, 5, _cylinder,
                            inlier_threshold, **search)  # fmt: skip


def gaussian_fit_cone(points: Any) -> GaussianCone:
    """Gaussian cone through points (n, 3), n >= 6, not coplanar."""
    report, axis_point, direction, half_angle, radius = _call("gaussian_fit_cone", 6, points)
    return _gaussian(GaussianCone, report, axis_point=_flat(axis_point), direction=_flat(direction),
                     half_angle=half_angle, radius=radius)  # fmt: skip


def gaussian_fit_torus(points: Any) -> GaussianTorus:
    """Gaussian torus through points (n, 3), n >= 7; the start needs the
    points to show the ring's plane (a full or half ring)."""
    report, centre, axis, major, minor = _call("gaussian_fit_torus", 7, points)
    return _gaussian(GaussianTorus, report, centre=_flat(centre), axis=_flat(axis),
                     major_radius=major, minor_radius=minor)  # fmt: skip


def minimum_zone_straightness(points: Any) -> Straightness:
    """Straightness of points (n, 3), n >= 3: the diameter of the thinnest
    cylinder that holds them."""
    report, axis_point, direction = _call("minimum_zone_straightness", 3, points)
    return _zone(Straightness, report, axis_point=_flat(axis_point), direction=_flat(direction))


def minimum_zone_flatness(points: Any) -> Flatness:
    """Flatness of points (n, 3), n >= 4, not collinear: the width of the
    thinnest slab between two parallel planes that holds them."""
    report, point, normal = _call("minimum_zone_flatness", 4, points)
    return _zone(Flatness, report, point=_flat(point), normal=_flat(normal))


def minimum_zone_roundness(points: Any) -> ZoneCircle:
    """Roundness of points (n, 3), n >= 3: the narrowest annulus in the plane
    of the Gaussian circle that holds the points seen in that plane."""
    report, centre, normal, radius = _call("minimum_zone_roundness", 3, points)
    return _zone(ZoneCircle, report, centre=_flat(centre), normal=_flat(normal), radius=radius)


def minimum_zone_sphericity(points: Any) -> ZoneSphere:
    """Sphericity of points (n, 3), n >= 4, not coplanar: the thinnest shell
    of two concentric spheres that holds them."""
    report, centre, radius = _call("minimum_zone_sphericity", 4, points)
    return _zone(ZoneSphere, report, centre=_flat(centre), radius=radius)


def minimum_circumscribed_circle(points: Any) -> ZoneCircle:
    """The smallest circle holding points (n, 3), n >= 3, seen in their Gaussian plane."""
    report, centre, normal, radius = _call("minimum_circumscribed_circle", 3, points)
    return _zone(ZoneCircle, report, centre=_flat(centre), normal=_flat(normal), radius=radius)


def maximum_inscribed_circle(points: Any) -> ZoneCircle:
    """The largest circle in the Gaussian plane of points (n, 3), n >= 3,
    with none inside; STEP_LIMIT where the points do not surround a centre."""
    report, centre, normal, radius = _call("maximum_inscribed_circle", 3, points)
    return _zone(ZoneCircle, report, centre=_flat(centre), normal=_flat(normal), radius=radius)


def minimum_circumscribed_sphere(points: Any) -> ZoneSphere:
    """The smallest sphere holding points (n, 3), n >= 4, not coplanar."""
    report, centre, radius = _call("minimum_circumscribed_sphere", 4, points)
    return _zone(ZoneSphere, report, centre=_flat(centre), radius=radius)


def maximum_inscribed_sphere(points: Any) -> ZoneSphere:
    """The largest sphere with none of points (n, 3), n >= 4, inside; STEP_LIMIT
    where the points do not surround a centre."""
    report, centre, radius = _call("maximum_inscribed_sphere", 4, points)
    return _zone(ZoneSphere, report, centre=_flat(centre), radius=radius)


__all__ = [
    "MetrologyStatus", "GaussianLine", "GaussianPlane", "GaussianCircle", "GaussianSphere",
    "GaussianCylinder", "GaussianCone", "GaussianTorus", "Straightness", "Flatness", "ZoneCircle",
    "ZoneSphere", "gaussian_fit_line", "gaussian_fit_plane", "gaussian_fit_circle",
    "gaussian_fit_sphere", "gaussian_fit_cylinder", "gaussian_fit_cone", "gaussian_fit_torus",
    "minimum_zone_straightness", "minimum_zone_flatness", "minimum_zone_roundness",
    "minimum_zone_sphericity", "minimum_circumscribed_circle", "maximum_inscribed_circle",
    "minimum_circumscribed_sphere", "maximum_inscribed_sphere",
]  # fmt: skip
