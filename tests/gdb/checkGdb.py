#!/usr/bin/env python3
"""Fails when gdb does not load the printers with the installed library, or shows something else than they promise.

  checkGdb.py CMAKE BUILD_FOLDER SUBJECT
"""
import os
import re
import subprocess
import sys
import tempfile

EXPECTED = {
    "shortText": r'"a \"b\""',
    "longText": '"a text that is longer than what the object has room for"',
    "none": "(bogus)",
    "builtin": "xml:lang",
    "runtime": "made-up",
    "values": '{null, 3, 2.5mm, made-up, "text", #FF0010}',
    "item": "width: 4",
    "ink": '#808080 #SEPARATION "Gold"',
    "inch": "72pt",
    "noLength": "no length",
    "nothing": "null",
    "*document.object_": "LumDocument",
    "*root.object_": "ElementNS <p:a> in line 1",
    "root": "ElementNS <p:a> in line 1 at 0x0, count 2",
    "*attribute.object_": "AttrNS p:i",
}


def main():
    cmake, build, subject = sys.argv[1:]
    with tempfile.TemporaryDirectory() as folder:
        prefix = os.path.realpath(folder) + "/installed"
        subprocess.run([cmake, "--install", build, "--prefix", prefix], check=True, stdout=subprocess.DEVNULL)
        scripts = prefix + "/share/gdb/auto-load"
        commands = ["set width 0", "set print pretty off", "break stop", "run", "up"]
        commands += [f"print {what}" for what in EXPECTED]
        before = [f"add-auto-load-scripts-directory {scripts}", f"add-auto-load-safe-path {scripts}",
                  "set debuginfod enabled off"]
        line = ["gdb", "-nx", "-batch", *(part for one in before for part in ("-iex", one)),
                *(part for one in commands for part in ("-ex", one)), subject]
        library = [path for path, _, files in os.walk(prefix) if "liblumcommon.so.3" in files][0]
        run = subprocess.run(line, capture_output=True, text=True, timeout=300,
                             env={**os.environ, "LD_LIBRARY_PATH": library, "LC_ALL": "C.UTF-8"})
    shown = re.findall(r"^\$\d+ = (.*)$", run.stdout, re.MULTILINE)
    if len(shown) != len(EXPECTED):
        sys.exit(run.stdout + run.stderr)
    wrong = [f"{what}: {found} instead of {wanted}" for (what, wanted), found in zip(EXPECTED.items(), shown)
             if re.sub(r"0x[0-9a-f]+", "0x0", found) != wanted]
    if wrong:
        sys.exit("\n".join(wrong))


if __name__ == "__main__":
    main()
