"""velandoc-script: files, arguments, output, errors, exit codes."""

import os
import re
import subprocess

import support

# A sentence in letters of one, two, three and four bytes of UTF-8.
WORDS = "caf\u00e9 \u20ac \U0001f600"


class Script(support.Case):
    def run_script(self, content, *arguments, name="case.js"):
        self.write(name, content)
        return self.run_program(support.script_host, name, *arguments)

    def expect_script(self, content, code, output, errors, *arguments):
        done = self.run_script(content, *arguments)
        self.assertEqual((done.returncode, done.stdout.decode(), done.stderr.decode()), (code, output, errors))

    def test_drives_the_component_from_any_folder_without_registration(self):
        done = self.run_script("var check = new ActiveXObject('Velandoc.ServerCheck');\n"
                               "WScript.Echo(check.Check(WScript.Arguments(0)));\n", "http://docs.example.test/")
        self.assertEqual((done.returncode, done.stdout, done.stderr), (0, b"-1\n", b""))

    def test_arguments(self):
        self.expect_script(
            "var a = WScript.Arguments;\n"
            "WScript.Echo(a.length, a.Count(), a(0), a.Item(1), a(2) === '', a(3));\n",
            0, f"4 4 -x two words -1 {WORDS}\n", "", "-x", "two words", "", WORDS)

    def test_no_arguments(self):
        self.expect_script("WScript.Echo(WScript.Arguments.length + '|' + WScript.Arguments.Count());", 0, "0|0\n", "")

    def test_encodings(self):
        text = f"WScript.Echo('{WORDS}', '{WORDS}'.length);\n"
        for content in (text.encode(), b"\xef\xbb\xbf" + text.encode(), b"\xff\xfe" + text.encode("utf-16-le"),
                        b"\xfe\xff" + text.encode("utf-16-be")):
            self.expect_script(content, 0, f"{WORDS} 9\n", "")

    def test_bytes_that_are_no_text(self):
        self.expect_script(b"WScript.Echo('\xe9');", 2, "",
                           "velandoc-script: 'case.js': is neither UTF-8 nor UTF-16 with a byte order mark\n")

    def test_empty_file(self):
        self.expect_script(b"", 0, "", "")

    def test_line_ends(self):
        self.expect_script(b"var a = 1;\r\nvar b;\r\nthrow new Error('x');\r\n", 1, "",
                           "case.js(3): runtime error: x\n")

    def test_missing_file(self):
        self.expect(["nowhere.js"], 2, "", "velandoc-script: 'nowhere.js': No such file or directory\n",
                    program=support.script_host)

    def test_folder(self):
        self.expect(["."], 2, "", "velandoc-script: '.': is a folder\n", program=support.script_host)

    def test_usage(self):
        done = self.run_program(support.script_host)
        self.assertEqual((done.returncode, done.stdout), (2, b""))
        self.assertIn("Usage: velandoc-script FILE.js [ARGS]", done.stderr.decode())
        done = self.run_program(support.script_host, "--help")
        self.assertEqual((done.returncode, done.stderr), (0, b""))
        self.assertIn("Usage: velandoc-script FILE.js [ARGS]", done.stdout.decode())
        self.expect(["--version"], 0, "velandoc-script 1.0.0\n", "", program=support.script_host)
        self.expect(["--nonsense"], 2, "",
                    "velandoc-script: unknown option '--nonsense': type 'velandoc-script --help'\n",
                    program=support.script_host)

    def test_names(self):
        done = self.run_script("WScript.Echo(WScript.ScriptName);\nWScript.Echo(WScript.ScriptFullName);\n",
                               name="a script.js")
        self.assertEqual(done.stdout.decode(), f"a script.js\n{os.path.realpath(self.folder)}/a script.js\n")

    def test_members_in_any_case(self):
        self.expect_script("wscript = WScript; wscript.ECHO(WScript.scriptname, WScript.arguments.COUNT());",
                           0, "case.js 0\n", "")

    def test_streams(self):
        self.expect_script("WScript.StdOut.Write('a'); WScript.StdOut.WriteLine('b');\n"
                           "WScript.StdErr.Write('c'); WScript.StdErr.WriteLine('d');\n", 0, "ab\n", "cd\n")

    def test_order_of_output_and_talk(self):
        self.write("case.js", "WScript.Echo('1'); WScript.StdErr.WriteLine('2'); WScript.Echo('3');")
        done = subprocess.run([support.script_host, "case.js"], cwd=self.folder, env=self.environment,
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT, timeout=support.TIMEOUT, check=False)
        self.assertEqual(done.stdout, b"1\n2\n3\n")

    def test_unpaired_surrogate_is_replaced_in_output(self):
        self.expect_script("WScript.Echo('a\\ud83dz');", 0, "a\ufffdz\n", "")

    def test_quit_codes(self):
        for code in (0, 1, 7, 255):
            self.expect_script(f"WScript.Quit({code}); WScript.Echo('behind');", code, "", "")
        self.expect_script("WScript.Quit();", 0, "", "")

    def test_quit_passes_catch_and_finally(self):
        self.expect_script("try { WScript.Quit(3); } catch (e) { WScript.Echo('caught'); }"
                           " finally { WScript.Echo('finally'); }", 3, "", "")

    def test_uncaught_errors(self):
        for content, line, message in (
                ("\n\nthrow new Error('boom');", 3, "boom"),
                ("function f() {\n  throw new Error(5, 'five');\n}\n\nf();", 2, "five"),
                ("\nthrow 'text';", 2, "text"),
                ("\nfunction g() {\n  throw { toString: function () { return 'own'; } };\n}\ng();", 3, "own"),
                ("\nthrow null;", 2, "null"),
                ("var a;\n\na.b.c();", 3, "cannot read property 'b' of undefined"),
                ("\nnew ActiveXObject('No.Such');", 2, "Automation server can't create object (0x800A01AD)"),
                ("\nWScript.CreateObject('No.Such');", 2, "no class of this name is known (0x800401F3)"),
                ("var c = new ActiveXObject('Velandoc.ServerCheck');\n\nc.NoSuch();", 3,
                 "Object doesn't support this property or method (0x800A01B6)"),
                ("var c = new ActiveXObject('Velandoc.ServerCheck');\n\nc.Check();", 3,
                 "wrong number of arguments (0x8002000E)"),
                ("\n(function f() { f(); })();", 2, "callstack limit")):
            with self.subTest(content=content):
                self.expect_script(content, 1, "", f"case.js({line}): runtime error: {message}\n")

    def test_an_error_that_cannot_be_shown(self):
        self.expect_script("\nthrow { toString: function () { throw 1; } };", 1, "",
                           "case.js(2): runtime error: an error that cannot be shown\n")

    def test_output_before_an_error_stays(self):
        self.expect_script("WScript.Echo('first');\nthrow new Error('x');", 1, "first\n",
                           "case.js(2): runtime error: x\n")

    def test_syntax_errors(self):
        done = self.run_script("WScript.Echo('never');\nvar b = = 3;\n")
        self.assertEqual((done.returncode, done.stdout), (1, b""))
        self.assertRegex(done.stderr.decode(), re.compile(r"\Acase\.js\(2\): syntax error: .+\n\Z"))

    def test_closed_output_ends_the_script(self):
        self.write("case.js", "for (;;) WScript.Echo('again and again');")
        reading, writing = os.pipe()
        os.close(reading)
        done = subprocess.run([support.script_host, "case.js"], cwd=self.folder, env=self.environment,
                              stdin=subprocess.DEVNULL, stdout=writing, stderr=subprocess.PIPE,
                              timeout=support.TIMEOUT, check=False)
        os.close(writing)
        self.assertEqual((done.returncode, done.stderr), (1, b""))
