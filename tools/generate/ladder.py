#!/usr/bin/env python3
"""Draws docs/ladder.svg, the rooms of the library and what they include, from the includes themselves.

An arrow leads from a room to one that it includes; arrows that follow from others are left out (a room that includes
`values/` may include what `values/` includes). The rooms are those of the table in docs/architecture.md.
"""
import sys

from lib.generator import ROOT, mark, run

sys.path.insert(0, str(ROOT / "tests/layering"))
from rooms import PAGE, read_edges, read_rules  # noqa: E402

TARGET = ROOT / "docs/ladder.svg"
WIDTH, STEP, BOX_WIDTH, BOX_HEIGHT, MARGIN = 820, 92, 132, 34, 16

# Chosen so that no arrow runs behind a box; from 0 (left) to 4.
COLUMNS = {"core": 2, "streams": 1, "names": 3, "containers": 0, "uri": 1.3, "lang": 4, "values": 3, "xml": 1.5,
           "containers/office": 0.1, "uri/open": 1.1, "dom": 2.1, "format/xls": 3.1, "format": 4, "bridge": 0.85}


def reachable(room, below):
    found, waiting = set(), list(below[room])
    while waiting:
        target = waiting.pop()
        if target not in found:
            found.add(target)
            waiting += below[target]
    return found


def reduced(below):
    """The arrows that do not follow from others."""
    return [(room, target) for room, targets in below.items() for target in targets
            if not any(target in reachable(other, below) for other in targets if other != target)]


def level_of(room, below):
    return 1 + max((level_of(target, below) for target in below[room]), default=-1)


def place(rooms, below):
    """The middle of each box: a room stands higher than what it includes."""
    levels = {room: level_of(room, below) for room in rooms}
    top = max(levels.values())
    left = MARGIN + BOX_WIDTH // 2
    return {room: (left + round(COLUMNS[room] * (WIDTH - 2 * left) / 4), MARGIN + BOX_HEIGHT // 2 + STEP * (top - level))
            for room, level in levels.items()}, top


def draw():
    rules = read_rules(PAGE.read_text(encoding="utf-8"))
    edges, _ = read_edges(rules)
    below = {room: [target for target in rules if (room, target) in edges] for room in rules}
    arrows = reduced(below)
    places, top = place(rules, below)
    height = 2 * MARGIN + BOX_HEIGHT + STEP * top
    lines = [f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {WIDTH} {height}" width="{WIDTH}" height="{height}" '
             'font-family="sans-serif" font-size="14">',
             f'<!-- {mark().replace(" --write", "")} -->',
             '<title>The rooms of the library; an arrow leads to what a room includes</title>',
             '<defs><marker id="head" viewBox="0 0 8 8" refX="8" refY="4" markerWidth="8" markerHeight="8" orient="auto">'
             '<path d="M0 0L8 4L0 8z" fill="#557"/></marker></defs>',
             f'<rect width="{WIDTH}" height="{height}" fill="#fff"/>']
    for room, target in arrows:
        (x1, y1), (x2, y2) = places[room], places[target]
        lines.append(f'<path d="M{x1} {y1 + BOX_HEIGHT // 2}L{x2} {y2 - BOX_HEIGHT // 2}" stroke="#557" '
                     f'marker-end="url(#head)"/><!-- {room} -> {target} -->')
    for room, (x, y) in places.items():
        lines.append(f'<rect x="{x - BOX_WIDTH // 2}" y="{y - BOX_HEIGHT // 2}" width="{BOX_WIDTH}" height="{BOX_HEIGHT}" '
                     'rx="6" fill="#eef" stroke="#557"/>')
        lines.append(f'<text x="{x}" y="{y + 5}" text-anchor="middle">{room}/</text>')
    return "\n".join([*lines, "</svg>", ""])


if __name__ == "__main__":
    sys.exit(run(__doc__, lambda: {TARGET: draw()}))
