"""Runs the programs against a stand-in server: plainly, or on a terminal."""

import os
import pathlib
import re
import select
import shutil
import signal
import subprocess
import sys
import tempfile
import termios
import time
import unittest

TOP = pathlib.Path(__file__).resolve().parent.parent.parent
sys.path.insert(0, str(TOP / "tests/support"))
from stand_in import StandIn  # noqa: E402  (the path stands one line above)

CERTIFICATES = TOP / "build/certificates"
TIMEOUT = 60

command = None
script_host = None
standin = None
server = None


class Server(StandIn):
    """One stand-in server for the whole run."""

    def __init__(self):
        subprocess.run([TOP / "standin/make-certificates", CERTIFICATES], check=True,
                       stdout=subprocess.DEVNULL)
        self.folder = tempfile.TemporaryDirectory(prefix="velandoc-cli-")
        self.hdfs = pathlib.Path(self.folder.name) / "hdfs"
        self.hdfs.mkdir()
        super().__init__(standin, CERTIFICATES, self.folder.name, "--hdfs", self.hdfs, "--max-seconds", "900")

    def empty_hdfs(self):
        """HDFS without a file, and of the usual kind."""
        self.command("DELETE", "/hdfs")
        for entry in self.hdfs.iterdir():
            shutil.rmtree(entry) if entry.is_dir() else entry.unlink()

    def log(self):
        return [record for record in super().log() if record["method"] != "CONNECT"]

    def stop(self):
        super().stop()
        self.folder.cleanup()


class Case(unittest.TestCase):
    """A home folder and registry of its own; the server's proxy on the standard ports of every host."""

    maxDiff = None

    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="velandoc-cli-case-"))
        self.addCleanup(shutil.rmtree, self.folder, ignore_errors=True)
        self.registry = self.folder / "registry"
        proxy = f"http://127.0.0.1:{server.ports['http']}"
        self.environment = {
            key: value for key, value in os.environ.items()
            if key.lower() not in ("http_proxy", "https_proxy", "no_proxy", "all_proxy", "netrc",
                                   "curl_ca_bundle", "ssl_cert_dir")
            and not key.startswith(("VELANDOC_", "KRB5"))}
        self.environment.update(
            HOME=str(self.folder), XDG_CONFIG_HOME=str(self.folder / "config"), http_proxy=proxy,
            https_proxy=proxy, SSL_CERT_FILE=str(CERTIFICATES / "ca.pem"),
            VELANDOC_REGISTRY_DIR=str(self.registry), LC_ALL="C.UTF-8",
            KRB5CCNAME=str(self.folder / "no-tickets"))
        server.rules()
        server.command("DELETE", "/site")
        server.command("DELETE", "/log")

    def run_program(self, program, *arguments, **options):
        # A session of its own: without a terminal, whatever the tests run on.
        if "input" not in options:
            options.setdefault("stdin", subprocess.DEVNULL)
        return subprocess.run([program, *arguments], env=self.environment, cwd=self.folder,
                              capture_output=True, timeout=TIMEOUT, start_new_session=True,
                              check=False, **options)

    def expect(self, arguments, code, output, errors, program=None):
        """Exact exit code and output; `errors` is exact text, or a compiled pattern that must match the whole."""
        done = self.run_program(program or command, *arguments)
        self.assertEqual((done.returncode, done.stdout.decode()), (code, output), done.stderr.decode())
        if isinstance(errors, re.Pattern):
            self.assertRegex(done.stderr.decode(), re.compile(rf"\A(?:{errors.pattern})\Z", errors.flags))
        else:
            self.assertEqual(done.stderr.decode(), errors)

    def write(self, name, content):
        path = self.folder / name
        path.write_bytes(content if isinstance(content, bytes) else content.encode())
        return path


def why_no_terminal():
    """Why no pseudo-terminal can be opened; None if one can."""
    try:
        ends = os.openpty()
    except OSError as error:
        return f"no pseudo-terminal can be opened: {error}"
    for end in ends:
        os.close(end)
    return None


NO_TERMINAL = why_no_terminal()
needs_terminal = unittest.skipIf(NO_TERMINAL, NO_TERMINAL)  # marks a test, or a class of them


class Terminal:
    """A program whose terminal is ours."""

    def __init__(self, environment, *arguments, output=None):
        self.shown = ""
        # Not pty.fork, whose fallback can raise in the child: that would run the rest of the tests.
        self.pid, self.terminal = os.forkpty()
        if self.pid == 0:
            try:
                if output is not None:
                    os.dup2(os.open(output, os.O_WRONLY | os.O_CREAT | os.O_TRUNC, 0o600), 1)
                os.execve(arguments[0], [str(argument) for argument in arguments], environment)
            finally:
                os._exit(127)

    def _read(self, deadline):
        ready, _, _ = select.select([self.terminal], [], [], max(0, deadline - time.monotonic()))
        if not ready:
            raise AssertionError(f"nothing more comes; shown so far:\n{self.shown}")
        try:
            data = os.read(self.terminal, 4096)
        except OSError:  # the other side is closed
            data = b""
        self.shown += data.decode("utf-8", "replace").replace("\r\n", "\n")
        return bool(data)

    def wait_for(self, text):
        """Reads until `text` has come; gives what came up to it, and forgets that."""
        deadline = time.monotonic() + TIMEOUT
        while text not in self.shown:
            if not self._read(deadline):
                raise AssertionError(f"ended without '{text}'; shown so far:\n{self.shown}")
        at = self.shown.index(text) + len(text)
        before, self.shown = self.shown[:at], self.shown[at:]
        return before

    def echoes(self):
        return bool(termios.tcgetattr(self.terminal)[3] & termios.ECHO)

    def type(self, text):
        os.write(self.terminal, text.encode())

    def finish(self):
        """The rest of what is shown, and the exit code."""
        deadline = time.monotonic() + TIMEOUT
        try:
            while self._read(deadline):
                pass
        except AssertionError:
            os.kill(self.pid, signal.SIGKILL)
            os.waitpid(self.pid, 0)
            raise
        _, status = os.waitpid(self.pid, 0)
        os.close(self.terminal)
        return self.shown, os.waitstatus_to_exitcode(status)
