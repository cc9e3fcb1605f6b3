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


# A file is loaded and rendered as on Windows.
ON_WINDOWS = """
import windows, numpy, zentra3d
numpy.arange(24, dtype=numpy.uint8).tofile("grey.raw")
seen = []
with zentra3d.load_grey("grey.raw", (2, 3, 4), progress=seen.append) as volume:
    print(volume.project().max(), seen[-1], zentra3d._library.FILE_NAME, windows.open_files)
"""


def on_windows(folder, program, **environment):
    """Runs a program with windows.py, which stands in for what is Windows' own."""
    paths = os.pathsep.join((str(PACKAGE.parent), str(pathlib.Path(__file__).parent)))
    return run(folder, program, **{VARIABLE: os.environ[VARIABLE], "PYTHONPATH": paths}, **environment)


def test_the_parts_for_windows_fit_together(tmp_path):
    result = on_windows(tmp_path, ON_WINDOWS)
    assert result.stdout == "23.0 100.0 Zentra3DRendering.dll 0\n", result.stderr


# What the library is given of names, and what is said where it could not open them.
NAMES = """
import windows, os
import zentra3d._library
for name in {names}:
    open(name, "wb").close()
    for given in (name, os.fsencode(name)):
        try:
            print(zentra3d._library.file_name(given))
        except OSError as refused:
            print(refused.strerror)
"""


@pytest.mark.parametrize("shortened, says", [
    ("GRN~1.RAW", "b'GRN~1.RAW'"),
    ("gr\u00fcn.raw", "neither the name nor a short name of it is in the system's code page"),
    ("", "neither the name nor a short name of it is in the system's code page")])
def test_a_name_outside_the_code_page_is_short_or_refused(tmp_path, shortened, says):
    (tmp_path / "GRN~1.RAW").touch()
    result = on_windows(tmp_path, NAMES.format(names=["gr\u00fcn.raw"]), CODE_PAGE="ascii", SHORT_NAME=shortened)
    assert result.stdout.splitlines() == [says] * 2, result.stderr


def test_a_path_that_is_too_long_for_the_library_is_short_or_refused(tmp_path):
    folder = tmp_path / ("a" * 200) / ("b" * 200)
    folder.mkdir(parents=True)
    (tmp_path / "A~1").touch()
    program = NAMES.format(names=[str(folder / "long.raw")])
    assert on_windows(tmp_path, program, SHORT_NAME="A~1").stdout.splitlines() == ["b'A~1'"] * 2
    assert on_windows(tmp_path, program, SHORT_NAME="").stdout.splitlines() == ["error 3"] * 2


def test_a_file_that_others_may_write_to_is_refused_as_the_library_would(tmp_path):
    result = on_windows(tmp_path, NAMES.format(names=["free.raw", "held.raw"]), HELD_FOR_WRITING="held.raw")
    assert result.stdout.splitlines() == ["b'free.raw'"] * 2 + ["error 32"] * 2, result.stderr


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
