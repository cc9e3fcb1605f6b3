#!/usr/bin/env python3
"""Writes the volume that the samples load: three soft balls, one raw file per colour channel, and all three in grey.

Usage: make_data.py FOLDER
Each file holds 32 slices of 40 rows of 48 bytes, without a header. The .nhdr file beside the grey one says so to
programs that read NRRD.
"""

import pathlib
import sys

WIDTH, HEIGHT, DEPTH = 48, 40, 32
BALLS = {"red": (16, 14, 12, 15), "green": (31, 22, 16, 17), "blue": (24, 30, 20, 13)}
NRRD_HEADER = """\
NRRD0004
type: uint8
dimension: 3
sizes: 48 40 32
encoding: raw
data file: grey.raw
"""


def ball(x0, y0, z0, radius):
    """255 at the centre, falling with the square of the distance to 0 at the radius."""
    square = radius * radius
    voxels = bytearray()
    for z in range(DEPTH):
        for y in range(HEIGHT):
            for x in range(WIDTH):
                distance = (x - x0) ** 2 + (y - y0) ** 2 + (z - z0) ** 2
                voxels.append(0 if distance >= square else 255 - 255 * distance // square)
    return voxels


def main():
    folder = pathlib.Path(sys.argv[1])
    folder.mkdir(parents=True, exist_ok=True)
    channels = {name: ball(*place) for name, place in BALLS.items()}
    for name, voxels in channels.items():
        (folder / f"{name}.raw").write_bytes(voxels)
    (folder / "grey.raw").write_bytes(bytes(map(max, *channels.values())))
    (folder / "grey.nhdr").write_text(NRRD_HEADER, encoding="ascii", newline="\n")


main()
