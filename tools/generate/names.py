#!/usr/bin/env python3
"""Generates the name tables from the lists in lumcommon/names.

Source: this project's own lists, one name a line; the line number is the identifier. The lists are only ever
appended to: identifiers are fixed in every process and every release.

  builtin-names.txt  gives  BuiltinNames.inc   enumerators NAME_...
  svg-names.txt      gives  SVGNames.inc       enumerators SVG_...
  mathml-names.txt   gives  MathMLNames.inc    enumerators MATHML_...
"""
import re
import sys

from lib.generator import ROOT, mark, run, text_of

FOLDER = ROOT / "lumcommon/names"
TABLES = [
    ("builtin-names.txt", "BuiltinNames.inc", "NAME_"),
    ("svg-names.txt", "SVGNames.inc", "SVG_"),
    ("mathml-names.txt", "MathMLNames.inc", "MATHML_"),
]

# Namespace URIs have their own enumerators: spelled out, they would be unreadable.
NAMESPACES = {
    "http://ns.lumset.example/names/XSL/AreaTree": "NS_AREATREE",
    "http://ns.lumset.example/names/XSL/Extensions": "NS_EXTENSIONS",
    "http://ns.lumset.example/names/XSL/Lum": "NS_LUM",
    "http://www.w3.org/1999/XSL/Format": "NS_FO",
    "http://www.w3.org/1999/XSL/Transform": "NS_XSLT",
    "http://www.w3.org/2000/xmlns/": "NS_XMLNS",
    "http://www.w3.org/XML/1998/namespace": "NS_XML",
}


def enumerator(name, used):
    """The string with every character but letters and digits as _; a clash takes _2, _3, ..."""
    if name in NAMESPACES:
        stem = NAMESPACES[name]
    elif name.startswith("#"):
        stem = "HASH_" + re.sub(r"[^A-Za-z0-9]", "_", name[1:])
    else:
        stem = re.sub(r"[^A-Za-z0-9]", "_", name)
    used[stem] = used.get(stem, 0) + 1
    return stem if used[stem] == 1 else f"{stem}_{used[stem]}"


def make_table(source, prefix):
    names = (FOLDER / source).read_text(encoding="ascii").splitlines()
    repeated = sorted({name for name in names if names.count(name) > 1})
    if repeated or "" in names:
        sys.exit(f"{source}: empty or repeated names: {repeated}")
    used = {}
    rows = [
        f"// {mark()}   Source: lumcommon/names/{source}",
        f"// LUM_NAME(enumerator without {prefix}, string), in identifier order from 1.",
    ]
    rows += [f'LUM_NAME({enumerator(name, used)}, "{name}")' for name in names]
    return text_of(rows)


def generate():
    return {FOLDER / target: make_table(source, prefix) for source, target, prefix in TABLES}


if __name__ == "__main__":
    sys.exit(run(__doc__, generate))
