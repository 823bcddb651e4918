"""velandoc: probe, and what it says to mistakes."""

import json
import os
import re
import shutil
import subprocess

import support

HINT = "velandoc: type 'velandoc --help' for what it understands\n"


class Probe(support.Case):
    def test_one_line_a_url_as_typed(self):
        support.server.rules({"match": {"host": "plain.example.test"}, "do": {"status": 404}})
        self.expect(["probe", "http://docs.example.test/", "HTTP://docs.example.test/a%20b?c#d",
                     "http://plain.example.test"], 1,
                    "http://docs.example.test/: SharePoint server\n"
                    "HTTP://docs.example.test/a%20b?c#d: SharePoint server\n"
                    "http://plain.example.test: no SharePoint server\n", "")
        self.assertEqual([record["target"] for record in support.server.log()],
                         ["http://docs.example.test:80/_vti_bin/lists.asmx"] * 2
                         + ["http://plain.example.test:80/_vti_bin/lists.asmx"])

    def test_all_are(self):
        self.expect(["probe", "http://docs.example.test/"], 0,
                    "http://docs.example.test/: SharePoint server\n", "")

    def test_over_https(self):
        self.expect(["probe", "https://docs.example.test/"], 0,
                    "https://docs.example.test/: SharePoint server\n", "")
        self.assertTrue(support.server.log()[0]["tls"])

    def test_untrusted_certificate_without_a_terminal_is_no(self):
        for host in ("expired", "othername", "unknownca", "selfsigned", "allwrong"):
            url = f"https://{host}.example.test/"
            self.expect(["probe", url], 1, f"{url}: no SharePoint server\n", "")
        self.assertEqual(support.server.log(), [])

    def test_credentials_wanted_without_a_terminal_is_no(self):
        support.server.rules({"do": {"auth": {"scheme": "basic", "user": "u", "password": "p"}}})
        self.expect(["probe", "http://docs.example.test/"], 1,
                    "http://docs.example.test/: no SharePoint server\n", "")

    def test_credentials_from_netrc(self):
        support.server.rules({"do": {"auth": {"scheme": "basic", "user": "u", "password": "p"}}})
        self.write(".netrc", "machine docs.example.test login u password p\n").chmod(0o600)
        self.expect(["probe", "http://docs.example.test/"], 0,
                    "http://docs.example.test/: SharePoint server\n", "")

    def test_nobody_listens(self):
        self.environment["http_proxy"] = "http://127.0.0.1:1"
        self.expect(["probe", "http://docs.example.test/"], 1,
                    "http://docs.example.test/: no SharePoint server\n", "")

    def test_answers_that_are_none(self):
        for answer in ({"respond": {"status": 200, "body": "text"}}, {"garbage": {"count": 64, "close": True}},
                       {"truncate": {"length": 1000, "sent": 10}}, {"reset": {"at": "request"}},
                       {"close": {"at": "request"}}, {"status": 500}):
            support.server.rules({"do": answer})
            with self.subTest(answer=answer):
                self.expect(["probe", "http://docs.example.test/"], 1,
                            "http://docs.example.test/: no SharePoint server\n", "")

    def test_json(self):
        support.server.rules({"match": {"host": "plain.example.test"}, "do": {"status": 404}})
        for arguments in (["--json", "probe"], ["probe", "--json"]):
            done = self.run_program(support.command, *arguments, "http://docs.example.test/",
                                    "http://plain.example.test/\u00e9")
            self.assertEqual((done.returncode, done.stderr), (1, b""))
            self.assertEqual(json.loads(done.stdout),
                             [{"url": "http://docs.example.test/", "sharepoint": True},
                              {"url": "http://plain.example.test/\u00e9", "sharepoint": False}])

    def test_a_port_is_warned_of(self):
        self.expect(["probe", "http://docs.example.test:8080/", "http://docs.example.test:80/"], 0,
                    "http://docs.example.test:8080/: SharePoint server\n"
                    "http://docs.example.test:80/: SharePoint server\n",
                    "velandoc: warning: port 8080 of 'http://docs.example.test:8080/' is not used: "
                    "a probe asks the scheme's default port\n")

    def test_letters_beyond_ascii_come_out_as_typed(self):
        self.expect(["probe", "http://docs.example.test/\u00e9\u20ac\U0001f600"], 0,
                    "http://docs.example.test/\u00e9\u20ac\U0001f600: SharePoint server\n", "")

    def test_no_input_and_no_color(self):
        self.environment["NO_COLOR"] = "1"
        self.expect(["--no-input", "probe", "http://docs.example.test/"], 0,
                    "http://docs.example.test/: SharePoint server\n", "")

    def test_closed_output_is_quiet(self):
        reading, writing = os.pipe()
        os.close(reading)
        for extra in ([], ["--json"]):
            done = subprocess.run([support.command, "probe", *extra, "http://docs.example.test/"],
                                  env=self.environment, stdin=subprocess.DEVNULL, stdout=writing,
                                  stderr=subprocess.PIPE, timeout=support.TIMEOUT, check=False)
            self.assertEqual((done.returncode, done.stderr), (5, b""))
        os.close(writing)

    def test_full_disk(self):
        with open("/dev/full", "wb") as full:
            done = subprocess.run([support.command, "probe", "http://docs.example.test/"],
                                  env=self.environment, stdin=subprocess.DEVNULL, stdout=full,
                                  stderr=subprocess.PIPE, timeout=support.TIMEOUT, check=False)
        self.assertEqual(done.returncode, 5)

    def test_without_the_library(self):
        bare = self.folder / "bin"
        bare.mkdir()
        (self.folder / "lib").mkdir()
        shutil.copy(support.command, bare)
        runtime = support.command.parent.parent / "lib"
        self.environment["LD_LIBRARY_PATH"] = str(runtime)
        for file in runtime.glob("libvelandoc-com.so*"):
            shutil.copy(file, self.folder / "lib")
        self.environment["LD_LIBRARY_PATH"] = str(self.folder / "lib")
        self.expect(["probe", "http://docs.example.test/"], 3, "", re.compile(
            r"velandoc: cannot create Velandoc\.ServerCheck \(0x[0-9A-F]{8}\): put the component's library at "
            rf"'{re.escape(str(self.folder))}/lib/libvelandoc\.so', or type 'velandoc register' where it is\n"),
            program=bare / support.command.name)


class Usage(support.Case):
    def mistake(self, arguments, message):
        self.expect(arguments, 2, "", f"velandoc: {message}\n{HINT}")
        self.assertEqual(support.server.log(), [])

    def test_a_url_without_a_scheme(self):
        self.mistake(["probe", "docs.example.test"],
                     "'docs.example.test' has no scheme: did you mean 'https://docs.example.test'?")

    def test_nothing_is_sent_if_a_later_url_is_wrong(self):
        self.mistake(["probe", "http://docs.example.test/", "docs.example.test:8080"],
                     "'docs.example.test:8080' has no scheme: did you mean 'https://docs.example.test:8080'?")

    def test_another_scheme(self):
        self.mistake(["probe", "ftp://docs.example.test/"],
                     "'ftp://docs.example.test/' cannot be probed: only http:// and https:// are spoken")

    def test_no_host(self):
        self.mistake(["probe", "http:///a"], "'http:///a' names no host: type 'http://HOST'")

    def test_not_utf8(self):
        self.mistake(["probe", b"http://docs.example.test/\xff"],
                     "a URL must be UTF-8 text: type other bytes as %XX")

    def test_no_url(self):
        self.expect(["probe"], 2, "", re.compile(rf"velandoc: .*URL.*required.*\n{re.escape(HINT)}", re.S))

    def test_an_unknown_command_is_named(self):
        for words in (["frob"], ["frob", "x"], ["doc", "frob", "x"], ["--json", "doc", "frob"]):
            self.mistake(words, "'frob' is no command")

    def test_no_subcommand(self):
        self.expect([], 2, "", re.compile(rf"velandoc: .*subcommand.*\n{re.escape(HINT)}", re.S))

    def test_unknown_words(self):
        for arguments in (["nonsense"], ["probe", "--nonsense", "http://docs.example.test/"], ["register", "x"],
                          ["probe", "--user", "http://docs.example.test/"]):
            with self.subTest(arguments=arguments):
                self.expect(arguments, 2, "", re.compile(rf"velandoc: .+\n{re.escape(HINT)}", re.S))
        self.assertEqual(support.server.log(), [])

    def test_version(self):
        self.expect(["--version"], 0, "velandoc 1.0.0\n", "")

    def test_help(self):
        done = self.run_program(support.command, "--help")
        self.assertEqual((done.returncode, done.stderr), (0, b""))
        for word in ("probe", "register", "unregister", "classes", "--json", "--no-input", "--version", "Exit codes"):
            self.assertIn(word, done.stdout.decode())
        done = self.run_program(support.command, "probe", "--help")
        self.assertEqual((done.returncode, done.stderr), (0, b""))
        self.assertIn("Usage: velandoc probe [OPTIONS] URL...", done.stdout.decode())
