"""Stands in for what is Windows' own, so far as the package asks for it. To be imported before it.

Environment: ZENTRA3D_LIBRARY the library, with GlobalHandle and its like; CODE_PAGE, of names; SHORT_NAME, what every name is
shortened to; HELD_FOR_WRITING, a file that somebody has open.
"""

import codecs
import ctypes
import os
import sys

NO_FILE = ctypes.c_void_p(-1).value
LONGEST_PATH = 259
open_files = 0
_last_error = 0


def create_file(name, access, share, security, how, attributes, template):
    """CreateFileA, of a file that is there."""
    global open_files, _last_error
    assert (access, share, security, how, attributes, template) == (0x80000000, 1, None, 3, 0x80, None)
    if len(os.path.abspath(name)) > LONGEST_PATH:
        _last_error = 3
        return NO_FILE
    if name == os.environ.get("HELD_FOR_WRITING", "").encode():
        _last_error = 32
        return NO_FILE
    open_files += 1
    return os.open(name, os.O_RDONLY)


def close_handle(file):
    global open_files
    open_files -= 1
    os.close(file)
    return 1


def short_name(name, buffer, size):
    short = os.environ.get("SHORT_NAME", name)
    assert len(short) < size
    buffer.value = short
    return len(short)


def load_dll(name, use_last_error=False):
    """The library has what releases pictures, too."""
    library = ctypes.CDLL(os.environ["ZENTRA3D_LIBRARY"])
    if name == "kernel32":
        assert use_last_error
        library.CreateFileA, library.CloseHandle, library.GetShortPathNameW = create_file, close_handle, short_name
    return library


sys.platform = "win32"
ctypes.WinDLL, ctypes.WINFUNCTYPE = load_dll, ctypes.CFUNCTYPE
ctypes.FormatError, ctypes.get_last_error = "error {}".format, lambda: _last_error
codecs.register(lambda name: codecs.lookup(os.environ.get("CODE_PAGE", "utf-8")) if name == "mbcs" else None)
