"""Reading point files: PLY, PCD, LAS and text, told apart by their content."""

from __future__ import annotations

import os
import types
from dataclasses import dataclass
from typing import Any, Mapping, Optional, Union

import numpy as np

from . import _quadrel
from ._results import _Result, _plain


class ReadError(ValueError):
    """A point file whose content the readers refuse: a bad header, a count
    that promises more points than the file holds, a missing x, y or z, a
    format that is not recognized, or a file with no finite point.

    ``str(error)`` is the whole message, which names the file and the line or
    byte of the fault; ``file`` is the name as the message shows it,
    ``position`` the line (from 1) or byte (from 0), ``position_kind`` either
    ``"line"`` or ``"byte"`` (position 0 with ``"line"`` when the fault
    concerns the file as a whole), ``fault`` the message without its
    ``file:position:`` prefix.
    """

    def __init__(self, message: str, file: str, position: int, position_kind: str, fault: str):
        super().__init__(message)
        self.file = file
        self.position = position
        self.position_kind = position_kind
        self.fault = fault


@dataclass(frozen=True, eq=False, repr=False)
class PointFile(_Result):
    """The points of a file and what the file told beside them.

    points: (n, 3) float64, one point per row, columns x, y, z, in file order;
        points whose x, y or z was NaN or infinite are left out.
    columns: read-only mapping of name -> (n,) float64 array, one value per
        kept point: the further properties or fields of the file (label,
        intensity, classification, ...), or the header words of a text file.
    origins: (n,) int64, where each point came from, counted from 1: the line
        of a text file, or the record of a binary file (its index among all
        the file's records, left-out ones included).
    origin_kind: ``"line"`` or ``"record"``, what origins count.
    skipped: how many records were left out for non-finite coordinates.
    format: ``"text"``, ``"ply"``, ``"pcd"`` or ``"las"``.
    name: the file as messages name it.
    grid: (width, height) of an organized cloud (a depth image stored row by
        row), else None; ``pixel_rows`` and ``pixel_columns`` then give each
        kept point's pixel, from 0.
    """

    points: np.ndarray
    columns: Mapping[str, np.ndarray]
    origins: np.ndarray
    origin_kind: str
    skipped: int
    format: str
    name: str
    grid: Optional[tuple]

    def __post_init__(self) -> None:
        super().__post_init__()
        for values in self.columns.values():
            values.flags.writeable = False

    @property
    def pixel_rows(self) -> Optional[np.ndarray]:
        """(n,) int64 row of each point's pixel in an organized cloud, else None."""
        return None if self.grid is None else (self.origins - 1) // self.grid[0]

    @property
    def pixel_columns(self) -> Optional[np.ndarray]:
        """(n,) int64 column of each point's pixel in an organized cloud, else None."""
        return None if self.grid is None else (self.origins - 1) % self.grid[0]

    def to_dict(self) -> dict:
        result = super().to_dict()
        result["columns"] = {name: _plain(values) for name, values in self.columns.items()}
        return result


def read_points(path: Union[str, "os.PathLike[str]"]) -> PointFile:
    """Reads the points of a file: PLY (ascii and binary, either byte order),
    PCD (ascii, binary and binary_compressed, organized or not), LAS 1.0 to 1.4
    (uncompressed) or text (numbers separated by blanks or commas, or by
    semicolons with decimal commas). The format is told from the content,
    never from the name.

    Returns PointFile; its ``points`` go straight into the fits. A file that
    cannot be opened raises the OSError that open() raises
    (FileNotFoundError, PermissionError, IsADirectoryError); content the
    readers refuse raises ReadError, a ValueError.
    """
    if not isinstance(path, (str, os.PathLike)):
        raise TypeError(f"read_points: path must be a str or os.PathLike, got {type(path).__name__}")
    path = os.fspath(path)
    if not isinstance(path, str):
        path = os.fsdecode(path)
    # Opening first gives the caller Python's own OSError, with errno and name.
    with open(path, "rb"):
        pass
    try:
        points, columns, origins, kind, skipped, fmt, name, width, height = _quadrel.read_points(path)
    except _quadrel.ReadFault as fault:
        raise ReadError(*fault.args) from None
    return PointFile(
        points=points,
        columns=types.MappingProxyType(dict(columns)),
        origins=origins,
        origin_kind=kind,
        skipped=int(skipped),
        format=fmt,
        name=name,
        grid=(int(width), int(height)) if width > 0 else None,
    )
