#!/usr/bin/env python3
"""Checks what a loader, a linker and an administrator see of the built DLL.

Usage: check_dll.py DLL DEFINITION VERSION BITS MAX_BYTES SYMBOLS NM
Prints one line per complaint and fails when there is any. Where the DLL has more than MAX_BYTES, also its largest
symbols: those that NM finds in SYMBOLS, the file that they were split off to.
"""

import re
import struct
import subprocess
import sys

from pefile import (DIRECTORY_ENTRY, DLL_CHARACTERISTICS, IMAGE_CHARACTERISTICS, MACHINE_TYPE, OPTIONAL_HEADER_MAGIC_PE,
                    OPTIONAL_HEADER_MAGIC_PE_PLUS, PE, RELOCATION_TYPE)

ALLOWED_IMPORTS = {"kernel32.dll", "user32.dll", "msvcrt.dll"}
RUNTIME_TLS_CALLBACKS = 2  # those that the C run-time start-up of MinGW-w64 always brings along
RUNTIME_TLS_POINTERS = 2
# What the C++ run-time library brings along as soon as anything of ours may throw.
CPP_RUNTIME_MARKS = (b"terminate called", b"bad_alloc", b"__cxxabiv1", b"basic_string")


def defined_names(definition):
    """The undecorated names of a module definition in the alias form."""
    return re.findall(r"^ +(\w+)=\w+@\d+$", definition, re.MULTILINE)


def export_names(pe):
    """The names of the functions, None for one that has an ordinal only."""
    table = getattr(pe, "DIRECTORY_ENTRY_EXPORT", None)
    return [symbol.name and symbol.name.decode("ascii") for symbol in table.symbols] if table else []


def check_exports(pe, definition):
    wanted, found = set(defined_names(definition)), export_names(pe)
    if not wanted:
        yield "the module definition has no names"
    for name in sorted(wanted - set(found)):
        yield f"export {name} is missing"
    for name in sorted(set(found) - wanted - {None}):
        yield f"export {name} is not in the module definition"
    if None in found:
        yield "a function is exported without a name"


def check_imports(pe):
    for entry in getattr(pe, "DIRECTORY_ENTRY_IMPORT", []):
        dll = entry.dll.decode("ascii")
        if dll.lower() not in ALLOWED_IMPORTS:
            yield f"{dll} is imported: every host would need it"


def relocation_count(pe):
    padding = RELOCATION_TYPE["IMAGE_REL_BASED_ABSOLUTE"]
    return sum(entry.type != padding
               for block in getattr(pe, "DIRECTORY_ENTRY_BASERELOC", []) for entry in block.entries)


def is_wide(pe):
    return pe.OPTIONAL_HEADER.Magic == OPTIONAL_HEADER_MAGIC_PE_PLUS


def check_headers(pe, bits):
    flags, dll_flags = pe.FILE_HEADER.Characteristics, pe.OPTIONAL_HEADER.DllCharacteristics
    machine, magic, wanted_flags = {
        32: ("I386", OPTIONAL_HEADER_MAGIC_PE, ["DYNAMIC_BASE", "NX_COMPAT"]),
        64: ("AMD64", OPTIONAL_HEADER_MAGIC_PE_PLUS, ["DYNAMIC_BASE", "NX_COMPAT", "HIGH_ENTROPY_VA"]),
    }[bits]
    if (pe.FILE_HEADER.Machine != MACHINE_TYPE[f"IMAGE_FILE_MACHINE_{machine}"]
            or pe.OPTIONAL_HEADER.Magic != magic or not flags & IMAGE_CHARACTERISTICS["IMAGE_FILE_DLL"]):
        yield f"not a {bits}-bit x86 DLL"
    for name in wanted_flags:
        if not dll_flags & DLL_CHARACTERISTICS[f"IMAGE_DLLCHARACTERISTICS_{name}"]:
            yield f"{name} is not set"
    if flags & IMAGE_CHARACTERISTICS["IMAGE_FILE_RELOCS_STRIPPED"] or relocation_count(pe) == 0:
        yield "no relocations: the DLL cannot be loaded anywhere but at its base"
    if pe.FILE_HEADER.TimeDateStamp != 0:
        yield f"the header holds a time of build ({pe.FILE_HEADER.TimeDateStamp:#x}): two builds would differ"


def own_functions(nm, symbols, image_base):
    """What is compiled of our sources, as (name, address from the image's base)."""
    lines = subprocess.run([nm, "--format=posix", symbols], check=True, capture_output=True, encoding="utf-8").stdout
    names = re.findall(r"^(\S*3z3d\S*) [tT] ([0-9a-f]+)", lines, re.MULTILINE)
    return [(name, int(address, 16) - image_base) for name, address in names]


def check_unwinding(pe, bits, functions):
    """On x64 a function that moves the stack needs unwind data, or exceptions below it end the process."""
    if bits != 64:
        return
    directory = pe.OPTIONAL_HEADER.DATA_DIRECTORY[DIRECTORY_ENTRY["IMAGE_DIRECTORY_ENTRY_EXCEPTION"]]
    table = pe.get_data(directory.VirtualAddress, directory.Size) if directory.Size else b""
    covered = [(begin, end) for begin, end, _ in struct.iter_unpack("<III", table)]
    exports = pe.DIRECTORY_ENTRY_EXPORT.symbols if hasattr(pe, "DIRECTORY_ENTRY_EXPORT") else []
    for name, address in [*((symbol.name.decode("ascii"), symbol.address) for symbol in exports), *functions]:
        if not any(begin <= address < end for begin, end in covered):
            yield f"{name} has no unwind data"


def pointer_at(pe, address):
    read = pe.get_qword_at_rva if is_wide(pe) else pe.get_dword_at_rva
    return read(address - pe.OPTIONAL_HEADER.ImageBase)


def pointer_bytes(pe):
    return 8 if is_wide(pe) else 4


def tls_callback_count(pe, tls):
    count = 0
    while tls.AddressOfCallBacks and pointer_at(pe, tls.AddressOfCallBacks + pointer_bytes(pe) * count):
        count += 1
    return count


def check_tls(pe):
    if not hasattr(pe, "DIRECTORY_ENTRY_TLS"):
        return
    tls = pe.DIRECTORY_ENTRY_TLS.struct
    size = tls.EndAddressOfRawData - tls.StartAddressOfRawData + tls.SizeOfZeroFill
    callbacks = tls_callback_count(pe, tls)
    if size > RUNTIME_TLS_POINTERS * pointer_bytes(pe) or callbacks > RUNTIME_TLS_CALLBACKS:
        yield f"thread-local storage of {size} bytes and {callbacks} callbacks: something acts at load"


def version_strings(pe):
    return {key.decode(): value.decode()
            for info in pe.FileInfo[0] if hasattr(info, "StringTable")
            for table in info.StringTable for key, value in table.entries.items()}


def check_version(pe, version):
    numbers = tuple(int(part) for part in version.split("."))
    expected = (numbers + (0, 0, 0, 0))[:4]
    if not hasattr(pe, "VS_FIXEDFILEINFO"):
        yield "no version resource"
        return
    fixed = pe.VS_FIXEDFILEINFO[0]
    for kind, upper, lower in (("file", fixed.FileVersionMS, fixed.FileVersionLS),
                               ("product", fixed.ProductVersionMS, fixed.ProductVersionLS)):
        found = (upper >> 16, upper & 0xFFFF, lower >> 16, lower & 0xFFFF)
        if found != expected:
            yield f"{kind} version is {found}, expected {expected}"
    strings = version_strings(pe)
    for key, value in (("FileVersion", version), ("ProductVersion", version),
                       ("OriginalFilename", "Zentra3DRendering.dll")):
        if strings.get(key) != value:
            yield f"version string {key} is {strings.get(key)!r}, expected {value!r}"


def check_runtime(data):
    for mark in CPP_RUNTIME_MARKS:
        if mark in data:
            yield f"holds {mark.decode()!r}: part of the C++ run-time library was linked in"


def check_size(data, max_bytes):
    if len(data) > max_bytes:
        yield f"{len(data)} bytes, {len(data) - max_bytes} more than its budget of {max_bytes}"


def largest_symbols(nm, symbols, count):
    """Code and data as (bytes, name), the largest first; a size is the distance to the next symbol."""
    lines = subprocess.run([nm, "--demangle", "--print-size", "--size-sort", "--radix=d", symbols], check=True,
                           capture_output=True, encoding="utf-8").stdout.splitlines()
    fields = [line.split(maxsplit=3) for line in reversed(lines)]
    return [(int(size), name) for _, size, kind, name in fields if kind in "tTrRdD"][:count]


def read_dll(data):
    """Without the parts that nobody looks at here: parsing the unwind data takes longer than all others."""
    pe = PE(data=bytes(data), fast_load=True)
    pe.parse_data_directories([DIRECTORY_ENTRY[f"IMAGE_DIRECTORY_ENTRY_{name}"]
                               for name in ("EXPORT", "IMPORT", "RESOURCE", "BASERELOC", "TLS")])
    return pe


def complaints(data, definition, version, bits, max_bytes, functions=()):
    data = bytes(data)
    pe = read_dll(data)
    return [*check_exports(pe, definition), *check_imports(pe), *check_headers(pe, bits), *check_tls(pe),
            *check_unwinding(pe, bits, functions), *check_version(pe, version), *check_runtime(data), *check_size(data, max_bytes)]


def main():
    dll, definition, version, bits, max_bytes, symbols, nm = sys.argv[1:]
    with open(dll, "rb") as file:
        data = file.read()
    functions = own_functions(nm, symbols, read_dll(data).OPTIONAL_HEADER.ImageBase)
    with open(definition, encoding="ascii") as file:
        found = complaints(data, file.read(), version, int(bits), int(max_bytes), functions)
    if not functions:
        found.append(f"{symbols} names no function of ours")
    for complaint in found:
        print(f"{dll}: {complaint}")
    if len(data) > int(max_bytes):
        for size, name in largest_symbols(nm, symbols, 25):
            print(f"{size:8} {name}")
    if not found:
        print(f"{dll}: {len(data)} bytes, {len(export_names(read_dll(data)))} exports, nothing to complain about")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
