"""Whole edits: a document of the stand-in's site is opened, its dialog used, and the server's row looked at."""

import importlib.util
import os
import re
import shutil
import signal
import stat

import dialog_support as support
from dialog_support import DialogCase, PATIENCE, wait_for
from module_cases import CANCEL, OK, middle

# The server of the command's tests, which have a module `support` of their own.
_found = importlib.util.spec_from_file_location("cli_support", support.TOP / "tests/cli/support.py")
cli = importlib.util.module_from_spec(_found)
_found.loader.exec_module(cli)

BOOK = "http://docs.example.test/sites/a/Shared%20Documents/b.xlsx"
MINUTES = "http://docs.example.test/sites/a/Shared%20Documents/Minutes.docx"
SCRIPT = support.TOP / "tests/dialog/edit.js"
OPENING = ["open service", "GetUserInfo", "url to web url", "getDocsMetaInfo", "getDocsMetaInfo", "GetListContentType",
           "GetListItems"]
# The order of the form's controls: every check box is a stop.
FIELDS = ("Owner", "Project_x0020_Code", "Summary", "Status", "Amount", "Due", "Approved", "Regions")


def setUpModule():
    cli.standin = support.binaries / "velandoc-standin"
    cli.server = cli.Server()


def tearDownModule():
    cli.server.stop()


class EditCase(DialogCase):
    def setUp(self):
        super().setUp()
        proxy = f"http://127.0.0.1:{cli.server.ports['http']}"
        self.environment.update(http_proxy=proxy, https_proxy=proxy, SSL_CERT_FILE=str(cli.CERTIFICATES / "ca.pem"),
                                VELANDOC_REGISTRY_DIR=str(self.folder / "registry"))
        self.environment.pop("CURL_CA_BUNDLE", None)
        cli.server.rules()
        cli.server.restore()
        cli.server.command("DELETE", "/log")

    def library(self):
        site = cli.server.command("GET", "/site")
        return site, next(web for web in site["webs"] if web["path"] == "/sites/a")["libraries"][0]

    def row(self, name="b.xlsx"):
        _, library = self.library()
        return next(document for document in library["documents"] if document["path"] == name)["values"]

    def put(self, change):
        """Changes the site: `change` gets the library."""
        site, library = self.library()
        change(library)
        cli.server.command("PUT", "/site", site)

    def updates(self):
        return [record["body"] for record in cli.server.log() if record.get("operation") == "UpdateListItems"]

    def edit(self, *arguments, url=BOOK):
        """A script that edits the document, its dialog open and its page there."""
        program = self.start(support.binaries / "velandoc-script", SCRIPT, url, *arguments)
        return program, self.window()

    def window(self, *others):
        window = support.display.window(other_than=others)
        window.wait_for_page()
        return window

    def go_to(self, field):
        """From OK to the control of the field."""
        support.display.keys("Tab", *["Tab"] * (1 + FIELDS.index(field)))


class EditCases(EditCase):
    def test_values_reach_the_servers_row(self):
        before = self.row()
        program, window = self.edit()
        self.save(window, "edit")
        self.go_to("Owner")
        support.display.type("Zoe")
        support.display.keys("Tab", "Tab", "Tab", "Down")  # Status: one further
        support.display.keys("Tab", "Tab", "Tab", "Tab", "space", "Return")  # the first region
        self.assertEqual(program.end(), ["opened true", "edited false"])
        self.assertEqual(self.row(), {**before, "Owner": "Zoe", "Status": "Final", "Regions": "North;#East;#West",
                                      "Summary": "First lineSecond line"})
        self.assertEqual(len(self.updates()), 1)

    def test_cancel_leaves_the_server_alone(self):
        before = self.row()
        for leave in (lambda window: window.click(*middle(CANCEL)), lambda window: support.display.keys("Escape"),
                      lambda window: window.close()):
            program, window = self.edit()
            self.go_to("Owner")
            support.display.type("Nobody")
            leave(window)
            self.assertEqual(program.end(), ["opened true", "edited false"])
            support.display.gone(window)
        self.assertEqual(self.row(), before)
        self.assertEqual(self.updates(), [])

    def test_ok_by_mouse_and_by_enter(self):
        for press in (lambda window: window.click(*middle(OK)), lambda window: support.display.keys("Return")):
            cli.server.command("DELETE", "/log")
            program, window = self.edit()
            press(window)
            program.end()
            self.assertEqual(len(self.updates()), 1)

    def test_required_field_left_empty_is_told_and_the_dialog_stays(self):
        program, window = self.edit()
        self.go_to("Owner")
        support.display.keys("BackSpace", "Return")
        box = support.display.window(other_than=(window.number,))
        self.save(box, "required")
        self.assertGreater(box.picture().dark(0, 0, box.width, box.height), 100)
        support.display.keys("Return")
        support.display.gone(box)
        self.assertEqual(self.updates(), [])
        # The focus is where it was, in the empty field.
        wait_for("the dialog to have the keyboard", lambda: support.display.active() == window.number)
        support.display.type("Found", "Return")
        program.end()
        self.assertEqual(self.row()["Owner"], "Found")

    def test_required_choice_still_on_select_is_told(self):
        def empty(library):
            for document in library["documents"]:
                document["values"]["Status"] = ""
        self.put(empty)
        program, window = self.edit()
        support.display.keys("Return")
        box = support.display.window(other_than=(window.number,))
        support.display.keys("Return")
        support.display.gone(box)
        support.display.keys("Escape")
        program.end()
        self.assertEqual(self.updates(), [])

    def test_required_boxes_with_none_ticked_are_told(self):
        def require(library):
            for field in library["columns"]:
                field["required"] = field["name"] == "Regions"
            for document in library["documents"]:
                document["values"]["Regions"] = ""
        self.put(require)
        program, window = self.edit()
        support.display.keys("Return")
        box = support.display.window(other_than=(window.number,))
        support.display.keys("Return")
        support.display.gone(box)
        support.display.keys("Escape")
        program.end()
        self.assertEqual(self.updates(), [])

    def test_group_of_one_box_is_sent_unticked(self):
        def one(library):
            for field in library["columns"]:
                if field["name"] == "Regions":
                    field["choices"] = ["North"]
            for document in library["documents"]:
                document["values"]["Regions"] = ""
        self.put(one)
        program, _ = self.edit()
        support.display.keys("Return")
        program.end()
        self.assertEqual(self.row()["Regions"], "North")

    def test_refused_update_closes_the_dialog_and_the_next_shows_the_old_values(self):
        cli.server.rules({"match": {"operation": "UpdateListItems"}, "do": {"respond": {"status": 500, "body": "no"}}})
        program, window = self.edit("2")
        self.go_to("Owner")
        support.display.type("Refused", "Return")
        second = self.window(window.number)
        self.assertNotEqual(second.number, window.number)
        cli.server.rules()
        support.display.keys("Return")
        program.end()
        self.assertEqual(len(self.updates()), 2)
        self.assertIn("Refused", self.updates()[0])
        self.assertIn(">Jane<", self.updates()[1])
        self.assertEqual(self.row()["Owner"], "Jane")

    def test_second_dialog_shows_what_the_first_wrote_and_has_files_of_its_own(self):
        program, window = self.edit("2")
        self.go_to("Owner")
        support.display.type("First", "Return")
        second = self.window(window.number)
        self.go_to("Project_x0020_Code")
        support.display.type("B-2", "Return")
        program.end()
        self.assertEqual((self.row()["Owner"], self.row()["Project_x0020_Code"]), ("First", "B-2"))
        endings = sorted(path.suffix for path in (self.folder / "cache/velandoc").iterdir() if path.is_file())
        self.assertEqual(endings, [".htm", ".htm", ".tmp", ".tmp"])
        support.display.gone(second)

    def test_pages_file_is_for_its_user_alone(self):
        program, _ = self.edit()
        support.display.keys("Escape")
        program.end()
        self.assertEqual(stat.S_IMODE((self.folder / "cache/velandoc").stat().st_mode), 0o700)
        (page,) = (self.folder / "cache/velandoc").glob("*.htm")
        self.assertTrue(page.read_bytes().startswith(b"\xff\xfe<\0h\0t\0m\0l\0>\0"))

    def test_page_that_died_sends_nothing(self):
        program, window = self.edit()
        (page,) = program.processes("WebKitWebProcess")
        os.kill(page, signal.SIGKILL)
        wait_for("the page's process to die", lambda: not program.processes("WebKitWebProcess"))
        window.click(*middle(OK))
        window.click(*middle(OK))
        window.click(*middle(CANCEL))
        self.assertEqual(program.end(), ["opened true", "edited false"])
        self.assertEqual(self.updates(), [])

    def test_page_that_dies_between_two_fields_sends_nothing(self):
        # The first field is read, and then the script ends its own page's process by never returning.
        def hang(library):
            for document in library["documents"]:
                document["values"]["Owner"] = (
                    "x'><script>addEventListener('load', () => { const read = GetFieldValue; GetFieldValue = "
                    "(name, required) => { while (name !== 'Owner'); return read(name, required); }; });</script><i class='")
        self.put(hang)
        program, window = self.edit()
        window.click(*middle(OK))
        (page,) = program.processes("WebKitWebProcess")
        busy = wait_for("the page to be busy", lambda: self.seconds(page) > 0.5)
        self.assertTrue(busy)
        window.click(*middle(CANCEL))
        self.assertEqual(program.end(), ["opened true", "edited false"])
        self.assertEqual(self.updates(), [])

    @staticmethod
    def seconds(process):
        """Processor time of the process."""
        with open(f"/proc/{process}/stat", encoding="ascii") as file:
            words = file.read().rpartition(")")[2].split()
        return (int(words[11]) + int(words[12])) / os.sysconf("SC_CLK_TCK")

    def test_page_asks_the_server_nothing(self):
        def markup(library):
            for document in library["documents"]:
                document["values"]["Owner"] = (
                    "'><img src='http://docs.example.test/image'><script>fetch('http://docs.example.test/fetch')</script>"
                    "<link rel='preconnect' href='http://docs.example.test'><i class='")
        self.put(markup)
        program, window = self.edit()
        asked = len(cli.server.log())
        self.assertEqual(asked, 7, "an open's requests")
        support.display.keys("Escape")
        program.end()
        self.assertEqual(len(cli.server.log()), asked)

    def test_text_of_other_scripts_comes_and_goes(self):
        def foreign(library):
            for document in library["documents"]:
                document["values"].update(Owner="山田 Zoë €", Summary="𝄞 ½ “quoted”")
        self.put(foreign)
        program, window = self.edit()
        self.save(window, "letters")
        support.display.keys("Return")
        program.end()
        self.assertEqual((self.row()["Owner"], self.row()["Summary"]), ("山田 Zoë €", "𝄞 ½ “quoted”"))

    def test_hundred_fields_and_a_thousand_choices(self):
        def many(library):
            choice = next(field for field in library["columns"] if field["name"] == "Status")
            choice["choices"] = [f"Choice {i}" for i in range(1000)]
            owner = next(field for field in library["columns"] if field["name"] == "Summary")
            for i in range(92):
                added = dict(owner, name=f"Extra{i}", display_name=f"Extra {i}")
                added.pop("id", None)
                added.pop("source_id", None)
                library["columns"].append(added)
            for document in library["documents"]:
                document["values"].update({f"Extra{i}": f"value {i}" for i in range(92)}, Status="Choice 999")
        self.put(many)
        program, window = self.edit()
        self.save(window, "many")
        support.display.keys("Return")
        program.end()
        row = self.row()
        self.assertEqual((row["Status"], row["Extra0"], row["Extra91"]), ("Choice 999", "value 0", "value 91"))


class CommandCases(EditCase):
    """velandoc doc edit, as its user meets it."""

    def command(self, *words):
        return self.start(support.binaries / "velandoc", *words)

    def operations(self):
        return [record["operation"] for record in cli.server.log()]

    def test_ok_prints_what_the_server_has(self):
        program = self.command("doc", "edit", BOOK)
        window = self.window()
        window.click(60, 44)  # into Owner
        support.display.keys("ctrl+a")
        support.display.type("Zoe", "Return")
        lines = program.end()
        self.assertRegex("\n".join(lines), r"(?m)^Owner +Zoe$")
        self.assertEqual(self.row()["Owner"], "Zoe")
        self.assertEqual(self.operations(), [*OPENING, "UpdateListItems"])
        endings = sorted(path.suffix for path in (self.folder / "cache/velandoc").iterdir() if path.is_file())
        self.assertEqual(endings, [".htm", ".tmp"])

    def test_cancel_is_told(self):
        site = cli.server.command("GET", "/site")
        program = self.command("doc", "edit", BOOK)
        self.window()
        support.display.keys("Escape")
        self.assertEqual(program.process.wait(timeout=PATIENCE), 1)
        self.assertIsNone(program.next())
        self.assertIn("velandoc: nothing was written: the dialog was cancelled\n", program.errors())
        self.assertEqual(self.operations(), OPENING)
        self.assertEqual(cli.server.command("GET", "/site"), site)


class MissingCases(EditCase):
    """Where there can be no dialog EditFields returns at once, nothing is sent, and the debugger line says why."""

    def returns_at_once(self, folder=None):
        self.environment["VELANDOC_DEBUG"] = str(self.folder / "debug.txt")
        program = self.start((folder or support.binaries) / "velandoc-script", SCRIPT, BOOK)
        self.assertEqual(program.end(), ["opened true", "edited false"])
        self.assertEqual(self.updates(), [])
        lines = (self.folder / "debug.txt").read_text(encoding="utf-8").splitlines()
        return [line for line in lines if line.startswith("Dialog not shown: ")]

    def test_without_a_display(self):
        for name in ("", ":999"):
            (self.folder / "debug.txt").unlink(missing_ok=True)
            self.environment["DISPLAY"] = name
            self.assertEqual(self.returns_at_once(), [
                "Dialog not shown: there is no display: neither WAYLAND_DISPLAY nor DISPLAY leads to one"])

    def installed(self, *left_out):
        """The programs and libraries of the build in a folder of their own, but for those."""
        for name in ("bin/velandoc-script", "lib/libvelandoc.so", "lib/libvelandoc-com.so.1",
                     "lib/libvelandoc-dialog.so"):
            if name in left_out:
                continue
            target = self.folder / name
            target.parent.mkdir(exist_ok=True)
            shutil.copy(support.binaries.parent / name, target)
        self.environment["LD_LIBRARY_PATH"] = str(self.folder / "lib")
        return self.folder / "bin"

    def test_without_the_module(self):
        (line,) = self.returns_at_once(self.installed("lib/libvelandoc-dialog.so"))
        self.assertRegex(line, r"libvelandoc-dialog\.so.*No such file or directory")

    def test_with_a_module_that_is_none(self):
        folder = self.installed()
        (self.folder / "lib/libvelandoc-dialog.so").write_bytes(b"no library")
        (line,) = self.returns_at_once(folder)
        self.assertRegex(line, re.escape(str(self.folder / "lib/libvelandoc-dialog.so")))

    def test_library_and_programs_are_not_linked_with_gtk(self):
        for name in ("bin/velandoc", "bin/velandoc-script", "lib/libvelandoc.so", "lib/libvelandoc-com.so.1"):
            done = support.display.run(["ldd", str(support.binaries.parent / name)])
            self.assertNotRegex(done.stdout.decode(), "libgtk|libwebkit|libglib", name)
        done = support.display.run(["ldd", str(support.binaries.parent / "lib/libvelandoc-dialog.so")])
        self.assertRegex(done.stdout.decode(), "libgtk-3")
