#!/usr/bin/env python3
"""Packs a folder into a zip or a .tar.gz that depends on the folder's contents alone, with a SHA256SUMS inside.

Usage: pack.py FOLDER ARCHIVE SOURCE_ROOT
The archive holds one top folder, named as FOLDER. All entries carry one time, SOURCE_DATE_EPOCH (by default the
first that a zip can hold). Beside the archive goes ARCHIVE.sha256. A file that holds a path into SOURCE_ROOT is refused.
A zip is for Windows: texts get its line ends. A .tar.gz keeps symbolic links.
"""

import gzip
import hashlib
import io
import os
import pathlib
import re
import sys
import tarfile
import time
import zipfile

# What editors and compilers of Windows expect with their own line ends.
CRLF_SUFFIXES = {".txt", ".bas", ".vbp", ".pas", ".dpr"}
FIRST_ZIP_TIME = 315532800  # 1980-01-01


def contents_of(path, for_windows):
    data = path.read_bytes()
    if for_windows and path.suffix in CRLF_SUFFIXES:
        data = data.replace(b"\r\n", b"\n").replace(b"\n", b"\r\n")
    return data


def refuse_machine_paths(name, data, root):
    """Exits when the file names a place on the machine that built it."""
    for encoding in ("utf-8", "utf-16-le"):
        path = re.escape(f"{root}/".encode(encoding))
        if re.search(rb"(?<![\w./-])" + path, data):
            sys.exit(f"{name} holds a path of this machine ({root}/...)")


def archive_time():
    return max(int(os.environ.get("SOURCE_DATE_EPOCH", FIRST_ZIP_TIME)), FIRST_ZIP_TIME)


def sums(files):
    lines = (f"{hashlib.sha256(data).hexdigest()}  {name}\n" for name, data in sorted(files.items()))
    return "".join(lines).encode("ascii")


def write_zip(target, top, files):
    when = time.gmtime(archive_time())[:6]
    with zipfile.ZipFile(target, "w", zipfile.ZIP_DEFLATED, compresslevel=9) as archive:
        for name, data in sorted(files.items()):
            entry = zipfile.ZipInfo(f"{top}/{name}", when)
            entry.compress_type = zipfile.ZIP_DEFLATED
            entry.create_system = 3
            entry.external_attr = 0o100644 << 16
            archive.writestr(entry, data)


def write_tar(target, top, files, links):
    with gzip.GzipFile(target, "wb", compresslevel=9, mtime=archive_time()) as packed, \
            tarfile.open(fileobj=packed, mode="w", format=tarfile.PAX_FORMAT) as archive:
        for name in sorted(files.keys() | links.keys()):
            entry = tarfile.TarInfo(f"{top}/{name}")
            entry.mtime = archive_time()
            if name in links:
                entry.type, entry.linkname = tarfile.SYMTYPE, links[name]
            else:
                entry.size = len(files[name])
            archive.addfile(entry, io.BytesIO(files.get(name, b"")))


def main():
    folder, target, root = map(pathlib.Path, sys.argv[1:])
    for_windows = target.suffix == ".zip"
    paths = {path.relative_to(folder).as_posix(): path for path in folder.rglob("*") if path.is_file()}
    links = {name: os.readlink(path) for name, path in paths.items() if path.is_symlink() and not for_windows}
    files = {name: contents_of(path, for_windows) for name, path in paths.items() if name not in links}
    if not files:
        sys.exit(f"{folder} is empty")
    for name, data in files.items():
        refuse_machine_paths(name, data, root)
    files["SHA256SUMS"] = sums(files)
    if for_windows:
        write_zip(target, folder.name, files)
    else:
        write_tar(target, folder.name, files, links)
    digest = hashlib.sha256(target.read_bytes()).hexdigest()
    pathlib.Path(f"{target}.sha256").write_text(f"{digest}  {target.name}\n", encoding="ascii")


if __name__ == "__main__":
    main()
