#!/usr/bin/python3
"""How long the dialog takes, as a table: dialog_bench.py BINARIES. Each round is a process of its own, so the first dialog
that loads the module is what counts."""

import pathlib
import statistics
import subprocess
import sys
import tempfile

TOP = pathlib.Path(__file__).resolve().parent.parent
sys.path.insert(0, str(TOP / "tests/dialog"))

import form_page  # noqa: E402
from display import Display  # noqa: E402

ROUNDS = 9
CALLS = 500
ROWS = (("shown", "from the call of `DialogBoxParamW` to the window on the screen", 500),
        ("loaded", "from the call to the page's document", None),
        ("each", "`GetIDsOfNames` and `Invoke` of `GetFieldValue`", 2))


def main():
    driver = pathlib.Path(sys.argv[1]).resolve() / "dialog_driver"
    display = Display()
    times = {name: [] for name, _, _ in ROWS}
    try:
        with tempfile.TemporaryDirectory() as folder:
            fields = [form_page.text(f"Column{i}", "A value of usual length") for i in range(20)]
            page = form_page.write(pathlib.Path(folder) / "form.htm", *fields)
            environment = dict(display.environment, HOME=folder, XDG_CACHE_HOME=folder)
            for _ in range(ROUNDS):
                output = subprocess.run([driver, "--call", "GetFieldValue,Column7", "--measure", str(CALLS), page],
                                        env=environment, stdout=subprocess.PIPE, timeout=120, check=True, text=True).stdout
                for line in output.splitlines():
                    name, _, value = line.partition(" ")
                    if name in times:
                        times[name].append(float(value))
    finally:
        display.close()
    print(f"| the dialog, 20 fields, medians of {ROUNDS} processes | time | goal |\n| --- | --- | --- |")
    for name, words, goal in ROWS:
        if len(times[name]) != ROUNDS:
            sys.exit(f"dialog_bench: {name} was not told in every round")
        print(f"| {words} | {statistics.median(times[name]):.3g} ms | {f'{goal} ms' if goal else ''} |")


if __name__ == "__main__":
    main()
