"""How the package finds the library, and what it says where it does not; its versions; the head."""

import os
import pathlib
import re
import shutil
import subprocess
import sys

import nibabel
import numpy as np
import pytest
import zentra3d

PACKAGE = pathlib.Path(zentra3d.__file__).parent
HEAD = pathlib.Path("/usr/share/mricron/templates/ch2.nii.gz")
VARIABLE = "ZENTRA3D_LIBRARY"
RENDER = "import numpy, zentra3d; print(zentra3d.project(numpy.full((2, 2, 2), 7, numpy.uint8)).max())"


def run(folder, program=RENDER, **environment):
    clean = {name: value for name, value in os.environ.items() if name not in (VARIABLE, "PYTHONPATH")}
    return subprocess.run([sys.executable, "-B", "-c", program], cwd=folder, env={**clean, **environment}, text=True,
                          capture_output=True, check=False)


@pytest.fixture
def elsewhere(tmp_path):
    """bindings/python in an archive, without a library."""
    shutil.copytree(PACKAGE, tmp_path / "bindings" / "python" / "zentra3d")
    return tmp_path


@pytest.mark.parametrize("place", ["bindings/python/zentra3d", "bindings/python", "lib"])
def test_it_lies_beside_the_package_or_in_the_archive(elsewhere, place):
    (elsewhere / place).mkdir(exist_ok=True)
    shutil.copy(os.environ[VARIABLE], elsewhere / place / "libzentra3drendering.so.1")

    assert run(elsewhere / "bindings" / "python").stdout == "7.0\n"


def test_it_is_where_the_system_looks(elsewhere, tmp_path):
    shutil.copy(os.environ[VARIABLE], tmp_path / "libzentra3drendering.so.1")

    assert run(elsewhere / "bindings" / "python", LD_LIBRARY_PATH=str(tmp_path)).stdout == "7.0\n"


def test_a_package_near_the_root_lies_in_no_archive(monkeypatch):
    monkeypatch.delenv(VARIABLE)
    monkeypatch.setattr(zentra3d._library, "__file__", "/zentra3d/_library.py")
    assert list(zentra3d._library._places()) == [zentra3d._library.FILE_NAME]


@pytest.mark.parametrize("name", ["libzentra3drendering.so.1", "Zentra3DRendering.dll"])
def test_a_library_in_the_package_is_installed_with_it(name):
    project = (PACKAGE.parent / "pyproject.toml").read_text(encoding="utf-8")
    assert f'"{name}"' in re.search(r"^\[tool.setuptools.package-data\]\nzentra3d = (.*)$", project, re.MULTILINE).group(1)


def test_what_was_tried_is_said(elsewhere):
    folder = elsewhere / "bindings" / "python"
    assert "environment variable ZENTRA3D_LIBRARY. Tried:\n  libzentra3drendering.so.1: " in run(folder).stderr
    (folder / "damaged.so").write_bytes(b"\x7fELF and nothing else")
    assert "damaged.so: " in run(folder, **{VARIABLE: str(folder / "damaged.so")}).stderr


def test_the_library_stays_out_of_everybody_elses_way():
    """Loaded for itself alone: nothing of it is found by its name in the process."""
    result = run(PACKAGE.parent, "import ctypes, zentra3d; print(hasattr(ctypes.CDLL(None), 'GlobalFree'))",
                 **{VARIABLE: os.environ[VARIABLE]})
    assert result.stdout == "False\n"


# What is Windows' own, stood in for: ways to load a DLL and to be called back, the name of its code page.
ON_WINDOWS = """
import codecs, ctypes, os, sys
import numpy
sys.platform = "win32"
ctypes.WinDLL = lambda name: ctypes.CDLL(os.environ["ZENTRA3D_LIBRARY"])
ctypes.WINFUNCTYPE = ctypes.CFUNCTYPE
codecs.register(lambda name: codecs.lookup("utf-8") if name == "mbcs" else None)
import zentra3d
numpy.arange(24, dtype=numpy.uint8).tofile("grey.raw")
seen = []
with zentra3d.load_grey("grey.raw", (2, 3, 4), progress=seen.append) as volume:
    print(volume.project().max(), seen[-1], zentra3d._library.FILE_NAME)
"""


def test_the_parts_for_windows_fit_together(tmp_path):
    result = run(tmp_path, ON_WINDOWS, **{VARIABLE: os.environ[VARIABLE], "PYTHONPATH": str(PACKAGE.parent)})
    assert result.stdout == "23.0 100.0 Zentra3DRendering.dll\n", result.stderr


# A code page without the letters of a name, and disks with short names and without.
SHORT_NAMES = """
import codecs, ctypes, os, sys, types
sys.platform = "win32"
def WinDLL(name):
    return types.SimpleNamespace(GetShortPathNameW=short_name) if finished else ctypes.CDLL(os.environ["ZENTRA3D_LIBRARY"])
finished = False
ctypes.WinDLL, ctypes.WINFUNCTYPE = WinDLL, ctypes.CFUNCTYPE
codecs.register(lambda name: codecs.lookup("ascii") if name == "mbcs" else None)
import zentra3d._library
finished = True
name = "gr\u00fcn.raw"
open(name, "wb").close()
for gives in ("GRN~1.RAW", name, ""):
    def short_name(long, buffer, size):
        assert long.value == name
        buffer.value = gives
        return len(gives)
    for given in (name, os.fsencode(name)):
        try:
            print(zentra3d._library.file_name(given))
        except OSError as refused:
            print(refused.strerror)
"""


def test_a_name_outside_the_code_page_is_short_or_refused(tmp_path):
    result = run(tmp_path, SHORT_NAMES, **{VARIABLE: os.environ[VARIABLE], "PYTHONPATH": str(PACKAGE.parent)})
    refusal = "neither the name nor a short name of it is in the system's code page"
    assert result.stdout.splitlines() == ["b'GRN~1.RAW'"] * 2 + [refusal] * 4, result.stderr


def test_one_version():
    project = (PACKAGE.parent / "pyproject.toml").read_text(encoding="utf-8")
    assert f'\nversion = "{zentra3d.__version__}"\n' in project
    lists = (PACKAGE.parents[3] / "CMakeLists.txt").read_text(encoding="utf-8")
    assert f"\n  VERSION {zentra3d.__version__}\n" in lists


def test_the_lines_of_the_readme():
    readme = (PACKAGE.parents[3] / "README.md").read_text(encoding="utf-8")
    lines = re.search(r"^```python\n(.*?)^```$", readme, re.MULTILINE | re.DOTALL).group(1)
    names = {"array": np.full((4, 5, 6), 9, np.uint8)}
    exec(lines, names)
    assert names["picture"].max() == 9 and len(names["turn"]) == 72


def test_the_head_read_with_nibabel():
    image = nibabel.load(HEAD)
    head = np.asarray(image.dataobj).T  # (X, Y, Z) to (Z, Y, X): a view
    assert head.dtype == np.uint8 and head.shape == (181, 217, 181)

    with zentra3d.Volume(head) as volume:
        np.testing.assert_array_equal(volume.project()[..., 0], head.max(axis=0)[::-1])
        np.testing.assert_array_equal(volume.project(mode="sum")[..., 0], head.sum(axis=0, dtype=np.float64)[::-1])
        oblique = volume.project((30, 40, 50), nan=True)
    assert oblique.shape == (325, 332, 3) and np.nanmax(oblique) == head.max()
