#!/usr/bin/env python3
"""make_package.py STAGE OUT.msi --version X.Y.Z: makes the package of what stage.py has gathered.

wixl makes the database and the cabinet; what its source cannot say (conditions, attributes, versions
of files) is written into the tables afterwards. The same stage gives the same bytes: every time is
SOURCE_DATE_EPOCH or, without it, a constant; every code is derived from names and contents.
"""

import argparse
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile

sys.dont_write_bytecode = True
sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent))
import contents  # noqa: E402
import database  # noqa: E402
from wix_source import wix_source  # noqa: E402

TIME = 1577836800  # 2020-01-01, UTC


def copy_with_fixed_times(stage, folder, seconds):
    """The cabinet takes times and rights of its files from the disk."""
    for source in sorted(path for path in stage.rglob("*") if path.is_file()):
        copy = folder / source.relative_to(stage)
        copy.parent.mkdir(parents=True, exist_ok=True)
        shutil.copyfile(source, copy)
        copy.chmod(0o644)
        os.utime(copy, (seconds, seconds))


def run(*command, folder):
    """Runs what says nothing when all is well: wixl only warns of what it does not know."""
    done = subprocess.run(command, cwd=folder, capture_output=True, text=True,
                          env={**os.environ, "TZ": "UTC", "LC_ALL": "C.UTF-8"})
    if done.returncode or done.stderr.strip():
        raise contents.Mistake(f"{command[0]}: {done.stderr.strip()}")


def make(stage, output, version):
    seconds = int(os.environ.get("SOURCE_DATE_EPOCH", TIME))
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        copy_with_fixed_times(stage, folder, seconds)
        package = contents.Package(folder, version)
        (folder / "package.wxs").write_text(wix_source(package), encoding="utf-8")
        run("wixl", "--arch", "x64", "--output", "package.msi", "package.wxs", folder=folder)
        run("msibuild", "package.msi", *(word for query in database.queries(package)
                                         for word in ("-q", query)), folder=folder)
        database.fix_summary(folder / "package.msi", seconds)
        shutil.copyfile(folder / "package.msi", output)


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("stage", type=pathlib.Path)
    parser.add_argument("output", type=pathlib.Path)
    parser.add_argument("--version", required=True)
    arguments = parser.parse_args()
    try:
        make(arguments.stage, arguments.output, arguments.version)
    except contents.Mistake as mistake:
        sys.exit(f"make_package: {mistake}")


if __name__ == "__main__":
    main()
