"""Writes cluttered.ply: a floor plane with a ball on it among clutter.

The floor is the plane z = 0 over [-1, 1] x [-1, 1] (2,400 points), the ball a
sphere of radius 0.25 centred at (0.3, -0.2, 0.25) (its upper two thirds, 900
points), both with Gaussian noise of 0.004 along each axis; 1,700 points of
clutter (34 %) lie uniformly in the box [-1, 1] x [-1, 1] x [0, 0.8]. Units
are metres. The file is binary little-endian PLY with float x, y, z, made
from a fixed seed, so running this again gives the same bytes.
"""

from __future__ import annotations

import pathlib

import numpy as np


def cloud(seed: int = 2026) -> np.ndarray:
    """The points (5000, 3) in the order floor, ball, clutter, then shuffled."""
    rng = np.random.default_rng(seed)
    floor = np.c_[rng.uniform(-1.0, 1.0, (2400, 2)), np.zeros(2400)]
    u = rng.normal(size=(900, 3))
    u /= np.linalg.norm(u, axis=1)[:, None]
    u[:, 2] = np.abs(u[:, 2]) * 0.9 - 0.3  # mostly the upper part: what a scanner above sees
    u /= np.linalg.norm(u, axis=1)[:, None]
    ball = np.array([0.3, -0.2, 0.25]) + 0.25 * u
    clutter = rng.uniform([-1.0, -1.0, 0.0], [1.0, 1.0, 0.8], (1700, 3))
    points = np.r_[floor, ball] + rng.normal(scale=0.004, size=(3300, 3))
    points = np.r_[points, clutter]
    return points[rng.permutation(points.shape[0])]


def write_ply(path: pathlib.Path, points: np.ndarray) -> None:
    """points (n, 3) as binary little-endian PLY with float x, y, z."""
    header = (
        "ply\nformat binary_little_endian 1.0\ncomment a floor, a ball and clutter\n"
        f"element vertex {points.shape[0]}\nproperty float x\nproperty float y\n"
        "property float z\nend_header\n"
    )
    path.write_bytes(header.encode("ascii") + points.astype("<f4").tobytes())


if __name__ == "__main__":
    write_ply(pathlib.Path(__file__).with_name("cluttered.ply"), cloud())
