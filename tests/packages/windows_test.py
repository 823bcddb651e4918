#!/usr/bin/env python3
"""Installs, upgrades and removes the .msi under Wine, and looks into the .zip.

    windows_test.py --packages build/packages --work build/package --standin build/native/bin/velandoc-standin

Works in a Wine prefix of its own in a temporary folder. One line a check; exit code 0 if every check holds.
"""

import argparse
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import zipfile

TOP = pathlib.Path(__file__).resolve().parent.parent.parent
sys.path[:0] = [str(TOP / "tests/wine"), str(TOP / "tests/cli")]
import registration_test as registration  # noqa: E402
import support  # noqa: E402

INSTALLED = r"C:\Program Files\Velandoc"
FILES = {"LICENSE.txt", "Velandoc.Component.manifest", "velandoc.dll", "velandoc.exe", "velandoc.idl", "velandoc.tlb",
         "velandoc_idl.h"}
SAMPLES = {path.name for path in (TOP / "samples").iterdir() if path.suffix in (".js", ".vbs", ".ps1", ".bas")}
DOCUMENT = "http://docs.example.test/sites/a/Shared%20Documents/b.xlsx"
INTERNET = r"HKCU\Software\Microsoft\Windows\CurrentVersion\Internet Settings"
MACHINE = r"hkey_local_machine\software\classes"


def windows_path(path):
    return "Z:" + str(path).replace("/", "\\")


def files_below(folder):
    return {str(path.relative_to(folder)) for path in folder.rglob("*") if path.is_file()} if folder.exists() else set()


def ours(before, after):
    """New keys and changed values, less those that every installation leaves in the installer's own books."""
    books = (r"hkey_local_machine\software\microsoft\windows\currentversion\installer",
             r"hkey_local_machine\software\microsoft\windows\currentversion\uninstall",
             r"hkey_local_machine\software\classes\installer",
             r"hkey_current_user\software\microsoft\installer")
    return {key: values for key, values in registration.difference(before, after).items()
            if not key.startswith(books) and "session manager\\environment" not in key}


def registered(dll):
    """What regsvr32 leaves, but that the library's flags are 0 as Windows is believed to write them, not Wine's 8."""
    keys = registration.script_keys(MACHINE, dll) | registration.system_keys(MACHINE, dll)
    flags = rf"{MACHINE}\typelib\{registration.LIBRARY_ID}\1.0\flags".lower()
    return keys | {flags: {"@": '"0"'}}


def products(prefix):
    """Names and versions of what the system lists as installed."""
    listed = {}
    for key, values in prefix.registry().items():
        if r"\currentversion\uninstall" in key and values.get("displayname") == '"Velandoc"':
            listed[key] = values.get("displayversion", "").strip('"')
    return sorted(listed.values())


def version_block(program):
    """The values of the block's texts, which lie in the file as UTF-16 behind their names."""
    content = program.read_bytes()
    found = {}
    for key in ("FileVersion", "ProductVersion", "OriginalFilename"):
        match = re.search(re.escape(f"{key}\0".encode("utf-16-le")) + rb"(?:\0\0)*((?:[!-~]\0)+)", content)
        found[key] = match.group(1).decode("utf-16-le") if match else None
    return found


def use_samples(prefix, checks):
    """The samples whose hosts Wine has, where the installer put them."""
    samples = INSTALLED + r"\samples"
    cscript = ("cscript", "/nologo")
    said = prefix.run(*cscript, samples + r"\probe.js", "http://docs.example.test/")[1]
    checks.equal("the JScript sample works", "SharePoint server" in said, True)
    said = prefix.run(*cscript, samples + r"\holder.vbs", DOCUMENT)[1]
    checks.equal("the VBScript sample works", said.strip(), f"{DOCUMENT}: nobody")

    cpp = prefix.folder / "prefix/drive_c/Program Files/Velandoc/samples/cpp"
    for name in ("holder", "members"):
        built = subprocess.run(["x86_64-w64-mingw32-g++", "-std=c++20", "-Wall", "-Wextra", "-Werror", "-static",
                                f"-I{cpp.parent.parent}", "-o", prefix.folder / f"{name}.exe", cpp / f"{name}.cpp",
                                "-lole32", "-loleaut32", "-luuid"], capture_output=True, text=True, check=False)
        checks.equal(f"{name}.cpp builds against what is installed", (built.returncode, built.stderr), (0, ""))
    said = prefix.run(windows_path(prefix.folder / "holder.exe"), DOCUMENT)[1]
    checks.equal("the C++ sample works", said.strip(), f"{DOCUMENT}: nobody")
    said = prefix.run(windows_path(prefix.folder / "members.exe"), INSTALLED + r"\velandoc.tlb")[1]
    checks.equal("the type library's sample tells the members", " 4  Download (method Download)" in said, True)
    checks.equal("and calls two of them",
                 said.strip().split("\n")[-1], "http://namenode.example.com:8020/webhdfs/v1/")


def msi_work(prefix, packages, work, checks, server):
    msi = next(packages.glob("velandoc-*-x64.msi"))
    version = re.search(r"velandoc-([\d.]+)-x64", msi.name).group(1)
    folder = prefix.folder / "prefix/drive_c/Program Files/Velandoc"
    expected = FILES | {f"samples/{name}" for name in SAMPLES} | {f"samples/cpp/{path.name}"
                                                                  for path in (TOP / "samples/cpp").iterdir()}
    script = prefix.folder / "check.js"
    script.write_text(registration.SCRIPT.replace("\n", "\r\n"))

    def install(package, *words):
        return prefix.run("msiexec", *words, windows_path(package), "/qn", timeout=180)[0]

    # Once round first: Wine's parts write their own keys on their first use.
    install(msi, "/i")
    prefix.run("cscript", "/nologo", windows_path(script))
    install(msi, "/x")
    prefix.run("reg", "add", INTERNET, "/v", "ProxyServer", "/d", f"127.0.0.1:{server.ports['http']}", "/f")
    prefix.run("reg", "add", INTERNET, "/v", "ProxyEnable", "/t", "REG_DWORD", "/d", "1", "/f")
    before = prefix.registry()

    checks.equal("msiexec /i succeeds", install(msi, "/i"), 0)
    checks.equal("the files are where they belong", files_below(folder), expected)
    installed = prefix.registry()
    dll = INSTALLED + r"\velandoc.dll"
    checks.equal("the registry is as regsvr32 leaves it", ours(before, installed),
                 registered(dll))
    checks.equal("the command is on the path", on_path(prefix), True)
    said = prefix.run("cscript", "/nologo", windows_path(script))[1]
    checks.equal("a script makes the objects by their ProgIDs", said.split("\n")[0], "made")
    said = prefix.run(INSTALLED + r"\velandoc.exe", "--version")[1]
    checks.equal("velandoc.exe tells its version", said.strip(), f"velandoc {version}")
    for name in ("velandoc.dll", "velandoc.exe"):
        checks.equal(f"{name} has a version block of its own", version_block(folder / name),
                     {"FileVersion": f"{version}.0", "ProductVersion": f"{version}.0", "OriginalFilename": name})
    checks.equal("one product is listed", products(prefix), [version])
    use_samples(prefix, checks)

    def make(version, name):
        made = prefix.folder / name
        subprocess.run([TOP / "packaging/windows/make-msi", version, work.absolute().relative_to(TOP) / "files", made],
                       check=True)
        return made

    checks.equal("another build of the version installs over it", install(make(version, "again.msi"), "/i"), 0)
    checks.equal("and is the only one", products(prefix), [version])
    major, minor, patch = (int(part) for part in version.split("."))
    newer_version = f"{major}.{minor}.{patch + 1}"
    newer = make(newer_version, "newer.msi")
    checks.equal("a newer one installs over it", install(newer, "/i"), 0)
    checks.equal("and takes its place", products(prefix), [newer_version])
    checks.equal("with all its files", files_below(folder), expected)
    checks.equal("and its registration", ours(before, prefix.registry()),
                 registered(dll))
    checks.equal("an older one does not install over a newer", install(msi, "/i") != 0, True)
    checks.equal("which stays", products(prefix), [newer_version])

    checks.equal("msiexec /x succeeds", install(newer, "/x"), 0)
    checks.equal("no file is left", files_below(folder), set())
    checks.equal("no key is left", ours(before, prefix.registry()), {})
    checks.equal("nothing is listed", products(prefix), [])
    checks.equal("the path is as it was", on_path(prefix), False)


def on_path(prefix):
    said = prefix.run("reg", "query", r"HKLM\System\CurrentControlSet\Control\Session Manager\Environment", "/v", "PATH")[1]
    return INSTALLED.lower() in said.lower()


def zip_work(prefix, packages, checks):
    archive = next(packages.glob("velandoc-*-x64.zip"))
    with zipfile.ZipFile(archive) as opened:
        opened.extractall(prefix.folder / "unzipped")
    folder = next((prefix.folder / "unzipped").iterdir())
    names = files_below(folder)
    checks.equal("the zip holds the files, the samples and the symbols",
                 {name for name in names if "/" not in name},
                 FILES | {"README.md", "velandoc.dll.debug", "velandoc.exe.debug"})
    checks.equal("and the pages", {path.name for path in (folder / "docs").glob("*.md")},
                 {path.name for path in (TOP / "docs").glob("*.md")})
    for program in ("velandoc.dll", "velandoc.exe"):
        headers = subprocess.run(["x86_64-w64-mingw32-objdump", "-h", folder / program], capture_output=True, text=True,
                                 check=True).stdout
        checks.equal(f"{program} is stripped and names its symbols",
                     (".debug_info" in headers, ".gnu_debuglink" in headers), (False, True))
        symbols = subprocess.run(["x86_64-w64-mingw32-objdump", "-h", folder / f"{program}.debug"],
                                 capture_output=True, text=True, check=True).stdout
        checks.equal(f"{program}.debug has them", ".debug_info" in symbols, True)
        checks.equal(f"{program} names no folder of the machine that built it",
                     str(TOP).encode() in (folder / program).read_bytes(), False)
    path = windows_path(folder / "velandoc.dll")
    checks.equal("the unpacked DLL registers", prefix.run("regsvr32", "/s", path)[0], 0)
    checks.equal("and unregisters", prefix.run("regsvr32", "/s", "/u", path)[0], 0)


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--packages", type=pathlib.Path, required=True)
    parser.add_argument("--work", type=pathlib.Path, required=True)
    parser.add_argument("--standin", type=pathlib.Path, required=True)
    parser.add_argument("--wine", default="/usr/lib/wine/wine64")
    arguments = parser.parse_args()
    checks = registration.Checks()
    folder = pathlib.Path(tempfile.mkdtemp(prefix="velandoc-packages-"))
    prefix = None
    support.standin = arguments.standin
    server = support.Server()
    try:
        prefix = registration.Prefix(arguments.wine, folder)
        zip_work(prefix, arguments.packages, checks)
        msi_work(prefix, arguments.packages, arguments.work, checks, server)
    finally:
        server.stop()
        if prefix is not None:
            prefix.stop()
        shutil.rmtree(folder, ignore_errors=True)
    return 1 if checks.failed else 0


if __name__ == "__main__":
    sys.exit(main())
