"""Programs as the system has them ask through pinentry: a key manager, the remote shell's tools, git, sudo,
and a client of a smart card.

Usage: clients_test.py SCRIPTS_FOLDER [EMULATOR] TYPIST.exe

MVP_CLIENT_PICTURES names a folder for pictures of the prompts.
"""

import contextlib
import os
import pathlib
import signal
import socket
import struct
import subprocess
import sys
import tempfile
import time
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).parents[1] / "pinentry"))
from typist import Typist  # noqa: E402

PINENTRY = ""  # set from the command line
TYPIST = []
PICTURES = os.environ.get("MVP_CLIENT_PICTURES")
GOOD = "Kanarienvogel-7351"
NEW = "Gras.Mücke 88"
USER = "Anna Müller <anna@example.org>"


class ClientTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.typist = Typist(TYPIST)
        cls.addClassCleanup(cls.typist.close)

    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="mvp")
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        self.environment = {**os.environ, "SSH_ASKPASS": PINENTRY, "SSH_ASKPASS_REQUIRE": "force",
                            "GIT_ASKPASS": PINENTRY, "GNUPGHOME": str(self.folder), "LC_ALL": "C.UTF-8"}

    @contextlib.contextmanager
    def running(self, *command, code=0, text=""):
        """The program while the user serves it; afterwards its exit code is compared."""
        program = subprocess.Popen(command, env=self.environment, stdin=subprocess.PIPE,
                                   stdout=subprocess.PIPE, stderr=subprocess.PIPE, encoding="utf-8")
        program.stdin.write(text)
        program.stdin.close()
        program.stdin = None
        try:
            yield program
        except BaseException:
            program.kill()
            program.communicate()
            raise
        program.said, program.error = program.communicate(timeout=60)
        self.assertEqual(program.returncode, code, program.error)

    def run_done(self, *command, text=""):
        with self.running(*command, text=text) as program:
            pass
        return program.said

    def start_agent(self, *arguments):
        agent = subprocess.Popen(["ssh-agent", "-D", "-a", self.environment["SSH_AUTH_SOCK"], *arguments],
                                 env=self.environment, stdout=subprocess.PIPE, encoding="utf-8")
        self.addCleanup(agent.communicate)
        self.addCleanup(agent.terminate)
        agent.stdout.readline()  # it is there

    def ask(self, words, *texts, key="enter", picture=""):
        """Waits for the window that says the words, types and presses the key."""
        dialog = self.typist.wait()
        self.assertIn(words, "\n".join([dialog["title"], *dialog["texts"]]))
        self.typist.type(*texts)
        if picture and PICTURES:
            self.typist.picture(f"{PICTURES}/pinentry-{picture}.png")
        self.typist.press(key)
        self.typist.gone()


class KeyManagerTest(ClientTest):
    def setUp(self):
        super().setUp()
        self.addCleanup(subprocess.run, ["gpgconf", "--kill", "gpg-agent"], env=self.environment)
        self.configure()

    def configure(self, *lines):
        (self.folder / "gpg-agent.conf").write_text("\n".join(
            [f"pinentry-program {PINENTRY}", *lines, ""]))
        self.run_done("gpgconf", "--kill", "gpg-agent")

    def make_key(self):
        with self.running("gpg", "--batch", "--quick-gen-key", USER, "ed25519", "sign", "never"):
            self.ask("protect your new key", "abc", "abc", picture="1-make-key")
            self.ask("insecure passphrase", key="escape", picture="2-too-simple")
            self.ask("protect your new key", GOOD, GOOD)

    def sign(self, code=0):
        self.run_done("gpgconf", "--reload", "gpg-agent")  # forgets the passphrase
        return self.running("gpg", "--batch", "--yes", "-o", str(self.folder / "signature"),
                            "--detach-sign", "-u", USER, code=code, text="what is signed")

    def test_life_of_a_key(self):
        self.make_key()
        with self.sign():
            self.ask(USER, GOOD, picture="3-sign")
        (self.folder / "data").write_text("what is signed")
        self.run_done("gpg", "--verify", str(self.folder / "signature"), str(self.folder / "data"))
        self.run_done("gpgconf", "--reload", "gpg-agent")
        with self.running("gpg", "--batch", "--passwd", USER):
            self.ask(USER, GOOD)
            self.ask("new passphrase", NEW, NEW)
        with self.subTest("wrong twice, then right"), self.sign():
            self.ask(USER, GOOD)
            self.ask("try 2 of 3", GOOD, picture="4-wrong")
            self.ask("try 3 of 3", NEW)
        with self.subTest("wrong three times"), self.sign(code=2) as program:
            for words in (USER, "try 2 of 3", "try 3 of 3"):
                self.ask(words, GOOD)
        self.assertIn("Bad passphrase", program.error)
        with self.subTest("cancelled"), self.sign(code=2) as program:
            self.ask(USER, key="escape")
        self.assertIn("cancelled", program.error)
        self.configure("pinentry-timeout 1")
        with self.subTest("nobody answers"), self.sign(code=2) as program:
            self.typist.wait()
            self.typist.gone()
        self.assertIn("Timeout", program.error)

    def pinentries(self):
        """The processes of pinentry that serve this test's key manager."""
        found = []
        for process in pathlib.Path("/proc").glob("[0-9]*"):
            with contextlib.suppress(OSError):
                if (f"GNUPGHOME={self.folder}\0".encode() in (process / "environ").read_bytes()
                        and b"pinentry" in (process / "cmdline").read_bytes()):
                    found.append(process.name)
        return found

    def test_key_manager_killed(self):
        agent = int(self.run_done("gpg-connect-agent", "getinfo pid", "/bye").split()[1])
        with self.running("gpg", "--batch", "--symmetric", "-o", str(self.folder / "out"), code=2, text="x"):
            self.typist.wait()
            self.typist.type(GOOD)
            self.assertTrue(self.pinentries())
            os.kill(agent, signal.SIGKILL)
            self.typist.gone()
        deadline = time.monotonic() + 10
        while self.pinentries() and time.monotonic() < deadline:
            time.sleep(0.01)
        self.assertEqual(self.pinentries(), [])

    def test_constraints(self):
        self.configure("enforce-passphrase-constraints", "min-passphrase-len 14")
        with self.running("gpg", "--batch", "--quick-gen-key", USER, "ed25519", "sign", "never"):
            self.ask("protect your new key", "Kurz-1", "Kurz-1")
            self.ask("at least 14 characters", key="enter")
            self.ask("protect your new key", GOOD, GOOD)


class AskpassTest(ClientTest):
    def test_remote_shell(self):
        key = str(self.folder / "key")
        self.environment["SSH_AUTH_SOCK"] = str(self.folder / "agent")
        with self.running("ssh-keygen", "-q", "-t", "ed25519", "-f", key):
            self.ask("Enter passphrase", NEW, picture="5-ssh-keygen")
            self.ask("same passphrase", NEW)
        self.start_agent()
        with self.subTest("wrong, then right"), self.running("ssh-add", "-c", key):
            self.ask(key, "wrong")
            self.ask("Bad passphrase", NEW)
        signing = ("ssh-keygen", "-Y", "sign", "-n", "file", "-f", key + ".pub")
        with self.subTest("allowed"), self.running(*signing, text="x") as program:
            self.ask("Allow use of key", key="enter", picture="6-ssh-confirm")
        self.assertIn("BEGIN SSH SIGNATURE", program.said)
        with self.subTest("refused"), self.running(*signing, code=255, text="x"):
            self.ask("Allow use of key", key="escape")
        with self.subTest("cancelled"), self.running("ssh-add", key, code=1):
            self.ask(key, key="escape")

    def test_git(self):
        query = "protocol=https\nhost=example.org\n\n"
        self.environment["GIT_CONFIG_GLOBAL"] = os.devnull
        with self.running("git", "credential", "fill", text=query) as program:
            self.ask("Username for 'https://example.org'", "anna")
            self.ask("Password for 'https://anna@example.org'", NEW, picture="7-git")
        self.assertIn(f"username=anna\npassword={NEW}\n", program.said)

    def test_prompt_with_umlauts(self):
        with self.running(PINENTRY, "Passwort für Zoë:") as program:
            self.ask("Passwort für Zoë:", NEW)
        self.assertEqual(program.said, NEW + "\n")


class CardTest(ClientTest):
    MODULE = "/usr/lib/softhsm/libsofthsm2.so"
    LABEL = "Testkarte"

    def setUp(self):
        super().setUp()
        self.tokens = self.folder / "tokens"
        self.tokens.mkdir()
        settings = self.folder / "softhsm2.conf"
        settings.write_text(f"directories.tokendir = {self.tokens}\nlog.level = DEBUG\n")
        askpass = self.folder / "askpass"
        askpass.write_text(f'#!/bin/sh\nexec {PINENTRY} --log Z:{self.folder}/suite.log "$@"\n')
        askpass.chmod(0o700)
        self.environment.update(SOFTHSM2_CONF=str(settings), SSH_ASKPASS=str(askpass),
                                SSH_AUTH_SOCK=str(self.folder / "agent"))
        self.run_done("softhsm2-util", "--init-token", "--free", "--label", self.LABEL,
                      "--so-pin", "87654321", "--pin", GOOD)
        self.run_done("pkcs11-tool", "--module", self.MODULE, "--token-label", self.LABEL, "--login",
                      "--pin", GOOD, "--keypairgen", "--key-type", "EC:prime256v1", "--label", "anna")

    def test_key_on_a_card(self):
        self.start_agent("-P", os.path.realpath(self.MODULE))
        with self.running("ssh-add", "-s", self.MODULE, code=1) as program:
            self.ask("Enter passphrase for PKCS#11", "1234")
        self.assertIn("refused", program.error)
        with self.running("ssh-add", "-s", self.MODULE):
            self.ask("Enter passphrase for PKCS#11", GOOD, picture="8-card")
        public = self.folder / "card.pub"
        public.write_text(self.run_done("ssh-add", "-L"))
        self.run_done("ssh-add", "-T", str(public))  # signs, and verifies the signature
        self.assertIn(b"GetPINFromUser", (self.folder / "suite.log").read_bytes())
        for path in filter(pathlib.Path.is_file, self.folder.rglob("*")):
            self.assertNotIn(GOOD.encode(), path.read_bytes(), path)


# The shell's folder and numbers follow. No other process sees what is mounted here.
AS_ANNA = """
cd "$1"
mount -t tmpfs tmpfs /run
for file in passwd shadow sudoers pam.d/sudo; do mount --bind "$(basename $file)" /etc/$file; done
exec setpriv --reuid "$2" --regid "$2" --clear-groups sudo -k -A id -u
"""
# Wine's prefix is the tester's: what anna is asked goes to him.
HANDED_OVER = """#!/usr/bin/python3
import socket, sys
with socket.socket(socket.AF_UNIX) as tester:
    tester.connect({!r})
    tester.sendall(sys.argv[1].encode())
    tester.shutdown(socket.SHUT_WR)
    sys.stdout.write(tester.makefile().read())
"""


def can_mount():
    return subprocess.run(["unshare", "--mount", "true"], stderr=subprocess.DEVNULL).returncode == 0


class SudoTest(ClientTest):
    ANNA = 4711

    def setUp(self):
        super().setUp()
        if not can_mount():
            self.skipTest("sudo is tried with accounts of its own, which only root can mount")
        self.folder.chmod(0o711)
        crypted = self.run_done("openssl", "passwd", "-6", "-stdin", text=NEW).strip()
        self.write("passwd", "root:x:0:0::/root:/bin/sh", f"anna:x:{self.ANNA}:{self.ANNA}::/:/bin/sh")
        self.write("shadow", "root:*:19000::::::", f"anna:{crypted}:19000::::::", mode=0o600)
        self.write("sudoers", "Defaults lecture=never, !syslog", "anna ALL=(ALL) ALL", mode=0o440)
        self.write("sudo", "auth required pam_unix.so nodelay", "account required pam_unix.so")
        self.listener = socket.socket(socket.AF_UNIX)
        self.addCleanup(self.listener.close)
        self.listener.bind(f"{self.folder}/tester")
        self.listener.listen()
        self.listener.settimeout(30)
        (self.folder / "tester").chmod(0o666)
        self.write("askpass", HANDED_OVER.format(f"{self.folder}/tester"), mode=0o755)
        self.environment["SUDO_ASKPASS"] = str(self.folder / "askpass")

    def write(self, name, *lines, mode=0o644):
        path = self.folder / name
        path.write_text("\n".join([*lines, ""]))
        path.chmod(mode)

    def serve(self, *texts, key="enter", code=0, picture=""):
        client, _ = self.listener.accept()
        with client:
            peer = struct.unpack("3i", client.getsockopt(socket.SOL_SOCKET, socket.SO_PEERCRED, 12))
            self.assertEqual(peer[1], self.ANNA)
            with self.running(PINENTRY, client.makefile(encoding="utf-8").read(), code=code) as program:
                self.ask("password for anna", *texts, key=key, picture=picture)
            client.sendall(program.said.encode())

    def test_sudo(self):
        command = ("unshare", "--mount", "sh", "-ec", AS_ANNA, "sh", str(self.folder), str(self.ANNA))
        with self.subTest("wrong, then right"), self.running(*command) as program:
            self.serve(GOOD)
            self.serve(NEW, picture="9-sudo")
        self.assertEqual(program.said, "0\n")
        self.assertIn("try again", program.error)
        with self.subTest("cancelled"), self.running(*command, code=1) as program:
            self.serve(key="escape", code=1)
        self.assertEqual(program.said, "")


if __name__ == "__main__":
    scripts, *TYPIST = sys.argv[1:]
    PINENTRY = f"{scripts}/pinentry"
    unittest.main(argv=sys.argv[:1], verbosity=2)
