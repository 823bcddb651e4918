#!/usr/bin/python3
"""Every script case in both homes against one stand-in server: equal output, equal exit code, equal requests.

compare.py [unittest's own arguments]

Needs build/native, build/windows and a Wine prefix that trusts the test authority; the lane 'scripts' of ./test sees to
them. A difference between the homes is either a mistake or declared with its reason in differences.json; a declared one
that does not show any more fails, too.
"""

import json
import pathlib
import re
import sys
import unittest

import run_case
from both_homes import BothHomes, comparable
from page_cases import ErrorsInVbscript, PageExamples, ReadmeCommands  # noqa: F401  (these run with the cases below)
from sample_cases import CppSamples, HolderSamples, Samples  # noqa: F401

FOLDER = pathlib.Path(__file__).resolve().parent
DIFFERENCES = json.loads((FOLDER / "differences.json").read_text(encoding="utf-8"))


def with_declared(case, home, lines):
    """The output with each declared line replaced by the reason, and the reasons that applied."""
    declared = [entry for entry in DIFFERENCES["output"] if entry["case"] == case]
    used = {entry["reason"] for entry in declared if entry[home] in lines}
    replaced = {entry[home]: f"<{entry['reason']}>" for entry in declared}
    return [replaced.get(line, line) for line in lines], used, {entry["reason"] for entry in declared}


class ScriptCases(BothHomes):
    def run_in(self, home, case, requests_expected=0):
        self.server.prepare(case.rules)
        result = self.homes[home].run(case)
        requests = [comparable(record) for record in self.server.log_of(requests_expected)]
        self.assertEqual(result.code, case.exit, f"exit code in {home}\n{result.errors}")
        self.assertTrue(result.lines, f"no output in {home}\n{result.errors}")
        self.assertEqual(result.lines[-1], f"end of {case.name}", f"last line in {home}")
        return result.lines, requests

    def run_case(self, case):
        if case.home is not None:
            lines, _ = self.run_in(case.home, case)
            expected = case.path.with_suffix(".expected")
            self.assertEqual(lines, expected.read_text(encoding="utf-8").splitlines())
            return
        wine_lines, wine_requests = self.run_in("wine", case)
        # The Linux home may end before the server has read its last request: differences.json, hdfs_files.
        native_lines, native_requests = self.run_in("native", case, len(wine_requests))
        native_output, native_used, declared = with_declared(case.name, "native", native_lines)
        wine_output, wine_used, _ = with_declared(case.name, "wine", wine_lines)
        self.assertEqual(native_output, wine_output)
        self.assertEqual(native_used & wine_used, declared, "differences.json declares what does not show")
        self.assertEqual(native_requests, wine_requests)


class Command(BothHomes):
    """The command, of which both homes have the same sources."""

    def compare(self, code, *arguments):
        self.server.prepare([{"match": {"host": "plain.example.test"}, "do": {"status": 404}}])
        results = [home.run_command(*arguments) for home in self.homes.values()]
        self.assertEqual([result.code for result in results], [code, code])
        self.assertEqual(results[0].lines, results[1].lines)
        self.assertEqual(*(result.errors.replace("\r\n", "\n") for result in results))
        return results[0]

    def test_probe(self):
        urls = ["http://docs.example.test/\u00e9\u20ac\U0001f600", "https://docs.example.test:8443/",
                "http://plain.example.test/"]
        result = self.compare(1, "probe", *urls)
        self.assertEqual(result.lines, [f"{urls[0]}: SharePoint server", f"{urls[1]}: SharePoint server",
                                        f"{urls[2]}: no SharePoint server"])

    def test_json(self):
        result = self.compare(0, "--json", "probe", "http://docs.example.test/\u00e9")
        self.assertEqual(json.loads("\n".join(result.lines)),
                         [{"url": "http://docs.example.test/\u00e9", "sharepoint": True}])

    def test_mistakes(self):
        for arguments in (["probe", "docs.example.test"], ["probe", "http:///"], ["probe"], [], ["nonsense"]):
            with self.subTest(arguments=arguments):
                self.assertEqual(self.compare(2, *arguments).lines, [])
        self.assertEqual(self.server.log(), [])

    def test_help_and_version(self):
        self.assertEqual(self.compare(0, "--version").lines, ["velandoc 1.0.0"])
        self.assertIn("Exit codes:", self.compare(0, "--help").lines)


def without_last_bit(lines):
    """A date is compared to the ten-millionth of a day: differences.json, date_last_bit."""
    return [re.sub(r'("modifiedTimeUtcOa": \d+\.\d{7})\d+', r"\1", line) for line in lines]


class DocCommand(BothHomes):
    """velandoc doc in both homes: the same lines, the same talk, the same requests, the same site behind them."""

    LIBRARY = "http://docs.example.test/sites/a/Shared%20Documents"

    def compare(self, code, *arguments, rules=None):
        results, requests, sites = [], [], []
        for home in self.homes.values():
            self.server.command("DELETE", "/site")
            self.server.prepare(rules)
            results.append(home.run_command("doc", *arguments))
            requests.append([comparable(record) for record in self.server.log()])
            sites.append(self.server.command("GET", "/site"))
        self.assertEqual([result.code for result in results], [code, code], results[1].errors)
        self.assertEqual(*(without_last_bit(result.lines) for result in results))
        self.assertEqual(*(result.errors.replace("\r\n", "\n") for result in results))
        self.assertEqual(*requests)
        self.assertEqual(*sites)
        return results[0]

    def test_show_meta_fields(self):
        for document in ("Plans/Budget%202026.xlsx", "b.xlsx", "Minutes.docx", "R%C3%A9sum%C3%A9.docx"):
            for command in ("show", "meta", "fields"):
                with self.subTest(document=document, command=command):
                    self.assertTrue(self.compare(0, command, f"{self.LIBRARY}/{document}").lines)
                    self.compare(0, command, f"{self.LIBRARY}/{document}", "--json")

    def test_status(self):
        for document, code in (("b.xlsx", 0), ("Plans/Budget%202026.xlsx", 10), ("Notes.docx", 11),
                               ("Minutes.docx", 10)):
            with self.subTest(document=document):
                self.compare(code, "status", f"{self.LIBRARY}/{document}")

    def test_changes(self):
        plain, held = f"{self.LIBRARY}/b.xlsx", f"{self.LIBRARY}/Minutes.docx"
        self.compare(0, "set", plain, "Title=B\u00fccher \u8ba1\u5212", "Summary=one\ntwo", "Status=")
        self.compare(0, "set", plain, "--escape", "Title=R&D <a> ]]> &amp;")
        self.compare(0, "checkout", plain)
        self.compare(0, "checkin", held, "--comment", "caf\u00e9 & <b>", "--type", "minor")
        self.compare(0, "undo", held)
        self.compare(1, "undo", plain)
        self.compare(1, "set", plain, "Amount=many")

    def test_failures(self):
        held = f"{self.LIBRARY}/Minutes.docx"
        self.compare(7, "show", f"{self.LIBRARY}/None.docx")
        self.compare(7, "show", held, rules=[{"match": {"operation": "GetUserInfo"}, "do": {"status": 404}}])
        self.compare(7, "show", held, rules=[{"match": {"operation": "getDocsMetaInfo"}, "do": {
            "fault": {"status": 500, "code": "Server", "text": "Out of order."}}}])
        self.compare(8, "status", held, rules=[{"match": {"operation": "GetListItems"}, "do": {
            "respond": {"status": 200, "body": "<html><title>Sign in</title></html>"}}}])
        self.compare(6, "checkout", held, rules=[{"match": {"operation": "WebUrlFromPageUrl"}, "do": {
            "respond": {"status": 200, "body": ""}}}])

    def test_mistakes(self):
        for arguments in (["show"], ["show", "ftp://docs.example.test/"], ["set", self.LIBRARY, "Title=R&D"],
                          ["checkin", self.LIBRARY, "--type", "huge"]):
            with self.subTest(arguments=arguments):
                self.assertEqual(self.compare(2, *arguments).lines, [])


class HdfsCommand(BothHomes):
    """velandoc hdfs in both homes and with both clients: the same lines, the same talk, the same requests."""

    def node(self):
        # Not through the proxy, which Wine's WinHTTP has none of.
        return f"http://localhost:{self.server.ports['http']}"

    def compare(self, code, stack, *arguments):
        results, requests = [], []
        for home in self.homes.values():
            self.server.command("DELETE", "/hdfs")
            self.server.prepare(None)
            results.append(home.run_command("hdfs", "--base-url", self.node(), "--user", "bob", "--stack", stack,
                                            *arguments))
            requests.append([comparable(record) for record in self.server.log()])
        self.assertEqual([result.code for result in results], [code, code], results[1].errors)
        self.assertEqual(results[0].lines, results[1].lines)
        # Wine itself says so now and then when a process ends while a thread of WinINet's still works.
        self.assertEqual(*(re.sub(r"wine client error:\w+: .*\n?", "", result.errors.replace("\r\n", "\n"))
                           for result in results))
        self.assertEqual(*requests)
        return results[0]

    def test_commands(self):
        for stack in ("wininet", "winhttp"):
            with self.subTest(stack=stack):
                self.assertEqual(self.compare(0, stack, "verify").lines, [f"{self.node()}: WebHDFS server"])
                self.assertEqual(len(self.compare(0, stack, "cat", "/.generated/lines/640").lines), 10)
                self.assertEqual(len(self.compare(0, stack, "head", "-n", "3", "/.generated/lines/640000").lines), 3)
                self.assertEqual(self.compare(0, stack, "ls").lines, [])
                self.assertIn("FileNotFoundException", self.compare(7, stack, "get", "/a b#%.txt").errors)
                self.compare(7, stack, "rm", "/none")
                self.compare(7, stack, "mv", "/none", "/x y")
                self.compare(2, stack, "cat", "none")

    def test_mkdir(self):
        self.assertEqual(self.compare(0, "wininet", "mkdir", "/a/b", "--permission", "700").lines, ["/a/b: made"])
        self.compare(2, "winhttp", "mkdir", "/a/b")


def add_tests():
    for path in sorted(FOLDER.glob("*.js")):
        case = run_case.Case(path)
        setattr(ScriptCases, f"test_{case.name}", lambda self, c=case: self.run_case(c))


add_tests()

if __name__ == "__main__":
    sys.exit(unittest.main(verbosity=2))
