"""The samples that hosts are copied from, each where its host is: scripts, the shell's, programs in C++."""

import os
import pathlib
import subprocess

import run_case
from both_homes import BothHomes, comparable

SAMPLES = run_case.TOP / "samples"
LIBRARY = "http://docs.example.test/sites/a/Shared%20Documents"
UNKNOWN_USER = [{"match": {"operation": "GetUserInfo"}, "do": {"status": 404}}]
WARNINGS = ["-std=c++20", "-Wall", "-Wextra", "-Werror"]


class Samples(BothHomes):
    """The JScript samples, in both homes."""

    def test_document(self):
        case = run_case.Case(SAMPLES / "document.js")
        case.arguments = ["http://docs.example.test/sites/a/Shared%20Documents/b.xlsx", "caf\u00e9"]
        results, sites = [], []
        for home in self.homes.values():
            self.server.command("DELETE", "/site")
            self.server.prepare(None)
            results.append(home.run(case))
            sites.append(self.server.command("GET", "/site"))
        self.assertEqual([result.code for result in results], [0, 0], results[1].errors)
        self.assertEqual(results[0].lines, results[1].lines)
        self.assertEqual(results[0].lines[-3:], ["before: nobody holds it", "checked out: you hold it (Jane Doe)",
                                                 "checked in: nobody holds it"])
        self.assertEqual(*sites)
        document = next(document for web in sites[0]["webs"] for library in web["libraries"]
                        for document in library["documents"] if document["path"] == "b.xlsx")
        self.assertEqual((document["comment"], document["version"]), ("caf\u00e9", "3.0"))

    def test_hdfs(self):
        case = run_case.Case(SAMPLES / "hdfs.js")
        results, requests = [], []
        for home in self.homes.values():
            source = pathlib.Path(self.folder.name) / "figures.csv"
            copy = pathlib.Path(self.folder.name) / f"copy-{home.name}.csv"
            source.write_bytes(b"a;1\r\nb;2\r\nc;3\r\nd;4\r\n")
            local = [home.local(path) for path in (source, copy)]
            case.arguments = ["http://namenode.example.test", "bob", local[0], "/user/bob/figures.csv", local[1]]
            self.server.command("DELETE", "/hdfs")
            self.server.prepare(None)
            results.append(home.run(case))
            requests.append([comparable(record) for record in self.server.log()])
            self.assertEqual(copy.read_bytes(), source.read_bytes())
        self.assertEqual([result.code for result in results], [0, 0], results[0].lines + results[1].lines)
        # The two lines left out name local files.
        told = [[line for line in result.lines if not line.startswith(("preview:", "downloaded:"))] for result in results]
        self.assertEqual(*told)
        self.assertEqual(told[0], ["name node:  http://namenode.example.test:50070",
                                   "uploaded:   /user/bob/figures.csv, 20 bytes, permissions 640",
                                   "deleted:    /user/bob/figures.csv.old"])
        self.assertEqual(*requests)

    def test_probe(self):
        case = run_case.Case(SAMPLES / "probe.js")
        case.arguments = ["http://docs.example.test/", "http://www.example.test/"]
        self.server.prepare([{"match": {"host": "www.example.test"}, "do": {"status": 404}}])
        for home in self.homes.values():
            result = home.run(case)
            self.assertEqual((result.code, result.lines), (0, ["http://docs.example.test/: SharePoint server",
                                                               "http://www.example.test/: no SharePoint server"]))

    def test_refusals_are_told(self):
        refused = [{"match": {"operation": "CheckOutFile"}, "do": {"status": 500}}]
        for name, arguments, rules, told in (
                ("document.js", [f"{LIBRARY}/b.xlsx"], refused, "error: the check-out was refused"),
                ("document.js", [f"{LIBRARY}/None.docx"], None, f"error: no such document: {LIBRARY}/None.docx"),
                ("hdfs.js", ["http://namenode.example.test", "bob", "none.csv", "/user/bob/none.csv", "copy.csv"], None,
                 "error: ")):
            case = run_case.Case(SAMPLES / name)
            case.arguments = arguments
            for home in self.homes.values():
                with self.subTest(sample=name, home=home.name):
                    self.server.prepare(rules)
                    result = home.run(case)
                    self.assertEqual(result.code, 1, result.lines)
                    self.assertTrue(result.lines[-1].startswith(told), result.lines)


class HolderCase(BothHomes):
    """One question in several languages: who holds these documents?"""

    HELD = {f"{LIBRARY}/b.xlsx": "nobody", f"{LIBRARY}/Minutes.docx": "Jane Doe", f"{LIBRARY}/Notes.docx": "Zo\u00eb M\u00fcller",
            f"{LIBRARY}/None.docx": "no such document"}

    def told(self, run):
        self.server.prepare(None)
        result = run(*self.HELD)
        self.assertEqual((result.code, result.errors), (0, ""))
        self.server.prepare(UNKNOWN_USER)
        url = f"{LIBRARY}/b.xlsx"
        self.assertEqual(run(url).lines, [f"{url}: the server does not know who you are"])
        return result.lines

    def expected(self):
        return [f"{url}: {holder}" for url, holder in self.HELD.items()]


class HolderSamples(HolderCase):
    def test_vbscript(self):
        case = run_case.Case(SAMPLES / "holder.vbs")

        def run(*urls):
            case.arguments = urls
            return self.homes["wine"].run(case)
        # cscript writes in the console's code page, which is not UTF-8.
        expected = [line.replace("\u00eb", "\ufffd").replace("\u00fc", "\ufffd") for line in self.expected()]
        self.assertEqual(self.told(run), expected)
        self.assertEqual(run().code, 2)

    def test_vbscript_fetch(self):
        home, local = self.homes["wine"], pathlib.Path(self.folder.name) / "fetched.csv"
        case = run_case.Case(SAMPLES / "fetch.vbs")
        node = f"http://localhost:{self.server.ports['http']}"

        def run(*arguments):
            self.server.prepare(None)
            case.arguments = arguments
            result = home.run(case)
            return result.code, result.lines
        there = "/.generated/lines/640"
        self.assertEqual(run(node, "bob", there, home.local(local)), (0, [f"saved {home.local(local)}"]))
        self.assertEqual(len(local.read_bytes()), 640)
        code, lines = run(node, "bob", "/none.csv", home.local(local))
        self.assertEqual((code, lines[0].split(":")[0]), (1, "status 404"))
        self.assertIn("FileNotFoundException", lines[0])
        self.assertEqual(run("http://localhost:1", "bob", there, home.local(local))[1][0].split(":")[0], "status 0")
        self.assertEqual(run(node, "bob", there, r"Q:\none\f.csv"),
                         (1, [r"the local file cannot be written: Q:\none\f.csv"]))
        self.assertEqual(run("ftp://x", "bob", there, "f.csv"), (2, ["not a server's URL: ftp://x"]))
        self.assertEqual(run()[0], 2)

    def test_shell(self):
        home = self.homes["native"]
        environment = dict(home.environment, PATH=f"{home.build / 'bin'}:{os.environ['PATH']}")

        def run(*urls):
            done = subprocess.run([SAMPLES / "holder.sh", *urls], env=environment, cwd=self.folder.name,
                                  stdin=subprocess.DEVNULL, capture_output=True, timeout=run_case.TIMEOUT, check=False)
            return run_case.Result(done.returncode, done.stdout, done.stderr)
        self.server.prepare(None)
        result = run(*self.HELD)
        self.assertEqual(result.code, 0, result.errors)
        # The command tells a document that the caller holds by another exit code.
        expected = [line.replace("Minutes.docx: Jane Doe", "Minutes.docx: you") for line in self.expected()]
        self.assertEqual(result.lines[:3], expected[:3])
        self.assertTrue(result.lines[3].startswith(f"{LIBRARY}/None.docx: velandoc: "), result.lines)
        self.assertEqual(run().code, 2)


class CppSamples(HolderCase):
    """Built against what an installation holds, in the ways that the samples and docs/packages.md tell."""

    def must(self, *command, **options):
        done = subprocess.run([str(part) for part in command], capture_output=True, text=True, timeout=run_case.TIMEOUT,
                              check=False, **options)
        self.assertEqual(done.returncode, 0, f"{command}\n{done.stdout}{done.stderr}")
        return done

    def work(self, name):
        folder = pathlib.Path(self.folder.name) / name
        folder.mkdir()
        return folder

    def holder_tells(self, home, program, wine=()):
        def run(*urls):
            done = subprocess.run([*wine, program, *urls], env=home.environment, cwd=run_case.TOP,
                                  stdin=subprocess.DEVNULL, capture_output=True, timeout=run_case.TIMEOUT, check=False)
            return run_case.Result(done.returncode, done.stdout, done.stderr)
        self.assertEqual(self.told(run), self.expected())
        self.assertEqual(run().code, 2)

    def test_on_linux(self):
        home, folder = self.homes["native"], self.work("linux")
        installed = folder / "installed"
        for component in ("library", "development"):
            self.must("cmake", "--install", home.build, "--prefix", installed, "--component", component)
        self.must("cmake", "-S", SAMPLES / "cpp", "-B", folder / "build", f"-DCMAKE_PREFIX_PATH={installed}",
                  f"-DCMAKE_CXX_FLAGS={' '.join(WARNINGS)}")
        self.must("cmake", "--build", folder / "build")
        self.holder_tells(home, folder / "build/holder")

        description = next(installed.rglob("velandoc.pc"))
        words = self.must("pkg-config", "--define-prefix", "--cflags", "--libs", "velandoc",
                          env=dict(os.environ, PKG_CONFIG_PATH=str(description.parent))).stdout.split()
        self.must("g++", *WARNINGS, SAMPLES / "cpp/holder.cpp", *words, f"-Wl,-rpath,{description.parent.parent}",
                  "-o", folder / "holder")
        self.holder_tells(home, folder / "holder")

    def test_on_windows(self):
        home, folder = self.homes["wine"], self.work("windows")
        for name in ("holder", "members"):
            self.must("x86_64-w64-mingw32-g++", *WARNINGS, "-static", f"-I{home.build / 'generated'}", "-o",
                      folder / f"{name}.exe", SAMPLES / f"cpp/{name}.cpp", "-lole32", "-loleaut32", "-luuid")
        wine = run_case.TOP / "tools/wine"
        self.holder_tells(home, run_case.windows_path(folder / "holder.exe"), [wine])
        done = home.wine(run_case.windows_path(folder / "members.exe"),
                         run_case.windows_path(home.build / "bin/velandoc.tlb"))
        lines = done.stdout.decode().replace("\r\n", "\n").splitlines()
        self.assertEqual((done.returncode, lines[-1]), (0, "http://namenode.example.com:8020/webhdfs/v1/"))
        self.assertIn(" 4  Download (method Download)", lines)
        self.assertEqual(home.wine(run_case.windows_path(folder / "members.exe"), "none.tlb").returncode, 1)
