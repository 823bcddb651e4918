"""velandoc doc: what it prints of the stand-in's sample site, what it changes there, and how it fails."""

import json
import os
import pathlib
import re
import subprocess

import support

HINT = "velandoc: type 'velandoc --help' for what it understands\n"
HOST = "http://docs.example.test"
LIBRARY = f"{HOST}/sites/a/Shared%20Documents"
BUDGET = f"{LIBRARY}/Plans/Budget%202026.xlsx"  # held by the caller, modified since
PLAIN = f"{LIBRARY}/b.xlsx"  # held by nobody
MINUTES = f"{LIBRARY}/Minutes.docx"  # held by the caller, required columns empty, times behind letters
NOTES = f"{LIBRARY}/Notes.docx"  # held by another
UNCHANGED = f"{LIBRARY}/Unchanged.xlsx"  # held by the caller
NEW_PLAN = f"{LIBRARY}/Plans/New%20plan.docx"  # held by the caller since its creation
CHARTER = f"{HOST}/sites/a/Charter.docx"  # in no library
SEVEN = ["open service", "GetUserInfo", "url to web url", "getDocsMetaInfo", "getDocsMetaInfo",
         "GetListContentType", "GetListItems"]

NOT_OPENED, INCOMPLETE, UNKNOWN_NAME, HELD_BY_CALLER, HELD_BY_ANOTHER = 7, 8, 9, 10, 11


class DocCase(support.Case):
    def setUp(self):
        super().setUp()
        self.environment["TZ"] = "CET-1CEST,M3.5.0,M10.5.0/3"
        support.server.restore()
        self.addCleanup(support.server.restore)

    def doc(self, *arguments, code=0, errors=""):
        """What `velandoc doc` prints, with the exit code and the talk as expected."""
        done = self.run_program(support.command, "doc", *arguments)
        self.assertEqual((done.returncode, done.stderr.decode()), (code, errors))
        return done.stdout.decode()

    def doc_json(self, *arguments, code=0, errors=""):
        return json.loads(self.doc(*arguments, "--json", code=code, errors=errors))

    def fails(self, arguments, code, *lines):
        """Nothing on the output; each line is a pattern for one whole line of talk."""
        done = self.run_program(support.command, "doc", *arguments)
        self.assertEqual((done.returncode, done.stdout), (code, b""), done.stderr.decode())
        told = done.stderr.decode().splitlines()
        self.assertEqual(len(told), len(lines), told)
        for line, pattern in zip(told, lines):
            self.assertRegex(line, rf"\Avelandoc: {pattern}\Z")

    def operations(self):
        return [record["operation"] for record in support.server.log()]

    def document(self, name):
        """The document as the server has it now."""
        found = [document for web in support.server.command("GET", "/site")["webs"]
                 for library in web["libraries"] for document in library["documents"]
                 if document["path"] == name]
        self.assertEqual(len(found), 1)
        return found[0]


class Show(DocCase):
    def test_everything_in_readable_rows(self):
        output = self.doc("show", BUDGET)
        self.assertEqual(self.operations(), SEVEN)
        self.assertTrue(output.startswith(
            "Document\n"
            f"  URL            {BUDGET}\n"
            f"  web            {HOST}/sites/a/\n"
            "  web's path     /sites/a\n"
            "  document's id  {A26E538F-B071-4FC2-93E5-6E7F8091A2B3}\n"
            "  list's id      {3F1C7A52-0D5B-4E0A-9B59-6C2F0E4D7A10}\n"
            "  content type   0x0101002F4C6B8A9D1E3A5C7E90B2D4F6081A3C\n"
            "  created        2025-10-07 16:00:00 +0200 (2025-10-07 14:00:00 UTC)\n"
            "\n"
            "You\n"
            "  login  EXAMPLE\\jane\n"
            "  name   Jane Doe\n"
            "\n"
            "Check-out\n"
            "  checked out     by you (Jane Doe)\n"
            "  since           2026-02-24 09:00:00 +0100 (2026-02-24 08:00:00 UTC)\n"
            "  last modified   2026-02-26 17:30:00 +0100 (2026-02-26 16:30:00 UTC)\n"
            "  modified since  yes\n"), output)
        self.assertIn("\n  offer check-in  yes\n", output)
        self.assertRegex(output, r"\n  Status +Status +Choice \(Draft, In review, Final\) +yes +Draft\n")
        self.assertRegex(output, r"\n  Regions +Regions +MultiChoice \(.*\) +no +North, South\n")
        self.assertRegex(output, r"\n  ows_CheckoutUser +12;#Jane Doe\n")
        self.assertRegex(output, r"\n  vti_timelastmodified +Thu, 26 Feb 2026 16:30:00\n")

    def test_markup_letters_and_control_characters_of_values(self):
        output = self.doc("show", PLAIN)
        self.assertIn("Budget & plan <draft>", output)
        self.assertIn("First line\\nSecond line", output)

    def test_a_server_cannot_steer_the_terminal(self):
        site = support.server.command("GET", "/site")
        for web in site["webs"]:
            for library in web["libraries"]:
                for document in library["documents"]:
                    document["values"]["Owner"] = "\u009b31mred\u202e"
                    document["meta"] = {"vti_title": "SW|\x7f"}
        support.server.command("PUT", "/site", site)
        output = self.doc("show", PLAIN)
        self.assertRegex(output, r"(?m)^  ows_Owner +\\x9B31mred\\u202E$")
        self.assertRegex(output, r"(?m)^  Owner +Owner +Text +yes +\\x9B31mred\\u202E$")
        self.assertRegex(output, r"(?m)^  vti_title +SW\|\\x7F$")

    def test_letters_of_every_kind_stay_and_columns_align(self):
        url = f"{LIBRARY}/Plans/%E8%AE%A1%E5%88%92%20Caf%C3%A9.docx"
        output = self.doc("show", url)
        self.assertRegex(output, "(?m)^  ows_Title +\u8ba1\u5212$")
        self.assertRegex(output, "(?m)^  Owner +Owner +Text +yes +Zo\u00eb$")

    def test_json(self):
        shown = self.doc_json("show", BUDGET)
        self.assertEqual(
            list(shown),
            ["url", "webUrl", "webPath", "docId", "listId", "contentTypeId", "created", "user", "checkOut",
             "modifiedTimeUtcOa", "hasFields", "hasUnfilledFields", "hasUnfilledRequiredFields", "columns",
             "row", "metaInfo", "notArrived"])
        self.assertEqual(shown["url"], BUDGET)
        self.assertEqual(shown["user"], {"login": "EXAMPLE\\jane", "name": "Jane Doe"})
        self.assertEqual(shown["checkOut"]["status"], 1)
        self.assertEqual(shown["row"]["ows_CheckoutUser"], "12;#Jane Doe")
        self.assertEqual(shown["metaInfo"]["vti_timelastmodified"], "Thu, 26 Feb 2026 16:30:00")
        self.assertAlmostEqual(shown["modifiedTimeUtcOa"], 46079.6875)
        self.assertIs(shown["hasFields"], True)
        self.assertEqual(shown["notArrived"], [])

    def test_json_cannot_steer_the_terminal_either(self):
        site = support.server.command("GET", "/site")
        for document in site["webs"][1]["libraries"][0]["documents"]:
            document["values"]["Owner"] = "\u009b31m\u202e\u8ba1"
        support.server.command("PUT", "/site", site)
        output = self.doc("show", PLAIN, "--json")
        self.assertIn('"ows_Owner": "\\u009B31m\\u202E\u8ba1"', output)
        self.assertEqual(json.loads(output)["row"]["ows_Owner"], "\u009b31m\u202e\u8ba1")

    def test_a_document_of_no_library_is_incomplete(self):
        done = self.run_program(support.command, "doc", "show", CHARTER)
        self.assertEqual(done.returncode, INCOMPLETE)
        self.assertEqual(done.stderr.decode(),
                         "velandoc: warning: getDocsMetaInfo of the folder at docs.example.test failed: "
                         "the answer names no list\n")
        self.assertIn("  list's id      not known\n", done.stdout.decode())
        self.assertIn("  checked out    not known\n", done.stdout.decode())


class Status(DocCase):
    def test_held_by_nobody(self):
        self.assertEqual(self.doc("status", PLAIN),
                         "checked out    by nobody\n"
                         "last modified  2009-07-09 12:11:12 +0200 (2009-07-09 10:11:12 UTC)\n")

    def test_held_by_the_caller_and_modified(self):
        self.assertEqual(self.doc("status", BUDGET, code=HELD_BY_CALLER),
                         "checked out     by you (Jane Doe)\n"
                         "since           2026-02-24 09:00:00 +0100 (2026-02-24 08:00:00 UTC)\n"
                         "last modified   2026-02-26 17:30:00 +0100 (2026-02-26 16:30:00 UTC)\n"
                         "modified since  yes\n"
                         "first upload    no\n"
                         "offer check-in  yes\n")

    def test_held_by_the_caller_and_unchanged(self):
        output = self.doc("status", UNCHANGED, code=HELD_BY_CALLER)
        self.assertIn("\nmodified since  no\n", output)
        self.assertIn("\noffer check-in  no\n", output)

    def test_a_first_upload(self):
        output = self.doc("status", NEW_PLAN, code=HELD_BY_CALLER)
        self.assertIn("\nfirst upload    yes\n", output)
        self.assertIn("\noffer check-in  yes\n", output)

    def test_held_by_another(self):
        output = self.doc("status", NOTES, code=HELD_BY_ANOTHER)
        self.assertIn("checked out     by Zo\u00eb M\u00fcller\n", output)
        self.assertIn("\noffer check-in  no\n", output)

    def test_from_a_second_users_view(self):
        support.server.command("PUT", "/caller", {"login": "john"})
        self.assertIn("checked out     by Jane Doe\n", self.doc("status", BUDGET, code=HELD_BY_ANOTHER))

    def test_times_that_the_component_does_not_read(self):
        output = self.doc("status", MINUTES, code=HELD_BY_CALLER)
        self.assertIn("since           2026-02-28 19:20:30 +0100 (2026-02-28 18:20:30 UTC)\n", output)
        self.assertIn("modified since  yes, by the server's times\n", output)
        self.assertIn("offer check-in  no (the component does not read these times, and says no)\n", output)
        state = self.doc_json("status", MINUTES, code=HELD_BY_CALLER)
        self.assertEqual(state["checkedOut"],
                         {"utc": "2026-02-28T18:20:30Z", "local": "2026-02-28T19:20:30+01:00",
                          "fileTime": None, "raw": "TR|28 Feb 2026 18:20:30 -0000"})
        self.assertIs(state["modifiedSinceCheckOut"], False)
        self.assertIs(state["modifiedSinceCheckOutByServerTimes"], True)
        self.assertIs(state["offerCheckIn"], False)

    def test_json(self):
        self.assertEqual(self.doc_json("status", BUDGET, code=HELD_BY_CALLER), {
            "url": BUDGET, "status": 1, "checkedOutBy": "you", "holder": "Jane Doe", "you": "Jane Doe",
            "checkedOut": {"utc": "2026-02-24T08:00:00Z", "local": "2026-02-24T09:00:00+01:00",
                           "fileTime": 134163936000000000, "raw": "Tue, 24 Feb 2026 08:00:00"},
            "lastModified": {"utc": "2026-02-26T16:30:00Z", "local": "2026-02-26T17:30:00+01:00",
                             "fileTime": 134165970000000000, "raw": "Thu, 26 Feb 2026 16:30:00"},
            "modifiedSinceCheckOut": True, "modifiedSinceCheckOutByServerTimes": None,
            "initialCreation": False, "offerCheckIn": True})
        self.assertEqual(self.doc_json("status", NOTES, code=HELD_BY_ANOTHER)["checkedOutBy"], "other")
        self.assertEqual(self.doc_json("status", PLAIN)["checkedOutBy"], "nobody")

    def test_without_a_row_it_is_not_known_who_holds_it(self):
        support.server.rules({"match": {"operation": "GetListItems"}, "do": {"fault": {
            "status": 500, "code": "Server", "text": "The list is being moved."}}})
        warning = ("velandoc: warning: GetListItems at docs.example.test failed: the server answered 500: "
                   "The list is being moved.\n")
        self.assertIn("checked out    not known\n",
                      self.doc("status", BUDGET, code=INCOMPLETE, errors=warning))
        state = self.doc_json("status", BUDGET, code=INCOMPLETE, errors=warning)
        self.assertEqual((state["status"], state["checkedOutBy"]), (None, None))


class Meta(DocCase):
    def test_all_of_it(self):
        output = self.doc("meta", MINUTES)
        self.assertRegex(output, r"(?m)^vti_timelastmodified +TR\|01 Mar 2026 12:00:00 -0000$")
        keys = [line.split()[0] for line in output.splitlines()]
        self.assertEqual(keys, sorted(keys))

    def test_some_keys_in_the_order_given(self):
        self.assertEqual(self.doc("meta", BUDGET, "vti_timelastmodified", "vti_timecreated"),
                         "vti_timelastmodified  Thu, 26 Feb 2026 16:30:00\n"
                         "vti_timecreated       Tue, 07 Oct 2025 14:00:00\n")

    def test_an_unknown_key_is_named(self):
        self.assertEqual(
            self.doc("meta", BUDGET, "VTI_TIMECREATED", "vti_timecreated", code=UNKNOWN_NAME,
                     errors="velandoc: the document has no key 'VTI_TIMECREATED': keys differ in case\n"),
            "vti_timecreated  Tue, 07 Oct 2025 14:00:00\n")

    def test_json(self):
        self.assertEqual(self.doc_json("meta", MINUTES, "vti_timelastmodified"),
                         {"vti_timelastmodified": {"raw": "TR|01 Mar 2026 12:00:00 -0000",
                                                   "text": "01 Mar 2026 12:00:00 -0000", "value": None}})
        read = self.doc_json("meta", BUDGET, "vti_timelastmodified")["vti_timelastmodified"]
        self.assertEqual((read["raw"], read["text"]), ("Thu, 26 Feb 2026 16:30:00", None))
        self.assertEqual(read["value"], "2/26/2026 4:30:00 PM")

    def test_an_exception_of_the_component_is_no_end(self):
        site = support.server.command("GET", "/site")
        for web in site["webs"]:
            for library in web["libraries"]:
                for document in library["documents"]:
                    document["meta"] = {"vti_timelastmodified": "Tomorrow"}
        support.server.command("PUT", "/site", site)
        self.assertEqual(self.doc("meta", PLAIN, "vti_timelastmodified"), "vti_timelastmodified  Tomorrow\n")
        self.assertIn("last modified  Tomorrow (no time that can be read)\n", self.doc("status", PLAIN))


class Fields(DocCase):
    def test_columns_values_and_what_is_missing(self):
        self.assertEqual(
            self.doc("fields", MINUTES).splitlines()[0].split(), ["NAME", "SHOWN", "AS", "TYPE", "REQUIRED", "VALUE"])
        output = self.doc("fields", MINUTES)
        self.assertRegex(output, r"(?m)^Owner +Owner +Text +yes +missing$")
        self.assertRegex(output, r"(?m)^Project_x0020_Code +Project Code +Text +yes +missing$")
        self.assertRegex(output, r"(?m)^Summary +Summary +Note +no$")
        self.assertTrue(output.endswith("\nrequired and missing: Owner, Project_x0020_Code\n"), output)

    def test_nothing_missing(self):
        self.assertTrue(self.doc("fields", BUDGET).endswith("\nnothing that is required is missing\n"))

    def test_json(self):
        shown = self.doc_json("fields", MINUTES)
        self.assertEqual(list(shown), ["url", "columns", "missing", "rowArrived"])
        self.assertEqual(shown["missing"], ["Owner", "Project_x0020_Code"])
        columns = {column["name"]: column for column in shown["columns"]}
        self.assertEqual(columns["Status"], {
            "name": "Status", "displayName": "Status", "type": "Choice", "format": "Dropdown", "required": True,
            "choices": ["Draft", "In review", "Final"], "default": "Draft",
            "sourceId": "{3f1c7a52-0d5b-4e0a-9b59-6c2f0e4d7a10}", "value": "Draft", "values": ["Draft"],
            "missing": False})
        self.assertIs(columns["Owner"]["missing"], True)

    def test_without_the_columns(self):
        support.server.rules({"match": {"operation": "GetListContentType"}, "do": {"status": 404}})
        done = self.run_program(support.command, "doc", "fields", BUDGET)
        self.assertEqual((done.returncode, done.stdout), (INCOMPLETE, b"none\n"))
        self.assertRegex(done.stderr.decode(),
                         r"\Avelandoc: warning: GetListContentType at docs\.example\.test failed: "
                         r"the server answered 404.*\n\Z")


class Set(DocCase):
    def test_round_trip(self):
        self.assertEqual(self.doc("set", PLAIN, "Title=B\u00fccher \u8ba1\u5212", "Status=Final", "Summary="),
                         "Title    B\u00fccher \u8ba1\u5212\nStatus   Final\nSummary\n")
        self.assertEqual(self.operations(), SEVEN + ["UpdateListItems"])
        values = self.document("b.xlsx")["values"]
        self.assertEqual((values["Title"], values["Status"], values["Summary"]),
                         ("B\u00fccher \u8ba1\u5212", "Final", ""))
        self.assertIn("B\u00fccher \u8ba1\u5212", self.doc("fields", PLAIN) + self.doc("show", PLAIN))

    def test_several_lines_and_quotes(self):
        value = "one\ntwo\t\"three\" 'four' > five"
        self.doc("set", PLAIN, f"Summary={value}")
        self.assertEqual(self.document("b.xlsx")["values"]["Summary"], value)

    def test_json(self):
        self.assertEqual(self.doc_json("set", PLAIN, "Owner=Zo\u00eb"),
                         {"url": PLAIN, "columns": {"Owner": {"written": "Zo\u00eb", "now": "Zo\u00eb"}}})

    def test_a_column_of_the_content_type_that_is_empty_and_not_required(self):
        url = f"{LIBRARY}/R%C3%A9sum%C3%A9.docx"
        self.assertNotIn("Category", self.doc("show", url))
        self.assertEqual(self.doc("set", url, "Category=People"), "Category  People\n")
        self.assertEqual(self.document("R\u00e9sum\u00e9.docx")["values"]["Category"], "People")

    def test_what_the_update_cannot_carry_is_refused_before_anything_is_sent(self):
        for value, problem in (("R&D", "it holds '&', with which the whole update would be lost: with --escape it "
                                       "is sent as a reference"),
                               ("a<b", "it holds '<', with which the whole update would be lost: with --escape it "
                                       "is sent as a reference"),
                               ("a\x1bb", "it holds the control character 0x1B, which XML cannot carry"),
                               ("a\rb", "it holds a carriage return, which would arrive as a line feed"),
                               ("   ", "it holds nothing but blanks, which would not arrive")):
            with self.subTest(value=value):
                self.doc("set", PLAIN, "Status=Final", f"Title={value}", code=2,
                         errors=f"velandoc: the value of 'Title' cannot be written: {problem}\n{HINT}")
        self.assertEqual(support.server.log(), [])

    def test_escaped_markup_arrives(self):
        value = "R&D <a> ]]> &amp;"
        self.doc("set", PLAIN, "--escape", f"Title={value}")
        self.assertEqual(self.document("b.xlsx")["values"]["Title"], value)

    def test_a_url_that_the_update_cannot_carry(self):
        before = self.document("b.xlsx")
        done = self.run_program(support.command, "doc", "set", f"{PLAIN}?a=1&b=2", "Title=x")
        self.assertEqual((done.returncode, done.stdout), (2, b""), done.stderr.decode())
        self.assertIn("velandoc: nothing was written: ", done.stderr.decode())
        self.assertNotIn("UpdateListItems", self.operations())
        self.assertEqual(self.document("b.xlsx"), before)

    def test_unknown_columns_are_named_and_nothing_is_written(self):
        before = self.document("b.xlsx")
        self.doc("set", PLAIN, "Title=x", "Nonsense=1", "Project Code=2", code=UNKNOWN_NAME, errors=(
            "velandoc: the document has no column 'Nonsense': 'velandoc doc show' names them\n"
            "velandoc: the document has no column 'Project Code': the column of that title is named "
            "'Project_x0020_Code'\n"
            "velandoc: nothing was written\n"))
        self.assertNotIn("UpdateListItems", self.operations())
        self.assertEqual(self.document("b.xlsx"), before)

    def test_the_servers_refusal(self):
        before = self.document("b.xlsx")
        self.fails(["set", PLAIN, "Amount=many"], 1, r"the server refused the update: .+ \(0x80020005\)")
        self.assertEqual(self.document("b.xlsx"), before)
        self.fails(["set", NOTES, "Title=x"], 1, r"the server refused the update: .+ \(0x80070021\)")

    def test_a_failed_update(self):
        for answer, pattern in (
                ({"fault": {"status": 500, "code": "Server", "text": "No."}},
                 r"UpdateListItems at docs\.example\.test failed: the server answered 500: No\."),
                ({"status": 404}, r"UpdateListItems at docs\.example\.test failed: the server answered 404.*"),
                ({"respond": {"status": 200, "body": "<html><title>Sign in</title></html>"}},
                 r"UpdateListItems at docs\.example\.test failed: the server said: Sign in"),
                ({"respond": {"status": 200, "body": ""}},
                 r"UpdateListItems at docs\.example\.test failed: the answer holds no row")):
            with self.subTest(answer=answer):
                support.server.rules({"match": {"operation": "UpdateListItems"}, "do": answer})
                code = 1 if "fault" in answer else 6
                self.fails(["set", PLAIN, "Title=x"], code, rf"cannot write '{re.escape(PLAIN)}': {pattern}")

    def test_without_a_row_nothing_is_written(self):
        support.server.rules({"match": {"operation": "GetListItems"}, "do": {"status": 503}})
        done = self.run_program(support.command, "doc", "set", PLAIN, "Title=x")
        self.assertEqual((done.returncode, done.stdout), (INCOMPLETE, b""))
        self.assertIn("velandoc: nothing was written: ", done.stderr.decode())
        self.assertNotIn("UpdateListItems", self.operations())

    def test_mistakes(self):
        for words, message in ((["Title"], "'Title' is no assignment: type NAME=VALUE"),
                               (["=x"], "'=x' names no column: type NAME=VALUE"),
                               (["A=1", "A=2"], "column 'A' is given two values")):
            with self.subTest(words=words):
                self.doc("set", PLAIN, *words, code=2, errors=f"velandoc: {message}\n{HINT}")
        self.assertEqual(support.server.log(), [])


class CheckOut(DocCase):
    def test_out_status_in(self):
        self.assertEqual(self.doc("checkout", PLAIN), f"checked out {PLAIN}\n")
        self.assertEqual(self.operations(), SEVEN + ["WebUrlFromPageUrl", "CheckOutFile"])
        self.assertEqual(self.document("b.xlsx")["check_out"]["user"], "EXAMPLE\\jane")
        self.doc("status", PLAIN, code=HELD_BY_CALLER)
        support.server.command("PUT", "/caller", {"login": "john"})
        self.assertIn("by Jane Doe\n", self.doc("status", PLAIN, code=HELD_BY_ANOTHER))
        support.server.command("PUT", "/caller", {"login": "jane"})
        self.assertEqual(self.doc("checkin", PLAIN, "--comment", "quarter <2> & \u00e9", "--type", "minor"),
                         f"checked in {PLAIN}\n")
        document = self.document("b.xlsx")
        self.assertIsNone(document["check_out"])
        self.assertEqual((document["comment"], document["version"]), ("quarter <2> & \u00e9", "2.1"))
        self.doc("status", PLAIN)

    def test_kinds_of_check_in(self):
        for word, sent, version in (("major", "1", "2.0"), ("overwrite", "2", None), ("0", "0", None)):
            with self.subTest(word=word):
                support.server.restore()
                before = self.document("Minutes.docx")["version"]
                self.doc("checkin", MINUTES, f"--type={word}")
                body = [record["body"] for record in support.server.log()
                        if record["operation"] == "CheckInFile"][-1]
                self.assertRegex(body, rf"<checkinType[^>]*>{sent}</checkinType>")
                after = self.document("Minutes.docx")["version"]
                self.assertEqual(after, version or {"overwrite": before, "0": "1.4"}[word])

    def test_major_is_the_kind_without_a_word(self):
        self.doc("checkin", MINUTES)
        self.assertEqual(self.document("Minutes.docx")["version"], "2.0")

    def test_undo(self):
        self.assertEqual(self.doc("undo", BUDGET), f"undid the check-out of {BUDGET}\n")
        self.assertIsNone(self.document("Plans/Budget 2026.xlsx")["check_out"])

    def test_json(self):
        self.assertEqual(self.doc_json("checkout", PLAIN), {"url": PLAIN, "done": "checked out"})
        self.assertEqual(self.doc_json("checkin", PLAIN, "--comment", "c"),
                         {"url": PLAIN, "done": "checked in", "comment": "c", "type": 1})

    def test_the_server_answers_false(self):
        self.fails(["checkout", BUDGET], 1,
                   rf"cannot check out '{re.escape(BUDGET)}': the server refused \(CheckOutFile answered "
                   r"[Ff]alse\); the document was checked out by you \(Jane Doe\)")
        self.fails(["checkin", PLAIN], 1,
                   rf"cannot check in '{re.escape(PLAIN)}': the server refused \(CheckInFile answered "
                   r"[Ff]alse\); the document was checked out by nobody")
        self.fails(["undo", PLAIN], 1,
                   rf"cannot undo the check-out of '{re.escape(PLAIN)}': the server refused \(UndoCheckOut "
                   r"answered [Ff]alse\); the document was checked out by nobody")

    def test_the_server_refuses_with_a_fault(self):
        self.fails(["checkout", NOTES], 1,
                   rf"cannot check out '{re.escape(NOTES)}': CheckOutFile at docs\.example\.test failed: the "
                   r"server answered 500: .+; the document was checked out by Zo\u00eb M\u00fcller")

    def test_a_kind_that_the_server_decides_on(self):
        self.fails(["checkin", BUDGET, "--type", "7"], 1,
                   rf"cannot check in '{re.escape(BUDGET)}': CheckInFile at docs\.example\.test failed: the "
                   r"server answered 500: .+; the document was checked out by you \(Jane Doe\)")

    def test_failures_of_the_web_lookup_and_of_the_call(self):
        for command, operation in (("checkout", "CheckOutFile"), ("checkin", "CheckInFile"),
                                   ("undo", "UndoCheckOut")):
            for step in ("WebUrlFromPageUrl", operation):
                for answer, what in (({"status": 404}, "the server answered 404.*"),
                                     ({"reset": {"at": "request"}}, r".+ \(error 120\d\d\)"),
                                     ({"respond": {"status": 200, "body": "words"}}, "the server said: words"),
                                     ({"respond": {"status": 200, "body": ""}}, "the answer holds no result")):
                    with self.subTest(step=step, answer=answer):
                        support.server.rules({"match": {"operation": step}, "do": answer})
                        name = rf"the question for the web \({step}\)" if step != operation else step
                        self.fails([command, BUDGET], 6,
                                   rf"cannot .+ '{re.escape(BUDGET)}': {name} at docs\.example\.test failed: {what}")

    def test_mistakes(self):
        for arguments, message in (
                (["checkin", PLAIN, "--type", "huge"],
                 "'huge' is no kind of check-in: type minor, major, overwrite or a whole number"),
                (["checkin", PLAIN, "--comment", "a\x07"],
                 "the comment cannot be sent: it holds the control character 0x07, which XML cannot carry")):
            with self.subTest(arguments=arguments):
                self.doc(*arguments, code=2, errors=f"velandoc: {message}\n{HINT}")
        for arguments in (["checkout", PLAIN, "--comment", "x"], ["undo", PLAIN, "--type", "minor"],
                          ["show", PLAIN, "more"]):
            with self.subTest(arguments=arguments):
                done = self.run_program(support.command, "doc", *arguments)
                self.assertEqual((done.returncode, done.stdout), (2, b""))
                self.assertIn(arguments[2], done.stderr.decode())
        self.assertEqual(support.server.log(), [])


class Opening(DocCase):
    """The seven requests of an open, each failing in several ways."""

    STYLES = (
        ({"status": 404}, r"the server answered 404.*"),
        ({"fault": {"status": 500, "code": "Server", "text": "Out of order."}},
         r"the server answered 500: Out of order\."),
        ({"auth": {"scheme": "basic", "user": "u", "password": "p"}},
         r"the server answered 401: it wants another login"),
        ({"reset": {"at": "request"}}, r".+ \(error 120\d\d\)"),
        ({"close": {"at": "request"}}, r".+ \(error 12\d\d\d\)"),
        ({"truncate": {"length": 1000, "sent": 10}}, r"the answer broke off: .+ \(error 12030\)"),
        ({"garbage": {"count": 64, "close": True}}, r"the answer is not HTTP \(error 12152\)"),
        ({"respond": {"status": 200, "body": "<html><head><title>Sign in</title></head></html>"}},
         r"the server said: Sign in"),
        ({"respond": {"status": 200, "body": "\x1b[2Jhello"}}, r"the server said: \\x1B\[2Jhello"),
        ({"respond": {"status": 200, "body": ""}}, r"(the answer|the server|the list) .+"),
    )
    # What a request of an open is called, and what its failure leads to.
    STEPS = (
        ("open service", 0, r"the question for the login \(open service\)", None),
        ("GetUserInfo", 0, r"the question for the user's name \(GetUserInfo\)", NOT_OPENED),
        ("url to web url", 0, r"the question for the web \(url to web url\)", NOT_OPENED),
        ("getDocsMetaInfo", 0, "getDocsMetaInfo of the document", NOT_OPENED),
        ("getDocsMetaInfo", 1, "getDocsMetaInfo of the folder", INCOMPLETE),
        ("GetListContentType", 0, "GetListContentType", INCOMPLETE),
        ("GetListItems", 0, "GetListItems", INCOMPLETE),
    )

    def test_every_step_in_every_style(self):
        for operation, skip, name, code in self.STEPS:
            for answer, what in self.STYLES:
                with self.subTest(operation=operation, skip=skip, answer=answer):
                    # Without "times": on a kept connection that is reset a request is sent once more.
                    support.server.rules({"match": {"operation": operation}, "skip": skip, "do": answer})
                    done = self.run_program(support.command, "doc", "show", BUDGET)
                    told = done.stderr.decode()
                    failure = rf"{name} at docs\.example\.test failed: {what}\n"
                    if code == NOT_OPENED:
                        self.assertEqual((done.returncode, done.stdout), (NOT_OPENED, b""), told)
                        self.assertRegex(told, rf"\Avelandoc: cannot open '{re.escape(BUDGET)}'\n"
                                               rf"velandoc: {failure}\Z")
                    elif code == INCOMPLETE:
                        self.assertEqual(done.returncode, INCOMPLETE, told)
                        self.assertRegex(told, rf"\Avelandoc: warning: {failure}\Z")
                        self.assertIn(b"{A26E538F-B071-4FC2-93E5-6E7F8091A2B3}", done.stdout)
                    else:
                        # Without a login the directory is asked for nobody, and does not know him.
                        self.assertEqual((done.returncode, done.stdout), (NOT_OPENED, b""), told)
                        self.assertRegex(told, rf"\Avelandoc: cannot open '{re.escape(BUDGET)}'\nvelandoc: {failure}"
                                               r"velandoc: the question for the user's name .+\n\Z")

    def test_status_pages_are_quoted(self):
        page = ("<html><head><title>vermeer RPC packet</title></head>\n<body>\n<p>method=x\n<p>status=\n<ul>\n"
                "<li>status=589830\n<li>osstatus=0\n<li>msg=The folder &#34;x&#34; is &#195;&#169; <b>gone</b>.\n"
                "<li>osmsg=\n</ul>\n</body>\n</html>\n")
        for operation, skip, name, code in self.STEPS[2:4]:
            with self.subTest(operation=operation):
                support.server.rules({"match": {"operation": operation}, "skip": skip, "times": 1,
                                      "do": {"respond": {"status": 200, "body": page}}})
                self.fails(["show", BUDGET], code, rf"cannot open '{re.escape(BUDGET)}'",
                           rf'{name} at docs\.example\.test failed: the server said: The folder "x" is \u00e9 gone\.')

    def test_an_unknown_document(self):
        self.fails(["show", f"{LIBRARY}/None.docx"], NOT_OPENED,
                   rf"cannot open '{re.escape(LIBRARY)}/None\.docx'",
                   r"getDocsMetaInfo of the document at docs\.example\.test failed: the server knows no such document")

    def test_nobody_listens(self):
        self.environment["http_proxy"] = "http://127.0.0.1:1"
        self.fails(["status", BUDGET], NOT_OPENED, rf"cannot open '{re.escape(BUDGET)}'",
                   r"the question for the login \(open service\) at docs\.example\.test failed: .+ \(error 12029\)",
                   r"the question for the user's name \(GetUserInfo\) at docs\.example\.test failed: .+ "
                   r"\(error 12029\)")

    def test_a_certificate_that_is_not_trusted(self):
        self.fails(["status", "https://expired.example.test/a.docx"], NOT_OPENED, "cannot open '.+'",
                   r"the question for the login \(open service\) at expired\.example\.test failed: the server's "
                   r"certificate is expired or not yet valid \(error 12037\)",
                   r"the question for the user's name \(GetUserInfo\) at expired\.example\.test failed: .+")

    def test_credentials_from_netrc_decide_who_is_asking(self):
        support.server.rules({"do": {"auth": {"scheme": "basic", "user": "john", "password": "p"}}})
        self.write(".netrc", "machine docs.example.test login john password p\n").chmod(0o600)
        self.assertIn("by Jane Doe\n", self.doc("status", BUDGET, code=HELD_BY_ANOTHER))

    def test_a_port_is_warned_of(self):
        done = self.run_program(support.command, "doc", "status", PLAIN.replace(".test", ".test:8080"))
        self.assertIn("velandoc: warning: port 8080 of 'http://docs.example.test:8080/sites/a/Shared%20Documents/"
                      "b.xlsx' is used for the document's meta-info alone: all else asks the scheme's default port\n",
                      done.stderr.decode())

    def test_over_https(self):
        self.assertIn("by you (Jane Doe)", self.doc("status", BUDGET.replace("http:", "https:"), code=HELD_BY_CALLER))
        self.assertTrue(all(record["tls"] for record in support.server.log()))

    def test_unc_text(self):
        path = "\\\\docs.example.test\\sites\\a\\Shared Documents\\Plans\\Budget 2026.xlsx"
        self.assertIn("by you (Jane Doe)", self.doc("status", path, code=HELD_BY_CALLER))
        self.assertEqual(self.operations(), SEVEN)

    def test_a_path_on_no_share(self):
        for path in ("a.docx", "/nowhere/a.docx"):
            with self.subTest(path=path):
                self.doc("status", path, code=NOT_OPENED, errors=(
                    f"velandoc: '{path}' is no path on a WebDAV share that is known here: type the document's URL\n"))
        self.assertEqual(support.server.log(), [])

    def test_mistakes(self):
        for target, message in (
                ("ftp://docs.example.test/a", "'ftp://docs.example.test/a' cannot be opened: only http:// and "
                                              "https:// are spoken"),
                ("http:///a", "'http:///a' names no host: type 'http://HOST'"),
                ("", "'' is no document: type its URL or its path on a WebDAV share"),
                (b"\xff", "a document's URL or path must be UTF-8 text")):
            with self.subTest(target=target):
                self.doc("show", target, code=2, errors=f"velandoc: {message}\n{HINT}")
        for arguments in ([], ["nonsense"], ["show"], ["set", PLAIN]):
            with self.subTest(arguments=arguments):
                self.expect(["doc", *arguments], 2, "", re.compile(rf"velandoc: .+\n{re.escape(HINT)}", re.S))
        self.assertEqual(support.server.log(), [])

    def test_no_input(self):
        support.server.rules({"do": {"auth": {"scheme": "basic", "user": "john", "password": "p"}}})
        self.fails(["show", BUDGET, "--no-input"], NOT_OPENED, "cannot open .+",
                   r"the question for the login \(open service\) at docs\.example\.test failed: the server answered "
                   "401: it wants another login",
                   r"the question for the user's name \(GetUserInfo\) at docs\.example\.test failed: the server "
                   "answered 401: it wants another login")

    def test_help(self):
        done = self.run_program(support.command, "doc", "--help")
        self.assertEqual((done.returncode, done.stderr), (0, b""))
        for word in ("show", "meta", "status", "fields", "set", "edit", "checkout", "checkin", "undo"):
            self.assertIn(word, done.stdout.decode())
        done = self.run_program(support.command, "doc", "set", "--help")
        self.assertEqual((done.returncode, done.stderr), (0, b""))
        self.assertIn("Usage: velandoc doc set [OPTIONS] TARGET ASSIGNMENT...", done.stdout.decode())

    def test_closed_output(self):
        reading, writing = os.pipe()
        os.close(reading)
        for extra in ([], ["--json"]):
            done = subprocess.run([support.command, "doc", "show", PLAIN, *extra], env=self.environment,
                                  stdin=subprocess.DEVNULL, stdout=writing, stderr=subprocess.PIPE,
                                  timeout=support.TIMEOUT, check=False)
            self.assertEqual((done.returncode, done.stderr), (5, b""))
        os.close(writing)
