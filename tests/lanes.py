"""The lanes of ./test: each builds what it needs, runs, and counts what passed, failed and was skipped.

A lane is a function that yields results; a result is (name, state, detail) with a state of 'passed', 'failed' or
'skipped'. Everything runs on loopback and under a time limit. Output of the programs goes to build/test/LANE.log.
"""

import argparse
import contextlib
import json
import os
import pathlib
import re
import shutil
import signal
import subprocess
import sys
import time

TOP = pathlib.Path(__file__).resolve().parent.parent
sys.path.insert(0, str(TOP / "tests/support"))
import debian_tree  # noqa: E402  (the path stands one line above)
from stand_in import StandIn  # noqa: E402

BUILD = TOP / "build"
LOGS = BUILD / "test"
CERTIFICATES = BUILD / "certificates"
NATIVE = BUILD / "native"
ASAN = BUILD / "asan"
WINDOWS = BUILD / "windows"
FUZZ = BUILD / "fuzz"
PYTHON = "/usr/bin/python3"
FUZZ_RUNS = 20000
SHORT_PROGRAMS = 300
WARNINGS_ARE_ERRORS = "-DCMAKE_COMPILE_WARNING_AS_ERROR=ON"
NOT_POSSIBLE = 77  # the exit code of a checklist whose rest cannot be run here; its last line says why


class LaneFailure(Exception):
    """The lane could not be run at all: counts as one failed test."""


# --- running programs -----------------------------------------------------------------------------------------------


class Lane:
    """One lane's log and results."""

    def __init__(self, name):
        self.name = name
        self.results = []
        LOGS.mkdir(parents=True, exist_ok=True)
        self.log_path = LOGS / f"{name}.log"
        self.log = open(self.log_path, "w", encoding="utf-8", errors="replace")

    def add(self, name, state, detail=""):
        self.results.append((name, state, detail))

    def run(self, command, *, env=None, timeout=600, cwd=TOP):
        """Runs a program to its end; its output goes to the log. Returns (exit code, output)."""
        command = [str(part) for part in command]
        self.log.write(f"$ {' '.join(command)}\n")
        self.log.flush()
        environment = dict(os.environ)
        environment.update({key: str(value) for key, value in (env or {}).items()})
        process = subprocess.Popen(command, cwd=cwd, env=environment, stdin=subprocess.DEVNULL,
                                   stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                                   start_new_session=True)
        try:
            output, _ = process.communicate(timeout=timeout)
        except subprocess.TimeoutExpired:
            os.killpg(process.pid, signal.SIGKILL)
            output, _ = process.communicate()
            output += f"\ntimed out after {timeout} s\n".encode()
        text = output.decode("utf-8", "replace")
        self.log.write(text + f"\n[exit code {process.returncode}]\n")
        self.log.flush()
        return process.returncode, text

    def check(self, name, command, **options):
        """A program whose exit code 0 is the test."""
        code, output = self.run(command, **options)
        self.add(name, "passed" if code == 0 else "failed", tail(output) if code else "")
        return code == 0

    def build(self, preset, *targets):
        directory = BUILD / preset
        if not (directory / "build.ninja").exists() or not warnings_are_errors(directory):
            code, output = self.run(["cmake", "--preset", preset, WARNINGS_ARE_ERRORS], timeout=300)
            if code:
                raise LaneFailure(f"cmake --preset {preset} failed\n{tail(output)}")
        command = ["cmake", "--build", directory]
        if targets:
            command += ["--target", *targets]
        code, output = self.run(command, timeout=2400)
        if code:
            raise LaneFailure(f"building {preset} failed\n{tail(output, 40)}")

    def googletest(self, prefix, command, **options):
        """A GoogleTest program: one result for each of its tests, and one failed result if it did not end well."""
        report = LOGS / f"{self.name}.{prefix}.json"
        report.unlink(missing_ok=True)
        output_option = report.relative_to(TOP)
        code, output = self.run([*command, f"--gtest_output=json:{output_option}"], **options)
        if not report.exists():
            self.add(f"{prefix}", "failed", f"exit code {code}, no report\n{tail(output, 30)}")
            return
        document = json.loads(report.read_text(encoding="utf-8"))
        failures = 0
        for suite in document["testsuites"]:
            for case in suite["testsuite"]:
                name = f"{prefix} {suite['name']}.{case['name']}"
                if case.get("failures"):
                    failures += 1
                    self.add(name, "failed", case["failures"][0]["failure"])
                elif case["result"] == "SKIPPED":
                    self.add(name, "skipped", "by the test itself")
                elif case["result"] == "COMPLETED":
                    self.add(name, "passed")
        if document["tests"] == 0:
            self.add(prefix, "failed", "no test was found")
        if code and not failures:
            self.add(prefix, "failed", f"exit code {code}\n{tail(output, 30)}")

    def unittest(self, name, command, **options):
        """A program over Python's unittest: its summary line gives the counts."""
        code, output = self.run(command, **options)
        ran = re.search(r"^Ran (\d+) tests? in", output, re.MULTILINE)
        if not ran:
            self.add(name, "failed", f"exit code {code}, no summary\n{tail(output, 30)}")
            return

        def count(word):
            found = re.findall(rf"\b{word}=(\d+)", output)
            return int(found[-1]) if found else 0

        failed = count("failures") + count("errors")
        skipped = count("skipped")
        if code and not failed:
            failed = 1
        for number in range(failed):
            self.add(f"{name} #{number + 1}", "failed", tail(output, 30) if number == 0 else "")
        for number in range(skipped):
            self.add(f"{name}", "skipped", "by the test itself")
        for number in range(int(ran.group(1)) - failed - skipped):
            self.add(f"{name}", "passed")
        if int(ran.group(1)) == 0:
            self.add(name, "failed", "no test was found")

    def checklist(self, name, command, **options):
        """A program that prints a line for each of its checks: 'ok WHAT' or 'FAILED WHAT'."""
        code, output = self.run(command, **options)
        checks = re.findall(r"^(ok|FAILED) +(.*)$", output, re.MULTILINE)
        if code == NOT_POSSIBLE:
            self.add(name, "skipped", tail(output, 1))
            code = 0
        for state, what in checks:
            self.add(f"{name}: {what}", "passed" if state == "ok" else "failed")
        if not checks or (code and all(state == "ok" for state, _ in checks)):
            self.add(name, "failed", f"exit code {code}\n{tail(output, 30)}")


def warnings_are_errors(directory):
    """Whether ./test configured the build folder; ./run and plain cmake leave warnings alone."""
    cache = (directory / "CMakeCache.txt").read_text(encoding="utf-8")
    return re.search(r"^CMAKE_COMPILE_WARNING_AS_ERROR:\w+=ON$", cache, re.MULTILINE) is not None


def tail(text, lines=15):
    return "\n".join(text.rstrip().splitlines()[-lines:])


def certificates(lane):
    code, output = lane.run([TOP / "standin/make-certificates", CERTIFICATES], timeout=120)
    if code:
        raise LaneFailure(f"making certificates failed\n{tail(output)}")


@contextlib.contextmanager
def standin(lane):
    """The stand-in server for the length of a lane; gives the environment that tells tests where it is."""
    lane.build("native", "velandoc-standin")
    certificates(lane)
    folder = LOGS / f"standin-{lane.name}"
    shutil.rmtree(folder, ignore_errors=True)
    folder.mkdir(parents=True)
    with open(folder / "output.txt", "wb") as output:
        try:
            server = StandIn(NATIVE / "bin/velandoc-standin", CERTIFICATES, folder, "--max-seconds", "3000",
                             output=output)
        except RuntimeError as error:
            raise LaneFailure(str(error)) from error
        try:
            yield {
                "VELANDOC_STANDIN": ",".join(f"{name}={server.ports[name]}" for name in ("http", "https", "control")),
                "VELANDOC_CERTIFICATES": str(CERTIFICATES),
                # The first of the two that is set counts.
                "CURL_CA_BUNDLE": str(CERTIFICATES / "ca.pem"),
                "SSL_CERT_FILE": str(CERTIFICATES / "ca.pem"),
            }
        finally:
            try:
                server.stop()
            except subprocess.TimeoutExpired:
                lane.add("stand-in server ends on SIGTERM", "failed")


def wine_prefix(lane, *targets):
    """A fresh Wine prefix in build/wine that trusts the test authority. Builds what is named, or everything."""
    lane.build("windows", *targets)
    certificates(lane)
    server = next(p for p in ("/usr/lib/wine/wineserver64", "/usr/lib/wine/wineserver")
                  if os.path.exists(p))
    prefix = BUILD / "wine"
    if prefix.exists():
        lane.run([server, "-k"], env={"WINEPREFIX": prefix}, timeout=30)
        shutil.rmtree(prefix, ignore_errors=True)
    code, output = lane.run([TOP / "tools/wine", "build/windows/bin/trust_ca.exe",
                             "build/certificates/ca.pem"], timeout=180)
    if code:
        raise LaneFailure(f"the Wine prefix could not be made\n{tail(output)}")


# --- the lanes --------------------------------------------------------------------------------------------------------

# From the bottom to the top: a folder includes what stands before it.
LAYERS = ("platform", "connection", "fields", "soap", "frontpage", "document", "hdfs", "host", "hosts")
CORE_FOLDERS = (*LAYERS, "standin", "tests", "bench", "fuzz", "samples")


def sources(*suffixes):
    listed = subprocess.run(["git", "ls-files", "-co", "--exclude-standard", "--", *CORE_FOLDERS], cwd=TOP,
                            capture_output=True, text=True, check=True).stdout.split("\n")
    return [name for name in listed if name.endswith(suffixes) and (TOP / name).exists()]


def lane_style(lane):
    """Formatting, layering, clang-tidy, and the documents against what they tell of."""
    lane.unittest("documents", [PYTHON, "-B", TOP / "tests/docs/docs_test.py"], timeout=60)
    lane.check("clang-format", ["clang-format", "--dry-run", "-Werror", *sources(".h", ".cpp")])

    conditional = re.compile(r"^\s*#\s*(if|ifdef|ifndef|elif)\b.*(_WIN32|_WIN64|__linux__|__MINGW)", re.MULTILINE)
    offenders = [name for name in sources(".h", ".cpp")
                 if not name.startswith(("platform/", "tests/")) and conditional.search((TOP / name).read_text())]
    lane.add("no platform conditionals outside platform/", "failed" if offenders else "passed",
             "\n".join(offenders))

    layers = {name: level for level, name in enumerate(LAYERS)}
    upward = []
    for name in sources(".h", ".cpp"):
        level = layers.get(name.split("/")[0])
        if level is None:
            continue
        for included in re.findall(r'^\s*#\s*include "([a-z]+)/', (TOP / name).read_text(), re.MULTILINE):
            if layers.get(included, -1) > level:
                upward.append(f"{name} includes {included}/")
    lane.add("includes point down the layers", "failed" if upward else "passed", "\n".join(upward))

    for home in ("native", "windows"):
        lane.build(home, "velandoc_headers")
        lane.add(f"each header compiles alone ({home})", "passed")

    units = [entry["file"] for entry in json.loads((NATIVE / "compile_commands.json").read_text())
             if re.match(rf"{re.escape(str(TOP))}/({'|'.join(LAYERS)}|standin)/",
                         entry["file"])]
    lane.check("clang-tidy", ["xargs", "-a", write_list(lane, sorted(set(units))), "-n", "8", "-P", str(os.cpu_count()),
                              "clang-tidy", "--quiet", "--extra-arg=-Wno-unknown-warning-option", "-p", NATIVE], timeout=1500)


def write_list(lane, names):
    path = LOGS / f"{lane.name}.files"
    path.write_text("".join(f"{name}\n" for name in names))
    return path


def lane_unit(lane):
    """Unit tests and wire cases on Linux, with AddressSanitizer and UndefinedBehaviorSanitizer."""
    lane.build("asan")
    with standin(lane) as environment:
        environment["ASAN_OPTIONS"] = "detect_leaks=1:strict_string_checks=1"
        lane.googletest("unit", [ASAN / "bin/velandoc_tests"], env=environment, timeout=900)


def lane_threads(lane):
    """What objects allow to other threads on Linux, with ThreadSanitizer."""
    lane.build("tsan", "velandoc_thread_tests")
    lane.googletest("threads", [BUILD / "tsan/bin/velandoc_thread_tests"], timeout=300)


def lane_wine(lane):
    """The same unit tests and wire cases, built for Windows, under Wine."""
    wine_prefix(lane)
    with standin(lane) as environment:
        lane.googletest("wine", [TOP / "tools/wine", "build/windows/bin/velandoc_tests.exe"], env=environment,
                        timeout=1200)


def lane_registration(lane):
    """regsvr32 in its forms under Wine, and what it leaves in the registry."""
    wine_prefix(lane)
    lane.checklist("registration", [PYTHON, "-B", TOP / "tests/wine/registration_test.py", "--dll",
                                    WINDOWS / "bin/velandoc.dll"], timeout=900)


def lane_module(lane):
    """The library in both homes: exports, needs, a thousand loads, satellites, use without registration."""
    lane.build("native")
    wine_prefix(lane)
    lane.unittest("module", [PYTHON, "-B", TOP / "tests/module/module_test.py", "--native", NATIVE, "--windows",
                             WINDOWS, "--wine", TOP / "tools/wine"], timeout=1200)


def lane_standin(lane):
    """The stand-in server itself."""
    lane.build("native", "velandoc-standin")
    certificates(lane)
    lane.unittest("stand-in", [PYTHON, "-B", TOP / "tests/standin/standin_test.py", "--binary",
                               NATIVE / "bin/velandoc-standin"], timeout=600)


def lane_cli(lane):
    """The command and the script host on Linux: output, exit codes, prompts on a pseudo-terminal."""
    lane.build("native")
    certificates(lane)
    lane.unittest("cli", [PYTHON, "-B", TOP / "tests/cli/cli_test.py", "--binary", NATIVE / "bin/velandoc",
                          "--standin", NATIVE / "bin/velandoc-standin"], timeout=900)


def lane_dialog(lane):
    """The dialog in a real window: keys, mouse, pages that misbehave, and edits up to the server's changed row."""
    module = NATIVE / "lib/libvelandoc-dialog.so"
    if (NATIVE / "build.ninja").exists() and module.name not in (NATIVE / "build.ninja").read_text():
        # What the module needs may have been installed after the folder was made.
        lane.run(["cmake", "--preset", "native"], timeout=300)
    lane.build("native")
    if not module.exists():
        raise LaneFailure("the dialog's module was not built: tools/setup test installs what it needs")
    certificates(lane)
    lane.unittest("dialog", [PYTHON, "-B", TOP / "tests/dialog/dialog_test.py", "--binaries", NATIVE / "bin"],
                  timeout=1500)


def lane_scripts(lane):
    """Script cases in both homes against one stand-in: equal output, equal requests."""
    lane.build("native")
    wine_prefix(lane)
    lane.unittest("scripts", [PYTHON, "-B", TOP / "tests/scripts/compare.py"], timeout=900)


def lane_memory(lane):
    """What transfers of many gigabytes take of memory; VELANDOC_MEMORY_GB=10 for all of a long download."""
    lane.build("native", "velandoc", "hdfs_transfer")
    with standin(lane) as environment:
        port = re.search(r"http=(\d+)", environment["VELANDOC_STANDIN"])[1]
        lane.unittest("memory", [PYTHON, "-B", TOP / "tests/memory/memory_test.py", "--binary",
                                 NATIVE / "bin/hdfs_transfer", "--base-url", f"http://127.0.0.1:{port}"], timeout=900)


def lane_fuzz(lane):
    """Each fuzz target over its corpus and then a fixed number of runs from a fixed seed."""
    lane.build("fuzz", "fuzz_targets")
    targets = sorted((FUZZ / "bin").glob("*_fuzz"))
    if not targets:
        raise LaneFailure("no fuzz target was built")
    for target in targets:
        name = target.name.removesuffix("_fuzz")
        work = LOGS / "fuzz" / name
        shutil.rmtree(work, ignore_errors=True)
        work.mkdir(parents=True)
        lane.check(name, [target, "-seed=1", f"-runs={FUZZ_RUNS}", "-max_len=4096", "-timeout=20", "-rss_limit_mb=4096",
                          f"-artifact_prefix={work}/", work, TOP / "fuzz/corpus" / name], timeout=600)


def lane_hadoop(lane):
    """The HDFS client, in both homes, against Hadoop's own name node and data nodes."""
    # Fetches Hadoop on the first run. Exit code 3 tells that this machine cannot have it, and why.
    code, output = lane.run([PYTHON, "-B", TOP / "tests/hadoop/cluster.py", "--prepare"], timeout=1200)
    if code == 3:
        lane.add("hadoop", "skipped", output.strip().splitlines()[-1])
        return
    if code:
        raise LaneFailure(f"the cluster cannot be prepared\n{tail(output, 30)}")
    lane.build("native", "velandoc", "velandoc_command", "velandoc_script")
    wine_prefix(lane, "velandoc", "velandoc_command", "trust_ca")
    lane.unittest("hadoop", [PYTHON, "-B", TOP / "tests/hadoop/hadoop_test.py"], timeout=900)
    code, output = lane.run([TOP / "run", "--hadoop"], timeout=300)
    lane.add("./run --hadoop ends well", "passed" if code == 0 else "failed", tail(output, 30))
    check_hdfs_job(lane, output)


def check_hdfs_job(lane, output):
    """What ./run says of its file in HDFS, natively and under Wine, whatever the server."""
    for line in ("uploaded:   /user/bob/reports/figures 2026.csv, 7600 bytes, permissions 640",
                 "the copy is equal to the file, and the preview to its first three lines",
                 "deleted:    /user/bob/reports/figures 2026.csv.old",
                 "day 001;1000 %;5+5", "figures 2026.csv", "velandoc hdfs cat streams what the file holds",
                 "velandoc hdfs get brings what the file holds"):
        lane.add(f"{line} (natively and under Wine)", "passed" if output.count(f"\n{line}\n") == 2 else "failed")


def lane_packages(lane):
    """The packages: built, installed in a clean Debian and under Wine, used, upgraded, removed."""
    lane.build("native", "velandoc-standin")
    code, output = lane.run([TOP / "package"], timeout=2400)
    if code:
        raise LaneFailure(f"./package failed\n{tail(output, 30)}")
    lane.add("./package ends well", "passed")
    packages = ["--packages", BUILD / "packages", "--standin", NATIVE / "bin/velandoc-standin"]
    lane.checklist("Windows", [PYTHON, "-B", TOP / "tests/packages/windows_test.py", *packages, "--work",
                               BUILD / "package"], timeout=900)
    lane.checklist("Debian", [PYTHON, "-B", TOP / "tests/packages/debian_test.py", *packages, "--tree",
                              BUILD / "debian-tree"], timeout=1800)


def lane_demo(lane):
    """./run, the README's first command, and what it must print."""
    check_demo(lane, [TOP / "run"])


def check_demo(lane, command):
    code, output = lane.run(command, timeout=2400)
    lane.add("./run ends well", "passed" if code == 0 else "failed", tail(output, 30))
    for line in ("https://docs.example.test/: SharePoint server", "http://docs.example.test/: SharePoint server",
                 "http://www.example.test/: no SharePoint server"):
        lane.add(f"{line} (natively and under Wine)", "passed" if output.count(line) >= 2 else "failed")
    for line in ("before: nobody holds it", "checked out: you hold it (Jane Doe)", "checked in: nobody holds it"):
        lane.add(f"{line} (natively and under Wine)", "passed" if output.count(f"\n{line}\n") == 2 else "failed")
    for line in ("checked out     by you (Jane Doe)", "checked out     by Jane Doe", "Title   Budget and plan",
                 "nothing that is required is missing"):
        lane.add(line, "passed" if f"\n{line}\n" in output else "failed")
    check_hdfs_job(lane, output)


def lane_debian(lane):
    """The other Debian, in a tree of its own: both homes built there without a warning, and tried."""
    folder = BUILD / "debian-other"
    listed = subprocess.run([TOP / "tools/setup", "--list"], capture_output=True, text=True, check=True).stdout
    try:
        release = debian_tree.other_release()
        debian_tree.prepare(folder, release, listed.split())
    except debian_tree.NotPossible as reason:
        lane.add("the other Debian", "skipped", str(reason))
        return
    certificates(lane)
    # The builds lie in the tree, and go with it when it is made anew. The authority is the one of the server out here.
    tree = debian_tree.Tree(folder, [(TOP, TOP, False), (folder / "builds", BUILD, True), (LOGS, LOGS, True),
                                     (CERTIFICATES, CERTIFICATES, True)], TOP)

    product = "velandoc velandoc_command velandoc_tests velandoc_echo"
    targets_of = {"native": f"{product} velandoc_script velandoc-standin", "windows": f"{product} trust_ca"}
    for preset, targets in targets_of.items():
        build = (f"[ -e build/{preset}/build.ninja ] || cmake --preset {preset} {WARNINGS_ARE_ERRORS}; "
                 f"cmake --build build/{preset} --target {targets}")
        if not lane.check(f"{preset} builds without a warning", tree.command("sh", "-ec", build), timeout=2400):
            raise LaneFailure(f"{preset} does not build in the tree of {release}")

    # Wine writes its registry when its server ends, which is later than its programs.
    prefix = ("rm -rf build/wine; tools/wine build/windows/bin/trust_ca.exe build/certificates/ca.pem; "
              "WINEPREFIX=$PWD/build/wine /usr/lib/wine/wineserver -w")
    code, output = lane.run(tree.command("sh", "-ec", prefix), timeout=300)
    if code:
        raise LaneFailure(f"the Wine prefix could not be made\n{tail(output)}")
    with standin(lane) as environment:
        lane.googletest("unit", tree.command("build/native/bin/velandoc_tests", env=environment), timeout=900)
        lane.googletest("wine", tree.command("tools/wine", "build/windows/bin/velandoc_tests.exe", env=environment),
                        timeout=1200)
        lane.checklist("short programs", tree.command(PYTHON, "-B", "tests/support/short_programs.py", NATIVE / "bin",
                                                      SHORT_PROGRAMS, env=environment), timeout=600)
    lane.unittest("cli", tree.command(PYTHON, "-B", "tests/cli/cli_test.py", "--binary", "build/native/bin/velandoc",
                                      "--standin", "build/native/bin/velandoc-standin"), timeout=900)
    lane.unittest("scripts", tree.command(PYTHON, "-B", "tests/scripts/compare.py"), timeout=900)
    check_demo(lane, tree.command("./run"))


LANES = {
    "style": lane_style,
    "standin": lane_standin,
    "unit": lane_unit,
    "threads": lane_threads,
    "cli": lane_cli,
    "wine": lane_wine,
    "registration": lane_registration,
    "dialog": lane_dialog,
    "module": lane_module,
    "scripts": lane_scripts,
    "memory": lane_memory,
    "fuzz": lane_fuzz,
    "hadoop": lane_hadoop,
    "packages": lane_packages,
    "debian": lane_debian,
    "demo": lane_demo,
}


def main():
    parser = argparse.ArgumentParser(prog="./test", description=__doc__.splitlines()[0])
    parser.add_argument("lanes", nargs="*", metavar="LANE")
    parser.add_argument("--list", action="store_true", help="name the lanes and end")
    arguments = parser.parse_args()
    if arguments.list:
        for name, function in LANES.items():
            print(f"{name:14}{function.__doc__}")
        return 0
    unknown = [name for name in arguments.lanes if name not in LANES]
    if unknown:
        print(f"./test: no lane named {', '.join(unknown)}; ./test --list names them", file=sys.stderr)
        return 2

    totals = {"passed": 0, "failed": 0, "skipped": 0}
    summary = []
    for name in arguments.lanes or LANES:
        started = time.monotonic()
        print(f"== {name}: {LANES[name].__doc__}", flush=True)
        lane = Lane(name)
        try:
            LANES[name](lane)
            if not lane.results:
                raise LaneFailure("the lane tested nothing")
        except LaneFailure as failure:
            lane.add(name, "failed", str(failure))
        counts = {state: sum(1 for result in lane.results if result[1] == state) for state in totals}
        for state, count in counts.items():
            totals[state] += count
        for case, state, detail in lane.results:
            if state == "failed":
                print(f"   FAILED {case}\n      " + "\n      ".join(detail.splitlines()), flush=True)
        for case, state, detail in lane.results:
            if state == "skipped":
                print(f"   SKIPPED {case}: {detail}", flush=True)
        summary.append(f"{name:14}{counts['passed']:6} passed{counts['failed']:6} failed"
                       f"{counts['skipped']:6} skipped   {time.monotonic() - started:6.0f} s")
        print("   " + summary[-1], flush=True)
    print("\nSummary")
    for line in summary:
        print("  " + line)
    print(f"{totals['passed']} passed, {totals['failed']} failed, {totals['skipped']} skipped", flush=True)
    return 1 if totals["failed"] else 0


if __name__ == "__main__":
    sys.exit(main())
