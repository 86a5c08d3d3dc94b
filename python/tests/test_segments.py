"""fit_segments: one row per label, refused segments with a status, the bits
of single fits, and the same bits on any number of threads."""

import json

import numpy as np
import pytest

import quadrel
from conftest import bits, labelled_spheres, on_sphere


@pytest.fixture(scope="module")
def cloud():
    """Spheres under labels 30, 10, 20, a 3-point segment (7), a flat one (5)."""
    return labelled_spheres((30, 10, 20), 60, 3, seed=3)


def test_rows_follow_sorted_labels_with_single_fit_bits(cloud):
    points, labels = cloud
    result = quadrel.fit_segments(points, labels, "sphere")
    assert result["label"].tolist() == [5, 7, 10, 20, 30]
    assert result["points"].tolist() == [12, 3, 60, 60, 60]
    statuses = [quadrel.SegmentStatus(s) for s in result["status"]]
    assert statuses[:2] == [quadrel.SegmentStatus.DEGENERATE, quadrel.SegmentStatus.TOO_FEW_POINTS]
    assert all(s == quadrel.SegmentStatus.OK for s in statuses[2:])
    assert "points" in result["reason"][1] and result["reason"][2] == ""
    assert np.isnan(result["radius"][:2]).all() and np.isnan(result["rms"][:2]).all()
    for row in range(2, 5):
        label = result["label"][row]
        alone = quadrel.fit_sphere(points[labels == label])  # input order kept
        got = np.array([result[c][row] for c in ("centre_x", "centre_y", "centre_z")])
        assert bits(got) == bits(alone.centre) and bits(result["radius"][row]) == bits(alone.radius)
        assert np.isclose(result["rms"][row], np.sqrt(np.mean(alone.residuals**2)), rtol=1e-15)
        assert result["max_residual"][row] == np.max(np.abs(alone.residuals))
    json.dumps(result.to_dict(), allow_nan=True)
    if pytest.importorskip("pandas", reason="pandas not installed") is not None:
        frame = result.to_pandas()
        assert list(frame.columns) == list(result.columns) and len(frame) == 5


def test_threads_and_label_types_give_the_same_bits(cloud):
    points, labels = cloud
    one = quadrel.fit_segments(points, labels, "plane", threads=1)
    for other in (
        quadrel.fit_segments(points, labels, "plane", threads=3),
        quadrel.fit_segments(np.asfortranarray(points), labels.astype(np.float32), "plane"),
        quadrel.fit_segments(points, (labels + 100).astype(str), "plane", threads=2),  # same order
    ):
        for name, column in one.columns.items():
            if column.dtype.kind == "f" and name != "label":
                assert bits(other[name]) == bits(column), name


def test_bad_calls_raise_and_empty_clouds_give_no_rows():
    pts = on_sphere(10)
    with pytest.raises(ValueError, match=r"fit_segments: labels must have shape \(10,\)"):
        quadrel.fit_segments(pts, np.zeros(9), "sphere")
    with pytest.raises(ValueError, match="fit_segments: shape must be one of line, plane"):
        quadrel.fit_segments(pts, np.zeros(10), "cube")
    with pytest.raises(TypeError, match="fit_segments: labels must be numbers or strings"):
        quadrel.fit_segments(pts, [None] * 10, "sphere")
    with pytest.raises(ValueError, match="fit_segments: threads must lie in"):
        quadrel.fit_segments(pts, np.zeros(10), "sphere", threads=0)
    empty = quadrel.fit_segments(np.zeros((0, 3)), np.zeros(0), "line")
    assert len(empty) == 0 and "rms" in empty.columns
