#!/usr/bin/env python3
"""check_dll.py complains about a DLL that was tampered with, once per fault.

Usage: check_dll_test.py DLL DEFINITION VERSION BITS SYMBOLS NM
"""

import sys
import unittest

from check_dll import complaints, export_names, largest_symbols, own_functions, read_dll
from pefile import DIRECTORY_ENTRY

DLL, DEFINITION, VERSION, BITS, SYMBOLS, NM = "", "", "", 0, "", ""


class CheckDll(unittest.TestCase):
    def setUp(self):
        self.pe = read_dll(DLL)
        self.data = DLL

    def complaints(self, definition=None, version=None, max_bytes=1 << 30, functions=()):
        return complaints(self.data, definition or DEFINITION, version or VERSION, BITS, max_bytes, functions)

    def expect_one(self, text, **arguments):
        found = self.complaints(**arguments)
        self.assertEqual(len(found), 1, found)
        self.assertIn(text, found[0])

    def clear_directory(self, name):
        directory = self.pe.OPTIONAL_HEADER.DATA_DIRECTORY[DIRECTORY_ENTRY[f"IMAGE_DIRECTORY_ENTRY_{name}"]]
        directory.VirtualAddress = directory.Size = 0
        self.data = self.pe.write()

    def test_the_built_dll_is_sound(self):
        self.assertEqual(self.complaints(), [])

    def test_a_name_that_is_missing(self):
        self.expect_one("GetNothing is missing", definition=DEFINITION + "    GetNothing=GetNothing@4\n")

    def test_a_name_that_is_not_defined(self):
        first = export_names(self.pe)[0]
        rest = "\n".join(line for line in DEFINITION.splitlines() if f" {first}=" not in line)
        self.expect_one(f"{first} is not in", definition=rest)

    def test_a_decorated_name(self):
        name = export_names(self.pe)[0].encode()
        self.data = DLL.replace(b"\0" + name + b"\0", b"\0" + name[:-1] + b"@\0")
        self.assertEqual(len(self.complaints()), 2)

    def test_a_foreign_runtime(self):
        entry = self.pe.DIRECTORY_ENTRY_IMPORT[0]
        self.pe.set_bytes_at_rva(entry.struct.Name, b"libgcc")
        self.data = self.pe.write()
        self.expect_one("is imported")

    def test_header_flags(self):
        flags = self.pe.OPTIONAL_HEADER.DllCharacteristics
        bits = [(0x40, "DYNAMIC_BASE"), (0x100, "NX_COMPAT")] + ([(0x20, "HIGH_ENTROPY_VA")] if BITS == 64 else [])
        for bit, name in bits:
            self.pe.OPTIONAL_HEADER.DllCharacteristics = flags & ~bit
            self.data = self.pe.write()
            self.expect_one(name)

    def test_no_relocations(self):
        self.clear_directory("BASERELOC")
        self.expect_one("no relocations")

    def test_a_time_of_build(self):
        self.pe.FILE_HEADER.TimeDateStamp = 0x12345678
        self.data = self.pe.write()
        self.expect_one("0x12345678")

    def test_thread_local_data(self):
        self.pe.DIRECTORY_ENTRY_TLS.struct.SizeOfZeroFill = 64
        self.data = self.pe.write()
        self.expect_one("thread-local")

    def test_no_version_resource(self):
        self.clear_directory("RESOURCE")
        self.expect_one("no version resource")

    def test_another_version(self):
        self.assertEqual(len(self.complaints(version="9.8.7")), 4)

    def test_the_cpp_run_time_library(self):
        self.data = DLL + b"\0St9bad_alloc\0"
        self.expect_one("'bad_alloc'")

    def test_size(self):
        self.assertEqual(self.complaints(max_bytes=len(DLL)), [])
        self.expect_one("1 more than its budget", max_bytes=len(DLL) - 1)

    def test_largest_symbols(self):
        symbols = largest_symbols(NM, SYMBOLS, 30)
        self.assertEqual(len(symbols), 30)
        self.assertEqual(symbols, sorted(symbols, key=lambda symbol: -symbol[0]))
        self.assertLess(sum(size for size, _ in symbols), len(DLL))
        self.assertTrue(any("z3d::render::" in name for _, name in symbols), symbols)

    def test_another_machine(self):
        self.pe.FILE_HEADER.Machine = 0x1C4
        self.data = self.pe.write()
        self.assertIn(f"not a {BITS}-bit", self.complaints()[0])

    def test_no_unwind_data(self):
        if BITS == 64:
            self.clear_directory("EXCEPTION")
            found = self.complaints()
            self.assertEqual(len(found), len(export_names(self.pe)))
            self.assertIn("has no unwind data", found[0])

    def test_a_function_inside_without_unwind_data(self):
        functions = own_functions(NM, SYMBOLS, self.pe.OPTIONAL_HEADER.ImageBase)
        self.assertGreater(len(functions), 2 * len(export_names(self.pe)))
        self.assertEqual(self.complaints(functions=functions), [])
        if BITS == 64:
            header = self.pe.sections[0].VirtualAddress - 1  # no code at all
            self.expect_one("Lost has no unwind data", functions=[*functions, ("Lost", header)])

    def test_no_exports_at_all(self):
        self.clear_directory("EXPORT")
        self.assertEqual(len(self.complaints()), len(export_names(self.pe)))


if __name__ == "__main__":
    NM = sys.argv.pop()
    SYMBOLS = sys.argv.pop()
    BITS = int(sys.argv.pop())
    VERSION = sys.argv.pop()
    with open(sys.argv.pop(), encoding="ascii") as file:
        DEFINITION = file.read()
    with open(sys.argv.pop(), "rb") as file:
        DLL = file.read()
    unittest.main()
