"""Result types of the package: immutable objects with named fields, a short
readable repr and ``to_dict()`` for JSON, and the status codes as IntEnums."""

from __future__ import annotations

import enum
import math
from dataclasses import dataclass, fields
from typing import Any, Dict, NamedTuple, Optional

import numpy as np


def _plain(value: Any) -> Any:
    """value in plain Python types that json.dumps takes."""
    if isinstance(value, enum.Enum):
        return value.name
    if isinstance(value, np.ndarray):
        return value.tolist()
    if isinstance(value, (np.floating, np.integer)):
        return value.item()
    return value


def _short(value: Any) -> str:
    if isinstance(value, enum.Enum):
        return f"{type(value).__name__}.{value.name}"
    if isinstance(value, np.ndarray):
        if value.size <= 9:
            return np.array2string(value, separator=", ", precision=8)
        return f"<array of shape {value.shape}>"
    return repr(value)


class _Result:
    """Shared behaviour of the frozen result classes."""

    def __post_init__(self) -> None:
        for field in fields(self):  # type: ignore[arg-type]
            value = getattr(self, field.name)
            if isinstance(value, np.ndarray):
                value.flags.writeable = False

    def to_dict(self) -> Dict[str, Any]:
        """The fields as a dict of plain Python values (lists, floats, ints,
        status names), ready for ``json.dumps``."""
        return {f.name: _plain(getattr(self, f.name)) for f in fields(self)}  # type: ignore

    def __repr__(self) -> str:
        inner = ", ".join(f"{f.name}={_short(getattr(self, f.name))}" for f in fields(self))  # type: ignore
        return f"{type(self).__name__}({inner})"


@dataclass(frozen=True, eq=False, repr=False)
class Line(_Result):
    """Line fit: the mean point, the unit direction (sign as the SVD gave it)
    and each point's distance from the line (n,), never negative."""

    centroid: np.ndarray
    direction: np.ndarray
    residuals: np.ndarray


@dataclass(frozen=True, eq=False, repr=False)
class Plane(_Result):
    """Plane fit: the mean point, the unit normal (sign as the SVD gave it) and
    each point's signed distance (n,), positive on the side the normal points
    to."""

    centroid: np.ndarray
    normal: np.ndarray
    residuals: np.ndarray


@dataclass(frozen=True, eq=False, repr=False)
class Circle(_Result):
    """Circle in space: centre (3,), unit normal of its plane (as the plane fit
    gave it), radius, and each point's distance from the circle (n,), never
    negative (NaN for a point on the circle's axis)."""

    centre: np.ndarray
    normal: np.ndarray
    radius: float
    residuals: np.ndarray


@dataclass(frozen=True, eq=False, repr=False)
class Sphere(_Result):
    """Sphere: centre (3,), radius, and each point's distance from the centre
    minus the radius (n,): negative inside, positive outside."""

    centre: np.ndarray
    radius: float
    residuals: np.ndarray


@dataclass(frozen=True, eq=False, repr=False)
class Ellipse(_Result):
    """Ellipse in space: the foci (2, 3), one per row; the unit plane normal;
    the focal sum (the whole major axis, 2a); residuals (n,) combining each
    point's height e over the plane with its focal-sum mismatch m as
    sqrt(e*e + m**4)."""

    foci: np.ndarray
    normal: np.ndarray
    focal_sum: float
    residuals: np.ndarray

    @property
    def centre(self) -> np.ndarray:
        """The mean of the foci, (3,)."""
        return (self.foci[0] + self.foci[1]) / 2.0

    @property
    def semi_major(self) -> float:
        """Half the focal sum, a."""
        return self.focal_sum / 2.0

    @property
    def semi_minor(self) -> float:
        """sqrt(a*a - c*c), with c half the distance of the foci."""
        c = float(np.linalg.norm(self.foci[1] - self.foci[0])) / 2.0
        a = self.semi_major
        return math.sqrt(a * a - c * c) if a * a >= c * c else math.nan


@dataclass(frozen=True, eq=False, repr=False)
class Paraboloid(_Result):
    """z = z0 + sign*((x - x0)/a)**2 +- ((y - y0)/b)**2 with the section axes
    along X and Y: vertex (x0, y0, z0), a, b, sign of the X curvature (+1.0 or
    -1.0; the sign along Y is not reported) and vertical residuals (n,),
    positive above the surface."""

    vertex: np.ndarray
    a: float
    b: float
    sign: float
    residuals: np.ndarray


class TrihedralStatus(enum.IntEnum):
    """How the trihedral fit ended."""

    CONVERGED = 0  #: both steps fell to 1e-7
    FACE1_TOO_FEW_POINTS = 1  #: face 1 has fewer than 3 points
    FACE2_TOO_FEW_POINTS = 2
    FACE3_TOO_FEW_POINTS = 3
    STEP_LIMIT = 4  #: 21 steps without convergence; the last pose is given
    DEGENERATE = 5  #: a value that is not finite, or seed normals parallel or cancelling


@dataclass(frozen=True, eq=False, repr=False)
class Trihedral(_Result):
    """Pose of an ideal trihedral: the apex (3,), the angles (alpha, beta,
    gamma) of its rotation in radians, and the rms distance and the apex and
    angle steps of the last iteration. With the statuses FACE*_TOO_FEW_POINTS
    and DEGENERATE every number is 0.0."""

    status: TrihedralStatus
    apex: np.ndarray
    angles: np.ndarray
    rms: float
    apex_step: float
    angle_step: float

    @property
    def rotation(self) -> np.ndarray:
        """Rotation(alpha, beta, gamma), 3 x 3: it maps the trihedral frame
        (apex at the origin, symmetry axis +Y) to the frame of the points."""
        from . import rotation

        return rotation(*(float(v) for v in self.angles))


class PeakStatus(enum.IntEnum):
    """How find_quality_peak reached its position."""

    SURFACE_MAXIMUM = 0  #: the maximum of the fitted quadratic surface
    CLIMB_TURNED = 1  #: a climb from the best sample, stopped by a turn above 70 degrees
    CLIMB_OUT_OF_REACH = 2  #: six climbing steps: concave, but the maximum is out of reach
    CLIMB_NOT_CONCAVE = 3  #: six climbing steps: the surface has no maximum
    BEST_SAMPLE = 4  #: the best sample: poor fit, a single sample or a non-finite value
    CLIMB_LEFT_BAND = 5  #: a climb stopped on leaving the band round the best quality


@dataclass(frozen=True, eq=False, repr=False)
class Peak(_Result):
    """Where the quality is highest: position (2,) and how it was found."""

    status: PeakStatus
    position: np.ndarray


class Svd(NamedTuple):
    """A = u @ s @ v.T: u (m, n), s (n, n) diagonal with the singular values
    NOT sorted, v (n, n); cond is the largest over the smallest value."""

    u: np.ndarray
    s: np.ndarray
    v: np.ndarray
    cond: float


class Lsq(NamedTuple):
    """Minimum-norm least-squares solution x and the condition number of A."""

    x: np.ndarray
    cond: float


class Lu(NamedTuple):
    """P A = L U; with permute_l=True, A = L U directly and p is None."""

    l: np.ndarray  # noqa: E741
    u: np.ndarray
    p: Optional[np.ndarray]


class Foot(NamedTuple):
    """A distance and the foot of the perpendicular (3,)."""

    distance: float
    foot: np.ndarray


class Crossing(NamedTuple):
    """A line-plane distance and, when it is exactly 0, the crossing point (3,)
    (NaN for a line lying in the plane); else None."""

    distance: float
    point: Optional[np.ndarray]


class Meeting(NamedTuple):
    """A plane-plane distance and, when it is exactly 0, a point of the meeting
    line and its unit direction, (3,) each; else None and None."""

    distance: float
    point: Optional[np.ndarray]
    direction: Optional[np.ndarray]


class SegmentStatus(enum.IntEnum):
    """How the fit of one segment ended."""

    OK = 0
    TOO_FEW_POINTS = 1  #: fewer points than the shape takes
    DEGENERATE = 2  #: points that determine no shape, or a result that is no numbers


class Segments:
    """Columnar results of fit_segments, one row per segment in ascending
    order of label. Columns (each a numpy array of one value per row):
    ``label``, ``points`` (count), ``status`` (SegmentStatus codes), ``reason``
    (why a segment was refused; "" when fitted), the shape's fields
    (a vector field as ``name_x``, ``name_y``, ``name_z``), ``rms`` and
    ``max_residual`` (the root mean square and the largest magnitude of the
    residuals). A refused segment has NaN in every number."""

    def __init__(self, shape: str, columns: Dict[str, np.ndarray]) -> None:
        self.shape = shape
        self._columns = columns
        for array in columns.values():
            array.flags.writeable = False

    @property
    def columns(self) -> Dict[str, np.ndarray]:
        """The columns by name, in order."""
        return dict(self._columns)

    def __getitem__(self, name: str) -> np.ndarray:
        return self._columns[name]

    def __len__(self) -> int:
        return len(self._columns["label"])

    def to_dict(self) -> Dict[str, Any]:
        """The columns as plain Python lists, for JSON (status as names)."""
        out = {name: column.tolist() for name, column in self._columns.items()}
        out["status"] = [SegmentStatus(code).name for code in out["status"]]
        return out

    def to_pandas(self) -> Any:
        """A pandas DataFrame of the columns (pandas must be installed)."""
        import pandas

        return pandas.DataFrame(self._columns)

    def __repr__(self) -> str:
        ok = int(np.count_nonzero(self._columns["status"] == SegmentStatus.OK))
        names = ", ".join(self._columns)
        return f"Segments(shape={self.shape!r}, rows={len(self)}, fitted={ok}, columns=[{names}])"
