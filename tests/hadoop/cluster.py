#!/usr/bin/python3
"""Starts a real HDFS of one name node and two data nodes on loopback (MiniCluster.java) and speaks to it.

cluster.py --prepare          fetches and compiles what is missing, and starts nothing
cluster.py PROGRAM [ARGS]     runs a program beside a cluster, with its URLs in VELANDOC_HADOOP_HTTP and _HTTPS

Exit code 3: there can be no cluster on this machine, and the words on standard error say why.

What it needs besides the machine's packages comes from Maven Central through mvn, as mvn is set up on the machine, and
stays where mvn keeps it; the class path, the compiled class and the key store are kept in build/hadoop. Where something
of that cannot be had, Missing tells what.
"""

import json
import os
import pathlib
import shutil
import signal
import subprocess
import sys
import tempfile
import threading

FOLDER = pathlib.Path(__file__).resolve().parent
TOP = FOLDER.parent.parent
BUILD = TOP / "build/hadoop"
CERTIFICATES = TOP / "build/certificates"
HEAP = "512m"
SECONDS_TO_START = 300
SECONDS_TO_ANSWER = 120
SECONDS_TO_FETCH = 900
MOST_SECONDS = 900  # of a cluster's life
# It protects a key that is made on this machine for tests; Java wants a password for every key store.
STORE_PASSWORD = "velandoc"


class Missing(Exception):
    """Why there can be no cluster on this machine: a reason to skip, not a failure."""


def class_path():
    """What javac and java take, fetched on the first call and whenever pom.xml changed."""
    for program, package in (("java", "default-jdk-headless"), ("javac", "default-jdk-headless"), ("mvn", "maven")):
        if shutil.which(program) is None:
            raise Missing(f"there is no {program} (Debian's package {package})")
    BUILD.mkdir(parents=True, exist_ok=True)
    kept, pom = BUILD / "class-path.txt", FOLDER / "pom.xml"
    if kept.exists() and kept.stat().st_mtime > pom.stat().st_mtime:
        path = kept.read_text(encoding="utf-8").strip()
        if all(os.path.exists(jar) for jar in path.split(":")):
            return path
    kept.unlink(missing_ok=True)
    try:
        done = subprocess.run(["mvn", "-B", "-ntp", "-q", "-f", pom, "dependency:build-classpath",
                               f"-Dmdep.outputFile={kept}"], stdin=subprocess.DEVNULL, capture_output=True,
                              text=True, timeout=SECONDS_TO_FETCH, check=False)
    except subprocess.TimeoutExpired:
        raise Missing(f"mvn did not bring Hadoop's mini cluster within {SECONDS_TO_FETCH} s") from None
    if done.returncode != 0 or not kept.exists():
        words = [line for line in done.stdout.splitlines() if line.startswith("[ERROR]")]
        raise Missing("mvn cannot bring Hadoop's mini cluster: " + (words[0] if words else done.stderr[-300:]))
    return kept.read_text(encoding="utf-8").strip()


def compiled(path):
    """The folder of the compiled class. A class that does not compile is a failure, not something missing."""
    classes, source = BUILD / "classes", FOLDER / "MiniCluster.java"
    made = classes / "MiniCluster.class"
    if not made.exists() or made.stat().st_mtime <= source.stat().st_mtime:
        classes.mkdir(parents=True, exist_ok=True)
        # The jars' own lists of neighbours name some that are not there.
        subprocess.run(["javac", "-Xlint:all,-path", "-Werror", "-encoding", "UTF-8", "-d", classes, source],
                       env={**os.environ, "CLASSPATH": path}, stdin=subprocess.DEVNULL, check=True, timeout=300)
    return classes


def settings_folder():
    """The certificate of the stand-in server as a Java key store, and the file that leads Hadoop to it."""
    subprocess.run([TOP / "standin/make-certificates", CERTIFICATES], stdin=subprocess.DEVNULL, check=True, timeout=120)
    settings = BUILD / "settings"
    settings.mkdir(parents=True, exist_ok=True)
    store = settings / "server.p12"
    subprocess.run(["openssl", "pkcs12", "-export", "-in", CERTIFICATES / "good.pem", "-inkey",
                    CERTIFICATES / "good.key", "-certfile", CERTIFICATES / "ca.pem", "-out", store, "-passout",
                    f"pass:{STORE_PASSWORD}"], stdin=subprocess.DEVNULL, check=True, timeout=60)
    values = {"keystore.location": store, "keystore.type": "pkcs12", "keystore.password": STORE_PASSWORD,
              "keystore.keypassword": STORE_PASSWORD}
    properties = "".join(f"  <property><name>ssl.server.{name}</name><value>{value}</value></property>\n"
                         for name, value in values.items())
    (settings / "ssl-server.xml").write_text(f"<configuration>\n{properties}</configuration>\n", encoding="utf-8")
    (settings / "log4j.properties").write_text(
        "log4j.rootLogger=WARN, err\nlog4j.appender.err=org.apache.log4j.ConsoleAppender\n"
        "log4j.appender.err.target=System.err\nlog4j.appender.err.layout=org.apache.log4j.PatternLayout\n"
        "log4j.appender.err.layout.ConversionPattern=%d{ABSOLUTE} %p %c{1}: %m%n\n", encoding="utf-8")
    return settings


class Cluster:
    """A running cluster; a context manager, whose end ends the process too."""

    def __init__(self, log, max_seconds=MOST_SECONDS):
        path = class_path()
        classes, settings = compiled(path), settings_folder()
        self.folder = tempfile.TemporaryDirectory(prefix="velandoc-hadoop-")
        self.log = open(log, "wb")
        # Hadoop looks into classes that Java closes by default, from version 17 on.
        opened = [f"--add-opens=java.base/{package}=ALL-UNNAMED" for package in ("java.lang", "java.util", "java.nio")]
        self.process = subprocess.Popen(
            ["java", f"-Xmx{HEAP}", "-XX:MaxDirectMemorySize=256m", "-XX:+UseSerialGC", *opened, "MiniCluster",
             self.folder.name, str(max_seconds)],
            stdin=subprocess.PIPE, stdout=subprocess.PIPE, stderr=self.log, start_new_session=True,
            env={**os.environ, "HADOOP_USER_NAME": "hdfs", "CLASSPATH": f"{settings}:{classes}:{path}"}, cwd=self.folder.name)
        try:
            self.told = self.read(SECONDS_TO_START)
        except BaseException:  # an interrupt of the keyboard among them
            self.kill()
            self.stop()
            raise
        self.http = f"http://localhost:{self.told['http']}"
        self.https = f"https://localhost:{self.told['https']}"

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.stop()

    def read(self, seconds):
        """A line of the process. One that does not come in time ends the process, so that the wait ends."""
        watch = threading.Timer(seconds, self.kill)
        watch.daemon = True
        watch.start()
        try:
            line = self.process.stdout.readline()
        finally:
            watch.cancel()
        if not line:
            raise RuntimeError(f"the cluster gave no answer; its words are in {self.log.name}")
        return json.loads(line)

    def ask(self, do, **values):
        """A command of MiniCluster.java; what it refuses is an exception with Hadoop's words."""
        self.process.stdin.write((json.dumps({"do": do, **values}) + "\n").encode())
        self.process.stdin.flush()
        answer = self.read(SECONDS_TO_ANSWER)
        if "error" in answer:
            raise RuntimeError(answer["error"])
        return answer

    def kill(self):
        try:
            os.killpg(self.process.pid, signal.SIGKILL)
        except ProcessLookupError:
            pass

    def stop(self):
        try:
            self.process.stdin.close()  # which it takes as its end
        except BrokenPipeError:
            pass
        try:
            self.process.wait(timeout=30)
        except subprocess.TimeoutExpired:
            self.kill()
            self.process.wait()
        self.process.stdout.close()
        self.log.close()
        self.folder.cleanup()


def main():
    if len(sys.argv) < 2:
        print("usage: cluster.py --prepare | PROGRAM [ARGS]", file=sys.stderr)
        return 2
    try:
        if sys.argv[1] == "--prepare":
            compiled(class_path())
            settings_folder()
            return 0
        with Cluster(BUILD.parent / "hadoop.log") as cluster:
            environment = {**os.environ, "VELANDOC_HADOOP_HTTP": cluster.http, "VELANDOC_HADOOP_HTTPS": cluster.https}
            return subprocess.run(sys.argv[1:], env=environment, check=False).returncode
    except Missing as missing:
        print(f"no HDFS cluster: {missing}", file=sys.stderr)
        return 3


if __name__ == "__main__":
    sys.exit(main())
