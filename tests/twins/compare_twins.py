#!/usr/bin/env python3
"""Runs the same host, built for several targets, and fails where two of them print different lines.

Usage: compare_twins.py RUN_WINE PROGRAM PROGRAM [--if-built PROGRAM ...]
Programs that end in .exe run under Wine. Those behind --if-built are left out, and said to be, where they do not exist.
"""

import argparse
import pathlib
import subprocess
import sys
import tempfile

FEWEST_LINES = 1000


def lines_of(program, run_wine):
    """What the program prints. It writes its files into a folder of its own."""
    command = [run_wine, program] if program.endswith(".exe") else [program]
    with tempfile.TemporaryDirectory() as folder:
        result = subprocess.run(command, cwd=folder, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                                encoding="ascii")
    if result.returncode != 0:
        sys.exit(f"{program} ended with {result.returncode}")
    return result.stdout.split("\n")


def parse():
    parser = argparse.ArgumentParser()
    parser.add_argument("run_wine")
    parser.add_argument("programs", nargs="+")
    parser.add_argument("--if-built", nargs="*", default=[])
    return parser.parse_args()


def main():
    arguments = parse()
    for program in arguments.programs:
        if not pathlib.Path(program).exists():
            sys.exit(f"{program} is not built: both bitnesses are needed for a comparison")
    others = [program for program in arguments.if_built if pathlib.Path(program).exists()]
    for program in sorted(set(arguments.if_built) - set(others)):
        print(f"left out, not built: {program}")

    programs = arguments.programs + others
    printed = [[line.rstrip("\r") for line in lines_of(program, arguments.run_wine)] for program in programs]
    failed = len(printed[0]) < FEWEST_LINES
    print(f"{programs[0]}: {len(printed[0])} lines")
    for program, lines in zip(programs[1:], printed[1:]):
        different = [(a, b) for a, b in zip(printed[0], lines) if a != b]
        same = not different and len(lines) == len(printed[0])
        print(f"{program}: {'the same' if same else f'{len(different)} of {len(lines)} lines differ'}")
        for a, b in different[:10]:
            print(f"  {a}\n  {b}")
        failed = failed or not same
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
