#!/usr/bin/env python3
"""Runs a host of the Python binding on this system, with the library built for it in the place of the DLL.

Usage: run_python.py LIBRARY BINDING_FOLDER HOST (in the folder samples/data)
What is Windows' own is stood in for: the ways to load a DLL and to be called back, the name of the code page."""

import codecs
import ctypes
import runpy
import struct
import sys


def main():
    library, binding, host = sys.argv[1:]
    calcsize = struct.calcsize
    struct.calcsize = lambda layout: 4 if layout == "P" else calcsize(layout)
    sys.platform = "win32"
    ctypes.WinDLL = lambda name: ctypes.CDLL(library)
    ctypes.WINFUNCTYPE = ctypes.CFUNCTYPE
    codecs.register(lambda name: codecs.lookup("utf-8") if name == "mbcs" else None)
    sys.path.insert(0, binding)
    sys.argv = [host]
    runpy.run_path(host, run_name="__main__")


main()
