"""Rotation matrices, and angles of them.

Angles are degrees about the axes x, y, z, always given in this order. An order such as "XYZ" names the factors of the
matrix, leftmost first: R(X) R(Y) R(Z). A positive x angle turns y towards z, a positive z angle x towards y, and a positive y
angle z towards -x. A matrix acts on columns; its rows are the directions of the view: right, up, away from the viewer.
"""

from __future__ import annotations

import ctypes
from typing import Tuple

import numpy as np
from numpy.typing import ArrayLike, NDArray

from . import _library

Angles = Tuple[float, float, float]
_EXTRACTIONS = {"XYZ": "GetAngleXYZ", "ZXY": "GetAngleZXY", "YZX": "GetAngleYZX"}


def _axes(order: str) -> str:
    axes = order.upper() if isinstance(order, str) else ""
    if sorted(axes) != ["X", "Y", "Z"]:
        raise ValueError(f"order {order!r}: the letters X, Y and Z are wanted, each once, such as 'XYZ'")
    return axes


def _axis_order(order: str) -> ctypes.Array[ctypes.c_short]:
    return _library.AxisOrder(*("XYZ".index(axis) for axis in _axes(order)))


def _cyclic(order: str) -> str:
    axes = _axes(order)
    if axes not in _EXTRACTIONS:
        raise ValueError(f"order {axes}: angles can be had in the orders {', '.join(_EXTRACTIONS)}")
    return axes


def _three(angles: ArrayLike) -> Angles:
    values = np.asarray(angles, dtype=np.float64)
    if values.shape != (3,):
        raise ValueError(f"angles of shape {values.shape}: three are wanted, about x, y and z")
    return float(values[0]), float(values[1]), float(values[2])


def _nine(matrix: ArrayLike) -> NDArray[np.float64]:
    values = np.ascontiguousarray(matrix, dtype=np.float64)
    if values.shape != (3, 3):
        raise ValueError(f"a matrix of shape {values.shape}: 3 rows of 3 are wanted")
    return values


def matrix_of(angles: ArrayLike, order: str = "XYZ") -> NDArray[np.float64]:
    """The rotation matrix of three angles, 3 x 3."""
    matrix = _library.Matrix()
    _library.functions.CreateRotateMatrix(matrix, _axis_order(order), *_three(angles))
    return np.array(matrix, dtype=np.float64).reshape(3, 3)


def angles_of(matrix: ArrayLike, order: str = "XYZ") -> Angles:
    """The angles of a rotation matrix in one of the orders XYZ, ZXY and YZX.

    NaN for a matrix that is no rotation. Where two axes turn about the same direction, one of their angles is 0.
    """
    axes = _cyclic(order)
    values = _nine(matrix)
    x, y, z = ctypes.c_float(), ctypes.c_float(), ctypes.c_float()
    getattr(_library.functions, _EXTRACTIONS[axes])(_library.Matrix(*values.ravel().tolist()), x, y, z)
    return x.value, y.value, z.value


def change_order(angles: ArrayLike, from_order: str, to_order: str) -> Angles:
    """The angles of the same rotation in one of the orders XYZ, ZXY and YZX; the given ones may be in any order.

    Orders that end in the same axis are not converted by the library: from "YXZ" to "XYZ" raises ValueError.
    """
    given, wanted = _axes(from_order), _cyclic(to_order)
    if given != wanted and given[2] == wanted[2]:
        raise ValueError(f"from {given} to {wanted}: orders that end in the same axis cannot be converted")
    x, y, z = (ctypes.c_float(angle) for angle in _three(angles))
    _library.functions.ChangeOrder(_axis_order(given), _axis_order(wanted), x, y, z)
    return x.value, y.value, z.value
