"""Volumes from raw files."""

from __future__ import annotations

import contextlib
import ctypes
import math
import signal
import struct
import threading
from typing import Any, Callable, Iterator, Optional, Sequence, Tuple, Union

import numpy as np
from numpy.typing import DTypeLike

from . import _library
from ._library import Path, ProgressCode
from ._volume import LONGEST, Volume, _check_lengths
from .errors import Cancelled, OutOfMemory

# A callable that takes the percentage of the whole, 0 to 100, and may return False to stop, of Python or of numpy (nothing
# else stops, neither None nor 0); or a progress bar with the method `update` of tqdm's, which takes steps.
Progress = Union[Callable[[float], Any], Any]


def _listener(progress: Any) -> Callable[[float], Any]:
    if callable(progress):
        listen: Callable[[float], Any] = progress
        return listen
    if not hasattr(progress, "update"):
        raise TypeError(f"progress is a {type(progress).__name__}: a callable is wanted, or a bar with update()")
    total = getattr(progress, "total", None) or 100
    shown = 0.0

    def advance(percent: float) -> None:
        nonlocal shown
        progress.update((percent - shown) / 100 * total)
        shown = percent

    return advance


def _phase_count(names: Sequence[Optional[bytes]], shape: Tuple[int, int, int], is_8bit: bool, max_diagonal: int,
                 keep_apart: bool) -> int:
    """How often the library counts to 100 percent."""
    red, *others = names
    is_grey = not keep_apart and all(name == red for name in others)
    shared = 0 if keep_apart else sum(name == red for name in others if name)
    files = sum(bool(name) for name in names) - shared
    diagonal = math.sqrt(sum(length * length for length in shape))
    is_deep = diagonal > max_diagonal and max(1, int(shape[0] * max_diagonal / diagonal)) != shape[0]
    return files * (2 if is_deep else 1) + (0 if is_grey and is_8bit else 1)


class _Reporter:
    """Tells how far the whole is. What the listener raises, or a signal's handler, waits until the library has returned."""

    def __init__(self, progress: Optional[Progress], phases: int) -> None:
        self.raised: Optional[BaseException] = None
        self._listen = None if progress is None else _listener(progress)
        self._phases = phases
        self._ended = 0
        self._last = 0.0

    def __call__(self, _user: int, code: int, bits: int) -> int:
        if self.raised is not None:
            return _library.PROGRESS_CANCEL
        if self._listen is None or code not in (ProgressCode.START, ProgressCode.PERCENT):
            return _library.PROGRESS_GO_ON
        if self._last >= 100:  # the next phase, which may or may not say that it starts
            self._ended += 1
        self._last = struct.unpack("<f", struct.pack("<I", bits))[0]
        if code == ProgressCode.START:
            return _library.PROGRESS_GO_ON
        try:  # nothing may be raised through the library
            answer = self._listen(min(100.0, (100 * self._ended + self._last) / self._phases))
            if isinstance(answer, (bool, np.bool_)) and not answer:
                raise Cancelled("loading was stopped by progress")
        except BaseException as raised:
            self.raised = raised
        return _library.PROGRESS_GO_ON if self.raised is None else _library.PROGRESS_CANCEL

    def finish(self) -> None:
        """The last report, which a progress bar waits for."""
        if self._listen is not None and self._last > 0:
            self._listen(100.0)


@contextlib.contextmanager
def _keeping_interrupts(report: _Reporter) -> Iterator[bool]:
    """Ctrl-C while the library loads stops it: its handler is called as ever, and the report keeps what that raises.

    Without this it would be raised where the library calls back, and be lost there. False where no handler can run.
    """
    handler: Any = signal.getsignal(signal.SIGINT) if threading.current_thread() is threading.main_thread() else None
    if not callable(handler):
        yield False
        return

    def keep(number: int, frame: Any) -> None:
        try:
            handler(number, frame)
        except BaseException as raised:
            report.raised = report.raised or raised

    try:
        signal.signal(signal.SIGINT, keep)
    except ValueError:  # the main thread of an interpreter inside another one
        yield False
        return
    try:
        yield True
    finally:
        signal.signal(signal.SIGINT, handler)


def load_rgb(red: Optional[Path], green: Optional[Path], blue: Optional[Path], shape: Sequence[int], *,
             dtype: DTypeLike = np.uint8, max_diagonal: int = LONGEST, keep_apart: bool = False,
             progress: Optional[Progress] = None) -> Volume:
    """Loads up to three raw channel files of one stored shape (Z, Y, X) as an RGB volume; None is no channel.

    dtype         of the samples: uint8, or float32 in little-endian order
    max_diagonal  the longest diagonal of the volume in voxels; what has a longer one is shrunk to it
    keep_apart    loads a file again that is named twice. Otherwise one that is named three times makes a grey volume.
    progress      a callable that gets the percentage of the whole, 0 to 100; returning False stops (Cancelled; numpy's
                  False does, None and 0 do not), and so does whatever it raises, which is raised again. A tqdm bar will
                  do in its place.

    Ctrl-C stops, with and without progress, and raises KeyboardInterrupt. (Where a program has a handler of its own for
    it, that one is called while the library loads, and stops by raising.)
    The volume's display_range is what its values lie in, of RGB by the sum of the channels: a good window.
    Raises OSError for a file that cannot be opened. Bytes that a file lacks are 0; those beyond are ignored.
    """
    depth, height, width = _checked_shape(shape)
    is_8bit = _is_8bit(dtype)
    names = [None if path is None else _library.file_name(path) for path in (red, green, blue)]
    if names == [None, None, None]:
        raise ValueError("no channel file is named")
    diagonal = max(0, min(int(max_diagonal), LONGEST))
    report = _Reporter(progress, _phase_count(names, (depth, height, width), is_8bit, diagonal, keep_apart))
    high, low = ctypes.c_float(), ctypes.c_float()
    with _keeping_interrupts(report) as can_be_interrupted:
        is_heard = can_be_interrupted or progress is not None
        callback = _library.ProgressCallback(report) if is_heard else _library.ProgressCallback()
        record = _library.functions.GetRGBImage(*names, width, height, depth, 0, 0, 0, is_8bit, diagonal, high, low, None, None,
                                              0, callback, keep_apart)
        volume = Volume._adopt(record, (low.value, high.value)) if record else None
    if report.raised is not None:
        if volume is not None:
            volume.close()
        raise report.raised
    if volume is None:
        raise OutOfMemory("the library got no memory for the volume")
    report.finish()
    return volume


def load_grey(path: Path, shape: Sequence[int], *, dtype: DTypeLike = np.uint8, max_diagonal: int = LONGEST,
              progress: Optional[Progress] = None) -> Volume:
    """Loads one raw file as a grey volume, as load_rgb does. Bytes stay as they are, floats are mapped to 0..255."""
    return load_rgb(path, path, path, shape, dtype=dtype, max_diagonal=max_diagonal, progress=progress)


def _checked_shape(shape: Sequence[int]) -> Tuple[int, int, int]:
    _check_lengths(shape)
    return int(shape[0]), int(shape[1]), int(shape[2])


def _is_8bit(dtype: DTypeLike) -> bool:
    wanted = np.dtype(dtype)
    if wanted not in (np.dtype(np.uint8), np.dtype("<f4")):
        raise TypeError(f"samples of type {wanted}: uint8 and little-endian float32 can be loaded")
    return wanted == np.uint8
