"""What the cases of the lane `hadoop` share: the homes and forms that they run in, and a folder of their own in HDFS."""

import hashlib
import json
import os
import pathlib
import shutil
import socket
import subprocess
import sys
import tempfile
import unittest

import cluster

sys.path.insert(0, str(cluster.TOP / "tests/scripts"))
import run_case  # noqa: E402  (the path stands one line above)

STEPS = cluster.FOLDER / "steps.js"
USER = "bob"
TIMEOUT = 180
FORMS = {"wininet": "Velantrica.HdfsClient.1", "winhttp": "Velantrica.HdfsWinHttpClient.1"}
E_FAIL, E_INVALIDARG, E_ACCESSDENIED, E_NOINTERFACE = "80004005", "80070057", "80070005", "80004002"

# Wine's WinHTTP takes the 100 Continue that a data node sends unasked for the answer to an upload: none gets through it.
NO_UPLOADS = ("wine", "winhttp")

# Wine's WinINet now and then takes that 100 Continue for the head of a refusal, and the refusal's own head for its body.
MISREAD = "HTTP/1.1 403 Forbidden"

running = None  # the cluster; hadoop_test.py starts it


class Native:
    name = "native"

    def __init__(self, trusting=True):
        self.environment = run_case.without_settings(os.environ)
        self.environment.pop("SSL_CERT_FILE", None)
        if trusting:
            self.environment["SSL_CERT_FILE"] = str(cluster.CERTIFICATES / "ca.pem")
        self.environment["VELANDOC_NO_INPUT"] = "1"

    def local(self, path):
        return str(path)

    def from_local(self, path):
        return pathlib.Path(path)

    def script(self, *arguments):
        return self.started(*arguments).communicate(timeout=TIMEOUT)

    def started(self, *arguments):
        return self.program("velandoc-script", STEPS, *arguments)

    def command(self, *arguments):
        return self.program("velandoc", *arguments)

    def program(self, name, *arguments):
        return subprocess.Popen([cluster.TOP / "build/native/bin" / name, *arguments], env=self.environment,
                                stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.PIPE)


class Wine:
    """cscript with the DLL, which hadoop_test.py has registered."""

    name = "wine"

    def __init__(self):
        self.environment = run_case.without_settings(os.environ)

    def local(self, path):
        return run_case.windows_path(path)

    def from_local(self, path):
        drive, rest = path[:2], path[2:].replace("\\", "/").lstrip("/")
        prefix = pathlib.Path(os.environ.get("VELANDOC_WINE_PREFIX", cluster.TOP / "build/wine"))
        root = pathlib.Path("/") if drive == "Z:" else prefix / "drive_c"
        return root / rest

    def program(self, *arguments):
        return subprocess.Popen([cluster.TOP / "tools/wine", *arguments], env=self.environment, cwd=cluster.TOP,
                                stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.PIPE)

    def must(self, *arguments):
        process = self.program(*arguments)
        _, errors = process.communicate(timeout=TIMEOUT)
        if process.returncode != 0:
            raise RuntimeError(f"{' '.join(arguments)}: exit code {process.returncode} {errors!r}")

    def script(self, *arguments):
        return self.started(*arguments).communicate(timeout=TIMEOUT)

    def started(self, *arguments):
        return self.program("cscript", "//nologo", run_case.windows_path(STEPS), *arguments)

    def command(self, *arguments):
        return self.program(cluster.TOP / "build/windows/bin/velandoc.exe", *arguments)


HOMES = {"native": Native, "wine": Wine}


def steps_told(output):
    """What steps.js printed, a dictionary a step; without its last line it did not come to its end."""

    lines = output[0].decode("ascii").splitlines()
    if not lines or lines[-1] != "end of steps":
        raise AssertionError(f"the script ended early: {lines[-1:]} {output[1].decode('utf-8', 'replace')}")
    return [json.loads(line) for line in lines[:-1]]


def pattern(size):
    """The bytes that MiniCluster.java's files have."""
    block = bytes(i % 251 for i in range(251 * 256))
    return (block * (size // len(block) + 1))[:size]


def raw(method, target):
    """One request to the name node whose target is sent byte for byte (code points as bytes); (status, body)."""
    with socket.create_connection(("127.0.0.1", running.told["http"]), timeout=60) as connection:
        connection.sendall(f"{method} /webhdfs/v1{target} HTTP/1.1\r\nHost: localhost\r\nConnection: close\r\n"
                           f"Content-Length: 0\r\n\r\n".encode("latin-1"))
        answer = b"".join(iter(lambda: connection.recv(65536), b""))
    head, _, body = answer.partition(b"\r\n\r\n")
    return int(head.split()[1]), body.decode("utf-8", "replace")


def uploads(test):
    """Marks a test that cannot be without an upload."""
    test.uploads = True
    return test


class Case(unittest.TestCase):
    """Runs in one home with one form; both are set by in_all_homes. A class about some of them names those."""

    maxDiff = None
    homes, forms = tuple(HOMES), tuple(FORMS)
    home_class, form = None, None
    number = 0

    def setUp(self):
        Case.number += 1
        self.home = self.home_class()
        self.folder = f"/user/{USER}/{self.home.name}-{self.form}-{Case.number}"
        running.ask("folder", path=self.folder)
        self.local = pathlib.Path(tempfile.mkdtemp(prefix="velandoc-hadoop-case-"))
        self.addCleanup(shutil.rmtree, self.local, ignore_errors=True)

    def steps(self, *steps, base=None, user=USER, home=None):
        """Each step is a tuple of its words; local paths are given as Path."""
        home = home or self.home
        told = steps_told(home.script(FORMS[self.form], base or running.http, user, *self.words(steps, home)))
        self.assertEqual([step["step"] for step in told], [step[0] for step in steps])
        return told

    def words(self, steps, home):
        for step in steps:
            words = [home.local(word) if isinstance(word, pathlib.Path) else str(word) for word in step]
            assert not any("|" in word for word in words)
            yield "|".join(words)

    def file(self, name, content):
        path = self.local / name
        path.write_bytes(content)
        return path

    def path(self, name):
        return f"{self.folder}/{name}"

    def fetch(self, step):
        """The bytes of the local file that a step named; the file is taken away."""
        path = self.home.from_local(step["value"])
        content = path.read_bytes()
        path.unlink()
        return content

    def stands(self, name, content):
        """Hadoop's own client finds these bytes under that name."""
        status = running.ask("status", path=self.path(name))
        self.assertEqual((status["length"], status["sha256"]), (len(content), hashlib.sha256(content).hexdigest()))
        return status

    def names(self):
        return sorted(running.ask("list", path=self.folder)["names"])

    def went_well(self, *told):
        for step in told:
            self.assertNotIn("error", step)

    def refused(self, step, status, exception):
        """A refusal that ends an operation: a failure in one form, in the other a value of false."""
        if self.form == "wininet":
            self.failed(step, E_FAIL, status, exception)
        else:
            self.assertEqual((step.get("value"), step["http"]), (False, status), step)

    def tells(self, exception, text, of_data_node):
        """The text names the exception, or is what Wine makes of a data node's refusal now and then."""
        if of_data_node and (self.home.name, self.form) == ("wine", "wininet") and MISREAD in text:
            return
        self.assertIn(exception, text)

    def failed(self, step, number, status, exception=""):
        self.assertEqual(step.get("error"), number, step)
        self.assertEqual(step.get("http"), status, step)
        self.tells(exception, step["message"], of_data_node=step["step"].startswith("upload"))
        self.assertEqual(step["description"], step["message"])


def in_all_homes(case):
    """The class's tests once for each home and form that it is about."""
    suite = unittest.TestSuite()
    for home in case.homes:
        for form in case.forms:
            made = type(f"{case.__name__}_{home}_{form}", (case,), {"home_class": HOMES[home], "form": form})
            for name in unittest.defaultTestLoader.getTestCaseNames(made):
                if (home, form) != NO_UPLOADS or not hasattr(getattr(made, name), "uploads"):
                    suite.addTest(made(name))
    return suite
