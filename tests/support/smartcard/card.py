"""A PIV card in software, for a virtual reader of the machine's smart-card service."""

import collections
import contextlib
import socket
import threading
import time

ATR = bytes.fromhex("3b80800101")
APPLICATION = bytes.fromhex("a000000308000010")
SUCCESS, NOT_FOUND, BLOCKED, WRONG_DATA = 0x9000, 0x6A82, 0x6983, 0x6A80
UNKNOWN_INSTRUCTION, WRONG_LENGTH, NOT_SELECTED = 0x6D00, 0x6700, 0x6985
SELECT, VERIFY, CHANGE, UNBLOCK = 0xA4, 0x20, 0x24, 0x2C

Command = collections.namedtuple("Command", "instruction p1 p2 data")


def padded(text):
    return text.ljust(8, b"\xff")


class PivApplet:
    """What the card knows, and how it answers. `answers` gives a command a status word of its own."""

    def __init__(self, pin="123456", puk="12345678", tries=3):
        self.pin, self.puk = padded(pin.encode()), padded(puk.encode())
        self.tries = self.max_tries = tries
        self.unlocks = self.max_unlocks = tries
        self.is_open = self.is_selected = False
        self.delay = 0.0
        self.answers = {}
        self.vanish_before = None  # an instruction that the card is gone at
        self.trace = []

    def reset(self):
        self.is_open = self.is_selected = False

    def answer(self, apdu):
        """The answer's bytes; nothing when the card has gone."""
        command = Command(apdu[1], apdu[2], apdu[3], apdu[5:5 + apdu[4]] if len(apdu) > 5 else b"")
        self.trace.append(command)
        if command.instruction == self.vanish_before and (command.data or self.vanish_before == SELECT):
            return None
        time.sleep(self.delay)
        status = self.answers.get((command.instruction, bool(command.data)))
        if isinstance(status, bytes):
            return status
        if status is None:
            status = self.status_of(command)
        return status.to_bytes(2, "big")

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
    """The slot of a reader, on the port that its driver listens on."""

    def __init__(self, port):
        self.port = port
        self.line = None

    def insert(self, applet, deadline=10.0):
        """Puts a card in and returns; the service takes a moment to see it."""
        end = time.monotonic() + deadline
        while True:
            try:
                self.line = socket.create_connection(("127.0.0.1", self.port))
                break
            except ConnectionRefusedError:
                if time.monotonic() > end:
                    raise
                time.sleep(0.02)
        self.line.setsockopt(socket.IPPROTO_TCP, socket.TCP_NODELAY, 1)
        applet.reset()
        threading.Thread(target=serve, args=(self.line, applet), daemon=True).start()

    def pull(self):
        if self.line is not None:
            with contextlib.suppress(OSError):
                self.line.shutdown(socket.SHUT_RDWR)
            self.line.close()
            self.line = None


def serve(line, applet):
    with contextlib.suppress(OSError), line.makefile("rb") as stream:
        while head := stream.read(2):
            message = stream.read(int.from_bytes(head, "big"))
            if len(message) > 1:
                answer = applet.answer(message)
            else:
                answer = ATR if message == b"\x04" else b""
                if message != b"\x04":  # power off, power on, reset
                    applet.reset()
                    continue
            if answer is None:
                line.shutdown(socket.SHUT_RDWR)
                line.close()
                return
            line.sendall(len(answer).to_bytes(2, "big") + answer)
