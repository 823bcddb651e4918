"""FrontPage RPC of the site."""

import re

from site_support import RPC_TYPE, VERSION, SiteTest, pairs

AUTHOR = "/_vti_bin/_vti_aut/author.dll"
URL_PATH = "/_vti_bin/shtml.dll/_vti_rpc"


def url_body(url):
    return f"method=url+to+web+url{VERSION}&url={url}"


class RpcTest(SiteTest):
    def assert_status(self, page, number):
        expected = rb"<p>status=\n<ul>\n<li>status=%d\n<li>osstatus=0\n<li>msg=[^\n]+\n<li>osmsg=\n</ul>\n" % number
        self.assertRegex(page, expected)

    def test_open_service(self):
        page = self.page(AUTHOR, "method=open+service")
        self.assertEqual(
            page,
            b"<html><head><title>vermeer RPC packet</title></head>\n<body>\n"
            b"<p>method=open service:12.0.0.6665\n<p>service=\n<ul>\n<li>service_name=/\n"
            b"<li>meta_info=\n<ul>\n<li>vti_casesensitiveurls\n<li>IX|0\n<li>vti_longfilenames\n<li>IX|1\n"
            b"<li>vti_welcomenames\n<li>VX|\n<li>vti_servertz\n<li>SX|-0000\n"
            b"<li>vti_sourcecontrolsystem\n<li>SX|lw\n<li>vti_sourcecontrolversion\n<li>SX|V1\n"
            b"<li>vti_username\n<li>SX|EXAMPLE&#92;jane\n</ul>\n</ul>\n</body>\n</html>\n",
        )

    def test_open_service_names_the_caller(self):
        self.be("john")
        self.assertIn(b"<li>SX|EXAMPLE&#92;john\n", self.page(AUTHOR, "method=open+service"))
        self.be("")
        self.assertNotIn(b"vti_username", self.page(AUTHOR, "method=open+service"))
        page = self.page("/sites/a" + AUTHOR, "method=open+service")
        self.assertIn(b"<li>service_name=/sites/a\n", page)

    def test_url_to_web_url(self):
        cases = [
            ("%2fsites%2fa%2fShared%2520Documents%2fb.xlsx", b"/sites/a", b"Shared Documents/b.xlsx"),
            ("%2fsites%2fa%2fShared+Documents%2fb.xlsx", b"/sites/a", b"Shared Documents/b.xlsx"),
            ("%2fSITES%2fA%2fshared+documents%2fPLANS", b"/sites/a", b"Shared Documents/Plans"),
            ("%2fsites%2fa%2fnothing+here", b"/sites/a", b"nothing here"),
            ("%2fsites%2fab%2fx", b"/", b"sites/ab/x"),
            ("%2fsites%2fa", b"/sites/a", b""),
            ("%2fsites%2fa%2f", b"/sites/a", b""),
            ("%2f", b"/", b""),
            ("%2fRead+me.txt", b"/", b"Read me.txt"),
            # One letter in four spellings: bare, UTF-8, and both escaped in the URL before.
            ("%2fsites%2fa%2fShared+Documents%2fR%e9sum%e9.docx", b"/sites/a",
             b"Shared Documents/R&#195;&#169;sum&#195;&#169;.docx"),
            ("%2fsites%2fa%2fShared+Documents%2fR%c3%a9sum%c3%a9.docx", b"/sites/a",
             b"Shared Documents/R&#195;&#169;sum&#195;&#169;.docx"),
            ("%2fsites%2fa%2fShared+Documents%2fR%25C3%25A9sum%25e9.docx", b"/sites/a",
             b"Shared Documents/R&#195;&#131;&#194;&#169;sum&#195;&#169;.docx"),
            ("%2fsites%2fa%2fShared+Documents%2fR%25C3%25A9sum%25c3%25a9.docx", b"/sites/a",
             b"Shared Documents/R&#195;&#169;sum&#195;&#169;.docx"),
            # Four digits are a byte and text; so is what a bare letter of Chinese becomes.
            ("%2f%4e2d", b"/", b"N2d"),
            ("%2fa%9", b"/", b"a\t"),
            ("%2fa%26b%3bc%3d%7b%7d%27%22%3c%3e%5c", b"/",
             b"a&#38;b&#59;c&#61;&#123;&#125;&#39;&#34;&#60;&#62;&#92;"),
        ]
        for url, web, file in cases:
            with self.subTest(url):
                page = self.page(URL_PATH, url_body(url))
                self.assertEqual(
                    page,
                    b"<html><head><title>vermeer RPC packet</title></head>\n<body>\n"
                    b"<p>method=url to web url:12.0.0.6665\n<p>webUrl=" + web + b"\n<p>fileUrl=" + file
                    + b"\n</body>\n</html>\n",
                )

    def test_url_to_web_url_without_a_web(self):
        self.assert_status(self.page(URL_PATH, url_body("")), 589830)
        self.assert_status(self.page(URL_PATH, url_body("sites%2fa")), 589830)

    def test_meta_info_of_a_document(self):
        page = self.meta_page("Shared+Documents%2fb.xlsx")
        start = (
            b"<html><head><title>vermeer RPC packet</title></head>\n<body>\n"
            b"<p>method=getDocsMetaInfo:12.0.0.6665\n<p>document_list=\n<ul>\n<ul>\n"
            b"<li>document_name=Shared Documents/b.xlsx\n<li>meta_info=\n<ul>\n<li>vti_rtag\n"
        )
        self.assertEqual(page[: len(start)], start)
        self.assertTrue(page.endswith(b"\n</ul>\n</ul>\n</ul>\n</body>\n</html>\n"))
        self.assertNotIn(b"\r", page)
        self.assertNotIn(b"</li>", page)
        meta = pairs(page)
        expected = {
            "vti_etag": 'SW|"{5D1F0E3A-6B2C-4A7D-8E90-1F2A3B4C5D6E},5"',
            "vti_timecreated": "Tue, 07 Jul 2009 10:11:12",
            "vti_timelastmodified": "Thu, 09 Jul 2009 10:11:12",
            "vti_modifiedby": "SR|EXAMPLE\\john",
            "vti_sourcecontrolversion": "SR|V2.0",
            "vti_level": "IR|1",
            "ContentTypeId": "SW|0x0101002F4C6B8A9D1E3A5C7E90B2D4F6081A3C",
            "Title": "SW|Budget & plan <draft>",
            "Category": "SW|",
            "Summary": "SW|First line\nSecond line",
            "Regions": "SW|;#East;#West;#",
            "Approved": "BW|1",
        }
        self.assertEqual({key: meta.get(key) for key in expected}, expected)
        self.assertNotIn("vti_sourcecontroltimecheckedout", meta)

    def test_meta_info_of_a_check_out(self):
        meta = self.meta("Shared+Documents%2fPlans%2fBudget+2026.xlsx")
        self.assertEqual(meta["vti_sourcecontroltimecheckedout"], "Tue, 24 Feb 2026 08:00:00")
        self.assertEqual(meta["vti_sourcecontrolcheckedoutby"], "SR|EXAMPLE\\jane")
        self.assertEqual(meta["vti_sourcecontrolversion"], "SR|V1.1")
        self.assertEqual(meta["vti_level"], "IR|255")
        meta = self.meta("Shared+Documents%2fMinutes.docx")
        self.assertEqual(meta["vti_sourcecontroltimecheckedout"], "TR|28 Feb 2026 18:20:30 -0000")
        self.assertEqual(meta["vti_timecreated"], "TR|02 Dec 2025 09:00:00 -0000")

    def test_meta_info_of_names_beyond_ascii(self):
        # As a client sends back what it read in code page 1252.
        name = "Shared+Documents%2fPlans%2f%e8%ae%a1%e5%88%92+Caf%c3%a9.docx"
        page = self.meta_page(name)
        self.assertIn(
            b"<li>document_name=Shared Documents/Plans/"
            b"&#232;&#174;&#161;&#229;&#136;&#146; Caf&#195;&#169;.docx\n",
            page,
        )
        self.assertEqual(pairs(page)["Title"], "SW|\u8ba1\u5212")

    def test_meta_info_of_a_folder(self):
        page = self.meta_page("shared+documents%2fplans")
        expected = (
            b"<p>document_list=\n<ul>\n</ul>\n<p>urldirs=\n<ul>\n<ul>\n"
            b"<li>url=Shared Documents/Plans\n<li>meta_info=\n<ul>\n"
        )
        self.assertIn(expected, page)
        self.assertTrue(page.endswith(b"\n</ul>\n</ul>\n</ul>\n</body>\n</html>\n"))
        self.assertIn(b"<li>vti_listname\n<li>SR|&#123;3F1C7A52-0D5B-4E0A-9B59-6C2F0E4D7A10&#125;\n", page)

    def test_meta_info_of_the_root(self):
        page = self.meta_page("")
        self.assertIn(b"<li>url=\n", page)
        self.assertNotIn(b"vti_listname", page)
        root = self.meta("Charter.docx")
        self.assertEqual(root["vti_timecreated"], "Tue, 07 May 2024 08:00:00")
        self.assertNotIn("ContentTypeId", root)
        welcome = self.meta("Shared+Documents%2fWelcome.docx", web="")
        self.assertEqual(welcome["vti_sourcecontrolversion"], "SR|V3.0")

    def test_meta_info_of_what_is_not_there(self):
        page = self.meta_page("Shared+Documents%2fno.xlsx%3bShared+Documents")
        self.assertIn(b"<p>document_list=\n<ul>\n</ul>\n<p>urldirs=\n", page)
        self.assertIn(b"<p>failedUrls=\n<ul>\n<li>Shared Documents/no.xlsx\n</ul>\n", page)
        # A document of another web is not here, and a backslash quotes.
        for url in ("Welcome.docx", "Shared+Documents%2fWelcome.docx", "a%5c%3bb"):
            self.assertIn(b"<p>failedUrls=\n", self.meta_page(url))
        self.assertIn(b"<li>a&#59;b\n</ul>\n", self.meta_page("a%5c%3bb"))

    def test_raw_values_replace_the_server_s(self):
        site = self.server.command("GET", "/site")
        documents = next(web for web in site["webs"] if web["path"] == "/sites/a")["libraries"][0]["documents"]
        documents[0]["meta"] = {"vti_timecreated": "T1", "vti_etag": None, "odd": "a|b|c"}
        self.server.command("PUT", "/site", site)
        meta = self.meta("Shared+Documents%2fb.xlsx")
        self.assertEqual((meta["vti_timecreated"], meta["odd"]), ("T1", "a|b|c"))
        self.assertNotIn("vti_etag", meta)

    def test_a_query_behind_the_path(self):
        self.assertIn(b"webUrl=/sites/a\n", self.page(URL_PATH + "?Web=1", url_body("%2fsites%2fa")))

    def test_strictness(self):
        good = (
            f"method=getDocsMetaInfo{VERSION}&service_name=%2f&url_list=%5b%5d"
            "&listHiddenDocs=false&listLinkInfo=true"
        )
        self.assertIn(b"urldirs", self.page(AUTHOR, good))
        cases = [
            (AUTHOR, "", "no body"),
            (AUTHOR, good + "&", "an empty parameter"),
            (AUTHOR, good + "&a=b", "one more parameter"),
            (AUTHOR, good.replace("&listLinkInfo=true", ""), "one parameter less"),
            (AUTHOR, good.replace("listHiddenDocs", "listhiddendocs"), "a name in another case"),
            (AUTHOR, good.replace("listHiddenDocs=false&listLinkInfo=true",
                                  "listLinkInfo=true&listHiddenDocs=false"), "another order"),
            (AUTHOR, good.replace("=true", "=True"), "a flag in another case"),
            (AUTHOR, good.replace("%2f", "%2Fa"), "capital digits"),
            (AUTHOR, good.replace("%2f", "/"), "a character that is to be escaped"),
            (AUTHOR, good.replace("%2f", "%"), "an escape without digits"),
            (AUTHOR, good.replace("%2f", "%2fa"), "another service name"),
            (AUTHOR, good.replace("%5b%5d", "%5b"), "a list without its end"),
            (AUTHOR, good.replace("%5b%5d", "%5b" + "%3b" * 100 + "%5d"), "a long list"),
            (AUTHOR, good.replace("6665", "6666"), "another version"),
            (AUTHOR, good.replace("getDocs", "getdocs"), "another case"),
            (AUTHOR, good.split("&", 1)[1] + "&" + good.split("&", 1)[0], "the method last"),
            (AUTHOR, "method=open+service" + VERSION, "a version where none is"),
            (URL_PATH, "method=open+service", "another address"),
            (AUTHOR, url_body("%2f"), "the other's address"),
            (AUTHOR, "&".join(["method=open+service"] + ["a=b"] * 100), "a hundred more"),
        ]
        for path, body, why in cases:
            with self.subTest(why):
                self.assert_status(self.page(path, body), 262150)

    def test_strictness_of_the_head(self):
        for changes in (
            {"Content_Type": None},
            {"Content_Type": RPC_TYPE + "; charset=utf-8"},
            {"X_Vermeer_Content_Type": None},
            {"X_Vermeer_Content_Type": "text/html"},
        ):
            with self.subTest(changes):
                answer, page = self.rpc(AUTHOR, "method=open+service", **changes)
                self.assertEqual(answer.status, 200)
                self.assert_status(page, 262150)
                self.assertTrue(re.match(rb"<html>.*\n<body>\n<p>method=\n<p>status=\n", page))

    def test_addresses(self):
        for path in ("/sites/b" + AUTHOR, AUTHOR.upper(), AUTHOR + "/x", "/sites" + URL_PATH):
            with self.subTest(path):
                self.assertEqual(self.rpc(path, "method=open+service")[0].status, 404)
        self.assertEqual(self.request("GET", AUTHOR)[0].status, 405)
        self.page("/sites/a/" + AUTHOR, "method=open+service")
