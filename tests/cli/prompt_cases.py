"""Questions on the terminal: user names and passwords, certificates."""

import support


@support.needs_terminal
class Credentials(support.Case):
    URL = "http://docs.example.test/"

    def demand(self, scheme):
        support.server.rules({"do": {"auth": {"scheme": scheme, "user": "me", "password": "secret word",
                                              "realm": "the realm"}}})

    def start(self, *arguments):
        self.output = self.folder / "output"
        return support.Terminal(self.environment, support.command, *arguments, output=self.output)

    def answer(self, terminal, user, password):
        terminal.wait_for("User name")
        terminal.type(user + "\n")
        terminal.wait_for("Password: ")
        self.assertFalse(terminal.echoes())
        terminal.type(password + "\n")

    def test_typed_password_serves_and_is_not_shown(self):
        for scheme in ("basic", "digest", "ntlm"):
            with self.subTest(scheme=scheme):
                self.demand(scheme)
                terminal = self.start("probe", self.URL)
                asked = terminal.wait_for("User name")
                self.assertIn("docs.example.test", asked)
                terminal.type("me\n")
                terminal.wait_for("Password: ")
                self.assertFalse(terminal.echoes())
                terminal.type("secret word\n")
                shown, code = terminal.finish()
                self.assertNotIn("secret", shown)
                self.assertEqual(code, 0, shown)
                self.assertEqual(self.output.read_text(), f"{self.URL}: SharePoint server\n")

    def test_wrong_password_is_asked_for_again_and_three_times_at_most(self):
        self.demand("basic")
        terminal = self.start("probe", self.URL)
        for _ in range(3):
            self.answer(terminal, "me", "wrong")
        _, code = terminal.finish()
        self.assertEqual(code, 1)
        self.assertEqual(self.output.read_text(), f"{self.URL}: no SharePoint server\n")

    def test_second_try_serves(self):
        self.demand("basic")
        terminal = self.start("probe", self.URL)
        self.answer(terminal, "me", "wrong")
        self.answer(terminal, "me", "secret word")
        _, code = terminal.finish()
        self.assertEqual(code, 0)

    def test_no_user_name_gives_up(self):
        self.demand("basic")
        terminal = self.start("probe", self.URL)
        terminal.wait_for("User name")
        terminal.type("\n")
        _, code = terminal.finish()
        self.assertEqual(code, 1)

    def test_no_input_never_asks(self):
        self.demand("basic")
        terminal = self.start("--no-input", "probe", self.URL)
        shown, code = terminal.finish()
        self.assertEqual((shown, code), ("", 1))
        self.assertEqual(self.output.read_text(), f"{self.URL}: no SharePoint server\n")


@support.needs_terminal
class Certificates(support.Case):
    QUESTION = "[y/N] "

    def start(self, url, *options):
        self.output = self.folder / "output"
        return support.Terminal(self.environment, support.command, *options, "probe", url, output=self.output)

    def test_yes_connects(self):
        for host in ("expired", "othername", "unknownca"):
            url = f"https://{host}.example.test/"
            with self.subTest(url=url):
                terminal = self.start(url)
                asked = terminal.wait_for(self.QUESTION)
                for word in (f"{host}.example.test", "Subject:", "Issuer:", "Valid from:", "Valid until:", "SHA-256:"):
                    self.assertIn(word, asked)
                terminal.type("y\n")
                shown, code = terminal.finish()
                self.assertEqual(code, 0, shown)
                self.assertEqual(self.output.read_text(), f"{url}: SharePoint server\n")

    def test_each_problem_is_a_question_of_its_own(self):
        url = "https://allwrong.example.test/"
        terminal = self.start(url)
        for _ in range(3):
            terminal.wait_for(self.QUESTION)
            terminal.type("yes\n")
        shown, code = terminal.finish()
        self.assertEqual(code, 0, shown)

    def test_no_or_nothing_does_not_connect(self):
        url = "https://unknownca.example.test/"
        for word in ("n", "", "maybe"):
            with self.subTest(word=word):
                terminal = self.start(url)
                terminal.wait_for(self.QUESTION)
                terminal.type(word + "\n")
                _, code = terminal.finish()
                self.assertEqual(code, 1)
                self.assertEqual(self.output.read_text(), f"{url}: no SharePoint server\n")
        self.assertEqual(support.server.log(), [])

    def test_no_input_never_asks(self):
        terminal = self.start("https://unknownca.example.test/", "--no-input")
        self.assertEqual(terminal.finish(), ("", 1))
