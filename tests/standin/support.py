"""Starts the server and talks to it."""

import http.client
import os
import socket
import subprocess
import sys
import tempfile
import unittest

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
sys.path.insert(0, os.path.join(ROOT, "tests", "support"))
from stand_in import StandIn  # noqa: E402  (the path stands one line above)

NAMESPACE = "http://schemas.microsoft.com/sharepoint/soap/"
CALL = (
    '<soap:Envelope xmlns:soap="http://schemas.xmlsoap.org/soap/envelope/"><soap:Body>'
    f'<GetListCollection xmlns="{NAMESPACE}"/></soap:Body></soap:Envelope>'
).encode()
SOAP_HEADERS = {
    "Content-Type": "text/xml; charset=utf-8",
    "SOAPAction": NAMESPACE + "GetListCollection",
}

binary = None
certificates = None


class Server(StandIn):
    """One running server."""

    def __init__(self, folder, *arguments):
        super().__init__(binary, certificates, folder, *arguments)
        self.http, self.https, self.control = (self.ports[name] for name in ("http", "https", "control"))
        self.pid = self.ports["pid"]


class StandInTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.TemporaryDirectory()
        cls.server = Server(cls.folder.name, "--max-seconds", "600")

    @classmethod
    def tearDownClass(cls):
        status = cls.server.stop()
        cls.folder.cleanup()
        if status != 0:
            raise AssertionError(f"the server ended with {status}")

    def setUp(self):
        self.server.rules()
        self.server.command("PUT", "/certificate", {"kind": None})
        self.server.command("PUT", "/recording", {"on": True})
        self.server.command("DELETE", "/log")

    def open(self, port=None):
        connection = socket.create_connection(("127.0.0.1", port or self.server.http), timeout=10)
        self.addCleanup(connection.close)
        return connection

    def exchange(self, request, port=None):
        """Sends bytes and reads up to the end of the stream."""
        connection = self.open(port)
        connection.sendall(request)
        return read_all(connection)

    def get(self, path="/echo", headers="", method="GET", port=None):
        """One answer with its end of stream."""
        head = f"{method} {path} HTTP/1.1\r\nHost: localhost\r\n{headers}Connection: close\r\n\r\n"
        return self.exchange(head.encode("latin-1"), port)

    def request(self, method, path, body=None, headers=None):
        connection = http.client.HTTPConnection("127.0.0.1", self.server.http, timeout=10)
        self.addCleanup(connection.close)
        connection.request(method, path, body, headers or {})
        answer = connection.getresponse()
        return answer, answer.read()

    def soap(self, path="/_vti_bin/lists.asmx", body=CALL, **changes):
        headers = dict(SOAP_HEADERS)
        for name, value in changes.items():
            headers[name.replace("_", "-")] = value
        return self.request("POST", path, body, {n: v for n, v in headers.items() if v is not None})

    def curl(self, *arguments, ok=True, output=os.devnull):
        """Status of the last answer, whose body goes to the file `output`, or curl's exit code."""
        result = subprocess.run(
            ["curl", "-sS", "--noproxy", "", "-m", "20", "-o", output, "-w", "%{http_code}"]
            + ["--cacert", os.path.join(certificates, "ca.pem")]
            + list(arguments),
            capture_output=True,
            text=True,
            env={"PATH": os.environ["PATH"], "HOME": self.folder.name},
            check=False,
        )
        if ok:
            self.assertEqual(result.returncode, 0, result.stderr)
            return int(result.stdout[-3:])
        return result.returncode

    def http_url(self, path="/echo"):
        return f"http://127.0.0.1:{self.server.http}{path}"

    def proxy(self):
        return f"http://127.0.0.1:{self.server.http}"


def read_all(connection):
    parts = []
    while True:
        part = connection.recv(65536)
        if not part:
            return b"".join(parts)
        parts.append(part)


def read_head(connection):
    """Up to and with the empty line."""
    head = b""
    while not head.endswith(b"\r\n\r\n"):
        byte = connection.recv(1)
        if not byte:
            return head
        head += byte
    return head


def read_answer(connection):
    """Head and body of an answer with a length."""
    head = read_head(connection)
    length = 0
    for line in head.split(b"\r\n"):
        if line.lower().startswith(b"content-length:"):
            length = int(line.split(b":")[1])
    body = b""
    while len(body) < length:
        part = connection.recv(length - len(body))
        if not part:
            break
        body += part
    return head, body


def status_of(answer):
    return int(answer.split(b" ", 2)[1])


def make_certificates():
    subprocess.run([os.path.join(ROOT, "standin", "make-certificates"), certificates], check=True)
