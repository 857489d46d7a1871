#!/usr/bin/env python3
"""Figures for orvel-server's HTTP layer over loopback, for one or more server builds in the
same run (e.g. the previous build and this one):

  - GET /api/decks with 100 decks, measured with wrk at 50 and at 1,000 connections
    (requests/s, p99 latency, errors);
  - resident memory at 2,000 idle kept-alive connections (and whether a fresh request is
    still answered beside them);
  - 500 card-writing streams at once (the dictionary writer, batches of four words): every
    stream must end with "done" and carry its events complete and in order.

  python3 bench/server/http_figures.py --server old=/tmp/old/orvel-server \
      --server new=build/src/cardserver/orvel-server [--seconds 10]

Needs wrk (Debian package "wrk") and the FreeDict German dictionary the dictionary writer
reads. Prints one block per server; nothing here is a pass/fail test.
"""
import argparse
import asyncio
import json
import os
import re
import resource
import signal
import socket
import subprocess
import sys
import tempfile
import time
import urllib.request

WORDS = ["Hund", "Katze", "Haus", "Baum", "Brot", "Milch", "Apfel", "Wasser", "Buch", "Tisch",
         "Stuhl", "Stadt", "Schule", "Kind", "Frau", "Mann", "Nacht", "Zeit", "Blume", "Vogel"]


def raise_open_files(wanted=20000):
    soft, hard = resource.getrlimit(resource.RLIMIT_NOFILE)
    if soft < wanted:
        resource.setrlimit(resource.RLIMIT_NOFILE, (min(wanted, hard), hard))


class Server:
    def __init__(self, binary, extra=()):
        self.data = tempfile.TemporaryDirectory(prefix="orvel-bench-")
        self.proc = subprocess.Popen(
            [binary, "--listen", "127.0.0.1:0", "--data", self.data.name, "--local",
             "--writer", "dictionary", *extra],
            stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True)
        line = self.proc.stdout.readline()
        m = re.search(r"listening on http://([^:]+):(\d+)", line)
        if not m:
            raise RuntimeError("the server did not start: " + line)
        self.port = int(m.group(2))
        self.base = f"http://127.0.0.1:{self.port}"

    def rss_kb(self):
        with open(f"/proc/{self.proc.pid}/status") as f:
            for line in f:
                if line.startswith("VmRSS:"):
                    return int(line.split()[1])
        return -1

    def cpu_seconds(self):
        """User and system time the server has used so far."""
        with open(f"/proc/{self.proc.pid}/stat") as f:
            fields = f.read().rsplit(")", 1)[1].split()
        return (int(fields[11]) + int(fields[12])) / os.sysconf("SC_CLK_TCK")

    def stop(self):
        self.proc.send_signal(signal.SIGTERM)
        try:
            self.proc.wait(10)
        except subprocess.TimeoutExpired:
            self.proc.kill()
            self.proc.wait()
        self.data.cleanup()


def call(server, method, path, body=None, cookie=None):
    data = json.dumps(body).encode() if body is not None else None
    req = urllib.request.Request(server.base + path, data=data, method=method)
    req.add_header("Content-Type", "application/json")
    if cookie:
        req.add_header("Cookie", "orvel_session=" + cookie)
    try:
        with urllib.request.urlopen(req, timeout=60) as r:
            return r.status, r.read(), r.headers
    except urllib.error.HTTPError as e:
        return e.code, e.read(), e.headers


def join(server, email):
    call(server, "POST", "/api/auth/signup",
         {"email": email, "password": "bench-password", "display_name": "Bench"})
    status, _, headers = call(server, "POST", "/api/auth/login",
                              {"email": email, "password": "bench-password"})
    for value in headers.get_all("Set-Cookie") or []:
        if value.startswith("orvel_session="):
            return value.split(";")[0][len("orvel_session="):]
    raise RuntimeError(f"sign-in failed ({status})")


def make_deck(server, cookie, name):
    status, body, _ = call(server, "POST", "/api/decks",
                           {"name": name, "description": "", "language": "de",
                            "native_language": "en"}, cookie)
    if status != 201:
        raise RuntimeError(f"deck failed ({status}): {body[:200]}")
    return json.loads(body)["id"]


def wrk(server, cookie, connections, seconds):
    cpu_before = server.cpu_seconds()
    out = subprocess.run(
        ["wrk", "-t2", f"-c{connections}", f"-d{seconds}s", "--latency", "--timeout", "5s",
         "-H", f"Cookie: orvel_session={cookie}", server.base + "/api/decks"],
        capture_output=True, text=True).stdout
    rps = re.search(r"Requests/sec:\s+([\d.]+)", out)
    p99 = re.search(r"^\s+99%\s+(\S+)", out, re.M)
    errors = re.search(r"Socket errors: (.*)", out)
    non2xx = re.search(r"Non-2xx or 3xx responses: (\d+)", out)
    total = re.search(r"(\d+) requests in", out)
    cpu = server.cpu_seconds() - cpu_before
    return {
        "requests_per_second": float(rps.group(1)) if rps else 0.0,
        "p99": p99.group(1) if p99 else "?",
        "socket_errors": errors.group(1) if errors else "none",
        "non_2xx": int(non2xx.group(1)) if non2xx else 0,
        # The server's CPU time per answered request: steadier than requests/s on a busy machine.
        "server_cpu_us_per_request":
            round(cpu * 1e6 / int(total.group(1)), 1) if total and int(total.group(1)) else None,
    }


def idle_connections(server, count=2000):
    before = server.rss_kb()
    socks = []
    answered = 0
    for _ in range(count):
        s = socket.create_connection(("127.0.0.1", server.port))
        s.sendall(b"GET /api/languages HTTP/1.1\r\nHost: localhost\r\n\r\n")
        socks.append(s)
    deadline = time.time() + 20
    for s in socks:
        s.settimeout(max(0.01, deadline - time.time()))
        try:
            if s.recv(4096).startswith(b"HTTP/1.1 200"):  # a route both builds have
                answered += 1
        except OSError:
            pass
    time.sleep(1)
    rss = server.rss_kb()
    start = time.time()
    try:
        status, _, _ = call(server, "GET", "/api/languages")
    except OSError as e:
        status = str(e)
    fresh_ms = (time.time() - start) * 1000
    for s in socks:
        s.close()
    return {"idle_answered": answered, "rss_idle_before_kb": before, "rss_at_2000_kb": rss,
            "fresh_request": status, "fresh_request_ms": round(fresh_ms, 1)}


async def one_stream(port, cookie, deck, words):
    reader, writer = await asyncio.open_connection("127.0.0.1", port)
    body = json.dumps({"words": [{"term": w, "source": ""} for w in words]}).encode()
    writer.write((f"POST /api/decks/{deck}/cards/batch HTTP/1.1\r\nHost: localhost\r\n"
                  f"Cookie: orvel_session={cookie}\r\nContent-Type: application/json\r\n"
                  f"Accept: text/event-stream\r\nContent-Length: {len(body)}\r\n\r\n").encode()
                 + body)
    await writer.drain()
    raw = await asyncio.wait_for(reader.read(-1), 300)  # the stream ends with the connection
    writer.close()
    head, _, rest = raw.partition(b"\r\n\r\n")
    if not head.startswith(b"HTTP/1.1 200"):
        return False, head[:60]
    if b"chunked" in head.lower():
        text = b""
        while rest:
            size_line, _, rest = rest.partition(b"\r\n")
            size = int(size_line, 16)
            if size == 0:
                break
            text += rest[:size]
            rest = rest[size + 2:]
    else:
        text = rest
    events = [json.loads(line[6:]) for line in text.decode().split("\n")
              if line.startswith("data: ")]
    # start, then for each word in order: "word" then card/skipped/failed, then done.
    expected = ["start"] + ["word", "outcome"] * len(words) + ["done"]
    got = [e.get("type") if e.get("type") in ("start", "word", "done") else "outcome"
           for e in events]
    if got != expected:
        return False, got
    indexes = [e.get("index") for e in events[1:-1]]
    if indexes != [i // 2 for i in range(2 * len(words))]:
        return False, indexes
    return True, None


async def streams_at_once(server, cookies_and_decks):
    tasks = []
    for i, (cookie, deck) in enumerate(cookies_and_decks):
        words = [WORDS[(i + k) % len(WORDS)] for k in range(4)]
        tasks.append(one_stream(server.port, cookie, deck, words))
    start = time.time()
    results = await asyncio.gather(*tasks, return_exceptions=True)
    seconds = time.time() - start
    ok = sum(1 for r in results if isinstance(r, tuple) and r[0])
    bad = [r for r in results if not (isinstance(r, tuple) and r[0])]
    return {"streams": len(tasks), "complete_and_in_order": ok, "seconds": round(seconds, 2),
            "first_fault": repr(bad[0])[:200] if bad else None}


def start(binary):
    # The stream bench measures the HTTP layer, not the per-account stream limit of builds
    # that have one; builds without the flag refuse it, and start without.
    try:
        return Server(binary, ["--streams-per-account", "1000"])
    except RuntimeError:
        return Server(binary)


def figures(label, binary, seconds, streams):
    server = start(binary)
    try:
        cookie = join(server, "bench@example.org")
        for i in range(100):
            make_deck(server, cookie, f"Deck {i}")
        out = {"server": label, "idle_rss_kb": server.rss_kb()}
        out["decks_50"] = wrk(server, cookie, 50, seconds)
        out["decks_1000"] = wrk(server, cookie, 1000, seconds)
        out.update(idle_connections(server))
        # 500 streams from 25 learners, each into a deck of its own.
        learners = [cookie] + [join(server, f"writer{i}@example.org") for i in range(24)]
        pairs = []
        for i in range(streams):
            c = learners[i % len(learners)]
            pairs.append((c, make_deck(server, c, f"Stream {i}")))
        out["streams_500"] = asyncio.run(streams_at_once(server, pairs))
        out["rss_after_kb"] = server.rss_kb()
        return out
    finally:
        server.stop()


def main():
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--server", action="append", required=True, metavar="LABEL=PATH")
    parser.add_argument("--seconds", type=int, default=10)
    parser.add_argument("--streams", type=int, default=500)
    args = parser.parse_args()
    raise_open_files()
    print(f"# {os.cpu_count()} cores, load average {os.getloadavg()}", flush=True)
    for spec in args.server:
        label, _, path = spec.partition("=")
        result = figures(label, path, args.seconds, args.streams)
        print(json.dumps(result, indent=2), flush=True)


if __name__ == "__main__":
    sys.exit(main())
