"""Questions that other programs answer, each with its own way of counting."""
import json
import statistics
import subprocess

from contest import OURS
from results import Result
from tables import text_table

ICU_QUESTIONS = {"number": "numbers to text", "xlsformat": "codes parsed, and cells shown by a parsed code"}
VALUE_OPERATIONS = ["parse", "parseColor", "to a colour", "tokens"]


def rounds_of(program, rounds, only):
    """The rows that a program of Google Benchmark prints; it mixes its own contenders."""
    command = [program, "--benchmark_format=json", "--benchmark_enable_random_interleaving=true",
               f"--benchmark_repetitions={rounds}", "--benchmark_min_time=0.05"]
    if only:
        command.append(f"--benchmark_filter={only}")
    run = subprocess.run(command, capture_output=True, check=True)
    rows = json.loads(run.stdout)["benchmarks"] if run.stdout.strip() else []
    return [row for row in rows if row["run_type"] == "iteration"]


def ask_icu(folder, rounds, only):
    for question, meaning in ICU_QUESTIONS.items():
        program = folder / f"bench_{question}"
        listed = subprocess.run([program, "--benchmark_list_tests"], capture_output=True, text=True, check=True).stdout
        times = {name.split("/")[2]: {} for name in listed.splitlines()}  # rounds are shuffled, rows are not
        for row in rounds_of(program, rounds, only):
            _, label, kind = row["run_name"].split("/")[:3]
            times[kind].setdefault(label, []).append(1e9 / row["items_per_second"])
        for kind, by_label in times.items():
            if OURS in by_label:
                yield Result(question, "", "", meaning, kind, "ns each", by_label)


def values_table(folder, rounds, only):
    """Nanoseconds a value, millions of values a second and allocations a value, for each kind of text."""
    cells = {}
    for row in rounds_of(folder / "bench_value", rounds, only):
        _, operation, group = row["run_name"].split("/")
        times, allocations = cells.setdefault(group, {}).setdefault(operation, ([], []))
        times.append(1e9 / row["items_per_second"])
        allocations.append(row["allocations"])
    if not cells:
        return ""
    shown = [operation for operation in VALUE_OPERATIONS if any(operation in found for found in cells.values())]
    rows = [["property texts to values, ns a value"] + [title for o in shown for title in (o, "M/s", "memory")]]
    for group, found in sorted(cells.items()):
        row = [group]
        for operation in shown:
            times, allocations = found.get(operation, ([], []))
            row += ([f"{statistics.median(times):.2f}", f"{1e3 / statistics.median(times):.1f}",
                     f"{min(allocations):.2f}"] if times else [""] * 3)
        rows.append(row)
    return text_table(rows) + "\nmemory: allocations a value"
