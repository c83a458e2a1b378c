#!/usr/bin/env python3
"""Fails when the tests outgrow the code: more than 33 lines of tests to 100 lines of code.

Tests that catch faults are few and share tables; a suite that grows with every change is not read any more. A quarter to
a third is asked for. Counted are lines that are neither blank nor comment: in tests the C++ files, in lumcommon/ and
tools/lum/ the C++ files without those that hold tables. Data files do not count.
"""
import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parents[2]
MOST_PERCENT = 33
NOT_CODE = re.compile(r"\s*(//.*)?$")


def lines_of(text):
    return sum(not NOT_CODE.match(line) for line in text.splitlines())


def count(*folders):
    files = [file for folder in folders for pattern in ("*.h", "*.cpp") for file in (ROOT / folder).rglob(pattern)]
    return sum(lines_of(file.read_text(encoding="utf-8")) for file in files if not file.name.endswith("Table.cpp"))


def main():
    assert lines_of("int a;\n\n  // why\nint b;  // that\n") == 2
    code, tests = count("lumcommon", "tools/lum"), count("tests")
    assert code > 1000 and tests > 100, "hardly any file was found"
    percent = 100 * tests / code
    print(f"{tests} lines of tests to {code} of code: {percent:.1f} to 100")
    return 1 if percent > MOST_PERCENT else 0


if __name__ == "__main__":
    sys.exit(main())
