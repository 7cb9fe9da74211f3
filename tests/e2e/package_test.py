"""Installs the package as an administrator does, and looks at the machine.

Usage: package_test.py BUILD64 BUILD32 GUEST.exe

BUILD32 may be missing: the package then has no part for 32 bits.
"""

import pathlib
import shutil
import sys
import tempfile
import unittest

sys.dont_write_bytecode = True
sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent / "support"))
import installed_package as machine  # noqa: E402
from installed_package import DONE, DRIVE, REFUSED, RESTART_NEEDED, go_on, wine  # noqa: E402

BUILDS, GUEST = sys.argv[1:3], sys.argv[3]

KEY = r"Software\Quillon\Veskara"
PROGRAM_FILES = "C:\\Program Files\\Quillon\\Veskara\\"
CAPTIONS = {"en": "Enter PIN", "fr": "Saisie du code PIN", "de": "PIN eingeben",
            "es": "Introducir el PIN", "it": "Immissione del PIN"}
ALL = ("Library", "Pinhost", "Template", "Library32", "Pinhost32")


class PackageTest(unittest.TestCase):
    maxDiff = None  # which files are missing, or too many

    @classmethod
    def setUpClass(cls):
        folder = tempfile.TemporaryDirectory()
        cls.addClassCleanup(folder.cleanup)
        cls.folder = pathlib.Path(folder.name)
        build64, build32 = BUILDS
        has_32_bits = (pathlib.Path(build32) / "bin/mvpingui.dll").exists()
        builds = (build64, build32 if has_32_bits else "-")
        cls.old, cls.new = (machine.Release(builds, cls.folder, version)
                            for version in ("1.0.0", "1.1.0"))
        cls.all = ALL if has_32_bits else ALL[:3]
        cls.guest = machine.Guest(GUEST, cls.folder)
        for release in (cls.new, cls.old):  # what a run that was cut off has left
            release.msiexec("/x")
        for folder in ("Program Files", "Program Files (x86)"):
            shutil.rmtree(DRIVE / folder / "Quillon", ignore_errors=True)
        cls.paths_before, cls.registry_before = machine.paths(), machine.registry()

    def tearDown(self):
        if machine.paths() != self.paths_before:
            for release in (self.new, self.old):
                release.msiexec("/x")

    def expect_installed(self, files):
        there = {name for name in machine.paths() - self.paths_before
                 if not name.startswith("windows/Installer/")}
        self.assertEqual(machine.digests(there), files)

    def expect_nothing_left(self, everywhere=False):
        """No file, no folder and no key of the package; with `everywhere` nothing at all is changed."""
        self.assertEqual(machine.paths() ^ self.paths_before, set())
        for key in (r"Software\Quillon", r"Software\Wow6432Node\Quillon"):
            self.assertIsNone(machine.values(key))
        if everywhere:
            self.assertEqual(machine.registry() ^ self.registry_before, set())

    def expect_dialog(self, language, folder=PROGRAM_FILES):
        code, lines = self.guest.ask()
        self.assertEqual((code, lines[:2], lines[-1]),
                         (0, [folder + "mvpingui.dll", CAPTIONS[language]], "result 0xffffffff"))

    def install(self, release, *arguments, code=DONE):
        ended, said = release.msiexec(*arguments)
        self.assertEqual(ended, code, said)

    def test_each_language_installs_and_goes(self):
        for language in CAPTIONS:
            with self.subTest(language):
                self.install(self.old, *([f"UILANGUAGE={language}"] if language != "en" else []))
                self.expect_installed(self.old.files(*self.all, language=language))
                self.expect_dialog(language)
                self.assertEqual(machine.values(), {"VeskaraInstallPath": PROGRAM_FILES})
                if self.old.has_32_bits():
                    self.assertEqual(
                        machine.values(r"Software\Wow6432Node\Quillon\Veskara"),
                        {"VeskaraInstallPath": PROGRAM_FILES.replace("Files", "Files (x86)")})
                self.install(self.old, "/x")
        self.expect_nothing_left(everywhere=True)

    def test_what_was_chosen_outlasts_an_upgrade(self):
        place = "Größe 1 & Maß"
        folder = f"C:\\{place}\\"
        self.install(self.old, "ADDLOCAL=Library,Template", "UILANGUAGE=fr", f"INSTALLDIR={folder}")
        self.expect_installed(self.old.files("Library", "Template", language="fr", folder=place))
        self.install(self.new, "INSTALLDIR=C:\\Elsewhere\\")
        self.install(self.old, code=REFUSED)
        self.expect_installed(self.new.files("Library", "Template", language="fr", folder=place))
        self.expect_dialog("fr", folder)
        self.install(self.new, "/x")
        self.expect_nothing_left()

    def test_an_upgrade_may_change_features_and_language(self):
        self.install(self.old, "ADDLOCAL=Library", "UILANGUAGE=fr")
        self.install(self.new, "ADDLOCAL=Library,Pinhost", "UILANGUAGE=es")
        self.expect_installed(self.new.files("Library", "Pinhost", language="es"))
        self.expect_dialog("es")

    def test_a_host_outlasts_an_upgrade(self):
        self.install(self.old, "UILANGUAGE=de")
        holding = self.guest.hold()
        self.install(self.new, code=RESTART_NEEDED)
        code, lines = go_on(holding)
        self.assertEqual((code, lines[0]), (0, CAPTIONS["de"]))
        self.expect_dialog("de")
        wine("wineboot", "-r").check_returncode()
        self.expect_installed(self.new.files(*self.all, language="de"))
        self.expect_dialog("de")
        self.install(self.new, "/x")
        self.expect_nothing_left(everywhere=True)

    def test_repair_brings_back_what_is_damaged(self):
        self.install(self.old, "UILANGUAGE=it")
        place = DRIVE / "Program Files/Quillon/Veskara"
        (place / "vklog.dll").unlink()
        (place / "mvcext.dll").write_text("damaged")
        machine.set_version(place / "Resources/Localized/mvpinguirc.dll", "0.9.9")
        (DRIVE / "windows/PolicyDefinitions/mvpingui.admx").write_text("damaged")
        wine("reg", "delete", f"HKLM\\{KEY}", "/v", "VeskaraInstallPath", "/f",
             "/reg:64").check_returncode()
        self.install(self.old, "REINSTALL=ALL", "REINSTALLMODE=amus")
        self.expect_installed(self.old.files(*self.all, language="it"))
        self.expect_dialog("it")

    def test_a_module_of_another_version_does_no_harm(self):
        self.install(self.old, "ADDLOCAL=Library")
        module = DRIVE / "Program Files/Quillon/Veskara/Resources/Localized/mvpinguirc.dll"
        machine.set_version(module, "9.9.9")
        self.expect_dialog("en")
        # One that has none of the dialogs and texts.
        shutil.copy(module.parents[2] / "vkerrmes.dll", module)
        for name, kind, text in (("LogFile", "REG_SZ", "C:\\guest.log"), ("LogLevels", "REG_DWORD", "1")):
            wine("reg", "add", f"HKLM\\{KEY}\\Logging", "/v", name, "/t", kind, "/d", text,
                 "/f", "/reg:64").check_returncode()
        log = DRIVE / "guest.log"
        self.addCleanup(log.unlink)
        self.addCleanup(wine, "reg", "delete", f"HKLM\\{KEY}\\Logging", "/f", "/reg:64")
        code, lines = self.guest.ask()
        self.assertEqual((code, lines[-1]), (1, "result 0xffffffff"))
        self.assertIn("Dialog template 3073 is missing from the resource module",
                      log.read_text(encoding="cp1252"))

    def test_what_the_administrator_has_set_stays(self):
        wine("reg", "add", f"HKLM\\{KEY}", "/v", "OTPWindowTimeout", "/t", "REG_DWORD", "/d", "7",
             "/f", "/reg:64").check_returncode()
        self.addCleanup(wine, "reg", "delete", "HKLM\\Software\\Quillon", "/f", "/reg:64")
        self.install(self.old)
        self.install(self.old, "/x")
        self.assertEqual(machine.values(), {"OTPWindowTimeout": "0x7"})

    def test_what_cannot_be_had_is_refused(self):
        self.install(self.old, "UILANGUAGE=pt", code=REFUSED)
        self.expect_nothing_left()
        self.install(self.old, "UILANGUAGE=fr")
        self.install(self.old, "REINSTALL=ALL", "REINSTALLMODE=amus", "UILANGUAGE=de", code=REFUSED)
        self.expect_dialog("fr")

    def test_a_long_path(self):
        inner = "ä b c d" * 31 + "long"
        folder = f"C:\\{inner}\\"
        self.assertEqual(len(folder + "Resources\\Localized\\mvpinguirc.dll"), 259)
        longer = folder[:-1] + "x" * 25 + "\\"
        self.assertEqual(len(longer), 250)
        self.install(self.old, "ADDLOCAL=Library", f"INSTALLDIR={longer}", code=REFUSED)
        self.expect_nothing_left()
        self.install(self.old, "ADDLOCAL=Library", f"INSTALLDIR={folder}")
        self.expect_installed(self.old.files("Library", folder=inner))
        self.expect_dialog("en", folder)
        self.install(self.new)
        self.expect_installed(self.new.files("Library", folder=inner))
        self.install(self.new, "/x")
        self.expect_nothing_left()

    def test_twenty_cycles(self):
        for _ in range(20):
            self.install(self.old)
            self.expect_dialog("en")
            self.install(self.old, "/x")
        self.expect_nothing_left(everywhere=True)


if __name__ == "__main__":
    unittest.main(argv=[sys.argv[0], *sys.argv[4:]])
