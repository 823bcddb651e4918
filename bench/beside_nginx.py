#!/usr/bin/python3
"""Runs a benchmark beside Debian's nginx: beside_nginx.py CERTIFICATES PROGRAM [ROW]...

Calls PROGRAM with the server's name, its http port, its https port and the ROWs. nginx listens on loopback, with one worker and
sendfile as Debian configures it. It answers what the client asks of WebHDFS for one file of 1 GiB: a status from a fixed text,
OPEN and CREATE by the redirect of a name node. That file lies in /dev/shm; a body that is sent is read and dropped."""

import json
import os
import pathlib
import shutil
import signal
import socket
import subprocess
import sys
import tempfile
import time

SIZE = 1 << 30
MEMORY = pathlib.Path("/dev/shm")
LONGEST = 3600  # seconds; nothing that is measured takes as long
STATUS = {"FileStatus": {"accessTime": 0, "blockSize": 134217728, "group": "bench", "length": SIZE, "modificationTime": 0,
                         "owner": "bench", "pathSuffix": "", "permission": "644", "replication": 1, "type": "FILE"}}
MISSING = {"RemoteException": {"exception": "FileNotFoundException", "javaClassName": "java.io.FileNotFoundException",
                               "message": "File does not exist"}}

# The command asks for the status of what it is to write, which must not be there, and then of what it wrote, which must be whole.
CONFIGURATION = """\
daemon off;
worker_processes 1;
pid {folder}/pid;
{user}
events {{ worker_connections 64; }}
http {{
  access_log off;
  sendfile on;
  tcp_nopush on;
  default_type application/octet-stream;
  client_max_body_size 0;
  lingering_time {longest}s;
  client_body_temp_path {folder}/client;
  proxy_temp_path {folder}/proxy;
  fastcgi_temp_path {folder}/fastcgi;
  uwsgi_temp_path {folder}/uwsgi;
  scgi_temp_path {folder}/scgi;
  ssl_certificate {certificates}/good.pem;
  ssl_certificate_key {certificates}/good.key;
  map "$arg_op:$arg_namenoderpcaddress:$uri" $answer {{
    default                               unknown;
    ~^(OPEN|CREATE)::                     data-node;
    ~^OPEN:                               body;
    ~^CREATE:                             sink;
    GETFILESTATUS::/webhdfs/v1/.sink/f    missing;
    ~^GETFILESTATUS:                      status;
    ~^RENAME:                             done;
  }}
  server {{
    listen 127.0.0.1:{http};
    listen 127.0.0.1:{https} ssl;
    location /webhdfs/v1/ {{ rewrite ^ /$answer last; }}
    location = /data-node {{ return 307 $scheme://$http_host$request_uri&namenoderpcaddress=x; }}
    location = /status {{ default_type application/json; return 200 '{status}'; }}
    location = /missing {{ default_type application/json; return 404 '{missing}'; }}
    location = /done {{ default_type application/json; return 200 '{{"boolean":true}}'; }}
    location /bytes/ {{ rewrite ^ /body last; }}
    location = /body {{ alias {folder}/body; }}
    location = /sink {{ return 201; }}
    location / {{ return 404; }}
  }}
}}
"""


def make_body(path):
    if shutil.disk_usage(MEMORY).free < SIZE:
        sys.exit(f"beside_nginx: {MEMORY} has no room for a file of 1 GiB")
    piece = bytes(i * 7 % 253 for i in range(1 << 20))
    with open(path, "wb") as file:
        for _ in range(SIZE // len(piece)):
            file.write(piece)


def free_ports():
    sockets = [socket.socket() for _ in range(2)]
    try:
        for one in sockets:
            one.bind(("127.0.0.1", 0))
        return [one.getsockname()[1] for one in sockets]
    finally:
        for one in sockets:
            one.close()


def accepts(port):
    with socket.socket() as one:
        return one.connect_ex(("127.0.0.1", port)) == 0


def start(program, folder, certificates):
    """The running server and its ports. A port may be taken by others before nginx has it; then two more are tried."""
    for _ in range(5):
        http, https = free_ports()
        configuration = folder / "nginx.conf"
        configuration.write_text(CONFIGURATION.format(
            folder=folder, certificates=certificates, http=http, https=https, longest=LONGEST,
            # nginx started by root lets its worker run as somebody else, who may not read the folder.
            user="user root;" if os.geteuid() == 0 else "",
            status=json.dumps(STATUS), missing=json.dumps(MISSING)))
        server = subprocess.Popen(["timeout", str(LONGEST), program, "-e", folder / "log", "-c", configuration])
        end = time.monotonic() + 20
        while server.poll() is None and time.monotonic() < end:
            if accepts(http) and accepts(https) and (folder / "pid").exists():
                return server, http, https
            time.sleep(0.05)
        stop(server)
    sys.exit("beside_nginx: nginx does not start\n" + (folder / "log").read_text(errors="replace"))


def stop(server):
    server.terminate()
    server.wait()


def main():
    certificates, program, *rows = sys.argv[1:]
    nginx = shutil.which("nginx", path=f"{os.environ.get('PATH', '')}:/usr/sbin")
    if nginx is None:
        sys.exit("beside_nginx: nginx is not installed (Debian: nginx)")
    version = subprocess.run([nginx, "-v"], stderr=subprocess.PIPE, text=True, check=True).stderr
    name = version.split()[2].replace("/", " ")
    # What ends this program takes the server and the file along.
    signal.signal(signal.SIGTERM, lambda *_: sys.exit("beside_nginx: ended from outside"))
    with tempfile.TemporaryDirectory(prefix="velandoc-bench-", dir=MEMORY) as place:
        folder = pathlib.Path(place)
        make_body(folder / "body")
        server, http, https = start(nginx, folder, pathlib.Path(certificates).resolve())
        try:
            return subprocess.run([program, name, str(http), str(https), *rows], timeout=LONGEST).returncode
        finally:
            stop(server)


if __name__ == "__main__":
    sys.exit(main())
