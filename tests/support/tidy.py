"""clang-tidy, but not again over what it has passed.

What it says of a source file depends on that file, on all that the file includes (which the build wrote down), on the
compiler's options, on clang-tidy and on its settings. A file's key is made of all these, and kept if it passed.
"""

import concurrent.futures
import hashlib
import json
import os
import pathlib
import re
import subprocess

from lane import BUILD, TOP, tail

PASSED = BUILD / "tidy"


def included(build):
    """The files that each object file of a build folder was made of, by the object's name."""
    text = subprocess.run(["ninja", "-C", build, "-t", "deps"], capture_output=True, text=True, check=True).stdout
    files = {}
    for block in text.split("\n\n"):
        head, *lines = block.split("\n")
        if found := re.match(r"(.+): #deps \d+, .* \(VALID\)$", head):
            files[found[1]] = [build / line.strip() for line in lines if line.strip()]
    return files


class Keys:
    def __init__(self, build):
        self.files = included(build)
        self.digests = {}
        version = subprocess.run(["clang-tidy", "--version"], capture_output=True, check=True).stdout
        self.common = version + (TOP / ".clang-tidy").read_bytes()

    def digest(self, path):
        if path not in self.digests:
            self.digests[path] = hashlib.sha256(path.read_bytes()).hexdigest()
        return self.digests[path]

    def of(self, commands):
        """The key of a file that is compiled by these commands; None if the build does not know what it includes."""
        key = hashlib.sha256(self.common)
        for command in commands:
            made = re.search(r" -o (\S+)", command)
            files = self.files.get(made[1]) if made else None
            if not files:
                return None
            key.update(f"\n{command}".encode())
            for path in files:
                key.update(f"\n{path} {self.digest(path)}".encode())
        return key.hexdigest()


def check(lane, build, wanted):
    """Adds one result for all files of a build folder whose path below the project matches `wanted`."""
    keys = Keys(build)
    commands = {}
    for entry in json.loads((build / "compile_commands.json").read_text(encoding="utf-8")):
        file = pathlib.Path(entry["file"])
        if file.is_relative_to(TOP) and wanted.match(str(file.relative_to(TOP))):
            commands.setdefault(entry["file"], []).append(entry["command"])
    PASSED.mkdir(parents=True, exist_ok=True)
    key_of = {file: keys.of(said) for file, said in commands.items()}
    rest = [file for file, key in key_of.items() if key is None or not (PASSED / key).exists()]
    lane.log.write(f"clang-tidy: {len(commands)} files, {len(rest)} of them new or changed\n")

    def run(file):
        code, output = lane.run(["clang-tidy", "--quiet", "--extra-arg=-Wno-unknown-warning-option", "-p", build, file],
                                timeout=600)
        if code == 0 and key_of[file] is not None:
            (PASSED / key_of[file]).touch()
        return "" if code == 0 else tail(output)

    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        said = [text for text in pool.map(run, rest) if text]
    for old in PASSED.iterdir():
        if old.name not in key_of.values():
            old.unlink()
    lane.add("clang-tidy", "failed" if said or not commands else "passed", "\n".join(said))
