#!/usr/bin/env python3
"""The update tests' HTTPS server.

Serves the folder --feed on 127.0.0.1:443 (and [::1]:443 where there is IPv6) with a certificate of the
trusted test CA, and the same folder on 127.0.0.2:443 with one of a CA that nobody trusts. A file FILE may have a sidecar FILE.fault with one line
that scripts a fault for it:

    status N    answer with status N and the file as the body
    cut N       announce the whole file, send its first N bytes and close the connection
    slow S      send the file in ten pieces spread over S seconds

The file --switch, when it exists, changes how the 127.0.0.1 and [::1] listeners greet a client:

    untrusted   present the untrusted CA's certificate (it names localhost too)
    down        close every connection before the handshake, as a server that is down

Each request is appended to --log as "GET <path with query> <user agent>". Once both sockets listen, the
file --ready is written. The server ends on SIGTERM, and by itself when the process --owner has gone, so
a test run that dies does not keep port 443.
"""
import argparse
import http.server
import os
import signal
import socket
import ssl
import threading
import time
import urllib.parse


def make_handler(feed, log_path, log_lock):
    class Handler(http.server.BaseHTTPRequestHandler):
        server_version = "GriplineTestFeed/1"

        def log_message(self, *args):
            pass

        def do_GET(self):
            with log_lock, open(log_path, "a", encoding="utf-8") as log:
                log.write(f"GET {self.path} {self.headers.get('User-Agent', '')}\n")
            relative = urllib.parse.unquote(urllib.parse.urlsplit(self.path).path).lstrip("/")
            path = os.path.realpath(os.path.join(feed, relative))
            if not path.startswith(os.path.realpath(feed) + os.sep) or not os.path.isfile(path):
                self.answer(404, b"not found")
                return
            with open(path, "rb") as f:
                body = f.read()
            fault = []
            if os.path.isfile(path + ".fault"):
                with open(path + ".fault", encoding="utf-8") as f:
                    fault = f.read().split()
            kind = fault[0] if fault else ""
            value = float(fault[1]) if len(fault) > 1 else 0
            if kind == "status":
                self.answer(int(value), body)
            elif kind == "cut":
                self.answer(200, body[: int(value)], announced=len(body))
                self.close_connection = True
                self.connection.close()
            elif kind == "slow":
                self.answer(200, body, pieces=10, pause=value / 10)
            else:
                self.answer(200, body)

        def answer(self, status, body, announced=None, pieces=1, pause=0.0):
            self.send_response(status)
            self.send_header("Content-Type", "application/octet-stream")
            self.send_header("Content-Length", str(len(body) if announced is None else announced))
            self.end_headers()
            step = max(1, -(-len(body) // pieces))
            for start in range(0, len(body), step):
                if start > 0 and pause > 0:
                    self.wfile.flush()
                    time.sleep(pause)
                self.wfile.write(body[start : start + step])
            self.wfile.flush()

    return Handler


def read_switch(path):
    try:
        with open(path, encoding="utf-8") as f:
            return f.read().strip()
    except OSError:
        return ""


def make_server(address, trusted, untrusted, switch, handler):
    base = http.server.ThreadingHTTPServer

    class Server(base):
        address_family = socket.AF_INET6 if ":" in address else socket.AF_INET
        daemon_threads = True

        # The handshake happens here, per connection, so that --switch takes effect at once.
        def get_request(self):
            connection, client = self.socket.accept()
            mode = read_switch(switch) if untrusted is not None else ""
            if mode == "down":
                connection.close()
                raise OSError("refused: the switch says down")
            context = untrusted if mode == "untrusted" else trusted
            return context.wrap_socket(connection, server_side=True), client

    return Server((address, 443), handler)


def tls_context(cert, key):
    context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
    context.load_cert_chain(cert, key)
    return context


def serve(address, trusted, untrusted, switch, handler):
    server = make_server(address, trusted, untrusted, switch, handler)
    threading.Thread(target=server.serve_forever, daemon=True).start()
    return server


def owner_alive(pid):
    try:
        os.kill(pid, 0)
        return True
    except ProcessLookupError:
        return False
    except PermissionError:
        return True


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--feed", required=True)
    parser.add_argument("--certs", required=True, help="folder written by test-ca.sh make")
    parser.add_argument("--log", required=True)
    parser.add_argument("--ready", required=True)
    parser.add_argument("--switch", required=True)
    parser.add_argument("--owner", type=int, required=True)
    args = parser.parse_args()

    stop = threading.Event()
    signal.signal(signal.SIGTERM, lambda *_: stop.set())
    signal.signal(signal.SIGINT, lambda *_: stop.set())
    handler = make_handler(args.feed, args.log, threading.Lock())
    trusted = tls_context(f"{args.certs}/trusted.crt", f"{args.certs}/trusted.key")
    untrusted = tls_context(f"{args.certs}/untrusted.crt", f"{args.certs}/untrusted.key")
    servers = [
        serve("127.0.0.1", trusted, untrusted, args.switch, handler),
        serve("127.0.0.2", untrusted, None, args.switch, handler),
    ]
    # Where localhost also names ::1, a client may try that first.
    try:
        servers.append(serve("::1", trusted, untrusted, args.switch, handler))
    except OSError as error:
        print(f"no listener on [::1]:443: {error}", flush=True)
    with open(args.ready, "w", encoding="utf-8") as f:
        f.write(f"{os.getpid()}\n")
    while not stop.wait(1.0):
        if not owner_alive(args.owner):
            break
    for server in servers:
        server.shutdown()
        server.server_close()


if __name__ == "__main__":
    main()
