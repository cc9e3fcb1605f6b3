#!/usr/bin/env python3
"""Builds the DLL from a copy of the sources in another folder and compares it byte by byte with the one at hand.

Usage: check_reproducible.py CMAKE SOURCE_FOLDER DLL SCRATCH_FOLDER BUILD_TYPE TOOLCHAIN_FILE
The second build differs in the paths of sources and build folder (their lengths, a space, where one is relative
to the other), in locale, time zone and time.
"""

import os
import shutil
import subprocess
import sys

NOT_SOURCES = {"build", ".git", ".cache"}


def copy_sources(source, target):
    shutil.copytree(source, target, ignore=lambda folder, names: NOT_SOURCES & set(names)
                    if os.path.samefile(folder, source) else set())


def build(cmake, source, build_folder, build_type, toolchain_name):
    """The path of the built DLL."""
    settings = {**os.environ, "TZ": "Asia/Tokyo", "LC_ALL": "C.UTF-8"}
    toolchain = os.path.join(source, "cmake", toolchain_name)
    for command in ([cmake, "-S", source, "-B", build_folder, "-G", "Ninja", "--toolchain", toolchain,
                     f"-DCMAKE_BUILD_TYPE={build_type}"],
                    [cmake, "--build", build_folder, "--target", "Zentra3DRendering"]):
        result = subprocess.run(command, env=settings, text=True, stdin=subprocess.DEVNULL,
                                stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
        if result.returncode != 0:
            sys.exit(f"{' '.join(command)} failed:\n{result.stdout}")
    return os.path.join(build_folder, "bin", "Zentra3DRendering.dll")


def read(path):
    with open(path, "rb") as file:
        return file.read()


def describe_difference(first, second):
    """None for equal bytes, else where they differ."""
    if first == second:
        return None
    if len(first) != len(second):
        return f"{len(first)} bytes and {len(second)} bytes"
    positions = [index for index, (a, b) in enumerate(zip(first, second)) if a != b]
    return f"{len(positions)} bytes differ, the first at offset {positions[0]:#x}"


def main():
    cmake, source, dll, scratch, build_type, toolchain = sys.argv[1:]
    copy = os.path.join(scratch, "a copy of the sources")
    shutil.rmtree(scratch, ignore_errors=True)
    copy_sources(source, copy)
    rebuilt = build(cmake, copy, os.path.join(scratch, "elsewhere"), build_type, os.path.basename(toolchain))

    failed = False
    for suffix in ("", ".debug"):
        difference = describe_difference(read(dll + suffix), read(rebuilt + suffix))
        print(f"{dll}{suffix}: {difference or 'identical'}")
        failed = failed or difference is not None
    if not failed:
        shutil.rmtree(scratch)
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
