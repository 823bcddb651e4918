#!/usr/bin/env python3
"""Installs the Debian packages in a clean tree and uses them there.

    debian_test.py --packages build/packages --tree build/debian-tree --standin build/native/bin/velandoc-standin

The tree is a Debian of the machine's own release, made once by mmdebstrap and kept without the packages; each run works
on a copy. Needs root. One line a check, 'ok WHAT' or 'FAILED WHAT'; exit code 0 if every check holds, 77 with a line of
why where no tree can be made.
"""

import argparse
import contextlib
import pathlib
import shutil
import subprocess
import sys

TOP = pathlib.Path(__file__).resolve().parent.parent.parent
sys.path[:0] = [str(TOP / "tests/cli"), str(TOP / "tests/support")]
import debian_tree  # noqa: E402  (the paths stand one line above)
import support  # noqa: E402

NOT_POSSIBLE = 77
# What building a host takes, and the shells whose completions are read.
TREE_PACKAGES = ("g++", "cmake", "make", "pkg-config", "bash-completion", "zsh", "fish", "man-db")
DOCUMENT = "http://docs.example.test/sites/a/Shared%20Documents/b.xlsx"


class Checks:
    def __init__(self):
        self.failed = 0

    def that(self, what, holds, detail=""):
        print(("ok      " if holds else "FAILED  ") + what, flush=True)
        if not holds:
            self.failed += 1
            for line in str(detail).splitlines()[-15:]:
                print(f"        {line}")


def clean_tree(folder):
    """Makes the tree where it is not there yet, with the machine's own sources of packages."""
    debian_tree.prepare(folder, debian_tree.machine_release(), TREE_PACKAGES)
    for name in ("sources.list", "sources.list.d", "apt.conf.d"):
        source = pathlib.Path("/etc/apt") / name
        target = folder / "etc/apt" / name
        if source.is_dir():
            shutil.copytree(source, target, dirs_exist_ok=True)
        elif source.exists():
            shutil.copy(source, target)


@contextlib.contextmanager
def copy_of(tree):
    folder = tree.with_name(tree.name + "-used")
    debian_tree.remove(folder)
    subprocess.run(["cp", "-a", "--one-file-system", tree, folder], check=True)
    try:
        yield debian_tree.Tree(folder)
    finally:
        debian_tree.remove(folder)


def files_of(tree):
    """Every file of the tree but what package management keeps for itself."""
    own = ("./proc", "./dev", "./var/lib/dpkg", "./var/lib/apt", "./var/cache", "./var/log", "./tmp", "./etc/ld.so.cache",
           "./packages", "./root")
    said = tree.run("find", ".", "-xdev", "!", "-type", "d")[1]
    return {line for line in said.splitlines() if not line.startswith(own)}


def use(tree, packages, checks, server):
    proxy = f"http://127.0.0.1:{server.ports['http']}"
    network = {"http_proxy": proxy, "no_proxy": "", "VELANDOC_NO_INPUT": "1"}
    inside = tree.folder / "packages"
    inside.mkdir()
    for package in packages.glob("*.deb"):
        if "dbgsym" not in package.name:
            shutil.copy(package, inside)
    names = sorted(path.name.split("_")[0] for path in inside.iterdir())
    checks.that("the packages are the library, the dialog, the commands and the development files",
                names == ["libvelandoc-com1", "libvelandoc-dev", "velandoc", "velandoc-dialog"], names)

    # The dialog needs a browser engine; the others must do without it.
    first = [f"/packages/{path.name}" for path in inside.iterdir() if not path.name.startswith("velandoc-dialog")]
    tree.run("apt-get", "update", timeout=300)
    # What they stand on first, so that what their removal leaves can be told from it.
    install = ("apt-get", "install", "-y", "--no-install-recommends")
    said = tree.run(*install, "--download-only", *first, timeout=600)
    depends = [line for line in tree.run(*install, "--simulate", *first)[1].splitlines() if line.startswith("Inst ")]
    depends = [line.split()[1] for line in depends if "velandoc" not in line]
    tree.run(*install, *depends, timeout=600)
    checks.that("nothing that they stand on is a toolkit or a browser",
                not [name for name in depends if "gtk" in name or "webkit" in name], depends)
    code, said = tree.run(*install, "--simulate", *(f"/packages/{path.name}" for path in inside.iterdir()))
    checks.that("the dialog's package finds a toolkit and a browser here", code == 0 and "Inst libwebkit2gtk-4.1-0" in said, said)
    before = files_of(tree)
    code, said = tree.run(*install, *first)
    checks.that("apt installs them", code == 0, said)

    code, said = tree.run("velandoc", "--version")
    checks.that("velandoc --version", code == 0 and said.startswith("velandoc "), said)
    code, said = tree.run("velandoc", "probe", "http://docs.example.test/", env=network)
    checks.that("velandoc probe", (code, said) == (0, "http://docs.example.test/: SharePoint server\n"), said)
    code, said = tree.run("velandoc-script", "/usr/share/doc/velandoc/examples/probe.js", "http://docs.example.test/",
                          env=network)
    checks.that("velandoc-script runs an example", code == 0 and "SharePoint server" in said, said)
    code, said = tree.run("velandoc", "doc", "status", DOCUMENT, env=network)
    checks.that("velandoc doc status", code == 0 and "nobody" in said, said)
    code, said = tree.run("velandoc", "register")
    checks.that("velandoc register", code == 0 and "/usr/lib/x86_64-linux-gnu/velandoc/libvelandoc.so" in said, said)
    code, said = tree.run("velandoc", "unregister")
    checks.that("velandoc unregister", code == 0, said)

    code, said = tree.run("man", "--warnings", "-E", "UTF-8", "velandoc")
    checks.that("the man page shows without a warning", code == 0 and "warning" not in said and "doc checkout" in said, said)
    code, said = tree.run("man", "--warnings", "-E", "UTF-8", "velandoc-script")
    checks.that("so does the script host's", code == 0 and "warning" not in said and "ActiveXObject" in said, said)
    completion = ('. /usr/share/bash-completion/completions/velandoc; COMP_WORDS=(velandoc doc che); COMP_CWORD=2; '
                  '_velandoc; printf "%s\\n" "${COMPREPLY[@]}"')
    code, said = tree.run("bash", "-c", completion)
    checks.that("bash completes", said.split() == ["checkout", "checkin"], said)
    code, said = tree.run("zsh", "-n", "/usr/share/zsh/vendor-completions/_velandoc")
    checks.that("zsh reads its completion", code == 0 and not said, said)
    code, said = tree.run("zsh", "-c", "autoload -U compinit; compinit -u; whence -w _velandoc; echo $_comps[velandoc]")
    checks.that("zsh knows it for velandoc", said.split() == ["_velandoc:", "function", "_velandoc"], said)
    code, said = tree.run("fish", "-c", "complete -C 'velandoc doc che'")
    checks.that("fish completes", [line.split("\t")[0] for line in said.splitlines()] == ["checkin", "checkout"], said)

    shutil.copytree(TOP / "samples", tree.folder / "root/samples")
    code, said = tree.run("cmake", "-S", "/root/samples/cpp", "-B", "/root/holder")
    checks.that("a project outside finds the CMake package", code == 0, said)
    code, said = tree.run("cmake", "--build", "/root/holder")
    checks.that("and builds against it", code == 0, said)
    code, said = tree.run("/root/holder/holder", DOCUMENT, env=network)
    checks.that("and its program works", (code, said) == (0, f"{DOCUMENT}: nobody\n"), said)
    code, said = tree.run("sh", "-c", "g++ -std=c++20 -o /root/by-pkg-config /root/samples/cpp/holder.cpp "
                                      "$(pkg-config --cflags --libs velandoc)")
    checks.that("pkg-config's words build it too", code == 0, said)
    code, said = tree.run("/root/samples/holder.sh", DOCUMENT, env=network)
    checks.that("the shell sample works", (code, said) == (0, f"{DOCUMENT}: nobody\n"), said)

    code, said = tree.run("apt-get", "purge", "-y", "velandoc", "libvelandoc-com1", "libvelandoc-dev")
    checks.that("apt purges them", code == 0, said)
    left = files_of(tree) - before
    left = {name for name in left if not name.startswith(("./var/lib/velandoc/",))}
    checks.that("and nothing of them is left", not left, "\n".join(sorted(left)))


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--packages", type=pathlib.Path, required=True)
    parser.add_argument("--tree", type=pathlib.Path, required=True)
    parser.add_argument("--standin", type=pathlib.Path, required=True)
    arguments = parser.parse_args()
    checks = Checks()

    changes = list(arguments.packages.glob("*.changes"))
    linted = subprocess.run(["lintian", "--allow-root", "--fail-on", "error,warning", *changes], capture_output=True,
                            text=True, check=False)
    checks.that("lintian has no error and no warning", linted.returncode == 0 and len(changes) == 1,
                linted.stdout + linted.stderr)

    try:
        clean_tree(arguments.tree.absolute())
    except debian_tree.NotPossible as reason:
        print(reason)
        return 1 if checks.failed else NOT_POSSIBLE
    support.standin = arguments.standin
    server = support.Server()
    try:
        with copy_of(arguments.tree.absolute()) as tree:
            use(tree, arguments.packages, checks, server)
    finally:
        server.stop()
    return 1 if checks.failed else 0


if __name__ == "__main__":
    sys.exit(main())
