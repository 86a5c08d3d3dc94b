"""read_points: the file readers seen from Python."""

import math
import os

import numpy as np
import pytest

import quadrel
from conftest import EXAMPLES, bits, on_sphere


def write_ply(path, points, labels):
    """A binary little-endian PLY: x y z as float64 and a uchar label."""
    header = (
        "ply\nformat binary_little_endian 1.0\ncomment made by the test\n"
        f"element vertex {len(points)}\nproperty double x\nproperty double y\n"
        "property float64 z\nproperty uchar label\nend_header\n"
    )
    record = np.dtype([("xyz", "<f8", 3), ("label", "u1")])
    body = np.zeros(len(points), record)
    body["xyz"], body["label"] = points, labels
    path.write_bytes(header.encode() + body.tobytes())


def test_binary_ply_keeps_columns_and_skips_nan(tmp_path):
    points = on_sphere(40)
    points[5, 1] = math.nan  # a pulse without a return
    labels = np.arange(40) % 3
    write_ply(tmp_path / "scan.ply", points, labels)

    read = quadrel.read_points(tmp_path / "scan.ply")
    kept = np.delete(points, 5, axis=0)
    assert (read.format, read.skipped, read.origin_kind, read.grid) == ("ply", 1, "record", None)
    assert read.points.shape == (39, 3) and read.points.dtype == np.float64
    assert bits(read.points) == bits(kept)
    np.testing.assert_array_equal(read.columns["label"], np.delete(labels, 5))
    assert read.name == str(tmp_path / "scan.ply")

    # The columns are as read-only as every array of the package's results.
    with pytest.raises(ValueError):
        read.columns["label"][0] = 1.0
    with pytest.raises(TypeError):
        read.columns["other"] = read.points[:, 0]
    assert read.to_dict()["columns"]["label"][:3] == [0.0, 1.0, 2.0]


def test_organized_pcd_gives_each_point_its_pixel(tmp_path):
    width, height = 4, 3
    grid = np.arange(width * height * 3, dtype="<f4").reshape(-1, 3)
    grid[[1, 6]] = np.nan  # two pixels without a return
    header = (
        "# .PCD v0.7\nVERSION 0.7\nFIELDS x y z\nSIZE 4 4 4\nTYPE F F F\nCOUNT 1 1 1\n"
        f"WIDTH {width}\nHEIGHT {height}\nVIEWPOINT 0 0 0 1 0 0 0\nPOINTS {width * height}\n"
        "DATA binary\n"
    )
    (tmp_path / "depth.pcd").write_bytes(header.encode() + grid.tobytes())

    read = quadrel.read_points(str(tmp_path / "depth.pcd"))
    keep = np.setdiff1d(np.arange(width * height), [1, 6])
    assert (read.format, read.skipped, read.grid) == ("pcd", 2, (width, height))
    assert bits(read.points) == bits(grid[keep].astype(np.float64))
    np.testing.assert_array_equal(read.pixel_rows, keep // width)
    np.testing.assert_array_equal(read.pixel_columns, keep % width)


def test_text_and_the_example_cloud(tmp_path):
    (tmp_path / "p.txt").write_text("# x y z\n1 2 3\n\n4,5,6\n")
    read = quadrel.read_points(tmp_path / "p.txt")
    assert (read.format, read.origin_kind, read.skipped) == ("text", "line", 0)
    assert read.points.tolist() == [[1, 2, 3], [4, 5, 6]]
    assert read.origins.tolist() == [2, 4]
    assert read.pixel_rows is None

    targets = quadrel.read_points(os.path.join(EXAMPLES, "targets.ply"))
    assert targets.points.shape == (90, 3) and list(targets.columns) == ["label", "intensity"]
    assert sorted(set(targets.columns["label"])) == [1.0, 2.0, 3.0]


def test_bad_files_raise_with_the_readers_messages(tmp_path):
    with pytest.raises(FileNotFoundError):
        quadrel.read_points(tmp_path / "missing.ply")
    with pytest.raises(TypeError, match="read_points: path"):
        quadrel.read_points(3)

    (tmp_path / "bad.txt").write_text("1 2 3\n4 five 6\n")
    with pytest.raises(quadrel.ReadError) as caught:
        quadrel.read_points(tmp_path / "bad.txt")
    error = caught.value
    assert isinstance(error, ValueError)
    assert str(error).startswith(f"{tmp_path / 'bad.txt'}:2: ")
    assert (error.file, error.position, error.position_kind) == (str(tmp_path / "bad.txt"), 2, "line")
    assert str(error).endswith(error.fault) and "five" in error.fault

    # A PLY that promises more points than it holds: the fault is at a byte.
    write_ply(tmp_path / "short.ply", on_sphere(10), np.zeros(10))
    content = (tmp_path / "short.ply").read_bytes()
    (tmp_path / "short.ply").write_bytes(content[:-60])
    with pytest.raises(quadrel.ReadError) as caught:
        quadrel.read_points(tmp_path / "short.ply")
    assert caught.value.position_kind == "byte" and caught.value.position > 0
