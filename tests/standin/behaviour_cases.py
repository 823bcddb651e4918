"""Rules: every answer and every disturbance."""

import base64
import socket
import time

from support import Server, StandInTest, read_all, read_answer, status_of


class BehaviourTest(StandInTest):
    def test_respond(self):
        headers = [["X-A", "1"], ["x-a", "2"]]
        respond = {"status": 234, "reason": "Odd Words", "headers": headers, "body": "grün"}
        self.server.rules({"do": {"respond": respond}})
        expected = "HTTP/1.1 234 Odd Words\r\nX-A: 1\r\nx-a: 2\r\nContent-Length: 5\r\n\r\ngrün"
        self.assertEqual(self.get(), expected.encode())

    def test_respond_framings(self):
        body = bytes(range(256))
        text = base64.b64encode(body).decode()
        for framing in ("length", "chunked", "close"):
            respond = {"body_base64": text, "framing": framing, "chunk_size": 100}
            self.server.rules({"do": {"respond": respond}})
            answer, received = self.request("GET", "/x")
            self.assertEqual(received, body)
            names = {name.lower() for name, _ in answer.getheaders()}
            self.assertEqual("content-length" in names, framing == "length")
            self.assertEqual("transfer-encoding" in names, framing == "chunked")

    def test_respond_fill(self):
        respond = {"body": "<", "body_fill": {"byte": 97, "count": 1_000_000}}
        self.server.rules({"do": {"respond": respond}})
        self.assertTrue(self.request("GET", "/x")[1] == b"<" + b"a" * 1_000_000)

    def test_respond_early_leaves_the_body_unread(self):
        self.server.rules({"do": {"respond": {"status": 403, "early": True}}})
        connection = self.open()
        connection.sendall(
            b"PUT /x HTTP/1.1\r\nContent-Length: 1000000\r\nExpect: 100-continue\r\n\r\n"
        )
        self.assertEqual(status_of(read_all(connection)), 403)

    def test_status(self):
        self.server.rules({"do": {"status": 503}})
        self.assertEqual(status_of(self.get()), 503)

    def test_fault(self):
        self.server.rules({"do": {"fault": {"status": 200, "text": "a < b"}}})
        answer, body = self.soap()
        self.assertEqual(answer.status, 200)
        self.assertIn(b"<faultcode>soap:Server</faultcode>", body)
        self.assertIn(b"<faultstring>a &lt; b</faultstring>", body)

    def test_redirect(self):
        self.server.rules({"times": 1, "do": {"redirect": {"status": 307, "location": "/echo"}}})
        answer = self.get("/x")
        self.assertEqual(status_of(answer), 307)
        self.assertIn(b"\r\nLocation: /echo\r\n", answer)

    def test_raw(self):
        for close in (True, False):
            raw = b"HTTP/1.1 200 OK\nbare: line feeds\n\n"
            text = base64.b64encode(raw).decode()
            self.server.rules({"do": {"raw": {"base64": text, "close": close}}})
            connection = self.open()
            for _ in range(1 if close else 2):
                connection.sendall(b"GET /x HTTP/1.1\r\nHost: a\r\n\r\n")
                self.assertEqual(connection.recv(len(raw), socket.MSG_WAITALL), raw)
            if close:
                self.assertEqual(connection.recv(1), b"")

    def test_garbage(self):
        self.server.rules({"do": {"garbage": {}}})
        answer = self.get()
        self.assertEqual(len(answer), 64)
        self.assertFalse(answer.startswith(b"HTTP"))

    def test_matching(self):
        self.server.rules(
            {
                "match": {"host": "LOCALHOST", "path": "/a?x=1", "method": "PUT"},
                "do": {"status": 201},
            },
            {"match": {"path": "/a"}, "do": {"status": 202}},
            {"match": {"head_contains": "X-Special: yes"}, "do": {"status": 203}},
            {"match": {"tls": True}, "do": {"status": 204}},
        )
        self.assertEqual(status_of(self.get("/a?x=12", method="PUT")), 201)
        self.assertEqual(status_of(self.get("/a?x=12")), 202)
        self.assertEqual(status_of(self.get("/ab")), 202)
        self.assertEqual(status_of(self.get("/b", headers="X-Special: yes\r\n")), 203)
        self.assertEqual(status_of(self.get("/b")), 404)
        self.assertEqual(self.curl(f"https://localhost:{self.server.https}/b"), 204)
        self.assertEqual(self.curl("-x", self.proxy(), "https://docs.example.test/b"), 204)

    def test_rules_concern_proxied_requests(self):
        self.server.rules({"match": {"host": "docs.example.test"}, "do": {"status": 599}})
        for url in ("http://docs.example.test/echo", "https://docs.example.test/echo"):
            self.assertEqual(self.curl("-x", self.proxy(), url), 599)

    def test_connect_can_be_refused(self):
        self.server.rules({"match": {"method": "CONNECT"}, "do": {"status": 502}})
        url = "https://docs.example.test/echo"
        self.assertEqual(self.curl("-x", self.proxy(), url, ok=False), 56)

    def test_times_and_skip(self):
        self.server.rules({"skip": 1, "times": 2, "do": {"status": 503}})
        self.assertEqual([status_of(self.get()) for _ in range(4)], [200, 503, 503, 200])

    def test_append_and_clear(self):
        self.server.rules({"times": 1, "do": {"status": 501}})
        self.server.command("POST", "/behaviour", {"do": {"status": 502}})
        self.assertEqual([status_of(self.get()) for _ in range(3)], [501, 502, 502])
        self.server.command("DELETE", "/behaviour")
        self.assertEqual(status_of(self.get()), 200)

    def test_delay(self):
        self.server.rules({"do": {"delay": {"ms": 300}}})
        start = time.monotonic()
        self.assertEqual(status_of(self.get()), 200)
        self.assertGreaterEqual(time.monotonic() - start, 0.3)

    def test_delays_add_to_the_next_rule(self):
        self.server.rules(
            {"do": {"delay": {"ms": 1}, "continue100": True}}, {"do": {"status": 418}}
        )
        self.assertEqual(self.get().split(b"\r\n\r\n", 1)[1][:12], b"HTTP/1.1 418")

    def test_drip(self):
        self.server.rules({"do": {"drip": {"bytes": 20, "interval_ms": 20}}})
        connection = self.open()
        connection.sendall(b"GET /bytes/200 HTTP/1.1\r\nHost: a\r\nConnection: close\r\n\r\n")
        start = time.monotonic()
        sizes = []
        while part := connection.recv(65536):
            sizes.append(len(part))
        self.assertGreaterEqual(time.monotonic() - start, 0.2)
        self.assertGreater(len(sizes), 5)
        self.assertGreater(sum(sizes), 200)

    def test_continue100(self):
        self.server.rules({"do": {"continue100": {"count": 2}}})
        answer = self.get("/bytes/1")
        expected = b"HTTP/1.1 100 Continue\r\n\r\n" * 2 + b"HTTP/1.1 200 OK\r\n"
        self.assertEqual(answer[: len(expected)], expected)
        self.server.rules({"do": {"continue100": {"status": 103}}})
        self.assertEqual(status_of(self.get("/bytes/1")), 103)

    def test_truncate(self):
        self.server.rules({"do": {"truncate": {"length": 1000, "sent": 10}}})
        head, body = self.get().split(b"\r\n\r\n", 1)
        self.assertIn(b"Content-Length: 1000", head)
        self.assertNotIn(b"Connection: close", head)
        self.assertEqual(body, bytes(range(10)))
        self.server.rules({"do": {"truncate": {"length": 9, "sent": 3, "body": "<abcdef/>"}}})
        self.assertEqual(self.get().split(b"\r\n\r\n", 1)[1], b"<ab")

    def test_close(self):
        self.server.rules({"do": {"close": {}}})
        self.assertEqual(self.get(), b"")
        self.server.rules({"do": {"close": {"at": "head"}}})
        self.assertTrue(self.get("/bytes/9").endswith(b"Content-Length: 9\r\n\r\n"))
        self.server.rules({"do": {"close": {"at": "head", "after_bytes": 5}}})
        self.assertEqual(self.get(), b"HTTP/")
        self.server.rules({"do": {"close": {"at": "body", "after_bytes": 5}}})
        self.assertTrue(self.get("/bytes/9").endswith(b"\r\n\r\n\0\1\2\3\4"))
        self.assertTrue(self.get("/chunked/9").endswith(b"\r\n\r\n9\r\n\0\1"))
        self.server.rules({"do": {"close": {"at": "accept"}}})
        self.assertEqual(self.open().recv(1), b"")
        self.assertEqual(len(self.server.log()), 5)

    def test_close_behind_the_end_of_the_body_never_happens(self):
        self.server.rules({"do": {"close": {"at": "body", "after_bytes": 50}}})
        connection = self.open()
        for _ in range(2):
            connection.sendall(b"GET /bytes/9 HTTP/1.1\r\nHost: a\r\n\r\n")
            self.assertEqual(len(read_answer(connection)[1]), 9)

    def test_reset(self):
        for at in ("request", "head", "body"):
            with self.subTest(at):
                self.server.rules({"do": {"reset": {"at": at, "after_bytes": 0}}})
                with self.assertRaises(ConnectionResetError):
                    self.get("/bytes/10000", method="GET")

    def test_reset_at_accept(self):
        self.server.rules({"times": 1, "do": {"reset": {"at": "accept"}}})
        with self.assertRaises(ConnectionResetError):
            self.open().recv(1)
        self.assertEqual(status_of(self.get()), 200)

    def test_reset_at_accept_of_tls_only(self):
        self.server.rules({"match": {"tls": True}, "do": {"reset": {"at": "accept"}}})
        with self.assertRaises(ConnectionResetError):
            self.open(self.server.https).recv(1)
        self.assertEqual(status_of(self.get()), 200)

    def test_reset_within_an_upload(self):
        self.server.rules({"do": {"reset": {"at": "request", "after_bytes": 100_000}}})
        connection = self.open()
        connection.sendall(b"PUT /sink HTTP/1.1\r\nHost: a\r\nContent-Length: 100000000\r\n\r\n")
        with self.assertRaises((ConnectionResetError, BrokenPipeError)):
            for _ in range(1000):
                connection.sendall(bytes(100_000))
        (record,) = self.server.log()
        self.assertEqual(record["body_length"], 100_000)

    def test_hang(self):
        self.server.rules({"do": {"hang": {"ms": 300}}})
        start = time.monotonic()
        self.assertEqual(self.get(), b"")
        self.assertGreaterEqual(time.monotonic() - start, 0.3)

    def test_mistakes_are_refused_and_change_nothing(self):
        self.server.rules({"do": {"status": 418}})
        cases = [
            ([{"do": {"respnd": {}}}], "respnd"),
            ([{"do": {"respond": {"statsu": 1}}}], "statsu"),
            ([{"mach": {}, "do": {"status": 1}}], "mach"),
            ([{"match": {"hst": ""}, "do": {"status": 1}}], "hst"),
            ([{"do": {}}], "empty"),
            ([{}], "do"),
            ([{"do": {"reset": {"at": "noon"}}}], "at is"),
            ([{"do": {"raw": {"base64": "%"}}}], "Base64"),
            ([{"do": {"auth": {"scheme": "magic"}}}], "scheme is"),
            ([{"do": {"status": 200, "redirect": {"location": "/"}}}], "more than one"),
            ([{"do": {"reset": {}, "close": {}}}], "more than one"),
            ([{"match": {"path": "/"}, "do": {"reset": {"at": "accept"}}}], "accepted"),
            ([{"times": -1, "do": {"status": 200}}], "from 0 on"),
            (3, "array"),
        ]
        for rules, message in cases:
            with self.subTest(rules), self.assertRaisesRegex(ValueError, message):
                self.server.command("PUT", "/behaviour", rules)
        self.assertEqual(status_of(self.get()), 418)
