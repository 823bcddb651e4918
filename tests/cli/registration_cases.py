"""velandoc: register, unregister, classes, and the registry's files below them."""

import json
import os
import pathlib
import re
import shutil
import signal
import subprocess
import time

import support

CLASSES = (
    ("Velandoc.Client", "{6884BC45-2A7D-4747-AF48-A5EECC5BF9A9}"),
    ("Velandoc.ServerCheck", "{1D477FCE-048A-4657-BFDF-6DD165043E36}"),
    ("Velantrica.HdfsClient", "{5EBD1685-DEAC-437B-A090-846F578C2F99}"),
    ("Velantrica.HdfsWinHttpClient", "{4A45908C-EF4C-4D12-951B-9595D9CC208B}"),
)

NOBODY = 65534


class RegistryCase(support.Case):
    def library(self):
        return support.command.parent.parent / "lib/libvelandoc.so"

    def succeed(self, *arguments):
        done = self.run_program(support.command, *arguments)
        self.assertEqual((done.returncode, done.stderr), (0, b""))


class Registration(RegistryCase):
    def test_for_this_user(self):
        self.expect(["register", "--user"], 0,
                    f"registered {self.library()} in HKEY_CURRENT_USER\\Software\\Classes ({self.registry}/user.reg)\n", "")
        written = (self.registry / "user.reg").read_text(encoding="utf-8")
        self.assertIn("Velandoc.ServerCheck", written)
        self.assertIn("{1D477FCE-048A-4657-BFDF-6DD165043E36}", written)
        self.assertIn(str(self.library()), written)
        self.expect(["probe", "http://docs.example.test/"], 0,
                    "http://docs.example.test/: SharePoint server\n", "")
        self.expect(["unregister", "--user"], 0,
                    f"unregistered {self.library()} from HKEY_CURRENT_USER\\Software\\Classes ({self.registry}/user.reg)\n", "")
        self.assertNotIn("{1D477FCE-048A-4657-BFDF-6DD165043E36}",
                         (self.registry / "user.reg").read_text(encoding="utf-8"))

    def test_for_all_users(self):
        self.expect(["register"], 0,
                    f"registered {self.library()} in HKEY_LOCAL_MACHINE\\Software\\Classes ({self.registry}/machine.reg)\n", "")
        self.assertIn("Velandoc.ServerCheck",
                      (self.registry / "machine.reg").read_text(encoding="utf-8"))
        self.expect(["unregister"], 0,
                    f"unregistered {self.library()} from HKEY_LOCAL_MACHINE\\Software\\Classes ({self.registry}/machine.reg)\n", "")

    def test_unregister_what_is_not_registered(self):
        nothing = r"velandoc: nothing is registered for {} \(0x8002801C\): 'velandoc classes' tells what is\n"
        self.expect(["unregister", "--user"], 4, "", re.compile(nothing.format("you alone")))
        self.expect(["unregister"], 4, "", re.compile(nothing.format("all users")))
        # Another's registration is none of this one's.
        self.succeed("register")
        self.expect(["unregister", "--user"], 4, "", re.compile(nothing.format("you alone")))
        self.succeed("unregister")

    def test_json(self):
        done = self.run_program(support.command, "register", "--user", "--json")
        self.assertEqual((done.returncode, done.stderr), (0, b""))
        self.assertEqual(json.loads(done.stdout),
                         {"registered": True, "library": str(self.library()),
                          "key": "HKEY_CURRENT_USER\\Software\\Classes",
                          "file": str(self.registry / "user.reg")})

    def test_permission_denied(self):
        self.registry.mkdir(mode=0o555)
        who = {}
        if os.geteuid() == 0:
            # Root is let in everywhere.
            os.chown(self.folder, NOBODY, NOBODY)
            who = {"user": NOBODY, "group": NOBODY, "extra_groups": []}
        try:
            done = self.run_program(support.command, "register", **who)
        except PermissionError:
            self.skipTest("the build lies where only its owner may look")
        self.assertEqual((done.returncode, done.stdout, done.stderr.decode()), (
            4, b"",
            "velandoc: permission denied: to register for all users type this as root or administrator; "
            "for you alone type 'velandoc register --user'\n"))

    def test_a_broken_registry_stays_as_it_is(self):
        self.registry.mkdir()
        broken = self.registry / "user.reg"
        broken.write_text("not a registry")
        self.expect(["register", "--user"], 4, "", re.compile(r"velandoc: .*\(0x[0-9A-F]{8}\)\n"))
        self.assertEqual(broken.read_text(), "not a registry")

    def test_without_the_library(self):
        bare = self.folder / "bin"
        bare.mkdir()
        shutil.copy(support.command, bare)
        # The runtime in a folder of its own: it looks beside itself too.
        runtime = self.folder / "runtime"
        runtime.mkdir()
        shutil.copy(support.command.parent.parent / "lib/libvelandoc-com.so.1", runtime)
        self.environment["LD_LIBRARY_PATH"] = str(runtime)
        self.expect(["register", "--user"], 3, "",
                    re.compile(r"velandoc: cannot load the component's library: .*libvelandoc\.so.*\n"),
                    program=bare / pathlib.Path(support.command).name)

    def test_the_default_files(self):
        self.environment.pop("VELANDOC_REGISTRY_DIR", None)
        self.environment["XDG_CONFIG_HOME"] = str(self.folder / "config")
        file = self.folder / "config/velandoc/registry/user.reg"
        self.expect(["register", "--user"], 0,
                    f"registered {self.library()} in HKEY_CURRENT_USER\\Software\\Classes ({file})\n", "")
        self.assertEqual(file.stat().st_mode & 0o777, 0o600)


class AtOnce(RegistryCase):
    """Several processes at once, and processes that are killed: a registry file is always whole."""

    def start(self, *arguments):
        program = subprocess.Popen([support.command, *arguments], env=self.environment, stdin=subprocess.DEVNULL,
                                   stdout=subprocess.DEVNULL, stderr=subprocess.PIPE)
        self.addCleanup(program.wait, timeout=60)
        self.addCleanup(program.stderr.close)
        self.addCleanup(program.kill)
        return program

    def files(self):
        return {path.name: path.read_bytes() for path in self.registry.glob("*.reg")}

    def succeed_reading(self):
        done = self.run_program(support.command, "classes")
        self.assertEqual((done.returncode, done.stderr), (0, b""))

    def states(self):
        """Both files with everything registered, and with everything taken out again."""
        for options in ([], ["--user"]):
            self.succeed("register", *options)
        registered = self.files()
        for options in ([], ["--user"]):
            self.succeed("unregister", *options)
        return registered, self.files()

    def test_all_register(self):
        registered, _ = self.states()
        for _ in range(10):
            shutil.rmtree(self.registry)
            writers = [self.start("register", *options) for options in ([], ["--user"]) * 4]
            for writer in writers:
                self.assertEqual((writer.communicate(timeout=60)[1], writer.returncode), (b"", 0))
            self.assertEqual(self.files(), registered)
        self.assertEqual(sorted(path.name for path in self.registry.iterdir()),
                         ["machine.reg", "machine.reg.lock", "user.reg", "user.reg.lock"])

    def test_some_register_while_others_unregister(self):
        registered, empty = self.states()
        seen = set()
        for _ in range(15):
            writers = [self.start(action, *options) for options in ([], ["--user"])
                       for action in ("register", "unregister", "register")]
            for number, writer in enumerate(writers):
                said = writer.communicate(timeout=60)[1]
                # What is not registered cannot be unregistered; registering always can be done.
                self.assertIn(writer.returncode, (0, 4) if number % 3 == 1 else (0,), said)
            for name, content in self.files().items():
                self.assertIn(content, (registered[name], empty[name]))
                seen.add(content == registered[name])
        self.assertIn(True, seen)

    def test_readers_see_all_or_nothing(self):
        registered, empty = self.states()
        file = self.registry / "machine.reg"
        for action in ("register", "unregister") * 3:
            writer = self.start(action)
            while writer.poll() is None:
                self.assertIn(file.read_bytes(), (registered[file.name], empty[file.name]))
            self.assertEqual(writer.returncode, 0)

    def test_a_killed_writer_leaves_a_whole_registry_and_no_lock(self):
        registered, empty = self.states()
        started = time.monotonic()
        self.succeed("register")
        whole = time.monotonic() - started
        file = self.registry / "machine.reg"
        killed = 0
        for number in range(40):
            action = "unregister" if file.read_bytes() == registered[file.name] else "register"
            started = time.monotonic()
            writer = self.start(action)
            # The moments reach from the writer's start to a little after its end, evenly. A writer that ends before it
            # is killed shows how long one takes now: the machine may have become quieter since the first.
            try:
                writer.wait(timeout=whole * 1.2 * number / 40)
                whole = min(whole, time.monotonic() - started)
            except subprocess.TimeoutExpired:
                writer.kill()
            killed += writer.wait(timeout=60) == -signal.SIGKILL
            self.assertIn(file.read_bytes(), (registered[file.name], empty[file.name]), f"{action}, {number}")
            self.succeed_reading()
        self.assertGreater(killed, 10)
        started = time.monotonic()
        self.succeed("register")
        self.assertLess(time.monotonic() - started, 5)
        self.assertEqual(file.read_bytes(), registered[file.name])


class Classes(RegistryCase):
    def listed(self, *lines):
        return "".join(f"{name} {identifier}\n" + "".join(f"  {line}\n" for line in lines)
                       for name, identifier in CLASSES)

    def test_nothing_is_registered(self):
        self.expect(["classes"], 0, self.listed("not registered"), "")
        self.assertFalse(self.registry.exists())

    def test_the_users_come_before_the_machines(self):
        self.succeed("register")
        self.expect(["classes"], 0, self.listed(f"machine: {self.library()}"), "")
        self.succeed("register", "--user")
        self.expect(["classes"], 0, self.listed(f"user: {self.library()}", f"machine: {self.library()}"), "")
        self.succeed("unregister")
        self.expect(["classes"], 0, self.listed(f"user: {self.library()}"), "")

    def test_a_library_that_is_gone(self):
        self.registry.mkdir()
        (self.registry / "machine.reg").write_text(
            "Windows Registry Editor Version 5.00\n\n"
            f"[HKEY_LOCAL_MACHINE\\Software\\Classes\\CLSID\\{CLASSES[1][1]}\\InprocServer32]\n@=\"/gone/x.so\"\n")
        done = self.run_program(support.command, "classes")
        self.assertIn(f"{CLASSES[1][0]} {CLASSES[1][1]}\n  machine: /gone/x.so (no such file)\n",
                      done.stdout.decode())
        self.assertEqual(done.stdout.decode().count("not registered"), 3)

    def test_json(self):
        self.succeed("register", "--user")
        done = self.run_program(support.command, "classes", "--json")
        self.assertEqual((done.returncode, done.stderr), (0, b""))
        self.assertEqual(json.loads(done.stdout), [
            {"progId": name, "classId": identifier,
             "registrations": [{"scope": "user", "library": str(self.library()), "exists": True}]}
            for name, identifier in CLASSES])

    def test_a_broken_file_is_named_and_kept(self):
        self.registry.mkdir()
        broken = self.registry / "machine.reg"
        broken.write_text("not a registry")
        self.expect(["classes"], 4, "", f"velandoc: '{broken}' cannot be read (0x800703F1)\n")
        self.assertEqual(broken.read_text(), "not a registry")
