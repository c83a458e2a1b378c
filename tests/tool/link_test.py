#!/usr/bin/env python3
"""Prints links and destinations with the tool.   Usage: link_test.py LUM"""
import json
import os
import subprocess
import sys

LUM = os.path.abspath(sys.argv[1])
ENVIRONMENT = {**os.environ, "LC_ALL": "C.UTF-8"}
ROWS = [
    ("items lost or renamed", "pdf", "doc.pdf#page=3&zoom=150%,10",
     {"value": None, "left": "10pt", "page": "3", "uri": "doc.pdf", "view": "xyz", "zoom": "1.5"}),
    ("unnamed value lost beside items", "destination", "fitv 1in", {"value": "fitv", "left": "1in"}),
    ("value without items", "destination", "", {"value": "xyz-top"}),
    ("text changed", "xlink", "\u65e5.pdf#\u672c", {"value": None, "nameddest": "\u672c", "uri": "\u65e5.pdf"}),
    ("parameters without a destination", "internal", "#zoom=2", {"value": None, "view": "xyz", "zoom": "2"}),
    ("null value", "excel", "book.xls", {"value": None}),
    ("sheet", "excel", "book.xls#sheet=2", {"value": None, "sheet": "2"}),
    ("item in the place of the value", "fragment", "a.svg#value=1&Width=10%25",
     {"value": "a.svg", "#value": "1", "Width": "10%"}),
    ("empty text refused", "fragment", "", {"value": ""}),
]
failures = []


def run(*arguments):
    return subprocess.run([LUM, "link", *arguments], capture_output=True, timeout=60, env=ENVIRONMENT)


for fault, kind, text, expected in ROWS:
    done = run(kind, text)
    got = json.loads(done.stdout) if done.returncode == 0 else done.stderr
    if got != expected:
        failures.append(f"{fault}:\n  got      {got!r}\n  expected {expected!r}")
for arguments in (["frob", "a"], ["pdf"], []):
    if (status := run(*arguments).returncode) != 2:
        failures.append(f"{arguments}: bad usage ends with {status}")

print("\n".join(failures) or "ok")
sys.exit(bool(failures))
