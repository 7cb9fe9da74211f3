"""Every state of every setting, and what each stands for, by the description of the settings alone.

    for state in states(setting, text):
        state.name, state.type, state.data, state.meaning

`text(n)` is a text of n bytes that means something to what reads the setting. The meaning is the
number or text that holds; of a text, None where nothing holds and so what is built in.
"""

import dataclasses

REG_NONE, REG_SZ, REG_EXPAND_SZ, REG_BINARY, REG_DWORD, REG_QWORD = 0, 1, 2, 3, 4, 11
TYPES = {"REG_SZ": REG_SZ, "REG_EXPAND_SZ": REG_EXPAND_SZ, "REG_DWORD": REG_DWORD}
CODE_PAGE = "cp1252"


@dataclasses.dataclass
class State:
    name: str
    type: int
    data: bytes | None  # None: there is no value
    meaning: int | str | None = None

    def writes(self, setting):
        return [] if self.data is None else [[setting.key, setting.value, self.type, self.data.hex()]]


def dword(number):
    return number.to_bytes(4, "little")


def taken(setting, type_):
    return setting.registry == "any" or type_ in [TYPES[name] for name in setting.registry]


def meaning_of_number(setting, state):
    whole = state.data is not None and len(state.data) == 4
    short = state.data is not None and len(state.data) < 4 and setting.short == "taken"
    large = setting.registry == "any" and state.data is not None and 4 < len(state.data) <= setting.size
    if state.data is None or not taken(setting, state.type) or not (whole or short or large):
        return setting.default
    number = int.from_bytes(state.data[:4], "little")
    least, greatest = setting.limits
    if least <= number <= greatest or setting.beyond == "kept":
        return number
    return setting.default if setting.beyond == "default" else min(max(number, least), greatest)


def meaning_of_text(setting, state, strictly):
    if state.data is None or not taken(setting, state.type) or len(state.data) > setting.size:
        return setting.default
    full = len(state.data) == setting.size and b"\0" not in state.data
    if full and (setting.terminated or strictly) or strictly and state.type != REG_SZ:
        return setting.default
    text = state.data.split(b"\0")[0]
    return setting.default if len(text) < setting.shortest else text.decode(CODE_PAGE)


def states_of_number(setting):
    least, greatest = setting.limits
    numbers = {least, greatest, setting.default, 0, 1, 2, 7, *setting.choices.values()}
    numbers |= {number for number in (least - 1, greatest + 1) if 0 <= number < 2**32}
    yield State("absent", REG_NONE, None)
    for number in sorted(numbers):
        yield State(f"{number}", REG_DWORD, dword(number))
    yield State("a short 7", REG_DWORD, b"\7\0")
    yield State("a long 7", REG_DWORD, dword(7) * 2)
    yield State("a text", REG_SZ, b"7\0")
    yield State("bytes", REG_BINARY, dword(7))
    yield State("a number of 64 bits", REG_QWORD, dword(7) + dword(0))
    yield State("as large as may be", REG_BINARY, dword(7).ljust(setting.size, b"x"))
    yield State("one too large", REG_BINARY, dword(7).ljust(setting.size + 1, b"x"))


def states_of_text(setting, text):
    yield State("absent", REG_NONE, None)
    yield State("empty", REG_SZ, b"\0")
    for size in {1, max(setting.shortest - 1, 1), setting.shortest or 1}:
        yield State(f"of {size}", REG_SZ, b"0123"[:size] + b"\0")
    room = setting.size
    for name, type_, data in (
            ("ordinary", REG_SZ, text(100) + b"\0"), ("unterminated", REG_SZ, text(100)),
            ("as long as may be", REG_SZ, text(room - 1) + b"\0"),
            ("full and unterminated", REG_SZ, text(room)),
            ("one too long", REG_SZ, text(room) + b"\0"),
            ("one too long and unterminated", REG_SZ, text(room + 1)),
            ("of the expanding type", REG_EXPAND_SZ, text(100) + b"\0"),
            ("bytes", REG_BINARY, text(100) + b"\0"), ("a number", REG_DWORD, b"abc\0")):
        yield State(name, type_, data)


def states(setting, text=None, strictly=False):
    """`strictly` is for the windows that the setting names so."""
    for state in states_of_number(setting) if setting.is_number() else states_of_text(setting, text):
        state.meaning = (meaning_of_number(setting, state) if setting.is_number() else
                         meaning_of_text(setting, state, strictly))
        yield state
