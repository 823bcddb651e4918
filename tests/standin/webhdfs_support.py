"""Talking to the stand-in server's WebHDFS."""

import http.client
import json
import os
import urllib.parse

from support import StandInTest

PREFIX = "/webhdfs/v1"
OCTETS = {"Content-Type": "application/octet-stream"}


class HdfsTest(StandInTest):
    def setUp(self):
        super().setUp()
        self.server.command("DELETE", "/hdfs")

    def set(self, **settings):
        self.server.command("PUT", "/hdfs", settings)

    def url(self, path, op, user="bob", **params):
        text = PREFIX + urllib.parse.quote(path) + "?op=" + op
        if user:
            text += "&user.name=" + user
        return text + "".join(f"&{name}={value}" for name, value in params.items())

    def ask(self, method, path, op, user="bob", **params):
        """One exchange: the answer and its body; no redirect is followed."""
        return self.request(method, self.url(path, op, user, **params))

    def result(self, method, path, op, user="bob", **params):
        """The JSON of a success."""
        answer, body = self.ask(method, path, op, user, **params)
        self.assertEqual(answer.status, 200, body)
        self.assertEqual(answer.getheader("Content-Type"), "application/json;charset=utf-8")
        return json.loads(body)

    def refused(self, answer, body, status, exception):
        """The message of a RemoteException."""
        self.assertEqual(answer.status, status, body)
        self.assertEqual(answer.getheader("Content-Type"), "application/json;charset=utf-8")
        remote = json.loads(body)["RemoteException"]
        self.assertEqual(remote["exception"], exception)
        self.assertTrue(remote["javaClassName"].endswith((f".{exception}", f"${exception}")))
        self.assertEqual(set(remote), {"exception", "javaClassName", "message"})
        return remote["message"]

    def refusal(self, status, exception, method, path, op, user="bob", **params):
        return self.refused(*self.ask(method, path, op, user, **params), status, exception)

    def redirect(self, method, path, op, user="bob", **params):
        """Where the name node sends the client."""
        answer, body = self.ask(method, path, op, user, **params)
        self.assertEqual((answer.status, body), (307, b""))
        self.assertEqual(answer.getheader("Content-Length"), "0")
        return answer.getheader("Location")

    def follow(self, method, location, body=None, headers=None):
        parts = urllib.parse.urlsplit(location)
        connection = http.client.HTTPConnection(parts.hostname, parts.port, timeout=10)
        self.addCleanup(connection.close)
        connection.request(method, f"{parts.path}?{parts.query}", body, headers or {})
        answer = connection.getresponse()
        return answer, answer.read()

    def put(self, path, body, user="bob", **params):
        """The data node's answer to an upload."""
        return self.follow("PUT", self.redirect("PUT", path, "CREATE", user, **params), body)

    def write(self, path, body, user="bob", **params):
        answer, text = self.put(path, body, user, **params)
        self.assertEqual((answer.status, text), (201, b""))
        return answer

    def read(self, path, user="bob", **params):
        answer, body = self.follow("GET", self.redirect("GET", path, "OPEN", user, **params))
        self.assertEqual(answer.status, 200, body)
        return body

    def status(self, path, user="bob"):
        return self.result("GET", path, "GETFILESTATUS", user)["FileStatus"]

    def names(self, path, user="bob"):
        listing = self.result("GET", path, "LISTSTATUS", user)["FileStatuses"]["FileStatus"]
        return [entry["pathSuffix"] for entry in listing]

    def make(self, path, user="bob", **params):
        return self.result("PUT", path, "MKDIRS", user, **params)["boolean"]

    def delete(self, path, user="bob", **params):
        return self.result("DELETE", path, "DELETE", user, **params)["boolean"]

    def rename(self, path, destination, user="bob"):
        destination = urllib.parse.quote(destination)
        return self.result("PUT", path, "RENAME", user, destination=destination)["boolean"]

    def disk(self, *names):
        """The server's own folder on disk."""
        folder = os.path.dirname(self.server.log_file)
        (own,) = [name for name in os.listdir(folder) if name.startswith("hdfs-")]
        return os.path.join(folder, own, *names)
