"""Plays transcripts against pinentry.exe: real windows, real keys, and the endings of a session.

Usage: session_test.py [EMULATOR] PINENTRY.exe TYPIST.exe
"""

import itertools
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
CANARY = "Buchfink-und-Zeisig-und-Kanarienvogel-7351"
SAID = "Haubenmeise-und-Nachtigall-2904"
CHOSEN = ("getpin_texts", "getpin_canceled", "getpin_closed", "getpin_error_comes_first", "getpin_timeout",
          "pin_with_umlauts", "pin_with_percent_signs", "new_pin_texts", "constraints_not_met",
          "confirm_refused", "confirm_closed", "confirm_any_script", "message_canceled",
          "label_access_keys", "text_outside_the_code_page", "option_language")


def memory_holds(pid, *texts):
    """Of the texts those that stand in the memory of the process, in bytes or in wide characters. The
    heap writes over the beginning of what is freed: the last letters are looked for."""
    needles = {text: (text[-10:].encode(), text[-10:].encode("utf-16-le")) for text in texts}
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
        self.addCleanup(program.kill)
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

    def check_layout(self, dialog):
        """Every control is seen whole, and stands over no other but its frame."""
        self.assertEqual(dialog["cut"], [])
        for (one, a), (other, b) in itertools.combinations(dialog["places"].items(), 2):
            apart = a[2] <= b[0] or b[2] <= a[0] or a[3] <= b[1] or b[3] <= a[1]
            frame = a[0] < b[0] and a[1] < b[1] and b[2] < a[2] and b[3] < a[3]
            self.assertTrue(apart or frame, (one, other, dialog["places"]))

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
        program = self.start("--lc-messages", "xx")  # which has none
        self.send(program, "GETPIN")
        self.assertIn("Cancel", self.typist.next()["buttons"])
        self.typist.press("escape")
        self.expect(program, "ERR 83886179 Operation cancelled")

    def test_command_line(self):
        for arguments, code, said, error in ((("--version",), 0, b"pinentry (mvpingui) ", b""),
                                             (("--timeout", "soon"), 2, b"", b"not a value")):
            with self.subTest(arguments):
                program = subprocess.run([*PROGRAM, *arguments], stdin=subprocess.DEVNULL, timeout=60,
                                         capture_output=True)
                self.assertEqual(program.returncode, code)
                self.assertTrue(program.stdout.startswith(said) and bool(program.stdout) == bool(said))
                self.assertIn(error, program.stderr)

    def test_time_of_the_command_line(self):
        answered = self.start("--timeout=1")
        self.send(answered, "GETPIN")
        self.typist.wait()
        self.typist.press("escape")
        self.expect(answered, "ERR 83886179 Operation cancelled")
        self.request(answered, "SETTIMEOUT 0")
        self.send(answered, "GETPIN")
        prompt, program = self.start("Password:", "--timeout", "1"), self.start("--timeout", "1")
        self.send(program, "GETPIN")
        self.expect(program, "ERR 83886142 Timeout")
        self.assertEqual(prompt.wait(30), 1)
        # The time of the window that was answered is over as well, and ends no other.
        self.typist.wait()
        self.typist.type("late")
        self.typist.press("enter")
        self.expect(answered, "D late")

    def test_prompt_that_is_a_question(self):
        program = self.start("Allow?", env={**os.environ, "SSH_ASKPASS_PROMPT": "confirm"})
        self.assertEqual(self.typist.wait()["buttons"], ["&Yes", "&No"])
        self.typist.press("enter")
        self.assertEqual((program.stdout.read(), program.wait(30)), (b"", 0))

    def test_texts_find_room(self):
        program = self.start()
        for lines, request in itertools.product((12, 400), ("CONFIRM", "GETPIN", "SETREPEAT")):
            with self.subTest(request, lines=lines):
                text = "\n".join("x" * lines)
                self.request(program, "SETDESC " + text.replace("\n", "%0A"), "SETOK " + "wide " * 24,
                             "SETCANCEL as it is", "SETNOTOK Never")
                if request == "SETREPEAT":
                    self.request(program, request)
                self.send(program, "CONFIRM" if request == "CONFIRM" else "GETPIN")
                dialog = self.typist.wait()
                self.check_layout(dialog)
                left, top, right, bottom = dialog["places"][text]
                self.assertGreater(bottom - top, 12 * 10)
                if request == "CONFIRM":  # the library's dialogs keep their width
                    self.assertGreater(right - left, 2 * len("wide " * 24) * 3)
                self.typist.press("escape")
                self.expect(program, "ERR 83886179 Operation cancelled")
                self.typist.gone()

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
        with self.subTest("before it is open"):
            program = self.start()
            self.send(program, "GETPIN")
            program.stdin.close()
            self.assertEqual(program.wait(30), 0)

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
        self.send(program, "SETDESC first\nGETPIN\nSETDESC\nGETPIN")
        self.expect(program, "OK")
        for is_first, pin in ((True, "one"), (False, "two")):
            self.assertEqual("first" in self.typist.wait()["texts"], is_first)
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
        parent = self.typist.wait()
        window = parent["window"]
        program = self.start()
        self.request(program, "OPTION parent-wid=4711")
        self.send(program, "CONFIRM")
        self.assertEqual(self.typist.next()["owner"], 0)
        self.typist.press("escape")
        self.expect(program, "ERR 83886179 Operation cancelled")
        self.assertEqual(self.typist.next()["window"], window)
        self.request(program, f"OPTION parent-wid={window}")
        for request in ("CONFIRM", "GETPIN", "SETREPEAT"):
            with self.subTest(request):
                if request == "SETREPEAT":
                    self.request(program, request)
                self.send(program, "GETPIN" if request == "SETREPEAT" else request)
                dialog = self.typist.next()
                self.assertEqual((dialog["owner"], dialog["ownerTakesInput"]), (window, False))
                for one, other in ((0, 2), (1, 3)):
                    self.assertAlmostEqual(dialog["place"][one] + dialog["place"][other],
                                           parent["place"][one] + parent["place"][other], delta=3)
                self.typist.press("escape")
                self.expect(program, "ERR 83886179 Operation cancelled")
                # It takes keys again.
                self.assertEqual(self.typist.next()["window"], window)
        with self.subTest("over another window"):
            other = self.start()
            self.request(other, f"OPTION parent-wid={window}")
            self.send(other, "GETPIN")
            first = self.typist.next()["window"]
            self.request(program, "SETREPEAT")
            self.send(program, "GETPIN")
            self.typist.next()
            self.typist.press("escape")
            self.expect(program, "ERR 83886179 Operation cancelled")
            dialog = self.typist.next()
            self.assertEqual((dialog["window"], dialog["ownerTakesInput"]), (first, False))
            self.typist.press("escape")
            self.expect(other, "ERR 83886179 Operation cancelled")
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
        self.send(program, "# " + "what came before " * 9 + SAID)  # as a client that repeats a PIN
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
            self.assertEqual(memory_holds(program.pid, CANARY, SAID, "Gegenprobe"), {"Gegenprobe"})
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
