#!/usr/bin/env python3
"""Runs the benchmark programs and prints one table.   table.py FOLDER [--rounds N] [--only WORD]

A program runs its contenders in random order, round by round, so that a change in the machine's speed affects them all.
An entry is the median time in nanoseconds per byte, or per other unit of work; the spread is from the fastest to the
slowest round. The ratio is our time divided by the peer's (below 1: we are faster). Where the two ranges overlap, the
ratio is marked with ~: no difference is claimed.
"""
import argparse
import json
import pathlib
import statistics
import subprocess
import sys

OURS = "lumcommon"
QUESTIONS = {  # meaning, what is counted, the unit for millions of these per second
    "parse": ("bytes to events", "bytes", "MB/s"),
    "load": ("bytes to a tree", "bytes", "MB/s"),
    "save": ("a tree to bytes", "bytes", "MB/s"),
    "number": ("numbers to text", "items", "M/s"),
    "xlsformat": ("codes parsed, and cells shown by a parsed code", "items", "M/s"),
}
VALUE_OPERATIONS = ["parse", "parseColor", "to a colour", "tokens"]


def run_rounds(program, rounds, only):
    command = [program, "--benchmark_format=json", "--benchmark_enable_random_interleaving=true",
               f"--benchmark_repetitions={rounds}", "--benchmark_min_time=0.05"]
    if only:
        command.append(f"--benchmark_filter={only}")
    run = subprocess.run(command, capture_output=True)
    if run.returncode != 0:
        sys.exit(f"{program}: {run.stderr.decode()}")
    return json.loads(run.stdout)["benchmarks"] if run.stdout.strip() else []


def measure(program, counted, rounds, only):
    measured = run_rounds(program, rounds, only)
    listed = subprocess.run([program, "--benchmark_list_tests"], capture_output=True).stdout.decode().splitlines()
    order = dict.fromkeys(name.split("/")[2] for name in listed)  # rounds are shuffled, rows are not
    times = {document: {} for document in order}
    for row in measured:
        if row["run_type"] == "iteration":
            _, label, document = row["run_name"].split("/")[:3]
            times[document].setdefault(label, []).append(1e9 / row[f"{counted}_per_second"])
    return {document: by_label for document, by_label in times.items() if by_label}


def cell(times):
    return f"{statistics.median(times):.2f} ({min(times):.2f}-{max(times):.2f})"


def print_rows(rows):
    widths = [max(len(row[i]) for row in rows) for i in range(len(rows[0]))]
    print()
    for row in rows:
        print("  ".join([row[0].ljust(widths[0])] + [c.rjust(w) for c, w in zip(row[1:], widths[1:])]))


def print_values(program, rounds, only):
    """Nanoseconds per value, millions of values per second and allocations per value, for each kind of text."""
    cells = {}
    for row in run_rounds(program, rounds, only):
        if row["run_type"] == "iteration":
            _, operation, group = row["run_name"].split("/")
            times, allocations = cells.setdefault(group, {}).setdefault(operation, ([], []))
            times.append(1e9 / row["items_per_second"])
            allocations.append(row["allocations"])
    shown = [operation for operation in VALUE_OPERATIONS if any(operation in found for found in cells.values())]
    rows = [["value: property texts to values, ns a value"] + [title for o in shown for title in (o, "M/s", "memory")]]
    for group, found in sorted(cells.items()):
        row = [group]
        for operation in shown:
            times, allocations = found.get(operation, ([], []))
            row += [cell(times), f"{1e3 / statistics.median(times):.1f}", f"{min(allocations):.2f}"] if times else [""] * 3
        rows.append(row)
    if cells:
        print_rows(rows)
        print("memory: allocations a value")


def ratio(ours, theirs):
    overlap = min(ours) <= max(theirs) and min(theirs) <= max(ours)
    return f"{'~' if overlap else ''}{statistics.median(ours) / statistics.median(theirs):.2f}"


def main():
    options = argparse.ArgumentParser()
    options.add_argument("folder", type=pathlib.Path)
    options.add_argument("--rounds", type=int, default=7)
    options.add_argument("--only", default="")
    options = options.parse_args()
    print("Nanoseconds, median (fastest-slowest round); ratio: our time divided by theirs, ~ where ranges overlap.")
    missing = (options.folder / "missing-peers.txt").read_text(encoding="utf-8").strip()
    if missing:
        print(f"Not installed, so not measured: {missing}")
    for question, (meaning, counted, speed) in QUESTIONS.items():
        times = measure(options.folder / f"bench_{question}", counted, options.rounds, options.only)
        peers = sorted({label for by_label in times.values() for label in by_label} - {OURS})
        unit = "a byte" if counted == "bytes" else "each"
        rows = [[f"{question}: {meaning}, ns {unit}", OURS, speed] + [text for peer in peers for text in (peer, "ratio")]]
        for document, by_label in times.items():
            ours = by_label[OURS]
            row = [document, cell(ours), f"{1e3 / statistics.median(ours):.0f}"]
            for peer in peers:
                row += [cell(by_label[peer]), ratio(ours, by_label[peer])] if peer in by_label else ["", ""]
            rows.append(row)
        print_rows(rows)
    print_values(options.folder / "bench_value", options.rounds, options.only)
    if not options.only:
        print()
        sys.stdout.flush()
        sys.exit(subprocess.run([options.folder / "bench_ole"]).returncode)


if __name__ == "__main__":
    main()
