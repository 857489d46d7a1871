#!/usr/bin/env python3
"""Soak: simulated learners against orvel-server for a bounded time, with one process killed
(SIGKILL) in the middle of their saves and started again, then every acknowledged write read
back and checked against the learners' ledgers.

    python3 bench/soak/soak.py                      # 200 learners, 5 minutes, both set-ups
    python3 bench/soak/soak.py --learners 60 --seconds 90 --setup two

Set-ups: "one" is a single process talked to directly; "two" is two processes on one store
behind nginx (packaging/nginx/). The store is SQLite in the run's folder, or --database URL.
Loopback only; standard library only. Prints the totals, and writes them as JSON with
--json FILE. Exits 1 when a ledger mismatch or a lost or reordered stream event was found.
"""

import argparse
import json
import os
import shutil
import subprocess
import sys
import tempfile
import threading
import time

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
from cluster import REPO, Cluster  # noqa: E402
from learner import Learner, Stats  # noqa: E402


def killer(cluster, at, down, stats, log):
    """SIGKILLs the first process `at` seconds in and starts it again `down` seconds later."""
    time.sleep(at)
    victim = cluster.servers[0]
    victim.kill()
    killed = time.monotonic()
    log("  killed process on port %d (SIGKILL)" % victim.port)
    time.sleep(down)
    victim.start()
    stats.count("restarts")
    log("  started it again after %.1f s" % (time.monotonic() - killed))


def sqlite_check(path):
    """integrity_check and row counts straight from the file, when the store is SQLite."""
    if not os.path.exists(path) or not shutil.which("sqlite3"):
        return None
    query = ("PRAGMA integrity_check; SELECT COUNT(*) FROM cards; SELECT COUNT(*) FROM notes; "
             "SELECT COUNT(*) FROM note_lines;")
    out = subprocess.run(["sqlite3", path, query], capture_output=True, text=True).stdout.split()
    if len(out) != 4:
        return {"integrity": " ".join(out) or "sqlite3 failed"}
    return {"integrity": out[0], "cards": int(out[1]), "notes": int(out[2]),
            "note_lines": int(out[3])}


def run(setup, args, log):
    work = tempfile.mkdtemp(prefix="orvel-soak-%s-" % setup)
    count = 1 if setup == "one" else 2
    cluster = Cluster(args.server, work, count, args.database)
    stats = Stats()
    log("%s: %d process(es)%s, %d learners, %d s, store %s (logs in %s)"
        % (setup, count, " behind nginx" if count > 1 else "", args.learners, args.seconds,
           args.database or "SQLite", work))
    cluster.start()
    try:
        began = time.monotonic()
        deadline = began + args.seconds
        ramp = min(args.seconds * 0.1, 20.0)
        learners = [Learner(i, cluster.url, stats, deadline, args.think,
                            ramp * i / max(1, args.learners), seed=i)
                    for i in range(args.learners)]
        for learner in learners:
            learner.start()
        kill = None
        if not args.no_kill:
            kill = threading.Thread(target=killer, daemon=True,
                                    args=(cluster, args.seconds * args.kill_at, args.down,
                                          stats, log))
            kill.start()
        for learner in learners:
            learner.join(max(1.0, deadline - time.monotonic() + 180))
        if kill:
            kill.join(60)
        elapsed = time.monotonic() - began
        log("  load over after %.0f s; checking the ledger" % elapsed)
        checked = mismatches = 0
        for learner in learners:
            c, m = learner.check()
            checked += c
            mismatches += m
        c = stats.counts
        report = {
            "setup": setup,
            "processes": count,
            "store": args.database or "sqlite",
            "learners": args.learners,
            "learners_started": c.get("learners.started", 0),
            "seconds": round(elapsed, 1),
            "requests": c.get("requests", 0) - c.get("requests.check", 0),
            "requests_per_second": round((c.get("requests", 0) - c.get("requests.check", 0))
                                         / elapsed, 1),
            "requests_by_kind": {k[9:]: v for k, v in sorted(c.items())
                                 if k.startswith("requests.") and k != "requests.check"},
            "errors": sum(v for k, v in stats.errors.items() if not k.startswith("check")),
            "errors_by_kind": dict(sorted(stats.errors.items())),
            "acknowledged": {k[4:]: v for k, v in sorted(c.items()) if k.startswith("ack.")},
            # Writes whose answer never came (a process killed under them): they may or may
            # not have happened, and the check accepts either outcome.
            "unanswered_writes": {k[11:]: v for k, v in sorted(c.items())
                                  if k.startswith("unanswered.")},
            "ledger_entries_checked": checked,
            "ledger_mismatches": mismatches + c.get("ledger.mismatches", 0),
            "streams": c.get("streams", 0),
            "stream_events": c.get("stream_events", 0),
            "streams_lost_or_reordered": c.get("streams.lost_or_reordered", 0),
            "cards_the_writer_refused": c.get("cards.refused_by_writer", 0),
            "restarts": c.get("restarts", 0),
            "problems": stats.problems[:20],
        }
        if not args.database:
            report["sqlite"] = sqlite_check(cluster.database)
        return report
    finally:
        cluster.stop()
        if not args.keep:
            shutil.rmtree(work, ignore_errors=True)


def main():
    p = argparse.ArgumentParser(description=__doc__.split("\n\n")[0])
    p.add_argument("--learners", type=int, default=200)
    p.add_argument("--seconds", type=float, default=300)
    p.add_argument("--setup", choices=["one", "two", "both"], default="both")
    p.add_argument("--database", help="a --database URL for every process (default: SQLite)")
    p.add_argument("--think", type=float, default=0.5,
                   help="mean pause between a learner's actions, seconds (default 0.5)")
    p.add_argument("--kill-at", type=float, default=0.5,
                   help="when to SIGKILL a process, as a share of the run (default 0.5)")
    p.add_argument("--down", type=float, default=2.0,
                   help="seconds the killed process stays down (default 2)")
    p.add_argument("--no-kill", action="store_true")
    p.add_argument("--server", default=os.path.join(REPO, "build", "src", "cardserver",
                                                    "orvel-server"))
    p.add_argument("--json", help="also write the reports to this file")
    p.add_argument("--keep", action="store_true", help="keep the run's folder (store, logs)")
    args = p.parse_args()
    if not os.access(args.server, os.X_OK):
        sys.exit("no orvel-server at %s (build it, or give --server)" % args.server)
    if args.seconds <= 0 or args.seconds > 3600 or args.learners < 1 or args.learners > 2000:
        sys.exit("--seconds wants 0 to 3600 and --learners 1 to 2000")

    def log(text):
        print(text, flush=True)

    reports = [run(s, args, log) for s in (["one", "two"] if args.setup == "both"
                                             else [args.setup])]
    for r in reports:
        print(json.dumps(r, indent=2, ensure_ascii=False))
    if args.json:
        with open(args.json, "w") as f:
            json.dump(reports, f, indent=2, ensure_ascii=False)
    bad = any(r["ledger_mismatches"] or r["streams_lost_or_reordered"] for r in reports)
    sys.exit(1 if bad else 0)


if __name__ == "__main__":
    main()
