"""The web services of the site: what they answer and what they refuse."""

import re

from site_support import (
    B,
    BUDGET,
    DIRECTORY,
    FOLDER_URL,
    FORECAST,
    LIBRARY,
    LISTS,
    PLAN,
    SiteTest,
    batch,
    elements,
    query,
    row_of,
)
from support import CALL, NAMESPACE

USERS = "/_vti_bin/usergroup.asmx"
WEBS = "/_vti_bin/webs.asmx"


class SharePointTest(SiteTest):
    def test_list_collection(self):
        for site in ("", "/sites/a/", "/"):
            answer, body = self.soap(site + "/_vti_bin/lists.asmx")
            self.assertEqual(answer.status, 200)
            self.assertEqual(answer.getheader("Content-Type"), "text/xml; charset=utf-8")
            declaration = b'<?xml version="1.0" encoding="utf-8"?>'
            self.assertTrue(body.startswith(declaration + b"<soap:Envelope"))
            self.assertIn(b"<GetListCollectionResult><Lists><List ", body)
            self.assertNotIn(b"\n", body)

    def test_list_collection_tells_the_libraries(self):
        _, body = self.soap(LISTS)
        self.assertIn(LIBRARY.encode(), body)
        self.assertIn(b'DefaultViewUrl="/sites/a/Shared Documents/Forms/AllItems.aspx"', body)
        self.assertIn(b'ItemCount="9"', body)

    def test_other_serialisers(self):
        bodies = [
            CALL.replace(b"><", b">\r\n\t<"),
            b'<?xml version="1.0"?>' + CALL,
            CALL.replace(b"soap:", b"s:").replace(b"xmlns:soap", b"xmlns:s"),
            CALL.replace(b"<soap:Body>", b"<soap:Header/><soap:Body>"),
            CALL.replace(b'"/></soap:Body>', b'"></GetListCollection></soap:Body>'),
            CALL.replace(b'"', b"'"),
        ]
        for body in bodies:
            with self.subTest(body):
                self.assertEqual(self.soap(body=body)[0].status, 200)

    def test_faults(self):
        cases = [
            ({"SOAPAction": f'"{NAMESPACE}GetListCollection"'}, "quoted action"),
            ({"SOAPAction": None}, "no action"),
            ({"SOAPAction": NAMESPACE + "GetListItems"}, "another action"),
            ({"Content_Type": "text/xml"}, "no charset"),
            ({"Content_Type": None}, "no type"),
            ({"body": b""}, "no body"),
            ({"body": CALL[:-1]}, "broken body"),
            ({"body": CALL.replace(b"/soap/envelope/", b"/soap/other/")}, "envelope namespace"),
            ({"body": CALL.replace(b"sharepoint/soap/", b"sharepoint/soap")}, "service namespace"),
            ({"body": CALL.replace(b"GetListCollection", b"getListCollection")}, "method"),
            ({"body": CALL.replace(b'"/>', b'"><a/></GetListCollection>')}, "parameter"),
            ({"body": b"<!DOCTYPE a [<!ENTITY b 'c'>]>" + CALL}, "document type"),
            ({"body": CALL.replace(b"<soap:Body>", b"<soap:Body><a/>")}, "two calls"),
            ({"body": CALL.replace(b'"/>', b'">' + b"<a>" * 10_000 + b"</a>" * 10_000 + b"</GetListCollection>")},
             "deep nesting"),
        ]
        for changes, why in cases:
            with self.subTest(why):
                answer, body = self.soap(**changes)
                self.assertEqual(answer.status, 500)
                self.assertIn(b"<soap:Fault><faultcode>soap:Client</faultcode>", body)

    def test_page(self):
        for name in ("lists", "webs", "usergroup"):
            answer, body = self.request("GET", f"/_vti_bin/{name}.asmx")
            self.assertEqual(answer.status, 200)
            self.assertEqual(answer.getheader("Content-Type"), "text/html; charset=utf-8")
            self.assertIn(b"<html>", body)
            self.assertEqual(self.request("PUT", f"/_vti_bin/{name}.asmx")[0].status, 405)

    def test_web_in_front(self):
        for path, status in (
            ("/sites/a/_vti_bin/lists.asmx", 200),
            ("/sites/a//_vti_bin/lists.asmx", 200),
            ("//_vti_bin/lists.asmx", 200),
            ("/SITES/%61//_VTI_BIN/Lists.asmx", 200),
            ("/sites/_vti_bin/lists.asmx", 404),
            ("/sites/b/_vti_bin/lists.asmx", 404),
        ):
            with self.subTest(path):
                self.assertEqual(self.soap(path)[0].status, status)

    def test_parameters_are_checked(self):
        page = elements(pageUrl=FOLDER_URL + "b.xlsx")
        local = elements(checkOutToLocal="true")
        comment = elements(comment="")
        kind = elements(checkinType="0")
        names = elements(listName=LIBRARY, contentTypeId=PLAN)
        items = query(B)
        cases = [
            ("CheckOutFile", page, LISTS),
            ("CheckOutFile", local + page, LISTS),
            ("CheckOutFile", page + local + local, LISTS),
            ("CheckOutFile", page + "<checkouttolocal>true</checkouttolocal>", LISTS),
            ("CheckOutFile", page.replace("pageUrl", "pageURL") + local, LISTS),
            ("CheckOutFile", page.replace("<pageUrl>", "<pageUrl><x/>") + local, LISTS),
            ("CheckInFile", page + kind + comment, LISTS),
            ("CheckInFile", page + comment, LISTS),
            ("CheckInFile", page + comment + kind.replace("checkinType", "checkInType"), LISTS),
            ("UndoCheckOut", "", LISTS),
            ("UndoCheckOut", page + local, LISTS),
            ("GetListContentType", elements(contentTypeId=PLAN, listName=LIBRARY), LISTS),
            ("GetListContentType", elements(listName=LIBRARY), LISTS),
            ("GetListContentType", names.replace("<listName>", "<listName xmlns=''>"), LISTS),
            ("GetListItems", elements(listName=LIBRARY), LISTS),
            ("GetListItems", items[items.index("<query>"):], LISTS),
            ("GetListItems", items + "<rowLimit>1</rowLimit>", LISTS),
            ("UpdateListItems", "", LISTS),
            ("UpdateListItems", batch(1, "x") + "<a/>", LISTS),
            ("WebUrlFromPageUrl", "", WEBS),
            ("WebUrlFromPageUrl", page + page, WEBS),
            ("GetListItems", items, WEBS),
        ]
        for method, parameters, path in cases:
            with self.subTest(parameters):
                self.client_fault(method, parameters, path=path)
        for parameters in ("", elements(userLoginname="x"), elements(userLoginName="x", a="")):
            with self.subTest(parameters):
                self.client_fault("GetUserInfo", parameters, path=USERS, namespace=DIRECTORY)

    def test_user_info(self):
        def ask(login, **options):
            return self.result(
                "GetUserInfo", elements(userLoginName=login), path=USERS, namespace=DIRECTORY, **options
            )

        self.assertIn(
            f'<GetUserInfoResponse xmlns="{DIRECTORY}"><GetUserInfoResult><GetUserInfo>'
            '<User ID="12" Sid="S-1-5-21-1004336348-1177238915-682003330-12" Name="Jane Doe" '
            'LoginName="EXAMPLE\\jane" Email="jane@example.test" Notes="" IsSiteAdmin="False" '
            'IsDomainGroup="False" Flags="0" /></GetUserInfo></GetUserInfoResult>',
            ask("EXAMPLE\\jane"),
        )
        self.assertIn('Name="John Roe"', ask("example\\JOHN"))
        self.assertIn('Name="Zo\u00eb M\u00fcller"', ask("EXAMPLE\\zoe"))

    def test_user_info_refusals(self):
        for login in ("", "jane", "EXAMPLE\\nobody"):
            self.refusal(
                "GetUserInfo", elements(userLoginName=login), "0x80131600", path=USERS, namespace=DIRECTORY
            )
        # The other namespace is another service's.
        self.client_fault("GetUserInfo", elements(userLoginName="EXAMPLE\\jane"), path=USERS)

    def test_web_url(self):
        cases = [
            (FOLDER_URL + "b.xlsx", "http://docs.example.test/sites/a"),
            ("https://h:8443/SITES/A/x?y=/z", "https://h:8443/sites/a"),
            ("HTTP://h/sites/ab", "HTTP://h"),
            ("http://h", "http://h"),
            ("http://h?x", "http://h"),
            ("http://h/sites/%61", "http://h/sites/a"),
        ]
        for url, web in cases:
            with self.subTest(url):
                body = self.result("WebUrlFromPageUrl", elements(pageUrl=url), path=WEBS)
                self.assertIn(
                    f'<WebUrlFromPageUrlResponse xmlns="{NAMESPACE}"><WebUrlFromPageUrlResult>{web}'
                    "</WebUrlFromPageUrlResult></WebUrlFromPageUrlResponse>",
                    body,
                )
        self.refusal("WebUrlFromPageUrl", elements(pageUrl=""), "0x82000001", path=WEBS)
        for url in ("/sites/a", "ftp://h/x", "http:///x", "http://", "h"):
            self.refusal("WebUrlFromPageUrl", elements(pageUrl=url), None, path=WEBS)

    def test_content_type(self):
        body = self.result("GetListContentType", elements(listName=LIBRARY, contentTypeId=PLAN))
        self.assertIn(f'<GetListContentTypeResult><ContentType ID="{PLAN}" Name="Plan" ', body)
        own = LIBRARY.lower()
        self.assertIn(
            '<Field Name="Status" StaticName="Status" DisplayName="Status" Type="Choice" Format="Dropdown" '
            f'Required="TRUE" SourceID="{own}"><Default>Draft</Default><CHOICES><CHOICE>Draft</CHOICE>'
            "<CHOICE>In review</CHOICE><CHOICE>Final</CHOICE></CHOICES></Field>",
            body,
        )
        self.assertIn('Name="RecordKey" StaticName="RecordKey" DisplayName="Record Key" Type="Text" '
                      'Required="TRUE" ShowInFileDlg="FALSE" SourceID="{6E9B3F10-', body)
        self.assertIn('Name="FileLeafRef" DisplayName="Name" Type="File" Required="TRUE" ShowInFileDlg="FALSE"', body)
        # Elements of the name Field that are no columns.
        self.assertIn('<DisplayPattern><Field Name="ID" />', body)
        self.assertRegex(body, r'<Columns xmlns="urn:[^"]*"><Field Name="Foreign" Required="TRUE" />')
        names = re.findall(rf'<Field Name="([^"]*)"[^>]* SourceID="{re.escape(own)}"', body)
        self.assertEqual(
            names, ["Project_x0020_Code", "Summary", "Status", "Regions", "Amount", "Due", "Approved"]
        )

    def test_content_type_by_other_names_of_the_list(self):
        for name in (LIBRARY.lower(), LIBRARY[1:-1], "Shared Documents"):
            self.result("GetListContentType", elements(listName=name, contentTypeId=PLAN.upper().replace("X", "x")))

    def test_content_type_refusals(self):
        for name in ("", "{}", "shared documents", "{8A6E2B94-5C3D-4F17-8E21-19D0B7C5F344}"):
            self.refusal("GetListContentType", elements(listName=name, contentTypeId=PLAN), "0x82000006")
        for content_type in ("", PLAN + "00"):
            self.refusal("GetListContentType", elements(listName=LIBRARY, contentTypeId=content_type), None)

    def test_row(self):
        self.assertEqual(
            self.row(B),
            {
                "ows_ID": "1",
                "ows_UniqueId": "1;#" + B,
                "ows_FSObjType": "1;#0",
                "ows_ContentTypeId": PLAN,
                "ows_ContentType": "Plan",
                "ows_FileRef": "1;#sites/a/Shared Documents/b.xlsx",
                "ows_FileDirRef": "1;#sites/a/Shared Documents",
                "ows_FileLeafRef": "1;#b.xlsx",
                "ows_File_x0020_Size": "1;#13312",
                "ows_ServerUrl": "/sites/a/Shared Documents/b.xlsx",
                "ows_DocIcon": "xlsx",
                "ows_Created": "2009-07-07 10:11:12",
                "ows_Modified": "2009-07-09 10:11:12",
                "ows_Author": "12;#Jane Doe",
                "ows_Editor": "15;#John Roe",
                "ows__UIVersion": "1024",
                "ows__UIVersionString": "2.0",
                "ows__Level": "1",
                "ows__ModerationStatus": "0",
                "ows__CheckinComment": "1;#",
                "ows_owshiddenversion": "5",
                "ows_Title": "Budget & plan <draft>",
                "ows_Category": "",
                "ows_Owner": "Jane",
                "ows_RecordKey": "R-1",
                "ows_Project_x0020_Code": "A-100",
                "ows_Summary": "First line\nSecond line",
                "ows_Status": "In review",
                "ows_Regions": ";#East;#West;#",
                "ows_Amount": "1250.50000000000",
                "ows_Due": "2026-03-31 00:00:00",
                "ows_Approved": "1",
            },
        )

    def test_rows_form(self):
        body = self.result("GetListItems", query(B))
        self.assertIn('xmlns:rs="urn:schemas-microsoft-com:rowset" xmlns:z="#RowsetSchema">'
                      '<rs:data ItemCount="1"><z:row ows_ID="1" ', body)
        self.assertIn('ows_Summary="First line&#10;Second line"', body)
        none = self.result("GetListItems", query("{00000000-0000-0000-0000-000000000000}"))
        self.assertIn('<rs:data ItemCount="0"></rs:data></listitems>', none)

    def test_row_of_a_check_out(self):
        row = self.row(BUDGET.lower())
        self.assertEqual(row["ows_CheckoutUser"], "12;#Jane Doe")
        self.assertEqual(row["ows__UIVersionString"], "1.1")
        self.assertEqual(row["ows__Level"], "255")
        self.assertEqual(self.row(FORECAST)["ows_CheckoutUser"], "15;#John Roe")
        self.assertNotIn("ows_CheckoutUser", self.row(B))

    def test_scope(self):
        self.assertIsNotNone(self.row(B, options=""))
        self.assertIsNone(self.row(BUDGET, options=""))
        self.assertIsNotNone(self.row(BUDGET))

    def test_fragments_in_the_service_s_namespace(self):
        self.assertEqual(self.row(BUDGET, view_fields=["Title"], empty=""), self.row(BUDGET, view_fields=["Title"]))
        body = self.result("UpdateListItems", batch(1, FOLDER_URL + "b.xlsx", ("Title", "x"), empty=""))
        self.assertEqual(row_of(body)["ows_Title"], "x")

    def test_view_fields(self):
        always = {
            "ows_ID",
            "ows_UniqueId",
            "ows_FSObjType",
            "ows_FileRef",
            "ows_owshiddenversion",
            "ows__Level",
            "ows__ModerationStatus",
        }
        self.assertEqual(set(self.row(B, view_fields=["Title"])), always | {"ows_Title"})
        # A column without a value, and nobody's check-out.
        self.assertEqual(set(self.row(FORECAST, view_fields=["Amount"])), always)
        self.assertEqual(set(self.row(B, view_fields=["CheckoutUser"])), always)
        self.assertEqual(self.row(B, view_fields=[]), self.row(B))
        self.refusal("GetListItems", query(B, view_fields=["Title", "Nothing"]), "0x81020014")

    def test_query_refusals(self):
        good = query(B, view_fields=["Title"])
        changes = [
            ("Query", "query_", "another root"),
            ("<Where>", "<Where x=''>", "an attribute"),
            ("<Eq>", "<Eq><a/>", "one more element"),
            ("'UniqueId'", "'ID'", "another column"),
            ("Type='string'", "Type='Text'", "another type"),
            ("'Recursive'", "'RecursiveAll'", "another scope"),
            ("ViewAttributes", "viewAttributes", "another option"),
            ("<FieldRef Name='Title'/>", "<FieldRef/>", "a nameless column"),
            ("<FieldRef Name='Title'/>", "<Field Name='Title'/>", "another element"),
            ("<Where>", "<Where xmlns='urn:x'>", "another namespace"),
            ("<Query xmlns=''>", f"<Query xmlns='' xmlns:n='{NAMESPACE}'>", None),
        ]
        for old, new, why in changes:
            with self.subTest(why):
                text = good.replace(old, new)
                self.assertNotEqual(text, good)
                if why is None:
                    self.result("GetListItems", text)
                else:
                    self.refusal("GetListItems", text, "0x81070057")
        self.refusal("GetListItems", good.replace(LIBRARY, ""), "0x82000006")

    def test_page_url_refusals(self):
        def parameters(url):
            return elements(pageUrl=url)

        self.refusal("UndoCheckOut", parameters(""), "0x82000001")
        urls = [
            "b.xlsx",
            "/sites/a/Shared%20Documents/b.xlsx",
            FOLDER_URL + "no.xlsx",
            FOLDER_URL,
            "http://docs.example.test/Shared%20Documents/Welcome.docx",  # of the other web
            "http://docs.example.test/sites/a/Charter.docx",  # in no library
        ]
        for url in urls:
            with self.subTest(url):
                self.refusal("UndoCheckOut", parameters(url), None)
                self.refusal("CheckOutFile", parameters(url) + elements(checkOutToLocal="true"), None)
                self.refusal("CheckInFile", parameters(url) + elements(comment="", checkinType="1"), None)

    def test_values_of_parameters(self):
        page = elements(pageUrl=FOLDER_URL + "b.xlsx")
        for value in ("", "1", "yes"):
            self.refusal("CheckOutFile", page + elements(checkOutToLocal=value), None)
        self.assertEqual(self.check_out("b.xlsx"), "true")
        for kind in ("", "3", "7", "-1", "4294967296", "x", "1.0"):
            with self.subTest(kind):
                self.refusal("CheckInFile", page + elements(comment="", checkinType=kind), None)
        self.assertEqual(self.row(B)["ows_CheckoutUser"], "12;#Jane Doe")
