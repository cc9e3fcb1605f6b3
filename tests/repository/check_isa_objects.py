#!/usr/bin/env python3
"""Checks that a processor without the newer instructions never meets one.

An inline function that an object for AVX2 defines can be the one that the linker keeps for everybody. So objects
of an instruction set may define nothing that is visible outside of them but what lies in a namespace of that
set, and all other objects may not contain a newer instruction. Where the stack is not aligned for wide registers, none of
them may be moved by an instruction that wants them aligned.

Usage: check_isa_objects.py NM OBJDUMP [--no-aligned-moves] --baseline OBJECT ... --avx2 OBJECT ... --avx512 OBJECT ...
Prints one line per complaint and fails when there is any.
"""

import argparse
import re
import subprocess
import sys

# The namespaces of each set, as the linker writes them: each part begins with its length, so that no other name
# begins alike.
NAMESPACES = {"avx2": ("3z3d6render4avx2", "3z3d10primitives4avx2"), "avx512": ("3z3d6render6avx512",)}

# A line of a disassembly: address, bytes, mnemonic. A long instruction goes on in a line without mnemonic.
INSTRUCTION = re.compile(r"^ *[0-9a-f]+:\t((?:[0-9a-f]{2} )+) *\t(\S.*)$")
SEGMENT_AND_SIZE_PREFIXES = {"26", "2e", "36", "3e", "64", "65", "67"}
# The first byte of the two VEX encodings and of EVEX. In 32-bit code they are also LES, LDS and BOUND, which no
# compiler emits.
NEWER_ENCODINGS = {"c4", "c5", "62"}

# Between registers such a move is harmless, but the assembler option that takes the others away takes these too.
ALIGNED_WIDE_MOVE = re.compile(r"^vmov(?:ap[sd]|dqa(?:32|64)?)\s.*%[yz]mm")


def run(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout


def visible_names(listing):
    """The names in a listing of nm in the POSIX format."""
    return [line.split()[0] for line in listing.splitlines() if line and not line.endswith(":")]


def is_of_namespaces(name, namespaces):
    """Whether a name is that of a function, a variable or something local to a function of one of the namespaces;
    guard variables, type information and tables are none of these. Windows puts one more underscore before each."""
    return re.match(rf"_?_ZZ*N[rVK]*[RO]?({'|'.join(namespaces)})", name) is not None


def newer_instructions(disassembly):
    """Every instruction with a VEX or EVEX prefix."""
    for line in disassembly.splitlines():
        instruction = INSTRUCTION.match(line)
        if instruction is None:
            continue
        encoding = [byte for byte in instruction.group(1).split() if byte not in SEGMENT_AND_SIZE_PREFIXES]
        if encoding and encoding[0] in NEWER_ENCODINGS:
            yield instruction.group(2).strip()


def symbol_complaints(path, listing, isa):
    for name in visible_names(listing):
        if not is_of_namespaces(name, NAMESPACES[isa]):
            yield f"{path}: defines {name} outside of the namespaces {isa}"


def instruction_complaints(path, disassembly):
    found = list(newer_instructions(disassembly))
    if found:
        yield f"{path}: {len(found)} newer instructions in a baseline object, the first is {found[0]}"


def alignment_complaints(path, disassembly):
    found = [instruction for instruction in newer_instructions(disassembly) if ALIGNED_WIDE_MOVE.match(instruction)]
    if found:
        yield f"{path}: {len(found)} moves of wide registers want an aligned stack, the first is {found[0]}"


def complaints(nm, objdump, baseline, isa_objects, may_align=True):
    """isa_objects maps the name of an instruction set to its objects."""
    if not baseline:
        yield "no baseline objects"
    for path in baseline:
        yield from instruction_complaints(path, run(objdump, "-d", path))
    for isa, paths in isa_objects.items():
        for path in paths:
            yield from symbol_complaints(path, run(nm, "-P", "--defined-only", "--extern-only", path), isa)
            if not may_align:
                yield from alignment_complaints(path, run(objdump, "-d", path))
        # Else these are other objects, or the disassembly was not understood.
        if not any(any(newer_instructions(run(objdump, "-d", path))) for path in paths):
            yield f"no newer instruction in any object of {isa}"


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("nm")
    parser.add_argument("objdump")
    parser.add_argument("--no-aligned-moves", action="store_true")
    for objects in ("baseline", *NAMESPACES):
        parser.add_argument(f"--{objects}", nargs="*", default=[])
    arguments = parser.parse_args()
    isa_objects = {isa: getattr(arguments, isa) for isa in NAMESPACES}
    found = list(complaints(arguments.nm, arguments.objdump, arguments.baseline, isa_objects,
                            not arguments.no_aligned_moves))
    count = len(arguments.baseline) + sum(map(len, isa_objects.values()))
    print("\n".join(found) or f"{count} objects, every newer instruction is in a namespace of its own")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
