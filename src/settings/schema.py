"""Reads settings.toml and the administrators' texts, and refuses what contradicts itself.

A mistake ends the build with the file and the line that it stands in.
"""

import dataclasses
import pathlib
import re
import sys
import tomllib

HERE = pathlib.Path(__file__).resolve().parent
# The languages of the texts, with the names that policy editors look for them by.
CULTURES = {"en": "en-US", "de": "de-DE", "es": "es-ES", "fr": "fr-FR", "it": "it-IT"}

IDENTIFIER = re.compile(r"[A-Za-z][A-Za-z0-9_]*")
BRACES = re.compile(r"\{(\w+)\}")
REGISTRY_TYPES = {"number": ["REG_DWORD"], "text": ["REG_SZ"]}
ALL_TYPES = {"number": {"REG_DWORD"}, "text": {"REG_SZ", "REG_EXPAND_SZ"}}
# What stands between quotation marks in the sources that are made.
PLAIN = re.compile(r'[ !#-~]*')
# Characters that no XML has, in whatever spelling.
NO_XML = re.compile(r"[^\t\n\r\x20-\ud7ff\ue000-\ufffd\U00010000-\U0010ffff]")
TABLES = {"setting", "category", "policy"}
GREATEST = 2**32 - 1


class Mistake(Exception):
    """What is wrong, with the file and the line."""


@dataclasses.dataclass
class Setting:
    id: str
    key: str
    value: str
    type: str
    windows: list
    does: str
    ignored: str
    registry: list | str = ""
    size: int = 4
    limits: list = dataclasses.field(default_factory=lambda: [0, GREATEST])
    choices: dict = dataclasses.field(default_factory=dict)
    default: int | str | None = None
    absent: str = "none"
    terminated: bool = False
    strictly: list = dataclasses.field(default_factory=list)
    shortest: int = 0
    short: str = "refused"
    beyond: str = "kept"

    def is_number(self):
        return self.type == "number"

    def suggested(self):
        """What an administrator may start from: of a number, the limit next to the default."""
        return min(max(self.default, self.limits[0]), self.limits[1])


@dataclasses.dataclass
class Policy:
    id: str
    category: str
    switch: str = ""
    on: int = 1
    off: int = 0
    elements: list = dataclasses.field(default_factory=list)


@dataclasses.dataclass
class Category:
    id: str
    parent: str = ""


class Source:
    """A file, and the lines that its names stand in."""

    def __init__(self, path):
        self.path = path
        try:
            whole = path.read_bytes()
            self.lines = whole.decode().splitlines()
            self.data = tomllib.loads("\n".join(self.lines) + "\n")
        except FileNotFoundError as error:
            raise Mistake(f"{path.name}:1: there is no such file") from error
        except UnicodeDecodeError as error:
            line = whole[:error.start].count(b"\n") + 1
            raise Mistake(f"{path.name}:{line}: it is not UTF-8") from error
        except tomllib.TOMLDecodeError as error:
            found = re.search(r"line (\d+)", str(error))
            line = found.group(1) if found else len(self.lines)
            raise Mistake(f"{path.name}:{line}: {error}") from error

    def line_of(self, *patterns):
        """Of the last pattern, each looked for from where the one before it was found."""
        at = 0
        for pattern in patterns:
            for number in range(at, len(self.lines)):
                if re.search(pattern, self.lines[number]):
                    at = number
                    break
        return at + 1

    def mistake(self, text, *patterns):
        return Mistake(f"{self.path.name}:{self.line_of(*patterns)}: {text}")


class Schema:
    def __init__(self, folder=HERE):
        self.source = Source(folder / "settings.toml")
        self.root = self.head("root", PLAIN)
        self.revision = self.head("revision", re.compile(r"\d{1,4}\.\d{1,4}"))
        for name in self.source.data.keys() - TABLES - {"root", "revision"}:
            raise self.source.mistake(f"{name} is not known", rf"^(\[\[)?{re.escape(name)}\b")
        self.settings = self.records("setting", Setting)
        self.categories = self.records("category", Category)
        self.policies = self.records("policy", Policy)
        self.by_id = {one.id: one for one in self.settings}
        for one in self.settings:
            self.check_setting(one)
        for one in self.policies:
            self.check_policy(one)
        for one in self.categories:
            self.check_category(one)
        self.texts = {language: Source(folder / "texts" / f"{language}.toml")
                      for language in CULTURES}
        for path in sorted((folder / "texts").iterdir()):
            if path.stem not in CULTURES or path.suffix != ".toml":
                raise Mistake(f"{path.name}:1: it is the file of no language that is known")
        for language in CULTURES:
            self.check_texts(language)

    def head(self, name, pattern):
        text = self.source.data.get(name)
        if not isinstance(text, str) or not pattern.fullmatch(text):
            raise self.source.mistake(f"{name} is {text!r}", rf"^{name}\b")
        return text

    def fault(self, kind, one, text, field=""):
        """In the line of the field, or of the identifier where there is none."""
        patterns = [rf"^\[\[{kind}\]\]", rf'^id = "{one.id}"']
        start = self.source.line_of(*patterns)
        for number in range(start, len(self.source.lines)):
            line = self.source.lines[number]
            if line.startswith("["):
                break
            if field and re.match(rf"{field}\s*=", line):
                return Mistake(f"{self.source.path.name}:{number + 1}: {kind} {one.id}: {text}")
        return Mistake(f"{self.source.path.name}:{start}: {kind} {one.id}: {text}")

    def records(self, kind, make):
        """The file's tables of a kind; each has an identifier of its own."""
        found = []
        for number, raw in enumerate(self.source.data.get(kind, [])):
            headers = [rf"^\[\[{kind}\]\]"] + [r"^id = ", rf"^\[\[{kind}\]\]"] * number
            headers += [r"^id = "] if "id" in raw else []
            if not IDENTIFIER.fullmatch(str(raw.get("id", ""))):
                raise self.source.mistake(f"a {kind} needs an id of letters and digits", *headers)
            try:
                found.append(make(**raw))
            except TypeError as error:
                unknown = re.search(r"unexpected keyword argument '(\w+)'", str(error))
                raise self.source.mistake(
                    f"{kind} {raw['id']}: {str(error).split('() ')[-1]}", *headers,
                    *([rf"^{unknown[1]}\s*="] if unknown else [])) from error
            if found[-1].id in (one.id for one in found[:-1]):
                raise self.source.mistake(f"there are two {kind} {raw['id']}", *headers)
            self.check_types(kind, found[-1])
        return found

    def check_types(self, kind, one):
        for field in dataclasses.fields(one):
            value = getattr(one, field.name)
            if not isinstance(value, field.type) or isinstance(value, bool) != (field.type is bool):
                raise self.fault(kind, one, f"{field.name} is {value!r}", field.name)
            if isinstance(value, list) and field.name != "limits" and (
                    not all(isinstance(each, str) and each for each in value)
                    or len(set(value)) < len(value)):
                raise self.fault(kind, one, f"{field.name} is {value!r}", field.name)

    def check_category(self, one):
        above, seen = one, set()
        while above.parent:
            if above.id in seen:
                raise self.fault("category", one, "it lies within itself", "parent")
            seen.add(above.id)
            within = [other for other in self.categories if other.id == above.parent]
            if not within:
                raise self.fault("category", above, f"there is no category {above.parent}", "parent")
            above = within[0]
        if one.id not in [each.category for each in self.policies] + [
                each.parent for each in self.categories]:
            raise self.fault("category", one, "nothing stands in it")

    def check_setting(self, one):
        def wrong(text, field=""):
            return self.fault("setting", one, text, field)

        if one.type not in REGISTRY_TYPES:
            raise wrong(f"type {one.type} is neither number nor text", "type")
        one.registry = one.registry or REGISTRY_TYPES[one.type]
        if one.registry != "any" and not set(one.registry) <= ALL_TYPES[one.type]:
            raise wrong(f"registry {one.registry} is none of a {one.type}", "registry")
        for field in ("key", "value", "default", "absent"):
            text = getattr(one, field)
            if isinstance(text, str) and not PLAIN.fullmatch(text) or field == "value" and not text:
                raise wrong(f"{field} is {text!r}", field)
        if not (one.key + "\\").lower().startswith((self.root + "\\").lower()):
            raise wrong(f"its key is not below {self.root}", "key")
        if any((other.key.lower(), other.value.lower()) == (one.key.lower(), one.value.lower())
               for other in self.settings[:self.settings.index(one)]):
            raise wrong("another setting has its key and value", "value")
        for field in ("does", "ignored", "absent"):
            if any(sign in getattr(one, field) for sign in "|\n"):
                raise wrong("a cell of a table has neither a bar nor a line break", field)
        self.check_number(one, wrong) if one.is_number() else self.check_text(one, wrong)

    @staticmethod
    def check_number(one, wrong):
        if one.choices:
            numbers = list(one.choices.values())
            if not all(type(number) is int for number in numbers):
                raise wrong(f"its choices {one.choices} are no numbers", "choices")
            if len(set(numbers)) < len(numbers) or not all(map(IDENTIFIER.fullmatch, one.choices)):
                raise wrong(f"its choices {one.choices} need a name and a number each", "choices")
            one.limits = [min(one.choices.values()), max(one.choices.values())]
        if [type(limit) for limit in one.limits] != [int, int]:
            raise wrong(f"its limits {one.limits} are not two numbers", "limits")
        least, greatest = one.limits
        if not 0 <= least <= greatest <= GREATEST:
            raise wrong(f"its limits {one.limits} are none", "limits")
        # Nothing at all may stand for something of its own, which has a name then.
        if type(one.default) is not int or not (
                least <= one.default <= greatest or one.default == 0 and one.absent != "none"):
            raise wrong(f"its default {one.default} is beyond its limits {one.limits}", "default")
        if one.choices and one.default not in one.choices.values():
            raise wrong(f"its default {one.default} is none of its choices", "default")
        if one.size < 4:
            raise wrong(f"a number has no {one.size} bytes", "size")
        if one.beyond not in ("default", "nearest", "kept"):
            raise wrong(f"beyond is {one.beyond}", "beyond")
        if one.short not in ("refused", "taken"):
            raise wrong(f"short is {one.short}", "short")
        for field in ("terminated", "shortest", "strictly"):
            if getattr(one, field):
                raise wrong("a number has no terminator and no length", field)

    @staticmethod
    def check_text(one, wrong):
        for field, usual in (("choices", {}), ("limits", [0, GREATEST]), ("short", "refused"),
                             ("beyond", "kept")):
            if getattr(one, field) != usual:
                raise wrong("a text has no choices, limits or bytes to spare", field)
        if one.default is not None and not isinstance(one.default, str):
            raise wrong(f"its default {one.default} is no text", "default")
        if one.default is not None and len(one.default.encode()) >= one.size:
            raise wrong(f"its default is longer than {one.size} bytes", "default")
        if not 0 <= one.shortest < one.size:
            raise wrong(f"no text has {one.shortest} to {one.size} bytes", "shortest")

    def check_policy(self, one):
        def wrong(text, field=""):
            return self.fault("policy", one, text, field)

        if one.category not in (category.id for category in self.categories):
            raise wrong(f"there is no category {one.category}", "category")
        used = ([one.switch] if one.switch else []) + one.elements
        if not used:
            raise wrong("it governs nothing", "elements")
        for name in used:
            field = "switch" if name == one.switch else "elements"
            if name not in self.by_id:
                raise wrong(f"there is no setting {name}", field)
            if any(name in [other.switch, *other.elements]
                   for other in self.policies[:self.policies.index(one)]):
                raise wrong(f"another policy governs {name}", field)
        if one.switch in one.elements:
            raise wrong(f"its switch {one.switch} is one of its elements", "elements")
        if one.switch:
            if one.on == one.off:
                raise wrong("disabling it is the same as enabling it", "off")
            setting = self.by_id[one.switch]
            if not setting.is_number():
                raise wrong(f"its switch {one.switch} is no number", "switch")
            for field in ("on", "off"):
                value = getattr(one, field)
                if not setting.limits[0] <= value <= setting.limits[1]:
                    raise wrong(f"{value} is beyond the limits {setting.limits} of {one.switch}",
                                field)

    def text_names(self):
        """The names of the texts that every language has."""
        yield from (("name",), ("description",), ("supported",))
        yield from (("category", one.id) for one in self.categories)
        for policy in self.policies:
            yield from (("policy", policy.id, "title"), ("policy", policy.id, "explain"))
            for name in policy.elements:
                yield "setting", name
                yield from (("choice", name, choice) for choice in self.by_id[name].choices)

    def text(self, language, *names):
        found = self.texts[language].data
        for name in names:
            found = found.get(name) if isinstance(found, dict) else None
        return found

    def shown_text(self, language, *names):
        """The text with the default of a setting in the place of its identifier in braces."""
        return BRACES.sub(lambda found: str(self.by_id[found[1]].default),
                          self.text(language, *names).strip())

    def check_texts(self, language):
        source = self.texts[language]
        wanted = set(self.text_names())
        for names in sorted(wanted):
            text = self.text(language, *names)
            if not isinstance(text, str) or not text.strip():
                headers = rf"^\[{re.escape('.'.join(names[:-1]))}\]"
                raise source.mistake(f"there is no text {'.'.join(names)}", headers)
            if NO_XML.search(text):
                raise source.mistake(f"{'.'.join(names)} has a control character",
                                     rf"^\[{re.escape('.'.join(names[:-1]))}\]", rf"^{names[-1]} =")
            for name in BRACES.findall(text):
                if name not in self.by_id or self.by_id[name].default is None:
                    raise source.mistake(f"no setting {name} has a default", rf"\{{{name}\}}")

        def leaves(table, path=()):
            for name, entry in table.items():
                if isinstance(entry, dict):
                    yield from leaves(entry, (*path, name))
                else:
                    yield (*path, name)

        for names in leaves(source.data):
            if names not in wanted:
                raise source.mistake(f"nothing has the text {'.'.join(names)}",
                                     rf"^\[{re.escape('.'.join(names[:-1]))}\]", rf"^{names[-1]} =")


def main_with(work):
    """Runs `work`, and tells of a mistake as compilers do."""
    try:
        return work()
    except Mistake as mistake:
        print(f"error: {mistake}", file=sys.stderr)
        return 1
