"""pinhost before a real card: a PIV card in a reader of the machine's smart-card service.

The flows are the library's own, served with real key strokes; after each one the card's counters are
read at the card itself.

Usage: smartcard_test.py WINSCARD.dll [EMULATOR] PINHOST.exe
"""

import json
import pathlib
import sys
import time
import unittest
from unittest import mock

sys.path.insert(0, str(pathlib.Path(__file__).parents[1] / "support/smartcard"))

import bridge  # noqa: E402
from card import CHANGE, SELECT, UNBLOCK, VERIFY, PivApplet, padded  # noqa: E402
from session import Session, wait_until  # noqa: E402

PIN, NEW_PIN, WRONG_PIN = "730519", "9401857", "285174"
PUK, WRONG_PUK, TRANSPORT_PIN = "60413975", "60413976", "418306"
CODE, WRONG_CODE = PUK.encode().hex(), WRONG_PUK.encode().hex()  # as they are typed
SECRETS = (PIN, NEW_PIN, WRONG_PIN, PUK, WRONG_PUK, TRANSPORT_PIN, CODE, WRONG_CODE)
PIN_COMMANDS = {VERIFY, CHANGE, UNBLOCK}
OK = ("--press", "ok")
SHARING, UNAVAILABLE, RESET, REMOVED = 0x8010000B, 0x80100017, 0x80100068, 0x80100069
# The service appends the slot, and the name is as long as one may be: 127 bytes.
READER = "Veskara Test Reader with a name that is as long as one may be ".ljust(121, "x")
SESSION = None  # of the whole run


class SmartCardTest(unittest.TestCase):
    def setUp(self):
        self.slot = SESSION.slots[0]

    def put_in(self, slot=None, **changes):
        applet = PivApplet(PIN, PUK)
        for name, value in changes.items():
            setattr(applet, name, value)
        return SESSION.insert(slot or self.slot, applet)

    def finish(self, process, code, expected):
        self.addCleanup(process.kill)
        output, errors = process.communicate(timeout=20)
        self.assertEqual(process.returncode, code, (output, errors))
        actual = json.loads(output)
        for name, value in expected.items():
            check = self.assertIn if name == "message" else self.assertEqual
            check(value, actual.get(name), actual)
        for secret in SECRETS:
            self.assertNotIn(secret, output + errors)

    def expect(self, code, expected, *arguments, slot=None):
        arguments = [*arguments, "--card", f"pcsc:{(slot or self.slot).reader}"]
        self.finish(SESSION.start(*arguments), code, expected)

    def check_card(self, applet, pin, tries, unlocks=3):
        self.assertEqual((applet.pin, applet.tries, applet.unlocks),
                         (padded(pin.encode()), tries, unlocks))
        self.assertFalse(applet.is_open)

    def open_dialog(self, *arguments):
        picture = SESSION.folder / "open.png"
        picture.unlink(missing_ok=True)
        process = SESSION.start(*arguments, "--screenshot", picture.name)
        self.addCleanup(process.kill)
        wait_until(lambda: picture.exists() and SESSION.has_looked(process),
                   f"the dialog of {arguments[0]} is open")
        return process

    def test_pins(self):
        enter, change = ("get-pin", *OK), ("change-pin", *OK, "--type-new", NEW_PIN)
        for tries, code, result, left, pin, arguments in (
                (3, 0, "accepted", 3, PIN, (*enter, "--type", PIN)),
                (1, 0, "accepted", 3, PIN, (*enter, "--type", PIN)),
                (3, 1, "wrong", 2, PIN, (*enter, "--type", WRONG_PIN)),
                (1, 1, "blocked", 0, PIN, (*enter, "--type", WRONG_PIN)),
                (0, 1, "blocked", 0, PIN, (*enter, "--type", PIN)),
                (1, 1, "cancelled", 1, PIN, ("get-pin", "--press", "cancel")),
                (2, 0, "changed", 3, NEW_PIN, (*change, "--type", PIN)),
                (2, 1, "wrong", 1, PIN, (*change, "--type", WRONG_PIN))):
            with self.subTest(arguments[0], result=result, tries=tries):
                applet = self.put_in(tries=tries)
                self.expect(code, {"result": result, "triesLeft": left, "lastTry": tries == 1},
                            *arguments)
                self.check_card(applet, pin, left)

    def test_unlock_codes(self):
        unlock = ("unlock", *OK, "--new-pin", NEW_PIN, "--code")
        reset = ("reset", *OK, "--transport-pin", TRANSPORT_PIN)
        init = ("init-pin", *OK, "--type-new", NEW_PIN, "--transport-pin")
        for state, code, result, pin, tries, unlocks, told, arguments in (
                ({"tries": 0}, 0, "unlocked", NEW_PIN, 3, 3, None, (*unlock, CODE)),
                ({"tries": 0}, 1, "wrong", PIN, 0, 2, 2, (*unlock, WRONG_CODE)),
                ({"unlocks": 1}, 1, "blocked", PIN, 3, 0, 0, (*unlock, WRONG_CODE)),
                ({}, 0, "initialized", NEW_PIN, 3, 3, None, (*init, PIN)),
                ({}, 1, "refused", PIN, 2, 3, None, (*init, TRANSPORT_PIN)),
                ({}, 0, "reset", TRANSPORT_PIN, 3, 3, None, (*reset, "--type", PIN)),
                ({"tries": 0}, 0, "reset", TRANSPORT_PIN, 3, 3, None,
                 (*reset, "--route", "code", "--code", PUK)),
                ({"tries": 1}, 1, "blocked", PIN, 0, 3, None, (*reset, "--type", WRONG_PIN)),
                ({"tries": 0}, 1, "wrong", PIN, 0, 2, 2,
                 (*reset, "--route", "code", "--code", WRONG_PUK))):
            with self.subTest(arguments[0], result=result, **state):
                applet = self.put_in(**state)
                self.expect(code, {"result": result, "triesLeft": tries, "unlocksLeft": told},
                            *arguments)
                self.check_card(applet, pin, tries, unlocks)

    def test_what_a_piv_card_cannot_do(self):
        applet = self.put_in()
        for words, *arguments in (("no challenge", "unlock", "--mode", "challenge"),
                                  ("no unlock code", "show-code"),
                                  ("no way to be opened", "change-pin", "--no-current"),
                                  ("--transport-pin is needed", "init-pin"),
                                  ("not --reader", "get-pin", "--reader", "A"),
                                  ("--remove-card-after", "get-pin", "--remove-card-after", "1")):
            with self.subTest(arguments):
                self.expect(2, {"result": "usage", "message": words}, *arguments)
        self.assertEqual(applet.trace, [])

    def test_cards_of_their_own_mind(self):
        enter = ("get-pin", "--type", PIN, *OK)
        failed = {"result": "failed"}
        for changes, code, expected, arguments in (
                ({"delays": {VERIFY: 1.5}}, 0, {"result": "accepted", "triesLeft": 3}, enter),
                ({"answers": {VERIFY: b"\x6f\x00"}}, 3,
                 {**failed, "message": "answered VERIFY with status 6F00"}, enter),
                ({"answers": {VERIFY: b"\x90"}}, 3, {**failed, "message": "without a status"}, enter),
                ({"answers": {SELECT: b"\x6a\x82"}}, 3,
                 {**failed, "message": "no PIV application"}, enter),
                ({"answers": {VERIFY: bytes(300)}}, 3, failed, enter),
                ({"answers": {CHANGE: b"\x6a\x80"}}, 1, {"result": "refused", "triesLeft": 3},
                 ("change-pin", "--type", PIN, "--type-new", NEW_PIN, *OK)),
                ({"answers": {UNBLOCK: b"\x69\x85"}}, 3,
                 {**failed, "message": "RESET RETRY COUNTER with status 6985"},
                 ("unlock", "--code", CODE, "--new-pin", NEW_PIN, *OK))):
            with self.subTest(expected, **changes):
                applet = self.put_in(**changes)
                self.expect(code, expected, *arguments)
                self.check_card(applet, PIN, 3)

    def test_a_card_that_goes(self):
        # The reader has not noticed yet: it has no answer.
        for instruction, *arguments in (
                (VERIFY, "get-pin", "--type", PIN),
                (UNBLOCK, "unlock", "--code", CODE, "--new-pin", NEW_PIN)):
            with self.subTest("at a command", command=arguments[0]):
                applet = self.put_in(vanish_before=instruction)
                self.expect(3, {"result": "failed", "message": "the card"}, *arguments, *OK)
                self.check_card(applet, PIN, 3)
                SESSION.await_card(self.slot, is_in=False)
        removed = {"result": "removed", "triesLeft": None}
        transport = ("--transport-pin", TRANSPORT_PIN)
        for command, *options in (("get-pin",), ("change-pin",), ("unlock",), ("card-tool",),
                                  ("reset", *transport), ("init-pin", *transport)):
            with self.subTest("under the dialog", command=command):
                self.put_in()
                process = self.open_dialog(command, *options, "--card", f"pcsc:{self.slot.reader}")
                self.slot.pull()
                self.finish(process, 1, removed)
        # One of a card's reader, and one that any card takes along.
        for options in (("otp", "--otp-after", "1", "--reader", self.slot.reader), ("card-alert",)):
            with self.subTest("under the notice", kind=options[0]):
                self.put_in()
                process = self.open_dialog("popup", *options, "--stay", "60")
                begin = time.monotonic()
                self.slot.pull()
                self.finish(process, 0, {"result": "shown"})
                self.assertLess(time.monotonic() - begin, 20)

    def test_readers(self):
        other = SESSION.slots[1]
        self.assertEqual(len(other.reader), 127)
        self.slot.pull()
        SESSION.await_card(self.slot, is_in=False)
        applet = self.put_in(other)
        # The first reader that has a card.
        self.finish(SESSION.start("get-pin", "--card", "pcsc", "--type", WRONG_PIN, *OK), 1,
                    {"result": "wrong", "reader": other.reader})
        self.check_card(applet, PIN, 2)
        self.expect(0, {"result": "accepted", "reader": other.reader}, "get-pin", "--type", PIN,
                    *OK, slot=other)
        self.expect(3, {"result": "failed", "message": "no card in the reader"}, "get-pin")
        self.finish(SESSION.start("get-pin", "--card", "pcsc:None"), 3,
                    {"result": "failed", "message": "no such reader"})

    def test_services_of_their_own_mind(self):
        removed, failed = {"result": "removed"}, {"result": "failed"}
        for call, results, code, expected, card in (
                ("BeginTransaction", [RESET, RESET], 0, {"result": "accepted"}, None),
                ("BeginTransaction", [RESET] * 9, 3, {**failed, "message": "(80100068)"}, None),
                ("BeginTransaction", [UNAVAILABLE], 1, removed, None),
                ("Transmit", [UNAVAILABLE], 1, removed, None),
                ("Connect", [REMOVED], 3, {**failed, "message": "no card in the reader"}, None),
                ("Connect", [SHARING], 3, {**failed, "message": "has the card to itself"}, None),
                ("ListReaders", [0] * 2, 3, {**failed, "message": "there is no reader"}, "pcsc")):
            with self.subTest(call, results=results):
                applet = self.put_in()
                left, usual = list(results), bridge.CALLS[call]

                def answer(service, *words):
                    return (left.pop(0), ["-00"]) if left else usual(service, *words)

                with mock.patch.dict(bridge.CALLS, {call: answer}):
                    self.finish(SESSION.start("get-pin", "--type", PIN, *OK, "--card",
                                              card or f"pcsc:{self.slot.reader}"), code, expected)
                self.check_card(applet, PIN, 3)
                self.assertFalse(code == 3 and applet.trace)

    def test_no_service(self):
        self.put_in()
        SESSION.stop_service()
        self.addCleanup(SESSION.start_service)
        self.expect(3, {"result": "failed", "message": "service does not run"}, "get-pin")

    def test_secrets_stay_on_their_way(self):
        log = SESSION.folder / "log.txt"
        enter = ("get-pin", "--type", PIN, *OK, "--log", "log.txt")
        applet = self.put_in()
        for arguments in (enter, (*enter, "--log-detail"),
                          ("change-pin", "--type", PIN, "--type-new", NEW_PIN, *OK, "--log",
                           "log.txt"),
                          ("unlock", "--code", CODE, "--new-pin", PIN, *OK, "--log", "log.txt")):
            self.expect(0, {}, *arguments)
        carried = 0
        for command in applet.trace:
            holds = any(secret.encode() in command.data for secret in SECRETS)
            self.assertEqual(holds, command.instruction in PIN_COMMANDS and bool(command.data))
            carried += holds
        self.assertEqual(carried, 4)
        logs = {"library": log.read_bytes(), "service": SESSION.service.log.read_bytes(),
                "bridge": "\n".join(SESSION.bridge.log).encode()}
        self.assertIn(b"Transmit 00200080", logs["bridge"])
        self.assertGreater(len(logs["library"]), 1000)
        for name, text in logs.items():
            for secret in SECRETS:
                for form in (secret, secret.encode().hex(), secret.encode().hex(" ").upper()):
                    self.assertNotIn(form.encode(), text, name)


if __name__ == "__main__":
    LIBRARY, *PROGRAM = sys.argv[1:]
    with Session(PROGRAM, LIBRARY, READER) as SESSION:
        SESSION.start_service()
        RUN = unittest.main(argv=sys.argv[:1], exit=False)
    sys.exit(not RUN.result.wasSuccessful())
