"""Reads what the tests need of a 32-bit PE file: headers, exports, imports, TLS and version resource."""

import struct

EXPORT_TABLE, IMPORT_TABLE, RESOURCE_TABLE, RELOCATION_TABLE, TLS_TABLE = 0, 1, 2, 5, 9
VERSION_RESOURCE_TYPE = 16
FIXED_VERSION_SIGNATURE = 0xFEEF04BD


class PeFile:
    def __init__(self, data):
        self.data = bytes(data)
        if self.data[:2] != b"MZ":
            raise ValueError("no DOS header")
        self.header = self._u32(0x3C)
        if self.data[self.header:self.header + 4] != b"PE\0\0":
            raise ValueError("no PE header")
        self.machine, section_count, self.timestamp = struct.unpack_from("<HHI", self.data, self.header + 4)
        optional_size, self.characteristics = struct.unpack_from("<HH", self.data, self.header + 20)
        self.optional = self.header + 24
        self.magic = self._u16(self.optional)
        self.image_base = self._u32(self.optional + 28)
        self.dll_characteristics = self._u16(self.optional + 70)
        table = self.optional + optional_size
        self.sections = [struct.unpack_from("<8sIIII", self.data, table + 40 * index)
                         for index in range(section_count)]

    def _u16(self, offset):
        return struct.unpack_from("<H", self.data, offset)[0]

    def _u32(self, offset):
        return struct.unpack_from("<I", self.data, offset)[0]

    def _text(self, offset):
        return self.data[offset:self.data.index(b"\0", offset)].decode("ascii")

    def directory(self, index):
        """Address and size of a data directory; (0, 0) when there is none."""
        return struct.unpack_from("<II", self.data, self.optional + 96 + 8 * index)

    def offset_of(self, address):
        """Where in the file the byte of a relative virtual address is."""
        for _, virtual_size, start, raw_size, raw_start in self.sections:
            if start <= address < start + max(virtual_size, raw_size):
                return address - start + raw_start
        raise ValueError(f"address {address:#x} is in no section")

    def export_names(self):
        address, size = self.directory(EXPORT_TABLE)
        if size == 0:
            return []
        table = self.offset_of(address)
        names = self.offset_of(self._u32(table + 32))
        return [self._text(self.offset_of(self._u32(names + 4 * index)))
                for index in range(self._u32(table + 24))]

    def export_address_count(self):
        """Functions exported by ordinal, with or without a name."""
        address, size = self.directory(EXPORT_TABLE)
        return self._u32(self.offset_of(address) + 20) if size else 0

    def imported_dlls(self):
        address, size = self.directory(IMPORT_TABLE)
        if size == 0:
            return []
        entry = self.offset_of(address)
        dlls = []
        while self._u32(entry + 12) != 0:
            dlls.append(self._text(self.offset_of(self._u32(entry + 12))))
            entry += 20
        return dlls

    def relocation_count(self):
        address, size = self.directory(RELOCATION_TABLE)
        if size == 0:
            return 0
        block = self.offset_of(address)
        end = block + size
        count = 0
        while block < end:
            block_size = self._u32(block + 4)
            entries = struct.unpack_from(f"<{(block_size - 8) // 2}H", self.data, block + 8)
            count += sum(1 for relocation in entries if relocation >> 12 != 0)
            block += block_size
        return count

    def tls(self):
        """(bytes of thread-local data, number of callbacks), or None without a TLS directory."""
        address, size = self.directory(TLS_TABLE)
        if size == 0:
            return None
        start, end, _, callbacks, zero_fill, _ = struct.unpack_from("<6I", self.data, self.offset_of(address))
        count = 0
        if callbacks != 0:
            entry = self.offset_of(callbacks - self.image_base)
            while self._u32(entry + 4 * count) != 0:
                count += 1
        return end - start + zero_fill, count

    def version_resource(self):
        """Raw bytes of the version resource, or None."""
        address, size = self.directory(RESOURCE_TABLE)
        if size == 0:
            return None
        root = self.offset_of(address)
        node = self._resource_entry(root, root, VERSION_RESOURCE_TYPE)
        while node is not None and node & 0x80000000:
            node = self._resource_entry(root, root + (node & 0x7FFFFFFF), None)
        if node is None:
            return None
        data_address, data_size = struct.unpack_from("<II", self.data, root + node)
        start = self.offset_of(data_address)
        return self.data[start:start + data_size]

    def _resource_entry(self, root, table, wanted):
        """The offset in the entry with this id, or in the first one."""
        named, numbered = struct.unpack_from("<HH", self.data, table + 12)
        for index in range(named + numbered):
            identifier, offset = struct.unpack_from("<II", self.data, table + 16 + 8 * index)
            if wanted is None or identifier == wanted:
                return offset
        return None

    def fixed_versions(self):
        """File and product version as tuples of four numbers, or None."""
        resource = self.version_resource()
        if resource is None:
            return None
        start = resource.find(struct.pack("<I", FIXED_VERSION_SIGNATURE))
        if start < 0:
            return None
        high, low, product_high, product_low = struct.unpack_from("<4I", resource, start + 8)
        return tuple((upper >> 16, upper & 0xFFFF, lower >> 16, lower & 0xFFFF)
                     for upper, lower in ((high, low), (product_high, product_low)))

    def version_string(self, key):
        """A string of the version resource, or None."""
        resource = self.version_resource() or b""
        name = (key + "\0").encode("utf-16-le")
        start = resource.find(name)
        if start < 0:
            return None
        start += len(name)
        start += -start % 4
        words = resource[start:].decode("utf-16-le", errors="replace")
        return words[:words.index("\0")]
