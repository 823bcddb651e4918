"""velandoc hdfs against HDFS; its --stack is the form."""

import json
import pathlib
import time

import support
from support import Case, Native, pattern, uploads

NO, USAGE, MISSING, INCOMPLETE, NO_NODE, EXISTS = 1, 2, 7, 8, 12, 14


class CommandCase(Case):
    def start(self, *words, base=None, user=support.USER, home=None):
        home = home or self.home
        words = [home.local(word) if isinstance(word, pathlib.Path) else str(word) for word in words]
        process = home.command("--no-input", "hdfs", "--base-url", base or support.running.http, "--user", user,
                               "--stack", self.form, *words)
        self.addCleanup(self.end, process)
        return process

    @staticmethod
    def end(process):
        with process:
            process.kill()

    def hdfs(self, code, *words, **options):
        process = self.start(*words, **options)
        output, errors = process.communicate(timeout=support.TIMEOUT)
        self.assertEqual(process.returncode, code, (words, output[-500:], errors.decode("utf-8", "replace")))
        return output, errors.decode("utf-8", "replace")


class Hdfs(CommandCase):
    @uploads
    def test_a_file_goes_up_and_comes_back(self):
        content = b"".join(b"line %d\n" % i for i in range(5000))
        name = "a b%+#&-c;d"
        self.hdfs(0, "put", self.file("up", content), self.path(name), "--permission", "640")
        self.assertEqual(self.stands(name, content)["permission"], "640")
        self.hdfs(0, "get", self.path(name), self.local / "down")
        self.assertEqual((self.local / "down").read_bytes(), content)
        self.assertEqual(self.hdfs(0, "cat", self.path(name))[0], content)
        self.assertEqual(self.hdfs(0, "head", "-n", 3, self.path(name))[0].splitlines(),
                         [b"line 0", b"line 1", b"line 2"])
        self.assertEqual(self.hdfs(0, "ls", self.folder)[0].decode().splitlines(), [name])
        status = self.hdfs(0, "stat", self.path(name))[0].decode()
        self.assertRegex(status, rf"length +{len(content)}\b")
        self.assertRegex(status, r"owner +bob\b")
        self.hdfs(0, "mv", self.path(name), self.path("other"))
        self.stands("other", content)
        self.hdfs(0, "rm", self.path("other"))
        self.assertEqual(self.names(), [])

    @uploads
    def test_sizes_at_the_edges_of_the_pieces(self):
        for size in (0, 1, 8191, 8192, 8193, 40 * 1024 * 1024):
            content = pattern(size)
            self.hdfs(0, "put", self.file("up", content), self.path(size))
            self.stands(str(size), content)
            self.hdfs(0, "get", self.path(size), self.local / "down")
            self.assertEqual((self.local / "down").read_bytes(), content, size)
            self.assertEqual(self.hdfs(0, "cat", self.path(size))[0], content, size)
        # Nothing of the names under which files travel is left.
        self.assertEqual(len(self.names()), 6)

    @uploads
    def test_trees(self):
        tree = self.local / "tree"
        for name in ("a", "b c", "below/d", "below/deeper/e"):
            (tree / name).parent.mkdir(parents=True, exist_ok=True)
            (tree / name).write_bytes(name.encode() * 1000)
        self.hdfs(0, "put", "-r", "-j", 3, tree, self.path("tree"))
        for name in ("a", "b c", "below/d", "below/deeper/e"):
            self.stands(f"tree/{name}", name.encode() * 1000)
        self.assertIn(b"4 skipped", self.hdfs(0, "put", "-r", tree, self.path("tree"))[0])
        self.hdfs(0, "get", "-r", "-j", 3, self.path("tree"), self.local / "back")
        self.assertEqual(sorted(str(path.relative_to(self.local / "back")) for path in (self.local / "back").rglob("*")),
                         sorted(str(path.relative_to(tree)) for path in tree.rglob("*")))
        self.assertEqual((self.local / "back/below/deeper/e").read_bytes(), b"below/deeper/e" * 1000)
        self.hdfs(NO, "rm", self.path("tree"))
        self.hdfs(0, "rm", "-r", self.path("tree"))
        self.assertEqual(self.names(), [])

    @uploads
    def test_what_is_refused(self):
        up = self.file("up", b"first")
        self.hdfs(0, "put", up, self.path("f"))
        self.hdfs(EXISTS, "put", "--no-overwrite", up, self.path("f"))
        for words in (("get", self.path("none"), self.local / "down"), ("cat", self.path("none")),
                      ("stat", self.path("none")), ("ls", self.path("none"))):
            self.assertIn("404 FileNotFoundException", self.hdfs(MISSING, *words)[1])
        self.assertFalse((self.local / "down").exists())
        errors = self.hdfs(NO, "put", up, self.path("g"), user="alice")[1]
        self.tells("AccessControlException", errors, of_data_node=True)
        self.hdfs(NO_NODE, "ls", self.folder, base="http://localhost:1")
        self.hdfs(USAGE, "put", up, self.path("g"), "--permission", "888")
        self.assertEqual(self.names(), ["f"])
        self.stands("f", b"first")

    @uploads
    def test_safe_mode(self):
        support.running.ask("make", path=self.path("f"), bytes=3)
        support.running.ask("safe mode", on=True)
        try:
            self.assertEqual(self.hdfs(0, "cat", self.path("f"))[0], pattern(3))
            errors = self.hdfs(NO, "put", self.file("up", b"x"), self.path("g"))[1]
            self.tells("SafeModeException", errors, of_data_node=True)
            self.assertIn("SafeModeException", self.hdfs(NO, "rm", self.path("f"))[1])
        finally:
            support.running.ask("safe mode", on=False)

    def test_a_name_node_that_is_not_there_is_passed_over(self):
        self.assertEqual(self.hdfs(0, "ls", self.folder, base=f"http://localhost:1,{support.running.http}")[0], b"")

    def test_verify(self):
        answers = self.hdfs(0, "verify")[0].decode().splitlines()
        self.assertEqual(answers, [f"{support.running.http}: WebHDFS server"])
        self.hdfs(NO, "verify", base="http://localhost:1")

    @uploads
    def test_over_https(self):
        content = pattern(100000)
        self.hdfs(0, "put", self.file("up", content), self.path("f"), base=support.running.https)
        self.stands("f", content)
        self.assertEqual(self.hdfs(0, "cat", self.path("f"), base=support.running.https)[0], content)

    def test_a_data_node_that_dies_in_a_download_leaves_the_local_file_as_it_was(self):
        support.running.ask("make", path=self.path("f"), bytes=48 << 20, copies=1)
        node = support.running.ask("holders", path=self.path("f"))["nodes"][0]
        local = self.file("down", b"as it was")
        support.running.ask("throttle", bytes=8 << 20)
        killed = False
        try:
            process = self.start("get", self.path("f"), local)
            deadline = time.monotonic() + 60
            while not any(path.stat().st_size > 1 << 20 for path in self.local.iterdir()):
                self.assertLess(time.monotonic(), deadline, "nothing arrived")
                time.sleep(0.02)
            support.running.ask("kill", node=node)
            killed = True
            _, errors = process.communicate(timeout=support.TIMEOUT)
        finally:
            support.running.ask("throttle", bytes=0)
            if killed:
                support.running.ask("revive", node=node)
        self.assertEqual(process.returncode, INCOMPLETE, errors)
        self.assertEqual(local.read_bytes(), b"as it was")
        self.assertEqual([path.name for path in self.local.iterdir()], ["down"])


class FolderCommand(CommandCase):
    """Over WinHTTP the component asks with GET, which HDFS refuses."""

    forms = ("wininet",)

    def test_folders(self):
        self.hdfs(0, "mkdir", self.path("a/b"), "--permission", "700")
        self.assertEqual(support.running.ask("status", path=self.path("a/b"))["permission"], "700")
        self.hdfs(0, "rm", self.path("a/b"))


class UnknownAuthority(CommandCase):
    """Natively alone: the authority is known to the whole prefix of Wine."""

    homes, forms = ("native",), ("wininet",)

    def test_a_certificate_is_looked_at_unless_told_otherwise(self):
        support.running.ask("make", path=self.path("f"), bytes=3)
        stranger = Native(trusting=False)
        self.hdfs(NO_NODE, "cat", self.path("f"), base=support.running.https, home=stranger)
        self.assertEqual(self.hdfs(0, "--no-check-certificate", "cat", self.path("f"), base=support.running.https,
                                   home=stranger)[0], pattern(3))


class JsonOutput(CommandCase):
    homes, forms = ("native",), ("wininet",)

    def test_the_servers_exception_is_told_in_json(self):
        process = self.home.command("--json", "hdfs", "--base-url", support.running.http, "--user", "bob", "stat",
                                    self.path("none"))
        output, _ = process.communicate(timeout=support.TIMEOUT)
        error = json.loads(output)["error"]
        self.assertEqual((process.returncode, error["httpCode"], error["exception"], error["node"]),
                         (MISSING, 404, "FileNotFoundException", "name node"))
