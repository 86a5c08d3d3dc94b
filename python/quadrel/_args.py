"""Argument checks of the package: every public function checks its arguments
here before it calls the extension, so that the library, which tests nothing,
only ever sees the shapes its contracts ask for.

Each check raises TypeError (not numbers at all) or ValueError (numbers of the
wrong shape or value) with a message that starts with the function's name.
"""

from __future__ import annotations

import numbers
from typing import Any, Optional, Tuple

import numpy as np

# A CMatrix holds at most this many elements (its count is an int).
MAX_ELEMENTS = 2**31 - 1


def real_array(func: str, name: str, value: Any) -> np.ndarray:
    """value as a float64 array (a view when it is one already).

    Accepts float and integer dtypes; rejects bool, complex, object, string and
    time dtypes, which hold no real numbers the library could take.
    """
    try:
        array = np.asarray(value)
    except (TypeError, ValueError) as error:
        raise TypeError(f"{func}: {name} must be an array of real numbers ({error})") from None
    if array.dtype.kind not in "fiu":
        raise TypeError(
            f"{func}: {name} must hold real numbers (a float or int dtype), got dtype {array.dtype}"
        )
    return array.astype(np.float64, copy=False)


def check_size(func: str, name: str, rows: int, cols: int) -> None:
    """Raises ValueError unless a rows x cols matrix can exist."""
    if rows * cols > MAX_ELEMENTS:
        raise ValueError(
            f"{func}: {name} of {rows} x {cols} elements is too large (at most {MAX_ELEMENTS})"
        )
    if rows == 0 and cols > 9:
        raise ValueError(f"{func}: {name} with no rows may have at most 9 columns, got {cols}")


def points(func: str, value: Any, minimum: int, name: str = "points", width: int = 3) -> np.ndarray:
    """(n, width) float64 points with n >= minimum."""
    array = real_array(func, name, value)
    if array.ndim != 2 or array.shape[1] != width or array.shape[0] < minimum:
        raise ValueError(
            f"{func}: {name} must have shape (n, {width}) with n >= {minimum}, got {array.shape}"
        )
    check_size(func, name, width, array.shape[0])
    return array


def vector(func: str, name: str, value: Any, length: Optional[int] = 3) -> np.ndarray:
    """A 1-D float64 array, of the given length unless that is None."""
    array = real_array(func, name, value)
    if array.ndim != 1 or (length is not None and array.shape[0] != length):
        wanted = f"({length},)" if length is not None else "(n,)"
        raise ValueError(f"{func}: {name} must have shape {wanted}, got {array.shape}")
    check_size(func, name, array.shape[0], 1)
    return array


def matrix(func: str, name: str, value: Any, square: bool = False) -> np.ndarray:
    """A 2-D float64 array, square if asked."""
    array = real_array(func, name, value)
    if array.ndim != 2 or (square and array.shape[0] != array.shape[1]):
        wanted = "a square 2-D array" if square else "a 2-D array"
        raise ValueError(f"{func}: {name} must be {wanted}, got shape {array.shape}")
    check_size(func, name, *array.shape)
    return array


def real(func: str, name: str, value: Any) -> float:
    """A real number (int or float, not bool) as a float."""
    if isinstance(value, (bool, np.bool_)) or not isinstance(value, numbers.Real):
        raise TypeError(f"{func}: {name} must be a real number, got {type(value).__name__}")
    return float(value)


def integer(func: str, name: str, value: Any, minimum: int, maximum: int) -> int:
    """An integer (not bool) in [minimum, maximum]."""
    if isinstance(value, (bool, np.bool_)) or not isinstance(value, numbers.Integral):
        raise TypeError(f"{func}: {name} must be an integer, got {type(value).__name__}")
    if not minimum <= value <= maximum:
        raise ValueError(f"{func}: {name} must lie in [{minimum}, {maximum}], got {value}")
    return int(value)

