"""Runs the scripts of contributors where they have failed, in a folder of their own.

Usage: scripts_test.py TOP
"""

import fcntl
import json
import os
import pathlib
import select
import shutil
import subprocess
import sys
import tempfile
import unittest

TOP = pathlib.Path()  # set from the command line

# In the place of Wine: says that the program that keeps the prefix alive is up, if it is there.
WINE = '#!/bin/sh\n[ -e "$1" ] && echo up && exec sleep 60\n'


class ScriptsTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name).resolve()
        self.top = self.folder / "top"
        shutil.copytree(TOP / "scripts", self.top / "scripts")

    def write(self, name, text, mode=0o644):
        path = self.folder / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(text)
        path.chmod(mode)

    def run_script(self, name, *arguments, **environment):
        return subprocess.run([self.top / "scripts" / name, *arguments], cwd=self.top, timeout=60,
                              env={**os.environ, **environment}, capture_output=True, text=True)

    def test_pinentry_finds_display_and_wine(self):
        self.write("tools/wine", '#!/bin/sh\n[ "$1" = cmd ] && exit "$CODE"\n'
                                 'echo "$DISPLAY $LC_ALL $*"\n', 0o755)
        program = self.top / "build/windows/bin/pinentry.exe"
        environment = {"PATH": f"{self.folder}/tools:{os.environ['PATH']}", "MVP_WINE_SESSION": "",
                       "MVP_WINE_PREFIX": str(self.folder / "prefix"), "DISPLAY": ":1", "LC_ALL": "de_DE.UTF-8"}
        for made, code, words in (("prefix/.complete", 3, "not built yet"),
                                  ("top/build/windows/bin/pinentry.exe", 3, "Wine does not start")):
            self.write(made, "")
            ended = self.run_script("pinentry", "Password:", **environment, CODE="7")
            self.assertEqual((ended.returncode, ended.stdout), (code, ""))
            self.assertIn(words, ended.stderr)
        for display, *arguments in ((":1", "Zoë:"), (":2", "--display", ":2", "--debug"),
                                    (":3", "--display=:3", "--debug")):
            ended = self.run_script("pinentry", *arguments, **environment, CODE="0")
            self.assertEqual(ended.stdout, f"{display} C.UTF-8 {program} --lc-messages=de_DE.UTF-8 "
                                           f"{' '.join(arguments)}\n")

    def test_lint_passes_nothing_unchecked(self):
        for name in (".clang-format", ".clang-tidy"):
            shutil.copy(TOP / name, self.top / name)
        sources = {"clean": "int main() {\n    return 0;\n}\n",
                   "untidy": "bool IsSo(bool is) {\n    return is ? true : false;\n}\n",
                   "unformatted": "int main() { return 0 ; }\n", "unbuilt": "int x;\n"}
        for name, text in sources.items():
            self.write(f"top/{name}.cpp", text)
        self.write("outside.cpp", sources["clean"])
        self.write("top/build/native/compile_commands.json", json.dumps(
            [{"directory": str(self.top), "file": f"{self.top}/{name}.cpp",
              "command": f"g++ -std=c++20 -o {name}.o -c {self.top}/{name}.cpp"}
             for name in sources if name != "unbuilt"]))
        subprocess.run("git init -q && git add *.cpp", shell=True, cwd=self.top, check=True)
        for code, words, *files in ((0, "", "clean.cpp"),
                                    (1, "readability-simplify-boolean-expr", "untidy.cpp", "clean.cpp"),
                                    (1, "should be clang-formatted", "unformatted.cpp"),
                                    (1, "unbuilt.cpp is in no build", "unbuilt.cpp"),
                                    (1, "no file of", "../outside.cpp"),
                                    (1, "no file of", "missing.cpp"),
                                    (1, "readability-simplify-boolean-expr",)):
            with self.subTest(files):
                run = self.run_script("lint", *files)
                self.assertEqual(run.returncode, code, run)
                self.assertIn(words, run.stdout + run.stderr)

    def session(self, wine, *command):
        self.write("prefix/.complete", "")
        self.write("prefix/drive_c/windows/syswow64/kernel32.dll", "")
        self.write("bin/wine", wine, 0o755)
        self.write("bin/wineserver", "#!/bin/sh\n", 0o755)
        return self.run_script("wine-session", *command, PATH=f"{self.folder}/bin:{os.environ['PATH']}",
                               MVP_WINE_PREFIX=str(self.folder / "prefix"), MVP_USE_DISPLAY="1",
                               DISPLAY=":none")

    def test_a_session_needs_no_build(self):
        run = self.session(WINE, "sh", "-c", "exit 7")
        self.assertEqual(run.returncode, 7, run)
        self.assertTrue((self.top / "build/keepalive.exe").exists())

    def test_a_session_does_not_wait_for_a_dead_wine(self):
        run = self.session("#!/bin/sh\n", "true")
        self.assertEqual((run.returncode, run.stderr), (1, "wine-session: Wine did not start\n"))

    def test_a_second_session_says_that_it_waits(self):
        with open(self.folder / "prefix.lock", "w") as lock:
            fcntl.flock(lock, fcntl.LOCK_EX)
            session = subprocess.Popen([self.top / "scripts/wine-session", "true"], text=True,
                                       env={**os.environ, "MVP_WINE_PREFIX": f"{self.folder}/prefix"},
                                       stderr=subprocess.PIPE)
            with session:
                told = select.select([session.stderr], [], [], 20)[0]
                session.kill()
                self.assertTrue(told)
                self.assertIn("waiting for another session", session.stderr.readline())


if __name__ == "__main__":
    TOP = pathlib.Path(sys.argv[1])
    unittest.main(argv=sys.argv[:1])
