"""The examples of README.md and of the classes' pages in docs/, in the homes that have their hosts.

The blocks of one language on a page are one script. A page names servers and files of its readers'; they become the
stand-in's and a folder's.
"""

import json
import pathlib
import re
import shlex
import subprocess

import run_case
from both_homes import BothHomes

PAGES = [run_case.TOP / "README.md",
         *(run_case.TOP / "docs" / f"{name}.md"
           for name in ("client", "server-check", "hdfs-client", "hdfs-client-winhttp", "errors"))]
END = "end of the page"
# What the blocks in C++ find around them.
SURROUNDINGS = """
#include <initguid.h>
#include <comdef.h>
#include <velandoc_idl.h>
#include <stdexcept>
void Example([[maybe_unused]] {class_name}* client, [[maybe_unused]] BSTR url, [[maybe_unused]] VARIANT_BOOL success,
             [[maybe_unused]] HRESULT result) {{
  {{
{block}
  }}
}}
"""


def blocks(page, language):
    found = re.findall(r"^ *```(\w*)\n(.*?)^ *```", page.read_text(encoding="utf-8"), re.DOTALL | re.MULTILINE)
    return [block for name, block in found if name == language]


class PageCase(BothHomes):
    def with_servers(self, text):
        text = text.replace("https://docs.example.com/", "http://docs.example.test/")
        text = text.replace(r"\\docs.example.com", r"\\docs.example.test")
        return text.replace("http://namenode.example.com:9870", f"http://localhost:{self.server.ports['http']}")

    def work(self, name):
        folder = pathlib.Path(self.folder.name) / name
        folder.mkdir()
        (folder / "report.csv").write_bytes(b"a;1\r\nb;2\r\n")
        return folder


class PageExamples(PageCase):

    def run_blocks(self, page, language, end, home):
        folder = self.work(f"{home.name}-{language}-{page.stem}")
        text = self.with_servers("\n".join(blocks(page, language)))
        for name in ("report.csv", "copy.csv"):
            text = text.replace(f'"{name}"', json.dumps(home.local(folder / name)))
        if home.name == "wine":
            # A dialog would wait for its user there, also without a display.
            text = text.replace("client.EditFields();\n", "")
        script = folder / f"example.{'js' if language == 'js' else 'vbs'}"
        script.write_text(f"{text}\n{end}\n", encoding="utf-8")
        self.server.prepare(None)
        result = home.run(run_case.Case(script))
        self.assertEqual((result.code, result.lines[-1:]), (0, [END]), result.errors + "\n".join(result.lines))
        # Paths differ, and so do the words of the systems.
        self.assertNotIn("undefined", "\n".join(result.lines))
        return len(result.lines)

    def test_jscript(self):
        for page in PAGES:
            with self.subTest(page=page.name):
                self.assertTrue(blocks(page, "js"))
                end = f'WScript.Echo("{END}");'
                self.assertEqual(*(self.run_blocks(page, "js", end, home) for home in self.homes.values()))

    def test_vbscript(self):
        for page in PAGES:
            if blocks(page, "vb"):
                with self.subTest(page=page.name):
                    self.assertGreater(self.run_blocks(page, "vb", f'WScript.Echo "{END}"', self.homes["wine"]), 1)

    def test_cpp_compiles(self):
        home = self.homes["wine"]
        for page in PAGES:
            for block in blocks(page, "cpp"):
                class_name = "IClient" if page.stem == "client" else "IHdfsClient"
                with self.subTest(page=page.name):
                    done = subprocess.run(
                        ["x86_64-w64-mingw32-g++", "-std=c++20", "-Wall", "-Wextra", "-Werror", "-fsyntax-only",
                         f"-I{home.build / 'generated'}", "-x", "c++", "-"],
                        input=SURROUNDINGS.format(class_name=class_name, block=block), capture_output=True, text=True,
                        timeout=run_case.TIMEOUT, check=False)
                    self.assertEqual(done.returncode, 0, done.stderr)


class ReadmeCommands(PageCase):
    """Every call of the command in README.md, in its order, in both homes."""

    def test_commands(self):
        typed = [line for block in blocks(PAGES[0], "") for line in block.splitlines()
                 if line.startswith(("velandoc ", "export "))]
        for home in self.homes.values():
            folder = self.work(f"{home.name}-readme")
            self.server.prepare(None)
            ran = 0
            for line in typed:
                words = shlex.split(self.with_servers(line))
                if words[0] == "export":
                    home.environment.update([words[1].split("=", 1)])
                    continue
                if words[1:3] == ["doc", "edit"]:  # asks a user: tests/dialog
                    continue
                words = [home.local(folder / word) if word in ("report.csv", "copy-of-data") else word for word in words]
                with self.subTest(home=home.name, line=line):
                    result = home.run_command(*words[1:])
                    self.assertEqual((result.code, bool(result.lines or result.errors)), (0, True),
                                     result.errors + "\n".join(result.lines))
                    ran += 1
            self.assertGreater(ran, 8)
            self.assertEqual((folder / "copy-of-data/report.csv").read_bytes(), (folder / "report.csv").read_bytes())


class ErrorsInVbscript(PageCase):
    """What docs/errors.md says of VBScript. The texts are the system's; numbers and sources are asserted."""

    EXPECTED = (
        "no error object, E_FAIL: -2147467259 [] []",
        "no error object, E_INVALIDARG: 5 [...] [Microsoft VBScript runtime error]",
        "an argument left out that must not be: 5 [...] [Microsoft VBScript runtime error]",
        "the same empty, True: 0 [] []",
        "no error object, E_ACCESSDENIED: 70 [...] [Microsoft VBScript runtime error]",
        "the server's words: -2147467259 [...] [HDFS Client Connect]",
        "an error object, E_NOINTERFACE: -2147467262 [...] [HDFS Client Upload]",
        "an error object, E_INVALIDARG: -2147024809 [...] [HDFS Client Upload]",
        "another source: -2147024809 [...] [HDFS CreateFolder]",
        "end of the script",
    )

    def test_numbers_and_sources(self):
        case = run_case.Case(run_case.TOP / "tests/scripts/errors.vbs")
        case.arguments = [f"http://localhost:{self.server.ports['http']}"]
        self.server.prepare(None)
        result = self.homes["wine"].run(case)
        lines = [re.sub(r"\[[^\]]+\] \[", "[...] [", line, count=1) for line in result.lines]
        self.assertEqual(tuple(lines), self.EXPECTED)
        self.assertIn("FileNotFoundException", result.lines[5])
