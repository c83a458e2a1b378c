#!/usr/bin/env python3
"""Judges the tool on whole documents with libxml2's programs, which share no code with it.

  roundtrip.py LUM save FILE...     `lum save` writes the same document: equal canonical XML without comments and
                                    processing instructions; a second save changes no byte. With --lazy too.
  roundtrip.py LUM events FILE...   `lum events` prints the same events for all files, which hold one document in
                                    several encodings; positions agree from the second line on.
  roundtrip.py LUM selftest         shows that the judge can find a document guilty.
"""
import json
import lzma
import pathlib
import subprocess
import sys
import tempfile

HERE = pathlib.Path(__file__).resolve().parent


def run(*command, data=None):
    done = subprocess.run([str(part) for part in command], input=data, capture_output=True, timeout=250)
    if done.returncode != 0:
        sys.exit(f"{' '.join(str(part) for part in command)}: exit code {done.returncode}\n{done.stderr.decode()}")
    return done.stdout


def content(document):
    """The canonical form of the content of a document given as bytes."""
    with tempfile.TemporaryDirectory() as folder:
        plain = pathlib.Path(folder) / "plain.xml"
        plain.write_bytes(run("xsltproc", "--maxdepth", "100000", HERE / "content.xslt", "-", data=document))
        return run("xmllint", "--huge", "--c14n", plain)


def read(path):
    return lzma.decompress(path.read_bytes()) if path.suffix == ".xz" else path.read_bytes()


def first_difference(a, b):
    at = next((i for i, (x, y) in enumerate(zip(a, b)) if x != y), min(len(a), len(b)))
    return f"at byte {at}: {a[max(0, at - 60):at + 60]!r} became {b[max(0, at - 60):at + 60]!r}"


def judge_save(lum, path):
    original = read(path)
    with tempfile.TemporaryDirectory() as folder:
        source, saved, again = (pathlib.Path(folder) / name for name in ("in.xml", "out.xml", "again.xml"))
        source.write_bytes(original)
        expected = content(original)
        for option in ([], ["--lazy"], ["--no-generator"]):
            run(lum, "save", *option, source, saved)
            result = content(saved.read_bytes())
            if result != expected:
                sys.exit(f"{path.name} {option}: {first_difference(expected, result)}")
        run(lum, "save", "--no-generator", saved, again)
        if saved.read_bytes() != again.read_bytes():
            sys.exit(f"{path.name}: a second save differs {first_difference(saved.read_bytes(), again.read_bytes())}")


def events(lum, path):
    return [json.loads(line) for line in run(lum, "events", path).decode("utf-8").splitlines()]


def judge_events(lum, paths):
    """The declaration names an encoding in one file only, so columns of the first line differ by right."""
    reference = events(lum, paths[0])
    if len(reference) < 100:
        sys.exit(f"{paths[0].name}: only {len(reference)} events")
    for path in paths[1:]:
        others = events(lum, path)
        if len(others) != len(reference):
            sys.exit(f"{path.name}: {len(others)} events instead of {len(reference)}")
        for number, (expected, got) in enumerate(zip(reference, others)):
            if expected.get("line") == 1 and got.get("line") == 1:
                expected, got = ({k: v for k, v in event.items() if k != "column"} for event in (expected, got))
            if expected != got:
                sys.exit(f"{path.name}: event {number} is {got}, in {paths[0].name} it is {expected}")


def selftest():
    same = content(b'<?x?><a xmlns:p="urn:u" b="1" c="2"><!--n--><p:d/>&lt;</a>')
    cases = [
        ("order of attributes, quotes, references, comments", b"<a c='2' xmlns:p='urn:u' b='1'><p:d></p:d>&#60;</a>", True),
        ("a changed attribute", b'<a xmlns:p="urn:u" b="1" c="3"><p:d/>&lt;</a>', False),
        ("a lost attribute", b'<a xmlns:p="urn:u" b="1"><p:d/>&lt;</a>', False),
        ("another namespace", b'<a xmlns:p="urn:v" b="1" c="2"><p:d/>&lt;</a>', False),
        ("white space more", b'<a xmlns:p="urn:u" b="1" c="2"><p:d/>&lt; </a>', False),
    ]
    for fault, document, equal in cases:
        if (content(document) == same) != equal:
            sys.exit(f"the judge is wrong about {fault}")


def main():
    lum, command, paths = sys.argv[1], sys.argv[2], [pathlib.Path(name) for name in sys.argv[3:]]
    if command == "save":
        for path in paths:
            judge_save(lum, path)
    elif command == "events":
        judge_events(lum, paths)
    else:
        selftest()


if __name__ == "__main__":
    main()
