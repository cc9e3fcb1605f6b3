#!/usr/bin/env python3
"""Fails when a binding does not declare all functions of the DLL, or one with another number of argument bytes, which a
program would only notice by a crash.

Usage: check_declarations.py MODULE_DEFINITION BINDINGS_FOLDER
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


BINDINGS = {"delphi": ("*.pas", delphi), "csharp": ("Zentra3D.cs", csharp), "vb6": ("Zentra3D.bas", visual_basic),
            "node": ("zentra3d.mjs", node), "python": ("zentra3d.py", python), "go": ("*.go", go)}


def main():
    definition, folder = map(pathlib.Path, sys.argv[1:])
    wanted = exported(definition.read_text(encoding="ascii"))
    problems = []
    for language, (pattern, read) in BINDINGS.items():
        text = "\n".join(path.read_text(encoding="utf-8") for path in sorted((folder / language).glob(pattern)))
        declared = read(text)
        problems += [f"{language}: {name} is missing" for name in wanted.keys() - declared.keys()]
        problems += [f"{language}: {name} has {count} bytes of arguments, not {wanted.get(name)}"
                     for name, count in declared.items() if count not in (None, wanted.get(name))]
    if problems or len(wanted) != 23:
        sys.exit("\n".join(sorted(problems)) or f"the module definition names {len(wanted)} functions")


main()
