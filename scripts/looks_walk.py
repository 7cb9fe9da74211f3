"""Lets looks.exe walk over every window in some combinations, within a wine-session.

    looks_walk.py FOLDER COMBINATION...

Writes FOLDER/COMBINATION.json for each, and its pictures beside it where they are asked for, and
prints its name when that is done. The resolution and the visual styles are settings of the Wine
prefix, which are put back.
"""

import pathlib
import re
import signal
import subprocess
import sys
import typing

TOP = pathlib.Path(__file__).resolve().parent.parent
BIN = TOP / "build/windows/bin"


class Combination(typing.NamedTuple):
    """What the windows are walked over in. Its name, which parse takes apart again, names files."""
    language: str
    percent: int
    styles: str  # visual styles: "styles" or "classic"
    colours: str
    # How a window closes, and what the about box tells of an installed product, depend on none of
    # the others, so only some combinations try the close button, with a product installed.
    thorough: str = ""  # "thorough" or nothing
    pictures: str = ""  # "pictures" or nothing
    screen: str = ""  # "small" or nothing

    def name(self):
        return ",".join(map(str, self)).rstrip(",")

    @classmethod
    def parse(cls, name):
        language, percent, *words = name.split(",")
        return cls(language, int(percent), *words)

    def __str__(self):
        screen = ", small screen" if self.screen else ""
        return f"{self.language} {self.percent} % {self.styles} {self.colours}{screen}"


class Setting:
    """A value of the prefix's registry, put back at the end."""

    def __init__(self, key, name, kind):
        self.path = [key, "/v", name]
        self.kind = kind
        said = self.reg("query", *self.path).stdout
        found = re.search(rf"{name}\s+{kind}\s+(\S+)", said)
        self.before = found.group(1) if found else None
        self.now = self.before

    @staticmethod
    def reg(verb, *words):
        return subprocess.run(["wine", "reg.exe", verb, *words], capture_output=True, text=True,
                              timeout=60, check=False)

    def set(self, value):
        if value != self.now:
            self.reg("add", *self.path, "/t", self.kind, "/d", value, "/f")
            self.now = value

    def restore(self):
        if self.before is not None:
            self.set(self.before)
        elif self.now is not None:
            self.reg("delete", *self.path, "/f")


def walk(one, folder):
    words = ["wine", BIN / "looks.exe", "--colours", one.colours]
    if one.thorough:
        words = [TOP / "scripts/with-demo-product", "4.2.1.1204", *words, "--close-button"]
    if one.pictures:
        pictures = folder / one.name()
        pictures.mkdir()
        words += ["--pictures", f"Z:{pictures}"]
    subprocess.run([*words, f"Z:{folder / one.name()}.json"], cwd=BIN / one.language, timeout=120,
                   check=True)


def main():
    signal.signal(signal.SIGTERM, lambda *_: sys.exit(143))
    folder = pathlib.Path(sys.argv[1])
    resolution = Setting(r"HKCU\Control Panel\Desktop", "LogPixels", "REG_DWORD")
    styles = Setting(r"HKCU\Software\Microsoft\Windows\CurrentVersion\ThemeManager", "ThemeActive",
                     "REG_SZ")
    try:
        for name in sys.argv[2:]:
            one = Combination.parse(name)
            resolution.set(hex(96 * one.percent // 100))
            styles.set("1" if one.styles == "styles" else "0")
            walk(one, folder)
            print(name, flush=True)
    finally:
        resolution.restore()
        styles.restore()


if __name__ == "__main__":
    main()
