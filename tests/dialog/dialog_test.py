#!/usr/bin/python3
"""The dialog in a real window: on a display of its own, with a window manager, driven by keys and mouse.

dialog_test.py --binaries DIR [NAME...]     NAME as unittest takes it: WindowCases, KeyCases.test_...
"""

import argparse
import pathlib
import sys
import unittest

import dialog_support as support
from display import Display
from edit_cases import *  # noqa: F401,F403
from module_cases import *  # noqa: F401,F403


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--binaries", required=True, type=pathlib.Path)
    parser.add_argument("names", nargs="*")
    arguments = parser.parse_args()
    support.binaries = arguments.binaries.resolve()
    support.display = Display()
    try:
        unittest.main(argv=["dialog_test.py", "-v", *arguments.names])
    finally:
        support.display.close()


if __name__ == "__main__":
    sys.exit(main())
