"""Sets the policies of the administrative template, and asks pinhost what is in force.

usage: policies_test.py MAKER EMULATOR PINHOST
"""

import json
import pathlib
import subprocess
import sys
import tempfile
import unittest

sys.dont_write_bytecode = True
sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent / "support"))
from policy_editor import DISABLED, Enabled, PolicyEditor, Refused  # noqa: E402

MAKER, EMULATOR, PINHOST = sys.argv.pop(1), sys.argv.pop(1), sys.argv.pop(1)

ENABLED = {
    "InjectedKeys": Enabled({"InjectedKeys": 2}),
    "Banner": Enabled({"BannerHiRes": r"C:\a b\ü.bmp", "BannerLowRes": r"C:\low.bmp"}),
    "PinLength": Enabled({"MinimumPinLength": 6, "MaximumPinLength": 8}),
    "RefuseSimpleSeries": Enabled(), "LettersInPin": Enabled(), "DisplayUnlockCode": Enabled(),
    "ContactTel": Enabled({"ContactTel": '+1 "555"'}),
    "NoReaderNotice": Enabled({"NoReaderDuration": 7, "NoReaderMessage": "<b>None</b>"}),
    "OtpTimeout": Enabled({"OtpTimeout": 0}),
    "Log": Enabled({"LogLevels": 3}),
}
AFTER = {
    "InjectedKeys": 2, "BannerHiRes": r"C:\a b\ü.bmp", "BannerLowRes": r"C:\low.bmp",
    "MinimumPINLength": 6, "MaximumPINLength": 8, "WeakPINAllowed": 1, "AlphaPINAllowed": 1,
    "DisplayUnlockCode": 1, "ContactTel": '+1 "555"',
    r"NoReaderWarning\Enable": 1, r"NoReaderWarning\Duration": 7,
    r"NoReaderWarning\Message": "<b>None</b>", "OTPWindowTimeout": 0, "LogLevels": 3,
}


class Policies(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.TemporaryDirectory()
        subprocess.run([sys.executable, "-B", MAKER, "template", cls.folder.name], check=True)
        cls.editor = PolicyEditor(cls.folder.name, "it-IT")

    @classmethod
    def tearDownClass(cls):
        cls.set({})
        cls.folder.cleanup()

    @classmethod
    def set(cls, states, more=""):
        path = pathlib.Path(cls.folder.name) / "policies.reg"
        path.write_bytes(("\ufeff" + cls.editor.registry_text(states) + more).encode("utf-16-le"))
        subprocess.run([EMULATOR, "reg.exe", "import", f"Z:{path}", "/reg:64"], check=True,
                       capture_output=True, timeout=60)

    @staticmethod
    def told(*options):
        done = subprocess.run([EMULATOR, PINHOST, "settings", *options], check=True,
                              capture_output=True, timeout=60)
        return done.stdout.decode()

    def in_force(self):
        """The values that do not stand for themselves by default."""
        settings = json.loads(self.told("--json"))["settings"]
        self.assertEqual([one for one in settings if one["ignored"]], [])
        return {"\\".join([one["key"].rpartition("\\")[2]] * (one["name"] in "Enable Duration Message")
                          + [one["name"]]): one["value"]
                for one in settings if one["source"] == "registry"}

    def test_each_state_of_each_policy_is_obeyed(self):
        self.set(ENABLED)
        self.assertEqual(self.in_force(), AFTER)
        self.set({name: DISABLED for name in self.editor.policies})
        self.assertEqual(self.in_force(), {
            "WeakPINAllowed": 0, "ForceChangePIN": 0, "AlphaPINAllowed": 0, "DisplayUnlockCode": 0,
            "EnableSmallPINEntryPrevention": 0, r"NoReaderWarning\Enable": 0,
            r"SmartCardPresenceWarning\Enable": 0, "Enablenotificationbip": 0})
        self.set({})
        self.assertEqual(self.in_force(), {}, "a policy that is taken away gives the default back")

    def test_people_read_a_key_once_and_below_it_what_counts_of_each_value(self):
        self.set({"OtpTimeout": Enabled({"OtpTimeout": 0}), "ContactTel": Enabled({"ContactTel": "+1 ü"})},
                 "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Quillon\\Veskara\\AuthenticationDialog]\r\n"
                 '"InjectedKeys"=dword:9\r\n')
        lines = self.told().splitlines()
        keys = [line.lower() for line in lines if line and line[0] != " "]
        self.assertEqual(len(keys), len(set(keys)))
        for line in ("  OTPWindowTimeout = 0, registry", "  LogLevels = 0, default",
                     '  ContactTel = "+1 ü", registry', "  VeskaraHelpPath = (no help), default",
                     "  InjectedKeys = 0, default; 9 is beyond 0 to 2"):
            self.assertIn(line, lines)

    def test_what_the_template_forbids_cannot_be_entered(self):
        for policy, element, entry in (("OtpTimeout", "OtpTimeout", 2147484),
                                       ("NoReaderNotice", "NoReaderDuration", 0),
                                       ("ContactTel", "ContactTel", "1" * 512)):
            with self.assertRaises(Refused):
                self.editor.registry_text({policy: Enabled({element: entry})})


if __name__ == "__main__":
    unittest.main()
