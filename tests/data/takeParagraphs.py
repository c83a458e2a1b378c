#!/usr/bin/env python3
"""Prints a document of the first paragraphs of a Mallard help folder.   takeParagraphs.py LANGUAGE FOLDER BYTES

Paragraphs that are mostly in ASCII are left out, and so is a second one with the same text. The document has as many of
the others as fit into BYTES.
"""
import pathlib
import sys
import xml.etree.ElementTree as tree
from xml.sax.saxutils import escape

NS = "{http://projectmallard.org/1.0/}"


def main():
    language, folder, size = sys.argv[1], pathlib.Path(sys.argv[2]), int(sys.argv[3])
    print('<?xml version="1.0" encoding="UTF-8"?>')
    print(f'<text xml:lang="{language}">')
    seen = set()
    for path in sorted(folder.glob("*.page")):
        for element in tree.parse(path).getroot().iter(NS + "p"):
            text = " ".join("".join(element.itertext()).split())
            words = text.split()
            foreign = sum(not word.isascii() for word in words)
            line = f"<p>{escape(text)}</p>"
            if 4 * foreign < len(words) or len(text) < 40 or text in seen:
                continue
            size -= len(line.encode()) + 1
            if size < 0:
                print("</text>")
                return
            seen.add(text)
            print(line)
    sys.exit(f"{folder}: not enough text")


if __name__ == "__main__":
    sys.exit(main())
