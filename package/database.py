"""What the source for wixl cannot say, written into the tables of the package it has made."""

import hashlib
import struct

from contents import Mistake, code

FAVOR_PARENT, DISALLOW_ADVERTISE, UI_DISALLOW_ABSENT = 2, 8, 16  # attributes of features
NOT_SELECTED = 3                                                 # a level that nothing asks for
SECURE = ("UILANGUAGE", "INSTALLDIR", "INSTALLDIR32")
LANGUAGE_OF_VERSIONS = 1033
SUMMARY = bytes.fromhex("e0859ff2f94f6810ab9108002b27b3d9")
REVISION, CREATED, SAVED = 9, 12, 13
CODE_LENGTH = len(code())
TEXT_OF_CODE = struct.pack("<II", 30, CODE_LENGTH + 1)


def quoted(text):
    if "'" in text:
        raise Mistake(f"the database's queries cannot hold {text}")
    return f"'{text}'"


def update(table, key, **columns):
    words = ", ".join(f"`{name}` = {value if isinstance(value, int) else quoted(value)}"
                      for name, value in columns.items())
    return f"UPDATE `{table}` SET {words} WHERE `{table}` = {quoted(key)}"


def file_version(path):
    """The version in the file's own resources; empty when it has none."""
    data = path.read_bytes()
    at = data.find(struct.pack("<II", 0xFEEF04BD, 0x10000))
    if at < 0:
        return ""
    high, low = struct.unpack_from("<II", data, at + 8)
    return f"{high >> 16}.{high & 0xFFFF}.{low >> 16}.{low & 0xFFFF}"


def component_queries(package):
    for each in package.components():
        if each.condition:
            yield update("Component", each.id, Condition=each.condition)


def feature_queries(package):
    yield ("CREATE TABLE `Condition` (`Feature_` CHAR(38) NOT NULL, `Level` INT NOT NULL, "
           "`Condition` CHAR(255) PRIMARY KEY `Feature_`, `Level`)")
    for each in package.features:
        follows = FAVOR_PARENT | UI_DISALLOW_ABSENT if each.follows_parent else 0
        yield update("Feature", each.id, Attributes=DISALLOW_ADVERTISE | follows)
        if each.is_optional:
            condition = f"WIX_UPGRADE_DETECTED AND NOT {each.memory}"
            yield ("INSERT INTO `Condition` (`Feature_`, `Level`, `Condition`) VALUES "
                   f"({quoted(each.id)}, {NOT_SELECTED}, {quoted(condition)})")


def file_queries(package):
    for identifier, name in package.files():
        version = file_version(package.stage / name)
        if version:
            yield update("File", identifier, Version=version, Language=str(LANGUAGE_OF_VERSIONS))
        elif name.endswith((".dll", ".exe")):
            raise Mistake(f"{name} has no version")


def property_queries(package):
    found = ("WIX_UPGRADE_DETECTED", "WIX_DOWNGRADE_DETECTED")
    yield ("UPDATE `Property` SET `Value` = " + quoted(";".join(found + SECURE)) +
           " WHERE `Property` = 'SecureCustomProperties'")
    for condition, message in package.rules():
        yield ("INSERT INTO `LaunchCondition` (`Condition`, `Description`) VALUES "
               f"({quoted(condition)}, {quoted(message)})")


def fix_summary(msi, seconds):
    """Overwrites the times that wixl takes from the clock, and the code that it draws: the package's
    own is one of all that it holds."""
    data = bytearray(msi.read_bytes())
    at = data.find(SUMMARY)
    if at < 0 or data.find(SUMMARY, at + 1) >= 0:
        raise Mistake("the package has no single summary")
    section = at - 28 + struct.unpack_from("<I", data, at + 16)[0]
    count = struct.unpack_from("<I", data, section + 4)[0]
    places = dict(struct.iter_unpack("<II", data[section + 8:section + 8 + 8 * count]))
    time = struct.pack("<Q", (seconds + 11644473600) * 10_000_000)

    def write(number, prefix, value):
        place = section + places[number]
        if not data.startswith(prefix, place):
            raise Mistake(f"the package's summary has no place for {number}")
        data[place + len(prefix):place + len(prefix) + len(value)] = value

    write(CREATED, struct.pack("<I", 64), time)
    write(SAVED, struct.pack("<I", 64), time)
    write(REVISION, TEXT_OF_CODE, b"0" * CODE_LENGTH)
    write(REVISION, TEXT_OF_CODE, code("package", hashlib.sha256(data).hexdigest()).encode())
    msi.write_bytes(data)


def queries(package):
    """All that is to be done to the tables."""
    return [query for make in (component_queries, feature_queries, file_queries, property_queries)
            for query in make(package)]
