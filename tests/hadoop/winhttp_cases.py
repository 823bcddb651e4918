"""What is special to the form over WinHTTP, and what HDFS makes of it."""

import support
from support import E_FAIL, E_INVALIDARG, Case, Native, pattern, uploads


class WinHttp(Case):
    forms = ("winhttp",)

    def test_a_folder_is_never_made(self):
        # MKDIRS goes out by GET, which HDFS refuses; the client tells it by the value and the status alone.
        told = self.steps(("folder", self.path("a")), ("folder", self.path("b"), "750"), ("folder", self.path("c"), "999"))
        self.assertEqual([(step.get("value"), step["http"]) for step in told[:2]], [(False, 400)] * 2)
        self.assertEqual(told[2].get("error"), E_INVALIDARG)
        self.assertEqual(self.names(), [])

    def test_a_rename_is_told_to_have_happened_in_any_case(self):
        for name in ("f", "g"):
            support.running.ask("make", path=self.path(name), bytes=3)
        told = self.steps(("rename", self.path("f"), self.path("g")), ("rename", self.path("none"), self.path("h")),
                          ("rename", self.path("f"), self.path("h")))
        self.assertEqual([(step.get("value"), step["http"]) for step in told], [(True, 200)] * 3)
        self.assertEqual(self.names(), ["g", "h"])

    @uploads
    def test_parameters_that_stay_do_no_harm(self):
        content = self.file("up", b"x")
        told = self.steps(("upload", self.path("f"), content, "true", "640"), ("rename", self.path("f"), self.path("g")),
                          ("text", self.path("g")), ("upload", self.path("h"), content, "false", "600"),
                          ("delete", self.path("h")), ("download", self.path("g"), self.local / "down"),
                          ("folder", self.path("a")), ("upload", self.path("i"), content))
        self.went_well(*told)
        self.assertEqual((told[2]["value"], told[4]["value"], (self.local / "down").read_bytes()), ("x", True, b"x"))
        # Behind CreateFolder the permissions that stay are empty, and HDFS takes that for none.
        modes = {name: support.running.ask("status", path=self.path(name))["permission"] for name in self.names()}
        self.assertEqual(modes, {"g": "640", "i": "644"})

    def test_verify_server_asks_what_the_properties_say(self):
        http = support.running.http
        told = self.steps(("verify", http, "bob"), ("set", "Op", "GETHOMEDIRECTORY"), ("verify", http, "bob"),
                          ("verify unnamed", "http://localhost:1"), ("set", "BaseUrl", "http://localhost:1"),
                          ("verify", http, "bob"))
        self.assertEqual([step.get("value") for step in told], [False, None, True, True, None, False])

    def test_an_upload_that_the_name_node_refuses_is_a_success(self):
        told = self.steps(("set", "UserName", "b\u00f6b"), ("upload", self.path("f"), self.file("up", b"x")))
        self.went_well(told[1])
        self.assertEqual(told[1]["http"], 400)
        self.assertEqual(self.names(), [])

    def test_no_server(self):
        local = self.local / "down"
        told = self.steps(("text", "/"), ("download", "/f", local), ("upload", "/f", self.file("up", b"x")),
                          base="http://localhost:1")
        self.assertEqual((told[0].get("value"), told[0]["http"]), ("", 0))
        for step in told[1:]:
            self.assertEqual((step.get("error"), step["http"]), (E_FAIL, 0))
        self.assertFalse(local.exists())


class WinHttpCertificates(Case):
    """Natively alone: the authority is known to the whole prefix of Wine."""

    homes, forms = ("native",), ("winhttp",)

    def test_a_certificate_error_ends_the_request_whatever_the_options(self):
        support.running.ask("make", path=self.path("f"), bytes=3)
        step = ("download", self.path("f"), self.local / "down")
        told = self.steps(step, ("number", "Options", 0), step, base=support.running.https, home=Native(trusting=False))
        self.assertEqual([told[0].get("error"), told[2].get("error")], [E_FAIL] * 2)
        self.assertFalse((self.local / "down").exists())


class WinHttpNames(Case):
    homes, forms = ("native",), ("winhttp",)

    def test_names_that_are_not_ascii(self):
        up, names = self.file("up", b"x"), ("caf\u00e9", "\u6587\u4ef6", "\U0001f600", "\u20ac \u00ff%\u0100")
        self.went_well(*self.steps(*[step for name in names for step in (("upload", self.path(name), up),
                                                                         ("text", self.path(name)))]))
        self.assertEqual(self.names(), sorted(names))
        for name in names:
            self.stands(name, b"x")

    def test_a_new_name_beyond_ascii_is_encoded_twice(self):
        support.running.ask("make", path=self.path("f"), bytes=3)
        self.went_well(*self.steps(("rename", self.path("f"), self.path("caf\u00e9"))))
        self.assertEqual(self.names(), ["caf\u00e9".encode().decode("latin-1").encode().decode("latin-1")])


class WinHttpUnderWine(Case):
    """What is left there without uploads (support.NO_UPLOADS)."""

    homes, forms = ("wine",), ("winhttp",)

    def test_no_upload_gets_through(self):
        told = self.steps(("upload", self.path("f"), self.file("up", b"x")))
        self.assertEqual((told[0].get("error"), told[0]["http"]), (E_FAIL, 0))

    def test_downloads(self):
        sizes = (0, 1, 8191, 8192, 8193, 40 * 1024 * 1024)
        for size in sizes:
            support.running.ask("make", path=self.path(size), bytes=size)
        self.went_well(*self.steps(*[("download", self.path(size), self.local / str(size)) for size in sizes]))
        for size in sizes:
            self.assertEqual((self.local / str(size)).read_bytes(), pattern(size), size)

    def test_a_download_over_https(self):
        support.running.ask("make", path=self.path("f"), bytes=100000)
        self.went_well(*self.steps(("download", self.path("f"), self.local / "down"), base=support.running.https))
        self.assertEqual((self.local / "down").read_bytes(), pattern(100000))
