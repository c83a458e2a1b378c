#!/usr/bin/env python3
"""Generates lumcommon/values/detail/ColorTable.inc, the colour keywords and their values.

Source: Debian package vim-runtime 2:9.0.1378-2, file /usr/share/vim/vim90/colors/lists/csscolors.vim, which lists the
147 keywords of CSS 3 and SVG 1.1. "currentColor" and "transparent" are added with the markers that stand for them.
Where that is not installed, --check sees only whether the rows are sorted and counted.
"""
import pathlib
import re
import sys

from lib.generator import ROOT, mark, read, run, text_of

SOURCE = pathlib.Path("/usr/share/vim/vim90/colors/lists/csscolors.vim")
TARGET = ROOT / "lumcommon/values/detail/ColorTable.inc"
MARKERS = {"currentColor": 0xFE000000, "transparent": 0xFFFFFFFF}
KEYWORDS = 147


def generate():
    found = re.findall(r"'css_(\w+)': '#([0-9A-Fa-f]{6})'", SOURCE.read_text(encoding="utf-8"))
    colors = {name: int(value, 16) for name, value in found}
    if len(colors) != KEYWORDS:
        sys.exit(f"{SOURCE}: {len(colors)} keywords where {KEYWORDS} are expected")
    colors |= MARKERS
    rows = [
        f"// {mark()}",
        "// Source: Debian package vim-runtime 2:9.0.1378-2, colors/lists/csscolors.vim.",
        "// LUM_COLOR(enumerator without NAME_, value), in the order of the names.",
    ]
    rows += [f"LUM_COLOR({name}, 0x{colors[name]:08X})" for name in sorted(colors)]
    return {TARGET: text_of(rows)}


def check_rows():
    names = re.findall(r"^LUM_COLOR\((\w+), 0x[0-9A-F]{8}\)$", read(TARGET), re.MULTILINE)
    if names != sorted(set(names)) or len(names) != KEYWORDS + len(MARKERS):
        sys.exit(f"{TARGET.name}: {len(names)} rows, or rows out of order")


if __name__ == "__main__":
    sys.exit(run(__doc__, generate, SOURCE, check_rows))
