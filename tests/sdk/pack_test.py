#!/usr/bin/env python3
"""Tests of sdk/pack.py: what the archive of a folder depends on, and what is refused.

Usage: pack_test.py SOURCE_ROOT"""

import os
import pathlib
import subprocess
import sys
import tarfile
import tempfile
import unittest
import zipfile

ROOT = pathlib.Path(sys.argv.pop(1))


class Pack(unittest.TestCase):
    def setUp(self):
        scratch = tempfile.TemporaryDirectory()
        self.addCleanup(scratch.cleanup)
        self.scratch = pathlib.Path(scratch.name)

    def folder(self, place, files):
        folder = self.scratch / place / "kit-1.0"
        for name, data in files.items():
            (folder / name).parent.mkdir(parents=True, exist_ok=True)
            (folder / name).write_bytes(data)
        return folder

    def pack(self, folder, epoch="1700000000", root="/home/somebody/zentra", name="kit.zip"):
        target = folder.parent / name
        result = subprocess.run([sys.executable, "-B", ROOT / "sdk" / "pack.py", folder, target, root], text=True,
                                env={**os.environ, "SOURCE_DATE_EPOCH": epoch, "TZ": "Asia/Tokyo"},
                                stderr=subprocess.PIPE, check=False)
        return target, result

    def test_the_same_files_give_the_same_bytes(self):
        one = self.folder("one", {"a.dll": b"a", "docs/b.md": b"b"})
        other = self.folder("other", {"docs/b.md": b"b", "a.dll": b"a"})
        os.utime(other / "a.dll", (1, 1))
        (other / "a.dll").chmod(0o700)

        self.assertEqual(self.pack(one)[0].read_bytes(), self.pack(other)[0].read_bytes())

    def test_another_file_gives_other_bytes(self):
        one = self.folder("one", {"a.dll": b"a"})
        other = self.folder("other", {"a.dll": b"b"})

        self.assertNotEqual(self.pack(one)[0].read_bytes(), self.pack(other)[0].read_bytes())

    def test_all_lies_in_one_folder_beside_its_checksums(self):
        target, _ = self.pack(self.folder("one", {"bin/a.dll": b"a"}))

        with zipfile.ZipFile(target) as archive:
            self.assertEqual(archive.namelist(), ["kit-1.0/SHA256SUMS", "kit-1.0/bin/a.dll"])
            self.assertEqual(archive.read("kit-1.0/SHA256SUMS"),
                             b"ca978112ca1bbdcafac231b39a23dc4da786eff8147c4e72b9807785afee48bb  bin/a.dll\n")

    def test_sources_of_windows_editors_get_their_line_ends_once(self):
        target, _ = self.pack(self.folder("one", {"a.bas": b"1\n2\r\n", "a.go": b"1\n"}))

        with zipfile.ZipFile(target) as archive:
            self.assertEqual(archive.read("kit-1.0/a.bas"), b"1\r\n2\r\n")
            self.assertEqual(archive.read("kit-1.0/a.go"), b"1\n")

    def test_a_tar_depends_on_the_files_alone_and_keeps_links_and_line_ends(self):
        one = self.folder("one", {"lib/a.so.1": b"a", "a.txt": b"1\n"})
        (one / "lib" / "a.so").symlink_to("a.so.1")
        other = self.folder("other", {"a.txt": b"1\n", "lib/a.so.1": b"a"})
        (other / "lib" / "a.so").symlink_to("a.so.1")
        (other / "a.txt").chmod(0o700)
        os.utime(other / "a.txt", (1, 1))

        target, _ = self.pack(one, name="kit.tar.gz")
        self.assertEqual(target.read_bytes(), self.pack(other, name="kit.tar.gz")[0].read_bytes())
        with tarfile.open(target) as archive:
            self.assertEqual(archive.getnames(),
                             ["kit-1.0/SHA256SUMS", "kit-1.0/a.txt", "kit-1.0/lib/a.so", "kit-1.0/lib/a.so.1"])
            self.assertEqual(archive.getmember("kit-1.0/lib/a.so").linkname, "a.so.1")
            self.assertEqual(archive.extractfile("kit-1.0/a.txt").read(), b"1\n")
            self.assertEqual({entry.mtime for entry in archive}, {1700000000})

    def test_a_path_of_the_machine_is_refused(self):
        for text in (b"see /home/somebody/zentra/src", "/home/somebody/zentra/src".encode("utf-16-le")):
            target, result = self.pack(self.folder("one", {"a.dll": b"MZ\0" + text}))

            self.assertNotEqual(result.returncode, 0)
            self.assertIn("a.dll", result.stderr)
            self.assertFalse(target.exists())

    def test_a_longer_path_that_ends_alike_is_not(self):
        _, result = self.pack(self.folder("one", {"a.dll": b"/usr/src/x"}), root="/src")

        self.assertEqual(result.returncode, 0, result.stderr)


unittest.main()
