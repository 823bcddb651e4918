"""The control port, and the life of the process."""

import os
import socket
import subprocess
import tempfile
import time
import unittest

import support
from support import Server, StandInTest, make_certificates, read_all, status_of


class ControlTest(StandInTest):
    def test_stats(self):
        before = self.server.command("GET", "/stats")
        for _ in range(3):
            self.get()
        after = self.server.command("GET", "/stats")
        self.assertEqual(after["connections"] - before["connections"], 3)
        self.assertEqual(after["requests"] - before["requests"], 3)

    def test_unknown_command(self):
        with self.assertRaisesRegex(ValueError, "no such command"):
            self.server.command("GET", "/nothing")

    def test_control_is_not_recorded(self):
        self.server.rules({"do": {"status": 500}})
        self.server.command("GET", "/stats")
        self.assertEqual(self.server.log(), [])


class ProcessTest(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.addCleanup(self.folder.cleanup)

    def test_ends_on_command_with_clients_connected(self):
        server = Server(self.folder.name)
        self.assertEqual(server.pid, server.process.pid)
        server.rules({"do": {"hang": {"ms": 60_000}}})
        hanging = socket.create_connection(("127.0.0.1", server.http))
        hanging.sendall(b"GET / HTTP/1.1\r\nHost: a\r\n\r\n")
        idle = socket.create_connection(("127.0.0.1", server.https))
        while not server.log():
            time.sleep(0.01)
        server.command("POST", "/stop")
        self.assertEqual(server.process.wait(timeout=5), 0)
        hanging.close()
        idle.close()

    def test_null_device_as_log(self):
        server = Server(self.folder.name, "--log", os.devnull)
        self.addCleanup(server.stop)
        with socket.create_connection(("127.0.0.1", server.http), timeout=10) as connection:
            connection.sendall(b"GET /bytes/1 HTTP/1.0\r\n\r\n")
            self.assertEqual(status_of(read_all(connection)), 200)
        server.command("DELETE", "/log")
        server.command("PUT", "/recording", {"on": True})
        self.assertEqual(server.log(), [])
        self.assertEqual(server.command("GET", "/stats")["requests"], 1)

    def test_ends_itself(self):
        server = Server(self.folder.name, "--max-seconds", "1")
        self.assertEqual(server.process.wait(timeout=5), 0)

    def test_ends_on_sigterm(self):
        self.assertEqual(Server(self.folder.name).stop(), 0)

    def test_listens_on_loopback_only(self):
        server = Server(self.folder.name)
        self.addCleanup(server.stop)
        with open(f"/proc/{server.pid}/net/tcp", encoding="ascii") as file:
            addresses = {line.split()[1] for line in file.readlines()[1:]}
        for port in (server.http, server.https, server.control):
            self.assertIn(f"0100007F:{port:04X}", addresses)
            self.assertNotIn(f"00000000:{port:04X}", addresses)

    def test_wrong_options(self):
        files = ["--certs", "a", "--log", "b", "--ready", "c"]
        for arguments in ([], ["--certs"], ["--odd", "1"], files + ["--max-seconds", "0"]):
            result = subprocess.run(
                [support.binary] + arguments, capture_output=True, text=True, check=False
            )
            self.assertEqual(result.returncode, 2)
            self.assertIn("usage: velandoc-standin --certs DIR", result.stderr)

    def test_missing_certificates(self):
        result = subprocess.run(
            [support.binary, "--certs", self.folder.name]
            + ["--log", self.folder.name + "/log", "--ready", self.folder.name + "/ready"],
            capture_output=True,
            text=True,
            check=False,
        )
        self.assertEqual(result.returncode, 1)
        self.assertIn("good.pem", result.stderr)

    def test_certificates_are_made_once(self):
        def times():
            with os.scandir(support.certificates) as entries:
                return {entry.name: entry.stat().st_mtime_ns for entry in entries}

        before = times()
        make_certificates()
        self.assertEqual(times(), before)
