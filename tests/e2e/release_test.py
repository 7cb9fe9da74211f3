"""What a release holds, made of the builds at hand: the bill of materials, the package and the archive
agree, and every binary says what it is.

usage: release_test.py TOP BUILD64 BUILD32
"""

import collections
import hashlib
import io
import json
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import unittest
import zipfile

sys.dont_write_bytecode = True
TOP, BUILD64, BUILD32 = (pathlib.Path(sys.argv.pop(1)) for _ in range(3))
sys.path[:0] = [str(TOP / "scripts"), str(TOP / "tests/support")]
import release_check  # noqa: E402
from cabinet import read_cabinet  # noqa: E402
from pe_file import RT_MANIFEST, X64, X86, PeFile  # noqa: E402

EPOCH, CREATED = "1700000000", "2023-11-14T22:13:20Z"
MACHINES = {"x64": X64, "x86": X86}


def digest(data, name="sha256"):
    return hashlib.new(name, data).hexdigest()


def run(*command):
    return subprocess.run(command, check=True, capture_output=True).stdout


def tree(folder):
    return {path.relative_to(folder).as_posix(): path.read_bytes()
            for path in folder.rglob("*") if path.is_file()}


class Release(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.scratch = tempfile.TemporaryDirectory()
        cls.addClassCleanup(cls.scratch.cleanup)
        cls.folder = pathlib.Path(cls.scratch.name) / "release"
        cls.assemble(cls.folder)
        cls.package, = cls.folder.glob("*.msi")
        archive, = cls.folder.glob("*.zip")
        bill, = cls.folder.glob("*.spdx.json")
        cls.bill = json.loads(bill.read_text(encoding="utf-8"))
        with zipfile.ZipFile(archive) as opened:
            cls.entries = opened.infolist()
            cls.files = {entry.filename.split("/", 1)[1]: opened.read(entry)
                         for entry in cls.entries}
        cls.binaries = {name: PeFile(data) for name, data in cls.files.items()
                        if name.endswith((".dll", ".exe"))}

    @staticmethod
    def assemble(folder):
        build32 = BUILD32 if (BUILD32 / "bin/pinhost.exe").exists() else "-"
        subprocess.run([TOP / "scripts/release", "--from", BUILD64, build32, "--to", folder],
                       check=True, stdout=subprocess.DEVNULL,
                       env={**os.environ, "SOURCE_DATE_EPOCH": EPOCH})

    def test_bill_lists_every_file_of_the_archive_and_no_other(self):
        listed = {entry["fileName"]: {sum["algorithm"]: sum["checksumValue"]
                                      for sum in entry["checksums"]} for entry in self.bill["files"]}
        held = {"./" + name: {"SHA1": digest(data, "sha1"), "SHA256": digest(data)}
                for name, data in self.files.items()}
        self.assertEqual(listed, held)
        codes = "".join(sorted(sums["SHA1"] for sums in held.values()))
        product = self.bill["packages"][0]
        self.assertEqual(product["packageVerificationCode"]["packageVerificationCodeValue"],
                         digest(codes.encode(), "sha1"))

    def table(self, name):
        rows = run("msiinfo", "export", self.package, name).decode().splitlines()
        return [dict(zip(rows[0].split("\t"), row.split("\t"))) for row in rows[3:]]

    def test_package_holds_the_files_of_the_bill_and_no_other(self):
        table = self.table("File")
        packed = read_cabinet(run("msiinfo", "extract", self.package, "package.cab"))
        self.assertEqual({row["File"]: int(row["FileSize"]) for row in table},
                         {key: len(data) for key, data in packed.items()})
        names = {row["File"]: row["FileName"].split("|")[-1] for row in table}
        self.assertEqual({(names[key], digest(data)) for key, data in packed.items()},
                         {(name.split("/")[-1], digest(data)) for name, data in self.files.items()})

    def test_package_says_what_a_silent_installation_does_not_show(self):
        properties = {row["Property"]: row["Value"] for row in self.table("Property")}
        self.assertLessEqual({"UILANGUAGE", "INSTALLDIR", "INSTALLDIR32"},
                             set(properties["SecureCustomProperties"].split(";")))
        self.assertEqual(properties["ARPNOMODIFY"], "1")
        follows_parent_and_cannot_be_absent = 2 | 16
        for row in self.table("Feature"):
            expected = follows_parent_and_cannot_be_absent * row["Feature"].startswith("Language")
            self.assertEqual(int(row["Attributes"]) & 18, expected, row["Feature"])

    def test_a_stage_with_more_or_less_is_no_package(self):
        stage = pathlib.Path(self.scratch.name) / "stage"
        make_stage = (sys.executable, "-B", TOP / "package/stage.py", BUILD64, "-", stage)
        run(*make_stage)
        for version, change, said in (
                ("1.2", lambda: None, "1.2 is no version"),
                ("1.2.3", lambda: (stage / "x64/more.dll").touch(), "unknown: ['x64/more.dll']"),
                ("1.2.3", (stage / "x64/vklog.dll").unlink, "missing: ['x64/vklog.dll']")):
            change()
            done = subprocess.run([sys.executable, "-B", TOP / "package/make_package.py", stage,
                                   stage.with_name("no.msi"), "--version", version],
                                  capture_output=True, text=True, check=False)
            self.assertEqual(done.returncode, 1)
            self.assertIn(said, done.stderr)
        run(*make_stage)
        self.assertFalse((stage / "x64/more.dll").exists())

    def test_the_same_builds_give_the_same_release_at_another_time(self):
        again = self.folder.with_name("again")
        self.assemble(again)
        self.assertEqual(list(release_check.differences(self.folder, again)), [])
        self.assertRegex(run("msiinfo", "suminfo", self.package).decode(),
                         r"Revision number.*: \{[0-9A-F]{8}(-[0-9A-F]{4}){3}-[0-9A-F]{12}\}")

    def test_bill_is_sound(self):
        elements = self.bill["packages"] + self.bill["files"]
        known = collections.Counter(each["SPDXID"] for each in elements)
        self.assertEqual(max(known.values()), 1)
        for one in self.bill["relationships"]:
            for end in (one["spdxElementId"], one["relatedSpdxElement"]):
                self.assertTrue(end in known or end == "SPDXRef-DOCUMENT", end)
        self.assertEqual(self.bill["creationInfo"]["created"], CREATED)
        texts = {each["licenseId"] for each in self.bill["hasExtractedLicensingInfos"]}
        used = {word for each in elements
                for word in re.findall(r"LicenseRef-[\w.-]+", each["licenseConcluded"])}
        self.assertEqual(texts, used)

    def test_bill_names_the_holders_with_their_hashes(self):
        holders = {each["packageFileName"]: each["checksums"][1]["checksumValue"]
                   for each in self.bill["packages"] if "packageFileName" in each}
        self.assertEqual(holders, {path.name: digest(path.read_bytes())
                                   for path in self.folder.iterdir() if path.suffix in (".msi", ".zip")})

    def test_bill_says_what_every_binary_was_made_with(self):
        kinds = collections.defaultdict(set)
        for one in self.bill["relationships"]:
            kinds[one["relationshipType"], one["spdxElementId"]].add(one["relatedSpdxElement"])
            kinds[one["relationshipType"] + " of", one["relatedSpdxElement"]].add(one["spdxElementId"])
        ids = {entry["fileName"][2:]: entry["SPDXID"] for entry in self.bill["files"]}
        licences = {each["SPDXID"]: set(re.sub("[()]", "", each["licenseConcluded"]).split(" AND "))
                    for each in self.bill["packages"] + self.bill["files"]}
        for name, binary in self.binaries.items():
            with self.subTest(name):
                bits = name.split("/")[0]
                tools = {f"SPDXRef-compiler-{bits}", f"SPDXRef-linker-{bits}"}
                self.assertEqual(kinds["BUILD_TOOL_OF of", ids[name]], tools)
                runtime = {f"SPDXRef-{each}-{bits}"
                           for each in ("libstdcxx", "libgcc", "mingw-w64", "winpthreads")}
                has_code = binary.entry_point != 0
                self.assertEqual(kinds["STATIC_LINK", ids[name]], runtime if has_code else set())
                headers = {"SPDXRef-cli11", "SPDXRef-nlohmann-json"} if "pinhost.exe" in name else set()
                self.assertEqual(kinds["GENERATED_FROM", ids[name]], {"SPDXRef-source"} | headers)
                for material in kinds["STATIC_LINK", ids[name]] | headers:
                    self.assertLessEqual(licences[material], licences[ids[name]], material)
        versions = {each["SPDXID"]: each["versionInfo"] for each in self.bill["packages"]}
        compiler = run("x86_64-w64-mingw32-g++-posix", "-dumpfullversion").decode().strip()
        self.assertIn(compiler[:compiler.find("-")], versions["SPDXRef-compiler-x64"])

    def test_bill_names_the_debian_packages_of_what_is_linked_in(self):
        named = {each["SPDXID"]: each["externalRefs"][0]["referenceLocator"]
                 for each in self.bill["packages"] if "externalRefs" in each}
        for bits, prefix in (("x64", "x86_64"), ("x86", "i686")):
            for material, archive in (("libstdcxx", "libstdc++.a"), ("libgcc", "libgcc_eh.a"),
                                      ("mingw-w64", "libmingw32.a"), ("winpthreads", "libpthread.a")):
                if f"SPDXRef-{material}-{bits}" not in named:
                    continue
                linked = run(f"{prefix}-w64-mingw32-g++-posix", f"-print-file-name={archive}")
                owner = run("dpkg", "-S", os.path.realpath(linked.strip())).decode().split(":")[0]
                self.assertIn(f"/{owner}@", named[f"SPDXRef-{material}-{bits}"])

    def test_checksums(self):
        run("sh", "-c", 'cd "$0" && sha256sum --check --strict SHA256SUMS', self.folder)
        listed = {line.split("  ")[1] for line in
                  (self.folder / "SHA256SUMS").read_text().splitlines()}
        self.assertEqual(listed | {"SHA256SUMS"}, set(tree(self.folder)))

    def test_every_binary_says_what_it_is(self):
        notice = re.search(r"^Copyright .*$", (TOP / "LICENSE").read_text(), re.M)[0]
        version = re.search(r"project\(mvpingui VERSION (\S+)", (TOP / "CMakeLists.txt").read_text())[1]
        self.assertGreaterEqual(len(self.binaries), 13)
        for name, binary in self.binaries.items():
            with self.subTest(name):
                strings, number = binary.version_strings()
                self.assertEqual(number, (*map(int, version.split(".")), 0))
                self.assertRegex(strings["FileDescription"], "Veskara")
                expected = {"FileVersion": version, "ProductVersion": version,
                            "LegalCopyright": notice, "OriginalFilename": name.split("/")[-1],
                            "InternalName": name.split("/")[-1]}
                self.assertEqual(expected, {key: strings.get(key) for key in expected})
                manifests = [data for kind, _, _, data in binary.resources() if kind == RT_MANIFEST]
                if name.endswith(".exe"):
                    self.assertIn(b"Microsoft.Windows.Common-Controls", manifests[0])
                else:
                    self.assertEqual(manifests, [])

    def test_no_binary_tells_when_or_where_it_was_built(self):
        for name, binary in self.binaries.items():
            with self.subTest(name):
                self.assertEqual(binary.machine, MACHINES[name.split("/")[0]])
                self.assertEqual((binary.stamp, binary.export_stamp, binary.symbols), (0, 0, 0))
                self.assertNotIn(str(TOP).encode(), binary.data)

    def test_archive_has_one_time_and_one_set_of_rights(self):
        self.assertEqual({(entry.date_time, entry.external_attr >> 16) for entry in self.entries},
                         {((2023, 11, 14, 22, 13, 20), 0o100644)})
        parts = [entry.filename.split("/") for entry in self.entries]
        self.assertEqual(parts, sorted(parts))

    def test_comparison_builds_what_the_working_tree_holds(self):
        top, copy = (pathlib.Path(self.scratch.name) / name for name in ("sources", "copy"))
        run("git", "init", "--quiet", top)
        for name in ("kept", "changed", "gone"):
            (top / name).write_text(name)
        run("git", "-C", top, "add", ".")
        run("git", "-C", top, "-c", "user.name=x", "-c", "user.email=x@localhost", "commit", "-qm", "x")
        (top / "changed").write_text("otherwise")
        (top / "gone").unlink()
        (top / "new").mkdir()
        (top / "new/ä b").write_text("new")
        release_check.copy_sources(top, copy)
        shutil.rmtree(top / ".git")
        shutil.rmtree(copy / ".git")
        self.assertEqual(tree(copy), tree(top))

    def test_comparison_names_what_differs(self):
        library = bytearray(self.files["x64/mvpingui.dll"])
        section = next(each for each in PeFile(library).sections if each.name == ".rdata")
        library[section.offset + 5] ^= 1
        library[PeFile(library).checksum_at] ^= 1
        one, other = (pathlib.Path(self.scratch.name) / name for name in ("one", "other"))
        for folder, data in ((one, self.files["x64/mvpingui.dll"]), (other, library)):
            folder.mkdir()
            archive = io.BytesIO()
            with zipfile.ZipFile(archive, "w") as opened:
                opened.writestr(zipfile.ZipInfo("mvpingui.dll"), bytes(data))
            (folder / "release.zip").write_bytes(archive.getvalue())
        (other / "more.txt").write_text("more")
        self.assertEqual(list(release_check.differences(one, one)), [])
        found = "\n".join(release_check.differences(one, other))
        self.assertIn(f"release.zip: mvpingui.dll differs at byte {section.offset + 5:#x}, in .rdata",
                      found)
        self.assertIn("more.txt is only in the second release", found)
        (one / "less.txt").write_text("less")
        self.assertIn("less.txt is only in the first release", release_check.differences(one, other))


if __name__ == "__main__":
    unittest.main()
