"""Finds the library and declares its functions. Its header, Zentra3DRendering.h, says what each of them does."""

from __future__ import annotations

import ctypes
import enum
import errno
import os
import pathlib
import struct
import sys
from ctypes import POINTER, c_double, c_float, c_int, c_short, c_size_t, c_ubyte, c_uint, c_ushort, c_void_p
from typing import Any, Iterator, Union

ENVIRONMENT_VARIABLE = "ZENTRA3D_LIBRARY"
IS_WINDOWS = sys.platform == "win32"
FILE_NAME = "Zentra3DRendering.dll" if IS_WINDOWS else "libzentra3drendering.so.1"

# Windows calls 32-bit functions in its own way; elsewhere the two kinds are the same.
_ctypes: Any = ctypes  # type checkers know the half of one system
_Library: Any = _ctypes.WinDLL if IS_WINDOWS else ctypes.CDLL
_function_type: Any = _ctypes.WINFUNCTYPE if IS_WINDOWS else ctypes.CFUNCTYPE


class LibraryNotFound(ImportError):
    """The library could not be loaded; the text lists where it was looked for, and what was wrong there."""


class ProgressCode(enum.IntEnum):
    """What the library tells its callback."""

    FAILED = 0
    START = 101
    PERCENT = 102
    NO_GREY = 200


Path = Union["os.PathLike[str]", "os.PathLike[bytes]", str, bytes]
PROGRESS_GO_ON = 0
PROGRESS_CANCEL = 200


class Image2D(ctypes.Structure):
    _fields_ = [("mem", c_void_p), ("rows", POINTER(c_void_p)), ("width", c_ushort), ("height", c_ushort),
                ("bytes_per_pixel", c_uint)]


class Volume3D(ctypes.Structure):
    _fields_ = [("slices", POINTER(POINTER(Image2D))), ("slice_rows", POINTER(POINTER(c_void_p))), ("width", c_ushort),
                ("height", c_ushort), ("depth", c_ushort)]


ProgressCallback: Any = _function_type(c_int, c_size_t, c_int, c_uint)
AxisOrder = c_short * 3
Matrix = c_double * 9
Rotation = c_float * 9
_float_p, _short_p, _ushort_p, _double_p = POINTER(c_float), POINTER(c_short), POINTER(c_ushort), POINTER(c_double)
_image, _volume = POINTER(Image2D), POINTER(Volume3D)
_box = [c_short] * 6


def _places() -> Iterator[str]:
    """Where the library may lie: named by the environment, beside the package, in the unpacked archive, in the system."""
    named = os.environ.get(ENVIRONMENT_VARIABLE)
    if named:
        yield named
        return
    package = pathlib.Path(__file__).resolve().parent
    archives = list(package.parents)[2:3]  # none where the package lies near the root
    for folder in (package, package.parent, *(archive / ("bin" if IS_WINDOWS else "lib") for archive in archives)):
        if (folder / FILE_NAME).exists():
            yield str(folder / FILE_NAME)
    yield FILE_NAME


def _load() -> Any:
    failures = []
    for place in _places():
        try:
            return _Library(place)
        except OSError as reason:
            failures.append(f"{place}: {reason}")
    bits = 8 * struct.calcsize("P")
    raise LibraryNotFound(
        f"no {FILE_NAME} for this {bits}-bit Python could be loaded. Put it beside the package, or name it in the "
        f"environment variable {ENVIRONMENT_VARIABLE}. Tried:\n  " + "\n  ".join(failures))


functions = _load()  # all functions, as declared here
for _name, _result, *_arguments in [
        ("AdjustGamma", c_int, POINTER(c_ubyte), c_float),
        ("ChangeOrder", None, _short_p, _short_p, _float_p, _float_p, _float_p),
        ("CreateRotateMatrix", None, _double_p, _short_p, c_float, c_float, c_float),
        ("Free3DData", None, _volume),
        ("GetAngleXY", None, _double_p, c_double, c_double, c_double, _float_p, _float_p, c_float),
        ("GetAngleXYZ", None, _double_p, _float_p, _float_p, _float_p),
        ("GetAngleYZ", None, _double_p, c_double, c_double, c_double, _float_p, _float_p, c_float),
        ("GetAngleYZX", None, _double_p, _float_p, _float_p, _float_p),
        ("GetAngleZX", None, _double_p, c_double, c_double, c_double, _float_p, _float_p, c_float),
        ("GetAngleZXY", None, _double_p, _float_p, _float_p, _float_p),
        ("GetRGBImage", _volume, ctypes.c_char_p, ctypes.c_char_p, ctypes.c_char_p, c_short, c_short, c_short, c_int, c_int,
         c_int, c_short, c_short, _float_p, _float_p, _float_p, _float_p, c_size_t, ProgressCallback, c_int),
        ("GetRotDim", None, _volume, _float_p, *_box, _ushort_p, _ushort_p, c_int),
        ("GetRotProjection", c_void_p, _volume, _float_p, c_short, *_box, c_float, c_float, c_float, _ushort_p, _ushort_p,
         c_int),
        ("GlobalAlloc2D", _image, c_uint, c_uint, c_uint),
        ("GlobalAlloc3D", _volume, c_uint, c_uint, c_uint, c_uint),
        ("GlobalFree2D", None, _image),
        ("GlobalFree3D", None, _volume),
        ("GlobalLock2D", POINTER(c_void_p), _image),
        ("GlobalLock3D", POINTER(POINTER(c_void_p)), _volume),
        ("GlobalUnlock2D", c_int, _image),
        ("GlobalUnlock3D", c_int, _volume),
        ("SetRenderMsgTitle", c_void_p, ctypes.c_char_p),
        ("SubvolumeConvert", c_short, c_int, c_int, c_int, c_short)]:
    getattr(functions, _name).restype = _result
    getattr(functions, _name).argtypes = _arguments

# Where there is no Windows to release pictures, the library has what does.
_system: Any = _ctypes.WinDLL("kernel32", use_last_error=True) if IS_WINDOWS else functions
for _name in ("GlobalHandle", "GlobalFree"):
    getattr(_system, _name).restype = c_void_p
    getattr(_system, _name).argtypes = [c_void_p]
_system.GlobalUnlock.restype = c_int
_system.GlobalUnlock.argtypes = [c_void_p]

if IS_WINDOWS:
    _system.CreateFileA.restype = c_void_p
    _system.CreateFileA.argtypes = [ctypes.c_char_p, c_uint, c_uint, c_void_p, c_uint, c_uint, c_void_p]
    _system.CloseHandle.restype = c_int
    _system.CloseHandle.argtypes = [c_void_p]
    _system.GetShortPathNameW.restype = c_uint
    _system.GetShortPathNameW.argtypes = [ctypes.c_wchar_p, ctypes.c_wchar_p, c_uint]


def release_picture(address: int) -> None:
    """Releases what GetRotProjection gave."""
    block = _system.GlobalHandle(address)  # the address is not the handle
    _system.GlobalUnlock(block)
    _system.GlobalFree(block)


def file_name(path: Path) -> bytes:
    """The path as the library takes it: on Windows in the system's code page, or else its short name in it.

    A file that cannot be opened raises OSError here: Windows would show it to the user in a message box.
    """
    plain = os.fspath(path)  # a number is no path: it would be a descriptor, and closed here
    with open(plain, "rb"):
        pass
    return _name_in_code_page(os.fsdecode(plain)) if IS_WINDOWS else os.fsencode(plain)


def _name_in_code_page(name: str) -> bytes:
    """A name that the library can open: unlike Python it takes no long paths, and no file that others may write to."""
    failure = OSError(errno.EINVAL, "neither the name nor a short name of it is in the system's code page", name)
    for spelling in (name, _short_name(name)):
        try:
            encoded = spelling.encode("mbcs")
        except UnicodeEncodeError:
            continue
        error = _error_of_opening(encoded)
        if error == 0:
            return encoded
        failure = OSError(0, _ctypes.FormatError(error), name, error)
    raise failure


def _short_name(name: str) -> str:
    """The same name where there is no shorter one: not all disks have them."""
    longest = 32767
    short = ctypes.create_unicode_buffer(longest)
    length = _system.GetShortPathNameW(name, short, longest)
    return short.value if 0 < length < longest else name


def _error_of_opening(name: bytes) -> int:
    """Opens a file as the library does. The system's number for what is wrong, or 0."""
    read, readers_may_share, existing, ordinary = 0x80000000, 1, 3, 0x80
    file = _system.CreateFileA(name, read, readers_may_share, None, existing, ordinary, None)
    if file == c_void_p(-1).value:
        return int(_ctypes.get_last_error())
    _system.CloseHandle(file)
    return 0
