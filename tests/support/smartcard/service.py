"""The machine's smart-card service for a test alone: its own socket, readers and ports."""

import contextlib
import ctypes
import os
import pathlib
import signal
import socket
import subprocess
import tempfile
import time

from card import Slot

DRIVER = "/usr/lib/pcsc/drivers/serial/libifdvpcd.so"
SLOTS = 2  # of the virtual reader: a port each, one after the other


def free_ports(count):
    """The first of so many free ports in a row, below those that the system gives to who connects: one
    that connects where nobody listens yet could be given that very port, and be its own partner."""
    for first in range(20000 + os.getpid() % 10000, 32000, count):
        with contextlib.suppress(OSError), contextlib.ExitStack() as stack:
            for port in range(first, first + count):
                probe = stack.enter_context(socket.socket())
                probe.bind(("", port))
            return first
    raise RuntimeError("no free ports")


class SmartCardService:
    def __init__(self, name):
        """The name of a reader with two slots, which the service appends to it."""
        self.folder = tempfile.TemporaryDirectory()
        path = pathlib.Path(self.folder.name)
        self.socket_path = str(path / "service.sock")
        os.environ["PCSCLITE_CSOCK_NAME"] = self.socket_path  # for the library in this process
        (path / "readers").mkdir()
        port = free_ports(SLOTS)
        self.slots = [Slot(port + index, f"{name} 00 {index:02}") for index in range(SLOTS)]
        (path / "readers/virtual").write_text(
            f'FRIENDLYNAME "{name}"\nDEVICENAME /dev/null:{port}\nLIBPATH {DRIVER}\n'
            f"CHANNELID {port}\n")
        self.log = path / "log"
        self.process = self.listener = None

    def start(self):
        # The socket is handed to the service, so that it is one of the test's own.
        self.listener = socket.socket(socket.AF_UNIX)
        self.listener.bind(self.socket_path)
        self.listener.listen(64)

        def hand_over():
            ctypes.CDLL(None).prctl(1, signal.SIGKILL)  # goes when the test does
            os.dup2(self.listener.fileno(), 3)

        with self.log.open("ab") as log:
            self.process = subprocess.Popen(
                ["sh", "-c", "LISTEN_PID=$$ LISTEN_FDS=1 exec pcscd --foreground --error "
                 f"--config {self.folder.name}/readers"],
                stdin=subprocess.DEVNULL, stdout=log, stderr=log, preexec_fn=hand_over,
                pass_fds=(3,))

    def stop(self):
        if self.process is None:
            return
        # First nobody can call it any more, as when the system stops it.
        self.listener.close()
        os.unlink(self.socket_path)
        self.process.kill()
        self.process.wait()
        self.process = None

    def close(self):
        self.stop()
        self.folder.cleanup()
