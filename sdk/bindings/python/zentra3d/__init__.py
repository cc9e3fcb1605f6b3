"""Renders 3D image volumes: rotated projections of numpy arrays, with the library Zentra3DRendering.

    import numpy as np, zentra3d

    picture = zentra3d.project(array, angles=(30, 40, 50), mode="max", window=(0, 255))

array is (Z, Y, X) of uint8, or (Z, Y, X, 3) in colour; picture is (H, W, 3) of float32. For more than one picture of an array
copy it into a Volume once:

    with zentra3d.Volume(array) as volume:
        turn = [volume.project((-90, 0, angle), "blend", extra=0.9) for angle in range(0, 360, 5)]

The library is looked for in the environment variable ZENTRA3D_LIBRARY, beside the package, in the unpacked archive, and
where the system looks. Threads: any; calls on one volume wait for each other, others run side by side.
"""

from ._library import LibraryNotFound, functions
from ._loading import load_grey, load_rgb
from ._volume import NO_MINIMUM, NO_VALUE, Mode, Volume, project, to_bytes
from .angles import angles_of, change_order, matrix_of
from .errors import Cancelled, OutOfMemory

__version__ = "1.0.0"
__all__ = ["Cancelled", "LibraryNotFound", "Mode", "NO_MINIMUM", "NO_VALUE", "OutOfMemory", "Volume", "angles_of",
           "change_order", "functions", "load_grey", "load_rgb", "matrix_of", "project", "to_bytes"]
