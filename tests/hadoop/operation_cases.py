"""Each operation of the client against HDFS; what it left there is looked at by Hadoop's own client."""

import json

from support import E_FAIL, E_INVALIDARG, Case, pattern, uploads
import support

LARGE = 200 * 1024 * 1024
SIZES = (0, 1, 8191, 8192, 8193)


class Transfers(Case):
    """Files of sizes at the edges of the pieces in which they travel, in both directions."""

    @uploads
    def test_sizes_at_the_edges_of_the_pieces(self):
        steps = []
        for size in SIZES:
            steps += [("upload", self.path(f"up{size}"), self.file(f"up{size}", pattern(size))),
                      ("download", self.path(f"up{size}"), self.local / f"back{size}")]
            support.running.ask("make", path=self.path(f"made{size}"), bytes=size)
            steps.append(("download", self.path(f"made{size}"), self.local / f"made{size}"))
        self.went_well(*self.steps(*steps))
        for size in SIZES:
            self.stands(f"up{size}", pattern(size))
            self.assertEqual((self.local / f"back{size}").read_bytes(), pattern(size), size)
            self.assertEqual((self.local / f"made{size}").read_bytes(), pattern(size), size)

    @uploads
    def test_200_megabytes(self):
        content = pattern(LARGE)
        self.went_well(*self.steps(("upload", self.path("large"), self.file("up", content)),
                                   ("download", self.path("large"), self.local / "down")))
        self.stands("large", content)
        self.assertEqual((self.local / "down").read_bytes(), content)

    @uploads
    def test_over_https(self):
        content = pattern(100000)
        told = self.steps(("upload", self.path("tls"), self.file("up", content)),
                          ("download", self.path("tls"), self.local / "down"), ("text", "/user", "LISTSTATUS"),
                          ("get", "URL"), base=support.running.https)
        self.went_well(*told)
        self.stands("tls", content)
        self.assertEqual((self.local / "down").read_bytes(), content)
        self.assertTrue(told[-1]["value"].startswith(support.running.https + "/webhdfs/v1/"))

    @uploads
    def test_text_preview_and_random_name(self):
        lines = "one\r\ntwo \u20ac\r\nthree\r\n\r\nfive".encode()
        told = self.steps(("upload", self.path("text"), self.file("text", lines)), ("text", self.path("text")),
                          ("preview", self.path("text"), 2), ("preview", self.path("text"), 0),
                          ("preview", self.path("text"), 1000), ("download to a random name", self.path("text")))
        self.went_well(*told)
        mark = b"\xef\xbb\xbf"
        if self.form == "wininet":
            self.assertEqual(told[1]["value"], lines.decode())
        self.assertEqual([self.fetch(step) for step in told[2:]],
                         [mark + "one\r\ntwo \u20ac".encode(), mark, mark + lines, lines])

    @uploads
    def test_a_download_replaces_the_local_file(self):
        local = self.file("local", b"longer than what comes")
        self.went_well(*self.steps(("upload", self.path("f"), self.file("up", b"short")),
                                   ("download", self.path("f"), local)))
        self.assertEqual(local.read_bytes(), b"short")


class Changes(Case):
    @uploads
    def test_overwriting_is_allowed_unless_told_otherwise(self):
        first, second = self.file("first", b"first"), self.file("second", b"second, and longer")
        told = self.steps(("upload", self.path("f"), first, "false"), ("upload", self.path("f"), second, "false"))
        self.went_well(told[0])
        # The name node redirects all the same; it is the data node that finds the file there.
        self.failed(told[1], E_FAIL, 0, "FileAlreadyExistsException")
        self.stands("f", b"first")
        self.went_well(*self.steps(("upload", self.path("f"), second, "true")))
        self.stands("f", b"second, and longer")
        self.went_well(*self.steps(("upload plainly", self.path("f"), first)))
        self.stands("f", b"first")

    @uploads
    def test_permissions_of_files(self):
        content = self.file("f", b"x")
        self.went_well(*self.steps(*[("upload", self.path(mode), content, "true", mode) for mode in ("640", "777", "000")],
                                   ("upload", self.path("none"), content)))
        modes = {name: support.running.ask("status", path=self.path(name))["permission"] for name in self.names()}
        # One form sends what was said last until something else is said.
        self.assertEqual(modes, {"000": "000", "640": "640", "777": "777",
                                 "none": "644" if self.form == "wininet" else "000"})

    @uploads
    def test_the_owner_is_the_user_that_was_named(self):
        self.went_well(*self.steps(("upload", self.path("f"), self.file("f", b"x"))))
        self.assertEqual(support.running.ask("status", path=self.path("f"))["owner"], "bob")

    def test_bad_permissions_are_not_sent(self):
        told = self.steps(("upload", self.path("f"), self.file("f", b"x"), "true", "888"), ("folder", self.path("g"), "rwx"))
        self.assertEqual([step.get("error") for step in told], [E_INVALIDARG] * 2)
        self.assertEqual(self.names(), [])

    def test_delete(self):
        for name in ("empty", "full"):
            support.running.ask("folder", path=self.path(name))
        for name in ("f", "full/below"):
            support.running.ask("make", path=self.path(name), bytes=10)
        told = self.steps(("delete", self.path("f")), ("delete", self.path("f")), ("delete", self.path("empty")),
                          ("delete", self.path("full")), ("delete", self.path("full"), "true"))
        self.assertEqual([step.get("value") for step in told[:3]], [True, False, True])
        self.refused(told[3], 403, "PathIsNotEmptyDirectoryException")
        self.assertEqual(told[4].get("value"), True)
        self.assertEqual(self.names(), [])


class Names(Case):
    """Names with characters that mean something in a URL, and such as the client escapes without need."""

    ASCII = ("a b", "a%b", "a%20b", "a%zz", "a+b", "a#b", "a&b", "a-b", "a?b", "a=b", "a;b", "a,b", "a~b_c.d", "a'b",
             "a(b)", "a[b]", "a{b}", "a@b", "a!b", "a$b", "a*b", "a^b`c", "ab<>", '"ab"', " ab ")

    @uploads
    def test_files_with_such_names(self):
        content = self.file("f", b"what stands in it")
        steps = []
        for number, name in enumerate(self.ASCII):
            steps += [("upload", self.path(name), content), ("download", self.path(name), self.local / f"back{number}"),
                      ("text", self.path(name))]
        told = self.steps(*steps)
        self.went_well(*told)
        self.assertEqual({step["value"] for step in told if step["step"] == "text"}, {"what stands in it"})
        self.assertEqual(self.names(), sorted(self.ASCII))
        for name in self.ASCII:
            self.stands(name, b"what stands in it")

    def test_renaming_to_such_names_and_back(self):
        support.running.ask("make", path=self.path("f"), bytes=10)
        told = self.steps(*[step for name in self.ASCII for step in (("rename", self.path("f"), self.path(name)),
                                                                     ("rename", self.path(name), self.path("f")))])
        self.assertEqual({step.get("value") for step in told}, {True})
        self.stands("f", pattern(10))

    def test_listing_and_status_by_op(self):
        support.running.ask("make", path=self.path("a%+ b"), bytes=7)
        told = self.steps(("text", self.folder, "LISTSTATUS"), ("text", self.path("a%+ b"), "GETFILESTATUS"))
        self.went_well(*told)
        listed = json.loads(told[0]["value"])["FileStatuses"]["FileStatus"]
        self.assertEqual([(entry["pathSuffix"], entry["length"]) for entry in listed], [("a%+ b", 7)])
        self.assertEqual(json.loads(told[1]["value"])["FileStatus"]["length"], 7)
