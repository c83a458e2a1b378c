#!/usr/bin/env python3
"""Generates tests/data/values/properties.txt: attribute values of real documents and what each must become.

Source: the attribute values of tests/data/fo (the compressed book included) and tests/data/svg; declarations of a
style attribute count one by one as well. An attribute name gives at most two values that differ only in digits
(coordinates) and 16 of the same tokens (identifiers). The results are worked out here, from the rules and not by the
library, so that the two can disagree.

A row has four fields between bars, with escapes as in C for what a field cannot hold:
  text    the attribute value
  value   kind, unit and printed form of LumValue::parse; "=" for the plain string of the whole text
  color   LumColor::toString(false) of LumValue::parseColor(text, true), "-" where it is not a colour
  tokens  LumTokenizer::nextToken to the end: N number, I name, S string, H hash colour, a delimiter as it is
"""
import lzma
import math
import re
import struct
import sys
import xml.etree.ElementTree as ElementTree

from lib.generator import ROOT, run

DATA = ROOT / "tests/data"
TARGET = DATA / "values/properties.txt"
LONGEST_UNITS = 160
EACH_SHAPE = 2
EACH_KIND = 16

INTEGER, REAL, NAME, STRING = 1, 2, 3, 4
NUMBER, PERCENT, QUOTED, IDENT, COLOR = 1, 2, 21, 23, 24
UNITS = dict(em=3, ex=4, px=5, cm=6, mm=7, pt=9, pc=10, jpt=11, q=12, deg=13, rad=14, grad=15, ms=16, s=17, Hz=18,
             kHz=19, dpi=28, twip=29) | {"in": 8}
UNIT_OF = {name.lower(): (code, name) for name, code in UNITS.items()} | {"%": (PERCENT, "%")}

SPACE = r"[ \t\n\r]*"
START = ("A-Za-z_\u00C0-\u02FF\u0370-\u037D\u037F-\u1FFF\u200C-\u200D\u2070-\u218F\u2C00-\u2FEF\u3001-\uD7FF"
         "\uF900-\uFFFF")
NAME_PATTERN = f"[{START}][{START}\\-.0-9\u00B7\u0300-\u036F\u203F-\u2040]*"
TOKEN = re.compile(SPACE + "(?:" + "|".join([
    f"(?P<I>{NAME_PATTERN})",
    "(?P<S>\"[^\"]*\"|'[^']*')",
    rf"(?P<N>(?P<number>[0-9]+\.?[0-9]*|\.[0-9]+)(?P<suffix>%|{NAME_PATTERN})?)",
    "#(?P<H>[0-9A-Fa-f]+)",
    r"(?P<delimiter>[^ \t\n\r])",
]) + ")")


def read_colors():
    rows = (ROOT / "lumcommon/values/detail/ColorTable.inc").read_text(encoding="ascii")
    return {name.lower(): int(value, 16) for name, value in re.findall(r"^LUM_COLOR\((\w+), (\w+)\)", rows, re.M)}


COLORS = read_colors()


def tokens_of(text):
    """Kind and match of each token."""
    found, at = [], 0
    while match := TOKEN.match(text, at):
        kind = next(kind for kind in ("I", "S", "N", "H", "delimiter") if match[kind] is not None)
        found.append((kind, match))
        at = match.end()
    return found


def real(number):
    """The nearest 32-bit float."""
    return struct.unpack("f", struct.pack("f", number))[0]


def hash_rgb(digits):
    value = min(int(digits, 16), 0xFFFFFFFF)
    if len(digits) <= 3:
        value = int("".join(2 * digit for digit in digits.zfill(3)), 16)
    return value


def print_rgb(rgb):
    return {0xFFFFFFFF: "transparent", 0xFE000000: "currentColor"}.get(rgb, f"#{rgb:06X}" if rgb < 1 << 24 else "")


def number_of(match, sign):
    """Kind, unit, number and unit string of a number token; none when its suffix would be a separate token."""
    digits, suffix = match["number"], match["suffix"]
    number = -float(digits) if sign == "-" else float(digits)
    if suffix is None:
        if "." not in digits and abs(number) < 2**31:
            return INTEGER, NUMBER, int(number), ""
        return REAL, NUMBER, real(number), ""
    if suffix.lower() not in UNIT_OF:
        return None
    unit, string = UNIT_OF[suffix.lower()]
    return REAL, unit, real(number), string


def signed_tokens(text):
    """The tokens, where a sign directly before a number belongs to it: kind, match and sign."""
    tokens = tokens_of(text)
    result, at = [], 0
    while at < len(tokens):
        kind, match = tokens[at]
        sign = ""
        if kind == "delimiter" and match[kind] in "+-" and at + 1 < len(tokens):
            next_kind, next_match = tokens[at + 1]
            if next_kind == "N" and next_match.start() == next_match.start("N") == match.end():
                kind, match, sign = next_kind, next_match, match["delimiter"]
                at += 1
        result.append((kind, match, sign))
        at += 1
    return result


def value_of(text):
    tokens = signed_tokens(text)
    if len(tokens) != 1:
        return "="
    kind, match, sign = tokens[0]
    if kind == "I":
        return f"{NAME} {IDENT} {match['I']}"
    if kind == "S":
        return f"{STRING} {QUOTED} {match['S'][1:-1]}"
    if kind == "H":
        return f"{INTEGER} {COLOR} {print_rgb(hash_rgb(match['H']))}"
    if kind == "N" and (number := number_of(match, sign)):
        return f"{number[0]} {number[1]} {number[2]:{'d' if number[0] == INTEGER else 'g'}}{number[3]}"
    return "="


def rgb_of(tokens):
    """The colour of rgb(r, g, b); none when the tokens are not that."""
    if len(tokens) < 6 or tokens[0][1]["I"] != "rgb":
        return None
    if tokens[1][1]["delimiter"] != "(" or tokens[-1][1]["delimiter"] != ")":
        return None
    channels, may_skip = [], False
    for kind, match, sign in tokens[2:-1]:
        if may_skip and match["delimiter"] == ",":
            may_skip = False
            continue
        number = number_of(match, sign) if kind == "N" else None
        if not number or number[1] not in (NUMBER, PERCENT):
            return None
        value = real(real(number[2] / 100) * 255) if number[1] == PERCENT else number[2]
        channels.append(min(max(math.floor(value + 0.5), 0), 255))
        may_skip = True
    return channels[0] << 16 | channels[1] << 8 | channels[2] if len(channels) == 3 else None


def color_of(text, may_be_quoted=True):
    tokens = signed_tokens(text)
    rgb = None
    if len(tokens) == 1:
        kind, match, _ = tokens[0]
        if kind == "I":
            rgb = COLORS.get(match["I"].lower())
        elif kind == "H":
            rgb = hash_rgb(match["H"])
        elif kind == "S" and may_be_quoted:
            return color_of(match["S"][1:-1], False)
    elif tokens:
        rgb = rgb_of(tokens)
    return "-" if rgb is None else print_rgb(rgb)


def token_kinds(text):
    return "".join(match[kind] if kind == "delimiter" else kind for kind, match in tokens_of(text))


def row_of(text):
    def escape(field):
        field = re.sub(r"[\\|]|^ | $", lambda found: f"\\x{ord(found.group()):02X}", field)
        return field.replace("\t", "\\t").replace("\n", "\\n")

    row = " | ".join(escape(field) for field in (text, value_of(text), color_of(text), token_kinds(text))).rstrip()
    return "\\x23" + row[1:] if row.startswith("#") else row


def read_documents():
    for file in sorted([*DATA.glob("fo/*"), *DATA.glob("svg/*.svg")]):
        data = file.read_bytes()
        yield ElementTree.fromstring(lzma.decompress(data) if file.suffix == ".xz" else data)


def collect():
    shapes = {}
    for root in read_documents():
        for element in root.iter():
            for name, text in element.attrib.items():
                declarations = text.split(";") if name == "style" else []
                for value in [text, *(part.partition(":")[2] for part in declarations)]:
                    if len(value) <= LONGEST_UNITS:
                        shapes.setdefault((name, re.sub("[0-9]+", "9", value)), set()).add(value)
    kinds = {}
    for (name, _), found in sorted(shapes.items()):
        for value in sorted(found)[:EACH_SHAPE]:
            kinds.setdefault((name, token_kinds(value)), []).append(value)
    # Of too many, some from everywhere in their order.
    return sorted({value for found in kinds.values() for value in found[::-(-len(found) // EACH_KIND)]})


if __name__ == "__main__":
    sys.exit(run(__doc__, lambda: {TARGET: "".join(row_of(value) + "\n" for value in collect())}))
