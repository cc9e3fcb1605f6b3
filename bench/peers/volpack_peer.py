"""VolPack: shear-warp factorisation of a classified volume, which it keeps run-length encoded, for each of three axes."""

from __future__ import annotations

import ctypes
import functools
from ctypes import c_double, c_int, c_uint, c_void_p

import numpy
import numpy.typing

from geometry import View, Views
from inputs import SIZE, Bytes, Inputs
from jobs import Attempt, Job, Likeness, Mode, Projection
from timing import seconds_of

# Of volpack.h.
VOXEL_OPACITY = 1014
LIGHT_BOTH_SIDES = 1029
MAX_RAY_OPACITY = 1043
LIGHT0, LIGHT_COLOUR, LIGHT_DIRECTION = 2000, 2100, 2101
MATERIAL0, AMBIENT, DIFFUSE, SPECULAR, SHININESS = 2200, 2300, 2301, 2302, 2303
PARALLEL = 2400
BOTH_SIDES = 3
MODEL, PROJECT = 0, 2
SKIP_FIELD = -1
LUMINANCE = 5001
NORMALS, GREYS = 7924, 256

SHADE_FIELD, GREY_FIELD = c_int(0), c_int(1)
SHADE_OFFSET, GREY_OFFSET, VOXEL_BYTES = 0, 2, 4

NOTE = ("makes bytes; samples between voxels within a slice, nearest slice; opacities of 8 bits; rays end at an opacity of "
        "0.99; from bytes, it encodes the volume for views along each of its axes")
SURFACE_NOTE = NOTE + "; normals of 13 bits"

Floats = numpy.typing.NDArray[numpy.float32]


def _opacities(job: Projection) -> Floats:
    """Of every grey value."""
    values = numpy.arange(GREYS, dtype=numpy.float32)
    if job.mode == Mode.BLEND:
        return (values / 255 * (1 - job.extra)).astype(numpy.float32)
    least = job.low + 1 if job.mode == Mode.SURFACE else job.low
    return ((values >= least) & (values <= job.high)).astype(numpy.float32)


class _Context:
    """A volume in a VolPack context, ready to be classified and rendered."""

    def __init__(self, library: ctypes.CDLL, job: Projection, voxels: Bytes, view: View) -> None:
        self._library = library
        self._job = job
        self._voxels = voxels
        self._context = c_void_p(library.vpCreateContext())
        self._opacities = _opacities(job)
        self._shades = (numpy.zeros(NORMALS, numpy.float32) if job.mode == Mode.SURFACE
                        else numpy.arange(GREYS, dtype=numpy.float32))
        self._describe()
        self._look(view)

    def close(self) -> None:
        self._library.vpDestroyContext(self._context)

    def classify(self) -> None:
        """What a stateless call does before it renders."""
        if self._job.mode == Mode.SURFACE:
            self._call("vpClassifyScalars", self._voxels.ctypes, c_int(self._voxels.size), GREY_FIELD, c_int(SKIP_FIELD),
                       SHADE_FIELD)
            return
        width, height, depth = SIZE
        voxels = numpy.zeros((depth, height, width, VOXEL_BYTES), numpy.uint8)
        voxels[..., SHADE_OFFSET] = self._voxels
        voxels[..., GREY_OFFSET] = self._voxels
        self._call("vpSetRawVoxels", voxels.ctypes, c_int(voxels.nbytes), *map(c_int, voxels.strides[::-1][1:]))
        self._call("vpClassifyVolume")

    def render(self) -> Bytes:
        if self._job.mode == Mode.SURFACE:
            self._call("vpShadeTable")
        self._call("vpRenderClassifiedVolume")
        return self._image

    def _describe(self) -> None:
        """A voxel is what its shade follows from, in two bytes (the normal of a surface, else the grey value), and grey."""
        self._call("vpSetVolumeSize", *map(c_int, SIZE))
        self._call("vpSetVoxelSize", c_int(VOXEL_BYTES), c_int(2), c_int(1), c_int(1))
        self._call("vpSetVoxelField", SHADE_FIELD, c_int(2), c_int(SHADE_OFFSET), c_int(self._shades.size - 1))
        self._call("vpSetVoxelField", GREY_FIELD, c_int(1), c_int(GREY_OFFSET), c_int(GREYS - 1))
        self._call("vpSetClassifierTable", c_int(0), GREY_FIELD, self._opacities.ctypes, c_int(self._opacities.nbytes))
        self._call("vpSetd", c_int(VOXEL_OPACITY), c_double(1 / 255))
        self._call("vpSetd", c_int(MAX_RAY_OPACITY), c_double(0.99))
        self._call("vpSetLookupShader", c_int(1), c_int(1), SHADE_FIELD, self._shades.ctypes, c_int(self._shades.nbytes),
                   c_int(0), None, c_int(0))
        for what, share in ((AMBIENT, 0), (DIFFUSE, 1), (SPECULAR, 0), (SHININESS, 1)):
            self._call("vpSetMaterial", c_int(MATERIAL0), c_int(what), c_int(BOTH_SIDES), *[c_double(share)] * 3)
        self._call("vpSetLight", c_int(LIGHT0), c_int(LIGHT_COLOUR), *map(c_double, (1, 1, 1)))
        self._call("vpEnable", c_int(LIGHT0), c_int(1))
        self._call("vpEnable", c_int(LIGHT_BOTH_SIDES), c_int(1))

    def _look(self, view: View) -> None:
        """Its longest side is 1 at first."""
        width, height = view.width, view.height
        model = numpy.identity(4)
        model[:3, :3] = view.rotation * max(SIZE)
        self._call("vpCurrentMatrix", c_int(MODEL))
        self._call("vpSetMatrix", model.ctypes)
        # Along the rays, in the volume's own axes: it is turned like the volume.
        self._call("vpSetLight", c_int(LIGHT0), c_int(LIGHT_DIRECTION), *map(c_double, view.rotation[2]))
        self._call("vpCurrentMatrix", c_int(PROJECT))
        self._call("vpIdentityMatrix")
        reach = 1000
        sides = (-width / 2, width / 2, -height / 2, height / 2, -reach, reach)
        self._call("vpWindow", c_int(PARALLEL), *map(c_double, sides))
        self._image = numpy.zeros((height, width), numpy.uint8)
        self._call("vpSetImage", self._image.ctypes, c_int(width), c_int(height), c_int(width), c_int(LUMINANCE))

    def _call(self, name: str, *arguments: object) -> None:
        values = [c_void_p(argument.data) if hasattr(argument, "data") else argument for argument in arguments]
        code = getattr(self._library, name)(self._context, *values)
        if code != 0:
            raise RuntimeError(f"{name}: {self._library.vpGetErrorString(c_uint(code)).decode()}")


class VolPack:
    """Cold, a volume is classified and rendered; warm, only rendered."""

    def __init__(self, inputs: Inputs, views: Views) -> None:
        self._library = ctypes.CDLL("libvolpack.so.1")
        self._library.vpCreateContext.restype = c_void_p
        self._library.vpGetErrorString.restype = ctypes.c_char_p
        self._inputs = inputs
        self._views = views

    def attempts(self, job: Job) -> list[Attempt]:
        if not isinstance(job, Projection) or job.mode not in (Mode.SURFACE, Mode.BLEND, Mode.FIRST_HIT):
            return []
        kept = self._context(job)
        kept.classify()

        cold = functools.partial(self._classified_and_rendered, job)
        likeness = Likeness.of_mode(job.mode)
        note = SURFACE_NOTE if job.mode == Mode.SURFACE else NOTE
        return [Attempt("VolPack", lambda: seconds_of(cold), lambda: cold()[::-1], likeness, note=note),
                Attempt("VolPack", lambda: seconds_of(kept.render), lambda: kept.render()[::-1].copy(), likeness, keeps=True,
                        note=note)]

    def _classified_and_rendered(self, job: Projection) -> Bytes:
        context = self._context(job)
        context.classify()
        image = context.render()
        context.close()
        return image

    def _context(self, job: Projection) -> _Context:
        return _Context(self._library, job, self._inputs.volume(job.channels), self._views(job))
