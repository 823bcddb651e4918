#!/usr/bin/python3
"""Hundreds of short programs, each with one request: a program that dies at its end may do so in one of twenty runs.

    short_programs.py BINARIES RUNS

Needs the environment of a stand-in server (VELANDOC_STANDIN, SSL_CERT_FILE). One line a check, 'ok WHAT' or 'FAILED
WHAT'; exit code 0 if every check holds.
"""

import collections
import os
import re
import subprocess
import sys

URLS = ("https://docs.example.test/", "http://docs.example.test/")
SECONDS = 60


def endings(command, environment, runs):
    """How often the program ended how: exit code (negative for a signal), output, and words of failure."""
    counts = collections.Counter()
    for _ in range(runs):
        done = subprocess.run(command, env=environment, stdin=subprocess.DEVNULL, capture_output=True, text=True,
                              timeout=SECONDS, check=False)
        counts[done.returncode, done.stdout, done.stderr] += 1
    return counts


def main():
    binaries, runs = sys.argv[1], int(sys.argv[2])
    proxy = "http://127.0.0.1:" + re.search(r"\bhttp=(\d+)", os.environ["VELANDOC_STANDIN"])[1]
    environment = {**os.environ, "http_proxy": proxy, "https_proxy": proxy, "no_proxy": "", "VELANDOC_NO_INPUT": "1"}
    failed = 0
    for url in URLS:
        counts = endings([f"{binaries}/velandoc", "probe", url], environment, runs)
        holds = counts == {(0, f"{url}: SharePoint server\n", ""): runs}
        failed += not holds
        print(f"{'ok     ' if holds else 'FAILED '} {runs} runs of velandoc probe {url} end well", flush=True)
        for ending, times in counts.items() if not holds else ():
            print(f"        {times} times {ending}")
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
