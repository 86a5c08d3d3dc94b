"""Cross-check of quadrel-fit's readers with Open3D.

Open3D writes the same points as PLY (ascii, binary) and PCD (ascii, binary,
binary_compressed), among them points without a return (NaN); one PCD of each
form is then marked organized (its header given WIDTH x HEIGHT, the data left
as Open3D wrote them). quadrel-fit must read back the doubles that Open3D
reads (NaN points dropped), which shows as the same point count and the same
fit bits as from a text file of Open3D's points. LAS files, which Open3D does
not write, are written here in two point formats with a scale and offset that
are not trivial.

    python3 open3d_crosscheck.py PATH_TO_QUADREL_FIT
"""

import json
import os
import struct
import subprocess
import sys
import tempfile

import numpy as np
import open3d as o3d


def run_fit(tool: str, shape: str, path: str) -> dict:
    """The JSON result of quadrel-fit SHAPE --json PATH; fails on a non-zero status."""
    done = subprocess.run([tool, shape, "--json", path], capture_output=True, text=True)
    if done.returncode != 0:
        raise AssertionError(f"{shape} {path}: status {done.returncode}: {done.stderr}")
    return json.loads(done.stdout)


def write_text(path: str, points: np.ndarray) -> None:
    """The points as a text point file, every double to 17 significant digits."""
    with open(path, "w") as out:
        for x, y, z in points:
            out.write(f"{x:.17g} {y:.17g} {z:.17g}\n")


def compare(tool: str, path: str, points: np.ndarray, skipped: int, folder: str) -> None:
    """quadrel-fit on path against quadrel-fit on the text of `points`."""
    text = os.path.join(folder, os.path.basename(path) + ".txt")
    write_text(text, points)
    for shape in ("plane", "sphere"):
        got, want = run_fit(tool, shape, path), run_fit(tool, shape, text)
        assert got["points"] == want["points"] == len(points), (path, got["points"])
        assert got["skipped_points"] == skipped, (path, got["skipped_points"], skipped)
        # Where the worst point lies is a record in one file and a line in the other.
        for result in (got["residuals"], want["residuals"]):
            result.pop("max_record", None)
            result.pop("max_line", None)
        for key in want:
            if key not in ("file", "points"):
                assert got[key] == want[key], (path, shape, key, got[key], want[key])


def organize(path: str, width: int, height: int) -> None:
    """Gives a PCD file written by Open3D the grid WIDTH x HEIGHT."""
    with open(path, "rb") as f:
        data = f.read()
    head, _, body = data.partition(b"\nDATA ")
    lines = [
        f"WIDTH {width}".encode() if line.startswith(b"WIDTH") else
        b"HEIGHT %d" % height if line.startswith(b"HEIGHT") else line
        for line in head.split(b"\n")
    ]
    with open(path, "wb") as f:
        f.write(b"\n".join(lines) + b"\nDATA " + body)


def write_las(path: str, points: np.ndarray, point_format: int, scale, offset) -> np.ndarray:
    """A LAS 1.2 (formats 0-5) or 1.4 file; gives the doubles a reader must find."""
    length = {1: 28, 7: 36}[point_format]
    minor = 4 if point_format >= 6 else 2
    header_size = 375 if minor == 4 else 227
    stored = np.rint((points - offset) / scale).astype(np.int32)
    header = bytearray(header_size)
    header[0:4] = b"LASF"
    header[24], header[25] = 1, minor
    struct.pack_into("<HIIBHI", header, 94, header_size, header_size, 0, point_format, length,
                     0 if minor == 4 else len(points))
    struct.pack_into("<3d3d", header, 131, *scale, *offset)
    if minor == 4:
        struct.pack_into("<Q", header, 247, len(points))
    records = bytearray()
    for x, y, z in stored:
        record = bytearray(length)
        struct.pack_into("<3i", record, 0, x, y, z)
        records += record
    with open(path, "wb") as f:
        f.write(bytes(header) + bytes(records))
    # The integer times the scale, plus the offset: two roundings, in that order.
    return np.array([[float(v) * s + o for v, s, o in zip(row, scale, offset)] for row in stored])


def main() -> int:
    tool = sys.argv[1]
    rng = np.random.default_rng(5)
    width, height = 40, 30
    angles = rng.uniform(0, 2 * np.pi, size=(width * height, 2))
    points = np.column_stack([
        12.5 + 3 * np.cos(angles[:, 0]) * np.cos(angles[:, 1]),
        -4.25 + 3 * np.sin(angles[:, 0]) * np.cos(angles[:, 1]),
        0.75 + 3 * np.sin(angles[:, 1]),
    ]) + rng.normal(0, 1e-3, size=(width * height, 3))
    missing = rng.random(width * height) < 0.2
    points[missing] = np.nan
    cloud = o3d.geometry.PointCloud()
    cloud.points = o3d.utility.Vector3dVector(points)
    variants = [("ascii.ply", dict(write_ascii=True)), ("binary.ply", {}),
                ("ascii.pcd", dict(write_ascii=True)), ("binary.pcd", {}),
                ("compressed.pcd", dict(compressed=True))]
    with tempfile.TemporaryDirectory() as folder:
        for name, options in variants:
            for organized in (False, True) if name.endswith(".pcd") else (False,):
                path = os.path.join(folder, ("organized-" if organized else "") + name)
                assert o3d.io.write_point_cloud(path, cloud, **options), path
                if organized:
                    organize(path, width, height)
                back = np.asarray(o3d.io.read_point_cloud(path, remove_nan_points=True).points)
                compare(tool, path, back, int(missing.sum()), folder)
        finite = points[~missing]
        for point_format in (1, 7):
            path = os.path.join(folder, f"format{point_format}.las")
            expected = write_las(path, finite, point_format, (0.001, 0.0025, 0.0005),
                                 (12.0, -3.5, 1e3))
            compare(tool, path, expected, 0, folder)
    print("open3d cross-check: every variant read back the same points and fit bits")
    return 0


if __name__ == "__main__":
    sys.exit(main())
