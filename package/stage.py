#!/usr/bin/env python3
"""stage.py BUILD64 BUILD32 STAGE: gathers what the package holds from the builds for 64 and 32 bits.

    STAGE/x64/*.dll, pinhost.exe           the libraries, and the console host
    STAGE/x64/languages/fr/mvpinguirc.dll  the resource module of each language
    STAGE/x86/...                          the same for 32 bits, where BUILD32 is not -
    STAGE/template/                        the administrative template
    STAGE/licences/*.txt                   the project's licence, and those of what is linked in

STAGE is made anew.
"""

import pathlib
import shutil
import sys

sys.dont_write_bytecode = True
TOP = pathlib.Path(__file__).resolve().parent.parent
LIBRARIES = ("dlgfw.dll", "vklog.dll", "vkerrmes.dll", "vkevtsub.dll", "mvcext.dll", "mvpingui.dll")
PINHOST = ("pinhost.exe", "pinhost_flows.dll")
LANGUAGES = ("en", "fr", "de", "es", "it")


def copy(source, target):
    target.parent.mkdir(parents=True, exist_ok=True)
    shutil.copyfile(source, target)


def stage_binaries(build, folder):
    for name in (*LIBRARIES, *PINHOST):
        copy(build / "bin" / name, folder / name)
    for language in LANGUAGES:
        copy(build / "bin" / language / "Resources/Localized/mvpinguirc.dll",
             folder / "languages" / language / "mvpinguirc.dll")


def stage(build64, build32, folder):
    if folder.exists():
        shutil.rmtree(folder)
    stage_binaries(build64, folder / "x64")
    if build32:
        stage_binaries(build32, folder / "x86")
    template = build64 / "template"
    for path in sorted(template.rglob("*.*")):
        copy(path, folder / "template" / path.relative_to(template))
    for path in sorted([*TOP.glob("LICENSE*"), *TOP.glob("licences/*.txt")]):
        copy(path, folder / "licences" / (path.stem + ".txt"))


def main():
    if len(sys.argv) != 4:
        sys.exit(__doc__)
    build64, build32, folder = sys.argv[1:]
    stage(pathlib.Path(build64), None if build32 == "-" else pathlib.Path(build32),
          pathlib.Path(folder))


if __name__ == "__main__":
    main()
