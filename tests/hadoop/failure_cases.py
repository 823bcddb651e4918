"""What HDFS refuses, and what the client makes of it."""

import support
from support import E_FAIL, E_INVALIDARG, Case, Native, pattern, uploads


class Missing(Case):
    def test_a_file_that_is_not_there(self):
        local = self.local / "down"
        told = self.steps(("download", self.path("none"), local), ("preview", self.path("none"), 5),
                          ("text", self.path("none")), ("text", self.path("none"), "LISTSTATUS"))
        self.assertEqual({step["http"] for step in told}, {404})
        if self.form == "wininet":
            for step in told:
                self.failed(step, E_FAIL, 404, "FileNotFoundException")
            self.assertEqual(list(self.local.iterdir()), [])
        else:
            self.assertIn(b"FileNotFoundException", local.read_bytes())
            self.assertIn(b"FileNotFoundException", self.fetch(told[1]))
            self.assertIn("FileNotFoundException", told[2]["value"])

    def test_a_folder_is_no_file(self):
        local = self.local / "down"
        told = self.steps(("download", self.folder, local))
        self.assertEqual(told[0]["http"], 404)
        if self.form == "wininet":
            self.failed(told[0], E_FAIL, 404, "Path is not a file")
            self.assertFalse(local.exists())
        else:
            self.assertIn(b"Path is not a file", local.read_bytes())

    @uploads
    def test_a_path_below_a_file(self):
        support.running.ask("make", path=self.path("f"), bytes=3)
        told = self.steps(("upload", self.path("f/below"), self.file("up", b"x")),
                          ("text", self.path("f/below"), "GETFILESTATUS"))
        self.failed(told[0], E_FAIL, 0, "ParentNotDirectoryException")
        self.assertEqual(told[1]["http"], 403)
        self.stands("f", pattern(3))

    def test_a_source_that_is_not_there(self):
        told = self.steps(("upload", self.path("f"), self.local / "none"))
        self.assertEqual(told[0]["error"], "80070002")
        self.assertEqual(self.names(), [])


class Rights(Case):
    @uploads
    def test_another_user(self):
        support.running.ask("make", path=self.path("f"), bytes=3)
        support.running.ask("permission", path=self.path("f"), mode="600")
        # The server gave the first of the two a cookie that names him; it must not outweigh the second's name.
        told = self.steps(("text", self.path("f")), ("set", "UserName", "alice"), ("text", self.path("f")),
                          ("delete", self.path("f")), ("upload", self.path("g"), self.file("up", b"x")))
        self.went_well(told[0])
        self.assertEqual(told[2]["http"], 403)
        self.refused(told[3], 403, "user=alice")
        self.failed(told[4], E_FAIL, 0, "user=alice")
        self.assertEqual(self.names(), ["f"])

    @uploads
    def test_nobody_is_another_user_too(self):
        told = self.steps(("set", "UserName", ""), ("upload", self.path("g"), self.file("up", b"x")))
        self.failed(told[1], E_FAIL, 0, "user=dr.who")


class SafeMode(Case):
    @uploads
    def test_reading_goes_on_and_nothing_is_changed(self):
        support.running.ask("make", path=self.path("f"), bytes=3)
        support.running.ask("safe mode", on=True)
        try:
            told = self.steps(("text", self.path("f")), ("upload", self.path("f"), self.file("up", b"xyz")),
                              ("delete", self.path("f")))
        finally:
            support.running.ask("safe mode", on=False)
        self.went_well(told[0])
        self.failed(told[1], E_FAIL, 0, "SafeModeException")
        self.refused(told[2], 403, "SafeModeException")
        self.stands("f", pattern(3))
        self.went_well(*self.steps(("upload", self.path("f"), self.file("up", b"xyz"))))
        self.stands("f", b"xyz")


class Renaming(Case):
    forms = ("wininet",)

    def test_what_is_not_renamed(self):
        for name in ("f", "g"):
            support.running.ask("make", path=self.path(name), bytes=3)
        told = self.steps(("rename", self.path("none"), self.path("h")), ("rename", self.path("f"), self.path("g")),
                          ("rename", self.path("f"), "relative"), ("rename", self.path("f"), ""))
        self.assertEqual([step.get("value") for step in told[:2]], [False, False])
        self.failed(told[2], E_FAIL, 400, "is not an absolute path")
        self.failed(told[3], E_FAIL, 400, "Required param destination")
        self.assertEqual(self.names(), ["f", "g"])

    def test_a_file_moves_into_a_folder_that_is_named(self):
        support.running.ask("make", path=self.path("f"), bytes=3)
        support.running.ask("folder", path=self.path("g"))
        self.assertEqual(self.steps(("rename", self.path("f"), self.path("g")))[0].get("value"), True)
        self.stands("g/f", pattern(3))


class Folders(Case):
    forms = ("wininet",)

    def test_folders_and_their_permissions(self):
        told = self.steps(("folder", self.path("a")), ("folder", self.path("a/b/c"), "700"), ("folder", self.path("a")),
                          ("folder", self.path("a/b/c"), "755"))
        self.assertEqual([step.get("value") for step in told], [True] * 4)
        told = [support.running.ask("status", path=self.path(name)) for name in ("a", "a/b", "a/b/c")]
        self.assertEqual({status["folder"] for status in told}, {True})
        # They hold for all that is new on the way, and for nothing that was there.
        self.assertEqual([status["permission"] for status in told], ["755", "700", "700"])

    def test_a_folder_in_the_place_of_a_file(self):
        support.running.ask("make", path=self.path("f"), bytes=3)
        told = self.steps(("folder", self.path("f")), ("folder", self.path("f/g")))
        self.failed(told[0], E_FAIL, 403, "FileAlreadyExistsException")
        self.failed(told[1], E_FAIL, 403, "ParentNotDirectoryException")


class Servers(Case):
    forms = ("wininet",)

    def test_which_server_speaks_webhdfs(self):
        running = support.running
        told = self.steps(("verify", running.http, "bob"), ("verify", running.https, "bob"),
                          ("verify", "http://localhost:1", "bob"),
                          ("verify", f"http://localhost:{running.told['https']}", "bob"),
                          ("verify", f"https://localhost:{running.told['http']}", "bob"),
                          ("verify", f"http://localhost:{running.told['dataNodes'][0]['http']}", "bob"),
                          ("verify", f"{running.http}/?a", "bob"), ("verify unnamed", running.http))
        self.assertEqual([step.get("value") for step in told], [True, True, False, False, False, False, False, None])
        self.assertEqual(told[-1]["error"], E_INVALIDARG)


class Certificates(Case):
    """An authority that is not known. Natively alone: the authority is known to the whole prefix of Wine."""

    homes, forms = ("native",), ("wininet",)

    def test_a_certificate_error_ends_the_request_unless_it_is_let_pass(self):
        support.running.ask("make", path=self.path("f"), bytes=3)
        step = ("download", self.path("f"), self.local / "down")
        told = self.steps(step, ("number", "Options", 0), step, base=support.running.https, home=Native(trusting=False))
        self.assertEqual((told[0]["error"], told[0]["http"]), (E_FAIL, 0))
        self.went_well(*told[1:])
        self.assertEqual((self.local / "down").read_bytes(), pattern(3))
