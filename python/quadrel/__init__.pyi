# Type stubs of the package quadrel: what editors complete and type checkers
# check. Array arguments take anything numpy turns into a real array.
import enum
from typing import Any, Dict, NamedTuple, Optional, Tuple, Union, overload

import numpy as np
import numpy.typing as npt

from ._io import PointFile as PointFile, ReadError as ReadError, read_points as read_points
from ._metrology import *
from ._robust import (
    ROBUST_SHAPES as ROBUST_SHAPES,
    Extraction as Extraction,
    RobustCircle as RobustCircle,
    RobustCylinder as RobustCylinder,
    RobustLine as RobustLine,
    RobustPlane as RobustPlane,
    RobustSphere as RobustSphere,
)

__version__: str
SEGMENT_SHAPES: Tuple[str, ...]

_Array = npt.NDArray[np.float64]
_Points = npt.ArrayLike

class _Result:
    def to_dict(self) -> Dict[str, Any]: ...

class Line(_Result):
    centroid: _Array
    direction: _Array
    residuals: _Array

class Plane(_Result):
    centroid: _Array
    normal: _Array
    residuals: _Array

class Circle(_Result):
    centre: _Array
    normal: _Array
    radius: float
    residuals: _Array

class Sphere(_Result):
    centre: _Array
    radius: float
    residuals: _Array

class Ellipse(_Result):
    foci: _Array
    normal: _Array
    focal_sum: float
    residuals: _Array
    @property
    def centre(self) -> _Array: ...
    @property
    def semi_major(self) -> float: ...
    @property
    def semi_minor(self) -> float: ...

class Paraboloid(_Result):
    vertex: _Array
    a: float
    b: float
    sign: float
    residuals: _Array

class TrihedralStatus(enum.IntEnum):
    CONVERGED = 0
    FACE1_TOO_FEW_POINTS = 1
    FACE2_TOO_FEW_POINTS = 2
    FACE3_TOO_FEW_POINTS = 3
    STEP_LIMIT = 4
    DEGENERATE = 5

class Trihedral(_Result):
    status: TrihedralStatus
    apex: _Array
    angles: _Array
    rms: float
    apex_step: float
    angle_step: float
    @property
    def rotation(self) -> _Array: ...

class PeakStatus(enum.IntEnum):
    SURFACE_MAXIMUM = 0
    CLIMB_TURNED = 1
    CLIMB_OUT_OF_REACH = 2
    CLIMB_NOT_CONCAVE = 3
    BEST_SAMPLE = 4
    CLIMB_LEFT_BAND = 5

class Peak(_Result):
    status: PeakStatus
    position: _Array

class SegmentStatus(enum.IntEnum):
    OK = 0
    TOO_FEW_POINTS = 1
    DEGENERATE = 2

class Segments:
    shape: str
    @property
    def columns(self) -> Dict[str, np.ndarray]: ...
    def __getitem__(self, name: str) -> np.ndarray: ...
    def __len__(self) -> int: ...
    def to_dict(self) -> Dict[str, Any]: ...
    def to_pandas(self) -> Any: ...

class Svd(NamedTuple):
    u: _Array
    s: _Array
    v: _Array
    cond: float

class Lsq(NamedTuple):
    x: _Array
    cond: float

class Lu(NamedTuple):
    l: _Array
    u: _Array
    p: Optional[_Array]

class Foot(NamedTuple):
    distance: float
    foot: _Array

class Crossing(NamedTuple):
    distance: float
    point: Optional[_Array]

class Meeting(NamedTuple):
    distance: float
    point: Optional[_Array]
    direction: Optional[_Array]

@overload
def fit_line(points: _Points) -> Line: ...
@overload
def fit_line(
    points: _Points, *, inlier_threshold: float, seed: Optional[int] = ..., confidence: Optional[float] = ...,
    max_iterations: Optional[int] = ..., threads: Optional[int] = ..., min_inliers: Optional[int] = ...,
) -> RobustLine: ...
@overload
def fit_plane(points: _Points) -> Plane: ...
@overload
def fit_plane(
    points: _Points, *, inlier_threshold: float, seed: Optional[int] = ..., confidence: Optional[float] = ...,
    max_iterations: Optional[int] = ..., threads: Optional[int] = ..., min_inliers: Optional[int] = ...,
) -> RobustPlane: ...
@overload
def fit_circle(points: _Points) -> Circle: ...
@overload
def fit_circle(
    points: _Points, *, inlier_threshold: float, seed: Optional[int] = ..., confidence: Optional[float] = ...,
    max_iterations: Optional[int] = ..., threads: Optional[int] = ..., min_inliers: Optional[int] = ...,
    min_radius: Optional[float] = ..., max_radius: Optional[float] = ...,
) -> RobustCircle: ...
@overload
def fit_sphere(points: _Points) -> Sphere: ...
@overload
def fit_sphere(
    points: _Points, *, inlier_threshold: float, seed: Optional[int] = ..., confidence: Optional[float] = ...,
    max_iterations: Optional[int] = ..., threads: Optional[int] = ..., min_inliers: Optional[int] = ...,
    min_radius: Optional[float] = ..., max_radius: Optional[float] = ...,
) -> RobustSphere: ...
def extract(
    points: _Points, shape: str, inlier_threshold: float, *, max_models: int = ..., seed: int = ...,
    min_inliers: Optional[int] = ..., confidence: float = ..., max_iterations: int = ...,
    threads: Optional[int] = ..., min_radius: Optional[float] = ..., max_radius: Optional[float] = ...,
) -> Extraction: ...
def fit_ellipse(points: _Points) -> Ellipse: ...
def fit_paraboloid(points: _Points) -> Paraboloid: ...
def fit_segments(
    points: _Points, labels: npt.ArrayLike, shape: str, *, threads: Optional[int] = ...
) -> Segments: ...
def shape_fields(shape: str) -> Tuple[str, ...]: ...
def fit_trihedral(
    face1: _Points, face2: _Points, face3: _Points, edge_angle: float = ...
) -> Trihedral: ...
def find_quality_peak(positions: _Points, quality: npt.ArrayLike) -> Peak: ...
def svd(a: npt.ArrayLike) -> Svd: ...
def cond(a: npt.ArrayLike) -> float: ...
def lsq(a: npt.ArrayLike, b: npt.ArrayLike) -> Lsq: ...
def polyfit(x: npt.ArrayLike, y: npt.ArrayLike, degree: int) -> _Array: ...
@overload
def polyval(p: npt.ArrayLike, x: float) -> float: ...
@overload
def polyval(p: npt.ArrayLike, x: npt.ArrayLike) -> Union[_Array, float]: ...
def lu(a: npt.ArrayLike, *, permute_l: bool = ...) -> Lu: ...
def det(a: npt.ArrayLike) -> float: ...
def inv(a: npt.ArrayLike) -> _Array: ...
def norm2(a: npt.ArrayLike) -> float: ...
def dot(a: npt.ArrayLike, b: npt.ArrayLike) -> float: ...
def angle(a: npt.ArrayLike, b: npt.ArrayLike) -> float: ...
def cross(a: npt.ArrayLike, b: npt.ArrayLike) -> _Array: ...
def sph2cart(range: float, azimuth: float, elevation: float) -> Tuple[float, float, float]: ...
def cart2sph(x: float, y: float, z: float) -> Tuple[float, float, float]: ...
def sph2cart_array(triples: npt.ArrayLike) -> _Array: ...
def cart2sph_array(points: npt.ArrayLike) -> _Array: ...
def rotation(alpha: float, beta: float, gamma: float) -> _Array: ...
def rotation_alpha(alpha: float, beta: float, gamma: float) -> _Array: ...
def rotation_beta(alpha: float, beta: float, gamma: float) -> _Array: ...
def rotation_gamma(alpha: float, beta: float, gamma: float) -> _Array: ...
def rotation_to_z(azimuth: float, elevation: float) -> _Array: ...
def transform(r: npt.ArrayLike, x: npt.ArrayLike, t: npt.ArrayLike) -> _Array: ...
def untransform(r: npt.ArrayLike, x: npt.ArrayLike, t: npt.ArrayLike) -> _Array: ...
def line_point_dist(line_point: npt.ArrayLike, direction: npt.ArrayLike, point: npt.ArrayLike) -> float: ...
def plane_point_dist(plane_point: npt.ArrayLike, normal: npt.ArrayLike, point: npt.ArrayLike) -> float: ...
def plane_line_dist(
    plane_point: npt.ArrayLike, normal: npt.ArrayLike, line_point: npt.ArrayLike, direction: npt.ArrayLike
) -> float: ...
def plane_plane_dist(
    point1: npt.ArrayLike, normal1: npt.ArrayLike, point2: npt.ArrayLike, normal2: npt.ArrayLike
) -> float: ...
def line_point_int(line_point: npt.ArrayLike, direction: npt.ArrayLike, point: npt.ArrayLike) -> Foot: ...
def plane_point_int(plane_point: npt.ArrayLike, normal: npt.ArrayLike, point: npt.ArrayLike) -> Foot: ...
def plane_line_int(
    plane_point: npt.ArrayLike, normal: npt.ArrayLike, line_point: npt.ArrayLike, direction: npt.ArrayLike
) -> Crossing: ...
def plane_plane_int(
    point1: npt.ArrayLike, normal1: npt.ArrayLike, point2: npt.ArrayLike, normal2: npt.ArrayLike
) -> Meeting: ...
