#!/usr/bin/python3
"""The library as its users' loaders meet it: exports, what it needs, loading and unloading, languages, manifest.

module_test.py --native build/native --windows build/windows --wine tools/wine [unittest's own arguments]
"""

import argparse
import os
import pathlib
import re
import shutil
import socket
import subprocess
import sys
import tempfile
import threading
import unittest

HERE = pathlib.Path(__file__).resolve().parent
# What programs were linked with; the Debian package's tools hold the built library against it too.
SYMBOLS = HERE.parent.parent / "packaging/debian/libvelandoc-com1.symbols"
EXPORTS = ["DllCanUnloadNow", "DllGetClassObject", "DllInstall", "DllRegisterServer", "DllUnregisterServer"]
CLASSES = ("Velandoc.Client", "Velandoc.ServerCheck", "Velantrica.HdfsClient", "Velantrica.HdfsWinHttpClient")
options = argparse.Namespace()


def output_of(*command, env=None, expected=0):
    done = subprocess.run([str(part) for part in command], stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                          stderr=subprocess.STDOUT, env=env, timeout=300, check=False)
    text = done.stdout.decode("utf-8", "replace").replace("\r", "")
    if done.returncode != expected:
        raise AssertionError(f"{command[0]}: exit code {done.returncode}\n{text}")
    return text


class Native(unittest.TestCase):
    def setUp(self):
        self.library = options.native / "lib/libvelandoc.so"
        self.runtime = options.native / "lib/libvelandoc-com.so.1"
        self.folder = pathlib.Path(tempfile.mkdtemp())
        self.addCleanup(shutil.rmtree, self.folder, ignore_errors=True)

    def exported(self, library):
        lines = output_of("nm", "-D", "--defined-only", "--format=posix", library).splitlines()
        return sorted(line.split()[0] for line in lines)

    def test_the_library_exports_five_functions(self):
        self.assertEqual(self.exported(self.library), EXPORTS)

    def test_the_runtime_exports_what_hosts_were_linked_with(self):
        listed = re.findall(r"^ (\w+)@Base ", SYMBOLS.read_text(), re.MULTILINE)
        self.assertGreater(len(listed), 50)
        self.assertEqual(self.exported(self.runtime), listed)

    def test_neither_needs_a_desktop(self):
        for library in (self.library, self.runtime):
            self.assertNotRegex(output_of("ldd", library).lower(), r"gtk|gdk|webkit|glib-|libx11|wayland")

    def test_two_thousand_loads_leave_nothing(self):
        said = output_of(options.native / "bin/load_cycles", self.library, "2000")
        self.assertTrue(said.endswith("flat\n"), said)

    def test_openssl_can_be_used_after_the_library_was_closed(self):
        first = []

        def serve(listener):
            # A proxy that opens the tunnel and hangs up on the TLS handshake.
            with listener.accept()[0] as connection:
                listener.close()  # refuses a second try
                connection.settimeout(60)
                connection.recv(4096)
                connection.sendall(b"HTTP/1.1 200 OK\r\n\r\n")
                first.append(connection.recv(1))

        with socket.create_server(("127.0.0.1", 0)) as listener:
            listener.settimeout(60)
            proxy = threading.Thread(target=serve, args=(listener,))
            environment = dict(os.environ, https_proxy=f"http://127.0.0.1:{listener.getsockname()[1]}",
                               no_proxy="", NO_PROXY="")
            proxy.start()
            said = output_of(options.native / "bin/unload_after_request", self.library,
                             "https://docs.example.test/", env=environment)
            proxy.join()
        self.assertEqual(first, [b"\x16"], "no TLS handshake was begun")
        self.assertEqual(said, "alive\n")

    def tree(self):
        """The script host with its libraries, and a German satellite, as if they were installed."""
        shutil.copytree(options.native / "lib", self.folder / "lib", symlinks=True)
        (self.folder / "bin").mkdir()
        shutil.copy(options.native / "bin/velandoc-script", self.folder / "bin")
        (self.folder / "lib/de-DE").mkdir()
        shutil.copy(options.native / "satellite/german.res.dll", self.folder / "lib/de-DE/libvelandoc.res.dll")

    def message(self, **variables):
        """What the WinHTTP client says of a server that nobody can reach."""
        script = self.folder / "source.js"
        script.write_text("var client = new ActiveXObject('Velantrica.HdfsWinHttpClient');\n"
                          "client.ServerName = '127.0.0.1';\nclient.Port = 1;\n"
                          "try { client.GetText(); } catch (e) {}\n"
                          "WScript.Echo(client.ConnectionError.Message);\n")
        environment = {key: value for key, value in os.environ.items()
                       if not key.startswith("LC_") and key not in ("LANG", "LANGUAGE")}
        environment.update(variables, VELANDOC_REGISTRY_DIR=str(self.folder / "registry"),
                           LD_LIBRARY_PATH=str(self.folder / "lib"))
        return output_of(self.folder / "bin/velandoc-script", script, env=environment).strip()

    GERMAN = "Unbekannter Verbindungsfehler beim Server."
    ENGLISH = "Unknown connection error with server."

    def test_errors_come_in_the_users_language(self):
        self.tree()
        self.assertEqual(self.message(), self.ENGLISH)
        self.assertEqual(self.message(LANG="de_DE.UTF-8"), self.GERMAN)
        self.assertEqual(self.message(LANG="fr_FR.UTF-8", LANGUAGE="fr:de_DE"), self.GERMAN)
        self.assertEqual(self.message(LANG="de_DE.UTF-8", LANGUAGE="en:de_DE"), self.ENGLISH)
        self.assertEqual(self.message(LANG="de_AT.UTF-8"), self.ENGLISH)
        self.assertEqual(self.message(LANG="de_DE.UTF-8", LC_ALL="C"), self.ENGLISH)

    def test_a_broken_satellite_is_english(self):
        self.tree()
        satellite = self.folder / "lib/de-DE/libvelandoc.res.dll"
        good = satellite.read_bytes()
        for broken in (b"", b"MZ", good[:700], good[:-700], os.urandom(4096)):
            satellite.write_bytes(broken)
            self.assertIn(self.message(LANG="de_DE.UTF-8"), (self.ENGLISH, self.GERMAN))


class Windows(unittest.TestCase):
    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp(dir=options.windows))
        self.addCleanup(shutil.rmtree, self.folder, ignore_errors=True)
        self.bin = options.windows / "bin"

    def test_the_library_exports_five_functions(self):
        said = output_of("x86_64-w64-mingw32-objdump", "-p", self.bin / "velandoc.dll")
        names = re.findall(r"^\t\[ *\d+\] (?:\+base\[ *\d+\] *\w* )?(\w+)$", said.split("[Ordinal/Name Pointer]")[1],
                           re.MULTILINE)
        self.assertEqual(sorted(names), EXPORTS)
        # By name alone: none that only a number would find.
        self.assertIn("\tExport Address Table \t\t00000005\n", said)

    def test_a_thousand_loads_leave_nothing(self):
        shutil.copy(self.bin / "velandoc.dll", self.folder)
        said = output_of(options.wine, self.bin / "load_cycles.exe", self.folder / "velandoc.dll", "1000")
        self.assertTrue(said.endswith("flat\n"), said)

    def test_a_program_with_a_manifest_needs_no_registry(self):
        for file in ("velandoc.dll", "Velandoc.Component.manifest", "registration_free.exe"):
            shutil.copy(self.bin / file, self.folder)
        # Without the program's manifest the classes are unknown: the registry does not help.
        without = output_of(options.wine, self.folder / "registration_free.exe", expected=1)
        self.assertNotIn(" 00000000", without)
        shutil.copy(HERE / "registration_free.exe.manifest", self.folder)
        said = output_of(options.wine, self.folder / "registration_free.exe")
        for name in CLASSES:
            self.assertIn(f"{name} 00000000\n", said)
            self.assertIn(f"{name}.1 00000000\n", said)


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--native", required=True, type=pathlib.Path)
    parser.add_argument("--windows", required=True, type=pathlib.Path)
    parser.add_argument("--wine", required=True, type=pathlib.Path)
    parsed, rest = parser.parse_known_args()
    for name in ("native", "windows", "wine"):
        setattr(options, name, getattr(parsed, name).resolve())
    program = unittest.main(argv=[sys.argv[0], *rest], verbosity=2, exit=False)
    return 0 if program.result.wasSuccessful() else 1


if __name__ == "__main__":
    sys.exit(main())
