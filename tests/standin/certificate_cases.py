"""Which certificate is shown to whom."""

import http.client
import os
import ssl
import subprocess

import support
from support import StandInTest, read_all, read_head, status_of


class CertificateTest(StandInTest):
    def problem(self, host, port, tunnel=None):
        """What ssl says about the certificate; an empty text when all is well."""
        connection = self.open(port)
        if tunnel:
            connection.sendall(f"CONNECT {tunnel}:443 HTTP/1.1\r\nHost: a\r\n\r\n".encode())
            self.assertEqual(status_of(read_head(connection)), 200)
        context = ssl.create_default_context(cafile=os.path.join(support.certificates, "ca.pem"))
        try:
            with context.wrap_socket(connection, server_hostname=host) as secure:
                secure.sendall(b"GET /bytes/1 HTTP/1.1\r\nHost: a\r\nConnection: close\r\n\r\n")
                return "" if read_all(secure).endswith(b"\0") else "no answer"
        except ssl.SSLCertVerificationError as error:
            return error.verify_message
        except ssl.SSLError as error:
            return error.reason

    MISTAKES = [
        ("good", ""),
        ("expired", "certificate has expired"),
        ("notyet", "certificate is not yet valid"),
        ("othername", "Hostname mismatch"),
        ("unknownca", "unable to get local issuer certificate"),
        ("selfsigned", "self-signed certificate"),
        ("allwrong", "unable to get local issuer certificate"),
        ("clientcert", "CERTIFICATE_REQUIRED"),
    ]

    def test_by_name(self):
        for kind, expected in self.MISTAKES[1:]:
            host = kind + ".example.test"
            with self.subTest(host):
                self.assertIn(expected, self.problem(host, self.server.https))
                self.assertIn(expected, self.problem(host, self.server.http, tunnel=host))

    def test_good_names(self):
        for host in ("localhost", "127.0.0.1", "docs.example.test"):
            self.assertEqual(self.problem(host, self.server.https), "")

    def test_name_of_the_tunnel_serves_without_sni(self):
        context = ssl.SSLContext(ssl.PROTOCOL_TLS_CLIENT)
        context.check_hostname = False
        context.load_verify_locations(os.path.join(support.certificates, "ca.pem"))
        connection = self.open()
        connection.sendall(b"CONNECT expired.example.test:443 HTTP/1.1\r\nHost: x\r\n\r\n")
        read_head(connection)
        with self.assertRaisesRegex(ssl.SSLCertVerificationError, "expired"):
            context.wrap_socket(connection)

    def test_forced(self):
        for kind, expected in self.MISTAKES:
            with self.subTest(kind):
                self.server.command("PUT", "/certificate", {"kind": kind})
                problem = self.problem("localhost", self.server.https)
                if expected:
                    self.assertIn(expected, problem)
                else:
                    self.assertEqual(problem, "")
        self.server.command("PUT", "/certificate", {"kind": None})
        self.assertEqual(self.problem("localhost", self.server.https), "")

    def test_all_wrong_has_all_mistakes(self):
        text = subprocess.run(
            ["openssl", "x509", "-in", os.path.join(support.certificates, "allwrong.pem"), "-noout"]
            + ["-issuer", "-enddate", "-ext", "subjectAltName"],
            capture_output=True, text=True, check=True,
        ).stdout
        self.assertIn("unknown authority", text)
        self.assertIn("2021", text)
        self.assertIn("DNS:wrong.invalid", text)
        self.assertNotIn("localhost", text)

    def test_client_certificate(self):
        context = ssl.create_default_context(cafile=os.path.join(support.certificates, "ca.pem"))
        context.load_cert_chain(
            os.path.join(support.certificates, "client.pem"),
            os.path.join(support.certificates, "client.key"),
        )
        connection = self.open(self.server.https)
        with context.wrap_socket(connection, server_hostname="clientcert.example.test") as secure:
            secure.sendall(b"GET /bytes/1 HTTP/1.1\r\nHost: a\r\nConnection: close\r\n\r\n")
            self.assertEqual(status_of(read_all(secure)), 200)

    def test_unknown_kind(self):
        with self.assertRaisesRegex(ValueError, "no such kind"):
            self.server.command("PUT", "/certificate", {"kind": "odd"})

    def test_large_answer_over_tls(self):
        context = ssl.create_default_context(cafile=os.path.join(support.certificates, "ca.pem"))
        connection = http.client.HTTPSConnection(
            "localhost", self.server.https, timeout=10, context=context
        )
        self.addCleanup(connection.close)
        for path in ("/bytes/5000000", "/chunked/5000000"):
            connection.request("GET", path)
            expected = (bytes(range(251)) * 19921)[:5000000]
            self.assertTrue(connection.getresponse().read() == expected, path)
