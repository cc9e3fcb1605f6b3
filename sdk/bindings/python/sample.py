"""Renders a volume in every mode and loads one from files. Run it in the folder samples/data."""

import pathlib
import sys

from zentra3d import Mode, Volume, rotation


def checksum(data):
    """FNV-1a."""
    value = 0x811C9DC5
    for byte in data:
        value = (value ^ byte) * 0x01000193 & 0xFFFFFFFF
    return value


def show(name, volume, mode, low, high, extra=0):
    width, height, pixels = volume.project(rotation(30, 40, 50), mode, low, high, extra)
    print(f"{name:9} {width:2} x {height:2}  {checksum(pixels.tobytes()):08X}")


def cancel_at_half(percent):
    if percent >= 50:
        raise KeyboardInterrupt(f"cancelled at {percent:.0f} %")


def main():
    with Volume(pathlib.Path("grey.raw").read_bytes(), 48, 40, 32) as volume:
        show("maximum", volume, Mode.MAXIMUM, 0, 255)
        show("minimum", volume, Mode.MINIMUM, 1, 255)
        show("sum", volume, Mode.SUM, 0, 255)
        show("surface", volume, Mode.SURFACE, 60, 256)
        show("layers", volume, Mode.SURFACE, 60, 256, 0.5)
        show("blend", volume, Mode.BLEND, 0, 255, 0.5)
        show("contrast", volume, Mode.CONTRAST, 0, 256)
        show("first hit", volume, Mode.FIRST_HIT, 60, 255)

    files = ("red.raw", "green.raw", "blue.raw", 48, 40, 32)
    with Volume.load(*files, max_diagonal=60) as colour:
        low, high = colour.display_range
        print("loaded    {} x {} x {}".format(*colour.size) + f", display range {low:.0f} to {high:.0f}")
        show("colour", colour, Mode.MAXIMUM, 0, 765)

    try:
        Volume.load(*files, max_diagonal=60, progress=cancel_at_half).close()
    except KeyboardInterrupt as reason:
        print(reason)


sys.exit(main())
