"""A smart-card service with two readers, and the host before it: what the tests of a real card share."""

import contextlib
import os
import pathlib
import shutil
import subprocess
import tempfile
import time

from bridge import Bridge, hexadecimal
from service import SmartCardService

PRESENT = 0x20
FOREVER = 0xFFFFFFFF


@contextlib.contextmanager
def library_in_place(prefix, library):
    """Puts the test's winscard.dll into the prefix's system folder, and the old one back."""
    place = pathlib.Path(prefix) / "drive_c/windows/system32/winscard.dll"
    kept = place.with_suffix(".kept")
    if not kept.exists():  # of a run that was killed
        place.rename(kept)
    place.write_bytes(pathlib.Path(library).read_bytes())
    try:
        yield
    finally:
        kept.replace(place)


def wait_until(condition, what, seconds=20.0):
    end = time.monotonic() + seconds
    while not (value := condition()):
        if time.monotonic() > end:
            raise AssertionError(f"not in time: {what}")
        time.sleep(0.005)
    return value


class Session(contextlib.ExitStack):
    def __init__(self, program, library, reader):
        super().__init__()
        # It runs in a folder of the test's.
        self.program = [os.path.abspath(shutil.which(part) or part) for part in program]
        self.folder = pathlib.Path(self.enter_context(tempfile.TemporaryDirectory()))
        self.service = SmartCardService(reader)
        self.callback(self.service.close)
        self.slots = self.service.slots
        self.bridge = Bridge()
        self.callers = 0
        self.enter_context(library_in_place(os.environ["WINEPREFIX"], library))
        self.environment = {**os.environ, "MVP_SMARTCARD_PORT": str(self.bridge.port),
                            "WINEDLLOVERRIDES": os.environ["WINEDLLOVERRIDES"] + ";winscard=n"}

    def start(self, *arguments):
        self.callers += 1
        environment = {**self.environment, "MVP_SMARTCARD_CALLER": f"caller{self.callers}"}
        process = subprocess.Popen([*self.program, "--json", *arguments], cwd=self.folder,
                                   env=environment, stdin=subprocess.DEVNULL,
                                   stdout=subprocess.PIPE, stderr=subprocess.PIPE, encoding="utf-8")
        process.caller = environment["MVP_SMARTCARD_CALLER"]
        return process

    def has_looked(self, process):
        """Whether the library watches the readers for this process. What it finds there at first is no
        event: somebody who pulls a card was there before."""
        return process.caller in self.bridge.service.looked

    def start_service(self):
        self.service.start()
        self.context = wait_until(self.new_context, "the service answers")

    def stop_service(self):
        self.service.stop()
        for slot in self.slots:
            slot.pull()  # the readers have gone with the service

    def new_context(self):
        result, (context,) = self.bridge.service.establish_context()
        return context if result == 0 else None

    def state(self, slot, known=0, timeout=0):
        """The reader's state as the service tells it, when it differs from what is known."""
        result, (state,) = self.bridge.service.get_status_change(
            self.context, timeout, hexadecimal(slot.reader.encode()), known)
        return state if result == 0 else 0

    def await_card(self, slot, is_in=True):
        wait_until(lambda: (state := self.state(slot)) and bool(state & PRESENT) == is_in,
                   f"the service sees the card of {slot.reader}: {is_in}")

    def insert(self, slot, applet):
        """Puts a card in and waits until the service sees it."""
        slot.insert(applet)
        self.await_card(slot)
        return applet
