#!/usr/bin/env python3
"""Makes of settings.toml what stands on it.

    make_settings.py header FOLDER        settings.h and settings_table.h
    make_settings.py template FOLDER      the administrative template, and a sample for the registry editor
    make_settings.py document FILE        the tables of the reference, between the file's two marks
    make_settings.py check FILE           nothing; fails when the file's tables are not those
"""

import pathlib
import sys

sys.dont_write_bytecode = True
sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent))
import admin_template  # noqa: E402
from schema import Mistake, Schema, main_with  # noqa: E402

BEGIN, END = "<!-- settings: made by src/settings/make_settings.py -->", "<!-- end of settings -->"


def literal(text):
    return "nullptr" if text is None else f'R"({text})"' if {"\\", '"'} & set(text) else f'"{text}"'


def constant(setting):
    place = f"{literal(setting.key)}, {literal(setting.value)}"
    if setting.is_number():
        return (f"inline constexpr NumberSetting k{setting.id}{{{{{place}}}, {setting.size}, "
                f"{setting.default}}};")
    return (f"inline constexpr TextSetting k{setting.id}{{{{{place}}}, {setting.size}, "
            f"{literal(setting.default)}}};")


def constants(schema):
    return "\n".join([
        "// Made from settings.toml.", "#pragma once", "", '#include "settings/setting.h"', "",
        "namespace mvp::settings {", "", *map(constant, schema.settings), "",
        "}  // namespace mvp::settings", ""])


def row(setting):
    taken = ["Any"] if setting.registry == "any" else [
        {"REG_DWORD": "Number", "REG_SZ": "Text", "REG_EXPAND_SZ": "ExpandText"}[name]
        for name in setting.registry]
    number = setting.is_number()
    return "    {" + ", ".join([
        literal(setting.id), literal(setting.key), literal(setting.value),
        "true" if number else "false", " | ".join(f"kTakes{name}" for name in taken),
        str(setting.size), str(setting.default if number else 0),
        literal(None if number else setting.default),
        f"{setting.limits[0]}U", f"{setting.limits[1]}U",
        f"Beyond::{setting.beyond.capitalize()}", str(setting.terminated).lower(),
        str(setting.short == "taken").lower(), str(setting.shortest), literal(setting.absent), literal(", ".join(setting.windows))]) + "},"


def table(schema):
    return "\n".join([
        "// Made from settings.toml.", "#pragma once", "", '#include "settings/setting_row.h"', "",
        "namespace mvp::settings {", "",
        f"inline constexpr std::array<SettingRow, {len(schema.settings)}> kSettings{{{{",
        *map(row, schema.settings), "}};", "", "}  // namespace mvp::settings", ""])


def shown_key(schema, setting):
    return setting.key[len(schema.root):].lstrip("\\")


def kind(setting):
    if setting.is_number():
        return "any type" if setting.registry == "any" else "REG_DWORD"
    types = "any type" if setting.registry == "any" else " or ".join(setting.registry)
    return f"{types}, at most {setting.size} bytes"


def reference(schema):
    """The lines of the two tables."""
    yield f"| Key below `HKEY_LOCAL_MACHINE\\{schema.root}` | Value | Type | Default | What it does |"
    yield "|---|---|---|---|---|"
    for setting in schema.settings:
        key = shown_key(schema, setting)
        default = setting.absent if setting.default is None else (
            f"`{setting.default}`" if not setting.is_number() else
            setting.default if setting.absent == "none" else f"{setting.absent} ({setting.default})")
        yield (f"| {f'`{key}`' if key else '(itself)'} | `{setting.value}` | {kind(setting)} | "
               f"{default} | {setting.does} |")
    yield ""
    yield "| setting | windows that it changes | ignored, and told so, when it is |"
    yield "|---|---|---|"
    for setting in schema.settings:
        key = shown_key(schema, setting)
        windows = ", ".join(setting.windows) or "none"
        yield f"| `{key + chr(92) if key else ''}{setting.value}` | {windows} | {setting.ignored} |"


def with_reference(schema, path):
    text = path.read_text(encoding="utf-8")
    head, begin, rest = text.partition(BEGIN)
    _, end, tail = rest.partition(END)
    if not begin or not end:
        raise Mistake(f"{path.name}:1: the marks of the tables are missing")
    return f"{head}{begin}\n" + "\n".join(reference(schema)) + f"\n{end}{tail}"


def registry_sample(schema):
    """Every setting as a comment: imported as it is, the file changes nothing."""
    lines = ["Windows Registry Editor Version 5.00", "",
             "; Every setting of the Veskara PIN user interface. Take the semicolon from what is "
             "to be set.",
             "; Programs of 32 bits read the same."]
    key = None
    for setting in schema.settings:
        if setting.key.lower() != (key or "").lower():
            key = setting.key
            lines += ["", f"[HKEY_LOCAL_MACHINE\\{schema.root}{key[len(schema.root):]}]"]
        text = (setting.default or "") if not setting.is_number() else ""
        text = text.replace("\\", "\\\\").replace('"', '\\"')
        value = f"dword:{setting.suggested():08x}" if setting.is_number() else f'"{text}"'
        if not setting.default and setting.absent != "none":
            lines += [f"; Without the next one: {setting.absent}."]
        lines += [f";\"{setting.value}\"={value}"]
    return ("\ufeff" + "\r\n".join(lines) + "\r\n").encode("utf-16-le")


def write(path, content):
    """Leaves a file alone that has the content: what is made of it is not made again."""
    path.parent.mkdir(parents=True, exist_ok=True)
    data = content if isinstance(content, bytes) else content.encode()
    if not path.exists() or path.read_bytes() != data:
        path.write_bytes(data)


def main():
    if len(sys.argv) != 3:
        print(__doc__, file=sys.stderr)
        return 2
    what, place = sys.argv[1], pathlib.Path(sys.argv[2])
    schema = Schema()
    if what == "header":
        write(place / "settings.h", constants(schema))
        write(place / "settings_table.h", table(schema))
    elif what == "template":
        for name, content in admin_template.files(schema):
            write(place / name, content)
        write(place / "settings-sample.reg", registry_sample(schema))
    elif what == "document":
        write(place, with_reference(schema, place))
    elif what == "check":
        if with_reference(schema, place) != place.read_text(encoding="utf-8"):
            raise Mistake(f"{place.name}:1: its tables are not those of settings.toml; "
                          "src/settings/make_settings.py document makes them anew")
    else:
        print(__doc__, file=sys.stderr)
        return 2
    return 0


if __name__ == "__main__":
    sys.exit(main_with(main))
