"""Reads the files of a cabinet, as the system's installer finds them in a package."""

import struct
import zlib

WINDOW = 32768  # a block may repeat what the one before it holds


def _folder(data, at, blocks):
    """The bytes of a folder, whose blocks are compressed one by one."""
    folder = bytearray()
    for _ in range(blocks):
        _, packed, size = struct.unpack_from("<IHH", data, at)
        start = at + 8
        block = data[start:start + packed]
        if block[:2] != b"CK":
            raise ValueError("a block of the cabinet is not compressed by MSZIP")
        plain = zlib.decompressobj(-15, zdict=bytes(folder[-WINDOW:])).decompress(block[2:])
        if len(plain) != size:
            raise ValueError("a block of the cabinet is not whole")
        folder += plain
        at = start + packed
    return bytes(folder)


def read_cabinet(data):
    """The bytes of every file, by the name that the cabinet has for it."""
    if data[:4] != b"MSCF":
        raise ValueError("is no cabinet")
    first_file, = struct.unpack_from("<I", data, 16)
    folder_count, file_count, flags = struct.unpack_from("<HHH", data, 26)
    if flags:
        raise ValueError("the cabinet has parts that are not read here")
    folders = [_folder(data, *struct.unpack_from("<IH", data, 36 + 8 * number))
               for number in range(folder_count)]
    files, at = {}, first_file
    for _ in range(file_count):
        size, offset, folder = struct.unpack_from("<IIH", data, at)
        end = data.index(b"\0", at + 16)
        name = data[at + 16:end].decode()
        files[name] = folders[folder][offset:offset + size]
        at = end + 1
    return files
