#!/usr/bin/env python3
"""Tests of sdk/notices.py: what is taken from the packages' copyright files, and what is refused.

Usage: notices_test.py SOURCE_ROOT"""

import pathlib
import subprocess
import sys
import tempfile
import unittest

ROOT = pathlib.Path(sys.argv.pop(1))

ONE_OWNER = """Format: 1.0

Files: *
Copyright: 2001 Ann Author
License: Plain

Files: debian/*
Copyright: 2020 Packager
License: Plain

License: Plain
 Keep this
 .
  notice.
"""

RUNTIME = """Files: *
Copyright: 2002 Ben Author
           2003 Cem Author
License: Own
 Terms that stand
 at once.

Files: mingw-w64-crt/gdtoa/*
       other.c
Copyright: Dee Author
License: Numbers
 Terms of numbers.

Files: mingw-w64-libraries/winpthreads/*
Copyright: Eve Author
License: EXPAT

License: expat
 Terms of threads.
"""

PACKAGES = {"libcli11-dev": ONE_OWNER, "libz-mingw-w64-dev": ONE_OWNER, "mingw-w64-i686-dev": RUNTIME,
            "libstb-dev": ONE_OWNER.replace("License: Plain\n", "License: Plain or Other\n", 1)}


class Notices(unittest.TestCase):
    def setUp(self):
        scratch = tempfile.TemporaryDirectory()
        self.addCleanup(scratch.cleanup)
        self.scratch = pathlib.Path(scratch.name)

    def notices(self, packages):
        for name, text in packages.items():
            (self.scratch / name).mkdir()
            (self.scratch / name / "copyright").write_text(text, encoding="utf-8")
        target = self.scratch / "NOTICES.txt"
        result = subprocess.run([sys.executable, "-B", ROOT / "sdk" / "notices.py", target, self.scratch], text=True,
                                stderr=subprocess.PIPE, check=False)
        return target, result

    def text(self, packages):
        target, result = self.notices(packages)
        self.assertEqual((result.returncode, result.stderr), (0, ""))
        return target.read_text(encoding="utf-8")

    def test_owners_and_terms_of_every_part_are_there(self):
        text = self.text(PACKAGES)
        self.assertEqual(text.count("\nCopyright 2001 Ann Author\n\nKeep this\n\n notice.\n"), 3)
        self.assertIn("\nCopyright 2002 Ben Author\nCopyright 2003 Cem Author\n\nTerms that stand\nat once.\n", text)
        self.assertIn("\nCopyright Dee Author\n\nTerms of numbers.\n", text)
        self.assertIn("\nCopyright Eve Author\n\nTerms of threads.\n", text)

    def test_what_is_in_no_program_is_not(self):
        self.assertNotIn("Packager", self.text(PACKAGES))

    def refuse(self, sentence, packages):
        target, result = self.notices(packages)
        self.assertEqual((result.returncode, target.exists()), (1, False))
        self.assertIn(sentence, result.stderr)

    def test_a_licence_without_terms_is_an_error(self):
        nameless = ONE_OWNER.replace("License: Plain\n Keep", "License: Other\n Keep")
        self.refuse("no terms of the licence Plain", PACKAGES | {"libcli11-dev": nameless})

    def test_files_that_are_not_mentioned_are_an_error(self):
        self.refuse("says nothing of the files *",
                    PACKAGES | {"libcli11-dev": "Files: a\nCopyright: b\nLicense: c\n d\n"})

    def test_a_package_that_is_missing_is_an_error(self):
        self.refuse("is missing", {})


if __name__ == "__main__":
    unittest.main()
