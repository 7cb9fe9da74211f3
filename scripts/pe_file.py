"""What a Windows binary says of itself: sections, resources, the version among them."""

import dataclasses
import struct

RT_VERSION, RT_MANIFEST = 16, 24
X64, X86 = 0x8664, 0x14C
DIRECTORY_OF_EXPORTS, DIRECTORY_OF_RESOURCES = 0, 2


@dataclasses.dataclass
class Section:
    name: str
    address: int  # in memory, from where the file is loaded
    size: int
    offset: int   # in the file


class PeFile:
    """machine, stamp (seconds, 0 for none), symbols (how many), entry_point (0 where nothing runs),
    sections; resources: (type, name, language, bytes)."""

    def __init__(self, data):
        self.data = data
        head, = struct.unpack_from("<I", data, 0x3C)
        if data[:2] != b"MZ" or data[head:head + 4] != b"PE\0\0":
            raise ValueError("is no Windows binary")
        self.machine, count, self.stamp, _, self.symbols, length = struct.unpack_from(
            "<HHIIIH", data, head + 4)
        optional = head + 24
        self.checksum_at = optional + 64
        self.entry_point, = struct.unpack_from("<I", data, optional + 16)
        is_wide = struct.unpack_from("<H", data, optional)[0] == 0x20B
        self.directories = optional + (112 if is_wide else 96)
        self.sections = []
        for at in range(optional + length, optional + length + 40 * count, 40):
            name, _, address, size, offset = struct.unpack_from("<8sIIII", data, at)
            self.sections.append(Section(name.rstrip(b"\0").decode(), address, size, offset))

    def section_at(self, offset):
        """The name of the section in which a place of the file lies."""
        for section in self.sections:
            if section.offset <= offset < section.offset + section.size:
                return section.name
        return "the headers"

    def without_checksum(self):
        return self.data[:self.checksum_at] + bytes(4) + self.data[self.checksum_at + 4:]

    def _offset(self, address):
        for section in self.sections:
            if section.address <= address < section.address + section.size:
                return section.offset + address - section.address
        raise ValueError(f"has nothing at address {address:#x}")

    def _directory(self, number):
        """Where it lies in the file; 0 where there is none."""
        address, = struct.unpack_from("<I", self.data, self.directories + 8 * number)
        return self._offset(address) if address else 0

    @property
    def export_stamp(self):
        exports = self._directory(DIRECTORY_OF_EXPORTS)
        return struct.unpack_from("<I", self.data, exports + 4)[0] if exports else 0

    def resources(self):
        root = self._directory(DIRECTORY_OF_RESOURCES)
        if root:
            yield from self._leaves(root, root, ())

    def _leaves(self, root, table, path):
        named, numbered = struct.unpack_from("<HH", self.data, table + 12)
        for at in range(table + 16, table + 16 + 8 * (named + numbered), 8):
            name, place = struct.unpack_from("<II", self.data, at)
            if place & 0x80000000:
                yield from self._leaves(root, root + (place & 0x7FFFFFFF), (*path, name))
            else:
                address, size = struct.unpack_from("<II", self.data, root + place)
                offset = self._offset(address)
                yield (*path, name, self.data[offset:offset + size])

    def version_strings(self):
        """The strings of the version resource, by name, and its number as (1, 0, 0, 0)."""
        blocks = [data for kind, _, _, data in self.resources() if kind == RT_VERSION]
        if len(blocks) != 1:
            raise ValueError(f"has {len(blocks)} version resources")
        strings = {}
        _read_block(blocks[0], 0, strings)
        fixed = blocks[0].index(struct.pack("<I", 0xFEEF04BD))
        high, low = struct.unpack_from("<II", blocks[0], fixed + 8)
        return strings, (high >> 16, high & 0xFFFF, low >> 16, low & 0xFFFF)


def _read_block(data, at, strings):
    """A block is its lengths, its name, its value, and blocks within, each on four bytes."""
    length, value_length, is_text = struct.unpack_from("<HHH", data, at)
    name_end = at + 6
    while data[name_end:name_end + 2] != b"\0\0":
        name_end += 2
    name = data[at + 6:name_end].decode("utf-16-le")
    value = (name_end + 2 + 3) & ~3
    size = value_length * (2 if is_text else 1)
    if is_text and value_length:
        strings[name] = data[value:value + size].decode("utf-16-le").rstrip("\0")
    inner = (value + size + 3) & ~3
    while inner < at + length:
        inner = _read_block(data, inner, strings)
    return (at + length + 3) & ~3
