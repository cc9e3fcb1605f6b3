"""The golden pictures: the rows of tests/render/GoldenRows.inc, and the volumes that they are of.

The volumes are made as tests/support/ProceduralVolumes.cpp makes them, from the same random numbers.
"""

import pathlib
import re
import struct

import numpy as np

ROWS = pathlib.Path(__file__).resolve().parents[1] / "render" / "GoldenRows.inc"
FIELDS = ("mode kind width height depth bytes detail "
          + " ".join(f"m{index}" for index in range(9)) + " x0 x1 y0 y1 z0 z1 high low extra columns rows digest").split()


class Random:
    """The outputs of the Mersenne twister through the mappings of tests/support/RandomSource.h."""

    def __init__(self, seed):
        self._bits = np.random.MT19937()
        self._bits._legacy_seeding(seed)

    def bits(self, count=None):
        return self._bits.random_raw(count)

    def below(self, bound, count=None):
        return (self.bits(count) * bound) >> 32 if count is None else (self.bits(count) * np.uint64(bound)) >> np.uint64(32)

    def between(self, low, high):
        return low + self.below(high - low + 1)

    def within(self, low, high):
        return low + (high - low) * (self.bits() * (1.0 / 4294967296.0))


def noise(shape, seed):
    return Random(seed).below(256, int(np.prod(shape))).astype(np.uint8).reshape(shape)


def sparse(shape, seed):
    random = Random(seed)
    voxels = np.zeros(shape, np.uint8)
    for voxel in voxels.reshape(-1, shape[3]):
        if random.below(16) == 0:
            for channel in range(shape[3]):
                voxel[channel] = random.between(128, 255)
    return voxels


def blob(shape, seed):
    random = Random(seed)
    depth, height, width, channels = shape
    z, y, x, channel = np.indices(shape).astype(np.float64)
    value = np.full(shape, 8.0)
    for _ in range(random.between(3, 6)):
        dx, dy, dz = (axis - random.within(0.0, length) for axis, length in ((x, width), (y, height), (z, depth)))
        radius = random.within(0.08, 0.3) * max(depth, height, width)
        top = random.within(60.0, 250.0)
        share = np.where(channel == random.below(channels), 1.0, 0.4)
        ratio = (dx * dx + dy * dy + dz * dz) / (radius * radius)
        value += share * top / (1.0 + ratio * ratio)
    return np.minimum(value, 255.0).astype(np.uint8)


def ramp(shape, axis):
    index = np.indices(shape)[2 - axis]
    length = shape[2 - axis]
    value = index * 255 // (length - 1) if length > 1 else np.full(shape, 255)
    channel = np.indices(shape)[3]
    return np.choose(channel, [value, 255 - value, value // 2]).astype(np.uint8)


def step(shape, detail):
    border, inside = detail >> 8 & 0xFF, detail & 0xFF
    voxels = np.full(shape, border, np.uint8)
    voxels[tuple(slice(length // 4, length - length // 4) for length in shape[:3])] = inside
    return voxels


def checkerboard(shape, side):
    z, y, x, channel = np.indices(shape)
    return np.where(((x + channel) // side + y // side + z // side) % 2 == 0, 0, 255).astype(np.uint8)


KINDS = {"Noise": noise, "Sparse": sparse, "Blob": blob, "Ramp": ramp, "Step": step, "Checkerboard": checkerboard}


def rows():
    """Each row as a dictionary, floats as their bits."""
    for number, line in enumerate(ROWS.read_text(encoding="ascii").splitlines(), 1):
        if not line.startswith("{"):
            continue
        values = re.findall(r"[-\w]+", line)
        row = dict(zip(FIELDS, (value if value in KINDS else int(value, 0) for value in values)))
        assert len(values) == len(FIELDS)
        yield {**row, "line": number}


def volume_of(row):
    """(Z, Y, X) or (Z, Y, X, 3)."""
    voxels = KINDS[row["kind"]]((row["depth"], row["height"], row["width"], row["bytes"]), row["detail"])
    return voxels if row["bytes"] == 3 else voxels[..., 0]


def floats(*bits):
    return struct.unpack(f"<{len(bits)}f", struct.pack(f"<{len(bits)}I", *bits))


def digest_of(picture):
    """FNV-1a of 64 bits; all NaNs alike."""
    bits = np.where(np.isnan(picture), np.uint32(0x7FC00000), picture.view(np.uint32))
    value = 0xCBF29CE484222325
    for byte in bits.astype("<u4").tobytes():
        value = (value ^ byte) * 0x100000001B3 & 0xFFFFFFFFFFFFFFFF
    return value
