#!/usr/bin/env python3
"""Requests per second with wrk, for one orvel-server talked to directly, one behind nginx, and
two behind nginx on one store: GET /api/decks (a learner with 20 decks) and card writing
(POST /api/decks/N/cards with the dictionary writer, the whole event stream read).

    python3 bench/soak/throughput.py [--seconds 10] [--connections 16] [--database URL]

Loopback only. wrk comes from Debian (apt-get install wrk).
"""

import argparse
import os
import re
import shutil
import subprocess
import sys
import tempfile

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
from cluster import REPO, Cluster  # noqa: E402
from learner import Client, Stats  # noqa: E402

CARD_SCRIPT = """wrk.method = "POST"
wrk.body = '{"input": "Hund"}'
wrk.headers["Content-Type"] = "application/json"
wrk.headers["Accept"] = "text/event-stream"
"""


def learner(base, email, decks):
    api = Client(base, Stats())
    login = {"email": email, "password": "bench-password"}
    api.call("POST", "/api/auth/signup", dict(login, display_name="B"))
    status, _ = api.call("POST", "/api/auth/login", login)
    if status != 200:
        raise RuntimeError("could not sign in at %s" % base)
    first = None
    for i in range(decks):
        _, d = api.call("POST", "/api/decks", {"name": "Deck %d" % i, "description": "",
                                                "language": "de", "native_language": "en"})
        first = first or d["id"]
    return api.cookie, first


def wrk(url, cookie, args, script=None):
    cmd = ["wrk", "-t2", "-c%d" % args.connections, "-d%ds" % args.seconds,
           "-H", "Cookie: orvel_session=" + cookie, url]
    if script:
        cmd[1:1] = ["-s", script]
    out = subprocess.run(cmd, capture_output=True, text=True).stdout
    rps = re.search(r"Requests/sec:\s+([\d.]+)", out)
    errors = re.search(r"Non-2xx or 3xx responses: (\d+)", out)
    socket_errors = re.search(r"Socket errors: (.*)", out)
    latency = re.search(r"Latency\s+(\S+)", out)
    return {"rps": float(rps.group(1)) if rps else None,
            "non_2xx": int(errors.group(1)) if errors else 0,
            "socket_errors": socket_errors.group(1) if socket_errors else "",
            "mean_latency": latency.group(1) if latency else "?"}


def main():
    p = argparse.ArgumentParser(description=__doc__.split("\n\n")[0])
    p.add_argument("--seconds", type=int, default=10)
    p.add_argument("--connections", type=int, default=16)
    p.add_argument("--database", help="a --database URL for every process (default: SQLite)")
    p.add_argument("--server", default=os.path.join(REPO, "build", "src", "cardserver",
                                                    "orvel-server"))
    args = p.parse_args()
    if not shutil.which("wrk"):
        sys.exit("wrk is not installed (apt-get install wrk)")
    work = tempfile.mkdtemp(prefix="orvel-throughput-")
    script = os.path.join(work, "card.lua")
    with open(script, "w") as f:
        f.write(CARD_SCRIPT)
    rows = []
    try:
        for name, count, proxied in (("one process, direct", 1, False),
                                     ("one process behind nginx", 1, True),
                                     ("two processes behind nginx", 2, True)):
            cluster = Cluster(args.server, os.path.join(work, str(len(rows))), count,
                              args.database, proxied)
            cluster.start()
            try:
                cookie, deck = learner(cluster.url, "bench%d@example.org" % len(rows), 20)
                decks = wrk(cluster.url + "/api/decks", cookie, args)
                cards = wrk(cluster.url + "/api/decks/%d/cards" % deck, cookie, args, script)
                rows.append((name, decks, cards))
            finally:
                cluster.stop()
    finally:
        shutil.rmtree(work, ignore_errors=True)
    store = args.database or "SQLite"
    print("store: %s; wrk -t2 -c%d -d%ds; %d cores, load average %.1f at the end"
          % (store, args.connections, args.seconds, os.cpu_count(), os.getloadavg()[0]))
    print("%-28s %14s %16s %14s %16s" % ("", "GET decks r/s", "(mean latency)",
                                         "card writes/s", "(mean latency)"))
    for name, decks, cards in rows:
        print("%-28s %14s %16s %14s %16s" % (name, decks["rps"], decks["mean_latency"],
                                             cards["rps"], cards["mean_latency"]))
        for what, r in (("GET decks", decks), ("card writing", cards)):
            if r["non_2xx"] or r["socket_errors"]:
                print("  %s: %d non-2xx, socket errors %s" % (what, r["non_2xx"],
                                                             r["socket_errors"]))


if __name__ == "__main__":
    main()
