"""Each rule of the looks speaks of a window that breaks it, and no other rule does; and looks.exe
measures a live one that does.

Usage: looks_rules_test.py TOP, within a wine-session
"""

import importlib.util
import json
import subprocess
import sys
import tempfile
import types
import unittest
from importlib.machinery import SourceFileLoader
from pathlib import Path
from unittest import mock

TOP = Path(sys.argv.pop(1))
sys.dont_write_bytecode = True
sys.path.insert(0, str(TOP / "scripts"))
import looks_rules  # noqa: E402
import looks_verdict  # noqa: E402

loader = SourceFileLoader("looks", str(TOP / "scripts/looks"))
looks = importlib.util.module_from_spec(importlib.util.spec_from_loader("looks", loader))
loader.exec_module(looks)

PUSH, CHECK, GROUP, ICON = 0x50010000, 0x50010003, 0x50000007, 0x50000003


def control(number, kind, text, left, top, width, height, style=0x50000000, **more):
    """At a place in dialog units of 1.5 by 1.625 pixels."""
    rect = [round(left * 1.5), round(top * 1.625), round((left + width) * 1.5),
            round((top + height) * 1.625)]
    made = {"id": number, "class": kind, "text": text, "rect": rect, "style": style, "parent": None,
            "mirrored": False, "visible": True, "enabled": True, "focus": False, "font": ["Tahoma", -11, 400],
            "contrast": 21}
    if text and style != ICON:
        made["extent"] = {"width": 6 * len(text), "height": 13, "line": 13, "ascent": 11}
    return {**made, **more}


def good_window():
    """A small dialog as it should be."""
    return {
        "dialog": "sample", "state": "empty", "kind": "dialog", "opened": True,
        "closedBy": {"Esc": True, "the close button": True}, "title": "Enter PIN",
        "caption": {"width": 60, "room": 350},
        "rect": [450, 380, 830, 644], "owner": None, "workArea": [0, 0, 1280, 1024],
        "mirrored": False, "client": [375, 260], "units": [150, 163],
        "default": 1, "tabOrder": [101, 107, 1, 2], "focusUnseen": [],
        "controls": [
            control(100, "Static", "&PIN:", 7, 10, 40, 8),
            control(101, "Edit", "", 51, 7, 192, 14, focus=True),
            control(102, "Button", "PIN rules", 7, 28, 236, 60, GROUP),
            control(103, "Static", "", 13, 40, 10, 10, ICON, icon=1, grey="00" * 50 + "ff" * 50),
            control(104, "Static", "Digits only", 30, 41, 200, 8),
            control(105, "Static", "", 13, 56, 10, 10, ICON, icon=2, grey="ff" * 50 + "00" * 50),
            control(106, "Static", "Not a simple series", 30, 57, 200, 8),
            control(107, "Button", "&Show it again", 7, 96, 200, 10, CHECK),
            control(1, "Button", "OK", 139, 139, 50, 14, PUSH),
            control(2, "Button", "Cancel", 193, 139, 50, 14, PUSH)]}


def place(number, left=None, top=None, width=None, height=None):
    """Puts a control elsewhere, or makes it another size, in pixels."""
    def change(window, controls):
        rect = controls[number]["rect"]
        wide = width or rect[2] - rect[0]
        high = height or rect[3] - rect[1]
        rect[0] = rect[0] if left is None else left
        rect[1] = rect[1] if top is None else top
        rect[2], rect[3] = rect[0] + wide, rect[1] + high
    return change


def give(number, **values):
    """Gives a control, or with 0 the window, other properties."""
    return lambda window, controls: (controls[number] if number else window).update(values)


def all_of(*changes):
    def change(window, controls):
        for each in changes:
            each(window, controls)
    return change


def needs(width, height):
    return {"width": width, "height": height, "line": height, "ascent": height - 2}


def swap_answers(window, controls):
    controls[1]["rect"], controls[2]["rect"] = controls[2]["rect"], controls[1]["rect"]
    window["tabOrder"] = [101, 107, 2, 1]


def long_text(window, controls):
    controls[104].update(text="a" * 90, extent=needs(290, 7))


def without_label(window, controls):
    controls[100].update(text="")
    del controls[100]["extent"]


BROKEN = [
    (1, place(107, width=364)), (2, place(100, top=22)), (3, place(1, left=214)),
    (4, place(107, top=203)), (5, place(105, top=124)), (5, place(104, width=315)),
    (6, place(2, height=16)), (6, place(2, left=295, width=69)), (7, place(101, height=26)),
    (8, place(107, height=18)), (8, all_of(place(104, height=10), give(104, extent=needs(66, 10)))),
    (9, swap_answers), (10, give(0, client=[375, 700])),
    (10, all_of(give(0, client=[450, 260]), place(1, left=284), place(2, left=365))),
    (11, give(0, rect=[230, 380, 1050, 644])), (11, give(0, rect=[450, 232, 830, 792])), (12, give(104, extent=needs(400, 13))),
    (13, place(106, top=70)), (14, long_text), (15, place(107, left=18)),
    (16, give(107, font=["Arial", -11, 400])), (17, give(107, text="Show it again")),
    (17, give(107, text="&Print it")), (17, give(2, text="&Cancel")),
    (18, give(101, focus=False)), (18, give(0, tabOrder=[107, 101, 1, 2])),
    (19, give(0, closedBy={"Esc": False})), (20, give(0, rect=[450, 480, 830, 744])),
    (20, give(0, owner=[0, 0, 700, 600])), (20, give(0, rect=[450, 384, 830, 648])), (21, give(107, contrast=4.4)),
    (21, give(103, contrast=2.9)), (22, give(105, grey="00" * 50 + "f8" * 50)),
    (23, give(0, focusUnseen=[107])), (24, give(0, title="Enter PIN.")),
    (24, give(107, text="&Show It Again")), (18, give(0, default=2)),
    (25, give(103, mirrored=True)), (25, all_of(give(101, id=3055, mirrored=True),
                                                give(0, tabOrder=[3055, 107, 1, 2]))),
    (1, place(102, left=3, width=364)),
    ((2, 17), without_label), ((2, 17), give(100, visible=False)),
    (12, give(0, caption={"width": 360, "room": 350})),
    ((2, 12, 17), give(107, **{"class": "SysListView32"}, style=0x50110000)),
    (13, give(106, parent=8)), (13, place(106, top=135)), (18, give(0, tabOrder=[101, 1, 2])),
    (20, give(0, rect=[950, 380, 1330, 644]))]


def broken(change):
    window = good_window()
    change(window, {each["id"]: each for each in window["controls"]})
    return window


def rules_of(window):
    return sorted({rule for rule, _, _ in looks_rules.judge(window)})


class RulesTest(unittest.TestCase):
    def test_a_good_window_breaks_none(self):
        self.assertEqual(list(looks_rules.judge(good_window())), [])

    def test_each_speaks_of_what_breaks_it_alone(self):
        for index, (rule, change) in enumerate(BROKEN):
            with self.subTest(rule=rule, index=index):
                wanted = list(rule) if isinstance(rule, tuple) else [rule]
                self.assertEqual(rules_of(broken(change)), wanted)
        self.assertLessEqual({rule[0] for rule in looks_rules.RULES}, {rule for rule, _ in BROKEN})

    def test_what_the_system_lays_out_is_not_ours(self):
        self.assertEqual(rules_of({**broken(give(0, closedBy={"Esc": False})), "kind": "notice"}), [])
        for kind in ("message box", "notice"):
            self.assertEqual(rules_of({**broken(place(2, height=16)), "kind": kind}), [])
            self.assertEqual(rules_of({**broken(give(107, contrast=4.4)), "kind": kind}), [21])

    def test_a_dense_screen_is_no_small_one(self):
        self.assertEqual(rules_of({**broken(give(0, rect=[230, 380, 1050, 644])), "dpi": 120}), [])

    def test_a_notice_is_held_to_what_it_draws(self):
        # The message's place and the title's overlap, as they may; what is drawn in them does not.
        controls = [control(789, "Static", "It is gone.", 30, 10, 200, 70, ink=[50, 20, 200, 90]),
                    control(789, "Static", "A title", 30, 70, 200, 10, ink=[50, 115, 100, 125])]
        for ink, rules in (([50, 20, 200, 90], []), ([50, 20, 200, 118], [13]),
                           ([50, 20, 345, 90], [12]), ([110, 20, 200, 131], [12])):
            controls[0]["ink"] = ink
            self.assertEqual(rules_of({**good_window(), "kind": "notice", "controls": controls}),
                             rules)

    def told(self, *words):
        """What looks.exe tells."""
        with tempfile.TemporaryDirectory() as folder:
            told = Path(folder) / "told.json"
            binaries = TOP / "build/windows/bin"
            subprocess.run(["wine", binaries / "looks.exe", *words, f"Z:{told}"],
                           cwd=binaries / "en", timeout=60, check=True)
            return json.loads(told.read_text())

    def test_a_live_window_is_measured(self):
        windows = self.told("--only", "broken", "--close-button")
        found = {(rule, number) for rule, number, _ in looks_rules.judge(windows[0])}
        self.assertEqual(found, {(12, 103), (12, 106), (13, 104), (16, 0), (18, 2), (18, 102),
                                 (19, 0), (20, 0), (21, 105), (23, 107)})

    def test_what_a_live_notice_draws_is_measured(self):
        texts = [control for control in self.told("--only", "popup-no-reader")[0]["controls"]
                 if control["class"] == "Static"]
        self.assertTrue(texts)
        for text in texts:
            left, top, right, bottom = text["ink"]
            self.assertTrue(text["rect"][0] < left < right < text["rect"][2] and
                            text["rect"][1] <= top < bottom <= text["rect"][3], text)

    def test_keys_in_what_is_not_protected_are_counted(self):
        steps = self.told("--listen", "flows", "--only", "broken", "--keys", "3")
        self.assertEqual(steps[-1]["unprotected"], 3)

    def test_an_exception_is_of_its_rule_dialog_and_control_alone(self):
        exception = {"rules": [6], "dialogs": ["sam*"], "controls": [2], "reason": "it is so"}
        for change, expected, stale in (
                ({}, 0, 0), ({"rules": [7]}, 1, 1), ({"dialogs": ["other"]}, 1, 1),
                ({"controls": [1]}, 1, 1), ({"languages": ["de"]}, 1, 0),
                ({"fault": "Cancel"}, 0, 0), ({"fault": "OK"}, 1, 1), ({"rules": [6, 7]}, 0, 1)):
            with tempfile.NamedTemporaryFile("w", suffix=".json") as file:
                json.dump([{**exception, **change}], file)
                file.flush()
                verdict = looks_verdict.Verdict(Path(file.name))
            verdict.add("here", "en", [broken(place(2, height=16))])
            self.assertEqual(verdict.count(), expected)
            # In a language that was not looked at it may well be needed.
            self.assertEqual(len(verdict.stale()), stale)
        self.assertEqual([one["rules"] for one in verdict.stale()], [[7]])

    def test_growing_does_not_excuse_leaving_the_work_area(self):
        verdict = looks_verdict.Verdict(TOP / "scripts/looks_exceptions.json")
        for rect, expected in (([450, 480, 830, 744], 0), ([450, 800, 830, 1064], 1)):
            window = {**broken(give(0, rect=rect)), "dialog": "enter-pin-refusing"}
            verdict.add("here", "en", [window])
            self.assertEqual(verdict.count(), expected)

    def test_a_dialog_that_was_not_opened_is_missed(self):
        self.assertEqual(looks_verdict.unopened([good_window()], ["sample"]), [])
        self.assertEqual(looks_verdict.unopened([], ["sample"]), ["sample"])


class LooksTest(unittest.TestCase):
    """Of scripts/looks."""

    def run_looks(self, walked=None, **options):
        """Its exit code, and the combinations that it walks over in two languages."""
        options = types.SimpleNamespace(**{"quick": False, "full": False, "sheets": False, **options})
        chosen = []

        def walk_all(combinations, folder):
            chosen.extend(combinations)
            return [(one, [walked or good_window()]) for one in combinations]

        with mock.patch.multiple(looks, languages=lambda: ["en", "qps-ploc"], walk_all=walk_all,
                                 DIALOGS=self.dialogs), \
                mock.patch.object(Path, "read_text", lambda _: json.dumps(self.exceptions)), \
                mock.patch("builtins.print"):
            return looks.run(options, Path()), chosen

    def setUp(self):
        self.exceptions = []
        self.dialogs = ["sample"]

    def test_each_pair_of_settings_is_looked_at(self):
        whole = [(language, percent, *look) for language in ("en", "qps-ploc")
                 for percent in (100, 125, 150, 200, 300) for look in looks.LOOKS]
        for options, left_out in (({"full": True}, 0), ({}, 12)):
            _, chosen = self.run_looks(**options)
            seen = {one[:4] for one in chosen}
            self.assertEqual(len(seen), len(whole) - left_out)
            for i in range(4):
                for j in range(i):
                    self.assertEqual({(one[i], one[j]) for one in seen},
                                     {(one[i], one[j]) for one in whole})
            for what in ("thorough", "screen"):
                self.assertEqual({one[:4] for one in chosen if getattr(one, what)},
                                 {(language, 100, *looks.LOOKS[0]) for language in ("en", "qps-ploc")})
        self.assertEqual(len(self.run_looks(quick=True)[1]), 3)

    def test_what_breaks_a_rule_or_is_excepted_in_vain_fails(self):
        self.assertEqual(self.run_looks()[0], 0)
        self.assertEqual(self.run_looks(broken(place(2, height=16)))[0], 1)
        self.exceptions = [{"rules": [6], "dialogs": ["*"], "reason": "it is so"}]
        self.assertEqual(self.run_looks(broken(place(2, height=16)))[0], 0)
        self.assertEqual(self.run_looks()[0], 1)
        self.assertEqual(self.run_looks(quick=True)[0], 0)

    def test_a_walk_that_stops_or_leaves_a_dialog_out_fails(self):
        self.dialogs = ["sample", "another"]
        with self.assertRaises(SystemExit):
            self.run_looks()
        stopped = subprocess.Popen(["false"], start_new_session=True)
        with mock.patch.object(looks, "start_walk", lambda *_: stopped), \
                self.assertRaises(SystemExit):
            list(looks.walk_on_screen([["any"]], Path()))


if __name__ == "__main__":
    unittest.main()
