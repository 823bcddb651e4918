#!/usr/bin/python3
"""The documents against what they tell of: members of the interface definition, links, files, samples.

docs_test.py [unittest's own arguments]

A page of a class has one heading of the third level for each member, and below it a line of the member's signature, as
signatures() writes it. The examples on the pages are run by tests/scripts/page_cases.py.
"""

import pathlib
import re
import subprocess
import sys
import unittest

TOP = pathlib.Path(__file__).resolve().parent.parent.parent
DOCS = TOP / "docs"
# A page, the interfaces whose members it tells, and the class they are of.
PAGES = {
    "client.md": (["IClient"], "Client"),
    "server-check.md": (["IServerCheck"], "ServerCheck"),
    "hdfs-client.md": (["IHdfsClient", "IRawRequest"], "HdfsClient"),
    "hdfs-client-winhttp.md": (["IHdfsClient"], "HdfsClientWinHttp"),
    "errors.md": (["IConnectionError"], None),
}
IDL = re.sub(r"//[^\n]*", "", (TOP / "resources/velandoc.idl").read_text(encoding="utf-8")).replace(
    "MAY_BE_EMPTY", 'optional, defaultvalue("")')
TRACKED = subprocess.run(["git", "ls-files", "-co", "--exclude-standard"], cwd=TOP, capture_output=True, text=True,
                         check=True).stdout.splitlines()
DOCUMENTS = [TOP / name for name in TRACKED if name.endswith(".md") and (TOP / name).exists()]


def arguments_of(text):
    """(attributes, type, name) of each argument of a member."""
    for attributes, kind, name in re.findall(r"\[((?:[^\[\]\"]|\"[^\"]*\")*)\]\s*([\w* ]+?)\s*(\w+)\s*(?:,|$)", text):
        yield attributes, kind, name


def argument_text(attributes, kind, name):
    default = re.search(r"defaultvalue\((.*)\)", attributes)
    text = f"{kind} {name}" + (f" = {default.group(1)}" if default else "")
    return f"[{text}]" if "optional" in attributes else text


def signatures(interface):
    """The line that a page has to have for each member, by its name."""
    body = re.search(rf"interface {interface} : \w+\s*{{(.*?)\n}}", IDL, re.DOTALL).group(1)
    lines = {}
    for attributes, name, arguments in re.findall(r"(?:\[([^\]]*)\]\s*)?HRESULT (\w+)\((.*?)\);", body, re.DOTALL):
        taken = list(arguments_of(arguments))
        given = [argument_text(*argument) for argument in taken if "retval" not in argument[0]]
        result = next((argument for argument in taken if "retval" in argument[0]), None)
        number = re.search(r"\bid\((\d+)\)", attributes)
        if "propput" in attributes or "propget" in attributes:
            if "propput" in attributes and name in lines:
                lines[name] = lines[name].replace("read only", "read and write")
                continue
            if "propput" in attributes:
                kind = given.pop().split()[0]
                access = "read and write"
            else:
                kind = result[1].rstrip("*").strip()
                access = "read only"
                if name in lines:  # the put stands first
                    continue
            shown = f"({', '.join(given)})" if given else ""
            # Of a plain property the name of the result says nothing.
            told = f" {result[2]}" if result and result[2] not in ("pVal",) else ""
            lines[name] = f"`{name}{shown} -> {kind}{told}`, property {number.group(1)}, {access}"
            continue
        told = f" -> {result[1].rstrip('*').strip()} {result[2]}" if result else ""
        place = f"method {number.group(1)}" if number else "method of the virtual table"
        lines[name] = f"`{name}({', '.join(given)}){told}`, {place}"
    return lines


def without_code(text):
    """The text with its fenced blocks and inline code blanked."""
    text = re.sub(r"^( *)```.*?^\1```", "", text, flags=re.DOTALL | re.MULTILINE)
    return re.sub(r"`[^`\n]*`", "", text)


def anchors(path):
    """The anchors of a document's headings, as they are made of the headings' texts."""
    made = set()
    text = re.sub(r"^( *)```.*?^\1```", "", path.read_text(encoding="utf-8"), flags=re.DOTALL | re.MULTILINE)
    for heading in re.findall(r"^#+ +(.*?) *$", text, re.MULTILINE):
        heading = re.sub(r"\[([^\]]*)\]\([^)]*\)", r"\1", heading)
        anchor = re.sub(r"[^\w\- ]", "", heading.lower()).replace(" ", "-")
        number = 0
        while (anchor if number == 0 else f"{anchor}-{number}") in made:
            number += 1
        made.add(anchor if number == 0 else f"{anchor}-{number}")
    return made


def entries(text):
    """The members' headings of a page with what stands below each, up to the next heading."""
    return re.findall(r"^### (.+?)\n(.*?)(?=^##+ |\Z)", text, re.DOTALL | re.MULTILINE)


class Pages(unittest.TestCase):
    def test_every_interface_has_its_page(self):
        told = {name for interfaces, _ in PAGES.values() for name in interfaces}
        self.assertEqual(told, set(re.findall(r"^interface (\w+) :", IDL, re.MULTILINE)))
        classes = {name for _, name in PAGES.values() if name}
        self.assertEqual(classes, set(re.findall(r"^    coclass (\w+)", IDL, re.MULTILINE)))

    def test_every_member_and_no_other(self):
        for page, (interfaces, _) in PAGES.items():
            expected = {name: line for interface in interfaces for name, line in signatures(interface).items()}
            self.assertTrue(expected)
            told = entries((DOCS / page).read_text(encoding="utf-8"))
            with self.subTest(page=page):
                self.assertEqual(sorted(name for name, _ in told), sorted(expected))
            for name, below in told:
                with self.subTest(page=page, member=name):
                    self.assertEqual(below.strip().split("\n")[0], expected.get(name))

    def test_every_member_has_its_results_and_an_example(self):
        for page in PAGES:
            for name, below in entries((DOCS / page).read_text(encoding="utf-8")):
                with self.subTest(page=page, member=name):
                    self.assertRegex(below, r"[SE]_[A-Z]+", "no result is told")
                    text = (DOCS / page).read_text(encoding="utf-8")
                    examples = "\n".join(re.findall(r"^```(?:js|vb|cpp|powershell)\n(.*?)^```", text,
                                                    re.DOTALL | re.MULTILINE))
                    self.assertRegex(examples, rf"(\.|->(get_|put_)?){name}\b", "no example uses it")

    def test_every_argument_is_told(self):
        for page, (interfaces, _) in PAGES.items():
            lines = {name: line for interface in interfaces for name, line in signatures(interface).items()}
            text = (DOCS / page).read_text(encoding="utf-8")
            for name, below in entries(text):
                inside = re.match(r"`\w+\((.*?)\)(?: ->|`)", lines.get(name, ""))
                for argument in re.findall(r"(\w+)(?: = [^\],]*)?\]?(?:,|$)", inside.group(1) if inside else ""):
                    with self.subTest(page=page, member=name, argument=argument):
                        there = re.search(r"\[there\]\(([\w.-]+)#(\w+)\)", below)
                        told = below.split("\n", 2)[2]
                        self.assertTrue(f"`{argument}`" in told or there, "not told, nor where it is told")

    def test_identifiers(self):
        scripts = {path.name: path.read_text(encoding="utf-8") for path in (TOP / "resources").glob("*.rgs")}
        for page, (interfaces, name) in PAGES.items():
            text = (DOCS / page).read_text(encoding="utf-8")
            for interface in interfaces:
                identifier = re.search(rf"uuid\(([\w-]+)\)[^\]]*\]\s*interface {interface} :", IDL).group(1)
                with self.subTest(page=page, interface=interface):
                    self.assertIn(f"`{interface}` `{{{identifier}}}`", text)
            if name is None:
                continue
            identifier = re.search(rf"uuid\(([\w-]+)\)[^\]]*\]\s*coclass {name}\b", IDL).group(1)
            script = next(text for text in scripts.values() if identifier in text)
            names = {name for name in re.findall(r"\b(Vel\w+\.\w+(?:\.1)?)\b", script)}
            self.assertEqual(len(names), 2, names)
            with self.subTest(page=page, coclass=name):
                self.assertIn(f"| CLSID | `{{{identifier}}}` |", text)
                row = re.search(r"^\| ProgID \|(.*)$", text, re.MULTILINE).group(1)
                self.assertEqual(set(re.findall(r"`(Vel[\w.]+)`", row)), names)


class Documents(unittest.TestCase):
    def test_links_lead_somewhere(self):
        count = 0
        for document in DOCUMENTS:
            for target in re.findall(r"\]\(([^)\s]+)\)", without_code(document.read_text(encoding="utf-8"))):
                if re.match(r"[a-z]+:", target):
                    continue
                count += 1
                name, _, anchor = target.partition("#")
                path = (document.parent / name).resolve() if name else document
                with self.subTest(document=document.name, link=target):
                    self.assertTrue(path.exists(), "no such file")
                    if anchor:
                        self.assertIn(anchor, anchors(path), "no such heading")
        self.assertGreater(count, 50)

    def test_files_that_are_named_exist(self):
        folders = {name.split("/")[0] for name in TRACKED if "/" in name}
        count = 0
        for document in DOCUMENTS:
            for name in re.findall(r"`([\w.-]+(?:/[\w.*-]+)+)`", document.read_text(encoding="utf-8")):
                if name.split("/")[0] not in folders or "." not in name.split("/")[-1]:
                    continue
                count += 1
                with self.subTest(document=document.name, file=name):
                    self.assertTrue(list(TOP.glob(name)))
        self.assertGreater(count, 10)

    def test_every_document_is_reached_from_the_readme(self):
        text = without_code((TOP / "README.md").read_text(encoding="utf-8"))
        linked = {target.partition("#")[0] for target in re.findall(r"\]\(([^)\s]+)\)", text)}
        self.assertEqual({f"docs/{path.name}" for path in DOCS.glob("*.md")} - linked, set())


class Samples(unittest.TestCase):
    def test_every_sample_is_listed(self):
        listed = re.findall(r"^\| \[[^\]]*\]\(([^)]*)\)", (TOP / "samples/README.md").read_text(encoding="utf-8"), re.MULTILINE)
        samples = [name.removeprefix("samples/") for name in TRACKED if name.startswith("samples/")]
        self.assertEqual(sorted(listed), sorted(name for name in samples if not name.endswith((".md", ".txt"))))

    def test_members_of_the_samples_that_no_test_runs(self):
        known = {name.lower() for interface in ("IClient", "IHdfsClient", "IConnectionError")
                 for name in signatures(interface)}
        for path in [*(TOP / "samples").glob("*.ps1"), *(TOP / "samples").glob("*.bas")]:
            used = re.findall(r"\b(?:document|client|ConnectionError)\.(\w+)", path.read_text(encoding="utf-8"), re.IGNORECASE)
            with self.subTest(sample=path.name):
                self.assertTrue(used)
                self.assertEqual([name for name in used if name.lower() not in known], [])


if __name__ == "__main__":
    sys.exit(unittest.main(verbosity=2))
