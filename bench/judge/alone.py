"""Questions in which we are measured against ourselves: ways of use, threads, growth, the tool, endless documents."""
import os
import subprocess

from contest import OURS, Contender, take_turns
from inputs import GROWTH
from results import Result

TWO_THREADS = [("events", "20M", "FO"), ("tree", "20M", "FO"), ("events", "95K", "FO"), ("tree", "95K", "FO"),
               ("save", "20M", "FO"), ("inflate", "20M", "FO"), ("names", "", "built-in names"), ("names", "", "other names")]

TOOL_KINDS = ("FO", "attributes", "text", "markup")

USES = {"use-events": ("events", "FO", "20M"), "use-tree": ("a tree", "FO", "20M"),
        "use-walk": ("all nodes of a tree", "FO", "20M"), "use-element": ("every element", "attributes", "95K")}


def ask_uses(field, files, rounds, wanted):
    """Ways to the same end; the first of each question is what the others are compared with."""
    for asked, (meaning, kind, size) in USES.items():
        if wanted("uses", asked, meaning):
            measured = field.measure(asked, files.of(asked, kind, size), rounds)
            yield Result(asked, "", size, meaning, kind, "ns a byte",
                         {label: times[""] for label, times in measured.items()})


def ask_threads(field, files, rounds, wanted):
    """How much more two threads do than one, each with its own document. Wall time: the machine must be idle."""
    for asked, size, kind in TWO_THREADS:
        if not wanted("two threads", asked, kind):
            continue
        labels = [label for label in field.labels(asked) if label in (OURS, "libxml2 SAX2", "libxml2", "zlib")]
        measured = field.measure(asked, files.of(asked, kind, size), rounds, labels, "pair")
        yield Result("two threads", "", "", "two threads", f"{asked} {kind} {size}".strip(), "times one",
                     {label: times[""] for label, times in measured.items()})


def ask_growth(field, files, rounds, wanted):
    """The time for 2n over that for n."""
    for asked, part in (("events", ""), ("tree", "build+free")):
        program = field.programs[asked, OURS]
        for direction in GROWTH:
            if not wanted("growth", asked, direction):
                continue
            paths = files.growth(direction)
            pair = [Contender(program, asked, OURS, path) for path in paths]
            for contender in pair:
                contender.read_answer()
            take_turns(pair, rounds)
            for contender in pair:
                contender.stop()
            one, two = ([time * path.stat().st_size for time in contender.times[part]]
                        for contender, path in zip(pair, paths))
            yield Result("growth", "", "", "growth from n to 2n", f"{asked}, {direction}", "times",
                         {OURS: [b / a for a, b in zip(one, two)]})


def cpu_seconds(command):
    """Of a program whose output is thrown away."""
    with open(os.devnull, "w", encoding="utf-8") as nowhere:
        process = subprocess.Popen(command, stdout=nowhere)
        _, status, usage = os.wait4(process.pid, 0)
    process.returncode = os.waitstatus_to_exitcode(status)
    if process.returncode != 0:
        raise RuntimeError(f"{command} failed")
    return usage.ru_utime + usage.ru_stime


def ask_tool(field, files, rounds, wanted, tool):
    """`lum events` against the parser alone; the lines that it writes are many times as long as the document."""
    for kind in TOOL_KINDS:
        if not wanted("lum events", "20M", kind):
            continue
        file = files.document(kind, "20M")
        contender = field.start("events", file, [OURS])[0]
        tool_times = []
        for _ in range(rounds):
            contender.take_turn("go")
            tool_times.append(1e9 * cpu_seconds([tool, "events", file]) / file.stat().st_size)
        contender.stop()
        yield Result("lum events", "", "20M", "`lum events`", kind, "ns a byte",
                     {OURS: tool_times, "parser": contender.times[""]})


def ask_stream(folder, rounds, megabytes):
    """Deferred loading and saving in pieces of a document of that size."""
    told = [subprocess.run([folder / "bench_stream", str(megabytes)], capture_output=True, text=True, check=True)
            .stdout.split() for _ in range(rounds)]
    for meaning, unit, column in (("deferred load and save in pieces", "MB/s", 0), ("its memory at most", "MB", 1)):
        yield Result("stream", unit, f"{megabytes} MB", meaning, "FO", unit,
                     {OURS: [float(row[column]) for row in told]})
