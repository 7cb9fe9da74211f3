"""A PIV card in software, for a virtual reader of the machine's smart-card service."""

import collections
import contextlib
import socket
import threading
import time

GET_ATR = b"\x04"
ATR = bytes.fromhex("3b80800101")
APPLICATION = bytes.fromhex("a000000308000010")
SUCCESS, NOT_FOUND, BLOCKED, WRONG_DATA = 0x9000, 0x6A82, 0x6983, 0x6A80
UNKNOWN_INSTRUCTION, WRONG_LENGTH, NOT_SELECTED = 0x6D00, 0x6700, 0x6985
SELECT, VERIFY, CHANGE, UNBLOCK = 0xA4, 0x20, 0x24, 0x2C

Command = collections.namedtuple("Command", "instruction p1 p2 data")


def padded(text):
    return text.ljust(8, b"\xff")


class PivApplet:
    """What the card knows, and how it answers. `answers` gives an instruction an answer of its
    own, `delays` the seconds until it comes; at `vanish_before` the card has gone."""

    def __init__(self, pin="123456", puk="12345678", tries=3):
        self.pin, self.puk = padded(pin.encode()), padded(puk.encode())
        self.tries = self.max_tries = tries
        self.unlocks = self.max_unlocks = tries
        self.is_open = self.is_selected = False
        self.delays = {}
        self.answers = {}
        self.vanish_before = None
        self.trace = []

    def reset(self):
        self.is_open = self.is_selected = False

    def answer(self, apdu):
        """The answer's bytes; nothing when the card has gone."""
        command = Command(apdu[1], apdu[2], apdu[3], apdu[5:5 + apdu[4]] if len(apdu) > 5 else b"")
        self.trace.append(command)
        # VERIFY without data asks for the tries alone, and is none of what a test means by it.
        meant = command.instruction if command.data else None
        if meant is not None and meant == self.vanish_before:
            return None
        time.sleep(self.delays.get(meant, 0))
        if meant in self.answers:
            return self.answers[meant]
        return self.status_of(command).to_bytes(2, "big")

    def status_of(self, command):
        if command.instruction == SELECT:
            self.is_selected = APPLICATION.startswith(command.data[:8]) and len(command.data) >= 5
            return SUCCESS if self.is_selected else NOT_FOUND
        if not self.is_selected:
            return NOT_SELECTED
        instructions = {VERIFY: self.verify, CHANGE: self.change, UNBLOCK: self.unblock}
        if command.instruction not in instructions or (command.p1, command.p2) != (0, 0x80):
            return UNKNOWN_INSTRUCTION
        return instructions[command.instruction](command.data)

    def count(self, name, matches):
        """Takes a try, and gives all back when it was right."""
        left = getattr(self, name)
        if left == 0:
            return BLOCKED
        setattr(self, name, getattr(self, "max_" + name) if matches else left - 1)
        return SUCCESS if matches else 0x63C0 + left - 1

    def verify(self, data):
        if not data:
            return SUCCESS if self.is_open else 0x63C0 + self.tries if self.tries else BLOCKED
        if len(data) != 8:
            return WRONG_LENGTH
        status = self.count("tries", data == self.pin)
        self.is_open = status == SUCCESS
        return status

    def change(self, data):
        if len(data) != 16:
            return WRONG_LENGTH
        if not data[8:14].isdigit():
            return WRONG_DATA
        status = self.count("tries", data[:8] == self.pin)
        if status == SUCCESS:
            self.pin = data[8:]
        return status

    def unblock(self, data):
        if len(data) != 16:
            return WRONG_LENGTH
        if not data[8:14].isdigit():
            return WRONG_DATA
        status = self.count("unlocks", data[:8] == self.puk)
        if status == SUCCESS:
            self.pin, self.tries = data[8:], self.max_tries
        return status


class Slot:
    """The slot of a reader, on the port that its driver listens on; `applet` is the card in it."""

    def __init__(self, port, reader):
        self.port, self.reader = port, reader
        self.applet = self.line = None

    def insert(self, applet, seconds=10.0):
        """Puts a card in, in the place of one that is in; the service takes a moment to see it."""
        end = time.monotonic() + seconds
        self.applet = applet
        if self.line is not None:
            return
        while self.line is None:
            try:
                self.line = socket.create_connection(("127.0.0.1", self.port))
            except ConnectionRefusedError:
                if time.monotonic() > end:
                    raise
                time.sleep(0.02)
        threading.Thread(target=self.serve, args=(self.line,), daemon=True).start()

    def pull(self):
        line, self.line = self.line, None
        if line is not None:
            with contextlib.suppress(OSError):
                line.shutdown(socket.SHUT_RDWR)
            line.close()

    def serve(self, line):
        self.applet.reset()
        with contextlib.suppress(OSError), line.makefile("rb") as stream:
            while head := stream.read(2):
                message = stream.read(int.from_bytes(head, "big"))
                if len(message) > 1:
                    answer = self.applet.answer(message)
                elif message == GET_ATR:
                    answer = ATR
                else:  # power off, power on, reset
                    self.applet.reset()
                    continue
                if answer is None:
                    self.pull()
                    return
                line.sendall(len(answer).to_bytes(2, "big") + answer)
