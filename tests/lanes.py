"""The lanes of ./test: what each needs, and what it runs.

A lane is a function that adds results to its Lane (tests/support/lane.py); tests/support/schedule.py decides when it runs.
Everything runs on loopback and under a time limit. Several lanes run at once, so each has a Wine prefix and a folder for
temporary files of its own.
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
import tidy  # noqa: E402
from lane import LOGS, LaneFailure, end_all, tail  # noqa: E402
from schedule import STATES, LanePlan, Schedule  # noqa: E402
from stand_in import StandIn  # noqa: E402

BUILD = TOP / "build"
CERTIFICATES = BUILD / "certificates"
NATIVE = BUILD / "native"
ASAN = BUILD / "asan"
WINDOWS = BUILD / "windows"
FUZZ = BUILD / "fuzz"
PYTHON = "/usr/bin/python3"
FUZZ_RUNS = 20000
SHORT_PROGRAMS = 300
WARNINGS_ARE_ERRORS = "-DCMAKE_COMPILE_WARNING_AS_ERROR=ON"


# --- the builds -------------------------------------------------------------------------------------------------------


def warnings_are_errors(directory):
    """Whether ./test configured the build folder; ./run and plain cmake leave warnings alone."""
    cache = (directory / "CMakeCache.txt").read_text(encoding="utf-8")
    return re.search(r"^CMAKE_COMPILE_WARNING_AS_ERROR:\w+=ON$", cache, re.MULTILINE) is not None


def made(preset, *targets):
    """A build of a preset's targets; of everything if none is named."""
    def build(programs):
        folder = BUILD / preset
        if not (folder / "build.ninja").exists() or not warnings_are_errors(folder):
            code, output = programs.run(["cmake", "--fresh", "--preset", preset, WARNINGS_ARE_ERRORS], timeout=300)
            if code:
                raise LaneFailure(f"cmake --preset {preset} failed\n{tail(output)}")
        command = ["cmake", "--build", folder, *(["--target", *targets] if targets else [])]
        code, output = programs.run(command, timeout=2400)
        if code:
            raise LaneFailure(f"building {preset} failed\n{tail(output, 40)}")
    return build


def make_headers(programs):
    for preset in ("native", "windows"):
        made(preset, "velandoc_headers")(programs)


def make_dialog(programs):
    """All of the native build, with the dialog's module."""
    ninja = NATIVE / "build.ninja"
    if ninja.exists() and "libvelandoc-dialog.so" not in ninja.read_text(encoding="utf-8"):
        # What the module needs may have been installed after the folder was made.
        programs.run(["cmake", "--fresh", "--preset", "native", WARNINGS_ARE_ERRORS], timeout=300)
    made("native")(programs)


def make_packages(programs):
    code, output = programs.run([TOP / "package"], timeout=2400)
    if code:
        raise LaneFailure(f"./package failed\n{tail(output, 30)}")


def make_certificates(programs):
    code, output = programs.run([TOP / "standin/make-certificates", CERTIFICATES], timeout=120)
    if code:
        raise LaneFailure(f"making certificates failed\n{tail(output)}")


# Made in this order, so that long lanes start early.
BUILDS = {
    "certificates": make_certificates,
    "stand-in": made("native", "velandoc-standin"),
    "linux": made("native", "velandoc", "velandoc_command", "velandoc_script", "hdfs_transfer"),
    "linux-all": make_dialog,
    "headers": make_headers,
    "windows-all": made("windows"),
    # After the builds in the same folders, which make warnings errors there: ./package takes a folder as it is.
    "packages": make_packages,
    "fuzz": made("fuzz", "fuzz_targets"),
    "unit": made("asan", "velandoc_tests"),
    "threads": made("tsan", "velandoc_thread_tests"),
}


# --- what lanes have in common ----------------------------------------------------------------------------------------


@contextlib.contextmanager
def standin(lane):
    """The stand-in server for the length of a lane; gives the environment that tells tests where it is."""
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


@contextlib.contextmanager
def wine_prefix(lane):
    """A fresh Wine prefix for the length of a lane, which trusts the test authority."""
    server = next(p for p in ("/usr/lib/wine/wineserver64", "/usr/lib/wine/wineserver")
                  if os.path.exists(p))
    prefix = LOGS / f"wine-{lane.name}"

    def remove():
        if prefix.exists():
            lane.run([server, "-k"], env={"WINEPREFIX": prefix}, timeout=30)
            shutil.rmtree(prefix, ignore_errors=True)

    remove()
    lane.environment["VELANDOC_WINE_PREFIX"] = prefix
    code, output = lane.run([TOP / "tools/wine", "build/windows/bin/trust_ca.exe",
                             "build/certificates/ca.pem"], timeout=180)
    if code:
        raise LaneFailure(f"the Wine prefix could not be made\n{tail(output)}")
    try:
        yield
    finally:
        remove()


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

    late = []
    for name in sources(".cpp"):
        header = TOP / re.sub(r"\.cpp$", ".h", name)
        first = re.search(r"^\s*#\s*include\s+(\S+)", (TOP / name).read_text(), re.MULTILINE)
        if header.exists() and first[1] != f'"{header.relative_to(TOP)}"':
            late.append(name)
    lane.add("each source file includes its own header first", "failed" if late else "passed", "\n".join(late))
    # What is left of the headers are those that the build `headers` compiles.
    for home in ("native", "windows"):
        lane.add(f"each header compiles alone ({home})", "passed")

    tidy.check(lane, NATIVE, re.compile(rf"({'|'.join(LAYERS)}|standin)/"))


def lane_unit(lane):
    """Unit tests and wire cases on Linux, with AddressSanitizer and UndefinedBehaviorSanitizer."""
    with standin(lane) as environment:
        environment["ASAN_OPTIONS"] = "detect_leaks=1:strict_string_checks=1"
        lane.googletest("unit", [ASAN / "bin/velandoc_tests"], env=environment, timeout=900)


def lane_threads(lane):
    """What objects allow to other threads on Linux, with ThreadSanitizer."""
    lane.googletest("threads", [BUILD / "tsan/bin/velandoc_thread_tests"], timeout=300)


def lane_wine(lane):
    """The same unit tests and wire cases, built for Windows, under Wine."""
    with wine_prefix(lane), standin(lane) as environment:
        lane.googletest("wine", [TOP / "tools/wine", "build/windows/bin/velandoc_tests.exe"], env=environment,
                        timeout=1200)


def lane_registration(lane):
    """regsvr32 in its forms under Wine, and what it leaves in the registry."""
    lane.checklist("registration", [PYTHON, "-B", TOP / "tests/wine/registration_test.py", "--dll",
                                    WINDOWS / "bin/velandoc.dll"], timeout=900)


def lane_module(lane):
    """The library in both homes: exports, needs, a thousand loads, satellites, use without registration."""
    with wine_prefix(lane):
        lane.unittest("module", [PYTHON, "-B", TOP / "tests/module/module_test.py", "--native", NATIVE, "--windows",
                                 WINDOWS, "--wine", TOP / "tools/wine"], timeout=1200)


def lane_standin(lane):
    """The stand-in server itself."""
    lane.unittest("stand-in", [PYTHON, "-B", TOP / "tests/standin/standin_test.py", "--binary",
                               NATIVE / "bin/velandoc-standin"], timeout=600)


def lane_cli(lane):
    """The command and the script host on Linux: output, exit codes, prompts on a pseudo-terminal."""
    lane.unittest("cli", [PYTHON, "-B", TOP / "tests/cli/cli_test.py", "--binary", NATIVE / "bin/velandoc",
                          "--standin", NATIVE / "bin/velandoc-standin"], timeout=900)


def lane_dialog(lane):
    """The dialog in a real window: keys, mouse, pages that misbehave, and edits up to the server's changed row."""
    module = NATIVE / "lib/libvelandoc-dialog.so"
    if not module.exists():
        raise LaneFailure("the dialog's module was not built: tools/setup test installs what it needs")
    lane.unittest("dialog", [PYTHON, "-B", TOP / "tests/dialog/dialog_test.py", "--binaries", NATIVE / "bin"],
                  timeout=1500)


def lane_scripts(lane):
    """Script cases in both homes against one stand-in: equal output, equal requests."""
    with wine_prefix(lane):
        lane.unittest("scripts", [PYTHON, "-B", TOP / "tests/scripts/compare.py"], timeout=900)


def lane_memory(lane):
    """What transfers of many gigabytes take of memory; VELANDOC_MEMORY_GB=10 for all of a long download."""
    with standin(lane) as environment:
        port = re.search(r"http=(\d+)", environment["VELANDOC_STANDIN"])[1]
        lane.unittest("memory", [PYTHON, "-B", TOP / "tests/memory/memory_test.py", "--binary",
                                 NATIVE / "bin/hdfs_transfer", "--base-url", f"http://127.0.0.1:{port}"], timeout=900)


def lane_fuzz(lane):
    """Each fuzz target over its corpus and then a fixed number of runs from a fixed seed."""
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
    with wine_prefix(lane):
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
    lane.add("./package ends well", "passed")
    packages = ["--packages", BUILD / "packages", "--standin", NATIVE / "bin/velandoc-standin"]
    lane.checklist("Windows", [PYTHON, "-B", TOP / "tests/packages/windows_test.py", *packages, "--work",
                               BUILD / "package"], timeout=900)
    lane.checklist("Debian", [PYTHON, "-B", TOP / "tests/packages/debian_test.py", *packages, "--tree",
                              BUILD / "debian-tree"], timeout=1800)


def lane_demo(lane):
    """./run, the README's first command, and what it must print."""
    with wine_prefix(lane):
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


# The groups of tools/setup that lanes have in common.
LINUX = ("linux", "tests")
BOTH = (*LINUX, "windows")
# The last builds in the folders in which ./run builds: two builds must not run in one folder at once.
BUILT = ("linux-all", "headers", "windows-all")

# Started in this order, once their builds are there.
LANES = {
    "debian": LanePlan(lane_debian, (*LINUX, "tree"), ("certificates", "stand-in"), nice=True,
                       daily=False),
    "standin": LanePlan(lane_standin, LINUX, ("certificates", "stand-in")),
    "hadoop": LanePlan(lane_hadoop, (*BOTH, "hadoop"), ("certificates", "stand-in", *BUILT), turn="./run"),
    "cli": LanePlan(lane_cli, (*LINUX, "dialog", "display"), ("certificates", "stand-in", "linux-all")),
    "dialog": LanePlan(lane_dialog, (*LINUX, "dialog", "display"), ("certificates", "stand-in", "linux-all")),
    "memory": LanePlan(lane_memory, LINUX, ("certificates", "stand-in", "linux")),
    "style": LanePlan(lane_style, (*BOTH, "dialog", "style"), ("linux-all", "headers"), nice=True),
    "packages": LanePlan(lane_packages, (*BOTH, "dialog", "package", "tree"),
                         ("certificates", "stand-in", "packages")),
    "demo": LanePlan(lane_demo, BOTH, ("certificates", "stand-in", *BUILT), turn="./run"),
    "registration": LanePlan(lane_registration, BOTH, ("windows-all",)),
    "wine": LanePlan(lane_wine, BOTH, ("certificates", "stand-in", "windows-all")),
    "module": LanePlan(lane_module, BOTH, ("certificates", "linux-all", "windows-all")),
    "scripts": LanePlan(lane_scripts, BOTH, ("certificates", "linux-all", "windows-all")),
    "fuzz": LanePlan(lane_fuzz, (*LINUX, "fuzz"), ("fuzz",), nice=True),
    "unit": LanePlan(lane_unit, LINUX, ("certificates", "stand-in", "unit")),
    "threads": LanePlan(lane_threads, LINUX, ("threads",)),
}


def say(lane, line):
    """What came of a lane, when it ends. Several run at once: its name stands in the line that opens it."""
    print(f"== {line}", flush=True)
    for state in ("failed", "skipped"):
        for case, _, detail in (result for result in lane.results if result[1] == state):
            print(f"   {state.upper()} {case}\n      " + "\n      ".join(detail.splitlines()), flush=True)


def main():
    parser = argparse.ArgumentParser(prog="./test", description=__doc__.splitlines()[0])
    parser.add_argument("lanes", nargs="*", metavar="LANE")
    parser.add_argument("--all", action="store_true", help="run the lanes too that take long, not only the daily ones")
    parser.add_argument("--list", action="store_true", help="name the lanes and end")
    parser.add_argument("--packages", action="store_true", help="name the groups of tools/setup that they need and end")
    arguments = parser.parse_args()
    if arguments.list:
        for name, plan in LANES.items():
            print(f"{name:14}{plan.run.__doc__}{'' if plan.daily else ' (--all)'}")
        return 0
    unknown = [name for name in arguments.lanes if name not in LANES]
    if unknown:
        print(f"./test: no lane named {', '.join(unknown)}; ./test --list names them", file=sys.stderr)
        return 2
    def is_asked(name):
        return name in arguments.lanes or (not arguments.lanes and (arguments.all or LANES[name].daily))

    plans = {name: plan for name, plan in LANES.items() if is_asked(name)}
    if arguments.packages:
        print(*dict.fromkeys(group for plan in plans.values() for group in plan.packages))
        return 0

    signal.signal(signal.SIGTERM, lambda *_: sys.exit(143))
    started = time.monotonic()
    schedule = Schedule(plans, BUILDS, say)
    try:
        schedule.run()
    finally:
        end_all()  # which leaves something only if ./test is interrupted
    print("\nBuilds (at a low priority, beside the lanes)")
    for name in schedule.builds:
        print("  " + schedule.build_line(name))
    print("Lanes")
    for name in plans:
        print("  " + schedule.line(name))
    totals = {state: sum(lane.count(state) for lane, _ in schedule.lanes.values()) for state in STATES}
    skipped = [name for name in plans if schedule.lanes[name][0].count("skipped")]
    if skipped:
        print(f"Not all could be tried here: {', '.join(skipped)}")
    print(f"In {(time.monotonic() - started) / 60:.1f} minutes:")
    print(", ".join(f"{count} {state}" for state, count in totals.items()), flush=True)
    return 1 if totals["failed"] else 0


if __name__ == "__main__":
    sys.exit(main())
