"""Shared data of the package's tests."""

import numpy as np
import pytest

try:
    from hypothesis import settings
except ImportError:  # the property tests skip themselves
    pass
else:
    # The same examples on every run, so that CI's verdict depends on the code
    # alone; set HYPOTHESIS_PROFILE=explore for fresh random examples.
    settings.register_profile("deterministic", derandomize=True)
    settings.register_profile("explore", derandomize=False)
    import os

    settings.load_profile(os.environ.get("HYPOTHESIS_PROFILE", "deterministic"))


def on_sphere(n, centre=(1.0, -2.0, 0.5), radius=3.0, noise=1e-3, seed=7):
    """n points near a sphere, (n, 3), from a fixed seed."""
    rng = np.random.default_rng(seed)
    d = rng.normal(size=(n, 3))
    d /= np.linalg.norm(d, axis=1)[:, None]
    return np.asarray(centre) + radius * d + rng.normal(scale=noise, size=(n, 3))


@pytest.fixture
def sphere_points():
    return on_sphere(200)


def bits(value):
    """The exact bits of a result (a number, an array or a tuple of them), for
    comparisons that must not forgive rounding; NaN payloads count too."""
    if isinstance(value, (tuple, list)):
        return tuple(bits(v) for v in value)
    if value is None:
        return None
    array = np.ascontiguousarray(value, dtype=np.float64)
    return array.shape, array.tobytes()
