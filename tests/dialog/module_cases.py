"""The dialog's module through its port: the window, its keys, its page, and what can go wrong with them."""

import os
import signal
import socket
import time

import form_page
import dialog_support as support
from dialog_support import DialogCase, wait_for

WIDTH, HEIGHT = 599, 354  # template 201 in pixels: 399 by 218 dialog units of 6/4 and 13/8
OK = (434, 320)
CANCEL = (513, 320)
BUTTON = (75, 23)


def middle(button):
    return button[0] + BUTTON[0] // 2, button[1] + BUTTON[1] // 2


class DriverCase(DialogCase):
    def open(self, *options, fields=(form_page.text("Title", "Budget"),), **page):
        """The driver with its window seen and its page loaded."""
        program = self.drive(*options, self.page(*fields, **page))
        window = support.display.window()
        program.until("document")
        return program, window

    def value(self, *fields, call="GetFieldValue,Title", keys=()):
        """What the call gives at OK after the keys. Enter comes behind them; a click might overtake them."""
        program, window = self.open("--call", call, fields=fields)
        support.display.keys("Tab", "Tab", *keys, "Return")  # from OK over Cancel into the page
        line = program.until("call")
        program.end()
        return line.split(" ", 2)[2]


class WindowCases(DriverCase):
    def test_window_has_the_templates_caption_size_and_buttons(self):
        program, window = self.open()
        self.assertEqual((window.width, window.height), (WIDTH, HEIGHT))
        self.assertIn(f"created {WIDTH} {HEIGHT}", program.lines)
        window.wait_for_page()
        self.save(window, "window")
        picture = window.picture()
        for button in (OK, CANCEL):
            self.assertGreater(picture.dark(*button, button[0] + BUTTON[0], button[1] + BUTTON[1]), 20, "its word")
        self.assertGreater(picture.dark(0, 0, 200, 60), 50, "the page's words")
        self.assertEqual(picture.dark(0, 325, 400, HEIGHT), 0, "nothing beside the buttons")

    def test_size_is_told_once_before_the_window_is_seen(self):
        program, _ = self.open()
        self.assertEqual(program.lines[:2], [f"created {WIDTH} {HEIGHT}", f"size 0 {WIDTH} {HEIGHT}"])

    def test_resized_window_keeps_the_buttons_distances(self):
        program, window = self.open()
        for width, height in ((900, 600), (500, 250), (700, 300)):
            window.resize(width, height)
            program.until(f"size 0 {width} {height}")
        ok = OK[0] + 700 - WIDTH, OK[1] + 300 - HEIGHT
        self.save(window, "resized")
        window.click(*middle(ok))
        program.until("command 1")

    def test_page_fills_the_area_above_the_buttons(self):
        fields = ("<div style='position:fixed;inset:0;background:#000'></div>",)
        program, window = self.open(fields=fields)
        bottom = OK[1] - 10

        def filled():
            # An unpainted window is black.
            picture = window.picture()
            return picture.dark(0, 0, WIDTH, bottom) == WIDTH * bottom and picture.dark(0, bottom, 400, HEIGHT) == 0
        wait_for("a black page", filled)
        window.resize(640, 400)
        program.until("size 0 640 400")
        bottom += 400 - HEIGHT
        wait_for("a black page", lambda: window.picture().dark(0, 0, 640, bottom) == 640 * bottom)

    def test_tiny_window_does_no_harm(self):
        program, window = self.open()
        window.resize(60, 12)
        program.until("size 0 60 12")
        window.resize(WIDTH, HEIGHT)
        program.until(f"size 0 {WIDTH} {HEIGHT}")
        window.click(*middle(OK))
        program.until("result 1")

    def test_maximised_window_is_told_as_such(self):
        program, window = self.open()
        window.maximise()
        program.until("size 2 ")

    def test_dialog_can_end_before_it_is_seen(self):
        program = self.drive("--end-at-once", self.page(form_page.text("Title")))
        lines = program.end()
        self.assertEqual(lines[:3], [f"created {WIDTH} {HEIGHT}", "destroyed", "result 7"])

    def test_window_and_its_processes_go_with_the_dialog(self):
        program, window = self.open("--times", "2")
        window.click(*middle(OK))
        program.until("result 1")
        second = support.display.window(other_than=(window.number,))
        program.until("document")
        wait_for("the first page's process to end",
                 lambda: len(program.processes("WebKitWebProcess")) == 1)
        second.click(*middle(CANCEL))
        program.until("result 2")
        program.end()
        support.display.gone(second)

    def test_handles_and_document_die_with_the_dialog(self):
        program, window = self.open("--call", "GetFieldValue,Title")
        window.click(*middle(OK))
        lines = program.end()
        self.assertEqual(lines[lines.index("destroyed"):][:5],
                         ["destroyed", "result 1", "dead handle 0", "dead document 80004005",
                          "call GetFieldValue unknown 80004005"])


class KeyCases(DriverCase):
    def ends(self, *keys):
        program, _ = self.open()
        support.display.keys(*keys)
        line = program.until("command")
        program.end()
        return line

    def test_enter_is_ok_at_first(self):
        self.assertEqual(self.ends("Return"), "command 1")

    def test_keypads_enter_is_enter(self):
        self.assertEqual(self.ends("KP_Enter"), "command 1")

    def test_enter_on_cancel_is_cancel(self):
        self.assertEqual(self.ends("Tab", "Return"), "command 2")

    def test_escape_is_cancel(self):
        self.assertEqual(self.ends("Escape"), "command 2")

    def test_escape_in_the_page_is_cancel(self):
        self.assertEqual(self.ends("Tab", "Tab", "a", "Escape"), "command 2")

    def test_enter_in_a_text_box_is_ok(self):
        self.assertEqual(self.ends("Tab", "Tab", "a", "Return"), "command 1")

    def test_space_presses_the_button_with_the_focus(self):
        self.assertEqual(self.ends("Tab", "space"), "command 2")

    def test_close_box_is_cancel(self):
        program, window = self.open()
        window.close()
        program.until("command 2")
        program.until("result 2")

    def test_buttons_answer_the_mouse(self):
        for button, number in ((OK, 1), (CANCEL, 2)):
            program, window = self.open()
            window.click(*middle(button))
            program.until(f"command {number}")
            program.until(f"result {number}")
            support.display.gone(window)

    def test_what_was_typed_before_enter_has_arrived(self):
        program, _ = self.open("--call", "GetFieldValue,Title")
        support.display.keys("Tab", "Tab")
        support.display.type("as fast as the machine can type", "Return")
        self.assertEqual(program.until("call"), "call GetFieldValue text as fast as the machine can type")

    def walk(self, key, *steps):
        """A program after a walk with the key from OK: the steps are the focus to wait for, or text to type."""
        program, window = self.open("--focus", "--call", "GetFieldValue,A", "--call", "GetFieldValue,B",
                                    fields=(form_page.text("A"), form_page.text("B")))
        for step in steps:
            if step.startswith("type "):
                support.display.type(step.removeprefix("type "))
                continue
            support.display.keys(key)
            if step != "inside":
                self.assertEqual(program.until("focus"), f"focus {step}")
        support.display.keys("Return")
        return [program.until("call"), program.next()]

    def test_tab_walks_from_the_buttons_through_the_page_and_out(self):
        values = self.walk("Tab", "Cancel", "page", "type a", "inside", "type b", "OK", "Cancel", "page", "type c")
        self.assertEqual(values, ["call GetFieldValue text c", "call GetFieldValue text b"])

    def test_shift_and_tab_walks_back(self):
        values = self.walk("shift+Tab", "page", "type b", "inside", "type a", "Cancel", "OK", "page", "type c")
        self.assertEqual(values, ["call GetFieldValue text a", "call GetFieldValue text c"])

    def test_text_box_that_tab_enters_is_selected(self):
        self.assertEqual(self.value(form_page.text("Title", "old"), keys=("n",)), "text n")

    def test_page_without_a_control_is_a_stop_that_tab_leaves(self):
        program, window = self.open("--focus", fields=("nothing to enter",))
        for stop in ("Cancel", "page", "OK"):
            support.display.keys("Tab")
            self.assertEqual(program.until("focus"), f"focus {stop}")

    def test_choice_is_made_with_the_keyboard(self):
        choice = form_page.choice("Title", "Draft", "Review", "Final")
        self.assertEqual(self.value(choice, keys=("Down", "Down")), "text Final")

    def test_enter_and_escape_belong_to_an_open_list(self):
        program, window = self.open("--call", "GetFieldValue,Title", "--stay",
                                    fields=(form_page.choice("Title", "Draft", "Review", "Final"),))
        support.display.keys("Tab", "Tab", "space")
        wait_for("the list", lambda: len(support.display.windows_of("dialog_driver")) == 2)
        support.display.keys("Down")
        support.display.keys("Return")
        wait_for("the list to go", lambda: len(support.display.windows_of("dialog_driver")) == 1)
        window.click(*middle(OK))
        program.until("command 1")
        self.assertEqual(program.until("call"), "call GetFieldValue text Review")
        self.assertEqual([line for line in program.lines if line.startswith("command")], ["command 1"])

    def test_box_is_ticked_with_the_space_bar(self):
        self.assertEqual(self.value(form_page.boxes("Title", "A", "B"), keys=("space", "Tab", "space")),
                         "text A;#B")

    def test_control_and_enter_is_the_pages_own(self):
        program, window = self.open("--stay")
        support.display.keys("Tab", "Tab", "ctrl+Return", "Escape")
        self.assertEqual(program.until("command"), "command 2")

    def test_pages_scripts_cannot_press_ok(self):
        script = ("document.getElementsByName('Title')[0].dispatchEvent("
                  "new KeyboardEvent('keydown', {key: 'Enter', bubbles: true}));")
        program, window = self.open(script=script)
        support.display.keys("Escape")
        self.assertEqual(program.until("command"), "command 2")


class ScriptCases(DriverCase):
    """The form's functions in WebKit; tests/unit/fields/form_script_test.cpp asks another engine the same."""

    def test_one_element_gives_its_value_ticked_or_not(self):
        for field, value in ((form_page.text("Title", "Plan"), "Plan"), (form_page.text("Title"), ""),
                             (form_page.boxes("Title", "One"), "One"),
                             (form_page.boxes("Title", "One", ticked=("One",)), "One"),
                             (form_page.text("Title", "a;#b"), "a;#b")):
            self.assertEqual(self.value(field), f"text {value}")

    def test_of_several_the_ticked_ones_are_joined_in_order(self):
        for ticked, value in (((), ""), (("A",), "A"), (("B",), "B"), (("A", "B", "C"), "A;#B;#C")):
            self.assertEqual(self.value(form_page.boxes("Title", "A", "B", "C", ticked=ticked)), f"text {value}")

    def test_name_without_elements_is_empty(self):
        self.assertEqual(self.value(call="GetFieldValue,none"), "text ")

    def test_required_plays_no_part(self):
        for number in ("-1", "0"):
            program, window = self.open("--number", number, "--call", "GetFieldValue,Title")
            window.click(*middle(OK))
            self.assertEqual(program.until("call"), "call GetFieldValue text Budget")
            program.end()

    def test_thousand_boxes_are_read(self):
        names = [f"c{i}" for i in range(1000)]
        self.assertEqual(self.value(form_page.boxes("Title", *names, ticked=("c499", "c999"))), "text c499;#c999")

    def test_longest_text_of_a_text_box_comes_back_whole(self):
        # WebKit's text boxes hold 524,288 characters, 1 MiB of UTF-16, and cut what is longer.
        text = "0123456789abcdef" * (524288 // 16)
        self.assertEqual(self.value(form_page.text("Title", text + "more")), f"text {text}")

    def test_text_of_every_kind_comes_back_as_it_was(self):
        for text in ("äöü € 预算 𝄞", "a\\u0041 \\ %s ${x} `", "&lt;b&gt; &amp; &quot;"):
            plain = text.replace("&lt;", "<").replace("&gt;", ">").replace("&quot;", '"').replace("&amp;", "&")
            self.assertEqual(self.value(form_page.text("Title", text)), f"text {plain}")

    def test_name_of_every_kind_reaches_the_script(self):
        name = "Grösse \\ \"quoted\" 预算"
        field = form_page.text("x", "found").replace("name='x'", f"name='{name}'")
        self.assertEqual(self.value(field, call=f"GetFieldValue,{name}"), "text found")

    def test_unused_function_answers(self):
        self.assertEqual(self.value(call="NoArguments"), "text Argumentum")

    def test_missing_function_is_not_known(self):
        self.assertEqual(self.value(call="NoSuchFunction,Title"), "unknown 80020006")

    def test_what_is_no_function_is_not_known(self):
        self.assertEqual(self.value(call="document"), "unknown 80020006")

    def script_value(self, script, call="F"):
        program, window = self.open("--call", call, script=script)
        window.click(*middle(OK))
        line = program.until("call")
        program.end()
        return line.split(" ", 2)[2]

    def test_only_texts_come_back_as_texts(self):
        for value in ("7", "null", "undefined", "true", "{}", "document", "function () {}"):
            self.assertEqual(self.script_value(f"function F() {{ return {value}; }}"), "type 0")

    def test_function_that_throws_fails(self):
        self.assertEqual(self.script_value("function F() { throw new Error('no'); }"), "failed 80020009")

    def test_arguments_are_positional_and_no_more_than_were_given(self):
        script = "function F(a, b) { return arguments.length + ' ' + a + ' ' + b; }"
        self.assertEqual(self.script_value(script, "F"), "text 0 undefined undefined")
        self.assertEqual(self.script_value(script, "F,x"), "text 1 x undefined")
        self.assertEqual(self.script_value(script, "F,x,y"), "text 2 x y")

    def test_missing_value_is_told_in_a_box_and_the_call_waits(self):
        program, window = self.open("--stay", "--call", "AlertRequired,Title")
        window.click(*middle(OK))
        box = support.display.window(other_than=(window.number,))
        self.save(box, "alert")
        picture = box.picture()
        self.assertGreater(picture.dark(0, 0, picture.width, picture.height), 100, "its words")
        self.assertNotIn("call", "".join(program.lines))
        # Nothing but the box can be used.
        window.click(*middle(CANCEL))
        support.display.xdotool("windowactivate", "--sync", box.number)
        support.display.keys("Return")
        self.assertEqual(program.until("call"), "call AlertRequired type 0")
        support.display.gone(box)
        window.click(*middle(CANCEL))
        self.assertEqual(program.until("command"), "command 2")

    def test_click_on_an_element_that_was_asked_for_is_told(self):
        program, window = self.open(
            "--listen", "ButtonOK",
            fields=("<button type='button' id='ButtonOK' style='position:fixed;inset:0'><b>Press</b></button>",))
        window.click(100, 100)
        self.assertEqual(program.until("click"), "click ButtonOK")

    def test_click_elsewhere_is_not_told(self):
        program, window = self.open(
            "--listen", "ButtonOK", fields=("<button type='button' id='Other' style='position:fixed;inset:0'>x</button>",))
        window.click(100, 100)
        window.click(*middle(OK))
        program.until("result 1")
        self.assertFalse([line for line in program.lines if line.startswith("click")])


class LoadCases(DriverCase):
    def test_path_is_taken_to_the_letter(self):
        folder = self.folder / "a b%20c#d?e\\f & ü"
        folder.mkdir()
        page = form_page.write(folder / "x%41.htm", form_page.text("Title", "here"))
        program = self.drive("--call", "GetFieldValue,Title", page)
        window = support.display.window()
        program.until("document")
        window.click(*middle(OK))
        self.assertEqual(program.until("call"), "call GetFieldValue text here")

    def test_relative_path_counts_from_the_current_folder(self):
        self.page(form_page.text("Title"), name=".htm")
        program = self.drive(".htm")
        program.until("document")

    def test_missing_page_leaves_a_dialog_without_a_document(self):
        program = self.drive("--stay", "--call", "GetFieldValue,Title", self.folder / "none.htm")
        window = support.display.window()
        window.click(*middle(OK))
        self.assertEqual(program.until("call"), "call GetFieldValue without a document")
        window.click(*middle(CANCEL))
        program.until("result 2")

    def test_page_still_loading_has_no_document_and_can_be_cancelled(self):
        program = self.drive("--stay", "--call", "GetFieldValue,Title",
                             self.page(form_page.text("Title"), script="for (;;) {}"))
        window = support.display.window()
        window.click(*middle(OK))
        self.assertEqual(program.until("call"), "call GetFieldValue without a document")
        window.click(*middle(CANCEL))
        program.until("result 2")
        program.end()


class CrashCases(DriverCase):
    def kill_page(self, program):
        (page,) = program.processes("WebKitWebProcess")
        os.kill(page, signal.SIGKILL)
        wait_for("the page's process to die", lambda: not program.processes("WebKitWebProcess"))

    def test_page_that_died_leaves_a_dialog_that_closes(self):
        program, window = self.open("--stay", "--call", "GetFieldValue,Title")
        self.kill_page(program)
        window.click(*middle(OK))
        program.until("command 1")
        self.assertEqual(program.until("call"), "call GetFieldValue unknown 80004005")
        window.click(*middle(CANCEL))
        program.until("result 2")
        program.end()

    def test_page_that_dies_under_a_call_ends_the_call(self):
        program, window = self.open("--stay", "--call", "F", script="function F() { for (;;) {} }")
        window.click(*middle(OK))
        program.until("command 1")
        self.kill_page(program)
        self.assertEqual(program.until("call"), "call F failed 80004005")
        window.click(*middle(CANCEL))
        program.until("result 2")

    def test_page_that_dies_behind_its_alert_takes_the_box_along(self):
        program, window = self.open("--stay", "--call", "AlertRequired,Title")
        window.click(*middle(OK))
        box = support.display.window(other_than=(window.number,))
        self.kill_page(program)
        self.assertEqual(program.until("call"), "call AlertRequired failed 80004005")
        support.display.gone(box)
        window.click(*middle(CANCEL))
        program.until("result 2")

    def test_cancel_ends_a_function_that_never_returns(self):
        program, window = self.open("--stay", "--call", "F", script="function F() { for (;;) {} }")
        window.click(*middle(OK))
        program.until("command 1")
        window.click(*middle(OK))  # nothing more is begun meanwhile
        window.click(*middle(CANCEL))
        self.assertEqual(program.until("call"), "call F failed 80004005")
        self.assertEqual(program.next(), "command 2")
        program.until("result 2")

    def test_next_dialog_after_a_crash_is_a_whole_one(self):
        program, window = self.open("--times", "2", "--call", "GetFieldValue,Title")
        self.kill_page(program)
        window.click(*middle(CANCEL))
        program.until("result 2")
        second = support.display.window(other_than=(window.number,))
        program.until("document")
        second.click(*middle(OK))
        self.assertEqual(program.until("call"), "call GetFieldValue text Budget")


class ConfinementCases(DriverCase):
    """The page may be anybody's: a server's texts stand in it unescaped."""

    def setUp(self):
        super().setUp()
        self.listener = socket.create_server(("127.0.0.1", 0))
        self.addCleanup(self.listener.close)
        self.listener.settimeout(0.2)
        self.url = f"http://127.0.0.1:{self.listener.getsockname()[1]}"

    def connections(self):
        """What has connected to the listener, first bytes each."""
        found = []
        while True:
            try:
                peer, _ = self.listener.accept()
            except TimeoutError:
                return found
            with peer:
                peer.settimeout(1)
                try:
                    found.append(peer.recv(200))
                except OSError as problem:
                    found.append(repr(problem))

    def run_page(self, *fields, script="", settle=1.0):
        """Shows the page for a while, and gives the value of the field Title at OK."""
        script = form_page.SCRIPT + ("function note(text) {"
                                     " document.getElementsByName('Title')[0].value += text + ' '; }") + script
        program, window = self.open("--call", "GetFieldValue,Title",
                                    fields=(form_page.text("Title"), *fields), script=script)
        time.sleep(settle)  # nothing comes to wait for: what does not happen has time to happen
        window.click(*middle(OK))
        line = program.until("call")
        program.end()
        return line.removeprefix("call GetFieldValue text ").split()

    def test_listener_would_notice(self):
        with socket.create_connection(self.listener.getsockname()) as peer:
            peer.sendall(b"here")
        self.assertEqual(self.connections(), [b"here"])

    def test_markup_reaches_no_server(self):
        url = self.url
        self.run_page(
            f"<img src='{url}/image'><link rel='stylesheet' href='{url}/style'><link rel='icon' href='{url}/icon'>",
            f"<link rel='preconnect' href='{url}'><link rel='prefetch' href='{url}/prefetch'>",
            f"<link rel='preload' as='script' href='{url}/preload'><link rel='dns-prefetch' href='{url}'>",
            f"<link rel='modulepreload' href='{url}/module'><link rel='manifest' href='{url}/manifest'>",
            f"<iframe src='{url}/frame'></iframe><object data='{url}/object'></object><embed src='{url}/embed'>",
            f"<iframe srcdoc=\"<img src='{url}/inner'>\"></iframe><video src='{url}/video' autoplay></video>",
            f"<audio src='{url}/audio' autoplay></audio><input type='image' src='{url}/input'>",
            f"<svg><image href='{url}/svg'/><use href='{url}/use#a'/></svg><script src='{url}/script'></script>",
            f"<style>@import url('{url}/import'); body {{ background: url('{url}/background') }}"
            f" @font-face {{ font-family: f; src: url('{url}/font') }} span {{ font-family: f }}</style>",
            f"<meta http-equiv='refresh' content='0;url={url}/refresh'><base href='{url}/'>")
        self.assertEqual(self.connections(), [])

    def test_scripts_reach_no_server(self):
        ways = (
            "fetch(url + '/fetch').catch(() => 0)", "new Image().src = url + '/image'",
            "new WebSocket(url.replace('http', 'ws'))", "navigator.sendBeacon(url + '/beacon', 'x')",
            "new EventSource(url + '/events')", "new Worker(url + '/worker')", "import(url + '/module')",
            "new SharedWorker(url + '/shared')", "new Audio(url + '/audio').play()", "open(url + '/open')",
            "{ const r = new XMLHttpRequest(); r.open('GET', url + '/xhr'); r.send(); }",
            "new RTCPeerConnection({iceServers: [{urls: url.replace('http://', 'stun:')}]}).createOffer()",
            "document.body.appendChild(document.createElement('script')).src = url + '/made'",
            "navigator.serviceWorker.register(url + '/service')", "new FontFace('f', 'url(' + url + '/face)').load()",
            "{ const l = document.createElement('link'); l.rel = 'preconnect'; l.href = url;"
            "  document.head.appendChild(l); }",
            "new WebTransport(url.replace('http', 'https'))",
            "Object.assign(document.createElement('a'), {href: url + '/ping', ping: url + '/ping'}).click()",
            "Object.assign(document.createElement('a'), {href: url + '/get', download: 'x'}).click()",
            "document.forms[0].action = url + '/form', document.forms[0].submit()",
            "location = url + '/location'",
        )
        script = f"const url = '{self.url}';" + "".join(f"try {{ {way} }} catch (e) {{}};" for way in ways) + "note('ran');"
        self.assertEqual(self.run_page(script=script), ["ran"])
        self.assertEqual(self.connections(), [])

    def test_page_stays_where_it_is(self):
        other = self.page(form_page.text("Title", "elsewhere"), name="other.htm")
        for way in (f"location = 'file://{other}'", f"location = '{self.url}'", "location.reload()",
                    "document.forms[0].submit()", "history.go(0)", "location = 'about:blank'",
                    "location = 'data:text/html,x'", f"open('file://{other}', '_self')",
                    "document.forms[0].action = 'file:///etc/hostname', document.forms[0].submit()"):
            self.assertEqual(self.run_page(script=f"note('here'); setTimeout(() => {{ {way} }}, 50);", settle=0.5),
                             ["here"], way)
        self.assertEqual(self.connections(), [])

    def test_no_other_file_is_read(self):
        # WebKit opens a pipe as it opens a file, and whoever reads one lets its writer in.
        pipe = self.folder / "pipe.png"
        os.mkfifo(pipe)
        target = f"file://{pipe}"
        values = self.run_page(
            f"<img src='{target}' onload=\"note('image')\"><iframe src='{target}'></iframe>"
            f"<link rel='stylesheet' href='{target}'><object data='{target}'></object>",
            script=f"fetch('{target}').then(() => note('fetch'), () => 0);"
                   f"const s = document.createElement('script'); s.src = '{target}'; document.body.appendChild(s);"
                   "note('ran');")
        self.assertEqual(values, ["ran"])
        program, window = self.open(fields=(f"<img src='{target}'>",))
        with self.assertRaises(OSError, msg="nobody reads it"):
            os.close(os.open(pipe, os.O_WRONLY | os.O_NONBLOCK))

    def test_confirm_and_prompt_answer_without_asking(self):
        values = self.run_page(script="note(String(confirm('?'))); note(String(prompt('?', 'x')));")
        self.assertEqual(values, ["false", "null"])

    def test_nothing_is_kept_on_disk(self):
        self.run_page(script="try { localStorage.setItem('a', 'b') } catch (e) {} document.cookie = 'a=b';"
                             "try { indexedDB.open('a') } catch (e) {}")
        left = [str(path.relative_to(self.folder)) for path in self.folder.rglob("*") if path.is_file()]
        kept = [path for path in left if "webkit" in path.lower() or "cookie" in path.lower()
                or "storage" in path.lower() or "IndexedDB" in path]
        self.assertEqual(kept, [], left)


class HostCases(DriverCase):
    """The program around the dialog."""

    def test_locale_of_the_process_stays_as_it_is(self):
        program, window = self.open()
        window.click(*middle(OK))
        self.assertEqual(program.until("locale"), "locale C")

    def test_program_with_a_main_loop_gets_its_dialog_over_its_window(self):
        program = self.drive("--loop", self.page(form_page.text("Title")))
        host = wait_for("the host's window", lambda: next(iter(support.display.windows("Host")), None))
        window = support.display.window()
        program.until("document")
        owner = support.display.run(["xprop", "-id", str(window.number), "WM_TRANSIENT_FOR"]).stdout.decode()
        self.assertIn(hex(host), owner)
        window.click(*middle(OK))
        program.until("result 1")
        self.assertIn("main loop ended", program.end())

    def test_dialog_is_refused_while_another_thread_runs_the_main_loop(self):
        lines = self.drive("--busy-loop", self.page(form_page.text("Title"))).end()
        self.assertEqual(lines[0], "result -1 another thread runs GTK's main loop")

    def test_dialogs_belong_to_the_thread_of_the_first(self):
        program, window = self.open("--thread")
        window.click(*middle(OK))
        program.until("result 1")
        self.assertEqual(program.until("result"), "result -1 the dialogs of this process belong to another thread")
        program.end()

    def test_without_a_display_there_is_no_dialog_and_a_reason(self):
        for name in ("", ":999"):
            self.environment["DISPLAY"] = name
            lines = self.drive("--times", "2", self.page(form_page.text("Title"))).end()
            reason = "result -1 there is no display: neither WAYLAND_DISPLAY nor DISPLAY leads to one"
            self.assertEqual(lines, [reason, reason, "locale C"])

    def test_environment_of_a_program_without_a_home_does(self):
        for name in ("HOME", "XDG_CACHE_HOME", "XDG_CONFIG_HOME", "LC_ALL", "LANG"):
            self.environment.pop(name, None)
        program, window = self.open()
        window.click(*middle(OK))
        program.until("result 1")
        program.end()
