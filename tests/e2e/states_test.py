"""Sets every setting to each of its states, and looks into the window that it governs.

usage: states_test.py SOURCE_DIR EMULATOR GOVERNED LIBRARY_FOLDER

States and meanings come from the description of the settings; what a meaning looks like stands in
SIGHTS. A setting without a sight fails the test.
"""

import dataclasses
import json
import pathlib
import shutil
import struct
import subprocess
import sys
import tempfile
import unittest

sys.dont_write_bytecode = True
TOP = pathlib.Path(sys.argv.pop(1))
sys.path[:0] = [str(TOP / "tests/support"), str(TOP / "src/settings")]
from policy_editor import DISABLED, Enabled, PolicyEditor  # noqa: E402
from schema import Schema  # noqa: E402
from setting_states import CODE_PAGE, REG_DWORD, REG_SZ, State, dword, states  # noqa: E402

EMULATOR, GOVERNED, LIBRARY = sys.argv.pop(1), sys.argv.pop(1), sys.argv.pop(1)
SCHEMA = Schema()
FOLDER = pathlib.Path(tempfile.mkdtemp(prefix="s"))
LEVELS = {"error": 1, "information": 2, "detail": 4, "entry": 8, "exit": 16}


def windows_path(path):
    return "Z:" + str(path).replace("/", "\\")


def text(size):
    return ("It's <ü> \"x\" & %y% " + "0123456789" * 60).encode(CODE_PAGE)[:size]


def path_to(file, folder):
    """Of a text's size, a path to the file: what fills it leads nowhere else."""
    def make(size):
        path = windows_path(folder) + "\\"
        path += ".\\" * ((size - len(path) - len(file)) // 2)
        return (path + file if len(path + file) == size else path[:3] + "\\" + path[3:] + file).encode()
    return make


def bitmap():
    pixels = b"\x40" * (4 * 4 * 4)
    return (struct.pack("<2sIHHI", b"BM", 54 + len(pixels), 0, 0, 54)
            + struct.pack("<IiiHHIIiiII", 40, 4, 4, 1, 32, 0, len(pixels), 0, 0, 0, 0) + pixels)


@dataclasses.dataclass
class Sight:
    window: str
    seen: object              # of an answer, what shows the setting
    looks: object             # of a meaning, what that is to be; BUILT_IN: as without a value
    beside: dict = dataclasses.field(default_factory=dict)  # of other settings, by their names
    text: object = text
    bits: int = 0
    alone: bool = False       # is read once by a process


BUILT_IN = object()


def in_window(name):
    return lambda answer: (answer["seen"] or {}).get(name)


def opened(answer):
    return answer["seen"] is not None


def texts(answer):
    return (answer["seen"] or {"texts": []})["texts"]


def or_built_in(looks):
    return lambda meaning: BUILT_IN if not meaning else looks(meaning)


def number_in(name):
    # Of a line of the rules, which no number of 32 bits has with a sign.
    return lambda answer: (in_window(name)(answer) or ": ").split(": ")[1]


def length(meaning):
    return "" if meaning == 2**32 - 1 else str(meaning if meaning < 2**31 else meaning - 2**32)


def told(name):
    return lambda answer: (answer["told"] or {}).get(name)


def injected(answer):
    return (answer["seen"]["typed"], answer["seen"]["injected"] is not None)


def stay(answer):
    return [milliseconds // 1000 for milliseconds in answer["stays"]]


def notice(enable, window, duration, message):
    return {
        enable: [Sight(window, opened, bool)],
        duration: [Sight(window, stay, lambda meaning: [meaning], {enable: 1})],
        message: [Sight(window, lambda answer: [one for one in texts(answer) if one != LINK],
                        lambda meaning: ([meaning] if meaning else []) + BARE, {enable: 1})]}


BARE = ["Veskara smart card", '<a msg="msg">Close this message</a>']
LINK = '<a msg="msg">Show help</a>'
# With which the first PIN is taken.
CONFIRMED = {"MinimumPinLength": 4, "MaximumPinLength": 8, "InjectedKeys": 0}
LOG = {"LogFile": windows_path(FOLDER / "log.txt"), "ContactTel": 1}


def help_shown(window, beside=None):
    return Sight(window, lambda answer: LINK in texts(answer), lambda meaning: meaning is not None, beside or {})


def levels(answer):
    return sum({LEVELS[word] for line in answer["log"] if " VKLOG " not in line for word in LEVELS if f" {word}: " in line})


def leads_there(path):
    # What is looked for below it has to fit as well.
    return path.endswith("\\") and len(path + r"Resources\Localized\mvpinguirc.dll") < 512


def picture(own, bits):
    return Sight("enter-pin", lambda answer: in_window(own)(answer) is not None,
                 lambda meaning: bool(meaning) and meaning.endswith(".bmp"), bits=bits,
                 text=path_to("a.bmp", FOLDER))


SIGHTS = {
    "InstallPath": [Sight("last-try", in_window("message"),
                          lambda meaning: WITH_TEXTS if leads_there(meaning or "") else BUILT_IN,
                          text=path_to("", LIBRARY), alone=True)],
    "ProductCode": [Sight("about", in_window("product"), lambda meaning: meaning)],
    "HelpPath": [Sight("enter-pin", lambda answer: answer["helpFiles"],
                       lambda meaning: [] if meaning is None else [meaning]),
                 help_shown("popup-no-reader", {"NoReaderEnable": 1}), help_shown("popup-otp")],
    "ValiditySentence": [Sight("expiry", in_window("sentence"), or_built_in(str))],
    "ValidityHelp": [Sight("expiry", lambda answer: answer["documents"],
                           lambda meaning: [meaning] if meaning else [])],
    "LicenceFile": [Sight("about", lambda answer: answer["documents"],
                          lambda meaning: [meaning] if meaning else [])],
    "ContactTel": [Sight("unlock-challenge", lambda answer: answer["seen"]["helpDesk"],
                         or_built_in(lambda meaning: f"Call your help desk at {meaning} and read out the challenge below."
                                     " It answers with the unlock code of your card."))],
    "BannerLowRes": [picture("ownBanner", 4)], "BannerHiRes": [picture("ownBanner", 8)],
    "ProgressBarLowRes": [picture("ownLower", 4)], "ProgressBarHiRes": [picture("ownLower", 8)],
    "InjectedKeys": [Sight(window, injected, lambda meaning: (meaning != 2, meaning != 0))
                     for window in ("enter-pin", "change-pin-embedded", "unlock-challenge", "init-pin")],
    "SmallPinEntryPrevention": [Sight("change-pin-embedded", told("smallPinEntryPrevention"), int)],
    "MinimumPinLength": [Sight("init-pin", number_in("fewest"), length)],
    "MaximumPinLength": [Sight("init-pin", number_in("most"), length)],
    "MaxPinTries": [Sight("init-pin", told("tries"), int, CONFIRMED)],
    "MaxPinUnlock": [Sight("init-pin", told("unlocks"), int, CONFIRMED)],
    "WeakPinAllowed": [Sight("init-pin", told("weak"), int, CONFIRMED),
                       Sight("init-pin", lambda answer: in_window("simple")(answer) is not None,
                             lambda meaning: meaning == 1)],
    "ForceChangePin": [Sight("init-pin", told("force"), int, CONFIRMED)],
    "AlphaPinAllowed": [Sight("init-pin", lambda answer: in_window("digits")(answer) is not None,
                              lambda meaning: meaning != 1)],
    "BlockedCardManagerMessage": [Sight("card-locked", in_window("message"), or_built_in(str))],
    "DisplayUnlockCode": [Sight("unlock-code", opened, lambda meaning: meaning == 1)],
    **notice("NoReaderEnable", "popup-no-reader", "NoReaderDuration", "NoReaderMessage"),
    **notice("CardPresenceEnable", "popup-card-alert", "CardPresenceDuration", "CardPresenceMessage"),
    "NotificationBeep": [Sight(window, lambda answer: answer["sounds"], lambda meaning: int(meaning != 0), {enable: 1})
                         for window, enable in (("popup-no-reader", "NoReaderEnable"),
                                                ("popup-card-alert", "CardPresenceEnable"))],
    "OtpTimeout": [Sight("popup-otp", stay, lambda meaning: [meaning])],
    "LogFile": [Sight("unlock-challenge", lambda answer: levels(answer) == 31,
                      lambda meaning: (meaning or "").endswith("log.txt"),
                      {"LogLevels": 31, "ContactTel": 1}, path_to("log.txt", FOLDER), alone=True)],
    "LogLevels": [Sight("unlock-challenge", levels, lambda meaning: meaning & 31, LOG, alone=True)],
}
# What stands in the window when its texts are found.
WITH_TEXTS = ("Only one attempt is left. If the next PIN is wrong, the card will be blocked.\r\n\r\n"
              "Choose OK to enter the PIN, or Cancel to stop here.")


def written(name, value):
    setting = SCHEMA.by_id[name]
    if isinstance(value, int):
        return [setting.key, setting.value, REG_DWORD, dword(value).hex()]
    return [setting.key, setting.value, REG_SZ, (value.encode(CODE_PAGE) + b"\0").hex()]


@dataclasses.dataclass
class Case:
    """Of a window, the settings that it is opened with; None: without a value."""
    window: str
    values: dict
    change: list
    bits: int
    alone: bool
    turn: int  # openings of a lesser one come before

    def goes_with(self, other):
        return (not self.alone and not other.alone and self.window == other.window
                and self.turn == other.turn
                and (self.bits == other.bits or 0 in (self.bits, other.bits))
                and all(other.values.get(name, value) == value for name, value in self.values.items()))

    def take_in(self, other):
        self.values.update(other.values)
        self.change += other.change
        self.bits = self.bits or other.bits

    def asked(self):
        return {"window": self.window, "values": [one for one in self.values.values() if one],
                "change": self.change, "bitsPerPixel": self.bits}


def case(name, sight, writes, change=(), turn=0):
    # The library's texts are found, whatever the folder that the program runs in.
    beside = {"InstallPath": windows_path(LIBRARY) + "\\", **sight.beside}
    values = {other: written(other, value) for other, value in beside.items()}
    values[name] = writes[0] if writes else None
    return Case(sight.window, values, list(change), sight.bits, sight.alone, turn)


def look(cases):
    """The answers of one process."""
    FOLDER.joinpath("in.json").write_text(json.dumps(cases))
    FOLDER.joinpath("log.txt").unlink(missing_ok=True)
    done = subprocess.run([EMULATOR, FOLDER / "governed.exe", windows_path(LIBRARY), "in.json", "out.json"],
                          cwd=FOLDER, capture_output=True, timeout=240, check=False)
    assert done.returncode == 0, done.stderr
    answers = json.loads(FOLDER.joinpath("out.json").read_text(encoding="utf-8"))
    log = FOLDER / "log.txt"
    for answer in answers:
        answer["log"] = log.read_text(CODE_PAGE).splitlines() if log.exists() else []
    return answers


def look_at_all(cases):
    """Each case's answer. One opening shows what several settings do that say nothing of each other."""
    openings, numbers = [], {}
    for place, one in sorted(enumerate(cases), key=lambda placed: placed[1].turn):
        number = next((i for i, other in enumerate(openings) if other.goes_with(one)), len(openings))
        if number == len(openings):
            openings.append(dataclasses.replace(one, values=dict(one.values), change=list(one.change)))
        else:
            openings[number].take_in(one)
        numbers[place] = number
    shared = iter(look([one.asked() for one in openings if not one.alone]))
    answers = [look([one.asked()])[0] if one.alone else next(shared) for one in openings]
    return [answers[numbers[place]] for place in range(len(cases))]


class States(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        shutil.copy(GOVERNED, FOLDER / "governed.exe")
        FOLDER.joinpath("a.bmp").write_bytes(bitmap())

    @classmethod
    def tearDownClass(cls):
        shutil.rmtree(FOLDER)

    def test_every_setting_has_a_sight_and_every_sight_a_window_of_it(self):
        self.assertEqual(set(SIGHTS), set(SCHEMA.by_id))
        pictures = {path.stem.rpartition("-")[0] for path in (TOP / "docs/images/dialogs").iterdir()}
        for name, setting in SCHEMA.by_id.items():
            named = {window for window in setting.windows if " " not in window}
            self.assertLessEqual(named, pictures | {"popup-otp"}, name)
            if named and len(named) == len(setting.windows):
                self.assertEqual({sight.window for sight in SIGHTS[name]}, named, name)

    def compare(self, wanted):
        """`wanted`: (label, sight, meaning, case)."""
        answers = look_at_all([one for _, _, _, one in wanted])
        built_in = {id(sight): sight.seen(answer) for (label, sight, _, _), answer in zip(wanted, answers)
                    if label.endswith(": absent")}
        for (label, sight, meaning, _), answer in zip(wanted, answers):
            looks = sight.looks(meaning)
            with self.subTest(label):
                expected = built_in[id(sight)] if looks is BUILT_IN else looks
                self.assertEqual(sight.seen(answer), expected)
                self.assertEqual(answer["seen"], answer["afterwards"], "changed while it was open")
                if looks is not BUILT_IN and sight.looks(None if isinstance(meaning, str) else 0) is BUILT_IN:
                    self.assertNotEqual(expected, built_in[id(sight)])

    def test_every_state_shows_in_the_window_that_it_governs(self):
        wanted = []
        for place, (name, setting) in enumerate(SCHEMA.by_id.items()):
            for sight in SIGHTS.get(name, []):
                all_states = list(states(setting, sight.text, sight.window in setting.strictly))
                # Those that are seen in one opening are in different states, and not taken for each other.
                first = place % len(all_states)
                all_states = all_states[first:] + all_states[:first]
                # While the window is open, each is changed into the one before it.
                for before, state in zip([State("", 0, None), *all_states], all_states):
                    one = case(name, sight, state.writes(setting), before.writes(setting))
                    wanted.append((f"{name} in {sight.window}: {state.name}", sight, state.meaning, one))
        self.compare(wanted)

    def test_every_state_of_every_policy_shows(self):
        subprocess.run([sys.executable, "-B", TOP / "src/settings/make_settings.py", "template", FOLDER], check=True)
        editor = PolicyEditor(FOLDER, "de-DE")
        by_place = {(one.key.lower(), one.value.lower()): one for one in SCHEMA.settings}
        wanted = [(f"{name}: absent", sight, SCHEMA.by_id[name].default, case(name, sight, []))
                  for name in SIGHTS for sight in SIGHTS[name]]
        for policy in SCHEMA.policies:
            elements = [SCHEMA.by_id[name] for name in policy.elements]
            low = {one.id: one.limits[0] if one.is_number() else SIGHTS[one.id][0].text(60).decode(CODE_PAGE)
                   for one in elements}
            high = {one.id: one.limits[1] if one.is_number() else
                    SIGHTS[one.id][0].text(one.size - 1).decode(CODE_PAGE) for one in elements}
            # One after the other: what is taken away was in force when the process looked before.
            for turn, (label, state) in enumerate((
                    ("least", Enabled(low)), ("greatest", Enabled(high)), ("as shown", Enabled()),
                    ("disabled", DISABLED), ("not configured", None)), 1):
                for key, value, content in editor.values(editor.policies[policy.id], state):
                    setting = by_place[key.lower(), value.lower()]
                    writes = [] if content is None else [written(setting.id, content)]
                    for sight in SIGHTS[setting.id]:
                        meaning = setting.default if content is None else content
                        wanted.append((f"{policy.id} {label}, {setting.id}", sight, meaning,
                                       case(setting.id, sight, writes, turn=turn)))
        self.compare(wanted)


if __name__ == "__main__":
    unittest.main()
