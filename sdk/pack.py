#!/usr/bin/env python3
"""Packs a folder into a zip that depends on the folder's contents alone, with a SHA256SUMS inside.

Usage: pack.py FOLDER ZIP SOURCE_ROOT
The archive holds one top folder, named as FOLDER. All entries carry one time, SOURCE_DATE_EPOCH (by default the
first that a zip can hold). Beside the archive goes ZIP.sha256. A file that holds a path into SOURCE_ROOT is refused.
"""

import hashlib
import os
import pathlib
import re
import sys
import time
import zipfile

# What editors and compilers of Windows expect with their own line ends.
CRLF_SUFFIXES = {".txt", ".bas", ".vbp", ".pas", ".dpr"}
FIRST_ZIP_TIME = 315532800  # 1980-01-01


def contents_of(path):
    data = path.read_bytes()
    if path.suffix in CRLF_SUFFIXES:
        data = data.replace(b"\r\n", b"\n").replace(b"\n", b"\r\n")
    return data


def refuse_machine_paths(name, data, root):
    """Exits when the file names a place on the machine that built it."""
    for encoding in ("utf-8", "utf-16-le"):
        path = re.escape(f"{root}/".encode(encoding))
        if re.search(rb"(?<![\w./-])" + path, data):
            sys.exit(f"{name} holds a path of this machine ({root}/...)")


def zip_time():
    seconds = max(int(os.environ.get("SOURCE_DATE_EPOCH", FIRST_ZIP_TIME)), FIRST_ZIP_TIME)
    return time.gmtime(seconds)[:6]


def sums(files):
    lines = (f"{hashlib.sha256(data).hexdigest()}  {name}\n" for name, data in sorted(files.items()))
    return "".join(lines).encode("ascii")


def write_zip(target, top, files):
    when = zip_time()
    with zipfile.ZipFile(target, "w", zipfile.ZIP_DEFLATED, compresslevel=9) as archive:
        for name, data in sorted(files.items()):
            entry = zipfile.ZipInfo(f"{top}/{name}", when)
            entry.compress_type = zipfile.ZIP_DEFLATED
            entry.create_system = 3
            entry.external_attr = 0o100644 << 16
            archive.writestr(entry, data)


def main():
    folder, target, root = map(pathlib.Path, sys.argv[1:])
    files = {path.relative_to(folder).as_posix(): contents_of(path)
             for path in folder.rglob("*") if path.is_file()}
    if not files:
        sys.exit(f"{folder} is empty")
    for name, data in files.items():
        refuse_machine_paths(name, data, root)
    files["SHA256SUMS"] = sums(files)
    write_zip(target, folder.name, files)
    digest = hashlib.sha256(target.read_bytes()).hexdigest()
    pathlib.Path(f"{target}.sha256").write_text(f"{digest}  {target.name}\n", encoding="ascii")


if __name__ == "__main__":
    main()
