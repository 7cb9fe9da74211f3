"""Whether a release can be made again: builds a copy of the sources in another folder, as another
user of another machine would, and compares every file with the first release."""

import os
import pathlib
import shutil
import struct
import subprocess
import sys
import tempfile
import zipfile

from pe_file import PeFile

# All that a build could take over from where it runs. No cache of compiled files stands in for it.
ELSEWHERE = {"TZ": "Pacific/Kiritimati", "LC_ALL": "C", "LANG": "C", "CCACHE_DISABLE": "1"}
JOBS = "2"  # the first build has the build tool's own number, one more than there are processors


def git(*arguments):
    return subprocess.run(["git", *arguments], check=True, capture_output=True, text=True).stdout


def copy_sources(top, copy):
    """A clone, and in it what the working tree has changed."""
    git("clone", "--quiet", str(top), str(copy))
    git("-C", str(copy), "checkout", "--quiet", "--detach", git("-C", str(top), "rev-parse", "HEAD").strip())
    changed = git("-C", str(top), "diff", "-z", "--name-only", "--no-renames", "HEAD").split("\0")
    added = git("-C", str(top), "ls-files", "-z", "--others", "--exclude-standard").split("\0")
    for name in filter(None, changed + added):
        (copy / name).unlink(missing_ok=True)
        if (top / name).exists():
            (copy / name).parent.mkdir(parents=True, exist_ok=True)
            shutil.copy(top / name, copy / name)


def first_difference(one, other):
    """The first place where they differ, and what lies there of a Windows binary."""
    sizes = f" ({len(one)} and {len(other)} bytes)" if len(one) != len(other) else ""
    binary = None
    try:
        first, second = PeFile(one), PeFile(other)
        # The checksum differs whenever anything does.
        binary, one, other = first, first.without_checksum(), second.without_checksum()
    except (ValueError, struct.error):
        pass
    shorter = min(len(one), len(other))
    place = next((at for at in range(shorter) if one[at] != other[at]), shorter)
    section = f", in {binary.section_at(place)}" if binary else ""
    return f"differs at byte {place:#x}{section}{sizes}"


def contents(folder):
    """Every file by its name; what an archive holds, too."""
    files = {path.relative_to(folder).as_posix(): path.read_bytes()
             for path in folder.rglob("*") if path.is_file()}
    for path in folder.glob("*.zip"):
        with zipfile.ZipFile(path) as archive:
            files.update({f"{path.name}: {name}": archive.read(name) for name in archive.namelist()})
    return files


def differences(one, other):
    """What the one folder and the other do not have in common."""
    first, second = contents(one), contents(other)
    for name in sorted(first.keys() | second.keys()):
        if name not in first or name not in second:
            yield f"{name} is only in the {'first' if name in first else 'second'} release"
        elif first[name] != second[name]:
            yield f"{name} {first_difference(first[name], second[name])}"


def check(top, first):
    """The exit code: 0 when the second release is the same bytes as the first."""
    with tempfile.TemporaryDirectory(prefix="mvpingui-release-") as name:
        copy = pathlib.Path(name) / "a-folder-with-another-name"
        os.umask(0o077)
        copy_sources(top, copy)
        command = [sys.executable, str(copy / "scripts/release"), "--jobs", JOBS]
        environment = {**os.environ, **ELSEWHERE}
        print("release: building the same again elsewhere", flush=True)
        if subprocess.run(command, env=environment, stdout=subprocess.DEVNULL).returncode:
            print("release: the second build failed", file=sys.stderr)
            return 1
        found = list(differences(first, copy / "build/release"))
    for difference in found:
        print(f"release: {difference}", file=sys.stderr)
    if not found:
        print(f"Both releases are the same bytes: {len(contents(first))} files.")
    return 1 if found else 0
