"""Plays what the transcripts say before their first window against the system's own pinentry, a black box.

Of errors the codes are compared, not source and words, which each program has of its own. DIFFERENCES says
where ours answers otherwise on purpose; a difference that is not there fails, and one that is not needed.
"""

import os
import pathlib
import re
import selectors
import subprocess
import time
import unittest

OTHER = "pinentry-curses"
TRANSCRIPTS = pathlib.Path(__file__).parent / "transcripts"
ASKS = re.compile(rb"(GETPIN|CONFIRM|MESSAGE)\b", re.IGNORECASE)

OWN_NAME = "each has its own"
GARBLED = "what is no text would be shown garbled, or cut"
NO_NUMBER = "the other one takes what it can of it; a time-out that was not meant is worse than none"
NEWER = "newer than the other one"
NO_REQUEST = "none of them is a request, and there is one answer to that"
TERMINAL = "Windows has no terminal with an owner, and no alert in it"
LONG = "the other one goes without an answer when a line has more than 1,000 bytes"

# The transcript and the beginning of the client's lines in it; what the other one answers, as a regular
# expression; why ours does not.
DIFFERENCES = {
    ("getinfo", "GETINFO flavor"): ("D curses; OK", OWN_NAME),
    ("getinfo", "GETINFO version"): (r"D [0-9.]+; OK", OWN_NAME),
    ("getinfo", "GETINFO ttyinfo"): (r"D - - - - \d+/\d+ -; OK", TERMINAL),
    ("getinfo_terminal", "GETINFO ttyinfo"): (r"D /dev/pts/3 xterm-256color :1 \? \d+/\d+ -; OK", TERMINAL),
    ("help", "HELP"): ("(# [A-Z_]+; )+OK", "each names what it takes"),
    ("help_of_one", "HELP getpin"): ("ERR 27", "a request is one in any case of its letters, for HELP too"),
    ("help_of_one", "HELP GETPINS"): ("ERR 175", "the same answer as to the request itself"),
    ("line_of_2048_bytes", "SETDESC {B"): ("", LONG),
    ("line_of_2049_bytes", "SETDESC {B"): ("", LONG),
    ("new_pin_texts", "SETREPEATOK"): ("ERR 275", NEWER),
    ("option_no_text", "OPTION default-ok"): ("OK", GARBLED),
    ("options_accepted", "OPTION formatted-passphrase"): ("OK; OK; ERR 174; ERR 174", NEWER),
    ("requests_that_change_nothing", "NOP"): ("OK; ERR 257; OK", "with nothing kept, it has been cleared"),
    ("requests_that_change_nothing", "SETGENPIN"): ("OK; OK; ERR 275", NEWER),
    ("text_cut_within_a_character", "SETDESC"): ("OK", GARBLED),
    ("text_no_utf8", ""): ("OK", GARBLED),
    ("text_with_zero_byte", ""): ("OK", GARBLED),
    ("timeout_values", "SETTIMEOUT"): ("OK", NO_NUMBER),
    ("unknown_requests", "D 1234"): ("ERR 69", NO_REQUEST),
    ("unknown_requests", "END"): ("ERR 69", NO_REQUEST),
    ("unknown_requests", " GETPIN"): ("ERR 276", NO_REQUEST),
}


def bytes_of(text):
    """Of a client's line in a transcript."""
    text = re.sub(r"\{(.*?)\*(\d+)\}", lambda part: part[1] * int(part[2]), text).encode()
    return re.sub(rb"\\x([0-9a-fA-F]{2})", lambda part: bytes([int(part[1], 16)]), text)


def comparable(answer):
    number = re.match(r"ERR (\d+)", answer)
    return f"ERR {int(number[1]) & 0xFFFF}" if number else re.sub(r"^D \d+$", "D PID", answer)


def exchanges(transcript):
    """Each line of the client with the answers to it, up to the first that asks the user."""
    played = []
    for event in re.sub("^#.*\n", "", transcript, flags=re.MULTILINE).replace(" | ", "\n").splitlines():
        letter, text = event[0], event[3:]
        if letter in "cLX" or letter == "C" and ASKS.match(bytes_of(text)):
            break
        if letter == "C":
            played.append((text, []))
        elif letter == "S":
            played[-1][1].append(comparable(text))
    return played


class Other:
    def __init__(self):
        self.program = subprocess.Popen(
            [OTHER], env={"PATH": os.environ["PATH"], "LC_ALL": "C.UTF-8"}, bufsize=0,
            stdin=subprocess.PIPE, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
        self.reader = selectors.DefaultSelector()
        self.reader.register(self.program.stdout, selectors.EVENT_READ)
        self.lines(1)

    def lines(self, count):
        """What it says until it has answered so many requests, or has gone."""
        said = b""
        deadline = time.monotonic() + 5
        while len(re.findall(rb"^(?:OK|ERR)\b.*\n", said, re.MULTILINE)) < count:
            if not self.reader.select(deadline - time.monotonic()):
                raise AssertionError(f"{OTHER} says no more than {said!r}")
            part = self.program.stdout.read(65536)
            if not part:
                break
            said += part
        return [comparable(line) for line in said.decode().splitlines()]

    def answers(self, line, expected):
        """To one line; a line that ours does not answer is followed by one that is answered."""
        count = sum(answer.startswith(("OK", "ERR")) for answer in expected)
        try:
            self.program.stdin.write(bytes_of(line) + b"\n" + (b"" if count else b"NOP\n"))
        except BrokenPipeError:
            return []
        lines = self.lines(max(count, 1))
        return lines if count else lines[:-1]

    def close(self):
        self.reader.close()
        self.program.stdin.close()
        self.program.stdout.close()
        self.program.wait(5)


class OtherPinentryTest(unittest.TestCase):
    def differences(self, played):
        if not played:
            return
        other = Other()
        try:
            for line, expected in played:
                answers = other.answers(line, expected)
                if answers != expected:
                    yield line, "; ".join(answers), expected
        finally:
            other.close()

    def test_answers_as_ours(self):
        needed = set()
        for path in sorted(TRANSCRIPTS.glob("*.txt")):
            for line, answers, expected in self.differences(exchanges(path.read_text(encoding="utf-8"))):
                known = [key for key in DIFFERENCES if key[0] == path.stem and line.startswith(key[1])]
                needed.update(known)
                with self.subTest(path.stem, line=line, ours=expected):
                    self.assertRegex(answers, f"^({'|'.join(DIFFERENCES[key][0] for key in known)})$"
                                     if known else "^as ours$")
        self.assertEqual(set(DIFFERENCES) - needed, set(), "no difference any more")


if __name__ == "__main__":
    unittest.main(verbosity=2)
