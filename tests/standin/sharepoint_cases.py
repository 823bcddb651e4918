"""The SharePoint site."""


from support import CALL, NAMESPACE, StandInTest


class SharePointTest(StandInTest):
    def test_list_collection(self):
        for site in ("", "/sites/a/", "/"):
            answer, body = self.soap(site + "/_vti_bin/lists.asmx")
            self.assertEqual(answer.status, 200)
            self.assertEqual(answer.getheader("Content-Type"), "text/xml; charset=utf-8")
            declaration = b'<?xml version="1.0" encoding="utf-8"?>'
            self.assertTrue(body.startswith(declaration + b"<soap:Envelope"))
            self.assertIn(b"<GetListCollectionResult><Lists><List ", body)
            self.assertNotIn(b"\n", body)

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
        ]
        for changes, why in cases:
            with self.subTest(why):
                answer, body = self.soap(**changes)
                self.assertEqual(answer.status, 500)
                self.assertIn(b"<soap:Fault><faultcode>soap:Client</faultcode>", body)

    def test_page(self):
        answer, body = self.request("GET", "/_vti_bin/lists.asmx")
        self.assertEqual(answer.status, 200)
        self.assertEqual(answer.getheader("Content-Type"), "text/html; charset=utf-8")
        self.assertIn(b"<html>", body)
