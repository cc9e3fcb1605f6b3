"""Shows a scan in four modes, side by side.

Usage: four_modes.py SCAN.nii.gz FIGURE.png        (nibabel, matplotlib)
"""

import sys

import matplotlib

matplotlib.use("Agg")  # no window
import matplotlib.pyplot as plt
import nibabel
import numpy as np
import zentra3d

# Title, mode, further arguments, colours, and the values that are black and white (None: those that occur).
PANELS = [
    ("maximum", "max", {}, "gray", (0, 255)),
    ("surface of 50 and more", "surface", {"window": (50, 256)}, "gray", (0, 1)),
    ("blend, transparency 0.9", "blend", {"extra": 0.9}, "magma", (0, 160)),
    ("sum", "sum", {}, "viridis", (None, None)),
]


def main(scan, figure):
    voxels = np.asarray(nibabel.load(scan).dataobj)
    if voxels.dtype != np.uint8:
        voxels = zentra3d.to_bytes(voxels)
    drawing, axes = plt.subplots(1, 4, figsize=(9.6, 2.9), layout="constrained")
    with zentra3d.Volume(voxels.T) as volume:  # (X, Y, Z) to (Z, Y, X)
        for axis, (title, mode, options, colours, (black, white)) in zip(axes, PANELS):
            picture = volume.project((-110, 0, 35), mode, mirror=True, nan=True, **options)[..., 0]
            shown = axis.imshow(picture, cmap=colours, vmin=black, vmax=white)
            drawing.colorbar(shown, ax=axis, location="bottom", shrink=0.8)
            axis.set_title(title, fontsize=9)
            axis.set_axis_off()
    drawing.savefig(figure, dpi=100, bbox_inches="tight")


if __name__ == "__main__":
    main(*sys.argv[1:])
