"""The table of a comparison, in Markdown, whose columns are lined up for a terminal."""

from __future__ import annotations

from collections.abc import Iterable, Sequence
from dataclasses import dataclass, field

HEADINGS = ("job", "DLL", "native", "peer", "result", "from bytes", "", "tables kept", "")
LEFT_ALIGNED = (0, 3)
BRIEF_HEADINGS = ("job", "DLL", "native", "fastest peer", "from bytes", "", "fastest peer", "tables kept", "")
BRIEF_LEFT_ALIGNED = (0, 3, 6)


@dataclass
class PeerRow:
    """Milliseconds; None where it was not measured."""

    peer: str
    result: str
    cold: float | None = None
    kept: float | None = None


@dataclass
class JobRows:
    """The library's milliseconds, as it ships and built for this system, and those of its peers."""

    job: str
    shipped: float | None = None
    native: float | None = None
    peers: list[PeerRow] = field(default_factory=list)


def _milliseconds(value: float | None) -> str:
    if value is None:
        return ""
    return f"{value:.0f}" if value >= 100 else f"{value:.3g}" if value >= 1 else f"{value:.2f}"


def _ratio(theirs: float | None, ours: float | None) -> str:
    """How many times faster than the peer the DLL is."""
    if theirs is None or ours is None:
        return ""
    ratio = theirs / ours
    text = f"{ratio:.0f}x" if ratio >= 10 else f"{ratio:.1f}x" if ratio >= 1 else f"{ratio:.2f}x"
    return text if ratio >= 1 else f"**{text}**"


def _cells(rows: JobRows) -> Iterable[Sequence[str]]:
    head = [rows.job, _milliseconds(rows.shipped), _milliseconds(rows.native)]
    for peer in rows.peers:
        yield [*head, peer.peer, peer.result, _milliseconds(peer.cold), _ratio(peer.cold, rows.shipped),
               _milliseconds(peer.kept), _ratio(peer.kept, rows.shipped)]
        head = ["", "", ""]


def _laid_out(cells: Sequence[Sequence[str]], left_aligned: Sequence[int]) -> list[str]:
    """The first line is the heading."""
    columns = range(len(cells[0]))
    widths = [max(len(line[column]) for line in cells) for column in columns]

    def laid_out(line: Sequence[str]) -> str:
        return "| " + " | ".join(cell.ljust(width) if column in left_aligned else cell.rjust(width)
                                 for column, cell, width in zip(columns, line, widths)) + " |"

    rule = "|" + "|".join("-" * (widths[column] + 2) if column in left_aligned else "-" * (widths[column] + 1) + ":"
                          for column in columns) + "|"
    return [laid_out(cells[0]), rule, *map(laid_out, cells[1:])]


def lines(table: Iterable[JobRows]) -> list[str]:
    """One line per peer of a job."""
    return _laid_out([HEADINGS, *(line for rows in table for line in _cells(rows))], LEFT_ALIGNED)


def brief(table: Iterable[JobRows]) -> list[str]:
    """One line per job, with the fastest peer of each kind."""

    def fastest(times: list[tuple[float, str]], ours: float | None) -> list[str]:
        if not times:
            return ["", "", ""]
        time, peer = min(times)
        return [peer, _milliseconds(time), _ratio(time, ours)]

    cells: list[Sequence[str]] = [BRIEF_HEADINGS]
    for rows in table:
        cold = [(peer.cold, peer.peer) for peer in rows.peers if peer.cold is not None]
        kept = [(peer.kept, peer.peer) for peer in rows.peers if peer.kept is not None]
        cells.append([rows.job, _milliseconds(rows.shipped), _milliseconds(rows.native), *fastest(cold, rows.shipped),
                      *fastest(kept, rows.shipped)])
    return _laid_out(cells, BRIEF_LEFT_ALIGNED)
