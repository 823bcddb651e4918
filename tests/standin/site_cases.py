"""What happens to the site: check-outs, updates, several users, its file, rules about operations."""

import base64
import concurrent.futures
import json
import os

import support
from site_support import (
    B,
    BUDGET,
    DIRECTORY,
    FOLDER_URL,
    LIBRARY,
    LISTS,
    MINUTES,
    NEW_PLAN,
    NOTES,
    SiteTest,
    batch,
    elements,
    envelope,
    query,
    row_of,
)
from support import NAMESPACE, Server

AUTHOR = "/_vti_bin/_vti_aut/author.dll"
SAMPLE = os.path.join(support.ROOT, "standin", "sites", "sample.json")


class CheckOutTest(SiteTest):
    def versions(self, unique_id):
        row = self.row(unique_id)
        return row["ows__UIVersionString"], row["ows__Level"], row["ows_owshiddenversion"]

    def test_check_out_and_in(self):
        self.assertEqual(self.check_out("b.xlsx"), "true")
        meta = self.meta("Shared+Documents%2fb.xlsx")
        self.assertEqual(meta["vti_sourcecontroltimecheckedout"], "Tue, 03 Mar 2026 09:30:00")
        self.assertEqual(meta["vti_sourcecontrolcheckedoutby"], "SR|EXAMPLE\\jane")
        self.assertEqual(meta["vti_etag"], f'SW|"{B},6"')
        self.assertEqual(meta["vti_timelastmodified"], "Thu, 09 Jul 2009 10:11:12")
        self.assertEqual(self.row(B)["ows_CheckoutUser"], "12;#Jane Doe")
        self.assertEqual(self.versions(B), ("2.1", "255", "6"))

        self.assertEqual(self.check_in("b.xlsx", 0, "a &lt; b"), "true")
        self.assertEqual(self.versions(B), ("2.1", "2", "7"))
        self.assertEqual(self.row(B)["ows__CheckinComment"], "1;#a < b")
        self.assertNotIn("ows_CheckoutUser", self.row(B))
        self.assertNotIn("vti_sourcecontroltimecheckedout", self.meta("Shared+Documents%2fb.xlsx"))

    def test_types_of_check_in(self):
        for kind, version in ((0, "2.1"), (1, "3.0"), (2, "2.0")):
            with self.subTest(kind):
                self.server.command("DELETE", "/site")
                self.check_out("b.xlsx")
                self.assertEqual(self.check_in("b.xlsx", kind), "true")
                self.assertEqual(self.row(B)["ows__UIVersionString"], version)

    def test_types_of_the_first_check_in(self):
        for kind, version in ((0, "0.1"), (1, "1.0"), (2, "0.1")):
            with self.subTest(kind):
                self.server.command("DELETE", "/site")
                self.assertEqual(self.row(NEW_PLAN)["ows__UIVersionString"], "0.1")
                self.assertEqual(self.check_in("Plans/New%20plan.docx", kind), "true")
                self.assertEqual(self.row(NEW_PLAN)["ows__UIVersionString"], version)

    def test_a_library_without_minor_versions(self):
        url = elements(pageUrl="http://h/Shared%20Documents/Welcome.docx")
        path = "/_vti_bin/lists.asmx"
        for kind, version in ((0, "SR|V4.0"), (1, "SR|V5.0"), (2, "SR|V5.0")):
            self.result("CheckOutFile", url + elements(checkOutToLocal="true"), path=path)
            self.result("CheckInFile", url + elements(comment="", checkinType=kind), path=path)
            self.assertEqual(
                self.meta("Shared+Documents%2fWelcome.docx", web="")["vti_sourcecontrolversion"], version
            )

    def test_undo_brings_the_columns_back(self):
        before = self.row(B)
        self.check_out("b.xlsx")
        self.result("UpdateListItems", batch(1, FOLDER_URL + "b.xlsx", ("Title", "new"), ("Category", "c")))
        self.assertEqual(self.row(B)["ows_Title"], "new")
        self.assertEqual(self.undo("b.xlsx"), "true")
        after = self.row(B)
        self.assertEqual(after.pop("ows_owshiddenversion"), "8")
        before.pop("ows_owshiddenversion")
        self.assertEqual(after, before)

    def test_undo_of_what_was_never_checked_in_deletes_it(self):
        self.assertEqual(self.undo("Plans/New%20plan.docx"), "true")
        self.assertIsNone(self.row(NEW_PLAN))
        page = self.meta_page("Shared+Documents%2fPlans%2fNew+plan.docx")
        self.assertIn(b"<p>failedUrls=\n", page)

    def test_nothing_to_do_is_false(self):
        self.assertEqual(self.undo("b.xlsx"), "false")
        self.assertEqual(self.check_in("b.xlsx"), "false")
        self.assertEqual(self.check_out("Minutes.docx"), "false")
        self.assertEqual(self.row(B)["ows_owshiddenversion"], "5")

    def test_another_user_s_check_out(self):
        page = elements(pageUrl=FOLDER_URL + "Notes.docx")
        before = self.row(NOTES)
        for method, more in (
            ("CheckOutFile", elements(checkOutToLocal="true")),
            ("CheckInFile", elements(comment="", checkinType="1")),
            ("UndoCheckOut", ""),
        ):
            with self.subTest(method):
                body = self.refusal(method, page + more, "0x80070021")
                self.assertIn("is checked out for editing by EXAMPLE\\zoe.", body)
        self.assertEqual(self.row(NOTES), before)

    def test_several_users(self):
        self.be("john")
        self.assertEqual(self.check_out("b.xlsx"), "true")
        self.be("EXAMPLE\\zoe")
        self.assertEqual(self.row(B)["ows_CheckoutUser"], "15;#John Roe")
        self.assertEqual(self.check_in("Notes.docx", 1, "done"), "true")
        self.assertEqual(self.check_out("R%C3%A9sum%C3%A9.docx"), "true")
        self.be("jane")
        page = elements(pageUrl=FOLDER_URL + "b.xlsx")
        self.refusal("UndoCheckOut", page, "0x80070021")
        self.assertEqual(self.check_out("Notes.docx"), "true")
        self.be("john")
        self.assertEqual(self.undo("b.xlsx"), "true")
        state = self.server.command("GET", "/site")
        held = {
            document["path"]: document["check_out"]["user"]
            for document in state["webs"][1]["libraries"][0]["documents"]
            if document["check_out"]
        }
        self.assertEqual(held["Notes.docx"], "EXAMPLE\\jane")
        self.assertEqual(held["Résumé.docx"], "EXAMPLE\\zoe")
        self.assertNotIn("b.xlsx", held)

    def test_a_caller_that_the_site_does_not_know(self):
        page = elements(pageUrl=FOLDER_URL + "b.xlsx")
        self.be("")
        self.refusal("CheckOutFile", page + elements(checkOutToLocal="true"), "0x80070005")
        body = self.result("UpdateListItems", batch(1, FOLDER_URL + "b.xlsx", ("Title", "x")))
        self.assertIn("<ErrorCode>0x80070005</ErrorCode>", body)
        self.assertIsNotNone(self.row(B))

    def test_one_of_many_gets_it(self):
        """Many connections at once: exactly one check-out succeeds, and no call is lost."""
        body = envelope("CheckOutFile", elements(pageUrl=FOLDER_URL + "b.xlsx", checkOutToLocal="true"))

        def check_out(_):
            answer, text = self.soap(LISTS, body, SOAPAction=NAMESPACE + "CheckOutFile")
            return answer.status, b">true<" in text

        with concurrent.futures.ThreadPoolExecutor(16) as pool:
            results = list(pool.map(check_out, range(64)))
        self.assertEqual({status for status, _ in results}, {200})
        self.assertEqual(sum(done for _, done in results), 1)
        self.assertEqual(self.row(B)["ows_owshiddenversion"], "6")

    def test_credentials_say_who_calls(self):
        others = {"john": "two", "nobody": "three"}
        rule = {"scheme": ["basic", "ntlm", "digest"], "user": "jane", "password": "one", "others": others}
        self.server.rules({"do": {"auth": rule}})
        cases = [
            ("jane:one", b"EXAMPLE&#92;jane"),
            ("john:two", b"EXAMPLE&#92;john"),
            ("nobody:three", b"nobody"),
            ("jane:two", None),
        ]
        for scheme in ("--basic", "--digest", "--ntlm"):
            for credentials, login in cases:
                with self.subTest(scheme=scheme, credentials=credentials):
                    status, page = self.curl_rpc(self.http_url(AUTHOR), scheme, "-u", credentials)
                    self.assertEqual(status, 200 if login else 401)
                    if login:
                        self.assertIn(b"<li>vti_username\n<li>SX|" + login + b"\n", page)

    def test_clock(self):
        self.server.command("PUT", "/clock", {"time": "2026-03-05T10:00:00Z"})
        self.check_out("b.xlsx")
        meta = self.meta("Shared+Documents%2fb.xlsx")
        self.assertEqual(meta["vti_sourcecontroltimecheckedout"], "Thu, 05 Mar 2026 10:00:00")
        self.server.command("PUT", "/clock", {"time": None})
        self.result("UpdateListItems", batch(1, FOLDER_URL + "b.xlsx", ("Title", "x")))
        self.assertRegex(self.row(B)["ows_Modified"], r"^20\d\d-\d\d-\d\d \d\d:\d\d:\d\d$")
        self.assertNotEqual(self.row(B)["ows_Modified"], "2026-03-05 10:00:00")
        for wrong in ("2026-03-05", "2026-02-30T10:00:00Z", "2026-03-05T24:00:00Z", "2026-03-05T10:00:00+", ""):
            with self.subTest(wrong), self.assertRaises(ValueError):
                self.server.command("PUT", "/clock", {"time": wrong})


class UpdateTest(SiteTest):
    def update(self, *values, item=1, name="b.xlsx"):
        return self.result("UpdateListItems", batch(item, FOLDER_URL + name, *values))

    def assert_code(self, body, code):
        self.assertIn(f'<Results><Result ID="1,Update"><ErrorCode>{code}</ErrorCode><ErrorText>', body)
        self.assertNotIn("z:row", body)

    def test_update(self):
        body = self.update(("Title", "a &amp; b"), ("Category", ""), ("Amount", "7"), ("Approved", "false"))
        self.assertIn('<Results><Result ID="1,Update"><ErrorCode>0x00000000</ErrorCode><z:row ows_ID="1" ', body)
        row = row_of(body)
        self.assertEqual(row, self.row(B))
        self.assertEqual(row["ows_Title"], "a & b")
        self.assertEqual(row["ows_Category"], "")
        self.assertEqual(row["ows_Amount"], "7.00000000000000")
        self.assertEqual(row["ows_Approved"], "0")
        self.assertEqual(row["ows_Editor"], "12;#Jane Doe")
        self.assertEqual(row["ows_Modified"], "2026-03-03 09:30:00")
        self.assertEqual((row["ows__UIVersionString"], row["ows_owshiddenversion"]), ("2.1", "6"))
        self.assertEqual(self.meta("Shared+Documents%2fb.xlsx")["Title"], "SW|a & b")

    def test_update_of_nothing(self):
        self.assertEqual(row_of(self.update())["ows_Title"], "Budget & plan <draft>")

    def test_update_of_the_own_check_out_makes_no_version(self):
        row = row_of(self.update(("Owner", "Jane"), item=2, name="Minutes.docx"))
        self.assertEqual((row["ows__UIVersionString"], row["ows_Owner"]), ("1.4", "Jane"))

    def test_values(self):
        cases = [
            ("Amount", "-1250.5", "-1250.50000000000"),
            ("Amount", "0", "0.00000000000000"),
            ("Amount", "1e20", "100000000000000000000"),
            ("Due", "2026-04-01 10:11:12", "2026-04-01 10:11:12"),
            ("Due", "2026-04-01T10:11:12Z", "2026-04-01 10:11:12"),
            ("Approved", "TRUE", "1"),
            ("Status", "of no list", "of no list"),
            ("Regions", ";#North;#", ";#North;#"),
            ("Amount", "", ""),
        ]
        for name, value, stored in cases:
            with self.subTest(value):
                self.assertEqual(row_of(self.update((name, value)))["ows_" + name], stored)

    def test_refusals(self):
        before = self.row(B)
        self.assert_code(self.update(("Title", "x"), ("Nothing", "y")), "0x81020014")
        self.assert_code(self.update(("Title", "x"), ("Modified", "y")), "0x81020014")
        for name, value in (("Amount", "1,5"), ("Amount", "nan"), ("Due", "tomorrow"), ("Approved", "2")):
            with self.subTest(value):
                self.assert_code(self.update(("Title", "x"), (name, value)), "0x80020005")
        self.assert_code(self.update(item=99), "0x81020016")
        self.assert_code(self.update(item=""), "0x81020016")
        self.assert_code(self.update(item=2), "0x81020016")
        self.assert_code(self.update(item=3, name="Notes.docx"), "0x80070021")
        self.assertEqual(self.row(B), before)

    def test_a_library_that_wants_a_check_out(self):
        site = self.server.command("GET", "/site")
        site["webs"][1]["libraries"][0]["needs_check_out"] = True
        self.server.command("PUT", "/site", site)
        self.assert_code(self.update(("Title", "x")), "0x81020073")
        self.check_out("b.xlsx")
        self.assertEqual(row_of(self.update(("Title", "x")))["ows_Title"], "x")

    def test_batches_of_another_form(self):
        good = batch(1, FOLDER_URL + "b.xlsx", ("Title", "x"))
        method = good[good.index("<Method"):good.index("</Batch>")]
        changes = [
            ("'Update'", "'Delete'"),
            (" ID='1'", ""),
            ("<Batch xmlns=''>", "<Batch xmlns='' OnError='Return'>"),
            ("</Batch>", method + "</Batch>"),
            ("<Field Name='ID'>1</Field>", ""),
            ("<FileRef Name='FileRef'>", "<Field Name='FileRef'>"),
            ("<FileRef Name='FileRef'>", "<FileRef>"),
            ("<Field Name='Title'>x</Field>", "<Field>x</Field>"),
            ("<Field Name='Title'>x</Field>", "<field Name='Title'>x</field>"),
            ("<Field Name='Title'>x</Field>", "<Field Name='Title'><b/></Field>"),
            ("Method", "method"),
            ("Batch", "batch"),
        ]
        for old, new in changes:
            with self.subTest(new):
                text = good.replace(old, new)
                if old == "<FileRef Name='FileRef'>":
                    text = text.replace("</FileRef>", "</Field>" if "Field " in new else "</FileRef>")
                self.assertNotEqual(text, good)
                self.refusal("UpdateListItems", text, "0x82000007")
        # The parameter left out, as for a fragment that could not be read.
        self.refusal("UpdateListItems", elements(listName=LIBRARY), "0x82000007")
        self.refusal("UpdateListItems", good.replace(LIBRARY, "x"), "0x82000006")


class SiteFileTest(SiteTest):
    def test_state_is_a_site(self):
        state = self.server.command("GET", "/site")
        self.assertEqual(state["caller"], "EXAMPLE\\jane")
        self.server.command("PUT", "/site", state)
        self.assertEqual(self.server.command("GET", "/site"), state)

    def test_state_keeps_what_undo_brings_back(self):
        self.check_out("b.xlsx")
        self.result("UpdateListItems", batch(1, FOLDER_URL + "b.xlsx", ("Title", "new")))
        state = self.server.command("GET", "/site")
        self.server.command("DELETE", "/site")
        self.server.command("PUT", "/site", state)
        self.assertEqual(self.row(B)["ows_Title"], "new")
        self.undo("b.xlsx")
        self.assertEqual(self.row(B)["ows_Title"], "Budget & plan <draft>")

    def test_sample_is_what_is_built_in(self):
        with open(SAMPLE, encoding="utf-8") as file:
            sample = json.load(file)
        state = self.server.command("GET", "/site")
        self.server.command("PUT", "/site", sample)
        self.assertEqual(self.server.command("GET", "/site"), state)

    def test_empty_site(self):
        self.server.command("PUT", "/site", {})
        self.assertEqual(self.soap()[0].status, 404)
        self.assertEqual(self.rpc(AUTHOR, "method=open+service")[0].status, 404)

    def test_large_row(self):
        site = self.server.command("GET", "/site")
        library = site["webs"][1]["libraries"][0]
        library["documents"][0]["values"] = {f"Column{i}": "v" for i in range(2000)}
        library["columns"] += [{"name": f"C{i}", "type": "Text"} for i in range(500)]
        library["content_types"][0]["columns"] += [f"C{i}" for i in range(500)]
        self.server.command("PUT", "/site", site)
        self.assertEqual(len(self.row(B)), 2021)

    def test_mistakes_are_refused(self):
        def library(site):
            return site["webs"][1]["libraries"][0]

        def document(site):
            return library(site)["documents"][0]

        changes = {
            "unknown key": lambda s: s.update(user=[]),
            "key of a document": lambda s: document(s).update(name="x"),
            "wrong type": lambda s: s.update(users={}),
            "clock": lambda s: s.update(clock="now"),
            "caller": lambda s: s.update(caller="nobody"),
            "author": lambda s: document(s).update(author="nobody"),
            "holder": lambda s: document(s).update(check_out={"user": "x", "time": "2026-01-01T00:00:00Z"}),
            "time of a check-out": lambda s: document(s).update(check_out={"user": "jane", "time": "x"}),
            "GUID": lambda s: document(s).update(unique_id=B.lower()),
            "GUID without braces": lambda s: library(s).update(id=LIBRARY[1:-1]),
            "two documents of one id": lambda s: document(s).update(unique_id=BUDGET),
            "two documents of one path": lambda s: document(s).update(path="MINUTES.docx"),
            "two items of one number": lambda s: document(s).update(item_id=2),
            "no item": lambda s: document(s).update(item_id=0),
            "negative item": lambda s: document(s).update(item_id=-1),
            "large item": lambda s: document(s).update(item_id=1 << 31),
            "content type": lambda s: document(s).update(content_type="0x01"),
            "version": lambda s: document(s).update(version="1"),
            "minor version": lambda s: document(s).update(version="1.512"),
            "unborn": lambda s: document(s).update(version="0.0"),
            "time form": lambda s: document(s).update(time_form="iso"),
            "path": lambda s: document(s).update(path="/b.xlsx"),
            "folder": lambda s: library(s)["folders"].append("a//b"),
            "two folders of one name": lambda s: library(s)["folders"].append("plans"),
            "web": lambda s: s["webs"][1].update(path="sites/a"),
            "two webs of one path": lambda s: s["webs"][1].update(path="/"),
            "column of a content type": lambda s: library(s)["content_types"][0]["columns"].append("x"),
            "check-out outside of libraries": lambda s: s["webs"][1]["documents"][0].update(
                check_out={"user": "jane", "time": "2026-01-01T00:00:00Z"}),
            "too many users": lambda s: s.update(
                users=[{"id": i, "login": f"u{i}", "name": "u"} for i in range(1001)]),
            "too many values": lambda s: document(s).update(values={str(i): "" for i in range(5001)}),
            "too much": lambda s: document(s).update(comment="x" * (4 << 20)),
        }
        before = self.server.command("GET", "/site")
        for why, change in changes.items():
            with self.subTest(why):
                site = json.loads(json.dumps(before))
                change(site)
                with self.assertRaises(ValueError):
                    self.server.command("PUT", "/site", site)
        for command in (("PUT", "/site", []), ("POST", "/site", {}), ("PUT", "/caller", {"login": "x"}),
                        ("PUT", "/caller", {}), ("PUT", "/caller", {"login": "jane", "a": 1})):
            with self.subTest(command), self.assertRaises(ValueError):
                self.server.command(*command)
        self.assertEqual(self.server.command("GET", "/site"), before)

    def test_option_names_another_site(self):
        path = os.path.join(self.folder.name, "site.json")
        folder = os.path.join(self.folder.name, "other")
        os.makedirs(folder, exist_ok=True)
        with open(path, "w", encoding="utf-8") as file:
            json.dump({"caller": "ann", "users": [{"id": 1, "login": "ann", "name": "Ann"}]}, file)
        other = Server(folder, "--max-seconds", "60", "--site", path)
        try:
            other.command("PUT", "/caller", {"login": ""})
            self.assertEqual(other.command("GET", "/site")["caller"], "")
            other.command("DELETE", "/site")
            self.assertEqual(other.command("GET", "/site")["caller"], "ann")
        finally:
            self.assertEqual(other.stop(), 0)
        with open(path, "w", encoding="utf-8") as file:
            file.write('{"user": []}')
        with self.assertRaises(RuntimeError):
            Server(folder, "--max-seconds", "60", "--site", path)


class OperationTest(SiteTest):
    """Each request of an open, of a check-out and of an update can be named."""

    def requests(self):
        meta = (
            "method=getDocsMetaInfo%3a12.0.0.6665&service_name=%2f&url_list=%5b{}%5d"
            "&listHiddenDocs=false&listLinkInfo=true"
        )
        page = elements(pageUrl=FOLDER_URL + "b.xlsx")
        content_type = elements(listName=LIBRARY, contentTypeId="0x01")
        calls = [
            (LISTS, "GetListContentType", content_type, NAMESPACE),
            (LISTS, "GetListItems", query(B), NAMESPACE),
            ("/_vti_bin/webs.asmx", "WebUrlFromPageUrl", page, NAMESPACE),
            (LISTS, "CheckOutFile", page, NAMESPACE),
            (LISTS, "UpdateListItems", "", NAMESPACE),
        ]
        sends = [
            ("open service", lambda: self.rpc(AUTHOR, "method=open+service")),
            ("GetUserInfo", lambda: self.soap(
                "/_vti_bin/usergroup.asmx", envelope("GetUserInfo", "", DIRECTORY),
                SOAPAction=DIRECTORY + "GetUserInfo")),
            ("url to web url", lambda: self.rpc(
                "/_vti_bin/shtml.dll/_vti_rpc", "method=url+to+web+url%3a12.0.0.6665&url=%2f")),
            ("getDocsMetaInfo", lambda: self.rpc("/sites/a" + AUTHOR, meta.format("Shared+Documents%2fb.xlsx"))),
            ("getDocsMetaInfo", lambda: self.rpc("/sites/a" + AUTHOR, meta.format("Shared+Documents"))),
        ]
        for path, method, parameters, namespace in calls:
            sends.append((method, lambda p=path, m=method, b=envelope(method, parameters, namespace), n=namespace:
                          self.soap(p, b, SOAPAction=n + m)))
        return sends

    def test_each_request_fails_in_turn(self):
        sends = self.requests()
        names = [name for name, _ in sends]
        for turn, name in enumerate(names):
            with self.subTest(turn=turn, name=name):
                skip = names[:turn].count(name)
                rule = {"match": {"operation": name}, "skip": skip, "times": 1, "do": {"status": 599}}
                self.server.rules(rule)
                statuses = [send()[0].status for _, send in sends]
                self.assertEqual([i for i, status in enumerate(statuses) if status == 599], [turn])

    def test_log_names_operations(self):
        for rules in ([], [{"match": {"operation": "x"}, "do": {"status": 599}}]):
            self.server.rules(*rules)
            self.server.command("DELETE", "/log")
            sends = self.requests()
            for _, send in sends:
                send()
            self.assertEqual([r.get("operation") for r in self.server.log()], [name for name, _ in sends])
        self.request("GET", "/echo")
        self.assertNotIn("operation", self.server.log()[-1])

    def test_the_body_is_read_and_logged_once(self):
        self.server.rules({"match": {"operation": "open service"}, "do": {"delay": {"ms": 1}}})
        page = self.page(AUTHOR, "method=open+service")
        self.assertIn(b"vti_username", page)
        self.assertEqual([r["body"] for r in self.server.log()], ["method=open+service"])

    def test_every_answer_can_be_given(self):
        match = {"operation": "open service"}
        self.server.rules({"match": match, "do": {"reset": {"at": "request"}}})
        with self.assertRaises(ConnectionResetError):
            self.rpc(AUTHOR, "method=open+service")
        self.server.rules({"match": match, "do": {"truncate": {"length": 100, "sent": 10}}})
        with self.assertRaises(Exception):
            self.rpc(AUTHOR, "method=open+service")
        self.server.rules({"match": match, "do": {"respond": {}}})
        self.assertEqual(self.rpc(AUTHOR, "method=open+service")[1], b"")
        self.server.rules({"match": match, "do": {"fault": {"text": "no"}}})
        self.assertEqual(self.rpc(AUTHOR, "method=open+service")[0].status, 500)
        self.server.rules({"match": match, "do": {"auth": {"scheme": "basic", "user": "a"}}})
        self.assertEqual(self.rpc(AUTHOR, "method=open+service")[0].status, 401)

    def test_recorded_pages_come_back_byte_for_byte(self):
        page = b"<html>\r\n<p>raw & \x00\xff\xe9" + bytes(range(256))
        path = os.path.join(self.folder.name, "recorded.html")
        with open(path, "wb") as file:
            file.write(page)
        for body in ({"body_file": path}, {"body_base64": base64.b64encode(page).decode()}):
            self.server.rules({"match": {"operation": "open service"}, "do": {"respond": body}})
            self.assertEqual(self.rpc(AUTHOR, "method=open+service")[1], page)

    def test_body_files_are_bounded(self):
        path = os.path.join(self.folder.name, "large")
        with open(path, "wb") as file:
            file.truncate((16 << 20) + 1)
        for name in (path, path + ".not", self.folder.name, "/dev/zero"):
            with self.subTest(name), self.assertRaises(ValueError):
                self.server.rules({"do": {"respond": {"body_file": name}}})

    def test_operation_is_unknown_at_accept(self):
        with self.assertRaises(ValueError):
            self.server.rules({"match": {"operation": "x"}, "do": {"reset": {"at": "accept"}}})

    def test_through_the_proxy(self):
        """A host name on its default ports."""
        for scheme in ("http", "https"):
            url = f"{scheme}://docs.example.test/sites/a{AUTHOR}"
            status, page = self.curl_rpc(url, "-x", self.proxy())
            self.assertEqual(status, 200)
            self.assertIn(b"service_name=/sites/a\n", page)
