"""Runs pinhost as a process: what it prints, what it ends with, what it leaves behind.

The dialogs are real ones, and pinhost itself serves them with real key strokes.

Usage: pinhost_test.py [EMULATOR] PINHOST.exe
"""

import json
import pathlib
import shutil
import subprocess
import sys
import tempfile
import unittest

PROGRAM = []  # set from the command line

PIN = "73519"
NEW_PIN = "x8442"


class PinHostTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)

    def run_host(self, *arguments, program=None):
        return subprocess.run([*(program or PROGRAM), *arguments], cwd=self.folder, timeout=100,
                              capture_output=True, encoding="utf-8")

    def expect(self, code, result, *arguments):
        """Runs with --json; compares the exit code and the members of the result."""
        run = self.run_host(*arguments, "--json")
        self.assertEqual(run.returncode, code, run)
        actual = json.loads(run.stdout)
        self.assertEqual(actual, {"command": arguments[0], **result})
        for pin in (PIN, NEW_PIN):
            self.assertNotIn(pin, run.stdout + run.stderr)

    def make_card(self, **changes):
        card = {"reader": "Lecteur é", "pin": PIN, "unlockCode": "12345678", "triesLeft": 3,
                "maxTries": 3, "policy": {"minLength": 4, "maxLength": 8, "digitsOnly": False,
                                          "notWeak": False, "notSame": False}}
        (self.folder / "card.json").write_text(json.dumps({**card, **changes}), encoding="utf-8")

    def tries_left(self):
        return json.loads((self.folder / "card.json").read_text())["triesLeft"]

    def check_picture(self, name):
        self.assertTrue((self.folder / name).read_bytes().startswith(b"\x89PNG\r\n"), name)

    def test_error_text(self):
        run = self.run_host("error-text", "11")
        self.assertEqual(run.returncode, 0, run)
        self.assertGreater(len(run.stdout.strip()), 10)
        self.expect(0, {"code": 11, "text": run.stdout.strip()}, "error-text", "11")
        self.expect(1, {"code": 13, "text": ""}, "error-text", "13")
        french = self.run_host("error-text", "11", "--language", "fr")
        self.assertNotEqual(french.stdout, run.stdout)
        self.assertIn("é", french.stdout)

    def test_wrong_command_lines(self):
        for arguments in ([], ["frobnicate"], ["error-text"], ["error-text", "eleven"],
                          ["last-try", "--press", "maybe"], ["last-try", "--type", "1"],
                          ["get-pin", "--min", "9", "--max", "8", "--card", "card.json"],
                          ["change-pin", "--no-current", "--type", "1"],
                          ["change-pin", "--mandatory", "--press", "cancel"],
                          ["get-pin", "--min", "-1"], ["get-pin", "--log-detail"],
                          ["error-text", "1", "--language", "..\\fr"]):
            with self.subTest(arguments):
                run = self.run_host(*arguments)
                self.assertEqual(run.returncode, 2, run)
                self.assertEqual(run.stdout, "")
                self.assertGreater(len(run.stderr), 10)

    def test_what_is_missing_is_told(self):
        alone = self.folder / "pinhost.exe"
        shutil.copy(PROGRAM[-1], alone)
        (self.folder / "bad.json").write_text("{}")
        for program, fault, *arguments in (
                ([*PROGRAM[:-1], str(alone)], "mvpingui.dll", "error-text", "11"),
                (None, "mvpinguirc.dll", "error-text", "11", "--language", "xx"),
                (None, "bad.json", "get-pin", "--card", "bad.json"),
                (None, "card.json", "get-pin", "--card", "missing/card.json")):
            with self.subTest(fault):
                run = self.run_host(*arguments, program=program)
                self.assertEqual(run.returncode, 3, run)
                self.assertIn(fault, run.stderr)

    def test_last_try(self):
        self.expect(0, {"reader": "Reader A", "result": "accepted"}, "last-try", "--reader",
                    "Reader A", "--press", "ok", "--screenshot", "warning.png", "--log", "log.txt")
        self.check_picture("warning.png")
        log = (self.folder / "log.txt").read_text(encoding="latin-1")
        self.assertLess(log.find("--->DisplayLastPINTry"), log.find("<---DisplayLastPINTry"))
        self.assertGreater(log.find("--->DisplayLastPINTry"), 0)
        self.expect(1, {"reader": "Reader A", "result": "declined"}, "last-try", "--reader",
                    "Reader A", "--press", "cancel")

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
