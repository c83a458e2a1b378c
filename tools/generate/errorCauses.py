#!/usr/bin/env python3
"""Generates lumcommon/xml/XmlErrorCauses.inc: the names of the parser's error codes, and their causes.

Source: the enumeration in lumcommon/xml/LumXmlErrorCode.h with its comments.
"""
import re
import sys

from lib.generator import ROOT, mark, read, run, text_of

SOURCE = ROOT / "lumcommon/xml/LumXmlErrorCode.h"
TARGET = ROOT / "lumcommon/xml/XmlErrorCauses.inc"


def generate():
    found = re.findall(r"^ +(\w+) = (0x[0-9A-F]{4}), +///< (.+)$", read(SOURCE), re.MULTILINE)
    if len(found) != read(SOURCE).count(" = 0x"):
        sys.exit(f"{SOURCE.name}: a code has no cause in its line")
    rows = [f"// {mark()}", "// Source: lumcommon/xml/LumXmlErrorCode.h.", "// XML_ERROR_CAUSE(code, name, cause), in the order of the codes."]
    for name, code, cause in sorted(found, key=lambda row: row[1]):
        literal = cause.replace("\\", "\\\\").replace('"', '\\"')
        rows.append(f'XML_ERROR_CAUSE({code}, "{name}", "{literal}")')
    return {TARGET: text_of(rows)}


if __name__ == "__main__":
    sys.exit(run(__doc__, generate))
