#!/usr/bin/env python3
"""Runs an example in a folder of its own with the arguments in.xml and out.xml and judges what it wrote.

  runExample.py PROGRAM INPUT EXPECTED

What it prints must be EXPECTED.txt, where that file exists. What it saves must be the document EXPECTED.xml, or the
input's document where there is no such file; comments do not count. Each of the two must be judged in at least one
way: an example that neither prints what is expected nor saves anything proves nothing.
"""
import pathlib
import shutil
import subprocess
import sys
import tempfile
from xml.etree.ElementTree import canonicalize


def main():
    program, source, expected = sys.argv[1], pathlib.Path(sys.argv[2]), sys.argv[3]
    with tempfile.TemporaryDirectory() as folder:
        here = pathlib.Path(folder)
        shutil.copy(source, here / "in.xml")
        run = subprocess.run([program, "in.xml", "out.xml"], cwd=here, capture_output=True, timeout=100)
        if run.returncode != 0:
            sys.exit(f"exit code {run.returncode}: {run.stderr.decode()}{run.stdout.decode()}")
        judged = False
        text = pathlib.Path(expected + ".txt")
        if text.exists():
            judged = True
            if run.stdout.decode() != text.read_text(encoding="utf-8"):
                sys.exit(f"it prints\n{run.stdout.decode()}instead of\n{text.read_text(encoding='utf-8')}")
        if (here / "out.xml").exists():
            judged = True
            wanted = pathlib.Path(expected + ".xml")
            if not wanted.exists():
                wanted = source
            if canonicalize(from_file=here / "out.xml").strip() != canonicalize(from_file=wanted).strip():
                sys.exit(f"the saved document differs from {wanted.name}")
        if not judged:
            sys.exit("there is nothing to judge")


if __name__ == "__main__":
    main()
