#!/usr/bin/env python3
"""Side-by-side table of the quadrel benchmarks against their Eigen reference.

Runs the benchmark program with JSON output, or reads the JSON of an earlier
run, and prints a Markdown table: per case and size the quadrel time, the Eigen
time, their ratio, quadrel's heap allocations per call, the time per point and
the goal for the ratio where one is set. A second table checks that every fit
scales linearly: allocations per call that do not grow with the number of
points, and a time per point that stays within 25% from the smallest size to
the largest.

    python3 bench/ratios.py build-bench/bin/quadrel_bench [benchmark flags...]
    python3 bench/ratios.py --json run.json

Times are CPU times unless --real is given; the machine is shared, and CPU time
is the steadier of the two there. With --check the exit status is 1 when a goal
is missed. Standard library only.
"""

import argparse
import json
import os
import re
import statistics
import subprocess
import sys

# Ratio goals, quadrel time over Eigen time: (case, size) -> largest ratio.
GOALS = {
    ("PlaneFit", 1000000): 1.0,
    ("SphereFit", 1000000): 1.0,
    ("ParaboloidFit", 100000): 1.0,
    ("CircleFit", 100000): 1.5,
    ("Svd", 3): 1.0,
    ("Product", 3): 1.0,
    ("Product", 100): 2.0,
}

# Cases whose size counts points, and how many points a call takes for a size.
POINTS_PER_CALL = {
    "PlaneFit": lambda n: n,
    "LineFit": lambda n: n,
    "SphereFit": lambda n: n,
    "CircleFit": lambda n: n,
    "ParaboloidFit": lambda n: n,
    "IdealTrihedralFit": lambda n: 3 * n,  # n points on each of three faces
    "FindQualityPeak": lambda n: n,
}

# Shape fits whose scaling with n is checked.
FITS = ["PlaneFit", "LineFit", "SphereFit", "CircleFit", "ParaboloidFit"]

# Largest change of the time per point over the sizes of a fit.
SCALING_TOLERANCE = 0.25

# Display names of the sizes.
SIZE_NAMES = {
    ("Svd", 3): "3 x 3",
    ("Svd", 1000): "1000 x 3",
    ("Lsq", 1000): "1000 x 5",
    ("Product", 3): "3 x 3",
    ("Product", 100): "100 x 100",
    ("IdealTrihedralFit", 10000): "3 x 1e4",
}

NAME = re.compile(r"^BM_(?P<case>\w+)/(?P<side>quadrel|eigen)/(?P<size>\d+)$")
TO_NS = {"ns": 1.0, "us": 1e3, "ms": 1e6, "s": 1e9}


def load_runs(args):
    """The JSON document of the benchmark run."""
    if args.json:
        with open(args.json, encoding="utf-8") as handle:
            return json.load(handle)
    command = [args.binary, "--benchmark_format=json"] + args.flags
    print("Running: " + " ".join(command), file=sys.stderr)
    done = subprocess.run(command, stdout=subprocess.PIPE, check=True)
    return json.loads(done.stdout)


def collect(document, use_real):
    """(case, side, size) -> {"ns": time per call, "allocs": per call or None}.

    With repetitions the median aggregate is taken; otherwise the median of
    the plain runs of each name.
    """
    entries = document.get("benchmarks", [])
    medians = [e for e in entries if e.get("aggregate_name") == "median"]
    runs = {}
    for entry in medians if medians else entries:
        if not medians and entry.get("run_type", "iteration") != "iteration":
            continue
        name = entry.get("run_name", entry["name"])
        match = NAME.match(name)
        if not match:
            continue
        key = (match["case"], match["side"], int(match["size"]))
        time = entry["real_time"] if use_real else entry["cpu_time"]
        ns = time * TO_NS[entry.get("time_unit", "ns")]
        runs.setdefault(key, []).append((ns, entry.get("allocs")))
    result = {}
    for key, values in runs.items():
        allocs = [a for _, a in values if a is not None]
        result[key] = {
            "ns": statistics.median(ns for ns, _ in values),
            "allocs": statistics.median(allocs) if allocs else None,
        }
    return result


def format_time(ns):
    if ns is None:
        return "–"
    for unit, scale in (("s", 1e9), ("ms", 1e6), ("µs", 1e3)):
        if ns >= scale:
            return "%.3g %s" % (ns / scale, unit)
    return "%.3g ns" % ns


def format_size(case, size):
    if (case, size) in SIZE_NAMES:
        return SIZE_NAMES[(case, size)]
    exponent = len(str(size)) - 1
    if size == 10 ** exponent and exponent >= 3:
        return "1e%d" % exponent
    return str(size)


def format_allocs(allocs):
    if allocs is None:
        return "–"
    return "%d" % allocs if allocs == int(allocs) else "%.2f" % allocs


def time_per_point(case, size, ns):
    if case not in POINTS_PER_CALL or ns is None:
        return None
    return ns / POINTS_PER_CALL[case](size)


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("binary", nargs="?", help="the quadrel_bench program to run")
    parser.add_argument("flags", nargs=argparse.REMAINDER, help="flags for the program")
    parser.add_argument("--json", help="read this JSON output instead of running")
    parser.add_argument("--real", action="store_true", help="use wall-clock times")
    parser.add_argument("--check", action="store_true", help="exit 1 when a goal is missed")
    args = parser.parse_args()
    if not args.json and not args.binary:
        parser.error("give the benchmark program or --json FILE")

    runs = collect(load_runs(args), args.real)
    cases = []  # in the order of the run
    for case, _, _ in runs:
        if case not in cases:
            cases.append(case)

    missed = []
    clock = "wall-clock" if args.real else "CPU"
    print("Times are %s time per call; ratio = quadrel / Eigen.\n" % clock)
    print("| case | size | quadrel | Eigen | ratio | allocs/call | time/point | goal | met |")
    print("|---|---|---|---|---|---|---|---|---|")
    for case in cases:
        sizes = sorted({s for c, _, s in runs if c == case})
        for size in sizes:
            ours = runs.get((case, "quadrel", size))
            theirs = runs.get((case, "eigen", size))
            ours_ns = ours["ns"] if ours else None
            theirs_ns = theirs["ns"] if theirs else None
            ratio = ours_ns / theirs_ns if ours_ns and theirs_ns else None
            goal = GOALS.get((case, size))
            met = ""
            if goal is not None:
                if ratio is None:
                    met = "not run"
                elif ratio <= goal:
                    met = "yes"
                else:
                    met = "**no** (%.0f%% over)" % ((ratio / goal - 1.0) * 100.0)
                    missed.append("%s %s ratio %.2f > %.2f" %
                                  (case, format_size(case, size), ratio, goal))
            per_point = time_per_point(case, size, ours_ns)
            print("| %s | %s | %s | %s | %s | %s | %s | %s | %s |" % (
                case, format_size(case, size), format_time(ours_ns), format_time(theirs_ns),
                "%.2f" % ratio if ratio is not None else "–",
                format_allocs(ours["allocs"] if ours else None),
                format_time(per_point) if per_point is not None else "–",
                "<= %.1f" % goal if goal is not None else "", met))

    fits = [case for case in FITS if case in cases]
    if fits:
        print("\nScaling of the fits (quadrel): allocations per call must not grow with n, "
              "and the time per point must stay within %d%% of that at the smallest size.\n"
              % round(SCALING_TOLERANCE * 100))
        print("| case | sizes | allocs/call | time/point, smallest -> largest | change "
              "| Eigen's change | met |")
        print("|---|---|---|---|---|---|---|")
        for case in fits:
            sizes = sorted(s for c, side, s in runs if c == case and side == "quadrel")
            if len(sizes) < 2:
                if sizes:
                    print("| %s | %s | %s | – | – | – | one size only |" % (
                        case, format_size(case, sizes[0]),
                        format_allocs(runs[(case, "quadrel", sizes[0])]["allocs"])))
                continue
            allocs = [runs[(case, "quadrel", s)]["allocs"] for s in sizes]
            points = [time_per_point(case, s, runs[(case, "quadrel", s)]["ns"]) for s in sizes]
            steady = all(a is not None and a <= allocs[0] for a in allocs)
            # Every size against the smallest, so a bump in between counts too.
            changes = [p / points[0] - 1.0 for p in points]
            worst = max(changes, key=abs)
            linear = all(abs(c) <= SCALING_TOLERANCE for c in changes)
            problems = []
            if not steady:
                problems.append("allocations grow")
                missed.append("%s allocations grow with n: %s" % (
                    case, ", ".join(format_allocs(a) for a in allocs)))
            if not linear:
                problems.append("time per point off by %+.0f%%" % (worst * 100.0))
                missed.append("%s time per point changes by %+.0f%% over %s..%s" % (
                    case, worst * 100.0, format_size(case, sizes[0]), format_size(case, sizes[-1])))
            # The same change on the Eigen side, for scale: what the memory of the
            # machine costs any implementation as the data outgrow the caches.
            reference = [runs.get((case, "eigen", s)) for s in sizes]
            eigen_change = "–"
            if all(reference):
                eigen_points = [r["ns"] / s for r, s in zip(reference, sizes)]
                eigen_worst = max((p / eigen_points[0] - 1.0 for p in eigen_points), key=abs)
                eigen_change = "%+.0f%%" % (eigen_worst * 100.0)
            print("| %s | %s | %s | %s | %+.0f%% | %s | %s |" % (
                case, ", ".join(format_size(case, s) for s in sizes),
                ", ".join(format_allocs(a) for a in allocs),
                " -> ".join(format_time(p) for p in points), worst * 100.0, eigen_change,
                "yes" if not problems else "**no**: " + "; ".join(problems)))

    if missed:
        print("\nMissed:\n")
        for line in missed:
            print("- " + line)
    else:
        print("\nEvery goal met.")
    return 1 if args.check and missed else 0


if __name__ == "__main__":
    sys.exit(main())
