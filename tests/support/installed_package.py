"""Packages made for tests, and what they leave on the machine of a Wine prefix.

Within a wine-session of a prefix of its own, which WINEPREFIX names.
"""

import hashlib
import os
import pathlib
import re
import shutil
import struct
import subprocess
import sys

TOP = pathlib.Path(__file__).resolve().parents[2]
FIXED_VERSION = struct.pack("<II", 0xFEEF04BD, 0x10000)
DRIVE = pathlib.Path(os.environ.get("WINEPREFIX", "")) / "drive_c"

# What msiexec ends with, as far as it comes through: the lower eight bits.
DONE, REFUSED, RESTART_NEEDED = 0, 1603 & 255, 3010 & 255


def run(*command, **options):
    return subprocess.run(command, timeout=100, capture_output=True, **options)


def wine(*command, **options):
    return run("wine", *map(str, command), **options)


def digest(path):
    return hashlib.sha256(path.read_bytes()).hexdigest()[:16]


def set_version(binary, version):
    """Writes another version into the resources of a binary."""
    data = bytearray(binary.read_bytes())
    major, minor, patch = map(int, version.split("."))
    numbers = (major << 16 | minor, patch << 16)
    struct.pack_into("<IIII", data, data.index(FIXED_VERSION) + 8, *numbers, *numbers)
    binary.write_bytes(data)


class Release:
    """A version of the package. Its binaries differ from another version's in their own one."""

    def __init__(self, builds, folder, version):
        self.stage = folder / version
        self.package = folder / f"{version}.msi"
        self.tool("stage.py", *builds, self.stage)
        for path in self.stage.rglob("*.*"):
            if path.suffix in (".dll", ".exe"):
                set_version(path, version)
        self.tool("make_package.py", self.stage, self.package, "--version", version)

    @staticmethod
    def tool(name, *arguments):
        subprocess.run([sys.executable, "-B", TOP / "package" / name, *arguments], check=True)

    def has_32_bits(self):
        return (self.stage / "x86").exists()

    def msiexec(self, *arguments):
        """Installs the package in silence, or does with it what the arguments say: the code, and what
        Wine has to say of its installer."""
        how = ["/i"] if not arguments or not arguments[0].startswith("/") else []
        command = [*how, *arguments]
        command.insert(1, f"Z:{self.package}")
        environment = {**os.environ, "WINEDEBUG": "-all,err+all,warn+msi"}
        done = wine("msiexec", *command, "/qn", env=environment)
        return done.returncode, (done.stdout + done.stderr).decode(errors="replace")

    def staged(self, name):
        return digest(self.stage / name)

    def files(self, *features, language="en", folder="Program Files/Quillon/Veskara"):
        """What is to lie below the drive: {path: digest}."""
        places = {"Library": ("x64", folder), "Library32": ("x86", "Program Files (x86)/Quillon/Veskara")}
        expected = {}
        for feature in features:
            if feature in places:
                architecture, below = places[feature]
                expected[f"{below}/Resources/Localized/mvpinguirc.dll"] = self.staged(
                    f"{architecture}/languages/{language}/mvpinguirc.dll")
                for name in "dlgfw vklog vkerrmes vkevtsub mvcext mvpingui".split():
                    expected[f"{below}/{name}.dll"] = self.staged(f"{architecture}/{name}.dll")
            elif feature.startswith("Pinhost"):
                architecture, below = places[feature.replace("Pinhost", "Library")]
                for name in ("pinhost.exe", "pinhost_flows.dll"):
                    expected[f"{below}/{name}"] = self.staged(f"{architecture}/{name}")
            else:
                expected[f"{folder}/settings-sample.reg"] = self.staged("template/settings-sample.reg")
                for path in ("mvpingui.admx", *(f"{culture}/mvpingui.adml" for culture in
                                                ("de-DE", "en-US", "es-ES", "fr-FR", "it-IT"))):
                    expected[f"windows/PolicyDefinitions/{path}"] = self.staged(f"template/{path}")
        for path in self.stage.glob("licences/*.txt"):
            expected[f"{folder}/Licences/{path.name}"] = digest(path)
        return expected


def paths():
    """Every file and folder of the drive, links of the machine's user aside."""
    found = set()
    for folder, folders, files in os.walk(DRIVE):
        below = pathlib.Path(folder).relative_to(DRIVE)
        found |= {str(below / name) for name in folders + files}
    return found


# What the installer itself makes when it is used for the first time, and keeps.
INSTALLERS_OWN = re.compile(
    r"\\Installer(\\(Features|Products|UpgradeCodes|UserData(\\S-1-5-18(\\(Components|Products))?)?))?\]$")


def registry():
    """The lines of the machine's part of the registry, each with its key: {(key, line)}."""
    dump = DRIVE / "dump.reg"
    wine("reg", "export", "HKLM", "C:\\dump.reg", "/y", "/reg:64").check_returncode()
    lines, key = set(), ""
    for line in re.sub(r"\\\r\n *", "", dump.read_text(encoding="utf-16")).splitlines():
        key = line if line.startswith("[") else key
        if line and not (line == key and INSTALLERS_OWN.search(key)):
            lines.add((key, line))
    dump.unlink()
    return lines


def digests(names):
    return {name: digest(DRIVE / name) for name in names if (DRIVE / name).is_file()}


def values(key=r"Software\Quillon\Veskara"):
    """{name: text} of the values of a key below the local machine's; None when there is no key."""
    done = wine("reg", "query", f"HKLM\\{key}", "/reg:64", encoding="cp850")
    if done.returncode:
        return None
    return dict(re.findall(r"^    (\S+)    REG_\w+    (.*?)\r?$", done.stdout, re.MULTILINE))


class Guest:
    """A host that lies outside the package, and knows it by the registry alone."""

    def __init__(self, program, folder):
        self.program = shutil.copy(program, folder)
        self.folder = folder

    def ask(self):
        """What it writes of the dialog; its exit code."""
        done = wine(self.program, cwd=self.folder, encoding="utf-8")
        return done.returncode, done.stdout.splitlines() + done.stderr.splitlines()

    def hold(self):
        """A guest that has loaded the library. It asks when it is told to `go_on`."""
        guest = subprocess.Popen(["wine", self.program, "hold"], cwd=self.folder, encoding="utf-8",
                                 stdin=subprocess.PIPE, stdout=subprocess.PIPE)
        for line in guest.stdout:
            if line.strip() == "held":
                return guest
        raise AssertionError(f"it ended with {guest.wait()}")


def go_on(guest):
    output, _ = guest.communicate("\n", timeout=60)
    return guest.returncode, output.splitlines()
