"""Holds what is made of settings.toml against its own rules, and shows that mistakes are refused.

usage: settings_test.py SOURCE_DIR
"""

import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import unittest
from xml.etree import ElementTree

sys.dont_write_bytecode = True
TOP = pathlib.Path(sys.argv.pop(1))
MAKER = TOP / "src/settings"
sys.path.insert(0, str(MAKER))
from schema import Mistake, Schema  # noqa: E402
NAMESPACES = {"p": "http://schemas.microsoft.com/GroupPolicy/2006/07/PolicyDefinitions"}


def make(what, place, folder=MAKER):
    return subprocess.run([sys.executable, folder / "make_settings.py", what, place],
                          capture_output=True, text=True, check=False)


class Template(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.TemporaryDirectory()
        cls.root = pathlib.Path(cls.folder.name)
        assert make("template", cls.root).returncode == 0
        cls.definitions = ElementTree.parse(cls.root / "mvpingui.admx").getroot()
        cls.languages = {path.parent.name: ElementTree.parse(path).getroot()
                         for path in cls.root.glob("*/mvpingui.adml")}

    @classmethod
    def tearDownClass(cls):
        cls.folder.cleanup()

    def test_every_reference_is_resolved_in_every_language_and_nothing_is_left_over(self):
        whole = ElementTree.tostring(self.definitions, encoding="unicode")
        self.assertEqual(len(self.languages), 5)
        for culture, texts in self.languages.items():
            for kind in ("string", "presentation"):
                wanted = set(re.findall(rf"\$\({kind}\.(\w+)\)", whole))
                there = [one.get("id") for one in texts.iterfind(f".//p:{kind}", NAMESPACES)]
                self.assertEqual(sorted(wanted), sorted(there), culture)
            for text in texts.iterfind(".//p:string", NAMESPACES):
                self.assertTrue(text.text.strip(), culture)
            for policy in self.definitions.iterfind(".//p:policy", NAMESPACES):
                elements = [one.get("id") for one in policy.iterfind("p:elements/*", NAMESPACES)]
                name = (policy.get("presentation") or "").removeprefix("$(presentation.").rstrip(")")
                shown = texts.find(f".//p:presentation[@id='{name}']", NAMESPACES)
                labels = [] if shown is None else [one.get("refId") for one in shown]
                self.assertEqual(elements, labels, f"{culture} {policy.get('name')}")

    def test_identifiers_and_revisions(self):
        names = [one.get("name") or one.get("id") for one in self.definitions.iter()
                 if one.get("name") or one.get("id")]
        for name in names:
            self.assertRegex(name, r"^[A-Za-z0-9_]+$")
        self.assertEqual({root.get("revision") for root in self.languages.values()},
                         {self.definitions.get("revision")})
        needed = self.definitions.find("p:resources", NAMESPACES).get("minRequiredRevision")
        self.assertEqual(needed, self.definitions.get("revision"))

    def test_every_policy_has_its_category_and_a_value_of_its_own(self):
        known = {one.get("name") for one in self.definitions.iterfind(".//p:category", NAMESPACES)}
        values = []
        for policy in self.definitions.iterfind(".//p:policy", NAMESPACES):
            self.assertIn(policy.find("p:parentCategory", NAMESPACES).get("ref"), known)
            places = [policy] if policy.get("valueName") else []
            places += policy.findall("p:elements/*", NAMESPACES)
            self.assertTrue(places)
            values += [(one.get("key", policy.get("key")).lower(), one.get("valueName").lower())
                       for one in places]
            on = policy.find("p:enabledValue/p:decimal", NAMESPACES)
            self.assertEqual(on is not None, policy.get("valueName") is not None)
        self.assertEqual(len(values), len(set(values)))
        texts = self.languages["en-US"]
        for number in self.definitions.iterfind(".//p:decimal[@maxValue]", NAMESPACES):
            box = texts.find(f".//p:decimalTextBox[@refId='{number.get('id')}']", NAMESPACES)
            self.assertIn(int(box.get("defaultValue")),
                          range(int(number.get("minValue")), int(number.get("maxValue")) + 1))

    def test_the_sample_changes_nothing_as_it_is(self):
        sample = (self.root / "settings-sample.reg").read_bytes()
        self.assertEqual(sample[:2], b"\xff\xfe")
        lines = sample.decode("utf-16").split("\r\n")
        self.assertEqual(lines[0], "Windows Registry Editor Version 5.00")
        self.assertFalse([line for line in lines[1:] if line and line[0] not in ";["])
        self.assertIn(r"[HKEY_LOCAL_MACHINE\SOFTWARE\Quillon\Veskara\PXRM]", lines)
        self.assertIn(';"MaximumPINLength"=dword:00000019', lines)
        # A missing number that stands for something of its own is no number to write.
        at = lines.index(';"Duration"=dword:00000001')
        self.assertEqual(lines[at - 1], "; Without the next one: it goes at once.")
        self.assertIn(';"ProductCode"="{5B21C0D4-7A93-4E6F-B812-3C9D0E4F6A17}"', lines)


class Mistakes(unittest.TestCase):
    def refused(self, name, old, new):
        """What the maker says when `old`, of one line, is `new` in a copy of the description."""
        with tempfile.TemporaryDirectory() as folder:
            copy = pathlib.Path(folder) / "settings"
            shutil.copytree(MAKER, copy)
            text = (copy / name).read_text()
            self.assertEqual(text.count(old), 1, old)
            (copy / name).write_text(text.replace(old, new))
            with self.assertRaises(Mistake) as raised:
                Schema(copy)
            return str(raised.exception)

    def test_each_is_refused_with_its_line(self):
        schema = (MAKER / "settings.toml").read_text()
        refuse = 'switch = "WeakPinAllowed"'
        force = 'switch = "ForceChangePin"\non = 1\n'
        notice = 'value = "ContactTel"\ntype = "text"\n'
        table = (
            ('id = "MaxPinTries"\nkey', 'id = "Max-PinTries"\nkey', "needs an id"),
            ('id = "MaxPinUnlock"\nkey', 'id = "MaxPinTries"\nkey', "there are two"),
            ('id = "MaxPinUnlock"\nkey', 'id = 5\nkey', "needs an id"),
            ('revision = "1.0"', 'revision = "one"', "revision is 'one'"),
            ('revision = "1.0"\n', 'revision = "1.0"\nlanguage = "en"\n', "language is not known"),
            ('windows = ["card-locked"]', "windows = [1]", "windows is [1]"),
            (r"Veskara\UserConsole'", "VeskaraConsole'", "its key is not below"),
            ('value = "ContactTel"', """value = 'Contact"Tel'""", "value is"),
            ("size = 255", "size = 2", "has no 2 bytes"),
            ("limits = [0, 31]", "limits = [40, 31]", "its limits"),
            ("limits = [0, 31]", "limits = [31]", "not two numbers"),
            ("limits = [0, 31]", 'limits = "31"', "limits is '31'"),
            ("limits = [0, 31]", "limit = [0, 31]", "unexpected keyword"),
            ("limits = [0, 31]", "limits = [false, 31]", "not two numbers"),
            ('id = "MaxPinTries"\nkey', "id = 5\nkey", "needs an id"),
            ('id = "LogLevels"\nkey = \'SOFTWARE\\Quillon\\Veskara\\',
             'id = "LogLevels"\nkey = \'SOFTWARE\\Quillon\\Veskara2\\', "not below"),
            ('revision = "1.0"', "revision = 1.0", "revision is 1.0"),
            ("more than one character, shown", "more than one | character", "neither a bar"),
            ("or no text; told each time the unlock", "or no | text", "neither a bar"),
            ('absent = "no number"', 'absent = "no|number"', "neither a bar"),
            ("default = 25", "default = -1", "is beyond its limits"),
            ("default = 25", 'default = "25"', "is beyond its limits"),
            ("default = 15", "default = 2147484", "is beyond its limits"),
            ('value = "ContactTel"', 'value = "VeskaraHelpPath"', "its key and value"),
            (notice, notice.replace("text", "word"), "neither number nor text"),
            (notice, notice + 'default = "' + "x" * 512 + '"\n', "is longer than 512"),
            (notice, notice + "default = 5\n", "is no text"),
            (notice, notice + "terminated = 1\n", "terminated is 1"),
            ('registry = ["REG_SZ", "REG_EXPAND_SZ"]\nsize = 512', 'registry = ["REG_DWORD"]\nsize = 512', "is none of a text"),
            ("shortest = 2", "shortest = true", "shortest is True"),
            (notice, notice + "limits = [0, 1]\n", "a text has no"),
            (notice, notice + "choices = { One = 1 }\n", "a text has no"),
            (notice, notice + 'short = "taken"\n', "a text has no"),
            (notice, notice + 'beyond = "nearest"\n', "a text has no"),
            ("shortest = 2", "shortest = 512", "no text has"),
            ("default = 25", "default = 25\nterminated = true", "a number has no"),
            ("default = 25", "default = 25\nshortest = 1", "a number has no"),
            ("default = 25", 'default = 25\nshort = "lost"', "short is lost"),
            ('registry = ["REG_SZ", "REG_EXPAND_SZ"]\nsize = 512', 'registry = ["REG_TEXT"]\nsize = 512', "is none of a text"),
            ("choices = { Accept = 0, Warn = 1,", "choices = { Accept = 0, Warn = 'one',", "no numbers"),
            ("Warn = 1,", "Warn = 0,", "need a name and a number each"),
            ("Warn = 1,", '"Warn them" = 1,', "need a name and a number each"),
            ("default = 0\nbeyond = \"default\"", "default = 3\nbeyond = \"default\"", "is beyond its limits"),
            ('beyond = "kept"', 'beyond = "lost"', "beyond is lost"),
            (refuse, 'switch = "InjectedKeys"', "another policy governs"),
            (refuse, 'switch = "Nothing"', "there is no setting Nothing"),
            (force, force.replace("ForceChangePin", "WeakPinAllowed"), "another policy governs"),
            (force, force.replace("1", "-1"), "-1 is beyond"),
            (force, force.replace("1", "true"), "on is True"),
            ('"PinTries"\ncategory = "FirstPin"', '"PinTries"\ncategory = "Tries"', "no category Tries"),
            (refuse, 'switch = "ValidityHelp"', "is no number"),
            ('elements = ["OtpTimeout"]', "elements = []", "it governs nothing"),
            ('elements = ["OtpTimeout"]', 'elements = ["OtpTimeout", "OtpTimeout"]', "elements is"),
            ('elements = ["NoReaderDuration"', 'elements = ["NoReaderEnable", "NoReaderDuration"',
             "is one of its elements"),
            ('"ForceChangePin"\non = 1\noff = 0', '"ForceChangePin"\non = 1\noff = 1', "is the same"),
            ('id = "Product"\n', 'id = "Product"\nparent = "Pin"\n', "within itself"),
            ('[[category]]\nid = "Notices"', '[[category]]\nid = "Empty"\n\n[[category]]\nid = "Notices"',
             "nothing stands in it"),
            ("[[category]]\nid = \"Support\"\nparent = \"Product\"",
             "[[category]]\nid = \"Support\"\nparent = \"Produkt\"", "no category Produkt"),
        )
        for old, new, said in table:
            with self.subTest(new=new[:80]):
                text = self.refused("settings.toml", old, new)
                self.assertIn(said, text)
                pairs = zip(schema.splitlines(), schema.replace(old, new).splitlines())
                changed = [number for number, (was, now) in enumerate(pairs, 1) if was != now][0]
                self.assertRegex(text, rf"^settings\.toml:{changed}: ")

    def test_a_language_has_every_text_and_no_other(self):
        text = self.refused("texts/it.toml", 'OtpTimeout = "Secondi di visualizzazione"\n', "")
        self.assertRegex(text, r"it\.toml:\d+: there is no text setting\.OtpTimeout")
        for nothing in ("  ", "a\\u0007b"):
            text = self.refused("texts/it.toml", 'OtpTimeout = "Secondi di visualizzazione"',
                                f'OtpTimeout = "{nothing}"')
            self.assertRegex(text, r"it\.toml:\d+: .*setting\.OtpTimeout")
        text = self.refused("texts/fr.toml", "{OtpTimeout}", "{OtpTimeouts}")
        self.assertRegex(text, r"fr\.toml:\d+: no setting OtpTimeouts has a default")
        text = self.refused("texts/de.toml", 'HelpPath = "Hilfedatei"',
                                  'HelpPath = "Hilfedatei"\nHelpPfad = "Hilfedatei"')
        self.assertRegex(text, r"de\.toml:\d+: nothing has the text setting\.HelpPfad")

    def test_a_file_that_is_none_of_the_texts_is_refused(self):
        for path, change, said in (
                ("texts/it.toml", lambda file: file.unlink(), "it.toml:1: there is no such file"),
                ("texts/nl.toml", lambda file: file.write_text("name = ''"), "nl.toml:1: it is the"),
                ("texts/es.toml", lambda file: file.write_bytes(b"name = 'x'\n# \xe9\n"),
                 "es.toml:2: it is not UTF-8")):
            with self.subTest(path), tempfile.TemporaryDirectory() as folder:
                copy = pathlib.Path(folder) / "settings"
                shutil.copytree(MAKER, copy)
                change(copy / path)
                done = make("header", pathlib.Path(folder) / "made", copy)
                self.assertEqual((done.returncode, done.stderr[:7]), (1, "error: "))
                self.assertIn(said, done.stderr)

    def test_characters_that_mean_something_come_through(self):
        nasty = "it's <b>\\\"5 & 7\\\"</b> für $(string.x) ]]>"
        with tempfile.TemporaryDirectory() as folder:
            copy = pathlib.Path(folder) / "settings"
            shutil.copytree(MAKER, copy)
            path = copy / "texts/de.toml"
            path.write_text(path.read_text().replace('Pin = "Eingabe einer PIN"', f'Pin = "{nasty}"'))
            self.assertEqual(make("template", pathlib.Path(folder) / "made", copy).returncode, 0)
            texts = ElementTree.parse(pathlib.Path(folder) / "made/de-DE/mvpingui.adml")
            found = texts.find(".//p:string[@id='Category_Pin']", NAMESPACES)
            self.assertEqual(found.text, nasty.replace("\\", ""))


class Reference(unittest.TestCase):
    def test_is_what_the_description_makes(self):
        done = make("check", TOP / "docs/configuration.md")
        self.assertEqual(done.returncode, 0, done.stderr)


if __name__ == "__main__":
    unittest.main()
