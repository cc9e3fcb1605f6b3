"""VTK's vtkFixedPointVolumeRayCastMapper, the volume renderer that it has for systems without a graphics card."""

from __future__ import annotations

import ctypes
import functools

import numpy
import vtkmodules.vtkRenderingOpenGL2  # noqa: F401  (gives windows)
import vtkmodules.vtkRenderingVolumeOpenGL2  # noqa: F401  (without it there is no mapper)
from vtkmodules.vtkCommonDataModel import vtkPiecewiseFunction
from vtkmodules.vtkCommonMath import vtkMatrix4x4
from vtkmodules.vtkRenderingCore import (vtkColorTransferFunction, vtkLight, vtkRenderer,
                                         vtkRenderWindow, vtkVolume, vtkVolumeProperty)
from vtkmodules.vtkRenderingVolume import vtkFixedPointVolumeRayCastMapper

from geometry import View, Views
from inputs import SIZE, Bytes, Inputs
from jobs import OBLIQUE, Array, Attempt, Job, Likeness, Mode, Projection
from timing import seconds_of
from vtk_volume import image_of

NOTE = "15 bits a channel; not brought to a window; rays end at an opacity of 0.99"
BLENDS = {Mode.MAXIMUM: "MaximumIntensity", Mode.MINIMUM: "MinimumIntensity"}
FULL = 32767
# From what the view looks at to where it looks from, in voxels.
FAR = 1000


def _steps(low: float, high: float) -> vtkPiecewiseFunction:
    """Opaque for the grey values from low to high, and for no others."""
    function = vtkPiecewiseFunction()
    for value in range(256):
        function.AddPoint(value, float(low <= value <= high))
    return function


def _ramp(top: float) -> vtkPiecewiseFunction:
    function = vtkPiecewiseFunction()
    function.AddPoint(0, 0)
    function.AddPoint(255, top)
    return function


def _property_of(job: Projection) -> vtkVolumeProperty:
    look = vtkVolumeProperty()
    look.SetInterpolationTypeToNearest()
    look.SetIndependentComponents(True)
    for channel in range(job.channels):
        opacity = _steps(0, 255)
        if job.mode == Mode.BLEND:
            opacity = _ramp(1 - job.extra)
        elif job.mode in (Mode.SURFACE, Mode.FIRST_HIT):
            opacity = _steps(job.low + (job.mode == Mode.SURFACE), job.high)
        look.SetScalarOpacity(channel, opacity)
        if job.channels == 1:
            look.SetColor(_steps(0, 255) if job.mode == Mode.SURFACE else _ramp(1))
            continue
        colour = vtkColorTransferFunction()
        colour.AddRGBPoint(0, 0, 0, 0)
        colour.AddRGBPoint(255, *(float(channel == index) for index in range(3)))
        look.SetColor(channel, colour)
    if job.mode == Mode.SURFACE:
        look.ShadeOn()
        look.SetAmbient(0)
        look.SetDiffuse(1)
        look.SetSpecular(0)
    return look


class _Scene:
    """A volume and a camera. Nothing is brought to a window: the steps of a mapper are called one by one."""

    def __init__(self, job: Projection, voxels: Bytes, view: View) -> None:
        self._mapper = vtkFixedPointVolumeRayCastMapper()
        self._mapper.SetInputData(image_of(voxels))
        self._mapper.SetNumberOfThreads(1)
        self._mapper.AutoAdjustSampleDistancesOff()
        self._mapper.LockSampleDistanceToInputSpacingOff()
        self._mapper.SetSampleDistance(1)
        self._mapper.SetImageSampleDistance(1)
        self._mapper.IntermixIntersectingGeometryOff()
        getattr(self._mapper, f"SetBlendModeTo{BLENDS.get(job.mode, 'Composite')}")()
        self._volume = vtkVolume()
        self._volume.SetMapper(self._mapper)
        self._volume.SetProperty(_property_of(job))
        self._volume.SetUserMatrix(_placement(view))
        self._window = vtkRenderWindow()
        self._window.SetOffScreenRendering(True)
        self._window.SetSize(view.width, view.height)
        self._renderer = vtkRenderer()
        self._window.AddRenderer(self._renderer)
        self._set_camera(view)
        self._view = view
        self._channels = job.channels

    def render(self) -> _Scene:
        self._mapper.PerImageInitialization(self._renderer, self._volume, 0, [0.0] * 3, [0.0] * 3, [0] * 6)
        self._mapper.PerVolumeInitialization(self._renderer, self._volume)
        self._mapper.PerSubVolumeInitialization(self._renderer, self._volume, 0)
        self._mapper.RenderSubVolume()
        return self

    def picture(self) -> Array:
        """Of the last rendering. VTK renders no more than the rectangle around the volume."""
        image = self._mapper.GetRayCastImage()
        row, rows = image.GetImageMemorySize()
        width, height = image.GetImageInUseSize()
        left, bottom = image.GetImageOrigin()
        address = int(image.GetImage().split("_")[1], 16)
        values = numpy.frombuffer(ctypes.string_at(address, 8 * row * rows), numpy.uint16).reshape(rows, row, 4)
        picture = numpy.zeros((self._view.height, self._view.width, 3), numpy.float32)
        picture[bottom:bottom + height, left:left + width] = values[:height, :width, :3]
        picture = picture[::-1] * (255 / FULL)
        return picture if self._channels == 3 else picture[..., 0]

    def _set_camera(self, view: View) -> None:
        """From the front, in voxels. The head light shines along the rays."""
        camera = self._renderer.GetActiveCamera()
        camera.ParallelProjectionOn()
        camera.SetParallelScale(view.height / 2)
        camera.SetPosition(0, 0, FAR)
        camera.SetFocalPoint(0, 0, 0)
        camera.SetViewUp(0, 1, 0)
        camera.SetClippingRange(1, 2 * FAR)
        light = vtkLight()
        light.SetPosition(0, 0, FAR)
        light.SetFocalPoint(0, 0, 0)
        self._renderer.AddLight(light)


def _placement(view: View) -> vtkMatrix4x4:
    """The centre of the volume comes to the origin. Away is a negative z here."""
    turn = numpy.diag([1, 1, -1]) @ view.rotation
    shift = -turn @ ((numpy.array(SIZE) - 1) / 2)
    matrix = vtkMatrix4x4()
    for row in range(3):
        for column in range(3):
            matrix.SetElement(row, column, turn[row, column])
        matrix.SetElement(row, 3, shift[row])
    return matrix


class VtkRayCast:
    """Cold, the mapper and its tables are made anew; warm, they are kept, and only the camera's part is done again."""

    def __init__(self, inputs: Inputs, views: Views) -> None:
        self._inputs = inputs
        self._views = views

    def attempts(self, job: Job) -> list[Attempt]:
        if not isinstance(job, Projection) or job.mode == Mode.SUM or job.angles != OBLIQUE:
            return []
        make = functools.partial(_Scene, job, self._inputs.volume(job.channels), self._views(job))
        kept = make()
        return [Attempt("VTK ray cast", lambda: seconds_of(lambda: make().render()), lambda: make().render().picture(),
                        Likeness.of_mode(job.mode), note=NOTE),
                Attempt("VTK ray cast", lambda: seconds_of(kept.render), lambda: kept.render().picture(),
                        Likeness.of_mode(job.mode), keeps=True, note=NOTE)]
