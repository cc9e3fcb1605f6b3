"""The table of a comparison, in Markdown, whose columns are lined up for a terminal."""

from __future__ import annotations

from collections.abc import Iterable, Sequence
from dataclasses import dataclass, field

HEADINGS = ("job", "DLL", "native", "peer", "result", "from bytes", "", "tables kept", "")
LEFT_ALIGNED = (0, 3)


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


def lines(table: Iterable[JobRows]) -> list[str]:
    """One line per peer of a job."""
    cells = [HEADINGS, *(line for rows in table for line in _cells(rows))]
    widths = [max(len(line[column]) for line in cells) for column in range(len(HEADINGS))]

    def laid_out(line: Sequence[str]) -> str:
        return "| " + " | ".join(cell.ljust(width) if column in LEFT_ALIGNED else cell.rjust(width)
                                 for column, (cell, width) in enumerate(zip(line, widths))) + " |"

    rule = "|" + "|".join("-" * (width + 2) if column in LEFT_ALIGNED else "-" * (width + 1) + ":"
                          for column, width in enumerate(widths)) + "|"
    return [laid_out(cells[0]), rule, *map(laid_out, cells[1:])]
