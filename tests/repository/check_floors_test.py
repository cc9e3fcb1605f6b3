#!/usr/bin/env python3
"""check_floors.py finds every kind of forbidden include, and lets the allowed ones pass."""

import unittest

from check_floors import MAY_INCLUDE, complaints


def found(path, *lines):
    return list(complaints(path, "\n".join(lines)))


class CheckFloors(unittest.TestCase):
    def expect_complaint(self, path, line, text):
        self.assertEqual(len(found(path, line)), 1, (path, line))
        self.assertIn(text, found(path, line)[0])

    def expect_silence(self, path, *lines):
        self.assertEqual(found(path, *lines), [])

    def test_upwards_is_forbidden(self):
        self.expect_complaint("src/frame/Image2D.cpp", '#include "render/Ray.h"', "frame may not include render")
        self.expect_complaint("src/platform/Heap.h", '#include "frame/Image2D.h"', "platform may not")
        self.expect_complaint("src/volume/Loader.cpp", '#include "compose/Compose.h"', "volume may not")
        self.expect_complaint("src/render/Ray.cpp", '#include "exports/HostCall.h"', "render may not")

    def test_sideways_is_forbidden(self):
        self.expect_complaint("src/render/Ray.cpp", '#include "geometry/Rotation.h"', "render may not")
        self.expect_complaint("src/primitives/Resize.cpp", '#include "frame/Image2D.h"', "primitives may not")
        self.expect_complaint("src/exports/A.cpp", '#include "volume/Loader.h"', "exports may not")

    def test_geometry_and_platform_stand_alone(self):
        for floor in set(MAY_INCLUDE) - {"geometry"}:
            self.expect_complaint("src/geometry/A.cpp", f'#include "{floor}/B.h"', "geometry may not")
        self.expect_silence("src/geometry/A.cpp", '#include "geometry/B.h"', "#include <cmath>")

    def test_downwards_is_allowed(self):
        self.expect_silence("src/exports/A.cpp", '#include "exports/HostCall.h"', '#include "compose/A.h"',
                            '#include "render/A.h"', '#include "geometry/A.h"', '#include "frame/A.h"',
                            '#include "platform/FloatingPoint.h"')
        self.expect_silence("src/compose/A.cpp", '#include "volume/A.h"', '#include "frame/A.h"',
                            '#include "primitives/A.h"', '#include "platform/Heap.h"')

    def test_sub_folders_belong_to_their_floor(self):
        self.expect_silence("src/render/isa/Avx2.cpp", '#include "render/Ray.h"', '#include "render/isa/Table.h"')
        self.expect_complaint("src/render/isa/Avx2.cpp", '#include "compose/A.h"', "render may not")

    def test_everyone_includes_the_public_header(self):
        for floor in MAY_INCLUDE:
            self.expect_silence(f"src/{floor}/A.h", '#include "Zentra3DRendering.h"')

    def test_paths_start_at_src(self):
        self.expect_complaint("src/frame/A.cpp", '#include "Image2D.h"', "from src/")
        self.expect_complaint("src/frame/A.cpp", '#include "frame/../render/Ray.h"', "from src/")
        self.expect_complaint("src/frame/A.cpp", '#include "support/Refusals.h"', "support is no floor")
        self.expect_complaint("src/attic/A.cpp", '#include "frame/A.h"', "attic is no floor")

    def test_the_system_is_behind_the_door(self):
        self.expect_complaint("src/frame/A.cpp", "#include <windows.h>", "Windows side")
        self.expect_complaint("src/platform/Heap.cpp", "#include <Windows.h>", "Windows side")
        self.expect_complaint("src/platform/GlobalMemoryPosix.cpp", "#include <windows.h>", "Windows side")
        self.expect_complaint("tests/frame/Image2DTest.cpp", "#include <windows.h>", "Windows side")
        self.expect_complaint("include/Zentra3DRendering.h", "#include <windows.h>", "Windows side")
        self.expect_complaint("src/frame/A.cpp", "#include <sys/mman.h>", "POSIX side")
        self.expect_complaint("src/platform/FileWin32.cpp", "#include <unistd.h>", "POSIX side")

    def test_the_door_and_hosts_see_the_system(self):
        for path in ("src/platform/FileWin32.cpp", "tools/Main.cpp", "tests/exports/Library.cpp",
                     "examples/viewer.c", "bench/Timer.cpp"):
            self.expect_silence(path, "#include <windows.h>")
        self.expect_silence("src/platform/FilePosix.cpp", "#include <fcntl.h>", "#include <sys/stat.h>")

    def test_any_spelling_is_read(self):
        self.expect_complaint("src/frame/A.cpp", '  #  include"render/Ray.h" // why', "frame may not")
        self.expect_complaint("src/frame/A.cpp", "#include Z3D_HEADER", "macro")
        self.assertIn("A.cpp:3:", found("src/frame/A.cpp", "", "// text", '#include "render/Ray.h"')[0])


if __name__ == "__main__":
    unittest.main()
