"""What is read, recorded and answered: the log, HTTP itself, proxy requests."""

import hashlib
import http.client
import json
import os
import time

from support import CALL, NAMESPACE, StandInTest, read_answer, read_head, status_of


class LogTest(StandInTest):
    def test_request_is_logged_byte_for_byte(self):
        body = bytes(range(256))
        head = (
            b"PUT /a%20b?x=\xe9 HTTP/1.1\r\nhOST:  Docs.Example.Test:81 \r\n"
            b"X-Odd:\t\x80\xff \"q\\\r\n"
            b"Content-Length: 256\r\nConnection: close\r\n\r\n"
        )
        self.exchange(head + body)
        (record,) = self.server.log()
        self.assertEqual(record["head"].encode("latin-1"), head)
        self.assertEqual(record["body"].encode("latin-1"), body)
        self.assertEqual(record["method"], "PUT")
        self.assertEqual(record["target"].encode("latin-1"), b"/a%20b?x=\xe9")
        self.assertEqual(record["host"], "docs.example.test")
        self.assertEqual(record["body_length"], 256)
        self.assertEqual((record["tls"], record["proxy"]), (False, False))
        self.assertEqual(record["connect_host"], "")

    def test_file_has_the_request_before_the_answer_comes(self):
        connection = self.open()
        connection.sendall(b"GET /echo HTTP/1.1\r\nHost: a\r\n\r\n")
        connection.recv(1)
        with open(self.server.log_file, encoding="ascii") as file:
            lines = file.readlines()
        self.assertEqual(len(lines), 1)
        self.assertEqual(json.loads(lines[0]), self.server.log()[0])

    def test_large_body_is_hashed(self):
        body = os.urandom(64 * 1024 + 1)
        self.request("PUT", "/sink", body)
        (record,) = self.server.log()
        self.assertNotIn("body", record)
        self.assertEqual(record["body_length"], len(body))
        self.assertEqual(record["body_sha256"], hashlib.sha256(body).hexdigest())

    def test_body_at_the_limit_is_shown(self):
        body = os.urandom(64 * 1024)
        for path in ("/sink", "/echo"):
            self.request("PUT", path, body)
        for record in self.server.log():
            self.assertEqual(record["body"].encode("latin-1"), body)

    def test_large_chunked_body_is_hashed(self):
        pieces = [os.urandom(50_000) for _ in range(3)]
        connection = http.client.HTTPConnection("127.0.0.1", self.server.http, timeout=10)
        self.addCleanup(connection.close)
        connection.request("PUT", "/sink", iter(pieces), {}, encode_chunked=True)
        self.assertEqual(json.loads(connection.getresponse().read()), {"bytes": 150_000})
        (record,) = self.server.log()
        self.assertEqual(record["body_sha256"], hashlib.sha256(b"".join(pieces)).hexdigest())
        self.assertEqual(record["chunks"], [50_000] * 3)
        self.assertNotIn("body", record)

    def test_chunked_body(self):
        self.exchange(
            b"POST /echo HTTP/1.1\r\nHost: a\r\nTransfer-Encoding: chunked\r\n"
            b"Connection: close\r\n\r\n"
            b"3\r\nabc\r\nA;x=y\r\n0123456789\r\n0\r\nTrailer: 1\r\n\r\n"
        )
        (record,) = self.server.log()
        self.assertEqual(record["body"], "abc0123456789")
        self.assertEqual(record["chunks"], [3, 10])

    def test_since_and_clear(self):
        for _ in range(3):
            self.get()
        numbers = [record["n"] for record in self.server.log()]
        self.assertEqual(numbers, list(range(numbers[0], numbers[0] + 3)))
        later = self.server.command("GET", f"/log?since={numbers[1]}")
        self.assertEqual([record["n"] for record in later], numbers[2:])
        self.server.command("DELETE", "/log")
        self.assertEqual(self.server.log(), [])
        self.assertEqual(os.path.getsize(self.server.log_file), 0)
        self.get()
        self.assertEqual(self.server.log()[0]["n"], numbers[2] + 1)

    def test_connections_are_told_apart(self):
        connection = self.open()
        for _ in range(2):
            connection.sendall(b"GET /echo HTTP/1.1\r\nHost: a\r\n\r\n")
            read_answer(connection)
        self.get()
        first, second, third = [record["connection"] for record in self.server.log()]
        self.assertEqual(first, second)
        self.assertNotEqual(first, third)

    def test_recording_off_counts_only(self):
        before = self.server.command("GET", "/stats")["requests"]
        self.server.command("PUT", "/recording", {"on": False})
        self.get()
        self.assertEqual(self.server.log(), [])
        self.assertEqual(self.server.command("GET", "/stats")["requests"], before + 1)

    def test_malformed_head_is_recorded(self):
        head = b"GET /echo HTTP/1.1\r\nHost: a\r\nA: b\nC: d\r\n\r\n"
        self.assertEqual(status_of(self.exchange(head)), 400)
        self.assertEqual(self.server.log()[0]["head"].encode("latin-1"), head)


class HttpTest(StandInTest):
    def test_keep_alive_and_pipelining(self):
        connection = self.open()
        connection.sendall(b"GET /bytes/3 HTTP/1.1\r\nHost: a\r\n\r\n" * 3)
        for _ in range(3):
            self.assertEqual(read_answer(connection)[1], b"\0\1\2")

    def test_http_10_closes(self):
        answer = self.exchange(b"GET /bytes/1 HTTP/1.0\r\n\r\n")
        self.assertEqual(status_of(answer), 200)

    def test_head_has_no_body(self):
        answer = self.get("/bytes/1000", method="HEAD")
        head, body = answer.split(b"\r\n\r\n")
        self.assertIn(b"Content-Length: 1000", head)
        self.assertEqual(body, b"")

    def test_expect_100(self):
        connection = self.open()
        connection.sendall(
            b"PUT /sink HTTP/1.1\r\nHost: a\r\nExpect: 100-continue\r\nContent-Length: 3\r\n\r\n"
        )
        self.assertEqual(read_head(connection), b"HTTP/1.1 100 Continue\r\n\r\n")
        connection.sendall(b"abc")
        self.assertEqual(read_answer(connection)[1], b'{"bytes":3}')

    def test_bytes_have_the_pattern(self):
        for size in (0, 1, 251, 252, 257_024, 1_000_003):
            expected = (bytes(range(251)) * (size // 251 + 1))[:size]
            for path in ("/bytes/", "/chunked/"):
                answer, body = self.request("GET", f"{path}{size}")
                self.assertTrue(body == expected, f"{path}{size}")
                self.assertEqual(answer.getheader("Transfer-Encoding") is None, path == "/bytes/")

    def test_echo(self):
        request = (
            b"POST /echo HTTP/1.1\r\nHost: a\r\nX: y\r\nContent-Length: 2\r\n"
            b"Connection: close\r\n\r\n\0z"
        )
        answer = self.exchange(request)
        self.assertEqual(answer.split(b"\r\n\r\n", 1)[1], request)

    def test_refusals(self):
        cases = [
            (b"GET /echo HTTP/1.1\nHost: a\n\n", "bare line feeds"),
            (b"GET  /echo HTTP/1.1\r\nHost: a\r\n\r\n", "two blanks"),
            (b"GET /e cho HTTP/1.1\r\nHost: a\r\n\r\n", "a blank in the target"),
            (b"GET /echo HTTP/3.0\r\nHost: a\r\n\r\n", "version"),
            (b"GET /echo HTTP/1.1\r\nHost : a\r\n\r\n", "blank before colon"),
            (b"GET /echo HTTP/1.1\r\nno colon\r\n\r\n", "no colon"),
            (b"\x16\x03\x01\x02\x00\x01\x00", "a TLS greeting"),
            (b"PUT /sink HTTP/1.1\r\nContent-Length: 1x\r\n\r\na", "length"),
            (
                b"PUT /sink HTTP/1.1\r\nContent-Length: 1\r\nContent-Length: 2\r\n\r\nab",
                "two lengths",
            ),
            (
                b"PUT /sink HTTP/1.1\r\nContent-Length: 1\r\nTransfer-Encoding: chunked\r\n\r\n"
                b"0\r\n\r\n",
                "length and chunks",
            ),
            (b"PUT /sink HTTP/1.1\r\nTransfer-Encoding: chunked\r\n\r\nxyz\r\n", "chunk size"),
            (b"PUT /sink HTTP/1.1\r\nTransfer-Encoding: chunked\r\n\r\n1\r\nabc\r\n", "chunk end"),
        ]
        for request, why in cases:
            with self.subTest(why):
                self.assertEqual(status_of(self.exchange(request)), 400)

    def test_too_long(self):
        answer = self.exchange(b"GET /" + b"a" * 300_000 + b" HTTP/1.1\r\nHost: a\r\n\r\n")
        self.assertEqual(status_of(answer), 431)
        answer = self.exchange(b"POST /echo HTTP/1.1\r\nContent-Length: 300000000\r\n\r\n")
        self.assertEqual(status_of(answer), 413)

    def test_unknown_path(self):
        answer, body = self.request("GET", "/nothing/here")
        self.assertEqual(answer.status, 404)
        self.assertEqual(answer.getheader("Content-Type"), "text/html; charset=utf-8")
        self.assertIn(b"<html>", body)

    def test_many_connections_at_once(self):
        connections = [self.open() for _ in range(100)]
        deadline = time.monotonic() + 5
        while self.server.command("GET", "/stats")["open"] < 100:
            self.assertLess(time.monotonic(), deadline)
        for connection in connections:
            connection.sendall(b"GET /bytes/4 HTTP/1.1\r\nHost: a\r\n\r\n")
        for connection in connections:
            self.assertEqual(read_answer(connection)[1], b"\0\1\2\3")


class ProxyTest(StandInTest):
    def test_absolute_form(self):
        answer = self.exchange(
            b"POST http://Docs.Example.Test/_vti_bin/lists.asmx HTTP/1.1\r\nHost: other\r\n"
            b"Content-Type: text/xml; charset=utf-8\r\nSOAPAction: " + NAMESPACE.encode()
            + b"GetListCollection\r\nContent-Length: %d\r\nConnection: close\r\n\r\n" % len(CALL)
            + CALL
        )
        self.assertEqual(status_of(answer), 200)
        (record,) = self.server.log()
        self.assertEqual(record["host"], "docs.example.test")
        self.assertEqual(record["target"], "http://Docs.Example.Test/_vti_bin/lists.asmx")
        self.assertTrue(record["proxy"])

    def test_absolute_form_without_path(self):
        for target in (b"http://a.test", b"http://a.test?x"):
            self.assertEqual(status_of(self.exchange(b"GET " + target + b" HTTP/1.0\r\n\r\n")), 404)
        self.assertEqual([record["host"] for record in self.server.log()], ["a.test"] * 2)

    def test_environment_proxy_serves_http_and_https(self):
        environment = ["-x", self.proxy()]
        self.assertEqual(self.curl(*environment, "http://docs.example.test/echo"), 200)
        self.assertEqual(self.curl(*environment, "https://docs.example.test/echo"), 200)
        plain, connect, inner = self.server.log()
        self.assertEqual((plain["method"], plain["proxy"]), ("GET", True))
        self.assertEqual(connect["method"], "CONNECT")
        self.assertEqual(connect["target"], "docs.example.test:443")
        self.assertEqual((inner["tls"], inner["proxy"]), (True, True))
        self.assertEqual(inner["connect_host"], "docs.example.test")
        self.assertEqual(connect["connection"], inner["connection"])
        self.assertEqual(inner["target"], "/echo")

    def test_tunnel_without_tls(self):
        connection = self.open()
        connection.sendall(b"CONNECT docs.example.test:80 HTTP/1.1\r\nHost: a\r\n\r\n")
        self.assertEqual(status_of(read_head(connection)), 200)
        connection.sendall(b"GET /bytes/2 HTTP/1.1\r\nHost: docs.example.test\r\n\r\n")
        self.assertEqual(read_answer(connection)[1], b"\0\1")
        self.assertEqual(self.server.log()[1]["connect_host"], "docs.example.test")

    def test_no_tunnel_in_a_tunnel(self):
        connection = self.open()
        for expected in (200, 400):
            connection.sendall(b"CONNECT a.test:80 HTTP/1.1\r\nHost: a.test:80\r\n\r\n")
            self.assertEqual(status_of(read_head(connection)), expected)
