#!/usr/bin/python3
"""Sample consensus of quadrel beside Open3D's segment_plane, in one run.

Generates clouds of a million points (half on a plane, or on a sphere, with
Gaussian noise of 0.01; half uniform in the cube around it), one per seed,
and finds the plane with both libraries at the same threshold. Open3D runs at
the smallest iteration count of a ladder that gives it the success rate that
quadrel reaches; times are medians over the seeds. Open3D has no sphere
search: the sphere rows are quadrel's alone.

    /usr/bin/python3 bench/robust_vs_open3d.py build-bench/bin/quadrel_robust_bench

Needs numpy and Open3D (Debian: python3-open3d).
"""

import argparse
import math
import os
import subprocess
import tempfile
import time
from typing import Dict, List, Tuple

import numpy as np
import open3d as o3d

CENTRE = np.array([0.1, -0.2, 0.3])
RADIUS = 0.8
NOISE = 0.01


def make_cloud(shape: str, n: int, seed: int) -> Tuple[np.ndarray, np.ndarray]:
    """Return (points (n, 3), true unit normal or a zero vector for a sphere)."""
    rng = np.random.default_rng(seed)
    half = n // 2
    if shape == "plane":
        # A random orientation: the plane through CENTRE normal to `normal`.
        normal = rng.normal(size=3)
        normal /= np.linalg.norm(normal)
        e1 = np.cross(normal, [1.0, 0.0, 0.0] if abs(normal[0]) < 0.9 else [0.0, 1.0, 0.0])
        e1 /= np.linalg.norm(e1)
        e2 = np.cross(normal, e1)
        ab = rng.uniform(-1.0, 1.0, (half, 2))
        on = ab[:, :1] * e1 + ab[:, 1:] * e2
    else:
        normal = np.zeros(3)
        d = rng.normal(size=(half, 3))
        on = RADIUS * d / np.linalg.norm(d, axis=1, keepdims=True)
    on = on + rng.normal(0.0, NOISE, (half, 3))
    out = rng.uniform(-1.5, 1.5, (n - half, 3))
    points = np.concatenate([on, out]) + CENTRE
    return points[rng.permutation(n)], normal


def plane_errors(normal: np.ndarray, point: np.ndarray, truth: np.ndarray) -> Tuple[float, float]:
    """Angle (degrees) between the normals, and the distance of CENTRE from the plane."""
    normal = normal / np.linalg.norm(normal)
    angle = math.degrees(math.acos(min(1.0, abs(float(normal @ truth)))))
    return angle, abs(float(normal @ (CENTRE - point)))


def run_quadrel(bench: str, path: str, shape: str, seed: int, threshold: float,
                runs: int) -> Dict[str, object]:
    """Run the benchmark program on a point file; return its time and model."""
    text = subprocess.run(
        [bench, shape, "--points", path, "--seed", str(seed), "--threshold", str(threshold),
         "--runs", str(runs)], capture_output=True, text=True, check=False).stdout
    fields: Dict[str, object] = {}
    for line in text.splitlines():
        words = line.split()
        for key in ("point", "direction"):
            if key in words:
                k = words.index(key)
                fields[key] = np.array([float(v) for v in words[k + 1:k + 4]])
        for key in ("inliers", "median_ms", "radius", "iterations", "status"):
            if key in words:
                fields[key] = float(words[words.index(key) + 1])
    return fields


def run_open3d(points: np.ndarray, threshold: float, iterations: int,
               seed: int) -> Tuple[float, np.ndarray, int]:
    """Time one segment_plane call; return (ms, plane (a, b, c, d), inlier count)."""
    if hasattr(o3d.utility, "random"):
        o3d.utility.random.seed(seed)
    cloud = o3d.geometry.PointCloud(o3d.utility.Vector3dVector(points))
    start = time.perf_counter()
    model, inliers = cloud.segment_plane(threshold, 3, iterations)
    return (time.perf_counter() - start) * 1e3, np.asarray(model), len(inliers)


def summary(name: str, times: List[float], successes: int, seeds: int,
            errors: List[Tuple[float, float]], inliers: List[float], extra: str = "") -> None:
    """Print one row: median time, success rate, mean errors and inliers."""
    angle = float(np.mean([e[0] for e in errors]))
    offset = float(np.mean([e[1] for e in errors]))
    print(f"{name:28s} {np.median(times):9.1f} ms  found {successes}/{seeds}  "
          f"angle {angle:.4f} deg  offset {offset:.5f}  inliers {np.mean(inliers):.0f}{extra}")


def main() -> None:
    """Generate the clouds, run both libraries and print the comparison."""
    parser = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    parser.add_argument("bench", help="path of quadrel_robust_bench")
    parser.add_argument("--count", type=int, default=1000000)
    parser.add_argument("--seeds", type=int, default=20)
    parser.add_argument("--threshold", type=float, default=0.03)
    parser.add_argument("--runs", type=int, default=3, help="quadrel runs per cloud")
    args = parser.parse_args()
    print(f"load average before: {' '.join(f'{v:.2f}' for v in os.getloadavg())}, "
          f"{os.cpu_count()} cores, {args.count} points, threshold {args.threshold}")

    def found(angle: float, offset: float) -> bool:
        return angle < 1.0 and offset < 0.01

    with tempfile.TemporaryDirectory() as work:
        clouds = []
        ours_t, ours_e, ours_n, ours_ok = [], [], [], 0
        for seed in range(args.seeds):
            points, truth = make_cloud("plane", args.count, seed)
            path = os.path.join(work, f"plane{seed}.bin")
            points.astype("<f8").tofile(path)
            clouds.append((points, truth))
            r = run_quadrel(args.bench, path, "plane", seed, args.threshold, args.runs)
            err = plane_errors(r["direction"], r["point"], truth)
            ours_t.append(r["median_ms"])
            ours_e.append(err)
            ours_n.append(r["inliers"])
            ours_ok += found(*err)
        summary("quadrel FindConsensus", ours_t, ours_ok, args.seeds, ours_e, ours_n)

        theirs = None
        for iterations in (25, 50, 100, 200, 400, 1000, 3000):
            times, errs, counts, ok = [], [], [], 0
            for seed, (points, truth) in enumerate(clouds):
                ms, model, count = run_open3d(points, args.threshold, iterations, seed)
                normal = model[:3]
                scale = np.linalg.norm(normal)
                point = -model[3] * normal / scale**2
                err = plane_errors(normal, point, truth)
                times.append(ms)
                errs.append(err)
                counts.append(count)
                ok += found(*err)
            theirs = (iterations, times, ok, errs, counts)
            if ok >= ours_ok:
                break
        iterations, times, ok, errs, counts = theirs
        summary("Open3D segment_plane", times, ok, args.seeds, errs, counts,
                f"  ({iterations} iterations)")
        print(f"quadrel is {np.median(times) / np.median(ours_t):.1f} times as fast")

        sphere_t, sphere_c, sphere_r, sphere_ok = [], [], [], 0
        for seed in range(args.seeds):
            points, _ = make_cloud("sphere", args.count, seed)
            path = os.path.join(work, f"sphere{seed}.bin")
            points.astype("<f8").tofile(path)
            r = run_quadrel(args.bench, path, "sphere", seed, args.threshold, args.runs)
            centre_error = float(np.linalg.norm(r["point"] - CENTRE))
            radius_error = abs(float(r["radius"]) - RADIUS)
            sphere_t.append(r["median_ms"])
            sphere_c.append(centre_error)
            sphere_r.append(radius_error)
            sphere_ok += centre_error < 0.01 and radius_error < 0.01
        print(f"{'quadrel sphere':28s} {np.median(sphere_t):9.1f} ms  found {sphere_ok}/"
              f"{args.seeds}  centre {np.mean(sphere_c):.5f}  radius {np.mean(sphere_r):.5f}")
    print(f"load average after: {' '.join(f'{v:.2f}' for v in os.getloadavg())}")


if __name__ == "__main__":
    main()
