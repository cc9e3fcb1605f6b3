"""Volumes of the library, filled once and rendered as often as wanted."""

from __future__ import annotations

import contextlib
import ctypes
import enum
import math
import threading
import weakref
from types import TracebackType
from typing import Any, Iterator, NoReturn, Optional, Sequence, Tuple, Type, Union

import numpy as np
from numpy.typing import ArrayLike, NDArray

from . import _library, angles as _angles
from .errors import OutOfMemory

LONGEST = 32767  # voxels of an axis: crop bounds have 16 bits, signed
_LONGEST_VIEW = 1024  # of the third row of a matrix
_LARGEST_FLOAT = float(np.finfo(np.float32).max)

# What a pixel without a contribution holds, in most modes and in the minimum. Surfaces have 0 there.
NO_VALUE = np.float32(-3.4028234663852886e38)
NO_MINIMUM = np.float32(3.4028234663852886e38)


class Mode(enum.IntEnum):
    """What a projection shows. Wherever a mode is wanted its name will do: "max", "min", "sum", "surface", ..."""

    MAXIMUM = 0
    MINIMUM = 1
    SUM = 2
    SURFACE = 3  # the first surface, or layered surfaces where extra is not 0
    BLEND = 4
    CONTRAST = 5
    FIRST_HIT = 6

    # Shorter names of the same modes.
    MAX = MAXIMUM
    MIN = MINIMUM
    FIRST = FIRST_HIT


_STRICT = (Mode.SURFACE, Mode.CONTRAST)  # whose windows exclude their ends
Crop = Sequence[slice]
Window = Tuple[float, float]


def mode_of(mode: Union[Mode, int, str]) -> Mode:
    try:
        return Mode[mode.upper().replace(" ", "_")] if isinstance(mode, str) else Mode(mode)
    except (KeyError, ValueError):
        raise ValueError(f"mode {mode!r}: it is one of {', '.join(each.name.lower() for each in Mode)}") from None


def _checked(array: ArrayLike) -> NDArray[np.uint8]:
    """The array itself where it can be a volume; the sentence that says why not where it cannot."""
    voxels = np.asarray(array)
    if voxels.dtype != np.uint8:
        raise TypeError(f"voxels of type {voxels.dtype}: uint8 is wanted; to_bytes maps other values to it")
    if not (voxels.ndim == 3 or (voxels.ndim == 4 and voxels.shape[3] == 3)):
        raise ValueError(f"an array of shape {voxels.shape}: (Z, Y, X) is grey, (Z, Y, X, 3) is red, green, blue")
    _check_lengths(voxels.shape[:3])
    return voxels


def _check_lengths(shape: Sequence[int]) -> None:
    if len(shape) != 3 or not all(1 <= length <= LONGEST for length in shape):
        raise ValueError(f"{' x '.join(map(str, shape))} voxels: three lengths (Z, Y, X) of 1 to {LONGEST} are wanted")


def _number(value: Any, name: str) -> float:
    try:
        return float(value)
    except (TypeError, ValueError, OverflowError) as wrong:
        raise type(wrong)(f"{name} {value!r}: a number is wanted") from None


def _bounds(crop: Optional[Crop], shape: Sequence[int]) -> list[int]:
    """The library's crop box, 1-based and inclusive, x first, of slices in the order of the array."""
    slices = (slice(None),) * 3 if crop is None else tuple(crop)
    if len(slices) != 3 or not all(isinstance(each, slice) for each in slices):
        raise ValueError(f"crop {crop!r}: three slices are wanted, of z, y and x, such as np.s_[10:20, :, 5:]")
    bounds: list[int] = []
    for each, length in zip(reversed(slices), reversed(shape)):
        first, last, step = each.indices(length)
        if step != 1 or first >= last:
            raise ValueError(f"crop {crop!r}: each slice takes at least one voxel, and every one from its start to its end")
        bounds += [first + 1, last]
    return bounds


def _picture(address: int, height: int, width: int) -> NDArray[np.float32]:
    """The library's own memory as an array, released when nobody has a view of it any more."""
    pixels: Any = (ctypes.c_float * (height * width * 3)).from_address(address)
    weakref.finalize(pixels, _library.release_picture, address).atexit = False
    picture: NDArray[np.float32] = np.frombuffer(pixels, dtype=np.float32).reshape(height, width, 3)
    return picture


class Volume:
    """Voxels in the library's memory, copied there once.

    close() or a with statement releases them, and so does the garbage collector. Any thread may use it; calls on one volume wait
    for each other, calls on different volumes run side by side (the interpreter is not held meanwhile).
    """

    def __init__(self, array: ArrayLike) -> None:
        """Copies an array of uint8: (Z, Y, X) is grey, (Z, Y, X, 3) is red, green, blue. It need not be contiguous."""
        self._record: Any = None
        self._lock = threading.Lock()
        self.display_range: Optional[Window] = None  # (low, high) of what load_rgb and load_grey made
        voxels = _checked(array)
        depth, height, width = voxels.shape[:3]
        self._shape: Tuple[int, ...] = voxels.shape
        self._record = _library.functions.GlobalAlloc3D(width, height, depth, 3 if voxels.ndim == 4 else 1)
        if not self._record:
            raise OutOfMemory("the library got no memory for a volume of " + " x ".join(map(str, voxels.shape)))
        try:
            self.fill(voxels)
        except BaseException:
            self.close()
            raise

    @classmethod
    def _adopt(cls, record: Any, display_range: Window) -> "Volume":
        volume = cls.__new__(cls)
        volume._record, volume._lock, volume.display_range = record, threading.Lock(), display_range
        made = record.contents
        grey = made.depth, made.height, made.width
        volume._shape = grey + (3,) if made.slices[0].contents.bytes_per_pixel == 3 else grey
        return volume

    def __reduce_ex__(self, protocol: Any) -> NoReturn:
        raise TypeError("a Volume is memory of the library: it cannot be copied or pickled. Make one of volume.to_array().")

    @property
    def record(self) -> Any:
        """The library's pointer, for the functions of zentra3d.functions."""
        if self._record is None:
            raise ValueError("the volume is closed")
        return self._record

    @property
    def shape(self) -> Tuple[int, ...]:
        """(Z, Y, X), or (Z, Y, X, 3) for red, green, blue. A closed volume still tells it."""
        return self._shape

    @property
    def is_rgb(self) -> bool:
        return len(self._shape) == 4

    @contextlib.contextmanager
    def _locked(self) -> Iterator[list[NDArray[np.uint8]]]:
        """The slices as arrays, while the volume is locked."""
        shape = self.shape
        tables = _library.functions.GlobalLock3D(self.record)
        if not tables:
            raise OutOfMemory("the library got no memory to lock the volume")
        try:
            pixels: Any = ctypes.c_ubyte * math.prod(shape[1:])
            yield [np.frombuffer(pixels.from_address(tables[z][0]), dtype=np.uint8).reshape(shape[1:])
                   for z in range(shape[0])]  # the rows of a slice follow one another
        finally:
            _library.functions.GlobalUnlock3D(self.record)

    def fill(self, array: ArrayLike) -> None:
        """Replaces all voxels by those of an array of the same shape: for the next volume of a series."""
        voxels = _checked(array)
        with self._lock:
            if voxels.shape != self.shape:
                raise ValueError(f"an array of shape {voxels.shape} for a volume of shape {self.shape}")
            with self._locked() as slices:
                for to, source in zip(slices, voxels):
                    to[...] = source

    def to_array(self) -> NDArray[np.uint8]:
        """A copy of the voxels."""
        with self._lock:
            with self._locked() as slices:
                return np.stack(slices)

    def size(self, angles: ArrayLike = (0, 0, 0), *, order: str = "XYZ",
             matrix: Optional[ArrayLike] = None) -> Tuple[int, int]:
        """(H, W) of the projection under a rotation, whatever its mode, window and crop box."""
        with self._lock:
            rotation = self._rotation(angles, order, matrix, mirror=False)
            width, height = ctypes.c_ushort(), ctypes.c_ushort()
            _library.functions.GetRotDim(self.record, rotation, *_bounds(None, self.shape[:3]), width, height, 0)
        if not (height.value and width.value):
            raise OutOfMemory("the library got no memory for the size of a picture")
        return height.value, width.value

    def project(self, angles: ArrayLike = (0, 0, 0), mode: Union[Mode, int, str] = Mode.MAXIMUM,
                window: Optional[Window] = None, crop: Optional[Crop] = None, extra: float = 0.0, *,
                order: str = "XYZ", matrix: Optional[ArrayLike] = None, mirror: bool = False,
                nan: bool = False) -> NDArray[np.float32]:
        """Renders a projection: an array (H, W, 3) of float32, the top row of the view first.

        angles  degrees about x, y and z, as angles.matrix_of takes them with this order; or a matrix in their place
        mode    a Mode, or its name
        window  (low, high): which voxels count, of RGB volumes by the sum of their channels. Surface and contrast exclude
                the two ends. None lets everything in, except that these two modes then leave black out.
        crop    three slices, of z, y and x, 0-based as for an array: np.s_[10:20, :, 5:]. It never changes the size. Along
                the view it is not quite the picture of array[crop]: the grey maximum takes one sample more beyond the far
                end, and of a box one voxel deep every mode takes the sample before it, too.
        extra   the attenuation of layered surfaces (0: the first surface alone), the transparency of blends
        mirror  turns left and right around, for volumes whose axes x, y, z are right-handed in the world, as most scans' are
        nan     marks pixels without a contribution by NaN, instead of NO_VALUE (in the mode min NO_MINIMUM). Surfaces have
                0 there, with and without.

        The array is the library's own memory, not a copy; it is released with the last view of it.
        """
        kind = mode_of(mode)
        extra = _number(extra, "extra")
        with self._lock:
            low, high = self._window(window, kind)
            bounds = _bounds(crop, self.shape[:3])
            rotation = self._rotation(angles, order, matrix, mirror)
            width, height = ctypes.c_ushort(), ctypes.c_ushort()
            address = _library.functions.GetRotProjection(self.record, rotation, kind, *bounds, high, low, extra, width, height, 0)
        if not address:
            raise OutOfMemory(f"the library got no memory for a picture of {height.value} x {width.value} pixels")
        pixels = _picture(address, height.value, width.value)
        if nan:
            pixels[pixels == (NO_MINIMUM if kind == Mode.MINIMUM else NO_VALUE)] = np.nan
        return pixels

    def _window(self, window: Optional[Window], mode: Mode) -> Window:
        if window is None:
            return 0, (765 if self.is_rgb else 255) + (mode in _STRICT)
        if len(window) != 2:
            raise ValueError(f"window {window!r}: (low, high) is wanted")
        return _number(window[0], "window"), _number(window[1], "window")

    def _rotation(self, angles: ArrayLike, order: str, matrix: Optional[ArrayLike], mirror: bool) -> Any:
        turn = _angles.matrix_of(angles, order) if matrix is None else _angles._nine(matrix)
        if not (np.abs(turn) <= _LARGEST_FLOAT).all():
            raise ValueError("angles or matrix have a number that is not finite, or not in 32 bits")
        if np.linalg.norm(turn[2]) > _LONGEST_VIEW:
            raise ValueError(f"the third row of the matrix is longer than {_LONGEST_VIEW}: it would take more than as many "
                             "samples of each voxel")
        depth, height, width = self.shape[:3]
        extents = np.abs(turn[:2]) @ (width - 1.0, height - 1.0, depth - 1.0)
        if extents.max() > 65534:
            raise ValueError("the picture would have more than 65535 rows or columns: the matrix stretches the volume")
        turn = turn * [[-1], [1], [1]] if mirror else turn
        return _library.Rotation(*turn.ravel().tolist())

    def close(self) -> None:
        """Releases the voxels. Pictures stay."""
        with self._lock:
            record, self._record = self._record, None
            if record:
                _library.functions.Free3DData(record)

    def __enter__(self) -> "Volume":
        return self

    def __exit__(self, kind: Optional[Type[BaseException]], error: Optional[BaseException],
                 trace: Optional[TracebackType]) -> None:
        self.close()

    def __del__(self) -> None:
        if getattr(self, "_record", None):
            self.close()

    def __repr__(self) -> str:
        return "<zentra3d.Volume, closed>" if self._record is None else f"<zentra3d.Volume of {self.shape}>"


def project(array: ArrayLike, angles: ArrayLike = (0, 0, 0), mode: Union[Mode, int, str] = Mode.MAXIMUM,
            window: Optional[Window] = None, crop: Optional[Crop] = None, extra: float = 0.0, *,
            order: str = "XYZ", matrix: Optional[ArrayLike] = None, mirror: bool = False,
            nan: bool = False) -> NDArray[np.float32]:
    """Renders an array of uint8, (Z, Y, X) or (Z, Y, X, 3), as Volume.project does, which says what the arguments mean.

    It copies the array into a volume of the library; for several pictures of one array make a Volume once.
    """
    with Volume(array) as volume:
        return volume.project(angles, mode, window, crop, extra, order=order, matrix=matrix, mirror=mirror, nan=nan)


def to_bytes(array: ArrayLike, low: Optional[float] = None, high: Optional[float] = None) -> NDArray[np.uint8]:
    """Maps low..high to 0..255, rounded and held there; without bounds the smallest and the largest finite value are taken."""
    values = np.asarray(array, dtype=np.float32)
    if low is None or high is None:
        finite = values[np.isfinite(values)]
        if finite.size == 0:
            raise ValueError("the array has no finite value")
        low = float(finite.min()) if low is None else low
        high = float(finite.max()) if high is None else high
    if not low < high:
        raise ValueError(f"{low} to {high}: the range is empty")
    scaled = (values - np.float32(low)) * np.float32(255 / (high - low))
    held: NDArray[np.float32] = np.clip(np.nan_to_num(scaled, nan=0, posinf=255, neginf=0), 0, 255)
    return np.rint(held).astype(np.uint8)
