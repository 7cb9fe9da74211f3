"""Holds every #include line of the library against the rooms that the build declares.

usage: rooms_test.py SOURCE_DIR ROOMS_FILE

A room includes its own files, those of the rooms it names, and nothing else of the project. A line
of ROOMS_FILE reads "room|rooms it stands on|its public headers".
"""

import pathlib
import re
import sys
import tempfile

INCLUDE = re.compile(r'^\s*#\s*include\s*[<"]([^>"]+)[>"]', re.MULTILINE)
# Where an included name is looked for, and the path below src/ that it has there.
ROOTS = ("", "suite/", "framework/include/")


class Rooms:
    def __init__(self, root, lines):
        self.root = root
        self.uses = {}
        self.room_of_header = {}
        for line in lines:
            room, uses, headers = line.split("|")
            self.uses[room] = set(uses.split())
            self.room_of_header.update((header, room) for header in headers.split())

    def room_of(self, path):
        """The room of a path below src/: the innermost one that holds it."""
        return next((str(f) for f in path.parents if str(f) in self.uses), None)

    def target_of(self, included):
        """The room that an included name leads to; None for a file of the system."""
        if (self.root / "include" / included).is_file():
            return self.room_of_header.get(included, "no room")
        for path in (pathlib.Path(below + included) for below in ROOTS):
            if (self.root / "src" / path).is_file():
                return self.room_of(path)
        # What the build makes lies under its room's name, too.
        folder = str(pathlib.Path(included).parent)
        return folder if folder in self.uses else None

    def faults(self):
        src = self.root / "src"
        files = [(f.relative_to(src), f) for f in src.rglob("*.*") if f.suffix in (".h", ".cpp", ".rc")]
        owned = [(self.room_of(name), f) for name, f in files]
        owned += [(room, self.root / "include" / name) for name, room in self.room_of_header.items()]
        for room, path in owned:
            for included in INCLUDE.findall(path.read_text(encoding="latin-1")):
                target = self.target_of(included)
                if target is not None and target != room and target not in self.uses.get(room, ()):
                    yield f"{path.relative_to(self.root)}: {room} does not stand on {target} ({included})"


def planted_faults(lines):
    """What is found in a tree in which each room includes a file of the room declared after it."""
    rooms = [line.split("|")[0] for line in lines]
    with tempfile.TemporaryDirectory() as folder:
        root = pathlib.Path(folder)
        for room, above in zip(rooms, rooms[1:]):
            for name, text in ((f"{room}/x.cpp", f'#include "{above}/x.h"\n'), (f"{above}/x.h", "")):
                (root / "src" / name).parent.mkdir(parents=True, exist_ok=True)
                (root / "src" / name).write_text(text)
        return list(Rooms(root, [line.rsplit("|", 1)[0] + "|" for line in lines]).faults())


def main():
    lines = pathlib.Path(sys.argv[2]).read_text().splitlines()
    faults = list(Rooms(pathlib.Path(sys.argv[1]), lines).faults())
    found = len(planted_faults(lines))
    print(*faults, f"{len(lines)} rooms, {len(faults)} wrong arrows, {found} planted ones found", sep="\n")
    return 0 if not faults and found == len(lines) - 1 > 0 else 1


if __name__ == "__main__":
    sys.exit(main())
