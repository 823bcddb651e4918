#!/usr/bin/python3
"""The command and the script host as their users meet them: output, talk, exit codes, prompts.

cli_test.py --binary build/native/bin/velandoc --standin build/native/bin/velandoc-standin [unittest's own arguments]

The script host, velandoc-script, is looked for beside the command.
"""

import argparse
import pathlib
import sys
import unittest

import support
# Loaded here for the test loader to find.
from command_cases import *  # noqa: F401,F403
from doc_cases import *  # noqa: F401,F403
from edit_cases import *  # noqa: F401,F403
from hdfs_cases import *  # noqa: F401,F403
from prompt_cases import *  # noqa: F401,F403
from registration_cases import *  # noqa: F401,F403
from script_cases import *  # noqa: F401,F403


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--binary", required=True, type=pathlib.Path)
    parser.add_argument("--standin", required=True, type=pathlib.Path)
    arguments, rest = parser.parse_known_args()
    support.command = arguments.binary.resolve()
    support.script_host = support.command.parent / "velandoc-script"
    support.standin = arguments.standin.resolve()
    support.server = support.Server()
    try:
        program = unittest.main(argv=[sys.argv[0], *rest], verbosity=2, exit=False)
    finally:
        support.server.stop()
    return 0 if program.result.wasSuccessful() else 1


if __name__ == "__main__":
    sys.exit(main())
