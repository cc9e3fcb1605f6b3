"""Renders 3D image volumes with Zentra3DRendering.dll, a 32-bit Windows DLL: for the 32-bit Python of Windows.

The DLL lies beside this file. Its header, Zentra3DRendering.h, is the reference for what each function does. With numpy
pictures are arrays of height x width x 3; without it, flat arrays of the module array.
"""

import array
import contextlib
import ctypes
import enum
import os
import struct
import sys
from ctypes import POINTER, c_double, c_float, c_int, c_short, c_ubyte, c_uint, c_ushort, c_void_p

try:
    import numpy
except ImportError:
    numpy = None

if sys.platform != "win32" or struct.calcsize("P") != 4:
    raise ImportError("Zentra3DRendering.dll is a 32-bit Windows DLL: it needs the 32-bit Python for Windows, and this "
                      f"one is for {sys.platform}, {8 * struct.calcsize('P')}-bit")


class Mode(enum.IntEnum):
    """What a projection shows."""

    MAXIMUM = 0
    MINIMUM = 1
    SUM = 2
    SURFACE = 3  # the first surface, or layered surfaces where extra is not 0
    BLEND = 4
    CONTRAST = 5
    FIRST_HIT = 6


class ProgressCode(enum.IntEnum):
    """What the library tells its callback."""

    FAILED = 0
    START = 101
    PERCENT = 102
    NO_GREY = 200


PROGRESS_CANCEL = 200
LONGEST = 32767

# What a pixel without a contribution holds, in most modes and in the minimum.
NO_VALUE = -3.4028234663852886e38
NO_MINIMUM = 3.4028234663852886e38


class Cancelled(Exception):
    """Loading was cancelled: progress returned True."""


class Image2D(ctypes.Structure):
    _fields_ = [("mem", c_void_p), ("rows", POINTER(c_void_p)), ("width", c_ushort), ("height", c_ushort),
                ("bytes_per_pixel", c_uint)]


class Volume3D(ctypes.Structure):
    _fields_ = [("slices", POINTER(POINTER(Image2D))), ("slice_rows", POINTER(POINTER(c_void_p))), ("width", c_ushort),
                ("height", c_ushort), ("depth", c_ushort)]


ProgressCallback = ctypes.WINFUNCTYPE(c_int, c_uint, c_int, c_uint)
_AxisOrder = c_short * 3
_Matrix = c_double * 9
_Rotation = c_float * 9
_float_p, _short_p, _ushort_p, _double_p = POINTER(c_float), POINTER(c_short), POINTER(c_ushort), POINTER(c_double)
_image, _volume = POINTER(Image2D), POINTER(Volume3D)
_box = [c_short] * 6

_beside = os.path.join(os.path.dirname(os.path.abspath(__file__)), "Zentra3DRendering.dll")
dll = ctypes.WinDLL(_beside if os.path.exists(_beside) else "Zentra3DRendering.dll")  # all functions, as declared here
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
         c_int, c_short, c_short, _float_p, _float_p, _float_p, _float_p, c_uint, ProgressCallback, c_int),
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
    getattr(dll, _name).restype = _result
    getattr(dll, _name).argtypes = _arguments

_kernel32 = ctypes.WinDLL("kernel32")
for _name in ("GlobalHandle", "GlobalUnlock", "GlobalFree"):
    getattr(_kernel32, _name).restype = c_void_p
    getattr(_kernel32, _name).argtypes = [c_void_p]


def rotation(x, y, z, order=(0, 1, 2)):
    """The nine floats of the rotation by degrees about X, Y and Z; order: 0 = X, 1 = Y, 2 = Z, leftmost first."""
    if sorted({*order} - {0, 1, 2}) or len(order) != 3:
        raise ValueError(f"axis order {order}: not three of 0, 1, 2")
    matrix = _Matrix()
    dll.CreateRotateMatrix(matrix, _AxisOrder(*order), x, y, z)
    return tuple(matrix)


def _check_size(*lengths):
    if not all(1 <= length <= LONGEST for length in lengths):
        raise ValueError(f"{' x '.join(map(str, lengths))}: each length is 1 to {LONGEST}")


class Volume:
    """A stack of equal slices. close() or a with statement releases it. One thread at a time."""

    def __init__(self, voxels, width, height, depth, bytes_per_voxel=1):
        """Copies voxels, x fastest, then y, then z: one byte is grey, three are red, green, blue."""
        self._record = None
        _check_size(width, height, depth)
        if bytes_per_voxel not in (1, 3):
            raise ValueError("bytes_per_voxel is 1 or 3")
        voxels = memoryview(voxels).cast("B")
        slice_bytes = width * height * bytes_per_voxel
        if len(voxels) != slice_bytes * depth:
            raise ValueError(f"{len(voxels)} bytes given, {slice_bytes * depth} wanted")
        self._record = dll.GlobalAlloc3D(width, height, depth, bytes_per_voxel)
        slices = dll.GlobalLock3D(self._record)
        if not slices:
            self.close()
            raise MemoryError("Zentra3DRendering: memory is short")
        for z in range(depth):  # the rows of a slice follow one another
            ctypes.memmove(slices[z][0], bytes(voxels[z * slice_bytes:(z + 1) * slice_bytes]), slice_bytes)
        dll.GlobalUnlock3D(self._record)

    @classmethod
    def load(cls, red, green, blue, width, height, depth, *, floats=False, max_diagonal=LONGEST, keep_apart=False,
             progress=None):
        """Loads up to three raw files of one stored size: RGB, or grey when all three are the same; None is no channel.

        progress(percent) gets the percentage of the running phase. True cancels (Cancelled); what it raises cancels
        too, and is raised again. Sets display_range to (low, high). Raises OSError for a file that cannot be opened.
        """
        _check_size(width, height, depth)
        names = [_channel_name(path) if path else None for path in (red, green, blue)]
        if names == [None, None, None]:
            raise ValueError("no channel file is named")
        raised = []

        def on_progress(_user, code, bits):
            if code != ProgressCode.PERCENT or progress is None:
                return 0
            try:  # nothing may be raised through the library
                if progress(struct.unpack("<f", struct.pack("<I", bits))[0]) is True:
                    raise Cancelled("loading was cancelled")
                return 0
            except BaseException as exception:
                raised.append(exception)
                return PROGRESS_CANCEL

        high, low = c_float(), c_float()
        callback = ProgressCallback(on_progress)
        record = dll.GetRGBImage(*names, width, height, depth, 0, 0, 0, not floats, min(max_diagonal, LONGEST), high, low,
                                 None, None, 0, callback, keep_apart)
        if raised:
            dll.Free3DData(record)
            raise raised[0]
        if not record:
            raise MemoryError("Zentra3DRendering: memory is short")
        volume = cls.__new__(cls)
        volume._record = record
        volume.display_range = low.value, high.value
        return volume

    @property
    def record(self):
        """The DLL's pointer, for the functions of dll."""
        if self._record is None:
            raise ValueError("the volume is closed")
        return self._record

    @property
    def size(self):
        record = self.record.contents
        return record.width, record.height, record.depth

    def project(self, turn, mode=Mode.MAXIMUM, low=0, high=255, extra=0, crop=None):
        """Renders: (width, height, pixels), three floats per pixel, the top row first.

        Voxels from low to high count (of RGB volumes, the sum of the channels). extra is the attenuation of layered
        surfaces or the transparency of blends. crop is (x0, x1, y0, y1, z0, z1), 1-based, inclusive.
        """
        if crop is None:
            crop = [bound for length in self.size for bound in (1, length)]
        width, height = c_ushort(), c_ushort()
        address = dll.GetRotProjection(self.record, _Rotation(*turn), Mode(mode), *crop, high, low, extra, width, height, 0)
        if not address and width.value == 0:
            raise ValueError("the rotation is not finite, or too large")
        if not address:
            raise MemoryError("Zentra3DRendering: memory is short")
        try:
            data = ctypes.string_at(address, 12 * width.value * height.value)
        finally:
            block = _kernel32.GlobalHandle(address)  # the address is not the handle
            _kernel32.GlobalUnlock(block)
            _kernel32.GlobalFree(block)
        if numpy:
            return width.value, height.value, numpy.frombuffer(data, "<f4").reshape(height.value, width.value, 3)
        return width.value, height.value, array.array("f", data)

    def close(self):
        record, self._record = self._record, None
        if record:
            dll.Free3DData(record)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.close()

    def __del__(self):
        with contextlib.suppress(Exception):  # at the end of the program the DLL may be gone already
            self.close()


def _channel_name(path):
    """The path in the system's code page, which is all that the library takes; else its short name in it.

    A file that cannot be opened raises here, before the library shows it to the user in a message box.
    """
    path = os.fspath(path)
    with open(path, "rb"):
        pass
    try:
        return path.encode("mbcs")
    except UnicodeEncodeError:
        short = ctypes.create_unicode_buffer(LONGEST)
        _kernel32.GetShortPathNameW(ctypes.c_wchar_p(path), short, LONGEST)
        return short.value.encode("mbcs")
