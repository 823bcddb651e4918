#!/usr/bin/python3
"""Runs one script case in one home against a running stand-in server, and prints its output.

run_case.py --home native|wine --ready READY.json CASE.js

READY.json is the file that the server was started with (--ready). The script's first comment lines tell how it is run:

  // args: A B C         its arguments; {base} is the server's URL, {folder} a folder with one file, source.txt
  // rules: JSON         the server's rules while it runs (standin/README.md), on one line
  // exit: N             the exit code that it must end with; 0 if not told
  // component: echo     needs the test component of tests/echo_component
  // home: native        runs in this home alone

Every script catches what it provokes and prints 'end of NAME' as its last line, because under Wine an error that
nothing catches ends a script in silence and with exit code 0.
"""

import argparse
import atexit
import json
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

TOP = pathlib.Path(__file__).resolve().parent.parent.parent
sys.path.insert(0, str(TOP / "tests/support"))
from stand_in import Control  # noqa: E402  (the path stands one line above)

ECHO_CLASS = "{C2E4F5A0-5B0E-4E5A-9C52-6B1A6F0E7D31}"
ECHO_NAME = "VelandocTest.Echo"
TIMEOUT = 120


class Case:
    """A script and what its first lines say."""

    def __init__(self, path):
        self.path = pathlib.Path(path).resolve()
        self.name = self.path.stem
        self.arguments, self.rules, self.exit, self.echo, self.home = [], None, 0, False, None
        for line in self.path.read_text(encoding="utf-8").splitlines():
            if not line.startswith("//"):
                break
            found = re.match(r"// (args|rules|exit|component|home): (.*)$", line)
            if not found:
                continue
            key, value = found.groups()
            if key == "args":
                self.arguments = value.split()
            elif key == "rules":
                self.rules = json.loads(value)
            elif key == "exit":
                self.exit = int(value)
            elif key == "component":
                self.echo = value == "echo"
            elif key == "home":
                self.home = value


class Result:
    def __init__(self, code, output, errors):
        self.code = code
        self.lines = output.decode("utf-8", "replace").replace("\r\n", "\n").splitlines()
        self.errors = errors.decode("utf-8", "replace")


class NativeHome:
    name = "native"

    def __init__(self, ports, build=TOP / "build/native", certificates=TOP / "build/certificates"):
        self.build = build
        self.ports = ports
        self.folder = tempfile.TemporaryDirectory(prefix="velandoc-registry-")
        write_echo_registry(pathlib.Path(self.folder.name), build / "lib/echo_component.so")
        proxy = f"http://127.0.0.1:{ports['http']}"
        self.environment = without_settings(os.environ)
        self.environment.update(
            http_proxy=proxy, https_proxy=proxy, no_proxy="localhost", SSL_CERT_FILE=str(certificates / "ca.pem"),
            VELANDOC_REGISTRY_DIR=self.folder.name, VELANDOC_NO_INPUT="1")

    def program(self, name, *arguments):
        done = subprocess.run([self.build / "bin" / name, *arguments], env=self.environment,
                              cwd=self.folder.name, stdin=subprocess.DEVNULL, capture_output=True,
                              timeout=TIMEOUT, check=False)
        return Result(done.returncode, done.stdout, done.stderr)

    def run(self, case):
        return self.program("velandoc-script", case.path, *arguments_of(case, self))

    def run_command(self, *arguments):
        return self.program("velandoc", *arguments)

    def local(self, path):
        """A path as programs of this home take it."""
        return str(path)


class WineHome:
    """cscript in the prefix of tools/wine, with the DLL registered and the server as WinINet's proxy."""

    name = "wine"
    SETTINGS = r"HKCU\Software\Microsoft\Windows\CurrentVersion\Internet Settings"

    def __init__(self, ports, build=TOP / "build/windows"):
        # The registry's proxy alone counts then; Wine would read the environment's, too.
        self.environment = without_settings(os.environ)
        self.build = build
        self.ports = ports
        self.must("regsvr32", "/s", windows_path(build / "bin/velandoc.dll"))
        self.set_text(rf"HKLM\Software\Classes\{ECHO_NAME}\CLSID", ECHO_CLASS)
        self.set_text(rf"HKLM\Software\Classes\CLSID\{ECHO_CLASS}\InprocServer32",
                      windows_path(build / "bin/echo_component.dll"))
        proxy = f"127.0.0.1:{ports['http']}"
        self.must("reg", "add", self.SETTINGS, "/v", "ProxyEnable", "/t", "REG_DWORD", "/d", "1", "/f")
        self.must("reg", "add", self.SETTINGS, "/v", "ProxyServer", "/d",
                  f"http={proxy};https={proxy}", "/f")
        # WinHTTP reads none of these: what is asked over both goes to this host.
        self.must("reg", "add", self.SETTINGS, "/v", "ProxyOverride", "/d", "localhost", "/f")

    def wine(self, *arguments):
        return subprocess.run([TOP / "tools/wine", *arguments], env=self.environment, cwd=TOP,
                              stdin=subprocess.DEVNULL, capture_output=True, timeout=TIMEOUT,
                              check=False)

    def must(self, *arguments):
        done = self.wine(*arguments)
        if done.returncode != 0:
            raise RuntimeError(f"{' '.join(arguments)}: exit code {done.returncode}\n"
                               f"{done.stdout.decode()}{done.stderr.decode()}")

    def set_text(self, key, value):
        self.must("reg", "add", key, "/ve", "/d", value, "/f")

    def run(self, case):
        done = self.wine("cscript", "//nologo", windows_path(case.path), *arguments_of(case, self))
        return Result(done.returncode, done.stdout, done.stderr)

    def run_command(self, *arguments):
        done = self.wine(self.build / "bin/velandoc.exe", *arguments)
        return Result(done.returncode, done.stdout, done.stderr)

    def local(self, path):
        return windows_path(path)


SOURCE = "one\r\ntwo \u00e9\r\n\r\nfour\r\nfive".encode()


def arguments_of(case, home):
    """The case's arguments for one run in a home, with a fresh folder if it wants one."""
    folder = None
    if "{folder}" in case.arguments:
        folder = tempfile.mkdtemp(prefix="velandoc-case-")
        atexit.register(shutil.rmtree, folder, ignore_errors=True)
        (pathlib.Path(folder) / "source.txt").write_bytes(SOURCE)
    values = {"{base}": f"http://localhost:{home.ports['http']}", "{folder}": folder and home.local(folder)}
    return [values.get(argument, argument) for argument in case.arguments]


def windows_path(path):
    return "Z:" + str(path).replace("/", "\\")


def without_settings(environment):
    return {key: value for key, value in environment.items()
            if key.lower() not in ("http_proxy", "https_proxy", "no_proxy", "all_proxy", "curl_ca_bundle",
                                   "ssl_cert_dir",
                                   # EditFields would wait for a user.
                                   "display", "wayland_display")}


def write_echo_registry(folder, library):
    classes = r"HKEY_CURRENT_USER\Software\Classes"
    (folder / "user.reg").write_text(
        "Windows Registry Editor Version 5.00\n\n"
        f'[{classes}\\{ECHO_NAME}\\CLSID]\n@="{ECHO_CLASS}"\n\n'
        f'[{classes}\\CLSID\\{ECHO_CLASS}\\InprocServer32]\n@="{library}"\n', encoding="utf-8")


HOMES = {"native": NativeHome, "wine": WineHome}


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--home", choices=HOMES, required=True)
    parser.add_argument("--ready", required=True, help="the file that the stand-in server wrote")
    parser.add_argument("case")
    arguments = parser.parse_args()
    server = Control(json.loads(pathlib.Path(arguments.ready).read_text(encoding="ascii")))
    case = Case(arguments.case)
    home = HOMES[arguments.home](server.ports)
    server.prepare(case.rules)
    result = home.run(case)
    print("\n".join(result.lines))
    sys.stderr.write(result.errors)
    return result.code


if __name__ == "__main__":
    sys.exit(main())
