"""Plays transcripts against pinentry.exe: real windows, real keys, and the endings of a session.

Usage: session_test.py [EMULATOR] PINENTRY.exe TYPIST.exe
"""

import os
import pathlib
import subprocess
import sys
import tempfile
import time
import unittest

from typist import Typist, windows_path

PROGRAM = []  # set from the command line
TYPIST = []
TRANSCRIPTS = pathlib.Path(__file__).parent / "transcripts"
CANARY = "Kanarienvogel-7351"
CHOSEN = ("getpin_texts", "getpin_canceled", "getpin_closed", "getpin_error_comes_first", "getpin_timeout",
          "pin_with_umlauts", "pin_with_percent_signs", "new_pin_texts", "constraints_not_met",
          "confirm_refused", "confirm_closed", "confirm_any_script", "message_canceled",
          "label_access_keys", "text_outside_the_code_page", "option_language")


def memory_holds(pid, *texts):
    """Of the texts those that stand in the memory of the process, in bytes or in wide characters."""
    needles = {text: (text.encode(), text.encode("utf-16-le")) for text in texts}
    found = set()
    with open(f"/proc/{pid}/mem", "rb", buffering=0) as memory:
        for line in pathlib.Path(f"/proc/{pid}/maps").read_text().splitlines():
            bounds, rights = line.split()[:2]
            begin, end = (int(number, 16) for number in bounds.split("-"))
            if not rights.startswith("rw"):
                continue
            try:
                memory.seek(begin)
                content = memory.read(end - begin)
            except OSError:
                continue  # reserved only
            found |= {text for text, forms in needles.items() if any(form in content for form in forms)}
    return found


class SessionTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.typist = Typist(TYPIST)
        cls.addClassCleanup(cls.typist.close)

    def start(self, *arguments, **options):
        program = subprocess.Popen([*PROGRAM, *arguments], stdin=subprocess.PIPE,
                                   stdout=subprocess.PIPE, **options)
        self.addCleanup(program.stdout.close)
        self.addCleanup(program.wait, 30)
        self.addCleanup(program.stdin.close)
        if not arguments or arguments[0].startswith("--"):
            self.expect(program, "OK Pleased to meet you")
        return program

    def send(self, program, line):
        program.stdin.write(line.encode() + b"\n")
        program.stdin.flush()

    def expect(self, program, line):
        said = program.stdout.readline().decode()
        self.assertEqual(said, line + "\n", said or f"it ended with {program.wait(30)}")

    def request(self, program, *lines):
        for line in lines:
            self.send(program, line)
            self.expect(program, "OK")

    def await_text(self, text, gone):
        end = time.monotonic() + 20
        while text not in (texts := self.typist.wait()["texts"]) or gone in texts:
            self.assertLess(time.monotonic(), end, texts)

    def check_window(self, dialog, line):
        """What the transcript names stands in the window; of what it does not, the window has its own."""
        self.assertTrue(dialog["topmost"])
        shown = {"title": [dialog["title"]], "text": dialog["texts"], "label": dialog["texts"],
                 "repeat": dialog["texts"], "ok": dialog["buttons"], "no": dialog["buttons"],
                 "cancel": dialog["buttons"]}
        for part in line.split("; ")[1:]:
            name, text = part.split(": ", 1)
            if name in shown:
                self.assertIn(text.replace("\\n", "\n"), shown[name])

    def act(self, act, kind):
        if act.startswith("types "):
            texts = [act[6:]] * (2 if kind == "new PIN" else 1)
            self.typist.type(*texts)
            self.typist.press("enter")
        elif act == "refuses":
            self.typist.press("alt+n")
        elif act != "waits":
            self.typist.press({"confirms": "enter", "cancels": "escape", "closes": "close"}[act])
        self.typist.gone()

    def play(self, transcript):
        program = self.start()
        kind = ""
        for event in transcript.replace(" | ", "\n").splitlines():
            letter, text = event[:1], event[3:]
            if letter == "C":
                self.send(program, text)
            elif letter == "S":
                self.expect(program, text)
            elif letter == "W":
                kind = text.split(";")[0]
                self.check_window(self.typist.wait(), text)
            elif letter == "U":
                self.act(text, kind)
        program.stdin.close()
        self.assertEqual(program.stdout.read(), b"")
        self.assertEqual(program.wait(30), 0)

    def test_transcripts(self):
        for name in CHOSEN:
            with self.subTest(name):
                self.play((TRANSCRIPTS / f"{name}.txt").read_text(encoding="utf-8"))

    def test_own_texts_of_a_language(self):
        program = self.start("--lc-messages", "de_DE.UTF-8")
        for request in ("GETPIN", "CONFIRM"):
            self.send(program, request)
            self.assertIn("Abbrechen", self.typist.wait()["buttons"])
            self.typist.press("escape")
            self.expect(program, "ERR 83886179 Operation cancelled")

    def test_long_texts_stay_on_the_screen(self):
        program = self.start()
        self.request(program, *(f"{word} {'Wort ' * 150}" for word in (
            "SETTITLE", "SETDESC", "SETPROMPT", "SETOK", "SETNOTOK", "SETCANCEL")))
        for request in ("GETPIN", "CONFIRM"):
            self.send(program, request)
            self.assertTrue(self.typist.next()["onScreen"], request)
            self.typist.press("escape")
            self.expect(program, "ERR 83886179 Operation cancelled")

    def test_two_entries(self):
        program = self.start()
        self.request(program, "OPTION invisible-char=#", "SETREPEAT", "SETREPEATERROR They differ!")
        self.send(program, "GETPIN")
        dialog = self.typist.wait()
        self.assertEqual(dialog["masks"], ["#", "#"])
        own = "New PIN and confirmation match"
        self.typist.type("ab")
        self.await_text("They differ!", own)
        self.typist.press("tab")
        self.typist.type("ab")
        # The client has no words for that.
        self.await_text(own, "They differ!")
        self.typist.press("escape")
        self.expect(program, "ERR 83886179 Operation cancelled")

    def test_client_goes_while_a_window_is_open(self):
        for request in ("GETPIN", "SETREPEAT", "CONFIRM"):
            with self.subTest(request):
                program = self.start()
                if request == "SETREPEAT":
                    self.request(program, request)
                self.send(program, "CONFIRM" if request == "CONFIRM" else "GETPIN")
                self.typist.wait()
                if request != "CONFIRM":
                    self.typist.type(CANARY)
                program.stdin.close()
                self.assertEqual(program.wait(30), 0)
                self.assertEqual(program.stdout.read(), b"")
                self.typist.gone()

    def test_client_that_no_longer_reads(self):
        # The arguments, what the client sent before, what it sends, and the exit code.
        for arguments, before, request, code in (
                ((), (), "GETPIN", 0), ((), (), "CONFIRM", 0), ((), (), "NOP\nGETPIN", 0),
                ((), ("SETREPEAT", "OPTION constraints-enforce"), "GETPIN", 0), (("Password:",), (), "", 3)):
            with self.subTest(arguments=arguments, before=before, request=request):
                program = self.start(*arguments)
                self.request(program, *before)
                if "NOP" not in request:
                    self.send(program, request)
                    self.typist.wait()
                program.stdout.close()
                if "NOP" in request:
                    self.send(program, request)
                else:
                    self.typist.type(*[CANARY] * (0 if request == "CONFIRM" else 2 if before else 1))
                    self.typist.press("enter")
                    self.typist.gone()
                self.assertEqual(program.wait(30), code)

    def test_requests_that_come_while_a_window_is_open_wait(self):
        program = self.start()
        self.send(program, "GETPIN\nSETDESC second\nGETPIN")
        for text, pin in (("", "one"), ("second", "two")):
            self.assertIn(text, self.typist.wait()["texts"])
            self.typist.type(pin)
            self.typist.press("enter")
            self.typist.gone()
            self.expect(program, f"D {pin}")
            self.expect(program, "OK")
            if pin == "one":
                self.expect(program, "OK")

    def test_window_of_the_client(self):
        client = self.start()
        self.send(client, "CONFIRM")
        window = self.typist.wait()["window"]
        program = self.start()
        self.request(program, f"OPTION parent-wid={window}")
        for request in ("CONFIRM", "GETPIN", "SETREPEAT"):
            with self.subTest(request):
                if request == "SETREPEAT":
                    self.request(program, request)
                self.send(program, "GETPIN" if request == "SETREPEAT" else request)
                self.assertEqual(self.typist.next()["owner"], window)
                self.typist.press("escape")
                self.expect(program, "ERR 83886179 Operation cancelled")
                # It takes keys again.
                self.assertEqual(self.typist.next()["window"], window)
        self.typist.press("escape")
        self.expect(client, "ERR 83886179 Operation cancelled")

    def test_flood_ends_the_session(self):
        program = self.start()
        self.send(program, "GETPIN" + "\nNOP" * 400)
        self.assertEqual(program.wait(30), 0)

    def test_no_display(self):
        for arguments, answer in (((), "ERR 83886166 No pinentry"), (("Password: ",), None)):
            with self.subTest(arguments):
                environment = {**os.environ, "DISPLAY": ":4711"}
                program = self.start(*arguments, env=environment, stderr=subprocess.DEVNULL)
                if answer is None:
                    self.assertEqual(program.wait(60), 3)
                    continue
                for request in ("GETPIN", "CONFIRM"):
                    self.send(program, request)
                    self.expect(program, answer)

    def test_no_library(self):
        with tempfile.TemporaryDirectory() as folder:
            copy = pathlib.Path(folder) / "pinentry.exe"
            copy.write_bytes(pathlib.Path(PROGRAM[-1]).read_bytes())
            program = subprocess.Popen([*PROGRAM[:-1], str(copy)], stdin=subprocess.PIPE,
                                       stdout=subprocess.PIPE, stderr=subprocess.PIPE)
            said, error = program.communicate(b"GETPIN\n", 60)
            self.assertIn(b"\nERR 83886166 No pinentry\n", said)
            self.assertIn(b"cannot be", error)
            self.assertEqual(program.returncode, 0)

    def test_no_pin_in_the_memory(self):
        program = self.start()
        self.request(program, "SETTITLE Gegenprobe", "OPTION constraints-enforce")
        for request in (None, "SETREPEAT"):
            if request:
                self.request(program, request)
            self.send(program, "GETPIN")
            self.typist.wait()
            self.typist.type(*[CANARY] * (2 if request else 1))
            self.typist.press("enter")
            self.typist.gone()
            if request:
                self.expect(program, f"INQUIRE CHECKPIN {CANARY}")
                self.send(program, "END")
                self.expect(program, "S PIN_REPEATED")
            self.expect(program, f"D {CANARY}")
            self.expect(program, "OK")
            self.assertEqual(memory_holds(program.pid, CANARY, "Gegenprobe"), {"Gegenprobe"})
        self.send(program, "GETPIN")
        self.typist.wait()
        self.typist.type(CANARY)
        self.typist.press("escape")
        self.expect(program, "ERR 83886179 Operation cancelled")
        self.assertEqual(memory_holds(program.pid, CANARY, "Gegenprobe"), {"Gegenprobe"})

    def test_no_pin_in_the_log(self):
        with tempfile.TemporaryDirectory() as folder:
            log = pathlib.Path(folder) / "suite.log"
            program = self.start("--log", windows_path(log))
            for request, count in ((None, 1), ("SETREPEAT", 2)):
                if request:
                    self.request(program, request)
                self.send(program, "GETPIN")
                self.typist.wait()
                self.typist.type(*[CANARY] * count)
                self.typist.press("enter")
                self.typist.gone()
                if request:
                    self.expect(program, "S PIN_REPEATED")
                self.expect(program, f"D {CANARY}")
                self.expect(program, "OK")
            program.stdin.close()
            self.assertEqual(program.wait(30), 0)
            lines = log.read_bytes()
            self.assertIn(b"GetPINFromUser", lines)
            self.assertIn(b"CChangePINDialog", lines)
            self.assertNotIn(CANARY.encode(), lines)


if __name__ == "__main__":
    *emulator, pinentry, typist = sys.argv[1:]
    PROGRAM = [*emulator, pinentry]
    TYPIST = [*emulator, typist]
    unittest.main(argv=sys.argv[:1], verbosity=2)
