"""How the results of two contenders compare."""

from __future__ import annotations

import numpy

from jobs import Array, Likeness

# Pixels without a contribution hold the lowest or the highest float.
LARGEST_VALUE = 1e30


class NotAlike(Exception):
    """Somebody does another job than the library, or does it wrongly."""


def compare(ours: Array, theirs: Array, likeness: Likeness) -> str:
    """What a table says of it. Raises NotAlike where the results do not compare as they should.

    A grey picture of the library has each value three times; a peer may give it once.
    """
    if theirs.ndim == 2 and ours.ndim == 3:
        ours = ours[..., 0]
    if ours.shape != theirs.shape:
        raise NotAlike(f"a result of {theirs.shape}, ours of {ours.shape}")
    if likeness is Likeness.SAME:
        if not numpy.array_equal(ours, theirs):
            raise NotAlike("a result that is not the same")
        return "same"
    hit = numpy.abs(ours.astype(numpy.float64)) < LARGEST_VALUE
    correlation = float(numpy.corrcoef(ours[hit].astype(numpy.float64), theirs[hit].astype(numpy.float64))[0, 1])
    if not correlation >= likeness.value:
        raise NotAlike(f"a result with a correlation of {correlation:.3f} to ours")
    return f"{correlation:.3f}"
