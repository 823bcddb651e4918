"""The stand-in server as the tests use it: its control port, and its life."""

import contextlib
import http.client
import json
import pathlib
import subprocess
import time

START_SECONDS = 20
STOP_SECONDS = 20
LOG_SECONDS = 20


class Control:
    """The control port of a running server. `ports` is what the server wrote into its file --ready."""

    def __init__(self, ports):
        self.ports = ports

    def command(self, method, path, body=None):
        """The answer's JSON, or None; ValueError with the server's words for a refusal."""
        connection = http.client.HTTPConnection("127.0.0.1", self.ports["control"], timeout=20)
        with contextlib.closing(connection):
            connection.request(method, path, None if body is None else json.dumps(body))
            answer = connection.getresponse()
            data = answer.read()
        if answer.status != 200:
            raise ValueError(f"{method} {path}: {answer.status} {data.decode(errors='replace')}")
        return json.loads(data) if data.strip() else None

    def rules(self, *rules):
        self.command("PUT", "/behaviour", list(rules))

    def restore(self):
        """The site, its caller and its clock as they were when the server started."""
        self.command("DELETE", "/site")

    def prepare(self, rules=None):
        """Everything as it was when the server started, but for these rules."""
        self.rules(*rules or [])
        self.restore()
        self.command("DELETE", "/hdfs")
        self.command("DELETE", "/log")

    def log(self):
        return self.command("GET", "/log")

    def log_of(self, count):
        """The log once it has `count` records; what it has after LOG_SECONDS if it never does.

        For requests whose client does not wait for the answer: it may end before the server has read them."""
        deadline = time.monotonic() + LOG_SECONDS
        while len(log := self.log()) < count and time.monotonic() < deadline:
            time.sleep(0.02)
        return log


class StandIn(Control):
    """A server of our own, from here to stop(). Its files go into `folder`, what it prints to `output`."""

    def __init__(self, binary, certificates, folder, *options, output=None):
        folder = pathlib.Path(folder)
        self.log_file = folder / "requests.jsonl"
        ready = folder / "ready.json"
        ready.unlink(missing_ok=True)
        self.process = subprocess.Popen(
            [binary, "--certs", certificates, "--log", self.log_file, "--ready", ready, *options],
            stdin=subprocess.DEVNULL, stdout=output, stderr=output)
        deadline = time.monotonic() + START_SECONDS
        while not ready.exists():
            if self.process.poll() is not None or time.monotonic() > deadline:
                self.process.kill()
                self.process.wait()
                raise RuntimeError("the stand-in server does not start")
            time.sleep(0.01)
        super().__init__(json.loads(ready.read_text(encoding="ascii")))

    def stop(self):
        """Its exit code. One that does not end on SIGTERM is killed, and subprocess.TimeoutExpired raised."""
        self.process.terminate()
        try:
            return self.process.wait(timeout=STOP_SECONDS)
        except subprocess.TimeoutExpired:
            self.process.kill()
            self.process.wait()
            raise
