#!/usr/bin/env python3
"""Times `trelk-cli explain G lalr` against `bison -Wcex` on the corpus, in one run.

For every grammar both tools explain every LALR(1) conflict. Reported per
grammar: wall time of each (the peer under a time-out, --timeout seconds, and
marked '>' when it hit it), the time ratio, the conflicts, how many got a
unifying example (one sentence, two derivations), how many the tool gave up
on, and the mean length of the example (symbols of the sentential form; for a
nonunifying pair the mean of both; the peer's "$end" and the dot not counted).

Usage: bench/explain_compare.py [--cli PATH] [--timeout S] [--corpus DIR] [NAME ...]
"""
import argparse
import json
import os
import statistics
import subprocess
import sys
import time

HERE = os.path.dirname(os.path.abspath(__file__))
ROOT = os.path.dirname(HERE)
DEFAULT = ["bc", "bash", "java", "gawk", "go14", "python", "php", "postgres"]


def run_ours(cli, grammar):
    start = time.perf_counter()
    done = subprocess.run([cli, "explain", grammar, "lalr", "--json"], capture_output=True, text=True, check=False)
    wall = time.perf_counter() - start
    if done.returncode != 0:
        return wall, None
    data = json.loads(done.stdout)
    conflicts = data["conflicts"]
    lengths = []
    for c in conflicts:
        ex = c["counterexample"]
        if ex["gave_up"]:
            continue
        if ex["unifying"]:
            lengths.append(len(ex["sentence"]))
        else:
            lengths.append(statistics.mean(len(f) for f in ex["forms"]))
    return wall, {
        "conflicts": len(conflicts),
        "unifying": sum(1 for c in conflicts if c["counterexample"]["unifying"]),
        "gave_up": sum(1 for c in conflicts if c["counterexample"]["gave_up"]),
        "length": statistics.mean(lengths) if lengths else 0.0,
    }


def example_length(line):
    words = line.split(":", 1)[1].split()
    return len([w for w in words if w not in ("•", "$end")])


def run_peer(grammar, timeout):
    start = time.perf_counter()
    try:
        done = subprocess.run(["bison", "-Wcex", "-o", os.devnull, grammar], capture_output=True, text=True,
                              timeout=timeout, check=False)
    except subprocess.TimeoutExpired:
        return timeout, None
    wall = time.perf_counter() - start
    conflicts = unifying = limits = 0
    lengths = []
    pending = []
    for line in done.stderr.splitlines():
        text = line.strip()
        if "conflict on token" in text and "[-Wcounterexamples]" in text:
            conflicts += 1
        elif text.startswith("Example:"):
            unifying += 1
            lengths.append(example_length(text))
        elif text.startswith("First example:"):
            pending = [example_length(text)]
        elif text.startswith("Second example:"):
            pending.append(example_length(text))
            lengths.append(statistics.mean(pending))
        elif "time limit exceeded" in text.lower():
            limits += 1
    return wall, {"conflicts": conflicts, "unifying": unifying, "gave_up": limits,
                  "length": statistics.mean(lengths) if lengths else 0.0}


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--cli", default=os.path.join(ROOT, "build", "bin", "trelk-cli"))
    parser.add_argument("--corpus", default=os.path.join(ROOT, "..", "shared", "corpus"))
    parser.add_argument("--timeout", type=float, default=900.0)
    parser.add_argument("names", nargs="*", default=DEFAULT)
    args = parser.parse_args()

    print("%-9s %9s %9s %7s | %5s %5s %5s %6s | %5s %5s %5s %6s" % (
        "grammar", "ours s", "peer s", "ratio", "confl", "unif", "gave", "length", "confl", "unif", "limit", "length"))
    failed = False
    for name in args.names:
        tkg = os.path.join(args.corpus, name + ".tkg")
        y = os.path.join(args.corpus, name + ".y")
        ours_s, ours = run_ours(args.cli, tkg)
        peer_s, peer = run_peer(y, args.timeout)
        if ours is None:
            print("%-9s trelk-cli explain failed" % name)
            failed = True
            continue
        peer_cols = ("%5s %5s %5s %6s" % ("-", "-", "-", "-") if peer is None else
                     "%5d %5d %5d %6.1f" % (peer["conflicts"], peer["unifying"], peer["gave_up"], peer["length"]))
        print("%-9s %9.2f %8.1f%s %7.3f | %5d %5d %5d %6.1f | %s" % (
            name, ours_s, peer_s, ">" if peer is None else " ", ours_s / peer_s,
            ours["conflicts"], ours["unifying"], ours["gave_up"], ours["length"], peer_cols))
        sys.stdout.flush()
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
