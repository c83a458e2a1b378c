#!/usr/bin/env python3
"""Generates Sequences.inc and Alphabets.inc in lumcommon/format/detail from lumcommon/format/alphabets.txt, and
tests/data/format/alphabets.txt: what counting in each alphabet gives, worked out here and not by the library.

Source: this project's own list of alphabets, one a line, each after its count of letters.
"""
import sys

from lib.generator import ROOT, mark, run, text_of

FOLDER = ROOT / "lumcommon/format"
SOURCE = FOLDER / "alphabets.txt"
TEST_ROWS = ROOT / "tests/data/format/alphabets.txt"
SCRIPTS = {"latin": "LATIN", "greek": "GREEK", "cyrillic": "CYRILLIC"}
TOKENS = {"latin": "Aa", "greek": "\u0391\u03b1", "cyrillic": "\u0410\u0430"}
LATIN_UPPER = "ABCDEFGHIJKLMNOPQRSTUVWXYZ"  # of an alphabet without upper case


def literal(letters, count, line):
    """The letters as a C++ string literal in ASCII."""
    letters = "" if letters == "-" else letters
    if len(letters) != int(count) or len(set(letters)) != len(letters) or any(ord(c) > 0xFFFF for c in letters):
        sys.exit(f"{SOURCE.name}: {len(letters)} letters, a letter twice, or one beyond 16 bits: {line}")
    escaped = "".join(c if c.isascii() else f"\\u{ord(c):04X}" for c in letters)
    return f'{count}, u"{escaped}"'


def numeral(number, letters):
    """In bijective base N."""
    text = ""
    while number > 0:
        number, index = divmod(number - 1, len(letters))
        text = letters[index] + text
    return text


def test_row(fault, token, language, letters):
    """Every letter, and the numbers around which a place is added."""
    size = len(letters)
    two, three = size + size**2, size + size**2 + size**3
    numbers = [*range(1, size + 2), 2 * size, 2 * size + 1, two, two + 1, three, three + 1, 2147483647]
    texts = " ".join(numeral(number, letters) for number in numbers)
    return f"{fault} | format | {token} |  | 0 | {language} | {' '.join(map(str, numbers))} | {texts}"


def generate():
    sequences, languages, rows = [], [], []
    for line in SOURCE.read_text(encoding="utf-8").splitlines():
        fields = line.split()
        if not fields or line.startswith("#"):
            continue
        if len(fields) == 3:
            name, count, letters = fields
            sequences.append(f"LUM_SEQUENCE({name}, {literal(letters, count, line)})")
            if "DIGITS" not in name:
                rows.append(test_row(name, letters[0], "", letters))
        else:
            code, script, upper_count, upper, lower_count, lower = fields
            for tokens in sorted({TOKENS["latin"], TOKENS[script]}):
                rows.append(test_row(code, tokens[0], code, LATIN_UPPER if upper == "-" else upper))
                rows.append(test_row(code, tokens[1], code, lower))
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
        TEST_ROWS: text_of([f"# {mark()} The columns are those of numbers.txt.", *rows]),
    }


if __name__ == "__main__":
    sys.exit(run(__doc__, generate))
