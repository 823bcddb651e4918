"""A Debian of a chosen release in a folder, made by mmdebstrap from the machine's own mirror, and programs run in it.

Every program runs by chroot in namespaces of its own, for mounts and for processes: what it mounts and starts ends with
it, also when it is killed, and no mount of the machine is ever seen below the folder. All that needs root.
"""

import json
import os
import pathlib
import platform
import shutil
import subprocess

PATH = "/usr/sbin:/usr/bin:/sbin:/bin"
OTHER = {"bookworm": "trixie", "trixie": "bookworm"}
SECONDS_TO_MAKE = 1500
ENTER = pathlib.Path(__file__).resolve().parent / "enter-tree"


class NotPossible(Exception):
    """Why there can be no tree on this machine: a reason to skip, not a failure."""


def machine_release():
    """The code name of the machine's own release."""
    return platform.freedesktop_os_release().get("VERSION_CODENAME", "")


def other_release():
    """The Debian that the machine does not run, of the two that the project supports."""
    own = machine_release()
    if own not in OTHER:
        raise NotPossible(f"this machine runs neither of {', '.join(OTHER)}")
    return OTHER[own]


def mirror():
    """Where the machine's own packages come from."""
    own = machine_release()
    try:
        listed = subprocess.run(
            ["apt-get", "indextargets", "--format", "$(REPO_URI) $(RELEASE)", "Created-By: Packages"],
            stdin=subprocess.DEVNULL, capture_output=True, text=True, check=False).stdout
    except FileNotFoundError:
        raise NotPossible("this machine has no apt-get") from None
    for line in listed.splitlines():
        uri, _, release = line.partition(" ")
        if own and release == own:
            return uri
    raise NotPossible("this machine has no sources of Debian packages")


class Tree:
    """A made tree. `mounts` are (folder of the machine, place in the tree, whether it may be written to)."""

    def __init__(self, folder, mounts=(), current="/"):
        self.folder = folder
        self.mounts = mounts
        self.current = current
        for name in ("resolv.conf", "hosts"):
            shutil.copy(f"/etc/{name}", folder / "etc" / name)

    def command(self, *command, env=None):
        """The command line that runs a program in the tree, in the folder `current` and an environment of its own."""
        mounts = [part for source, place, writable in self.mounts
                  for part in (source, place, "writable" if writable else "read-only")]
        environment = {"PATH": PATH, "HOME": "/root", "LANG": "C.UTF-8", **(env or {})}
        line = ["unshare", "--mount", "--propagation", "unchanged", "--pid", "--fork", "--kill-child",
                ENTER, self.folder, *mounts, "--", "env", "--ignore-environment", f"--chdir={self.current}",
                *(f"{name}={value}" for name, value in environment.items()), *command]
        return [str(part) for part in line]

    def run(self, *command, env=None, timeout=600):
        """Exit code and output."""
        done = subprocess.run(self.command(*command, env=env), stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                              stderr=subprocess.STDOUT, text=True, timeout=timeout, check=False)
        return done.returncode, done.stdout


def prepare(folder, release, packages):
    """Makes the tree unless it is there, made of the same; tells whether it was made now."""
    if os.geteuid() != 0:
        raise NotPossible("a tree of Debian takes root")
    uri = mirror()
    stamp = folder.with_name(folder.name + ".made")
    contents = json.dumps({"release": release, "mirror": uri, "packages": sorted(packages)}, indent=1)
    if folder.is_dir() and stamp.exists() and stamp.read_text(encoding="utf-8") == contents:
        return False
    stamp.unlink(missing_ok=True)
    remove(folder)
    folder.parent.mkdir(parents=True, exist_ok=True)
    try:
        made = subprocess.run(["mmdebstrap", "--quiet", "--variant=apt", "--dpkgopt=force-unsafe-io",
                               f"--include={','.join(packages)}", release, folder, uri], stdin=subprocess.DEVNULL,
                              capture_output=True, text=True, timeout=SECONDS_TO_MAKE, check=False)
    except FileNotFoundError:
        raise NotPossible("this machine has no mmdebstrap") from None
    except subprocess.TimeoutExpired:
        remove(folder)
        raise NotPossible(f"mmdebstrap did not end within {SECONDS_TO_MAKE} s") from None
    if made.returncode != 0:
        remove(folder)
        said = (made.stdout + made.stderr).strip().splitlines() or ["no output"]
        raise NotPossible(f"mmdebstrap failed: {said[-1]}")
    code, output = Tree(folder).run("true")
    if code != 0:
        raise NotPossible(f"this machine does not let us enter a tree: {output.strip()}")
    stamp.write_text(contents, encoding="utf-8")
    return True


def remove(folder):
    """Removes a tree, but never through a mount: an interrupted mmdebstrap may have left the machine's /dev there."""
    mounts = pathlib.Path("/proc/self/mounts").read_text(encoding="utf-8", errors="replace").splitlines()
    places = [line.split()[1].replace("\\040", " ") for line in mounts]
    own = [place for place in places if place == str(folder) or place.startswith(f"{folder}/")]
    for place in sorted(own, reverse=True):
        subprocess.run(["umount", place], check=True)
    shutil.rmtree(folder, ignore_errors=True)
