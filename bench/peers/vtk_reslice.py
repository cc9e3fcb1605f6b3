"""VTK's vtkImageReslice: a slab as thick as the turned volume, reduced along its depth."""

from __future__ import annotations

import numpy
from vtkmodules.util.numpy_support import vtk_to_numpy
from vtkmodules.vtkCommonCore import VTK_FLOAT
from vtkmodules.vtkCommonMath import vtkMatrix4x4
from vtkmodules.vtkImagingCore import vtkImageReslice

from geometry import View, Views
from inputs import SIZE, Inputs
from jobs import Array, Attempt, Job, Likeness, Mode, Projection
from timing import seconds_of
from vtk_volume import image_of

NOTE = "gives bytes (sums: floats); takes what lies beside the volume for a grey value; no window"
SLABS = {Mode.MAXIMUM: "Max", Mode.MINIMUM: "Min", Mode.SUM: "Sum"}
# What lies beside the volume: it must not win.
OUTSIDE = {Mode.MAXIMUM: 0, Mode.MINIMUM: 255, Mode.SUM: 0}


class VtkReslice:
    """Nearest voxels. Every call starts from the bytes; nothing can be kept."""

    def __init__(self, inputs: Inputs, views: Views) -> None:
        self._images = {channels: image_of(inputs.volume(channels)) for channels in (1, 3)}
        self._views = views

    def attempts(self, job: Job) -> list[Attempt]:
        if not isinstance(job, Projection) or job.mode not in SLABS:
            return []
        reslice = self._filter(job, self._views(job))

        def project() -> vtkImageReslice:
            reslice.Modified()
            reslice.Update()
            return reslice

        return [Attempt("VTK reslice", lambda: seconds_of(project), lambda: _picture_of(project()), Likeness.ALIKE,
                        note=NOTE)]

    def _filter(self, job: Projection, view: View) -> vtkImageReslice:
        sides = numpy.array([view.width, view.height, view.depth])
        axes = vtkMatrix4x4()
        for row in range(3):
            for column in range(3):
                axes.SetElement(row, column, view.rotation[column, row])
            axes.SetElement(row, 3, (SIZE[row] - 1) / 2)
        reslice = vtkImageReslice()
        reslice.SetNumberOfThreads(1)
        reslice.SetInputData(self._images[job.channels])
        reslice.SetResliceAxes(axes)
        reslice.SetOutputDimensionality(2)
        reslice.SetOutputExtent(0, view.width - 1, 0, view.height - 1, 0, 0)
        reslice.SetOutputOrigin(*(-(sides[:2] - 1) / 2), 0)
        reslice.SetOutputSpacing(1, 1, 1)
        reslice.SetInterpolationModeToNearestNeighbor()
        getattr(reslice, f"SetSlabModeTo{SLABS[job.mode]}")()
        reslice.SetSlabNumberOfSlices(view.depth)
        reslice.SetBackgroundLevel(OUTSIDE[job.mode])
        if job.mode == Mode.SUM:
            reslice.SetOutputScalarType(VTK_FLOAT)
        return reslice


def _picture_of(reslice: vtkImageReslice) -> Array:
    output = reslice.GetOutput()
    width, height, _ = output.GetDimensions()
    picture: Array = vtk_to_numpy(output.GetPointData().GetScalars()).reshape(height, width, -1)[::-1]
    return picture[..., 0] if picture.shape[2] == 1 else picture
