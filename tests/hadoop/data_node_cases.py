"""A data node that goes away in the middle of a download."""

import time

import support
from support import E_FAIL, Case, pattern

SIZE = 48 * 1024 * 1024
BYTES_A_SECOND = 8 * 1024 * 1024


class DataNodeGone(Case):
    def setUp(self):
        super().setUp()
        # The one file is on one node only, the other on both.
        support.running.ask("make", path=self.path("one"), bytes=SIZE, copies=1)
        support.running.ask("make", path=self.path("both"), bytes=100000)
        self.node = support.running.ask("holders", path=self.path("one"))["nodes"][0]
        self.killed = False
        self.addCleanup(self.restore)

    def restore(self):
        support.running.ask("throttle", bytes=0)
        if self.killed:
            support.running.ask("revive", node=self.node)

    def kill(self):
        support.running.ask("kill", node=self.node)
        self.killed = True

    def test_in_the_middle_of_a_download(self):
        local = self.local / "down"
        support.running.ask("throttle", bytes=BYTES_A_SECOND)
        arguments = [support.FORMS[self.form], support.running.http, support.USER]
        script = self.home.started(*arguments, *self.words([("download", self.path("one"), local)], self.home))
        deadline = time.monotonic() + 60
        while not (local.exists() and local.stat().st_size > 1 << 20):
            self.assertLess(time.monotonic(), deadline, "nothing arrived")
            time.sleep(0.02)
        self.kill()
        told = support.steps_told(script.communicate(timeout=support.TIMEOUT))[0]
        if self.home.name == "native":
            self.assertEqual((told.get("error"), told["http"]), (E_FAIL, 200), told)
            self.assertNotEqual(told["message"], "")
            self.assertFalse(local.exists())
        else:
            # Wine's network library takes the end of the connection for the end of the body.
            self.went_well(told)
            self.assertLess(local.stat().st_size, SIZE)
        # The other node has what was on both, and takes what is new.
        support.running.ask("throttle", bytes=0)
        self.went_well(*self.steps(("download", self.path("both"), self.local / "both")))
        self.assertEqual((self.local / "both").read_bytes(), pattern(100000))
        if (self.home.name, self.form) != support.NO_UPLOADS:
            self.went_well(*self.steps(("upload", self.path("new"), self.file("up", b"new"))))
            self.stands("new", b"new")

    def test_before_a_download(self):
        self.kill()
        local = self.local / "down"
        told = self.steps(("download", self.path("one"), local))[0]
        self.assertEqual(told["http"], 403)
        if self.form == "wininet":
            self.failed(told, E_FAIL, 403, "No active nodes contain this block")
            self.assertFalse(local.exists())
        else:
            self.assertIn(b"No active nodes contain this block", local.read_bytes())
