"""What came of holding windows against the rules: what is broken, and what is excepted.

An exception is an object of a JSON file: the numbers of its "rules", its "dialogs" (with * for any
characters), the numbers of its "controls" (none: all of them, and the window), its "languages" (none:
all), a part of the "fault" that it is of (none: any), and the "reason": what the product promises that forces it.
"""

import collections
import fnmatch
import json
import re

import looks_rules


def unopened(windows, dialogs):
    """The dialogs that a walk has not seen."""
    return sorted(set(dialogs) - {window["dialog"] for window in windows})


class Verdict:
    """Counts what is broken, and what is excepted."""

    def __init__(self, exceptions):
        self.exceptions = json.loads(exceptions.read_text())
        self.broken = collections.defaultdict(list)  # (dialog, rule): texts
        self.excused = collections.Counter()
        self.used = collections.Counter()
        self.dialogs = {}
        self.languages = set()

    def excuse(self, dialog, rule, control, language, fault):
        for index, one in enumerate(self.exceptions):
            if (rule in one["rules"] and
                    any(fnmatch.fnmatchcase(dialog, name) for name in one["dialogs"]) and
                    control in one.get("controls", [control]) and
                    language in one.get("languages", [language]) and
                    one.get("fault", "") in fault):
                self.used[index, rule] += 1
                return True
        return False

    def add(self, combination, language, windows):
        self.languages.add(language)
        buttons = looks_rules.button_texts(windows)
        for window in windows:
            dialog = window["dialog"]
            self.dialogs.setdefault(dialog, None)
            for rule, control, fault in looks_rules.judge(window, language, buttons):
                if self.excuse(dialog, rule, control, language, fault):
                    self.excused[dialog, rule] += 1
                else:
                    where = f"{combination}, {window['state']}"
                    self.broken[dialog, rule].append((where, fault))

    def count(self):
        return sum(map(len, self.broken.values()))

    def print(self):
        print("\nBroken rules, each dialog in all its states (e: excepted, see below):\n")
        numbers = [rule[0] for rule in looks_rules.RULES]
        print(f"{'':32}" + "".join(f"{number:>4}" for number in numbers))
        for dialog in self.dialogs:
            cells = (str(len(self.broken[dialog, number])) if (dialog, number) in self.broken
                     else "e" if self.excused[dialog, number] else "." for number in numbers)
            print(f"{dialog:32}" + "".join(f"{cell:>4}" for cell in cells))
        print()
        for number, name, kinds, _ in looks_rules.RULES:
            print(f"{number:4} {name} ({', '.join(kinds)})")
        print("\nExceptions:")
        for index, one in enumerate(self.exceptions):
            if any(self.used[index, rule] for rule in one["rules"]):
                print(f"  rule {', '.join(map(str, one['rules']))}, {' '.join(one['dialogs'])}: "
                      f"{one['reason']}")
        print("\nNot held by a program:")
        for text in looks_rules.UNCHECKED:
            print(f"  rule {text}")
        for (dialog, number), faults in self.broken.items():
            print(f"\n{dialog}, rule {number}, {len(faults)} times:")
            shown = set()
            for where, fault in faults:
                alike = re.sub(r"\d+", "", fault)
                if alike not in shown and len(shown) < 6:
                    shown.add(alike)
                    print(f"    {fault}\n        ({where})")

    def stale(self):
        """The exceptions that were not made use of, each with the rules of which that is so."""
        unused = [{**one, "rules": [rule for rule in one["rules"] if not self.used[index, rule]]}
                  for index, one in enumerate(self.exceptions)
                  if self.languages.intersection(one.get("languages", self.languages))]
        return [one for one in unused if one["rules"]]
