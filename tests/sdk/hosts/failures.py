"""What a host in Python sees of failures. Run in the folder samples/data. Prints the checks that fail."""

import array
import math
import pathlib
import resource
import unittest

import zentra3d
from zentra3d import Mode, Volume, rotation

FILES = ("red.raw", "green.raw", "blue.raw")
SIZE = (48, 40, 32)


class Failures(unittest.TestCase):
    def grey(self):
        volume = Volume(pathlib.Path("grey.raw").read_bytes(), *SIZE)
        self.addCleanup(volume.close)
        return volume

    def assert_no_growth(self, times, body):
        for _ in range(times):
            body()
        before = resource.getrusage(resource.RUSAGE_SELF).ru_maxrss
        for _ in range(times):
            body()
        self.assertLess(resource.getrusage(resource.RUSAGE_SELF).ru_maxrss - before, 8000)

    def test_a_file_that_is_not_there(self):
        with self.assertRaises(FileNotFoundError):
            Volume.load("red.raw", "none.raw", "blue.raw", *SIZE)

    def test_wrong_arguments(self):
        for wrong in (lambda: Volume.load(None, None, None, *SIZE), lambda: Volume.load(*FILES, 48, 40, 0),
                      lambda: Volume(bytes(7), *SIZE), lambda: Volume(bytes(2), 1, 1, 1, 2),
                      lambda: rotation(1, 2, 3, (0, 1)), lambda: self.grey().project(rotation(1, 2, 3), 7),
                      lambda: self.grey().project([math.nan] * 9)):
            with self.assertRaises(ValueError):
                wrong()

    def test_progress_cancels_by_true(self):
        with self.assertRaises(zentra3d.Cancelled):
            Volume.load(*FILES, *SIZE, progress=lambda percent: percent > 90)

    def test_what_progress_raises_is_raised_and_nothing_stays(self):
        mine = KeyError("mine")

        def progress(percent):
            if percent > 90:
                raise mine

        def load():
            with self.assertRaises(KeyError) as caught:
                Volume.load(*FILES, *SIZE, progress=progress)
            self.assertIs(caught.exception, mine)

        self.assert_no_growth(200, load)

    def test_pictures_are_released(self):
        volume = self.grey()
        self.assert_no_growth(400, lambda: volume.project(rotation(30, 40, 50)))

    def test_one_grey_file_and_the_end_of_its_progress(self):
        seen = []
        with Volume.load("grey.raw", "grey.raw", "grey.raw", *SIZE, progress=seen.append) as volume:
            self.assertEqual((volume.size, volume.display_range, seen[-1]), (SIZE, (0, 255), 100))

    def test_pixels_without_numpy(self):
        numpy, zentra3d.numpy = zentra3d.numpy, None
        try:
            width, height, pixels = self.grey().project(rotation(0, 0, 0), Mode.MAXIMUM, low=1)
        finally:
            zentra3d.numpy = numpy
        self.assertIsInstance(pixels, array.array)
        self.assertEqual((width, height, len(pixels), pixels[0]), (48, 40, 48 * 40 * 3, zentra3d.NO_VALUE))

    def test_a_closed_volume(self):
        volume = self.grey()
        volume.close()
        volume.close()
        with self.assertRaises(ValueError):
            volume.project(rotation(1, 2, 3))


unittest.main(verbosity=0)
