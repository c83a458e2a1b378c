#!/usr/bin/env python3
"""Joins the paragraphs of a Mallard help folder into one document; prints it.   joinPages.py FOLDER

The document is to hold mostly characters outside ASCII. So the blocks that hold the most of them are taken, with
inline markup kept only where it says what a person clicks or types, and without indentation.
"""
import pathlib
import sys
import xml.etree.ElementTree as tree
from xml.sax.saxutils import escape, quoteattr

NS = "{http://projectmallard.org/1.0/}"
KEPT_INLINE = {"gui": "界面", "key": "按键", "em": "强调"}


def foreign(text):
    return sum(1 for character in text if ord(character) > 0x2E80)


def inner(element):
    text = escape(element.text or "")
    for child in element:
        name = KEPT_INLINE.get(child.tag.removeprefix(NS))
        body = inner(child)
        text += f"<{name}>{body}</{name}>" if name and foreign(body) else body
        text += escape(child.tail or "")
    return text


def main():
    print('<?xml version="1.0" encoding="UTF-8"?>')
    print("<帮助>")
    for path in sorted(pathlib.Path(sys.argv[1]).glob("*.page")):
        root = tree.parse(path).getroot()
        title = "".join(root.findtext(NS + "title", "").split())
        blocks = []
        for element in root.iter():
            if element.tag == NS + "p":
                text = " ".join(inner(element).split())
                if 2 * foreign(text) > len(text):
                    blocks.append(f"<段落>{text}</段落>")
        if len(blocks) > 3 and foreign(title) > 3:
            print(f"<页面 标题={quoteattr(title)}>\n" + "\n".join(blocks) + "\n</页面>")
    print("</帮助>")


if __name__ == "__main__":
    sys.exit(main())
