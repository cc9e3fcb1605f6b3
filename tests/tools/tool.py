"""Runs zentra.exe in a folder of its own and reads what it wrote. Programs come from the environment:
ZENTRA_EXE, HOST_EXE, RUN_WINE, the wrapper that runs them, and ZENTRA_BITS, the width of their addresses."""
import io
import os
import pathlib
import signal
import struct
import subprocess
import tempfile
import time
import unittest

import PIL.Image

# Bits of the floats that mark a pixel without a contribution.
NOTHING = 0xFF7FFFFF
NOTHING_IN_MIN = 0x7F7FFFFF

# The plainest thing to ask for.
MAX = ("--mode", "max", "-o", "a.png")


class ToolTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)

    def start(self, *arguments, program="ZENTRA_EXE", stdout=subprocess.PIPE, stderr=subprocess.PIPE):
        return subprocess.Popen([os.environ["RUN_WINE"], os.environ[program], *map(str, arguments)],
                                cwd=self.folder, stdin=subprocess.DEVNULL, stdout=stdout, stderr=stderr)

    def run_tool(self, *arguments, program="ZENTRA_EXE"):
        """Exit code, standard output and standard error."""
        # Not through pipes: the first window of a Wine prefix starts its desktop, which would keep them open.
        with tempfile.TemporaryFile() as out, tempfile.TemporaryFile() as err:
            code = self.start(*arguments, program=program, stdout=out, stderr=err).wait(timeout=120)
            return code, _text_of(out), _text_of(err)

    def project(self, *arguments):
        """Projects quietly and expects success without a word."""
        self.assertEqual(self.run_tool("project", "--quiet", *arguments), (0, "", ""))

    def expect_failure(self, code, sentence, *arguments):
        """One sentence on the error stream, nothing else, and no file left behind."""
        before = sorted(self.folder.iterdir())
        self.assertEqual(self.run_tool(*arguments), (code, "", f"zentra: {sentence}\n"))
        self.assertEqual(sorted(self.folder.iterdir()), before)

    def refuse_project(self, code, sentence, *arguments):
        self.expect_failure(code, sentence, "project", *arguments)

    def write(self, name, data):
        (self.folder / name).write_bytes(bytes(data))
        return name

    def read(self, name):
        return (self.folder / name).read_bytes()

    def names(self, pattern):
        return sorted(path.name for path in self.folder.glob(pattern))

    def grey_volume(self, name="grey.raw"):
        """4x3x2 voxels: 10 y + x in slice 0; slice 1 is empty but for 100 at x = 1, y = 1."""
        slice0 = [10 * y + x for y in range(3) for x in range(4)]
        slice1 = [100 if (x, y) == (1, 1) else 0 for y in range(3) for x in range(4)]
        self.write(name, slice0 + slice1)
        return [name, "--size", "4x3x2", "--type", "uint8"]

    def colour_volume(self, name="colour.raw"):
        """2x2x2 voxels: (200, 10, 10) in slice 0, (10, 200, 10) behind it in slice 1."""
        self.write(name, [200, 10, 10] * 4 + [10, 200, 10] * 4)
        return [name, "--size", "2x2x2", "--type", "rgb8"]

    def wait_for(self, name):
        deadline = time.monotonic() + 60
        while not (self.folder / name).exists():
            self.assertLess(time.monotonic(), deadline, f"{name} does not appear")
            time.sleep(0.02)

    def interrupt(self, process):
        """Wine passes the signal on as Ctrl+C."""
        process.send_signal(signal.SIGINT)
        out, err = process.communicate(timeout=60)
        return process.returncode, out.decode(), err.decode()


def _text_of(file):
    file.seek(0)
    return file.read().decode("utf-8").replace("\r\n", "\n")


def _picture(picture):
    """Width, height and rows of pixels: a number each when grey, a tuple each in colour."""
    assert picture.format == "PNG" and picture.mode in ("L", "RGB"), (picture.format, picture.mode)
    pixels = list(picture.getdata())
    width, height = picture.size
    return width, height, [pixels[y * width:(y + 1) * width] for y in range(height)]


def png(data):
    """Width, height and rows of pixels; of an animated picture, of its first frame."""
    return _picture(PIL.Image.open(io.BytesIO(data)))


def apng(data):
    """How often it plays, the milliseconds of each picture, and the pictures."""
    animation = PIL.Image.open(io.BytesIO(data))
    delays, pictures = [], []
    for frame in range(animation.n_frames):
        animation.seek(frame)
        delays.append(animation.info["duration"])
        pictures.append(_picture(animation))
    return animation.info["loop"], delays, pictures


def bits(*values):
    """The bits of floats."""
    return [struct.unpack("<I", struct.pack("<f", value))[0] for value in values]


def float_bits(data):
    return list(struct.unpack(f"<{len(data) // 4}I", data))
