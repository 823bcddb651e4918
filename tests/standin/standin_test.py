#!/usr/bin/python3
"""Tests of the stand-in server itself, with raw sockets, ssl and the curl command.

standin_test.py --binary build/native/bin/velandoc-standin [unittest's own arguments]
"""

import argparse
import os
import sys
import tempfile
import unittest

import support

# The cases are found by unittest in this module's names.
from authentication_cases import *
from behaviour_cases import *
from certificate_cases import *
from process_cases import *
from rpc_cases import *
from sharepoint_cases import *
from site_cases import *
from webhdfs_cases import *
from wire_cases import *


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--binary", required=True, help="the velandoc-standin to test")
    options, rest = parser.parse_known_args()
    support.binary = os.path.abspath(options.binary)
    with tempfile.TemporaryDirectory() as folder:
        support.certificates = os.path.join(folder, "certificates")
        support.make_certificates()
        result = unittest.main(argv=[sys.argv[0]] + rest, exit=False).result
    sys.exit(0 if result.wasSuccessful() and result.testsRun > 0 else 1)


if __name__ == "__main__":
    main()
