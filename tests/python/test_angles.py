"""Matrices of angles, and back."""

import itertools

import numpy as np
import pytest
from zentra3d import angles_of, change_order, matrix_of

ORDERS = ["".join(order) for order in itertools.permutations("XYZ")]
CYCLIC = ["XYZ", "ZXY", "YZX"]


def factor(axis, degrees):
    """A positive x angle turns y towards z, a positive z angle x towards y, and a positive y angle z towards -x."""
    c, s = np.cos(np.radians(degrees)), np.sin(np.radians(degrees))
    return {"X": np.array([[1, 0, 0], [0, c, -s], [0, s, c]]), "Y": np.array([[c, 0, -s], [0, 1, 0], [s, 0, c]]),
            "Z": np.array([[c, -s, 0], [s, c, 0], [0, 0, 1]])}[axis]


@pytest.mark.parametrize("order", ORDERS)
def test_a_matrix_is_the_product_of_its_factors(order):
    angles = dict(zip("XYZ", (30, -50, 110)))
    expected = np.linalg.multi_dot([factor(axis, angles[axis]) for axis in order])

    np.testing.assert_allclose(matrix_of((30, -50, 110), order), expected, atol=1e-6)


@pytest.mark.parametrize("order", CYCLIC)
def test_angles_come_back(order):
    np.testing.assert_allclose(angles_of(matrix_of((30, 40, 50), order), order), (30, 40, 50), atol=1e-4)


@pytest.mark.parametrize("from_order, to_order", [pair for pair in itertools.product(ORDERS, CYCLIC) if pair[0][2] != pair[1][2]])
def test_another_order_is_the_same_rotation(from_order, to_order):
    angles = change_order((30, 40, 50), from_order, to_order)

    np.testing.assert_allclose(matrix_of(angles, to_order), matrix_of((30, 40, 50), from_order), atol=1e-5)


def test_orders_that_the_library_cannot_give_are_refused():
    for order in set(ORDERS) - set(CYCLIC):
        with pytest.raises(ValueError, match="XYZ, ZXY, YZX"):
            angles_of(np.eye(3), order)
        with pytest.raises(ValueError, match="XYZ, ZXY, YZX"):
            change_order((1, 2, 3), "XYZ", order)
    with pytest.raises(ValueError, match="same axis"):
        change_order((1, 2, 3), "YXZ", "XYZ")
    assert change_order((1, 2, 3), "XYZ", "XYZ") == (1, 2, 3)
