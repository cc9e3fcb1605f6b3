"""What is compared: projections of the head, and loads of channel files."""

from __future__ import annotations

import enum
from collections.abc import Callable
from dataclasses import dataclass
from typing import Any, Protocol, Union

import numpy.typing

Array = numpy.typing.NDArray[Any]
Angles = tuple[float, float, float]


class Mode(enum.IntEnum):
    """The modes of the library that have a peer."""

    MAXIMUM = 0
    MINIMUM = 1
    SUM = 2
    SURFACE = 3
    BLEND = 4
    FIRST_HIT = 6


@dataclass(frozen=True)
class Projection:
    """Angles are degrees about x, y and z, in this order; low to high are the voxels that count."""

    name: str
    mode: Mode
    angles: Angles
    low: float = 0
    high: float = 255
    extra: float = 0
    channels: int = 1


@dataclass(frozen=True)
class Loading:
    """Three files of bytes, fitted into a diagonal, as one volume of RGB voxels."""

    name: str
    diagonal: int


Job = Union[Projection, Loading]

OBLIQUE: Angles = (30, 40, 50)
FRONT: Angles = (0, 0, 0)
ABOUT_X: Angles = (90, 0, 0)
ABOUT_Y: Angles = (0, 90, 0)
ABOUT_Z: Angles = (0, 0, 90)
TURNED: Angles = (0, 30, 0)
ROLLED: Angles = (0, 0, 30)
UPRIGHT: Angles = (-90, 0, 30)

JOBS: tuple[Job, ...] = (
    Projection("maximum, oblique", Mode.MAXIMUM, OBLIQUE),
    Projection("maximum, 90 about x", Mode.MAXIMUM, ABOUT_X),
    Projection("maximum, 90 about y", Mode.MAXIMUM, ABOUT_Y),
    Projection("maximum, 90 about z", Mode.MAXIMUM, ABOUT_Z),
    Projection("maximum, 30 about y", Mode.MAXIMUM, TURNED),
    Projection("maximum, 30 about z", Mode.MAXIMUM, ROLLED),
    Projection("maximum, upright, turned by 30", Mode.MAXIMUM, UPRIGHT),
    Projection("maximum, not turned", Mode.MAXIMUM, FRONT),
    Projection("minimum, oblique", Mode.MINIMUM, OBLIQUE),
    Projection("sum, oblique", Mode.SUM, OBLIQUE),
    Projection("sum, not turned", Mode.SUM, FRONT),
    Projection("first surface, oblique", Mode.SURFACE, OBLIQUE, low=80),
    Projection("blend, oblique", Mode.BLEND, OBLIQUE, extra=0.9),
    Projection("first hit, oblique", Mode.FIRST_HIT, OBLIQUE, low=30),
    Projection("colour maximum, oblique", Mode.MAXIMUM, OBLIQUE, high=765, channels=3),
    Projection("colour maximum, not turned", Mode.MAXIMUM, FRONT, high=765, channels=3),
    Loading("three channels into a diagonal of 250", 250),
    Loading("three channels, whole", 336),
)


class Likeness(enum.Enum):
    """How a peer's result has to compare with the library's: bit for bit, or with at least this correlation.

    What is alike may differ in samples and roundings; a view from elsewhere correlates less. Surfaces may be shaded
    otherwise too.
    """

    SAME = 1.0
    ALIKE = 0.92
    SHADED_OTHERWISE = 0.8

    @staticmethod
    def of_mode(mode: Mode) -> Likeness:
        """For a peer that does not look at exactly the same voxels."""
        return Likeness.SHADED_OTHERWISE if mode == Mode.SURFACE else Likeness.ALIKE


@dataclass(frozen=True)
class Attempt:
    """One way in which somebody does a job.

    seconds does the job once and says how long that took. result is what it makes: for a projection an array of height
    x width (x 3), as the library would give it, for a load one of depth x height x width x 3.
    """

    peer: str
    seconds: Callable[[], float]
    result: Callable[[], Array]
    likeness: Likeness
    # Tables of the volume are kept from an earlier call.
    keeps: bool = False
    # What the peer leaves out of the job, or does beyond it.
    note: str = ""


class Peer(Protocol):
    """Somebody who can do some of the jobs."""

    def attempts(self, job: Job) -> list[Attempt]:
        """The ways in which this peer does the job; none where it cannot."""
