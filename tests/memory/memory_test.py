"""What a transfer takes of memory: not more than 32 MiB, however long the file is.

Each operation of both HDFS clients runs in a process of its own, on a file of 64 MiB and on a long one, against the
stand-in server, which makes up the bytes it sends and drops those it gets. The process tells its resident peak; the
peaks of the two must not differ.

A stream reads 10 GB. A download's 10 GB would be written to the disk, so it is 2 GB unless VELANDOC_MEMORY_GB says
more. An upload is as long as the interface's 32 bits can say.
"""

import argparse
import contextlib
import os
import pathlib
import re
import subprocess
import sys
import tempfile
import unittest

GB = 10**9
SHORT = 64 * 2**20
LARGEST_UPLOAD = 2**32 - 1
LIMIT_KIB = 32 * 1024
# What a C library may round a buffer up to, and pages that the system brings in as it likes.
SLACK_KIB = 1024
PROGIDS = ("Velantrica.HdfsClient", "Velantrica.HdfsWinHttpClient")
LINE = 64

options = None


class Memory(unittest.TestCase):
    def run_one(self, progid, path, *arguments):
        """(bytes, peak in KiB, all of the output)"""
        result = subprocess.run([options.binary, progid, options.base_url, path, *map(str, arguments)],
                                capture_output=True, text=True, timeout=600, check=False)
        self.assertEqual(result.returncode, 0, result.stderr)
        found = re.search(r"bytes (\d+), peak (\d+) KiB\n$", result.stdout)
        self.assertIsNotNone(found, result.stdout)
        return int(found[1]), int(found[2]), result.stdout

    def check_flat(self, progid, operation, length, run):
        peaks = []
        for size in (SHORT, length):
            done, peak, _ = run(size)
            self.assertEqual(done, size)
            peaks.append(peak)
        print(f"{progid} {operation}: {peaks[0]} KiB for {SHORT} bytes, {peaks[1]} KiB for {length} bytes")
        self.assertLess(peaks[1], LIMIT_KIB)
        self.assertLess(peaks[1], peaks[0] + SLACK_KIB, "it grows with the file")

    def test_a_streams_memory_is_flat(self):
        for progid in PROGIDS:
            self.check_flat(progid, "Stream", 10 * GB,
                            lambda size, progid=progid: self.run_one(progid, f"/.generated/bytes/{size}/f", "stream"))

    def test_a_downloads_memory_is_flat(self):
        length = int(os.environ.get("VELANDOC_MEMORY_GB", "2")) * GB
        for progid in PROGIDS:
            with tempfile.TemporaryDirectory() as folder:
                local = os.path.join(folder, "f")

                def run(size, progid=progid, local=local):
                    with contextlib.suppress(FileNotFoundError):
                        os.unlink(local)
                    return self.run_one(progid, f"/.generated/bytes/{size}/f", "download", local)

                self.check_flat(progid, "Download", length, run)

    def test_an_uploads_memory_is_flat(self):
        with tempfile.TemporaryDirectory() as folder:
            local = pathlib.Path(folder, "f")

            for progid in PROGIDS:

                def run(size, progid=progid):
                    with open(local, "wb") as file:
                        file.truncate(size)
                    return self.run_one(progid, f"/.sink/{progid}-{size}", "upload", local)

                self.check_flat(progid, "Upload", LARGEST_UPLOAD, run)

    def test_a_preview_takes_what_it_shows(self):
        for progid in PROGIDS:
            for lines in (1, 511, 512, 513, 1000):
                size, peak, output = self.run_one(progid, f"/.generated/lines/{10 * GB}/f", "preview", lines)
                os.unlink(output.split(" ", 1)[0])
                self.assertEqual(size, 3 + lines * LINE - 1)
                self.assertLess(peak, LIMIT_KIB)
            print(f"{progid} DownloadPreview: {peak} KiB for {lines} lines of {10 * GB} bytes")


def main():
    global options
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--binary", required=True, help="hdfs_transfer")
    parser.add_argument("--base-url", required=True, help="the stand-in server's")
    options, rest = parser.parse_known_args()
    unittest.main(argv=[sys.argv[0], *rest], verbosity=2)


if __name__ == "__main__":
    main()
