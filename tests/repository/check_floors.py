#!/usr/bin/env python3
"""Checks who includes whom: upper floors of the house may include lower ones, never the reverse.

Usage: check_floors.py REPOSITORY
Prints file, line and rule for each include that breaks one, and fails when there is any.
"""

import re
import sys
from pathlib import Path, PurePosixPath

# A floor may include itself, its own sub-folders, and these.
MAY_INCLUDE = {
    "exports": {"compose", "render", "geometry", "frame", "platform"},
    "compose": {"volume", "frame", "primitives", "platform"},
    "volume": {"frame", "primitives", "platform"},
    "render": {"frame", "platform"},
    "frame": {"platform"},
    "primitives": {"platform"},
    "geometry": set(),
    "platform": set(),
}
PUBLIC_HEADER = "Zentra3DRendering.h"

WINDOWS_HEADER = re.compile(r"^(windows|win(base|def|user|nt|nls|ver)|psapi|shellapi|tlhelp32)\.h$", re.IGNORECASE)
POSIX_HEADER = re.compile(r"^(unistd|fcntl|pthread|dlfcn|poll|dirent|strings|sys/.+|linux/.+)(\.h)?$")
# Beside the Windows side of the platform door: what stands outside the library and meets it as hosts do, tests
# of the door, and what tests use to watch it.
WINDOWS_FOLDERS = ("tools/", "tests/exports/", "tests/platform/", "tests/soak/", "tests/support/",
                   "tests/viewer/", "examples/", "bench/")

SCANNED_FOLDERS = ("src", "include", "tests", "tools", "bench", "examples", "fuzz")
SOURCE_SUFFIXES = {".h", ".cpp", ".c", ".inl", ".inc"}
INCLUDE = re.compile(r"^\s*#\s*include\b\s*(.*)$")
TARGET = re.compile(r'^(?:"([^"]+)"|<([^>]+)>)')


def includes(text):
    """(line number, name, whether it is in quotes) of each include; the name is None for a macro."""
    for number, line in enumerate(text.splitlines(), 1):
        directive = INCLUDE.match(line)
        if directive is None:
            continue
        target = TARGET.match(directive.group(1))
        if target is None:
            yield number, None, False
        else:
            yield number, target.group(1) or target.group(2), target.group(1) is not None


def system_complaint(path, name):
    """Which rule an include of the system breaks in the file at this path, or None."""
    if WINDOWS_HEADER.match(name):
        if path.startswith(WINDOWS_FOLDERS) or re.fullmatch(r"src/platform/\w+Win32\.cpp", path):
            return None
        return "only the Windows side of the platform door sees the system"
    if POSIX_HEADER.match(name) and path.startswith(("src/", "include/")):
        if not re.fullmatch(r"src/platform/\w+Posix\.cpp", path):
            return "only the POSIX side of the platform door sees the system"
    return None


def floor_complaint(path, name):
    """Which rule a quoted include breaks in the file of src/ at this path, or None."""
    if name == PUBLIC_HEADER:
        return None
    own = PurePosixPath(path).parts[1]
    parts = PurePosixPath(name).parts
    if own not in MAY_INCLUDE:
        return f"{own} is no floor"
    if len(parts) < 2 or ".." in parts:
        return "paths are written from src/"
    if parts[0] not in MAY_INCLUDE:
        return f"{parts[0]} is no floor"
    if parts[0] != own and parts[0] not in MAY_INCLUDE[own]:
        return f"{own} may not include {parts[0]}"
    return None


def complaints(path, text):
    """What is wrong with the file at this path, relative to the repository and with forward slashes."""
    for number, name, quoted in includes(text):
        if name is None:
            complaint = "an include through a macro cannot be checked" if path.startswith("src/") else None
        elif quoted and path.startswith("src/"):
            complaint = floor_complaint(path, name)
        else:
            complaint = system_complaint(path, name)
        if complaint is not None:
            yield f"{path}:{number}: {complaint} ({name})"


def main():
    root = Path(sys.argv[1])
    files = [file for folder in SCANNED_FOLDERS for file in sorted((root / folder).rglob("*"))
             if file.suffix in SOURCE_SUFFIXES and file.is_file()]
    found = []
    for file in files:
        found.extend(complaints(file.relative_to(root).as_posix(), file.read_text(encoding="utf-8")))
    print("\n".join(found) or f"{len(files)} files, every include is within the floors")
    return 1 if found or not files else 0


if __name__ == "__main__":
    sys.exit(main())
