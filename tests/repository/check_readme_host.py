#!/usr/bin/env python3
"""Fails unless the README shows examples/host.c, letter by letter, as one of its C blocks.

Usage: check_readme_host.py [repository]"""
import pathlib
import re
import sys


def main():
    here = pathlib.Path(__file__).resolve()
    root = pathlib.Path(sys.argv[1]) if len(sys.argv) > 1 else here.parents[2]
    program = (root / "examples" / "host.c").read_text(encoding="utf-8")
    readme = (root / "README.md").read_text(encoding="utf-8")
    blocks = re.findall(r"^```c\n(.*?)^```$", readme, re.MULTILINE | re.DOTALL)
    if program not in blocks:
        sys.exit(f"README.md: none of its {len(blocks)} C blocks is the text of examples/host.c")


main()
