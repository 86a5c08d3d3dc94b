"""Shared data of the package's tests."""

import os

import numpy as np

EXAMPLES = os.path.join(os.path.dirname(__file__), "..", "..", "examples", "data")
CLUTTERED = os.path.join(EXAMPLES, "cluttered.ply")

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


def labelled_spheres(labels, n, small, seed):
    """Spheres of n points under each of labels (placed and sized by the
    label), a segment of `small` points under 7 and a flat one under 5 that no
    sphere fits, interleaved at random: (points, labels)."""
    parts = [on_sphere(n, centre=(k, 1.0, -k), radius=1 + k / 40, seed=k) for k in labels]
    parts += [on_sphere(small), np.c_[np.arange(12.0), np.arange(12.0) % 3, np.zeros(12)]]
    keys = np.concatenate([np.full(len(p), k) for k, p in zip(list(labels) + [7, 5], parts)])
    order = np.random.default_rng(seed).permutation(len(keys))
    return np.concatenate(parts)[order], keys[order]


def cylinder_points(n=300, seed=3):
    """Noisy points on a cylinder of radius 12.5 around a tilted, offset axis."""
    rng = np.random.default_rng(seed)
    axis = np.array([0.2, -0.3, 1.0]) / np.linalg.norm([0.2, -0.3, 1.0])
    u = np.cross(axis, [1.0, 0.0, 0.0])
    u /= np.linalg.norm(u)
    v = np.cross(axis, u)
    angle, height = rng.uniform(0, 2 * np.pi, n), rng.uniform(-20, 20, n)
    radius = 12.5 + rng.normal(scale=1e-3, size=n)
    ring = np.cos(angle)[:, None] * u + np.sin(angle)[:, None] * v
    return np.array([100.0, -40.0, 7.0]) + radius[:, None] * ring + height[:, None] * axis


def plane_points(n=200, seed=5):
    """A tilted 50 x 30 patch with form deviations of a few micrometres."""
    rng = np.random.default_rng(seed)
    uv = rng.uniform(-1, 1, (n, 2)) * [25, 15]
    z = 0.02 * uv[:, 0] - 0.01 * uv[:, 1] + rng.uniform(-0.004, 0.004, n)
    return np.column_stack([uv + [300, 200], z + 50])


def bits(value):
    """The exact bits of a result (a number, an array or a tuple of them), for
    comparisons that must not forgive rounding; NaN payloads count too."""
    if isinstance(value, (tuple, list)):
        return tuple(bits(v) for v in value)
    if value is None:
        return None
    array = np.ascontiguousarray(value, dtype=np.float64)
    return array.shape, array.tobytes()
