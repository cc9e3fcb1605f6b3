"""Seconds of calls, of several contenders in turn."""

from __future__ import annotations

import gc
import time
from collections.abc import Callable, Sequence

ENOUGH_ROUNDS = 3


def seconds_of(call: Callable[[], object]) -> float:
    """How long one call took, the release of its result included."""
    start = time.perf_counter()
    call()
    return time.perf_counter() - start


def time_in_turn(contenders: Sequence[Callable[[], float]], budget: float) -> list[float]:
    """The shortest of each contender's calls.

    Contenders take turns, so that whatever else the machine does hits all of them. Each goes on for about `budget`
    seconds, and does at least three rounds.
    """
    shortest = [float("inf")] * len(contenders)
    spent = [0.0] * len(contenders)
    rounds = 0
    gc.disable()
    while rounds < ENOUGH_ROUNDS or min(spent) < budget:
        for index, contender in enumerate(contenders):
            if rounds >= ENOUGH_ROUNDS and spent[index] >= budget:
                continue
            start = time.perf_counter()
            shortest[index] = min(shortest[index], contender())
            spent[index] += time.perf_counter() - start
        rounds += 1
    gc.enable()
    return shortest
