"""WebHDFS: name node, data node, their refusals and their settings."""

import hashlib
import json
import os
import socket
import subprocess
import tempfile
import time
import unittest

import support
from support import Server, read_answer, read_head, status_of
from webhdfs_support import OCTETS, PREFIX, HdfsTest

SIZES = (0, 1, 8191, 8192, 8193, 300_000)
NAMES = ("a b", "100%", "a+b", "a#b", "a&b=c", "a-b_c~d", "a;b,c", "'q'!", "été", "文件", "😀", "%41")


class TransferTest(HdfsTest):
    def test_upload_and_download_of_each_size(self):
        for size in SIZES:
            content = os.urandom(size)
            self.write(f"/sizes/{size}", content)
            self.assertTrue(self.read(f"/sizes/{size}") == content, size)
            self.assertEqual(self.status(f"/sizes/{size}")["length"], size)
        self.assertEqual(self.names("/sizes"), sorted(str(size) for size in SIZES))

    def test_redirect_of_open(self):
        self.write("/d/a b", b"x")
        self.assertEqual(
            self.redirect("GET", "/d/a b", "OPEN"),
            f"http://127.0.0.1:{self.server.http}/webhdfs/v1/d/a%20b"
            "?op=OPEN&user.name=bob&namenoderpcaddress=127.0.0.1:8020&offset=0",
        )

    def test_redirect_of_create(self):
        self.assertEqual(
            self.redirect("PUT", "/d/f", "CREATE", overwrite="true", permission="755"),
            f"http://127.0.0.1:{self.server.http}/webhdfs/v1/d/f?op=CREATE&user.name=bob"
            "&namenoderpcaddress=127.0.0.1:8020&createflag=&createparent=true"
            "&overwrite=true&permission=755",
        )
        self.refusal(404, "FileNotFoundException", "GET", "/d/f", "GETFILESTATUS")

    def test_no_redirect_wanted(self):
        self.write("/f", b"x")
        location = self.result("GET", "/f", "OPEN", noredirect="true")["Location"]
        self.assertNotIn("noredirect", location)
        self.assertEqual(self.follow("GET", location)[1], b"x")

    def test_answer_to_upload(self):
        answer = self.write("/d/a b", b"x")
        self.assertEqual(answer.getheader("Location"), "hdfs://127.0.0.1:8020/d/a%20b")
        self.assertEqual(answer.getheader("Content-Length"), "0")
        self.assertEqual(answer.getheader("Connection"), "close")

    def test_answer_to_download(self):
        self.write("/f", b"abc")
        answer, body = self.follow("GET", self.redirect("GET", "/f", "OPEN"))
        self.assertEqual(body, b"abc")
        self.assertEqual(answer.getheader("Content-Type"), "application/octet-stream")
        self.assertEqual(answer.getheader("Content-Length"), "3")
        self.assertEqual(answer.getheader("Connection"), "close")

    def test_chunked_download(self):
        content = os.urandom(200_000)
        self.write("/f", content)
        self.set(chunked=True)
        answer, body = self.follow("GET", self.redirect("GET", "/f", "OPEN"))
        self.assertEqual(answer.getheader("Transfer-Encoding"), "chunked")
        self.assertIsNone(answer.getheader("Content-Length"))
        self.assertTrue(body == content)

    def test_offset_and_length(self):
        content = os.urandom(10_000)
        self.write("/f", content)
        self.assertEqual(self.read("/f", offset=9_000), content[9_000:])
        self.assertEqual(self.read("/f", offset=100, length=50), content[100:150])
        self.assertEqual(self.read("/f", length=0), b"")
        self.assertEqual(self.read("/f", offset=9_999, length=99_999), content[-1:])
        message = self.refusal(403, "IOException", "GET", "/f", "OPEN", offset=10_000)
        self.assertEqual(message, "Offset=10000 out of the range [0, 10000); OPEN, path=/f")

    def test_upload_in_chunks(self):
        location = self.redirect("PUT", "/f", "CREATE")
        answer, _ = self.follow("PUT", location, iter([b"abc", b"", b"defg"]))
        self.assertEqual(answer.status, 201)
        self.assertEqual(self.read("/f"), b"abcdefg")

    def test_continue_comes_when_asked_for(self):
        connection = self.upload_head("/f", "Expect: 100-continue\r\nContent-Length: 3\r\n")
        self.assertEqual(read_head(connection), b"HTTP/1.1 100 Continue\r\n\r\n")
        connection.sendall(b"abc")
        self.assertEqual(status_of(read_answer(connection)[0]), 201)
        self.assertEqual(self.read("/f"), b"abc")

    def test_continue_does_not_come_unasked(self):
        connection = self.upload_head("/f", "Content-Length: 3\r\n")
        connection.sendall(b"abc")
        self.assertEqual(status_of(read_head(connection)), 201)

    def test_continue_comes_unasked_by_setting(self):
        self.set(continue100=True)
        connection = self.upload_head("/f", "Content-Length: 3\r\n")
        self.assertEqual(status_of(read_head(connection)), 100)
        connection.sendall(b"abc")
        self.assertEqual(status_of(read_head(connection)), 201)

    def test_name_node_redirects_before_the_body(self):
        connection = self.open()
        head = f"PUT {self.url('/f', 'CREATE')} HTTP/1.1\r\nHost: a.test\r\n"
        connection.sendall(f"{head}Expect: 100-continue\r\nContent-Length: 9\r\n\r\n".encode())
        self.assertEqual(status_of(read_head(connection)), 307)

    def test_refusal_before_the_body_is_sent(self):
        self.write("/f", b"old")
        connection = self.upload_head(
            "/f", "Expect: 100-continue\r\nContent-Length: 3\r\n", overwrite="false"
        )
        head, body = read_answer(connection)
        self.assertEqual(status_of(head), 403)
        self.assertIn(b"FileAlreadyExistsException", body)

    def test_client_that_leaves_has_written_what_came(self):
        connection = self.upload_head("/f", "Content-Length: 100\r\n")
        connection.sendall(b"abc")
        connection.shutdown(socket.SHUT_WR)
        self.assertEqual(connection.recv(1), b"")
        self.assertEqual(self.read("/f"), b"abc")

    def test_curl_uploads_and_downloads(self):
        content = os.urandom(3_000_000)
        local = os.path.join(self.folder.name, "local")
        with open(local, "wb") as file:
            file.write(content)
        url = self.http_url(self.url("/c/f", "CREATE"))
        self.assertEqual(self.curl("-L", "-T", local, url), 201)
        first, second = self.server.log()
        self.assertEqual((first["role"], first["body_length"]), ("name node", 0))
        self.assertEqual((second["role"], second["body_length"]), ("data node", len(content)))
        self.assertEqual(second["body_sha256"], hashlib.sha256(content).hexdigest())
        back = os.path.join(self.folder.name, "back")
        self.assertEqual(
            self.curl("-L", self.http_url(self.url("/c/f", "OPEN")), output=back), 200
        )
        with open(back, "rb") as file:
            self.assertTrue(file.read() == content)

    def test_head_request(self):
        self.write("/f", b"abc")
        location = self.redirect("GET", "/f", "OPEN")
        answer, body = self.follow("HEAD", location)
        self.assertEqual((answer.status, body), (200, b""))
        self.assertEqual(answer.getheader("Content-Length"), "3")

    def test_overwriting_leaves_readers_their_file(self):
        content = os.urandom(20_000_000)
        self.write("/f", content)
        connection = self.open()
        path = self.redirect("GET", "/f", "OPEN").split(str(self.server.http), 1)[1]
        connection.sendall(f"GET {path} HTTP/1.1\r\nHost: a\r\n\r\n".encode())
        read_head(connection)
        self.write("/f", b"new", overwrite="true")
        self.assertEqual(self.read("/f"), b"new")
        body = b""
        while len(body) < len(content):
            part = connection.recv(1 << 20)
            self.assertTrue(part, len(body))
            body += part
        self.assertTrue(body == content)

    def upload_head(self, path, headers, **params):
        """A connection on which the head of an upload has been sent to the data node."""
        location = self.redirect("PUT", path, "CREATE", **params)
        target = location.split(str(self.server.http), 1)[1]
        connection = self.open()
        connection.sendall(f"PUT {target} HTTP/1.1\r\nHost: a.test\r\n{headers}\r\n".encode())
        return connection


class FolderTest(HdfsTest):
    def test_status_of_file(self):
        before = time.time() * 1000
        self.write("/d/f", b"abc", permission="640")
        status = self.status("/d/f")
        self.assertLess(abs(status["modificationTime"] - before), 60_000)
        self.assertEqual(
            {name: status[name] for name in ("type", "length", "permission", "owner", "group")},
            {"type": "FILE", "length": 3, "permission": "640", "owner": "bob",
             "group": "supergroup"},
        )
        self.assertEqual((status["pathSuffix"], status["childrenNum"]), ("", 0))
        self.assertEqual((status["replication"], status["blockSize"]), (1, 134_217_728))

    def test_status_of_folder(self):
        self.write("/d/a", b"")
        self.write("/d/b", b"")
        status = self.status("/d")
        self.assertEqual((status["type"], status["length"]), ("DIRECTORY", 0))
        self.assertEqual((status["childrenNum"], status["permission"]), (2, "755"))
        self.assertEqual(self.status("/")["type"], "DIRECTORY")

    def test_usual_permissions(self):
        self.write("/f", b"")
        self.make("/d")
        self.assertEqual(self.status("/f")["permission"], "644")
        self.assertEqual(self.status("/d")["permission"], "755")

    def test_list(self):
        for name in ("b", "a", "B"):
            self.write("/d/" + name, b"")
        self.make("/d/c")
        self.assertEqual(self.names("/d"), ["B", "a", "b", "c"])
        self.assertEqual(self.names("/d/"), ["B", "a", "b", "c"])
        self.assertEqual(self.names("/d/a"), [""])
        self.assertEqual(self.names("/"), ["d"])

    def test_empty_list_and_root_without_slash(self):
        self.assertEqual(self.names("/"), [])
        _, body = self.request("GET", PREFIX + "?op=LISTSTATUS")
        self.assertEqual(json.loads(body), {"FileStatuses": {"FileStatus": []}})

    def test_missing_paths(self):
        message = self.refusal(404, "FileNotFoundException", "GET", "/no", "GETFILESTATUS")
        self.assertEqual(message, "File does not exist: /no")
        message = self.refusal(404, "FileNotFoundException", "GET", "/no/x", "LISTSTATUS")
        self.assertEqual(message, "File /no/x does not exist.")
        message = self.refusal(404, "FileNotFoundException", "GET", "/no", "OPEN")
        self.assertEqual(message, "File /no not found.")

    def test_make_folders(self):
        self.assertTrue(self.make("/a/b/c", permission="700"))
        self.assertTrue(self.make("/a/b/c"))
        self.assertEqual(self.status("/a/b/c")["permission"], "700")
        self.assertEqual(self.status("/a/b")["permission"], "755")
        self.write("/f", b"")
        self.refusal(403, "FileAlreadyExistsException", "PUT", "/f", "MKDIRS")
        self.refusal(403, "ParentNotDirectoryException", "PUT", "/f/d", "MKDIRS")

    def test_delete(self):
        self.write("/d/f", b"x")
        self.assertFalse(self.delete("/no"))
        message = self.refusal(
            403, "PathIsNotEmptyDirectoryException", "DELETE", "/d", "DELETE", recursive="false"
        )
        self.assertEqual(message, "`/d is non empty': Directory is not empty")
        self.assertTrue(self.delete("/d", recursive="true"))
        self.assertEqual(self.names("/"), [])
        self.write("/f", b"x")
        self.assertTrue(self.delete("/f"))
        self.make("/d")
        self.assertTrue(self.delete("/d"))
        self.assertFalse(self.delete("/", recursive="true"))

    def test_rename(self):
        self.write("/a/f", b"x", permission="600")
        self.assertTrue(self.rename("/a/f", "/a/g"))
        self.assertEqual(self.read("/a/g"), b"x")
        self.assertEqual(self.status("/a/g")["permission"], "600")
        self.assertTrue(self.rename("/a", "/b"))
        self.assertEqual(self.status("/b/g")["permission"], "600")
        self.assertEqual(self.names("/"), ["b"])

    def test_rename_into_folder(self):
        self.write("/f", b"x")
        self.make("/d")
        self.assertTrue(self.rename("/f", "/d"))
        self.assertEqual(self.read("/d/f"), b"x")

    def test_renames_that_do_nothing(self):
        self.write("/f", b"x")
        self.write("/g", b"y")
        self.make("/d")
        self.assertFalse(self.rename("/no", "/n"), "source is missing")
        self.assertFalse(self.rename("/f", "/g"), "destination is a file")
        self.assertFalse(self.rename("/f", "/no/f"), "destination has no folder")
        self.assertFalse(self.rename("/d", "/d/e"), "a folder into itself")
        self.assertFalse(self.rename("/", "/r"), "the root")
        self.assertTrue(self.rename("/f", "/f"), "a file to itself")
        self.assertEqual((self.read("/f"), self.read("/g")), (b"x", b"y"))

    def test_home(self):
        answer, body = self.ask("GET", "/any/path", "GETHOMEDIRECTORY")
        self.assertEqual((answer.status, body), (200, b'{"Path":"/user/bob"}'))
        home = self.result("GET", "/", "GETHOMEDIRECTORY", user="")
        self.assertEqual(home, {"Path": "/user/dr.who"})

    def test_home_of_credentials(self):
        self.server.rules({"do": {"auth": {"scheme": "basic", "user": "X\\ann", "password": "p"}}})
        answer, body = self.request(
            "GET", self.url("/", "GETHOMEDIRECTORY"), None, {"Authorization": "Basic WFxhbm46cA=="}
        )
        self.assertEqual((answer.status, body), (200, b'{"Path":"/user/ann"}'))

    def test_operation_and_parameter_in_any_case(self):
        self.write("/f", b"abc")
        answer, body = self.request("GET", PREFIX + "/f?OP=open&USER.NAME=bob&NoRedirect=TRUE")
        self.assertEqual(answer.status, 200, body)
        self.assertEqual(self.server.log()[-1]["operation"], "OPEN")


class NameTest(HdfsTest):
    def test_names_go_round(self):
        for name in NAMES:
            path = f"/names {name}/{name}"
            self.write(path, name.encode())
            self.assertEqual(self.read(path), name.encode(), name)
            self.assertEqual(self.names(f"/names {name}"), [name])
            with open(self.disk(f"names {name}", name), "rb") as file:
                self.assertEqual(file.read(), name.encode())

    def test_names_as_destination(self):
        self.write("/f", b"x")
        before = "/f"
        for name in NAMES:
            self.assertTrue(self.rename(before, "/" + name), name)
            before = "/" + name
            self.assertEqual(self.names("/"), [name])

    def test_every_letter_of_a_path_escaped_and_raw(self):
        self.write("/été/a+b", b"x")
        spellings = ("/%c3%a9t%C3%A9/a+b", "/été/a+b", "/%c3%a9t%c3%a9/%61%2b%62", "//été///a+b/")
        for spelling in spellings:
            target = (PREFIX + spelling + "?op=GETFILESTATUS").encode()
            answer = self.exchange(b"GET " + target + b" HTTP/1.0\r\n\r\n")
            self.assertEqual(status_of(answer), 200, spelling)

    def test_plus_in_query_is_a_blank(self):
        self.write("/f", b"x")
        self.result("PUT", "/f", "RENAME", destination="/a+b")
        self.assertEqual(self.names("/"), ["a b"])

    def test_malformed_escapes(self):
        for path in ("/a%9", "/a%9/b", "/a%", "/a%zz", "/%9g", "/%e9", "/%c3%28", "/%+1"):
            answer, body = self.request("GET", PREFIX + path + "?op=GETFILESTATUS")
            self.assertEqual(answer.status, 400, path)
            self.assertEqual(answer.getheader("Content-Type"), "text/html; charset=utf-8")
            self.assertNotIn(b"RemoteException", body)
        self.assertEqual({record["operation"] for record in self.server.log()}, {"GETFILESTATUS"})

    def test_malformed_escape_in_query(self):
        for value in ("/a%9", "/%e9"):
            answer, _ = self.ask("PUT", "/f", "RENAME", destination=value)
            self.assertEqual(answer.status, 400, value)

    def test_dots_are_no_names(self):
        for path in ("/../x", "/a/../../x", "/%2e%2e/x", "/./x", "/a/..", "/%2e"):
            for method, op in (("GET", "OPEN"), ("PUT", "CREATE"), ("PUT", "MKDIRS"),
                               ("DELETE", "DELETE")):
                answer, body = self.request(method, f"{PREFIX}{path}?op={op}")
                self.refused(answer, body, 400, "InvalidPathException")
        self.write("/f", b"x")
        self.refusal(
            400, "InvalidPathException", "PUT", "/f", "RENAME", destination="/../../tmp/f"
        )
        self.assertEqual(os.listdir(self.disk()), ["f"])

    def test_nul_is_no_name(self):
        answer, body = self.request("GET", PREFIX + "/a%00b?op=OPEN")
        self.refused(answer, body, 400, "InvalidPathException")

    def test_names_that_cannot_be_made(self):
        for path in ("/a:b", "/a//b"):
            self.refusal(400, "InvalidPathException", "PUT", path, "MKDIRS")
            answer, body = self.put(path, b"x")
            self.refused(answer, body, 400, "InvalidPathException")
            self.refusal(404, "FileNotFoundException", "GET", path, "GETFILESTATUS")

    def test_long_names(self):
        self.write("/" + "n" * 255, b"x")
        answer, body = self.put("/" + "n" * 256, b"x")
        self.refused(answer, body, 403, "PathComponentTooLongException")
        self.refusal(403, "IOException", "PUT", "/n" * 1001, "MKDIRS")

    def test_links_are_not_there(self):
        self.make("/d")
        self.write("/d/f", b"inside")
        outside = os.path.join(self.folder.name, "outside")
        with open(outside, "wb") as file:
            file.write(b"secret")
        os.symlink(outside, self.disk("link"))
        os.symlink(self.folder.name, self.disk("up"))
        os.symlink("d", self.disk("in"))
        self.assertEqual(self.names("/"), ["d"])
        for path in ("/link", "/up/outside", "/in/f", "/up"):
            self.refusal(404, "FileNotFoundException", "GET", path, "OPEN")
            self.assertFalse(self.delete(path, recursive="true"), path)
        answer, body = self.put("/link", b"x", overwrite="true")
        self.refused(answer, body, 403, "IOException")
        answer, body = self.put("/up/new", b"x")
        self.refused(answer, body, 403, "IOException")
        self.refusal(403, "IOException", "PUT", "/up/new", "MKDIRS")
        self.assertFalse(self.rename("/d/f", "/up/f"))
        self.assertTrue(self.rename("/d/f", "/link"), "the link is replaced, not its target")
        with open(outside, "rb") as file:
            self.assertEqual(file.read(), b"secret")
        self.assertFalse(os.path.exists(os.path.join(self.folder.name, "new")))

    def test_recursive_delete_leaves_what_links_point_to(self):
        self.make("/d")
        outside = os.path.join(self.folder.name, "kept")
        os.makedirs(outside, exist_ok=True)
        os.symlink(outside, self.disk("d", "link"))
        self.assertTrue(self.delete("/d", recursive="false"))
        self.assertTrue(os.path.isdir(outside))

    def test_devices_are_not_there(self):
        os.mkfifo(self.disk("pipe"))
        self.refusal(404, "FileNotFoundException", "GET", "/pipe", "OPEN")
        self.assertEqual(self.names("/"), [])


class RefusalTest(HdfsTest):
    def test_overwrite_is_refused_by_the_data_node(self):
        self.write("/f", b"old")
        for params in ({"overwrite": "false"}, {}):
            answer, body = self.put("/f", b"new", **params)
            message = self.refused(answer, body, 403, "FileAlreadyExistsException")
            self.assertEqual(message, "/f for client 127.0.0.1 already exists")
        self.assertEqual(self.read("/f"), b"old")
        self.write("/f", b"new", overwrite="true")
        self.assertEqual(self.read("/f"), b"new")

    def test_folders_are_no_files(self):
        self.make("/d")
        answer, body = self.put("/d", b"x", overwrite="true")
        self.assertEqual(
            self.refused(answer, body, 403, "FileAlreadyExistsException"),
            "/d already exists as a directory",
        )
        answer, body = self.follow("GET", self.redirect("GET", "/d", "OPEN"))
        message = self.refused(answer, body, 404, "FileNotFoundException")
        self.assertEqual(message, "Path is not a file: /d")

    def test_files_are_no_folders(self):
        self.write("/f", b"x")
        answer, body = self.put("/f/g", b"x")
        message = self.refused(answer, body, 403, "ParentNotDirectoryException")
        self.assertEqual(message, "/f (is not a directory)")

    def test_missing_parent(self):
        answer, body = self.put("/no/f", b"x", createparent="false")
        self.refused(answer, body, 404, "FileNotFoundException")

    def test_method_of_another_operation(self):
        message = self.refusal(400, "IllegalArgumentException", "GET", "/d", "MKDIRS")
        self.assertEqual(
            message,
            'Invalid value for webhdfs parameter "op": No enum constant '
            "org.apache.hadoop.hdfs.web.resources.GetOpParam.Op.MKDIRS",
        )
        for method, op in (("PUT", "OPEN"), ("GET", "DELETE"), ("POST", "CREATE"),
                           ("DELETE", "RENAME"), ("GET", ""), ("GET", "ODD")):
            self.refusal(400, "IllegalArgumentException", method, "/d", op)
        self.assertEqual(self.names("/"), [])

    def test_no_operation(self):
        answer, body = self.request("GET", PREFIX + "/")
        self.refused(answer, body, 400, "IllegalArgumentException")
        self.assertNotIn("operation", self.server.log()[0])

    def test_bad_parameters(self):
        self.write("/f", b"x")
        cases = [
            ("PUT", "MKDIRS", {"permission": "rwx"}),
            ("PUT", "MKDIRS", {"permission": "789"}),
            ("PUT", "MKDIRS", {"permission": "2000"}),
            ("PUT", "CREATE", {"overwrite": "yes"}),
            ("DELETE", "DELETE", {"recursive": "1"}),
            ("GET", "OPEN", {"offset": "x"}),
            ("GET", "OPEN", {"offset": "-1"}),
            ("PUT", "RENAME", {}),
            ("PUT", "RENAME", {"destination": ""}),
            ("PUT", "RENAME", {"destination": "relative"}),
        ]
        for method, op, params in cases:
            self.refusal(400, "IllegalArgumentException", method, "/f", op, **params)
        self.assertEqual(self.names("/"), ["f"])

    def test_empty_parameters_count_as_left_out(self):
        self.result("PUT", "/d", "MKDIRS", permission="")
        self.assertEqual(self.status("/d")["permission"], "755")
        self.write("/d/f", b"xyz", permission="")
        self.assertEqual(self.status("/d/f")["permission"], "644")
        self.refusal(403, "PathIsNotEmptyDirectoryException", "DELETE", "/d", "DELETE", recursive="")
        message = self.refusal(400, "IllegalArgumentException", "PUT", "/d", "MKDIRS", permission="x")
        self.assertEqual(
            message,
            'Invalid value for webhdfs parameter "permission": '
            'Failed to parse "x" as a radix-8 short integer.',
        )

    def test_bad_user_names(self):
        for user in ("a%20b", "1a", "a/b", "b%C3%A9"):
            self.refusal(400, "IllegalArgumentException", "GET", "/", "LISTSTATUS", user)

    def test_private_file(self):
        self.write("/f", b"x", user="ann", permission="600")
        self.assertEqual(self.read("/f", user="ann"), b"x")
        answer, body = self.follow("GET", self.redirect("GET", "/f", "OPEN"))
        message = self.refused(answer, body, 403, "AccessControlException")
        self.assertEqual(
            message,
            'Permission denied: user=bob, access=READ, inode="/f":ann:supergroup:-rw-------',
        )
        self.assertEqual(self.read("/f", user="hdfs"), b"x")
        answer, body = self.put("/f", b"y", overwrite="true")
        self.refused(answer, body, 403, "AccessControlException")

    def test_private_folder(self):
        self.make("/d", user="ann", permission="700")
        self.write("/d/f", b"x", user="ann")
        for method, path, op in (("GET", "/d/f", "GETFILESTATUS"), ("GET", "/d", "LISTSTATUS"),
                                 ("DELETE", "/d/f", "DELETE"), ("PUT", "/d/e", "MKDIRS")):
            self.refusal(403, "AccessControlException", method, path, op)
        self.assertEqual(self.names("/d", user="hdfs"), ["f"])

    def test_folder_that_others_may_read(self):
        self.make("/d", user="ann")
        self.write("/d/f", b"x", user="ann")
        self.write("/g", b"y")
        self.assertEqual(self.names("/d"), ["f"])
        self.refusal(403, "AccessControlException", "DELETE", "/d/f", "DELETE")
        self.refusal(403, "AccessControlException", "PUT", "/d/f", "RENAME", destination="/h")
        self.refusal(403, "AccessControlException", "PUT", "/g", "RENAME", destination="/d/g")
        answer, body = self.put("/d/g", b"x")
        self.refused(answer, body, 403, "AccessControlException")


class SettingTest(HdfsTest):
    def test_settings_are_shown(self):
        usual = {
            "standby": False, "safe_mode": False, "chunked": False, "location": True,
            "data_node": {"host": None, "port": None}, "opaque": False, "delegation": "",
            "http_fs": False, "continue100": False,
        }
        self.assertEqual(self.server.command("GET", "/hdfs"), usual)
        odd = {
            "standby": ["nn1.example.test"], "safe_mode": True, "chunked": True,
            "location": False, "data_node": {"host": "dn.example.test", "port": 9864},
            "opaque": True, "delegation": "T", "http_fs": True, "continue100": True,
        }
        self.set(**odd)
        self.assertEqual(self.server.command("GET", "/hdfs"), odd)
        self.set()
        self.assertEqual(self.server.command("GET", "/hdfs"), usual)

    def test_wrong_settings(self):
        for settings in ({"odd": 1}, {"standby": 1}, {"data_node": {"port": 0}},
                         {"data_node": {"port": 65536}}, {"data_node": {"host": "a b"}},
                         {"delegation": "a\r\nb"}):
            with self.assertRaises(ValueError):
                self.set(**settings)

    def test_standby(self):
        self.write("/f", b"x")
        self.set(standby=True)
        message = self.refusal(403, "StandbyException", "GET", "/f", "OPEN")
        self.assertTrue(
            message.startswith("Operation category READ is not supported in state standby.")
        )
        message = self.refusal(403, "StandbyException", "PUT", "/g", "CREATE")
        self.assertIn("category WRITE", message)

    def test_standby_of_one_name_node(self):
        self.set(standby=["NN1.example.test"])
        for host, status in (("nn1.example.test", 403), ("nn2.example.test", 200)):
            target = f"http://{host}:9870{self.url('/', 'LISTSTATUS')}"
            answer = self.exchange(f"GET {target} HTTP/1.0\r\n\r\n".encode())
            self.assertEqual(status_of(answer), status, host)

    def test_safe_mode(self):
        self.write("/f", b"x")
        self.set(safe_mode=True)
        self.assertEqual(self.read("/f"), b"x")
        for method, op, params in (("PUT", "MKDIRS", {}), ("DELETE", "DELETE", {}),
                                   ("PUT", "RENAME", {"destination": "/g"})):
            message = self.refusal(403, "SafeModeException", method, "/f", op, **params)
            self.assertIn("Name node is in safe mode.", message)
        answer, body = self.put("/g", b"x")
        self.refused(answer, body, 403, "SafeModeException")
        self.assertEqual(self.names("/"), ["f"])

    def test_data_node_of_another_address(self):
        self.write("/f", b"x")
        self.set(data_node={"host": "dn.example.test", "port": 9864})
        location = self.redirect("GET", "/f", "OPEN")
        self.assertTrue(location.startswith("http://dn.example.test:9864/webhdfs/v1/f?op=OPEN&"))
        url = self.http_url(self.url("/f", "OPEN"))
        with_proxy = ["-L", "-x", self.proxy(), "http://nn.example.test:9870" + self.url("/f", "OPEN")]
        self.assertEqual(self.curl(*with_proxy), 200)
        self.assertEqual(self.server.log()[-1]["host"], "dn.example.test")
        self.set(data_node={"port": 1})
        self.assertEqual(self.curl("-L", url, ok=False), 7)

    def test_data_node_behind_tls(self):
        self.write("/f", b"x")
        url = f"https://localhost:{self.server.https}" + self.url("/f", "OPEN")
        self.assertEqual(self.curl("-L", url), 200)
        name_node, data_node = self.server.log()[-2:]
        self.assertEqual((name_node["tls"], data_node["tls"]), (True, True))
        self.assertEqual(data_node["role"], "data node")

    def test_no_location(self):
        self.set(location=False)
        answer, _ = self.ask("PUT", "/f", "CREATE")
        self.assertEqual((answer.status, answer.getheader("Location")), (307, None))

    def test_parameters_pass_unchanged(self):
        location = self.redirect(
            "PUT", "/f", "CREATE", delegation="HAAEcm9vdA-_%2B", _="AAAA%3d/+x", blocksize="1048576"
        )
        for text in ("&user.name=bob&", "&delegation=HAAEcm9vdA-_%2B&", "&_=AAAA%3d/+x",
                     "&blocksize=1048576"):
            self.assertIn(text, location)

    def test_opaque_query(self):
        self.set(opaque=True)
        location = self.redirect("PUT", "/d/f", "CREATE", permission="600")
        path, query = location.split("?")
        self.assertTrue(path.endswith("/webhdfs/v1/d/f"))
        self.assertRegex(query, r"^_=[A-Za-z0-9+/=]+$")
        answer, _ = self.follow("PUT", location, b"x")
        self.assertEqual(answer.status, 201)
        record = self.server.log()[-1]
        self.assertEqual((record["operation"], record["role"]), ("CREATE", "data node"))
        self.assertEqual(self.status("/d/f")["permission"], "600")
        self.assertEqual(self.status("/d/f")["owner"], "bob")
        changed = location.replace("_=", "_=%")
        self.assertEqual(self.follow("PUT", changed, b"x")[0].status, 400)

    def test_delegation(self):
        self.set(delegation="HAAEcm9vdA-_")
        location = self.redirect("PUT", "/f", "CREATE")
        self.assertIn("&delegation=HAAEcm9vdA-_&", location)
        self.assertEqual(self.follow("PUT", location, b"x")[0].status, 201)
        for changed in ("&delegation=haaecm9vda-_&", "&"):
            answer, body = self.follow(
                "PUT", location.replace("&delegation=HAAEcm9vdA-_&", changed), b"x"
            )
            self.refused(answer, body, 403, "InvalidToken")

    def test_http_fs_is_particular_about_uploads(self):
        self.set(http_fs=True)
        location = self.redirect("PUT", "/f", "CREATE")
        self.assertTrue(location.endswith("&data=true&createparent=true"), location)
        for headers in ({}, {"Content-Type": "text/plain"}):
            answer, body = self.follow("PUT", location, b"abc", headers)
            self.assertEqual(answer.status, 400)
            self.assertIn(b"Data upload requests must have content-type", body)
        self.assertEqual(self.follow("PUT", location, b"abc", OCTETS)[0].status, 201)
        self.assertEqual(self.status("/f")["length"], 3)

    def test_http_fs_serves_files_at_once(self):
        self.write("/f", b"abc")
        self.set(http_fs=True)
        answer, body = self.ask("GET", "/f", "OPEN", offset=1)
        self.assertEqual((answer.status, body), (200, b"bc"))

    def test_http_fs_writes_json_in_another_hand(self):
        self.set(http_fs=True)
        _, body = self.ask("GET", "/", "GETHOMEDIRECTORY")
        self.assertEqual(body, b'{"Path":"\\/user\\/bob"}\n')
        self.refusal(404, "FileNotFoundException", "GET", "/no", "OPEN")

    def test_reset_empties_the_folder(self):
        self.write("/d/f", b"x", permission="000")
        os.symlink("d", self.disk("link"))
        os.mkfifo(self.disk("d", "pipe"))
        self.server.command("DELETE", "/hdfs")
        self.assertEqual(os.listdir(self.disk()), [])
        self.write("/d/f", b"x", user="ann")
        self.assertEqual(self.status("/d/f")["permission"], "644")


class RecordAndRuleTest(HdfsTest):
    def test_record(self):
        self.write("/f", b"abc")
        self.read("/f")
        self.names("/")
        self.assertEqual(
            [(record["operation"], record["role"], record["body"]) for record in self.server.log()],
            [("CREATE", "name node", ""), ("CREATE", "data node", "abc"),
             ("OPEN", "name node", ""), ("OPEN", "data node", ""),
             ("LISTSTATUS", "name node", "")],
        )

    def test_other_requests_have_no_role(self):
        self.get("/webhdfs/v2/?op=OPEN")
        self.get("/webhdfs/v1x?op=OPEN")
        for record in self.server.log():
            self.assertNotIn("role", record)
            self.assertNotIn("operation", record)

    def test_path_of_another_service(self):
        self.write("/_vti_bin/lists.asmx", b"abc")
        self.assertEqual(self.read("/_vti_bin/lists.asmx"), b"abc")

    def test_rule_for_operation_and_role(self):
        self.write("/f", b"abc")
        self.server.rules(
            {"match": {"operation": "OPEN", "role": "data node"}, "times": 1,
             "do": {"truncate": {"length": 100, "sent": 10}}},
            {"match": {"role": "name node", "operation": "LISTSTATUS"}, "do": {"status": 503}},
        )
        url = self.http_url(self.url("/f", "OPEN"))
        self.assertEqual(self.curl("-L", url, ok=False), 18)
        self.assertEqual(self.curl("-L", url), 200)
        self.assertEqual(self.ask("GET", "/", "LISTSTATUS")[0].status, 503)
        self.assertEqual(self.ask("GET", "/", "GETFILESTATUS")[0].status, 200)

    def test_reset_in_the_midst_of_a_download(self):
        self.write("/f", os.urandom(100_000))
        self.server.rules(
            {"match": {"role": "data node"}, "do": {"reset": {"at": "body", "after_bytes": 5000}}}
        )
        self.assertEqual(self.curl("-L", self.http_url(self.url("/f", "OPEN")), ok=False), 56)

    def test_reset_in_the_midst_of_an_upload(self):
        location = self.redirect("PUT", "/f", "CREATE")
        self.server.rules(
            {"match": {"role": "data node", "operation": "CREATE"}, "times": 1,
             "do": {"reset": {"at": "request", "after_bytes": 1000}}}
        )
        with self.assertRaises(OSError):
            self.follow("PUT", location, b"x" * 5000)
        self.assertEqual(self.status("/f")["length"], 1000)

    def test_answer_of_a_rule_keeps_the_upload_out(self):
        location = self.redirect("PUT", "/f", "CREATE")
        self.server.rules({"match": {"role": "data node"}, "do": {"status": 500}})
        self.assertEqual(self.follow("PUT", location, b"abc")[0].status, 500)
        self.refusal(404, "FileNotFoundException", "GET", "/f", "GETFILESTATUS")

    def test_role_is_not_known_at_accept(self):
        with self.assertRaises(ValueError):
            self.server.rules(
                {"match": {"role": "data node"}, "do": {"reset": {"at": "accept"}}}
            )


class LargeTest(HdfsTest):
    def test_generated_bytes(self):
        expected = (bytes(range(251)) * 4000)[:1_000_000]
        for path in ("/.generated/bytes/1000000", "/.generated/bytes/1000000/a.bin"):
            self.assertTrue(self.read(path) == expected)
            self.assertEqual(self.status(path)["length"], 1_000_000)
        self.assertEqual(self.read("/.generated/bytes/1000000", offset=999_990), expected[-10:])
        self.assertEqual(
            self.read("/.generated/bytes/1000000", offset=300, length=9), expected[300:309]
        )
        self.assertEqual(self.read("/.generated/bytes/0"), b"")

    def test_generated_lines(self):
        body = self.read("/.generated/lines/6400")
        lines = body.split(b"\n")
        self.assertEqual((len(lines), len(lines[0]), lines[-1]), (101, 63, b""))
        self.assertEqual(set(lines[:-1]), {lines[0]})
        self.assertEqual(self.read("/.generated/lines/6400", offset=70, length=64), body[70:134])

    def test_generated_paths_that_are_none(self):
        for path in ("/.generated", "/.generated/bytes", "/.generated/bytes/x",
                     "/.generated/odd/1", "/.generated/bytes/1/a/b"):
            self.refusal(404, "FileNotFoundException", "GET", path, "GETFILESTATUS")

    def test_generated_files_cannot_be_changed(self):
        path = "/.generated/bytes/1"
        self.refusal(403, "AccessControlException", "DELETE", path, "DELETE")
        self.refusal(403, "AccessControlException", "PUT", path, "RENAME", destination="/f")
        self.refusal(403, "AccessControlException", "PUT", path, "MKDIRS")
        answer, body = self.put(path, b"x", overwrite="true")
        self.refused(answer, body, 403, "AccessControlException")

    def test_sink_keeps_the_length(self):
        content = os.urandom(100_000)
        self.write("/.sink/f", content)
        self.assertEqual(self.server.log()[-1]["body_sha256"], hashlib.sha256(content).hexdigest())
        self.assertEqual(self.status("/.sink/f")["length"], 100_000)
        self.assertTrue(self.read("/.sink/f") == bytes(100_000))
        self.assertLess(os.stat(self.disk(".sink", "f")).st_blocks, 16)
        self.assertTrue(self.rename("/.sink/f", "/.sink/g"))
        self.assertTrue(self.delete("/.sink/g"))

    def test_sink_of_a_client_that_leaves(self):
        location = self.redirect("PUT", "/.sink/f", "CREATE")
        self.server.rules({"match": {"role": "data node", "operation": "CREATE"},
                           "do": {"reset": {"at": "request", "after_bytes": 1000}}})
        with self.assertRaises(OSError):
            self.follow("PUT", location, b"x" * 5000)
        self.assertEqual(self.status("/.sink/f")["length"], 1000)

    def test_hash_of_larger_bodies(self):
        content = bytes(70 << 20)
        self.write("/.sink/f", content)
        self.assertNotIn("body_sha256", self.server.log()[-1])
        self.server.command("PUT", "/recording", {"on": True, "largest_hash": 1 << 40})
        self.write("/.sink/f", content, overwrite="true")
        self.assertEqual(self.server.log()[-1]["body_sha256"], hashlib.sha256(content).hexdigest())
        self.server.command("PUT", "/recording", {"on": True, "largest_hash": 70_000})
        self.write("/.sink/f", bytes(70_001), overwrite="true")
        self.assertNotIn("body_sha256", self.server.log()[-1])

    def test_memory_stays_flat(self):
        def peak():
            with open(f"/proc/{self.server.pid}/status", encoding="ascii") as file:
                return next(int(line.split()[1]) for line in file if line.startswith("VmHWM"))

        size = 1 << 30
        self.curl("-L", self.http_url(self.url("/.generated/bytes/100", "OPEN")))
        with open(f"/proc/{self.server.pid}/clear_refs", "w", encoding="ascii") as file:
            file.write("5")
        before = peak()
        self.assertEqual(
            self.curl("-L", self.http_url(self.url(f"/.generated/bytes/{size}", "OPEN"))), 200
        )
        sparse = os.path.join(self.folder.name, "sparse")
        with open(sparse, "wb") as file:
            file.truncate(size)
        url = self.http_url(self.url("/.sink/f", "CREATE"))
        self.assertEqual(self.curl("-L", "-T", sparse, url), 201)
        self.assertEqual(self.status("/.sink/f")["length"], size)
        self.assertEqual(self.curl("-L", self.http_url(self.url("/.sink/f", "OPEN"))), 200)
        self.assertLess(peak() - before, 16 * 1024)


class HdfsProcessTest(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.addCleanup(self.folder.cleanup)

    def ask(self, server, target, method="GET"):
        with socket.create_connection(("127.0.0.1", server.http), timeout=10) as connection:
            connection.sendall(f"{method} {target} HTTP/1.0\r\nHost: a\r\n\r\n".encode())
            return support.read_all(connection)

    def test_folder_of_the_user_is_served_and_kept(self):
        files = os.path.join(self.folder.name, "files")
        os.mkdir(files)
        with open(os.path.join(files, "f"), "wb") as file:
            file.write(b"abc")
        server = Server(self.folder.name, "--hdfs", files)
        self.addCleanup(server.stop)
        self.assertIn(b'"length":3', self.ask(server, PREFIX + "/f?op=GETFILESTATUS"))
        server.command("DELETE", "/hdfs")
        self.assertEqual(server.stop(), 0)
        self.assertEqual(os.listdir(files), ["f"])

    def test_folder_of_its_own_goes_with_it(self):
        server = Server(self.folder.name)
        self.addCleanup(server.stop)
        self.assertIn(b'{"boolean":true}', self.ask(server, PREFIX + "/d?op=MKDIRS", "PUT"))
        self.assertEqual(server.stop(), 0)
        self.assertEqual(sorted(os.listdir(self.folder.name)), ["ready.json", "requests.jsonl"])

    def test_missing_folder(self):
        result = subprocess.run(
            [support.binary, "--certs", support.certificates, "--hdfs", self.folder.name + "/no"]
            + ["--log", self.folder.name + "/log", "--ready", self.folder.name + "/ready"],
            capture_output=True, text=True, check=False,
        )
        self.assertEqual(result.returncode, 1)
        self.assertIn("/no", result.stderr)
