"""What the cases of the dialog share: one display, and programs whose lines are read as they come."""

import os
import pathlib
import queue
import shutil
import signal
import subprocess
import tempfile
import threading
import unittest

import form_page
from display import Display, Missing, PATIENCE, Window, wait_for  # noqa: F401 (for the cases)

TOP = pathlib.Path(__file__).resolve().parent.parent.parent
PICTURES = TOP / "build/test/dialog"

binaries = None  # the folder of the programs
display = None


class Program:
    """A program whose standard output is read line by line, and whose processes end with it."""

    def __init__(self, command, environment, folder):
        self.errors_path = pathlib.Path(folder) / "errors.txt"
        with open(self.errors_path, "ab") as errors:
            self.process = subprocess.Popen([str(word) for word in command], env=environment, cwd=folder,
                                            stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=errors,
                                            start_new_session=True)
        self.lines = []
        self._coming = queue.Queue()
        self._reader = threading.Thread(target=self._read, daemon=True)
        self._reader.start()

    def _read(self):
        for line in self.process.stdout:
            self._coming.put(line.decode("utf-8", "replace").rstrip("\n"))
        self._coming.put(None)

    def next(self):
        """The next line; None at the end of the output."""
        try:
            line = self._coming.get(timeout=PATIENCE)
        except queue.Empty:
            raise Missing(f"no line within {PATIENCE} s after {self.lines}; {self.errors()}") from None
        if line is not None:
            self.lines.append(line)
        return line

    def until(self, start):
        """Reads up to the line that begins with `start`, and gives that."""
        while True:
            line = self.next()
            if line is None:
                raise Missing(f"'{start}' did not come: {self.lines}; {self.errors()}")
            if line.startswith(start):
                return line

    def end(self):
        """All lines to the end; the exit code must be 0."""
        while self.next() is not None:
            pass
        code = self.process.wait(timeout=PATIENCE)
        if code != 0:
            raise Missing(f"exit code {code} after {self.lines}; {self.errors()}")
        return self.lines

    def errors(self):
        return self.errors_path.read_text(encoding="utf-8", errors="replace")

    def processes(self, name):
        """Ids of the living processes below this one of that name."""
        found = []
        for folder in pathlib.Path("/proc").iterdir():
            if not folder.name.isdigit():
                continue
            try:
                command = (folder / "cmdline").read_bytes().split(b"\0")[0]
                session = os.getsid(int(folder.name))
            except (OSError, ProcessLookupError):
                continue
            if session == self.process.pid and command.decode().endswith(name):
                found.append(int(folder.name))
        return found

    def stop(self):
        try:
            os.killpg(self.process.pid, signal.SIGKILL)
        except ProcessLookupError:
            pass
        self.process.wait(timeout=PATIENCE)
        self._reader.join(timeout=PATIENCE)
        self.process.stdout.close()


class DialogCase(unittest.TestCase):
    """A folder of its own on the one display."""

    maxDiff = None

    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="velandoc-dialog-"))
        self.addCleanup(shutil.rmtree, self.folder, ignore_errors=True)
        self.environment = dict(display.environment, HOME=str(self.folder), LC_ALL="C.UTF-8",
                                XDG_CACHE_HOME=str(self.folder / "cache"),
                                XDG_CONFIG_HOME=str(self.folder / "config"))
        for name in ("http_proxy", "https_proxy", "all_proxy", "no_proxy"):
            self.environment.pop(name, None)

    def start(self, *command):
        program = Program(command, self.environment, self.folder)
        self.addCleanup(program.stop)
        return program

    def drive(self, *options):
        """The driver with these options; the page is the last of them."""
        return self.start(binaries / "dialog_driver", *options)

    def page(self, *fields, name="form.htm", **options):
        return form_page.write(self.folder / name, *fields, **options)

    def save(self, window, name):
        """A picture for those who want to look, beside the log."""
        window.save(PICTURES / f"{name}.png")
