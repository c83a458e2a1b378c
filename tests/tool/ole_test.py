#!/usr/bin/env python3
"""Lists and prints compound files and office properties with the tool. What is right for documents of an office suite
was written down by another reader of compound files, gsf; where that is installed, it also makes files here.
Usage: ole_test.py LUM FOLDER_OF_OFFICE_DOCUMENTS"""
import hashlib
import json
import os
import pathlib
import re
import shutil
import struct
import subprocess
import sys
import tempfile

LUM = os.path.abspath(sys.argv[1])
DOCUMENTS = pathlib.Path(sys.argv[2]).resolve()
TEMPORARY = tempfile.TemporaryDirectory(prefix="lum ole ")
FOLDER = pathlib.Path(TEMPORARY.name)
GSF = shutil.which("gsf")
ENVIRONMENT = {**os.environ, "LC_ALL": "C.UTF-8"}
# The names that gsf has for properties, and the numbers of the same.
TIMES = {"meta:creation-date": 12, "dc:date": 13}
NUMBERS = {"msole:codepage": 1, "dc:title": 2, "dc:subject": 3, "dc:creator": 4, "dc:keywords": 5, "dc:description": 6,
           "gsf:last-saved-by": 8, "meta:editing-cycles": 9, "gsf:page-count": 14, "gsf:word-count": 15,
           "gsf:character-count": 16, "meta:generator": 18, "gsf:security": 19}
failures = []


def run(*arguments, stdin=b""):
    return subprocess.run([LUM, *map(str, arguments)], input=stdin, capture_output=True, cwd=FOLDER, timeout=60,
                          env=ENVIRONMENT)


def expect(fault, got, expected):
    if got != expected:
        failures.append(f"{fault}:\n  got      {str(got)[:500]!r}\n  expected {str(expected)[:500]!r}")


def entry(name="", kind=0, left=-1, right=-1, child=-1, start=0, size=0):
    units = name.encode("utf-16-le")
    return struct.pack("<64sHBBiii36xiIi", units, len(units) + 2, kind, 1, left, right, child, start, size, 0)


def small_file():
    """Sectors: 0 the FAT, 1 and 2 the directory, 3 to 11 two streams. No mini stream."""
    fat = [-3, 2, -2, 4, 5, 6, 7, 8, 9, 10, -2, -2] + [-1] * 116
    directory = [entry("Root Entry", 5, child=2, start=-2), entry("\u65e5\u672c", 1, child=3),
                 entry("Workbook", 2, left=1, start=3, size=4000), entry("\5in it", 2, start=11, size=3)] + [entry()] * 4
    header = struct.pack("<8s16xHHHHH10xIiIIiIiI", bytes.fromhex("D0CF11E0A1B11AE1"), 62, 3, 0xFFFE, 9, 6, 1, 1, 0, 0, -2,
                         0, -2, 0)
    data = bytes(range(250)) * 16
    return header + struct.pack("<109i", 0, *[-1] * 108) + struct.pack("<128i", *fat) + b"".join(directory) + \
        data.ljust(4096, b"\0") + b"abc".ljust(512, b"\0"), data


def check_small_file():
    content, data = small_file()
    (FOLDER / "a b.xls").write_bytes(content)
    done = run("ole", "list", "a b.xls")
    keys = ("index", "name", "type", "size", "startSector", "left", "right", "child", "parent")
    rows = [(0, "Root Entry", 5, 0, -2, -1, -1, 2, -1), (1, "\u65e5\u672c", 1, 0, -1, -1, -1, 3, 0),
            (2, "Workbook", 2, 4000, 3, 1, -1, -1, 0), (3, "\5in it", 2, 3, 11, -1, -1, -1, 1)]
    expect("list", [json.loads(line) for line in done.stdout.splitlines()], [{**dict(zip(keys, row)), "typeName": {1: "storage", 2: "stream", 5: "root"}[row[2]]} for row in rows])
    expect("cat", run("ole", "cat", "a b.xls", "workbook").stdout, data)
    expect("cat in a storage, from a pipe", run("ole", "cat", "-", "\u65e5\u672c", "\5IN IT", stdin=content).stdout, b"abc")
    expect("kind", json.loads(run("kind", "a b.xls").stdout)["ole"], 2)
    loose = content[:68] + b"\xff" * 4 + content[72:]
    expect("kind of a file without list of FAT sectors, as -1", json.loads(run("kind", "-", stdin=loose).stdout)["ole"], 2)
    expect("names in it", run("ole", "list", "-", stdin=loose).stdout, done.stdout)
    expect("kind of another file", json.loads(run("kind", "-", stdin=b"<a/>").stdout)["ole"], 0)
    expect("props without property sets", run("props", "a b.xls").stdout.decode(),
           '{"title":"","subject":"","author":"","keywords":"","properties":{},"document":{},"user":{},"hyperlinks":[]}\n')
    (FOLDER / "cut").write_bytes(content[:-2000])
    rows = [
        ("no such file", ["ole", "list", "none"], b"lum: error 0x1003: Cannot open file: none (No such file or directory)\n"),
        ("no compound file", ["props", "no"], b"lum: error 0x1003: no is no office document\n"),
        ("no such stream", ["ole", "cat", "cut", "a", "b"], b"lum: error 0x1003: cut has no stream a/b\n"),
        ("a storage", ["ole", "cat", "cut", "\u65e5\u672c"], "lum: error 0x1003: cut has no stream \u65e5\u672c\n".encode()),
        ("a cut stream passes for a whole one", ["ole", "cat", "cut", "Workbook"],
         b"lum: error 0x1004: Unexpected end of input stream.\n"),
    ]
    (FOLDER / "no").write_bytes(content[1:])
    for fault, arguments, message in rows:
        done = run(*arguments)
        expect(fault, (done.returncode, done.stderr), (1, message))
    expect("no subcommand", run("ole").returncode, 2)
    expect("no name", run("ole", "cat", "a b.xls").returncode, 2)


def paths_of(file):
    """The names on the way to each storage and stream, with its type."""
    done = run("ole", "list", file)
    expect(f"{file} is not listed", (done.returncode, done.stderr), (0, b""))
    entries = {e["index"]: e for e in map(json.loads, done.stdout.splitlines())}
    for e in entries.values():
        names = []
        at = e
        while at["parent"] >= 0:
            names.insert(0, at["name"])
            at = entries[at["parent"]]
        if names:
            yield e, names


def plain(text):
    return re.sub(r"\\(\d{3})", lambda match: chr(int(match[1], 8)), text)


def check_document(path, judged):
    rows = [tuple(map(plain, line.split("\t"))) for line in judged.read_text(encoding="utf-8").splitlines()]
    got = []
    for e, names in paths_of(path):
        if e["type"] == 1:
            got.append(("storage", "/".join(names)))
        else:
            data = run("ole", "cat", path, *names).stdout
            got.append(("stream", "/".join(names), str(len(data)), hashlib.sha256(data).hexdigest()))
    expect(f"{path.name}: other storages and streams than by gsf", sorted(got),
           sorted(row[:3] + row[4:] for row in rows if row[0] in ("storage", "stream") and row[1] != "*root*"))
    properties = json.loads(run("props", path).stdout)
    numbered = dict(properties["properties"])
    for name, key in (("title", "2"), ("subject", "3"), ("author", "4"), ("keywords", "5")):
        expect(f"{path.name}: {name} is not its property", properties[name], numbered.get(key, ""))
    expected = {str(NUMBERS[row[1]]): row[2] for row in rows if row[0] == "property" and row[1] in NUMBERS}
    if "1" in expected:
        expected["1"] = str(int(expected["1"]) % 65536)  # gsf shows UTF-8 as a negative number
    expect(f"{path.name}: other properties than by gsf", {k: str(v) for k, v in numbered.items() if k in expected}, expected)
    expect(f"{path.name}: other times than by gsf", {k: numbered.get(str(n)) for k, n in TIMES.items()},
           {k: next((row[2] for row in rows if row[:2] == ("property", k)), None) for k in TIMES})
    shown = {"Due": str, "Company": str, "Final": lambda flag: str(flag).upper(), "Price": "{:.6f}".format}
    named = {k: shown.get(k, str)(v) for k, v in properties["user"].items() if not k.startswith("_PID")}
    judged_names = {row[1]: row[2] for row in rows if row[0] == "property" and ":" not in row[1]}
    expect(f"{path.name}: other properties of the user's than by gsf", named, judged_names)
    links = judged.with_name(path.name + ".links.tsv")
    if links.exists():
        expect(f"{path.name}: other links than written", properties["hyperlinks"],
               [plain(line.split("\t")[1]) for line in links.read_text(encoding="utf-8").splitlines()])


def check_file_of_gsf():
    """Large enough for a chain of FAT sector lists."""
    contents = {"large": os.urandom(9_000_000), "small": b"small", "in": b""}
    for name, data in contents.items():
        (FOLDER / name).write_bytes(data)
    subprocess.run([GSF, "createole", "made.ole", *contents], cwd=FOLDER, check=True, capture_output=True)
    expect("a large file of gsf lists other streams", sorted("/".join(names) for _, names in paths_of("made.ole")), sorted(contents))
    for name, data in contents.items():
        expect(f"other bytes in {name}", run("ole", "cat", "made.ole", name).stdout == data, True)


check_small_file()
documents = 0
KINDS = {".doc": 1, ".dot": 1, ".xls": 2, ".xlt": 2, ".ppt": 3, ".pot": 3, ".pps": 3}
for judgement in sorted(DOCUMENTS.glob("judge/*.tsv")):
    document = DOCUMENTS / judgement.name.removesuffix(".tsv")
    if document.exists() and document.read_bytes()[:4] == b"\xD0\xCF\x11\xE0":
        check_document(document, judgement)
        if document.suffix in KINDS:
            expect(f"{document.name}: kind", json.loads(run("kind", document).stdout)["ole"], KINDS[document.suffix])
        documents += 1
expect("documents are missing", documents >= 17, True)
if GSF:
    check_file_of_gsf()
print("\n".join(failures) or f"{documents} documents, all as expected")
sys.exit(1 if failures else 0)
