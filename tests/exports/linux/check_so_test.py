#!/usr/bin/env python3
"""Tests that check_so.py sees what it looks for, in libraries that are wrong in one way each.

Usage: check_so_test.py LIBRARY DEFINITION VERSION COMPILER"""

import pathlib
import subprocess
import sys
import tempfile
import unittest

HERE = pathlib.Path(__file__).resolve().parent
sys.path.insert(0, str(HERE))
import check_so  # noqa: E402

LIBRARY, DEFINITION, VERSION, COMPILER = sys.argv[1:]
del sys.argv[1:]
NAMES = sorted(check_so.defined_names(pathlib.Path(DEFINITION).read_text(encoding="ascii")) | check_so.PICTURE_RELEASE)
SOUND = ("-Wl,-Bsymbolic", "-Wl,-z,now", "-Wl,-z,relro", "-Wl,-z,noexecstack", "-Wl,--build-id",
         f"-Wl,-soname,libzentra3drendering.so.{VERSION.split('.')[0]}")


class CheckSo(unittest.TestCase):
    def setUp(self):
        scratch = tempfile.TemporaryDirectory()
        self.addCleanup(scratch.cleanup)
        self.scratch = pathlib.Path(scratch.name)

    def build(self, names=None, more="", options=SOUND, node="ZENTRA3DRENDERING_1", others="local: *;"):
        """A library of functions that do nothing but take some of the C library."""
        names = NAMES if names is None else names
        source, script = self.scratch / "a.c", self.scratch / "a.map"
        source.write_text("#include <stdlib.h>\n" + "".join(f"void* {name}(void) {{ return malloc(9); }}\n"
                                                           for name in names) + more)
        script.write_text(f"{node} {{ global: {' '.join(f'{name};' for name in names)} {others} }};\n")
        library = self.scratch / "a.so"
        subprocess.run([COMPILER, "-shared", "-fPIC", source, f"-Wl,--version-script={script}", *options, "-o", library],
                       check=True)
        return library

    def complaints(self, library):
        result = subprocess.run([sys.executable, "-B", HERE / "check_so.py", library, DEFINITION, VERSION], text=True,
                                stdout=subprocess.PIPE, stderr=subprocess.PIPE, check=False)
        self.assertEqual(result.returncode != 0, bool(result.stderr))
        return result.stderr

    def test_the_product_and_a_sound_library(self):
        self.assertEqual(self.complaints(LIBRARY), "")
        self.assertEqual(self.complaints(self.build()), "")

    def test_names(self):
        self.assertIn("GetRotDim is not exported", self.complaints(self.build([name for name in NAMES if name != "GetRotDim"])))
        self.assertIn("Helper is exported", self.complaints(self.build(NAMES + ["Helper"])))
        self.assertIn("has the version OTHER", self.complaints(self.build(node="OTHER")))

    def test_references_that_the_process_decides(self):
        calls = "void* Call(void) { return GetRotDim(); }\n"
        without = tuple(option for option in SOUND if "symbolic" not in option)
        self.assertIn("GetRotDim is looked up in the process", self.complaints(self.build(more=calls, options=without)))
        self.assertNotIn("looked up", self.complaints(self.build(more=calls)))
        self.assertIn("somebody is taken from the process",
                      self.complaints(self.build(more="void somebody(void); void Call(void) { somebody(); }\n")))
        self.assertIn("fstat asks for GLIBC_2.33", self.complaints(
            self.build(more="#include <sys/stat.h>\nint Call(struct stat* to) { return fstat(1, to); }\n")))

    def test_what_a_loader_is_told(self):
        for option, instead, complaint in [
                ("-Wl,-z,now", "-Wl,-z,lazy", "not found at load"), ("-Wl,-z,relro", "-Wl,-z,norelro", "stay writable"),
                ("-Wl,-z,noexecstack", "-Wl,-z,execstack", "stack is executable"),
                ("-Wl,--build-id", "-Wl,--build-id=none", "no build id"), (SOUND[-1], "-Wl,-soname,a.so", "named"),
                ("-Wl,-Bsymbolic", "-Wl,-rpath,/tmp", "DT_R")]:
            options = tuple(instead if each == option else each for each in SOUND)
            self.assertIn(complaint, self.complaints(self.build(options=options)))

    def test_what_every_host_would_pay_for(self):
        self.assertIn("thread-local", self.complaints(self.build(more="__thread int a; int* Get(void) { return &a; }\n")))
        self.assertIn("libz.so.1 is needed", self.complaints(self.build(
            options=(*SOUND, "-Wl,--no-as-needed", "-lz"))))


unittest.main()
