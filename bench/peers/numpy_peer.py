"""NumPy: reductions along an axis of the volume, which is what views at right angles are."""

from __future__ import annotations

from collections.abc import Callable

import numpy

from inputs import Bytes, Inputs
from jobs import ABOUT_X, ABOUT_Y, ABOUT_Z, FRONT, Angles, Array, Attempt, Job, Likeness, Mode, Projection
from timing import seconds_of

# For each view, the axis of z, y, x that its rays run along, and how the view lies on what remains.
VIEWS: dict[Angles, tuple[int, Callable[[Array], Array]]] = {
    FRONT: (0, lambda reduced: reduced[::-1]),
    ABOUT_X: (1, lambda reduced: reduced),
    ABOUT_Y: (2, lambda reduced: reduced.T[::-1, ::-1]),
    ABOUT_Z: (0, lambda reduced: reduced.T[::-1, ::-1]),
}

NOTE = "gives bytes as the volume lies, not three floats a pixel as the view lies; no window, no angle between"


class NumPy:
    """One reduction; there is nothing to set up."""

    def __init__(self, inputs: Inputs) -> None:
        self._inputs = inputs

    def attempts(self, job: Job) -> list[Attempt]:
        if not isinstance(job, Projection) or job.angles not in VIEWS:
            return []
        axis, turn = VIEWS[job.angles]
        reduce = self._reduction(job.mode, self._inputs.volume(job.channels), axis)
        return [Attempt("NumPy", lambda: seconds_of(reduce), lambda: turn(reduce()), Likeness.SAME, note=NOTE)]

    @staticmethod
    def _reduction(mode: Mode, voxels: Bytes, axis: int) -> Callable[[], Array]:
        def largest() -> Array:
            result: Array = voxels.max(axis)
            return result

        def total() -> Array:
            result: Array = voxels.sum(axis, dtype=numpy.uint16)  # enough for 181 bytes
            return result

        return total if mode == Mode.SUM else largest
