#!/usr/bin/env python3
"""Times the same rows on the three targets in turn, and prints a table in Markdown.

Usage: compare_targets.py [--seconds S] [--rounds N] [--before COMMAND]
Takes bench_render and bench_load of the presets win32, win64 and native from the build folder, and the head that
scripts/demo leaves there. Each program runs once per row and round, the three one after another; a figure is the least of
all rounds. COMMAND comes before each of them, such as "chrt -f 10 taskset -c 1".
"""

import argparse
import pathlib
import re
import shlex
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parents[1]
HEAD = ROOT / "build/demo/ch2.raw"
TARGETS = {"win32": ".exe", "win64": ".exe", "native": ""}
SETS = ("SSE2", "AVX2", "AVX-512")  # the last has two rows of figures, of which the one with gathers is the library's

# Rows of bench_render, and what the table calls them.
RENDERED = {
    "head: max": "maximum",
    "head: max 90 about y": "maximum, 90 degrees about y",
    "head: max (-90,0,30)": "maximum, upright, turned by 30",
    "head: max identity": "maximum, not turned",
    "head: sum": "sum",
    "head: surface": "surface, window 80 to 255",
    "head: layers": "layers, window 80 to 255",
    "head: blend": "blend",
    "head: contrast": "contrast",
    "head: first hit": "first hit",
    "head RGB: max": "colour: maximum",
    "head RGB: blend": "colour: blend",
}
# And of bench_load.
LOADED = {
    "three channels of bytes, whole": "three channels of bytes, whole",
    "three channels of bytes into diagonal 250": "the same into a diagonal of 250",
}


def output_of(program, target, row, options):
    path = ROOT / "build" / target / "bin" / (program + TARGETS[target])
    wine = [] if target == "native" else [str(ROOT / "cmake/run-wine")]
    command = [*shlex.split(options.before), *wine, str(path), "--head", str(HEAD.relative_to(ROOT)), "--only", f"={row}",
               "--seconds", str(options.seconds)]
    text = subprocess.run(command, cwd=ROOT, check=True, text=True, capture_output=True).stdout
    if "DIFFERS" in text:
        sys.exit(f"{target}: {text}")
    return next(line for line in text.splitlines() if line.startswith(row))[len(row):]


def rendered(target, row, options):
    """ns per sample by instruction set: a figure is followed by how many times the plain form's speed it is."""
    figures = [float(figure) for figure in re.findall(r"([\d.]+) +[\d.]+x", output_of("bench_render", target, row, options))]
    return dict(zip(SETS, [*figures[:2], *figures[-1:]][:len(figures)]))


def loaded(target, row, options):
    return {"": float(output_of("bench_load", target, row, options).split()[0])}


def least(measure, row, options):
    """By target, by instruction set."""
    best = {target: {} for target in TARGETS}
    for _ in range(options.rounds):
        for target, known in best.items():
            for kind, figure in measure(target, row, options).items():
                known[kind] = min(known.get(kind, figure), figure)
    return best


def line_of(title, best):
    """The figures of the best set, then how many times faster than 32 bits the others are on each."""
    last = list(best["win32"])[-1]
    cells = [f"{best[target][last]:.2f}" for target in TARGETS]
    for target in ("win64", "native"):
        ratios = [best["win32"][kind] / best[target][kind] for kind in best["win32"]]
        cells += [""] * (len(SETS) - len(ratios)) + [f"{ratio:.2f}" for ratio in ratios]
    return f"| {title} | " + " | ".join(cells) + " |"


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--seconds", type=float, default=0.15)
    parser.add_argument("--rounds", type=int, default=3)
    parser.add_argument("--before", default="")
    options = parser.parse_args()
    print("| Row | ns per sample: 32 bits | 64 bits | Linux | 64 bits, times faster: SSE2 | AVX2 | AVX-512 "
          "| Linux: SSE2 | AVX2 | AVX-512 |")
    print("|---|" + "---|" * 9)
    for measure, rows in ((rendered, RENDERED), (loaded, LOADED)):
        for row, title in rows.items():
            print(line_of(title, least(measure, row, options)), flush=True)


main()
