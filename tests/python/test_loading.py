"""Volumes from raw files, their progress, and ways to stop it."""

import os
import resource
import signal
import threading

import numpy as np
import pytest
import zentra3d
from tqdm import tqdm

SHAPE = (12, 10, 8)


@pytest.fixture
def files(tmp_path):
    random = np.random.default_rng(3)
    paths = [tmp_path / name for name in ("red.raw", "gr\u00fcn.raw", "\u9752.raw")]
    for path in paths:
        voxels = random.integers(0, 256, SHAPE, dtype=np.uint8)
        voxels.flat[:2] = 0, 255  # bytes stay as they are where both ends occur
        voxels.tofile(path)
    return paths


def test_three_files_are_the_three_channels(files):
    with zentra3d.load_rgb(*files, SHAPE) as volume:
        assert volume.shape == SHAPE + (3,) and volume.is_rgb
        for channel, path in enumerate(files):
            np.testing.assert_array_equal(volume.to_array()[..., channel], np.fromfile(path, np.uint8).reshape(SHAPE))
        low, high = volume.display_range
        assert 0 <= low < high <= 765


def test_one_file_is_grey(files):
    with zentra3d.load_grey(files[0], SHAPE) as volume:
        assert volume.display_range == (0, 255)
        np.testing.assert_array_equal(volume.to_array(), np.fromfile(files[0], np.uint8).reshape(SHAPE))


def test_floats_are_mapped_to_bytes(tmp_path):
    np.linspace(-3, 5, 60, dtype="<f4").tofile(tmp_path / "f.raw")
    with zentra3d.load_grey(tmp_path / "f.raw", (3, 4, 5), dtype=np.float32) as volume:
        voxels = volume.to_array().ravel()
    assert voxels[0] == 0 and voxels[-1] == 255 and (np.diff(voxels.astype(int)) >= 0).all()


def test_a_diagonal_shrinks(files):
    with zentra3d.load_rgb(*files, SHAPE, max_diagonal=10) as volume:
        assert volume.shape == (6, 5, 4, 3)


@pytest.mark.parametrize("names, options", [
    ((0, 1, 2), {}), ((0, 1, 2), {"max_diagonal": 10}), ((0, None, None), {}), ((0, 0, 0), {}), ((0, 0, 1), {}),
    ((0, 0, 0), {"keep_apart": True}), ((0, 0, 0), {"max_diagonal": 10})])
def test_progress_rises_once_from_nothing_to_the_whole(files, names, options):
    seen = []
    zentra3d.load_rgb(*(None if name is None else files[name] for name in names), SHAPE, progress=seen.append, **options)

    steps = np.diff([0, *seen])
    assert seen[-1] == 100 and (steps >= 0).all() and steps.max() < 15


def test_progress_of_single_slices_counts_phases_too(tmp_path):
    for name in "rgb":
        np.arange(12, dtype=np.uint8).tofile(tmp_path / name)
    seen = []
    zentra3d.load_rgb(*(tmp_path / name for name in "rgb"), (1, 3, 4), progress=seen.append)

    assert seen[:4] == [25, 50, 75, 100]


def test_a_bar_of_tqdm_is_filled(files, tmp_path):
    with open(tmp_path / "bar", "w", encoding="utf-8") as out, tqdm(total=1000, file=out) as bar:
        zentra3d.load_rgb(*files, SHAPE, progress=bar)
        assert bar.n == pytest.approx(1000)


def test_false_stops(files):
    with pytest.raises(zentra3d.Cancelled):
        zentra3d.load_rgb(*files, SHAPE, progress=lambda percent: percent < 40)


def test_false_of_numpy_stops(files):
    with pytest.raises(zentra3d.Cancelled):
        zentra3d.load_rgb(*files, SHAPE, progress=lambda percent: np.float64(percent) < 40)


@pytest.mark.parametrize("answer", [None, 0, 0.0, "", np.True_])
def test_nothing_else_that_progress_returns_stops(files, answer):
    zentra3d.load_rgb(*files, SHAPE, progress=lambda percent: answer).close()


def test_names_may_be_bytes(files):
    with zentra3d.load_grey(os.fsencode(files[2]), SHAPE) as volume:
        np.testing.assert_array_equal(volume.to_array(), np.fromfile(files[2], np.uint8).reshape(SHAPE))


def test_a_descriptor_is_no_name_and_stays_open(files):
    with open(files[0], "rb") as file:
        with pytest.raises(TypeError, match="int"):
            zentra3d.load_grey(file.fileno(), SHAPE)
        assert file.read(1)


def test_what_progress_raises_is_raised(files):
    mine = KeyboardInterrupt("mine")

    def progress(percent):
        if percent > 40:
            raise mine

    with pytest.raises(KeyboardInterrupt) as caught:
        zentra3d.load_rgb(*files, SHAPE, progress=progress)
    assert caught.value is mine


@pytest.fixture
def large(tmp_path):
    """So large that its load is still going on when a signal has come."""
    shape = (60, 400, 400)
    np.arange(np.prod(shape), dtype=np.uint32).astype(np.uint8).tofile(tmp_path / "large.raw")
    return tmp_path / "large.raw", shape


def test_ctrl_c_while_progress_is_told_stops(files):
    seen = []

    def progress(percent):
        seen.append(percent)
        if len(seen) == 3:
            signal.raise_signal(signal.SIGINT)

    handler = signal.getsignal(signal.SIGINT)
    with pytest.raises(KeyboardInterrupt):
        zentra3d.load_rgb(*files, SHAPE, progress=progress)
    assert len(seen) == 3
    assert signal.getsignal(signal.SIGINT) is handler


@pytest.mark.parametrize("progress", [None, lambda percent: None])
def test_ctrl_c_at_any_time_stops_and_nothing_is_lost(large, progress, capfd):
    path, shape = large
    for delay in np.linspace(0.001, 0.02, 10):
        interrupt = threading.Timer(delay, os.kill, (os.getpid(), signal.SIGINT))
        with pytest.raises(KeyboardInterrupt):
            interrupt.start()
            for _ in range(100):  # one interrupt is enough, wherever it comes
                zentra3d.load_rgb(path, None, None, shape, progress=progress).close()
        interrupt.join()
    assert "ignored" not in capfd.readouterr().err


def test_a_handler_of_the_hosts_own_that_does_not_raise_lets_the_load_go_on(files):
    calls = []
    before = signal.signal(signal.SIGINT, lambda number, frame: calls.append(number))
    try:
        zentra3d.load_rgb(*files, SHAPE, progress=lambda _: None if calls else signal.raise_signal(signal.SIGINT)).close()
    finally:
        signal.signal(signal.SIGINT, before)
    assert calls == [signal.SIGINT]


def test_another_thread_loads_with_and_without_progress(files):
    seen, shapes = [], []

    def work():
        for progress in (None, seen.append):
            with zentra3d.load_rgb(*files, SHAPE, progress=progress) as volume:
                shapes.append(volume.shape)

    thread = threading.Thread(target=work)
    thread.start()
    thread.join()
    assert shapes == [SHAPE + (3,)] * 2 and seen[-1] == 100


def test_stopped_loads_leave_nothing(tmp_path):
    np.zeros(2_000_000, np.uint8).tofile(tmp_path / "large.raw")
    for round_ in range(60):
        with pytest.raises(zentra3d.Cancelled):
            zentra3d.load_rgb(tmp_path / "large.raw", None, None, (50, 200, 200), progress=lambda percent: percent < 90)
        if round_ == 20:
            before = resource.getrusage(resource.RUSAGE_SELF).ru_maxrss
    assert resource.getrusage(resource.RUSAGE_SELF).ru_maxrss - before < 16000  # KB: 40 volumes would be 80 MB and more


def test_what_is_wrong_is_said(files, tmp_path):
    with pytest.raises(FileNotFoundError, match="none.raw"):
        zentra3d.load_rgb(files[0], tmp_path / "none.raw", None, SHAPE)
    with pytest.raises(IsADirectoryError):
        zentra3d.load_grey(tmp_path, SHAPE)
    with pytest.raises(ValueError, match="no channel"):
        zentra3d.load_rgb(None, None, None, SHAPE)
    with pytest.raises(ValueError, match="32767"):
        zentra3d.load_grey(files[0], (0, 10, 8))
    with pytest.raises(TypeError, match="int16"):
        zentra3d.load_grey(files[0], SHAPE, dtype=np.int16)
    with pytest.raises(TypeError, match="progress is a int"):
        zentra3d.load_grey(files[0], SHAPE, progress=3)
