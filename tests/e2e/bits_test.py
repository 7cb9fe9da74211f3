"""The 32-bit binaries beside the 64-bit ones: the same libraries under the same names, with the same
exports, imports and protections.

Usage: bits_test.py OBJDUMP FOLDER_64 FOLDER_32
"""

import functools
import pathlib
import re
import subprocess
import sys
import unittest

sys.dont_write_bytecode = True
OBJDUMP, FOLDERS = sys.argv[1], {64: pathlib.Path(sys.argv[2]), 32: pathlib.Path(sys.argv[3])}

# What a program or library says of itself, as far as the two are the same: its kind and the
# protections it asks for, without the address space of 64 bits.
CHARACTERISTICS = 0x2002  # a library, executable
HIGH_ENTROPY, PROTECTIONS = 0x0020, 0x0140  # of the library's own flags; addresses, no execution

# A builtin type as large as a pointer is another type in 32 bits.
NARROWED = {"y": "[jm]", "x": "[il]"}


@functools.cache
def binary(path):
    return Binary(path)


class Binary:
    def __init__(self, path):
        run = subprocess.run([OBJDUMP, "-p", path], check=True, capture_output=True, encoding="utf-8")
        self.format = re.search(r"file format (\S+)", run.stdout).group(1)
        self.imports = {name.lower() for name in re.findall(r"DLL Name: (\S+)", run.stdout)}
        names = re.search(r"\[Ordinal/Name Pointer\] Table\n(.*?)\n\n", run.stdout, re.DOTALL)
        self.exports = set(re.findall(r"\[ *\d+\] (\S+)", names.group(1) if names else ""))
        header = dict(re.findall(r"^(\w+)\s+(?:0x)?([0-9a-f]+)\b", run.stdout[:3000], re.MULTILINE))
        self.subsystem = header["Subsystem"]
        self.characteristics = int(header["Characteristics"], 16) & CHARACTERISTICS
        self.protections = int(header["DllCharacteristics"], 16)
        # Where it can be moved to: a module without code needs nothing for it.
        self.movable = "HIGHLOW" in run.stdout or "DIR64" in run.stdout


def narrowed(name):
    """A pattern for the 32-bit name of a C++ export, whose types may be others but no parts else."""
    pattern, at = "", 0
    while at < len(name):
        length = re.match(r"[0-9]+", name[at:])
        if length:
            end = at + length.end() + int(length.group())
            pattern += re.escape(name[at:end])
            at = end
        else:
            pattern += f"(?:{name[at]}|{NARROWED[name[at]]})" if name[at] in NARROWED else name[at]
            at += 1
    return pattern


class Bits(unittest.TestCase):
    def pairs(self, pattern):
        names = {bits: {path.relative_to(folder) for path in folder.rglob(pattern)}
                 for bits, folder in FOLDERS.items()}
        found = sorted(name for name in names[32] if name in names[64])
        self.assertTrue(found)
        return [(name, binary(FOLDERS[64] / name), binary(FOLDERS[32] / name)) for name in found]

    def test_every_library_is_there(self):
        libraries = {path.relative_to(FOLDERS[32]) for path in FOLDERS[32].rglob("*.dll")}
        self.assertLessEqual({pathlib.Path(f"{name}.dll") for name in (
            "dlgfw", "mvcext", "mvpingui", "pinhost_flows", "vkerrmes", "vkevtsub", "vklog")},
            libraries)
        languages = {path.relative_to(FOLDERS[64]) for path in FOLDERS[64].rglob("mvpinguirc.dll")}
        self.assertGreater(len(languages), 5)
        self.assertLessEqual(languages, libraries)

    def test_the_headers_say_the_same(self):
        for name, wide, narrow in self.pairs("*.dll") + self.pairs("pinhost.exe"):
            with self.subTest(name):
                self.assertEqual((wide.format, narrow.format), ("pei-x86-64", "pei-i386"))
                self.assertEqual(wide.subsystem, narrow.subsystem)
                self.assertEqual(wide.characteristics, narrow.characteristics)
                self.assertEqual(narrow.protections & PROTECTIONS, PROTECTIONS)
                self.assertEqual(wide.protections & ~HIGH_ENTROPY, narrow.protections)
                self.assertEqual(wide.movable, narrow.movable)
                self.assertEqual(wide.imports, narrow.imports)

    def test_the_exports_are_the_same(self):
        for name, wide, narrow in self.pairs("*.dll"):
            # Conventions of callbacks, which the other kind has none of.
            left = [re.sub("U5cdecl|U7stdcall", "", export) for export in narrow.exports]
            plain = {export for export in wide.exports if not export.startswith("_Z")}
            with self.subTest(name):
                self.assertEqual({export for export in left if not export.startswith("_Z")}, plain)
                for export in sorted(wide.exports):
                    pattern = narrowed(export)
                    same = [export] if export in left else [
                        one for one in left if re.fullmatch(pattern, one)]
                    self.assertEqual(len(same), 1, f"{export}: {same}")
                    left.remove(same[0])
                self.assertEqual(left, [])


class NarrowedTest(unittest.TestCase):
    def test_types_alone_may_differ(self):
        for wide, narrow, fits in (("_ZN4CWnd9KillTimerEy", "_ZN4CWnd9KillTimerEj", True),
                                   ("_ZN4CWnd9KillTimerEy", "_ZN4CWnd9KillTimerEi", False),
                                   ("_ZN4CWnd9KillTimerEj", "_ZN4CWnd9KillTimerEm", False),
                                   ("_ZN1A4DaysEv", "_ZN1A4DajsEv", False),
                                   ("_ZN5CTimeC1Ex", "_ZN5CTimeC1Ex", True),
                                   ("_ZN4CWnd9OnCommandEyx", "_ZN4CWnd9OnCommandEjl", True),
                                   ("_ZN4CWnd9OnCommandEyx", "_ZN4CWnd9OnCommandEjl@8", False)):
            with self.subTest(narrow):
                self.assertEqual(re.fullmatch(narrowed(wide), narrow) is not None, fits)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
