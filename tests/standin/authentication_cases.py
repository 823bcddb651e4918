"""Basic, Digest, NTLM and Negotiate, asked for by the server and by the proxy."""

import base64
import hashlib
import os

from support import StandInTest, read_answer, status_of


class AuthenticationTest(StandInTest):
    # The NTLM cases do with ASCII: curl widens the bytes of a password one by one.
    def demand(self, scheme, **more):
        demand = {"scheme": scheme, "user": "bob", "password": "pä ss:1", **more}
        self.server.rules({"do": {"auth": demand}})

    def test_challenges(self):
        self.demand(["negotiate", "ntlm", "digest", "basic"])
        head = self.get().split(b"\r\n\r\n")[0].split(b"\r\n")
        self.assertEqual(head[0], b"HTTP/1.1 401 Unauthorized")
        name = b"WWW-Authenticate: "
        offers = [line[len(name) :] for line in head if line.startswith(name)]
        self.assertEqual(offers[:2], [b"Negotiate", b"NTLM"])
        self.assertRegex(
            offers[2],
            rb'^Digest realm="stand-in", nonce="[0-9a-f]{48}", qop="auth", algorithm=MD5$',
        )
        self.assertEqual(offers[3], b'Basic realm="stand-in"')

    def test_basic(self):
        self.demand("basic")
        self.assertEqual(self.curl("-u", "bob:pä ss:1", "--basic", self.http_url()), 200)
        self.assertEqual(self.curl("-u", "bob:other", "--basic", self.http_url()), 401)
        self.assertEqual(self.curl(self.http_url()), 401)

    def test_digest(self):
        self.demand("digest", realm="a realm")
        url = self.http_url("/echo?a=b")
        self.assertEqual(self.curl("-u", "bob:pä ss:1", "--digest", url), 200)
        self.assertEqual(self.curl("-u", "bob:other", "--digest", self.http_url()), 401)
        self.assertEqual(self.curl("-u", "eve:pä ss:1", "--digest", self.http_url()), 401)

    def digest_header(self, nonce, uri="/echo", response=None):
        def md5(text):
            return hashlib.md5(text.encode()).hexdigest()

        secret, asked = md5("bob:stand-in:pä ss:1"), md5("GET:/echo")
        right = md5(f"{secret}:{nonce}:00000001:c:auth:{asked}")
        return (
            f'Authorization: Digest username="bob", realm="stand-in", nonce="{nonce}", '
            f'uri="{uri}", qop=auth, nc=00000001, cnonce="c", response="{response or right}"\r\n'
        )

    def test_digest_details(self):
        self.demand("digest")
        challenge = self.get().decode("latin-1")
        nonce = challenge.split('nonce="')[1].split('"')[0]
        self.assertEqual(status_of(self.get(headers=self.digest_header(nonce))), 200)
        self.assertEqual(status_of(self.get("/other", headers=self.digest_header(nonce))), 401)
        wrong = self.digest_header(nonce, response="0" * 32)
        self.assertEqual(status_of(self.get(headers=wrong)), 401)
        stale = self.get(headers=self.digest_header("0" * 48))
        self.assertEqual(status_of(stale), 401)
        self.assertIn(b", stale=true\r\n", stale)

    def test_ntlm(self):
        self.demand("ntlm", password="pa ss:1")
        self.assertEqual(self.curl("-u", "bob:pa ss:1", "--ntlm", self.http_url()), 200)
        records = self.server.log()
        self.assertEqual(len(records), 2)
        self.assertEqual(len({record["connection"] for record in records}), 1)
        self.assertEqual(self.curl("-u", "EXAMPLE\\BOB:pa ss:1", "--ntlm", self.http_url()), 200)
        self.assertEqual(self.curl("-u", "bob:other", "--ntlm", self.http_url()), 401)
        self.assertEqual(self.curl("-u", "eve:pa ss:1", "--ntlm", self.http_url()), 401)

    def test_ntlm_belongs_to_the_connection(self):
        self.demand("ntlm", password="pa ss:1")
        arguments = ["-u", "bob:pa ss:1", "--ntlm", "-o", os.devnull]
        self.curl(*arguments, self.http_url(), self.http_url("/bytes/3"))
        exchange = self.server.log()
        self.assertEqual(len(exchange), 3)
        self.assertEqual(len({record["connection"] for record in exchange}), 1)
        self.assertNotIn("Authorization", exchange[2]["head"])
        self.assertEqual(status_of(self.get()), 401)

    def test_ntlm_over_tls_and_with_a_body(self):
        self.demand("ntlm", password="pa ss:1")
        url = f"https://localhost:{self.server.https}/sink"
        self.assertEqual(self.curl("-u", "bob:pa ss:1", "--ntlm", "-d", "a body", url), 200)
        self.assertEqual(self.server.log()[-1]["body"], "a body")

    def test_ntlm_rejects_a_proof_without_a_challenge(self):
        self.demand("ntlm", password="pa ss:1")
        message = base64.b64encode(b"NTLMSSP\0\3\0\0\0" + bytes(60)).decode()
        self.assertEqual(status_of(self.get(headers=f"Authorization: NTLM {message}\r\n")), 401)

    def test_ntlm_survives_nonsense(self):
        self.demand("ntlm", password="pa ss:1")
        connection = self.open()
        start = b"NTLMSSP\0"
        cases = [start + b"\1\0\0\0", start + b"\3\0\0\0" + b"\xff" * 60, start + b"\3", b"x", b""]
        for message in cases:
            text = base64.b64encode(message)
            connection.sendall(
                b"GET /echo HTTP/1.1\r\nHost: a\r\nAuthorization: NTLM " + text + b"\r\n\r\n"
            )
            self.assertEqual(status_of(read_answer(connection)[0]), 401)

    def test_negotiate_only_challenges(self):
        self.demand("negotiate")
        self.assertEqual(status_of(self.get(headers="Authorization: Negotiate abcd\r\n")), 401)

    def test_curl_picks_from_several(self):
        self.demand(["ntlm", "basic"], password="pa ss:1")
        self.assertEqual(self.curl("-u", "bob:pa ss:1", "--anyauth", self.http_url()), 200)
        self.assertIn("Authorization: NTLM ", self.server.log()[-1]["head"])

    def test_proxy_schemes(self):
        for scheme in ("basic", "digest", "ntlm"):
            self.demand(scheme, proxy=True, password="pa ss:1")
            for url in ("http://docs.example.test/echo", "https://docs.example.test/echo"):
                with self.subTest(scheme + " " + url):
                    arguments = ["-x", self.proxy(), "--proxy-" + scheme]
                    self.assertEqual(self.curl(*arguments, "-U", "bob:pa ss:1", url), 200)
                    if url.startswith("https"):
                        self.assertEqual(self.curl(*arguments, "-U", "bob:no", url, ok=False), 56)
                    else:
                        self.assertEqual(self.curl(*arguments, "-U", "bob:no", url), 407)

    def test_proxy_demand_leaves_direct_requests_alone(self):
        self.demand("basic", proxy=True)
        self.assertEqual(status_of(self.get()), 200)

    def test_right_credentials_go_on_to_the_next_rule(self):
        self.server.rules(
            {"do": {"auth": {"scheme": "basic", "user": "u", "password": "p"}}},
            {"do": {"status": 418}},
        )
        self.assertEqual(self.curl(self.http_url()), 401)
        self.assertEqual(self.curl("-u", "u:p", self.http_url()), 418)
