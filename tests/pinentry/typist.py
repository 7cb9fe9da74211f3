"""Drives typist.exe, the user of dialogs of other processes."""

import json
import subprocess


def windows_path(path):
    """The path as a program under Wine takes it."""
    return f"Z:{path}"


class Typist:
    def __init__(self, command):
        self.program = subprocess.Popen(command, stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                        stderr=subprocess.DEVNULL, encoding="utf-8")

    def order(self, order):
        self.program.stdin.write(order + "\n")
        self.program.stdin.flush()
        answer = json.loads(self.program.stdout.readline())
        if answer is not None and "error" in answer:
            raise AssertionError(f"{order}: {answer['error']}")
        return answer

    def wait(self):
        """Waits for a dialog; returns its title, texts and buttons."""
        return self.order("wait")

    def next(self):
        """The same, for another dialog than the last one."""
        return self.order("next")

    def type(self, *texts):
        """Each into an edit of its own, from the one with the focus on."""
        for number, text in enumerate(texts):
            if number:
                self.press("tab")
            self.order(f"type {text}")

    def press(self, key):
        self.order(f"key {key}")

    def picture(self, path):
        self.order(f"picture {windows_path(path)}")

    def gone(self):
        self.order("gone")

    def close(self):
        self.program.stdin.close()
        self.program.wait(30)
        self.program.stdout.close()
