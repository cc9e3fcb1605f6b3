#!/usr/bin/env python3
"""Checks what a loader, a linker and an administrator see of the built DLL.

Usage: check_dll.py DLL DEFINITION VERSION MAX_BYTES
Prints one line per complaint and fails when there is any.
"""

import re
import sys

from pe_file import PeFile

I386 = 0x14C
PE32 = 0x10B
IS_DLL, RELOCATIONS_STRIPPED = 0x2000, 0x0001
DYNAMIC_BASE, NX_COMPAT = 0x0040, 0x0100
ALLOWED_IMPORTS = {"kernel32.dll", "user32.dll", "msvcrt.dll"}
RUNTIME_TLS_CALLBACKS = 2  # those that the C run-time start-up of MinGW-w64 always brings along
RUNTIME_TLS_BYTES = 8
# What the C++ run-time library brings along as soon as anything of ours may throw.
CPP_RUNTIME_MARKS = (b"terminate called", b"bad_alloc", b"__cxxabiv1", b"basic_string")


def defined_names(definition):
    """The undecorated names of a module definition in the alias form."""
    return re.findall(r"^ +(\w+)=\w+@\d+$", definition, re.MULTILINE)


def check_exports(pe, definition):
    wanted, found = set(defined_names(definition)), pe.export_names()
    if not wanted:
        yield "the module definition has no names"
    for name in sorted(wanted - set(found)):
        yield f"export {name} is missing"
    for name in sorted(set(found) - wanted):
        yield f"export {name} is not in the module definition"
    if pe.export_address_count() != len(found):
        yield f"{pe.export_address_count()} functions are exported under {len(found)} names"


def check_imports(pe):
    for dll in pe.imported_dlls():
        if dll.lower() not in ALLOWED_IMPORTS:
            yield f"{dll} is imported: every host would need it"


def check_headers(pe):
    if pe.machine != I386 or pe.magic != PE32 or not pe.characteristics & IS_DLL:
        yield "not a 32-bit x86 DLL"
    if not pe.dll_characteristics & DYNAMIC_BASE:
        yield "DYNAMIC_BASE is not set"
    if not pe.dll_characteristics & NX_COMPAT:
        yield "NX_COMPAT is not set"
    if pe.characteristics & RELOCATIONS_STRIPPED or pe.relocation_count() == 0:
        yield "no relocations: the DLL cannot be loaded anywhere but at its base"
    if pe.timestamp != 0:
        yield f"the header holds a time of build ({pe.timestamp:#x}): two builds would differ"


def check_tls(pe):
    tls = pe.tls()
    if tls is not None and (tls[0] > RUNTIME_TLS_BYTES or tls[1] > RUNTIME_TLS_CALLBACKS):
        yield f"thread-local storage of {tls[0]} bytes and {tls[1]} callbacks: something acts at load"


def check_version(pe, version):
    numbers = tuple(int(part) for part in version.split("."))
    expected = (numbers + (0, 0, 0, 0))[:4]
    fixed = pe.fixed_versions()
    if fixed is None:
        yield "no version resource"
        return
    for kind, found in zip(("file", "product"), fixed):
        if found != expected:
            yield f"{kind} version is {found}, expected {expected}"
    for key, value in (("FileVersion", version), ("ProductVersion", version),
                       ("OriginalFilename", "Zentra3DRendering.dll")):
        if pe.version_string(key) != value:
            yield f"version string {key} is {pe.version_string(key)!r}, expected {value!r}"


def check_runtime(pe):
    for mark in CPP_RUNTIME_MARKS:
        if mark in pe.data:
            yield f"holds {mark.decode()!r}: part of the C++ run-time library was linked in"


def check_size(pe, max_bytes):
    if len(pe.data) >= max_bytes:
        yield f"{len(pe.data)} bytes, to be below {max_bytes}"


def complaints(data, definition, version, max_bytes):
    pe = PeFile(data)
    return [*check_exports(pe, definition), *check_imports(pe), *check_headers(pe), *check_tls(pe),
            *check_version(pe, version), *check_runtime(pe), *check_size(pe, max_bytes)]


def main():
    dll, definition, version, max_bytes = sys.argv[1:]
    with open(dll, "rb") as file:
        data = file.read()
    with open(definition, encoding="ascii") as file:
        found = complaints(data, file.read(), version, int(max_bytes))
    for complaint in found:
        print(f"{dll}: {complaint}")
    if not found:
        print(f"{dll}: {len(data)} bytes, {len(PeFile(data).export_names())} exports, nothing to complain about")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
