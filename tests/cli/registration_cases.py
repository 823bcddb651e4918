"""velandoc: register, unregister, classes, and the registry's files below them."""

import json
import os
import pathlib
import re
import shutil
import subprocess

import support

CLASSES = (
    ("Velandoc.Client", "{6884BC45-2A7D-4747-AF48-A5EECC5BF9A9}"),
    ("Velandoc.ServerCheck", "{1D477FCE-048A-4657-BFDF-6DD165043E36}"),
    ("Velantrica.HdfsClient", "{5EBD1685-DEAC-437B-A090-846F578C2F99}"),
    ("Velantrica.HdfsWinHttpClient", "{4A45908C-EF4C-4D12-951B-9595D9CC208B}"),
)


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
        if os.geteuid() == 0:
            self.skipTest("root is let in everywhere")
        self.registry.mkdir(mode=0o555)
        self.expect(["register"], 4, "",
                    "velandoc: permission denied: to register for all users type this as root or administrator; "
                    "for you alone type 'velandoc register --user'\n")

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

    def test_two_at_once_leave_a_whole_registry(self):
        self.succeed("register", "--user")
        alone = (self.registry / "user.reg").read_bytes()
        (self.registry / "user.reg").unlink()
        for _ in range(5):
            writers = [subprocess.Popen([support.command, "register", "--user"], env=self.environment,
                                        stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.PIPE)
                       for _ in range(4)]
            for writer in writers:
                _, said = writer.communicate(timeout=60)
                self.assertEqual((writer.returncode, said), (0, b""))
            self.assertEqual((self.registry / "user.reg").read_bytes(), alone)
        self.assertEqual(sorted(path.name for path in self.registry.iterdir()), ["user.reg", "user.reg.lock", "user.reg.registration.lock"])


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
