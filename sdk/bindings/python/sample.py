"""Renders a volume in every mode and loads one from files. Run it in the folder samples/data."""

import sys

import numpy as np

import zentra3d

SHAPE = (32, 40, 48)  # slices, rows, columns


def checksum(data):
    """FNV-1a."""
    value = 0x811C9DC5
    for byte in data:
        value = (value ^ byte) * 0x01000193 & 0xFFFFFFFF
    return value


def show(name, volume, mode, window, extra=0):
    picture = volume.project((30, 40, 50), mode, window, extra=extra)
    height, width, _ = picture.shape
    print(f"{name:9} {width:2} x {height:2}  {checksum(picture.tobytes()):08X}")


def cancel_at_half(percent):
    if percent >= 50:
        raise KeyboardInterrupt(f"cancelled at {percent:.0f} %")


def main():
    voxels = np.fromfile("grey.raw", np.uint8).reshape(SHAPE)
    with zentra3d.Volume(voxels) as volume:
        show("maximum", volume, "max", (0, 255))
        show("minimum", volume, "min", (1, 255))
        show("sum", volume, "sum", (0, 255))
        show("surface", volume, "surface", (60, 256))
        show("layers", volume, "surface", (60, 256), 0.5)
        show("blend", volume, "blend", (0, 255), 0.5)
        show("contrast", volume, "contrast", (0, 256))
        show("first hit", volume, "first", (60, 255))

    files = ("red.raw", "green.raw", "blue.raw")
    with zentra3d.load_rgb(*files, SHAPE, max_diagonal=60) as colour:
        depth, height, width, _ = colour.shape
        low, high = colour.display_range
        print(f"loaded    {width} x {height} x {depth}, display range {low:.0f} to {high:.0f}")
        show("colour", colour, "max", (0, 765))

    try:
        zentra3d.load_rgb(*files, SHAPE, max_diagonal=60, progress=cancel_at_half).close()
    except KeyboardInterrupt as reason:
        print(reason)


sys.exit(main())
