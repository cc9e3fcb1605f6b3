"""Compares the library with other programs that do some of its jobs, on one head, on one core, in one run.

Before anything is timed, every result is compared with the library's. scripts/compare installs and builds what this needs.
"""

from __future__ import annotations

import argparse
import datetime
import os
import re
import subprocess
import sys
from pathlib import Path

# Before any of the peers is loaded.
for _pool in ("OMP_NUM_THREADS", "OPENBLAS_NUM_THREADS", "VTK_SMP_MAX_THREADS"):
    os.environ[_pool] = "1"

from inputs import Inputs
from jobs import JOBS, Attempt, Job, Peer
from likeness import NotAlike, compare
from numpy_peer import NumPy
from opencv_peer import OpenCv
from ours import NATIVE, Native, Shipped
from scipy_peer import SciPy
from table import JobRows, PeerRow, brief, lines
from timing import time_in_turn
from volpack_peer import VolPack
from vtk_raycast import VtkRayCast
from vtk_reslice import VtkReslice

HEAD = Path("/usr/share/mricron/templates/ch2.nii.gz")
LIBRARY = Path("build/native/bin/libzentra3drendering.so")
HOST = ["cmake/run-wine", "build/win32/bin/bench_timing_host.exe", "build/win32/bin/Zentra3DRendering.dll"]
PACKAGES = ("python3-numpy", "python3-scipy", "python3-opencv", "python3-vtk9", "libvolpack1")

LEGEND = """\
Milliseconds, the shortest of each one's calls, all in turn; behind them, how many times faster the DLL is: **below 1 the
peer is ahead.** DLL: as it ships, 32 bits, under Wine. native: the same sources built for this system. The library keeps
nothing between calls. From bytes: a peer starts from the voxels, as the library does; tables kept: what it made of them in
an earlier call is not made again. result: same bits as ours, or the correlation with our picture.
"""


def options() -> argparse.Namespace:
    parser = argparse.ArgumentParser(prog="scripts/compare", description=__doc__)
    parser.add_argument("--quick", action="store_true", help="compare the results, and time nothing")
    parser.add_argument("--brief", action="store_true", help="of each job show the fastest peers only")
    parser.add_argument("--only", default="", metavar="TEXT", help="jobs whose name contains the text")
    parser.add_argument("--seconds", type=float, default=0.5, help="for each contender of a job (%(default)s)")
    return parser.parse_args()


def heading() -> str:
    cpu = re.search(r"model name\s*: (.*)", Path("/proc/cpuinfo").read_text())
    packages = subprocess.run(["dpkg-query", "-W", "-f", "${Package} ${source:Upstream-Version}, ", *PACKAGES],
                              capture_output=True, text=True, check=True).stdout
    processor = cpu[1] if cpu else "an unknown processor"
    return (f"{datetime.date.today()}, {processor}, one core; a head of 181 x 217 x 181 voxels.\n"
            f"Peers: {packages.rstrip(', ')}.")


class Comparison:
    """Collects the rows of the table, and what peers leave out."""

    def __init__(self, seconds: float | None) -> None:
        self._seconds = seconds
        self.rows: list[JobRows] = []
        self.notes: dict[tuple[str, str], list[str]] = {}
        self.failures: list[str] = []

    def measure(self, job: Job, ours: list[Attempt], theirs: list[Attempt]) -> None:
        """The library's two attempts, the DLL first, and those of its peers."""
        expected = ours[0].result()
        found: list[tuple[Attempt, str]] = []
        for attempt in [*ours[1:], *theirs]:
            try:
                found.append((attempt, compare(expected, attempt.result(), attempt.likeness)))
            except NotAlike as difference:
                self.failures.append(f"{job.name}: {attempt.peer} gives {difference}")
        attempts = [ours[0], *(attempt for attempt, _ in found)]
        times: list[float | None] = [None] * len(attempts)
        if self._seconds is not None:
            times = [1e3 * time for time in time_in_turn([attempt.seconds for attempt in attempts], self._seconds)]
        rows = JobRows(job.name, times[0])
        for (attempt, result), time in zip(found, times[1:]):
            self._enter(rows, attempt, result, time)
        self.rows.append(rows)

    def noted(self) -> list[str]:
        """A line for each thing to know of a peer; with the jobs where it is not true of all."""
        peers = [peer for peer, _ in self.notes]
        return [f"- {peer}{' (' + '; '.join(jobs) + ')' if peers.count(peer) > 1 else ''}: {note}."
                for (peer, note), jobs in sorted(self.notes.items())]

    def _enter(self, rows: JobRows, attempt: Attempt, result: str, time: float | None) -> None:
        if attempt.peer == NATIVE:
            rows.native = time
            return
        if not rows.peers or rows.peers[-1].peer != attempt.peer:
            self.notes.setdefault((attempt.peer, attempt.note), []).append(rows.job)
            rows.peers.append(PeerRow(attempt.peer, result))
        if attempt.keeps:
            rows.peers[-1].kept = time
        else:
            rows.peers[-1].cold = time


def main() -> int:
    arguments = options()
    jobs = [job for job in JOBS if arguments.only in job.name]
    if not jobs:
        print(f'compare: no job has a name with "{arguments.only}" in it', file=sys.stderr)
        return 1
    # Whoever makes threads all the same has one core for them. Programs that are started inherit it.
    os.sched_setaffinity(0, {max(os.sched_getaffinity(0))})
    inputs = Inputs(HEAD, Path("build"))
    native = Native(LIBRARY, inputs)
    shipped = Shipped(HOST, inputs, native)
    peers: list[Peer] = [NumPy(inputs), OpenCv(inputs, native.view), SciPy(inputs, native.view),
                         VtkReslice(inputs, native.view), VtkRayCast(inputs, native.view), VolPack(inputs, native.view)]
    comparison = Comparison(None if arguments.quick else arguments.seconds)
    for job in jobs:
        print(f"  {job.name} ...", file=sys.stderr, flush=True)
        theirs = [attempt for peer in peers for attempt in peer.attempts(job)]
        comparison.measure(job, shipped.attempts(job) + native.attempts(job), theirs)
    shipped.close()
    table = (brief if arguments.brief and not arguments.quick else lines)(comparison.rows)
    print(heading(), LEGEND, *table, "", "What the peers do otherwise:", sep="\n")
    print(*comparison.noted(), sep="\n")
    for failure in comparison.failures:
        print(f"compare: {failure}", file=sys.stderr)
    return 1 if comparison.failures else 0


sys.exit(main())
