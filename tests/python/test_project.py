"""What a picture is, and what is refused with a sentence."""

import copy
import gc
import pickle
import threading

import numpy as np
import pytest
import zentra3d
from zentra3d import Mode, Volume

TALL = (4, 3, 5)


@pytest.fixture
def grey():
    return np.random.default_rng(1).integers(0, 256, (9, 11, 13), dtype=np.uint8)


@pytest.fixture
def colour():
    return np.random.default_rng(2).integers(0, 256, (9, 11, 13, 3), dtype=np.uint8)


def test_not_turned_a_maximum_is_that_of_numpy_with_the_last_row_on_top(grey):
    picture = zentra3d.project(grey)

    assert picture.dtype == np.float32 and picture.shape == (11, 13, 3)
    for channel in range(3):
        np.testing.assert_array_equal(picture[..., channel], grey.max(axis=0)[::-1])


def test_in_colour_each_channel_is_its_own(colour):
    np.testing.assert_array_equal(zentra3d.project(colour), colour.max(axis=0)[::-1])
    np.testing.assert_array_equal(zentra3d.project(colour, mode="sum"), colour.sum(axis=0)[::-1])


def test_the_call_of_the_readme(grey):
    picture = zentra3d.project(grey, angles=(30, 40, 50), mode="max", window=(0, 255))

    assert picture.shape[:2] == Volume(grey).size((30, 40, 50))


def test_names_numbers_and_constants_are_the_same_modes(grey):
    for mode in Mode:
        expected = zentra3d.project(grey, (10, 20, 30), mode)
        for same in (int(mode), mode.name.lower(), mode.name):
            np.testing.assert_array_equal(zentra3d.project(grey, (10, 20, 30), same), expected)


@pytest.mark.parametrize("mode, mark", [("max", zentra3d.NO_VALUE), ("min", zentra3d.NO_MINIMUM), ("first", zentra3d.NO_VALUE)])
def test_pixels_without_a_contribution_are_nan_on_request(grey, mode, mark):
    plain = zentra3d.project(grey, (30, 40, 50), mode)
    marked = zentra3d.project(grey, (30, 40, 50), mode, nan=True)

    np.testing.assert_array_equal(np.isnan(marked), plain == mark)
    assert np.isnan(marked).any() and not np.isnan(marked).all()


def test_crop_is_slices_of_the_array_and_keeps_the_size(grey):
    crop = np.s_[2:7, 3:, :-4]
    picture = zentra3d.project(grey, crop=crop, nan=True)

    assert picture.shape == (11, 13, 3)
    seen = ~np.isnan(picture[::-1, :, 0])
    assert seen[3:, :9].all() and seen.sum() == 8 * 9


@pytest.mark.parametrize("crop, mode, value", [
    (slice(2, 4), "max", 50),  # one sample more beyond the far end
    (slice(2, 4), "min", 30), (slice(2, 4), "sum", 30 + 40), (slice(2, 4), "first", 30),
    (slice(2, 3), "max", 40), (slice(2, 3), "min", 20),  # a single slice, with the one before it
    (slice(2, 3), "sum", 20 + 30), (slice(2, 3), "first", 20),
    (slice(4, 6), "max", 60), (slice(0, 2), "min", 10)])
def test_along_the_view_a_crop_takes_samples_of_its_neighbours(crop, mode, value):
    steps = np.broadcast_to(np.arange(10, 70, 10, dtype=np.uint8)[:, None, None], (6, 4, 5))

    assert (zentra3d.project(steps, mode=mode, crop=(crop, slice(None), slice(None))) == value).all()


def test_the_maximum_in_colour_stays_within_the_crop():
    steps = np.broadcast_to(np.arange(10, 70, 10, dtype=np.uint8)[:, None, None, None], (6, 4, 5, 3))

    assert (zentra3d.project(steps, crop=np.s_[2:4, :, :]) == 40).all()


def test_a_mirrored_picture_has_left_and_right_exchanged(grey):
    np.testing.assert_array_equal(zentra3d.project(grey, mirror=True), zentra3d.project(grey)[:, ::-1])


def test_default_windows_let_everything_in_but_black_surfaces(grey):
    bright = np.maximum(grey, 1)
    np.testing.assert_array_equal(zentra3d.project(bright, (1, 2, 3), "surface"),
                                  zentra3d.project(bright, (1, 2, 3), "surface", window=(0, 256)))


def test_arrays_need_not_be_contiguous(grey, colour):
    np.testing.assert_array_equal(zentra3d.project(np.asfortranarray(grey), (5, 6, 7)), zentra3d.project(grey, (5, 6, 7)))
    np.testing.assert_array_equal(zentra3d.project(grey[::-1, ::2, 1:]), zentra3d.project(grey[::-1, ::2, 1:].copy()))
    np.testing.assert_array_equal(zentra3d.project(colour[..., ::-1]), zentra3d.project(colour[..., ::-1].copy()))
    np.testing.assert_array_equal(zentra3d.project(grey.T), zentra3d.project(grey.T.copy()))


@pytest.mark.parametrize("wrong, kind, words", [
    (dict(array=np.zeros(TALL)), TypeError, "float64: uint8 is wanted; to_bytes"),
    (dict(array=np.zeros(TALL, bool)), TypeError, "bool"),
    (dict(array=np.zeros((4, 3), np.uint8)), ValueError, r"\(4, 3\)"),
    (dict(array=np.zeros((4, 3, 5, 4), np.uint8)), ValueError, "red, green, blue"),
    (dict(array=np.zeros((4, 0, 5), np.uint8)), ValueError, "4 x 0 x 5"),
    (dict(array=np.zeros((1, 1, 32768), np.uint8)), ValueError, "32767"),
    (dict(mode="sideways"), ValueError, "maximum, minimum, sum, surface, blend, contrast, first_hit$"),
    (dict(mode=max(Mode) + 1), ValueError, f"mode {max(Mode) + 1}: "),
    (dict(angles=(1, 2)), ValueError, "three are wanted"),
    (dict(angles=(1, 2, np.nan)), ValueError, "not finite"),
    (dict(order="XYX"), ValueError, "each once"),
    (dict(matrix=np.eye(4)), ValueError, "3 rows of 3"),
    (dict(matrix=np.diag([1, 1, 2000])), ValueError, "third row"),
    (dict(matrix=np.diag([1e5, 1, 1])), ValueError, "more than 65535"),
    (dict(array=np.zeros((1, 1, 1), np.uint8), matrix=np.diag([1e300, 1, 1])), ValueError, "not in 32 bits"),
    (dict(window=(1, 2, 3)), ValueError, r"\(low, high\)"),
    (dict(window=(1, "x")), ValueError, "window 'x': a number"),
    (dict(extra="x"), ValueError, "extra 'x': a number"),
    (dict(extra=None), TypeError, "extra None: a number"),
    (dict(crop=np.s_[1:2, 1:2]), ValueError, "three slices"),
    (dict(crop=np.s_[1:2, 1:2, 0]), ValueError, "three slices"),
    (dict(crop=np.s_[2:2, :, :]), ValueError, "at least one voxel"),
    (dict(crop=np.s_[::2, :, :]), ValueError, "every one"),
])
def test_what_is_wrong_is_said(wrong, kind, words):
    arguments = {"array": np.zeros(TALL, np.uint8), **wrong}
    with pytest.raises(kind, match=words):
        zentra3d.project(**arguments)


def test_a_volume_is_filled_once_and_again(grey):
    with Volume(grey) as volume:
        np.testing.assert_array_equal(volume.to_array(), grey)
        assert volume.shape == grey.shape and not volume.is_rgb
        first = volume.project((1, 2, 3))
        volume.fill(255 - grey)
        second = volume.project((1, 2, 3))
        with pytest.raises(ValueError, match=r"\(9, 11, 13\)"):
            volume.fill(grey[1:])

    np.testing.assert_array_equal(first, zentra3d.project(grey, (1, 2, 3)))
    np.testing.assert_array_equal(second, zentra3d.project(255 - grey, (1, 2, 3)))


def test_a_closed_volume_says_so_and_its_pictures_stay(grey):
    volume = Volume(grey)
    picture = volume.project()
    volume.close()
    volume.close()

    with pytest.raises(ValueError, match="closed"):
        volume.project()
    with pytest.raises(ValueError, match="closed"):
        volume.size()
    assert "closed" in repr(volume) and volume.shape == grey.shape and not volume.is_rgb
    np.testing.assert_array_equal(picture[..., 0], grey.max(axis=0)[::-1])


@pytest.mark.parametrize("duplicate", [copy.copy, copy.deepcopy, pickle.dumps])
def test_a_volume_is_not_copied_with_its_pointer(grey, duplicate):
    with Volume(grey) as volume:
        with pytest.raises(TypeError, match="cannot be copied or pickled"):
            duplicate(volume)
        np.testing.assert_array_equal(Volume(volume.to_array()).project(), volume.project())


def test_a_size_that_cannot_be_told_raises(grey, monkeypatch):
    with Volume(grey) as volume:
        monkeypatch.setattr(zentra3d._library.functions, "GetRotDim", lambda *_: None)  # which leaves 0 and 0
        with pytest.raises(zentra3d.OutOfMemory):
            volume.size()


def resident():
    with open("/proc/self/statm", encoding="ascii") as file:
        return int(file.read().split()[1]) * 4096


def test_pictures_and_volumes_are_released_with_their_last_view():
    array = np.zeros((40, 200, 200), np.uint8)
    with Volume(array) as volume:
        for round_ in range(60):
            view = volume.project()[3:, 3:, 0]  # 480 KB, and 1.6 MB
            Volume(array)
            if round_ == 20:
                before = resident()
        assert view.base is not None
    gc.collect()
    assert resident() - before < 8e6  # 40 rounds of one of them would be 19 MB


def test_threads_share_a_volume_and_the_interpreter(grey):
    expected = zentra3d.project(grey, (30, 40, 50), "blend", extra=0.5)
    equal = []
    with Volume(grey) as shared:
        def work():
            for _ in range(50):
                equal.append((shared.project((30, 40, 50), "blend", extra=0.5) == expected).all())
                equal.append((zentra3d.project(grey, (30, 40, 50), "blend", extra=0.5) == expected).all())

        threads = [threading.Thread(target=work) for _ in range(4)]
        for thread in threads:
            thread.start()
        for thread in threads:
            thread.join()
    assert len(equal) == 400 and all(equal)


def test_values_are_mapped_to_bytes():
    np.testing.assert_array_equal(zentra3d.to_bytes([-5.0, 0, 5, 10, 20], 0, 10), [0, 0, 128, 255, 255])
    np.testing.assert_array_equal(zentra3d.to_bytes([np.nan, -np.inf, 1, 3, np.inf]), [0, 0, 0, 255, 255])
    np.testing.assert_array_equal(zentra3d.to_bytes(np.array([-1000, 1000], np.int16)), [0, 255])
    for empty in ([1.0, 1.0], [np.nan]):
        with pytest.raises(ValueError):
            zentra3d.to_bytes(empty)
