"""One lane of ./test: its log, its results, and how it runs the programs that are its tests.

A result is (name, state, detail) with a state of 'passed', 'failed' or 'skipped'. Output of the programs goes to
build/test/LANE.log.
"""

import contextlib
import json
import os
import pathlib
import re
import signal
import subprocess
import tempfile
import threading

TOP = pathlib.Path(__file__).resolve().parent.parent.parent
BUILD = TOP / "build"
LOGS = BUILD / "test"
NICENESS = "10"
NOT_POSSIBLE = 77  # the exit code of a checklist whose rest cannot be run here; its last line says why

running = set()  # process groups that have not ended yet; end_all() kills them when ./test itself is interrupted


class LaneFailure(Exception):
    """The lane could not be run at all: counts as one failed test."""


def end_all():
    for group in list(running):
        kill(group)


def kill(group):
    try:
        os.killpg(group, signal.SIGKILL)
    except ProcessLookupError:
        pass


class Programs:
    """Runs programs with their output in a log, and adds up the processor time that they take."""

    def __init__(self, name, nice=False):
        self.name = name
        # Builds are nice: they fill the time that tests leave, and no test waits for them.
        self.nice = nice
        self.environment = {}
        self.processor_seconds = 0.0
        LOGS.mkdir(parents=True, exist_ok=True)
        self.log = open(LOGS / f"{name}.log", "w", encoding="utf-8", errors="replace")

    def run(self, command, *, env=None, timeout=600, cwd=TOP):
        """Runs a program to its end; its output goes to the log. Returns (exit code, output)."""
        command = [str(part) for part in command]
        self.log.write(f"$ {' '.join(command)}\n")
        self.log.flush()
        environment = dict(os.environ)
        environment.update({key: str(value) for key, value in {**self.environment, **(env or {})}.items()})
        prefix = ["nice", "-n", NICENESS] if self.nice else []
        process = subprocess.Popen([*prefix, *command], cwd=cwd, env=environment, stdin=subprocess.DEVNULL,
                                   stdout=subprocess.PIPE, stderr=subprocess.STDOUT, start_new_session=True)
        running.add(process.pid)
        if self.nice:
            # Where Linux shares the processors out by sessions, the session's own niceness counts.
            with contextlib.suppress(OSError):
                pathlib.Path(f"/proc/{process.pid}/autogroup").write_text(NICENESS, encoding="ascii")
        late = threading.Event()
        timer = threading.Timer(timeout, lambda: (late.set(), kill(process.pid)))
        timer.start()
        with process.stdout:
            text = process.stdout.read().decode("utf-8", "replace")
        _, status, usage = os.wait4(process.pid, 0)
        timer.cancel()
        running.discard(process.pid)
        process.returncode = os.waitstatus_to_exitcode(status)
        self.processor_seconds += usage.ru_utime + usage.ru_stime
        if late.is_set():
            text += f"\ntimed out after {timeout} s\n"
        self.log.write(text + f"\n[exit code {process.returncode}]\n")
        self.log.flush()
        return process.returncode, text


class Lane(Programs):
    """A lane's results. Programs of a lane keep their temporary files in a folder that ends with the lane."""

    def __init__(self, name, nice=False):
        super().__init__(name, nice)
        self.results = []
        self.folder = tempfile.TemporaryDirectory(prefix=f"velandoc-{name}-", ignore_cleanup_errors=True)
        os.chmod(self.folder.name, 0o755)  # apt's own user looks in
        self.environment["TMPDIR"] = self.folder.name

    def end(self):
        self.folder.cleanup()
        self.log.close()

    def add(self, name, state, detail=""):
        self.results.append((name, state, detail))

    def count(self, state):
        return sum(1 for result in self.results if result[1] == state)

    def check(self, name, command, **options):
        """A program whose exit code 0 is the test."""
        code, output = self.run(command, **options)
        self.add(name, "passed" if code == 0 else "failed", tail(output) if code else "")
        return code == 0

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


def tail(text, lines=15):
    return "\n".join(text.rstrip().splitlines()[-lines:])
