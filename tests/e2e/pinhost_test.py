"""Runs pinhost as a process: what it prints, what it ends with, what it leaves behind.

The dialogs are real ones, and pinhost itself serves them with real key strokes.

Usage: pinhost_test.py [EMULATOR] PINHOST.exe
"""

import hashlib
import hmac
import json
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile
import unittest

PROGRAM = []  # set from the command line
WORDS = (pathlib.Path(__file__).parents[2] / "docs/pinhost.md").read_text()

PIN = "73519"
NEW_PIN = "x8442"
CODE = "0123456789ABCDEF"


class PinHostTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)

    def run_host(self, *arguments, program=None):
        return subprocess.run([*(program or PROGRAM), *arguments], cwd=self.folder, timeout=100,
                              capture_output=True, encoding="utf-8")

    def expect(self, code, result, *arguments, command="", program=None):
        """Runs with --json; compares the exit code and the members of the result."""
        run = self.run_host("--json", *arguments, program=program)
        self.assertEqual(run.returncode, code, run)
        actual = json.loads(run.stdout)
        message = actual.get("message", "")
        if "message" in result:
            self.assertIn(result["message"], message)
            self.assertEqual(run.stderr, f"pinhost: {message}\n")
            result = {**result, "message": message}
        command = arguments[0] if command == "" else command
        self.assertEqual(actual, {"command": command, **result})
        self.assertIn(f"`{actual['result']}`", WORDS)
        for secret in (PIN, NEW_PIN, CODE):
            self.assertNotIn(secret, run.stdout + run.stderr)

    def make_card(self, **changes):
        card = {"reader": "Lecteur é", "pin": PIN, "unlockCode": "12345678", "triesLeft": 3,
                "maxTries": 3, "policy": {"minLength": 4, "maxLength": 8, "digitsOnly": False,
                                          "notWeak": False, "notSame": False}}
        (self.folder / "card.json").write_text(json.dumps({**card, **changes}), encoding="utf-8")

    def card(self):
        return json.loads((self.folder / "card.json").read_text())

    def tries_left(self):
        return self.card()["triesLeft"]

    def check_picture(self, name):
        self.assertTrue((self.folder / name).read_bytes().startswith(b"\x89PNG\r\n"), name)

    def test_error_text(self):
        run = self.run_host("error-text", "11")
        self.assertEqual(run.returncode, 0, run)
        self.assertGreater(len(run.stdout.strip()), 10)
        shown = {"result": "shown", "code": 11, "text": run.stdout.strip()}
        self.expect(0, shown, "error-text", "11")
        self.expect(1, {"result": "unknown", "code": 13}, "error-text", "13")

    def test_languages(self):
        for language, words in (("en", "canceled"), ("de", "geändert"), ("es", "operación"),
                                ("fr", "annulée"), ("it", "è stata"), ("qps-ploc", "[Théé"),
                                ("qps-plocm", "canceled")):
            with self.subTest(language):
                run = self.run_host("error-text", "11", "--language", language)
                self.assertEqual(run.returncode, 0, run)
                self.assertIn(words, run.stdout)

    def test_what_it_is(self):
        version = self.run_host("--version")
        self.assertEqual(version.returncode, 0, version)
        self.assertRegex(version.stdout, r"^pinhost \d+\.\d+\.\d+\n$")
        self.expect(0, {"result": "shown", "text": version.stdout.strip()}, "--version",
                    command=None)

    def test_wrong_command_lines(self):
        (self.folder / "links.html").write_text('<a href="x">one</a>')
        # With its slash in front, a path is no option.
        links = ("richtext", str(self.folder / "links.html"), "--screenshot", "links.png")
        for words, *arguments in (
                ("no command; there are error-text",),
                ('unknown command "frobnicate"; there are error-text', "frobnicate", "1"),
                ("code is required", "error-text"),
                ('code: "eleven" is not a whole number', "error-text", "eleven"),
                ('--press: "maybe" is none of ok, cancel', "last-try", "--press", "maybe"),
                ("not understood: --type 1", "last-try", "--type", "1"),
                ("(--min) is longer", "get-pin", "--min", "9", "--max", "8"),
                ("--type", "change-pin", "--no-current", "--type", "1"),
                ("cannot be cancelled", "change-pin", "--mandatory", "--press", "cancel"),
                ("--route says what", "reset", "--route", "code", "--type", "1"),
                ("a challenge is 16", "help-desk", "0123-4567-89AB-CDEG"),
                ('--min: "-1" is not a whole number from 0 to', "get-pin", "--min", "-1"),
                ("--min needs a value", "get-pin", "--min"),
                ("--log-detail requires --log", "get-pin", "--log-detail"),
                ("not a language: ..\\fr", "error-text", "1", "--language", "..\\fr"),
                ('--dump: "boxes" is none of markup', *links, "--dump", "boxes"),
                ("no link 1: the text has 1, counted from 0", *links, "--hover", "1"),
                ("no link -2", *links, "--focus", "-2")):
            with self.subTest(arguments):
                known = arguments and arguments[0] in WORDS
                self.expect(2, {"result": "usage", "message": words}, *arguments,
                            command=arguments[0] if known else None)
        run = self.run_host("error-text")
        self.assertEqual((run.returncode, run.stdout), (2, ""))

    def copy_host(self, name, *others):
        """The program in a folder of its own, with what else is named of its folder."""
        (self.folder / name).mkdir()
        binaries = pathlib.Path(PROGRAM[-1]).parent
        for pattern in ("pinhost.exe", *others):
            for path in binaries.glob(pattern):
                copy = shutil.copytree if path.is_dir() else shutil.copy
                copy(path, self.folder / name / path.name)
        return [*PROGRAM[:-1], str(self.folder / name / "pinhost.exe")]

    def test_what_is_missing_is_told(self):
        without_library = self.copy_host("alone", "Resources")
        without_texts = self.copy_host("mute", "*.dll")
        (self.folder / "bad.json").write_text("{}")
        texts = ("mute\\Resources\\Localized\\mvpinguirc.dll and "
                 "Resources\\Localized\\mvpinguirc.dll")
        for program, fault, *arguments in (
                (without_library, "mvpingui.dll", "error-text", "11"),
                (without_texts, texts, "last-try", "--press", "ok"),
                (None, "xx\\Resources\\Localized\\mvpinguirc.dll", "error-text", "11",
                 "--language", "xx"),
                (None, "bad.json", "get-pin", "--card", "bad.json"),
                (None, "card.json", "get-pin", "--card", "missing/card.json"),
                (None, "x.log cannot be written", "error-text", "11", "--log", "missing/x.log")):
            with self.subTest(fault):
                self.expect(3, {"result": "failed", "message": fault}, *arguments, program=program)

    @unittest.skipUnless(os.name == "posix", "would change this machine's registry")
    def test_texts_of_the_install_path_serve(self):
        """They are the second place where the library looks."""
        program = self.copy_host("mute", "*.dll")
        french = pathlib.Path(PROGRAM[-1]).parent / "fr"
        key = ("HKLM\\Software\\Quillon\\Veskara", "/v", "VeskaraInstallPath", "/f", "/reg:64")
        path = "Z:" + str(french).replace("/", "\\") + "\\"
        reg = [*PROGRAM[:-1], "reg.exe"]
        self.assertEqual(self.run_host("add", *key, "/d", path, program=reg).returncode, 0)
        try:
            run = self.run_host("error-text", "11", program=program)
        finally:
            self.run_host("delete", *key, program=reg)
        self.assertEqual(run.returncode, 0, run)
        self.assertIn("é", run.stdout)

    def test_last_try(self):
        self.expect(0, {"reader": "Reader A", "result": "accepted"}, "last-try", "--reader",
                    "Reader A", "--press", "ok", "--screenshot", "warning.png", "--log", "log.txt")
        self.check_picture("warning.png")
        log = (self.folder / "log.txt").read_text(encoding="latin-1")
        self.assertLess(log.find("--->DisplayLastPINTry"), log.find("<---DisplayLastPINTry"))
        self.assertGreater(log.find("--->DisplayLastPINTry"), 0)
        self.expect(1, {"reader": "Reader A", "result": "declined"}, "last-try", "--reader",
                    "Reader A", "--press", "cancel")

    @unittest.skipUnless(os.name == "posix", "would install a product on this machine")
    def test_about(self):
        shown = {"result": "shown", "closedBy": "ok"}
        picture = ("--press", "ok", "--screenshot", "about.png")
        binaries = pathlib.Path(PROGRAM[-1]).parent
        demo = [*PROGRAM[:-1], str(binaries / "demoproduct.exe")]
        package = str(binaries / "demo_product.msi")
        name = "Veskara Smart Card Suite"
        try:
            for versions, version in (((), "4.2.0.1180"), (("4.2.1", "4.2.2"), "4.2.2")):
                run = self.run_host("install", package, *versions, program=demo)
                self.assertEqual(run.returncode, 0, run)
                self.expect(0, {**shown, "name": name, "version": f"Version {version}"}, "about",
                            *picture)
                self.check_picture("about.png")
            unknown = {"name": "", "version": "Version "}
            self.expect(0, {**shown, **unknown, "closedBy": "cancel"}, "about", "--press",
                        "cancel", "--window-color", "--product-code",
                        "{00000000-0000-0000-0000-000000000001}", "--language", "fr")
            # What was set for the run is gone.
            self.expect(0, {**shown, "name": name, "version": "Version 4.2.2"}, "about", *picture)
        finally:
            run = self.run_host("remove", program=demo)
        self.assertEqual(run.returncode, 0, run)
        self.expect(0, {**shown, **unknown}, "about", "--credits", "credits.txt", *picture)

    def get_pin(self, code, result, *options):
        self.expect(code, {"reader": "Lecteur é", "lastTry": False, **result}, "get-pin", "--card",
                    "card.json", *options)

    def test_pins_cost_tries_until_the_card_is_blocked(self):
        self.make_card()
        wrong = ("--type", "0000", "--press", "ok")
        self.get_pin(1, {"result": "wrong", "triesLeft": 2}, *wrong)
        self.get_pin(1, {"result": "wrong", "triesLeft": 1}, *wrong)
        right = ("--type", PIN, "--press", "ok", "--screenshot", "dialog.png", "--log", "log.txt")
        self.get_pin(0, {"lastTry": True, "result": "accepted", "triesLeft": 3}, *right)
        self.check_picture("dialog.png")
        self.assertNotIn(PIN, (self.folder / "log.txt").read_text(encoding="latin-1"))
        self.make_card(triesLeft=1)
        self.get_pin(1, {"lastTry": True, "result": "blocked", "triesLeft": 0}, *wrong)
        self.get_pin(1, {"result": "blocked", "triesLeft": 0}, *right)
        self.assertEqual(self.tries_left(), 0)

    def test_what_is_not_confirmed_costs_nothing(self):
        self.make_card()
        self.get_pin(1, {"result": "cancelled", "parentEnabled": True, "triesLeft": 3}, "--type",
                     PIN, "--press", "cancel", "--parent")
        remark = "OK stayed disabled, so the dialog was cancelled"
        for options in (("--type", "123"), ("--type", "123456789"), ("--min", "6", "--type", PIN)):
            self.get_pin(1, {"result": "cancelled", "remark": remark, "triesLeft": 3}, *options,
                         "--press", "ok")
        self.get_pin(1, {"result": "removed", "triesLeft": 3}, "--type", PIN,
                     "--remove-card-after", "300", "--prompt", "Your PIN, please", "--language",
                     "fr")
        self.assertEqual(self.tries_left(), 3)

    def change_pin(self, code, result, *options):
        self.expect(code, {"reader": "Lecteur é", "lastTry": False, **result}, "change-pin",
                    "--card", "card.json", *options)

    def test_a_changed_pin_is_the_one_asked_for(self):
        for embedded in ((), ("--embedded", "--language", "fr")):
            with self.subTest(embedded):
                self.make_card()
                self.change_pin(0, {"result": "changed", "triesLeft": 3}, "--type", PIN,
                                "--type-new", NEW_PIN, "--press", "ok", "--screenshot",
                                "dialog.png", "--log", "log.txt", *embedded)
                self.check_picture("dialog.png")
                log_file = self.folder / "log.txt"
                log = log_file.read_text(encoding="latin-1")
                log_file.unlink()
                for pin in (PIN, NEW_PIN):
                    self.assertNotIn(pin, log)
                self.assertIn("CChangePINDialog::OnInitDialog", log)
                self.assertEqual("CChangePINDialogMain::OnInitDialog" in log, not embedded)
                self.get_pin(1, {"result": "wrong", "triesLeft": 2}, "--type", PIN, "--press", "ok")
                self.get_pin(0, {"result": "accepted", "triesLeft": 3}, "--type", NEW_PIN,
                             "--press", "ok")

    def test_a_change_costs_a_try_only_when_the_current_pin_is_wrong(self):
        self.make_card()
        remark = {"result": "cancelled", "remark": "OK stayed disabled, so the dialog was cancelled"}
        change = ("--type", PIN, "--type-new", NEW_PIN, "--press", "ok")
        self.change_pin(1, {**remark, "triesLeft": 3}, *change, "--digits-only")
        self.change_pin(1, {**remark, "triesLeft": 3}, *change, "--type-confirm", PIN, "--embedded")
        for embedded in ((), ("--embedded",)):
            self.change_pin(1, {"result": "removed", "triesLeft": 3}, "--mandatory", "--press",
                            "cancel", "--remove-card-after", "300", *embedded)
        self.change_pin(1, {"result": "wrong", "triesLeft": 2}, "--type", "0000", "--type-new",
                        NEW_PIN, "--press", "ok")
        # The card has been opened otherwise, which gives no try back.
        self.change_pin(0, {"result": "changed", "triesLeft": 2}, "--no-current", "--type-new",
                        NEW_PIN, "--press", "ok")
        self.get_pin(0, {"result": "accepted", "triesLeft": 3}, "--type", NEW_PIN, "--press", "ok")

    def on_card(self, code, result, command, *options):
        self.expect(code, {"reader": "Lecteur é", **result}, command, "--card", "card.json",
                    *options)

    def test_a_blocked_card_is_unlocked_and_used_again(self):
        self.make_card(triesLeft=1, unlockCode=CODE)
        self.get_pin(1, {"lastTry": True, "result": "blocked", "triesLeft": 0}, "--type", "0000",
                     "--press", "ok")
        new_pin = ("--new-pin", NEW_PIN, "--press", "ok")
        self.on_card(1, {"result": "wrong", "unlocksLeft": 5, "triesLeft": 0}, "unlock", "--code",
                     "0" * 16, "--next-screenshot", "failed.png", *new_pin)
        self.check_picture("failed.png")
        self.on_card(0, {"result": "unlocked", "unlocksLeft": 6, "triesLeft": 3}, "unlock",
                     "--code", "0123-4567-89ab-cdef", "--screenshot", "dialog.png", "--log",
                     "log.txt", *new_pin)
        self.check_picture("dialog.png")
        log = (self.folder / "log.txt").read_text(encoding="latin-1")
        self.assertIn("CUnlockCardDlg::OnOK", log)
        for secret in (NEW_PIN, CODE, CODE.lower()):
            self.assertNotIn(secret, log)
        self.get_pin(0, {"result": "accepted", "triesLeft": 3}, "--type", NEW_PIN, "--press", "ok")

    def test_the_help_desk_answers_the_challenge_that_is_shown(self):
        self.make_card(triesLeft=0, challengeKey="a key")
        left = {"unlocksLeft": 6, "triesLeft": 0}
        self.on_card(1, {"result": "cancelled", **left}, "unlock", "--mode", "challenge", "--press",
                     "cancel")
        challenge = self.card()["challenge"]
        answer = hmac.new(b"a key", challenge.encode(), hashlib.sha256).hexdigest()[:16].upper()
        self.expect(0, {"result": "shown", "response": answer}, "help-desk", "--card", "card.json",
                    f"{challenge[:7]}-{challenge[7:].lower()}")
        unlock = ("unlock", "--mode", "challenge", "--new-pin", NEW_PIN, "--press", "ok")
        self.on_card(1, {"result": "wrong", **left, "unlocksLeft": 5}, *unlock, "--code", CODE)
        self.assertEqual(self.card()["challenge"], challenge)
        self.on_card(0, {"result": "unlocked", "unlocksLeft": 6, "triesLeft": 3}, *unlock)
        self.assertEqual(self.card()["challenge"], "")

    def test_a_card_is_reset_and_gets_its_first_pin(self):
        full = {"unlocksLeft": 6, "triesLeft": 3}
        for route, *options in (
                ("pin", "--type", PIN), ("code", "--code", CODE.lower()),
                ("challenge",), ("code", "--no-pin-route", "--code", CODE, "--language", "fr")):
            with self.subTest(route):
                self.make_card(unlockCode=CODE)
                self.on_card(0, {"result": "reset", **full}, "reset", "--press", "ok", "--route",
                             route, *options)
                self.assertIsNone(self.card()["pin"])
        self.get_pin(1, {"result": "uninitialized", "triesLeft": 3})
        seen = {"unlockCodeSeen": False, **full}
        self.on_card(1, {"result": "refused", **seen}, "init-pin", "--type-new", NEW_PIN,
                     "--card-fails", "14", "--press", "ok")
        self.on_card(0, {"result": "initialized", "unlockCodeSeen": True, "unlocksLeft": 9,
                         "triesLeft": 4}, "init-pin", "--type-new", NEW_PIN, "--tick", "--press",
                     "ok", "--next-screenshot", "code.png", "--max-tries", "4", "--max-unlocks",
                     "9", "--min", "5", "--max", "7", "--weak-allowed", "2", "--force-change", "1",
                     "--alpha-allowed", "1")
        self.check_picture("code.png")
        self.assertEqual(self.card()["policy"], {
            "minLength": 5, "maxLength": 7, "digitsOnly": False, "notWeak": True, "notSame": False,
            "forceChange": True})
        self.on_card(1, {"result": "refused", "unlocksLeft": 9, "triesLeft": 4}, "init-pin")
        self.get_pin(0, {"result": "accepted", "triesLeft": 4}, "--type", NEW_PIN, "--press", "ok")

    def test_what_the_card_dialogs_tell(self):
        ok = ("--press", "ok")
        pulled = ("--remove-card-after", "50")
        left = {"triesLeft": 3}
        unlocks = {"unlocksLeft": 6, **left}
        remark = {"remark": "OK stayed disabled, so the dialog was cancelled"}
        for card, code, result, *arguments in (
                ({}, 0, {"result": "accepted", "unlockCodeSeen": True, **left}, "show-code", *ok,
                 "--tick"),
                ({}, 1, {"result": "declined", "unlockCodeSeen": False, **left}, "show-code", *ok),
                ({}, 1, {"result": "removed", "unlockCodeSeen": False, **left}, "show-code",
                 *pulled),
                ({}, 1, {"result": "refused", "unlockCodeSeen": False, **left}, "show-code", *ok,
                 "--card-fails", "12"),
                ({"unlockCode": None}, 1,
                 {"result": "none", "unlockCodeSeen": False, **left}, "show-code", *ok),
                ({}, 0, {"result": "accepted", **left}, "card-locked", *ok),
                ({}, 1, {"result": "cancelled", **left}, "card-locked", "--press", "cancel"),
                ({}, 1, {"result": "removed", **left}, "card-locked", *pulled),
                ({}, 1, {"result": "removed", **left}, "card-tool", "--mode", "init", *pulled),
                ({}, 1, {"result": "removed", **unlocks}, "unlock", *pulled),
                ({}, 1, {"result": "cancelled", **remark, **unlocks}, "unlock", "--code", CODE,
                 "--new-pin", "123", *ok),
                ({"pin": None}, 1, {"result": "uninitialized", **unlocks}, "unlock"),
                ({"unlocksLeft": 0, "maxUnlocks": 6}, 1,
                 {"result": "blocked", **unlocks, "unlocksLeft": 0}, "unlock"),
                ({"unlocksLeft": 1, "maxUnlocks": 6}, 1,
                 {"result": "blocked", **unlocks, "unlocksLeft": 0}, "unlock", "--code", "0" * 16,
                 "--new-pin", NEW_PIN, *ok),
                ({}, 1, {"result": "refused", **unlocks}, "unlock", "--code", CODE, "--new-pin",
                 NEW_PIN, "--card-fails", "8", *ok),
                ({"pin": None}, 1, {"result": "removed", "unlockCodeSeen": False, **unlocks},
                 "init-pin", *pulled),
                ({}, 1, {"result": "wrong", **unlocks, "triesLeft": 2}, "reset", "--type", "0000",
                 *ok),
                ({}, 1, {"result": "wrong", **unlocks, "unlocksLeft": 5}, "reset", "--route",
                 "code", "--code", "1", *ok),
                ({"triesLeft": 0}, 1, {"result": "blocked", **unlocks, "triesLeft": 0}, "reset"),
                ({}, 1, {"result": "removed", **unlocks}, "reset", *pulled)):
            with self.subTest(arguments):
                self.make_card(**{"unlockCode": CODE, **card})
                self.on_card(code, result, *arguments)

    def popup(self, *arguments):
        """A run's exit code and object; the messages apart, without their times."""
        run = self.run_host("popup", *arguments, "--json")
        told = json.loads(run.stdout)
        self.assertIn(f"`{told['result']}`", WORDS)
        messages = told.pop("messages", [])
        return run.returncode, told, messages, [(message["message"], message["to"],
                                                 message.get("topic")) for message in messages]

    def test_notices(self):
        closed = [(1225, "window", None), (1225, "thread", None)]
        helped = [(1227, "vkcrdsub", 1017), *closed]
        for code, result, heard, most, *arguments in (
                (0, "shown", closed, 20000, "card-alert", "--stay", "1", "--screenshot", "a.png",
                 "--film", "film"),
                (0, "shown", helped, 20000, "no-reader", "--stay", "1", "--click", "help"),
                (3, "failed", [], 0, "no-reader", "--no-help", "--stay", "1", "--click", "help"),
                (1, "disabled", [], 0, "no-reader", "--disabled"),
                (2, "usage", [], 0, "otp", "--disabled"),
                (1, "removed", closed, 20000, "card-alert", "--stay", "60",
                 "--remove-card-after", "50"),
                (1, "removed", closed, 20000, "otp", "--otp-after", "60000", "--reader", "Reader B",
                 "--remove-card-after", "50")):
            with self.subTest(arguments):
                actual, told, messages, hears = self.popup(*arguments)
                self.assertEqual((actual, told["result"], hears), (code, result, heard), told)
                # Closed by what the case does, not by the end of a minute.
                self.assertTrue(all(message["after"] < most for message in messages), messages)
        self.check_picture("a.png")
        self.check_picture("film/strip.png")
        self.check_picture("film/05.png")

    def test_a_notice_stays_as_long_as_the_pointer(self):
        code, told, messages, _ = self.popup("card-alert", "--message", "<b>Later</b>", "--beep",
                                             "--stay", "1", "--hover", "3000")
        self.assertEqual((code, told["result"]), (0, "shown"))
        self.assertGreaterEqual(messages[0]["after"] - told["stoodAfter"], 3000)

    def test_a_one_time_password_is_shown_for_its_time(self):
        code, told, messages, _ = self.popup("otp", "--otp", "<b>740 291</b>", "--otp-after", "500",
                                             "--stay", "1", "--next-screenshot", "otp.png")
        self.assertEqual((code, told["result"], told["text"]), (0, "shown", "<b>740 291</b>"))
        self.assertGreaterEqual(told["passwordAfter"], 500)
        # Windows' clock ticks every 16 ms.
        self.assertGreaterEqual(messages[0]["after"] - told["passwordAfter"], 900)
        self.check_picture("otp.png")

    def test_a_notice_comes_to_stand_beside_the_taskbar(self):
        width, height, thickness = 340, 230, 40
        for side, taken, place in (
                ("top", (0, thickness, 0, 0), lambda a: (a[2] - width, a[1])),
                ("left", (thickness, 0, 0, 0), lambda a: (a[0], a[3] - height)),
                ("right", (0, 0, -thickness, 0), lambda a: (a[2] - width, a[3] - height)),
                ("bottom", (0, 0, 0, -thickness),
                 lambda a: (a[2] - width - 7, a[3] - height - 6)),
                # The screen is whole again.
                (None, (0, 0, 0, 0), lambda a: (a[2] - width - 7, a[3] - height - 6))):
            with self.subTest(side):
                options = ("--taskbar", side) if side else ()
                code, told, _, _ = self.popup("card-alert", "--click", "close", "--stay", "60",
                                              *options)
                area = told["workArea"]
                self.assertEqual((code, told["result"]), (0, "shown"), told)
                if side == "top":
                    screen = (0, 0, area[2], area[3])
                self.assertEqual(area, [edge + by for edge, by in zip(screen, taken)])
                self.assertEqual(tuple(told["place"][:2]), place(area))

    def test_what_expires_is_told(self):
        future = ("--cert", "a=2039-05-17", "--cert", "b=+400")
        ok = ("--press", "ok")
        for code, result, days, *arguments in (
                (1, "unchanged", -1, *future, *ok),
                (1, "unchanged", -1, *future, "--press", "cancel"),
                (0, "changed", 7, *future, "--type", "7", *ok),
                (0, "changed", 0, *future, "--tick", *ok),
                (1, "unchanged", -1, *future, "--days", "0", "--tick", *ok),
                (1, "unchanged", -1, "--card=-1", *future, *ok),
                (1, "unchanged", -1, "--cert", "a=1969-07-20", "--cert", "=2038-01-20", *ok),
                (0, "changed", 3, "--card", "2038-01-20", "--type", "3", "--language", "fr", *ok),
                (1, "cancelled", -1, *future, "--cancel-after", "0"),
                (1, "cancelled", -1, "--card", "+1", "--cancel-after", "50"),
                (1, "none", -1, *ok)):
            with self.subTest(arguments):
                self.expect(code, {"reader": "Reader A", "days": days, "result": result}, "expiry",
                            "--reader", "Reader A", *arguments)
        for wrong in (("--card", "tomorrow"), ("--cert", "a"), ("--cert", "a=2031-02-30")):
            self.expect(2, {"result": "usage", "message": wrong[1].split("=")[-1]}, "expiry", *wrong)
        self.run_host("expiry", *future, "--screenshot", "notice.png", *ok)
        self.check_picture("notice.png")

    def test_a_card_pulled_at_any_moment_ends_the_request(self):
        for delay in ("0", "15", "30", "45", "60"):
            self.make_card()
            run = self.run_host("get-pin", "--card", "card.json", "--type", PIN, "--press", "ok",
                                "--remove-card-after", delay, "--json")
            self.assertIn(run.returncode, (0, 1), run)
            result = json.loads(run.stdout)["result"]
            self.assertIn((run.returncode, result), ((0, "accepted"), (1, "removed")), run)


if __name__ == "__main__":
    PROGRAM = sys.argv[1:]
    unittest.main(argv=sys.argv[:1])
