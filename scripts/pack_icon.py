"""Packs PNG files into an icon: pack_icon.py OUTPUT.ico IMAGE.png...

From 64 pixels on an image stays the PNG that it is, which the system reads and which is a tenth as
large. Smaller ones become bitmaps, as every program reads them.
"""

import pathlib
import struct
import subprocess
import sys

FIRST_PNG = 64


def bitmap(raw, size):
    """The image with 32 bits a pixel, rows from the bottom, and the mask of where it is clear."""
    rows = [raw[at:at + 4 * size] for at in range(0, len(raw), 4 * size)][::-1]
    mask = b""
    for row in rows:
        bits = "".join("0" if alpha else "1" for alpha in row[3::4])
        bits += "0" * (-len(bits) % 32)
        mask += int(bits, 2).to_bytes(len(bits) // 8, "big")
    header = struct.pack("<IiiHHIIiiII", 40, size, 2 * size, 1, 32, 0, len(raw), 0, 0, 0, 0)
    return header + b"".join(rows) + mask


def read(files):
    """The size of each image, which is square, and its bytes."""
    raw = subprocess.run(["convert", *files, "-depth", "8", "BGRA:-"], check=True,
                         capture_output=True).stdout
    for file in files:
        png = pathlib.Path(file).read_bytes()
        size, = struct.unpack(">I", png[16:20])
        pixels, raw = raw[:4 * size * size], raw[4 * size * size:]
        yield size, png if size >= FIRST_PNG else bitmap(pixels, size)


def main(output, *files):
    """An entry of 16 bytes for each image, then the images."""
    images = list(read(files))
    at = 6 + 16 * len(images)
    entries = struct.pack("<HHH", 0, 1, len(images))
    for size, data in images:
        entries += struct.pack("<BBBBHHII", size % 256, size % 256, 0, 0, 1, 32, len(data), at)
        at += len(data)
    pathlib.Path(output).write_bytes(entries + b"".join(data for _, data in images))


if __name__ == "__main__":
    main(*sys.argv[1:])
