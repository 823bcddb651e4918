"""velandoc doc edit: the questions of --terminal, on a terminal and through pipes; what becomes of the dialog
where there is none. tests/dialog has the edits in a real window."""

import json
import subprocess

import support
from doc_cases import BUDGET, DocCase, MINUTES, PLAIN, SEVEN

KEEP = "Enter keeps the value in brackets, - alone empties it.\n"


class EditOnTheTerminal(DocCase):
    def fields(self, url):
        return self.doc_json("fields", url)["columns"]

    def edit(self, url, lines, *options, code=0):
        """Output and talk; the answers come through a pipe."""
        done = subprocess.run([support.command, "doc", "edit", "--terminal", url, *options], env=self.environment,
                              cwd=self.folder, input="".join(f"{line}\n" for line in lines).encode(),
                              capture_output=True, timeout=support.TIMEOUT, start_new_session=True, check=False)
        self.assertEqual(done.returncode, code, done.stderr.decode())
        return done.stdout.decode(), done.stderr.decode()

    def test_enter_keeps_everything_and_still_writes(self):
        before = self.fields(PLAIN)
        support.server.command("DELETE", "/log")
        output, talk = self.edit(PLAIN, [""] * len(before))
        self.assertEqual(self.operations(), SEVEN + ["UpdateListItems"])
        self.assertTrue(talk.startswith(KEEP), talk)
        self.assertEqual([line.split()[0] for line in output.splitlines()], [field["name"] for field in before])
        self.assertEqual(self.fields(PLAIN), before)

    def test_answers_reach_the_servers_row(self):
        answers = []
        expected = {}
        for field in self.fields(PLAIN):
            if field["type"] == "Choice":
                answers.append(str(len(field["choices"])))
                expected[field["name"]] = field["choices"][-1]
            elif field["type"] == "MultiChoice":
                answers.append("2, 1")
                expected[field["name"]] = ";#".join(field["choices"][:2])
            elif field["type"] in ("Text", "Note"):
                answers.append("B\u00fccher \u8ba1\u5212")
                expected[field["name"]] = "B\u00fccher \u8ba1\u5212"
            else:
                answers.append("")
        self.assertGreaterEqual(len(expected), 3)
        output, _ = self.edit(PLAIN, answers, "--json")
        now = json.loads(output)["columns"]
        for name, value in expected.items():
            self.assertEqual(now[name], value, name)
        written = {field["name"]: field["value"] for field in self.fields(PLAIN)}
        for name, value in expected.items():
            self.assertEqual(written[name], value, name)

    @support.needs_terminal
    def test_on_a_terminal_what_is_required_is_insisted_on(self):
        fields = self.fields(MINUTES)
        self.assertTrue(any(field["missing"] for field in fields))
        output = self.folder / "output"
        terminal = support.Terminal(self.environment, support.command, "doc", "edit", "--terminal", MINUTES,
                                    output=output)
        for field in fields:
            terminal.wait_for("> ")
            if field["missing"]:
                terminal.type("\n")
                terminal.wait_for("a value is required")
                terminal.wait_for("> ")
                if field["choices"]:
                    terminal.type("99\n")
                    terminal.wait_for("is no number from 1 to ")
                    terminal.wait_for("> ")
                terminal.type("1\n")
            else:
                terminal.type("\n")
        shown, code = terminal.finish()
        self.assertEqual(code, 0, shown)
        self.assertEqual(self.doc_json("fields", MINUTES)["missing"], [])

    def test_an_input_that_ends_writes_nothing(self):
        before = self.fields(PLAIN)
        support.server.command("DELETE", "/log")
        output, talk = self.edit(PLAIN, ["x"], code=1)
        self.assertEqual(output, "")
        self.assertTrue(talk.endswith("velandoc: nothing was written: the input ended\n"), talk)
        self.assertEqual(self.operations(), SEVEN)
        self.assertEqual(self.fields(PLAIN), before)

    def test_a_document_that_another_holds_is_refused(self):
        before = self.fields(BUDGET)
        support.server.command("PUT", "/caller", {"login": "john"})
        output, talk = self.edit(BUDGET, [""] * len(before), code=1)
        self.assertEqual(output, "")
        self.assertRegex(talk, r"velandoc: the server refused the update: .+ \(0x80070021\)\n\Z")
        self.assertEqual(self.fields(BUDGET), before)

    def test_letters_that_an_update_cannot_carry_need_escaping(self):
        fields = self.fields(PLAIN)
        text = [place for place, field in enumerate(fields) if field["type"] == "Text"][0]
        answers = [""] * len(fields)
        answers.insert(text, "a < b & c")  # asked for again
        _, talk = self.edit(PLAIN, answers)
        self.assertIn("the value cannot be written: it holds '&'", talk)
        answers = [""] * len(fields)
        answers[text] = "a < b & c"
        output, _ = self.edit(PLAIN, answers, "--escape", "--json")
        self.assertEqual(json.loads(output)["columns"][fields[text]["name"]], "a < b & c")

    def test_without_somebody_to_ask_nothing_is_written(self):
        self.doc("edit", "--terminal", PLAIN, "--no-input", code=2,
                 errors="velandoc: nothing was written: --no-input leaves nobody to ask\n")
        self.doc("edit", "--escape", PLAIN, code=2,
                 errors="velandoc: --escape goes with --terminal: the dialog sends what is typed as it stands\n"
                        "velandoc: type 'velandoc --help' for what it understands\n")


class EditWithoutADisplay(DocCase):
    def test_the_reason_is_told_and_nothing_written(self):
        for name in ("DISPLAY", "WAYLAND_DISPLAY"):
            self.environment.pop(name, None)
        done = self.run_program(support.command, "doc", "edit", PLAIN)
        self.assertEqual((done.returncode, done.stdout), (6, b""), done.stderr.decode())
        told = done.stderr.decode().splitlines()
        self.assertEqual(len(told), 2, told)
        self.assertRegex(told[0], r"\Avelandoc: cannot show the dialog: .+")
        self.assertEqual(told[1], "velandoc: with --terminal the questions are asked here")
        self.assertEqual(self.operations(), SEVEN)
        # The toolkit looks for a display and may keep files of its own in the cache; a page would be in this folder.
        self.assertFalse((self.folder / ".cache/velandoc").exists())
