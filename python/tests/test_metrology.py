"""The metrology functions: each name reaching its own evaluation, the shapes
of the results, and what bad input gives. Their bits are compared with
the C++ calls in test_same_bits.py."""

import json
import math

import numpy as np
import pytest

import quadrel
from conftest import cylinder_points, on_sphere, plane_points

Status = quadrel.MetrologyStatus
SPHERE = on_sphere(100, noise=1e-4)
RING = SPHERE * [1, 1, 0] / np.linalg.norm(SPHERE[:, :2], axis=1)[:, None] * 3 + [1, -2, 0.5]
Q = len(quadrel.GaussianCylinder.PARAMETERS)


@pytest.mark.parametrize(
    "func, points, check",
    [
        ("gaussian_fit_line", plane_points()[:, [0, 0, 0]], lambda r: abs(r.direction @ [1, 1, 1]) > 1.7),
        ("gaussian_fit_plane", plane_points(), lambda r: abs(r.normal[2]) > 0.99),
        ("gaussian_fit_circle", RING, lambda r: math.isclose(r.radius, 3, rel_tol=1e-9)),
        ("gaussian_fit_sphere", SPHERE, lambda r: math.isclose(r.radius, 3, rel_tol=1e-4)),
        ("gaussian_fit_cylinder", cylinder_points(), lambda r: r.covariance.shape == (Q, Q) and r.uncertainties.shape == (Q,)
         and r.residuals.shape == (300,)),
        ("gaussian_fit_cone", cylinder_points(), lambda r: r.half_angle < 1e-3),
        ("minimum_zone_straightness", plane_points()[:, [0, 0, 0]], lambda r: r.width < 1e-9),
        ("minimum_zone_roundness", RING, lambda r: r.width < 1e-9),
        ("minimum_zone_flatness", plane_points(), lambda r: r.contacts.dtype == np.int64 and set(r.sides) == {-1, 1}),
        ("minimum_zone_sphericity", SPHERE, lambda r: r.width < 2e-3),
        ("minimum_circumscribed_circle", RING, lambda r: math.isclose(r.radius, 3, rel_tol=1e-9)),
        ("maximum_inscribed_circle", RING, lambda r: math.isclose(r.radius, 3, rel_tol=1e-9)),
        ("minimum_circumscribed_sphere", SPHERE, lambda r: np.all(r.deviations <= 0)),
        ("maximum_inscribed_sphere", SPHERE, lambda r: np.all(r.deviations >= 0)),
    ],
)
def test_every_feature_fits_data_made_for_it(func, points, check):
    result = getattr(quadrel, func)(points)
    assert result.ok and check(result), result.status.message
    # Results are frozen, and give their status to JSON by name.
    assert json.loads(json.dumps(result.to_dict()))["status"] == result.status.name
    with pytest.raises(AttributeError):
        result.status = Status.CONVERGED  # type: ignore[misc]


def test_bad_input():
    for func, needs in [("gaussian_fit_cylinder", 5), ("gaussian_fit_torus", 7), ("minimum_zone_flatness", 4)]:
        with pytest.raises(ValueError, match=f"^{func}: points must have shape \\(n, 3\\) with n >= {needs}"):
            getattr(quadrel, func)(np.ones((needs - 1, 3)))

    points = cylinder_points(20)
    points[3, 2] = math.nan
    result = quadrel.gaussian_fit_cylinder(points)
    assert result.status == Status.NON_FINITE and not result.ok and math.isnan(result.radius)
    with pytest.raises(ValueError, match="NaN or infinite"):
        result.raise_for_status()

    line = np.outer(np.arange(10.0), [1, 2, 3])
    assert quadrel.gaussian_fit_cylinder(line).status == Status.DEGENERATE
    assert quadrel.minimum_zone_flatness(line).status == Status.DEGENERATE
