"""How a turned volume lies in a picture."""

from __future__ import annotations

from collections.abc import Callable
from dataclasses import dataclass

import numpy
import numpy.typing

from inputs import SIZE
from jobs import Projection

Matrix = numpy.typing.NDArray[numpy.float64]


@dataclass(frozen=True)
class View:
    """The rotation takes voxels, from the centre of the volume, to the view: right, up and away."""

    rotation: Matrix
    width: int
    height: int

    @property
    def depth(self) -> int:
        """Voxels from the front of the turned volume to its back."""
        return int(numpy.ceil(numpy.abs(self.rotation[2]) @ numpy.array(SIZE)))


Views = Callable[[Projection], View]
