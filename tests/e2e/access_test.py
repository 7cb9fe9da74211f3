"""Each rule of what a screen reader gets speaks of a tree or a flow that breaks it, and of no other.

Usage: access_test.py TOP
"""

import copy
import importlib.util
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
import access_rules  # noqa: E402
import access_text  # noqa: E402

loader = SourceFileLoader("access", str(TOP / "scripts/access"))
access = importlib.util.module_from_spec(importlib.util.spec_from_loader("access", loader))
loader.exec_module(access)


def thing(window, role, name, top=0, *, kind="Static", states=(), **more):
    made = {"window": window, "child": 0, "class": kind, "role": role, "states": list(states),
            "rect": [10, 100 + top, 90, 10], **more}
    return {**made, "name": name} if name else made


def pin_edit(window, name, top, **more):
    return thing(window, "text", name, top, kind="Edit", states=("focusable", "protected"),
                 **{"value": None, **more})


def good_state(state="empty", verdict="not met"):
    """A small dialog as it should be."""
    rules = thing(5, "dialog", "PIN rules", kind="#32770", rect=[10, 140, 90, 20], children=[
        thing(6, "grouping", "PIN rules", kind="Button", rect=[10, 140, 90, 20]),
        thing(7, "graphic", None, 50),
        thing(8, "static text", f"Digits only, {verdict}", 50, states=("read only",))])
    return {
        "dialog": "sample", "state": state, "kind": "dialog", "events": [], "tabs": [2, 9, 10],
        "client": [10, 100, 110, 200], "units": [150, 163], "mirrored": False,
        "tree": thing(99, "dialog", "Enter PIN", kind="#32770", children=[
            thing(1, "static text", "PIN:", 0, shortcut="Alt+P"), pin_edit(2, "PIN:", 20), rules,
            thing(9, "push button", "OK", 80, kind="Button", action="Press"),
            thing(10, "push button", "Cancel", 80, kind="Button", action="Press")])}


def rename(window, name):
    return {"event": "name change", "object": thing(window, "static text", name)}


def good_flow():
    first = {**good_state(""), "focus": pin_edit(2, "PIN:", 20)}
    typed = {"dialog": "sample", "state": "5", "kind": "dialog", "focus": pin_edit(2, "PIN:", 20),
             "events": [rename(8, "Digits only, met")]}
    return [first, typed]


def find(seen, window):
    return next(each for each, _ in access_text.each_of(seen["tree"]) if each["window"] == window)


def change(window, **values):
    """Values of None take a key away."""
    def apply(seen):
        found = find(seen, window)
        for key, value in values.items():
            if value is None:
                found.pop(key, None)
            else:
                found[key] = value
    return apply


BROKEN_STATES = {
    "named": [change(99, name=None), change(9, name=None),
              change(8, **{"class": "VkProgressBar", "role": "progress bar", "name": None}),
              change(8, **{"class": "VkProgressBar", "role": "client"}),
              change(8, role="client", states=["focusable"])],
    "groups_named": [change(6, name=None)],
    "pictures_nameless": [change(7, name="\uffff")],
    "by_keyboard": [lambda seen: seen["tabs"].remove(10), change(8, action="Press"),
                    change(8, role="radio button")],
    "rules_spoken": [change(8, name="Digits only")],
    "read_in_order": [
        lambda seen: seen["tree"]["children"].reverse(),
        lambda seen: (seen.update(kind="notice"),
                      seen["tree"].update(children=[thing(21, "grouping", "Show help", 40),
                                                    thing(22, "static text", "A title", 10)]))],
    "fields_protected": [
        change(2, states=["focusable"]), change(2, value="1234"), change(2, name="Code:"),
        change(2, value=""),
        lambda seen: seen["events"].append(
            {"event": "focus", "object": {**find(seen, 2), "states": ["focused"]}})],
    "code_kept": [change(1, description="0123-4567-89AB-CDEF")],
}


class Rules(unittest.TestCase):
    def test_good_ones_break_none(self):
        states = [good_state(), good_state("typed")]
        self.assertEqual(list(access_rules.broken({"a": states}, {"b": good_flow()})), [])

    def test_each_is_broken_by_its_own(self):
        self.assertEqual(set(BROKEN_STATES), {rule.__name__ for rule in access_rules.STATE_RULES})
        for name, changes in BROKEN_STATES.items():
            for number, spoil in enumerate(changes):
                seen = good_state()
                spoil(seen)
                broken = [rule.__name__ for rule in access_rules.STATE_RULES if list(rule(seen))]
                with self.subTest(name, number=number):
                    self.assertIn(name, broken)

    def test_a_rule_turns_with_an_event(self):
        states = [good_state(), good_state("typed", "met")]
        self.assertEqual(len(list(access_rules.changes_announced(states))), 1)
        states[1]["events"] = [rename(8, "Digits only, met")]
        self.assertEqual(list(access_rules.changes_announced(states)), [])

    def test_a_secret_that_gets_out_is_seen(self):
        for spoil in (
                lambda flow: flow[1]["focus"].update(value="5"),
                lambda flow: flow[1]["focus"].update(states=["focusable"]),
                lambda flow: flow[1]["focus"].pop("name"),
                lambda flow: flow[1]["focus"].update(description="has 5 characters"),
                lambda flow: flow[1]["events"].append(rename(8, "not 57")),
                # What nobody speaks of.
                lambda flow: flow[1]["events"][0]["object"].update(description="of 57"),
                lambda flow: change(1, description="PIN 9:")(flow[0]),
                # What another kind of field repeats.
                lambda flow: flow[0]["focus"].update({"states": [], "class": "RichEdit"})):
            flow = copy.deepcopy(good_flow())
            spoil(flow)
            self.assertTrue(list(access_rules.secrets_kept(flow)))
        many = [{**good_flow()[1], "state": "many keys", "unprotected": 1}]
        self.assertEqual(len(list(access_rules.keys_protected(many))), 1)


    def test_keys_that_arrive_nowhere_are_missed(self):
        flow = good_flow()
        self.assertEqual(list(access_rules.keys_arrive(flow)), [])
        tab = {**flow[1], "state": "Tab", "events": []}
        button = thing(9, "push button", "OK", 80, kind="Button")
        for spoiled in ([flow[0], {**flow[1], "events": []}], [*flow, tab],
                        [{**flow[0], "focus": button}, flow[1]]):
            self.assertTrue(list(access_rules.keys_arrive(spoiled)))

    def test_what_was_not_heard_is_missed(self):
        heard = {"a": [good_state()]}, {"b": good_flow()}
        self.assertEqual(access_rules.unheard([], *heard), "")
        self.assertEqual(access_rules.unheard(["a"], *heard), "")
        for names, dialogs, flows in ((["c"], *heard), ([], {}, heard[1]), ([], heard[0], {}),
                                      ([], {}, {})):
            self.assertTrue(access_rules.unheard(names, dialogs, flows))


class Transcript(unittest.TestCase):
    def test_tells_what_happens(self):
        flow = good_flow()
        flow.append({**flow[1], "state": "Tab", "events": [],
                     "focus": thing(9, "push button", "OK", 80, kind="Button")})
        self.assertEqual(access_text.transcript(flow), """-- opens
   Enter PIN dialog
   PIN rules group
   Digits only, not met
   PIN:, text, protected
-- a character
   star
   Digits only, met
-- Tab
   OK, push button
""")

    def test_speaks_what_is_not_protected(self):
        flow = good_flow()
        flow[0]["focus"]["states"] = ["focusable"]
        self.assertIn("   5\n", access_text.transcript(flow))


class Tree(unittest.TestCase):
    def test_places_count_from_where_reading_begins(self):
        seen = good_state()
        edit = find(seen, 2)
        self.assertTrue(access_text.described(edit, seen).endswith("by Tab at 0,12 60x6"))
        seen["mirrored"] = True
        self.assertTrue(access_text.described(edit, seen).endswith("at 7,12 60x6"))


class Goldens(unittest.TestCase):
    def run_access(self, folder, states, steps=(), *, write=False):
        """Its exit code, with these states of a dialog and steps of a flow heard."""
        heard = {"dialogs": {"sample": states}, "flows": {"typed": list(steps) or good_flow()}}
        options = types.SimpleNamespace(quick=True, write=write, names=[])
        with mock.patch.multiple(access, TOP=folder, GOLDENS=folder / "tests",
                                 listen=lambda what, *_: heard[what]), mock.patch("builtins.print"):
            return access.run(options, folder)

    def test_what_differs_or_is_gone_or_breaks_a_rule_fails(self):
        with tempfile.TemporaryDirectory() as name:
            folder = Path(name)
            self.assertEqual(self.run_access(folder, [good_state()]), 1)
            self.assertEqual(self.run_access(folder, [good_state()], write=True), 0)
            self.assertEqual(self.run_access(folder, [good_state()]), 0)
            self.assertEqual(self.run_access(folder, [good_state("other")]), 1)
            gone = folder / "tests/flows/gone.txt"
            gone.touch()
            self.assertEqual(self.run_access(folder, [good_state()]), 1)
            self.assertEqual(self.run_access(folder, [good_state()], write=True), 0)
            self.assertFalse(gone.exists())
            nameless = good_state()
            change(9, name=None)(nameless)
            shown = good_flow()
            shown[1]["focus"]["value"] = "5"
            for heard in ([nameless],), ([good_state()], shown):
                self.assertEqual(self.run_access(folder, *heard, write=True), 1)
                self.assertEqual(self.run_access(folder, *heard), 1)


if __name__ == "__main__":
    unittest.main()
