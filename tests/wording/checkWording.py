#!/usr/bin/env python3
"""Fails when a committed text holds what must not be in it: folders of one machine, marks of unfinished work, spaces at
line ends, tabs in C++, or characters outside ASCII in C++ sources.

The forbidden words are written in pieces here, so that this file passes its own check.
"""
import pathlib
import re
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parents[2]
CPP = {".h", ".cpp", ".inc"}
SKIPPED = ("tests/data/", "fuzz/corpus/", "examples/expected/", "LICENSE")

# (what it catches, expression, suffixes it applies to or None for all)
RULES = [
    ("a folder of one machine", re.compile("/(?:wo" + "rk|ho" + "me|ro" + "ot)/"), None),
    ("a folder of one machine", re.compile("/t" + "mp/(?!lum|XXXX)[a-z]"), {".md", ".cmake", ".json"}),
    ("unfinished work", re.compile(r"\b(?:TO" + r"DO|FIX" + r"ME|XX" + r"X|HA" + r"CK)\b"), None),
    ("a reference to a document nobody has", re.compile(r"\b(?:Pa" + r"rt \d|the sp" + r"ec\b|issue #?\d)"), None),
    ("a space at the end of a line", re.compile(r"[ \t]+$"), None),
    ("a tab", re.compile("\t"), CPP),
    ("a character outside ASCII", re.compile(r"[^\x00-\x7f]"), CPP),
]


def findings(name, text):
    suffix = pathlib.PurePath(name).suffix
    for number, line in enumerate(text.splitlines(), 1):
        for what, expression, suffixes in RULES:
            if (suffixes is None or suffix in suffixes) and expression.search(line):
                yield f"{name}:{number}: {what}: {line.strip()[:100]}"


def check_the_check():
    bad = ["/ho" + "me/someone", "// TO" + "DO later", "int a; ", "\tint a;", "// caf\u00e9", "see Pa" + "rt 3"]
    for line in bad:
        assert list(findings("a.cpp", line)), f"not found: {line}"
    assert not list(findings("a.cpp", "int partOf3; // a part of it, e.g. Homepage"))


def main():
    check_the_check()
    listed = subprocess.run(["git", "ls-files", "-z"], cwd=ROOT, capture_output=True)
    if listed.returncode == 0 and listed.stdout:
        names = listed.stdout.decode().split("\0")
    else:  # an unpacked archive has no index
        names = [str(path.relative_to(ROOT)) for path in ROOT.rglob("*") if "build" not in path.parts]
    found = []
    checked = 0
    for name in sorted(filter(None, names)):
        path = ROOT / name
        if name.startswith(SKIPPED) or not path.is_file():
            continue
        try:
            text = path.read_text(encoding="utf-8")
        except UnicodeDecodeError:
            continue
        checked += 1
        found += findings(name, text)
    assert checked > 50, "hardly any file was read"
    if found:
        print("\n".join(found))
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
