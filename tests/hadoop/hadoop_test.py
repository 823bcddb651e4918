#!/usr/bin/python3
"""The HDFS client against Hadoop's own name node and data nodes: every case natively and by cscript with the DLL under Wine.

hadoop_test.py [unittest's own arguments]

Needs build/native, build/windows and a Wine prefix that trusts the test authority; the lane `hadoop` of ./test sees to
them, and skips where there is no cluster to be had (cluster.py).
"""

import sys
import unittest

import cluster
import command_cases
import data_node_cases
import fact_cases
import failure_cases
import operation_cases
import run_case
import support
import winhttp_cases

MODULES = (operation_cases, failure_cases, winhttp_cases, command_cases, fact_cases, data_node_cases)


def load_tests(loader, _tests, _pattern):
    suite = unittest.TestSuite()
    for module in MODULES:
        for value in vars(module).values():
            if not isinstance(value, type) or value.__module__ != module.__name__:
                continue
            if issubclass(value, support.Case):
                suite.addTests(support.in_all_homes(value))
            elif issubclass(value, unittest.TestCase):
                suite.addTests(loader.loadTestsFromTestCase(value))
    return suite


def main():
    wine = support.Wine()
    dll = run_case.windows_path(cluster.TOP / "build/windows/bin/velandoc.dll")
    wine.must("regsvr32", "/s", dll)
    # Other lanes leave their server there as the proxy.
    wine.must("reg", "add", run_case.WineHome.SETTINGS, "/v", "ProxyEnable", "/t", "REG_DWORD", "/d", "0", "/f")
    with cluster.Cluster(cluster.TOP / "build/hadoop/cluster.log") as support.running:
        told = support.running.told
        print(f"Hadoop {told['version']} on Java {told['java']}", flush=True)
        return not unittest.main(verbosity=2, exit=False).result.wasSuccessful()


if __name__ == "__main__":
    sys.exit(main())
