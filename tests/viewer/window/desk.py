"""The viewer on a display without a screen: starts it, presses its keys and buttons, and sees what it shows.
Programs come from the environment: VIEW_EXE, ZENTRA_EXE, PROBE_EXE, and CMAKE_FOLDER with the wrappers of Wine."""
import gzip
import json
import os
import pathlib
import re
import subprocess
import tempfile
import time
import unittest

SCREEN = (1280, 900)
PATIENCE = 120  # seconds; the machine may have other work


class Desk:
    """A display and a Wine prefix of its own, for as long as the tests of a file take."""

    def __init__(self):
        reading, writing = os.pipe()
        self.xvfb = subprocess.Popen(
            ["Xvfb", "-displayfd", str(writing), "-screen", "0", f"{SCREEN[0]}x{SCREEN[1]}x24", "-nolisten", "tcp"],
            pass_fds=[writing], stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        os.close(writing)
        with os.fdopen(reading) as pipe:
            self.display = ":" + pipe.readline().strip()
        self.wrappers = pathlib.Path(os.environ["CMAKE_FOLDER"])
        self.environment = dict(os.environ, ZENTRA_DISPLAY=self.display, DISPLAY=self.display,
                                ZENTRA_WINEPREFIX=os.environ["VIEW_WINEPREFIX"])
        self.hold("up")
        # All windows stand in one of the display's, which draws their frames and gives them the keyboard.
        explorer = r"HKCU\Software\Wine\Explorer"
        self.output_of("reg", "add", explorer, "/v", "Desktop", "/d", "view", "/f")
        self.output_of("reg", "add", explorer + r"\Desktops", "/v", "view", "/d", f"{SCREEN[0]}x{SCREEN[1]}", "/f")

    def hold(self, what):
        subprocess.run([self.wrappers / "wine-hold", what], env=self.environment, check=True,
                       stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)

    def close(self):
        self.hold("down")
        self.xvfb.terminate()
        self.xvfb.wait()

    def start(self, *arguments, folder):
        return subprocess.Popen([self.wrappers / "run-wine", *map(str, arguments)], env=self.environment, cwd=folder,
                                stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)

    def output_of(self, *arguments, folder=None):
        # Not through a pipe, which programs that stay would keep open.
        with tempfile.TemporaryFile() as out:
            code = subprocess.run([self.wrappers / "run-wine", *map(str, arguments)], env=self.environment, cwd=folder,
                                  stdin=subprocess.DEVNULL, stdout=out, stderr=subprocess.STDOUT,
                                  timeout=PATIENCE).returncode
            out.seek(0)
            return code, out.read().decode("utf-8")

    def press(self, *arguments):
        subprocess.run(["xdotool", *map(str, arguments)], env=self.environment, check=True, timeout=PATIENCE)

    def pixels(self, left, top, width, height):
        """The screen's bytes there."""
        return subprocess.run(["import", "-window", "root", "-crop", f"{width}x{height}+{left}+{top}", "-depth", "8",
                               "rgb:-"], env=self.environment, check=True, stdout=subprocess.PIPE).stdout


def windows_path(path):
    return "Z:" + str(path).replace("/", "\\")


class ViewerTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.desk = Desk()
        cls.addClassCleanup(cls.desk.close)

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        self.addCleanup(self.stop)

    # The program.

    def start(self, *files):
        self.program = self.desk.start(os.environ["VIEW_EXE"], *map(windows_path, files), folder=self.folder)

    def open(self, *files):
        """Starts with a file, and waits for its picture."""
        self.start(*files)
        self.wait_for(lambda: self.status()[1] != "", "no picture appears")

    def stop(self):
        self.desk.output_of("taskkill", "/f", "/im", "zentra-view.exe")
        self.program.wait(timeout=PATIENCE)

    def zentra(self, *arguments):
        code, text = self.desk.output_of(os.environ["ZENTRA_EXE"], *arguments, folder=self.folder)
        self.assertEqual(code, 0, text)

    def small_head(self, name="head.nhdr"):
        self.zentra("phantom", "-q", "--size", "48x56x48", "-o", name)
        return self.folder / name

    def slow_file(self):
        """A file that takes seconds to load and little room: packed zeros, again and again."""
        part, side = gzip.compress(bytes(1 << 24), 1), 512
        with open(self.folder / "slow.raw.gz", "wb") as file:
            for _ in range(side ** 3 * 8 >> 24):
                file.write(part)
        header = self.folder / "slow.nhdr"
        header.write_text(f"NRRD0004\ntype: double\ndimension: 3\nsizes: {side} {side} {side}\nendian: little\n"
                          "encoding: gzip\ndata file: slow.raw.gz\n")
        return header

    # What it shows.

    def probe(self):
        code, text = self.desk.output_of(os.environ["PROBE_EXE"])
        self.assertEqual(code, 0, text)
        return json.loads(text)

    def runs(self):
        return self.program.poll() is None

    def find(self, **wanted):
        """The first window with these properties, or None."""
        for window in self.probe():
            if all(window.get(key) == value for key, value in wanted.items()):
                return window
        return None

    def status(self):
        """Message, size, time, speed and value."""
        bar = self.find(**{"class": "msctls_statusbar32"})
        return bar["parts"] if bar else [""] * 5

    def title(self):
        return self.find(**{"class": "ZentraView"})["text"]

    def picture(self):
        """The screen's pixels where the picture is, away from its edge."""
        left, top, width, height = self.find(**{"class": "ZentraPicture"})["place"]
        return self.desk.pixels(left + 2, top + 2, width - 4, height - 4)

    def middle(self):
        left, top, width, height = self.find(**{"class": "ZentraPicture"})["place"]
        return left + width // 2, top + height // 2

    def dialog(self):
        """Title and texts of the dialog in front; waits for it."""
        self.wait_for(lambda: self.find(**{"class": "#32770"}), "no dialog appears")
        windows = self.probe()
        return windows[next(i for i, window in enumerate(windows) if window["class"] == "#32770")]["text"], [
            window["text"] for window in windows if window["class"] == "Static"]

    def wait_for(self, condition, complaint):
        deadline = time.monotonic() + PATIENCE
        while not condition():
            self.assertLess(time.monotonic(), deadline, complaint)
            time.sleep(0.1)

    def wait_for_other_picture(self, before):
        self.wait_for(lambda: self.picture() != before, "the picture stays as it is")

    # What the user does.

    def key(self, *names):
        self.desk.press("key", "--delay", "60", *names)

    def click(self, window):
        left, top, width, height = window["place"]
        self.desk.press("mousemove", left + width // 2, top + height // 2, "click", "1")

    def drag(self, right, down, button=1, hold=None):
        x, y = self.middle()
        self.desk.press("mousemove", x, y)
        if hold:
            self.desk.press("keydown", hold)
        self.desk.press("mousedown", button, "mousemove_relative", "--", right // 2, down // 2, "mousemove_relative",
                        "--", right - right // 2, down - down // 2, "mouseup", button)
        if hold:
            self.desk.press("keyup", hold)

    def drop(self, *paths):
        code, text = self.desk.output_of(os.environ["PROBE_EXE"], "drop", *map(windows_path, paths))
        self.assertEqual(code, 0, text)

    def drag_corner(self, right, down):
        """The lower right one of the window, by its frame."""
        left, top, width, height = self.find(**{"class": "ZentraView"})["place"]
        self.desk.press("mousemove", left + width - 2, top + height - 2, "mousedown", 1)
        for part in (0.5, 1):
            self.desk.press("mousemove", left + width - 2 + int(right * part), top + height - 2 + int(down * part))
        self.desk.press("mouseup", 1)

    def answer(self, keys, path):
        """Gives a file dialog, opened by keys, a path."""
        self.key(keys)
        self.dialog()
        self.key("ctrl+a")
        self.desk.press("type", "--delay", "20", windows_path(path))
        self.key("Return")
        self.wait_for(lambda: not self.find(**{"class": "#32770", "text": "Save the picture"})
                      and not self.find(**{"class": "#32770", "text": "Open a volume"})
                      and not self.find(**{"class": "#32770", "text": "Save the values"}), "the dialog stays")

    def save(self, path, keys="ctrl+s"):
        self.answer(keys, path)
        self.wait_for(path.exists, f"{path} does not appear")
        self.wait_for(lambda: self.status()[0].startswith("saved"), "saving does not end")

    def command(self):
        """The words of the command line that the program copies, without the output."""
        self.key("ctrl+shift+c")
        self.wait_for(lambda: self.status()[0] == "command line copied", "nothing is copied")
        line = json.loads(self.desk.output_of(os.environ["PROBE_EXE"], "clipboard")[1]).split("\n")[-1]
        words = [word.strip('"') for word in re.findall(r'"[^"]*"|\S+', line)]
        self.assertEqual(words[:2] + words[-2:], ["zentra", "project", "-o", "picture.png"])
        return words[1:-2]
