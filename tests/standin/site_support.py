"""Talking to the stand-in server's SharePoint site."""

import os
import re
import xml.etree.ElementTree

from support import NAMESPACE, StandInTest

DIRECTORY = NAMESPACE + "directory/"
RPC_TYPE = "application/x-vermeer-urlencoded"
RPC_HEADERS = {"Content-Type": RPC_TYPE, "X-Vermeer-Content-Type": RPC_TYPE}
VERSION = "%3a12.0.0.6665"

LIBRARY = "{3F1C7A52-0D5B-4E0A-9B59-6C2F0E4D7A10}"
PLAN = "0x0101002F4C6B8A9D1E3A5C7E90B2D4F6081A3C"
LISTS = "/sites/a//_vti_bin/lists.asmx"
FOLDER_URL = "http://docs.example.test/sites/a/Shared%20Documents/"

# The unique ids of some documents of the sample.
B = "{5D1F0E3A-6B2C-4A7D-8E90-1F2A3B4C5D6E}"
MINUTES = "{6E2A1F4B-7C3D-4B8E-9FA1-2A3B4C5D6E7F}"
NOTES = "{7F3B205C-8D4E-4C9F-A0B2-3B4C5D6E7F80}"
BUDGET = "{A26E538F-B071-4FC2-93E5-6E7F8091A2B3}"
NEW_PLAN = "{B37F64A0-C182-40D3-A4F6-7F8091A2B3C4}"
FORECAST = "{D59186C2-E3A4-42F5-8618-91A2B3C4D5E6}"


def envelope(method, parameters, namespace=NAMESPACE):
    return (
        '<soap:Envelope xmlns:soap="http://schemas.xmlsoap.org/soap/envelope/"><soap:Body>'
        f'<{method} xmlns="{namespace}">{parameters}</{method}></soap:Body></soap:Envelope>'
    ).encode()


def elements(**values):
    return "".join(f"<{name}>{value}</{name}>" for name, value in values.items())


def query(unique_id, options="<ViewAttributes Scope='Recursive'/>", view_fields=None, empty=" xmlns=''"):
    """The parameters of GetListItems."""
    text = (
        elements(listName=LIBRARY)
        + f"<query><Query{empty}><Where><Eq><FieldRef Name='UniqueId' />"
        + f"<Value Type='string'>{unique_id}</Value></Eq></Where></Query></query>"
        + f"<queryOptions><QueryOptions{empty}>{options}</QueryOptions></queryOptions>"
    )
    if view_fields is not None:
        names = "".join(f"<FieldRef Name='{name}'/>" for name in view_fields)
        text += f"<viewFields><ViewFields{empty}>{names}</ViewFields></viewFields>"
    return text


def batch(item, file, *values, empty=" xmlns=''"):
    """The parameters of UpdateListItems."""
    fields = "".join(f"<Field Name='{name}'>{value}</Field>" for name, value in values)
    return (
        elements(listName=LIBRARY)
        + f"<updates><Batch{empty}><Method ID='1' Cmd='Update'><Field Name='ID'>{item}</Field>"
        + f"<FileRef Name='FileRef'>{file}</FileRef>{fields}</Method></Batch></updates>"
    )


def pairs(page):
    """Keys and raw values of the first list of meta-info on a page."""
    items = page.split(b"<li>meta_info=\n<ul>\n")[1].split(b"</ul>")[0].split(b"<li>")[1:]
    texts = [re.sub(rb"&#(\d+);", lambda m: bytes([int(m[1])]), item[:-1]).decode() for item in items]
    return dict(zip(texts[::2], texts[1::2], strict=True))


class SiteTest(StandInTest):
    def setUp(self):
        super().setUp()
        self.server.command("DELETE", "/site")

    def be(self, login):
        self.server.command("PUT", "/caller", {"login": login})

    def rpc(self, path, body, **changes):
        headers = dict(RPC_HEADERS)
        for name, value in changes.items():
            headers[name.replace("_", "-")] = value
        return self.request("POST", path, body, {n: v for n, v in headers.items() if v is not None})

    def page(self, path, body):
        answer, page = self.rpc(path, body)
        self.assertEqual(answer.status, 200)
        self.assertEqual(answer.getheader("Content-Type"), "application/x-vermeer-rpc")
        return page

    def curl_rpc(self, url, *arguments):
        """Status and page of an "open service" that curl sends."""
        output = os.path.join(self.folder.name, "page")
        headers = [part for name, value in RPC_HEADERS.items() for part in ("-H", f"{name}: {value}")]
        status = self.curl(*arguments, *headers, "-d", "method=open+service", url, output=output)
        with open(output, "rb") as file:
            return status, file.read()

    def meta_page(self, url, web="/sites/a"):
        body = (
            f"method=getDocsMetaInfo{VERSION}&service_name=%2f&url_list=%5b{url}%5d"
            "&listHiddenDocs=false&listLinkInfo=true"
        )
        return self.page(web + "/_vti_bin/_vti_aut/author.dll", body)

    def meta(self, url, web="/sites/a"):
        return pairs(self.meta_page(url, web))

    def call(self, method, parameters, path=LISTS, namespace=NAMESPACE):
        """Status and body of a call."""
        answer, body = self.soap(
            path, envelope(method, parameters, namespace), SOAPAction=namespace + method
        )
        self.assertEqual(answer.getheader("Content-Type"), "text/xml; charset=utf-8")
        self.assertNotIn(b"\n", body)
        return answer.status, body.decode()

    def result(self, method, parameters, **options):
        status, body = self.call(method, parameters, **options)
        self.assertEqual(status, 200, body)
        return body

    def refusal(self, method, parameters, code, **options):
        """A call that fails with a fault of the service."""
        status, body = self.call(method, parameters, **options)
        self.assertEqual(status, 500, body)
        self.assertIn("<faultcode>soap:Server</faultcode>", body)
        self.assertIn("<detail><errorstring", body)
        found = re.search(r"<errorcode[^>]*>([^<]*)<", body)
        self.assertEqual(found[1] if found else None, code, body)
        return body

    def client_fault(self, method, parameters, **options):
        status, body = self.call(method, parameters, **options)
        self.assertEqual(status, 500)
        self.assertIn("<soap:Fault><faultcode>soap:Client</faultcode>", body)

    def row(self, unique_id, **options):
        """The attributes of a document's row; None without one."""
        return row_of(self.result("GetListItems", query(unique_id, **options)))

    def change(self, method, name, web_path=LISTS, **values):
        """The answer of one of the three check-out operations."""
        parameters = elements(pageUrl=FOLDER_URL + name, **values)
        body = self.result(method, parameters, path=web_path)
        return re.search(rf"<{method}Result>([a-z]+)</{method}Result>", body)[1]

    def check_out(self, name):
        return self.change("CheckOutFile", name, checkOutToLocal="true")

    def check_in(self, name, kind=0, comment=""):
        return self.change("CheckInFile", name, comment=comment, checkinType=kind)

    def undo(self, name):
        return self.change("UndoCheckOut", name)


def row_of(body):
    rows = xml.etree.ElementTree.fromstring(body).findall(".//{#RowsetSchema}row")
    return dict(rows[0].attrib) if rows else None
