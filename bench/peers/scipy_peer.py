"""SciPy: the volume turned as a whole, nearest voxels only, and then reduced along its depth."""

from __future__ import annotations

import functools
from collections.abc import Callable
from typing import Any

import numpy
from scipy import ndimage

from geometry import Views
from inputs import SIZE, Bytes, Inputs
from jobs import OBLIQUE, Array, Attempt, Job, Likeness, Mode, Projection
from timing import seconds_of

NOTE = "makes the whole turned volume first; no window"
# What lies beside the volume: it must not win.
OUTSIDE = {Mode.MAXIMUM: 0, Mode.MINIMUM: 255, Mode.SUM: 0}
REDUCTIONS: dict[Mode, Callable[[Bytes], Any]] = {
    Mode.MAXIMUM: lambda voxels: voxels.max(0),
    Mode.MINIMUM: lambda voxels: voxels.min(0),
    Mode.SUM: lambda voxels: voxels.sum(0, dtype=numpy.uint32),
}


class SciPy:
    """Every call starts from the bytes; there is nothing to set up."""

    def __init__(self, inputs: Inputs, views: Views) -> None:
        self._inputs = inputs
        self._views = views

    def attempts(self, job: Job) -> list[Attempt]:
        if not isinstance(job, Projection) or job.angles != OBLIQUE or job.mode not in REDUCTIONS or job.channels != 1:
            return []

        project = functools.partial(self._project, job)
        return [Attempt("SciPy", lambda: seconds_of(project), project, Likeness.ALIKE, note=NOTE)]

    def _project(self, job: Projection) -> Array:
        view = self._views(job)
        sides = (view.depth, view.height, view.width)
        # Indexes run over depth, rows from the top down, columns; those of the volume over z, y, x.
        inverse = view.rotation.T[::-1, ::-1] * numpy.array([1, -1, 1])
        centre = (numpy.array(SIZE[::-1]) - 1) / 2
        offset = centre - inverse @ ((numpy.array(sides) - 1) / 2)
        turned = ndimage.affine_transform(self._inputs.grey, inverse, offset, sides, order=0, mode="grid-constant",
                                          cval=OUTSIDE[job.mode], prefilter=False)
        picture: Array = REDUCTIONS[job.mode](turned)
        return picture
