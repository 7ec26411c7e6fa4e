#!/usr/bin/env python3
"""Times trelk-cli against GNU Bison and byacc on the grammar corpus, in one run.

For every grammar: `trelk-cli table G.tkg lalr` against `bison -o /dev/null G.y`
and `byacc -o /dev/null G.y`, and `trelk-cli table G.tkg lr` against
`bison -Dlr.type=canonical-lr -o /dev/null G.y`. Each command runs several
times, the tools alternating, and the median wall time and the largest peak
resident memory are reported with the ratio to the fastest peer.

Bison's canonical LR runs take minutes on the largest grammars; where the
corpus baseline records more than --canonical-limit seconds (or a time-out),
the baseline figure stands in and is marked with '*'.

Usage: bench/compare.py [--runs N] [--corpus DIR] [--cli PATH] [NAME ...]
"""
import argparse
import csv
import os
import statistics
import subprocess
import sys
import tempfile
import time

HERE = os.path.dirname(os.path.abspath(__file__))
ROOT = os.path.dirname(HERE)


def measure(command, cwd):
    """Wall seconds (timed here, GNU time prints only hundredths), peak KiB (from
    GNU time) and exit status of one run."""
    with tempfile.NamedTemporaryFile(mode="r", suffix=".time") as report:
        start = time.perf_counter()
        done = subprocess.run(["/usr/bin/time", "-o", report.name, "-f", "%M"] + command, cwd=cwd,
                              stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, check=False)
        wall = time.perf_counter() - start
        kib = report.read().split()[-1]
        return wall, int(kib), done.returncode


def median_runs(commands, runs, cwd):
    """Runs each command `runs` times, alternating; returns {name: (median s, max MiB)}."""
    times = {name: [] for name in commands}
    peaks = {name: 0 for name in commands}
    failed = set()
    for i in range(runs):
        order = list(commands.items())
        if i % 2:
            order.reverse()
        for name, command in order:
            wall, kib, status = measure(command, cwd)
            times[name].append(wall)
            peaks[name] = max(peaks[name], kib)
            if status:
                failed.add(name)
    return {name: (statistics.median(times[name]), peaks[name] / 1024.0, "!" if name in failed else " ")
            for name in commands}


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--runs", type=int, default=5)
    parser.add_argument("--corpus", default=os.environ.get("TRELK_CORPUS", os.path.join(ROOT, "..", "shared", "corpus")))
    parser.add_argument("--cli", default=os.path.join(ROOT, "build", "bin", "trelk-cli"))
    parser.add_argument("--canonical-limit", type=float, default=5.0)
    parser.add_argument("names", nargs="*")
    args = parser.parse_args()
    args.cli = os.path.abspath(args.cli)  # the runs happen in a scratch folder
    if not os.access(args.cli, os.X_OK):
        sys.exit(f"compare.py: no trelk-cli at {args.cli} (run make build first)")

    with open(os.path.join(args.corpus, "baseline.tsv")) as f:
        baseline = {row["name"]: row for row in csv.DictReader(f, delimiter="\t")}
    names = args.names or list(baseline)
    work = tempfile.mkdtemp(prefix="trelk-bench-")

    lalr_rows, lr_rows = [], []
    for name in names:
        row = baseline[name]
        folder = args.corpus if row["set"] == "real" else os.path.join(args.corpus, "scaling")
        tkg, y = os.path.join(folder, name + ".tkg"), os.path.join(folder, name + ".y")
        print(f"  {name} ...", file=sys.stderr, flush=True)
        got = median_runs({
            "trelk": [args.cli, "table", tkg, "lalr"],
            "bison": ["bison", "-o", "/dev/null", y],
            "byacc": ["byacc", "-o", "/dev/null", y],
        }, args.runs, work)
        lalr_rows.append((name, got))

        commands = {"trelk": [args.cli, "table", tkg, "lr"]}
        recorded = row["bison_canonical_wall_s"]
        slow = recorded in ("", "NA", "-") or float(recorded) > args.canonical_limit
        if not slow:
            commands["bison"] = ["bison", "-Dlr.type=canonical-lr", "-o", "/dev/null", y]
        got = median_runs(commands, args.runs, work)
        if slow:
            mib = row["bison_canonical_peak_mib"]
            got["bison"] = (float(recorded) if recorded not in ("", "NA", "-") else float("inf"),
                            float(mib) if mib not in ("", "NA", "-") else float("nan"), "*")
        lr_rows.append((name, got))

    def fmt(seconds):
        return "   >120" if seconds == float("inf") else f"{seconds:7.3f}"

    print("\nLALR(1): trelk-cli table G lalr   against   bison / byacc   (median s, peak MiB)")
    print(f"{'grammar':<18} {'trelk s':>7} {'MiB':>6} {'bison s':>7} {'MiB':>6} {'byacc s':>7} {'MiB':>6} {'ratio':>6}")
    for name, got in lalr_rows:
        t, b, y = got["trelk"], got["bison"], got["byacc"]
        fastest = min(b[0], y[0])
        ratio = t[0] / fastest if fastest > 0 else float("nan")
        print(f"{name:<18} {fmt(t[0])} {t[1]:6.1f} {fmt(b[0])} {b[1]:6.1f} {fmt(y[0])} {y[1]:6.1f} {ratio:6.2f}")

    print("\nCanonical LR(1): trelk-cli table G lr   against   bison -Dlr.type=canonical-lr")
    print(f"{'grammar':<18} {'trelk s':>7}  {'MiB':>5} {'bison s':>8} {'MiB':>6} {'ratio':>6}")
    for name, got in lr_rows:
        t, b = got["trelk"], got["bison"]
        mark = b[2] if len(b) > 2 else " "
        ratio = t[0] / b[0] if b[0] not in (0, float("inf")) else 0.0
        print(f"{name:<18} {fmt(t[0])}{t[2]}{t[1]:6.1f} {fmt(b[0])}{mark} {b[1]:6.1f} {ratio:6.3f}")
    print("\n* Bison's canonical time taken from the corpus baseline (too slow to rerun here).")
    print("! trelk-cli stopped at its limit of 10000 states (\"DFA States Overflow.\"): no table.")


if __name__ == "__main__":
    main()
