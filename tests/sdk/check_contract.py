#!/usr/bin/env python3
"""Fails when CONTRACT.md names a test that is not there.

Usage: check_contract.py SOURCE_ROOT
A name in square brackets is Suite.Test, "suite" and a suite of GoogleTest, or an entry of CTest."""

import pathlib
import re
import sys


def names_of(contract):
    text = re.sub(r"\s+", " ", contract)
    for brackets in re.findall(r"\[([^\]]+)\](?!\()", text):
        yield from (name.strip() for name in brackets.split(","))


def main():
    root = pathlib.Path(sys.argv[1])
    sources = [path.read_text(encoding="utf-8") for path in sorted((root / "tests").rglob("*.cpp"))]
    lists = [path.read_text(encoding="utf-8") for path in sorted((root / "tests").rglob("CMakeLists.txt"))]
    tests = {f"{suite}.{test}" for text in sources
             for suite, test in re.findall(r"^TEST(?:_[FP])?\((\w+), (\w+)\)", text, re.MULTILINE)}
    known = tests | {f"suite {name.split('.')[0]}" for name in tests}
    known |= {name for text in lists for name in re.findall(r"add_test\(NAME (\w+)", text)}

    names = list(names_of((root / "CONTRACT.md").read_text(encoding="utf-8")))
    unknown = [name for name in names if name not in known]
    if unknown or not names:
        sys.exit(f"CONTRACT.md names {len(names)} tests; not there: {', '.join(unknown) or 'none'}")


main()
