"""What the icons hold: an image for each size, that can be told from a white ground and a black one.

Usage: art_test.py FOLDER, where the icons lie
"""

import pathlib
import struct
import subprocess
import sys
import unittest

FOLDER = pathlib.Path(sys.argv[1])
SIZES = {16, 24, 32, 48}
CLEAR = 3  # the contrast of pictures


def linear(component):
    value = component / 255
    return value / 12.92 if value <= 0.03928 else ((value + 0.055) / 1.055) ** 2.4


LINEAR = [linear(component) for component in range(256)]


def luminance(pixel):
    return 0.2126 * LINEAR[pixel[0]] + 0.7152 * LINEAR[pixel[1]] + 0.0722 * LINEAR[pixel[2]]


def contrast(one, other):
    dark, light = sorted((one, other))
    return (light + 0.05) / (dark + 0.05)


def sizes(icon):
    """Of its images, in their order; 0 is none that a byte could hold."""
    data = icon.read_bytes()
    count, = struct.unpack("<H", data[4:6])
    return [data[6 + 16 * index] for index in range(count)]


def images(icon, ground):
    """The size of each image and its pixels on the ground, row by row."""
    raw = subprocess.run(["convert", icon, "-background", ground, "-alpha", "remove", "-depth", "8",
                          "RGB:-"], check=True, capture_output=True).stdout
    for size in sizes(icon):
        length = 3 * size * size
        yield size, [raw[at:at + 3] for at in range(0, length, 3)]
        raw = raw[length:]


def reach(size, shown):
    """The first and last column and row of the pixels that are shown."""
    places = [divmod(at, size) for at, is_shown in enumerate(shown) if is_shown]
    return [edge(place[axis] for place in places) for axis in (1, 0) for edge in (min, max)]


class ArtTest(unittest.TestCase):
    def test_every_icon_has_an_image_for_each_size(self):
        icons = sorted(FOLDER.glob("*.ico"))
        self.assertTrue(icons)
        for icon in icons:
            self.assertLessEqual(SIZES, set(sizes(icon)), icon.name)

    def test_every_image_can_be_told_from_its_ground_as_far_as_it_reaches(self):
        for icon in sorted(FOLDER.glob("*.ico")):
            grounds = {name: list(images(icon, name)) for name in ("white", "black")}
            for index, size in enumerate(sizes(icon)):
                white, black = (grounds[name][index][1] for name in ("white", "black"))
                # What is drawn is much the same on both.
                drawn = [contrast(luminance(one), luminance(other)) < CLEAR
                         for one, other in zip(white, black)]
                # A line around it, for the other ground.
                margin = max(1, size // 8)
                for name, shown in (("white", white), ("black", black)):
                    ground = 1 if name == "white" else 0
                    clear = [contrast(luminance(pixel), ground) >= CLEAR for pixel in shown]
                    for edge, there in zip(reach(size, drawn), reach(size, clear)):
                        self.assertLessEqual(abs(edge - there), margin,
                                             f"{icon.name} at {size} pixels on {name}")


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
