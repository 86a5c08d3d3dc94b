"""quadrel on Dask: fits over point clouds that are cut into partitions and
spread over the workers of a cluster.

* ``fit_segments(frame, shape, by="segment")`` fits one shape to every segment
  of a Dask DataFrame and gives a lazy Dask DataFrame with one row per segment.
  The segments are gathered with Dask's shuffle, each keeping its points in
  input order, so every row has the bits of ``quadrel.fit_segments`` on the
  same points, however the data is partitioned and whichever workers run it.
* ``fit_plane(data)`` and ``fit_line(data)`` fit one surface or line to all
  points in two distributed passes and give the residuals as a lazy Dask array.
* ``points_frame(points, labels)`` turns numpy arrays into a Dask DataFrame;
  ``read_points(pattern)`` reads CSV or whitespace-separated text files.

Columns are checked against the frame's metadata before any task is
scheduled. ``python3 -m quadrel.dask --help`` shows the command-line entry.
This module needs the Debian packages python3-dask, python3-distributed and
python3-pandas.
"""

from __future__ import annotations

import argparse
import contextlib
import functools
import inspect
import sys
from typing import Any, List, Optional, Sequence, Tuple

import dask
import dask.array as da
import dask.dataframe as dd
import numpy as np
import pandas as pd

import quadrel

__all__ = ["fit_segments", "fit_plane", "fit_line", "points_frame", "read_points", "local_cluster", "main"]

# The column that carries each point's place in the input through the
# shuffle: the partition number in the high 32 bits, the row within the
# partition in the low 32 bits, so that sorting by it restores input order.
_ORDER = "__quadrel_order"
_ROW_BITS = 32
# Rows per partition when in-memory data becomes a Dask DataFrame.
_CHUNK_ROWS = 1_000_000


# ---------------------------------------------------------------- input


def _frame(func: str, data: Any) -> dd.DataFrame:
    if isinstance(data, dd.DataFrame):
        return data
    if isinstance(data, pd.DataFrame):
        return dd.from_pandas(data, chunksize=max(1, _CHUNK_ROWS), sort=False)
    raise TypeError(
        f"{func}: frame must be a Dask or pandas DataFrame, got {type(data).__name__} "
        "(points_frame turns numpy arrays into one)"
    )


def _check_columns(func: str, frame: dd.DataFrame, columns: Sequence[str], by: Optional[str]) -> Tuple[str, ...]:
    """The coordinate columns, checked on the frame's metadata: they and the
    key exist, the coordinates hold real numbers, the key numbers or
    strings."""
    names = tuple(columns) if not isinstance(columns, str) else (columns,)
    if len(names) != 3 or len(set(names)) != 3:
        raise ValueError(f"{func}: columns must name 3 distinct columns (x, y, z), got {list(names)}")
    wanted = names + ((by,) if by is not None else ())
    missing = [name for name in wanted if name not in frame.columns]
    if missing:
        raise ValueError(
            f"{func}: the frame has no column {', '.join(map(repr, missing))}; "
            f"its columns are {', '.join(map(str, frame.columns))}"
        )
    dtypes = frame.dtypes
    for name in names:
        if dtypes[name].kind not in "fiu":
            raise TypeError(f"{func}: column {name!r} must hold real numbers, got dtype {dtypes[name]}")
    if by is not None:
        if by in names:
            raise ValueError(f"{func}: by must not be one of the coordinate columns, got {by!r}")
        if isinstance(dtypes[by], pd.CategoricalDtype) or dtypes[by].kind not in "biufUSO":
            raise TypeError(f"{func}: column {by!r} must hold numbers or strings, got dtype {dtypes[by]}")
    return names


def points_frame(points: Any, labels: Any = None, *, npartitions: Optional[int] = None,
                 by: str = "segment") -> dd.DataFrame:  # fmt: skip
    """A Dask DataFrame of in-memory points (n, 3), with columns x, y, z and,
    given labels (n,), the column named by. npartitions defaults to one
    partition per million points; the partitions keep the input order."""
    p = quadrel._args.points("points_frame", points, 0)
    columns = {"x": p[:, 0], "y": p[:, 1], "z": p[:, 2]}
    if labels is not None:
        raw = np.asarray(labels)
        if raw.shape != (p.shape[0],):
            raise ValueError(f"points_frame: labels must have shape ({p.shape[0]},), got {raw.shape}")
        columns[by] = raw
    count = npartitions if npartitions is not None else max(1, -(-p.shape[0] // _CHUNK_ROWS))
    count = quadrel._args.integer("points_frame", "npartitions", count, 1, max(1, p.shape[0]))
    return dd.from_pandas(pd.DataFrame(columns), npartitions=count, sort=False)


def read_points(pattern: Any, *, sep: Optional[str] = None, names: Optional[Sequence[str]] = None,
                **kwargs: Any) -> dd.DataFrame:  # fmt: skip
    """The points of one file, a glob such as "scan-*.csv" or a list of them,
    read lazily by dask.dataframe.read_csv, one partition per block of each
    file in the order of the names. sep defaults to "," for names ending in
    .csv and to any run of whitespace otherwise; names gives the columns of
    files without a header line. Every number is read to the nearest double
    (pandas' own parser can miss it by a unit in the last place). Further
    keywords go to read_csv."""
    kwargs.setdefault("float_precision", "round_trip")
    first = pattern if isinstance(pattern, str) else str(list(pattern)[0])
    if sep is None:
        sep = "," if first.lower().endswith(".csv") else r"\s+"
    if names is not None:
        kwargs.update(names=list(names), header=None)
    return dd.read_csv(pattern, sep=sep, **kwargs)


# ---------------------------------------------------------------- per-segment fits


def _number_rows(part: pd.DataFrame, by: str, partition_info: Optional[dict] = None) -> pd.DataFrame:
    """The partition with each row's place in the input, without rows whose
    key is missing."""
    number = partition_info["number"] if partition_info else 0
    if len(part) >= 1 << _ROW_BITS:
        raise ValueError(f"fit_segments: a partition holds {len(part)} rows, more than {1 << _ROW_BITS}")
    order = (np.int64(number) << _ROW_BITS) + np.arange(len(part), dtype=np.int64)
    # A shallow copy takes the new column without copying the others.
    numbered = part.copy(deep=False)
    numbered[_ORDER] = order
    return numbered[numbered[by].notna()] if part[by].hasnans else numbered


def _shuffle(frame: dd.DataFrame, by: str) -> dd.DataFrame:
    """The frame with all rows of each key in one partition, by Dask's task
    shuffle (which also runs on the local schedulers) without the index,
    which the fits do not need: moving it would cost as much as a column."""
    method = "shuffle_method" if "shuffle_method" in inspect.signature(frame.shuffle).parameters else "shuffle"
    return frame.shuffle(by, ignore_index=True, **{method: "tasks"})


def _result_meta(frame_meta: pd.DataFrame, shape: str, by: str) -> pd.DataFrame:
    columns = {by: frame_meta[by].iloc[:0], "points": pd.Series([], dtype=np.int64),
               "status": pd.Series([], dtype=np.int8), "reason": pd.Series([], dtype=object)}  # fmt: skip
    for name in quadrel.shape_fields(shape) + ("rms", "max_residual"):
        columns[name] = pd.Series([], dtype=np.float64)
    return pd.DataFrame(columns)


def _fit_partition(part: pd.DataFrame, shape: str, by: str, columns: Tuple[str, ...],
                   meta: pd.DataFrame) -> pd.DataFrame:  # fmt: skip
    """Every segment of a shuffled partition, which holds all points of its
    segments, fitted in one call that puts each segment's points back into
    input order."""
    labels = part[by].to_numpy()
    if labels.dtype.kind == "O":
        labels = labels.astype(str)
    points = part[list(columns)].to_numpy(dtype=np.float64)
    result = quadrel._segment_columns(points, labels, shape, 1, order=part[_ORDER].to_numpy())
    out = {by: pd.Series(result.pop("label")).astype(meta[by].dtype)}
    for name, column in result.items():
        out[name] = pd.Series(column, dtype=meta[name].dtype)
    return pd.DataFrame(out, columns=meta.columns)


def fit_segments(frame: Any, shape: str, by: str = "segment",
                 columns: Sequence[str] = ("x", "y", "z")) -> dd.DataFrame:  # fmt: skip
    """Fits shape to every segment of a Dask (or pandas) DataFrame, lazily.

    frame holds one point per row: the coordinate columns (real numbers) and
    the segment key by (numbers or strings; rows without a key are left out).
    Returns a Dask DataFrame with one row per segment: the key, ``points``
    (count), ``status`` and ``reason`` as quadrel.SegmentStatus and
    quadrel.fit_segments give them, every field of shape_fields(shape), ``rms``
    and ``max_residual``. Rows come grouped by partition, each partition in
    ascending key order; sort the computed result by the key for one order.

    Each row has the bits of quadrel.fit_segments on the same points in input
    order, whatever the partitions and workers. A segment that is too small or
    degenerate gets its status and NaN numbers; the job goes on.
    """
    name = "fit_segments"
    ddf = _frame(name, frame)
    if not isinstance(by, str):
        raise TypeError(f"{name}: by must be a column name (str), got {type(by).__name__}")
    names = _check_columns(name, ddf, columns, by)
    quadrel._check_shape(name, shape)
    meta = _result_meta(ddf._meta, shape, by)
    if by in meta.columns[1:]:
        raise ValueError(f"{name}: by must not be one of the result columns, got {by!r}")
    picked = ddf if set(ddf.columns) == {by, *names} else ddf[[by, *names]]
    numbered = picked.map_partitions(
        _number_rows, by, meta=picked._meta.assign(**{_ORDER: np.int64(0)}).iloc[:0]
    )
    shuffled = _shuffle(numbered, by)
    # meta goes in a partial: as an argument of its own, Dask would take it
    # for a frame to align with.
    fit = functools.partial(_fit_partition, shape=shape, by=by, columns=names, meta=meta)
    return shuffled.map_partitions(fit, meta=meta)


# ---------------------------------------------------------------- one surface over every point


def _point_array(func: str, data: Any, columns: Sequence[str]) -> da.Array:
    """The points as a Dask array (n, 3) of float64, chunked by rows only."""
    if isinstance(data, (dd.DataFrame, pd.DataFrame)):
        ddf = _frame(func, data)
        names = _check_columns(func, ddf, columns, None)
        array = ddf[list(names)].to_dask_array()
    elif isinstance(data, da.Array):
        array = data
    else:
        array = da.from_array(quadrel._args.real_array(func, "points", data), chunks=(_CHUNK_ROWS, 3))
    if array.ndim != 2 or array.shape[1] != 3:
        raise ValueError(f"{func}: points must have shape (n, 3), got {array.shape}")
    if array.dtype.kind not in "fiu":
        raise TypeError(f"{func}: points must hold real numbers, got dtype {array.dtype}")
    return array.astype(np.float64).rechunk({1: 3})


def _sums(block: np.ndarray) -> np.ndarray:
    """The count and the coordinate sums of a block: [n, sx, sy, sz]."""
    return np.array([float(len(block)), *(np.add.reduce(block[:, i]) for i in range(3))])


def _scatter(block: np.ndarray, centroid: np.ndarray) -> np.ndarray:
    """The six sums of products of the coordinates about the centroid:
    xx, xy, xz, yy, yz, zz."""
    d = [block[:, i] - centroid[i] for i in range(3)]
    return np.array([np.add.reduce(d[i] * d[j]) for i in range(3) for j in range(i, 3)])


def _in_order(parts: List[np.ndarray]) -> np.ndarray:
    """The element-wise sum of per-partition sums, from 0.0 in partition
    order, so the total does not depend on which worker finished first."""
    total = np.zeros_like(parts[0])
    for part in parts:
        total = total + part
    return total


def _centroid(sums: np.ndarray) -> np.ndarray:
    return sums[1:] / sums[0]


def _moments(func: str, points: da.Array) -> Tuple[int, np.ndarray, np.ndarray]:
    """The two passes: the count and centroid, then the 3 x 3 scatter matrix."""
    blocks = points.to_delayed().ravel().tolist()
    sums = dask.delayed(_in_order)([dask.delayed(_sums)(b) for b in blocks])
    (total,) = dask.compute(sums)
    count = int(total[0])
    if count < 2:
        raise ValueError(f"{func}: points must number at least 2, got {count}")
    centroid = _centroid(total)
    six = dask.delayed(_in_order)([dask.delayed(_scatter)(b, centroid) for b in blocks])
    (s,) = dask.compute(six)
    scatter = np.array([[s[0], s[1], s[2]], [s[1], s[3], s[4]], [s[2], s[4], s[5]]])
    return count, centroid, scatter


def _axis(scatter: np.ndarray, largest: bool) -> np.ndarray:
    """The unit eigenvector of the symmetric scatter matrix with the largest
    or smallest eigenvalue, by the library's SVD (its values are unsorted)."""
    result = quadrel.svd(scatter)
    values = np.diag(result.s)
    k = int(np.argmax(values) if largest else np.argmin(values))
    return result.v[:, k].copy()


def _plane_residuals(block: np.ndarray, centroid: np.ndarray, normal: np.ndarray) -> np.ndarray:
    return (
        (block[:, 0] - centroid[0]) * normal[0]
        + (block[:, 1] - centroid[1]) * normal[1]
        + (block[:, 2] - centroid[2]) * normal[2]
    )


def _line_residuals(block: np.ndarray, centroid: np.ndarray, direction: np.ndarray) -> np.ndarray:
    d = [block[:, i] - centroid[i] for i in range(3)]
    t = d[0] * direction[0] + d[1] * direction[1] + d[2] * direction[2]
    e = [d[i] - t * direction[i] for i in range(3)]
    return np.sqrt(e[0] * e[0] + e[1] * e[1] + e[2] * e[2])


def fit_plane(data: Any, columns: Sequence[str] = ("x", "y", "z")) -> quadrel.Plane:
    """The plane through all points of data by orthogonal regression, in two
    distributed passes: the centroid from per-partition sums, then the scatter
    about it, each combined in partition order; the normal is the scatter's
    eigenvector of the smallest eigenvalue (sign as the SVD gave it).

    data is a Dask or pandas DataFrame (columns name x, y, z), or a Dask or
    numpy array (n, 3), n >= 2. The passes run when called; the result is a
    quadrel.Plane whose residuals (signed distances, positive on the normal's
    side) are a lazy Dask array of one value per point in input order. For the
    same partitioning the bits are the same on any number of workers; the
    normal agrees with quadrel.fit_plane on the same points to about 1e-12
    relative for well-conditioned data.
    """
    points = _point_array("fit_plane", data, columns)
    _, centroid, scatter = _moments("fit_plane", points)
    normal = _axis(scatter, largest=False)
    residuals = points.map_blocks(_plane_residuals, centroid, normal, drop_axis=1, dtype=np.float64)
    return quadrel.Plane(centroid, normal, residuals)


def fit_line(data: Any, columns: Sequence[str] = ("x", "y", "z")) -> quadrel.Line:
    """The straight line through all points of data by orthogonal regression,
    in the two passes of fit_plane; the direction is the scatter's eigenvector
    of the largest eigenvalue. Returns a quadrel.Line whose residuals
    (distances from the line) are a lazy Dask array in input order, taken as
    the length of each point's perpendicular to the line, which keeps its
    digits where a root of a difference of squares would lose them."""
    points = _point_array("fit_line", data, columns)
    _, centroid, scatter = _moments("fit_line", points)
    direction = _axis(scatter, largest=True)
    residuals = points.map_blocks(_line_residuals, centroid, direction, drop_axis=1, dtype=np.float64)
    return quadrel.Line(centroid, direction, residuals)


# ---------------------------------------------------------------- clusters


def local_cluster(n_workers: int = 2, **kwargs: Any) -> Any:
    """A distributed.LocalCluster of n_workers worker processes with one
    thread each and no dashboard, set up for moving points between processes
    on one machine:

    * without the MALLOC_TRIM_THRESHOLD_ that Dask's nanny gives its workers
      by default: on glibc that setting turns off the adaptive mmap
      threshold, so every large temporary array is mapped and faulted in
      afresh, which made these fits several times slower;
    * without compression of the data the workers send each other: over
      loopback it saves nothing, and lz4 on the shuffled integer columns
      cost the two workers more time than their share of the fits;
    * without the statistical profiler that samples every worker's stacks
      for the dashboard, which is off too.

    Further keywords go to LocalCluster."""
    from distributed import LocalCluster

    key = "distributed.nanny.pre-spawn-environ"
    environ = {k: v for k, v in dask.config.get(key, {}).items() if k != "MALLOC_TRIM_THRESHOLD_"}
    options = dict(n_workers=n_workers, threads_per_worker=1, processes=True, dashboard_address=None)
    settings = {
        key: environ,
        "distributed.comm.compression": None,
        "distributed.worker.profile.enabled": False,
    }
    # The scheduler and the workers take the configuration as it stands when
    # they start.
    with dask.config.set(settings):
        return LocalCluster(**{**options, **kwargs})


# ---------------------------------------------------------------- command line


def _parser() -> argparse.ArgumentParser:
    parser = argparse.ArgumentParser(
        prog="python3 -m quadrel.dask",
        description="Fit shapes to point files on a Dask cluster.",
    )
    commands = parser.add_subparsers(dest="command", required=True)
    for command, text in (("fit-segments", "fit one shape to every segment; one CSV row per segment"),
                          ("fit-plane", "fit one plane to every point; prints centroid and normal"),
                          ("fit-line", "fit one line to every point; prints centroid and direction")):  # fmt: skip
        sub = commands.add_parser(command, help=text, description=text)
        sub.add_argument("files", help='a file or a quoted glob such as "scan-*.csv"')
        if command == "fit-segments":
            sub.add_argument("--shape", required=True, choices=quadrel.SEGMENT_SHAPES)
            sub.add_argument("--by", default="segment", help="the segment column (default: segment)")
            sub.add_argument("--out", required=True, help="the CSV file of results, sorted by segment")
        sub.add_argument("--columns", default="x,y,z", help="the coordinate columns (default: x,y,z)")
        sub.add_argument("--names", help="the columns of files without a header line, comma-separated")
        sub.add_argument("--sep", help='the separator (default: "," for .csv, else whitespace)')
        sub.add_argument("--scheduler", help="the address of a running scheduler, e.g. tcp://host:8786 "
                         "(default: a local cluster on this machine)")  # fmt: skip
        sub.add_argument("--workers", type=int, default=2, help="worker processes of the local cluster")
        sub.add_argument("--quiet", action="store_true", help="no progress bar")
    return parser


def main(argv: Optional[Sequence[str]] = None) -> int:
    """The command-line entry: reads the files, runs the fit on the cluster
    with a progress bar on standard error, and writes the results. Returns the
    exit status: 0 done, 1 bad input, 2 bad arguments (from argparse)."""
    from distributed import Client, progress

    args = _parser().parse_args(argv)
    columns = args.columns.split(",")
    names = args.names.split(",") if args.names else None
    try:
        frame = read_points(args.files, sep=args.sep, names=names)
    except (OSError, ValueError) as error:
        print(f"quadrel.dask: cannot read {args.files}: {error}", file=sys.stderr)
        return 1
    with contextlib.ExitStack() as stack:
        if args.scheduler:
            client = stack.enter_context(Client(args.scheduler))
        else:
            cluster = stack.enter_context(local_cluster(args.workers))
            client = stack.enter_context(Client(cluster))

        def run(collection: Any) -> Any:
            persisted = client.persist(collection)
            if not args.quiet:
                with contextlib.redirect_stdout(sys.stderr):
                    progress(persisted)
                print(file=sys.stderr)
            return persisted

        try:
            if args.command == "fit-segments":
                result = run(fit_segments(frame, args.shape, by=args.by, columns=columns))
                table = result.compute().sort_values(args.by, kind="stable")
                table.to_csv(args.out, index=False)
                ok = int((table["status"] == quadrel.SegmentStatus.OK).sum())
                print(f"{len(table)} segments, {ok} fitted: {args.out}", file=sys.stderr)
            else:
                fit = (fit_plane if args.command == "fit-plane" else fit_line)(frame, columns)
                axis = fit.normal if args.command == "fit-plane" else fit.direction
                worst = float(run(abs(fit.residuals).max()).compute())
                print("centroid", *(repr(float(v)) for v in fit.centroid))
                print("normal" if args.command == "fit-plane" else "direction", *(repr(float(v)) for v in axis))
                print("max_residual", repr(worst))
        except (TypeError, ValueError) as error:
            print(f"quadrel.dask: {error}", file=sys.stderr)
            return 1
    return 0


if __name__ == "__main__":
    # Run the imported module's main, so the functions the workers receive
    # belong to quadrel.dask and not to __main__.
    from quadrel.dask import main as _main

    sys.exit(_main())
