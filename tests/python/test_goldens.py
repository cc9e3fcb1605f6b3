"""The figures that hold every build hold the binding too."""

import golden
import pytest
import zentra3d

# The binding makes volumes of 1 and of 3 bytes per voxel.
ROWS = [row for row in golden.rows() if row["bytes"] in (1, 3)]


def test_there_are_enough_of_them():
    assert len(ROWS) >= 55
    assert {(row["mode"], row["bytes"]) for row in ROWS} == {(mode, count) for mode in zentra3d.Mode for count in (1, 3)}


def bounds_of(row):
    return [[row[f"{axis}{end}"] for end in "01"] for axis in "xyz"]


def crop_of(row):
    """As slices of the array; None where a bound lies outside, which they cannot say."""
    lengths = row["width"], row["height"], row["depth"]
    if any(not 1 <= bound <= length for ends, length in zip(bounds_of(row), lengths) for bound in ends):
        return None
    return [slice(min(ends) - 1, max(ends)) for ends in reversed(bounds_of(row))]


@pytest.mark.parametrize("row", ROWS, ids=lambda row: f"line{row['line']}")
def test_a_golden_picture(row, monkeypatch):
    matrix = [golden.floats(*(row[f"m{3 * i + j}"] for j in range(3))) for i in range(3)]
    high, low, extra = golden.floats(row["high"], row["low"], row["extra"])
    crop = crop_of(row)
    if crop is None:
        monkeypatch.setattr(zentra3d._volume, "_bounds", lambda *_: [bound for ends in bounds_of(row) for bound in ends])

    picture = zentra3d.project(golden.volume_of(row), mode=row["mode"], matrix=matrix, window=(low, high), extra=extra,
                               crop=crop)

    assert picture.shape == (row["rows"], row["columns"], 3)
    assert golden.digest_of(picture) == row["digest"]


def test_most_crop_boxes_are_slices():
    assert sum(crop_of(row) is not None for row in ROWS) >= 30
