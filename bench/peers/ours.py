"""The library itself: as it ships, a 32-bit DLL under Wine, and built for this system from the same sources."""

from __future__ import annotations

import ctypes
import subprocess
from ctypes import POINTER, c_char_p, c_double, c_float, c_int, c_short, c_uint, c_ushort, c_void_p
from pathlib import Path
from typing import Any, TypeAlias

import numpy

from geometry import View
from inputs import SIZE, Inputs
from jobs import Angles, Array, Attempt, Job, Likeness, Loading, Projection
from timing import seconds_of

SHIPPED = "DLL"
NATIVE = "native"

Rotation: TypeAlias = "ctypes.Array[c_float]"
# The crop box.
WHOLE = [bound for length in SIZE for bound in (1, length)]


class _Volume3D(ctypes.Structure):
    _fields_ = [("slices", c_void_p), ("slice_rows", c_void_p), ("width", c_ushort), ("height", c_ushort),
                ("depth", c_ushort)]


def _declared(path: Path) -> ctypes.CDLL:
    library = ctypes.CDLL(str(path))
    volume = POINTER(_Volume3D)
    floats = POINTER(c_float)
    size = [c_short] * 6
    sides = [POINTER(c_ushort), POINTER(c_ushort)]
    functions: dict[str, tuple[Any, list[Any]]] = {
        "CreateRotateMatrix": (None, [POINTER(c_double), POINTER(c_short), c_float, c_float, c_float]),
        "GlobalAlloc3D": (volume, [c_uint] * 4),
        "GlobalLock3D": (POINTER(POINTER(c_void_p)), [volume]),
        "GlobalUnlock3D": (c_int, [volume]),
        "GlobalFree3D": (None, [volume]),
        "GetRotDim": (None, [volume, floats, *size, *sides, c_int]),
        "GetRotProjection": (c_void_p, [volume, floats, c_short, *size, c_float, c_float, c_float, *sides, c_int]),
        "GetRGBImage": (volume, [*[c_char_p] * 3, *[c_short] * 3, *[c_int] * 3, c_short, c_short, *[floats] * 4, c_uint,
                                 c_void_p, c_int]),
        "GlobalHandle": (c_void_p, [c_void_p]),
        "GlobalUnlock": (c_int, [c_void_p]),
        "GlobalFree": (c_void_p, [c_void_p]),
    }
    for name, (result, arguments) in functions.items():
        function = getattr(library, name)
        function.restype = result
        function.argtypes = arguments
    return library


class Native:
    """The library for this system, in this process."""

    def __init__(self, path: Path, inputs: Inputs) -> None:
        self._library = _declared(path)
        self._inputs = inputs
        self._volumes = {channels: self._volume_of(channels) for channels in (1, 3)}

    def rotation(self, angles: Angles) -> Rotation:
        """The nine floats that a projection takes for these angles."""
        matrix = (c_double * 9)()
        self._library.CreateRotateMatrix(matrix, (c_short * 3)(0, 1, 2), *angles)
        return (c_float * 9)(*matrix)

    def view(self, job: Projection) -> View:
        """The view of which a projection makes a picture."""
        rotation = self.rotation(job.angles)
        width, height = c_ushort(), c_ushort()
        self._library.GetRotDim(self._volumes[job.channels], rotation, *WHOLE, width, height, 0)
        return View(numpy.array(rotation, numpy.float64).reshape(3, 3), width.value, height.value)

    def attempts(self, job: Job) -> list[Attempt]:
        return [self._loading(job) if isinstance(job, Loading) else self._projection(job)]

    def _loading(self, job: Loading) -> Attempt:
        return Attempt(NATIVE, lambda: seconds_of(lambda: self._library.GlobalFree3D(self._load(job))),
                       lambda: self._loaded(job), Likeness.SAME)

    def _projection(self, job: Projection) -> Attempt:
        rotation = self.rotation(job.angles)
        return Attempt(NATIVE, lambda: seconds_of(lambda: self._release(self._project(job, rotation)[0])),
                       lambda: self._picture(job, rotation), Likeness.SAME)

    def _volume_of(self, channels: int) -> Any:
        volume = self._library.GlobalAlloc3D(*SIZE, channels)
        slices = self._library.GlobalLock3D(volume)
        for z, voxels in enumerate(self._inputs.volume(channels)):
            ctypes.memmove(slices[z][0], voxels.tobytes(), voxels.nbytes)
        self._library.GlobalUnlock3D(volume)
        return volume

    def _project(self, job: Projection, rotation: Rotation) -> tuple[int, int, int]:
        width, height = c_ushort(), c_ushort()
        address = self._library.GetRotProjection(self._volumes[job.channels], rotation, job.mode, *WHOLE, job.high, job.low,
                                                 job.extra, width, height, 0)
        if not address:
            raise MemoryError("GetRotProjection failed")
        return address, width.value, height.value

    def _release(self, address: int) -> None:
        block = self._library.GlobalHandle(address)
        self._library.GlobalUnlock(block)
        self._library.GlobalFree(block)

    def _picture(self, job: Projection, rotation: Rotation) -> Array:
        address, width, height = self._project(job, rotation)
        pixels = numpy.frombuffer(ctypes.string_at(address, 12 * width * height), numpy.float32)
        self._release(address)
        return pixels.reshape(height, width, 3)

    def _load(self, job: Loading) -> Any:
        names = [bytes(path) for path in self._inputs.channel_files]
        high, low = c_float(), c_float()
        volume = self._library.GetRGBImage(*names, *SIZE, 0, 0, 0, 1, job.diagonal, high, low, None, None, 0, None, 0)
        if not volume:
            raise MemoryError("GetRGBImage failed")
        return volume

    def _loaded(self, job: Loading) -> Array:
        volume = self._load(job)
        record = volume.contents
        slices = self._library.GlobalLock3D(volume)
        shape = (record.height, record.width, 3)
        voxels = [numpy.frombuffer(ctypes.string_at(slices[z][0], 3 * record.width * record.height), numpy.uint8)
                  for z in range(record.depth)]
        self._library.GlobalFree3D(volume)
        return numpy.stack([pixels.reshape(shape) for pixels in voxels])


class Shipped:
    """The DLL, in a host under Wine that measures its own calls."""

    def __init__(self, host: list[str], inputs: Inputs, native: Native) -> None:
        self._inputs = inputs
        self._native = native
        self._host = subprocess.Popen(host, stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True)
        for channels, path in ((1, inputs.grey_file), (3, inputs.colour_file)):
            self._ask("volume", channels, *SIZE, path)

    def attempts(self, job: Job) -> list[Attempt]:
        order: tuple[object, ...]
        if isinstance(job, Loading):
            order = ("load", *self._inputs.channel_files, *SIZE, job.diagonal)
        else:
            rotation = [f"{element:.9g}" for element in self._native.rotation(job.angles)]
            order = ("project", job.channels, *rotation, int(job.mode), job.low, job.high, job.extra)
        return [Attempt(SHIPPED, lambda: float(self._ask(*order)[0]), lambda: self._result(order), Likeness.SAME)]

    def close(self) -> None:
        """Ends the host."""
        assert self._host.stdin is not None
        self._host.stdin.close()
        self._host.wait()

    def _ask(self, *fields: object) -> list[str]:
        assert self._host.stdin is not None and self._host.stdout is not None
        print(*fields, sep="\t", file=self._host.stdin, flush=True)
        answer = self._host.stdout.readline()
        if not answer:
            raise RuntimeError("the host of the DLL has ended")
        return answer.split()

    def _result(self, order: tuple[object, ...]) -> Array:
        path = self._inputs.scratch / "result.raw"
        answer = self._ask(*order, path)
        if order[0] == "load":
            width, height, depth = map(int, answer[1:4])
            return numpy.fromfile(path, numpy.uint8).reshape(depth, height, width, 3)
        width, height = map(int, answer[1:3])
        return numpy.fromfile(path, numpy.float32).reshape(height, width, 3)
