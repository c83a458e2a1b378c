#!/usr/bin/env python3
"""Generates lumcommon/xml/MathMLEntities.inc, the character entities of MathML 2.0.

Source: Debian package w3c-sgml-lib 1.3-3, folder XX-MathML2-20031104 below /usr/share/xml/w3c-sgml-lib/schema/dtd: the
entity modules that mathml2.dtd names, read in its order; the first declaration of a name counts.

A row holds what an XML processor stores when it reads the declaration: character references are replaced once,
references to entities stay as they are ("%plane1D;504;"). Two corrections of that edition:
  - `lt` and `amp` are the plain characters, not references to them;
  - five names for combining marks hold the bare mark: that edition puts a blank before it.

Where the package is not installed, --check sees the counts of the rows alone.
"""
import pathlib
import re
import sys

from lib.generator import ROOT, mark, read, run, text_of

SOURCE = pathlib.Path("/usr/share/xml/w3c-sgml-lib/schema/dtd/XX-MathML2-20031104")
TARGET = ROOT / "lumcommon/xml/MathMLEntities.inc"
PLAIN = {"lt": "<", "amp": "&"}
BARE_MARKS = {"DotDot", "tdot", "TripleDot", "DownBreve", "UnderBar"}
PLANE_1 = re.compile(r"%plane1D;[0-9A-F]{3};")
ROWS = 2086
LONG_VALUES = 226  # of more than one UTF-16 unit
PLANE_1_VALUES = 133

COMMENT = re.compile(r"<!--.*?-->", re.DOTALL)
MODULE = re.compile(r'<!ENTITY\s+%\s+(ent-[\w-]+)\s+PUBLIC\s+"[^"]*"\s+"([^"]+)"\s*>\s*%\1;')
ENTITY = re.compile(r"""<!ENTITY\s+([A-Za-z][\w.-]*)\s+(?:"([^"]*)"|'([^']*)')\s*>""")
REFERENCE = re.compile(r"&#(?:x([0-9A-Fa-f]+)|([0-9]+));")


def replaced_once(literal):
    return REFERENCE.sub(lambda found: chr(int(found[1], 16) if found[1] else int(found[2])), literal)


def read_declarations():
    modules = MODULE.findall(COMMENT.sub("", (SOURCE / "mathml2.dtd").read_text(encoding="ascii")))
    entities = {}
    for _, file in modules:
        text = COMMENT.sub("", (SOURCE / file).read_text(encoding="ascii"))
        found = ENTITY.findall(text)
        if len(found) != len(re.findall(r"<!ENTITY\s+[^%\s]", text)):
            sys.exit(f"{file}: a declaration was not understood")
        for name, in_double, in_single in found:
            entities.setdefault(name, replaced_once(in_double or in_single))
    return entities


def correct(entities):
    for name, text in PLAIN.items():
        if replaced_once(entities[name]) != text:
            sys.exit(f"{name}: not a reference to {text}")
        entities[name] = text
    for name in BARE_MARKS:
        if not re.fullmatch(" [\u0300-\u036F\u20D0-\u20FF]", entities[name]):
            # The bare mark may come with another edition: then this correction has to go.
            sys.exit(f"{name}: not a blank and a combining mark")
        entities[name] = entities[name][1:]


def check_counts(entities):
    lengths = [len(text.encode("utf-16-le")) // 2 for text in entities.values()]
    counts = (
        ("rows", ROWS, len(entities)),
        ("values longer than one unit", LONG_VALUES, sum(length > 1 for length in lengths)),
        ("plane 1 values", PLANE_1_VALUES, sum(bool(PLANE_1.fullmatch(text)) for text in entities.values())),
        ("empty values", 0, sum(length == 0 for length in lengths)),
    )
    wrong = [f"{what}: {found} instead of {expected}" for what, expected, found in counts if found != expected]
    if wrong:
        sys.exit("\n".join(wrong))


def literal(text):
    """The text inside a C++ string literal. A universal character name cannot swallow a digit that follows it."""
    special = {'"': '\\"', "\\": "\\\\", "\t": "\\t", "\n": "\\n"}
    shown = ""
    for character in text:
        if character in special:
            shown += special[character]
        elif " " <= character <= "~":
            shown += character
        elif character >= "\u00A0":
            shown += f"\\u{ord(character):04X}" if character <= "\uFFFF" else f"\\U{ord(character):08X}"
        else:
            sys.exit(f"U+{ord(character):04X} cannot be written as a universal character name")
    return shown


def generate():
    entities = read_declarations()
    correct(entities)
    check_counts(entities)
    rows = [
        f"// {mark()}",
        "// Source: Debian package w3c-sgml-lib 1.3-3, XX-MathML2-20031104, the entity modules of mathml2.dtd.",
        "// LUM_ENTITY(name, replacement text), in the order of the names.",
    ]
    rows += [f'LUM_ENTITY("{name}", "{literal(entities[name])}")' for name in sorted(entities)]
    return {TARGET: text_of(rows)}


def read_rows(text):
    """The table as it stands, for machines without the package."""
    entities = {}
    escapes = re.compile(r'\\(?:u([0-9A-F]{4})|U([0-9A-F]{8})|(["\\tn]))')
    letters = {"t": "\t", "n": "\n"}
    for name, shown in re.findall(r'^LUM_ENTITY\("([\w.-]+)", "(.*)"\)$', text, re.MULTILINE):
        entities[name] = escapes.sub(
            lambda found: letters.get(found[3], found[3]) if found[3] else chr(int(found[1] or found[2], 16)), shown)
    return entities


if __name__ == "__main__":
    sys.exit(run(__doc__, generate, SOURCE, lambda: check_counts(read_rows(read(TARGET)))))
