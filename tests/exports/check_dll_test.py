#!/usr/bin/env python3
"""check_dll.py complains about a DLL that was tampered with, once per fault.

Usage: check_dll_test.py DLL DEFINITION VERSION
"""

import struct
import sys
import unittest

from check_dll import complaints
from pe_file import EXPORT_TABLE, IMPORT_TABLE, RELOCATION_TABLE, RESOURCE_TABLE, TLS_TABLE, PeFile

DLL, DEFINITION, VERSION = "", "", ""


class CheckDll(unittest.TestCase):
    def setUp(self):
        self.data = bytearray(DLL)
        self.pe = PeFile(DLL)

    def complaints(self, definition=None, version=None, max_bytes=1 << 30):
        return complaints(self.data, definition or DEFINITION, version or VERSION, max_bytes)

    def expect_one(self, text, **arguments):
        found = self.complaints(**arguments)
        self.assertEqual(len(found), 1, found)
        self.assertIn(text, found[0])

    def clear_directory(self, index):
        struct.pack_into("<II", self.data, self.pe.optional + 96 + 8 * index, 0, 0)

    def test_the_built_dll_is_sound(self):
        self.assertEqual(self.complaints(), [])

    def test_a_name_that_is_missing(self):
        self.expect_one("GetNothing is missing", definition=DEFINITION + "    GetNothing=GetNothing@4\n")

    def test_a_name_that_is_not_defined(self):
        first = self.pe.export_names()[0]
        rest = "\n".join(line for line in DEFINITION.splitlines() if f" {first}=" not in line)
        self.expect_one(f"{first} is not in", definition=rest)

    def test_a_decorated_name(self):
        name = self.pe.export_names()[0].encode()
        start = DLL.index(b"\0" + name + b"\0") + 1
        self.data[start + len(name) - 1:start + len(name)] = b"@"
        self.assertEqual(len(self.complaints()), 2)

    def test_a_foreign_runtime(self):
        entry = self.pe.offset_of(self.pe.directory(IMPORT_TABLE)[0])
        name = self.pe.offset_of(struct.unpack_from("<I", DLL, entry + 12)[0])
        self.data[name:name + 6] = b"libgcc"
        self.expect_one("is imported")

    def test_header_flags(self):
        for bit, name in ((0x40, "DYNAMIC_BASE"), (0x100, "NX_COMPAT")):
            self.data = bytearray(DLL)
            flags = self.pe.dll_characteristics & ~bit
            struct.pack_into("<H", self.data, self.pe.optional + 70, flags)
            self.expect_one(name)

    def test_no_relocations(self):
        self.clear_directory(RELOCATION_TABLE)
        self.expect_one("no relocations")

    def test_a_time_of_build(self):
        struct.pack_into("<I", self.data, self.pe.header + 8, 0x12345678)
        self.expect_one("0x12345678")

    def test_thread_local_data(self):
        tls = self.pe.offset_of(self.pe.directory(TLS_TABLE)[0])
        struct.pack_into("<I", self.data, tls + 16, 64)
        self.expect_one("thread-local")

    def test_no_version_resource(self):
        self.clear_directory(RESOURCE_TABLE)
        self.expect_one("no version resource")

    def test_another_version(self):
        self.assertEqual(len(self.complaints(version="9.8.7")), 4)

    def test_the_cpp_run_time_library(self):
        self.data += b"\0St9bad_alloc\0"
        self.expect_one("'bad_alloc'")

    def test_size(self):
        self.expect_one("to be below", max_bytes=len(DLL))

    def test_another_machine(self):
        struct.pack_into("<H", self.data, self.pe.header + 4, 0x8664)
        self.expect_one("not a 32-bit")

    def test_no_exports_at_all(self):
        self.clear_directory(EXPORT_TABLE)
        self.assertEqual(len(self.complaints()), len(self.pe.export_names()))


if __name__ == "__main__":
    VERSION = sys.argv.pop()
    with open(sys.argv.pop(), encoding="ascii") as file:
        DEFINITION = file.read()
    with open(sys.argv.pop(), "rb") as file:
        DLL = file.read()
    unittest.main()
