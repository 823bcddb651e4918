"""What HDFS makes of requests as this client writes them: docs/hdfs-servers.md tells the same, with the version measured.

A case here that fails after the version in pom.xml was raised is news, not necessarily a mistake of the client.
"""

import unittest

import support
from support import E_FAIL, Case, pattern, raw

REPLACED = "\ufffd"


class OnTheWire(unittest.TestCase):
    """Requests byte for byte, without any client."""

    def setUp(self):
        Case.number += 1
        self.folder = f"/user/bob/wire-{Case.number}"
        support.running.ask("folder", path=self.folder)

    def mkdirs(self, name, more="", user="bob", method="PUT"):
        return raw(method, f"{self.folder}/{name}?op=MKDIRS&user.name={user}{more}")

    def names(self):
        return support.running.ask("list", path=self.folder)["names"]

    def test_a_hyphen_may_be_escaped(self):
        self.assertEqual(self.mkdirs("a%2db%5fc%7ed"), (200, '{"boolean":true}'))
        self.assertEqual(self.names(), ["a-b_c~d"])

    def test_an_escape_of_one_digit_is_refused(self):
        for name in ("t%9z", "t%9", "t%9%41"):
            self.assertEqual(self.mkdirs(name)[0], 400, name)
        self.assertEqual(self.names(), [])

    def test_an_escape_of_one_digit_before_a_hexadecimal_digit_makes_another_name(self):
        self.assertEqual(self.mkdirs("t%9b")[0], 200)
        self.assertEqual(self.names(), [f"t{REPLACED}"])

    def test_an_escape_of_one_digit_in_a_value_is_refused(self):
        for name in ("t%9z", "t%9b"):
            self.assertEqual(raw("PUT", f"{self.folder}?op=RENAME&user.name=bob&destination={self.folder}-{name}"),
                             (400, ""), name)

    def test_empty_permissions_are_no_permissions(self):
        self.assertEqual(self.mkdirs("a", "&permission="), (200, '{"boolean":true}'))
        self.assertEqual(support.running.ask("status", path=f"{self.folder}/a")["permission"], "755")
        self.assertEqual(raw("PUT", f"{self.folder}/f?op=CREATE&user.name=bob&permission=")[0], 307)

    def test_permissions_that_are_not_octal_are_refused(self):
        self.assertIn("Failed to parse", self.mkdirs("a", "&permission=888")[1])

    def test_mkdirs_by_get_is_refused(self):
        status, body = self.mkdirs("a", "&permission=", method="GET")
        self.assertEqual(status, 400)
        self.assertIn("MKDIRS is not a valid GET operation", body)
        self.assertEqual(self.names(), [])

    def test_parameters_of_other_operations_do_no_harm(self):
        sticky = "&destination=/elsewhere&overwrite=true&permission=&recursive=false"
        self.assertEqual(self.mkdirs("a", sticky), (200, '{"boolean":true}'))
        self.assertEqual(raw("GET", f"{self.folder}?op=LISTSTATUS&user.name=bob{sticky}")[0], 200)
        self.assertEqual(raw("DELETE", f"{self.folder}/a?op=DELETE&user.name=bob{sticky}"), (200, '{"boolean":true}'))

    def test_a_blank_in_the_user_name(self):
        self.assertEqual(self.mkdirs("a", user="bob bob")[0], 400)
        status, body = self.mkdirs("a", user="bob%20bob")
        self.assertEqual(status, 400)
        self.assertIn("does not belong to the domain ^[A-Za-z_][A-Za-z0-9._-]*[$]?$", body)

    def test_no_user_name_is_a_user_of_its_own(self):
        status, body = raw("PUT", f"{self.folder}/a?op=MKDIRS")
        self.assertEqual(status, 403)
        self.assertIn("user=dr.who", body)

    def test_bytes_of_utf_8_may_stand_unescaped(self):
        for name in ("caf\u00e9", "\u6587\u4ef6", "\U0001f600"):
            self.assertEqual(self.mkdirs(name.encode().decode("latin-1"))[0], 200)
            self.assertIn(name, self.names())

    def test_a_byte_that_is_not_utf_8(self):
        self.assertEqual(self.mkdirs("caf\u00e9")[0], 400)
        self.assertEqual(self.mkdirs("caf%e9z")[0], 200)
        self.assertEqual(self.names(), [f"caf{REPLACED}z"])

    def test_the_home_is_told_at_the_start_of_the_body(self):
        for path in ("", "/", self.folder, "/none"):
            self.assertEqual(raw("GET", f"{path}?op=GETHOMEDIRECTORY&user.name=bob"), (200, '{"Path":"/user/bob"}'))

    def test_a_file_that_stands_there_is_no_hindrance_to_the_redirect(self):
        support.running.ask("make", path=f"{self.folder}/f", bytes=1)
        self.assertEqual(raw("PUT", f"{self.folder}/f?op=CREATE&user.name=bob&overwrite=false"), (307, ""))

    def test_a_colon_is_in_no_name(self):
        status, body = self.mkdirs("a:b")
        self.assertEqual(status, 400)
        self.assertIn("InvalidPathException", body)

    def test_paths_are_not_tidied(self):
        for name in ("./a", "../a", "/a"):
            self.assertIn("InvalidPathException", self.mkdirs(name)[1], name)


class ThroughTheClient(Case):
    forms = ("wininet",)

    def test_a_tab_in_a_name(self):
        up = self.file("up", b"x")
        told = self.steps(("upload", self.path("a\tz"), up), ("upload", self.path("a\t"), up),
                          ("upload", self.path("a\tb"), up), ("text", self.path("a\tb")))
        self.failed(told[0], E_FAIL, 400)
        self.failed(told[1], E_FAIL, 400)
        self.went_well(*told[2:])
        # The client finds the file again, under a name that nobody gave it.
        self.assertEqual((self.names(), told[3]["value"]), ([f"a{REPLACED}"], "x"))

    def test_a_tab_in_a_new_name(self):
        support.running.ask("make", path=self.path("f"), bytes=1)
        for step in self.steps(("rename", self.path("f"), self.path("a\tz")), ("rename", self.path("f"), self.path("a\tb"))):
            self.failed(step, E_FAIL, 400)
        self.assertEqual(self.names(), ["f"])

    def test_new_names_that_are_not_ascii(self):
        names = ("caf\u00e9", "\u6587\u4ef6", "\u20ac \u00ff\u0100\u0152")
        for number in range(len(names)):
            support.running.ask("make", path=self.path(number), bytes=1)
        told = self.steps(*[("rename", self.path(number), self.path(name)) for number, name in enumerate(names)])
        self.assertEqual({step.get("value") for step in told}, {True})
        self.assertEqual(self.names(), sorted(names))

    def test_a_new_name_beyond_16_bits_is_spoiled(self):
        support.running.ask("make", path=self.path("f"), bytes=1)
        told = self.steps(("rename", self.path("f"), self.path("a\U0001f600b")))
        self.assertEqual(told[0].get("value"), True)
        # Each half of the pair goes out by itself, and is no character then.
        self.assertEqual(self.names(), [f"a{REPLACED}{REPLACED}b"])

    def test_the_user_name_is_sent_with_its_blank(self):
        told = self.steps(("set", "UserName", "bob bob"), ("folder", self.path("a")))
        self.failed(told[1], E_FAIL, 400, "does not belong to the domain")

    def test_a_stream_that_tells_no_length_is_sent_as_an_empty_file(self):
        support.running.ask("make", path=self.path("f"), bytes=100)
        self.went_well(*self.steps(("stream to", self.path("f"), self.path("g"))))
        self.stands("g", b"")


class PathsBeyondAscii(Case):
    """On Linux they go out as escaped UTF-8."""

    homes, forms = ("native",), ("wininet",)

    def test_names_that_are_not_ascii(self):
        up, names = self.file("up", b"x"), ("caf\u00e9", "\u6587\u4ef6", "\U0001f600", "\u20ac \u00ff%\u0100")
        self.went_well(*self.steps(*[step for name in names for step in (("upload", self.path(name), up),
                                                                         ("text", self.path(name)))]))
        self.assertEqual(self.names(), sorted(names))
        for name in names:
            self.stands(name, b"x")


class PathsBeyondAsciiUnderWine(Case):
    """Wine's WinINet sends one byte for a letter of its code page and "?" for others: neither is what HDFS reads."""

    homes, forms = ("wine",), ("wininet",)

    def test_names_that_are_not_ascii(self):
        up = self.file("up", b"x")
        told = self.steps(("upload", self.path("caf\u00e9"), up), ("upload", self.path("\u6587\u4ef6"), up))
        self.failed(told[0], E_FAIL, 400)
        self.failed(told[1], E_FAIL, 400, "op=NULL is not supported")
        self.assertEqual(self.names(), [])
