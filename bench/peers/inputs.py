"""The head, as one volume of bytes, as one of RGB voxels, and as three channel files."""

from __future__ import annotations

import gzip
import tempfile
from pathlib import Path

import numpy
import numpy.typing

Bytes = numpy.typing.NDArray[numpy.uint8]

SIZE = (181, 217, 181)
HEADER_BYTES = 352


class Inputs:
    """Volumes are indexed z, y, x. The files are relative to the working folder: so Wine understands their names."""

    def __init__(self, head: Path, folder: Path) -> None:
        width, height, depth = SIZE
        with gzip.open(head) as file:
            voxels = numpy.frombuffer(file.read(), numpy.uint8)[HEADER_BYTES:]
        self.grey: Bytes = voxels.reshape(depth, height, width).copy()
        channels = [numpy.roll(voxels, -5 * channel) for channel in range(3)]
        self.colour: Bytes = numpy.stack(channels, axis=-1).reshape(depth, height, width, 3).copy()
        self._folder = tempfile.TemporaryDirectory(dir=folder, prefix="compare-")
        self.scratch = Path(self._folder.name)
        self.grey_file = self._write("grey.raw", self.grey)
        self.colour_file = self._write("colour.raw", self.colour)
        self.channel_files = [self._write(f"{index}.raw", channel) for index, channel in enumerate(channels)]

    def volume(self, channels: int) -> Bytes:
        """The head with that many channels, 1 or 3."""
        return self.grey if channels == 1 else self.colour

    def _write(self, name: str, data: Bytes) -> Path:
        path = self.scratch / name
        data.tofile(path)
        return path
