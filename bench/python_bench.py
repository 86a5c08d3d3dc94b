#!/usr/bin/env python3
"""The Python package against numpy and Open3D on the same points, in one run.

    PYTHONPATH=<build>/python /usr/bin/python3 bench/python_bench.py [--points N]

Each figure is the best of several runs, in milliseconds. Cases:
  plane, 1e6 points: quadrel.fit_plane; the C++ PlaneFit on a ready matrix
    (timed inside the extension); numpy: centroid, scatter matrix and
    numpy.linalg.svd, then the residuals; Open3D: compute_mean_and_covariance
    (no normal, no residuals) when open3d imports.
  sphere, 1e6 points: quadrel.fit_sphere; the C++ SphereFit on a ready matrix;
    numpy: the same linear system through numpy.linalg.lstsq, then residuals.
  fit_segments: 1e6 points in 1e4 segments, sphere and plane, on 1 and 2
    threads.
"""

import argparse
import os
import time

import numpy as np

import quadrel
from quadrel import _quadrel


def best(func, repeats):
    times = []
    for _ in range(repeats):
        start = time.perf_counter()
        func()
        times.append(time.perf_counter() - start)
    return 1e3 * min(times)


def numpy_plane(p):
    c = p.mean(axis=0)
    d = p - c
    _, _, vt = np.linalg.svd(d.T @ d)
    n = vt[2]
    return c, n, d @ n


def numpy_sphere(p):
    a = np.c_[2.0 * p, np.ones(len(p))]
    b = (p * p).sum(axis=1)
    x = np.linalg.lstsq(a, b, rcond=None)[0]
    r = np.sqrt(x[3] + x[:3] @ x[:3])
    return x[:3], r, np.linalg.norm(p - x[:3], axis=1) - r


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--points", type=int, default=1_000_000)
    parser.add_argument("--segments", type=int, default=10_000)
    parser.add_argument("--repeats", type=int, default=7)
    args = parser.parse_args()
    n, k, reps = args.points, args.segments, args.repeats

    rng = np.random.default_rng(1)
    d = rng.normal(size=(n, 3))
    d /= np.linalg.norm(d, axis=1)[:, None]
    sphere = 2.0 * d + [1.0, 2.0, 3.0] + rng.normal(scale=1e-3, size=(n, 3))
    plane = np.c_[rng.uniform(-1, 1, n), rng.uniform(-1, 1, n), rng.normal(scale=1e-3, size=n)]

    rows = [("fit_plane", n, best(lambda: quadrel.fit_plane(plane), reps))]
    rows.append(("C++ PlaneFit, ready matrix", n, 1e3 * min(_quadrel.time_library_fit("plane", plane.T, reps))))
    rows.append(("numpy scatter + linalg.svd", n, best(lambda: numpy_plane(plane), reps)))
    try:
        import open3d

        cloud = open3d.geometry.PointCloud(open3d.utility.Vector3dVector(plane))
        rows.append(("Open3D mean and covariance", n, best(cloud.compute_mean_and_covariance, reps)))
    except ImportError:
        rows.append(("Open3D (not installed)", n, float("nan")))
    rows.append(("fit_sphere", n, best(lambda: quadrel.fit_sphere(sphere), reps)))
    rows.append(("C++ SphereFit, ready matrix", n, 1e3 * min(_quadrel.time_library_fit("sphere", sphere.T, reps))))
    rows.append(("numpy linalg.lstsq sphere", n, best(lambda: numpy_sphere(sphere), reps)))

    labels = rng.integers(0, k, n)
    for shape, pts in (("sphere", sphere), ("plane", plane)):
        for threads in (1, 2):
            ms = best(lambda: quadrel.fit_segments(pts, labels, shape, threads=threads), max(2, reps // 2))
            rows.append((f"fit_segments {shape}, {k} segments, {threads} thread(s)", n, ms))

    print(f"{'case':<48} {'points':>9} {'ms':>9}")
    for name, count, ms in rows:
        print(f"{name:<48} {count:>9} {ms:>9.2f}")
    print(f"(cores available: {len(os.sched_getaffinity(0))})")


if __name__ == "__main__":
    main()
