"""velandoc hdfs: what it prints, what it asks for, what it leaves on both sides, and how it fails."""

import json
import os
import re
import subprocess
import urllib.parse

import support

HINT = "velandoc: type 'velandoc --help' for what it understands\n"
NODE = "http://nn.example.test:50070"
REFUSED, USAGE, OUTPUT, MISSING, INCOMPLETE, NO_NODE, LOCAL_FILE, EXISTS = 1, 2, 5, 7, 8, 12, 13, 14
PART = ".velandoc-part"


class HdfsCase(support.Case):
    """The name node is reached through the server's proxy, under any name."""

    stack = "wininet"

    def setUp(self):
        super().setUp()
        self.environment["VELANDOC_HDFS_URL"] = NODE
        self.environment["TZ"] = "UTC"
        support.server.empty_hdfs()
        self.addCleanup(support.server.empty_hdfs)

    def direct(self):
        """No proxy: the server's own port. Gives its URL."""
        for name in ("http_proxy", "https_proxy"):
            self.environment.pop(name, None)
        url = f"http://127.0.0.1:{support.server.ports['http']}"
        self.environment["VELANDOC_HDFS_URL"] = url
        return url

    def store(self, path, content=b""):
        """A file in HDFS."""
        file = support.server.hdfs / path.lstrip("/")
        file.parent.mkdir(parents=True, exist_ok=True)
        file.write_bytes(content if isinstance(content, bytes) else content.encode())
        return file

    def stored(self, path):
        return (support.server.hdfs / path.lstrip("/")).read_bytes()

    def names(self):
        """All that is in HDFS."""
        return sorted(str(file.relative_to(support.server.hdfs)) for file in support.server.hdfs.rglob("*"))

    def run_hdfs(self, *arguments, **options):
        # The superuser, who may change what the tests put there.
        user = [] if "--user" in arguments else ["--user", "hdfs"]
        return self.run_program(support.command, "hdfs", "--stack", self.stack, *user, *arguments, **options)

    def hdfs(self, *arguments, code=0, errors="", **options):
        """What `velandoc hdfs` prints, with the exit code and the talk as expected."""
        done = self.run_hdfs(*arguments, **options)
        self.assertEqual((done.returncode, done.stderr.decode()), (code, errors))
        return done.stdout.decode()

    def hdfs_json(self, *arguments, **options):
        return json.loads(self.hdfs(*arguments, "--json", **options))

    def fails(self, arguments, code, *lines, output=b"", **options):
        """Each line is a pattern for one whole line of talk."""
        done = self.run_hdfs(*arguments, **options)
        told = done.stderr.decode().splitlines()
        self.assertEqual((done.returncode, done.stdout), (code, output), told)
        self.assertEqual(len(told), len(lines), told)
        for line, pattern in zip(told, lines):
            self.assertRegex(line, rf"\Avelandoc: {pattern}\Z")

    def asked(self):
        """Method, operation, path and role of each request."""
        asked = []
        for record in support.server.log():
            path = urllib.parse.urlsplit(record["target"]).path
            path = urllib.parse.unquote(path.encode("latin-1").decode("utf-8", "replace"))
            asked.append((record["method"], record["operation"], path.removeprefix("/webhdfs/v1"),
                          record.get("role", "").split(" ")[0]))
        return asked

    def left_here(self):
        """The local files, those of the test's own surroundings aside."""
        own = {"registry", "config"}
        return sorted(str(file.relative_to(self.folder)) for file in self.folder.rglob("*")
                      if file.is_file() and file.relative_to(self.folder).parts[0] not in own)


class BothStacks:
    """Cases that hold for either of the component's clients."""

    def test_get_to_the_name_of_the_file(self):
        self.store("/d/a.txt", "hello")
        self.assertEqual(self.hdfs("get", "/d/a.txt"), "/d/a.txt -> a.txt: 5 bytes\n")
        self.assertEqual((self.folder / "a.txt").read_bytes(), b"hello")
        self.assertEqual(self.asked(), [("GET", "GETFILESTATUS", "/d/a.txt", "name"),
                                        ("GET", "OPEN", "/d/a.txt", "name"),
                                        ("GET", "OPEN", "/d/a.txt", "data")])
        self.assertEqual(self.left_here(), ["a.txt"])

    def test_get_to_another_name_into_a_folder_and_to_the_output(self):
        self.store("/a.txt", "hello")
        (self.folder / "sub").mkdir()
        self.assertEqual(self.hdfs("get", "/a.txt", "b.txt"), "/a.txt -> b.txt: 5 bytes\n")
        self.assertEqual(self.hdfs("get", "/a.txt", "sub", "-q"), "")
        self.assertEqual(self.hdfs("get", "/a.txt", "-"), "hello")
        self.assertEqual(self.left_here(), ["b.txt", "sub/a.txt"])

    def test_get_replaces_a_file_but_not_its_link(self):
        self.store("/a.txt", "new")
        self.write("real.txt", "old and longer")
        os.symlink("real.txt", self.folder / "link.txt")
        self.hdfs("get", "/a.txt", "link.txt", "--quiet")
        self.assertTrue((self.folder / "link.txt").is_symlink())
        self.assertEqual((self.folder / "real.txt").read_bytes(), b"new")

    def test_files_at_the_edges_of_a_chunk(self):
        for size in (0, 1, 2, 8191, 8192, 8193, 65536, 300000):
            content = bytes(i % 251 for i in range(size))
            self.write("here", content)
            self.hdfs("put", "here", "/there", "-q")
            self.hdfs("get", "/there", "again", "-q")
            self.assertEqual((self.folder / "again").read_bytes(), content, size)
            self.assertEqual(self.stored("/there"), content, size)

    def test_odd_names(self):
        for name in ("a b", "100%", "1+1", "a#b", "a&b=c", "a-b_c~d", "q?x", "%41", "[x]{y}"):
            self.write("here", name)
            self.hdfs("put", "here", f"/d/{name}", "-q")
            self.assertEqual(self.stored(f"/d/{name}"), name.encode())
            self.assertEqual(self.hdfs("cat", f"/d/{name}"), name)

    def test_get_of_what_is_not_there(self):
        self.write("a.txt", "good")
        self.fails(["get", "/a.txt"], MISSING,
                   r"GETFILESTATUS of '/a\.txt' at name node nn\.example\.test:50070 failed: "
                   r"404 FileNotFoundException: File does not exist: /a\.txt")
        self.assertEqual((self.folder / "a.txt").read_bytes(), b"good")
        self.assertEqual(self.left_here(), ["a.txt"])

    def test_a_file_that_goes_between_the_questions(self):
        self.store("/a.txt", "hello")
        support.server.rules({"match": {"operation": "OPEN", "role": "data node"}, "do": {"respond": {
            "status": 404, "headers": [["Content-Type", "application/json"]], "body":
            '{"RemoteException":{"exception":"FileNotFoundException",'
            '"javaClassName":"java.io.FileNotFoundException","message":"gone\\n\\tat x.y"}}'}}})
        self.fails(["get", "/a.txt"], MISSING,
                   r"OPEN of '/a\.txt' at data node nn\.example\.test:50070 failed: "
                   "404 FileNotFoundException: gone")
        self.assertEqual(self.left_here(), [])

    def test_refusals_name_the_server_s_exception(self):
        self.store("/a.txt", "hello")
        for status, exception, code in ((403, "AccessControlException", REFUSED),
                                        (403, "SafeModeException", REFUSED),
                                        (500, "RuntimeException", REFUSED),
                                        (400, "IllegalArgumentException", REFUSED)):
            support.server.rules({"match": {"operation": "OPEN", "role": "name node"}, "do": {"respond": {
                "status": status, "headers": [["Content-Type", "application/json"]], "body": json.dumps(
                    {"RemoteException": {"exception": exception, "javaClassName": f"x.{exception}",
                                         "message": "No \u001b[1mway\u001b[0m."}})}}})
            self.fails(["get", "/a.txt"], code,
                       rf"OPEN of '/a\.txt' at name node nn\.example\.test:50070 failed: {status} "
                       rf"{exception}: No \\x1B\[1mway\\x1B\[0m\.")
            self.assertEqual(self.left_here(), [])

    def test_a_refusal_that_is_a_page(self):
        support.server.rules({"do": {"respond": {"status": 502, "body": "<html><title>Bad Gateway</title>"}}})
        self.fails(["ls"], REFUSED, "LISTSTATUS of '/' at name node nn.example.test:50070 failed: "
                                    "502: Bad Gateway")

    def test_a_body_cut_short_leaves_no_file(self):
        self.store("/a.txt", "x" * 1000)
        self.write("a.txt", "good")
        for local in ("a.txt", "new.txt"):
            support.server.rules({"match": {"operation": "OPEN", "role": "data node"},
                                  "do": {"truncate": {"length": 1000, "sent": 400}}})
            self.fails(["get", "/a.txt", local], INCOMPLETE,
                       r"OPEN of '/a\.txt' at data node nn\.example\.test:50070 failed: "
                       r"the answer broke off: .*\(error 12030\)")
        self.assertEqual((self.folder / "a.txt").read_bytes(), b"good")
        self.assertEqual(self.left_here(), ["a.txt"])

    def test_a_body_shorter_than_the_file_leaves_no_file(self):
        # In good order, as far as HTTP can tell.
        self.store("/a.txt", "x" * 1000)
        support.server.rules({"match": {"operation": "OPEN", "role": "data node"},
                              "do": {"respond": {"status": 200, "body": "x" * 400}}})
        self.fails(["get", "/a.txt"], INCOMPLETE, r"OPEN of '/a\.txt' failed: 400 of 1000 bytes arrived")
        self.assertEqual(self.left_here(), [])
        self.fails(["cat", "/a.txt"], INCOMPLETE, r"OPEN of '/a\.txt' failed: 400 of 1000 bytes arrived",
                   output=b"x" * 400)

    def test_a_reset_within_the_body(self):
        self.store("/a.txt", "x" * 100000)
        support.server.rules({"match": {"operation": "OPEN", "role": "data node"},
                              "do": {"reset": {"at": "body", "after_bytes": 5000}}})
        self.direct()
        self.fails(["get", "/a.txt"], INCOMPLETE,
                   r"OPEN of '/a\.txt' at data node 127\.0\.0\.1:\d+ failed: the answer broke off: .*")
        self.assertEqual(self.left_here(), [])

    def test_a_dead_data_node_is_named(self):
        self.store("/a.txt", "hello")
        self.write("here", "hello")
        self.direct()
        support.server.command("PUT", "/hdfs", {"data_node": {"host": "127.0.0.1", "port": 1}})
        dead = r"at data node 127\.0\.0\.1:1 failed: no connection: .* \(error 12029\)"
        self.fails(["get", "/a.txt"], NO_NODE, rf"OPEN of '/a\.txt' {dead}")
        self.fails(["cat", "/a.txt"], NO_NODE, rf"OPEN of '/a\.txt' {dead}")
        self.fails(["put", "here", "/b.txt"], NO_NODE, rf"CREATE of '/\.b\.txt{PART}' {dead}")
        self.assertEqual(self.left_here(), ["here"])
        self.assertEqual(self.names(), ["a.txt"])

    def test_a_name_that_is_unknown_is_resolved_by_word(self):
        self.store("/a.txt", "hello")
        self.direct()
        port = support.server.ports["http"]
        support.server.command("PUT", "/hdfs", {"data_node": {"host": "dn.example.test"}})
        self.environment["VELANDOC_HDFS_URL"] = f"http://nn.example.test:{port}"
        words = ["--resolve", "nn.example.test=127.0.0.1", "--resolve", f"DN.example.test=127.0.0.1:{port}"]
        self.assertEqual(self.hdfs(*words, "cat", "/a.txt"), "hello")
        self.write("here", "up")
        self.hdfs(*words, "put", "here", "/b.txt", "-q")
        self.assertEqual(self.stored("/b.txt"), b"up")
        self.assertEqual({record["host"] for record in support.server.log()},
                         {"nn.example.test", "dn.example.test"})

    def test_nobody_listens(self):
        self.direct()
        self.fails(["--base-url", "http://127.0.0.1:1", "ls"], NO_NODE,
                   r"LISTSTATUS of '/' at name node 127\.0\.0\.1:1 failed: no connection: .* \(error 12029\)")

    def test_a_standby_s_refusal_moves_on(self):
        self.store("/a.txt", "hello")
        support.server.command("PUT", "/hdfs", {"standby": ["nn1.example.test", "nn2.example.test"]})
        nodes = ",".join(f"http://nn{i}.example.test:50070" for i in (1, 2, 3))
        self.hdfs("--base-url", nodes, "get", "/a.txt", "-q")
        self.assertEqual((self.folder / "a.txt").read_bytes(), b"hello")
        # The one that is active is remembered.
        self.assertEqual([(record["host"], record["operation"]) for record in support.server.log()], [
            ("nn1.example.test", "GETFILESTATUS"), ("nn2.example.test", "GETFILESTATUS"),
            ("nn3.example.test", "GETFILESTATUS"), ("nn3.example.test", "OPEN"), ("nn3.example.test", "OPEN")])
        self.write("here", "up")
        self.hdfs("--base-url", nodes, "put", "here", "/b.txt", "-q")
        self.assertEqual(self.stored("/b.txt"), b"up")

    def test_all_are_standbys(self):
        support.server.command("PUT", "/hdfs", {"standby": True})
        self.fails(["--base-url", "http://nn1.example.test:50070,http://nn2.example.test:50070", "ls"], NO_NODE,
                   r"LISTSTATUS of '/' at name node nn2\.example\.test:50070 failed: 403 StandbyException: "
                   r"Operation category READ is not supported in state standby.*; before it "
                   r"nn1\.example\.test:50070: 403 StandbyException: .*")

    def test_a_name_node_that_is_gone_is_passed_over(self):
        self.store("/a.txt", "hello")
        url = self.direct()
        self.assertEqual(self.hdfs("--base-url", f"http://127.0.0.1:1,{url}", "cat", "/a.txt"), "hello")
        self.assertEqual(self.hdfs("--base-url", f"http://127.0.0.1:1,{url}", "rm", "/a.txt"), "/a.txt: deleted\n")

    def test_what_may_have_been_done_is_not_done_twice(self):
        self.store("/a.txt", "hello")
        support.server.rules({"match": {"operation": "DELETE"}, "do": {"close": {"at": "request"}}})
        nodes = "http://nn1.example.test:50070,http://nn2.example.test:50070"
        self.fails(["--base-url", nodes, "rm", "/a.txt"], NO_NODE,
                   r"DELETE of '/a\.txt' at name node nn1\.example\.test:50070 failed: .*")
        self.assertEqual({record["host"] for record in support.server.log()}, {"nn1.example.test"})

    def test_safe_mode(self):
        self.write("here", "up")
        support.server.command("PUT", "/hdfs", {"safe_mode": True})
        self.fails(["put", "here", "/b.txt"], REFUSED,
                   rf"CREATE of '/\.b\.txt{PART}' at data node nn\.example\.test:50070 failed: "
                   r"403 SafeModeException: .*; what was sent may stand at '/\.b\.txt\.velandoc-part'")
        self.fails(["rm", "/x"], REFUSED, "DELETE of '/x' at name node .*: 403 SafeModeException: .*")

    def test_user(self):
        self.store("/a.txt", "hello")
        self.hdfs("--user", "bob", "cat", "/a.txt")
        self.assertIn("user.name=bob", support.server.log()[0]["target"])
        self.expect(["hdfs", "cat", "/a.txt"], 0, "hello", "")
        self.assertNotIn("user.name", support.server.log()[3]["target"])

    def test_cat(self):
        content = bytes(range(256)) * 3000
        self.store("/a.bin", content)
        done = self.run_hdfs("cat", "/a.bin")
        self.assertEqual((done.returncode, done.stdout, done.stderr), (0, content, b""))
        self.assertEqual([operation for _, operation, _, _ in self.asked()], ["OPEN", "OPEN", "GETFILESTATUS"])

    def test_cat_of_a_folder(self):
        self.store("/d/a.txt", "hello")
        self.fails(["cat", "/d"], MISSING, "OPEN of '/d' at data node nn.example.test:50070 failed: "
                                           "404 FileNotFoundException: Path is not a file: /d")

    def test_closed_output_is_quiet(self):
        self.store("/a.txt", "hello\n" * 1000)
        for arguments in (["cat", "/a.txt"], ["head", "/a.txt"], ["ls"], ["stat", "/a.txt"]):
            reading, writing = os.pipe()
            os.close(reading)
            done = subprocess.run([support.command, "hdfs", "--stack", self.stack, *arguments],
                                  env=self.environment, stdin=subprocess.DEVNULL, stdout=writing,
                                  stderr=subprocess.PIPE, timeout=support.TIMEOUT, check=False)
            os.close(writing)
            self.assertEqual((done.returncode, done.stderr), (OUTPUT, b""), arguments)

    def test_head(self):
        self.environment["TMPDIR"] = str(self.folder)
        self.store("/a.txt", "".join(f"{i}\n" for i in range(1, 100)))
        self.assertEqual(self.hdfs("head", "/a.txt"), "".join(f"{i}\n" for i in range(1, 11)))
        self.assertEqual(self.hdfs("head", "-n", "3", "/a.txt"), "1\n2\n3\n")
        self.assertEqual(self.hdfs("head", "-n", "0", "/a.txt"), "")
        self.assertEqual(self.hdfs("head", "-n", "1000", "/a.txt"), "".join(f"{i}\n" for i in range(1, 100)))
        self.store("/b.txt", "a\r\nb\r\nc")
        self.assertEqual(self.run_hdfs("head", "-n", "2", "/b.txt").stdout, b"a\r\nb\n")
        self.assertEqual(self.run_hdfs("head", "-n", "3", "/b.txt").stdout, b"a\r\nb\r\nc\n")
        wide = "\ufeffa\nb\nc\n".encode("utf-16-le")
        self.store("/w.txt", wide)
        self.assertEqual(self.run_hdfs("head", "-n", "2", "/w.txt").stdout, "\ufeffa\nb".encode("utf-16-le"))
        self.assertEqual(self.left_here(), [])

    def test_head_of_a_huge_file_is_short(self):
        self.direct()
        lines = self.hdfs("head", "-n", "1000", "/.generated/lines/10000000000").splitlines()
        self.assertEqual(len(lines), 1000)
        self.assertEqual({len(line) for line in lines}, {63})

    def test_head_of_what_is_not_there(self):
        self.environment["TMPDIR"] = str(self.folder)
        self.fails(["head", "/none"], MISSING, "OPEN of '/none' at name node nn.example.test:50070 failed: "
                                               "404 FileNotFoundException: File /none not found.")
        self.assertEqual(self.left_here(), [])

    def test_head_without_a_folder_for_its_file(self):
        self.environment["TMPDIR"] = str(self.folder / "none")
        self.store("/a.txt", "hello")
        self.fails(["head", "/a.txt"], LOCAL_FILE,
                   "preview of '/a.txt' failed: no temporary file can be written")

    def test_put_brings_a_file_under_another_name_until_it_is_whole(self):
        self.write("a.txt", "hello")
        self.assertEqual(self.hdfs("put", "a.txt", "/d/b.txt"), "a.txt -> /d/b.txt: 5 bytes\n")
        self.assertEqual(self.stored("/d/b.txt"), b"hello")
        part = f"/d/.b.txt{PART}"
        self.assertEqual(self.asked(), [("GET", "GETFILESTATUS", "/d/b.txt", "name"),
                                        ("PUT", "CREATE", part, "name"), ("PUT", "CREATE", part, "data"),
                                        ("GET", "GETFILESTATUS", part, "name"),
                                        ("PUT", "RENAME", part, "name")])
        self.assertEqual(self.names(), ["d", "d/b.txt"])

    def test_put_into_a_folder(self):
        self.write("a.txt", "hello")
        self.store("/d/x")
        self.assertEqual(self.hdfs("put", "a.txt", "/d"), "a.txt -> /d/a.txt: 5 bytes\n")
        self.assertEqual(self.hdfs("put", "a.txt", "/new/"), "a.txt -> /new/a.txt: 5 bytes\n")
        self.assertEqual(self.names(), ["d", "d/a.txt", "d/x", "new", "new/a.txt"])

    def test_put_replaces(self):
        self.write("a.txt", "new")
        self.store("/a.txt", "old and longer")
        self.hdfs("put", "a.txt", "/a.txt", "-q")
        self.assertEqual(self.stored("/a.txt"), b"new")
        self.assertEqual(self.names(), ["a.txt"])

    def test_put_without_overwriting(self):
        self.write("a.txt", "new")
        self.store("/a.txt", "old")
        self.fails(["put", "--no-overwrite", "a.txt", "/a.txt"], EXISTS,
                   "put of '/a.txt' failed: it is there already")
        self.assertEqual(self.asked(), [("GET", "GETFILESTATUS", "/a.txt", "name")])
        self.assertEqual(self.stored("/a.txt"), b"old")
        self.hdfs("put", "--no-overwrite", "a.txt", "/b.txt", "-q")
        self.assertEqual(self.stored("/b.txt"), b"new")

    def test_a_file_that_comes_meanwhile_is_not_overwritten(self):
        self.write("a.txt", "new")
        self.store("/a.txt", "old")
        missing = {"status": 404, "body": '{"RemoteException":{"exception":"FileNotFoundException"}}'}
        support.server.rules({"match": {"operation": "GETFILESTATUS"}, "times": 1, "do": {"respond": missing}})
        self.fails(["put", "--no-overwrite", "a.txt", "/a.txt"], EXISTS,
                   "put of '/a.txt' failed: it is there already")
        self.assertEqual((self.stored("/a.txt"), self.names()), (b"old", ["a.txt"]))

    def test_put_with_permissions(self):
        self.write("a.txt", "x")
        self.hdfs("put", "--permission", "640", "a.txt", "/mine.txt", "-q")
        self.assertEqual(self.hdfs_json("stat", "/mine.txt")["permission"], "640")

    def test_put_from_the_standard_input(self):
        self.environment["TMPDIR"] = str(self.folder)
        content = bytes(range(256)) * 2000
        self.assertEqual(self.hdfs("put", "-", "/a.bin", input=content), "- -> /a.bin: 512000 bytes\n")
        self.assertEqual(self.stored("/a.bin"), content)
        self.hdfs("put", "-", "/empty", "-q", input=b"")
        self.assertEqual(self.stored("/empty"), b"")
        self.assertEqual(self.left_here(), [])
        self.fails(["put", "-", "/d/"], USAGE, "put of '/d' failed: it is a folder: type the name of the file too",
                   input=b"x")

    def test_4_gib_are_refused_before_anything_is_sent(self):
        with open(self.folder / "huge", "wb") as file:
            file.truncate(2 ** 32)
        message = ("put of 'huge' failed: it has 4 GiB or more, which the component cannot send in one upload; "
                   "nothing was sent")
        self.fails(["put", "huge", "/huge"], USAGE, message)
        (self.folder / "tree").mkdir()
        self.write("tree/a", "x")
        os.rename(self.folder / "huge", self.folder / "tree/huge")
        self.fails(["put", "-r", "tree", "/tree"], USAGE, message.replace("'huge'", "'tree/huge'"))
        self.assertEqual(support.server.log(), [])

    def test_an_upload_of_which_less_arrives_is_told_and_taken_away(self):
        self.write("a.txt", "hello")
        support.server.rules({"match": {"operation": "GETFILESTATUS"}, "skip": 1, "times": 1, "do": {"respond": {
            "status": 200, "body": '{"FileStatus":{"type":"FILE","length":3,"pathSuffix":""}}'}}})
        self.fails(["put", "a.txt", "/a.txt"], INCOMPLETE,
                   rf"CREATE of '/\.a\.txt{PART}' failed: 3 of 5 bytes arrived")
        self.assertEqual(self.names(), [])

    def test_an_upload_that_the_data_node_refuses(self):
        self.write("a.txt", "hello")
        self.store("/a.txt", "old")
        support.server.rules({"match": {"operation": "CREATE", "role": "data node"}, "do": {"respond": {
            "status": 403, "headers": [["Content-Type", "application/json"]], "body":
            '{"RemoteException":{"exception":"DSQuotaExceededException","javaClassName":"x.y","message":"full"}}'}}})
        self.fails(["put", "a.txt", "/a.txt"], REFUSED,
                   rf"CREATE of '/\.a\.txt{PART}' at data node nn\.example\.test:50070 failed: "
                   "403 DSQuotaExceededException: full")
        self.assertEqual((self.stored("/a.txt"), self.names()), (b"old", ["a.txt"]))

    def test_an_upload_that_breaks_off(self):
        self.write("a.txt", "x" * 200000)
        self.direct()
        support.server.rules({"match": {"operation": "CREATE", "role": "data node"},
                              "do": {"reset": {"at": "request", "after_bytes": 1000}}})
        self.fails(["put", "a.txt", "/a.txt"], NO_NODE, rf"CREATE of '/\.a\.txt{PART}' at data node .* failed: .*")
        self.assertEqual(self.names(), [])

    def test_a_name_node_that_names_no_data_node(self):
        self.write("a.txt", "x")
        support.server.command("PUT", "/hdfs", {"location": False})
        self.fails(["put", "a.txt", "/a.txt"], REFUSED,
                   rf"CREATE of '/\.a\.txt{PART}' at name node nn\.example\.test:50070 failed: "
                   "307: it names no data node")

    def test_a_name_node_that_takes_nothing(self):
        # With 200 no body was asked for: nothing is there, whatever it says.
        self.write("a.txt", "x")
        support.server.rules({"match": {"operation": "CREATE"}, "do": {"status": 200}})
        self.fails(["put", "a.txt", "/a.txt"], REFUSED,
                   rf"CREATE of '/\.a\.txt{PART}' at name node .* failed: 200.*")

    def test_put_of_what_cannot_be_read(self):
        self.fails(["put", "none", "/a"], LOCAL_FILE, "reading of 'none' failed: No such file or directory")
        (self.folder / "sub").mkdir()
        self.fails(["put", "sub", "/a"], USAGE, "put of 'sub' failed: it is a folder: type -r to put it")
        os.mkfifo(self.folder / "pipe")
        self.fails(["put", "pipe", "/a"], LOCAL_FILE,
                   "put of 'pipe' failed: it is no regular file: type - to send the standard input")
        self.assertEqual(support.server.log(), [])

    def test_get_where_nothing_can_be_written(self):
        self.store("/a.txt", "hello")
        self.fails(["get", "/a.txt", "none/b.txt"], LOCAL_FILE,
                   "writing of 'none/b.txt' failed: its folder does not exist")
        self.write("file", "x")
        self.fails(["get", "/a.txt", "file/b.txt"], LOCAL_FILE,
                   "writing of 'file/b.txt' failed: its folder is a file")

    def test_rm(self):
        self.store("/d/a.txt")
        self.assertEqual(self.hdfs("rm", "/d/a.txt"), "/d/a.txt: deleted\n")
        self.assertEqual(self.asked(), [("DELETE", "DELETE", "/d/a.txt", "name")])
        self.store("/d/a.txt")
        self.fails(["rm", "/d"], REFUSED, "DELETE of '/d' at name node nn.example.test:50070 failed: "
                                          "403 PathIsNotEmptyDirectoryException: .*")
        self.assertEqual(self.hdfs("rm", "-r", "/d"), "/d: deleted\n")
        self.fails(["rm", "/d"], MISSING, "DELETE of '/d' failed: there is no such file or folder")

    def test_mv(self):
        self.store("/a.txt", "x")
        self.store("/d/b")
        self.assertEqual(self.hdfs("mv", "/a.txt", "/c d.txt"), "/a.txt -> /c d.txt\n")
        self.assertEqual(self.hdfs("mv", "/c d.txt", "/d"), "/c d.txt -> /d\n")
        self.assertEqual(self.names(), ["d", "d/b", "d/c d.txt"])
        self.fails(["mv", "/none", "/x"], MISSING, "GETFILESTATUS of '/none' at name node .*: 404 .*")
        self.fails(["mv", "/d/b", "/d/c d.txt"], EXISTS, "RENAME of '/d/b' failed: '/d/c d.txt' is there already")
        self.fails(["mv", "/d/b", "/no/b"], REFUSED,
                   "RENAME of '/d/b' failed: the server says no; does the folder of '/no/b' exist.")

    def test_ls(self):
        self.store("/d/b.txt", "hello")
        self.store("/d/a/x")
        self.assertEqual(self.hdfs("ls", "/d"), "a/\nb.txt\n")
        self.assertEqual(self.hdfs("ls"), "d/\n")
        self.assertEqual(self.hdfs("ls", "/d/b.txt"), "/d/b.txt\n")
        os.utime(support.server.hdfs / "d/b.txt", (1_000_000_000, 1_000_000_000))
        lines = self.hdfs("ls", "-l", "/d").splitlines()
        self.assertRegex(lines[0], r"\Adrwxr-xr-x  -  hdfs  supergroup  0  20\d\d-\d\d-\d\d .* a/\Z")
        self.assertEqual(lines[1], "-rw-r--r--  1  hdfs  supergroup  5  2001-09-09 01:46:40 +0000  b.txt")
        listed = self.hdfs_json("ls", "/d")
        self.assertEqual([(one["path"], one["type"], one["length"]) for one in listed],
                         [("/d/a", "DIRECTORY", 0), ("/d/b.txt", "FILE", 5)])

    def test_ls_shows_names_safely(self):
        self.store("/d/\u001b[1mred\u202e", "x")
        self.assertEqual(self.hdfs("ls", "/d"), "\\x1B[1mred\\u202E\n")

    def test_stat(self):
        self.store("/a.txt", "hello")
        text = self.hdfs("stat", "/a.txt")
        self.assertIn("length         5\n", text)
        self.assertIn("permission     644 (rw-r--r--)\n", text)
        self.assertEqual(self.hdfs_json("stat", "/a.txt")["length"], 5)
        self.fails(["stat", "/none"], MISSING, "GETFILESTATUS of '/none' at name node .*: 404 .*")

    def test_verify(self):
        self.assertEqual(self.hdfs("verify"), f"{NODE}: WebHDFS server\n")
        self.assertEqual([operation for _, operation, _, _ in self.asked()], ["GETHOMEDIRECTORY"])
        support.server.command("PUT", "/hdfs", {"standby": ["nn1.example.test"]})
        nodes = "http://nn1.example.test:50070,http://nn2.example.test:50070"
        output = self.hdfs("--base-url", nodes, "verify")
        self.assertRegex(output, r"\Ahttp://nn1\.example\.test:50070: no WebHDFS server: 403 StandbyException: .*\n"
                                 r"http://nn2\.example\.test:50070: WebHDFS server\n\Z")
        support.server.rules({"do": {"respond": {"status": 200, "body": "hello"}}})
        self.assertEqual(self.hdfs("verify", code=REFUSED),
                         f"{NODE}: no WebHDFS server: the answer names no home folder\n")

    def test_port_80_is_asked_where_it_is_typed(self):
        self.store("/a.txt", "hello")
        self.assertEqual(self.hdfs("--base-url", "http://nn.example.test:80", "cat", "/a.txt"), "hello")
        self.hdfs("--base-url", "http://nn.example.test:80", "verify")
        self.hdfs("--base-url", "http://nn.example.test", "verify")
        ports = [urllib.parse.urlsplit(record["target"]).port for record in support.server.log()]
        self.assertEqual(ports, [80, 80, 80, 80, 50070])

    def test_tree(self):
        self.store("/d/a.txt", "hello")
        self.store("/d/e/b.txt", "x" * 100)
        self.store("/d/e/f/c.txt", "y" * 1000)
        (support.server.hdfs / "d/empty").mkdir()
        for jobs in ("1", "4"):
            out = f"out{jobs}"
            self.assertEqual(self.hdfs("get", "-r", "/d", out, "-j", jobs).splitlines()[-1],
                             "3 transferred (1105 bytes), 0 skipped, 0 failed")
            self.assertTrue((self.folder / out / "empty").is_dir())
            self.assertEqual((self.folder / out / "e/f/c.txt").read_bytes(), b"y" * 1000)
            report = self.hdfs_json("get", "-r", "/d", out, "-j", jobs)
            self.assertEqual((report["transferred"], report["skipped"], report["failed"]), (0, 3, 0))
            report = self.hdfs_json("get", "-r", "--all", "/d", out, "-j", jobs)
            self.assertEqual((report["transferred"], report["skipped"], report["failed"]), (3, 0, 0))
            put = ["put", "-r", out, f"/up{jobs}/", "-j", jobs]
            self.assertEqual(self.hdfs(*put, "-q", **self.without_empty(out)), "")
            self.assertEqual(self.stored(f"/up{jobs}/{out}/e/f/c.txt"), b"y" * 1000)
            report = self.hdfs_json(*put, **self.without_empty(out))
            self.assertEqual((report["transferred"], report["skipped"], report["failed"]), (0, 3, 0))
        self.assertFalse([name for name in self.names() + self.left_here() if PART in name])

    def without_empty(self, _out):
        return {}

    def test_a_tree_goes_on_where_it_broke_off(self):
        for i in range(6):
            self.store(f"/d/{i}.txt", f"{i}" * 100)
        support.server.rules({"match": {"operation": "OPEN", "role": "data node", "path": "/webhdfs/v1/d/3.txt"},
                              "times": 1, "do": {"truncate": {"length": 100, "sent": 40}}})
        report = self.hdfs_json("get", "-r", "/d", "out", "-j", "3", code=INCOMPLETE, errors=(
            "velandoc: OPEN of '/d/3.txt' at data node nn.example.test:50070 failed: the answer broke off: "
            "the connection broke off (error 12030)\n"))
        self.assertEqual((report["transferred"], report["skipped"], report["failed"]), (5, 0, 1))
        failed = [one for one in report["files"] if one["outcome"] == "failed"]
        self.assertEqual((failed[0]["from"], failed[0]["error"]["networkError"], failed[0]["error"]["node"]),
                         ("/d/3.txt", 12030, "data node"))
        self.assertFalse((self.folder / "out/3.txt").exists())
        self.write("out/5.txt", "half")
        self.assertEqual(self.hdfs("get", "-r", "/d", "out").splitlines()[-1],
                         "2 transferred (200 bytes), 4 skipped, 0 failed")
        self.assertEqual((self.folder / "out/5.txt").read_bytes(), b"5" * 100)

    def test_a_server_that_names_files_elsewhere(self):
        self.store("/d/a.txt")
        for name in ("../x", "/etc/x", ".."):
            support.server.rules({"match": {"operation": "LISTSTATUS"}, "do": {"respond": {"status": 200, "body": (
                json.dumps({"FileStatuses": {"FileStatus": [
                    {"pathSuffix": name, "type": "FILE", "length": 1}]}}))}}})
            self.fails(["get", "-r", "/d", "out"], REFUSED,
                       rf"LISTSTATUS of '/d' failed: the server names '{re.escape(name)}', which is no file's name")
        self.assertEqual(self.left_here(), [])

    def test_an_answer_that_is_none(self):
        for body in ("hello", "{}", '{"FileStatus":[]}', '{"FileStatus":{"length":-1,"type":"FILE"}}'):
            support.server.rules({"do": {"respond": {"status": 200, "body": body}}})
            self.fails(["stat", "/a"], REFUSED,
                       "GETFILESTATUS of '/a' failed: the answer is not what WebHDFS answers")

    def test_get_of_a_folder_needs_a_word(self):
        self.store("/d/a.txt")
        self.fails(["get", "/d"], USAGE, "get of '/d' failed: it is a folder: type -r to get it")

    def test_failure_as_json(self):
        done = self.run_hdfs("rm", "/none", "--json")
        self.assertEqual(done.returncode, MISSING)
        error = json.loads(done.stdout)["error"]
        self.assertEqual((error["operation"], error["path"], error["exitCode"]), ("DELETE", "/none", MISSING))
        done = self.run_hdfs("stat", "/none", "--json")
        error = json.loads(done.stdout)["error"]
        self.assertEqual((error["httpCode"], error["exception"], error["javaClassName"], error["node"], error["host"]),
                         (404, "FileNotFoundException", "java.io.FileNotFoundException", "name node",
                          "nn.example.test:50070"))

    def test_certificates(self):
        self.store("/a.txt", "hello")
        self.write("here", "up")
        node = "https://unknownca.example.test"
        self.fails(["--base-url", node, "cat", "/a.txt"], NO_NODE,
                   r"OPEN of '/a\.txt' at name node unknownca\.example\.test:50470 failed: "
                   r"the authority of the server's certificate is not trusted \(error 12045\)")
        self.assertEqual(self.hdfs("--base-url", node, "--no-check-certificate", "cat", "/a.txt"), "hello")
        self.hdfs("--base-url", node, "--no-check-certificate", "put", "here", "/b.txt", "-q")
        self.assertEqual(self.stored("/b.txt"), b"up")
        self.assertEqual(self.hdfs("--base-url", "https://docs.example.test", "cat", "/a.txt"), "hello")

    @support.needs_terminal
    def test_progress_on_a_terminal(self):
        self.write("file", "x" * 300000)
        self.environment["TERM"] = "xterm"
        support.server.rules({"match": {"role": "data node"}, "do": {"drip": {"bytes": 20000, "interval_ms": 60}}})
        self.store("/a.txt", "x" * 300000)
        terminal = support.Terminal({**self.environment, "PWD": str(self.folder)}, support.command, "hdfs", "--stack",
                                    self.stack, "get", "/a.txt", str(self.folder / "got"), output=self.folder / "out")
        shown, code = terminal.finish()
        self.assertEqual(code, 0, shown)
        self.assertRegex(shown, r"\r +\d+%  \d+ kB of 300 kB  [\d.]+ kB/s  0:0\d left  /a\.txt\x1b\[K")
        self.assertTrue(shown.endswith("\r\x1b[K"), repr(shown))
        self.assertEqual((self.folder / "got").stat().st_size, 300000)
        for quiet in (["-q"], None):
            if quiet is None:
                self.environment["TERM"] = "dumb"
            terminal = support.Terminal(self.environment, support.command, "hdfs", "get", "/a.txt",
                                        str(self.folder / "got"), *(quiet or []), output=self.folder / "out")
            self.assertEqual(terminal.finish(), ("", 0))


class HdfsOverWinInet(BothStacks, HdfsCase):
    stack = "wininet"

    def test_mkdir(self):
        self.assertEqual(self.hdfs("mkdir", "/a/b c"), "/a/b c: made\n")
        self.hdfs("mkdir", "--permission", "700", "/p", "-q")
        self.assertEqual(self.hdfs_json("stat", "/p")["permission"], "700")
        self.assertEqual(self.asked()[0], ("PUT", "MKDIRS", "/a/b c", "name"))
        self.store("/file")
        self.fails(["mkdir", "/file/x"], REFUSED, "MKDIRS of '/file/x' at name node .*: 403 .*")

    def test_put_of_letters_of_many_kinds(self):
        for name in ("\u00e9t\u00e9", "\u8ba1\u5212", "\u20ac"):
            self.write("here", name)
            self.hdfs("put", "here", f"/{name}", "-q")
            self.assertEqual(self.stored(f"/{name}"), name.encode())
        self.assertEqual(self.hdfs("mv", "/\u20ac", "/\u00fc \u4e2d"), "/\u20ac -> /\u00fc \u4e2d\n")
        self.assertEqual(self.stored("/\u00fc \u4e2d"), "\u20ac".encode())

    def test_a_name_that_no_renaming_can_carry_is_written_in_place(self):
        self.write("here", "x")
        self.hdfs("put", "here", "/\U0001f600", "-q")
        self.assertEqual(self.names(), ["\U0001f600"])
        self.assertNotIn("RENAME", [operation for _, operation, _, _ in self.asked()])
        self.fails(["mv", "/\U0001f600", "/\U0001f601"], USAGE,
                   "'/\U0001f601' holds a letter beyond U\\+FFFF, which a new name cannot carry",
                   "type 'velandoc --help' for what it understands")


class HdfsOverWinHttp(BothStacks, HdfsCase):
    stack = "winhttp"

    def without_empty(self, out):
        name = f"/up{out.removeprefix('out')}/{out}/empty"
        return {"errors": f"velandoc: warning: empty folders are not made over WinHTTP, '{name}' among them\n"}

    def test_what_cannot_be_done_is_refused_before_anything_is_sent(self):
        self.fails(["mkdir", "/a"], USAGE, "over WinHTTP the component asks for a folder in a way that servers "
                                           "refuse: type --stack wininet",
                   "type 'velandoc --help' for what it understands")
        self.fails(["mv", "/a", "/\u00e9"], USAGE, "'/\u00e9' holds letters that a new name cannot carry over "
                                                   "WinHTTP: type --stack wininet",
                   "type 'velandoc --help' for what it understands")
        self.assertEqual(support.server.log(), [])

    def test_letters_of_many_kinds_are_written_in_place(self):
        self.write("here", "x")
        self.hdfs("put", "here", "/\u00e9\u8ba1", "-q")
        self.assertEqual(self.names(), ["\u00e9\u8ba1"])
        self.assertEqual(self.hdfs("ls"), "\u00e9\u8ba1\n")
        self.assertEqual(self.hdfs("cat", "/\u00e9\u8ba1"), "x")


class HdfsUsage(HdfsCase):
    def mistake(self, arguments, message):
        self.expect(["hdfs", *arguments], USAGE, "", f"velandoc: {message}\n{HINT}")
        self.assertEqual(support.server.log(), [])

    def test_no_name_node(self):
        del self.environment["VELANDOC_HDFS_URL"]
        self.mistake(["ls"], "no name node is named: type --base-url URL or set VELANDOC_HDFS_URL")

    def test_urls_that_cannot_be_asked(self):
        for url, message in (
                ("nn.example.test:50070",
                 "'nn.example.test:50070' has no scheme: did you mean 'https://nn.example.test:50070'?"),
                ("ftp://nn", "'ftp://nn' cannot be used: only http:// and https:// are spoken"),
                ("http://nn:99999", "'http://nn:99999' has no port that can be asked: type a number from 1 to 65535"),
                ("http://bob@nn:1", "'http://bob@nn:1' names a user: type --user NAME in its place"),
                ("http://nn:1/gateway", "'http://nn:1/gateway' has a path: the component asks a name node at "
                                        "/webhdfs/v1 and nowhere else"),
                ("http://nn:1?x", "'http://nn:1?x' has a path: the component asks a name node at /webhdfs/v1 and "
                                  "nowhere else")):
            with self.subTest(url=url):
                self.mistake(["--base-url", f"http://good:1,{url}", "ls"], message)

    def test_a_url_may_have_the_path_of_webhdfs(self):
        for path in ("/", "/webhdfs/v1", "/webhdfs/v1/"):
            self.expect(["hdfs", "--base-url", NODE + path, "ls"], 0, "", "")

    def test_paths_that_cannot_be_asked(self):
        for path, message in (
                ("a", "'a' is no path in HDFS: it must begin with '/'"),
                ("/a/../b", "'/a/../b': HDFS has no '.' and no '..'"),
                ("/a\tb", "'/a\\tb' holds the control character 0x09, which cannot be sent"),
                (b"/\xff", "a path in HDFS must be UTF-8 text")):
            with self.subTest(path=path):
                self.mistake(["cat", path], message)

    def test_the_root_stays(self):
        for arguments in (["rm", "-r", "/"], ["mkdir", "//"], ["mv", "/", "/x"]):
            self.mistake(arguments, "the root folder is there and stays there")

    def test_other_mistakes(self):
        self.mistake(["--user", "a&b", "ls"], "'a&b' is no user's name: it goes into the URL as it is")
        self.mistake(["mkdir", "--permission", "888", "/a"],
                     "'888' are no permissions: type three digits from 0 to 7, such as 644")
        self.mistake(["--resolve", "name", "ls"], "'name' gives no name an address: type NAME=ADDRESS")
        for arguments in ([], ["get"], ["get", "/a", "-j", "0"], ["get", "/a", "-j", "65"], ["head", "-n", "x", "/a"],
                          ["head", "-n", "-1", "/a"], ["--stack", "other", "ls"], ["ls", "--nonsense"]):
            with self.subTest(arguments=arguments):
                self.expect(["hdfs", *arguments], USAGE, "", re.compile(rf"velandoc: .+\n{re.escape(HINT)}", re.S))
        self.assertEqual(support.server.log(), [])

    def test_help(self):
        done = self.run_program(support.command, "hdfs", "--help")
        self.assertEqual((done.returncode, done.stderr), (0, b""))
        for word in ("get", "cat", "head", "put", "rm", "mv", "mkdir", "ls", "stat", "verify", "--base-url",
                     "VELANDOC_HDFS_URL", "--stack", "--resolve", "--no-check-certificate", "--quiet"):
            self.assertIn(word, done.stdout.decode())
        done = self.run_program(support.command, "hdfs", "get", "--help")
        self.assertEqual((done.returncode, done.stderr), (0, b""))
        for word in ("REMOTE", "LOCAL", "--recursive", "--jobs", "--all"):
            self.assertIn(word, done.stdout.decode())
