"""The head as VTK sees it."""

from __future__ import annotations

from vtkmodules.util.numpy_support import numpy_to_vtk
from vtkmodules.vtkCommonDataModel import vtkImageData

from inputs import SIZE, Bytes


def image_of(voxels: Bytes) -> vtkImageData:
    """The same bytes, not copied: they have to outlive it."""
    channels = voxels.size // (SIZE[0] * SIZE[1] * SIZE[2])
    image = vtkImageData()
    image.SetDimensions(*SIZE)
    image.GetPointData().SetScalars(numpy_to_vtk(voxels.reshape(-1, channels), deep=False))
    return image
