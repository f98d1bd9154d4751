#!/usr/bin/env python3
"""A server of time stamps (RFC 3161) for one test, on this machine's loopback alone.

    tests/package/time_stamps.py FOLDER

FOLDER holds tsa.cnf for `openssl ts`, with what that names. The server's port is written into FOLDER/port; it serves until
it is ended.
"""

import http.server
import pathlib
import subprocess
import sys

FOLDER = pathlib.Path(sys.argv[1])


class TimeStamps(http.server.BaseHTTPRequestHandler):
    def do_POST(self):
        query = FOLDER / "query.tsq"
        query.write_bytes(self.rfile.read(int(self.headers["Content-Length"])))
        reply = subprocess.run(["openssl", "ts", "-reply", "-config", FOLDER / "tsa.cnf", "-queryfile", query],
                               check=True, capture_output=True).stdout
        self.send_response(200)
        self.send_header("Content-Type", "application/timestamp-reply")
        self.send_header("Content-Length", str(len(reply)))
        self.end_headers()
        self.wfile.write(reply)


server = http.server.HTTPServer(("127.0.0.1", 0), TimeStamps)
port = FOLDER / "port.part"
port.write_text(str(server.server_port))
port.rename(FOLDER / "port")
server.serve_forever()
