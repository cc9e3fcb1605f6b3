#!/usr/bin/env python3
"""Writes the licence notices of what is linked into the archive's programs, as their packages state them.

Usage: notices.py TARGET [DOCUMENTATION_FOLDER]
The folder (by default /usr/share/doc) holds a folder per package, and in it `copyright`, the machine-readable file of
Debian: paragraphs of fields. A paragraph of files has Files, Copyright and License; the terms follow the licence's
name there, or stand in a paragraph that has nothing but a License of this name.
"""

import pathlib
import re
import sys
import textwrap

# Title, package, and the first of the files that a paragraph is for: only code that becomes part of our programs.
# Of alternative licences the first is taken.
PARTS = [
    ("CLI11, in zentra.exe", "libcli11-dev", "*"),
    ("stb_image and stb_image_write, in zentra.exe and zentra-view.exe", "libstb-dev", "*"),
    ("zlib, in zentra.exe and zentra-view.exe", "libz-mingw-w64-dev", "*"),
    ("Runtime of mingw-w64, in all programs and the DLL", "mingw-w64-i686-dev", "*"),
    ("Printing and reading of numbers, of the same", "mingw-w64-i686-dev", "mingw-w64-crt/gdtoa/*"),
    ("winpthreads, of the same", "mingw-w64-i686-dev", "mingw-w64-libraries/winpthreads/*"),
]

HEAD = """\
Zentra3DRendering itself is under the licence in LICENSE.txt. Its programs hold code of others, whose notices follow.
They were built with GCC, whose libraries may be part of programs under any terms (GCC Runtime Library Exception).
"""


def paragraphs_of(text):
    """Fields by name, paragraph by paragraph. A line that goes on begins with a blank; one with a full stop is empty."""
    for block in re.split(r"\n(?:[ \t]*\n)+", text.strip("\n")):
        fields = {}
        for name, value in re.findall(r"^(\S+):[ \t]*(.*(?:\n[ \t].*)*)", block, re.MULTILINE):
            first, _, rest = value.partition("\n")
            lines = ["" if line.strip() == "." else line.rstrip() for line in textwrap.dedent(rest).splitlines()]
            fields[name] = (first.strip(), "\n".join(lines).rstrip())
        yield fields


def notice_of(path, first_files):
    """Copyright and terms of the paragraph whose files begin so."""
    if not path.is_file():
        sys.exit(f"{path} is missing: the notices of what the programs hold cannot be given")
    paragraphs = list(paragraphs_of(path.read_text(encoding="utf-8")))
    found = [fields for fields in paragraphs if fields.get("Files", ("",))[0] == first_files]
    if not found:
        sys.exit(f"{path} says nothing of the files {first_files}")
    name, terms = found[0]["License"]
    for wanted in [name, *re.split(r" (?:and|or) ", name)]:
        stated = (fields["License"][1] for fields in paragraphs
                  if "Files" not in fields and fields.get("License", ("",))[0].lower() == wanted.lower())
        terms = terms or next(stated, "")
    if not terms:
        sys.exit(f"{path} has no terms of the licence {name}")
    owners = "\n".join(found[0]["Copyright"]).strip().splitlines()
    return "\n".join(f"Copyright {owner}" for owner in owners), terms


def main():
    target = pathlib.Path(sys.argv[1])
    folder = pathlib.Path(sys.argv[2] if len(sys.argv) > 2 else "/usr/share/doc")
    text = HEAD
    for title, package, first_files in PARTS:
        owners, terms = notice_of(folder / package / "copyright", first_files)
        text += f"\n{title}\n{'-' * len(title)}\n\n{owners}\n\n{terms}\n"
    target.write_text(text, encoding="utf-8")


if __name__ == "__main__":
    main()
