#!/usr/bin/env python3
"""Fails when the includes in lumcommon/ are not those of the ladder in docs/architecture.md.

The table "Rooms" of that page names the rooms and what each may include. It must have no circle, every include must be
allowed by it, and everything that it allows must be used. What is read is the page itself, so it cannot go out of date.
"""
import pathlib
import sys

from rooms import PAGE, is_address, read_edges, read_rules, room_of


def circle(allowed):
    """Rooms that include each other, directly or over others; empty when there are none."""
    pending = dict(allowed)
    while pending:
        lowest = [room for room, below in pending.items() if not set(below) & pending.keys()]
        if not lowest:
            return sorted(pending)
        for room in lowest:
            del pending[room]
    return []


def faults(allowed, edges):
    if found := circle(allowed):
        yield f"{PAGE.name}: these rooms include each other in a circle: {', '.join(found)}"
    for (room, target), includes in sorted(edges.items()):
        if target not in allowed.get(room, []):
            for path, include in includes:
                yield f"lumcommon/{path}: includes {include}, which {PAGE.name} does not allow"
    for room, below in allowed.items():
        for target in below:
            if (room, target) not in edges:
                yield f"{PAGE.name}: {room} may include {target}, which nothing in it does"


def check_the_check():
    """A rule that cannot fail proves nothing."""
    rules = {"low": [], "high": ["low"], "high/in": ["low"]}
    used = {("high", "low"): [("high/a.h", "lumcommon/low/b.h")], ("high/in", "low"): [("high/in/a.h", "x")]}
    assert not list(faults(rules, used))
    assert list(faults(rules, {**used, ("low", "high"): [("low/b.cpp", "x")]})), "an upward include is not seen"
    assert list(faults(rules, {("high", "low"): []})), "a permission that nobody uses is not seen"
    assert list(faults({"low": ["high"], "high": ["low"]}, {("low", "high"): [], ("high", "low"): []})), "a circle"
    assert room_of("high/in/detail/a.h", rules) == "high/in" and room_of("high/detail/a.h", rules) == "high"
    header = pathlib.Path("names/A.h")
    assert is_address(header, "#pragma once\n\n// Elsewhere.\n#include <lumcommon/values/A.h>\n")
    assert not is_address(header, "#pragma once\n#include <lumcommon/values/A.h>\nclass B;\n")
    assert not is_address(header, "#pragma once\n#include <lumcommon/values/B.h>\n")


def main():
    check_the_check()
    allowed = read_rules(PAGE.read_text(encoding="utf-8"))
    edges, files = read_edges(allowed)
    assert files > 20, "hardly any file was found"
    found = list(faults(allowed, edges))
    print("\n".join(found))
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
