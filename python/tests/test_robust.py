"""Fits through outliers: the floor of the cluttered sample with its inliers,
several models with their labels, and clear errors for bad options. Their
bits are compared with quadrel-fit's in test_same_bits.py."""

import numpy as np
import pytest

import quadrel
from conftest import CLUTTERED, bits


@pytest.fixture(scope="module")
def cloud():
    return quadrel.read_points(CLUTTERED).points


def test_finds_the_floor_among_clutter(cloud):
    floor = quadrel.fit_plane(cloud, inlier_threshold=0.02)
    assert isinstance(floor, quadrel.RobustPlane)
    assert floor.inliers.shape == (5000,) and floor.inliers.dtype == bool
    assert floor.inlier_count == np.count_nonzero(floor.inliers) == floor.residuals.shape[0]
    # The plain fit of the inliers, bit for bit.
    assert bits(quadrel.fit_plane(cloud[floor.inliers]).normal) == bits(floor.normal)

    found = quadrel.extract(cloud, "plane", 0.02, max_models=3, min_inliers=400)
    assert len(found.models) == 1 and bits(found.models[0].normal) == bits(floor.normal)
    np.testing.assert_array_equal(found.labels == 0, floor.inliers)
    assert set(np.unique(found.labels)) == {-1, 0} and found.labels.dtype == np.int64


def test_radius_limits_find_the_ball_on_the_floor(cloud):
    # Over the whole cloud the search takes a huge sphere along the floor.
    assert quadrel.fit_sphere(cloud, inlier_threshold=0.02).radius > 1.0
    ball = quadrel.fit_sphere(cloud, inlier_threshold=0.02, max_radius=1.0)
    np.testing.assert_allclose(ball.centre, [0.3, -0.2, 0.25], atol=5e-3)
    assert abs(ball.radius - 0.25) < 2e-3
    found = quadrel.extract(cloud, "sphere", 0.02, max_models=1, max_radius=1.0)
    assert bits(found.models[0].centre) == bits(ball.centre)


@pytest.mark.parametrize(
    "call, message",
    [
        (lambda p: quadrel.fit_plane(p, inlier_threshold=0.0), "fit_plane: inlier_threshold must be a positive finite number, got 0.0"),
        (lambda p: quadrel.fit_line(p, inlier_threshold=float("inf")), "fit_line: inlier_threshold must be a positive finite"),
        (lambda p: quadrel.fit_circle(p, inlier_threshold=0.1, confidence=1.0), "fit_circle: confidence must lie strictly between 0 and 1"),
        (lambda p: quadrel.fit_sphere(p, seed=1), "fit_sphere: seed takes inlier_threshold"),
        (lambda p: quadrel.gaussian_fit_cylinder(p, inlier_threshold=0.1, max_iterations=0), r"max_iterations must lie in \[1, "),
        (lambda p: quadrel.extract(p, "cone", 0.1), "extract: shape must be one of line, plane, circle, sphere, cylinder"),
        (lambda p: quadrel.extract(p, "plane", 0.1, max_models=0), r"extract: max_models must lie in \[1, "),
        (lambda p: quadrel.fit_plane(np.c_[p[:, 0], p[:, 0], p[:, 0]], inlier_threshold=0.1), "fit_plane: found no plane"),
        (lambda p: quadrel.fit_sphere(p, inlier_threshold=0.1, min_radius=-1), "fit_sphere: min_radius must be a finite number of at least 0"),
        (lambda p: quadrel.fit_circle(p, inlier_threshold=0.1, min_radius=2, max_radius=1), r"fit_circle: max_radius must be at least min_radius \(2.0\), got 1.0"),
        (lambda p: quadrel.fit_sphere(p, max_radius=1), "fit_sphere: max_radius takes inlier_threshold"),
        (lambda p: quadrel.extract(p, "plane", 0.1, max_radius=1), "extract: min_radius and max_radius serve the circle, sphere, cylinder, not a plane"),
        (lambda p: quadrel.fit_sphere(p, inlier_threshold=0.1, min_radius=0.6, max_radius=0.6), r"radius outside the limits \(from 0.6 to 0.6\)"),
    ],
)  # fmt: skip
def test_bad_options_raise_value_error_naming_the_function(cloud, call, message):
    with pytest.raises(ValueError, match=message):
        call(cloud[:50])
