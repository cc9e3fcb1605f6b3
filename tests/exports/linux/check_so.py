#!/usr/bin/env python3
"""Checks what a loader, a linker and an administrator see of the built libzentra3drendering.so.

Usage: check_so.py LIBRARY DEFINITION VERSION
Prints one line per complaint and fails when there is any.
"""

import re
import sys

from elftools.elf.dynamic import DynamicSection
from elftools.elf.elffile import ELFFile

# Stand-ins for the functions of Windows by which a host releases a picture.
PICTURE_RELEASE = {"GlobalHandle", "GlobalUnlock", "GlobalFree"}
ALLOWED_LIBRARIES = {"libc.so.6", "libm.so.6"}
NEWEST_LIBC = (2, 14)  # of 2011
# Asked for by the compiler's start-up files, and not needed by anybody.
START_UP = {"_ITM_deregisterTMCloneTable", "_ITM_registerTMCloneTable", "__cxa_finalize", "__gmon_start__"}
CPP_RUNTIME_MARKS = (b"terminate called", b"bad_alloc", b"__cxxabiv1", b"basic_string")


def defined_names(definition):
    """The undecorated names of a module definition in the alias form."""
    return set(re.findall(r"^ +(\w+)=\w+@\d+$", definition, re.MULTILINE))


def versions_of(elf):
    """The version node of each dynamic symbol: its name, None without one."""
    nodes = {}
    for node, names in elf.get_section_by_name(".gnu.version_d").iter_versions():
        nodes[node["vd_ndx"]] = next(iter(names)).name
    for need, nodes_of_library in elf.get_section_by_name(".gnu.version_r").iter_versions():
        nodes.update({node["vna_other"]: node.name for node in nodes_of_library})
    table = elf.get_section_by_name(".gnu.version")
    for index in range(table.num_symbols()):
        number = table.get_symbol(index)["ndx"]
        yield nodes.get(number & 0x7FFF) if isinstance(number, int) else None


def dynamic_symbols(elf):
    symbols = elf.get_section_by_name(".dynsym").iter_symbols()
    return [(symbol, version) for symbol, version in zip(symbols, versions_of(elf)) if symbol.name]


def check_exports(elf, definition, major):
    wanted = defined_names(definition)
    if len(wanted) != 23:
        yield f"the module definition has {len(wanted)} names"
    node = f"ZENTRA3DRENDERING_{major}"
    found = {}
    for symbol, version in dynamic_symbols(elf):
        if symbol["st_shndx"] not in ("SHN_UNDEF", "SHN_ABS"):
            found[symbol.name] = version
    wanted |= PICTURE_RELEASE
    yield from (f"{name} is not exported" for name in sorted(wanted - found.keys()))
    yield from (f"{name} is exported" for name in sorted(found.keys() - wanted))
    yield from (f"{name} has the version {version}" for name, version in sorted(found.items())
                if name in wanted and version != node)


def check_references(elf, definition):
    """All that is taken from the process is the C library's: no call of the library's own can lead out of it."""
    own = defined_names(definition) | PICTURE_RELEASE
    for symbol, version in dynamic_symbols(elf):
        if symbol["st_shndx"] != "SHN_UNDEF" or symbol.name in START_UP:
            continue
        number = re.fullmatch(r"GLIBC_(\d+)\.(\d+)(?:\.\d+)?", version or "")
        if number is None:
            yield f"{symbol.name} is taken from the process"
        elif tuple(map(int, number.groups())) > NEWEST_LIBC:
            yield f"{symbol.name} asks for {version}"
    names = elf.get_section_by_name(".dynsym")
    for section in elf.iter_sections():
        if section["sh_type"] not in ("SHT_RELA", "SHT_REL"):
            continue
        for relocation in section.iter_relocations():
            name = names.get_symbol(relocation["r_info_sym"]).name
            if name in own:
                yield f"{name} is looked up in the process"


def check_dynamic(elf, major):
    tags = [tag for section in elf.iter_sections() if isinstance(section, DynamicSection)
            for tag in section.iter_tags()]
    for tag in tags:
        if tag.entry.d_tag == "DT_NEEDED" and tag.needed not in ALLOWED_LIBRARIES:
            yield f"{tag.needed} is needed: every host would need it"
        if tag.entry.d_tag in ("DT_RPATH", "DT_RUNPATH", "DT_TEXTREL"):
            yield f"the library has a {tag.entry.d_tag}"
    sonames = [tag.soname for tag in tags if tag.entry.d_tag == "DT_SONAME"]
    if sonames != [f"libzentra3drendering.so.{major}"]:
        yield f"the library is named {sonames}"
    flags = {tag.entry.d_tag: tag.entry.d_val for tag in tags if tag.entry.d_tag in ("DT_FLAGS", "DT_FLAGS_1")}
    if flags.get("DT_FLAGS", 0) & 2 == 0:
        yield "the library does not look at itself first (DF_SYMBOLIC)"
    if flags.get("DT_FLAGS_1", 0) & 1 == 0:
        yield "addresses are not found at load (DF_1_NOW)"


def check_segments(elf):
    segments = {segment["p_type"]: segment for segment in elf.iter_segments()}
    if "PT_GNU_STACK" not in segments or segments["PT_GNU_STACK"]["p_flags"] & 1:
        yield "the stack is executable"
    if "PT_GNU_RELRO" not in segments:
        yield "relocated data stay writable"
    for segment in elf.iter_segments():
        if segment["p_type"] == "PT_LOAD" and segment["p_flags"] & 3 == 3:
            yield "a segment is writable and executable"
    if "PT_TLS" in segments:
        yield "every thread of the process would pay for thread-local memory"
    if elf.get_section_by_name(".note.gnu.build-id") is None:
        yield "the library has no build id: symbols cannot be matched"


def check_contents(data):
    yield from (f"the C++ run-time library is in ({mark.decode()})" for mark in CPP_RUNTIME_MARKS if mark in data)


def main():
    library, definition_path, version = sys.argv[1:]
    major = version.split(".")[0]
    with open(definition_path, encoding="ascii") as file:
        definition = file.read()
    with open(library, "rb") as file:
        elf = ELFFile(file)
        complaints = [*check_exports(elf, definition, major), *check_references(elf, definition),
                      *check_dynamic(elf, major), *check_segments(elf)]
        file.seek(0)
        complaints += check_contents(file.read())
    if elf.get_machine_arch() != "x64":
        complaints.append(f"the library is for {elf.get_machine_arch()}")
    if complaints:
        sys.exit("\n".join(complaints))


if __name__ == "__main__":
    main()
