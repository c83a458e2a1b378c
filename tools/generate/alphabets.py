#!/usr/bin/env python3
"""Generates Sequences.inc and Alphabets.inc in lumcommon/format/detail from lumcommon/format/alphabets.txt.

Source: this project's own list of alphabets, one a line, each after its count of letters.
"""
import sys

from lib.generator import ROOT, mark, run, text_of

FOLDER = ROOT / "lumcommon/format"
SOURCE = FOLDER / "alphabets.txt"
SCRIPTS = {"latin": "LATIN", "greek": "GREEK", "cyrillic": "CYRILLIC"}


def literal(letters, count, line):
    """The letters as a C++ string literal in ASCII."""
    letters = "" if letters == "-" else letters
    if len(letters) != int(count) or len(set(letters)) != len(letters) or any(ord(c) > 0xFFFF for c in letters):
        sys.exit(f"{SOURCE.name}: {len(letters)} letters, a letter twice, or one beyond 16 bits: {line}")
    escaped = "".join(c if c.isascii() else f"\\u{ord(c):04X}" for c in letters)
    return f'{count}, u"{escaped}"'


def generate():
    sequences, languages = [], []
    for line in SOURCE.read_text(encoding="utf-8").splitlines():
        fields = line.split()
        if not fields or line.startswith("#"):
            continue
        if len(fields) == 3:
            name, count, letters = fields
            sequences.append(f"LUM_SEQUENCE({name}, {literal(letters, count, line)})")
        else:
            code, script, upper_count, upper, lower_count, lower = fields
            languages.append(f'LUM_ALPHABET("{code}", {SCRIPTS[script]}, {literal(upper, upper_count, line)}, '
                             f"{literal(lower, lower_count, line)})")
    head = f"// {mark()}   Source: lumcommon/format/{SOURCE.name}"
    return {
        FOLDER / "detail/Sequences.inc": text_of([head, "// LUM_SEQUENCE(name, count, letters)", *sequences]),
        FOLDER / "detail/Alphabets.inc": text_of([
            head,
            "// LUM_ALPHABET(language, script, count and letters in upper case, count and letters in lower case), sorted",
            *sorted(languages),
        ]),
    }


if __name__ == "__main__":
    sys.exit(run(__doc__, generate))
