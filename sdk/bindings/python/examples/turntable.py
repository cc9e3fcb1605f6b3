"""Turns a scan once around and writes the animation (GIF, or what else Pillow knows by its suffix).

Usage: turntable.py SCAN.nii.gz ANIMATION.gif [FRAMES [HEIGHT]]        (nibabel, pillow)
"""

import sys

import nibabel
import numpy as np
import zentra3d
from PIL import Image


def frames_of(volume, count, height):
    """Pictures of one size: turned about z in the volume, then tipped so that z is up in the view."""
    pictures = [volume.project((-90, 0, 360 * index / count), "surface", window=(50, 256), mirror=True)
                for index in range(count)]
    tallest, widest = (max(picture.shape[axis] for picture in pictures) for axis in (0, 1))
    for picture in pictures:
        shades = np.clip(255 * picture[..., 0], 0, 255).astype(np.uint8)
        frame = Image.new("L", (widest, tallest))
        frame.paste(Image.fromarray(shades), ((widest - shades.shape[1]) // 2, (tallest - shades.shape[0]) // 2))
        yield frame.resize((round(widest * height / tallest), height), Image.LANCZOS)


def main(scan, animation, count="36", height="240"):
    voxels = np.asarray(nibabel.load(scan).dataobj)
    if voxels.dtype != np.uint8:
        voxels = zentra3d.to_bytes(voxels)
    with zentra3d.Volume(voxels.T) as volume:  # (X, Y, Z) to (Z, Y, X)
        first, *others = (frame.quantize(16, dither=Image.Dither.NONE) for frame in frames_of(volume, int(count), int(height)))
    first.save(animation, save_all=True, append_images=others, duration=2400 // int(count), loop=0, optimize=True)


if __name__ == "__main__":
    main(*sys.argv[1:])
