"""Contact sheets of the pictures that looks.exe has taken."""

import struct
import subprocess


def size_of(picture):
    """From the header of a PNG file."""
    return struct.unpack(">II", picture.read_bytes()[16:24])


def draw(pictures, target):
    """One small PNG of all pictures of a folder, in rows of about the same height."""
    width, gap, line = 2400, 12, 16
    files = sorted(pictures.glob("*.png"), key=lambda file: (-size_of(file)[1], file.name))
    words, left, top, row = [], gap, gap, 0
    for file in files:
        wide, high = size_of(file)
        if left + wide + gap > width:
            left, top, row = gap, top + row + line + gap, 0
        words += [file, "-geometry", f"+{left}+{top}", "-composite", "-annotate",
                  f"+{left}+{top + high + line - 4}", file.stem]
        left, row = left + max(wide, 7 * len(file.stem)) + gap, max(row, high)
    subprocess.run(["convert", "-size", f"{width}x{top + row + line + gap}", "xc:white", "-font",
                    "/usr/share/wine/fonts/tahoma.ttf", "-pointsize", "11", *words, "+dither",
                    "-colors", "40", "-strip", f"PNG8:{target}"], check=True)
