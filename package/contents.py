"""What the package holds: its folders, its features, and the components that a feature installs.

A component is one file, or some files, in one folder with what it writes into the registry. Its code
is derived from where it lies, and so stays the same from version to version.
"""

import dataclasses
import pathlib
import re
import sys
import uuid

from stage import LANGUAGES, LIBRARIES, PINHOST, TOP

sys.path.append(str(TOP / "src/settings"))
from schema import Schema  # noqa: E402

NAMESPACE = uuid.UUID("7c0f2a51-6d0b-4b7e-9a3f-2f5c1f0e8d44")
INSTALL_PATH = Schema().by_id["InstallPath"]
SETUP_KEY = INSTALL_PATH.key + r"\Setup"  # what an upgrade and a repair have to know again
ARCHITECTURES = (("x64", ""), ("x86", "32"))
LANGUAGE_NAMES = {"en": "English", "fr": "French", "de": "German", "es": "Spanish", "it": "Italian"}


class Mistake(Exception):
    """The stage is not what a package can be made of."""


def code(*names):
    return "{" + str(uuid.uuid5(NAMESPACE, "/".join(names))).upper() + "}"


@dataclasses.dataclass
class Component:
    id: str
    folder: str             # the identifier of its folder
    files: list             # paths below the stage; the first is the key path. None: the folder itself
    values: list = dataclasses.field(default_factory=list)  # (key, name, text)
    is64: bool = True
    condition: str = ""


@dataclasses.dataclass
class Feature:
    id: str
    title: str
    description: str
    components: list
    parent: str = ""
    is_optional: bool = False      # its absence outlasts an upgrade
    follows_parent: bool = False   # it cannot be left out where its parent is installed

    def __post_init__(self):
        if self.is_optional:
            self.components[0].values.append((SETUP_KEY, self.id, "1"))

    @property
    def memory(self):
        """The property that says of an older version whether it had the feature."""
        return "HAD" + self.id.upper()


def language_condition(language):
    """English unless another one is asked for now, or was before."""
    chosen = f'UILANGUAGE="{language}"'
    kept = f'REMEMBEREDLANGUAGE="{language}"'
    if language == LANGUAGES[0]:
        kept = f"(NOT REMEMBEREDLANGUAGE OR {kept})"
    return f"{chosen} OR (NOT UILANGUAGE AND {kept})"


class Package:
    NAME = "Veskara PIN user interface"
    MANUFACTURER = "Quillon"
    UPGRADE_CODE = code("upgrade")

    def __init__(self, stage, version):
        if not re.fullmatch(r"\d{1,3}\.\d{1,3}\.\d{1,5}", version):
            raise Mistake(f"{version} is no version: three numbers are compared")
        self.stage = pathlib.Path(stage)
        self.version = version
        self.product_code = code("product", version)
        self.features = []
        for architecture, suffix in ARCHITECTURES:
            if architecture == "x64" or (self.stage / architecture).is_dir():
                self.add_binaries(architecture, suffix)
        self.add_template()
        held = {file for component in self.components() for file in component.files}
        there = {str(path.relative_to(self.stage)) for path in self.stage.rglob("*") if path.is_file()}
        if held != there:
            raise Mistake(f"missing: {sorted(held - there)}, unknown: {sorted(there - held)}")

    def components(self):
        return [component for feature in self.features for component in feature.components]

    def files(self):
        """(identifier, path below the stage) of every file, in the order of the cabinet."""
        return [(file_id(name), name) for component in self.components() for name in component.files]

    def add(self, *arguments, **options):
        self.features.append(Feature(*arguments, **options))

    def add_binaries(self, architecture, suffix):
        is64, bits = architecture == "x64", "64" if architecture == "x64" else "32"
        library = "Library" + suffix
        folder = "INSTALLDIR" + suffix
        parts = [Component("Place" + suffix, "QUILLON" + suffix, [],
                           [(INSTALL_PATH.key, INSTALL_PATH.value, f"[{folder}]"),
                            (SETUP_KEY, "Folder", f"[{folder}]")], is64),
                 Component(library, folder, [f"{architecture}/{name}" for name in LIBRARIES], [], is64)]
        if is64:
            parts.append(Component("Licences", "LICENCES", self.names("licences/*.txt")))
        self.add(library, f"Library, {bits} bits", f"The libraries for programs of {bits} bits.", parts,
                 parent="" if is64 else "Library", is_optional=not is64)
        for language in LANGUAGES:
            name = f"Language{suffix}_{language}"
            file = f"{architecture}/languages/{language}/mvpinguirc.dll"
            component = Component(name, "LOCALIZED" + suffix, [file],
                                  [(SETUP_KEY, "Language", language)], is64,
                                  language_condition(language))
            self.add(name, LANGUAGE_NAMES[language], "Installed where UILANGUAGE names it.",
                     [component], library, follows_parent=True)
        pinhost = "Pinhost" + suffix
        self.add(pinhost, f"Console host, {bits} bits", "Shows the dialogs, and the settings in force.",
                 [Component(pinhost, folder, [f"{architecture}/{name}" for name in PINHOST], [], is64)],
                 library, is_optional=True)

    def add_template(self):
        cultures = sorted(path.parent.name for path in self.stage.glob("template/*/mvpingui.adml"))
        parts = [Component("Template", "POLICYDEFINITIONS", ["template/mvpingui.admx"]),
                 Component("Settings", "INSTALLDIR", ["template/settings-sample.reg"])]
        parts += [Component(identifier("Template", culture), identifier("POLICIES", culture),
                            [f"template/{culture}/mvpingui.adml"]) for culture in cultures]
        self.add("Template", "Administrative template", "The policies, for the policy editor.", parts,
                 is_optional=True)

    @staticmethod
    def rules():
        """(condition, what is said where it does not hold) of every installation."""
        known = " OR ".join(["NOT UILANGUAGE", *(f'UILANGUAGE="{name}"' for name in LANGUAGES)])
        yield known, f"UILANGUAGE must be one of {', '.join(LANGUAGES)}."
        # All languages lie in one place, and a file that is there in its version is not replaced.
        yield ('NOT Installed OR REMOVE="ALL" OR NOT UILANGUAGE OR UILANGUAGE=REMEMBEREDLANGUAGE',
               "[ProductName] is installed in another language. Remove it first.")

    def names(self, pattern):
        names = sorted(str(path.relative_to(self.stage)) for path in self.stage.glob(pattern))
        if not names:
            raise Mistake(f"the stage has no {pattern}")
        return names

    def folders(self):
        """(identifier, parent, name); a parent comes before what lies in it."""
        yield "QUILLON", "ProgramFiles64Folder", "Quillon"
        yield "INSTALLDIR", "QUILLON", "Veskara"
        yield "LICENCES", "INSTALLDIR", "Licences"
        for suffix in ("", "32"):
            if suffix:
                yield "QUILLON32", "ProgramFilesFolder", "Quillon"
                yield "INSTALLDIR32", "QUILLON32", "Veskara"
            yield "RESOURCES" + suffix, "INSTALLDIR" + suffix, "Resources"
            yield "LOCALIZED" + suffix, "RESOURCES" + suffix, "Localized"
        yield "POLICYDEFINITIONS", "WindowsFolder", "PolicyDefinitions"
        for culture in sorted(path.parent.name for path in self.stage.glob("template/*/*.adml")):
            yield identifier("POLICIES", culture), "POLICYDEFINITIONS", culture


def identifier(*parts):
    return re.sub(r"[^A-Za-z0-9_.]", "_", "_".join(parts))


def file_id(name):
    return identifier("F", name.replace("/", "."))
