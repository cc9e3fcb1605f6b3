#!/usr/bin/env python3
"""Installs the library for Linux into an empty folder, moves that, and builds and runs the C sample from there: by CMake, by
pkg-config, and by the library's name alone.

Usage: install_test.py BUILD_FOLDER SOURCE_ROOT LIBRARY_FOLDER COMPILER
LIBRARY_FOLDER is lib, or what the system has in its place."""

import os
import pathlib
import subprocess
import sys
import tempfile
import unittest

BUILD, ROOT = map(pathlib.Path, sys.argv[1:3])
LIBRARY_FOLDER, COMPILER = sys.argv[3:]
del sys.argv[1:]
SAMPLE = ROOT / "sdk" / "samples" / "c" / "sample.c"
CONSUMER = """\
cmake_minimum_required(VERSION 3.16)
project(Consumer C)
find_package(Zentra3DRendering {version} REQUIRED CONFIG)
add_executable(consumer "{sample}")
target_link_libraries(consumer PRIVATE Zentra3DRendering::Zentra3DRendering)
"""


def run(*command, **options):
    return subprocess.run(command, text=True, capture_output=True, check=False, **options)


class Install(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.scratch = tempfile.TemporaryDirectory()
        cls.addClassCleanup(cls.scratch.cleanup)
        folder = pathlib.Path(cls.scratch.name)
        first = folder / "first"
        done = run("cmake", "--install", BUILD, "--prefix", first)
        assert done.returncode == 0, done.stderr
        cls.prefix = folder / "a moved prefix"
        first.rename(cls.prefix)
        cls.libraries = cls.prefix / LIBRARY_FOLDER
        cls.data = folder / "data"
        subprocess.run([sys.executable, "-B", ROOT / "sdk/samples/data/make_data.py", cls.data], check=True)

    def prints_what_every_sample_prints(self, *command, **environment):
        result = run(*command, cwd=self.data, env={**os.environ, **environment})
        self.assertEqual(result.stdout, (ROOT / "sdk/samples/expected.txt").read_text(encoding="ascii"), result.stderr)

    def configure(self, folder, version):
        folder.mkdir()
        (folder / "CMakeLists.txt").write_text(CONSUMER.format(version=version, sample=SAMPLE), encoding="utf-8")
        return run("cmake", "-S", folder, "-B", folder / "build", "-G", "Ninja", "-D", f"CMAKE_PREFIX_PATH={self.prefix}",
                   "-D", f"CMAKE_C_COMPILER={COMPILER}")

    def test_what_lies_there(self):
        found = sorted(path.relative_to(self.prefix).as_posix() for path in self.prefix.rglob("*") if not path.is_dir())
        cmake = [f"{LIBRARY_FOLDER}/cmake/Zentra3DRendering/Zentra3DRendering{name}.cmake"
                 for name in ("Config", "ConfigVersion", "Targets-release", "Targets")]
        links = [path for path in self.libraries.iterdir() if path.is_symlink()]
        self.assertEqual(found[0], "include/Zentra3DRendering.h")
        self.assertEqual(found[1:5], cmake)
        self.assertEqual(found[-1], f"{LIBRARY_FOLDER}/pkgconfig/Zentra3DRendering.pc")
        self.assertEqual((len(found), len(links)), (9, 2))

    def test_by_cmake(self):
        folder = self.prefix.parent / "cmake"
        done = self.configure(folder, "1.0")
        self.assertEqual(done.returncode, 0, done.stderr)
        done = run("cmake", "--build", folder / "build")
        self.assertEqual(done.returncode, 0, done.stdout)
        self.prints_what_every_sample_prints(folder / "build" / "consumer")

    def test_cmake_refuses_a_version_to_come(self):
        self.assertIn('compatible with requested version "2.0"',
                      " ".join(self.configure(self.prefix.parent / "refused", "2.0").stderr.split()))

    def test_by_pkg_config(self):
        program = self.prefix.parent / "pkgconfig"
        # The shell takes the quoting apart that pkg-config puts around the space.
        done = run("sh", "-c", 'eval "set -- $(pkg-config --cflags --libs Zentra3DRendering)"; '
                   f'"{COMPILER}" -std=c89 -Wall -Werror "{SAMPLE}" "$@" -o "{program}"',
                   env={**os.environ, "PKG_CONFIG_LIBDIR": str(self.libraries / "pkgconfig")})
        self.assertEqual(done.returncode, 0, done.stderr)
        self.prints_what_every_sample_prints(program, LD_LIBRARY_PATH=str(self.libraries))

    def test_the_library_is_found_by_its_soname(self):
        self.prints_what_every_sample_prints(
            "/usr/bin/python3", "-B", ROOT / "sdk/bindings/python/sample.py", LD_LIBRARY_PATH=str(self.libraries),
            PYTHONPATH=str(ROOT / "sdk/bindings/python"))


unittest.main()
