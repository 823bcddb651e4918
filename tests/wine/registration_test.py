#!/usr/bin/env python3
"""Registers velandoc.dll under Wine in every way and compares the whole registry before and after.

    registration_test.py --dll build/windows/bin/velandoc.dll [--wine /usr/lib/wine/wine64]

Makes a Wine prefix of its own in a temporary folder and removes it. Exit code 0 if every check holds; one line a check.
"""

import argparse
import os
import pathlib
import shutil
import signal
import subprocess
import sys
import tempfile
import time

APP_ID = "{91509BD2-09D1-4F79-B147-D5EF6C90DB1C}"
# Class name, class id, the first word of the ProgIDs.
CLASSES = (
    ("Client", "{6884BC45-2A7D-4747-AF48-A5EECC5BF9A9}", "Velandoc"),
    ("HdfsClient", "{5EBD1685-DEAC-437B-A090-846F578C2F99}", "Velantrica"),
    ("ServerCheck", "{1D477FCE-048A-4657-BFDF-6DD165043E36}", "Velandoc"),
)
WINHTTP_ID = "{4A45908C-EF4C-4D12-951B-9595D9CC208B}"
# The interfaces by name, with their methods counted from IUnknown's on. The first one's id is the proxies' class id.
PROXY_ID = "{9989FD0D-43C5-4FA7-B6D7-020A323FEF2D}"
INTERFACES = (
    ("IServerCheck", PROXY_ID, 8),
    ("IClient", "{3BA03214-9530-4099-99D4-5FD7962D2088}", 30),
    ("IHdfsClient", "{0A21C224-5BA3-4FA0-B699-42A0CABD6FFA}", 34),
    ("IConnectionError", "{18A8FF43-EA0F-4EDD-B760-9F1DD0C54BF1}", 9),
)
LIBRARY_ID = "{6EF447E8-DEC4-47C3-B65D-7B776C644F1D}"
AUTOMATION = "{00020424-0000-0000-C000-000000000046}"

# What Wine's own services write whenever they start: hardware, services, network cards, the session.
IGNORED_ROOTS = (
    "hkey_local_machine\\system\\",
    "hkey_local_machine\\hardware\\",
    "hkey_local_machine\\software\\microsoft\\windows nt\\currentversion\\networkcards",
    "hkey_local_machine\\software\\wow6432node\\microsoft\\windows nt\\currentversion\\networkcards",
    "hkey_current_user\\volatile environment",
)

SCRIPT = r"""
try {
  var check = new ActiveXObject("Velandoc.ServerCheck");
  WScript.Echo("made");
  WScript.Echo("answer " + check.Check("a name without a scheme"));
  var client = new ActiveXObject("Velandoc.Client");
  WScript.Echo("status " + client.GetCheckOutStatus());
  var hdfs = new ActiveXObject("Velantrica.HdfsClient");
  WScript.Echo("port " + hdfs.Port);
  var winHttp = new ActiveXObject("Velantrica.HdfsWinHttpClient.1");
  WScript.Echo("options " + winHttp.Options);
} catch (e) {
  WScript.Echo("error " + (e.number >>> 0).toString(16) + " " + e.message);
}
WScript.Echo("end");
WScript.Quit(0);
"""


class Prefix:
    """A Wine prefix of this test's own."""

    def __init__(self, wine: str, folder: pathlib.Path):
        self.wine = wine
        self.folder = folder
        self.environment = {key: value for key, value in os.environ.items() if key != "DISPLAY"}
        self.environment.update(
            WINEPREFIX=str(folder / "prefix"),
            WINEARCH="win64",
            WINEDEBUG="-all",
            WINEDLLOVERRIDES="mscoree,mshtml=;winedbg.exe=d",
        )
        self.run("wineboot", "-i", timeout=120)
        self.run("reg", "add", r"HKCU\Software\Wine\Drivers", "/v", "Graphics", "/d", "null", "/f")

    def run(self, *arguments: str, timeout: int = 60) -> tuple[int, str]:
        """Exit code and output. The output goes through a file: services inherit a pipe and hold it."""
        with tempfile.TemporaryFile() as output:
            done = subprocess.run(
                [self.wine, *arguments],
                stdin=subprocess.DEVNULL,
                stdout=output,
                stderr=subprocess.STDOUT,
                env=self.environment,
                timeout=timeout,
                check=False,
            )
            output.seek(0)
            return done.returncode, output.read().decode("utf-8", "replace").replace("\r", "")

    def run_at_once(self, *commands: tuple[str, ...]) -> list[int]:
        """Exit codes of programs that run at the same time."""
        programs = [subprocess.Popen([self.wine, *command], stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                                     stderr=subprocess.DEVNULL, env=self.environment) for command in commands]
        return [program.wait(timeout=120) for program in programs]

    def run_and_kill(self, seconds: float, *command: str) -> bool:
        """Whether the program was still running when it was killed."""
        program = subprocess.Popen([self.wine, *command], stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                                   stderr=subprocess.DEVNULL, env=self.environment)
        time.sleep(seconds)
        program.kill()
        return program.wait(timeout=60) == -signal.SIGKILL

    def registry(self) -> dict[str, dict[str, str]]:
        """Every key with its values; keys in lower case, since the registry does not tell cases apart."""
        keys: dict[str, dict[str, str]] = {}
        for root in ("HKEY_LOCAL_MACHINE", "HKEY_CURRENT_USER"):
            code, said = self.run("reg", "export", root, r"C:\export.reg", "/y")
            if code != 0:
                raise RuntimeError(f"reg export {root}: {said}")
            text = (self.folder / "prefix/drive_c/export.reg").read_text("utf-16")
            key = None
            for line in text.replace("\\\n", "").splitlines():
                if line.startswith("["):
                    key = line[1:-1].lower()
                    if not key.startswith(IGNORED_ROOTS):
                        keys[key] = {}
                    else:
                        key = None
                elif key and "=" in line:
                    name, _, data = line.partition("=")
                    keys[key][name.strip('"').lower()] = data
        return keys

    def stop(self) -> None:
        server = shutil.which("wineserver", path="/usr/lib/wine") or "/usr/lib/wine/wineserver64"
        subprocess.run([server, "-k"], env=self.environment, check=False, timeout=60,
                       stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)


def quoted(text: str) -> str:
    return '"' + text.replace("\\", "\\\\") + '"'


def script_keys(root: str, path: str) -> dict[str, dict[str, str]]:
    """What the registry scripts write below `root`."""
    keys = {
        rf"{root}\appid\{APP_ID}": {"@": "Velandoc"},
        rf"{root}\appid\Velandoc.DLL": {"appid": APP_ID},
    }
    for name, identifier, prefix in CLASSES:
        clsid = rf"{root}\clsid\{identifier}"
        prog_id = f"{prefix}.{name}"
        keys |= {
            clsid: {"@": f"{name} Class"},
            rf"{clsid}\ProgID": {"@": f"{prog_id}.1"},
            rf"{clsid}\VersionIndependentProgID": {"@": prog_id},
            rf"{clsid}\Programmable": {},
            rf"{clsid}\InprocServer32": {"@": path, "threadingmodel": "Apartment"},
            rf"{clsid}\TypeLib": {"@": LIBRARY_ID},
            rf"{root}\{prog_id}": {"@": f"{name} Class"},
            rf"{root}\{prog_id}\CLSID": {"@": identifier},
            rf"{root}\{prog_id}\CurVer": {"@": f"{prog_id}.1"},
            rf"{root}\{prog_id}.1": {"@": f"{name} Class"},
            rf"{root}\{prog_id}.1\CLSID": {"@": identifier},
        }
    # The class whose script differs.
    clsid = rf"{root}\clsid\{WINHTTP_ID}"
    prog_id = "Velantrica.HdfsWinHttpClient"
    keys |= {
        clsid: {"@": "HdfsWinHttpClient class"},
        rf"{clsid}\ProgID": {"@": f"{prog_id}.1"},
        rf"{clsid}\VersionIndependentProgID": {"@": prog_id},
        rf"{clsid}\Programmable": {},
        rf"{clsid}\InprocServer32": {"@": path, "threadingmodel": "Apartment"},
        rf"{clsid}\TypeLib": {"@": "{779c54aa-fcc0-42ad-84d1-708bb472ea26}"},
        rf"{clsid}\Version": {"@": "1.0"},
        rf"{root}\{prog_id}": {"@": "HdfsWinHttpClient class"},
        rf"{root}\{prog_id}\CurVer": {"@": f"{prog_id}.1"},
        rf"{root}\{prog_id}.1": {"@": "HdfsWinHttpClient class"},
        rf"{root}\{prog_id}.1\CLSID": {"@": WINHTTP_ID.lower()},
    }
    return {key.lower(): {name: quoted(data) for name, data in values.items()}
            for key, values in keys.items()}


def system_keys(root: str, path: str) -> dict[str, dict[str, str]]:
    """What RegisterTypeLib and NdrDllRegisterProxy write: always the machine's under Wine."""
    library = rf"{root}\typelib\{LIBRARY_ID}"
    folder = path.rpartition("\\")[0] + "\\"
    keys = {
        rf"{root}\clsid\{PROXY_ID}": {"@": "PSFactoryBuffer"},
        rf"{root}\clsid\{PROXY_ID}\InProcServer32": {"@": path, "threadingmodel": "Both"},
        library: {},
        rf"{library}\1.0": {"@": "Velandoc 1.0 Type Library"},
        rf"{library}\1.0\409": {},
        rf"{library}\1.0\409\win64": {"@": path},
        rf"{library}\1.0\FLAGS": {"@": "8"},
        rf"{library}\1.0\HELPDIR": {"@": folder},
    }
    for name, identifier, methods in INTERFACES:
        interface = rf"{root}\interface\{identifier}"
        keys |= {
            interface: {"@": name},
            rf"{interface}\NumMethods": {"@": str(methods)},
            rf"{interface}\ProxyStubClsid": {"@": AUTOMATION},
            rf"{interface}\ProxyStubClsid32": {"@": PROXY_ID},
            rf"{interface}\TypeLib": {"@": LIBRARY_ID, "version": "1.0"},
        }
    return {key.lower(): {name: quoted(data) for name, data in values.items()}
            for key, values in keys.items()}


class Checks:
    def __init__(self) -> None:
        self.failed = 0

    def equal(self, what: str, found, expected) -> None:
        if found == expected:
            print(f"ok      {what}")
            return
        self.failed += 1
        print(f"FAILED  {what}")
        if isinstance(found, dict) and isinstance(expected, dict):
            for key in sorted(found.keys() | expected.keys()):
                if found.get(key) != expected.get(key):
                    print(f"        {key}\n          found    {found.get(key)}"
                          f"\n          expected {expected.get(key)}")
        else:
            print(f"        found    {found!r}\n        expected {expected!r}")


def difference(before: dict, after: dict) -> dict:
    """Keys that are new or have other values. The 32-bit view's copies of shared keys are Wine's own affair."""
    return {key: values for key, values in after.items()
            if before.get(key) != values and r"\wow6432node" not in key}


def leftovers(before: dict, after: dict) -> dict:
    return {key: after.get(key) for key in before.keys() | after.keys()
            if before.get(key) != after.get(key)}


def run(prefix: Prefix, dll: pathlib.Path, checks: Checks) -> None:
    machine = r"hkey_local_machine\software\classes"
    user = r"hkey_current_user\software\classes"
    path = "Z:" + str(dll).replace("/", "\\")

    def but_empty(keys: dict) -> dict:
        """Without the empty keys above the user's classes, which come into being on the way and stay."""
        return {key: values for key, values in keys.items() if key not in (user, user + r"\appid", user + r"\clsid")}

    script = prefix.folder / "check.js"
    script.write_text(SCRIPT.replace("\n", "\r\n"))
    cscript = ("cscript", "/nologo", "Z:" + str(script).replace("/", "\\"))

    # Once round first: Wine's parts write their own keys on their first use.
    prefix.run("regsvr32", "/s", path)
    prefix.run(*cscript)
    prefix.run("regsvr32", "/s", "/u", path)
    before = prefix.registry()

    checks.equal("regsvr32 succeeds", prefix.run("regsvr32", "/s", path)[0], 0)
    after = prefix.registry()
    checks.equal("regsvr32 writes exactly the keys of the machine", difference(before, after),
                 script_keys(machine, path) | system_keys(machine, path))

    said = prefix.run(*cscript)[1]
    checks.equal("a script makes the objects by their ProgIDs",
                 said.split("\n")[:6], ["made", "answer false", "status -1", "port 50070", "options 0", "end"])

    checks.equal("regsvr32 /u succeeds", prefix.run("regsvr32", "/s", "/u", path)[0], 0)
    checks.equal("regsvr32 /u leaves the registry as it was",
                 leftovers(before, prefix.registry()), {})

    checks.equal("a second regsvr32 /u fails: the type library is not registered",
                 prefix.run("regsvr32", "/s", "/u", path)[0] != 0, True)
    prefix.run("regsvr32", "/s", path)
    prefix.run("regsvr32", "/s", "/u", path)

    for word in ("user", "USER"):
        before = prefix.registry()
        checks.equal(f"regsvr32 /n /i:{word} succeeds",
                     prefix.run("regsvr32", "/s", "/n", f"/i:{word}", path)[0], 0)
        checks.equal(f"/i:{word} writes the classes for the user alone",
                     but_empty(difference(before, prefix.registry())),
                     script_keys(user, path) | system_keys(machine, path))
        checks.equal(f"regsvr32 /u /n /i:{word} succeeds",
                     prefix.run("regsvr32", "/s", "/u", "/n", f"/i:{word}", path)[0], 0)
        checks.equal(f"/u /n /i:{word} takes them out", but_empty(leftovers(before, prefix.registry())), {})

    before = prefix.registry()
    prefix.run("regsvr32", "/s", "/n", "/i:username", path)
    checks.equal("/i:username registers for the machine", difference(before, prefix.registry()),
                 script_keys(machine, path) | system_keys(machine, path))
    prefix.run("regsvr32", "/s", "/u", path)

    before = prefix.registry()
    register, unregister = ("regsvr32", "/s", path), ("regsvr32", "/s", "/u", path)
    for number in range(1, 4):
        checks.equal(f"four at once register ({number})", prefix.run_at_once(*[register] * 4), [0] * 4)
        checks.equal(f"four at once leave a whole registry ({number})", difference(before, prefix.registry()),
                     script_keys(machine, path) | system_keys(machine, path))
        checks.equal(f"they are unregistered ({number})", prefix.run(*unregister)[0], 0)
    checks.equal("one registers for the machine while one does for the user",
                 prefix.run_at_once(register, ("regsvr32", "/s", "/n", "/i:user", path)), [0, 0])
    checks.equal("they leave both their keys", but_empty(difference(before, prefix.registry())),
                 script_keys(machine, path) | script_keys(user, path) | system_keys(machine, path))
    prefix.run("regsvr32", "/s", "/u", "/n", "/i:user", path)
    prefix.run(*register)
    checks.equal("the last registration is taken out again", prefix.run(*unregister)[0], 0)
    checks.equal("nothing of them stays", but_empty(leftovers(before, prefix.registry())), {})

    started = time.monotonic()
    prefix.run(*register)
    whole = time.monotonic() - started
    # Some of them hold the lock when they end.
    killed = sum(prefix.run_and_kill(whole * number / 12, *register) for number in range(12))
    checks.equal("registrations are killed on the way", killed > 5, True)
    started = time.monotonic()
    checks.equal("the next one succeeds", prefix.run(*register)[0], 0)
    checks.equal("it does not wait for them", time.monotonic() - started < 20, True)
    checks.equal("it makes the registry whole", but_empty(difference(before, prefix.registry())),
                 script_keys(machine, path) | system_keys(machine, path))
    checks.equal("and is taken out again", prefix.run(*unregister)[0], 0)


def main() -> int:
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--dll", required=True, type=pathlib.Path)
    parser.add_argument("--wine", default="/usr/lib/wine/wine64")
    options = parser.parse_args()
    dll = options.dll.resolve()
    if not dll.is_file():
        print(f"{dll}: no such file", file=sys.stderr)
        return 2
    checks = Checks()
    folder = pathlib.Path(tempfile.mkdtemp(prefix="velandoc-wine-"))
    prefix = None
    try:
        prefix = Prefix(options.wine, folder)
        run(prefix, dll, checks)
    finally:
        if prefix is not None:
            prefix.stop()
        shutil.rmtree(folder, ignore_errors=True)
    print("all checks hold" if checks.failed == 0 else f"{checks.failed} checks failed")
    return 0 if checks.failed == 0 else 1


if __name__ == "__main__":
    sys.exit(main())
