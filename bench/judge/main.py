#!/usr/bin/env python3
"""Measures this library beside the libraries that are installed.   scripts/bench [OPTION...]

Contenders are asked in random order, round by round, so that a change in the machine's speed meets them all; a number is
the CPU time of the working thread, the median of the rounds, and in parentheses the middle half of them. All contenders
have found the same in an input before anything is timed. A ratio is the peer's time divided by ours: above 1 we are
faster. Where the middle halves overlap, it is marked with ~: no difference is claimed.
"""
import argparse
import pathlib
import subprocess
import sys

import alone
import contest
import inputs
import others
import pages
import plot
import questions
import results
import tables


def options_of(arguments):
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter,
                                     prog="scripts/bench")
    parser.add_argument("folder", type=pathlib.Path, help=argparse.SUPPRESS)
    parser.add_argument("--rounds", type=int, default=7)
    parser.add_argument("--only", default="", metavar="WORDS",
                        help="only what all these words occur in: questions, sizes, inputs")
    parser.add_argument("--targets", action="store_true", help="print the ratios only, with what we aim at")
    parser.add_argument("--plot", type=pathlib.Path, metavar="FILE", help="draw the ratios as SVG")
    parser.add_argument("--pages", action="store_true",
                        help="put the ratios into README.md and docs/performance.md, and the picture beside the latter")
    parser.add_argument("--store", type=pathlib.Path, metavar="FILE", help="store what was measured")
    parser.add_argument("--from", type=pathlib.Path, metavar="FILE", dest="stored", help="measure nothing: read FILE")
    parser.add_argument("--stream-mb", type=int, default=64, metavar="N",
                        help="size of the document that is loaded and saved in pieces (default 64; try 2000)")
    parser.add_argument("--check", action="store_true", help="only compare the answers, on small inputs")
    return parser.parse_args(arguments)


def wanted(only):
    return lambda *told: all(word in " ".join(told).lower() for word in only.lower().split())


def ask_contenders(field, files, rounds, is_wanted):
    for question in questions.QUESTIONS:
        for kind in question.kinds:
            if not is_wanted(question.asked, question.meaning, question.size, kind):
                continue
            print(f"{question.meaning}, {kind} {question.size}", file=sys.stderr)
            try:
                measured = field.measure(question.asked, files.of(question.asked, kind, question.size), rounds)
            except contest.Unfair as fault:
                print(f"Not measured: {fault}", file=sys.stderr)
                continue
            for part, meaning in question.parts.items():
                yield results.Result(question.asked, part, question.size,
                                     f"{question.meaning}: {meaning}" if meaning else question.meaning, kind,
                                     question.unit, {label: times[part] for label, times in measured.items()})


def ask_memory(field, files, rounds, is_wanted):
    for kind in questions.ALL:
        if is_wanted("memory", "20M", kind):
            yield results.Result("memory", "", "20M", "memory of a tree", kind, "bytes a byte of input",
                                 field.memory(files.of("walk", kind, "20M"), min(rounds, 3)))


def measure(options, field, files):
    is_wanted = wanted(options.only)
    yield from ask_contenders(field, files, options.rounds, is_wanted)
    yield from ask_memory(field, files, options.rounds, is_wanted)
    yield from alone.ask_uses(field, files, options.rounds, is_wanted)
    yield from alone.ask_threads(field, files, options.rounds, is_wanted)
    yield from alone.ask_growth(field, files, options.rounds, is_wanted)
    yield from alone.ask_tool(field, files, options.rounds, is_wanted, options.folder.parent / "tools/lum/lum")
    if is_wanted("stream deferred"):
        yield from alone.ask_stream(options.folder, min(options.rounds, 3), options.stream_mb)
    yield from others.ask_icu(options.folder, options.rounds, options.only)


def sorted_by_question(found):
    """The parts of a question are measured together for an input, and told apart over all inputs."""
    order = {}
    found = list(found)
    for result in found:
        order.setdefault((result.asked, result.size, result.part), len(order))
    return sorted(found, key=lambda result: order[result.asked, result.size, result.part])


def check(field, files):
    for question in questions.QUESTIONS:
        for kind in question.kinds:
            field.compare(question.asked, files.of(question.asked, kind, "95K"))
    for asked in alone.USES:
        field.compare(asked, files.of(asked, "FO", "95K"))
    print("equal answers")


def main():
    options = options_of(sys.argv[1:])
    field = contest.Field(options.folder)
    files = inputs.Inputs(options.folder / "inputs")
    if options.check:
        return check(field, files)
    if field.missing:
        print(f"Not installed, so not measured: {', '.join(field.missing)}")
    if options.stored:
        about, found = results.read(options.stored)
    else:
        about, found = results.describe_run(options.rounds), sorted_by_question(measure(options, field, files))
    if options.store:
        results.store(options.store, about, found)
    uses = [result for result in found if result.is_use()]
    contests = [result for result in found if not result.is_use()]
    print(about + "\n")
    shown = []
    if not options.targets:
        shown += [tables.times_table(group) for group in tables.grouped(contests)]
        if not options.stored:
            shown.append(others.values_table(options.folder, options.rounds, options.only))
        shown.append(tables.text_table(tables.use_rows(uses)))
    shown.append(tables.text_table(tables.ratio_rows(contests, questions.ALL, with_goals=options.targets)))
    shown.append(tables.text_table(tables.other_rows(contests)))
    print("\n\n".join(filter(None, shown)))
    if options.plot:
        options.plot.write_text(plot.draw(contests), encoding="utf-8")
    if options.pages:
        pages.rewrite(about, contests, uses)
    if not options.only and not options.stored and not options.targets:
        print(flush=True)
        subprocess.run([options.folder / "bench_ole"], check=True)
    return 0


if __name__ == "__main__":
    sys.exit(main())
