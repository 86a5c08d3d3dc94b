"""quadrel.dask on a local cluster of two worker processes: per-segment fits
with the bits of quadrel.fit_segments on any partitioning, the two-pass plane
and line, input checks, files and the command line, and a killed worker."""

import os
import signal
import subprocess
import sys
import time

import numpy as np
import pytest

pytest.importorskip("dask.dataframe", reason="Dask is not installed (python3-dask)")
distributed = pytest.importorskip("distributed", reason="Dask distributed is not installed (python3-distributed)")

import dask  # noqa: E402
import dask.dataframe as dd  # noqa: E402
import pandas as pd  # noqa: E402

import quadrel  # noqa: E402
import quadrel.dask as qd  # noqa: E402
from conftest import labelled_spheres, on_sphere  # noqa: E402


@pytest.fixture(scope="module")
def client():
    with qd.local_cluster(2) as cluster:  # two worker processes, one thread each
        assert len(cluster.workers) == 2
        with distributed.Client(cluster) as c:
            yield c


@pytest.fixture(scope="module")
def cloud():
    """Spheres under 40 labels, a 3-point segment (7), a flat one (5)."""
    return labelled_spheres(range(10, 50), 50, 3, seed=11)


def same_table(got, points, labels, shape, by="segment"):
    """got (computed) has the rows of quadrel.fit_segments, bit for bit."""
    want = quadrel.fit_segments(points, labels, shape).to_pandas().rename(columns={"label": by})
    got = got.sort_values(by, kind="stable").reset_index(drop=True)
    assert list(got.columns) == list(want.columns) and len(got) == len(want)
    for name in want.columns:
        a, b = got[name].to_numpy(), want[name].to_numpy()
        assert a.dtype == b.dtype and (a.tobytes() == b.tobytes() if a.dtype.kind == "f" else (a == b).all()), name


def test_segments_have_the_bits_of_one_call_on_any_partitioning(client, cloud):
    points, labels = cloud
    for parts in (1, 13):
        frame = qd.points_frame(points, labels, npartitions=parts)
        same_table(qd.fit_segments(frame, "sphere").compute(), points, labels, "sphere")
    # Keys far apart are grouped by sorting, not counting: the same points per segment.
    far = qd.fit_segments(qd.points_frame(points, labels * 10**15 - 3 * 10**16, npartitions=5), "sphere")
    far = far.compute().sort_values("segment").reset_index(drop=True)
    near = quadrel.fit_segments(points, labels, "sphere").columns
    assert (far.segment == near["label"] * 10**15 - 3 * 10**16).all()
    assert far.rms.to_numpy().tobytes() == near["rms"].tobytes()
    # A partition in which nothing fits still has every column.
    refused = quadrel.fit_segments(np.zeros((3, 3)), [4, 4, 4], "ellipse").columns
    assert tuple(refused)[4:-2] == quadrel.shape_fields("ellipse") and np.isnan(refused["semi_minor"]).all()
    # One worker in this process, string keys, pandas input, other columns.
    words = np.array([f"s{k:03d}" for k in labels], dtype=object)
    frame = pd.DataFrame({"a": points[:, 0], "b": points[:, 1], "c": points[:, 2], "name": words})
    with dask.config.set(scheduler="sync"):
        got = qd.fit_segments(frame, "plane", by="name", columns=("a", "b", "c")).compute()
    same_table(got, points, words.astype(str), "plane", by="name")


def test_plane_and_line_in_two_passes(client):
    rng = np.random.default_rng(5)
    uv = rng.uniform(-50, 50, size=(60_000, 2))
    tilt = np.array([[1.0, 0.0, 0.3], [0.0, 1.0, -0.2]])
    plane = 1000.0 + uv @ tilt + rng.normal(scale=0.01, size=(60_000, 1)) * [-0.3, 0.2, 1.0]
    for fit, single, axis in ((qd.fit_plane, quadrel.fit_plane, "normal"),
                              (qd.fit_line, quadrel.fit_line, "direction")):  # fmt: skip
        data = plane if axis == "normal" else plane[:, :1] * [1.0, 0.5, -2.0] + plane[:, 1:2] * 1e-4
        alone = single(data)
        frame = qd.points_frame(data, npartitions=6)
        got = fit(frame)
        a, b = getattr(got, axis), getattr(alone, axis)
        assert min(np.linalg.norm(a - b), np.linalg.norm(a + b)) < 1e-12
        assert np.allclose(got.centroid, alone.centroid, rtol=1e-14, atol=0)
        # Residuals about the single fit, the line's from the perpendicular
        # itself (the library's root of a difference loses digits there).
        d = data - alone.centroid
        want = np.sign(a @ b) * d @ b if axis == "normal" else np.linalg.norm(np.cross(d, b), axis=1)
        assert np.allclose(got.residuals.compute(), want, rtol=0, atol=1e-10)
        # The same partitioning gives the same bits on one worker and from a
        # numpy array, a Dask array or the frame.
        with dask.config.set(scheduler="sync"):
            again = fit(dask.array.from_array(data, chunks=(10_000, 3)))
        assert getattr(again, axis).tobytes() == a.tobytes() and again.centroid.tobytes() == got.centroid.tobytes()
        assert fit(data).residuals.compute().shape == (60_000,)


def _forbidden(*args, **kwargs):
    raise AssertionError("a task was scheduled")


def test_bad_input_is_refused_before_any_task_runs(tmp_path):
    frame = qd.points_frame(on_sphere(20), np.arange(20) % 2, npartitions=2)
    (tmp_path / "bad.csv").write_text("x,y,z,segment\n1,2,oops,1\n4,5,6,1\n")
    with dask.config.set(scheduler=_forbidden):
        with pytest.raises(ValueError, match="fit_segments: the frame has no column 'label'; its columns are x, y, z"):
            qd.fit_segments(frame, "sphere", by="label")
        with pytest.raises(TypeError, match="fit_segments: column 'z' must hold real numbers, got dtype object"):
            qd.fit_segments(qd.read_points(str(tmp_path / "*.csv")), "sphere")
        with pytest.raises(ValueError, match="fit_segments: shape must be one of line, plane"):
            qd.fit_segments(frame, "cube")
        with pytest.raises(TypeError, match="fit_segments: frame must be a Dask or pandas DataFrame"):
            qd.fit_segments(np.zeros((4, 4)), "sphere")
        with pytest.raises(ValueError, match="fit_plane: columns must name 3 distinct columns"):
            qd.fit_plane(frame, columns=("x", "y"))
        with pytest.raises(ValueError, match=r"fit_line: points must have shape \(n, 3\)"):
            qd.fit_line(np.zeros((5, 2)))
    with pytest.raises(ValueError, match="fit_plane: points must number at least 2, got 1"):
        qd.fit_plane(np.zeros((1, 3)))


def test_files_and_the_command_line(client, cloud, tmp_path, capsys):
    points, labels = cloud
    thirds = np.array_split(np.arange(len(labels)), 3)
    for k, rows in enumerate(thirds):  # a CSV glob and headerless text files
        pd.DataFrame({"x": points[rows, 0], "y": points[rows, 1], "z": points[rows, 2], "segment": labels[rows]}).to_csv(
            tmp_path / f"scan-{k}.csv", index=False, float_format="%.17g"
        )
        np.savetxt(tmp_path / f"scan-{k}.txt", np.c_[points[rows], labels[rows]], fmt="%.17g")
    same_table(qd.fit_segments(qd.read_points(str(tmp_path / "scan-*.csv")), "sphere").compute(), points, labels, "sphere")
    out = tmp_path / "results.csv"
    command = [sys.executable, "-m", "quadrel.dask", "fit-segments", str(tmp_path / "scan-*.txt"), "--shape", "sphere",
               "--names", "x,y,z,segment", "--scheduler", client.scheduler.address, "--out", str(out)]  # fmt: skip
    run = subprocess.run(command, capture_output=True, text=True, timeout=120)
    assert run.returncode == 0, run.stderr
    assert "42 segments, 40 fitted" in run.stderr and "100%" in run.stderr
    table = pd.read_csv(out, float_precision="round_trip").fillna({"reason": ""}).astype({"status": np.int8})
    same_table(table, points, labels, "sphere")
    assert qd.main(command[3:] + ["--by", "label"]) == 1
    assert "fit_segments: the frame has no column 'label'" in capsys.readouterr().err


def _gated(part, gate):
    """part, once the event gate is set: holds the job open."""
    distributed.Event(gate).wait(timeout=120)
    return part


def test_a_killed_worker_loses_and_duplicates_no_segment(client, cloud):
    points, labels = cloud
    pieces = qd.points_frame(points, labels, npartitions=8).to_delayed()
    want = qd.fit_segments(dd.from_delayed(pieces), "sphere").compute()
    gate = distributed.Event("quadrel-gate")
    pieces[5] = dask.delayed(_gated)(pieces[5], "quadrel-gate")
    future = client.compute(qd.fit_segments(dd.from_delayed(pieces), "sphere"))
    pids = client.run(os.getpid)
    victim = sorted(pids)[0]
    deadline = time.monotonic() + 60
    while not client.has_what().get(victim) and time.monotonic() < deadline:
        time.sleep(0.05)  # until the victim holds results of the job
    assert client.has_what().get(victim) and not future.done()
    os.kill(pids[victim], signal.SIGKILL)
    gate.set()
    got = future.result(timeout=120)
    assert len(got) == len(want) and sorted(got.segment) == sorted(want.segment)
    same_table(got, points, labels, "sphere")
    client.wait_for_workers(2, timeout=60)
