#!/usr/bin/env python3
"""Fails when a binding does not declare all functions of the DLL, or one with another number of argument bytes, which a
program would only notice by a crash; or when its modes are not those of the header, by name and number.

Usage: check_declarations.py MODULE_DEFINITION HEADER BINDINGS_FOLDER
The module definition names each function with the bytes of its arguments: 4 for each, 8 for a double by value."""

import pathlib
import re
import sys


def exported(definition):
    return {name: int(count) for name, count in re.findall(r"=(\w+)@(\d+)", definition)}


def bytes_of(arguments, is_double):
    return sum(8 if is_double(argument) else 4 for argument in arguments)


def split(text, separator=","):
    return [part.strip() for part in re.sub(r"\s+", " ", text).split(separator) if part.strip()]


def delphi(text):
    """`A, B: Double` are two arguments; those with var, const or out in front, and pointers, are addresses."""
    def arguments(group):
        names, kind = group.split(":")
        return [kind.strip() if not re.match(r"(var|const|out) ", names) else "address" for _ in names.split(",")]

    found = re.findall(r"^(?:function|procedure) (\w+)\(([^)]*)\)[^;]*;\s*stdcall;\s*external", text, re.MULTILINE)
    return {name: bytes_of([kind for group in split(groups, ";") for kind in arguments(group)], "Double".__eq__)
            for name, groups in found}


def csharp(text):
    found = re.findall(r"\[DllImport\(Dll\)\] public static extern \w+ (\w+)\(([^)]*)\)", text)
    return {name: bytes_of(split(arguments), lambda argument: argument.startswith("double ")) for name, arguments in found}


def visual_basic(text):
    found = re.findall(r'^Public Declare (?:Function|Sub) (\w+) Lib "Zentra3DRendering.dll" \(([^)]*)\)', text, re.MULTILINE)
    return {name: bytes_of(split(arguments), re.compile(r"ByVal \w+ As Double").match) for name, arguments in found}


def node(text):
    table = re.search(r"export const raw = declare\(dll, \[\n(.*?)^\]\);", text, re.MULTILINE | re.DOTALL).group(1)
    table = re.sub(r"'\s*\+\s*'", "", table)
    found = re.findall(r"\['[^']*', '(\w+)',\s*'([^']*)'\]", table)
    return {name: bytes_of(split(arguments), lambda argument: argument.startswith("double ")) for name, arguments in found}


def python(text):
    table = re.search(r"for _name, _result, \*_arguments in \[\n(.*?)\]:\n", text, re.DOTALL).group(1)
    found = re.findall(r'\("(\w+)", [^,]+, ([^"]*)\)(?:,|$)', table)
    return {name: bytes_of(split(arguments.replace("*_box", ", ".join(["c_short"] * 6))), "c_double".__eq__)
            for name, arguments in found}


def go(text):
    """Go declares names only; its calls are run."""
    return {name: None for name in re.findall(r'dll\.NewProc\("(\w+)"\)', text)}


def named(constants):
    """Modes by their names in small letters: each language has its own way of writing two words."""
    return {name.replace("_", "").lower(): int(number) for name, number in constants}


def numbered(names):
    return named((name, number) for number, name in enumerate(names))


def modes_of_header(text):
    return named(re.findall(r"\bRenderMode(\w+) = (\d+)", text))


def enumerated(begin, name, end):
    """The modes of an enumeration that gives each a number, on a line of its own."""
    def modes(text):
        body = re.search(begin + r"\n(.*?)" + end, text, re.DOTALL).group(1)
        return named(re.findall(r"^\s+" + name + r" = (\d+)", body, re.MULTILINE))
    return modes


def modes_of_delphi(text):
    names = re.search(r"TRenderMode = \(([^)]*)\);", text).group(1)
    return numbered(name.removeprefix("rm") for name in split(names))


def modes_of_go(text):
    body = re.search(r"const \(\n\s+(\w+ Mode = iota\n.*?)^\)", text, re.DOTALL | re.MULTILINE).group(1)
    return numbered(re.match(r"\s*(\w+)", line).group(1) for line in body.splitlines() if not line.strip().startswith("//"))


def modes_of_node(text):
    return named(re.findall(r"(\w+): (\d+)", re.search(r"export const Mode = Object.freeze\((.*?)\);", text).group(1)))


MODES = {"delphi": modes_of_delphi, "csharp": enumerated(r"enum RenderMode[^{]*\{", r"(\w+)", r"\}"),
         "vb6": enumerated(r"Public Enum \w+", r"rm(\w+)", "End Enum"), "node": modes_of_node,
         "python": enumerated(r"class Mode\([^)]*\):", r"(\w+)", r"\n\n\n"), "go": modes_of_go}

BINDINGS = {"delphi": ("*.pas", delphi), "csharp": ("Zentra3D.cs", csharp), "vb6": ("Zentra3D.bas", visual_basic),
            "node": ("zentra3d.mjs", node), "python": ("zentra3d/_*.py", python), "go": ("*.go", go)}


def main():
    definition, header, folder = map(pathlib.Path, sys.argv[1:])
    modes = modes_of_header(header.read_text(encoding="ascii"))
    wanted = exported(definition.read_text(encoding="ascii"))
    problems = []
    for language, (pattern, read) in BINDINGS.items():
        text = "\n".join(path.read_text(encoding="utf-8") for path in sorted((folder / language).glob(pattern)))
        declared = read(text)
        problems += [f"{language}: {name} is missing" for name in wanted.keys() - declared.keys()]
        problems += [f"{language}: {name} has {count} bytes of arguments, not {wanted.get(name)}"
                     for name, count in declared.items() if count not in (None, wanted.get(name))]
        if MODES[language](text) != modes:
            problems.append(f"{language}: its modes are {MODES[language](text)}, those of the header {modes}")
    if problems or len(wanted) != 23 or not modes:
        sys.exit("\n".join(sorted(problems)) or f"the module definition names {len(wanted)} functions")


main()
