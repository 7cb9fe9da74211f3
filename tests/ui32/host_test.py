"""Runs the 32-bit pinhost: the configuration that it reads, and a dialog from end to end.

Usage: host_test.py EMULATOR PINHOST
"""

import json
import pathlib
import sys
import unittest

sys.dont_write_bytecode = True
sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent / "e2e"))
import pinhost_test  # noqa: E402

pinhost_test.PROGRAM = sys.argv[1:]
REG = [sys.argv[1], "reg.exe"]
VALUE = (r"HKLM\SOFTWARE\Quillon\Veskara\GlobalConfig", "/v", "VeskaraHelpPath", "/f")


class Host32(pinhost_test.PinHostTest):
    def in_force(self):
        settings = json.loads(self.run_host("settings", "--json").stdout)["settings"]
        return [one["value"] for one in settings
                if one["name"] == "VeskaraHelpPath" and one["source"] == "registry"]

    def set(self, view, text):
        run = self.run_host("add", *VALUE, "/d", text, view, program=REG)
        self.assertEqual(run.returncode, 0, run)
        self.addCleanup(self.run_host, "delete", *VALUE, view, program=REG)

    def test_one_configuration_is_for_hosts_of_both_kinds(self):
        self.assertEqual(self.in_force(), [])
        self.set("/reg:32", "theirs.chm")
        self.assertEqual(self.in_force(), [])
        self.set("/reg:64", "ours.chm")
        self.assertEqual(self.in_force(), ["ours.chm"])


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1], defaultTest=[f"Host32.{name}" for name in (
        "test_one_configuration_is_for_hosts_of_both_kinds",
        "test_pins_cost_tries_until_the_card_is_blocked",
    )])
