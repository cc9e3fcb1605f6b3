"""OpenCV: reductions of matrices, turned slices, and the way from channel files to a volume, as one would write them."""

from __future__ import annotations

import functools
from collections.abc import Callable

import cv2  # type: ignore[import]
import numpy

from geometry import Matrix, View, Views
from inputs import SIZE, Bytes, Inputs
from jobs import (ABOUT_X, ABOUT_Y, ABOUT_Z, FRONT, ROLLED, TURNED, UPRIGHT, Array, Attempt, Job, Likeness,
                  Loading, Mode, Projection)
from numpy_peer import VIEWS
from timing import seconds_of

WIDTH, HEIGHT, DEPTH = SIZE
DIAGONAL = float(numpy.linalg.norm(SIZE))
NEAREST = cv2.INTER_NEAREST | cv2.WARP_INVERSE_MAP

RIGHT_ANGLE_NOTE = "as NumPy"
TURN_NOTE = "gives bytes; fixed-point positions; a loop over slices in Python; no window, no other angle"
WHOLE_NOTE = "sums by NumPy; no progress and no cancel"
FITTED_NOTE = WHOLE_NOTE + "; other rules for where samples lie"


class OpenCv:
    """Every call starts from the bytes; there is nothing to set up."""

    def __init__(self, inputs: Inputs, views: Views) -> None:
        cv2.setNumThreads(1)
        self._inputs = inputs
        self._views = views

    def attempts(self, job: Job) -> list[Attempt]:
        if isinstance(job, Loading):
            return [self._loading(job)]
        if job.angles in VIEWS and job.mode in (Mode.MAXIMUM, Mode.SUM):
            turn = VIEWS[job.angles][1]
            reduce = _reduction(job, self._inputs.volume(job.channels))
            return [Attempt("OpenCV", lambda: seconds_of(reduce), lambda: turn(reduce()), Likeness.SAME,
                            note=RIGHT_ANGLE_NOTE)]
        project = self._turned(job)
        if project is None:
            return []
        return [Attempt("OpenCV", functools.partial(seconds_of, project), project, Likeness.ALIKE, note=TURN_NOTE)]

    def _loading(self, job: Loading) -> Attempt:
        likeness, note = (Likeness.SAME, WHOLE_NOTE) if job.diagonal >= DIAGONAL else (Likeness.ALIKE, FITTED_NOTE)
        return Attempt("OpenCV", lambda: seconds_of(lambda: self._load(job)), lambda: self._load(job)[0], likeness,
                       note=note)

    def _turned(self, job: Projection) -> Callable[[], Array] | None:
        view = self._views(job)
        if job.angles == TURNED:
            return lambda: _turntable(self._inputs.grey, view, axis=1)
        if job.angles == UPRIGHT:
            return lambda: _turntable(self._inputs.grey, view, axis=2)
        if job.angles == ROLLED:
            return lambda: _rolled(self._inputs.grey, view)
        return None

    def _load(self, job: Loading) -> tuple[Bytes, tuple[float, float]]:
        planes = [numpy.fromfile(path, numpy.uint8).reshape(DEPTH, HEIGHT, WIDTH) for path in self._inputs.channel_files]
        if job.diagonal < DIAGONAL:
            planes = [_fitted(plane, job.diagonal) for plane in planes]
        return _composed(planes)


def _reduction(job: Projection, voxels: Bytes) -> Callable[[], Array]:
    kind = cv2.REDUCE_SUM if job.mode == Mode.SUM else cv2.REDUCE_MAX
    target = cv2.CV_32F if job.mode == Mode.SUM else -1

    def reduced(matrix: Array, axis: int, shape: tuple[int, ...]) -> Array:
        result: Array = cv2.reduce(matrix, axis, kind, dtype=target)
        return result.reshape(shape)

    if job.angles in (FRONT, ABOUT_Z):
        return lambda: reduced(voxels.reshape(DEPTH, -1), 0, voxels.shape[1:])
    if job.angles == ABOUT_Y:
        return lambda: reduced(voxels.reshape(-1, WIDTH), 1, (DEPTH, HEIGHT))
    assert job.angles == ABOUT_X
    return lambda: numpy.stack([reduced(plane, 0, (WIDTH,)) for plane in voxels])


def _inverse(rotation: Matrix, voxel_axes: list[int], view_axes: list[int], sides: tuple[int, int]) -> Matrix:
    """From pixels of a turned plane, of the given sides, to the plane of these two axes of the volume."""
    turn = rotation.T[voxel_axes][:, view_axes]
    centre = (numpy.array(SIZE)[voxel_axes] - 1) / 2
    offset = centre - turn @ ((numpy.array(sides) - 1) / 2)
    return numpy.column_stack([turn, offset])


def _turntable(voxels: Bytes, view: View, axis: int) -> Bytes:
    """The maximum of a volume turned about its own axis 1 or 2, which points up or down in the view."""
    across = [0, 3 - axis]
    sides = (view.width, view.depth)
    inverse = _inverse(view.rotation, across, [0, 2], sides)
    picture = numpy.empty((SIZE[axis], sides[0]), numpy.uint8)
    planes = voxels.swapaxes(0, 1) if axis == 1 else voxels
    for row, plane in zip(picture, planes[::-1] if view.rotation[1, axis] > 0 else planes):
        row[:] = cv2.reduce(cv2.warpAffine(plane, inverse, sides, flags=NEAREST), 0, cv2.REDUCE_MAX)
    return picture


def _rolled(voxels: Bytes, view: View) -> Bytes:
    """The maximum of a volume turned about the axis that rays run along."""
    front = cv2.reduce(voxels.reshape(DEPTH, -1), 0, cv2.REDUCE_MAX).reshape(HEIGHT, WIDTH)
    sides = (view.width, view.height)
    picture: Bytes = cv2.warpAffine(front, _inverse(view.rotation, [0, 1], [0, 1], sides), sides, flags=NEAREST)
    return picture[::-1]


def _fitted(plane: Bytes, diagonal: int) -> Bytes:
    """A channel shrunk to the diagonal, slice by slice and then in depth."""
    scale = diagonal / DIAGONAL
    width, height, depth = (int(side * scale) for side in SIZE)
    slices = [cv2.resize(image, (width, height), interpolation=cv2.INTER_LINEAR) for image in plane]
    result = numpy.empty((depth, height, width), numpy.uint8)
    for z in range(depth):
        below, part = divmod(z / scale, 1)
        first, second = slices[int(below)], slices[min(int(below) + 1, DEPTH - 1)]
        cv2.addWeighted(first, 1 - part, second, part, 0, dst=result[z])
    return result


def _composed(planes: list[Bytes]) -> tuple[Bytes, tuple[float, float]]:
    """The channels in their common range as RGB voxels, and the range of the sums of these."""
    depth, height, width = planes[0].shape
    low, high = min(int(plane.min()) for plane in planes), max(int(plane.max()) for plane in planes)
    colours = numpy.empty((depth, height, width, 3), numpy.uint8)
    sums = numpy.empty((height, width), numpy.uint16)
    dimmest, brightest = 765.0, 0.0
    for z in range(depth):
        red, green, blue = (cv2.convertScaleAbs(plane[z], alpha=(high - low) / 255, beta=low) for plane in planes)
        cv2.merge([red, green, blue], dst=colours[z])
        # Faster than OpenCV's own sums of mixed types.
        numpy.add(red, green, dtype=numpy.uint16, out=sums)
        numpy.add(sums, blue, out=sums)
        least, largest = cv2.minMaxLoc(sums)[:2]
        dimmest, brightest = min(dimmest, least), max(brightest, largest)
    return colours, (dimmest, brightest)
